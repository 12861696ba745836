#!/bin/bash
# paths.pcap: PCEP between two routers of FRR, which both want paths computed: no server of it is packaged, so each takes the other for
# one, by a relay between their connections. Opens with what they can do, keepalives, reports of paths and what is refused.
# shellcheck source-path=SCRIPTDIR source=routers.sh
. "$(dirname "$0")/routers.sh"
need socat vtysh

connect_hosts
record cable "tcp port 4189"
start_on "$right" socat TCP-LISTEN:4189,bind=192.0.2.2,reuseaddr,fork TCP-LISTEN:4190,bind=127.0.0.1,reuseaddr
sleep 1
number=0
for host in "$left" "$right"; do
  number=$((number + 1))
  start_router "$host" zebra </dev/null
  address=192.0.2.2 port=4189 own=192.0.2.1
  [[ $number == 1 ]] || address=127.0.0.1 port=4190 own=127.0.0.1
  cat >"$work/$host/pathd.conf" <<CONFIG
hostname router$number
segment-routing
 traffic-eng
  segment-list some
   index 10 mpls label 1601$number
   index 20 mpls label 1602$number
  exit
  policy color $number endpoint 10.255.0.9
   name best
   binding-sid 222$number
   candidate-path preference 100 name fixed explicit segment-list some
   candidate-path preference 200 name computed dynamic
    bandwidth 1000
    metric bound te 30 required
    metric hc 5
    affinity include-any 0x10
   exit
  exit
  pcep
   pce-config timing
    timer keep-alive 5
    timer dead-timer 20
    timer session-timeout-interval 8
    timer delegation-timeout 10
    source-address ip $own
    pce-initiated
    sr-draft07
   exit
   pce far
    config timing
    address ip $address port $port
   exit
   pcc
    msd 8
    peer far precedence 10
   exit
  exit
 exit
exit
CONFIG
  chown -R frr:frr "$work/$host"
  start_on "$host" "$frr/pathd" -u frr -g frr -M pathd_pcep -f "$work/$host/pathd.conf" -i "$work/$host/pathd.pid" \
    -z "$work/$host/zebra.sock" --vty_socket "$work/$host"
  sleep 1
done
sleep 16
configure "$left" pathd 'segment-routing' 'traffic-eng' 'no policy color 1 endpoint 10.255.0.9' || true
sleep 2
keep_as paths.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log" "$work"/*/*.log
