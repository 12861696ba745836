"""Decodes captured network packets layer by layer: the library libqxview for Python.

    import qxview

    view = qxview.View()
    for packet in qxview.open("capture.pcapng"):
        decoded = view.decode(packet)
        print(packet.number, decoded.source, decoded.destination, decoded.summary)
        for line in decoded.walk():
            print("  " * line.depth + line.text, line.offset, line.length)

    pandas.DataFrame(qxview.records("capture.pcapng"))      # one row a packet

Packets and lines are plain data: they stay good when the view goes on or is closed. Views and captures are closed by
`with`, by close(), or with the last reference to them; they may be used from any thread.
"""
import ctypes
import datetime
import os
import struct
import sys
import threading

__all__ = ["Capture", "DecodedPacket", "Error", "Line", "Packet", "View", "open", "records", "version"]

ABI = 7


class Error(Exception):
    """The library could not do it; the text says why."""


class _Options(ctypes.Structure):
    _fields_ = [("size", ctypes.c_uint32), ("host", ctypes.c_void_p), ("settings", ctypes.c_char_p),
                ("message", ctypes.c_void_p), ("messageUser", ctypes.c_void_p)]


class _Packet(ctypes.Structure):
    _fields_ = [("size", ctypes.c_uint32), ("linkType", ctypes.c_uint16), ("direction", ctypes.c_uint16),
                ("number", ctypes.c_uint64), ("nanoseconds", ctypes.c_int64), ("capturedLength", ctypes.c_uint32),
                ("originalLength", ctypes.c_uint32), ("data", ctypes.c_void_p), ("record", ctypes.c_void_p),
                ("interfaceIndex", ctypes.c_uint32)]


class _PacketLine(ctypes.Structure):
    _fields_ = [("size", ctypes.c_uint32), ("length", ctypes.c_uint32), ("number", ctypes.c_uint64),
                ("nanoseconds", ctypes.c_int64), ("source", ctypes.c_char_p), ("destination", ctypes.c_char_p),
                ("summary", ctypes.c_char_p)]


class _Value(ctypes.Structure):
    _fields_ = [("size", ctypes.c_uint32), ("kind", ctypes.c_int32), ("number", ctypes.c_uint64),
                ("text", ctypes.c_char_p)]

    def read(self):
        """None, a number or a text."""
        signed = self.kind == 2 and self.number >> 63
        return self.text.decode("utf-8") if self.kind == 3 else self.number - (signed << 64) if self.kind else None


class _LineInfo(ctypes.Structure):
    _fields_ = [("size", ctypes.c_uint32), ("depth", ctypes.c_int32), ("line", ctypes.c_size_t),
                ("text", ctypes.c_char_p), ("textLength", ctypes.c_int32), ("image", ctypes.c_int32),
                ("offset", ctypes.c_int32), ("length", ctypes.c_uint32), ("kind", ctypes.c_int32),
                ("key", ctypes.c_char_p), ("value", ctypes.POINTER(_Value))]


_VISITOR = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, ctypes.POINTER(_LineInfo))
_MESSAGE = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_int32, ctypes.c_char_p)

_VIEW = _CAPTURE = ctypes.c_void_p
_FUNCTIONS = {   # result, arguments
    "GetQxViewVersion": (ctypes.c_uint32, []),
    "QxView_LastError": (ctypes.c_char_p, []),
    "QxView_CreateViewWith": (_VIEW, [ctypes.POINTER(_Options)]),
    "QxView_DestroyView": (None, [_VIEW]),
    "QxView_SetOutput": (ctypes.c_int32, [_VIEW, ctypes.c_int32, ctypes.c_ssize_t]),
    "QxView_DecodeFrame": (ctypes.c_int32, [_VIEW, ctypes.c_char_p, ctypes.c_uint32, ctypes.c_uint32, ctypes.c_int32]),
    "QxView_DecodeLinkType": (ctypes.c_int32, [_VIEW, ctypes.c_uint16, ctypes.c_char_p, ctypes.c_int32,
                                               ctypes.c_uint32, ctypes.c_int64]),
    "QxView_KeepKeys": (ctypes.c_int32, [_VIEW, ctypes.c_int32]),
    "QxView_PacketLine": (ctypes.c_int32, [_VIEW, ctypes.POINTER(_PacketLine)]),
    "QxView_VisitLines": (ctypes.c_int32, [_VIEW, _VISITOR, ctypes.c_void_p]),
    "QxView_OpenCapture": (_CAPTURE, [ctypes.c_char_p]),
    "QxView_NextPacket": (ctypes.c_int32, [_CAPTURE, ctypes.POINTER(_Packet)]),
    "QxView_CapturePercent": (ctypes.c_int32, [_CAPTURE]),
    "QxView_CloseCapture": (None, [_CAPTURE]),
}


def _library_places():
    """Where the library may be: the one that is named, beside this module, in its prefix, wherever the system looks."""
    if os.environ.get("QXVIEW_LIBRARY"):
        yield os.environ["QXVIEW_LIBRARY"]
        return
    here = os.path.dirname(os.path.abspath(__file__))
    name = "qxview.dll" if sys.platform == "win32" else f"libqxview.so.{ABI}"
    for folder in (here, os.path.join(here, "..", "..")):
        path = os.path.normpath(os.path.join(folder, name))
        if os.path.exists(path):
            yield path
    yield name


def _load():
    reason = None
    for place in _library_places():
        try:
            library = ctypes.CDLL(place)
            for name, (result, arguments) in _FUNCTIONS.items():
                function = getattr(library, name)
                function.restype, function.argtypes = result, arguments
            return library
        except (OSError, AttributeError) as fault:
            reason = reason or fault
    raise ImportError(f"libqxview: {reason}; the variable QXVIEW_LIBRARY names a library that is elsewhere")


_LIBRARY = _load()


def version():
    """The library's version, (major, minor)."""
    number = _LIBRARY.GetQxViewVersion()
    return number >> 8, number & 0xFF


def _last_error():
    return _LIBRARY.QxView_LastError().decode("utf-8", "replace")


def _whole(name, value, least, most):
    value = value.__index__()
    if not least <= value <= most:
        raise ValueError(f"{name} is {least} to {most}, not {value}")
    return value


class _Handle:
    """A pointer of the library's that is used by one thread at a time and never after it has been closed."""
    _destroy = None

    def __init__(self):
        self._pointer = None
        self._lock = threading.RLock()

    def _use(self):
        if self._pointer is None:
            raise ValueError(f"the {type(self).__name__.lower()} is closed")
        return self._pointer

    def close(self):
        """Frees what the library holds; what was decoded or read stays good."""
        with self._lock:
            pointer, self._pointer = self._pointer, None
            if pointer is not None:
                type(self)._destroy(pointer)

    def __enter__(self):
        self._use()
        return self

    def __exit__(self, *_):
        self.close()

    def __del__(self):
        if getattr(self, "_pointer", None) is not None:
            self.close()

    def __copy__(self):
        raise TypeError(f"a {type(self).__name__.lower()} cannot be copied")

    def __deepcopy__(self, _):
        self.__copy__()

    def __reduce__(self):
        raise TypeError(f"a {type(self).__name__.lower()} cannot be pickled")


class Packet:
    """A packet of a capture: number, nanoseconds since 1970, length on the wire, link_type, interface, data."""
    __slots__ = ("number", "nanoseconds", "length", "link_type", "direction", "interface", "data", "_record")

    def __init__(self, told):
        self.number, self.nanoseconds, self.length = told.number, told.nanoseconds, told.originalLength
        self.link_type, self.direction, self.interface = told.linkType, told.direction, told.interfaceIndex
        self.data = ctypes.string_at(told.data, told.capturedLength) if told.capturedLength else b""
        self._record = ctypes.string_at(told.record, struct.unpack_from("<H", ctypes.string_at(told.record, 16), 14)[0])

    @property
    def time(self):
        """When it was captured, in UTC, to the microsecond; nanoseconds has all of it."""
        return _time_of(self.nanoseconds)

    def __repr__(self):
        return f"<qxview.Packet {self.number}: {len(self.data)} of {self.length} bytes, link type {self.link_type}>"


def _time_of(nanoseconds):
    return (datetime.datetime(1970, 1, 1, tzinfo=datetime.timezone.utc) +
            datetime.timedelta(microseconds=nanoseconds // 1000))


class Capture(_Handle):
    """The packets of a pcap, pcapng or capture buffer file, in order; a damaged file ends with an Error that says where."""
    _destroy = staticmethod(_LIBRARY.QxView_CloseCapture)

    def __init__(self, path):
        super().__init__()
        name = os.fspath(path)
        if isinstance(name, str):
            name = name.encode("utf-8") if sys.platform == "win32" else os.fsencode(name)
        if b"\0" in name:
            raise ValueError("a path holds no zero byte")
        self._pointer = _LIBRARY.QxView_OpenCapture(name)
        if self._pointer is None:
            raise Error(_last_error())

    def __iter__(self):
        return self

    def __next__(self):
        told = _Packet(size=ctypes.sizeof(_Packet))
        with self._lock:
            result = _LIBRARY.QxView_NextPacket(self._use(), ctypes.byref(told))
            if result < 0:
                raise Error(_last_error())
            if result == 0:
                raise StopIteration
            return Packet(told)

    @property
    def percent(self):
        """How much of the file has been read; None for a pipe."""
        with self._lock:
            percent = _LIBRARY.QxView_CapturePercent(self._use())
        return None if percent < 0 else percent


def open(path):   # pylint: disable=redefined-builtin
    """Opens a capture; "-" is standard input."""
    return Capture(path)


class Line:
    """A line of the tree: text, the bytes that it was decoded from (offset, length), depth, image, children; of a view with
    keys also key ("ip.time_to_live") and value (a number, a text or None)."""
    __slots__ = ("text", "offset", "length", "kind", "image", "depth", "children", "key", "value")

    def __init__(self, told):
        self.text = told.text.decode("utf-8")
        self.offset, self.length, self.kind = told.offset, told.length, told.kind
        self.image, self.depth, self.children = told.image, told.depth, []
        self.key = told.key.decode("ascii") if told.key else None
        self.value = told.value.contents.read() if told.key else None

    def walk(self):
        """This line and all below it, in order."""
        waiting = [self]
        while waiting:
            line = waiting.pop()
            yield line
            waiting.extend(reversed(line.children))

    def as_dict(self):
        """As decode --format json writes it; children under "lines"."""
        told = {name: getattr(self, name) for name in ("text", "offset", "length", "kind", "image")}
        if self.key:
            told["key"], told["value"] = self.key, self.value
        if self.children:
            told["lines"] = [line.as_dict() for line in self.children]
        return told

    def __repr__(self):
        return f"<qxview.Line {self.text!r} [{self.offset}, {self.length}]>"


class DecodedPacket:
    """What a view made of a packet. Lines and summary are fetched when they are first asked for, which has to be before
    the view decodes another packet or is closed; once fetched they stay."""

    def __init__(self, view, turn, number, nanoseconds, length, handled):
        self._view, self._turn, self._lines, self._line = view, turn, None, None
        self.number, self.nanoseconds, self.length, self.handled = number, nanoseconds, length, handled

    @property
    def time(self):
        """When the packet was captured, in UTC, to the microsecond."""
        return _time_of(self.nanoseconds)

    @property
    def lines(self):
        """The top-level lines."""
        if self._lines is None:
            self._lines = self._view._fetch_lines(self._turn)   # pylint: disable=protected-access
        return self._lines

    def walk(self):
        """All lines in order, children behind their parent."""
        for line in self.lines:
            yield from line.walk()

    def _packet_line(self):
        if self._line is None:
            self._line = self._view._fetch_packet_line(self._turn)   # pylint: disable=protected-access
        return self._line

    source = property(lambda self: self._packet_line()[0], doc="The source as the packet list shows it.")
    destination = property(lambda self: self._packet_line()[1], doc="The destination as the packet list shows it.")
    summary = property(lambda self: self._packet_line()[2], doc="The packet list's line for it.")

    def as_dict(self):
        """A row for a table: number, time, source, destination, length, summary."""
        return {"number": self.number, "time": self.time, "source": self.source, "destination": self.destination,
                "length": self.length, "summary": self.summary}

    def __repr__(self):
        return f"<qxview.DecodedPacket {self.number}>"


class View(_Handle):
    """Decodes packets; what later packets of a capture need of earlier ones is kept, so a capture takes one view.

    settings: what a settings file holds, instead of the user's own ("" for the defaults). headers_only: no lines, but
    sources, destinations and summaries several times as fast. keys: lines have keys and values. on_message: called with
    (kind, text), kind "note" or "error", when the call that the message comes from is over."""
    _destroy = staticmethod(_LIBRARY.QxView_DestroyView)

    def __init__(self, settings=None, headers_only=False, keys=False, on_message=None):
        super().__init__()
        if settings is not None and not isinstance(settings, str):
            raise TypeError(f"settings are a str or None, not {type(settings).__name__}")
        if settings is not None and "\0" in settings:
            raise ValueError("settings hold no zero character")
        if on_message is not None and not callable(on_message):
            raise TypeError("on_message cannot be called")
        self._turn, self._messages, self._on_message = 0, [], on_message
        self._take_message = _MESSAGE(lambda _, kind, text: self._messages.append((kind, text)))
        options = _Options(ctypes.sizeof(_Options), None, None if settings is None else settings.encode("utf-8"),
                           ctypes.cast(self._take_message, ctypes.c_void_p), None)
        self._pointer = _LIBRARY.QxView_CreateViewWith(ctypes.byref(options))
        reason = _last_error()
        self._deliver()
        if self._pointer is None:
            raise Error(reason)
        if keys and _LIBRARY.QxView_KeepKeys(self._pointer, 1) != 1:
            raise Error(_last_error())
        if headers_only:
            _LIBRARY.QxView_SetOutput(self._pointer, ord("1"), 0)

    def _deliver(self):
        # Not from inside the library: a handler may do with the view whatever it likes.
        told, self._messages = self._messages, []
        if self._on_message is not None:
            for kind, text in told:
                self._on_message("error" if kind else "note", text.decode("utf-8", "replace"))

    def decode(self, packet, link_type=1, length=None, nanoseconds=0):
        """Decodes a Packet, or bytes as they were captured on a link of this type (1 is Ethernet) with this many bytes on
        the wire."""
        if isinstance(packet, Packet):
            decoded = self._decode_record(packet)
        else:
            data = bytes(memoryview(packet))
            decoded = self._decode_bytes(data, _whole("link_type", link_type, 0, 0xFFFF),
                                         _whole("length", len(data) if length is None else length, 0, 0xFFFFFFFF),
                                         _whole("nanoseconds", nanoseconds, -(1 << 63), (1 << 63) - 1))
        self._deliver()
        return decoded

    def _decode_record(self, packet):
        record = packet._record   # pylint: disable=protected-access
        if not isinstance(record, bytes) or len(record) < 32 or struct.unpack_from("<H", record, 14)[0] > len(record):
            raise ValueError("this is no packet of a capture")
        with self._lock:
            handled = _LIBRARY.QxView_DecodeFrame(self._use(), record, 0, 0, 0)
            return self._begin_turn(packet.number, packet.nanoseconds, packet.length, handled)

    def _decode_bytes(self, data, link_type, length, nanoseconds):
        if len(data) > 0x7FFFFFFF:
            raise ValueError("a packet is at most 2,147,483,647 bytes long")
        with self._lock:
            handled = _LIBRARY.QxView_DecodeLinkType(self._use(), link_type, data, len(data), length, nanoseconds)
            return self._begin_turn(self._turn + 1, nanoseconds, length, handled)

    def _begin_turn(self, number, nanoseconds, length, handled):
        if handled == 0 and _last_error():
            raise Error(_last_error())
        self._turn += 1
        return DecodedPacket(self, self._turn, number, nanoseconds, length, handled)

    def _check_turn(self, turn):
        if turn != self._turn:
            raise ValueError("the view has decoded another packet since; ask for lines and summary before that")
        return self._use()

    def _fetch_lines(self, turn):
        top, path, fault = [], [], []

        def visit(_, told):
            try:
                line = Line(told.contents)
                del path[line.depth:]
                (path[-1].children if path else top).append(line)
                path.append(line)
                return 0
            except BaseException as caught:   # nothing is raised through the library   pylint: disable=broad-except
                fault.append(caught)
                return 1

        with self._lock:
            count = _LIBRARY.QxView_VisitLines(self._check_turn(turn), _VISITOR(visit), None)
            if fault:
                raise fault[0]
            if count < 0:
                raise Error(_last_error())
        return top

    def _fetch_packet_line(self, turn):
        told = _PacketLine(size=ctypes.sizeof(_PacketLine))
        with self._lock:
            if _LIBRARY.QxView_PacketLine(self._check_turn(turn), ctypes.byref(told)) != 1:
                raise Error(_last_error())
            return tuple(text.decode("utf-8") for text in (told.source, told.destination, told.summary))


def records(path, settings=None):
    """A dict a packet, as DecodedPacket.as_dict makes it, headers alone: pandas.DataFrame(qxview.records(path))."""
    with View(settings, headers_only=True) as view, Capture(path) as capture:
        for packet in capture:
            yield view.decode(packet).as_dict()
