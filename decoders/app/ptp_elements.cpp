// Elements of PTP messages (IEEE 1588-2019 clause 14, IEEE 802.1AS): management's data, paths, alternate time scales, unicast
// negotiation, what organizations extend.
//
//   type (2)   length (2)   value; a management element's begins with its identifier
#include "core/elements.h"
#include "decoders/link/ptp.h"

namespace qxview {
namespace {

constexpr auto kErrorNames = SortedNames({
    {1, "Response Too Big"}, {2, "No Such ID"}, {3, "Wrong Length"}, {4, "Wrong Value"}, {5, "Not Settable"}, {6,
    "Not Supported"},
    {7, "Unpopulated"}, {0xFFFE, "General Error"}});
constexpr auto kMessageNames = SortedNames({
    {0, "Sync"}, {1, "Delay_Req"}, {2, "Pdelay_Req"}, {3, "Pdelay_Resp"}, {8, "Follow_Up"}, {9, "Delay_Resp"},
    {10, "Pdelay_Resp_Follow_Up"}, {11, "Announce"}, {12, "Signaling"}, {13, "Management"}});
constexpr auto kStateNames = SortedNames({
    {1, "Initializing"}, {2, "Faulty"}, {3, "Disabled"}, {4, "Listening"}, {5, "Pre-master"}, {6, "Master"}, {7,
    "Passive"},
    {8, "Uncalibrated"}, {9, "Slave"}});
constexpr auto kDelayNames = SortedNames({
    {1, "End to End"}, {2, "Peer to Peer"}, {3, "Common Peer to Peer"}, {4, "Special"}, {0xFE, "No Mechanism"}});
constexpr auto kNetworkNames = SortedNames({
    {1, "UDP over IPv4"}, {2, "UDP over IPv6"}, {3, "IEEE 802.3"}, {4, "DeviceNet"}, {5, "ControlNet"}, {6, "PROFINET"},
    {0xFFFE, "Unknown"}});
constexpr auto kSeverityNames = SortedNames({
    {0, "Emergency"}, {1, "Alert"}, {2, "Critical"}, {3, "Error"}, {4, "Warning"}, {5, "Notice"}, {6, "Informational"},
    {7, "Debug"}});
constexpr auto kInitializeNames = SortedNames({{0, "Initialize Event"}});

struct PtpElement {
  Field id, count, size, subtype, organization;
};

// --- management's data ---

constexpr auto kNumber1 = Rows<PtpElement>({Number(1, nullptr), Number(1, "Reserved")});
constexpr auto kSigned1 = Rows<PtpElement>({Signed(1, nullptr), Number(1, "Reserved")});
constexpr auto kFlag1 = Rows<PtpElement>({Word(1), Bits(0, 7, "Reserved"), Flag(7, "Enabled"), Number(1, "Reserved")});
constexpr auto kText = Rows<PtpElement>({Counted(1, Utf8(0, nullptr))});
constexpr auto kInitialize = Rows<PtpElement>({Number(2, "Initialization Key", kInitializeNames)});
constexpr auto kSlaveOnly = Rows<PtpElement>({Word(1), Bits(0, 7, "Reserved"), Flag(7, "Slave Only"), Number(1,
    "Reserved")});
constexpr auto kDefault = Rows<PtpElement>({
    Word(1), Bits(0, 6, "Reserved"), Flag(6, "Slave Only"), Flag(7, "Two Step"), Number(1, "Reserved"), Number(2,
    "Number of Ports"),
    Number(1, "Priority 1"), Number(1, "Clock Class", kPtpClassNames), Hex(1, "Clock Accuracy", kPtpAccuracyNames),
    Number(2, "Clock Variance"), Number(1, "Priority 2"), Eui64("Clock Identity"), Number(1, "Domain Number"),
    Number(1, "Reserved")});
constexpr auto kCurrent = Rows<PtpElement>({
    Number(2, "Steps Removed"), Signed(8, "Offset from Master", " x 2^-16 ns"), Signed(8, "Mean Path Delay",
    " x 2^-16 ns")});
constexpr auto kParent = Rows<PtpElement>({
    Eui64("Parent Clock Identity"), Number(2, "Parent Port ID"), Word(1), Bits(0, 7, "Reserved"), Flag(7,
    "Parent Statistics"),
    Number(1, "Reserved"), Number(2, "Observed Parent Variance"), Signed(4, "Observed Parent Phase Change Rate"),
    Number(1, "Grandmaster Priority 1"), Number(1, "Grandmaster Clock Class", kPtpClassNames),
    Hex(1, "Grandmaster Clock Accuracy", kPtpAccuracyNames), Number(2, "Grandmaster Clock Variance"),
    Number(1, "Grandmaster Priority 2"), Eui64("Grandmaster Identity")});
constexpr auto kTimeFlags = Rows<PtpElement>({
    Word(1), Bits(0, 2, "Reserved"), Flag(2, "Frequency Traceable"), Flag(3, "Time Traceable"), Flag(4,
    "PTP Timescale"),
    Flag(5, "UTC Offset Valid"), Flag(6, "Leap Second 59"), Flag(7, "Leap Second 61")});
constexpr auto kTimeOffset = Rows<PtpElement>({Signed(2, "Current UTC Offset", " seconds")});
constexpr auto kTimeSource = Rows<PtpElement>({Hex(1, "Time Source", kPtpSourceNames)});
constexpr auto kReserved = Rows<PtpElement>({Number(1, "Reserved")});
void ShowTimeProperties(const Place& in, Cursor& c, PtpElement& out) {
  ShowRows<PtpElement>(in, c, kTimeOffset, out);
  ShowRows<PtpElement>(in, c, kTimeFlags, out);
  ShowRows<PtpElement>(in, c, kTimeSource, out);
}
void ShowUtcProperties(const Place& in, Cursor& c, PtpElement& out) {
  ShowRows<PtpElement>(in, c, kTimeOffset, out);
  ShowRows<PtpElement>(in, c, kTimeFlags, out);
  ShowRows<PtpElement>(in, c, kReserved, out);
}
void ShowTraceability(const Place& in, Cursor& c, PtpElement& out) {
  ShowRows<PtpElement>(in, c, kTimeFlags, out);
  ShowRows<PtpElement>(in, c, kReserved, out);
}
void ShowTimescale(const Place& in, Cursor& c, PtpElement& out) {
  ShowRows<PtpElement>(in, c, kTimeFlags, out);
  ShowRows<PtpElement>(in, c, kTimeSource, out);
}
constexpr auto kPort = Rows<PtpElement>({
    Eui64("Port Clock Identity"), Number(2, "Port ID"), Number(1, "Port State", kStateNames),
    Signed(1, "Log Minimum Delay Request Interval"), Signed(8, "Peer Mean Path Delay", " x 2^-16 ns"),
    Signed(1, "Log Announce Interval"), Number(1, "Announce Receipt Timeout"), Signed(1, "Log Sync Interval"),
    Number(1, "Delay Mechanism", kDelayNames), Signed(1, "Log Minimum Peer Delay Request Interval"), Word(1),
    Bits(0, 4, "Reserved"), Bits(4, 4, "Version Number")});
constexpr auto kTime = Rows<PtpElement>({Number(6, "Current Time Seconds"), Number(4, "Current Time Nanoseconds")});
constexpr auto kAccuracy = Rows<PtpElement>({Hex(1, "Clock Accuracy", kPtpAccuracyNames), Number(1, "Reserved")});
constexpr auto kDelay = Rows<PtpElement>({Number(1, "Delay Mechanism", kDelayNames), Number(1, "Reserved")});
constexpr auto kPathTrace = Rows<PtpElement>({Eui64("Path Clock Identity")});
constexpr auto kOffsetEnable = Rows<PtpElement>({
    Number(1, "Key Field"), Word(1), Bits(0, 7, "Reserved"), Flag(7, "Enabled")});
constexpr auto kOffsetName = Rows<PtpElement>({Number(1, "Key Field"), Counted(1, Utf8(0, "Display Name"))});
constexpr auto kOffsetKey = Rows<PtpElement>({Number(1, "Maximum Key"), Number(1, "Reserved")});
constexpr auto kOffsets = Rows<PtpElement>({
    Number(1, "Key Field"), Signed(4, "Current Offset", " seconds"), Signed(4, "Jump", " seconds"),
    Number(6, "Time of Next Jump", " seconds"), Number(1, "Reserved")});
constexpr auto kTransparentDefault = Rows<PtpElement>({
    Eui64("Clock Identity"), Number(2, "Number of Ports"), Number(1, "Delay Mechanism", kDelayNames), Number(1,
    "Primary Domain")});
constexpr auto kTransparentPort = Rows<PtpElement>({
    Eui64("Port Clock Identity"), Number(2, "Port ID"), Word(1), Bits(0, 7, "Reserved"), Flag(7, "Faulty"),
    Signed(1, "Log Minimum Peer Delay Request Interval"), Signed(8, "Peer Mean Path Delay", " x 2^-16 ns")});
constexpr auto kAlternate = Rows<PtpElement>({
    Word(1), Bits(0, 7, "Reserved"), Flag(7, "Send Alternate Multicast Sync"), Signed(1,
    "Log Alternate Multicast Sync Interval"),
    Number(1, "Number of Alternate Masters"), Number(1, "Reserved")});
constexpr auto kAddress = Rows<PtpElement>({
    Number(2, "Network Protocol", kNetworkNames), Counted(2, Bytes(0, "Address"))});
constexpr auto kTableHead = Rows<PtpElement>({Signed(1, "Log Query Interval"), Number(2,
    "Table Size").Into(&PtpElement::count)});
constexpr auto kTableHead2 = Rows<PtpElement>({Number(2, "Table Size").Into(&PtpElement::count)});
constexpr auto kTableMost = Rows<PtpElement>({Number(2, "Maximum Table Size")});

void ShowAddresses(const Place& in, Cursor& c, PtpElement& out) {
  Loop loop;
  for (uint32_t i = 0; i < out.count.value && MoreAt(in, c, loop); ++i) ShowRows<PtpElement>(in, c, kAddress, out);
}
void ShowUnicastTable(const Place& in, Cursor& c, PtpElement& out) {
  ShowRows<PtpElement>(in, c, kTableHead, out);
  ShowAddresses(in, c, out);
}
void ShowAcceptableTable(const Place& in, Cursor& c, PtpElement& out) {
  constexpr auto kMaster = Rows<PtpElement>({
      Eui64("Acceptable Clock Identity"), Number(2, "Acceptable Port ID"), Number(1, "Alternate Priority 1")});
  ShowRows<PtpElement>(in, c, kTableHead2, out);
  Loop loop;
  for (uint32_t i = 0; i < out.count.value && MoreAt(in, c, loop); ++i) ShowRows<PtpElement>(in, c, kMaster, out);
}
void ShowClusterTable(const Place& in, Cursor& c, PtpElement& out) {
  constexpr auto kHead = Rows<PtpElement>({Signed(1, "Log Query Interval"), Number(1,
      "Table Size").Into(&PtpElement::count)});
  ShowRows<PtpElement>(in, c, kHead, out);
  ShowAddresses(in, c, out);
}
void ShowPath(const Place& in, Cursor& c, PtpElement& out) {
  Loop loop;
  while (Left(c) >= 8 && MoreAt(in, c, loop)) ShowRows<PtpElement>(in, c, kPathTrace, out);
}
void ShowDescription(const Place& in, Cursor& c, PtpElement& out) {
  constexpr auto kDescription = Rows<PtpElement>({
      Word(2), Bits(0, 12, "Reserved"), Flag(12, "Management Clock"), Flag(13, "Peer to Peer Transparent Clock"),
      Flag(14, "End to End Transparent Clock"), Flag(15, "Boundary or Ordinary Clock"),
      Counted(1, Utf8(0, "Physical Layer Protocol")), Counted(2, Bytes(0, "Physical Address"))});
  constexpr auto kRest = Rows<PtpElement>({
      Bytes(3, "Manufacturer Identity"), Number(1, "Reserved"), Counted(1, Utf8(0, "Product Description")),
      Counted(1, Utf8(0, "Revision Data")), Counted(1, Utf8(0, "User Description")), Bytes(6, "Profile Identity")});
  ShowRows<PtpElement>(in, c, kDescription, out);
  ShowRows<PtpElement>(in, c, kAddress, out);
  ShowRows<PtpElement>(in, c, kRest, out);
}
constexpr auto kFaultCount = Rows<PtpElement>({Number(2, "Number of Fault Records").Into(&PtpElement::count)});
constexpr auto kFault = Rows<PtpElement>({
    Number(2, "Fault Record Length"), Number(6, "Fault Time Seconds"), Number(4, "Fault Time Nanoseconds"),
    Number(1, "Severity", kSeverityNames), Counted(1, Utf8(0, "Fault Name")), Counted(1, Utf8(0, "Fault Value")),
    Counted(1, Utf8(0, "Fault Description"))});
void ShowFaults(const Place& in, Cursor& c, PtpElement& out) {
  ShowRows<PtpElement>(in, c, kFaultCount, out);
  Loop loop;
  for (uint32_t i = 0; i < out.count.value && MoreAt(in, c, loop); ++i) ShowRows<PtpElement>(in, c, kFault, out);
}

constexpr auto kManagement = Choices<PtpElement>({
    {0x0000, "NULL_PTP_MANAGEMENT"}, {0x0001, "CLOCK_DESCRIPTION", {}, ShowDescription}, {0x0002, "USER_DESCRIPTION",
    kText},
    {0x0003, "SAVE_IN_NON_VOLATILE_STORAGE"}, {0x0004, "RESET_NON_VOLATILE_STORAGE"}, {0x0005, "INITIALIZE",
    kInitialize},
    {0x0006, "FAULT_LOG", {}, ShowFaults}, {0x0007, "FAULT_LOG_RESET"}, {0x2000, "DEFAULT_DATA_SET", kDefault},
    {0x2001, "CURRENT_DATA_SET", kCurrent}, {0x2002, "PARENT_DATA_SET", kParent},
    {0x2003, "TIME_PROPERTIES_DATA_SET", {}, ShowTimeProperties}, {0x2004, "PORT_DATA_SET", kPort}, {0x2005,
    "PRIORITY1", kNumber1},
    {0x2006, "PRIORITY2", kNumber1}, {0x2007, "DOMAIN", kNumber1}, {0x2008, "SLAVE_ONLY", kSlaveOnly},
    {0x2009, "LOG_ANNOUNCE_INTERVAL", kSigned1}, {0x200A, "ANNOUNCE_RECEIPT_TIMEOUT", kNumber1},
    {0x200B, "LOG_SYNC_INTERVAL", kSigned1}, {0x200C, "VERSION_NUMBER", kNumber1}, {0x200D, "ENABLE_PORT"},
    {0x200E, "DISABLE_PORT"}, {0x200F, "TIME", kTime}, {0x2010, "CLOCK_ACCURACY", kAccuracy},
    {0x2011, "UTC_PROPERTIES", {}, ShowUtcProperties}, {0x2012, "TRACEABILITY_PROPERTIES", {}, ShowTraceability},
    {0x2013, "TIMESCALE_PROPERTIES", {}, ShowTimescale}, {0x2014, "UNICAST_NEGOTIATION_ENABLE", kFlag1},
    {0x2015, "PATH_TRACE_LIST", {}, ShowPath}, {0x2016, "PATH_TRACE_ENABLE", kFlag1},
    {0x2017, "GRANDMASTER_CLUSTER_TABLE", {}, ShowClusterTable}, {0x2018, "UNICAST_MASTER_TABLE", {}, ShowUnicastTable},
    {0x2019, "UNICAST_MASTER_MAX_TABLE_SIZE", kTableMost}, {0x201A, "ACCEPTABLE_MASTER_TABLE", {}, ShowAcceptableTable},
    {0x201B, "ACCEPTABLE_MASTER_TABLE_ENABLED", kFlag1}, {0x201C, "ACCEPTABLE_MASTER_MAX_TABLE_SIZE", kTableMost},
    {0x201D, "ALTERNATE_MASTER", kAlternate}, {0x201E, "ALTERNATE_TIME_OFFSET_ENABLE", kOffsetEnable},
    {0x201F, "ALTERNATE_TIME_OFFSET_NAME", kOffsetName}, {0x2020, "ALTERNATE_TIME_OFFSET_MAX_KEY", kOffsetKey},
    {0x2021, "ALTERNATE_TIME_OFFSET_PROPERTIES", kOffsets}, {0x3000, "EXTERNAL_PORT_CONFIGURATION_ENABLED", kFlag1},
    {0x3001, "MASTER_ONLY", kFlag1}, {0x3002, "HOLDOVER_UPGRADE_ENABLE", kFlag1},
    {0x3003, "EXT_PORT_CONFIG_PORT_DATA_SET", kNumber1}, {0x4000, "TRANSPARENT_CLOCK_DEFAULT_DATA_SET",
    kTransparentDefault},
    {0x4001, "TRANSPARENT_CLOCK_PORT_DATA_SET", kTransparentPort}, {0x4002, "PRIMARY_DOMAIN", kNumber1},
    {0x6000, "DELAY_MECHANISM", kDelay}, {0x6001, "LOG_MIN_PDELAY_REQ_INTERVAL", kSigned1}});

const char* NameManagement(uint32_t id) {
  const Choice<PtpElement>* choice = FindChoice<PtpElement>(kManagement, id);
  return choice ? choice->name : id >= 0xC000 && id <= 0xDFFF ? "Implementation Specific" : kUnknown;
}
void ShowManagement(const Place& in, Cursor& c, PtpElement& out) {
  const Field id = TakeU16(c);
  const char* name = NameManagement(id.value);
  AddLine(in, id, "Management ID: 0x%.04X = %s", id.value, name);
  AppendToParent(in, id, ", %s", name);
  if (Left(c) < 1) return;
  ShowChoice<PtpElement>(in, c, FindChoice<PtpElement>(kManagement, id.value), out);
}
constexpr auto kErrorStatus = Rows<PtpElement>({Number(2, "Management Error", kErrorNames).Note(", %s")});
constexpr auto kErrorRest = Rows<PtpElement>({Number(4, "Reserved"), Counted(1, Utf8(0, "Display Data"))});
void ShowError(const Place& in, Cursor& c, PtpElement& out) {
  ShowRows<PtpElement>(in, c, kErrorStatus, out);
  const Field id = TakeU16(c);
  AddLine(in, id, "Management ID: 0x%.04X = %s", id.value, NameManagement(id.value));
  ShowRows<PtpElement>(in, c, kErrorRest, out);
}

// --- other elements ---

constexpr auto kRequest = Rows<PtpElement>({
    Word(1), Bits(0, 4, "Message Type", kMessageNames), Bits(4, 4, "Reserved"), Signed(1, "Log Inter-message Period"),
    Number(4, "Duration", " seconds")});
constexpr auto kGrant = Rows<PtpElement>({
    Word(1), Bits(0, 4, "Message Type", kMessageNames), Bits(4, 4, "Reserved"), Signed(1, "Log Inter-message Period"),
    Number(4, "Duration", " seconds"), Number(1, "Reserved"), Word(1), Bits(0, 7, "Reserved"), Flag(7,
    "Renewal Invited")});
constexpr auto kCancel = Rows<PtpElement>({
    Word(1), Bits(0, 4, "Message Type", kMessageNames), Bits(4, 2, "Reserved"), Flag(6, "Maintain Request"),
    Flag(7, "Maintain Grant"), Number(1, "Reserved")});
constexpr auto kOffsetIndicator = Rows<PtpElement>({
    Number(1, "Key Field"), Signed(4, "Current Offset", " seconds"), Signed(4, "Jump", " seconds"),
    Number(6, "Time of Next Jump", " seconds"), Counted(1, Utf8(0, "Display Name"))});
constexpr auto kLayer1 = Rows<PtpElement>({
    Word(2), Bits(0, 13, "Reserved"), Flag(13, "Congruent"), Flag(14, "Receive Coherent"), Flag(15,
    "Transmit Coherent")});
constexpr auto kAddresses = Rows<PtpElement>({Number(2, "Network Protocol", kNetworkNames), Bytes(0, "Addresses")});
constexpr auto kCumulative = Rows<PtpElement>({Signed(4, "Cumulative Rate Ratio", " x 2^-41")});
constexpr auto kPadding = Rows<PtpElement>({Bytes(0, "Pad")});
constexpr auto kAuthentication = Rows<PtpElement>({
    Number(1, "Security Parameter Pointer"), Hex(1, "Security Parameter Indicator"), Number(4, "Key ID"), Bytes(0,
    "Integrity Check")});

constexpr auto kOrganization = Rows<PtpElement>({
    Hex(3, "Organization").Into(&PtpElement::organization), Hex(3, "Organization Subtype").Into(&PtpElement::subtype)});
constexpr auto kFollowUp = Rows<PtpElement>({
    Signed(4, "Cumulative Scaled Rate Offset", " x 2^-41"), Number(2, "GM Time Base Indicator"), Bytes(12,
    "Last GM Phase Change"),
    Signed(4, "Scaled Last GM Frequency Change", " x 2^-41")});
constexpr auto kIntervals = Rows<PtpElement>({
    Signed(1, "Link Delay Interval"), Signed(1, "Time Sync Interval"), Signed(1, "Announce Interval"), Word(1), Bits(0,
    5, "Reserved"),
    Flag(5, "One-step Receive Capable"), Flag(6, "Compute Mean Link Delay"), Flag(7, "Compute Neighbour Rate Ratio"),
    Number(2, "Reserved")});
constexpr auto kTimingSignal = Rows<PtpElement>({Bytes(16, "Source Port Identity")});
constexpr auto kCapable = Rows<PtpElement>({Signed(1, "Log gPTP Capable Message Interval"), Hex(1, "Flags"), Number(4,
    "Reserved")});
constexpr auto kCapableInterval = Rows<PtpElement>({Signed(1, "Log gPTP Capable Message Interval"), Number(3,
    "Reserved")});
constexpr auto kSmpteLock = Rows<PtpElement>({
    Text(4, "Default System Frame Rate"), Bytes(0, "Metadata")});
constexpr uint32_t kIeee8021 = 0x0080C2, kSmpte = 0x6897E8;
void ShowOrganization(const Place& in, Cursor& c, PtpElement& out) {
  ShowRows<PtpElement>(in, c, kOrganization, out);
  if (out.organization.value == kSmpte && out.subtype.value == 1) return ShowRows<PtpElement>(in, c, kSmpteLock, out);
  if (out.organization.value != kIeee8021) return;
  switch (out.subtype.value) {
    case 1: return ShowRows<PtpElement>(in, c, kFollowUp, out);
    case 2: return ShowRows<PtpElement>(in, c, kIntervals, out);
    case 3: return ShowRows<PtpElement>(in, c, kTimingSignal, out);
    case 4: return ShowRows<PtpElement>(in, c, kCapable, out);
    case 5: return ShowRows<PtpElement>(in, c, kCapableInterval, out);
    default: return;
  }
}

constexpr auto kSource = Rows<PtpElement>({Eui64("Source Clock Identity"), Number(2, "Source Port ID")});
constexpr auto kTiming = Rows<PtpElement>({
    Number(2, "Sequence ID"), Number(6, "Sync Origin Timestamp Seconds"), Number(4, "Sync Origin Timestamp Nanoseconds"),
    Signed(8, "Total Correction", " x 2^-16 ns"), Signed(4, "Scaled Cumulative Rate Offset"),
    Number(6, "Sync Ingress Timestamp Seconds"), Number(4, "Sync Ingress Timestamp Nanoseconds")});
constexpr auto kComputedHead = Rows<PtpElement>({
    Word(1), Bits(0, 5, "Reserved"), Flag(5, "Offset from Master Valid"), Flag(6, "Mean Path Delay Valid"),
    Flag(7, "Neighbour Rate Ratio Valid"), Number(1, "Reserved")});
constexpr auto kComputed = Rows<PtpElement>({
    Number(2, "Sequence ID"), Signed(8, "Offset from Master", " x 2^-16 ns"), Signed(8, "Mean Path Delay", " x 2^-16 ns"),
    Signed(4, "Scaled Neighbour Rate Ratio")});
constexpr auto kSentHead = Rows<PtpElement>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Event Message Type", kMessageNames), Number(1, "Reserved")});
constexpr auto kSent = Rows<PtpElement>({
    Number(2, "Sequence ID"), Number(6, "Egress Timestamp Seconds"), Number(4, "Egress Timestamp Nanoseconds")});
constexpr auto kAvailability = Rows<PtpElement>({
    Word(1), Bits(0, 5, "Reserved"), Flag(5, "Unicast with Negotiation"), Flag(6, "Unicast"), Flag(7, "Multicast"), Word(1),
    Bits(0, 5, "Reserved"), Flag(5, "Delay Responses by Unicast with Negotiation"), Flag(6, "Delay Responses by Unicast"),
    Flag(7, "Delay Responses by Multicast")});
constexpr auto kMetrics = Rows<PtpElement>({
    Number(1, "Boundary Clock Hops"), Number(1, "Transparent Clock Hops"), Number(2, "Reserved"),
    Signed(8, "Maximum Grandmaster Inaccuracy", " x 2^-16 ns"), Signed(8, "Variance of Grandmaster Inaccuracy"),
    Signed(8, "Maximum Transient Inaccuracy", " x 2^-16 ns"), Signed(8, "Variance of Transient Inaccuracy"),
    Signed(8, "Maximum Dynamic Inaccuracy", " x 2^-16 ns"), Signed(8, "Variance of Dynamic Inaccuracy"),
    Signed(8, "Maximum Static Instance Inaccuracy", " x 2^-16 ns"), Signed(8, "Variance of Static Instance Inaccuracy"),
    Signed(8, "Maximum Static Medium Inaccuracy", " x 2^-16 ns"), Signed(8, "Variance of Static Medium Inaccuracy")});
constexpr auto kFrequency = Rows<PtpElement>({Signed(4, "Cumulative Frequency Scale Factor Offset")});

void ShowEach(const Place& in, Cursor& c, RowSpan<PtpElement> rows, PtpElement& out) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<PtpElement>(in, c, rows, out);
}
void ShowTimings(const Place& in, Cursor& c, PtpElement& out) { ShowEach(in, c, kTiming, out); }
void ShowComputed(const Place& in, Cursor& c, PtpElement& out) {
  ShowRows<PtpElement>(in, c, kComputedHead, out);
  ShowEach(in, c, kComputed, out);
}
void ShowSent(const Place& in, Cursor& c, PtpElement& out) {
  ShowRows<PtpElement>(in, c, kSentHead, out);
  ShowEach(in, c, kSent, out);
}

constexpr auto kElements = Choices<PtpElement>({
    {0x0001, "MANAGEMENT", {}, ShowManagement}, {0x0002, "MANAGEMENT_ERROR_STATUS", {}, ShowError},
    {0x0003, "ORGANIZATION_EXTENSION", {}, ShowOrganization}, {0x0004, "REQUEST_UNICAST_TRANSMISSION", kRequest},
    {0x0005, "GRANT_UNICAST_TRANSMISSION", kGrant}, {0x0006, "CANCEL_UNICAST_TRANSMISSION", kCancel},
    {0x0007, "ACKNOWLEDGE_CANCEL_UNICAST_TRANSMISSION", kCancel}, {0x0008, "PATH_TRACE", {}, ShowPath},
    {0x0009, "ALTERNATE_TIME_OFFSET_INDICATOR", kOffsetIndicator}, {0x2000, "AUTHENTICATION (2008)"},
    {0x2001, "AUTHENTICATION_CHALLENGE"}, {0x2002, "SECURITY_ASSOCIATION_UPDATE"}, {0x2003,
    "CUM_FREQ_SCALE_FACTOR_OFFSET", kFrequency},
    {0x4000, "ORGANIZATION_EXTENSION_PROPAGATE", {}, ShowOrganization}, {0x4001, "ENHANCED_ACCURACY_METRICS", kMetrics},
    {0x8000, "ORGANIZATION_EXTENSION_DO_NOT_PROPAGATE", {}, ShowOrganization}, {0x8001, "L1_SYNC", kLayer1},
    {0x8002, "PORT_COMMUNICATION_AVAILABILITY", kAvailability}, {0x8003, "PROTOCOL_ADDRESS", kAddresses},
    {0x8004, "SLAVE_RX_SYNC_TIMING_DATA", kSource, ShowTimings},
    {0x8005, "SLAVE_RX_SYNC_COMPUTED_DATA", kSource, ShowComputed}, {0x8006, "SLAVE_TX_EVENT_TIMESTAMPS", kSource, ShowSent},
    {0x8007, "CUMULATIVE_RATE_RATIO", kCumulative}, {0x8008, "PAD", kPadding}, {0x8009, "AUTHENTICATION",
    kAuthentication}});

}  // namespace

void ShowPtpElements(const Place& in, Cursor& c) {
  constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2};
  PtpElement out{};
  ShowElements<PtpElement>(in, c, kForm, "TLV", kElements, out);
}

}  // namespace qxview
