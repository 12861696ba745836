#!/usr/bin/env python3
"""The decoders that a pass without lines does not call reach nothing that keeps or asks for state."""
import os
import subprocess
import sys
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def check(*words):
    return subprocess.run([sys.executable, os.path.join(ROOT, "scripts", "check_plain.py"), *words], capture_output=True, text=True,
                          timeout=120)


class PlainRows(unittest.TestCase):
    def test_no_plain_decoder_reaches_state(self):
        result = check()
        self.assertEqual((result.returncode, result.stdout), (0, ""))

    def test_what_keeps_or_carries_is_told(self):
        rows = {line[6:46].strip(): line for line in check("--list").stdout.splitlines()}
        for name in ("TCP", "IPv4", "DNS", "TLS", "QUIC", "FTP", "RTP", "SIP", "VXLAN"):
            self.assertTrue(rows[name].startswith("-"), rows[name])
        for name in ("NTP", "Syslog", "BFD"):
            self.assertTrue(rows[name].startswith("plain"), rows[name])


if __name__ == "__main__":
    unittest.main()
