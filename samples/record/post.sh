#!/bin/bash
# post.pcap: a mail server (postfix, dovecot) and what clients ask of it. SMTP: abilities, logins by PLAIN, LOGIN and CRAM-MD5, several
# commands at once, a message in chunks, notifications asked for, a relay refused, the rare commands; LMTP; IMAP: flags,
# searches, parts, structures, copies, quotas, waiting for news, what is refused; POP3: abilities, APOP, lists, tops, deletions;
# ManageSieve.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need postfix dovecot python3

install -d -o mail -g mail "$work/mail" "$work/mail/new" "$work/mail/cur" "$work/mail/tmp"
mkdir "$work/run" "$work/post"
install -d -o postfix "$work/data"
install -d "$work/queue"
printf 'right:{PLAIN}secret\n' >"$work/users"
cat >"$work/dovecot.conf" <<CONFIG
base_dir = $work/run
state_dir = $work/run
log_path = $work/dovecot.log
protocols = pop3 imap lmtp sieve
ssl = no
disable_plaintext_auth = no
login_trusted_networks = 192.0.2.0/24
default_login_user = nobody
default_internal_user = mail
default_internal_group = mail
first_valid_uid = 1
first_valid_gid = 1
mail_location = maildir:$work/mail
auth_mechanisms = plain login cram-md5 apop
auth_username_format = %n
mail_plugins = quota
plugin {
  quota = maildir:User quota
  quota_rule = *:storage=1M
}
protocol imap {
  mail_plugins = quota imap_quota
}
passdb {
  driver = passwd-file
  args = $work/users
}
userdb {
  driver = static
  args = uid=mail gid=mail home=$work/mail
}
service auth {
  unix_listener $work/auth {
    mode = 0666
  }
}
service lmtp {
  inet_listener lmtp {
    address = 192.0.2.2
    port = 24
  }
}
service pop3-login {
  chroot =
}
service imap-login {
  chroot =
}
service managesieve-login {
  chroot =
}
service anvil {
  chroot =
}
CONFIG
cat >"$work/post/main.cf" <<CONFIG
compatibility_level = 3.6
queue_directory = $work/queue
data_directory = $work/data
maillog_file = /dev/stdout
myhostname = mail.example.test
mydestination = example.test
mynetworks = 127.0.0.0/8
inet_interfaces = 192.0.2.2
inet_protocols = ipv4
alias_maps =
local_recipient_maps =
mailbox_transport = lmtp:inet:192.0.2.2:24
smtpd_sasl_auth_enable = yes
smtpd_sasl_type = dovecot
smtpd_sasl_path = $work/auth
smtpd_sasl_security_options = noanonymous
fast_flush_domains = example.test
CONFIG
sed 's/^\([a-z]*  *[a-z]*  *[-ny]  *[-ny]  *\)y /\1n /' /usr/share/postfix/master.cf.dist >"$work/post/master.cf"

connect_hosts
start_on "$right" dovecot -F -c "$work/dovecot.conf"
on "$right" postfix -c "$work/post" start >>"$work/log" 2>&1 || true
sleep 3
record cable "tcp port 25 or tcp port 24 or tcp port 143 or tcp port 110 or tcp port 4190"
cat >"$work/dialogs.py" <<'PYTHON'
import base64, hashlib, hmac, imaplib, poplib, smtplib, socket
TEXT = ("From: left@example.test\r\nTo: right@example.test\r\nSubject: =?utf-8?q?Gr=C3=BC=C3=9Fe?=\r\nMIME-Version: 1.0\r\n"
        "Content-Type: multipart/mixed; boundary=cut\r\n\r\n--cut\r\nContent-Type: text/plain; charset=utf-8\r\n"
        "Content-Transfer-Encoding: quoted-printable\r\n\r\nHello =C3=BC\r\n.dot\r\n--cut\r\nContent-Type: application/octet-stream; name=a.bin\r\n"
        "Content-Transfer-Encoding: base64\r\n\r\nAAECAwQFBgc=\r\n--cut--\r\n")
def talk(port, *lines):
    with socket.create_connection(("192.0.2.2", port), timeout=2) as end:
        end.recv(4096)
        for line in lines:
            end.sendall(line if isinstance(line, bytes) else line.encode() + b"\r\n")
            try:
                end.recv(8192)
            except OSError:
                pass
def tried(ask, *arguments):
    try:
        return ask(*arguments)
    except Exception as problem:
        print(problem)
def mail():
    for way in ("PLAIN", "LOGIN", "CRAM-MD5"):
        with smtplib.SMTP("192.0.2.2", 25, "left.example.test") as server:
            server.ehlo()
            server.user, server.password = "right", "secret"
            tried(server.auth, way, getattr(server, "auth_" + way.lower().replace("-", "_")))
            if way == "PLAIN":
                server.sendmail("left@example.test", ["right@example.test"], TEXT.encode())
    talk(25, "EHLO left.example.test", b"MAIL FROM:<left@example.test> SIZE=400 BODY=8BITMIME RET=HDRS ENVID=7\r\n"
         b"RCPT TO:<right@example.test> NOTIFY=SUCCESS,FAILURE ORCPT=rfc822;right@example.test\r\n", b"BDAT 26\r\nSubject: in chunks\r\n\r\nHel",
         b"BDAT 4 LAST\r\nlo\r\n", "VRFY right", "EXPN list", "ETRN example.test", "HELP", "NOOP", "RSET", "BOGUS",
         "MAIL FROM:<left@example.test>", "RCPT TO:<some@example.net>", "AUTH PLAIN " + base64.b64encode(b"\0right\0wrong").decode(), "QUIT")
    talk(24, "LHLO left.example.test", "MAIL FROM:<left@example.test>", "RCPT TO:<right@example.test>", "RCPT TO:<right+list@example.test>", "DATA",
         "Subject: over LMTP\r\n\r\nHello\r\n.", "QUIT")
def read():
    server = imaplib.IMAP4("192.0.2.2")
    tried(server.login, "right", "wrong")
    tried(server.login_cram_md5, "right", "secret")
    for ask in (server.select, lambda: server.fetch("1", "(FLAGS UID ENVELOPE BODYSTRUCTURE INTERNALDATE RFC822.SIZE)"),
                lambda: server.fetch("1", "(BODY.PEEK[HEADER.FIELDS (SUBJECT FROM)] BODY[1]<0.10>)"), lambda: server.fetch("1:*", "(BODY[])"),
                lambda: server.store("1", "+FLAGS", r"(\Seen \Flagged $Work)"), lambda: server.search(None, "OR", "FLAGGED", "SUBJECT", '"chunks"'),
                lambda: server.uid("SEARCH", "RETURN (MIN MAX COUNT)", "ALL"), lambda: server.sort("(REVERSE DATE)", "UTF-8", "ALL"),
                lambda: server.thread("REFERENCES", "UTF-8", "ALL"), lambda: server.create("Archive.2026"), lambda: server.copy("1", "Archive.2026"),
                lambda: server.append("Archive.2026", r"(\Draft)", '"02-Nov-2026 10:00:00 +0000"', b"Subject: put\r\n\r\nHi\r\n"),
                lambda: server.list('""', "*"), lambda: server.lsub(), lambda: server.subscribe("Archive.2026"), lambda: server.status("INBOX", "(MESSAGES UNSEEN UIDNEXT)"),
                lambda: server.getquotaroot("INBOX"), lambda: server.namespace(), lambda: server.rename("Archive.2026", "Archive.old"), lambda: server.delete("Archive.old"),
                server.noop, lambda: server.xatom("ID", '("name" "recorder" "version" "1")'), lambda: server.select("Missing"), lambda: server.xatom("BOGUS"),
                lambda: server.select(), lambda: server.store("1", "+FLAGS", r"\Deleted"), server.expunge, server.close, server.logout):
        tried(ask)
    talk(143, "a1 LOGIN {5}", "right {6}", "secret", "a2 SELECT INBOX (CONDSTORE)", "a3 IDLE", "DONE", "a4 LOGOUT")
    box = poplib.POP3("192.0.2.2")
    for ask in (box.capa, lambda: box.apop("right", "secret"), box.stat, box.list, box.uidl, lambda: box.top(1, 2), lambda: box.retr(1), lambda: box.dele(1), box.rset,
                lambda: box.retr(9), lambda: box._shortcmd("XBOGUS"), box.quit):
        tried(ask)
    talk(4190, 'CAPABILITY', 'AUTHENTICATE "PLAIN" "' + base64.b64encode(b"\0right\0secret").decode() + '"', 'PUTSCRIPT "main" {25+}\r\nrequire "fileinto"; keep;\r\n',
         'SETACTIVE "main"', 'LISTSCRIPTS', 'GETSCRIPT "main"', 'HAVESPACE "main" 100', 'PUTSCRIPT "bad" "nonsense"', 'LOGOUT')
mail()
read()
PYTHON
on "$left" timeout 60 /usr/bin/python3 "$work/dialogs.py" >>"$work/log" 2>&1 || true
keep_as post.pcap
on "$right" postfix -c "$work/post" stop >>"$work/log" 2>&1 || true
[[ -z ${SHOW_LOG-} ]] || cat "$work/log" "$work/dovecot.log"
