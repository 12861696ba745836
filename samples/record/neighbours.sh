#!/bin/bash
# neighbours.pcap: how devices tell their neighbours who they are. The two hosts run lldpd, the left one with every sender that
# it has: LLDP with the elements of 802.1, 802.3 and LLDP-MED, CDP, EDP, FDP, SONMP. Then the hosts are switches (Open vSwitch):
# rapid spanning tree, LACP, and continuity checks of connectivity fault management.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
# shellcheck source=open_vswitch.sh
. "$(dirname "$0")/open_vswitch.sh"
need lldpd lldpcli

speakers=()
name_of() { if [ "$1" = "$left" ]; then echo left; else echo right; fi; }

lay_cable
silence_hosts
plug_in
record cable

# Discovery: some rounds of every sender. What they tell is made up, not the machine's.
for host in "$left" "$right"; do
  cat >"$work/$host.conf" <<END
configure system hostname $(name_of "$host").example.net
configure lldp tx-interval 2
configure med fast-start enable
configure ports cable lldp portidsubtype local cable description "The cable"
configure ports cable med policy application voice tagged vlan 100 priority voice dscp 46
configure ports cable med location coordinate latitude 48.85667N longitude 2.2014E altitude 117.47 m datum WGS84
configure ports cable med location address country US language en 3 "Denver" 6 "Pine Street" 19 "500"
configure ports cable med location elin 911
configure ports cable med power pd source pse priority high value 12500
configure ports cable dot3 power pd supported enabled paircontrol powerpairs spare class class-3 type 2 source pse priority low requested 10000 allocated 12000
END
done
introduce() {
  local host=$1; shift
  start_on "$host" lldpd -d -k -M 4 -I cable -u "$work/$host.socket" -O "$work/$host.conf" -S "A host of a recording" \
    -P Recorder -m 192.0.2.9 "$@"
  speakers+=($!)
}
introduce "$left" -ccc -eee -fff -sss
introduce "$right"
sleep 6
kill "${speakers[@]}"
sleep 1

# Switches: a tree that converges; then two ports that become one, with both ends of a service watching each other.
for host in "$left" "$right"; do
  start_open_vswitch "$host"
  vsctl "$host" add-br tree -- set bridge tree datapath_type=netdev rstp_enable=true
  vsctl "$host" add-port tree cable
done
vsctl "$left" set bridge tree other_config:rstp-priority=4096
sleep 4
for host in "$left" "$right"; do
  vsctl "$host" del-br tree
  vsctl "$host" add-br joined -- set bridge joined datapath_type=netdev
  vsctl "$host" add-port joined cable -- set port cable lacp=active other_config:lacp-time=fast
done
vsctl "$left" set interface cable cfm_mpid=1 other_config:cfm_interval=1000
vsctl "$right" set interface cable cfm_mpid=2 other_config:cfm_interval=1000
sleep 5
keep_as neighbours.pcap
