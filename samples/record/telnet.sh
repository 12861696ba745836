#!/bin/bash
# telnet.pcap: a telnet client at a terminal negotiates its options with telnetd and holds a short dialog. The "login" is a
# script of this recording, so no account of the machine is involved.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need telnetd telnet socat script

cat >"$work/login" <<'LOGIN'
#!/bin/sh
printf 'Welcome to the sample station.\nname: '
read -r name
printf 'Hello %s, until next time.\n' "$name"
LOGIN
chmod 755 "$work/login"

connect_hosts
start_on "$right" socat TCP-LISTEN:23,bind=192.0.2.2,reuseaddr "EXEC:telnetd --no-hostinfo --exec-login=$work/login,nofork"
sleep 0.5
record cable port 23
{ sleep 1.5; echo guest; sleep 1; } |
  on "$left" env TERM=vt100 script -qec 'stty rows 24 columns 80; telnet 192.0.2.2' /dev/null >>"$work/log" || true
keep_as telnet.pcap
