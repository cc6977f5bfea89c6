# The project's Wine prefix for the scripts a user (or a test) runs by hand while other
# programs may use the same prefix: a display of our own only when there is none, and at exit
# only what was started here is stopped. Source after wine-env.sh; it replaces that file's
# exit trap, which stops the prefix's server.
# Environment: VQC_WINEPREFIX (default $BUILD_DIR/windows/wineprefix).

_vqc_leave_project_prefix() {
  # A server of our own ends a few seconds after our last program and saves the registry then.
  if [ -n "${VQC_OWN_SERVER:-}" ]; then timeout 60 wineserver -w >/dev/null 2>&1 || true; fi
  if [ -n "${VQC_XVFB_PID:-}" ]; then kill "$VQC_XVFB_PID" 2>/dev/null || true; fi
}

# The programs run on the user's display when there is one: the prefix's server and desktop
# may already serve it.
enter_project_prefix() {
  trap _vqc_leave_project_prefix EXIT
  [ -n "${DISPLAY:-}" ] || start_test_display
  export WINEPREFIX="${VQC_WINEPREFIX:-$BUILD_DIR/windows/wineprefix}"
  export WINEARCH=win64
  VQC_OWN_SERVER=""
  [ -n "$(wine_prefix_processes)" ] || VQC_OWN_SERVER=yes
  prepare_wine_prefix "$WINEPREFIX"
}

# A host path in the form Windows programs under Wine take it.
windows_path() {
  printf 'Z:%s' "$(realpath -m "$1" | tr / '\\')"
}
