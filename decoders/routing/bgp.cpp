// Border Gateway Protocol 4 (RFC 4271) with its capabilities (RFC 5492) and what they bring: multiprotocol (RFC 4760), four-octet
// numbers (RFC 6793), route refresh (RFC 2918, 7313) and filters (RFC 5291, 5292), restarts (RFC 4724, 9494), several paths
// (RFC 7911), roles (RFC 9234), shutdown with a word (RFC 9003), hard resets (RFC 8538).
//
//   marker (16, all ones) length (2) type (1) body
//
// How wide the numbers of systems are and whether prefixes have path identifiers depends on the OPEN messages: where these
// were not seen it is told from the bytes, and the line says that it was.
#include "decoders/routing/bgp.h"

#include "core/elements.h"
#include "core/line_facts.h"
#include "decoders/routing/bgp_names.h"
#include "decoders/routing/prefix.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr int32_t kHeader = 19;
constexpr uint32_t kOpen = 1, kUpdate = 2, kNotification = 3, kRefresh = 5;

constexpr auto kTypeNames = SortedNames({
    {1, "OPEN"}, {2, "UPDATE"}, {3, "NOTIFICATION"}, {4, "KEEPALIVE"}, {5, "ROUTE-REFRESH"}, {6, "CAPABILITY"}});
constexpr auto kParameterNames = SortedNames({
    {0, "Reserved"}, {1, "Authentication (Deprecated)"}, {2, "Capabilities"}, {255, "Extended Length"}});
constexpr auto kRefreshNames = SortedNames({
    {0, "Normal"}, {1, "Beginning of Route Refresh"}, {2, "End of Route Refresh"}, {255, "Reserved"}});
constexpr auto kFilterNames = SortedNames({
    {1, "NLRI (Deprecated)"}, {2, "Communities"}, {3, "Extended Communities"}, {64, "Address Prefix"},
    {65, "CP"}, {66, "Route Distinguisher"}, {128, "Address Prefix (Prestandard)"}});
constexpr auto kDirectionNames = SortedNames({{1, "Receive"}, {2, "Send"}, {3, "Both"}});
constexpr auto kRoleNames = SortedNames({
    {0, "Provider"}, {1, "Route Server"}, {2, "Route Server Client"}, {3, "Customer"}, {4, "Peer"}});
constexpr auto kWhenNames = SortedNames({{1, "Immediate"}, {2, "Defer"}});
constexpr auto kActionNames = SortedNames({{0, "Add"}, {1, "Remove"}, {2, "Remove All"}, {3, "Reserved"}});
constexpr auto kMatchNames = SortedNames({{0, "Permit"}, {1, "Deny"}});
constexpr auto kSecureNames = SortedNames({{0, "Receive"}, {1, "Send"}});

constexpr auto kHead = Rows<Bgp>({
    Bytes(16, "Marker"), Number(2, "Length", " bytes").Into(&Bgp::length), Number(1, "Type", kTypeNames).Into(&Bgp::type)});
constexpr auto kOpenRows = Rows<Bgp>({
    Number(1, "Version"), Number(2, "My AS").Note(", AS %u"), Number(2, "Hold Time", " seconds"),
    IPv4("BGP Identifier").Note(", %s"), Number(1, "Optional Parameters Length").Into(&Bgp::length)});
constexpr auto kExtendedRows = Rows<Bgp>({
    Number(1, "Extended Parameters", kParameterNames), Number(2, "Extended Parameters Length").Into(&Bgp::length)});

constexpr auto kFamily = Rows<Bgp>({
    Number(2, "Address Family", AddressFamilyName).Note(", %s").Into(&Bgp::afi), Hex(1, "Reserved"),
    Number(1, "Subsequent Address Family", kBgpSafiNames).Note(" %s").Into(&Bgp::safi)});

template <const auto& rows, int32_t size>
void ShowEach(const Place& in, Cursor& c, Bgp& bgp) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Bgp>(in, c, rows, bgp);
}

constexpr auto kFilterKind = Rows<Bgp>({Number(1, "Filter Type", kFilterNames), Number(1, "Send/Receive", kDirectionNames)});
void ShowFilters(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kCount = Rows<Bgp>({Number(1, "Filters").Into(&Bgp::count)});
  Loop loop;
  while (Left(c) >= 5 && MoreAt(in, c, loop)) {
    ShowRows<Bgp>(in, c, kFamily, bgp);
    ShowRows<Bgp>(in, c, kCount, bgp);
    for (uint32_t i = 0; i < bgp.count.value && Left(c) >= 2; ++i) ShowRows<Bgp>(in, c, kFilterKind, bgp);
  }
}

constexpr auto kNextHop = Rows<Bgp>({
    Number(2, "Address Family", AddressFamilyName), Number(2, "Subsequent Address Family", kBgpSafiNames),
    Number(2, "Next Hop Family", AddressFamilyName)});
constexpr auto kSecure = Rows<Bgp>({
    Word(1), Bits(0, 4, "Version"), Bits(4, 1, "Direction", kSecureNames), Bits(5, 3, "Reserved"),
    Number(2, "Address Family", AddressFamilyName).Note(", %s")});
constexpr auto kLabels = Rows<Bgp>({
    Number(2, "Address Family", AddressFamilyName), Number(1, "Subsequent Address Family", kBgpSafiNames), Number(1, "Labels")});
constexpr auto kRole = Rows<Bgp>({Number(1, "Role", kRoleNames).Note(", %s")});
constexpr auto kRestart = Rows<Bgp>({
    Word(2), Flag(0, "Restart State"), Flag(1, "Graceful Notification"), Bits(2, 2, "Reserved"),
    Bits(4, 12, "Restart Time", " seconds").Note(", %u seconds")});
constexpr auto kRestartFamily = Rows<Bgp>({
    Number(2, "Address Family", AddressFamilyName), Number(1, "Subsequent Address Family", kBgpSafiNames), Word(1),
    Flag(0, "Forwarding State Preserved"), Bits(1, 7, "Reserved")});
constexpr auto kLongRestart = Rows<Bgp>({
    Number(2, "Address Family", AddressFamilyName), Number(1, "Subsequent Address Family", kBgpSafiNames), Word(1),
    Flag(0, "Forwarding State Preserved"), Bits(1, 7, "Reserved"), Number(3, "Stale Time", " seconds")});
constexpr auto kNumber = Rows<Bgp>({Number(4, "AS Number").Note(", AS %u")});
constexpr auto kPaths = Rows<Bgp>({
    Number(2, "Address Family", AddressFamilyName).Into(&Bgp::afi),
    Number(1, "Subsequent Address Family", kBgpSafiNames).Into(&Bgp::safi),
    Number(1, "Send/Receive", kDirectionNames).Into(&Bgp::flags)});
constexpr auto kPathLimit = Rows<Bgp>({
    Number(2, "Address Family", AddressFamilyName), Number(1, "Subsequent Address Family", kBgpSafiNames), Number(2, "Paths Limit")});
constexpr auto kName = Rows<Bgp>({Counted(1, Utf8(0, "Host Name")).Note(", %s"), Counted(1, Utf8(0, "Domain Name"))});
constexpr auto kVersion = Rows<Bgp>({Counted(1, Utf8(0, "Software Version")).Note(", %s")});
constexpr auto kSessions = Rows<Bgp>({
    Word(1), Flag(0, "Grouping by Capabilities"), Bits(1, 7, "Reserved"), Bytes(0, "Session Identifier Codes")});
constexpr auto kDynamic = Rows<Bgp>({Number(1, "Dynamic Capability Code", kBgpCapabilityNames)});

void ShowWide(const Place& in, Cursor& c, Bgp& bgp) {
  ShowRows<Bgp>(in, c, kNumber, bgp);
  bgp.session.wide[bgp.direction] = 1;
}
void ShowPaths(const Place& in, Cursor& c, Bgp& bgp) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    ShowRows<Bgp>(in, c, kPaths, bgp);
    const uint32_t family = BgpFamilyBit(bgp.afi.value, bgp.safi.value);
    if (bgp.flags.value & 1) bgp.session.receivesPaths[bgp.direction] |= family;
    if (bgp.flags.value & 2) bgp.session.sendsPaths[bgp.direction] |= family;
  }
}

constexpr auto kCapabilities = Choices<Bgp>({
    {1, "Multiprotocol Extensions", kFamily}, {2, "Route Refresh"}, {3, "Outbound Route Filtering", {}, ShowFilters},
    {5, "Extended Next Hop Encoding", {}, ShowEach<kNextHop, 6>}, {6, "Extended Message"}, {7, "BGPsec", kSecure},
    {8, "Multiple Labels", {}, ShowEach<kLabels, 4>}, {9, "BGP Role", kRole},
    {64, "Graceful Restart", kRestart, ShowEach<kRestartFamily, 4>}, {65, "4-Octet AS Number", {}, ShowWide},
    {66, "Dynamic Capability (Deprecated)", {}, ShowEach<kDynamic, 1>},
    {67, "Dynamic Capability", {}, ShowEach<kDynamic, 1>},
    {68, "Multisession", kSessions},
    {69, "ADD-PATH", {}, ShowPaths}, {70, "Enhanced Route Refresh"},
    {71, "Long-Lived Graceful Restart", {}, ShowEach<kLongRestart, 7>}, {73, "FQDN", kName}, {74, "BFD Strict"},
    {75, "Software Version", kVersion},
    {76, "Paths Limit", {}, ShowEach<kPathLimit, 5>}, {128, "Route Refresh (Prestandard)"},
    {130, "Outbound Route Filtering (Prestandard)", {}, ShowFilters}, {131, "Multisession (Prestandard)", kSessions},
    {184, "FQDN (Prestandard)", kName}});

void ShowCapabilities(const Place& at, Cursor& c, Bgp& bgp) {
  static constexpr auto kCode = Rows<Bgp>({Number(1, "Code", kBgpCapabilityNames), Number(1, "Length")});
  Loop loop;
  while (Left(c) >= 2 && MoreAt(at, c, loop)) {
    const uint32_t code = PeekU8(c);
    Cursor capability = TakeCursor(c, 2 + static_cast<int64_t>(PeekU8(c, 1)));
    const Place in = Under(at, AddLine(at, Ahead(capability, Left(capability)), "Capability: %s",
                                       LookupName(kBgpCapabilityNames, code)));
    ShowRows<Bgp>(in, capability, kCode, bgp);
    ShowChoice<Bgp>(in, capability, FindChoice<Bgp>(kCapabilities, code), bgp);   // keys: none Data
  }
}

void ShowOpen(const Place& at, Cursor& c, Bgp& bgp) {
  constexpr uint32_t kExtended = 255, kCapabilityParameter = 2;
  ShowRows<Bgp>(at, c, kOpenRows, bgp);
  bgp.session.seen[bgp.direction] = 1;
  bgp.session.wide[bgp.direction] = 0;
  bgp.session.sendsPaths[bgp.direction] = bgp.session.receivesPaths[bgp.direction] = 0;
  const bool isExtended = bgp.length.value == kExtended && PeekU8(c) == kExtended;
  if (isExtended) ShowRows<Bgp>(at, c, kExtendedRows, bgp);
  Cursor parameters = TakeCursor(c, bgp.length.value);
  const int32_t head = isExtended ? 3 : 2;
  Loop loop;
  while (Left(parameters) >= head && MoreAt(at, parameters, loop)) {
    const uint32_t type = PeekU8(parameters);
    const int64_t size = isExtended ? PeekU16(parameters, 1) : PeekU8(parameters, 1);
    Cursor parameter = TakeCursor(parameters, head + size);
    const Place in = Under(at, AddLine(at, Ahead(parameter, Left(parameter)), "Optional Parameter: %s",
                                       LookupName(kParameterNames, type)));
    const Field code = TakeU8(parameter), length = isExtended ? TakeU16(parameter) : TakeU8(parameter);
    AddLine(in, code, "Type: %u = %s", type, LookupName(kParameterNames, type));
    AddLine(in, length, "Length: %u", length.value);
    if (type == kCapabilityParameter) ShowCapabilities(in, parameter, bgp);
    parameter.ranShort = false;
    AddBlock(in, Rest(parameter), "Parameter Data");
  }
  AddBlock(at, Rest(parameters), "Parameter Data");   // too short for a head
}

void ShowUpdate(const Place& at, Cursor& c, Bgp& bgp) {
  const Field withdrawn = TakeU16(c);
  AddLine(at, withdrawn, "Withdrawn Routes Length: %u", withdrawn.value);
  Cursor routes = TakeCursor(c, withdrawn.value);
  if (Left(routes)) {
    const Place in = Under(at, AddLine(at, Ahead(routes, Left(routes)), "Withdrawn Routes"));
    ShowBgpRoutes(in, routes, kFamilyIPv4, 1, "Withdrawn Prefix", bgp);
  }
  const Field length = TakeU16(c);
  AddLine(at, length, "Path Attributes Length: %u", length.value);
  Cursor attributes = TakeCursor(c, length.value);
  if (Left(attributes)) {
    const Place in = Under(at, AddLine(at, Ahead(attributes, Left(attributes)), "Path Attributes"));
    ShowBgpAttributes(in, attributes, bgp);
  }
  if (Left(c)) {
    const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Reachable Routes"));
    ShowBgpRoutes(in, c, kFamilyIPv4, 1, "Prefix", bgp);
  }
  if (withdrawn.here && length.here && !withdrawn.value && !length.value) AppendToParent(at, length, ", End-of-RIB");
}

// Shutdown and reset may give a reason; a hard reset holds the notification that is meant.
void ShowNotification(const Place& in, Cursor& c, Bgp& bgp) {
  constexpr uint32_t kShutdown = 0x602, kReset = 0x604, kHardReset = 0x609, kBadFamily = 0x601;
  static constexpr auto kReason = Rows<Bgp>({Counted(1, Utf8(0, "Shutdown Communication")).Note(", \"%s\"")});
  static constexpr auto kMost = Rows<Bgp>({
      Number(2, "Address Family", AddressFamilyName), Number(1, "Subsequent Address Family", kBgpSafiNames),
      Number(4, "Prefix Upper Bound")});
  for (int32_t i = 0; i < 2; ++i) {
    const Field code = TakeU8(c), sub = TakeU8(c);
    const uint32_t key = code.value << 8 | sub.value;
    AddLine(in, code, "Error Code: %u = %s", code.value, LookupName(kBgpErrorNames, code.value));
    AppendToParent(in, code, ", %s", LookupName(kBgpErrorNames, code.value));
    AddLine(in, sub, "Error Subcode: %u = %s", sub.value, LookupName(kBgpSuberrorNames, key, sub.value ? kUnknown : "None"));
    if (sub.value) AppendToParent(in, sub, ", %s", LookupName(kBgpSuberrorNames, key));
    if (key == kHardReset && Left(c) >= 2) continue;
    if ((key == kShutdown || key == kReset) && Left(c)) ShowRows<Bgp>(in, c, kReason, bgp);
    if (key == kBadFamily && Left(c) == 7) ShowRows<Bgp>(in, c, kMost, bgp);
    break;
  }
  c.ranShort = false;
  const Field data = Rest(c);
  if (data.here) AddLine(in, data, "Error Data: %s", HexText(data));
}

void ShowFilterEntries(const Place& in, Cursor& c, uint32_t type, uint32_t afi, Bgp& bgp) {
  constexpr uint32_t kPrefixFilter = 64, kOldPrefixFilter = 128, kRemoveAll = 2;
  static constexpr auto kEntry = Rows<Bgp>({
      Word(1), Bits(0, 2, "Action", kActionNames), Bits(2, 1, "Match", kMatchNames), Bits(3, 5, "Reserved")});
  static constexpr auto kPrefixRows = Rows<Bgp>({
      Number(4, "Sequence"), Number(1, "Minimum Length"), Number(1, "Maximum Length")});
  Loop loop;
  while ((type == kPrefixFilter || type == kOldPrefixFilter) && MoreAt(in, c, loop)) {
    const bool removesAll = PeekU8(c) >> 6 == kRemoveAll;
    ShowRows<Bgp>(in, c, kEntry, bgp);
    if (removesAll) continue;
    ShowRows<Bgp>(in, c, kPrefixRows, bgp);
    const Field bits = TakeU8(c);
    AddLine(in, bits, "Prefix Length: %u", bits.value);
    ShowPrefix(in, c, "Prefix", afi, bits.value);
  }
  constexpr uint32_t kCommunityFilter = 2, kExtendedFilter = 3, kDistinguisherFilter = 66;
  static constexpr auto kCommunity = Rows<Bgp>({Hex(4, "Community").Note(", 0x%08X")});
  static constexpr auto kSequence = Rows<Bgp>({Number(4, "Sequence")});
  while ((type == kCommunityFilter || type == kExtendedFilter || type == kDistinguisherFilter) && MoreAt(in, c, loop)) {
    const bool removesAll = PeekU8(c) >> 6 == kRemoveAll;
    ShowRows<Bgp>(in, c, kEntry, bgp);
    if (removesAll) continue;
    if (type == kCommunityFilter) ShowRows<Bgp>(in, c, kCommunity, bgp);
    if (type == kExtendedFilter) {
      Cursor one = TakeCursor(c, 8);
      ShowBgpExtendedCommunities(in, one, bgp);
    }
    if (type == kDistinguisherFilter) {
      ShowRows<Bgp>(in, c, kSequence, bgp);
      ShowRouteDistinguisher(in, c);
    }
  }
  constexpr uint32_t kCoveringFilter = 65;   // RFC 7543
  static constexpr auto kCovering = Rows<Bgp>({
      Number(4, "Sequence"), Number(1, "Minimum Length"), Number(1, "Maximum Length")});
  static constexpr auto kRouteType = Rows<Bgp>({Number(1, "Route Type")});
  static constexpr auto kHostMac = Rows<Bgp>({Mac("Host MAC Address").Note(", %s")});
  while (type == kCoveringFilter && Left(c) >= 24 && MoreAt(in, c, loop)) {
    ShowRows<Bgp>(in, c, kEntry, bgp);
    ShowRows<Bgp>(in, c, kCovering, bgp);
    Cursor targets = TakeCursor(c, 16);
    ShowBgpExtendedCommunities(in, targets, bgp);
    ShowRows<Bgp>(in, c, kRouteType, bgp);
    if (afi == kFamilyIPv4 || afi == kFamilyIPv6) ShowFamilyAddress(in, c, "Host Address", afi);
    else if (Left(c) >= 6) ShowRows<Bgp>(in, c, kHostMac, bgp);
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Filter Entries");
}

void ShowRefresh(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kRows = Rows<Bgp>({
      Number(2, "Address Family", AddressFamilyName).Note(", %s").Into(&Bgp::afi), Number(1, "Subtype", kRefreshNames),
      Number(1, "Subsequent Address Family", kBgpSafiNames).Note(" %s")});
  static constexpr auto kWhen = Rows<Bgp>({Number(1, "When to Refresh", kWhenNames)});
  static constexpr auto kFilter = Rows<Bgp>({
      Number(1, "Filter Type", kFilterNames).Into(&Bgp::code), Number(2, "Filter Length").Into(&Bgp::count)});
  ShowRows<Bgp>(in, c, kRows, bgp);
  if (!Left(c)) return;
  ShowRows<Bgp>(in, c, kWhen, bgp);
  Loop loop;
  while (Left(c) >= 3 && MoreAt(in, c, loop)) {
    ShowRows<Bgp>(in, c, kFilter, bgp);
    Cursor entries = TakeCursor(c, bgp.count.value);
    ShowFilterEntries(in, entries, bgp.code.value, bgp.afi.value, bgp);
  }
}

bool StartsMessage(const Cursor& c) {
  return PeekU32(c) == 0xFFFFFFFF && PeekU32(c, 4) == 0xFFFFFFFF && PeekU32(c, 8) == 0xFFFFFFFF &&
         PeekU32(c, 12) == 0xFFFFFFFF && Left(c) >= kHeader && PeekU16(c, 16) >= kHeader;
}

void ShowMessage(const Place& at, Cursor& c, Bgp& bgp) {
  const int32_t declared = static_cast<int32_t>(PeekU16(c, 16));
  const uint32_t type = PeekU8(c, 18);
  const bool isCut = declared > Left(c);
  Cursor message = TakeCursor(c, declared);
  const Place in = Under(at, AddLine(at, Ahead(message, Left(message)), "BGP: %s%s", LookupName(kTypeNames, type),
                                     isCut ? ", continued in a later segment" : ""));
  ShowRows<Bgp>(in, message, kHead, bgp);
  switch (type) {
    case kOpen: ShowOpen(in, message, bgp); break;
    case kUpdate: ShowUpdate(in, message, bgp); break;
    case kNotification: ShowNotification(in, message, bgp); break;
    case kRefresh: ShowRefresh(in, message, bgp); break;
    default: break;
  }
  message.ranShort = false;
  AddBlock(in, Rest(message), "Message Data");
}

}  // namespace

uint32_t BgpFamilyBit(uint32_t afi, uint32_t safi) {
  constexpr uint32_t kSafis[] = {1, 2, 4, 5, 73, 76, 83, 85, 128, 129, 132, 133, 134}, kBridged = 25, kLinks = 16388;
  for (uint32_t i = 0; i < sizeof kSafis / sizeof *kSafis; ++i) {
    if (kSafis[i] == safi && (afi == kFamilyIPv4 || afi == kFamilyIPv6)) return 1u << (2 * i + afi - 1);
  }
  if (afi == kBridged) return safi == 70 ? 1u << 26 : safi == 65 ? 1u << 27 : safi == 133 ? 1u << 28 : safi == 134 ? 1u << 29 : 0;
  return afi == kLinks && safi == 71 ? 1u << 30 : 0;
}

void ShowBgpMessages(const Place& in, Cursor& c, Bgp& bgp) {
  const KeyedAs keys(PacketOf(in), "bgp");
  Loop loop;
  while (StartsMessage(c) && MoreAt(in, c, loop)) ShowMessage(in, c, bgp);
}

// Messages, one behind the other; what begins with none is the rest of an earlier segment's.
int32_t DecodeBgp(const Place& at, Cursor c) {
  constexpr int32_t kMarker = 16;
  Bgp bgp{};
  const PacketState& packet = PacketOf(at);
  const ConnectionKey key = ConnectionOf(packet, &bgp.direction);
  if (const BgpSession* session = Recall(at.view, kBgpSessions, key)) bgp.session = *session;
  bgp.known = bgp.session.seen[0] && bgp.session.seen[1];
  if (!StartsMessage(c)) {
    int32_t next = FindU8(c, 0xFF);
    Cursor ahead = c;
    while (next >= 0 && next < Left(c)) {
      ahead = c;
      TakeBytes(ahead, next);
      if (StartsMessage(ahead)) break;
      next = FindU8(c, 0xFF, next + 1);
    }
    const bool isFound = next >= 0 && StartsMessage(ahead);
    if (!isFound && Left(c) < kMarker) return 0;
    const Field rest = TakeBytes(c, isFound ? next : Left(c));
    AddLine(at, rest, "BGP: rest of a message, %d bytes", rest.length);
  }
  Loop loop;
  while (StartsMessage(c) && MoreAt(at, c, loop)) {
    const bool isOpen = PeekU8(c, 18) == kOpen;
    ShowMessage(at, c, bgp);
    if (isOpen && !packet.quoted) Remember(at.view, kBgpSessions, key, bgp.session);
  }
  AddRawRest(at, c, "BGP Data");
  return 1;
}

}  // namespace qxview
