#!/usr/bin/env python3
"""Runs the fuzz targets in turn for so many seconds of processor time, each from its corpus and into it, and adds up what ran.

    scripts/long/fuzz.py run BUILD CORPUS LOGS [--seconds 14400] [--slice 120] [--targets frame,payload] [--dictionary FILE]
    scripts/long/fuzz.py table LOGS                  executions, processor seconds and findings of each target so far
    scripts/long/fuzz.py minimise BUILD CORPUS OUT   the inputs that reach all that those of CORPUS do, in OUT/TARGET

BUILD holds the programs of `-DQXVIEW_FUZZ=ON`, CORPUS/TARGET the inputs. Every run's output stands in LOGS/TARGET.N.log, what it
found beside it, and a line a run in LOGS/runs.tsv. docs/fuzzing.md has the last result.
"""
import argparse
import glob
import os
import re
import resource
import shutil
import subprocess
import sys
import time

TARGETS = ["frame", "conversation", "payload", "capture", "filter", "settings", "exports"]
WEIGHTS = {"frame": 2, "conversation": 3, "payload": 3}   # slices in a turn; the others have one
MOST_LENGTH = {"frame": 4000, "conversation": 12000, "payload": 3000, "capture": 8000, "filter": 2000, "settings": 6000, "exports": 3000}
SANITIZERS = {"ASAN_OPTIONS": "detect_stack_use_after_return=1:strict_string_checks=1:allocator_may_return_null=1",
              "UBSAN_OPTIONS": "print_stacktrace=1"}


def children_seconds():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def run_slice(arguments, target, number):
    """One run of a target; its processor seconds."""
    corpus = os.path.join(arguments.corpus, target)
    os.makedirs(corpus, exist_ok=True)
    log = os.path.join(arguments.logs, f"{target}.{number}.log")
    command = [os.path.join(arguments.build, target + "_fuzz"), f"-max_total_time={arguments.slice}", f"-timeout={arguments.timeout}",
               "-rss_limit_mb=2000", "-print_final_stats=1", f"-max_len={MOST_LENGTH[target]}", "-use_value_profile=0", "-reload=0",
               f"-artifact_prefix={arguments.logs}/{target}.{number}."]
    if arguments.dictionary:
        command.append(f"-dict={arguments.dictionary}")
    seeds = os.path.join(arguments.corpus, "seeds", target)
    before = children_seconds()
    with open(log, "wb") as out:
        status = subprocess.run([*command, corpus] + ([seeds] if os.path.isdir(seeds) else []), stdout=out, stderr=subprocess.STDOUT,
                                env={**os.environ, **SANITIZERS}, check=False).returncode
    spent = children_seconds() - before
    with open(log, encoding="utf-8", errors="replace") as file:
        text = file.read()
    executions = re.findall(r"stat::number_of_executed_units:\s*(\d+)", text) or re.findall(r"^#(\d+)\s", text, re.M) or ["0"]
    coverage = re.findall(r"cov: (\d+)", text) or ["0"]
    with open(os.path.join(arguments.logs, "runs.tsv"), "a", encoding="utf-8") as file:
        file.write(f"{target}\t{number}\t{executions[-1]}\t{spent:.1f}\t{coverage[-1]}\t{status}\n")
    if status:
        print(f"{target}.{number}: ended with {status}, see {log}", flush=True)
    return spent


def run(arguments):
    os.makedirs(arguments.logs, exist_ok=True)
    targets = arguments.targets.split(",") if arguments.targets else TARGETS
    turn = [target for target in targets for _ in range(WEIGHTS.get(target, 1))]
    number = len(glob.glob(os.path.join(arguments.logs, "*.log")))
    spent = 0.0
    while spent < arguments.seconds:
        for target in turn:
            number += 1
            started = time.monotonic()
            spent += run_slice(arguments, target, number)
            if time.monotonic() - started < 5:
                time.sleep(2)   # a corpus that ends at once is told of again and again otherwise
    table(arguments)


def table(arguments):
    total = {}
    with open(os.path.join(arguments.logs, "runs.tsv"), encoding="utf-8") as file:
        for line in file:
            target, _, executions, seconds, coverage, status = line.split("\t")
            row = total.setdefault(target, [0, 0.0, 0, 0, 0])
            row[0] += int(executions)
            row[1] += float(seconds)
            row[2] = max(row[2], int(coverage))
            row[3] += 1
            row[4] += int(status) != 0
    print(f"{'target':14}{'executions':>12}{'seconds':>10}{'edges':>8}{'runs':>6}{'found':>6}")
    for target, row in [*total.items(), ("all", [sum(row[i] for row in total.values()) for i in range(5)])]:
        edges = row[2] if target != "all" else ""
        print(f"{target:14}{row[0]:>12}{row[1]:>10.0f}{edges:>8}{row[3]:>6}{row[4]:>6}")


def minimise(arguments):
    for target in arguments.targets.split(",") if arguments.targets else TARGETS:
        out = os.path.join(arguments.logs, target)
        shutil.rmtree(out, ignore_errors=True)
        os.makedirs(out)
        sources = [folder for folder in (os.path.join(arguments.corpus, target), os.path.join(arguments.corpus, "seeds", target))
                   if os.path.isdir(folder)]
        subprocess.run([os.path.join(arguments.build, target + "_fuzz"), "-merge=1", "-use_value_profile=0",
                        f"-max_len={MOST_LENGTH[target]}", out, *sources], env={**os.environ, **SANITIZERS}, check=False,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        print(f"{target}: {len(os.listdir(out))} inputs", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("what", choices=("run", "table", "minimise"))
    parser.add_argument("folders", nargs="+")
    parser.add_argument("--seconds", type=float, default=14400)
    parser.add_argument("--slice", type=int, default=120)
    parser.add_argument("--timeout", type=int, default=10, help="seconds by the clock that an input may take: more where others have the core")
    parser.add_argument("--targets", default="")
    parser.add_argument("--dictionary", default="")
    arguments = parser.parse_args()
    if arguments.what == "table":
        arguments.logs = arguments.folders[0]
        return table(arguments)
    if len(arguments.folders) != 3:
        sys.exit(f"{arguments.what} needs three folders")
    arguments.build, arguments.corpus, arguments.logs = arguments.folders
    return run(arguments) if arguments.what == "run" else minimise(arguments)


if __name__ == "__main__":
    main()
