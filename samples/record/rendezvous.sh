#!/bin/bash
# rendezvous.pcap: two routers of PIM (pimd) that choose a bootstrap router and rendezvous points among themselves; data of a source
# registered, groups joined and pruned, a router that leaves.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need pimd socat

connect_hosts
for host in "$left" "$right"; do
  on "$host" ip link add inside type veth peer name station
  on "$host" ip link set inside up
  on "$host" ip link set station up
done
on "$left" ip address add 10.0.1.1/24 dev inside
on "$right" ip address add 10.0.2.1/24 dev inside
on "$left" ip route add 10.0.2.0/24 via 192.0.2.2
on "$right" ip route add 10.0.1.0/24 via 192.0.2.1
record cable "ip proto 103 or igmp or udp port 5000"
number=0
for host in "$left" "$right"; do
  number=$((number + 1))
  on "$host" ip route add 224.0.0.0/4 dev cable
  cat >"$work/pimd$number.conf" <<CONFIG
hello-interval 10
bsr-candidate 192.0.2.$number priority $((number * 10))
rp-candidate 192.0.2.$number time 10 priority $((30 - number * 10))
group-prefix 239.$number.0.0/16
group-prefix 224.0.0.0/4
spt-threshold packets 0 interval 5
CONFIG
  # What it keeps in /run is its own.
  start_on "$host" bash -c "mount -t tmpfs none /run; exec pimd -f -s debug -c $work/pimd$number.conf"
done
sleep 40
# A station behind the right router wants what one behind the left router sends.
on "$right" timeout 22 socat -u UDP4-RECV:5000,ip-add-membership=239.2.3.4:10.0.2.1 - >/dev/null 2>&1 &
started+=($!)
for _ in 1 2 3 4 5 6 7 8; do
  on "$left" bash -c 'echo hello | socat - UDP4-DATAGRAM:239.2.3.4:5000,ip-multicast-ttl=5,ip-multicast-if=10.0.1.1' || true
  sleep 2.5
done
sleep 4
kill "${started[-2]}" || true
sleep 2
keep_as rendezvous.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
