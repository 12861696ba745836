#!/bin/bash
# lan.pcap: two hosts meet on a cable. Neighbour discovery, ARP (announcement, probe, request), ping over both protocols, a
# fragmented ping, a datagram to a port where nobody listens, and ARP for an address that nobody has.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need ping arping

lay_cable
on "$left" ip link set cable up
record cable
plug_in
sleep 2.5
on "$left" arping -q -c 1 -U -I cable 192.0.2.1 || true
on "$left" arping -q -c 1 -D -I cable 192.0.2.77 || true
on "$left" ping -q -c 2 -i 0.2 192.0.2.2 >/dev/null
on "$left" ping -q -c 1 -s 2000 192.0.2.2 >/dev/null
on "$left" ping -q -c 2 -i 0.2 2001:db8::2 >/dev/null
on "$left" bash -c 'echo hello >/dev/udp/192.0.2.2/4000'
on "$left" bash -c 'echo hello >/dev/udp/2001:db8::2/4000'
on "$left" ping -q -c 1 -W 1 192.0.2.99 >/dev/null || true
keep_as lan.pcap
