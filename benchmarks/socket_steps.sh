#!/bin/sh
# Instructions of one round of socket_steps (a byte that arrives, is fetched and answered; a caller who
# comes, asks and goes) beside 10, 1,000 and 10,000 connections, counted by callgrind: many rounds less
# few, so that start-up and the connections' own coming do not count.
#
#   socket_steps.sh path/to/socket_steps
set -eu

program=$1

count() {
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$program" "$1" "$2" 2>&1 >/dev/null |
    sed -n 's/.*Collected : //p' | sort -n | tail -n 1
}

for connections in 10 1000 10000; do
  few=$(count "$connections" 100)
  many=$(count "$connections" 1100)
  echo "$connections connections: $(((many - few) / 1000)) instructions a round"
done
