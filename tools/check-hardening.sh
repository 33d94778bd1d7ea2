#!/usr/bin/env bash
# Tells of each program or library given whether it lies anywhere in memory, has its tables made read-only before it
# runs, and no stack that may be executed. Fails when one is not so, or when there is none.
#
#   tools/check-hardening.sh FILE...
set -euo pipefail

[ $# -gt 0 ] || { echo "no program is given" >&2; exit 1; }

failed=0
lacks() {
  echo "$1: $2" >&2
  failed=1
}
for file in "$@"; do
  # Read whole, as a reader that stops early would end the writer by a signal.
  head=$(readelf -hW "$file")
  segments=$(readelf -lW "$file")
  dynamic=$(readelf -dW "$file")
  grep -Eq 'Type: +DYN' <<<"$head" || lacks "$file" "it lies at a fixed place in memory (PIE)"
  grep -q 'GNU_RELRO' <<<"$segments" || lacks "$file" "its tables stay writable (RELRO)"
  grep -Eq 'BIND_NOW|Flags:.*NOW' <<<"$dynamic" || lacks "$file" "its tables are filled while it runs (now)"
  stack=$(grep 'GNU_STACK' <<<"$segments" || true)
  if [ -z "$stack" ] || grep -Eq ' RWE ' <<<"$stack"; then lacks "$file" "its stack may be executed"; fi
done
exit "$failed"
