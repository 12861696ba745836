// Netlink's netfilter family: connection tracking, logs and queues of packets, tables of rules and sets; and its
// family of
// socket diagnosis. A type's high byte is the subsystem, the low one the message. Most numbers are in network order.
#include "core/elements.h"
#include "decoders/link/carried.h"
#include "decoders/link/link_frame.h"
#include "decoders/link/linux_names.h"
#include "decoders/link/netlink.h"

namespace qxview {
namespace {

using enum NetlinkKind;

enum Subsystem : uint32_t { kTracking = 1, kExpectation = 2, kQueue = 3, kLog = 4,
                            kTables = 10 };

constexpr auto kMessageNames = SortedNames({
    {0x0010, "Begin Batch"}, {0x0011, "End Batch"}, {0x0100, "New Connection"}, {0x0101, "Get Connection"},
    {0x0102, "Delete Connection"}, {0x0103, "Get and Clear Connection"}, {0x0104, "Get Statistics by Processor"},
    {0x0105, "Get Statistics"}, {0x0106, "Get Dying"}, {0x0107, "Get Unconfirmed"}, {0x0200, "New Expectation"},
    {0x0201, "Get Expectation"}, {0x0202, "Delete Expectation"}, {0x0203, "Get Expectation Statistics"}, {0x0300,
    "Queued Packet"},
    {0x0301, "Verdict"}, {0x0302, "Queue Configuration"}, {0x0303, "Batch Verdict"}, {0x0400, "Logged Packet"},
    {0x0401, "Log Configuration"}, {0x0600, "Set Protocol"}, {0x0A00, "New Table"}, {0x0A01, "Get Table"}, {0x0A02,
    "Delete Table"},
    {0x0A03, "New Chain"}, {0x0A04, "Get Chain"}, {0x0A05, "Delete Chain"}, {0x0A06, "New Rule"}, {0x0A07, "Get Rule"},
    {0x0A08, "Delete Rule"}, {0x0A09, "New Set"}, {0x0A0A, "Get Set"}, {0x0A0B, "Delete Set"}, {0x0A0C,
    "New Set Element"},
    {0x0A0D, "Get Set Element"}, {0x0A0E, "Delete Set Element"}, {0x0A0F, "New Generation"}, {0x0A10, "Get Generation"},
    {0x0A11, "Trace"}, {0x0A12, "New Object"}, {0x0A13, "Get Object"}, {0x0A14, "Delete Object"}, {0x0A15,
    "Get and Reset Object"},
    {0x0A16, "New Flow Table"}, {0x0A17, "Get Flow Table"}, {0x0A18, "Delete Flow Table"}, {0x0C00, "Get Hooks"}});
constexpr auto kHookNames = SortedNames({{0, "Prerouting"}, {1, "Input"}, {2, "Forward"}, {3, "Output"}, {4,
    "Postrouting"}});
constexpr auto kNetfilterFamilies = SortedNames({
    {0, "Unspecified"}, {1, "Internet"}, {2, "IPv4"}, {3, "ARP"}, {5, "Device"}, {7, "Bridge"}, {10, "IPv6"}, {12,
    "DECnet"}});

struct Filter {
  Field count;
};
constexpr auto kHead = Rows<Filter>({Number(1, "Address Family", kNetfilterFamilies), Number(1, "Version")});
constexpr auto kResource = Rows<Filter>({Number(2, "Resource ID")});

// --- connections ---

const NetlinkAttribute kAddresses[] = {
    {1, kAddress, "Source"}, {2, kAddress, "Destination"}, {3, kAddress, "Source"}, {4, kAddress, "Destination"}};
const NetlinkTable kAddressTable = TableOf(kAddresses);
const NetlinkAttribute kProtocols[] = {
    {1, kNumber, "IP Protocol"}, {2, kNetwork, "Source Port"}, {3, kNetwork, "Destination Port"}, {4, kNetwork,
    "ICMP ID"},
    {5, kNumber, "ICMP Type"}, {6, kNumber, "ICMP Code"}, {7, kNetwork, "ICMPv6 ID"}, {8, kNumber, "ICMPv6 Type"},
    {9, kNumber, "ICMPv6 Code"}};
const NetlinkTable kProtocolTable = TableOf(kProtocols);
const NetlinkAttribute kTuples[] = {
    {1, kNested, "Addresses", &kAddressTable}, {2, kNested, "Transport", &kProtocolTable}, {3, kNetwork, "Zone"}};
const NetlinkTable kTupleTable = TableOf(kTuples);
const NetlinkAttribute kTcp[] = {
    {1, kNumber, "TCP State"}, {2, kNumber, "Original Window Scale"}, {3, kNumber, "Reply Window Scale"},
    {4, kBytes, "Original TCP Flags"}, {5, kBytes, "Reply TCP Flags"}};
const NetlinkTable kTcpTable = TableOf(kTcp);
const NetlinkAttribute kProtocolInformation[] = {
    {1, kNested, "TCP", &kTcpTable}, {2, kNested, "DCCP"}, {3, kNested, "SCTP"}};
const NetlinkTable kProtocolInformationTable = TableOf(kProtocolInformation);
const NetlinkAttribute kCounters[] = {
    {1, kNetwork, "Packets"}, {2, kNetwork, "Bytes"}, {3, kNetwork, "Packets, 32 Bits"}, {4, kNetwork,
    "Bytes, 32 Bits"}};
const NetlinkTable kCounterTable = TableOf(kCounters);
const NetlinkAttribute kTimes[] = {{1, kNetwork, "Start"}, {2, kNetwork, "Stop"}};
const NetlinkTable kTimeTable = TableOf(kTimes);
const NetlinkAttribute kHelpers[] = {{1, kText, "Helper Name"}, {2, kNested, "Helper Information"}};
const NetlinkTable kHelperTable = TableOf(kHelpers);
const NetlinkAttribute kConnections[] = {
    {1, kNested, "Original Tuple", &kTupleTable}, {2, kNested, "Reply Tuple", &kTupleTable}, {3, kNetwork, "Status"},
    {4, kNested, "Protocol Information", &kProtocolInformationTable}, {5, kNested, "Helper", &kHelperTable},
    {6, kNested, "Source NAT"}, {7, kNetwork, "Timeout"}, {8, kNetwork, "Mark"}, {9, kNested, "Original Counters",
    &kCounterTable},
    {10, kNested, "Reply Counters", &kCounterTable}, {11, kNetwork, "Use"}, {12, kNetwork, "Connection ID"}, {13,
    kNested, "Destination NAT"},
    {14, kNested, "Master Tuple", &kTupleTable}, {15, kNested, "Original Sequence Adjustment"}, {16, kNested,
    "Reply Sequence Adjustment"},
    {17, kNetwork, "Security Mark"}, {18, kNetwork, "Zone"}, {19, kNested, "Security Context"}, {20, kNested,
    "Time Stamp", &kTimeTable},
    {21, kNetwork, "Mark Mask"}, {22, kBytes, "Labels"}, {23, kBytes, "Labels Mask"}, {24, kNested, "SYN Proxy"}};
const NetlinkTable kConnectionTable = TableOf(kConnections);
const NetlinkAttribute kExpectations[] = {
    {1, kNested, "Master Tuple", &kTupleTable}, {2, kNested, "Expected Tuple", &kTupleTable}, {3, kNested, "Mask",
    &kTupleTable},
    {4, kNetwork, "Timeout"}, {5, kNetwork, "Expectation ID"}, {6, kText, "Helper Name"}, {7, kNetwork, "Zone"}, {8,
    kNetwork, "Flags"},
    {9, kNetwork, "Class"}, {10, kNested, "NAT"}, {11, kText, "Function"}};
const NetlinkTable kExpectationTable = TableOf(kExpectations);

// --- packets ---

const NetlinkAttribute kLogged[] = {
    {1, kBytes, "Packet Header"}, {2, kNetwork, "Mark"}, {3, kBytes, "Time Stamp"}, {4, kNetwork, "Input Interface"},
    {5, kNetwork, "Output Interface"}, {6, kNetwork, "Physical Input Interface"}, {7, kNetwork,
    "Physical Output Interface"},
    {8, kBytes, "Hardware Address"}, {9, kBytes, "Payload"}, {10, kText, "Prefix"}, {11, kNetwork, "User ID"}, {12,
    kNetwork, "Sequence"},
    {13, kNetwork, "Global Sequence"}, {14, kNetwork, "Group ID"}, {15, kNetwork, "Hardware Type"}, {16, kBytes,
    "Hardware Header"},
    {17, kNetwork, "Hardware Header Length"}, {18, kNested, "Connection", &kConnectionTable}, {19, kNetwork,
    "Connection State"},
    {20, kNested, "VLAN"}, {21, kBytes, "Layer 2 Header"}};
const NetlinkAttribute kLogConfiguration[] = {
    {1, kNumber, "Command"}, {2, kBytes, "Mode"}, {3, kNetwork, "Buffer Size"}, {4, kNetwork, "Timeout"}, {5, kNetwork,
    "Queue Threshold"},
    {6, kNetwork, "Flags"}};
const NetlinkTable kLogConfigurationTable = TableOf(kLogConfiguration);
const NetlinkAttribute kQueued[] = {
    {1, kBytes, "Packet Header"}, {2, kBytes, "Verdict"}, {3, kNetwork, "Mark"}, {4, kBytes, "Time Stamp"}, {5,
    kNetwork, "Input Interface"},
    {6, kNetwork, "Output Interface"}, {7, kNetwork, "Physical Input Interface"}, {8, kNetwork,
    "Physical Output Interface"},
    {9, kBytes, "Hardware Address"}, {10, kBytes, "Payload"}, {11, kNested, "Connection", &kConnectionTable}, {12,
    kNetwork, "Connection State"},
    {13, kNetwork, "Captured Length"}, {14, kNetwork, "Socket Buffer Information"}, {15, kNested, "Expectation",
    &kExpectationTable},
    {16, kNetwork, "User ID"}, {17, kNetwork, "Group ID"}, {18, kText, "Security Context"}, {19, kNested, "VLAN"}, {20,
    kBytes, "Layer 2 Header"},
    {21, kNetwork, "Priority"}};
const NetlinkTable kQueuedTable = TableOf(kQueued);

// --- tables of rules ---

const NetlinkAttribute kTableAttributes[] = {
    {1, kText, "Table Name"}, {2, kNetwork, "Flags"}, {3, kNetwork, "Use"}, {4, kNetwork, "Handle"}, {5, kBytes,
    "Pad"}, {6, kBytes, "User Data"},
    {7, kNetwork, "Owner"}};
const NetlinkTable kTableTable = TableOf(kTableAttributes);
const NetlinkAttribute kHookAttributes[] = {
    {1, kNetwork, "Hook Number"}, {2, kNetwork, "Hook Priority"}, {3, kText, "Device"}, {4, kNested, "Devices"}};
const NetlinkTable kHookTable = TableOf(kHookAttributes);
const NetlinkAttribute kChains[] = {
    {1, kText, "Table Name"}, {2, kNetwork, "Handle"}, {3, kText, "Chain Name"}, {4, kNested, "Hook", &kHookTable}, {5,
    kNetwork, "Policy"},
    {6, kNetwork, "Use"}, {7, kText, "Chain Type"}, {8, kNested, "Counters", &kCounterTable}, {9, kBytes, "Pad"}, {10,
    kNetwork, "Flags"},
    {11, kNetwork, "Chain ID"}, {12, kBytes, "User Data"}};
const NetlinkTable kChainTable = TableOf(kChains);
const NetlinkAttribute kExpressionParts[] = {{1, kText, "Expression Name"}, {2, kNested, "Expression Data"}};
const NetlinkTable kExpressionTable = TableOf(kExpressionParts);
const NetlinkAttribute kExpressionList[] = {{1, kNested, "Expression", &kExpressionTable}};
const NetlinkTable kExpressionListTable = TableOf(kExpressionList);
const NetlinkAttribute kRules[] = {
    {1, kText, "Table Name"}, {2, kText, "Chain Name"}, {3, kNetwork, "Handle"}, {4, kNested, "Expressions",
    &kExpressionListTable},
    {5, kNested, "Compatibility"}, {6, kNetwork, "Position"}, {7, kBytes, "User Data"}, {8, kBytes, "Pad"}, {9,
    kNetwork, "Rule ID"},
    {10, kNetwork, "Position ID"}, {11, kNetwork, "Chain ID"}};
const NetlinkTable kRuleTable = TableOf(kRules);
const NetlinkAttribute kSets[] = {
    {1, kText, "Table Name"}, {2, kText, "Set Name"}, {3, kNetwork, "Flags"}, {4, kNetwork, "Key Type"}, {5, kNetwork,
    "Key Length"},
    {6, kNetwork, "Data Type"}, {7, kNetwork, "Data Length"}, {8, kNetwork, "Policy"}, {9, kNested, "Set Description"},
    {10, kNetwork, "Set ID"},
    {11, kNetwork, "Timeout"}, {12, kNetwork, "Collection Interval"}, {13, kBytes, "User Data"}, {14, kBytes, "Pad"},
    {15, kNetwork, "Object Type"},
    {16, kNetwork, "Handle"}, {17, kNested, "Expression", &kExpressionTable}};
const NetlinkTable kSetTable = TableOf(kSets);
const NetlinkAttribute kGenerations[] = {
    {1, kNetwork, "Generation ID"}, {2, kNetwork, "Process ID"}, {3, kText, "Process Name"}};
const NetlinkTable kGenerationTable = TableOf(kGenerations);
const NetlinkTable kNone{};

const NetlinkTable& TableOfMessage(uint32_t subsystem, uint32_t message) {
  switch (subsystem) {
    case kTracking: return kConnectionTable;
    case kExpectation: return kExpectationTable;
    case kQueue: return kQueuedTable;
    case kLog: return message == 0 ? kLoggedPacket : kLogConfigurationTable;
    case kTables:
      if (message <= 2) return kTableTable;
      if (message <= 5) return kChainTable;
      if (message <= 8) return kRuleTable;
      if (message <= 11) return kSetTable;
      return message == 15 || message == 16 ? kGenerationTable : kNone;
    default: return kNone;
  }
}

// --- netfilter's log as a link type ---

constexpr auto kPacketHeader = Rows<Filter>({
    Hex(2, "Hardware Protocol"), Number(1, "Hook", kHookNames).Note(", %s"), Number(1, "Hook Padding")});
constexpr auto kMark = Rows<Filter>({Hex(4, nullptr)});
constexpr auto kStamp = Rows<Filter>({Number(8, "Seconds"), Number(8, "Microseconds")});
constexpr auto kNumber4 = Rows<Filter>({Number(4, nullptr).Note(", %u")});
constexpr auto kNumber2 = Rows<Filter>({Number(2, nullptr).Note(", %u")});
constexpr auto kHardware = Rows<Filter>({
    Number(2, "Hardware Address Length"), Number(2, "Reserved"), Bytes(8, "Hardware Address")});
constexpr auto kText1 = Rows<Filter>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kRaw = Rows<Filter>({Bytes(0, nullptr)});
constexpr auto kLogFields = Choices<Filter>({
    {1, "Packet Header", kPacketHeader}, {2, "Mark", kMark}, {3, "Time Stamp", kStamp}, {4, "Input Interface",
    kNumber4},
    {5, "Output Interface", kNumber4}, {6, "Physical Input Interface", kNumber4}, {7, "Physical Output Interface",
    kNumber4},
    {8, "Hardware Address", kHardware}, {9, "Payload"}, {10, "Prefix", kText1}, {11, "User ID", kNumber4},
    {12, "Sequence", kNumber4}, {13, "Global Sequence", kNumber4}, {14, "Group ID", kNumber4}, {15, "Hardware Type",
    kNumber2},
    {16, "Hardware Header", kRaw}, {17, "Hardware Header Length", kNumber2}, {18, "Connection", kRaw}, {19,
    "Connection State", kNumber4},
    {20, "VLAN", kRaw}, {21, "Layer 2 Header", kRaw}});

}  // namespace

const NetlinkTable kLoggedPacket = TableOf(kLogged);

const char* NameFilterMessage(uint32_t type) { return LookupName(kMessageNames, type); }

void ShowFilterMessage(const Place& in, Cursor& c, const NetlinkMessage& message) {
  Filter out{};
  ShowRows<Filter>(in, c, kHead, out);
  ShowRows<Filter>(in, c, kResource, out);
  ShowNetlinkAttributes(in, c, TableOfMessage(message.type >> 8, message.type & 0xFF), message.little);
}

int32_t DecodeNetfilterLog(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 4;
  constexpr uint32_t kPayload = 9, kBridge = 7;
  if (Left(c) < kHeaderSize || PeekU8(c, 1) != 0) return 0;
  const uint32_t family = PeekU8(c);
  const bool little = PeekLittleU16(c, 4) < PeekU16(c, 4);
  const ElementForm form{.typeSize = 2, .lengthSize = 2, .padTo = 4, .lengthCountsHeader = true, .lengthFirst = true,
      .little = little};
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Netfilter Log"));
  Filter out{};
  ShowRows<Filter>(in, c, kHead, out);
  ShowRows<Filter>(in, c, kResource, out);
  // keys: bytes Padding
  // keys: text Field
  // keys: number Type, Length
  Field payload{};
  Loop loop;
  Element element;
  while (MoreAt(in, c, loop) && TakeElement(c, form, element)) {
    const Choice<Filter>* choice = FindChoice<Filter>(kLogFields, element.code);
    const Place under = detail::AddElementHead(in, element, form, "Field", choice ? choice->name : kUnknown);
    if (element.code == kPayload) {
      payload = Rest(element.value);
    } else {
      ShowChoice<Filter>(under, element.value, choice, out);
    }
    detail::AddElementTail(under, element, form);
  }
  if (!payload.here) return 1;
  return DecodeCarriedFrame(family == kBridge ? at : Deeper(at), CursorOver(payload), family == kBridge ?
      Carried::kEthernet : Carried::kIp);
}

}  // namespace qxview
