#!/bin/bash
# igp.pcap: two routers that speak OSPF for IPv4 (with MD5, segment routing, a graceful restart) and for IPv6, IS-IS at both
# levels and for both families, RIP with MD5, RIPng and EIGRP: neighbours found, routes told and taken back.
# shellcheck source-path=SCRIPTDIR source=routers.sh
. "$(dirname "$0")/routers.sh"
need vtysh

connect_hosts
record cable "not arp and not icmp6 and not igmp"
start_tables
number=0
for host in "$left" "$right"; do
  number=$((number + 1))
  start_router "$host" ospfd <<CONFIG
interface cable
 ip ospf authentication message-digest
 ip ospf message-digest-key 7 md5 neighbour
 ip ospf hello-interval 2
 ip ospf dead-interval 8
router ospf
 ospf router-id 10.255.0.$number
 capability opaque
 network 192.0.2.0/24 area 0.0.0.0
 network 10.0.$number.0/24 area 0.0.0.$number
 network 10.255.0.$number/32 area 0.0.0.0
 area 0.0.0.$number nssa
 mpls-te on
 mpls-te router-address 10.255.0.$number
 mpls-te inter-as area 0.0.0.0
 router-info area
 segment-routing on
 segment-routing global-block 16000 23999
 segment-routing node-msd 8
 segment-routing prefix 10.255.0.$number/32 index 10$number
 graceful-restart grace-period 60
 graceful-restart helper enable
CONFIG
  start_router "$host" ospf6d <<CONFIG
interface cable
 ipv6 ospf6 area 0.0.0.0
 ipv6 ospf6 hello-interval 2
 ipv6 ospf6 dead-interval 8
 ipv6 ospf6 authentication key-id 9 hash-algo hmac-sha-256 key neighbour
interface inside
 ipv6 ospf6 area 0.0.0.$number
router ospf6
 ospf6 router-id 10.255.0.$number
CONFIG
  start_router "$host" isisd <<CONFIG
hostname router$number
interface cable
 ip router isis inner
 ipv6 router isis inner
 isis password md5 neighbour
 isis hello-interval 3
 isis csnp-interval 5
 no isis hello padding
interface lo
 ip router isis inner
 isis passive
interface inside
 ip router isis inner
 ipv6 router isis inner
 isis passive
router isis inner
 net 49.0001.0000.0000.000$number.00
 metric-style wide
 area-password md5 area
 domain-password md5 domain
 topology ipv6-unicast
 mpls-te on
 mpls-te router-address 10.255.0.$number
 segment-routing on
 segment-routing global-block 16000 23999
 segment-routing node-msd 8
 segment-routing prefix 10.255.0.$number/32 index 10$number
CONFIG
  start_router "$host" ripd <<CONFIG
key chain ring
 key 3
  key-string neighbour
interface cable
 ip rip authentication mode md5
 ip rip authentication key-chain ring
router rip
 network cable
 network inside
 timers basic 5 30 20
CONFIG
  start_router "$host" ripngd <<CONFIG
router ripng
 network cable
 network inside
CONFIG
  start_router "$host" eigrpd <<CONFIG
router eigrp 100
 network 192.0.2.0/24
 network 10.0.$number.0/24
CONFIG
done
sleep 14
configure "$right" zebra 'interface inside' 'ip address 10.0.22.1/24' 'ipv6 address 2001:db8:22::1/64'
configure "$right" ospfd 'router ospf' 'network 10.0.22.0/24 area 0.0.0.0' 'redistribute connected'
configure "$right" ospf6d 'router ospf6' 'redistribute connected'
configure "$right" ripd 'router rip' 'redistribute connected metric 3'
configure "$right" eigrpd 'router eigrp 100' 'network 10.0.22.0/24'
sleep 6
configure "$right" zebra 'interface inside' 'no ip address 10.0.22.1/24' 'no ipv6 address 2001:db8:22::1/64'
sleep 4
on "$right" vtysh --vty_socket "$work/$right" -d ospfd -c 'graceful-restart prepare ip ospf' >>"$work/log" 2>&1 || true
sleep 2
keep_as igp.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log" "$work"/*/*.log
