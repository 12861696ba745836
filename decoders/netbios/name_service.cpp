// The NetBIOS name service (RFC 1002 4.2): names are registered, refreshed, released and asked for, by broadcast or at
// a name server. Messages have the form of DNS.
//
//   0               2       4           6         8                   10                  12
//   transaction ID  flags   questions   answers   authority records   additional records  questions, records
//   question   name   type (2)   class (2)
//   record     name   type (2)   class (2)   time to live (4)   data length (2)   data
//   flags      R  operation code (4)  AA TC RD RA 0 0 B  result code (4)
#include "core/rows.h"
#include "decoders/netbios/netbios.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 12;
constexpr uint32_t kResponse = 0x8000;
enum RecordType : uint32_t { kAddress = 1, kNameServer = 2, kNull = 10, kName = 0x20, kNodeStatus = 0x21 };

constexpr auto kOperationNames = SortedNames({
    {0, "Query"}, {5, "Registration"}, {6, "Release"}, {7, "Wait for Acknowledgement"}, {8, "Refresh"},
    {9, "Refresh"}, {15, "Multi-Homed Registration"},
});
constexpr auto kResultNames = SortedNames({
    {0, "Success"}, {1, "Format Error"}, {2, "Server Failure"}, {3, "Name Does Not Exist"},
    {4, "Request Not Supported"}, {5, "Refused"}, {6, "Name Is Active at Another Node"}, {7, "Name in Conflict"},
});
constexpr auto kTypeNames = SortedNames({{kAddress, "A"}, {kNameServer, "NS"}, {kNull, "NULL"}, {kName, "NB"},
                                         {kNodeStatus, "NBSTAT"}});
constexpr auto kClassNames = SortedNames({{1, "Internet"}});
constexpr auto kNodeTypes = SortedNames({{0, "B-Node"}, {1, "P-Node"}, {2, "M-Node"}, {3, "H-Node"}});
constexpr auto kDirections = SortedNames({{0, "Request"}, {1, "Response"}});
constexpr auto kOwnerKinds = SortedNames({{0, "Unique Name"}, {1, "Group Name"}});
constexpr auto kLifeNotes = SortedNames({{0, " = Infinite"}});

uint32_t OperationOf(uint32_t flags) { return flags >> 11 & 15; }

consteval RowData Reserved(uint8_t first, uint8_t count) { return Bits(first, count, "Reserved").Told("%s: Reserved"); }

// The bits of a message's flags, under a line of theirs that tells more than their number.
struct Flags {
  Field result;
};
constexpr auto kFlagBits = Rows<Flags>({
    Word(2), Bits(0, 1, nullptr, kDirections).Told("%s: %s"),
    Bits(1, 4, "Operation Code", NetBiosOperationName).Told("%s: Operation Code = [%u] %s"),
    Flag(5, "Authoritative Answer").NoteWhenSet(", Authoritative Answer"), Flag(6, "Truncated").NoteWhenSet(", Truncated"),
    Flag(7, "Recursion Desired").NoteWhenSet(", Recursion Desired"),
    Flag(8, "Recursion Available").NoteWhenSet(", Recursion Available"), Reserved(9, 2),
    Flag(11, "Broadcast").NoteWhenSet(", Broadcast"),
    Bits(12, 4, "Result Code", NetBiosResultName).Told("%s: Result Code = [%u] %s").Into(&Flags::result)});

void AddFlagLines(const Place& in, Cursor& c, const char* label) {
  const uint32_t flags = PeekU16(c);
  const Place under = Under(in, AddLine(in, Ahead(c, 2), "%s: 0x%.04X = %s %s", label, flags,
                                        NetBiosOperationName(OperationOf(flags)),
                                        flags & kResponse ? "Response" : "Request"));
  const Flags shown = ShowRows(under, c, kFlagBits);
  if (flags & kResponse && shown.result.value) {
    AppendToParent(under, shown.result, ", %s", NetBiosResultName(shown.result.value));
  }
}

// Whose a name is: the first three bits of its flags.
struct Owner {
  Field group, node, address;
};
constexpr RowData kGroup = Bits(0, 1, nullptr, kOwnerKinds).Told("%s: %s");
constexpr RowData kNode = Bits(1, 2, "Owner Node Type", kNodeTypes).Told("%s: Owner Node Type = [%u] %s");
constexpr auto kNameAddress = Rows<Owner>({
    Hex(2, "Name Flags"), kGroup.Into(&Owner::group), kNode.Into(&Owner::node), Reserved(3, 13),
    IPv4("Address").Into(&Owner::address)});
constexpr auto kStatusFlags = Rows<Owner>({
    Hex(2, "Name Flags"), kGroup, kNode.Note(", %s"), Flag(3, "Deregister").NoteWhenSet(", Deregister"),
    Flag(4, "Conflict").NoteWhenSet(", Conflict"), Flag(5, "Active").NoteWhenSet(", Active"),
    Flag(6, "Permanent").NoteWhenSet(", Permanent"), Reserved(7, 9)});

void DecodeNameAddresses(const Place& in, Cursor& c) {
  for (Loop loop; Left(c) >= 6 && MoreAt(in, c, loop);) {
    const Owner owner = PeekRows(c, kNameAddress);
    const Place under = Under(in, AddLine(in, Ahead(c, 6), "%s: %s, %s", IPv4Text(owner.address.bytes),
                                          owner.group.value ? "Group" : "Unique", kNodeTypes.rows[owner.node.value].name));
    ShowRows(under, c, kNameAddress);
  }
}

void DecodeStatusName(const Place& in, Cursor& c) {
  const Field entry = Ahead(c, kNetBiosNameLength + 2);
  const NetBiosName name = TakePlainNetBiosName(c);
  const bool isGroup = (PeekU16(c) & 0x8000) != 0;
  const TextSlice shown{name.text.text, sizeof name.text.text};   // a text of the frame is no label
  const Place under = Under(in, AddLine(in, entry, "%s: %s", shown, isGroup ? "Group" : "Unique"));
  AddNetBiosNameLine(under, "Name", name, isGroup);
  ShowRows(under, c, kStatusFlags);
}

constexpr auto kStatistics = Rows<NoValues>({
    Mac("Unit ID"), Number(1, "Jumpers"), Number(1, "Test Result"), Number(2, "Version Number"),
    Number(2, "Period of Statistics"), Number(2, "CRC Errors"), Number(2, "Alignment Errors"), Number(2, "Collisions"),
    Number(2, "Send Aborts"), Number(4, "Good Sends"), Number(4, "Good Receives"), Number(2, "Retransmissions"),
    Number(2, "No Resource Conditions"), Number(2, "Free Command Blocks"), Number(2, "Total Command Blocks"),
    Number(2, "Maximum Command Blocks"), Number(2, "Pending Sessions"), Number(2, "Maximum Pending Sessions"),
    Number(2, "Maximum Sessions Possible"), Number(2, "Session Data Packet Size")});

void DecodeStatistics(const Place& in, Cursor& c) {
  if (Left(c) < 1) return;
  const LineHandle line = AddLine(in, Ahead(c, Left(c)), "Statistics");
  const int32_t start = c.offset;
  ShowRows(Under(in, line), c, kStatistics);
  SetRange(in, line, start, c.offset - start);
}

void DecodeNodeStatus(const Place& in, Cursor& c) {
  const Field count = TakeU8(c);
  AddLine(in, count, "Number of Names: %u", count.value);
  Loop loop;
  for (uint32_t i = 0; i < count.value && Left(c) >= kNetBiosNameLength + 2 && MoreAt(in, c, loop); ++i) {
    DecodeStatusName(in, c);
  }
  DecodeStatistics(in, c);
}

constexpr auto kAddressRow = Rows<NoValues>({IPv4("Address")});

void DecodeRecordData(const Place& in, Cursor& c, uint32_t type, const Field& message, uint32_t operation) {
  constexpr uint32_t kWait = 7;
  if (operation == kWait && Left(c) == 2) {
    AddFlagLines(in, c, "Request Flags");   // a wait gives those of the request it answers back
  } else if (type == kName) {
    DecodeNameAddresses(in, c);
  } else if (type == kNodeStatus) {
    DecodeNodeStatus(in, c);
  } else if (type == kNameServer) {
    AddNetBiosNameLine(in, "Name Server", TakeNetBiosName(c, message));
  } else if (type == kAddress && Left(c) >= 4) {
    ShowRows(in, c, kAddressRow);
  }
  AddBlock(in, Ahead(c, c.left), "Record Data");
}

struct Entry {
  Field type, length;
};
constexpr auto kQuestion = Rows<Entry>({Hex(2, "Type", kTypeNames).Into(&Entry::type), Number(2, "Class", kClassNames)});
constexpr auto kLifeAndLength = Rows<Entry>({
    Number(4, "Time to Live", NamesOr(kLifeNotes, "")).Told("Time to Live: %u seconds%s"),
    Number(2, "Data Length").Into(&Entry::length)});

// A question when `isQuestion`, else a record. False when it is not all there.
bool DecodeEntry(const Place& in, Cursor& c, const char* label, bool isQuestion, const Field& message, uint32_t flags) {
  const int32_t start = c.offset;
  const Cursor before = c;
  const NetBiosName name = TakeNetBiosName(c, message);
  if (!name.field.here) {
    c = before;
    return false;
  }
  const LineHandle line = AddLine(in, name.field, "%s: %s", label, name.text);
  const Place under = Under(in, line);
  AddNetBiosNameLine(under, "Name", name);
  const uint32_t type = ShowRows(under, c, kQuestion).type.value;
  if (!c.ranShort) AppendToLine(in, line, ", %s", LookupName(kTypeNames, type));
  if (!isQuestion) {
    Cursor data = TakeCursor(c, ShowRows(under, c, kLifeAndLength).length.value);
    DecodeRecordData(under, data, type, message, OperationOf(flags));
  }
  SetRange(in, line, start, c.offset - start);
  return !c.ranShort;
}

struct Counts {
  Field questions, answers, authorities, additionals;
};
constexpr auto kTransaction = Rows<NoValues>({Hex(2, "Transaction ID")});
constexpr auto kCounts = Rows<Counts>({
    Number(2, "Questions").Into(&Counts::questions), Number(2, "Answers").Into(&Counts::answers),
    Number(2, "Authority Records").Into(&Counts::authorities), Number(2, "Additional Records").Into(&Counts::additionals)});
// The message's line, with the name of its first question or record.
LineHandle AddMessageLine(const Place& at, const Field& message, Cursor c) {
  const uint32_t flags = PeekU16(c, 2);
  TakeBytes(c, kHeaderSize);
  NetBiosName name{};
  if (Left(c) > 0) name = TakeNetBiosName(c, message);
  const char* result = flags & kResponse && flags & 15 ? NetBiosResultName(flags & 15) : "";
  return AddLine(at, message, "NetBIOS Name Service: %s %s%s%s%s%s", NetBiosOperationName(OperationOf(flags)),
                 flags & kResponse ? "Response" : "Request", name.field.here ? ", " : "", name.text,
                 result[0] ? ", " : "", result);
}

}  // namespace

const char* NetBiosOperationName(uint32_t operation) { return LookupName(kOperationNames, operation); }
const char* NetBiosResultName(uint32_t result) { return LookupName(kResultNames, result); }

int32_t DecodeNetBiosName(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize) return 0;
  const Field message = Ahead(c, Left(c));
  const Place in = Under(at, AddMessageLine(at, message, c));
  ShowRows(in, c, kTransaction);
  const uint32_t flags = PeekU16(c);
  AddFlagLines(in, c, "Flags");
  const Counts counts = ShowRows(in, c, kCounts);
  const struct {
    const char* label;
    uint32_t count;
  } sections[] = {{"Question", counts.questions.value}, {"Answer", counts.answers.value},
                   {"Authority Record", counts.authorities.value}, {"Additional Record", counts.additionals.value}};
  bool isWhole = true;
  for (const auto& section : sections) {
    Loop loop;
    for (uint32_t i = 0; i < section.count && isWhole && MoreAt(in, c, loop); ++i) {
      isWhole = DecodeEntry(in, c, section.label, &section == sections, message, flags);
    }
  }
  AddBlock(in, Ahead(c, Left(c)), "Extra Data");
  return 1;
}

}  // namespace qxview
