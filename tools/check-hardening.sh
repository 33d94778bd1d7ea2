#!/usr/bin/env bash
# Tells of each program or library given whether it lies anywhere in memory, has its tables made read-only before it
# runs, no stack that may be executed, and functions that watch their stacks; on x86 also whether its functions are marked
# as places to jump to. (That is no note in its headers, since the system's own start files have none.) Of all together
# it tells whether copies are looked at and, on x86, whether large stacks are touched page by page. Fails when one is not
# so, or when there is none.
#
#   tools/check-hardening.sh FILE...
set -euo pipefail

[ $# -gt 0 ] || { echo "no program is given" >&2; exit 1; }

failed=0
copies=0
probes=0
x86=0
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
    x86=1
    code=$(objdump -d --no-show-raw-insn -j .text "$file")
    marked=$(grep -c endbr64 <<<"$code" || true)
    # The compiler's own start files have some.
    [ "$marked" -gt 10 ] || lacks "$file" "its functions aren't marked as places to jump to"
    # A page is taken and at once written to, so that no stack steps over its guard.
    # shellcheck disable=SC2016 # the program's words, not the shell's
    touched=$(grep -A1 -E 'sub +\$0x1000,%rsp' <<<"$code" | grep -Ec '(or|mov)q +\$0x0,(0x[0-9a-f]+)?\(%rsp\)' || true)
    if [ "$touched" -gt 0 ]; then probes=1; fi
  fi
  if [ -z "$stack" ] || grep -Eq ' RWE ' <<<"$stack"; then lacks "$file" "its stack may be executed"; fi
done
# Not each has a copy of which the compiler knows how much fits.
[ "$copies" = 1 ] || lacks "all of them" "no copies are looked at (FORTIFY)"
# Nor has each a function with a page of its own on the stack.
[ "$x86" = 0 ] || [ "$probes" = 1 ] || lacks "all of them" "a large stack may step over its guard (stack clash)"
exit "$failed"
