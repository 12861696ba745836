#!/bin/bash
# squeezed.pcap: a mailbox that is read with IMAP over a connection that goes over to compression (dovecot, asked by Python's sockets and
# zlib): refused without a login, granted, commands and answers of several segments, a message that is stored by a literal.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need dovecot python3

mkdir -p "$work/mail/new" "$work/mail/cur" "$work/mail/tmp" "$work/run"
{
  printf 'From: left@example.test\r\nTo: right@example.test\r\nSubject: Hello\r\nDate: Fri, 02 Jan 2026 03:04:05 +0000\r\n\r\n'
  for line in $(seq 270); do printf 'Line %d of a message that says %d.\r\n' "$line" $((line * line)); done
} >"$work/mail/new/1.sample"
chown -R mail:mail "$work/mail"
cat >"$work/dovecot.conf" <<CONFIG
base_dir = $work/run
state_dir = $work/run
log_path = $work/dovecot.log
protocols = imap
ssl = no
disable_plaintext_auth = no
login_trusted_networks = 192.0.2.0/24
default_login_user = nobody
default_internal_user = mail
default_internal_group = mail
first_valid_uid = 1
first_valid_gid = 1
mail_location = maildir:$work/mail
auth_mechanisms = plain
protocol imap {
  mail_plugins = zlib imap_zlib
}
passdb {
  driver = static
  args = password=secret
}
userdb {
  driver = static
  args = uid=mail gid=mail home=$work/mail
}
service imap-login {
  chroot =
}
service anvil {
  chroot =
}
CONFIG
cat >"$work/client.py" <<'CLIENT'
import socket
import zlib

connection = socket.create_connection(("192.0.2.2", 143), timeout=5)
squeeze = unsqueeze = None


def read_to(end):
    text = b""
    while end not in text:
        text += unsqueeze.decompress(data) if (data := connection.recv(65536)) and unsqueeze else data
    return text


def ask(tag, command, end=None):
    data = f"{tag} {command}\r\n".encode()
    connection.sendall(squeeze.compress(data) + squeeze.flush(zlib.Z_SYNC_FLUSH) if squeeze else data)
    return read_to(end or f"{tag} ".encode())


read_to(b"\r\n")
ask("a0", "COMPRESS DEFLATE")
ask("a1", "LOGIN right secret")
ask("a2", "COMPRESS DEFLATE")
squeeze, unsqueeze = zlib.compressobj(9, zlib.DEFLATED, -15), zlib.decompressobj(-15)
ask("a3", "SELECT INBOX")
ask("a4", "FETCH 1 (FLAGS BODY.PEEK[HEADER])")
ask("a5", "FETCH 1 BODY[TEXT]")
ask("a6", "SEARCH SUBJECT Hello")
ask("a7", "STORE 1 +FLAGS (\\Flagged)")
ask("a8", "COMPRESS DEFLATE")
ask("a9", "LOGOUT")
CLIENT

connect_hosts
start_on "$right" dovecot -F -c "$work/dovecot.conf"
await_port 143
record cable tcp
on "$left" python3 "$work/client.py"
keep_as squeezed.pcap
