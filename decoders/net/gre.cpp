// Generic routing encapsulation: any protocol inside IP. Version 0 (RFC 2784, with the key and sequence number of RFC 2890
// and the routing of RFC 1701), version 1 of PPTP (RFC 2637), and what rides on it: Ethernet of tenants (NVGRE, RFC 7637),
// ERSPAN, redirected web traffic (WCCP).
//
//   flags, version   protocol type   [checksum, offset]   [key]   [sequence]   [acknowledgement: version 1]   [routing]
//
// The key of version 1 is a payload length and a call; the key of Ethernet frames a virtual subnet and a flow.
#include "core/elements.h"
#include "core/internet_checksum.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/common/checksum_line.h"
#include "decoders/link/carried.h"
#include "decoders/link/medium.h"
#include "decoders/net/erspan.h"

namespace qxview {
namespace {

constexpr uint32_t kChecksum = 0x8000, kRouting = 0x4000, kKey = 0x2000, kSequence = 0x1000, kAcknowledgment = 0x0080;
constexpr uint32_t kOsi = 0x00FE, kNhrp = 0x2001, kEthernet = 0x6558, kFrameRelay = 0x6559, kPpp = 0x880B,
                   kRedirect = 0x883E, kErspan = 0x88BE, kErspan3 = 0x22EB, kUnstructured = 0x8881;
constexpr uint8_t kIpNhrp = 54;

constexpr auto kProtocolNames = SortedNames({
    {0x0000, "Keepalive"}, {0x00FE, "OSI"}, {0x2001, "NHRP"}, {0x22EB, "ERSPAN Type III"}, {0x6400, "EoIP"},
    {0x883E, "WCCP"}, {0x88BE, "ERSPAN"}, {0xB7EA, "GRE Control Channel"}});

const char* NameProtocol(uint32_t protocol) {
  const char* name = LookupName(kProtocolNames, protocol, nullptr);
  if (!name) name = EthertypeName(static_cast<uint16_t>(protocol));
  return name ? name : kUnknown;
}

struct Gre {
  Field flags, protocol, key, family, length;
};
constexpr auto kFlags0 = Rows<Gre>({
    Hex(2, "Flags and Version").Into(&Gre::flags), Flag(0, "Checksum Present"), Flag(1, "Routing Present"),
    Flag(2, "Key Present"), Flag(3, "Sequence Number Present"), Flag(4, "Strict Source Route"),
    Bits(5, 3, "Recursion Control"), Bits(8, 5, "Reserved"), Bits(13, 3, "Version"),
    Hex(2, "Protocol Type", NameProtocol).Into(&Gre::protocol)});
constexpr auto kFlags1 = Rows<Gre>({
    Hex(2, "Flags and Version").Into(&Gre::flags), Flag(0, "Checksum Present"), Flag(1, "Routing Present"),
    Flag(2, "Key Present"), Flag(3, "Sequence Number Present"), Flag(4, "Strict Source Route"),
    Bits(5, 3, "Recursion Control"), Flag(8, "Acknowledgment Present"), Bits(9, 4, "Reserved"), Bits(13, 3, "Version"),
    Hex(2, "Protocol Type", NameProtocol).Into(&Gre::protocol)});
constexpr auto kOffset = Rows<Gre>({Number(2, "Offset")});
constexpr auto kKeyRow = Rows<Gre>({Hex(4, "Key").Note(", Key 0x%.08X")});
constexpr auto kSubnet = Rows<Gre>({
    Hex(4, "Key").Note(", Key 0x%.08X"), Bits(0, 24, "Virtual Subnet ID"), Bits(24, 8, "Flow ID")});
constexpr auto kCall = Rows<Gre>({Number(2, "Payload Length"), Number(2, "Call ID").Note(", Call %u")});
constexpr auto kSequenceRow = Rows<Gre>({Number(4, "Sequence Number").Note(", Sequence %u")});
constexpr auto kAcknowledgmentRow = Rows<Gre>({Number(4, "Acknowledgment Number").Note(", Acknowledged %u")});
constexpr auto kRoute = Rows<Gre>({
    Number(2, "Address Family").Into(&Gre::family), Number(1, "Source Route Offset"),
    Number(1, "Source Route Length").Into(&Gre::length)});
constexpr auto kRouteAddress = Rows<Gre>({IPv4("Router")});

constexpr auto kRedirectHeader = Rows<Gre>({
    Hex(1, "Redirect Flags"), Bits(0, 5, "Reserved"), Flag(5, "Redirect Header Valid"),
    Flag(6, "Alternative Bucket Used"), Flag(7, "Dynamic Service"), Number(1, "Service ID"),
    Number(1, "Alternative Bucket"), Number(1, "Primary Bucket")});

// It covers the header and the payload.
void AddChecksum(const Place& in, Cursor& c, const Cursor& whole) {
  const NetworkState& network = PacketOf(in).network;
  const bool isCut = network.fragmented || network.totalLength > Left(whole);
  const uint32_t sum = isCut ? 0 : SumWords(0, whole.at, Left(whole));
  AddChecksumLine(in, TakeU16(c), "Checksum: ", isCut ? "partial packet - not able to check" : nullptr, sum,
                  BadChecksum::kAlone);
}

// Source route entries end with one of no family and no length.
void ShowRouting(const Place& at, Cursor& c, Gre& gre) {
  constexpr uint32_t kIPv4Family = 0x0800;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const int32_t size = 4 + static_cast<int32_t>(PeekU8(c, 3));
    const Place in = Under(at, AddLine(at, AheadCut(c, size), "Source Route Entry: %s", size > 4 ? "Routing" : "End"));
    ShowRows<Gre>(in, c, kRoute, gre);
    Cursor list = TakeCursor(c, gre.length.value);
    Loop inner;
    while (gre.family.value == kIPv4Family && Left(list) >= 4 && MoreAt(in, list, inner)) {
      ShowRows<Gre>(in, list, kRouteAddress, gre);
    }
    AddBlock(in, Rest(list), "Routing Information");
    if (gre.family.value == 0 && gre.length.value == 0) return;
  }
}

// Version 1 of the redirection has no header of its own: the datagram follows.
int32_t DecodeRedirected(const Place& in, const Place& network, Cursor c) {
  if (PeekU8(c) >> 4 != 4 && PeekU8(c) >> 4 != 6) {
    const Place under = Under(in, AddLine(in, AheadCut(c, 4), "WCCP Redirect Header"));
    ShowRows(under, c, kRedirectHeader);
  }
  CoverBytes(in, c);
  return DecodeCarriedFrame(network, c, Carried::kIp);
}

int32_t DecodePayload(const Place& in, const Cursor& c, uint32_t flags, uint32_t protocol) {
  const Place network = Deeper(in);
  if (Left(c) < 1) return 1;
  switch (protocol) {
    case kRedirect: return DecodeRedirected(in, network, c);
    case kOsi: DispatchNlpid(in, network, c); return 1;
    case kPpp:
    case kUnstructured: return DecodeCarriedFrame(network, c, Carried::kPpp, "PPP Data");
    case kEthernet: return DecodeCarriedFrame(network, c, Carried::kEthernet);
    case kFrameRelay: return DecodeCarriedFrame(network, c, Carried::kFrameRelay);
    case kErspan: {
      const DecoderFunction decode = flags & kSequence ? DecodeErspan : DecodeErspanPlain;
      return CallDecoder(network, c, decode, "ERSPAN Data");
    }
    case kErspan3: return CallDecoder(network, c, DecodeErspan, "ERSPAN Data");
    case kNhrp: {
      const DecoderRow* row = FindIpProtocol(kIpNhrp);   // as an Ethertype the number is another protocol's
      return CallDecoder(network, c, row ? row->decode : nullptr, "NHRP Data");
    }
    default: return DecodeCarriedPacket(network, c, static_cast<uint16_t>(protocol), "GRE Data");
  }
}

}  // namespace

int32_t DecodeGre(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 4;
  const Cursor whole = c;
  const uint32_t flags = PeekU16(c), version = flags & 7, protocol = PeekU16(c, 2);
  if (Left(c) < kHeader || version > 1) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeader), "GRE: Version %u, %s", version, NameProtocol(protocol)));
  Gre gre{};
  const auto show = [&](RowSpan<Gre> rows) { ShowRows<Gre>(in, c, rows, gre); };
  show(version ? RowSpan<Gre>(kFlags1) : RowSpan<Gre>(kFlags0));
  if (flags & (kChecksum | kRouting)) {
    AddChecksum(in, c, whole);
    show(kOffset);
  }
  if (flags & kKey) show(version ? RowSpan<Gre>(kCall) : protocol == kEthernet ? RowSpan<Gre>(kSubnet) : kKeyRow);
  if (flags & kSequence) show(kSequenceRow);
  if (version && (flags & kAcknowledgment)) show(kAcknowledgmentRow);
  if (flags & kRouting) ShowRouting(in, c, gre);
  CoverBytes(in, c);
  return DecodePayload(in, c, flags, protocol);
}

}  // namespace qxview
