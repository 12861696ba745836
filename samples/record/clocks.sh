#!/bin/bash
# clocks.pcap: PTP with software time stamps (linuxptp). Over UDP with IPv4 and delays from end to end, over IPv6, over Ethernet
# with delays between peers, gPTP; and a client that reads and sets what a clock holds.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need ptp4l pmc

connect_hosts
record cable 'udp port 319 or udp port 320 or ether proto 0x88f7'
# ptp4l of a host with a profile's options, for some seconds.
clocks() {
  local seconds=$1 first second; shift
  start_on "$right" ptp4l -S -m -i cable --uds_address "$work/right.ptp" --priority1 100 "$@"
  first=$!
  start_on "$left" ptp4l -S -m -i cable --uds_address "$work/left.ptp" --free_running 1 "$@"
  second=$!
  sleep "$seconds"
  if [ "${asks-}" ]; then
    for id in DEFAULT_DATA_SET CURRENT_DATA_SET PARENT_DATA_SET TIME_PROPERTIES_DATA_SET PORT_DATA_SET CLOCK_DESCRIPTION \
      USER_DESCRIPTION PRIORITY1 DOMAIN CLOCK_ACCURACY TRACEABILITY_PROPERTIES TIMESCALE_PROPERTIES LOG_ANNOUNCE_INTERVAL \
      DELAY_MECHANISM FAULT_LOG NULL_MANAGEMENT; do
      on "$left" pmc -4 -i cable -b 1 "GET $id" >>"$work/log" 2>&1 || true
    done
    on "$left" pmc -4 -i cable -b 1 'SET PRIORITY1 90' >>"$work/log" 2>&1 || true
  fi
  kill "$first" "$second" || true
  wait "$first" "$second" 2>/dev/null || true
}
asks=yes clocks 10 -4 -E --logAnnounceInterval 0 --path_trace_enabled 1
clocks 7 -6 -E --logAnnounceInterval 0
clocks 7 -2 -P --logAnnounceInterval 0
clocks 7 -2 -P --logAnnounceInterval 0 --transportSpecific 0x1 --ptp_dst_mac 01:80:C2:00:00:0E --p2p_dst_mac 01:80:C2:00:00:0E \
  --follow_up_info 1 --path_trace_enabled 1 --assume_two_step 1 --neighborPropDelayThresh 100000000 --gmCapable 1
keep_as clocks.pcap
