// Netlink's generic family, whose controller names the others, and socket diagnosis, which lists sockets as a program
// asks.
#include "decoders/link/linux_names.h"
#include "decoders/link/netlink.h"

namespace qxview {
namespace {

using enum NetlinkKind;

// --- generic netlink ---

constexpr uint32_t kController = 16;
constexpr auto kControllerCommands = SortedNames({
    {1, "New Family"}, {2, "Delete Family"}, {3, "Get Family"}, {4, "New Operations"}, {5, "Delete Operations"}, {6,
    "Get Operations"},
    {7, "New Multicast Group"}, {8, "Delete Multicast Group"}, {9, "Get Multicast Group"}, {10, "Get Policy"}});
struct Generic {
  Field command;
};
constexpr auto kControllerHead = Rows<Generic>({
    Number(1, "Command", kControllerCommands).Note(", %s"), Number(1, "Family Version"), Number(2, "Reserved")});
constexpr auto kOtherHead = Rows<Generic>({
    Number(1, "Command").Note(", Command %u"), Number(1, "Family Version"), Number(2, "Reserved")});
const NetlinkAttribute kOperations[] = {{1, kNumber, "Operation ID"}, {2, kNumber, "Operation Flags"}};
const NetlinkTable kOperationTable = TableOf(kOperations);
const NetlinkAttribute kGroups[] = {{1, kText, "Group Name"}, {2, kNumber, "Group ID"}};
const NetlinkTable kGroupTable = TableOf(kGroups);
const NetlinkAttribute kControllerAttributes[] = {
    {1, kNumber, "Family ID"}, {2, kText, "Family Name"}, {3, kNumber, "Version"}, {4, kNumber, "Header Size"}, {5,
    kNumber, "Most Attributes"},
    {6, kList, "Operations", &kOperationTable}, {7, kList, "Multicast Groups", &kGroupTable}, {8, kNested, "Policy"},
    {9, kNested, "Operation Policy"}, {10, kNumber, "Operation"}};
const NetlinkTable kControllerTable = TableOf(kControllerAttributes);
const NetlinkTable kNone{};

// --- socket diagnosis ---

constexpr uint32_t kByFamily = 20, kDestroy = 21;
constexpr auto kDiagnosisNames = SortedNames({{18, "Get TCP Sockets"}, {19, "Get DCCP Sockets"}, {20,
    "Socket by Family"}, {21, "Destroy Socket"}});
constexpr auto kStateNames = SortedNames({
    {1, "Established"}, {2, "SYN Sent"}, {3, "SYN Received"}, {4, "FIN Wait 1"}, {5, "FIN Wait 2"}, {6, "Time Wait"},
    {7, "Closed"},
    {8, "Close Wait"}, {9, "Last ACK"}, {10, "Listening"}, {11, "Closing"}, {12, "New SYN Received"}});
constexpr auto kTransportNames = SortedNames({
    {1, "ICMP"}, {6, "TCP"}, {17, "UDP"}, {33, "DCCP"}, {58, "ICMPv6"}, {132, "SCTP"}, {136, "UDP-Lite"}, {255,
    "Raw"}});
constexpr auto kSocketTypes = SortedNames({{1, "Stream"}, {2, "Datagram"}, {3, "Raw"}, {5, "Sequenced Packets"}});

void ShowPorts(const Place& in, const Field& field, const char* label) {   // network order, whatever the machine's is
  AddLine(in, field, "%s: %u", label, PeekU16(field));
}
// An address in the first bytes of sixteen.
void ShowSocketAddress(const Place& in, const Field& field, const char* label) {
  bool isFour = true;
  for (int32_t at = 4; at < field.length; at += 4) isFour = isFour && PeekU32(field, at) == 0;
  if (isFour) {
    AddLine(in, field, "%s: %s", label, IPv4Text(field.bytes));
  } else {
    AddLine(in, field, "%s: %s", label, IPv6Text(field.bytes));
  }
}

// States of TCP by their bits, and what a dump of local sockets is to show.
constexpr auto kStateMasks = SortedNames({
    {0x0002, "Established"}, {0x0004, "SYN Sent"}, {0x0008, "SYN Received"}, {0x0010, "FIN Wait 1"},
    {0x0020, "FIN Wait 2"}, {0x0040, "Time Wait"}, {0x0080, "Close"}, {0x0100, "Close Wait"}, {0x0200, "Last ACK"},
    {0x0400, "Listen"}, {0x0800, "Closing"}, {0x1000, "New SYN Received"}});
constexpr auto kShownNames = SortedNames({
    {0x01, "Show Name"}, {0x02, "Show VFS"}, {0x04, "Show Peer"}, {0x08, "Show Pending Connections"},
    {0x10, "Show Receive Queue"}, {0x20, "Show Memory"}});
constexpr auto kInetRequest = Rows<Generic>({
    Number(1, "Address Family", kLinuxFamilyNames), Number(1, "Transport", kTransportNames), Hex(1,
    "Wanted Extensions"), Word(1),
    Flags(4, "Wanted States", kStateMasks)});
constexpr auto kSocketId = Rows<Generic>({
    Shown(2, "Source Port", ShowPorts), Shown(2, "Destination Port", ShowPorts), Shown(16, "Source Address",
    ShowSocketAddress),
    Shown(16, "Destination Address", ShowSocketAddress), Number(4, "Interface Index"), Hex(8, "Socket Cookie")});
constexpr auto kInetHead = Rows<Generic>({
    Number(1, "Address Family", kLinuxFamilyNames), Number(1, "Socket State", kStateNames).Note(", %s"), Number(1,
    "Timer"),
    Number(1, "Retransmissions")});
constexpr auto kInetRest = Rows<Generic>({
    Number(4, "Timer Expires", " ms"), Number(4, "Receive Queue"), Number(4, "Send Queue"), Number(4, "User ID"),
    Number(4, "Inode")});
constexpr auto kUnixRequest = Rows<Generic>({
    Number(1, "Address Family", kLinuxFamilyNames), Number(1, "Transport"), Word(2),
    Flags(4, "Wanted States", kStateMasks), Number(4, "Inode"), Flags(4, "Shown", kShownNames), Hex(8, "Socket Cookie")});
constexpr auto kUnixHead = Rows<Generic>({
    Number(1, "Address Family", kLinuxFamilyNames), Number(1, "Socket Type", kSocketTypes), Number(1, "Socket State",
    kStateNames),
    Word(1), Number(4, "Inode"), Hex(8, "Socket Cookie")});
constexpr auto kNetlinkHead = Rows<Generic>({
    Number(1, "Address Family", kLinuxFamilyNames), Number(1, "Socket Type", kSocketTypes), Number(1, "Netlink Family"),
    Number(1, "Socket State", kStateNames), Number(4, "Source Port ID"), Number(4, "Destination Port ID"), Number(4,
    "Destination Group"),
    Number(4, "Inode"), Hex(8, "Socket Cookie")});
constexpr auto kPacketHead = Rows<Generic>({
    Number(1, "Address Family", kLinuxFamilyNames), Number(1, "Socket Type", kSocketTypes), Number(2,
    "Packet Protocol"), Number(4, "Inode"),
    Hex(8, "Socket Cookie")});
constexpr auto kFamilyAlone = Rows<Generic>({Number(1, "Address Family", kLinuxFamilyNames)});

const NetlinkAttribute kInetAttributes[] = {
    {1, kBytes, "Memory Information"}, {2, kBytes, "TCP Information"}, {3, kBytes, "Vegas Information"}, {4, kText,
    "Congestion Control"},
    {5, kNumber, "Type of Service"}, {6, kNumber, "Traffic Class"}, {7, kBytes, "Socket Memory"}, {8, kNumber,
    "Shutdown"},
    {9, kBytes, "DCTCP Information"}, {10, kNumber, "Protocol"}, {11, kNumber, "IPv6 Only"}, {12, kList,
    "Local Addresses"},
    {13, kList, "Peer Addresses"}, {14, kBytes, "Pad"}, {15, kNumber, "Mark"}, {16, kBytes, "BBR Information"}, {17,
    kNumber, "Class ID"},
    {18, kBytes, "MD5 Signatures"}, {19, kNested, "Upper Layer Information"}, {20, kBytes, "Storage"}, {21, kNumber,
    "Control Group ID"},
    {22, kBytes, "Socket Options"}};
const NetlinkTable kInetTable = TableOf(kInetAttributes);
const NetlinkAttribute kUnixAttributes[] = {
    {0, kText, "Socket Name"}, {1, kBytes, "File Information"}, {2, kNumber, "Peer Inode"}, {3, kBytes,
    "Connection Inodes"},
    {4, kBytes, "Queue Lengths"}, {5, kBytes, "Socket Memory"}, {6, kNumber, "Shutdown"}, {7, kNumber, "User ID"}};
const NetlinkTable kUnixTable = TableOf(kUnixAttributes);

constexpr uint32_t kUnixFamily = 1, kIPv4Family = 2, kIPv6Family = 10, kNetlinkFamily = 16, kPacketFamily = 17,
    kRequestFlag = 1;

}  // namespace

const char* NameGenericMessage(uint32_t type) { return type == kController ? "Controller" : "Family Message"; }

void ShowGenericMessage(const Place& in, Cursor& c, const NetlinkMessage& message) {
  const ByteOrder order = message.little ? ByteOrder::kLittle : ByteOrder::kAsRows;
  const bool isController = message.type == kController;
  Generic out{};
  ShowRows<Generic>(in, c, isController ? RowSpan<Generic>(kControllerHead) : RowSpan<Generic>(kOtherHead), out,
      nullptr, order);
  ShowNetlinkAttributes(in, c, isController ? kControllerTable : kNone, message.little);
}

const char* NameDiagnosisMessage(uint32_t type) { return LookupName(kDiagnosisNames, type); }

void ShowDiagnosisMessage(const Place& in, Cursor& c, const NetlinkMessage& message) {
  const ByteOrder order = message.little ? ByteOrder::kLittle : ByteOrder::kAsRows;
  const uint32_t family = PeekU8(c);
  const bool isRequest = message.flags & kRequestFlag;
  const bool isInet = family == kIPv4Family || family == kIPv6Family;
  if (message.type != kByFamily && message.type != kDestroy) return;
  Generic out{};
  if (isInet) {
    ShowRows<Generic>(in, c, isRequest ? RowSpan<Generic>(kInetRequest) : RowSpan<Generic>(kInetHead), out, nullptr,
    order);
    ShowRows<Generic>(in, c, kSocketId, out, nullptr, order);
    if (!isRequest) ShowRows<Generic>(in, c, kInetRest, out, nullptr, order);
    return ShowNetlinkAttributes(in, c, isRequest ? kNone : kInetTable, message.little);
  }
  if (family == kUnixFamily) {
    ShowRows<Generic>(in, c, isRequest ? RowSpan<Generic>(kUnixRequest) : RowSpan<Generic>(kUnixHead), out, nullptr,
    order);
    return ShowNetlinkAttributes(in, c, isRequest ? kNone : kUnixTable, message.little);
  }
  if (isRequest) return ShowRows<Generic>(in, c, kFamilyAlone, out, nullptr, order);
  if (family == kNetlinkFamily) ShowRows<Generic>(in, c, kNetlinkHead, out, nullptr, order);
  if (family == kPacketFamily) ShowRows<Generic>(in, c, kPacketHead, out, nullptr, order);
  if (family == kNetlinkFamily || family == kPacketFamily) ShowNetlinkAttributes(in, c, kNone, message.little);
}

}  // namespace qxview
