// ICMP extension structures (RFC 4884) and the objects in them: label stacks (RFC 4950), interface information
// (RFC 5837), interface identification (RFC 8335).
//
//   0  version (4 bits), reserved (12)   2  checksum   4  objects
//   an object:  0  length, header included   2  class   3  type of the class   4  payload
#include "decoders/net/icmp_extensions.h"

#include "core/internet_checksum.h"
#include "decoders/common/checksum_line.h"

namespace qxview {
namespace {

constexpr int32_t kStructureHeader = 4, kObjectHeader = 4;
constexpr uint32_t kVersion = 2;

enum ObjectClass : uint32_t { kLabelStack = 1, kInterfaceInformation = 2, kInterfaceIdentification = 3 };
enum AddressFamily : uint32_t { kFamilyIPv4 = 1, kFamilyIPv6 = 2 };

constexpr auto kClassNames = SortedNames({{1, "MPLS Label Stack"}, {2, "Interface Information"},
                                          {3, "Interface Identification"}, {4, "Extended Information"},
                                          {5, "Node Identification"}});
constexpr auto kFamilyNames = SortedNames({{1, "IPv4"}, {2, "IPv6"}, {6, "802"}, {16389, "48-bit MAC"}});

void AddLabels(const Place& in, Cursor c) {
  Loop loop;
  for (uint32_t number = 1; MoreAt(in, c, loop); ++number) {
    const Field entry = TakeU32(c);
    const BitPicture label = BitsOf(entry, 0, 20), traffic = BitsOf(entry, 20, 3), bottom = BitsOf(entry, 23, 1);
    const BitPicture timeToLive = BitsOf(entry, 24, 8);
    const Place bits = Under(in, AddLine(in, entry, "Label Stack Entry %u: Label = %u, TTL = %u", number, label.value,
                                         timeToLive.value));
    AddBitLine(bits, entry, "%s: Label = %u", label.picture, label.value);
    AddBitLine(bits, entry, "%s: Traffic Class = %u", traffic.picture, traffic.value);
    AddBitLine(bits, entry, "%s: Bottom of Stack = %s", bottom.picture, TrueOrFalse(bottom.value));
    AddBitLine(bits, entry, "%s: Time to Live = %u", timeToLive.picture, timeToLive.value);
  }
}

// An address of the family; of `length` bytes where the object tells one, else of the family's own length.
void AddAddress(const Place& in, Cursor& c, uint32_t family, int32_t length) {
  const int32_t own = family == kFamilyIPv4 ? 4 : family == kFamilyIPv6 ? 16 : Left(c);
  const Field address = TakeBytes(c, length < 0 ? own : length);
  if (!address.here) return;
  if (family == kFamilyIPv4 && address.length == 4) {
    AddLine(in, address, "IP Address: %s", IPv4Text(address.bytes));
  } else if (family == kFamilyIPv6 && address.length == 16) {
    AddLine(in, address, "IP Address: %s", IPv6Text(address.bytes));
  } else {
    AddLine(in, address, "Address: %s", HexText(address));
  }
}

Field AddFamily(const Place& in, Cursor& c) {
  const Field family = TakeU16(c);
  AddLine(in, family, "Address Family: %u = %s", family.value, LookupName(kFamilyNames, family.value));
  return family;
}

// The type's low bits say which parts follow, in this order.
void AddInterfaceInformation(const Place& in, const Field& type, Cursor c) {
  constexpr const char* kRoles[] = {"Incoming IP Interface", "Sub-IP Component of Incoming Interface",
                                    "Outgoing IP Interface", "IP Next Hop"};
  const BitPicture role = BitsOf(type, 0, 2), index = BitsOf(type, 4, 1), address = BitsOf(type, 5, 1);
  const BitPicture name = BitsOf(type, 6, 1), mtu = BitsOf(type, 7, 1);
  AddBitLine(in, type, "%s: Interface Role = %s", role.picture, kRoles[role.value]);
  AddBitLine(in, type, "%s: Index Included = %s", index.picture, TrueOrFalse(index.value));
  AddBitLine(in, type, "%s: Address Included = %s", address.picture, TrueOrFalse(address.value));
  AddBitLine(in, type, "%s: Name Included = %s", name.picture, TrueOrFalse(name.value));
  AddBitLine(in, type, "%s: MTU Included = %s", mtu.picture, TrueOrFalse(mtu.value));
  if (index.value) {
    const Field number = TakeU32(c);
    AddLine(in, number, "Interface Index: %u", number.value);
  }
  if (address.value) {
    const Field family = AddFamily(in, c);
    TakeU16(c);
    AddAddress(in, c, family.value, -1);
  }
  if (name.value) {
    const Field length = TakeU8(c);   // counts itself
    AddLine(in, length, "Interface Name Length: %u", length.value);
    const Field text = TakeBytes(c, static_cast<int64_t>(length.value) - 1);
    AddLine(in, text, "Interface Name: %s", Text(text));
  }
  if (mtu.value) {
    const Field size = TakeU32(c);
    AddLine(in, size, "Interface MTU: %u", size.value);
  }
}

void AddInterfaceIdentification(const Place& in, const Field& type, Cursor c) {
  enum { kByName = 1, kByIndex = 2, kByAddress = 3 };
  if (type.value == kByName) {
    const Field name = Rest(c);
    AddLine(in, name, "Interface Name: %s", Text(name));
  } else if (type.value == kByIndex) {
    const Field index = TakeU32(c);
    AddLine(in, index, "Interface Index: %u", index.value);
  } else if (type.value == kByAddress) {
    const Field family = AddFamily(in, c);
    const Field length = TakeU8(c);
    AddLine(in, length, "Address Length: %u", length.value);
    TakeU8(c);
    AddAddress(in, c, family.value, static_cast<int32_t>(length.value));
  }
}

// False when the object's length leads nowhere.
bool DecodeObject(const Place& in, Cursor& c, uint32_t number) {
  const Cursor start = c;
  const uint32_t declared = PeekU16(c);
  Cursor object = TakeCursor(c, declared < kObjectHeader ? kObjectHeader : declared);
  const Field cover = Ahead(start, Left(object));
  const Field length = TakeU16(object), objectClass = TakeU8(object), type = TakeU8(object);
  const char* name = LookupName(kClassNames, objectClass.value);
  const Place under = Under(in, AddLine(in, cover, "Object %u: %s", number, objectClass.here ? name : "Cut"));
  AddLine(under, length, "Length: %u", length.value);
  AddLine(under, objectClass, "Class: %u = %s", objectClass.value, name);
  AddLine(under, type, "Type: %u", type.value);
  if (!type.here || declared < kObjectHeader) return false;
  switch (objectClass.value) {
    case kLabelStack: AddLabels(under, object); break;
    case kInterfaceInformation: AddInterfaceInformation(under, type, object); break;
    case kInterfaceIdentification: AddInterfaceIdentification(under, type, object); break;
    default: AddBlock(under, Rest(object), "Object Data");
  }
  return true;
}

}  // namespace

bool HasIcmpExtensionVersion(const Cursor& c) { return Left(c) >= kStructureHeader && PeekU8(c) >> 4 == kVersion; }

bool HasSummedIcmpExtensions(const Cursor& c, bool isCut) {
  if (!HasIcmpExtensionVersion(c) || PeekU16(c, 2) == 0) return false;
  // Where the capture ends before the message there is no sum: an object of a known class bears it out.
  if (isCut) {
    return PeekU16(c) == kVersion << 12 && PeekU16(c, 4) >= kObjectHeader && LookupName(kClassNames, PeekU8(c, 6), nullptr);
  }
  return SumWords(0, c.at, Left(c)) == 0xFFFF;
}

void DecodeIcmpExtensions(const Place& in, Cursor c) {
  const Field whole = Ahead(c, Left(c));
  const Field head = TakeU16(c);
  if (!head.here) return;
  const Place under = Under(in, AddLine(in, whole, "ICMP Extensions: %u bytes", whole.length));
  const BitPicture version = BitsOf(head, 0, 4), reserved = BitsOf(head, 4, 12);
  AddBitLine(under, head, "%s: Version = %u", version.picture, version.value);
  AddBitLine(under, head, "%s: Reserved", reserved.picture);
  const Field checksum = TakeU16(c);
  AddChecksumLine(under, checksum, "Checksum:", checksum.value == 0 ? "Not Present" : nullptr,
                  SumWords(0, whole.bytes, whole.length), BadChecksum::kAlone);
  if (version.value != kVersion) {
    AddBlock(under, Rest(c), "Extension Data");
    return;
  }
  Loop loop;
  for (uint32_t number = 1; MoreAt(under, c, loop) && DecodeObject(under, c, number); ++number) {
  }
}

}  // namespace qxview
