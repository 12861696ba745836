#!/usr/bin/env python3
"""With Reassembly the samples' messages are the same however their segments come: cut anywhere, in another order, repeated,
overlapping; whole ones may overtake others. QXVIEW names another build of the program (that of the sanitizers). SEEDS says how many shuffles each gets."""
import json
import os
import random
import struct
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build/qxview"))
SEEDS = int(os.environ.get("SEEDS", "1"))
ACK, SYN_FIN_RST = 0x10, 0x07
# Samples, and the ports whose protocols say how long their messages are.
SAMPLES = {"http": (80,), "dns": (53,), "ldap": (389,), "kerberos": (88,), "smb": (445, 139), "diameter": (3868,), "tls": (443,),
           "segments": (53, 80, 135, 445)}


def frames_of(path):
    with open(path, "rb") as file:
        data = file.read()
    at = 24
    while at < len(data):
        length = struct.unpack_from("<I", data, at + 8)[0]
        yield data[at:at + 8], data[at + 16:at + 16 + length]
        at += 16 + length


class Segment:
    """A TCP segment over IPv4; `payload` is None for other frames."""

    def __init__(self, time, frame):
        self.time, self.frame, self.payload = time, frame, None
        if frame[12:14] != b"\x08\x00" or frame[23] != 6:
            return
        tcp = 14 + 4 * (frame[14] & 15)
        self.start = tcp + 4 * (frame[tcp + 12] >> 4)
        end = 14 + struct.unpack_from(">H", frame, 16)[0]
        self.ports = struct.unpack_from(">HH", frame, tcp)
        self.ends = frame[26:34] + frame[tcp:tcp + 4]
        self.sequence, self.flags, self.tcp = struct.unpack_from(">I", frame, tcp + 4)[0], frame[tcp + 13], tcp
        self.payload = frame[self.start:end]

    def carrying(self, sequence, payload):
        head = bytearray(self.frame[:self.start])
        struct.pack_into(">H", head, 16, self.start - 14 + len(payload))
        struct.pack_into(">I", head, self.tcp + 4, sequence & 0xFFFFFFFF)
        return Segment(self.time, bytes(head) + payload)


def runs_of(sample):
    """Segments with data in one direction behind one another, without gaps, are a run; any other frame is one by itself."""
    runs = []
    for time, frame in frames_of(os.path.join(ROOT, "samples", sample + ".pcap")):
        segment = Segment(time, frame)
        last = runs[-1][-1] if runs else None
        goes_on = (last and last.payload and segment.payload and last.ends == segment.ends and not segment.flags & SYN_FIN_RST
                   and not last.flags & SYN_FIN_RST and segment.sequence == last.sequence + len(last.payload))
        if goes_on:
            runs[-1].append(segment)
        else:
            runs.append([segment])
    return runs


def shuffled(run, chance):
    """The run's bytes in other segments."""
    first = run[0]
    stream = b"".join(segment.payload for segment in run)
    pieces, at = [], 0
    while at < len(stream):
        length = chance.randint(1, max(1, min(600, len(stream) // 2)))
        overlap = chance.randint(0, min(at, 40)) if chance.random() < 0.2 else 0
        pieces.append((at - overlap, stream[at - overlap:at + length]))
        at += length
        if chance.random() < 0.1:
            pieces.append(chance.choice(pieces))
    for i in range(len(pieces)):   # within a window
        j = min(len(pieces) - 1, i + chance.randint(0, 5))
        pieces[i], pieces[j] = pieces[j], pieces[i]
    return [first.carrying(first.sequence + at, octets) for at, octets in pieces]


def decode(runs, ports):
    """What each run's packets show behind TCP, without what reassembly says itself."""
    with tempfile.NamedTemporaryFile(suffix=".pcap") as file:
        file.write(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, 1))
        owners = []
        for number, run in enumerate(runs):
            for segment in run:
                file.write(segment.time + struct.pack("<II", len(segment.frame), len(segment.frame)) + segment.frame)
                owners.append(number if segment.payload and set(segment.ports) & set(ports) else None)
        file.flush()
        done = subprocess.run([QXVIEW, "decode", "--reassemble", "--set", "IgnoreChecksums=1", "--format", "json", file.name],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=True,
                              env={**os.environ, "XDG_CONFIG_HOME": "/nonexistent"})
    texts = [[] for _ in runs]

    def keep(lines, owner):
        for line in lines:
            if not line["text"].endswith(("SSL/TLS", "TLS/SSL")):   # over the records that become whole together
                texts[owner].append(line["text"])
            keep(line.get("lines", []), owner)

    for owner, text in zip(owners, done.stdout.splitlines()):
        lines = json.loads(text)["lines"]
        starts = [i for i, line in enumerate(lines) if line["text"].startswith("TCP ")]
        waits = any(line["text"].endswith("before them are missing") for line in lines)   # shown again when they have come
        if owner is not None and starts and not waits:
            keep((line for line in lines[starts[0] + 1:] if not line["text"].startswith("Reassembly:")), owner)
    return texts


class ShuffledSegments(unittest.TestCase):
    def test_messages_are_the_same(self):
        for sample, ports in SAMPLES.items():
            runs = runs_of(sample)
            wanted = decode(runs, ports)
            self.assertTrue(any(wanted), sample)
            for seed in range(SEEDS):
                chance = random.Random(seed)
                others = [shuffled(run, chance) if run[0].payload and not run[0].flags & SYN_FIN_RST else run for run in runs]
                self.maxDiff = 2000
                for number, (a, b) in enumerate(zip(wanted, decode(others, ports))):
                    if sample == "smb" and not any(text.startswith("CIFS") for text in a):
                        continue   # one of the sample's that are no messages: shown segment by segment
                    self.assertEqual(sorted(a), sorted(b), f"{sample}, seed {seed}, run {number}")


if __name__ == "__main__":
    unittest.main(argv=sys.argv)
