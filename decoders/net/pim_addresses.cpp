// Addresses as PIM encodes them (RFC 7761 4.9.1) and the attributes of joined sources (RFC 5384, RFC 5496, RFC 6420, RFC 7891,
// RFC 8059).
#include "decoders/net/pim.h"

namespace qxview {
namespace {

constexpr auto kFamilyNames = SortedNames({{0, "Reserved"}, {1, "IPv4"}, {2, "IPv6"}});
constexpr auto kEncodingNames = SortedNames({{0, "Native"}, {1, "Native with Join Attributes"}});
constexpr auto kAttributeNames = SortedNames({
    {0, "RPF Vector"}, {1, "MVPN Join Attribute"}, {2, "MT-ID"}, {3, "Pop-Count"}, {4, "Explicit RPF Vector"},
    {5, "Transport Attribute"}, {6, "Receiver RLOC"}, {7, "FHR Identifier"}});
constexpr auto kGroupMasks = SortedNames({{0x01, "Admin Scope Zone"}, {0x7E, "Reserved"}, {0x80, "Bidirectional PIM"}});
constexpr auto kSourceMasks = SortedNames({{0x01, "Rendezvous Point Tree"}, {0x02, "Wild Card"}, {0x04, "Sparse"}, {0xF8, "Reserved"}});

struct Address {
  Field family, encoding, flags, mask, address;
};
constexpr auto kHead = Rows<Address>({
    Number(1, "Address Family", kFamilyNames).Into(&Address::family),
    Number(1, "Encoding Type", kEncodingNames).Into(&Address::encoding)});
constexpr auto kGroupFlags = Rows<Address>({
    Flags(1, "Group Flags", kGroupMasks), Number(1, "Mask Length").Into(&Address::mask)});
constexpr auto kSourceFlags = Rows<Address>({
    Flags(1, "Source Flags", kSourceMasks).Into(&Address::flags), Number(1, "Mask Length").Into(&Address::mask)});

int32_t SizeOfFamily(uint32_t family) { return family == 1 ? 4 : family == 2 ? 16 : 0; }

// The address itself; the text of the line is the label's again.
Field ShowAddress(const Place& in, Cursor& c, uint32_t family, const char* label) {
  const Field address = TakeBytes(c, SizeOfFamily(family));
  if (!address.length) return address;
  if (family == 1) AddLine(in, address, "%s: %s", label, IPv4Text(address.bytes));
  else AddLine(in, address, "%s: %s", label, IPv6Text(address.bytes));
  return address;
}

void SetAddressLine(const Place& in, LineHandle line, const Address& value, const char* label, const char* flags) {
  if (!value.address.here || !value.address.length) return;
  if (value.family.value == 1) SetLine(in, line, "%s: %s", label, IPv4Text(value.address.bytes));
  else SetLine(in, line, "%s: %s", label, IPv6Text(value.address.bytes));
  if (value.mask.here) AppendToLine(in, line, "/%u", value.mask.value);
  if (flags) AppendToLine(in, line, "%s", flags);
}

constexpr auto kTopology = Rows<Address>({Word(2), Bits(0, 4, "Reserved"), Bits(4, 12, "Topology ID").Note(", %u")});
constexpr auto kTransportNames = SortedNames({{0, "Multicast"}, {1, "Unicast"}});
constexpr auto kTransport = Rows<Address>({Word(1), Bits(0, 1, "Transport", kTransportNames), Bits(1, 7, "Reserved")});

// What an attribute says, by its type.
void ShowAttribute(const Place& in, Cursor& c, uint32_t type) {
  enum : uint32_t { kVector = 0, kTopologyId = 2, kExplicitVector = 4, kTransportType = 5, kLocator = 6 };
  Address value{};
  if (type == kVector && Left(c) == 6) {
    TakeBytes(c, 2);
    const Field address = TakeBytes(c, 4);
    AddLine(in, address, "RPF Vector: %s", IPv4Text(address.bytes));
  } else if (type == kVector || type == kExplicitVector) {
    ShowPimUnicast(in, c, "RPF Vector");
  } else if (type == kTopologyId && Left(c) >= 2) {
    ShowRows<Address>(in, c, kTopology, value);
  } else if (type == kTransportType && Left(c)) {
    ShowRows<Address>(in, c, kTransport, value);
  } else if (type == kLocator && Left(c)) {
    const Field family = TakeU8(c);
    AddLine(in, family, "Address Family: %u = %s", family.value, LookupName(kFamilyNames, family.value));
    ShowAddress(in, c, family.value, "Receiver RLOC");   // keys: address Receiver RLOC
  }
  const Field rest = Rest(c);
  if (rest.length) AddLine(in, rest, "Attribute Value: %s", HexText(rest));
}

void ShowAttributes(const Place& in, Cursor& c) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) {
    const uint32_t type = PeekU8(c) & 0x3F;
    const bool isLast = PeekU8(c) & 0x40;
    Cursor part = TakeCursor(c, 2 + static_cast<int32_t>(PeekU8(c, 1)));
    const Place under = Under(in, AddLine(in, Ahead(part, Left(part)), "Join Attribute: %s", LookupName(kAttributeNames, type)));
    const Field head = TakeU8(part), length = TakeU8(part);
    const BitPicture transitive = BitsOf(head, 0, 1), end = BitsOf(head, 1, 1), kind = BitsOf(head, 2, 6);
    AddBitLine(under, head, "%s: Forward If Unknown = %s", transitive.picture, TrueOrFalse(transitive.value));
    AddBitLine(under, head, "%s: Last Attribute = %s", end.picture, TrueOrFalse(end.value));
    AddBitLine(under, head, "%s: Attribute Type = %u (%s)", kind.picture, kind.value, LookupName(kAttributeNames, type));
    AddLine(under, length, "Attribute Length: %u", length.value);
    ShowAttribute(under, part, type);
    if (isLast) break;
  }
}

}  // namespace

void ShowPimUnicast(const Place& in, Cursor& c, const char* label) {
  Cursor part = TakeCursor(c, 2 + SizeOfFamily(PeekU8(c)));
  const LineHandle line = AddLine(in, Ahead(part, Left(part)), "%s", label);
  const Place under = Under(in, line);
  Address value = ShowRows(under, part, kHead);
  value.address = ShowAddress(under, part, value.family.value, "Unicast Address");
  SetAddressLine(in, line, value, label, nullptr);
}

void ShowPimGroup(const Place& in, Cursor& c, const char* label) {
  Cursor part = TakeCursor(c, 4 + SizeOfFamily(PeekU8(c)));
  const LineHandle line = AddLine(in, Ahead(part, Left(part)), "%s", label);
  const Place under = Under(in, line);
  Address value = ShowRows(under, part, kHead);
  ShowRows<Address>(under, part, kGroupFlags, value);
  value.address = ShowAddress(under, part, value.family.value, "Group Address");
  SetAddressLine(in, line, value, label, nullptr);
}

void ShowPimSource(const Place& in, Cursor& c, const char* label) {
  const Cursor start = c;
  Cursor part = TakeCursor(c, 4 + SizeOfFamily(PeekU8(c)));
  const LineHandle line = AddLine(in, Ahead(part, Left(part)), "%s", label);
  const Place under = Under(in, line);
  Address value = ShowRows(under, part, kHead);
  ShowRows<Address>(under, part, kSourceFlags, value);
  value.address = ShowAddress(under, part, value.family.value, "Source Address");
  constexpr const char* kFlagTexts[] = {"", " (R)", " (W)", " (WR)", " (S)", " (SR)", " (SW)", " (SWR)"};
  SetAddressLine(in, line, value, label, kFlagTexts[value.flags.value & 7]);
  if (value.encoding.value == 1) {
    ShowAttributes(under, c);
    if (line) SetRange(in, line, start.offset, c.offset - start.offset);
  }
}

}  // namespace qxview
