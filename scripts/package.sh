#!/usr/bin/env bash
# Builds the installer package an administrator deploys, and a zip with the same files:
#   build/package/vqcprop64-<version>-x64.msi
#   build/package/vqcprop64-<version>-x64.zip  (vqcprop64-<version>-x64/vqcprop64.dll,
#                                               vqcprop32.dll, vqctool.exe)
# It builds vqcprop64.dll and vqctool.exe (build/windows) and vqcprop32.dll (the i686 tree,
# build/windows-x86) first when they are missing or out of date, then packages them with wixl
# from packaging/vqcprop64.wxs. The version is the file VERSION's, the one every file's
# version block and `vqctool --version` carry.
#   bash scripts/package.sh                    the version in the file VERSION
#   bash scripts/package.sh --version X.Y.Z    another version, built in trees of its own
#                                              (build/windows-X.Y.Z, build/windows-x86-X.Y.Z)
# Signing: with a certificate in the environment every file is signed before it is packed,
# then the package itself (packaging/signed_package.sh, which lists the variables):
#   VQC_SIGN_PKCS12 + VQC_SIGN_PASSWORD_FILE, or
#   VQC_SIGN_PKCS11_MODULE + VQC_SIGN_PKCS11_KEY + VQC_SIGN_CERT (+ VQC_SIGN_PASSWORD_FILE: the PIN),
#   and VQC_SIGN_TIMESTAMP_URL for either.
# A failed signing leaves no package of this version in build/package and exits with 1.
# Prints the two paths. Environment: BUILD_DIR (default ./build), JOBS (default: cores).
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}
JOBS=${JOBS:-$(nproc)}
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

signing=""
[ -z "${VQC_SIGN_PKCS12:-}${VQC_SIGN_PKCS11_MODULE:-}" ] || signing=yes

tree="$BUILD_DIR/windows${version_override:+-$version_override}"
tree32="$BUILD_DIR/windows-x86${version_override:+-$version_override}"
install_missing_packages
# The Windows presets with the one thing a preset cannot say: the version (empty: the file's).
build_windows_x86_dll "$tree32" -DVQC_VERSION_OVERRIDE="$version_override" >&2
dll32="$tree32/shellext/vqcprop32.dll"
configure_tree windows "$tree" -DVQC_VERSION_OVERRIDE="$version_override" -DVQC_DLL32_PATH="$dll32"
cmake --build "$tree" -j "$JOBS" --target vqcprop64_package >&2

version=$(cat "$tree/product-version.txt")
name="vqcprop64-$version-x64"
# Whatever happens below, no older file of this version stays to be taken for the new one.
mkdir -p "$BUILD_DIR/package"
rm -f "$BUILD_DIR/package/$name.msi" "$BUILD_DIR/package/$name.zip"
if [ -n "$signing" ]; then
  mapfile -t files <"$tree/package-files.txt"
  bash "$ROOT/packaging/signed_package.sh" "$version" "${files[@]}" "$BUILD_DIR/package" || {
    echo "package.sh: no package was written" >&2
    exit 1
  }
else
  echo "package.sh: no certificate given (VQC_SIGN_PKCS12 or VQC_SIGN_PKCS11_MODULE): the files and the package are not signed" >&2
  for suffix in msi zip; do
    cp "$tree/package/$name.$suffix" "$BUILD_DIR/package/"
  done
fi
for suffix in msi zip; do
  echo "$BUILD_DIR/package/$name.$suffix"
done
