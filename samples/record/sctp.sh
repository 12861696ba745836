#!/bin/bash
# sctp.pcap: an association set up, messages on several streams, in fragments, unordered, of limited life; streams reset and added,
# heartbeats, an orderly end; another one that is aborted.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need cc

[[ -e /usr/include/usrsctp.h ]] || { echo "$0: libusrsctp-dev is needed" >&2; exit 1; }
cc -O1 -o "$work/peer" "$here/sctp_peer.c" -lusrsctp
connect_hosts
record cable "ip proto 132"
start_on "$right" "$work/peer" 192.0.2.2
sleep 0.5
on "$left" timeout 10 "$work/peer" 192.0.2.1 192.0.2.2
on "$left" timeout 10 "$work/peer" 192.0.2.1 192.0.2.2 abort
keep_as sctp.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
