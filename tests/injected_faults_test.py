#!/usr/bin/env python3
"""Every system call of what writes files goes wrong once, and many of its allocations: it is told, and nothing is lost by it.

A library in front of the C library (tests/faults/faulty_calls.c) counts the calls of a run that goes well and then lets one of them
fail, or the program be killed in front of it. A call that the list below expects and that was never made fails the test: the fault
would not have been tried. QXVIEW_LONG=1 tries every allocation instead of some of them."""
import os
import re
import shutil
import struct
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
FAULTY = os.path.join(os.path.dirname(QXVIEW), "plugins", "faulty_calls.so")
KINDS = ["write", "read", "open", "fsync", "rename", "close", "truncate", "allocate"]
SAMPLES = [os.path.join(ROOT, "samples", name + ".pcap") for name in ("smb", "management", "lan")]
WHOLE_FILE = ("write", "read", "open", "fsync", "rename", "close")   # what a file written anew is made with
ERRORS = {"write": ("ENOSPC", "EIO", "part", "short", "EINTR"), "read": ("EIO", "short", "EINTR"), "open": ("EACCES", "EMFILE"),
          "fsync": ("EIO",), "rename": ("EACCES", "ENOSPC"), "close": ("EIO",), "truncate": ("EIO",)}
TRIED_ALLOCATIONS = 40   # of those that a run makes


class Run:
    """What a run of the program did: its status, words and calls."""

    def __init__(self, folder, arguments, call=None, at=0, how=None, timeout=60, **options):
        counts = os.path.join(folder, "counts")
        environment = {**os.environ, "LD_PRELOAD": FAULTY, "FAULTY_COUNTS": counts, "XDG_CONFIG_HOME": "/nonexistent", "TZ": "UTC"}
        if call:
            environment.update(FAULTY_CALL=call, FAULTY_AT=str(at), FAULTY_HOW=how)
        done = subprocess.run([QXVIEW, *arguments], check=False, timeout=timeout, env=environment,
                              **{"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options})
        self.status, self.output, self.words = done.returncode, done.stdout, done.stderr.decode()
        with open(counts, "rb") as file:
            *calls, self.faults = struct.unpack("9I", file.read())
        self.calls = dict(zip(KINDS, calls))


@unittest.skipUnless(os.path.exists(FAULTY), "no library of faulty calls beside the program")
class Faults(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.place = os.path.join(self.folder, "place")
        os.mkdir(self.place)

    def content(self, path):
        with open(path, "rb") as file:
            return file.read()

    def read(self, path):
        """Without the time of its making, which capture buffer files have in their header."""
        return re.sub(rb"(?<=in the decode window\) on )[ -~]{24}", b"then", self.content(path), count=1)

    def places(self, count):
        """Which of so many calls are tried."""
        if count <= TRIED_ALLOCATIONS or os.environ.get("QXVIEW_LONG"):
            return range(1, count + 1)
        return sorted({1 + round(i * (count - 1) / (TRIED_ALLOCATIONS - 1)) for i in range(TRIED_ALLOCATIONS)})

    def faults_of(self, good, expected_calls):
        """What is tried of a run that went well: every call once in every way, all of a kind cut short, and allocations."""
        for call in expected_calls:
            self.assertGreater(good.calls[call], 0, f"{call} was never called: nothing would be tried")
        faults = [(call, at, how) for call in expected_calls for at in range(1, good.calls[call] + 1) for how in ERRORS[call]]
        faults += [(call, -1, how) for call in ("write", "read") for how in ("short", "EINTR")]
        return faults + [("allocate", at, "ENOMEM") for at in self.places(good.calls["allocate"])]

    def put_back(self, out, old):
        for name in os.listdir(self.place):
            os.remove(os.path.join(self.place, name))
        with open(out, "wb") as file:
            file.write(old)

    def check_told(self, run, what):
        """The status is the one of a file that failed, and every line says whose words they are."""
        self.assertIn(run.status, (0, 3), (what, run.words))
        if run.status == 3:
            self.assertTrue(run.words, what)
            for line in run.words.splitlines():
                self.assertTrue(line.startswith("qxview: "), (what, run.words))

    def check_writing(self, arguments, name, old, expected_calls=WHOLE_FILE):
        """Every call of a command that writes the file `name`: what was there stays, or what is new is whole."""
        out = os.path.join(self.place, name)
        arguments = [argument if argument != "OUT" else out for argument in arguments]
        self.put_back(out, old)
        good = Run(self.folder, arguments)
        self.assertEqual((good.status, good.words), (0, ""))
        new = self.read(out)
        self.assertNotEqual(new, old)
        for call, at, how in self.faults_of(good, expected_calls):
            with self.subTest(call=call, at=at, how=how):
                self.put_back(out, old)
                run = Run(self.folder, arguments, call, at, how)
                self.assertGreater(run.faults, 0, "the fault was not made")
                self.check_told(run, (call, at, how))
                if how in ("short", "EINTR"):
                    self.assertEqual((run.status, run.words), (0, ""), "this is no fault")
                if run.status == 3 and call == "write" and how != "short":
                    self.assertIn(name, run.words)
                self.assertEqual(self.read(out) == new, run.status == 0, "neither the old file nor the new one")
                if run.status == 3:
                    self.assertEqual(self.read(out), old)
                self.assertEqual(os.listdir(self.place), [name], "something is left over")
        for call in expected_calls:
            for at in range(1, good.calls[call] + 1):
                for how in ("kill", "term"):
                    with self.subTest(call=call, at=at, how=how):
                        self.check_killed(arguments, out, old, new, call, at, how)

    def check_killed(self, arguments, out, old, new, call, at, how):
        self.put_back(out, old)
        run = Run(self.folder, arguments, call, at, how)
        self.assertGreater(run.faults, 0, "the fault was not made")
        self.assertIn(self.read(out), (old, new))
        if how == "kill":
            self.assertEqual(run.status, -9)
            self.assertLessEqual(len(os.listdir(self.place)), 2)
        else:
            self.assertIn(run.status, (0, -15), run.words)
            self.assertEqual(os.listdir(self.place), [os.path.basename(out)])
        again = Run(self.folder, arguments)
        self.assertEqual((again.status, self.read(out)), (0, new), "the next run is not hindered")

    def test_saved_files(self):
        for name in ("out.pcap", "out.pcapng", "out.bfr"):
            self.check_writing(["save", *(["--name", "packets"] if name.endswith("bfr") else []), *SAMPLES, "OUT"], name, b"what was there")

    def test_documents_and_texts(self):
        self.check_writing(["xml", SAMPLES[2], "OUT"], "out.xml", b"what was there")
        self.check_writing(["print", SAMPLES[2], "-o", "OUT"], "out.txt", b"what was there")
        self.check_writing(["report", SAMPLES[2], "-o", "OUT"], "out.html", b"what was there")

    @unittest.skipUnless(shutil.which("pdftotext"), "no poppler")
    def test_pages(self):
        out = os.path.join(self.place, "out.pdf")
        arguments = ["print", "--pdf", out, "--packets", "1", SAMPLES[2]]
        good = Run(self.folder, arguments)
        if "pdf" in good.words.lower():
            self.skipTest(good.words)
        self.assertEqual((good.status, good.words), (0, ""))
        for call in ("write", "open", "fsync", "rename"):
            self.assertGreater(good.calls[call], 0)
            # The library that draws opens files of its own, of fonts and the like, which it can do without.
            for at in self.places(good.calls[call]):
                for how in ERRORS[call][:2] if call != "open" else ERRORS[call]:
                    with self.subTest(call=call, at=at, how=how):
                        self.put_back(out, b"what was there")
                        run = Run(self.folder, arguments, call, at, how)
                        self.assertIn(run.status, (0, 3), run.words)
                        self.assertEqual(run.status == 3, self.read(out) == b"what was there", run.words)
                        self.assertEqual(os.listdir(self.place), ["out.pdf"])

    def test_appending(self):
        out = os.path.join(self.place, "out.bfr")
        self.assertEqual(Run(self.folder, ["save", SAMPLES[2], out]).status, 0)
        old = self.content(out)
        listed = Run(self.folder, ["list", out]).output
        arguments = ["save", "--append", *SAMPLES[:2], out]
        good = Run(self.folder, arguments)
        self.assertEqual((good.status, good.words), (0, ""))
        new, whole = self.content(out), Run(self.folder, ["list", out]).output
        self.assertTrue(whole.startswith(listed) and len(whole) > len(listed))
        expected = ("write", "read", "open", "fsync")
        for call, at, how in self.faults_of(good, expected):
            with self.subTest(call=call, at=at, how=how):
                self.put_back(out, old)
                run = Run(self.folder, arguments, call, at, how)
                self.assertGreater(run.faults, 0, "the fault was not made")
                self.check_told(run, (call, at, how))
                if run.status == 0:
                    self.assertEqual(self.content(out), new)
                elif call == "write":
                    self.assertEqual(self.content(out), old)
                else:   # packets that were read before the fault are there
                    left = Run(self.folder, ["list", out])
                    self.assertEqual(left.status, 0, left.words)
                    self.assertTrue(left.output.startswith(listed) and whole.startswith(left.output))
        for call in expected:
            for at in range(1, good.calls[call] + 1):
                with self.subTest(call=call, at=at, how="kill"):
                    self.put_back(out, old)
                    run = Run(self.folder, arguments, call, at, "kill")
                    self.assertEqual((run.faults, run.status), (1, -9))
                    self.assertTrue(self.content(out).startswith(old))
                    left = Run(self.folder, ["list", out]).output
                    self.assertTrue(left.startswith(listed), "packets that were there are lost")
                    self.assertTrue(whole.startswith(left), "packets that nobody saved")
                    again = Run(self.folder, ["save", "--append", SAMPLES[2], out])
                    self.check_told(again, "append to what was left")
                    self.assertTrue(Run(self.folder, ["list", out]).output.startswith(listed))

    def test_standard_output(self):
        out = os.path.join(self.place, "lines")
        for command in (["decode"], ["decode", "--format", "json", "--jobs", "2"], ["list"], ["fields", "-e", "ip.src"], ["stat", "protocols"],
                        ["save", "--format", "pcap"]):
            arguments = [*command, SAMPLES[1], *(["-"] if command[0] == "save" else [])]
            good = Run(self.folder, arguments)
            self.assertEqual((good.status, good.words), (0, ""))
            self.assertGreater(good.calls["write"], 0)
            for at in self.places(good.calls["write"]):
                for how in ("ENOSPC", "part"):
                    with self.subTest(command=command, at=at, how=how), open(out, "wb") as file:
                        run = Run(self.folder, arguments, "write", at, how, stdout=file)
                        if run.faults == 0:
                            continue   # threads make other numbers of writes
                        self.assertEqual(run.status, 3, run.words)
                        self.assertRegex(run.words, "^qxview: standard output: .*No space left on device")
                        self.assertTrue(good.output.startswith(self.read(out)), "what stands there is the start of the whole")
            for at in self.places(good.calls["allocate"]):
                with self.subTest(command=command, at=at, how="ENOMEM"):
                    run = Run(self.folder, arguments, "allocate", at, "ENOMEM")
                    self.check_told(run, command)
                    if run.status == 0:
                        self.assertEqual(run.output, good.output)
            run = Run(self.folder, arguments, "write", -1, "short")
            self.assertEqual((run.status, run.output), (0, good.output))

    def test_slow_and_full_pipes(self):
        """A reader that takes its time gets all of it; one that goes away ends the program quietly."""
        good = Run(self.folder, ["decode", SAMPLES[0]])
        with subprocess.Popen([QXVIEW, "decode", SAMPLES[0]], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              env={**os.environ, "LD_PRELOAD": FAULTY, "FAULTY_COUNTS": os.path.join(self.folder, "counts"),
                                   "FAULTY_CALL": "write", "FAULTY_AT": "-1", "FAULTY_HOW": "slow"}) as slow:
            read = b""
            while piece := os.read(slow.stdout.fileno(), 4096):
                read += piece
            self.assertEqual((slow.wait(30), read, slow.stderr.read()), (0, good.output, b""))
        for command in (["decode"], ["decode", "--jobs", "2"], ["list"], ["xml"]):
            arguments = [QXVIEW, *command, SAMPLES[0], *(["-"] if command == ["xml"] else [])]
            with subprocess.Popen(arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE) as gone:
                os.read(gone.stdout.fileno(), 10)
                gone.stdout.close()
                self.assertIn(gone.wait(30), (0, -13))
                self.assertEqual(gone.stderr.read(), b"")


if __name__ == "__main__":
    unittest.main()
