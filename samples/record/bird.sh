#!/bin/bash
# bird.pcap: two hosts that speak BIRD's protocols, each neighbour known by a secret: OSPF for both families (HMAC-SHA-256 and
# HMAC-SHA-512), RIP (HMAC-SHA-384), RIPng, Babel with MACs, BFD (meticulous keyed SHA1), and BGP under TCP's MD5 option with
# several paths, large communities, flow rules of both families, a role, a route refresh, a restart and an end.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need bird birdc

connect_hosts
record cable "not arp and not icmp6 and not igmp and not udp port 5353"
number=0
for host in "$left" "$right"; do
  number=$((number + 1))
  other=$((3 - number))
  cat >"$work/bird$number.conf" <<CONFIG
router id 10.255.0.$number;
graceful restart wait 10;
protocol device {}
flow4 table flow4rules;
flow6 table flow6rules;
protocol static four { ipv4; route 10.0.$number.0/24 blackhole; route 10.10.$number.0/24 blackhole { bgp_large_community.add((6500$number, 1, 2)); bgp_community.add((6500$number, 7)); bgp_ext_community.add((rt, 6500$number, 9)); }; }
protocol static six { ipv6; route 2001:db8:$number::/48 blackhole; }
protocol static rules4 { flow4 { table flow4rules; }; route flow4 { dst 10.9.$number.0/24; src 10.8.0.0/16; proto = 6 || = 17; dport = 80 || 443..444; tcp flags 0x02/0x12; length < 64; dscp = 46; fragment is_fragment || !first_fragment; } { bgp_ext_community.add((generic, 0x80060000, 0x41200000)); }; }
protocol static rules6 { flow6 { table flow6rules; }; route flow6 { dst 2001:db8:9::/48; src ::5:0:0:0/80 offset 64; next header 17; label = 74565; icmp type = 128; icmp code = 0; }; }
protocol ospf v2 ospf4 {
  ipv4 { import all; export all; };
  area 0 { interface "cable" { hello 2; dead 8; retransmit 2; wait 4; authentication cryptographic; password "neighbour" { id 5; algorithm hmac sha256; }; }; };
}
protocol ospf v3 ospf6 {
  ipv6 { import all; export all; };
  area 0 { interface "cable" { hello 2; dead 8; wait 4; authentication cryptographic; password "neighbour" { id 6; algorithm hmac sha512; }; }; };
}
protocol rip rip4 {
  ipv4 { import all; export all; };
  interface "cable" { update time 6; timeout time 20; authentication cryptographic; password "neighbour" { id 7; algorithm hmac sha384; }; };
}
protocol rip ng rip6 { ipv6 { import all; export all; }; interface "cable" { update time 5; timeout time 20; }; }
protocol babel babels {
  ipv4 { import all; export all; }; ipv6 { import all; export all; };
  interface "cable" { type wired; hello interval 2 s; update interval 6 s; authentication mac; password "0123456789abcdef0123456789abcdef" { algorithm hmac sha256; }; password "0123456789abcdef" { algorithm blake2s128; }; };
}
protocol bfd watch { interface "cable" { min rx interval 2 s; min tx interval 2 s; idle tx interval 2 s; authentication meticulous keyed sha1; password "neighbour" { id 8; }; }; }
protocol bgp neighbour1 {
  local 192.0.2.$number as 6500$number;
  neighbor 192.0.2.$other as 6500$other;
  password "neighbour";
  local role peer;
  bfd; graceful restart 20; hold time 9; keepalive time 3; connect delay time 1; error wait time 1, 2;
  ipv4 { add paths; import all; export where source = RTS_STATIC; import table; extended next hop; };
  ipv6 { import all; export where source = RTS_STATIC; next hop self; };
  flow4 { table flow4rules; import all; export all; };
  flow6 { table flow6rules; import all; export all; };
}
CONFIG
  start_on "$host" bird -f -c "$work/bird$number.conf" -s "$work/bird$number.ctl" -P "$work/bird$number.pid"
done
sleep 11
ask() { on "$right" birdc -s "$work/bird2.ctl" "$@" >>"$work/log" 2>&1 || true; }
on "$left" birdc -s "$work/bird1.ctl" reload in neighbour1 >>"$work/log" 2>&1 || true
ask disable four
sleep 2
ask restart neighbour1
sleep 4
ask disable neighbour1 '"back at six"'
sleep 1
ask enable neighbour1
sleep 3
ask graceful restart
sleep 2
keep_as bird.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
