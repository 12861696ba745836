#!/bin/bash
# chat.pcap: people who talk. IRC: ngircd and clients that register with a password, join, speak, change modes and names, ask who
# is there, are refused and leave. XMPP without TLS: prosody and slixmpp, from the stream's opening over SASL to presence,
# messages, a roster, a room's discovery, a registration that is refused. News: leafnode asked by nntplib, its articles and lists.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
need ngircd prosody prosodyctl python3 socat

connect_hosts
record cable "tcp port 6667 or tcp port 5222 or tcp port 119"
cat >"$work/ngircd.conf" <<CONFIG
[Global]
Name = irc.example.test
AdminInfo1 = An office
AdminEMail = admin@example.test
Info = Recorded
Listen = 192.0.2.2
MotdPhrase = Welcome
Password = letmein
ServerGID = root
ServerUID = root
[Options]
DNS = no
Ident = no
PAM = no
SyslogFacility = local1
[Operator]
Name = boss
Password = secret
[Channel]
Name = #office
Topic = Work
CONFIG
cat >"$work/irc.py" <<'PYTHON'
import socket, time
class Client:
    def __init__(self, nick, password):
        self.socket = socket.create_connection(("192.0.2.2", 6667))
        self.socket.settimeout(1)
        self.say("CAP LS 302", f"PASS {password}", f"NICK {nick}", f"USER {nick} 0 * :{nick.title()} Example", "CAP END")
    def say(self, *lines):
        for line in lines:
            self.socket.sendall(line.encode() + b"\r\n")
            time.sleep(0.12)
            try:
                while len(self.socket.recv(4096)) == 4096:
                    pass
            except OSError:
                pass
refused = Client("eve", "wrong")
anna, ben = Client("anna", "letmein"), Client("ben", "letmein")
anna.say("JOIN #office,#tea", "MODE #office +m", "TOPIC #tea :Is there tea?", "OPER boss secret")
ben.say("JOIN #office", "PRIVMSG #office :hello all", "PRIVMSG anna :\x01ACTION waves\x01", "NOTICE anna :psst", "WHOIS anna", "AWAY :lunch")
anna.say("PRIVMSG ben :there?", "KICK #office ben :no lunch here", "NAMES #office", "LIST", "INVITE ben #tea", "WHO #tea", "MODE anna +i", "NICK ann", "LUSERS", "NONSENSE 1 2 :3", "PING :now", "ISON ben nobody", "USERHOST ben")
ben.say("JOIN #tea", "PART #tea :bye", "QUIT :gone home")
anna.say("QUIT")
PYTHON
cat >"$work/prosody.cfg.lua" <<CONFIG
pidfile = "$work/prosody.pid"; data_path = "$work/prosody"; daemonize = false; run_as_root = true
modules_enabled = { "roster", "saslauth", "disco", "ping", "version", "vcard4", "pep", "register", "time", "blocklist", "smacks", "csi_simple" }
allow_registration = false; c2s_require_encryption = false; allow_unencrypted_plain_auth = true
authentication = "internal_plain"
interfaces = { "192.0.2.2" }; s2s_ports = {}; http_ports = {}; https_ports = {}
log = { info = "$work/prosody.log" }
VirtualHost "example.test"
Component "rooms.example.test" "muc"
CONFIG
mkdir "$work/prosody" "$work/certs"
prosodyctl --root --config "$work/prosody.cfg.lua" register anna example.test secret >>"$work/log" 2>&1 || true
prosodyctl --root --config "$work/prosody.cfg.lua" register ben example.test secret >>"$work/log" 2>&1 || true
cat >"$work/xmpp.py" <<'PYTHON'
import asyncio, slixmpp
class Client(slixmpp.ClientXMPP):
    def __init__(self, jid, other, password="secret"):
        super().__init__(jid, password)
        self.other = other
        for plugin in ("xep_0030", "xep_0045", "xep_0199", "xep_0092", "xep_0085"):
            self.register_plugin(plugin)
        self["feature_mechanisms"].unencrypted_plain = True
        self["feature_mechanisms"].unencrypted_scram = True
        self.add_event_handler("session_start", self.start)
        self.add_event_handler("failed_auth", lambda _: self.disconnect())
    async def start(self, _):
        self.send_presence(pstatus="here", pshow="chat")
        await self.get_roster()
        self.send_presence_subscription(pto=self.other)
        self.send_message(mto=self.other, mbody="hello <there> & all", mtype="chat")
        await self["xep_0030"].get_info(jid="example.test")
        await self["xep_0030"].get_items(jid="rooms.example.test")
        await self["xep_0199"].ping("example.test")
        self["xep_0045"].join_muc("tea@rooms.example.test", self.boundjid.user)
        await asyncio.sleep(1)
        self.send_message(mto="tea@rooms.example.test", mbody="tea?", mtype="groupchat")
        await asyncio.sleep(1)
        self.disconnect(wait=0.5)
async def main():
    clients = [Client("anna@example.test/desk", "ben@example.test"), Client("ben@example.test/phone", "anna@example.test"),
               Client("ben@example.test/none", "anna@example.test", "wrong")]
    for client in clients:
        client.connect(("192.0.2.2", 5222), disable_starttls=True, force_starttls=False)
    await asyncio.sleep(5)
asyncio.get_event_loop().run_until_complete(main())
PYTHON
cat >"$work/news.py" <<'PYTHON'
import nntplib
news = nntplib.NNTP("192.0.2.2", readermode=True)
for ask in (news.getcapabilities, news.list, lambda: news.group("local.test"), lambda: news.over((1, 3)), lambda: news.article("1"),
            lambda: news.head("1"), lambda: news.body("9"), lambda: news.group("no.such.group"), news.date, news.help,
            lambda: news.post(b"From: anna@example.test\r\nNewsgroups: local.test\r\nSubject: Tea\r\nMessage-ID: <1@example.test>\r\n\r\nIs there tea?\r\n.dotted\r\n"),
            lambda: news.group("local.test"), lambda: news.next(), lambda: news.stat("1"), lambda: news.xhdr("subject", "1-9")):
    try:
        ask()
    except Exception:
        pass
news.quit()
PYTHON
start_on "$right" ngircd -n -f "$work/ngircd.conf"
start_on "$right" prosody --root -F --config "$work/prosody.cfg.lua"
# Leafnode's spool is its own.
cat >"$work/spool.sh" <<'SPOOL'
mount -t tmpfs none /var/spool/news
cd /var/spool/news
mkdir -p local/test leaf.node interesting.groups out.going failed.postings in.coming temp.files message.id
for number in $(seq -w 0 999); do mkdir "message.id/$number"; done
echo 'local.test 3 1 1700000000 A group of our own' >leaf.node/groupinfo
for number in 1 2 3; do
  printf 'Path: news.example.test!not-for-mail\r\nFrom: ben@example.test (Ben)\r\nNewsgroups: local.test\r\nSubject: Tea %s\r\nDate: Mon, 2 Nov 2026 10:00:0%s GMT\r\nMessage-ID: <tea%s@example.test>\r\nLines: 1\r\nXref: news.example.test local.test:%s\r\n\r\nIs there tea?\r\n' \
    $number $number $number $number | tr -d '\r' >local/test/$number
done
chown -R news:news .
mount -t tmpfs none /etc/news/leafnode
printf 'expire = 20\nserver = 127.0.0.1\nhostname = news.tearoom.internal\nallowSTRANGERS = 42\n' >/etc/news/leafnode/config
chown -R news:news /etc/news/leafnode
exec socat TCP-LISTEN:119,bind=192.0.2.2,fork,reuseaddr EXEC:/usr/sbin/leafnode
SPOOL
start_on "$right" bash "$work/spool.sh"
sleep 3
on "$left" timeout 30 /usr/bin/python3 "$work/irc.py" >>"$work/log" 2>&1 || true
on "$left" timeout 12 /usr/bin/python3 "$work/xmpp.py" >>"$work/log" 2>&1 || true
on "$left" timeout 12 /usr/bin/python3 "$work/news.py" >>"$work/log" 2>&1 || true
keep_as chat.pcap
[[ -z ${SHOW_LOG-} ]] || cat "$work/log"
