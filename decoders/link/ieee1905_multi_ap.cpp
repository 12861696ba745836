// The elements of IEEE 1905.1 that the Wi-Fi Alliance added (Multi-AP): how a controller steers access points
// and the stations at them.
#include "decoders/link/ieee1905.h"

namespace qxview {
namespace {

using Home = HomeNetwork;

constexpr auto kServiceNames = SortedNames({{0, "Multi-AP Controller"}, {1, "Multi-AP Agent"}});
constexpr auto kEventNames = SortedNames({{0, "Has Left"}, {1, "Has Joined"}});
constexpr auto kCapabilityNames = SortedNames({{0, "Success"}, {1, "Failure"}});
constexpr auto kLayerNames = SortedNames({{0, "Reserved"}, {1, "TR-181"}});
constexpr auto kErrorNames = SortedNames({
    {1, "STA Associated with a BSS"}, {2, "STA Not Associated with a BSS"}, {3, "Unspecified"},
    {4, "Backhaul Cannot Operate on the Channel"}, {5, "Backhaul Target Signal Too Weak"},
    {6, "Backhaul Association Rejected"}});
constexpr auto kProfileNames = SortedNames({{1, "Multi-AP Profile 1"}, {2, "Multi-AP Profile 2"}, {3, "Multi-AP Profile 3"}});

constexpr auto kServices = Rows<Home>({Number(1, "Services").Into(&Home::count)});
constexpr auto kService = Rows<Home>({Number(1, "Service", kServiceNames).Note(", %s")});
constexpr auto kRadio = Rows<Home>({Mac("Radio ID").Note(", %s")});
constexpr auto kRadios = Rows<Home>({Number(1, "Radios").Into(&Home::count)});
constexpr auto kRadioSets = Rows<Home>({Mac("Radio ID"), Number(1, "BSSs").Into(&Home::inner)});
constexpr auto kBss = Rows<Home>({Mac("BSSID"), Counted(1, Text(0, "SSID"))});
constexpr auto kClients = Rows<Home>({Number(1, "BSSs").Into(&Home::count)});
constexpr auto kClientSet = Rows<Home>({Mac("BSSID"), Number(2, "Clients").Into(&Home::inner)});
constexpr auto kClient = Rows<Home>({Mac("Client MAC Address"), Number(2, "Time Since Association", " seconds")});
constexpr auto kApAbilities = Rows<Home>({
    Word(1), Flag(0, "Unassociated STA Metrics on Operating Channels"), Flag(1, "Unassociated STA Metrics on Other Channels"),
    Flag(2, "Agent-initiated Steering"), Bits(3, 5, "Reserved")});
constexpr auto kRadioBasics = Rows<Home>({
    Mac("Radio ID").Note(", %s"), Number(1, "Maximum Number of BSSs"), Number(1, "Operating Classes").Into(&Home::count)});
constexpr auto kRadioBasic = Rows<Home>({
    Number(1, "Operating Class"), Signed(1, "Maximum Transmit Power", " dBm"),
    Counted(1, Bytes(0, "Non-operable Channels"))});
constexpr auto kHt = Rows<Home>({
    Mac("Radio ID").Note(", %s"), Word(1), Bits(0, 2, "Transmit Streams - 1"), Bits(2, 2, "Receive Streams - 1"),
    Flag(4, "Short Guard Interval at 20 MHz"), Flag(5, "Short Guard Interval at 40 MHz"), Flag(6, "40 MHz"),
    Bits(7, 1, "Reserved")});
constexpr auto kVht = Rows<Home>({
    Mac("Radio ID").Note(", %s"), Hex(2, "Transmit VHT-MCS"), Hex(2, "Receive VHT-MCS"), Word(2),
    Bits(0, 3, "Transmit Streams - 1"), Bits(3, 3, "Receive Streams - 1"), Flag(6, "Short Guard Interval at 80 MHz"),
    Flag(7, "Short Guard Interval at 160 MHz"), Flag(8, "80+80 MHz"), Flag(9, "160 MHz"), Flag(10, "SU Beamformer"),
    Flag(11, "MU Beamformer"), Bits(12, 4, "Reserved")});
constexpr auto kHe = Rows<Home>({
    Mac("Radio ID").Note(", %s"), Counted(1, Bytes(0, "HE-MCS")), Word(2), Bits(0, 3, "Transmit Streams - 1"),
    Bits(3, 3, "Receive Streams - 1"), Flag(6, "80+80 MHz"), Flag(7, "160 MHz"), Flag(8, "SU Beamformer"),
    Flag(9, "MU Beamformer"), Flag(10, "Uplink MU-MIMO"), Flag(11, "Uplink MU-MIMO with OFDMA"),
    Flag(12, "Downlink MU-MIMO with OFDMA"), Flag(13, "Uplink OFDMA"), Flag(14, "Downlink OFDMA"), Bits(15, 1, "Reserved")});
constexpr auto kClassSet = Rows<Home>({Mac("Radio ID").Note(", %s"), Number(1, "Operating Classes").Into(&Home::count)});
constexpr auto kPreference = Rows<Home>({
    Number(1, "Operating Class"), Counted(1, Bytes(0, "Channels")), Word(1), Bits(0, 4, "Preference"),
    Bits(4, 4, "Reason Code")});
constexpr auto kPower = Rows<Home>({Mac("Radio ID").Note(", %s"), Signed(1, "Transmit Power Limit", " dBm")});
constexpr auto kAnswerNames = SortedNames({
    {0, "Accept"}, {1, "Decline: Request Violates Preferences"}, {2, "Decline: Request Violates Latest Preferences"},
    {3, "Decline: Would Prevent the Backhaul Link"}});
constexpr auto kAnswer = Rows<Home>({Mac("Radio ID").Note(", %s"), Number(1, "Response Code", kAnswerNames).Note(", %s")});
constexpr auto kOperating = Rows<Home>({Number(1, "Operating Class"), Number(1, "Operating Channel")});
constexpr auto kPowerNow = Rows<Home>({Signed(1, "Transmit Power", " dBm")});
constexpr auto kClientInfo = Rows<Home>({Mac("BSSID"), Mac("Client MAC Address").Note(", %s")});
constexpr auto kClientReport = Rows<Home>({Number(1, "Result Code", kCapabilityNames).Note(", %s"),
    Bytes(0, "Association Frame Body")});
constexpr auto kEvent = Rows<Home>({
    Mac("Client MAC Address").Note(", %s"), Mac("BSSID"), Word(1), Bits(0, 1, "Association Event", kEventNames),
    Bits(1, 7, "Reserved")});
constexpr auto kBssids = Rows<Home>({Number(1, "BSSs").Into(&Home::count)});
constexpr auto kBssid = Rows<Home>({Mac("BSSID")});
constexpr auto kApMetrics = Rows<Home>({
    Mac("BSSID").Note(", %s"), Number(1, "Channel Utilization"), Number(2, "Associated Stations"),
    Hex(1, "Service Parameters"), Flag(0, "Best Effort Parameters").Into(&Home::flags), Flag(1, "Background Parameters"),
    Flag(2, "Voice Parameters"), Flag(3, "Video Parameters"), Bits(4, 4, "Reserved"),
    Bytes(0, "Estimated Service Parameters")});
constexpr auto kStation = Rows<Home>({Mac("Station MAC Address").Note(", %s")});
constexpr auto kLinkSets = Rows<Home>({Mac("Station MAC Address").Note(", %s"), Number(1, "BSSs").Into(&Home::count)});
constexpr auto kLinkSet = Rows<Home>({
    Mac("BSSID"), Number(4, "Time Delta", " ms"), Number(4, "Estimated Downlink Rate", " Mbit/s"),
    Number(4, "Estimated Uplink Rate", " Mbit/s"), Number(1, "Uplink RCPI")});
constexpr auto kSteering = Rows<Home>({
    Mac("BSSID").Note(", %s"), Word(1), Flag(0, "Steering Mandate"), Flag(1, "BTM Disassociation Imminent"),
    Flag(2, "BTM Abridged"), Bits(3, 5, "Reserved"), Number(2, "Steering Opportunity Window", " seconds"),
    Number(2, "BTM Disassociation Timer", " TU"), Number(1, "Stations").Into(&Home::count)});
constexpr auto kTargets = Rows<Home>({Number(1, "Targets").Into(&Home::count)});
constexpr auto kTarget = Rows<Home>({Mac("Target BSSID"), Number(1, "Target Operating Class"), Number(1, "Target Channel")});
constexpr auto kBtm = Rows<Home>({Mac("Source BSSID"), Mac("Station MAC Address").Note(", %s"),
    Number(1, "BTM Status Code")});
constexpr auto kAssociation = Rows<Home>({
    Mac("BSSID").Note(", %s"), Number(1, "Association Control"), Number(2, "Validity Period", " seconds"),
    Number(1, "Stations").Into(&Home::count)});
constexpr auto kStationOfList = Rows<Home>({Mac("Station MAC Address")});
constexpr auto kBackhaul = Rows<Home>({
    Mac("Backhaul Station").Note(", %s"), Mac("Target BSSID"), Number(1, "Operating Class"), Number(1, "Channel")});
constexpr auto kBackhaulAnswer = Rows<Home>({Mac("Backhaul Station").Note(", %s"), Mac("Target BSSID"),
    Number(1, "Result Code")});
constexpr auto kLayer = Rows<Home>({Number(1, "Higher Layer Protocol", kLayerNames).Note(", %s"),
    Bytes(0, "Higher Layer Data")});
constexpr auto kError = Rows<Home>({Number(1, "Reason Code", kErrorNames).Note(", %s"), Mac("Station MAC Address")});
constexpr auto kTraffic = Rows<Home>({
    Mac("Station MAC Address").Note(", %s"), Number(4, "Bytes Sent"), Number(4, "Bytes Received"), Number(4, "Packets Sent"),
    Number(4, "Packets Received"), Number(4, "Transmit Errors"), Number(4, "Receive Errors"), Number(4, "Retransmissions")});
constexpr auto kProfile = Rows<Home>({Number(1, "Multi-AP Profile", kProfileNames).Note(", %s")});
constexpr auto kDefaultQueue = Rows<Home>({Number(2, "Primary VLAN ID"), Word(1), Bits(0, 3, "Default Priority"),
    Bits(3, 5, "Reserved")});
constexpr auto kTime = Rows<Home>({Counted(1, Text(0, "Time Stamp"))});
constexpr auto kReason = Rows<Home>({Number(2, "Reason Code")});
constexpr auto kStatus = Rows<Home>({Number(2, "Status Code")});

void ShowServices(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kService, home); }
void ShowSets(const Place& in, Cursor& c, Home& home) { ShowNested(in, c, kRadioSets, kBss, home); }
void ShowClients(const Place& in, Cursor& c, Home& home) { ShowNested(in, c, kClientSet, kClient, home); }
void ShowBasics(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kRadioBasic, home); }
void ShowPreferences(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kPreference, home); }
void ShowOperating(const Place& in, Cursor& c, Home& home) {
  ShowCounted(in, c, home.count.value, kOperating, home);
  ShowRows<Home>(in, c, kPowerNow, home);
}
void ShowBssids(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kBssid, home); }
void ShowLinks(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kLinkSet, home); }
void ShowStations(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kStationOfList, home); }
void ShowSteering(const Place& in, Cursor& c, Home& home) {
  ShowStations(in, c, home);
  ShowRows<Home>(in, c, kTargets, home);
  ShowCounted(in, c, home.count.value, kTarget, home);
}
void ShowTargetBss(const Place& in, Cursor& c, Home& home) {
  if (Left(c) >= 6) ShowRows<Home>(in, c, kBssid, home);
}

constexpr auto kElements = Choices<Home>({
    {0x80, "Supported Service", kServices, ShowServices}, {0x81, "Searched Service", kServices, ShowServices},
    {0x82, "AP Radio Identifier", kRadio}, {0x83, "AP Operational BSS", kRadios, ShowSets},
    {0x84, "Associated Clients", kClients, ShowClients}, {0x85, "AP Radio Basic Capabilities", kRadioBasics, ShowBasics},
    {0x86, "AP HT Capabilities", kHt}, {0x87, "AP VHT Capabilities", kVht}, {0x88, "AP HE Capabilities", kHe},
    {0x89, "Steering Policy"}, {0x8A, "Metric Reporting Policy"}, {0x8B, "Channel Preference", kClassSet, ShowPreferences},
    {0x8C, "Radio Operation Restriction"}, {0x8D, "Transmit Power Limit", kPower},
    {0x8E, "Channel Selection Response", kAnswer}, {0x8F, "Operating Channel Report", kClassSet, ShowOperating},
    {0x90, "Client Info", kClientInfo}, {0x91, "Client Capability Report", kClientReport},
    {0x92, "Client Association Event", kEvent}, {0x93, "AP Metric Query", kBssids, ShowBssids},
    {0x94, "AP Metrics", kApMetrics}, {0x95, "STA MAC Address", kStation},
    {0x96, "Associated STA Link Metrics", kLinkSets, ShowLinks}, {0x97, "Unassociated STA Link Metrics Query"},
    {0x98, "Unassociated STA Link Metrics Response"}, {0x99, "Beacon Metrics Query"}, {0x9A, "Beacon Metrics Response"},
    {0x9B, "Steering Request", kSteering, ShowSteering}, {0x9C, "Steering BTM Report", kBtm, ShowTargetBss},
    {0x9D, "Client Association Control Request", kAssociation, ShowStations}, {0x9E, "Backhaul Steering Request", kBackhaul},
    {0x9F, "Backhaul Steering Response", kBackhaulAnswer}, {0xA0, "Higher Layer Data", kLayer},
    {0xA1, "AP Capability", kApAbilities}, {0xA2, "Associated STA Traffic Statistics", kTraffic},
    {0xA3, "Error Code", kError}, {0xA4, "Channel Scan Reporting Policy"}, {0xA5, "Channel Scan Capabilities"},
    {0xA6, "Channel Scan Request"}, {0xA7, "Channel Scan Result"}, {0xA8, "Timestamp", kTime},
    {0xA9, "1905 Layer Security Capability"}, {0xAA, "AP Wi-Fi 6 Capabilities"}, {0xAB, "MIC"}, {0xAC, "Encrypted Payload"},
    {0xAD, "CAC Request"}, {0xAE, "CAC Termination"}, {0xAF, "CAC Completion Report"},
    {0xB0, "Associated Wi-Fi 6 STA Status Report"}, {0xB1, "CAC Status Report"}, {0xB2, "CAC Capabilities"},
    {0xB3, "Multi-AP Profile", kProfile}, {0xB4, "Profile-2 AP Capability"}, {0xB5, "Default 802.1Q Settings", kDefaultQueue},
    {0xB6, "Traffic Separation Policy"}, {0xB7, "BSS Configuration Report"}, {0xB8, "BSSID"},
    {0xB9, "Service Prioritization Rule"}, {0xBA, "DSCP Mapping Table"}, {0xBB, "BSS Configuration Request"},
    {0xBC, "Profile-2 Error Code"}, {0xBD, "BSS Configuration Response"}, {0xBE, "AP Radio Advanced Capabilities"},
    {0xBF, "Association Status Notification"}, {0xC0, "Source Info"}, {0xC1, "Tunneled Message Type"}, {0xC2, "Tunneled"},
    {0xC3, "Profile-2 Steering Request"}, {0xC4, "Unsuccessful Association Policy"}, {0xC5, "Metric Collection Interval"},
    {0xC6, "Radio Metrics"}, {0xC7, "AP Extended Metrics"}, {0xC8, "Associated STA Extended Link Metrics"},
    {0xC9, "Status Code", kStatus}, {0xCA, "Reason Code", kReason}, {0xCB, "Backhaul STA Radio Capabilities"},
    {0xCC, "AKM Suite Capabilities"}, {0xCD, "1905 Encapsulated DPP"}, {0xCE, "1905 Encapsulated EAPOL"},
    {0xCF, "DPP Bootstrapping URI Notification"}, {0xD0, "Backhaul BSS Configuration"}, {0xD1, "DPP Message"},
    {0xD2, "DPP CCE Indication"}, {0xD3, "DPP Chirp Value"}, {0xD4, "Device Inventory"}, {0xD5, "Agent List"}});

}  // namespace

const Choice<HomeNetwork>* FindMultiApElement(uint32_t type) { return FindChoice<HomeNetwork>(kElements, type); }

}  // namespace qxview
