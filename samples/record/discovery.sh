#!/bin/bash
# discovery.pcap: devices announce themselves, are searched for, and leave: minidlna over SSDP, wsdd over WS-Discovery.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
PATH=$PATH:/usr/sbin
need minidlnad wsdd python3

mkdir "$work/media" "$work/db"
cat >"$work/minidlna.conf" <<CONFIG
network_interface=cable
media_dir=$work/media
db_dir=$work/db
log_dir=$work
friendly_name=Media of the example network
port=8200
notify_interval=60
uuid=4d696e69-444c-164e-9d41-020000000002
serial=1
model_number=1
CONFIG

connect_hosts
on "$left" ip route add 224.0.0.0/4 dev cable
on "$right" ip route add 224.0.0.0/4 dev cable
record cable 'udp port 1900 or udp port 3702'
start_on "$right" minidlnad -d -f "$work/minidlna.conf" -P "$work/minidlna.pid"
media=$!
start_on "$right" wsdd -i cable -4 -n files -w EXAMPLE -U 00000000-0000-4000-8000-000000000002
files=$!
sleep 4
start_on "$left" wsdd -i cable -4 -D -o -n asker -w EXAMPLE -U 00000000-0000-4000-8000-000000000001

# A control point looks for everything and for media servers.
for target in ssdp:all urn:schemas-upnp-org:device:MediaServer:1 upnp:rootdevice; do
  on "$left" python3 - "$target" <<'SEARCH' >>"$work/log" 2>&1 || true
import socket, sys
ask = "\r\n".join(("M-SEARCH * HTTP/1.1", "HOST: 239.255.255.250:1900", 'MAN: "ssdp:discover"', "MX: 1",
                   "ST: " + sys.argv[1], "USER-AGENT: example/1.0 UPnP/2.0", "", ""))
with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as s:
    s.settimeout(2)
    s.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_IF, socket.inet_aton("192.0.2.1"))
    s.sendto(ask.encode(), ("239.255.255.250", 1900))
    while True:
        s.recv(2000)
SEARCH
done
kill "$files"
sleep 1
kill "$media"
sleep 1
keep_as discovery.pcap
