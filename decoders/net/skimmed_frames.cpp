#include "decoders/net/skimmed_frames.h"

#include <cstring>

#include "core/decoder.h"
#include "core/dispatch.h"
#include "core/engine.h"
#include "decoders/net/ipv4.h"
#include "decoders/net/ipv6_checksum.h"
#include "decoders/net/port_dispatch.h"
#include "decoders/net/pseudo_head.h"
#include "decoders/net/tcp.h"

namespace qxview {
namespace {

constexpr uint32_t kEthertypeIPv4 = 0x0800, kEthertypeIPv6 = 0x86DD;
constexpr int32_t kIPv6Header = 40;

// What a datagram carries.
struct Transport {
  bool isIPv4;
  uint8_t protocol;
  uint16_t sourcePort, destinationPort;
  Cursor network, segment, payload;   // from each header on; behind the last
};

bool TakeIPv4(Cursor& c, Transport& out) {
  if (!IsPlainIPv4(c)) return false;
  const int32_t behind = static_cast<int32_t>(PeekU16(c, 2)) - kIPv4HeaderLength;
  out.protocol = static_cast<uint8_t>(PeekU8(c, 9));
  TakeBytes(c, kIPv4HeaderLength);
  c = TakeCursor(c, behind);
  return true;
}

// Without extension headers, and nothing behind it: trailers are told apart elsewhere.
bool TakeIPv6(Cursor& c, Transport& out) {
  constexpr uint32_t kVersion = 6;
  if (Left(c) <= kIPv6Header || PeekU8(c) >> 4 != kVersion) return false;
  if (static_cast<int32_t>(PeekU16(c, 4)) != Left(c) - kIPv6Header) return false;
  out.protocol = static_cast<uint8_t>(PeekU8(c, 6));
  TakeBytes(c, kIPv6Header);
  return true;
}

// False for headers that are cut, and for segments that begin a connection.
bool TakeTransport(Cursor c, Transport& out) {
  constexpr uint32_t kSyn = 2;
  const bool isTcp = out.protocol == kIpProtocolTcp;
  const int32_t least = isTcp ? 20 : 8;
  if ((!isTcp && out.protocol != kIpProtocolUdp) || Left(c) < least) return false;
  out.segment = c;
  out.sourcePort = static_cast<uint16_t>(PeekU16(c));
  out.destinationPort = static_cast<uint16_t>(PeekU16(c, 2));
  int32_t header = least;
  if (isTcp) {
    const int32_t told = static_cast<int32_t>(PeekU8(c, 12) >> 4) * 4;
    header = told < least ? least : told;
    if ((PeekU8(c, 13) & kSyn) || header > Left(c)) return false;
  }
  TakeBytes(c, header);
  out.payload = c;
  return true;
}

void SetAddress(AddressSlot& slot, const Field& address, uint32_t kind) {
  std::memcpy(slot.address + sizeof slot.address - address.length, address.bytes, static_cast<size_t>(address.length));
  slot.kind = kind;
}

// The packet state as far as dispatching and summaries ask for it.
void SetPacket(PacketState& packet, const Transport& transport) {
  packet = PacketState{};
  const Cursor& network = transport.network;
  const int32_t size = transport.isIPv4 ? 4 : 16, from = transport.isIPv4 ? 12 : 8;
  const uint32_t kind = transport.isIPv4 ? kIPv4Kind : kIPv6Kind;
  SetAddress(packet.source, PeekBytes(network, from, size), kind);
  SetAddress(packet.destination, PeekBytes(network, from + size, size), kind);
  packet.sourcePort = transport.sourcePort;
  packet.destinationPort = transport.destinationPort;
  packet.ipProtocol = transport.protocol;
  packet.carrier = {DispatchTable::kIpProtocol, transport.protocol, transport.segment.at, Left(transport.segment)};
}

bool IsBadSegment(const View* view, const Transport& transport) {
  NetworkState network{};
  const uint8_t* header = transport.network.at;
  network.pseudoHead = transport.isIPv4 ? PseudoHead(header) : CalculateIPv6PseudoChecksum(header);
  network.totalLength = Left(transport.segment);
  return IsBadTcpSegment(view, transport.segment, network);
}

}  // namespace

Skim SkimFrame(View* view, const uint8_t* frame, int32_t length) {
  constexpr int32_t kHeader = 14;
  constexpr uint32_t kLeastType = 0x0600, kTrailerSuffix = 0x88FB;
  const Engine& engine = *view->engine;
  if (length <= kHeader || engine.settings.forced.on || engine.libraries.count > 0) return Skim::kNot;
  Cursor c = MakeCursor(frame, 0, length);
  if (PeekU16(c, Left(c) - 2) == kTrailerSuffix) return Skim::kNot;   // it may be one of redundancy
  const uint32_t type = PeekU16(c, kHeader - 2);
  TakeBytes(c, kHeader);
  Transport transport;
  transport.isIPv4 = type == kEthertypeIPv4;
  transport.network = c;
  if (!transport.isIPv4 && type != kEthertypeIPv6) {
    const DecoderRow* row = type >= kLeastType ? FindEthertype(static_cast<uint16_t>(type)) : nullptr;
    return row && row->protocol->isPlain ? Skim::kDone : Skim::kNot;
  }
  if (transport.isIPv4 ? !TakeIPv4(c, transport) : !TakeIPv6(c, transport)) return Skim::kNot;
  if (!TakeTransport(c, transport)) return Skim::kNot;
  PacketState& packet = view->context->packet;
  SetPacket(packet, transport);
  bool matchedSource;
  const int32_t protocol = ResolveProtocol(view, transport.protocol, packet.source, packet.sourcePort, packet.destination,
                                           packet.destinationPort, &matchedSource);
  if (Left(transport.payload) == 0) return Skim::kDone;
  if (transport.protocol == kIpProtocolTcp && IsBadSegment(view, transport)) return Skim::kDone;   // its payload is not looked at
  return SkimPayload(TopLevel(view, 1), transport.payload, protocol, transport.protocol);
}

}  // namespace qxview
