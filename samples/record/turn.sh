#!/bin/bash
# turn.pcap: coturn, asked for the address that it sees (STUN, with the tests of RFC 5780), and used as a relay: with
# indications, with channels, without fragmenting, with two address families, over TCP and IPv6, by a mobile client; a wrong
# password and wrong messages.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need turnserver turnutils_uclient turnutils_stunclient turnutils_peer

cat >"$work/turnserver.conf" <<CONFIG
listening-ip=192.0.2.2
listening-ip=192.0.2.3
listening-ip=2001:db8::2
relay-ip=192.0.2.2
relay-ip=2001:db8::2
rfc5780
lt-cred-mech
user=joe:secret
realm=example.test
software-attribute
mobility
no-cli
no-tls
no-dtls
fingerprint
allow-loopback-peers
min-port=50000
max-port=50100
userdb=$work/turn.db
pidfile=$work/turn.pid
log-file=$work/turn.log
simple-log
CONFIG

connect_hosts
on "$right" ip address add 192.0.2.3/24 dev cable
record cable 'udp port 3478 or udp port 3479 or tcp port 3478'
start_on "$right" turnserver -c "$work/turnserver.conf"
start_on "$right" turnutils_peer -L 192.0.2.2 -p 3480
sleep 2

# Errors are part of the recording.
ask() { on "$left" timeout 20 "$@" >>"$work/log" 2>&1 || true; }
use() { ask turnutils_uclient -L 192.0.2.1 -e 192.0.2.2 -n 1 -l 20 -c "$@" 192.0.2.2; }

ask turnutils_stunclient -L 192.0.2.1 -f 192.0.2.2
use -u joe -w secret -s
use -u joe -w secret -g -G
use -u joe -w secret -t
use -u joe -w secret -M -s
use -u joe -w wrong -s
ask turnutils_uclient -L 192.0.2.1 -n 1 -l 20 -T -y -u joe -w secret 192.0.2.2
ask turnutils_uclient -L 192.0.2.1 -n 1 -l 20 -Z -y -u joe -w secret 192.0.2.2
ask turnutils_uclient -L 2001:db8::1 -n 1 -l 20 -x -y -c -u joe -w secret 2001:db8::2
keep_as turn.pcap
