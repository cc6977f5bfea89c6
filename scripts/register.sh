#!/usr/bin/env bash
# Builds the DLL and registers it with regsvr32 in the project's Wine prefix
# (build/windows/wineprefix), the way an installer registers it on Windows.
#   bash scripts/register.sh          build vqcprop64.dll and register it
#   bash scripts/register.sh -u       unregister it
#   bash scripts/register.sh --32     build vqcprop32.dll (build/windows-x86) and register it
#                                     with the 32-bit regsvr32, in the 32-bit registry view
#   bash scripts/register.sh --32 -u  unregister the 32-bit DLL
# Each DLL is registered in its own view; registering or unregistering one leaves the other.
# VOXA_REGISTRATE_LOG_FILE, when set (a Windows path such as Z:\tmp\registration.log),
# names the file that receives a line for every registry write that failed.
# Do not run it while scripts/test.sh runs: both use the same prefix.
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}
source "$ROOT/scripts/lib/packages.sh"
source "$ROOT/scripts/lib/wine-env.sh"
source "$ROOT/scripts/lib/build.sh"

unregister="" bits=64
for argument in "$@"; do
  case "$argument" in
    -u|/u) unregister="/u" ;;
    --32) bits=32 ;;
    *) echo "usage: register.sh [--32] [-u]" >&2; exit 2 ;;
  esac
done
if [ "$bits" = 32 ]; then
  preset=windows-x86
  regsvr32=("$WINE32_LOADER" 'C:\windows\syswow64\regsvr32.exe')
else
  preset=windows
  regsvr32=("$WINE_LOADER" regsvr32)
fi
tree="$BUILD_DIR/$preset"

install_missing_packages
configure_tree "$preset" "$tree"
cmake --build "$tree" --target vqcprop

# Leave a wineserver that the tests keep running alone; only the display is ours to stop
# (start_test_display registers that).
start_test_display
prepare_wine_prefix "$BUILD_DIR/windows/wineprefix"

dll=$(windows_path "$tree/shellext/vqcprop$bits.dll")
echo "regsvr32 ($bits-bit) $unregister $dll"
status=0
"${regsvr32[@]}" /s $unregister "$dll" || status=$?
# A server of our own ends a few seconds after regsvr32 and saves the registry then.
timeout 60 wineserver -w || true
if [ $status -eq 0 ]; then
  if [ -z "$unregister" ]; then
    echo "registered in the $bits-bit view: HKEY_CLASSES_ROOT\\CLSID\\{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}"
  else
    echo "unregistered from the $bits-bit view"
  fi
fi
exit $status
