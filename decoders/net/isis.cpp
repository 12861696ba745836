// Intermediate System to Intermediate System routing (ISO 10589, RFC 1195): which routers and networks make up an area, and
// how far is it to each?
//
//   0x83   header length   version   length of identifiers   PDU type   version   0   maximum of area addresses
//   then what the type says, up to the header's length, and elements
#include "decoders/net/isis.h"

#include "decoders/common/fletcher.h"

namespace qxview {
namespace {

enum PduType : uint32_t {
  kLanHello1 = 15, kLanHello2 = 16, kPointHello = 17, kLinkState1 = 18, kLinkState2 = 20, kComplete1 = 24, kComplete2 = 25,
  kPartial1 = 26, kPartial2 = 27, kScopedState = 10, kScopedComplete = 11, kScopedPartial = 12,
};

constexpr auto kTypeNames = SortedNames({
    {10, "Flooding Scope Link State PDU"}, {11, "Flooding Scope Complete Sequence Numbers"},
    {12, "Flooding Scope Partial Sequence Numbers"}, {15, "L1 LAN Hello"}, {16, "L2 LAN Hello"}, {17, "Point-to-Point Hello"},
    {18, "L1 Link State PDU"}, {20, "L2 Link State PDU"}, {24, "L1 Complete Sequence Numbers"},
    {25, "L2 Complete Sequence Numbers"}, {26, "L1 Partial Sequence Numbers"}, {27, "L2 Partial Sequence Numbers"}});
constexpr auto kCircuitNames = SortedNames({{0, "Reserved"}, {1, "Level 1"}, {2, "Level 2"}, {3, "Level 1 and 2"}});
constexpr auto kSystemNames = SortedNames({{0, "Unused"}, {1, "Level 1"}, {2, "Unused"}, {3, "Level 2"}});

void ShowSystem(const Place& in, const Field& field, const char* label) {
  AddLine(in, field, "%s: %s", label, SystemIdText(field));
  AppendToParent(in, field, ", %s", SystemIdText(field));
}

// With the octet of the circuit behind the system.
void ShowSource(const Place& in, const Field& field, const char* label) {
  constexpr int32_t kSystemSize = 6;
  ShowSystem(in, field, label);
  const Field circuit = Slice(field, kSystemSize, 1);
  AddLine(in, circuit, "Source Circuit ID: 0x%02X", PeekU8(circuit));
}

constexpr auto kHead = Rows<Isis>({
    Hex(1, "Intradomain Routing Protocol Discriminator"), Number(1, "Header Length").Into(&Isis::headerLength),
    Number(1, "Version/Protocol ID Extension"), Number(1, "ID Length").Into(&Isis::idLength), Hex(1, "PDU Type Octet"),
    Bits(0, 3, "Reserved"), Bits(3, 5, "PDU Type", kTypeNames).Into(&Isis::type), Number(1, "Version"),
    Number(1, "Reserved Octet"), Number(1, "Maximum Area Addresses")});
constexpr auto kHello = Rows<Isis>({
    Hex(1, "Circuit Type Octet"), Bits(0, 6, "Reserved"), Bits(6, 2, "Circuit Type", kCircuitNames),
    Shown(6, "System ID", ShowSystem), Number(2, "Holding Timer", " seconds"), Number(2, "PDU Length").Into(&Isis::length)});
constexpr auto kLan = Rows<Isis>({
    Hex(1, "Priority Octet"), Bits(0, 1, "Reserved"), Bits(1, 7, "Priority"), Shown(7, "LAN ID", ShowSystem)});
constexpr auto kPoint = Rows<Isis>({Number(1, "Local Circuit ID")});
constexpr auto kLength = Rows<Isis>({Number(2, "PDU Length").Into(&Isis::length)});
constexpr auto kLinkStateRows = Rows<Isis>({
    Number(2, "Remaining Lifetime", " seconds").Into(&Isis::size), Shown(8, "LSP ID", ShowSystem), Hex(4, "Sequence Number")});
constexpr auto kLinkStateFlags = Rows<Isis>({
    Hex(1, "LSP Flags"), Flag(0, "Partition Repair"), Flag(1, "Attached, Error Metric"), Flag(2, "Attached, Expense Metric"),
    Flag(3, "Attached, Delay Metric"), Flag(4, "Attached, Default Metric"), Flag(5, "Overload"),
    Bits(6, 2, "IS Type", kSystemNames)});
constexpr auto kCompleteRows = Rows<Isis>({
    Shown(7, "Source ID", ShowSource), Shown(8, "Start LSP ID", ShowSystem), Shown(8, "End LSP ID", ShowSystem)});
constexpr auto kPartialRows = Rows<Isis>({Shown(7, "Source ID", ShowSource)});

// --- with a scope of flooding (RFC 7356) ---

constexpr auto kScope = Rows<Isis>({
    Hex(1, "Scope Octet"), Flag(0, "Priority"), Bits(1, 7, "Flooding Scope",
    kIsisScopeNames).Note(", %s").Into(&Isis::kind)});
constexpr auto kScopedFlags = Rows<Isis>({
    Hex(1, "LSP Flags"), Bits(0, 5, "Reserved"), Flag(5, "Overload"), Bits(6, 2, "IS Type", kSystemNames)});

// The checksum covers the identifier and all behind it; of an expired advertisement none is left to check.
void ShowLinkState(const Place& in, Cursor& c, Isis& isis, const Field& whole) {
  const bool isScoped = isis.type.value == kScopedState;
  const int32_t beforeIdentifier = isScoped ? 13 : 12;
  ShowRows<Isis>(in, c, kLength, isis);
  ShowRows<Isis>(in, c, kLinkStateRows, isis);
  const Field checksum = TakeU16(c);
  const bool isWhole = whole.length > beforeIdentifier && static_cast<int32_t>(isis.length.value) == whole.length;
  const bool isChecked = isis.size.value && isWhole;
  AddFletcherLine(in, checksum, isChecked ? Slice(whole, beforeIdentifier, whole.length - beforeIdentifier) : Field{});
  ShowRows<Isis>(in, c, isScoped ? RowSpan<Isis>(kScopedFlags) : RowSpan<Isis>(kLinkStateFlags), isis);
}

void ShowFields(const Place& in, Cursor& c, Isis& isis, const Field& whole) {
  switch (isis.type.value) {
    case kLanHello1: case kLanHello2:
      ShowRows<Isis>(in, c, kHello, isis);
      ShowRows<Isis>(in, c, kLan, isis);
      break;
    case kPointHello:
      ShowRows<Isis>(in, c, kHello, isis);
      ShowRows<Isis>(in, c, kPoint, isis);
      break;
    case kScopedState: ShowRows<Isis>(in, c, kScope, isis); [[fallthrough]];
    case kLinkState1: case kLinkState2: ShowLinkState(in, c, isis, whole); break;
    case kScopedComplete: ShowRows<Isis>(in, c, kScope, isis); [[fallthrough]];
    case kComplete1: case kComplete2:
      ShowRows<Isis>(in, c, kLength, isis);
      ShowRows<Isis>(in, c, kCompleteRows, isis);
      break;
    case kScopedPartial: ShowRows<Isis>(in, c, kScope, isis); [[fallthrough]];
    case kPartial1: case kPartial2:
      ShowRows<Isis>(in, c, kLength, isis);
      ShowRows<Isis>(in, c, kPartialRows, isis);
      break;
    default: break;
  }
}

// Where the PDU's length stands: hellos have it behind their holding time.
int32_t LengthOfPdu(const Cursor& c) {
  const uint32_t type = PeekU8(c, 4) & 31;
  const bool isHello = type >= kLanHello1 && type <= kPointHello;
  return static_cast<int32_t>(PeekU16(c, isHello ? 17 : type < kLanHello1 ? 9 : 8));
}

}  // namespace

OsiText SystemIdText(const Field& id) {
  OsiText out{};
  int32_t used = 0;
  for (int32_t i = 0; i < id.length && i < 8; ++i) {
    const char* separator = i == 7 ? "-" : i == 6 || (i && i % 2 == 0) ? "." : "";
    used += FormatInto(out.text + used, static_cast<int32_t>(sizeof out.text) - used, "%s%.02X", separator, PeekU8(id, i));
  }
  return out;
}

OsiText OsiAddressText(const Field& address) {
  OsiText out{};
  int32_t used = 0;
  for (int32_t i = 0; i < address.length && i < 24; ++i) {
    used += FormatInto(out.text + used, static_cast<int32_t>(sizeof out.text) - used, "%s%.02X", i % 2 ? "." : "", PeekU8(address, i));
  }
  return out;
}

int32_t DecodeIsis(const Place& at, Cursor c) {
  constexpr uint32_t kDiscriminator = 0x83, kUsualIdLength = 6;
  constexpr int32_t kHeadSize = 8;
  if (Left(c) < kHeadSize || PeekU8(c) != kDiscriminator || static_cast<int32_t>(PeekU8(c, 1)) < kHeadSize) return 0;
  const uint32_t type = PeekU8(c, 4) & 31;
  const int32_t length = LengthOfPdu(c), header = static_cast<int32_t>(PeekU8(c, 1));
  Cursor pdu = TakeCursor(c, length <= kHeadSize ? Left(c) : length > header ? length : header);
  const Field whole = PeekBytes(pdu, 0, Left(pdu));
  const Place in = Under(at, AddLine(at, whole, "IS-IS %s", LookupName(kTypeNames, type)));
  Isis isis = ShowRows(in, pdu, kHead);
  const bool isUsual = isis.idLength.value == 0 || isis.idLength.value == kUsualIdLength;
  if (isUsual) ShowFields(in, pdu, isis, whole);
  Cursor beyond = TakeCursor(pdu, static_cast<int32_t>(isis.headerLength.value) - Taken(pdu));
  AddBlock(in, Rest(beyond), "Data");
  if (isUsual && isis.type.value >= kScopedState) ShowIsisElements(in, pdu, isis);
  pdu.ranShort = false;
  AddBlock(in, Rest(pdu), "IS-IS Data");
  AddBlock(in, Rest(c), "Padding");
  return 1;
}

}  // namespace qxview
