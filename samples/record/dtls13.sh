#!/bin/bash
# dtls13.pcapng: DTLS 1.3 of NSS: handshakes of which certificates come in fragments, records with long and with short headers,
# acknowledgements and tickets; the secrets are in the capture itself. This NSS speaks the last draft, which says so in its hellos.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need cc certutil pk12util openssl editcap pkg-config python3

# shellcheck disable=SC2046
cc -O1 -o "$work/peer" "$here/dtls_peer.c" $(pkg-config --cflags --libs nss nspr)
cd "$work"
mkdir database
certutil -N -d database --empty-password
openssl req -x509 -newkey rsa:3072 -nodes -keyout server.key -out server.pem -days 3650 -subj '/CN=right.example' \
  -addext "subjectAltName=$(printf 'DNS:name%d.right.example,' {1..30})DNS:right.example" 2>>"$work/log"
openssl pkcs12 -export -in server.pem -inkey server.key -name server -passout pass: -out server.p12
pk12util -i server.p12 -d database -W '' >>"$work/log" 2>&1
cp -r database client

connect_hosts
record cable port 4433
exchange() {
  start_on "$right" "$work/peer" server database 192.0.2.2 192.0.2.1 "$@"
  local server=$!
  sleep 0.5
  on "$left" timeout 20 "$work/peer" client client 192.0.2.1 192.0.2.2 "$@" >>"$work/secrets" 2>>"$work/log" || true
  wait "$server" || true
}
exchange
exchange short
keep_as recorded.pcap
# The client's random number stands in the first hello of each exchange, behind the headers of record and message.
python3 - "$samples/recorded.pcap" "$work/secrets" >"$work/keys.log" <<'PYTHON'
import re, sys
data = open(sys.argv[1], "rb").read()
hellos = re.findall(rb"\x16\xfe[\xfd\xff]\0\0.{8}\x01.{8}\0\0\0?.{0,3}?\xfe\xfd(.{32})", data, re.S)
randoms = list(dict.fromkeys(hello.hex() for hello in hellos))
secrets = open(sys.argv[2]).read().split("\n")
starts = [i for i, line in enumerate(secrets) if "CLIENT_HANDSHAKE" in line or "SERVER_HANDSHAKE" in line][::2]
for number, line in enumerate(secrets):
    if line:
        print(line.replace("RANDOM", randoms[sum(start <= number for start in starts) - 1], 1))
PYTHON
editcap --inject-secrets "tls,$work/keys.log" -F pcapng "$samples/recorded.pcap" "$samples/dtls13.pcapng"
rm "$samples/recorded.pcap"
[ -z "${SHOW_LOG-}" ] || cat "$work/log" "$work/keys.log"
