#!/usr/bin/env python3
"""Compares what the Windows program gives under Wine with what this system's gives, byte for byte.

  scripts/compare_windows.py [--jobs N] [--zone ZONE] [FILE or FOLDER...]      the samples where none is named

For every capture: `decode` as json and as text, `list` with local times, and the files of `save` and `xml`, with the exit
status of each. Capture buffer files tell when they were written; that is left out. Last line: `N passed, N failed`, a
comparison each; exit status 1 when one failed. Takes build/qxview and build-win32/qxview.exe.
"""
import argparse
import concurrent.futures
import hashlib
import os
import re
import subprocess
import sys
import tempfile

import wine

PLAIN = os.path.join(wine.ROOT, "build", "qxview")
WINDOWS = os.path.join(wine.FOLDER, "qxview.exe")
WRITTEN = re.compile(rb"[A-Z][a-z]{2} [A-Z][a-z]{2} [ \d]\d \d\d:\d\d:\d\d \d{4}\n")
HEADER_BYTES = 1024     # of a capture buffer file, with the time in them
FORMS = {"json": ["decode", "--format", "json"], "text": ["decode", "--format", "text"],
         "list": ["list", "-t", "a"], "save": ["save"], "xml": ["xml"]}
SECONDS = 600
HIDDEN = "no-libcrypto"


def digest(data):
    return hashlib.sha256(data).hexdigest()[:16], len(data)


def give(program, form, capture, environment, folder, stem):
    """What a program gives: the exit status, and what it wrote."""
    out = os.path.join(folder, stem)
    to_file = form in ("save", "xml")
    command = [*program, *FORMS[form], capture, *([out] if to_file else [])]
    with open(os.devnull if to_file else out, "wb") as output:
        done = wine.run_bounded(command, SECONDS, env=environment, stdin=subprocess.DEVNULL, stdout=output,
                                stderr=subprocess.DEVNULL)
    data = b""
    if os.path.exists(out):
        with open(out, "rb") as file:
            data = file.read()
        os.remove(out)
    if form == "save":
        data = WRITTEN.sub(b"", data[:HEADER_BYTES], count=1) + data[HEADER_BYTES:]
    return done.returncode, digest(data)


def hide_crypto(folder):
    """Gives this system the libcrypto that Wine has, none that can be loaded: what it opens stays closed in both."""
    os.mkdir(os.path.join(folder, HIDDEN))
    open(os.path.join(folder, HIDDEN, "libcrypto.so.3"), "wb").close()


def compare(capture, session, zone, folder, number):
    """The forms in which both programs differ over a capture."""
    here = {**os.environ, "TZ": zone, "XDG_CONFIG_HOME": folder, "LD_LIBRARY_PATH": os.path.join(folder, HIDDEN)}
    there = {**session.environment, "TZ": zone}
    return [form for form in FORMS
            if give([PLAIN], form, capture, here, folder, f"{number}.{form}") !=
            give(["wine", WINDOWS], form, capture, there, folder, f"{number}.{form}")]


def captures_of(paths):
    for path in paths or [os.path.join(wine.ROOT, "samples")]:
        if os.path.isdir(path):
            yield from sorted(os.path.join(path, name) for name in os.listdir(path)
                              if re.search(r"cap", name) and os.path.isfile(os.path.join(path, name)))
        else:
            yield path


def main():
    options = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    options.add_argument("--jobs", type=int, default=os.cpu_count() or 1)
    options.add_argument("--zone", default="UTC", help="the time zone of both")
    options.add_argument("paths", nargs="*")
    options = options.parse_args()
    captures = [os.path.abspath(path) for path in captures_of(options.paths)]
    passed = failed = 0
    with (tempfile.TemporaryDirectory() as folder, wine.Session() as session,
          concurrent.futures.ThreadPoolExecutor(options.jobs) as pool):
        hide_crypto(folder)
        found = pool.map(lambda item: compare(item[1], session, options.zone, folder, item[0]), enumerate(captures))
        for capture, differing in zip(captures, found):
            passed += len(FORMS) - len(differing)
            failed += len(differing)
            if differing:
                print(f"{capture}: {' '.join(differing)}", flush=True)
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    sys.exit(main())
