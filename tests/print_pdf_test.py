#!/usr/bin/env python3
"""Pages of PDF files: every line is on them, in its order, and nothing else is left behind when something goes wrong."""
import os
import re
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
DNS = os.path.join(ROOT, "samples", "dns.pcap")
MAIL = os.path.join(ROOT, "samples", "lan.pcap")


def run(*arguments, before=()):
    return subprocess.run([*before, QXVIEW, *arguments], capture_output=True, check=False)


def can_print():
    with tempfile.TemporaryDirectory() as folder:
        told = run("print", "--pdf", os.path.join(folder, "a.pdf"), DNS, "-c", "1").stderr
    return b"needs pango" not in told


@unittest.skipUnless(shutil.which("pdftotext") and can_print(), "no pdftotext, or no pango")
class PrintPdf(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.pdf = os.path.join(self.folder, "out.pdf")

    def print(self, *arguments, status=0):
        done = run("print", "--pdf", self.pdf, *arguments)
        self.assertEqual(done.returncode, status, done.stderr)
        return done

    def text(self, *options):
        return subprocess.run(["pdftotext", "-layout", *options, self.pdf, "-"], capture_output=True, check=True).stdout.decode()

    def body(self):
        """Without heads and feet, of A4 with its margin."""
        return "".join(self.text("-x", "0", "-y", "52", "-W", "596", "-H", "740").split())

    def info(self):
        told = subprocess.run(["pdfinfo", "-enc", "UTF-8", self.pdf], capture_output=True, check=True).stdout.decode()
        return dict(re.findall(r"^([^:]+): +(.*)$", told, re.M))

    def test_every_line_is_there_in_its_order(self):
        for capture in (DNS, MAIL, os.path.join(ROOT, "samples", "http.pcap")):
            for words in ([], ["--packets", "2-7"], ["-Y", "frame.number > 3"], ["-d", "udp:53=none"]):
                lines = run("print", capture, *words).stdout
                # What a terminal is shown: Windows-1252, and controls as their numbers.
                wanted = "".join(chr(c) if 0x20 <= c < 0x7F or c == 10 else f"\\x{c:02X}" if c < 0x20 or c in
                                 (0x7F, 0x81, 0x8D, 0x8F, 0x90, 0x9D) else bytes([c]).decode("cp1252") for c in lines.replace(b"\r\n", b"\n"))
                self.print(capture, *words)
                # Poppler takes soft hyphens and spaces that do not break for what they are for.
                drop = dict.fromkeys(map(ord, "\u00ad\u00a0"))
                self.assertEqual(self.body().translate(drop), "".join(wanted.split()).translate(drop), (capture, words))

    def test_any_character_of_a_name_is_searchable(self):
        capture = os.path.join(self.folder, "данные-αβγ-ørsted.pcap")
        shutil.copy(DNS, capture)
        self.print(capture, "-c", "2")
        self.assertIn("данные-αβγ-ørsted.pcap", self.text())
        self.assertTrue(self.info()["Title"].endswith("данные-αβγ-ørsted.pcap"))

    def test_lists_and_bytes_stand_beside_the_tree(self):
        self.print(DNS, "--what", "list", "--landscape")
        rows = re.findall(r"^ *(\d+) +\d+\.\d{6} ", self.text(), re.M)
        self.assertEqual([int(row) for row in rows], list(range(1, len(rows) + 1)))
        self.assertEqual(self.text().count("Destination"), int(self.info()["Pages"]))
        self.print(DNS, "--what", "all", "-c", "3")
        shown = " ".join(self.text().split())
        self.assertRegex(shown, r"1 0\.000000 192\.0\.2\.1 -> 192\.0\.2\.2 DNS 99 DNS .*Packet 1: .*Bytes: 0000 02 00.* 2 0\.000220 ")
        self.print(DNS, "--what", "bytes", "-c", "1")
        self.assertNotIn("Ethernet", self.text())

    def test_paper_and_bookmarks(self):
        for words, size in (([], "595.28 x 841.89"), (["--paper", "letter", "--landscape"], "792 x 612"),
                            (["--two-up"], "841.89 x 595.28"), (["--paper", "A3"], "841.89 x 1190.55")):
            self.print(DNS, "-c", "9", *words)
            self.assertTrue(self.info()["Page size"].startswith(size), (words, self.info()["Page size"]))
        self.print(DNS, "-c", "9")
        upright = int(self.info()["Pages"])
        subprocess.run(["pdftohtml", "-xml", "-i", "-q", self.pdf, self.pdf[:-4]], check=True)
        with open(self.pdf[:-4] + ".xml", encoding="utf-8") as file:
            marks = re.findall(r'<item page="(\d+)">(\d+) ', file.read())
        self.assertEqual([mark[1] for mark in marks], [str(number) for number in range(1, 10)])
        for page, number in marks:
            self.assertIn(f"Packet {number}:", self.text("-f", page, "-l", page))
        self.print(DNS, "-c", "9", "--two-up")
        self.assertEqual(int(self.info()["Pages"]), (upright + 1) // 2)

    def test_what_goes_wrong_leaves_no_half_file(self):
        done = run("print", "--pdf", self.pdf, "--what", "all", DNS, before=("prlimit", "--fsize=60000"))
        self.assertTrue(done.returncode == 3 and (self.pdf + ": ").encode() in done.stderr, done.stderr)
        self.assertEqual(os.listdir(self.folder), [])
        cut = os.path.join(self.folder, "cut.pcap")
        with open(DNS, "rb") as file, open(cut, "wb") as out:
            out.write(file.read()[:1000])
        self.print(cut, status=3)
        self.assertIn("Packet 8:", self.text())
        before = os.stat(self.pdf)
        self.print(cut, status=3)   # in place of a file with something in it
        self.assertEqual(os.stat(self.pdf).st_ino, before.st_ino)
        self.print(DNS, "-Y", "frame.number > 9999")
        self.assertTrue(self.info()["Pages"] == "1" and "No packets" in self.text())
        shown = run("print", "--pdf", "-", DNS, "-c", "1").stdout
        self.assertTrue(shown.startswith(b"%PDF-") and shown.rstrip().endswith(b"%%EOF"))
        for words, wanted in ((["--what", "tee"], b"tree, list, bytes"), (["--paper", "B9"], b"A4, A3"), (["--margin", "x"], b"from 0 to 100"),
                              (["--margin", "95"], b"room for"), (["-o", self.pdf], b"one at a time"), (["--font-size", "99"], b"from 3 to 36")):
            done = run("print", "--pdf", self.pdf, *words, DNS)
            self.assertTrue(done.returncode in (2, 3) and wanted in done.stderr, (words, done.stderr))
        done = run("print", "--two-up", DNS)
        self.assertTrue(done.returncode == 2 and b"--two-up is for pages: --pdf OUT" in done.stderr)


if __name__ == "__main__":
    unittest.main()
