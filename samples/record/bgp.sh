#!/bin/bash
# bgp.pcap: two routers that speak BGP: routes of IPv4 and IPv6 with communities of every kind, of VPNs and of an Ethernet VPN, told,
# taken back and asked for again; several paths, restarts, a wrong number of a system, an end with a word.
# shellcheck source-path=SCRIPTDIR source=routers.sh
. "$(dirname "$0")/routers.sh"
need vtysh

connect_hosts
record cable "tcp port 179"
start_tables
number=0
for host in "$left" "$right"; do
  number=$((number + 1))
  other=$((3 - number))
  start_router "$host" bgpd <<CONFIG
hostname router$number
router bgp 6500$number
 bgp router-id 10.255.0.$number
 no bgp ebgp-requires-policy
 no bgp network import-check
 bgp graceful-restart
 bgp graceful-shutdown
 timers bgp 4 12
 neighbor 192.0.2.$other remote-as 6500$other
 neighbor 192.0.2.$other timers connect 2
 neighbor 192.0.2.$other advertisement-interval 0
 neighbor 192.0.2.$other capability extended-nexthop
 neighbor 192.0.2.$other capability orf prefix-list both
 neighbor 192.0.2.$other local-role peer
 address-family ipv4 unicast
  network 10.0.$number.0/24
  network 198.51.10$number.0/24 route-map MARKS
  neighbor 192.0.2.$other prefix-list SOME in
  neighbor 192.0.2.$other addpath-tx-all-paths
  neighbor 192.0.2.$other soft-reconfiguration inbound
 exit-address-family
 address-family ipv6 unicast
  network 2001:db8:$number::/64 route-map MARKS
  neighbor 192.0.2.$other activate
 exit-address-family
 address-family ipv4 vpn
  network 10.8.$number.0/24 rd 6500$number:8 label 800$number
  neighbor 192.0.2.$other activate
 exit-address-family
 address-family ipv6 vpn
  network 2001:db8:8$number::/48 rd 10.255.0.$number:8 label 900$number
  neighbor 192.0.2.$other activate
 exit-address-family
 address-family ipv4 multicast
  network 10.7.$number.0/24
  neighbor 192.0.2.$other activate
 exit-address-family
 address-family l2vpn evpn
  network 10.6.$number.0/24 rd 6500$number:6 ethtag 0 label 6000 esi 00:11:22:33:44:55:66:77:88:9$number gwip 192.0.2.$number routermac 02:00:00:00:00:0$number
  advertise-all-vni
  neighbor 192.0.2.$other activate
 exit-address-family
 address-family ipv4 flowspec
  neighbor 192.0.2.$other activate
 exit-address-family
exit
ip prefix-list SOME seq 5 permit 10.0.0.0/8 le 24
ip prefix-list SOME seq 10 permit 198.51.0.0/16 ge 20 le 24
ip prefix-list SOME seq 15 deny 0.0.0.0/0
route-map MARKS permit 10
 set community 6500$number:100 no-export blackhole
 set large-community 6500$number:1:2
 set extcommunity rt 6500$number:77
 set extcommunity soo 10.255.0.$number:78
 set extcommunity bandwidth 100
 set metric 50
 set as-path prepend 420000000$number 6500$number
 set aggregator as 6500$number 10.255.0.$number
 set atomic-aggregate
 set origin incomplete
CONFIG
done
sleep 8
on "$right" vtysh --vty_socket "$work/$right" -d bgpd -c 'clear bgp ipv4 unicast * in prefix-filter' >>"$work/log" 2>&1 || true
on "$left" vtysh --vty_socket "$work/$left" -d bgpd -c 'clear bgp ipv6 unicast * soft in' >>"$work/log" 2>&1 || true
configure "$right" bgpd 'router bgp 65002' 'address-family ipv4 unicast' 'no network 10.0.2.0/24'
configure "$right" bgpd 'router bgp 65002' 'address-family ipv4 vpn' 'no network 10.8.2.0/24 rd 65002:8 label 8002'
sleep 1
configure "$right" bgpd 'router bgp 65002' 'neighbor 192.0.2.1 shutdown message back at six'
sleep 3
configure "$right" bgpd 'router bgp 65002' 'no neighbor 192.0.2.1 shutdown' 'neighbor 192.0.2.1 local-as 65099 no-prepend replace-as'
sleep 3
sleep 1
keep_as bgp.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log" "$work"/*/*.log
