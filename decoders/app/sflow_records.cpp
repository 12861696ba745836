#include "decoders/app/sflow_records.h"

#include "decoders/app/flow_elements.h"

namespace qxview::sflow {
namespace {

struct Plain {   // no row brings a value
  Field unused;
  uint64_t unusedWide;
};

constexpr auto kDirectionNames = SortedNames({
    {0, "Unknown"}, {1, "Full Duplex"}, {2, "Half Duplex"}, {3, "In"}, {4, "Out"}});
constexpr auto kInterfaceTypeNames = SortedNames({
    {1, "other"}, {6, "ethernetCsmacd"}, {9, "iso88025TokenRing"}, {15, "fddi"}, {23, "ppp"}, {24, "softwareLoopback"},
    {32, "frameRelay"}, {37, "atm"}, {53, "propVirtual"}, {62, "fastEther"}, {71, "ieee80211"},
    {117, "gigabitEthernet"},
    {131, "tunnel"}, {135, "l2vlan"}, {136, "l3ipvlan"}, {161, "ieee8023adLag"}, {166, "mpls"}});
constexpr auto kUrlDirectionNames = SortedNames({{1, "Source Is Server"}, {2, "Destination Is Server"}});
constexpr auto kRadioVersionNames = SortedNames({{1, "802.11a"}, {2, "802.11b"}, {3, "802.11g"}, {4, "802.11n"}});
constexpr auto kAclDirectionNames = SortedNames({{0, "Unknown"}, {1, "Ingress"}, {2, "Egress"}});
constexpr auto kPacketDirectionNames = SortedNames({{0, "Unknown"}, {1, "Received"}, {2, "Sent"}});
constexpr auto kSegmentNames = SortedNames({{1, "AS Set"}, {2, "AS Sequence"}});
constexpr auto kMethodNames = SortedNames({
    {0, "Other"}, {1, "OPTIONS"}, {2, "GET"}, {3, "HEAD"}, {4, "POST"}, {5, "PUT"}, {6, "DELETE"}, {7, "TRACE"},
    {8, "CONNECT"}});
constexpr auto kAppStatusNames = SortedNames({
    {0, "SUCCESS"}, {1, "OTHER"}, {2, "TIMEOUT"}, {3, "INTERNAL_ERROR"}, {4, "BAD_REQUEST"}, {5, "FORBIDDEN"},
    {6, "TOO_LARGE"}, {7, "NOT_IMPLEMENTED"}, {8, "NOT_FOUND"}, {9, "UNAVAILABLE"}, {10, "UNAUTHORIZED"}});
constexpr auto kDomainStateNames = SortedNames({
    {0, "No State"}, {1, "Running"}, {2, "Blocked"}, {3, "Paused"}, {4, "Shutdown"}, {5, "Shutoff"}, {6, "Crashed"}});
constexpr auto kMachineNames = SortedNames({
    {0, "unknown"}, {1, "other"}, {2, "x86"}, {3, "x86_64"}, {4, "ia64"}, {5, "sparc"}, {6, "alpha"}, {7, "powerpc"},
    {8, "m68k"}, {9, "mips"}, {10, "arm"}, {11, "hppa"}, {12, "s390"}});
constexpr auto kSystemNames = SortedNames({
    {0, "unknown"}, {1, "other"}, {2, "linux"}, {3, "windows"}, {4, "darwin"}, {5, "hpux"}, {6, "aix"},
    {7, "dragonfly"},
    {8, "freebsd"}, {9, "netbsd"}, {10, "openbsd"}, {11, "osf"}, {12, "solaris"}, {13, "java"}});

const char* EthertypeOr(uint32_t type) {
  const char* name = type <= 0xFFFF ? EthertypeName(static_cast<uint16_t>(type)) : nullptr;
  return name ? name : kUnknown;
}

constexpr auto kInterface = Rows<Plain>({
    Number(4, "Interface Index"), Number(4, "Interface Type", kInterfaceTypeNames),
    Number(8, "Interface Speed", " bits/s"), Number(4, "Interface Direction", kDirectionNames)});
constexpr auto kInterfaceCounters = Rows<Plain>({
    Number(8, "Input Octets"), Number(4, "Input Unicast Packets"), Number(4, "Input Multicast Packets"),
    Number(4, "Input Broadcast Packets"), Number(4, "Input Discarded Packets"), Number(4, "Input Errors"),
    Number(4, "Input Unknown Protocol Packets"), Number(8, "Output Octets"), Number(4, "Output Unicast Packets"),
    Number(4, "Output Multicast Packets"), Number(4, "Output Broadcast Packets"),
    Number(4, "Output Discarded Packets"), Number(4, "Output Errors"), Number(4, "Promiscuous Mode")});
constexpr auto kEthernetCounters = Rows<Plain>({
    Number(4, "Alignment Errors"), Number(4, "FCS Errors"), Number(4, "Single Collision Frames"),
    Number(4, "Multiple Collision Frames"), Number(4, "SQE Test Errors"), Number(4, "Deferred Transmissions"),
    Number(4, "Late Collisions"), Number(4, "Excessive Collisions"), Number(4, "Internal MAC Transmit Errors"),
    Number(4, "Carrier Sense Errors"), Number(4, "Frame Too Longs"), Number(4, "Internal MAC Receive Errors"),
    Number(4, "Symbol Errors")});
constexpr auto kTokenRingCounters = Rows<Plain>({
    Number(4, "Line Errors"), Number(4, "Burst Errors"), Number(4, "AC Errors"), Number(4, "Abort Transmitted Errors"),
    Number(4, "Internal Errors"), Number(4, "Lost Frame Errors"), Number(4, "Receive Congestions"),
    Number(4, "Frame Copied Errors"), Number(4, "Token Errors"), Number(4, "Soft Errors"), Number(4, "Hard Errors"),
    Number(4, "Signal Loss"), Number(4, "Transmit Beacons"), Number(4, "Recoveries"), Number(4, "Lobe Wires"),
    Number(4, "Removes"), Number(4, "Singles"), Number(4, "Frequency Errors")});
constexpr auto kVgCounters = Rows<Plain>({
    Number(4, "Input High Priority Frames"), Number(8, "Input High Priority Octets"),
    Number(4, "Input Normal Priority Frames"), Number(8, "Input Normal Priority Octets"),
    Number(4, "Input IPM Errors"), Number(4, "Input Oversize Frame Errors"), Number(4, "Input Data Errors"),
    Number(4, "Input Null Addressed Frames"), Number(4, "Output High Priority Frames"),
    Number(8, "Output High Priority Octets"), Number(4, "Transitions into Training"),
    Number(8, "HC Input High Priority Octets"), Number(8, "HC Input Normal Priority Octets"),
    Number(8, "HC Output High Priority Octets")});
constexpr auto kVlanCounters = Rows<Plain>({
    Number(4, "VLAN ID"), Number(8, "Octets"), Number(4, "Unicast Packets"), Number(4, "Multicast Packets"),
    Number(4, "Broadcast Packets"), Number(4, "Discards")});
constexpr auto kWirelessCounters = Rows<Plain>({
    Number(4, "Transmitted Fragments"), Number(4, "Multicast Transmitted Frames"), Number(4, "Failed"),
    Number(4, "Retries"), Number(4, "Multiple Retries"), Number(4, "Duplicate Frames"), Number(4, "RTS Successes"),
    Number(4, "RTS Failures"), Number(4, "ACK Failures"), Number(4, "Received Fragments"),
    Number(4, "Multicast Received Frames"), Number(4, "FCS Errors"), Number(4, "Transmitted Frames"),
    Number(4, "WEP Undecryptables"), Number(4, "QoS Discarded Fragments"), Number(4, "Associated Stations"),
    Number(4, "QoS CF Polls Received"), Number(4, "QoS CF Polls Unused"), Number(4, "QoS CF Polls Unusable"),
    Number(4, "QoS CF Polls Lost")});
constexpr auto kLagCounters = Rows<Plain>({
    Mac("Actor System ID"), Word(2), Mac("Partner Operational System ID"), Word(2),
    Number(4, "Attached Aggregator ID"), Hex(1, "Actor Admin State"), Hex(1, "Actor Operational State"),
    Hex(1, "Partner Admin State"), Hex(1, "Partner Operational State"), Number(4, "LACPDUs Received"),
    Number(4, "Marker PDUs Received"), Number(4, "Marker Response PDUs Received"), Number(4, "Unknown PDUs Received"),
    Number(4, "Illegal PDUs Received"), Number(4, "LACPDUs Transmitted"), Number(4, "Marker PDUs Transmitted"),
    Number(4, "Marker Response PDUs Transmitted")});
constexpr auto kProcessorCounters = Rows<Plain>({
    Number(4, "CPU 5 Seconds", " hundredths of a percent"), Number(4, "CPU 1 Minute", " hundredths of a percent"),
    Number(4, "CPU 5 Minutes", " hundredths of a percent"), Number(8, "Total Memory", " bytes"),
    Number(8, "Free Memory", " bytes")});
constexpr auto kRadioCounters = Rows<Plain>({
    Number(4, "Elapsed Time", " milliseconds"), Number(4, "On Channel Time", " milliseconds"),
    Number(4, "On Channel Busy Time", " milliseconds")});
constexpr auto kOpenFlowPort = Rows<Plain>({
    Hex(8, "Datapath ID"), Number(4, "Port Number")});
constexpr auto kHostSystem = Rows<Plain>({
    Bytes(16, "UUID"), Number(4, "Machine Type", kMachineNames), Number(4, "Operating System", kSystemNames)});
constexpr auto kHostParent = Rows<Plain>({
    Number(4, "Container Type"), Number(4, "Container Index")});
constexpr auto kHostCpu = Rows<Plain>({
    Float(4, "Load Average 1 Minute"), Float(4, "Load Average 5 Minutes"), Float(4, "Load Average 15 Minutes"),
    Number(4, "Running Processes"), Number(4, "Total Processes"), Number(4, "CPUs"), Number(4, "CPU Speed", " MHz"),
    Number(4, "Uptime", " seconds"), Number(4, "CPU User Time", " milliseconds"),
    Number(4, "CPU Nice Time", " milliseconds"), Number(4, "CPU System Time", " milliseconds"),
    Number(4, "CPU Idle Time", " milliseconds"), Number(4, "CPU I/O Wait Time", " milliseconds"),
    Number(4, "CPU Interrupt Time", " milliseconds"), Number(4, "CPU Soft Interrupt Time", " milliseconds"),
    Number(4, "Interrupts"), Number(4, "Context Switches"), Number(4, "CPU Steal Time", " milliseconds"),
    Number(4, "CPU Guest Time", " milliseconds"), Number(4, "CPU Guest Nice Time", " milliseconds")});
constexpr auto kHostMemory = Rows<Plain>({
    Number(8, "Total Memory", " bytes"), Number(8, "Free Memory", " bytes"), Number(8, "Shared Memory", " bytes"),
    Number(8, "Buffers", " bytes"), Number(8, "Cached Memory", " bytes"), Number(8, "Total Swap", " bytes"),
    Number(8, "Free Swap", " bytes"), Number(4, "Pages In"), Number(4, "Pages Out"), Number(4, "Swap Pages In"),
    Number(4, "Swap Pages Out")});
constexpr auto kHostDisk = Rows<Plain>({
    Number(8, "Total Disk", " bytes"), Number(8, "Free Disk", " bytes"),
    Number(4, "Fullest Partition", " hundredths of a percent"), Number(4, "Reads"), Number(8, "Bytes Read"),
    Number(4, "Read Time", " milliseconds"), Number(4, "Writes"), Number(8, "Bytes Written"),
    Number(4, "Write Time", " milliseconds")});
constexpr auto kHostNetwork = Rows<Plain>({
    Number(8, "Bytes In"), Number(4, "Packets In"), Number(4, "Errors In"), Number(4, "Drops In"),
    Number(8, "Bytes Out"), Number(4, "Packets Out"), Number(4, "Errors Out"), Number(4, "Drops Out")});
constexpr auto kIpGroup = Rows<Plain>({
    Number(4, "Forwarding"), Number(4, "Default TTL"), Number(4, "Receives In"), Number(4, "Header Errors In"),
    Number(4, "Address Errors In"), Number(4, "Forwarded Datagrams"), Number(4, "Unknown Protocols In"),
    Number(4, "Discards In"), Number(4, "Delivers In"), Number(4, "Requests Out"), Number(4, "Discards Out"),
    Number(4, "No Routes Out"), Number(4, "Reassembly Timeout"), Number(4, "Reassemblies Required"),
    Number(4, "Reassembly OKs"), Number(4, "Reassembly Failures"), Number(4, "Fragmentation OKs"),
    Number(4, "Fragmentation Failures"), Number(4, "Fragments Created")});
constexpr auto kIcmpGroup = Rows<Plain>({
    Number(4, "Messages In"), Number(4, "Errors In"), Number(4, "Destination Unreachables In"),
    Number(4, "Time Exceeded In"), Number(4, "Parameter Problems In"), Number(4, "Source Quenches In"),
    Number(4, "Redirects In"), Number(4, "Echos In"), Number(4, "Echo Replies In"), Number(4, "Timestamps In"),
    Number(4, "Address Masks In"), Number(4, "Address Mask Replies In"), Number(4, "Messages Out"),
    Number(4, "Errors Out"), Number(4, "Destination Unreachables Out"), Number(4, "Time Exceeded Out"),
    Number(4, "Parameter Problems Out"), Number(4, "Source Quenches Out"), Number(4, "Redirects Out"),
    Number(4, "Echos Out"), Number(4, "Echo Replies Out"), Number(4, "Timestamps Out"),
    Number(4, "Timestamp Replies Out"), Number(4, "Address Masks Out"), Number(4, "Address Mask Replies Out")});
constexpr auto kTcpGroup = Rows<Plain>({
    Number(4, "RTO Algorithm"), Number(4, "RTO Minimum"), Number(4, "RTO Maximum"), Number(4, "Maximum Connections"),
    Number(4, "Active Opens"), Number(4, "Passive Opens"), Number(4, "Attempt Failures"),
    Number(4, "Established Resets"), Number(4, "Currently Established"), Number(4, "Segments In"),
    Number(4, "Segments Out"), Number(4, "Retransmitted Segments"), Number(4, "Errors In"), Number(4, "Resets Out"),
    Number(4, "Checksum Errors In")});
constexpr auto kUdpGroup = Rows<Plain>({
    Number(4, "Datagrams In"), Number(4, "No Ports"), Number(4, "Errors In"), Number(4, "Datagrams Out"),
    Number(4, "Receive Buffer Errors"), Number(4, "Send Buffer Errors"), Number(4, "Checksum Errors In")});
constexpr auto kVirtualNode = Rows<Plain>({
    Number(4, "CPU Speed", " MHz"), Number(4, "CPUs"), Number(8, "Memory", " bytes"),
    Number(8, "Free Memory", " bytes"), Number(4, "Active Domains")});
constexpr auto kVirtualCpu = Rows<Plain>({
    Number(4, "State", kDomainStateNames), Number(4, "CPU Time", " milliseconds"), Number(4, "Virtual CPUs")});
constexpr auto kVirtualMemory = Rows<Plain>({
    Number(8, "Memory", " bytes"), Number(8, "Maximum Memory", " bytes")});
constexpr auto kVirtualDisk = Rows<Plain>({
    Number(8, "Capacity", " bytes"), Number(8, "Allocation", " bytes"), Number(8, "Available", " bytes"),
    Number(4, "Read Requests"), Number(8, "Bytes Read"), Number(4, "Write Requests"), Number(8, "Bytes Written"),
    Number(4, "Errors")});
constexpr auto kHttpCounters = Rows<Plain>({
    Number(4, "OPTIONS Requests"), Number(4, "GET Requests"), Number(4, "HEAD Requests"), Number(4, "POST Requests"),
    Number(4, "PUT Requests"), Number(4, "DELETE Requests"), Number(4, "TRACE Requests"),
    Number(4, "CONNECT Requests"), Number(4, "Other Requests"), Number(4, "Status 1xx"), Number(4, "Status 2xx"),
    Number(4, "Status 3xx"), Number(4, "Status 4xx"), Number(4, "Status 5xx"), Number(4, "Other Status")});
constexpr auto kAppResources = Rows<Plain>({
    Number(4, "User Time", " milliseconds"), Number(4, "System Time", " milliseconds"),
    Number(8, "Memory Used", " bytes"), Number(8, "Maximum Memory", " bytes"), Number(4, "Open File Descriptors"),
    Number(4, "Maximum File Descriptors"), Number(4, "Open Connections"), Number(4, "Maximum Connections")});
constexpr auto kAppWorkers = Rows<Plain>({
    Number(4, "Active Workers"), Number(4, "Idle Workers"), Number(4, "Maximum Workers"),
    Number(4, "Delayed Requests"), Number(4, "Dropped Requests")});
constexpr auto kDatapath = Rows<Plain>({
    Number(4, "Hits"), Number(4, "Misses"), Number(4, "Lost"), Number(4, "Mask Hits"), Number(4, "Flows"),
    Number(4, "Masks")});
constexpr auto kSampledEthernet = Rows<Plain>({
    Number(4, "Frame Length"), Mac("Source MAC"), Word(2), Mac("Destination MAC"), Word(2),
    Hex(4, "Ethernet Type", EthertypeOr)});
constexpr auto kSampledIp = Rows<Plain>({
    Number(4, "Packet Length"), Number(4, "Protocol", FlowProtocolName)});
constexpr auto kSampledPorts = Rows<Plain>({
    Number(4, "Source Port"), Number(4, "Destination Port")});
constexpr auto kSwitch = Rows<Plain>({
    Number(4, "Source VLAN"), Number(4, "Source Priority"), Number(4, "Destination VLAN"),
    Number(4, "Destination Priority")});
constexpr auto kRouterMasks = Rows<Plain>({
    Number(4, "Source Mask"), Number(4, "Destination Mask")});
constexpr auto kSystems = Rows<Plain>({
    Number(4, "Autonomous System"), Number(4, "Source AS"), Number(4, "Source Peer AS")});
constexpr auto kLocalPreference = Rows<Plain>({
    Number(4, "Local Preference")});
constexpr auto kDirection = Rows<Plain>({
    Number(4, "URL Direction", kUrlDirectionNames)});
constexpr auto kIdCos = Rows<Plain>({
    Number(4, "Tunnel ID"), Number(4, "Tunnel COS")});
constexpr auto kVcCos = Rows<Plain>({
    Number(4, "VC ID"), Number(4, "Label COS")});
constexpr auto kMask = Rows<Plain>({
    Number(4, "Mask")});
constexpr auto kPrefixLength = Rows<Plain>({
    Number(4, "Prefix Length")});
constexpr auto kRadio = Rows<Plain>({
    Mac("BSSID"), Word(2), Number(4, "Version", kRadioVersionNames), Number(4, "Channel"),
    Number(8, "Speed", " bits/s"), Number(4, "RSNI"), Number(4, "RCPI"),
    Number(4, "Packet Duration", " microseconds")});
constexpr auto kRadioTx = Rows<Plain>({
    Mac("BSSID"), Word(2), Number(4, "Version", kRadioVersionNames), Number(4, "Transmissions"),
    Number(4, "Packet Duration", " microseconds"), Number(4, "Retransmission Duration", " microseconds"),
    Number(4, "Channel"), Number(8, "Speed", " bits/s"), Number(4, "Power", " mW")});
constexpr auto kCipher = Rows<Plain>({
    Bytes(3, "Cipher OUI"), Number(1, "Cipher Suite Type")});
constexpr auto kVni = Rows<Plain>({
    Number(4, "VNI")});
constexpr auto kHeaderOffset = Rows<Plain>({
    Number(4, "Inner Header Offset")});
constexpr auto kQueue = Rows<Plain>({
    Number(4, "Queue")});
constexpr auto kAclNumber = Rows<Plain>({
    Number(4, "ACL Number")});
constexpr auto kAclDirection = Rows<Plain>({
    Number(4, "Direction", kAclDirectionNames)});
constexpr auto kDelay = Rows<Plain>({
    Number(4, "Delay", " nanoseconds")});
constexpr auto kDepth = Rows<Plain>({
    Number(4, "Queue Depth", " bytes")});
constexpr auto kProtocol = Rows<Plain>({
    Number(4, "Protocol", FlowProtocolName)});
constexpr auto kSocketPorts = Rows<Plain>({
    Number(4, "Local Port"), Number(4, "Remote Port")});
constexpr auto kHttpMethod = Rows<Plain>({
    Number(4, "Method", kMethodNames), Number(4, "Protocol Version")});
constexpr auto kHttpResult = Rows<Plain>({
    Number(8, "Request Bytes"), Number(8, "Response Bytes"), Number(4, "Duration", " microseconds"),
    Number(4, "Status")});
constexpr auto kAppResult = Rows<Plain>({
    Number(8, "Request Bytes"), Number(8, "Response Bytes"), Number(4, "Duration", " microseconds"),
    Number(4, "Status", kAppStatusNames)});
constexpr auto kTcpInfo = Rows<Plain>({
    Number(4, "Packet Direction", kPacketDirectionNames), Number(4, "Sending MSS"), Number(4, "Receiving MSS"),
    Number(4, "Unacknowledged Packets"), Number(4, "Lost Packets"), Number(4, "Retransmitted Packets"),
    Number(4, "Path MTU"), Number(4, "Round Trip Time", " microseconds"),
    Number(4, "Round Trip Time Variance", " microseconds"), Number(4, "Congestion Window"), Number(4, "Reordering"),
    Number(4, "Minimum Round Trip Time", " microseconds")});
constexpr auto kCharset = Rows<Plain>({
    Number(4, "Source Character Set")});
constexpr auto kDestinationCharset = Rows<Plain>({
    Number(4, "Destination Character Set")});

constexpr auto kStatus = Rows<Plain>({
    Word(4), Flag(31, "Administrative Status Up"), Flag(30, "Operational Status Up")});
constexpr auto kSampledService = Rows<Plain>({
    Flags(4, "TCP Flags", kFlowTcpFlagNames), Hex(4, "Type of Service")});
constexpr auto kSampledPriority = Rows<Plain>({Flags(4, "TCP Flags", kFlowTcpFlagNames), Hex(4, "Priority")});
constexpr auto kAddressPair4 = Rows<Plain>({IPv4("Source Address"), IPv4("Destination Address")});
constexpr auto kAddressPair6 = Rows<Plain>({IPv6("Source Address"), IPv6("Destination Address")});
constexpr auto kSocketPair4 = Rows<Plain>({IPv4("Local Address"), IPv4("Remote Address")});
constexpr auto kSocketPair6 = Rows<Plain>({IPv6("Local Address"), IPv6("Remote Address")});

// A record is steps: rows of fixed fields and what has a length or a type of its own.
enum class StepKind : uint8_t { kNone, kRows, kString, kAddress, kNumbers, kPath, kAdapters };
struct Step {
  StepKind kind = StepKind::kNone;
  const char* label = nullptr;
  RowSpan<Plain> rows = {};
  uint8_t sinceVersion = 2;
  template <size_t kRows>
  constexpr Step(const RowTable<Plain, kRows>& table)   // NOLINT: implicit by design
      : kind(StepKind::kRows), rows(table) {}
  constexpr Step() = default;
  constexpr Step(StepKind of, const char* name, uint8_t since = 2) : kind(of), label(name), sinceVersion(since) {}
};
constexpr Step String(const char* label) { return {StepKind::kString, label}; }
constexpr Step Since(uint8_t version, Step step) {
  step.sinceVersion = version;
  return step;
}
constexpr Step Address(const char* label) { return {StepKind::kAddress, label}; }
constexpr Step Numbers(const char* label) { return {StepKind::kNumbers, label}; }

constexpr int32_t kMostSteps = 10;
struct Record {
  uint32_t format;
  const char* name;
  Step steps[kMostSteps];
};

constexpr Record kFlowRecords[] = {
    {1, "Sampled Header", {}},
    {2, "Sampled Ethernet", {kSampledEthernet}},
    {3, "Sampled IPv4", {kSampledIp, kAddressPair4, kSampledPorts, kSampledService}},
    {4, "Sampled IPv6", {kSampledIp, kAddressPair6, kSampledPorts, kSampledPriority}},
    {1001, "Extended Switch", {kSwitch}},
    {1002, "Extended Router", {Address("Next Hop"), kRouterMasks}},
    {1003, "Extended Gateway", {Since(5, Address("Next Hop")), kSystems, {StepKind::kPath, "Destination AS Path"},
                                Since(4, Numbers("Community")), Since(4, kLocalPreference)}},
    {1004, "Extended User", {Since(5, kCharset), String("Source User"), Since(5, kDestinationCharset),
                             String("Destination User")}},
    {1005, "Extended URL", {kDirection, String("URL"), Since(5, String("Host"))}},
    {1006, "Extended MPLS", {Address("Next Hop"), Numbers("In Label"), Numbers("Out Label")}},
    {1007, "Extended NAT", {Address("Source Address"), Address("Destination Address")}},
    {1008, "Extended MPLS Tunnel", {String("Tunnel Name"), kIdCos}},
    {1009, "Extended MPLS VC", {String("VC Instance Name"), kVcCos}},
    {1010, "Extended MPLS FTN", {String("FTN Description"), kMask}},
    {1011, "Extended MPLS LDP FEC", {kPrefixLength}},
    {1012, "Extended VLAN Tunnel", {Numbers("VLAN Tag")}},
    {1013, "Extended 802.11 Payload", {kCipher, String("Payload")}},
    {1014, "Extended 802.11 Receive", {String("SSID"), kRadio}},
    {1015, "Extended 802.11 Transmit", {String("SSID"), kRadioTx}},
    {1016, "Extended 802.11 Aggregation", {}},
    {1017, "Extended OpenFlow v1", {}},
    {1018, "Extended Fibre Channel", {}},
    {1019, "Extended Queue Length", {}},
    {1020, "Extended NAT Port", {kSampledPorts}},
    {1021, "Extended Layer 2 Tunnel Egress", {kSampledEthernet}},
    {1022, "Extended Layer 2 Tunnel Ingress", {kSampledEthernet}},
    {1023, "Extended IPv4 Tunnel Egress", {kSampledIp, kAddressPair4, kSampledPorts, kSampledService}},
    {1024, "Extended IPv4 Tunnel Ingress", {kSampledIp, kAddressPair4, kSampledPorts, kSampledService}},
    {1025, "Extended IPv6 Tunnel Egress", {kSampledIp, kAddressPair6, kSampledPorts, kSampledPriority}},
    {1026, "Extended IPv6 Tunnel Ingress", {kSampledIp, kAddressPair6, kSampledPorts, kSampledPriority}},
    {1027, "Extended Decapsulate Egress", {kHeaderOffset}},
    {1028, "Extended Decapsulate Ingress", {kHeaderOffset}},
    {1029, "Extended VNI Egress", {kVni}},
    {1030, "Extended VNI Ingress", {kVni}},
    {1031, "Extended InfiniBand LRH", {}},
    {1032, "Extended InfiniBand GRH", {}},
    {1033, "Extended InfiniBand BTH", {}},
    {1034, "Extended VLAN In", {}},
    {1035, "Extended VLAN Out", {}},
    {1036, "Extended Egress Queue", {kQueue}},
    {1037, "Extended ACL", {kAclNumber, String("ACL Name"), kAclDirection}},
    {1038, "Extended Function", {String("Symbol")}},
    {1039, "Extended Transit", {kDelay}},
    {1040, "Extended Queue", {kDepth}},
    {2100, "Extended Socket IPv4", {kProtocol, kSocketPair4, kSocketPorts}},
    {2101, "Extended Socket IPv6", {kProtocol, kSocketPair6, kSocketPorts}},
    {2102, "Extended Proxy Socket IPv4", {kProtocol, kSocketPair4, kSocketPorts}},
    {2103, "Extended Proxy Socket IPv6", {kProtocol, kSocketPair6, kSocketPorts}},
    {2202, "Application Operation", {String("Application"), String("Operation"), String("Attributes"),
                                     String("Status Description"), kAppResult}},
    {2203, "Application Parent Context", {String("Application"), String("Operation"), String("Attributes")}},
    {2204, "Application Initiator", {String("Actor")}},
    {2205, "Application Target", {String("Actor")}},
    {2206, "HTTP Request", {kHttpMethod, String("URI"), String("Host"), String("Referrer"), String("User Agent"),
                            String("X-Forwarded-For"), String("Authenticated User"), String("MIME Type"), kHttpResult}},
    {2207, "Extended Proxy Request", {String("URI"), String("Host")}},
    {2209, "Extended TCP Information", {kTcpInfo}},
};

constexpr Record kCounterRecords[] = {
    {1, "Generic Interface Counters", {kInterface, kStatus, kInterfaceCounters}},
    {2, "Ethernet Interface Counters", {kEthernetCounters}},
    {3, "Token Ring Counters", {kTokenRingCounters}},
    {4, "100BaseVG Interface Counters", {kVgCounters}},
    {5, "VLAN Counters", {kVlanCounters}},
    {6, "IEEE 802.11 Counters", {kWirelessCounters}},
    {7, "LAG Port Statistics", {kLagCounters}},
    {8, "Slow Path Counts", {}},
    {9, "InfiniBand Counters", {}},
    {10, "Optical SFP/QSFP Counters", {}},
    {1001, "Processor Information", {kProcessorCounters}},
    {1002, "Radio Utilization", {kRadioCounters}},
    {1004, "OpenFlow Port", {kOpenFlowPort}},
    {1005, "Port Name", {String("Port Name")}},
    {2000, "Host Description", {String("Host Name"), kHostSystem, String("Operating System Release")}},
    {2001, "Host Adapters", {{StepKind::kAdapters, "Adapter"}}},
    {2002, "Host Parent", {kHostParent}},
    {2003, "Host CPU", {kHostCpu}},
    {2004, "Host Memory", {kHostMemory}},
    {2005, "Host Disk I/O", {kHostDisk}},
    {2006, "Host Network I/O", {kHostNetwork}},
    {2007, "MIB-2 IP Group", {kIpGroup}},
    {2008, "MIB-2 ICMP Group", {kIcmpGroup}},
    {2009, "MIB-2 TCP Group", {kTcpGroup}},
    {2010, "MIB-2 UDP Group", {kUdpGroup}},
    {2100, "Virtual Node", {kVirtualNode}},
    {2101, "Virtual CPU", {kVirtualCpu}},
    {2102, "Virtual Memory", {kVirtualMemory}},
    {2103, "Virtual Disk I/O", {kVirtualDisk}},
    {2104, "Virtual Network I/O", {kHostNetwork}},
    {2201, "HTTP Counters", {kHttpCounters}},
    {2203, "Application Resources", {kAppResources}},
    {2206, "Application Workers", {kAppWorkers}},
    {2207, "Open vSwitch Datapath Statistics", {kDatapath}},
};

template <size_t kCount>
const Record* FindRecord(const Record (&records)[kCount], uint32_t format) {
  for (const Record& record : records) {
    if (record.format == format) return &record;
  }
  return nullptr;
}
const Record* FindRecord(uint32_t format, bool isCounters) {
  return isCounters ? FindRecord(kCounterRecords, format) : FindRecord(kFlowRecords, format);
}

void ShowString(const Place& in, Cursor& c, const char* label) {
  const Field length = TakeU32(c);
  AddLine(in, length, "%s Length: %u", label, length.value);
  Cursor inner = TakeCursor(c, length.value);
  const Field text = Rest(inner);
  AddLine(in, text, "%s: %s", label, Text(text));
  const int32_t fill = static_cast<int32_t>((0u - length.value) & 3);
  if (fill && Left(c) >= fill) {
    const Field padding = TakeBytes(c, fill);
    AddLine(in, padding, "Padding: %s", HexText(padding));
  }
}

void ShowAddress(const Place& in, Cursor& c, const char* label) {
  const Field type = TakeU32(c);
  AddLine(in, type, "%s Type: %u = %s", label, type.value, LookupName(kAddressTypeNames, type.value));
  if (type.value == 1 || type.value == 2) {
    const Field address = TakeBytes(c, type.value == 1 ? 4 : 16);
    if (type.value == 1) AddLine(in, address, "%s: %s", label, IPv4Text(address.bytes));
    if (type.value == 2) AddLine(in, address, "%s: %s", label, IPv6Text(address.bytes));
  }
}

void ShowNumbers(const Place& in, Cursor& c, const char* label) {
  const Field count = TakeU32(c);
  AddLine(in, count, "%s Count: %u", label, count.value);
  Loop loop;
  for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop); ++i) {
    const Field number = TakeU32(c);
    AddLine(in, number, "%s: %u", label, number.value);
  }
}

// Version 2 has a path of systems, the later ones segments with a type.
void ShowPath(const Place& in, Cursor& c, const char* label, uint32_t version) {
  if (version == 2) return ShowNumbers(in, c, label);
  const Field segments = TakeU32(c);
  AddLine(in, segments, "%s Segments: %u", label, segments.value);
  Loop loop;
  for (uint32_t i = 0; i < segments.value && MoreAt(in, c, loop); ++i) {
    const Field type = TakeU32(c);
    AddLine(in, type, "%s Segment Type: %u = %s", label, type.value, LookupName(kSegmentNames, type.value));
    ShowNumbers(in, c, label);
  }
}

void ShowAdapters(const Place& in, Cursor& c) {
  const Field count = TakeU32(c);
  AddLine(in, count, "Adapters: %u", count.value);
  Loop loop;
  for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop); ++i) {
    const Field index = TakeU32(c), addresses = TakeU32(c);
    AddLine(in, index, "Interface Index: %u", index.value);
    AddLine(in, addresses, "MAC Addresses: %u", addresses.value);
    Loop each;
    for (uint32_t j = 0; j < addresses.value && MoreAt(in, c, each); ++j) {
      const Field address = TakeBytes(c, 6);
      AddLine(in, address, "MAC Address: %s", MacText(address.bytes));
      TakeBytes(c, 2);
    }
  }
}

void ShowRecord(const Place& in, Cursor& c, const Record* record, uint32_t version) {
  if (!record) return;
  Plain nothing{};
  for (const Step& step : record->steps) {
    if (step.sinceVersion > version) continue;
    switch (step.kind) {
      case StepKind::kNone: return;
      case StepKind::kRows: ShowRows<Plain>(in, c, step.rows, nothing); break;
      case StepKind::kString: ShowString(in, c, step.label); break;
      case StepKind::kAddress: ShowAddress(in, c, step.label); break;
      case StepKind::kNumbers: ShowNumbers(in, c, step.label); break;
      case StepKind::kPath: ShowPath(in, c, step.label, version); break;
      case StepKind::kAdapters: ShowAdapters(in, c); break;
    }
  }
}

}  // namespace

const char* RecordName(uint32_t format, bool isCounters) {
  const Record* record = FindRecord(format, isCounters);
  return record ? record->name : kUnknown;
}

void AddFormat(const Place& in, const Field& format, uint32_t enterprise, uint32_t number, const char* name) {
  const BitPicture upper = BitsOf(format, 0, 20), lower = BitsOf(format, 20, 12);
  AddBitLine(in, format, "%s: Enterprise = %u (%s)", upper.picture, enterprise, enterprise ? kUnknown : "sFlow");
  AddBitLine(in, format, "%s: Format = %u (%s)", lower.picture, number, name);
}

void ShowFlowRecord(const Place& in, Cursor& c, uint32_t format, uint32_t version) {
  ShowRecord(in, c, FindRecord(format, false), version);
}

void ShowCounters(const Place& in, Cursor& c, uint32_t format) { ShowRecord(in, c, FindRecord(format, true), 5); }

}  // namespace qxview::sflow
