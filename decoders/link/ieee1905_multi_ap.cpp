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
constexpr auto kPolicyNames = SortedNames({
    {0, "Agent-initiated Steering Disallowed"}, {1, "RCPI-based Steering Mandated"}, {2, "RCPI-based Steering Allowed"}});
constexpr auto kDisallowed = Rows<Home>({Number(1, "Local Steering Disallowed").Into(&Home::count)});
constexpr auto kBtmDisallowed = Rows<Home>({Number(1, "BTM Steering Disallowed").Into(&Home::count)});
constexpr auto kPolicy = Rows<Home>({
    Mac("Radio ID"), Number(1, "Steering Policy", kPolicyNames), Number(1, "Channel Utilization Threshold"),
    Number(1, "RCPI Steering Threshold")});
constexpr auto kReporting = Rows<Home>({
    Number(1, "AP Metrics Reporting Interval", " seconds"), Number(1, "Radios").Into(&Home::count)});
constexpr auto kReport = Rows<Home>({
    Mac("Radio ID"), Number(1, "RCPI Reporting Threshold"), Number(1, "RCPI Hysteresis Margin Override"),
    Number(1, "Channel Utilization Reporting Threshold"), Word(1), Flag(0, "Include Traffic Statistics"),
    Flag(1, "Include Link Metrics"), Flag(2, "Include Wi-Fi 6 Station Status"), Bits(3, 5, "Reserved")});
constexpr auto kRestricted = Rows<Home>({Number(1, "Operating Class"), Number(1, "Channels").Into(&Home::inner)});
constexpr auto kRestriction = Rows<Home>({Number(1, "Channel"), Number(1, "Minimum Frequency Separation", " x 10 MHz")});
constexpr auto kHeard = Rows<Home>({Number(1, "Operating Class"), Number(1, "Channels").Into(&Home::count)});
constexpr auto kHeardChannel = Rows<Home>({Number(1, "Channel"), Number(1, "Stations").Into(&Home::inner)});
constexpr auto kHeardStation = Rows<Home>({Mac("Station MAC Address")});
constexpr auto kHeardAnswer = Rows<Home>({Number(1, "Operating Class"), Number(1, "Stations").Into(&Home::count)});
constexpr auto kHeardLink = Rows<Home>({
    Mac("Station MAC Address"), Number(1, "Channel"), Number(4, "Time Delta", " ms"), Number(1, "Uplink RCPI")});
constexpr auto kBeacons = Rows<Home>({
    Mac("Station MAC Address").Note(", %s"), Number(1, "Operating Class"), Number(1, "Channel"), Mac("BSSID"),
    Number(1, "Reporting Detail"), Counted(1, Text(0, "SSID")), Number(1, "Channel Reports").Into(&Home::count)});
constexpr auto kChannelReport = Rows<Home>({
    Number(1, "Channel Report Length").Into(&Home::size), Bytes(0, "Channel Report").SizedBy(&Home::size)});
constexpr auto kElementIds = Rows<Home>({Counted(1, Bytes(0, "Element IDs"))});
constexpr auto kBeaconReports = Rows<Home>({
    Mac("Station MAC Address").Note(", %s"), Hex(1, "Reserved"), Number(1, "Measurement Reports").Into(&Home::count)});
constexpr auto kMeasurement = Rows<Home>({
    Number(1, "Element ID"), Number(1, "Element Length").Into(&Home::size), Bytes(0, "Measurement Report").SizedBy(&Home::size)});

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
void ShowPolicy(const Place& in, Cursor& c, Home& home) {
  ShowStations(in, c, home);
  ShowRows<Home>(in, c, kBtmDisallowed, home);
  ShowStations(in, c, home);
  ShowRows<Home>(in, c, kRadios, home);
  ShowCounted(in, c, home.count.value, kPolicy, home);
}
void ShowReporting(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kReport, home); }
void ShowRestrictions(const Place& in, Cursor& c, Home& home) { ShowNested(in, c, kRestricted, kRestriction, home); }
void ShowHeard(const Place& in, Cursor& c, Home& home) { ShowNested(in, c, kHeardChannel, kHeardStation, home); }
void ShowHeardAnswer(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kHeardLink, home); }
void ShowBeacons(const Place& in, Cursor& c, Home& home) {
  ShowCounted(in, c, home.count.value, kChannelReport, home);
  ShowRows<Home>(in, c, kElementIds, home);
}
void ShowReports(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kMeasurement, home); }
void ShowTargetBss(const Place& in, Cursor& c, Home& home) {
  if (Left(c) >= 6) ShowRows<Home>(in, c, kBssid, home);
}

constexpr auto kElements = Choices<Home>({
    {0x80, "Supported Service", kServices, ShowServices}, {0x81, "Searched Service", kServices, ShowServices},
    {0x82, "AP Radio Identifier", kRadio}, {0x83, "AP Operational BSS", kRadios, ShowSets},
    {0x84, "Associated Clients", kClients, ShowClients}, {0x85, "AP Radio Basic Capabilities", kRadioBasics, ShowBasics},
    {0x86, "AP HT Capabilities", kHt}, {0x87, "AP VHT Capabilities", kVht}, {0x88, "AP HE Capabilities", kHe},
    {0x89, "Steering Policy", kDisallowed, ShowPolicy}, {0x8A, "Metric Reporting Policy", kReporting, ShowReporting},
    {0x8B, "Channel Preference", kClassSet, ShowPreferences},
    {0x8C, "Radio Operation Restriction", kClassSet, ShowRestrictions}, {0x8D, "Transmit Power Limit", kPower},
    {0x8E, "Channel Selection Response", kAnswer}, {0x8F, "Operating Channel Report", kClassSet, ShowOperating},
    {0x90, "Client Info", kClientInfo}, {0x91, "Client Capability Report", kClientReport},
    {0x92, "Client Association Event", kEvent}, {0x93, "AP Metric Query", kBssids, ShowBssids},
    {0x94, "AP Metrics", kApMetrics}, {0x95, "STA MAC Address", kStation},
    {0x96, "Associated STA Link Metrics", kLinkSets, ShowLinks}, {0x97, "Unassociated STA Link Metrics Query", kHeard, ShowHeard},
    {0x98, "Unassociated STA Link Metrics Response", kHeardAnswer, ShowHeardAnswer},
    {0x99, "Beacon Metrics Query", kBeacons, ShowBeacons}, {0x9A, "Beacon Metrics Response", kBeaconReports, ShowReports},
    {0x9B, "Steering Request", kSteering, ShowSteering}, {0x9C, "Steering BTM Report", kBtm, ShowTargetBss},
    {0x9D, "Client Association Control Request", kAssociation, ShowStations}, {0x9E, "Backhaul Steering Request", kBackhaul},
    {0x9F, "Backhaul Steering Response", kBackhaulAnswer}, {0xA0, "Higher Layer Data", kLayer},
    {0xA1, "AP Capability", kApAbilities}, {0xA2, "Associated STA Traffic Statistics", kTraffic},
    {0xA3, "Error Code", kError}, {0xA8, "Timestamp", kTime}, {0xB3, "Multi-AP Profile", kProfile},
    {0xB5, "Default 802.1Q Settings", kDefaultQueue}});

}  // namespace

const Choice<HomeNetwork>* FindMultiApElement(uint32_t type) {
  const Choice<HomeNetwork>* choice = FindChoice<HomeNetwork>(kElements, type);
  return choice ? choice : FindProfileElement(type);
}

}  // namespace qxview
