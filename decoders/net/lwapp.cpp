// Light weight access points and their controllers before CAPWAP (LWAPP, RFC 5412): the stations' frames, and control
// messages with their elements.
//
//   [access point's address]   version, radio, C, fragment   fragment ID   length   RSSI   SNR   then
//   control: message type, sequence, length, session, elements (type, length (2), value)      data: an 802.11 frame
#include "core/elements.h"
#include "decoders/net/capwap.h"

namespace qxview {
namespace {

constexpr auto kChannelNames = SortedNames({{0, "Data"}, {1, "Control"}});
constexpr auto kMessageNames = SortedNames({
    {1, "Discovery Request"}, {2, "Discovery Response"}, {3, "Join Request"}, {4, "Join Response"}, {5, "Join ACK"},
    {6, "Join Confirm"}, {10, "Configure Request"}, {11, "Configure Response"}, {12, "Configure Command Request"},
    {13, "Configure Command Response"}, {14, "Statistics Report"}, {15, "Statistics Report Response"},
    {16, "Change State Event Request"}, {17, "Change State Event Response"}, {22, "Echo Request"},
    {23, "Echo Response"}, {24, "Image Data Request"}, {25, "Image Data Response"}, {26, "Reset Request"},
    {27, "Reset Response"}, {30, "Key Update Request"}, {31, "Key Update Response"}, {32, "Primary Discovery Request"},
    {33, "Primary Discovery Response"}, {34, "Data Transfer Request"}, {35, "Data Transfer Response"},
    {36, "Clear Configuration Request"}});
constexpr auto kResultNames = SortedNames({{0, "Success"}, {1, "Failure"}});
constexpr auto kStateNames = SortedNames({{1, "Enabled"}, {2, "Disabled"}});
constexpr auto kCauseNames = SortedNames({
    {0, "Normal"}, {1, "Radio Failure"}, {2, "Software Failure"}, {3, "Administratively Set"}});
constexpr auto kDiscoveryNames = SortedNames({{0, "Broadcast"}, {1, "Configured"}});
constexpr auto kFailureNames = SortedNames({{0, "Link Failure"}, {1, "LWAPP Initiated"}, {2, "WTP Crash"}});
constexpr auto kTransferNames = SortedNames({{1, "WTP Crash Data"}, {2, "WTP Memory Dump"}});
constexpr auto kRadioMasks = SortedNames({{0x01, "802.11b/g"}, {0x02, "802.11a"}});

struct Lwapp {
  Field length, control, fragment, elements;
};
constexpr auto kIdentity = Rows<Lwapp>({Mac("Access Point Identity")});
constexpr auto kHeader = Rows<Lwapp>({
    Word(1), Bits(0, 2, "Version"), Bits(2, 3, "Radio ID"), Bits(5, 1, "Channel", kChannelNames).Into(&Lwapp::control),
    Flag(6, "Fragment").Into(&Lwapp::fragment), Flag(7, "Not the Last Fragment"), Number(1, "Fragment ID"),
    Number(2, "Length").Into(&Lwapp::length), Signed(1, "RSSI", " dBm"), Signed(1, "SNR", " dB")});
constexpr auto kControl = Rows<Lwapp>({
    Number(1, "Message Type", kMessageNames).Note(", %s"), Number(1, "Sequence Number"),
    Number(2, "Message Element Length").Into(&Lwapp::elements), Hex(4, "Session ID")});

// ---- What elements hold. Many begin with a radio's number.

constexpr auto kResult = Rows<Lwapp>({Number(4, nullptr, kResultNames).Note(": %s")});
constexpr auto kAddress = Rows<Lwapp>({Number(1, "Reserved"), Mac("MAC Address").Note(": %s")});
constexpr auto kDescriptor = Rows<Lwapp>({
    Hex(4, "Hardware Version"), Hex(4, "Software Version"), Hex(4, "Boot Version"), Number(1, "Maximum Radios"),
    Number(1, "Radios in Use"), Hex(2, "Encryption Capabilities")});
constexpr auto kRadio = Rows<Lwapp>({Number(1, "Radio").Note(": Radio %u"), Flags(1, "Radio Type", kRadioMasks)});
constexpr auto kText = Rows<Lwapp>({Utf8(0, nullptr).Note(": %s")});
constexpr auto kBytes = Rows<Lwapp>({Bytes(0, nullptr)});
constexpr auto kController = Rows<Lwapp>({
    Number(1, "Reserved"), Hex(4, "Hardware Version"), Hex(4, "Software Version"), Number(2, "Stations"),
    Number(2, "Station Limit"), Number(2, "Radios"), Number(2, "Maximum Radios"), Hex(1, "Security")});
constexpr auto kWlan = Rows<Lwapp>({Number(1, "Radio").Note(": Radio %u"), Number(2, "WLAN ID").Note(", WLAN %u")});
constexpr auto kErrors = Rows<Lwapp>({Number(1, "Radio").Note(": Radio %u"), Number(1, "Entries")});
constexpr auto kState = Rows<Lwapp>({
    Number(1, "Radio").Note(": Radio %u"), Number(1, "State", kStateNames), Number(1, "Cause", kCauseNames)});
constexpr auto kAdministrative = Rows<Lwapp>({
    Number(1, "Radio").Note(": Radio %u"), Number(1, "Administrative State", kStateNames)});
constexpr auto kMobile = Rows<Lwapp>({
    Number(1, "Radio").Note(": Radio %u"), Number(2, "Association ID"), Mac("MAC Address"), Hex(2, "Capability"),
    Number(1, "WLAN ID"), Bytes(0, "Supported Rates")});
constexpr auto kMobileGone = Rows<Lwapp>({Number(1, "Radio").Note(": Radio %u"), Mac("MAC Address")});
constexpr auto kImage = Rows<Lwapp>({Number(1, "Opcode"), Hex(2, "Image Checksum"), Bytes(0, "Image")});
constexpr auto kSeconds = Rows<Lwapp>({Number(2, nullptr, " seconds")});
constexpr auto kPeriod = Rows<Lwapp>({Number(1, "Radio").Note(": Radio %u"), Number(2, "Report Interval", " seconds")});
constexpr auto kSession = Rows<Lwapp>({Hex(4, nullptr).Note(": 0x%.08X")});
constexpr auto kMode = Rows<Lwapp>({Number(1, nullptr, kTransferNames).Note(": %s")});
constexpr auto kData = Rows<Lwapp>({Number(1, "Data Type"), Counted(1, Bytes(0, "Data"))});
constexpr auto kDiscovery = Rows<Lwapp>({Number(1, nullptr, kDiscoveryNames).Note(": %s")});
constexpr auto kIPv4 = Rows<Lwapp>({IPv4("IP Address")});
constexpr auto kIPv6 = Rows<Lwapp>({IPv6("IP Address")});
constexpr auto kStatus = Rows<Lwapp>({Number(1, nullptr).Note(": %u")});
constexpr auto kMacEntry = Rows<Lwapp>({Mac("MAC Address")});
constexpr auto kCount = Rows<Lwapp>({Number(1, "Entries")});
constexpr auto kReboots = Rows<Lwapp>({
    Number(2, "Crash Count"), Number(2, "LWAPP Initiated Count"), Number(2, "Link Failure Count"),
    Number(1, "Failure Type", kFailureNames)});
constexpr auto kTimers = Rows<Lwapp>({Number(1, "Discovery Interval", " seconds"), Number(1, "Echo Interval", " seconds")});
constexpr auto kDuplicate4 = Rows<Lwapp>({IPv4("IP Address"), Mac("MAC Address")});
constexpr auto kDuplicate6 = Rows<Lwapp>({IPv6("IP Address"), Mac("MAC Address")});
constexpr auto kStatic = Rows<Lwapp>({
    IPv4("IP Address"), IPv4("Netmask"), IPv4("Gateway"), Number(1, "Static", kFalseTrueNames)});
constexpr auto kIndexed = Rows<Lwapp>({Number(1, "Index"), Utf8(0, nullptr).Note(": %s")});
constexpr auto kSwitch = Rows<Lwapp>({Number(1, nullptr, kFalseTrueNames).Note(": %s")});
constexpr auto kIdle = Rows<Lwapp>({Number(4, nullptr, " seconds")});
constexpr auto kManager4 = Rows<Lwapp>({IPv4("IP Address"), Number(2, "WTP Count")});
constexpr auto kManager6 = Rows<Lwapp>({IPv6("IP Address"), Number(2, "WTP Count")});
constexpr auto kVendor = Rows<Lwapp>({Number(4, "Vendor Identifier"), Number(2, "Vendor Element ID"), Bytes(0, "Vendor Data")});
constexpr auto kBoard = Rows<Lwapp>({Number(2, "Card ID"), Number(2, "Card Revision"), Bytes(0, "Board Data")});

// ---- The binding of 802.11 (RFC 5412 11.8 and 11.9).

constexpr auto kPolicyNames = SortedNames({
    {0, "Encrypt WEP 104"}, {1, "Clear Text"}, {2, "Encrypt WEP 40"}, {3, "Encrypt WEP 128"}, {4, "Encrypt AES-CCMP 128"},
    {5, "Encrypt TKIP-MIC"}});
constexpr auto kQosNames = SortedNames({{0, "Best Effort"}, {1, "Video"}, {2, "Voice"}, {3, "Background"}});
constexpr auto kAuthNames = SortedNames({{0, "Open System"}, {1, "WEP Shared Key"}, {2, "WPA/WPA2 802.1X"}, {3, "WPA/WPA2 PSK"}});
constexpr auto kDiversityNames = SortedNames({{0, "Disabled"}, {1, "Enabled"}});
constexpr auto kCombinerNames = SortedNames({{1, "Sectorized (Left)"}, {2, "Sectorized (Right)"}, {3, "Omni"}, {4, "MIMO"}});
constexpr auto kAntennaNames = SortedNames({{1, "Internal"}, {2, "External"}});
constexpr auto kAssessmentNames = SortedNames({
    {1, "Energy Detect Only"}, {2, "Carrier Sense Only"}, {4, "Carrier Sense and Energy Detect"},
    {8, "Carrier Sense with Timer"}, {16, "High Rate Carrier Sense and Energy Detect"}});
constexpr auto kAlarmNames = SortedNames({{1, "Receiver"}, {2, "Transmitter"}});
constexpr auto kWlanHead = Rows<Lwapp>({
    Number(1, "Radio").Note(": Radio %u"), Hex(2, "WLAN Capability"), Number(1, "WLAN ID").Note(", WLAN %u"),
    Number(4, "Encryption Policy", kPolicyNames), Bytes(32, "Key"), Number(1, "Key Index"), Number(1, "Shared Key", kFalseTrueNames)});
constexpr auto kWlanAdded = Rows<Lwapp>({
    Counted(1, Bytes(0, "WPA Element")), Counted(1, Bytes(0, "RSN Element")), Bytes(49, "Reserved"),
    Counted(1, Bytes(0, "WME Element")), Counted(1, Bytes(0, "802.11e Element")), Number(1, "QoS", kQosNames),
    Number(1, "Authentication Type", kAuthNames), Number(1, "Broadcast SSID", kFalseTrueNames), Bytes(0, "Reserved and SSID")});
constexpr auto kWlanRadio = Rows<Lwapp>({
    Number(1, "Radio").Note(": Radio %u"), Number(1, "Reserved"), Number(2, "Occupancy Limit"), Number(1, "CFP Period"),
    Number(2, "CFP Maximum Duration"), Mac("BSSID"), Number(2, "Beacon Period", " TU"), Number(1, "DTIM Period"),
    Text(4, "Country")});
constexpr auto kDomain = Rows<Lwapp>({
    Number(1, "Radio").Note(": Radio %u"), Number(1, "Reserved"), Number(2, "First Channel"), Number(2, "Channels"),
    Number(2, "Maximum Transmit Power", " dBm")});
constexpr auto kOperation = Rows<Lwapp>({
    Number(1, "Radio").Note(": Radio %u"), Number(1, "Reserved"), Number(2, "RTS Threshold"), Number(1, "Short Retry"),
    Number(1, "Long Retry"), Number(2, "Fragmentation Threshold"), Number(4, "Transmit MSDU Lifetime"),
    Number(4, "Receive MSDU Lifetime")});
constexpr auto kPower = Rows<Lwapp>({
    Number(1, "Radio").Note(": Radio %u"), Number(1, "Reserved"), Number(2, "Current Transmit Power", " mW")});
constexpr auto kPowerHead = Rows<Lwapp>({Number(1, "Radio").Note(": Radio %u"), Number(1, "Power Levels")});
constexpr auto kPowerLevel = Rows<Lwapp>({Number(2, "Power Level", " mW")});
constexpr auto kSequence = Rows<Lwapp>({
    Number(1, "Radio").Note(": Radio %u"), Number(1, "Reserved"), Number(1, "Current Channel"),
    Number(1, "Clear Channel Assessment", kAssessmentNames), Number(4, "Energy Detect Threshold")});
constexpr auto kBandMasks = SortedNames({
    {0x01, "5.15 - 5.25 GHz"}, {0x02, "5.25 - 5.35 GHz"}, {0x04, "5.725 - 5.825 GHz"}, {0x08, "5.47 - 5.725 GHz"},
    {0x10, "Lower Japanese 5.25 GHz"}, {0x20, "5.03 - 5.091 GHz"}, {0x40, "4.94 - 4.99 GHz"}});
constexpr auto kOrthogonal = Rows<Lwapp>({
    Number(1, "Radio").Note(": Radio %u"), Number(1, "Reserved"), Number(1, "Current Channel"),
    Flags(1, "Band Support", kBandMasks), Number(4, "TI Threshold")});
constexpr auto kRadioHead = Rows<Lwapp>({Number(1, "Radio").Note(": Radio %u")});
constexpr auto kRate = Rows<Lwapp>({Number(1, "Supported Rate", " x 500 kbit/s")});
constexpr auto kAntenna = Rows<Lwapp>({
    Number(1, "Radio").Note(": Radio %u"), Number(1, "Diversity", kDiversityNames), Number(1, "Combiner", kCombinerNames),
    Number(1, "Antennas")});
constexpr auto kSelected = Rows<Lwapp>({Number(1, "Antenna", kAntennaNames)});
constexpr auto kFreePeriod = Rows<Lwapp>({Number(1, "Radio").Note(": Radio %u"), Number(1, "Status")});
constexpr auto kModeAndType = Rows<Lwapp>({Number(1, "Mode"), Number(1, "Type")});
constexpr auto kQuality = Rows<Lwapp>({Number(1, "Radio").Note(": Radio %u"), Number(1, "Tag Packets")});
constexpr auto kQueue = Rows<Lwapp>({
    Number(1, "Queue Depth"), Number(2, "Minimum Contention Window"), Number(2, "Maximum Contention Window"),
    Number(1, "Arbitration Interframe Space"), Number(2, "Constant Bit Rate"), Number(1, "802.1p Tag"), Hex(1, "DSCP Tag")});
constexpr auto kIntegrity = Rows<Lwapp>({
    Mac("Station").Note(": %s"), Mac("BSSID"), Number(1, "Radio"), Number(1, "WLAN ID")});
constexpr auto kAlarm = Rows<Lwapp>({
    Number(1, "Radio").Note(": Radio %u"), Number(1, "Alarm Type", kAlarmNames), Number(1, "Status"), Number(1, "Padding")});
constexpr auto kMobileKey = Rows<Lwapp>({
    Mac("MAC Address").Note(": %s"), Hex(2, "Flags"), Bytes(6, "Pairwise Transmit Counter"), Bytes(6, "Pairwise Receive Counter"),
    Bytes(0, "Session Key")});
constexpr auto kWlanUpdate = Rows<Lwapp>({
    Number(1, "Radio").Note(": Radio %u"), Number(2, "WLAN ID").Note(", WLAN %u"),
    Number(4, "Encryption Policy", kPolicyNames), Bytes(32, "Key"), Number(1, "Key Index"),
    Number(1, "Shared Key", kFalseTrueNames), Hex(2, "WLAN Capability")});

void ShowRepeated(const Place& in, Cursor& c, RowSpan<Lwapp> rows, int32_t size, Lwapp& lwapp) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Lwapp>(in, c, rows, lwapp);
}
void ShowIPv4List(const Place& in, Cursor& c, Lwapp& lwapp) { ShowRepeated(in, c, kIPv4, 4, lwapp); }
void ShowIPv6List(const Place& in, Cursor& c, Lwapp& lwapp) { ShowRepeated(in, c, kIPv6, 16, lwapp); }
void ShowPowerLevels(const Place& in, Cursor& c, Lwapp& lwapp) { ShowRepeated(in, c, kPowerLevel, 2, lwapp); }
void ShowRates(const Place& in, Cursor& c, Lwapp& lwapp) { ShowRepeated(in, c, kRate, 1, lwapp); }
void ShowAntennas(const Place& in, Cursor& c, Lwapp& lwapp) { ShowRepeated(in, c, kSelected, 1, lwapp); }
void ShowQueues(const Place& in, Cursor& c, Lwapp& lwapp) { ShowRepeated(in, c, kQueue, 10, lwapp); }
void ShowWlanAdded(const Place& in, Cursor& c, Lwapp& lwapp) {
  if (Left(c) > 0) ShowRows<Lwapp>(in, c, kWlanAdded, lwapp);
}
void ShowMacList(const Place& in, Cursor& c, Lwapp& lwapp) { ShowRepeated(in, c, kMacEntry, 6, lwapp); }

constexpr auto kElements = Choices<Lwapp>({
    {1, "Result Code", kResult}, {2, "AC Address", kAddress}, {3, "WTP Descriptor", kDescriptor},
    {4, "WTP Radio Information", kRadio}, {5, "WTP Name", kText}, {6, "AC Descriptor", kController},
    {7, "IEEE 802.11 Add WLAN", kWlanHead, ShowWlanAdded}, {8, "IEEE 802.11 WTP WLAN Radio Configuration", kWlanRadio},
    {10, "IEEE 802.11 Multi-Domain Capability", kDomain}, {11, "IEEE 802.11 MAC Operation", kOperation},
    {12, "IEEE 802.11 Tx Power", kPower}, {13, "IEEE 802.11 Tx Power Level", kPowerHead, ShowPowerLevels},
    {14, "IEEE 802.11 Direct Sequence Control", kSequence}, {15, "IEEE 802.11 OFDM Control", kOrthogonal},
    {16, "IEEE 802.11 Supported Rates", kRadioHead, ShowRates}, {18, "Test", kBytes}, {26, "Change State Event", kState},
    {27, "Administrative State", kAdministrative}, {28, "IEEE 802.11 Delete WLAN", kWlan}, {29, "Add Mobile", kMobile},
    {30, "Delete Mobile", kMobileGone}, {31, "AC Name", kText}, {32, "Image Download", kText},
    {33, "Image Data", kImage}, {34, "IEEE 802.11 Update WLAN", kWlanUpdate}, {35, "Location Data", kText},
    {37, "Statistics Timer", kSeconds}, {38, "Decryption Error Report Period", kPeriod},
    {39, "Decryption Error Report", kErrors, ShowMacList}, {41, "IEEE 802.11 Antenna", kAntenna, ShowAntennas}, {44, "Certificate", kBytes},
    {45, "Session ID", kSession}, {46, "Session Key Payload", kBytes}, {48, "IEEE 802.11 CFP Status", kFreePeriod},
    {50, "WTP Board Data", kBoard}, {51, "IEEE 802.11 Broadcast Probe Mode", kSwitch}, {52, "Data Transfer Mode", kMode},
    {53, "Data Transfer Data", kData}, {54, "IEEE 802.11 WTP Mode and Type", kModeAndType},
    {57, "IEEE 802.11 WTP Quality of Service", kQuality, ShowQueues}, {58, "Discovery Type", kDiscovery},
    {59, "AC IPv4 List", {}, ShowIPv4List}, {60, "Status", kStatus}, {61, "IEEE 802.11 MIC Error Report from Mobile", kIntegrity},
    {65, "Add MAC ACL Entry", kCount, ShowMacList}, {66, "Delete MAC ACL Entry", kCount, ShowMacList},
    {67, "WTP Reboot Statistics", kReboots}, {68, "LWAPP Timers", kTimers}, {77, "Duplicate IPv4 Address", kDuplicate4},
    {78, "Duplicate IPv6 Address", kDuplicate6}, {82, "WTP Static IP Address Information", kStatic},
    {90, "AC Name with Index", kIndexed}, {91, "WTP Fallback", kSwitch},
    {95, "IEEE 802.11 WTP Radio Fail Alarm Indication", kAlarm}, {97, "Idle Timeout", kIdle},
    {99, "WTP Manager Control IPv4 Address", kManager4}, {104, "Vendor Specific", kVendor},
    {105, "IEEE 802.11 Mobile Session Key", kMobileKey}, {107, "WNonce", kBytes}, {108, "ANonce", kBytes},
    {109, "PSK-MIC", kBytes}, {111, "XNonce", kBytes}, {137, "WTP Manager Control IPv6 Address", kManager6},
    {140, "IEEE 802.11 Station QoS Profile", kBytes}, {141, "AC IPv6 List", {}, ShowIPv6List}});
constexpr ElementForm kForm{.lengthSize = 2};

}  // namespace

int32_t DecodeLwapp(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 6, kAddressSize = 6;
  if (Left(c) < kHeaderSize) return 0;
  // Over IP the access point's address may stand in front: then the length fits behind it.
  const bool hasIdentity = static_cast<int32_t>(PeekU16(c, 2)) != Left(c) - kHeaderSize &&
                           static_cast<int32_t>(PeekU16(c, kAddressSize + 2)) == Left(c) - kHeaderSize - kAddressSize;
  const bool isControl = PeekU8(c, hasIdentity ? kAddressSize : 0) & 4;
  const Place in = Under(at, AddLine(at, Ahead(c, hasIdentity ? kHeaderSize + kAddressSize : kHeaderSize), "LWAPP %s",
                                     isControl ? "Control" : "Data"));
  Lwapp lwapp{};
  if (hasIdentity) ShowRows<Lwapp>(in, c, kIdentity, lwapp);
  ShowRows<Lwapp>(in, c, kHeader, lwapp);
  Cursor body = TakeCursor(c, static_cast<int64_t>(lwapp.length.value));
  body.begin = c.begin;
  if (lwapp.fragment.value) return CallDecoder(Deeper(at), body, nullptr, "LWAPP Fragment Data"), 1;
  if (!isControl) return DecodeTunnelledWireless(Deeper(at), body);
  ShowRows<Lwapp>(in, body, kControl, lwapp);
  Cursor elements = TakeCursor(body, static_cast<int64_t>(lwapp.elements.value));
  ShowElements<Lwapp>(in, elements, kForm, "Message Element", kElements, lwapp);
  AddBlock(in, Rest(elements), "Message Element Data");
  CoverBytes(in, body);
  return 1;
}

}  // namespace qxview
