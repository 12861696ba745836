#!/usr/bin/env python3
"""Capture buffer files and XML documents through the command line: nothing is lost on the way, and whatever goes wrong,
what was there stays.

With QXVIEW_CAPTURES naming a folder, its captures are compared as well."""
import bz2
import calendar
import glob
import gzip
import json
import lzma
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
        # the secrets of a pcapng file have no place in a capture buffer file
        captures = [path for path in SAMPLES if os.path.basename(path) not in ("tls_keys.pcapng", "dtls13.pcapng")]
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


class Formats(Folder):
    """pcap and pcapng; tests/files_writer_test.cpp holds what they keep."""

    def save(self, name, *arguments, status=0):
        out = os.path.join(self.folder, name)
        done = run("save", *arguments, out)
        self.assertEqual(done.returncode, status, done.stderr)
        return out, done.stderr.decode()

    def test_by_the_name_and_to_standard_output(self):
        bfr = self.save("a", LAN)[0]
        for name, magic in (("a.pcap", b"\xD4\xC3\xB2\xA1"), ("a.PcapNG", b"\x0A\x0D\x0D\x0A")):
            out = self.save(name, LAN)[0]
            self.assertEqual(self.read(out)[:4], magic)
            again = self.save("again.bfr", out)[0]
            self.assertEqual(self.read(again)[-2000:], self.read(bfr)[-2000:])
            kind = os.path.splitext(name)[1][1:].lower()
            self.assertEqual(run("save", "--format", kind, LAN, "-").stdout, self.read(out))
        self.assertEqual(self.read(os.path.join(self.folder, "a.pcap"))[24:], self.read(LAN)[24:])
        self.assertEqual(self.read(self.save("c.pcap", bfr)[0])[:4], b"\x4D\x3C\xB2\xA1")   # nanoseconds
        cut = self.read(self.save("cut.pcap", "--partial", "20", "-c1", LAN)[0])
        self.assertEqual((len(cut), struct.unpack("<II", cut[32:40])), (24 + 16 + 20, (20, 90)))

    def test_refusals_leave_what_was_there(self):
        there = self.write("there.pcap", b"what was there")
        for status, word, arguments in ((2, "--append", ["--append", "--format", "pcap", LAN]),
                                        (3, "existing file", ["--append", LAN]), (2, "--name", ["--name", "x", LAN]),
                                        (3, "No packets", ["--packets", "99999", LAN]),
                                        (3, "there", [LAN, self.write("damaged", self.read(LAN)[:-1])])):
            self.assertIn(word, self.save("there.pcap", *arguments, status=status)[1])
            self.assertEqual(self.read(there), b"what was there")
        self.assertIn("| gzip >", self.save("x.pcap.gz", LAN, status=2)[1])
        raw = self.write("raw.pcap", self.read(LAN)[:20] + b"\x65" + self.read(LAN)[21:])   # another link type
        mixed = self.save("mixed.pcapng", LAN, raw)[0]
        self.assertIn("--format pcapng", self.save("there.pcap", mixed, status=3)[1])

    def test_several_captures(self):
        names = [os.path.join(ROOT, "samples", name) for name in ("dns.pcap", "vlan.pcap", "lan.pcap")]
        each = [run("list", name).stdout for name in names]
        listed = self.write("names.txt", ("\r\n".join(names[1:]) + "\n\n").encode())
        for arguments in (names, [names[0], "--files-from", listed]):
            self.assertEqual(run("list", *arguments).stdout, b"".join(each))
        lines = run("list", "--prefix-file", "-c1", *names).stdout.decode().splitlines()
        self.assertEqual([line.split("  ")[0] for line in lines], names)
        merged = run("list", "-t", "u", "--merge", *names).stdout.decode().splitlines()
        times = [line[8:34] for line in merged]
        self.assertEqual(times, sorted(times))
        self.assertEqual(len(merged), sum(len(part.splitlines()) for part in each))
        both = self.save("both.pcapng", "--merge", *names)[0]
        self.assertEqual(run("list", "-t", "u", both).stdout.decode().splitlines(), merged)
        numbers = [json.loads(line)["packet"] for line in run("decode", "--format", "json", *names).stdout.splitlines()]
        self.assertEqual(numbers.count(1), 3)
        document = run("xml", *names[:2], "-").stdout
        self.assertEqual(document.count(b'<Packet Number="1"'), 1)

    def test_the_tree_tells_what_a_capture_tells_of_a_packet(self):
        def block(kind, body, *options):
            body += b"".join(struct.pack("<HH", code, len(value)) + value + bytes(-len(value) % 4)
                             for code, value in options) + bytes(4 if options else 0)
            return struct.pack("<II", kind, len(body) + 12) + body + struct.pack("<I", len(body) + 12)

        def packet(interface, *options, nanoseconds=1700000000_123456789):
            frame = bytes(12) + b"\x88\xb5" + bytes(46)
            return block(6, struct.pack("<IIIII", interface, nanoseconds >> 32, nanoseconds & 0xFFFFFFFF, 60, 60) + frame,
                         *options)

        comments = [(1, "first \N{EURO SIGN}\n\x1b".encode()), (1, b"second")]
        capture = self.write("noted.pcapng", (
            block(0x0A0D0D0A, struct.pack("<IHHq", 0x1A2B3C4D, 1, 0, -1)) +
            block(1, struct.pack("<HHI", 1, 0, 0), (9, b"\x09"), (2, b"eth0"), (3, b"uplink")) +
            block(1, struct.pack("<HHI", 1, 0, 0), (9, b"\x09")) +
            packet(0, *comments, (2, b"\1\0\0\0")) + packet(1, (2, b"\2\0\0\0")) + packet(0)))

        def notes(*arguments):
            packets = run("decode", *arguments).stdout.decode().split("\n\n")
            return [[line.strip() for line in tree.splitlines() if line.startswith("  ")][2:] for tree in packets]

        time, eth0 = "Time: 2023-11-14 22:13:20.123456789 UTC", "Interface: 0 = eth0 (uplink)"
        told = [[time, eth0, "Direction: Received", "Comment: first \N{EURO SIGN}", "Comment: second"],
                [time, "Interface: 1", "Direction: Sent"], [time, eth0]]
        shown = [[re.sub(r"  +$", "", line) for line in tree if line.startswith(("Time", "Int", "Dir", "Com"))]
                 for tree in notes(capture)]
        self.assertEqual(shown, told)
        for out in ("again.pcapng", "cut.pcap"):
            saved = self.save(out, capture)[0]
            times = [tree[0] for tree in notes("-c1", saved)]
            self.assertEqual(times, [time])
        self.assertEqual(notes(os.path.join(self.folder, "again.pcapng")), notes(capture))
        for form, shown in (("r", "0.000000000 since the first packet"), ("d", "0.000000000 since the packet before"),
                            ("dd", "0.000000000 since the packet shown before"), ("e", "1700000000.123456789"),
                            ("a", "2023-11-15 03:43:20.123456789 local time"), ("i", "2023-11-14T22:13:20.123456789Z")):
            zone = {"env": {**os.environ, "TZ": "XYZ-5:30"}}
            lines = run("decode", "-t", form, "--packets", "2", capture, **zone).stdout.decode().splitlines()
            self.assertIn(f"  Time: {shown}", lines)

    def test_what_cannot_be_read_among_several(self):
        damaged, text = self.write("damaged.pcap", self.read(LAN)[:-1]), self.write("text", b"no capture")
        for merge in ([], ["--merge"]):
            stopped = run("list", *merge, text, LAN)
            self.assertEqual((stopped.returncode, stopped.stdout), (3, b""))
            done = run("list", "--keep-going", *merge, text, damaged, LAN)
            self.assertEqual(done.returncode, 3)
            self.assertEqual(len(done.stdout.splitlines()), 2 * len(run("list", LAN).stdout.splitlines()) - 1)
            self.assertEqual([name in done.stderr.decode() for name in (text, damaged, LAN)], [True, True, False])
        row = json.loads(run("decode", "-c1", "--prefix-file", "--format", "json", text, LAN, "--keep-going").stdout)
        self.assertEqual(row["file"], LAN)
        hit = run("find", "--prefix-file", "--backward", LAN, os.path.join(ROOT, "samples", "dns.pcap"), LAN, "Packet 1:")
        self.assertTrue(hit.stdout.startswith(LAN.encode() + b"  >Packet 1:"), hit.stdout[:80])
        self.assertEqual(run("list", "-", "-").returncode, 2)

    def test_compressed_captures(self):
        plain = run("list", LAN).stdout
        packed = {"gzip": gzip.compress(self.read(LAN)), "xz": lzma.compress(self.read(LAN)),
                  "bzip2": bz2.compress(self.read(LAN))}
        for tool in ("zstd", "lz4"):
            if shutil.which(tool) and not WINDOWS:
                packed[tool] = subprocess.run([tool, "-q", "-c", LAN], capture_output=True, check=True).stdout
        for tool, data in packed.items():
            done = run("list", "-", input=data)
            if tool in ("xz", "bzip2"):
                self.assertEqual((done.returncode, done.stdout), (3, b""))
                self.assertIn(f"{tool} -dc FILE | qxview ... -", done.stderr.decode())
                continue
            self.assertEqual((done.returncode, done.stdout), (0, plain), tool)
            cut = run("list", "-", input=data[:-20])
            self.assertEqual((cut.returncode, b"end early" in cut.stderr), (3, True), cut.stderr)


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
