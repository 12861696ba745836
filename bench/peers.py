#!/usr/bin/env python3
"""Times qxview beside its peers over the same file in one run, and prints frames a second and the ratios.

usage: bench/peers.py CAPTURES [--qxview build/qxview] [--rounds 3]

CAPTURES is a capture file, or a folder whose Ethernet captures are merged into one first (mergecap). Each program runs
once to warm up and then `rounds` times in turn with its output to /dev/null; the best time of each counts. Name look-ups
are off everywhere. Start-up time and peak resident memory of qxview are printed too.
"""
import argparse
import os
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))


def merge(folder, out):
    """Merges the Ethernet captures of a folder, told by tshark's own tool."""
    files = []
    for name in sorted(os.listdir(folder)):
        path = os.path.join(folder, name)
        info = subprocess.run(["capinfos", "-E", "-T", "-r", path], capture_output=True, text=True)
        if info.returncode == 0 and info.stdout.rstrip().endswith("\tether"):
            files.append(path)
    subprocess.run(["mergecap", "-a", "-F", "pcap", "-w", out, *files], check=True, stderr=subprocess.DEVNULL)


def run(command):
    """Wall and processor seconds and peak resident KiB of one run."""
    start = time.perf_counter()
    with subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as process:
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    wall = time.perf_counter() - start
    return wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("captures")
    parser.add_argument("--qxview", default=os.path.join(HERE, "../build/qxview"))
    parser.add_argument("--rounds", type=int, default=3)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        path = options.captures
        if os.path.isdir(path):
            path = os.path.join(folder, "merged.pcap")
            merge(options.captures, path)
        frames = int(subprocess.run(["capinfos", "-T", "-r", "-c", "-M", path], capture_output=True, text=True,
                                    check=True).stdout.split("\t")[-1])
        programs = {
            "qxview decode --format text": [options.qxview, "decode", "--format", "text", path],
            "qxview decode --format tree": [options.qxview, "decode", path],
            "qxview decode --format json": [options.qxview, "decode", "--format", "json", path],
            "qxview list": [options.qxview, "list", path],
            "tshark -V": ["tshark", "-n", "-V", "-r", path],
            "tshark": ["tshark", "-n", "-r", path],
            "tcpdump -vv": ["tcpdump", "-n", "-vv", "-r", path],
            "tcpdump": ["tcpdump", "-n", "-r", path],
        }
        best = {}
        for name, command in programs.items():
            run(command)
        for _ in range(options.rounds):
            for name, command in programs.items():
                times = run(command)
                if name not in best or times[0] < best[name][0]:
                    best[name] = times
        start = min(run([options.qxview, "--version"])[0] for _ in range(10))
    print(f"{frames} frames, best of {options.rounds}\n")
    print(f"{'program':30} {'seconds':>8} {'processor':>9} {'frames/s':>10} {'MiB':>6}")
    for name, (wall, processor, memory) in best.items():
        print(f"{name:30} {wall:8.3f} {processor:9.3f} {frames / wall:10.0f} {memory / 1024:6.1f}")
    print(f"\nstart-up (--version): {start * 1000:.1f} ms\n")
    for ours, theirs in (("qxview decode --format text", "tshark -V"), ("qxview decode --format text", "tcpdump -vv"),
                         ("qxview list", "tshark"), ("qxview list", "tcpdump")):
        print(f"{ours} / {theirs}: {best[theirs][0] / best[ours][0]:.1f} times by wall clock, "
              f"{best[theirs][1] / best[ours][1]:.1f} by processor time")
    return 0


if __name__ == "__main__":
    sys.exit(main())
