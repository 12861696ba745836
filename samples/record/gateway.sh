#!/bin/bash
# gateway.pcap: a home gateway announces itself (PCP, SSDP), is looked for, described and asked for a port over UPnP, and asked
# for its address and for ports over NAT-PMP, which a kernel without address translation refuses.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need miniupnpd upnpc natpmpc

connect_hosts
on "$right" ip link add wan type veth peer name far
on "$right" ip address add 203.0.113.1/24 dev wan
on "$right" ip link set wan up
on "$right" ip link set far up
cat >"$work/gateway.conf" <<'CONFIG'
ext_ifname=wan
ext_ip=11.0.0.1
listening_ip=cable
http_port=8080
enable_natpmp=yes
enable_upnp=yes
ipv6_disable=yes
secure_mode=yes
system_uptime=yes
notify_interval=60
uuid=5afe0001-0002-0003-0004-000500060007
serial=12345678
allow 1024-65535 192.0.2.0/24 1024-65535
CONFIG
record cable port 1900 or port 8080 or port 5350 or port 5351
start_on "$right" miniupnpd -d -f "$work/gateway.conf" -P "$work/gateway.pid"
sleep 2
on "$left" ip route add default via 192.0.2.2

ask() { on "$left" timeout 10 "$@" >>"$work/log" 2>&1 || true; }
ask natpmpc -g 192.0.2.2
ask natpmpc -g 192.0.2.2 -a 4000 4000 udp 3600
ask natpmpc -g 192.0.2.2 -a 4000 4000 tcp 60
ask natpmpc -g 192.0.2.2 -a 0 4000 udp 0
ask upnpc -m cable -a 192.0.2.1 5001 5001 TCP 600
ask upnpc -m cable -d 5001 TCP
keep_as gateway.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
