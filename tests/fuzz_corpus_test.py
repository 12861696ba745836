#!/usr/bin/env python3
"""The inputs that are kept of fuzzing (fuzz/corpus), run through their targets: nothing is found, whatever compiler built them."""
import glob
import os
import subprocess
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BUILD = os.path.dirname(os.environ.get("QXVIEW", os.path.join(ROOT, "build", "qxview")))
FUZZ_RUN = os.environ.get("FUZZ_RUN", os.path.join(BUILD, "fuzz_run"))
TARGETS = ["frame", "conversation", "payload", "capture", "filter", "settings", "exports"]


class Corpus(unittest.TestCase):
    def test_nothing_is_found(self):
        for target in TARGETS:
            with self.subTest(target):
                pack = os.path.join(ROOT, "fuzz", "corpus", target + ".pack")
                result = subprocess.run([FUZZ_RUN, target, pack], capture_output=True, text=True, errors="replace", check=False,
                                        timeout=600)
                self.assertEqual(result.returncode, 0, result.stderr[-4000:])
                self.assertRegex(result.stdout, r"^[1-9]\d* inputs of " + target)

    def test_there_are_no_others(self):
        packs = {os.path.basename(name)[:-5] for name in glob.glob(os.path.join(ROOT, "fuzz", "corpus", "*.pack"))}
        self.assertEqual(packs, set(TARGETS))


class Program(unittest.TestCase):
    def test_says_what_is_wrong(self):
        for words in ([], ["nothing", "x"], ["frame"], ["frame", "no-such-file"]):
            result = subprocess.run([FUZZ_RUN, *words], capture_output=True, text=True, check=False)
            self.assertNotEqual(result.returncode, 0, words)
            self.assertTrue(result.stderr, words)


if __name__ == "__main__":
    unittest.main()
