#!/usr/bin/env bash
# Builds everything and runs every test, on a fresh Debian 12 machine or a warm one:
#   1. installs what is missing (apt-get; needs root or sudo);
#   2. builds the Windows tree twice with MinGW-w64, 32-bit in build/windows-x86 (its DLL
#      first: the 64-bit tree's package holds it) and 64-bit in build/windows, and the
#      portable cores natively with clang under AddressSanitizer and
#      UndefinedBehaviorSanitizer (plus the libFuzzer targets);
#   3. prepares a private 64-bit Wine prefix inside the build folder (the 32-bit programs
#      run in it too), starts Xvfb, a persistent wineserver and the helpers Wine would
#      otherwise start on demand, all with their standard handles detached;
#   4. runs the three test suites through ctest, one after the other (the two Windows
#      suites share the prefix's registry), and exits non-zero on any failure.
# Environment: BUILD_DIR (default ./build), JOBS (default: number of cores).
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}
JOBS=${JOBS:-$(nproc)}
source "$ROOT/scripts/lib/packages.sh"
source "$ROOT/scripts/lib/wine-env.sh"
source "$ROOT/scripts/lib/build.sh"
source "$ROOT/scripts/lib/ctest-run.sh"
source "$ROOT/scripts/lib/shell-extension.sh"

install_missing_packages
build_native
build_windows
build_windows_x86
start_windows_test_environment
# The Korean, Japanese and Chinese pages under test get the glyphs a user's sheet gets.
link_cjk_fonts

status=0
echo "== native portable core (ASan + UBSan, fuzzers) =="
run_ctest_suite "$BUILD_DIR/native" "$BUILD_DIR/native-tests.log" || status=1
echo "== Windows build under Wine (64-bit) =="
run_ctest_suite "$BUILD_DIR/windows" "$BUILD_DIR/windows-tests.log" || status=1
echo "== Windows build under Wine (32-bit) =="
run_ctest_suite "$BUILD_DIR/windows-x86" "$BUILD_DIR/windows-x86-tests.log" || status=1
check_wine_helpers_detached || status=1
echo "== summary =="
suite_summary "native portable core" "$BUILD_DIR/native-tests.log"
suite_summary "Windows build under Wine (64-bit)" "$BUILD_DIR/windows-tests.log"
suite_summary "Windows build under Wine (32-bit)" "$BUILD_DIR/windows-x86-tests.log"
echo "  left out of the 32-bit suite (tests/CMakeLists.txt): $(paste -sd' ' "$BUILD_DIR/windows-x86/tests-left-out.txt")"
echo "the test command took $((SECONDS / 60)) min $((SECONDS % 60)) s"
exit $status
