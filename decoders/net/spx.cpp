// SPX, the connections of NetWare over IPX, and its second version. Numbers are big-endian.
//
//   0        1     2                    4                         6         8                10          12
//   control  type  source connection ID  destination connection ID  sequence  acknowledgement  allocation  data
//   control  system, acknowledge, attention, end of message, version 2, negotiate size, reserved, extended header
//
// Packets of the second version have two more bytes: the packet size that is negotiated.
#include "decoders/net/ipx.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 12;
constexpr uint32_t kSecondVersion = 0x08;

constexpr auto kTypeNames = SortedNames({
    {0xFC, "Orderly Release Request"}, {0xFD, "Orderly Release Acknowledgement"}, {0xFE, "End of Connection"},
    {0xFF, "End of Connection Acknowledgement"},
});
constexpr const char* kControlBits[] = {"System Packet", "Acknowledgement Required", "Attention", "End of Message",
                                        "SPX II", "Negotiate Size", "Reserved", "Extended Header"};

// Types below those with names are the user's.
const char* TypeName(uint32_t type) { return LookupName(kTypeNames, type, "Client-Defined"); }

}  // namespace

int32_t DecodeSpx(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "SPX:"));
  const Field control = TakeU8(c);
  const Place bits = Under(in, AddLine(in, control, "Connection Control: 0x%.02X", control.value));
  for (int32_t i = 0; i < 8; ++i) {
    const BitPicture bit = BitsOf(control, i, 1);
    AddBitLine(bits, control, "%s: %s = %s", bit.picture, kControlBits[i], TrueOrFalse(bit.value));
  }
  const Field type = TakeU8(c);
  AddLine(in, type, "Datastream Type: 0x%.02X = %s", type.value, TypeName(type.value));
  const Field source = TakeU16(c);
  AddLine(in, source, "Source Connection ID: %u", source.value);
  const Field destination = TakeU16(c);
  AddLine(in, destination, "Destination Connection ID: %u", destination.value);
  const Field sequence = TakeU16(c);
  AddLine(in, sequence, "Sequence Number: %u", sequence.value);
  const Field acknowledgement = TakeU16(c);
  AddLine(in, acknowledgement, "Acknowledgement Number: %u", acknowledgement.value);
  const Field allocation = TakeU16(c);
  AddLine(in, allocation, "Allocation Number: %u", allocation.value);
  if (control.value & kSecondVersion && Left(c) >= 2) {
    const Field size = TakeU16(c);
    AddLine(in, size, "Negotiation Size: %u", size.value);
  }
  AppendToLine(at, in.parent, " Connection %u -> %u, Sequence %u, Acknowledgement %u", source.value,
               destination.value, sequence.value, acknowledgement.value);
  CoverBytes(in, c);
  if (Left(c) > 0) CallDecoder(Deeper(at), c, nullptr, "SPX Data");
  return 1;
}

}  // namespace qxview
