#!/bin/bash
# quic.pcap, quic.keys: pages over HTTP/3. Version 1; version 2 by negotiation in the handshake; a version that has to be
# negotiated; an address that is validated by Retry; a session resumed with 0-RTT; ChaCha20 and AES-256, keys that are
# updated, another port in mid connection; over IPv6. quic.keys is the key log of all.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need gtlsserver gtlsclient certtool

cat >"$work/template" <<END
cn = "www.example.org"
dns_name = "www.example.org"
expiration_days = 3650
END
certtool --generate-privkey --key-type ecdsa --outfile "$work/key.pem" 2>/dev/null
certtool --generate-self-signed --load-privkey "$work/key.pem" --template "$work/template" --outfile "$work/cert.pem" 2>/dev/null
mkdir "$work/files"
echo '<html><body>Hello over HTTP/3</body></html>' >"$work/files/index.html"
seq 1 600 >"$work/files/numbers.txt"

connect_hosts
serve() { start_on "$right" gtlsserver -q -d "$work/files" "$@" "$work/key.pem" "$work/cert.pem"; }
serve '192.0.2.2' 443
serve -V '192.0.2.2' 4433
serve '2001:db8::2' 443
sleep 0.5
record cable udp
cd "$work"
export SSLKEYLOGFILE=$work/keys
# get HOST PORT PAGE OPTION...
get() {
  local host=$1 port=$2 page=$3; shift 3
  on "$left" timeout 10 gtlsclient -q --no-pmtud --sni www.example.org --exit-on-all-streams-close "$@" \
    "$host" "$port" "https://www.example.org/$page" >/dev/null 2>&1 || true
}
get 192.0.2.2 443 index.html --ciphers NORMAL:-VERS-ALL:+VERS-TLS1.3:-CIPHER-ALL:+AES-128-GCM --session-file "$work/session" --tp-file "$work/tp"
get 192.0.2.2 443 index.html --session-file "$work/session" --tp-file "$work/tp"
get 192.0.2.2 443 numbers.txt --preferred-versions 0x6b3343cf --other-versions 0x6b3343cf,0x1
get 192.0.2.2 443 missing.html -v 0x0a1a2a3a
get 192.0.2.2 4433 index.html --ciphers NORMAL:-VERS-ALL:+VERS-TLS1.3:-CIPHER-ALL:+CHACHA20-POLY1305
get 2001:db8::2 443 numbers.txt --ciphers NORMAL:-VERS-ALL:+VERS-TLS1.3:-CIPHER-ALL:+AES-256-GCM --key-update 1ms \
  --delay-stream 20ms --nat-rebinding --change-local-addr 5ms -n 2
keep_as quic.pcap
cp "$work/keys" "$samples/quic.keys"
