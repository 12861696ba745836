// The messages of CAPWAP and what their elements hold (RFC 5415 4.5, 4.6; RFC 5416 6).
#include "core/elements.h"
#include "decoders/net/capwap.h"

namespace qxview {
namespace {

constexpr uint32_t kWirelessMessages = 13277 * 256;

constexpr auto kMessageNames = SortedNames({
    {1, "Discovery Request"}, {2, "Discovery Response"}, {3, "Join Request"}, {4, "Join Response"},
    {5, "Configuration Status Request"}, {6, "Configuration Status Response"}, {7, "Configuration Update Request"},
    {8, "Configuration Update Response"}, {9, "WTP Event Request"}, {10, "WTP Event Response"},
    {11, "Change State Event Request"}, {12, "Change State Event Response"}, {13, "Echo Request"}, {14,
    "Echo Response"},
    {15, "Image Data Request"}, {16, "Image Data Response"}, {17, "Reset Request"}, {18, "Reset Response"},
    {19, "Primary Discovery Request"}, {20, "Primary Discovery Response"}, {21, "Data Transfer Request"},
    {22, "Data Transfer Response"}, {23, "Clear Configuration Request"}, {24, "Clear Configuration Response"},
    {25, "Station Configuration Request"}, {26, "Station Configuration Response"},
    {kWirelessMessages + 1, "IEEE 802.11 WLAN Configuration Request"},
    {kWirelessMessages + 2, "IEEE 802.11 WLAN Configuration Response"}});
constexpr auto kDiscoveryNames = SortedNames({
    {0, "Unknown"}, {1, "Static Configuration"}, {2, "DHCP"}, {3, "DNS"}, {4, "AC Referral"}});
constexpr auto kStateNames = SortedNames({{0, "Reserved"}, {1, "Enabled"}, {2, "Disabled"}});
constexpr auto kCauseNames = SortedNames({
    {0, "Normal"}, {1, "Radio Failure"}, {2, "Software Failure"}, {3, "Administratively Set"}});
constexpr auto kResultNames = SortedNames({
    {0, "Success"}, {1, "Failure, AC List Message Element Must Be Present"}, {2, "Success, NAT Detected"},
    {3, "Join Failure, Unspecified"}, {4, "Join Failure, Resource Depletion"}, {5, "Join Failure, Unknown Source"},
    {6, "Join Failure, Incorrect Data"}, {7, "Join Failure, Session ID Already in Use"},
    {8, "Join Failure, WTP Hardware Not Supported"}, {9, "Join Failure, Binding Not Supported"},
    {10, "Reset Failure, Unable to Reset"}, {11, "Reset Failure, Firmware Write Error"},
    {12, "Configuration Failure, Service Provided Anyhow"}, {13, "Configuration Failure, Service Not Provided"},
    {14, "Image Data Error, Invalid Checksum"}, {15, "Image Data Error, Invalid Data Length"},
    {16, "Image Data Error, Other Error"}, {17, "Image Data Error, Image Already Present"},
    {18, "Message Unexpected, Invalid in Current State"}, {19, "Message Unexpected, Unrecognized Request"},
    {20, "Failure, Missing Mandatory Message Element"}, {21, "Failure, Unrecognized Message Element"},
    {22, "Data Transfer Error, No Information to Transfer"}});
constexpr auto kBoardNames = SortedNames({
    {0, "WTP Model Number"}, {1, "WTP Serial Number"}, {2, "Board ID"}, {3, "Board Revision"}, {4,
    "Base MAC Address"}});
constexpr auto kDescriptorNames = SortedNames({
    {0, "Hardware Version"}, {1, "Active Software Version"}, {2, "Boot Version"}, {3, "Other Software Version"}});
constexpr auto kInformationNames = SortedNames({{4, "Hardware Version"}, {5, "Software Version"}});
constexpr auto kMacTypeNames = SortedNames({{0, "Local MAC"}, {1, "Split MAC"}, {2, "Both"}});
constexpr auto kFailureNames = SortedNames({
    {0, "Not Supported"}, {1, "AC Initiated"}, {2, "Link Failure"}, {3, "Software Failure"}, {4, "Hardware Failure"},
    {5, "Other Failure"}, {255, "Unknown"}});
constexpr auto kFallbackNames = SortedNames({{0, "Reserved"}, {1, "Enabled"}, {2, "Disabled"}});
constexpr auto kTransportNames = SortedNames({{1, "UDP-Lite"}, {2, "UDP"}});
constexpr auto kCongestionNames = SortedNames({{0, "Limited ECN"}, {1, "Full and Limited ECN"}});
constexpr auto kDataModeNames = SortedNames({{0, "Reserved"}, {1, "WTP Crash Data"}, {2, "WTP Memory Dump"}});
constexpr auto kDataTypeNames = SortedNames({
    {1, "Transfer Data Is Included"}, {2, "Last Transfer Data Block Is Included"}, {5, "An Error Occurred"}});
constexpr auto kTunnelNames = SortedNames({{0, "Local Bridging"}, {1, "802.3 Tunnel"}, {2, "802.11 Tunnel"}});
constexpr auto kAuthenticationNames = SortedNames({{0, "Open System"}, {1, "WEP Shared Key"}});
constexpr auto kDiversityNames = SortedNames({{0, "Disabled"}, {1, "Enabled"}});
constexpr auto kCombinerNames = SortedNames({{1, "Sectorized (Left)"}, {2, "Sectorized (Right)"}, {3, "Omni"}, {4,
    "MIMO"}});
constexpr auto kAssessmentNames = SortedNames({
    {1, "Energy Detect Only"}, {2, "Carrier Sense Only"}, {4, "Carrier Sense and Energy Detect"},
    {8, "Carrier Sense with Timer"}, {16, "High-Rate Carrier Sense and Energy Detect"}});
constexpr auto kBandMasks = SortedNames({
    {0x01, "5.15-5.25 GHz"}, {0x02, "5.25-5.35 GHz"}, {0x04, "5.725-5.825 GHz"}, {0x08, "5.47-5.725 GHz"},
    {0x10, "Lower Japanese 5.25 GHz"}, {0x20, "5.03-5.091 GHz"}, {0x40, "4.94-4.99 GHz"}});
// Of a WLAN and of a station, from the first bit on.
constexpr auto kCapabilityMasks = SortedNames({
    {0x0001, "Immediate Block Ack"}, {0x0002, "Delayed Block Ack"}, {0x0004, "DSSS-OFDM"}, {0x0010, "APSD"},
    {0x0020, "Short Slot Time"}, {0x0040, "QoS"}, {0x0080, "Spectrum Management"}, {0x0100, "Channel Agility"},
    {0x0200, "PBCC"}, {0x0400, "Short Preamble"}, {0x0800, "Privacy"}, {0x1000, "CF-Poll Request"},
    {0x2000, "CF-Pollable"}, {0x4000, "IBSS"}, {0x8000, "ESS"}});

struct Capwap {
  Field type, length, count;
};
constexpr auto kMessage = Rows<Capwap>({
    Number(4, "Message Type", kMessageNames).Note(": %s"), Number(1, "Sequence Number").Note(", Sequence %u"),
    Number(2, "Message Element Length").Into(&Capwap::length), Hex(1, "Flags")});

// Lists of vendor, type, length and data inside elements.
constexpr auto kVendorHead = Rows<Capwap>({Number(4, "Vendor Identifier")});
void ShowPart(const Place& at, Cursor& c, const Names& names, bool isText) {
  const int32_t length = static_cast<int32_t>(PeekU16(c, 6));
  Cursor part = TakeCursor(c, 8 + length);
  const char* name = names.NameOf(PeekU16(part, 4));
  const Place in = Under(at, AddLine(at, Ahead(part, Left(part)), "Part: %s", name));
  ShowRows(in, part, kVendorHead);
  const Field type = TakeU16(part), size = TakeU16(part), value = Rest(part);
  AddLine(in, type, "Part Type: %u = %s", type.value, name);
  AddLine(in, size, "Part Length: %u", size.value);
  if (!value.here) return;
  if (isText) {
    AddLine(in, value, "Part Value: %s", Text(value));
  } else {
    AddLine(in, value, "Part Value: %s", HexText(value));
  }
}

constexpr auto kAcDescriptor = Rows<Capwap>({
    Number(2, "Stations"), Number(2, "Station Limit"), Number(2, "Active WTPs"), Number(2, "Maximum WTPs"), Hex(1,
    "Security"),
    Bits(0, 5, "Reserved"), Flag(5, "Pre-Shared Secret"), Flag(6, "X.509 Certificate"), Bits(7, 1, "Reserved"),
    Number(1, "Radio MAC Field"), Number(1, "Reserved"), Hex(1, "DTLS Policy"), Bits(0, 5, "Reserved"),
    Flag(5, "DTLS Data Channel"), Flag(6, "Clear Text Data Channel"), Bits(7, 1, "Reserved")});
void ShowAcDescriptor(const Place& in, Cursor& c, Capwap&) {
  Loop loop;
  while (Left(c) >= 8 && MoreAt(in, c, loop)) ShowPart(in, c, kInformationNames, true);
}
constexpr auto kIPv4 = Rows<Capwap>({IPv4("AC Address")});
constexpr auto kIPv6 = Rows<Capwap>({IPv6("AC Address")});
void ShowIPv4List(const Place& in, Cursor& c, Capwap& out) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Capwap>(in, c, kIPv4, out);
}
void ShowIPv6List(const Place& in, Cursor& c, Capwap& out) {
  Loop loop;
  while (Left(c) >= 16 && MoreAt(in, c, loop)) ShowRows<Capwap>(in, c, kIPv6, out);
}
constexpr auto kText = Rows<Capwap>({Utf8(0, nullptr).Note(": %s")});
constexpr auto kPriorityName = Rows<Capwap>({Number(1, "AC Name Priority"), Utf8(0, "AC Name").Note(": %s")});
constexpr auto kTime = Rows<Capwap>({Number(4, "AC Timestamp", " seconds since 1900")});
constexpr auto kEntries = Rows<Capwap>({Number(1, "Entries").Into(&Capwap::count), Number(1,
    "MAC Length").Into(&Capwap::length)});
constexpr auto kEntry6 = Rows<Capwap>({Mac("MAC Address")});
constexpr auto kEntry = Rows<Capwap>({Bytes(0, "MAC Address").SizedBy(&Capwap::length)});
void ShowEntries(const Place& in, Cursor& c, Capwap& out) {
  ShowRows<Capwap>(in, c, kEntries, out);
  Loop loop;
  for (uint32_t i = 0; i < out.count.value && MoreAt(in, c, loop); ++i) {
    ShowRows<Capwap>(in, c, out.length.value == 6 ? RowSpan<Capwap>(kEntry6) : RowSpan<Capwap>(kEntry), out);
  }
}
constexpr auto kStationHead = Rows<Capwap>({Number(1, "Radio ID"), Number(1, "MAC Length").Into(&Capwap::length)});
constexpr auto kVlan = Rows<Capwap>({Utf8(0, "VLAN Name")});
void ShowStationHead(const Place& in, Cursor& c, Capwap& out) {
  ShowRows<Capwap>(in, c, kStationHead, out);
  ShowRows<Capwap>(in, c, out.length.value == 6 ? RowSpan<Capwap>(kEntry6) : RowSpan<Capwap>(kEntry), out);
}
void ShowAddStation(const Place& in, Cursor& c, Capwap& out) {
  ShowStationHead(in, c, out);
  if (Left(c) > 0) ShowRows<Capwap>(in, c, kVlan, out);
}
constexpr auto kControl4 = Rows<Capwap>({IPv4("IP Address").Note(": %s"), Number(2, "WTP Count")});
constexpr auto kControl6 = Rows<Capwap>({IPv6("IP Address").Note(": %s"), Number(2, "WTP Count")});
constexpr auto kTimers = Rows<Capwap>({Number(1, "Discovery", " seconds"), Number(1, "Echo Request", " seconds")});
constexpr auto kTransfer = Rows<Capwap>({
    Number(1, "Data Type", kDataTypeNames), Number(1, "Data Mode", kDataModeNames), Counted(2, Bytes(0, "Data"))});
constexpr auto kMode = Rows<Capwap>({Number(1, "Data Mode", kDataModeNames)});
constexpr auto kRadioRow = Rows<Capwap>({Number(1, "Radio ID").Note(": Radio %u")});
void ShowErrorReport(const Place& in, Cursor& c, Capwap& out) {
  ShowRows<Capwap>(in, c, kRadioRow, out);
  ShowEntries(in, c, out);
}
constexpr auto kPeriod = Rows<Capwap>({Number(1, "Radio ID").Note(": Radio %u"), Number(2, "Report Interval",
    " seconds")});
constexpr auto kDiscovery = Rows<Capwap>({Number(1, nullptr, kDiscoveryNames).Note(": %s")});
constexpr auto kDuplicate4 = Rows<Capwap>({
    IPv4("IP Address"), Number(1, "Status"), Number(1, "MAC Length").Into(&Capwap::length), Bytes(0,
    "MAC Address").SizedBy(&Capwap::length)});
constexpr auto kDuplicate6 = Rows<Capwap>({
    IPv6("IP Address"), Number(1, "Status"), Number(1, "MAC Length").Into(&Capwap::length), Bytes(0,
    "MAC Address").SizedBy(&Capwap::length)});
constexpr auto kSeconds = Rows<Capwap>({Number(4, nullptr, " seconds")});
constexpr auto kImage = Rows<Capwap>({Number(1, "Data Type", kDataTypeNames), Bytes(0, "Data")});
constexpr auto kIdentifier = Rows<Capwap>({Number(4, "Vendor Identifier"), Utf8(0, "Image Identifier")});
constexpr auto kInformation = Rows<Capwap>({Number(4, "File Size"), Bytes(16, "Hash")});
constexpr auto kLongest = Rows<Capwap>({Number(2, nullptr)});
constexpr auto kLocal4 = Rows<Capwap>({IPv4(nullptr).Note(": %s")});
constexpr auto kLocal6 = Rows<Capwap>({IPv6(nullptr).Note(": %s")});
constexpr auto kAdministrative = Rows<Capwap>({Number(1, "Radio ID").Note(": Radio %u"), Number(1,
    "Administrative State", kStateNames)});
constexpr auto kOperational = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Number(1, "Operational State", kStateNames), Number(1, "Cause",
    kCauseNames)});
constexpr auto kResult = Rows<Capwap>({Number(4, nullptr, kResultNames).Note(": %s")});
constexpr auto kReturned = Rows<Capwap>({Number(1, "Reason"), Counted(1, Bytes(0, "Message Element"))});
constexpr auto kBytes = Rows<Capwap>({Bytes(0, nullptr)});
constexpr auto kTimer = Rows<Capwap>({Number(2, nullptr, " seconds")});
constexpr auto kVendor = Rows<Capwap>({Number(4, "Vendor Identifier"), Number(2, "Vendor Element ID"), Bytes(0,
    "Vendor Data")});
constexpr auto kBoard = Rows<Capwap>({Number(4, "Board Vendor")});
constexpr auto kBoardPart = Rows<Capwap>({Number(2, "Board Data Type", kBoardNames).Into(&Capwap::type), Number(2,
    "Board Data Length").Into(&Capwap::length)});
constexpr auto kBoardText = Rows<Capwap>({Utf8(0, "Board Data Value").SizedBy(&Capwap::length)});
constexpr auto kBoardBytes = Rows<Capwap>({Bytes(0, "Base MAC Address").SizedBy(&Capwap::length)});
void ShowBoard(const Place& in, Cursor& c, Capwap& out) {
  ShowRows<Capwap>(in, c, kBoard, out);
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    ShowRows<Capwap>(in, c, kBoardPart, out);
    if (out.length.value) ShowRows<Capwap>(in, c,
        out.type.value == 4 ? RowSpan<Capwap>(kBoardBytes) : RowSpan<Capwap>(kBoardText), out);
  }
}
constexpr auto kDescriptor = Rows<Capwap>({
    Number(1, "Maximum Radios"), Number(1, "Radios in Use"), Number(1, "Encryption Elements").Into(&Capwap::count)});
constexpr auto kEncryption = Rows<Capwap>({
    Word(1), Bits(0, 3, "Reserved"), Bits(3, 5, "Wireless Binding ID"), Hex(2, "Encryption Capabilities")});
void ShowDescriptor(const Place& in, Cursor& c, Capwap& out) {
  ShowRows<Capwap>(in, c, kDescriptor, out);
  Loop loop, parts;
  for (uint32_t i = 0; i < out.count.value && MoreAt(in, c, loop); ++i) ShowRows<Capwap>(in, c, kEncryption, out);
  while (Left(c) >= 8 && MoreAt(in, c, parts)) ShowPart(in, c, kDescriptorNames, false);
}
constexpr auto kFallback = Rows<Capwap>({Number(1, nullptr, kFallbackNames).Note(": %s")});
constexpr auto kTunnel = Rows<Capwap>({
    Word(1), Bits(0, 4, "Reserved"), Flag(4, "Native Frame Tunnel"), Flag(5, "802.3 Frame Tunnel"), Flag(6,
    "Local Bridging"),
    Bits(7, 1, "Reserved")});
constexpr auto kMacType = Rows<Capwap>({Number(1, nullptr, kMacTypeNames).Note(": %s")});
constexpr auto kStatistics = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Number(1, "Last Failure Type", kFailureNames), Number(2, "Reset Count"),
    Number(2, "Software Failure Count"), Number(2, "Hardware Failure Count"), Number(2, "Other Failure Count"),
    Number(2, "Unknown Failure Count"), Number(2, "Configuration Update Count"), Number(2, "Channel Change Count"),
    Number(2, "Band Change Count"), Signed(2, "Current Noise Floor", " dBm")});
constexpr auto kReboot = Rows<Capwap>({
    Number(2, "Reboot Count"), Number(2, "AC Initiated Count"), Number(2, "Link Failure Count"),
    Number(2, "Software Failure Count"), Number(2, "Hardware Failure Count"), Number(2, "Other Failure Count"),
    Number(2, "Unknown Failure Count"), Number(1, "Last Failure Type", kFailureNames)});
constexpr auto kStatic = Rows<Capwap>({IPv4("IP Address"), IPv4("Netmask"), IPv4("Gateway"), Number(1, "Static",
    kFalseTrueNames)});
constexpr auto kTransport = Rows<Capwap>({Number(1, nullptr, kTransportNames).Note(": %s")});
constexpr auto kCongestion = Rows<Capwap>({Number(1, nullptr, kCongestionNames).Note(": %s")});

// ---- IEEE 802.11.

constexpr auto kAddWlan = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Number(1, "WLAN ID").Note(", WLAN %u"), Hex(2, "Capability"), Flag(0,
    "ESS"), Flag(1, "IBSS"),
    Flag(2, "CF-Pollable"), Flag(3, "CF-Poll Request"), Flag(4, "Privacy"), Flag(5, "Short Preamble"), Flag(6, "PBCC"),
    Flag(7, "Channel Agility"), Flag(8, "Spectrum Management"), Flag(9, "QoS"), Flag(10, "Short Slot Time"),
    Flag(11, "APSD"),
    Bits(12, 1, "Reserved"), Flag(13, "DSSS-OFDM"), Flag(14, "Delayed Block Ack"), Flag(15, "Immediate Block Ack"),
    Number(1, "Key Index"), Number(1, "Key Status"), Counted(2, Bytes(0, "Key")), Bytes(6, "Group TSC"), Number(1,
    "QoS"),
    Number(1, "Authentication Type", kAuthenticationNames), Number(1, "MAC Mode", kMacTypeNames),
    Number(1, "Tunnel Mode", kTunnelNames), Number(1, "Suppress SSID", kFalseTrueNames), Utf8(0, "SSID").Note(", %s")});
constexpr auto kAntenna = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Number(1, "Diversity", kDiversityNames), Number(1, "Combiner",
    kCombinerNames),
    Counted(1, Bytes(0, "Antenna Selection"))});
constexpr auto kAssigned = Rows<Capwap>({Number(1, "Radio ID").Note(": Radio %u"), Number(1,
    "WLAN ID").Note(", WLAN %u"), Mac("BSSID")});
constexpr auto kWlan = Rows<Capwap>({Number(1, "Radio ID").Note(": Radio %u"), Number(1, "WLAN ID").Note(", WLAN %u")});
constexpr auto kDirect = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Number(1, "Reserved"), Number(1, "Current Channel"),
    Number(1, "Current CCA", kAssessmentNames), Number(4, "Energy Detect Threshold")});
constexpr auto kElement = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Number(1, "WLAN ID").Note(", WLAN %u"), Word(1), Flag(0, "In Beacons"),
    Flag(1, "In Probe Responses"), Bits(2, 6, "Reserved"), Bytes(0, "Information Element")});
constexpr auto kOperation = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Number(1, "Reserved"), Number(2, "RTS Threshold"), Number(1,
    "Short Retry"),
    Number(1, "Long Retry"), Number(2, "Fragmentation Threshold"), Number(4, "Transmit MSDU Lifetime"),
    Number(4, "Receive MSDU Lifetime")});
constexpr auto kCountermeasures = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Number(1, "WLAN ID").Note(", WLAN %u"), Mac("MAC Address")});
constexpr auto kDomain = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Number(1, "Reserved"), Number(2, "First Channel"), Number(2, "Channels"),
    Number(2, "Maximum Transmit Power Level", " dBm")});
constexpr auto kOfdm = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Number(1, "Reserved"), Number(1, "Current Channel"),
    Flags(1, "Bands Supported", kBandMasks), Number(4, "TI Threshold")});
constexpr auto kRates = Rows<Capwap>({Number(1, "Radio ID").Note(": Radio %u"), Bytes(0, "Rates (0.5 Mbit/s)")});
constexpr auto kReport = Rows<Capwap>({
    Mac("Client MAC Address"), Mac("BSSID"), Number(1, "Radio ID").Note(": Radio %u"), Number(1,
    "WLAN ID").Note(", WLAN %u"),
    Number(2, "Reserved"), Number(4, "TKIP ICV Errors"), Number(4, "TKIP Local MIC Failures"),
    Number(4, "TKIP Remote MIC Failures"), Number(4, "CCMP Replays"), Number(4, "CCMP Decrypt Errors"), Number(4,
    "TKIP Replays")});
constexpr auto kStation = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Number(2, "Association ID"), Hex(1, "Flags"), Mac("MAC Address"),
    Flags(2, "Capabilities", kCapabilityMasks),
    Number(1, "WLAN ID").Note(", WLAN %u"), Bytes(0, "Supported Rates (0.5 Mbit/s)")});
constexpr auto kProfile = Rows<Capwap>({Mac("MAC Address"), Word(2), Bits(0, 13, "Reserved"), Bits(13, 3,
    "802.1p Priority")});
constexpr auto kSession = Rows<Capwap>({
    Mac("MAC Address"), Hex(2, "Flags"), Flag(0, "AKM Only"), Flag(1, "Controller Encrypts"), Bits(2, 14, "Reserved"),
    Bytes(6, "Pairwise TSC"), Bytes(6, "Pairwise RSC"), Bytes(0, "Key")});
constexpr auto kCounters = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Bytes(3, "Reserved"), Number(4, "Transmitted Fragments"), Number(4,
    "Multicast Transmitted"),
    Number(4, "Failed"), Number(4, "Retries"), Number(4, "Multiple Retries"), Number(4, "Duplicate Frames"),
    Number(4, "RTS Successes"),
    Number(4, "RTS Failures"), Number(4, "ACK Failures"), Number(4, "Received Fragments"), Number(4,
    "Multicast Received"),
    Number(4, "FCS Errors"), Number(4, "Transmitted Frames"), Number(4, "Decryption Errors"), Number(4,
    "Discarded QoS Fragments"),
    Number(4, "Associated Stations"), Number(4, "QoS CF Polls Received"), Number(4, "QoS CF Polls Unused"),
    Number(4, "QoS CF Polls Unusable")});
constexpr auto kPower = Rows<Capwap>({Number(1, "Radio ID").Note(": Radio %u"), Number(1, "Reserved"), Number(2,
    "Current Transmit Power", " mW")});
void ShowLevels(const Place& in, Cursor& c, Capwap& out) {
  constexpr auto kHead = Rows<Capwap>({Number(1, "Radio ID").Note(": Radio %u"), Number(1,
      "Power Levels").Into(&Capwap::count)});
  constexpr auto kLevel = Rows<Capwap>({Number(2, "Power Level", " mW")});
  ShowRows<Capwap>(in, c, kHead, out);
  Loop loop;
  for (uint32_t i = 0; i < out.count.value && MoreAt(in, c, loop); ++i) ShowRows<Capwap>(in, c, kLevel, out);
}
constexpr auto kQueue = Rows<Capwap>({
    Number(1, "Queue Depth"), Number(2, "CWMin"), Number(2, "CWMax"), Number(1, "AIFS"), Word(1), Bits(0, 5,
    "802.1p Tag"),
    Bits(5, 3, "Reserved"), Word(1), Bits(0, 2, "Reserved"), Bits(2, 6, "DSCP Tag")});
constexpr auto kQualityHead = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Hex(1, "Tagging Policy")});
void ShowQuality(const Place& in, Cursor& c, Capwap& out) {
  ShowRows<Capwap>(in, c, kQualityHead, out);
  Loop loop;
  while (Left(c) >= 8 && MoreAt(in, c, loop)) ShowRows<Capwap>(in, c, kQueue, out);
}
constexpr auto kUpdateQos = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Mac("MAC Address"), Word(1), Bits(0, 5, "802.1p Tag"), Bits(5, 3,
    "Reserved"), Word(1),
    Bits(0, 2, "Reserved"), Bits(2, 6, "DSCP Tag")});
constexpr auto kUpdateWlan = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Number(1, "WLAN ID").Note(", WLAN %u"),
    Flags(2, "Capability", kCapabilityMasks), Number(1, "Key Index"),
    Number(1, "Key Status"), Counted(2, Bytes(0, "Key"))});
constexpr auto kConfiguration = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Number(1, "Short Preamble", kFalseTrueNames), Number(1, "BSSIDs"),
    Number(1, "DTIM Period"),
    Mac("BSSID"), Number(2, "Beacon Period", " TU"), Text(4, "Country")});
constexpr auto kAlarm = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Number(1, "Failure Type"), Number(1, "Status"), Number(1, "Pad")});
constexpr auto kRadio = Rows<Capwap>({
    Number(1, "Radio ID").Note(": Radio %u"), Hex(4, "Radio Type"), Flag(28, "802.11n"), Flag(29, "802.11g"),
    Flag(30, "802.11a"),
    Flag(31, "802.11b")});

constexpr auto kElements = Choices<Capwap>({
    {1, "AC Descriptor", kAcDescriptor, ShowAcDescriptor}, {2, "AC IPv4 List", {}, ShowIPv4List},
    {3, "AC IPv6 List", {}, ShowIPv6List}, {4, "AC Name", kText}, {5, "AC Name with Priority", kPriorityName},
    {6, "AC Timestamp", kTime}, {7, "Add MAC ACL Entry", {}, ShowEntries}, {8, "Add Station", {}, ShowAddStation},
    {10, "CAPWAP Control IPv4 Address", kControl4}, {11, "CAPWAP Control IPv6 Address", kControl6},
    {12, "CAPWAP Timers", kTimers}, {13, "Data Transfer Data", kTransfer}, {14, "Data Transfer Mode", kMode},
    {15, "Decryption Error Report", {}, ShowErrorReport}, {16, "Decryption Error Report Period", kPeriod},
    {17, "Delete MAC ACL Entry", {}, ShowEntries}, {18, "Delete Station", {}, ShowStationHead},
    {20, "Discovery Type", kDiscovery}, {21, "Duplicate IPv4 Address", kDuplicate4},
    {22, "Duplicate IPv6 Address", kDuplicate6}, {23, "Idle Timeout", kSeconds}, {24, "Image Data", kImage},
    {25, "Image Identifier", kIdentifier}, {26, "Image Information", kInformation}, {27, "Initiate Download"},
    {28, "Location Data", kText}, {29, "Maximum Message Length", kLongest}, {30, "CAPWAP Local IPv4 Address", kLocal4},
    {31, "Radio Administrative State", kAdministrative}, {32, "Radio Operational State", kOperational},
    {33, "Result Code", kResult}, {34, "Returned Message Element", kReturned}, {35, "Session ID", kBytes},
    {36, "Statistics Timer", kTimer}, {37, "Vendor Specific Payload", kVendor}, {38, "WTP Board Data", {}, ShowBoard},
    {39, "WTP Descriptor", {}, ShowDescriptor}, {40, "WTP Fallback", kFallback}, {41, "WTP Frame Tunnel Mode", kTunnel},
    {44, "WTP MAC Type", kMacType}, {45, "WTP Name", kText}, {47, "WTP Radio Statistics", kStatistics},
    {48, "WTP Reboot Statistics", kReboot}, {49, "WTP Static IP Address Information", kStatic},
    {50, "CAPWAP Local IPv6 Address", kLocal6}, {51, "CAPWAP Transport Protocol", kTransport},
    {52, "MTU Discovery Padding", kBytes}, {53, "ECN Support", kCongestion}, {1024, "IEEE 802.11 Add WLAN", kAddWlan},
    {1025, "IEEE 802.11 Antenna", kAntenna}, {1026, "IEEE 802.11 Assigned WTP BSSID", kAssigned},
    {1027, "IEEE 802.11 Delete WLAN", kWlan}, {1028, "IEEE 802.11 Direct Sequence Control", kDirect},
    {1029, "IEEE 802.11 Information Element", kElement}, {1030, "IEEE 802.11 MAC Operation", kOperation},
    {1031, "IEEE 802.11 MIC Countermeasures", kCountermeasures}, {1032, "IEEE 802.11 Multi-Domain Capability", kDomain},
    {1033, "IEEE 802.11 OFDM Control", kOfdm}, {1034, "IEEE 802.11 Rate Set", kRates},
    {1035, "IEEE 802.11 RSNA Error Report from Station", kReport}, {1036, "IEEE 802.11 Station", kStation},
    {1037, "IEEE 802.11 Station QoS Profile", kProfile}, {1038, "IEEE 802.11 Station Session Key", kSession},
    {1039, "IEEE 802.11 Statistics", kCounters}, {1040, "IEEE 802.11 Supported Rates", kRates},
    {1041, "IEEE 802.11 Transmit Power", kPower}, {1042, "IEEE 802.11 Transmit Power Level", {}, ShowLevels},
    {1043, "IEEE 802.11 Update Station QoS", kUpdateQos}, {1044, "IEEE 802.11 Update WLAN", kUpdateWlan},
    {1045, "IEEE 802.11 WTP Quality of Service", {}, ShowQuality},
    {1046, "IEEE 802.11 WTP Radio Configuration", kConfiguration},
    {1047, "IEEE 802.11 WTP Radio Fail Alarm Indication", kAlarm}, {1048, "IEEE 802.11 WTP Radio Information",
    kRadio}});

}  // namespace

void ShowCapwapElements(const Place& in, Cursor& c) {
  constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2};
  Capwap out{};
  ShowElements<Capwap>(in, c, kForm, "Message Element", kElements, out);
  AddBlock(in, Rest(c), "Data");
}

void ShowCapwapMessage(const Place& in, Cursor& c) {
  constexpr int32_t kCounted = 3;   // the length counts from behind the sequence number
  const Capwap message = ShowRows(in, c, kMessage);
  Cursor elements = TakeCursor(c, static_cast<int64_t>(message.length.value) - kCounted);
  ShowCapwapElements(in, elements);
}

}  // namespace qxview
