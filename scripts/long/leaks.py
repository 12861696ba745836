#!/usr/bin/env python3
"""Whether anything is left over after millions of frames: LeakSanitizer, loaded in front of the release build.

    scripts/long/leaks.py [CAPTURE.pcap] [--qxview build/qxview] [--frames 10000000]

The frames of the capture (without one: of all samples of the project) are given to the program on its standard input over and over
again, times and all, for each of the commands below. What was allocated and can be reached from nowhere when the program ends is a
leak; one that grows with the frames would be seen as memory, too, which is printed. The exit status is 1 when there is one.
docs/long-checks.md has the last result.
"""
import argparse
import glob
import os
import struct
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
COMMANDS = [["decode", "--jobs", "1"], ["decode", "--jobs", "2", "--format", "json", "--keys", "--modern", "--set", "Reassembly=1"],
            ["list", "-Y", "tcp.port == 80"], ["fields", "-e", "ip.src", "-e", "dns.qry.name"], ["stat", "conversations"], ["report"]]
FILE_HEADER = 24
LEAK_STATUS = 23


def frames_of(path):
    """The file's header, its records, and how many they are."""
    with open(path, "rb") as file:
        data = file.read()
    order = "<" if data[:4] in (b"\xd4\xc3\xb2\xa1", b"\x4d\x3c\xb2\xa1") else ">"
    at, count = FILE_HEADER, 0
    while at + 16 <= len(data):
        at += 16 + struct.unpack_from(order + "I", data, at + 8)[0]
        count += 1
    return data[:FILE_HEADER], data[FILE_HEADER:at], count


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("capture", nargs="?")
    parser.add_argument("--qxview", default=os.path.join(ROOT, "build", "qxview"))
    parser.add_argument("--frames", type=int, default=10_000_000)
    options = parser.parse_args()
    library = subprocess.run(["gcc", "-print-file-name=liblsan.so"], capture_output=True, text=True, check=True).stdout.strip()
    if not os.path.isabs(library):
        sys.exit("no library of LeakSanitizer beside the compiler: nothing was checked")
    faults = 0
    with tempfile.TemporaryDirectory() as folder:
        capture = options.capture
        if not capture:
            capture = os.path.join(folder, "samples.pcap")
            samples = sorted(glob.glob(os.path.join(ROOT, "samples", "*.pcap")))
            subprocess.run([options.qxview, "save", "--keep-going", "--format", "pcap", *samples, capture], check=False, stderr=subprocess.DEVNULL)
        header, records, count = frames_of(capture)
        rounds = -(-options.frames // count)
        for command in COMMANDS:
            out = ["-o", os.path.join(folder, "out")] if command[0] == "report" else []
            start = time.monotonic()
            with subprocess.Popen([options.qxview, command[0], *command[1:], "-", *out], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                                  stderr=subprocess.PIPE, env={**os.environ, "LD_PRELOAD": library,
                                                               "LSAN_OPTIONS": f"exitcode={LEAK_STATUS}"}) as running:
                try:
                    running.stdin.write(header)
                    for _ in range(rounds):
                        running.stdin.write(records)
                    running.stdin.close()
                except BrokenPipeError:
                    pass
                words = running.stderr.read().decode(errors="replace")
                _, status, usage = os.wait4(running.pid, 0)
                running.returncode = os.waitstatus_to_exitcode(status)
            good = running.returncode == 0 and "LeakSanitizer" not in words
            faults += not good
            print(f"{'ok  ' if good else 'FAIL'} {' '.join(command)}: {rounds * count:,} frames, {usage.ru_maxrss // 1024} MB, "
                  f"{usage.ru_utime + usage.ru_stime:.0f} s of processor time, {time.monotonic() - start:.0f} s", flush=True)
            if not good:
                print(words[-4000:])
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
