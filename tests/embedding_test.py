#!/usr/bin/env python3
"""Programs of others: in C, C++ and Python, against nothing but what is installed."""
import ctypes
import glob
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
LIBRARY = os.environ.get("QXVIEW_LIBRARY", os.path.join(os.path.dirname(QXVIEW), "libqxview.so"))
PROGRAMS = os.path.join(ROOT, "tests", "embedding")
SAMPLES = sorted(glob.glob(os.path.join(ROOT, "samples", "*.pcap")))
DNS = os.path.join(ROOT, "samples", "dns.pcap")
FRAME = bytes.fromhex("ffffffffffff0200000000010806000108000604000102000000000" "10a0000010000000000000a000002")


def run(*command, **more):
    done = subprocess.run(command, capture_output=True, text=True, timeout=300, check=False, **more)
    if done.returncode != 0:
        raise AssertionError(f"{command}: status {done.returncode}\n{done.stdout[-2000:]}{done.stderr[-4000:]}")
    return done.stdout


def decode(path):
    return [json.loads(line) for line in run(QXVIEW, "decode", "--settings", os.devnull, "--format", "json",
                                             path).splitlines()]


def render(lines, depth=0):
    return "".join(f"{'  ' * depth}{line['text']} [{line['offset']}, {line['length']}]\n" +
                   render(line.get("lines", []), depth + 1) for line in lines)


def count_lines(lines):
    return sum(1 + count_lines(line.get("lines", [])) for line in lines)


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp()
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.prefix = os.path.join(cls.folder, "prefix")
        run("cmake", "--install", os.path.dirname(QXVIEW), "--prefix", cls.prefix)
        library, = glob.glob(os.path.join(cls.prefix, "**", "libqxview.so"), recursive=True)
        cls.libraries = os.path.dirname(library)
        cls.surroundings = {**os.environ, "LD_LIBRARY_PATH": cls.libraries, "XDG_CONFIG_HOME": cls.folder,
                            "PKG_CONFIG_PATH": os.path.join(cls.libraries, "pkgconfig")}
        cls.surroundings.pop("QXVIEW_LIBRARY", None)

    def test_a_program_in_c(self):
        flags = run("pkg-config", "--cflags", "--libs", "qxview", env=self.surroundings).split()
        program = os.path.join(self.folder, "tree")
        run("cc", "-std=c99", "-Wall", "-Wextra", "-Wpedantic", "-Werror", os.path.join(PROGRAMS, "tree.c"), "-o",
            program, *flags)
        self.assertEqual(run(program, DNS, env=self.surroundings),
                         "".join(render(packet["lines"]) for packet in decode(DNS)))
        missing = subprocess.run([program, "/no/such"], capture_output=True, text=True, check=False,
                                 env=self.surroundings)
        self.assertEqual((missing.returncode, missing.stderr), (1, "/no/such: No such file or directory\n"))

    def test_a_program_in_cpp_with_threads(self):
        build = os.path.join(self.folder, "build")
        run("cmake", "-S", PROGRAMS, "-B", build, f"-DCMAKE_PREFIX_PATH={self.prefix}")
        run("cmake", "--build", build)
        count = run(os.path.join(build, "threads"), *SAMPLES[:8], env=self.surroundings)
        lines = sum(count_lines(packet["lines"]) for path in SAMPLES[:8] for packet in decode(path))
        self.assertEqual(count, f"{lines}\n")

    def test_a_program_in_python(self):
        module, = glob.glob(os.path.join(self.prefix, "**", "qxview.py"), recursive=True)
        script = ("import qxview\n"
                  "view = qxview.View('')\n"
                  f"for packet in qxview.open({DNS!r}):\n"
                  "    for line in view.decode(packet).walk():\n"
                  "        print('  ' * line.depth + line.text, [line.offset, line.length])\n")
        surroundings = {**self.surroundings, "PYTHONPATH": os.path.dirname(module)}
        surroundings.pop("LD_LIBRARY_PATH")
        self.assertEqual(run(sys.executable, "-c", script, env=surroundings),
                         "".join(render(packet["lines"]) for packet in decode(DNS)))


class PythonModule(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        os.environ["QXVIEW_LIBRARY"] = LIBRARY
        sys.path.insert(0, os.path.join(ROOT, "python"))
        import qxview   # pylint: disable=import-outside-toplevel
        cls.qxview = qxview

    def test_lists_what_the_program_lists(self):
        for path in SAMPLES:
            with self.subTest(path):
                listed = run(QXVIEW, "list", "--settings", os.devnull, path).splitlines()
                with self.qxview.View("") as view:
                    full = [view.decode(packet).as_dict() for packet in self.qxview.open(path)]
                rows = list(self.qxview.records(path, ""))
                self.assertEqual(rows, full, "headers alone give the same line")
                self.assertEqual(len(listed), len(rows))
                for line, row in zip(listed, rows):
                    self.assertEqual(line.split()[0], str(row["number"]))
                    self.assertTrue(line.endswith(f"{row['length']}  {row['summary']}"), (line, row))
                    self.assertIn(f"  {row['source']} ", line)
                    self.assertIn(f"  {row['destination']} ", line)

    def test_keys_and_values_are_those_of_the_program(self):
        told = run(QXVIEW, "decode", "--settings", os.devnull, "--format", "json", "--keys", DNS).splitlines()
        view = self.qxview.View("", keys=True)

        def keys(lines):
            for line in lines:
                yield line.get("key"), line.get("value")
                yield from keys(line.get("lines", []))

        for line, packet in zip(told, self.qxview.open(DNS)):
            self.assertEqual([(line.key, line.value) for line in view.decode(packet).walk()],
                             list(keys(json.loads(line)["lines"])))

    def test_misuse_raises(self):
        qx = self.qxview
        for wrong in (None, 7, object()):
            with self.assertRaises(TypeError):
                qx.View().decode(wrong)
            with self.assertRaises(TypeError):
                qx.open(wrong)
        with self.assertRaises(TypeError):
            qx.View(settings=b"[View]")
        with self.assertRaisesRegex(qx.Error, "the settings, line 2: there is no setting \"Nonsense\""):
            qx.View("[View]\nNonsense = 1\n")
        with self.assertRaisesRegex(qx.Error, "not a capture file"):
            qx.open(__file__)
        for wrong in ({"link_type": -1}, {"link_type": 65536}, {"length": -1}, {"nanoseconds": 1 << 63}):
            with self.assertRaises(ValueError):
                qx.View().decode(FRAME, **wrong)
        view, capture = qx.View(), qx.open(DNS)
        packet = next(capture)
        first = view.decode(packet)
        kept = first.lines[0]
        second = view.decode(FRAME)
        with self.assertRaises(ValueError):
            first.summary   # pylint: disable=pointless-statement
        view.close()
        capture.close()
        for late in (lambda: view.decode(FRAME), lambda: second.lines, lambda: next(capture), lambda: capture.percent):
            with self.assertRaises(ValueError):
                late()
        self.assertEqual((kept.text, first.lines[0]), ("Packet 1:  %d bytes captured" % len(packet.data), kept))
        packet._record = packet._record[:40]   # pylint: disable=protected-access
        with self.assertRaises(ValueError):
            qx.View().decode(packet)

    def test_messages_come_when_the_call_is_over(self):
        told = []
        self.qxview.View("[View]\nCustomLibrary0 = /no/such.so\n", on_message=lambda kind, text: told.append(text))
        self.assertRegex(told.pop(), "^1 of 1 user libraries are not loaded: .*/no/such.so")
        view = self.qxview.View("", on_message=lambda kind, text: (told.append((kind, text)), view.close()))
        view.decode(b"\0" * 20, link_type=147)
        self.assertEqual(told, [("note", "link type 147 (LINKTYPE_USER0) has no decoder; its packets are not decoded")])


class Records(unittest.TestCase):
    """Records that no capture holds, through the plain functions."""

    def test_contradicting_lengths_are_refused(self):
        library = ctypes.CDLL(LIBRARY)
        library.QxView_CreateView.restype = ctypes.c_void_p
        library.QxView_LastError.restype = ctypes.c_char_p
        view = ctypes.c_void_p(library.QxView_CreateView(None))
        good = bytearray(48) + FRAME
        good[8:10] = len(FRAME).to_bytes(2, "little")
        good[12:16] = b"\x30\x00" + len(good).to_bytes(2, "little")
        good[18] = 1
        self.assertEqual(library.QxView_DecodeFrame(view, bytes(good), 0, 0, 0), 1)
        for at, value in ((8, 0xFFFF), (12, 0xFFFF), (12, 31), (14, 0), (14, len(good) - 1)):
            wrong = bytearray(good)
            wrong[at:at + 2] = value.to_bytes(2, "little")
            self.assertEqual(library.QxView_DecodeFrame(view, bytes(wrong), 0, 0, 0), 0)
            self.assertIn(b"contradict", library.QxView_LastError())
        library.QxView_DestroyView(view)


if __name__ == "__main__":
    unittest.main()
