#!/usr/bin/env python3
"""What tshark and qxview count over captures: the hierarchy of protocols, endpoints, conversations, ports, packets by time and
length, values, DNS and HTTP with their answers, and what happened in TCP connections.

  scripts/compare_statistics.py CAPTURES [--qxview build/qxview] [--cache DIR] [--every N] [--match REGEX]

Sums that differ are traced to the packets that the two count otherwise, and those are explained by REASONS, packet by packet, or
printed. Sums that these packets do not make up stay unexplained.
"""
import collections
import json
import re
import sys

from compare_filters import AGAIN, BROKEN, DNS_PORTS, FRAGMENT, HTTP_PORTS, OPENFLOW, TLS_PORTS
from compare_support import Difference, Ledger, Peer, Reason, compare_all, list_captures, parse_options, run_qxview

LAYERS = {"eth": "Ethernet", "ip": "IPv4", "ipv6": "IPv6", "tcp": "TCP", "udp": "UDP", "sctp": "SCTP"}
LOWER = {"eth", "ip", "ipv6", "tcp", "udp", "arp", "icmp", "icmpv6", "igmp", "vlan", "sctp", "ppp", "pppoes", "gre", "esp", "ospf", "vrrp",
         "pim"}
APPLICATIONS = {"dns", "mdns", "nbns", "llmnr", "ssdp", "dhcp", "dhcpv6", "ntp", "snmp", "tftp", "radius", "rip", "bgp", "ldp", "hsrp",
                "stp", "lldp", "cdp", "eigrp", "isakmp", "kerberos", "sip", "rtsp", "http", "tls", "dtls", "ssh",
                "syslog"}
VALUES = ["ip.ttl", "ip.proto", "eth.type", "tcp.dstport", "udp.dstport", "dns.qry.type", "dns.flags.rcode"]
SEPARATOR = "\x1f"
# What is asked of every packet, of tshark and of qxview.
FIELDS = ["frame.number", "frame.len", "frame.time_epoch", "frame.protocols", "eth.src", "eth.dst", "ip.src", "ip.dst", "ipv6.src",
          "ipv6.dst", "tcp.srcport", "tcp.dstport", "udp.srcport", "udp.dstport", "sctp.srcport", "sctp.dstport", "tcp.seq", "tcp.len",
          "tcp.ack", "tcp.flags", "tcp.window_size_value", "tcp.analysis.retransmission", "tcp.analysis.fast_retransmission",
          "tcp.analysis.spurious_retransmission", "tcp.analysis.out_of_order", "tcp.analysis.lost_segment", "tcp.analysis.duplicate_ack",
          "tcp.analysis.zero_window", "tcp.analysis.keep_alive", "tcp.analysis.initial_rtt", "tcp.stream", "dns.id", "dns.flags.response",
          "dns.flags.opcode", "dns.flags.rcode", "dns.time", "http.request.method", "http.response.code", "http.time", "ip.ttl", "ip.proto",
          "eth.type", "dns.qry.type"]
OURS = ["frame.number", "frame.length", "frame.time", "frame.protocols", "frame.source_address", "frame.destination_address",
        "frame.source_port", "frame.destination_port", "frame.protocol", "eth.source", "eth.destination", "http.request.method",
        "http.response.code", "dns.id", "dns.flags.response", *VALUES]


def split(text):
    return [value for value in text.split(SEPARATOR) if value != ""]


def address(text):
    """As both write it: names of hardware addresses in small letters, ends of IPv6 without brackets."""
    return text.replace("[", "").replace("]", "").lower()


def nanoseconds(text, of_tshark=False):
    """Of seconds; "-S.N" is S seconds less N nanoseconds for tshark."""
    seconds, fraction = text.lstrip("-").split(".")
    size, fraction = int(seconds) * 10**9, int(fraction.ljust(9, "0"))
    if not text.startswith("-"):
        return size + fraction
    return size - fraction if of_tshark else -size - fraction


class Packet:
    """A packet as the two see it: the way into it, and who talks to whom at each layer."""

    def __init__(self, theirs, ours):
        self.theirs, self.ours, self.connection = theirs, ours, None
        self.number, self.length = int(theirs["frame.number"][0]), int(theirs["frame.len"][0])
        self.time = nanoseconds(theirs["frame.time_epoch"][0], True)
        self.our_time = nanoseconds(ours["frame.time"][0])
        self.their_way = [name for name in "".join(theirs["frame.protocols"]).split(":") if name not in ("ethertype", "raw")]
        self.our_way = [name for name in "".join(ours["frame.protocols"][:1]).split(":") if name not in ("", "wan")]
        self.their_ends = self.find_their_ends()
        self.our_ends = self.find_our_ends()

    def find_their_ends(self):
        """Layer, source and destination of each header on the way that no error quotes."""
        found, seen, last = [], collections.Counter(), None
        for name in self.their_way:
            at = seen[name]
            seen[name] += 1
            if name in ("icmp", "icmpv6"):
                break
            if name in ("eth", "ip", "ipv6"):
                sources, destinations = self.theirs[name + ".src"], self.theirs[name + ".dst"]
                if at < len(sources) and at < len(destinations):
                    found.append((LAYERS[name], sources[at].lower(), destinations[at].lower()))
                    last = found[-1] if name != "eth" else last
            elif name in ("tcp", "udp", "sctp") and last:
                ports = self.theirs[name + ".srcport"], self.theirs[name + ".dstport"]
                if at < len(ports[0]) and at < len(ports[1]):
                    found.append((LAYERS[name], f"{last[1]}:{ports[0][at]}", f"{last[2]}:{ports[1][at]}"))
        return found

    def has_ends(self, key):
        return isinstance(key, tuple) and any(layer == key[0] and set(key[1:]) <= set(one) for layer, *one in self.their_ends)

    def find_our_ends(self):
        found = []
        if self.ours["eth.source"] and self.our_way[:1] == ["eth"]:
            found.append(("Ethernet", self.ours["eth.source"][0].lower(), self.ours["eth.destination"][0].lower()))
        networks = [name for name in self.our_way if name in ("ip", "ipv6")]
        ends = [address("".join(self.ours[f"frame.{side}_address"][:1])) for side in ("source", "destination")]
        if networks and all(ends):
            found.append(("IPv6" if ":" in ends[0] else "IPv4", *ends))
            transports = [name for name in self.our_way if name in ("tcp", "udp", "sctp")] or \
                [name for name in ("tcp", "udp", "sctp") if name.upper() in self.ours["frame.protocol"]]   # a header without a line
            ports = [self.ours[f"frame.{side}_port"] for side in ("source", "destination")]
            if transports and all(ports):
                found.append((LAYERS[transports[-1]], f"{ends[0]}:{ports[0][0]}", f"{ends[1]}:{ports[1][0]}"))
        return found


def lower_ways(way):
    """The ways into the packet that lead by media, networks and transports alone."""
    ways = []
    for end in range(1, len(way) + 1):
        if way[end - 1] not in LOWER:
            break
        ways.append(tuple(way[:end]))
    return ways


def applications(way):
    if "dtls" in way:   # its records are those of TLS here
        way = way[:way.index("dtls") + 1]
    return sorted(set(way) & APPLICATIONS)


class Statistics:
    """Of one capture: what both count, and the packets that they count otherwise."""

    def __init__(self, options, peer, path):
        self.options, self.peer, self.path = options, peer, path
        self.same, self.differences = collections.Counter(), []
        asked = [word for key in FIELDS for word in ("-e", key)]
        said = peer.ask(path, "-T", "fields", "-E", "separator=/t", "-E", "aggregator=" + SEPARATOR, *asked)
        theirs = [{key: split(value) for key, value in zip(FIELDS, line.split("\t"))} for line in said.split("\n") if line]
        asked = [word for key in OURS for word in ("-e", key)]
        ours = [json.loads(line) for line in run_qxview(options.qxview, "fields", "-t", "e", "--format", "json", *asked, path).splitlines()]
        ours = [{key: [str(value) for value in values] for key, values in one.items()} for one in ours]
        self.packets = [Packet(a, b) for a, b in zip(theirs, ours)]
        self.whole = len(theirs) == len(ours)
        apart = [packet.our_time - packet.time for packet in self.packets]
        self.wraps = any(apart) and all(time % 2**32 == 0 for time in apart)   # tshark's fractions above a second
        words = [word for layer in LAYERS for word in ("-z", f"conv,{layer}", "-z", f"endpoints,{layer}")]
        self.tables = peer.ask(path, "-q", "-z", "io,phs", *words)

    def rows(self, *what):
        return [json.loads(line) for line in run_qxview(self.options.qxview, "stat", *what, "--format", "json", self.path).splitlines()]

    def compare(self, kind, mine, theirs, our_packets, their_packets):
        """Sums by key, and what each packet adds to them: functions that give keys, and a number for each."""
        keys = {key for key in {**mine, **theirs} if mine.get(key, 0) != theirs.get(key, 0)}
        if not keys:
            self.same[kind] += 1
            return
        sums = [collections.Counter(), collections.Counter()]
        found = collections.defaultdict(dict)
        for packet in self.packets:
            a, b = collections.Counter(), collections.Counter()
            for one, keys_of in ((a, our_packets), (b, their_packets)):
                for key, weight in keys_of(packet):
                    one[key] += weight
            for key in keys:
                sums[0][key] += a[key]
                sums[1][key] += b[key]
                if a[key] != b[key]:
                    found[key][packet.number] = ("ours" if a[key] > b[key] else "theirs", (a[key], b[key]))
        for key in sorted(keys, key=str):
            pair = mine.get(key, 0), theirs.get(key, 0)
            if sums[0][key] != pair[0]:
                numbers = [packet.number for packet in self.packets if packet.connection == key or packet.has_ends(key)] or [0]
                packets = {number: ("both", (pair[0], sums[0][key])) for number in numbers}
                self.note(kind, False, f"{key} of qxview's own packets", packets, 1)
            elif sums[1][key] != pair[1]:
                self.note(kind, False, f"{key} of tshark's own packets", {0: ("both", (pair[1], sums[1][key]))})
            if found[key]:
                self.note(kind, False, key, found[key])

    def hierarchy(self):
        mine = {tuple(name for name in row["path"].split(":") if name != "wan"): row for row in self.rows("protocols")}
        theirs, way = {}, []
        for line in self.tables.splitlines():
            words = line.split()
            if len(words) == 3 and words[1].startswith("frames:"):
                depth = (len(line) - len(line.lstrip())) // 2
                way = way[:depth] + [words[0]]
                theirs[tuple(name for name in way if name != "raw")] = {"packets": int(words[1][7:]), "bytes": int(words[2][6:])}
        for what in ("packets", "bytes"):
            def weigh(keys, what=what):
                return lambda packet: [(key, packet.length if what == "bytes" else 1) for key in keys(packet)]
            lower = [{way: row[what] for way, row in one.items() if way and set(way) <= LOWER} for one in (mine, theirs)]
            self.compare("hierarchy, " + what, *lower,
                         weigh(lambda packet: lower_ways(packet.our_way)), weigh(lambda packet: lower_ways(packet.their_way)))
            sums = []
            for one in (mine, theirs):
                sums.append(collections.Counter())
                for way, row in one.items():
                    if way and way[-1] in applications(way) and way[-1] not in way[:-1]:
                        sums[-1][way[-1]] += row[what]
            self.compare("applications, " + what, *sums, weigh(lambda packet: applications(packet.our_way)),
                         weigh(lambda packet: applications(packet.their_way)))

    def ends(self):
        mine, theirs = [collections.Counter() for _ in range(4)], [collections.Counter() for _ in range(4)]
        names = ("packets_sent", "packets_received", "bytes_sent", "bytes_received")
        for row in self.rows("endpoints"):
            for sums, name in zip(mine, names):
                sums[row["layer"], address(row["address"])] += row[name]
        pairs = [[collections.Counter() for _ in range(2)] for _ in range(2)]
        starts = [{}, {}]
        for row in self.rows("conversations"):
            key = (row["layer"], *sorted((address(row["a"]), address(row["b"]))))
            pairs[0][0][key] += row["packets"]
            pairs[0][1][key] += row["bytes"]
            starts[0][key] = min(row["first"], starts[0].get(key, row["first"]))
        layer = None
        for line in self.tables.splitlines():
            words = line.split()
            title = re.fullmatch(r"(Ethernet|IPv4|IPv6|TCP|UDP|SCTP) (Endpoints|Conversations)", line.strip())
            if title:
                layer = title[1]
            elif "<->" in words:
                key = (layer, *sorted((address(words[0]), address(words[2]))))
                pairs[1][0][key] += int(words[9])
                start = float(words[-2])
                starts[1][key] = min(start, starts[1].get(key, start))
            elif len(words) >= 7 and words[-1].isdigit() and words[-6].isdigit() and layer:
                port = words[1:-6]
                key = (layer, address(words[0] + (":" + port[0] if port else "")))
                for sums, at in zip(theirs, (-4, -2, -3, -1)):
                    sums[key] += int(words[at])
        for name, at in (("packets", 0), ("bytes", 2)):
            def send(ends, side, weight=name):
                return lambda packet: [((layer, one[side]), packet.length if weight == "bytes" else 1) for layer, *one in ends(packet)]
            for side, direction in enumerate(("sent", "received")):
                self.compare(f"endpoints, {name} {direction}", mine[at + side], theirs[at + side],
                             send(lambda packet: packet.our_ends, side), send(lambda packet: packet.their_ends, side))
        def talk(ends):
            return lambda packet: [((layer, *sorted(one)), 1) for layer, *one in ends(packet)]
        self.compare("conversations, packets", pairs[0][0], pairs[1][0], talk(lambda packet: packet.our_ends),
                     talk(lambda packet: packet.their_ends))
        for key in starts[0].keys() & starts[1].keys():
            if pairs[0][0][key] == pairs[1][0][key]:
                close = abs(starts[0][key] - starts[1][key]) < 2e-6
                self.note("conversations, start", close, key, {0: ("both", (starts[0][key], starts[1][key]))})

    def note(self, kind, is_same, key, packets, least=0):
        if not is_same and self.wraps and kind in ("rate", "totals", "tcp, handshakes"):
            key = "with fractions above a second"
        if is_same:
            self.same[kind] += 1
        else:
            self.differences.append(Difference(kind, f"{kind} {key}", self.path, packets, least))

    def ports(self):
        mine = {(row["transport"], row["port"]): row["packets"] for row in self.rows("ports")}
        def count(ends):
            def keys(packet):
                return [((layer, int(port)), 1) for layer, *one in ends(packet) if layer in ("TCP", "UDP", "SCTP")
                        for port in {end.rpartition(":")[2] for end in one}]
            return keys
        theirs = collections.Counter()
        for packet in self.packets:
            for key, number in count(lambda p: p.their_ends)(packet):
                theirs[key] += number
        self.compare("ports", mine, theirs, count(lambda p: p.our_ends), count(lambda p: p.their_ends))

    def values(self):
        for key in VALUES:
            theirs = collections.Counter(value.lower() for packet in self.packets for value in number(packet.theirs[key]))
            if not theirs and not any(packet.ours[key] for packet in self.packets):
                continue
            mine = {row["value"]: row["count"] for row in self.rows("values", key)}
            self.compare("values " + key, mine, theirs, lambda packet, key=key: [(value, 1) for value in packet.ours[key]],
                         lambda packet, key=key: [(value, 1) for value in number(packet.theirs[key])])

    def rate_and_lengths(self):
        rows, start = self.rows("rate"), self.packets[0].time if self.packets else 0
        if rows:
            interval = round((rows[0]["end"] - rows[0]["start"]) * 10**6) * 1000
            theirs = collections.Counter((packet.time - start) // interval for packet in self.packets if packet.time >= start)
            mine = {at: row["packets"] for at, row in enumerate(rows) if row["packets"]}
            self.note("rate", mine == theirs, "", {0: ("both", sorted(set(mine.items()) ^ set(theirs.items()))[:4])})
        theirs = collections.Counter()
        for packet in self.packets:
            theirs[next(end for end in (19, 39, 79, 159, 319, 639, 1279, 2559, 5119, None) if end is None or packet.length <= end)] += 1
        mine = {row["to"]: row["packets"] for row in self.rows("lengths") if row["packets"]}
        self.note("lengths", mine == theirs, "", {0: ("both", (mine, dict(theirs)))})

    def totals(self):
        """Packets, bytes, the earliest and the latest time, as capinfos has them."""
        said = self.peer.capinfos(self.path)
        if said and self.packets:
            times = [packet.our_time for packet in self.packets]
            mine = [sum(row["packets"] for row in self.rows("lengths")), sum(row["bytes"] for row in self.rows("rate")), min(times),
                    max(times)]
            mine[1] += sum(packet.length for packet in self.packets if packet.our_time < self.packets[0].our_time)   # which rate leaves out
            said = [int(said[0]), int(said[1]), nanoseconds(said[2]), nanoseconds(said[3])]
            self.note("totals", mine == said, "", {0: ("both", (mine, said))})

    def answers(self, what, is_request, is_answer, time):
        """Requests and answers of servers, and the least and longest time of those answers that have one."""
        mine = {row["server"]: row for row in self.rows(what) if row.get("server")}
        theirs = collections.defaultdict(lambda: {"requests": 0, "answers": 0})
        times = collections.defaultdict(list)
        def server(packet, of_theirs):
            ends = [one for one in (packet.their_ends if of_theirs else packet.our_ends) if one[0] in ("IPv4", "IPv6")]
            return ends[-1][1:] if ends else ("", "")
        def add(of_theirs, role):
            def keys(packet):
                fields = packet.theirs if of_theirs else packet.ours
                if {"icmp", "icmpv6"} & set(packet.their_way):   # quoted
                    return []
                if role == "requests":
                    return [(server(packet, of_theirs)[1], is_request(fields))] if is_request(fields) else []
                return [(server(packet, of_theirs)[0], is_answer(fields))] if is_answer(fields) else []
            return keys
        for packet in self.packets:
            for role in ("requests", "answers"):
                for key, number_of in add(True, role)(packet):
                    theirs[key][role] += number_of
            for text in packet.theirs[time]:
                times[server(packet, True)[0]].append((float(text), packet.number, bool({"mdns", "llmnr"} & set(packet.their_way))))
        for role in ("requests", "answers"):
            self.compare(f"{what}, {role}", {key: row[role] for key, row in mine.items() if row[role]},
                         {key: row[role] for key, row in theirs.items() if row[role]}, add(False, role), add(True, role))
        for key, found in times.items():
            row = mine.get(key)
            own = [one for one, _, is_multicast in found if not is_multicast]
            pair = (row["least"], row["most"]) if row else (None, None), (min(own), max(own)) if own else (None, None)
            close = all(a == b or None not in (a, b) and abs(a - b) < 2e-6 for a, b in zip(*pair))
            multicast = [number for _, number, is_multicast in found if is_multicast]
            if multicast and close:
                self.note(what + ", times", False, key, {number: ("both", pair) for number in multicast})
            else:
                self.note(what + ", times", close, key, {number: ("both", pair) for _, number, _ in found})


def number(values):
    """As qxview writes them."""
    return [str(int(value, 16)) if value.startswith("0x") else value for value in values]


class Direction:
    def __init__(self):
        self.next, self.gaps, self.acknowledged, self.start, self.probed = None, [], None, None, False


def distance(start, end):
    return (end - start + 2**31) % 2**32 - 2**31


def take_segment(way, back, segment, found):
    """What a segment adds to its direction, as docs/questions.md says when something counts."""
    syn, fin, reset, ack = (segment["flags"] & bit for bit in (2, 1, 4, 16))
    plain = not syn and not fin and not reset
    if segment["window"] == 0 and plain:
        found["zero_windows"] += 1
    if ack and plain and segment["length"] == 0 and way.acknowledged == (segment["ack"], segment["window"]) and segment["window"] and \
            segment["sequence"] == way.next and not back.probed:
        found["duplicate_acks"] += 1
    if ack:
        way.acknowledged = segment["ack"], segment["window"]
    way.probed = plain and segment["length"] <= 1 and way.next is not None and distance(segment["sequence"], way.next) == 1
    taken = segment["length"] + bool(syn) + bool(fin)
    start, end = segment["sequence"], (segment["sequence"] + taken) % 2**32
    if syn:
        if ack and way.start not in (None, start) and back.acknowledged and distance(way.start, back.acknowledged[0]) > 0:
            return   # the other end went on with the first answer
        if way.start == start:
            found["retransmissions"] += 1
            return
        if not ack and way.start is not None:
            back.__init__()
        way.next, way.gaps, way.start = end, [], start
    elif way.next is None:
        way.next = end
    elif taken and distance(way.next, start) > 0:
        found["missing"] += 1
        way.gaps = (way.gaps + [[way.next, start]])[-8:]
        way.next = end
    elif taken:
        behind = distance(way.next, start)
        gap = next((gap for gap in way.gaps if distance(gap[0], start) >= 0 > distance(gap[1], start)), None) if behind < 0 else None
        if gap:
            found["out_of_order"] += 1
            if start == gap[0]:
                gap[0] = end
            else:
                gap[1] = start
            if distance(*gap) <= 0:
                way.gaps[way.gaps.index(gap)] = way.gaps[-1]
                way.gaps.pop()
            return
        if behind < 0 and not way.probed:
            found["retransmissions"] += 1
        if distance(way.next, end) > 0:
            way.next = end


SEGMENT = [("sequence", "seq"), ("length", "len"), ("ack", "ack"), ("window", "window_size_value")]
TROUBLE = {"retransmissions": ("retransmission", "fast_retransmission", "spurious_retransmission"), "out_of_order": ("out_of_order",),
           "missing": ("lost_segment",), "duplicate_acks": ("duplicate_ack",), "zero_windows": ("zero_window",), "resets": ()}


class Connections(Statistics):
    """Statistics with what happened in TCP connections: by the rules of either side, each by its own reading of the headers."""

    def tcp(self):
        ways, rows = {}, self.rows("tcp")
        handshakes, shakes, unknown = {}, {}, collections.defaultdict(list)
        for packet in self.packets:
            packet.trouble = [collections.Counter(), collections.Counter()]
            ends = packet.their_ends[-1] if packet.their_ends else ("",)
            quoted = [name for name in packet.their_way if name in ("icmp", "icmpv6")]
            at = packet.their_way.count("tcp") - 1
            values = {name: packet.theirs["tcp." + key] for name, key in SEGMENT}
            if ends[0] == "TCP" and not quoted and len(packet.theirs["tcp.len"]) <= at:
                unknown[tuple(sorted(ends[1:]))].append(packet.number)
            if ends[0] != "TCP" or quoted or any(at >= len(value) for value in values.values()) or at >= len(packet.theirs["tcp.flags"]):
                continue
            segment = {name: int(value[at]) for name, value in values.items()}
            segment["flags"] = int(packet.theirs["tcp.flags"][at], 16)
            packet.connection = tuple(sorted(ends[1:]))
            mine, theirs = packet.trouble
            take_segment(*(ways.setdefault(one, Direction()) for one in (ends[1:], ends[:0:-1])), segment, mine)
            shake = shakes.setdefault(packet.connection, {})
            if segment["flags"] & 0x12 == 2:
                shake["syn"] = packet.time
            elif segment["flags"] & 0x12 == 0x12 and "syn" in shake:
                shake["answered"] = True
            elif segment["flags"] & 0x10 and "answered" in shake:
                shake.setdefault("took", packet.time - shake["syn"])
            for name, marks in TROUBLE.items():
                theirs[name] = int(any(packet.theirs["tcp.analysis." + mark] for mark in marks))
            mine["resets"] = theirs["resets"] = segment["flags"] >> 2 & 1
            if packet.theirs["tcp.analysis.initial_rtt"]:
                handshakes.setdefault(packet.connection, float(packet.theirs["tcp.analysis.initial_rtt"][0]))
        for name in TROUBLE:
            sums = collections.Counter(), collections.Counter()
            for row in rows:
                sums[0][tuple(sorted((address(row["a"]), address(row["b"]))))] += row[name]
            for packet in self.packets:
                sums[1][packet.connection] += packet.trouble[1][name]
            for key, numbers in unknown.items():
                if sums[0].pop(key, 0) != sums[1].pop(key, 0):
                    self.note("tcp, " + name, False, f"{key} without lengths", {number: ("both", ()) for number in numbers})
            def add(side, name=name):
                return lambda packet: [(packet.connection, packet.trouble[side][name])] if packet.connection not in unknown else []
            self.compare("tcp, " + name, *[{key: number for key, number in one.items() if number} for one in sums], add(0), add(1))
        for row in rows:
            key = tuple(sorted((address(row["a"]), address(row["b"]))))
            took = shakes.get(key, {}).get("took", -1)
            pair = row["handshake"], handshakes.get(key)
            if pair == (None, None):
                continue
            if pair[0] is not None and (took < 0 or abs(pair[0] - took / 1e9) > 2e-6) or pair[0] is None and took >= 0:
                self.note("tcp, handshakes", False, key, {0: ("both", (*pair, took))})
            elif None in pair or abs(pair[0] - pair[1]) > 2e-6:
                why = "as its packets have it" if pair[0] is not None else "without the three segments"
                self.note("tcp, handshakes", False, why, {0: ("both", pair)})
            else:
                self.note("tcp, handshakes", True, key, {})


def compare(options, peer, path, protocols):
    one = Connections(options, peer, path)
    if not one.whole:
        one.differences.append(Difference("packets", "packets", path, {len(one.packets) + 1: ("both", ())}))
    one.hierarchy()
    one.ends()
    one.ports()
    one.values()
    one.rate_and_lengths()
    one.totals()
    if "dns" in protocols or "mdns" in protocols or "llmnr" in protocols:
        one.answers("dns", lambda fields: int(number(fields["dns.flags.response"])[:1] == ["0"]),
                    lambda fields: int(number(fields["dns.flags.response"])[:1] == ["1"]), "dns.time")
    if "http" in protocols:
        one.answers("http", lambda fields: len(fields["http.request.method"]), lambda fields: len(fields["http.response.code"]),
                    "http.time")
    if "tcp" in protocols:
        one.tcp()
    return len(one.packets), one.same, one.differences


SEVERAL = ("ip.src#2 or ipv6.src#2 or (ip and ipv6) or eth.src#2 or tcp.srcport#2 or udp.srcport#2 or (tcp and udp) or "
           "(udp and sctp) or (tcp and sctp)")

REASONS = [
    Reason(r"of tshark's own packets$", "",
           "tshark's table and its packets do not agree: it leaves out what errors quote and packets that break off"),
    Reason(r"^(endpoints|conversations|ports)", SEVERAL,
           "of tunnels the innermost datagram is counted, and of Ethernet the outermost frame", "theirs"),
    Reason(r"^(endpoints|conversations).*'Ethernet'", "frame.encap_type != 1", "Ethernet within other media is not counted", "theirs"),
    Reason(r"^applications", "tcp.len > 0", "a segment that only goes on with a message, or has none, is the application's by its port",
           "ours"),
    Reason(r"^hierarchy", "vlan.id#2 or ip.src#2 or ipv6.src#2", "headers of one protocol behind one another are one step of the way"),
    Reason(r"^applications.* stp", "stp and not stp.protocol == 0", "a unit of another protocol identifier is bytes", "theirs"),
    Reason(r"^values dns", "udp.length == 8", "what stands behind the length of UDP is shown as its payload", "ours"),
    Reason(r"^applications.* isakmp", "udpencap", "what keeps a translated address alive is of ISAKMP's port", "ours"),
    Reason(r"^applications.* tls", "openvpn", "TLS within OpenVPN is shown in each of its packets; tshark shows it when it is whole",
           "ours"),
    Reason(r"dns", "dns.extraneous", "bytes behind a message are shown as a further one; tshark shows them as bytes", "ours"),
    Reason(r"^dns, times", f"not udp.port in {DNS_PORTS} and not tcp.port == 53",
           "DNS is decoded on the ports that are defined for it; tshark recognises it on any"),
    Reason(r"^dns, times", "mdns or llmnr", "of multicast questions who answers is not who was asked: their times are not told"),
    Reason(r"with fractions above a second$", "",
           "a fraction of a second or more is carried into the seconds; tshark calculates with 32 bits"),
    Reason(r"^tcp, (missing|out_of_order|retrans)", "tcp.flags.syn == 1 and tcp.flags.ack == 1",
           "a second answer to a SYN, which nobody took up, does not count", "theirs"),
    Reason(r"^applications", "udp.length == 8", "what stands behind the length of UDP is shown as its payload", "ours"),
    Reason(r"^applications", "data", "what its port makes an application's is shown as such; tshark shows bytes that it takes for none",
           "ours"),
    Reason(r"^applications", "udp.port == 161 and udp.port == 546 or tcp.port == 20 and tcp.port == 179",
           "of two ports that are defined the source's is taken", "theirs"),
    Reason(r"^applications.* tls", "quic", "TLS in QUIC is shown where its packets can be opened", "ours"),
    Reason(r"^(hierarchy|endpoints|conversations|ports|values)", 'frame.protocols == "data"', "media that tshark has no decoder for",
           "ours"),
    Reason(r"^hierarchy", "eth.type == 0x0800 and ipv6", "a datagram is of the version that it says; tshark shows IPv6 within IPv4"),
    Reason(r"^http, times", f"not tcp.port in {HTTP_PORTS}",
           "HTTP is decoded on the ports that are defined for it; tshark recognises it on any"),
    Reason(r"^tcp, missing", "tcp.len > 0 or tcp.flags.fin == 1",
           "a gap counts at the data behind it; tshark counts it where an acknowledgement tells of it first", "ours"),
    Reason(r"^tcp, missing", "tcp.analysis.lost_segment and tcp.len == 0",
           "a gap counts when data stand behind it; tshark counts it at an acknowledgement, too", "theirs"),
    Reason(r"^hierarchy", "udpencap", "ESP stands in UDP itself; tshark names the four bytes between", "ours"),
    Reason(r"^values dns.flags.rcode", "dns.flags.response == 0", "the bits are there in a query, too", "ours"),
    Reason(r"^(applications.* (http|dns|tls|bgp|kerberos|ssh|rtsp|sip|ldp)|(values )?(http|dns))", AGAIN,
           "a segment that comes again is shown as any other; tshark leaves its payload", "ours"),
    Reason(r"^applications.* tls", "tls and not tls.record or tls.ignored_unknown_record",
           "bytes that are no record of TLS are data of HTTPS", "theirs"),
    Reason(r"^applications.* tls", f"tls and not tcp.port in {TLS_PORTS}",
           "TLS is decoded on the ports that are defined for it; tshark recognises it on any", "theirs"),
    Reason(r"http", f"http and not tcp.port in {HTTP_PORTS}",
           "HTTP is decoded on the ports that are defined for it; tshark recognises it on any", "theirs"),
    Reason(r"dns", f"dns and not udp.port in {DNS_PORTS} and not tcp.port == 53",
           "DNS is decoded on the ports that are defined for it; tshark recognises it on any", "theirs"),
    Reason(r"^(endpoints|conversations|ports|tcp|values (tcp|udp))", FRAGMENT + " or ipv6.fraghdr",
           "fragments are of the transport whose header they have; tshark counts none or all of them"),
    Reason(r"^(hierarchy|values|endpoints|conversations|ports)", "udp.port == 8472", "port 8472 carries VXLAN here"),
    Reason(r"^(hierarchy|values|endpoints|conversations|ports)", "eth.type == 0xd28b", "frames of time stamps are taken further", "ours"),
    Reason(r"^(hierarchy|values|endpoints|conversations|ports|tcp)", "cfp", "the outer header of FabricPath is an Ethernet header, too"),
    Reason(r"^(hierarchy|values|endpoints|conversations|ports)", "erspan or gre.proto == 0x88be",
           "what ERSPAN carries is shown as Ethernet whatever its bytes", "ours"),
    Reason(r"^(hierarchy|values|endpoints|conversations|ports)", OPENFLOW,
           "messages of OpenFlow are not decoded, nor the packets within them", "theirs"),
    Reason(r"", BROKEN, "what is left of a packet that breaks off or contradicts itself is not taken for the same"),
    Reason(r"^(values|hierarchy|applications|endpoints|conversations|ports)", "ip.bogus_header_length",
           "a header length below 20 bytes is shown, and 20 bytes are read; tshark shows nothing", "ours"),
    Reason(r"^(endpoints|conversations).*'Ethernet'.* of qxview's own packets$", "isl",
           "ISL's header is counted as the outer one of Ethernet"),
    Reason(r"^tcp, .* of qxview's own packets$", "ip.len > frame.len",
           "data that the network header declares count where the frame does not have them; tshark counts none"),
    Reason(r"^tcp, handshakes without the three segments$", "",
           "a handshake is told when its three segments are there; tshark tells a time from two of them"),
    Reason(r"^tcp, handshakes as its packets have it$", "",
           "from the last SYN to the first acknowledgement of its answer, by the times in the packets"),
    Reason(r"^tcp, (retransmissions|out_of_order|missing)", AGAIN,
           "whether bytes come again or late is told by what was there before; tshark guesses by times and acknowledgements"),
]


def main():
    options = parse_options(__doc__)
    peer = Peer(options.cache)
    return compare_all(options, list_captures(options.captures), lambda *capture: compare(options, peer, *capture),
                       Ledger(REASONS, options.show), peer)


if __name__ == "__main__":
    sys.exit(main())
