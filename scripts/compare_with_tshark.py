#!/usr/bin/env python3
"""Compares the frames that list_frames reads with those of tshark: count, time, captured and wire length.

A fraction of a second or more, which damaged files have, is carried into the seconds here, while tshark prints it as it
stands after 32-bit arithmetic: such times are compared modulo 2^32 nanoseconds and counted apart.

usage: compare_with_tshark.py CAPTURES [--tool build/list_frames] [--jobs 2]

CAPTURES is a directory of capture files (or one file). Files that both readers find damaged are compared up to the
damage. Exit status 1 when anything differs.
"""
import argparse
import concurrent.futures
import itertools
import os
import subprocess
import sys


def run(command):
    done = subprocess.run(command, capture_output=True, text=True, errors="replace")
    return done.stdout.splitlines(), done.returncode, done.stderr.strip().splitlines()


def read_peer(path):
    fields = ["frame.number", "frame.time_epoch", "frame.cap_len", "frame.len"]
    return run(["tshark", "-n", "-r", path, "-T", "fields", *itertools.chain(*(("-e", f) for f in fields))])


def nanoseconds(text):
    """tshark's "-S.N" stands for S seconds less N nanoseconds."""
    seconds, fraction = text.lstrip("-").split(".")
    return int(seconds) * 10**9 + (-int(fraction) if text.startswith("-") else int(fraction))


def wraps(mine, theirs):
    """Whether two lines differ in nothing but a time whose fraction is out of range."""
    if not mine or not theirs:
        return False
    mine, theirs = mine.split("\t"), theirs.split("\t")
    if mine[:1] + mine[2:] != theirs[:1] + theirs[2:]:
        return False
    return (nanoseconds(mine[1]) - nanoseconds(theirs[1])) % 2**32 == 0


def compare(tool, path):
    """Returns (frames that agree, frames with wrapped times, list of differences, damage as both see it)."""
    ours, our_status, our_words = run([tool, path])
    peers, peer_status, peer_words = read_peer(path)
    peer_words = [w for w in peer_words if not w.startswith("Running as user")]
    found = []
    agreed = wrapped = 0
    for mine, theirs in itertools.zip_longest(ours, peers):
        if mine == theirs:
            agreed += 1
        elif wraps(mine, theirs):
            wrapped += 1
        elif len(found) < 3:
            found.append(f"ours {mine!r}, tshark {theirs!r}")
    if (our_status != 0) != (peer_status != 0):
        found.append(f"ours ends with {our_status} {our_words}, tshark with {peer_status} {peer_words}")
    return agreed, wrapped, found, (our_words, peer_words) if our_status else None


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("captures")
    parser.add_argument("--tool", default="build/list_frames")
    parser.add_argument("--jobs", type=int, default=2)
    options = parser.parse_args()
    if os.path.isdir(options.captures):
        names = sorted(os.listdir(options.captures))
        paths = [os.path.join(options.captures, n) for n in names if not n.endswith(".tsv")]
    else:
        paths = [options.captures]
    frames = wraps_seen = differing = damaged = 0
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for path, (agreed, wrapped, found, damage) in zip(paths, pool.map(lambda p: compare(options.tool, p), paths)):
            frames += agreed
            wraps_seen += wrapped
            differing += bool(found)
            damaged += bool(damage)
            if damage:
                print(f"damaged: {' '.join(damage[0])} | tshark: {' '.join(damage[1])}")
            for difference in found:
                print(f"DIFFERS: {os.path.basename(path)}: {difference}")
    print(f"{len(paths)} files, {frames} frames agree, {wraps_seen} with a fraction out of range, "
          f"{differing} files differ, {damaged} files are damaged")
    return 1 if differing else 0


if __name__ == "__main__":
    sys.exit(main())
