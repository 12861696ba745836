// Netlink's route family (rtnetlink): interfaces, addresses, routes, neighbours, rules, queueing and their attributes.
#include "decoders/link/linux_names.h"
#include "decoders/link/netlink.h"

namespace qxview {
namespace {

using enum NetlinkKind;

enum RouteType : uint32_t { kLink = 16, kAddressType = 20, kRouteEntry = 24, kNeighbour = 28, kRule = 32, kQueue = 36,
    kClass = 40,
                            kFilterType = 44,
                            kConfiguration = 80, kNamespace = 88,
                            kNextHop = 104 };

constexpr auto kMessageNames = SortedNames({
    {16, "New Link"}, {17, "Delete Link"}, {18, "Get Link"}, {19, "Set Link"}, {20, "New Address"}, {21,
    "Delete Address"},
    {22, "Get Address"}, {24, "New Route"}, {25, "Delete Route"}, {26, "Get Route"}, {28, "New Neighbour"}, {29,
    "Delete Neighbour"},
    {30, "Get Neighbour"}, {32, "New Rule"}, {33, "Delete Rule"}, {34, "Get Rule"}, {36, "New Queueing Discipline"},
    {37, "Delete Queueing Discipline"}, {38, "Get Queueing Discipline"}, {40, "New Traffic Class"}, {41,
    "Delete Traffic Class"},
    {42, "Get Traffic Class"}, {44, "New Traffic Filter"}, {45, "Delete Traffic Filter"}, {46, "Get Traffic Filter"},
    {48, "New Action"}, {49, "Delete Action"}, {50, "Get Action"}, {52, "New Prefix"}, {58, "Get Multicast"}, {62,
    "Get Anycast"},
    {64, "New Neighbour Table"}, {66, "Get Neighbour Table"}, {67, "Set Neighbour Table"}, {68,
    "New Neighbour Discovery Option"},
    {72, "New Address Label"}, {73, "Delete Address Label"}, {74, "Get Address Label"}, {78, "Get DCB"}, {79,
    "Set DCB"},
    {80, "New Network Configuration"}, {81, "Delete Network Configuration"}, {82, "Get Network Configuration"},
    {84, "New Multicast Database"}, {85, "Delete Multicast Database"}, {86, "Get Multicast Database"}, {88,
    "New Namespace ID"},
    {89, "Delete Namespace ID"}, {90, "Get Namespace ID"}, {92, "New Statistics"}, {94, "Get Statistics"}, {95,
    "Set Statistics"},
    {96, "New Cached Report"}, {100, "New Chain"}, {101, "Delete Chain"}, {102, "Get Chain"}, {104, "New Next Hop"},
    {105, "Delete Next Hop"}, {106, "Get Next Hop"}, {108, "New Link Property"}, {109, "Delete Link Property"},
    {110, "Get Link Property"}, {112, "New VLAN"}, {113, "Delete VLAN"}, {114, "Get VLAN"}, {116,
    "New Next Hop Bucket"},
    {117, "Delete Next Hop Bucket"}, {118, "Get Next Hop Bucket"}, {120, "New Tunnel"}, {121, "Delete Tunnel"}, {122,
    "Get Tunnel"}});
constexpr auto kInterfaceFlags = SortedNames({
    {0x00001, "Up"}, {0x00002, "Broadcast"}, {0x00004, "Debug"}, {0x00008, "Loopback"}, {0x00010, "Point-to-Point"},
    {0x00020, "No Trailers"}, {0x00040, "Running"}, {0x00080, "No ARP"}, {0x00100, "Promiscuous"}, {0x00200,
    "All Multicast"},
    {0x00400, "Master"}, {0x00800, "Slave"}, {0x01000, "Multicast"}, {0x02000, "Port Selection"}, {0x04000,
    "Automatic Media"},
    {0x08000, "Dynamic"}, {0x10000, "Lower Up"}, {0x20000, "Dormant"}, {0x40000, "Echo"}});
constexpr auto kScopeNames = SortedNames({{0, "Universe"}, {200, "Site"}, {253, "Link"}, {254, "Host"}, {255,
    "Nowhere"}});
constexpr auto kTableNames = SortedNames({{0, "Unspecified"}, {252, "Compatible"}, {253, "Default"}, {254, "Main"},
    {255, "Local"}});
constexpr auto kProtocolNames = SortedNames({
    {0, "Unspecified"}, {1, "ICMP Redirect"}, {2, "Kernel"}, {3, "Boot"}, {4, "Static"}, {8, "GateD"}, {9,
    "Router Advertisement"},
    {10, "MRT"}, {11, "Zebra"}, {12, "BIRD"}, {13, "DECnet"}, {14, "XORP"}, {15, "NTK"}, {16, "DHCP"}, {17,
    "Multicast Daemon"},
    {18, "Keepalived"}, {42, "Babel"}, {99, "OpenR"}, {186, "BGP"}, {187, "IS-IS"}, {188, "OSPF"}, {189, "RIP"}, {192,
    "EIGRP"}});
constexpr auto kRouteTypeNames = SortedNames({
    {0, "Unspecified"}, {1, "Unicast"}, {2, "Local"}, {3, "Broadcast"}, {4, "Anycast"}, {5, "Multicast"}, {6,
    "Blackhole"},
    {7, "Unreachable"}, {8, "Prohibit"}, {9, "Throw"}, {10, "NAT"}, {11, "External Resolver"}});
constexpr auto kRouteFlags = SortedNames({
    {0x0001, "Dead"}, {0x0002, "Pervasive"}, {0x0004, "On Link"}, {0x0008, "Offload"}, {0x0010, "Link Down"}, {0x0020,
    "Unresolved"},
    {0x0040, "Trap"}, {0x0100, "Notify"}, {0x0200, "Cloned"}, {0x0400, "Equalize"}, {0x0800, "Prefix"}, {0x1000,
    "Look Up Table"},
    {0x2000, "Match Table"}});
constexpr auto kNeighbourStates = SortedNames({
    {0x01, "Incomplete"}, {0x02, "Reachable"}, {0x04, "Stale"}, {0x08, "Delay"}, {0x10, "Probe"}, {0x20, "Failed"},
    {0x40, "No ARP"},
    {0x80, "Permanent"}});
constexpr auto kNeighbourFlags = SortedNames({
    {0x01, "Use"}, {0x02, "Self"}, {0x04, "Master"}, {0x08, "Proxy"}, {0x10, "External Learnt"}, {0x20, "Offloaded"},
    {0x40, "Sticky"}, {0x80, "Router"}});
constexpr auto kAddressFlags = SortedNames({
    {0x01, "Secondary or Temporary"}, {0x02, "No Duplicate Detection"}, {0x04, "Optimistic"}, {0x08,
    "Duplicate Detection Failed"},
    {0x10, "Home Address"}, {0x20, "Deprecated"}, {0x40, "Tentative"}, {0x80, "Permanent"}});
constexpr auto kOperationalNames = SortedNames({
    {0, "Unknown"}, {1, "Not Present"}, {2, "Down"}, {3, "Lower Layer Down"}, {4, "Testing"}, {5, "Dormant"}, {6,
    "Up"}});
constexpr auto kModeNames = SortedNames({{0, "Default"}, {1, "Dormant"}, {2, "Testing"}});
constexpr auto kActionNames = SortedNames({
    {0, "Unspecified"}, {1, "To Table"}, {2, "Go To"}, {3, "No Operation"}, {6, "Blackhole"}, {7, "Unreachable"}, {8,
    "Prohibit"}});

struct Route {
  Field family;
};
constexpr auto kLinkHead = Rows<Route>({
    Number(1, "Address Family", kLinuxFamilyNames), Word(1), Number(2, "Interface Kind", kInterfaceKindNames),
    Number(4, "Interface Index"), Flags(4, "Interface Flags", kInterfaceFlags), Hex(4, "Change Mask")});
constexpr auto kAddressHead = Rows<Route>({
    Number(1, "Address Family", kLinuxFamilyNames), Number(1, "Prefix Length"), Flags(1, "Address Flags",
    kAddressFlags),
    Number(1, "Scope", kScopeNames), Number(4, "Interface Index")});
constexpr auto kRouteHead = Rows<Route>({
    Number(1, "Address Family", kLinuxFamilyNames), Number(1, "Destination Length"), Number(1, "Source Length"),
    Number(1, "Type of Service"), Number(1, "Table", kTableNames), Number(1, "Routing Protocol", kProtocolNames),
    Number(1, "Scope", kScopeNames), Number(1, "Route Type", kRouteTypeNames), Flags(4, "Route Flags", kRouteFlags)});
constexpr auto kNeighbourHead = Rows<Route>({
    Number(1, "Address Family", kLinuxFamilyNames), Word(3), Number(4, "Interface Index"),
    Flags(2, "Neighbour State", kNeighbourStates), Flags(1, "Neighbour Flags", kNeighbourFlags),
    Number(1, "Neighbour Type", kRouteTypeNames)});
constexpr auto kRuleHead = Rows<Route>({
    Number(1, "Address Family", kLinuxFamilyNames), Number(1, "Destination Length"), Number(1, "Source Length"),
    Number(1, "Type of Service"), Number(1, "Table", kTableNames), Word(2), Number(1, "Rule Action", kActionNames),
    Hex(4, "Rule Flags")});
constexpr auto kTrafficHead = Rows<Route>({
    Number(1, "Address Family", kLinuxFamilyNames), Word(3), Number(4, "Interface Index"), Hex(4, "Handle"), Hex(4,
    "Parent"),
    Hex(4, "Information")});
constexpr auto kGeneralHead = Rows<Route>({Number(1, "Address Family", kLinuxFamilyNames)});

const NetlinkAttribute kLinkInfo[] = {
    {1, kText, "Kind"}, {2, kOfKind, "Kind's Data"}, {3, kBytes, "Extended Statistics"}, {4, kText, "Slave Kind"}, {5, kOfSlave, "Slave's Data"}};
const NetlinkTable kLinkInfoTable = TableOf(kLinkInfo);
const NetlinkAttribute kXdp[] = {{1, kSigned, "XDP File Descriptor"}, {2, kNumber, "XDP Attached"}, {3, kNumber,
    "XDP Flags"},
                                 {4, kNumber, "XDP Program ID"}};
const NetlinkTable kXdpTable = TableOf(kXdp);
const NetlinkAttribute kProperties[] = {{53, kText, "Alternative Name"}};
const NetlinkTable kPropertyTable = TableOf(kProperties);
const NetlinkAttribute kLinks[] = {
    {1, kAddress, "Hardware Address"}, {2, kAddress, "Broadcast Address"}, {3, kText, "Interface Name"}, {4, kNumber,
    "MTU"},
    {5, kNumber, "Link"}, {6, kText, "Queueing Discipline"}, {7, kRecord, "Statistics", &kLinkCounters}, {8, kText, "Cost"}, {9, kBytes,
    "Priority"},
    {10, kNumber, "Master"}, {11, kBytes, "Wireless"}, {12, kNested, "Protocol Information", &kIpv6Link}, {13, kNumber,
    "Transmit Queue Length"},
    {14, kRecord, "Map", &kLinkMap}, {15, kBytes, "Weight"}, {16, kNumber, "Operational State", nullptr, kOperationalNames},
    {17, kNumber, "Link Mode", nullptr, kModeNames}, {18, kNested, "Link Information", &kLinkInfoTable},
    {19, kNumber, "Namespace Process ID"}, {20, kText, "Alias"}, {21, kNumber, "Virtual Functions"}, {22, kNested,
    "Virtual Function Information"},
    {23, kWideRecord, "Statistics of 64 Bits", &kLinkCounters}, {24, kNested, "Virtual Ports"}, {25, kNested, "Port Itself"},
    {26, kNested, "Family Data", &kLinkFamilies}, {27, kNumber, "Group"}, {28, kNumber, "Namespace File Descriptor"},
    {29, kNumber, "Extension Mask"}, {30, kNumber, "Promiscuity"}, {31, kNumber, "Transmit Queues"}, {32, kNumber,
    "Receive Queues"},
    {33, kNumber, "Carrier"}, {34, kBytes, "Physical Port ID"}, {35, kNumber, "Carrier Changes"}, {36, kBytes,
    "Physical Switch ID"},
    {37, kSigned, "Link Namespace ID"}, {38, kText, "Physical Port Name"}, {39, kNumber, "Protocol Down"},
    {40, kNumber, "Segmentation Offload, Most Segments"}, {41, kNumber, "Segmentation Offload, Most Bytes"}, {42,
    kBytes, "Pad"},
    {43, kNested, "XDP", &kXdpTable}, {44, kNumber, "Event"}, {45, kSigned, "New Namespace ID"}, {46, kSigned,
    "Interface Namespace ID"},
    {47, kNumber, "Carrier Up Count"}, {48, kNumber, "Carrier Down Count"}, {49, kSigned, "New Interface Index"}, {50,
    kNumber, "Least MTU"},
    {51, kNumber, "Most MTU"}, {52, kNested, "Property List", &kPropertyTable}, {53, kText, "Alternative Name"},
    {54, kAddress, "Permanent Address"}, {55, kText, "Protocol Down Reason"}, {56, kText, "Parent Device"}, {57, kText,
    "Parent Bus"},
    {58, kNumber, "Receive Offload, Most Bytes"}, {59, kNumber, "TCP Segmentation Offload, Most Bytes"},
    {60, kNumber, "TCP Segmentation Offload, Most Segments"}, {61, kNumber, "All Multicast"}, {62, kBytes,
    "Devlink Port"},
    {63, kNumber, "Segmentation Offload over IPv4, Most Bytes"}, {64, kNumber, "Receive Offload over IPv4, Most Bytes"},
    {65, kNested, "DPLL Pin"}};
const NetlinkTable kLinkTable = TableOf(kLinks);
// A bridge's own messages have its ports' attributes under two numbers.
const NetlinkAttribute kBridgeLinks[] = {
    {12, kNested, "Protocol Information", &kBridgePort}, {26, kNested, "Family Data", &kBridgeLink}};
const NetlinkTable kBridgeLinkTable = TableOf(kBridgeLinks, &kLinkTable);
const NetlinkAttribute kAddresses[] = {
    {1, kAddress, "Address"}, {2, kAddress, "Local Address"}, {3, kText, "Label"}, {4, kAddress, "Broadcast Address"},
    {5, kAddress, "Anycast Address"}, {6, kRecord, "Cache Information", &kAddressCache}, {7, kAddress, "Multicast Address"}, {8,
    kNumber, "Long Flags"},
    {9, kNumber, "Route Priority"}, {10, kSigned, "Target Namespace ID"}, {11, kNumber, "Address Protocol"}};
const NetlinkTable kAddressTable = TableOf(kAddresses);
const NetlinkAttribute kMetrics[] = {
    {1, kNumber, "Lock"}, {2, kNumber, "Path MTU"}, {3, kNumber, "Window"}, {4, kNumber, "Round-trip Time"},
    {5, kNumber, "Round-trip Time Variance"}, {6, kNumber, "Slow Start Threshold"}, {7, kNumber, "Congestion Window"},
    {8, kNumber, "Advertised MSS"}, {9, kNumber, "Reordering"}, {10, kNumber, "Hop Limit"}, {11, kNumber,
    "Initial Congestion Window"},
    {12, kNumber, "Features"}, {13, kNumber, "Least Retransmission Timeout"}, {14, kNumber, "Initial Receive Window"},
    {15, kNumber, "Quick Acknowledgement"}, {16, kText, "Congestion Control"}, {17, kNumber,
    "Fast Open Without Cookie"}};
const NetlinkTable kMetricTable = TableOf(kMetrics);
extern const NetlinkTable kRouteTable;
const NetlinkAttribute kRoutes[] = {
    {1, kAddress, "Destination"}, {2, kAddress, "Source"}, {3, kNumber, "Input Interface"}, {4, kNumber,
    "Output Interface"},
    {5, kAddress, "Gateway"}, {6, kNumber, "Priority"}, {7, kAddress, "Preferred Source"}, {8, kNested, "Metrics",
    &kMetricTable},
    {9, kHops, "Multipath", &kRouteTable}, {10, kBytes, "Protocol Information"}, {11, kNumber, "Flow"}, {12, kRecord, "Cache Information", &kRouteCache},
    {13, kBytes, "Session"}, {14, kBytes, "Algorithm"}, {15, kNumber, "Table ID"}, {16, kNumber, "Mark"}, {17, kRecord, "Multicast Statistics", &kMulticastCounters},
    {18, kBytes, "Via"}, {19, kBytes, "New Destination"}, {20, kNumber, "Preference"}, {21, kNumber,
    "Encapsulation Type"},
    {22, kNested, "Encapsulation"}, {23, kNumber, "Expires"}, {24, kBytes, "Pad"}, {25, kNumber, "User ID"}, {26,
    kNumber, "TTL Propagation"},
    {27, kNumber, "IP Protocol"}, {28, kNetwork, "Source Port"}, {29, kNetwork, "Destination Port"}, {30, kNumber,
    "Next Hop ID"}};
const NetlinkTable kRouteTable = TableOf(kRoutes);
const NetlinkAttribute kNeighbours[] = {
    {1, kAddress, "Destination"}, {2, kAddress, "Link Layer Address"}, {3, kRecord, "Cache Information", &kNeighbourCache}, {4, kNumber,
    "Probes"},
    {5, kNumber, "VLAN"}, {6, kNetwork, "Port"}, {7, kNumber, "VNI"}, {8, kNumber, "Interface Index"}, {9, kNumber,
    "Master"},
    {10, kSigned, "Link Namespace ID"}, {11, kNumber, "Source VNI"}, {12, kNumber, "Protocol"}, {13, kNumber,
    "Next Hop ID"},
    {14, kNested, "Forwarding Database Attributes"}, {15, kNumber, "Extended Flags"}, {16, kNumber, "State Mask"}, {17,
    kNumber, "Flag Mask"}};
const NetlinkTable kNeighbourTable2 = TableOf(kNeighbours);
const NetlinkAttribute kRules[] = {
    {1, kAddress, "Destination"}, {2, kAddress, "Source"}, {3, kText, "Input Interface Name"}, {4, kNumber, "Go To"},
    {6, kNumber, "Priority"},
    {10, kNumber, "Mark"}, {11, kNumber, "Flow"}, {12, kNetwork, "Tunnel ID"}, {13, kSigned,
    "Suppress Interface Group"},
    {14, kSigned, "Suppress Prefix Length"}, {15, kNumber, "Table ID"}, {16, kNumber, "Mark Mask"}, {17, kText,
    "Output Interface Name"},
    {18, kBytes, "Pad"}, {19, kNumber, "L3 Master Device"}, {20, kRecord, "User ID Range", &kUserRange}, {21, kNumber,
    "Rule Protocol"},
    {22, kNumber, "IP Protocol"}, {23, kRecord, "Source Port Range", &kPortRange}, {24, kRecord, "Destination Port Range", &kPortRange}};
const NetlinkTable kRuleTable = TableOf(kRules);
const NetlinkAttribute kTraffic[] = {
    {1, kText, "Kind"}, {2, kNested, "Options"}, {3, kRecord, "Statistics", &kTrafficCounters}, {4, kBytes, "Extended Statistics"}, {5, kRecord, "Rate", &kTrafficRate},
    {6, kBytes, "Police"}, {7, kNested, "Statistics 2", &kTrafficCounters2}, {8, kNested, "Size Table"}, {9, kBytes, "Pad"}, {10, kFlag,
    "Dump Invisible"},
    {11, kNumber, "Chain"}, {12, kNumber, "Hardware Offload"}, {13, kNumber, "Ingress Block"}, {14, kNumber,
    "Egress Block"},
    {15, kNumber, "Dump Flags"}};
const NetlinkTable kTrafficTable = TableOf(kTraffic);
const NetlinkAttribute kConfigurations[] = {
    {1, kSigned, "Interface Index"}, {2, kSigned, "Forwarding"}, {3, kSigned, "Reverse Path Filter"}, {4, kSigned,
    "Multicast Forwarding"},
    {5, kSigned, "Proxy Neighbour"}, {6, kSigned, "Ignore Routes of a Link Down"}, {7, kSigned, "Input"}, {8, kSigned,
    "Broadcast Forwarding"}};
const NetlinkTable kConfigurationTable = TableOf(kConfigurations);
const NetlinkAttribute kNamespaces[] = {
    {1, kSigned, "Namespace ID"}, {2, kNumber, "Process ID"}, {3, kNumber, "File Descriptor"}, {4, kSigned,
    "Target Namespace ID"},
    {5, kSigned, "Current Namespace ID"}};
const NetlinkTable kNamespaceTable = TableOf(kNamespaces);
const NetlinkAttribute kNextHops[] = {
    {1, kNumber, "Next Hop ID"}, {2, kBytes, "Group"}, {3, kNumber, "Group Type"}, {4, kFlag, "Blackhole"}, {5,
    kNumber, "Output Interface"},
    {6, kAddress, "Gateway"}, {7, kNumber, "Encapsulation Type"}, {8, kNested, "Encapsulation"}, {9, kFlag, "Groups"},
    {10, kNumber, "Master"}, {11, kFlag, "Forwarding Database"}};
const NetlinkTable kNextHopTable = TableOf(kNextHops);
const NetlinkTable kNone{};

struct Shape {
  uint32_t first;              // of the four types of an object
  RowSpan<Route> head;
  const NetlinkTable* table;
};
const Shape kShapes[] = {
    {kLink, kLinkHead, &kLinkTable}, {kAddressType, kAddressHead, &kAddressTable}, {kRouteEntry, kRouteHead,
    &kRouteTable},
    {kNeighbour, kNeighbourHead, &kNeighbourTable2}, {kRule, kRuleHead, &kRuleTable}, {kQueue, kTrafficHead,
    &kTrafficTable},
    {kClass, kTrafficHead, &kTrafficTable}, {kFilterType, kTrafficHead, &kTrafficTable}, {kConfiguration, kGeneralHead,
    &kConfigurationTable},
    {kNamespace, kGeneralHead, &kNamespaceTable}, {kNextHop, kGeneralHead, &kNextHopTable}};

}  // namespace

const char* NameRouteMessage(uint32_t type) { return LookupName(kMessageNames, type); }

void ShowRouteMessage(const Place& in, Cursor& c, const NetlinkMessage& message) {
  const ByteOrder order = message.little ? ByteOrder::kLittle : ByteOrder::kAsRows;
  Route out{};
  for (const Shape& shape : kShapes) {
    if (message.type / 4 * 4 != shape.first) continue;
    constexpr uint32_t kBridgeFamily = 7;
    const int32_t begin = c.offset;
    const uint32_t family = PeekU8(c);
    // Requests may have a header of one byte alone.
    ShowRows<Route>(in, c, Left(c) < 8 ? RowSpan<Route>(kGeneralHead) : shape.head, out, nullptr, order);
    const int32_t beyond = (c.offset - begin) % 4;
    if (beyond && Left(c) >= 4 - beyond) TakeBytes(c, 4 - beyond);
    const bool isBridge = shape.first == kLink && family == kBridgeFamily;
    return ShowNetlinkAttributes(in, c, isBridge ? kBridgeLinkTable : *shape.table, message.little);
  }
  if (Left(c) < 1) return;
  ShowRows<Route>(in, c, kGeneralHead, out, nullptr, order);
  if (Left(c) >= 3) TakeBytes(c, 3);
  ShowNetlinkAttributes(in, c, kNone, message.little);
}

}  // namespace qxview
