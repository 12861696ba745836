// IP Encapsulating Security Payload (RFC 4303; in UDP: RFC 3948): which association protects what follows? Nothing in
// the packet says how; a payload that is not encrypted is only shown when all of its trailer and its header agree.
//
//   security parameters index (4)   sequence number (4)   payload   padding 1, 2, 3...   its length (1)
//   next header (1)   integrity check value
#include "decoders/ipsec/esp.h"

#include "core/rows.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 8, kTrailer = 2;

struct Esp {
  Field spi, sequence;
};
constexpr auto kHeader = Rows<Esp>({
    Hex(4, "Security Parameters Index (SPI)").Note(", SPI = 0x%.08X").Into(&Esp::spi),
    Number(4, "Sequence Number").Note(", Sequence Number = %u").Into(&Esp::sequence)});

struct Plain {
  int32_t payload, padding, check;   // sizes; no payload where it is encrypted
  uint32_t next;
};

bool HasPadding(const Cursor& c, int32_t at, int32_t size) {
  for (int32_t i = 0; i < size; ++i) {
    if (PeekU8(c, at + i) != static_cast<uint32_t>(i + 1)) return false;
  }
  return true;
}

bool StartsSegment(const Cursor& c, int32_t size) {
  constexpr uint32_t kReserved = 0x0E, kSynRstAck = 0x16;
  const int32_t header = static_cast<int32_t>(PeekU8(c, 12) >> 4) * 4;
  return header >= 20 && header <= size && (PeekU8(c, 12) & kReserved) == 0 && (PeekU8(c, 13) & kSynRstAck) != 0 &&
         PeekU16(c) != 0 && PeekU16(c, 2) != 0;
}

// Whether `size` bytes start a packet of the protocol: lengths in its header that agree with what is there.
bool StartsPacket(const Cursor& c, uint32_t protocol, int32_t size) {
  constexpr uint32_t kIPv4 = 4, kTcp = 6, kUdp = 17, kIPv6 = 41;
  switch (protocol) {
    case kIPv4: return PeekU8(c) >> 4 == 4 && static_cast<int32_t>(PeekU16(c, 2)) == size;
    case kIPv6: return PeekU8(c) >> 4 == 6 && static_cast<int32_t>(PeekU16(c, 4)) + 40 == size;
    case kUdp: return static_cast<int32_t>(PeekU16(c, 4)) == size;
    case kTcp: return StartsSegment(c, size);
    default: return false;
  }
}

// A NULL cipher with a check value of one of the usual sizes.
Plain FindPlain(const Cursor& c) {
  constexpr int32_t kCheckSizes[] = {12, 16, 24, 32, 0};
  for (const int32_t check : kCheckSizes) {
    const int32_t trailer = Left(c) - check - kTrailer;
    if (trailer < 1) continue;
    const int32_t padding = static_cast<int32_t>(PeekU8(c, trailer));
    const int32_t payload = trailer - padding;
    if (payload < 8 || (trailer + kTrailer) % 4 != 0 || !HasPadding(c, payload, padding)) continue;
    if (StartsPacket(c, PeekU8(c, trailer + 1), payload)) return {payload, padding, check, PeekU8(c, trailer + 1)};
  }
  return {};
}

void ShowPlain(const Place& at, const Place& in, Cursor& c, const Plain& plain) {
  Cursor payload = TakeCursor(c, plain.payload);
  payload.begin = payload.offset;
  const Field padding = TakeBytes(c, plain.padding);
  if (padding.length > 0) AddLine(in, padding, "Padding: %s", HexText(padding));
  const Field length = TakeU8(c);
  AddLine(in, length, "Padding Length: %u", length.value);
  const Field next = TakeU8(c);
  AddLine(in, next, "Next Header: %u = %s (assuming NULL encryption)", next.value, IpProtocolName(next.value));
  const Field check = Rest(c);
  AddLine(in, check, "Integrity Check Value (ICV): %s", HexText(check));
  constexpr uint32_t kIPv6 = 41;
  const DecoderRow* row = plain.next == kIPv6 ? FindEthertype(0x86DD)
                                              : FindIpProtocol(static_cast<uint8_t>(plain.next));
  CallDecoder(Deeper(at), payload, row ? row->decode : nullptr, "ESP Data");
}

}  // namespace

int32_t DecodeEsp(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "ESP - Encapsulating Security Payload"));
  ShowRows(in, c, kHeader);
  const Plain plain = FindPlain(c);
  if (plain.payload > 0) {
    ShowPlain(at, in, c, plain);
    return 1;
  }
  const Field sealed = Rest(c);
  AddLine(in, sealed, "Encrypted Data: %d bytes (with padding, next header and integrity check value)", sealed.length);
  return 1;
}

}  // namespace qxview
