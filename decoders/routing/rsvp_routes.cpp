// The hops of explicit and recorded routes in RSVP (RFC 3209 4.3 and 4.4, RFC 3473 5, RFC 3477, RFC 4090 4.4, RFC
// 4874), and in the objects of path computation (RFC 5520, RFC 5521, RFC 8664, RFC 9603).
#include "decoders/routing/rsvp.h"

namespace qxview {
namespace {

constexpr auto kLabelTypes = SortedNames({{1, "Type 1"}, {2, "Generalized"}, {3, "Waveband"}});
constexpr auto kFlagMasks = SortedNames({
    {0x01, "Local Protection Available"}, {0x02, "Local Protection in Use"}, {0x04, "Bandwidth Protection"},
    {0x08, "Node Protection"}, {0x10, "Preemption Pending"}, {0x20, "Node ID"}});
constexpr auto kLabelMasks = SortedNames({{0x01, "Global Label"}, {0x80, "Upstream Label"}});

constexpr auto kHop4 = Rows<Rsvp>({
    IPv4("IPv4 Hop").Note(", %s"), Number(1, "Prefix Length").Note("/%u"), Number(1, "Reserved")});
constexpr auto kHop6 = Rows<Rsvp>({
    IPv6("IPv6 Hop").Note(", %s"), Number(1, "Prefix Length").Note("/%u"), Number(1, "Reserved")});
constexpr auto kLabel = Rows<Rsvp>({
    Flags(1, "Label Flags", kLabelMasks), Number(1, "Label C-Type", kLabelTypes), Number(4, "Label").Note(", %u")});
constexpr auto kUnnumbered = Rows<Rsvp>({
    Hex(2, "Reserved"), IPv4("Router ID").Note(", %s"), Number(4, "Interface ID").Note(", Interface %u")});
constexpr auto kAs = Rows<Rsvp>({Number(2, "AS Number").Note(", AS %u")});
constexpr auto kRisk = Rows<Rsvp>({Number(4, "Shared Risk Link Group ID").Note(", %u"), Hex(2, "Reserved")});
constexpr auto kPathKey = Rows<Rsvp>({Number(2, "Path Key"), IPv4("PCE ID")});
constexpr auto kRecorded4 = Rows<Rsvp>({
    IPv4("IPv4 Hop").Note(", %s"), Number(1, "Prefix Length").Note("/%u"), Flags(1, "Hop Flags", kFlagMasks)});
constexpr auto kRecorded6 = Rows<Rsvp>({
    IPv6("IPv6 Hop").Note(", %s"), Number(1, "Prefix Length").Note("/%u"), Flags(1, "Hop Flags", kFlagMasks)});
constexpr auto kRecordedUnnumbered = Rows<Rsvp>({
    Flags(1, "Hop Flags", kFlagMasks), Number(1, "Reserved"), IPv4("Router ID").Note(", %s"),
    Number(4, "Interface ID").Note(", Interface %u")});

constexpr auto kPathKey6 = Rows<Rsvp>({Number(2, "Path Key"), IPv6("PCE ID")});

// Segments: an identifier, a node or an adjacency, or both.
constexpr auto kNaiNames = SortedNames({
    {0, "Absent"}, {1, "IPv4 Node ID"}, {2, "IPv6 Node ID"}, {3, "IPv4 Adjacency"}, {4, "IPv6 Adjacency"},
    {5, "Unnumbered Adjacency"}, {6, "IPv6 Link-Local Adjacency"}});
constexpr auto kSegmentHead = Rows<Rsvp>({
    Word(2), Bits(0, 4, "NAI Type", kNaiNames).Into(&Rsvp::type), Bits(4, 8, "Reserved"),
    Flag(12, "NAI Absent").Into(&Rsvp::first), Flag(13, "SID Absent").Into(&Rsvp::code), Flag(14, "Traffic Class and TTL Set"),
    Flag(15, "SID Is a Label")});
constexpr auto kSegmentId = Rows<Rsvp>({
    Hex(4, "SID").Note(", 0x%.08X"), Bits(0, 20, "Label"), Bits(20, 3, "Traffic Class"), Flag(23, "Bottom of Stack"),
    Bits(24, 8, "TTL")});
constexpr auto kSegmentHead6 = Rows<Rsvp>({
    Word(2), Bits(0, 4, "NAI Type", kNaiNames).Into(&Rsvp::type), Bits(4, 8, "Reserved"), Flag(12, "SID Verification"),
    Flag(13, "SID Structure Present").Into(&Rsvp::size), Flag(14, "NAI Absent").Into(&Rsvp::first),
    Flag(15, "SID Absent").Into(&Rsvp::code), Hex(2, "Reserved"), Hex(2, "Endpoint Behavior")});
constexpr auto kSegmentId6 = Rows<Rsvp>({IPv6("SRv6 SID").Note(", %s")});
constexpr auto kStructure = Rows<Rsvp>({
    Number(1, "Locator Block Length"), Number(1, "Locator Node Length"), Number(1, "Function Length"),
    Number(1, "Argument Length"), Hex(3, "Reserved"), Hex(1, "Flags")});
constexpr auto kNode4 = Rows<Rsvp>({IPv4("IPv4 Node").Note(", %s")});
constexpr auto kNode6 = Rows<Rsvp>({IPv6("IPv6 Node").Note(", %s")});
constexpr auto kAdjacency4 = Rows<Rsvp>({IPv4("Local IPv4 Address").Note(", %s"), IPv4("Remote IPv4 Address").Note(" to %s")});
constexpr auto kAdjacency6 = Rows<Rsvp>({IPv6("Local IPv6 Address").Note(", %s"), IPv6("Remote IPv6 Address").Note(" to %s")});
constexpr auto kAdjacencyUnnumbered = Rows<Rsvp>({
    IPv4("Local Node"), Number(4, "Local Interface ID"), IPv4("Remote Node"), Number(4, "Remote Interface ID")});
constexpr auto kAdjacencyLocal = Rows<Rsvp>({
    IPv6("Local IPv6 Address"), Number(4, "Local Interface ID"), IPv6("Remote IPv6 Address"), Number(4, "Remote Interface ID")});

void ShowNai(const Place& in, Cursor& c, Rsvp& rsvp) {
  if (rsvp.first.value || !rsvp.type.value) return;
  switch (rsvp.type.value) {
    case 1: ShowRows<Rsvp>(in, c, kNode4, rsvp); break;
    case 2: ShowRows<Rsvp>(in, c, kNode6, rsvp); break;
    case 3: ShowRows<Rsvp>(in, c, kAdjacency4, rsvp); break;
    case 4: ShowRows<Rsvp>(in, c, kAdjacency6, rsvp); break;
    case 5: ShowRows<Rsvp>(in, c, kAdjacencyUnnumbered, rsvp); break;
    case 6: ShowRows<Rsvp>(in, c, kAdjacencyLocal, rsvp); break;
    default: break;
  }
}
void ShowSegment(const Place& in, Cursor& c, Rsvp& rsvp) {
  if (!rsvp.code.value) ShowRows<Rsvp>(in, c, kSegmentId, rsvp);
  ShowNai(in, c, rsvp);
}
void ShowSegment6(const Place& in, Cursor& c, Rsvp& rsvp) {
  if (!rsvp.code.value) ShowRows<Rsvp>(in, c, kSegmentId6, rsvp);
  ShowNai(in, c, rsvp);
  if (rsvp.size.value) ShowRows<Rsvp>(in, c, kStructure, rsvp);
}

// What a hop that is left out stands for.
constexpr auto kAttributeNames = SortedNames({{0, "Interface"}, {1, "Node"}, {2, "SRLG"}});
constexpr auto kExcluded4 = Rows<Rsvp>({
    IPv4("IPv4 Hop").Note(", %s"), Number(1, "Prefix Length").Note("/%u"), Number(1, "Attribute", kAttributeNames)});
constexpr auto kExcluded6 = Rows<Rsvp>({
    IPv6("IPv6 Hop").Note(", %s"), Number(1, "Prefix Length").Note("/%u"), Number(1, "Attribute", kAttributeNames)});
constexpr auto kExcludedUnnumbered = Rows<Rsvp>({
    Hex(1, "Reserved"), Number(1, "Attribute", kAttributeNames), IPv4("Router ID").Note(", %s"),
    Number(4, "Interface ID").Note(", Interface %u")});
constexpr auto kExcludedAs = Rows<Rsvp>({
    Hex(1, "Reserved"), Number(1, "Attribute", kAttributeNames), Number(4, "AS Number").Note(", AS %u")});
constexpr auto kExcludedRisk = Rows<Rsvp>({
    Number(4, "Shared Risk Link Group ID").Note(", %u"), Hex(1, "Reserved"), Number(1, "Attribute", kAttributeNames)});
constexpr auto kExcluded = Choices<Rsvp>({
    {1, "IPv4 Prefix", kExcluded4}, {2, "IPv6 Prefix", kExcluded6}, {4, "Unnumbered Interface", kExcludedUnnumbered},
    {32, "Autonomous System Number", kExcludedAs}, {34, "SRLG", kExcludedRisk}, {64, "Path Key", kPathKey},
    {65, "IPv6 Path Key", kPathKey6}});

// Attributes of a hop (RFC 7570) and of where the route went (RFC 5420).
constexpr auto kHopAttributes = Rows<Rsvp>({Hex(1, "Reserved"), Word(1), Bits(0, 7, "Reserved Flags"), Flag(7, "Required")});
constexpr auto kRecordedAttributes = Rows<Rsvp>({Hex(2, "Reserved")});

constexpr auto kExplicit = Choices<Rsvp>({
    {1, "IPv4 Prefix", kHop4}, {2, "IPv6 Prefix", kHop6}, {3, "Label", kLabel},
    {4, "Unnumbered Interface", kUnnumbered},
    {32, "Autonomous System Number", kAs}, {33, "Explicit Exclusion Route", {}, ShowRsvpExcludedRoute}, {34, "SRLG", kRisk},
    {35, "Hop Attributes", kHopAttributes, ShowRsvpPathAttributes},
    {36, "Segment", kSegmentHead, ShowSegment}, {40, "SRv6 Segment", kSegmentHead6, ShowSegment6},
    {64, "Path Key", kPathKey}, {65, "IPv6 Path Key", kPathKey6}});
constexpr auto kRecorded = Choices<Rsvp>({
    {1, "IPv4 Address", kRecorded4}, {2, "IPv6 Address", kRecorded6}, {3, "Label", kLabel},
    {4, "Unnumbered Interface", kRecordedUnnumbered}, {5, "Attributes", kRecordedAttributes, ShowRsvpPathAttributes},
    {34, "SRLG", kRisk}, {36, "Segment", kSegmentHead, ShowSegment},
    {40, "SRv6 Segment", kSegmentHead6, ShowSegment6}, {64, "Path Key", kPathKey}, {65, "IPv6 Path Key", kPathKey6}});

const char* NameIn(ChoiceSpan<Rsvp> choices, uint32_t type) {
  const Choice<Rsvp>* choice = FindChoice<Rsvp>(choices, type);
  return choice ? choice->name : kUnknown;
}
const char* ExplicitName(uint32_t type) { return NameIn(kExplicit, type); }
const char* RecordedName(uint32_t type) { return NameIn(kRecorded, type); }
const char* ExcludedName(uint32_t type) { return NameIn(kExcluded, type); }
constexpr auto kExplicitHead = Rows<Rsvp>({
    Word(1), Flag(0, "Loose Hop"), Bits(1, 7, "Subobject Type", ExplicitName), Number(1, "Subobject Length")});
constexpr auto kRecordedHead = Rows<Rsvp>({
    Number(1, "Subobject Type", RecordedName), Number(1, "Subobject Length")});
constexpr auto kExcludedNames = SortedNames({{0, "Must Be Excluded"}, {1, "Should Be Avoided"}});
constexpr auto kExcludedHead = Rows<Rsvp>({
    Word(1), Bits(0, 1, "Exclusion", kExcludedNames), Bits(1, 7, "Subobject Type", ExcludedName),
    Number(1, "Subobject Length")});

void ShowHops(const Place& in, Cursor& c, Rsvp& rsvp, ChoiceSpan<Rsvp> choices, RowSpan<Rsvp> head, uint32_t typeMask) {
  constexpr int32_t kHead = 2;
  Loop loop;
  while (Left(c) >= kHead && PeekU8(c, 1) >= kHead && MoreAt(in, c, loop)) {
    Cursor hop = TakeCursor(c, PeekU8(c, 1));
    const uint32_t type = PeekU8(hop) & typeMask;
    const Choice<Rsvp>* choice = FindChoice<Rsvp>(choices, type);
    const Place under = Under(in, AddLine(in, Ahead(hop, Left(hop)), "Subobject: %s", NameIn(choices, type)));
    ShowRows<Rsvp>(under, hop, head, rsvp);
    ShowChoice<Rsvp>(under, hop, choice, rsvp);
  }
}

}  // namespace

void ShowRsvpExplicitRoute(const Place& in, Cursor& c, Rsvp& rsvp) { ShowHops(in, c, rsvp, kExplicit, kExplicitHead, 0x7F); }
void ShowRsvpRecordedRoute(const Place& in, Cursor& c, Rsvp& rsvp) { ShowHops(in, c, rsvp, kRecorded, kRecordedHead, 0xFF); }
void ShowRsvpExcludedRoute(const Place& in, Cursor& c, Rsvp& rsvp) { ShowHops(in, c, rsvp, kExcluded, kExcludedHead, 0x7F); }

}  // namespace qxview
