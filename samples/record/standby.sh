#!/bin/bash
# standby.pcap: routers that stand in for one another: VRRP 2 of keepalived under AH, VRRP 3 of FRR on interfaces of its own for both
# families, CARP of ucarp; the one in charge leaves.
# shellcheck source-path=SCRIPTDIR source=routers.sh
. "$(dirname "$0")/routers.sh"
need keepalived ucarp vtysh

connect_hosts
record cable "ip proto 112 or ip proto 51 or ip6 proto 112 or arp"
number=0
for host in "$left" "$right"; do
  number=$((number + 1))
  cat >"$work/keepalived$number.conf" <<CONFIG
global_defs {
  script_user root
}
vrrp_instance sealed {
  state BACKUP
  interface cable
  virtual_router_id 11
  priority $((100 + number * 10))
  advert_int 1
  version 2
  authentication {
    auth_type AH
    auth_pass secret
  }
  virtual_ipaddress {
    192.0.2.111/24
  }
}
CONFIG
  start_on "$host" keepalived -n -l -D -P -f "$work/keepalived$number.conf" -p "$work/keepalived$number.pid" \
    -r "$work/vrrp$number.pid" -c "$work/checkers$number.pid"
  sealed[number]=$!
  start_on "$host" ucarp -i cable -s 192.0.2.$number -v 42 -p secret -a 192.0.2.142 -u /bin/true -d /bin/true -b 1 -k $((number * 20)) -z
  common[number]=$!
  on "$host" ip link add virtual4 link cable type macvlan mode bridge
  on "$host" ip link set virtual4 address 00:00:5e:00:01:05
  on "$host" ip address add 192.0.2.105/24 dev virtual4
  on "$host" ip link add virtual6 link cable type macvlan mode bridge
  on "$host" ip link set virtual6 address 00:00:5e:00:02:05
  on "$host" ip address add 2001:db8::105/64 dev virtual6 nodad
  on "$host" ip link set virtual4 up
  on "$host" ip link set virtual6 up
  start_router "$host" zebra </dev/null
  start_router "$host" vrrpd <<CONFIG
interface cable
 vrrp 5 version 3
 vrrp 5 priority $((90 + number * 10))
 vrrp 5 advertisement-interval 1000
 vrrp 5 checksum-with-ipv4-pseudoheader
 vrrp 5 ip 192.0.2.105
 vrrp 5 ipv6 2001:db8::105
CONFIG
  router[number]=${started[-1]}
done
sleep 8
kill "${sealed[2]}" "${common[1]}" "${router[2]}" || true
sleep 5
keep_as standby.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log" "$work"/*/*.log
