#!/usr/bin/env bash
# Signs the built files and their package with a certificate authority made for the test, as
# an administrator would with their own: a code-signing certificate in a .p12 file and a file
# holding its password, handed to packaging/signed_package.sh through the environment. The
# authority goes to SIGNING_DIR/ca, the package to SIGNING_DIR/package, for the tests that
# check the signatures and install the signed package.
#   signing_setup.sh ROOT SIGNING_DIR VERSION DLL64 DLL32 TOOL
set -uo pipefail
root="$1" signing="$2" version="$3" dll64="$4" dll32="$5" tool="$6"
fail() { echo "FAIL: $*"; exit 1; }
source "$root/tests/packaging/throwaway_ca.sh"
rm -rf "$signing"
make_throwaway_ca "$signing/ca" || fail "openssl could not make the throwaway certificate authority"
VQC_SIGN_PKCS12="$signing/ca/signer.p12" VQC_SIGN_PASSWORD_FILE="$signing/ca/password" \
  bash "$root/packaging/signed_package.sh" "$version" "$dll64" "$dll32" "$tool" "$signing/package" ||
  fail "signed_package.sh failed with status $?"
for suffix in msi zip; do
  [ -f "$signing/package/vqcprop64-$version-x64.$suffix" ] || fail "no signed vqcprop64-$version-x64.$suffix"
done
[ "$(find "$signing/package" -type f | wc -l)" -eq 2 ] || fail "the output folder must hold the .msi and the .zip only"
echo "PASS: signed package in $signing/package"
