#!/bin/bash
# dhcp.pcap: ISC's server and client: addresses discovered and given back, with options of every form
# (routes, names, an enterprise's, those of a vendor class), a client that boots over the network;
# DHCPv6: addresses, temporary ones, a prefix, stateless information, release.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need dhcpd dhclient

cat >"$work/four.conf" <<'CONFIG'
authoritative;
default-lease-time 600;
max-lease-time 7200;
option rfc3442 code 121 = array of integer 8;
option captive code 114 = text;
option six-only code 108 = unsigned integer 32;
option space gateway code width 1 length width 1;
option gateway.oui code 4 = text;
option gateway.serial code 5 = text;
option space vendors code width 4 length width 1;
option vendors.gateway code 3561 = encapsulate gateway;
option information code 125 = encapsulate vendors;
option space pxe;
option pxe.control code 6 = unsigned integer 8;
option pxe.menu code 9 = { unsigned integer 16, unsigned integer 8, text };
class "boot" {
  match if substring(option vendor-class-identifier, 0, 9) = "PXEClient";
  vendor-option-space pxe;
  option vendor-class-identifier "PXEClient";
  option pxe.control 3;
  option pxe.menu 0 5 "Local";
  filename "boot/loader.0";
  server-name "boot.example.test";
  next-server 192.0.2.2;
}
subnet 192.0.2.0 netmask 255.255.255.0 {
  # Whatever the client asks for.
  option dhcp-parameter-request-list 1, 2, 3, 6, 12, 15, 17, 26, 28, 33, 42, 43, 44, 46, 60, 66, 67, 100, 108, 114, 119, 121, 125;
  range 192.0.2.100 192.0.2.120;
  option routers 192.0.2.2, 192.0.2.3;
  option domain-name "example.test";
  option domain-name-servers 192.0.2.2, 192.0.2.53;
  option domain-search "eng.example.test", "sales.example.test";
  option broadcast-address 192.0.2.255;
  option ntp-servers 192.0.2.123;
  option time-offset -3600;
  option interface-mtu 1500;
  option static-routes 10.0.0.0 192.0.2.2;
  option rfc3442 24, 198, 51, 100, 192, 0, 2, 2, 0, 192, 0, 2, 2;
  option netbios-name-servers 192.0.2.2;
  option netbios-node-type 8;
  option pcode "CET-1CEST";
  option captive "https://portal.example.test/";
  option six-only 1800;
  option root-path "/srv/root";
  option gateway.oui "020000";
  option gateway.serial "0001";
}
CONFIG
cat >"$work/six.conf" <<'CONFIG'
default-lease-time 600;
preferred-lifetime 300;
option dhcp-renewal-time 100;
option dhcp-rebinding-time 200;
option dhcp6.name-servers 2001:db8::53;
option dhcp6.domain-search "example.test", "eng.example.test";
option dhcp6.sntp-servers 2001:db8::123;
option dhcp6.info-refresh-time 3600;
option dhcp6.preference 255;
subnet6 2001:db8::/64 {
  range6 2001:db8::100 2001:db8::1ff;
  range6 2001:db8::/64 temporary;
  prefix6 2001:db8:100:: 2001:db8:1ff:: /56;
}
CONFIG
cat >"$work/client.conf" <<'CONFIG'
send host-name "client";
send fqdn.fqdn "client.example.test.";
send fqdn.encoded on;
send fqdn.server-update on;
request subnet-mask, broadcast-address, time-offset, routers, domain-name, domain-name-servers, domain-search,
  ntp-servers, interface-mtu, static-routes, netbios-name-servers, netbios-node-type, root-path, pcode, vivso;
CONFIG
cat >"$work/boot.conf" <<'CONFIG'
option arch code 93 = unsigned integer 16;
option undi code 94 = { unsigned integer 8, unsigned integer 8, unsigned integer 8 };
option uuid code 97 = string;
send vendor-class-identifier "PXEClient:Arch:00007:UNDI:003016";
send arch 7;
send undi 1, 3, 16;
send uuid 00:11:22:33:44:55:66:77:88:99:aa:bb:cc:dd:ee:ff:00;
request subnet-mask, routers, vendor-encapsulated-options, bootfile-name, tftp-server-name;
CONFIG
touch "$work/four.leases" "$work/six.leases"

# The client, whose script is none: nothing of the host is changed.
client() {
  local name=$1; shift
  on "$left" timeout 20 dhclient -1 -sf /bin/true -pf "$work/$name.pid" -lf "$work/$name.lease" "$@" cable \
    >>"$work/log" 2>&1 || true
}

connect_hosts
record cable "port 67 or port 68 or port 546 or port 547"
start_on "$right" dhcpd -4 -d -cf "$work/four.conf" -lf "$work/four.leases" -pf "$work/four.pid" cable
start_on "$right" dhcpd -6 -d -cf "$work/six.conf" -lf "$work/six.leases" -pf "$work/six.pid" cable
sleep 1.5
client one -4 -cf "$work/client.conf"
client one -4 -r -cf "$work/client.conf"
client boot -4 -cf "$work/boot.conf"
client boot -4 -r -cf "$work/boot.conf"
client six -6 -N -T -P -cf /dev/null
client six -6 -r -cf /dev/null
client plain -6 -S -cf /dev/null
keep_as dhcp.pcap
