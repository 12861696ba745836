#!/bin/bash
# dnssec.pcap: BIND, asked by dig for records of many types in a signed zone, with their signatures; what is not there, by
# hashed names; cookies, client subnet, padding, an extended error; a transfer, a notification, a signed update.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need named dig nsupdate dnssec-keygen dnssec-signzone tsig-keygen

cd "$work"
cat >zone <<'ZONE'
$TTL 300
@ SOA ns hostmaster 1 3600 900 604800 300
@ NS ns
@ MX 10 mail
@ TXT "v=spf1 mx -all" "second string"
@ CAA 0 issue "ca.example.test"
@ HTTPS 1 . alpn="h2,h3" ipv4hint=192.0.2.80 ipv6hint=2001:db8::80
@ LOC 52 31 0.000 N 13 24 0.000 E 34m 10m 100m 10m
@ NAPTR 100 10 "u" "E2U+sip" "!^.*$!sip:info@example.test!" .
@ APL 1:192.0.2.0/24 !2:2001:db8::/32
@ CDS 12345 13 2 0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef
@ RP hostmaster text
@ URI 10 1 "https://www.example.test/"
ns A 192.0.2.2
ns AAAA 2001:db8::2
www A 192.0.2.80
www AAAA 2001:db8::80
www SSHFP 4 2 0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef
www HINFO "PC" "Linux"
_443._tcp.www TLSA 3 1 1 0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef
_sip._udp SRV 1 20 5060 www
_dns SVCB 1 www port=853 alpn=dot
mail A 192.0.2.25
alias DNAME www
web CNAME www
host HIP 2 200100107B1A74DF365639CC39F1D578 AwEAAbdxyhNuSutc5EMzxTs9LBPCIkOFH8cIvM4p9+LrV4e19WzK00+CI6zBCQTdtWsuxKbWIy87UOoJTwkUs7lBu+Upr1gsNrut79ryra+bSRGQb1slImA8YVJyuIDsj7kwzG7jnERNqnWxZ48AWkskmdHaVDP4BcelrTI3rMXdXF5D rvs
gate IPSECKEY 10 1 2 192.0.2.38 AQNRU3mG7TVTO2BkR47usntb102uFJtugbo6BSGvgqt4AQ==
key OPENPGPKEY mQENBFVHm5sBCADM
eui EUI48 00-00-5e-00-53-2a
ZONE
dnssec-keygen -q -a ECDSAP256SHA256 -f KSK example.test >/dev/null
dnssec-keygen -q -a ECDSAP256SHA256 example.test >/dev/null
dnssec-signzone -S -3 ABCD -H 1 -o example.test -f zone.signed zone >/dev/null 2>&1
tsig-keygen -a hmac-sha256 update >update.key
mkdir dynamic
printf '%s\n' "\$TTL 60" "@ SOA ns.example.test. hostmaster.example.test. 1 3600 900 604800 60" "@ NS ns.example.test." >dynamic/zone
cat >named.conf <<CONFIG
include "$work/update.key";
options {
  directory "$work"; pid-file "$work/named.pid"; session-keyfile "$work/session.key";
  listen-on { any; }; listen-on-v6 { any; }; recursion no; allow-transfer { any; }; also-notify { 192.0.2.1; };
  dnssec-validation no; notify explicit; notify-delay 0; server-id "ns.example.test"; minimal-responses no;
};
zone "example.test" { type primary; file "zone.signed"; };
zone "dynamic.test" { type primary; file "dynamic/zone"; allow-update { key update; }; };
CONFIG
chmod -R a+rX .

ask() { on "$left" dig +tries=1 +time=2 @192.0.2.2 "$@" >>"$work/log" || true; }

connect_hosts
record cable port 53
start_on "$right" named -g -c "$work/named.conf"
await_port 53
for type in SOA NS MX TXT CAA HTTPS LOC NAPTR APL CDS RP URI DNSKEY NSEC3PARAM; do ask +dnssec +bufsize=4096 example.test "$type"; done
ask +dnssec www.example.test AAAA
ask +nsid +subnet=198.51.100.0/24 +padding=128 www.example.test SSHFP
ask www.example.test HINFO +noedns +cdflag
ask _443._tcp.www.example.test TLSA
ask _sip._udp.example.test SRV
ask _dns.example.test SVCB
ask a.alias.example.test A
ask web.example.test A
ask host.example.test HIP
ask gate.example.test IPSECKEY
ask key.example.test OPENPGPKEY
ask eui.example.test EUI48
ask +dnssec nobody.example.test A
ask version.bind CH TXT
ask +ednsopt=expire example.test SOA
ask +opcode=status example.test
ask AXFR dynamic.test +keepalive
printf 'server 192.0.2.2\nzone dynamic.test\nprereq nxdomain new.dynamic.test\nupdate add new.dynamic.test 60 A 192.0.2.99\nupdate delete old.dynamic.test A\nsend\n' |
  on "$left" nsupdate -k "$work/update.key" >>"$work/log" 2>&1 || true
sleep 0.5
keep_as dnssec.pcap
