#!/usr/bin/env python3
"""Makes the table of the information elements of flow records: decoders/app/flow_elements.inc.

  scripts/make_flow_elements.py libfixbuf.so.9

Numbers, names and types are those of the registry "IP Flow Information Export (IPFIX) Entities" of IANA. They are read from
the information model of the library that is named (Debian: libfixbuf9), which was made from the registry; what the registry
got later stands in LATER below, out of the RFCs that asked for it.
"""
import ctypes
import os
import sys

TABLE = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "decoders", "app", "flow_elements.inc")
KINDS = ["Octets", "Unsigned", "Unsigned", "Unsigned", "Unsigned", "Signed", "Signed", "Signed", "Signed", "Float", "Float",
         "Boolean", "Mac", "Text", "Seconds", "Milliseconds", "Microseconds", "Nanoseconds", "IPv4", "IPv6", "List",
         "TemplateList", "TemplateMultiList"]
UNITS = {5: "Seconds", 6: "Milliseconds", 7: "Microseconds", 8: "Nanoseconds"}   # of unsigned numbers: spans of time
LATER = {
    # RFC 9487
    492: ("srhFlagsIPv6", "Unsigned"), 493: ("srhTagIPv6", "Unsigned"), 494: ("srhSegmentIPv6", "IPv6"),
    495: ("srhActiveSegmentIPv6", "IPv6"), 496: ("srhSegmentIPv6BasicList", "List"),
    497: ("srhSegmentIPv6ListSection", "Octets"), 498: ("srhSegmentsIPv6Left", "Unsigned"),
    499: ("srhIPv6Section", "Octets"), 500: ("srhIPv6ActiveSegmentType", "Unsigned"),
    501: ("srhSegmentIPv6LocatorLength", "Unsigned"), 502: ("srhSegmentIPv6EndpointBehavior", "Unsigned"),
    503: ("transportChecksum", "Unsigned"), 504: ("icmpHeaderPacketSection", "Octets"),
    505: ("gtpuFlags", "Unsigned"), 506: ("gtpuMsgType", "Unsigned"), 507: ("gtpuTEid", "Unsigned"),
    508: ("gtpuSequenceNum", "Unsigned"), 509: ("gtpuQFI", "Unsigned"), 510: ("gtpuPduType", "Unsigned"),
    511: ("bgpSourceAsPathList", "List"), 512: ("bgpDestinationAsPathList", "List"),
    # RFC 9740
    513: ("ipv6ExtensionHeaderType", "Unsigned"), 514: ("ipv6ExtensionHeaderCount", "Unsigned"),
    515: ("ipv6ExtensionHeadersFull", "Octets"), 516: ("ipv6ExtensionHeaderTypeCountList", "TemplateList"),
    517: ("ipv6ExtensionHeadersLimit", "Boolean"), 518: ("ipv6ExtensionHeadersChainLength", "Unsigned"),
    519: ("ipv6ExtensionHeaderChainLengthList", "TemplateList"), 520: ("tcpOptionsFull", "Octets"),
    521: ("tcpSharedOptionExID16", "Unsigned"), 522: ("tcpSharedOptionExID32", "Unsigned"),
    523: ("tcpSharedOptionExID16List", "List"), 524: ("tcpSharedOptionExID32List", "List"),
    # Above what IPFIX has numbers for: version 9 alone, security appliances
    33000: ("NF_F_INGRESS_ACL_ID", "Octets"), 33001: ("NF_F_EGRESS_ACL_ID", "Octets"),
    33002: ("NF_F_FW_EXT_EVENT", "Unsigned"), 40000: ("NF_F_USERNAME", "Text"),
    40001: ("NF_F_XLATE_SRC_ADDR_IPV4", "IPv4"), 40002: ("NF_F_XLATE_DST_ADDR_IPV4", "IPv4"),
    40003: ("NF_F_XLATE_SRC_PORT", "Unsigned"), 40004: ("NF_F_XLATE_DST_PORT", "Unsigned"),
    40005: ("NF_F_FW_EVENT", "Unsigned"),
}
HEAD = """\
// The information elements of flow records: QX_ELEMENT(number, name, kind). Made by scripts/make_flow_elements.py; do not
// edit. Source: IANA's registry "IP Flow Information Export (IPFIX) Entities" (facts, no licence needed), as the
// information model of libfixbuf 2.4.1 (Debian libfixbuf9, LGPL-3; numbers, names and types alone were read) holds it,
// RFC 9487 and RFC 9740 for 492 and up, and for 33000 and up what exporters of version 9 document.
"""


class Element(ctypes.Structure):
    _fields_ = [("name", ctypes.c_char_p), ("index", ctypes.c_uint32), ("enterprise", ctypes.c_uint32),
                ("number", ctypes.c_uint16), ("length", ctypes.c_uint16), ("flags", ctypes.c_uint32),
                ("least", ctypes.c_uint64), ("most", ctypes.c_uint64), ("type", ctypes.c_uint8),
                ("description", ctypes.c_char_p)]


def elements_of(path):
    """{number: (name, kind)}"""
    for needed in ("libglib-2.0.so.0", "libgthread-2.0.so.0"):
        ctypes.CDLL(needed, mode=ctypes.RTLD_GLOBAL)
    library = ctypes.CDLL(path)
    library.fbInfoModelAlloc.restype = ctypes.c_void_p
    library.fbInfoModelIterNext.restype = ctypes.POINTER(Element)
    model, walk, found = ctypes.c_void_p(library.fbInfoModelAlloc()), ctypes.create_string_buffer(256), {}
    library.fbInfoModelIterInit(walk, model)
    while element := library.fbInfoModelIterNext(walk):
        one = element.contents
        if one.enterprise == 0 and one.number < 500 and b"cisco" not in one.name.lower():
            kind, unit = KINDS[one.type], UNITS.get(one.flags >> 16 & 0xFF)
            found[one.number] = (one.name.decode(), f"Span{unit}" if kind == "Unsigned" and unit else kind)
    return found


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    elements = elements_of(sys.argv[1]) | LATER
    with open(TABLE, "w", encoding="ascii") as out:
        out.write(HEAD)
        for number, (name, kind) in sorted(elements.items()):
            out.write(f'QX_ELEMENT({number}, "{name}", {kind})\n')


if __name__ == "__main__":
    main()
