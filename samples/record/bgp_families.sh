#!/bin/bash
# bgp_families.pcap: what routers seldom say by BGP: flow rules of IPv4, IPv6, VPNs and bridges, virtual LANs, every kind of
# route of an Ethernet VPN, labels, segments of prefixes, routes with every attribute, several paths.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need exabgp gobgpd gobgp

cat >"$work/right.conf" <<'CONFIG'
neighbor 192.0.2.1 {
  router-id 10.255.0.9; local-address 192.0.2.2; local-as 65099; peer-as 65001; hold-time 30;
  family { ipv4 unicast; ipv4 nlri-mpls; ipv4 mpls-vpn; ipv6 unicast; ipv4 flow; ipv4 flow-vpn; ipv6 flow; l2vpn vpls; l2vpn evpn; bgp-ls bgp-ls; }
  capability { graceful-restart 60; add-path send/receive; asn4; extended-message; operational; multi-session disable; route-refresh; nexthop; }
  static {
    route 10.3.0.0/24 next-hop 192.0.2.2 path-information 1.2.3.4 origin egp med 7 local-preference 9 aigp 300 \
      community [ 65099:1 no-advertise ] large-community [ 65099:2:3 ] extended-community [ target:65099:4 origin:10.0.0.9:5 target:70000L:6 ] \
      originator-id 10.255.0.8 cluster-list [ 10.255.0.6 10.255.0.7 ] atomic-aggregate aggregator ( 65099:10.255.0.9 ) as-path [ 65099 70000 [ 70001 70002 ] ];
    route 10.4.0.0/24 next-hop 192.0.2.2 label [ 800000 ] bgp-prefix-sid [ 777, [ ( 800000,4096 ) ] ];
    route 10.5.0.0/24 next-hop 192.0.2.2 label 500 rd 65099:5 extended-community [ target:65099:5 l2info:19:0:1500:111 ];
    route 10.5.1.0/24 next-hop 192.0.2.2 label 3 rd 65099:5 extended-community [ target:65099:5 ] bgp-prefix-sid-srv6 ( l3vpn 2001:db8:9::20 );
    route 2001:db8:33::/48 next-hop 2001:db8::2;
  }
  l2vpn {
    vpls site { endpoint 5; base 10702; offset 1; size 8; next-hop 192.0.2.2; rd 192.0.2.2:123; extended-community [ target:65099:99 l2info:19:0:1500:111 ]; }
  }
  flow {
    route one { match { source 10.0.0.1/32; destination 192.168.0.1/32; port [ =80 =8080 ]; destination-port [ >8080&<8088 =3128 ]; source-port >1024; protocol [ =tcp =udp ]; packet-length [ >200&<300 >400&<500 ]; fragment [ first-fragment last-fragment ]; icmp-type [ unreachable echo-request ]; icmp-code [ host-unreachable ]; tcp-flags [ =syn+ack !fin ]; dscp [ =10 =20 ]; } then { rate-limit 9600; } }
    route two { match { destination 192.168.2.0/24; } then { redirect 65500:12345; action sample-terminal; mark 12; } }
    route three { rd 65535:65536; match { source 10.0.0.2/32; } then { discard; } }
    route four { match { source 2001:db8::1/128/0; destination 2001:db8:2::/48/32; next-header [ =udp ]; traffic-class [ =32 ]; flow-label [ >100&<2000 ]; } then { redirect 65500:12345; community [ 30740:0 30740:30740 ]; } }
  }
}
CONFIG
families=$(printf '[[neighbors.afi-safis]]\n[neighbors.afi-safis.config]\nafi-safi-name = "%s"\n[neighbors.afi-safis.add-paths.config]\nreceive = true\nsend-max = 4\n' \
  ipv4-unicast ipv6-unicast ipv4-labelled-unicast l3vpn-ipv4-unicast l2vpn-vpls l2vpn-evpn ipv4-flowspec ipv6-flowspec \
  l3vpn-ipv4-flowspec l2vpn-flowspec rtc ls ipv4-srpolicy ipv4-mup)
cat >"$work/left.toml" <<CONFIG
[global.config]
as = 65001
router-id = "10.255.0.1"
[[neighbors]]
[neighbors.config]
neighbor-address = "192.0.2.2"
peer-as = 65099
[neighbors.transport.config]
passive-mode = true
$families
CONFIG
go() { on "$left" gobgp global rib add -a "$@" >>"$work/log" || { cat "$work/log" >&2; exit 1; }; }

connect_hosts
record cable "tcp port 179"
start_on "$left" gobgpd -f "$work/left.toml" --pprof-disable
sleep 2
go ipv4-mpls 10.9.1.0/24 100/200 large-community 65001:1:2
go vpnv4 10.8.1.0/24 label 800 rd 10.255.0.1:8 rt 65001:8 aigp metric 9
go evpn a-d esi LACP 02:00:00:00:00:09 100 etag 10 label 60 rd 65001:6 rt 65001:6 encap vxlan esi-label 61
go evpn macadv 02:00:00:00:06:01 10.6.1.1 esi AS 65001 7 etag 10 label 60 rd 65001:6 rt 65001:6 encap vxlan router-mac 02:00:00:00:00:01
go evpn multicast 10.255.0.1 etag 10 rd 65001:6 rt 65001:6 encap vxlan pmsi ingress-repl 60 10.255.0.1
go evpn esi 10.255.0.1 esi ROUTERID 10.255.0.1 5 rd 65001:6 rt 65001:6
go evpn prefix 10.6.2.0/24 gw 192.0.2.1 etag 10 label 62 rd 65001:6 rt 65001:6 encap vxlan router-mac 02:00:00:00:00:01
go evpn prefix 2001:db8:6::/48 etag 10 label 63 rd 65001:6 rt 65001:6
go l2vpn-flowspec rd 65001:7 match destination-mac 02:00:00:00:00:05 ether-type arp vid '>=10&<=20' cos '=3' inner-vid '=5' "then" rate-limit 1000 rt 65001:7
go ipv6-flowspec match destination 2001:db8:5::/48 protocol tcp tcp-flags '=S' fragment first-fragment "then" redirect 65001:5
start_on "$right" env exabgp.daemon.user=root exabgp.api.cli=false exabgp "$work/right.conf"
sleep 9
on "$left" gobgp global rib del -a evpn multicast 10.255.0.1 etag 10 rd 65001:6 >>"$work/log" || true
on "$left" gobgp neighbor 192.0.2.2 softresetin >>"$work/log" || true
sleep 1
kill "${started[-1]}"
sleep 2
keep_as bgp_families.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
