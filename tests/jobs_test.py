#!/usr/bin/env python3
"""Several threads write what one writes: every sample and format, chosen packets, hits, prefixes, input that is waited for, and
output that cannot be written."""
import glob
import os
import struct
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
SAMPLES = sorted(glob.glob(os.path.join(ROOT, "samples", "*.pcap*")))
# A slow build takes every so manieth sample where each is looked at alone.
ALONE = SAMPLES[::int(os.environ.get("QXVIEW_EVERY", "1"))]


def run(*words, **options):
    result = subprocess.run([QXVIEW, *words], capture_output=True, timeout=300, **options)
    return result.returncode, result.stdout, result.stderr


class Jobs(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        # All samples of Ethernet by time: many batches, and state that later packets need.
        cls.large = os.path.join(cls.folder.name, "large.pcap")
        parts = [path for path in SAMPLES if run("save", "--format", "pcap", path, cls.large)[0] == 0]
        ethernet = [path for path in parts
                    if b'"media":"Ethernet"' in run("decode", "--format", "json", "-c", "1", path)[1]]
        status, _, said = run("save", "--format", "pcap", "--merge", *ethernet, cls.large)
        assert status == 0, said

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def same(self, *words):
        one = run(*words, "--jobs", "1")
        for jobs in ("2", "5"):
            more = run(*words, "--jobs", jobs)
            self.assertEqual(more[0], one[0], words)
            self.assertEqual(more[2], one[2], words)
            self.assertTrue(more[1] == one[1], f"{words}: another output with {jobs} jobs")
        return one[1]

    def test_every_sample_in_every_format(self):
        for path in ALONE:
            self.same("decode", path)
            self.same("decode", "--format", "json", "--keys", "-x", "--modern", "--reassemble", path)

    def test_forms_and_choices_of_many_packets(self):
        for words in (["--format", "text"], ["--ranges", "--keys"], ["--format", "json", "--keys"], ["--packets", "7-900,1200-"],
                      ["-Y", "tcp.port == 80 or dns", "-t", "dd"], ["-c", "700"], ["-f", "udp"], ["--only", "dns,http,tls"],
                      ["--prefix-file", "-x"], ["--prefix-file", "--format", "json"]):
            self.assertGreater(len(self.same("decode", *words, self.large)), 10000)
        self.same("decode", "--prefix-file", self.large, SAMPLES[0], self.large)
        self.same("decode", "--prefix-file", "--merge", self.large, SAMPLES[0])

    def test_hits(self):
        for words in (["--all"], ["--hits"], ["--all", "--format", "json"]):
            self.assertGreater(len(self.same("find", *words, self.large, "Source")), 2)

    def test_lists(self):
        for words in ([], ["--format", "json"], ["--format", "csv", "-t", "i"], ["--color", "always", "--prefix-file"], ["--wide"],
                      ["-Y", "tcp or dns", "-t", "dd"], ["--packets", "7-900,1200-", "--modern", "--reassemble"], ["-c", "700"]):
            self.assertGreater(len(self.same("list", *words, self.large)), 10000)
        self.same("list", "--prefix-file", self.large, SAMPLES[0], self.large)
        for path in ALONE:
            self.same("list", path)

    def test_records_that_stand_in_the_file(self):
        """Of capture buffer files records are handed on, not bytes that are kept."""
        buffer = os.path.join(self.folder.name, "large.bfr")
        self.assertEqual(run("save", "--format", "bfr", self.large, buffer)[0], 0)
        for words in (["list"], ["list", "--prefix-file"], ["decode"], ["fields", "-e", "frame.summary"]):
            self.assertGreater(len(self.same(*words, buffer)), 10000)
        self.same("list", "--merge", self.large, buffer)

    def test_packets_of_more_text_than_is_held(self):
        """Messages of STUN with 13,000 empty attributes: 33 buffers of 64 KB do not hold the text of one."""
        attributes = struct.pack(">HH", 0x8022, 0) * 13000
        message = struct.pack(">HHI12x", 1, len(attributes), 0x2112A442) + attributes
        datagram = struct.pack(">HHHH", 3478, 3478, 8 + len(message), 0) + message
        packet = struct.pack(">BBHHHBBH4s4s", 0x45, 0, 20 + len(datagram), 0, 0, 64, 17, 0, b"\n\0\0\1", b"\n\0\0\2") + datagram
        frame = bytes(12) + b"\x08\0" + packet
        path = os.path.join(self.folder.name, "long.pcap")
        with open(path, "wb") as file:
            file.write(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, 1))
            for second in range(12):
                file.write(struct.pack("<IIII", second, 0, len(frame), len(frame)) + frame)
        self.assertGreater(len(self.same("decode", "--format", "json", "--keys", path)), 12 * 33 * 65536)
        self.same("decode", path)

    def test_columns_of_values(self):
        """Of lines, of headers, summaries and protocols, alone and together: each asks the state in another order."""
        for words in (["ip.src", "dns.qry.name"], ["frame.number", "frame.time"], ["frame.source", "frame.summary"],
                      ["frame.protocols", "udp.srcport"], ["frame.summary", "tls", "quic", "frame.protocols", "frame.protocol"]):
            keys = [word for key in words for word in ("-e", key)]
            self.assertGreater(len(self.same("fields", *keys, self.large)), 5000)
            self.same("fields", *keys, "--format", "json", "--modern", "--reassemble", "-Y", "tcp or quic", "--prefix-file", self.large)
        self.same("fields", "-e", "frame.summary", "-e", "ip.src", self.large, SAMPLES[0], self.large)

    def test_commands_of_one_thread_take_the_option(self):
        for words in (["stat", "tcp"], ["stat", "values", "ip.src"]):
            self.assertGreater(len(self.same(*words, self.large)), 200)
        self.assertGreater(len(self.same("save", "--format", "pcap", self.large, "-")), 10000)

    def test_documents(self):
        for words in ([], ["--packets", "7-900,1200-"], ["-Y", "dns"], ["-c", "700"]):
            self.assertGreater(len(self.same("xml", *words, self.large, SAMPLES[0], self.large, "-")), 10000)
        out = os.path.join(self.folder.name, "packets.xml")
        for jobs in ("1", "3"):
            self.assertEqual(run("xml", "--jobs", jobs, self.large, out), (0, b"", b""))
            with open(out, "rb") as file:
                self.assertEqual(file.read(), run("xml", "--jobs", "1", self.large, "-")[1])

    def test_lines_have_their_bytes_with_and_without_keys(self):
        """The listing reads headers once more, which leaves the lines' ranges alone."""
        import json
        plain = run("decode", "--format", "json", self.large)[1].splitlines()
        keyed = run("decode", "--format", "json", "--keys", "--jobs", "1", self.large)[1].splitlines()
        for a, b in zip(plain, keyed, strict=True):
            a, b = json.loads(a)["lines"][0], json.loads(b)["lines"][0]
            self.assertEqual((a["offset"], a["length"]), (b["offset"], b["length"]))

    def test_input_that_is_waited_for_is_shown(self):
        with open(self.large, "rb") as file:
            data = file.read()
        half = len(data) // 2
        with subprocess.Popen([QXVIEW, "decode", "--jobs", "3", "-"], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
            os.set_blocking(process.stdout.fileno(), False)
            shown = b""

            def read(until):
                nonlocal shown
                end = time.monotonic() + 60
                while not until() and time.monotonic() < end:
                    piece = process.stdout.read()
                    if piece:
                        shown += piece
                    else:
                        time.sleep(0.01)

            import threading
            feeder = threading.Thread(target=lambda: (process.stdin.write(data[:half]), process.stdin.flush()))
            feeder.start()
            expected = run("decode", "--jobs", "1", "-", input=data)[1]
            # What half the input holds, but for the packet that it ends in.
            whole = expected.count(b"\nPacket ", 0, len(expected)) // 4
            read(lambda: shown.count(b"\nPacket ") > whole and not feeder.is_alive())
            self.assertGreater(shown.count(b"\nPacket "), whole)
            os.set_blocking(process.stdout.fileno(), True)
            feeder.join()
            rest = threading.Thread(target=lambda: (process.stdin.write(data[half:]), process.stdin.close()))
            rest.start()
            shown += process.stdout.read()
            rest.join()
        self.assertTrue(shown == expected)

    @unittest.skipUnless(sys.platform.startswith("linux"), "no limits")
    @unittest.skipIf("TSAN_OPTIONS" in os.environ, "the sanitizer needs more addresses than are left")
    def test_where_no_thread_starts_one_decodes(self):
        import resource

        def limit():   # a thread's stack is larger than what there is
            resource.setrlimit(resource.RLIMIT_STACK, (4 << 30, resource.RLIM_INFINITY))
            resource.setrlimit(resource.RLIMIT_AS, (3 << 30, 3 << 30))
        for words in (["decode", "--format", "text"], ["decode", "--prefix-file"], ["find", "--all"], ["list"], ["fields", "-e", "ip.src"]):
            text = ["Source"] if words[0] == "find" else []
            one = run(*words, "--jobs", "1", self.large, *text)
            self.assertEqual(run(*words, "--jobs", "3", self.large, *text, preexec_fn=limit), one, words)

    def test_output_that_cannot_be_written_is_told(self):
        if not os.path.exists("/dev/full"):
            self.skipTest("there is no full device")
        with open("/dev/full", "wb") as full:
            result = subprocess.run([QXVIEW, "decode", "--jobs", "3", self.large], stdout=full, stderr=subprocess.PIPE,
                                    timeout=60)
        self.assertEqual(result.returncode, 3)
        self.assertIn(b"standard output: No space left", result.stderr)
        with subprocess.Popen([QXVIEW, "decode", "--jobs", "3", self.large], stdout=subprocess.PIPE) as process:
            process.stdout.read(1000)
            process.stdout.close()
            self.assertIn(process.wait(60), (-13, 0, 141))


if __name__ == "__main__":
    unittest.main()
