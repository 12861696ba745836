#!/bin/bash
# phones.pcap: two telephones (baresip) that call each other: with G.711, held and taken up again, handed on to nobody; with
# Opus; refused as busy. Of the media every sixteenth packet is kept, and all of their reports.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need baresip ffmpeg

connect_hosts
# Media have the even ports, their reports the odd ones; the tenth and eleventh octet of a datagram are a media packet's number.
record cable "udp and not (udp[0:2] >= 10240 and udp[0:2] & 1 = 0 and udp[10:2] & 15 != 0)"
modules=$(dirname "$(find /usr/lib -name g711.so -path '*baresip*' | head -1)")
phone() {   # where, name, address, first port of media, how calls are answered, codecs, sound
  mkdir -p "$work/$2"
  cat >"$work/$2/config" <<CONFIG
sip_listen $3:5060
audio_source aufile,$work/$7.wav
audio_player aubridge,x
audio_alert aubridge,x
rtp_ports $4-$(($4 + 20))
rtcp_mux no
call_max_calls 4
module_path $modules
module g711.so
module opus.so
module aufile.so
module aubridge.so
module cons.so
module_app account.so
module_app menu.so
cons_listen 127.0.0.1:5555
CONFIG
  echo "<sip:$2@$3>;regint=0;answermode=$5;audio_codecs=$6;ptime=20" >"$work/$2/accounts"
  : >"$work/$2/contacts"
  start_on "$1" bash -c "sleep 30 | baresip -f '$work/$2'"
}
tell() { on "$1" bash -c "printf '%s\n' '$2' >/dev/udp/127.0.0.1/5555"; sleep "$3"; }   # where, command, how long it takes

ffmpeg -nostdin -loglevel error -f lavfi -i sine=frequency=440:sample_rate=8000:duration=20 "$work/narrow.wav"
ffmpeg -nostdin -loglevel error -f lavfi -i sine=frequency=440:sample_rate=48000:duration=20 -ac 2 "$work/wide.wav"
phone "$left" anna 192.0.2.1 10240 manual pcmu,opus/48000/2 narrow
phone "$right" ben 192.0.2.2 11000 auto pcmu,opus/48000/2 narrow
sleep 1.5
tell "$left" "/dial sip:ben@192.0.2.2" 5.4
tell "$left" "/hold" 0.5
tell "$left" "/resume" 0.5
tell "$left" "/transfer sip:carl@192.0.2.2" 0.6
tell "$left" "/hangup" 0.4
tell "$left" "/quit" 0.2
tell "$right" "/quit" 0.6
phone "$left" anna 192.0.2.1 10240 manual opus/48000/2 wide
phone "$right" ben 192.0.2.2 11000 manual opus/48000/2 wide
sleep 1.5
tell "$left" "/dial sip:ben@192.0.2.2" 0.4
tell "$right" "/accept" 0.8
tell "$right" "/hangup" 0.4
tell "$left" "/dial sip:ben@192.0.2.2" 0.4
tell "$right" "/hangup" 0.4
keep_as phones.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
