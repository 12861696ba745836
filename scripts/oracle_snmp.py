#!/usr/bin/env python3
"""Compares the SNMP that qxview decodes with tshark, and the names of objects with snmptranslate.

usage: oracle_snmp.py CAPTURE... [--mibs DIRECTORY[:...]] [--qxview build/qxview] [--jobs 2] [--verbose]

CAPTURE is a file or a directory of capture files. Of every packet that tshark shows SNMP in, each element that it names
is looked up where it stands: version, community, PDU type, request identifier, error status with its name, error index,
the counts of a bulk request, a trap's fields, the header and the security parameters of version 3, and of each binding
the object identifier and the value. Type, value, place and title of ours have to be the same, and there may be no more
of ours.

--mibs names the directories of MIB modules that snmptranslate reads; names of objects are then compared with its names,
as far as the modules there name them.

What differs by order stands in the table with its reason. Exit status 1 when anything else differs.
"""
import collections
import functools
import os
import re
import subprocess
import xml.etree.ElementTree

from oracle_support import (Tally, capture_paths, children, decoded_packets, exit_with, for_each_capture, option_parser,
                            print_others, tshark_command, walk, windows_1252)

# tshark's field: our type, the title that it stands under.
NUMBERS = {"version": "SNMP Version", "msgVersion": "SNMP Version", "request_id": "Request ID",
           "error_status": "Error Status", "error_index": "Error Index", "non_repeaters": "Non-Repeaters",
           "max_repetitions": "Max-Repetitions", "generic_trap": "Generic Trap", "specific_trap": "Specific Trap",
           "msgID": "Message ID", "msgMaxSize": "Message Max Size", "msgSecurityModel": "Security Model",
           "msgAuthoritativeEngineBoots": "Authoritative Engine Boots",
           "msgAuthoritativeEngineTime": "Authoritative Engine Time"}
STRINGS = {"community": "(SNMP Community )?Name", "msgFlags": "Flags",
           "msgAuthoritativeEngineID": "Authoritative Engine ID|ID", "msgUserName": "User Name|Name",
           "msgAuthenticationParameters": "Authentication Parameters|Parameters",
           "msgPrivacyParameters": "Privacy Parameters|Parameters", "contextEngineID": "Context Engine ID|ID",
           "contextName": "Context Name|Name"}
VALUES = {"value.int": "INTEGER", "value.octets": "OCTET STRING", "value.oid": "OBJECT IDENTIFIER",
          "value.null": "NULL", "value.ipv4": "NetworkAddress", "value.counter": "COUNTER(64)?", "value.g32": "GAUGE",
          "value.u32": "UNSIGNED32", "value.timeticks": "TimeTicks", "value.opaque": "OPAQUE",
          "noSuchObject": "NO SUCH OBJECT", "noSuchInstance": "NO SUCH INSTANCE", "endOfMibView": "END OF MIBVIEW",
          "unSpecified": "NULL"}
EXPECTED = {**{f: ("INTEGER", t) for f, t in NUMBERS.items()},
            **{f: ("OCTET STRING", t) for f, t in STRINGS.items()},
            **{f: (t, "Object Value") for f, t in VALUES.items()}, "name": ("OBJECT IDENTIFIER", "Object Name"),
            "enterprise": ("OBJECT IDENTIFIER", "Enterprise"), "agent_addr": ("NetworkAddress", "Agent Address"),
            "time_stamp": ("TimeTicks", "Time Ticks")}
LONGEST = 80    # octets of a string that is shown as text
MASK = 0xFFFFFFFF
DOTTED = re.compile(r"(?:(\S+), .*, [a-z-]+ \()?([0-9.]+)\)?$")

Peer = collections.namedtuple("Peer", "field at octets show showname")
Element = collections.namedtuple("Element", "title type text at size block")


# --- tshark ---

def read_peer(path):
    """{number: ([Peer], whether a part is malformed)} of the packets with SNMP."""
    command = tshark_command(path, "-T", "pdml", "-J", "snmp", wanted="snmp",
                             preferences=["ip.defragment:FALSE", "ipv6.defragment:FALSE"])
    packets = {}
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as running:
        try:
            for _, element in xml.etree.ElementTree.iterparse(running.stdout):
                if element.tag == "packet":
                    number = int(element.find("proto[@name='geninfo']/field[@name='num']").get("show"))
                    protos = element.findall("proto[@name='snmp']")
                    damaged = any(part.get("name", "").startswith("_ws.malformed") or
                                  "BER Error" in part.get("showname", "") for part in element.iter())
                    packets[number] = ([peer for proto in protos for peer in fields_of(proto)], damaged)
                    element.clear()
        except xml.etree.ElementTree.ParseError:
            pass   # a capture without SNMP
    return packets


def fields_of(proto):
    for field in proto.iter("field"):
        name = field.get("name", "").removeprefix("snmp.")
        if field.get("name", "").startswith("snmp.") and (name in EXPECTED or name in ("data", "encryptedPDU")):
            octets = bytes.fromhex(field.get("value", "")) if int(field.get("size")) else b""
            yield Peer(name, int(field.get("pos")), octets, field.get("show"), field.get("showname", ""))


# --- qxview ---

def elements_of(lines, title=""):
    """The elements under the lines: each is a type, a length and a value line in a row."""
    for line in lines:
        below = children(line)
        kind = next((re.search(r"= (.*)$", c["text"]) for c in below if re.match(r"ASN Type ? ?:", c["text"])), None)
        value = next((c for c in below if c["text"].startswith(("ASN Value", "Undefined Data"))), None)
        if kind and value:
            yield Element(line["text"].split(":")[0].rstrip(), kind[1], re.sub(r"^ASN Value ?: ", "", value["text"]),
                          value["offset"], value["length"], bool(children(value)))
        yield from elements_of([c for c in below if c is not value], line["text"])


def own_messages(packet):
    return [line for line in packet.get("lines", []) if line["text"].startswith("SNMPv")]


# --- comparison ---

def text_of_octets(octets):
    """What a string's value line shows of it: up to the first zero octet."""
    return octets.split(b"\0")[0] or b"<NULL>"


def short_text(octets):
    if all(32 <= c <= 126 or c in b"\r\n" for c in octets):
        return re.split(rb"[\r\n]", octets[:60])[0] + b"..."
    return " ".join(f"{c:02X}" for c in octets[:20]).encode() + b"..."


def duration(ticks):
    return (f"[{ticks}] = {ticks // 8640000} days, {ticks // 360000 % 24} hours, {ticks // 6000 % 60} minutes, "
            f"{ticks // 100 % 60}.{ticks % 100:02} seconds")


def compare_value(peer, own):
    """None when the values are the same; else "" or the reason why they may differ."""
    kind = own.type
    if kind in ("OCTET STRING", "OPAQUE"):
        wanted = short_text(peer.octets) if len(peer.octets) > LONGEST else text_of_octets(peer.octets)
        return None if windows_1252(own.text) == wanted and own.block == (len(peer.octets) > LONGEST) else ""
    if not peer.octets:
        return None if own.text == "<NULL>" else ""
    if kind == "OBJECT IDENTIFIER":
        found = DOTTED.match(own.text)
        if found and found[2] == peer.show:
            return None
        return "the first octet of an identifier is two arcs here, whatever it is" if peer.octets[0] > 119 else ""
    if kind == "NetworkAddress":
        return None if own.text == peer.show else ""
    number = int(peer.show)
    if kind == "TimeTicks":
        return None if own.text == duration(number) else "" if number < 1 << 31 else "time ticks are divided signed"
    if own.text == str(number):
        return None
    unsigned = int.from_bytes(peer.octets, "big") & MASK
    return "a negative number is shown without its sign" if number < 0 and own.text == str(unsigned) else ""


def same_words(ours, theirs):
    """Names of errors, whose spelling is each one's own."""
    def plain(text):
        letters = re.sub("[^a-z]", "", text.lower())
        return letters.replace("inconsistant", "inconsistent").replace("writeable", "writable")
    return plain(ours) == plain(theirs)


def compare_field(peer, own, lines, tally, where):
    kind, title = EXPECTED[peer.field]
    if own is None or own.size != len(peer.octets):
        tally.other(peer.field, f"{where}: {peer.field}: {own} here, {peer} in tshark")
        return
    reason = compare_value(peer, own)
    if not re.fullmatch(kind, own.type) or not re.match(rf"(?:{title})( |$)", own.title) or reason == "":
        tally.other(peer.field, f"{where}: {own} here, {peer} in tshark")
    elif reason:
        tally.order(reason)
    else:
        tally.agree("value: " + own.type if peer.field in VALUES else peer.field)
    if peer.field == "error_status":
        name = re.search(r": (\w+) \(", peer.showname)
        text = next(line["text"] for line in lines if line["text"].startswith("Error Status:"))
        if name and not same_words(text.split("= ")[-1], name[1]):
            tally.other("error names", f"{where}: {text}, tshark {name[1]}")
    if peer.field == "msgFlags":
        shown = [line["text"].endswith("True") for line in lines
                 if re.search(r": (Reportable|Privacy|Authorization) = ", line["text"]) and line["offset"] == peer.at]
        if shown != [bool(peer.octets[0] & bit) for bit in (4, 2, 1)]:
            tally.other("flags", f"{where}: flags {shown}, {peer.octets.hex()} in tshark")


def compare_packet(peers, damaged, packet, tally, where):
    messages = own_messages(packet)
    if not messages:
        titles = [line["text"] for line in packet.get("lines", [])]
        reason = ("a bad checksum below keeps the payload from being decoded" if any("Bad" in t for t in titles) else
                  "no message with a version of one octet at its start" if damaged else None)
        tally.order(reason, len(peers) or 1) if reason else tally.other("packets", f"{where}: not decoded: {titles}")
        return []
    lines = list(walk(messages))
    elements = {}
    for element in elements_of(messages):
        elements.setdefault((element.at, element.size > 0), element)
    left, texts = len(elements), [line["text"] for line in lines]
    for peer in peers:
        if peer.field == "data":
            own = next((int(text[11:15], 16) - 160 for text in texts if text.startswith("PDU Type: [")), None)
            if own == int(peer.show):
                tally.agree("PDU type")
            else:
                tally.other("PDU type", f"{where}: PDU {own}, {peer.show} in tshark")
        elif peer.field == "encryptedPDU":
            block = next((line for line in lines if line["text"] == "Encrypted SNMP Data"), None)
            if block and (block["offset"], block["length"]) == (peer.at, len(peer.octets)):
                tally.agree("encrypted PDU")
            else:
                tally.other("encrypted PDU", f"{where}: {block}, {peer} in tshark")
        else:
            own = elements.get((peer.at, bool(peer.octets)))
            left -= own is not None
            compare_field(peer, own, lines, tally, where)
    if left:
        reason = "elements in front of what tshark finds malformed" if damaged else None
        tally.order(reason, left) if reason else tally.other("elements", f"{where}: {left} more elements here", left)
    return [element.text for element in elements.values() if element.type == "OBJECT IDENTIFIER"]


def compare_names(texts, mibs, tally):
    """Compares the names of identifiers with those that snmptranslate has for them."""
    found = {match[2]: match[1] for match in map(DOTTED.match, texts) if match}
    numbers = sorted(found)
    for first in range(0, len(numbers), 200):
        batch = numbers[first:first + 200]
        done = subprocess.run(["snmptranslate", "-M", mibs, "-m", "ALL", "-Ofb", *(f".{n}" for n in batch)],
                              capture_output=True, text=True, env={**os.environ, "SNMPCONFPATH": "/nonexistent"})
        names = [line.removeprefix(".") for line in done.stdout.splitlines() if line]
        if len(names) != len(batch):
            tally.other("names", f"snmptranslate gives {len(names)} names for {len(batch)}: {done.stderr[:200]}")
            return
        for number, theirs in zip(batch, names):
            ours, theirs = (found[number] or number).split("."), theirs.removeprefix("iso.org.dod.internet.").split(".")
            if ours == theirs:
                tally.agree("names")
            elif len(ours) == len(theirs) and all(a == b or b.isdigit() for a, b in zip(ours, theirs)):
                tally.order("named here by an object that no module there defines")
            else:
                tally.other("names", f"{number}: {ours} here, {theirs} in the modules")


def compare(mibs, qxview, path):
    tally, texts = Tally(), []
    peers = read_peer(path)
    if peers:
        for packet in decoded_packets(qxview, path):
            if packet["packet"] in peers:
                fields, damaged = peers[packet["packet"]]
                where = f"{os.path.basename(path)} packet {packet['packet']}"
                texts += compare_packet(fields, damaged, packet, tally, where)
    if mibs:
        compare_names(set(texts), mibs, tally)
    return len(peers), tally


def main():
    parser = option_parser(__doc__, verbose="name the captures that hold SNMP")
    parser.add_argument("--mibs")
    options = parser.parse_args()
    options.paths = capture_paths(options.captures)
    whole, packets = Tally(), 0
    for path, (count, tally) in for_each_capture(options, functools.partial(compare, options.mibs)):
        if options.verbose and count:
            print(f"{count:6} {path}")
        packets += count
        whole.add(tally)
    print(f"{len(options.paths)} captures, {packets} packets with SNMP")
    whole.print("elements")
    return print_others(whole.others)


if __name__ == "__main__":
    exit_with(main)
