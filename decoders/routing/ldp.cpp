// Label Distribution Protocol (RFC 5036; pseudowires: RFC 8077, multipoint: RFC 6388, capabilities: RFC 5561 and
// others, fault tolerance: RFC 3479, constraint-based: RFC 3212): which labels do routers give to which destinations?
//
//   version (2)   length (2)   LSR (4)   label space (2)   messages: type (2)   length (2)   identifier (4)   TLVs
#include "decoders/routing/ldp.h"

#include "core/rows.h"
#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 10, kMessageHeader = 4, kTlvHeader = 4;
constexpr uint32_t kVersion = 1;

constexpr auto kMessageNames = SortedNames({
    {0x0001, "Notification"}, {0x0100, "Hello"}, {0x0200, "Initialization"}, {0x0201, "KeepAlive"},
    {0x0202, "Capability"}, {0x0300, "Address"}, {0x0301, "Address Withdraw"}, {0x0400, "Label Mapping"},
    {0x0401, "Label Request"}, {0x0402, "Label Withdraw"}, {0x0403, "Label Release"}, {0x0404, "Label Abort Request"},
    {0x0500, "Call Setup"}, {0x0501, "Call Release"}, {0x0700, "RG Connect"}, {0x0701, "RG Disconnect"},
    {0x0702, "RG Notification"}, {0x0703, "RG Application Data"}});
const char* MessageName(uint32_t type) {
  constexpr uint32_t kVendorFirst = 0x3E00, kVendorLast = 0x3EFF, kExperimental = 0x3F00;
  return type >= kVendorFirst && type <= kVendorLast ? "Vendor-Private"
         : type >= kExperimental && type <= 0x3FFF   ? "Experimental"
                                                     : LookupName(kMessageNames, type);
}

constexpr auto kStatusNames = SortedNames({
    {0x00, "Success"}, {0x01, "Bad LDP Identifier"}, {0x02, "Bad Protocol Version"}, {0x03, "Bad PDU Length"},
    {0x04, "Unknown Message Type"}, {0x05, "Bad Message Length"}, {0x06, "Unknown TLV"}, {0x07, "Bad TLV Length"},
    {0x08, "Malformed TLV Value"}, {0x09, "Hold Timer Expired"}, {0x0A, "Shutdown"}, {0x0B, "Loop Detected"},
    {0x0C, "Unknown FEC"}, {0x0D, "No Route"}, {0x0E, "No Label Resources"}, {0x0F, "Label Resources / Available"},
    {0x10, "Session Rejected / No Hello"}, {0x11, "Session Rejected / Parameters Advertisement Mode"},
    {0x12, "Session Rejected / Parameters Max PDU Length"}, {0x13, "Session Rejected / Parameters Label Range"},
    {0x14, "KeepAlive Timer Expired"}, {0x15, "Label Request Aborted"}, {0x16, "Missing Message Parameters"},
    {0x17, "Unsupported Address Family"}, {0x18, "Session Rejected / Bad KeepAlive Time"}, {0x19, "Internal Error"},
    {0x1A, "No LDP Session"}, {0x1B, "Zero FT Seqnum"}, {0x1C, "Unexpected TLV / Session Not FT"},
    {0x1D, "Unexpected TLV / Label Not FT"}, {0x1E, "Missing FT Protection TLV"}, {0x1F, "FT ACK Sequence Error"},
    {0x20, "Temporary Shutdown"}, {0x21, "FT Seq Numbers Exhausted"}, {0x22, "FT Session Parameters / Changed"},
    {0x23, "Unexpected FT Cork TLV"}, {0x24, "Illegal C-Bit"}, {0x25, "Wrong C-Bit"},
    {0x26, "Incompatible Bit-Rate"}, {0x27, "CEP-TDM Mis-Configuration"}, {0x28, "PW Status"},
    {0x29, "Unassigned/Unrecognized TAI"}, {0x2A, "Generic Misconfiguration Error"},
    {0x2B, "Label Withdraw PW Status Method"}, {0x2C, "IP Address of CE"},
    {0x2D, "Attachment Circuit Bound to Different Remote Attachment Circuit"}, {0x2E, "Unsupported Capability"},
    {0x2F, "End-of-LIB"}, {0x30, "Attachment Circuit Bound to Different PE"}, {0x31, "Invalid Topology ID"},
    {0x32, "Transport Connection Mismatch"}, {0x33, "Dual-Stack Noncompliance"},
    {0x34, "MRT Capability Negotiated without MT Capability"}, {0x35, "VCCV Type Error"},
    {0x37, "Bandwidth Resources Unavailable"}, {0x38, "Resources Unavailable"}, {0x39, "AII Unreachable"},
    {0x3A, "PW Loop Detected"}, {0x3B, "Reject - Unable to Use the Suggested Tunnel/LSPs"},
    {0x3C, "The C-Bit or S-Bit Unknown"}, {0x40, "LDP MP Status"}, {0x4A, "IP Address Type Mismatch"},
    {0x4B, "Wrong IP Address Type"}, {0x4C, "Session Rejected / Targeted Application Capability Mismatch"},
    {0x00010001, "Unknown ICCP RG"}, {0x00010002, "ICCP Connection Count Exceeded"},
    {0x00010003, "ICCP Application Connection Count Exceeded"}, {0x00010004, "ICCP Application Not in RG"},
    {0x00010005, "Incompatible ICCP Protocol Version"}, {0x00010006, "ICCP Rejected Message"},
    {0x00010007, "ICCP Administratively Disabled"}, {0x00010010, "ICCP RG Removed"},
    {0x00010011, "ICCP Application Removed from RG"}, {0x01000001, "Unexpected Diff-Serv TLV"},
    {0x01000002, "Unsupported PHB"}, {0x01000003, "Invalid EXP<->PHB Mapping"}, {0x01000004, "Unsupported PSC"},
    {0x01000005, "Per-LSP Context Allocation Failure"}, {0x04000001, "Bad Explicit Routing TLV"},
    {0x04000002, "Bad Strict Node"}, {0x04000003, "Bad Loose Node"}, {0x04000004, "Bad Initial ER-Hop"},
    {0x04000005, "Resource Unavailable"}, {0x04000006, "Traffic Parameters Unavailable"},
    {0x04000007, "LSP Preempted"}, {0x04000008, "Modify Request Not Supported"}, {0x04000009, "Invalid SNP ID"},
    {0x0400000A, "Calling Party Busy"}, {0x0400000B, "Unavailable SNP ID"}, {0x0400000C, "Invalid SNPP ID"},
    {0x0400000D, "Unavailable SNPP ID"}, {0x0400000E, "Failed to Create SNC"},
    {0x0400000F, "Failed to Establish LC"}, {0x04000010, "Invalid A End-User Name"},
    {0x04000011, "Invalid Z End-User Name"}, {0x04000012, "Invalid CoS"}, {0x04000013, "Unavailable CoS"},
    {0x04000014, "Invalid GoS"}, {0x04000015, "Unavailable GoS"}, {0x04000016, "Failed Security Check"},
    {0x04000017, "Timeout"}, {0x04000018, "Invalid Call Name"}, {0x04000019, "Failed to Release SNC"},
    {0x0400001A, "Failed to Free LC"}, {0x20000000, "Unknown VPN ID"}, {0x20000001, "Illegal C-Bit"},
    {0x20000002, "Wrong C-Bit"}, {0x20000003, "E-Tree VLAN Mapping Not Supported"},
    {0x20000004, "Leaf-to-Leaf PW Released"}});

constexpr auto kHeader = Rows<Ldp>({
    Number(2, "Version"), Number(2, "PDU Length").Into(&Ldp::length), IPv4("LSR ID"), Number(2, "Label Space ID")});
constexpr auto kMessageHead = Rows<Ldp>({
    Word(2), Flag(0, "Unknown Message Is Ignored"), Bits(1, 15, "Message Type", MessageName).Into(&Ldp::type),
    Number(2, "Message Length")});
constexpr auto kMessageId = Rows<Ldp>({Hex(4, "Message ID")});

constexpr auto kAddresses = Rows<Ldp>({Number(2, "Address Family", AddressFamilyName).Into(&Ldp::family)});
constexpr auto kHops = Rows<Ldp>({Number(1, "Hop Count").Note(", %u")});
constexpr auto kPathRow = Rows<Ldp>({IPv4("LSR ID").Note(", %s")});
constexpr auto kLabel = Rows<Ldp>({Number(4, "Label").Note(", %u")});
constexpr auto kAtmLabel = Rows<Ldp>({
    Word(4), Bits(0, 2, "Reserved"), Bits(2, 2, "V-Bits"), Bits(4, 12, "VPI"), Bits(16, 16, "VCI")});
constexpr auto kFrameRelayLabel = Rows<Ldp>({
    Word(4), Bits(0, 7, "Reserved"), Bits(7, 2, "DLCI Length"), Bits(9, 23, "DLCI")});
constexpr auto kStatus = Rows<Ldp>({
    Word(4).Into(&Ldp::status), Flag(0, "Fatal Error"), Flag(1, "Forward"),
    Bits(2, 30, "Status Code", kStatusNames).Note(", %s"), Hex(4, "Message ID"),
    Number(2, "Message Type", MessageName)});
constexpr auto kExtended = Rows<Ldp>({Hex(4, "Extended Status")});
constexpr auto kHelloMasks = SortedNames({
    {0x2000, "GTSM"}, {0x4000, "Request Targeted Hellos"}, {0x8000, "Targeted Hello"}});
constexpr auto kHello = Rows<Ldp>({
    Number(2, "Hold Time", " seconds"), Flags(2, "Hello Flags", kHelloMasks)});
constexpr auto kTransport4 = Rows<Ldp>({IPv4("Transport Address").Note(", %s")});
constexpr auto kTransport6 = Rows<Ldp>({IPv6("Transport Address").Note(", %s")});
constexpr auto kConfiguration = Rows<Ldp>({Number(4, "Configuration Sequence Number").Note(", %u")});
constexpr auto kMacRow = Rows<Ldp>({Mac("MAC Address").Note(", %s")});
constexpr auto kDisciplineNames = SortedNames({{0, "Downstream Unsolicited"}, {1, "Downstream on Demand"}});
constexpr auto kSession = Rows<Ldp>({
    Number(2, "Protocol Version"), Number(2, "KeepAlive Time", " seconds"),
    Word(1), Flag(0, "Label Advertisement Discipline", kDisciplineNames), Flag(1, "Loop Detection"),
    Bits(2, 6, "Reserved"),
    Number(1, "Path Vector Limit"), Number(2, "Maximum PDU Length"), IPv4("Receiver LSR ID"),
    Number(2, "Receiver Label Space ID")});
constexpr auto kMergeNames = SortedNames({{0, "None"}, {1, "VP Merge"}, {2, "VC Merge"}, {3, "VP and VC Merge"}});
constexpr auto kAtmSession = Rows<Ldp>({
    Word(4), Bits(0, 2, "Merge", kMergeNames), Bits(2, 4, "Number of Label Ranges").Into(&Ldp::count),
    Flag(6, "VC Bidirectionality"), Bits(7, 25, "Reserved")});
constexpr auto kAtmRange = Rows<Ldp>({
    Word(4), Bits(0, 4, "Reserved"), Bits(4, 12, "Minimum VPI"), Bits(16, 16, "Minimum VCI"), Word(4),
    Bits(0, 4, "Reserved"), Bits(4, 12, "Maximum VPI"), Bits(16, 16, "Maximum VCI")});
constexpr auto kFrameRelayRange = Rows<Ldp>({
    Word(4), Bits(0, 7, "Reserved"), Bits(7, 2, "DLCI Length"), Bits(9, 23, "Minimum DLCI"), Word(4),
    Bits(0, 9, "Reserved"), Bits(9, 23, "Maximum DLCI")});
constexpr auto kTolerant = Rows<Ldp>({
    Word(2), Flag(0, "FT Reconnect"), Bits(1, 11, "Reserved"), Flag(12, "Save State"), Flag(13, "All Labels Protected"),
    Flag(14, "Check-Pointing"), Flag(15, "Learn from Network"), Number(2, "Reserved"),
    Number(4, "Reconnect Timeout", " milliseconds"), Number(4, "Recovery Time", " milliseconds")});
constexpr auto kSequence = Rows<Ldp>({Number(4, "FT Sequence Number")});
constexpr auto kCapability = Rows<Ldp>({
    Word(1), Flag(0, "Capability Advertised"), Bits(1, 7, "Reserved"), Bytes(0, "Capability Data")});
constexpr auto kRequest = Rows<Ldp>({Hex(4, "Request Message ID")});
constexpr auto kMtu = Rows<Ldp>({Number(2, "MTU")});
constexpr auto kPreferenceNames = SortedNames({{4, "LDPoIPv4"}, {6, "LDPoIPv6"}});
constexpr auto kDualStack = Rows<Ldp>({
    Word(4), Bits(0, 4, "Transport Connection Preference", kPreferenceNames), Bits(4, 28, "Reserved")});
constexpr auto kPwMasks = SortedNames({
    {0x01, "Pseudowire Not Forwarding"}, {0x02, "Local Attachment Circuit Receive Fault"},
    {0x04, "Local Attachment Circuit Transmit Fault"}, {0x08, "Local PSN-Facing Receive Fault"},
    {0x10, "Local PSN-Facing Transmit Fault"}, {0x20, "Standby Forwarding"}, {0x40, "Switchover Request"}});
constexpr auto kPwStatus = Rows<Ldp>({Flags(4, "Pseudowire Status", kPwMasks)});
constexpr auto kGroup = Rows<Ldp>({Number(4, "Pseudowire Group ID")});
constexpr auto kVendor = Rows<Ldp>({Hex(4, "Vendor ID"), Bytes(0, "Vendor Data")});
constexpr auto kLspId = Rows<Ldp>({
    Word(2), Bits(0, 12, "Reserved"), Bits(12, 4, "Action Indicator"), Number(2, "Local CR-LSP ID"),
    IPv4("Ingress LSR Router ID")});
constexpr auto kClass = Rows<Ldp>({Hex(4, "Resource Class")});
constexpr auto kPreemption = Rows<Ldp>({
    Number(1, "Setup Priority"), Number(1, "Holding Priority"), Number(2, "Reserved")});
constexpr auto kPinning = Rows<Ldp>({Word(4), Flag(0, "Pinning Requested"), Bits(1, 31, "Reserved")});
constexpr auto kTraffic = Rows<Ldp>({
    Hex(1, "Flags"), Number(1, "Frequency"), Number(1, "Reserved"), Number(1, "Weight"), Float(4, "Peak Data Rate"),
    Float(4, "Peak Burst Size"), Float(4, "Committed Data Rate"), Float(4, "Committed Burst Size"),
    Float(4, "Excess Burst Size")});
constexpr auto kHop4 = Rows<Ldp>({
    Word(4), Flag(0, "Loose"), Bits(1, 23, "Reserved"), Bits(24, 8, "Prefix Length"),
    IPv4("Hop Address").Note(", %s")});
constexpr auto kHop6 = Rows<Ldp>({
    Word(4), Flag(0, "Loose"), Bits(1, 23, "Reserved"), Bits(24, 8, "Prefix Length"),
    IPv6("Hop Address").Note(", %s")});
constexpr auto kHopAs = Rows<Ldp>({
    Word(4), Flag(0, "Loose"), Bits(1, 15, "Reserved"), Bits(16, 16, "AS Number")});

constexpr auto kUpstreamLabel = Rows<Ldp>({Number(4, "Reserved"), Number(4, "Upstream-Assigned Label").Note(", %u")});
constexpr auto kReserved = Rows<Ldp>({Number(4, "Reserved")});
constexpr auto kMessageNumber = Rows<Ldp>({Number(4, "Sequence Number").Note(", %u")});
constexpr auto kCryptographic = Rows<Ldp>({
    Hex(4, "Security Association ID"), Number(8, "Cryptographic Sequence Number"), Bytes(0, "Authentication Data")});
constexpr auto kFlushMasks = SortedNames({{0x40, "Negative Flush"}, {0x80, "Context: PBB"}});
constexpr auto kFlush = Rows<Ldp>({Flags(1, "Flush Flags", kFlushMasks), Number(1, "Reserved")});
constexpr auto kService = Rows<Ldp>({Number(3, "Service Instance").Note(", %u")});
void ShowServices(const Place& in, Cursor& c, Ldp& ldp) {
  Loop loop;
  while (Left(c) >= 3 && MoreAt(in, c, loop)) ShowRows<Ldp>(in, c, kService, ldp);
}
constexpr auto kGeneralRequest = Rows<Ldp>({
    Number(1, "LSP Encoding Type"), Number(1, "Switching Type"), Hex(2, "Generalized PID")});
constexpr auto kLabelSet = Rows<Ldp>({Number(1, "Action"), Word(3), Bits(0, 10, "Reserved"), Bits(10, 14, "Label Type")});
void ShowLabels(const Place& in, Cursor& c, Ldp& ldp) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Ldp>(in, c, kLabel, ldp);
}
constexpr auto kWaveband = Rows<Ldp>({Hex(4, "Waveband ID"), Hex(4, "Start Label"), Hex(4, "End Label")});
constexpr auto kAdministrative = Rows<Ldp>({
    Word(4), Flag(0, "Reflect"), Bits(1, 28, "Reserved"), Flag(29, "Testing"), Flag(30, "Administratively Down"),
    Flag(31, "Deletion in Progress")});
constexpr auto kProtection = Rows<Ldp>({
    Word(4), Flag(0, "Secondary"), Bits(1, 25, "Reserved"), Bits(26, 6, "Link Flags")});
constexpr auto kMpStatus = Rows<Ldp>({Hex(1, "Status Code").Note(", 0x%.02X")});
constexpr auto kMpStatuses = Choices<Ldp>({{1, "Make-Before-Break Status", kMpStatus}});
void ShowMpStatus(const Place& in, Cursor& c, Ldp& ldp) {
  ShowElements<Ldp>(in, c, ElementForm{.lengthSize = 2}, "Status Element", kMpStatuses, ldp);
}
constexpr auto kRates = Rows<Ldp>({Float(4, "Forward Bandwidth"), Float(4, "Reverse Bandwidth")});

void ShowAddresses(const Place& in, Cursor& c, Ldp& ldp) {
  ShowRows<Ldp>(in, c, kAddresses, ldp);
  Loop loop;
  while (MoreAt(in, c, loop)) ShowFamilyAddress(in, c, "Address", ldp.family.value);
}
void ShowPath(const Place& in, Cursor& c, Ldp& ldp) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Ldp>(in, c, kPathRow, ldp);
}
void ShowMacs(const Place& in, Cursor& c, Ldp& ldp) {
  Loop loop;
  while (Left(c) >= 6 && MoreAt(in, c, loop)) ShowRows<Ldp>(in, c, kMacRow, ldp);
}
void ShowAtmRanges(const Place& in, Cursor& c, Ldp& ldp) {
  Loop loop;
  while (Left(c) >= 8 && MoreAt(in, c, loop)) ShowRows<Ldp>(in, c, kAtmRange, ldp);
}
void ShowFrameRelayRanges(const Place& in, Cursor& c, Ldp& ldp) {
  Loop loop;
  while (Left(c) >= 8 && MoreAt(in, c, loop)) ShowRows<Ldp>(in, c, kFrameRelayRange, ldp);
}
void ShowReturned(const Place& in, Cursor& c, Ldp&);
void ShowRoute(const Place& in, Cursor& c, Ldp&);

constexpr auto kTlvs = Choices<Ldp>({
    {0x0001, "Sequence Number", kMessageNumber}, {0x001C, "RSVP-TE P2MP LSP"}, {0x001D, "LDP P2MP LSP"},
    {0x001E, "IP Multicast Tunnel"}, {0x0100, "FEC", {}, ShowLdpFecs}, {0x0101, "Address List", {}, ShowAddresses},
    {0x0103, "Hop Count", kHops},
    {0x0104, "Path Vector", {}, ShowPath}, {0x0200, "Generic Label", kLabel}, {0x0201, "ATM Label", kAtmLabel},
    {0x0202, "Frame Relay Label", kFrameRelayLabel}, {0x0203, "FT Protection", kSequence},
    {0x0204, "Upstream-Assigned Label", kUpstreamLabel}, {0x0205, "Upstream-Assigned Label Request", kReserved},
    {0x0206, "Entropy Label Capability"}, {0x0300, "Status", kStatus},
    {0x0301, "Extended Status", kExtended},
    {0x0302, "Returned PDU"}, {0x0303, "Returned Message"}, {0x0304, "Returned TLVs", {}, ShowReturned},
    {0x0400, "Common Hello Parameters", kHello}, {0x0401, "IPv4 Transport Address", kTransport4},
    {0x0402, "Configuration Sequence Number", kConfiguration}, {0x0403, "IPv6 Transport Address", kTransport6},
    {0x0404, "MAC List", {}, ShowMacs}, {0x0405, "Cryptographic Authentication", kCryptographic},
    {0x0406, "MAC Flush Parameters", kFlush, ShowReturned}, {0x0407, "PBB B-MAC List", {}, ShowMacs},
    {0x0408, "PBB I-SID List", {}, ShowServices}, {0x0500, "Common Session Parameters", kSession},
    {0x0501, "ATM Session Parameters", kAtmSession, ShowAtmRanges},
    {0x0502, "Frame Relay Session Parameters", kAtmSession, ShowFrameRelayRanges}, {0x0503, "FT Session", kTolerant},
    {0x0504, "FT Ack", kSequence}, {0x0505, "FT Cork"}, {0x0506, "Dynamic Capability Announcement", kCapability},
    {0x0507, "Upstream Label Assignment Capability", kCapability}, {0x0508, "P2MP Capability", kCapability},
    {0x0509, "MP2MP Capability", kCapability}, {0x050A, "Targeted Hello Accept Capability", kCapability},
    {0x050B, "Typed Wildcard FEC Capability", kCapability}, {0x050C, "Multi-Topology Capability", kCapability},
    {0x050D, "State Advertisement Control Capability", kCapability}, {0x050E, "MRT Capability", kCapability},
    {0x050F, "Targeted Application Capability", kCapability}, {0x0600, "Label Request Message ID", kRequest},
    {0x0601, "MTU", kMtu}, {0x0603, "Unrecognized Notification Capability", kCapability},
    {0x0700, "ICCP Capability", kCapability}, {0x0701, "Dual-Stack Capability", kDualStack},
    {0x0800, "Explicit Route", {}, ShowRoute}, {0x0801, "IPv4 Explicit Route Hop", kHop4},
    {0x0802, "IPv6 Explicit Route Hop", kHop6}, {0x0803, "AS Explicit Route Hop", kHopAs},
    {0x0804, "LSPID Explicit Route Hop", kLspId},
    {0x0805, "Layer 2 PW Address of Switching Point"}, {0x0810, "Traffic Parameters", kTraffic},
    {0x0820, "Preemption", kPreemption}, {0x0821, "LSPID", kLspId}, {0x0822, "Resource Class", kClass},
    {0x0823, "Route Pinning", kPinning}, {0x0824, "Generalized Label Request", kGeneralRequest},
    {0x0825, "Generalized Label", {}, ShowLabels}, {0x0826, "Upstream Label", {}, ShowLabels},
    {0x0827, "Label Set", kLabelSet, ShowLabels}, {0x0828, "Waveband Label", kWaveband}, {0x0829, "ER-Hop"},
    {0x082A, "Acceptable Label Set", kLabelSet, ShowLabels}, {0x082B, "Administrative Status", kAdministrative},
    {0x082C, "Interface ID"}, {0x082D, "IPv4 Interface ID"}, {0x082E, "IPv6 Interface ID"},
    {0x082F, "IPv4 Interface Status"}, {0x0830, "IPv6 Interface Status"}, {0x0831, "Operator-Specific Call ID"},
    {0x0832, "Globally Unique Call ID"}, {0x0833, "Call Capability"}, {0x0834, "Crankback"},
    {0x0835, "Protection", kProtection}, {0x0836, "LSP Tunnel Interface ID"}, {0x0837, "Unnumbered Interface ID"},
    {0x0838, "SONET/SDH Traffic Parameters"}, {0x0901, "Diff-Serv"}, {0x0902, "HSMP LSP Capability", kCapability},
    {0x0960, "IPv4 Source ID"}, {0x0961, "IPv6 Source ID"}, {0x0962, "NSAP Source ID"},
    {0x0963, "IPv4 Destination ID"}, {0x0964, "IPv6 Destination ID"}, {0x0965, "NSAP Destination ID"},
    {0x0966, "Egress Label"}, {0x0967, "Local Connection ID"}, {0x0968, "Diversity"}, {0x0969, "Contract ID"},
    {0x096A, "Pseudowire Status", kPwStatus},
    {0x096B, "Pseudowire Interface Parameters", {}, ShowLdpParameters}, {0x096C, "Pseudowire Group ID", kGroup},
    {0x096D, "Pseudowire Switching Point", {}, ShowLdpSwitchingPoints}, {0x096E, "Pseudowire Bandwidth", kRates},
    {0x096F, "LDP MP Status", {}, ShowMpStatus}, {0x0970, "UNI Service Level"}, {0x0971, "Queue Request"},
    {0x0972, "MP Node Protection Capability", kCapability}, {0x0973, "PSN Tunnel Binding"},
    {0x0974, "Egress Protection Capability", kCapability}, {0x3E00, "Vendor-Private", kVendor}});

const Choice<Ldp>* TlvOf(uint32_t type) {
  constexpr uint32_t kVendorFirst = 0x3E00, kVendorLast = 0x3EFF;
  return FindChoice<Ldp>(kTlvs, type >= kVendorFirst && type <= kVendorLast ? kVendorFirst : type);
}
const char* TlvName(uint32_t type) {
  const Choice<Ldp>* choice = TlvOf(type);
  return choice ? choice->name : kUnknown;
}
constexpr auto kTlvHead = Rows<Ldp>({
    Word(2), Flag(0, "Unknown TLV Is Ignored"), Flag(1, "Unknown TLV Is Forwarded"), Bits(2, 14, "TLV Type", TlvName),
    Number(2, "TLV Length")});

// Returned TLVs and explicit routes hold TLVs themselves: one level deeper, and no further.
void ShowTlvs(const Place& in, Cursor& c, Ldp& ldp, bool isOuter) {
  Loop loop;
  while (Left(c) >= kTlvHeader && MoreAt(in, c, loop)) {
    Cursor tlv = TakeCursor(c, int64_t{PeekU16(c, 2)} + kTlvHeader);
    const uint32_t type = PeekU16(tlv) & 0x3FFF;
    const Choice<Ldp>* choice = TlvOf(type);
    const Place under = Under(in, AddLine(in, Ahead(tlv, Left(tlv)), "TLV: %s", choice ? choice->name : kUnknown));
    ShowRows<Ldp>(under, tlv, kTlvHead, ldp);
    const bool holdsTlvs = choice && (choice->show == ShowReturned || choice->show == ShowRoute);
    ShowChoice<Ldp>(under, tlv, holdsTlvs && !isOuter ? nullptr : choice, ldp);   // keys: none Data
  }
}
void ShowReturned(const Place& in, Cursor& c, Ldp& ldp) { ShowTlvs(in, c, ldp, false); }
void ShowRoute(const Place& in, Cursor& c, Ldp& ldp) { ShowTlvs(in, c, ldp, false); }

void ShowMessage(const Place& in, Cursor& c) {
  const uint32_t type = PeekU16(c) & 0x7FFF;
  Cursor message = TakeCursor(c, int64_t{PeekU16(c, 2)} + kMessageHeader);
  const Place under = Under(in, AddLine(in, Ahead(message, Left(message)), "Message: %s", MessageName(type)));
  Ldp ldp = ShowRows(under, message, kMessageHead);
  ShowRows<Ldp>(under, message, kMessageId, ldp);
  ShowTlvs(under, message, ldp, true);
  message.ranShort = false;   // what is left of a message that is cut
  AddBlock(under, Rest(message), "Message Data");
}

}  // namespace

// The protocol units of a datagram or of a segment, the last one as far as it is there.
int32_t DecodeLdp(const Place& at, Cursor c) {
  constexpr int32_t kUncounted = 4, kLeastLength = kHeaderSize - kUncounted;
  if (Left(c) < kHeaderSize || PeekU16(c) != kVersion || PeekU16(c, 2) < kLeastLength) return 0;
  Loop loop;
  while (Left(c) >= kHeaderSize && PeekU16(c) == kVersion && PeekU16(c, 2) >= kLeastLength && MoreAt(at, c, loop)) {
    const bool isCut = static_cast<int32_t>(PeekU16(c, 2)) + kUncounted > Left(c) && PacketOf(at).segment.here;
    Cursor unit = TakeCursor(c, int64_t{PeekU16(c, 2)} + kUncounted);
    const bool hasMessage = Left(unit) >= kHeaderSize + 2;
    const Place in = Under(at, AddLine(at, Ahead(unit, Left(unit)), "LDP: %s%s%s",
                                       hasMessage ? MessageName(PeekU16(unit, kHeaderSize) & 0x7FFF) : "No Message",
                                       hasMessage ? " Message" : "", isCut ? ", continued in a later segment" : ""));
    ShowRows(in, unit, kHeader);
    Loop messages;
    while (Left(unit) >= kMessageHeader && MoreAt(in, unit, messages)) ShowMessage(in, unit);
    unit.ranShort = false;   // what is left of a unit that is cut
    AddBlock(in, Rest(unit), "LDP Data");
  }
  AddRawRest(at, c, "LDP Data");
  return 1;
}

}  // namespace qxview
