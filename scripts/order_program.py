#!/usr/bin/env python3
"""Lists what runs over common captures, for the program's order (cmake/program_order.ld).

    scripts/order_program.py CAPTURE... >cmake/program_order.ld

Runs build/qxview over each capture under callgrind, as text, as JSON and as a list, and notes the functions that were run, how
often, and the tables that they lead to. What most of them ran stands first. A list that is old costs memory, nothing else: what
it does not name stands behind it.
"""
import bisect
import collections
import glob
import os
import re
import struct
import subprocess
import sys
import tempfile
import textwrap

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BUILD = ROOT + '/build'
LIBRARIES = ('qxview_engine', 'qxview_host', 'qxview_query', 'qxview_browse', 'qxview_keys', 'qxview')
OF_DATA = ('.data.rel.ro', '.rodata')
WIDTH = 140
COMMANDS = ('decode --jobs 1', 'decode --jobs 1 --format json', 'list --jobs 1')


class Object:
    """The sections of an object file, and which of them the relocations of each lead to."""

    def __init__(self, path):
        with open(path, 'rb') as file:
            self.bytes = file.read()
        start, = struct.unpack_from('<Q', self.bytes, 0x28)
        size, count, names = struct.unpack_from('<HHH', self.bytes, 0x3A)
        count = count or struct.unpack_from('<Q', self.bytes, start + 0x20)[0]
        self.sections = [struct.unpack_from('<IIQQQQIIQQ', self.bytes, start + i * size) for i in range(count)]
        if names == 0xFFFF:
            names = self.sections[0][6]
        self.names = [self.text(names, section[0]) for section in self.sections]
        self.places, self.defined = self.symbols()
        self.leads = collections.defaultdict(set)
        for section in self.sections:
            if section[1] == 4:   # SHT_RELA
                for at in range(section[4], section[4] + section[5], 24):
                    self.leads[section[7]].add(self.places[struct.unpack_from('<Q', self.bytes, at + 8)[0] >> 32])

    def text(self, table, offset):
        start = self.sections[table][4] + offset
        return self.bytes[start:self.bytes.index(b'\0', start)].decode()

    def symbols(self):
        """Of each symbol the section that it stands in, or its name where that is another object's."""
        table = next(section for section in self.sections if section[1] == 2)            # SHT_SYMTAB
        more = next((section for section in self.sections if section[1] == 18), None)   # SHT_SYMTAB_SHNDX
        places, defined = [], {}
        for i in range(table[5] // 24):
            name, info, _, section = struct.unpack_from('<IBBH', self.bytes, table[4] + 24 * i)
            if section == 0xFFFF and more:
                section, = struct.unpack_from('<I', self.bytes, more[4] + 4 * i)
            text = self.text(table[6], name) if name else ''
            places.append(section if 0 < section < len(self.sections) else text)
            if info >> 4 and 0 < section < len(self.sections):
                defined[text] = section
        return places, defined


def own_objects():
    found = {}
    for library in LIBRARIES:
        for path in glob.glob(f'{BUILD}/CMakeFiles/{library}.dir/**/*.o', recursive=True):
            found[path] = Object(path)
    return found


def functions_of_program():
    """Addresses, ends and names of the program's functions, in order."""
    out = subprocess.run(['nm', '-S', '--defined-only', BUILD + '/qxview'], check=True, capture_output=True, text=True).stdout
    found = []
    for line in out.splitlines():
        fields = line.split()
        if len(fields) == 4 and fields[2] in 'TtWwiu':
            start = int(fields[0], 16)
            found.append((start, start + int(fields[1], 16), fields[3]))
    return sorted(found)


def run_in(capture, command, functions):
    starts = [function[0] for function in functions]
    ran = set()
    with tempfile.NamedTemporaryFile() as trace:
        subprocess.run(['valgrind', '--tool=callgrind', '--dump-instr=yes', '--compress-pos=no', '--callgrind-out-file=' + trace.name,
                        BUILD + '/qxview', *command.split(), capture], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        for line in open(trace.name, encoding='utf-8'):
            if not line.startswith('0x'):
                continue
            address = int(line.split()[0], 16)
            first = bisect.bisect_right(starts, address)
            for start, end, name in reversed(functions[max(0, first - 8):first]):   # a function may have several names
                if start <= address < end:
                    ran.add(name)
    return ran


def section_of(name):
    if name.endswith('.cold') or '.cold.' in name:
        return '.text.unlikely.' + name.split('.cold')[0]
    if name == 'main' or name.startswith('_GLOBAL__sub_I_'):
        return '.text.startup.' + name
    return '.text.' + name


def data_of(objects, counts):
    """Sections of data that the functions lead to, each with its object and the most captures that ran such a function."""
    owners = {}
    for path, one in objects.items():
        for name, section in one.defined.items():
            owners.setdefault(name, (path, section))
    found = {}
    todo = [(count, path, i) for path, one in objects.items() for i, name in enumerate(one.names) if (count := counts.get(name))]
    for count, path, section in sorted(todo, key=lambda each: -each[0]):
        open_ends = [(path, section)]
        while open_ends:
            path, section = open_ends.pop()
            for place in objects[path].leads.get(section, ()):
                target = owners.get(place) if isinstance(place, str) else (path, place)
                if not target or target in found:
                    continue
                name = objects[target[0]].names[target[1]]
                if name.startswith(OF_DATA):
                    found[target] = count
                    open_ends.append(target)
    return found


def print_part(output, place, inputs):
    print('SECTIONS\n{')
    print(f'  {output} :\n  {{')
    for line in inputs:
        print(textwrap.fill(line, WIDTH, initial_indent='    ', subsequent_indent='      ', break_long_words=False, break_on_hyphens=False))
    print(f'  }}\n}}\nINSERT {place};')


def print_script(counts, places, objects, data):
    print('/* Made by scripts/order_program.py: what common captures run and read stands together, in few pages. */')
    print_part('.text_run', 'BEFORE .text', (f'*({name})' for name in sorted(counts, key=lambda each: (-counts[each], places[each]))))
    first = collections.Counter()
    tables = collections.defaultdict(dict)
    for (path, section), count in sorted(data.items(), key=lambda each: (-each[1], each[0])):
        name = objects[path].names[section]
        first[path] = max(first[path], count)
        if name.startswith('.data'):
            # The same table of a source has a section with .local in its name or without, by what it points to.
            tables[path]['.data.rel.ro*' + re.sub(r'^\.data\.rel\.ro(\.local)?(\._ZN6qxview12_GLOBAL__N_1L?)?', '', name)] = True
    paths = sorted(first, key=lambda each: (-first[each], each))
    print_part('.rodata_run', 'AFTER .rodata', (f'*{os.path.basename(path)}(.rodata .rodata.*)' for path in paths))
    print_part('.data_run.rel.ro', 'BEFORE .data.rel.ro',
               (f'*{os.path.basename(path)}({" ".join(tables[path])})' for path in paths if tables[path]))


def main():
    if len(sys.argv) < 2 or sys.argv[1].startswith('-'):
        sys.exit(__doc__)
    functions = functions_of_program()
    places = {section_of(name): start for start, _, name in functions}
    counts = collections.Counter()
    for capture in sys.argv[1:]:
        for command in COMMANDS:
            print(command, capture, file=sys.stderr)
            counts.update({section_of(name) for name in run_in(capture, command, functions)})
    objects = own_objects()
    print_script(counts, places, objects, data_of(objects, counts))


if __name__ == '__main__':
    main()
