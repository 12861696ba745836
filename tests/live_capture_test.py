#!/usr/bin/env python3
"""Live packets through the command line, between two network namespaces. Takes root, or user namespaces that anybody may make."""
import os
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
RATE, SECONDS = 10_000, 10
SENDER = """
import socket, sys, time
count, rate = int(sys.argv[1]), int(sys.argv[2])
out = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
begin, sent = time.monotonic(), 0
while sent < count:
    due = min(count, int((time.monotonic() - begin) * rate) + 1)
    for number in range(sent, due):
        out.sendto(number.to_bytes(4, "big") + bytes(200), ("10.9.0.2", 9999))
    sent = due
    time.sleep(0.002)
"""


def may_divide():
    try:
        subprocess.run(["unshare", "-rn", "ip", "link"], check=True, capture_output=True)
    except (OSError, subprocess.CalledProcessError):
        return False
    return True


def frames_of(path):
    """Bytes of the frames of a pcap or pcapng file that has to end behind one."""
    with open(path, "rb") as file:
        data = file.read()
    frames = []
    if data[:4] == b"\x0a\x0d\x0d\x0a":
        at = 0
        while at < len(data):
            kind, length = struct.unpack_from("<II", data, at)
            assert struct.unpack_from("<I", data, at + length - 4)[0] == length
            if kind == 6:
                frames.append(data[at + 28:at + 28 + struct.unpack_from("<I", data, at + 20)[0]])
            at += length
    else:
        at = 24
        while at < len(data):
            captured = struct.unpack_from("<I", data, at + 8)[0]
            frames.append(data[at + 16:at + 16 + captured])
            at += 16 + captured
    assert at == len(data), path
    return frames


def numbers_of(frames):
    return [int.from_bytes(frame[42:46], "big") for frame in frames]


def heed_signals():
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, signal.SIG_DFL)


@unittest.skipUnless(sys.platform == "linux" and os.geteuid() == 0 and may_divide(), "no network namespaces here")
class LiveCaptureTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.ends = [subprocess.Popen(["unshare", "-n", "sleep", "600"]) for _ in range(2)]
        time.sleep(0.3)
        left, right = (str(end.pid) for end in cls.ends)
        commands = [(left, f"link add va type veth peer name vb netns {right}"), (left, "link set va up"), (right, "link set vb up"),
                    (left, "addr add 10.9.0.1/24 dev va"), (right, "addr add 10.9.0.2/24 dev vb"),
                    (left, "neigh add 10.9.0.2 lladdr 02:00:00:00:00:02 dev va")]
        for end, words in commands:
            subprocess.run(["nsenter", "-t", end, "-n", "ip", *words.split()], check=True)

    @classmethod
    def tearDownClass(cls):
        for end in cls.ends:
            end.kill()
            end.wait()

    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.out = os.path.join(self.folder, "live.pcapng")

    def within(self, end, *words):
        return ["nsenter", "-t", str(self.ends[end].pid), "-n", *words]

    def start(self, *arguments, through=()):
        """A capture that has begun."""
        # Whoever runs the tests in the background may ignore signals, and what it starts would go on ignoring them.
        process = subprocess.Popen(self.within(1, *through, QXVIEW, "capture", "-i", "vb", *arguments), stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, preexec_fn=heed_signals)
        self.addCleanup(process.kill)
        first = process.stderr.readline()
        self.assertIn(b"capturing on", first)
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.stdout.close)
        return process

    def send(self, count, rate=RATE):
        subprocess.run(self.within(0, sys.executable, "-c", SENDER, str(count), str(rate)), check=True)

    def end(self, process, number=signal.SIGTERM, status=0):
        process.send_signal(number)
        shown, told = process.communicate(timeout=20)
        self.assertEqual(process.returncode, status, told)
        return shown.decode(), told.decode()

    def test_ten_thousand_packets_a_second_are_saved_whole(self):
        process = self.start("-w", self.out, "-f", "udp port 9999")
        self.send(RATE * SECONDS)
        _, told = self.end(process)
        self.assertIn(f"vb: {RATE * SECONDS} packets captured, 0 dropped by the kernel", told)
        self.assertEqual(numbers_of(frames_of(self.out)), list(range(RATE * SECONDS)))

    def test_a_signal_keeps_what_has_arrived(self):
        for number, name in ((signal.SIGINT, "a.pcap"), (signal.SIGTERM, "b.pcapng"), (signal.SIGHUP, "c.bfr")):
            path = os.path.join(self.folder, name)
            process = self.start("-w", path, "-f", "udp port 9999")
            self.send(500)
            self.end(process, number)
            shown = subprocess.run([QXVIEW, "list", path], capture_output=True, check=True).stdout
            self.assertEqual(shown.count(b"\n"), 500, name)
        self.assertEqual(numbers_of(frames_of(os.path.join(self.folder, "a.pcap"))), list(range(500)))

    def test_a_ring_keeps_the_newest_files_each_of_them_whole_at_any_moment(self):
        for ending in ("pcap", "pcapng", "bfr"):
            path = os.path.join(self.folder, "ring." + ending)
            process = self.start("-w", path, "--ring-size", "100k", "--ring-files", "3", "-f", "udp port 9999")
            sender = subprocess.Popen(self.within(0, sys.executable, "-c", SENDER, "4000", "2000"))
            while sender.poll() is None:
                time.sleep(0.2)
                for name in os.listdir(self.folder):
                    copy = self.out + ".copy"
                    try:
                        shutil.copy(os.path.join(self.folder, name), copy)
                    except FileNotFoundError:
                        continue
                    self.assertLessEqual(os.path.getsize(copy), 100_000)
                    result = subprocess.run([QXVIEW, "list", copy], capture_output=True, check=False)
                    self.assertEqual((result.returncode, result.stderr), (0, b""), name)
                    os.remove(copy)
            self.end(process)
            names = sorted(os.listdir(self.folder))
            self.assertEqual(len(names), 3, names)
            for name in names:
                self.assertRegex(name, r"^ring_000\d\d_\d{14}\." + ending + "$")
            shown = b"".join(subprocess.run([QXVIEW, "list", os.path.join(self.folder, name)], capture_output=True,
                                            check=True).stdout for name in names)
            self.assertGreater(shown.count(b"\n"), 500)
            if ending != "bfr":
                numbers = [number for name in names for number in numbers_of(frames_of(os.path.join(self.folder, name)))]
                self.assertEqual(numbers, list(range(numbers[0], 4000)))
            for name in names:
                os.remove(os.path.join(self.folder, name))

    def test_a_ring_by_time_begins_a_file_with_the_packet_behind_it(self):
        process = self.start("-w", self.out, "--ring-time", "1", "-f", "udp port 9999")
        self.send(25, 10)
        self.end(process)
        counts = [len(frames_of(os.path.join(self.folder, name))) for name in sorted(os.listdir(self.folder))]
        self.assertEqual((len(counts), sum(counts)), (3, 25), counts)

    def test_every_command_takes_live_packets_and_they_can_be_saved_besides(self):
        process = self.start("-f", "udp port 9999", "-w", self.out, "list", "-t", "u", "-Y", "udp.length > 100", "-c", "3")
        self.send(5, 50)
        shown, told = process.communicate(timeout=20)
        self.assertEqual((process.returncode, len(shown.splitlines())), (0, 3), told)
        self.assertGreaterEqual(len(frames_of(self.out)), 3)
        for words, wanted in ((["decode", "--only", "udp"], b"Destination port: [9999]"), (["fields", "-e", "udp.dstport"], b"9999"),
                              (["stat", "conversations"], b"10.9.0.2"), (["find", "10.9.0.2"], b">"),
                              (["save", "--format", "pcap", "-"], b"\x4d\x3c\xb2\xa1")):
            process = self.start("-f", "udp port 9999", "-c", "20", *words)
            self.send(20, 400)
            shown, told = process.communicate(timeout=20)
            self.assertEqual(process.returncode, 0, told)
            self.assertIn(wanted, shown)

    def test_a_pipe_gets_packets_as_they_come_and_its_end_ends_the_capture(self):
        process = self.start("-f", "udp port 9999", "list")
        self.send(3, 50)
        time.sleep(0.5)
        self.assertEqual(len(os.read(process.stdout.fileno(), 65536).splitlines()), 3)
        process.stdout.close()
        self.send(200, 400)
        self.assertIn(process.wait(timeout=10), (0, -signal.SIGPIPE))

    def test_bounds_end_the_capture(self):
        begin = time.monotonic()
        process = self.start("-w", self.out, "--duration", "1")
        process.communicate(timeout=10)
        self.assertTrue(process.returncode == 0 and 0.9 < time.monotonic() - begin < 5)
        process = self.start("-w", "-", "-c", "7", "-s", "60", "-p", "-B", "2", "-f", "udp port 9999")
        self.send(20, 400)
        shown, _ = process.communicate(timeout=10)
        listed = subprocess.run([QXVIEW, "fields", "-e", "frame.captured", "--no-header", "-"], input=shown, capture_output=True,
                                check=True)
        self.assertEqual(listed.stdout.split(), [b"60"] * 7)

    def told(self, *words, through=()):
        result = subprocess.run(self.within(1, *through, QXVIEW, "capture", *words), capture_output=True, check=False)
        return result.returncode, result.stderr.decode()

    def test_what_is_wrong_is_told_with_what_to_do(self):
        weak = ("setpriv", "--bounding-set=-net_raw,-net_admin")
        status, text = self.told("-i", "vb", through=weak)
        self.assertTrue(status == 3 and "sudo setcap cap_net_raw,cap_net_admin+ep " + os.path.dirname(QXVIEW) in text, text)
        for words, status, wanted in (
                (["-i", "nothing"], 3, "nothing: there is no such interface; qxview capture --list-interfaces"),
                (["-i", "vb", "-f", "udp prot 9"], 2, "--filter udp prot 9: "),
                (["-i", "vb", "--ring-size", "100k"], 2, "needs -w FILE"),
                (["-i", "vb", "-w", self.out, "--ring-size", "12"], 2, "at least 1000"),
                (["-i", "vb", "-w", self.out + ".gz"], 2, "gzip"),
                (["-i", "vb", "list", "file.pcap"], 2, "\"file.pcap\": the packets come from vb"),
                (["-i", "vb", "-w", "/dev/full"], 3, "/dev/full: "),
                (["-i", "vb", "-w", self.folder + "/none/x.pcap"], 3, "none/x.pcap: ")):
            found, text = self.told(*words)
            self.assertTrue(found == status and wanted in text, (words, found, text))

    def test_a_full_disk_ends_the_capture_behind_a_whole_packet(self):
        process = self.start("-w", self.out, "-f", "udp port 9999", through=("prlimit", "--fsize=20000"))
        self.send(300, 2000)
        _, text = process.communicate(timeout=10)
        self.assertTrue(process.returncode == 3 and (self.out + ": ").encode() in text, text)
        self.assertLess(len(frames_of(self.out)), 100)

    def test_the_interfaces_are_listed(self):
        result = subprocess.run(self.within(1, QXVIEW, "capture", "-D"), capture_output=True, check=True)
        self.assertTrue(re.search(rb"^vb +up +10\.9\.0\.2", result.stdout, re.M), result.stdout)


if __name__ == "__main__":
    if os.geteuid() != 0 and may_divide():
        os.execvp("unshare", ["unshare", "-rn", sys.executable, *sys.argv])
    unittest.main()
