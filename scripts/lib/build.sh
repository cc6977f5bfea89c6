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

# build_windows_tree PRESET: one Windows tree of the same sources, in BUILD_DIR/PRESET.
build_windows_tree() {
  configure_tree "$1" "$BUILD_DIR/$1"
  cmake --build "$BUILD_DIR/$1" -j "$JOBS"
}

# The 64-bit tree (build/windows, vqcprop64.dll).
build_windows() { build_windows_tree windows; }

# The 32-bit tree (build/windows-x86, vqcprop32.dll), whose tests run in the 64-bit tree's
# prefix.
build_windows_x86() { build_windows_tree windows-x86; }

# Xvfb, the prefix, the server and the helpers it starts on demand, all detached from our
# output; stopped when the calling script exits.
start_windows_test_environment() {
  start_test_display
  prepare_wine_prefix "$BUILD_DIR/windows/wineprefix"
  start_wine_server
  start_wine_helpers "$BUILD_DIR/windows/tests/harness/desktop_keeper.exe"
  check_wine_helpers_detached
}
