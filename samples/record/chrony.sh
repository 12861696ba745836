#!/bin/bash
# chrony.pcap: chronyd asks another for the time, in the clear, with keys, interleaved, as peers, and is asked how it does.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need chronyd chronyc

cat >"$work/keys" <<'KEYS'
1 MD5 HEX:00112233445566778899AABBCCDDEEFF
2 SHA1 HEX:00112233445566778899AABBCCDDEEFF00112233
3 SHA256 HEX:00112233445566778899AABBCCDDEEFF00112233445566778899AABBCCDDEEFF
KEYS
cat >"$work/server.conf" <<CONFIG
local stratum 5
allow
keyfile $work/keys
cmdport 323
bindcmdaddress 192.0.2.2
cmdallow all
pidfile $work/server.pid
driftfile $work/server.drift
bindcmdaddress /
CONFIG
connect_hosts
start_on "$right" chronyd -x -d -f "$work/server.conf" -u root
sleep 3
record cable "port 123 or port 323"
number=0
for options in '' 'key 1' 'key 2' 'key 3' 'xleave' 'version 3' 'offset 0.1 copy' 'extfield F323'; do
  number=$((number + 1))
  cat >"$work/client.conf" <<CONFIG
server 192.0.2.2 iburst minpoll 0 maxpoll 0 $options
keyfile $work/keys
cmdport 0
pidfile $work/client$number.pid
bindcmdaddress /
CONFIG
  on "$left" timeout 4 chronyd -x -d -f "$work/client.conf" -u root >>"$work/log" 2>&1 || true
done
on "$left" timeout 4 chronyc -h 192.0.2.2 -n tracking >>"$work/log" 2>&1 || true
on "$left" timeout 4 chronyc -h 192.0.2.2 -n sources >>"$work/log" 2>&1 || true
keep_as chrony.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
