// LLDP elements of organizations: IEEE 802.1 (802.1Q annex D), IEEE 802.3 (802.3 clause 79), telephony (TIA-1057), PROFINET
// (IEC 61158-6-10), manufacturer usage descriptions (RFC 8520) and what makers have published.
#include "decoders/common/location.h"
#include "decoders/link/lldp.h"

namespace qxview {
namespace {

constexpr auto kOrganizationNames = SortedNames({
    {0x00005E, "IANA"}, {0x000142, "Cisco"}, {0x00040D, "Avaya"}, {0x00055D, "D-Link"}, {0x0008F1, "Volktek"},
    {0x000B86, "Aruba"}, {0x000ECF, "PROFINET"}, {0x00120F, "IEEE 802.3"}, {0x0012BB, "TIA Telecommunications"},
    {0x001B21, "Data Center Bridging"}, {0x0080C2, "IEEE 802.1"}, {0x009069, "Juniper"}, {0x00E02B, "Extreme"},
    {0x30B216, "Hytec Geraetebau"}, {0x8CFDF0, "Qualcomm"}, {0xA42305, "ONOS"}});

// --- IEEE 802.1 ---

constexpr auto kPortVlan = Rows<Lldp>({Number(2, "Port VLAN ID").Note(", %u")});
constexpr auto kProtocolVlan = Rows<Lldp>({
    Hex(1, "Flags"), Bits(0, 5, "Reserved"), Flag(5, "Port and Protocol VLAN Enabled"),
    Flag(6, "Port and Protocol VLAN Supported"), Bits(7, 1, "Reserved 0"),
    Number(2, "Port and Protocol VLAN ID").Note(", %u")});
constexpr auto kVlanName = Rows<Lldp>({
    Number(2, "VLAN ID").Note(", %u"), Number(1, "VLAN Name Length"), Utf8(0, "VLAN Name").Note(", %s")});
constexpr auto kProtocolIdentity = Rows<Lldp>({
    Number(1, "Protocol Identity Length").Into(&Lldp::size), Bytes(0, "Protocol Identity").SizedBy(&Lldp::size)});
constexpr auto kUsageDigest = Rows<Lldp>({Hex(4, "VID Usage Digest")});
constexpr auto kManagementVlan = Rows<Lldp>({Number(2, "Management VLAN ID").Note(", %u")});
constexpr auto kPortTypeNames = SortedNames({
    {0, "Not Determined"}, {1, "From a Core Network"}, {2, "From an Aggregation"}, {3, "From an Access Network"}});
constexpr auto kAggregation1 = Rows<Lldp>({
    Hex(1, "Aggregation Status"), Bits(0, 4, "Reserved"), Bits(4, 2, "Port Type", kPortTypeNames),
    Flag(6, "Aggregated"), Flag(7, "Capable of Being Aggregated"), Number(4, "Aggregated Port ID")});
constexpr auto kCongestion = Rows<Lldp>({
    Hex(1, "Per-Priority CNPV Indicators"), Flag(0, "CNPV 7"), Flag(1, "CNPV 6"), Flag(2, "CNPV 5"), Flag(3, "CNPV 4"),
    Flag(4, "CNPV 3"), Flag(5, "CNPV 2"), Flag(6, "CNPV 1"), Flag(7, "CNPV 0"), Hex(1, "Per-Priority Ready Indicators"),
    Flag(0, "Ready 7"), Flag(1, "Ready 6"), Flag(2, "Ready 5"), Flag(3, "Ready 4"), Flag(4, "Ready 3"), Flag(5, "Ready 2"),
    Flag(6, "Ready 1"), Flag(7, "Ready 0")});
constexpr auto kReflectiveRelayStatusNames = SortedNames({
    {0, "Not Enabled"}, {1, "Enabled"}, {2, "Unknown"}, {3, "Reserved"}});
constexpr auto kModeNames = SortedNames({{0, "Not Supported"}, {1, "EVB Bridge"}, {2, "EVB Station"}, {3, "NVO3"}});
constexpr auto kEvb = Rows<Lldp>({
    Hex(1, "EVB Bridge Status"), Bits(0, 5, "Reserved"), Flag(5, "BGID"), Flag(6, "Reflective Relay Capable"),
    Flag(7, "Reflective Relay Enabled"), Hex(1, "EVB Station Status"), Bits(0, 4, "Station Reserved"), Flag(4, "SGID"),
    Flag(5, "Reflective Relay Requested"), Bits(6, 2, "Reflective Relay Status", kReflectiveRelayStatusNames),
    Hex(1, "ECP Retries"), Bits(0, 3, "R"), Bits(3, 5, "Retransmission Exponent"), Hex(1, "EVB Mode"),
    Bits(0, 2, "Mode", kModeNames),
    Flag(2, "Remote or Local Wait Delay"), Bits(3, 5, "Resource Wait Delay Exponent"), Hex(1, "Keepalive"),
    Flag(0, "Remote or Local Keepalive"), Bits(1, 2, "Keepalive Reserved"), Bits(3, 5, "Reinitialize Keepalive Exponent")});
constexpr auto kRoleNames = SortedNames({{0, "Bridge"}, {1, "Station"}});
constexpr auto kCdcp = Rows<Lldp>({
    Hex(2, "Role and Channels"), Bits(0, 1, "Role", kRoleNames),
    Bits(1, 3, "Reserved"), Flag(4, "S-Component"), Bits(5, 11, "Reserved 2"), Hex(2, "Channel Capacity"),
    Bits(0, 4, "Reserved 3"), Bits(4, 12, "S-Channels Supported")});
constexpr auto kChannel = Rows<Lldp>({Hex(3, "S-Channel"), Bits(0, 12, "S-Channel ID"), Bits(12, 12, "S-VID")});

void ShowChannels(const Place& in, Cursor& c, Lldp& lldp) {
  Loop loop;
  while (Left(c) >= 3 && MoreAt(in, c, loop)) ShowRows<Lldp>(in, c, kChannel, lldp);
}

// --- IEEE 802.3 ---

constexpr auto kTypeMasks = SortedNames({
    {0x0001, "1000BASE-T Full Duplex"}, {0x0002, "1000BASE-T Half Duplex"}, {0x0004, "1000BASE-X Full Duplex"},
    {0x0008, "1000BASE-X Half Duplex"}, {0x0010, "Asymmetric and Symmetric Pause"}, {0x0020, "Symmetric Pause"},
    {0x0040, "Asymmetric Pause"}, {0x0080, "Pause"}, {0x0100, "100BASE-T2 Full Duplex"}, {0x0200, "100BASE-T2 Half Duplex"},
    {0x0400, "100BASE-TX Full Duplex"}, {0x0800, "100BASE-TX Half Duplex"}, {0x1000, "100BASE-T4"},
    {0x2000, "10BASE-T Full Duplex"}, {0x4000, "10BASE-T Half Duplex"}, {0x8000, "Other or Unknown"}});
constexpr auto kMauNames = SortedNames({
    {0, "Other or Unknown"}, {1, "AUI"}, {2, "10BASE-5"}, {3, "FOIRL"}, {4, "10BASE-2"}, {5, "10BASE-T Duplex Unknown"},
    {6, "10BASE-FP"}, {7, "10BASE-FB"}, {8, "10BASE-FL Duplex Unknown"}, {9, "10BROAD36"}, {10, "10BASE-T Half Duplex"},
    {11, "10BASE-T Full Duplex"}, {12, "10BASE-FL Half Duplex"}, {13, "10BASE-FL Full Duplex"}, {14, "100BASE-T4"},
    {15, "100BASE-TX Half Duplex"}, {16, "100BASE-TX Full Duplex"}, {17, "100BASE-FX Half Duplex"},
    {18, "100BASE-FX Full Duplex"}, {19, "100BASE-T2 Half Duplex"}, {20, "100BASE-T2 Full Duplex"},
    {21, "1000BASE-X Half Duplex"}, {22, "1000BASE-X Full Duplex"}, {23, "1000BASE-LX Half Duplex"},
    {24, "1000BASE-LX Full Duplex"}, {25, "1000BASE-SX Half Duplex"}, {26, "1000BASE-SX Full Duplex"},
    {27, "1000BASE-CX Half Duplex"}, {28, "1000BASE-CX Full Duplex"}, {29, "1000BASE-T Half Duplex"},
    {30, "1000BASE-T Full Duplex"}, {31, "10GBASE-X"}, {32, "10GBASE-LX4"}, {33, "10GBASE-R"}, {34, "10GBASE-ER"},
    {35, "10GBASE-LR"}, {36, "10GBASE-SR"}, {37, "10GBASE-W"}, {38, "10GBASE-EW"}, {39, "10GBASE-LW"}, {40, "10GBASE-SW"},
    {41, "10GBASE-CX4"}, {42, "2BASE-TL"}, {43, "10PASS-TS"}, {44, "100BASE-BX10-D"}, {45, "100BASE-BX10-U"},
    {46, "100BASE-LX10"}, {47, "1000BASE-BX10-D"}, {48, "1000BASE-BX10-U"}, {49, "1000BASE-LX10"}, {50, "1000BASE-PX10-D"},
    {51, "1000BASE-PX10-U"}, {52, "1000BASE-PX20-D"}, {53, "1000BASE-PX20-U"}, {54, "10GBASE-T"}, {55, "10GBASE-LRM"},
    {56, "1000BASE-KX"}, {57, "10GBASE-KX4"}, {58, "10GBASE-KR"}, {59, "10/1GBASE-PRX-D1"}, {60, "10/1GBASE-PRX-D2"},
    {61, "10/1GBASE-PRX-D3"}, {62, "10/1GBASE-PRX-U1"}, {63, "10/1GBASE-PRX-U2"}, {64, "10/1GBASE-PRX-U3"},
    {65, "10GBASE-PR-D1"}, {66, "10GBASE-PR-D2"}, {67, "10GBASE-PR-D3"}, {68, "10GBASE-PR-U1"}, {69, "10GBASE-PR-U3"},
    {70, "40GBASE-KR4"}, {71, "40GBASE-CR4"}, {72, "40GBASE-SR4"}, {73, "40GBASE-FR"}, {74, "40GBASE-LR4"},
    {75, "100GBASE-CR10"}, {76, "100GBASE-SR10"}, {77, "100GBASE-LR4"}, {78, "100GBASE-ER4"}, {79, "1000BASE-T1"},
    {80, "1000BASE-PX30-D"}, {81, "1000BASE-PX30-U"}, {82, "1000BASE-PX40-D"}, {83, "1000BASE-PX40-U"},
    {84, "10/1GBASE-PRX-D4"}, {85, "10/1GBASE-PRX-U4"}, {86, "10GBASE-PR-D4"}, {87, "10GBASE-PR-U4"}, {88, "25GBASE-CR"},
    {89, "25GBASE-CR-S"}, {90, "25GBASE-KR"}, {91, "25GBASE-KR-S"}, {92, "25GBASE-R"}, {93, "25GBASE-SR"},
    {94, "25GBASE-T"}, {95, "40GBASE-ER4"}, {96, "40GBASE-R"}, {97, "40GBASE-T"}, {98, "100GBASE-CR4"}, {99, "100GBASE-KR4"},
    {100, "100GBASE-KP4"}, {101, "100GBASE-R"}, {102, "100GBASE-SR4"}, {103, "2.5GBASE-T"}, {104, "5GBASE-T"},
    {105, "100BASE-T1"}, {106, "1000BASE-RHA"}, {107, "1000BASE-RHB"}, {108, "1000BASE-RHC"}, {109, "2.5GBASE-KX"},
    {110, "2.5GBASE-X"}, {111, "5GBASE-KR"}, {112, "5GBASE-R"}, {113, "10GPASS-XR"}, {114, "25GBASE-LR"},
    {115, "25GBASE-ER"}, {116, "50GBASE-R"}, {117, "50GBASE-CR"}, {118, "50GBASE-KR"}, {119, "50GBASE-SR"},
    {120, "50GBASE-FR"}, {121, "50GBASE-LR"}, {122, "50GBASE-ER"}, {123, "100GBASE-CR2"}, {124, "100GBASE-KR2"},
    {125, "100GBASE-SR2"}, {126, "100GBASE-DR"}, {127, "200GBASE-R"}, {128, "200GBASE-DR4"}, {129, "200GBASE-FR4"},
    {130, "200GBASE-LR4"}, {131, "200GBASE-CR4"}, {132, "200GBASE-KR4"}, {133, "200GBASE-SR4"}, {134, "200GBASE-ER4"},
    {135, "400GBASE-R"}, {136, "400GBASE-SR16"}, {137, "400GBASE-DR4"}, {138, "400GBASE-FR8"}, {139, "400GBASE-LR8"},
    {140, "400GBASE-ER8"}, {141, "10BASE-T1L"}, {142, "10BASE-T1S Half Duplex"}, {143, "10BASE-T1S Multidrop"},
    {144, "10BASE-T1S Full Duplex"}});
constexpr auto kClassNames = SortedNames({{0, "PD"}, {1, "PSE"}});
constexpr auto kPairNames = SortedNames({{1, "Signal"}, {2, "Spare"}});
constexpr auto kPowerClassNames = SortedNames({{1, "Class 0"}, {2, "Class 1"}, {3, "Class 2"}, {4, "Class 3"},
    {5, "Class 4 and Above"}});
constexpr auto kPowerTypeNames = SortedNames({{0, "Type 2 PSE"}, {1, "Type 2 PD"}, {2, "Type 1 PSE"}, {3, "Type 1 PD"}});
constexpr auto kPowerSourceNames = SortedNames({
    {0, "Unknown"}, {1, "PSE or Primary"}, {2, "Local or Backup"}, {3, "PSE and Local"}});
constexpr auto kPriorityNames = SortedNames({{0, "Unknown"}, {1, "Critical"}, {2, "High"}, {3, "Low"}});
constexpr auto kPsePairNames = SortedNames({{0, "Not Powering"}, {1, "Powering 2-Pair"},
    {2, "Powering 4-Pair, Dual-Signature"},
                                            {3, "Powering 4-Pair, Single-Signature"}});

void ShowTenths(const Place& in, const Field& field, const char* label) {
  const uint32_t tenths = PeekU16(field);
  AddLine(in, field, "%s: %u.%u Watt", label, tenths / 10, tenths % 10);
}

constexpr auto kPhy = Rows<Lldp>({
    Hex(1, "Auto-Negotiation"), Bits(0, 6, "Reserved"), Flag(6, "Enabled"), Flag(7, "Supported"),
    Flags(2, "Advertised Capabilities", kTypeMasks), Number(2, "Operational MAU Type", kMauNames).Note(", %s")});
constexpr auto kPower = Rows<Lldp>({
    Hex(1, "MDI Power Support"), Bits(0, 4, "Reserved"), Flag(4, "PSE Pairs Controlled"), Flag(5, "PSE MDI Power Enabled"),
    Flag(6, "PSE MDI Power Supported"), Bits(7, 1, "Port Class", kClassNames), Number(1, "PSE Power Pair", kPairNames),
    Number(1, "Power Class", kPowerClassNames)});
constexpr auto kPowerMore = Rows<Lldp>({
    Hex(1, "Power Type, Source and Priority"), Bits(0, 2, "Power Type", kPowerTypeNames),
    Bits(2, 2, "Power Source", kPowerSourceNames), Bits(4, 1, "Reserved"), Flag(5, "PD 4PID"),
    Bits(6, 2, "Power Priority", kPriorityNames), Shown(2, "PD Requested Power", ShowTenths),
    Shown(2, "PSE Allocated Power", ShowTenths)});
constexpr auto kPowerFour = Rows<Lldp>({
    Shown(2, "PD Requested Power Mode A", ShowTenths), Shown(2, "PD Requested Power Mode B", ShowTenths),
    Shown(2, "PSE Allocated Power Alternative A", ShowTenths), Shown(2, "PSE Allocated Power Alternative B", ShowTenths),
    Hex(2, "Power Status"), Bits(0, 2, "PSE Powering Status", kPsePairNames), Bits(2, 2, "PD Powered Status"),
    Bits(4, 2, "PSE Power Pairs Extension"), Bits(6, 3, "Dual-Signature Power Class Mode A"),
    Bits(9, 3, "Dual-Signature Power Class Mode B"), Bits(12, 4, "Power Class Extension"), Hex(1, "System Setup"),
    Bits(0, 4, "Reserved"), Bits(4, 3, "Power Type Extension"), Flag(7, "PD Load"),
    Shown(2, "PSE Maximum Available Power", ShowTenths), Hex(1, "Autoclass"), Bits(0, 5, "Reserved"),
    Flag(5, "PSE Autoclass Support"), Flag(6, "Autoclass Completed"), Flag(7, "Autoclass Request"), Hex(3, "Power Down"),
    Bits(0, 6, "Power Down Request"), Bits(6, 18, "Power Down Time", " seconds")});
constexpr auto kFrameSize = Rows<Lldp>({Number(2, "Maximum Frame Size").Note(", %u")});
constexpr auto kEnergy = Rows<Lldp>({
    Number(2, "Transmit Tw_sys", " microseconds"), Number(2, "Receive Tw_sys", " microseconds"),
    Number(2, "Fallback Receive Tw_sys", " microseconds"), Number(2, "Echo Transmit Tw_sys", " microseconds"),
    Number(2, "Echo Receive Tw_sys", " microseconds")});
constexpr auto kFastWake = Rows<Lldp>({Hex(1, "Transmit Fast Wake"), Hex(1, "Receive Fast Wake"),
    Hex(1, "Echo Transmit Fast Wake"),
                                       Hex(1, "Echo Receive Fast Wake")});
constexpr auto kPreemption = Rows<Lldp>({
    Hex(2, "Additional Ethernet Capabilities"), Bits(0, 11, "Reserved"), Bits(11, 2, "Additional Fragment Size"),
    Flag(13, "Preemption Active"), Flag(14, "Preemption Enabled"), Flag(15, "Preemption Supported")});
constexpr auto kMeasurement = Rows<Lldp>({Bytes(0, "Power over Ethernet Measurements")});

void ShowPower(const Place& in, Cursor& c, Lldp& lldp) {
  if (Left(c) >= 5) ShowRows<Lldp>(in, c, kPowerMore, lldp);
  if (Left(c) >= 17) ShowRows<Lldp>(in, c, kPowerFour, lldp);
}

// --- telephony ---

constexpr auto kMedMasks = SortedNames({
    {0x0001, "LLDP-MED Capabilities"}, {0x0002, "Network Policy"}, {0x0004, "Location Identification"},
    {0x0008, "Extended Power via MDI-PSE"}, {0x0010, "Extended Power via MDI-PD"}, {0x0020, "Inventory"}});
constexpr auto kMedClassNames = SortedNames({
    {0, "Not Defined"}, {1, "Endpoint Class I"}, {2, "Endpoint Class II"}, {3, "Endpoint Class III"},
    {4, "Network Connectivity"}});
constexpr auto kPolicyNames = SortedNames({
    {0, "Reserved"}, {1, "Voice"}, {2, "Voice Signaling"}, {3, "Guest Voice"}, {4, "Guest Voice Signaling"},
    {5, "Softphone Voice"}, {6, "Video Conferencing"}, {7, "Streaming Video"}, {8, "Video Signaling"}});
constexpr auto kLocationNames = SortedNames({
    {0, "Invalid"}, {1, "Coordinate-Based LCI"}, {2, "Civic Address LCI"}, {3, "ECS ELIN"}});
constexpr auto kWhatNames = SortedNames({{0, "DHCP Server"}, {1, "Network Element"}, {2, "Client"}});
constexpr auto kMedPowerTypeNames = SortedNames({{0, "PSE Device"}, {1, "PD Device"}, {2, "Reserved"}, {3, "Reserved"}});
constexpr auto kMedSourceNames = SortedNames({{0, "Unknown"}, {1, "PSE or Primary"}, {2, "Local or Backup"},
    {3, "PSE and Local"}});

constexpr auto kMedCapabilities = Rows<Lldp>({
    Flags(2, "Capabilities", kMedMasks), Number(1, "Device Type", kMedClassNames).Note(", %s")});
constexpr auto kPolicy = Rows<Lldp>({
    Number(1, "Application Type", kPolicyNames).Note(", %s"), Hex(3, "Policy"), Flag(0, "Policy Unknown"), Flag(1, "Tagged"),
    Bits(2, 1, "Reserved"), Bits(3, 12, "VLAN ID"), Bits(15, 3, "Layer 2 Priority"), Bits(18, 6, "DSCP")});
constexpr auto kLocation = Rows<Lldp>({Number(1, "Location Data Format", kLocationNames).Note(", %s").Into(&Lldp::kind)});
constexpr auto kCivic = Rows<Lldp>({
    Number(1, "LCI Length"), Number(1, "What", kWhatNames), Text(2, "Country Code").Note(", %s")});
constexpr auto kPowerPriorityNames = SortedNames({{0, "Unknown"}, {1, "Critical"}, {2, "High"}, {3, "Low"}});
constexpr auto kMedPower = Rows<Lldp>({
    Hex(1, "Power"), Bits(0, 2, "Power Type", kMedPowerTypeNames), Bits(2, 2, "Power Source", kMedSourceNames),
    Bits(4, 4, "Power Priority", kPowerPriorityNames),
    Shown(2, "Power Value", ShowTenths)});
constexpr auto kText = Rows<Lldp>({Utf8(0, nullptr).Note(", %s")});

void ShowLocation(const Place& in, Cursor& c, Lldp& lldp) {
  if (lldp.kind.value == 1) {
    ShowGeoConfiguration(in, c);
  } else if (lldp.kind.value == 2) {
    ShowRows<Lldp>(in, c, kCivic, lldp);
    ShowCivicElements(in, c);
  } else if (lldp.kind.value == 3) {
    const Field number = Rest(c);
    AddLine(in, number, "ELIN: %s", Text(number));
  }
}

// --- makers ---

constexpr auto kDelays = Rows<Lldp>({
    Number(4, "Port Receive Delay Local", " nanoseconds"), Number(4, "Port Receive Delay Remote", " nanoseconds"),
    Number(4, "Port Transmit Delay Local", " nanoseconds"), Number(4, "Port Transmit Delay Remote", " nanoseconds"),
    Number(4, "Cable Delay Local", " nanoseconds")});
constexpr auto kRTClass3StateNames = SortedNames({
    {0, "Off"}, {1, "Reserved"}, {2, "Up"}, {3, "Down"}, {4, "Running"}});
constexpr auto kPortStatus = Rows<Lldp>({
    Hex(2, "RT Class 2 Port Status"), Hex(2, "RT Class 3 Port Status"), Bits(0, 2, "Reserved"),
    Flag(2, "Frame Preamble Length Optimized"), Flag(3, "Fragmentation Active"), Bits(4, 9, "Reserved 2"),
    Bits(13, 3, "RT Class 3 State", kRTClass3StateNames)});
constexpr auto kMrp = Rows<Lldp>({Bytes(16, "Domain UUID"), Hex(2, "MRRT Port Status")});
constexpr auto kPnMac = Rows<Lldp>({Mac("Chassis MAC Address").Note(", %s")});
constexpr auto kPtcp = Rows<Lldp>({Mac("Master Source Address"), Bytes(16, "Subdomain UUID"), Bytes(16, "IR Data UUID"),
                                   Word(4), Flag(0, "Length of Period Valid"), Bits(1, 31, "Length of Period"), Word(4),
                                   Flag(0, "Red Period Begin Valid"), Bits(1, 31, "Red Period Begin"), Word(4),
                                   Flag(0, "Orange Period Begin Valid"), Bits(1, 31, "Orange Period Begin"), Word(4),
                                   Flag(0, "Green Period Begin Valid"), Bits(1, 31, "Green Period Begin")});
constexpr auto kUuid = Rows<Lldp>({Bytes(16, nullptr)});
constexpr auto kManagementEntity = Rows<Lldp>({
    Number(1, "Address String Length"), Number(1, "Address Subtype"), Bytes(0, "Management Address")});
constexpr auto kTimeDomain = Rows<Lldp>({
    Number(2, "Time Domain Number"), Bytes(16, "Time Domain UUID"), Bytes(8, "Time Domain Master Identity")});
constexpr auto kCiscoPower = Rows<Lldp>({
    Hex(1, "Four-Wire Power via MDI"), Bits(0, 4, "Reserved"), Flag(4, "PD Requests Spare Pair Power"),
    Flag(5, "PD Spare Pair Desired State"), Flag(6, "Spare Pair Detection Required"), Flag(7, "Four-Pair PoE Supported")});
constexpr auto kAvayaElement = Rows<Lldp>({
    Bytes(32, "HMAC-SHA256 Digest"), Hex(3, "Element and Management VLAN"), Bits(0, 6, "Element Type"), Bits(6, 6, "State"),
    Bits(12, 12, "Management VLAN"), Hex(1, "Reserved"), Bytes(0, "System ID")});
constexpr auto kAvayaStatusNames = SortedNames({
    {0, "Reserved"}, {1, "Assignment Pending"}, {2, "Assignment Accepted"}, {3, "Rejected: Generic"},
    {4, "Rejected: Resources"}, {6, "Rejected: VLAN Invalid"}, {8, "Rejected: VLAN Unavailable"},
    {9, "Rejected: Application Interaction"}});
constexpr auto kAvayaDigest = Rows<Lldp>({Bytes(32, "HMAC-SHA256 Digest")});
constexpr auto kAvayaAssignment = Rows<Lldp>({
    Word(2), Bits(0, 4, "Assignment Status", kAvayaStatusNames), Bits(4, 12, "VLAN ID").Note(", VLAN %u"),
    Number(3, "I-SID").Note(" %u")});
constexpr auto kServer = Rows<Lldp>({IPv4("Server Address").Note(", %s")});
void ShowServers(const Place& in, Cursor& c, Lldp& lldp) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Lldp>(in, c, kServer, lldp);
}
constexpr auto kPhone = Rows<Lldp>({IPv4("IP Address").Note(", %s"), IPv4("Subnet Mask"), IPv4("Default Router")});
constexpr auto kFramingNames = SortedNames({{1, "Tagging"}, {2, "No Tagging"}, {3, "Automatic"}});
constexpr auto kFraming = Rows<Lldp>({Number(1, "Framing", kFramingNames).Note(", %s")});
void ShowAssignments(const Place& in, Cursor& c, Lldp& lldp) {
  Loop loop;
  while (Left(c) >= 5 && MoreAt(in, c, loop)) ShowRows<Lldp>(in, c, kAvayaAssignment, lldp);
}
constexpr auto kUrl = Rows<Lldp>({Utf8(0, "MUD URL").Note(", %s")});

constexpr auto kOrganizations = Choices<Lldp>({
    {LldpCode(0x00005E, 1), "Manufacturer Usage Description", kUrl},
    {LldpCode(0x000142, 1), "Four-Wire Power via MDI", kCiscoPower},
    {LldpCode(0x00040D, 3), "Call Server Addresses", {}, ShowServers},
    {LldpCode(0x00040D, 4), "IP Phone Addresses", kPhone}, {LldpCode(0x00040D, 5), "CNA Server Addresses", {}, ShowServers},
    {LldpCode(0x00040D, 6), "File Server Addresses", {}, ShowServers},
    {LldpCode(0x00040D, 7), "802.1Q Framing", kFraming},
    {LldpCode(0x00040D, 11), "Fabric Attach Element", kAvayaElement},
    {LldpCode(0x00040D, 12), "Fabric Attach Assignments", kAvayaDigest, ShowAssignments},
    {LldpCode(0x000ECF, 1), "Measured Delay Values", kDelays}, {LldpCode(0x000ECF, 2), "Port Status", kPortStatus},
    {LldpCode(0x000ECF, 3), "Alias", kText}, {LldpCode(0x000ECF, 4), "MRP Port Status", kMrp},
    {LldpCode(0x000ECF, 5), "Chassis MAC", kPnMac}, {LldpCode(0x000ECF, 6), "PTCP Status", kPtcp},
    {LldpCode(0x000ECF, 9), "TSN Domain", kUuid}, {LldpCode(0x000ECF, 10), "TSN Management Entity Address", kManagementEntity},
    {LldpCode(0x000ECF, 11), "TSN Management Entity Name UUID", kUuid},
    {LldpCode(0x000ECF, 12), "TSN Management Entity Parameter UUID", kUuid},
    {LldpCode(0x000ECF, 13), "TSN Time Domain", kTimeDomain},
    {LldpCode(0x00120F, 1), "MAC/PHY Configuration and Status", kPhy},
    {LldpCode(0x00120F, 2), "Power via MDI", kPower, ShowPower}, {LldpCode(0x00120F, 3), "Link Aggregation", kAggregation1},
    {LldpCode(0x00120F, 4), "Maximum Frame Size", kFrameSize}, {LldpCode(0x00120F, 5), "Energy-Efficient Ethernet", kEnergy},
    {LldpCode(0x00120F, 6), "Energy-Efficient Ethernet Fast Wake", kFastWake},
    {LldpCode(0x00120F, 7), "Additional Ethernet Capabilities", kPreemption},
    {LldpCode(0x00120F, 8), "Power via MDI Measurements", kMeasurement},
    {LldpCode(0x0012BB, 1), "LLDP-MED Capabilities", kMedCapabilities}, {LldpCode(0x0012BB, 2), "Network Policy", kPolicy},
    {LldpCode(0x0012BB, 3), "Location Identification", kLocation, ShowLocation},
    {LldpCode(0x0012BB, 4), "Extended Power via MDI", kMedPower}, {LldpCode(0x0012BB, 5), "Hardware Revision", kText},
    {LldpCode(0x0012BB, 6), "Firmware Revision", kText}, {LldpCode(0x0012BB, 7), "Software Revision", kText},
    {LldpCode(0x0012BB, 8), "Serial Number", kText}, {LldpCode(0x0012BB, 9), "Manufacturer Name", kText},
    {LldpCode(0x0012BB, 10), "Model Name", kText}, {LldpCode(0x0012BB, 11), "Asset ID", kText},
    {LldpCode(0x0080C2, 1), "Port VLAN ID", kPortVlan}, {LldpCode(0x0080C2, 2), "Port and Protocol VLAN ID", kProtocolVlan},
    {LldpCode(0x0080C2, 3), "VLAN Name", kVlanName}, {LldpCode(0x0080C2, 4), "Protocol Identity", kProtocolIdentity},
    {LldpCode(0x0080C2, 5), "VID Usage Digest", kUsageDigest}, {LldpCode(0x0080C2, 6), "Management VID", kManagementVlan},
    {LldpCode(0x0080C2, 7), "Link Aggregation", kAggregation1},
    {LldpCode(0x0080C2, 8), "Congestion Notification", kCongestion}, {LldpCode(0x0080C2, 13), "EVB", kEvb},
    {LldpCode(0x0080C2, 14), "CDCP", kCdcp, ShowChannels}, {LldpCode(0x0080C2, 15), "Port Extension"},
    {LldpCode(0x0080C2, 17), "LRP ECP Discovery"}, {LldpCode(0x0080C2, 18), "LRP TCP Discovery"},
    {LldpCode(0x0080C2, 19), "Congestion Isolation"}, {LldpCode(0x0080C2, 20), "Topology Recognition"}, {LldpCode(0x009069, 1), "Chassis Serial Number", kText}});

}  // namespace

const Choice<Lldp>* FindLldpOrganization(uint32_t code) {
  const Choice<Lldp>* choice = FindChoice<Lldp>(kOrganizations, code);
  return choice ? choice : FindLldpExchange(code);
}

const char* LldpOrganizationName(uint32_t oui) { return LookupName(kOrganizationNames, oui); }

}  // namespace qxview
