#!/bin/bash
# tls_ssl3.pcap: NSS' client and server in a version that others have given up: SSL 3 with RC4, AES and 3DES, with a
# client's certificate, and with a client that would speak more.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need openssl certutil pk12util selfserv tstclnt

cd "$work"
export NSS_IGNORE_SYSTEM_POLICY=1
mkdir store
certutil -N -d store --empty-password
for name in server client; do
  openssl req -x509 -newkey rsa:2048 -nodes -keyout "$name.key" -out "$name.pem" -days 3650 -subj "/C=XX/O=Sample/CN=$name.test"
  openssl pkcs12 -export -name "$name" -inkey "$name.key" -in "$name.pem" -out "$name.p12" -passout pass:
  pk12util -d store -i "$name.p12" -W ''
  certutil -M -d store -n "$name" -t CTu,CTu,CTu
done >>log 2>&1

connect_hosts
start_on "$right" selfserv -d store -n server -p 443 -V ssl3:tls1.2 -c :0005:002F:000A
start_on "$right" selfserv -d store -n server -p 465 -V ssl3:ssl3 -c :002F -r -r
await_port 443
await_port 465
record cable port 443 or port 465
ask() {
  { printf 'GET / HTTP/1.0\r\n\r\n'; sleep 0.5; } |
    on "$left" timeout 2 tstclnt -d store -h 192.0.2.2 -a server.test -o "$@" >>log 2>&1 || true
}
for suite in 0005 002F 000A; do ask -p 443 -V ssl3:ssl3 -c ":$suite"; done
ask -p 443 -V ssl3:tls1.2 -c :002F
ask -p 465 -V ssl3:tls1.2 -c :002F -n client
keep_as tls_ssl3.pcap
[[ -z ${SHOW_LOG-} ]] || cat log
