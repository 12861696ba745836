#!/usr/bin/env python3
"""Keys on the command line: `protocols --fields`, and what `decode --keys` tells of the packet."""
import json
import os
import subprocess
import unittest

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))


def run(*words):
    return subprocess.run([QXVIEW, *words], capture_output=True, text=True, cwd=ROOT, check=False)


class Fields(unittest.TestCase):
    def test_lists_the_keys_of_a_protocol_with_kinds_and_aliases(self):
        arp = run("protocols", "--fields", "ARP").stdout
        for row in ("arp.operation                number    Operation\n", "arp.opcode                   alias     arp.operation,rarp.operation\n",
                    "arp.source_ip_address        address   Source IP Address\n"):
            self.assertIn(row, arp)
        self.assertEqual({line.split(".")[0].split()[0] for line in arp.splitlines()}, {"arp"})
        self.assertEqual(run("protocols", "--fields", "arp").stdout, arp)

    def test_gives_them_as_data(self):
        rows = [json.loads(line) for line in run("protocols", "--fields", "--format", "json").stdout.splitlines()]
        keys = {row["key"]: row for row in rows if "key" in row}
        self.assertEqual(keys["ip.source"], {"key": "ip.source", "protocol": "ip", "label": "Source", "kinds": ["address"],
                                             "aliases": ["ip.addr", "ip.src"]})
        self.assertIn({"alias": "ip.addr", "keys": ["ip.source", "ip.destination"]}, rows)

    def test_names_what_is_no_protocol(self):
        wrong = run("protocols", "--fields", "arp", "nosuch")
        self.assertEqual((wrong.returncode, wrong.stdout, wrong.stderr), (2, "", 'qxview: protocols: "nosuch" is no protocol\n'))

    def test_tell_of_the_packet_what_the_list_says(self):
        sample = "samples/lan.pcap"
        listed = run("list", sample).stdout.splitlines()
        for line, row in zip(run("decode", "--keys", "--format", "json", sample).stdout.splitlines(), listed, strict=True):
            packet = json.loads(line)
            self.assertTrue(row.endswith(packet["summary"]), (row, packet["summary"]))
            self.assertEqual(row.split()[2:4], [packet["source"], packet["destination"]])
            self.assertTrue(packet["protocol"])
            self.assertEqual(packet["lines"][0]["key"], "frame.number")
            self.assertTrue(all(under["key"].startswith("frame.") for under in packet["lines"][0]["lines"]))


if __name__ == "__main__":
    unittest.main()
