#!/bin/bash
# babel.pcap: babeld and BIRD find each other by Babel with MACs, tell routes and take them back, ask
# for all; then babeld and FRR without a secret.
# shellcheck source-path=SCRIPTDIR source=routers.sh
. "$(dirname "$0")/routers.sh"
need babeld bird birdc vtysh

connect_hosts
for host in "$left" "$right"; do
  on "$host" ip link add inside type veth peer name station
  on "$host" ip link set inside up
  on "$host" ip link set station up
done
on "$left" ip address add 10.0.1.1/24 dev inside
on "$left" ip address add 2001:db8:1::1/64 dev inside
record cable "udp port 6696"
cat >"$work/bird.conf" <<CONFIG
router id 10.255.0.2;
protocol device {}
protocol static four { ipv4; route 10.0.2.0/24 blackhole; route 10.0.22.0/24 blackhole; }
ipv6 sadr table sources;
protocol static six { ipv6 sadr { table sources; }; route 2001:db8:2::/48 from 2001:db8:22::/48 blackhole; route 2001:db8:3::/48 from ::/0 blackhole; }
protocol babel {
  ipv4 { import all; export all; };
  ipv6 sadr { table sources; import all; export all; };
  interface "cable" { type wired; hello interval 2 s; update interval 6 s; authentication mac; password "0123456789abcdef0123456789abcdef" { algorithm hmac sha256; }; };
}
CONFIG
secret=$(printf '%s' 0123456789abcdef0123456789abcdef | od -v -An -tx1 | tr -d ' \n')
start_on "$left" babeld -I "$work/babel.pid" -S "$work/babel.state" -h 2 -H 2 -C "key id one type hmac-sha256 value $secret" \
  -C "interface cable type wired key one enable-timestamps true rfc6126-compatible false" \
  -C 'redistribute ip 10.0.1.0/24 allow' -C 'redistribute ip 2001:db8:1::/64 allow' -C 'redistribute local deny'
first=$!
start_on "$right" bird -f -c "$work/bird.conf" -s "$work/bird.ctl" -P "$work/bird.pid"
second=$!
sleep 10
on "$right" birdc -s "$work/bird.ctl" disable four >>"$work/log" 2>&1 || true
sleep 3
kill "$first" || true
sleep 2
kill "$second" || true
sleep 1
start_on "$left" babeld -I "$work/again.pid" -S "$work/again.state" -h 2 -H 2 \
  -C "interface cable type wired" -C 'redistribute ip 10.0.1.0/24 allow' -C 'redistribute local deny'
start_router "$right" zebra <<CONFIG
interface inside
 ip address 10.0.2.1/24
 ipv6 address 2001:db8:2::1/64
CONFIG
start_router "$right" babeld <<CONFIG
router babel
 network cable
 redistribute ipv4 connected
 redistribute ipv6 connected
interface cable
 babel hello-interval 2000
 babel update-interval 6000
CONFIG
sleep 8
kill "${started[-1]}" || true
sleep 1
keep_as babel.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
