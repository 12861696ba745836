// Link Layer Discovery Protocol (IEEE 802.1AB): who is at the other end of this link? Elements of 7 bits of type and 9 of
// length; those of organizations name their code and a subtype first.
#include "decoders/link/lldp.h"

#include "decoders/common/object_id.h"

namespace qxview {
namespace {

constexpr uint32_t kOrganization = 127;

constexpr auto kCapabilityMasks = SortedNames({
    {0x0001, "Other"}, {0x0002, "Repeater"}, {0x0004, "Bridge"}, {0x0008, "WLAN Access Point"}, {0x0010, "Router"},
    {0x0020, "Telephone"}, {0x0040, "DOCSIS Cable Device"}, {0x0080, "Station Only"}, {0x0100, "C-VLAN Component"},
    {0x0200, "S-VLAN Component"}, {0x0400, "Two-Port MAC Relay"}});
constexpr auto kInterfaceNames = SortedNames({{1, "Unknown"}, {2, "ifIndex"}, {3, "System Port Number"}});

void ShowId(const Place& in, Cursor& c, const char* label, bool isMac, bool isNetwork) {
  if (isNetwork) return ShowLldpAddress(in, c, label);
  ShowLldpIdentifier(in, Rest(c), isMac, label);
}
void ShowChassis(const Place& in, Cursor& c, const char* label, Lldp& lldp) {
  ShowId(in, c, label, lldp.subtype.value == 4, lldp.subtype.value == 5);
}
void ShowPort(const Place& in, Cursor& c, const char* label, Lldp& lldp) {
  ShowId(in, c, label, lldp.subtype.value == 3, lldp.subtype.value == 4);
}

constexpr auto kChassis = Rows<Lldp>({
    Number(1, "Chassis ID Subtype", kLldpChassisNames).Into(&Lldp::subtype), Shown("Chassis ID", ShowChassis)});
constexpr auto kPort = Rows<Lldp>({
    Number(1, "Port ID Subtype", kLldpPortNames).Into(&Lldp::subtype), Shown("Port ID", ShowPort)});
constexpr auto kTime = Rows<Lldp>({Number(2, nullptr, " seconds").Note(", %u seconds")});
constexpr auto kText = Rows<Lldp>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kCapabilities = Rows<Lldp>({
    Flags(2, "Capabilities", kCapabilityMasks), Flags(2, "Enabled Capabilities", kCapabilityMasks)});

void ShowManagementAddress(const Place& in, Cursor& c, Lldp&) {
  static constexpr auto kNumber = Rows<Lldp>({
      Number(1, "Interface Numbering Subtype", kInterfaceNames), Number(4, "Interface Number"),
      Number(1, "OID String Length").Into(&Lldp::size)});
  const Field size = TakeU8(c);
  AddLine(in, size, "Address String Length: %u", size.value);
  Cursor address = TakeCursor(c, size.value);
  ShowLldpAddress(in, address, "Management Address");
  Lldp number{};
  ShowRows<Lldp>(in, c, kNumber, number);
  if (number.size.value == 0 || !Left(c)) return;
  const Field oid = TakeBytes(c, number.size.value < static_cast<uint32_t>(Left(c)) ? number.size.value : Left(c));
  AddLine(in, oid, "Object Identifier: %s", TextOfObjectId(CursorOver(oid)));
}

void ShowDescription(const Place& in, Cursor& c, Lldp&) { ShowTextLines(in, c, "System Description"); }

// The elements whose types are the standard's own.
constexpr auto kElements = Choices<Lldp>({
    {0, "End of LLDPDU"}, {1, "Chassis ID", kChassis}, {2, "Port ID", kPort}, {3, "Time to Live", kTime},
    {4, "Port Description", kText}, {5, "System Name", kText}, {6, "System Description", {}, ShowDescription},
    {7, "System Capabilities", kCapabilities}, {8, "Management Address", {}, ShowManagementAddress},
    {127, "Organization Specific"}});

void ShowOrganization(const Place& in, Cursor& c, Lldp& lldp) {
  const Field oui = TakeU24(c), subtype = TakeU8(c);
  const Choice<Lldp>* choice = FindLldpOrganization(LldpCode(oui.value, subtype.value));
  AddLine(in, oui, "Organizational Code: 0x%.06X = %s", oui.value, LldpOrganizationName(oui.value));
  AddLine(in, subtype, "Subtype: %u = %s", subtype.value, choice ? choice->name : kUnknown);
  AppendToParent(in, oui, ", %s", LldpOrganizationName(oui.value));
  AppendToParent(in, subtype, ", %s", choice ? choice->name : kUnknown);
  ShowChoice(in, c, choice, lldp);
}

// What the top line says: the system's name, or the port.
Field FindValue(Cursor c, uint32_t type) {
  Loop loop;
  while (More(c, loop) && Left(c) >= 2) {
    const uint32_t head = TakeU16(c).value;
    Cursor value = TakeCursor(c, head & 0x1FF);
    if (head >> 9 == type) return Rest(value);
    if (head == 0) break;
  }
  return {nullptr, c.offset, 0, 0, false};
}

}  // namespace

const char* LldpFamilyName(uint32_t family) {
  constexpr auto kFamilyNames = SortedNames({
      {1, "IPv4"}, {2, "IPv6"}, {3, "NSAP"}, {4, "HDLC"}, {5, "BBN 1822"}, {6, "IEEE 802"}, {7, "E.163"}, {8, "E.164"},
      {9, "F.69"}, {10, "X.121"}, {11, "IPX"}, {12, "AppleTalk"}, {13, "DECnet IV"}, {14, "VINES"},
      {15, "E.164 with NSAP"}, {16, "DNS"}});
  return LookupName(kFamilyNames, family);
}

void ShowLldpAddress(const Place& in, Cursor& c, const char* label) {
  const Field family = TakeU8(c);
  AddLine(in, family, "Address Family: %u = %s", family.value, LldpFamilyName(family.value));
  const Field address = Rest(c);
  if (family.value == 1 && address.length == 4) {
    AddLine(in, address, "%s: %s", label, IPv4Text(address.bytes));
    AppendToParent(in, address, ", %s", IPv4Text(address.bytes));
  } else if (family.value == 2 && address.length == 16) {
    AddLine(in, address, "%s: %s", label, IPv6Text(address.bytes));
    AppendToParent(in, address, ", %s", IPv6Text(address.bytes));
  } else if (family.value == 6 && address.length == 6) {
    AddLine(in, address, "%s: %s", label, MacText(address.bytes));
    AppendToParent(in, address, ", %s", MacText(address.bytes));
  } else {
    AddLine(in, address, "%s: %s", label, HexText(address));
  }
}

void ShowLldpIdentifier(const Place& in, const Field& id, bool isMac, const char* label) {
  bool isText = id.here;
  for (int32_t i = 0; i < id.length && isText; ++i) isText = PeekU8(id, i) >= 0x20 && PeekU8(id, i) < 0x7F;
  if (isMac && id.length == 6) {
    AddLine(in, id, "%s: %s", label, MacText(id.bytes));
    AppendToParent(in, id, ", %s", MacText(id.bytes));
  } else if (isText) {
    AddLine(in, id, "%s: %s", label, Text(id));
    AppendToParent(in, id, ", %s", Text(id));
  } else {
    AddLine(in, id, "%s: %s", label, HexText(id));
  }
}

void ShowTextLines(const Place& in, Cursor& c, const char* label) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const int32_t end = FindU8(c, 0x0A), length = end < 0 ? Left(c) : end;
    if (length) {
      const Field line = TakeBytes(c, length);
      AddLine(in, line, "%s: %s", label, Text(line));
    }
    if (end >= 0) TakeU8(c);
  }
}

int32_t DecodeLldp(const Place& at, Cursor c) {
  constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 0, .typeBits = 7, .endType = 0};
  constexpr uint32_t kSystemName = 5, kPortDescription = 4;
  if (Left(c) < 2) return 0;
  const LineHandle top = AddLine(at, Ahead(c, Left(c)), "LLDP: Link Layer Discovery");
  const Place in = Under(at, top);
  const Field system = FindValue(c, kSystemName), port = FindValue(c, kPortDescription);
  if (system.here) AppendToLine(at, top, ", System %s", Text(system));
  if (port.here) AppendToLine(at, top, ", Port %s", Text(port));
  Lldp lldp{};
  Loop loop;
  Element element;
  while (MoreAt(in, c, loop) && TakeElement(c, kForm, element)) {
    const Choice<Lldp>* choice = FindChoice<Lldp>(kElements, element.code);
    const char* name = choice ? choice->name : "Reserved";
    // keys: text TLV
    const Place under = detail::AddElementHead(in, element, kForm, "TLV", name);
    if (element.single) break;
    if (element.code == kOrganization) {
      ShowOrganization(under, element.value, lldp);
    } else {
      ShowChoice(under, element.value, choice, lldp);
    }
  }
  CoverBytes(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "Padding");
  return 1;
}

}  // namespace qxview
