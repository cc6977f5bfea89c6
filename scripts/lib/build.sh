# The builds of the tree: the Windows builds (MinGW-w64, 64-bit and 32-bit, tests under Wine)
# and the native build of the portable cores (clang with ASan, UBSan and the libFuzzer targets).
# Each is configured by its preset in CMakePresets.json; the scripts only say where the tree
# goes.

# configure_tree PRESET TREE [-DNAME=VALUE...]: configures TREE with PRESET. TREE is the
# preset's own folder (build/NAME) unless BUILD_DIR puts the builds elsewhere.
configure_tree() {
  local preset="$1" tree="$2"
  shift 2
  cmake -S "$ROOT" --preset "$preset" -B "$tree" "$@" >/dev/null
}

build_native() {
  configure_tree native "$BUILD_DIR/native"
  cmake --build "$BUILD_DIR/native" -j "$JOBS"
}

# The 64-bit tree's package holds the 32-bit DLL too: the i686 tree (build/windows-x86)
# builds it first, and the 64-bit tree is told where it is.
build_windows() {
  build_windows_x86_dll "$BUILD_DIR/windows-x86"
  configure_tree windows "$BUILD_DIR/windows" -DVQC_DLL32_PATH="$BUILD_DIR/windows-x86/shellext/vqcprop32.dll"
  cmake --build "$BUILD_DIR/windows" -j "$JOBS"
}

# build_windows_x86_dll TREE [CMAKE_ARGUMENTS...]: vqcprop32.dll in the i686 tree TREE.
build_windows_x86_dll() {
  local tree="$1"
  shift
  configure_tree windows-x86 "$tree" "$@"
  cmake --build "$tree" -j "$JOBS" --target vqcprop
}

# The whole 32-bit tree (build/windows-x86: vqcprop32.dll and the 32-bit programs and tests,
# which run in the 64-bit tree's prefix).
build_windows_x86() {
  configure_tree windows-x86 "$BUILD_DIR/windows-x86"
  cmake --build "$BUILD_DIR/windows-x86" -j "$JOBS"
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
