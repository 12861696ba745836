#!/usr/bin/env python3
"""Capture buffer files and XML documents through the command line: nothing is lost on the way, and whatever goes wrong,
what was there stays.

With QXVIEW_CAPTURES naming a folder, its captures are compared as well."""
import calendar
import glob
import os
import re
import resource
import shutil
import signal
import struct
import subprocess
import tempfile
import time
import unittest
import xml.etree.ElementTree

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
WINDOWS = os.environ.get("QXVIEW_PLATFORM") == "windows"   # the program runs under Wine
SAMPLES = sorted(glob.glob(os.path.join(ROOT, "samples", "*.pcap*")))
LAN = os.path.join(ROOT, "samples", "lan.pcap")


def run(*arguments, **options):
    """The finished process; texts as bytes."""
    return subprocess.run([QXVIEW, *arguments], capture_output=True, check=False, **options)


def pcap(packets):
    """A nanosecond pcap of (nanoseconds, length on the wire, bytes)."""
    parts = [struct.pack("<IHHIIII", 0xA1B23C4D, 2, 4, 0, 0, 262144, 1)]
    for nanoseconds, wire, data in packets:
        parts += [struct.pack("<IIII", nanoseconds // 10**9, nanoseconds % 10**9, len(data), wire), data]
    return b"".join(parts)


def make_packets(count):
    return [(1763167958 * 10**9 + i * 777_777_777, 60 + i % 1500, bytes((i + j) & 255 for j in range(i % 61)))
            for i in range(count)]


class Folder(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        os.chmod(self.folder, 0o755)
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.out = os.path.join(self.folder, "packets.bfr")

    def read(self, path=None):
        with open(path or self.out, "rb") as file:
            return file.read()

    def write(self, name, data):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(data)
        return path


class RoundTrip(Folder):
    def compare(self, capture):
        saved = run("save", capture, self.out)
        if not os.path.exists(self.out):   # nothing readable, or nothing in it
            self.assertEqual(saved.returncode, 3, capture)
            return
        before, after = run("decode", "--format", "json", capture), run("decode", "--format", "json", self.out)
        self.assertEqual(before.returncode, saved.returncode, capture)
        self.assertEqual(after.returncode, 0, (capture, after.stderr))
        self.assertTrue(before.stdout == after.stdout, capture)
        os.remove(self.out)

    def test_decodes_the_same_from_a_capture_buffer_file(self):
        captures = SAMPLES
        if folder := os.environ.get("QXVIEW_CAPTURES"):
            captures = captures + sorted(path for path in glob.glob(os.path.join(folder, "*")) if "cap" in path)
        self.assertTrue(captures)
        for capture in captures:
            self.compare(capture)

    def test_appends_selections_and_cuts(self):
        self.assertEqual(run("save", "--packets", "1-3", LAN, self.out).returncode, 0)
        first = self.read()
        added = run("save", "--append", "--partial", "20", "--packets", "5,7", LAN, self.out)
        self.assertEqual(added.returncode, 0, added.stderr)
        self.assertTrue(self.read().startswith(first))
        lines = run("decode", "--format", "json", self.out).stdout.splitlines()
        self.assertEqual([int(re.search(rb'"packet":(\d+)', line)[1]) for line in lines], [1, 2, 3, 4, 5])
        self.assertEqual([b'"captured":20,' in line for line in lines], [False] * 3 + [True] * 2)
        again = os.path.join(self.folder, "wieder Ж€.bfr")
        self.assertEqual(run("save", self.out, again).returncode, 0)
        self.assertEqual(run("decode", "--format", "json", again).stdout.splitlines(), lines)


class Faults(Folder):
    """Saves that fail, over a file that was there: it is as it was, and no other file is left."""

    def setUp(self):
        super().setUp()
        self.capture = self.write("big.pcap", pcap(make_packets(60000)))
        self.assertEqual(run("save", LAN, self.out).returncode, 0)
        self.before = self.read()
        self.files = sorted(os.listdir(self.folder))

    def fails(self, message, *arguments, **options):
        result = run("save", *arguments, **options)
        self.assertEqual(result.returncode, 3, result.stderr)
        self.assertIn(message, result.stderr)
        self.assertTrue(self.read() == self.before)
        self.assertEqual(sorted(os.listdir(self.folder)), self.files)

    def test_places_that_cannot_be_written(self):
        missing = os.path.join(self.folder, "missing.bfr")
        self.fails(b"Cannot open file for writing.", LAN, self.folder)
        self.fails(b"Cannot open file for writing.", LAN, os.path.join(self.folder, "none", "x.bfr"))
        self.fails(b"Cannot open file for appending.", "--append", LAN, missing)
        self.fails(b"Cannot open file for appending.", "--append", LAN, self.folder)
        self.fails(b"Cannot open file for appending.", "--append", self.out, self.out)
        if not WINDOWS:   # Wine tells nothing of a file that it inherits from another system
            with open(self.out, "rb") as same:
                self.fails(b"Cannot open file for appending.", "--append", "-", self.out, stdin=same)
        self.fails(b"Unable to save packet buffer: /dev/full.", LAN, "/dev/full")
        self.fails(b"No packets to save.", "--packets", "70000-", LAN, self.out)
        self.fails(b"The packet capture file cannot be appended to.", "--append", LAN, self.capture)
        short = self.write("short.bfr", self.before[:35])
        self.files = sorted(os.listdir(self.folder))
        self.fails(b"Select an existing file for appending.", "--append", LAN, short)

    @unittest.skipIf(WINDOWS, "is about this system's users")
    def test_no_permission(self):
        if os.getuid() == 0:   # nothing is refused to root
            options = {"user": 65534, "cwd": "/"}
            try:
                run("--version", **options)
            except PermissionError:
                self.skipTest("the program cannot be reached by another user")
        else:
            options = {}
            os.chmod(self.out, 0o444)
        self.fails(b"Cannot open file for writing.", LAN, self.out, **options)
        self.fails(b"Cannot open file for appending.", "--append", LAN, self.out, **options)

    @unittest.skipIf(WINDOWS, "the limit ends Wine itself")
    def test_a_disk_that_fills_up(self):
        # The limit stands at the header, within records, between two writes and at the very end.
        whole = os.path.join(self.folder, "whole.bfr")
        self.assertEqual(run("save", self.capture, whole).returncode, 0)
        size = os.path.getsize(whole)
        os.remove(whole)
        for limit in (0, 10, 200, 5000, 1 << 20, (1 << 20) + 3, 2 << 20, size - 1):
            full = lambda limit=limit: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))
            self.fails(b"save" if limit < 100 else b"Error saving file.", self.capture, self.out, preexec_fn=full)
            if limit > len(self.before):
                self.fails(b"Error saving file.", "--append", self.capture, self.out, preexec_fn=full)
        enough = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))
        self.assertEqual(run("save", self.capture, self.out, preexec_fn=enough).returncode, 0)
        self.assertEqual(os.path.getsize(self.out), size)

    def test_a_kill_in_the_middle(self):
        data = self.read(self.capture)
        for append in ([], ["--append"]):
            with subprocess.Popen([QXVIEW, "save", *append, "-", self.out], stdin=subprocess.PIPE) as process:
                process.stdin.write(data)   # there is more than the buffers hold: some has been written
                process.stdin.flush()
                process.send_signal(signal.SIGKILL)
            if append:   # what was there is in front of what came, and reads as before
                self.assertTrue(self.read().startswith(self.before))
                lines = run("decode", "--format", "json", self.out).stdout.splitlines()
                were = run("decode", "--format", "json", LAN).stdout.splitlines()
                self.assertEqual(lines[:len(were)], were)
            else:
                self.assertTrue(self.read() == self.before)

    def test_another_program_appending(self):
        data = self.read(self.capture)
        with subprocess.Popen([QXVIEW, "save", "--append", "-", self.out], stdin=subprocess.PIPE) as process:
            process.stdin.write(data[:1 << 20])
            process.stdin.flush()
            refused = run("save", "--append", LAN, self.out)
            process.stdin.write(data[1 << 20:])
        self.assertEqual((process.returncode, refused.returncode), (0, 3))
        self.assertIn(b"File is currently being used by Vantrell or another program.", refused.stderr)
        last = run("decode", "--format", "json", "--packets", "60037-", self.out).stdout
        self.assertTrue(last.startswith(b'{"schema":1,"packet":60037,'), "the other one's packets are all there")
        self.assertEqual(last.count(b"\n"), 1)


class Xml(Folder):
    def test_holds_every_packet_of_a_large_capture(self):
        packets = make_packets(100000)
        capture = self.write("large.pcap", pcap(packets))
        names = self.write("names.txt", b"00:1b:21:aa:bb:cc printer # 2nd floor\n10.0.0.1 old\n10.0.0.1 <gate>\n")
        out = os.path.join(self.folder, "large.xml")
        zone = {**os.environ, "TZ": "America/New_York"}
        done = run("xml", "--set", f"AliasFile={names}", capture, out, env=zone)
        self.assertEqual(done.returncode, 0, done.stderr)
        os.environ["TZ"] = zone["TZ"]
        time.tzset()
        root = xml.etree.ElementTree.parse(out).getroot()
        found = root.findall("./PacketCapture/Packets/Packet")
        self.assertEqual(len(found), len(packets))
        for number, (element, (nanoseconds, wire, data)) in enumerate(zip(found, packets), 1):
            local = time.localtime(nanoseconds // 10**9)
            micros = calendar.timegm(local) * 10**6 + nanoseconds // 1000 % 10**6
            self.assertEqual(element.attrib, {
                "Number": str(number), "Type": "Normal", "FrameSize": str(wire), "CapturedSize": str(len(data)),
                "Date": time.strftime("%a %b ", local) + f"{local.tm_mday} {local.tm_year}",
                "Time": f"{local.tm_hour}h:{local.tm_min}m {local.tm_sec}.{micros % 10**6:06}s",
                "Day": str(micros // 10**6 // 86400), "Mks": str(micros),
                "NetworkType": "Ethernet", "RawPacket": data.hex().upper()})
        self.assertEqual(root.find("./PacketCapture/Summary/SummaryData").attrib,
                         {"Packets": "100000", "FirstPacket": "1", "LastPacket": "100000", "NetworkType": "Ethernet",
                          "NetworkSpeed": "0"})
        self.assertEqual([entry.attrib for entry in root.findall("./PacketCapture/AliasList/Entry")],
                         [{"Number": "1", "Addr": "00:1B:21:AA:BB:CC", "Alias": "printer", "Comment": "2nd floor"},
                          {"Number": "2", "IP": "10.0.0.1", "Alias": "<gate>"}])

    def test_selections_and_failures(self):
        document = run("xml", "--packets", "3-4", LAN, "-").stdout
        self.assertIn(b'<SummaryData Packets="2" FirstPacket="3" LastPacket="4" ', document)
        if WINDOWS:
            return
        out = self.write("there.xml", b"what was there")
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (3000, 3000))
        failed = run("xml", LAN, out, preexec_fn=limit)
        self.assertEqual(failed.returncode, 3, failed.stderr)
        self.assertEqual(self.read(out), b"what was there")
        self.assertEqual(os.listdir(self.folder), ["there.xml"])
        with open("/dev/full", "wb") as full:
            self.assertEqual(subprocess.run([QXVIEW, "xml", LAN, "-"], stdout=full, stderr=subprocess.PIPE,
                                            check=False).returncode, 3)


if __name__ == "__main__":
    unittest.main()
