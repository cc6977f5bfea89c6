# The project's Wine prefix for the scripts a user (or a test) runs by hand while other
# programs may use the same prefix: a display of our own only when there is none, and at exit
# only what was started here is stopped (never a server that was already running).
# Source after wine-env.sh.
# Environment: VQC_WINEPREFIX (default $BUILD_DIR/windows/wineprefix).

# A server of our own ends a few seconds after our last program and saves the registry then.
_vqc_wait_for_own_server() {
  if [ -n "${VQC_OWN_SERVER:-}" ]; then timeout 60 wineserver -w >/dev/null 2>&1 || true; fi
}

# The programs run on the user's display when there is one: the prefix's server and desktop
# may already serve it.
enter_project_prefix() {
  [ -n "${DISPLAY:-}" ] || start_test_display
  # Registered after the display, so it runs before the display is stopped.
  on_exit _vqc_wait_for_own_server
  export WINEPREFIX="${VQC_WINEPREFIX:-$BUILD_DIR/windows/wineprefix}"
  export WINEARCH=win64
  VQC_OWN_SERVER=""
  [ -n "$(wine_prefix_processes)" ] || VQC_OWN_SERVER=yes
  prepare_wine_prefix "$WINEPREFIX"
}
