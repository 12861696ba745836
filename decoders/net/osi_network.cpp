// OSI's network layer: the connectionless protocol CLNP (ISO 8473) and the exchange of end and intermediate systems ES-IS
// (ISO 9542): datagrams between network addresses, and who has which.
//
//   CLNP:   0x81   header length   version   lifetime   flags and type   segment length (2)   checksum (2)   addresses
//   ES-IS:  0x82   header length   version   0   type   holding time (2)   checksum (2)   addresses
#include "decoders/common/fletcher.h"
#include "decoders/net/isis.h"

namespace qxview {
namespace {

struct Osi {
  Field length, type, flags, size;
};

constexpr auto kClnpTypeNames = SortedNames({
    {1, "Error Report"}, {28, "Data"}, {29, "Multicast Data"}, {30, "Echo Request"}, {31, "Echo Reply"}});
constexpr auto kEsisTypeNames = SortedNames({{2, "End System Hello"}, {4, "Intermediate System Hello"}, {6, "Redirect"}});
constexpr auto kOptionNames = SortedNames({
    {0xC3, "Quality of Service"}, {0xC4, "Prefix-Based Scope Control"}, {0xC5, "Security"}, {0xC6, "ES Configuration Timer"},
    {0xC8, "Source Routing"}, {0xCB, "Recording of Route"}, {0xCC, "Padding"}, {0xCD, "Priority"}, {0xCE, "Padding"},
    {0xCF, "Address Mask"}, {0xE1, "Address Mask"}, {0xE2, "SNPA Mask"}});

constexpr auto kClnpHead = Rows<Osi>({
    Hex(1, "Network Layer Protocol Identifier"), Number(1, "Header Length").Into(&Osi::length), Number(1, "Version"),
    Number(1, "Lifetime", " half seconds"), Hex(1, "Flags and Type"), Flag(0, "Segmentation Permitted").Into(&Osi::flags),
    Flag(1, "More Segments"), Flag(2, "Error Report Requested"), Bits(3, 5, "Type", kClnpTypeNames).Into(&Osi::type),
    Number(2, "Segment Length")});
constexpr auto kSegmentation = Rows<Osi>({
    Number(2, "Data Unit Identifier"), Number(2, "Segment Offset"), Number(2, "Total Length")});
constexpr auto kEsisHead = Rows<Osi>({
    Hex(1, "Network Layer Protocol Identifier"), Number(1, "Header Length").Into(&Osi::length), Number(1, "Version"),
    Number(1, "Reserved"), Hex(1, "Type Octet"), Bits(0, 3, "Reserved Bits"), Bits(3, 5, "Type", kEsisTypeNames).Into(&Osi::type),
    Number(2, "Holding Time", " seconds")});

// An address behind its length.
void ShowAddress(const Place& in, Cursor& c, const char* label) {
  const Field length = TakeU8(c);
  AddLine(in, length, "%s Length: %u", label, length.value);
  Cursor part = TakeCursor(c, length.value);
  const Field address = Rest(part);
  AddLine(in, address, "%s: %s", label, OsiAddressText(address));
  AppendToParent(in, address, ", %s", OsiAddressText(address));
}

void ShowOptions(const Place& in, Cursor& c) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) {
    const uint32_t code = PeekU8(c);
    Cursor part = TakeCursor(c, 2 + static_cast<int32_t>(PeekU8(c, 1)));
    const Place under = Under(in, AddLine(in, Ahead(part, Left(part)), "Option: %s", LookupName(kOptionNames, code)));
    const Field type = TakeU8(part), length = TakeU8(part), value = Rest(part);
    AddLine(under, type, "Option Code: %u = %s", code, LookupName(kOptionNames, code));
    AddLine(under, length, "Option Length: %u", length.value);
    AddLine(under, value, "Option Value: %s", HexText(value));
  }
}

void ShowEsisAddresses(const Place& in, Cursor& c, uint32_t type) {
  enum : uint32_t { kEndHello = 2, kIntermediateHello = 4, kRedirect = 6 };
  if (type == kEndHello) {
    const Field count = TakeU8(c);
    AddLine(in, count, "Number of Source Addresses: %u", count.value);
    Loop loop;
    for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop); ++i) ShowAddress(in, c, "Source Address");
  } else if (type == kIntermediateHello) {
    ShowAddress(in, c, "Network Entity Title");
  } else if (type == kRedirect) {
    ShowAddress(in, c, "Destination Address");
    const Field length = TakeU8(c);
    AddLine(in, length, "Subnetwork Address Length: %u", length.value);
    Cursor part = TakeCursor(c, length.value);
    const Field address = Rest(part);
    AddLine(in, address, "Subnetwork Address: %s", HexText(address));
    ShowAddress(in, c, "Network Entity Title");
  }
}

}  // namespace

int32_t DecodeEsis(const Place& at, Cursor c) {
  constexpr uint32_t kDiscriminator = 0x82;
  constexpr int32_t kHeadSize = 9;
  const int32_t length = static_cast<int32_t>(PeekU8(c, 1));
  if (Left(c) < kHeadSize || PeekU8(c) != kDiscriminator || length < kHeadSize) return 0;
  Cursor header = TakeCursor(c, length);
  const Field whole = Left(header) == length ? PeekBytes(header, 0, length) : Field{};
  const Place in = Under(at, AddLine(at, Ahead(header, Left(header)), "ES-IS %s", LookupName(kEsisTypeNames, PeekU8(header, 4) & 31)));
  const Osi osi = ShowRows(in, header, kEsisHead);
  AddFletcherLine(in, TakeU16(header), whole);
  ShowEsisAddresses(in, header, osi.type.value);
  ShowOptions(in, header);
  header.ranShort = false;
  AddBlock(in, Rest(header), "ES-IS Data");
  AddBlock(in, Rest(c), "Padding");
  return 1;
}

int32_t DecodeClnp(const Place& at, Cursor c) {
  constexpr uint32_t kDiscriminator = 0x81, kErrorReport = 1;
  constexpr int32_t kHeadSize = 9;
  const int32_t length = static_cast<int32_t>(PeekU8(c, 1));
  if (Left(c) < kHeadSize || PeekU8(c) != kDiscriminator || length < kHeadSize) return 0;
  Cursor header = TakeCursor(c, length);
  const Field whole = Left(header) == length ? PeekBytes(header, 0, length) : Field{};
  const Place in = Under(at, AddLine(at, Ahead(header, Left(header)), "CLNP %s", LookupName(kClnpTypeNames, PeekU8(header, 4) & 31)));
  const Osi osi = ShowRows(in, header, kClnpHead);
  AddFletcherLine(in, TakeU16(header), whole);
  ShowAddress(in, header, "Destination Address");
  ShowAddress(in, header, "Source Address");
  Osi rest = osi;
  if (osi.flags.value && Left(header) >= 6) ShowRows<Osi>(in, header, kSegmentation, rest);
  ShowOptions(in, header);
  header.ranShort = false;
  AddBlock(in, Rest(header), "CLNP Data");
  AddBlock(in, Rest(c), osi.type.value == kErrorReport ? "Reported Header" : "Transport Data");
  return 1;
}

}  // namespace qxview
