#!/bin/sh
# Instructions per expanded byte, counted by callgrind: two rounds less one, so that start-up and the
# reading of the files do not count.
#
#   instructions.sh path/to/lz_expand_once packed-file...
set -eu

program=$1
shift

# Callgrind counts each byte of a `rep movsb` as an instruction; this has memcpy do without.
GLIBC_TUNABLES=glibc.cpu.x86_rep_movsb_threshold=1073741824
export GLIBC_TUNABLES

count() {
  rounds=$1
  shift
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$program" "$rounds" "$@" 2>&1 >/dev/null |
    sed -n 's/.*Collected : //p'
}

bytes=$("$program" 0 "$@")
once=$(count 1 "$@")
twice=$(count 2 "$@")
awk -v n="$((twice - once))" -v b="$bytes" \
  'BEGIN { printf "%d instructions, %d bytes: %.2f per byte\n", n, b, n / b }'
