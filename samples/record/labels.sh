#!/bin/bash
# labels.pcap: routers that give each other labels for their addresses and for a pseudowire, and watch the way to each other: LDP
# from the first hello to a session that is closed; BFD over one hop with echoes, over several hops and over IPv6, sessions that
# come up and go down.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
frr=/usr/lib/frr
need "$frr/zebra" "$frr/ldpd" "$frr/bfdd" "$frr/staticd" ip

# run HOST NAME DAEMON OPTION...: with sockets and a configuration of its own.
run() {
  local host=$1 name=$2 daemon=$3; shift 3
  start_on "$host" "$frr/$daemon" -f "$work/$name/$daemon.conf" --vty_socket "$work/$name" -z "$work/$name/zserv.api" \
    -i "$work/$name/$daemon.pid" -P 0 --log stdout "$@"
}

# route HOST NAME ID NUMBER OTHER-ID OTHER-NUMBER
route() {
  local host=$1 name=$2 id=$3 own=$4 other=$5 there=$6
  mkdir -p "$work/$name"
  on "$host" ip address add "$id/32" dev lo
  on "$host" ip tuntap add wire0 mode tap
  echo "hostname $name" >"$work/$name/zebra.conf"
  echo "ip route $other/32 192.0.2.$there" >"$work/$name/staticd.conf"
  cat >"$work/$name/ldpd.conf" <<END
mpls ldp
 router-id $id
 dual-stack transport-connection prefer ipv4
 address-family ipv4
  discovery transport-address $id
  discovery hello holdtime 6
  discovery hello interval 2
  session holdtime 15
  interface cable
 exit-address-family
 address-family ipv6
  discovery transport-address 2001:db8::$own
  interface cable
 exit-address-family
!
l2vpn wires type vpls
 bridge bridge0
 member pseudowire wire0
  neighbor lsr-id $other
  pw-id 77
!
END
  cat >"$work/$name/bfdd.conf" <<END
bfd
 peer 192.0.2.$there interface cable
  receive-interval 900
  transmit-interval 900
  echo-mode
  echo transmit-interval 1000
  echo receive-interval 1000
  no shutdown
 peer $other local-address $id multihop
  receive-interval 1000
  transmit-interval 1000
  no shutdown
 peer 2001:db8::$there local-address 2001:db8::$own interface cable
  receive-interval 1000
  transmit-interval 1000
  no shutdown
END
  chown -R frr:frr "$work/$name"
  run "$host" "$name" zebra
  sleep 0.5
  run "$host" "$name" staticd
  run "$host" "$name" bfdd --bfdctl "$work/$name/bfdd.sock"
  run "$host" "$name" ldpd --ctl_socket "$work/$name"
  ldpd=$!
}

connect_hosts
record cable 'port 646 or udp port 3784 or udp port 3785 or udp port 4784'
route "$left" one 198.51.100.1 1 198.51.100.2 2
route "$right" two 198.51.100.2 2 198.51.100.1 1
sleep 9
on "$left" ip address add 198.51.100.3/32 dev lo
sleep 1
on "$left" ip address delete 198.51.100.3/32 dev lo
kill "$ldpd"
sleep 2
keep_as labels.pcap
