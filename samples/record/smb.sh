#!/bin/bash
# netbios.pcap and smb.pcap: smbd and nmbd, asked by Samba's own clients and by small ones of ours (smb_client.py,
# netbios_client.py) for the commands that none of them sends any more.
# netbios.pcap: names registered, refreshed and released, queries, node status, browser announcements and an election; a
# session on port 139 that is set up and one that is refused.
# smb.pcap: SMB over port 445: listings, files, locks, attributes, printing, shares, remote administration, POSIX
# extensions; the dialects of the first servers up to NT LM 0.12.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need smbd nmbd smbclient smbcacls nmblookup pdbedit python3

# The configuration of a host, all files of which stand in the temporary folder: configure HOST NAME INTERFACE MORE...
configure() {
  local name=$1 interface=$2
  local home=$work/$name
  mkdir -p "$home"/{private,lock,state,cache,pid,rpc,log}
  cat >"$home/smb.conf" <<CONFIG
[global]
netbios name = $name
workgroup = QXGROUP
server string = Samples of $name
interfaces = $interface 127.0.0.1
bind interfaces only = yes
smb ports = 445 139
private dir = $home/private
lock directory = $home/lock
state directory = $home/state
cache directory = $home/cache
pid directory = $home/pid
ncalrpc dir = $home/rpc
log file = $home/log/%m
passdb backend = tdbsam:$home/private/passdb.tdb
usershare max shares = 0
username map = $work/users
map to guest = Bad User
guest account = games
server min protocol = CORE
client min protocol = CORE
client max protocol = NT1
client ipc min protocol = CORE
client ipc max protocol = NT1
lanman auth = yes
client lanman auth = yes
client plaintext auth = yes
ntlm auth = ntlmv1-permitted
raw NTLMv2 auth = yes
unix extensions = yes
ea support = yes
dos charset = CP850
name resolve order = bcast
load printers = no
printing = bsd
printcap name = $work/printcap
print command = true %s
lpq command = true
lprm command = true
disable spoolss = no
deadtime = 0
CONFIG
}

configure QXSERVER cable
cat >>"$work/QXSERVER/smb.conf" <<CONFIG
local master = yes
preferred master = yes
os level = 65
wins support = yes
time server = yes
[files]
comment = Files to try
path = $work/files
read only = no
guest ok = yes
store dos attributes = yes
[printer]
comment = A printer of paper
path = $work/spool
printable = yes
guest ok = yes
CONFIG
configure QXCLIENT cable
cat >>"$work/QXCLIENT/smb.conf" <<CONFIG
local master = no
wins server = 192.0.2.2
CONFIG

echo 'games = alice' >"$work/users"
echo 'printer|A printer of paper' >"$work/printcap"
mkdir "$work/files" "$work/files/folder" "$work/spool"
chmod 1777 "$work/files" "$work/files/folder" "$work/spool"
echo 'A file to be fetched.' >"$work/files/hello.txt"
echo 'One of several.' >"$work/files/a longer name than eight.text"
chmod 666 "$work/files/"*.t*
chown -R games:games "$work/files"
touch -d '2026-01-02 03:04:05 UTC' "$work/files/hello.txt"
echo 'Sent to the server.' >"$work/upload.txt"
printf 'secret\nsecret\n' | pdbedit -s "$work/QXSERVER/smb.conf" -a -u games -t >/dev/null

client="--configfile=$work/QXCLIENT/smb.conf"
# A server of a host whose name is not that of this machine.
start_named() {
  local host=$1 name=$2; shift 2
  # shellcheck disable=SC2016
  start_on "$host" unshare --uts bash -c 'hostname "$0.example.test"; exec "$@"' "$name" "$@"
}
ask() {
  local program=$1; shift
  # shellcheck disable=SC2016
  on "$left" unshare --uts bash -c 'hostname qxclient.example.test; exec "$@"' - \
    timeout 20 "$program" "$client" "$@" >>"$work/log" 2>&1 || true
}
as_alice=(-U 'alice%secret')

# Samba's own helpers outlive it, and its servers take their time.
trap take_down_all EXIT
connect_hosts
# Smaller recordings: no time stamps, and of SMB no bare acknowledgements.
on "$left" sysctl -q net.ipv4.tcp_timestamps=0
on "$right" sysctl -q net.ipv4.tcp_timestamps=0

# Names: everything that nmbd says, from its start to its end; sessions on port 139.
record cable 'udp port 137 or udp port 138 or tcp port 139'
start_named "$right" qxserver nmbd -F --debug-stdout -s "$work/QXSERVER/smb.conf"
sleep 14
start_named "$right" qxserver smbd -F --debug-stdout -s "$work/QXSERVER/smb.conf"
await_port 139
start_named "$left" qxclient nmbd -F --debug-stdout -s "$work/QXCLIENT/smb.conf"
names=$!
sleep 14
ask nmblookup QXSERVER
ask nmblookup -M QXGROUP
ask nmblookup --recursion -U 192.0.2.2 QXCLIENT#20
ask nmblookup --recursion -U 192.0.2.2 NOBODY
ask nmblookup -A 192.0.2.2
ask nmblookup --netbios-scope=EXAMPLE.TEST -B 192.0.2.255 QXSERVER
ask smbclient -p 139 //QXSERVER/files "${as_alice[@]}" -c 'ls'
ask smbclient -M QXCLIENT -U alice <<<'A message'
on "$left" python3 "$here/netbios_client.py" 192.0.2.1 192.0.2.2 >>"$work/log" 2>&1 || { tail "$work/log" >&2; exit 1; }
kill "$names"
sleep 1
keep_as netbios.pcap

record cable 'tcp port 445 and tcp[tcpflags] & (tcp-syn | tcp-fin | tcp-push) != 0'
ask smbclient -L QXSERVER -N
ask smbclient //QXSERVER/files "${as_alice[@]}" -c "lcd $work; ls; get hello.txt fetched.txt; put upload.txt sent.txt; \
rename sent.txt kept.txt; setmode kept.txt +rh; allinfo kept.txt; altname kept.txt; setmode kept.txt -rh; \
utimes kept.txt -1 -1 -1 2026:02:03-04:05:06; hardlink kept.txt second.txt; mkdir new; cd new; cd ..; rmdir new; \
scopy hello.txt copied.txt; del copied.txt; del kept.txt; du; volume; ls nothing; get nothing; \
setea hello.txt user.colour green; geteas hello.txt; showacls; ls hello.txt; notify nowhere; mkdir gone; \
mkdir gone/too; deltree gone; logoff"
ask smbclient //QXSERVER/files "${as_alice[@]}" -c "posix; posix_whoami; stat hello.txt; getfacl hello.txt; \
posix_open made.txt 0644; lock 1 w 0 10; unlock 1 0 10; close 1; chmod 0600 made.txt; chown 0 0 made.txt; \
symlink hello.txt pointer; readlink pointer; link hello.txt hard; posix_mkdir made 0755; posix_rmdir made; \
posix_unlink made.txt; posix_unlink pointer; posix_unlink hard; ls; echo 2 hello"
ask smbclient //QXSERVER/printer "${as_alice[@]}" -c "print $work/upload.txt; queue; cancel 1"
ask smbclient //QXSERVER/files -U 'alice%wrong' -c ls
ask smbcacls //QXSERVER/files hello.txt "${as_alice[@]}"
ask smbcacls //QXSERVER/files hello.txt "${as_alice[@]}" -a 'ACL:games:ALLOWED/0/READ'
on "$left" timeout 60 python3 "$here/smb_client.py" 192.0.2.2 >>"$work/log" 2>&1 || { tail "$work/log" >&2; exit 1; }
keep_as smb.pcap
