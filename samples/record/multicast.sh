#!/bin/bash
# multicast.pcap: two routers that speak PIM: neighbors, groups joined and left, a rendezvous point. And routers that
# stand in for one another by VRRP: version 2 with a password, version 3 for both families; the one in charge leaves.
# shellcheck source-path=SCRIPTDIR source=routers.sh
. "$(dirname "$0")/routers.sh"
need vtysh keepalived socat

connect_hosts
record cable "ip proto 103 or ip6 proto 112 or ip proto 112 or igmp"
start_tables
number=0
for host in "$left" "$right"; do
  number=$((number + 1))
  on "$host" ip route add default dev cable
  start_router "$host" pimd <<CONFIG
ip pim rp 192.0.2.2 224.0.0.0/4
interface cable
 ip pim
 ip pim hello 2
 ip pim drpriority $number
 ip igmp
interface inside
 ip pim
 ip igmp
 ip igmp join 239.1.2.3
CONFIG
  cat >"$work/keepalived$number.conf" <<CONFIG
global_defs {
  script_user root
}
vrrp_instance old {
  state BACKUP
  interface cable
  virtual_router_id 7
  priority $((100 + number * 10))
  advert_int 1
  version 2
  authentication {
    auth_type PASS
    auth_pass secret
  }
  virtual_ipaddress {
    192.0.2.77/24
    192.0.2.78/24
  }
}
vrrp_instance new {
  state BACKUP
  interface cable
  virtual_router_id 8
  priority $((120 - number * 10))
  advert_int 0.5
  version 3
  virtual_ipaddress {
    192.0.2.88/24
  }
}
vrrp_instance six {
  state BACKUP
  interface cable
  virtual_router_id 9
  priority $((100 + number))
  advert_int 1
  version 3
  virtual_ipaddress {
    fe80::77/64
    2001:db8::77/64
  }
}
CONFIG
  start_on "$host" keepalived -n -l -D -P -f "$work/keepalived$number.conf" -p "$work/keepalived$number.pid" \
    -r "$work/vrrp$number.pid" -c "$work/checkers$number.pid"
done
sleep 6
on "$left" bash -c 'for i in 1 2 3; do echo hello | socat - UDP4-DATAGRAM:239.1.2.3:5000,ip-multicast-ttl=5,ip-multicast-if=10.0.1.1; sleep 0.3; done' || true
sleep 2
configure "$left" pimd 'interface inside' 'no ip igmp join 239.1.2.3'
kill "${started[-1]}"
sleep 5
keep_as multicast.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log" "$work"/*/*.log
