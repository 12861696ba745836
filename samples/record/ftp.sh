#!/bin/bash
# ftp.pcap: vsftpd, asked by curl as an anonymous guest: a listing and a file in passive mode, once more in active mode, an
# upload that is refused, and passive mode over IPv6.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need vsftpd curl

mkdir "$work/site" "$work/empty"
chmod 755 "$work/site" "$work/empty"
echo 'A file to be fetched.' >"$work/site/hello.txt"
touch -d '2026-01-02 03:04:05 UTC' "$work/site/hello.txt"
cat >"$work/vsftpd.conf" <<CONFIG
background=NO
listen=NO
listen_ipv6=YES
anonymous_enable=YES
no_anon_password=NO
anon_root=$work/site
secure_chroot_dir=$work/empty
ftp_username=ftp
ftpd_banner=Welcome to the sample server.
xferlog_enable=NO
seccomp_sandbox=NO
CONFIG

connect_hosts
start_on "$right" vsftpd "$work/vsftpd.conf"
await_port 21
record cable tcp
get() { on "$left" curl -sS -o /dev/null "$@" || true; }
get ftp://192.0.2.2/
get --disable-epsv ftp://192.0.2.2/hello.txt
get --ftp-port - --disable-eprt ftp://192.0.2.2/hello.txt
get --ftp-port - ftp://192.0.2.2/
get -T "$work/site/hello.txt" ftp://192.0.2.2/upload.txt 2>/dev/null
get 'ftp://[2001:db8::2]/hello.txt'
keep_as ftp.pcap
