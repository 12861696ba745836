#!/bin/bash
# uftp.pcap: UFTP sends files to a group: in the clear with a directory and a link, to a client named beforehand, with congestion control,
# and encrypted with the keys of RSA and of elliptic curves.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need uftp uftpd

mkdir "$work/files" "$work/got"
head -c 2000 /dev/zero | tr '\0' a >"$work/files/one.txt"
mkdir "$work/files/sub"
echo two >"$work/files/sub/two.txt"
ln -s one.txt "$work/files/link"
connect_hosts
for host in "$left" "$right"; do on "$host" ip route add 224.0.0.0/4 dev cable; done
record cable udp
start_on "$right" uftpd -d -D "$work/got" -I cable -U 0x22222222 -K rsa:1024,ec:secp256r1
sleep 1
# Files to one client, so that nothing waits for others that may come.
send() { on "$left" timeout 20 uftp -I cable -U 0x11111111 -H 0x22222222 -R 5000 -b 600 "$@" >>"$work/log" 2>&1 || true; }
send -E "$work/files" "$work/files/link" "$work/files/sub" "$work/files/one.txt"
send "$work/files/one.txt"
send -z -Z "$work/files/one.txt"
send -C tfmcc "$work/files/one.txt"
send -Y aes256-gcm -e rsa -w authenc -K 1024 "$work/files/one.txt"
send -Y aes128-cbc -e ecdh_ecdsa:secp256r1 -K secp256r1 -h sha256 -w hmac -c "$work/files/one.txt"
keep_as uftp.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
