#!/bin/bash
# management.pcap: OpenIPMI's simulated management controller: capabilities, sessions of version 1.5 and 2.0 with their
# authentication, identity, chassis, sensors and event log asked for by ipmitool.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need ipmi_sim ipmitool

cat >"$work/lan.conf" <<CONFIG
name "sample"
set_working_mc 0x20
  startlan 1
    addr :: 623
    priv_limit admin
    allowed_auths_callback none md2 md5 straight
    allowed_auths_user none md2 md5 straight
    allowed_auths_operator none md2 md5 straight
    allowed_auths_admin none md2 md5 straight
    guid a123456789abcdefa123456789abcdef
  endlan
  user 1 true "" "test" user 10 none md2 md5 straight
  user 2 true "admin" "secret" admin 10 none md2 md5 straight
CONFIG
cat >"$work/sim.emu" <<'CONFIG'
mc_setbmc 0x20
mc_add 0x20 0 no-device-sdrs 0x23 9 8 0x9f 0x1291 0xf02 persist_sdr
sel_enable 0x20 1000 0x0a
sensor_add 0x20 0 1 1 1
sensor_set_value 0x20 0 1 0x60 0
mc_add_fru_data 0x20 0 0x10 data 0x01 0x00 0x00 0x00 0x00 0x00 0x00 0xff 0x00 0x00 0x00 0x00 0x00 0x00 0x00 0x00
mc_enable 0x20
CONFIG
mkdir "$work/state"
connect_hosts
start_on "$right" ipmi_sim -c "$work/lan.conf" -f "$work/sim.emu" -s "$work/state" -n
sleep 2
record cable port 623
ask() { on "$left" timeout 10 ipmitool -H 192.0.2.2 -N 1 -R 1 "$@" >>"$work/log" 2>&1 || true; }
ask -I lan -U admin -P secret -A MD5 mc info
ask -I lan -U admin -P secret -A PASSWORD chassis status
ask -I lan -U '' -A NONE -L USER mc guid
ask -I lanplus -U admin -P secret -C 0 mc info
ask -I lanplus -U admin -P secret -C 1 sel info
ask -I lanplus -U admin -P secret -C 3 sdr list
ask -I lanplus -U admin -P wrong -C 3 mc info
ask -I lan -U admin -P secret chassis identify 5
ask -I lan -U admin -P secret lan print 1
ask -I lan -U admin -P secret sel time get
ask -I lan -U admin -P secret raw 6 1
keep_as management.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
