#!/usr/bin/env bash
# The static checks of .clang-tidy hold, and the check can fail:
#   tidy_check.sh BUILD   (BUILD: the native build folder, whose compile database lists the sources)
#   1. the project's own sources in BUILD's compile database pass;
#   2. a tree with a finding in one source and one in a header fails, naming those two files
#      and no other: not a clean source, not a finding suppressed on its line with a reason,
#      not a source below the tree's build folder.
set -uo pipefail
ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD="$1"
source "$ROOT/scripts/lib/on-exit.sh"
scratch=$(mktemp -d)
on_exit rm -rf "$scratch"
status=0
fail() { echo "FAILED: $*"; status=1; }

if bash "$ROOT/scripts/check_tidy.sh" "$BUILD" >"$scratch/own.txt"; then
  cat "$scratch/own.txt"
else
  cat "$scratch/own.txt"
  fail "the project's own sources do not all pass clang-tidy"
fi

tree="$scratch/tree"
mkdir -p "$tree/common" "$tree/build/native"
cat >"$tree/common/length.h" <<'CPP'
#include <string>
inline std::size_t Length(std::string text) { return text.size(); }
CPP
cat >"$tree/common/uses_header.cpp" <<'CPP'
#include "common/length.h"
std::size_t Twice(const std::string& text) { return 2 * Length(text); }
CPP
printf 'int* Nothing() { return 0; }\n' >"$tree/common/pointer.cpp"
printf 'int* Kept() { return 0; }  // NOLINT(modernize-use-nullptr): the fixture keeps it\n' >"$tree/common/kept.cpp"
printf 'int Twice(int value) { return value * 2; }\n' >"$tree/common/clean.cpp"
printf 'int* Generated() { return 0; }\n' >"$tree/build/native/generated.cpp"
python3 - "$tree" <<'PY'
import json, sys
tree = sys.argv[1]
sources = ["common/uses_header.cpp", "common/pointer.cpp", "common/kept.cpp", "common/clean.cpp",
           "build/native/generated.cpp"]
json.dump([{"directory": tree, "file": f"{tree}/{source}",
            "command": f"clang++ -std=c++20 -I{tree} -c {tree}/{source} -o /dev/null"}
           for source in sources], open(f"{tree}/build/native/compile_commands.json", "w"), indent=1)
PY
if bash "$ROOT/scripts/check_tidy.sh" "$tree/build/native" "$tree" >"$scratch/fixture.txt"; then
  cat "$scratch/fixture.txt"
  fail "a tree with findings passed the check"
else
  cat "$scratch/fixture.txt"
  named=$(sed -n 's/^\([^:]*\):[0-9]*:[0-9]*: error: .*\[\([a-z-]*\)\]$/\1 \2/p' "$scratch/fixture.txt" | sort -u | tr '\n' ';')
  [ "$named" = "common/length.h performance-unnecessary-value-param;common/pointer.cpp modernize-use-nullptr;" ] ||
    fail "the check must name exactly common/length.h and common/pointer.cpp, by their checks; it named: $named"
fi
exit $status
