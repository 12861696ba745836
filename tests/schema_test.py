#!/usr/bin/env python3
"""Every packet of every sample, written as JSON, is what docs/decode.schema.json promises."""
import copy
import glob
import json
import os
import struct
import subprocess
import unittest

import jsonschema

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))

with open(os.path.join(ROOT, "docs", "decode.schema.json"), encoding="utf-8") as schema_file:
    SCHEMA = json.load(schema_file)
VALIDATOR = jsonschema.Draft7Validator(SCHEMA)

LINE = {"text": "Ethernet:", "offset": 0, "length": 14, "kind": 0, "image": 9}
PACKET = {"schema": 1, "packet": 1, "time": "2026-11-21T07:53:33.009197000Z", "length": 74, "captured": 74,
          "media": "Ethernet", "handled": 1, "lines": [{**LINE, "lines": [LINE, {**LINE, "offset": -1}]}, LINE]}


def read_lengths(path):
    """(captured length, length on the wire) of each packet of a little-endian pcap file, which the samples are."""
    with open(path, "rb") as file:
        data = file.read()
    found, at = [], 24
    while at + 16 <= len(data):
        captured, length = struct.unpack_from("<8xII", data, at)
        found.append((captured, length))
        at += 16 + captured
    return found


class Schema(unittest.TestCase):
    def test_accepts_what_is_right(self):
        jsonschema.Draft7Validator.check_schema(SCHEMA)
        for extra in ({}, {"added": "later"}, {"media": "Medium5"}, {"media": "RawIP", "lines": []}):
            VALIDATOR.validate({**PACKET, **extra})

    def test_refuses_what_is_wrong(self):
        for name, value in (("schema", 2), ("packet", 0), ("time", "2026-11-21 07:53:33Z"), ("length", -1),
                            ("captured", 65536), ("media", "ethernet"), ("media", "Medium05"), ("handled", "yes"),
                            ("lines", {})):
            self.assertFalse(VALIDATOR.is_valid({**PACKET, name: value}), f"{name} = {value}")
        for name, value in (("text", None), ("offset", 1 << 26), ("length", 1 << 27), ("kind", 128), ("image", 23),
                            ("lines", [])):
            packet = copy.deepcopy(PACKET)
            packet["lines"][0]["lines"][1][name] = value
            self.assertFalse(VALIDATOR.is_valid(packet), f"line: {name} = {value}")
        for name in SCHEMA["required"]:
            self.assertFalse(VALIDATOR.is_valid({k: v for k, v in PACKET.items() if k != name}), f"without {name}")


class Samples(unittest.TestCase):
    def test_packets(self):
        samples = sorted(glob.glob(os.path.join(ROOT, "samples", "*.pcap")))
        self.assertTrue(samples)
        for sample in samples:
            with self.subTest(os.path.basename(sample)):
                self.check_sample(sample)

    def check_sample(self, sample):
        run = subprocess.run([QXVIEW, "decode", "--format", "json", sample], capture_output=True, timeout=120, check=False)
        self.assertEqual(run.returncode, 0, run.stderr.decode(errors="replace"))
        packets = [json.loads(line) for line in run.stdout.decode("utf-8").split("\n")[:-1]]
        for number, packet in enumerate(packets, 1):
            problem = next(VALIDATOR.iter_errors(packet), None)
            self.assertIsNone(problem, f"packet {number}: {problem}")
            self.assertEqual(packet["packet"], number)
            self.assertTrue(packet["lines"], f"packet {number} has no line")
        self.assertEqual([(packet["captured"], packet["length"]) for packet in packets], read_lengths(sample))


if __name__ == "__main__":
    unittest.main()
