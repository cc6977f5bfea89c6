#!/usr/bin/env bash
# A signature holds the file it signs: the signed vqcprop64.dll out of the signed package
# verifies as it is, and with one byte of its code changed it no longer does.
#   tampered_signature_check.sh ROOT SIGNING_DIR
set -uo pipefail
root="$1" signing="$2"
fail() { echo "FAIL: $*"; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
package=$(find "$signing/package" -name 'vqcprop64-*-x64.msi' | head -n1)
[ -n "$package" ] || fail "no signed package in $signing/package (signing_setup.sh makes it)"
msiextract -C "$work/msi" "$package" >/dev/null || fail "msiextract could not read $package"
dll=$(find "$work/msi" -name vqcprop64.dll | head -n1)
[ -n "$dll" ] || fail "the package holds no vqcprop64.dll"
osslsigncode verify -CAfile "$signing/ca/ca.pem" -in "$dll" >"$work/before.log" 2>&1 ||
  { cat "$work/before.log"; fail "the signed DLL must verify before it is changed"; }
# One byte in the middle of the first section (the code), which the signature's digest covers.
python3 - "$dll" <<'PY' || fail "could not change a byte of the DLL"
import struct, sys
path = sys.argv[1]
data = bytearray(open(path, "rb").read())
pe = struct.unpack_from("<I", data, 0x3C)[0]
optional_size = struct.unpack_from("<H", data, pe + 20)[0]
section = pe + 24 + optional_size
raw_size, raw_at = struct.unpack_from("<II", data, section + 16)
at = raw_at + raw_size // 2
data[at] ^= 0x01
open(path, "wb").write(data)
PY
if osslsigncode verify -CAfile "$signing/ca/ca.pem" -in "$dll" >"$work/after.log" 2>&1; then
  cat "$work/after.log"
  fail "a DLL with one byte changed must fail verification"
fi
grep -q 'MISMATCH' "$work/after.log" || { cat "$work/after.log"; fail "the failure must be the file's digest"; }
echo "PASS: one byte changed, the signature no longer verifies ($(grep -m1 MISMATCH "$work/after.log" | sed 's/  */ /g'))"
