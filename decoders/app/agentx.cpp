// AgentX (RFC 2741): the master agent of SNMP and its subagents, which answer for parts of the tree of objects.
//
//   version (1)   type (1)   flags (1)   reserved   session (4)   transaction (4)   packet (4)   payload's length (4)
//
// Numbers are high byte first where a flag says so, and low byte first otherwise. Every field starts at a multiple of
// four.
#include "core/bounded_text.h"
#include "core/rows.h"
#include "decoders/common/line_text.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 20;
constexpr uint32_t kHasContext = 0x08, kNetworkByteOrder = 0x10;

enum PduType : uint32_t {
  kOpen = 1, kClose, kRegister, kUnregister, kGet, kGetNext, kGetBulk, kTestSet, kCommitSet, kUndoSet, kCleanupSet,
  kNotify, kPing, kIndexAllocate, kIndexDeallocate, kAddAgentCaps, kRemoveAgentCaps, kResponse
};
constexpr auto kTypeNames = SortedNames({
    {1, "Open"}, {2, "Close"}, {3, "Register"}, {4, "Unregister"}, {5, "Get"}, {6, "GetNext"}, {7, "GetBulk"},
    {8, "TestSet"}, {9, "CommitSet"}, {10, "UndoSet"}, {11, "CleanupSet"}, {12, "Notify"}, {13, "Ping"},
    {14, "IndexAllocate"}, {15, "IndexDeallocate"}, {16, "AddAgentCaps"}, {17, "RemoveAgentCaps"}, {18, "Response"}});
constexpr auto kFlagNames = SortedNames({
    {0x01, "INSTANCE_REGISTRATION"}, {0x02, "NEW_INDEX"}, {0x04, "ANY_INDEX"}, {0x08, "NON_DEFAULT_CONTEXT"},
    {0x10, "NETWORK_BYTE_ORDER"}});
constexpr auto kReasonNames = SortedNames({
    {1, "reasonOther"}, {2, "reasonParseError"}, {3, "reasonProtocolError"}, {4, "reasonTimeouts"},
    {5, "reasonShutdown"}, {6, "reasonByManager"}});
constexpr auto kErrorNames = SortedNames({
    {0, "noAgentXError"}, {1, "tooBig"}, {2, "noSuchName"}, {3, "badValue"}, {4, "readOnly"}, {5, "genErr"},
    {6, "noAccess"}, {7, "wrongType"}, {8, "wrongLength"}, {9, "wrongEncoding"}, {10, "wrongValue"}, {11, "noCreation"},
    {12, "inconsistentValue"}, {13, "resourceUnavailable"}, {14, "commitFailed"}, {15, "undoFailed"},
    {16, "authorizationError"}, {17, "notWritable"}, {18, "inconsistentName"}, {256, "openFailed"}, {257, "notOpen"},
    {258, "indexWrongType"}, {259, "indexAlreadyAllocated"}, {260, "indexNoneAvailable"}, {261, "indexNotAllocated"},
    {262, "unsupportedContext"}, {263, "duplicateRegistration"}, {264, "unknownRegistration"},
    {265, "unknownAgentCaps"}, {266, "parseError"}, {267, "requestDenied"}, {268, "processingError"}});
constexpr auto kValueNames = SortedNames({
    {2, "Integer"}, {4, "Octet String"}, {5, "Null"}, {6, "Object Identifier"}, {64, "IpAddress"}, {65, "Counter32"},
    {66, "Gauge32"}, {67, "TimeTicks"}, {68, "Opaque"}, {70, "Counter64"}, {128, "noSuchObject"},
    {129, "noSuchInstance"}, {130, "endOfMibView"}});

// The numbers of a message, in its byte order.
struct Numbers {
  bool little;
  Field Take(Cursor& c, int32_t size) const {
    Field field = TakeBytes(c, size);
    if (field.here) field.value = static_cast<uint32_t>(detail::NumberOf(field, little));
    return field;
  }
};

void AddNumber(const Place& in, const Field& field, const char* label) {
  AddLine(in, field, "%s: %u", label, field.value);
}
template <size_t kRows>
void AddNamed(const Place& in, const Field& field, const char* label, const NameTable<kRows>& names) {
  AddLine(in, field, "%s: %u = %s", label, field.value, LookupName(names, field.value));
}
void SkipReserved(const Place& in, Cursor& c, int32_t size) {
  const Field reserved = TakeBytes(c, size);
  AddLine(in, reserved, "Reserved: %s", HexText(reserved));
}

// Sub-identifiers in words; a prefix other than 0 stands for 1.3.6.1 and itself.
void ShowObjectId(const Place& at, Cursor& c, const Numbers& numbers, const char* label) {
  constexpr int32_t kRoom = 160;   // for as many characters; what is longer ends in "..."
  char text[kRoom];
  LineText object(text, kRoom);
  const Cursor start = c;
  const Field count = TakeU8(c), prefix = TakeU8(c), include = TakeU8(c), reserved = TakeU8(c);
  Cursor subs = TakeCursor(c, int64_t{count.value} * 4), words = subs;
  if (prefix.value) object.PutFormat("1.3.6.1.%u", prefix.value);
  Loop loop;
  while (Left(words) >= 4 && !object.IsFull() && More(words, loop)) {
    if (!object.IsEmpty()) object.Put(".");
    object.PutFormat("%u", numbers.Take(words, 4).value);
  }
  const char* shown = object.IsEmpty() ? "0.0" : text;
  const Place in = Under(at, AddLine(at, Ahead(start, c.offset - start.offset), "%s: %s", label, shown));
  AddNumber(in, count, "Number of Sub-Identifiers");
  AddNumber(in, prefix, "Prefix");
  AddNumber(in, include, "Include");
  AddNumber(in, reserved, "Reserved");
  if (Left(subs) > 0) {
    const Field all = Rest(subs);
    AddLine(in, all, "Sub-Identifiers: %s", static_cast<const char*>(text));
  }
}

// A length in a word, the octets, and zeros up to the next word.
Field ShowOctets(const Place& at, Cursor& c, const Numbers& numbers, const char* label) {
  const Cursor start = c;
  const Field length = numbers.Take(c, 4);
  const Field octets = TakeBytes(c, length.value < static_cast<uint32_t>(Left(c)) ? length.value : Left(c));
  const int32_t padding = (4 - octets.length % 4) % 4;
  const Field filler = TakeBytes(c, padding < Left(c) ? padding : Left(c));
  const Place in = Under(at, AddLine(at, Ahead(start, c.offset - start.offset), "%s: %s", label, Text(octets)));
  AddNumber(in, length, "Length");
  if (octets.length > 0) AddLine(in, octets, "Octets: %s", HexText(octets));
  if (filler.length > 0) AddLine(in, filler, "Padding: %s", HexText(filler));
  return octets;
}

void ShowValue(const Place& in, Cursor& c, const Numbers& numbers, uint32_t type) {
  switch (type) {
    case 2: {
      const Field value = numbers.Take(c, 4);
      AddLine(in, value, "Value: %d", static_cast<int32_t>(value.value));
      break;
    }
    case 4:
    case 64:
    case 68: {
      const Field octets = ShowOctets(in, c, numbers, "Value");
      if (type == 64 && octets.length == 4) AddLine(in, octets, "IP Address: %s", IPv4Text(octets.bytes));
      break;
    }
    case 6: ShowObjectId(in, c, numbers, "Value"); break;
    case 65:
    case 66:
    case 67: AddNumber(in, numbers.Take(c, 4), "Value"); break;
    case 70: {
      const Field value = TakeBytes(c, 8);
      uint64_t number = 0;
      for (int32_t i = 0; i < value.length; ++i) number = number << 8 | PeekU8(value, numbers.little ? 7 - i : i);
      AddLine(in, value, "Value: %I64u", number);
      break;
    }
    default: break;
  }
}

void ShowBindings(const Place& at, Cursor& c, const Numbers& numbers) {
  Loop loop;
  uint32_t count = 0;
  while (MoreAt(at, c, loop)) {
    const Cursor start = c;
    const LineHandle line = AddLine(at, Ahead(c, 0), "Variable Binding %u", ++count);
    const Place in = Under(at, line);
    const Field type = numbers.Take(c, 2);
    AddNamed(in, type, "Type", kValueNames);
    SkipReserved(in, c, 2);
    ShowObjectId(in, c, numbers, "Name");
    ShowValue(in, c, numbers, type.value);
    SetRange(at, line, start.offset, c.offset - start.offset);
  }
}

void ShowSearches(const Place& at, Cursor& c, const Numbers& numbers) {
  Loop loop;
  while (MoreAt(at, c, loop)) {
    ShowObjectId(at, c, numbers, "Start of Range");
    ShowObjectId(at, c, numbers, "End of Range");
  }
}

void ShowRegistration(const Place& in, Cursor& c, const Numbers& numbers, bool hasTimeout) {
  if (hasTimeout) {
    AddNumber(in, TakeU8(c), "Timeout");
  } else {
    SkipReserved(in, c, 1);
  }
  AddNumber(in, TakeU8(c), "Priority");
  const Field range = TakeU8(c);
  AddNumber(in, range, "Range Sub-Identifier");
  SkipReserved(in, c, 1);
  ShowObjectId(in, c, numbers, "Subtree");
  if (range.value) AddNumber(in, numbers.Take(c, 4), "Upper Bound");
}

void ShowPayload(const Place& in, Cursor& c, const Numbers& numbers, uint32_t type) {
  switch (type) {
    case kOpen:
      AddNumber(in, TakeU8(c), "Timeout");
      SkipReserved(in, c, 3);
      ShowObjectId(in, c, numbers, "Subagent");
      ShowOctets(in, c, numbers, "Description");
      break;
    case kClose:
      AddNamed(in, TakeU8(c), "Reason", kReasonNames);
      SkipReserved(in, c, 3);
      break;
    case kRegister:
    case kUnregister: ShowRegistration(in, c, numbers, type == kRegister); break;
    case kGetBulk:
      AddNumber(in, numbers.Take(c, 2), "Non-Repeaters");
      AddNumber(in, numbers.Take(c, 2), "Max-Repetitions");
      [[fallthrough]];
    case kGet:
    case kGetNext: ShowSearches(in, c, numbers); break;
    case kTestSet:
    case kNotify:
    case kIndexAllocate:
    case kIndexDeallocate: ShowBindings(in, c, numbers); break;
    case kAddAgentCaps:
      ShowObjectId(in, c, numbers, "Capabilities");
      ShowOctets(in, c, numbers, "Description");
      break;
    case kRemoveAgentCaps: ShowObjectId(in, c, numbers, "Capabilities"); break;
    case kResponse: {
      AddNumber(in, numbers.Take(c, 4), "System Uptime");
      const Field error = numbers.Take(c, 2);
      AddNamed(in, error, "Error", kErrorNames);
      if (error.value) AppendToParent(in, error, ", %s", LookupName(kErrorNames, error.value));
      AddNumber(in, numbers.Take(c, 2), "Index");
      ShowBindings(in, c, numbers);
      break;
    }
    default: break;
  }
}

void ShowMessage(const Place& at, Cursor& c) {
  constexpr auto kHead = Rows<NoValues>({
      Number(1, "Version"), Number(1, "Type", kTypeNames), Flags(1, "Flags", kFlagNames), Number(1, "Reserved")});
  const uint32_t type = PeekU8(c, 1), flags = PeekU8(c, 2);
  const Numbers numbers{!(flags & kNetworkByteOrder)};
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "AgentX: %s", LookupName(kTypeNames, type)));
  const int32_t start = c.offset;
  NoValues none;
  ShowRows<NoValues>(in, c, kHead, none);
  const Field session = numbers.Take(c, 4);
  AddNumber(in, session, "Session ID");
  AppendToParent(in, session, ", Session %u", session.value);
  AddNumber(in, numbers.Take(c, 4), "Transaction ID");
  AddNumber(in, numbers.Take(c, 4), "Packet ID");
  const Field length = numbers.Take(c, 4);
  AddNumber(in, length, "Payload Length");
  Cursor payload = TakeCursor(c, length.value);
  if (!in.dead) SetRange(in, in.parent, start, c.offset - start);
  if (flags & kHasContext && Left(payload) > 0) ShowOctets(in, payload, numbers, "Context");
  ShowPayload(in, payload, numbers, type);
  payload.ranShort = false;   // what is left of a field that is cut
  AddBlock(in, Rest(payload), "Data");
}

}  // namespace

int32_t DecodeAgentX(const Place& at, Cursor c) {
  const auto starts = [](const Cursor& message) {
    return Left(message) >= kHeaderSize && PeekU8(message) == 1 && PeekU8(message, 1) >= kOpen &&
           PeekU8(message, 1) <= kResponse;
  };
  if (!starts(c)) return 0;
  Loop loop;
  while (starts(c) && MoreAt(at, c, loop)) ShowMessage(at, c);
  AddRawRest(at, c, "AgentX Data");
  return 1;
}

}  // namespace qxview
