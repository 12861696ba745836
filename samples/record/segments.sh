#!/bin/bash
# segments.pcap: messages that span TCP segments: a zone that BIND transfers and a long answer; a long
# form and a long page of nginx over HTTP; DCE RPC of Samba's servers over TCP and in SMB's pipes, with answers of several fragments.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
PATH=$PATH:/usr/libexec/samba:/usr/lib/x86_64-linux-gnu/samba
need named dig nginx curl smbd samba-dcerpcd rpcclient pdbedit

mkdir -p "$work/zones" "$work/www" "$work/nginx" "$work/files" "$work/samba"/{private,lock,state,cache,pid,rpc,log}
cat >"$work/zones/example.test" <<'ZONE'
$TTL 300
@ IN SOA ns.example.test. host.example.test. 7 3600 900 86400 300
@ IN NS ns.example.test.
@ IN MX 10 mail.example.test.
ns IN A 192.0.2.53
mail IN A 192.0.2.25
ZONE
for number in $(seq 1 70); do
  echo "host-$number-of-a-long-list IN A 192.0.2.$((number + 100))"
  echo "long IN TXT \"text $number: $(printf 'a%.0s' {1..30})\""
done >>"$work/zones/example.test"
cat >"$work/named.conf" <<CONFIG
options {
  directory "$work/zones"; pid-file "$work/named.pid"; session-keyfile "$work/session.key"; listen-on { 192.0.2.2; };
  listen-on-v6 { none; }; recursion no; allow-transfer { any; }; dnssec-validation no; minimal-responses no;
};
controls { };
zone "example.test" { type primary; file "example.test"; };
CONFIG
seq -s ' ' 1 1500 >"$work/www/long.txt"
cat >"$work/nginx.conf" <<CONFIG
daemon off; master_process off; pid $work/nginx/pid; error_log $work/nginx/error.log;
events { worker_connections 16; }
http {
  access_log off; client_body_temp_path $work/nginx; proxy_temp_path $work/nginx; fastcgi_temp_path $work/nginx;
  uwsgi_temp_path $work/nginx; scgi_temp_path $work/nginx; types { text/plain txt; }
  server { listen 192.0.2.2:80; root $work/www; location /form { return 204; } }
}
CONFIG
cat >"$work/smb.conf" <<CONFIG
[global]
netbios name = QXSERVER
workgroup = QXGROUP
interfaces = cable 127.0.0.1
bind interfaces only = yes
smb ports = 445
private dir = $work/samba/private
lock directory = $work/samba/lock
state directory = $work/samba/state
cache directory = $work/samba/cache
pid directory = $work/samba/pid
ncalrpc dir = $work/samba/rpc
log file = $work/samba/log/%m
passdb backend = tdbsam:$work/samba/private/passdb.tdb
rpc start on demand helpers = no
usershare max shares = 0
username map = $work/users
server min protocol = CORE
client min protocol = CORE
client max protocol = NT1
client ipc min protocol = CORE
client ipc max protocol = NT1
load printers = no
printing = bsd
disable spoolss = yes
CONFIG
for number in $(seq 1 32); do
  printf '[share%d]\ncomment = The share of number %d, with a long comment\npath = %s\n' "$number" "$number" "$work/files"
done >>"$work/smb.conf"
echo 'games = alice' >"$work/users"
printf 'secret\nsecret\n' | pdbedit -s "$work/smb.conf" -a -u games -t >/dev/null

trap take_down_all EXIT
connect_hosts
on "$left" sysctl -q net.ipv4.tcp_timestamps=0
on "$right" sysctl -q net.ipv4.tcp_timestamps=0
start_on "$right" named -f -n 1 -c "$work/named.conf"
start_on "$right" nginx -c "$work/nginx.conf"
start_on "$right" samba-dcerpcd -F --libexec-rpcds -s "$work/smb.conf"
start_on "$right" smbd -F -s "$work/smb.conf"
await_port 445
sleep 2
ask() { on "$left" timeout 20 "$@" >>"$work/log" 2>&1 || true; }

record cable 'tcp[tcpflags] & (tcp-syn | tcp-fin) != 0 or (ip[2:2] - ((ip[0] & 15) << 2) - ((tcp[12] & 240) >> 2)) != 0'
ask dig @192.0.2.2 +tcp +tries=1 long.example.test TXT
ask dig @192.0.2.2 +tries=1 example.test AXFR
ask curl -s -o "$work/page" http://192.0.2.2/long.txt
ask curl -s --data-binary "@$work/www/long.txt" http://192.0.2.2/form
ask rpcclient -s "$work/smb.conf" -U 'alice%secret' 'ncacn_ip_tcp:192.0.2.2' -c 'netshareenumall; srvinfo'
ask rpcclient -s "$work/smb.conf" -U 'alice%secret' 'ncacn_ip_tcp:192.0.2.2[connect]' -c 'lsaquery; enumprivs'
ask rpcclient -s "$work/smb.conf" -U 'alice%secret' 192.0.2.2 -c 'netshareenumall; lookupnames games'
keep_as segments.pcap
[ -z "${SHOW_LOG-}" ] || cat "$work/log"
