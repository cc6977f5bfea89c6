#!/usr/bin/env bash
# The thread stress for as long as asked: THREADS icon threads, each in a single-threaded
# apartment of its own, run the icon handler's whole cycle through COM (object, Load, the
# icon's location, Extract, release) on files with an icon, without one and broken, while the
# main thread opens, edits, applies and closes sheets on other files. The run is cut into
# rounds of a fresh load of the DLL each; every cycle must answer what one thread alone
# answers, and every round must end with DllCanUnloadNow S_OK, the DLL unloaded and the books
# balanced. Prints the figures: threads, rounds, cycles per kind of file, sheets, cycles per
# second against one thread alone, objects made, problems.
#   bash scripts/soak-threads.sh [SECONDS [THREADS]]     (default 3600 s, 8 threads)
# A copy of the DLL is registered in the build prefix's real class registry for the run, so
# run it when the test command is not running. Builds what is missing first.
# Environment: BUILD_DIR (default ./build), JOBS, VQC_STRESS_ROUND_SECONDS (default 2),
# VQC_STRESS_ALONE_SECONDS (default a twentieth of the run, 2 to 60 s).
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}
JOBS=${JOBS:-$(nproc)}
export VQC_STRESS_SECONDS=${1:-3600}
export VQC_STRESS_THREADS=${2:-8}
alone=$((VQC_STRESS_SECONDS / 20))
[ "$alone" -ge 2 ] || alone=2
[ "$alone" -le 60 ] || alone=60
export VQC_STRESS_ALONE_SECONDS=${VQC_STRESS_ALONE_SECONDS:-$alone}
source "$ROOT/scripts/lib/packages.sh"
source "$ROOT/scripts/lib/wine-env.sh"
source "$ROOT/scripts/lib/build.sh"

install_missing_packages
build_windows
start_windows_test_environment

status=0
started=$SECONDS
"$WINE_LOADER" "$BUILD_DIR/windows/tests/shellext/thread_stress_tests.exe" \
  --gtest_filter='ThreadStress.IconThreadsBesideSheets*' >"$BUILD_DIR/soak-threads.log" 2>&1 || status=$?
grep -E '^thread stress|^  |^\[  (PASSED|FAILED)' "$BUILD_DIR/soak-threads.log" || true
echo "soak-threads: $((SECONDS - started)) s, status $status (whole output in $BUILD_DIR/soak-threads.log)"
exit $status
