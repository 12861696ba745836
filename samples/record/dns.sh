#!/bin/bash
# dns.pcap: dnsmasq, asked by dig for every kind of record it holds, over UDP, TCP and IPv6.
# dns-loopback.pcap: a few of these questions over the loopback interface (127.0.0.1 and ::1), where the kernel leaves
# checksums unfinished.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need dnsmasq dig

cat >"$work/dnsmasq.conf" <<'CONFIG'
no-resolv
no-hosts
no-daemon
user=root
port=53
local=/example.test/
auth-ttl=300
local-ttl=300
host-record=www.example.test,192.0.2.80,2001:db8::80
host-record=mail.example.test,192.0.2.25
host-record=ns.example.test,192.0.2.53
cname=web.example.test,www.example.test
mx-host=example.test,mail.example.test,10
txt-record=example.test,"v=spf1 mx -all","a second string"
srv-host=_sip._udp.example.test,www.example.test,5060,1,20
naptr-record=example.test,100,10,u,E2U+sip,!^.*$!sip:info@example.test!
caa-record=example.test,0,issue,ca.example.test
ptr-record=80.2.0.192.in-addr.arpa,www.example.test
dns-rr=host.example.test,13,034136380554657374
CONFIG
# A record set too long for a datagram without EDNS, so that the client turns to TCP.
for number in $(seq 1 40); do echo "host-record=many.example.test,192.0.2.$((number + 100))"; done >>"$work/dnsmasq.conf"

ask() { on "$left" dig +tries=1 +time=2 "$@" >>"$work/log" || true; }

connect_hosts
start_on "$right" dnsmasq --conf-file="$work/dnsmasq.conf" --pid-file="$work/dnsmasq.pid"
await_port 53
record cable port 53
ask @192.0.2.2 www.example.test A
ask @192.0.2.2 www.example.test AAAA
ask @192.0.2.2 web.example.test A +noedns
ask @192.0.2.2 example.test MX +dnssec
ask @192.0.2.2 example.test TXT
ask @192.0.2.2 _sip._udp.example.test SRV
ask @192.0.2.2 example.test NAPTR
ask @192.0.2.2 example.test CAA
ask @192.0.2.2 host.example.test HINFO
ask @192.0.2.2 -x 192.0.2.80
ask @192.0.2.2 nobody.example.test A
ask @192.0.2.2 elsewhere.example A
ask @192.0.2.2 version.bind CH TXT
ask @192.0.2.2 many.example.test A +noedns
ask @192.0.2.2 www.example.test A +tcp
ask @192.0.2.2 +tcp +keepopen www.example.test AAAA example.test MX
ask @2001:db8::2 www.example.test AAAA
ask @2001:db8::2 example.test TXT +tcp
keep_as dns.pcap

start_on "$left" dnsmasq --conf-file="$work/dnsmasq.conf" --pid-file="$work/dnsmasq-left.pid"
sleep 0.5
record lo port 53
ask @127.0.0.1 www.example.test A
ask @::1 www.example.test AAAA
ask @::1 example.test MX +tcp
keep_as dns-loopback.pcap
