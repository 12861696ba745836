#!/usr/bin/env python3
"""Times qxview beside its peers over the same files in one run, and prints seconds, frames a second and the ratios.

  bench/peers.py CAPTURES... [--qxview build/qxview] [--rounds 5] [--only WORD] [--instructions] [--markdown]
  bench/peers.py FOLDER --many 10000 [--qxview build/qxview]

CAPTURES are capture files, each a mix of its own, or folders whose Ethernet captures are merged into one first (mergecap). Every
program runs once to warm up and then `rounds` times in turn, output to /dev/null: a pair of one round met the same machine, so
ratios are medians over the rounds, with the least and the most beside them. All but the runs of two jobs are held on one
processor. Name look-ups are off everywhere. --instructions adds what callgrind counts of qxview's runs, which other work on the
machine does not change. Start-up time and peak resident memory are printed, too, and the peers' versions.

--many takes the captures of less than 20 KB of FOLDER over and over, so many of them, in one run by --files-from and in a run each.
"""
import argparse
import os
import re
import statistics
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
TSHARK = "/usr/bin/tshark"


def merge(folder, out):
    """Merges the Ethernet captures of a folder, told by tshark's own tool."""
    files = []
    for name in sorted(os.listdir(folder)):
        path = os.path.join(folder, name)
        info = subprocess.run(["capinfos", "-E", "-T", "-r", path], capture_output=True, text=True)
        if info.returncode == 0 and info.stdout.rstrip().endswith("\tether"):
            files.append(path)
    subprocess.run(["mergecap", "-a", "-F", "pcap", "-w", out, *files], check=True, stderr=subprocess.DEVNULL)


def run(command, processors):
    """Wall and processor seconds and peak resident KiB of one run."""
    start = time.perf_counter()
    with subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL,
                          preexec_fn=lambda: os.sched_setaffinity(0, processors)) as process:
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    return time.perf_counter() - start, usage.ru_utime + usage.ru_stime, usage.ru_maxrss


def programs_of(qxview, path, address, word):
    """Name, command, whether on all processors."""
    everything = [
        ("qxview text", [qxview, "decode", "--jobs", "1", path]), ("qxview text, 2 jobs", [qxview, "decode", "--jobs", "2", path]),
        ("qxview json", [qxview, "decode", "--format", "json", "--jobs", "1", path]),
        ("qxview json, 2 jobs", [qxview, "decode", "--format", "json", "--jobs", "2", path]),
        ("qxview list", [qxview, "list", "--jobs", "1", path]), ("qxview list, 2 jobs", [qxview, "list", "--jobs", "2", path]),
        ("qxview list -Y address", [qxview, "list", "-Y", f"ip.addr == {address}", path]),
        ("qxview fields", [qxview, "fields", "-e", "frame.number", "-e", "frame.time", "-e", "ip.src", "-e", "ip.dst", "-e",
                           "tcp.srcport", "-e", "tcp.dstport", path]),
        ("qxview conversations", [qxview, "stat", "conversations", path]),
        ("tshark -V", [TSHARK, "-n", "-V", "-r", path]), ("tshark json", [TSHARK, "-n", "-T", "json", "-r", path]),
        ("tshark list", [TSHARK, "-n", "-r", path]),
        ("tshark -Y address", [TSHARK, "-n", "-Y", f"ip.addr == {address}", "-r", path]),
        ("tshark fields", [TSHARK, "-n", "-T", "fields", "-e", "frame.number", "-e", "frame.time", "-e", "ip.src", "-e", "ip.dst",
                           "-e", "tcp.srcport", "-e", "tcp.dstport", "-r", path]),
        ("tshark conversations", [TSHARK, "-n", "-q", "-z", "conv,tcp", "-r", path]),
        ("tcpdump -vv -X", ["tcpdump", "-n", "-vv", "-X", "-r", path]), ("tcpdump list", ["tcpdump", "-n", "-r", path]),
    ]
    return [(name, command, name.endswith("jobs")) for name, command in everything if word in name]


RATIOS = [("qxview text", "tshark -V"), ("qxview text", "tcpdump -vv -X"), ("qxview json", "tshark json"),
          ("qxview list", "tshark list"), ("qxview list", "tcpdump list"), ("qxview list -Y address", "tshark -Y address"),
          ("qxview fields", "tshark fields"), ("qxview conversations", "tshark conversations"),
          ("qxview text, 2 jobs", "qxview text"), ("qxview json, 2 jobs", "qxview json"), ("qxview list, 2 jobs", "qxview list")]


def output_of(command):
    """Lines and bytes that a command writes."""
    lines = size = 0
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
        while piece := process.stdout.read(1 << 20):
            lines += piece.count(b"\n")
            size += len(piece)
    return lines, size


def instructions_of(command):
    with tempfile.TemporaryDirectory() as folder:
        result = subprocess.run(["valgrind", "--tool=callgrind", f"--callgrind-out-file={folder}/out", *command],
                                stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    return int(re.search(r"refs:\s+([\d,]+)", result.stderr).group(1).replace(",", ""))


def measure(path, options):
    info = subprocess.run(["capinfos", "-T", "-r", "-c", "-M", path], capture_output=True, text=True, check=True)
    frames = int(info.stdout.split("\t")[-1])
    first = subprocess.run([options.qxview, "fields", "--no-header", "-e", "ip.src", "--values", "first", "-c", "1", "-Y", "ip", path],
                           capture_output=True, text=True).stdout.strip() or "192.0.2.1"
    programs = programs_of(options.qxview, path, first, options.only)
    available = sorted(os.sched_getaffinity(0))
    rounds = {name: [] for name, _, _ in programs}
    for count in range(options.rounds + 1):
        for name, command, isParallel in programs:
            times = run(command, available if isParallel else available[-1:])
            if count > 0:
                rounds[name].append(times)
    print(f"\n{os.path.basename(path)}: {frames} frames, {os.path.getsize(path) / 1e6:.1f} MB, {options.rounds} rounds\n")
    bar = " | " if options.markdown else "  "
    row = (lambda cells: "| " + bar.join(cells) + " |") if options.markdown else bar.join
    print(row([f"{'program':24}", "seconds", "processor", "frames/s".rjust(9), "   MiB", "   lines", "ns a line", "instructions a byte"]))
    if options.markdown:
        print("|" + "---|" * 8)
    for name, command, _ in programs:
        wall = statistics.median(times[0] for times in rounds[name])
        processor = statistics.median(times[1] for times in rounds[name])
        lines, size = output_of(command) if "list" not in name else (frames, 0)
        counted = ""
        if options.instructions and name.startswith("qxview") and "2 jobs" not in name:
            count = instructions_of(command)
            counted = f"{count / max(size, 1):.1f}" if size else f"{count / frames:.0f} a frame"
        print(row([f"{name:24}", f"{wall:7.3f}", f"{processor:9.3f}", f"{frames / wall:9.0f}",
                   f"{max(times[2] for times in rounds[name]) / 1024:6.1f}", f"{lines:8}", f"{1e9 * processor / max(lines, 1):9.1f}",
                   counted]))
    print()
    for ours, theirs in RATIOS:
        if rounds.get(ours) and rounds.get(theirs):
            ratios = sorted(b[0] / a[0] for a, b in zip(rounds[ours], rounds[theirs]))
            print(f"{ours} beside {theirs}: {statistics.median(ratios):.2f} times as fast [{ratios[0]:.2f}, {ratios[-1]:.2f}]")


def seconds_of(command):
    """Wall time of a run as a shell would start it: without work of ours in the child, which would cost as much as a short run."""
    start = time.perf_counter()
    subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL)
    return time.perf_counter() - start


def measure_many(folder, count, qxview):
    """The most that a run of many captures saves: what a program's start and end cost beside their decode."""
    small = [path for name in sorted(os.listdir(folder)) if os.path.isfile(path := os.path.join(folder, name))
             and name.endswith((".pcap", ".pcapng", ".cap")) and os.path.getsize(path) < 20_000]
    if not small:
        sys.exit(f"peers.py: {folder} has no captures of less than 20 KB")
    paths = (small * (count // len(small) + 1))[:count]
    with tempfile.NamedTemporaryFile("w", suffix=".txt") as names:
        names.write("".join(f"{path}\n" for path in paths))
        names.flush()
        for form in (["list"], ["decode"], ["decode", "--format", "json", "--prefix-file"]):
            together = [seconds_of([qxview, *form, "--keep-going", "--files-from", names.name]) for _ in range(5)]
            each = sum(seconds_of([qxview, *form, path]) for path in paths)
            median = statistics.median(together)
            print(f"{' '.join(form)}: {count} captures ({len(small)} others) in one run {median:.2f} s [{min(together):.2f}, "
                  f"{max(together):.2f}], in a run each {each:.2f} s: {each / median:.1f} times as fast", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("captures", nargs="+")
    parser.add_argument("--qxview", default=os.path.join(HERE, "../build/qxview"))
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--only", default="", help="only programs whose names have this word")
    parser.add_argument("--instructions", action="store_true", help="count qxview's instructions, too")
    parser.add_argument("--markdown", action="store_true")
    parser.add_argument("--many", type=int, metavar="N", help="N small captures of a folder in one run and in a run each")
    options = parser.parse_args()
    for command in ([options.qxview, "--version"], [TSHARK, "--version"], ["tcpdump", "--version"]):
        said = subprocess.run(command, capture_output=True, text=True)
        print((said.stdout + said.stderr).splitlines()[0])
    print(f"load {os.getloadavg()[0]:.1f}, {os.cpu_count()} processors; start-up (--version): "
          f"{min(seconds_of([options.qxview, '--version']) for _ in range(100)) * 1000:.1f} ms")
    if options.many:
        measure_many(options.captures[0], options.many, options.qxview)
        return 0
    with tempfile.TemporaryDirectory() as folder:
        for number, path in enumerate(options.captures):
            if os.path.isdir(path):
                merged = os.path.join(folder, f"merged{number}.pcap")
                merge(path, merged)
                path = merged
            measure(path, options)
    return 0


if __name__ == "__main__":
    sys.exit(main())
