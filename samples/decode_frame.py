#!/usr/bin/env python3
"""Decodes one frame with libqxview.so and prints its tree with ranges: the module in a program of your own.

  samples/decode_frame.py [LIBRARY]      (default: build/libqxview.so)
"""
import ctypes, os, sys

library = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "../build/libqxview.so")
qx = ctypes.CDLL(library)
qx.QxView_CreateView.restype = ctypes.c_void_p
for name in ("QxView_FirstLine", "QxView_NextLine", "QxView_FirstChild"):
    getattr(qx, name).restype = ctypes.c_size_t
view = ctypes.c_void_p(qx.QxView_CreateView(None))
frame = bytes.fromhex("ffffffffffff 020000000001 0806 0001 0800 06 04 0001 020000000001 0a000001 000000000000 0a000002")
qx.QxView_DecodeBytes(view, 0, frame, len(frame), len(frame), ctypes.c_int64(1795247613009197000))
text, offset, length, kind = ctypes.create_string_buffer(1024), ctypes.c_int32(), ctypes.c_uint32(), ctypes.c_int32()

def show(line, depth):
    while line:
        at = ctypes.c_size_t(line)
        qx.QxView_LineText(view, at, text, len(text))
        qx.QxView_LineRange(view, at, ctypes.byref(offset), ctypes.byref(length), ctypes.byref(kind))
        print("  " * depth + text.value.decode("cp1252", "replace") + f"  [{offset.value}, {length.value}]")
        show(qx.QxView_FirstChild(view, at), depth + 1)
        line = qx.QxView_NextLine(view, at)

show(qx.QxView_FirstLine(view), 0)
qx.QxView_DestroyView(view)
