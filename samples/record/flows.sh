#!/bin/bash
# flows.pcap: what probes and switches tell collectors of the flows they see. softflowd reads other samples and sends NetFlow
# in versions 1, 5 and 9, IPFIX (with times of every kind, in both directions, over TCP too); Open vSwitch sends NetFlow 5,
# IPFIX and sFlow of pings and a datagram through it. The collector is nfcapd, which answers nothing.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need softflowd softflowctl nfcapd socat ping ovs-vswitchd ovsdb-server ovsdb-tool ovs-vsctl

connect_hosts
mkdir "$work/2055" "$work/9995" "$work/switch"
for port in 2055 9995; do start_on "$right" nfcapd -w "$work/$port" -p "$port"; done
start_on "$right" socat -u UDP4-RECV:6343 OPEN:/dev/null
start_on "$right" socat -u UDP4-RECVFROM:4739,fork OPEN:/dev/null
start_on "$right" socat -u TCP4-LISTEN:4739,fork OPEN:/dev/null
sleep 1
record cable 'udp port 2055 or udp port 9995 or port 4739 or udp port 6343'

# The sample, the collector's port, options. softflowd reads on when it is asked something, and ends with its file.
tell() {
  local sample=$1 port=$2; shift 2
  on "$left" timeout 4 softflowd -d -r "$samples/$sample" -n "192.0.2.2:$port" -p "$work/pid" -c "$work/ctl" "$@" \
    >>"$work/log" 2>&1 &
  local probe=$!
  sleep 0.8
  for _ in 1 2 3; do softflowctl -c "$work/ctl" statistics >>"$work/log" 2>&1 || true; done
  wait "$probe" || true
}
tell lan.pcap 2055 -v 1
tell dns.pcap 2055 -v 5
tell lan.pcap 9995 -v 9 -6
tell dns.pcap 9995 -v 9 -6 -s 2 -T vlan
tell dns.pcap 4739 -v 10 -6 -T ether
tell lan.pcap 4739 -v 10 -6 -b -A milli
tell lan.pcap 4739 -v 10 -A micro
tell lan.pcap 4739 -v 10 -A nano -P tcp
tell lan.pcap 4739 -v 10 -A sec

# A switch on the left host, between a port of its own and a second cable to the right one.
vsctl() { OVS_RUNDIR=$work/switch ovs-vsctl --db="unix:$work/switch/db.sock" --timeout=10 "$@" >>"$work/log"; }
ovsdb-tool create "$work/switch/conf.db" /usr/share/openvswitch/vswitch.ovsschema
OVS_RUNDIR=$work/switch start_on "$left" ovsdb-server --remote="punix:$work/switch/db.sock" \
  --pidfile="$work/switch/db.pid" --unixctl="$work/switch/db.ctl" "$work/switch/conf.db"
for _ in $(seq 50); do [ -e "$work/switch/db.sock" ] && break; sleep 0.1; done
vsctl --no-wait init
OVS_RUNDIR=$work/switch start_on "$left" ovs-vswitchd "unix:$work/switch/db.sock" --pidfile="$work/switch/switch.pid" \
  --unixctl="$work/switch/switch.ctl" --disable-system
ip link add drop netns "$left" type veth peer name drop netns "$right"
on "$left" ip link set drop up
on "$right" ip link set drop up
on "$right" ip address add 198.51.100.2/24 dev drop
vsctl add-br floor -- set bridge floor datapath_type=netdev
vsctl add-port floor drop
vsctl add-port floor desk tag=0 -- set interface desk type=internal
on "$left" ip address add 198.51.100.1/24 dev desk
on "$left" ip link set desk up
vsctl -- --id=@f create netflow 'targets="192.0.2.2:2055"' active_timeout=2 -- set bridge floor netflow=@f \
  -- --id=@s create sflow agent=cable 'target="192.0.2.2:6343"' header=128 sampling=1 polling=2 -- set bridge floor sflow=@s \
  -- --id=@i create ipfix 'targets="192.0.2.2:4739"' obs_domain_id=7 obs_point_id=8 sampling=1 cache_active_timeout=2 \
  -- set bridge floor ipfix=@i
sleep 1
on "$left" ping -q -c 2 -i 0.3 198.51.100.2 >>"$work/log"
on "$left" bash -c 'echo hello >/dev/udp/198.51.100.2/4000'
sleep 3
keep_as flows.pcap
