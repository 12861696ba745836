#!/bin/bash
# kerberos.pcap: a key distribution centre of our own (krb5kdc, kadmind), asked by kinit, kvno and kpasswd over UDP, TCP
# and IPv6: tickets, renewal, refusals of every common kind, armor, a ticket on behalf of a user, a new password.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
PATH=$PATH:/usr/sbin
need kdb5_util kadmin.local krb5kdc kadmind kinit kvno kpasswd

realm=EXAMPLE.TEST
export KRB5_KDC_PROFILE=$work/kdc.conf KRB5_CONFIG=$work/krb5.conf KRB5CCNAME=FILE:$work/cache

cat >"$work/kdc.conf" <<EOF
[kdcdefaults]
  kdc_listen = 88
  kdc_tcp_listen = 88
[libdefaults]
  spake_preauth_groups = edwards25519
[realms]
  $realm = {
    database_name = $work/principal
    key_stash_file = $work/stash
    acl_file = $work/acl
    kadmind_port = 749
    kpasswd_listen = 464
    max_life = 10h
    max_renewable_life = 7d
    supported_enctypes = aes256-cts-hmac-sha1-96:normal aes128-cts-hmac-sha256-128:normal
  }
EOF
: >"$work/acl"

# client_config NAME ADDRESS UDP_LIMIT GROUPS: how a client reaches the KDC; a limit of 1 makes it use TCP.
client_config() {
  cat >"$work/$1.conf" <<EOF
[libdefaults]
  default_realm = $realm
  dns_lookup_kdc = false
  dns_lookup_realm = false
  dns_canonicalize_hostname = false
  dns_uri_lookup = false
  rdns = false
  udp_preference_limit = $3
  spake_preauth_groups = "$4"
  kdc_timesync = 0
[realms]
  $realm = {
    kdc = $2
    admin_server = 192.0.2.2
    kpasswd_server = 192.0.2.2
  }
EOF
}
client_config udp 192.0.2.2 1465 ''
client_config tcp 192.0.2.2 1 ''
client_config spake 192.0.2.2 1465 edwards25519
client_config ipv6 '[2001:db8::2]' 1465 ''
cp "$work/udp.conf" "$work/krb5.conf"

# The database, with its users and services.
kdb5_util create -s -r "$realm" -P master >>"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
admin() { kadmin.local -r "$realm" -q "$*" >>"$work/log" 2>&1; }
admin addprinc -pw secret +requires_preauth alice
admin addprinc -pw secret -requires_preauth bob
admin addprinc -pw secret +requires_preauth -expire 2020-01-01 carol
admin addprinc -pw secret +requires_preauth -pwexpire 2020-01-01 dave
admin addprinc -randkey +ok_to_auth_as_delegate HTTP/www.example.test
admin addprinc -randkey host/right.example.test
admin ktadd -k "$work/keytab" HTTP/www.example.test

connect_hosts
start_on "$right" krb5kdc -n -r "$realm"
start_on "$right" kadmind -nofork -r "$realm"
await_port 88
await_port 464
record cable 'port 88 or port 464'

# as CONFIG PASSWORD COMMAND...: a client's command with that configuration; what it answers is part of the sample.
as() {
  local config=$1 password=$2; shift 2
  echo "$password" | KRB5_CONFIG=$work/$config.conf on "$left" "$@" >>"$work/log" 2>&1 || true
}

as udp secret kinit alice                              # preauthentication required, then the ticket
as udp wrong kinit alice
as udp secret kinit nobody
as udp secret kinit carol                              # expired
as udp '' kinit dave                                   # so is the password
as udp secret kinit -f -p -a -l 1h -r 2d bob           # forwardable, proxiable, with addresses, renewable
as udp '' kinit -R
as udp '' kvno host/right.example.test
as udp '' kvno nothing/right.example.test
as spake secret kinit alice
as ipv6 secret kinit bob
as tcp secret kinit -f alice
as tcp '' kvno HTTP/www.example.test
cp "$work/cache" "$work/armor"
as udp secret kinit -T "FILE:$work/armor" alice        # under the armor of a ticket
as udp '' kinit -k -t "$work/keytab" HTTP/www.example.test
as udp '' kvno -U alice HTTP/www.example.test          # on behalf of a user
printf 'secret\nsecret2\nsecret2\n' | KRB5_CONFIG=$work/udp.conf on "$left" kpasswd alice >>"$work/log" 2>&1 || true

keep_as kerberos.pcap
if [ -n "${SHOW_LOG:-}" ]; then cat "$work/log"; fi
