// IPv6 extension headers (RFC 8200 section 4, RFC 6275, RFC 4303): options for every hop or the destination, the way
// that a packet takes, fragments and encrypted payloads.
//
//   options    0  next header (8)   length (8)   options: type (8), length (8), data; Pad1 is its type byte alone
//   routing    0  next header (8)   length (8)   type (8)   segments left (8)     4  data of the type
//   fragment   0  next header (8)   reserved (8)   offset (13), reserved (2), more fragments (1)   4  identification
//   ESP        0  security parameters index (32)   4  sequence number (32)   8  encrypted payload
#include "decoders/net/ipv6_extensions.h"

#include "decoders/common/tells_all.h"
#include "decoders/net/ip_fragments.h"
#include "decoders/net/ip_protocol_names.h"
#include "decoders/net/ipv6_checksum.h"
#include "decoders/net/rpl.h"

namespace qxview {
namespace {

constexpr uint32_t kPad1 = 0, kPadN = 1, kJumboPayload = 0xC2, kHomeAddress = 0xC9, kRplOld = 0x63, kRpl = 0x23;

constexpr auto kOptionNames = SortedNames({
    {0x00, "Pad1"}, {0x01, "PadN"}, {0x04, "Tunnel Encapsulation Limit"}, {0x05, "Router Alert"}, {0x07, "CALIPSO"},
    {0x08, "SMF Duplicate Packet Detection"}, {0x0F, "Performance and Diagnostic Metrics"},
    {0x11, "In Situ OAM"}, {0x12, "Alternate Marking"}, {0x1E, "Experiment"}, {0x23, "RPL"},
    {0x26, "Quick-Start"}, {0x30, "Minimum Path MTU"}, {0x31, "In Situ OAM"}, {0x32, "Alternate Marking"},
    {0x3E, "Experiment"}, {0x4D, "Deprecated"}, {0x5E, "Experiment"}, {0x63, "RPL"}, {0x6D, "MPL"},
    {0x7E, "Experiment"}, {0x8A, "Endpoint Identification"}, {0x8B, "ILNP Nonce"}, {0x8C, "Line Identification"},
    {0x9E, "Experiment"}, {0xBE, "Experiment"}, {0xC2, "Jumbo Payload"}, {0xC9, "Home Address"},
    {0xDE, "Experiment"}, {0xEE, "Depth-First Forwarding"}, {0xFE, "Experiment"}});

// What a node does with an option that it does not know: the two high bits of the type.
constexpr const char* kActions[] = {"skip option", "discard packet", "discard packet, send ICMP",
                                    "discard packet, send ICMP unless multicast"};

void DecodeOptionType(const Place& in, const Field& type) {
  const BitPicture action = BitsOf(type, 0, 2);
  AddBitLine(in, type, "%s : option type %u = %s", action.picture, action.value, kActions[action.value]);
  const BitPicture change = BitsOf(type, 2, 1);
  // "does not" stands without a verb, as readers know this line.
  AddBitLine(in, type, "%s : option data %s en-route", change.picture, change.value ? "may change" : "does not");
  AddBitLine(in, type, "%s : reserved", BitsOf(type, 3, 5).picture);
}

void DecodeHomeAddress(const Place& in, Cursor& c, HeaderChain& chain) {
  const Field address = TakeBytes(c, 16);
  const Place option = Under(in, AddLine(in, address, "Mobility Support Home Address Option"));
  if (!address.here) return;
  AddLine(option, address, "Home Address : %s", IPv6Text(address.bytes));
  chain.source = address.bytes;   // the mobile node's checksums are made with its home address
}

// An option with a length; `c` holds all of it that is in its header.
void DecodeLongOption(const Place& in, Cursor c, HeaderChain& chain) {
  const Field type = TakeU8(c);
  if (type.value == kPadN) {
    const Field length = TakeU8(c);
    AddLine(in, length, "Length : %u bytes", length.value);
    TellBytes(in, Ahead(c, Left(c)), "Padding");
    AddBlock(in, Rest(c), "Padding");
    return;
  }
  DecodeOptionType(in, type);
  const Field length = TakeU8(c);
  AddLine(in, length, "Option size: %u", length.value);
  if (type.value == kHomeAddress && length.value == 16) DecodeHomeAddress(in, c, chain);
  if (type.value == kJumboPayload && length.value == 4 && Left(c) >= 4 && chain.payloadLength == 0) {
    chain.payloadLength = PeekU32(c);
  }
  Cursor fields = c;
  const Field data = Rest(c);
  AddBlock(in, data, "Option Data:");
  if (!ShowIPv6Option(in, type.value, fields)) TellBytes(in, data, "Option Value");
  if ((type.value == kRpl || type.value == kRplOld) && length.value >= 4) ShowRplOption(in, fields);
}

void DecodeOption(const Place& in, Cursor& c, HeaderChain& chain) {
  const uint8_t type = PeekU8(c);
  if (type == kPad1) {
    const Field pad = TakeU8(c);
    const Place option = Under(in, AddLine(in, pad, "Option %d - %s", type, LookupName(kOptionNames, type)));
    AddLine(option, pad, "Type : %u  (padding)", pad.value);
    return;
  }
  if (Left(c) == 1) {   // no room for a length
    const Field stray = TakeU8(c);
    AddLine(in, stray, "Option Padding: 0x%.02X", stray.value);
    return;
  }
  const int32_t size = 2 + PeekU8(c, 1);
  const LineHandle line =
      AddLine(in, CapturedPart(c, size), "Option %d - %s", type, LookupName(kOptionNames, type));
  DecodeLongOption(Under(in, line), TakeCursor(c, size), chain);
}

constexpr uint32_t kSourceRoute = 0, kHomeRoute = 2, kRplRoute = 3, kSegmentRouting = 4, kCompactRoute = 5,
                   kWideCompactRoute = 6;

// Type 0: every address on the way; the last one is where the packet goes in the end.
void DecodeSourceRoute(const Place& in, Cursor& c, HeaderChain& chain, uint32_t segmentsLeft) {
  const Field reserved = TakeU32(c);
  AddLine(in, reserved, "Reserved: 0x%08X", reserved.value);
  uint32_t number = 0;
  for (Loop loop; Left(c) >= 16 && MoreAt(in, c, loop);) {
    const Field address = TakeBytes(c, 16);
    AddLine(in, address, "Address %2u: %s", ++number, IPv6Text(address.bytes));
    if (segmentsLeft > 0) chain.destination = address.bytes;
  }
}

// Type 2: the home address of the mobile node that the packet is for.
void DecodeHomeRoute(const Place& in, Cursor& c, HeaderChain& chain, uint32_t segmentsLeft) {
  const Field reserved = TakeU32(c);
  AddLine(in, reserved, "Reserved : 0x%08X", reserved.value);
  const Field address = TakeBytes(c, 16);
  if (!address.here) return;
  AddLine(in, address, "Address : %s", IPv6Text(address.bytes));
  if (segmentsLeft > 0) chain.destination = address.bytes;
}

}  // namespace

bool EndChain(const Place& at, Cursor& c) {
  AddRawRest(at, c, "IPv6 Data");
  return false;
}

Field CapturedPart(const Cursor& c, int32_t size) { return Ahead(c, size < Left(c) ? size : Left(c)); }

int32_t DeclaredHeaderSize(const Cursor& c) { return Left(c) < 2 ? 0 : 8 * (PeekU8(c, 1) + 1); }

void TakeNextHeader(const Place& in, Cursor& c, HeaderChain& chain) {
  const Field next = TakeU8(c);
  AddLine(in, next, "Next Header: %u (%s)", next.value, NextHeaderName(next.value));
  if (next.here) chain.nextHeader = next.value;
}

bool DecodeOptionsHeader(const Place& at, Cursor& c, HeaderChain& chain, const char* kind) {
  const int32_t size = DeclaredHeaderSize(c);
  if (size == 0) return EndChain(at, c);
  const Place in =
      Under(at, AddLine(at, CapturedPart(c, size), "IPv6 %s Options Header: %u bytes", kind, size));
  Cursor header = TakeCursor(c, size);
  TakeNextHeader(in, header, chain);
  const Field length = TakeU8(header);
  AddLine(in, length, "Length of header in 8-byte units excluding first 8 bytes: %u", length.value);
  for (Loop loop; MoreAt(in, header, loop);) DecodeOption(in, header, chain);
  return Left(c) > 0;
}

bool DecodeRoutingHeader(const Place& at, Cursor& c, HeaderChain& chain) {
  const int32_t size = DeclaredHeaderSize(c);
  if (size == 0) return EndChain(at, c);
  const Place in = Under(at, AddLine(at, CapturedPart(c, size), "IPv6 Routing Header: %u bytes", size));
  Cursor header = TakeCursor(c, size);
  TakeNextHeader(in, header, chain);
  const Field length = TakeU8(header);
  AddLine(in, length, "Length of the header excluding first 8 octets: %u", length.value);
  const Field type = TakeU8(header);
  AddLine(in, type, "Routing type: %u", type.value);
  const Field segmentsLeft = TakeU8(header);
  AddLine(in, segmentsLeft, "Segments left: %u", segmentsLeft.value);
  if (type.value == kSourceRoute) {
    DecodeSourceRoute(in, header, chain, segmentsLeft.value);
  } else if (type.value == kHomeRoute) {
    DecodeHomeRoute(in, header, chain, segmentsLeft.value);
  } else if (type.value == kRplRoute) {
    ShowRplRoute(in, header, chain, segmentsLeft.value);
  } else if (type.value == kSegmentRouting) {
    ShowSegmentRoute(in, header, chain, segmentsLeft.value);
  } else if (type.value == kCompactRoute || type.value == kWideCompactRoute) {
    ShowCompactRoute(in, header, type.value == kWideCompactRoute);
  }
  AddBlock(in, Rest(header), "IPv6 Routing Header Data");
  return Left(c) > 0;
}

namespace {

// Goes on with what the whole packet carries; false while fragments are missing.
bool JoinFragments(const Place& at, Cursor& c, HeaderChain& chain, uint32_t identification) {
  NetworkState& network = PacketOf(at).network;
  Cursor joined;
  const FragmentRun run = TakeIpFragment(at, c, identification, static_cast<uint8_t>(chain.nextHeader),
                                         network.fragmentOffset, network.moreFragments, &joined);
  TellFragments(Deeper(at), c, run);
  if (Left(joined) < 1) return false;
  c = joined;
  chain.payloadLength = run.length;
  network.fragmented = network.moreFragments = false;
  network.fragmentOffset = 0;
  network.pseudoHead = IPv6PseudoHeadOf(chain.source, chain.destination, static_cast<uint8_t>(chain.nextHeader),
                                        static_cast<uint32_t>(run.length));
  return true;
}

}  // namespace

bool DecodeFragmentHeader(const Place& at, Cursor& c, HeaderChain& chain) {
  constexpr int32_t kSize = 8;
  const Place in = Under(at, AddLine(at, CapturedPart(c, kSize), "IPv6 Fragment Header: %u bytes", kSize));
  TakeNextHeader(in, c, chain);
  const Field reserved = TakeU8(c);
  AddLine(in, reserved, "Reserved: 0x%02X", reserved.value);
  const Field place = TakeU16(c);
  const BitPicture offset = BitsOf(place, 0, 13);
  AddBitLine(in, place, "Fragment Offset: (%s) %u * 8 = %u bytes", offset.picture, offset.value, offset.value * 8);
  const BitPicture unused = BitsOf(place, 13, 2);
  AddBitLine(in, place, "Reserved       : (%s) %u", unused.picture, unused.value);
  const BitPicture more = BitsOf(place, 15, 1);
  AddBitLine(in, place, "More Fragments : (%s) %u = %s", more.picture, more.value, TrueOrFalse(more.value));
  const Field identification = TakeU32(c);
  AddLine(in, identification, "Identification : 0x%08X", identification.value);
  if (identification.here) {
    NetworkState& network = PacketOf(at).network;
    network.fragmented = true;
    network.fragmentOffset = offset.value * 8;
    network.moreFragments = more.value != 0;
    PacketOf(at).ipProtocol = static_cast<uint8_t>(chain.nextHeader);
    ReachLayer(at, DispatchTable::kIpFragment, (chain.nextHeader & 0xFF) | network.fragmentOffset << 8, c);
  }
  const int64_t declared = chain.payloadLength - Taken(c);
  if (identification.here && JoinsFragments(at) && declared > 0 && declared <= Left(c)) {
    c = TakeCursor(c, declared);
    return JoinFragments(at, c, chain, identification.value);
  }
  AddRawRest(at, c, "Fragment Data");
  return false;
}

bool DecodeEspHeader(const Place& at, Cursor& c) {
  ReachLayer(at, DispatchTable::kIpProtocol, kEspHeader, c);
  const Place in = Under(at, AddLine(at, CapturedPart(c, 8), "IPv6 Encapsulating Security Payload (ESP)"));
  const Field index = TakeU32(c);
  AddLine(in, index, "Security Parameters Index (SPI): %u", index.value);
  const Field sequence = TakeU32(c);
  AddLine(in, sequence, "Sequence Number: %u", sequence.value);
  AddBlock(in, Rest(c), "ESP Payload and Authentication Data");
  return false;
}

}  // namespace qxview
