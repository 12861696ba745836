#!/usr/bin/env python3
"""Compares the LDAP that qxview decodes with tshark, packet by packet and field by field.

usage: oracle_ldap.py CAPTURE... [--qxview build/qxview] [--jobs 2] [--verbose]

CAPTURE is a file or a directory of capture files. Of every packet in which tshark sees LDAP the fields of the table FIELDS
are compared, all occurrences in their order: message IDs, operations, names, filters with their parts, attributes and
values, results, controls and what is in them. The lines' texts are compared whole: what tshark reports as octets is written
here as the lines write it. Exit status 1 when anything differs otherwise than by the order of REASONS.
"""
import collections
import os
import re

from oracle_support import (AGGREGATOR, Tally, children, decoded_packets, exit_with, for_each_capture, print_others,
                            read_options, tshark_fields, windows_1252)

MOST_TEXT = 239   # characters of a line's value
OPERATIONS = {name: number for number, name in enumerate([
    "Bind Request", "Bind Response", "Unbind Request", "Search Request", "Search Result Entry", "Search Result Done",
    "Modify Request", "Modify Response", "Add Request", "Add Response", "Delete Request", "Delete Response",
    "Modify DN Request", "Modify DN Response", "Compare Request", "Compare Response", "Abandon Request"])}
OPERATIONS |= {"Search Result Reference": 19, "Extended Request": 23, "Extended Response": 24,
               "Intermediate Response": 25}
FILTERS = {name: number for number, name in enumerate([
    "And", "Or", "Not", "Equality Match", "Substrings", "Greater Or Equal", "Less Or Equal", "Present",
    "Approximate Match", "Extensible Match"])}

# tshark's field and its form; the title of our line, and the title that the line above it may be held to.
FIELDS = [
    ("messageID", "number", "Message ID", None),
    ("version", "number", "Version", None),
    ("name", "text", "Name", None),
    ("simple", "text", "Simple Password", None),
    ("mechanism", "text", "Mechanism", "SASL Authentication"),
    ("credentials", "octets", "Credentials", None),
    ("serverSaslCreds", "octets", "Server SASL Credentials", None),
    ("baseObject", "text", "Base Object", None),
    ("scope", "number", "Scope", None),
    ("derefAliases", "number", "Dereference Aliases", None),
    ("sizeLimit", "number", "Size Limit", None),
    ("timeLimit", "number", "Time Limit", None),
    ("typesOnly", "flag", "Types Only", None),
    ("present", "text", "Present", "Filter"),
    ("attributeDesc", "text", "Attribute", "Assertion"),
    ("assertionValue", "text", "Assertion Value", None),
    ("type", "text", "Description", None),
    ("initial", "text", "Initial", None),
    ("any", "text", "Any", None),
    ("final", "text", "Final", None),
    ("matchingRule", "text", "Matching Rule", None),
    ("matchValue", "text", "Match Value", None),
    ("dnAttributes", "flag", "DN Attributes", None),
    ("AttributeDescription", "text", "Attribute", "Attributes"),
    ("objectName", "text", "Object Name", "Search Result Entry"),
    ("object", "text", "Object Name", "Modify Request"),
    ("AttributeValue", "value", "Value", None),
    ("operation", "number", "Operation", None),
    ("entry", "text", "Entry", None),
    ("delRequest", "text", "Delete Request", None),
    ("newrdn", "text", "New RDN", None),
    ("deleteoldrdn", "flag", "Delete Old RDN", None),
    ("newSuperior", "text", "New Superior", None),
    ("abandonRequest", "number", "Abandon Request", None),
    ("resultCode", "number", "Result Code", None),
    ("matchedDN", "text", "Matched DN", None),
    ("errorMessage", "text", "Diagnostic Message", None),
    ("LDAPURL", "text", "URI", None),
    ("controlType", "name", "Object Identifier", None),
    ("criticality", "flag", "Criticality", None),
    ("requestName", "name", "Request Name", None),
    ("responseName", "name", "Response Name", None),
    ("size", "number", "Size", None),
    ("cookie", "octets", "Cookie", None),
    ("attributeType", "text", "Attribute", "Sort Key"),
    ("orderingRule", "text", "Ordering Rule", None),
    ("reverseOrder", "flag", "Reverse Order", None),
    ("sortResult", "number", "Sort Result", None),
    ("userIdentity", "octets", "User Identity", None),
    ("oldPasswd", "octets", "Old Password", None),
    ("newPasswd", "octets", "New Password", None),
    ("cancelID", "number", "Cancel ID", None),
    ("mode", "number", "Mode", None),
    ("reloadHint", "flag", "Reload Hint", None),
    ("state", "number", "State", None),
    ("entryUUID", "uuid", "Entry UUID", "Control Value"),
    ("SyncUUID", "uuid", "Entry UUID", "Entries"),
    ("refreshDeletes", "flag", "Refresh Deletes", None),
    ("refreshDone", "flag", "Refresh Done", None),
    ("newcookie", "octets", "New Cookie", None),
    ("sasl_buffer_length", "number", "SASL Buffer Length", None),
]
# What tshark reports apart from others of its kind, so that their common order is lost.
APART = {"and_item": "filter", "or_item": "filter", "not": "filter", "oid": "AttributeValue", "sid": "AttributeValue",
         "guid": "AttributeValue"}
NAMES = ["protocolOp", "filter", *(name for name, *_ in FIELDS)]
TITLES = collections.defaultdict(list)
for field in FIELDS:
    TITLES[field[2]].append(field)
# Values of controls that tshark shows as octets: nothing under them is compared.
UNREAD = re.compile(r"= (Pre-Read|Post-Read|Assertion|Matched Values|Subentries|Virtual List View|Security Descriptor|"
                    r"Search Options|Extended DN|Proxied|Persistent|Entry Change|Session)")


# --- tshark's side ---

def line_text(octets):
    """Octets as our lines write them."""
    try:
        text = octets.decode("utf-8")
        if any(ord(c) < 32 and c not in "\t\r\n" or c == "\x7f" for c in text):
            raise ValueError
    except ValueError:
        return limit([f"{octet:02X}" + " " for octet in octets]).rstrip(" ")
    return limit([c if is_shown(c) else "".join(f"\\{octet:02X}" for octet in c.encode()) for c in text])


def is_shown(character):
    try:
        return ord(character) >= 32 and len(character.encode("cp1252")) == 1
    except UnicodeEncodeError:
        return False


def limit(pieces):
    text = "".join(pieces)
    return text if len(text.rstrip(" ")) <= MOST_TEXT else text[:MOST_TEXT - 40]


def peer_value(form, value):
    if form == "number":
        return str(int(value, 0))
    if form == "flag":
        return {"1": "True", "0": "False"}.get(value, value)
    if form in ("octets", "value"):
        return line_text(bytes.fromhex(value.replace(":", "")))
    if form == "uuid":
        digits = value.replace(":", "").replace("-", "")
        return "-".join((digits[:8], digits[8:12], digits[12:16], digits[16:20], digits[20:]))
    if form == "name":
        return value.split(" ")[0]
    return line_text(value.encode("latin-1"))


def read_peer(path):
    forms = {name: form for name, form, *_ in FIELDS} | {"protocolOp": "number", "filter": "number"}
    forms |= {name: "number" if of == "filter" else "name" for name, of in APART.items()}
    fields = ["frame.number", *("ldap." + name for name in [*NAMES, *APART]), "_ws.malformed"]
    for number, *values in tshark_fields(path, fields, wanted="ldap || cldap",
                                         preferences=["tcp.desegment_tcp_streams:FALSE"]):
        found = {}
        for name, text in zip([*NAMES, *APART], values):
            occurrences = [v for v in text.split(AGGREGATOR) if v and v != "<MISSING>"]
            found[name] = [peer_value(forms[name], v) for v in occurrences]
        for name, of in APART.items():
            found[of] += found[name]
        yield int(number), found, bool(values[-1])


# --- our side ---

def own_value(form, text):
    if form == "number":
        return text[1:].split("]")[0] if text.startswith("[") else text.removesuffix(" Bytes")
    return text.split(" ")[0] if form == "name" or form == "value" and re.match(r"[\d.]+ = ", text) else text


def collect(lines, above, operation, found):
    """Adds what the lines say to the lists of tshark's fields."""
    label = next((line["text"].split(" Type:")[0] for line in lines if line["text"].endswith(" Type:")), None)
    for line in lines:
        title, _, value = line["text"].partition(": ")
        value = windows_1252(value).decode("cp1252", "replace")
        inside = children(line)
        if title == "Control" and UNREAD.search(value):
            inside = [child for child in inside if not child["text"].startswith("Control Value")]
        if title == "Filter":
            kinds = [c["text"] for c in inside]
            kind = "Present" if kinds[0].startswith("Present") else kinds[0].split(" Type:")[0]
            found["filter"].append(str(FILTERS.get(kind, kind)))
        if title == "Attribute" and above == "Filter":
            found["attributeDesc" if label not in ("Substrings", "Extensible Match") else "type"].append(value)
        isGroup = any(child["text"].endswith(" Type:") for child in inside)   # of elements, not one of them
        for name, form, _, under in TITLES.get(title, ()):
            if under in (None, above, operation, label) and value != "<NULL>" and not isGroup:
                found[name].append(own_value(form, value))
        collect(inside, title, operation, found)


def read_ours(qxview, path):
    for packet in decoded_packets(qxview, path):
        found, titles = collections.defaultdict(list), []
        for line in packet.get("lines", []):
            text = line["text"]
            if text.startswith(("LDAP", "SSL/TLS")):
                titles.append(text)
            if not text.startswith("LDAP:"):
                continue
            operation = text[len("LDAP: "):].split(", ")[0]
            if operation in OPERATIONS:
                found["protocolOp"].append(str(OPERATIONS[operation]))
            collect(children(line), None, operation, found)
        yield packet["packet"], (found, titles)


# --- the comparison ---

def same(mine, theirs):
    """Whether two texts agree as far as both go: a line's text is cut, tshark's may be."""
    if mine.endswith("..."):
        return theirs.startswith(mine[:MOST_TEXT - 43].rstrip())
    return mine == theirs.rstrip(" ") or mine == theirs


def reason(titles, mine, theirs, malformed):
    """Why a packet may differ by order; None when it may not."""
    if any(re.search(r"\d of \d+ Bytes$", title) for title in titles) or "LDAP Continuation Data" in titles:
        return "a message over several segments: each shows what it has of it"
    if titles and all(title.startswith("SSL/TLS") for title in titles):
        return "TLS on the port of LDAP: tshark looks for messages in it"
    if not theirs["protocolOp"] and re.match(r"LDAP: SASL Buffer", titles[0] if titles else "") and len(titles) > 1:
        return "a signed message: tshark takes the layer's data for encrypted"
    if malformed:
        return "a value that tshark calls malformed"
    return None


def compare(qxview, path):
    tally = Tally()
    peers = list(read_peer(path))
    ours = dict(read_ours(qxview, path)) if peers else {}
    for number, theirs, malformed in peers:
        apart = {of for name, of in APART.items() if theirs[name]}
        mine, titles = ours.get(number, (collections.defaultdict(list), []))
        for name in apart:
            mine[name], theirs[name] = sorted(mine[name]), sorted(theirs[name])
        differing = [name for name in NAMES if len(mine[name]) != len(theirs[name]) or
                     not all(same(a, b) for a, b in zip(mine[name], theirs[name]))]
        for name in NAMES:
            if name not in differing and theirs[name]:
                tally.agree(name, len(theirs[name]))
        if not differing:
            continue
        name = differing[0]
        if why := reason(titles, mine, theirs, malformed):
            tally.order(why)
        else:
            tally.other(name, f"{os.path.basename(path)} packet {number}: {name} ours {mine[name]}, tshark {theirs[name]}")
    return tally


def main():
    options = read_options(__doc__, verbose="every capture's own table")
    whole = Tally()
    for path, tally in for_each_capture(options, compare):
        whole.add(tally)
        if options.verbose and tally.counts:
            tally.print(os.path.basename(path))
    whole.print("in all")
    return print_others(whole.others)


if __name__ == "__main__":
    exit_with(main)
