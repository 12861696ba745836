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
    {0xC1, "Reason for Discard"},
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

constexpr auto kFormatNames = SortedNames({
    {0, "Reserved"}, {1, "Source Address Specific"}, {2, "Destination Address Specific"}, {3, "Globally Unique"}});
constexpr auto kReasonNames = SortedNames({
    {0x00, "Reason Not Specified"}, {0x01, "Protocol Procedure Error"}, {0x02, "Incorrect Checksum"},
    {0x03, "Discarded for Congestion"}, {0x04, "Header Syntax Error"}, {0x05, "Segmentation Needed but Not Permitted"},
    {0x06, "Incomplete PDU Received"}, {0x07, "Duplicate Option"}, {0x80, "Destination Address Unreachable"},
    {0x81, "Destination Address Unknown"}, {0x90, "Unspecified Source Routing Error"},
    {0x91, "Syntax Error in Source Routing"}, {0x92, "Unknown Address in Source Routing"},
    {0x93, "Path Not Acceptable"}, {0xA0, "Lifetime Expired in Transit"}, {0xA1, "Lifetime Expired during Reassembly"},
    {0xB0, "Unsupported Option Not Specified"}, {0xB1, "Unsupported Protocol Version"},
    {0xB2, "Unsupported Security Option"}, {0xB3, "Unsupported Source Routing Option"},
    {0xB4, "Unsupported Recording of Route Option"}, {0xC0, "Reassembly Interference"}});
constexpr auto kRouteNames = SortedNames({{0, "Partial"}, {1, "Complete"}});
constexpr auto kQuality = Rows<Osi>({
    Word(1), Bits(0, 2, "QoS Format", kFormatNames), Flag(2, "Reserved"), Flag(3, "Sequencing before Transit Delay"),
    Flag(4, "Congestion Experienced"), Flag(5, "Transit Delay before Cost"),
    Flag(6, "Residual Error before Transit Delay"), Flag(7, "Residual Error before Cost")});
constexpr auto kSecurity = Rows<Osi>({Word(1), Bits(0, 2, "Security Format", kFormatNames), Bits(2, 6, "Reserved")});
constexpr auto kTimer = Rows<Osi>({Number(2, "Configuration Timer", " seconds").Note(", %u seconds")});
constexpr auto kPriority = Rows<Osi>({Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Priority").Note(", %u")});
constexpr auto kReason = Rows<Osi>({Number(1, "Discard Reason", kReasonNames).Note(", %s"), Number(1, "Error Location")});
constexpr auto kRoute = Rows<Osi>({Number(1, "Route Type", kRouteNames).Note(", %s"), Number(1, "Next Title Offset")});

// What an option says, by its code; the rest are bytes.
void ShowOption(const Place& in, Cursor& c, uint32_t code) {
  enum : uint32_t {
    kDiscard = 0xC1, kServiceQuality = 0xC3, kScope = 0xC4, kGuard = 0xC5, kConfiguration = 0xC6, kSourceRoute = 0xC8,
    kRecordedRoute = 0xCB, kUrgency = 0xCD,
  };
  Osi osi{};
  const auto show = [&](RowSpan<Osi> rows) { ShowRows<Osi>(in, c, rows, osi); };
  Loop loop;
  switch (code) {
    case kDiscard: show(kReason); break;
    case kServiceQuality: show(kQuality); break;
    case kGuard: show(kSecurity); break;
    case kConfiguration: show(kTimer); break;
    case kUrgency: show(kPriority); break;
    case kScope:
      while (MoreAt(in, c, loop)) ShowAddress(in, c, "Address Prefix");
      break;
    case kSourceRoute: case kRecordedRoute:
      show(kRoute);
      while (MoreAt(in, c, loop)) ShowAddress(in, c, "Network Entity Title");
      break;
    default: break;
  }
  c.ranShort = false;
  const Field value = Rest(c);
  if (value.length || !value.here) AddLine(in, value, "Option Value: %s", HexText(value));
}

void ShowOptions(const Place& in, Cursor& c) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) {
    const uint32_t code = PeekU8(c);
    Cursor part = TakeCursor(c, 2 + static_cast<int32_t>(PeekU8(c, 1)));
    const Place under = Under(in, AddLine(in, Ahead(part, Left(part)), "Option: %s", LookupName(kOptionNames, code)));
    const Field type = TakeU8(part), length = TakeU8(part);
    AddLine(under, type, "Option Code: %u = %s", code, LookupName(kOptionNames, code));
    AddLine(under, length, "Option Length: %u", length.value);
    ShowOption(under, part, code);
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
