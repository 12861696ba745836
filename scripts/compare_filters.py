#!/usr/bin/env python3
"""The same questions asked of tshark and of qxview over captures: which packets a filter finds, the values of columns, the bytes
of followed streams.

  scripts/compare_filters.py CAPTURES [--qxview build/qxview] [--cache DIR] [--every N] [--match REGEX] [--only filters,columns,follow]

Each question is asked of all captures that hold its protocol, as the folder's list (INDEX.tsv) or tshark names those of every
packet. What differs is explained by REASONS, packet by packet, or printed; the counts stand in the end. tshark needs Lua, in
which it is asked all filters of a capture at once.
"""
import collections
import json
import re
import sys

from compare_support import Difference, Ledger, Peer, Reason, compare_all, list_captures, parse_options, run_qxview

STREAMS = 3
SEPARATOR = "\x1f"
FOLLOWED = re.compile(r"Follow: (tcp|udp),raw\nFilter: \w+\.stream eq (\d+)\nNode 0: .*\nNode 1: .*\n((?:\t?[0-9a-f]*\n)*)")
GAP = re.compile(rb"\[\d+ bytes missing in capture file\]\.?\0?")   # which tshark puts among the bytes

# Protocol of the captures, our filter, tshark's where it is spelt otherwise.
FILTERS = [
    ("ip", "ip.addr == 192.168.0.0/16", None),
    ("ip", "ip.src == 10.0.0.0/8 and not udp", "ip.src == 10.0.0.0/8 and not udp"),
    ("ip", "ip.ttl < 64", None),
    ("ip", "ip.len >= 1000", None),
    ("ip", "ip.proto == 17", None),
    ("ip", "ip.flags.df == 1 && ip.id != 0", None),
    ("ip", "ip.src == ip.dst", None),
    ("ipv6", "ipv6.addr == fe80::/10", None),
    ("ipv6", "ipv6.hlim == 255", None),
    ("ipv6", "ipv6.nxt in {6, 17}", None),
    ("eth", "eth.dst == ff:ff:ff:ff:ff:ff", None),
    ("eth", "eth.type == 0x0806 or eth.type == 0x86dd", None),
    ("frame", "frame.len > 500", None),
    ("frame", "frame.len in {60..100, 1514}", None),
    ("frame", "frame.number >= 5 and frame.number <= 9", None),
    ("tcp", "tcp.port == 443", None),
    ("tcp", "tcp.srcport in {80, 443, 8000..8080}", "tcp.srcport in {80, 443, 8000..8080}"),
    ("tcp", "tcp.flags.syn == 1 and tcp.flags.ack == 0", None),
    ("tcp", "tcp.flags.reset == 1 || tcp.flags.fin == 1", None),
    ("tcp", "tcp.len > 0 && !(tcp.port == 80)", None),
    ("tcp", "tcp.seq > 2147483648", None),
    ("tcp", "tcp.window_size_value == 0", None),
    ("tcp", "tcp.options.mss_val <= 1400", None),
    ("tcp", "tcp.srcport > tcp.dstport", None),
    ("udp", "udp.port == 53 or udp.port == 5353", None),
    ("udp", "udp.length > 200", None),
    ("udp", "udp.dstport != 53", None),
    ("dns", "dns.flags.response == 1", None),
    ("dns", "dns.flags.rcode == 3", None),
    ("dns", "dns.id == 0x1234 or dns.count.answers > 1", None),
    ("dns", 'dns.qry.name contains "com"', None),
    ("dns", 'dns.qry.name matches "^[a-z]+\\.(com|org|net)$"', 'dns.qry.name matches "^[a-z]+\\\\.(com|org|net)$"'),
    ("dns", "dns.qry.type == 28", None),
    ("arp", "arp.opcode == 1", None),
    ("arp", "arp.src.proto_ipv4 == 192.168.0.0/16", None),
    ("icmp", "icmp.type == 3", None),
    ("icmp", "icmp.type == 8 and icmp.seq > 1", None),
    ("icmpv6", "icmpv6.type == 135", None),
    ("http", 'http.request.method == "GET"', None),
    ("http", "http.response.code >= 300", None),
    ("http", 'http.request.uri contains "/"', None),
    ("ntp", "ntp.flags.mode == 3", None),
    ("igmp", "igmp.type == 0x22", None),
    ("vlan", "vlan.id == 100 or vlan.id < 50", None),
    ("snmp", "snmp", None),
    ("tls", "tls", None),
]

# Protocol of the captures, key of either side.
COLUMNS = [
    ("frame", "frame.number"), ("frame", "frame.len"), ("frame", "frame.cap_len"), ("eth", "eth.src"), ("eth", "eth.dst"),
    ("eth", "eth.type"), ("ip", "ip.src"), ("ip", "ip.dst"), ("ip", "ip.ttl"), ("ip", "ip.id"), ("ip", "ip.len"),
    ("ip", "ip.proto"), ("ipv6", "ipv6.src"), ("ipv6", "ipv6.hlim"), ("ipv6", "ipv6.plen"), ("tcp", "tcp.srcport"),
    ("tcp", "tcp.seq"), ("tcp", "tcp.ack"), ("tcp", "tcp.len"), ("tcp", "tcp.window_size_value"), ("udp", "udp.dstport"),
    ("udp", "udp.length"), ("dns", "dns.id"), ("dns", "dns.qry.name"), ("dns", "dns.count.answers"), ("arp", "arp.opcode"),
    ("arp", "arp.dst.proto_ipv4"), ("icmp", "icmp.type"), ("icmp", "icmp.seq"), ("http", "http.request.method"),
    ("http", "http.response.code"), ("ntp", "ntp.flags.vn"),
]

def is_start(ours, theirs):
    return ours[:len(theirs)] == theirs


def names_root(ours, theirs):
    return ours == ["." if name == "<root>" else name for name in theirs]


def names_in_ascii(ours, theirs):
    return [re.sub(r"[^ -~]+", "?", name) for name in ours] == [re.sub(r"[^ -~]+", "?", name) for name in theirs]


def names_long(ours, theirs):
    return len(ours) == len(theirs) and all(a == b or b == "<name too long>" for a, b in zip(ours, theirs))


BROKEN = "_ws.malformed or _ws.short or _ws.unreassembled or _ws.type_length or frame.cap_len < frame.len"
AGAIN = ("tcp.analysis.retransmission or tcp.analysis.fast_retransmission or tcp.analysis.spurious_retransmission or "
         "tcp.analysis.out_of_order")
FRAGMENT = "ip.flags.mf == 1 or ip.frag_offset > 0"
QUOTED = "icmp.type in {3, 4, 5, 11, 12} or icmpv6.type in {1, 2, 3, 4}"
HTTP_PORTS, DNS_PORTS = "{80, 591, 631, 8008, 8080, 443}", "{53, 5353, 5355}"
TLS_PORTS = ("{443, 465, 563, 636, 853, 989, 990, 992, 993, 994, 995, 2083, 4740, 5061, 5349, 5671, 5684, 5868, 6514, 6697, 8443, 8883, "
             "10161, 10162}")
OPENFLOW = "openflow or openflow_v1 or openflow_v4 or openflow_v5"

REASONS = [
    Reason(r"frame\.cap_len|tcp\.len|^follow", "frame.cap_len > 65487",
           "a record holds 65,487 bytes of a packet; that it is cut is said"),
    Reason(r"ip\.len", "ip[2:2] == 00:00",
           "a total length of 0 (segmentation offload) is shown as it stands; tshark shows that of the packet"),
    Reason(r"^ip\.|^udp\.|^tcp\.", "ip.bogus_header_length",
           "a header length below 20 bytes is shown, and 20 bytes are read; tshark shows nothing", "ours"),
    Reason(r"^tcp\.", "tcp.bogus_header_length or tcp[12] < 50",
           "a header length below 20 bytes is shown, and 20 bytes are read; tshark shows the ports alone", "ours"),
    Reason(r"^(http|dns|tls)", AGAIN, "a segment that comes again is shown as any other; tshark leaves its payload", "ours"),
    Reason(r"^tls$", "dtls", "records of DTLS are shown by the same lines and keys as those of TLS", "ours"),
    Reason(r"^tls$", "tls and not tls.record or tls.ignored_unknown_record", "bytes that are no record of TLS are data of HTTPS",
           "theirs"),
    Reason(r"^tls$", f"tls and not tcp.port in {TLS_PORTS}",
           "TLS is decoded on the ports that are defined for it; tshark recognises it on any", "theirs"),
    Reason(r"^tls$", "imap or smtp or pop or ftp", "what goes on behind STARTTLS is TLS; tshark takes it for the text protocol's",
           "ours"),
    Reason(r"^tls$", "openvpn", "TLS within OpenVPN is shown in each of its packets; tshark shows it when it is whole", "ours"),
    Reason(r"^tls$", "quic", "TLS in QUIC is shown where its packets can be opened", "ours"),
    Reason(r"^http", f"http and not tcp.port in {HTTP_PORTS}",
           "HTTP is decoded on the ports that are defined for it; tshark recognises it on any", "theirs"),
    Reason(r"^http\.request\.uri", 'http contains "GET  "',
           "blanks in front of a target are skipped; tshark takes it for empty", "ours"),
    Reason(r"^dns", f"dns and not udp.port in {DNS_PORTS} and not tcp.port == 53",
           "DNS is decoded on the ports that are defined for it; tshark recognises it on any", "theirs"),
    Reason(r"^dns", "dns.extraneous", "bytes behind a message are shown as a further one; tshark shows them as bytes", values=is_start),
    Reason(r"^dns\.qry\.name$", "dns", "the root's name is \".\", of tshark \"<Root>\"", values=names_root),
    Reason(r"^dns\.qry\.name$", "dns", "a name above 255 bytes is shown as far as a line goes; tshark says that it is too long",
           values=names_long),
    Reason(r"^dns\.qry\.name$", "dns", "bytes above 127 are of Windows-1252; tshark writes them as they come", values=names_in_ascii),
    Reason(r"tcp\.len", FRAGMENT, "of a first fragment the data are counted that it has; tshark counts none", "ours"),
    Reason(r"tcp\.len", "sflow", "of a sampled header the data are counted that it has; tshark counts none", "ours"),
    Reason(r"tcp\.len", QUOTED, "of a quoted segment the data are counted, too; tshark counts none", "ours"),
    Reason(r"tcp\.len", "ipv6.plen + 54 < frame.len",
           "the line counts bytes behind what IPv6 declares, too; they are no part of a stream"),
    Reason(r"tcp\.len|^follow", "cfp", "tshark takes the last four bytes of a frame of FabricPath for its checksum"),
    Reason(r"^(udp|tcp)\.|^follow .* differs", "ipv6.fraghdr", "the transport of fragments of IPv6 is shown when they are joined"),
    Reason(r"^ipv6\.nxt in", "ipv6.hopopts or ipv6.routing or ipv6.fraghdr or ipv6.dstopts or mipv6 or ah",
           "next headers of extension headers have the key, too", "ours"),
    Reason(r"^(eth|ip|frame|vlan|udp|tcp)", "eth.type == 0xd28b",
           "frames of time stamps are taken further: a VLAN and a network header stand behind them", "ours"),
    Reason(r"^(eth|ip|frame|vlan)|^follow", "udp.port == 8472", "port 8472 carries VXLAN here"),
    Reason(r"^eth\.", "cfp", "the outer header of FabricPath is an Ethernet header, too", values=lambda ours, theirs: ours[1:] == theirs),
    Reason(r"^eth\.", "erspan", "what ERSPAN carries is shown as Ethernet whatever its bytes", values=is_start),
    Reason(r"^icmp\.seq$", "icmp.type == 9", "the extension of mobility agents has a sequence number under the same key", "ours"),
    Reason(r"^icmp\.type", "icmp.ext", "objects of extensions have types under the same key", values=is_start),
    Reason(r"", OPENFLOW, "messages of OpenFlow are not decoded, nor the packets within them", "theirs"),
    Reason(r"^(eth|ip|udp)\.|^follow", OPENFLOW, "messages of OpenFlow are not decoded, nor the packets within them",
           values=lambda ours, theirs: len(ours) == 0 or isinstance(ours[0], int) or theirs[:len(ours)] == ours),
    Reason(r"^follow (tcp|udp):\d+ is outer", "ip or ipv6", "of tunnels the innermost datagram's stream is followed"),
    Reason(r"^follow (tcp|udp):\d+ is divided", "", "a stream is what is sent between two ends; some of tshark's decoders divide it"),
    Reason(r"^follow tcp:\d+ has gaps", "tcp.analysis.lost_segment",
           "bytes behind a gap that nobody acknowledged are shown in the end; tshark drops them"),
    Reason(r"^follow tcp", "tcp.analysis.reused_ports",
           "an answer to a SYN that comes with another number begins the direction when data follow on it; tshark drops them"),
    Reason(r"^follow udp", "ptp", "all that the UDP length covers is shown; tshark ends with PTP's own length"),
    Reason(r"", "frame.len > 65535", "a length of 0 in UDP or IP, of packets above 64 KB, stands for the packet's"),
    Reason(r"", BROKEN, "what is left of a packet that breaks off or contradicts itself is not taken for the same"),
]


class Comparison:
    def __init__(self, options, peer):
        self.options, self.peer = options, peer

    def run(self, *words):
        return run_qxview(self.options.qxview, *words)

    def compare(self, path, protocols):
        """Packets, counts of the same by kind, and differences of one capture."""
        same, differences = collections.Counter(), []
        columns = [key for protocol, key in COLUMNS if protocol in protocols]
        mine, theirs = self.columns(path, columns)
        kinds = self.options.only.split(",")
        if "filters" in kinds or "follow" in kinds:
            filters = [(ours, peers or ours) for protocol, ours, peers in FILTERS if protocol in protocols]
            streams = [(kind, number) for kind in ("tcp", "udp") if kind in protocols for number in range(STREAMS)]
            words = [word for kind, number in streams for word in ("-z", f"follow,{kind},raw,{number}")]
            found, told = self.peer.packets(path, [peers for _, peers in filters], *words)
            if "filters" in kinds:
                self.filters(path, filters, found, same, differences)
            if "follow" in kinds:
                self.follow(path, told, same, differences)
        if "columns" in kinds:
            last = min(len(mine), len(theirs))
            if len(mine) != len(theirs):
                side = "ours" if len(mine) > last else "theirs"
                differences.append(Difference("packets", "packets", path, {last + 1: (side, (len(mine), len(theirs)))}))
            for key in columns:
                different = {}
                for number, (ours, peers) in enumerate(zip(mine, theirs), 1):
                    said = [value for value in peers.get(key, "").split(SEPARATOR) if value != ""]
                    pair = [plain(value) for value in ours[key]], [plain(value) for value in said]
                    if pair[0] != pair[1]:
                        different[number] = ("ours" if not pair[1] else "theirs" if not pair[0] else "both", pair)
                if different:
                    differences.append(Difference("columns", key, path, different))
                else:
                    same["columns"] += 1
        return len(mine), same, differences

    def columns(self, path, keys):
        asked = [word for key in ["frame.number", *keys] for word in ("-e", key)]
        mine = [json.loads(line) for line in self.run("fields", "--format", "json", *asked, path).splitlines()]
        said = self.peer.ask(path, "-T", "fields", "-E", "separator=/t", "-E", "aggregator=" + SEPARATOR, *asked)
        return mine, [dict(zip(["frame.number", *keys], line.split("\t"))) for line in said.split("\n") if line]

    def filters(self, path, filters, found, same, differences):
        for (ours, peers), theirs in zip(filters, found):
            mine = {int(number) for number in self.run("fields", "-e", "frame.number", "--no-header", "-Y", ours, path).split()}
            if mine == theirs or mine == (theirs := self.peer.find(path, peers)):
                same["filters"] += 1
            else:
                packets = {number: ("ours" if number in mine else "theirs", ()) for number in sorted(mine ^ theirs)}
                differences.append(Difference("filters", ours, path, packets))

    def follow(self, path, told, same, differences):
        numbers = None
        for part in FOLLOWED.finditer(told):
            transport, stream = part[1], int(part[2])
            sides = [b"", b""]
            for line in part[3].splitlines():
                sides[line.startswith("\t")] += bytes.fromhex(line.strip())
            if not any(sides):
                continue
            mine = self.follow_ours(path, transport, stream)
            theirs = sorted(GAP.sub(b"", side) for side in sides)
            if mine != theirs:   # tshark numbers and divides streams otherwise where there are several in one another
                numbers = numbers or self.number_streams(path)
                ours = numbers[transport].get(stream)
                if ours is not None and ours != stream:
                    mine = self.follow_ours(path, transport, ours)
            if mine == theirs:
                same["follow " + transport] += 1
                continue
            kind, packets = "is outer", numbers["outer", transport].get(stream)
            if not packets and sum(number == ours for number in numbers[transport].values()) > 1:
                kind, packets = "is divided", [0]
            elif not packets:
                lost = self.peer.find(path, f"{transport}.stream == {stream} and tcp.analysis.lost_segment")
                has_gaps = lost and all(one.startswith(other) for one, other in zip(mine, theirs))
                kind = "has gaps" if has_gaps else "differs"
                packets = lost if has_gaps else self.peer.find(path, f"{transport}.stream == {stream}")
            shown = [len(side) for side in mine], [len(side) for side in theirs]
            found = {number: ("both", shown) for number in packets}
            differences.append(Difference("follow " + transport, f"follow {transport}:{stream} {kind}", path, found, 1))

    def follow_ours(self, path, transport, stream):
        return sorted(self.run("follow", path, "--stream", f"{transport}:{stream}", "--format", "raw", "--side", side) for side in "ab")

    def number_streams(self, path):
        """Our numbers of tshark's streams: of a packet's innermost datagram, in the order of their first packets; and the packets
        of streams that are the outer ones of tunnels."""
        keys = ["frame.number", "frame.protocols", "ip.src", "ip.dst", "ipv6.src", "ipv6.dst", "tcp.stream", "udp.stream", "tcp.srcport",
                "tcp.dstport", "udp.srcport", "udp.dstport", "tcp.flags.syn"]
        asked = [word for key in keys for word in ("-e", key)]
        said = self.peer.ask(path, "-T", "fields", "-E", "separator=/t", "-E", "aggregator=" + SEPARATOR, *asked)
        ours, numbers, begun = {}, collections.defaultdict(dict), collections.Counter()
        for line in said.splitlines():
            packet = {key: [value for value in values.split(SEPARATOR) if value] for key, values in zip(keys, line.split("\t"))}
            way = "".join(packet["frame.protocols"]).split(":")
            way = way[:next((at for at, name in enumerate(way) if name in ("icmp", "icmpv6")), len(way))]
            transports = [name for name in way if name in ("tcp", "udp")]
            for at, name in enumerate(transports):
                streams, of_kind = packet[name + ".stream"], transports[:at].count(name)
                if of_kind >= len(streams):
                    continue
                stream = int(streams[of_kind])
                if at + 1 < len(transports) or "ip" in way[way.index(name):] or "ipv6" in way[way.index(name):]:
                    numbers["outer", name].setdefault(stream, []).append(int(packet["frame.number"][0]))
                    continue
                hosts = packet["ipv6.src"][-1:] + packet["ipv6.dst"][-1:] or packet["ip.src"][-1:] + packet["ip.dst"][-1:]
                ends = sorted(zip(hosts, (packet[name + ".srcport"][-1], packet[name + ".dstport"][-1])))
                if stream not in numbers[name]:   # another connection between the same ends starts with a SYN
                    begun[name, *ends] += name == "tcp" and packet["tcp.flags.syn"][-1:] == ["1"]
                key = (name, *ends, begun[name, *ends])
                of_name = ours.setdefault(name, {})
                numbers[name].setdefault(stream, of_name.setdefault(key, len(of_name)))
        return numbers


def plain(value):
    text = str(value).strip().lower()
    if text.startswith("0x"):
        return str(int(text, 16))
    return {"true": "1", "false": "0"}.get(text, text)


def main():
    options = parse_options(__doc__, only={"default": "filters,columns,follow", "help": "of filters, columns, follow those that are asked"})
    peer = Peer(options.cache)
    comparison = Comparison(options, peer)
    return compare_all(options, list_captures(options.captures), comparison.compare, Ledger(REASONS, options.show), peer)


if __name__ == "__main__":
    sys.exit(main())
