#!/usr/bin/env python3
"""Makes the table of built-in management objects from their list.

  scripts/make_mib_table.py            writes host/mib_table.inc from host/mib_objects.txt
  scripts/make_mib_table.py --check    says whether the table is the list's; exit status 1 when it is not

The list has an object a line: number, name, access, type (its head says where the lines come from). The table is the tree
of the numbers in an array, row by row of breadth, so that the children of an object follow one another in the order of
their arcs, and refers to names, types and accesses by position: nothing has to be set up when a program starts.
"""
import os
import re
import sys

HOST = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "host")
LIST, TABLE = os.path.join(HOST, "mib_objects.txt"), os.path.join(HOST, "mib_table.inc")
LINE = re.compile(r"(\d+(?:\.\d+)*) ([A-Za-z][A-Za-z0-9-]*) ([a-z-]+) (\S.*)")
WIDTH = 118


def read_objects():
    """{number as a tuple: (name, access, type)}"""
    objects = {}
    with open(LIST, encoding="ascii") as file:
        for count, line in enumerate(file, 1):
            if line.strip() and not line.startswith("#"):
                found = LINE.fullmatch(line.rstrip("\n"))
                number = tuple(map(int, found[1].split("."))) if found else ()
                if not found or number in objects:
                    sys.exit(f"{LIST}:{count}: {'defined twice' if found else 'not an object'}")
                objects[number] = found.groups()[1:]
    for number in objects:
        if number[1:] and number[:-1] not in objects:
            sys.exit(f"{LIST}: {'.'.join(map(str, number))} has no parent")
    return objects


def wrap(words, end):
    """The words with blanks between them, in indented lines."""
    lines, line = [], " "
    for word in words:
        if len(line) + 1 + len(word) > WIDTH:
            lines.append(line)
            line = " "
        line += " " + word
    return "\n".join(lines + [line]) + end


def table_of(objects):
    rows = [()]   # numbers, the root first
    children = {}
    for number in sorted(objects):
        children.setdefault(number[:-1], []).append(number)
    first = {}
    for number in rows:   # grows while it is walked
        first[number] = len(rows)
        rows += children.get(number, [])
    names = sorted({name for name, _, _ in objects.values()})
    offsets, offset = {}, 1
    for name in names:
        offsets[name] = offset
        offset += len(name) + 1
    types = sorted({kind for _, _, kind in objects.values()})
    accesses = sorted({access for _, access, _ in objects.values()})

    def row_of(number):
        below = children.get(number, [])
        start = first[number] if below else 0
        if not number:
            return f"{{0,{start},{len(below)},0,0,0}},"
        name, access, kind = objects[number]
        return f"{{{number[-1]},{start},{len(below)},{offsets[name]},{types.index(kind)},{accesses.index(access)}}},"

    return "\n".join([
        "// Made by scripts/make_mib_table.py from mib_objects.txt; not to be edited.",
        "constexpr MibRow kMibRows[] = {", wrap(map(row_of, rows), "\n};"),
        'constexpr char kMibNames[] =', '    "\\0"', wrap((f'"{name}\\0"' for name in names), ";"),
        "constexpr const char* kMibTypes[] = {", wrap((f'"{kind}",' for kind in types), "\n};"),
        "constexpr const char* kMibAccesses[] = {", wrap((f'"{access}",' for access in accesses), "\n};")]) + "\n"


def main():
    table = table_of(read_objects())
    if "--check" in sys.argv:
        with open(TABLE, encoding="ascii") as file:
            same = file.read() == table
        print(f"{TABLE}: {'the list' if same else 'not the list'}'s")
        return 0 if same else 1
    with open(TABLE, "w", encoding="ascii") as file:
        file.write(table)
    return 0


if __name__ == "__main__":
    sys.exit(main())
