#!/usr/bin/env python3
"""What a capture is asked by the command line: filters, columns, statistics, streams, hits."""
import csv
import io
import json
import os
import struct
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
HTTP = os.path.join(ROOT, "samples", "http.pcap")
DNS = os.path.join(ROOT, "samples", "dns.pcap")


def tcp(source, destination, sequence, acknowledgement, flags, data=b"", window=1000):
    """An Ethernet frame with a segment between 10.0.0.1 and 10.0.0.2; port 80 is the second one's."""
    segment = struct.pack(">HHIIBBHHH", source, destination, sequence, acknowledgement, 0x50, flags, window, 0, 0) + data
    ends = [bytes([10, 0, 0, 1]), bytes([10, 0, 0, 2])]
    if source == 80:
        ends.reverse()
    head = struct.pack(">BBHHHBBH", 0x45, 0, 20 + len(segment), 1, 0, 64, 6, 0) + ends[0] + ends[1]
    return bytes.fromhex("0200000000010200000000020800") + head + segment


def datagram(source, destination, data, told=None, trailer=b""):
    """An Ethernet frame with a UDP datagram over IPv6 from ::1 to ::; its header tells `told` bytes."""
    return ipv6(17, struct.pack(">HHHH", source, destination, 8 + len(data) if told is None else told, 0) + data + trailer)


def ipv6(carried, data, trailer=b""):
    head = struct.pack(">IHBB", 6 << 28, len(data), carried, 64) + bytes(15) + b"\1" + bytes(16)
    return bytes.fromhex("02000000000102000000000286dd") + head + data + trailer


def write_times(path, frames):
    """(nanoseconds since 1970, frame), of which negative times are an interface's of its own that counts from -2^63 ns."""
    def block(kind, body):
        size = struct.pack("<I", 12 + len(body))
        return struct.pack("<I", kind) + size + body + size
    least = -2**63 // 10**9
    with open(path, "wb") as file:
        file.write(block(0x0A0D0D0A, struct.pack("<IHHq", 0x1A2B3C4D, 1, 0, -1)))
        for offset in (0, least):
            file.write(block(1, struct.pack("<HHI", 1, 0, 65535) + struct.pack("<HHB3xHHqHH", 9, 1, 9, 14, 8, offset, 0, 0)))
        for time, frame in frames:
            ticks = time if time >= 0 else time - least * 10**9
            head = struct.pack("<IIIII", time < 0, ticks >> 32, ticks & 0xFFFFFFFF, len(frame), len(frame))
            file.write(block(6, head + frame + bytes(-len(frame) % 4)))


def write_capture(path, frames):
    with open(path, "wb") as file:
        file.write(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, 1))
        for i, frame in enumerate(frames):
            file.write(struct.pack("<IIII", 1700000000, 1000 * i, len(frame), len(frame)) + frame)


class Questions(unittest.TestCase):
    def run_program(self, *words, status=0):
        ran = subprocess.run([QXVIEW, *words], capture_output=True, timeout=60, check=False)
        self.assertEqual(ran.returncode, status, ran.stderr)
        self.errors = ran.stderr.decode().replace("\r\n", "\n")
        return ran.stdout.decode()

    def rows(self, *words):
        return [json.loads(line) for line in self.run_program(*words, "--format", "json").splitlines()]

    def test_filters_choose_packets_in_every_command(self):
        every = self.rows("fields", DNS, "-e", "frame.number", "-e", "dns.id")
        wanted = [row["frame.number"][0] for row in every if row["dns.id"] == [43795]]
        where = ["-Y", "dns.id == 0xAB13"]
        self.assertEqual([row["frame.number"] for row in self.rows("list", DNS, *where)], wanted)
        self.assertEqual([row["packet"] for row in self.rows("decode", DNS, *where)], wanted)
        with tempfile.TemporaryDirectory() as folder:
            kept = os.path.join(folder, "kept.pcap")
            self.run_program("save", *where, DNS, kept)
            self.assertEqual(len(self.rows("list", kept)), len(wanted))
        self.assertEqual(len(self.rows("list", DNS, "-Y", "udp", "-c", "3")), 3)   # of those that it lets through
        self.run_program("list", DNS, "-Y", "dns.qry.nam == 3", status=2)
        self.assertIn("\n  dns.qry.nam == 3\n  ^^^^^^^^^^^\n", self.errors)

    def test_names_that_packets_may_tell_are_doubted_when_a_known_key_is_near(self):
        self.run_program("list", HTTP, "-Y", 'http.methd == "GET"')
        self.assertIn('note: "http.methd" is asked for as a name that packets may tell; the nearest known key is http.method\n', self.errors)
        self.assertEqual(self.errors.count("note"), 1)
        self.run_program("fields", HTTP, "-e", "http.methd")
        self.assertIn("http.methd", self.errors)
        self.run_program("stat", "values", "http.methd", HTTP)
        self.assertIn("http.methd", self.errors)
        self.run_program("list", HTTP, "-Y", "http.zzzzzz or http.method")
        self.assertEqual(self.errors, "")

    def test_columns_are_quoted_and_run_no_formula(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "a.pcap")
            write_capture(path, [tcp(1025, 80, 1, 1, 0x18, b"GET /=1+1,\"x\" HTTP/1.1\r\nHost: +cmd()\r\n\r\n")])
            text = self.run_program("fields", path, "-e", "frame.number", "-e", "http.request.uri", "-e", "http.value", "--modern")
            rows = list(csv.reader(io.StringIO(text, newline="")))
            self.assertEqual(rows[0], ["frame.number", "http.request.uri", "http.value"])
            self.assertEqual(rows[1], ["1", '/=1+1,"x"', "'+cmd()"])
            self.assertTrue(text.endswith("\r\n"))
        first = self.rows("fields", HTTP, "-e", "tcp.port", "--values", "first", "-c", "1")
        self.assertEqual(first, [{"tcp.port": 50572}])
        self.assertEqual(self.run_program("fields", HTTP, "-e", "tcp.port", "--no-header", "--separator", " ", "-c", "1"), "50572 80\r\n")
        self.run_program("fields", HTTP, "-e", "tcp.prot", status=2)
        self.assertIn("the nearest is", self.errors)

    def test_statistics_count_every_packet_once(self):
        packets = self.rows("list", HTTP)
        lengths = sum(row["frame.length"] for row in packets)
        hierarchy = self.rows("stat", "protocols", HTTP)
        self.assertEqual((hierarchy[0]["packets"], hierarchy[0]["bytes"]), (len(packets), lengths))
        self.assertEqual(sum(row["last"] for row in hierarchy), len(packets))
        for what in ("conversations", "endpoints", "rate", "lengths"):
            rows = [row for row in self.rows("stat", what, HTTP) if row.get("layer", "Ethernet") == "Ethernet"]
            self.assertEqual(sum(row["packets"] for row in rows), len(packets) * (2 if what == "endpoints" else 1), what)
        values = self.rows("stat", "values", "http.request.method", HTTP)
        self.assertEqual(values[0]["value"], "GET")
        answered = self.run_program("stat", "http", HTTP)
        self.assertIn("code    200", answered)
        self.run_program("stat", "everything", HTTP, status=2)
        self.run_program("stat", "values", "tcp.sorce_port", HTTP, status=2)
        self.run_program("stat", "ports", HTTP, "--sort", "nothing", status=2)

    def test_rows_of_statistics_are_asked_for_by_the_keys_of_the_packet(self):
        path = os.path.join(ROOT, "samples", "tunnels.pcap")
        for row in self.rows("stat", "protocols", path):
            found = self.rows("list", path, "-Y", f'frame.protocols matches "^{row["path"]}(:|$)"')
            self.assertEqual(len(found), row["packets"], row["path"])
        for capture in (HTTP, path):
            for row in self.rows("stat", "conversations", capture):
                if row["layer"] not in ("IPv4", "IPv6", "TCP"):
                    continue
                ends = [row[name].rpartition(":") if row["layer"] == "TCP" else (row[name], "", "") for name in "ab"]
                where = " and ".join([f"frame.address == {address.strip('[]')}" for address, _, _ in ends] +
                                     [f"frame.port == {port}" for _, _, port in ends if port])
                self.assertEqual(len(self.rows("list", capture, "-Y", where)), row["packets"], where)

    def test_streams_are_put_in_order(self):
        frames = [tcp(1025, 80, 99, 0, 0x02), tcp(80, 1025, 499, 100, 0x12), tcp(1025, 80, 100, 500, 0x18, b"one "),
                  tcp(1025, 80, 108, 500, 0x18, b"three "), tcp(1025, 80, 104, 500, 0x18, b"two "),
                  tcp(1025, 80, 100, 500, 0x18, b"one two "), tcp(80, 1025, 500, 114, 0x18, b"answer\n"),
                  tcp(1025, 80, 120, 507, 0x18, b"end"), tcp(80, 1025, 507, 123, 0x10, window=0),
                  tcp(80, 1025, 507, 123, 0x14)]
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "a.pcap")
            write_capture(path, frames)
            text = self.run_program("follow", path, "--modern", "--stream", "tcp:0")
            self.assertIn("packet 3\none two three \n---", text)
            self.assertIn("answer\n", text)
            self.assertIn("[6 bytes are missing in the capture]\nend", text)
            self.assertEqual(self.run_program("follow", path, "--modern", "--stream", "tcp:0", "--side", "b", "--format", "raw"), "answer\n")
            self.run_program("follow", path, "--stream", "tcp:1", status=1)
            self.run_program("follow", path, status=2)
            row = self.rows("stat", "tcp", path, "--modern")[0]
            self.assertEqual([row[name] for name in ("retransmissions", "out_of_order", "missing", "zero_windows", "resets")],
                             [1, 1, 2, 1, 1])
            self.assertEqual(row["handshake"], 0.002)

    def test_streams_have_the_data_of_a_syn_and_no_trailers(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "a.pcap")
            write_capture(path, [tcp(1025, 80, 99, 0, 0x02, b"early "), tcp(80, 1025, 499, 106, 0x12), tcp(1025, 80, 106, 500, 0x18, b"late"),
                                 datagram(7, 7, b"told", trailer=b"not told"), datagram(7, 7, b" all", told=0)])
            read = [self.run_program("follow", path, "--modern", "--stream", stream, "--format", "raw") for stream in ("tcp:0", "udp:0")]
            self.assertEqual(read, ["early late", "told all"])
            rows = self.rows("fields", path, "-e", "ipv6.src", "-e", "ipv6.dst", "-Y", "ipv6.src == ::1 and ipv6.dst == ::")
            self.assertEqual(rows, [{"ipv6.src": ["::1"], "ipv6.dst": ["::"]}] * 2)
            write_capture(path, [ipv6(6, tcp(1025, 80, 100, 1, 0x18, b"told")[34:], trailer=b"FCS.")])
            self.assertEqual(self.run_program("follow", path, "--modern", "--stream", "tcp:0", "--format", "raw"), "told")
            self.assertEqual(self.rows("stat", "tcp", path, "--modern")[0]["bytes"], 4)

    def test_second_answer_to_a_syn_that_nobody_took_up_does_not_count(self):
        frames = [tcp(1025, 80, 99, 0, 0x02), tcp(80, 1025, 499, 100, 0x12), tcp(1025, 80, 100, 500, 0x10), tcp(80, 1025, 7999, 100, 0x12),
                  tcp(80, 1025, 500, 100, 0x18, b"one "), tcp(80, 1025, 499, 100, 0x12), tcp(80, 1025, 504, 100, 0x18, b"two"),
                  tcp(1025, 80, 9999, 0, 0x02), tcp(80, 1025, 19999, 10000, 0x12), tcp(80, 1025, 20000, 10000, 0x18, b"anew")]
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "a.pcap")
            write_capture(path, frames)
            read = [self.run_program("follow", path, "--modern", "--stream", stream, "--format", "raw") for stream in ("tcp:0", "tcp:1")]
            self.assertEqual(read, ["one two", "anew"])
            row = self.rows("stat", "tcp", path, "--modern")[0]
            self.assertEqual([row[name] for name in ("retransmissions", "out_of_order", "missing")], [1, 0, 0])

    def test_ends_that_come_again_count_and_answers_to_probes_do_not(self):
        ack, data = [tcp(80, 1025, 500, 104, 0x10)] * 2, b"once"
        frames = [tcp(1025, 80, 100, 500, 0x18, data), *ack, tcp(1025, 80, 103, 500, 0x10, b"e"), *ack]   # the last byte again: a probe
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "a.pcap")
            write_capture(path, frames + [tcp(1025, 80, 108, 500, 0x18, data), *ack] + [tcp(1025, 80, 112, 500, 0x11)] * 3)
            row = self.rows("stat", "tcp", path, "--modern")[0]
            self.assertEqual([row[name] for name in ("retransmissions", "missing", "duplicate_acks")], [2, 1, 3])

    def test_answers_belong_to_requests_in_their_order(self):
        get, answer = b"GET /page HTTP/1.1\r\n\r\n", b"HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"
        n, m = len(get), len(answer)
        lost = [tcp(1025, 80, 1, 1, 0x18, get), tcp(80, 1025, 50, 1 + n, 0x18, b"a body whose start is not here"),   # 0, 1 ms
                tcp(1025, 80, 1 + n, 80, 0x18, get), tcp(1025, 80, 1 + n, 80, 0x18, get), tcp(80, 1025, 80, 1 + 2 * n, 0x18, answer)]   # 2, 3, 4 ms
        both = [tcp(1025, 80, 1, 1, 0x18, get), tcp(1025, 80, 1 + n, 1, 0x18, get), tcp(80, 1025, 1, 1 + 2 * n, 0x18, answer),   # 0, 1, 2 ms
                tcp(1025, 80, 1 + 2 * n, 1 + m, 0x10), tcp(80, 1025, 1 + m, 1 + 2 * n, 0x18, answer)]   # 4 ms
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "a.pcap")
            for frames, times in ((lost, (0.002, 0.002)), (both, (0.002, 0.003))):
                write_capture(path, frames)
                row = self.rows("stat", "http", path, "--modern")[0]
                self.assertEqual((row["least"], row["most"]), times)

    def test_methods_that_an_answer_allows_are_no_requests(self):
        answer = b"HTTP/1.1 200 OK\r\nAccess-Control-Allow-Methods: GET, POST\r\nContent-Length: 0\r\n\r\n"
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "a.pcap")
            write_capture(path, [tcp(1025, 80, 1, 1, 0x18, b"PUT /a HTTP/1.1\r\n\r\n"), tcp(80, 1025, 1, 22, 0x18, answer)])
            rows = self.rows("fields", path, "--modern", "-e", "http.request.method", "-e", "http.response.code")
            self.assertEqual([list(row.values()) for row in rows], [[["PUT"], []], [[], ["200"]]])
            self.assertEqual([(row["requests"], row["answers"]) for row in self.rows("stat", "http", path, "--modern") if "server" in row], [(1, 1)])

    def test_names_of_other_tools_ask_what_they_ask_there(self):
        root = struct.pack(">HHHHHH", 7, 0x100, 1, 0, 0, 0) + b"\0\0\1\0\1"
        reverse = bytes(12) + bytes.fromhex("8035 0001 0800 06 04 0003") + bytes(20)   # RARP
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "a.pcap")
            write_capture(path, [datagram(5353, port, root) for port in (53, 5353, 5355)] + [reverse])
            rows = self.rows("fields", path, "--modern", "-e", "dns.id", "-e", "dns.qry.name", "-e", "arp.opcode")
            self.assertEqual([list(row.values()) for row in rows], [[[7], ["."], []]] * 3 + [[[], [], [3]]])

    def test_times_are_counted_wherever_the_clock_was_set(self):
        second, last = 10**9, 2**63 - 1
        query = struct.pack(">HHHHHH", 1, 0x100, 1, 0, 0, 0) + b"\1a\0\0\1\0\1"
        answer = query[:2] + b"\x81\x80" + query[4:]
        back = datagram(53, 53, answer)
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "a.pcapng")
            write_times(path, [(5 * second, datagram(5353, 53, query)), (3 * second, datagram(1, 2, b"")), (2 * second, datagram(1, 2, b""))])
            row = next(row for row in self.rows("stat", "conversations", path) if row["a"] == "[::1]:1")
            self.assertEqual([row[name] for name in ("first", "last", "duration")], [-3, -2, 1])
            # Whatever a damaged capture has, each packet is counted, and times stay in what can be told.
            times = [-second, last, -last, 0, last, -last, last, 0]
            frames = [tcp(1025, 80, 99, 0, 0x02), tcp(80, 1025, 499, 100, 0x12), tcp(1025, 80, 100, 500, 0x10),
                      datagram(53, 53, query), back, datagram(53, 53, query), back, tcp(1025, 80, 100, 500, 0x18, b"GET /page HTTP/1.0\r\n\r\n")]
            for shift in range(len(times)):
                write_times(path, list(zip(times[shift:] + times[:shift], frames)))
                sums = {what: sum(row["packets"] for row in self.rows("stat", what, path, "--modern")) for what in ("conversations", "rate", "tcp")}
                early = len(times) - sums.pop("rate")
                self.assertEqual(sums, {"conversations": 8 + 8 + 8, "tcp": 4})
                self.assertEqual(early, sum(time < times[shift] for time in times))
                self.assertTrue(all(row["least"] is None or row["least"] >= 0 for row in self.rows("stat", "dns", path, "--modern") if "server" in row))
                self.assertIn("</html>", self.run_program("report", path, "--modern", "-o", "-"))

    def test_what_was_encrypted_is_followed_where_secrets_are_known(self):
        capture = os.path.join(ROOT, "samples", "tls_keys.pcapng")
        opened = 0
        for number in range(40):
            ran = subprocess.run([QXVIEW, "follow", capture, "--stream", f"tls:{number}", "--format", "raw"], capture_output=True, check=False)
            if b"HTTP/1." not in ran.stdout:
                continue
            opened += 1
            text = self.run_program("follow", capture, "--stream", f"tls:{number}")
            self.assertLess(text.index("GET /page HTTP/1."), text.index("HTTP/1.0 200"), number)
            sides = [self.run_program("follow", capture, "--stream", f"tls:{number}", "--format", "raw", "--side", side) for side in "ab"]
            self.assertTrue(sides[0].startswith("GET /page HTTP/1."), number)
            self.assertNotIn("GET /page HTTP", sides[1])
        self.assertGreater(opened, 5)
        self.run_program("follow", os.path.join(ROOT, "samples", "tls.pcap"), "--stream", "tls:0", status=1)
        self.assertIn("TlsKeyLog", self.errors)
        self.run_program("follow", HTTP, "--stream", "tls:0", status=1)
        self.assertIn("there are no encrypted records", self.errors)

    def test_hits_are_those_of_the_shown_tree(self):
        hits = self.rows("find", HTTP, "content-length", "-i", "--all")
        shown = self.run_program("decode", HTTP)
        self.assertEqual(len(hits), sum("content-length" in line.lower() for line in shown.splitlines()))
        self.assertEqual(self.run_program("find", HTTP, "-E", "Content-L[a-z]+", "--hits").strip(), str(len(hits)))
        self.assertIn("\n>", self.run_program("find", HTTP, "--shown", "200 OK"))
        self.run_program("find", HTTP, "-E", "a(", status=2)
        self.run_program("find", HTTP, "no such text", status=1)
        self.assertIn("no line holds", self.errors)

    def test_less_of_a_tree(self):
        text = self.run_program("decode", HTTP, "--packets", "4", "--only", "http", "--no-dumps")
        self.assertIn("\nTCP ", text)
        self.assertNotIn("Sequence number", text)
        self.assertIn("  Request Line: ", text)
        deep = self.run_program("decode", HTTP, "--packets", "4", "--depth", "1")
        self.assertFalse([line for line in deep.splitlines() if line.startswith(" ")])
        self.run_program("decode", HTTP, "--only", "nosuch", status=2)
        self.run_program("decode", HTTP, "--depth", "1", "--format", "text", status=2)


if __name__ == "__main__":
    unittest.main()
