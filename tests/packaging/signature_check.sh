#!/usr/bin/env bash
# Every file inside the signed package (vqcprop64.dll, vqcprop32.dll, vqctool.exe, taken out
# with msiextract), the same files in the signed zip, and the package itself verify against the
# throwaway authority that signing_setup.sh made (osslsigncode verify -CAfile), and none of
# them against another authority.
#   signature_check.sh ROOT SIGNING_DIR
set -uo pipefail
root="$1" signing="$2"
fail() { echo "FAIL: $*"; exit 1; }
source "$root/tests/packaging/throwaway_ca.sh"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
package=$(find "$signing/package" -name 'vqcprop64-*-x64.msi' | head -n1)
zip=$(find "$signing/package" -name 'vqcprop64-*-x64.zip' | head -n1)
[ -n "$package" ] && [ -n "$zip" ] || fail "no signed package in $signing/package (signing_setup.sh makes it)"
make_throwaway_ca "$work/other" || fail "openssl could not make a second authority"

# verifies FILE CA: osslsigncode finds one signature, its chain ending in CA.
verifies() {
  osslsigncode verify -CAfile "$2" -in "$1" >"$work/verify.log" 2>&1 && grep -qx 'Succeeded' "$work/verify.log"
}
# expect_signed FILE: verifies against our authority, not against the other one.
expect_signed() {
  verifies "$1" "$signing/ca/ca.pem" || { cat "$work/verify.log"; fail "$(basename "$1") does not verify against the authority"; }
  grep -q 'Throwaway test publisher' "$work/verify.log" || fail "$(basename "$1") is not signed by the test's publisher"
  ! verifies "$1" "$work/other/ca.pem" || fail "$(basename "$1") verifies against another authority too"
}

msiextract -C "$work/msi" "$package" >/dev/null || fail "msiextract could not read $package"
(cd "$work" && mkdir zip && cd zip && unzip -q "$zip") || fail "unzip could not read $zip"
for from in msi zip; do
  count=0
  while IFS= read -r -d '' file; do
    # Every Windows program file in it: the ones that start with "MZ".
    [ "$(head -c2 "$file")" = MZ ] || continue
    expect_signed "$file"
    count=$((count + 1))
  done < <(find "$work/$from" -type f -print0)
  [ "$count" -eq 3 ] || fail "the $from must hold three signed program files, holds $count"
  for file in vqcprop64.dll vqcprop32.dll vqctool.exe; do
    [ -n "$(find "$work/$from" -name "$file")" ] || fail "the $from holds no $file"
  done
done
expect_signed "$package"
echo "PASS: the three files in the package and in the zip, and the package, verify against the authority"
