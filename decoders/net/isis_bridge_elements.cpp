// What bridges tell one another by IS-IS: TRILL (RFC 7176, RFC 7357), shortest path bridging (RFC 6329), and MAC
// addresses
// behind bridges (RFC 6165).
#include "decoders/net/isis.h"

namespace qxview {
namespace {

template <const auto& rows, int32_t size>
void ShowEach(const Place& in, Cursor& c, Isis& isis) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Isis>(in, c, rows, isis);
}

// --- what a port can do ---

constexpr auto kPortFlags = Rows<Isis>({
    Hex(2, "Port ID"), Hex(2, "Sender Nickname"), Hex(2, "Outer VLAN Word"), Flag(0, "Appointed Forwarder"),
    Flag(1, "Access Port"), Flag(2, "VLAN Mapping"), Flag(3, "Bypass Pseudonode"),
    Bits(4, 12, "Outer VLAN").Note(", VLAN %u"),
    Hex(2, "Designated VLAN Word"), Flag(0, "Trunk Port"), Bits(1, 3, "Reserved"), Bits(4, 12, "Designated VLAN")});
constexpr auto kVlans = Rows<Isis>({Word(2), Bits(0, 4, "Reserved"), Bits(4, 12, "Start VLAN").Note(", from %u"),
    Bytes(0, "VLAN Bitmap")});
constexpr auto kForwarder = Rows<Isis>({
    Hex(2, "Appointee Nickname"), Word(2), Bits(0, 4, "Reserved"), Bits(4, 12, "Start VLAN"), Word(2),
    Bits(0, 4, "Reserved 2"),
    Bits(4, 12, "End VLAN")});
constexpr auto kConfiguration = Rows<Isis>({
    Hex(1, "Format Selector"), Text(32, "Configuration Name").Note(", %s"), Number(2, "Revision"),
    Bytes(16, "Configuration Digest"), Hex(1, "Auxiliary Format Selector"), Text(32, "Auxiliary Configuration Name"),
    Number(2, "Auxiliary Revision"), Bytes(16, "Auxiliary Configuration Digest")});
constexpr auto kDigest = Rows<Isis>({
    Word(1), Bits(0, 3, "Reserved"), Flag(3, "Digest Valid"), Bits(4, 1, "Reserved 2"), Bits(5, 2, "Agreement Number"),
    Bits(7, 1, "Agreement Discarded"),
    Bytes(0, "Agreement Digest")});
constexpr auto kBaseVlan = Rows<Isis>({
    Hex(4, "ECT Algorithm"), Word(2), Bits(0, 12, "Base VLAN ID"), Flag(12, "Used"), Flag(13, "Mode"),
    Bits(14, 2, "Reserved")});
constexpr auto kVersion = Rows<Isis>({Number(1, "Maximum Version"), Hex(4, "Capabilities")});

constexpr auto kPortElements = Choices<Isis>({
    {1, "Special VLANs and Flags", kPortFlags}, {2, "Enabled VLANs", kVlans},
    {3, "Appointed Forwarders", {}, ShowEach<kForwarder, 6>}, {4, "Multiple Spanning Tree Configuration",
    kConfiguration},
    {5, "SPB Digest", kDigest}, {6, "SPB Base VLAN Identifiers", {}, ShowEach<kBaseVlan, 6>},
    {7, "PORT-TRILL-VER", kVersion},
    {8, "VLANs Appointed", kVlans}});

// --- shortest path bridging ---

constexpr auto kInstance = Rows<Isis>({
    Hex(8, "CIST Root Identifier"), Number(4, "CIST External Root Path Cost"), Number(2, "Bridge Priority"),
    Hex(4, "Source Word"),
    Bits(0, 11, "Reserved"), Flag(11, "SPSourceID Allocated"), Bits(12, 20, "SPSourceID"),
    Number(1, "Number of Trees").Into(&Isis::count)});
constexpr auto kTree = Rows<Isis>({
    Hex(1, "Tree Flags"), Flag(0, "Used"), Flag(1, "SPBM Mode"), Flag(2, "Auto Allocation"), Bits(3, 5, "Reserved"),
    Hex(4, "ECT Algorithm"), Word(3), Bits(0, 12, "Base VLAN ID"), Bits(12, 12, "SPVID")});
constexpr auto kBackbone = Rows<Isis>({
    Mac("Backbone MAC Address").Note(", %s"), Word(2), Bits(0, 4, "Reserved"), Bits(4, 12, "Base VLAN ID")});
constexpr auto kService = Rows<Isis>({
    Hex(1, "Service Flags"), Flag(0, "Transmit"), Flag(1, "Receive"), Bits(2, 6, "Reserved"),
    Number(3, "I-SID").Note(", I-SID %u")});
constexpr auto kCustomer = Rows<Isis>({
    Word(2), Flag(0, "Snooped"), Bits(1, 3, "Reserved"), Bits(4, 12, "VLAN ID")});
constexpr auto kCustomerMac = Rows<Isis>({
    Hex(1, "Address Flags"), Flag(0, "Transmit"), Flag(1, "Receive"), Bits(2, 6, "Reserved"),
    Mac("MAC Address").Note(", %s")});
constexpr auto kOpaque = Rows<Isis>({Hex(4, "ECT Algorithm"), Bytes(0, "ECT Information")});
void ShowTrees(const Place& in, Cursor& c, Isis& isis) {
  constexpr int32_t kSize = 8;
  const uint32_t count = isis.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && Left(c) >= kSize && MoreAt(in, c, loop); ++i) {
    const Place under = Under(in, AddLine(in, Ahead(c, kSize), "Tree"));
    ShowRows<Isis>(under, c, kTree, isis);
  }
}

constexpr auto kBridgeElements = Choices<Isis>({
    {1, "SPB Instance", kInstance, ShowTrees}, {2, "SPBM Service Identifier", kBackbone, ShowEach<kService, 4>},
    {3, "SPBV MAC Address", kCustomer, ShowEach<kCustomerMac, 7>}, {4, "Opaque ECT Algorithm", kOpaque}});

// --- groups, neighbors and addresses ---

constexpr auto kGroupHead = Rows<Isis>({Word(2), Bits(0, 4, "Reserved"), Bits(4, 12, "Topology ID")});
constexpr auto kVlan = Rows<Isis>({Word(2), Bits(0, 4, "Reserved 2"), Bits(4, 12, "VLAN ID").Note(", VLAN %u")});
constexpr auto kLabel = Rows<Isis>({Number(3, "Fine-Grained Label").Note(", Label %u")});
constexpr auto kRecords = Rows<Isis>({Number(1, "Number of Group Records").Into(&Isis::count)});
constexpr auto kSources = Rows<Isis>({Number(1, "Number of Sources").Into(&Isis::size)});
constexpr auto kMacGroup = Rows<Isis>({Mac("Group Address").Note(", %s")});
constexpr auto kGroup4 = Rows<Isis>({IPv4("Group Address").Note(", %s")});
constexpr auto kGroup6 = Rows<Isis>({IPv6("Group Address").Note(", %s")});
constexpr auto kMacSource = Rows<Isis>({Mac("Source Address")});
constexpr auto kSource4 = Rows<Isis>({IPv4("Source Address")});
constexpr auto kSource6 = Rows<Isis>({IPv6("Source Address")});

void ShowGroups(const Place& in, Cursor& c, Isis& isis, bool isLabelled, RowSpan<Isis> group, RowSpan<Isis> source,
    int32_t size) {
  ShowRows<Isis>(in, c, kGroupHead, isis);
  ShowRows<Isis>(in, c, isLabelled ? RowSpan<Isis>(kLabel) : RowSpan<Isis>(kVlan), isis);
  ShowRows<Isis>(in, c, kRecords, isis);
  const uint32_t records = isis.count.value;
  Loop loop;
  for (uint32_t i = 0; i < records && Left(c) > size && MoreAt(in, c, loop); ++i) {
    ShowRows<Isis>(in, c, kSources, isis);
    ShowRows<Isis>(in, c, group, isis);
    for (uint32_t j = 0; j < isis.size.value && Left(c) >= size; ++j) ShowRows<Isis>(in, c, source, isis);
  }
}
template <bool isLabelled>
void ShowMacGroups(const Place& in, Cursor& c, Isis& isis) {
  ShowGroups(in, c, isis, isLabelled, kMacGroup, kMacSource, 6);
}
template <bool isLabelled>
void ShowGroups4(const Place& in, Cursor& c, Isis& isis) { ShowGroups(in, c, isis, isLabelled, kGroup4, kSource4, 4); }
template <bool isLabelled>
void ShowGroups6(const Place& in, Cursor& c, Isis& isis) { ShowGroups(in, c, isis, isLabelled, kGroup6, kSource6, 16); }

constexpr auto kGroupElements = Choices<Isis>({
    {1, "Group MAC Address", {}, ShowMacGroups<false>}, {2, "Group IPv4 Address", {}, ShowGroups4<false>},
    {3, "Group IPv6 Address", {}, ShowGroups6<false>}, {4, "Group Labeled MAC Address", {}, ShowMacGroups<true>},
    {5, "Group Labeled IPv4 Address", {}, ShowGroups4<true>}, {6, "Group Labeled IPv6 Address", {},
    ShowGroups6<true>}});

constexpr auto kReach = Rows<Isis>({
    Hex(2, "Nickname"), Number(1, "Confidence"), Word(2), Bits(0, 4, "Reserved"), Bits(4, 12, "VLAN ID")});
constexpr auto kReached = Rows<Isis>({Mac("MAC Address").Note(", %s")});
constexpr auto kNeighborsHead = Rows<Isis>({
    Word(1), Flag(0, "Smallest"), Flag(1, "Largest"), Flag(2, "Reserved"), Bits(3, 5, "Neighbor ID Size")});
constexpr auto kNeighbor = Rows<Isis>({
    Word(1), Flag(0, "MTU Test Failed"), Flag(1, "OOMF Supported"), Bits(2, 6, "Reserved"), Number(2, "MTU"),
    Mac("Neighbor MAC Address").Note(", %s")});

// --- what a router bridge can do ---

constexpr auto kNickname = Rows<Isis>({Number(1, "Nickname Priority"), Number(2, "Tree Root Priority"),
    Hex(2, "Nickname").Note(", 0x%04X")});
constexpr auto kTrees = Rows<Isis>({Number(2, "Trees to Compute"), Number(2, "Maximum Trees to Compute"),
    Number(2, "Trees to Use")});
constexpr auto kTreeStart = Rows<Isis>({Number(2, "Starting Tree Number")});
constexpr auto kTreeNickname = Rows<Isis>({Hex(2, "Tree Nickname")});
constexpr auto kInterested = Rows<Isis>({
    Hex(2, "Nickname"), Hex(4, "Interested VLANs"), Flag(0, "IPv4 Multicast Router"), Flag(1, "IPv6 Multicast Router"),
    Bits(2, 2, "Reserved"),
    Bits(4, 12, "Start VLAN"), Flag(16, "Other Multicast"), Bits(17, 3, "Reserved 2"), Bits(20, 12, "End VLAN"),
    Number(4, "Appointed Forwarder Status Lost")});
constexpr auto kInterestedLabels = Rows<Isis>({
    Hex(2, "Nickname"), Hex(1, "Label Flags"), Flag(0, "IPv4 Multicast Router"), Flag(1, "IPv6 Multicast Router"),
    Flag(2, "Bit Map"),
    Number(3, "Start Label"), Hex(1, "Reserved"), Number(3, "End Label"),
    Number(4, "Appointed Forwarder Status Lost")});
constexpr auto kRoot = Rows<Isis>({Mac("Root Bridge")});
constexpr auto kPrimary = Rows<Isis>({Number(2, "Primary VLAN").Note(", %u")});
constexpr auto kSecondary = Rows<Isis>({Number(2, "Secondary VLAN")});
constexpr auto kPrimaryLabel = Rows<Isis>({Number(3, "Primary Label").Note(", %u")});
constexpr auto kSecondaryLabel = Rows<Isis>({Number(3, "Secondary Label")});
constexpr auto kChannels = Rows<Isis>({Bytes(0, "Channel Protocols")});
constexpr auto kAffinity = Rows<Isis>({Hex(2, "Affinity Nickname"), Number(1, "Affinity Flags"),
    Number(1, "Number of Trees").Into(&Isis::count)});
constexpr auto kTreeNumber = Rows<Isis>({Number(2, "Tree Number")});
void ShowAffinity(const Place& in, Cursor& c, Isis& isis) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    ShowRows<Isis>(in, c, kAffinity, isis);
    for (uint32_t i = 0; i < isis.count.value && Left(c) >= 2; ++i) ShowRows<Isis>(in, c, kTreeNumber, isis);
  }
}
constexpr auto kCapabilities = Choices<Isis>({
    {6, "Nickname", {}, ShowEach<kNickname, 5>}, {7, "Trees", kTrees}, {8, "Tree Identifiers", kTreeStart,
    ShowEach<kTreeNickname, 2>},
    {9, "Trees Used Identifiers", kTreeStart, ShowEach<kTreeNickname, 2>},
    {10, "Interested VLANs and Spanning Tree Roots", kInterested, ShowEach<kRoot, 6>}, {13, "TRILL Version", kVersion},
    {14, "VLAN Group", kPrimary, ShowEach<kSecondary, 2>},
    {15, "Interested Labels and Spanning Tree Roots", kInterestedLabels, ShowEach<kRoot, 6>},
    {16, "RBridge Channel Protocols", kChannels}, {17, "Affinity", {}, ShowAffinity},
    {18, "Label Group", kPrimaryLabel, ShowEach<kSecondaryLabel, 3>}});

}  // namespace

void ShowIsisPort(const Place& in, Cursor& c, Isis& isis) {
  ShowElements(in, c, kIsisForm, "Sub-TLV", kPortElements, isis);
}
void ShowIsisBridge(const Place& in, Cursor& c, Isis& isis) {
  ShowElements(in, c, kIsisForm, "Sub-TLV", kBridgeElements, isis);
}
void ShowIsisGroups(const Place& in, Cursor& c, Isis& isis) {
  ShowElements(in, c, kIsisForm, "Sub-TLV", kGroupElements, isis);
}
void ShowIsisMacs(const Place& in, Cursor& c, Isis& isis) {
  ShowRows<Isis>(in, c, kReach, isis);
  ShowEach<kReached, 6>(in, c, isis);
}
void ShowIsisBridgeNeighbors(const Place& in, Cursor& c, Isis& isis) {
  ShowRows<Isis>(in, c, kNeighborsHead, isis);
  ShowEach<kNeighbor, 9>(in, c, isis);
}
void ShowIsisBridgeCapability(const Place& in, Cursor& c, uint32_t type, Isis& isis) {
  ShowChoice<Isis>(in, c, FindChoice<Isis>(kCapabilities, type), isis);   // keys: none Data
}

}  // namespace qxview
