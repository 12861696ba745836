"""What the scripts that compare qxview with a peer have in common: options, captures, both readers, the table.

An oracle script names its peer's fields, reads both sides of a capture, and gives a Tally back. What agrees, what differs
by order (with the reason) and what differs otherwise is counted apart; only the last makes the script fail.
"""
import argparse
import collections
import concurrent.futures
import itertools
import json
import os
import subprocess
import sys

KINDS = (("agreed", "agree"), ("ordered", "differ by order"), ("other", "differ otherwise"))
AGGREGATOR = "\x01"   # between the occurrences of one field
ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


# --- options and captures ---

def capture_paths(given):
    """The files named and those inside of the directories named, in order; an index in a directory is no capture."""
    paths = []
    for path in given:
        inside = [os.path.join(path, name) for name in sorted(os.listdir(path))] if os.path.isdir(path) else [path]
        paths += [found for found in inside if not found.endswith(".tsv")]
    return paths


def option_parser(description, verbose=None):
    """CAPTURE..., --qxview, --jobs and, where its help is given, --verbose."""
    parser = argparse.ArgumentParser(description=description, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("captures", nargs="+", help="a file, or a directory of capture files")
    parser.add_argument("--qxview", default=os.path.join(ROOT, "build/qxview"))
    parser.add_argument("--jobs", type=int, default=2)
    if verbose:
        parser.add_argument("--verbose", action="store_true", help=verbose)
    return parser


def read_options(description, verbose=None):
    """The options as parsed, with `paths`: every capture that is named or stands in a directory that is."""
    options = option_parser(description, verbose).parse_args()
    options.paths = capture_paths(options.captures)
    return options


def for_each_capture(options, compare):
    """(path, compare(qxview, path)) of every capture, in order; `jobs` run at a time."""
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        yield from zip(options.paths, pool.map(lambda path: compare(options.qxview, path), options.paths))


# --- tshark ---

def tshark_command(path, *arguments, preferences=(), wanted=None, decode_as=()):
    """A command line: names unresolved, preferences as NAME:VALUE, `wanted` as a display filter."""
    return ["tshark", "-n", "-r", path, *itertools.chain(*(("-o", p) for p in preferences)),
            *itertools.chain(*(("-d", rule) for rule in decode_as)),
            *(("-Y", wanted) if wanted else ()), *arguments]


def tshark_fields(path, fields, preferences=(), wanted=None, aggregator=AGGREGATOR, decode_as=()):
    """The values of the fields, a list a packet: Latin-1 text, the occurrences of a field between aggregators."""
    command = tshark_command(path, "-T", "fields", "-E", "separator=/t", "-E", f"aggregator={aggregator}",
                             *itertools.chain(*(("-e", f) for f in fields)), preferences=preferences, wanted=wanted,
                             decode_as=decode_as)
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    for line in done.stdout.split(b"\n"):
        values = line.decode("latin-1").split("\t")
        if len(values) == len(fields):
            yield values


# --- qxview ---

def json_lines(qxview, path, *options):
    """What `decode --format json` writes of the capture: bytes, a line a packet."""
    with subprocess.Popen([qxview, "decode", "--format", "json", *options, path], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL) as running:
        yield from running.stdout


def decoded_packets(qxview, path, *options):
    """The packets of the capture as the JSON objects that stand for them."""
    return map(json.loads, json_lines(qxview, path, *options))


def define(definitions):
    """Options that add protocol definitions such as "tcp:8080=HTTP"."""
    return [*itertools.chain(*(("-d", definition) for definition in definitions))]


def children(line):
    return line.get("lines", [])


def walk(lines):
    """The lines and all that stand under them, in the order of the tree."""
    for line in lines:
        yield line
        yield from walk(children(line))


def value_of(lines, label):
    """The rest of the first text that begins with the label; None when none does."""
    for line in lines:
        if line["text"].startswith(label):
            return line["text"][len(label):]
    return None


def windows_1252(text):
    """The bytes that a line's text was before it became UTF-8."""
    return b"".join(bytes([ord(c)]) if ord(c) < 256 else c.encode("cp1252", "replace") for c in text)


# --- the table ---

class Tally:
    """Counts by kind ("agreed", "ordered", "other") and by what was compared or why it differs."""

    def __init__(self):
        self.counts = collections.Counter()
        self.others = []   # a text each, of what differs otherwise

    def agree(self, key, count=1):
        self.counts["agreed", key] += count

    def order(self, reason, count=1):
        self.counts["ordered", reason] += count

    def other(self, key, text, count=1):
        self.counts["other", key] += count
        self.others.append(text)

    def add(self, tally):
        self.counts += tally.counts
        self.others += tally.others

    def total(self, kind):
        return sum(count for (found, _), count in self.counts.items() if found == kind)

    def rows(self, kind):
        """(key, count) of a kind, the most frequent first."""
        found = [(key, count) for (of_kind, key), count in self.counts.items() if of_kind == kind]
        return sorted(found, key=lambda item: -item[1])

    def print(self, title=None, most=None):
        """The table under its title."""
        if title:
            print(f"\n{title}")
        for kind, heading in KINDS:
            print(f"  {heading}: {self.total(kind)}")
            for key, count in self.rows(kind)[:most]:
                print(f"    {count:7}  {key}")


def print_others(others, mark="OTHER"):
    """Names what differs otherwise and returns the exit status."""
    for other in others:
        print(f"{mark}: {other}")
    return 1 if others else 0


def exit_with(main):
    """Runs a script's main function; a reader that closed the pipe ends it quietly."""
    try:
        sys.exit(main())
    except BrokenPipeError:
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
        sys.exit(1)
