#!/usr/bin/env python3
"""Compares the IPv6 and ICMPv6 that qxview decodes with tshark, frame by frame.

usage: oracle_ipv6.py CAPTURE... [--qxview build/qxview] [--jobs 2] [--verbose]

CAPTURE is a file or a directory of capture files. For every frame in which tshark sees IPv6 the fields of the table
FIELDS are compared: header fields, addresses, the chain of next headers, options, ICMPv6 types, codes, checksum
verdicts, and what neighbour discovery and listener reports tell. What differs by order stands in the table of reasons.
Exit status 1 when anything else differs.
"""
import collections
import os
import re
import subprocess

from oracle_support import exit_with, for_each_capture, read_options, tshark_fields

# tshark's field, the top line that ours stands under, its depth, its text.
FIELDS = [
    ("ipv6.src", "IPv6 Section", 1, r"Source address: (\S+)"),
    ("ipv6.dst", "IPv6 Section", 1, r"Destination address: (\S+)"),
    ("ipv6.nxt", "IPv6 Section", 1, r"Next Header: (\d+)"),
    ("ipv6.plen", "IPv6 Section", 1, r"Payload length: (\d+)"),
    ("ipv6.hlim", "IPv6 Section", 1, r"Hop limit: (\d+)"),
    ("ipv6.tclass", "IPv6 Section", 1, r"Traffic Class: \(.*\) (\d+)"),
    ("ipv6.flow", "IPv6 Section", 1, r"Flow label   : \(.*\) (\d+)"),
    ("ipv6.hopopts.nxt", "IPv6 Hop-By-Hop", 1, r"Next Header: (\d+)"),
    ("ipv6.dstopts.nxt", "IPv6 Destination", 1, r"Next Header: (\d+)"),
    ("ipv6.routing.nxt", "IPv6 Routing", 1, r"Next Header: (\d+)"),
    ("ipv6.fraghdr.nxt", "IPv6 Fragment", 1, r"Next Header: (\d+)"),
    ("ipv6.opt.type", "IPv6 (?:Hop|Dest)", 1, r"Option (\d+) - "),
    ("mip6.mhtype", "IPv6 Mobility", 1, r"Mobility Header Type: (\d+)"),
    ("icmpv6.type", "ICMPv6", 1, r"Type: (\d+)"),
    ("icmpv6.code", "ICMPv6", 1, r"Code: (\d+)"),
    ("icmpv6.checksum.status", "ICMPv6", 1, r"Checksum: \S+ \((Good|BAD|Not)"),
    ("icmpv6.nd.ns.target_address", "ICMPv6: Neighbor Solicitation", 1, r"Target Address: (\S+)"),
    ("icmpv6.opt.type", "ICMPv6", 2, r"Type: (\d+)"),
    ("icmpv6.opt.prefix", "ICMPv6", 2, r"Prefix: (\S+)"),
    ("icmpv6.opt.rdnss", "ICMPv6", 2, r"DNS Server: (\S+)"),
    ("icmpv6.mldr.mar.multicast_address", "ICMPv6", 2, r"Multicast Address: (\S+)"),
]
PATTERNS = [(name, re.compile(top), depth, re.compile(text)) for name, top, depth, text in FIELDS]
FRAME = ["frame.number", "frame.len", "frame.cap_len"]
VERDICTS = {"BAD": "0", "Good": "1", "Not": "2"}


def read_peer(path):
    frames = {}
    for number, wire, captured, *values in tshark_fields(path, FRAME + [name for name, *_ in FIELDS],
                                                         ["ipv6.defragment:FALSE"], "ipv6", aggregator=","):
        fields = {name: [plain(v) for v in text.split(",")] if text else [] for (name, *_), text in zip(FIELDS, values)}
        frames[int(number)] = (int(captured) < int(wire), fields)
    return frames


def plain(value):
    return str(int(value, 16)) if value.startswith("0x") else value


def read_ours(qxview, path):
    done = subprocess.run([qxview, "decode", path], capture_output=True, text=True, errors="replace")
    frames, found, top = {}, None, ""
    for line in done.stdout.splitlines():
        if start := re.match(r"Packet (\d+):", line):
            found = frames[int(start[1])] = collections.defaultdict(list)
        if not line.startswith(" "):
            top = line
            continue
        depth = (len(line) - len(line.lstrip())) // 2
        for name, under, wanted, text in PATTERNS:
            if depth == wanted and under.match(top) and (value := text.match(line.strip())):
                found[name].append(VERDICTS.get(value[1], value[1]))
    return frames


def reason(cut, ours, theirs):
    """Why a frame may differ by order; None when it may not."""
    if not ours["ipv6.src"]:
        return "carried by what is shown as data"
    if not theirs["ipv6.src"]:
        return "another version than 6 under IPv6's number: tshark stops, we show the header"
    if theirs["mip6.mhtype"] and "62" in ours["ipv6.nxt"]:
        return "62, once the mobility header's number, is shown as data"
    if len(theirs["ipv6.src"]) > len(ours["ipv6.src"]) and theirs["ipv6.src"][0] == ours["ipv6.src"][0]:
        return "IPv6 inside of what is shown as data"
    if ours["ipv6.plen"][0] == "0":
        return "payload length 0: tshark stops, we show what is there"
    if cut:
        return "cut by the capture inside a header"
    return None


def compare(qxview, path):
    peers, ours = read_peer(path), read_ours(qxview, path)
    agreed, reasons, differing = 0, collections.Counter(), []
    for number, (cut, theirs) in peers.items():
        mine = ours.get(number, collections.defaultdict(list))
        differences = [(name, mine[name], theirs.get(name, [])) for name, *_ in FIELDS
                       if mine[name] != theirs.get(name, [])]
        if not differences:
            agreed += 1
        elif why := reason(cut, mine, collections.defaultdict(list, theirs)):
            reasons[why] += 1
        else:
            differing.append((number, differences))
    return agreed, reasons, differing


def main():
    options = read_options(__doc__, verbose="every field that differs")
    agreed, reasons, differing = 0, collections.Counter(), 0
    for path, (same, why, found) in for_each_capture(options, compare):
        agreed += same
        reasons += why
        differing += len(found)
        for number, differences in found if options.verbose else found[:3]:
            name, mine, theirs = differences[0]
            print(f"DIFFERS: {os.path.basename(path)} frame {number}: {name} ours {mine}, tshark {theirs}")
    print(f"{agreed:7} frames agree in every field")
    for why, count in reasons.most_common():
        print(f"{count:7} {why}")
    print(f"{differing:7} frames differ")
    return 1 if differing else 0


if __name__ == "__main__":
    exit_with(main)
