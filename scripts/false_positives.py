#!/usr/bin/env python3
"""How often the recognisers of protocol detection claim what tshark calls something else.

Every TCP and UDP payload of the captures is offered to every recogniser, also to those that detection would never
come to ask, and to all of them whatever the ports are defined as. A line each: the payloads claimed, those that tshark
names alike, those it has no name for, those it names otherwise, and the last as a share of all payloads, of those
over the recogniser's transport, and of those claimed.

RTP's test is the rule that callers of DetermineDynamicUDPPrototol know: it takes any payload whose first twelve bytes
could be RTP's, so it alone cannot be made stricter.

usage: false_positives.py [--tool build/recognise] [--limit PERCENT] [--list] [--raw FILE] CAPTURE...
A directory stands for the captures in it. --list shows each claim that tshark does not share. --raw keeps the payloads
in FILE, or takes them from it when it is there. Exit 1 when a share of all payloads is over --limit.
"""
import argparse
import collections
import os
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FIELDS = [transport + "." + name for transport in ("tcp", "udp") for name in ("srcport", "dstport", "payload")]

# The order of detection, and the names that tshark has for each. A message that needs more than this segment is
# "nbss" alone for SMB; TLS inside prelogin packets is "tds" and "tls".
RECOGNISERS = {
    "MSRPC": {"dcerpc"}, "SMB": {"smb"}, "TDS": {"tds"}, "Oracle-TNS": {"tns"}, "ONC-RPC-record": {"rpc"},
    "FIX": {"fix"}, "SIP": {"sip"}, "GIOP": {"giop"}, "FCIP": {"fcip"}, "BitTorrent": {"bittorrent"},
    "ONC-RPC": {"rpc"}, "MPEG-TS": {"mp2t"}, "RTP": {"rtp"}, "RTCP": {"rtcp"},
}
OVER_UDP = {"ONC-RPC", "MPEG-TS", "RTP", "RTCP"}
NAMELESS = {"", "data"}


def captures(paths):
    for path in paths:
        if os.path.isdir(path):
            names = sorted(name for name in os.listdir(path) if "pcap" in name or ".cap" in name)
            yield from (os.path.join(path, name) for name in names)
        else:
            yield path


def payloads_of_frame(values):
    """(transport, source, destination, hex, names) of each segment of a frame, tunnelled ones too."""
    layers = values[1].split(":")
    for first, transport in ((2, "tcp"), (5, "udp")):
        sources, destinations, payloads = (values[first + i].split(",") for i in range(3))
        places = [i for i, layer in enumerate(layers) if layer == transport]
        if payloads == [""] or not len(sources) == len(payloads) == len(places):
            continue     # quoted by ICMP or cut: what belongs to what is not told
        for source, destination, payload, place in zip(sources, destinations, payloads, places):
            yield transport, source, destination, payload, ":".join(layers[place + 1:])


def read_capture(path):
    command = ["tshark", "-r", path, "-n", "-o", "tcp.desegment_tcp_streams:FALSE", "-o", "ip.defragment:FALSE",
               "-T", "fields", "-e", "frame.number", "-e", "frame.protocols"]
    for field in FIELDS:
        command += ["-e", field]
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    for line in done.stdout.splitlines():
        values = line.split("\t")
        if len(values) == 8:
            for payload in payloads_of_frame(values):
                yield (os.path.basename(path), values[0]) + payload


def read_all(paths, raw):
    if raw and os.path.exists(raw):
        with open(raw, encoding="utf-8") as file:
            return [tuple(line.rstrip("\n").split("\t")) for line in file]
    rows = [row for path in captures(paths) for row in read_capture(path)]
    if raw:
        with open(raw, "w", encoding="utf-8") as file:
            file.writelines("\t".join(row) + "\n" for row in rows)
    return rows


def verdict(claim, names):
    called = set(names.split(":"))
    if called & RECOGNISERS[claim]:
        return "alike"
    return "nameless" if called <= NAMELESS else "otherwise"


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("captures", nargs="*")
    options.add_argument("--tool", default=os.path.join(ROOT, "build", "recognise"))
    options.add_argument("--limit", type=float, default=0.5)
    options.add_argument("--list", action="store_true")
    options.add_argument("--raw")
    options = options.parse_args()

    rows = read_all(options.captures, options.raw)
    asked = "".join(f"{row[2]} {row[3]} {row[4]} {row[5]}\n" for row in rows)
    answers = subprocess.run([options.tool], input=asked, capture_output=True, text=True, check=True).stdout.split("\n")
    counts = {name: collections.Counter() for name in RECOGNISERS}
    for row, answer in zip(rows, answers):
        for claim in answer.split() if answer != "-" else ():
            said = verdict(claim, row[6])
            counts[claim][said] += 1
            if options.list and said != "alike":
                print(f"{claim:15} {said:10} {row[0]} {row[1]} [{row[3]} -> {row[4]}] {row[6] or '-'} {row[5][:48]}")

    offered = collections.Counter(row[2] for row in rows)
    print(f"payloads offered: {offered['tcp']} over TCP, {offered['udp']} over UDP")
    print(f"{'recogniser':15} {'claimed':>8} {'alike':>8} {'nameless':>8} {'otherwise':>9} {'of all':>9} {'of its':>9} "
          f"{'of claimed':>11}")
    over = []
    for name, count in counts.items():
        total, other = sum(count.values()), count["otherwise"]
        own = offered["udp" if name in OVER_UDP else "tcp"]
        shares = [100.0 * other / max(1, whole) for whole in (len(rows), own, total)]
        if shares[0] > options.limit:
            over.append(name)
        print(f"{name:15} {total:8} {count['alike']:8} {count['nameless']:8} {other:9} "
              + " ".join(f"{share:7.3f} %" for share in shares))
    if over:
        print("over the limit:", ", ".join(over))
    return 1 if over else 0


if __name__ == "__main__":
    sys.exit(main())
