// Connection-oriented remote procedure calls (C706 chapter 12), over TCP and on named pipes: one fragment after the other.
//
//   0        1      2     3      4           8                10           12
//   version  minor  type  flags  data form   fragment length  auth length  call ID   body ...  [authentication]
//
// The data form says whether numbers are little-endian. What the call's parameters are is the interface's matter: they
// stay a dump, "Stub Data".
#include "core/rows.h"
#include "decoders/common/guid.h"
#include "decoders/smb/ntlmssp.h"
#include "decoders/smb/spnego.h"

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

// The rows of every part are in the byte order that the fragment names.
void ShowDataForm(const Place& in, const Field& form, const char* label) {
  const uint32_t first = PeekU8(form);
  AddLine(in, form, "%s: %s, %s, %s", label, first & kLittleEndian ? "Little-Endian" : "Big-Endian",
          LookupName(kCharacterNames, first & 15, kUndefined), LookupName(kFloatNames, PeekU8(form, 1), kUndefined));
}

struct Header {
  Field version, minor, type, flags, form, length, authLength;
};
constexpr auto kHeader = Rows<Header>({
    Number(1, "Version").Into(&Header::version), Number(1, "Minor Version").Into(&Header::minor),
    Coded(1, "Type", kTypeNames).Into(&Header::type),
    Hex(1, "Flags").Into(&Header::flags), Flag(7, "First Fragment"), Flag(6, "Last Fragment"), Flag(5, "Cancel Pending"),
    Flag(4, "Reserved"), Flag(3, "Multiplex"), Flag(2, "Did Not Execute"), Flag(1, "Maybe"), Flag(0, "Object UUID"),
    Shown(4, "Data Form", ShowDataForm).Into(&Header::form), Number(2, "Fragment Length").Into(&Header::length),
    Number(2, "Authentication Length").Into(&Header::authLength), Number(4, "Call ID")});

struct List {
  Field count;
};
constexpr auto kVersion = Rows<NoValues>({Number(2, "Version Major"), Number(2, "Version Minor")});
constexpr auto kAssociation = Rows<NoValues>({
    Number(2, "Max Transmit Fragment"), Number(2, "Max Receive Fragment"), Hex(4, "Association Group")});
constexpr auto kContexts = Rows<List>({Number(1, "Number Of Contexts").Into(&List::count), Bytes(3, "Reserved")});
constexpr auto kContext = Rows<List>({
    Number(2, "Context ID"), Number(1, "Number Of Transfer Syntaxes").Into(&List::count), Number(1, "Reserved")});
constexpr auto kAddress = Rows<List>({Number(2, "Secondary Address Length").Into(&List::count)});
constexpr auto kResults = Rows<List>({Number(1, "Number Of Results").Into(&List::count), Bytes(3, "Reserved")});
constexpr auto kResult = Rows<NoValues>({Coded(2, "Result", kResultNames), Coded(2, "Reason", kReasonNames)});
constexpr auto kReject = Rows<List>({
    Coded(2, "Reject Reason", kRejectNames), Number(1, "Number Of Versions").Into(&List::count)});

constexpr RowData kHint = Number(4, "Allocation Hint"), kContextId = Number(2, "Context ID"),
                  kCancels = Number(1, "Cancel Count"), kReserved = Number(1, "Reserved");
constexpr auto kRequestRows =
    Rows<NoValues>({kHint, kContextId, Number(2, "Operation Number").Note(", Operation %u")});
constexpr auto kResponseRows = Rows<NoValues>({kHint, kContextId, kCancels, kReserved});
constexpr auto kFaultRows =
    Rows<NoValues>({kHint, kContextId, kCancels, kReserved, Hex(4, "Status"), Number(4, "Reserved")});
constexpr auto kPad = Rows<NoValues>({Bytes(4, "Pad")});
struct Verifier {
  Field type;
};
constexpr auto kVerifier = Rows<Verifier>({
    Coded(1, "Authentication Type", kAuthTypes).Into(&Verifier::type), Coded(1, "Authentication Level", kAuthLevels),
    Number(1, "Pad Length"), kReserved, Number(4, "Context ID")});
constexpr auto kNtlmSignature = LittleRows<NoValues>({
    Number(4, "Signature Version"), Bytes(8, "Checksum"), Number(4, "Sequence Number")});

void AddUuid(const Place& in, Cursor& c, ByteOrder order, const char* label) {
  const Field uuid = TakeBytes(c, kGuidSize);
  const bool isLittle = order == ByteOrder::kLittle;
  const uint32_t first = isLittle ? PeekLittleU32(CursorOver(uuid)) : PeekU32(uuid), last = PeekU8(uuid, kGuidSize - 1);
  const char* name = nullptr;
  for (const Syntax& known : kSyntaxes) {
    if (known.first == first && known.last == last) name = known.name;
  }
  AddLine(in, uuid, "%s: %s%s%s", label, TextOfGuid(uuid, isLittle ? GuidOrder::kLittle : GuidOrder::kBig),
          name ? " = " : "", name ? name : "");
}

void AddSyntax(const Place& in, Cursor& c, ByteOrder order, const char* label) {
  AddUuid(in, c, order, label);
  ShowRows(in, c, kVersion, order);
}

void AddBind(const Place& in, Cursor& c, ByteOrder order) {
  ShowRows(in, c, kAssociation, order);
  const uint32_t contexts = ShowRows(in, c, kContexts).count.value;
  Loop loop;
  for (uint32_t i = 0; i < contexts && MoreAt(in, c, loop); ++i) {
    const int32_t start = c.offset;
    const LineHandle line = AddLine(in, Ahead(c, 0), "Presentation Context");
    const Place under = Under(in, line);
    const uint32_t syntaxes = ShowRows(under, c, kContext, order).count.value;
    AddSyntax(under, c, order, "Abstract Syntax");
    Loop inner;
    for (uint32_t k = 0; k < syntaxes && MoreAt(under, c, inner); ++k) AddSyntax(under, c, order, "Transfer Syntax");
    SetRange(in, line, start, c.offset - start);
  }
}

void AddBindAck(const Place& in, Cursor& c, ByteOrder order, int32_t begin) {
  ShowRows(in, c, kAssociation, order);
  Cursor text = TakeCursor(c, ShowRows(in, c, kAddress, order).count.value);
  const Field address = Rest(text);
  AddLine(in, address, "Secondary Address: %s", Text(address));
  const int32_t beyond = (c.offset - begin) % 4;
  if (beyond != 0 && Left(c) > 4 - beyond) {
    const Field pad = TakeBytes(c, 4 - beyond);
    AddLine(in, pad, "Pad: %s", HexText(pad));
  }
  const uint32_t results = ShowRows(in, c, kResults).count.value;
  Loop loop;
  for (uint32_t i = 0; i < results && MoreAt(in, c, loop); ++i) {
    ShowRows(in, c, kResult, order);
    AddSyntax(in, c, order, "Transfer Syntax");
  }
}

void AddBindNak(const Place& in, Cursor& c, ByteOrder order) {
  const uint32_t versions = ShowRows(in, c, kReject, order).count.value;
  Loop loop;
  for (uint32_t i = 0; i < versions && MoreAt(in, c, loop); ++i) {
    const Field version = TakeBytes(c, 2);
    AddLine(in, version, "Version: %u.%u", PeekU8(version), PeekU8(version, 1));
  }
}

void AddRequest(const Place& in, Cursor& c, ByteOrder order, uint32_t flags) {
  ShowRows(in, c, kRequestRows, order);
  if (flags & kHasObject) AddUuid(in, c, order, "Object");
}

// The tags of SPNEGO's tokens.
bool IsNegotiation(uint32_t tag) { return tag == 0x60 || tag == 0xA0 || tag == 0xA1; }

// The verifier behind the body. Its padding belongs to the body and stays there.
void AddVerifier(const Place& at, Cursor& c, ByteOrder order) {
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Authentication"));
  const Verifier verifier = ShowRows(in, c, kVerifier, order);
  constexpr uint32_t kNegotiate = 9, kNtlm = 10;
  constexpr int32_t kSignatureSize = 16;
  const bool isToken = StartsNtlmssp(c) || (verifier.type.value == kNegotiate && IsNegotiation(PeekU8(c)));
  if (isToken) {
    AddSecurityBlob(in, Rest(c));
  } else if (verifier.type.value == kNtlm && Left(c) == kSignatureSize) {
    ShowRows(in, c, kNtlmSignature);
  } else {
    AddBlock(in, Rest(c), "Authentication Value");
  }
}

void AddBody(const Place& in, Cursor& c, ByteOrder order, const Header& header, int32_t begin) {
  switch (header.type.value) {
    case kRequest: AddRequest(in, c, order, header.flags.value); break;
    case kResponse: ShowRows(in, c, kResponseRows, order); break;
    case kFault: ShowRows(in, c, kFaultRows, order); break;
    case kBind:
    case kAlterContext: AddBind(in, c, order); break;
    case kBindAck:
    case kAlterContextResponse: AddBindAck(in, c, order, begin); break;
    case kBindNak: AddBindNak(in, c, order); break;
    case kAuth3: ShowRows(in, c, kPad); break;
    default: break;
  }
  const uint32_t type = header.type.value;
  const bool isCall = type == kRequest || type == kResponse || type == kFault;
  AddBlock(in, Rest(c), isCall ? "Stub Data" : "Body Data");
}

ByteOrder OrderOf(const Cursor& c) { return PeekU8(c, 4) & kLittleEndian ? ByteOrder::kLittle : ByteOrder::kAsRows; }

// Strict, for payloads come here by a guess too: the data form's last two bytes are 0, the parts fit the fragment, and
// where a rare form is named the payload holds all of it.
bool StartsFragment(const Cursor& c) {
  if (Left(c) < kHeaderSize || PeekU8(c) != 5) return false;
  const Header header = PeekRows(c, kHeader, OrderOf(c));
  const uint32_t length = header.length.value, authLength = header.authLength.value, form = PeekU32(header.form);
  const uint32_t needed = kHeaderSize + (authLength > 0 ? kAuthHeaderSize + authLength : 0);
  const bool knownForm = (form & 0xEE00FFFF) == 0 && PeekU8(header.form, 1) <= 3;
  const bool isUsual = (form & 0x0FFF0000) == 0;
  const bool fits = length >= needed && (isUsual || length <= static_cast<uint32_t>(Left(c)));
  return header.minor.value <= 1 && header.type.value <= kLastType && knownForm && fits;
}

}  // namespace

int32_t DecodeDceRpc(const Place& at, Cursor c) {
  if (!StartsFragment(c)) return 0;
  for (Loop loop; MoreAt(at, c, loop) && StartsFragment(c);) {
    const ByteOrder order = OrderOf(c);
    const Header header = PeekRows(c, kHeader, order);
    Cursor fragment = TakeCursor(c, header.length.value);
    const uint32_t captured = static_cast<uint32_t>(fragment.left);
    const Place in = Under(at, AddLine(at, Ahead(fragment, fragment.left), "MSRPC: %s",
                                       LookupName(kTypeNames, header.type.value, kUndefined)));
    ShowRows(in, fragment, kHeader, order);

    const uint32_t authLength = header.authLength.value;
    const int32_t verifier = authLength > 0 ? static_cast<int32_t>(authLength) + kAuthHeaderSize : 0;
    const bool isWhole = captured == header.length.value && verifier <= Left(fragment);
    Cursor body = TakeCursor(fragment, isWhole ? Left(fragment) - verifier : Left(fragment));
    AddBody(in, body, order, header, fragment.begin);
    if (Left(fragment) > 0) AddVerifier(in, fragment, order);
  }
  AddRawRest(at, c, "MSRPC Continuation Data");
  return 1;
}

}  // namespace qxview
