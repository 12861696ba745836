#!/usr/bin/env python3
"""The protections that the compiler and the linker add are in the files that were built."""
import os
import re
import shutil
import subprocess
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
LIBRARY = os.environ.get("QXVIEW_LIBRARY", os.path.join(os.path.dirname(QXVIEW), "libqxview.so"))


def told(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


@unittest.skipUnless(shutil.which("readelf"), "no readelf")
class LinuxFiles(unittest.TestCase):
    def test_are_hardened(self):
        for path in (QXVIEW, LIBRARY):
            with self.subTest(path):
                moves = re.search(r"Type:\s+DYN", told("readelf", "-hW", path))
                if path == LIBRARY:
                    self.assertTrue(moves, "addresses of its own at each start")
                elif not moves:   # what it is for: nothing but imported names is left to be told at each start
                    places = re.findall(r"^[0-9a-f]{8,}  ", told("readelf", "-rW", path), re.MULTILINE)
                    self.assertLess(len(places), 2000)
                segments = told("readelf", "-lW", path)
                self.assertIn("GNU_RELRO", segments)
                self.assertRegex(segments, r"GNU_STACK .* RW ", "the stack is not run")
                self.assertIn("BIND_NOW", told("readelf", "-dW", path))
                imported = told("readelf", "--dyn-syms", "-W", path)
                self.assertIn("__stack_chk_fail", imported)
                self.assertRegex(imported, r"__\w+_chk@")
        with open(QXVIEW, "rb") as file:
            if "X86-64" in told("readelf", "-hW", QXVIEW):   # endbr64: indirect branches land where they may
                self.assertGreater(file.read().count(b"\xF3\x0F\x1E\xFA"), 500)


def windows_files():
    """Beside the DLL that is named: the files with the tool that reads them."""
    folder = os.path.dirname(os.environ.get("QXVIEW_DLL", ""))
    tool = ("x86_64" if folder.endswith("64") else "i686") + "-w64-mingw32-objdump"
    return [(os.path.join(folder, name), tool) for name in ("qxview.exe", "qxview.dll")] if folder else []


class WindowsFiles(unittest.TestCase):
    def test_are_hardened_stripped_and_named(self):
        for path, tool in windows_files():
            with self.subTest(path):
                headers = told(tool, "-p", path)
                for flag in ["DYNAMIC_BASE", "NX_COMPAT"] + (["HIGH_ENTROPY_VA"] if tool.startswith("x86_64") else []):
                    self.assertIn(flag, headers)
                sections = told(tool, "-h", path)
                self.assertIn(".reloc", sections)
                self.assertNotIn(".debug", sections)
                with open(path, "rb") as file:
                    content = file.read()
                self.assertIn("OriginalFilename".encode("utf-16-le"), content)
                self.assertEqual(bool(re.search(rb"<longPathAware[^>]*>true<", content)), path.endswith(".exe"))


if __name__ == "__main__":
    unittest.main()
