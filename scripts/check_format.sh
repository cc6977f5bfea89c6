#!/usr/bin/env bash
# Fails, naming each file, when a C++ source is not laid out as .clang-format says.
# Usage: check_format.sh [ROOT]   every .cpp, .h and .c under ROOT except build/ (default: the project)
# To lay a file out: clang-format -i FILE (the project's .clang-format is found beside the tree).
set -uo pipefail
ROOT=${1:-$(cd "$(dirname "$0")/.." && pwd)}
STYLE=$(cd "$(dirname "$0")/.." && pwd)/.clang-format
command -v clang-format >/dev/null || { echo "clang-format is not installed"; exit 2; }
mapfile -d '' files < <(find "$ROOT" -path "$ROOT/build" -prune -o -path "$ROOT/.git" -prune -o \
  \( -name '*.cpp' -o -name '*.h' -o -name '*.c' \) -type f -print0 | sort -z)
[ ${#files[@]} -gt 0 ] || { echo "no C++ sources under $ROOT"; exit 2; }
report=$(clang-format --style="file:$STYLE" --dry-run "${files[@]}" 2>&1 >/dev/null)
unformatted=$(printf '%s\n' "$report" | sed -n 's/^\(.*\):[0-9]*:[0-9]*: warning: code should be clang-formatted.*/\1/p' | sort -u)
if [ -n "$unformatted" ]; then
  printf '%s\n' "$unformatted" | sed "s|^$ROOT/||; s|\$|: not formatted|"
  exit 1
fi
echo "${#files[@]} sources formatted"
