#!/usr/bin/env bash
# Builds the installer package an administrator deploys, and a zip with the same files:
#   build/package/vqcprop64-<version>-x64.msi
#   build/package/vqcprop64-<version>-x64.zip  (vqcprop64-<version>-x64/vqcprop64.dll, vqctool.exe)
# It builds vqcprop64.dll and vqctool.exe first when they are missing or out of date, then
# packages them with wixl from packaging/vqcprop64.wxs. The version is the file VERSION's,
# the one the DLL's version block and `vqctool --version` carry.
#   bash scripts/package.sh                    the version in the file VERSION
#   bash scripts/package.sh --version X.Y.Z    another version, built in a tree of its own
#                                              (build/windows-X.Y.Z), never in build/windows
# Prints the two paths. Environment: BUILD_DIR (default ./build).
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}
source "$ROOT/scripts/lib/packages.sh"
source "$ROOT/scripts/lib/build.sh"

version_override=""
case "$#:${1:-}" in
  0:) ;;
  2:--version)
    [[ "$2" =~ ^[0-9]+\.[0-9]+\.[0-9]+$ ]] || { echo "package.sh: --version $2: not MAJOR.MINOR.PATCH" >&2; exit 2; }
    version_override=$2 ;;
  *) echo "usage: package.sh [--version X.Y.Z]" >&2; exit 2 ;;
esac

tree="$BUILD_DIR/windows${version_override:+-$version_override}"
install_missing_packages
if [ -z "$version_override" ]; then
  configure_tree windows "$tree"
else
  # The Windows preset with the one thing a preset cannot say: the version.
  configure_tree windows "$tree" -DVQC_VERSION_OVERRIDE="$version_override"
fi
cmake --build "$tree" --target vqcprop64_package >&2

name="vqcprop64-$(cat "$tree/product-version.txt")-x64"
mkdir -p "$BUILD_DIR/package"
for suffix in msi zip; do
  cp "$tree/package/$name.$suffix" "$BUILD_DIR/package/"
  echo "$BUILD_DIR/package/$name.$suffix"
done
