#!/usr/bin/env bash
# The leak soaks at their full counts: 100,000 icon-handler cycles on three kinds of file
# and 200 sheets opened, edited on every page, applied and closed, in one load of the built
# DLL with the fault layer's books kept. Prints each soak's line: cycles, objects made by
# kind, what is left alive, and the C runtime heap's bytes in use after the first hundred
# cycles and at the end. The test command runs the same soaks with a few hundred cycles.
#   bash scripts/soak-leaks.sh [ICON_CYCLES [SHEET_CYCLES]]
# Builds what is missing first. Environment: BUILD_DIR (default ./build), JOBS.
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}
JOBS=${JOBS:-$(nproc)}
export VQC_SOAK_ICON_CYCLES=${1:-100000}
export VQC_SOAK_SHEET_CYCLES=${2:-200}
source "$ROOT/scripts/lib/packages.sh"
source "$ROOT/scripts/lib/wine-env.sh"
source "$ROOT/scripts/lib/build.sh"

install_missing_packages
build_windows
start_windows_test_environment

status=0
started=$SECONDS
"$WINE_LOADER" "$BUILD_DIR/windows/tests/shellext/leak_soak_tests.exe" --gtest_filter='LeakSoak.*' \
  >"$BUILD_DIR/soak-leaks.log" 2>&1 || status=$?
grep -E '^soak |^\[  (PASSED|FAILED)' "$BUILD_DIR/soak-leaks.log" || true
echo "soak-leaks: $((SECONDS - started)) s, status $status (whole output in $BUILD_DIR/soak-leaks.log)"
exit $status
