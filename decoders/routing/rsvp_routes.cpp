// The hops of explicit and recorded routes in RSVP (RFC 3209 4.3 and 4.4, RFC 3473 5, RFC 3477, RFC 4090 4.4, RFC
// 4874).
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

constexpr auto kExplicit = Choices<Rsvp>({
    {1, "IPv4 Prefix", kHop4}, {2, "IPv6 Prefix", kHop6}, {3, "Label", kLabel},
    {4, "Unnumbered Interface", kUnnumbered},
    {32, "Autonomous System Number", kAs}, {33, "Explicit Exclusion Route"}, {34, "SRLG", kRisk},
    {64, "Path Key", kPathKey}});
constexpr auto kRecorded = Choices<Rsvp>({
    {1, "IPv4 Address", kRecorded4}, {2, "IPv6 Address", kRecorded6}, {3, "Label", kLabel},
    {4, "Unnumbered Interface", kRecordedUnnumbered}, {34, "SRLG", kRisk}, {64, "Path Key", kPathKey}});

const char* ExplicitName(uint32_t type) {
  const Choice<Rsvp>* choice = FindChoice<Rsvp>(kExplicit, type);
  return choice ? choice->name : kUnknown;
}
const char* RecordedName(uint32_t type) {
  const Choice<Rsvp>* choice = FindChoice<Rsvp>(kRecorded, type);
  return choice ? choice->name : kUnknown;
}
constexpr auto kExplicitHead = Rows<Rsvp>({
    Word(1), Flag(0, "Loose Hop"), Bits(1, 7, "Subobject Type", ExplicitName), Number(1, "Subobject Length")});
constexpr auto kRecordedHead = Rows<Rsvp>({
    Number(1, "Subobject Type", RecordedName), Number(1, "Subobject Length")});

void ShowHops(const Place& in, Cursor& c, Rsvp& rsvp, bool isExplicit) {
  constexpr int32_t kHead = 2;
  Loop loop;
  while (Left(c) >= kHead && PeekU8(c, 1) >= kHead && MoreAt(in, c, loop)) {
    Cursor hop = TakeCursor(c, PeekU8(c, 1));
    const uint32_t type = isExplicit ? PeekU8(hop) & 0x7F : PeekU8(hop);
    const Choice<Rsvp>* choice = isExplicit ? FindChoice<Rsvp>(kExplicit, type) : FindChoice<Rsvp>(kRecorded, type);
    const Place under = Under(in, AddLine(in, Ahead(hop, Left(hop)),
    "Subobject: %s", choice ? choice->name : kUnknown));
    ShowRows<Rsvp>(under, hop, isExplicit ? RowSpan<Rsvp>(kExplicitHead) : RowSpan<Rsvp>(kRecordedHead), rsvp);
    ShowChoice<Rsvp>(under, hop, choice, rsvp);
  }
}

}  // namespace

void ShowRsvpExplicitRoute(const Place& in, Cursor& c, Rsvp& rsvp) { ShowHops(in, c, rsvp, true); }
void ShowRsvpRecordedRoute(const Place& in, Cursor& c, Rsvp& rsvp) { ShowHops(in, c, rsvp, false); }

}  // namespace qxview
