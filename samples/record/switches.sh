#!/bin/bash
# switches.pcap: what switches say, by senders of single frames: PTP as ptpd speaks it, and of yersinia
# spanning tree (configuration, change of topology), CDP, DTP, VTP, 802.1Q in 802.1Q, 802.1X; stations are
# looked for by lltdscan and woken by etherwake.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need yersinia ptpd lltdscan etherwake script

cd "$work"   # yersinia leaves a log where it stands
lay_cable
for host in "$left" "$right"; do
  for interface in all default cable; do
    on "$host" bash -c "echo 1 >/proc/sys/net/ipv6/conf/$interface/disable_ipv6"
  done
done
plug_in
record cable
# One frame each: the attacks that send a single one. It wants a terminal.
say() { on "$left" timeout 6 script -qec "yersinia $*" /dev/null >>"$work/log" 2>&1 </dev/null || true; }
say stp -attack 0 -interface cable
say stp -attack 1 -interface cable
say cdp -attack 0 -interface cable
say dtp -attack 0 -interface cable
say vtp -attack 0 -interface cable
say dot1q -attack 0 -interface cable
say dot1q -attack 1 -interface cable
say dot1x -attack 0 -interface cable
on "$left" lltdscan -i cable -t 500 >>"$work/log" 2>&1 || true
on "$left" etherwake -i cable 02:00:00:00:00:02
start_on "$left" ptpd -C -M -i cable -V
start_on "$right" ptpd -C -s -i cable -V -L
sleep 16
keep_as switches.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
