#!/usr/bin/env python3
"""The scripts around the program: run.sh is quiet and works from anywhere, and the test run never adds up wrongly."""
import importlib.util
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def run(*command, folder="/"):
    return subprocess.run(command, cwd=folder, capture_output=True, text=True, timeout=600, check=False)


def read(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        return file.read()


def load_run_tests():
    where = importlib.util.spec_from_file_location("run_tests", os.path.join(ROOT, "scripts", "run_tests.py"))
    module = importlib.util.module_from_spec(where)
    sys.path.insert(0, os.path.join(ROOT, "scripts"))   # where its own modules are
    where.loader.exec_module(module)
    return module


class RunScript(unittest.TestCase):
    def test_passes_arguments_and_status_on(self):
        own = run(os.path.join(ROOT, "build", "qxview"), "--version")
        for folder in ("/", ROOT):
            through = run(os.path.join(ROOT, "run.sh"), "--version", folder=folder)
            self.assertEqual((through.returncode, through.stdout, through.stderr), (0, own.stdout, own.stderr))
        with tempfile.TemporaryDirectory() as folder:
            link = os.path.join(folder, "run")
            os.symlink(os.path.join(ROOT, "run.sh"), link)
            self.assertEqual(run(link, "--version", folder=folder).stdout, own.stdout)
        self.assertEqual(run(os.path.join(ROOT, "run.sh"), "decode", "/no/such/file").returncode, 3)

    def test_decodes_a_sample_without_arguments(self):
        through = run(os.path.join(ROOT, "run.sh"))
        self.assertEqual((through.returncode, through.stderr), (0, ""))
        self.assertIn("ARP", through.stdout)


class Setup(unittest.TestCase):
    def test_is_silent_and_quick_when_all_is_there(self):
        started = time.monotonic()
        done = run(os.path.join(ROOT, "scripts", "setup.sh"), "build", "test")
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))
        self.assertLess(time.monotonic() - started, 3)      # asks no package server; 0.02 s on an idle machine
        self.assertEqual(run(os.path.join(ROOT, "scripts", "setup.sh"), "nonsense").returncode, 2)


class Layout(unittest.TestCase):
    @unittest.skipUnless(shutil.which("git"), "no git")
    def test_files_have_names_without_blanks(self):
        names = run("git", "ls-files", folder=ROOT).stdout.splitlines()      # git quotes what is odd in a name
        self.assertEqual([name for name in names if " " in name or name.startswith('"')], [])

    @unittest.skipUnless(shutil.which("git"), "no git")
    def test_is_as_contributing_tells(self):
        kinds = ["*.cpp", "*.h", "*.c", "*.inc", "*.py", "*.sh", "*.cmake", "*.rc", "*.md", "CMakeLists.txt"]
        found = []
        for path in run("git", "ls-files", *kinds, folder=ROOT).stdout.split():
            with open(os.path.join(ROOT, path), encoding="utf-8") as file:
                text = file.read()
            if not text.endswith("\n") or text.endswith("\n\n"):
                found.append(f"{path}: ends with one line end")
            for number, line in enumerate(text.splitlines(), 1):
                code = path.endswith((".cpp", ".h")) and not path.startswith("tests/") and '"' not in line
                if "\t" in line or line != line.rstrip() or code and len(line) > 132:
                    found.append(f"{path}:{number}: a tab, a blank at the end, or more than 132 columns")
        self.assertEqual(found, [])


class Decoders(unittest.TestCase):
    # Reads past the cursor's checks: bytes by index or pointer, numbers through pointers.
    RAW = re.compile(r"\.(?:at|bytes)\s*[\[+]|\*\w+(?:\.\w+)*\.at\b|\bRead(?:Little)?U(?:16|24|32|64)\(")
    # What is left of them, and why.
    LEFT = {
        "app/dns_names.cpp": 3, "app/dns_summary.cpp": 3,   # names are walked over the whole message, in the caller's memory
        "link/bluetooth_hci.cpp": 1,                        # the address that it turns round
        "app/http_gzip.cpp": 5,                             # bodies are runs of several segments, for zlib
        "app/stun_attributes.cpp": 1,                       # the decoder's own array
        "net/pseudo_head.cpp": 1,                           # of an exported function, over a header that the caller has read
        # older than this rule
        "app/command_lines.cpp": 11, "app/dns.cpp": 1, "app/dns_data.cpp": 4, "app/dns_edns.cpp": 1, "app/knxnet_ip.cpp": 6,
        "app/mgcp.cpp": 1, "app/radius.cpp": 3, "app/rmcp.cpp": 2, "app/xdmcp.cpp": 1, "app/xmpp.cpp": 3,
        "app/dhcp_location.cpp": 1, "common/location.cpp": 1,
    }

    def test_read_bytes_through_the_cursor(self):
        found = {}
        for path in pathlib.Path(ROOT, "decoders").rglob("*.[ch]*"):
            lines = (line.split("//")[0] for line in path.read_text(encoding="utf-8").splitlines())
            count = sum(len(self.RAW.findall(line)) for line in lines)
            name = str(path.relative_to(os.path.join(ROOT, "decoders")))
            if count > self.LEFT.get(name, 0):
                found[name] = count
        self.assertEqual(found, {}, "raw reads in decoders: PeekU8(c, at), PeekBytes, PeekIs, FindU8 or Take* instead")


class Images(unittest.TestCase):
    def test_are_as_they_are_drawn(self):
        checked = run(os.path.join(ROOT, "scripts", "draw_images.py"), "--check")
        self.assertEqual((checked.returncode, checked.stdout), (0, ""))


class Texts(unittest.TestCase):
    CONSTANT = re.compile(r"\bchar\s*\*\s*(?:const\s+)?(k[A-Z]\w*)\s*=|\bchar\s+(k[A-Z]\w*)\[")

    def test_are_not_told_apart_by_their_addresses(self):
        """Equal literals share an address only where the linker merges them."""
        sources = {path: path.read_text() for folder in ("core", "decoders", "view", "host", "files", "exports", "app")
                   for path in pathlib.Path(ROOT, folder).rglob("*") if path.suffix in (".h", ".cpp")}
        self.assertGreater(len(sources), 300)
        named = {path: {a or b for a, b in self.CONSTANT.findall(text)} for path, text in sources.items()}
        shared = set().union(*(names for path, names in named.items() if path.suffix == ".h"))
        for path, text in sources.items():
            constants = "|".join(sorted(named[path] | shared))
            compared = re.search(rf"[!=]=\s*(?:{constants})\b(?!\[)|\b(?:{constants})\s*[!=]=", text)
            self.assertIsNone(compared, f"{path}: {compared and compared.group()}: a look-up without a name gives null")


class Bounds(unittest.TestCase):
    def test_of_state_are_told(self):
        rows = re.findall(r'^QX_STATE\(\w+, "([^"]+)".*?\.mostKeys = (\d+)', read("decoders/state_rows.inc"), re.M)
        self.assertGreater(len(rows), 2)
        for name, keys in rows:
            told = re.search(rf"^\| {re.escape(name)} \| {int(keys):,}\b", read("docs/architecture.md"), re.M)
            self.assertTrue(told, f"{name}: {keys} keys are not among the bounds of docs/architecture.md")


class Totals(unittest.TestCase):
    def setUp(self):
        self.module = load_run_tests()

    def test_of_scripts(self):
        for output, status, expected in (
                ("5 passed, 2 failed\n", 1, (5, 2)),
                ("5 passed, 0 failed\n", 1, (5, 1)),
                ("..\nRan 7 tests in 0.1s\n\nFAILED (failures=1, errors=2, skipped=1)\n", 1, (3, 3)),
                ("Ran 7 tests in 0.1s\n\nOK\n", 0, (7, 0)),
                ("Ran 0 tests in 0.0s\n\nOK\n", 0, (0, 1)),
                ("fine\n", 0, (1, 0)),
                ("Ran 2 tests in 0.1s\n\nOK\n", -11, (2, 1)),
                ("Traceback\n", 1, (0, 1))):
            result = self.module.count_script(output, status)
            self.assertEqual((result.passed, result.failed), expected, output)

    def test_of_cases(self):
        def case(**more):
            return {"name": "a", "status": "RUN", "result": "COMPLETED", **more}
        failed, skipped = case(failures=[{}]), case(result="SKIPPED")
        for cases, status, expected in (([case(), case(), failed, skipped], 1, (2, 1)), ([case()], 0, (1, 0)),
                                        ([case()], -6, (1, 1)), ([], 0, (0, 1)), ([skipped], 0, (0, 1))):
            with tempfile.NamedTemporaryFile("w", suffix=".json") as report:
                json.dump({"testsuites": [{"testsuite": cases}]}, report)
                report.flush()
                result = self.module.count_cases(report.name, status)
            self.assertEqual((result.passed, result.failed), expected, cases)
        self.assertIsNone(self.module.count_cases("/no/such/report", -11))


if __name__ == "__main__":
    unittest.main()
