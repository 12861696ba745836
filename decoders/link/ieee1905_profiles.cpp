// The elements of IEEE 1905.1 that later profiles of the Wi-Fi Alliance's standard (Multi-AP) brought: scans of channels,
// protected messages, availability of radar channels, VLANs and priorities, onboarding by DPP, statistics.
#include "decoders/common/json_lines.h"
#include "decoders/link/ieee1905.h"

namespace qxview {

int32_t DecodeEapol(const Place& at, Cursor c);

namespace {

using Home = HomeNetwork;

constexpr auto kImpactNames = SortedNames({
    {0, "No Impact"}, {1, "Reduced Number of Spatial Streams"}, {2, "Time Slicing Impairment"},
    {3, "Radio Unavailable for 2 Seconds or More"}});
constexpr auto kScanNames = SortedNames({
    {0, "Success"}, {1, "Not Supported on This Channel"}, {2, "Too Soon After the Last Scan"}, {3, "Radio Too Busy"},
    {4, "Not Completed"}, {5, "Aborted"}, {6, "Radio Scans on Boot Only"}});
constexpr auto kScanTypes = SortedNames({{0, "Passive"}, {1, "Active"}});
constexpr auto kOnboardingNames = SortedNames({{0, "1905 Device Provisioning Protocol"}});
constexpr auto kIntegrityNames = SortedNames({{0, "HMAC-SHA256"}});
constexpr auto kEncryptionNames = SortedNames({{0, "AES-SIV"}});
constexpr auto kRoles = SortedNames({{0, "Access Point"}, {1, "Non-AP Station"}});
constexpr auto kMethodNames = SortedNames({
    {0, "Continuous"}, {1, "Continuous with Dedicated Radio"}, {2, "MIMO Dimension Reduced"}, {3, "Time Sliced"}});
constexpr auto kActionNames = SortedNames({{0, "Remain and Monitor for Radar"}, {1, "Return to Previous State"}});
constexpr auto kCompletionNames = SortedNames({
    {0, "Successful"}, {1, "Radar Detected"}, {2, "Not Supported as Requested"}, {3, "Radio Too Busy"},
    {4, "Request Non-conformant to Regulations"}, {5, "Other Error"}});
constexpr auto kByteUnits = SortedNames({{0, "Bytes"}, {1, "Kibibytes"}, {2, "Mebibytes"}});
constexpr auto kRuleNames = SortedNames({{0, "Remove"}, {1, "Add"}});
constexpr auto kErrorNames = SortedNames({
    {1, "Service Prioritization Rule Not Found"}, {2, "Too Many Service Prioritization Rules"},
    {3, "Default Priority or VLAN ID Not Provided"}, {5, "Too Many VLAN IDs"},
    {7, "No Traffic Separation on Combined Fronthaul and Profile-1 Backhaul"},
    {8, "No Traffic Separation on Combined Profile-1 and Profile-2 Backhaul"},
    {9, "Service Prioritization Rule Not Supported"}});
constexpr auto kAllowedNames = SortedNames({{0, "No More Associations Allowed"}, {1, "Associations Allowed"}});
constexpr auto kTunneledNames = SortedNames({
    {0, "Association Request"}, {1, "Reassociation Request"}, {2, "BTM Query"}, {3, "WNM Request"},
    {4, "ANQP Request for Neighbour Report"}, {5, "DPP Message"}});
constexpr auto kSteeringModes = SortedNames({{0, "Opportunity"}, {1, "Mandate"}});
constexpr auto kEncapsulatedNames = SortedNames({{0, "Action Frame"}, {1, "GAS Frame"}});
constexpr auto kProfiles = SortedNames({{1, "Multi-AP Profile 1"}, {2, "Multi-AP Profile 2"}, {3, "Multi-AP Profile 3"}});
constexpr auto kSecurityNames = SortedNames({{0, "1905 Security Not Enabled"}, {1, "1905 Security Enabled"}});

// Lists of radios, each with lists of operating classes, each with its channels.
constexpr auto kRadios = Rows<Home>({Number(1, "Radios").Into(&Home::count)});
constexpr auto kClassesHead = Rows<Home>({Number(1, "Operating Classes").Into(&Home::inner)});
constexpr auto kClassHead = Rows<Home>({Number(1, "Operating Class"), Number(1, "Channels").Into(&Home::size)});
constexpr auto kChannelOf = Rows<Home>({Number(1, "Channel")});
void ShowClasses(const Place& in, Cursor& c, Home& home) {
  ShowRows<Home>(in, c, kClassesHead, home);
  const uint32_t count = home.inner.value;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) {
    ShowRows<Home>(in, c, kClassHead, home);
    ShowCounted(in, c, home.size.value, kChannelOf, home);
  }
}
void ShowRadios(const Place& in, Cursor& c, RowSpan<Home> head, Home& home) {
  ShowRows<Home>(in, c, kRadios, home);
  const uint32_t count = home.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) {
    ShowRows<Home>(in, c, head, home);
    ShowClasses(in, c, home);
  }
}

// --- scans ---

constexpr auto kScanPolicy = Rows<Home>({Word(1), Flag(0, "Report Independent Channel Scans"), Bits(1, 7, "Reserved")});
constexpr auto kScanAbility = Rows<Home>({
    Mac("Radio ID"), Word(1), Flag(0, "On Boot Only"), Bits(1, 2, "Scan Impact", kImpactNames), Bits(3, 5, "Reserved"),
    Number(4, "Minimum Scan Interval", " seconds")});
constexpr auto kScanRequest = Rows<Home>({Word(1), Flag(0, "Perform Fresh Scan"), Bits(1, 7, "Reserved")});
constexpr auto kScanRadio = Rows<Home>({Mac("Radio ID")});
void ShowScanAbilities(const Place& in, Cursor& c, Home& home) { ShowRadios(in, c, kScanAbility, home); }
void ShowScanRequest(const Place& in, Cursor& c, Home& home) { ShowRadios(in, c, kScanRadio, home); }
constexpr auto kScanResult = Rows<Home>({
    Mac("Radio ID").Note(", %s"), Number(1, "Operating Class"), Number(1, "Channel").Note(", Channel %u"),
    Number(1, "Scan Status", kScanNames).Note(", %s").Into(&Home::kind)});
constexpr auto kScanned = Rows<Home>({
    Counted(1, Text(0, "Time Stamp")), Number(1, "Utilization"), Number(1, "Noise"), Number(2, "Neighbours").Into(&Home::count)});
constexpr auto kScanNeighbour = Rows<Home>({
    Mac("BSSID"), Counted(1, Text(0, "SSID")), Number(1, "Signal Strength"), Counted(1, Text(0, "Channel Bandwidth")),
    Word(1).Into(&Home::flags), Flag(0, "BSS Load Element Present"), Bits(1, 7, "Reserved")});
constexpr auto kLoad = Rows<Home>({Number(1, "Channel Utilization"), Number(2, "Station Count")});
constexpr auto kScanEnd = Rows<Home>({
    Number(4, "Scan Duration", " ms"), Word(1), Bits(0, 1, "Scan Type", kScanTypes), Bits(1, 7, "Reserved")});
void ShowScanResult(const Place& in, Cursor& c, Home& home) {
  constexpr uint32_t kHasLoad = 0x80;
  if (home.kind.value != 0) return;
  ShowRows<Home>(in, c, kScanned, home);
  const uint32_t count = home.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) {
    ShowRows<Home>(in, c, kScanNeighbour, home);
    if (home.flags.value & kHasLoad) ShowRows<Home>(in, c, kLoad, home);
  }
  ShowRows<Home>(in, c, kScanEnd, home);
}

// --- protected messages ---

constexpr auto kLayerSecurity = Rows<Home>({
    Number(1, "Onboarding Protocols", kOnboardingNames), Number(1, "Message Integrity Algorithms", kIntegrityNames),
    Number(1, "Message Encryption Algorithms", kEncryptionNames)});
constexpr auto kMic = Rows<Home>({
    Word(1), Bits(0, 2, "1905 GTK Key ID"), Bits(2, 2, "MIC Version"), Bits(4, 4, "Reserved"),
    Number(6, "Integrity Transmission Counter"), Mac("Source AL MAC Address").Note(", %s"), Counted(2, Bytes(0, "MIC"))});
constexpr auto kEncrypted = Rows<Home>({
    Number(6, "Encryption Transmission Counter"), Mac("Source AL MAC Address").Note(", %s"),
    Mac("Destination AL MAC Address").Note(" -> %s"), Counted(2, Bytes(0, "AES-SIV Output"))});

// --- what access points and stations can ---

constexpr auto kWifi6 = Rows<Home>({Mac("Radio ID").Note(", %s"), Number(1, "Roles").Into(&Home::count)});
constexpr auto kWifi6Role = Rows<Home>({
    Word(1), Bits(0, 2, "Role", kRoles), Flag(2, "160 MHz"), Flag(3, "80+80 MHz"),
    Bits(4, 4, "MCS and NSS Length").Into(&Home::inner), Bytes(0, "MCS and NSS").SizedBy(&Home::inner), Word(1),
    Flag(0, "SU Beamformer"), Flag(1, "SU Beamformee"), Flag(2, "MU Beamformer"), Flag(3, "Beamformee STS up to 80 MHz"),
    Flag(4, "Beamformee STS above 80 MHz"), Flag(5, "Uplink MU-MIMO"), Flag(6, "Uplink OFDMA"), Flag(7, "Downlink OFDMA"),
    Word(1), Bits(0, 4, "Maximum Users of Downlink MU-MIMO"), Bits(4, 4, "Maximum Users of Uplink MU-MIMO"),
    Number(1, "Maximum Users of Downlink OFDMA"), Number(1, "Maximum Users of Uplink OFDMA"), Word(1), Flag(0, "RTS"),
    Flag(1, "MU RTS"), Flag(2, "Multi-BSSID"), Flag(3, "MU EDCA"), Flag(4, "TWT Requester"), Flag(5, "TWT Responder"),
    Flag(6, "Spatial Reuse"), Flag(7, "Anticipated Channel Usage")});
void ShowWifi6(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kWifi6Role, home); }
constexpr auto kQueues = Rows<Home>({Mac("Station MAC Address").Note(", %s"), Number(1, "TIDs").Into(&Home::count)});
constexpr auto kQueue = Rows<Home>({Number(1, "TID"), Number(1, "Queue Size")});
void ShowQueues(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kQueue, home); }
constexpr auto kApAbility = Rows<Home>({
    Number(1, "Maximum Prioritization Rules"), Hex(1, "Reserved"), Word(1), Bits(0, 2, "Byte Counter Units", kByteUnits),
    Flag(2, "Service Prioritization"), Flag(3, "DPP Onboarding"), Flag(4, "Traffic Separation"), Bits(5, 3, "Reserved 2"),
    Number(1, "Maximum VLAN IDs")});
constexpr auto kAdvanced = Rows<Home>({
    Mac("Radio ID").Note(", %s"), Word(1), Flag(0, "Separation on Fronthaul and Profile-1 Backhaul"),
    Flag(1, "Separation on Profile-1 and Profile-2 Backhaul"), Flag(2, "MSCS"), Flag(3, "SCS"), Flag(4, "QoS Map"),
    Flag(5, "DSCP Policy"), Bits(6, 2, "Reserved")});
constexpr auto kBackhaulRadio = Rows<Home>({
    Mac("Radio ID").Note(", %s"), Word(1).Into(&Home::flags), Flag(0, "MAC Address Included"), Bits(1, 7, "Reserved")});
constexpr auto kBackhaulStation = Rows<Home>({Mac("Backhaul Station").Note(", %s")});
constexpr uint32_t kIncluded = 0x80;
void ShowBackhaulStation(const Place& in, Cursor& c, Home& home) {
  if (home.flags.value & kIncluded) ShowRows<Home>(in, c, kBackhaulStation, home);
}
constexpr auto kBackhaulSuites = Rows<Home>({Number(1, "Backhaul AKM Suites").Into(&Home::count)});
constexpr auto kBackhaulSuite = Rows<Home>({Hex(3, "Backhaul Suite OUI"), Number(1, "Backhaul Suite Type")});
constexpr auto kFronthaulSuites = Rows<Home>({Number(1, "Fronthaul AKM Suites").Into(&Home::count)});
constexpr auto kFronthaulSuite = Rows<Home>({Hex(3, "Fronthaul Suite OUI"), Number(1, "Fronthaul Suite Type")});
void ShowSuites(const Place& in, Cursor& c, Home& home) {
  ShowCounted(in, c, home.count.value, kBackhaulSuite, home);
  ShowRows<Home>(in, c, kFronthaulSuites, home);
  ShowCounted(in, c, home.count.value, kFronthaulSuite, home);
}

// --- radar channels: their check before use (CAC) ---

constexpr auto kCacRequest = Rows<Home>({
    Mac("Radio ID"), Number(1, "Operating Class"), Number(1, "Channel"), Word(1), Bits(0, 3, "CAC Method", kMethodNames),
    Bits(3, 2, "Successful Completion Action", kActionNames), Bits(5, 2, "Unsuccessful Completion Action", kActionNames),
    Bits(7, 1, "Reserved")});
constexpr auto kCacEnd = Rows<Home>({
    Mac("Radio ID"), Number(1, "Operating Class"), Number(1, "Channel"), Number(1, "Termination Action", kActionNames)});
constexpr auto kCacDone = Rows<Home>({
    Mac("Radio ID"), Number(1, "Operating Class"), Number(1, "Channel"), Number(1, "Completion Status", kCompletionNames),
    Number(1, "Radar Channels").Into(&Home::inner)});
constexpr auto kRadar = Rows<Home>({Number(1, "Radar Operating Class"), Number(1, "Radar Channel")});
void ShowCacRequest(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kCacRequest, home); }
void ShowCacEnd(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kCacEnd, home); }
void ShowCacDone(const Place& in, Cursor& c, Home& home) { ShowNested(in, c, kCacDone, kRadar, home); }
constexpr auto kAvailable = Rows<Home>({Number(1, "Available Channels").Into(&Home::count)});
constexpr auto kAvailableChannel = Rows<Home>({
    Number(1, "Operating Class"), Number(1, "Channel"), Number(2, "Time Since CAC", " minutes")});
constexpr auto kAvoided = Rows<Home>({Number(1, "Non-occupancy Channels").Into(&Home::count)});
constexpr auto kAvoidedChannel = Rows<Home>({
    Number(1, "Operating Class"), Number(1, "Channel"), Number(2, "Time Remaining", " seconds")});
constexpr auto kActive = Rows<Home>({Number(1, "Channels Under CAC").Into(&Home::count)});
constexpr auto kActiveChannel = Rows<Home>({
    Number(1, "Operating Class"), Number(1, "Channel"), Number(3, "Time Remaining", " seconds")});
void ShowCacStatus(const Place& in, Cursor& c, Home& home) {
  ShowCounted(in, c, home.count.value, kAvailableChannel, home);
  ShowRows<Home>(in, c, kAvoided, home);
  ShowCounted(in, c, home.count.value, kAvoidedChannel, home);
  ShowRows<Home>(in, c, kActive, home);
  ShowCounted(in, c, home.count.value, kActiveChannel, home);
}
constexpr auto kCacAbilities = Rows<Home>({Text(2, "Country Code").Note(", %s"), Number(1, "Radios").Into(&Home::count)});
constexpr auto kCacRadio = Rows<Home>({Mac("Radio ID"), Number(1, "CAC Types").Into(&Home::kind)});
constexpr auto kCacType = Rows<Home>({Number(1, "CAC Method", kMethodNames), Number(3, "Time Required", " seconds")});
void ShowCacAbilities(const Place& in, Cursor& c, Home& home) {
  const uint32_t radios = home.count.value;
  Loop loop;
  for (uint32_t i = 0; i < radios && MoreAt(in, c, loop); ++i) {
    ShowRows<Home>(in, c, kCacRadio, home);
    const uint32_t types = home.kind.value;
    Loop within;
    for (uint32_t k = 0; k < types && MoreAt(in, c, within); ++k) {
      ShowRows<Home>(in, c, kCacType, home);
      ShowClasses(in, c, home);
    }
  }
}

// --- networks and priorities ---

constexpr auto kNetworks = Rows<Home>({Number(1, "SSIDs").Into(&Home::count)});
constexpr auto kNetwork = Rows<Home>({Counted(1, Text(0, "SSID")), Number(2, "VLAN ID")});
void ShowNetworks(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kNetwork, home); }
constexpr auto kBssRadio = Rows<Home>({Mac("Radio ID"), Number(1, "BSSs").Into(&Home::inner)});
constexpr auto kBss = Rows<Home>({
    Mac("BSSID"), Word(1), Flag(0, "Backhaul BSS"), Flag(1, "Fronthaul BSS"), Flag(2, "Profile-1 Backhaul Disallowed"),
    Flag(3, "Profile-2 Backhaul Disallowed"), Flag(4, "Multiple BSSID Set"), Flag(5, "Transmitted BSSID"),
    Bits(6, 2, "Reserved"), Hex(1, "Reserved 2"), Counted(1, Text(0, "SSID"))});
void ShowBssReport(const Place& in, Cursor& c, Home& home) { ShowNested(in, c, kBssRadio, kBss, home); }
constexpr auto kBssid = Rows<Home>({Mac("BSSID").Note(", %s")});
constexpr auto kRule = Rows<Home>({
    Hex(4, "Rule ID").Note(", 0x%.08X"), Word(1), Bits(0, 1, "Action", kRuleNames), Bits(1, 7, "Reserved"),
    Number(1, "Precedence"), Number(1, "Output"), Word(1), Flag(0, "Always Match"), Bits(1, 7, "Reserved 2")});
constexpr auto kPriority = Rows<Home>({Number(1, "Priority of Code Point")});
void ShowPriorities(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, 64, kPriority, home); }
constexpr auto kError = Rows<Home>({Number(1, "Reason Code", kErrorNames).Note(", %s").Into(&Home::kind)});
constexpr auto kErrorRule = Rows<Home>({Hex(4, "Rule ID")});
void ShowError(const Place& in, Cursor& c, Home& home) {
  const uint32_t reason = home.kind.value;
  if (reason == 1 || reason == 2) ShowRows<Home>(in, c, kErrorRule, home);
  if (reason == 7 || reason == 8) ShowRows<Home>(in, c, kBssid, home);
}
void ShowObject(const Place& in, Cursor& c, Home&) { ShowJson(in, c); }
constexpr auto kBssids = Rows<Home>({Number(1, "BSSs").Into(&Home::count)});
constexpr auto kAllowed = Rows<Home>({Mac("BSSID"), Number(1, "Association Status", kAllowedNames)});
void ShowAllowed(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kAllowed, home); }
constexpr auto kSource = Rows<Home>({Mac("Source MAC Address").Note(", %s")});
constexpr auto kTunneledType = Rows<Home>({Number(1, "Tunneled Message Type", kTunneledNames).Note(", %s")});
constexpr auto kTunneled = Rows<Home>({Bytes(0, "Tunneled Frame Body")});

// --- steering and statistics ---

constexpr auto kSteering = Rows<Home>({
    Mac("BSSID").Note(", %s"), Word(1), Bits(0, 1, "Request Mode", kSteeringModes), Flag(1, "BTM Disassociation Imminent"),
    Flag(2, "BTM Abridged"), Bits(3, 5, "Reserved"), Number(2, "Steering Opportunity Window", " seconds"),
    Number(2, "BTM Disassociation Timer", " TU"), Number(1, "Stations").Into(&Home::count)});
constexpr auto kStation = Rows<Home>({Mac("Station MAC Address")});
constexpr auto kTargets = Rows<Home>({Number(1, "Targets").Into(&Home::count)});
constexpr auto kTarget = Rows<Home>({
    Mac("Target BSSID"), Number(1, "Target Operating Class"), Number(1, "Target Channel"), Number(1, "Reason Code")});
void ShowSteering(const Place& in, Cursor& c, Home& home) {
  ShowCounted(in, c, home.count.value, kStation, home);
  ShowRows<Home>(in, c, kTargets, home);
  ShowCounted(in, c, home.count.value, kTarget, home);
}
constexpr auto kUnsuccessful = Rows<Home>({
    Word(1), Flag(0, "Report Unsuccessful Associations"), Bits(1, 7, "Reserved"),
    Number(4, "Maximum Reporting Rate", " a minute")});
constexpr auto kInterval = Rows<Home>({Number(4, "Collection Interval", " ms")});
constexpr auto kRadioMetrics = Rows<Home>({
    Mac("Radio ID").Note(", %s"), Number(1, "Noise"), Number(1, "Transmit"), Number(1, "Receive Self"),
    Number(1, "Receive Other")});
constexpr auto kExtended = Rows<Home>({
    Mac("BSSID").Note(", %s"), Number(4, "Unicast Bytes Sent"), Number(4, "Unicast Bytes Received"),
    Number(4, "Multicast Bytes Sent"), Number(4, "Multicast Bytes Received"), Number(4, "Broadcast Bytes Sent"),
    Number(4, "Broadcast Bytes Received")});
constexpr auto kLinks = Rows<Home>({Mac("Station MAC Address").Note(", %s"), Number(1, "BSSs").Into(&Home::count)});
constexpr auto kLink = Rows<Home>({
    Mac("BSSID"), Number(4, "Last Data Downlink Rate", " kbit/s"), Number(4, "Last Data Uplink Rate", " kbit/s"),
    Number(4, "Utilization Receive"), Number(4, "Utilization Transmit")});
void ShowLinks(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kLink, home); }
constexpr auto kStatus = Rows<Home>({Number(2, "Status Code")});
constexpr auto kReason = Rows<Home>({Number(2, "Reason Code")});

// --- onboarding ---

constexpr auto kEncapsulated = Rows<Home>({
    Word(1).Into(&Home::flags), Flag(0, "Enrollee MAC Address Present"), Bits(1, 1, "Reserved"),
    Bits(2, 1, "Frame", kEncapsulatedNames), Bits(3, 5, "Reserved 2")});
constexpr auto kEnrollee = Rows<Home>({Mac("Enrollee MAC Address").Note(", %s")});
constexpr auto kEncapsulatedFrame = Rows<Home>({Number(1, "Frame Type"), Counted(2, Bytes(0, "Encapsulated Frame"))});
void ShowEncapsulated(const Place& in, Cursor& c, Home& home) {
  if (home.flags.value & kIncluded) ShowRows<Home>(in, c, kEnrollee, home);
  ShowRows<Home>(in, c, kEncapsulatedFrame, home);
}
void ShowCarriedEapol(const Place& in, Cursor& c, Home&) {
  Cursor carried = TakeCursor(c, Left(c));
  CallDecoder(in, carried, DecodeEapol, "EAPOL Frame");
}
constexpr auto kBootstrapping = Rows<Home>({
    Mac("Radio ID"), Mac("Local Interface"), Mac("Backhaul Station"), Utf8(0, "DPP URI").Note(", %s")});
constexpr auto kBackhaulBss = Rows<Home>({
    Mac("BSSID").Note(", %s"), Word(1), Flag(0, "Profile-1 Backhaul Disallowed"), Flag(1, "Profile-2 Backhaul Disallowed"),
    Bits(2, 6, "Reserved")});
constexpr auto kDpp = Rows<Home>({Bytes(0, "DPP Frame")});
constexpr auto kCce = Rows<Home>({Number(1, "Advertise CCE", kFalseTrueNames).Note(", %s")});
constexpr auto kChirp = Rows<Home>({
    Word(1).Into(&Home::flags), Flag(0, "Enrollee MAC Address Present"), Flag(1, "Hash Valid"), Bits(2, 6, "Reserved")});
constexpr auto kHash = Rows<Home>({Counted(1, Bytes(0, "Hash Value"))});
void ShowChirp(const Place& in, Cursor& c, Home& home) {
  if (home.flags.value & kIncluded) ShowRows<Home>(in, c, kEnrollee, home);
  ShowRows<Home>(in, c, kHash, home);
}
constexpr auto kInventory = Rows<Home>({
    Counted(1, Utf8(0, "Serial Number")), Counted(1, Utf8(0, "Software Version")), Counted(1, Utf8(0, "Execution Environment")),
    Number(1, "Radios").Into(&Home::count)});
constexpr auto kChipset = Rows<Home>({Mac("Radio ID"), Counted(1, Utf8(0, "Chipset Vendor"))});
void ShowChipsets(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kChipset, home); }
constexpr auto kAgents = Rows<Home>({Number(1, "Agents").Into(&Home::count)});
constexpr auto kAgent = Rows<Home>({
    Mac("AL MAC Address"), Number(1, "Profile", kProfiles), Number(1, "Security", kSecurityNames)});
void ShowAgents(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kAgent, home); }

constexpr auto kElements = Choices<Home>({
    {0xA4, "Channel Scan Reporting Policy", kScanPolicy}, {0xA5, "Channel Scan Capabilities", {}, ShowScanAbilities},
    {0xA6, "Channel Scan Request", kScanRequest, ShowScanRequest}, {0xA7, "Channel Scan Result", kScanResult, ShowScanResult},
    {0xA9, "1905 Layer Security Capability", kLayerSecurity}, {0xAA, "AP Wi-Fi 6 Capabilities", kWifi6, ShowWifi6},
    {0xAB, "MIC", kMic}, {0xAC, "Encrypted Payload", kEncrypted}, {0xAD, "CAC Request", kRadios, ShowCacRequest},
    {0xAE, "CAC Termination", kRadios, ShowCacEnd}, {0xAF, "CAC Completion Report", kRadios, ShowCacDone},
    {0xB0, "Associated Wi-Fi 6 STA Status Report", kQueues, ShowQueues},
    {0xB1, "CAC Status Report", kAvailable, ShowCacStatus}, {0xB2, "CAC Capabilities", kCacAbilities, ShowCacAbilities},
    {0xB4, "Profile-2 AP Capability", kApAbility}, {0xB6, "Traffic Separation Policy", kNetworks, ShowNetworks},
    {0xB7, "BSS Configuration Report", kRadios, ShowBssReport}, {0xB8, "BSSID", kBssid},
    {0xB9, "Service Prioritization Rule", kRule}, {0xBA, "DSCP Mapping Table", {}, ShowPriorities},
    {0xBB, "BSS Configuration Request", {}, ShowObject}, {0xBC, "Profile-2 Error Code", kError, ShowError},
    {0xBD, "BSS Configuration Response", {}, ShowObject}, {0xBE, "AP Radio Advanced Capabilities", kAdvanced},
    {0xBF, "Association Status Notification", kBssids, ShowAllowed}, {0xC0, "Source Info", kSource},
    {0xC1, "Tunneled Message Type", kTunneledType}, {0xC2, "Tunneled", kTunneled},
    {0xC3, "Profile-2 Steering Request", kSteering, ShowSteering}, {0xC4, "Unsuccessful Association Policy", kUnsuccessful},
    {0xC5, "Metric Collection Interval", kInterval}, {0xC6, "Radio Metrics", kRadioMetrics},
    {0xC7, "AP Extended Metrics", kExtended}, {0xC8, "Associated STA Extended Link Metrics", kLinks, ShowLinks},
    {0xC9, "Status Code", kStatus}, {0xCA, "Reason Code", kReason},
    {0xCB, "Backhaul STA Radio Capabilities", kBackhaulRadio, ShowBackhaulStation},
    {0xCC, "AKM Suite Capabilities", kBackhaulSuites, ShowSuites},
    {0xCD, "1905 Encapsulated DPP", kEncapsulated, ShowEncapsulated}, {0xCE, "1905 Encapsulated EAPOL", {}, ShowCarriedEapol},
    {0xCF, "DPP Bootstrapping URI Notification", kBootstrapping}, {0xD0, "Backhaul BSS Configuration", kBackhaulBss},
    {0xD1, "DPP Message", kDpp}, {0xD2, "DPP CCE Indication", kCce}, {0xD3, "DPP Chirp Value", kChirp, ShowChirp},
    {0xD4, "Device Inventory", kInventory, ShowChipsets}, {0xD5, "Agent List", kAgents, ShowAgents}});

}  // namespace

const Choice<HomeNetwork>* FindProfileElement(uint32_t type) { return FindChoice<HomeNetwork>(kElements, type); }

}  // namespace qxview
