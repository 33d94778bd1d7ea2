#!/usr/bin/env bash
# Builds every commit of a range by itself, oldest first, in a worktree of its own beside the others' ccache.
#
#   tools/each-commit-builds.sh [RANGE [PRESET [TARGET...]]]    origin/main..HEAD, the preset asan and everything
#                                                               unless told
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD
range=${1:-origin/main..HEAD}
preset=${2:-asan}
targets=("${@:3}")
[ ${#targets[@]} -gt 0 ] || targets=(all)

tree=$(mktemp -d)/tree
# shellcheck disable=SC2317 # the trap calls it
cleanup() {
  git -C "$root" worktree remove --force "$tree" 2>/dev/null || true
  rm -rf "$(dirname "$tree")"
}
trap cleanup EXIT
git worktree add --quiet --detach "$tree" HEAD
export CCACHE_BASEDIR=$tree CCACHE_NOHASHDIR=1

failed=()
commits=$(git rev-list --reverse "$range")
for commit in $commits; do
  git -C "$tree" checkout --quiet --force "$commit"
  name=$(git log -1 --format='%h %s' "$commit")
  echo "== $name"
  if ! (cd "$tree" && cmake --preset "$preset" >/dev/null && cmake --build --preset "$preset" --target "${targets[@]}" -- --quiet); then
    failed+=("$name")
  fi
done
if [ ${#failed[@]} -gt 0 ]; then
  printf 'does not build: %s\n' "${failed[@]}"
  exit 1
fi
echo "$(wc -w <<<"$commits") commits build"
