#!/usr/bin/env python3
"""Compares the decode trees of the samples with golden/, line by line with their ranges.

  tests/golden_test.py             compares
  tests/golden_test.py --update    writes golden/ anew: read the difference before it is committed

golden/LIST names a sample a line, the packets of it that are kept, and options that they are decoded with: these are in the
name of what is kept. Rows that need a secret are left out where there is no libcrypto, as under Wine.
"""
import difflib
import os
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
QXVIEW = os.environ.get("QXVIEW", os.path.join(ROOT, "build/qxview"))
GOLDEN = os.path.join(ROOT, "golden")


def decode(sample, packets, options):
    return subprocess.run([QXVIEW, "decode", "--ranges", "--color=never", *options, "--packets", packets,
                           os.path.join(ROOT, "samples", sample)], capture_output=True, check=True,
                          env={**os.environ, "XDG_CONFIG_HOME": "/nonexistent"}).stdout.decode()


def main():
    passed = failed = 0
    with open(os.path.join(GOLDEN, "LIST"), encoding="ascii") as file:
        rows = [line.split() for line in file if line.strip() and not line.startswith("#")]
    for sample, packets, *options in rows:
        is_opened = sample in ("tls_keys.pcapng", "dtls13.pcapng") or any("Secret=" in option for option in options)
        if os.environ.get("QXVIEW_PLATFORM") == "windows" and is_opened:
            continue
        kept_as = os.path.splitext(sample)[0] + "".join(option[1:] for option in options)
        path = os.path.join(GOLDEN, kept_as + ".txt")
        now = decode(sample, packets, options)
        if "--update" in sys.argv:
            with open(path, "w", encoding="utf-8") as file:
                file.write(now)
            continue
        with open(path, encoding="utf-8") as file:
            kept = file.read()
        if now == kept:
            passed += 1
            continue
        failed += 1
        print(f"{sample}:")
        difference = difflib.unified_diff(kept.splitlines(), now.splitlines(), "golden", "now", lineterm="", n=2)
        print("\n".join(list(difference)[:60]))
    if "--update" not in sys.argv:
        print(f"{passed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
