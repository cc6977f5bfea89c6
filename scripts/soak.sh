#!/usr/bin/env bash
# Runs the whole Windows suite N times in the same build and prints, for every test that
# ever failed or timed out, how often. A timeout that passed when run again counts too.
#   bash scripts/soak.sh 10
# Builds what is missing first (as scripts/test.sh does; the native build is not needed).
# Environment: BUILD_DIR (default ./build), JOBS (default: number of cores).
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}
JOBS=${JOBS:-$(nproc)}
rounds=${1:?usage: soak.sh ROUNDS}
source "$ROOT/scripts/lib/packages.sh"
source "$ROOT/scripts/lib/wine-env.sh"
source "$ROOT/scripts/lib/build.sh"
source "$ROOT/scripts/lib/ctest-run.sh"

install_missing_packages
build_windows
start_windows_test_environment

logs="$BUILD_DIR/soak"
rm -rf "$logs"
mkdir -p "$logs"
failed_rounds=0
for round in $(seq "$rounds"); do
  started=$SECONDS
  if ctest --test-dir "$BUILD_DIR/windows" -j "$JOBS" --repeat after-timeout:2 --output-on-failure \
       >"$logs/round-$round.log" 2>&1; then
    result=passed
  else
    result=FAILED
    failed_rounds=$((failed_rounds + 1))
  fi
  echo "round $round: $result, $(grep -Eo '[0-9]+% tests passed.*' "$logs/round-$round.log"), $((SECONDS - started)) s"
done

echo "== over $rounds rounds (logs in $logs) =="
# A test's final verdict of a round is its last result line there; a test that skips
# itself (as a root-only check does) is listed by ctest the same way but is no failure.
failures=$(for log in "$logs"/round-*.log; do
  sed -nE 's/^\s+[0-9]+ - ([^ ]+) \((.*)\)$/\1 \2/p' "$log" | grep -v ' Skipped$' || true
done | sort | uniq -c)
timeouts=$(timed_out_tests "$logs"/round-*.log)
if [ -z "$failures$timeouts" ]; then
  echo "no test failed or timed out"
else
  [ -z "$failures" ] || { echo "failed (rounds):"; printf '%s\n' "$failures"; }
  [ -z "$timeouts" ] || { echo "timed out (attempts, retried or not):"; printf '%s\n' "$timeouts"; }
fi
check_wine_helpers_detached || failed_rounds=$((failed_rounds + 1))
[ "$failed_rounds" -eq 0 ]
