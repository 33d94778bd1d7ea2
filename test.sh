#!/usr/bin/env bash
# Builds everything and runs every check and test. Installs what is missing first.
#
#   ./test.sh            all but clang-tidy
#   ./test.sh --tidy     the same, and clang-tidy looks at what changed
#   ./test.sh --whole    the same, and clang-tidy looks at every file
#   ./test.sh NAME...    only the tests whose names match one of the patterns
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
case "${1:-}" in
  -h | --help)
    sed -n '2,/^set/{/^#/s/^# \{0,1\}//p}' test.sh
    exit
    ;;
esac
# shellcheck source=packaging/packages.sh
source packaging/packages.sh

tidy=
case "${1:-}" in
  --tidy) tidy=changed ;;
  --whole) tidy=all ;;
esac
if [ -n "$tidy" ]; then shift; fi
jobs=$(nproc)
begin=$(date +%s)
# What another checkout has compiled already is taken from there.
export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1

steps=()
finish_step() {
  [ ${#steps[@]} -eq 0 ] || steps[-1]+=": $((SECONDS - step_begin)) s"
}
step() {
  finish_step
  step_begin=$SECONDS
  steps+=("$1")
  printf '\n== %s (%s s)\n' "$1" "$SECONDS"
}

# build PRESET [OPTION...] [-- TARGET...]: configures and builds; everything unless targets are named.
build() {
  local preset=$1 options=()
  shift
  while [ $# -gt 0 ] && [ "$1" != -- ]; do
    options+=("$1")
    shift
  done
  [ $# -eq 0 ] || shift
  cmake --preset "$preset" "${options[@]}" >/dev/null
  cmake --build --preset "$preset" --target "${@:-all}" -- --quiet
}

# sources PATTERN: our files of that name. No history is asked, as an unpacked archive has none.
sources() {
  find apps bench fuzz src tests -name node_modules -prune -o -type f -name "$1" -print
}

# at_once COMMAND...: runs the command for each line of the input, as many at once as there are processors, and
# shows what a failing one has said.
at_once() {
  # shellcheck disable=SC2016 # the inner shell expands them
  xargs -r -P "$jobs" -I '{}' bash -c '
    if ! said=$("$@" 2>&1); then
      printf "%s\n%s\n" "$*" "$said"
      exit 1
    fi' at_once "$@"
}

run_fuzz_target() {
  local program=build/fuzz/bin/$1 corpus=fuzz/corpus/$1 known=() made
  # One input takes milliseconds and little memory; what takes a thousand times as much is a fault as well.
  local bounds=(-timeout=20 -rss_limit_mb=1024)
  # What once broke something comes first, each by itself; then chance goes on from it, in a folder of its own.
  if [ -d "$corpus" ]; then
    find "$corpus" -type f -print0 | xargs -0 -r "$program" -verbosity=0 "${bounds[@]}" || return
    known=("$corpus")
  fi
  made=$(mktemp -d)
  "$program" -max_total_time=8 -max_len=4096 -verbosity=0 -print_final_stats=0 "${bounds[@]}" "$made" "${known[@]}"
  local result=$?
  rm -rf "$made"
  return "$result"
}

run_benchmark() {
  local program=$1 words=()
  # The library's benchmarks stop at once and leave the large sizes out; our own programs know what brief means.
  if nm -C "$program" | grep -q 'benchmark::RunSpecifiedBenchmarks'; then
    words=(--benchmark_min_time=0.001 --benchmark_filter=-'/10000+(/|$)')
  fi
  VANTORIX_BENCH_BRIEF=1 timeout 300 "$program" "${words[@]}"
}
export -f run_fuzz_target run_benchmark

step "Packages"
wanted=("${BUILD_PACKAGES[@]}" "${RUN_PACKAGES[@]}" "${TEST_PACKAGES[@]}")
# Only who has a history needs what reads it.
if [ -e .git ]; then wanted+=(git); fi
install_packages "${wanted[@]}"

if [ $# -eq 0 ]; then
  step "Includes form a tree"
  python3 tools/check-includes.py

  step "Format"
  { sources '*.cpp'; sources '*.hpp'; } | xargs clang-format --dry-run -Werror

  step "Shell scripts"
  shellcheck -x run.sh test.sh .ci/run packaging/*.sh tools/*.sh bench/engine/*.sh
fi

step "Build with sanitizers"
build asan

step "Tests"
pattern=()
if [ $# -gt 0 ]; then pattern=(-R "$(IFS='|'; echo "$*")"); fi
export ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1
# Many wait for processes of their own, so there is room for more than one a processor.
ctest --preset asan -j $((jobs + 1)) --progress --output-junit tests.xml "${pattern[@]}"
if [ $# -gt 0 ]; then exit 0; fi

step "Build of the fuzz targets"
# shellcheck disable=SC2046
mapfile -t targets < <(sed -n 's/^vantorix_fuzz(\([a-z_0-9]*\).*/\1/p' $(find fuzz -name CMakeLists.txt))
build fuzz -- "${targets[@]}"
# What is kept for a target that has another name now would never be tried again.
for corpus in fuzz/corpus/*/; do
  if [[ " ${targets[*]} " != *" $(basename "$corpus") "* ]]; then
    echo "$corpus is there for no fuzz target" >&2
    exit 1
  fi
done

step "Fuzz targets, briefly"
printf '%s\n' "${targets[@]}" | at_once bash -c 'run_fuzz_target {}'

step "Release build"
build release -DVANTORIX_WERROR=ON

step "The programs are hardened"
find build/release/bin -type f -print0 | xargs -0 tools/check-hardening.sh

step "The service"
python3 tools/try-service.py

step "Benchmarks: build"
build bench

step "Benchmarks, briefly"
find build/bench/bin -name 'bench_*' -type f | at_once bash -c 'run_benchmark {}'

if [ -n "$tidy" ]; then
  step "clang-tidy"
  build tidy -- page_files
  options=()
  if [ "$tidy" = all ]; then options=(--all); fi
  python3 tools/tidy.py build/tidy "${options[@]}"
fi

step "What took longest"
python3 tools/longest.py "$begin" build/*/.ninja_log build/asan/tests.xml
finish_step
printf '  %s\n' "${steps[@]}"
printf '\n== Done (%s s)\n' "$SECONDS"
