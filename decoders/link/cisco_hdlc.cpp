// Cisco HDLC: an Ethertype behind an HDLC address on synchronous lines (RFC 1547, section 4.3.1), and SLARP, its line
// protocol: address resolution and keepalives.
//
//   0        1     2          4
//   address  0x00  Ethertype  payload
//
//   SLARP   0  code   4  address, or own sequence    8  mask, or the peer's sequence   12  reliability   14  time up
#include "core/line_facts.h"
#include "decoders/link/llc.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

constexpr uint32_t kUnicast = 0x0F, kMulticast = 0x8F;
constexpr uint32_t kSlarp = 0x8035, kOsi = 0xFEFE;   // 0x8035 is no reverse ARP here

constexpr auto kAddressNames = SortedNames({{0x0F, "Unicast"}, {0x8F, "Multicast"}});
constexpr auto kSlarpCodes = SortedNames({{0, "Request"}, {1, "Reply"}, {2, "Keepalive"}});

int32_t DecodeSlarp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "slarp");
  constexpr uint32_t kKeepalive = 2;
  const Place in = Under(at, AddLine(at, Ahead(c, 0), "SLARP:"));
  const Field code = TakeU32(c);
  AddLine(in, code, "Code: %u = %s", code.value, LookupName(kSlarpCodes, code.value));
  AppendToParent(in, code, " %s", LookupName(kSlarpCodes, code.value));
  if (code.value == kKeepalive) {
    const Field own = TakeU32(c);
    AddLine(in, own, "My Sequence Number: %u", own.value);
    const Field peer = TakeU32(c);
    AddLine(in, peer, "Your Sequence Number: %u", peer.value);
  } else {
    const Field address = TakeBytes(c, 4);
    if (address.here) AddLine(in, address, "Address: %s", CheckAlias(at.view, 1, address.bytes));
    const Field mask = TakeBytes(c, 4);
    if (mask.here) AddLine(in, mask, "Mask: %s", IPv4Text(mask.bytes));
  }
  const Field reliability = TakeU16(c);
  AddLine(in, reliability, "Reliability: 0x%.04X", reliability.value);
  if (Left(c) >= 4) {
    const Field up = TakeU32(c);
    AddLine(in, up, "Time Up: %u milliseconds", up.value);
  }
  CoverBytes(in, c);
  return 1;
}

// OSI protocols start at their identifier, with or without a byte of padding in front of it.
int32_t DispatchOsi(const Place& in, const Place& network, Cursor c) {
  const bool padded = Left(c) >= 2 && PeekU8(c, 1) >= 0x81 && PeekU8(c, 1) <= 0x83;
  if (padded) {
    const Field pad = TakeU8(c);
    AddLine(in, pad, "Padding: 0x%.02X", pad.value);
  }
  return DispatchNlpid(in, network, c);
}

}  // namespace

bool LooksLikeCiscoHdlc(const Cursor& c) {
  return Left(c) >= 4 && (PeekU8(c) == kUnicast || PeekU8(c) == kMulticast) && PeekU8(c, 1) == 0;
}

int32_t DecodeCiscoHdlc(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "chdlc");
  if (Left(c) < 4) return 0;
  const uint32_t ethertype = PeekU16(c, 2);
  const char* known = EthertypeName(static_cast<uint16_t>(ethertype));
  const char* name = ethertype == kSlarp ? "SLARP" : ethertype == kOsi ? "OSI" : known ? known : kUnknown;
  const Place in = Under(at, AddLine(at, Ahead(c, 4), "Cisco HDLC Header:  Protocol = %s", name));
  const Field address = TakeU8(c);
  AddLine(in, address, "Address: 0x%.02X = %s", address.value, LookupName(kAddressNames, address.value));
  const Field control = TakeU8(c);
  AddLine(in, control, "Control: 0x%.02X", control.value);
  const Field protocol = TakeU16(c);
  AddLine(in, protocol, "Ethertype: 0x%.04X = %s", protocol.value, name);
  const Place network = Deeper(at);
  if (Left(c) == 0) return 1;
  if (ethertype == kSlarp) {
    ReachLayer(network, DispatchTable::kEthertype, kSlarpKey, c);
    CallDecoder(network, c, DecodeSlarp, "SLARP Data");
  } else if (ethertype == kOsi) {
    DispatchOsi(in, network, c);
  } else {
    DispatchSnap(network, c, 0, static_cast<uint16_t>(ethertype));
  }
  return 1;
}

}  // namespace qxview
