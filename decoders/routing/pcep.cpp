// Path Computation Element communication Protocol (RFC 5440; objective functions: RFC 5541, monitoring: RFC 5886, path keys:
// RFC 5520, exclusions: RFC 5521, several leaves: RFC 8306, states: RFC 8231, initiation: RFC 8281, associations: RFC 8697,
// central control: RFC 9050, TLS: RFC 8253): routers ask a computer for their paths.
//
//   message   version, flags (3 and 5 bits)   type (1)   length with all (2)   objects
//   object    class (1)   type (4 bits), flags (4 bits)   length with all (2)   body and TLVs
#include "decoders/routing/pcep.h"

#include "core/line_facts.h"
#include "decoders/common/traffic_engineering.h"
#include "decoders/message_lengths.h"
#include "decoders/routing/prefix.h"
#include "decoders/routing/rsvp.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 4;

constexpr auto kTypeNames = SortedNames({
    {0, "Reserved"}, {1, "Open"}, {2, "Keepalive"}, {3, "Path Computation Request"}, {4, "Path Computation Reply"},
    {5, "Notification"}, {6, "Error"}, {7, "Close"}, {8, "Path Computation Monitoring Request"},
    {9, "Path Computation Monitoring Reply"}, {10, "Report"}, {11, "Update"}, {12, "LSP Initiate Request"},
    {13, "StartTLS"}});
constexpr auto kNoPathNames = SortedNames({{0, "No Path Satisfying the Constraints"}, {1, "PCE Chain Broken"}});
constexpr auto kMetricNames = SortedNames({
    {1, "IGP Metric"}, {2, "TE Metric"}, {3, "Hop Count"}, {4, "Aggregate Bandwidth Consumption"},
    {5, "Load of the Most Loaded Link"}, {6, "Cumulative IGP Cost"}, {7, "Cumulative TE Cost"}, {8, "P2MP IGP Metric"},
    {9, "P2MP TE Metric"}, {10, "P2MP Hop Count Metric"}, {11, "Segment ID Depth"}, {12, "Path Delay"},
    {13, "Path Delay Variation"}, {14, "Path Loss"}, {15, "P2MP Path Delay"}, {16, "P2MP Path Delay Variation"},
    {17, "P2MP Path Loss"}, {18, "Number of Adaptations on a Path"}, {19, "Number of Layers on a Path"},
    {20, "Domain Count"}, {21, "Border Node Count"}});
constexpr auto kNoticeNames = SortedNames({
    {1, "Pending Request Cancelled"}, {2, "Overloaded PCE"}, {3, "PCE Resource Limit"}, {4, "Stateful Resource Limit"},
    {5, "Auto-Bandwidth Overwhelm"}});
constexpr auto kCloseNames = SortedNames({
    {1, "No Explanation"}, {2, "DeadTimer Expired"}, {3, "Malformed Message"}, {4, "Too Many Unknown Requests"},
    {5, "Too Many Unrecognized Messages"}});
constexpr auto kLeafNames = SortedNames({
    {1, "New Leaves to Add"}, {2, "Old Leaves to Remove"}, {3, "Old Leaves That May Be Modified"},
    {4, "Old Leaves That Must Stay"}});
constexpr auto kStateNames = SortedNames({
    {0, "Down"}, {1, "Up"}, {2, "Active"}, {3, "Going Down"}, {4, "Going Up"}});
constexpr auto kUseNames = SortedNames({{1, "Link Bandwidth Utilization"}, {2, "Link Residual Bandwidth Utilization"}});
constexpr auto kHead = Rows<Pcep>({
    Word(1), Bits(0, 3, "Version"), Bits(3, 5, "Flags"), Number(1, "Message Type", kTypeNames),
    Number(2, "Message Length")});

constexpr auto kOpen = Rows<Pcep>({
    Word(1), Bits(0, 3, "Version"), Bits(3, 5, "Flags"), Number(1, "Keepalive", " seconds"),
    Number(1, "Dead Timer", " seconds"), Number(1, "Session ID").Note(", Session %u")});
constexpr auto kRequest = Rows<Pcep>({
    Word(4), Bits(0, 16, "Reserved"), Flag(16, "Passive"), Bits(17, 2, "Reserved Flags"), Flag(19, "Fragmentation"),
    Flag(20, "ERO Compression"), Flag(21, "P2MP"), Flag(22, "Make-Before-Break"), Flag(23, "Path Key"),
    Flag(24, "Supply OF"), Flag(25, "Vendor-Specific Order"), Flag(26, "Strict or Loose"), Flag(27, "Bidirectional"),
    Flag(28, "Reoptimization"), Bits(29, 3, "Priority"), Hex(4, "Request ID").Note(", 0x%.08X")});
constexpr auto kNoPath = Rows<Pcep>({
    Number(1, "Nature of Issue", kNoPathNames).Note(", %s"), Hex(2, "Flags"), Flag(0, "Unsatisfied Constraints"),
    Bits(1, 15, "Reserved"), Hex(1, "Reserved")});
constexpr auto kEnds4 = Rows<Pcep>({
    IPv4("Source IPv4 Address").Note(", %s"), IPv4("Destination IPv4 Address").Note(" to %s")});
constexpr auto kEnds6 = Rows<Pcep>({
    IPv6("Source IPv6 Address").Note(", %s"), IPv6("Destination IPv6 Address").Note(" to %s")});
constexpr auto kLeaves4 = Rows<Pcep>({
    Number(4, "Leaf Type", kLeafNames).Note(", %s"), IPv4("Source IPv4 Address").Note(", %s")});
constexpr auto kLeaves6 = Rows<Pcep>({
    Number(4, "Leaf Type", kLeafNames).Note(", %s"), IPv6("Source IPv6 Address").Note(", %s")});
constexpr auto kLeaf4 = Rows<Pcep>({IPv4("Destination IPv4 Address").Note(", %s")});
constexpr auto kLeaf6 = Rows<Pcep>({IPv6("Destination IPv6 Address").Note(", %s")});
constexpr auto kEndpointNames = SortedNames({
    {0, "Point-to-Point"}, {1, "Point-to-Multipoint, New Leaves to Add"},
    {2, "Point-to-Multipoint, Old Leaves to Remove"}, {3, "Point-to-Multipoint, Old Leaves That May Be Modified"},
    {4, "Point-to-Multipoint, Old Leaves That Must Stay"}});
constexpr auto kGeneralEnds = Rows<Pcep>({Hex(3, "Reserved"), Number(1, "Endpoint Type", kEndpointNames).Note(", %s")});
constexpr auto kBandwidth = Rows<Pcep>({Float(4, "Bandwidth").Note(", %s")});
constexpr auto kMetric = Rows<Pcep>({
    Hex(2, "Reserved"), Word(1), Bits(0, 6, "Reserved"), Flag(6, "Computed"), Flag(7, "Bound"),
    Number(1, "Metric Type", kMetricNames).Note(", %s"), Float(4, "Metric Value").Note(", %s")});
constexpr auto kLspa = Rows<Pcep>({
    Hex(4, "Exclude Any"), Hex(4, "Include Any"), Hex(4, "Include All"), Number(1, "Setup Priority"),
    Number(1, "Holding Priority"), Word(1), Bits(0, 7, "Reserved"), Flag(7, "Local Protection Desired"), Hex(1, "Reserved")});
constexpr auto kSvec = Rows<Pcep>({
    Hex(1, "Reserved"), Hex(3, "Flags"), Bits(0, 19, "Reserved"), Flag(19, "Partial Path Diverse"),
    Flag(20, "SRLG Diverse Link"), Flag(21, "SRLG Diverse"), Flag(22, "Node Diverse"), Flag(23, "Link Diverse")});
constexpr auto kRequestId = Rows<Pcep>({Hex(4, "Request ID")});
constexpr auto kNotice = Rows<Pcep>({
    Hex(1, "Reserved"), Hex(1, "Flags"), Number(1, "Notification Type", kNoticeNames).Note(", %s"),
    Number(1, "Notification Value")});
constexpr auto kErrorHead = Rows<Pcep>({
    Hex(1, "Reserved"), Hex(1, "Flags"), Number(1, "Error Type", PcepErrorName).Note(", %s").Into(&Pcep::code)});
constexpr auto kBalancing = Rows<Pcep>({
    Hex(2, "Reserved"), Hex(1, "Flags"), Number(1, "Maximum Number of LSPs"), Float(4, "Minimum Bandwidth")});
constexpr auto kClose = Rows<Pcep>({
    Hex(2, "Reserved"), Hex(1, "Flags"), Number(1, "Reason", kCloseNames).Note(", %s")});
constexpr auto kExclude = Rows<Pcep>({Hex(2, "Reserved"), Word(2), Bits(0, 15, "Reserved"), Flag(15, "Fail")});
constexpr auto kMonitoring = Rows<Pcep>({
    Hex(1, "Reserved"), Hex(3, "Flags"), Bits(0, 19, "Reserved"), Flag(19, "Incomplete"), Flag(20, "Overload"),
    Flag(21, "Processing Time"), Flag(22, "General"), Flag(23, "Liveness"), Hex(4, "Monitoring ID").Note(", 0x%.08X")});
constexpr auto kAddress4 = Rows<Pcep>({IPv4("IPv4 Address").Note(", %s")});
constexpr auto kAddress6 = Rows<Pcep>({IPv6("IPv6 Address").Note(", %s")});
constexpr auto kObjective = Rows<Pcep>({
    Number(2, "Objective Function", PcepObjectiveName).Note(", %s"), Hex(2, "Reserved")});
constexpr auto kDiffServ = Rows<Pcep>({Word(4), Bits(0, 29, "Reserved"), Bits(29, 3, "Class-Type")});
constexpr auto kConstraints = Rows<Pcep>({
    Number(1, "Maximum Hop"), Number(1, "Maximum Utilization Factor"), Number(1, "Minimum Utilization Factor"),
    Number(1, "Overbooking Factor")});
constexpr auto kProcessing = Rows<Pcep>({
    Hex(2, "Reserved"), Word(2), Bits(0, 15, "Reserved"), Flag(15, "Estimated"),
    Number(4, "Current Processing Time", " milliseconds"), Number(4, "Minimum Processing Time", " milliseconds"),
    Number(4, "Maximum Processing Time", " milliseconds"), Number(4, "Average Processing Time", " milliseconds"),
    Number(4, "Variance of Processing Times")});
constexpr auto kOverload = Rows<Pcep>({Hex(1, "Flags"), Hex(1, "Reserved"), Number(2, "Overload Duration", " seconds")});
constexpr auto kLsp = Rows<Pcep>({
    Word(4), Bits(0, 20, "PLSP-ID").Note(", PLSP-ID %u"), Flag(20, "ERO Compression"), Flag(21, "P2MP Fragmentation"),
    Flag(22, "P2MP"), Flag(23, "Create"), Flag(24, "Color Capability"), Bits(25, 3, "Operational", kStateNames).Note(", %s"),
    Flag(28, "Administrative"), Flag(29, "Remove"), Flag(30, "Synchronize"), Flag(31, "Delegate")});
constexpr auto kSrp = Rows<Pcep>({
    Hex(4, "Flags"), Bits(0, 31, "Reserved"), Flag(31, "Remove"), Number(4, "SRP-ID-Number").Note(", %u")});
constexpr auto kVendor = Rows<Pcep>({Number(4, "Enterprise Number").Note(", %u"), Bytes(0, "Enterprise Data")});
constexpr auto kUse = Rows<Pcep>({
    Hex(3, "Reserved"), Number(1, "Utilization Type", kUseNames).Note(", %s"), Float(4, "Bandwidth Utilization")});
constexpr auto kAssociation4 = Rows<Pcep>({
    Hex(2, "Reserved"), Word(2), Bits(0, 15, "Reserved"), Flag(15, "Removal"),
    Number(2, "Association Type", PcepAssociationName).Note(", %s"), Number(2, "Association ID").Note(", %u"),
    IPv4("Association Source").Note(", %s")});
constexpr auto kAssociation6 = Rows<Pcep>({
    Hex(2, "Reserved"), Word(2), Bits(0, 15, "Reserved"), Flag(15, "Removal"),
    Number(2, "Association Type", PcepAssociationName).Note(", %s"), Number(2, "Association ID").Note(", %u"),
    IPv6("Association Source").Note(", %s")});
constexpr auto kStates = Rows<Pcep>({Word(4), Bits(0, 29, "Reserved"), Bits(29, 3, "Operational", kStateNames)});
constexpr auto kControl = Rows<Pcep>({
    Hex(4, "CC-ID").Note(", 0x%.08X"), Hex(2, "Reserved"), Word(2), Bits(0, 15, "Reserved"), Flag(15, "Out-Label"), Word(4),
    Bits(0, 20, "Label").Note(", Label %u"), Bits(20, 12, "Reserved")});

constexpr auto kNativeControl = Rows<Pcep>({Hex(4, "CC-ID").Note(", 0x%.08X"), Hex(2, "Reserved"), Hex(2, "Flags")});

// Between layers (RFC 8282): which of them may be used, and what adapts one to the other.
constexpr auto kInterLayer = Rows<Pcep>({
    Word(4), Bits(0, 29, "Reserved"), Flag(29, "Triggered Signaling"), Flag(30, "Mono-Layer Path"),
    Flag(31, "Inter-Layer Path")});
constexpr auto kLayer = Rows<Pcep>({
    Number(1, "LSP Encoding Type", kEncodingNames).Note(", %s"), Number(1, "Switching Type", kSwitchingNames), Word(2),
    Bits(0, 15, "Reserved"), Flag(15, "Included")});
constexpr auto kAdaptation = Rows<Pcep>({
    Number(1, "Switching Capability", kSwitchingNames).Note(", %s"), Number(1, "Encoding", kEncodingNames),
    Hex(2, "Reserved")});

// Wavelengths (RFC 8780), flow rules (RFC 9168), several paths.
constexpr auto kWavelengths = Rows<Pcep>({
    Hex(2, "Reserved"), Word(2), Bits(0, 15, "Reserved Flags"), Flag(15, "Mode")});
constexpr auto kFlows = Rows<Pcep>({
    Number(4, "FS-ID").Note(", %u"), Number(2, "AFI", AddressFamilyName).Into(&Pcep::afi),
    Hex(1, "Reserved"), Word(1), Bits(0, 6, "Reserved Flags"), Flag(6, "Longest Prefix Match"), Flag(7, "Remove")});
constexpr auto kPathAttributes = Rows<Pcep>({
    Word(4), Bits(0, 29, "Reserved"), Bits(29, 3, "Operational", kStateNames).Note(", %s"),
    Number(4, "Path ID").Note(", Path %u")});

// Bandwidths as RSVP's traffic parameters have them (RFC 8779).
constexpr auto kSpecNames = SortedNames({
    {2, "Intserv"}, {4, "SONET/SDH"}, {5, "G.709"}, {6, "Ethernet"}, {7, "OTN-TDM"}, {8, "SSON"}});
constexpr auto kGeneralBandwidth = Rows<Pcep>({
    Number(2, "Bandwidth Spec Length").Into(&Pcep::length), Number(2, "Reverse Bandwidth Spec Length").Into(&Pcep::reverse),
    Number(1, "Bandwidth Spec Type", kSpecNames).Note(", %s").Into(&Pcep::code), Hex(3, "Reserved")});
constexpr auto kGeneralBalancing = Rows<Pcep>({
    Number(2, "Bandwidth Spec Length").Into(&Pcep::length), Number(2, "Reverse Bandwidth Spec Length").Into(&Pcep::reverse),
    Number(1, "Bandwidth Spec Type", kSpecNames).Note(", %s").Into(&Pcep::code), Number(1, "Maximum Number of LSPs"),
    Hex(2, "Reserved")});
void ShowSpec(const Place& in, Cursor& c, const char* title, const Field& length, uint32_t type) {
  if (!length.value) return;
  constexpr uint32_t kTrafficClass = 0x0C00;   // SENDER_TSPEC
  Cursor part = TakeCursor(c, length.value);
  const Place under = Under(in, AddLine(in, Ahead(part, Left(part)), "%s: %s", title, LookupName(kSpecNames, type)));
  ShowPcepRsvpObject(under, part, kTrafficClass | type);
}
void ShowSpecs(const Place& in, Cursor& c, Pcep& pcep) {
  ShowSpec(in, c, "Bandwidth Spec", pcep.length, pcep.code.value);
  ShowSpec(in, c, "Reverse Bandwidth Spec", pcep.reverse, pcep.code.value);
  ShowPcepTlvs(in, c, pcep);
}

template <const auto& rows, int32_t size>
void ShowEach(const Place& in, Cursor& c, Pcep& pcep) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Pcep>(in, c, rows, pcep);
}
void ShowErrorValue(const Place& in, Cursor& c, Pcep& pcep) {
  const Field value = TakeU8(c);
  AddLine(in, value, "Error Value: %u = %s", value.value, PcepErrorValueName(pcep.code.value, value.value));
  if (value.value) AppendToParent(in, value, ", %s", PcepErrorValueName(pcep.code.value, value.value));
  ShowPcepTlvs(in, c, pcep);
}
template <void (*show)(const Place& in, Cursor& c, Rsvp& rsvp)>
void ShowRoute(const Place& in, Cursor& c, Pcep&) {
  const KeyedAs keys(PacketOf(in), "rsvp");
  Rsvp rsvp{};
  show(in, c, rsvp);
}
constexpr auto ShowExplicit = ShowRoute<ShowRsvpExplicitRoute>;
constexpr auto ShowRecorded = ShowRoute<ShowRsvpRecordedRoute>;
constexpr auto ShowExcluded = ShowRoute<ShowRsvpExcludedRoute>;

// By class and type.
constexpr auto kObjects = Choices<Pcep>({
    {0x011, "OPEN", kOpen, ShowPcepTlvs}, {0x021, "RP", kRequest, ShowPcepTlvs}, {0x031, "NO-PATH", kNoPath, ShowPcepTlvs},
    {0x041, "END-POINTS (IPv4)", kEnds4}, {0x042, "END-POINTS (IPv6)", kEnds6},
    {0x043, "END-POINTS (P2MP IPv4)", kLeaves4, ShowEach<kLeaf4, 4>},
    {0x044, "END-POINTS (P2MP IPv6)", kLeaves6, ShowEach<kLeaf6, 16>},
    {0x045, "END-POINTS (Generalized)", kGeneralEnds, ShowPcepTlvs}, {0x051, "BANDWIDTH (Requested)", kBandwidth},
    {0x052, "BANDWIDTH (Existing)", kBandwidth}, {0x053, "BANDWIDTH (Generalized)", kGeneralBandwidth, ShowSpecs},
    {0x054, "BANDWIDTH (Generalized, Existing)", kGeneralBandwidth, ShowSpecs}, {0x055, "BANDWIDTH (Adjusted)", kBandwidth}, {0x061, "METRIC", kMetric},
    {0x071, "ERO", {}, ShowExplicit}, {0x081, "RRO", {}, ShowRecorded}, {0x091, "LSPA", kLspa, ShowPcepTlvs},
    {0x0A1, "IRO", {}, ShowExplicit}, {0x0A2, "IRO", {}, ShowExplicit}, {0x0B1, "SVEC", kSvec, ShowEach<kRequestId, 4>},
    {0x0C1, "NOTIFICATION", kNotice, ShowPcepTlvs}, {0x0D1, "PCEP-ERROR", kErrorHead, ShowErrorValue},
    {0x0E1, "LOAD-BALANCING", kBalancing, ShowPcepTlvs},
    {0x0E2, "LOAD-BALANCING (Generalized)", kGeneralBalancing, ShowSpecs}, {0x0F1, "CLOSE", kClose, ShowPcepTlvs},
    {0x101, "PATH-KEY", {}, ShowExplicit}, {0x111, "XRO", kExclude, ShowExcluded},
    {0x131, "MONITORING", kMonitoring, ShowPcepTlvs}, {0x141, "PCC-ID-REQ (IPv4)", kAddress4},
    {0x142, "PCC-ID-REQ (IPv6)", kAddress6}, {0x151, "OF", kObjective, ShowPcepTlvs}, {0x161, "CLASSTYPE", kDiffServ},
    {0x181, "GLOBAL-CONSTRAINTS", kConstraints, ShowPcepTlvs}, {0x191, "PCE-ID (IPv4)", kAddress4},
    {0x192, "PCE-ID (IPv6)", kAddress6}, {0x1A1, "PROC-TIME", kProcessing}, {0x1B1, "OVERLOAD", kOverload},
    {0x1C1, "UNREACH-DESTINATION (IPv4)", {}, ShowEach<kLeaf4, 4>}, {0x1C2, "UNREACH-DESTINATION (IPv6)", {}, ShowEach<kLeaf6, 16>},
    {0x1D1, "SERO", {}, ShowExplicit}, {0x1E1, "SRRO", {}, ShowRecorded}, {0x1F1, "BNC (Branch Nodes)", {}, ShowExplicit},
    {0x1F2, "BNC (Other Nodes)", {}, ShowExplicit}, {0x201, "LSP", kLsp, ShowPcepTlvs}, {0x211, "SRP", kSrp, ShowPcepTlvs},
    {0x221, "VENDOR-INFORMATION", kVendor}, {0x231, "BU", kUse}, {0x241, "INTER-LAYER", kInterLayer, ShowPcepTlvs},
    {0x251, "SWITCH-LAYER", {}, ShowEach<kLayer, 4>}, {0x261, "REQ-ADAP-CAP", kAdaptation, ShowPcepTlvs},
    {0x271, "SERVER-INDICATION", kAdaptation, ShowPcepTlvs},
    {0x281, "ASSOCIATION (IPv4)", kAssociation4, ShowPcepTlvs}, {0x282, "ASSOCIATION (IPv6)", kAssociation6, ShowPcepTlvs},
    {0x291, "S2LS", kStates, ShowPcepTlvs}, {0x2A1, "WA", kWavelengths, ShowPcepTlvs}, {0x2B1, "FLOWSPEC", kFlows, ShowPcepTlvs},
    {0x2C1, "CCI", kControl, ShowPcepTlvs}, {0x2C2, "CCI (Native IP)", kNativeControl, ShowPcepTlvs},
    {0x2D1, "PATH-ATTRIB", kPathAttributes, ShowPcepTlvs}});

const Choice<Pcep>* ObjectOf(const Cursor& c) {
  return FindChoice<Pcep>(kObjects, PeekU8(c) << 4 | PeekU8(c, 1) >> 4);
}

constexpr auto kObjectTail = Rows<Pcep>({
    Word(1), Bits(0, 4, "Object Type"), Bits(4, 2, "Reserved"), Flag(6, "Processing Rule"), Flag(7, "Ignore"),
    Number(2, "Object Length")});

void ShowObjects(const Place& at, Cursor& c) {
  Loop loop;
  while (Left(c) >= kHeaderSize && PeekU16(c, 2) >= kHeaderSize && MoreAt(at, c, loop)) {
    Cursor object = TakeCursor(c, PeekU16(c, 2));
    const Choice<Pcep>* choice = ObjectOf(object);
    const char* name = choice ? choice->name : kUnknown;
    const Place in = Under(at, AddLine(at, Ahead(object, Left(object)), "Object: %s", name));
    const Field number = TakeU8(object);
    AddLine(in, number, "Object Class: %u = %s", number.value, name);
    Pcep pcep = ShowRows(in, object, kObjectTail);
    ShowChoice<Pcep>(in, object, choice, pcep);   // keys: none Data
  }
}

}  // namespace

void ShowPcepRsvpObject(const Place& in, Cursor& c, uint32_t kind) {
  const KeyedAs keys(PacketOf(in), "rsvp");
  Rsvp rsvp{};
  ShowChoice<Rsvp>(in, c, FindRsvpObject(kind), rsvp);   // keys: none Data
}

int32_t DecodePcep(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize || LengthOfPcep(c) == kNoMessage) return 0;
  Loop loop;
  while (Left(c) >= kHeaderSize && LengthOfPcep(c) != kNoMessage && MoreAt(at, c, loop)) {
    Cursor message = TakeCursor(c, LengthOfPcep(c));
    const Place in = Under(at, AddLine(at, Ahead(message, Left(message)), "PCEP: %s", LookupName(kTypeNames, PeekU8(message, 1))));
    ShowRows(in, message, kHead);
    ShowObjects(in, message);
    AddBlock(in, Rest(message), "Message Data");
  }
  AddRawRest(at, c, "PCEP Data");
  return 1;
}

}  // namespace qxview
