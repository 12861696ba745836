#!/bin/bash
# calls.pcap: a registrar and proxy (kamailio) with sipp: a registration that is asked for a digest, calls, one that is held and taken
# up again, a transfer, an end that is busy and a name that is not there.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need kamailio sipp

connect_hosts
on "$left" ip address add 192.0.2.11/24 dev cable
on "$left" ip address add 192.0.2.12/24 dev cable
record cable "udp"
modules=$(dirname "$(find /usr/lib -name tm.so -path '*kamailio*' | head -1)")
cat >"$work/kamailio.cfg" <<CONFIG
#!KAMAILIO
debug=1
log_stderror=yes
children=1
auto_aliases=no
listen=udp:192.0.2.2:5060
mpath="$modules/"
loadmodule "tm.so"
loadmodule "sl.so"
loadmodule "rr.so"
loadmodule "pv.so"
loadmodule "maxfwd.so"
loadmodule "usrloc.so"
loadmodule "registrar.so"
loadmodule "textops.so"
loadmodule "siputils.so"
loadmodule "auth.so"
loadmodule "xlog.so"
request_route {
  if (!mf_process_maxfwd_header("10")) { sl_send_reply("483", "Too Many Hops"); exit; }
  if (has_totag()) { if (loose_route()) { t_relay(); exit; } t_relay(); exit; }
  if (is_method("CANCEL")) { if (t_check_trans()) t_relay(); exit; }
  t_check_trans();
  if (is_method("REGISTER")) {
    if (!pv_www_authenticate("example.test", "secret", "0")) { www_challenge("example.test", "1"); exit; }
    save("location"); exit;
  }
  record_route();
  if (is_method("OPTIONS") && \$rU == \$null) { sl_send_reply("200", "Keepalive"); exit; }
  if (!lookup("location")) { sl_send_reply("404", "Not Found"); exit; }
  t_relay();
}
CONFIG
start_on "$right" kamailio -f "$work/kamailio.cfg" -DD -E -m 32 -M 4 -Y "$work" -w "$work"
sleep 3
register() {   # user, its address and port
  cat >"$work/register.xml" <<XML
<?xml version="1.0" encoding="ISO-8859-1"?>
<scenario name="register">
<send><![CDATA[
REGISTER sip:example.test SIP/2.0
Via: SIP/2.0/[transport] [local_ip]:[local_port];branch=[branch];rport
Max-Forwards: 70
From: "$1" <sip:$1@example.test>;tag=[call_number]
To: <sip:$1@example.test>
Call-ID: [call_id]
CSeq: 1 REGISTER
Contact: <sip:$1@$2:$3>;expires=300
Allow: INVITE, ACK, BYE, CANCEL, OPTIONS, REFER, NOTIFY, MESSAGE
User-Agent: recorder
Content-Length: 0

]]></send>
<recv response="401" auth="true"></recv>
<send><![CDATA[
REGISTER sip:example.test SIP/2.0
Via: SIP/2.0/[transport] [local_ip]:[local_port];branch=[branch];rport
Max-Forwards: 70
From: "$1" <sip:$1@example.test>;tag=[call_number]
To: <sip:$1@example.test>
Call-ID: [call_id]
CSeq: 2 REGISTER
Contact: <sip:$1@$2:$3>;expires=300
[authentication username=$1 password=secret]
Content-Length: 0

]]></send>
<recv response="200"></recv>
</scenario>
XML
  on "$left" timeout 8 sipp -sf "$work/register.xml" -s "$1" -ap secret -au "$1" -m 1 -i "$2" -p "$3" 192.0.2.2:5060 -nostdin >>"$work/log" 2>&1 || true
}
register anna 192.0.2.11 5070
register ben 192.0.2.12 5080
# A call from anna to ben: the called party's scenario, the caller's.
head='Via: SIP/2.0/[transport] [local_ip]:[local_port];branch=[branch]
Max-Forwards: 70
From: "Anna" <sip:anna@example.test>;tag=[pid]a[call_number]
To: <sip:ben@example.test>[peer_tag_param]
Call-ID: [call_id]'
invite() {   # CSeq, attribute of the media
  cat <<XML
<send retrans="500"><![CDATA[
INVITE sip:ben@example.test SIP/2.0
$head
CSeq: $1 INVITE
Contact: <sip:anna@[local_ip]:[local_port]>
Supported: 100rel, timer, replaces
Session-Expires: 1800;refresher=uac
P-Asserted-Identity: "Anna" <tel:+15550100>
Subject: Tea
Content-Type: application/sdp
Content-Length: [len]

v=0
o=anna 1 $1 IN IP4 [local_ip]
s=Tea
c=IN IP4 [media_ip]
t=0 0
m=audio [media_port] RTP/AVP 8 0 101
a=rtpmap:8 PCMA/8000
a=rtpmap:0 PCMU/8000
a=rtpmap:101 telephone-event/8000
a=fmtp:101 0-15
a=ptime:20
a=$2
]]></send>
XML
}
ack() { printf '<send><![CDATA[\nACK [next_url] SIP/2.0\n%s\nCSeq: %s ACK\n[routes]\nContent-Length: 0\n\n]]></send>\n' "$head" "$1"; }
within() { printf '<send retrans="500"><![CDATA[\n%s [next_url] SIP/2.0\n%s\nCSeq: %s %s\n[routes]\nContact: <sip:anna@[local_ip]:[local_port]>\n%sContent-Length: 0\n\n]]></send>\n' "$1" "$head" "$2" "$1" "${3-}"; }
reinvite() { invite "$1" "$2" | sed 's/INVITE sip:ben@example.test SIP/INVITE [next_url] SIP/; s/^Contact:/[routes]\nContact:/'; }
{
  echo '<?xml version="1.0" encoding="ISO-8859-1"?><scenario name="caller">'
  invite 1 sendrecv
  echo '<recv response="100" optional="true"></recv><recv response="180" optional="true" rrs="true"></recv><recv response="200" rrs="true"></recv>'
  ack 1
  echo '<pause milliseconds="300"/>'
  reinvite 2 sendonly
  echo '<recv response="100" optional="true"></recv><recv response="200"></recv>'
  ack 2
  echo '<pause milliseconds="300"/>'
  reinvite 3 sendrecv
  echo '<recv response="100" optional="true"></recv><recv response="200"></recv>'
  ack 3
  within REFER 4 $'Refer-To: <sip:carl@example.test>\nReferred-By: <sip:anna@example.test>\n'
  echo '<recv response="202"></recv><recv request="NOTIFY"></recv>'
  printf '<send><![CDATA[\nSIP/2.0 200 OK\n[last_Via:]\n[last_From:]\n[last_To:]\n[last_Call-ID:]\n[last_CSeq:]\nContent-Length: 0\n\n]]></send>\n'
  within BYE 5 $'Reason: Q.850;cause=16;text="Normal call clearing"\n'
  echo '<recv response="200"></recv></scenario>'
} >"$work/caller.xml"
answer() {   # code and phrase, with media or not
  printf '<send><![CDATA[\nSIP/2.0 %s\n[last_Via:]\n[last_From:]\n[last_To:];tag=[pid]b[call_number]\n[last_Call-ID:]\n[last_CSeq:]\n[last_Record-Route:]\nContact: <sip:ben@[local_ip]:[local_port]>\n' "$1"
  if [[ ${2-} ]]; then
    printf 'Content-Type: application/sdp\nContent-Length: [len]\n\nv=0\no=ben 1 1 IN IP4 [local_ip]\ns=-\nc=IN IP4 [media_ip]\nt=0 0\nm=audio [media_port] RTP/AVP 8\na=rtpmap:8 PCMA/8000\na=%s\n]]></send>\n' "$2"
  else
    printf 'Content-Length: 0\n\n]]></send>\n'
  fi
}
again() { answer "$@" | sed 's/\[last_To:\];tag=\[pid\]b\[call_number\]/[last_To:]/'; }
{
  echo '<?xml version="1.0" encoding="ISO-8859-1"?><scenario name="called"><recv request="INVITE" rrs="true"></recv>'
  answer '180 Ringing'
  answer '200 OK' sendrecv
  echo '<recv request="ACK" rrs="true"></recv><recv request="INVITE"></recv>'
  again '200 OK' recvonly
  echo '<recv request="ACK"></recv><recv request="INVITE"></recv>'
  again '200 OK' sendrecv
  echo '<recv request="ACK"></recv><recv request="REFER"></recv>'
  again '202 Accepted'
  # shellcheck disable=SC2016  # sipp expands it
  printf '<send><![CDATA[\nNOTIFY sip:anna@192.0.2.11:5070 SIP/2.0\nVia: SIP/2.0/[transport] [local_ip]:[local_port];branch=[branch]\nMax-Forwards: 70\nFrom: <sip:ben@example.test>;tag=[pid]b[call_number]\nTo: [$caller]\nCall-ID: [call_id]\nCSeq: 1 NOTIFY\nEvent: refer\nSubscription-State: terminated;reason=noresource\nContact: <sip:ben@[local_ip]:[local_port]>\nContent-Type: message/sipfrag;version=2.0\nContent-Length: [len]\n\nSIP/2.0 503 Service Unavailable\n]]></send>\n'
  echo '<recv response="200"></recv><recv request="BYE"></recv>'
  again '200 OK'
  echo '</scenario>'
} | sed 's|<recv request="REFER"></recv>|<recv request="REFER"><action><ereg regexp=".*" search_in="hdr" header="From:" assign_to="caller"/></action></recv>|' >"$work/called.xml"
start_on "$left" timeout 30 sipp -sf "$work/called.xml" -m 1 -i 192.0.2.12 -p 5080 -mp 7000 192.0.2.2:5060 -nostdin
sleep 1
on "$left" timeout 20 sipp -sf "$work/caller.xml" -m 1 -s ben -i 192.0.2.11 -p 5070 -mp 6000 192.0.2.2:5060 -nostdin >>"$work/log" 2>&1 || true
# Refused: busy, and a number that nobody has; and words without a call.
printf '<?xml version="1.0" encoding="ISO-8859-1"?><scenario name="busy"><recv request="INVITE"></recv>%s<recv request="ACK"></recv></scenario>' "$(answer '486 Busy Here')" >"$work/busy.xml"
start_on "$left" timeout 12 sipp -sf "$work/busy.xml" -m 1 -i 192.0.2.12 -p 5080 192.0.2.2:5060 -nostdin
sleep 1
on "$left" timeout 8 sipp -sn uac -m 1 -s ben -i 192.0.2.11 -p 5070 192.0.2.2:5060 -nostdin >>"$work/log" 2>&1 || true
on "$left" timeout 8 sipp -sn uac -m 1 -s nobody -i 192.0.2.11 -p 5070 192.0.2.2:5060 -nostdin >>"$work/log" 2>&1 || true
keep_as calls.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
