#!/usr/bin/env python3
"""What the decoders of the samples' protocols leave to dumps, and what of them tshark tells otherwise: no more than it was.

What cannot be taken apart is set aside: encrypted data, texts of more than 80 octets, the data of files.
"""
import os
import shutil
import subprocess
import sys
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))

LONG_TEXT = "^ASN Value: "
# sample, protocol, percent, titles of the dumps that are set aside; a long text may go on in the next segment
SAMPLES = [
    ("snmp", "SNMP", 99, ["^Encrypted SNMP Data$", LONG_TEXT]),
    ("ldap", "LDAP", 99, ["^Encrypted Data$", "^SSL/TLS Data$", LONG_TEXT, "^Partial Data$", "^LDAP Continuation Data$"]),
    ("kerberos", "Kerberos", 97, ["^Encrypted Data$"]),
    ("smb", "SMB", 95, ["^Data Bytes$"]),
    ("netbios", "NetBIOS", 98, []),
]


class FieldCoverage(unittest.TestCase):
    def test_samples(self):
        for sample, protocol, least, aside in SAMPLES:
            with self.subTest(sample):
                command = [sys.executable, os.path.join(ROOT, "scripts", "field_coverage.py"), "--qxview", QXVIEW,
                           "--protocol", protocol, "--least", str(least),
                           *(part for title in aside for part in ("--except", title)),
                           os.path.join(ROOT, "samples", f"{sample}.pcap")]
                done = subprocess.run(command, capture_output=True, text=True, timeout=120)
                print(done.stdout.splitlines()[-1])
                self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    @unittest.skipUnless(shutil.which("tshark"), "tshark is not here")
    def test_agreement(self):
        least = ["eth=99", "arp=99", "ip=99", "tcp=99", "udp=99", "kerberos=95", "ldap=95", "smb=95", "ipv6=99"]
        done = subprocess.run([sys.executable, os.path.join(ROOT, "scripts", "oracle.py"), "--qxview", QXVIEW,
                               *(part for share in least for part in ("--least", share)),
                               *(os.path.join(ROOT, "samples", f"{name}.pcap") for name in ("kerberos", "lan", "ldap", "smb"))],
                              capture_output=True, text=True, timeout=300)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)


if __name__ == "__main__":
    unittest.main()
