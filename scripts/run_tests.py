#!/usr/bin/env python3
"""Runs the whole test suite and adds it up; the last line is `N passed, N failed`.

  scripts/run_tests.py [--list] [STEP...]

Every step runs even when one before it failed. Those behind `native` are built one after the other and then run in lanes,
for tests keep one processor busy and builds all of them. A step that cannot be built, crashes, hangs or runs no test at all counts
as one failure on top of the cases that failed in it. The output of a step stands in build/test-logs/STEP.log, and its end
is shown when the step failed.
"""
import glob
import json
import os
import re
import signal
import subprocess
import sys
import threading
import time

import wine

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
LOGS = os.path.join(ROOT, "build", "test-logs")
STEP_SECONDS = 2400     # a command that takes longer hangs
WINE_SECONDS = 600      # the same for one under Wine
WAITING_SCRIPTS = ["cluster"]     # what waits for minutes until hosts are given up, and computes little
WINDOWS_SCRIPTS = ["golden", "command_line", "list", "schema", "capture_files"]   # what drives the program alone
SHOWN_LINES = 60        # of the log of a step that failed


class Result:
    """What a step found: cases passed, cases failed, and the lines to show for it."""

    def __init__(self, passed=0, failed=0, note=""):
        self.passed, self.failed, self.note = passed, failed, note

    def add(self, other, name):
        """Takes another one's cases in; which of them failed is noted."""
        self.passed += other.passed
        self.failed += other.failed
        if other.failed:
            self.note += f" {name}: {other.failed} failed{', ' + other.note if other.note else ''};"


def run(command, log, seconds=STEP_SECONDS, **environment):
    """Runs a command in the root folder with its output appended to the log; its exit status, negative for a signal."""
    log.write("$ " + " ".join(command) + "\n")
    log.flush()
    try:
        process = subprocess.Popen(command, cwd=ROOT, stdin=subprocess.DEVNULL, stdout=log, stderr=subprocess.STDOUT,
                                   env={**os.environ, **environment}, start_new_session=True)
    except OSError as error:
        log.write(f"{error}\n")
        return 127
    try:
        return process.wait(seconds)
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        log.write(f"stopped after {seconds} s\n")
        return -signal.SIGKILL


def build(preset, log, *targets):
    """Configures afresh (a package may have come since) and builds; true when that went well."""
    return run(["scripts/build.sh", preset, *targets], log, QXVIEW_CONFIGURE="always") == 0


def count_cases(report, status):
    """The cases in a GoogleTest report. None when the program ended before it wrote one."""
    try:
        with open(report, encoding="utf-8") as file:
            cases = [case for suite in json.load(file)["testsuites"] for case in suite["testsuite"]]
    except (OSError, ValueError, KeyError):
        return None
    ran = [case for case in cases if case.get("status") == "RUN" and case.get("result") != "SKIPPED"]
    failed = sum(1 for case in ran if case.get("failures"))
    result = Result(len(ran) - failed, failed)
    if len(cases) > len(ran):
        result.note = f"{len(cases) - len(ran)} skipped"
    if not ran:
        result.failed, result.note = 1, "no test ran"
    elif status != 0 and failed == 0:
        result.failed, result.note = 1, f"exit status {status} after the last test"
    return result


def run_cases(program, log, log_name, seconds=STEP_SECONDS, **environment):
    """The C++ tests of a program, named by its path from the root; a Windows program's run under Wine."""
    report = os.path.join(LOGS, program.replace("/", "-") + ".json")
    if os.path.exists(report):
        os.remove(report)
    log.flush()
    start = os.path.getsize(log_name)
    under, drive = (["wine"], "Z:") if program.endswith(".exe") else ([], "")
    status = run([*under, os.path.join(ROOT, program), f"--gtest_output=json:{drive}{report}"], log, seconds,
                 ASAN_OPTIONS="detect_stack_use_after_return=1:strict_string_checks=1",
                 UBSAN_OPTIONS="print_stacktrace=1", **environment)
    result = count_cases(report, status)
    if result:
        return result
    # It crashed: what had passed by then counts, and the rest is one failure.
    with open(log_name, encoding="utf-8", errors="replace") as file:
        file.seek(start)
        passed = len(re.findall(r"^\[       OK \] ", file.read(), re.M))
    return Result(passed, 1, f"crashed or was stopped (status {status})")


def step_native(log, log_name):
    """the optimised build and the C++ tests"""
    return run_cases("build/qxview_tests", log, log_name) if build("release", log) else Result(0, 1, "the build failed")


def step_asan(log, log_name):
    """the same under AddressSanitizer and UndefinedBehaviorSanitizer, and the samples decoded and fuzz inputs run there"""
    if not build("asan", log):
        return Result(0, 1, "the build failed")
    result = run_cases("build-asan/qxview_tests", log, log_name)
    for sample in sorted(glob.glob(os.path.join(ROOT, "samples", "*.pcap*"))):
        if run([os.path.join(ROOT, "build-asan", "qxview"), "decode", "--ranges", "-x", sample], log) == 0:
            result.passed += 1
        else:
            result.failed += 1
    result.add(run_script("tests/fuzz_corpus_test.py", log, log_name, FUZZ_RUN=os.path.join(ROOT, "build-asan", "fuzz_run")),
               "fuzz_corpus")
    return result


def step_layers(log, _):
    """who includes whom, and whether that check can fail"""
    checks = [run([sys.executable, "scripts/check_layers.py", *option], log) == 0 for option in ([], ["--self-test"])]
    return Result(checks.count(True), checks.count(False))


def count_script(output, status):
    """What a script in tests/ found: its closing line, or unittest's, or else its exit status as one check."""
    plain = re.findall(r"^(\d+) passed, (\d+) failed", output, re.M)
    unit = re.findall(r"^Ran (\d+) tests? in ", output, re.M)
    if plain:
        result = Result(int(plain[-1][0]), int(plain[-1][1]))
    elif unit:
        bad = sum(int(n) for n in re.findall(r"(?:failures|errors|unexpected successes)=(\d+)", output))
        skipped = sum(int(n) for n in re.findall(r"skipped=(\d+)", output))
        result = Result(max(0, int(unit[-1]) - bad - skipped), bad)
        if int(unit[-1]) == 0:
            result.failed = 1
    else:
        result = Result(1, 0) if status == 0 else Result(0, 1)
    if status != 0 and result.failed == 0:
        result.failed = 1
    return result


def run_script(script, log, log_name, seconds=STEP_SECONDS, **environment):
    """A Python script, named by its path from the root with its arguments."""
    log.flush()
    start = os.path.getsize(log_name)
    environment = {"QXVIEW": os.path.join(ROOT, "build", "qxview"), "PYTHONDONTWRITEBYTECODE": "1",
                   "QXVIEW_LIBRARY": os.path.join(ROOT, "build", "libqxview.so"), **environment}
    status = run([sys.executable, *script.split()], log, seconds, **environment)
    with open(log_name, "rb") as file:
        file.seek(start)
        return count_script(file.read().decode("utf-8", "replace"), status)


def run_scripts(names, log, log_name):
    """Python tests in tests/, by their names without what all end in."""
    total = Result()
    for name in names:
        total.add(run_script(f"tests/{name}_test.py", log, log_name), name)
    return total


def step_scripts(log, log_name):
    """the Python tests in tests/, over the built program and library"""
    names = [os.path.basename(path).removesuffix("_test.py") for path in sorted(glob.glob(os.path.join(ROOT, "tests", "*_test.py")))]
    return run_scripts([name for name in names if name not in WAITING_SCRIPTS], log, log_name)


def step_waiting(log, log_name):
    """those of them that wait for most of their time"""
    return run_scripts(WAITING_SCRIPTS, log, log_name)


def run_windows_tests(total, log, log_name):
    """What was built for Windows, under Wine: the C++ tests, the library's, the scripts that drive the program, and what
    it gives beside this system's program."""
    wrapper = os.path.join(wine.FOLDER, "qxview")
    with open(wrapper, "w", encoding="utf-8") as file:
        file.write(f'#!/bin/sh\nexec wine "{wrapper}.exe" "$@"\n')
    os.chmod(wrapper, 0o755)
    with wine.Session() as session:
        for name in ("qxview_tests.exe", "qxview_library_tests.exe"):
            total.add(run_cases("build-win32/" + name, log, log_name, WINE_SECONDS, **session.environment), name)
        for name in WINDOWS_SCRIPTS:
            total.add(run_script(f"tests/{name}_test.py", log, log_name, WINE_SECONDS, **{
                **session.environment, "QXVIEW": wrapper, "QXVIEW_PLATFORM": "windows"}), name)
    total.add(run_script("scripts/compare_windows.py", log, log_name, WINE_SECONDS), "compare_windows")


def step_win32(log, log_name):
    """the same for 32-bit Windows, cross-built, and run under Wine where that can be installed"""
    if not build("release", log, "libqxview", "qxview") or not build("win32", log):
        return Result(0, 1, "the build failed")
    total = Result(1, 0)
    for name, script in (("exports", "exports_test.py Symbols"), ("hardening", "hardening_test.py WindowsFiles")):
        total.add(run_script(f"tests/{script}", log, log_name, QXVIEW_DLL=os.path.join(wine.FOLDER, "qxview.dll")), name)
    if run(["scripts/setup.sh", "wine"], log) == 0 and wine.is_here():
        run_windows_tests(total, log, log_name)
    else:
        total.note += " WINE COULD NOT BE INSTALLED: what was built for Windows has NOT been run"
    return total


STEPS = {"layers": step_layers, "native": step_native, "scripts": step_scripts, "waiting": step_waiting, "win32": step_win32,
         "asan": step_asan}
ALONE = ["layers", "native"]                # what the other steps need
BUILT = ["win32", "asan"]                   # have a build of their own, of that name
LANES = [["scripts", "win32"], ["asan"], ["waiting"]]    # each one after the other, beside the other lanes
speaking = threading.Lock()


def perform(name):
    """Runs one step and says how it went."""
    log_name = os.path.join(LOGS, name + ".log")
    started = time.monotonic()
    with open(log_name, "w+", encoding="utf-8") as log:
        try:
            result = STEPS[name](log, log_name)
        except Exception as error:      # a step that breaks must not take the total with it
            result = Result(0, 1, f"{type(error).__name__}: {error}")
    if result.passed + result.failed == 0:
        result = Result(0, 1, "no check was made")
    with speaking:
        if result.failed:
            with open(log_name, encoding="utf-8", errors="replace") as log:
                for line in log.read().splitlines()[-SHOWN_LINES:]:
                    print("    " + line)
        note = f" ({result.note.strip()})" if result.note else ""
        print(f"{'FAIL' if result.failed else 'ok  '} {name}: {result.passed} of {result.passed + result.failed}{note}, "
              f"{time.monotonic() - started:.0f} s", flush=True)
    return result


def perform_all(names):
    """The steps that are asked for; what they found."""
    results = [perform(name) for name in ALONE if name in names]
    for name in BUILT:
        if name in names:
            with open(os.path.join(LOGS, name + "-build.log"), "w", encoding="utf-8") as log:
                build(name, log)    # what failed the step itself finds again, and tells
    lanes = [threading.Thread(target=lambda lane=lane: results.extend(perform(name) for name in lane if name in names))
             for lane in LANES]
    for lane in lanes:
        lane.start()
    for lane in lanes:
        lane.join()
    return results


def main(arguments):
    if "--list" in arguments:
        for name, step in STEPS.items():
            print(f"{name:8} {step.__doc__}")
        return 0
    unknown = [name for name in arguments if name not in STEPS]
    if unknown:
        print(f"no such step: {' '.join(unknown)} (--list names them)", file=sys.stderr)
        return 2
    os.makedirs(LOGS, exist_ok=True)
    results = perform_all(arguments or STEPS)
    passed, failed = sum(r.passed for r in results), sum(r.failed for r in results)
    print(f"{passed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
