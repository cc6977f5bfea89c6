# The two builds of the tree: the Windows build (MinGW-w64, tests under Wine) and the native
# build of the portable cores (clang with ASan, UBSan and the libFuzzer targets).
build_native() {
  cmake -S "$ROOT" -B "$BUILD_DIR/native" -G Ninja \
    -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVQC_WARNINGS_AS_ERRORS=ON >/dev/null
  cmake --build "$BUILD_DIR/native" -j "$JOBS"
}

# The 64-bit tree's package holds the 32-bit DLL too: the i686 tree (build/windows-x86)
# builds it first, and the 64-bit tree is told where it is.
build_windows() {
  build_windows_x86_dll "$BUILD_DIR/windows-x86"
  cmake -S "$ROOT" -B "$BUILD_DIR/windows" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-x86_64.cmake" \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVQC_WARNINGS_AS_ERRORS=ON \
    -DVQC_DLL32_PATH="$BUILD_DIR/windows-x86/shellext/vqcprop32.dll" >/dev/null
  cmake --build "$BUILD_DIR/windows" -j "$JOBS"
}

# build_windows_x86_dll TREE [CMAKE_ARGUMENTS...]: vqcprop32.dll in the i686 tree TREE.
build_windows_x86_dll() {
  local tree="$1"
  shift
  cmake -S "$ROOT" -B "$tree" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-i686.cmake" \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVQC_WARNINGS_AS_ERRORS=ON "$@" >/dev/null
  cmake --build "$tree" -j "$JOBS" --target vqcprop
}

# Xvfb, the prefix, the server and the helpers it starts on demand, all detached from our
# output; stopped when the calling script exits.
start_windows_test_environment() {
  start_test_display
  prepare_wine_prefix "$BUILD_DIR/windows/wineprefix"
  start_wine_server
  start_wine_helpers "$BUILD_DIR/windows/tests/harness/desktop_keeper.exe"
  check_wine_helpers_detached
}
