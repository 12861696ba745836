#!/usr/bin/env python3
"""What goes wrong around the program: closed standard files, full devices, sources that fail, little memory. It is told
with its reason, the exit status says it, and no file is lost by it."""
import gzip
import json
import os
import resource
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
WINDOWS = os.environ.get("QXVIEW_PLATFORM") == "windows"
LAN = os.path.join(ROOT, "samples", "lan.pcap")


def run(*arguments, **options):
    done = subprocess.run([QXVIEW, *arguments], check=False, timeout=60, **{
        "stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "env": {**os.environ, "XDG_CONFIG_HOME": "/nonexistent"},
        **options})
    return done.returncode, done.stdout, (done.stderr or b"").decode()


class Folder(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def path(self, name, data=None):
        path = os.path.join(self.folder, name)
        if data is not None:
            with open(path, "wb") as file:
                file.write(data)
        return path

    def read(self, path):
        with open(path, "rb") as file:
            return file.read()


@unittest.skipIf(WINDOWS, "descriptors and devices of POSIX")
class Faults(Folder):
    def test_closed_standard_files_are_not_written_over(self):
        good, out = self.path("good.bfr"), self.path("out.bfr")
        self.assertEqual(run("save", LAN, good)[0], 0)
        cut = self.path("cut.pcap", self.read(LAN)[:-3])
        shell = lambda words: subprocess.run(["sh", "-c", f'"$0" {words}', QXVIEW, cut, out, LAN], check=False,
                                             capture_output=True)
        self.assertEqual(shell('save "$1" "$2" 2>&-').returncode, 3)
        self.assertEqual(run("list", out)[0], 0, "a message stands in the file")
        shutil.copy(good, out)
        self.assertEqual(shell('save --append "$1" "$2" 0<&- 1>&- 2>&-').returncode, 3)
        self.assertEqual(run("list", out)[0], 0)
        closed = shell('list "$3" >&-')
        self.assertEqual((closed.returncode, closed.stderr), (3, b"qxview: standard output: Bad file descriptor\n"))
        self.assertEqual(shell("list - <&-").stderr, b"qxview: standard input: Bad file descriptor\n")

    def test_full_devices_are_told(self):
        for arguments in (["find", LAN, "IP"], ["protocols"], ["--help"], ["--version"], ["list", "--help"],
                          ["decode", LAN], ["print", LAN], ["xml", LAN, "-"]):
            with open("/dev/full", "wb") as full:
                status, _, words = run(*arguments, stdout=full)
            self.assertEqual((status, words), (3, "qxview: standard output: No space left on device\n"), arguments)
        for arguments in (["print", LAN, "-o"], ["xml", LAN], ["save", LAN]):
            status, _, words = run(*arguments, "/dev/full")
            self.assertEqual((status, "No space left on device" in words), (3, True), words)

    def test_a_source_that_fails_leaves_what_was_there(self):
        damaged = self.path("damaged.pcap.gz", gzip.compress(self.read(LAN))[:-8] + bytes(8))
        for command, out in ((["save", damaged], "a.bfr"), (["xml", damaged], "a.xml"), (["print", damaged, "-o"], "a.txt")):
            there = self.path(out)
            status, _, words = run(*command, there)
            self.assertEqual((status, "incorrect data check" in words), (3, True), words)
            self.assertTrue(self.read(there), "what was readable is kept where nothing was")
            self.path(out, b"what was there")
            status, _, words = run(*command, there)
            self.assertEqual((status, words.splitlines()[-1]), (3, f"qxview: {there}: stays as it was"))
            self.assertEqual(self.read(there), b"what was there")
        self.assertEqual(len(os.listdir(self.folder)), 4)

    def test_too_little_memory_is_told(self):
        image = (os.path.getsize(QXVIEW) >> 20) + 4   # with less the kernel ends it before it starts
        for megabytes in range(image, image + 12, 2):
            bound = lambda: resource.setrlimit(resource.RLIMIT_AS, (megabytes << 20, megabytes << 20))
            status, _, words = run("save", LAN, self.path("out"), preexec_fn=bound)
            if status != 127:   # the loader's, before the program starts
                self.assertIn((status, words and words.split(": ", 1)[0]), [(3, "qxview"), (0, "")], words)


class Links(Folder):
    def test_stay_and_lead_to_the_new_file(self):
        os.mkdir(self.path("there"))
        self.path("there/old.bfr", b"x")
        for name in ("late.bfr", "old.bfr"):
            os.symlink("there/" + name, self.path(name))
            self.assertEqual(run("save", LAN, self.path(name))[0], 0)
            self.assertTrue(os.path.islink(self.path(name)))
        self.assertEqual(self.read(self.path("there/late.bfr"))[-1000:], self.read(self.path("there/old.bfr"))[-1000:])
        self.assertEqual(len(os.listdir(self.folder)), 3)


@unittest.skipIf(WINDOWS, "owners and modes of POSIX")
class Places(Folder):
    def test_a_new_file_takes_the_place_of_the_old_one(self):
        os.symlink("round", self.path("round"))
        self.assertIn("Too many levels of symbolic links", run("save", LAN, self.path("round"))[2])
        for length in (248, 249, 255):
            for name in ("n" * length, "\N{EURO SIGN}" * (length // 3)):
                self.assertEqual(run("save", LAN, self.path(name))[0], 0, len(name))
        self.assertIn("File name too long", run("save", LAN, self.path("n" * 256))[2])
        self.assertEqual(len(os.listdir(self.folder)), 1 + 6)
        old = self.path("old.bfr", b"x")
        owner = (1234, 2345) if os.geteuid() == 0 else (os.geteuid(), os.getegid())
        os.chown(old, *owner)
        os.chmod(old, 0o6751)
        self.assertEqual(run("save", LAN, old)[0], 0)
        now = os.stat(old)
        self.assertEqual((now.st_uid, now.st_gid, now.st_mode & 0o7777), (*owner, 0o751))

    def test_settings_that_cannot_be_read_are_told(self):
        os.makedirs(self.path("vantrell/view.ini"))
        status, _, words = run("list", LAN, env={**os.environ, "XDG_CONFIG_HOME": self.folder})
        self.assertEqual((status, "view.ini" in words and "Is a directory" in words), (3, True), words)
        for setting in ("CustomLibrary3", "ExternalDecoder"):
            status, _, words = run("list", "--set", f"{setting}=/{'x' * 127}", LAN)
            self.assertEqual((status, f"{setting} has at most 127 bytes, not 128" in words), (2, True), words)

    def test_settings_that_may_not_be_looked_for_are_named(self):
        os.chmod(self.folder, 0o755)
        os.makedirs(self.path("closed/vantrell"), 0)
        other = {"user": 65534} if os.geteuid() == 0 else {}   # everything may be searched by root
        try:
            status, out, words = run("list", LAN, env={"XDG_CONFIG_HOME": self.path("closed")}, cwd="/", **other)
        except PermissionError:
            self.skipTest("the program cannot be reached by another user")
        self.assertEqual((status, bool(out), words), (0, True, f"qxview: {self.path('closed')}/vantrell/view.ini: "
                                                               "Permission denied; the settings are the defaults\n"))

    def test_packets_that_a_filter_cannot_be_made_for_are_told(self):
        def filtered(link_type, expression):
            capture = self.path("odd.pcap", self.read(LAN)[:20] + link_type.to_bytes(4, "little") + self.read(LAN)[24:])
            return run("list", "-f", expression, capture)

        for link_type, expression in ((300, "tcp"), (1, "type mgt")):
            status, out, words = filtered(link_type, expression)
            self.assertEqual((status, out, words.count("\n")), (3, b"", 1), words)
            self.assertIn(f"--filter leaves out the packets of link type {link_type} (", words)
        self.assertEqual(filtered(105, "type mgt")[0], 0, "one that Ethernet does not have")


class Json(unittest.TestCase):
    def test_bytes_are_carried(self):
        for line in run("decode", "-x", "--format", "json", "-c", "3", LAN)[1].splitlines():
            packet = json.loads(line)
            self.assertEqual(len(bytes.fromhex(packet["bytes"])), packet["captured"])
            self.assertIn(packet["bytes"][24:28], ("0800", "0806", "86DD"))


if __name__ == "__main__":
    unittest.main()
