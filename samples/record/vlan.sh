#!/bin/bash
# vlan.pcap: the cable as a trunk between two switches (Open vSwitch, in user space), with a station behind each port. ARP
# and ping through VLAN 10, through VLAN 20 inside service VLAN 100 (802.1ad), and below an MPLS label; and the LLDP frames
# of the switches.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
# shellcheck source=open_vswitch.sh
. "$(dirname "$0")/open_vswitch.sh"

# A switch on this host with its stations.
start_switch() {
  local folder=$work/$1
  start_open_vswitch "$1"
  vsctl "$1" set Open_vSwitch . other_config:vlan-limit=2
  vsctl "$1" add-br trunk -- set bridge trunk datapath_type=netdev
  vsctl "$1" add-port trunk cable
  vsctl "$1" add-port trunk office tag=10 -- set interface office type=internal
  # Stations of VLAN 20 behind a switch of their own, which the trunk carries through service VLAN 100.
  vsctl "$1" add-br customer -- set bridge customer datapath_type=netdev
  vsctl "$1" add-port customer workshop tag=20 -- set interface workshop type=internal
  vsctl "$1" add-port customer uplink -- set interface uplink type=patch options:peer=tunnel
  vsctl "$1" add-port trunk tunnel tag=100 vlan_mode=dot1q-tunnel other_config:qinq-ethtype=802.1ad \
    -- set interface tunnel type=patch options:peer=uplink
  # A station whose IP packets cross the cable below a label.
  vsctl "$1" add-port trunk core -- set interface core type=internal
  OVS_RUNDIR=$folder ovs-ofctl -OOpenFlow13 add-flows "unix:$folder/trunk.mgmt" - <<'FLOWS'
in_port=core,ip,actions=push_mpls:0x8847,set_field:1000->mpls_label,set_field:5->mpls_tc,output:cable
in_port=cable,mpls,mpls_label=1000,actions=pop_mpls:0x0800,output:core
FLOWS
  vsctl "$1" set interface cable lldp:enable=true
}

lay_cable
silence_hosts
number=0
for host in "$left" "$right"; do
  number=$((number + 1))
  # The cable itself is the switch's: it does not answer for the stations' addresses.
  on "$host" bash -c 'echo 1 >/proc/sys/net/ipv4/conf/all/arp_ignore'
  start_switch "$host"
  for station in 1:office:198.51.100 2:workshop:203.0.113 3:core:192.0.2; do
    IFS=: read -r digit name network <<<"$station"
    on "$host" ip link set "$name" address "02:00:00:00:${digit}0:0$number" up
    on "$host" ip address add "$network.$number/24" dev "$name"
  done
done
plug_in
sleep 1
record cable
for network in 198.51.100 203.0.113 192.0.2; do
  on "$left" ping -q -c 2 -i 0.2 -W 2 "$network.2" >>"$work/log"
done
sleep 5
keep_as vlan.pcap
