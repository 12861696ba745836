// Hot Standby Router Protocol, version 1 (RFC 2281) and 2 (as its maker describes it: elements of type and length): which
// of the routers answers for a shared address?
//
//   version 1   version, opcode, state, hello time, hold time, priority, group, reserved (1 each)   password (8)   address (4)
//   version 2   type (1)   length (1)   what the type says
#include "core/elements.h"

namespace qxview {
namespace {

constexpr uint32_t kAdvertise = 3, kMd5Type = 4, kSix = 6;

constexpr auto kOpcodeNames = SortedNames({{0, "Hello"}, {1, "Coup"}, {2, "Resign"}, {3, "Advertise"}});
constexpr auto kStateNames = SortedNames({
    {0, "Initial"}, {1, "Learn"}, {2, "Listen"}, {4, "Speak"}, {8, "Standby"}, {16, "Active"}});
constexpr auto kState2Names = SortedNames({
    {0, "Disabled"}, {1, "Init"}, {2, "Learn"}, {3, "Listen"}, {4, "Speak"}, {5, "Standby"}, {6, "Active"}});
constexpr auto kInterfaceNames = SortedNames({{1, "Dormant"}, {2, "Passive"}, {3, "Active"}});
constexpr auto kAdvertisedNames = SortedNames({{1, "HSRP Interface State"}, {2, "IP Redundancy"}});
constexpr auto kAlgorithmNames = SortedNames({{1, "MD5"}});

struct Hsrp {
  Field ipVersion;
};

constexpr auto kHead = Rows<Hsrp>({Number(1, "Version"), Number(1, "Opcode", kOpcodeNames)});
constexpr auto kBody = Rows<Hsrp>({
    Number(1, "State", kStateNames).Note(", %s"), Number(1, "Hello Time", " seconds"),
    Number(1, "Hold Time", " seconds"), Number(1, "Priority").Note(", Priority %u"),
    Number(1, "Group").Note(", Group %u"), Hex(1, "Reserved"), Text(8, "Authentication Data"),
    IPv4("Virtual IP Address").Note(", %s")});
constexpr auto kAdvertisement = Rows<Hsrp>({
    Number(2, "Advertisement Type", kAdvertisedNames), Number(2, "Advertisement Length"),
    Number(1, "Interface State", kInterfaceNames).Note(", %s"), Hex(1, "Reserved"), Number(2, "Active Groups"),
    Number(2, "Passive Groups"), Hex(4, "Reserved")});

constexpr auto kGroup = Rows<Hsrp>({
    Number(1, "Version"), Number(1, "Opcode", kOpcodeNames).Note(", %s"), Number(1, "State", kState2Names).Note(", %s"),
    Number(1, "IP Version").Into(&Hsrp::ipVersion), Number(2, "Group").Note(", Group %u"), Mac("Identifier"),
    Number(4, "Priority").Note(", Priority %u"), Number(4, "Hello Time", " milliseconds"),
    Number(4, "Hold Time", " milliseconds")});
constexpr auto kAddress4 = Rows<Hsrp>({IPv4("Virtual IP Address").Note(", %s"), Bytes(12, "Unused")});
constexpr auto kAddress6 = Rows<Hsrp>({IPv6("Virtual IPv6 Address").Note(", %s")});
constexpr auto kInterface = Rows<Hsrp>({Number(2, "Active Groups"), Number(2, "Passive Groups")});
constexpr auto kPassword = Rows<Hsrp>({Text(0, "Authentication Data")});
constexpr auto kDigest = Rows<Hsrp>({
    Number(1, "Algorithm", kAlgorithmNames), Hex(1, "Reserved"), Hex(2, "Flags"), IPv4("Sender's IP Address"),
    Number(4, "Key ID"), Bytes(16, "Digest")});

void ShowAddress(const Place& in, Cursor& c, Hsrp& hsrp) {
  ShowRows<Hsrp>(in, c, hsrp.ipVersion.value == kSix ? RowSpan<Hsrp>(kAddress6) : RowSpan<Hsrp>(kAddress4), hsrp);
}

constexpr auto kElements = Choices<Hsrp>({
    {1, "Group State", kGroup, ShowAddress}, {2, "Interface State", kInterface}, {3, "Text Authentication", kPassword},
    {4, "MD5 Authentication", kDigest}});

}  // namespace

int32_t DecodeHsrp(const Place& at, Cursor c) {
  constexpr int32_t kLeast = 2, kLeast1 = 16;
  constexpr ElementForm kForm{};
  if (Left(c) < kLeast || (PeekU8(c) == 0 && Left(c) < kLeast1)) return 0;
  Hsrp hsrp{};
  if (PeekU8(c) != 0) {
    const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "HSRP: Version 2"));
    ShowElements<Hsrp>(in, c, kForm, "TLV", kElements, hsrp);
    c.ranShort = false;
    AddBlock(in, Rest(c), "HSRP Data");
    return 1;
  }
  const uint32_t opcode = PeekU8(c, 1);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "HSRP: Version 1, %s", LookupName(kOpcodeNames, opcode)));
  ShowRows<Hsrp>(in, c, kHead, hsrp);
  ShowRows<Hsrp>(in, c, opcode == kAdvertise ? RowSpan<Hsrp>(kAdvertisement) : RowSpan<Hsrp>(kBody), hsrp);
  if (PeekU8(c) == kMd5Type) ShowElements<Hsrp>(in, c, kForm, "TLV", kElements, hsrp);
  c.ranShort = false;   // what is left of an address that is cut
  AddBlock(in, Rest(c), "HSRP Data");
  return 1;
}

}  // namespace qxview
