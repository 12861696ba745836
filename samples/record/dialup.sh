#!/bin/bash
# dialup.pcap: what goes before PPP: discovery of an access concentrator over Ethernet (PPPoE), its session opened and
# given up, and the control connection and call of a tunnel (L2TP 2) with challenge and response, until both end. The
# kernel here has no PPP, so that no link opens inside.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need pppoe-server pppoe xl2tpd

connect_hosts
echo '* * secret *' >"$work/secrets"
tunnel() {   # host, what its configuration ends with
  cat >"$work/$1.conf" - <<EOF
[global]
auth file = $work/secrets
$(cat)
EOF
  start_on "$1" xl2tpd -D -c "$work/$1.conf" -s "$work/secrets" -p "$work/$1.pid" -C "$work/$1.control"
}
: >"$work/options"
record cable 'ether proto 0x8863 or ether proto 0x8864 or udp port 1701'
start_on "$right" pppoe-server -I cable -C concentrator -S internet -S video -L 192.0.2.2 -R 10.0.0.10 -N 4 -X "$work/pppoe.pid" \
  -O "$work/options" -M 'Welcome' -H 'http://192.0.2.2/'
sleep 1
on "$left" pppoe -I cable -A -t 1 >>"$work/log" 2>&1 || true
on "$left" pppoe -I cable -d -S video -C concentrator -W 12ab >>"$work/log" 2>&1 || true
sleep 1
[ ! -e "$work/pppoe.pid" ] || started+=("$(cat "$work/pppoe.pid")")

tunnel "$right" <<EOF
[lns default]
ip range = 10.0.0.10-10.0.0.20
local ip = 10.0.0.1
challenge = yes
hostname = server
length bit = yes
EOF
sleep 1
tunnel "$left" <<EOF
[lac call]
lns = 192.0.2.2
challenge = yes
hostname = client
bps = 64000
EOF
sleep 1
echo 'c call' >"$work/$left.control"
sleep 3
echo 'd call' >"$work/$left.control"
sleep 2
keep_as dialup.pcap
