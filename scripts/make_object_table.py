#!/usr/bin/env python3
"""Makes decoders/asn1/object_names.inc from object_names.txt: a run of bytes that holds, in the order of their octets, the
identifiers as they stand in messages and their names, and where each entry starts.

  scripts/make_object_table.py            writes the table
"""
import os


def octets(dotted):
    numbers = [int(n) for n in dotted.split(".")]
    made = bytearray()
    for number in [40 * numbers[0] + numbers[1], *numbers[2:]]:
        group = [number & 0x7F]
        while number := number >> 7:
            group.insert(0, number & 0x7F | 0x80)
        made += bytes(group)
    return bytes(made)


def main():
    folder = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "decoders", "asn1")
    entries = {}
    with open(os.path.join(folder, "object_names.txt"), encoding="ascii") as source:
        for line in source:
            if line.strip() and not line.startswith("#"):
                dotted, name = line.rstrip("\n").split(" ", 1)
                entries[octets(dotted)] = name
    starts, at = [], 0
    with open(os.path.join(folder, "object_names.inc"), "w", encoding="ascii") as out:
        out.write("// Made by scripts/make_object_table.py from object_names.txt.\n")
        out.write("constexpr char kObjectBytes[] =   // length, octets, name\n")
        for key in sorted(entries):
            name = entries[key]
            starts.append(at)
            at += 1 + len(key) + len(name) + 1
            out.write('    "' + "".join("\\%03o" % b for b in bytes([len(key)]) + key) + f'" "{name}\\0"\n')
        out.write("    ;\nconstexpr uint16_t kObjectStarts[] = {\n")
        for i in range(0, len(starts), 16):
            out.write("    " + " ".join(f"{s}," for s in starts[i:i + 16]) + "\n")
        out.write("};\n")
    assert at < 65536, "starts are 16 bits"


if __name__ == "__main__":
    main()
