// Network Time Protocol (RFC 5905; version 3: RFC 1305; extension fields: RFC 7822, Autokey: RFC 5906, Network Time
// Security: RFC 8915; control messages: RFC 9327; private messages as the reference implementation's header files have
// them): what time is it, and how sure is that?
#include "core/elements.h"
#include "core/times.h"

namespace qxview {
namespace {

constexpr uint32_t kControl = 6, kPrivate = 7;
constexpr int32_t kHeaderSize = 48, kControlSize = 12, kPrivateSize = 8;

constexpr auto kLeapNames = SortedNames({
    {0, "No Warning"}, {1, "Last Minute of the Day Has 61 Seconds"}, {2, "Last Minute of the Day Has 59 Seconds"},
    {3, "Unknown (Clock Unsynchronized)"}});
constexpr auto kModeNames = SortedNames({
    {0, "Reserved"}, {1, "Symmetric Active"}, {2, "Symmetric Passive"}, {3, "Client"}, {4, "Server"},
    {5, "Broadcast"}, {6, "Control Message"}, {7, "Private Use"}});
constexpr auto kOperationNames = SortedNames({
    {0, "Reserved"}, {1, "Read Status"}, {2, "Read Variables"}, {3, "Write Variables"}, {4, "Read Clock Variables"},
    {5, "Write Clock Variables"}, {6, "Set Trap Address/Port"}, {7, "Trap Response"}, {8, "Runtime Configuration"},
    {9, "Export Configuration"}, {10, "Retrieve Remote Address Statistics"}, {11, "Retrieve Ordered List"},
    {12, "Request Client-Specific Nonce"}, {31, "Unset Trap Address/Port"}});

const char* StratumName(uint32_t stratum) {
  return stratum == 0    ? "Unspecified or Invalid"
         : stratum == 1  ? "Primary Server"
         : stratum < 16  ? "Secondary Server"
         : stratum == 16 ? "Unsynchronized"
                         : "Reserved";
}

struct Ntp {
  Field version, mode, stratum;
  Field operation, association, count;              // of control messages
  Field request, items, itemSize;                   // of private ones
};

constexpr auto kFirst = Rows<Ntp>({
    Word(1), Bits(0, 2, "Leap Indicator", kLeapNames), Bits(2, 3, "Version Number").Into(&Ntp::version),
    Bits(5, 3, "Mode", kModeNames).Into(&Ntp::mode)});
constexpr auto kClock = Rows<Ntp>({
    Number(1, "Stratum", StratumName).Note(", Stratum %u").Into(&Ntp::stratum),
    Signed(1, "Poll Exponent", " (log2 seconds)"), Signed(1, "Precision", " (log2 seconds)"), NtpSpan("Root Delay"),
    NtpSpan("Root Dispersion")});
constexpr auto kSourceName = Rows<Ntp>({Text(4, "Reference ID").Note(", Reference %s")});
constexpr auto kSourceAddress = Rows<Ntp>({IPv4("Reference ID").Note(", Reference %s")});
constexpr auto kTimes = Rows<Ntp>({
    NtpTime("Reference Timestamp"), NtpTime("Origin Timestamp"), NtpTime("Receive Timestamp"),
    NtpTime("Transmit Timestamp")});
constexpr auto kKey = Rows<Ntp>({Hex(4, "Key Identifier")});

constexpr auto kSourceNames = SortedNames({
    {0, "Unspecified or Unknown"}, {1, "Calibrated Atomic Clock"}, {2, "VLF or LF Radio"}, {3, "HF Radio"},
    {4, "UHF Radio or Satellite"}, {5, "Local Net"}, {6, "UDP/NTP"}, {7, "UDP/TIME"}, {8, "Eyeball-and-Wristwatch"},
    {9, "Telephone Modem"}});
constexpr auto kSystemEventNames = SortedNames({
    {0, "Unspecified"}, {1, "Frequency File Not Available"}, {2, "Frequency Set"}, {3, "Spike Detected"},
    {4, "Frequency Training"}, {5, "Clock Synchronized"}, {6, "System Restart"}, {7, "Panic Stop"},
    {8, "No System Peer"}, {9, "Leap Second Armed"}, {10, "Leap Second Disarmed"},
    {11, "Leap Second Inserted or Deleted"},
    {12, "Clock Stepped"}, {13, "Kernel Status Changed"}, {14, "Leapsecond Table Loaded"},
    {15, "Leapsecond Table Outdated"}});
constexpr auto kSelectionNames = SortedNames({
    {0, "Rejected"}, {1, "Discarded by Intersection Algorithm"}, {2, "Discarded by Table Overflow"},
    {3, "Discarded by Cluster Algorithm"}, {4, "Included by Combine Algorithm"}, {5, "Backup"}, {6, "System Peer"},
    {7, "PPS Peer"}});
constexpr auto kPeerEventNames = SortedNames({
    {0, "Unspecified"}, {1, "Association Mobilized"}, {2, "Association Demobilized"}, {3, "Server Unreachable"},
    {4, "Server Reachable"}, {5, "Association Restart"}, {6, "No Server Found"}, {7, "Rate Exceeded"},
    {8, "Access Denied"}, {9, "Leap Armed by Server"}, {10, "Become System Peer"}, {11, "Reference Clock Event"},
    {12, "Authentication Failure"}, {13, "Popcorn Spike Suppressed"}, {14, "Entering Interleave Mode"},
    {15, "Interleave Error Recovered"}});
constexpr auto kClockNames = SortedNames({
    {0, "Operating Within Nominals"}, {1, "Reply Timeout"}, {2, "Bad Reply Format"}, {3, "Hardware or Software Fault"},
    {4, "Propagation Failure"}, {5, "Bad Date Format or Value"}, {6, "Bad Time Format or Value"}});
constexpr auto kErrorNames = SortedNames({
    {0, "Unspecified"}, {1, "Authentication Failure"}, {2, "Invalid Message Length or Format"}, {3, "Invalid Opcode"},
    {4, "Unknown Association ID"}, {5, "Unknown Variable Name"}, {6, "Invalid Variable Value"},
    {7, "Administratively Prohibited"}});

constexpr auto kControlHeader = Rows<Ntp>({
    Word(1), Flag(0, "Response"), Flag(1, "Error"), Flag(2, "More"),
    Bits(3, 5, "Operation Code", kOperationNames).Note(", %s").Into(&Ntp::operation), Number(2, "Sequence")});
constexpr auto kPlainStatus = Rows<Ntp>({Hex(2, "Status")});
constexpr auto kErrorStatus = Rows<Ntp>({Hex(2, "Status"), Bits(0, 8, "Error", kErrorNames), Bits(8, 8, "Reserved")});
constexpr auto kSystemStatus = Rows<Ntp>({
    Hex(2, "Status"), Bits(0, 2, "Leap Indicator", kLeapNames), Bits(2, 6, "Clock Source", kSourceNames),
    Bits(8, 4, "System Event Count"), Bits(12, 4, "System Event Code", kSystemEventNames)});
constexpr auto kPeerStatus = Rows<Ntp>({
    Hex(2, "Status"), Flag(0, "Configured"), Flag(1, "Authentication Enabled"), Flag(2, "Authentic"),
    Flag(3, "Reachable"), Flag(4, "Broadcast"), Bits(5, 3, "Peer Selection", kSelectionNames),
    Bits(8, 4, "Peer Event Count"), Bits(12, 4, "Peer Event Code", kPeerEventNames)});
constexpr auto kClockStatus = Rows<Ntp>({
    Hex(2, "Status"), Bits(0, 8, "Clock Status", kClockNames), Bits(8, 8, "Clock Event Code", kClockNames)});
constexpr auto kControlRest = Rows<Ntp>({
    Number(2, "Association ID").Into(&Ntp::association), Number(2, "Offset"), Number(2, "Count").Into(&Ntp::count)});

constexpr auto kImplementationNames = SortedNames({{0, "UNIV"}, {2, "XNTPD_OLD"}, {3, "XNTPD"}});
constexpr auto kPrivateErrorNames = SortedNames({
    {0, "No Error"}, {1, "Incompatible Implementation Number"}, {2, "Unimplemented Request Code"}, {3, "Format Error"},
    {4, "No Data Available"}, {7, "Authentication Failure"}});
constexpr auto kRequestNames = SortedNames({
    {0, "PEER_LIST"}, {1, "PEER_LIST_SUM"}, {2, "PEER_INFO"}, {3, "PEER_STATS"}, {4, "SYS_INFO"}, {5, "SYS_STATS"},
    {6, "IO_STATS"}, {7, "MEM_STATS"}, {8, "LOOP_INFO"}, {9, "TIMER_STATS"}, {10, "CONFIG"}, {11, "UNCONFIG"},
    {12, "SET_SYS_FLAG"}, {13, "CLR_SYS_FLAG"}, {14, "MONITOR"}, {15, "NOMONITOR"}, {16, "GET_RESTRICT"},
    {17, "RESADDFLAGS"}, {18, "RESSUBFLAGS"}, {19, "UNRESTRICT"}, {20, "MON_GETLIST"}, {21, "RESET_STATS"},
    {22, "RESET_PEER"}, {23, "REREAD_KEYS"}, {24, "DO_DIRTY_HACK"}, {25, "DONT_DIRTY_HACK"}, {26, "TRUSTKEY"},
    {27, "UNTRUSTKEY"}, {28, "AUTHINFO"}, {29, "TRAPS"}, {30, "ADD_TRAP"}, {31, "CLR_TRAP"}, {32, "REQUEST_KEY"},
    {33, "CONTROL_KEY"}, {34, "GET_CTLSTATS"}, {35, "GET_LEAPINFO"}, {36, "GET_CLOCKINFO"}, {37, "SET_CLKFUDGE"},
    {38, "GET_KERNEL"}, {39, "GET_CLKBUGINFO"}, {41, "SET_PRECISION"}, {42, "MON_GETLIST_1"}, {43, "HOSTNAME_ASSOCID"},
    {44, "IF_STATS"}, {45, "IF_RELOAD"}});
constexpr auto kPrivateFirst = Rows<Ntp>({
    Word(1), Flag(0, "Response"), Flag(1, "More"), Bits(2, 3, "Version Number"), Bits(5, 3, "Mode", kModeNames)});
constexpr auto kPrivateHeader = Rows<Ntp>({
    Word(1), Flag(0, "Authenticated"), Bits(1, 7, "Sequence"), Number(1, "Implementation", kImplementationNames),
    Number(1, "Request Code", kRequestNames).Note(", %s").Into(&Ntp::request),
    Word(2), Bits(0, 4, "Error", kPrivateErrorNames), Bits(4, 12, "Number of Items").Into(&Ntp::items),
    Word(2), Bits(0, 4, "Reserved"), Bits(4, 12, "Item Size").Into(&Ntp::itemSize)});

// Differences of times: seconds and their fraction, half of the field each, with a sign.
void ShowSpan(const Place& in, const Field& field, const char* label) {
  const uint32_t span = PeekU32(field);
  const bool isNegative = span >> 31;
  AddLine(in, field, "%s: %s%s", label, isNegative ? "-" : "", NtpSpanText(isNegative ? 0u - span : span));
}
void ShowOffset(const Place& in, const Field& field, const char* label) {
  Cursor over = CursorOver(field);
  const uint64_t bits = TakeU64(over).wide;
  const bool isNegative = bits >> 63;
  const uint64_t offset = isNegative ? 0 - bits : bits;
  const uint64_t fraction = (offset & 0xFFFFFFFF) * 1000000000 >> 32;
  AddLine(in, field, "%s: %s%u.%.09u seconds", label, isNegative ? "-" : "", static_cast<uint32_t>(offset >> 32),
          static_cast<uint32_t>(fraction));
}
consteval RowData Span(const char* label) { return Shown(4, label, ShowSpan); }
consteval RowData Offset(const char* label) { return Shown(8, label, ShowOffset); }

constexpr auto kPeerFlags = SortedNames({
    {0x01, "Configured"}, {0x02, "System Peer"}, {0x04, "Burst"}, {0x08, "Reference Clock"}, {0x10, "Preferred"},
    {0x20, "Authentication Enabled"}, {0x40, "Selection Candidate"}, {0x80, "Short List"}});
constexpr auto kInfoFlags = SortedNames({
    {0x01, "Broadcast Client"}, {0x02, "Authenticate"}, {0x04, "NTP"}, {0x08, "Kernel"}, {0x10, "Calibrate"},
    {0x20, "PPS Synchronization"}, {0x40, "Monitor"}, {0x80, "File Generation"}});
constexpr auto kSystemFlags = SortedNames({
    {0x01, "Broadcast Client"}, {0x02, "PPS"}, {0x04, "NTP"}, {0x08, "Kernel"}, {0x10, "Monitor"},
    {0x20, "File Generation"}, {0x40, "Authenticate"}, {0x80, "Calibrate"}});
constexpr auto kConfigFlags = SortedNames({
    {0x01, "Authentication Enabled"}, {0x02, "Preferred"}, {0x04, "Burst"}, {0x08, "Initial Burst"},
    {0x10, "No Select"}, {0x20, "Autokey"}});
constexpr auto kResetFlags = SortedNames({
    {0x01, "All Peers"}, {0x02, "Input and Output"}, {0x04, "System"}, {0x08, "Memory"}, {0x10, "Timer"},
    {0x20, "Authentication"}, {0x40, "Control"}});
constexpr auto kRestrictFlags = SortedNames({
    {0x0001, "Ignore"}, {0x0002, "No Serve"}, {0x0004, "No Trust"}, {0x0008, "Version"}, {0x0010, "No Peer"},
    {0x0020, "Limited"}, {0x0040, "No Query"}, {0x0080, "No Modify"}, {0x0100, "No Trap"},
    {0x0200, "Low Priority Trap"}, {0x0400, "Kiss of Death"},
    {0x0800, "MS-SNTP"}, {0x1000, "Flake"}, {0x2000, "No MRU List"}});

// What the items of private messages hold.
constexpr auto kPeerListItem = Rows<Ntp>({
    IPv4("Address"), Number(2, "Port"), Number(1, "Host Mode", kModeNames), Flags(1, "Flags", kPeerFlags),
    Number(4, "IPv6 Flag"), Number(4, "Unused"), IPv6("IPv6 Address")});
constexpr auto kPeerSummaryItem = Rows<Ntp>({
    IPv4("Destination Address"), IPv4("Source Address"), Number(2, "Source Port"), Number(1, "Stratum"),
    Signed(1, "Host Poll Exponent"), Signed(1, "Peer Poll Exponent"), Hex(1, "Reachability"),
    Flags(1, "Flags", kPeerFlags), Number(1, "Host Mode", kModeNames), Span("Delay"), Offset("Offset"),
    Span("Dispersion"), Number(4, "IPv6 Flag"), Number(4, "Unused"), IPv6("IPv6 Destination Address"),
    IPv6("IPv6 Source Address")});
constexpr auto kPeerItem = Rows<Ntp>({
    IPv4("Destination Address"), IPv4("Source Address"), Number(2, "Source Port"), Flags(1, "Flags", kPeerFlags),
    Number(1, "Leap", kLeapNames), Number(1, "Host Mode", kModeNames), Number(1, "Peer Mode", kModeNames),
    Number(1, "Stratum"), Number(1, "Peer Poll Exponent"), Number(1, "Host Poll Exponent"), Signed(1, "Precision"),
    Number(1, "Version"), Number(1, "Unused"), Hex(1, "Reachability"), Number(1, "Unreachable"), Hex(1, "Flash Old"),
    Number(1, "Time to Live"), Hex(2, "Flash"), Number(2, "Association ID"), Number(4, "Key Identifier"),
    Number(4, "Peer Key Identifier"), IPv4("Reference ID"), Number(4, "Timer"), Span("Root Delay"),
    Span("Root Dispersion"), NtpTime("Reference Timestamp"), NtpTime("Origin Timestamp"),
    NtpTime("Receive Timestamp"), NtpTime("Transmit Timestamp"), Span("Filter Delay"), Span("Filter Delay"),
    Span("Filter Delay"), Span("Filter Delay"), Span("Filter Delay"), Span("Filter Delay"), Span("Filter Delay"),
    Span("Filter Delay"), Offset("Filter Offset"), Offset("Filter Offset"), Offset("Filter Offset"),
    Offset("Filter Offset"), Offset("Filter Offset"), Offset("Filter Offset"), Offset("Filter Offset"),
    Offset("Filter Offset"), Bytes(8, "Order"), Span("Delay"), Span("Dispersion"), Offset("Offset"),
    Span("Select Dispersion"), Bytes(28, "Unused"), Span("Broadcast Delay"), Number(4, "IPv6 Flag"),
    Number(4, "Unused"), IPv6("IPv6 Destination Address"), IPv6("IPv6 Source Address")});
constexpr auto kPeerStatsItem = Rows<Ntp>({
    IPv4("Destination Address"), IPv4("Source Address"), Number(2, "Source Port"), Flags(2, "Flags", kPeerFlags),
    Number(4, "Time Reset", " seconds"), Number(4, "Time Received", " seconds"), Number(4, "Time to Send", " seconds"),
    Number(4, "Time Reachable", " seconds"), Number(4, "Sent"), Number(4, "Unused"), Number(4, "Processed"),
    Number(4, "Unused"), Number(4, "Bad Authentication"), Number(4, "Bogus Origin"), Number(4, "Old Packets"),
    Number(4, "Unused"), Number(4, "Unused"), Number(4, "Bad Dispersion"), Number(4, "Bad Reference Time"),
    Number(4, "Unused"), Number(1, "Candidate"), Number(3, "Unused"), Number(4, "IPv6 Flag"), Number(4, "Unused"),
    IPv6("IPv6 Destination Address"), IPv6("IPv6 Source Address")});
constexpr auto kLoopItem = Rows<Ntp>({
    Offset("Last Offset"), Offset("Drift Compensation"), Number(4, "Compliance"),
    Number(4, "Watchdog Timer", " seconds")});
constexpr auto kSystemItem = Rows<Ntp>({
    IPv4("Peer Address"), Number(1, "Peer Mode", kModeNames), Number(1, "Leap", kLeapNames), Number(1, "Stratum"),
    Signed(1, "Precision"), Span("Root Delay"), Span("Root Dispersion"), IPv4("Reference ID"),
    NtpTime("Reference Timestamp"), Number(4, "Poll Interval"), Flags(1, "Flags", kInfoFlags), Number(3, "Unused"),
    Span("Broadcast Delay"), Span("Frequency"), Offset("Authentication Delay"), Span("Stability"),
    Number(4, "IPv6 Flag"), Number(4, "Unused"), IPv6("IPv6 Peer Address")});
constexpr auto kSystemStatsItem = Rows<Ntp>({
    Number(4, "Time Up", " seconds"), Number(4, "Time Reset", " seconds"), Number(4, "Access Denied"),
    Number(4, "Old Version"), Number(4, "New Version"), Number(4, "Unknown Version"), Number(4, "Bad Length"),
    Number(4, "Processed"), Number(4, "Bad Authentication"), Number(4, "Received"), Number(4, "Limit Rejected"),
    Number(4, "Lamport Violations"), Number(4, "Timestamp Rounding Errors")});
constexpr auto kMemoryItem = Rows<Ntp>({
    Number(4, "Time Reset", " seconds"), Number(2, "Total Peer Memory"), Number(2, "Free Peer Memory"),
    Number(4, "Find Peer Calls"), Number(4, "Allocations"), Number(4, "Demobilizations"), Bytes(0, "Hash Counts")});
constexpr auto kIoItem = Rows<Ntp>({
    Number(4, "Time Reset", " seconds"), Number(2, "Total Receive Buffers"), Number(2, "Free Receive Buffers"),
    Number(2, "Full Receive Buffers"), Number(2, "Low Water"), Number(4, "Dropped"), Number(4, "Ignored"),
    Number(4, "Received"), Number(4, "Sent"), Number(4, "Not Sent"), Number(4, "Interrupts"),
    Number(4, "Received by Interrupt Handler")});
constexpr auto kTimerItem = Rows<Ntp>({
    Number(4, "Time Reset", " seconds"), Number(4, "Alarms"), Number(4, "Overflows"), Number(4, "Transmit Calls")});
constexpr auto kConfigItem = Rows<Ntp>({
    IPv4("Peer Address"), Number(1, "Host Mode", kModeNames), Number(1, "Version"), Number(1, "Minimum Poll Exponent"),
    Number(1, "Maximum Poll Exponent"), Flags(1, "Flags", kConfigFlags), Number(1, "Time to Live"), Number(2, "Unused"),
    Number(4, "Key Identifier"), Text(128, "Key File"), Number(4, "IPv6 Flag"), IPv6("IPv6 Peer Address")});
constexpr auto kUnconfigItem = Rows<Ntp>({
    IPv4("Peer Address"), Number(4, "IPv6 Flag"), IPv6("IPv6 Peer Address")});
constexpr auto kSystemFlagItem = Rows<Ntp>({Flags(4, "Flags", kSystemFlags)});
constexpr auto kRestrictItem = Rows<Ntp>({
    IPv4("Address"), IPv4("Mask"), Number(4, "Count"), Flags(2, "Flags", kRestrictFlags), Hex(2, "Match Flags"),
    Number(4, "IPv6 Flag"), Number(4, "Unused"), IPv6("IPv6 Address"), IPv6("IPv6 Mask")});
constexpr auto kSetRestrictItem = Rows<Ntp>({
    IPv4("Address"), IPv4("Mask"), Flags(2, "Flags", kRestrictFlags), Hex(2, "Match Flags"), Number(4, "IPv6 Flag"),
    IPv6("IPv6 Address"), IPv6("IPv6 Mask")});
constexpr auto kMonitorItem = Rows<Ntp>({
    Number(4, "Average Interval", " seconds"), Number(4, "Last Interval", " seconds"),
    Flags(4, "Restrictions", kRestrictFlags), Number(4, "Count"), IPv4("Remote Address"), Number(2, "Port"),
    Number(1, "Mode", kModeNames), Number(1, "Version"), Number(4, "IPv6 Flag"), Number(4, "Unused"),
    IPv6("IPv6 Remote Address")});
constexpr auto kMonitor1Item = Rows<Ntp>({
    Number(4, "Average Interval", " seconds"), Number(4, "Last Interval", " seconds"),
    Flags(4, "Restrictions", kRestrictFlags), Number(4, "Count"), IPv4("Remote Address"), IPv4("Local Address"),
    Hex(4, "Flags"), Number(2, "Port"), Number(1, "Mode", kModeNames), Number(1, "Version"), Number(4, "IPv6 Flag"),
    Number(4, "Unused"), IPv6("IPv6 Remote Address"), IPv6("IPv6 Local Address")});
constexpr auto kResetItem = Rows<Ntp>({Flags(4, "Flags", kResetFlags)});
constexpr auto kKeyItem = Rows<Ntp>({Number(4, "Key Identifier")});
constexpr auto kAuthenticationItem = Rows<Ntp>({
    Number(4, "Time Reset", " seconds"), Number(4, "Keys"), Number(4, "Free Keys"), Number(4, "Key Lookups"),
    Number(4, "Keys Not Found"), Number(4, "Encryptions"), Number(4, "Decryptions"), Number(4, "Expired"),
    Number(4, "Keys Uncached")});
constexpr auto kTrapItem = Rows<Ntp>({
    IPv4("Local Address"), IPv4("Trap Address"), Number(2, "Trap Port"), Number(2, "Sequence"),
    Number(4, "Time Set", " seconds"), Number(4, "Original Time", " seconds"), Number(4, "Resets"), Hex(4, "Flags"),
    Number(4, "IPv6 Flag"), IPv6("IPv6 Local Address"), IPv6("IPv6 Trap Address")});
constexpr auto kSetTrapItem = Rows<Ntp>({
    IPv4("Local Address"), IPv4("Trap Address"), Number(2, "Trap Port"), Number(2, "Unused"), Number(4, "IPv6 Flag"),
    IPv6("IPv6 Local Address"), IPv6("IPv6 Trap Address")});
constexpr auto kControlStatsItem = Rows<Ntp>({
    Number(4, "Time Reset", " seconds"), Number(4, "Requests"), Number(4, "Bad Packets"), Number(4, "Responses"),
    Number(4, "Fragments"), Number(4, "Errors"), Number(4, "Too Short"), Number(4, "Responses on Input"),
    Number(4, "Fragments on Input"), Number(4, "Errors on Input"), Number(4, "Bad Offset"), Number(4, "Bad Version"),
    Number(4, "Data Too Short"), Number(4, "Bad Operation Code"), Number(4, "Asynchronous Messages")});
constexpr auto kClockItem = Rows<Ntp>({
    IPv4("Clock Address"), Number(1, "Type"), Hex(1, "Flags"), Number(1, "Last Event", kClockNames),
    Number(1, "Current Status", kClockNames), Number(4, "Polls"), Number(4, "No Response"), Number(4, "Bad Format"),
    Number(4, "Bad Data"), Number(4, "Time Started", " seconds"), Offset("Fudge Time 1"), Offset("Fudge Time 2"),
    Signed(4, "Fudge Value 1"), IPv4("Fudge Value 2")});
constexpr auto kFudgeItem = Rows<Ntp>({
    IPv4("Clock Address"), Number(4, "Which"), Offset("Fudge Time"), Hex(4, "Fudge Value or Flags")});
constexpr auto kKernelItem = Rows<Ntp>({
    Signed(4, "Offset"), Signed(4, "Frequency"), Signed(4, "Maximum Error"), Signed(4, "Estimated Error"),
    Hex(2, "Status"), Number(2, "Shift"), Signed(4, "Time Constant"), Signed(4, "Precision"), Signed(4, "Tolerance"),
    Signed(4, "PPS Frequency"), Signed(4, "PPS Jitter"), Signed(4, "PPS Stability"), Signed(4, "Jitter Exceeded"),
    Signed(4, "Calibration Intervals"), Signed(4, "Calibration Errors"), Signed(4, "Stability Exceeded")});
constexpr auto kClockBugItem = Rows<Ntp>({
    IPv4("Clock Address"), Number(1, "Values"), Number(1, "Times"), Hex(2, "Signed Values"), Hex(4, "Signed Times"),
    Bytes(64, "Value List"), Bytes(0, "Time List")});
constexpr auto kInterfaceItem = Rows<Ntp>({
    IPv6("Address"), IPv6("Broadcast Address"), IPv6("Mask"), Number(4, "IPv6 Flag"), Text(32, "Interface Name"),
    Hex(4, "Interface Flags"), Signed(4, "Last Time to Live"), Signed(4, "Multicast Sockets"), Number(4, "Received"),
    Number(4, "Sent"), Number(4, "Not Sent"), Number(4, "Uptime", " seconds"), Number(4, "Scope ID"),
    Number(4, "Interface Index"), Number(4, "Interface Number"), Number(4, "Peer Count"), Number(2, "Address Family"),
    Number(1, "Ignore Packets"), Number(1, "Action"), Number(4, "Unused")});

constexpr auto kReplyItems = Choices<Ntp>({
    {0, "Peer", kPeerListItem}, {1, "Peer", kPeerSummaryItem}, {2, "Peer", kPeerItem}, {3, "Peer", kPeerStatsItem},
    {4, "System", kSystemItem}, {5, "System", kSystemStatsItem}, {6, "Input and Output", kIoItem},
    {7, "Memory", kMemoryItem}, {8, "Loop", kLoopItem}, {9, "Timer", kTimerItem}, {16, "Restriction", kRestrictItem},
    {20, "Monitored Host", kMonitorItem}, {28, "Authentication", kAuthenticationItem}, {29, "Trap", kTrapItem},
    {34, "Control", kControlStatsItem}, {36, "Clock", kClockItem}, {38, "Kernel", kKernelItem},
    {39, "Clock", kClockBugItem}, {42, "Monitored Host", kMonitor1Item}, {44, "Interface", kInterfaceItem},
    {45, "Interface", kInterfaceItem}});
constexpr auto kRequestItems = Choices<Ntp>({
    {2, "Peer", kPeerListItem}, {3, "Peer", kPeerListItem}, {10, "Peer", kConfigItem}, {11, "Peer", kUnconfigItem},
    {12, "System", kSystemFlagItem}, {13, "System", kSystemFlagItem}, {17, "Restriction", kSetRestrictItem},
    {18, "Restriction", kSetRestrictItem}, {19, "Restriction", kSetRestrictItem}, {21, "Statistics", kResetItem},
    {22, "Peer", kUnconfigItem}, {26, "Key", kKeyItem}, {27, "Key", kKeyItem}, {30, "Trap", kSetTrapItem},
    {31, "Trap", kSetTrapItem}, {32, "Key", kKeyItem}, {33, "Key", kKeyItem}, {37, "Clock", kFudgeItem}});

// Extension fields.
constexpr auto kAutokeyMessage = Rows<Ntp>({
    Hex(4, "Association ID"), Number(4, "Timestamp", " seconds since 1900"),
    Number(4, "Filestamp", " seconds since 1900"), Counted(4, Bytes(0, "Value")), Counted(4, Bytes(0, "Signature"))});
constexpr auto kAutokeyShort = Rows<Ntp>({Hex(4, "Association ID")});
constexpr auto kUniqueIdentifier = Rows<Ntp>({Bytes(0, "Unique Identifier")});
constexpr auto kCookie = Rows<Ntp>({Bytes(0, "Cookie")});
constexpr auto kPlaceholder = Rows<Ntp>({Bytes(0, "Cookie Placeholder")});
constexpr auto kComplement = Rows<Ntp>({Bytes(22, "Must Be Zero"), Hex(2, "Checksum Complement")});

void ShowAutokey(const Place& in, Cursor& c, Ntp& ntp) {
  if (Left(c) <= 4) return ShowRows<Ntp>(in, c, kAutokeyShort, ntp);
  ShowRows<Ntp>(in, c, kAutokeyMessage, ntp);
}
void ShowPadded(const Place& in, Cursor& c, uint32_t length, const char* label) {
  constexpr auto kPart = Rows<NoValues>({Bytes(0, nullptr)});
  NoValues none;
  Cursor part = TakeCursor(c, length);
  ShowRows<NoValues>(in, part, kPart, none, label);
  const Field padding = TakeBytes(c, (4 - length % 4) % 4);
  if (padding.length > 0) AddLine(in, padding, "Padding: %s", HexText(padding));
}
// Nonce and ciphertext are counted in front of both, and padded to words each.
void ShowSealed(const Place& in, Cursor& c, Ntp&) {
  const Field nonceLength = TakeU16(c), sealedLength = TakeU16(c);
  AddLine(in, nonceLength, "Nonce Length: %u", nonceLength.value);
  AddLine(in, sealedLength, "Ciphertext Length: %u", sealedLength.value);
  ShowPadded(in, c, nonceLength.value, "Nonce");
  ShowPadded(in, c, sealedLength.value, "Ciphertext");
}

constexpr auto kExtensions = Choices<Ntp>({
    {0x0002, "No-Operation Request", {}, ShowAutokey}, {0x0102, "Association Message Request", {}, ShowAutokey},
    {0x0104, "Unique Identifier", kUniqueIdentifier}, {0x0200, "No-Operation Request", {}, ShowAutokey},
    {0x0201, "Association Message Request", {}, ShowAutokey}, {0x0202, "Certificate Message Request", {}, ShowAutokey},
    {0x0203, "Cookie Message Request", {}, ShowAutokey}, {0x0204, "NTS Cookie", kCookie},
    {0x0205, "Leapseconds Message Request", {}, ShowAutokey}, {0x0206, "Sign Message Request", {}, ShowAutokey},
    {0x0207, "IFF Identity Message Request", {}, ShowAutokey},
    {0x0208, "GQ Identity Message Request", {}, ShowAutokey},
    {0x0209, "MV Identity Message Request", {}, ShowAutokey}, {0x0302, "Cookie Message Request", {}, ShowAutokey},
    {0x0304, "NTS Cookie Placeholder", kPlaceholder}, {0x0402, "Autokey Message Request", {}, ShowAutokey},
    {0x0404, "NTS Authenticator and Encrypted Extension Fields", {}, ShowSealed},
    {0x0502, "Leapseconds Message Request", {}, ShowAutokey}, {0x0602, "Sign Message Request", {}, ShowAutokey},
    {0x0702, "IFF Identity Message Request", {}, ShowAutokey},
    {0x0802, "GQ Identity Message Request", {}, ShowAutokey},
    {0x0902, "MV Identity Message Request", {}, ShowAutokey}, {0x2005, "UDP Checksum Complement", kComplement},
    {0x8002, "No-Operation Response", {}, ShowAutokey}, {0x8102, "Association Message Response", {}, ShowAutokey},
    {0x8200, "No-Operation Response", {}, ShowAutokey}, {0x8201, "Association Message Response", {}, ShowAutokey},
    {0x8202, "Certificate Message Response", {}, ShowAutokey}, {0x8203, "Cookie Message Response", {}, ShowAutokey},
    {0x8204, "Autokey Message Response", {}, ShowAutokey}, {0x8205, "Leapseconds Message Response", {}, ShowAutokey},
    {0x8206, "Sign Message Response", {}, ShowAutokey}, {0x8207, "IFF Identity Message Response", {}, ShowAutokey},
    {0x8208, "GQ Identity Message Response", {}, ShowAutokey},
    {0x8209, "MV Identity Message Response", {}, ShowAutokey},
    {0x8302, "Cookie Message Response", {}, ShowAutokey}, {0x8402, "Autokey Message Response", {}, ShowAutokey},
    {0x8502, "Leapseconds Message Response", {}, ShowAutokey}, {0x8602, "Sign Message Response", {}, ShowAutokey},
    {0x8702, "IFF Identity Message Response", {}, ShowAutokey},
    {0x8802, "GQ Identity Message Response", {}, ShowAutokey},
    {0x8902, "MV Identity Message Response", {}, ShowAutokey},
    {0xC002, "No-Operation Error Response", {}, ShowAutokey},
    {0xC102, "Association Message Error Response", {}, ShowAutokey},
    {0xC202, "Certificate Message Error Response", {}, ShowAutokey},
    {0xC302, "Cookie Message Error Response", {}, ShowAutokey},
    {0xC402, "Autokey Message Error Response", {}, ShowAutokey},
    {0xC502, "Leapseconds Message Error Response", {}, ShowAutokey},
    {0xC602, "Sign Message Error Response", {}, ShowAutokey},
    {0xC702, "IFF Identity Message Error Response", {}, ShowAutokey},
    {0xC802, "GQ Identity Message Error Response", {}, ShowAutokey},
    {0xC902, "MV Identity Message Error Response", {}, ShowAutokey}});

// Key and digest of MD5, SHA-1 and what is cut to their sizes; the key alone says that there is none.
void ShowAuthenticator(const Place& in, Cursor& c, Ntp& ntp) {
  constexpr int32_t kSizes[] = {4, 4 + 16, 4 + 20};
  for (const int32_t size : kSizes) {
    if (Left(c) != size) continue;
    ShowRows<Ntp>(in, c, kKey, ntp);
    const Field digest = Rest(c);
    AddLine(in, digest, "Message Digest: %s", HexText(digest));
  }
}

void ShowExtensions(const Place& in, Cursor& c, Ntp& ntp) {
  constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .lengthCountsHeader = true};
  constexpr int32_t kLongestAuthenticator = 24;   // what is longer starts with an extension field (RFC 7822 7.5)
  Loop loop;
  while (Left(c) > kLongestAuthenticator && PeekU16(c, 2) >= 4 && MoreAt(in, c, loop)) {
    const int32_t length = static_cast<int32_t>(PeekU16(c, 2));
    Cursor field = TakeCursor(c, length);
    ShowElements<Ntp>(in, field, kForm, "Extension Field", kExtensions, ntp);
  }
}

void DecodeTime(const Place& in, Cursor& c, Ntp& ntp) {
  ShowRows<Ntp>(in, c, kClock, ntp);
  ShowRows<Ntp>(in, c, ntp.stratum.value < 2 ? RowSpan<Ntp>(kSourceName) : RowSpan<Ntp>(kSourceAddress), ntp);
  ShowRows<Ntp>(in, c, kTimes, ntp);
  ShowExtensions(in, c, ntp);
  ShowAuthenticator(in, c, ntp);
}

// "name=value" up to a comma that stands in no quotes, and blanks and line ends behind it.
void ShowVariables(const Place& in, Cursor& c) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (PeekU8(c) <= ' ' || PeekU8(c) == ',') {
      TakeU8(c);
      continue;
    }
    int32_t length = 0, equals = 0;
    bool quoted = false;
    for (; length < Left(c); ++length) {
      const uint8_t next = PeekU8(c, length);
      if (!quoted && (next == ',' || next == '\r' || next == 0)) break;
      if (PeekU8(c, length) == '"') quoted = !quoted;
      if (PeekU8(c, length) == '=' && equals == 0) equals = length;
    }
    if (length == 0) break;
    const Field variable = TakeBytes(c, length);
    if (equals > 0) {
      const Field value = Slice(variable, equals + 1, length - equals - 1);
      AddLine(in, variable, "%s: %s", Text(Slice(variable, 0, equals)), Text(value));
    } else {
      AddLine(in, variable, "Variable: %s", Text(variable));
    }
  }
}

RowSpan<Ntp> StatusRows(uint32_t operation, uint32_t association, bool isResponse, bool isError) {
  constexpr uint32_t kReadClock = 4, kWriteClock = 5, kTrap = 7;
  if (!isResponse) return kPlainStatus;
  if (isError) return kErrorStatus;
  if (operation == kReadClock || operation == kWriteClock) return kClockStatus;
  if (operation > kTrap) return kPlainStatus;
  return association ? RowSpan<Ntp>(kPeerStatus) : RowSpan<Ntp>(kSystemStatus);
}

void DecodeControl(const Place& in, Cursor& c, Ntp& ntp) {
  constexpr uint32_t kReadStatus = 1, kResponse = 0x80, kError = 0x40;
  const uint32_t bits = PeekU8(c), association = PeekU16(c, 5);
  ShowRows<Ntp>(in, c, kControlHeader, ntp);
  const bool isResponse = bits & kResponse;
  ShowRows<Ntp>(in, c, StatusRows(ntp.operation.value, association, isResponse, bits & kError), ntp);
  ShowRows<Ntp>(in, c, kControlRest, ntp);
  Cursor data = TakeCursor(c, ntp.count.value);
  const LineHandle line = Left(data) > 0 ? AddLine(in, Ahead(data, Left(data)), "Data: %d bytes", Left(data)) : 0;
  const Place under = Under(in, line);
  if (ntp.operation.value == kReadStatus && isResponse && association == 0) {
    constexpr auto kAssociation = Rows<Ntp>({Number(2, "Association ID")});
    Loop loop;
    while (Left(data) >= 4 && MoreAt(under, data, loop)) {
      ShowRows<Ntp>(under, data, kAssociation, ntp);
      ShowRows<Ntp>(under, data, kPeerStatus, ntp);
    }
  } else {
    ShowVariables(under, data);
  }
  const int32_t padding = (4 - Taken(c) % 4) % 4;
  if (padding > 0 && Left(c) >= padding) {
    const Field filler = TakeBytes(c, padding);
    AddLine(in, filler, "Padding: %s", HexText(filler));
  }
  ShowAuthenticator(in, c, ntp);
  AddBlock(in, Rest(c), "NTP Data");
}

bool IsZero(const Field& field) {
  for (int32_t i = 0; i < field.length; ++i) {
    if (PeekU8(field, i)) return false;
  }
  return true;
}

// Requests have their data in a field of fixed size, and the time behind it where they are signed.
void DecodePrivate(const Place& in, Cursor& c, Ntp& ntp) {
  constexpr auto kSigned = Rows<Ntp>({NtpTime("Timestamp"), Hex(4, "Key Identifier")});
  constexpr int32_t kRequestData = 176, kTimeAndKey = 12;
  const bool isResponse = PeekU8(c) & 0x80, isSigned = PeekU8(c, 1) & 0x80;
  ShowRows<Ntp>(in, c, kPrivateFirst, ntp);
  ShowRows<Ntp>(in, c, kPrivateHeader, ntp);
  const Choice<Ntp>* choice = isResponse ? FindChoice<Ntp>(kReplyItems, ntp.request.value)
                                         : FindChoice<Ntp>(kRequestItems, ntp.request.value);
  Cursor data = isResponse ? TakeCursor(c, Left(c)) : TakeCursor(c, kRequestData);
  Loop loop;
  for (uint32_t number = 0; number < ntp.items.value && ntp.itemSize.value > 0 && MoreAt(in, data, loop); ++number) {
    Cursor item = TakeCursor(data, ntp.itemSize.value);
    const char* name = choice ? choice->name : kUnknown;
    const Place under = Under(in, AddLine(in, Ahead(item, Left(item)), "Item %u: %s", number + 1, name));
    ShowChoice<Ntp>(under, item, choice, ntp);
  }
  const Field unused = Rest(data);
  if (unused.here && IsZero(unused)) {
    AddLine(in, unused, "Unused: %d zero bytes", unused.length);
  } else {
    AddBlock(in, unused, "Private Data");
  }
  if (!isSigned && Left(c) == 8) {
    constexpr auto kUnsigned = Rows<Ntp>({NtpTime("Timestamp")});
    ShowRows<Ntp>(in, c, kUnsigned, ntp);
  } else if (Left(c) >= kTimeAndKey) {
    ShowRows<Ntp>(in, c, kSigned, ntp);
    const Field digest = Rest(c);
    AddLine(in, digest, "Message Digest: %s", HexText(digest));
  }
  AddBlock(in, Rest(c), "Private Data");
}

}  // namespace

int32_t DecodeNtp(const Place& at, Cursor c) {
  const Ntp ahead = PeekRows(c, kFirst);
  const uint32_t mode = ahead.mode.value;
  if (Left(c) < (mode == kControl ? kControlSize : mode == kPrivate ? kPrivateSize : kHeaderSize)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "NTP: Version %u, %s", ahead.version.value,
                                     LookupName(kModeNames, mode)));
  Ntp ntp{};
  if (mode == kPrivate) return DecodePrivate(in, c, ntp), 1;
  ShowRows<Ntp>(in, c, kFirst, ntp);
  if (mode == kControl) return DecodeControl(in, c, ntp), 1;
  DecodeTime(in, c, ntp);
  AddBlock(in, Rest(c), "NTP Data");
  return 1;
}

}  // namespace qxview
