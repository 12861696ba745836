// What switches of one maker tell each other behind a SNAP header: unidirectional link detection (UDLD, RFC 5171), trunk
// negotiation (DTP), whose elements alone are known, aggregated ports (PAgP), and a protocol without a public text (DRiP).
#include "core/elements.h"
#include "core/internet_checksum.h"
#include "decoders/common/checksum_line.h"

namespace qxview {
namespace {

struct Control {
  Field version, kind, size, count;
};

constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .lengthCountsHeader = true};

constexpr auto kText = Rows<Control>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kNumber1 = Rows<Control>({Number(1, nullptr, " seconds").Note(", %u seconds")});
constexpr auto kNumber4 = Rows<Control>({Number(4, nullptr).Note(", %u")});

// --- unidirectional links ---

constexpr auto kOpcodeNames = SortedNames({{0, "Reserved"}, {1, "Probe"}, {2, "Echo"}, {3, "Flush"}});
constexpr auto kUdldHead = Rows<Control>({
    Hex(1, "Version and Opcode"), Bits(0, 3, "Version"), Bits(3, 5, "Opcode", kOpcodeNames).Into(&Control::kind),
    Hex(1, "Flags"), Bits(0, 6, "Reserved"), Flag(6, "Resynchronization"), Flag(7, "Recommended Timeout")});
constexpr auto kEchoPair = Rows<Control>({Counted(2, Utf8(0, "Device ID")).Note(", %s"),
    Counted(2, Utf8(0, "Port ID")).Note(" %s")});

void ShowEchoes(const Place& in, Cursor& c, Control& out) {
  const Field count = TakeU32(c);
  AddLine(in, count, "Number of ID Pairs: %u", count.value);
  Loop loop;
  for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop); ++i) {
    const Cursor start = c;
    const LineHandle line = AddLine(in, Ahead(c, Left(c) < 2 ? Left(c) : 2), "ID Pair %u", i + 1);
    ShowRows<Control>(Under(in, line), c, kEchoPair, out);
    if (line) SetRange(in, line, start.offset, c.offset - start.offset);
  }
}

constexpr auto kUdld = Choices<Control>({
    {1, "Device ID", kText}, {2, "Port ID", kText}, {3, "Echo", {}, ShowEchoes}, {4, "Message Interval", kNumber1},
    {5, "Timeout Interval", kNumber1}, {6, "Device Name", kText}, {7, "Sequence Number", kNumber4}});

// --- trunks ---

constexpr auto kModeNames = SortedNames({{0, "Access"}, {1, "Trunk"}});
constexpr auto kAdministrativeNames = SortedNames({{1, "On"}, {2, "Off"}, {3, "Desirable"}, {4, "Auto"}});
constexpr auto kTrunkNames = SortedNames({{0, "Negotiated"}, {1, "Native"}, {2, "ISL"}, {5, "802.1Q"}});
constexpr auto kStatus = Rows<Control>({
    Hex(1, "Trunk Status"), Bits(0, 1, "Operating Status", kModeNames), Bits(1, 4, "Reserved"),
    Bits(5, 3, "Administrative Status", kAdministrativeNames)});
constexpr auto kType = Rows<Control>({
    Hex(1, "Trunk Type"), Bits(0, 3, "Operating Type", kTrunkNames), Bits(3, 2, "Reserved"),
    Bits(5, 3, "Administrative Type", kTrunkNames)});
constexpr auto kNeighbor = Rows<Control>({Mac("Sender ID").Note(", %s")});
constexpr auto kDtp = Choices<Control>({
    {1, "Domain", kText}, {2, "Trunk Status", kStatus}, {3, "Trunk Type", kType}, {4, "Sender ID", kNeighbor}});

// --- aggregated ports: as the patent US 5,959,968 describes them; DRiP has no public text ---

constexpr auto kPagpNames = SortedNames({{1, "Information"}, {2, "Flush"}});
constexpr auto kLearnNames = SortedNames({{1, "Any Port"}, {2, "Source-Based Distribution"}});
constexpr auto kPagpHead = Rows<Control>({Number(1, "Version", kPagpNames).Into(&Control::version)});
constexpr auto kPagpInformation = Rows<Control>({
    Hex(1, "Flags"), Bits(0, 5, "Reserved"), Flag(5, "Consistent State"), Flag(6, "Automatic Mode"), Flag(7, "Slow Hello"),
    Mac("Local Device ID").Note(", %s"), Number(1, "Local Learn Capability", kLearnNames),
    Number(1, "Local Hot Standby Priority"), Number(4, "Local Port").Note(", Port %u"), Hex(4, "Local Group Capability"),
    Number(4, "Local Group"), Mac("Partner Device ID").Note(", Partner %s"),
    Number(1, "Partner Learn Capability", kLearnNames), Number(1, "Partner Hot Standby Priority"),
    Number(4, "Partner Port").Note(" Port %u"), Hex(4, "Partner Group Capability"), Number(4, "Partner Group"),
    Number(2, "Partner Count"), Number(2, "Number of Elements")});
constexpr auto kPagpFlush = Rows<Control>({
    Hex(1, "Reserved"), Mac("Local Device ID").Note(", %s"), Mac("Partner Device ID").Note(", Partner %s"),
    Hex(4, "Transaction ID").Note(", Transaction 0x%.08X")});
constexpr auto kPortAddress = Rows<Control>({Mac("Port Address").Note(", %s")});
constexpr auto kPagp = Choices<Control>({
    {1, "Device Name", kText}, {2, "Physical Port Name", kText}, {3, "Aggregated Port Address", kPortAddress}});

}  // namespace

int32_t DecodeUdld(const Place& at, Cursor c) {
  if (Left(c) < 4) return 0;
  const Field message = Ahead(c, Left(c));
  const Place in = Under(at, AddLine(at, message, "UDLD: %s", LookupName(kOpcodeNames, PeekU8(c) & 31)));
  Control out = ShowRows(in, c, kUdldHead);
  AddChecksumLine(in, TakeU16(c), "Checksum:", nullptr, SumWords(0, message.bytes, message.length), BadChecksum::kAlone);
  ShowElements(in, c, kForm, "Element", kUdld, out);
  c.ranShort = false;
  AddBlock(in, Rest(c), "UDLD Data");
  return 1;
}

int32_t DecodeDtp(const Place& at, Cursor c) {
  if (Left(c) < 1) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "DTP: Trunk Negotiation"));
  const Field version = TakeU8(c);
  AddLine(in, version, "Version: %u", version.value);
  Control out{};
  ShowElements(in, c, kForm, "Element", kDtp, out);
  c.ranShort = false;
  AddBlock(in, Rest(c), "DTP Data");
  return 1;
}

int32_t DecodePagp(const Place& at, Cursor c) {
  constexpr uint32_t kInformation = 1, kFlush = 2;
  if (Left(c) < 2) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "PAgP: %s", LookupName(kPagpNames, PeekU8(c))));
  Control out = ShowRows(in, c, kPagpHead);
  if (out.version.value == kInformation) {
    ShowRows<Control>(in, c, kPagpInformation, out);
    ShowElements(in, c, kForm, "Element", kPagp, out);
  } else if (out.version.value == kFlush) {
    ShowRows<Control>(in, c, kPagpFlush, out);
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "PAgP Data");
  return 1;
}

int32_t DecodeDrip(const Place& at, Cursor c) {
  if (Left(c) < 2) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "DRiP: Duplicate Ring Protocol"));
  AddBlock(in, Rest(c), "DRiP Data");
  return 1;
}

}  // namespace qxview
