#!/usr/bin/env bash
# Tells of each program or library given whether it lies anywhere in memory, has its tables made read-only before it
# runs, no stack that may be executed, and functions that watch their stacks; on x86 also whether its functions are marked
# as places to jump to. (That is no note in its headers, since the system's own start files have none.) Of all together
# it tells whether copies are looked at. Fails when one is not so, or when there is none.
#
#   tools/check-hardening.sh FILE...
set -euo pipefail

[ $# -gt 0 ] || { echo "no program is given" >&2; exit 1; }

failed=0
copies=0
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
  needs=$(readelf --dyn-syms -W "$file")
  grep -q '__stack_chk_fail' <<<"$needs" || lacks "$file" "its functions don't watch their stacks"
  if grep -Eq '__[a-z]+_chk@' <<<"$needs"; then copies=1; fi
  if grep -q 'X86-64' <<<"$head"; then
    marked=$(objdump -d --no-show-raw-insn -j .text "$file" | grep -c endbr64 || true)
    # The compiler's own start files have some.
    [ "$marked" -gt 10 ] || lacks "$file" "its functions aren't marked as places to jump to"
  fi
  if [ -z "$stack" ] || grep -Eq ' RWE ' <<<"$stack"; then lacks "$file" "its stack may be executed"; fi
done
# Not each has a copy of which the compiler knows how much fits.
[ "$copies" = 1 ] || lacks "all of them" "no copies are looked at (FORTIFY)"
exit "$failed"
