// Connection-oriented remote procedure calls (C706 chapter 12), over TCP and on named pipes: one fragment after the other.
//
//   0        1      2     3      4           8                10           12
//   version  minor  type  flags  data form   fragment length  auth length  call ID   body ...  [authentication]
//
// The data form says whether numbers are little-endian. What the call's parameters are is the interface's matter: they
// stay a dump, "Stub Data".
#include "core/decoder.h"
#include "decoders/common/guid.h"

namespace qxview {
namespace {

enum PduType : uint32_t {
  kRequest = 0, kResponse = 2, kFault = 3, kBind = 11, kBindAck = 12, kBindNak = 13, kAlterContext = 14,
  kAlterContextResponse = 15, kAuth3 = 16,
};

constexpr int32_t kHeaderSize = 16, kAuthHeaderSize = 8;
constexpr uint32_t kHasObject = 0x80, kLittleEndian = 0x10, kLastType = 19;

constexpr auto kTypeNames = SortedNames({
    {0, "Request"}, {1, "Ping"}, {2, "Response"}, {3, "Fault"}, {4, "Working"}, {5, "No Call"}, {6, "Reject"},
    {7, "Acknowledge"}, {8, "Connectionless Cancel"}, {9, "Fragment Acknowledge"}, {10, "Cancel Acknowledge"},
    {11, "Bind"}, {12, "Bind Acknowledge"}, {13, "Bind Reject"}, {14, "Alter Context"}, {15, "Alter Context Response"},
    {16, "Authentication 3"}, {17, "Shutdown"}, {18, "Cancel"}, {19, "Orphaned"}});
constexpr auto kCharacterNames = SortedNames({{0, "ASCII"}, {1, "EBCDIC"}});
constexpr auto kFloatNames = SortedNames({{0, "IEEE"}, {1, "VAX"}, {2, "Cray"}, {3, "IBM"}});
constexpr auto kResultNames = SortedNames({
    {0, "Acceptance"}, {1, "User Rejection"}, {2, "Provider Rejection"}, {3, "Negotiate Acknowledge"}});
constexpr auto kReasonNames = SortedNames({
    {0, "Not Specified"}, {1, "Abstract Syntax Not Supported"}, {2, "Transfer Syntaxes Not Supported"},
    {3, "Local Limit Exceeded"}});
constexpr auto kRejectNames = SortedNames({
    {0, "Not Specified"}, {1, "Temporary Congestion"}, {2, "Local Limit Exceeded"}, {4, "Protocol Version Not Supported"},
    {8, "Authentication Type Not Recognized"}, {9, "Invalid Checksum"}});
constexpr auto kAuthTypes = SortedNames({
    {0, "None"}, {1, "Kerberos 5 (private)"}, {9, "Negotiate"}, {10, "NTLM"}, {14, "Secure Channel"}, {16, "Kerberos 5"},
    {68, "Net Logon"}});
constexpr auto kAuthLevels = SortedNames({
    {1, "None"}, {2, "Connect"}, {3, "Call"}, {4, "Packet"}, {5, "Packet Integrity"}, {6, "Packet Privacy"}});

constexpr const char* kFlagNames[] = {
    "First Fragment", "Last Fragment", "Cancel Pending", "Reserved", "Multiplex", "Did Not Execute", "Maybe", "Object UUID"};

// By the first four bytes of their UUID and the byte that tells apart those that share them.
struct Syntax {
  uint32_t first;
  uint8_t last;
  const char* name;
};
constexpr Syntax kSyntaxes[] = {
    {0x4B324FC8, 0x88, "Server Service"}, {0x6BFFD098, 0x5A, "Workstation Service"},
    {0x12345778, 0xAC, "Security Account Manager"}, {0x12345778, 0xAB, "Local Security Authority"},
    {0x12345678, 0xFB, "Net Logon"}, {0x12345678, 0xAB, "Print Spooler"}, {0x338CD001, 0x03, "Remote Registry"},
    {0x367ABB81, 0x03, "Service Control"}, {0x1FF70682, 0x8B, "Task Scheduler"}, {0xE1AF8308, 0xFA, "Endpoint Mapper"},
    {0x8A885D04, 0x60, "NDR"}, {0x71710533, 0x36, "NDR64"}};

// A fragment's numbers, in its own byte order.
struct Fragment {
  Cursor body;
  bool isLittle;
};
Field Take16(Fragment& f) { return f.isLittle ? TakeLittleU16(f.body) : TakeU16(f.body); }
Field Take32(Fragment& f) { return f.isLittle ? TakeLittleU32(f.body) : TakeU32(f.body); }

void AddNumber8(const Place& in, Fragment& f, const char* label) {
  const Field field = TakeU8(f.body);
  AddLine(in, field, "%s: %u", label, field.value);
}
void AddNumber16(const Place& in, Fragment& f, const char* label) {
  const Field field = Take16(f);
  AddLine(in, field, "%s: %u", label, field.value);
}
void AddNumber32(const Place& in, Fragment& f, const char* label) {
  const Field field = Take32(f);
  AddLine(in, field, "%s: %u", label, field.value);
}

void AddUuid(const Place& in, Fragment& f, const char* label) {
  const Field uuid = TakeBytes(f.body, kGuidSize);
  if (!uuid.here) return;
  const Cursor c = CursorOver(uuid);
  const uint32_t first = f.isLittle ? PeekLittleU32(c) : PeekU32(c), last = PeekU8(c, kGuidSize - 1);
  const char* name = nullptr;
  for (const Syntax& known : kSyntaxes) {
    if (known.first == first && known.last == last) name = known.name;
  }
  AddLine(in, uuid, "%s: %s%s%s", label, TextOfGuid(uuid, f.isLittle ? GuidOrder::kLittle : GuidOrder::kBig),
          name ? " = " : "", name ? name : "");
}

void AddSyntax(const Place& in, Fragment& f, const char* label) {
  AddUuid(in, f, label);
  AddNumber16(in, f, "Version Major");
  AddNumber16(in, f, "Version Minor");
}

void AddAssociation(const Place& in, Fragment& f) {
  AddNumber16(in, f, "Max Transmit Fragment");
  AddNumber16(in, f, "Max Receive Fragment");
  const Field group = Take32(f);
  AddLine(in, group, "Association Group: 0x%.08X", group.value);
}

uint32_t AddCount(const Place& in, Fragment& f, const char* label) {
  const Field count = TakeU8(f.body);
  AddLine(in, count, "%s: %u", label, count.value);
  const Field reserved = TakeBytes(f.body, 3);
  AddLine(in, reserved, "Reserved: %s", HexText(reserved));
  return count.value;
}

void AddBind(const Place& in, Fragment& f) {
  AddAssociation(in, f);
  const uint32_t contexts = AddCount(in, f, "Number Of Contexts");
  Loop loop;
  for (uint32_t i = 0; i < contexts && MoreAt(in, f.body, loop); ++i) {
    const int32_t start = f.body.offset;
    const LineHandle line = AddLine(in, Ahead(f.body, 0), "Presentation Context");
    const Place under = Under(in, line);
    AddNumber16(under, f, "Context ID");
    const Field syntaxes = TakeU8(f.body);
    AddLine(under, syntaxes, "Number Of Transfer Syntaxes: %u", syntaxes.value);
    AddNumber8(under, f, "Reserved");
    AddSyntax(under, f, "Abstract Syntax");
    Loop inner;
    for (uint32_t k = 0; k < syntaxes.value && MoreAt(under, f.body, inner); ++k) AddSyntax(under, f, "Transfer Syntax");
    SetRange(in, line, start, f.body.offset - start);
  }
}

void AddBindAck(const Place& in, Fragment& f, const Cursor& whole) {
  AddAssociation(in, f);
  const Field length = Take16(f);
  AddLine(in, length, "Secondary Address Length: %u", length.value);
  Cursor text = TakeCursor(f.body, length.value);
  const Field address = Rest(text);
  AddLine(in, address, "Secondary Address: %s", Text(address));
  const int32_t beyond = (f.body.offset - whole.begin) % 4;
  if (beyond != 0 && Left(f.body) > 4 - beyond) {
    const Field pad = TakeBytes(f.body, 4 - beyond);
    AddLine(in, pad, "Pad: %s", HexText(pad));
  }
  const uint32_t results = AddCount(in, f, "Number Of Results");
  Loop loop;
  for (uint32_t i = 0; i < results && MoreAt(in, f.body, loop); ++i) {
    const Field result = Take16(f);
    AddLine(in, result, "Result: [%u] = %s", result.value, LookupName(kResultNames, result.value, kUndefined));
    const Field reason = Take16(f);
    AddLine(in, reason, "Reason: [%u] = %s", reason.value, LookupName(kReasonNames, reason.value, kUndefined));
    AddSyntax(in, f, "Transfer Syntax");
  }
}

void AddBindNak(const Place& in, Fragment& f) {
  const Field reason = Take16(f);
  AddLine(in, reason, "Reject Reason: [%u] = %s", reason.value, LookupName(kRejectNames, reason.value, kUndefined));
  const Field versions = TakeU8(f.body);
  AddLine(in, versions, "Number Of Versions: %u", versions.value);
  Loop loop;
  for (uint32_t i = 0; i < versions.value && MoreAt(in, f.body, loop); ++i) {
    const Field version = TakeBytes(f.body, 2);
    if (version.here) AddLine(in, version, "Version: %u.%u", uint32_t{version.bytes[0]}, uint32_t{version.bytes[1]});
  }
}

void AddCall(const Place& in, Fragment& f, uint32_t type, uint32_t flags) {
  AddNumber32(in, f, "Allocation Hint");
  AddNumber16(in, f, "Context ID");
  if (type == kRequest) {
    const Field operation = Take16(f);
    AddLine(in, operation, "Operation Number: %u", operation.value);
    AppendToParent(in, operation, ", Operation %u", operation.value);
    if (flags & kHasObject) AddUuid(in, f, "Object");
  } else {
    AddNumber8(in, f, "Cancel Count");
    AddNumber8(in, f, "Reserved");
  }
  if (type == kFault) {
    const Field status = Take32(f);
    AddLine(in, status, "Status: 0x%.08X", status.value);
    AddNumber32(in, f, "Reserved");
  }
  AddBlock(in, Rest(f.body), "Stub Data");
}

// The verifier behind the body. Its padding belongs to the body and stays there.
void AddVerifier(const Place& at, Fragment& f) {
  const Place in = Under(at, AddLine(at, Ahead(f.body, Left(f.body)), "Authentication"));
  const Field type = TakeU8(f.body);
  AddLine(in, type, "Authentication Type: [%u] = %s", type.value, LookupName(kAuthTypes, type.value, kUndefined));
  const Field level = TakeU8(f.body);
  AddLine(in, level, "Authentication Level: [%u] = %s", level.value, LookupName(kAuthLevels, level.value, kUndefined));
  AddNumber8(in, f, "Pad Length");
  AddNumber8(in, f, "Reserved");
  AddNumber32(in, f, "Context ID");
  AddBlock(in, Rest(f.body), "Authentication Value");
}

void AddBody(const Place& in, Fragment& f, const Cursor& whole, uint32_t type, uint32_t flags) {
  switch (type) {
    case kRequest:
    case kResponse:
    case kFault: AddCall(in, f, type, flags); break;
    case kBind:
    case kAlterContext: AddBind(in, f); break;
    case kBindAck:
    case kAlterContextResponse: AddBindAck(in, f, whole); break;
    case kBindNak: AddBindNak(in, f); break;
    case kAuth3: {
      const Field pad = TakeBytes(f.body, 4);
      AddLine(in, pad, "Pad: %s", HexText(pad));
      break;
    }
    default: break;
  }
  AddBlock(in, Rest(f.body), "Body Data");
}

// Strict, for payloads come here by a guess too: the data form's last two bytes are 0, the parts fit the fragment, and
// where a rare form is named the payload holds all of it.
bool StartsFragment(const Cursor& c) {
  if (Left(c) < kHeaderSize) return false;
  const uint8_t* b = c.at;
  const bool isLittle = (b[4] & kLittleEndian) != 0;
  const uint32_t length = isLittle ? ReadLittleU16(b + 8) : ReadU16(b + 8);
  const uint32_t authLength = isLittle ? ReadLittleU16(b + 10) : ReadU16(b + 10);
  const uint32_t needed = kHeaderSize + (authLength > 0 ? kAuthHeaderSize + authLength : 0);
  const bool knownForm = (b[4] & 0xEE) == 0 && b[5] <= 3 && b[6] == 0 && b[7] == 0;
  const bool isUsual = (b[4] & 0x0F) == 0 && b[5] == 0;
  const bool fits = length >= needed && (isUsual || length <= static_cast<uint32_t>(Left(c)));
  return b[0] == 5 && b[1] <= 1 && b[2] <= kLastType && knownForm && fits;
}

// The header's fields; the body's cursor and its authentication are left to the caller.
void AddHeader(const Place& in, Fragment& f) {
  AddNumber8(in, f, "Version");
  AddNumber8(in, f, "Minor Version");
  const Field type = TakeU8(f.body);
  AddLine(in, type, "Type: [%u] = %s", type.value, LookupName(kTypeNames, type.value, kUndefined));
  const Field flags = TakeU8(f.body);
  const Place bits = Under(in, AddLine(in, flags, "Flags: 0x%.02X", flags.value));
  for (int32_t i = 0; i < 8; ++i) {
    const BitPicture bit = BitsOf(flags, 7 - i, 1);
    AddBitLine(bits, flags, "%s: %s = %s", bit.picture, kFlagNames[i], TrueOrFalse(bit.value));
  }
  const Field form = TakeBytes(f.body, 4);
  AddLine(in, form, "Data Form: %s, %s, %s", f.isLittle ? "Little-Endian" : "Big-Endian",
          LookupName(kCharacterNames, form.bytes[0] & 15, kUndefined), LookupName(kFloatNames, form.bytes[1], kUndefined));
  AddNumber16(in, f, "Fragment Length");
  AddNumber16(in, f, "Authentication Length");
  AddNumber32(in, f, "Call ID");
}

}  // namespace

int32_t DecodeDceRpc(const Place& at, Cursor c) {
  if (!StartsFragment(c)) return 0;
  for (Loop loop; MoreAt(at, c, loop) && StartsFragment(c);) {
    const bool isLittle = (c.at[4] & kLittleEndian) != 0;
    const uint8_t* header = c.at;
    const int32_t length = static_cast<int32_t>(isLittle ? ReadLittleU16(header + 8) : ReadU16(header + 8));
    const int32_t authLength = static_cast<int32_t>(isLittle ? ReadLittleU16(header + 10) : ReadU16(header + 10));
    const uint32_t type = header[2], flags = header[3];
    Fragment f{TakeCursor(c, length), isLittle};
    const Cursor whole = f.body;
    const Place in = Under(at, AddLine(at, Ahead(whole, whole.left), "MSRPC: %s", LookupName(kTypeNames, type, kUndefined)));
    AddHeader(in, f);

    const int32_t verifier = authLength > 0 ? authLength + kAuthHeaderSize : 0;
    const bool isWhole = whole.left == length && verifier <= Left(f.body);
    Fragment body{TakeCursor(f.body, isWhole ? Left(f.body) - verifier : Left(f.body)), isLittle};
    AddBody(in, body, whole, type, flags);
    if (Left(f.body) > 0) AddVerifier(in, f);
  }
  AddRawRest(at, c, "MSRPC Continuation Data");
  return 1;
}

}  // namespace qxview
