#!/usr/bin/env python3
"""The packet view as a person uses it: keys go in by tmux, and the screen comes back. What is selected on both sides, places
that are found again, search, filter, decode-as, files and the clipboard, sizes, signals, pipes that pause, files that grow or
are damaged."""
import json
import os
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
if os.environ.get("QXVIEW_PLATFORM") == "windows":
    sys.exit(0)   # a terminal of POSIX
DNS = os.path.join(ROOT, "samples", "dns.pcap")
CALLS = os.path.join(ROOT, "samples", "calls.pcap")
PRESS, RELEASE, WHEEL_UP, WHEEL_DOWN = 0, 3, 64, 65   # of the mouse


def output(*words):
    return subprocess.run(words, check=True, capture_output=True, text=True).stdout


@unittest.skipUnless(shutil.which("tmux"), "tmux is not installed")
class View(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="qxview_view")
        self.socket = os.path.join(self.folder, "tmux")
        self.addCleanup(shutil.rmtree, self.folder, True)
        self.addCleanup(subprocess.run, ["tmux", "-S", self.socket, "kill-server"], capture_output=True)

    def tmux(self, *words):
        return output("tmux", "-S", self.socket, "-f", "/dev/null", *words)

    def start(self, words, before="", size=(120, 40)):
        """A shell that runs the view and says when it has ended, so that the terminal is looked at after it, too."""
        environment = (f"export XDG_STATE_HOME={self.folder}/state XDG_CONFIG_HOME={self.folder}/config TMPDIR={self.folder} NO_COLOR= LC_ALL=C.UTF-8; "
                       f"cd {self.folder}")
        self.tmux("new-session", "-d", "-x", str(size[0]), "-y", str(size[1]), "bash --norc --noprofile")
        self.tmux("set-option", "-s", "set-clipboard", "on")
        self.type(f"{environment}; PS1='$ '; clear; {before}{QXVIEW} {words}; echo ended=$?\n")

    def type(self, text):
        self.tmux("send-keys", "-l", text)

    def keys(self, *names):
        self.tmux("send-keys", *names)

    def screen(self):
        return self.tmux("capture-pane", "-p")

    def mouse(self, deed, row, column):
        self.tmux("send-keys", "-H", "1b", "5b", "4d", *(f"{32 + value:02x}" for value in (deed, column + 1, row + 1)))

    def click(self, row, column, text):
        """Once more where a click so soon behind another one was taken for its second half."""
        for _ in range(5):
            self.mouse(PRESS, row, column)
            self.mouse(RELEASE, row, column)
            end = time.monotonic() + 3
            while time.monotonic() < end:
                if re.search(text, self.screen(), re.M):
                    return
                time.sleep(0.05)
        self.until(text, 0)

    def row_of(self, expression):
        """Of the screen, from 0."""
        lines = self.until(expression).splitlines()
        return next(i for i, line in enumerate(lines) if re.search(expression, line))

    def until(self, text, seconds=15, absent=False):
        """The screen once it shows what the expression says."""
        end = time.monotonic() + seconds
        while True:
            shown = self.screen()
            if bool(re.search(text, shown, re.M)) != absent:
                return shown
            if time.monotonic() > end:
                self.fail(f"{text!r} {'stays' if absent else 'does not come'}:\n{shown}")
            time.sleep(0.03)

    def ask(self, key, text):
        self.keys(key)
        self.type(text)
        self.keys("Enter")

    def test_selection_search_and_places(self):
        self.start(f"view --modern {DNS}")
        self.until(r"72 packets")
        self.until(r"^>No\.")
        self.keys("Tab")
        self.ask("/", "/^Domain Name/")
        self.until(r"dns\.domain_name +bytes 54-71 \(18\)")
        self.keys("J", "J")   # the next packets have their names selected
        self.until(r"Packet 3\b")
        self.until(r"dns\.domain_name +bytes 54-71")
        self.keys("Tab", "Left")   # a byte selects the line that has it
        self.until(r"dns\.(question_record|type|class|name_[a-z]+|additional_record_count) +bytes")
        self.keys("Right")
        self.until(r"dns\.name_section +bytes 54-57")
        self.ask("/", "0x0035")
        self.until(r"udp\.(source|destination)_port +bytes 3[46]-3[57]")
        self.keys("BTab", "1")
        self.assertNotIn("Transaction ID", self.until(r"^ *▸ UDP"))
        self.keys("5")
        self.until(r"▾ (UDP|DNS)")
        self.ask("g", "50%")
        self.until(r"Packet 36\b")
        self.keys("[")
        self.until(r"Packet 4\b")
        self.keys("]")
        self.until(r"Packet 36\b")
        self.ask("g", "1")
        self.ask("/", "no such text anywhere")
        self.until("not found")
        self.keys("n")
        self.until("not found")
        self.keys("?")
        self.until("follow the stream")
        self.keys("q", "q")
        self.until(r"ended=0")

    def test_filter_tables_and_streams(self):
        self.start(f"view --modern {DNS}")
        self.until(r"72 packets")
        self.keys("f")
        self.type("dns.qu")
        self.keys("Tab")
        self.until(r"filter dns\.question_record$")
        self.type(" and udp.no_such")
        self.until(r"udp\.no_such")
        self.keys("Enter")   # a wrong one stays
        self.until(r"^filter dns\.question_record and udp\.no_such")
        self.keys("C-u")
        self.type('dns.domain_name == "www.example.test"')
        self.keys("Enter")
        self.until(r"12 of 72 packets")
        self.keys("F")
        self.until(r"  72 packets")
        self.keys("Tab")
        self.ask("/", "/^Destination port/")
        self.until(r"udp\.destination_port")
        self.keys("=")
        self.until(r"filter: udp\.destination_port == 53")
        shown = int(re.search(r"(\d+) of 72", self.until(r"\d+ of 72"))[1])
        self.keys("F", "!")
        self.until(rf"{72 - shown} of 72")
        self.keys("F", "c")
        self.until(r"\b2 of 72")
        self.keys("F", "T")
        self.until(r"Conversations: 22")
        self.keys("Tab", "Tab")
        self.until(r"eth:ip:udp:dns")
        self.keys("Down", "Down", "Enter")
        self.until(r'frame\.protocols contains "eth:ip:tcp"')
        self.until(r"32 of 72")
        self.keys("o")
        self.until(r"Stream of .*\(a\) and .*:53 \(b\)")
        self.keys("x")
        self.until(r"^00000000  ")
        self.keys("q", "F", "L")
        self.until(r"\|- DNS Query")
        self.keys("q", "q")
        self.until(r"ended=0")

    def test_saving_copying_and_decode_as(self):
        with open(os.path.join(self.folder, "names"), "w", encoding="ascii") as file:
            file.write("192.0.2.1 workstation\n")
        self.start(f"view --modern {DNS}")
        self.until(r"72 packets")
        self.keys("m", "J", "J", "m")
        self.until(r"2 marked")
        self.keys("S", "m")
        self.type("kept.pcapng")
        self.keys("Enter")
        self.until(r"2 packets saved")
        listed = output(QXVIEW, "list", os.path.join(self.folder, "kept.pcapng"))
        self.assertEqual(len(listed.splitlines()), 2)
        for name in ("all.bfr", "all.pcap"):
            self.keys("S", "p")
            self.type(name)
            self.keys("Enter")
            self.until(rf"72 packets saved in {name}")
            listed = output(QXVIEW, "list", os.path.join(self.folder, name))
            self.assertEqual(len(listed.splitlines()), 72)
        self.keys("S", "t")
        self.type("tree.json")
        self.keys("Enter")
        self.until("tree saved")
        with open(os.path.join(self.folder, "tree.json"), encoding="utf-8") as file:
            self.assertEqual(json.load(file)["packet"], 3)
        self.keys("S", "t")
        self.type("tree.txt")
        self.keys("Enter")
        self.until(r"tree saved in tree\.txt")
        decoded = output(QXVIEW, "decode", "--modern", "--packets", "3", DNS)
        with open(os.path.join(self.folder, "tree.txt"), encoding="utf-8") as file:
            self.assertEqual(file.read(), decoded.rstrip("\n") + "\n")
        self.keys("Tab")
        self.ask("/", "/^Domain Name/")
        self.until(r"dns\.domain_name +bytes")
        self.keys("y", "v")
        self.until("value copied")
        self.assertEqual(self.tmux("show-buffer"), "www.example.test")
        self.keys("S", "b")
        self.type("bytes")
        self.keys("Enter")
        self.until(r"18 bytes saved")
        with open(os.path.join(self.folder, "bytes"), "rb") as file:
            self.assertEqual(file.read(), b"\x03www\x07example\x04test\0")
        self.keys("d")
        self.until(r"decode as .*udp:53=")
        self.type("none")
        self.keys("Enter")
        self.until(r"decoded as udp:53=none")
        self.keys("F")
        self.until(r"^DNS|▾ DNS", absent=True)
        self.keys("D")
        self.until(r"kept in")
        with open(os.path.join(self.folder, "config", "vantrell", "view.ini"), encoding="ascii") as file:
            self.assertEqual(file.read(), "[Protocols]\nudp:53=none\n")
        self.keys("u")
        self.until(r"no longer decoded")
        self.until(r"DNS Query: Notify")
        self.ask("a", os.path.join(self.folder, "names"))
        self.until(r"workstation")
        self.ask("C", " dns.type:9")
        self.until(r"Summary .*dns\.type")
        self.keys("t", "q")
        self.until(r"ended=0")
        self.type(f"clear; {QXVIEW} {DNS}; echo ended=$?\n")   # with what was used last
        self.until(r"Summary .*dns\.type")
        self.keys("q")
        self.until(r"ended=0")

    def test_printing(self):
        self.start(f"view --modern {DNS}")
        self.until(r"72 packets")
        self.keys("J", "P", "p", "t")
        self.type("two.txt")
        self.keys("Enter")
        self.until(r"1 packet printed in two\.txt")
        with open(os.path.join(self.folder, "two.txt"), "rb") as file:
            printed = file.read()
        told = subprocess.run([QXVIEW, "print", "--modern", "--packets", "2", DNS], capture_output=True, check=True)
        self.assertEqual(printed, told.stdout)
        self.keys("f")
        self.type("udp")
        self.keys("Enter")
        shown = re.search(r"(\d+) of 72 packets", self.until(r"\d+ of 72 packets"))[1]
        self.keys("P", "a", "l")
        self.type("rows.txt")
        self.keys("Enter")
        self.until(r"rows and bytes are for pages")
        self.keys("C-u")
        self.type("rows.pdf")
        self.keys("Enter")
        told = self.until(r"packets printed in rows\.pdf|print in .*pango")
        if "pango" in told:
            self.skipTest("pages need pango")
        self.assertIn(f"{shown} packets printed in rows.pdf", told)
        same = os.path.join(self.folder, "same.pdf")
        subprocess.run([QXVIEW, "print", "--modern", "--pdf", same, "--what", "list", "-Y", "udp", DNS], check=True)
        if shutil.which("pdftotext"):
            texts = [output("pdftotext", "-layout", path, "-") for path in (same, os.path.join(self.folder, "rows.pdf"))]
            self.assertEqual(*texts)
        self.keys("q")
        self.until(r"ended=0")

    def test_mouse(self):
        self.start(f"view --modern {DNS}")
        self.until(r"72 packets")
        row = self.row_of(r"^ *5 .*web\.example")
        self.mouse(PRESS, row, 20)
        self.mouse(RELEASE, row, 20)
        self.until(r"Packet 5\b")
        self.mouse(WHEEL_DOWN, row, 20)
        self.until(r"Packet 8\b")
        self.mouse(WHEEL_UP, row, 20)
        self.until(r"Packet 5\b")
        tree = self.row_of(r"▸ Ethernet|▾ Ethernet")
        self.mouse(PRESS, tree, 10)
        self.mouse(RELEASE, tree, 10)
        self.until(r"ethernet\S* +bytes 0-13|eth\S* +bytes 0-13")
        was = self.screen().splitlines()[tree]
        self.mouse(PRESS, tree, was.index("Ethernet") - 2)   # on its sign
        self.mouse(RELEASE, tree, was.index("Ethernet") - 2)
        self.until("▸ Ethernet" if "▾" in was else "▾ Ethernet")
        first = self.row_of(r"^0000 ")
        self.click(first + 1, 6 + 3 * 6, r"ip\.time_to_live +bytes 22")
        head = first - 1   # the head of the bytes, dragged up by five rows
        self.mouse(PRESS, head, 30)
        self.mouse(RELEASE, head - 5, 30)
        end = time.monotonic() + 10
        while self.row_of(r"^0000 ") != first - 5:
            self.assertLess(time.monotonic(), end, self.screen())
        self.keys("q")
        self.until(r"ended=0")

    def test_troubles_conversations_and_calls(self):
        self.start(f"view --modern {CALLS}")
        self.until(r"Packet 1\b")
        for key, number in (("e", 2), ("e", 6), ("E", 2), ("v", 3), ("v", 4), ("v", 9), ("V", 4)):
            self.keys(key)
            self.until(rf"Packet {number}\b")
        self.ask("g", "9")
        self.keys("L")
        shown = self.until(r"192\.0\.2\.11 +192\.0\.2\.2 +192\.0\.2\.12")
        self.assertIn("Flow of SIP", shown)
        self.until(r"^ +9 .*\|- SIP INVITE .*->\|")
        self.until(r"^ +11 .*\| +\|- SIP INVITE .*->\|")
        self.assertNotIn("\u2026", self.screen())
        self.until(r"^ +12 .*\| +\|< SIP Status: 180 Ringing")
        self.keys("q", "q")
        self.until(r"ended=0")
        self.type(f"clear; {QXVIEW} view --modern {DNS}; echo ended=$?\n")
        self.until(r"72 packets")
        self.ask("g", "5")
        self.keys("Tab", "Tab")
        self.ask("/", "0x0377656207")   # the question's name
        self.until(r"bytes 5[4-9]")
        self.keys("s")
        self.until(r"Packet 6\b")
        self.keys("q")
        self.until(r"ended=0")

    def test_colours(self):
        plain, reverse = r"\x1b\[(\d+;)*[349][0-8][;m]", r"\x1b\[[\d;]*7m"
        for words, wanted, unwanted in (("--theme dark", r"48;5;24m", r"48;5;25m"), ("--theme light", r"48;5;25m", r"48;5;24m"),
                                        ("--theme 16", r"\x1b\[[\d;]*44m", r"[34]8;5;"), ("--theme none", reverse, plain),
                                        ("NO_COLOR=1", reverse, plain), ("COLORFGBG=0\\;15", r"48;5;25m", r"48;5;24m"),
                                        ("TERM=vt100", r"72 packets", plain)):
            environment = "TERM=screen-256color " + ("" if words.startswith("--") else words + " ")
            with self.subTest(words):
                self.setUp()
                self.start(f"view {words if words.startswith('--') else ''} {DNS}", before=environment)
                self.until(r"72 packets")
                shown = self.tmux("capture-pane", "-p", "-e")
                self.assertRegex(shown, wanted)
                self.assertNotRegex(shown, unwanted)
                self.keys("q")
                self.until(r"ended=0")

    def test_sizes_and_signals(self):
        self.start(f"view --modern {DNS}")
        self.until(r"72 packets")
        for columns, rows in ((20, 5), (1, 1), (200, 60), (120, 40)):
            self.tmux("resize-window", "-x", str(columns), "-y", str(rows))
            self.keys("Down", "Tab")
            time.sleep(0.15)
            self.assertLessEqual(max(map(len, self.screen().splitlines()), default=0), columns)
        self.until(r"72 packets")
        self.keys("C-z")
        self.until(r"Stopped")
        self.until(r"72 packets", absent=True)   # the shell has its screen
        self.type("fg\n")
        self.until(r"72 packets")
        self.keys("/", "x", "C-c")   # what goes on ends first
        self.until(r"^search", absent=True)
        self.keys("C-c")
        self.until(r"72 packets", absent=True)   # what is typed before that is its own
        self.type("clear; echo ended=$?\n")
        self.until(r"ended=(130|0)")
        self.type("stty -a | grep -o ' echo '; echo wh''ole\n")
        self.until(r"^ ?echo ?\n(.*\n)*whole")

    def test_what_comes_while_it_is_looked_at(self):
        with open(DNS, "rb") as file:
            whole = file.read()
        self.start("view -", before=f"(head -c 3000 {DNS}; sleep 1.2; tail -c +3001 {DNS}) | ")
        self.until(r"live, at the end")
        self.until(r"72 packets")   # none was lost, and the last one is selected
        self.until(r"Packet 72\b")
        self.keys("Home", "q")
        self.until(r"ended=0")
        growing = os.path.join(self.folder, "growing.pcap")
        with open(growing, "wb") as file:
            file.write(whole[:2500])
        self.type(f"clear; {QXVIEW} view {growing}; echo ended=$?\n")
        few = int(re.search(r"(\d+) packets", self.until(r"\d+ packets"))[1])
        self.assertLess(few, 72)
        with open(growing, "ab") as file:
            file.write(whole[2500:])
        self.until(r"72 packets")
        self.keys("q")
        self.until(r"ended=0")
        damaged = os.path.join(self.folder, "damaged.pcap")
        with open(damaged, "wb") as file:
            file.write(whole[:2500] + b"\xff" * 64 + whole[2564:])
        self.type(f"clear; {QXVIEW} view {damaged}; echo ended=$?\n")
        self.until(r"damaged|longer|no packet|not possible|is not")
        self.keys("End")
        self.until(r"^.*Packet \d+")
        self.keys("q")
        self.until(r"ended=0")


    @unittest.skipUnless(os.geteuid() == 0, "packets are captured as root")
    def test_live_capture(self):
        self.start("capture -i lo -f 'udp port 39999' view")
        sender = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.addCleanup(sender.close)
        end = time.monotonic() + 15
        while "2 packets" not in self.screen() and time.monotonic() < end:
            if "live" in self.screen():
                sender.sendto(b"to be seen", ("127.0.0.1", 39999))
            time.sleep(0.3)
        self.until(r"\d packets")
        self.until("74 6F 20 62 65")   # in the pane of the bytes
        self.until("live, at the end")
        self.keys("q")
        shown = self.until("ended=0")
        self.assertRegex(shown, r"lo: \d+ packets captured, 0 dropped by the kernel")
        self.assertEqual([name for name in os.listdir(self.folder) if name.endswith(".pcapng")], [], "nobody asked to keep it")


if __name__ == "__main__":
    unittest.main()
