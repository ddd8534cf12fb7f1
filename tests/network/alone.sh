#!/bin/sh
# alone.sh COMMAND ARGUMENT...
# Runs a command on a network of its own, in which there is nothing but loopback and the machine is
# called localhost. Names are looked up in a file that knows no other one. Nothing outside changes.
# Needs no rights where users may make namespaces; the command's exit status passes through.
set -eu

inside=--inside-the-namespaces
if [ "${1:-}" != "$inside" ]; then
  if [ $# -eq 0 ]; then
    echo "usage: alone.sh COMMAND ARGUMENT..." >&2
    exit 2
  fi
  user=
  [ "$(id -u)" -eq 0 ] || user='--user --map-root-user'
  # shellcheck disable=SC2086
  exec unshare $user --net --uts --mount "$0" "$inside" "$(id -u)" "$(id -g)" "$@"
fi
user=$2
group=$3
shift 3

# The interface lo comes up, with 127.0.0.1, when it gets the flags IFF_UP and IFF_RUNNING.
python3 - <<'PYTHON'
import fcntl, socket, struct
SIOCSIFFLAGS, UP_AND_RUNNING = 0x8914, 0x41
with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as any_socket:
    fcntl.ioctl(any_socket, SIOCSIFFLAGS, struct.pack("16sh14x", b"lo", UP_AND_RUNNING))
socket.sethostname("localhost")
PYTHON

# The files lie in memory that only this namespace sees, and stay mounted when their folder has gone.
folder=$(mktemp -d)
trap 'rmdir "$folder"' EXIT
mount -t tmpfs -o mode=755 none "$folder"
echo 'hosts: files' >"$folder/nsswitch.conf"
echo '127.0.0.1 localhost' >"$folder/hosts"
chmod 644 "$folder/nsswitch.conf" "$folder/hosts"
for file in nsswitch.conf hosts; do mount --bind "$folder/$file" "/etc/$file"; done
umount "$folder"
rmdir "$folder"
trap - EXIT

# Who was mapped to root for this goes on as before.
[ "$user" -ne 0 ] || exec "$@"
exec unshare --user --map-user="$user" --map-group="$group" "$@"
