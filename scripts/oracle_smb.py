#!/usr/bin/env python3
"""Compares what qxview says of SMB and of its carriers, NetBIOS and IPX, with tshark, field by field at the same bytes.

usage: oracle_smb.py CAPTURE... [--qxview build/qxview] [--jobs 2] [--verbose]

CAPTURE is a file or a directory of capture files. Every field of tshark's that stands in the tables below (commands,
statuses, TIDs, UIDs, PIDs, MIDs, names of files and shares, offsets, lengths and counts, levels and subcommands; names,
operations and addresses of NetBIOS) must be said by a line of qxview's over the same bytes: numbers as such, in decimal
or hexadecimal, texts at their place. tshark looks at segments as they stand, as qxview does (reassembly is off).

What differs by order stands in the table with its reason. Exit status 1 when anything else differs; --verbose names
every field of it.
"""
import collections
import itertools
import re
import subprocess
import xml.etree.ElementTree

from oracle_support import (Tally, children, decoded_packets, define, exit_with, for_each_capture, print_others,
                            read_options, tshark_command, walk)

CARRIERS = ("nbss", "nbns", "nbdgm", "netbios", "smb", "ipx", "spx", "ipxrip", "ipxsap", "nbipx", "nmpi")
# The second version of SMB has fields of SMB's, too.
COMPARED = (*CARRIERS, "smb_pipe", "lanman", "mailslot", "browser")
WANTED = " || ".join(CARRIERS)
PREFERENCES = [f"{name}:FALSE" for name in (
    "tcp.desegment_tcp_streams", "ip.defragment", "ipv6.defragment", "smb.trans_reassembly", "smb.dcerpc_reassembly",
    "nbss.desegment_nbss_commands", "netbios.defragment", "tcp.analyze_sequence_numbers")]
DEFINITIONS = {"nbss": ("tcp", "NetBIOS Session Service"), "nbns": ("udp", "NetBIOS Name Service"),
               "nbdgm": ("udp", "NetBIOS Datagram Service")}

NUMBERS = set("""
smb.cmd smb.nt_status smb.error_class smb.error_code smb.pid.high smb.pid smb.tid smb.uid smb.mid smb.wct smb.bcc
smb.andxoffset smb.fid smb.rfid smb.sid smb.offset smb.offset_high smb.seek_mode smb.count smb.count_low smb.count_high
smb.maxcount smb.maxcount_low smb.maxcount_high smb.mincount smb.remaining smb.data_len smb.data_len_low
smb.data_len_high smb.data_size smb.data_offset smb.total_data_len smb.data_disp smb.tpc smb.tdc smb.mpc smb.mdc smb.msc
smb.pc smb.po smb.dc smb.pd smb.sc smb.trans2.cmd smb.nt.function smb.timeout smb.qpi_loi smb.spi_loi smb.ff2_loi
smb.qfsi_loi smb.sfsi_loi smb.fn_loi smb.ntr_loi smb.search_id smb.search_count smb.end_of_search smb.last_name_offset
smb.resume smb.next_entry_offset smb.file_index smb.file_name_len smb.short_file_name_len smb.ea.error_offset
smb.ea.list_length smb.ea.name_length smb.ea.data_length smb.access_mask smb.file_attribute smb.share_access
smb.create.disposition smb.create_options smb.create_flags smb.impersonation.level smb.security.flags smb.oplock.level
smb.create.action smb.alloc_size smb.alloc_size64 smb.end_of_file smb.file_size smb.link_count smb.delete_pending
smb.is_directory smb.index_number smb.position smb.mode smb.alignment smb.storage_type smb.file_type smb.granted_access
smb.open.function smb.open.action smb.open.flags smb.search.attribute smb.access.mode smb.lock.offset smb.lock.length
smb.lock.type smb.locking.num_locks smb.locking.num_unlocks smb.locking.oplock.level smb.write.mode smb.dialect.index
smb.max_buf smb.max_bufsize smb.max_raw smb.max_mpx_count smb.max_vcs smb.vc smb.session_key smb.server_cap smb.sm
smb.challenge_length smb.server_timezone smb.pwlen smb.ansi_pwlen smb.unicode_pwlen smb.security_blob_len
smb.connect.flags smb.connect.support smb.setup.action smb.units smb.bpu smb.blocksize smb.free_units
smb.fs_bytes_per_sector smb.fs_sector_per_unit smb.fs_units smb.caller_free_alloc_units smb.actual_free_alloc_units
smb.free_alloc_units smb.fs_attr smb.fs_max_name_len smb.fs_id smb.volume.serial smb.volume.label.len smb.fs_name.len
smb.device.type smb.ipc_state smb.echo.count smb.echo.seq_num smb.print.mode smb.print.setup.len smb.print.start_index
smb.monitor_handle smb.stream_size smb.stream_name_len smb.compressed.file_size smb.compressed.format
smb.nt.notify.completion_filter smb.nt.notify.action smb.nt.notify.watch_tree smb.nt_qsd smb.sec_desc_len
smb.max_referral_level smb.copy.flags smb.move.flags smb.change_count
smb.unix.file.size smb.unix.file.num_bytes smb.unix.file.uid smb.unix.file.gid smb.unix.file.file_type
smb.unix.file.dev_major smb.unix.file.dev_minor smb.unix.file.unique_id smb.unix.file.perms smb.unix.file.num_links
smb.unix.major_version smb.unix.minor_version smb.unix.capability smb.root_dir_handle smb.target_name_len smb.replace
mailslot.opcode mailslot.priority mailslot.class mailslot.size smb_pipe.function smb_pipe.priority
browser.command browser.update_count browser.period browser.server_type browser.election.version
browser.election.criteria browser.uptime browser.sig
lanman.function_code lanman.status lanman.convert lanman.entry_count lanman.available_count lanman.level
lanman.recv_buf_len
nbss.type nbss.length nbss.error_code nbss.retarget_port
nbns.id nbns.flags nbns.count.queries nbns.count.answers nbns.count.auth_rr nbns.count.add_rr nbns.type nbns.class
nbns.ttl nbns.data_length nbns.nb_flags nbns.name_flags nbns.number_of_names nbns.jumpers nbns.test_result
nbns.version_number nbns.period_of_statistics nbns.num_crcs nbns.num_alignment_errors nbns.num_collisions
nbns.num_send_aborts nbns.num_good_sends nbns.num_good_receives nbns.numretransmits nbns.num_no_resource_conditions
nbns.numcommand_blocks nbns.numpending_sessions nbns.max_num_pending_sessions nbns.max_total_sessions_possible
nbns.session_data_packet_size
nbdgm.type nbdgm.flags nbdgm.dgram_id nbdgm.src.port nbdgm.dgram_len nbdgm.pkt_offset nbdgm.error_code
netbios.hdr_len netbios.delimiter netbios.command netbios.xmit_corrl netbios.resp_corrl netbios.remote_session
netbios.local_session netbios.data2 netbios.max_data_recv_size netbios.num_data_bytes_accepted
smb.key smb.sessid smb.sequence_num smb.group_id
ipx.checksum ipx.len ipx.hops ipx.packet_type ipx.dst.socket ipx.src.socket
spx.ctl spx.type spx.src spx.dst spx.seq spx.ack spx.alloc spx.neg_size
ipxrip.packet_type ipxrip.hops ipxrip.ticks
ipxsap.packet_type ipxsap.server.type ipxsap.server.socket ipxsap.server.intermediate_networks
nmpi.packettype nmpi.name_flags nmpi.conn_control nmpi.opcode nmpi.name_type nmpi.messageid nmpi.session.src_conn_id
nmpi.session.dest_conn_id nmpi.session.send_seq_number nmpi.session.total_data_length nmpi.session.offset
nmpi.session.data_length nmpi.session.recv_seq_number nmpi.session.bytes_received
""".split())
TEXTS = set("""
smb.file smb.path smb.old_file smb.dir_name smb.search_pattern smb.trans_name smb.short_file smb.native_os
smb.native_lanman smb.primary_domain smb.account smb.service smb.native_fs smb.dialect.name smb.volume.label smb.fs_name
smb.stream_name smb.ea.name smb.target_name smb.unix.file.link_dest smb.print.identifier smb.server
mailslot.name browser.server browser.mb_server browser.comment browser.response_computer_name
lanman.share.name lanman.share.comment lanman.server.name lanman.server.comment lanman.user_name lanman.full_name
nbns.name nbns.netbios_name nbns.addr nbns.unit_id nbdgm.source_name nbdgm.destination_name nbdgm.src.ip
nbss.called_name nbss.calling_name nbss.retarget_ip_address netbios.nb_name
ipx.dst.node ipx.src.node ipxsap.server.name ipxsap.server.node
""".split())

# Networks of IPX, which qxview shows as their bytes.
NETWORKS = set("ipx.dst.net ipx.src.net ipxrip.route_vector ipxsap.server.network nmpi.ipx_network".split())

# Fields of which qxview shows the first bytes on a line of their own.
HALVES = {"smb.unix.capability": 4, "smb.replace": 1}
REPEATING = ("smb.fid", "smb.sid", "smb.tid", "smb.search_id")

Peer = collections.namedtuple("Peer", "name offset length value raw masked")
NUMBER = re.compile(r"0x[0-9A-Fa-f]+|-?\d+")


# --- tshark ---

def whole_number(text):
    try:
        return int(text, 0)
    except ValueError:
        return {"true": 1, "false": 0}.get(text.lower())


def fields_of(element):
    """The fields under an element; not what tshark repeats under a FID of the request that opened it."""
    for child in element:
        yield child
        if child.get("name") not in REPEATING:
            yield from fields_of(child)


def peer_fields(packet):
    """The fields of the tables, with the bytes that they are in the frame; generated ones have none."""
    protocols = [proto for proto in packet.findall("proto") if proto.get("name") in COMPARED]
    for element in itertools.chain(*map(fields_of, protocols)):
        name, size = element.get("name"), int(element.get("size", 0))
        if (name in NUMBERS or name in TEXTS or name in NETWORKS) and size > 0 and element.get("value") is not None:
            masked = element.get("unmaskedvalue")   # tshark shows a part of the field, qxview all of it
            yield Peer(name, int(element.get("pos")), size, element.get("show", ""),
                       bytes.fromhex(masked or element.get("value")), masked is not None)


def peer_packets(path):
    """number: (fields, protocols, ports)."""
    command = tshark_command(path, "-T", "pdml", preferences=PREFERENCES, wanted=WANTED)
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as running:
        try:
            for _, packet in xml.etree.ElementTree.iterparse(running.stdout):
                if packet.tag != "packet":
                    continue
                number = int(packet.find("proto[@name='geninfo']/field[@name='num']").get("show"))
                protocols = [proto.get("name") for proto in packet.findall("proto")]
                ports = {field.get("show") for field in packet.iter("field")
                         if field.get("name") in ("tcp.port", "udp.port")}
                yield number, (list(peer_fields(packet)), protocols, ports)
                packet.clear()
        except xml.etree.ElementTree.ParseError:
            return


# --- the comparison ---

def says_number(text, peer):
    wrap = 1 << 8 * peer.length
    value = int.from_bytes(peer.raw, "little") if peer.masked else whole_number(peer.value)
    if value is None:
        value = int.from_bytes(peer.raw, "little")
    stripped = re.sub(r"(?<![0-9A-Za-z])0+(?=[1-9])", "", text)
    found = {int(number, 0) % wrap for number in NUMBER.findall(stripped)}
    bits = re.match(r"[01. ]+: .*= (True|False)$", text)
    return value % wrap in found or bool(bits and (bits[1] == "True") == bool(value))


def plain(text):
    """Names as both write them: no zeros that fill up, no difference of case in escapes."""
    text = re.sub(r" \(.*\)$", "", text) if re.search(r"<..>", text) else text
    return re.sub(r"(<00>)+(?=<..>|$)", "", text).strip().strip("\x00").lower()


def says_text(text, peer):
    rest = text.partition(": ")[2] or text
    wanted = plain(peer.value)
    return wanted in plain(rest) or wanted.replace(":", "") in plain(rest).replace(":", "") or \
        (wanted == "" and "<null string>" in rest)


def compare_field(peer, at):
    """None when a line says it, else what the lines at its place say."""
    if peer.name == "nbss.length":   # tshark counts the octet of the flags in
        peer = peer._replace(offset=peer.offset + 1, length=2)
    if peer.name in NETWORKS:
        peer = peer._replace(value=peer.raw.hex())
    if peer.name in NUMBERS:
        if peer.name in HALVES:
            size = HALVES[peer.name]
            peer = peer._replace(length=size, value=str(int.from_bytes(peer.raw[:size], "little")))
        lines = [line["text"] for line in at[peer.offset] if line["length"] == peer.length]
        return None if any(says_number(text, peer) for text in lines) else lines
    lines = [line["text"] for offset in range(peer.offset - 1, peer.offset + 2) for line in at[offset]
             if line["offset"] + line["length"] <= peer.offset + peer.length + 2]
    return None if any(says_text(text, peer) for text in lines) else lines


ORDERED = [
    # (fields, what the peer's field and the lines of its message must be, reason)
    ("smb.*|nb.*", lambda peer, titles: any("Bad TCP Checksum" in title for title in titles),
     "the segment's checksum is wrong, so that its payload is not looked at"),
    ("smb.*|nb.*", lambda peer, titles: any("Continuation Data" in title for title in titles),
     "the segment goes on with a message of an earlier one, which qxview does not keep"),
    ("smb.*", lambda peer, titles: any(re.search(r"- Undefined ", title) for title in titles),
     "a command without a decoder of its own (NT Rename, the close of a core search): words and bytes alone"),
    ("smb.data_len_high", lambda peer, titles: peer.length == 4,
     "tshark reads the high half of Read AndX's data length with four bytes, it has two"),
    ("smb.(access_mask|bcc)", lambda peer, titles: any("Response - NT Create AndX" in title for title in titles),
     "an extended NT Create response has more words than its count says; qxview goes by the count"),
    ("smb.bcc", lambda peer, titles: any("NT Transaction (Secondary" in title for title in titles),
     "tshark looks for the byte count of a secondary NT Transaction a byte too late"),
    ("smb.file", lambda peer, titles: len(peer.raw) == 11 and any(
        re.search(r"Search Directory|Find (First|Unique)", title) for title in titles),
     "tshark shows what Samba keeps in the server's part of a resume key, which is the server's own affair"),
    ("smb.service", lambda peer, titles: peer.raw[:1] == b"\x04" or b"\x04" in peer.raw,
     "tshark takes the format octet of a core tree connect into the service"),
    ("smb.(data_size|alloc_size|file_attribute)", lambda peer, titles: any("Client Request - Trans2" in title
                                                                          for title in titles),
     "sizes and attributes of an Info Standard that is set are reserved"),
    ("smb.unix.file.link_dest", lambda peer, titles: peer.length == 2, "tshark reads a Unicode link target as ASCII"),
    ("nb.*name", lambda peer, titles: peer.value.startswith("Illegal"),
     "a name that is not in first-level encoding is shown by its label"),
]


def order_of(peer, titles):
    """Why tshark and qxview differ by order; None when they should not."""
    for fields, fits, reason in ORDERED:
        if re.fullmatch(fields, peer.name) and fits(peer, titles):
            return reason
    return None


def compare_packet(tally, where, ours, theirs):
    fields, _, _ = theirs
    at = collections.defaultdict(list)
    for line in walk(ours):
        at[line["offset"]].append(line)
    titles = [line["text"] for line in ours]
    for peer in fields:
        lines = compare_field(peer, at)
        if lines is None:
            tally.agree(peer.name)
            continue
        reason = order_of(peer, titles)
        if reason:
            tally.order(reason)
        else:
            tally.other(peer.name, f"{where}: {peer.name} = {peer.value!r} [{peer.offset}, {peer.length}]: {lines}")


def compare(qxview, path):
    tally = Tally()
    peers = dict(peer_packets(path))
    if not peers:
        return tally
    definitions = {f"{DEFINITIONS[protocol][0]}:{port}={DEFINITIONS[protocol][1]}"
                   for _, protocols, ports in peers.values() for protocol in protocols if protocol in DEFINITIONS
                   for port in ports if port in ("137", "138", "139")}
    for packet in decoded_packets(qxview, path, *define(sorted(definitions))):
        if packet["packet"] in peers:
            compare_packet(tally, f"{path} {packet['packet']}", packet.get("lines", []), peers[packet["packet"]])
    return tally


def main():
    options = read_options(__doc__, verbose="name every field that differs otherwise")
    whole = Tally()
    for _, tally in for_each_capture(options, compare):
        whole.add(tally)
    whole.print("fields of SMB, NetBIOS and IPX")
    if not options.verbose:
        return 1 if whole.others else 0
    return print_others(whole.others)


if __name__ == "__main__":
    exit_with(main)
