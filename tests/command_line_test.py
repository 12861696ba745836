#!/usr/bin/env python3
"""The command line as a person and a script meet it: exit statuses, messages, formats, pipes."""
import gzip
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build/qxview"))
LIBRARY = os.environ.get("QXVIEW_LIBRARY", os.path.join(ROOT, "build/libqxview.so"))
WINDOWS = os.environ.get("QXVIEW_PLATFORM") == "windows"   # the program runs under Wine
SAMPLE = os.path.join(ROOT, "samples/vlan.pcap")
HTTP = os.path.join(ROOT, "samples/http.pcap")


def run(*arguments, stdin=None, **environment):
    done = subprocess.run([QXVIEW, *arguments], capture_output=True, input=stdin,
                          env={**os.environ, "XDG_CONFIG_HOME": "/nonexistent", **environment}, check=False)
    return done.returncode, done.stdout, done.stderr.decode()


class CommandLine(unittest.TestCase):
    def test_wrong_command_lines_name_what_is_wrong(self):
        for arguments, said in ((["decode"], "FILE is missing"), (["decod"], "nearest is decode"),
                                (["help", "lst"], "nearest is list"), (["-r", SAMPLE], "list FILE"),
                                (["decode", SAMPLE, "--pakets", "1"], "nearest is --packets"),
                                (["decode", "-V", SAMPLE], "-V"), (["protocols", "two"], '"two"'),
                                (["decode", SAMPLE, "--count"], "wants a value"), (["list", "-l=1", SAMPLE], "-="),
                                (["decode", SAMPLE, "--ranges=1"], "takes no value"),
                                (["decode", SAMPLE, "-c", "\x1b[1m" + 300 * "9"], '"\\x1B[1m999'),
                                (["decode", SAMPLE, "--set", "AliasFiel=1"], "nearest is AliasFile"),
                                (["decode", SAMPLE, "-d", "tcp:80=HTPP"], "nearest is HTTP"), (["decode", SAMPLE, "--packets", "3-x"], '"3-x"'),
                                (["list", SAMPLE, "--packets", "2,9-3"], '"9-3" ends before'),
                                (["list", SAMPLE, "-c", 30 * "9"], "to 18446744073709551615"), (["list", ""], "FILE is empty"),
                                (["--versoin"], "nearest is --version"), (["list", "--settings=", SAMPLE], "name of a file"),

                                (["decode", SAMPLE, "--packets", "0"], '"0"'), (["nothing"], "nothing"),
                                (["decode", SAMPLE, "--set", "Foo=1"], '"Foo"'),
                                (["decode", SAMPLE, "--set", "TypeOfServiceMode=x"], "TypeOfServiceMode"),
                                (["decode", SAMPLE, "-d", "tcp:99999=HTTP"], '"99999"'),
                                (["decode", SAMPLE, "-d", "tcp:80=Nonsense"], "Nonsense"),
                                (["decode", SAMPLE, "-d", "tcp:10.0.0.300:80=HTTP"], "10.0.0.300"),
                                (["decode", SAMPLE, "-f", "tcp port"], "tcp port"),
                                (["decode", SAMPLE, "--format", "yaml"], "--format")):
            status, out, said_instead = run(*arguments)
            self.assertEqual((status, out), (2, b""), arguments)
            self.assertIn(said, said_instead, arguments)
            self.assertLess(max(map(len, said_instead.splitlines())), 250, arguments)

    def test_files_at_fault_are_named_and_read_as_far_as_they_go(self):
        status, _, message = run("decode", "/nonexistent.pcap")
        self.assertEqual(status, 3)
        self.assertIn("/nonexistent.pcap", message)
        with tempfile.TemporaryDirectory() as folder:
            cut = os.path.join(folder, "cut.pcap")
            with open(SAMPLE, "rb") as whole, open(cut, "wb") as file:
                file.write(whole.read()[:-3])
            all_packets = run("decode", "--format", "json", SAMPLE)[1].splitlines()
            status, out, message = run("decode", "--format", "json", cut)
            self.assertEqual(status, 3)
            self.assertEqual(out.splitlines(), all_packets[:-1])
            self.assertIn(f"{cut}: packet {len(all_packets)}", message)
            settings = os.path.join(folder, "view.ini")
            with open(settings, "w", encoding="ascii") as file:
                file.write("[View]\nCharacterSet = 0\nCharacterSet = many\n")
            status, _, message = run("decode", "--settings", settings, SAMPLE)
            self.assertEqual(status, 3)
            self.assertIn(f"{settings}, line 3", message)
            self.assertEqual(run("decode", "--settings", settings + "x", SAMPLE)[0], 3)
        with open("/dev/full", "wb") as full:
            self.assertEqual(subprocess.run([QXVIEW, "decode", SAMPLE], stdout=full, stderr=subprocess.DEVNULL,
                                            check=False).returncode, 3)

    def test_input_may_be_compressed_or_piped(self):
        with open(SAMPLE, "rb") as file:
            plain = file.read()
        expected = run("decode", SAMPLE)[1]
        self.assertEqual(run("decode", "-", stdin=plain)[1], expected)
        self.assertEqual(run("decode", "-", stdin=gzip.compress(plain))[1], expected)

    def test_packets_are_selected(self):
        numbers = lambda *options: [json.loads(line)["packet"]
                                    for line in run("decode", "--format", "json", *options)[1].splitlines()]
        self.assertEqual(numbers(SAMPLE, "--packets", "2,4-5"), [2, 4, 5])
        self.assertEqual(numbers(SAMPLE, "--packets", "2-", "-c", "3"), [2, 3, 4])
        if not WINDOWS:
            self.assertEqual(numbers(HTTP, "-f", "tcp[tcpflags] & tcp-syn != 0")[:2], [1, 2])
        # What earlier packets taught holds for a later one that is decoded alone.
        whole = [json.loads(line) for line in run("decode", "--format", "json", HTTP)[1].splitlines()]
        alone = json.loads(run("decode", "--format", "json", HTTP, "--packets", "4")[1])
        self.assertEqual(alone, whole[3])

    def test_definitions_and_settings_hold_for_the_run(self):
        status, out, _ = run("decode", HTTP, "-d", "tcp:80=ftp", "--packets", "4")
        self.assertIn(b"-> [80] FTP", out)
        self.assertIn(b"-> [80] \n", run("decode", HTTP, "-d", "tcp:80=none", "-c", "1")[1])
        # A name alone is that of a file beside the program; a path is one, from the working folder on.
        for name, shown in (("none.so", os.path.dirname(QXVIEW)), ("./none.so", "./none.so")):
            status, _, message = run("decode", "--set", "CustomLibrary0=" + name, "-c", "1", HTTP)
            self.assertEqual(status, 0)
            self.assertRegex(message, ("" if WINDOWS else re.escape(shown)) + ".* is not loaded: .+\n")
        with tempfile.TemporaryDirectory() as folder:
            with open(os.path.join(folder, "names"), "w", encoding="ascii") as file:
                file.write("02:00:00:00:00:01  printer  # second floor\n")
            out = run("decode", "--set", f"AliasFile={folder}/names", "-c", "1", HTTP)[1]
            self.assertIn(b"printer [02:00:00:00:00:01]", out)
            os.mkdir(os.path.join(folder, "vantrell"))
            with open(os.path.join(folder, "vantrell/view.ini"), "w", encoding="ascii") as file:
                file.write("[View]\nTypeOfServiceMode = 2\n[Protocols]\ntcp:80=Telnet\n")
            own = ["--settings", os.path.join(folder, "vantrell/view.ini")] if WINDOWS else []
            out = run("decode", "--packets", "4", *own, HTTP, XDG_CONFIG_HOME=folder)[1]
            self.assertIn(b"DSCP = 0", out)
            self.assertIn(b"-> [80] Telnet", out)

    def test_text_never_reaches_the_terminal_as_a_command(self):
        frame = bytes(12) + b"\x88\x5a" + b"\x1b[2J\x9b\x07 text"
        capture = (bytes.fromhex("d4c3b2a1020004000000000000000000ffff000001000000") + bytes(8) +
                   len(frame).to_bytes(4, "little") * 2 + frame)
        out = run("decode", "-x", "-", stdin=capture)[1]
        self.assertFalse(set(out) - {10} & set(range(32)), out)
        self.assertNotIn(0x1B, run("decode", "--color=never", SAMPLE)[1])
        self.assertIn(b"\x1b[", run("decode", "--color=always", SAMPLE)[1])

    def test_text_format_is_what_the_save_mode_writes(self):
        lines = run("decode", "--format", "text", "-c", "1", HTTP)[1].split(b"\r\n")
        self.assertEqual(lines[-1], b"")
        self.assertTrue(all(not line.startswith(b"     ") for line in lines if b"Header" not in line[:12]))
        self.assertEqual(run("print", "-c", "1", HTTP)[1].split(b"\r\n"), lines)

    def test_find_shows_the_packet_and_marks_the_line(self):
        status, out, _ = run("find", HTTP, "GET / HTTP")
        marked = [line for line in out.splitlines() if line.startswith(b">")]
        self.assertEqual((status, marked), (0, [b">  Request Line: GET / HTTP/1.1"]))
        first, last = run("find", HTTP, "Total IP length"), run("find", "--backward", HTTP, "Total IP length")
        self.assertNotEqual(first[1].splitlines()[0], last[1].splitlines()[0])
        self.assertEqual(run("find", HTTP, "no such text"), (1, b"", 'qxview: find: no line holds "no such text"\n'))
        frame = bytes(12) + b"\x88\x5a" + "Caf\xe9 5\u20ac".encode("cp1252")
        capture = (bytes.fromhex("d4c3b2a1020004000000000000000000ffff000001000000") + bytes(8) +
                   len(frame).to_bytes(4, "little") * 2 + frame)
        for text in ("Caf\xe9 5\u20ac", b"Caf\xe9") if not WINDOWS else ("Caf\xe9 5\u20ac",):
            self.assertIn("Caf\xe9".encode(), run("find", "-", text, stdin=capture)[1])
        status, _, message = run("find", "-", "\u2192", stdin=capture)
        self.assertEqual(status, 1)
        self.assertIn("\u2192", message)

    def test_find_tells_the_line_from_its_likes(self):
        """Three headers in one another: the decoder edits lines that it added before."""
        frame = bytes(12) + b"\x08\x00"
        for length in (68, 48, 28):
            frame += bytes.fromhex(f"4500 {length:04x} 0001 0000 40 {4 if length > 28 else 17:02x} 0000 0a000001 0a000002")
        frame += bytes.fromhex("03e8 03e9 0008 0000")
        capture = (bytes.fromhex("d4c3b2a1020004000000000000000000ffff000001000000") + bytes(8) +
                   len(frame).to_bytes(4, "little") * 2 + frame)
        second = [f"--set=RangeFilter{name}" for name in ("On=1", "Start=34", "Length=20")]
        for text in ("Type of Service", "Status:", "IP Addresses", "10.0.0.1 -> 10"):
            for options, likes in (([], 0), (["--backward"], 2), (second, 1)):
                lines = run("find", *options, "-", text, stdin=capture)[1].decode().splitlines()
                marked = next(i for i, line in enumerate(lines) if line.startswith(">"))
                self.assertEqual(sum(text in line for line in lines[:marked]), likes, (text, options))

    def test_a_reader_that_goes_away_ends_the_program_quietly(self):
        with subprocess.Popen([QXVIEW, "decode", "-l", HTTP], stdout=subprocess.PIPE, stderr=subprocess.PIPE) as running:
            running.stdout.readline()
            running.stdout.close()
            self.assertEqual(running.stderr.read(), b"")

    def test_every_command_has_help_with_examples(self):
        for command in ("decode", "list", "find", "print", "report", "save", "protocols", "xml"):
            status, out, _ = run(command, "--help")
            self.assertEqual(status, 0)
            self.assertIn(b"Example", out, command)
            self.assertEqual(run("help", command), (0, out, ""))
            self.assertIn(command.encode(), run("help")[1])

    @unittest.skipIf(WINDOWS, "calls the library from this system's own Python")
    def test_the_embedding_example_prints_the_tree(self):
        example = os.path.join(ROOT, "samples/decode_frame.py")
        out = subprocess.run([sys.executable, example, LIBRARY], capture_output=True, text=True, check=True,
                             env={**os.environ, "XDG_CONFIG_HOME": "/nonexistent"}).stdout
        self.assertIn("ARP: Request, Source 10.0.0.1, Target 10.0.0.2  [14, 28]\n", out)
        self.assertIn("  Operation: 1 = Request  [20, 2]\n", out)


if __name__ == "__main__":
    unittest.main()
