// Inter-Switch Link: whole frames of a VLAN between switches, behind a header of 26 bytes.
//
//   0            5               6       12      14        17           20                   22     24        26
//   destination  type (4 bits),  source  length  AA AA 03  source's     VLAN (15 bits),      port   reserved  frame
//   (5 bytes)    user (4 bits)                             vendor (3)   spanning tree (1)    index
//
// The length counts from the SNAP bytes on and leaves out the check sequence of the trunk, which follows the carried
// frame with its own. Token Ring and FDDI frames start in the reserved bytes, with their control fields.
#include "decoders/link/medium.h"

namespace qxview {
namespace {

enum CarriedType : uint32_t { kEthernet = 0, kTokenRing = 1, kFddi = 2, kAtm = 3 };

constexpr auto kTypes = SortedNames({{0, "Ethernet"}, {1, "Token Ring"}, {2, "FDDI"}, {3, "ATM"}});
constexpr int32_t kHeaderLength = 26, kLengthCountsFrom = 14;

// The header's lines; gives the type of the carried frame and the declared length.
struct IslHeader {
  uint32_t type, length;
};
IslHeader AddHeaderLines(const Place& in, Cursor& c) {
  const Field destination = TakeBytes(c, 5);
  AddLine(in, destination, "Destination: %s", HexText(destination));
  const Field typeAndUser = TakeU8(c);
  const BitPicture type = BitsOf(typeAndUser, 0, 4), user = BitsOf(typeAndUser, 4, 4);
  AddBitLine(in, typeAndUser, "%s: Type = %u (%s)", type.picture, type.value, LookupName(kTypes, type.value));
  AddBitLine(in, typeAndUser, "%s: User = %u", user.picture, user.value);
  AddAddress(in, TakeBytes(c, kMacAddressLength), "Source");
  const Field length = TakeU16(c);
  AddLine(in, length, "Length: %u", length.value);
  const Field snap = TakeU24(c);
  AddLine(in, snap, "DSAP, SSAP, Control: 0x%.06X", snap.value);
  const Field vendor = TakeU24(c);
  AddLine(in, vendor, "High Bits of Source Address: 0x%.06X", vendor.value);
  const Field tag = TakeU16(c);
  const BitPicture vlan = BitsOf(tag, 0, 15), bpdu = BitsOf(tag, 15, 1);
  AddBitLine(in, tag, "%s: VLAN ID = %u", vlan.picture, vlan.value);
  AddBitLine(in, tag, "%s: Spanning Tree or Discovery = %s", bpdu.picture, TrueOrFalse(bpdu.value));
  const Field index = TakeU16(c);
  AddLine(in, index, "Port Index: %u", index.value);
  const Field reserved = TakeU16(c);
  AddLine(in, reserved, "Reserved: 0x%.04X", reserved.value);
  return {type.value, length.value};
}

}  // namespace

int32_t DecodeIsl(const Place& at, Cursor c) {
  if (Left(c) < kHeaderLength) return 0;
  const Cursor frame = c;
  const Field whole = Ahead(c, Left(c));
  const Place summary = AddFrameSummary(at, c);
  AddLine(summary, whole, "Network: Ethernet,  Frame type:  ISL");
  AddLine(summary, whole, "Frame network size: %lu (including 4 bytes CRC)",
          SizeWithCheckSequence(PacketOf(at).frame, 4));
  const Field checkSequence = CutCheckSequence(at, c);
  AddClosingSummaryLines(summary, frame, OriginalNumber::kHidden, checkSequence);
  AddCaptureLines(summary);

  const Place in = Under(at, AddLine(at, Ahead(frame, kHeaderLength), "Encapsulation: ISL"));
  const IslHeader header = AddHeaderLines(in, c);
  const int32_t declared = static_cast<int32_t>(header.length) - (kHeaderLength - kLengthCountsFrom);
  const Place network = Deeper(at);
  const int32_t before = header.type == kTokenRing ? 2 : header.type == kFddi ? 1 : 0;
  Cursor carried = frame;
  TakeBytes(carried, kHeaderLength - before);
  carried.left = Left(c) + before;
  carried = TakeCursor(carried, declared < 0 ? carried.left : declared + before);
  switch (header.type) {
    case kEthernet: CallDecoder(network, carried, DecodeMacHeader, "Raw Data"); break;
    case kTokenRing: CallDecoder(network, carried, DecodeTokenRingHeader, "Raw Data"); break;
    case kFddi: CallDecoder(network, carried, DecodeFddiHeader, "Raw Data"); break;
    default: CallDecoder(network, carried, nullptr, "Raw Data"); break;
  }
  return 1;
}

}  // namespace qxview
