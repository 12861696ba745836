#!/usr/bin/env python3
"""Compares what qxview and tshark open of QUIC packets with the same key log, packet by packet.

    scripts/oracle_quic.py [--key-log FILE] [--decode-as udp.port==4433,quic] [--verbose] CAPTURE...

Without a key log the secrets are those that the captures hold themselves. What is compared: packet numbers, frames with their
numbers, messages of the handshake and frames of HTTP/3. A packet where qxview tells all that tshark does and more counts by
itself. The exit status is 1 when qxview opens less or something else.
"""
import oracle_support as oracle

# What is compared: tshark's field, qxview's key.
PAIRS = {
    "packet numbers": ("quic.packet_number", "quic.packet_number"),
    "key phases": ("quic.key_phase", "quic.key_phase"),
    "frames": ("quic.frame_type", "quic.frame_type"),
    "acknowledged": ("quic.ack.largest_acknowledged", "quic.largest_acknowledged"),
    "streams": ("quic.stream.stream_id", "quic.stream_id"),
    "connection IDs": ("quic.nci.connection_id", "quic.connection_id"),
    "reset tokens": ("quic.nci.stateless_reset_token", "quic.stateless_reset_token"),
    "handshake messages": ("tls.handshake.type", "tls.handshake_type"),
    "HTTP/3 frames": ("http3.frame_type", "http3.frame_type"),
    "HTTP/3 frame lengths": ("http3.frame_length", "http3.length"),
}
FIELDS = ["frame.number", *(field for field, _ in PAIRS.values())]
KEYS = {key: name for name, (_, key) in PAIRS.items()}


def plain(value):
    """A number in decimal, digits without what stands between them."""
    text = str(value).strip().lower()
    if text in ("true", "false"):
        return "01"[text == "true"]
    try:
        return str(int(text, 0))
    except ValueError:
        return text.replace(":", "")


def read_theirs(path, key_log, decode_as):
    preferences = ("tls.keylog_file:" + key_log,) if key_log else ()
    told = {}
    for values in oracle.tshark_fields(path, FIELDS, preferences=preferences, decode_as=decode_as):
        for name, value in zip(PAIRS, values[1:]):
            told[int(values[0]), name] = sorted(plain(v) for v in value.split(oracle.AGGREGATOR) if v)
    return told


def read_ours(qxview, path, key_log):
    options = ["--keys"] + (["--set", "TlsKeyLog=" + key_log] if key_log else [])
    told = {}
    for packet in oracle.decoded_packets(qxview, path, *options):
        for line in oracle.walk(packet["lines"]):
            name = KEYS.get(line.get("key"))
            if name and "value" in line:
                told.setdefault((packet["packet"], name), []).append(plain(line["value"]))
    return {place: sorted(values) for place, values in told.items()}


def main():
    parser = oracle.option_parser(__doc__, "print each packet that differs")
    parser.add_argument("--key-log")
    parser.add_argument("--decode-as", action="append", default=[], help="tshark's: udp.port==4433,quic")
    options = parser.parse_args()
    tally = oracle.Tally()
    for path in oracle.capture_paths(options.captures):
        theirs = read_theirs(path, options.key_log, options.decode_as)
        ours = read_ours(options.qxview, path, options.key_log)
        for place in sorted(set(theirs) | set(ours)):
            a, b = theirs.get(place, []), ours.get(place, [])
            if a == b:
                tally.agree(place[1], len(a))
            elif all(b.count(value) >= a.count(value) for value in a):
                tally.agree(place[1], len(a))
                tally.order("told by qxview alone: " + place[1], len(b) - len(a))
            else:
                tally.other(place[1], f"{path} packet {place[0]}: {place[1]}: tshark {a}, qxview {b}")
    tally.print()
    return oracle.print_others(tally.others if options.verbose else tally.others[:5])


if __name__ == "__main__":
    oracle.exit_with(main)
