#!/bin/bash
# tls_keys.pcapng: OpenSSL's and GnuTLS' clients against OpenSSL's server, a page fetched under each kind of cipher and every
# version from TLS 1.0 on, data before the handshake, keys renewed, and DTLS; the secrets of all in the capture itself.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need openssl gnutls-cli editcap

cd "$work"
readonly log=$work/keys.log
echo 'Hello, reader of records.' >page
openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -keyout ec.key -out ec.pem -days 3650 -subj /CN=right.test 2>>"$work/log"
openssl req -x509 -newkey rsa:1024 -nodes -keyout rsa.key -out rsa.pem -days 3650 -subj /CN=right.test 2>>"$work/log"

connect_hosts
serve() { start_on "$right" openssl s_server -cert ec.pem -key ec.key -dcert rsa.pem -dkey rsa.key -cipher 'ALL:eNULL:@SECLEVEL=0' -keylogfile "$log" "$@"; }
suites13=TLS_AES_128_GCM_SHA256:TLS_AES_256_GCM_SHA384:TLS_CHACHA20_POLY1305_SHA256:TLS_AES_128_CCM_SHA256:TLS_AES_128_CCM_8_SHA256
serve -accept 443 -WWW -no_ticket -ciphersuites "$suites13"
serve -accept 8443 -WWW -num_tickets 1 -ciphersuites "$suites13" -alpn http/1.1
start_on "$right" gnutls-serv --echo --earlydata --port 9443 --x509certfile ec.pem --x509keyfile ec.key
start_on "$right" gnutls-serv --echo --udp --port 4433 --x509certfile ec.pem --x509keyfile ec.key
await_port 443
record cable port 443 or port 8443 or port 9443 or port 4433

# Version and suite, and further options.
fetch() {
  printf 'GET /page HTTP/1.0\r\nHost: right.test\r\n\r\n' |
    on "$left" timeout 5 openssl s_client -connect 192.0.2.2:443 -cipher 'ALL:eNULL:@SECLEVEL=0' -ign_eof "$@" >>"$work/log" 2>&1 || true
}
fetch -tls1_3 -ciphersuites TLS_AES_128_GCM_SHA256
fetch -tls1_3 -ciphersuites TLS_AES_256_GCM_SHA384
fetch -tls1_3 -ciphersuites TLS_CHACHA20_POLY1305_SHA256 -connect 192.0.2.2:8443 -alpn http/1.1
fetch -tls1_3 -ciphersuites TLS_AES_128_CCM_8_SHA256
for suite in ECDHE-ECDSA-AES128-GCM-SHA256 ECDHE-RSA-AES256-GCM-SHA384 ECDHE-ECDSA-CHACHA20-POLY1305 ECDHE-ECDSA-AES256-CCM8 \
  ECDHE-ECDSA-AES128-SHA256 ECDHE-ECDSA-AES256-SHA384 CAMELLIA128-SHA ARIA128-GCM-SHA256 NULL-SHA256; do
  fetch -tls1_2 -cipher "$suite:@SECLEVEL=0"
done
fetch -tls1_1 -cipher AES128-SHA:@SECLEVEL=0
fetch -tls1 -cipher AES256-SHA:@SECLEVEL=0

# GnuTLS: codes inside the encryption, which OpenSSL does not offer to leave off.
fetch_gnutls() {
  { printf 'GET /page HTTP/1.0\r\n\r\n'; sleep 1; } |
    SSLKEYLOGFILE=$log on "$left" timeout 5 gnutls-cli --insecure --port 443 --priority "$1" 192.0.2.2 >>"$work/log" 2>&1 || true
}
fetch_gnutls 'NORMAL:-VERS-ALL:+VERS-TLS1.2:-CIPHER-ALL:+AES-128-CBC:+SHA1:%NO_ETM'
fetch_gnutls 'NORMAL:-VERS-ALL:+VERS-TLS1.0:-CIPHER-ALL:+AES-128-CBC:+SHA1:%NO_ETM'

# A line with a K has OpenSSL's client renew the keys of both ends.
{ sleep 0.5; echo K; sleep 0.3; printf 'GET /page HTTP/1.0\r\nHost: renewed.test\r\n\r\n'; sleep 1; } |
  on "$left" timeout 5 openssl s_client -connect 192.0.2.2:443 -tls1_3 >>"$work/log" 2>&1 || true

printf 'Hello before the handshake\r\n' >early
{ sleep 2; echo 'Hello behind it'; sleep 0.5; } | SSLKEYLOGFILE=$log on "$left" timeout 9 gnutls-cli --insecure --port 9443 --resume \
  --earlydata early --waitresumption --priority NORMAL:-VERS-ALL:+VERS-TLS1.3 192.0.2.2 >>"$work/log" 2>&1 || true

for ciphers in AES-128-GCM AES-128-CBC:%NO_ETM CHACHA20-POLY1305 AES-256-CCM; do
  { echo 'Hello over datagrams'; sleep 0.5; } |
    SSLKEYLOGFILE=$log on "$left" timeout 3 gnutls-cli --insecure --udp --port 4433 \
      --priority "NORMAL:-VERS-ALL:+VERS-DTLS1.2:-CIPHER-ALL:+$ciphers" 192.0.2.2 >>"$work/log" 2>&1 || true
done

keep_as tls_keys.pcap
sort -u "$log" -o "$log"
editcap --inject-secrets "tls,$log" -F pcapng "$samples/tls_keys.pcap" "$samples/tls_keys.pcapng"
rm "$samples/tls_keys.pcap"
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
