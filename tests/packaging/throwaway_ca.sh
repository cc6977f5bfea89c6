# Sourced by the signing tests: make_throwaway_ca DIR makes, with openssl, a certificate
# authority of the test's own and what an administrator would hand package.sh:
#   DIR/ca.pem              the authority's certificate (what verification trusts)
#   DIR/signer.p12          a code-signing certificate (extendedKeyUsage codeSigning) issued
#                           by it, with its key, under the password in
#   DIR/password            (and a password that does not open it in DIR/wrong-password)
#   DIR/expired.p12         the same with a certificate that expired in 2020 (same password)
#   DIR/tsa.cnf             an RFC 3161 timestamp authority's `openssl ts` configuration, its
#                           timestamping certificate issued by the same authority
# Nothing of it is kept: the keys are made anew for every test.
make_throwaway_ca() {
  local dir="$1"
  mkdir -p "$dir/issued"
  : >"$dir/index.txt"
  echo 1000 >"$dir/serial"
  cat >"$dir/ca.cnf" <<CONFIG
[ca]
default_ca = throwaway
[throwaway]
database = $dir/index.txt
serial = $dir/serial
new_certs_dir = $dir/issued
certificate = $dir/ca.pem
private_key = $dir/ca.key
default_md = sha256
policy = any_name
unique_subject = no
[any_name]
commonName = supplied
organizationName = optional
[code_signing]
basicConstraints = CA:FALSE
keyUsage = critical, digitalSignature
extendedKeyUsage = codeSigning
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid
[time_stamping]
basicConstraints = CA:FALSE
keyUsage = critical, digitalSignature
extendedKeyUsage = critical, timeStamping
CONFIG
  openssl req -x509 -newkey rsa:2048 -nodes -keyout "$dir/ca.key" -out "$dir/ca.pem" -days 2 \
    -subj "/CN=Throwaway test authority" -addext "basicConstraints=critical,CA:TRUE" \
    -addext "keyUsage=critical,keyCertSign,cRLSign" >/dev/null 2>&1 || return 1
  openssl req -new -newkey rsa:2048 -nodes -keyout "$dir/signer.key" -out "$dir/signer.csr" \
    -subj "/CN=Throwaway test publisher/O=Marrowby" >/dev/null 2>&1 || return 1
  local today_start
  today_start=$(date -u -d '1 hour ago' +%Y%m%d%H%M%SZ)
  openssl ca -batch -config "$dir/ca.cnf" -extensions code_signing -startdate "$today_start" -days 2 \
    -in "$dir/signer.csr" -out "$dir/signer.pem" >/dev/null 2>&1 || return 1
  openssl ca -batch -config "$dir/ca.cnf" -extensions code_signing \
    -startdate 20200101000000Z -enddate 20200201000000Z \
    -in "$dir/signer.csr" -out "$dir/expired.pem" >/dev/null 2>&1 || return 1
  openssl req -new -newkey rsa:2048 -nodes -keyout "$dir/tsa.key" -out "$dir/tsa.csr" \
    -subj "/CN=Throwaway test timestamps" >/dev/null 2>&1 || return 1
  openssl ca -batch -config "$dir/ca.cnf" -extensions time_stamping -startdate "$today_start" -days 2 \
    -in "$dir/tsa.csr" -out "$dir/tsa.pem" >/dev/null 2>&1 || return 1
  echo 01 >"$dir/tsa-serial"
  cat >"$dir/tsa.cnf" <<CONFIG
[tsa]
default_tsa = throwaway_tsa
[throwaway_tsa]
serial = $dir/tsa-serial
signer_cert = $dir/tsa.pem
certs = $dir/ca.pem
signer_key = $dir/tsa.key
signer_digest = sha256
default_policy = 1.2.3.4.1
other_policies = 1.2.3.4.2
digests = sha256, sha384, sha512
accuracy = secs:1
ordering = no
tsa_name = no
ess_cert_id_chain = no
ess_cert_id_alg = sha256
CONFIG
  echo "throwaway-$RANDOM-$RANDOM" >"$dir/password"
  echo "not-the-password" >"$dir/wrong-password"
  openssl pkcs12 -export -inkey "$dir/signer.key" -in "$dir/signer.pem" -certfile "$dir/ca.pem" \
    -passout "file:$dir/password" -out "$dir/signer.p12" || return 1
  openssl pkcs12 -export -inkey "$dir/signer.key" -in "$dir/expired.pem" -certfile "$dir/ca.pem" \
    -passout "file:$dir/password" -out "$dir/expired.p12" || return 1
}
