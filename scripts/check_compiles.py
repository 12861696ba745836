#!/usr/bin/env python3
"""Whether every source of a preset is accepted by its compiler, without making code: a fifth of what building it takes.

  scripts/check_compiles.py PRESET     PRESET: clang, win64, or any other that scripts/build.sh knows

Prints what the compiler says; exit status 1 when a source is refused. Linking is not tried.
"""
import concurrent.futures
import json
import os
import shlex
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def accepts(entry):
    """The compiler's status and what it said of one source."""
    words = shlex.split(entry["command"])
    del words[words.index("-o"):words.index("-o") + 2]
    result = subprocess.run([*words, "-fsyntax-only"], cwd=entry["directory"], capture_output=True, text=True)
    return result.returncode == 0, result.stderr


def main(preset):
    # The list of keys is generated, and read by a source.
    if subprocess.run([os.path.join(ROOT, "scripts", "build.sh"), preset, "field_keys.stamp"]).returncode != 0:
        return 1
    with open(os.path.join(ROOT, f"build-{preset}", "compile_commands.json"), encoding="utf-8") as file:
        entries = json.load(file)
    entries = [entry for entry in entries if not entry["file"].endswith(".rc")]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        results = list(workers.map(accepts, entries))
    for _, said in results:
        sys.stderr.write(said)
    refused = sum(not accepted for accepted, _ in results)
    print(f"{len(entries) - refused} of {len(entries)} sources are accepted by {preset}'s compiler")
    return 1 if refused or not entries else 0


if __name__ == "__main__":
    if len(sys.argv) != 2 or sys.argv[1].startswith("-"):
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1]))
