#!/usr/bin/env python3
"""Writes include/qxview/qxview_functions.h, the types of pointers to the exported functions, from qxview.h.

  scripts/make_function_types.py            writes it
  scripts/make_function_types.py --check    exit status 1 when it is not as it would be written
"""
import os
import re
import sys

FOLDER = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "include", "qxview")
HEAD = """/* Types of pointers to the exported functions, NAMEFunction for each, for programs that load the library while they run:
 *
 *   QxView_CreateViewFunction create = (QxView_CreateViewFunction)GetProcAddress(module, "QxView_CreateView");
 *
 * Made from qxview.h by scripts/make_function_types.py. */
#ifndef QXVIEW_FUNCTIONS_H
#define QXVIEW_FUNCTIONS_H

#include "qxview/qxview.h"

#ifdef __cplusplus
extern "C" {
#endif

"""
FOOT = """
#ifdef __cplusplus
}
#endif
#endif
"""
WIDTH = 120


def break_lines(text):
    """The declaration in lines of at most WIDTH, the further ones below the first argument."""
    lines, indent = [], " " * (text.index(")(") + 3)
    while len(text) > WIDTH:
        at = text.rindex(", ", 0, WIDTH) + 1
        lines.append(text[:at])
        text = indent + text[at + 1:]
    return "\n".join([*lines, text])


def make(header):
    """The header's text from that of qxview.h."""
    types = []
    for declaration in re.findall(r"^QXVIEW_EXPORT ([^;]*);", header, re.M):
        result, name, arguments = re.fullmatch(r"(.*?[ *])(\w+)\((.*)\)", " ".join(declaration.split())).groups()
        types.append(break_lines(f"typedef {result}(*{name}Function)({arguments});"))
    return HEAD + "\n".join(types) + "\n" + FOOT


def main():
    with open(os.path.join(FOLDER, "qxview.h"), encoding="utf-8") as file:
        made = make(file.read())
    path = os.path.join(FOLDER, "qxview_functions.h")
    if "--check" in sys.argv[1:]:
        with open(path, encoding="utf-8") as file:
            return 0 if file.read() == made else 1
    with open(path, "w", encoding="utf-8") as file:
        file.write(made)
    return 0


if __name__ == "__main__":
    sys.exit(main())
