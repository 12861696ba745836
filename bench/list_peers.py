#!/usr/bin/env python3
"""What `qxview list` costs beside its peers: tshark's one-line output and `tcpdump -n`, over the same file in one run.

  bench/list_peers.py [--packets N] [--rounds N] CAPTURE...

The pcap captures with Ethernet frames among the arguments become one file, over and over until it has N packets (default
200000). The three programs take turns; the best round of each counts, by time on the clock and by time on the processor.
Exit status 1 when list is not 8 times as fast as tshark and twice as fast as tcpdump, by the clock.
"""
import argparse
import os
import resource
import shutil
import struct
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
WANTED = {"tshark": 8.0, "tcpdump -n": 2.0}


def read_packets(path):
    """The packet records of a little-endian pcap file of Ethernet frames, and how many; nothing for any other file."""
    with open(path, "rb") as file:
        data = file.read()
    if len(data) < 24 or struct.unpack_from("<I", data)[0] != 0xA1B2C3D4 or struct.unpack_from("<I", data, 20)[0] != 1:
        return b"", 0
    at, count = 24, 0
    while at + 16 <= len(data):
        captured, length = struct.unpack_from("<II", data, at + 8)
        if captured > 65535 or length > 262144 or at + 16 + captured > len(data):
            break
        at += 16 + captured
        count += 1
    return data[24:at], count


def merge(captures, path, wanted):
    """Writes the merged file; its number of packets."""
    found = [read_packets(capture) for capture in captures]
    once = sum(count for _, count in found)
    if not once:
        return 0
    rounds = (wanted + once - 1) // once
    with open(path, "wb") as file:
        file.write(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 262144, 1))
        for _ in range(rounds):
            for records, _ in found:
                file.write(records)
    return once * rounds


def run(command):
    """Seconds on the clock and on the processor, and the lines that were written."""
    before, start = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
    with tempfile.TemporaryFile() as out:
        subprocess.run(command, stdout=out, stderr=subprocess.DEVNULL, check=False)
        clock = time.monotonic() - start
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        out.seek(0)
        lines = sum(chunk.count(b"\n") for chunk in iter(lambda: out.read(1 << 20), b""))
    return clock, after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, lines


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--packets", type=int, default=200000, metavar="N")
    parser.add_argument("--rounds", type=int, default=3, metavar="N")
    parser.add_argument("captures", nargs="+", metavar="CAPTURE")
    arguments = parser.parse_args()
    programs = {"qxview list": [QXVIEW, "list"], "tshark": ["tshark", "-r"], "tcpdump -n": ["tcpdump", "-n", "-r"]}
    for name in [name for name in programs if not shutil.which(programs[name][0])]:
        print(f"{name}: not installed")
        del programs[name]
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "merged.pcap")
        packets = merge(arguments.captures, path, arguments.packets)
        if not packets or "qxview list" not in programs:
            print("no packets to list" if not packets else "no program to measure")
            return 1
        best = {name: (float("inf"), float("inf"), 0) for name in programs}
        for _ in range(arguments.rounds):
            for name, command in programs.items():
                clock, processor, lines = run([*command, path])
                best[name] = (min(best[name][0], clock), min(best[name][1], processor), lines)
        print(f"{packets} packets, {os.path.getsize(path)} bytes; best of {arguments.rounds} rounds")
    own, good = best["qxview list"], True
    for name, (clock, processor, lines) in best.items():
        print(f"{name:12} {clock:7.2f} s by the clock, {processor:7.2f} s of processor, {1e6 * processor / packets:6.2f} us a "
              f"packet, {lines} lines", end="")
        if name in WANTED:
            good = good and clock / own[0] >= WANTED[name]
            print(f": list is {clock / own[0]:.1f} times as fast ({processor / own[1]:.1f} by processor time), wanted "
                  f"{WANTED[name]:g}", end="")
        print()
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
