// Management messages of power line networks: HomePlug AV and Green PHY (IEEE 1901 clause 17, ISO 15118-3 annex A for the
// association of vehicles with chargers) and, as far as their maker published them, those of the stations themselves.
//
//   version (1)   type (2): 14 bits and what it is (request, confirmation, indication, response)   fragment (2)   body
//   version 0 has no word of fragments; numbers have their low byte first
#include "decoders/link/home_plug.h"

namespace qxview {
namespace {

constexpr uint32_t kVendorTypes = 0xA000;

constexpr auto kTypeNames = SortedNames({
    {0x0000, "CC_CCO_APPOINT"}, {0x0004, "CC_BACKUP_APPOINT"}, {0x0008, "CC_LINK_INFO"}, {0x000C, "CC_HANDOVER"},
    {0x0010, "CC_HANDOVER_INFO"}, {0x0014, "CC_DISCOVER_LIST"}, {0x0018, "CC_LINK_NEW"}, {0x001C, "CC_LINK_MOD"},
    {0x0020, "CC_LINK_SQZ"}, {0x0024, "CC_LINK_REL"}, {0x0028, "CC_DETECT_REPORT"}, {0x002C, "CC_WHO_RU"},
    {0x0030, "CC_ASSOC"}, {0x0034, "CC_LEAVE"}, {0x0038, "CC_SET_TEI_MAP"}, {0x003C, "CC_RELAY"},
    {0x0040, "CC_BEACON_RELIABILITY"}, {0x0044, "CC_ALLOC_MOVE"}, {0x0048, "CC_ACCESS_NEW"}, {0x004C, "CC_ACCESS_REL"},
    {0x0050, "CC_DCPPC"}, {0x0054, "CC_HP1_DET"}, {0x0058, "CC_BLE_UPDATE"}, {0x2000, "CP_PROXY_APPOINT"},
    {0x2004, "PH_PROXY_APPOINT"}, {0x2008, "CP_PROXY_WAKE"}, {0x4000, "NN_INL"}, {0x4004, "NN_NEW_NET"},
    {0x4008, "NN_ADD_ALLOC"}, {0x400C, "NN_REL_ALLOC"}, {0x4010, "NN_REL_NET"}, {0x6000, "CM_UNASSOCIATED_STA"},
    {0x6004, "CM_ENCRYPTED_PAYLOAD"}, {0x6008, "CM_SET_KEY"}, {0x600C, "CM_GET_KEY"}, {0x6010, "CM_SC_JOIN"},
    {0x6014, "CM_CHAN_EST"}, {0x6018, "CM_TM_UPDATE"}, {0x601C, "CM_AMP_MAP"}, {0x6020, "CM_BRG_INFO"},
    {0x6024, "CM_CONN_NEW"}, {0x6028, "CM_CONN_REL"}, {0x602C, "CM_CONN_MOD"}, {0x6030, "CM_CONN_INFO"},
    {0x6034, "CM_STA_CAP"}, {0x6038, "CM_NW_INFO"}, {0x603C, "CM_GET_BEACON"}, {0x6040, "CM_HFID"}, {0x6044, "CM_MME_ERROR"},
    {0x6048, "CM_NW_STATS"}, {0x604C, "CM_LINK_STATS"}, {0x6050, "CM_ROUTE_INFO"}, {0x6054, "CM_UNREACHABLE"},
    {0x6058, "CM_MH_CONN_NEW"}, {0x605C, "CM_EXTENDED_TONEMASK"}, {0x6060, "CM_STA_IDENTIFY"}, {0x6064, "CM_SLAC_PARM"},
    {0x6068, "CM_START_ATTEN_CHAR"}, {0x606C, "CM_ATTEN_CHAR"}, {0x6070, "CM_PKCS_CERT"}, {0x6074, "CM_MNBC_SOUND"},
    {0x6078, "CM_VALIDATE"}, {0x607C, "CM_SLAC_MATCH"}, {0x6080, "CM_SLAC_USER_DATA"}, {0x6084, "CM_ATTEN_PROFILE"},
    {0xA000, "VS_SW_VER"}, {0xA004, "VS_WR_MEM"}, {0xA008, "VS_RD_MEM"}, {0xA00C, "VS_ST_MAC"}, {0xA010, "VS_GET_NVM"},
    {0xA01C, "VS_RS_DEV"}, {0xA020, "VS_WR_MOD"}, {0xA024, "VS_RD_MOD"}, {0xA028, "VS_MOD_NVM"}, {0xA02C, "VS_WD_RPT"},
    {0xA030, "VS_LNK_STATS"}, {0xA034, "VS_SNIFFER"}, {0xA038, "VS_NW_INFO"}, {0xA040, "VS_CP_RPT"}, {0xA048, "VS_FR_LBK"},
    {0xA04C, "VS_LBK_STAT"}, {0xA050, "VS_SET_KEY"}, {0xA054, "VS_MFG_STRING"}, {0xA058, "VS_RD_CBLOCK"},
    {0xA05C, "VS_SET_SDRAM"}, {0xA060, "VS_HOST_ACTION"}, {0xA068, "VS_OP_ATTRIBUTES"}, {0xA06C, "VS_ENET_SETTINGS"},
    {0xA070, "VS_TONE_MAP_CHAR"}, {0xA074, "VS_NW_INFO_STATS"}, {0xA078, "VS_SLAVE_MEM"}, {0xA07C, "VS_FAC_DEFAULTS"},
    {0xA084, "VS_MULTICAST_INFO"}, {0xA08C, "VS_CLASSIFICATION"}});
constexpr auto kKindNames = SortedNames({{0, "Request"}, {1, "Confirmation"}, {2, "Indication"}, {3, "Response"}});
constexpr auto kClassNames = SortedNames({
    {0, "Station to Coordinator"}, {1, "Proxy Coordinator"}, {2, "Coordinator to Coordinator"}, {3, "Station to Station"},
    {4, "Manufacturer Specific"}, {5, "Vendor Specific"}});
constexpr auto kVersionNames = SortedNames({{0, "AV 1.0"}, {1, "AV 1.1"}, {2, "AV 2.0"}});
constexpr auto kKeyNames = SortedNames({
    {0, "DAK (AES-128)"}, {1, "NMK (AES-128)"}, {2, "NEK (AES-128)"}, {3, "TEK (AES-128)"}, {4, "Hash Key"},
    {5, "Nonce Only"}});
constexpr auto kSelectNames = SortedNames({{0, "DAK"}, {1, "NMK"}, {0xF, "No Key"}});
constexpr auto kProtocolNames = SortedNames({
    {0, "Authentication Request by New Station"}, {1, "Provision with New NEK by Coordinator"},
    {2, "Provision with New NMK and NEK by UIS"}, {3, "Provision with New NMK by DAK"}, {4, "Higher Layer"}});
constexpr auto kRoleNames = SortedNames({{0, "Station"}, {1, "Proxy Coordinator"}, {2, "Coordinator"}});
constexpr auto kCoordinatorNames = SortedNames({
    {0, "Level 0"}, {1, "Level 1"}, {2, "Level 2"}, {3, "Level 3"}});
constexpr auto kResultNames = SortedNames({{0, "Success"}, {1, "Failure"}});
constexpr auto kAccessNames = SortedNames({{0, "In-home Network"}, {1, "Access Network"}});
constexpr auto kApplicationNames = SortedNames({{0, "Vehicle and Charger Matching"}});
constexpr auto kSecurityNames = SortedNames({{0, "No Security"}, {1, "Public Key Signature"}});
constexpr auto kReadyNames = SortedNames({{0, "Not Ready"}, {1, "Ready"}, {2, "Success"}, {3, "Failure"},
    {4, "Not Required"}});
constexpr auto kReceiverNames = SortedNames({{0, "Host of This Station"}, {1, "Other Station"}});
constexpr auto kErrorNames = SortedNames({
    {0, "Type Not Supported"}, {1, "Supported, Invalid Fields"}, {2, "Unsupported Feature"}});

using Body = RowSpan<HomePlug>;

constexpr auto kVersion = Rows<HomePlug>({Number(1, "Version", kVersionNames).Into(&HomePlug::version)});
constexpr auto kFragment = LittleRows<HomePlug>({
    Word(1), Bits(0, 4, "Fragments"), Bits(4, 4, "Fragment Number"), Number(1, "Fragment Message Sequence Number")});

// --- keys and networks ---

constexpr auto kUnassociated = LittleRows<HomePlug>({Bytes(7, "Network ID"),
    Number(1, "Coordinator Capability", kCoordinatorNames)});
constexpr auto kEncrypted = LittleRows<HomePlug>({
    Number(1, "Payload Encryption Key Select", kSelectNames), Number(1, "Network Status"),
    Number(1, "Protocol ID", kProtocolNames), Number(2, "Protocol Run Number"), Number(1, "Protocol Message Number"),
    Bytes(16, "Initialization Vector"), Number(2, "Payload Length"), Bytes(0, "Encrypted Payload")});
constexpr auto kEncryptedAnswer = LittleRows<HomePlug>({
    Number(1, "Result", kResultNames), Number(1, "Protocol ID", kProtocolNames), Number(2, "Protocol Run Number")});
constexpr auto kSetKey = LittleRows<HomePlug>({
    Number(1, "Key Type", kKeyNames).Note(", %s"), Hex(4, "My Nonce"), Hex(4, "Your Nonce"),
    Number(1, "Protocol ID", kProtocolNames), Number(2, "Protocol Run Number"), Number(1, "Protocol Message Number"),
    Number(1, "Coordinator Capability", kCoordinatorNames), Bytes(7, "Network ID"),
    Number(1, "New Encryption Key Select", kSelectNames), Bytes(16, "New Key")});
constexpr auto kSetKeyAnswer = LittleRows<HomePlug>({
    Number(1, "Result", kResultNames).Note(", %s"), Hex(4, "My Nonce"), Hex(4, "Your Nonce"),
    Number(1, "Protocol ID", kProtocolNames), Number(2, "Protocol Run Number"), Number(1, "Protocol Message Number"),
    Number(1, "Coordinator Capability", kCoordinatorNames)});
constexpr auto kRequestNames = SortedNames({{0, "Direct"}, {1, "Relayed"}});
constexpr auto kGetKey = LittleRows<HomePlug>({
    Number(1, "Request Type", kRequestNames), Number(1, "Requested Key Type", kKeyNames).Note(", %s"), Bytes(7, "Network ID"),
    Hex(4, "My Nonce"), Number(1, "Protocol ID", kProtocolNames), Number(2, "Protocol Run Number"),
    Number(1, "Protocol Message Number"), Bytes(0, "Hash Key")});
constexpr auto kGetKeyAnswer = LittleRows<HomePlug>({
    Number(1, "Result", kResultNames).Note(", %s"), Number(1, "Requested Key Type", kKeyNames), Hex(4, "My Nonce"),
    Hex(4, "Your Nonce"), Bytes(7, "Network ID"), Number(1, "Encryption Key Select", kSelectNames),
    Number(1, "Protocol ID", kProtocolNames), Number(2, "Protocol Run Number"), Number(1, "Protocol Message Number"),
    Bytes(0, "Key")});
constexpr auto kJoin = LittleRows<HomePlug>({Number(1, "Coordinator Capability", kCoordinatorNames)});
constexpr auto kAmplitude = LittleRows<HomePlug>({Number(2, "Carriers"), Bytes(0, "Amplitude Map")});
constexpr auto kResponseOnly = LittleRows<HomePlug>({Number(1, "Response", kResultNames).Note(", %s")});
constexpr auto kBridge = LittleRows<HomePlug>({
    Number(1, "Bridging", kFalseTrueNames), Number(1, "Bridge TEI"), Number(1, "Bridged Addresses").Into(&HomePlug::count)});
constexpr auto kBridged = LittleRows<HomePlug>({Mac("Bridged Address")});
constexpr auto kStationAbilities = LittleRows<HomePlug>({
    Number(1, "Station Version", kVersionNames), Mac("MAC Address").Note(", %s"), Number(3, "OUI").Hex(),
    Number(1, "Auto Connect"), Number(1, "Smoothing"), Number(1, "Coordinator Capability", kCoordinatorNames),
    Number(1, "Proxy Capable"), Number(1, "Backup Coordinator Capable"), Number(1, "Soft Handover"),
    Number(1, "Two Symbol Frame Control"), Number(2, "Maximum Frame Length"), Number(1, "HomePlug 1.1 Capable"),
    Number(1, "HomePlug 1.0.1 Interoperable"), Number(1, "Regulatory Capability"), Number(1, "Bidirectional Bursting"),
    Number(2, "Implementation Version")});
constexpr auto kNetworks = LittleRows<HomePlug>({Number(1, "Networks").Into(&HomePlug::count)});
constexpr auto kNetwork = LittleRows<HomePlug>({
    Bytes(7, "Network ID"), Number(1, "Short Network ID"), Number(1, "TEI"), Number(1, "Station Role", kRoleNames),
    Mac("Coordinator MAC Address"), Number(1, "Access", kAccessNames), Number(1, "Coordinating Networks")});
constexpr auto kStations = LittleRows<HomePlug>({Number(1, "Stations").Into(&HomePlug::count)});
constexpr auto kStationRates = LittleRows<HomePlug>({
    Mac("Station MAC Address"), Number(1, "Average Transmit Rate", " Mbit/s"), Number(1, "Average Receive Rate", " Mbit/s")});
constexpr auto kFriendlyNames = SortedNames({{0, "User HFID"}, {1, "Manufacturer HFID"}, {2, "Network HFID"},
    {3, "Set User HFID"},
                                             {4, "Set Network HFID"}});
constexpr auto kFriendly = LittleRows<HomePlug>({Number(1, "Request Type", kFriendlyNames)});
constexpr auto kFriendlyAnswer = LittleRows<HomePlug>({Number(1, "Response Type", kFriendlyNames),
    Text(64, "Human-Friendly ID").Note(", %s")});
constexpr auto kErrorBody = LittleRows<HomePlug>({
    Number(1, "Reason", kErrorNames).Note(", %s"), Number(1, "Received Version"), Hex(2, "Received Type"),
    Number(2, "Invalid Byte Offset")});
constexpr auto kFound = LittleRows<HomePlug>({
    Mac("Station MAC Address"), Number(1, "TEI"), Number(1, "Same Network", kFalseTrueNames), Word(1), Bits(0, 4, "Reserved"),
    Bits(4, 4, "Short Network ID"), Word(1), Bits(0, 1, "Backup Coordinator Status"),
    Bits(1, 1, "Backup Coordinator Capability"), Bits(2, 1, "Proxy Status"), Bits(3, 1, "Proxy Capability"),
    Bits(4, 1, "Coordinator Status"), Bits(5, 1, "Reserved 2"), Bits(6, 2, "Coordinator Capability"),
    Number(1, "Signal Level"), Number(1, "Average Bit Loading")});
constexpr auto kFoundNetworks = LittleRows<HomePlug>({Number(1, "Networks").Into(&HomePlug::count)});
constexpr auto kFoundNetwork = LittleRows<HomePlug>({
    Bytes(7, "Network ID"), Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Short Network ID"), Number(1, "Hybrid Mode"),
    Number(1, "Beacon Slots"), Number(1, "Coordinating Status"), Number(2, "Beacon Offset")});

// --- vehicles and chargers ---

constexpr auto kParameters = LittleRows<HomePlug>({
    Number(1, "Application Type", kApplicationNames), Number(1, "Security Type", kSecurityNames),
    Bytes(8, "Run ID").Note(", Run %s")});
constexpr auto kSuites = LittleRows<HomePlug>({Number(1, "Cipher Suite Set Size").Into(&HomePlug::count)});
constexpr auto kSuite = LittleRows<HomePlug>({Hex(2, "Cipher Suite")});
constexpr auto kParametersAnswer = LittleRows<HomePlug>({
    Mac("Sound Target"), Number(1, "Number of Sounds"), Number(1, "Time Out", " x 100 ms"),
    Number(1, "Response Type", kReceiverNames), Mac("Forwarding Station"), Number(1, "Application Type", kApplicationNames),
    Number(1, "Security Type", kSecurityNames), Bytes(8, "Run ID").Note(", Run %s")});
constexpr auto kStart = LittleRows<HomePlug>({
    Number(1, "Application Type", kApplicationNames), Number(1, "Security Type", kSecurityNames),
    Number(1, "Number of Sounds"), Number(1, "Time Out", " x 100 ms"), Number(1, "Response Type", kReceiverNames),
    Mac("Forwarding Station"), Bytes(8, "Run ID").Note(", Run %s")});
constexpr auto kCharacter = LittleRows<HomePlug>({
    Number(1, "Application Type", kApplicationNames), Number(1, "Security Type", kSecurityNames), Mac("Source Address"),
    Bytes(8, "Run ID").Note(", Run %s"), Bytes(17, "Source ID"), Bytes(17, "Response ID")});
constexpr auto kGroups = LittleRows<HomePlug>({
    Number(1, "Number of Sounds"), Number(1, "Number of Groups").Into(&HomePlug::count)});
constexpr auto kGroup = LittleRows<HomePlug>({Number(1, "Average Attenuation", " dB")});
constexpr auto kResult = LittleRows<HomePlug>({Number(1, "Result", kResultNames).Note(", %s")});
constexpr auto kSound = LittleRows<HomePlug>({
    Number(1, "Application Type", kApplicationNames), Number(1, "Security Type", kSecurityNames), Bytes(17, "Sender ID"),
    Number(1, "Remaining Sounds"), Bytes(8, "Run ID").Note(", Run %s"), Bytes(8, "Reserved"), Bytes(16, "Random Value")});
constexpr auto kSignalNames = SortedNames({{0, "PEV S2 Toggles on Control Pilot"}});
constexpr auto kValidate = LittleRows<HomePlug>({
    Number(1, "Signal Type", kSignalNames), Number(1, "Timer", " x 100 ms"), Number(1, "Result", kReadyNames).Note(", %s")});
constexpr auto kValidateAnswer = LittleRows<HomePlug>({
    Number(1, "Signal Type", kSignalNames), Number(1, "Toggles"), Number(1, "Result", kReadyNames).Note(", %s")});
constexpr auto kMatch = LittleRows<HomePlug>({
    Number(1, "Application Type", kApplicationNames), Number(1, "Security Type", kSecurityNames),
    Number(2, "Match Field Length"), Bytes(17, "Vehicle ID"), Mac("Vehicle MAC Address"), Bytes(17, "Charger ID"),
    Mac("Charger MAC Address"), Bytes(8, "Run ID").Note(", Run %s"), Bytes(8, "Reserved")});
constexpr auto kMatchKey = LittleRows<HomePlug>({Bytes(7, "Network ID"), Number(1, "Reserved"),
    Bytes(16, "Network Membership Key")});
constexpr auto kProfile = LittleRows<HomePlug>({
    Mac("Vehicle MAC Address"), Number(1, "Number of Groups").Into(&HomePlug::count), Number(1, "Reserved")});
constexpr auto kUserData = LittleRows<HomePlug>({Bytes(0, "User Data")});

// --- of a station's maker ---

constexpr auto kVendor = Rows<HomePlug>({Hex(3, "OUI")});
void ShowDiscovered(const Place& in, Cursor& c, HomePlug& out) {
  ShowList(in, c, kFound, out);
  ShowRows<HomePlug>(in, c, kFoundNetworks, out);
  ShowList(in, c, kFoundNetwork, out);
}
void ShowSuites(const Place& in, Cursor& c, HomePlug& out) {
  if (Left(c) < 1) return;
  ShowRows<HomePlug>(in, c, kSuites, out);
  ShowList(in, c, kSuite, out);
}
void ShowSuite(const Place& in, Cursor& c, HomePlug& out) {
  if (Left(c) >= 2) ShowRows<HomePlug>(in, c, kSuite, out);
}
void ShowGroups(const Place& in, Cursor& c, HomePlug& out) {
  ShowRows<HomePlug>(in, c, kGroups, out);
  ShowList(in, c, kGroup, out);
}

// Associations, and who holds which of the network's numbers.
constexpr auto kJoinNames = SortedNames({{0, "New"}, {1, "Renewal"}});
constexpr auto kJoinResults = SortedNames({{0, "Success"}, {1, "Failure"}, {2, "Failure, Temporary Resource Exhaustion"},
                                           {3, "Failure, Permanent Resource Exhaustion"}});
constexpr auto kAssociate = LittleRows<HomePlug>({
    Number(1, "Request Type", kJoinNames), Bytes(7, "Network ID"), Number(1, "Coordinator Capability", kCoordinatorNames),
    Number(1, "Proxy Network Capability")});
constexpr auto kAssociated = LittleRows<HomePlug>({
    Number(1, "Result", kJoinResults).Note(", %s"), Bytes(7, "Network ID"), Number(1, "Short Network ID"), Number(1, "TEI"),
    Number(2, "Lease Time", " minutes")});
constexpr auto kMapModes = SortedNames({{0, "Update"}, {1, "Add"}, {2, "Delete"}});
constexpr auto kMap = LittleRows<HomePlug>({Number(1, "Mode", kMapModes), Number(1, "Entries").Into(&HomePlug::count)});
constexpr auto kMapEntry = LittleRows<HomePlug>({
    Number(1, "TEI"), Mac("Station MAC Address"), Number(1, "Station Status")});

constexpr HomePlugMessage kMessages[] = {
    {0x0014 | kConfirmation, kStations, {}, ShowDiscovered}, {0x0030 | kRequest, kAssociate, {}, nullptr},
    {0x0030 | kConfirmation, kAssociated, {}, nullptr}, {0x0038 | kIndication, kMap, kMapEntry, nullptr},
    {0x6000 | kIndication, kUnassociated, {}, nullptr},
    {0x6004 | kIndication, kEncrypted, {}, nullptr}, {0x6004 | kResponse, kEncryptedAnswer, {}, nullptr},
    {0x6008 | kRequest, kSetKey, {}, nullptr}, {0x6008 | kConfirmation, kSetKeyAnswer, {}, nullptr},
    {0x600C | kRequest, kGetKey, {}, nullptr}, {0x600C | kConfirmation, kGetKeyAnswer, {}, nullptr},
    {0x6010 | kRequest, kJoin, {}, nullptr}, {0x6010 | kConfirmation, kJoin, {}, nullptr},
    {0x601C | kRequest, kAmplitude, {}, nullptr}, {0x601C | kConfirmation, kResponseOnly, {}, nullptr},
    {0x6020 | kConfirmation, kBridge, kBridged, nullptr}, {0x6034 | kConfirmation, kStationAbilities, {}, nullptr},
    {0x6038 | kConfirmation, kNetworks, kNetwork, nullptr}, {0x6040 | kRequest, kFriendly, {}, nullptr},
    {0x6040 | kConfirmation, kFriendlyAnswer, {}, nullptr}, {0x6044 | kIndication, kErrorBody, {}, nullptr},
    {0x6048 | kConfirmation, kStations, kStationRates, nullptr}, {0x6064 | kRequest, kParameters, {}, ShowSuites},
    {0x6064 | kConfirmation, kParametersAnswer, {}, ShowSuite}, {0x6068 | kIndication, kStart, {}, nullptr},
    {0x606C | kIndication, kCharacter, {}, ShowGroups}, {0x606C | kResponse, kCharacter, kResult, nullptr},
    {0x6074 | kIndication, kSound, {}, nullptr}, {0x6078 | kRequest, kValidate, {}, nullptr},
    {0x6078 | kConfirmation, kValidateAnswer, {}, nullptr}, {0x607C | kRequest, kMatch, {}, nullptr},
    {0x607C | kConfirmation, kMatch, kMatchKey, nullptr}, {0x6080 | kRequest, kUserData, {}, nullptr},
    {0x6080 | kConfirmation, kUserData, {}, nullptr}, {0x6084 | kIndication, kProfile, kGroup, nullptr}};

}  // namespace

int32_t DecodeHomePlug(const Place& at, Cursor c) {
  constexpr int32_t kShortest = 3;
  if (Left(c) < kShortest) return 0;
  const uint32_t type = PeekLittleU16(c, 1), kind = type & 3, base = type & ~3u;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "HomePlug AV: %s, %s", LookupName(kTypeNames, base),
                                     LookupName(kKindNames, kind)));
  HomePlug out = ShowRows(in, c, kVersion);
  const Field typeField = TakeLittleU16(c);
  const Place under = Under(in, AddLine(in, typeField, "Message Type: 0x%.04X = %s", type, LookupName(kTypeNames, base)));
  AddLine(under, typeField, "Class: %u = %s", type >> 13, LookupName(kClassNames, type >> 13));
  AddLine(under, typeField, "Kind: %u = %s", kind, LookupName(kKindNames, kind));
  if (out.version.value) ShowRows<HomePlug>(in, c, kFragment, out);
  if (base >= kVendorTypes) ShowRows<HomePlug>(in, c, kVendor, out);
  const HomePlugMessage* message = FindMakerMessage(type);
  for (const HomePlugMessage& each : kMessages) {
    if (each.type == type) message = &each;
  }
  if (message) {
    ShowRows<HomePlug>(in, c, message->rows, out);
    // Rows behind the first that nothing counts stand there once.
    if (message->list.count && out.count.here) ShowList(in, c, message->list, out);
    else if (message->list.count) ShowRows<HomePlug>(in, c, message->list, out);
    if (message->show) message->show(in, c, out);
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "HomePlug Data");
  return 1;
}

}  // namespace qxview
