#!/bin/bash
# telemetry.pcap: collectd sends its readings, in the clear, signed and encrypted; pmacct's probe exports what it sees as NetFlow 5, 9,
# IPFIX and sFlow.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need collectd pmacctd ping

echo 'sample: secret' >"$work/users"
collect() {
  cat >"$work/collectd.conf" <<CONFIG
Hostname "sample"
Interval 1
BaseDir "$work"
PIDFile "$work/collectd.pid"
LoadPlugin load
LoadPlugin network
LoadPlugin threshold
<Plugin network>
  <Server "192.0.2.2" "25826">
    $1
  </Server>
</Plugin>
<Plugin threshold>
  <Type "load">
    WarningMax 0.000001
    Persist true
  </Type>
</Plugin>
CONFIG
  on "$left" timeout 4 collectd -f -C "$work/collectd.conf" >>"$work/log" 2>&1 || true
}
probe() {
  cat >"$work/pmacct.conf" <<CONFIG
daemonize: false
pcap_interface: lo
plugins: $1
$2
CONFIG
  ip netns exec "$left" timeout -s INT 12 pmacctd -f "$work/pmacct.conf" >>"$work/log" 2>&1 &
  local pid=$!
  sleep 2
  on "$left" ping -c 3 -i 0.3 127.0.0.1 >/dev/null
  # shellcheck disable=SC2016   # the inner shell's port
  on "$left" bash -c 'for port in 7 9 80; do (echo x >/dev/udp/127.0.0.1/$port) 2>/dev/null; done' || true
  wait "$pid" || true
}

connect_hosts
record cable "src host 192.0.2.1 and (port 25826 or port 2055 or port 4739 or port 6343)"
collect ''
collect "SecurityLevel Sign
    Username sample
    Password secret"
collect "SecurityLevel Encrypt
    Username sample
    Password secret"
for version in 5 9 10; do
  probe nfprobe "nfprobe_receiver: 192.0.2.2:$([[ $version == 10 ]] && echo 4739 || echo 2055)
nfprobe_version: $version
nfprobe_timeouts: general=4:maxlife=4:expint=2
aggregate: src_host, dst_host, src_port, dst_port, proto, tos"
done
probe sfprobe "sfprobe_receiver: 192.0.2.2:6343
sampling_rate: 1"
keep_as telemetry.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
