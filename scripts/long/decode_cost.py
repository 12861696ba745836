#!/usr/bin/env python3
"""What decoding costs beside an earlier build, without reassembly and with it.

    scripts/long/decode_cost.py --before PROGRAM [--qxview build/qxview] [--runs 9 | --callgrind] CAPTURE|DIR...

The captures that both builds decode to the same trees are put behind one another, as often as makes 16 MB, for the earlier
build and this one: what is decoded now and was a block before would compare nothing. With --reassemble and without it this
build decodes all captures as they are. The ratios are of the user times of one round, or with --callgrind of the
instructions, of which one round is enough. The exit status is 1 when the median of the first is above 1.03 or that of the
second above 1.5. docs/long-checks.md has the last result.
"""
import argparse
import os
import re
import statistics
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
import oracle_support as oracle

MIX_SIZE = 16 << 20
MOST_WITHOUT, MOST_WITH = 1.03, 1.5   # the first has room for what a machine's noise leaves in a median


def user_seconds(program, *options, captures):
    process = subprocess.Popen([program, "decode", "--color=never", *options, *captures], stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    return os.wait4(process.pid, 0)[2].ru_utime


def instructions(program, *options, captures):
    command = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", program, "decode", "--color=never", *options]
    told = subprocess.run(command + captures, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True).stderr
    return int(re.search(r"Collected : (\d+)", told)[1])


def tree(program, capture):
    return subprocess.run([program, "decode", "--color=never", "--ranges", capture], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL).stdout


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("captures", nargs="+")
    parser.add_argument("--before", required=True)
    parser.add_argument("--qxview", default=os.path.join(oracle.ROOT, "build/qxview"))
    parser.add_argument("--runs", type=int, default=9)
    parser.add_argument("--callgrind", action="store_true")
    options = parser.parse_args()
    cost, runs = (instructions, 1) if options.callgrind else (user_seconds, options.runs)
    given = oracle.capture_paths(options.captures)
    mix = [path for path in given if (before := tree(options.before, path)) and before == tree(options.qxview, path)]
    size = sum(map(os.path.getsize, mix))
    print(f"{len(mix)} of {len(given)} captures are the same, {size} bytes")
    if not mix:
        return 1
    with tempfile.TemporaryDirectory() as folder:
        merged = os.path.join(folder, "mix.pcapng")
        times = 1 if options.callgrind else max(1, MIX_SIZE // size)
        subprocess.run(["mergecap", "-a", "-w", merged, *mix * times], check=True, stderr=subprocess.DEVNULL)
        sides = ((options.before, [merged]), (options.qxview, [merged]), (options.qxview, given, "--keep-going"),
                 (options.qxview, given, "--keep-going", "--reassemble"))
        rounds = [[cost(program, *more, captures=of) for program, of, *more in sides] for _ in range(runs)]
    before, now, without, joined = (statistics.median(costs) for costs in zip(*rounds))
    slower = statistics.median(b / a for a, b, *_ in rounds)
    reassembling = statistics.median(b / a for *_, a, b in rounds)
    print("instructions" if options.callgrind else f"seconds of user time, medians of {runs}")
    print(f"before {before:.6g}, now {now:.6g}: {slower:.3f}")
    print(f"without reassembly {without:.6g}, with it {joined:.6g}: {reassembling:.3f}")
    return int(slower > MOST_WITHOUT or reassembling > MOST_WITH)


if __name__ == "__main__":
    sys.exit(main())
