#!/bin/bash
# resolver.pcap: Unbound's answers out of local zones, over UDP with cookies and over TCP, what it refuses and what it asks
# itself; Avahi's services announced, looked for and taken back over multicast.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need unbound dig avahi-daemon avahi-publish dbus-daemon

cat >"$work/unbound.conf" <<CONFIG
server:
  interface: 192.0.2.2
  interface: 2001:db8::2
  access-control: 192.0.2.0/24 allow
  access-control: 2001:db8::/64 refuse
  chroot: ""
  username: ""
  directory: "$work"
  pidfile: "$work/unbound.pid"
  use-syslog: no
  module-config: "iterator"
  do-not-query-localhost: no
  identity: "sample"
  version: "sample 1"
  answer-cookie: yes
  local-zone: "example.test." static
  local-data: "example.test. 300 IN SOA ns.example.test. host.example.test. 7 3600 900 86400 300"
  local-data: "example.test. 300 IN NS ns.example.test."
  local-data: "example.test. 300 IN MX 10 mail.example.test."
  local-data: "example.test. 300 IN CAA 0 issue \"ca.example.test\""
  local-data: "www.example.test. 300 IN A 192.0.2.80"
  local-data: "www.example.test. 300 IN AAAA 2001:db8::80"
  local-data: "www.example.test. 300 IN HTTPS 1 . alpn=h2,h3 ipv4hint=192.0.2.80"
  local-data: "_sip._udp.example.test. 300 IN SRV 1 2 5060 sip.example.test."
  local-data: "example.test. 300 IN NAPTR 10 20 \"s\" \"SIP+D2U\" \"\" _sip._udp.example.test."
  local-data: "_443._tcp.www.example.test. 300 IN TLSA 3 1 1 000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f"
  local-data: "host.example.test. 300 IN SSHFP 4 2 000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f"
  local-data: "host.example.test. 300 IN LOC 48 12 30.0 N 16 22 30.0 E 170m 10m 100m 10m"
  local-data: "long.example.test. 300 IN TXT \"$(printf 'a%.0s' {1..250})\" \"$(printf 'b%.0s' {1..250})\""
  local-data-ptr: "192.0.2.80 300 www.example.test"
CONFIG
sed -i '/answer-cookie/d' "$work/unbound.conf"
cat >"$work/bus.conf" <<CONFIG
<busconfig><listen>unix:path=$work/bus</listen><auth>EXTERNAL</auth>
<policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/><allow user="*"/></policy></busconfig>
CONFIG
cat >"$work/avahi.conf" <<'CONFIG'
[server]
host-name=printer
use-ipv6=yes
allow-interfaces=cable
enable-dbus=yes
[publish]
publish-hinfo=yes
publish-workstation=yes
[rlimits]
CONFIG

connect_hosts
record cable "port 53 or port 5353"
start_on "$right" unbound -d -c "$work/unbound.conf"
sleep 2
ask() { on "$left" timeout 5 dig +tries=1 +time=2 @192.0.2.2 "$@" >>"$work/log" 2>&1 || true; }
for question in 'example.test SOA' 'example.test NS' 'example.test MX' 'example.test CAA' 'www.example.test A' 'www.example.test AAAA' \
  'www.example.test HTTPS' '_sip._udp.example.test SRV' 'example.test NAPTR' '_443._tcp.www.example.test TLSA' 'host.example.test SSHFP' \
  'host.example.test LOC' 'nothing.example.test A' 'example.test ANY' '-x 192.0.2.80' '-c CH -t TXT id.server' '+tcp long.example.test TXT' \
  '+bufsize=512 long.example.test TXT' '+nsid +cookie www.example.test A' '+padding=128 +subnet=198.51.100.0/24 www.example.test A'; do
  # shellcheck disable=SC2086
  ask $question
done
on "$left" timeout 3 dig +tries=1 +time=1 -6 @2001:db8::2 www.example.test A >>"$work/log" 2>&1 || true

export DBUS_SYSTEM_BUS_ADDRESS=unix:path=$work/bus
start_on "$right" dbus-daemon --nofork --config-file="$work/bus.conf"
sleep 1
start_on "$right" avahi-daemon --no-chroot --no-drop-root --no-rlimits --debug -f "$work/avahi.conf"
sleep 4
start_on "$right" avahi-publish -s 'Sample Printer' _ipp._tcp 631 txtvers=1 rp=printers/one 'note=second floor'
publisher=$!
sleep 3
on "$left" timeout 3 dig +tries=1 +time=1 -p 5353 @224.0.0.251 printer.local A >>"$work/log" 2>&1 || true
on "$left" timeout 3 dig +tries=1 +time=1 -p 5353 @224.0.0.251 _ipp._tcp.local PTR >>"$work/log" 2>&1 || true
kill "$publisher" || true
sleep 2
keep_as resolver.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
