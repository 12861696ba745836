// ARCnet (RFC 1201, and the older RFC 1051): station numbers, a system code that says what is carried, and how a
// packet is
// split over frames.
//
//   source (1)   destination (1)   [offset (2), as Linux captures it]   system code (1)   and but for RFC 1051's codes:
//   split flag (1)   sequence (2); a split flag of 0xFF is padding: system code, flag and sequence follow once more
#include "core/rows.h"
#include "decoders/link/link_frame.h"

namespace qxview {
namespace {

constexpr auto kSystemCodes = SortedNames({
    {0x80, "Diagnostics"}, {0x8F, "Address in Use"}, {0xC4, "IPv6"}, {0xCD, "Datapoint Boot"}, {0xD4, "IP"}, {0xD5,
    "ARP"},
    {0xD6, "RARP"}, {0xDD, "AppleTalk"}, {0xEC, "NetWare"}, {0xED, "ARCnet Ethernet"}, {0xF0, "IP (RFC 1051)"},
    {0xF1, "ARP (RFC 1051)"}, {0xF4, "Local Area Management"}, {0xF7, "IPX"}, {0xFA, "NetWare IPX"}});

struct CarriedProtocol {
  uint8_t code;
  uint16_t ethertype;
};
constexpr CarriedProtocol kCarried[] = {
    {0xC4, 0x86DD}, {0xD4, 0x0800}, {0xD5, 0x0806}, {0xD6, 0x8035}, {0xDD, 0x809B}, {0xEC, 0x8137}, {0xF0, 0x0800},
    {0xF1, 0x0806}, {0xFA, 0x8137}};

constexpr uint32_t kException = 0xFF;
bool IsOldCode(uint32_t code) { return code == 0xF0 || code == 0xF1; }

constexpr auto kSequence = Rows<NoValues>({Number(2, "Sequence Number")});

void ShowSplitFlag(const Place& in, const Field& flag) {
  if (flag.value == 0) {
    AddLine(in, flag, "Split Flag: %u = Whole Packet", flag.value);
  } else if (flag.value & 1) {
    AddLine(in, flag, "Split Flag: %u = First of %u Fragments", flag.value, flag.value / 2 + 2);
  } else {
    AddLine(in, flag, "Split Flag: %u = Fragment %u", flag.value, flag.value / 2 + 1);
  }
}

int32_t DispatchCode(const Place& at, const Cursor& c, uint32_t code) {
  for (const CarriedProtocol& row : kCarried) {
    if (row.code != code) continue;
    const int32_t handled = DispatchEthertype(at, c, row.ethertype);
    return handled ? handled : CallDecoder(at, c, nullptr, "Raw Data");
  }
  return CallDecoder(at, c, nullptr, "ARCnet Data");
}

int32_t DecodeArcnetFrame(const Place& at, Cursor c, bool hasOffset) {
  const int32_t headerSize = hasOffset ? 5 : 3;
  if (Left(c) < headerSize) return 0;
  const uint32_t code = PeekU8(c, headerSize - 1);
  const Place in = Under(at, AddLine(at, Ahead(c, headerSize), "ARCnet Header: %u -> %u, %s", PeekU8(c), PeekU8(c, 1),
                                     LookupName(kSystemCodes, code)));
  const Field source = TakeU8(c), destination = TakeU8(c);
  AddLine(in, source, "Source: %u", source.value);
  AddLine(in, destination, "Destination: %u", destination.value);
  if (hasOffset) {
    const Field offset = TakeBytes(c, 2);   // the adapter's own two bytes, in no order
    AddLine(in, offset, "Offset: %s", HexText(offset));
  }
  const Field system = TakeU8(c);
  AddLine(in, system, "System Code: 0x%.02X = %s", system.value, LookupName(kSystemCodes, system.value));
  bool isStart = true;
  if (!IsOldCode(code)) {
    Field flag = TakeU8(c);
    if (flag.value == kException) {
      AddLine(in, flag, "Exception Flag: 0x%.02X", flag.value);
      const Field pad = TakeU16(c);
      AddLine(in, pad, "Exception Padding: 0x%.04X", pad.value);
      const Field again = TakeU8(c);
      AddLine(in, again, "System Code: 0x%.02X = %s", again.value, LookupName(kSystemCodes, again.value));
      flag = TakeU8(c);
    }
    ShowSplitFlag(in, flag);
    ShowRows(in, c, kSequence);
    isStart = flag.value == 0 || flag.value & 1;
  }
  CoverBytes(in, c);
  return isStart ? DispatchCode(Deeper(at), c, code) : CallDecoder(Deeper(at), c, nullptr, "Fragment Data");
}

}  // namespace

int32_t DecodeArcnet(const Place& at, Cursor c) { return DecodeArcnetFrame(at, c, false); }
int32_t DecodeArcnetLinux(const Place& at, Cursor c) { return DecodeArcnetFrame(at, c, true); }

// IP over InfiniBand (RFC 4391): an Ethertype and two bytes of padding, behind the global route header where the
// capture
// has that.
int32_t DecodeIpOverInfiniband(const Place& at, Cursor c) {
  constexpr int32_t kRouteHeader = 40, kHeaderSize = 4;
  constexpr auto kRoute = Rows<NoValues>({
      Word(4), Bits(0, 4, "IP Version"), Bits(4, 8, "Traffic Class"), Bits(12, 20, "Flow Label"), Number(2,
      "Payload Length"),
      Number(1, "Next Header"), Number(1, "Hop Limit"), IPv6("Source GID").Note(", %s ->"),
      IPv6("Destination GID").Note(" %s")});
  if (Left(c) < kHeaderSize) return 0;
  constexpr uint32_t kTransport = 0x1B;   // what InfiniBand's route header names behind it
  if (Left(c) >= kRouteHeader + kHeaderSize && PeekU8(c) >> 4 == 6 && PeekU8(c, 6) == kTransport) {
    const Place route = Under(at, AddLine(at, Ahead(c, kRouteHeader), "InfiniBand Global Route Header"));
    ShowRows(route, c, kRoute);
  }
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "IP over InfiniBand Header"));
  const Field type = TakeU16(c);
  const char* name = EthertypeName(static_cast<uint16_t>(type.value));
  AddLine(in, type, "Ethertype: 0x%.04X = %s", type.value, name ? name : kUnknown);
  const Field reserved = TakeU16(c);
  AddLine(in, reserved, "Reserved: 0x%.04X", reserved.value);
  if (!reserved.here) return 1;
  const int32_t handled = DispatchEthertype(Deeper(at), c, static_cast<uint16_t>(type.value));
  return handled ? handled : CallDecoder(Deeper(at), c, nullptr, "Raw Data");
}

}  // namespace qxview
