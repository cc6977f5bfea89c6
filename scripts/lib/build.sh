# The two builds of the tree: the Windows build (MinGW-w64, tests under Wine) and the native
# build of the portable cores (clang with ASan, UBSan and the libFuzzer targets). Each is
# configured by its preset in CMakePresets.json; the scripts only say where the tree goes.

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

build_windows() {
  configure_tree windows "$BUILD_DIR/windows"
  cmake --build "$BUILD_DIR/windows" -j "$JOBS"
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
