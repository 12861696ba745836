#!/bin/bash
# adhoc.pcap: a router of a network without a plan gives a host its addresses by AHCP; datagrams of UDP-Lite whose checksum covers
# all, the header alone, and the header with some of the data, over IPv4 and IPv6.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need ahcpd python3

connect_hosts
record cable "udp port 5359 or ip proto 136 or ip6 proto 136"
cat >"$work/server.conf" <<CONFIG
mode server
prefix fd12:3456:789a::/64
prefix 10.7.7.0/24
lease-dir $work/leases
name-server 192.0.2.53
name-server 2001:db8::53
ntp-server 192.0.2.123
CONFIG
echo 'mode client' >"$work/client.conf"
mkdir "$work/leases"
start_on "$right" ahcpd -i "$work/ahcpd2.unique" -I "$work/ahcpd2.pid" -c "$work/server.conf" -s /bin/true cable
sleep 2
start_on "$left" ahcpd -i "$work/ahcpd1.unique" -I "$work/ahcpd1.pid" -c "$work/client.conf" -s /bin/true -t 600 cable
sleep 8
kill "${started[-1]}" || true
on "$left" python3 - <<'PYTHON'
import socket
UDPLITE, SEND_COVERAGE = 136, 10
for family, there in ((socket.AF_INET, "192.0.2.2"), (socket.AF_INET6, "2001:db8::2")):
    for coverage in (0, 8, 20):
        with socket.socket(family, socket.SOCK_DGRAM, UDPLITE) as udp:
            udp.setsockopt(UDPLITE, SEND_COVERAGE, coverage)
            udp.sendto(b"speech that may have faults", (there, 4000))
PYTHON
sleep 1
keep_as adhoc.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
