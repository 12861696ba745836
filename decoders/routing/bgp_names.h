// The names of the Border Gateway Protocol (IANA's registries of its parameters, of subsequent address families and of extended
// communities).
#pragma once
#include "core/name_table.h"

namespace qxview {

inline constexpr auto kBgpSafiNames = SortedNames({
    {0, "Reserved"}, {1, "Unicast"}, {2, "Multicast"}, {4, "Labelled Unicast"}, {5, "MCAST-VPN"},
    {6, "Multi-Segment Pseudowires"}, {7, "Encapsulation"}, {8, "MCAST-VPLS"}, {9, "BGP SFC"}, {64, "Tunnel"},
    {65, "VPLS"}, {66, "MDT"}, {67, "4over6"}, {68, "6over4"}, {69, "Layer-1 VPN Auto-Discovery"}, {70, "EVPN"},
    {71, "BGP-LS"}, {72, "BGP-LS-VPN"}, {73, "SR Policy"}, {74, "SD-WAN"}, {75, "Routing Policy"},
    {76, "Classful Transport"}, {77, "Tunneled Traffic Flowspec"}, {78, "MCAST-TREE"}, {80, "BGP-LS-SPF"},
    {83, "BGP CAR"}, {84, "BGP VPN CAR"}, {85, "BGP MUP"}, {128, "MPLS VPN"}, {129, "Multicast VPN"},
    {132, "Route Target Constraints"}, {133, "Flow Specification"}, {134, "VPN Flow Specification"},
    {140, "VPN Auto-Discovery"}});
inline constexpr auto kBgpCapabilityNames = SortedNames({
    {0, "Reserved"}, {1, "Multiprotocol Extensions"}, {2, "Route Refresh"}, {3, "Outbound Route Filtering"},
    {4, "Multiple Routes to a Destination"}, {5, "Extended Next Hop Encoding"}, {6, "Extended Message"}, {7, "BGPsec"},
    {8, "Multiple Labels"}, {9, "BGP Role"}, {64, "Graceful Restart"}, {65, "4-Octet AS Number"},
    {66, "Dynamic Capability (Deprecated)"}, {67, "Dynamic Capability"}, {68, "Multisession"}, {69, "ADD-PATH"},
    {70, "Enhanced Route Refresh"}, {71, "Long-Lived Graceful Restart"}, {72, "Routing Policy Distribution"}, {73, "FQDN"},
    {74, "BFD Strict"}, {75, "Software Version"}, {76, "Paths Limit"}, {77, "Link-Local Next Hop"},
    {128, "Route Refresh (Prestandard)"},
    {129, "Outbound Route Filtering (Prestandard)"}, {130, "Outbound Route Filtering (Prestandard)"},
    {131, "Multisession (Prestandard)"}, {184, "FQDN (Prestandard)"}, {185, "Operational Message (Prestandard)"}});
inline constexpr auto kBgpAttributeNames = SortedNames({
    {0, "Reserved"}, {1, "ORIGIN"}, {2, "AS_PATH"}, {3, "NEXT_HOP"}, {4, "MULTI_EXIT_DISC"}, {5, "LOCAL_PREF"},
    {6, "ATOMIC_AGGREGATE"}, {7, "AGGREGATOR"}, {8, "COMMUNITIES"}, {9, "ORIGINATOR_ID"}, {10, "CLUSTER_LIST"},
    {11, "DPA"}, {12, "ADVERTISER"}, {13, "RCID_PATH / CLUSTER_ID"}, {14, "MP_REACH_NLRI"}, {15, "MP_UNREACH_NLRI"},
    {16, "EXTENDED COMMUNITIES"}, {17, "AS4_PATH"}, {18, "AS4_AGGREGATOR"}, {19, "SAFI Specific Attribute"},
    {20, "Connector"}, {21, "AS_PATHLIMIT"}, {22, "PMSI_TUNNEL"}, {23, "Tunnel Encapsulation"}, {24, "Traffic Engineering"},
    {25, "IPv6 Address Specific Extended Community"}, {26, "AIGP"}, {27, "PE Distinguisher Labels"},
    {28, "Entropy Label Capability"}, {29, "BGP-LS"}, {32, "LARGE_COMMUNITY"}, {33, "BGPsec_Path"},
    {34, "BGP Community Container"}, {35, "Only to Customer"}, {36, "D-PATH"}, {37, "SFP"},
    {38, "BFD Discriminator"}, {39, "Next Hop Dependent Characteristics"}, {40, "BGP Prefix-SID"},
    {41, "BIER"}, {42, "Edge Metadata"}, {128, "ATTR_SET"},
    {129, "Deprecated"}, {241, "Deprecated"}, {242, "Deprecated"}, {243, "Deprecated"}, {255, "Reserved for Development"}});
inline constexpr auto kBgpCommunityNames = SortedNames({
    {0xFFFF0000, "GRACEFUL_SHUTDOWN"}, {0xFFFF0001, "ACCEPT_OWN"}, {0xFFFF0002, "ROUTE_FILTER_TRANSLATED_v4"},
    {0xFFFF0003, "ROUTE_FILTER_v4"}, {0xFFFF0004, "ROUTE_FILTER_TRANSLATED_v6"}, {0xFFFF0005, "ROUTE_FILTER_v6"},
    {0xFFFF0006, "LLGR_STALE"}, {0xFFFF0007, "NO_LLGR"}, {0xFFFF0008, "ACCEPT_OWN_NEXTHOP"}, {0xFFFF0009, "Standby PE"},
    {0xFFFF029A, "BLACKHOLE"}, {0xFFFFFF01, "NO_EXPORT"}, {0xFFFFFF02, "NO_ADVERTISE"},
    {0xFFFFFF03, "NO_EXPORT_SUBCONFED"}, {0xFFFFFF04, "NOPEER"}});
// Type above bit 8 and subtype; the bit that tells communities that are not transitive cleared.
inline constexpr auto kBgpExtendedNames = SortedNames({
    {0x0002, "Route Target"}, {0x0003, "Route Origin"}, {0x0004, "Link Bandwidth"}, {0x0005, "OSPF Domain Identifier"},
    {0x0008, "BGP Data Collection"}, {0x0009, "Source AS"}, {0x000A, "L2VPN Identifier"}, {0x0010, "VPN-Distinguisher"},
    {0x0013, "Route-Target Record"}, {0x0015, "RT-Derived-EC"}, {0x0080, "Virtual-Network Identifier"},
    {0x0102, "Route Target"}, {0x0103, "Route Origin"}, {0x0105, "OSPF Domain Identifier"}, {0x0107, "OSPF Route ID"},
    {0x0109, "Node Target"}, {0x010A, "L2VPN Identifier"}, {0x010B, "VRF Route Import"}, {0x010C, "Flow-spec Redirect to IP"},
    {0x0110, "VPN-Distinguisher"}, {0x0112, "Inter-Area P2MP Segmented Next-Hop"}, {0x0113, "Route-Target Record"},
    {0x0120, "VRF-Recursive-Next-Hop"}, {0x0202, "Route Target"}, {0x0203, "Route Origin"}, {0x0204, "Generic"},
    {0x0205, "OSPF Domain Identifier"}, {0x0208, "BGP Data Collection"}, {0x0209, "Source AS"},
    {0x0210, "VPN-Distinguisher"}, {0x0213, "Route-Target Record"}, {0x0300, "BGP Origin Validation State"},
    {0x0301, "Cost Community"}, {0x0303, "CP-ORF"}, {0x0304, "Extranet Source"}, {0x0305, "Extranet Separation"},
    {0x0306, "OSPF Route Type"}, {0x0307, "Additional PMSI Tunnel Attribute Flags"}, {0x0308, "Context-Specific Label Space ID"},
    {0x030B, "Color"}, {0x030C, "Encapsulation"}, {0x030D, "Default Gateway"}, {0x030E, "Point-to-Point-to-Multipoint"},
    {0x030F, "Consistent Hash Sort Order"}, {0x0314, "Load Balance"}, {0x0400, "QoS Marking"}, {0x0401, "CoS Capability"},
    {0x0600, "MAC Mobility"}, {0x0601, "ESI Label"}, {0x0602, "ES-Import Route Target"}, {0x0603, "EVPN Router's MAC"},
    {0x0604, "EVPN Layer 2 Attributes"}, {0x0605, "E-Tree"}, {0x0606, "DF Election"}, {0x0607, "I-SID"},
    {0x0608, "ARP/ND"}, {0x0609, "Multicast Flags"}, {0x060A, "EVI-RT Type 0"}, {0x060B, "EVI-RT Type 1"},
    {0x060C, "EVI-RT Type 2"}, {0x060D, "EVI-RT Type 3"}, {0x060E, "EVPN Attachment Circuit"},
    {0x060F, "Service Carving Timestamp"}, {0x0610, "Link Bandwidth"}, {0x0615, "RT-Derived-EC"},
    {0x0700, "FlowSpec Transitive"}, {0x0701, "FlowSpec Redirect to IPv6"}, {0x0800, "Flow-spec Redirect/Mirror to IP"},
    {0x0900, "Flow-spec Redirect/Mirror to Interface-Set"}, {0x0A00, "Transport Class"}, {0x0B00, "Service Chaining"},
    {0x0C00, "MUP Direct-Type Segment Identifier"},
    {0x8000, "OSPF Route Type"}, {0x8001, "OSPF Router ID"}, {0x8004, "Security Group"}, {0x8005, "OSPF Domain ID"},
    {0x8006, "Flow-spec Traffic-Rate in Bytes"}, {0x8007, "Flow-spec Traffic-Action"},
    {0x8008, "Flow-spec RT-Redirect AS-2"}, {0x8009, "Flow-spec Traffic-Remarking"}, {0x800A, "Layer2 Info"},
    {0x800B, "E-Tree Info"}, {0x800C, "Flow-spec Traffic-Rate in Packets"}, {0x800D, "Flow Specification for SFC Classifiers"},
    {0x8084, "Tag"}, {0x8085, "Origin Sub-Cluster"}, {0x8108, "Flow-spec RT-Redirect IPv4"},
    {0x8208, "Flow-spec RT-Redirect AS-4"}, {0x8800, "EIGRP Route"}, {0x8801, "EIGRP Delay"}, {0x8802, "EIGRP Bandwidth"},
    {0x8803, "EIGRP Load"}, {0x8804, "EIGRP External Router"}, {0x8805, "EIGRP External Protocol"}});
inline constexpr auto kBgpErrorNames = SortedNames({
    {0, "Reserved"}, {1, "Message Header Error"}, {2, "OPEN Message Error"}, {3, "UPDATE Message Error"}, {4, "Hold Timer Expired"},
    {5, "Finite State Machine Error"}, {6, "Cease"}, {7, "ROUTE-REFRESH Message Error"}, {8, "Send Hold Timer Expired"},
    {9, "Loss of LSDB Synchronization"}});
// Error above bit 8 and its subcode.
inline constexpr auto kBgpSuberrorNames = SortedNames({
    {0x100, "Unspecific"}, {0x101, "Connection Not Synchronized"}, {0x102, "Bad Message Length"}, {0x103, "Bad Message Type"},
    {0x200, "Unspecific"}, {0x201, "Unsupported Version Number"}, {0x202, "Bad Peer AS"}, {0x203, "Bad BGP Identifier"},
    {0x204, "Unsupported Optional Parameter"}, {0x205, "Authentication Failure (Deprecated)"},
    {0x206, "Unacceptable Hold Time"}, {0x207, "Unsupported Capability"}, {0x20B, "Role Mismatch"}, {0x300, "Unspecific"},
    {0x301, "Malformed Attribute List"}, {0x302, "Unrecognized Well-known Attribute"},
    {0x303, "Missing Well-known Attribute"}, {0x304, "Attribute Flags Error"}, {0x305, "Attribute Length Error"},
    {0x306, "Invalid ORIGIN Attribute"}, {0x307, "AS Routing Loop (Deprecated)"}, {0x308, "Invalid NEXT_HOP Attribute"},
    {0x309, "Optional Attribute Error"}, {0x30A, "Invalid Network Field"}, {0x30B, "Malformed AS_PATH"},
    {0x500, "Unspecified Error"}, {0x501, "Unexpected Message in OpenSent State"},
    {0x502, "Unexpected Message in OpenConfirm State"}, {0x503, "Unexpected Message in Established State"},
    {0x600, "Reserved"}, {0x601, "Maximum Number of Prefixes Reached"}, {0x602, "Administrative Shutdown"},
    {0x603, "Peer De-configured"}, {0x604, "Administrative Reset"}, {0x605, "Connection Rejected"},
    {0x606, "Other Configuration Change"}, {0x607, "Connection Collision Resolution"}, {0x608, "Out of Resources"},
    {0x609, "Hard Reset"}, {0x60A, "BFD Down"}, {0x700, "Reserved"}, {0x701, "Invalid Message Length"}});
inline constexpr auto kBgpTunnelNames = SortedNames({
    {0, "Reserved"}, {1, "L2TPv3 over IP"}, {2, "GRE"}, {3, "Transmit Tunnel Endpoint"}, {4, "IPsec in Tunnel Mode"},
    {5, "IP in IP Tunnel with IPsec Transport Mode"}, {6, "MPLS-in-IP Tunnel with IPsec Transport Mode"}, {7, "IP in IP"},
    {8, "VXLAN"}, {9, "NVGRE"}, {10, "MPLS"}, {11, "MPLS in GRE"}, {12, "VXLAN GPE"}, {13, "MPLS in UDP"},
    {14, "IPv6 Tunnel"}, {15, "SR Policy"}, {16, "Bare"}, {17, "SR Tunnel"}, {18, "Cloud Security"}, {19, "Geneve"},
    {20, "Any-Encapsulation"}, {21, "GTP Tunnel"}, {22, "Dynamic Path Selection"}, {23, "Originating PE"},
    {24, "Dynamic Path Selection Policy"}, {25, "SDWAN-Hybrid"}});

}  // namespace qxview
