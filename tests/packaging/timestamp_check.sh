#!/usr/bin/env bash
# Signing with a timestamp server, one of the test's own (timestamp_server.py, on 127.0.0.1,
# its certificate from the throwaway authority):
#   answers   it answers every request: every file inside the package and the package itself
#             carry a timestamp that verifies against the authority;
#   stops     it answers the three program files and then no more, so the package's own
#             signature fails after the files were signed: status 1, one line naming the
#             package and the server, and nothing in the output folder, signed or not.
#   timestamp_check.sh CASE ROOT VERSION DLL64 DLL32 TOOL
set -uo pipefail
case_name="$1" root="$2" version="$3" dll64="$4" dll32="$5" tool="$6"
fail() { echo "FAIL: $*"; exit 1; }
source "$root/tests/packaging/throwaway_ca.sh"
work=$(mktemp -d)
server=""
trap '[ -z "$server" ] || kill "$server" 2>/dev/null; rm -rf "$work"' EXIT
make_throwaway_ca "$work/ca" || fail "openssl could not make the throwaway certificate authority"

case "$case_name" in
  answers) answers=() ;;
  stops) answers=(3) ;;
  *) fail "unknown case $case_name" ;;
esac
python3 "$root/tests/packaging/timestamp_server.py" "$work/port" "$work/ca/tsa.cnf" "${answers[@]}" &
server=$!
for _ in $(seq 300); do [ -s "$work/port" ] && break; sleep 0.1; done
[ -s "$work/port" ] || fail "the timestamp server did not start"
url="http://127.0.0.1:$(cat "$work/port")/"

mkdir "$work/out"
status=0
VQC_SIGN_PKCS12="$work/ca/signer.p12" VQC_SIGN_PASSWORD_FILE="$work/ca/password" VQC_SIGN_TIMESTAMP_URL="$url" \
  bash "$root/packaging/signed_package.sh" "$version" "$dll64" "$dll32" "$tool" "$work/out" \
  >"$work/stdout" 2>"$work/stderr" || status=$?
echo "signed_package.sh said: $(cat "$work/stderr")"
package="$work/out/vqcprop64-$version-x64.msi"

if [ "$case_name" = stops ]; then
  [ "$status" -eq 1 ] || fail "signing must end with status 1, ended with $status"
  [ "$(wc -l <"$work/stderr")" -eq 1 ] || fail "the failure must be told in one line"
  grep -qF "signing failed: vqcprop64-$version-x64.msi: the timestamp server $url did not answer" "$work/stderr" ||
    fail "the message must name the package and the timestamp server"
  [ -z "$(find "$work/out" -mindepth 1)" ] || { find "$work/out"; fail "the output folder must stay empty"; }
  [ -z "$(find "$work" -maxdepth 1 -name '.vqc-signing.*')" ] || fail "the scratch folder must be removed"
  echo "PASS: the three files were timestamped, the package was not: status 1, nothing written"
  exit 0
fi

[ "$status" -eq 0 ] || fail "signing with a timestamp server that answers must succeed"
# timestamped FILE: the signature and its timestamp verify against the authority.
timestamped() {
  osslsigncode verify -CAfile "$work/ca/ca.pem" -TSA-CAfile "$work/ca/ca.pem" -in "$1" >"$work/verify.log" 2>&1 &&
    grep -qx 'Succeeded' "$work/verify.log" && grep -q 'Timestamp Server Signature verification: ok' "$work/verify.log" ||
    { cat "$work/verify.log"; fail "$(basename "$1") carries no timestamp that verifies"; }
}
msiextract -C "$work/msi" "$package" >/dev/null || fail "msiextract could not read $package"
for file in vqcprop64.dll vqcprop32.dll vqctool.exe; do
  path=$(find "$work/msi" -name "$file" | head -n1)
  [ -n "$path" ] || fail "the package holds no $file"
  timestamped "$path"
done
timestamped "$package"
echo "PASS: the three files and the package carry timestamps of $url that verify"
