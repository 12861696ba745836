// The NetBIOS name service (RFC 1002 4.2): names are registered, refreshed, released and asked for, by broadcast or at
// a name server. Messages have the form of DNS.
//
//   0               2       4           6         8                   10                  12
//   transaction ID  flags   questions   answers   authority records   additional records  questions, records
//   question   name   type (2)   class (2)
//   record     name   type (2)   class (2)   time to live (4)   data length (2)   data
//   flags      R  operation code (4)  AA TC RD RA 0 0 B  result code (4)
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
constexpr const char* kNodeTypes[] = {"B-Node", "P-Node", "M-Node", "H-Node"};


uint32_t OperationOf(uint32_t flags) { return flags >> 11 & 15; }

struct FlagRow {
  uint8_t bit;
  const char* name;
};
constexpr FlagRow kMessageFlags[] = {{5, "Authoritative Answer"}, {6, "Truncated"}, {7, "Recursion Desired"},
                                     {8, "Recursion Available"}, {11, "Broadcast"}};

LineHandle AddFlagLines(const Place& in, const Field& flags, const char* label) {
  const LineHandle line = AddLine(in, flags, "%s: 0x%.04X = %s %s", label, flags.value,
                                  NetBiosOperationName(OperationOf(flags.value)),
                                  flags.value & kResponse ? "Response" : "Request");
  const Place under = Under(in, line);
  const BitPicture response = BitsOf(flags, 0, 1), operation = BitsOf(flags, 1, 4), result = BitsOf(flags, 12, 4);
  AddBitLine(under, flags, "%s: %s", response.picture, response.value ? "Response" : "Request");
  AddBitLine(under, flags, "%s: Operation Code = [%u] %s", operation.picture, operation.value,
             NetBiosOperationName(operation.value));
  for (const FlagRow& row : kMessageFlags) {
    if (row.bit == 11) AddBitLine(under, flags, "%s: Reserved", BitsOf(flags, 9, 2).picture);
    const BitPicture bit = BitsOf(flags, row.bit, 1);
    AddBitLine(under, flags, "%s: %s = %s", bit.picture, row.name, TrueOrFalse(bit.value));
    if (bit.value) AppendToLine(in, line, ", %s", row.name);
  }
  AddBitLine(under, flags, "%s: Result Code = [%u] %s", result.picture, result.value, NetBiosResultName(result.value));
  if (flags.value & kResponse && result.value) AppendToLine(in, line, ", %s", NetBiosResultName(result.value));
  return line;
}

void AddTypeAndClass(const Place& in, Cursor& c, uint32_t& type) {
  const Field typeField = TakeU16(c);
  type = typeField.value;
  AddLine(in, typeField, "Type: 0x%.04X = %s", type, LookupName(kTypeNames, type));
  const Field recordClass = TakeU16(c);
  AddLine(in, recordClass, "Class: %u = %s", recordClass.value, LookupName(kClassNames, recordClass.value));
}

// The group bit and the node type, the first three bits of a name's flags. Result: the group bit.
uint32_t AddOwnerBits(const Place& under, const Field& flags) {
  const BitPicture group = BitsOf(flags, 0, 1), node = BitsOf(flags, 1, 2);
  AddBitLine(under, flags, "%s: %s", group.picture, group.value ? "Group Name" : "Unique Name");
  AddBitLine(under, flags, "%s: Owner Node Type = [%u] %s", node.picture, node.value, kNodeTypes[node.value]);
  return group.value;
}

void DecodeNameAddresses(const Place& in, Cursor& c) {
  for (Loop loop; Left(c) >= 6 && MoreAt(in, c, loop);) {
    const Field entry = Ahead(c, 6), flags = TakeU16(c), address = TakeBytes(c, 4);
    const bool isGroup = (flags.value & 0x8000) != 0;
    const LineHandle line = AddLine(in, entry, "%s: %s, %s", IPv4Text(address.bytes), isGroup ? "Group" : "Unique",
                                    kNodeTypes[flags.value >> 13 & 3]);
    const Place under = Under(in, line);
    const Place bits = Under(under, AddLine(under, flags, "Name Flags: 0x%.04X", flags.value));
    AddOwnerBits(bits, flags);
    AddBitLine(bits, flags, "%s: Reserved", BitsOf(flags, 3, 13).picture);
    AddLine(under, address, "Address: %s", IPv4Text(address.bytes));
  }
}

constexpr FlagRow kStatusFlags[] = {{3, "Deregister"}, {4, "Conflict"}, {5, "Active"}, {6, "Permanent"}};

void DecodeStatusName(const Place& in, Cursor& c) {
  const Field entry = Ahead(c, kNetBiosNameLength + 2);
  const NetBiosName name = TakePlainNetBiosName(c);
  const Field flags = TakeU16(c);
  const bool isGroup = (flags.value & 0x8000) != 0;
  const LineHandle line = AddLine(in, entry, "%s: %s", name.text, isGroup ? "Group" : "Unique");
  const Place under = Under(in, line);
  AddNetBiosNameLine(under, "Name", name, isGroup);
  const Place bits = Under(under, AddLine(under, flags, "Name Flags: 0x%.04X", flags.value));
  AddOwnerBits(bits, flags);
  AppendToLine(in, line, ", %s", kNodeTypes[flags.value >> 13 & 3]);
  for (const FlagRow& row : kStatusFlags) {
    const BitPicture bit = BitsOf(flags, row.bit, 1);
    AddBitLine(bits, flags, "%s: %s = %s", bit.picture, row.name, TrueOrFalse(bit.value));
    if (bit.value) AppendToLine(in, line, ", %s", row.name);
  }
  AddBitLine(bits, flags, "%s: Reserved", BitsOf(flags, 7, 9).picture);
}

struct CounterRow {
  uint8_t size;
  const char* name;
};
constexpr CounterRow kCounters[] = {
    {1, "Jumpers"}, {1, "Test Result"}, {2, "Version Number"}, {2, "Period of Statistics"}, {2, "CRC Errors"},
    {2, "Alignment Errors"}, {2, "Collisions"}, {2, "Send Aborts"}, {4, "Good Sends"}, {4, "Good Receives"},
    {2, "Retransmissions"}, {2, "No Resource Conditions"}, {2, "Free Command Blocks"}, {2, "Total Command Blocks"},
    {2, "Maximum Command Blocks"}, {2, "Pending Sessions"}, {2, "Maximum Pending Sessions"},
    {2, "Maximum Sessions Possible"}, {2, "Session Data Packet Size"},
};

void DecodeStatistics(const Place& in, Cursor& c) {
  if (Left(c) < 1) return;
  const LineHandle line = AddLine(in, Ahead(c, Left(c)), "Statistics");
  const Place under = Under(in, line);
  const int32_t start = c.offset;
  const Field unit = TakeBytes(c, 6);
  AddLine(under, unit, "Unit ID: %s", MacText(unit.bytes));
  for (const CounterRow& row : kCounters) {
    const Field counter = row.size == 1 ? TakeU8(c) : row.size == 2 ? TakeU16(c) : TakeU32(c);
    AddLine(under, counter, "%s: %u", row.name, counter.value);
  }
  SetRange(in, line, start, c.offset - start);
}

void DecodeNodeStatus(const Place& in, Cursor& c) {
  const Field count = TakeU8(c);
  AddLine(in, count, "Number of Names: %u", count.value);
  for (uint32_t i = 0; i < count.value && Left(c) >= kNetBiosNameLength + 2 && !PacketOf(in).limitReached; ++i) {
    DecodeStatusName(in, c);
  }
  DecodeStatistics(in, c);
}

void DecodeRecordData(const Place& in, Cursor& c, uint32_t type, const Field& message, uint32_t operation) {
  constexpr uint32_t kWait = 7;
  if (operation == kWait && Left(c) == 2) {
    AddFlagLines(in, TakeU16(c), "Request Flags");   // a wait gives those of the request it answers back
  } else if (type == kName) {
    DecodeNameAddresses(in, c);
  } else if (type == kNodeStatus) {
    DecodeNodeStatus(in, c);
  } else if (type == kNameServer) {
    AddNetBiosNameLine(in, "Name Server", TakeNetBiosName(c, message));
  } else if (type == kAddress && Left(c) >= 4) {
    const Field address = TakeBytes(c, 4);
    AddLine(in, address, "Address: %s", IPv4Text(address.bytes));
  }
  AddBlock(in, Ahead(c, c.left), "Record Data");
}

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
  uint32_t type = 0;
  AddTypeAndClass(under, c, type);
  if (Taken(c) > 0 && !c.ranShort) AppendToLine(in, line, ", %s", LookupName(kTypeNames, type));
  if (!isQuestion) {
    const Field life = TakeU32(c);
    AddLine(under, life, "Time to Live: %u seconds%s", life.value, life.here && life.value == 0 ? " = Infinite" : "");
    const Field length = TakeU16(c);
    AddLine(under, length, "Data Length: %u", length.value);
    Cursor data = TakeCursor(c, length.value);
    DecodeRecordData(under, data, type, message, OperationOf(flags));
  }
  SetRange(in, line, start, c.offset - start);
  return !c.ranShort;
}

constexpr const char* kSections[] = {"Question", "Answer", "Authority Record", "Additional Record"};
constexpr const char* kCounts[] = {"Questions", "Answers", "Authority Records", "Additional Records"};

// The message's line, with the name of its first question or record.
LineHandle AddMessageLine(const Place& at, const Field& message, Cursor c) {
  TakeU16(c);
  const uint32_t flags = TakeU16(c).value;
  TakeBytes(c, 8);
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
  const Field transaction = TakeU16(c);
  AddLine(in, transaction, "Transaction ID: 0x%.04X", transaction.value);
  const Field flags = TakeU16(c);
  AddFlagLines(in, flags, "Flags");
  uint32_t counts[4];
  for (int32_t i = 0; i < 4; ++i) {
    const Field count = TakeU16(c);
    AddLine(in, count, "%s: %u", kCounts[i], count.value);
    counts[i] = count.value;
  }
  bool isWhole = true;
  for (int32_t section = 0; section < 4; ++section) {
    for (uint32_t i = 0; i < counts[section] && isWhole && Left(c) > 0 && !PacketOf(in).limitReached; ++i) {
      isWhole = DecodeEntry(in, c, kSections[section], section == 0, message, flags.value);
    }
  }
  AddBlock(in, Ahead(c, Left(c)), "Extra Data");
  return 1;
}

}  // namespace qxview
