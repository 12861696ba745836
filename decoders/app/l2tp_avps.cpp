// L2TP's attribute-value pairs (RFC 2661, 3931, 3145, 3301, 4045, 4454, 4591, 4719, 4951, 5515, 5611).
//
//   mandatory, hidden, reserved, length (10 bits)   vendor   type   value
//
// The value of a hidden pair is encrypted with a secret of both ends.
#include "core/elements.h"
#include "decoders/app/l2tp.h"
#include "decoders/link/ppp.h"

namespace qxview {
namespace {

constexpr uint32_t kHidden = 0x4000, kLengthMask = 0x03FF;
constexpr uint32_t kCisco = 9, kBroadbandForum = 3561, kCableLabs = 4491;

constexpr auto kMessageNames = SortedNames({
    {0, "Reserved"}, {1, "Start-Control-Connection-Request"}, {2, "Start-Control-Connection-Reply"},
    {3, "Start-Control-Connection-Connected"}, {4, "Stop-Control-Connection-Notification"}, {5, "Reserved"},
    {6, "Hello"}, {7, "Outgoing-Call-Request"}, {8, "Outgoing-Call-Reply"}, {9, "Outgoing-Call-Connected"},
    {10, "Incoming-Call-Request"}, {11, "Incoming-Call-Reply"}, {12, "Incoming-Call-Connected"}, {13, "Reserved"},
    {14, "Call-Disconnect-Notify"}, {15, "WAN-Error-Notify"}, {16, "Set-Link-Info"}, {17, "Modem-Status"},
    {18, "Service-Relay-Request"}, {19, "Service-Relay-Reply"}, {20, "Explicit-Acknowledgement"},
    {21, "Failover-Session-Query"}, {22, "Failover-Session-Response"}, {23, "Multicast-Session-Request"},
    {24, "Multicast-Session-Response"}, {25, "Multicast-Session-Establishment"}, {26, "Multicast-Session-Information"},
    {27, "Multicast-Session-End-Notify"}, {28, "Connect-Speed-Update-Notification"},
    {29, "Connect-Speed-Update-Request"}});
constexpr auto kErrorNames = SortedNames({
    {0, "No General Error"}, {1, "No Control Connection"}, {2, "Length Is Wrong"}, {3, "Field Value Out of Range"},
    {4, "Insufficient Resources"}, {5, "Invalid Session ID"}, {6, "Vendor-Specific Error"}, {7, "Try Another"},
    {8, "Unknown Mandatory AVP"}, {9, "Try Another Directed"}, {10, "Next Hop Unreachable"}, {11, "Next Hop Busy"}});
constexpr auto kFramingMasks = SortedNames({{1, "Synchronous Framing"}, {2, "Asynchronous Framing"}});
constexpr auto kBearerMasks = SortedNames({{1, "Digital Access"}, {2, "Analog Access"}});
constexpr auto kProxyNames = SortedNames({
    {0, "Reserved"}, {1, "Textual User Name and Password"}, {2, "PPP CHAP"}, {3, "PPP PAP"}, {4, "No Authentication"},
    {5, "MS-CHAP Version 1"}, {6, "Reserved"}, {7, "EAP"}});
constexpr auto kWireNames = SortedNames({
    {0x0001, "Frame Relay DLCI (Martini Mode)"}, {0x0002, "ATM AAL5 SDU VCC Transport"},
    {0x0003, "ATM Cell Transparent Port Mode"}, {0x0004, "Ethernet VLAN"}, {0x0005, "Ethernet"}, {0x0006, "HDLC"},
    {0x0007, "PPP"}, {0x0008, "SONET/SDH Circuit Emulation over MPLS"}, {0x0009, "ATM n-to-One VCC Cell Transport"},
    {0x000A, "ATM n-to-One VPC Cell Transport"}, {0x000B, "IP Layer 2 Transport"},
    {0x000C, "ATM One-to-One VCC Cell Mode"}, {0x000D, "ATM One-to-One VPC Cell Mode"},
    {0x000E, "ATM AAL5 PDU VCC Transport"}, {0x000F, "Frame Relay Port Mode"},
    {0x0010, "SONET/SDH Circuit Emulation over Packet"}, {0x0011, "Structure-Agnostic E1 over Packet"},
    {0x0012, "Structure-Agnostic T1 (DS1) over Packet"}, {0x0013, "Structure-Agnostic E3 over Packet"},
    {0x0014, "Structure-Agnostic T3 (DS3) over Packet"}, {0x0015, "CESoPSN Basic Mode"}, {0x0016, "TDMoIP AAL1 Mode"},
    {0x0017, "CESoPSN TDM with CAS"}, {0x0018, "TDMoIP AAL2 Mode"}, {0x0019, "Frame Relay DLCI"}});
constexpr auto kSublayerNames = SortedNames({{0, "None"}, {1, "Default"}, {2, "ATM-Specific"}, {3, "MPT-Specific"},
                                             {4, "PSP-Specific"}});
constexpr auto kSequencingNames = SortedNames({
    {0, "None"}, {1, "Non-IP Packets Only"}, {2, "All Packets"}});
constexpr auto kDirectionNames = SortedNames({{0, "Global Error"}, {1, "At Peer"}, {2, "At Local"}});
constexpr auto kDisconnectNames = SortedNames({
    {0, "No Information Available"}, {1, "Administrative Disconnect"},
    {2, "Link Control Protocol (LCP) Renegotiation at LNS Disabled"}, {3, "Normal Disconnection, LCP Terminate-Request"},
    {4, "Compulsory Encryption Required"}, {5, "FSM Timeout"}, {6, "No Recognizable LCP Packets Received"},
    {7, "LCP in Error State"}, {8, "LCP Down"}, {9, "Failure to Transmit"}, {10, "Control Protocol Did Not Open"},
    {11, "FSM Timeout"},
    {12, "FSM Timeout"}, {13, "No Recognizable Packets"}, {14, "NCPs Failed"}, {15, "NCP Error State"},
    {16, "No Acceptable Protocol"}, {17, "Authentication Required"}, {18, "Callback Failed"}});
constexpr auto kDigestNames = SortedNames({{0, "HMAC-MD5"}, {1, "HMAC-SHA-1"}});

struct Avp {
  Field flags, vendor, type, error;
};
constexpr auto kHeader = Rows<Avp>({
    Hex(2, "Flags and Length").Into(&Avp::flags), Flag(0, "Mandatory"), Flag(1, "Hidden"), Bits(2, 4, "Reserved"),
    Bits(6, 10, "Length"), Number(2, "Vendor ID").Into(&Avp::vendor)});
constexpr auto kOtherType = Rows<Avp>({Number(2, "Attribute Type")});

constexpr auto kMessage = Rows<Avp>({Number(2, "Message Type", kMessageNames).Note(": %s")});
constexpr auto kResult = Rows<Avp>({Number(2, "Result Code").Note(": %u")});
constexpr auto kError = Rows<Avp>({Number(2, "Error Code", kErrorNames).Note(", %s")});
constexpr auto kErrorText = Rows<Avp>({Text(0, "Error Message").Note(", %s")});
constexpr auto kVersion = Rows<Avp>({Number(1, "Version").Note(": %u"), Number(1, "Revision").Note(".%u")});
constexpr auto kFraming = Rows<Avp>({Flags(4, nullptr, kFramingMasks)});
constexpr auto kBearer = Rows<Avp>({Flags(4, nullptr, kBearerMasks)});
constexpr auto kWide = Rows<Avp>({Hex(8, nullptr)});
constexpr auto kRevision = Rows<Avp>({Hex(2, nullptr)});
constexpr auto kText = Rows<Avp>({Text(0, nullptr).Note(": %s")});
constexpr auto kBytes = Rows<Avp>({Bytes(0, nullptr)});
constexpr auto kShort = Rows<Avp>({Number(2, nullptr).Note(": %u")});
constexpr auto kNumber = Rows<Avp>({Number(4, nullptr).Note(": %u")});
constexpr auto kIdentifier = Rows<Avp>({Hex(4, nullptr).Note(": 0x%.08X")});
constexpr auto kLong = Rows<Avp>({Number(8, nullptr, " bit/s").Note(": %I64u bit/s")});
constexpr auto kCause = Rows<Avp>({Number(2, "Cause Code").Note(": %u"), Number(1, "Cause Message"), Text(0, "Advisory Message")});
constexpr auto kProxyType = Rows<Avp>({Number(2, nullptr, kProxyNames).Note(": %s")});
constexpr auto kProxyId = Rows<Avp>({Number(1, "Reserved"), Number(1, nullptr)});
constexpr auto kCounters = Rows<Avp>({
    Number(2, "Reserved"), Number(4, "CRC Errors"), Number(4, "Framing Errors"), Number(4, "Hardware Overruns"),
    Number(4, "Buffer Overruns"), Number(4, "Time-Out Errors"), Number(4, "Alignment Errors")});
constexpr auto kCharacterMap = Rows<Avp>({Number(2, "Reserved"), Hex(4, "Send ACCM"), Hex(4, "Receive ACCM")});
constexpr auto kDisconnect = Rows<Avp>({
    Number(2, "Disconnect Code", kDisconnectNames).Note(": %s"), Hex(2, "Control Protocol Number"),
    Number(1, "Direction", kDirectionNames), Text(0, "Message")});
constexpr auto kDigest = Rows<Avp>({Number(1, "Digest Type", kDigestNames), Bytes(0, "Message Digest")});
constexpr auto kRouter = Rows<Avp>({Number(4, nullptr)});
constexpr auto kWire = Rows<Avp>({Hex(2, "Pseudowire Type", kWireNames).Note(": %s")});
constexpr auto kSublayer = Rows<Avp>({Number(2, nullptr, kSublayerNames).Note(": %s")});
constexpr auto kSequencing = Rows<Avp>({Number(2, nullptr, kSequencingNames).Note(": %s")});
constexpr auto kCircuit = Rows<Avp>({Word(2), Bits(0, 14, "Reserved"), Flag(14, "New Circuit"), Flag(15, "Circuit Up")});
constexpr auto kRecovery = Rows<Avp>({Hex(4, "Recover Tunnel ID"), Hex(4, "Recover Remote Tunnel ID")});
constexpr auto kSuggested = Rows<Avp>({Number(2, "Suggested Ns"), Number(2, "Suggested Nr")});
constexpr auto kFailover = Rows<Avp>({Word(2), Flag(14, "Control Connection Recovery"), Flag(15, "Data Recovery"),
                                      Number(4, "Recovery Time", " milliseconds")});
constexpr auto kFailoverState = Rows<Avp>({Number(2, "Reserved"), Hex(4, "Session ID"), Hex(4, "Remote Session ID")});
constexpr auto kUpdate = Rows<Avp>({
    Number(2, "Reserved"), Number(2, "Remote Session ID"), Number(4, "Current Transmit Speed"),
    Number(4, "Current Receive Speed")});
constexpr auto kChannel = Rows<Avp>({Hex(1, "Control Channel Types"), Hex(1, "Connectivity Verification Types")});
constexpr auto kTdm = Rows<Avp>({Number(2, "Reserved"), Number(2, "Bit Rate", " x 64 kbit/s"), Bytes(0, "TDM Options")});
constexpr auto kRtp = Rows<Avp>({Word(2), Bits(0, 1, "Differential Time Stamping"), Bits(1, 7, "Payload Type"),
                                 Bits(8, 8, "Reserved"), Number(2, "Time Stamp Frequency", " x 8 kHz"),
                                 Hex(4, "Synchronization Source")});

// The options of the caller that LCP settled, from the first one on.
void ShowLinkOptions(const Place& in, Cursor& c, Avp&) { ShowLcpOptions(in, c); }
constexpr auto kSessionRow = Rows<Avp>({Number(2, "Session ID")});
void ShowSessions(const Place& in, Cursor& c, Avp& avp) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Avp>(in, c, kSessionRow, avp);
}
constexpr auto kReasonNames = SortedNames({
    {0, "Reserved"}, {1, "No Alarm or Alarm Cleared"}, {2, "Unspecified or Unknown Alarm"}, {3, "F1 Alarm"},
    {4, "F2 Alarm"}, {5, "F3 Alarm"}, {6, "F4 Alarm"}, {7, "F5 Alarm"}});
constexpr auto kAlarmNames = SortedNames({
    {0, "Reserved"}, {1, "Not Specified"}, {2, "Alarm Indication Signal (AIS)"}, {3, "Remote Defect Indicator (RDI)"},
    {4, "Loss of Signal (LOS)"}, {5, "Loss of Pointer (LOP)"}, {6, "Loss of Framer (LOF)"}, {7, "Loopback Cells (LB)"},
    {8, "Continuity Check (CC)"}});
constexpr auto kAlarm = Rows<Avp>({Number(2, "Circuit Status Reason", kReasonNames), Number(2, "Alarm", kAlarmNames)});
constexpr auto kLinkNames = SortedNames({{0, "ATM AAL5"}, {1, "Ethernet"}});
constexpr auto kTaggingNames = SortedNames({{0, "Not Available"}, {1, "Untagged Ethernet"}, {2, "Single-Tagged Ethernet"}});
constexpr auto kLoopNames = SortedNames({
    {0, "Not Available"}, {1, "PPPoA LLC"}, {2, "PPPoA Null"}, {3, "IPoA LLC"}, {4, "IPoA Null"},
    {5, "Ethernet over AAL5 LLC with FCS"}, {6, "Ethernet over AAL5 LLC without FCS"},
    {7, "Ethernet over AAL5 Null with FCS"}, {8, "Ethernet over AAL5 Null without FCS"}});
constexpr auto kLoop = Rows<Avp>({
    Number(1, "Data Link", kLinkNames), Number(1, "Encapsulation 1", kTaggingNames), Number(1, "Encapsulation 2", kLoopNames)});

void ShowWires(const Place& in, Cursor& c, Avp& avp) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Avp>(in, c, kWire, avp);
}
void ShowError(const Place& in, Cursor& c, Avp& avp) {
  if (Left(c) >= 2) ShowRows<Avp>(in, c, kError, avp);
  if (Left(c) > 0) ShowRows<Avp>(in, c, kErrorText, avp);
}

constexpr auto kAvps = Choices<Avp>({
    {0, "Message Type", kMessage}, {1, "Result Code", kResult, ShowError}, {2, "Protocol Version", kVersion},
    {3, "Framing Capabilities", kFraming}, {4, "Bearer Capabilities", kBearer}, {5, "Tie Breaker", kWide},
    {6, "Firmware Revision", kRevision}, {7, "Host Name", kText}, {8, "Vendor Name", kText},
    {9, "Assigned Tunnel ID", kShort}, {10, "Receive Window Size", kShort}, {11, "Challenge", kBytes},
    {12, "Q.931 Cause Code", kCause}, {13, "Challenge Response", kBytes}, {14, "Assigned Session ID", kShort},
    {15, "Call Serial Number", kNumber}, {16, "Minimum BPS", kNumber}, {17, "Maximum BPS", kNumber},
    {18, "Bearer Type", kBearer}, {19, "Framing Type", kFraming}, {21, "Called Number", kText},
    {22, "Calling Number", kText}, {23, "Sub-Address", kText}, {24, "Connect Speed", kNumber},
    {25, "Physical Channel ID", kIdentifier}, {26, "Initial Received LCP CONFREQ", {}, ShowLinkOptions},
    {27, "Last Sent LCP CONFREQ", {}, ShowLinkOptions}, {28, "Last Received LCP CONFREQ", {}, ShowLinkOptions},
    {29, "Proxy Authen Type", kProxyType}, {30, "Proxy Authen Name", kText}, {31, "Proxy Authen Challenge", kBytes},
    {32, "Proxy Authen ID", kProxyId}, {33, "Proxy Authen Response", kBytes}, {34, "Call Errors", kCounters},
    {35, "ACCM", kCharacterMap}, {36, "Random Vector", kBytes}, {37, "Private Group ID", kText},
    {38, "Receive Connect Speed", kNumber}, {39, "Sequencing Required"}, {46, "PPP Disconnect Cause Code", kDisconnect},
    {58, "Extended Vendor ID", kNumber}, {59, "Message Digest", kDigest}, {60, "Router ID", kRouter},
    {61, "Assigned Control Connection ID", kIdentifier}, {62, "Pseudowire Capabilities List", {}, ShowWires},
    {63, "Local Session ID", kIdentifier}, {64, "Remote Session ID", kIdentifier}, {65, "Assigned Cookie", kBytes},
    {66, "Remote End ID", kText}, {68, "Pseudowire Type", {}, ShowWires}, {69, "L2-Specific Sublayer", kSublayer},
    {70, "Data Sequencing", kSequencing}, {71, "Circuit Status", kCircuit}, {72, "Preferred Language", kText},
    {73, "Control Message Authentication Nonce", kBytes}, {74, "Transmit Connect Speed", kLong},
    {75, "Receive Connect Speed", kLong}, {76, "Failover Capability", kFailover}, {77, "Tunnel Recovery", kRecovery},
    {78, "Suggested Control Sequence", kSuggested}, {79, "Failover Session State", kFailoverState},
    {80, "Multicast Capability", kBytes}, {81, "New Outgoing Sessions", {}, ShowSessions},
    {82, "New Outgoing Sessions Acknowledgement", {}, ShowSessions}, {83, "Withdraw Outgoing Sessions", {}, ShowSessions},
    {84, "Multicast Packets Priority", kShort}, {85, "Frame Relay Header Length", kShort},
    {86, "ATM Maximum Concatenated Cells", kShort}, {87, "OAM Emulation Required"}, {88, "ATM Alarm Status", kAlarm},
    {89, "Attachment Group Identifier", kBytes}, {90, "Local End Identifier", kBytes},
    {91, "Interface Maximum Transmission Unit", kShort}, {92, "FCS Retention", kShort},
    {93, "Tunnel Switching Aggregator ID", kText}, {94, "Maximum Receive Unit", kShort},
    {95, "Maximum Reassembled Receive Unit", kShort}, {96, "VCCV Capability", kChannel},
    {97, "Connect Speed Update", kUpdate}, {98, "Connect Speed Update Enable"}, {99, "TDM Pseudowire", kTdm},
    {100, "RTP", kRtp}, {101, "PW Switching Point", kBytes}});

constexpr auto kLineAvps = Choices<Avp>({
    {1, "Agent Circuit ID", kText}, {2, "Agent Remote ID", kText}, {129, "Actual Data Rate Upstream", kLong},
    {130, "Actual Data Rate Downstream", kLong}, {131, "Minimum Data Rate Upstream", kLong},
    {132, "Minimum Data Rate Downstream", kLong}, {133, "Attainable Data Rate Upstream", kLong},
    {134, "Attainable Data Rate Downstream", kLong}, {135, "Maximum Data Rate Upstream", kLong},
    {136, "Maximum Data Rate Downstream", kLong}, {137, "Minimum Low-Power Data Rate Upstream", kLong},
    {138, "Minimum Low-Power Data Rate Downstream", kLong}, {139, "Maximum Interleaving Delay Upstream", kNumber},
    {140, "Actual Interleaving Delay Upstream", kNumber}, {141, "Maximum Interleaving Delay Downstream", kNumber},
    {142, "Actual Interleaving Delay Downstream", kNumber}, {144, "Access Loop Encapsulation", kLoop},
    {145, "ANCP Access Line Type", kNumber}, {254, "IWF Session", kBytes}});

// CableLabs' downstream external PHY interface (DEPI, CM-SP-DEPI). Values of a channel start with a bit that locks them.
constexpr auto kModulationNames = SortedNames({{0, "64-QAM"}, {1, "256-QAM"}});
constexpr auto kAnnexNames = SortedNames({{0, "Annex A"}, {1, "Annex B"}, {2, "Annex C"}});
constexpr auto kFlow = Rows<Avp>({Word(1), Bits(0, 2, "Reserved"), Bits(2, 6, "PHB ID")});
constexpr auto kFlowPort = Rows<Avp>({
    Word(1), Bits(0, 2, "Reserved"), Bits(2, 6, "PHB ID"), Word(1), Bits(0, 5, "Reserved"), Bits(5, 3, "Flow ID"),
    Number(2, "UDP Destination Port")});
constexpr auto kSync = Rows<Avp>({
    Word(1), Bits(0, 7, "Reserved"), Flag(7, "SYNC Messages Enabled"), Number(1, "SYNC Interval")});
constexpr auto kCapabilities = Rows<Avp>({Hex(2, nullptr)});
constexpr auto kGroup = Rows<Avp>({Word(2), Flag(0, "Locked"), Bits(1, 7, "TSID Group"), Bits(8, 8, "Reserved")});
constexpr auto kStream = Rows<Avp>({Number(2, "Transport Stream ID (TSID)")});
constexpr auto kLocked = Rows<Avp>({Word(2), Flag(0, "Locked"), Bits(1, 15, "Reserved")});
constexpr auto kFrequency = Rows<Avp>({Number(4, "Frequency", " Hz").Note(": %u Hz")});
constexpr auto kPower = Rows<Avp>({Number(2, "Power", " x 0.1 dBmV")});
constexpr auto kModulation = Rows<Avp>({
    Word(2), Flag(0, "Locked"), Bits(1, 11, "Reserved"), Bits(12, 4, "Modulation", kModulationNames)});
constexpr auto kAnnex = Rows<Avp>({Word(2), Flag(0, "Locked"), Bits(1, 11, "Reserved"), Bits(12, 4, "Annex", kAnnexNames)});
constexpr auto kSymbolRate = Rows<Avp>({Number(2, "Numerator (M)"), Number(2, "Denominator (N)")});
constexpr auto kInterleaver = Rows<Avp>({Number(1, "Taps (I)"), Number(1, "Increment (J)")});
constexpr auto kMuting = Rows<Avp>({Word(2), Flag(0, "Locked"), Bits(1, 14, "Reserved"), Flag(15, "Muted")});
void ShowEach(const Place& in, Cursor& c, int32_t size, RowSpan<Avp> rows, Avp& avp) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Avp>(in, c, rows, avp);
}
void ShowFlows(const Place& in, Cursor& c, Avp& avp) { ShowEach(in, c, 1, kFlow, avp); }
void ShowFlowPorts(const Place& in, Cursor& c, Avp& avp) { ShowEach(in, c, 4, kFlowPort, avp); }
void ShowStreams(const Place& in, Cursor& c, Avp& avp) { ShowEach(in, c, 2, kStream, avp); }
void ShowFrequency(const Place& in, Cursor& c, Avp& avp) { ShowEach(in, c, 4, kFrequency, avp); }
void ShowPower(const Place& in, Cursor& c, Avp& avp) { ShowEach(in, c, 2, kPower, avp); }
void ShowSymbolRate(const Place& in, Cursor& c, Avp& avp) { ShowEach(in, c, 4, kSymbolRate, avp); }
void ShowInterleaver(const Place& in, Cursor& c, Avp& avp) { ShowEach(in, c, 2, kInterleaver, avp); }
constexpr auto kCableAvps = Choices<Avp>({
    {1, "DEPI Result Code", kResult, ShowError}, {2, "DEPI Resource Allocation Request", {}, ShowFlows},
    {3, "DEPI Resource Allocation Reply", {}, ShowFlowPorts}, {4, "DEPI Local MTU", kShort},
    {5, "DOCSIS SYNC Control", kSync}, {6, "EQAM Capability Bits", kCapabilities}, {7, "DEPI Remote MTU", kShort},
    {8, "DEPI Local UDP Port", kShort}, {9, "DPR Session Type", kBytes}, {10, "DPR Session Status", kBytes},
    {100, "Downstream QAM Channel TSID Group", kGroup, ShowStreams},
    {101, "Downstream QAM Channel Frequency", kLocked, ShowFrequency},
    {102, "Downstream QAM Channel Power", kLocked, ShowPower}, {103, "Downstream QAM Channel Modulation", kModulation},
    {104, "Downstream QAM Channel J.83 Annex", kAnnex},
    {105, "Downstream QAM Channel Symbol Rate", kLocked, ShowSymbolRate},
    {106, "Downstream QAM Channel Interleaver Depth", kLocked, ShowInterleaver},
    {107, "Downstream QAM Channel RF Block Muting", kMuting}, {200, "DEPI Redundancy Capabilities", kBytes}});

// Those of version 3 under Cisco's number, as they were before the standard gave them its own.
constexpr auto kDraftVersion = Rows<Avp>({Number(2, nullptr).Note(": %u")});
constexpr auto kCiscoAvps = Choices<Avp>({
    {0, "Acknowledgment"}, {1, "Assigned Control Connection ID", kIdentifier},
    {2, "Pseudowire Capabilities List", {}, ShowWires}, {3, "Local Session ID", kIdentifier},
    {4, "Remote Session ID", kIdentifier}, {5, "Assigned Cookie", kBytes}, {6, "Remote End ID", kText},
    {7, "Pseudowire Type", {}, ShowWires}, {8, "Circuit Status", kCircuit}, {9, "Session Tie Breaker", kWide},
    {10, "Draft AVP Version", kDraftVersion}, {12, "Message Digest", kDigest},
    {13, "Control Message Authentication Nonce", kBytes}, {14, "Interface Maximum Transmission Unit", kShort}});

const Choice<Avp>* FindAvp(uint32_t vendor, uint32_t type) {
  if (vendor == 0) return FindChoice<Avp>(kAvps, type);
  if (vendor == kCisco) return FindChoice<Avp>(kCiscoAvps, type);
  if (vendor == kCableLabs) return FindChoice<Avp>(kCableAvps, type);
  return vendor == kBroadbandForum ? FindChoice<Avp>(kLineAvps, type) : nullptr;
}

}  // namespace

const char* L2tpMessageName(uint32_t message) { return LookupName(kMessageNames, message); }

void ShowL2tpAvps(const Place& at, Cursor& c) {
  constexpr int32_t kHeaderSize = 6;
  Loop loop;
  while (Left(c) >= kHeaderSize && MoreAt(at, c, loop)) {
    const int32_t length = static_cast<int32_t>(PeekU16(c) & kLengthMask);
    if (length < kHeaderSize) return;
    Cursor pair = TakeCursor(c, length);
    const uint32_t vendor = PeekU16(pair, 2), type = PeekU16(pair, 4);
    const Choice<Avp>* choice = FindAvp(vendor, type);
    const char* name = choice ? choice->name : vendor ? "Vendor-Specific" : kUnknown;
    const Place in = Under(at, AddLine(at, Ahead(pair, Left(pair)), "AVP: %s", name));
    Avp avp = ShowRows(in, pair, kHeader);
    if (choice) {
      const Field number = TakeU16(pair);
      AddLine(in, number, "Attribute Type: %u = %s", number.value, name);
    } else {
      ShowRows<Avp>(in, pair, kOtherType, avp);
    }
    if (avp.flags.value & kHidden) {
      const Field hidden = Rest(pair);
      AppendToParent(in, avp.flags, ", Hidden");
      if (hidden.here) AddLine(in, hidden, "Hidden Value: %s", HexText(hidden));
    } else if (Left(pair) > 0) {
      ShowChoice<Avp>(in, pair, choice, avp);
    }
  }
}

}  // namespace qxview
