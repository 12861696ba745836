// The options of IPv4 (RFC 791, RFC 1108, RFC 2113, FIPS 188): what a datagram asks of the routers on its way.
//
//   0  type: copied (1 bit), class (2), number (5)   1  length of the whole option   2  data
//
// The end of the list and no operation are the type byte alone.
#include "decoders/net/ipv4_parts.h"

namespace qxview {
namespace {

// By the whole type byte (IANA, IP Option Numbers); the older options are known with and without the copied bit.
constexpr auto kOptionNames = SortedNames({
    {0, "End of Options List"}, {1, "No Operation"}, {2, "Security"}, {3, "Loose Source Routing"},
    {4, "Internet Timestamp"}, {7, "Record Route"}, {8, "Stream ID"}, {9, "Strict Source Routing"},
    {10, "Experimental Measurement"}, {11, "MTU Probe"}, {12, "MTU Reply"}, {15, "ENCODE"}, {25, "Quick-Start"},
    {30, "RFC3692-style Experiment"}, {68, "Internet Timestamp"}, {82, "Traceroute"},
    {94, "RFC3692-style Experiment"}, {129, "No Operation"}, {130, "Security"}, {131, "Loose Source Routing"},
    {133, "DoD Extended Security"}, {134, "Commercial IP Security"}, {135, "Record Route"}, {136, "Stream ID"},
    {137, "Strict Source Routing"}, {142, "Experimental Access Control"}, {144, "IMI Traffic Descriptor"},
    {145, "Extended Internet Protocol"}, {147, "Address Extension"}, {148, "IP Router Alert"},
    {149, "Selective Directed Broadcast"}, {151, "Dynamic Packet State"}, {152, "Upstream Multicast Packet"},
    {158, "RFC3692-style Experiment"}, {205, "Experimental Flow Control"}, {222, "RFC3692-style Experiment"}});

constexpr auto kSecurityLevels = SortedNames({
    {0x0000, "Security: Unclassified"}, {0x5E26, "Security: PROG"}, {0x6BC5, "Security: Top Secret"},
    {0x789A, "Security: EFTO"}, {0xAF13, "Security: Restricted"}, {0xBC4D, "Security: MMMM"},
    {0xD788, "Security: Secret"}, {0xF135, "Security: Confidential"}});

enum OptionType : uint32_t {
  kEndOfList = 0, kNoOperation = 1, kNoOperationCopied = 129, kSecurity = 2, kSecurityCopied = 130, kLooseRoute = 3,
  kLooseRouteCopied = 131, kTimestampPlain = 4, kTimestamp = 68, kRecordRoute = 7, kRecordRouteCopied = 135,
  kStreamId = 8, kStreamIdCopied = 136, kStrictRoute = 9, kStrictRouteCopied = 137, kMeasurement = 10,
  kExtendedSecurity = 133, kCommercialSecurity = 134, kRouterAlert = 148,
};

struct Option {
  Place in;       // under the option's line
  Field type;
  Field length;   // not here for the one-byte options
};

// The line of an option, its type byte's lines, and the name on the line with the class behind it.
Option AddOption(const Place& in, const Field& type, const Field& length, const char* name) {
  constexpr const char* kClassNames[] = {"Control", "Reserved", "Debugging and Measurement", "Reserved"};
  constexpr const char* kShortClassNames[] = {"Control", "Reserved", "Debugging", "Reserved"};
  const LineHandle line = AddLine(in, type, "Option:");
  const Option option{Under(in, line), type, length};
  const Place bits = Under(option.in, AddLine(option.in, type, "Option-Type:"));
  const BitPicture copied = BitsOf(type, 0, 1), optionClass = BitsOf(type, 1, 2), number = BitsOf(type, 3, 5);
  AddBitLine(bits, type, "%s: Copied = %s", copied.picture, TrueOrFalse(copied.value));
  AddBitLine(bits, type, "%s: Class  = %s", optionClass.picture, kClassNames[optionClass.value]);
  AddBitLine(bits, type, "%s: Number = %u", number.picture, number.value);
  AppendToLine(in, line, " %s, Class  = %s", name, kShortClassNames[optionClass.value]);
  return option;
}

Field AddLength(const Option& option) {
  AddLine(option.in, option.length, "Option Length: %u", option.length.value);
  return option.length;
}

void DecodeSecurity(const Option& option, Cursor c) {
  AddLength(option);
  const Field level = TakeU16(c);
  AddLine(option.in, level, "%s", LookupName(kSecurityLevels, level.value, "Security: Undefined"));
  const Field compartments = TakeU16(c);
  AddLine(option.in, compartments, "Compartments: %u", compartments.value);
  const Field restrictions = TakeU16(c);
  AddLine(option.in, restrictions, "Handling Restrictions: %u", restrictions.value);
  const Field control = TakeU24(c);
  // One conversion only: the line shows the code's first byte and the rest of the text as it stands.
  AddLine(option.in, control, "Transmission Control Code: 0x%.02X.02X.02X", control.value >> 16);
}

enum class Route { kLoose, kStrict, kRecord };

// Source routes and recorded routes: a pointer, counted from 1 at the option's type, into a list of addresses.
void DecodeRoute(const Option& option, Cursor c, Route route) {
  constexpr uint32_t kFirstAddressPosition = 4;
  AddLength(option);
  const Field pointer = TakeU8(c);
  AddLine(option.in, pointer, "Pointer: %u", pointer.value);
  Field data = Rest(c);
  const Place in = Under(option.in, AddLine(option.in, data, "Address Data"));
  Cursor addresses = CursorOver(data);
  Loop loop;
  for (uint32_t number = 1; MoreAt(in, addresses, loop); ++number) {
    const uint32_t position = kFirstAddressPosition + 4 * (number - 1);
    const Field address = TakeBytes(addresses, 4);
    if (!address.here) break;
    if (route == Route::kStrict) {
      AddLine(in, address, "Route Address %u: %s", number, IPv4Text(address.bytes));   // no "#": strict routes alone
    } else if (route == Route::kRecord && position == pointer.value) {
      AddLine(in, address, "Route Address #%u: %s (Next available address position as indicated by pointer offset)",
              number, IPv4Text(address.bytes));
    } else {
      AddLine(in, address, "Route Address #%u: %s", number, IPv4Text(address.bytes));
    }
  }
}

void DecodeStreamId(const Option& option, Cursor c) {
  AddLength(option);
  const Field stream = TakeU16(c);
  AddLine(option.in, stream, "Stream ID: 0x%.04X", stream.value);
}

enum TimestampFlag : uint32_t { kTimesOnly = 0, kTimesAndAddresses = 1, kPrespecified = 3 };

void AddTimestampStatus(const Place& in, const Field& status) {
  const Place bits = Under(in, AddLine(in, status, "Status:"));
  const BitPicture overflow = BitsOf(status, 0, 4), flag = BitsOf(status, 4, 4);
  AddBitLine(bits, status, "%s: Overflow = %u", overflow.picture, overflow.value);
  AppendToParent(bits, status, " Overflow = %u", overflow.value);
  switch (flag.value) {
    case kTimesOnly:
      AddBitLine(bits, status, "%s: %u = Time Stamps Only", flag.picture, flag.value);
      return AppendToParent(bits, status, ", Time Stamps Only");
    case kTimesAndAddresses:
      AddBitLine(bits, status, "%s: %u = Time Stamps and Internet Address", flag.picture, flag.value);
      return AppendToParent(bits, status, ", Time Stamps  and Internet Address");   // two blanks, as ever
    case kPrespecified:
      AddBitLine(bits, status, "%s: %u = Prespecified", flag.picture, flag.value);
      return AppendToParent(bits, status, ", Prespecified");
    default: AddBitLine(bits, status, "%s: %u = Undefined", flag.picture, flag.value);
  }
}

void DecodeTimestamp(const Option& option, Cursor c) {
  AddLength(option);
  const Field pointer = TakeU8(c);
  AddLine(option.in, pointer, "Pointer: %u", pointer.value);
  const Field status = TakeU8(c);
  if (!status.here) return;
  AddTimestampStatus(option.in, status);
  const uint32_t flag = status.value & 15;
  const Field data = Rest(c);
  if (flag != kTimesOnly && flag != kTimesAndAddresses && flag != kPrespecified) {
    AddBlock(option.in, data, "Timestamp Data");
    return;
  }
  const Place in = Under(option.in, AddLine(option.in, data, "Timestamp Data"));
  Cursor stamps = CursorOver(data);
  Loop loop;
  while (MoreAt(in, stamps, loop)) {
    if (flag != kTimesOnly) {
      const Field address = TakeBytes(stamps, 4);
      if (!address.here) break;
      AddLine(in, address, "IP Address: %u.%u.%u.%u", PeekU8(address), PeekU8(address, 1), PeekU8(address, 2),
              PeekU8(address, 3));
    }
    const Field time = TakeU32(stamps);
    AddLine(in, time, "Timestamp: %u ms", time.value);
  }
}

void DecodeRouterAlert(const Option& option, Cursor c) {
  AddLength(option);
  const Field status = TakeU16(c);
  AddLine(option.in, status, "Alert Status: %u = %s", status.value,
          status.value == 0 ? "Router Shall Examine Packet" : "Reserved");
  if (status.value == 0) AppendToParent(option.in, status, " (Examine Packet)");
}

enum TagType : uint32_t { kBitMapped = 1, kEnumerated = 2, kRange = 5 };

void AddCategories(const Place& in, Cursor c) {
  Loop loop;
  for (uint32_t number = 1; MoreAt(in, c, loop); ++number) {
    const Field category = TakeU16(c);
    AddLine(in, category, "Enumerated Category %u: %u", number, category.value);
  }
}

void AddCategoryRanges(const Place& in, Cursor c) {
  Loop loop;
  for (uint32_t number = 1; MoreAt(in, c, loop); ++number) {
    const Place range = Under(in, AddLine(in, Ahead(c, Left(c) < 4 ? Left(c) : 4), "Category Range %u:", number));
    const Field high = TakeU16(c);
    AddLine(range, high, "High Category: %u", high.value);
    const Field low = TakeU16(c);
    AddLine(range, low, "Low Category: %u", low.value);
  }
}

// One tag of the commercial security option; its own length counts its type byte. False when there is no way to a next.
bool DecodeTag(const Place& in, Cursor& tags) {
  constexpr int32_t kTagHeader = 2;
  const uint32_t type = PeekU8(tags);
  const int32_t declared = Left(tags) > 1 ? PeekU8(tags, 1) : 0;
  Cursor tag = TakeCursor(tags, declared > kTagHeader ? declared : kTagHeader);
  const Field cover = Ahead(tag, Left(tag));
  const bool known = type == kBitMapped || type == kEnumerated || type == kRange;
  const char* title = type == kBitMapped    ? "Bit Mapped"
                      : type == kEnumerated ? "Enumerated"
                      : type == kRange      ? "Range"
                                            : "Reserved";
  const Place under = Under(in, AddLine(in, cover, "%s Tag", title));
  const Field typeByte = TakeU8(tag), length = TakeU8(tag);
  AddLine(under, typeByte, "Tag Type: %u = %s", typeByte.value, title);
  AddLine(under, length, "Length: %u", length.value);
  if (!known) {
    AddBlock(under, Rest(tag), "Reserved Data");
    return declared >= kTagHeader;
  }
  const Field alignment = TakeU8(tag);
  AddLine(under, alignment, "Allignment Octet: 0x%.02X", alignment.value);   // users search for this spelling
  const Field sensitivity = TakeU8(tag);
  AddLine(under, sensitivity, "Sensitivity Level: %u", sensitivity.value);
  if (type == kBitMapped) {
    AddBlock(under, Rest(tag), "Bit Map Data");
  } else if (type == kEnumerated) {
    AddCategories(under, tag);
  } else {
    AddCategoryRanges(under, tag);
  }
  return declared >= kTagHeader;
}

void DecodeCommercialSecurity(const Option& option, Cursor c) {
  AddLength(option);
  const Field domain = TakeU32(c);
  AddLine(option.in, domain, "Domain ID: %u", domain.value);
  Loop loop;
  while (MoreAt(option.in, c, loop) && DecodeTag(option.in, c)) {
  }
}

// An option of a length byte and data that are shown as they are.
void DecodeOpaque(const Option& option, Cursor c, const char* title) {
  AddLength(option);
  AddBlock(option.in, Rest(c), title);
}

void DecodeOptionBody(const Option& option, const Cursor& body) {
  switch (option.type.value) {
    case kSecurity: case kSecurityCopied: return DecodeSecurity(option, body);
    case kLooseRoute: case kLooseRouteCopied: return DecodeRoute(option, body, Route::kLoose);
    case kStrictRoute: case kStrictRouteCopied: return DecodeRoute(option, body, Route::kStrict);
    case kRecordRoute: case kRecordRouteCopied: return DecodeRoute(option, body, Route::kRecord);
    case kStreamId: case kStreamIdCopied: return DecodeStreamId(option, body);
    case kMeasurement: return DecodeOpaque(option, body, "Option Data");
    case kTimestamp: case kTimestampPlain: return DecodeTimestamp(option, body);
    case kRouterAlert: return DecodeRouterAlert(option, body);
    case kExtendedSecurity: return DecodeOpaque(option, body, "Additional Security Data");
    case kCommercialSecurity: return DecodeCommercialSecurity(option, body);
    default: AddBlock(option.in, option.length.value > 1 ? Ahead(body, Left(body)) : Field{}, "Option Data");
  }
}

// One option; the cursor stands behind it then. False at the end of the list and when the length leads nowhere.
bool DecodeOption(const Place& in, Cursor& area) {
  const Cursor start = area;
  const Field type = TakeU8(area);
  const char* name = LookupName(kOptionNames, type.value, kUndefined);
  if (type.value == kEndOfList) {
    const Option end = AddOption(in, type, Field{}, name);
    AddBlock(end.in, Rest(area), "Option Padding");
    return false;
  }
  if (type.value == kNoOperation || type.value == kNoOperationCopied) {
    AddOption(in, type, Field{}, name);
    return true;
  }
  const Field length = TakeU8(area);
  const Option option = AddOption(in, type, length, name);
  Cursor body = area;
  DecodeOptionBody(option, TakeCursor(body, static_cast<int64_t>(length.value) - 2));
  if (length.value == 0) {
    SetRange(in, option.in.parent, start.offset, area.offset - start.offset);
    return false;
  }
  area = start;
  TakeCursor(area, length.value);
  SetRange(in, option.in.parent, start.offset, area.offset - start.offset);
  return true;
}

}  // namespace

void DecodeIPv4Options(const Place& in, Cursor area) {
  Loop loop;
  while (MoreAt(in, area, loop) && DecodeOption(in, area)) {
  }
}

}  // namespace qxview
