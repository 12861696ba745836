#!/usr/bin/env python3
"""How much of what an application protocol carries qxview explains by field lines, rather than by a dump alone.

usage: field_coverage.py CAPTURE... --protocol NAME|PORTS [--except TITLE]... [--least PERCENT] [--list]
                         [--qxview build/qxview] [--jobs 2]

CAPTURE is a file or a directory of capture files. The payloads are those of UDP datagrams and TCP segments with a port of
the protocol: a name of the table PORTS, or numbers, comma-separated. A payload byte counts as covered when a line below
the top level that has nothing under it and is no row of a dump names it in its range.

--except sets the dumps under a title that matches this regular expression aside: encrypted data, strings that are shown
as a dump for their length, data of files. Their bytes count neither as covered nor as missed. --list shows the dumps that
count as missed and the bytes that no line names at all. Exit status 1 when the share in all is below --least.
"""
import collections
import os
import re

from oracle_support import capture_paths, children, decoded_packets, define, exit_with, for_each_capture, option_parser

PORTS = {"snmp": (161, 162), "ldap": (389, 3268), "kerberos": (88, 464, 749), "netbios": (137, 138, 139), "smb": (445,),
         "dns": (53, 5353, 5355), "http": (80, 8080), "rpc": (111,)}
RAW = 8   # the range kind of dump rows
TRANSPORT = re.compile(r"(UDP|TCP)\b.*\[(\d+)\].*-> \[(\d+)\]")
UDP_HEADER = 8
COVERED, SET_ASIDE, DUMPED = 1, 2, 3


def payloads(lines, ports, captured):
    """(start, end, lines behind it) of every payload in the frame, tunnelled ones too."""
    for index, line in enumerate(lines):
        found = TRANSPORT.match(line["text"])
        if not found or not ports & {int(found[2]), int(found[3])}:
            continue
        texts = "\n".join(child["text"] for child in children(line))
        length = re.search(r"^(?:UDP length|TCP data length): +(\d+)", texts, re.M)
        if length:
            start = line["offset"] + line["length"]
            size = int(length[1]) - (UDP_HEADER if found[1] == "UDP" else 0)
            yield start, max(start, min(captured, start + size)), lines[index + 1:]


def mark(lines, title, depth, start, marks, exceptions):
    """Writes into `marks` what the leaves make of the bytes; a field outweighs a dump of the same bytes."""
    for line in lines:
        under = children(line)
        if under:
            mark(under, line["text"], depth + 1, start, marks, exceptions)
            continue
        if line["kind"] == RAW or depth == 0:
            what = SET_ASIDE if any(e.search(title or line["text"]) for e in exceptions) else DUMPED
        else:
            what = COVERED
        first = max(line["offset"] - start, 0)
        for i in range(first, min(line["offset"] - start + line["length"], len(marks))):
            if what == COVERED or marks[i] in (0, DUMPED):
                marks[i] = what


def missed(lines, marks, start, title=None):
    """(title, bytes) of the dumps whose bytes count as missed."""
    for line in lines:
        if children(line):
            yield from missed(children(line), marks, start, line["text"])
            continue
        inside = marks[max(line["offset"] - start, 0):max(line["offset"] + line["length"] - start, 0)]
        if inside.count(DUMPED):
            yield title or line["text"], inside.count(DUMPED)


def measure(options, qxview, path):
    """Counter of bytes by mark, and the missed ones by title."""
    count, titles = collections.Counter(), collections.Counter()
    for packet in decoded_packets(qxview, path, *define(options.decode_as)):
        for start, end, lines in payloads(packet.get("lines", []), options.ports, packet["captured"]):
            marks = bytearray(end - start)
            mark(lines, None, 0, start, marks, options.exceptions)
            count.update(marks)
            for title, size in missed(lines, marks, start):
                titles[title] += size
            if marks.count(0):
                titles["(no line)"] += marks.count(0)
    return count, titles


def show(name, count):
    counted = count[COVERED] + count[DUMPED] + count[0]
    share = 100 * count[COVERED] / counted if counted else 100
    aside = f", {count[SET_ASIDE]} set aside" if count[SET_ASIDE] else ""
    print(f"{share:7.2f} %  {count[COVERED]:8} of {counted:8} bytes{aside}  {name}")
    return share


def ports_of(text):
    if text.lower() in PORTS:
        return set(PORTS[text.lower()])
    return {int(port) for port in text.split(",")}


def main():
    parser = option_parser(__doc__)
    parser.add_argument("--protocol", required=True, type=ports_of, dest="ports")
    parser.add_argument("--except", action="append", default=[], type=re.compile, dest="exceptions", metavar="TITLE")
    parser.add_argument("-d", "--decode-as", action="append", default=[], metavar="SPEC")
    parser.add_argument("--least", type=float, default=0)
    parser.add_argument("--list", action="store_true")
    options = parser.parse_args()
    options.paths = capture_paths(options.captures)
    whole, titles = collections.Counter(), collections.Counter()
    for path, (count, dumped) in for_each_capture(options, lambda qxview, path: measure(options, qxview, path)):
        if count:
            show(os.path.basename(path), count)
        whole += count
        titles += dumped
    share = show("in all", whole)
    if options.list:
        for title, size in titles.most_common():
            print(f"{size:8} bytes missed: {title}")
    return 1 if share < options.least else 0


if __name__ == "__main__":
    exit_with(main)
