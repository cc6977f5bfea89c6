#!/usr/bin/env bash
# Builds everything and runs every test, on a fresh Debian 12 machine or a warm one:
#   1. installs what is missing (apt-get; needs root or sudo);
#   2. builds the Windows tree with MinGW-w64 and the portable cores natively with clang
#      under AddressSanitizer and UndefinedBehaviorSanitizer (plus the libFuzzer targets);
#   3. prepares a private 64-bit Wine prefix inside the build folder, starts Xvfb and a
#      persistent wineserver;
#   4. runs both test suites through ctest and exits non-zero on any failure.
# Environment: BUILD_DIR (default ./build), JOBS (default: number of cores).
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}
JOBS=${JOBS:-$(nproc)}
source "$ROOT/scripts/lib/packages.sh"
source "$ROOT/scripts/lib/wine-env.sh"

install_missing_packages

cmake -S "$ROOT" -B "$BUILD_DIR/native" -G Ninja \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVQC_WARNINGS_AS_ERRORS=ON >/dev/null
cmake --build "$BUILD_DIR/native" -j "$JOBS"

cmake -S "$ROOT" -B "$BUILD_DIR/windows" -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-x86_64.cmake" \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVQC_WARNINGS_AS_ERRORS=ON >/dev/null
cmake --build "$BUILD_DIR/windows" -j "$JOBS"

start_test_display
prepare_wine_prefix "$BUILD_DIR/windows/wineprefix"
start_wine_server

status=0
echo "== native portable core (ASan + UBSan, fuzzers) =="
ctest --test-dir "$BUILD_DIR/native" -j "$JOBS" --output-on-failure || status=1
echo "== Windows build under Wine =="
ctest --test-dir "$BUILD_DIR/windows" -j "$JOBS" --output-on-failure || status=1
exit $status
