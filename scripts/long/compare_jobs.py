#!/usr/bin/env python3
"""Every capture, decoded on one thread and on several: the same bytes, messages and status.

    scripts/long/compare_jobs.py FOLDER [--qxview build/qxview] [--jobs 3]

Prints each run that differs; the exit status is 1 then. docs/long-checks.md has the last result.
"""
import argparse
import os
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
RUNS = [
    ["decode", "--format", "text"],
    ["decode", "--format", "json"],
    ["decode", "--format", "json", "--keys", "-x", "--modern", "--reassemble"],
    ["decode", "--ranges", "--prefix-file"],
    ["decode", "--packets", "3-40,60-", "--format", "text"],
    ["decode", "-Y", "tcp or dns", "--format", "json"],
    ["find", "--all", "Version"],
    ["xml", "-"],
    ["find", "--all", "--format", "json", "--modern", "--reassemble", "Length"],
    ["list"],
    ["list", "--color", "always", "--prefix-file", "-t", "dd", "-Y", "not arp", "--modern", "--reassemble"],
    ["list", "--wide"],
    ["list", "--format", "json", "--packets", "2-"],
    ["fields", "-e", "frame.number", "-e", "frame.summary", "-e", "frame.source", "-e", "udp.srcport"],
    ["fields", "-e", "frame.protocols", "-e", "frame.protocol", "-e", "tcp", "--format", "json", "--modern", "--reassemble"],
    ["fields", "-e", "frame.summary", "-e", "frame.destination_port", "--prefix-file", "--packets", "5-"],
    ["fields", "-e", "ip.src", "-e", "http", "-e", "tls", "-e", "quic", "-Y", "frame.number > 3", "--values", "last"],
]


def outcome(qxview, words, path, jobs):
    text = words[-1:] if words[0] in ("find", "xml") else []   # behind the file
    result = subprocess.run([qxview, *words[:len(words) - len(text)], "--jobs", jobs, path, *text], capture_output=True, timeout=600)
    return result.returncode, result.stdout, result.stderr


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder")
    parser.add_argument("--qxview", default=os.path.join(ROOT, "build/qxview"))
    parser.add_argument("--jobs", default="3")
    options = parser.parse_args()
    runs = differing = octets = 0
    for name in sorted(os.listdir(options.folder)):
        for words in RUNS:
            path = os.path.join(options.folder, name)
            one = outcome(options.qxview, words, path, "1")
            runs += 1
            octets += len(one[1])
            if outcome(options.qxview, words, path, options.jobs) != one:
                differing += 1
                print(name, *words, flush=True)
    print(f"{runs} runs, {octets} bytes, {differing} differ")
    return int(differing > 0)


if __name__ == "__main__":
    sys.exit(main())
