#!/usr/bin/env bash
# Writes the ".vqc" file type into the project's Wine prefix as the VOXA client's installer
# writes it on Windows: ".vqc" names the type "VCLIENT", whose property-sheet handler and
# icon handler are vqcprop64's class and whose default icon is each file's own ("%1").
# The DLL never writes this itself; `regsvr32 /u` of the DLL deletes it.
# The rows are scripts/lib/file-type-association.reg.
#   bash scripts/associate.sh       write it
#   bash scripts/associate.sh -u    remove ".vqc" and "VCLIENT" with everything below them
# Environment: BUILD_DIR (default ./build), VQC_WINEPREFIX (default $BUILD_DIR/windows/wineprefix).
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}
source "$ROOT/scripts/lib/packages.sh"
source "$ROOT/scripts/lib/wine-env.sh"
source "$ROOT/scripts/lib/project-prefix.sh"
source "$ROOT/scripts/lib/association.sh"

case "$#:${1:-}" in
  0:) remove="" ;;
  1:-u) remove=yes ;;
  *) echo "usage: associate.sh [-u]" >&2; exit 2 ;;
esac

install_missing_packages
enter_project_prefix
if [ -n "$remove" ]; then
  remove_file_type_association
  echo "removed: HKEY_CLASSES_ROOT\\.vqc, HKEY_CLASSES_ROOT\\VCLIENT"
else
  write_file_type_association
  association_keys | sed 's/^HKCR/written: HKEY_CLASSES_ROOT/'
fi
