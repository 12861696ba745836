#!/bin/bash
# enterprise.pcap: how a port's user is authenticated behind a switch: EAP over RADIUS, between eapol_test (of wpa_supplicant) and
# FreeRADIUS' server. TLS with certificates of both ends, TTLS with PAP, PEAP with MSCHAPv2; messages over several packets, and
# packets over several attributes.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need freeradius eapol_test openssl

certificates=$work/certificates
mkdir -p "$certificates"
authority() { openssl "$@" >>"$work/log" 2>&1; }
authority req -x509 -newkey rsa:2048 -nodes -days 3650 -subj "/O=Example/CN=Example CA" -keyout "$certificates/ca.key" \
  -out "$certificates/ca.pem"
for name in server client; do
  authority req -newkey rsa:2048 -nodes -subj "/O=Example/CN=$name.example.net" -keyout "$certificates/$name.key" \
    -out "$certificates/$name.csr"
  authority x509 -req -in "$certificates/$name.csr" -CA "$certificates/ca.pem" -CAkey "$certificates/ca.key" -days 3650 \
    -set_serial 2 -out "$certificates/$name.pem"
done

mkdir -p "$work/raddb"
cp -r /etc/freeradius/3.0/. "$work/raddb/"
cat >"$work/raddb/clients.conf" <<'CONFIG'
client left { ipaddr = 192.0.2.1
  secret = sample }
CONFIG
echo 'alice Cleartext-Password := "open sesame"' >"$work/raddb/mods-config/files/authorize"
cat >"$work/raddb/mods-available/eap" <<CONFIG
eap {
  default_eap_type = tls
  tls-config tls-common {
    private_key_file = $certificates/server.key
    certificate_file = $certificates/server.pem
    ca_file = $certificates/ca.pem
    fragment_size = 900
    cipher_list = "DEFAULT"
    tls_min_version = "1.2"
    tls_max_version = "1.2"
  }
  tls { tls = tls-common }
  ttls { tls = tls-common
    virtual_server = "inner-tunnel" }
  peap { tls = tls-common
    default_eap_type = mschapv2
    virtual_server = "inner-tunnel" }
  mschapv2 { }
}
CONFIG
chown -R freerad:freerad "$work/raddb" "$certificates" 2>/dev/null || true

connect_hosts
start_on "$right" freeradius -f -l "$work/radius.log" -d "$work/raddb"
sleep 3
record cable port 1812

# A network block's lines: one authentication.
authenticate() {
  printf 'network={\n  key_mgmt=WPA-EAP\n  identity="alice"\n  ca_cert="%s"\n%s\n}\n' "$certificates/ca.pem" "$1" >"$work/network.conf"
  on "$left" eapol_test -c "$work/network.conf" -a 192.0.2.2 -p 1812 -s sample -r 0 -t 5 -M 02:00:00:00:00:01 \
    >>"$work/log" 2>&1 || true
}
authenticate "  eap=TLS
  fragment_size=700
  client_cert=\"$certificates/client.pem\"
  private_key=\"$certificates/client.key\""
authenticate '  eap=TTLS
  password="open sesame"
  phase2="auth=PAP"'
authenticate '  eap=PEAP
  password="open sesame"
  phase2="auth=MSCHAPV2"'
keep_as enterprise.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log" "$work/radius.log"
