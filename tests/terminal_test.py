#!/usr/bin/env python3
"""A person at the keyboard: live input is shown as it comes, Ctrl-C and its kin end the input and leave whole files, the
progress is shown and goes away, and no bytes of a packet or a name reach the terminal as a command."""
import fcntl
import glob
import os
import pty
import re
import select
import signal
import shutil
import struct
import subprocess
import sys
import tempfile
import termios
import time
import tty
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
if os.environ.get("QXVIEW_PLATFORM") == "windows":
    sys.exit(0)   # terminals and signals of POSIX
LAN = os.path.join(ROOT, "samples", "lan.pcap")
HEADER = struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 262144, 1)
SIGNALS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)
for name in SIGNALS:
    if signal.getsignal(name) == signal.SIG_IGN:   # as a run in the background inherits it, and would hand it on
        signal.signal(name, signal.SIG_DFL)


def packet(data):
    return struct.pack("<IIII", 1, 0, len(data), len(data)) + data


def frame(data=b"", ethertype=b"\x88\xb5"):
    return bytes(12) + ethertype + data.ljust(46, b"\0")


def query(name):
    """An Ethernet frame with a DNS query for a name of one label."""
    payload = bytes.fromhex("123401000001000000000000") + bytes([len(name)]) + name + b"\0\0\1\0\1"
    head = struct.pack(">HHHHHH", 0x4500, 28 + len(payload), 1, 0, 0x4011, 0) + bytes([10, 0, 0, 1, 10, 0, 0, 2])
    total = sum(struct.unpack(">10H", head))
    head = head[:10] + struct.pack(">H", ~(total + (total >> 16)) & 0xFFFF) + head[12:]
    return frame(head + struct.pack(">HHHH", 53, 53, 8 + len(payload), 0) + payload, b"\x08\0")


def read_until(file, done, seconds=20):
    """What comes from a descriptor until `done` of it is true; fails when it is not in time."""
    seen = b""
    end = time.monotonic() + seconds
    while not done(seen):
        ready, _, _ = select.select([file], [], [], max(0, end - time.monotonic()))
        if not ready:
            raise AssertionError(f"not in time, only {seen[-500:]!r}")
        try:
            got = os.read(file, 65536)
        except OSError:   # a terminal whose last user has gone
            got = b""
        if not got:
            raise AssertionError(f"ended with {seen[-500:]!r}")
        seen += got
    return seen


def wait_for(condition, seconds=20):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            raise AssertionError("not in time")
        time.sleep(0.01)


class Terminal(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.environment = {**os.environ, "XDG_CONFIG_HOME": self.folder, "TERM": "xterm"}
        self.environment.pop("NO_COLOR", None)

    def start(self, *arguments, **files):
        started = subprocess.Popen([QXVIEW, *arguments], env=self.environment, **files)
        self.addCleanup(started.wait)
        self.addCleanup(started.kill)
        for pipe in (started.stdin, started.stdout, started.stderr):
            if pipe:
                self.addCleanup(pipe.close)
        return started

    def open_terminal(self):
        master, slave = pty.openpty()
        for file in (master, slave):
            self.addCleanup(lambda file=file: os.close(file))
        tty.setraw(slave)
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 200, 0, 0))
        return master, slave


class Live(Terminal):
    def test_packets_are_shown_when_no_more_are_there(self):
        for command, shown in (("list", b"     2  "), ("decode", b"Packet 2"), ("print", b"Packet 2"),
                               ("xml", b'Number="2"')):
            arguments = [command, "-", "-"] if command == "xml" else [command, "-"]
            running = self.start(*arguments, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
            running.stdin.write(HEADER + 2 * packet(frame()) + packet(frame())[:20])
            running.stdin.flush()
            read_until(running.stdout.fileno(), lambda seen, shown=shown: shown in seen)
        master, slave = self.open_terminal()   # which does not wait for a screenful either
        running = self.start("list", "-", stdin=subprocess.PIPE, stdout=slave)
        running.stdin.write(HEADER + packet(query(b"needle")))
        running.stdin.flush()
        read_until(master, lambda seen: b"needle" in seen)

    def test_signals_end_the_input(self):
        for number in SIGNALS:
            for command, out in (("save", "out.bfr"), ("xml", "out.xml"), ("print", "out.txt")):
                out = os.path.join(self.folder, out)
                arguments = [command, "-o", out, "-"] if command == "print" else [command, "-", out]
                running = self.start(*arguments, stdin=subprocess.PIPE, stderr=subprocess.PIPE)
                running.stdin.write(HEADER + 3 * packet(frame()) + packet(frame())[:20])
                running.stdin.flush()
                wait_for(lambda out=out: glob.glob(out + "*"))
                time.sleep(0.05)
                running.send_signal(number)
                self.assertEqual((running.wait(20), running.stderr.read()), (-number, b""), command)
                self.assertEqual(glob.glob(out + "*"), [out], "the file is in its place and alone")
                with open(out, "rb") as file:
                    data = file.read()
                self.assertTrue(data.endswith(b"</VantrellPacketCapture>\r\n") or command != "xml")
                self.assertEqual(data.count(b"Packet 3"), command == "print")
                if command == "save":
                    listed = subprocess.run([QXVIEW, "list", out], capture_output=True, check=False)
                    self.assertEqual((listed.returncode, listed.stdout.count(b"\n")), (0, 3))
                os.remove(out)
        ignoring = self.start("list", "-", stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        ignoring.stdin.write(HEADER + packet(frame()))
        ignoring.stdin.flush()
        read_until(ignoring.stdout.fileno(), lambda seen: b"\n" in seen)
        ignoring.send_signal(signal.SIGHUP)
        self.assertEqual((ignoring.communicate()[0], ignoring.returncode), (b"", 0))

    def test_a_slow_reader_gets_all_and_a_second_signal_ends_at_once(self):
        capture = os.path.join(self.folder, "long.pcap")
        with open(capture, "wb") as file:
            file.write(HEADER + 40000 * packet(frame()))
        running = self.start("list", capture, stdout=subprocess.PIPE)
        select.select([running.stdout], [], [], 20)
        time.sleep(0.2)   # it waits for its reader
        running.send_signal(signal.SIGTERM)
        time.sleep(0.1)
        rows = running.stdout.read().split(b"\n")
        self.assertEqual(running.wait(20), -signal.SIGTERM)
        self.assertEqual(rows.pop(), b"", "the last row is whole")
        self.assertEqual([int(row.split()[0]) for row in rows], list(range(1, len(rows) + 1)))
        self.assertTrue(1000 < len(rows) < 40000, len(rows))
        fifo, out = os.path.join(self.folder, "fifo"), os.path.join(self.folder, "out.txt")
        os.mkfifo(fifo)
        for arguments in (["list", capture], ["list", fifo], ["print", "-o", out, "-"]):
            running = self.start(*arguments, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
            if arguments[0] == "print":   # while it is stopped both signals come before it has done anything
                running.stdin.write(HEADER)
                running.stdin.flush()
                wait_for(lambda: glob.glob(out + "*"))
                running.send_signal(signal.SIGSTOP)
            else:
                time.sleep(0.3)
            running.send_signal(signal.SIGINT)
            running.send_signal(signal.SIGHUP)
            running.send_signal(signal.SIGCONT)
            self.assertIn(running.wait(5), (-signal.SIGINT, -signal.SIGHUP), arguments)
        self.assertEqual(glob.glob(out + "*"), [])

    def test_control_c_at_a_terminal_leaves_it_as_it_was(self):
        master, slave = self.open_terminal()
        settings = termios.tcgetattr(slave)
        settings[1] |= termios.OPOST | termios.ONLCR
        settings[3] |= termios.ISIG
        termios.tcsetattr(slave, termios.TCSANOW, settings)
        running = self.start("decode", "-", stdin=subprocess.PIPE, stdout=slave, stderr=slave, start_new_session=True,
                             preexec_fn=lambda: fcntl.ioctl(1, termios.TIOCSCTTY, 0))
        running.stdin.write(HEADER + packet(frame()))
        running.stdin.flush()
        read_until(master, lambda seen: b"\x1b[0m" in seen)
        os.write(master, b"\x03")
        self.assertEqual(running.wait(20), -signal.SIGINT)
        os.write(slave, b"done")
        self.assertNotRegex(read_until(master, lambda seen: b"done" in seen), rb"\x1b\[[1-9]|qxview:")


class Screen(Terminal):
    """What a person sees; the last escape sequence and carriage return leave the line as it is read here."""

    def test_progress_is_shown_where_the_data_do_not_go(self):
        capture = os.path.join(self.folder, "long.pcap")
        with open(capture, "wb") as file:
            file.write(HEADER + 3000 * packet(bytes(60000)))
        fifo = os.path.join(self.folder, "fifo")
        os.mkfifo(fifo)
        for arguments, pattern in ((["xml", capture, fifo], rb"\r1?\d%  [\d.]+ [kM]?B/s  \d+:\d\d left"),
                                   (["print", "-o", fifo, capture], rb"\r\d+%")):
            master, slave = self.open_terminal()
            running = self.start(*arguments, stdout=slave, stderr=slave)
            with open(fifo, "rb", buffering=0) as reader:   # a megabyte or so a second
                seen, end = b"", time.monotonic() + 20
                while not re.search(pattern, seen):
                    self.assertTrue(time.monotonic() < end and running.poll() is None, seen)
                    reader.read(65536)
                    time.sleep(0.03)
                    if select.select([master], [], [], 0)[0]:
                        seen += os.read(master, 65536)
                running.send_signal(signal.SIGINT)
                while reader.read(1 << 20):
                    pass
            running.wait(20)
            os.write(slave, b"done")
            self.assertRegex(read_until(master, lambda seen: b"done" in seen), rb"\r +\rdone$")

    def test_no_progress_on_the_data_and_none_left_before_a_result(self):
        for arguments, shown in ((["list", "-"], False), (["find", "-", "needle"], True)):
            master, slave = self.open_terminal()
            running = self.start(*arguments, stdin=subprocess.PIPE, stdout=slave, stderr=slave)
            running.stdin.write(HEADER)
            seen, end = b"", time.monotonic() + (20 if shown else 1)
            while b"kB" not in seen and time.monotonic() < end:
                running.stdin.write(20 * packet(frame()))
                running.stdin.flush()
                while select.select([master], [], [], 0.05)[0]:
                    seen += os.read(master, 65536)
            running.stdin.write(packet(query(b"needle")))
            running.stdin.close()
            running.wait(20)
            os.write(slave, b"done")
            seen += read_until(master, lambda seen: b"done" in seen)
            self.assertEqual(b"kB" in seen, shown, (arguments, seen[:300]))
            result = seen.split(b"\r")[-1]
            self.assertEqual((b"needle" in result, b"kB" in result), (True, False))

    def test_nothing_reaches_a_terminal_as_a_command(self):
        hostile = b"\x1b]0;owned\x07\x9b2J\xe9"
        capture = os.path.join(self.folder, "c.pcap")
        with open(capture, "wb") as file:
            file.write(HEADER + packet(query(hostile)))
        name = os.path.join(os.fsencode(self.folder), b"\x1b[31mr\xc3\xa9d\xff")
        with open(name, "wb") as file:
            file.write(b"VantrellPktBufferVersion=\x1b[2J\x9b\x07" + bytes(40))
        for arguments, shown in ((["print", capture], b"\\x1B]0;owned\\x07"),
                                 (["decode", "--format", "text", capture], b"\\x1B]0;owned\\x07"),
                                 (["print", "-o", "/dev/stdout", capture], b"\\x1B]0;owned\\x07"),
                                 (["list", name], b"/\\x1B[31mr\xc3\xa9d\\xFF: packet 1, byte 25: capture buffer version"
                                                  b" \".[2J..\" is not known")):
            master, slave = self.open_terminal()
            running = self.start(*arguments, stdout=slave, stderr=slave)
            running.wait(20)
            os.write(slave, b"done")
            seen = read_until(master, lambda seen: b"done" in seen)
            self.assertIn(shown, seen)
            self.assertNotRegex(seen, rb"[\x00-\x09\x0b-\x1f\x7f]|\xc2[\x80-\x9f]")
            plain = subprocess.run([QXVIEW, *arguments], capture_output=True, check=False, env=self.environment)
            self.assertIn(b"\x1b]0;owned\x07\x9b2J\xe9" if shown.endswith(b"x07") else b"\x1b[31mr\xc3\xa9d\xff",
                          plain.stdout + plain.stderr)


if __name__ == "__main__":
    unittest.main()
