#include "decoders/app/layer_summaries.h"

#include "core/dispatch.h"
#include "core/internet_checksum.h"
#include "decoders/link/llc.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

struct LayerRow {
  uint32_t key;
  LayerSummary describe;
};

constexpr uint32_t kIpv4 = 0x0800, kIpv6 = 0x86DD;

constexpr LayerRow kEthertypes[] = {
    {0x2000, DescribeCdp}, {0x8808, DescribePause}, {0x8809, DescribeSlowProtocol}, {0x8863, DescribePppoe},
    {0x8864, DescribePppoe},
    {0x888E, DescribeEapol}, {0x88CC, DescribeLldp}, {0x010B, DescribeSpanningTree},   // per-VLAN spanning tree
};

constexpr LayerRow kLlcServices[] = {
    {static_cast<uint32_t>(LlcService::kSpanningTree), DescribeSpanningTree},
    {static_cast<uint32_t>(LlcService::kIsIs), DescribeIsIs},
};

constexpr LayerRow kIpProtocols[] = {
    {6, DescribeTcp}, {17, DescribeUdp}, {46, DescribeRsvp}, {47, DescribeGre},
    {50, DescribeEsp}, {88, DescribeEigrp}, {89, DescribeOspf}, {103, DescribePim},
    {132, DescribeSctp}, {135, DescribeMobility},
};

// Protocols behind a SNAP header of one maker, whose numbers lie below those of Ethertypes.
constexpr auto kSnapNames = SortedNames({
    {0x0102, "DRiP"}, {0x0104, "PAgP"}, {0x010B, "PVST+"}, {0x0111, "UDLD"}, {0x2003, "VTP"}, {0x2004, "DTP"},
});

// Ethertypes that no decoder stands for.
constexpr auto kEthertypeNames = SortedNames({
    {0x0004, "802.2 LLC"}, {0x22F0, "AVTP"}, {0x22F3, "TRILL"}, {0x4305, "batman-adv"}, {0x8035, "RARP"}, {0x8808, "MAC Control"}, {0x8819, "CobraNet"},
    {0x8870, "Jumbo"}, {0x887B, "HomePlug"}, {0x88A2, "ATA over Ethernet"}, {0x88A4, "EtherCAT"},
    {0x88B8, "GOOSE"}, {0x88BA, "Sampled Values"}, {0x88CA, "TIPC"}, {0x88CD, "SERCOS III"}, {0x88E1, "HomePlug AV"},
    {0x88E5, "MACsec"}, {0x88E7, "Provider Backbone Bridge"}, {0x88F7, "PTP"}, {0x88FB, "PRP"},
    {0x8906, "FCoE"}, {0x8914, "FIP"}, {0x892F, "HSR"}, {0x893F, "E-Tag"}, {0x8947, "GeoNetworking"}, {0x9100, "VLAN"}, {kSlarpKey, "SLARP"},
});

constexpr auto kSapNames = SortedNames({
    {0x02, "LLC Management"}, {0x06, "IP over LLC"}, {0x7E, "X.25 over LLC"}, {0x80, "XNS"}, {0x8E, "PROWAY"},
    {0xAA, "SNAP"}, {0xF8, "RPL"},
});

template <size_t kRows>
LayerSummary FindLayer(const LayerRow (&rows)[kRows], uint32_t key) {
  for (const LayerRow& row : rows) {
    if (row.key == key) return row.describe;
  }
  return nullptr;
}

void AddLength(SummaryText& text, const Cursor& c) { Add(text, ", %d bytes", Left(c)); }

// Whether an IPv4 header is all there and its checksum fails; the decode does not go on behind such a one.
bool HasBadChecksum(const Cursor& c) {
  if (Left(c) < 1) return false;
  const int32_t header = (PeekU8(c) & 15) * 4;
  if (header < 20 || header > Left(c) || PeekU16(c, 10) == 0) return false;
  return SumWords(0, c.at, header) != 0xFFFF;
}

// An IP header without a payload that was reached: cut, damaged or empty.
void DescribeIpAlone(SummaryText& text, const Cursor& c, bool isFour) {
  Add(text, isFour ? "IPv4" : "IPv6");
  if (isFour && Left(c) >= 10) Add(text, " %s", IpProtocolName(PeekU8(c, 9)));
  if (isFour && HasBadChecksum(c)) Add(text, ", Bad Header Checksum");
  if (!isFour && Left(c) >= 7) Add(text, " %s", NextHeaderName(PeekU8(c, 6)));
  AddLength(text, c);
}

void DescribeEthertype(SummaryText& text, const Cursor& c, const PacketState& packet) {
  const uint32_t key = packet.reached.key;
  if (key == kIpv4 || key == kIpv6) return DescribeIpAlone(text, c, key == kIpv4);
  if (const LayerSummary describe = FindLayer(kEthertypes, key)) return describe(text, c, packet);
  const char* name = LookupName(kSnapNames, key, nullptr);
  if (!name) name = LookupName(kEthertypeNames, key, nullptr);
  if (!name) name = EthertypeName(static_cast<uint16_t>(key));
  if (name) {
    Add(text, "%s", name);
  } else {
    Add(text, "Ethertype 0x%.04X", key);
  }
  AddLength(text, c);
}

void DescribeLlc(SummaryText& text, const Cursor& c, const PacketState& packet) {
  const uint32_t key = packet.reached.key;
  if (const LayerSummary describe = FindLayer(kLlcServices, key)) return describe(text, c, packet);
  const DecoderRow* row = key < 0x100 ? FindLlcService(static_cast<LlcService>(key)) : nullptr;
  if (row) {
    Add(text, "%s", row->name);
  } else {
    Add(text, "802.2 %s", LookupName(kSapNames, key >> 8 & 0xFE));
  }
  AddLength(text, c);
}

void DescribeIpProtocol(SummaryText& text, const Cursor& c, const PacketState& packet) {
  const uint32_t key = packet.reached.key;
  if (const LayerSummary describe = FindLayer(kIpProtocols, key)) return describe(text, c, packet);
  Add(text, "%s", IpProtocolName(key));
  AddLength(text, c);
}

void DescribeFragment(SummaryText& text, const Cursor& c, const PacketState& packet) {
  const uint32_t key = packet.reached.key;
  Add(text, "%s Fragment: %s, Offset: %u", packet.source.kind == kIPv6Kind ? "IPv6" : "IPv4",
      IpProtocolName(key & 0xFF), key >> 8);
  AddLength(text, c);
}

Cursor CursorOf(const ReachedLayer& layer) { return MakeCursor(layer.bytes, 0, layer.length); }

void DescribeMedium(SummaryText& text, const PacketState& packet) {
  const FrameRecord* record = packet.frame;
  if (record->mediaType == static_cast<uint8_t>(Medium::kWireless)) {
    return DescribeWireless(text, MakeCursor(FrameData(record), 0, record->capturedLength), packet);
  }
  char scratch[kMediumNameScratch];
  Add(text, "%s Frame, %d bytes", MediumName(record, scratch), static_cast<int32_t>(record->capturedLength));
}

}  // namespace

bool HasLayerLine(const PacketState& packet) {
  const uint32_t key = packet.reached.key;
  switch (packet.reached.table) {
    case DispatchTable::kEthertype: return key == kIpv4 || key == kIpv6 || FindLayer(kEthertypes, key);
    case DispatchTable::kLlc: return FindLayer(kLlcServices, key) != nullptr;
    case DispatchTable::kIpProtocol: return FindLayer(kIpProtocols, key) != nullptr;
    case DispatchTable::kApplication: return false;
    default: return true;
  }
}

void DescribeLayers(const PacketState& packet, char* out, int32_t size) {
  SummaryText text{out, size, 0};
  out[0] = 0;
  const Cursor c = CursorOf(packet.reached);
  switch (packet.reached.table) {
    case DispatchTable::kNone: return DescribeMedium(text, packet);
    case DispatchTable::kEthertype: return DescribeEthertype(text, c, packet);
    case DispatchTable::kLlc: return DescribeLlc(text, c, packet);
    case DispatchTable::kPpp: return DescribePppControl(text, c, packet);
    case DispatchTable::kIpProtocol: return DescribeIpProtocol(text, c, packet);
    case DispatchTable::kIpFragment: return DescribeFragment(text, c, packet);
    case DispatchTable::kApplication: break;
  }
  const Cursor carried = CursorOf(packet.carrier);
  const LayerSummary describe = FindLayer(kIpProtocols, packet.carrier.key);
  if (describe) return describe(text, carried, packet);
  const DecoderRow* row = FindIpProtocol(static_cast<uint8_t>(packet.carrier.key));
  Add(text, "%s, Port: %u -> %u", row ? row->protocol->name : IpProtocolName(packet.carrier.key), packet.sourcePort,
      packet.destinationPort);
  AddLength(text, carried);
}

}  // namespace qxview
