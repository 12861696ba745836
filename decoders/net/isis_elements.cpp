// The elements of IS-IS (IANA's registry of TLV codepoints; ISO 10589, RFC 1195, RFC 5120, RFC 5303 to 5308, RFC 7981).
#include "decoders/net/isis.h"

namespace qxview {
namespace {

constexpr auto kNlpidNames = SortedNames({
    {0x81, "CLNP"}, {0x82, "ES-IS"}, {0x83, "IS-IS"}, {0x8E, "IPv6"}, {0xC0, "TRILL"}, {0xC1, "SPB"}, {0xCC, "IPv4"}});
constexpr auto kAuthenticationNames = SortedNames({
    {0, "Reserved"}, {1, "Cleartext Password"}, {3, "Generic Cryptographic Authentication"}, {54, "HMAC-MD5"},
    {255, "Routing Domain Private Authentication"}});
constexpr auto kStateNames = SortedNames({{0, "Up"}, {1, "Initializing"}, {2, "Down"}});
constexpr auto kTopologyNames = SortedNames({
    {0, "IPv4 Unicast"}, {1, "IPv4 In-Band Management"}, {2, "IPv6 Unicast"}, {3, "IPv4 Multicast"}, {4, "IPv6 Multicast"},
    {5, "IPv6 In-Band Management"}});

void ShowSystem(const Place& in, const Field& field, const char* label) {
  AddLine(in, field, "%s: %s", label, SystemIdText(field));
  AppendToParent(in, field, ", %s", SystemIdText(field));
}

void ShowAll(const Place& in, Cursor& c, RowSpan<Isis> rows, int32_t size, Isis& isis) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Isis>(in, c, rows, isis);
}

// --- lists of one thing ---

constexpr auto kNeighborMac = Rows<Isis>({Mac("IS Neighbor").Note(", %s")});
constexpr auto kProtocol = Rows<Isis>({Hex(1, "NLPID", kNlpidNames).Note(", %s")});
constexpr auto kAddress4 = Rows<Isis>({IPv4("IPv4 Interface Address").Note(", %s")});
constexpr auto kAddress6 = Rows<Isis>({IPv6("IPv6 Interface Address").Note(", %s")});
constexpr auto kGlobal6 = Rows<Isis>({IPv6("IPv6 Global Interface Address").Note(", %s")});
constexpr auto kTopology = Rows<Isis>({
    Hex(2, "Topology Word"), Flag(0, "Overload"), Flag(1, "Attached"), Bits(2, 2, "Reserved"),
    Bits(4, 12, "Topology ID", kTopologyNames).Note(", %s")});
constexpr auto kBfd = Rows<Isis>({
    Word(2), Bits(0, 4, "Reserved"), Bits(4, 12, "Topology ID", kTopologyNames), Hex(1, "NLPID", kNlpidNames)});

void ShowAreas(const Place& in, Cursor& c, Isis&) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Field length = TakeU8(c);
    AddLine(in, length, "Area Length: %u", length.value);
    Cursor part = TakeCursor(c, length.value);
    const Field area = Rest(part);
    AddLine(in, area, "Area Address: %s", OsiAddressText(area));
    AppendToParent(in, area, ", %s", OsiAddressText(area));
  }
}
void ShowNeighborMacs(const Place& in, Cursor& c, Isis& isis) { ShowAll(in, c, kNeighborMac, 6, isis); }
void ShowProtocols(const Place& in, Cursor& c, Isis& isis) { ShowAll(in, c, kProtocol, 1, isis); }
void ShowAddresses4(const Place& in, Cursor& c, Isis& isis) { ShowAll(in, c, kAddress4, 4, isis); }
void ShowAddresses6(const Place& in, Cursor& c, Isis& isis) { ShowAll(in, c, kAddress6, 16, isis); }
void ShowGlobals6(const Place& in, Cursor& c, Isis& isis) { ShowAll(in, c, kGlobal6, 16, isis); }
void ShowTopologies(const Place& in, Cursor& c, Isis& isis) { ShowAll(in, c, kTopology, 2, isis); }
void ShowBfds(const Place& in, Cursor& c, Isis& isis) { ShowAll(in, c, kBfd, 3, isis); }

constexpr auto kPadding = Rows<Isis>({Bytes(0, "Padding Data")});
void ShowPadding(const Place& in, Cursor& c, Isis& isis) {
  constexpr int32_t kShown = 160;   // a line holds so many; the rest of an element of padding is a second one
  while (Left(c) > kShown) {
    Cursor part = TakeCursor(c, kShown);
    ShowRows<Isis>(in, part, kPadding, isis);
  }
  if (Left(c)) ShowRows<Isis>(in, c, kPadding, isis);
}

// --- sequence numbers ---

constexpr auto kEntry = Rows<Isis>({
    Number(2, "Remaining Lifetime", " seconds"), Shown(8, "LSP ID", ShowSystem), Hex(4, "LSP Sequence Number"),
    Hex(2, "LSP Checksum")});
void ShowEntries(const Place& in, Cursor& c, Isis& isis) {
  constexpr int32_t kEntrySize = 16;
  Loop loop;
  while (Left(c) >= kEntrySize && MoreAt(in, c, loop)) {
    const Place under = Under(in, AddLine(in, Ahead(c, kEntrySize), "LSP Entry"));
    ShowRows<Isis>(under, c, kEntry, isis);
  }
}

// --- narrow metrics (ISO 10589, RFC 1195) ---

constexpr auto kMetrics = Rows<Isis>({
    Hex(1, "Default Metric Octet"), Flag(0, "Down"), Flag(1, "Default Metric Is External"), Bits(2, 6, "Default Metric"),
    Hex(1, "Delay Metric Octet"), Flag(0, "Delay Metric Not Supported"), Flag(1, "Delay Metric Is External"),
    Bits(2, 6, "Delay Metric"), Hex(1, "Expense Metric Octet"), Flag(0, "Expense Metric Not Supported"),
    Flag(1, "Expense Metric Is External"), Bits(2, 6, "Expense Metric"), Hex(1, "Error Metric Octet"),
    Flag(0, "Error Metric Not Supported"), Flag(1, "Error Metric Is External"), Bits(2, 6, "Error Metric")});
constexpr auto kVirtual = Rows<Isis>({Number(1, "Virtual Flag")});
constexpr auto kNeighbor7 = Rows<Isis>({Shown(7, "IS Neighbor ID", ShowSystem)});
constexpr auto kNeighbor6 = Rows<Isis>({Shown(6, "ES Neighbor ID", ShowSystem)});
constexpr auto kNetwork = Rows<Isis>({IPv4("IPv4 Prefix").Note(", %s"), IPv4("Subnet Mask").Note("/%s")});

void ShowWithMetrics(const Place& in, Cursor& c, const char* title, RowSpan<Isis> rows, int32_t size, Isis& isis) {
  Loop loop;
  while (Left(c) >= 4 + size && MoreAt(in, c, loop)) {
    const Place under = Under(in, AddLine(in, Ahead(c, 4 + size), "%s", title));
    ShowRows<Isis>(under, c, kMetrics, isis);
    ShowRows<Isis>(under, c, rows, isis);
  }
}
void ShowNeighbors(const Place& in, Cursor& c, Isis& isis) {
  ShowRows<Isis>(in, c, kVirtual, isis);
  ShowWithMetrics(in, c, "Neighbor", kNeighbor7, 7, isis);
}
void ShowEndSystems(const Place& in, Cursor& c, Isis& isis) {
  ShowRows<Isis>(in, c, kMetrics, isis);
  ShowAll(in, c, kNeighbor6, 6, isis);
}
void ShowNetworks(const Place& in, Cursor& c, Isis& isis) { ShowWithMetrics(in, c, "Network", kNetwork, 8, isis); }

// --- wide metrics (RFC 5305, RFC 5308, RFC 5120) ---

constexpr auto kLink = Rows<Isis>({
    Shown(7, "IS Neighbor ID", ShowSystem), Number(3, "Metric").Note(", Metric %u"), Number(1, "Sub-TLV Length").Into(&Isis::size)});
constexpr auto kAttributes = Rows<Isis>({
    Shown(7, "IS Neighbor ID", ShowSystem), Hex(1, "Flags"), Number(1, "Sub-TLV Length").Into(&Isis::size)});
constexpr auto kPrefix4 = Rows<Isis>({
    Number(4, "Metric").Note("Metric %u"), Hex(1, "Control"), Flag(0, "Down"), Flag(1, "Sub-TLVs Present").Into(&Isis::flags),
    Bits(2, 6, "Prefix Length").Into(&Isis::control)});
constexpr auto kPrefix6 = Rows<Isis>({
    Number(4, "Metric").Note("Metric %u"), Hex(1, "Control"), Flag(0, "Down"), Flag(1, "External"),
    Flag(2, "Sub-TLVs Present").Into(&Isis::flags), Bits(3, 5, "Reserved"), Number(1, "Prefix Length").Into(&Isis::control)});
constexpr auto kTopologyHead = Rows<Isis>({
    Hex(2, "Topology Word"), Bits(0, 4, "Reserved"), Bits(4, 12, "Topology ID", kTopologyNames).Note(", %s").Into(&Isis::topology)});

void ShowSubElements(const Place& in, Cursor& c, uint32_t size, Isis& isis, void (*show)(const Place&, Cursor&, Isis&)) {
  Cursor part = TakeCursor(c, size);
  show(in, part, isis);
  part.ranShort = false;
  AddBlock(in, Rest(part), "Data");
}

void ShowLinks(const Place& in, Cursor& c, Isis& isis) {
  constexpr int32_t kLinkSize = 11;
  Loop loop;
  while (Left(c) >= kLinkSize && MoreAt(in, c, loop)) {
    const int32_t size = kLinkSize + static_cast<int32_t>(PeekU8(c, 10));
    Cursor part = TakeCursor(c, size);
    const Place under = Under(in, AddLine(in, Ahead(part, Left(part)), "Neighbor"));
    ShowRows<Isis>(under, part, kLink, isis);
    ShowSubElements(under, part, isis.size.value, isis, ShowIsisLinkElements);
  }
}
void ShowLinkAttributes(const Place& in, Cursor& c, Isis& isis) {
  constexpr int32_t kSize = 9;
  Loop loop;
  while (Left(c) >= kSize && MoreAt(in, c, loop)) {
    Cursor part = TakeCursor(c, kSize + static_cast<int32_t>(PeekU8(c, 8)));
    const Place under = Under(in, AddLine(in, Ahead(part, Left(part)), "Neighbor"));
    ShowRows<Isis>(under, part, kAttributes, isis);
    ShowSubElements(under, part, isis.size.value, isis, ShowIsisLinkElements);
  }
}

void ShowPrefix(const Place& in, Cursor& c, Isis& isis, bool isSix) {
  const Cursor start = c;
  const LineHandle line = AddLine(in, Ahead(c, 5), "Prefix: ");
  const Place under = Under(in, line);
  ShowRows<Isis>(under, c, isSix ? RowSpan<Isis>(kPrefix6) : RowSpan<Isis>(kPrefix4), isis);
  const uint32_t bits = isis.control.value;
  const bool hasElements = isis.flags.value;
  uint8_t address[16] = {};
  const Field prefix = TakeBytes(c, static_cast<int32_t>((bits + 7) / 8));
  for (int32_t i = 0; i < prefix.length && i < 16; ++i) address[i] = static_cast<uint8_t>(PeekU8(prefix, i));
  if (prefix.here && isSix) {
    AddLine(under, prefix, "IPv6 Prefix: %s/%u", IPv6Text(address), bits);
    AppendToLine(in, line, ", %s/%u", IPv6Text(address), bits);
  } else if (prefix.here) {
    AddLine(under, prefix, "IPv4 Prefix: %s/%u", IPv4Text(address), bits);
    AppendToLine(in, line, ", %s/%u", IPv4Text(address), bits);
  }
  if (hasElements && Left(c)) {
    const Field length = TakeU8(c);
    AddLine(under, length, "Sub-TLV Length: %u", length.value);
    ShowSubElements(under, c, length.value, isis, ShowIsisPrefixElements);
  }
  if (line) SetRange(in, line, start.offset, c.offset - start.offset);
}
void ShowPrefixes4(const Place& in, Cursor& c, Isis& isis) {
  Loop loop;
  while (Left(c) >= 5 && MoreAt(in, c, loop)) ShowPrefix(in, c, isis, false);
}
void ShowPrefixes6(const Place& in, Cursor& c, Isis& isis) {
  Loop loop;
  while (Left(c) >= 6 && MoreAt(in, c, loop)) ShowPrefix(in, c, isis, true);
}

// --- the rest ---

constexpr auto kText = Rows<Isis>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kRouter4 = Rows<Isis>({IPv4(nullptr).Note(", %s")});
constexpr auto kRouter6 = Rows<Isis>({IPv6(nullptr).Note(", %s")});
constexpr auto kNumber2 = Rows<Isis>({Number(2, nullptr).Note(", %u")});
constexpr auto kChecksum = Rows<Isis>({Hex(2, "Element Checksum")});
constexpr auto kExtendedSequence = Rows<Isis>({Number(8, "Extended Session Sequence Number"), Number(4, "Packet Sequence Number")});
constexpr auto kCapability = Rows<Isis>({
    IPv4("Router ID").Note(", %s"), Hex(1, "Capability Flags"), Bits(0, 6, "Reserved"), Flag(6, "Down"), Flag(7, "Flood Domain-Wide")});
constexpr auto kRestart = Rows<Isis>({
    Hex(1, "Restart Flags"), Bits(0, 3, "Reserved"), Flag(3, "Planned Restart Acknowledgement"), Flag(4, "Planned Restart"),
    Flag(5, "Suppress Adjacency"), Flag(6, "Restart Acknowledgement"), Flag(7, "Restart Request")});
constexpr auto kRestartTime = Rows<Isis>({Number(2, "Remaining Holding Time", " seconds")});
constexpr auto kRestarting = Rows<Isis>({Shown(6, "Restarting Neighbor", ShowSystem)});
constexpr auto kThreeWay = Rows<Isis>({Number(1, "Adjacency State", kStateNames).Note(", %s")});
constexpr auto kExtendedCircuit = Rows<Isis>({Number(4, "Extended Local Circuit ID")});
constexpr auto kThreeWayNeighbor = Rows<Isis>({
    Shown(6, "Neighbor System ID", ShowSystem), Number(4, "Neighbor Extended Local Circuit ID")});
constexpr auto kAuthentication = Rows<Isis>({Number(1, "Authentication Type", kAuthenticationNames).Note(", %s").Into(&Isis::kind)});
constexpr auto kPassword = Rows<Isis>({Text(0, "Password")});
constexpr auto kKey = Rows<Isis>({Number(2, "Key ID")});
constexpr auto kDigest = Rows<Isis>({Bytes(0, "Authentication Value")});
constexpr auto kReverse = Rows<Isis>({
    Hex(1, "Reverse Metric Flags"), Number(3, "Reverse Metric").Note(", %u"), Number(1, "Reverse Sub-TLV Length").Into(&Isis::size)});
constexpr auto kPurge = Rows<Isis>({Number(1, "Number of System IDs")});
constexpr auto kPurger = Rows<Isis>({Shown(6, "Purge Originator", ShowSystem)});
constexpr auto kSharedRisk = Rows<Isis>({
    Shown(7, "Neighbor System ID", ShowSystem), Hex(1, "Risk Flags"), IPv4("IPv4 Interface"), IPv4("IPv4 Neighbor")});
constexpr auto kRiskGroup = Rows<Isis>({Number(4, "Shared Risk Link Group")});
constexpr auto kLocator = Rows<Isis>({
    Number(4, "Metric"), Hex(1, "Locator Flags"), Number(1, "Algorithm"), Number(1, "Locator Size").Into(&Isis::control)});

void ShowAuthentication(const Place& in, Cursor& c, Isis& isis) {
  enum : uint32_t { kCleartext = 1, kGeneric = 3 };
  if (isis.kind.value == kGeneric) ShowRows<Isis>(in, c, kKey, isis);
  if (Left(c)) ShowRows<Isis>(in, c, isis.kind.value == kCleartext ? RowSpan<Isis>(kPassword) : RowSpan<Isis>(kDigest), isis);
}
void ShowRestart(const Place& in, Cursor& c, Isis& isis) {
  if (Left(c) >= 2) ShowRows<Isis>(in, c, kRestartTime, isis);
  if (Left(c) >= 6) ShowRows<Isis>(in, c, kRestarting, isis);
}
void ShowThreeWay(const Place& in, Cursor& c, Isis& isis) {
  if (Left(c) >= 4) ShowRows<Isis>(in, c, kExtendedCircuit, isis);
  if (Left(c) >= 10) ShowRows<Isis>(in, c, kThreeWayNeighbor, isis);
}
void ShowReverse(const Place& in, Cursor& c, Isis& isis) { ShowSubElements(in, c, isis.size.value, isis, ShowIsisLinkElements); }
void ShowPurgers(const Place& in, Cursor& c, Isis& isis) { ShowAll(in, c, kPurger, 6, isis); }
void ShowRiskGroups(const Place& in, Cursor& c, Isis& isis) { ShowAll(in, c, kRiskGroup, 4, isis); }
void ShowLocator(const Place& in, Cursor& c, Isis& isis) {
  Loop loop;
  while (Left(c) >= 7 && MoreAt(in, c, loop)) {
    ShowRows<Isis>(in, c, kLocator, isis);
    uint8_t address[16] = {};
    const uint32_t bits = isis.control.value;
    const Field prefix = TakeBytes(c, static_cast<int32_t>((bits + 7) / 8));
    for (int32_t i = 0; i < prefix.length && i < 16; ++i) address[i] = static_cast<uint8_t>(PeekU8(prefix, i));
    AddLine(in, prefix, "Locator: %s/%u", IPv6Text(address), bits);
    const Field length = TakeU8(c);
    AddLine(in, length, "Sub-TLV Length: %u", length.value);
    ShowSubElements(in, c, length.value, isis, ShowIsisPrefixElements);
  }
}

// --- elements of their own layouts ---

constexpr auto kSemiOctets = Rows<Isis>({Number(1, "Prefix Length", " semi-octets").Into(&Isis::size)});
void ShowPrefixNeighbors(const Place& in, Cursor& c, Isis& isis) {
  ShowRows<Isis>(in, c, kMetrics, isis);
  Loop loop;
  while (Left(c) >= 1 && MoreAt(in, c, loop)) {
    ShowRows<Isis>(in, c, kSemiOctets, isis);
    const Field prefix = TakeBytes(c, (isis.size.value + 1) / 2);
    AddLine(in, prefix, "Address Prefix: %s", OsiAddressText(prefix));
    AppendToParent(in, prefix, ", %s", OsiAddressText(prefix));
  }
}
// Several instances over one link (RFC 8202).
constexpr auto kInstance = Rows<Isis>({Number(2, "Instance ID").Note(", Instance %u")});
constexpr auto kInstanceTopology = Rows<Isis>({Number(2, "Instance-Specific Topology ID").Note(", Topology %u")});
void ShowInstanceTopologies(const Place& in, Cursor& c, Isis& isis) { ShowAll(in, c, kInstanceTopology, 2, isis); }

// A topology of its own for flooding, of nodes by their index (RFC 9667).
constexpr auto kAreaNodesHead = Rows<Isis>({
    Number(2, "Starting Index").Note(", from %u"), Word(1), Flag(0, "Last"), Bits(1, 7, "Reserved")});
constexpr auto kAreaNode = Rows<Isis>({Shown(7, "Node ID", ShowSystem)});
void ShowAreaNodes(const Place& in, Cursor& c, Isis& isis) { ShowAll(in, c, kAreaNode, 7, isis); }
constexpr auto kPathIndex = Rows<Isis>({Number(2, "Node Index").Note(", %u")});
void ShowFloodingPath(const Place& in, Cursor& c, Isis& isis) { ShowAll(in, c, kPathIndex, 2, isis); }
constexpr auto kLevelNames = SortedNames({{0, "None"}, {1, "Level 1"}, {2, "Level 2"}, {3, "Level 1 and 2"}});
constexpr auto kFloodingLevels = Rows<Isis>({
    Word(1), Bits(0, 6, "Reserved"), Bits(6, 2, "Levels", kLevelNames).Note(", %s")});
constexpr auto kFloodingScope = Rows<Isis>({
    Word(1), Bits(0, 1, "Reserved"), Bits(1, 7, "Flooding Scope", kIsisScopeNames)});
void ShowFloodingScopes(const Place& in, Cursor& c, Isis& isis) { ShowAll(in, c, kFloodingScope, 1, isis); }

// An area that is seen as one system from outside (RFC 9666).
constexpr auto kAreaSid = Rows<Isis>({
    Hex(1, "SID Flags"), Flag(0, "IPv6"), Flag(1, "Value"), Flag(2, "Local"), Bits(3, 5, "Reserved"), Bytes(0, "SID").Note(", %s")});
constexpr auto kProxySystem = Rows<Isis>({Shown(6, "Proxy System ID", ShowSystem)});
constexpr auto kProxyParts = Choices<Isis>({{1, "Area Proxy System Identifier", kProxySystem}, {2, "Area SID", kAreaSid}});
void ShowProxy(const Place& in, Cursor& c, Isis& isis) { ShowElements(in, c, kIsisForm, "Sub-TLV", kProxyParts, isis); }

// Another name of the same system (RFC 5311), which may have elements of its own.
constexpr auto kAlias = Rows<Isis>({
    Shown(7, "Normal System ID", ShowSystem), Number(1, "Sub-TLV Length").Into(&Isis::size)});
void ShowAlias(const Place& in, Cursor& c, Isis& isis) {
  Cursor part = TakeCursor(c, isis.size.value);
  ShowElements<Isis>(in, part, kIsisForm, "Sub-TLV", {}, isis);
}

// What routers to other domains say (RFC 1195 5.3.6).
constexpr auto kInterDomainNames = SortedNames({{0, "Reserved"}, {1, "Local"}, {2, "Autonomous System Number Tag"}});
constexpr auto kInterDomain = Rows<Isis>({
    Number(1, "Inter-Domain Information Type", kInterDomainNames).Note(", %s").Into(&Isis::kind)});
constexpr auto kSystemTag = Rows<Isis>({Number(2, "AS Number").Note(", AS %u")});
constexpr auto kDomainBytes = Rows<Isis>({Bytes(0, "Inter-Domain Information")});
void ShowInterDomain(const Place& in, Cursor& c, Isis& isis) {
  constexpr uint32_t kTag = 2;
  if (Left(c)) ShowRows<Isis>(in, c, isis.kind.value == kTag ? RowSpan<Isis>(kSystemTag) : RowSpan<Isis>(kDomainBytes), isis);
}
constexpr auto kFingerprint = Rows<Isis>({Word(1), Flag(0, "Originator Started"), Bits(1, 7, "Reserved"),
    Bytes(0, "Router Fingerprint")});
constexpr auto kPace = Rows<Isis>({Number(4, nullptr).Note(", %u")});
constexpr auto kPaceTime = Rows<Isis>({Number(4, nullptr, " microseconds").Note(", %u")});
constexpr auto kPaceMilliseconds = Rows<Isis>({Number(2, nullptr, " milliseconds").Note(", %u")});
constexpr auto kPaceFlags = Rows<Isis>({Hex(1, "Flooding Flags"), Flag(7, "Ordered Acknowledgement")});
constexpr auto kPaces = Choices<Isis>({
    {1, "LSP Burst Size", kPace}, {2, "LSP Transmission Interval", kPaceTime}, {3, "LSPs per PSNP", kPace},
    {4, "Flooding Flags", kPaceFlags}, {5, "PSNP Interval", kPaceMilliseconds}, {6, "Receive Window", kPace}});
void ShowPaces(const Place& in, Cursor& c, Isis& isis) { ShowElements(in, c, kIsisForm, "Sub-TLV", kPaces, isis); }

constexpr auto kBundle = Rows<Isis>({
    Shown(7, "Parent Neighbor ID", ShowSystem), Hex(1, "Bundle Flags"),
        Flag(0, "Parent Information Present").Into(&Isis::flags)});
constexpr auto kMembers = Rows<Isis>({Number(1, "Descriptor Length").Into(&Isis::size),
    Number(1, "Number of Members").Into(&Isis::count)});
constexpr auto kMember = Rows<Isis>({Number(4, "Member Link Local Identifier")});
void ShowBundle(const Place& in, Cursor& c, Isis& isis) {
  if (isis.flags.value) {   // what tells this of several links between the same two systems
    const int32_t size = 2 + static_cast<int32_t>(PeekU8(c, 1));
    ShowSubElements(in, c, static_cast<uint32_t>(size), isis, ShowIsisLinkElements);
  }
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) {
    Cursor part = TakeCursor(c, PeekU8(c) > 2 ? static_cast<int32_t>(PeekU8(c)) : Left(c));
    const Place under = Under(in, AddLine(in, Ahead(part, Left(part)), "Bundle Attributes"));
    ShowRows<Isis>(under, part, kMembers, isis);
    for (uint32_t i = 0; i < isis.count.value && Left(part) >= 4; ++i) ShowRows<Isis>(under, part, kMember, isis);
    ShowIsisLinkElements(under, part, isis);
  }
}

constexpr auto kAlgorithmPrefix = Rows<Isis>({
    Number(4, "Metric").Note(", Metric %u"), Hex(1, "Prefix Flags"), Flag(0, "Down"), Number(1, "Algorithm"),
    Number(1, "Prefix Length").Into(&Isis::control)});
void ShowAlgorithmPrefixes(const Place& in, Cursor& c, Isis& isis, bool isSix) {
  Loop loop;
  while (Left(c) >= 7 && MoreAt(in, c, loop)) {
    ShowRows<Isis>(in, c, kAlgorithmPrefix, isis);
    uint8_t address[16] = {};
    const uint32_t bits = isis.control.value;
    const Field prefix = TakeBytes(c, static_cast<int32_t>((bits + 7) / 8));
    for (int32_t i = 0; i < prefix.length && i < 16; ++i) address[i] = static_cast<uint8_t>(PeekU8(prefix, i));
    if (isSix) AddLine(in, prefix, "IPv6 Prefix: %s/%u", IPv6Text(address), bits);
    else AddLine(in, prefix, "IPv4 Prefix: %s/%u", IPv4Text(address), bits);
    const Field length = TakeU8(c);
    AddLine(in, length, "Sub-TLV Length: %u", length.value);
    ShowSubElements(in, c, length.value, isis, ShowIsisPrefixElements);
  }
}
void ShowAlgorithmPrefixes4(const Place& in, Cursor& c, Isis& isis) { ShowAlgorithmPrefixes(in, c, isis, false); }
void ShowAlgorithmPrefixes6(const Place& in, Cursor& c, Isis& isis) { ShowAlgorithmPrefixes(in, c, isis, true); }

constexpr auto kSharedRisk6 = Rows<Isis>({
    Shown(7, "Neighbor System ID", ShowSystem), Hex(1, "Risk Flags"), Flag(7,
        "Neighbor Address Missing").Into(&Isis::flags), IPv6("IPv6 Interface")});
constexpr auto kRiskNeighbor6 = Rows<Isis>({IPv6("IPv6 Neighbor")});
void ShowRisks6(const Place& in, Cursor& c, Isis& isis) {
  if (!isis.flags.value) ShowRows<Isis>(in, c, kRiskNeighbor6, isis);
  ShowAll(in, c, kRiskGroup, 4, isis);
}
constexpr auto kInterSystem = Rows<Isis>({
    IPv4("Router ID").Note(", %s"), Number(3, "Metric").Note(", Metric %u"), Hex(1, "Reachability Flags"),
    Flag(7, "Flood Domain-Wide"),
    Flag(6, "Down"), Number(1, "Sub-TLV Length").Into(&Isis::size)});
constexpr auto kBinding = Rows<Isis>({
    Hex(1, "Binding Flags"), Flag(0, "IPv6").Into(&Isis::flags), Flag(1, "Mirror Context"), Flag(2, "Domain-Wide"),
    Flag(3, "Down"), Flag(4, "Attached"),
    Hex(1, "Reserved"), Number(2, "Range"), Number(1, "Prefix Length").Into(&Isis::control)});
void ShowBinding(const Place& in, Cursor& c, Isis& isis) {
  ShowRows<Isis>(in, c, kBinding, isis);
  uint8_t address[16] = {};
  const Field prefix = TakeBytes(c, static_cast<int32_t>((isis.control.value + 7) / 8));
  for (int32_t i = 0; i < prefix.length && i < 16; ++i) address[i] = static_cast<uint8_t>(PeekU8(prefix, i));
  if (isis.flags.value) AddLine(in, prefix, "IPv6 Prefix: %s/%u", IPv6Text(address), isis.control.value);
  else AddLine(in, prefix, "IPv4 Prefix: %s/%u", IPv4Text(address), isis.control.value);
  ShowIsisSidElements(in, c, isis);
}
constexpr auto kReflection = Rows<Isis>({
    Hex(1, "Reflection Flags"), Flag(0, "Client"), Bits(1, 7, "Reserved"),
    Number(4, "Flood Reflection Cluster ID").Note(", %u")});
constexpr auto kRiskNeighbor = Rows<Isis>({Shown(7, "Neighbor System ID", ShowSystem)});
constexpr auto kRiskSize = Rows<Isis>({Number(1, "Sub-TLV Length").Into(&Isis::size)});
void ShowApplicationRisks(const Place& in, Cursor& c, Isis& isis) {
  ShowIsisApplications(in, c, isis);
  ShowRows<Isis>(in, c, kRiskSize, isis);
  ShowSubElements(in, c, isis.size.value, isis, ShowIsisLinkElements);
  ShowAll(in, c, kRiskGroup, 4, isis);
}
constexpr auto kScopeBits = Rows<Isis>({Word(1), Flag(0, "Extended TLVs"),
    Bits(1, 7, "Flooding Scope", kIsisScopeNames).Note(", %s")});
void ShowScopes(const Place& in, Cursor& c, Isis& isis) { ShowAll(in, c, kScopeBits, 1, isis); }
constexpr auto kGeneric = Rows<Isis>({
    Hex(1, "Information Flags").Into(&Isis::flags), Flag(4, "IPv6 Address Present"), Flag(5, "IPv4 Address Present"),
    Flag(6, "Down"),
    Flag(7, "Flood Domain-Wide"), Number(2, "Application ID").Note(", %u")});
constexpr auto kGeneric4 = Rows<Isis>({IPv4("Information IPv4 Address")});
constexpr auto kGeneric6 = Rows<Isis>({IPv6("Information IPv6 Address")});
void ShowGeneric(const Place& in, Cursor& c, Isis& isis) {
  const uint32_t flags = isis.flags.value;
  if (flags & 4) ShowRows<Isis>(in, c, kGeneric4, isis);
  if (flags & 8) ShowRows<Isis>(in, c, kGeneric6, isis);
}

constexpr auto kElements = Choices<Isis>({
    {1, "Area Addresses", {}, ShowAreas}, {2, "IS Neighbors", {}, ShowNeighbors}, {3, "ES Neighbors", {}, ShowEndSystems},
    {4, "Partition Designated Level 2 IS", kRestarting}, {5, "Prefix Neighbors", {}, ShowPrefixNeighbors},
    {6, "IS Neighbors", {}, ShowNeighborMacs},
    {7, "Instance Identifier", kInstance, ShowInstanceTopologies}, {8, "Padding", {}, ShowPadding},
    {9, "LSP Entries", {}, ShowEntries},
    {10, "Authentication", kAuthentication, ShowAuthentication}, {11, "Extended Sequence Number", kExtendedSequence},
    {12, "Checksum", kChecksum}, {13, "Purge Originator Identification", kPurge, ShowPurgers},
    {14, "LSP Buffer Size", kNumber2}, {15, "Router Fingerprint", kFingerprint},
    {16, "Reverse Metric", kReverse, ShowReverse},
    {17, "IS-IS Area Node IDs", kAreaNodesHead, ShowAreaNodes}, {18, "IS-IS Flooding Path", {}, ShowFloodingPath},
    {19, "IS-IS Flooding Request", kFloodingLevels, ShowFloodingScopes}, {20, "Area Proxy", {}, ShowProxy},
    {21, "Flooding Parameters", {}, ShowPaces}, {22, "Extended IS Reachability", {}, ShowLinks},
    {23, "IS Neighbor Attribute", {}, ShowLinkAttributes}, {24, "IS Alias ID", kAlias, ShowAlias},
    {25, "L2 Bundle Member Attributes", kBundle, ShowBundle},
    {26, "TE Attribute Instance"}, {27, "SRv6 Locator", kTopologyHead, ShowLocator}, {42, "DECnet Phase IV"},
    {66, "Lucent Proprietary"}, {126, "IPv4 Algorithm Prefix Reachability", kTopologyHead, ShowAlgorithmPrefixes4},
    {127, "IPv6 Algorithm Prefix Reachability", kTopologyHead, ShowAlgorithmPrefixes6},
    {128, "IP Internal Reachability", {}, ShowNetworks}, {129, "Protocols Supported", {}, ShowProtocols},
    {130, "IP External Reachability", {}, ShowNetworks}, {131, "Inter-Domain Routing Protocol Information", kInterDomain, ShowInterDomain},
    {132, "IP Interface Addresses", {}, ShowAddresses4}, {133, "Authentication (Early)", kAuthentication, ShowAuthentication},
    {134, "Traffic Engineering Router ID", kRouter4}, {135, "Extended IP Reachability", {}, ShowPrefixes4},
    {137, "Dynamic Hostname", kText}, {138, "Shared Risk Link Group", kSharedRisk, ShowRiskGroups},
    {139, "IPv6 Shared Risk Link Group", kSharedRisk6, ShowRisks6}, {140, "IPv6 TE Router ID", kRouter6},
    {141, "Inter-AS Reachability", kInterSystem, ShowReverse},
    {142, "Group Address", {}, ShowIsisGroups}, {143, "MT Port Capability", kTopologyHead, ShowIsisPort},
    {144, "MT Capability", kTopologyHead, ShowIsisBridge}, {145, "TRILL Neighbor", {}, ShowIsisBridgeNeighbors},
    {147, "MAC Reachability", {}, ShowIsisMacs}, {148, "BFD Enabled", {}, ShowBfds},
    {149, "SID/Label Binding", {}, ShowBinding},
    {150, "Multi-Topology SID/Label Binding", kTopologyHead, ShowBinding}, {151, "Reverse Path Forwarding"},
    {161, "Flood Reflection", kReflection}, {176, "Nortel Proprietary"}, {177, "Nortel Proprietary"},
    {211, "Restart", kRestart, ShowRestart}, {222, "Multi-Topology IS Reachability", kTopologyHead, ShowLinks},
    {223, "Multi-Topology IS Neighbor Attribute", kTopologyHead, ShowLinkAttributes},
    {229, "Multi-Topology", {}, ShowTopologies}, {232, "IPv6 Interface Addresses", {}, ShowAddresses6},
    {233, "IPv6 Global Interface Addresses", {}, ShowGlobals6},
    {235, "Multi-Topology IP Reachability", kTopologyHead, ShowPrefixes4}, {236, "IPv6 Reachability", {}, ShowPrefixes6},
    {237, "Multi-Topology IPv6 Reachability", kTopologyHead, ShowPrefixes6},
    {238, "Application-Specific Shared Risk Link Group", kRiskNeighbor, ShowApplicationRisks},
    {240, "Point-to-Point Three-Way Adjacency", kThreeWay, ShowThreeWay},
    {241, "IPv6 Extended Reachability"}, {242, "Router Capability", kCapability, ShowIsisCapabilities},
    {243, "Scope Flooding Support", {}, ShowScopes}, {250, "Experimental"},
    {251, "Generic Information", kGeneric, ShowGeneric}});

}  // namespace

// Of extended scopes the types and lengths have two octets.
void ShowIsisElements(const Place& in, Cursor& c, Isis& isis) {
  constexpr ElementForm kExtended{.typeSize = 2, .lengthSize = 2, .valueLines = true};
  constexpr uint32_t kFirstExtended = 64;
  ShowElements(in, c, isis.kind.value >= kFirstExtended ? kExtended : kIsisForm, "TLV", kElements, isis);
}

}  // namespace qxview
