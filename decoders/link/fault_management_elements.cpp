// The elements of connectivity fault management (IEEE 802.1Q 21.5, ITU-T Y.1731 9): type, length (2), value; type 0 ends them.
#include "decoders/common/object_id.h"
#include "decoders/link/fault_management.h"
#include "decoders/link/lldp.h"

namespace qxview {
namespace {

constexpr auto kPortStatusNames = SortedNames({{1, "Blocked"}, {2, "Up"}});
constexpr auto kInterfaceNames = SortedNames({
    {1, "Up"}, {2, "Down"}, {3, "Testing"}, {4, "Unknown"}, {5, "Dormant"}, {6, "Not Present"}, {7, "Lower Layer Down"}});
constexpr auto kIngressNames = SortedNames({{1, "OK"}, {2, "Down"}, {3, "Blocked"}, {4, "VID"}});
constexpr auto kPatternNames = SortedNames({
    {0, "Null Signal Without CRC-32"}, {1, "Null Signal With CRC-32"}, {2, "PRBS 2^31-1 Without CRC-32"},
    {3, "PRBS 2^31-1 With CRC-32"}});

void ShowIdentifier(const Place& in, Cursor& c, uint32_t size, bool isMac, const char* label) {
  Cursor part = TakeCursor(c, size);
  ShowLldpIdentifier(in, Rest(part), isMac, label);
}

void ShowSender(const Place& in, Cursor& c, FaultManagement&) {
  const Field chassis = TakeU8(c);
  AddLine(in, chassis, "Chassis ID Length: %u", chassis.value);
  if (chassis.value) {
    const Field subtype = TakeU8(c);
    AddLine(in, subtype, "Chassis ID Subtype: %u = %s", subtype.value, LookupName(kLldpChassisNames, subtype.value));
    ShowIdentifier(in, c, chassis.value, subtype.value == 4, "Chassis ID");
  }
  if (!Left(c)) return;
  const Field domain = TakeU8(c);
  AddLine(in, domain, "Management Address Domain Length: %u", domain.value);
  if (!domain.value) return;
  Cursor oid = TakeCursor(c, domain.value);
  if (PeekU8(oid) == 6 && Left(oid) > 2) TakeBytes(oid, 2);   // with the tag and length of an object identifier, or without
  const Field value = Rest(oid);
  AddLine(in, value, "Management Address Domain: %s", TextOfObjectId(CursorOver(value)));
  const Field length = TakeU8(c);
  AddLine(in, length, "Management Address Length: %u", length.value);
  Cursor part = TakeCursor(c, length.value);
  const Field address = Rest(part);
  AddLine(in, address, "Management Address: %s", HexText(address));
}

constexpr auto kPortStatus = Rows<FaultManagement>({Number(1, "Port Status", kPortStatusNames).Note(", %s")});
constexpr auto kInterfaceStatus = Rows<FaultManagement>({Number(1, "Interface Status", kInterfaceNames).Note(", %s")});
constexpr auto kReply = Rows<FaultManagement>({
    Number(1, "Action", kIngressNames).Note(", %s"), Mac("MAC Address").Note(", %s")});
constexpr auto kEgress = Rows<FaultManagement>({Number(2, "Unique Identifier"), Mac("MAC Address").Note(", %s")});
constexpr auto kEgressPair = Rows<FaultManagement>({
    Number(2, "Last Unique Identifier"), Mac("Last MAC Address").Note(", %s"), Number(2, "Next Unique Identifier"),
    Mac("Next MAC Address").Note(", %s")});
constexpr auto kTarget = Rows<FaultManagement>({Mac("Target MIP").Note(", %s")});
constexpr auto kOrganization = Rows<FaultManagement>({
    Hex(3, "Organizational Code").Note(", 0x%.06X"), Number(1, "Subtype"), Bytes(0, "Value")});
constexpr auto kTest = Rows<FaultManagement>({Number(1, "Pattern Type", kPatternNames).Note(", %s"), Bytes(0, "Pattern")});
constexpr auto kData = Rows<FaultManagement>({Bytes(0, "Data")});
constexpr auto kMepId = Rows<FaultManagement>({Word(2), Bits(0, 3, "Reserved"), Bits(3, 13, "MEP ID"), Bytes(0, "Value")});
constexpr auto kTestId = Rows<FaultManagement>({Number(4, "Test ID").Note(", %u")});

void ShowReplyPort(const Place& in, Cursor& c, FaultManagement&) {
  if (!Left(c)) return;
  const Field length = TakeU8(c), subtype = TakeU8(c);
  AddLine(in, length, "Port ID Length: %u", length.value);
  AddLine(in, subtype, "Port ID Subtype: %u = %s", subtype.value, LookupName(kLldpPortNames, subtype.value));
  ShowIdentifier(in, c, length.value, subtype.value == 3, "Port ID");
}

constexpr auto kElements = Choices<FaultManagement>({
    {0, "End"}, {1, "Sender ID", {}, ShowSender}, {2, "Port Status", kPortStatus}, {3, "Data", kData},
    {4, "Interface Status", kInterfaceStatus}, {5, "Reply Ingress", kReply, ShowReplyPort},
    {6, "Reply Egress", kReply, ShowReplyPort}, {7, "LTM Egress Identifier", kEgress},
    {8, "LTR Egress Identifier", kEgressPair}, {9, "PBB-TE MIP", kTarget}, {31, "Organization Specific", kOrganization},
    {32, "Test", kTest}, {33, "Target MEP/MIP ID", kData}, {34, "Replying MEP/MIP ID", kData},
    {35, "Requesting MEP ID", kMepId}, {36, "Test ID", kTestId}});

}  // namespace

void ShowFaultElements(const Place& in, Cursor& c, FaultManagement& out) {
  constexpr ElementForm kForm{.lengthSize = 2, .endType = 0};
  ShowElements(in, c, kForm, "TLV", kElements, out);
}

}  // namespace qxview
