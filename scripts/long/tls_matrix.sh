#!/bin/bash
# Opens what OpenSSL and GnuTLS say to each other: every pair of their clients and servers, every version that they speak and
# every suite that they have, TLS and DTLS, recorded into a temporary folder with the secrets of all. scripts/oracle_tls.py
# compares what qxview and tshark open of that; then the pages that clients got are counted against those that were opened.
#
#   scripts/long/tls_matrix.sh [FOLDER]    the recording and its secrets stay in FOLDER; about five minutes, as root
#
# shellcheck source-path=SCRIPTDIR source=../../samples/record/hosts.sh
. "$(dirname "$0")/../../samples/record/hosts.sh"
need openssl gnutls-cli gnutls-serv tshark python3
qxview=$(cd "$here/../.." && pwd -P)/build/qxview
cd "$work"
readonly secrets=$work/keys.log all='ALL:eNULL:@SECLEVEL=0'
touch "$secrets"

{
  openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -keyout ec.key -out ec.pem -days 365 -subj /CN=right.test
  openssl req -x509 -newkey rsa:2048 -nodes -keyout rsa.key -out rsa.pem -days 365 -subj /CN=right.test
  openssl dsaparam -genkey -out dsa.key 2048
  openssl req -x509 -new -key dsa.key -nodes -out dsa.pem -days 365 -subj /CN=right.test
} 2>>errors
echo 'Hello, reader of records.' >page

connect_hosts
openssl_server() { start_on "$right" openssl s_server -cipher "$all" -keylogfile "$secrets" -psk 00112233445566778899aabbccddeeff "$@"; }
suites13=TLS_AES_128_GCM_SHA256:TLS_AES_256_GCM_SHA384:TLS_CHACHA20_POLY1305_SHA256:TLS_AES_128_CCM_SHA256:TLS_AES_128_CCM_8_SHA256
openssl_server -accept 443 -WWW -cert ec.pem -key ec.key -dcert rsa.pem -dkey rsa.key -ciphersuites "$suites13"
openssl_server -accept 8443 -WWW -cert dsa.pem -key dsa.key
readonly gnutls_all=NORMAL:+VERS-ALL:+CIPHER-ALL:+MAC-ALL:+KX-ALL:+ARCFOUR-128:+3DES-CBC:+MD5:%VERIFY_ALLOW_BROKEN:%COMPAT
echo guest:00112233445566778899aabbccddeeff >psk.txt
SSLKEYLOGFILE=$secrets start_on "$right" gnutls-serv --http --quiet --port 9443 --x509certfile ec.pem --x509keyfile ec.key \
  --x509certfile rsa.pem --x509keyfile rsa.key --pskpasswd psk.txt --priority "$gnutls_all"
for port in 443 8443 9443; do await_port "$port"; done
record cable tcp or udp
pages=0 asked=0

# Arguments of the client; counts the pages that came.
count() { asked=$((asked + 1)); if grep -q '^HTTP/1.0 200' answer; then pages=$((pages + 1)); else echo "refused: $*" >>refused; fi; }
ask_openssl() {
  printf 'GET /page HTTP/1.0\r\nHost: right.test\r\n\r\n' |
    on "$left" timeout 5 openssl s_client -cipher "$all" -psk 00112233445566778899aabbccddeeff -psk_identity guest \
      -keylogfile "$secrets" -ign_eof "$@" >answer 2>>errors || true
  count openssl "$@"
}
ask_gnutls() {
  { printf 'GET /page HTTP/1.0\r\n\r\n'; sleep 0.4; } |
    SSLKEYLOGFILE=$secrets on "$left" timeout 5 gnutls-cli --insecure --pskusername guest --pskkey 00112233445566778899aabbccddeeff \
      --port "$1" --priority "$2" 192.0.2.2 >answer 2>>errors || true
  count gnutls "$@"
}

# OpenSSL's client: its suites by version at its own server, some at GnuTLS'.
while read -r suite version kx _; do
  case $version in
    TLSv1.3) ask_openssl -connect 192.0.2.2:443 -tls1_3 -ciphersuites "$suite"
             ask_openssl -connect 192.0.2.2:9443 -tls1_3 -ciphersuites "$suite";;
    *) port=443
       [[ $suite == *DSS* ]] && port=8443
       ask_openssl -connect "192.0.2.2:$port" -tls1_2 -cipher "$suite:@SECLEVEL=0"
       [[ $port == 443 && $kx != *SRP* ]] && ask_openssl -connect 192.0.2.2:9443 -tls1_2 -cipher "$suite:@SECLEVEL=0"
       [[ $version == TLSv1.2 ]] || for old in -tls1 -tls1_1; do
         ask_openssl -connect "192.0.2.2:$port" "$old" -cipher "$suite:@SECLEVEL=0"
       done;;
  esac
done < <(openssl ciphers -v "$all" | awk '{ print $1, $2, $3 }')

# GnuTLS' client: ciphers and codes at both servers, with the code inside of the encryption and around it.
for version in 1.0 1.1 1.2; do
  for cipher in AES-128-CBC AES-256-CBC CAMELLIA-128-CBC CAMELLIA-256-CBC 3DES-CBC ARCFOUR-128; do
    for more in '' :%NO_ETM; do
      for port in 443 9443; do
        ask_gnutls "$port" "$gnutls_all:-VERS-ALL:+VERS-TLS$version:-CIPHER-ALL:+$cipher$more"
      done
    done
  done
done
for cipher in AES-128-GCM AES-256-GCM CAMELLIA-128-GCM CAMELLIA-256-GCM AES-128-CCM AES-256-CCM AES-128-CCM-8 AES-256-CCM-8 \
  CHACHA20-POLY1305; do
  for version in 1.2 1.3; do
    for port in 443 9443; do ask_gnutls "$port" "$gnutls_all:-VERS-ALL:+VERS-TLS$version:-CIPHER-ALL:+$cipher"; done
  done
done

# Datagrams: lines to a server that says nothing, or them again.
ask_datagrams() { { echo 'A line in a datagram.'; sleep 0.3; } | on "$left" timeout 3 "$@" >>errors 2>&1 || true; }
openssl_server -dtls -accept 4433 -cert ec.pem -key ec.key -dcert rsa.pem -dkey rsa.key -quiet
SSLKEYLOGFILE=$secrets start_on "$right" gnutls-serv --echo --udp --quiet --port 5684 --x509certfile ec.pem --x509keyfile ec.key \
  --x509certfile rsa.pem --x509keyfile rsa.key --priority "$gnutls_all"
sleep 0.5
for port in 4433 5684; do
  for suite in ECDHE-ECDSA-AES128-GCM-SHA256 ECDHE-RSA-AES256-GCM-SHA384 ECDHE-ECDSA-CHACHA20-POLY1305 AES128-CCM8 \
    ECDHE-ECDSA-AES128-SHA256 ECDHE-RSA-AES256-SHA384 AES128-SHA; do
    ask_datagrams openssl s_client -dtls1_2 -connect "192.0.2.2:$port" -cipher "$suite:@SECLEVEL=0" -keylogfile "$secrets"
  done
  ask_datagrams openssl s_client -dtls1 -connect "192.0.2.2:$port" -cipher AES256-SHA:@SECLEVEL=0 -keylogfile "$secrets"
  for cipher in AES-128-GCM AES-256-CCM-8 CHACHA20-POLY1305 AES-128-CBC AES-128-CBC:%NO_ETM CAMELLIA-256-GCM; do
    ask_datagrams env SSLKEYLOGFILE="$secrets" gnutls-cli --insecure --udp --port "$port" \
      --priority "$gnutls_all:-VERS-ALL:+VERS-DTLS1.2:-CIPHER-ALL:+$cipher" 192.0.2.2
  done
done

samples=$work keep_as matrix.pcap
sort -u "$secrets" -o "$secrets"
if [[ $# -gt 0 ]]; then
  mkdir -p "$1"
  cp matrix.pcap keys.log errors "$1"
  [[ ! -e refused ]] || cp refused "$1"
fi
opened=$("$qxview" decode --set "TlsKeyLog=$secrets" -d tcp:9443=TLS -d tcp:8443=TLS matrix.pcap | grep -c '  Status Line: HTTP/1.0 200' || true)
echo "$pages pages of $asked asked for came, $opened were opened; $(wc -l <"$secrets") secrets"
python3 "$here/../../scripts/oracle_tls.py" --key-log "$secrets" matrix.pcap
((opened >= pages))
