#!/usr/bin/env bash
# Runs one Windows executable under 64-bit Wine in the given prefix.
# Used as CMake's cross-compiling emulator: wine-run.sh PREFIX PROGRAM [ARGS...]
set -euo pipefail
export WINEPREFIX="$1"
shift
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=;winemenubuilder.exe=d}"
exec /usr/lib/wine/wine64 "$@"
