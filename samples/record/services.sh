#!/bin/bash
# services.pcap: xinetd's own small services (echo, discard, daytime, time, chargen) over UDP and TCP; net-snmp's agent
# asked over TCP, and a second one that registers with it as a subagent (AgentX) and answers for it; a client of NAT-PMP.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need xinetd socat snmpd snmpget natpmpc

for service in echo discard daytime time chargen; do
  for kind in stream dgram; do
    cat <<CONFIG
service $service
{
  type = INTERNAL
  id = $service-$kind
  socket_type = $kind
  wait = $([[ $kind == stream ]] && echo no || echo yes)
  user = root
}
CONFIG
  done
done >"$work/xinetd.conf"
cat >"$work/master.conf" <<'CONFIG'
agentAddress udp:161,tcp:161
master agentx
agentXSocket tcp:0.0.0.0:705
sysName agent.example.test
rocommunity public
CONFIG
cat >"$work/sub.conf" <<'CONFIG'
agentXSocket tcp:192.0.2.2:705
CONFIG
export SNMPCONFPATH=$work/none SNMP_PERSISTENT_DIR=$work/kept MIBS=''

connect_hosts
start_on "$right" xinetd -dontfork -f "$work/xinetd.conf" -pidfile "$work/xinetd.pid"
start_on "$right" snmpd -f -LE 6 -C -c "$work/master.conf" -p "$work/master.pid"
await_port 705
await_port 13
record cable port 7 or port 9 or port 13 or port 19 or port 37 or port 161 or port 705 or port 5351

# Sends a text to a service and waits for what it says.
ask() {
  local text=$1 address=$2
  on "$left" timeout 2 socat -t 0.5 - "$address" <<<"$text" >>"$work/log" 2>&1 || true
}
for port in 7 9 13 37; do
  ask hello UDP4:192.0.2.2:$port
  ask hello TCP4:192.0.2.2:$port
done
ask hello UDP4:192.0.2.2:19
ask hello 'TCP6:[2001:db8::2]:13'
on "$left" timeout 2 natpmpc -g 192.0.2.2 >>"$work/log" 2>&1 || true
start_on "$left" snmpd -f -LE 6 -C -c "$work/sub.conf" -X -I snmp_mib,sysORTable,interfaces -p "$work/sub.pid"
sub=$!
sleep 2
on "$left" snmpget -r 0 -t 1 -v2c -c public tcp:192.0.2.2:161 1.3.6.1.2.1.1.5.0 >>"$work/log" 2>&1 || true
on "$left" snmpgetnext -r 0 -t 1 -v2c -c public tcp:192.0.2.2:161 1.3.6.1.2.1.11.1 1.3.6.1.2.1.2.1 >>"$work/log" 2>&1 || true
kill -INT "$sub"
sleep 1
keep_as services.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
