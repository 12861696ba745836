#!/usr/bin/env python3
"""Memory and time over millions of connections that all leave something to wait for.

    scripts/long/bounded_memory.py [--qxview build/qxview] [--connections 10000000] [--most MEGABYTES] [--shown [--jobs N]]

Each connection is new: requests and records that never become whole, segments behind a gap that never closes, datagrams that
lack a fragment, hellos of TLS and long headers of QUIC. They are written to the program as they are made and passed with
Reassembly without being shown; with --shown they are decoded as text, without it. Prints the peak of its resident memory as it
goes on, and what a frame took of processor time since it was told last; the exit status is 1 when the peak is above --most in
the end, or has grown by more than a twentieth over the last half. docs/long-checks.md has the last result.
"""
import argparse
import os
import struct
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BLOCK = 10000   # connections that are written at once
IP_AT, PORT_AT = 26, 34   # of the client's address and port in a frame


def ipv4(protocol, payload, more_fragments=False):
    flags = 0x2000 if more_fragments else 0
    header = struct.pack(">BBHHHBBH", 0x45, 0, 20 + len(payload), 1, flags, 64, protocol, 0)
    return header + bytes(4) + bytes((192, 0, 2, 1)) + payload


def tcp(port, payload, sequence=1, flags=0x18):
    return ipv4(6, struct.pack(">HHIIBBHHH", 0, port, sequence, 1, 0x50, flags, 512, 0, 0) + payload)


def udp(port, payload, more_fragments=False):
    return ipv4(17, struct.pack(">HHHH", 0, port, 8 + len(payload), 0) + payload, more_fragments)


def frame(datagram):
    return bytes(12) + b"\x08\x00" + datagram


def kinds():
    """What a connection sends, by turns: a list of frames each."""
    request = b"POST / HTTP/1.1\r\nHost: example.test\r\nContent-Length: 900000\r\n\r\n" + b"x" * 60
    hello = b"\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03" + bytes(range(32)) + b"\x00\x00\x02\x13\x01"
    initial = b"\xc3\x00\x00\x00\x01\x08abcdefgh\x08ijklmnop\x00\x40\x40" + b"\x55" * 64
    return [
        [frame(tcp(80, request))],
        [frame(tcp(80, request + b"x" * 1200))],
        [frame(tcp(80, b"", 99, 2)), frame(tcp(80, b"y" * 200, 5000))],
        [frame(tcp(443, hello))],
        [frame(tcp(53, b"\x7f\xff" + b"\x12\x34\x01\x00" + bytes(100)))],
        [frame(udp(5000, b"z" * 128, more_fragments=True))],
        [frame(udp(443, initial))],
        [frame(tcp(22, b"SSH-2.0-client\r\n"))],
    ]


class Block:
    """The frames of BLOCK connections with their records of the capture file; addresses and ports are set anew each time."""

    def __init__(self):
        self.data = bytearray()
        self.connections = [[] for _ in range(BLOCK)]
        self.times = []
        turns = kinds()
        for i in range(BLOCK):
            for octets in turns[i % len(turns)]:
                self.times.append(len(self.data))
                self.data += struct.pack("<IIII", 0, 0, len(octets), len(octets))
                self.connections[i].append(len(self.data))
                self.data += octets

    def set(self, first, seconds):
        pack_time, pack_end = struct.Struct("<I").pack_into, struct.Struct(">I").pack_into
        pack_port = struct.Struct(">H").pack_into
        for at in self.times:
            pack_time(self.data, at, seconds)
        for number, places in enumerate(self.connections, first):
            for at in places:
                pack_end(self.data, at + IP_AT, 0x0A000000 + (number >> 8))
                pack_port(self.data, at + PORT_AT, 1024 + (number & 0xFF))


def peak_megabytes(pid):
    with open(f"/proc/{pid}/status", encoding="ascii") as status:
        return next(int(line.split()[1]) for line in status if line.startswith("VmHWM")) / 1024


def processor_seconds(pid):
    with open(f"/proc/{pid}/stat", encoding="ascii") as stat:
        return sum(map(int, stat.read().rsplit(")", 1)[1].split()[11:13])) / os.sysconf("SC_CLK_TCK")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--qxview", default=os.path.join(ROOT, "build/qxview"))
    parser.add_argument("--connections", type=int, default=10000000)
    parser.add_argument("--most", type=int, default=256)
    parser.add_argument("--shown", action="store_true")
    parser.add_argument("--jobs", default="1")
    options = parser.parse_args()
    began, used = time.monotonic(), 0
    passed = ["--reassemble", "--set", "IgnoreChecksums=1", "--packets", "4000000000-"]
    shown = ["--format", "text", "--jobs", options.jobs]
    with subprocess.Popen([options.qxview, "decode", *(shown if options.shown else passed), "-"],
                          stdin=subprocess.PIPE, stdout=subprocess.DEVNULL) as program:
        program.stdin.write(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, 1))
        block, peaks = Block(), []
        for first in range(0, options.connections, BLOCK):
            block.set(first, 1700000000 + first // 1000)
            program.stdin.write(block.data)
            done = first + BLOCK
            if done % max(options.connections // 10, BLOCK) == 0:
                program.stdin.flush()
                peaks.append(peak_megabytes(program.pid))
                before, used = used, processor_seconds(program.pid)
                frames = len(block.times) * max(options.connections // 10, BLOCK) // BLOCK
                print(f"{done:>10} connections  peak {peaks[-1]:.1f} MB  {(used - before) / frames * 1e6:.2f} us a frame  "
                      f"{time.monotonic() - began:.0f} s", flush=True)
        program.stdin.close()
        status = program.wait()
    half = peaks[len(peaks) // 2 - 1]
    good = status == 0 and peaks[-1] <= options.most and peaks[-1] <= half * 1.05
    print("bounded" if good else "NOT bounded")
    return int(not good)


if __name__ == "__main__":
    sys.exit(main())
