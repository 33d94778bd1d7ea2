#!/usr/bin/env bash
# Builds everything with sanitizers and runs every check and test. Installs what is missing first.
#
#   ./test.sh            all
#   ./test.sh NAME...    only the tests whose names match one of the patterns
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
# shellcheck source=packaging/packages.sh
source packaging/packages.sh

step() { printf '\n== %s (%s s)\n' "$1" "$SECONDS"; }

step "Packages"
install_packages "${BUILD_PACKAGES[@]}" "${RUN_PACKAGES[@]}" "${TEST_PACKAGES[@]}"
jobs=$(nproc)

step "Includes form a tree"
python3 tools/check-includes.py

step "Format"
git ls-files '*.cpp' '*.hpp' | xargs clang-format --dry-run -Werror

step "Build with sanitizers"
# What another checkout has compiled already is taken from there.
export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1
cmake --preset asan >/dev/null
cmake --build --preset asan -- --quiet

step "Tests"
pattern=()
if [ $# -gt 0 ]; then pattern=(-R "$(IFS='|'; echo "$*")"); fi
export ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1
ctest --preset asan -j "$jobs" --progress "${pattern[@]}"
[ $# -gt 0 ] && exit 0

step "Fuzz targets, briefly"
cmake --preset fuzz >/dev/null
targets=$(sed -n 's/^vantorix_fuzz(\([a-z_0-9]*\).*/\1/p' $(git ls-files "fuzz/**/CMakeLists.txt"))
# shellcheck disable=SC2086
cmake --build --preset fuzz --target $targets -- --quiet
for target in $targets; do
  echo "$target"
  if ! "build/fuzz/bin/$target" -max_total_time=8 -max_len=4096 -verbosity=0 -print_final_stats=0 2>build/fuzz/$target.log; then
    cat "build/fuzz/$target.log"
    exit 1
  fi
done

step "Done"
