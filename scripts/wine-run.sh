#!/usr/bin/env bash
# Runs one Windows executable under Wine in the given (64-bit) prefix: a 64-bit program
# through the 64-bit loader, a 32-bit one through the 32-bit loader, as its PE header says.
# Used as CMake's cross-compiling emulator of both Windows trees: wine-run.sh PREFIX PROGRAM [ARGS...]
#
# Every program but test discovery gets its output through a file that is streamed to our
# own output while it runs: Wine hands a program's standard handles to every helper it
# starts on demand (the desktop, services), and through a file none of them can hold
# ctest's pipe open after the test has ended. Discovery (--gtest_list_tests) is executed
# directly, because ctest reads its output.
# For one GoogleTest case (an argument --gtest_filter=..., as ctest runs each discovered
# test) status 0 counts only when the program reports a passed or skipped test: a process
# that ends without running its test ("[  PASSED  ] 0 tests." or no output at all) fails.
set -euo pipefail
export WINEPREFIX="$1"
shift
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=;winemenubuilder.exe=d}"
source "$(cd "$(dirname "$0")" && pwd)/lib/wine-loader.sh"
WINE_LOADER=$(wine_loader_for "$1")

gtest_case=""
for argument in "$@"; do
  case "$argument" in
    --gtest_list_tests) exec "$WINE_LOADER" "$@" ;;
    --gtest_filter=*) gtest_case=yes ;;
  esac
done

source "$(dirname "$0")/lib/on-exit.sh"
output=$(mktemp "${TMPDIR:-/tmp}/vqc-test.XXXXXX")
on_exit rm -f "$output"
"$WINE_LOADER" "$@" </dev/null >"$output" 2>&1 &
program=$!
# Streams until the program has ended; a timeout kills this whole process group.
tail -n +1 -s 0.05 --pid="$program" -f "$output" &
streamer=$!
status=0
wait "$program" || status=$?
wait "$streamer" || true

# A program that fails before it prints anything leaves ctest an empty log: say what ended.
if [ "$status" -ne 0 ] && [ ! -s "$output" ]; then
  echo "wine-run: the program ended with status $status and printed nothing"
fi
if [ "$status" -eq 0 ] && [ -n "$gtest_case" ] &&
   ! grep -Eq '^\[  (PASSED  |SKIPPED )\] [1-9][0-9]* tests?\b' "$output"; then
  echo "wine-run: the program ended with status 0 but ran no test"
  exit 1
fi
exit "$status"
