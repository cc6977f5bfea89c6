#!/usr/bin/env bash
# Signing with a key on a PKCS#11 token, as with a hardware token: SoftHSM (Debian's softhsm2)
# holds the throwaway authority's code-signing key on a token of the test's own (its store in
# the test's scratch folder), and packaging/signed_package.sh gets the module, the key's URI,
# the certificate chain and a file with the PIN through the environment.
#   signs       every file inside the package and the package itself verify against the authority;
#   wrong-pin   a PIN the token refuses: status 1, one line naming the PIN, nothing written.
#   token_signing_check.sh CASE ROOT VERSION DLL64 DLL32 TOOL
set -uo pipefail
case_name="$1" root="$2" version="$3" dll64="$4" dll32="$5" tool="$6"
fail() { echo "FAIL: $*"; exit 1; }
source "$root/tests/packaging/throwaway_ca.sh"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
module=/usr/lib/softhsm/libsofthsm2.so
[ -f "$module" ] || fail "SoftHSM is not installed (softhsm2; scripts/lib/packages.sh installs it)"
make_throwaway_ca "$work/ca" || fail "openssl could not make the throwaway certificate authority"

mkdir "$work/tokens"
printf 'directories.tokendir = %s\nobjectstore.backend = file\nlog.level = ERROR\n' "$work/tokens" >"$work/softhsm2.conf"
export SOFTHSM2_CONF="$work/softhsm2.conf"
softhsm2-util --init-token --free --label vqc-test --pin 2468 --so-pin 13572468 >/dev/null ||
  fail "softhsm2-util could not make a token"
openssl pkcs8 -topk8 -nocrypt -in "$work/ca/signer.key" -out "$work/signer.pk8" || fail "openssl pkcs8 failed"
softhsm2-util --import "$work/signer.pk8" --token vqc-test --label release --id 01 --pin 2468 >/dev/null ||
  fail "softhsm2-util could not put the key on the token"
cat "$work/ca/signer.pem" "$work/ca/ca.pem" >"$work/chain.pem"
case "$case_name" in
  signs) echo 2468 >"$work/pin" ;;
  wrong-pin) echo 1111 >"$work/pin" ;;
  *) fail "unknown case $case_name" ;;
esac

mkdir "$work/out"
status=0
VQC_SIGN_PKCS11_MODULE="$module" VQC_SIGN_PKCS11_KEY='pkcs11:token=vqc-test;object=release' \
  VQC_SIGN_CERT="$work/chain.pem" VQC_SIGN_PASSWORD_FILE="$work/pin" \
  bash "$root/packaging/signed_package.sh" "$version" "$dll64" "$dll32" "$tool" "$work/out" \
  >"$work/stdout" 2>"$work/stderr" || status=$?
echo "signed_package.sh said: $(cat "$work/stderr")"

if [ "$case_name" = wrong-pin ]; then
  [ "$status" -eq 1 ] || fail "signing must end with status 1, ended with $status"
  [ "$(wc -l <"$work/stderr")" -eq 1 ] || fail "the failure must be told in one line"
  grep -qF "the token refused the PIN in VQC_SIGN_PASSWORD_FILE" "$work/stderr" || fail "the message must name the PIN"
  [ -z "$(find "$work/out" -mindepth 1)" ] || { find "$work/out"; fail "the output folder must stay empty"; }
  echo "PASS: a wrong PIN: status 1, one line naming it, nothing written"
  exit 0
fi

[ "$status" -eq 0 ] || fail "signing with the token must succeed"
package="$work/out/vqcprop64-$version-x64.msi"
msiextract -C "$work/msi" "$package" >/dev/null || fail "msiextract could not read $package"
for path in "$(find "$work/msi" -name vqcprop64.dll)" "$(find "$work/msi" -name vqcprop32.dll)" \
            "$(find "$work/msi" -name vqctool.exe)" "$package"; do
  [ -f "$path" ] || fail "the package lacks one of its three files"
  osslsigncode verify -CAfile "$work/ca/ca.pem" -in "$path" >"$work/verify.log" 2>&1 && grep -qx Succeeded "$work/verify.log" ||
    { cat "$work/verify.log"; fail "$(basename "$path") does not verify against the authority"; }
done
echo "PASS: signed with the key on the token: the three files and the package verify"
