// IP Authentication Header (RFC 4302): who sent this datagram, and is it unchanged?
//
//   0            1               2         4                           8                12
//   next header  payload length  reserved  security parameters index   sequence number  integrity check value
//
// The payload length counts 32-bit words of the whole header less 2, in IPv6 as well.
#include "decoders/net/ah.h"

#include "core/line_facts.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {

bool DecodeAh(const Place& at, Cursor& c, uint8_t* nextHeader) {
  const KeyedAs keys(PacketOf(at), "ah");
  constexpr int32_t kFixedLength = 12;
  if (Left(c) < 2) {
    AddRawRest(at, c, "AH Data");
    return false;
  }
  const int32_t length = (PeekU8(c, 1) + 2) * 4;
  Cursor header = TakeCursor(c, length);
  const Place in = Under(at, AddLine(at, Ahead(header, Left(header)), "AH - Authentication Header: %u bytes", length));
  const Field next = TakeU8(header);
  AddLine(in, next, "Next Header: %u = %s", next.value, IpProtocolName(next.value));
  const Field words = TakeU8(header);
  AddLine(in, words, "Payload Length: %u (%u bytes)", words.value, length);
  const Field reserved = TakeU16(header);
  AddLine(in, reserved, "Reserved: 0x%.04X", reserved.value);
  const Field index = TakeU32(header);
  AddLine(in, index, "Security Parameters Index (SPI): 0x%.08X (%u)", index.value, index.value);
  const Field sequence = TakeU32(header);
  AddLine(in, sequence, "Sequence Number: %u", sequence.value);
  AppendToParent(in, sequence, ", SPI = 0x%.08X, Sequence Number = %u", index.value, sequence.value);
  const Field check = Rest(header);
  if (check.length > 0) AddLine(in, check, "Integrity Check Value (ICV): %s", HexText(check));
  *nextHeader = static_cast<uint8_t>(next.value);
  const bool whole = sequence.here && length >= kFixedLength && Taken(header) == length;
  if (!whole) AddRawRest(at, c, "AH Data");
  return whole;
}

}  // namespace qxview
