// Connectivity fault management (IEEE 802.1Q clause 21) with the performance and protection messages of ITU-T Y.1731, G.8031
// and G.8032: is a service of Ethernet whole from end to end, and how well does it do?
//
//   level (3 bits) and version (5)   opcode   flags   offset of the first element, from behind this octet
//   what the opcode says, up to that offset; then elements
#include "decoders/link/fault_management.h"

namespace qxview {
namespace {

using Cfm = FaultManagement;

constexpr auto kOpcodeNames = SortedNames({
    {1, "CCM"}, {2, "LBR"}, {3, "LBM"}, {4, "LTR"}, {5, "LTM"}, {6, "RFM"}, {7, "SFM"}, {32, "GNM"}, {33, "AIS"}, {35, "LCK"}, {37, "TST"},
    {39, "APS"}, {40, "R-APS"}, {41, "MCC"}, {42, "LMR"}, {43, "LMM"}, {45, "1DM"}, {46, "DMR"}, {47, "DMM"}, {48, "EXR"},
    {49, "EXM"}, {50, "VSR"}, {51, "VSM"}, {52, "CSF"}, {53, "1SL"}, {54, "SLR"}, {55, "SLM"}});
constexpr auto kIntervalNames = SortedNames({
    {0, "Invalid"}, {1, "3.33 Milliseconds"}, {2, "10 Milliseconds"}, {3, "100 Milliseconds"}, {4, "1 Second"},
    {5, "10 Seconds"}, {6, "1 Minute"}, {7, "10 Minutes"}});
constexpr auto kDomainFormats = SortedNames({
    {0, "Reserved"}, {1, "No Name"}, {2, "Domain Name"}, {3, "MAC Address and Number"}, {4, "Character String"},
    {32, "ICC-Based"}});
constexpr auto kAssociationFormats = SortedNames({
    {0, "Reserved"}, {1, "Primary VID"}, {2, "Character String"}, {3, "Unsigned Integer"}, {4, "VPN ID"},
    {32, "ICC-Based"}, {33, "ICC and CC-Based"}});
constexpr auto kRelayNames = SortedNames({{1, "RlyHit"}, {2, "RlyFDB"}, {3, "RlyMPDB"}});
constexpr auto kSignalFailNames = SortedNames({{0, "Loss of Signal"}, {1, "Forward Defect Indication"},
                                               {2, "Reverse Defect Indication"}, {3, "Defect Clear Indication"}});
constexpr auto kApsRequestNames = SortedNames({
    {0, "No Request"}, {1, "Do Not Revert"}, {2, "Reverse Request"}, {4, "Exercise"}, {5, "Wait to Restore"},
    {7, "Manual Switch"}, {9, "Signal Degrade"}, {11, "Signal Fail for Working"}, {13, "Forced Switch"},
    {14, "Signal Fail for Protection"}, {15, "Lockout of Protection"}});
constexpr auto kRingRequestNames = SortedNames({
    {0, "No Request"}, {7, "Manual Switch"}, {11, "Signal Fail"}, {13, "Forced Switch"}, {14, "Event"}});
constexpr auto kSignalNames = SortedNames({{0, "Null Signal"}, {1, "Normal Traffic Signal"}});
constexpr auto kBlockedNames = SortedNames({{0, "Ring Link 0"}, {1, "Ring Link 1"}});
constexpr auto kNotificationNames = SortedNames({{1, "Bandwidth Notification"}});

constexpr auto kHead = Rows<Cfm>({
    Word(1), Bits(0, 3, "Level").Into(&Cfm::level), Bits(3, 5, "Version"), Number(1, "Opcode", kOpcodeNames).Into(&Cfm::opcode)});
constexpr auto kFlags = Rows<Cfm>({Hex(1, "Flags")});
constexpr auto kCcmFlags = Rows<Cfm>({
    Hex(1, "Flags"), Flag(0, "Remote Defect Indication"), Flag(1, "Traffic"), Bits(2, 3, "Reserved"), Bits(5, 3, "CCM Interval", kIntervalNames)});
constexpr auto kLtmFlags = Rows<Cfm>({Hex(1, "Flags"), Flag(0, "Use Filtering Database Only"), Bits(1, 7, "Reserved")});
constexpr auto kLtrFlags = Rows<Cfm>({
    Hex(1, "Flags"), Flag(0, "Use Filtering Database Only"), Flag(1, "Forwarded"), Flag(2, "Terminal MEP"), Bits(3, 5, "Reserved")});
constexpr auto kPeriodFlags = Rows<Cfm>({Hex(1, "Flags"), Bits(0, 5, "Reserved"), Bits(5, 3, "Period", kIntervalNames)});
constexpr auto kCsfFlags = Rows<Cfm>({
    Hex(1, "Flags"), Bits(0, 2, "Reserved"), Bits(2, 3, "CSF Type", kSignalFailNames), Bits(5, 3, "Period", kIntervalNames)});
constexpr auto kDelayFlags = Rows<Cfm>({Hex(1, "Flags"), Bits(0, 7, "Reserved"), Flag(7, "Proactive")});
constexpr auto kOffset = Rows<Cfm>({Number(1, "First TLV Offset").Into(&Cfm::offset)});

// The name of what is managed: of the domain, then of the association in it, 48 octets in all.
void ShowName(const Place& in, Cursor& c, const char* label, const Cfm& cfm) {
  Cursor part = TakeCursor(c, cfm.size.value);
  const Field name = Rest(part);
  bool isText = name.here;
  for (int32_t i = 0; i < name.length && isText; ++i) isText = PeekU8(name, i) >= 0x20 && PeekU8(name, i) < 0x7F;
  if (isText) {
    AddLine(in, name, "%s: %s", label, Text(name));
  } else if (name.length == 2) {
    AddLine(in, name, "%s: %u", label, PeekU16(name));
  } else {
    AddLine(in, name, "%s: %s", label, HexText(name));
  }
}

void ShowMaintenanceAssociation(const Place& in, Cursor& c, const char* label, Cfm& cfm) {
  constexpr int32_t kSize = 48;
  constexpr uint32_t kNoDomain = 1;
  Cursor names = TakeCursor(c, kSize);
  const Place under = Under(in, AddLine(in, Ahead(names, Left(names)), "%s", label));
  const Field domain = TakeU8(names);
  AddLine(under, domain, "Domain Name Format: %u = %s", domain.value, LookupName(kDomainFormats, domain.value));
  if (domain.value != kNoDomain) {
    cfm.size = TakeU8(names);
    AddLine(under, cfm.size, "Domain Name Length: %u", cfm.size.value);
    ShowName(under, names, "Domain Name", cfm);
  }
  const Field association = TakeU8(names);
  AddLine(under, association, "Association Name Format: %u = %s", association.value,
          LookupName(kAssociationFormats, association.value));
  cfm.size = TakeU8(names);
  AddLine(under, cfm.size, "Association Name Length: %u", cfm.size.value);
  ShowName(under, names, "Association Name", cfm);
  const Field padding = Rest(names);
  AddLine(under, padding, "Padding: %s", HexText(padding));
}

constexpr auto kTransaction = Rows<Cfm>({Number(4, "Transaction ID").Note(", Transaction %u")});
constexpr auto kCcm = Rows<Cfm>({
    Number(4, "Sequence Number"), Hex(2, "MEP Word"), Bits(0, 3, "Reserved"),
    Bits(3, 13, "MEP ID").Note(", MEP %u"), Shown("Maintenance Association ID", ShowMaintenanceAssociation)});
constexpr auto kCounters = Rows<Cfm>({
    Number(4, "TxFCf"), Number(4, "RxFCb"), Number(4, "TxFCb"), Number(4, "Reserved Counter")});
constexpr auto kLtm = Rows<Cfm>({
    Number(4, "Transaction ID").Note(", Transaction %u"), Number(1, "TTL"), Mac("Original MAC Address").Note(", %s"),
    Mac("Target MAC Address").Note(" -> %s")});
constexpr auto kLtr = Rows<Cfm>({
    Number(4, "Transaction ID").Note(", Transaction %u"), Number(1, "Reply TTL"), Number(1, "Relay Action", kRelayNames)});
constexpr auto kTst = Rows<Cfm>({Number(4, "Sequence Number").Note(", Sequence %u")});
constexpr auto kAps = Rows<Cfm>({
    Hex(1, "Request and Protection Type"), Bits(0, 4, "Request/State", kApsRequestNames).Note(", %s"), Flag(4, "APS Channel"),
    Flag(5, "Permanent Bridge"), Flag(6, "Bidirectional Switching"), Flag(7, "Revertive Operation"),
    Number(1, "Requested Signal", kSignalNames), Number(1, "Bridged Signal", kSignalNames), Hex(1, "Bridge Type"),
    Flag(0, "Broadcast Bridge"), Bits(1, 7, "Reserved")});
constexpr auto kRing = Rows<Cfm>({
    Hex(1, "Request and Sub-code"), Bits(0, 4, "Request/State", kRingRequestNames).Note(", %s"), Bits(4, 4, "Sub-code"),
    Hex(1, "Status"), Flag(0, "RPL Blocked"), Flag(1, "Do Not Flush"), Bits(2, 1, "Blocked Port Reference", kBlockedNames),
    Bits(3, 5, "Status Reserved"), Mac("Node ID").Note(", %s"), Bytes(24, "Reserved")});
constexpr auto kLoss = Rows<Cfm>({Number(4, "TxFCf"), Number(4, "RxFCf"), Number(4, "TxFCb")});
constexpr auto kOneWay = Rows<Cfm>({
    Number(4, "TxTimeStampf", " seconds"), Number(4, "TxTimeStampf Nanoseconds"), Bytes(8, "Reserved")});
constexpr auto kDelay = Rows<Cfm>({
    Number(4, "TxTimeStampf", " seconds"), Number(4, "TxTimeStampf Nanoseconds"), Number(4, "RxTimeStampf", " seconds"),
    Number(4, "RxTimeStampf Nanoseconds"), Number(4, "TxTimeStampb", " seconds"), Number(4, "TxTimeStampb Nanoseconds"),
    Number(4, "RxTimeStampb", " seconds"), Number(4, "RxTimeStampb Nanoseconds")});
constexpr auto kVendor = Rows<Cfm>({Hex(3, "Organizational Code").Note(", 0x%.06X"), Number(1, "Sub-opcode"), Bytes(0, "Data")});
constexpr auto kOneWayLoss = Rows<Cfm>({
    Number(2, "Source MEP ID"), Hex(2, "Reserved"), Number(4, "Test ID").Note(", Test %u"), Number(4, "TxFCf"),
    Hex(4, "Reserved 2")});
constexpr auto kSyntheticLoss = Rows<Cfm>({
    Number(2, "Source MEP ID"), Number(2, "Responder MEP ID"), Number(4, "Test ID").Note(", Test %u"), Number(4, "TxFCf"),
    Number(4, "TxFCb")});
constexpr auto kNotification = Rows<Cfm>({
    Number(1, "Sub-opcode", kNotificationNames), Number(4, "Nominal Bandwidth", " Mb/s"), Number(4, "Current Bandwidth", " Mb/s"),
    Number(4, "Port ID")});

// What an opcode adds: its flags and its fields.
struct Message {
  uint32_t opcode;
  RowSpan<Cfm> flags, fields, more;
};
constexpr Message kMessages[] = {
    {1, kCcmFlags, kCcm, kCounters}, {2, kFlags, kTransaction, {}}, {3, kFlags, kTransaction, {}}, {4, kLtrFlags, kLtr, {}},
    {5, kLtmFlags, kLtm, {}}, {32, kPeriodFlags, kNotification, {}}, {33, kPeriodFlags, {}, {}}, {35, kPeriodFlags, {}, {}},
    {37, kFlags, kTst, {}}, {39, kFlags, kAps, {}}, {40, kFlags, kRing, {}}, {41, kFlags, kVendor, {}},
    {42, kDelayFlags, kLoss, {}}, {43, kDelayFlags, kLoss, {}}, {45, kDelayFlags, kOneWay, {}}, {46, kDelayFlags, kDelay, {}},
    {47, kDelayFlags, kDelay, {}}, {48, kFlags, kVendor, {}}, {49, kFlags, kVendor, {}}, {50, kFlags, kVendor, {}},
    {51, kFlags, kVendor, {}}, {52, kCsfFlags, {}, {}}, {53, kFlags, kOneWayLoss, {}}, {54, kFlags, kSyntheticLoss, {}},
    {55, kFlags, kSyntheticLoss, {}}};

}  // namespace

int32_t DecodeFaultManagement(const Place& at, Cursor c) {
  if (Left(c) < 4) return 0;
  const Cfm ahead = PeekRows(c, kHead);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "CFM: %s, Level %u", LookupName(kOpcodeNames, ahead.opcode.value),
                                     ahead.level.value));
  Cfm cfm = ShowRows(in, c, kHead);
  const Message* message = nullptr;
  for (const Message& each : kMessages) {
    if (each.opcode == cfm.opcode.value) message = &each;
  }
  ShowRows<Cfm>(in, c, message ? message->flags : RowSpan<Cfm>(kFlags), cfm);
  ShowRows<Cfm>(in, c, kOffset, cfm);
  Cursor fields = TakeCursor(c, cfm.offset.value);
  if (message && message->fields.count && Left(fields)) ShowRows<Cfm>(in, fields, message->fields, cfm);
  if (message && message->more.count && Left(fields)) ShowRows<Cfm>(in, fields, message->more, cfm);
  fields.ranShort = false;
  AddBlock(in, Rest(fields), "Data");
  ShowFaultElements(in, c, cfm);
  CoverBytes(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "Padding");
  return 1;
}

}  // namespace qxview
