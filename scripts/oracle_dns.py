#!/usr/bin/env python3
"""Compares the DNS, LLMNR and multicast DNS that qxview decodes with tshark.

usage: oracle_dns.py CAPTURE... [--qxview build/qxview] [--jobs 2]

CAPTURE is a file or a directory of capture files. Of every packet that either shows such a message in, the questions and
the records of all sections are compared one by one: owner name, type, and the addresses of A and AAAA records. tshark
looks at TCP segments and IP fragments as they stand, as qxview does (reassembly is switched off), and the other ports
that it finds the protocols on are defined for qxview.

What differs by order stands in the table with its reason. Exit status 1 when anything else differs.
"""
import collections
import ipaddress
import itertools
import json
import os
import re
import subprocess
import xml.etree.ElementTree

from oracle_support import (KINDS, Tally, children, exit_with, for_each_capture, json_lines, print_others, read_options,
                            tshark_command, value_of, windows_1252)

PROTOCOLS = ("dns", "mdns", "llmnr")
PORTS = {"53", "5353", "5355"}
TITLES = ("DNS:", "Microsoft LLMNR:", "Multicast DNS:")
CONTINUATION = "DNS Continuation Data"
TSHARK_OPTIONS = ["tcp.desegment_tcp_streams:FALSE", "dns.desegment_dns_messages:FALSE", "ip.defragment:FALSE",
                  "ipv6.defragment:FALSE", "tcp.analyze_sequence_numbers:FALSE"]
A, SRV, AAAA = 1, 33, 28
DECODED_VALUES = (0, 1, 2, 5)   # bits 6 to 3 of the second flags byte
HEADER = 12
SHOWN = 300 - len("Domain Name:")   # characters of a name in its line

# offset: of the name, from the protocol's first byte
Entry = collections.namedtuple("Entry", "kind name type addresses offset", defaults=[0])
Packet = collections.namedtuple("Packet", "transports ports payload messages damaged")
# messages of ours: (entries, titles of the message's other lines)
Ours = collections.namedtuple("Ours", "titles messages")


# --- tshark ---

def show_of(element, name):
    found = element.find(f"field[@name='{name}']")
    return None if found is None else found.get("show")


def name_of_peer(entry, kind):
    """The owner name, or that of an SRV record, which tshark takes into its three parts."""
    name = show_of(entry, f"dns.{kind}.name")
    if name is None and show_of(entry, "dns.srv.name") is not None:
        name = ".".join(show_of(entry, f"dns.srv.{part}") for part in ("service", "proto", "name"))
    return "" if name == "<Root>" else name


def peer_entries(proto):
    found = []
    for entry in proto.iter("field"):
        for kind in ("qry", "resp"):
            name, code = name_of_peer(entry, kind), show_of(entry, f"dns.{kind}.type")
            if name is None or code is None:
                continue
            addresses = [f.get("show") for f in entry.findall("field") if f.get("name") in ("dns.a", "dns.aaaa")]
            found.append(Entry("question" if kind == "qry" else "record", name, int(code),
                               addresses if kind == "resp" and int(code) in (A, AAAA) else [],
                               int(entry.get("pos")) - int(proto.get("pos"))))
    return found


def packet_of(element):
    protos = element.findall("proto")
    layers = [proto.get("name") for proto in protos]
    ports, payload, messages, transports = (), b"", [], []
    for proto in protos:
        name = proto.get("name")
        if name in ("udp", "tcp"):
            transports.append(name)
            ports = (show_of(proto, f"{name}.srcport"), show_of(proto, f"{name}.dstport"))
            found = proto.find(f".//field[@name='{name}.payload']")
            payload = bytes.fromhex(found.get("value")) if found is not None else b""
        elif name in PROTOCOLS:
            messages.append((name, peer_entries(proto)))
    damaged = any(layer.startswith("_ws.") for layer in layers)   # cut, malformed, or a fragment
    return Packet(transports, ports, payload, messages, damaged)


def read_peer(path):
    """{number: Packet} of the packets that tshark shows one of the protocols in."""
    command = tshark_command(path, "-T", "pdml", "-J", "dns mdns llmnr udp tcp icmp", preferences=TSHARK_OPTIONS,
                             wanted=" or ".join(PROTOCOLS))
    packets = {}
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as running:
        try:
            for _, element in xml.etree.ElementTree.iterparse(running.stdout):
                if element.tag == "packet":
                    number = element.find("proto[@name='geninfo']/field[@name='num']").get("show")
                    packets[int(number)] = packet_of(element)
                    element.clear()
        except xml.etree.ElementTree.ParseError:
            pass   # a capture without packets of these protocols
    return packets


def definitions(packets):
    """The ports that tshark finds the protocols on beside their own: {definition: packets}."""
    found = collections.defaultdict(list)
    for number, packet in packets.items():
        if packet.ports and packet.messages and not PORTS & set(packet.ports):
            name, _ = packet.messages[0]
            flags = packet.payload[2:3] if packet.transports[-1] == "udp" else packet.payload[4:5]
            port = packet.ports[0] if flags and flags[0] & 0x80 else packet.ports[1]
            found[f"{packet.transports[-1]}:{port}={name.upper()}"].append(number)
    return found


# --- qxview ---

def our_entry(line):
    """The entry that a line shows; None when the line is none, or ends before its type."""
    found = re.match(r"(Question|Zone|Answer|Authority|Additional) Record #", line["text"])
    parts = children(line)
    code = value_of(parts, "Type: ")
    if not found or code is None:
        return None
    addresses = [part["text"][len("Host Address: "):] for part in parts if part["text"].startswith("Host Address: ")]
    addresses += [value_of(children(part), "Address : ") for part in parts if part["text"].startswith("IPv6 Address")]
    name = windows_1252(value_of(parts, "Domain Name:")).decode("utf-8", "replace")
    return Entry("question" if found.group(1) in ("Question", "Zone") else "record", name, int(code[3:7], 16), addresses)


def read_ours(qxview, path, numbers, options=()):
    """{number: Ours} of the packets asked for and of all that show such a message."""
    decoded = {}
    for line in json_lines(qxview, path, *options):
        number = int(re.search(rb'"packet":(\d+)', line).group(1))
        if number not in numbers and not re.search(rb'"text":"(DNS|Microsoft LLMNR|Multicast DNS):', line):
            continue
        lines = json.loads(line).get("lines", [])
        messages = [([e for e in map(our_entry, children(top)) if e], [child["text"] for child in children(top)])
                    for top in lines if top["text"].startswith(TITLES)]
        decoded[number] = Ours([top["text"] for top in lines], messages)
    return decoded


# --- comparison ---

def plain(text):
    """A name for comparison: characters outside ASCII and control characters, which each escapes in its own way, as one
    mark; of a long name what a line shows."""
    return re.sub(r"(\\[0-9]{3}|\\[a-z0-9\"\\]|[^\x20-\x7e])+", "?", text)


def same_name(ours, theirs):
    ours, theirs = plain(ours), plain(theirs)
    return ours == theirs or (len(ours) >= SHOWN - 60 and theirs.startswith(ours[:SHOWN - 60]))


def text_of_address(address):
    """An address as qxview writes it: IPv6 with two digits a byte and each run of zero bytes as two colons."""
    if ":" not in address:
        return address
    runs = itertools.groupby(ipaddress.IPv6Address(address).packed, key=bool)
    return "".join("".join(f"{byte:02X}" for byte in run) if digits else "::" for digits, run in runs)


def same_entry(ours, theirs):
    return (ours.kind == theirs.kind and ours.type == theirs.type and same_name(ours.name, theirs.name) and
            ours.addresses == [text_of_address(address) for address in theirs.addresses])


def rejects_name(message, offset):
    """Whether the name in place at the offset ends in a pointer that does not lead in front of the name."""
    at = offset
    while at + 1 < len(message) and message[at]:
        if message[at] > 63:
            return ((message[at] & 63) << 8 | message[at + 1]) >= offset
        at += message[at] + 1
    return False


def why_none(packet, ours, message):
    """The reason why a packet shows no entries though tshark does; None when there is none."""
    shown = sum(re.match("(UDP|TCP)( First Fragment)?, ", title) is not None for title in ours.titles)
    if shown < len(packet.transports):
        return "a layer below has no decoder, or is not passed"
    if any(title.startswith(("UDP", "TCP")) and "Bad" in title for title in ours.titles):
        return "a bad checksum keeps the payload from being decoded"
    if CONTINUATION in ours.titles:
        return "TCP: no start of a message by the rules of the length prefix and the flags"
    if len(message) >= HEADER and message[3] >> 3 & 15 not in DECODED_VALUES:
        return "AD, Z or RCODE bits that make another kind of message: data block"
    return None


def why_different(mine, theirs, message, packet):
    """The reason why the entries differ from here on; None when there is none."""
    if theirs and rejects_name(message, theirs.offset):
        return "a pointer that does not lead backwards"
    if theirs and theirs.name.startswith("<"):
        return "a name that tshark gives up: too long, or of another kind of label"
    if mine and not theirs and packet.damaged:
        return "a record behind or at the damage that tshark stops at"
    return None


def compare_messages(mine, theirs, message, packet, count):
    """Counts the entries of one message; returns the first pair without a reason."""
    for index, (a, b) in enumerate(itertools.zip_longest(mine, theirs)):
        rest = max(len(mine), len(theirs)) - index
        if a and b and same_entry(a, b):
            count["agreed", f"{b.kind}s" + (" with addresses" if b.addresses else "")] += 1
        elif a and b and a.type == AAAA and same_entry(a, b._replace(addresses=[])):
            count["ordered", "an AAAA record that does not end the message: data block"] += 1
        elif not a and mine and mine[-1].kind == "record" and mine[-1].type == AAAA:
            count["ordered", "records behind an AAAA record"] += rest
            return None
        elif reason := why_different(a, b, message, packet):
            count["ordered", reason] += rest
            return None
        else:
            count["other", "entries"] += rest
            return a, b
    return None


def compare_packet(packet, ours, count):
    """Counts the entries of a packet; returns the first pair without a reason."""
    message = packet.payload[2:] if packet.transports[-1:] == ["tcp"] else packet.payload
    theirs = [entries for _, entries in packet.messages]
    mine = [entries for entries, _ in ours.messages]
    if packet.transports[-1:] == ["udp"] and len(mine) > len(theirs) == 1:
        count["ordered", "bytes behind a datagram's message: read as a further message"] += sum(map(len, mine[1:])) or 1
        mine = mine[:1]
    if not any(mine):
        entries = sum(map(len, theirs))
        reason = why_none(packet, ours, message) if entries else None
        if reason:
            count["ordered", reason] += entries
            return None
    for a, b in itertools.zip_longest(mine, theirs, fillvalue=[]):
        found = compare_messages(a, [e._replace(offset=e.offset - len(packet.payload) + len(message)) for e in b], message,
                                 packet, count)
        if found:
            return found
    return None


def compare(qxview, path):
    """Returns two counters {(kind, key): entries} and {(kind, key): packets}, and the list of other differences."""
    count, packets, others = collections.Counter(), collections.Counter(), []
    peers = read_peer(path)
    decoded = read_ours(qxview, path, peers)
    for definition, numbers in definitions(peers).items():
        wanted = ("--packets", ",".join(map(str, numbers)))
        decoded.update(read_ours(qxview, path, numbers, ("-d", definition, *wanted)))
    for number in sorted(decoded.keys() | peers.keys()):
        packet = peers.get(number) or Packet([], (), b"", [], False)
        entries = collections.Counter()
        found = compare_packet(packet, decoded.get(number) or Ours([], []), entries)
        count += entries
        packets += collections.Counter(entries.keys())
        if found:
            others.append(f"{os.path.basename(path)} packet {number}: ours {found[0]}, tshark {found[1]}")
    return count, packets, others


def print_table(tally, packets):
    print("entries  packets")
    for kind, heading in KINDS:
        print(f"{tally.total(kind):7}           {heading}")
        for key, count in tally.rows(kind):
            print(f"{count:7}  {packets[kind, key]:7}    {key}")


def main():
    options = read_options(__doc__)
    tally, packets, files = Tally(), collections.Counter(), 0
    for _, (count, holders, found) in for_each_capture(options, compare):
        files += bool(count)
        tally.counts += count
        tally.others += found
        packets += holders
    print(f"{len(options.paths)} captures, {files} with questions or records")
    print_table(tally, packets)
    return print_others(tally.others)


if __name__ == "__main__":
    exit_with(main)
