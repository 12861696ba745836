#!/bin/bash
# bridge.pcap: what a bridge says on its ports. Spanning tree (802.1D over LLC) of two bridges with two cables between
# them, so that one port gets blocked, and the topology change when a station joins.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"

lay_cable
ip link add second netns "$left" address 02:00:00:00:00:03 type veth peer name second netns "$right" address 02:00:00:00:00:04
for host in "$left" "$right"; do
  on "$host" ip address flush dev cable
  for interface in all default cable second; do
    on "$host" bash -c "echo 1 >/proc/sys/net/ipv6/conf/$interface/disable_ipv6"
  done
  on "$host" ip link add bridge type bridge stp_state 1 forward_delay 400 hello_time 200 max_age 600
  on "$host" bash -c 'echo 1 >/proc/sys/net/ipv6/conf/bridge/disable_ipv6'
  on "$host" ip link set cable master bridge
  on "$host" ip link set second master bridge
done
on "$left" ip link set bridge type bridge priority 4096
on "$left" ip link set cable up
record cable
for host in "$left" "$right"; do
  on "$host" ip link set bridge up
  on "$host" ip link set second up
done
plug_in
sleep 10
# A station joins the bridge that is not the root: it tells the root of the change once the port forwards.
on "$right" ip link add port address 02:00:00:00:00:05 type veth peer name station address 02:00:00:00:00:06
on "$right" ip link set port master bridge
on "$right" ip link set port up
on "$right" ip link set station up
sleep 14
keep_as bridge.pcap
