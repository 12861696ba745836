#!/bin/bash
# ntp.pcap: NTPsec's server with a local clock: asked for the time, with and without a key, over IPv6; its status, variables,
# associations, clock and recently used clients, and what it refuses, by control messages.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need ntpd ntpq ntpdig

cat >"$work/ntp.keys" <<'KEYS'
1 MD5 sampleKeyForMD5
2 SHA1 00112233445566778899aabbccddeeff00112233
KEYS
cat >"$work/ntp.conf" <<CONFIG
refclock local stratum 5 minpoll 3 maxpoll 3
tos orphan 5 orphanwait 1
keys $work/ntp.keys
trustedkey 1 2
controlkey 1
restrict 192.0.2.1
restrict 2001:db8::1
CONFIG
chmod 644 "$work"/ntp.*
connect_hosts
start_on "$right" ntpd -n -g -c "$work/ntp.conf" -p "$work/ntpd.pid"
sleep 45   # until the clock is trusted
record cable port 123

# Variables by name, so that nothing of the machine is told.
ask() { on "$left" "$@" >>"$work/log" 2>&1 || true; }
ask ntpdig -t 2 192.0.2.2
ask ntpdig -t 2 -k "$work/ntp.keys" -a 1 192.0.2.2
ask ntpdig -t 2 -k "$work/ntp.keys" -a 2 192.0.2.2
ask ntpdig -t 2 -6 2001:db8::2
ask ntpq -n -c peers -c 'rv 0 leap,stratum,precision,rootdelay,rootdisp,refid,reftime,clock,peer,tc,mintc,offset' -c associations -c 'rv &1' -c 'cv &1' -c 'rv &9' 192.0.2.2
ask ntpq -n -c 'readvar 0 leap,stratum,nothing' -c mrulist -c ifstats 192.0.2.2
ask ntpq -n -c 'rl' -c 'rv 0 nothing' '[2001:db8::2]'
keep_as ntp.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
