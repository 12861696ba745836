// The information elements of GTP (3GPP TS 29.060 table 37, TS 09.60, TS 32.295): below 128 of a size that the type fixes, from
// 128 on with a length of two bytes.
#include "core/elements.h"
#include "decoders/common/mobile_identity.h"
#include "decoders/net/gtp_names.h"
#include "decoders/net/gtp_parts.h"

namespace qxview {
namespace {

constexpr auto kCause = Rows<GtpElement>({Number(1, nullptr, kGtpCauseNames).Note(": %s")});
constexpr auto kByte = Rows<GtpElement>({Number(1, nullptr).Note(": %u")});
constexpr auto kYes = Rows<GtpElement>({
    Word(1), Bits(0, 7, "Spare"), Flag(7, "Set")});
constexpr auto kShort = Rows<GtpElement>({Number(2, nullptr).Note(": %u")});
constexpr auto kIdentifier = Rows<GtpElement>({Hex(4, nullptr).Note(": 0x%.08X")});
constexpr auto kTunnelAndBearer = Rows<GtpElement>({
    Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "NSAPI"), Hex(4, "Tunnel Endpoint Identifier (TEID)")});
constexpr auto kBearer = Rows<GtpElement>({Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "NSAPI")});
constexpr auto kSelection = Rows<GtpElement>({
    Word(1), Bits(0, 6, "Spare"), Bits(6, 2, "Selection Mode", kGtpSelectionNames)});
constexpr auto kTriplet = Rows<GtpElement>({Bytes(16, "RAND"), Bytes(4, "SRES"), Bytes(8, "Kc")});
constexpr auto kPriority = Rows<GtpElement>({
    Word(1), Bits(0, 4, "NSAPI"), Bits(4, 1, "Spare"), Bits(5, 3, "Radio Priority")});
constexpr auto kFlow = Rows<GtpElement>({Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "NSAPI"), Hex(1, "Packet Flow ID")});
constexpr auto kFlowLabel = Rows<GtpElement>({Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "NSAPI"), Number(2, "Flow Label")});
constexpr auto kCharging = Rows<GtpElement>({
    Hex(2, nullptr), Bits(0, 4, "Spare"), Flag(4, "Normal Charging"), Flag(5, "Prepaid Charging"), Flag(6, "Flat Rate Charging"),
    Flag(7, "Hot Billing Charging"), Bits(8, 8, "Reserved")});
constexpr auto kContext = Rows<GtpElement>({
    Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "NSAPI"), Number(2, "Downlink GTP-U Sequence Number"),
    Number(2, "Uplink GTP-U Sequence Number"), Number(2, "Downlink PDCP Sequence Number"),
    Number(2, "Uplink PDCP Sequence Number")});
constexpr auto kCommand = Rows<GtpElement>({Number(1, nullptr, kGtpCommandNames).Note(": %s")});
constexpr auto kSignature = Rows<GtpElement>({Hex(3, nullptr)});
constexpr auto kOldQuality = Rows<GtpElement>({
    Word(1), Bits(0, 2, "Spare"), Bits(2, 3, "Delay Class"), Bits(5, 3, "Reliability Class"), Word(1),
    Bits(0, 4, "Peak Throughput"), Bits(4, 1, "Spare"), Bits(5, 3, "Precedence Class"), Word(1), Bits(0, 3, "Spare"),
    Bits(3, 5, "Mean Throughput")});

void ShowDigits(const Place& in, Cursor& c, GtpElement&) { AddDigits(in, Rest(c), "Digits"); }
constexpr auto kArea = Rows<GtpElement>({Hex(2, "Location Area Code (LAC)")});
constexpr auto kRouting = Rows<GtpElement>({Hex(1, "Routing Area Code (RAC)")});
void ShowRoutingArea(const Place& in, Cursor& c, GtpElement& element) {
  AddNetwork(in, TakeBytes(c, 3), "Network");
  ShowRows<GtpElement>(in, c, kArea, element);
  ShowRows<GtpElement>(in, c, kRouting, element);
}

constexpr auto kUser = Rows<GtpElement>({
    Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "PDP Type Organization", kGtpOrganizationNames),
    Hex(1, "PDP Type Number", kGtpPdpNames).Into(&GtpElement::kind)});
constexpr auto kIp4 = Rows<GtpElement>({IPv4("IPv4 Address").Note(": %s")});
constexpr auto kIp6 = Rows<GtpElement>({IPv6("IPv6 Address").Note(": %s")});
}  // namespace

void ShowGtpAddress(const Place& in, Cursor& c, GtpElement& element) {
  if (Left(c) == 4 || Left(c) == 20) ShowRows<GtpElement>(in, c, kIp4, element);
  if (Left(c) == 16) ShowRows<GtpElement>(in, c, kIp6, element);
}

namespace {

void ShowUser(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kUser, element);
  ShowGtpAddress(in, c, element);
}

}  // namespace

// Labels of a length and so many characters.
void ShowGtpName(const Place& in, Cursor& c, GtpElement&) {
  char name[128];
  int32_t used = 0;
  const Field whole = Ahead(c, Left(c));
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Field length = TakeU8(c), label = TakeBytes(c, static_cast<int64_t>(length.value));
    if (!label.here) break;
    const int32_t room = static_cast<int32_t>(sizeof name) - used;
    if (room < 2) break;
    FormatInto(name + used, static_cast<size_t>(room), "%s%s", used ? "." : "", Text(label));
    while (name[used]) ++used;
  }
  name[used] = 0;
  if (whole.bytes) AddLine(in, whole, "Name: %s", static_cast<const char*>(name));
  AppendToParent(in, whole, ": %s", static_cast<const char*>(name));
}

namespace {

// Quality of service (TS 24.008 10.5.6.5) behind the priority; each release added to it.
constexpr auto kQuality = Rows<GtpElement>({
    Number(1, "Allocation/Retention Priority"), Word(1), Bits(0, 2, "Spare"), Bits(2, 3, "Delay Class"),
    Bits(5, 3, "Reliability Class"), Word(1), Bits(0, 4, "Peak Throughput"), Bits(4, 1, "Spare"),
    Bits(5, 3, "Precedence Class"), Word(1), Bits(0, 3, "Spare"), Bits(3, 5, "Mean Throughput")});
constexpr auto kQuality99 = Rows<GtpElement>({
    Word(1), Bits(0, 3, "Traffic Class", kGtpTrafficNames), Bits(3, 2, "Delivery Order"),
    Bits(5, 3, "Delivery of Erroneous SDUs"), Number(1, "Maximum SDU Size (Coded)"),
    Number(1, "Maximum Bit Rate for Uplink (Coded)"), Number(1, "Maximum Bit Rate for Downlink (Coded)"), Word(1),
    Bits(0, 4, "Residual Bit Error Rate"), Bits(4, 4, "SDU Error Ratio"), Word(1), Bits(0, 6, "Transfer Delay (Coded)"),
    Bits(6, 2, "Traffic Handling Priority"), Number(1, "Guaranteed Bit Rate for Uplink (Coded)"),
    Number(1, "Guaranteed Bit Rate for Downlink (Coded)")});
constexpr auto kQualityMore = Rows<GtpElement>({
    Word(1), Bits(0, 3, "Spare"), Flag(3, "Signalling Indication"), Bits(4, 4, "Source Statistics Descriptor")});
constexpr auto kQualityDown = Rows<GtpElement>({
    Number(1, "Maximum Bit Rate for Downlink (Extended, Coded)"),
    Number(1, "Guaranteed Bit Rate for Downlink (Extended, Coded)")});
constexpr auto kQualityUp = Rows<GtpElement>({
    Number(1, "Maximum Bit Rate for Uplink (Extended, Coded)"),
    Number(1, "Guaranteed Bit Rate for Uplink (Extended, Coded)")});
void ShowQuality(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kQuality, element);
  if (Left(c) >= 8) ShowRows<GtpElement>(in, c, kQuality99, element);
  if (Left(c) >= 1) ShowRows<GtpElement>(in, c, kQualityMore, element);
  if (Left(c) >= 2) ShowRows<GtpElement>(in, c, kQualityDown, element);
  if (Left(c) >= 2) ShowRows<GtpElement>(in, c, kQualityUp, element);
}

constexpr auto kFlags = Rows<GtpElement>({
    Hex(1, nullptr), Flag(0, "Dual Address Bearer"), Flag(1, "Upgrade QoS Supported"), Flag(2, "Network Requested Bearer Control"),
    Flag(3, "No QoS Negotiation"), Flag(4, "MBMS Counting Information"), Flag(5, "RAN Procedures Ready"),
    Flag(6, "MBMS Service Type"), Flag(7, "Prohibit Payload Compression")});
constexpr auto kRestriction = Rows<GtpElement>({Number(1, "Restriction Type").Note(": %u")});
constexpr auto kRadio = Rows<GtpElement>({Number(1, "Radio Access Type", kGtpRadioNames).Note(": %s")});
constexpr auto kZone = Rows<GtpElement>({
    Hex(1, "Time Zone"), Word(1), Bits(0, 6, "Spare"), Bits(6, 2, "Daylight Saving Time", kGtpDaylightNames)});
constexpr auto kLocationType = Rows<GtpElement>({
    Number(1, "Geographic Location Type", kGtpLocationNames).Into(&GtpElement::kind)});
constexpr auto kCell = Rows<GtpElement>({Hex(2, "Cell ID, Service Area or Routing Area")});
void ShowLocation(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kLocationType, element);
  AddNetwork(in, TakeBytes(c, 3), "Network");
  ShowRows<GtpElement>(in, c, kArea, element);
  ShowRows<GtpElement>(in, c, kCell, element);
}
constexpr auto kDirect = Rows<GtpElement>({
    Word(1), Bits(0, 5, "Spare"), Flag(5, "Error Indication"), Flag(6, "GPRS-CSI"), Flag(7, "Direct Tunnel")});
constexpr auto kRetention = Rows<GtpElement>({
    Word(1), Bits(0, 1, "Spare"), Bits(1, 1, "Pre-emption Capability"), Bits(2, 4, "Priority Level"),
    Bits(6, 1, "Spare"), Bits(7, 1, "Pre-emption Vulnerability")});
constexpr auto kMoreFlags = Rows<GtpElement>({
    Hex(1, nullptr), Flag(0, "Unauthenticated IMSI"), Flag(1, "CSG Change Reporting Support"),
    Flag(2, "CSG Support"), Flag(3, "Retain Location"), Flag(4, "MS Bearer Verification"),
    Flag(5, "Policy and Charging Rule Indication"), Flag(6, "Bearer Deactivation without Signalling"),
    Flag(7, "UE Available for Signalling")});
constexpr auto kRates = Rows<GtpElement>({
    Number(4, "Aggregate Maximum Bit Rate for Uplink", " kbit/s"),
    Number(4, "Aggregate Maximum Bit Rate for Downlink", " kbit/s")});
constexpr auto kPdu = Rows<GtpElement>({Bytes(0, nullptr)});

// What is coded by another protocol, in packed encoding rules but for the GPRS protocol of base stations.
void AddContainer(const Place& in, Cursor& c, const char* protocol) {
  const Field bytes = Rest(c);
  AddLine(in, bytes, "Container: %d bytes of %s", bytes.length, protocol);
}
void ShowRanap(const Place& in, Cursor& c, GtpElement&) { AddContainer(in, c, "RANAP"); }
void ShowRrc(const Place& in, Cursor& c, GtpElement&) { AddContainer(in, c, "RRC"); }
void ShowBssgp(const Place& in, Cursor& c, GtpElement&) { AddContainer(in, c, "BSSGP"); }
void ShowCamel(const Place& in, Cursor& c, GtpElement&) { AddContainer(in, c, "CAMEL"); }
constexpr auto kVendor = Rows<GtpElement>({Number(2, "Extension Identifier"), Bytes(0, "Extension Value")});
constexpr auto kHeaderList = Rows<GtpElement>({Hex(1, "Extension Header Type")});
void ShowHeaderList(const Place& in, Cursor& c, GtpElement& element) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<GtpElement>(in, c, kHeaderList, element);
}
void ShowMobileNumber(const Place& in, Cursor& c, GtpElement&) {
  const Field nature = TakeU8(c);
  AddLine(in, nature, "Nature of Address: 0x%.02X", nature.value);
  AddDigits(in, Rest(c), "Digits");
}
void ShowOperator(const Place& in, Cursor& c, GtpElement&) { AddNetwork(in, TakeBytes(c, 3), "Network"); }
constexpr auto kRequested = Rows<GtpElement>({Number(2, "Sequence Number")});
void ShowNumbers(const Place& in, Cursor& c, GtpElement& element) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<GtpElement>(in, c, kRequested, element);
}
constexpr auto kRecords = Rows<GtpElement>({
    Number(1, "Data Records").Into(&GtpElement::count),
    Number(1, "Data Record Format", kGtpRecordNames).Into(&GtpElement::kind),
    Word(2), Bits(0, 4, "Application Identifier"), Bits(4, 4, "Release Identifier"), Bits(8, 8, "Version Identifier")});
constexpr auto kRecordLength = Rows<GtpElement>({Number(2, "Record Length").Into(&GtpElement::length)});
constexpr auto kRecord = Rows<GtpElement>({Bytes(0, "Record")});
void ShowRecords(const Place& in, Cursor& c, GtpElement& element) {
  constexpr uint32_t kBasicRules = 1;
  ShowRows<GtpElement>(in, c, kRecords, element);
  Loop loop;
  for (uint32_t i = 0; i < element.count.value && MoreAt(in, c, loop); ++i) {
    ShowRows<GtpElement>(in, c, kRecordLength, element);
    Cursor record = TakeCursor(c, static_cast<int64_t>(element.length.value));
    if (element.kind.value == kBasicRules && Left(record) > 2) {
      ShowChargingRecord(in, record);
      AddBlock(in, Rest(record), "Record Data");
    } else {
      ShowRows<GtpElement>(in, record, kRecord, element);
    }
  }
}
// A quintuplet of authentication (TS 29.060 7.7.35): two values have lengths in front.
constexpr auto kQuintuplet = Rows<GtpElement>({
    Bytes(16, "RAND"), Counted(1, Bytes(0, "XRES")), Bytes(16, "Ciphering Key (CK)"), Bytes(16, "Integrity Key (IK)"),
    Counted(1, Bytes(0, "AUTN"))});

// A PDP context (TS 29.060 7.7.29), with the qualities that were subscribed, asked for and agreed on.
constexpr auto kContextHead = Rows<GtpElement>({
    Word(1), Flag(0, "Extended End User Address"), Flag(1, "VPLMN Address Allowed"), Flag(2, "Activity Status"),
    Flag(3, "Reordering Required"), Bits(4, 4, "NSAPI"), Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "SAPI")});
constexpr auto kContextNumbers = Rows<GtpElement>({
    Number(2, "Sequence Number Down"), Number(2, "Sequence Number Up"), Number(1, "Send N-PDU Number"),
    Number(1, "Receive N-PDU Number"), Hex(4, "Uplink TEID Control Plane"), Hex(4, "Uplink TEID Data I"),
    Number(1, "PDP Context Identifier"), Word(1), Bits(0, 4, "Spare"),
    Bits(4, 4, "PDP Type Organization", kGtpOrganizationNames), Hex(1, "PDP Type Number", kGtpPdpNames)});
constexpr auto kCounted = Rows<GtpElement>({Number(1, "Length of the Next Field").Into(&GtpElement::length)});
constexpr auto kTransaction = Rows<GtpElement>({Word(2), Bits(0, 4, "Spare"), Bits(4, 12, "Transaction Identifier")});

Cursor TakeCounted(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kCounted, element);
  return TakeCursor(c, static_cast<int64_t>(element.length.value));
}
void ShowContext(const Place& in, Cursor& c, GtpElement& element) {
  constexpr const char* kQualities[] = {"Subscribed Quality of Service", "Requested Quality of Service",
                                        "Negotiated Quality of Service"};
  ShowRows<GtpElement>(in, c, kContextHead, element);
  for (const char* name : kQualities) {
    Cursor quality = TakeCounted(in, c, element);
    const Place under = Under(in, AddLine(in, Ahead(quality, Left(quality)), "%s", name));
    if (Left(quality) > 0) ShowQuality(under, quality, element);
  }
  ShowRows<GtpElement>(in, c, kContextNumbers, element);
  for (int32_t i = 0; i < 3; ++i) {   // the user's, and the gateway's for control and for traffic
    Cursor address = TakeCounted(in, c, element);
    ShowGtpAddress(in, address, element);
  }
  Cursor name = TakeCounted(in, c, element);
  if (Left(name) > 0) ShowGtpName(in, name, element);
  if (Left(c) >= 2) ShowRows<GtpElement>(in, c, kTransaction, element);
}

constexpr auto kReports = Rows<GtpElement>({Number(1, nullptr, kGtpReportNames)});

constexpr auto kElements = Choices<GtpElement>({
    {1, "Cause", kCause}, {2, "IMSI", {}, ShowDigits}, {3, "Routeing Area Identity (RAI)", {}, ShowRoutingArea},
    {4, "Temporary Logical Link Identity (TLLI)", kIdentifier}, {5, "Packet TMSI (P-TMSI)", kIdentifier},
    {6, "Quality of Service Profile", kOldQuality}, {8, "Reordering Required", kYes},
    {9, "Authentication Triplet", kTriplet}, {11, "MAP Cause", kByte}, {12, "P-TMSI Signature", kSignature},
    {13, "MS Validated", kYes}, {14, "Recovery", kByte}, {15, "Selection Mode", kSelection},
    {16, "Tunnel Endpoint Identifier Data I", kIdentifier},
    {17, "Tunnel Endpoint Identifier Control Plane", kIdentifier},
    {18, "Tunnel Endpoint Identifier Data II", kTunnelAndBearer}, {19, "Teardown Indication", kYes}, {20, "NSAPI", kBearer},
    {21, "RANAP Cause", kByte}, {22, "RAB Context", kContext}, {23, "Radio Priority SMS", kByte},
    {24, "Radio Priority", kPriority}, {25, "Packet Flow ID", kFlow}, {26, "Charging Characteristics", kCharging},
    {27, "Trace Reference", kShort}, {28, "Trace Type", kShort}, {29, "MS Not Reachable Reason", kByte},
    {126, "Packet Transfer Command", kCommand}, {127, "Charging ID", kIdentifier},
    {128, "End User Address", {}, ShowUser}, {130, "PDP Context", {}, ShowContext},
    {131, "Access Point Name", {}, ShowGtpName}, {132, "Protocol Configuration Options", {}, ShowGtpOptions},
    {133, "GSN Address", {}, ShowGtpAddress}, {134, "MSISDN", {}, ShowMobileNumber},
    {135, "Quality of Service Profile", {}, ShowQuality}, {136, "Authentication Quintuplet", kQuintuplet},
    {137, "Traffic Flow Template", {}, ShowGtpTemplate},
    {139, "UTRAN Transparent Container", {}, ShowRanap},
    {141, "Extension Header Type List", {}, ShowHeaderList}, {142, "Trigger ID", kPdu}, {143, "OMC Identity", kPdu},
    {144, "RAN Transparent Container", {}, ShowBssgp}, {147, "SGSN Number", {}, ShowMobileNumber},
    {148, "Common Flags", kFlags}, {149, "APN Restriction", kRestriction}, {150, "Radio Priority LCS", kByte},
    {151, "RAT Type", kRadio}, {152, "User Location Information", {}, ShowLocation}, {153, "MS Time Zone", kZone},
    {154, "IMEI(SV)", {}, ShowDigits}, {155, "CAMEL Charging Information Container", {}, ShowCamel},
    {158, "RIM Routing Address", kPdu}, {159, "MBMS Protocol Configuration Options", kPdu},
    {161, "Source RNC PDCP Context Information", {}, ShowRrc}, {163, "Hop Counter", kByte},
    {164, "Selected PLMN ID", {}, ShowOperator}, {166, "MBMS 2G/3G Indicator", kByte}, {167, "Enhanced NSAPI", kByte},
    {170, "MBMS Session Repetition Number", kByte}, {171, "MBMS Time to Data Transfer", kByte},
    {173, "BSS Container", {}, ShowBssgp},
    {176, "BSSGP Cause", kByte}, {177, "Required MBMS Bearer Capabilities", kPdu}, {181, "MS Info Change Reporting Action", kReports},
    {182, "Direct Tunnel Flags", kDirect}, {183, "Correlation-ID", kByte},
    {189, "RFSP Index", kShort}, {190, "Fully Qualified Domain Name (FQDN)", {}, ShowGtpName},
    {191, "Evolved Allocation/Retention Priority I", kRetention}, {193, "Extended Common Flags", kMoreFlags}, {198, "Aggregate Maximum Bit Rate (AMBR)", kRates},
    {200, "UE-AMBR", kRates},
    {209, "STN-SR", {}, ShowMobileNumber}, {210, "C-MSISDN", {}, ShowMobileNumber}, {211, "Extended RANAP Cause", kShort},
    {222, "IOV_updates Counter", kByte}, {238, "IE Type Extension", kPdu},
    {249, "Sequence Numbers of Released Packets", {}, ShowNumbers},
    {250, "Sequence Numbers of Cancelled Packets", {}, ShowNumbers},
    {251, "Charging Gateway Address", {}, ShowGtpAddress}, {252, "Data Record Packet", {}, ShowRecords},
    {253, "Requests Responded", {}, ShowNumbers}, {254, "Address of Recommended Node", {}, ShowGtpAddress},
    {255, "Private Extension", kVendor}});

// The sizes of elements without a length; 0 for a type that is not known, whose end nothing tells.
struct FixedSize {
  uint8_t type, size, size0;
};
constexpr FixedSize kFixedSizes[] = {
    {1, 1, 1}, {2, 8, 8}, {3, 6, 6}, {4, 4, 4}, {5, 4, 4}, {6, 3, 3}, {8, 1, 1}, {9, 28, 28}, {11, 1, 1}, {12, 3, 3},
    {13, 1, 1}, {14, 1, 1}, {15, 1, 1}, {16, 4, 2}, {17, 4, 2}, {18, 5, 3}, {19, 1, 1}, {20, 1, 0}, {21, 1, 0}, {22, 9, 0},
    {23, 1, 0}, {24, 1, 0}, {25, 2, 0}, {26, 2, 0}, {27, 2, 0}, {28, 2, 0}, {29, 1, 0}, {126, 1, 1}, {127, 4, 4}};
int32_t SizeOf(uint32_t type, bool isVersion0) {
  for (const FixedSize& fixed : kFixedSizes) {
    if (fixed.type == type) return isVersion0 ? fixed.size0 : fixed.size;
  }
  return 0;
}

// Version 0 has other elements under three numbers.
constexpr auto kElements0 = Choices<GtpElement>({
    {16, "Flow Label Data I", kShort}, {17, "Flow Label Signalling", kShort}, {18, "Flow Label Data II", kFlowLabel},
    {19, "MS Not Reachable Reason", kByte}});

const Choice<GtpElement>* FindElement(uint32_t type, bool isVersion0) {
  const Choice<GtpElement>* found = isVersion0 ? FindChoice<GtpElement>(kElements0, type) : nullptr;
  if (!found) found = FindChoice<GtpElement>(kElements, type);
  return found ? found : FindGtpContext(type);
}

}  // namespace

const char* GtpMessageName(uint32_t message) { return LookupName(kGtpMessageNames, message); }

void ShowGtpElements(const Place& at, Cursor& c, bool isVersion0) {
  constexpr uint32_t kFirstWithLength = 128;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const uint32_t type = PeekU8(c);
    const bool hasLength = type >= kFirstWithLength;
    const int32_t head = hasLength ? 3 : 1;
    const int32_t size = hasLength ? static_cast<int32_t>(PeekU16(c, 1)) : SizeOf(type, isVersion0);
    const Choice<GtpElement>* choice = FindElement(type, isVersion0);
    if (size == 0 && !hasLength) break;
    Cursor whole = TakeCursor(c, static_cast<int64_t>(head) + size);
    const char* name = choice ? choice->name : kUnknown;
    const Place in = Under(at, AddLine(at, Ahead(whole, Left(whole)), "Information Element: %s", name));
    const Field number = TakeU8(whole);
    AddLine(in, number, "Type: %u = %s", number.value, name);
    if (hasLength) {
      const Field length = TakeU16(whole);
      AddLine(in, length, "Length: %u", length.value);
    }
    GtpElement element{};
    if (Left(whole) > 0) ShowChoice<GtpElement>(in, whole, choice, element);
  }
  AddBlock(at, Rest(c), "Data");
}

}  // namespace qxview
