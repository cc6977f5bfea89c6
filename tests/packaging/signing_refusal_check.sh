#!/usr/bin/env bash
# A signing that cannot succeed ends with status 1, a message naming what failed, and no file
# in the output folder (nor a scratch folder left beside it):
#   wrong-password     the .p12 file with a password file that does not open it
#   expired            a certificate that expired in 2020
#   timestamp          a timestamp server that does not answer (a closed port)
#   signing_refusal_check.sh CASE ROOT VERSION DLL64 DLL32 TOOL
set -uo pipefail
case_name="$1" root="$2" version="$3" dll64="$4" dll32="$5" tool="$6"
fail() { echo "FAIL: $*"; exit 1; }
source "$root/tests/packaging/throwaway_ca.sh"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
make_throwaway_ca "$work/ca" || fail "openssl could not make the throwaway certificate authority"

p12="$work/ca/signer.p12" password="$work/ca/password" timestamp=""
case "$case_name" in
  wrong-password) password="$work/ca/wrong-password"; expected="wrong password" ;;
  expired) p12="$work/ca/expired.p12"; expected="the certificate has expired: .*Throwaway test publisher.* was valid until Feb  1 00:00:00 2020 GMT" ;;
  # Port 9 (discard) has no listener here: the connection is refused at once.
  timestamp) timestamp="http://127.0.0.1:9/"; expected="the timestamp server http://127.0.0.1:9/ did not answer" ;;
  *) fail "unknown case $case_name" ;;
esac

mkdir "$work/out"
status=0
VQC_SIGN_PKCS12="$p12" VQC_SIGN_PASSWORD_FILE="$password" VQC_SIGN_TIMESTAMP_URL="$timestamp" \
  bash "$root/packaging/signed_package.sh" "$version" "$dll64" "$dll32" "$tool" "$work/out" \
  >"$work/stdout" 2>"$work/stderr" || status=$?
echo "signed_package.sh said: $(cat "$work/stderr")"
[ "$status" -eq 1 ] || fail "signing must end with status 1, ended with $status"
[ "$(wc -l <"$work/stderr")" -eq 1 ] || fail "the failure must be told in one line"
grep -qE "^signing failed: .*$expected" "$work/stderr" || fail "the message must name what failed ('$expected')"
[ -z "$(find "$work/out" -mindepth 1)" ] || { find "$work/out"; fail "the output folder must stay empty"; }
[ -z "$(find "$work" -maxdepth 1 -name '.vqc-signing.*')" ] || fail "the scratch folder must be removed"
echo "PASS: $case_name: status 1, one line naming it, nothing written"
