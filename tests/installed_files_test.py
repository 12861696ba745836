#!/usr/bin/env python3
"""What is installed beside the program: it is all there, and it names the commands and options that the program has."""
import os
import re
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview"))
COMMANDS = ["decode", "find", "list", "print", "protocols", "save", "xml"]
TEXTS = ["docs/qxview.1", "completions/qxview.bash", "completions/_qxview", "completions/qxview.fish"]


def read(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        return file.read().replace("\\-", "-")


def help_of(*command):
    return subprocess.run([QXVIEW, *command, "--help"], capture_output=True, text=True, check=True).stdout


class InstalledFiles(unittest.TestCase):
    def test_commands_and_options_are_named_everywhere(self):
        listed = help_of()
        found = re.findall(r"^  (\w+) ", listed, re.M)
        self.assertTrue(set(COMMANDS) <= set(found), listed)
        options = {option for command in found for option in re.findall(r"(?<![\w-])--([a-z-]+)", help_of(command))}
        for path in TEXTS:
            text = read(path)
            for command in found:
                self.assertIn(command, text, path)
            for option in options:
                self.assertRegex(text, rf"(--|-l ){option}\b", path)

    def test_settings_are_named_everywhere(self):
        names = re.findall(r"`([A-Z]\w+)`", "\n".join(re.findall(r"^\| (`.*?) \|", read("docs/settings.md"), re.M)))
        self.assertGreater(len(names), 25)
        for path in TEXTS:
            for name in names:
                self.assertIn(name, read(path), path)
        for name in names:
            done = subprocess.run([QXVIEW, "decode", "--set", name + "=", os.path.join(ROOT, "samples/vlan.pcap")],
                                  capture_output=True, check=False)
            self.assertEqual(done.returncode, 0, name)

    def complete(self, *words):
        script = (f". {ROOT}/completions/qxview.bash; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _qxview; "
                  "printf '%s\\n' \"${COMPREPLY[@]}\"")
        return subprocess.run(["bash", "-c", script, "bash", *words], capture_output=True, text=True, check=True,
                              cwd=os.path.join(ROOT, "samples"),
                              env={**os.environ, "PATH": os.path.dirname(QXVIEW) + ":" + os.environ["PATH"]}
                              ).stdout.splitlines()

    def test_bash_completes(self):
        self.assertEqual(self.complete("qxview", "pr"), ["print", "protocols"])
        self.assertEqual(self.complete("qxview", "decode", "--format", "j"), ["json"])
        self.assertEqual(self.complete("qxview", "decode", "--color", "=", "n"), ["never"])
        self.assertEqual(self.complete("qxview", "save", "--a"), ["--append"])
        self.assertEqual(self.complete("qxview", "xml", "vl"), ["vlan.pcap"])
        self.assertEqual(self.complete("qxview", "protocols", "--p"), [""])
        self.assertEqual(self.complete("qxview", "find", "--set", "Ali"), ["AliasFile="])
        self.assertEqual(self.complete("qxview", "find", "--set", "AliasFile", "=", "vl"), ["vlan.pcap"])
        self.assertEqual(self.complete("qxview", "list", "-d", "tcp", ":", "80", "=", "ftp"), ["FTP", "FTP\\ Data"])

    @unittest.skipUnless(shutil.which("man"), "no man")
    def test_the_man_page_is_well_formed(self):
        shown = subprocess.run(["man", "--warnings", "-l", os.path.join(ROOT, "docs", "qxview.1")], capture_output=True,
                               text=True, check=True, env={**os.environ, "MANPAGER": "cat", "LC_ALL": "C.UTF-8"})
        self.assertEqual(shown.stderr, "")

    @unittest.skipUnless(shutil.which("cmake"), "no cmake")
    def test_everything_is_installed(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run(["cmake", "--install", os.path.dirname(QXVIEW), "--prefix", folder], check=True,
                           capture_output=True)
            there = {os.path.join(place, name)[len(folder) + 1:] for place, _, names in os.walk(folder)
                     for name in names}
            for name in ("bin/qxview", "include/qxview/qxview.h", "include/qxview/qxview_host.h", "share/man/man1/qxview.1",
                         "share/bash-completion/completions/qxview", "share/zsh/vendor-completions/_qxview",
                         "share/fish/vendor_completions.d/qxview.fish", "share/doc/qxview/capture-file.md"):
                self.assertIn(name, there)
            packaged = re.findall(r"^usr/(\S+)", "".join(read(path) for path in sorted(
                f"debian/{name}" for name in os.listdir(os.path.join(ROOT, "debian")) if "install" in name)), re.M)
            for name in sorted(there):
                self.assertTrue(not name.startswith("share/") or name.startswith(tuple(packaged)), f"{name}: in no package")
            self.assertTrue(any(name.startswith("lib") and name.endswith("libqxview.so") for name in there))
            version = subprocess.run([os.path.join(folder, "bin", "qxview"), "--version"], capture_output=True, check=True)
            self.assertIn(b"qxview", version.stdout)


if __name__ == "__main__":
    unittest.main()
