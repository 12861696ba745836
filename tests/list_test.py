#!/usr/bin/env python3
"""`qxview list`: its columns, the four forms of time, names of addresses, and what it shows of hostile bytes."""
import os
import re
import struct
import subprocess
import tempfile
import unittest

try:
    import fcntl
    import termios
except ImportError:   # Windows
    pass

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
WINDOWS = os.environ.get("QXVIEW_PLATFORM") == "windows"   # the program runs under Wine
START = 1700000000   # 2023-11-14 22:13:20 UTC


def checksum(data):
    total = sum(struct.unpack(f">{len(data) // 2}H", data))
    while total > 0xFFFF:
        total = (total & 0xFFFF) + (total >> 16)
    return ~total & 0xFFFF


def udp(source, destination, payload, addresses=("0a000001", "0a000002")):
    """An Ethernet frame with a datagram between these ports."""
    data = struct.pack(">HHHH", source, destination, 8 + len(payload), 0) + payload
    head = bytes.fromhex("4500") + struct.pack(">H", 20 + len(data)) + bytes.fromhex("0001000040110000")
    head += bytes.fromhex("".join(addresses))
    head = head[:10] + struct.pack(">H", checksum(head)) + head[12:]
    return bytes.fromhex("0200000000010200000000020800") + head + data


ARP = bytes.fromhex("ffffffffffff00112233445508060001080006040001001122334455c00002010000000000000a000001")
QUERY = bytes.fromhex("123401000001000000000000037777770765786d706c6500") + b"\x00\x01\x00\x01"
FRAMES = [(0, ARP), (250000, udp(40000, 53, QUERY)), (1500000, udp(9999, 9998, b"hello")),
          (1400000, udp(5060, 5060, b"OPTIONS sip:\x1b[31mred\x9f SIP/2.0\r\n\r\n"))]


def write_capture(path, frames=None):
    with open(path, "wb") as file:
        file.write(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, 1))
        for micro, frame in FRAMES if frames is None else frames:
            file.write(struct.pack("<IIII", START + micro // 1000000, micro % 1000000, len(frame), len(frame)) + frame)


class List(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.capture = os.path.join(self.folder.name, "a.pcap")
        write_capture(self.capture)

    def list(self, *options, status=0, **environment):
        ran = subprocess.run([QXVIEW, "list", *options, self.capture], capture_output=True, timeout=60, check=False,
                             env={**os.environ, "XDG_CONFIG_HOME": self.folder.name, **environment})
        self.assertEqual(ran.returncode, status, ran.stderr)
        return ran.stdout.decode("utf-8").split("\n")[:-1]

    def test_columns(self):
        self.assertEqual(self.list(), [
            "     1      0.000000  00:11:22:33:44:55  FF:FF:FF:FF:FF:FF     42  ARP: Request, "
            "Source 192.0.2.1, Target 10.0.0.1",
            "     2      0.250000  10.0.0.1           10.0.0.2              70  DNS Query: Standard Query - www.exmple, "
            "QU=1 AN=0 AU=0 AD=0",
            "     3      1.500000  10.0.0.1           10.0.0.2              47  UDP, Port: 9999 -> 9998, Length: 5",
            "     4      1.400000  10.0.0.1           10.0.0.2              75  SIP OPTIONS sip:\\x1B[31mred\u0178"])

    @unittest.skipIf(WINDOWS, "a pseudo-terminal of this system")
    def test_a_terminal_is_given_a_table_of_its_width(self):
        ports_out, ports_back = bytes.fromhex("13880050"), bytes.fromhex("00501388")

        def segment(flags, window, options=b"", ports=ports_out):
            return (ports + bytes(8) + bytes([(20 + len(options)) // 4 << 4, flags]) + struct.pack(">HI", window, 0) +
                    options)

        def packet(data, addresses=("0a000001", "0a000002")):
            head = bytes.fromhex("4500") + struct.pack(">H", 20 + len(data)) + bytes.fromhex("0001000040060000")
            head += bytes.fromhex("".join(addresses))
            sums = checksum(head[12:] + struct.pack(">HH", 6, len(data)) + data)
            head = head[:10] + struct.pack(">H", checksum(head)) + head[12:]
            data = data[:16] + struct.pack(">H", sums) + data[18:]
            return bytes.fromhex("0200000000010200000000020800") + head + data

        back, scale = ("0a000002", "0a000001"), bytes.fromhex("03030701")
        frames = FRAMES + [(2000000, packet(segment(2, 1000, scale))),
                           (2000001, packet(segment(0x12, 1000, scale, ports_back), back)),
                           (2000002, packet(segment(0x10, 500))), (2000003, packet(segment(4, 0))),
                           (2000004, bytes.fromhex("020000000001020000000002") + b"\x88\x5a" + bytes(40))]
        write_capture(self.capture, frames)

        def table(columns, *options, **environment):
            master, slave = os.openpty()
            fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 50, columns, 0, 0))
            environment = {**os.environ, "XDG_CONFIG_HOME": self.folder.name, "TERM": "xterm-256color", **environment}
            environment.pop("COLUMNS", None)
            with subprocess.Popen([QXVIEW, "list", *options, self.capture], stdout=slave, env=environment):
                os.close(slave)
                data = b""
                try:
                    while piece := os.read(master, 65536):
                        data += piece
                except OSError:   # the other side is closed
                    pass
            os.close(master)
            return data.decode().replace("\r\n", "\n").splitlines()

        for columns in (60, 80, 200):
            colored = table(columns)
            rows = table(columns, NO_COLOR="1")
            self.assertEqual(rows, [re.sub(r"\x1b\[[0-9;]*m", "", row) for row in colored])
            self.assertLessEqual(max(map(len, rows)), columns)
            starts = {row.index(word) for row, word in zip(rows, ("Proto", "ARP", "DNS", "UDP", "SIP", "TCP"))}
            self.assertEqual(len(starts), 1, rows)
        self.assertIn("\x1b[1;38;5;160mRST", colored[8], "trouble")
        self.assertRegex(rows[7], r"Window: 64000,")
        self.assertRegex(rows[5], r"Window: 1000,")
        self.assertEqual(rows[1].split()[2:7], ["00:11:22:33:44:55", "FF:FF:FF:FF:FF:FF", "ARP", "42", "Request,"])
        self.assertEqual(len(table(40, "--wide")[7]), len(table(200, "--wide")[7]))
        self.assertEqual(self.list("--wide")[1:], table(40, "--wide", "--color=never")[1:])
        plain = self.list()
        self.assertEqual([re.sub(r"\x1b\[[0-9;]*m", "", row) for row in self.list("--color=always")], plain)

    def test_times(self):
        def times(form, **environment):
            return [row[8:].split("  ")[0].strip() or row[8:20].strip() for row in self.list("-t", form, **environment)]

        self.assertEqual([row.split()[1] for row in self.list("-t", "d")], ["0.000000", "0.250000", "1.250000", "-0.100000"])
        self.assertEqual([row.split()[1] for row in self.list("-t", "d", "--packets", "3")], ["1.250000"],
                         "since the packet before, listed or not")
        self.assertEqual([row.split()[1] for row in self.list("--packets", "3-")], ["1.500000", "1.400000"])
        self.assertEqual(times("u")[2], "2023-11-14 22:13:21.500000")
        self.assertEqual(times("a", TZ="XYZ-5:30")[2], "2023-11-15 03:43:21.500000")
        self.list("-t", "x", status=2)

    def test_names(self):
        names = os.path.join(self.folder.name, "names.txt")
        with open(names, "w", encoding="utf-8") as file:
            file.write("10.0.0.1  gateway # here\n00:11:22:33:44:55  printer\n")
        rows = self.list("--set", "AliasFile=" + names)
        self.assertRegex(rows[0], r"0\.000000  printer            FF:FF:FF:FF:FF:FF ")
        self.assertRegex(rows[1], r"0\.250000  gateway            10\.0\.0\.2 ")

    def test_selection(self):
        self.assertEqual([row.split()[0] for row in self.list("--packets", "1,3-")], ["1", "3", "4"])
        self.assertEqual([row.split()[0] for row in self.list("-c", "2")], ["1", "2"])
        if not WINDOWS:
            self.assertEqual([row.split()[0] for row in self.list("-f", "port 53")], ["2"])
        rows = self.list("-d", "udp:9999=Nothing", status=2)
        self.assertEqual(rows, [])
        self.assertIn("FTP Data ", self.list("-d", "udp:9999=FTP Data")[2])

    def test_learning_goes_on_over_packets_that_are_not_listed(self):
        rtp = bytes.fromhex("8000000100000002000000a1") + bytes(range(0x60, 0x80))
        write_capture(self.capture, [(0, udp(40000, 40002, rtp)), (1, udp(40000, 40004, b"short"))])
        whole = self.list()
        self.assertIn("RTP Payload", whole[0])
        self.assertEqual(self.list("--packets", "2"), whole[1:])

    def test_any_bytes_are_lines_of_text(self):
        noise = bytes(range(256))
        frames = [(i, bytes.fromhex("020000000001020000000002") + noise[i:i + 60]) for i in range(190)]
        write_capture(self.capture, frames)
        rows = self.list()
        self.assertEqual(len(rows), 190)
        for row in rows:
            self.assertFalse(re.search(r"[\x00-\x1f\x7f]", row), row)

    def test_damage_keeps_what_was_read(self):
        with open(self.capture, "ab") as file:
            file.write(b"\1\2\3")
        self.assertEqual(len(self.list(status=3)), 4)


if __name__ == "__main__":
    unittest.main()
