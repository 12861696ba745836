#!/usr/bin/env python3
"""Saves captures to pcapng, pcap and back, and compares what tshark, tcpdump and qxview read from them.

    scripts/compare_saved.py [--qxview PROGRAM] [--only TOOL,TOOL] CAPTURE...

Of every capture, beside the original:
    tshark   reads the pcapng file: times, lengths, link types, interfaces and comments of all packets
    tcpdump  reads the pcapng and the pcap file: times to the nanosecond, lengths and bytes
    back     a capture buffer file made of the pcapng file holds the records of one made of the original
Prints what differs, and how much was alike; the status is 1 when anything differs.
"""
import argparse
import collections
import os
import struct
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FIELDS = ("frame.time_epoch", "frame.len", "frame.cap_len", "frame.encap_type", "frame.interface_name",
          "frame.interface_description", "frame.comment")


def output_of(*command):
    """What a command writes, as far as it comes, and what it complains of."""
    done = subprocess.run(command, capture_output=True, check=False)
    return done.stdout, done.stderr.decode("utf-8", "replace").strip()


def read_by_tshark(path):
    fields = [word for field in FIELDS for word in ("-e", field)]
    rows = output_of("tshark", "-n", "-r", path, "-T", "fields", *fields)[0].splitlines()
    # What an interface without a name is called, in the files that have interfaces.
    return [row.replace(b"\tunknown\t", b"\t\t") for row in rows]


def read_by_tcpdump(path):
    """The packets of a capture: nanoseconds, length, bytes; a fraction of a second and more is carried over."""
    data = output_of("tcpdump", "-r", path, "-w", "-", "--time-stamp-precision=nano")[0]
    packets, at = [], 24
    while at + 16 <= len(data):
        seconds, fraction, captured, wire = struct.unpack_from("<IIII", data, at)
        packets.append((seconds * 10**9 + fraction, wire, data[at + 16:at + 16 + captured]))
        at += 16 + captured
    return packets


def same_packets(before, after):
    """tcpdump cuts packets to a snapshot length that they exceed; the files that are saved hold them whole."""
    return len(before) == len(after) and all(
        a[:2] == b[:2] and b[2].startswith(a[2]) for a, b in zip(before, after))


def records_of(path):
    """The records of a capture buffer file, without the marks of those that were cut to fit: other files have none."""
    with open(path, "rb") as file:
        data = bytearray(file.read())
    start = at = data[32] | data[33] << 8
    while at < len(data):
        data[at + 10] = data[at + 17] = 0
        at += data[at + 14] | data[at + 15] << 8
    return data[start:]


class Comparison:
    def __init__(self, qxview, tools, folder):
        self.qxview, self.tools, self.folder = qxview, tools, folder
        self.alike, self.differs, self.packets = collections.Counter(), collections.Counter(), 0

    def save(self, source, name):
        out = os.path.join(self.folder, name)
        if os.path.exists(out):
            os.remove(out)
        return out, output_of(self.qxview, "save", source, out)[1]

    def judge(self, capture, what, same, remark=""):
        (self.alike if same else self.differs)[what] += 1
        if not same:
            print(f"{capture}: {what} differs {remark}")

    def compare(self, capture):
        pcapng, said = self.save(capture, "out.pcapng")
        if not os.path.exists(pcapng):
            self.alike["not readable, or empty"] += 1
            return
        pcap, why = self.save(capture, "out.pcap")
        if "tshark" in self.tools:
            before, after = read_by_tshark(capture), read_by_tshark(pcapng)
            self.packets += len(after)
            wrong = [i for i, rows in enumerate(zip(before, after)) if rows[0] != rows[1]]
            remark = f"{len(before)} and {len(after)} packets"
            if wrong:
                remark += f"; packet {wrong[0] + 1}: {before[wrong[0]]} / {after[wrong[0]]}"
            self.judge(capture, "tshark", before == after and after, remark + f" ({said})")
        if "tcpdump" in self.tools:
            before = read_by_tcpdump(capture)
            if not before:
                self.alike["not read by tcpdump itself"] += 1
            else:
                self.judge(capture, "tcpdump, pcapng", same_packets(before, read_by_tcpdump(pcapng)), said)
            if not os.path.exists(pcap):
                self.alike["no pcap, told why"] += 1
                print(f"{capture}: {why}")
            elif before:
                self.judge(capture, "tcpdump, pcap", same_packets(before, read_by_tcpdump(pcap)), why)
        if "back" in self.tools:
            first = self.save(capture, "first.bfr")[0]
            second = self.save(pcapng, "second.bfr")[0]
            self.judge(capture, "back", records_of(first) == records_of(second))
            third = self.save(self.save(first, "third.pcapng")[0], "third.bfr")[0]
            self.judge(capture, "BFR, pcapng, BFR", records_of(first) == records_of(third))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--qxview", default=os.path.join(ROOT, "build", "qxview"))
    parser.add_argument("--only", default="tshark,tcpdump,back")
    parser.add_argument("captures", nargs="+")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        comparison = Comparison(arguments.qxview, arguments.only.split(","), folder)
        for capture in arguments.captures:
            comparison.compare(capture)
    print(f"{len(arguments.captures)} captures, {comparison.packets} packets read by tshark")
    for what in sorted({*comparison.alike, *comparison.differs}):
        print(f"  {what}: {comparison.alike[what]} alike, {comparison.differs[what]} different")
    return 1 if comparison.differs else 0


if __name__ == "__main__":
    sys.exit(main())
