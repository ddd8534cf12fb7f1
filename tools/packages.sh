# Installs what the project needs from Debian's packages. Sourced by ./run and ./test.

packages_to_run=(
  g++ clang lld cmake ninja-build pkg-config nlohmann-json3-dev libcli11-dev libre2-dev
  libsndfile1-dev libjpeg62-turbo-dev libpng-dev libzip-dev nettle-dev g++-mingw-w64-i686-win32 fp-utils-3.2.2
)

packages_to_test=(
  g++-multilib clang-format clang-tidy libclang-rt-14-dev libgtest-dev libgmock-dev googletest
  libbenchmark-dev libmspack-dev mscompress valgrind binutils file python3
  curl nginx-light ncat socat openssl osslsigncode python3-pexpect python3-pyte
)

# What tools/mutate reads the code with.
packages_to_mutate=(python3-clang)

# The Windows programs, their tests, and the machine that they run on.
packages_for_windows=(
  g++-mingw-w64-i686-win32 g++-mingw-w64-x86-64-win32 googletest
  mmdebstrap uidmap arch-test xvfb imagemagick xdotool locales openssl osslsigncode python3
)

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# Installs those of the named packages that are missing; quiet unless it fails.
install_packages() {
  local missing=() installed package log
  installed=" $(dpkg-query -W -f '${Package}=${db:Status-Status} ' "$@" 2>/dev/null)" || true
  for package in "$@"; do
    [[ $installed == *" $package=installed "* ]] || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing ${missing[*]}"
  log=$(mktemp)
  if ! { as_root apt-get update &&
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends \
      "${missing[@]}"; } >"$log" 2>&1; then
    tail -n 30 "$log" >&2
    echo "The packages could not be installed; the whole log is in $log" >&2
    return 1
  fi
  rm -f "$log"
}
