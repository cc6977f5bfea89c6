#!/usr/bin/env bash
# Builds vqcprop64.dll and registers it with regsvr32 in the project's Wine prefix
# (build/windows/wineprefix), the way an installer registers it on Windows.
#   bash scripts/register.sh          build and register
#   bash scripts/register.sh -u       unregister
# VOXA_REGISTRATE_LOG_FILE, when set (a Windows path such as Z:\tmp\registration.log),
# names the file that receives a line for every registry write that failed.
# Do not run it while scripts/test.sh runs: both use the same prefix.
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}
source "$ROOT/scripts/lib/packages.sh"
source "$ROOT/scripts/lib/wine-env.sh"
source "$ROOT/scripts/lib/build.sh"

unregister=""
if [ "${1:-}" = "-u" ] || [ "${1:-}" = "/u" ]; then unregister="/u"; fi

install_missing_packages
configure_tree windows "$BUILD_DIR/windows"
cmake --build "$BUILD_DIR/windows" --target vqcprop

# Leave a wineserver that the tests keep running alone; only the display is ours to stop
# (start_test_display registers that).
start_test_display
prepare_wine_prefix "$BUILD_DIR/windows/wineprefix"

dll=$(windows_path "$BUILD_DIR/windows/shellext/vqcprop64.dll")
echo "regsvr32 $unregister $dll"
status=0
"$WINE_LOADER" regsvr32 /s $unregister "$dll" || status=$?
# A server of our own ends a few seconds after regsvr32 and saves the registry then.
timeout 60 wineserver -w || true
if [ $status -eq 0 ]; then
  if [ -z "$unregister" ]; then
    echo "registered: HKEY_CLASSES_ROOT\\CLSID\\{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}"
  else
    echo "unregistered"
  fi
fi
exit $status
