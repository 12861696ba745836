#!/bin/bash
# openbgpd.pcap: OpenBGPD on both hosts, under TCP's MD5 option: capabilities of its own choice (an enhanced refresh,
# several paths, a role), routes with communities of each kind, a refresh, an end with a word.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need bgpctl bgpd

# Its parts give up root and see an empty folder.
empty=$(getent passwd _openbgpd | cut -d: -f6)
[[ -d $empty ]] || install -d -m 755 "$empty"
connect_hosts
record cable "tcp port 179"
number=0
for host in "$left" "$right"; do
  number=$((number + 1))
  other=$((3 - number))
  cat >"$work/bgpd$number.conf" <<CONFIG
AS 420000000$number 6500$number
router-id 10.255.0.$number
fib-update no
holdtime 9
listen on 192.0.2.$number
socket "$work/bgpd$number.sock"
network 10.0.$number.0/24 set { community 6500$number:1 community NO_EXPORT large-community 6500$number:1:2 ext-community rt 6500$number:3 ext-community soo 10.255.0.$number:4 med 5 }
network 10.1.$number.0/24 set { prepend-self 3 }
network 2001:db8:$number::/48 set { community GRACEFUL_SHUTDOWN }
neighbor 192.0.2.$other {
  remote-as 420000000$other
  descr other
  announce IPv4 unicast
  announce IPv6 unicast
  announce refresh yes
  announce enhanced refresh yes
  announce restart yes
  announce as-4byte yes
  announce add-path recv yes
  announce add-path send all
  announce policy peer
  tcp md5sig password neighbour
}
allow from any
allow to any
CONFIG
  chmod 600 "$work/bgpd$number.conf"
  start_on "$host" /usr/sbin/bgpd -d -f "$work/bgpd$number.conf"
done
sleep 10
ask() { on "$left" bgpctl -s "$work/bgpd1.sock" "$@" >>"$work/log" 2>&1 || true; }
ask neighbor 192.0.2.2 refresh
ask network delete 10.1.1.0/24
sleep 2
ask neighbor 192.0.2.2 clear 'back at six'
sleep 4
ask neighbor 192.0.2.2 down gone
sleep 2
keep_as openbgpd.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
