#!/usr/bin/env python3
"""The library's saves, as an analyzer calls them: a host that lends its capture buffer, and a file of the caller's."""
import ctypes
import os
import struct
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
LIBRARY = os.environ.get("QXVIEW_LIBRARY", os.path.join(ROOT, "build", "libqxview.so"))
QXVIEW = ctypes.CDLL(LIBRARY)


class State(ctypes.Structure):
    _fields_ = [("size", ctypes.c_uint32), ("packetCount", ctypes.c_uint64)]


STATE = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, ctypes.POINTER(State))
LEND = ctypes.CFUNCTYPE(ctypes.c_void_p, ctypes.c_void_p, ctypes.c_uint64)
ELEMENT = ctypes.CFUNCTYPE(ctypes.c_void_p, ctypes.c_void_p)
COUNT = ctypes.CFUNCTYPE(ctypes.c_uint32, ctypes.c_void_p)


class Host(ctypes.Structure):
    _fields_ = [("size", ctypes.c_uint32), ("user", ctypes.c_void_p), ("others", ctypes.c_void_p * 12),
                ("captureBufferState", STATE), ("lendPacket", LEND), ("optionalElement", ELEMENT),
                ("decompressedPackets", COUNT)]


class Save(ctypes.Structure):
    _fields_ = [("size", ctypes.c_uint32), ("append", ctypes.c_int32), ("file", ctypes.c_ssize_t),
                ("firstPacket", ctypes.c_uint64), ("lastPacket", ctypes.c_uint64), ("firstNumber", ctypes.c_uint64),
                ("savePartial", ctypes.c_int32), ("partialBytes", ctypes.c_uint16), ("zero", ctypes.c_uint16),
                ("source", ctypes.c_int32), ("headerByte", ctypes.c_uint32), ("useOptionalElement", ctypes.c_int32),
                ("tellDecompressed", ctypes.c_int32), ("name", ctypes.c_char_p), ("fileName", ctypes.c_char_p)]


def make_record(number):
    """A bare record whose data tell its number."""
    return struct.pack("<qHHHHBBBBIQ", 5, 100, 0, 32, 132, 0, 0, 0, 0, 0, number) + bytes([number]) * 100


class Saves(unittest.TestCase):
    def setUp(self):
        self.records = {n: ctypes.create_string_buffer(make_record(n), 132) for n in range(10, 20)}
        self.element = ctypes.create_string_buffer(struct.pack("<HH", 77, 8) + b"mine", 8)
        self.answer = 1
        self.host = Host(size=ctypes.sizeof(Host), captureBufferState=STATE(self.state), lendPacket=LEND(
            lambda _, n: ctypes.addressof(self.records[n]) if n in self.records else None),
            optionalElement=ELEMENT(lambda _: ctypes.addressof(self.element)), decompressedPackets=COUNT(lambda _: 3))
        self.file = tempfile.TemporaryFile()
        self.addCleanup(self.file.close)

    def state(self, _, out):
        out[0].packetCount = len(self.records)
        return self.answer

    def save(self, first=10, last=12, packets=None, **fields):
        record = Save(size=ctypes.sizeof(Save), file=self.file.fileno(), firstPacket=first, lastPacket=last,
                      name=b"n", fileName=b"x.bfr", **fields)
        told = ctypes.c_uint32(99)
        if packets is None:
            return QXVIEW.SaveCaptureBuffer(ctypes.byref(self.host), ctypes.byref(record), ctypes.byref(told)), told.value
        numbers = (ctypes.c_uint64 * len(packets))(*packets)
        return QXVIEW.QxView_SavePackets(ctypes.byref(self.host), ctypes.byref(record), numbers, len(packets), None)

    def saved(self):
        """(number of elements, [(number, data byte, captured length)])."""
        data = os.pread(self.file.fileno(), 1 << 20, 0)
        at, found = struct.unpack_from("<H", data, 32)[0], []
        while at < len(data):
            captured, length, number = struct.unpack_from("<8xH4xH8xQ", data, at)
            found.append((number, data[at + 32], captured))
            at += length
        return data[35], found

    def test_ranges_lists_and_appending(self):
        self.assertEqual(self.save(useOptionalElement=1, firstNumber=100, headerByte=7), (1, 3))
        self.assertEqual(self.saved(), (4, [(100, 10, 100), (101, 11, 100), (102, 12, 100)]))
        self.assertIn(struct.pack("<HH", 77, 8) + b"mine", os.pread(self.file.fileno(), 4096, 0))
        os.lseek(self.file.fileno(), 0, os.SEEK_SET)
        self.assertEqual(self.save(packets=[19, 15], append=1, savePartial=1, partialBytes=64), 1)
        self.assertEqual(self.saved()[1][3:], [(103, 19, 64), (104, 15, 64)])

    def test_what_cannot_be_saved(self):
        self.assertEqual(self.save(first=12, last=11)[0], 11)
        self.assertEqual(self.save(packets=[]), 11)
        self.assertEqual(os.fstat(self.file.fileno()).st_size, 0)
        self.answer = 0
        self.assertEqual(self.save(), (12, 0))
        self.answer = 1
        self.assertEqual(self.save(first=18, last=2**64 - 1)[0], 12)   # 20 is not there any more
        self.assertEqual([number for number, _, _ in self.saved()[1]], [1, 2])
        self.assertEqual(self.save(append=1)[0], 8)   # the file stands at its end
        older = Host(size=Host.captureBufferState.offset)
        self.assertEqual(QXVIEW.SaveCaptureBuffer(ctypes.byref(older), None, None), 12)
        with open("/dev/full", "wb") as full:
            self.file.close()
            self.file = full
            self.assertEqual(self.save()[0], 13)

    def test_messages_and_dialogs(self):
        code = ("import ctypes, runpy\n"
                f"t = runpy.run_path({os.path.abspath(__file__)!r})\n"
                "s = t['Save'](size=ctypes.sizeof(t['Save']), fileName=b'x.bfr', tellDecompressed=1)\n"
                "show = lambda code, count=0: t['QXVIEW'].DisplaySaveBufferResultMsg(None, ctypes.byref(s), code, count)\n"
                "name = ctypes.create_string_buffer(b'offered', 260)\n"
                "print([show(1), show(1, 7), show(2), show(6), show(13)],\n"
                "      [f(None, 0, name, 260) for f in (t['QXVIEW'].DisplaySaveBufferDialog,\n"
                "       t['QXVIEW'].GetLoadBufferFileName, t['QXVIEW'].QxView_OpenCaptureFileDlg)], name.value)\n")
        done = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, check=True,
                              env={**os.environ, "QXVIEW_LIBRARY": LIBRARY})
        self.assertEqual(done.stdout, "[0, 1, 0, 1, 1] [0, 0, 0] b'offered'\n")
        self.assertEqual(done.stderr, "Frame Relay FRF.9 Decompression: Successfully decompressed 7 packets\n"
                                      "x.bfr: Cannot open file for writing.\n"
                                      "Save Packet Buffer: Unable to save packet buffer: x.bfr.\n")


if __name__ == "__main__":
    unittest.main()
