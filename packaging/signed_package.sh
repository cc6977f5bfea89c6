#!/usr/bin/env bash
# Packages vqcprop64.dll, vqcprop32.dll and vqctool.exe signed with the administrator's
# certificate: every file is signed before it is packed (make_package.sh), then the .msi
# itself. Everything is made in a scratch folder beside OUT and moved into OUT only when all
# of it succeeded, so a failure leaves no package, signed in part or not at all.
#   signed_package.sh VERSION DLL64 DLL32 TOOL OUT
# The certificate comes from the environment, so that no secret shows in the process list:
#   VQC_SIGN_PKCS12          a .p12/.pfx file with the key and its certificate chain, and
#   VQC_SIGN_PASSWORD_FILE   a file holding its password;
# or
#   VQC_SIGN_PKCS11_MODULE   the token's PKCS#11 module (.so),
#   VQC_SIGN_PKCS11_KEY      the key on the token (a PKCS#11 URI or key id),
#   VQC_SIGN_CERT            the certificate chain (PEM), the signing certificate first,
#   VQC_SIGN_PASSWORD_FILE   (optional) a file holding the token's PIN;
# and for either
#   VQC_SIGN_TIMESTAMP_URL   (optional) an RFC 3161 timestamp server.
# Exit status 1 with one line naming what failed; 2 for a wrong command line.
set -uo pipefail
[ $# -eq 5 ] || { echo "usage: signed_package.sh VERSION DLL64 DLL32 TOOL OUT" >&2; exit 2; }
version="$1" dll64="$2" dll32="$3" tool="$4" out="$5"
here=$(cd "$(dirname "$0")" && pwd)
name="vqcprop64-$version-x64"

fail() { echo "signing failed: $*" >&2; exit 1; }

command -v osslsigncode >/dev/null || fail "osslsigncode is not installed (scripts/lib/packages.sh installs it)"
command -v openssl >/dev/null || fail "openssl is not installed"

scratch=""
trap '[ -z "$scratch" ] || rm -rf "$scratch"' EXIT
mkdir -p "$out" || fail "cannot create the output folder $out"
# Beside OUT, so that the finished files are renamed into place, not copied.
scratch=$(mktemp -d "$(cd "$out/.." && pwd)/.vqc-signing.XXXXXX") || fail "cannot create a scratch folder beside $out"

readable() { # readable VARIABLE WHAT
  local path="${!1:-}"
  [ -n "$path" ] || fail "$1 is not set ($2)"
  [ -f "$path" ] && [ -r "$path" ] || fail "$1: $2 $path does not exist or cannot be read"
}

# The signing certificate, PEM, into $scratch/leaf.pem; the osslsigncode arguments of the
# key into $scratch/key-arguments (one a line, read back into an array).
certificate_arguments=()
if [ -n "${VQC_SIGN_PKCS12:-}" ]; then
  [ -z "${VQC_SIGN_PKCS11_MODULE:-}" ] || fail "set either VQC_SIGN_PKCS12 or VQC_SIGN_PKCS11_MODULE, not both"
  readable VQC_SIGN_PKCS12 "the certificate file"
  readable VQC_SIGN_PASSWORD_FILE "the file holding the password of VQC_SIGN_PKCS12"
  # The password is read from its file (file:), never given on a command line.
  openssl pkcs12 -in "$VQC_SIGN_PKCS12" -passin "file:$VQC_SIGN_PASSWORD_FILE" -nokeys -clcerts \
      -out "$scratch/leaf.pem" 2>"$scratch/openssl.log" ||
    openssl pkcs12 -legacy -in "$VQC_SIGN_PKCS12" -passin "file:$VQC_SIGN_PASSWORD_FILE" -nokeys -clcerts \
      -out "$scratch/leaf.pem" 2>>"$scratch/openssl.log" || {
      if grep -qiE 'mac verify failure|invalid password|bad decrypt' "$scratch/openssl.log"; then
        fail "wrong password: VQC_SIGN_PASSWORD_FILE ($VQC_SIGN_PASSWORD_FILE) does not open VQC_SIGN_PKCS12 ($VQC_SIGN_PKCS12)"
      fi
      fail "VQC_SIGN_PKCS12 ($VQC_SIGN_PKCS12) is not a PKCS#12 file openssl can read: $(grep -m1 -i error "$scratch/openssl.log")"
    }
  certificate_arguments=(-pkcs12 "$VQC_SIGN_PKCS12" -readpass "$VQC_SIGN_PASSWORD_FILE")
elif [ -n "${VQC_SIGN_PKCS11_MODULE:-}" ]; then
  readable VQC_SIGN_PKCS11_MODULE "the PKCS#11 module"
  [ -n "${VQC_SIGN_PKCS11_KEY:-}" ] || fail "VQC_SIGN_PKCS11_KEY is not set (the key on the token)"
  readable VQC_SIGN_CERT "the certificate chain (PEM) of the key on the token"
  openssl x509 -in "$VQC_SIGN_CERT" -out "$scratch/leaf.pem" 2>"$scratch/openssl.log" ||
    fail "VQC_SIGN_CERT ($VQC_SIGN_CERT) holds no PEM certificate"
  certificate_arguments=(-pkcs11module "$VQC_SIGN_PKCS11_MODULE" -key "$VQC_SIGN_PKCS11_KEY" -certs "$VQC_SIGN_CERT")
  if [ -n "${VQC_SIGN_PASSWORD_FILE:-}" ]; then
    readable VQC_SIGN_PASSWORD_FILE "the file holding the token's PIN"
    certificate_arguments+=(-readpass "$VQC_SIGN_PASSWORD_FILE")
  fi
else
  fail "no certificate: set VQC_SIGN_PKCS12 (with VQC_SIGN_PASSWORD_FILE) or VQC_SIGN_PKCS11_MODULE, VQC_SIGN_PKCS11_KEY and VQC_SIGN_CERT"
fi

# osslsigncode signs with any certificate it is given; Windows would show an expired one's
# signatures as invalid, so such a certificate is refused here.
subject=$(openssl x509 -in "$scratch/leaf.pem" -noout -subject -nameopt oneline 2>/dev/null | sed 's/^subject= *//')
not_after=$(openssl x509 -in "$scratch/leaf.pem" -noout -enddate | sed 's/^notAfter=//')
not_before=$(openssl x509 -in "$scratch/leaf.pem" -noout -startdate | sed 's/^notBefore=//')
openssl x509 -in "$scratch/leaf.pem" -noout -checkend 0 >/dev/null ||
  fail "the certificate has expired: '$subject' was valid until $not_after"
[ "$(date -d "$not_before" +%s)" -le "$(date +%s)" ] ||
  fail "the certificate is not valid yet: '$subject' is valid from $not_before"
openssl x509 -in "$scratch/leaf.pem" -noout -ext extendedKeyUsage 2>/dev/null | grep -q 'Code Signing' ||
  fail "the certificate '$subject' is not for code signing (its extended key usage lacks codeSigning)"

timestamp_arguments=()
[ -z "${VQC_SIGN_TIMESTAMP_URL:-}" ] || timestamp_arguments=(-ts "$VQC_SIGN_TIMESTAMP_URL")
product_name=$(sed -n 's/^name=//p' "$here/product.txt")

# sign IN OUT: one file, the log of osslsigncode kept to name the cause of a failure.
sign() {
  local file="$1" signed="$2" log="$scratch/osslsigncode.log"
  if osslsigncode sign "${certificate_arguments[@]}" "${timestamp_arguments[@]}" -h sha256 \
      -n "$product_name" -in "$file" -out "$signed" >"$log" 2>&1; then
    return 0
  fi
  local what
  what=$(basename "$file")
  if [ -n "${VQC_SIGN_TIMESTAMP_URL:-}" ] && grep -qiE 'timestamp|Failed to get data' "$log"; then
    fail "$what: the timestamp server $VQC_SIGN_TIMESTAMP_URL did not answer: $(grep -m1 -iE 'failed|error' "$log")"
  fi
  if grep -qiE "load 'pkcs11' engine" "$log"; then
    fail "$what: OpenSSL has no PKCS#11 engine for VQC_SIGN_PKCS11_MODULE (Debian package libengine-pkcs11-openssl)"
  fi
  if grep -qiE 'PIN incorrect|Login failed' "$log"; then
    fail "$what: the token refused the PIN in VQC_SIGN_PASSWORD_FILE${VQC_SIGN_PASSWORD_FILE:+ ($VQC_SIGN_PASSWORD_FILE)}"
  fi
  if grep -qiE 'private key was not found' "$log"; then
    fail "$what: the token holds no key VQC_SIGN_PKCS11_KEY ($VQC_SIGN_PKCS11_KEY)"
  fi
  if grep -qiE 'wrong password|mac verify failure' "$log"; then
    fail "$what: wrong password in VQC_SIGN_PASSWORD_FILE"
  fi
  fail "$what: osslsigncode could not sign it: $(grep -m1 -iE 'failed|error|unable' "$log")"
}

mkdir "$scratch/files" "$scratch/package"
for file in "$dll64" "$dll32" "$tool"; do
  [ -f "$file" ] || fail "$file does not exist: build it first"
  sign "$file" "$scratch/files/$(basename "$file")"
done
bash "$here/make_package.sh" "$version" "$scratch/files/vqcprop64.dll" "$scratch/files/vqcprop32.dll" \
  "$scratch/files/$(basename "$tool")" "$scratch/package" >"$scratch/make_package.log" 2>&1 ||
  fail "packing the signed files failed: $(tail -n1 "$scratch/make_package.log")"
sign "$scratch/package/$name.msi" "$scratch/$name.msi"
mv "$scratch/package/$name.zip" "$scratch/$name.zip"

mkdir -p "$out"
rm -f "$out/$name.msi" "$out/$name.zip"
mv "$scratch/$name.zip" "$out/$name.zip" && mv "$scratch/$name.msi" "$out/$name.msi" ||
  { rm -f "$out/$name.msi" "$out/$name.zip"; fail "cannot move the signed package into $out"; }
echo "signed with '$subject'${VQC_SIGN_TIMESTAMP_URL:+, timestamped by $VQC_SIGN_TIMESTAMP_URL}" >&2
