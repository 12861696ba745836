// Private messages of the Network Time Protocol (mode 7), as the header files of the reference implementation have them: what
// its own tool asks a server and how it is set up. No RFC describes them.
#include "decoders/app/ntp.h"

#include "core/elements.h"
#include "core/times.h"

namespace qxview {
namespace {

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
    Word(1), Flag(0, "Response"), Flag(1, "More"), Bits(2, 3, "Version Number"), Bits(5, 3, "Mode", kNtpModeNames)});
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

// Frequencies stand in the same forms, but tell parts per million.
void ShowRate(const Place& in, const Field& field, const char* label) {
  const uint32_t rate = PeekU32(field);
  const bool isNegative = rate >> 31;
  const uint32_t size = isNegative ? 0u - rate : rate;
  AddLine(in, field, "%s: %s%u.%.06u parts per million", label, isNegative ? "-" : "", size >> 16,
          static_cast<uint32_t>((uint64_t{size & 0xFFFF} * 1000000) >> 16));
}
void ShowDrift(const Place& in, const Field& field, const char* label) {
  Cursor over = CursorOver(field);
  const uint64_t bits = TakeU64(over).wide;
  const bool isNegative = bits >> 63;
  const uint64_t size = isNegative ? 0 - bits : bits;
  AddLine(in, field, "%s: %s%u.%.06u parts per million", label, isNegative ? "-" : "", static_cast<uint32_t>(size >> 32),
          static_cast<uint32_t>(((size & 0xFFFFFFFF) * 1000000) >> 32));
}
consteval RowData Rate(const char* label) { return Shown(4, label, ShowRate); }

// The addresses of an interface have room for 16 bytes; the flag behind all three, `flagAhead` bytes from here, tells whether
// the first four are one of version 4.
template <int32_t flagAhead>
void ShowInterfaceAddress(const Place& in, Cursor& c, const char* label, Ntp& ntp) {
  constexpr auto kVersion6 = Rows<Ntp>({IPv6(nullptr)});
  constexpr auto kVersion4 = Rows<Ntp>({IPv4(nullptr), Bytes(12, "Unused")});
  ShowRows<Ntp>(in, c, PeekU32(c, flagAhead) ? RowSpan<Ntp>(kVersion6) : RowSpan<Ntp>(kVersion4), ntp, label);
}

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
    IPv4("Address"), Number(2, "Port"), Number(1, "Host Mode", kNtpModeNames), Flags(1, "Flags", kPeerFlags),
    Number(4, "IPv6 Flag"), Number(4, "Unused"), IPv6("IPv6 Address")});
constexpr auto kPeerSummaryItem = Rows<Ntp>({
    IPv4("Destination Address"), IPv4("Source Address"), Number(2, "Source Port"), Number(1, "Stratum"),
    Signed(1, "Host Poll Exponent"), Signed(1, "Peer Poll Exponent"), Hex(1, "Reachability"),
    Flags(1, "Flags", kPeerFlags), Number(1, "Host Mode", kNtpModeNames), Span("Delay"), Offset("Offset"),
    Span("Dispersion"), Number(4, "IPv6 Flag"), Number(4, "Unused"), IPv6("IPv6 Destination Address"),
    IPv6("IPv6 Source Address")});
constexpr auto kPeerItem = Rows<Ntp>({
    IPv4("Destination Address"), IPv4("Source Address"), Number(2, "Source Port"), Flags(1, "Flags", kPeerFlags),
    Number(1, "Leap", kNtpLeapNames), Number(1, "Host Mode", kNtpModeNames), Number(1, "Peer Mode", kNtpModeNames),
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
    Offset("Last Offset"), Shown(8, "Drift Compensation", ShowDrift), Number(4, "Compliance"),
    Number(4, "Watchdog Timer", " seconds")});
constexpr auto kSystemItem = Rows<Ntp>({
    IPv4("Peer Address"), Number(1, "Peer Mode", kNtpModeNames), Number(1, "Leap", kNtpLeapNames), Number(1, "Stratum"),
    Signed(1, "Precision"), Span("Root Delay"), Span("Root Dispersion"), IPv4("Reference ID"),
    NtpTime("Reference Timestamp"), Number(4, "Poll Interval"), Flags(1, "Flags", kInfoFlags), Number(3, "Unused"),
    Span("Broadcast Delay"), Rate("Frequency"), Offset("Authentication Delay"), Rate("Stability"),
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
    IPv4("Peer Address"), Number(1, "Host Mode", kNtpModeNames), Number(1, "Version"), Number(1, "Minimum Poll Exponent"),
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
    Number(1, "Mode", kNtpModeNames), Number(1, "Version"), Number(4, "IPv6 Flag"), Number(4, "Unused"),
    IPv6("IPv6 Remote Address")});
constexpr auto kMonitor1Item = Rows<Ntp>({
    Number(4, "Average Interval", " seconds"), Number(4, "Last Interval", " seconds"),
    Flags(4, "Restrictions", kRestrictFlags), Number(4, "Count"), IPv4("Remote Address"), IPv4("Local Address"),
    Hex(4, "Flags"), Number(2, "Port"), Number(1, "Mode", kNtpModeNames), Number(1, "Version"), Number(4, "IPv6 Flag"),
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
    IPv4("Clock Address"), Number(1, "Type"), Hex(1, "Flags"), Number(1, "Last Event", kNtpClockNames),
    Number(1, "Current Status", kNtpClockNames), Number(4, "Polls"), Number(4, "No Response"), Number(4, "Bad Format"),
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
    Shown("Address", ShowInterfaceAddress<48>), Shown("Broadcast Address", ShowInterfaceAddress<32>),
    Shown("Mask", ShowInterfaceAddress<16>), Number(4, "IPv6 Flag"), Text(32, "Interface Name"),
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

bool IsZero(const Field& field) {
  for (int32_t i = 0; i < field.length; ++i) {
    if (PeekU8(field, i)) return false;
  }
  return true;
}

}  // namespace

// Requests have their data in a field of fixed size, and the time behind it where they are signed.
void DecodePrivateNtp(const Place& in, Cursor& c, Ntp& ntp) {
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

}  // namespace qxview
