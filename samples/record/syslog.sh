#!/bin/bash
# syslog.pcap: rsyslog sends what logger and its own templates make: RFC 5424 with structured data, RFC 3164, what older
# senders write, over UDP and over TCP in both framings; over IPv6.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need rsyslogd logger

cat >"$work/right.conf" <<CONFIG
module(load="imudp") module(load="imtcp")
input(type="imudp" port="514")
input(type="imtcp" port="601")
*.* action(type="omfile" file="$work/messages")
CONFIG
connect_hosts
start_on "$right" rsyslogd -n -f "$work/right.conf" -i "$work/right.pid"
await_port 601
record cable port 514 or port 601

# As a host of another name than the machine's.
say() {
  # shellcheck disable=SC2016   # the inner shell's
  on "$left" unshare --uts sh -c 'hostname left; exec logger --socket-errors=off "$@"' sh "$@" >>"$work/log" 2>&1 || true
}
say -n 192.0.2.2 -d --rfc5424 -p local4.notice -t evntslog --msgid ID47 --id=8710 --sd-id exampleSDID@32473 \
  --sd-param 'iut="3"' --sd-param 'eventSource="Application"' --sd-id meta --sd-param 'sequenceId="7"' \
  'An application event log entry'
say -n 192.0.2.2 -d --rfc5424=notime,notq,nohost -p kern.emerg -t kernel 'No time, no host'
say -n 192.0.2.2 -d --rfc3164 -p auth.crit -t su --id=230 "'su root' failed for lonvick on /dev/pts/8"
say -n 192.0.2.2 -d --rfc3164 -p daemon.debug -t name "$(printf 'A line that is told at length, %.0s' {1..16})"
say -n 2001:db8::2 -d --rfc5424 -p mail.info -t postfix 'Over version 6'
say -n 192.0.2.2 -T -P 601 --octet-count --rfc5424 -p cron.warning -t cron --id=99 'Counted octets'
say -n 192.0.2.2 -T -P 601 --rfc3164 -p user.err -t app 'Ended by a line feed'
keep_as syslog.pcap
