#!/usr/bin/env bash
# The layout of the sources is checked, and the check can fail:
#   1. the project's own tree is laid out as .clang-format says;
#   2. a tree with one badly laid-out source fails, naming that source and no other.
set -uo pipefail
ROOT=$(cd "$(dirname "$0")/../.." && pwd)
source "$ROOT/scripts/lib/on-exit.sh"
scratch=$(mktemp -d)
on_exit rm -rf "$scratch"
status=0
fail() { echo "FAILED: $*"; status=1; }

if ! bash "$ROOT/scripts/check_format.sh" >"$scratch/own.txt"; then
  cat "$scratch/own.txt"
  fail "the project's own sources are not all formatted"
fi

tree="$scratch/tree"
mkdir -p "$tree/common"
printf 'int Twice(int value) { return value * 2; }\n' >"$tree/common/formatted.cpp"
printf 'int  Twice( int value ){return value*2;}\n' >"$tree/common/unformatted.cpp"
if bash "$ROOT/scripts/check_format.sh" "$tree" >"$scratch/fixture.txt"; then
  fail "a badly laid-out source passed the check"
elif [ "$(cat "$scratch/fixture.txt")" != "common/unformatted.cpp: not formatted" ]; then
  cat "$scratch/fixture.txt"
  fail "the check did not name exactly the badly laid-out source"
fi
exit $status
