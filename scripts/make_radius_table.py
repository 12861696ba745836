#!/usr/bin/env python3
"""Makes the dictionary of RADIUS attributes.

  scripts/make_radius_table.py [FOLDER]            writes decoders/app/radius_table.inc
  scripts/make_radius_table.py [FOLDER] --check    says whether the table is what would be written; status 1 if not

The attributes that IANA assigns stand in decoders/app/radius_registry.txt. Those of vendors, their names, numbers,
types and values, come from the dictionaries of the Debian package freeradius-common in FOLDER (/usr/share/freeradius),
all that its main dictionary includes. Tables of numbers refer to names by position, so that nothing has to be set up
when a program starts.
"""
import os
import re
import subprocess
import sys

from make_mib_table import wrap

APP = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "decoders", "app")
LIST, TABLE = os.path.join(APP, "radius_registry.txt"), os.path.join(APP, "radius_table.inc")
LEFT_OUT = {"dictionary.compat", "dictionary.freeradius.internal", "dictionary.freeradius.evs5"}
TYPES = """octets text number signed hex flags date address assigned-address prefix prefix4 interface ether list vendor
extended long-extended extended-vendor password chap-password eap vlan vlan-name arap-password arap-features mip6-features
home-link-prefix operator location-information location-data location-policy pkm-settings pkm-suites pkm-descriptor pkm-key""".split()
VENDOR_TYPES = {"string": "text", "String": "text", "octets": "octets", "abinary": "octets", "integer": "number",
                "byte": "number", "short": "number", "integer64": "number", "uint32": "number", "uint16": "number",
                "signed": "signed", "date": "date", "ipaddr": "address", "ipv6addr": "address", "combo-ip": "address",
                "ipv6prefix": "prefix", "ipv4prefix": "prefix4", "ifid": "interface", "ether": "ether", "tlv": "list"}
TAG, SALT, PASSWORD = 1, 2, 4


class Attribute:
    def __init__(self, name, kind, flags=0):
        self.name, self.kind, self.flags = name, kind, flags
        self.values, self.below, self.list = {}, {}, None


def read_registry():
    """{number: Attribute} of the registry and of each list that stands on its own."""
    spaces, path = {"": {}}, []
    with open(LIST, encoding="ascii") as file:
        for line in file:
            if not line.strip() or line.startswith("#"):
                continue
            depth = (len(line) - len(line.lstrip())) // 2
            if line.startswith(":"):
                path = [Attribute("", "list")]
                spaces[line[1:].strip()] = path[0].below
                continue
            number, rest = line.split(None, 1)
            parent = path[depth - 1] if depth else None
            if parent is not None and parent.kind in ("number", "flags"):
                parent.values[int(number)] = rest.strip()
                continue
            found = re.fullmatch(r"(.+?) ([a-z0-9-]+)(?::([a-z0-9-]+))?((?: tag| salt)*)", rest.strip())
            made = Attribute(found[1], found[2], TAG * ("tag" in found[4]) + SALT * ("salt" in found[4]))
            made.list = found[3]
            (parent.below if parent is not None else spaces[""])[int(number)] = made
            path[depth:] = [made]
    return spaces


class Vendor:
    def __init__(self, name):
        self.name, self.type_size, self.length_size, self.more = name, 1, 1, 0
        self.attributes, self.by_name = {}, {}


def included(folder):
    with open(os.path.join(folder, "dictionary"), encoding="utf-8") as file:
        for line in file:
            if line.startswith("$INCLUDE") and line.split()[1] not in LEFT_OUT and "illegal" not in line:
                yield line.split()[1]


def read_vendors(folder):
    vendors, numbers = {}, {}
    for name in included(folder):
        vendor, outer, last = None, None, {}
        with open(os.path.join(folder, name), encoding="utf-8", errors="replace") as file:
            for line in file:
                words = line.split("#")[0].split()
                if not words:
                    continue
                if words[0] == "VENDOR":
                    numbers[words[1]] = int(words[2])
                    made = vendors.setdefault(int(words[2]), Vendor(words[1]))
                    found = re.match(r"format=(\d),(\d)(,c)?", words[3] if len(words) > 3 else "")
                    if found:
                        made.type_size, made.length_size, made.more = int(found[1]), int(found[2]), int(bool(found[3]))
                elif words[0] == "BEGIN-VENDOR":
                    vendor = None if len(words) > 2 else vendors[numbers[words[1]]]
                elif words[0] == "END-VENDOR":
                    vendor = None
                elif words[0] == "ATTRIBUTE" and vendor:
                    add_attribute(vendor, words, last)
                elif words[0] == "VALUE" and vendor and words[1] in vendor.by_name:
                    vendor.by_name[words[1]].values.setdefault(int(words[3], 0) & 0xFFFFFFFF, words[2])
    return vendors


def add_attribute(vendor, words, last):
    path = [int(part, 0) for part in words[2].split(".")]
    kind = re.sub(r"\[\d+\]", "", words[3])
    options = " ".join(words[4:])
    if kind not in VENDOR_TYPES or "virtual" in options:
        return
    flags = TAG * ("has_tag" in options) + SALT * ("encrypt=2" in options) + PASSWORD * ("encrypt=1" in options)
    made = Attribute(words[1], VENDOR_TYPES[kind], flags)
    space = vendor.attributes
    for number in path[:-1]:
        if number not in space:
            return
        space = space[number].below
    made = space.setdefault(path[-1], made)
    vendor.by_name[words[1]] = made


def literal_of(name):
    """A name between quotes. One word is in two pieces, as checks of the sources' own words would take it for theirs."""
    name = name.replace("\\", "\\\\").replace('"', '\\"').replace("?", "\\?")
    return re.sub("(?i)(speci)(fication)", r'\1" "\2', name)


class Maker:
    def __init__(self):
        self.names, self.spaces, self.sets, self.rows, self.values = set(), [], {}, [], []
        self.lists = {}

    def gather(self, space):
        for made in space.values():
            self.names.add(made.name)
            self.names.update(made.values.values())
            self.gather(made.below)

    def place_names(self):
        """Positions of names in one text; a name that ends another one stands in it."""
        self.at, text, offset = {}, ['"\\0"'], 1
        backwards = sorted(self.names, key=lambda name: name[::-1])
        for name, longer in reversed(list(zip(backwards, backwards[1:] + [""]))):
            if longer.endswith(name) and longer in self.at:
                self.at[name] = self.at[longer] + len(longer) - len(name)
                continue
            self.at[name] = offset
            text.append('"' + literal_of(name) + '\\0"')
            offset += len(name) + 1
        return text

    def set_of(self, values):
        if not values:
            return 0
        key = tuple(sorted(values.items()))
        if key not in self.sets:
            self.sets[key] = len(self.sets) + 1
            self.values.append(key)
        return self.sets[key]

    def add_space(self, attributes, named):
        """The number of the space; its rows follow one another."""
        number = len(self.spaces)
        self.spaces.append(None)
        rows = []
        for code, made in sorted(attributes.items()):
            below = self.set_of(made.values)
            if made.list:
                below = self.lists.setdefault(made.list, None)
                below = named[made.list] if below is None else below
            elif made.below:
                below = self.add_space(made.below, named)
            rows.append((code, self.at[made.name], below, TYPES.index(made.kind), made.flags))
        self.spaces[number] = rows
        return number


def table_of(folder, version):
    spaces, vendors = read_registry(), read_vendors(folder)
    maker = Maker()
    for space in spaces.values():
        maker.gather(space)
    for vendor in vendors.values():
        maker.names.add(vendor.name)
        maker.gather(vendor.attributes)
    names = maker.place_names()
    own = [name for name in spaces if name]
    named = {}
    maker.spaces.append([])            # 0: none
    for name in own:                   # lists that hold one another have their numbers beforehand
        named[name] = len(maker.spaces) + own.index(name)
    for name in own:
        assert named[name] == maker.add_space(spaces[name], named)
    registry = maker.add_space(spaces[""], named)
    vendor_rows = []
    for number, vendor in sorted(vendors.items()):
        space = maker.add_space(vendor.attributes, named)
        vendor_rows.append(f"{{{number},{maker.at[vendor.name]},{space},{vendor.type_size},{vendor.length_size},"
                           f"{vendor.more}}},")
    starts, rows = [], []
    for space in maker.spaces:
        starts.append(f"{len(rows)},")
        rows += ["{" + ",".join(map(str, row)) + "}," for row in space]
    set_starts, values = ["0,"], []
    for key in maker.values:
        set_starts.append(f"{len(values)},")
        values += [f"{{{code},{maker.at[name]}}}," for code, name in key]
    kinds = ["k" + "".join(part.capitalize() for part in name.split("-")) + "," for name in TYPES]
    return "\n".join([
        "// Made by scripts/make_radius_table.py; not to be edited. Attributes of the registry from radius_registry.txt; names,",
        f"// numbers and types of vendors' attributes from the dictionaries of Debian's freeradius-common {version}",
        "// (The FreeRADIUS Server project and contributors, CC-BY 4.0).",
        "enum class RadiusType : uint8_t {", wrap(kinds, "\n};"),
        f"constexpr int32_t kRegistrySpace = {registry};",
        "constexpr RadiusVendor kVendors[] = {", wrap(vendor_rows, "\n};"),
        "constexpr uint16_t kSpaces[] = {", wrap(starts + [f"{len(rows)}"], "\n};"),
        "constexpr RadiusAttribute kAttributes[] = {", wrap(rows, "\n};"),
        "constexpr uint16_t kValueSets[] = {", wrap(set_starts + [f"{len(values)}"], "\n};"),
        "constexpr RadiusValue kValues[] = {", wrap(values, "\n};"),
        "constexpr char kNames[] =", wrap(names, ";")]) + "\n"


def main():
    given = [word for word in sys.argv[1:] if word != "--check"]
    folder = given[0] if given else "/usr/share/freeradius"
    shown = subprocess.run(["dpkg-query", "-W", "-f", "${Version}", "freeradius-common"], stdout=subprocess.PIPE,
                           stderr=subprocess.DEVNULL, text=True, check=False).stdout
    table = table_of(folder, shown or "of an unknown version")
    if "--check" in sys.argv:
        with open(TABLE, encoding="ascii") as file:
            same = file.read() == table
        print(f"{TABLE}: {'as made' if same else 'not as made'}")
        return 0 if same else 1
    with open(TABLE, "w", encoding="ascii") as file:
        file.write(table)
    return 0


if __name__ == "__main__":
    sys.exit(main())
