// Charging data records of mobile networks (3GPP TS 32.298, the GPRS charging data types in the basic encoding rules), as
// GTP' carries them: a choice of records, whose fields the numbers of their context tags tell.
//
//   identifier (1 octet, or 1F in it and octets of 7 bits behind it)   length   contents
#include "core/rows.h"
#include "decoders/common/ber_reader.h"
#include "decoders/common/mobile_identity.h"
#include "decoders/common/object_id.h"
#include "decoders/net/gtp.h"
#include "decoders/net/gtp_names.h"

namespace qxview {
namespace {

enum Kind : uint8_t {
  kNumber, kSeconds, kBytes, kText, kFlag, kNull, kDigits, kPhone, kAddress, kAddresses, kTime, kOperator, kPdpType, kDaylight,
  kRetention, kOne, kMany,
};
struct Part;
struct Parts {
  const Part* parts = nullptr;
  int32_t count = 0;
};
struct Part {
  uint16_t tag;
  Kind kind;
  const char* name;
  Names names = {};
  const Parts* below = nullptr;
};
template <size_t kCount>
constexpr Parts PartsOf(const Part (&parts)[kCount]) {
  return {parts, static_cast<int32_t>(kCount)};
}

constexpr auto kTypeNames = SortedNames({
    {18, "SGSN PDP Record"}, {19, "GGSN PDP Record"}, {20, "SGSN MM Record"}, {21, "SGSN SMO Record"},
    {22, "SGSN SMT Record"}, {23, "MT-LCS Record"}, {24, "MO-LCS Record"}, {25, "NI-LCS Record"},
    {26, "SGSN MT-LCS Record"}, {27, "SGSN MO-LCS Record"}, {28, "SGSN NI-LCS Record"}, {70, "eGSN PDP Record"},
    {76, "SGSN MBMS Record"}, {77, "GGSN MBMS Record"}, {84, "S-GW Record"}, {85, "P-GW Record"},
    {86, "GW MBMS Record"}, {92, "TDF Record"}, {95, "IPE Record"}, {96, "ePDG Record"}, {97, "TWAG Record"}});
constexpr auto kClosingNames = SortedNames({
    {0, "Normal Release"}, {1, "Partial Record"}, {4, "Abnormal Release"}, {5, "CAMEL Initiated Call Release"},
    {16, "Volume Limit"}, {17, "Time Limit"}, {18, "Serving Node Change"}, {19, "Maximum Number of Changes"},
    {20, "Management Intervention"}, {21, "Intra-SGSN Intersystem Change"}, {22, "RAT Change"},
    {23, "MS Time Zone Change"}, {24, "SGSN PLMN ID Change"}, {25, "S-GW Change"}, {26, "APN AMBR Change"},
    {27, "MO Exception Data Counter Receipt"}, {52, "Unauthorized Requesting Network"},
    {53, "Unauthorized LCS Client"}, {54, "Position Method Failure"}, {58, "Unknown or Unreachable LCS Client"},
    {59, "List of Downstream Nodes Change"}});
constexpr auto kChangeNames = SortedNames({
    {0, "QoS Change"}, {1, "Tariff Time"}, {2, "Record Closure"}, {3, "Failure Handling Continue Ongoing"},
    {4, "Failure Handling Retry and Terminate Ongoing"}, {5, "Failure Handling Terminate Ongoing"},
    {6, "CGI or SAI Change"}, {7, "RAI Change"}, {8, "Direct Tunnel Establishment"}, {9, "Direct Tunnel Removal"},
    {10, "ECGI Change"}, {11, "TAI Change"}, {12, "User Location Change"}, {13, "User CSG Information Change"},
    {14, "Presence in Reporting Area Change"}, {15, "Removal of Access"}, {16, "Unusability of Access"},
    {17, "Indirect Change"}, {18, "User Plane to UE Change"}, {19, "Serving PLMN Rate Control Change"},
    {20, "PS Data Off Status Change"}, {21, "APN Rate Control Change"}});
constexpr auto kSelectedByNames = SortedNames({
    {0, "Serving Node Supplied"}, {1, "Subscription Specific"}, {2, "APN Specific"}, {3, "Home Default"},
    {4, "Roaming Default"}, {5, "Visiting Default"}, {6, "Fixed Default"}});
constexpr auto kServingNames = SortedNames({
    {0, "SGSN"}, {1, "PMIP S-GW"}, {2, "GTP S-GW"}, {3, "ePDG"}, {4, "HSGW"}, {5, "MME"}, {6, "TWAN"}});

constexpr auto kPdpTypeRows = Rows<NoValues>({
    Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "PDP Type Organization", kGtpOrganizationNames),
    Hex(1, "PDP Type Number", kGtpPdpNames)});
constexpr auto kRetentionRows = Rows<NoValues>({
    Word(1), Bits(0, 1, "Spare"), Bits(1, 1, "Pre-emption Capability"), Bits(2, 4, "Priority Level"), Bits(6, 1, "Spare"),
    Bits(7, 1, "Pre-emption Vulnerability")});

const Part kExtensionParts[] = {{1, kFlag, "Significance"}, {2, kBytes, "Information"}};
const Parts kExtension = PartsOf(kExtensionParts);
const Part kCauses[] = {
    {0, kNumber, "GSM 04.08 Cause"}, {1, kNumber, "GSM 09.02 MAP Error"}, {2, kNumber, "ITU-T Q.767 Cause"},
    {3, kOne, "Network Specific Cause", {}, &kExtension}, {4, kOne, "Manufacturer Specific Cause", {}, &kExtension},
    {5, kNumber, "Position Method Failure Cause"}, {6, kNumber, "Unauthorized LCS Client Cause"}};
const Parts kDiagnostics = PartsOf(kCauses);
const Part kQualityParts[] = {
    {1, kNumber, "QoS Class Identifier (QCI)"}, {2, kNumber, "Maximum Requested Bandwidth Uplink"},
    {3, kNumber, "Maximum Requested Bandwidth Downlink"}, {4, kNumber, "Guaranteed Bit Rate Uplink"},
    {5, kNumber, "Guaranteed Bit Rate Downlink"}, {6, kRetention, "Allocation/Retention Priority"},
    {7, kNumber, "APN Aggregate Maximum Bit Rate Uplink"}, {8, kNumber, "APN Aggregate Maximum Bit Rate Downlink"},
    {9, kNumber, "Extended Maximum Bit Rate Uplink"}, {10, kNumber, "Extended Maximum Bit Rate Downlink"},
    {11, kNumber, "Extended Guaranteed Bit Rate Uplink"}, {12, kNumber, "Extended Guaranteed Bit Rate Downlink"}};
const Parts kQuality = PartsOf(kQualityParts);
const Part kVolumeParts[] = {
    {1, kBytes, "QoS Requested"}, {2, kBytes, "QoS Negotiated"}, {3, kNumber, "Data Volume Uplink"},
    {4, kNumber, "Data Volume Downlink"}, {5, kNumber, "Change Condition", kChangeNames}, {6, kTime, "Change Time"},
    {7, kFlag, "Failure Handling Continue"}, {8, kBytes, "User Location Information"},
    {9, kOne, "EPC QoS Information", {}, &kQuality}, {10, kNumber, "Charging ID"},
    {11, kBytes, "Presence Reporting Area Status"}, {12, kBytes, "User CSG Information"},
    {13, kOne, "Diagnostics", {}, &kDiagnostics}, {15, kNumber, "RAT Type", kGtpRadioNames}};
const Parts kVolume = PartsOf(kVolumeParts);
const Part kServiceParts[] = {
    {1, kNumber, "Rating Group"}, {2, kText, "Charging Rule Base Name"}, {3, kNumber, "Result Code"},
    {4, kNumber, "Local Sequence Number"}, {5, kTime, "Time of First Usage"}, {6, kTime, "Time of Last Usage"},
    {7, kSeconds, "Time Usage"}, {8, kBytes, "Service Condition Change"},
    {9, kOne, "EPC QoS Information", {}, &kQuality}, {10, kAddresses, "Serving Node Address"},
    {12, kNumber, "Data Volume Uplink"}, {13, kNumber, "Data Volume Downlink"}, {14, kTime, "Time of Report"},
    {16, kFlag, "Failure Handling Continue"}, {17, kNumber, "Service Identifier"},
    {18, kBytes, "Furnished Charging Information"}, {19, kBytes, "AF Record Information"},
    {20, kBytes, "User Location Information"}, {21, kBytes, "Event Based Charging Information"},
    {22, kBytes, "Time Quota Mechanism"}, {23, kBytes, "Service Specific Information"},
    {24, kBytes, "3GPP2 User Location Information"}, {25, kText, "Sponsor Identity"},
    {26, kText, "Application Service Provider Identity"}, {27, kText, "ADC Rule Base Name"},
    {28, kBytes, "Presence Reporting Area Status"}, {29, kBytes, "User CSG Information"},
    {31, kBytes, "Related Change of Service Condition"}};
const Parts kService = PartsOf(kServiceParts);

// ---- The records. Numbers below 34 are those of all gateways.

const Part kGatewayParts[] = {
    {0, kNumber, "Record Type", kTypeNames}, {1, kFlag, "Network Initiation"}, {3, kDigits, "Served IMSI"},
    {4, kAddress, "Gateway Address"}, {5, kNumber, "Charging ID"}, {6, kAddresses, "Serving Node Address"},
    {7, kText, "Access Point Name"}, {8, kPdpType, "PDP Type"}, {9, kAddress, "Served PDP Address"},
    {11, kFlag, "Dynamic Address"}, {12, kMany, "Traffic Volume", {}, &kVolume}, {13, kTime, "Record Opening Time"},
    {14, kSeconds, "Duration"}, {15, kNumber, "Cause for Record Closing", kClosingNames},
    {16, kOne, "Diagnostics", {}, &kDiagnostics}, {17, kNumber, "Record Sequence Number"}, {18, kText, "Node ID"},
    {19, kMany, "Record Extension", {}, &kExtension}, {20, kNumber, "Local Sequence Number"},
    {21, kNumber, "APN Selection Mode", kGtpSelectionNames}, {22, kPhone, "Served MSISDN"},
    {23, kBytes, "Charging Characteristics"}, {24, kNumber, "Charging Characteristics Selection Mode", kSelectedByNames},
    {25, kNull, "IMS Signalling Context"}, {26, kBytes, "External Charging ID"},
    {27, kOperator, "Serving Node PLMN"}, {28, kBytes, "Furnished Charging Information"},
    {29, kDigits, "Served IMEI(SV)"}, {30, kNumber, "RAT Type", kGtpRadioNames}, {31, kDaylight, "MS Time Zone"},
    {32, kBytes, "User Location Information"}, {33, kBytes, "CAMEL Charging Information"},
    {34, kMany, "Service Data", {}, &kService}, {35, kMany, "Serving Node Type", kServingNames}};
const Part kServingParts[] = {
    {34, kFlag, "S-GW Change"}, {36, kAddress, "P-GW Address"}, {37, kOperator, "P-GW PLMN"}, {38, kTime, "Start Time"},
    {39, kTime, "Stop Time"}, {40, kNumber, "PDN Connection Charging ID"}, {41, kNull, "IMSI Unauthenticated"},
    {42, kBytes, "User CSG Information"}, {43, kAddress, "Served PDP Address Extension"},
    {44, kNull, "Low Priority"}, {47, kFlag, "Dynamic Address Extension"}, {48, kAddress, "Gateway IPv6 Address"},
    {49, kAddresses, "Serving Node IPv6 Address"}, {50, kAddress, "P-GW IPv6 Address"}, {51, kNull, "Retransmission"}};
const Part kPacketGatewayParts[] = {
    {36, kBytes, "Served MN NAI"}, {37, kOperator, "P-GW PLMN"}, {38, kTime, "Start Time"}, {39, kTime, "Stop Time"},
    {40, kText, "Served 3GPP2 MEID"}, {41, kNumber, "PDN Connection Charging ID"}, {42, kNull, "IMSI Unauthenticated"},
    {43, kBytes, "User CSG Information"}, {44, kBytes, "3GPP2 User Location Information"},
    {45, kAddress, "Served PDP Address Extension"}, {46, kNull, "Low Priority"},
    {47, kFlag, "Dynamic Address Extension"}, {49, kAddresses, "Serving Node IPv6 Address"},
    {50, kAddress, "P-GW IPv6 Address"}, {51, kBytes, "TWAN User Location Information"}, {52, kNull, "Retransmission"},
    {53, kTime, "User Location Time"}, {54, kNumber, "Operator Selection"},
    {55, kOne, "EPC QoS Information", {}, &kQuality}, {56, kBytes, "Presence Reporting Area Information"},
    {57, kBytes, "Last User Location Information"}, {58, kDaylight, "Last MS Time Zone"},
    {59, kBytes, "Enhanced Diagnostics"}};
const Part kSupportParts[] = {
    {0, kNumber, "Record Type", kTypeNames}, {1, kFlag, "Network Initiation"}, {3, kDigits, "Served IMSI"},
    {4, kDigits, "Served IMEI(SV)"}, {5, kAddress, "SGSN Address"}, {6, kBytes, "MS Network Capability"},
    {7, kBytes, "Routing Area"}, {8, kBytes, "Location Area Code"}, {9, kBytes, "Cell Identifier"},
    {10, kNumber, "Charging ID"}, {11, kAddress, "Gateway Address"}, {12, kText, "Access Point Name"},
    {13, kPdpType, "PDP Type"}, {14, kAddress, "Served PDP Address"}, {15, kMany, "Traffic Volume", {}, &kVolume},
    {16, kTime, "Record Opening Time"}, {17, kSeconds, "Duration"}, {18, kFlag, "SGSN Change"},
    {19, kNumber, "Cause for Record Closing", kClosingNames}, {20, kOne, "Diagnostics", {}, &kDiagnostics},
    {21, kNumber, "Record Sequence Number"}, {22, kText, "Node ID"}, {23, kMany, "Record Extension", {}, &kExtension},
    {24, kNumber, "Local Sequence Number"}, {25, kNumber, "APN Selection Mode", kGtpSelectionNames},
    {26, kText, "Access Point Operator"}, {27, kPhone, "Served MSISDN"}, {28, kBytes, "Charging Characteristics"},
    {29, kNumber, "RAT Type", kGtpRadioNames}, {30, kBytes, "CAMEL Information"},
    {31, kNumber, "Unsent Downlink Volume"},
    {32, kNumber, "Charging Characteristics Selection Mode", kSelectedByNames}, {33, kFlag, "Dynamic Address"},
    {34, kNull, "IMSI Unauthenticated"}, {35, kBytes, "User CSG Information"},
    {36, kAddress, "Served PDP Address Extension"}, {37, kNull, "Low Priority"}, {38, kOperator, "Serving Node PLMN"}};
const Part kMobilityParts[] = {
    {0, kNumber, "Record Type", kTypeNames}, {1, kDigits, "Served IMSI"}, {2, kDigits, "Served IMEI(SV)"},
    {3, kAddress, "SGSN Address"}, {4, kBytes, "MS Network Capability"}, {5, kBytes, "Routing Area"},
    {6, kBytes, "Location Area Code"}, {7, kBytes, "Cell Identifier"}, {8, kBytes, "Change of Location"},
    {9, kTime, "Record Opening Time"}, {10, kSeconds, "Duration"}, {11, kFlag, "SGSN Change"},
    {12, kNumber, "Cause for Record Closing", kClosingNames}, {13, kOne, "Diagnostics", {}, &kDiagnostics},
    {14, kNumber, "Record Sequence Number"}, {15, kText, "Node ID"}, {16, kMany, "Record Extension", {}, &kExtension},
    {17, kNumber, "Local Sequence Number"}, {18, kPhone, "Served MSISDN"}, {19, kBytes, "Charging Characteristics"},
    {20, kBytes, "CAMEL Information"}, {21, kNumber, "RAT Type", kGtpRadioNames},
    {22, kNumber, "Charging Characteristics Selection Mode", kSelectedByNames}, {23, kOperator, "Cell PLMN"},
    {24, kOperator, "Serving Node PLMN"}};
const Part kMessageParts[] = {
    {0, kNumber, "Record Type", kTypeNames}, {1, kDigits, "Served IMSI"}, {2, kDigits, "Served IMEI(SV)"},
    {3, kPhone, "Served MSISDN"}, {4, kBytes, "MS Network Capability"}, {5, kPhone, "Service Centre"},
    {6, kPhone, "Recording Entity"}, {7, kBytes, "Location Area Code"}, {8, kBytes, "Routing Area"},
    {9, kBytes, "Cell Identifier"}};
const Parts kGateway = PartsOf(kGatewayParts), kServing = PartsOf(kServingParts), kSupport = PartsOf(kSupportParts),
            kPacketGateway = PartsOf(kPacketGatewayParts), kMobility = PartsOf(kMobilityParts),
            kMessage = PartsOf(kMessageParts);

struct Record {
  uint16_t tag;
  const char* label;
  const Parts* first;
  const Parts* second;
};
const Record kRecords[] = {
    {20, "SGSN PDP Record", &kSupport, nullptr}, {21, "GGSN PDP Record", &kGateway, nullptr},
    {22, "SGSN MM Record", &kMobility, nullptr}, {23, "SGSN SMO Record", &kMessage, nullptr},
    {24, "SGSN SMT Record", &kMessage, nullptr}, {70, "eGSN PDP Record", &kGateway, nullptr},
    {78, "S-GW Record", &kServing, &kGateway}, {79, "P-GW Record", &kPacketGateway, &kGateway},
    {96, "ePDG Record", &kServing, &kGateway}};

// ---- Reading.

constexpr uint32_t kConstructed = 0x20, kUniversal = 0x1000;   // a tag that is not of the context

struct Element {
  uint32_t tag;
  bool isConstructed;
  Cursor contents;
  Field whole, head;
};
Element TakeElement(Cursor& c) {
  constexpr uint32_t kLongTag = 31, kClass = 0xC0, kContext = 0x80, kMore = 0x80;
  const Cursor start = c;
  const Field first = TakeU8(c);
  Element element{first.value & kLongTag, (first.value & kConstructed) != 0, {}, {}, {}};
  if (element.tag == kLongTag) {
    element.tag = 0;
    for (int32_t i = 0; i < 2; ++i) {   // no tag of a record needs more
      const Field next = TakeU8(c);
      element.tag = element.tag << 7 | (next.value & 0x7F);
      if (!(next.value & kMore)) break;
    }
  }
  if ((first.value & kClass) != kContext) element.tag |= kUniversal;
  const BerLength length = TakeBerLength(c);
  const int32_t head = c.offset - start.offset;
  element.contents = TakeCursor(c, length.here ? static_cast<int64_t>(length.value) : Left(c));
  element.head = PeekBytes(start, 0, head);
  element.whole = PeekBytes(start, 0, head + Left(element.contents));
  return element;
}

const Part* FindPart(const Parts* parts, uint32_t tag) {
  for (int32_t i = 0; parts && i < parts->count; ++i) {
    if (parts->parts[i].tag == tag) return &parts->parts[i];
  }
  return nullptr;
}

// An address of whatever choice, in one or two more: four octets, sixteen, or a text.
void AddAddress(const Place& in, const Element& outer, const char* name) {
  Element inner = outer;
  for (int32_t depth = 0; depth < 3 && inner.isConstructed; ++depth) inner = TakeElement(inner.contents);
  const Field octets = Rest(inner.contents);
  // keys: tables decoders/net/charging_record.cpp
  if (octets.length == 4) {
    AddLine(in, octets, "%s: %s", name, IPv4Text(octets.bytes));
  } else if (octets.length == 16) {
    AddLine(in, octets, "%s: %s", name, IPv6Text(octets.bytes));
  } else {
    AddLine(in, octets, "%s: %s", name, Text(octets));
  }
}

// Two digits an octet: year to second, the sign of the zone as a character, its hours and minutes.
void AddTime(const Place& in, const Field& time, const char* name) {
  if (time.length < 9) return AddLine(in, time, "%s: %s", name, HexText(time)), void();
  const auto at = [&](int32_t i) { return PeekU8(time, i); };
  AddLine(in, time, "%s: 20%.02X-%.02X-%.02X %.02X:%.02X:%.02X UTC%s%.02X:%.02X", name, at(0), at(1), at(2), at(3), at(4),
          at(5), at(6) == '-' ? "-" : "+", at(7), at(8));
}

void AddNumber(const Place& in, const Field& number, const Part& part) {
  uint64_t value = 0;
  for (int32_t i = 0; i < number.length; ++i) value = value << 8 | PeekU8(number, i);
  if (number.length > 8) {
    AddLine(in, number, "%s: %s", part.name, HexText(number));
  } else if (part.kind == kSeconds) {
    AddLine(in, number, "%s: %I64u seconds", part.name, value);
  } else if (part.names.Here()) {
    AddLine(in, number, "%s: %I64u = %s", part.name, value, part.names.NameOf(static_cast<uint32_t>(value)));
  } else {
    AddLine(in, number, "%s: %I64u", part.name, value);
  }
}

void ShowParts(const Place& in, Cursor c, const Parts* first, const Parts* second, int32_t depth);

// Identifier and length where they are more than an octet each.
void AddLongHead(const Place& in, const Element& element) {
  if (element.head.length > 2) AddLine(in, element.head, "Tag: %u, %d bytes", element.tag, Left(element.contents));
}

// The members of a list: sequences of parts, addresses, or numbers.
void ShowMembers(const Place& in, Cursor c, const Part& part, int32_t depth) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Element member = TakeElement(c);
    if (part.kind == kAddresses) {
      AddAddress(in, member, part.name);
    } else if (!part.below) {
      Cursor contents = member.contents;
      AddNumber(in, Rest(contents), part);
    } else {
      const Place under = Under(in, AddLine(in, member.whole, "%s", part.name));
      AddLongHead(under, member);
      ShowParts(under, member.contents, part.below, nullptr, depth + 1);
    }
  }
}

void ShowPart(const Place& in, const Element& element, const Part& part, int32_t depth) {
  const Field whole = element.whole, contents = Ahead(element.contents, Left(element.contents));
  const char* name = part.name;
  switch (part.kind) {
    case kNumber:
    case kSeconds: return AddNumber(in, contents, part);
    case kFlag: return AddLine(in, contents, "%s: %s", name, TrueOrFalse(PeekU8(contents, 0) != 0)), void();
    case kNull: return AddLine(in, whole, "%s: Present", name), void();
    case kText: return AddLine(in, contents, "%s: %s", name, Text(contents)), void();
    case kDigits: return AddDigits(in, contents, name);
    case kPhone: {   // its nature and plan in front
      Cursor number = element.contents;
      TakeU8(number);
      return AddDigits(in, Rest(number), name);
    }
    case kAddress: return AddAddress(in, element, name);
    case kTime: return AddTime(in, contents, name);
    case kOperator: return AddNetwork(in, contents, name);
    case kPdpType: {
      Cursor type = element.contents;
      ShowRows(Under(in, AddLine(in, whole, "%s: %s", name, LookupName(kGtpPdpNames, PeekU8(type, 1)))), type, kPdpTypeRows);
      return;
    }
    case kRetention: {
      Cursor priority = element.contents;
      ShowRows(Under(in, AddLine(in, whole, "%s", name)), priority, kRetentionRows);
      return;
    }
    case kDaylight:
      return AddLine(in, contents, "%s: 0x%.02X, %s", name, PeekU8(contents, 0), LookupName(kGtpDaylightNames, PeekU8(contents, 1))),
             void();
    case kAddresses:
    case kMany: return ShowMembers(Under(in, AddLine(in, whole, "%s", name)), element.contents, part, depth + 1);
    case kOne: return ShowParts(Under(in, AddLine(in, whole, "%s", name)), element.contents, part.below, nullptr, depth + 1);
    default: AddLine(in, contents, "%s: %s", name, HexText(contents));
  }
}

void ShowParts(const Place& in, Cursor c, const Parts* first, const Parts* second, int32_t depth) {
  constexpr uint32_t kObjectId = kUniversal | 6;
  Loop loop;
  while (depth < kDeepestCharging && MoreAt(in, c, loop)) {
    const Element element = TakeElement(c);
    AddLongHead(in, element);
    const Part* part = FindPart(first, element.tag);
    if (!part) part = FindPart(second, element.tag);
    const Field contents = Ahead(element.contents, Left(element.contents));
    if (part) {
      ShowPart(in, element, *part, depth);
    } else if (element.tag == kObjectId) {
      AddLine(in, contents, "Identifier: %s", TextOfObjectId(element.contents));
    } else {
      AddLine(in, element.whole, "Field: Tag %u, %s", element.tag & ~kUniversal, HexText(contents));
    }
  }
  AddBlock(in, Rest(c), "Record Data");
}

}  // namespace

void ShowChargingRecord(const Place& at, Cursor& c) {
  const Element element = TakeElement(c);
  for (const Record& record : kRecords) {
    if (record.tag != element.tag) continue;
    const Place in = Under(at, AddLine(at, element.whole, "Record: %s", record.label));
    AddLongHead(in, element);
    return ShowParts(in, element.contents, record.first, record.second, 0);
  }
  if (element.whole.length <= 64) {
    AddLine(at, element.whole, "Record: %s", HexText(element.whole));
  } else {
    AddBlock(at, element.whole, "Record");
  }
}

}  // namespace qxview
