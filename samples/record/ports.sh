#!/bin/bash
# ports.pcap: a station before a port that wants to know who it is (802.1X). The server of hostapd and wpa_supplicant, both over
# the cable: MD5, TLS, TTLS, PEAP, FAST, pwd, PSK, GPSK, SAKE, IKEv2, EKE, PAX as far as they were built in; a wrong password;
# logging off.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need hostapd wpa_supplicant wpa_cli openssl

connect_hosts
openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 3650 -subj /CN=ca.example.net -keyout "$work/ca.key" \
  -out "$work/ca.pem" 2>>"$work/log"
for who in server user; do
  openssl req -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -subj "/CN=$who.example.net" -keyout "$work/$who.key" \
    -out "$work/$who.csr" 2>>"$work/log"
  openssl x509 -req -in "$work/$who.csr" -CA "$work/ca.pem" -CAkey "$work/ca.key" -CAcreateserial -days 3650 -out "$work/$who.pem" \
    2>>"$work/log"
done

cat >"$work/users" <<'END'
"md5" MD5 "password"
"tls" TLS
"ttls" TTLS
"peap" PEAP
"fast" FAST
"pwd" PWD "password"
"psk" PSK 0123456789abcdef0123456789abcdef
"gpsk" GPSK "abcdefghijklmnop0123456789abcdef"
"sake" SAKE 0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef
"ikev2" IKEV2 "password"
"eke" EKE "password"
"pax" PAX 0123456789abcdef0123456789abcdef
"inner" MSCHAPV2,GTC,TTLS-PAP,TTLS-CHAP,TTLS-MSCHAPV2 "password" [2]
END
cat >"$work/hostapd.conf" <<END
interface=cable
driver=wired
logger_stdout=-1
logger_stdout_level=2
ieee8021x=1
eap_server=1
eap_user_file=$work/users
ca_cert=$work/ca.pem
server_cert=$work/server.pem
private_key=$work/server.key
fragment_size=600
pac_opaque_encr_key=000102030405060708090a0b0c0d0e0f
eap_fast_a_id=101112131415161718191a1b1c1d1e1f
eap_fast_a_id_info=recording
eap_fast_prov=3
END
record cable ether proto 0x888e
start_on "$right" hostapd "$work/hostapd.conf"
sleep 1

# A supplicant with this network block, for a moment.
sign_on() {
  local pid
  { echo "ctrl_interface=$work/control"; echo 'ap_scan=0'; echo 'network={'; echo ' key_mgmt=IEEE8021X'; echo ' eapol_flags=0'
    printf ' %s\n' "$@"; echo '}'; } >"$work/supplicant.conf"
  start_on "$left" wpa_supplicant -D wired -i cable -c "$work/supplicant.conf"
  pid=$!
  sleep 5   # it waits for the port to speak first
  if [ "${leaves-}" ]; then on "$left" wpa_cli -p "$work/control" -i cable logoff >>"$work/log" 2>&1 || true; fi
  kill "$pid"
  wait "$pid" 2>/dev/null || true
}
ca="ca_cert=\"$work/ca.pem\""
sign_on 'eap=MD5' 'identity="md5"' 'password="password"'
sign_on 'eap=TLS' 'identity="tls"' "$ca" "client_cert=\"$work/user.pem\"" "private_key=\"$work/user.key\""
sign_on 'eap=TTLS' 'anonymous_identity="ttls"' 'identity="inner"' 'phase2="auth=PAP"' 'password="password"' "$ca"
sign_on 'eap=PEAP' 'anonymous_identity="peap"' 'identity="inner"' 'phase2="auth=MSCHAPV2"' 'password="password"' "$ca"
sign_on 'eap=FAST' 'anonymous_identity="fast"' 'identity="inner"' 'phase1="fast_provisioning=2"' 'phase2="auth=MSCHAPV2"' 'password="password"' \
  "pac_file=\"$work/pac\"" "$ca"
sign_on 'eap=PWD' 'identity="pwd"' 'password="password"'
sign_on 'eap=PSK' 'identity="psk"' 'password=0123456789abcdef0123456789abcdef'
sign_on 'eap=GPSK' 'identity="gpsk"' 'password="abcdefghijklmnop0123456789abcdef"'
sign_on 'eap=SAKE' 'identity="sake"' 'password=0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef'
sign_on 'eap=IKEV2' 'identity="ikev2"' 'password="password"'
sign_on 'eap=EKE' 'identity="eke"' 'password="password"'
leaves=yes sign_on 'eap=PAX' 'identity="pax"' 'password=0123456789abcdef0123456789abcdef'
sign_on 'eap=MD5' 'identity="md5"' 'password="wrong"'
keep_as ports.pcap
