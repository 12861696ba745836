#!/bin/bash
# leases.pcap: Kea's servers: addresses with options, client classes and a host's own, a client that asks for others and gives its
# address back; DHCPv6 with an address, a prefix and information alone.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need kea-dhcp4 kea-dhcp6 dhclient

cat >"$work/four.json" <<CONFIG
{"Dhcp4": {"interfaces-config": {"interfaces": ["cable"]}, "valid-lifetime": 3600, "renew-timer": 900, "rebind-timer": 1800,
  "lease-database": {"type": "memfile", "persist": false},
  "client-classes": [{"name": "phones", "test": "option[60].hex == 'phone'",
    "option-data": [{"name": "tftp-server-name", "data": "192.0.2.2"}, {"name": "boot-file-name", "data": "phone.cfg"},
                    {"name": "sip-ua-cs-domains", "code": 141, "data": "example.test", "always-send": true}]}],
  "subnet4": [{"id": 1, "subnet": "192.0.2.0/24", "pools": [{"pool": "192.0.2.100 - 192.0.2.120"}],
    "option-data": [{"name": "routers", "data": "192.0.2.2"}, {"name": "domain-name-servers", "data": "192.0.2.2, 192.0.2.53"},
      {"name": "domain-name", "data": "example.test"}, {"name": "domain-search", "data": "example.test, sales.example.test"},
      {"name": "ntp-servers", "data": "192.0.2.123"}, {"name": "interface-mtu", "data": "1500"},
      {"name": "v6-only-preferred", "data": "1800", "always-send": true},
      {"name": "v4-captive-portal", "data": "https://portal.example.test/", "always-send": true},
      {"name": "classless-static-route", "code": 121, "csv-format": false, "data": "18C6336400C0000202", "always-send": true}],
    "reservations": [{"hw-address": "02:00:00:00:00:01", "hostname": "reserved", "ip-address": "192.0.2.50"}]}]}}
CONFIG
cat >"$work/six.json" <<CONFIG
{"Dhcp6": {"interfaces-config": {"interfaces": ["cable"]}, "preferred-lifetime": 3000, "valid-lifetime": 4000,
  "lease-database": {"type": "memfile", "persist": false},
  "subnet6": [{"id": 1, "subnet": "2001:db8::/64", "interface": "cable", "rapid-commit": true,
    "pools": [{"pool": "2001:db8::100-2001:db8::1ff"}],
    "pd-pools": [{"prefix": "2001:db8:8::", "prefix-len": 48, "delegated-len": 56, "excluded-prefix": "2001:db8:8::", "excluded-prefix-len": 72}],
    "option-data": [{"name": "dns-servers", "data": "2001:db8::53"}, {"name": "domain-search", "data": "example.test"},
      {"name": "sntp-servers", "data": "2001:db8::123"}, {"name": "unicast", "data": "2001:db8::2"},
      {"name": "bootfile-url", "data": "tftp://[2001:db8::2]/boot"}, {"name": "new-posix-timezone", "data": "CET-1CEST"}]}]}}
CONFIG
cat >"$work/phone.conf" <<'CONFIG'
send vendor-class-identifier "phone";
send host-name "desk";
request subnet-mask, routers, domain-name-servers, tftp-server-name, bootfile-name, domain-search, ntp-servers;
CONFIG

client() {
  local name=$1; shift
  on "$left" timeout 15 dhclient -1 -sf /bin/true -pf "$work/$name.pid" -lf "$work/$name.lease" "$@" cable \
    >>"$work/log" 2>&1 || true
}

export KEA_PIDFILE_DIR=$work KEA_LOCKFILE_DIR=$work
six_identity=/var/lib/kea/kea-dhcp6-serverid   # written there whatever the configuration says
mkdir -p "${six_identity%/*}"
[[ -e $six_identity ]] || trap 'take_down; rm -f "$six_identity"' EXIT
connect_hosts
record cable "port 67 or port 68 or port 546 or port 547"
start_on "$right" kea-dhcp4 -c "$work/four.json"
start_on "$right" kea-dhcp6 -c "$work/six.json"
sleep 3
client phone -4 -cf "$work/phone.conf"
client phone -4 -r -cf "$work/phone.conf"
client six -6 -N -P -cf /dev/null
client six -6 -r -cf /dev/null
client plain -6 -S -cf /dev/null
keep_as leases.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
