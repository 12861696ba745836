#!/bin/bash
# radius.pcap: FreeRADIUS' server and client: a user with the right and a wrong password, by PAP, CHAP and MS-CHAP, over IPv6;
# answers with tunnels, prefixes and attributes of vendors; accounting from start to stop; status; a request to disconnect.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need freeradius radclient

mkdir -p "$work/raddb"
cp -r /etc/freeradius/3.0/. "$work/raddb/"
cat >"$work/raddb/clients.conf" <<'CONFIG'
client left { ipaddr = 192.0.2.1
  secret = sample }
client left6 { ipv6addr = 2001:db8::1
  secret = sample }
CONFIG
cat >"$work/raddb/mods-config/files/authorize" <<'USERS'
alice Cleartext-Password := "open sesame"
  Service-Type = Framed-User, Framed-Protocol = PPP, Framed-IP-Address = 192.0.2.77, Framed-IP-Netmask = 255.255.255.0,
  Framed-MTU = 1500, Session-Timeout = 3600, Idle-Timeout = 600, Termination-Action = RADIUS-Request,
  Filter-Id = "guests", Framed-Route = "192.0.2.64/26 192.0.2.1 1", Class = 0x0102030405,
  Framed-IPv6-Prefix = 2001:db8:77::/48, Framed-Interface-Id = 2:5e:ff:fe, Acct-Interim-Interval = 60,
  Tunnel-Type:1 = VLAN, Tunnel-Medium-Type:1 = IEEE-802, Tunnel-Private-Group-Id:1 = "42", Tunnel-Password:1 = "tunnel",
  Cisco-AVPair = "shell:priv-lvl=15", MS-MPPE-Encryption-Policy = Encryption-Required, WISPr-Bandwidth-Max-Up = 1000000,
  Mikrotik-Rate-Limit = "1M/2M", Reply-Message = "Welcome, alice"
bob Cleartext-Password := "hello"
  Egress-VLANID = 0x3100002a, Egress-VLAN-Name = "2guests", User-Priority-Table = 0x0001020304050607,
  Delegated-IPv6-Prefix = 2001:db8:1234::/56, ADSL-Agent-Circuit-Id = 0x61746d, WiMAX-Release = "1.0",
  USR-Last-Number-Dialed-Out = "5551", Lucent-Max-Shared-Users = 3, Operator-Name = "1example.test"
USERS
chown -R freerad:freerad "$work/raddb" 2>/dev/null || true

connect_hosts
start_on "$right" freeradius -f -l "$work/radius.log" -d "$work/raddb"
sleep 3
record cable port 1812 or port 1813 or port 3799

# Attributes, then the server, its port and what is asked.
ask() {
  on "$left" radclient -r 1 -t 2 "$2" "$3" sample <<<"$1" >>"$work/log" 2>&1 || true
}
readonly nas='NAS-IP-Address=192.0.2.1,NAS-Port=7,NAS-Port-Type=Wireless-802.11,NAS-Identifier="left",Called-Station-Id="02-00-00-00-00-02:example",Calling-Station-Id="02-00-00-00-00-01"'
ask "User-Name=alice,User-Password='open sesame',$nas,Message-Authenticator=0x00" 192.0.2.2:1812 auth
ask "User-Name=alice,User-Password=wrong,$nas" 192.0.2.2:1812 auth
ask "User-Name=bob,CHAP-Password=hello,NAS-IPv6-Address=2001:db8::1,$nas" 192.0.2.2:1812 auth
ask "User-Name=bob,MS-CHAP-Password=hello,$nas" 192.0.2.2:1812 auth
ask "User-Name=alice,User-Password='open sesame',Connect-Info='CONNECT 54Mbps',NAS-Port-Id=wlan0" '[2001:db8::2]:1812' auth
ask "User-Name=bob,EAP-Message=0x0201000801626f62,Message-Authenticator=0x00,$nas" 192.0.2.2:1812 auth
readonly session='User-Name=alice,Acct-Session-Id=5AFE0001,Framed-IP-Address=192.0.2.77,Event-Timestamp=1700000000'
ask "Acct-Status-Type=Start,Acct-Authentic=RADIUS,$session,$nas" 192.0.2.2:1813 acct
ask "Acct-Status-Type=Interim-Update,Acct-Session-Time=60,Acct-Input-Octets=123456,Acct-Output-Octets=7890,Acct-Input-Packets=99,Acct-Output-Packets=44,Acct-Input-Gigawords=1,$session,$nas" 192.0.2.2:1813 acct
ask "Acct-Status-Type=Stop,Acct-Session-Time=120,Acct-Terminate-Cause=Idle-Timeout,Acct-Delay-Time=2,$session,$nas" 192.0.2.2:1813 acct
ask "Message-Authenticator=0x00" 192.0.2.2:1812 status
ask "User-Name=alice,Acct-Session-Id=5AFE0001,Reply-Message=Bye" 192.0.2.2:3799 disconnect
ask "User-Name=alice,Filter-Id=members,Error-Cause=Session-Context-Not-Found" 192.0.2.2:3799 coa
keep_as radius.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log" "$work/radius.log"
