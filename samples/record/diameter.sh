#!/bin/bash
# diameter.pcap: two Diameter nodes (freeDiameter) exchange capabilities, watch one another, and part.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need freeDiameterd openssl

# A node by its host, its name, its address, and the other one's.
write_node() {
  openssl req -x509 -newkey rsa:2048 -nodes -days 30 -subj "/CN=$2" -keyout "$work/$1.key" -out "$work/$1.crt" 2>>"$work/log"
  cat >"$work/$1.conf" <<CONFIG
Identity = "$2";
Realm = "example.test";
TLS_Cred = "$work/$1.crt", "$work/$1.key";
TLS_CA = "$work/$1.crt";
TcTimer = 6;
TwTimer = 6;
No_SCTP;
ListenOn = "$3";
LoadExtension = "dict_nasreq.fdx";
LoadExtension = "dict_eap.fdx";
LoadExtension = "dict_dcca.fdx";
LoadExtension = "dict_dcca_3gpp.fdx";
ConnectPeer = "$4" { ConnectTo = "$5"; No_TLS; };
CONFIG
}
connect_hosts
write_node client client.example.test 192.0.2.1 server.example.test 192.0.2.2
write_node server server.example.test 192.0.2.2 client.example.test 192.0.2.1
record cable tcp port 3868
start_on "$right" freeDiameterd -c "$work/server.conf"
server=$!
sleep 1
start_on "$left" freeDiameterd -c "$work/client.conf"
sleep 20
kill "$server"
sleep 4
keep_as diameter.pcap
