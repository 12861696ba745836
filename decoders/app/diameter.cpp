// Diameter (RFC 6733; applications: RFC 7155, 4072, 4740, 5447, 5777, 8506, 3GPP TS 29.229, 29.272, 29.212, 29.214 and
// more): may this user or device, what may it use, and what did it use? Each message of a segment is shown, as far as
// it is there.
//
//   version (1) length (3) flags (1) command (3) application (4) hop-by-hop (4) end-to-end (4) AVPs...
//   AVP: code (4) flags (1) length of header and data (3) [vendor (4)] data, filled up to four
#include "core/rows.h"
#include "core/times.h"
#include "decoders/app/diameter_names.h"
#include "decoders/common/eap.h"
#include "decoders/common/mobile_identity.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 20, kAvpHeaderSize = 8;
constexpr uint32_t kNtpTo1970 = 2208988800u;
constexpr uint32_t kVendor3gpp = 10415;
constexpr uint32_t kResultCode = 268, kExperimentalResult = 298, kEapPayload = 462;

enum class AvpType : uint8_t {
  kOctets, kUnsigned32, kUnsigned64, kInteger32, kInteger64, kFloat32, kFloat64, kText, kIdentity, kTime, kAddress,
  kIPv4, kEnumerated, kGrouped
};
struct Avp {
  uint32_t vendor, code;
  const char* name;
  AvpType type;
};
struct AvpValue {
  uint32_t vendor, code, value;
  const char* name;
};
constexpr Avp kAvps[] = {
#define QX_AVP(vendor, code, name, type) {vendor, code, name, AvpType::k##type},
#define QX_AVP_VALUE(...)
#include "decoders/app/diameter_table.inc"
#undef QX_AVP
#undef QX_AVP_VALUE
};
constexpr AvpValue kAvpValues[] = {
#define QX_AVP(...)
#define QX_AVP_VALUE(vendor, code, value, name) {vendor, code, value, name},
#include "decoders/app/diameter_table.inc"
#undef QX_AVP
#undef QX_AVP_VALUE
};

// Both tables are in order.
template <class Row, size_t kRows, class IsBefore>
const Row* FindRow(const Row (&rows)[kRows], const IsBefore& isBefore) {
  size_t lower = 0, upper = kRows;
  while (lower < upper) {
    const size_t middle = (lower + upper) / 2;
    if (isBefore(rows[middle])) {
      lower = middle + 1;
    } else {
      upper = middle;
    }
  }
  return lower < kRows ? &rows[lower] : nullptr;
}
const Avp* FindAvp(uint32_t vendor, uint32_t code) {
  const Avp* row = FindRow(kAvps, [&](const Avp& avp) {
    return avp.vendor != vendor ? avp.vendor < vendor : avp.code < code;
  });
  return row && row->vendor == vendor && row->code == code ? row : nullptr;
}
// Null for a value without a name.
const char* FindAvpValue(uint32_t vendor, uint32_t code, uint32_t value) {
  const AvpValue* row = FindRow(kAvpValues, [&](const AvpValue& at) {
    return at.vendor != vendor ? at.vendor < vendor : at.code != code ? at.code < code : at.value < value;
  });
  return row && row->vendor == vendor && row->code == code && row->value == value ? row->name : nullptr;
}

struct Diameter {
  Field length, flags, command, application, code, avpFlags, avpLength, vendor;
};

constexpr auto kHeader = Rows<Diameter>({
    Number(1, "Version"), Number(3, "Message Length").Into(&Diameter::length),
    Hex(1, "Command Flags").Into(&Diameter::flags), Flag(0, "Request"), Flag(1, "Proxiable"), Flag(2, "Error"),
    Flag(3, "Potentially Re-transmitted Message"), Bits(4, 4, "Reserved"),
    Number(3, "Command Code", kDiameterCommandNames).Into(&Diameter::command),
    Number(4, "Application ID", kDiameterApplicationNames).Into(&Diameter::application),
    Hex(4, "Hop-by-Hop Identifier"), Hex(4, "End-to-End Identifier")});
constexpr auto kAvpFlags = Rows<Diameter>({
    Hex(1, "AVP Flags").Into(&Diameter::avpFlags), Flag(0, "Vendor-Specific"), Flag(1, "Mandatory"),
    Flag(2, "Protected"), Bits(3, 5, "Reserved"), Number(3, "AVP Length").Into(&Diameter::avpLength)});
constexpr auto kVendor = Rows<Diameter>({Number(4, "Vendor-ID", kDiameterVendorNames).Into(&Diameter::vendor)});

// Values, titled by their AVP's name.
constexpr auto kOctets = Rows<Diameter>({Bytes(0, nullptr)});
constexpr auto kUnsigned32 = Rows<Diameter>({Number(4, nullptr).Note(", %u")});
constexpr auto kUnsigned64 = Rows<Diameter>({Number(8, nullptr).Note(", %I64u")});
constexpr auto kInteger32 = Rows<Diameter>({Signed(4, nullptr).Note(", %d")});
constexpr auto kInteger64 = Rows<Diameter>({Signed(8, nullptr).Note(", %I64d")});
constexpr auto kFloat32 = Rows<Diameter>({Float(4, nullptr).Note(", %s")});
constexpr auto kFloat64 = Rows<Diameter>({Float(8, nullptr).Note(", %s")});
constexpr auto kText = Rows<Diameter>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kAddress4 = Rows<Diameter>({IPv4(nullptr).Note(", %s")});
constexpr auto kAddress6 = Rows<Diameter>({IPv6(nullptr).Note(", %s")});
constexpr auto kApplication = Rows<Diameter>({Number(4, nullptr, kDiameterApplicationNames).Note(", %s")});
constexpr auto kVendorValue = Rows<Diameter>({Number(4, nullptr, kDiameterVendorNames).Note(", %s")});
constexpr auto kExperimental = Rows<Diameter>({Number(4, nullptr, kDiameterExperimentalNames).Note(", %s")});
constexpr auto kUlrFlags = Rows<Diameter>({Flags(4, nullptr, kUlrFlagNames)});
constexpr auto kUlaFlags = Rows<Diameter>({Flags(4, nullptr, kUlaFlagNames)});
constexpr auto kDsrFlags = Rows<Diameter>({Flags(4, nullptr, kDsrFlagNames)});
constexpr auto kDsaFlags = Rows<Diameter>({Flags(4, nullptr, kDsaFlagNames)});
constexpr auto kIdaFlags = Rows<Diameter>({Flags(4, nullptr, kIdaFlagNames)});
constexpr auto kPuaFlags = Rows<Diameter>({Flags(4, nullptr, kPuaFlagNames)});
constexpr auto kNorFlags = Rows<Diameter>({Flags(4, nullptr, kNorFlagNames)});
constexpr auto kIdrFlags = Rows<Diameter>({Flags(4, nullptr, kIdrFlagNames)});
constexpr auto kClrFlags = Rows<Diameter>({Flags(4, nullptr, kClrFlagNames)});

constexpr auto kAddressFamilyNames = SortedNames({{1, "IPv4"}, {2, "IPv6"}, {8, "E.164"}});

// AVPs whose values say more than their type.
struct SpecialAvp {
  uint32_t vendor, code;
  RowSpan<Diameter> rows;
};
const SpecialAvp* FindSpecial(uint32_t vendor, uint32_t code) {
  static constexpr SpecialAvp kSpecial[] = {
      {0, 258, kApplication}, {0, 259, kApplication}, {0, 265, kVendorValue}, {0, 266, kVendorValue},
      {0, kExperimentalResult, kExperimental},
      {kVendor3gpp, 1405, kUlrFlags}, {kVendor3gpp, 1406, kUlaFlags}, {kVendor3gpp, 1421, kDsrFlags},
      {kVendor3gpp, 1422, kDsaFlags}, {kVendor3gpp, 1441, kIdaFlags}, {kVendor3gpp, 1442, kPuaFlags},
      {kVendor3gpp, 1443, kNorFlags}, {kVendor3gpp, 1490, kIdrFlags}, {kVendor3gpp, 1638, kClrFlags}};
  for (const SpecialAvp& special : kSpecial) {
    if (special.vendor == vendor && special.code == code) return &special;
  }
  return nullptr;
}

// Octets that hold digits in halves, the lower one first: numbers of the telephone network (3GPP TS 29.329, 29.272).
bool IsDigits(uint32_t vendor, uint32_t code) {
  return vendor == kVendor3gpp && (code == 701 || code == 1433 || code == 1489 || code == 1643 || code == 1645);
}
void AddAddress(const Place& in, Cursor& c, const char* name) {
  const Field family = TakeU16(c);
  AddLine(in, family, "Address Family: %u = %s", family.value, LookupName(kAddressFamilyNames, family.value));
  Diameter out{};
  const bool isFour = family.value == 1 && Left(c) == 4, isSix = family.value == 2 && Left(c) == 16;
  ShowRows<Diameter>(in, c, isFour ? RowSpan<Diameter>(kAddress4) : isSix ? RowSpan<Diameter>(kAddress6)
                     : family.value == 8 ? RowSpan<Diameter>(kText) : RowSpan<Diameter>(kOctets), out, name);
}

void AddTime(const Place& in, Cursor& c, const char* name) {
  const Field field = TakeU32(c);
  if (!field.here) return;
  // Above the top bit seconds since 1900, below it since 2036 (RFC 6733 4.3.1, RFC 5905).
  const int64_t seconds = int64_t{field.value} + (field.value & 0x80000000 ? 0 : int64_t{1} << 32) - kNtpTo1970;
  AddLine(in, field, "%s: %s", name, UtcText(seconds));
  AppendToParent(in, field, ", %s", UtcText(seconds));
}

void ShowAvps(const Place& in, Cursor& c, int32_t depth);

int32_t SizeOf(AvpType type) {
  switch (type) {
    case AvpType::kUnsigned32: case AvpType::kInteger32: case AvpType::kFloat32: case AvpType::kTime:
    case AvpType::kEnumerated: case AvpType::kIPv4: return 4;
    case AvpType::kUnsigned64: case AvpType::kInteger64: case AvpType::kFloat64: return 8;
    default: return -1;
  }
}

RowSpan<Diameter> RowsOf(AvpType type) {
  switch (type) {
    case AvpType::kUnsigned32: return kUnsigned32;
    case AvpType::kUnsigned64: return kUnsigned64;
    case AvpType::kInteger32: return kInteger32;
    case AvpType::kInteger64: return kInteger64;
    case AvpType::kFloat32: return kFloat32;
    case AvpType::kFloat64: return kFloat64;
    case AvpType::kText:
    case AvpType::kIdentity: return kText;
    case AvpType::kIPv4: return kAddress4;
    default: return kOctets;
  }
}

void ShowValue(const Place& in, Cursor& c, uint32_t vendor, uint32_t code, const Avp* avp, int32_t depth) {
  const char* name = avp ? avp->name : "Data";
  AvpType type = avp ? avp->type : AvpType::kOctets;
  if (SizeOf(type) >= 0 && SizeOf(type) != Left(c)) type = AvpType::kOctets;   // cut, or not what it is said to be
  Diameter out{};
  const SpecialAvp* special = Left(c) == 4 ? FindSpecial(vendor, code) : nullptr;
  if (special) {
    ShowRows<Diameter>(in, c, special->rows, out, name);
  } else if (type == AvpType::kGrouped && depth < kDeepestDiameter) {
    ShowAvps(in, c, depth + 1);
  } else if (type == AvpType::kAddress && Left(c) >= 2) {
    AddAddress(in, c, name);
  } else if (type == AvpType::kTime) {
    AddTime(in, c, name);
  } else if (type == AvpType::kEnumerated) {
    const Field value = TakeU32(c);
    const char* valueName = FindAvpValue(vendor, code, value.value);
    if (valueName) {
      AddLine(in, value, "%s: %u = %s", name, value.value, valueName);
      AppendToParent(in, value, ", %s", valueName);
    } else {
      AddLine(in, value, "%s: %u", name, value.value);
      AppendToParent(in, value, ", %u", value.value);
    }
  } else if (vendor == 0 && code == kEapPayload && Left(c) >= kEapHeaderSize) {
    AddEap(in, c);
  } else if (IsDigits(vendor, code) && Left(c) > 0) {
    AddDigits(in, Rest(c), name);
  } else if (vendor == kVendor3gpp && code == 1407 && Left(c) == 3) {
    AddNetwork(in, Rest(c), name);
  } else if (Left(c) > 0) {
    ShowRows<Diameter>(in, c, RowsOf(type), out, name);
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "AVP Data");
}

void ShowAvps(const Place& at, Cursor& c, int32_t depth) {
  Loop loop;
  while (Left(c) >= kAvpHeaderSize && MoreAt(at, c, loop)) {
    const Cursor start = c;
    const bool hasVendor = (PeekU8(c, 4) & 0x80) != 0;
    const uint32_t code = PeekU32(c), length = PeekU24(c, 5), vendor = hasVendor ? PeekU32(c, 8) : 0;
    const int32_t header = hasVendor ? 12 : 8;
    const Avp* avp = FindAvp(vendor, code);
    const char* name = avp ? avp->name : kUnknown;
    Cursor whole = TakeCursor(c, length < static_cast<uint32_t>(header) ? header : length);
    const LineHandle line = AddLine(at, Ahead(start, Left(whole)), "AVP: %s", name);
    const Place in = Under(at, line);
    Diameter out{};
    const Field codeField = TakeU32(whole);
    AddLine(in, codeField, "AVP Code: %u = %s", codeField.value, name);
    ShowRows<Diameter>(in, whole, kAvpFlags, out);
    if (hasVendor) ShowRows<Diameter>(in, whole, kVendor, out);
    if (length >= static_cast<uint32_t>(header)) ShowValue(in, whole, vendor, code, avp, depth);
    const int32_t fill = static_cast<int32_t>((0u - length) & 3);
    if (fill && Left(c) > 0) {
      const Field padding = TakeBytes(c, fill < Left(c) ? fill : Left(c));
      AddLine(in, padding, "Padding: %s", HexText(padding));
    }
  }
  c.ranShort = false;
  AddBlock(at, Rest(c), "AVP Data");
}

bool LooksLikeMessage(const Cursor& c) {
  const uint32_t length = PeekU24(c, 1);
  return Left(c) >= kHeaderSize && PeekU8(c) == 1 && length >= kHeaderSize && (length & 3) == 0 &&
         (PeekU8(c, 4) & 0x0F) == 0;
}

// The result, for the top line; 0 for none in front.
uint32_t PeekResult(Cursor c) {
  TakeBytes(c, kHeaderSize);
  for (int32_t i = 0; i < 8 && Left(c) >= 12; ++i) {
    const uint32_t length = PeekU24(c, 5);
    if (PeekU32(c) == kResultCode && length == 12) return PeekU32(c, 8);
    if (length < kAvpHeaderSize) break;
    TakeBytes(c, static_cast<int64_t>(length) + static_cast<int64_t>((0u - length) & 3));
  }
  return 0;
}

void DecodeMessage(const Place& at, Cursor c) {
  const Diameter ahead = PeekRows(c, kHeader);
  const LineHandle top = AddLine(at, Ahead(c, kHeaderSize), "Diameter: %s-%s, %s",
                                 LookupName(kDiameterCommandNames, ahead.command.value),
                                 ahead.flags.value & 0x80 ? "Request" : "Answer",
                                 LookupName(kDiameterApplicationNames, ahead.application.value));
  const Place in = Under(at, top);
  const char* result = FindAvpValue(0, kResultCode, PeekResult(c));
  if (result) AppendToLine(in, top, ", %s", result);
  ShowRows(in, c, kHeader);
  ShowAvps(in, c, 0);
  CoverBytes(in, c);
}

}  // namespace

int32_t DecodeDiameter(const Place& at, Cursor c) {
  if (!LooksLikeMessage(c)) return 0;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    if (!LooksLikeMessage(c)) {
      AddRawRest(at, c, "Diameter Data");
      break;
    }
    Cursor message = TakeCursor(c, PeekU24(c, 1));
    message.begin = message.offset;
    DecodeMessage(at, message);
  }
  return 1;
}

}  // namespace qxview
