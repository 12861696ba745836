// What netlink's route family tells in records and in attributes of a family or a kind of link: counters, IPv4's and IPv6's
// settings of a link, bridges with their ports, VLANs, VXLANs.
#include "decoders/link/netlink.h"

namespace qxview {
namespace {

using enum NetlinkKind;

// The counters of a link in the kernel's order; of 8 bytes each where the attribute says so.
const NetlinkAttribute kCounters[] = {
    {4, kNumber, "Received Packets"}, {4, kNumber, "Sent Packets"}, {4, kNumber, "Received Bytes"},
    {4, kNumber, "Sent Bytes"}, {4, kNumber, "Receive Errors"}, {4, kNumber, "Send Errors"},
    {4, kNumber, "Dropped on Receipt"}, {4, kNumber, "Dropped on Sending"}, {4, kNumber, "Multicast Packets"},
    {4, kNumber, "Collisions"}, {4, kNumber, "Length Errors"}, {4, kNumber, "Ring Buffer Overflows"},
    {4, kNumber, "CRC Errors"}, {4, kNumber, "Framing Errors"}, {4, kNumber, "Receive FIFO Errors"},
    {4, kNumber, "Missed Packets"}, {4, kNumber, "Aborted Errors"}, {4, kNumber, "Carrier Errors"},
    {4, kNumber, "Send FIFO Errors"}, {4, kNumber, "Heartbeat Errors"}, {4, kNumber, "Window Errors"},
    {4, kNumber, "Compressed Packets Received"}, {4, kNumber, "Compressed Packets Sent"}, {4, kNumber, "No Handler"},
    {4, kNumber, "For Another Host"}};
const NetlinkAttribute kMapPieces[] = {
    {8, kNumber, "Memory Start"}, {8, kNumber, "Memory End"}, {8, kNumber, "Base Address"}, {2, kNumber, "Interrupt"},
    {1, kNumber, "DMA Channel"}, {1, kNumber, "Port Kind"}, {4, kFlag, "Padding"}};

// ---- IPv4 and IPv6 on a link.

const NetlinkAttribute kIpv4Settings[] = {
    {4, kSigned, "IPv4 Forwarding"}, {4, kSigned, "IPv4 Multicast Forwarding"}, {4, kSigned, "Proxy ARP"},
    {4, kSigned, "Accept IPv4 Redirects"}, {4, kSigned, "Secure Redirects"}, {4, kSigned, "Send Redirects"},
    {4, kSigned, "Shared Media"}, {4, kSigned, "IPv4 Reverse Path Filter"}, {4, kSigned, "Accept IPv4 Source Route"},
    {4, kSigned, "BOOTP Relay"}, {4, kSigned, "Log Martians"}, {4, kSigned, "Tag"}, {4, kSigned, "ARP Filter"},
    {4, kSigned, "Medium ID"}, {4, kSigned, "No Transforms"}, {4, kSigned, "No Policy"},
    {4, kSigned, "Forced IGMP Version"}, {4, kSigned, "ARP Announce"}, {4, kSigned, "ARP Ignore"},
    {4, kSigned, "Promote Secondaries"}, {4, kSigned, "ARP Accept"}, {4, kSigned, "ARP Notify"},
    {4, kSigned, "Accept Local"}, {4, kSigned, "Source Valid Mark"}, {4, kSigned, "Proxy ARP of Private VLAN"},
    {4, kSigned, "Route Local Network"}, {4, kSigned, "IGMPv2 Report Interval"}, {4, kSigned, "IGMPv3 Report Interval"},
    {4, kSigned, "Ignore IPv4 Routes of a Link Down"}, {4, kSigned, "Drop IPv4 Unicast in Multicast Frames"},
    {4, kSigned, "Drop Gratuitous ARP"}, {4, kSigned, "IPv4 Broadcast Forwarding"},
    {4, kSigned, "ARP Evict Without Carrier"}};
const NetlinkTable kIpv4SettingTable = TableOf(kIpv4Settings);
const NetlinkAttribute kIpv6Settings[] = {
    {4, kSigned, "IPv6 Forwarding"}, {4, kSigned, "IPv6 Hop Limit"}, {4, kSigned, "IPv6 MTU"},
    {4, kSigned, "Accept Router Advertisements"}, {4, kSigned, "Accept IPv6 Redirects"},
    {4, kSigned, "Autoconfiguration"}, {4, kSigned, "Duplicate Detection Probes"}, {4, kSigned, "Router Solicitations"},
    {4, kSigned, "Router Solicitation Interval"}, {4, kSigned, "Router Solicitation Delay"},
    {4, kSigned, "Use Temporary Addresses"}, {4, kSigned, "Temporary Valid Lifetime"},
    {4, kSigned, "Temporary Preferred Lifetime"}, {4, kSigned, "Most Retries of Regeneration"},
    {4, kSigned, "Most Desynchronization"}, {4, kSigned, "Most Addresses"}, {4, kSigned, "Forced MLD Version"},
    {4, kSigned, "Accept Default Router"}, {4, kSigned, "Accept Prefix Information"},
    {4, kSigned, "Accept Router Preference"}, {4, kSigned, "Router Probe Interval"},
    {4, kSigned, "Longest Prefix of Route Information"}, {4, kSigned, "Proxy Neighbour Discovery"},
    {4, kSigned, "Optimistic Duplicate Detection"}, {4, kSigned, "Accept IPv6 Source Route"},
    {4, kSigned, "IPv6 Multicast Forwarding"}, {4, kSigned, "Disable IPv6"},
    {4, kSigned, "Accept Duplicate Detection"}, {4, kSigned, "Force Target Link Layer Address"},
    {4, kSigned, "Notify Neighbours"}, {4, kSigned, "MLDv1 Report Interval"}, {4, kSigned, "MLDv2 Report Interval"},
    {4, kSigned, "Suppress Fragmented Neighbour Discovery"}, {4, kSigned, "Accept Advertisements from Local"},
    {4, kSigned, "Use Optimistic Addresses"}, {4, kSigned, "Accept MTU of Advertisements"},
    {4, kSigned, "Stable Secret"}, {4, kSigned, "Use Addresses of the Output Interface Only"},
    {4, kSigned, "Least Hop Limit of Advertisements"}, {4, kSigned, "Ignore IPv6 Routes of a Link Down"},
    {4, kSigned, "Drop IPv6 Unicast in Multicast Frames"}, {4, kSigned, "Drop Unsolicited Advertisements"},
    {4, kSigned, "Keep Addresses on Link Down"}, {4, kSigned, "Longest Router Solicitation Interval"},
    {4, kSigned, "Segment Routing Enabled"}, {4, kSigned, "Segment Routing Requires HMAC"},
    {4, kSigned, "Enhanced Duplicate Detection"}, {4, kSigned, "Address Generation"},
    {4, kSigned, "Disable IPv6 Policy"}, {4, kSigned, "Shortest Prefix of Route Information"},
    {4, kSigned, "Traffic Class of Neighbour Discovery"}, {4, kSigned, "RPL Segments Enabled"},
    {4, kSigned, "Default Router Metric"}, {4, kSigned, "IOAM Enabled"}, {4, kSigned, "IOAM ID"},
    {4, kSigned, "Wide IOAM ID"}, {4, kSigned, "Evict Neighbours Without Carrier"},
    {4, kSigned, "Accept Untracked Advertisements"}, {4, kSigned, "Least Lifetime of Advertisements"}};
const NetlinkTable kIpv6SettingTable = TableOf(kIpv6Settings);
const NetlinkAttribute kIpv6Counters[] = {
    {8, kNumber, "Number of IPv6 Counters"}, {8, kNumber, "IPv6 Packets Received"}, {8, kNumber, "IPv6 Bytes Received"},
    {8, kNumber, "IPv6 Packets Delivered"}, {8, kNumber, "IPv6 Packets Forwarded"}, {8, kNumber, "IPv6 Packets Sent"},
    {8, kNumber, "IPv6 Bytes Sent"}, {8, kNumber, "IPv6 Header Errors"}, {8, kNumber, "IPv6 Too Big Errors"},
    {8, kNumber, "IPv6 Received Without a Route"}, {8, kNumber, "IPv6 Address Errors"},
    {8, kNumber, "IPv6 Unknown Protocols"}, {8, kNumber, "IPv6 Truncated Packets"},
    {8, kNumber, "IPv6 Discarded on Receipt"}, {8, kNumber, "IPv6 Discarded on Sending"},
    {8, kNumber, "IPv6 Sent Without a Route"}, {8, kNumber, "IPv6 Reassembly Timeouts"},
    {8, kNumber, "IPv6 Reassembly Required"}, {8, kNumber, "IPv6 Reassembled"},
    {8, kNumber, "IPv6 Reassembly Failures"}, {8, kNumber, "IPv6 Fragmented"},
    {8, kNumber, "IPv6 Fragmentation Failures"}, {8, kNumber, "IPv6 Fragments Created"},
    {8, kNumber, "IPv6 Multicast Packets Received"}, {8, kNumber, "IPv6 Multicast Packets Sent"},
    {8, kNumber, "IPv6 Broadcast Packets Received"}, {8, kNumber, "IPv6 Broadcast Packets Sent"},
    {8, kNumber, "IPv6 Multicast Bytes Received"}, {8, kNumber, "IPv6 Multicast Bytes Sent"},
    {8, kNumber, "IPv6 Broadcast Bytes Received"}, {8, kNumber, "IPv6 Broadcast Bytes Sent"},
    {8, kNumber, "IPv6 Checksum Errors"}, {8, kNumber, "IPv6 Packets Not ECN-Capable"},
    {8, kNumber, "IPv6 ECT(1) Packets"}, {8, kNumber, "IPv6 ECT(0) Packets"},
    {8, kNumber, "IPv6 Congestion Experienced"}, {8, kNumber, "IPv6 Overlapping Fragments"},
    {8, kNumber, "IPv6 Packets Transmitted"}};
const NetlinkTable kIpv6CounterTable = TableOf(kIpv6Counters);
const NetlinkAttribute kIcmpv6Counters[] = {
    {8, kNumber, "Number of ICMPv6 Counters"}, {8, kNumber, "ICMPv6 Messages Received"},
    {8, kNumber, "ICMPv6 Receive Errors"}, {8, kNumber, "ICMPv6 Messages Sent"}, {8, kNumber, "ICMPv6 Send Errors"},
    {8, kNumber, "ICMPv6 Checksum Errors"}, {8, kNumber, "ICMPv6 Rate Limited"}};
const NetlinkTable kIcmpv6CounterTable = TableOf(kIcmpv6Counters);
const NetlinkAttribute kIpv6CachePieces[] = {
    {4, kNumber, "Longest Reassembly"}, {4, kNumber, "Updated", nullptr}, {4, kNumber, "Reachable Time"},
    {4, kNumber, "Retransmission Time"}};
const NetlinkTable kIpv6CacheTable = TableOf(kIpv6CachePieces);
constexpr auto kGenerationNames = SortedNames({
    {0, "EUI-64"}, {1, "None"}, {2, "Stable Privacy"}, {3, "Random"}});
const NetlinkAttribute kIpv6[] = {
    {1, kNumber, "IPv6 Link Flags"}, {2, kRecord, "IPv6 Settings", &kIpv6SettingTable},
    {3, kRecord, "IPv6 Statistics", &kIpv6CounterTable}, {4, kBytes, "IPv6 Multicast"},
    {5, kRecord, "IPv6 Cache Information", &kIpv6CacheTable},
    {6, kRecord, "ICMPv6 Statistics", &kIcmpv6CounterTable}, {7, kAddress, "Token"},
    {8, kNumber, "Address Generation Mode", nullptr, kGenerationNames}, {9, kNumber, "MTU of Advertisements"}};
const NetlinkAttribute kIpv4[] = {{1, kRecord, "IPv4 Settings", &kIpv4SettingTable}};
const NetlinkTable kIpv4Table = TableOf(kIpv4);

// ---- Bridges, VLANs and overlays.

constexpr auto kVlanProtocolNames = SortedNames({{0x8100, "802.1Q"}, {0x88A8, "802.1ad"}});
constexpr auto kPortStateNames = SortedNames({
    {0, "Disabled"}, {1, "Listening"}, {2, "Learning"}, {3, "Forwarding"}, {4, "Blocking"}});
const NetlinkAttribute kBridgeIdPieces[] = {{2, kNetwork, "Bridge Priority"}, {6, kAddress, "Bridge Address"}};
const NetlinkTable kBridgeIdTable = TableOf(kBridgeIdPieces);
const NetlinkAttribute kPort[] = {
    {1, kNumber, "Port State", nullptr, kPortStateNames}, {2, kNumber, "Port Priority"}, {3, kNumber, "Path Cost"},
    {4, kNumber, "Hairpin Mode"}, {5, kNumber, "BPDU Guard"}, {6, kNumber, "Root Block"}, {7, kNumber, "Fast Leave"},
    {8, kNumber, "Learning"}, {9, kNumber, "Unicast Flood"}, {10, kNumber, "Port Proxy ARP"},
    {11, kNumber, "Learning Sync"}, {12, kNumber, "Port Proxy ARP of Wireless"},
    {13, kRecord, "Root Bridge", &kBridgeIdTable}, {14, kRecord, "Designated Bridge", &kBridgeIdTable},
    {15, kNumber, "Designated Port"}, {16, kNumber, "Designated Cost"}, {17, kNumber, "Port ID"},
    {18, kNumber, "Port Number"}, {19, kNumber, "Topology Change Acknowledged"}, {20, kNumber, "Configuration Pending"},
    {21, kNumber, "Message Age Timer"}, {22, kNumber, "Forward Delay Timer"}, {23, kNumber, "Hold Timer"},
    {24, kFlag, "Flush"}, {25, kNumber, "Port Multicast Router"}, {26, kBytes, "Pad"}, {27, kNumber, "Multicast Flood"},
    {28, kNumber, "Multicast to Unicast"}, {29, kNumber, "VLAN Tunnel"}, {30, kNumber, "Broadcast Flood"},
    {31, kNumber, "Port Group Forward Mask"}, {32, kNumber, "Neighbour Suppression"}, {33, kNumber, "Isolated"},
    {34, kNumber, "Backup Port"}, {35, kNumber, "MRP Ring Open"}, {36, kNumber, "MRP Interconnection Open"},
    {37, kNumber, "Multicast Hosts Limit"}, {38, kNumber, "Multicast Hosts"}, {39, kNumber, "Locked"},
    {40, kNumber, "MAC Authentication Bypass"}, {41, kNumber, "Multicast Groups"},
    {42, kNumber, "Most Multicast Groups"}, {43, kNumber, "Neighbour Suppression of VLANs"},
    {44, kNumber, "Backup Next Hop ID"}};
const NetlinkAttribute kBridgeVlanPieces[] = {{2, kNumber, "VLAN Flags"}, {2, kNumber, "VLAN ID"}};
const NetlinkTable kBridgeVlanTable = TableOf(kBridgeVlanPieces);
const NetlinkAttribute kBridgeSpec[] = {
    {0, kNumber, "Bridge Flags"}, {1, kNumber, "Bridge Mode"}, {2, kRecord, "VLAN Information", &kBridgeVlanTable},
    {3, kBytes, "VLAN Tunnel Information"}};
const NetlinkAttribute kBridge[] = {
    {1, kNumber, "Forward Delay"}, {2, kNumber, "Hello Time"}, {3, kNumber, "Maximum Age"}, {4, kNumber, "Ageing Time"},
    {5, kNumber, "Spanning Tree"}, {6, kNumber, "Bridge Priority"}, {7, kNumber, "VLAN Filtering"},
    {8, kNetwork, "VLAN Protocol", nullptr, kVlanProtocolNames}, {9, kNumber, "Group Forward Mask"},
    {10, kRecord, "Root ID", &kBridgeIdTable}, {11, kRecord, "Bridge ID", &kBridgeIdTable}, {12, kNumber, "Root Port"},
    {13, kNumber, "Root Path Cost"}, {14, kNumber, "Topology Change"}, {15, kNumber, "Topology Change Detected"},
    {16, kNumber, "Hello Timer"}, {17, kNumber, "Topology Notification Timer"}, {18, kNumber, "Topology Change Timer"},
    {19, kNumber, "Collection Timer"}, {20, kAddress, "Group Address"}, {21, kFlag, "Flush Forwarding Database"},
    {22, kNumber, "Multicast Router"}, {23, kNumber, "Multicast Snooping"}, {24, kNumber, "Queries from Own Address"},
    {25, kNumber, "Multicast Querier"}, {26, kNumber, "Hash Elasticity"}, {27, kNumber, "Hash Maximum"},
    {28, kNumber, "Last Member Count"}, {29, kNumber, "Startup Query Count"}, {30, kNumber, "Last Member Interval"},
    {31, kNumber, "Membership Interval"}, {32, kNumber, "Querier Interval"}, {33, kNumber, "Query Interval"},
    {34, kNumber, "Query Response Interval"}, {35, kNumber, "Startup Query Interval"}, {36, kNumber, "Call IPv4 Filters"},
    {37, kNumber, "Call IPv6 Filters"}, {38, kNumber, "Call ARP Filters"}, {39, kNumber, "Default VLAN ID"},
    {40, kBytes, "Pad"}, {41, kNumber, "VLAN Statistics"}, {42, kNumber, "Multicast Statistics Enabled"},
    {43, kNumber, "IGMP Version"}, {44, kNumber, "MLD Version"}, {45, kNumber, "VLAN Statistics by Port"},
    {46, kBytes, "Options"}, {47, kBytes, "Querier State"}, {48, kNumber, "Learnt Entries"},
    {49, kNumber, "Most Learnt Entries"}};
const NetlinkTable kBridgeKind = TableOf(kBridge);
const NetlinkAttribute kVlanFlagPieces[] = {{4, kNumber, "VLAN Flags"}, {4, kNumber, "VLAN Flag Mask"}};
const NetlinkTable kVlanFlagTable = TableOf(kVlanFlagPieces);
const NetlinkAttribute kMappingPieces[] = {{4, kNumber, "Priority From"}, {4, kNumber, "Priority To"}};
const NetlinkTable kMappingTable = TableOf(kMappingPieces);
const NetlinkAttribute kMappings[] = {{1, kRecord, "Mapping", &kMappingTable}};
const NetlinkTable kMappingsTable = TableOf(kMappings);
const NetlinkAttribute kVlan[] = {
    {1, kNumber, "VLAN ID"}, {2, kRecord, "VLAN Flags", &kVlanFlagTable},
    {3, kNested, "Egress Mappings", &kMappingsTable}, {4, kNested, "Ingress Mappings", &kMappingsTable},
    {5, kNetwork, "VLAN Protocol", nullptr, kVlanProtocolNames}};
const NetlinkTable kVlanKind = TableOf(kVlan);
const NetlinkAttribute kPortPieces[] = {{2, kNetwork, "Lowest Port"}, {2, kNetwork, "Highest Port"}};
const NetlinkTable kVxlanPorts = TableOf(kPortPieces);
const NetlinkAttribute kVxlan[] = {
    {1, kNumber, "Network Identifier"}, {2, kAddress, "Remote Address"}, {3, kNumber, "Underlying Link"},
    {4, kAddress, "Tunnel Source"}, {5, kNumber, "TTL"}, {6, kNumber, "Type of Service"}, {7, kNumber, "Learn Addresses"},
    {8, kNumber, "Address Ageing"}, {9, kNumber, "Address Limit"}, {10, kRecord, "Source Ports", &kVxlanPorts},
    {11, kNumber, "Proxy"}, {12, kNumber, "Short Circuit"}, {13, kNumber, "Notify Unknown Addresses"},
    {14, kNumber, "Notify Unknown Destinations"}, {15, kNetwork, "UDP Port"}, {16, kAddress, "Remote IPv6 Address"},
    {17, kAddress, "Tunnel IPv6 Source"}, {18, kNumber, "UDP Checksum"}, {19, kNumber, "Send Zero Checksums"},
    {20, kNumber, "Accept Zero Checksums"}, {21, kNumber, "Send Remote Checksums"},
    {22, kNumber, "Accept Remote Checksums"}, {23, kFlag, "Group Policy"}, {24, kFlag, "No Partial Remote Checksums"},
    {25, kNumber, "Collect Metadata"}, {26, kNetwork, "Flow Label"}, {27, kFlag, "Generic Protocol Extension"},
    {28, kNumber, "Inherit TTL"}, {29, kNumber, "Do Not Fragment"}};
const NetlinkTable kVxlanKind = TableOf(kVxlan);
const NetlinkAttribute kMacvlan[] = {{1, kNumber, "Macvlan Mode"}, {2, kNumber, "Macvlan Flags"}};
const NetlinkTable kMacvlanKind = TableOf(kMacvlan);
const NetlinkAttribute kVrf[] = {{1, kNumber, "VRF Table"}};
const NetlinkTable kVrfKind = TableOf(kVrf);

// ---- Records of addresses, neighbours, routes and queues.

const NetlinkAttribute kAddressCachePieces[] = {
    {4, kNumber, "Preferred Lifetime"}, {4, kNumber, "Valid Lifetime"}, {4, kNumber, "Created"}, {4, kNumber, "Updated"}};
const NetlinkAttribute kNeighbourCachePieces[] = {
    {4, kNumber, "Confirmed"}, {4, kNumber, "Used"}, {4, kNumber, "Updated"}, {4, kNumber, "References"}};
const NetlinkAttribute kRouteCachePieces[] = {
    {4, kNumber, "References"}, {4, kNumber, "Last Used"}, {4, kSigned, "Expires"}, {4, kNumber, "Route Error"},
    {4, kNumber, "Times Used"}, {4, kNumber, "Identifier"}, {4, kNumber, "Timestamp"}, {4, kNumber, "Timestamp Age"}};
const NetlinkAttribute kMulticastPieces[] = {
    {8, kNumber, "Packets"}, {8, kNumber, "Octets"}, {8, kNumber, "Wrong Interface"}};
const NetlinkAttribute kTrafficPieces[] = {
    {8, kNumber, "Octets"}, {4, kNumber, "Packets"}, {4, kNumber, "Drops"}, {4, kNumber, "Over Limits"},
    {4, kNumber, "Octets per Second"}, {4, kNumber, "Packets per Second"}, {4, kNumber, "Queue Length"},
    {4, kNumber, "Backlog"}, {4, kFlag, "Padding"}};
const NetlinkAttribute kRatePieces[] = {{1, kSigned, "Estimator Interval"}, {1, kNumber, "Estimator Weight"}};
const NetlinkAttribute kBasicPieces[] = {{8, kNumber, "Octets"}, {4, kNumber, "Packets"}, {4, kFlag, "Padding"}};
const NetlinkTable kBasicTable = TableOf(kBasicPieces);
const NetlinkAttribute kMeasuredPieces[] = {{4, kNumber, "Octets per Second"}, {4, kNumber, "Packets per Second"}};
const NetlinkTable kMeasuredTable = TableOf(kMeasuredPieces);
const NetlinkAttribute kQueuePieces[] = {
    {4, kNumber, "Queue Length"}, {4, kNumber, "Backlog"}, {4, kNumber, "Drops"}, {4, kNumber, "Requeues"},
    {4, kNumber, "Over Limits"}};
const NetlinkTable kQueueTable = TableOf(kQueuePieces);
const NetlinkAttribute kStatistics2[] = {
    {1, kRecord, "Basic Statistics", &kBasicTable}, {2, kRecord, "Estimated Rate", &kMeasuredTable},
    {3, kRecord, "Queue Statistics", &kQueueTable}, {4, kBytes, "Application Statistics"}};
const NetlinkAttribute kUserPieces[] = {{4, kNumber, "First User ID"}, {4, kNumber, "Last User ID"}};
const NetlinkAttribute kRangePieces[] = {{2, kNumber, "First Port"}, {2, kNumber, "Last Port"}};

}  // namespace

const NetlinkTable kLinkCounters = TableOf(kCounters), kLinkMap = TableOf(kMapPieces), kIpv6Link = TableOf(kIpv6),
                   kBridgePort = TableOf(kPort), kBridgeLink = TableOf(kBridgeSpec),
                   kAddressCache = TableOf(kAddressCachePieces), kNeighbourCache = TableOf(kNeighbourCachePieces),
                   kRouteCache = TableOf(kRouteCachePieces), kMulticastCounters = TableOf(kMulticastPieces),
                   kTrafficCounters = TableOf(kTrafficPieces), kTrafficRate = TableOf(kRatePieces),
                   kTrafficCounters2 = TableOf(kStatistics2), kUserRange = TableOf(kUserPieces),
                   kPortRange = TableOf(kRangePieces);

namespace {
const NetlinkAttribute kFamilies[] = {{2, kNested, "IPv4", &kIpv4Table}, {10, kNested, "IPv6", &kIpv6Link}};
}  // namespace
const NetlinkTable kLinkFamilies = TableOf(kFamilies);

const NetlinkTable* FindLinkKind(const Field& kind, bool ofSlave) {
  const Cursor text = CursorOver(kind);
  if (PeekIs(text, 0, "bridge")) return ofSlave ? &kBridgePort : &kBridgeKind;
  if (PeekIs(text, 0, "vrf")) return &kVrfKind;
  if (ofSlave) return nullptr;
  return PeekIs(text, 0, "vlan")      ? &kVlanKind
         : PeekIs(text, 0, "vxlan")   ? &kVxlanKind
         : PeekIs(text, 0, "macvlan") ? &kMacvlanKind
                                      : nullptr;
}

}  // namespace qxview
