// The TLVs that objects of the Path Computation Element communication Protocol end in (RFC 5440, 5541, 8231, 8232, 8281,
// 8306, 8408, 8664, 8685, 8697, 8733, 8745, 8779, 8800, 8934, 9168, 9256 and others).
//
//   type (2)   length (2)   value, filled up to four octets
#include "core/line_facts.h"
#include "decoders/common/traffic_engineering.h"
#include "decoders/routing/bgp.h"
#include "decoders/routing/pcep.h"
#include "decoders/routing/rsvp.h"

namespace qxview {
namespace {

constexpr auto kNoPathMasks = SortedNames({
    {0x00000001, "PCE Currently Unavailable"}, {0x00000002, "Unknown Destination"}, {0x00000004, "Unknown Source"},
    {0x00000008, "BRPC Path Computation Chain Unavailable"}, {0x00000010, "PKS Expansion Failure"},
    {0x00000020, "No GCO Migration Path Found"}, {0x00000040, "No GCO Solution Found"},
    {0x00000080, "P2MP Reachability Problem"}});
constexpr auto kHierarchyMasks = SortedNames({{0x00000001, "Parent PCE Request"}});
constexpr auto kHierarchyFlagMasks = SortedNames({{0x00000001, "Domain ID Requested"}, {0x00000002, "Disallow Domain Re-Entry"}});
constexpr auto kStatefulMasks = SortedNames({
    {0x00000001, "LSP Update"}, {0x00000002, "Include DB Version"}, {0x00000004, "LSP Instantiation"},
    {0x00000008, "Triggered Resync"}, {0x00000010, "Delta LSP Sync"}, {0x00000020, "Triggered Initial Sync"},
    {0x00000040, "P2MP Capability"}, {0x00000080, "P2MP LSP Update"}, {0x00000100, "P2MP LSP Instantiation"},
    {0x00000200, "LSP Scheduling"}, {0x00000400, "PD LSP Capability"}, {0x00000800, "Color Capability"}});
constexpr auto kDomainNames = SortedNames({
    {1, "2-Octet AS Number"}, {2, "4-Octet AS Number"}, {3, "OSPF Area ID"}, {4, "IS-IS Area ID"}});
constexpr auto kLspErrorNames = SortedNames({
    {1, "Unknown Reason"}, {2, "Limit Reached for PCE-Controlled LSPs"}, {3, "Too Many Pending LSP Update Requests"},
    {4, "Unacceptable Parameters"}, {5, "Internal Error"}, {6, "LSP Administratively Brought Down"}, {7, "LSP Preempted"},
    {8, "RSVP Signaling Error"}});
constexpr auto kSetupNames = SortedNames({
    {0, "RSVP-TE"}, {1, "Segment Routing"}, {2, "PCECC"}, {3, "SRv6"}, {4, "Native IP"}});
constexpr auto kBindingNames = SortedNames({
    {0, "MPLS Label"}, {1, "MPLS Label Stack Entry"}, {2, "SRv6 SID"}, {3, "SRv6 SID with Behavior and Structure"}});
constexpr auto kOriginNames = SortedNames({{10, "PCEP"}, {20, "BGP SR Policy"}, {30, "Configuration"}});

constexpr auto kNoPath = Rows<Pcep>({Flags(4, "No Path Flags", kNoPathMasks)});
constexpr auto kSeconds = Rows<Pcep>({Number(4, "Overload Duration", " seconds").Note(", %u seconds")});
constexpr auto kRequest = Rows<Pcep>({Hex(4, "Request ID")});
constexpr auto kObjective = Rows<Pcep>({Number(2, "Objective Function", PcepObjectiveName).Note(", %s")});
constexpr auto kOrder = Rows<Pcep>({Number(4, "Delete Order"), Number(4, "Setup Order")});
constexpr auto kReserved = Rows<Pcep>({Hex(2, "Reserved")});
constexpr auto kVendor = Rows<Pcep>({Number(4, "Enterprise Number").Note(", %u"), Bytes(0, "Enterprise Data")});
constexpr auto kHierarchy = Rows<Pcep>({Flags(4, "H-PCE Capability Flags", kHierarchyMasks)});
constexpr auto kHierarchyFlags = Rows<Pcep>({Flags(4, "H-PCE Flags", kHierarchyFlagMasks)});
constexpr auto kDomain = Rows<Pcep>({
    Number(1, "Domain Type", kDomainNames).Note(", %s"), Hex(3, "Reserved"), Bytes(0, "Domain ID")});
constexpr auto kStateful = Rows<Pcep>({Flags(4, "Stateful Capability Flags", kStatefulMasks)});
constexpr auto kName = Rows<Pcep>({Utf8(0, "Name").Note(", %s")});
constexpr auto kIdentifiers4 = Rows<Pcep>({
    IPv4("Tunnel Sender Address").Note(", %s"), Number(2, "LSP ID"), Number(2, "Tunnel ID").Note(", Tunnel %u"),
    Hex(4, "Extended Tunnel ID"), IPv4("Tunnel Endpoint Address").Note(", to %s")});
constexpr auto kIdentifiers6 = Rows<Pcep>({
    IPv6("Tunnel Sender Address").Note(", %s"), Number(2, "LSP ID"), Number(2, "Tunnel ID").Note(", Tunnel %u"),
    IPv6("Extended Tunnel ID"), IPv6("Tunnel Endpoint Address").Note(", to %s")});
constexpr auto kMultipoint4 = Rows<Pcep>({
    IPv4("Tunnel Sender Address").Note(", %s"), Number(2, "LSP ID"), Number(2, "Tunnel ID").Note(", Tunnel %u"),
    Hex(4, "Extended Tunnel ID"), Hex(4, "P2MP ID")});
constexpr auto kMultipoint6 = Rows<Pcep>({
    IPv6("Tunnel Sender Address").Note(", %s"), Number(2, "LSP ID"), Number(2, "Tunnel ID").Note(", Tunnel %u"),
    IPv6("Extended Tunnel ID"), Hex(4, "P2MP ID")});
constexpr auto kLspError = Rows<Pcep>({Number(4, "LSP Error Code", kLspErrorNames).Note(", %s")});
constexpr auto kVersion = Rows<Pcep>({Number(8, "LSP Database Version").Note(", %I64u")});
constexpr auto kSpeaker = Rows<Pcep>({Bytes(0, "Speaker Entity ID")});
constexpr auto kSegments = Rows<Pcep>({
    Hex(2, "Reserved"), Word(1), Bits(0, 6, "Reserved"), Flag(6, "NAI Resolution"), Flag(7, "Unlimited SID Depth"),
    Number(1, "Maximum SID Depth")});
constexpr auto kSetup = Rows<Pcep>({Hex(3, "Reserved"), Number(1, "Path Setup Type", kSetupNames).Note(", %s")});
constexpr auto kSetupHead = Rows<Pcep>({Hex(3, "Reserved"), Number(1, "Number of Path Setup Types").Into(&Pcep::count)});
constexpr auto kOneSetup = Rows<Pcep>({Number(1, "Path Setup Type", kSetupNames).Note(", %s")});
constexpr auto kRange = Rows<Pcep>({
    Hex(2, "Reserved"), Number(2, "Association Type", PcepAssociationName), Number(2, "Start Association ID"),
    Number(2, "Range")});
constexpr auto kSource = Rows<Pcep>({IPv4("Global Association Source").Note(", %s")});
constexpr auto kColor = Rows<Pcep>({Number(4, "Color").Note(", Color %u")});
constexpr auto kIPv4Endpoint = Rows<Pcep>({IPv4("Endpoint").Note(", %s")});
constexpr auto kIPv6Endpoint = Rows<Pcep>({IPv6("Endpoint").Note(", %s")});
constexpr auto kAssociation = Rows<Pcep>({Number(2, "Association Type", PcepAssociationName).Note(", %s")});
constexpr auto kAutoFlags = Rows<Pcep>({Hex(4, "Flags")});
constexpr auto kProtection = Rows<Pcep>({
    Word(4), Bits(0, 6, "Protection Type"), Bits(6, 24, "Reserved"), Flag(30, "Secondary"), Flag(31, "Protecting")});
constexpr auto kIPv4Row = Rows<Pcep>({IPv4("IPv4 Address").Note(", %s")});
constexpr auto kIPv6Row = Rows<Pcep>({IPv6("IPv6 Address").Note(", %s")});
constexpr auto kUnnumbered = Rows<Pcep>({IPv4("Router ID").Note(", %s"), Number(4, "Interface ID").Note(", Interface %u")});
constexpr auto kLabelRequest = Rows<Pcep>({
    Number(1, "LSP Encoding Type", kEncodingNames), Number(1, "Switching Type", kSwitchingNames),
    Number(2, "Generalized PID")});
constexpr auto kGmpls = Rows<Pcep>({Hex(4, "GMPLS Capability Flags")});
constexpr auto kDisjoint = Rows<Pcep>({
    Word(4), Bits(0, 27, "Reserved"), Flag(27, "Strict"), Flag(28, "Shortest Path"), Flag(29, "SRLG Diverse"),
    Flag(30, "Node Diverse"), Flag(31, "Link Diverse")});
constexpr auto kSchedule = Rows<Pcep>({
    Hex(4, "Flags"), UnixTime(4, "Start Time"), Number(4, "Duration", " seconds"),
    Number(4, "Grace Before", " seconds"), Number(4, "Grace After", " seconds")});
constexpr auto kFlowCapability = Rows<Pcep>({Hex(2, "Flow Specification Capability")});
constexpr auto kBidirectional = Rows<Pcep>({
    Word(4), Bits(0, 30, "Reserved"), Flag(30, "Co-Routed Path"), Flag(31, "Reverse LSP")});
constexpr auto kBindingHead = Rows<Pcep>({
    Number(1, "Binding Type", kBindingNames).Note(", %s").Into(&Pcep::code), Hex(1, "Flags"), Hex(2, "Reserved")});
constexpr auto kLabelRow = Rows<Pcep>({
    Word(4), Bits(0, 20, "Label").Note(", Label %u"), Bits(20, 3, "Traffic Class"), Flag(23, "Bottom of Stack"),
    Bits(24, 8, "TTL")});
constexpr auto kSegmentRow = Rows<Pcep>({IPv6("SRv6 SID").Note(", %s")});
constexpr auto kCandidate = Rows<Pcep>({
    Number(1, "Protocol Origin", kOriginNames).Note(", %s"), Hex(3, "Reserved"), Number(4, "Originator AS Number")});
constexpr auto kOriginator4 = Rows<Pcep>({Bytes(12, "Unused"), IPv4("Originator Address").Note(", %s")});
constexpr auto kOriginator6 = Rows<Pcep>({IPv6("Originator Address").Note(", %s")});
constexpr auto kDiscriminator = Rows<Pcep>({Number(4, "Discriminator")});
constexpr auto kPreference = Rows<Pcep>({Number(4, "Preference").Note(", %u")});
constexpr auto kBytes = Rows<Pcep>({Bytes(0, nullptr)});

template <const auto& rows, int32_t size>
void ShowEach(const Place& in, Cursor& c, Pcep& pcep) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Pcep>(in, c, rows, pcep);
}
void ShowNested(const Place& in, Cursor& c, Pcep& pcep);
void ShowBandwidths(const Place& in, Cursor& c, Pcep& pcep);

// The types, filled up to four octets, and what each of them adds.
void ShowSetups(const Place& in, Cursor& c, Pcep& pcep) {
  Loop loop;
  for (uint32_t i = 0; i < pcep.count.value && MoreAt(in, c, loop); ++i) ShowRows<Pcep>(in, c, kOneSetup, pcep);
  const int32_t beyond = static_cast<int32_t>(pcep.count.value % 4);
  const Field padding = beyond ? TakeBytes(c, 4 - beyond) : Field{};
  AddLine(in, padding, "Padding: %s", HexText(padding));
  ShowNested(in, c, pcep);
}
void ShowAssociationId(const Place& in, Cursor& c, Pcep& pcep) {
  ShowRows<Pcep>(in, c, kColor, pcep);
  if (Left(c)) ShowRows<Pcep>(in, c, Left(c) == 16 ? RowSpan<Pcep>(kIPv6Endpoint) : RowSpan<Pcep>(kIPv4Endpoint), pcep);
}
void ShowBinding(const Place& in, Cursor& c, Pcep& pcep) {
  constexpr uint32_t kLastLabel = 1;
  const bool isLabel = pcep.code.value <= kLastLabel;
  ShowRows<Pcep>(in, c, isLabel ? RowSpan<Pcep>(kLabelRow) : RowSpan<Pcep>(kSegmentRow), pcep);
}

void ShowOriginator(const Place& in, Cursor& c, Pcep& pcep) {
  const bool isFour = PeekU32(c) == 0 && PeekU32(c, 4) == 0 && PeekU32(c, 8) == 0;
  ShowRows<Pcep>(in, c, isFour ? RowSpan<Pcep>(kOriginator4) : RowSpan<Pcep>(kOriginator6), pcep);
  ShowRows<Pcep>(in, c, kDiscriminator, pcep);
}

// What RSVP says: a whole object, or what one holds.
void ShowErrorSpec(const Place& in, Cursor& c, Pcep&) {
  const KeyedAs keys(PacketOf(in), "rsvp");
  ShowRsvpObjects(in, c);
}
template <uint32_t kind>
void ShowRsvp(const Place& in, Cursor& c, Pcep&) { ShowPcepRsvpObject(in, c, kind); }

// Wavelengths: how one is chosen, which links may use which, and which were chosen (RFC 8780; labels: RFC 6205, sets of
// them: RFC 7579).
constexpr auto kMethodNames = SortedNames({{0, "Unspecified"}, {1, "First-Fit"}, {2, "Random"}, {3, "Least-Loaded"}});
constexpr auto kSelection = Rows<Pcep>({
    Number(1, "Wavelength Assignment Method", kMethodNames).Note(", %s"), Hex(3, "Reserved")});
constexpr auto kSetNames = SortedNames({
    {0, "Inclusive List"}, {1, "Exclusive List"}, {2, "Inclusive Range"}, {3, "Exclusive Range"}, {4, "Bitmap Set"}});
constexpr auto kRestriction = Rows<Pcep>({
    Number(1, "Action", kSetNames), Number(1, "Count").Into(&Pcep::count), Hex(2, "Reserved")});
constexpr auto kLinkNames = SortedNames({{1, "IPv4 Address"}, {2, "IPv6 Address"}, {3, "Unnumbered"}});
constexpr auto kLinkHead = Rows<Pcep>({
    Number(1, "Link Identifier Type", kLinkNames).Into(&Pcep::code), Hex(3, "Reserved")});
constexpr auto kSetHead = Rows<Pcep>({
    Word(2), Bits(0, 4, "Set Action", kSetNames).Note(", %s").Into(&Pcep::type), Bits(4, 12, "Number of Labels"),
    Number(2, "Set Length")});
constexpr auto kGridNames = SortedNames({{1, "DWDM"}, {2, "CWDM"}, {3, "Flexible"}});
constexpr auto kWavelength = Rows<Pcep>({
    Word(2), Bits(0, 3, "Grid", kGridNames), Bits(3, 4, "Channel Spacing"), Bits(7, 9, "Identifier"),
    Signed(2, "Channel Number")});
constexpr auto kBitMap = Rows<Pcep>({Bytes(0, "Bit Map")});
constexpr auto kAllocation = Rows<Pcep>({Hex(2, "Reserved"), Word(2), Bits(0, 15, "Reserved Flags"), Flag(15, "Mode")});
void ShowLink(const Place& in, Cursor& c, Pcep& pcep) {
  ShowRows<Pcep>(in, c, kLinkHead, pcep);
  const uint32_t kind = pcep.code.value;
  if (kind == 1) ShowRows<Pcep>(in, c, kIPv4Row, pcep);
  if (kind == 2) ShowRows<Pcep>(in, c, kIPv6Row, pcep);
  if (kind == 3) ShowRows<Pcep>(in, c, kUnnumbered, pcep);
}
void ShowLabelSet(const Place& in, Cursor& c, Pcep& pcep) {
  constexpr uint32_t kMap = 4;
  if (Left(c) < 4) return;
  ShowRows<Pcep>(in, c, kSetHead, pcep);
  const bool isMap = pcep.type.value == kMap;
  Loop loop;
  for (int32_t i = 0; Left(c) >= 4 && (i == 0 || !isMap) && MoreAt(in, c, loop); ++i) ShowRows<Pcep>(in, c, kWavelength, pcep);
  if (isMap && Left(c)) ShowRows<Pcep>(in, c, kBitMap, pcep);
}
void ShowRestriction(const Place& in, Cursor& c, Pcep& pcep) {
  const uint32_t count = pcep.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && Left(c) >= 8 && MoreAt(in, c, loop); ++i) ShowLink(in, c, pcep);
  ShowLabelSet(in, c, pcep);
}
void ShowAllocation(const Place& in, Cursor& c, Pcep& pcep) {
  ShowLink(in, c, pcep);
  ShowLabelSet(in, c, pcep);
}

// A flow rule's components, those of BGP with lengths (RFC 9168 7).
void ShowFlows(const Place& in, Cursor& c, Pcep& pcep) {
  constexpr ElementForm kComponentForm{.typeSize = 2, .lengthSize = 2, .padTo = 4};
  const KeyedAs keys(PacketOf(in), "bgp");
  Element element;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeElement(c, kComponentForm, element)) {
    const char* name = BgpFlowComponentName(element.code);
    const Place under = Under(in, AddLine(in, element.whole, "Component: %s", name));
    AddLine(under, element.type, "Type: %u = %s", element.code, name);
    AddLine(under, element.length, "Length: %u", element.length.value);
    ShowBgpFlowComponent(under, element.value, element.code, pcep.afi.value);
    element.value.ranShort = false;
    AddBlock(under, Rest(element.value), "Component Data");
    if (element.padding.here) AddLine(under, element.padding, "Padding: %s", HexText(element.padding));
  }
}

// Several paths of one candidate, and what else policies say (RFC 9862, RFC 9863).
constexpr auto kMultipath = Rows<Pcep>({
    Number(2, "Maximum Number of Paths").Note(", %u"), Word(2), Bits(0, 13, "Reserved"),
    Flag(13, "Opposite Direction"), Flag(14, "Backup"), Flag(15, "Weight")});
constexpr auto kWeight = Rows<Pcep>({Number(4, "Weight").Note(", %u")});
constexpr auto kBackup = Rows<Pcep>({
    Number(2, "Backup Path Count"), Word(2), Flag(0, "Pure Backup"), Bits(1, 15, "Reserved")});
constexpr auto kBackupPath = Rows<Pcep>({Number(4, "Backup Path ID").Note(", Path %u")});
constexpr auto kOpposite = Rows<Pcep>({
    Hex(2, "Reserved"), Word(2), Bits(0, 14, "Reserved Flags"), Flag(14, "Link Co-Routed"), Flag(15, "Node Co-Routed"),
    Number(4, "Opposite Direction Path ID").Note(", Path %u")});
constexpr auto kMoreFlags = Rows<Pcep>({Bytes(0, "LSP Extended Flags")});
constexpr auto kPriority = Rows<Pcep>({Number(1, "Priority").Note(", %u"), Hex(3, "Reserved")});
constexpr auto kNullNames = SortedNames({
    {0, "Reserved"}, {1, "IPv4 Explicit Null"}, {2, "IPv6 Explicit Null"}, {3, "Both"}, {4, "None"}});
constexpr auto kNullPolicy = Rows<Pcep>({Number(1, "Explicit Null Label Policy", kNullNames).Note(", %s"), Hex(3, "Reserved")});
constexpr auto kInvalidation = Rows<Pcep>({
    Hex(1, "Operational Flags"), Hex(1, "Configuration Flags"), Hex(2, "Reserved")});
constexpr auto kPolicyCapability = Rows<Pcep>({
    Word(4), Bits(0, 27, "Reserved"), Flag(27, "Stateless Operation"), Flag(28, "Reserved 2"),
    Flag(29, "Invalidation"), Flag(30, "Explicit Null Label Policy"), Flag(31, "Computation Priority")});

constexpr auto kTlvs = Choices<Pcep>({
    {1, "NO-PATH-VECTOR", kNoPath}, {2, "OVERLOAD-DURATION", kSeconds}, {3, "REQ-MISSING", kRequest},
    {4, "OF-List", {}, ShowEach<kObjective, 2>}, {5, "Order", kOrder}, {6, "P2MP Capable", kReserved},
    {7, "VENDOR-INFORMATION", kVendor}, {8, "Wavelength Selection", kSelection},
    {9, "Wavelength Restriction", kRestriction, ShowRestriction},
    {10, "Wavelength Allocation", kAllocation, ShowAllocation}, {11, "Optical Interface Class List", kBytes},
    {12, "Client Signal Information", kBytes}, {13, "H-PCE-CAPABILITY", kHierarchy}, {14, "Domain-ID", kDomain},
    {15, "H-PCE-FLAG", kHierarchyFlags}, {16, "STATEFUL-PCE-CAPABILITY", kStateful}, {17, "SYMBOLIC-PATH-NAME", kName},
    {18, "IPV4-LSP-IDENTIFIERS", kIdentifiers4}, {19, "IPV6-LSP-IDENTIFIERS", kIdentifiers6},
    {20, "LSP-ERROR-CODE", kLspError}, {21, "RSVP-ERROR-SPEC", {}, ShowErrorSpec}, {23, "LSP-DB-VERSION", kVersion},
    {24, "SPEAKER-ENTITY-ID", kSpeaker}, {26, "SR-PCE-CAPABILITY", kSegments},
    {27, "PATH-SETUP-TYPE (Prestandard)", kSetup}, {28, "PATH-SETUP-TYPE", kSetup},
    {29, "OP-CONF-ASSOC-RANGE", {}, ShowEach<kRange, 8>}, {30, "GLOBAL-ASSOCIATION-SOURCE", kSource},
    {31, "EXTENDED-ASSOCIATION-ID", {}, ShowAssociationId}, {32, "P2MP-IPV4-LSP-IDENTIFIERS", kMultipoint4},
    {33, "P2MP-IPV6-LSP-IDENTIFIERS", kMultipoint6}, {34, "PATH-SETUP-TYPE-CAPABILITY", kSetupHead, ShowSetups},
    {35, "ASSOC-Type-List", {}, ShowEach<kAssociation, 2>}, {36, "AUTO-BANDWIDTH-CAPABILITY", kAutoFlags},
    {37, "AUTO-BANDWIDTH-ATTRIBUTES", {}, ShowBandwidths}, {38, "Path Protection Association Group", kProtection},
    {39, "IPV4-ADDRESS", kIPv4Row}, {40, "IPV6-ADDRESS", kIPv6Row}, {41, "UNNUMBERED-ENDPOINT", kUnnumbered},
    {42, "LABEL-REQUEST", kLabelRequest}, {43, "LABEL-SET", {}, ShowRsvp<0x2401>},
    {44, "PROTECTION-ATTRIBUTE", {}, ShowRsvp<0x2502>},
    {45, "GMPLS-CAPABILITY", kGmpls}, {46, "DISJOINTNESS-CONFIGURATION", kDisjoint},
    {47, "DISJOINTNESS-STATUS", kDisjoint}, {48, "POLICY-PARAMETERS", kBytes}, {49, "SCHED-LSP-ATTRIBUTE", kSchedule},
    {50, "SCHED-PD-LSP-ATTRIBUTE", kSchedule}, {51, "PCE-FLOWSPEC-CAPABILITY", kFlowCapability},
    {52, "FLOW FILTER", {}, ShowFlows}, {53, "L2 FLOW FILTER", {}, ShowFlows}, {54, "Bidirectional LSP Association Group", kBidirectional},
    {55, "TE-PATH-BINDING", kBindingHead, ShowBinding}, {56, "SRPOLICY-POL-NAME", kName},
    {57, "SRPOLICY-CPATH-ID", kCandidate, ShowOriginator}, {58, "SRPOLICY-CPATH-NAME", kName}, {59, "SRPOLICY-CPATH-PREFERENCE", kPreference},
    {60, "MULTIPATH-CAP", kMultipath}, {61, "MULTIPATH-WEIGHT", kWeight}, {62, "MULTIPATH-BACKUP", kBackup,
    ShowEach<kBackupPath, 4>}, {63, "MULTIPATH-OPPDIR-PATH", kOpposite}, {64, "LSP-EXTENDED-FLAG", kMoreFlags},
    {65, "VIRTUAL-NETWORK", kName}, {67, "COLOR", kColor}, {68, "COMPUTATION-PRIORITY", kPriority},
    {69, "EXPLICIT-NULL-LABEL-POLICY", kNullPolicy}, {70, "INVALIDATION", kInvalidation},
    {71, "SRPOLICY-CAPABILITY", kPolicyCapability}});

constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .padTo = 4, .valueLines = true};

// What stands within the capability of setup types and within bandwidth attributes is numbered on its own.
constexpr auto kDepth = Rows<Pcep>({Number(1, "MSD Type"), Number(1, "MSD Value")});
constexpr auto kSegments6 = Rows<Pcep>({
    Hex(2, "Reserved"), Word(2), Bits(0, 14, "Reserved"), Flag(14, "NAI Resolution"), Flag(15, "Unlimited SID Depth")});
constexpr auto kInner = Choices<Pcep>({
    {1, "PCECC-CAPABILITY", kAutoFlags}, {26, "SR-PCE-CAPABILITY", kSegments},
    {27, "SRv6-PCE-CAPABILITY", kSegments6, ShowEach<kDepth, 2>}});
void ShowNested(const Place& in, Cursor& c, Pcep& pcep) { ShowElements<Pcep>(in, c, kForm, "Sub-TLV", kInner, pcep); }

constexpr auto kInterval = Rows<Pcep>({Number(4, "Interval", " seconds").Note(", %u seconds")});
constexpr auto kBandwidth = Rows<Pcep>({Float(4, "Bandwidth")});
constexpr auto kPercentage = Rows<Pcep>({
    Word(4), Bits(0, 7, "Percentage"), Bits(7, 25, "Reserved"), Float(4, "Minimum Threshold")});
constexpr auto kCounted = Rows<Pcep>({Word(4), Bits(0, 27, "Reserved"), Bits(27, 5, "Count"), Float(4, "Bandwidth")});
constexpr auto kCountedPercentage = Rows<Pcep>({
    Word(4), Bits(0, 7, "Percentage"), Bits(7, 20, "Reserved"), Bits(27, 5, "Count"), Float(4, "Minimum Threshold")});
constexpr auto kBandwidths = Choices<Pcep>({
    {1, "Adjustment-Interval", kInterval}, {2, "Down-Adjustment-Interval", kInterval},
    {3, "Adjustment-Threshold", kBandwidth}, {4, "Adjustment-Threshold-Percentage", kPercentage},
    {5, "Down-Adjustment-Threshold", kBandwidth}, {6, "Down-Adjustment-Threshold-Percentage", kPercentage},
    {7, "Minimum-Bandwidth", kBandwidth}, {8, "Maximum-Bandwidth", kBandwidth}, {9, "Overflow-Threshold", kCounted},
    {10, "Overflow-Threshold-Percentage", kCountedPercentage}, {11, "Underflow-Threshold", kCounted},
    {12, "Underflow-Threshold-Percentage", kCountedPercentage}});
void ShowBandwidths(const Place& in, Cursor& c, Pcep& pcep) {
  ShowElements<Pcep>(in, c, kForm, "Sub-TLV", kBandwidths, pcep);
}

}  // namespace

void ShowPcepTlvs(const Place& in, Cursor& c, Pcep& pcep) { ShowElements<Pcep>(in, c, kForm, "TLV", kTlvs, pcep); }

}  // namespace qxview
