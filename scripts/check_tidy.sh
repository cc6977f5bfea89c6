#!/usr/bin/env bash
# Fails, naming each finding, when a source of ours does not pass the checks of .clang-tidy.
# Usage: check_tidy.sh [BUILD [ROOT]]
#   BUILD: a build folder with a compile database (default: build/native, configured by
#          `cmake --preset native`, which holds the portable cores and their tests);
#   ROOT:  whose sources count (default: the project): every source of the database under ROOT
#          but outside ROOT/build, and ROOT's own headers they include. GoogleTest's sources and
#          the system's headers are not ours.
# The checks are always the project's .clang-tidy. A finding that is a deliberate behaviour is
# suppressed on its line: // NOLINT(check-name): why
# Environment: JOBS (default: number of cores).
set -uo pipefail
PROJECT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=${1:-$PROJECT/build/native}
ROOT=${2:-$PROJECT}
JOBS=${JOBS:-$(nproc)}
command -v run-clang-tidy-14 >/dev/null || { echo "clang-tidy is not installed"; exit 2; }
[ -f "$BUILD/compile_commands.json" ] ||
  { echo "no compile database in $BUILD (configure it with: cmake --preset native)"; exit 2; }
ROOT=$(cd "$ROOT" && pwd)

# The root as a literal in both regular expression dialects (clang-tidy's POSIX one for the
# headers, Python's for the sources).
root_pattern=$(printf '%s' "$ROOT" | sed 's/[][\.*^$+?(){}|]/\\&/g')
sources=$(python3 - "$BUILD/compile_commands.json" "$ROOT" <<'PY'
import json, os, sys
entries = json.load(open(sys.argv[1]))
root = sys.argv[2] + "/"
files = {os.path.normpath(os.path.join(e["directory"], e["file"])) for e in entries}
print(sum(1 for f in files if f.startswith(root) and not f.startswith(root + "build/")))
PY
)
[ "$sources" -gt 0 ] || { echo "no source under $ROOT in $BUILD/compile_commands.json"; exit 2; }

started=$SECONDS
output=$(run-clang-tidy-14 -p "$BUILD" -j "$JOBS" -quiet -config="$(cat "$PROJECT/.clang-tidy")" \
  -header-filter="^$root_pattern/" "^$root_pattern/(?!build/)" 2>&1)
status=$?
output=$(sed 's/\x1b\[[0-9;]*m//g' <<<"$output")
findings=$(grep -E '^/[^ ]*:[0-9]+:[0-9]+: (warning|error): ' <<<"$output" | sort -u)
if [ $status -ne 0 ] || [ -n "$findings" ]; then
  if [ -n "$findings" ]; then
    sed "s|^$ROOT/||; s|,-warnings-as-errors\]\$|]|" <<<"$findings"
    echo "$(wc -l <<<"$findings") findings in $sources sources"
  else
    tail -n 30 <<<"$output"
    echo "clang-tidy failed"
  fi
  exit 1
fi
echo "$sources sources pass clang-tidy ($((SECONDS - started)) s)"
