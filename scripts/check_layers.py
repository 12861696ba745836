#!/usr/bin/env python3
"""Checks who includes whom: every #include of the tree against the tables below.

  scripts/check_layers.py                 checks this tree; one line for each breach, exit status 1 when there is one
  scripts/check_layers.py --self-test     checks that each kind of breach is found
"""
import os
import re
import sys
import tempfile

# Layer (the longest folder or file that a path starts with): the layers whose headers it may include. "*" is every layer.
# What stands in no layer's list besides its own is included by nothing: the platforms, the program, the tests.
LAYERS = {
    "include/qxview":        ["include/qxview"],
    "core":                  ["include/qxview", "core", "host", "view"],
    "view":                  ["include/qxview", "core", "host", "view"],
    "decoders":              ["include/qxview", "core", "decoders/common", "decoders"],
    "decoders/common":       ["include/qxview", "core", "decoders/common"],
    "keys":                  ["keys"],
    "query":                 ["include/qxview", "core", "view", "host", "keys", "query"],
    "browse":                ["include/qxview", "core", "view", "host", "files", "keys", "query", "browse"],
    "files":                 ["include/qxview", "core", "files"],
    "host":                  ["include/qxview", "core", "view", "files", "host"],
    "paper":                 ["core", "files", "paper"],
    "platform":              ["*"],
    "exports":               ["*"],
    "app":                   ["*"],
    "tests":                 ["*"],
    "fuzz":                  ["*"],
    "bench":                 ["*"],
    "samples":               ["include/qxview"],
}
# Layers that "*" reaches into only from themselves, and from one another where a pair is named here.
PRIVATE = {"platform": ["platform", "exports", "app", "tests", "bench", "fuzz"], "app": ["app", "tests"], "exports": ["exports", "tests"],
           "tests": ["tests", "fuzz", "bench"], "fuzz": ["fuzz", "tests"], "bench": ["bench"], "samples": ["samples"]}

# System headers that a layer does without: it is built without exceptions, allocates nothing, and knows no platform.
HEAVY = ["string", "vector", "iostream", "ostream", "istream", "sstream", "fstream", "map", "unordered_map", "set", "list",
         "deque", "regex"]
WINDOWS = ["windows.h", "winsock.h", "winsock2.h", "commctrl.h"]
FORBIDDEN = {"core": HEAVY + WINDOWS, "decoders": HEAVY + WINDOWS, "decoders/common": HEAVY + WINDOWS, "view": WINDOWS, "browse": WINDOWS,
             "files": WINDOWS, "paper": WINDOWS, "include/qxview": HEAVY}

# System headers that only these places see (patterns over the path).
RESERVED = {"zlib.h": [r"decoders/(.*/)?http[^/]*$", r"files/", r"host/", r"tests/", r"fuzz/", r"bench/"]}

SOURCES = (".c", ".h", ".cpp", ".hpp", ".inc")
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*[<"]([^>"]+)[>"]', re.M)


def layer_of(path):
    """The layer of a file, given its path from the root; None when it is in none."""
    holders = [layer for layer in LAYERS if path.startswith(layer + "/")]
    return max(holders, key=len) if holders else None


def resolve(root, source, name):
    """The path from the root of the header that a source names; None when it is none of the tree's."""
    for folder in (os.path.dirname(source), "", "include"):
        path = os.path.normpath(os.path.join(folder, name))
        if os.path.isfile(os.path.join(root, path)):
            return path
    return None


def judge_own(source, layer, target):
    """Why a source may not include this file of the tree; None when it may."""
    other = layer_of(target)
    if target.endswith((".cpp", ".c")):
        return "a source file, not a header"
    if other is None:
        return "a file in no layer"
    if other in PRIVATE and layer not in PRIVATE[other]:
        return f"nothing in {layer}/ includes {other}/"
    if "*" not in LAYERS[layer] and other not in LAYERS[layer]:
        return f"{layer}/ does not include {other}/"
    return None


def judge_system(source, layer, name):
    """Why a source may not include this system header; None when it may."""
    if name.lower() in FORBIDDEN.get(layer, []):
        return f"{layer}/ does without <{name}>"
    if name in RESERVED and not any(re.match(place, source) for place in RESERVED[name]):
        return f"<{name}> is not seen here"
    return None


def check_file(root, source):
    """The breaches in one source: (line number, included name, reason)."""
    layer = layer_of(source)
    with open(os.path.join(root, source), encoding="utf-8", errors="replace") as file:
        text = file.read()
    for found in INCLUDE.finditer(text):
        name = found[1]
        target = resolve(root, source, name)
        reason = judge_own(source, layer, target) if target else judge_system(source, layer, name)
        if reason:
            yield text.count("\n", 0, found.start()) + 1, name, reason


def sources_of(root):
    """The C and C++ files of every layer, as paths from the root."""
    for top in sorted({layer.split("/")[0] for layer in LAYERS}):
        for folder, _, names in sorted(os.walk(os.path.join(root, top))):
            for name in sorted(names):
                path = os.path.relpath(os.path.join(folder, name), root)
                if name.endswith(SOURCES) and layer_of(path):
                    yield path


def check(root):
    """All breaches of a tree, as lines of text, and the number of files looked at."""
    files = list(sources_of(root))
    return [f'{source}:{line}: "{name}": {reason}' for source in files
            for line, name, reason in check_file(root, source)], len(files)


# Files of a made-up tree, and for each the includes that have to be found (an empty list: none may be).
SELF_TEST = {
    "include/qxview/qxview.h": ("#include <stdint.h>\n", []),
    "core/decoder.h": ('#include "qxview/qxview.h"\n#include <cstdint>\n#include <string_view>\n', []),
    "core/up.cpp": ('#include "decoders/net/arp.h"\n#include "app/main.h"\n', ["decoders/net/arp.h", "app/main.h"]),
    "core/heavy.cpp": ('#include <string>\n  #  include <vector>\n#include <Windows.h>\n', ["string", "vector", "Windows.h"]),
    "decoders/net/arp.h": ('#include "core/decoder.h"\n', []),
    "decoders/net/arp.cpp": ('#include "arp.h"\n#include "decoders/app/http.h"\n#include "host/host.h"\n', ["host/host.h"]),
    "decoders/app/http.h": ("", []),
    "decoders/app/http.cpp": ('#include <zlib.h>\n#include "decoders/net/arp.cpp"\n', ["decoders/net/arp.cpp"]),
    "decoders/app/dns.cpp": ("#include <zlib.h>\n#include <iostream>\n", ["zlib.h", "iostream"]),
    "decoders/registry.cpp": ('#include "decoders/net/arp.h"\n#include "decoders/app/http.h"\n', []),
    "files/pcap.cpp": ('#include <zlib.h>\n#include "core/decoder.h"\n#include "platform/posix/map.h"\n',
                       ["platform/posix/map.h"]),
    "host/host.h": ('#include "core/decoder.h"\n#include "decoders/net/arp.h"\n', ["decoders/net/arp.h"]),
    "platform/posix/map.h": ('#include "host/host.h"\n#include "app/main.h"\n', ["app/main.h"]),
    "app/main.h": ('#include "platform/posix/map.h"\n#include "core/decoder.h"\n#include <string>\n', []),
    "samples/library.cpp": ('#include <qxview/qxview.h>\n#include "core/decoder.h"\n', ["core/decoder.h"]),
    "tests/arp_test.cpp": ('#include "decoders/net/arp.h"\n#include "app/main.h"\n#include <vector>\n', []),
}


def self_test():
    """Lays the made-up tree and compares what is found in it with what has to be."""
    with tempfile.TemporaryDirectory() as root:
        for path, (text, _) in SELF_TEST.items():
            os.makedirs(os.path.dirname(os.path.join(root, path)), exist_ok=True)
            with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                file.write(text)
        wrong = 0
        for path, (_, expected) in SELF_TEST.items():
            found = [name for _, name, _ in check_file(root, path)]
            if found != expected:
                print(f"self-test: {path}: found {found}, expected {expected}")
                wrong += 1
        if len(list(sources_of(root))) != len(SELF_TEST):
            print("self-test: not every file was looked at")
            wrong += 1
    print("self-test: " + ("failed" if wrong else f"{len(SELF_TEST)} made-up files judged right"))
    return 1 if wrong else 0


def main():
    if "--self-test" in sys.argv[1:]:
        return self_test()
    breaches, count = check(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    for breach in breaches:
        print(breach)
    print(f"{count} files, {len(breaches)} breach(es) of the layering")
    return 1 if breaches or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
