// The information elements of GTP (3GPP TS 29.060 7.7) for mobility between nodes, multicast and broadcast (MBMS), and of later
// releases. What the containers of other protocols hold (RANAP, BSSGP, RRC, CAMEL) is those protocols' own and shown as bytes.
#include "core/times.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/common/mobile_identity.h"
#include "decoders/net/gtp_names.h"
#include "decoders/net/gtp_parts.h"

namespace qxview {
namespace {

constexpr auto kSecurityNames = SortedNames({
    {0, "Used Cipher, UMTS Keys and Quintuplets"}, {1, "GSM Key and Triplets"}, {2, "UMTS Keys and Quintuplets"},
    {3, "GSM Key and Quintuplets"}});
constexpr auto kCipherNames = SortedNames({
    {0, "No Ciphering"}, {1, "GEA/1"}, {2, "GEA/2"}, {3, "GEA/3"}, {4, "GEA/4"}, {5, "GEA/5"}, {6, "GEA/6"}, {7, "GEA/7"}});
constexpr auto kDiscriminatorNames = SortedNames({
    {0, "GERAN Cell"}, {1, "UTRAN RNC"}, {2, "E-UTRAN eNodeB"}, {3, "E-UTRAN HRPD Sector"}});
constexpr auto kControlModeNames = SortedNames({{0, "MS Only"}, {1, "Network Only"}, {2, "MS and Network"}});
constexpr auto kSourceNames = SortedNames({{0, "Source Cell ID"}, {1, "Source RNC ID"}});
constexpr auto kAccessNames = SortedNames({{0, "Closed"}, {1, "Hybrid"}, {2, "Reserved"}, {3, "Reserved"}});
constexpr auto kEnodeNames = SortedNames({{0, "Macro eNodeB ID"}, {1, "Home eNodeB ID"}});
constexpr auto kOperatorNames = SortedNames({{0, "Selected by the UE"}, {1, "Selected by the Network"}});

// ---- The mobility management context: keys and vectors as the security mode says.

constexpr auto kContextHead = Rows<GtpElement>({
    Word(1), Bits(0, 5, "Spare"), Bits(5, 3, "Key Set (CKSN or KSI)"), Word(1),
    Bits(0, 2, "Security Mode", kSecurityNames).Note(": %s").Into(&GtpElement::kind),
    Bits(2, 3, "Vectors").Into(&GtpElement::count), Bits(5, 3, "Used Cipher", kCipherNames)});
constexpr auto kGsmKey = Rows<GtpElement>({Bytes(8, "Kc")});
constexpr auto kUmtsKeys = Rows<GtpElement>({Bytes(16, "Ciphering Key (CK)"), Bytes(16, "Integrity Key (IK)")});
constexpr auto kTriplet = Rows<GtpElement>({Bytes(16, "RAND"), Bytes(4, "SRES"), Bytes(8, "Kc")});
constexpr auto kVectorLength = Rows<GtpElement>({Number(2, "Quintuplet Length").Into(&GtpElement::length)});
constexpr auto kQuintuplet = Rows<GtpElement>({
    Bytes(16, "RAND"), Counted(1, Bytes(0, "XRES")), Bytes(16, "Ciphering Key (CK)"), Bytes(16, "Integrity Key (IK)"),
    Counted(1, Bytes(0, "AUTN"))});
constexpr auto kReception = Rows<GtpElement>({
    Number(1, "Split PG Cycle Code"), Word(1), Bits(0, 4, "DRX Cycle Length Coefficient"), Flag(4, "Split on CCCH"),
    Bits(5, 3, "Non-DRX Timer")});
// What a mobile can do in GPRS (TS 24.008 10.5.5.12) and in LTE (TS 24.301 9.9.3.34); each release added an octet.
constexpr auto kCapabilityLength = Rows<GtpElement>({Number(1, "MS Network Capability Length").Into(&GtpElement::length)});
constexpr auto kCapability1 = Rows<GtpElement>({
    Word(1), Flag(0, "GEA/1"), Flag(1, "Short Messages via Dedicated Channels"), Flag(2, "Short Messages via GPRS"),
    Flag(3, "No Preference of UCS2"), Bits(4, 2, "SS Screening Indicator"), Flag(6, "SoLSA"), Flag(7, "Release 99")});
constexpr auto kCapability2 = Rows<GtpElement>({
    Word(1), Flag(0, "Packet Flow Procedures"), Flag(1, "GEA/2"), Flag(2, "GEA/3"), Flag(3, "GEA/4"), Flag(4, "GEA/5"),
    Flag(5, "GEA/6"), Flag(6, "GEA/7"), Flag(7, "LCS Value Added")});
constexpr auto kCapability3 = Rows<GtpElement>({
    Word(1), Flag(0, "PS Handover to UTRAN Iu"), Flag(1, "PS Handover to E-UTRAN S1"), Flag(2, "EMM Combined Procedures"),
    Flag(3, "ISR"), Flag(4, "SRVCC to GERAN/UTRAN"), Flag(5, "EPC"), Flag(6, "Notification"),
    Flag(7, "GERAN Network Sharing")});
constexpr auto kCapability4 = Rows<GtpElement>({
    Word(1), Flag(0, "User Plane Integrity"), Flag(1, "GIA/4"), Flag(2, "GIA/5"), Flag(3, "GIA/6"), Flag(4, "GIA/7"),
    Flag(5, "Extended PCO"), Flag(6, "Restriction of Enhanced Coverage"), Flag(7, "Dual Connectivity with NR")});
constexpr auto kLteCiphers = Rows<GtpElement>({
    Word(1), Flag(0, "EEA0"), Flag(1, "128-EEA1"), Flag(2, "128-EEA2"), Flag(3, "128-EEA3"), Flag(4, "EEA4"),
    Flag(5, "EEA5"), Flag(6, "EEA6"), Flag(7, "EEA7")});
constexpr auto kLteIntegrity = Rows<GtpElement>({
    Word(1), Flag(0, "EIA0"), Flag(1, "128-EIA1"), Flag(2, "128-EIA2"), Flag(3, "128-EIA3"), Flag(4, "EIA4"),
    Flag(5, "EIA5"), Flag(6, "EIA6"), Flag(7, "EPS-UPIP")});
constexpr auto kUmtsCiphers = Rows<GtpElement>({
    Word(1), Flag(0, "UEA0"), Flag(1, "UEA1"), Flag(2, "UEA2"), Flag(3, "UEA3"), Flag(4, "UEA4"), Flag(5, "UEA5"),
    Flag(6, "UEA6"), Flag(7, "UEA7")});
constexpr auto kUmtsIntegrity = Rows<GtpElement>({
    Word(1), Flag(0, "No Preference of UCS2"), Flag(1, "UIA1"), Flag(2, "UIA2"), Flag(3, "UIA3"), Flag(4, "UIA4"),
    Flag(5, "UIA5"), Flag(6, "UIA6"), Flag(7, "UIA7")});
constexpr auto kLteFeatures1 = Rows<GtpElement>({
    Word(1), Flag(0, "ProSe Direct Discovery"), Flag(1, "ProSe"), Flag(2, "H.245 after Handover"),
    Flag(3, "Access Class Control for CSFB"), Flag(4, "LTE Positioning Protocol"), Flag(5, "Location Services"),
    Flag(6, "1xCS SRVCC"), Flag(7, "Notification")});
constexpr auto kLteFeatures2 = Rows<GtpElement>({
    Word(1), Flag(0, "Extended PCO"), Flag(1, "Header Compression for Control Plane CIoT"),
    Flag(2, "EMM Registration without PDN"), Flag(3, "S1-U Data Transfer"), Flag(4, "User Plane CIoT"),
    Flag(5, "Control Plane CIoT"), Flag(6, "ProSe Relay"), Flag(7, "ProSe Direct Communication")});
constexpr auto kLteFeatures3 = Rows<GtpElement>({
    Word(1), Flag(0, "15 Bearers"), Flag(1, "Service Gap Control"), Flag(2, "N1 Mode"), Flag(3, "Dual Connectivity with NR"),
    Flag(4, "Control Plane Backoff"), Flag(5, "Restriction of Enhanced Coverage"), Flag(6, "V2X over PC5"),
    Flag(7, "Multiple User Plane Bearers")});
constexpr RowSpan<GtpElement> kCapabilities[] = {kCapability1, kCapability2, kCapability3, kCapability4};
constexpr RowSpan<GtpElement> kLteCapabilities[] = {
    kLteCiphers, kLteIntegrity, kUmtsCiphers, kUmtsIntegrity, kLteFeatures1, kLteFeatures2, kLteFeatures3};
template <size_t kCount>
void ShowOctets(const Place& in, Cursor& c, const RowSpan<GtpElement> (&octets)[kCount], GtpElement& element) {
  for (const RowSpan<GtpElement>& octet : octets) {
    if (Left(c) > 0) ShowRows<GtpElement>(in, c, octet, element);
  }
  const Field spare = Rest(c);
  if (spare.length > 0) AddLine(in, spare, "Spare: %s", HexText(spare));
}
void ShowLteCapability(const Place& in, Cursor& c, GtpElement& element) { ShowOctets(in, c, kLteCapabilities, element); }
void ShowCapability(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kCapabilityLength, element);
  Cursor octets = TakeCursor(c, static_cast<int64_t>(element.length.value));
  ShowOctets(in, octets, kCapabilities, element);
}
constexpr auto kContainer = Rows<GtpElement>({Counted(2, Bytes(0, "Container"))});

void ShowVectors(const Place& at, Cursor& c, uint32_t count, bool isTriplet, GtpElement& element) {
  if (!isTriplet) {
    ShowRows<GtpElement>(at, c, kVectorLength, element);
    c.ranShort = false;
  }
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(at, c, loop); ++i) {
    const Place in = Under(at, AddLine(at, AheadCut(c, isTriplet ? 28 : 0), "Authentication Vector %u", i + 1));
    ShowRows<GtpElement>(in, c, isTriplet ? RowSpan<GtpElement>(kTriplet) : RowSpan<GtpElement>(kQuintuplet), element);
  }
}
void ShowMobility(const Place& in, Cursor& c, GtpElement& element) {
  constexpr uint32_t kTriplets = 1, kGsmQuintuplets = 3;
  ShowRows<GtpElement>(in, c, kContextHead, element);
  const uint32_t mode = element.kind.value, vectors = element.count.value;
  const bool hasGsmKey = mode == kTriplets || mode == kGsmQuintuplets;
  ShowRows<GtpElement>(in, c, hasGsmKey ? RowSpan<GtpElement>(kGsmKey) : RowSpan<GtpElement>(kUmtsKeys), element);
  ShowVectors(in, c, vectors, mode == kTriplets, element);
  ShowRows<GtpElement>(in, c, kReception, element);
  ShowCapability(in, c, element);
  if (Left(c) >= 2) ShowRows<GtpElement>(in, c, kContainer, element);
}

// ---- Handing over between nodes.

constexpr auto kTarget = Rows<GtpElement>({
    Hex(2, "Location Area Code (LAC)"), Hex(1, "Routing Area Code (RAC)"), Number(2, "RNC ID")});
constexpr auto kExtendedRnc = Rows<GtpElement>({Number(2, "Extended RNC ID")});
void ShowTarget(const Place& in, Cursor& c, GtpElement& element) {
  AddNetwork(in, TakeBytes(c, 3), "Network");
  ShowRows<GtpElement>(in, c, kTarget, element);
  if (Left(c) >= 2) ShowRows<GtpElement>(in, c, kExtendedRnc, element);
}
constexpr auto kBearer = Rows<GtpElement>({Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "NSAPI").Note(": NSAPI %u")});
constexpr auto kTunnel = Rows<GtpElement>({Hex(4, "RNC TEID")});
void ShowRadioBearer(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kBearer, element);
  if (Left(c) < 4) return;
  ShowRows<GtpElement>(in, c, kTunnel, element);
  ShowGtpAddress(in, c, element);
}
constexpr auto kPduNumbers = Rows<GtpElement>({
    Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "NSAPI").Note(": NSAPI %u"), Number(2, "Downlink GTP-U Sequence Number"),
    Number(2, "Uplink GTP-U Sequence Number"), Number(2, "Send N-PDU Number"), Number(2, "Receive N-PDU Number")});
constexpr auto kCells = Rows<GtpElement>({
    Bytes(8, "Target Cell ID"), Number(1, "Source Type", kSourceNames), Bytes(0, "Source ID")});
constexpr auto kFlowHead = Rows<GtpElement>({Number(1, "Packet Flows")});
constexpr auto kFlow = Rows<GtpElement>({Word(1), Bits(0, 1, "Spare"), Bits(1, 7, "Packet Flow ID")});
void ShowFlows(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kFlowHead, element);
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<GtpElement>(in, c, kFlow, element);
}
constexpr auto kExchange = Rows<GtpElement>({
    Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "SAPI"), Counted(1, Bytes(0, "XID Parameters"))});
constexpr auto kRadioContinuity = Rows<GtpElement>({
    Counted(1, Bytes(0, "MS Classmark 2")), Counted(1, Bytes(0, "MS Classmark 3")),
    Counted(1, Bytes(0, "Supported Codec List"))});
constexpr auto kDiscriminator = Rows<GtpElement>({
    Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "Discriminator", kDiscriminatorNames)});
constexpr auto kReliable = Rows<GtpElement>({Word(1), Bits(0, 7, "Spare"), Flag(7, "Unnecessary to Repeat")});
constexpr auto kEnode = Rows<GtpElement>({
    Word(1), Bits(0, 6, "Spare"), Bits(6, 2, "eNodeB Type", kEnodeNames)});
constexpr auto kEnodeId = Rows<GtpElement>({Hex(4, "eNodeB ID"), Hex(2, "Tracking Area Code (TAC)")});
void ShowEnode(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kEnode, element);
  AddNetwork(in, TakeBytes(c, 3), "Network");
  ShowRows<GtpElement>(in, c, kEnodeId, element);
}

// ---- Multicast and broadcast.

constexpr auto kBroadcast = Rows<GtpElement>({
    Word(1), Bits(0, 4, "Linked NSAPI"), Bits(4, 4, "Spare"), Hex(4, "Uplink TEID Control Plane"),
    Number(1, "Enhanced NSAPI"), Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "PDP Type Organization", kGtpOrganizationNames),
    Hex(1, "PDP Type Number", kGtpPdpNames)});
constexpr auto kAddressLength = Rows<GtpElement>({Number(1, "Address Length").Into(&GtpElement::length)});
constexpr auto kNameLength = Rows<GtpElement>({Number(1, "Access Point Name Length").Into(&GtpElement::length)});
constexpr auto kTransaction = Rows<GtpElement>({Word(2), Bits(0, 4, "Spare"), Bits(4, 12, "Transaction Identifier")});
void ShowBroadcast(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kBroadcast, element);
  for (int32_t i = 0; i < 2; ++i) {   // of the group, and of the gateway
    ShowRows<GtpElement>(in, c, kAddressLength, element);
    Cursor address = TakeCursor(c, static_cast<int64_t>(element.length.value));
    ShowGtpAddress(in, address, element);
  }
  ShowRows<GtpElement>(in, c, kNameLength, element);
  Cursor name = TakeCursor(c, static_cast<int64_t>(element.length.value));
  if (Left(name) > 0) ShowGtpName(in, name, element);
  if (Left(c) >= 2) ShowRows<GtpElement>(in, c, kTransaction, element);
}
constexpr auto kService = Rows<GtpElement>({Hex(3, "MBMS Service ID").Note(": 0x%.06X")});
void ShowGroup(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kService, element);
  AddNetwork(in, TakeBytes(c, 3), "Network");
}
constexpr auto kAreas = Rows<GtpElement>({Number(1, "Further Service Areas")});
constexpr auto kArea = Rows<GtpElement>({Hex(2, "Service Area Code")});
void ShowAreas(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kAreas, element);
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<GtpElement>(in, c, kArea, element);
}
constexpr auto kDuration = Rows<GtpElement>({Word(3), Bits(0, 17, "Duration", " seconds"), Bits(17, 7, "Days")});
constexpr auto kDistribution = Rows<GtpElement>({
    Hex(4, "Common TEID"), Word(1), Bits(0, 2, "Address Type"), Bits(2, 6, "Address Length").Into(&GtpElement::length)});
constexpr auto kSourceLength = Rows<GtpElement>({
    Word(1), Bits(0, 2, "Address Type"), Bits(2, 6, "Address Length").Into(&GtpElement::length)});
constexpr auto kCompression = Rows<GtpElement>({Number(1, "Header Compression Indicator")});
void ShowDistribution(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kDistribution, element);
  Cursor group = TakeCursor(c, static_cast<int64_t>(element.length.value));
  ShowGtpAddress(in, group, element);
  ShowRows<GtpElement>(in, c, kSourceLength, element);
  Cursor source = TakeCursor(c, static_cast<int64_t>(element.length.value));
  ShowGtpAddress(in, source, element);
  ShowRows<GtpElement>(in, c, kCompression, element);
}
constexpr auto kAcknowledged = Rows<GtpElement>({Word(1), Bits(0, 6, "Spare"), Bits(6, 2, "Distribution")});
constexpr auto kTrace = Rows<GtpElement>({
    Hex(3, "Trace Reference 2"), Hex(2, "Trace Recording Session Reference"), Hex(2, "Triggering Events"),
    Number(1, "Trace Depth"), Hex(1, "List of Interfaces"), Number(1, "Trace Activity Control")});

// ---- Later releases.

constexpr auto kRetention = Rows<GtpElement>({
    Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "NSAPI").Note(": NSAPI %u"), Word(1), Bits(0, 1, "Spare"),
    Bits(1, 1, "Pre-emption Capability"), Bits(2, 4, "Priority Level"), Bits(6, 1, "Spare"),
    Bits(7, 1, "Pre-emption Vulnerability")});
constexpr auto kSubscriber = Rows<GtpElement>({
    Word(4), Bits(0, 5, "Spare"), Bits(5, 27, "Closed Subscriber Group (CSG) ID"), Word(1),
    Bits(0, 2, "Access Mode", kAccessNames), Bits(2, 5, "Spare"), Flag(7, "CSG Member")});
void ShowSubscriber(const Place& in, Cursor& c, GtpElement& element) {
  AddNetwork(in, TakeBytes(c, 3), "Network");
  ShowRows<GtpElement>(in, c, kSubscriber, element);
}
constexpr auto kReporting = Rows<GtpElement>({
    Word(1), Bits(0, 5, "Spare"), Flag(5, "Report Unsubscribed Hybrid Cells"), Flag(6, "Report Subscribed Hybrid Cells"),
    Flag(7, "Report CSG Cells")});
constexpr auto kGroupId = Rows<GtpElement>({Word(4), Bits(0, 5, "Spare"), Bits(5, 27, "Closed Subscriber Group (CSG) ID")});
constexpr auto kMember = Rows<GtpElement>({Word(1), Bits(0, 7, "Spare"), Flag(7, "CSG Member")});
constexpr auto kBitRates = Rows<GtpElement>({
    Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "NSAPI").Note(": NSAPI %u"),
    Number(4, "Aggregate Maximum Bit Rate for Uplink", " kbit/s"),
    Number(4, "Aggregate Maximum Bit Rate for Downlink", " kbit/s")});
constexpr auto kUnitNames = SortedNames({
    {0, "2 Seconds"}, {1, "1 Minute"}, {2, "10 Minutes"}, {3, "1 Hour"}, {4, "10 Hours"}, {7, "Infinite"}});
constexpr auto kTimer = Rows<GtpElement>({Word(1), Bits(0, 3, "Timer Unit", kUnitNames), Bits(3, 5, "Timer Value")});
constexpr auto kLow = Rows<GtpElement>({Word(1), Bits(0, 7, "Spare"), Flag(7, "Low Access Priority")});
constexpr auto kLowOfBearer = Rows<GtpElement>({
    Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "NSAPI").Note(": NSAPI %u"), Word(1), Bits(0, 7, "Spare"),
    Flag(7, "Low Access Priority")});
constexpr auto kHigher = Rows<GtpElement>({Number(1, "Higher Bitrates", kFalseTrueNames)});
constexpr auto kCentralized = Rows<GtpElement>({Word(1), Bits(0, 7, "Spare"), Flag(7, "IMS Centralized Services")});
constexpr auto kSelectionOfBearer = Rows<GtpElement>({
    Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "NSAPI").Note(": NSAPI %u"), Word(1), Bits(0, 6, "Spare"),
    Bits(6, 2, "Selection Mode", kGtpSelectionNames)});
void ShowStamp(const Place& in, Cursor& c, GtpElement&) {
  constexpr int64_t kFrom1900To1970 = 2208988800;
  const Field seconds = TakeU32(c);
  AddLine(in, seconds, "Location Time: %s", UtcText(static_cast<int64_t>(seconds.value) - kFrom1900To1970));
}
constexpr auto kChosen = Rows<GtpElement>({Word(1), Bits(0, 6, "Spare"), Bits(6, 2, "Selection", kOperatorNames)});
constexpr auto kUsage = Rows<GtpElement>({Number(4, nullptr).Note(": %u")});
constexpr auto kMappedUsage = Rows<GtpElement>({Number(2, nullptr).Note(": %u")});
constexpr auto kControlMode = Rows<GtpElement>({Number(1, nullptr, kControlModeNames).Note(": %s")});
constexpr auto kMoreFlags = Rows<GtpElement>({
    Word(1), Bits(0, 6, "Spare"), Flag(6, "Paging Not Forwarded (PNSI)"), Flag(7, "Delay Tolerant Connection (DTCI)")});
constexpr auto kNode = Rows<GtpElement>({Counted(1, Text(0, "Node Name")), Counted(1, Text(0, "Node Realm"))});
constexpr auto kOptimizations = Rows<GtpElement>({
    Word(1), Bits(0, 6, "Spare"), Flag(6, "SCEF PDN Connections"), Flag(7, "SGi PDN Connections")});
constexpr auto kExposure = Rows<GtpElement>({
    Word(1), Bits(0, 4, "Spare"), Bits(4, 4, "NSAPI"), Counted(2, Text(0, "SCEF ID"))});
void ShowExposure(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kNameLength, element);
  Cursor name = TakeCursor(c, static_cast<int64_t>(element.length.value));
  if (Left(name) > 0) ShowGtpName(in, name, element);
  ShowRows<GtpElement>(in, c, kExposure, element);
}
void ShowHomeNetwork(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kBearer, element);
  if (Left(c) > 0) ShowGtpName(in, c, element);
}
constexpr auto kFunctions = Rows<GtpElement>({Word(1), Bits(0, 7, "Spare"), Flag(7, "Dual Connectivity with NR (DCNR)")});
constexpr auto kNumber = Rows<GtpElement>({Number(1, nullptr).Note(": %u")});
constexpr auto kFlowId = Rows<GtpElement>({Number(2, nullptr).Note(": %u")});

constexpr auto kElements = Choices<GtpElement>({
    {129, "MM Context", {}, ShowMobility}, {138, "Target Identification", {}, ShowTarget},
    {140, "RAB Setup Information", {}, ShowRadioBearer}, {145, "PDP Context Prioritization"},
    {146, "Additional RAB Setup Information", {}, ShowRadioBearer}, {156, "MBMS UE Context", {}, ShowBroadcast},
    {157, "Temporary Mobile Group Identity (TMGI)", {}, ShowGroup}, {160, "MBMS Service Area", {}, ShowAreas},
    {162, "Additional Trace Information", kTrace}, {165, "MBMS Session Identifier", kNumber},
    {168, "MBMS Session Duration", kDuration}, {169, "Additional MBMS Trace Information", kTrace},
    {174, "Cell Identification", kCells}, {175, "PDU Numbers", kPduNumbers},
    {178, "RIM Routing Address Discriminator", kDiscriminator}, {179, "List of Set-Up PFCs", {}, ShowFlows},
    {180, "PS Handover XID Parameters", kExchange}, {184, "Bearer Control Mode", kControlMode},
    {185, "MBMS Flow Identifier", kFlowId}, {186, "MBMS IP Multicast Distribution", {}, ShowDistribution},
    {187, "MBMS Distribution Acknowledgement", kAcknowledged}, {188, "Reliable Inter-RAT Handover Info", kReliable},
    {192, "Evolved Allocation/Retention Priority II", kRetention}, {194, "User CSG Information", {}, ShowSubscriber},
    {195, "CSG Information Reporting Action", kReporting}, {196, "CSG ID", kGroupId},
    {197, "CSG Membership Indication", kMember}, {199, "UE Network Capability", {}, ShowLteCapability},
    {201, "APN-AMBR with NSAPI", kBitRates},
    {202, "GGSN Back-Off Time", kTimer}, {203, "Signalling Priority Indication", kLow},
    {204, "Signalling Priority Indication with NSAPI", kLowOfBearer}, {205, "Higher Bitrates than 16 Mbit/s", kHigher},
    {207, "Additional MM Context for SRVCC", kRadioContinuity}, {208, "Additional Flags for SRVCC", kCentralized},
    {212, "eNodeB ID", {}, ShowEnode}, {213, "Selection Mode with NSAPI", kSelectionOfBearer},
    {214, "ULI Timestamp", {}, ShowStamp}, {215, "LHN-ID with NSAPI", {}, ShowHomeNetwork},
    {216, "CN Operator Selection Entity", kChosen}, {217, "UE Usage Type", kUsage},
    {218, "Extended Common Flags II", kMoreFlags}, {219, "Node Identifier", kNode},
    {220, "CIoT Optimizations Support Indication", kOptimizations}, {221, "SCEF PDN Connection", {}, ShowExposure},
    {223, "Mapped UE Usage Type", kMappedUsage}, {224, "UP Function Selection Indication Flags", kFunctions}});

}  // namespace

const Choice<GtpElement>* FindGtpContext(uint32_t type) { return FindChoice<GtpElement>(kElements, type); }

}  // namespace qxview
