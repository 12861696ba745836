#!/bin/bash
# mail.pcap: a message sent with SMTP (aiosmtpd, asked by swaks), then read with POP3 and IMAP (dovecot, asked by curl), and
# commands and a password that are refused.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need aiosmtpd swaks dovecot curl

mkdir -p "$work/mail/new" "$work/mail/cur" "$work/mail/tmp" "$work/run"
printf 'From: left@example.test\r\nTo: right@example.test\r\nSubject: Hello\r\nDate: Fri, 02 Jan 2026 03:04:05 +0000\r\n' \
  >"$work/mail/new/1.sample"
printf '\r\nA short message.\r\n.A line that begins with a dot.\r\n' >>"$work/mail/new/1.sample"
chown -R mail:mail "$work/mail"
cat >"$work/dovecot.conf" <<CONFIG
base_dir = $work/run
state_dir = $work/run
log_path = $work/dovecot.log
protocols = pop3 imap
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
passdb {
  driver = static
  args = password=secret
}
userdb {
  driver = static
  args = uid=mail gid=mail home=$work/mail
}
service pop3-login {
  chroot =
}
service imap-login {
  chroot =
}
service anvil {
  chroot =
}
CONFIG

connect_hosts
start_on "$right" aiosmtpd -n -l 192.0.2.2:25 -c aiosmtpd.handlers.Debugging stdout
start_on "$right" dovecot -F -c "$work/dovecot.conf"
await_port 110
await_port 143
record cable tcp
on "$left" swaks --server 192.0.2.2 --ehlo left.example.test --from left@example.test --to right@example.test \
  --header 'Subject: Hello' --body 'A short message.' >>"$work/log"
# What no client does: a sender before the greeting, an unknown command, a recipient before the sender.
# shellcheck disable=SC2016  # the other shell expands it
on "$left" bash -c 'exec 3<>/dev/tcp/192.0.2.2/25; for line in "MAIL FROM:<left@example.test>" "HELO left.example.test" \
  BOGUS "RCPT TO:<right@example.test>" QUIT; do read -r -t 2 _ <&3; printf "%s\r\n" "$line" >&3; done; read -r -t 2 _ <&3'
get() { on "$left" curl -sS -o /dev/null "$@"; }
get -u right:secret pop3://192.0.2.2/
get -u right:secret pop3://192.0.2.2/1
get -u right:wrong pop3://192.0.2.2/ 2>>"$work/log" || true
get -u right:secret imap://192.0.2.2/
get -u right:secret 'imap://192.0.2.2/INBOX;MAILINDEX=1'
keep_as mail.pcap
