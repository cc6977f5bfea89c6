# The builds of the tree: the Windows builds (MinGW-w64, 64-bit and 32-bit, tests under Wine)
# and the native build of the portable cores (clang with ASan, UBSan and the libFuzzer targets).
build_native() {
  cmake -S "$ROOT" -B "$BUILD_DIR/native" -G Ninja \
    -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVQC_WARNINGS_AS_ERRORS=ON >/dev/null
  cmake --build "$BUILD_DIR/native" -j "$JOBS"
}

# build_windows_tree FOLDER TOOLCHAIN: one Windows tree of the same sources.
build_windows_tree() {
  cmake -S "$ROOT" -B "$BUILD_DIR/$1" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/$2" \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVQC_WARNINGS_AS_ERRORS=ON >/dev/null
  cmake --build "$BUILD_DIR/$1" -j "$JOBS"
}

# The 64-bit tree (build/windows, vqcprop64.dll).
build_windows() { build_windows_tree windows mingw-w64-x86_64.cmake; }

# The 32-bit tree (build/windows-x86, vqcprop32.dll), whose tests run in the 64-bit tree's
# prefix.
build_windows_x86() { build_windows_tree windows-x86 mingw-w64-i686.cmake; }

# Xvfb, the prefix, the server and the helpers it starts on demand, all detached from our
# output; stopped when the calling script exits.
start_windows_test_environment() {
  start_test_display
  prepare_wine_prefix "$BUILD_DIR/windows/wineprefix"
  start_wine_server
  start_wine_helpers "$BUILD_DIR/windows/tests/harness/desktop_keeper.exe"
  check_wine_helpers_detached
}
