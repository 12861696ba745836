// Tags in front of the Ethertype: 802.1Q VLAN and service VLAN tags (IEEE 802.1Q), and VNTag.
//
//   VLAN    0  priority (3 bits), drop eligible (1), VLAN identifier (12)    2  inner type
//   VNTag   0  direction, pointer, destination interface (14)   2  looped, reserved, version (2), source (12)
//           4  inner type
//
// The tagged types themselves stand in front and have been shown by the header that they belong to.
#include "core/decoder.h"

namespace qxview {
namespace {

int32_t DecodeTag(const Place& at, Cursor c, const char* title) {
  if (Left(c) < 4) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 4), "%s", title));
  const Field tag = TakeU16(c);
  const BitPicture priority = BitsOf(tag, 0, 3);
  AddBitLine(in, tag, "%s: Priority = %u", priority.picture, priority.value);
  const BitPicture drop = BitsOf(tag, 3, 1);
  AddBitLine(in, tag, "%s: Drop Eligible = %s", drop.picture, TrueOrFalse(drop.value));
  const BitPicture identifier = BitsOf(tag, 4, 12);
  AddBitLine(in, tag, "%s: VLAN ID = %u", identifier.picture, identifier.value);
  return DecodeEthernetHeader(in, c);
}

}  // namespace

int32_t DecodeVlanTag(const Place& at, Cursor c) { return DecodeTag(at, c, "VLAN Tag"); }

int32_t DecodeServiceVlanTag(const Place& at, Cursor c) { return DecodeTag(at, c, "802.1Qad Service VLAN Tag"); }

int32_t DecodeVnTag(const Place& at, Cursor c) {
  if (Left(c) < 6) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 6), "Cisco VNTag"));
  const Field destination = TakeU16(c);
  const BitPicture direction = BitsOf(destination, 0, 1);
  AddBitLine(in, destination, "%s: Direction = %s", direction.picture, direction.value ? "From Bridge" : "To Bridge");
  const BitPicture pointer = BitsOf(destination, 1, 1);
  AddBitLine(in, destination, "%s: Pointer = %s", pointer.picture,
             pointer.value ? "Interface List" : "Single Interface");
  const BitPicture destinationInterface = BitsOf(destination, 2, 14);
  AddBitLine(in, destination, "%s: Destination Virtual Interface = %u", destinationInterface.picture,
             destinationInterface.value);
  const Field source = TakeU16(c);
  const BitPicture looped = BitsOf(source, 0, 1);
  AddBitLine(in, source, "%s: Looped = %s", looped.picture, TrueOrFalse(looped.value));
  const BitPicture reserved = BitsOf(source, 1, 1);
  AddBitLine(in, source, "%s: Reserved", reserved.picture);
  const BitPicture version = BitsOf(source, 2, 2);
  AddBitLine(in, source, "%s: Version = %u", version.picture, version.value);
  const BitPicture sourceInterface = BitsOf(source, 4, 12);
  AddBitLine(in, source, "%s: Source Virtual Interface = %u", sourceInterface.picture, sourceInterface.value);
  return DecodeEthernetHeader(in, c);
}

}  // namespace qxview
