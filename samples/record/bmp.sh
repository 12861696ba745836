#!/bin/bash
# bmp.pcap: a router tells a collector (pmbmpd) what it hears by BGP: its start, peers that come up and go down, routes before
# and after its policy, the messages themselves, counts.
# shellcheck source-path=SCRIPTDIR source=routers.sh
. "$(dirname "$0")/routers.sh"
need vtysh pmbmpd

connect_hosts
cat >"$work/pmbmpd.conf" <<CONFIG
bmp_daemon_ip: 192.0.2.2
bmp_daemon_port: 1790
bmp_daemon_msglog_file: $work/bmp.log
CONFIG
start_on "$right" timeout -k 1 60 pmbmpd -f "$work/pmbmpd.conf"
sleep 1
record cable "tcp port 1790"
start_tables
number=0
for host in "$left" "$right"; do
  number=$((number + 1))
  other=$((3 - number))
  cat >"$work/$host/bgpd.conf" <<CONFIG
hostname router$number
router bgp 6500$number
 bgp router-id 10.255.0.$number
 no bgp ebgp-requires-policy
 no bgp network import-check
 timers bgp 3 9
 neighbor 192.0.2.$other remote-as 6500$other
 neighbor 192.0.2.$other timers connect 1
 neighbor 192.0.2.$other advertisement-interval 0
 neighbor 2001:db8::$other remote-as 6500$other
 neighbor 2001:db8::$other timers connect 1
 address-family ipv4 unicast
  network 10.0.$number.0/24
  network 198.51.10$number.0/24
  neighbor 192.0.2.$other soft-reconfiguration inbound
 exit-address-family
 address-family ipv6 unicast
  network 2001:db8:$number::/64
  neighbor 2001:db8::$other activate
  neighbor 2001:db8::$other soft-reconfiguration inbound
 exit-address-family
$([[ $number == 2 ]] || cat <<MORE
 bmp mirror buffer-limit 1000000
 bmp targets collector
  bmp stats interval 2000
  bmp monitor ipv4 unicast pre-policy
  bmp monitor ipv4 unicast post-policy
  bmp monitor ipv6 unicast pre-policy
  bmp mirror
  bmp connect 192.0.2.2 port 1790 min-retry 500 max-retry 1000
 exit
MORE
)
exit
CONFIG
  chown -R frr:frr "$work/$host"
  start_on "$host" "$frr/bgpd" -u frr -g frr -M bmp -f "$work/$host/bgpd.conf" -i "$work/$host/bgpd.pid" \
    -z "$work/$host/zebra.sock" --vty_socket "$work/$host"
done
sleep 7
configure "$right" bgpd 'router bgp 65002' 'address-family ipv4 unicast' 'no network 10.0.2.0/24'
sleep 1
configure "$right" bgpd 'router bgp 65002' 'neighbor 192.0.2.1 shutdown message back at six'
sleep 3
kill "${started[-2]}"
sleep 1
keep_as bmp.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
