// sFlow: which frames does a switch sample, and what do its counters say? Versions 2 and 4 (RFC 3176; version 3 was
// never sent), version 5 (sflow.org: sFlow Version 5, and its extensions for 802.11, hosts, ports of links and tunnels).
//
//   version 2, 4: version address-type agent sequence uptime samples | type sample | ...
//   version 5:    version address-type agent sub-agent sequence uptime samples | format length sample | ...
//
// Samples and the records in them are framed by their length in version 5 alone. Every number has four bytes, and what
// is shorter is filled up to four. Sampled headers are shown by their own protocol behind the lines of the datagram.
#include <iterator>

#include "core/rows.h"
#include "decoders/app/sflow_records.h"
#include "decoders/link/carried.h"

namespace qxview {
namespace {

using namespace sflow;

constexpr uint32_t kAddress4 = 1, kAddress6 = 2;
constexpr uint32_t kMostSamples = 0x10000;

constexpr auto kSampleNames = SortedNames({
    {1, "Flow Sample"}, {2, "Counter Sample"}, {3, "Expanded Flow Sample"}, {4, "Expanded Counter Sample"},
    {5, "Discarded Packet"}});
constexpr auto kSourceNames = SortedNames({
    {0, "ifIndex"}, {1, "smonVlanDataSource"}, {2, "entPhysicalEntry"}});
constexpr auto kInterfaceFormatNames = SortedNames({
    {0, "Single Interface"}, {1, "Packet Discarded"}, {2, "Multiple Destination Interfaces"}});
constexpr auto kHeaderProtocolNames = SortedNames({
    {1, "Ethernet"}, {2, "Token Bus"}, {3, "Token Ring"}, {4, "FDDI"}, {5, "Frame Relay"}, {6, "X.25"}, {7, "PPP"},
    {8, "SMDS"}, {9, "AAL5"}, {10, "AAL5-IP"}, {11, "IPv4"}, {12, "IPv6"}, {13, "MPLS"}, {14, "POS"},
    {15, "IEEE 802.11 MAC"}, {16, "IEEE 802.11 A-MPDU"}, {17, "IEEE 802.11 A-MSDU Subframe"}, {18, "InfiniBand"}});
constexpr auto kDiscardNames = SortedNames({
    {0, "net_unreachable"}, {1, "host_unreachable"}, {2, "protocol_unreachable"}, {3, "port_unreachable"},
    {4, "frag_needed"}, {5, "src_route_failed"}, {6, "dst_net_unknown"}, {7, "dst_host_unknown"},
    {8, "src_host_isolated"}, {9, "dst_net_prohibited"}, {10, "dst_host_prohibited"}, {11, "dst_net_tos_unreachable"},
    {12, "dst_host_tos_unreachable"}, {13, "comm_admin_prohibited"}, {14, "host_precedence_violation"},
    {15, "precedence_cutoff"}, {256, "unknown"}, {257, "ttl_exceeded"}, {258, "acl"}, {259, "no_buffer_space"},
    {260, "red"}, {261, "traffic_shaping"}, {262, "pkt_too_big"}, {263, "src_mac_is_multicast"},
    {264, "vlan_tag_mismatch"}, {265, "ingress_vlan_filter"}, {266, "ingress_spanning_tree_filter"},
    {267, "port_list_is_empty"}, {268, "port_loopback_filter"}, {269, "blackhole_route"}, {270, "non_ip"},
    {271, "uc_dip_over_mc_dmac"}, {272, "dip_is_loopback_address"}, {273, "sip_is_mc"},
    {274, "sip_is_loopback_address"}, {275, "ip_header_corrupted"}, {276, "ipv4_sip_is_limited_bc"},
    {277, "ipv6_mc_dip_reserved_scope"}, {278, "ipv6_mc_dip_interface_local_scope"}, {279, "unresolved_neigh"},
    {280, "mc_reverse_path_forwarding"}, {281, "non_routable_packet"}, {282, "decap_error"},
    {283, "overlay_smac_is_mc"}, {284, "unknown_l2"}, {285, "unknown_l3"}, {286, "unknown_l3_exception"},
    {287, "unknown_buffer"}, {288, "unknown_tunnel"}, {289, "unknown_l4"}, {290, "sip_is_unspecified"},
    {291, "mlag_port_isolation"}, {292, "blackhole_arp_neigh"}, {293, "src_mac_is_dmac"}, {294, "dmac_is_reserved"},
    {295, "sip_is_class_e"}, {296, "mc_dmac_mismatch"}, {297, "sip_is_dip"}, {298, "dip_is_local_network"},
    {299, "dip_is_link_local"}, {300, "overlay_smac_is_dmac"}, {301, "egress_vlan_filter"},
    {302, "uc_reverse_path_forwarding"},
    {303, "split_horizon"}});

// Sampled headers of a datagram, kept until its own lines are done.
struct Sampled {
  Cursor bytes;
  uint32_t sample, protocol, frameLength;
};
struct Datagram {
  uint32_t version, sample;
  int32_t headers;
  Sampled header[kMostSampledHeaders];
};

struct Sample {
  Field type, address, sequence, count, records, protocol, length, size;
};

constexpr auto kVersion = Rows<Sample>({Number(4, "Version"), Number(4, "Agent Address Type", kAddressTypeNames)});
constexpr auto kAgent4 = Rows<Sample>({IPv4("Agent Address")});
constexpr auto kAgent6 = Rows<Sample>({IPv6("Agent Address")});
constexpr auto kSubAgent = Rows<Sample>({Number(4, "Sub-Agent ID")});
constexpr auto kClock = Rows<Sample>({
    Number(4, "Sequence Number"), Number(4, "System Uptime", " milliseconds"),
    Number(4, "Samples").Note(", %u samples").Into(&Sample::count)});

constexpr auto kSequence = Rows<Sample>({Number(4, "Sequence Number").Note(", Sequence %u")});
constexpr auto kSource = Rows<Sample>({
    Word(4), Bits(0, 8, "Source ID Type", kSourceNames), Bits(8, 24, "Source ID Index")});
constexpr auto kSourceExpanded = Rows<Sample>({
    Number(4, "Source ID Type", kSourceNames), Number(4, "Source ID Index")});
constexpr auto kRate = Rows<Sample>({
    Number(4, "Sampling Rate").Note(", 1 of %u"), Number(4, "Sample Pool", " packets"), Number(4, "Drops")});
constexpr auto kInterfaces = Rows<Sample>({
    Word(4), Bits(0, 2, "Input Interface Format", kInterfaceFormatNames), Bits(2, 30, "Input Interface Value"),
    Word(4), Bits(0, 2, "Output Interface Format", kInterfaceFormatNames), Bits(2, 30, "Output Interface Value")});
constexpr auto kInput4 = Rows<Sample>({
    Number(4, "Input Interface"), Word(4), Bits(0, 1, "Multiple Outputs"), Bits(1, 31, "Output Interface Value")});
constexpr auto kInterfacesExpanded = Rows<Sample>({
    Number(4, "Input Interface Format", kInterfaceFormatNames), Number(4, "Input Interface Value"),
    Number(4, "Output Interface Format", kInterfaceFormatNames), Number(4, "Output Interface Value")});
constexpr auto kRecordCount = Rows<Sample>({Number(4, "Records").Into(&Sample::records)});
constexpr auto kDiscard = Rows<Sample>({
    Number(4, "Drops"), Number(4, "Input Interface"), Number(4, "Output Interface"),
    Number(4, "Reason", kDiscardNames).Note(", %s")});
constexpr auto kRawHeader5 = Rows<Sample>({
    Number(4, "Header Protocol", kHeaderProtocolNames).Into(&Sample::protocol),
    Number(4, "Frame Length").Into(&Sample::length), Number(4, "Stripped"),
    Number(4, "Header Length").Into(&Sample::size)});
constexpr auto kRawHeader2 = Rows<Sample>({
    Number(4, "Header Protocol", kHeaderProtocolNames).Into(&Sample::protocol),
    Number(4, "Frame Length").Into(&Sample::length), Number(4, "Header Length").Into(&Sample::size)});

// The frame's bytes go into a list that is shown afterwards; what does not fit into it is a block.
void TakeHeader(const Place& in, Cursor& c, Datagram& datagram) {
  Sample sample{};
  ShowRows<Sample>(in, c, datagram.version == 5 ? RowSpan<Sample>(kRawHeader5) : RowSpan<Sample>(kRawHeader2), sample);
  AppendToParent(in, sample.protocol, ", %s", LookupName(kHeaderProtocolNames, sample.protocol.value));
  AppendToParent(in, sample.length, ", %u bytes", sample.length.value);
  Cursor header = TakeCursor(c, sample.size.value);
  const int32_t fill = static_cast<int32_t>((0u - sample.size.value) & 3);
  const Field padding = fill && Left(c) >= fill ? TakeBytes(c, fill) : Field{};
  if (datagram.headers < kMostSampledHeaders && Left(header) > 0) {
    AddLine(in, Ahead(header, Left(header)), "Header: %u bytes, shown behind the datagram",
            static_cast<uint32_t>(Left(header)));
    datagram.header[datagram.headers++] = {header, datagram.sample, sample.protocol.value, sample.length.value};
  } else {
    AddBlock(in, Rest(header), "Header");
  }
  AddLine(in, padding, "Padding: %s", HexText(padding));
}

// Version 5: records with enterprise, format and length in front.
void ShowRecords5(const Place& at, Cursor& c, Datagram& datagram, uint32_t count, bool isCounters) {
  Loop loop;
  for (uint32_t i = 0; i < count && Left(c) >= 8 && MoreAt(at, c, loop); ++i) {
    const Cursor start = c;
    const Field format = TakeU32(c), length = TakeU32(c);
    const uint32_t enterprise = format.value >> 12, number = format.value & 0xFFF;
    Cursor body = TakeCursor(c, length.value);
    const Field whole = Ahead(start, c.offset - start.offset);
    const char* name = RecordName(format.value, isCounters);
    const Place in = Under(at, AddLine(at, whole, "%s: %s", isCounters ? "Counters" : "Flow Record", name));
    AddFormat(in, format, enterprise, number, name);
    AddLine(in, length, "Length: %u", length.value);
    if (!isCounters && format.value == kSampledHeader) {
      TakeHeader(in, body, datagram);
    } else if (isCounters) {
      ShowCounters(in, body, format.value);
    } else {
      ShowFlowRecord(in, body, format.value, 5);
    }
    body.ranShort = false;
    AddBlock(in, Rest(body), "Record Data");
  }
}

void ShowSample5(const Place& at, Cursor& c, Datagram& datagram) {
  const Cursor start = c;
  const Field format = TakeU32(c), length = TakeU32(c);
  Cursor body = TakeCursor(c, length.value);
  const char* name = format.value >> 12 ? kUnknown : LookupName(kSampleNames, format.value);
  const Place in = Under(at, AddLine(at, Ahead(start, c.offset - start.offset), "%s", name));
  AddFormat(in, format, format.value >> 12, format.value & 0xFFF, name);
  AddLine(in, length, "Length: %u", length.value);
  Sample sample{};
  const auto show = [&](RowSpan<Sample> rows) { ShowRows<Sample>(in, body, rows, sample); };
  switch (format.value) {
    case 1:
    case 3:
      show(kSequence);
      show(format.value == 1 ? RowSpan<Sample>(kSource) : RowSpan<Sample>(kSourceExpanded));
      show(kRate);
      show(format.value == 1 ? RowSpan<Sample>(kInterfaces) : RowSpan<Sample>(kInterfacesExpanded));
      break;
    case 2:
    case 4:
      show(kSequence);
      show(format.value == 2 ? RowSpan<Sample>(kSource) : RowSpan<Sample>(kSourceExpanded));
      break;
    case 5:
      show(kSequence);
      show(kSourceExpanded);
      show(kDiscard);
      break;
    default:
      AddBlock(in, Rest(body), "Sample Data");
      return;
  }
  show(kRecordCount);
  ShowRecords5(in, body, datagram, sample.records.value, format.value == 2 || format.value == 4);
  body.ranShort = false;
  AddBlock(in, Rest(body), "Sample Data");
}

// The counters of versions 2 and 4 (RFC 3176 section 5) by numbers of their own: which of version 5's they consist of.
struct OldCounters {
  const char* name;
  uint32_t generic, own;
};
constexpr OldCounters kOldCounters[] = {
    {kUnknown, 0, 0}, {"Generic Interface Counters", 1, 0}, {"Ethernet Interface Counters", 1, 2},
    {"Token Ring Counters", 1, 3}, {"FDDI Interface Counters", 1, 0}, {"100BASE-VG Interface Counters", 1, 4},
    {"WAN Interface Counters", 1, 0}, {"VLAN Counters", 0, 5}};

// Versions 2 and 4: one packet data, then extended data, all by type alone.
void ShowSample2(const Place& at, Cursor& c, Datagram& datagram) {
  const Cursor start = c;
  const Field type = TakeU32(c);
  const char* name = type.value == 1 || type.value == 2 ? LookupName(kSampleNames, type.value) : kUnknown;
  const Place in = Under(at, AddLine(at, type, "%s", name));
  AddLine(in, type, "Sample Type: %u = %s", type.value, name);
  Sample sample{};
  const auto show = [&](RowSpan<Sample> rows) { ShowRows<Sample>(in, c, rows, sample); };
  if (type.value == 2) {
    constexpr auto kInterval = Rows<Sample>({Number(4, "Sampling Interval")});
    show(kSequence);
    show(kSource);
    show(kInterval);
    const Field version = TakeU32(c);
    const OldCounters& counters = kOldCounters[version.value < std::size(kOldCounters) ? version.value : 0];
    AddLine(in, version, "Counters Type: %u = %s", version.value, counters.name);
    if (counters.generic) ShowCounters(in, c, counters.generic);
    if (counters.own) ShowCounters(in, c, counters.own);
  } else if (type.value == 1) {
    show(kSequence);
    show(kSource);
    show(kRate);
    show(kInput4);
    const Field packet = TakeU32(c);
    const char* names[] = {kUnknown, "Header", "IPv4", "IPv6"};
    AddLine(in, packet, "Packet Data Type: %u = %s", packet.value, names[packet.value < 4 ? packet.value : 0]);
    if (packet.value == 1) {
      TakeHeader(in, c, datagram);
    } else if (packet.value == 2 || packet.value == 3) {
      ShowFlowRecord(in, c, packet.value == 2 ? kSampledIPv4 : kSampledIPv6, datagram.version);
    }
    const Field count = TakeU32(c);
    AddLine(in, count, "Extended Data: %u", count.value);
    Loop loop;
    for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop); ++i) {
      const Cursor before = c;
      const Field kind = TakeU32(c);
      const uint32_t format = 1000 + kind.value;
      const char* extension = kind.value >= 1 && kind.value <= 5 ? RecordName(format, false) : kUnknown;
      const Place under = Under(in, AddLine(in, kind, "Extended Data: %s", extension));
      AddLine(under, kind, "Type: %u = %s", kind.value, extension);
      if (kind.value < 1 || kind.value > 5) break;   // its length is not told
      ShowFlowRecord(under, c, format, datagram.version);
      if (under.parent) SetRange(under, under.parent, before.offset, c.offset - before.offset);
    }
  } else {
    c.ranShort = false;
    AddBlock(in, Rest(c), "Sample Data");
  }
  if (in.parent) SetRange(in, in.parent, start.offset, c.offset - start.offset);
}

Carried LinkOf(uint32_t protocol) {
  switch (protocol) {
    case 1: return Carried::kEthernet;
    case 3: return Carried::kTokenRing;
    case 4: return Carried::kFddi;
    case 5: return Carried::kFrameRelay;
    case 7:
    case 14: return Carried::kPpp;
    case 11:
    case 12: return Carried::kIp;
    case 13: return Carried::kMpls;
    case 15: return Carried::kWireless;
    default: return Carried::kUnknown;
  }
}

// A sampled frame is another one's: cut anywhere, and nothing is learnt from it. Samples of sFlow datagrams can hold
// sFlow again: their headers are not followed.
void ShowSampledFrame(const Place& at, const Sampled& sampled) {
  PacketState& packet = PacketOf(at);
  const PacketState own = packet;
  const Field whole = Ahead(sampled.bytes, Left(sampled.bytes));
  AddLine(at, whole, "sFlow Sample %u: %s Frame of %u bytes, first %u", sampled.sample,
          LookupName(kHeaderProtocolNames, sampled.protocol), sampled.frameLength, static_cast<uint32_t>(whole.length));
  packet.quoted = true;
  DecodeCarriedFrame(Deeper(at), sampled.bytes, LinkOf(sampled.protocol), "Sampled Header");
  const int32_t linesLeft = packet.linesLeft;
  const bool limitReached = packet.limitReached;
  packet = own;
  packet.linesLeft = linesLeft;
  packet.limitReached = limitReached;
}

}  // namespace

int32_t DecodeSflow(const Place& at, Cursor c) {
  const uint32_t version = PeekU32(c), type = PeekU32(c, 4);
  const int32_t header = (version == 5 ? 20 : 16) + (type == kAddress6 ? 20 : 8);
  if ((version != 2 && version != 4 && version != 5) || (type != kAddress4 && type != kAddress6)) return 0;
  if (Left(c) < header) return 0;
  const LineHandle top = type == kAddress4
                             ? AddLine(at, Ahead(c, header), "sFlow: Version %u, Agent %s", version,
                                       IPv4Text(PeekBytes(c, 8, 4).bytes))
                             : AddLine(at, Ahead(c, header), "sFlow: Version %u, Agent %s", version,
                                       IPv6Text(PeekBytes(c, 8, 16).bytes));
  const Place in = Under(at, top);
  Sample sample{};
  ShowRows<Sample>(in, c, kVersion, sample);
  ShowRows<Sample>(in, c, type == kAddress4 ? RowSpan<Sample>(kAgent4) : RowSpan<Sample>(kAgent6), sample);
  if (version == 5) ShowRows<Sample>(in, c, kSubAgent, sample);
  ShowRows<Sample>(in, c, kClock, sample);
  Datagram datagram;
  datagram.version = version;
  datagram.headers = 0;
  Loop loop;
  const uint32_t samples = sample.count.value < kMostSamples ? sample.count.value : kMostSamples;
  for (datagram.sample = 1; datagram.sample <= samples && MoreAt(in, c, loop); ++datagram.sample) {
    if (version == 5) {
      ShowSample5(in, c, datagram);
    } else {
      ShowSample2(in, c, datagram);
    }
  }
  CoverBytes(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "sFlow Data");
  const bool isNested = PacketOf(at).quoted;
  for (int32_t i = 0; i < datagram.headers; ++i) {
    if (isNested) {
      AddRawRest(at, datagram.header[i].bytes, "Sampled Header");
    } else {
      ShowSampledFrame(at, datagram.header[i]);
    }
  }
  return 1;
}

}  // namespace qxview
