#!/usr/bin/env python3
"""What tshark and qxview count over captures: the hierarchy of protocols, endpoints and conversations of each layer.

  scripts/compare_statistics.py CAPTURES [--qxview build/qxview] [--every N] [--show N]

CAPTURES is a folder of captures, of which every N-th is taken. Packets and bytes have to be the same for the media, networks and
transports in one another, for the protocols of APPLICATIONS wherever they stand, and for each endpoint and conversation. What
differs is printed; where WHY gives a reason that the capture bears out it is counted as explained.
"""
import argparse
import collections
import json
import os
import subprocess
import sys

from compare_filters import SAME

LAYERS = {"eth": "Ethernet", "ip": "IPv4", "ipv6": "IPv6", "tcp": "TCP", "udp": "UDP", "sctp": "SCTP"}
LOWER = {"eth", "ip", "ipv6", "tcp", "udp", "arp", "icmp", "icmpv6", "igmp", "vlan", "sctp", "ppp", "pppoes", "gre", "esp", "ospf", "vrrp", "pim"}
APPLICATIONS = {"dns", "mdns", "nbns", "llmnr", "ssdp", "dhcp", "dhcpv6", "ntp", "snmp", "tftp", "radius", "rip", "bgp", "ldp", "hsrp",
                "stp", "lldp", "cdp", "eigrp", "isakmp", "kerberos", "sip", "rtsp", "http", "tls", "ssh", "syslog"}

# Differences that are meant, each told by what its capture holds: a filter of tshark that finds some packet.
WHY = {
    "lower": [("icmp.type in {3, 4, 5, 11, 12} or icmpv6.type in {1, 2, 3, 4}", "datagrams that errors quote are part of the way here"),
              ("ip.flags.mf == 1 or ip.frag_offset > 0", "later fragments have no transport header: its packets are told by the first")],
    "application": [("tcp", "a segment that only goes on with a message is the application's here, by its port")],
    "endpoints": [("ip.proto in {4, 41, 47} or ipv6.nxt in {4, 41, 47} or gtp or vxlan or l2tp or capwap or icmp.type == 3 or teredo or ipv6.routing",
                   "of tunnels the innermost datagram alone is counted, and what an error quotes is not an endpoint's"),
                  ("ip.flags.mf == 1 or ip.frag_offset > 0", "later fragments have no ports")],
}


def run(words):
    return subprocess.run(words, capture_output=True, check=False).stdout.decode("utf-8", "replace")


def rows(qxview, what, path):
    return [json.loads(line) for line in run([qxview, "stat", what, "--format", "json", "--modern", path]).splitlines()]


def tshark(path, *words):
    return run(["tshark", "-r", path, *SAME, *words])


def hierarchy_of_tshark(path):
    """Frames and bytes by the way into the packet."""
    found, way = {}, []
    for line in tshark(path, "-q", "-z", "io,phs").splitlines():
        words = line.split()
        if len(words) == 3 and words[1].startswith("frames:"):
            depth = (len(line) - len(line.lstrip())) // 2
            way = way[:depth] + [words[0]]
            found[tuple(way)] = (int(words[1][7:]), int(words[2][6:]))
    return found


def hierarchies(qxview, path):
    """For the ways of lower layers alone, and for applications wherever they stand: ours and tshark's."""
    mine = {tuple(row["path"].split(":")): (row["packets"], row["bytes"]) for row in rows(qxview, "protocols", path)}
    theirs = hierarchy_of_tshark(path)
    lower = [{way: count for way, count in one.items() if set(way) <= LOWER} for one in (mine, theirs)]
    applications = []
    for one in (mine, theirs):
        sums = collections.Counter()
        for way, count in one.items():
            if way[-1] in APPLICATIONS and way[-1] not in way[:-1]:
                sums[way[-1]] += count[0]
        applications.append(dict(sums))
    return {"lower": lower, "application": applications}


def spell(end):
    """The end of a conversation without brackets, as both write it."""
    return end.replace("[", "").replace("]", "").lower()


def ends(qxview, path):
    """Packets and bytes, sent and received, by endpoint, and packets by conversation; of each layer."""
    mine, theirs = {}, {}
    for row in rows(qxview, "endpoints", path):
        mine[row["layer"], spell(row["address"])] = tuple(row[name] for name in ("packets_sent", "packets_received", "bytes_sent", "bytes_received"))
    for layer, name in LAYERS.items():
        for line in tshark(path, "-q", "-z", f"endpoints,{layer}").splitlines():
            words = line.split()
            if len(words) >= 7 and words[-1].isdigit() and words[-6].isdigit():
                port = words[1:-6]
                address = words[0] + (":" + port[0] if port else "")
                theirs[name, spell(address)] = tuple(int(words[i]) for i in (-4, -2, -3, -1))
    return mine, theirs


def conversations(qxview, path):
    mine, theirs = collections.Counter(), collections.Counter()
    for row in rows(qxview, "conversations", path):
        mine[row["layer"], *sorted((spell(row["a"]), spell(row["b"])))] += row["packets"]
    for layer, name in LAYERS.items():
        for line in tshark(path, "-q", "-z", f"conv,{layer}").splitlines():
            words = line.split()
            if "<->" in words:
                theirs[name, *sorted((spell(words[0]), spell(words[2])))] += int(words[9])
    return mine, theirs


class Comparison:
    def __init__(self, options):
        self.options = options
        self.counts = collections.Counter()
        self.shown = 0

    def note(self, kind, path, mine, theirs, why):
        if mine == theirs:
            self.counts[kind, "same"] += 1
            return
        reason = next((text for wanted, text in WHY.get(why, []) if tshark(path, "-c", "2000", "-Y", wanted)), None)
        self.counts[kind, "explained" if reason else "different"] += 1
        if not reason and self.shown < self.options.show:
            self.shown += 1
            keys = [key for key in {**mine, **theirs} if mine.get(key) != theirs.get(key)]
            print(kind, os.path.basename(path), [(key, mine.get(key), theirs.get(key)) for key in keys[:3]])

    def compare(self, path):
        for kind, (mine, theirs) in hierarchies(self.options.qxview, path).items():
            self.note("hierarchy, " + kind, path, mine, theirs, kind)
        self.note("endpoints", path, *ends(self.options.qxview, path), "endpoints")
        self.note("conversations", path, *conversations(self.options.qxview, path), "endpoints")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("captures")
    parser.add_argument("--qxview", default="build/qxview")
    parser.add_argument("--every", type=int, default=20)
    parser.add_argument("--show", type=int, default=40)
    options = parser.parse_args()
    comparison = Comparison(options)
    names = sorted(name for name in os.listdir(options.captures) if name.endswith((".pcap", ".pcapng", ".cap")))
    for name in names[::options.every]:
        comparison.compare(os.path.join(options.captures, name))
    kinds = sorted({kind for kind, _ in comparison.counts})
    for kind in kinds:
        print(f"{kind}: " + ", ".join(f"{comparison.counts[kind, how]} {how}" for how in ("same", "explained", "different")))
    return 1 if any(how == "different" for _, how in comparison.counts) else 0


if __name__ == "__main__":
    sys.exit(main())
