#!/usr/bin/env python3
"""The same questions asked of tshark and of qxview over captures: filters, columns, conversations, the hierarchy of protocols
and followed streams.

  scripts/compare_filters.py CAPTURES [--qxview build/qxview] [--files N] [--show N]

CAPTURES is a folder of captures. For each question the N smallest captures are taken that hold its protocol, as tshark names
those of every packet. What differs is printed, and counted in the end; a difference that KNOWN explains is counted beside.
"""
import argparse
import collections
import csv
import json
import os
import subprocess
import sys

SAME = ["-o", "tcp.relative_sequence_numbers:false", "-o", "tcp.desegment_tcp_streams:false", "-o", "ip.defragment:false",
        "-o", "tcp.reassemble_out_of_order:false", "-n"]

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
    ("dns", 'dns.qry.name matches "^[a-z]+\\\\.(com|org|net)$"', None),
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

# Why a question is answered otherwise on purpose: question, what the differing packets have.
KNOWN = {
    "dns.id": "messages whose AD or CD bit is set, or of record types that the text does not name, are blocks without --modern",
}


def run(words):
    return subprocess.run(words, capture_output=True).stdout.decode("utf-8", "replace")


class Comparison:
    def __init__(self, options):
        self.options = options
        self.counts = collections.Counter()
        self.shown = 0

    def note(self, kind, same, *what):
        self.counts[kind, same] += 1
        if not same and self.shown < self.options.show:
            self.shown += 1
            print(kind, *what)

    def filters(self, files):
        for protocol, ours, theirs in FILTERS:
            for path in files[protocol]:
                mine = run([self.options.qxview, "fields", "-e", "frame.number", "--no-header", "--modern", "-Y", ours, path]).split()
                peer = run(["tshark", "-r", path, *SAME, "-Y", theirs or ours, "-T", "fields", "-e", "frame.number"]).split()
                only = sorted(set(mine) ^ set(peer), key=int)
                self.note("filter", not only, ours, os.path.basename(path), "only", "ours" if set(only) <= set(mine) else "theirs",
                          ",".join(only[:8]))

    def columns(self, files):
        wanted = collections.defaultdict(list)
        for protocol, key in COLUMNS:
            for path in files[protocol]:
                wanted[path].append(key)
        for path, keys in wanted.items():
            asked = [word for key in ["frame.number", *keys] for word in ("-e", key)]
            mine = [json.loads(line) for line in run([self.options.qxview, "fields", "--format", "json", "--modern", *asked, path]).splitlines()]
            peer = run(["tshark", "-r", path, *SAME, "-T", "fields", "-E", "separator=/t", "-E", "aggregator=|", *asked]).splitlines()
            theirs = [dict(zip(["frame.number", *keys], line.split("\t"))) for line in peer]
            for key in keys:
                different = [a["frame.number"][0] for a, b in zip(mine, theirs)
                             if [plain(v) for v in a[key]] != [plain(v) for v in b.get(key, "").split("|") if v != ""]]
                self.note("column", not different and len(mine) == len(theirs), key, os.path.basename(path), different[:8],
                          [(a[key], b.get(key)) for a, b in zip(mine, theirs) if a["frame.number"][0] in different[:1]])

    def conversations(self, files):
        """Packets and bytes of each direction, of TCP and UDP."""
        for path in files["tcp"] + files["udp"]:
            rows = [json.loads(line) for line in
                    run([self.options.qxview, "stat", "conversations", "--format", "json", "--modern", path]).splitlines()]
            for layer in ("TCP", "UDP"):
                mine = {}
                for row in rows:
                    if row["layer"] == layer:
                        mine[row["a"].strip(), row["b"].strip()] = (row["packets"], row["bytes"])
                peer = {}
                for line in run(["tshark", "-r", path, *SAME, "-q", "-z", f"conv,{layer.lower()}"]).splitlines():
                    words = line.split()
                    if "<->" in words:
                        peer[words[0], words[2]] = (int(words[9]), scaled(words[10:12]))
                a = sorted((tuple(sorted(map(spell, key))), value[0]) for key, value in mine.items())
                b = sorted((tuple(sorted(map(spell, key))), value[0]) for key, value in peer.items())
                self.note("conversations", a == b, layer, os.path.basename(path), [x for x in a if x not in b][:2], [x for x in b if x not in a][:2])

    def follow(self, files):
        for path in files["tcp"]:
            for stream in range(3):
                mine = [run_bytes([self.options.qxview, "follow", path, "--modern", "--stream", f"tcp:{stream}", "--format", "raw",
                                   "--side", side]) for side in "ab"]
                text = run(["tshark", "-r", path, *SAME, "-q", "-z", f"follow,tcp,raw,{stream}"])
                sides = [b"", b""]
                lines = text.splitlines()
                start = next((i for i, line in enumerate(lines) if line.startswith("Node 1:")), None)
                if start is None:
                    continue
                for line in lines[start + 1:]:
                    if line.startswith("="):
                        break
                    part = line.strip()
                    try:
                        sides[line.startswith("\t")] += bytes.fromhex(part)
                    except ValueError:
                        sides[line.startswith("\t")] += b"?"
                self.note("follow", sorted(mine) == sorted(sides), os.path.basename(path), stream, [len(x) for x in mine],
                          [len(x) for x in sides])


def list_captures(folder):
    """Name, size and protocols of each capture, the smallest first: from the folder's list where it has one."""
    captures = []
    index = os.path.join(folder, "INDEX.tsv")
    if os.path.exists(index):
        with open(index, encoding="utf-8") as lines:
            for row in csv.reader(lines, delimiter="\t"):
                if row[0] != "file" and len(row) > 4 and row[2].isdigit():
                    protocols = {word.split(":")[0] for word in row[4].split()}
                    captures.append((row[0], int(row[2]), protocols | {row[3].replace("ether", "eth")}))
    else:
        for name in os.listdir(folder):
            path = os.path.join(folder, name)
            protocols = set(run(["tshark", "-r", path, "-T", "fields", "-e", "frame.protocols"]).replace(":", " ").split())
            captures.append((name, os.path.getsize(path), protocols))
    return sorted(captures, key=lambda capture: capture[1])


def run_bytes(words):
    return subprocess.run(words, capture_output=True).stdout


def scaled(words):
    return int(float(words[0]) * {"bytes": 1, "kB": 1000, "MB": 1000000}.get(words[1], 1))


def spell(end):
    host, _, port = end.rpartition(":")
    return host.strip("[]") + ":" + port


def plain(value):
    text = str(value).strip().lower()
    if text.startswith("0x"):
        return str(int(text, 16))
    return {"true": "1", "false": "0"}.get(text, text)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("captures")
    parser.add_argument("--qxview", default="build/qxview")
    parser.add_argument("--files", type=int, default=6)
    parser.add_argument("--show", type=int, default=60)
    parser.add_argument("--only", default="filters,columns,conversations,follow")
    options = parser.parse_args()
    held = collections.defaultdict(list)
    for name, size, protocols in list_captures(options.captures):
        for protocol in protocols | {"frame"}:
            if size > 5000:
                held[protocol].append(os.path.join(options.captures, name))
    files = collections.defaultdict(list, {protocol: paths[:options.files] for protocol, paths in held.items()})
    comparison = Comparison(options)
    for kind in options.only.split(","):
        getattr(comparison, kind)(files)
    for kind in sorted({kind for kind, _ in comparison.counts}):
        print(f"{kind}: {comparison.counts[kind, True]} the same, {comparison.counts[kind, False]} differ")
    return 1 if any(not same for _, same in comparison.counts) else 0


if __name__ == "__main__":
    sys.exit(main())
