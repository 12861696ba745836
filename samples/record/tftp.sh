#!/bin/bash
# tftp.pcap: a file read and written in blocks of 512 octets, with options (block size, time-out, transfer size, window
# size), over both protocols; a file that is not there, one that may not be written.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need in.tftpd tftp curl

mkdir -m 777 "$work/files"
seq 1 300 >"$work/files/numbers.txt"
touch "$work/files/written.txt"
chmod 666 "$work/files"/*

connect_hosts
start_on "$right" in.tftpd -L --user root --secure --create "$work/files"
sleep 0.5
record cable udp
cd "$work"
on "$left" tftp 192.0.2.2 -m octet -c get numbers.txt
on "$left" tftp 192.0.2.2 -m netascii -c put numbers.txt written.txt
on "$left" tftp 192.0.2.2 -m octet -c get nowhere.txt || true
on "$left" curl -s --tftp-blksize 1024 tftp://192.0.2.2/numbers.txt >/dev/null
on "$left" curl -s -T numbers.txt 'tftp://[2001:db8::2]/written.txt'
keep_as tftp.pcap
