#!/usr/bin/env bash
# The signed vqcprop32.dll out of the signed package still loads and registers under 32-bit
# Wine: in a fresh prefix of its own, the 32-bit regsvr32 registers it into the 32-bit view
# (the class's server is the DLL where the package puts it) and writes no class into the
# 64-bit view; regsvr32 /u takes the class out of the 32-bit view again.
#   signed_dll32_check.sh ROOT PACKAGING_DIR SIGNING_DIR
set -uo pipefail
ROOT="$1" PACKAGING_DIR="$2" signing="$3"
package=$(find "$signing/package" -name 'vqcprop64-*-x64.msi' | head -n1)
source "$ROOT/tests/packaging/package_prefixes.sh"

msiextract -C "$work/msi" "$package" >/dev/null || fail "msiextract could not read $package"
dll=$(find "$work/msi" -name vqcprop32.dll | head -n1)
[ -n "$dll" ] || fail "the signed package holds no vqcprop32.dll"
osslsigncode verify -CAfile "$signing/ca/ca.pem" -in "$dll" >/dev/null 2>&1 || fail "the DLL under test must be the signed one"

prefix=$(new_prefix signed-dll32)
mkdir -p "$(install_folder32_of "$prefix")"
cp "$dll" "$(install_folder32_of "$prefix")/"
in_prefix "$prefix" "$REGSVR32_32BIT" /s "$INSTALL_FOLDER32_WINDOWS\\vqcprop32.dll" ||
  fail "the 32-bit regsvr32 could not load and register the signed vqcprop32.dll"
expect_server_in_view "$prefix" 32 "$INSTALL_FOLDER32_WINDOWS\\vqcprop32.dll"
our_keys_in_view "$prefix" 64 >"$work/view64"
if grep -iF "CLSID\\$CLASS_ID" "$work/view64"; then fail "the 32-bit DLL must write no class into the 64-bit view"; fi
in_prefix "$prefix" "$REGSVR32_32BIT" /s /u "$INSTALL_FOLDER32_WINDOWS\\vqcprop32.dll" ||
  fail "the 32-bit regsvr32 /u failed"
our_keys_in_view "$prefix" 32 >"$work/view32-after"
if grep -iF "CLSID\\$CLASS_ID" "$work/view32-after"; then fail "regsvr32 /u must take the class out of the 32-bit view"; fi
echo "PASS: the signed vqcprop32.dll registered into the 32-bit view and unregistered again"
