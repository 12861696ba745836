#!/bin/bash
# snmp.pcap: net-snmp's agent, asked, walked and set in versions 1, 2c and 3 (without authentication, with it, with
# privacy) with what goes right and what goes wrong; traps and informs of every version to its trap receiver; over IPv6.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need snmpd snmptrapd snmpget

# Nothing of the machine is told: its name and system stand here, and only tables of the namespace are walked.
cat >"$work/snmpd.conf" <<'CONFIG'
agentAddress udp:161,udp6:161
sysDescr An agent of the example network
sysName agent.example.test
sysLocation Room 1
rocommunity public
rocommunity6 public
rwcommunity private
createUser reader
createUser signer SHA "signing words"
createUser sealer SHA "sealing words" AES "sealing words"
createUser older MD5 "signing words" DES "sealing words"
rouser reader noauth
rouser signer auth
rwuser sealer priv
rouser older priv
CONFIG
cat >"$work/snmptrapd.conf" <<'CONFIG'
snmpTrapdAddr udp:162
disableAuthorization yes
createUser -e 0x8000000001020304 sealer SHA "sealing words" AES "sealing words"
createUser sealer SHA "sealing words" AES "sealing words"
CONFIG
# What programs keep between runs, and their own configuration, stand in the temporary folder too; names of modules that
# are not there are no concern of the recording.
export SNMPCONFPATH=$work/none SNMP_PERSISTENT_DIR=$work/kept MIBS=''

# Asks with an option set, a program, and what it takes; errors are part of the recording.
readonly v1='-v1 -c public' v2='-v2c -c public' write='-v2c -c private' none='-v3 -l noAuthNoPriv -u reader'
readonly auth='-v3 -l authNoPriv -u signer -a SHA -A signing_words'
readonly priv='-v3 -l authPriv -u sealer -a SHA -A sealing_words -x AES -X sealing_words'
readonly older='-v3 -l authPriv -u older -a MD5 -A signing_words -x DES -X sealing_words'
ask() {
  local program=$1 options=()
  read -ra options <<<"$2"
  shift 2
  on "$left" "$program" -r 0 -t 1 "${options[@]//_/ }" "$@" >>"$work/log" 2>&1 || true
}
readonly system=1.3.6.1.2.1.1 interfaces=1.3.6.1.2.1.2 agent=192.0.2.2

connect_hosts
start_on "$right" snmpd -f -LE 6 -C -c "$work/snmpd.conf" -p "$work/snmpd.pid"
start_on "$right" snmptrapd -f -LE 6 -C -c "$work/snmptrapd.conf" -p "$work/snmptrapd.pid" -On
sleep 2
record cable port 161 or port 162

for version in "$v1" "$v2"; do
  ask snmpget "$version" $agent $system.1.0 $system.2.0 $system.3.0 $system.5.0
  ask snmpgetnext "$version" $agent $system.5 $interfaces.2.1.6
  ask snmpget "$version" $agent $system.6.0 $system.99.0          # no such name, no such object
  ask snmpgetnext "$version" $agent 1.3.6.1.6.3.99
done
ask snmpget "$v2" $agent $system.1.7                              # no such instance
ask snmpget '-v2c -c wrong' $agent $system.1.0                    # silence
ask snmpwalk "$v2" $agent $system.9.1.2
ask snmpbulkwalk "$v2 -Cr25" $agent $interfaces
ask snmpbulkget "$v2 -Cn2 -Cr3" $agent $system.1 $system.3 1.3.6.1.2.1.31.1.1.1 1.3.6.1.2.1.4.20
ask snmpbulkwalk "$v2 -Cr12" $agent 1.3.6.1.2.1.4.20
ask snmpbulkwalk "$v2 -Cr12" $agent 1.3.6.1.2.1.4.32
ask snmpbulkwalk "$v2 -Cr20" $agent 1.3.6.1.2.1.7
ask snmpget "$v2" $agent 1.3.6.1.2.1.31.1.1.1.6.2 1.3.6.1.2.1.25.1.1.0 1.3.6.1.2.1.25.1.2.0 1.3.6.1.4.1.2021.10.1.6.1
ask snmpget '-v2c -c public' 'udp6:[2001:db8::2]' $system.5.0

ask snmpset "$write" $agent $system.4.0 s 'Network operations <noc@example.test>'
ask snmpset "$write" $agent $system.4.0 s "$(printf 'A contact that is told at length, %.0s' 1 2 3 4)"
ask snmpget "$v2" $agent $system.4.0
ask snmpset "$v2" $agent $system.4.0 s 'not allowed'              # no access
ask snmpset "$write" $agent $system.1.0 s 'not allowed'           # not writable
ask snmpset "$write" $agent $system.4.0 i 7                       # wrong type
ask snmpset '-v1 -c private' $agent $system.1.0 s 'not allowed'   # version 1: no such name

for version in "$none" "$auth" "$priv" "$older"; do
  ask snmpget "$version" $agent $system.3.0 $system.5.0
done
ask snmpwalk "$none" $agent 1.3.6.1.6.3.15.1.1
ask snmpbulkwalk "$auth -Cr10" $agent 1.3.6.1.6.3.10.2
ask snmpset "$priv" $agent $system.4.0 s 'Set under seal'
ask snmpset "$none" $agent $system.4.0 s 'not allowed'            # authorization error
ask snmpget '-v3 -l noAuthNoPriv -u nobody' $agent $system.1.0    # report: unknown user
ask snmpget '-v3 -l authNoPriv -u signer -a SHA -A wrong_words' $agent $system.1.0        # report: wrong digest
ask snmpget '-v3 -l authNoPriv -u reader -a SHA -A signing_words' $agent $system.1.0      # report: unsupported level

ask snmptrap '-v1 -c public' $agent '' 192.0.2.1 0 0 42                                   # cold start
ask snmptrap '-v1 -c public' $agent '' 192.0.2.1 2 0 8640001 $interfaces.2.1.1.2 i 2      # link down
ask snmptrap '-v1 -c public' $agent 1.3.6.1.4.1.8072.2.3 192.0.2.1 6 17 99 1.3.6.1.4.1.8072.2.3.2.1 i 123456
ask snmptrap '-v2c -c public' $agent 42 1.3.6.1.6.3.1.1.5.4 $interfaces.2.1.1.2 i 2 $interfaces.2.1.7.2 i 1
ask snmpinform '-v2c -c public' $agent 43 1.3.6.1.6.3.1.1.5.1 1.3.6.1.2.1.4.20.1.1 a 192.0.2.1 \
  $system.2.0 o 1.3.6.1.4.1.8072.3.2.10
ask snmptrap "$priv -e 0x8000000001020304" $agent 44 1.3.6.1.6.3.1.1.5.3
ask snmpinform "$priv" $agent 45 1.3.6.1.6.3.1.1.5.3 $interfaces.2.1.1.2 i 2
keep_as snmp.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
