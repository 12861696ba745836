#!/bin/bash
# tunnels.pcap: two switches (Open vSwitch, in user space) with a tunnel of every kind between them and a station behind each
# end, which ping: VXLAN, the switch's and the kernel's; GRE of Ethernet with key and checksum; ERSPAN of type II and
# III, which this switch sends and does not take back; Geneve with an option.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
# shellcheck source=open_vswitch.sh
. "$(dirname "$0")/open_vswitch.sh"

ofctl() { OVS_RUNDIR=$work/$1 ovs-ofctl -OOpenFlow15 "$2" "unix:$work/$1/$3.mgmt" "${@:4}" >>"$work/log" 2>&1; }

# name, the digit of its stations' network 10.0.N.0/24, and what Open vSwitch is told of the tunnel
tunnels=(
  "vxlan 1 type=vxlan options:key=100"
  "gre 3 type=gre options:key=300 options:csum=true"
  "mirror 4 type=erspan options:key=40 options:erspan_ver=1 options:erspan_idx=7"
  "observer 5 type=erspan options:key=50 options:erspan_ver=2 options:erspan_dir=1 options:erspan_hwid=4"
  "geneve 6 type=geneve options:key=600"
)

# The underlay is a switch with the cable and the host's address; each tunnel has a switch with one station.
start_switch() {
  local other=$3
  start_open_vswitch "$1"
  vsctl "$1" add-br under -- set bridge under datapath_type=netdev other-config:hwaddr="02:00:00:00:00:0$2"
  vsctl "$1" add-port under cable
  on "$1" ip address add "192.0.2.$2/24" dev under
  on "$1" ip link set under up
  local tunnel name digit options
  for tunnel in "${tunnels[@]}"; do
    read -r name digit options <<<"$tunnel"
    vsctl "$1" add-br "$name" -- set bridge "$name" datapath_type=netdev
    # shellcheck disable=SC2086 # the options are words
    vsctl "$1" add-port "$name" "t$digit" -- set interface "t$digit" $options options:remote_ip="192.0.2.$other"
    vsctl "$1" add-port "$name" "s$digit" -- set interface "s$digit" type=internal
    on "$1" ip link set "s$digit" address "02:00:00:00:1$digit:0$2" mtu 1400 up
    on "$1" ip address add "10.0.$digit.$2/24" dev "s$digit"
    on "$1" ip neighbour add "10.0.$digit.$other" lladdr "02:00:00:00:1$digit:0$other" dev "s$digit"
  done
  ofctl "$1" add-tlv-map geneve "{class=0x102,type=0x80,len=4}->tun_metadata0"
  ofctl "$1" add-flow geneve "in_port=s6,actions=set_field:0x00010002->tun_metadata0,output:t6"
  ofctl "$1" add-flow geneve "in_port=t6,actions=output:s6"
}

lay_cable
silence_hosts
number=0
for host in "$left" "$right"; do
  number=$((number + 1))
  on "$host" bash -c 'echo 1 >/proc/sys/net/ipv4/conf/all/arp_ignore'
  start_switch "$host" "$number" $((3 - number))
done
plug_in
# And the kernel's own, on its port.
for host in "$left:1:2" "$right:2:1"; do
  IFS=: read -r name number other <<<"$host"
  on "$name" ip link add kernel type vxlan id 700 dstport 8472 remote "192.0.2.$other" local "192.0.2.$number" dev under
  on "$name" ip link set kernel address "02:00:00:00:17:0$number" mtu 1400 up
  on "$name" ip address add "10.0.7.$number/24" dev kernel
done
sleep 2
on "$left" ping -q -c 1 -W 2 192.0.2.2 >>"$work/log" || true
# The hosts' own stacks see the cable, too, and know nothing of the tunnels.
record cable 'not icmp[0] == 3'
for network in 1 3 4 5 6 7; do
  on "$left" ping -q -c 2 -i 0.2 -W 1 "10.0.$network.2" >>"$work/log" || echo "no answer through tunnel $network" >&2
done
sleep 1
keep_as tunnels.pcap
