#!/usr/bin/env python3
"""Compares the IPv4, TCP and UDP headers that qxview decodes with tshark.

usage: oracle_transport.py CAPTURE... [--qxview build/qxview] [--verbose]

CAPTURE is a file or a directory of capture files. Every packet of the form Ethernet, VLAN tags, IPv4, TCP or UDP is
compared, field by field: addresses, time to live, lengths, ports, sequence and acknowledgement numbers, flags, windows,
options and the checksum verdicts (validation is switched on in tshark). The table counts agreements, differences that
are ordered, each with its reason, and others. Exit status 1 when there are others.
"""
import argparse
import collections
import itertools
import json
import os
import re
import subprocess
import sys

OPTIONS = ["ip.check_checksum:TRUE", "tcp.check_checksum:TRUE", "udp.check_checksum:TRUE", "ip.defragment:FALSE",
           "tcp.relative_sequence_numbers:FALSE", "tcp.desegment_tcp_streams:FALSE", "ip.use_geoip:FALSE"]
FIELDS = ["frame.number", "frame.protocols", "frame.cap_len", "ip.src", "ip.dst", "ip.ttl", "ip.len", "ip.id",
          "ip.hdr_len", "ip.flags.mf", "ip.frag_offset", "ip.checksum", "ip.checksum.status", "tcp.srcport",
          "tcp.dstport", "tcp.seq_raw", "tcp.ack_raw", "tcp.flags", "tcp.hdr_len", "tcp.window_size_value", "tcp.len",
          "tcp.urgent_pointer", "tcp.checksum.status", "udp.srcport", "udp.dstport", "udp.length",
          "udp.checksum.status"]
Packet = collections.namedtuple("Packet", [f.replace(".", "_") for f in FIELDS] + ["option_kinds"])
FORM = re.compile(r"eth:ethertype:(vlan:ethertype:)*ip:(tcp|udp)(:|$)")
BAD, GOOD, UNVERIFIED = "0", "1", "2"


def read_peer(path):
    """tshark's fields of every packet of the form, the first occurrence of each."""
    command = ["tshark", "-n", "-r", path, "-Y", "ip and (tcp or udp)", "-T", "fields", "-E", "separator=/t",
               *itertools.chain(*(("-o", o) for o in OPTIONS))]
    one = [*command, "-E", "occurrence=f", *itertools.chain(*(("-e", f) for f in FIELDS))]
    kinds = [*command, "-e", "frame.number", "-e", "tcp.option_kind"]
    options = {}
    for line in subprocess.run(kinds, capture_output=True, text=True).stdout.splitlines():
        number, _, listed = line.partition("\t")
        options[number] = [int(k) for k in listed.split(",") if k]
    for line in subprocess.run(one, capture_output=True, text=True).stdout.splitlines():
        values = line.split("\t")
        if len(values) == len(FIELDS) and FORM.match(values[1]):
            yield Packet(*values, options.get(values[0], []))


def texts(lines):
    for line in lines:
        yield line["text"]
        yield from texts(line.get("lines", []))


def find(pattern, lines):
    """The groups of the first text that matches; None when none does."""
    for text in lines:
        match = re.match(pattern, text)
        if match:
            return match.groups() or (text,)
    return None


def own_packet(packet):
    """The outermost IPv4 header and what follows it, as fields."""
    top = packet.get("lines", [])
    at = next((i for i, line in enumerate(top) if line["text"].startswith("IP:    ")), None)
    if at is None:
        return None
    ip = list(texts(top[at].get("lines", [])))
    own = {"addresses": find(r"IP Addresses: Source = (\S+),  Destination = (\S+)", ip),
           "ttl": find(r"Time to live: (\d+)", ip), "total": find(r"Total IP length: (\d+)", ip),
           "id": find(r"ID: 0x\w+ \((\d+)\)", ip), "verdict": find(r"Header checksum: 0x\w+ \((.*)\)", ip),
           "below": None, "block": None}
    if at + 1 < len(top):
        below = top[at + 1]
        name = below["text"].split(" ")[0].split(",")[0]
        if name in ("TCP", "UDP") and below["kind"] == 0:
            own["below"], own["head"], own["lines"] = name, below["text"], list(texts(below.get("lines", [])))
        else:
            own["block"] = below["text"]
    return own


class Table:
    def __init__(self, verbose):
        self.verbose = verbose
        self.agreed, self.ordered, self.others = (collections.Counter() for _ in range(3))

    def compare(self, field, ours, theirs, where, reason=None):
        if ours == theirs:
            self.agreed[field] += 1
        elif reason:
            self.ordered[field, reason] += 1
        else:
            self.others[field] += 1
            if self.verbose:
                print(f"{where}: {field}: {ours} here, {theirs} in tshark")

    def show(self):
        print(f"{'field':34} {'agree':>9}")
        for field, count in sorted(self.agreed.items()):
            print(f"{field:34} {count:9}")
        print(f"\n{'ordered differences':34} {'count':>9}  reason")
        for (field, reason), count in sorted(self.ordered.items()):
            print(f"{field:34} {count:9}  {reason}")
        print(f"\n{'others':34} {'count':>9}")
        for field, count in sorted(self.others.items()):
            print(f"{field:34} {count:9}")
        print("none" if not self.others else f"{sum(self.others.values())} in all")


def first(groups, convert=int):
    return convert(groups[0]) if groups else None


def compare_ip(table, own, peer, where):
    table.compare("IP addresses", own["addresses"], (peer.ip_src, peer.ip_dst), where)
    table.compare("IP time to live", first(own["ttl"]), int(peer.ip_ttl), where)
    big = int(peer.ip_len) > 65535 or (first(own["total"]) == 0 and int(peer.ip_len) != 0)
    table.compare("IP total length", first(own["total"]), int(peer.ip_len), where,
                  "a length of 0 is shown as it stands; tshark shows what it stands for" if big else None)
    table.compare("IP identification", first(own["id"]), int(peer.ip_id, 16), where)
    verdict = first(own["verdict"], str)
    theirs = {GOOD: "Good", BAD: "BAD"}.get(peer.ip_checksum_status, "not verified")
    table.compare("IP checksum verdict", verdict, theirs, where,
                  "a checksum of 0 is not present" if int(peer.ip_checksum, 16) == 0 else None)


def flag_bits(own):
    """The flags byte from the pictures of bytes 12 and 13, a line a bit."""
    bits = 0
    for text in own["lines"]:
        match = re.match(r"\.{8} ([.01]{8}) : ", text)
        if match and "data Offset" not in text:
            bits |= int(match.group(1).replace(".", "0"), 2)
    return bits


def compare_tcp(table, own, peer, where, fragment, cut):
    lines = own["lines"]
    ports = find(r".*\[(\d+)\] .*-> \[(\d+)\]", [own["head"]])
    table.compare("TCP ports", ports and tuple(map(int, ports)), (int(peer.tcp_srcport), int(peer.tcp_dstport)), where)
    for field, pattern, theirs, base in (
            ("TCP sequence number", r"Sequence number: +(\d+)", peer.tcp_seq_raw, 10),
            ("TCP acknowledgement", r"Acknowledgement: +(\d+)", peer.tcp_ack_raw, 10),
            ("TCP header length", r"TCP flags:.*\*4 bytes = (\d+) bytes", peer.tcp_hdr_len, 10),
            ("TCP urgent pointer", r"Urgent Pointer: +(\d+)", peer.tcp_urgent_pointer, 10)):
        if theirs:
            table.compare(field, first(find(pattern, lines)), int(theirs, base), where)
    if peer.tcp_window_size_value:
        window = find(r"Window: +(\d+)$", lines) or find(r"Window: \((\d+) \*", lines)
        table.compare("TCP window", first(window), int(peer.tcp_window_size_value), where)
    if peer.tcp_flags:
        table.compare("TCP flags", flag_bits(own), int(peer.tcp_flags, 16) & 0xFF, where)
    if not peer.tcp_checksum_status:
        return
    verdict = first(find(r"Checksum: +0x\w+ \((.*)\)", lines), str)
    plain = "BAD" if (verdict or "").startswith("BAD") else verdict
    theirs = {GOOD: "Good", BAD: "BAD"}.get(peer.tcp_checksum_status, "not verified")
    reason = ("a fragment's checksum has no verdict" if fragment else
              "left for the network adapter: only the pseudo-header is summed" if verdict == "Not Calculated" else
              "partial captures are not checked" if verdict == "Not Checked - Partial Capture" else
              "what tshark saw more of was cut to fit a record" if cut else None)
    table.compare("TCP checksum verdict", plain, theirs, where, reason)
    own_kinds = [int(m.group(1)) for m in (re.match(r"Kind: (\d+)", text) for text in lines) if m]
    table.compare("TCP options", own_kinds, peer.option_kinds, where,
                  option_reason(own_kinds, peer.option_kinds))
    length = first(find(r"TCP data length: +(\d+)", lines))
    if peer.tcp_len:
        table.compare("TCP data length", length, int(peer.tcp_len), where,
                      "the data of a partial capture are what was captured" if cut else None)


def option_reason(ours, theirs):
    if ours == theirs[:len(ours)] or theirs == ours[:len(theirs)]:
        return "the walk ends at a length that cannot be, with the option that has it"
    return None


def compare_udp(table, own, peer, where, fragment, cut):
    lines = own["lines"]
    ports = find(r"UDP.*\[(\d+)\] .*-> \[(\d+)\]", [own["head"]])
    table.compare("UDP ports", ports and tuple(map(int, ports)), (int(peer.udp_srcport), int(peer.udp_dstport)), where)
    table.compare("UDP length", first(find(r"UDP length: (\d+)", lines)), int(peer.udp_length), where)
    verdict = first(find(r"Checksum:  0x\w+ \((.*)\)", lines), str)
    theirs = {GOOD: "Good", BAD: "BAD"}.get(peer.udp_checksum_status, "not verified")
    table.compare("UDP checksum verdict", verdict, theirs, where,
                  verdict if verdict in ("not used", "data fragment - not able to check",
                                         "partial packet - not able to check") else
                  "what tshark saw more of was cut to fit a record" if cut else
                  "the sum covers all captured bytes, whatever shorter length the datagram claims"
                  if int(peer.udp_length) != int(peer.ip_len) - int(peer.ip_hdr_len) else None)


def compare_file(table, path, qxview):
    peers = {int(p.frame_number): p for p in read_peer(path)}
    if not peers:
        return
    with subprocess.Popen([qxview, "decode", "--format", "json", path], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL) as running:
        for line in running.stdout:
            packet = json.loads(line)
            peer = peers.get(packet["packet"])
            if peer:
                compare_packet(table, own_packet(packet), peer, f"{path} packet {packet['packet']}", packet)


def compare_packet(table, own, peer, where, packet):
    if own is None:
        table.compare("packets decoded to IPv4", "none", "IPv4", where)
        return
    compare_ip(table, own, peer, where)
    name = FORM.match(peer.frame_protocols).group(2).upper()
    if not (peer.tcp_srcport if name == "TCP" else peer.udp_srcport) or int(peer.ip_frag_offset) > 0:
        return
    if own["below"] != name:
        reason = {"IP Data: (Bad IP Checksum)": "nothing is decoded behind a bad header checksum"}.get(own["block"])
        if reason is None and first(own["total"]) is not None and first(own["total"]) <= int(peer.ip_hdr_len):
            reason = "a total length that leaves nothing leaves nothing to decode"
        table.compare("packets decoded to " + name, own["below"] or own["block"], name, where, reason)
        return
    table.compare("packets decoded to " + name, name, name, where)
    fragment = peer.ip_flags_mf in ("1", "True")
    cut = packet["captured"] < packet["length"] or packet["captured"] > 65487
    (compare_tcp if name == "TCP" else compare_udp)(table, own, peer, where, fragment, cut)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("captures", nargs="+")
    parser.add_argument("--qxview", default=os.path.join(os.path.dirname(__file__), "../build/qxview"))
    parser.add_argument("--verbose", action="store_true", help="name every other difference")
    options = parser.parse_args()
    table = Table(options.verbose)
    for name in options.captures:
        files = sorted(os.path.join(name, f) for f in os.listdir(name) if not f.endswith(".tsv")) \
            if os.path.isdir(name) else [name]
        for path in files:
            compare_file(table, path, options.qxview)
    table.show()
    return 1 if table.others else 0


if __name__ == "__main__":
    sys.exit(main())
