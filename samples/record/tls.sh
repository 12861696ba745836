#!/bin/bash
# tls.pcap: handshakes of TLS 1.0 to 1.3 with certificates of servers and clients, elliptic and RSA, a stapled status, another
# hello asked for, pre-shared keys, a ticket used again, a refusal; a certificate's status asked for over HTTP; mail that
# goes over to TLS; and DTLS whose messages come in fragments.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need openssl gnutls-cli gnutls-serv python3

cd "$work"
openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -keyout ca.key -out ca.pem -days 3650 \
  -subj '/C=XX/O=Sample/CN=Sample CA' 2>>log
cat >leaf.conf <<'CONFIG'
subjectAltName = DNS:server.example, IP:192.0.2.2, URI:https://server.example/, email:keeper@server.example
keyUsage = critical, digitalSignature, keyEncipherment
extendedKeyUsage = serverAuth, clientAuth
certificatePolicies = 2.23.140.1.2.1
authorityInfoAccess = OCSP;URI:http://ocsp.example/
crlDistributionPoints = URI:http://crl.example/sample.crl
tlsfeature = status_request
CONFIG
leaf() {
  local kind=$1 serial=$2; shift 2
  openssl req "$@" -nodes -keyout "$kind.key" -out "$kind.csr" -subj "/C=XX/O=Sample/CN=$kind.server.example" 2>>log
  openssl x509 -req -in "$kind.csr" -CA ca.pem -CAkey ca.key -set_serial "0x$serial" -days 3650 -extfile leaf.conf \
    -out "$kind.pem" 2>>log
}
leaf rsa 1001 -newkey rsa:1024
leaf ec 1002 -newkey ec -pkeyopt ec_paramgen_curve:P-256
leaf ed25519 1003 -newkey ed25519
printf 'V\t360101000000Z\t\t1002\tunknown\t/CN=ec\nR\t360101000000Z\t260102030405Z,keyCompromise\t1001\tunknown\t/CN=rsa\n' >index
openssl ocsp -index index -CA ca.pem -rsigner ca.pem -rkey ca.key -issuer ca.pem -cert ec.pem -reqout ask.der >>log 2>&1
openssl ocsp -index index -CA ca.pem -rsigner ca.pem -rkey ca.key -reqin ask.der -respout status.der -ndays 7 >>log 2>&1

serve() {
  local kind=$1; shift
  start_on "$right" openssl s_server -rev -accept 443 -cert "$kind.pem" -key "$kind.key" "$@"
  server=$!
  await_port 443
}
ask() {
  printf 'A line to turn around.\n' | on "$left" timeout 5 openssl s_client -connect 192.0.2.2:443 -servername server.example \
    "$@" >>log 2>&1 &
  local client=$!
  sleep 0.6
  kill "$client" 2>/dev/null || true
  wait "$client" 2>/dev/null || true
}
stop() { kill "$server" 2>/dev/null || true; wait "$server" 2>/dev/null || true; }

connect_hosts
record cable port 443 or port 80 or port 5684 or port 25
serve ec -num_tickets 1 -status_file status.der -alpn h2
ask -tls1_2 -status -alpn h2,http/1.1
ask -tls1_3 -no_middlebox
stop
serve ed25519 -groups P-384 -num_tickets 0
ask -tls1_3 -groups X25519:P-384
stop
serve rsa -cipher ALL:@SECLEVEL=0 -Verify 1 -CAfile ca.pem
ask -cert ec.pem -key ec.key -tls1 -cipher AES128-SHA:@SECLEVEL=0
ask -cert ec.pem -key ec.key -tls1_2 -cipher DHE-RSA-AES256-SHA256:@SECLEVEL=0
stop
serve rsa -cipher ALL:@SECLEVEL=0 -psk 00112233445566778899aabbccddeeff -psk_hint sample -no_tls1_3
ask -tls1_2 -cipher DHE-PSK-CAMELLIA128-SHA256:@SECLEVEL=0 -psk 00112233445566778899aabbccddeeff -psk_identity guest
ask -tls1_3
stop

# GnuTLS at both ends, and a ticket that is used again.
start_on "$right" gnutls-serv --echo --port 443 --x509certfile ec.pem --x509keyfile ec.key
server=$!
await_port 443
gnutls() { sleep 0.5 | on "$left" timeout 3 gnutls-cli --insecure "$@" 192.0.2.2 >>log 2>&1 || true; }
gnutls -p 443 --resume --priority NORMAL:-VERS-ALL:+VERS-TLS1.2
stop

start_on "$right" openssl ocsp -index index -CA ca.pem -rsigner ca.pem -rkey ca.key -port 80
server=$!
sleep 0.5
for kind in ec rsa ed25519; do
  on "$left" openssl ocsp -issuer ca.pem -cert "$kind.pem" -url http://192.0.2.2:80/ -noverify >>log 2>&1 || true
done
stop

# A mail server's part, for as long as it takes to go over.
cat >mail.py <<'MAIL'
import socket, ssl, threading
context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
context.load_cert_chain("ec.pem", "ec.key")
listener = socket.create_server(("", 25))
connection, _ = listener.accept()
connection.sendall(b"220 server.example ESMTP\r\n")
while (line := connection.recv(512)):
    if line.upper().startswith(b"STARTTLS"):
        connection.sendall(b"220 Ready\r\n")
        break
    connection.sendall(b"250-server.example\r\n250 STARTTLS\r\n")
with context.wrap_socket(connection, server_side=True) as inside:
    inside.recv(512)
    inside.sendall(b"221 Bye\r\n")
MAIL
start_on "$right" python3 mail.py
server=$!
sleep 1
printf 'QUIT\r\n' | on "$left" timeout 3 openssl s_client -connect 192.0.2.2:25 -starttls smtp >>log 2>&1 || true
stop

for version in 1.0 1.2; do
  start_on "$right" gnutls-serv --echo --udp --mtu 500 --port 5684 --x509certfile rsa.pem --x509keyfile rsa.key \
    --priority "NORMAL:-VERS-ALL:+VERS-DTLS$version:%VERIFY_ALLOW_SIGN_WITH_SHA1"
  server=$!
  sleep 0.5
  { echo 'A line in a datagram.'; sleep 0.5; } | on "$left" timeout 3 gnutls-cli --insecure --udp -p 5684 \
    --priority "NORMAL:-VERS-ALL:+VERS-DTLS$version" 192.0.2.2 >>log 2>&1 || true
  stop
done
keep_as tls.pcap
[[ -z ${SHOW_LOG-} ]] || cat log
