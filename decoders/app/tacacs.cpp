// TACACS (RFC 1492) over UDP and TACACS+ (RFC 8907) over TCP: who may log in on a device, and what may be done there?
//
//   TACACS    version (1)   type (1)   nonce (2)   user length, or response (1)   password length, or reason (1)
//             of version 128 numbers of the connection; user name, password
//   TACACS+   version (1)   type (1)   sequence (1)   flags (1)   session (4)   length (4)   body
//
// The body of TACACS+ is obfuscated with a shared secret where its flags do not say otherwise.
#include <cstring>

#include "core/crypto.h"
#include "core/rows.h"

namespace qxview {
namespace {

// --- TACACS ---

constexpr auto kVersionNames = SortedNames({{0, "Simple"}, {128, "Extended"}});
constexpr auto kRequestNames = SortedNames({
    {1, "LOGIN"}, {2, "RESPONSE"}, {3, "CHANGE"}, {4, "FOLLOW"}, {5, "CONNECT"}, {6, "SUPERUSER"}, {7, "LOGOUT"},
    {8, "RELOAD"}, {9, "SLIPON"}, {10, "SLIPOFF"}, {11, "SLIPADDR"}});
constexpr auto kResponseNames = SortedNames({{0, "This Packet Is Not a Response"}, {1, "Accepted"}, {2, "Rejected"}});
constexpr auto kReasonNames = SortedNames({
    {0, "None"}, {1, "Expiring"}, {2, "Password"}, {3, "Denied"}, {4, "Quit"}, {5, "Idle"}, {6, "Drop"}, {7, "Bad"}});

struct Tacacs {
  Field version, type, userLength, passwordLength;
};
constexpr auto kTacacsHeader = Rows<Tacacs>({
    Number(1, "Version", kVersionNames).Into(&Tacacs::version), Number(1, "Type", kRequestNames).Into(&Tacacs::type),
    Hex(2, "Nonce")});
constexpr auto kRequestLengths = Rows<Tacacs>({
    Number(1, "User Name Length").Into(&Tacacs::userLength),
    Number(1, "Password Length").Into(&Tacacs::passwordLength)});
constexpr auto kAnswer = Rows<Tacacs>({
    Number(1, "Response", kResponseNames).Note(", %s"), Number(1, "Reason", kReasonNames)});
constexpr auto kConnection = Rows<Tacacs>({
    Hex(4, "Result 1"), IPv4("Destination Address"), Number(2, "Destination Port"), Number(2, "Line"),
    Hex(4, "Result 2"), Hex(2, "Result 3")});
constexpr auto kNames = Rows<Tacacs>({
    Text(0, "User Name").Note(", User %s").SizedBy(&Tacacs::userLength),
    Text(0, "Password").SizedBy(&Tacacs::passwordLength)});

// --- TACACS+ ---

constexpr uint32_t kAuthentication = 1, kAuthorization = 2, kAccounting = 3;
constexpr uint32_t kUnencrypted = 0x01;
constexpr int32_t kHeaderSize = 12;

constexpr auto kTypeNames = SortedNames({{1, "Authentication"}, {2, "Authorization"}, {3, "Accounting"}});
constexpr auto kFlagNames = SortedNames({{0x01, "Unencrypted"}, {0x04, "Single Connection"}});
constexpr auto kActionNames = SortedNames({{1, "LOGIN"}, {2, "CHPASS"}, {4, "SENDAUTH"}});
constexpr auto kAuthenticationNames = SortedNames({
    {0, "NOT_SET"}, {1, "ASCII"}, {2, "PAP"}, {3, "CHAP"}, {4, "ARAP"}, {5, "MSCHAP"}, {6, "MSCHAPV2"}});
constexpr auto kServiceNames = SortedNames({
    {0, "NONE"}, {1, "LOGIN"}, {2, "ENABLE"}, {3, "PPP"}, {4, "ARAP"}, {5, "PT"}, {6, "RCMD"}, {7, "X25"}, {8, "NASI"},
    {9, "FWPROXY"}});
constexpr auto kMethodNames = SortedNames({
    {0, "NOT_SET"}, {1, "NONE"}, {2, "KRB5"}, {3, "LINE"}, {4, "ENABLE"}, {5, "LOCAL"}, {6, "TACACSPLUS"}, {8, "GUEST"},
    {0x10, "RADIUS"}, {0x11, "KRB4"}, {0x20, "RCMD"}});
constexpr auto kReplyNames = SortedNames({
    {1, "PASS"}, {2, "FAIL"}, {3, "GETDATA"}, {4, "GETUSER"}, {5, "GETPASS"}, {6, "RESTART"}, {7, "ERROR"},
    {0x21, "FOLLOW"}});
constexpr auto kPermissionNames = SortedNames({
    {1, "PASS_ADD"}, {2, "PASS_REPL"}, {0x10, "FAIL"}, {0x11, "ERROR"}, {0x21, "FOLLOW"}});
constexpr auto kRecordNames = SortedNames({{1, "SUCCESS"}, {2, "ERROR"}, {0x21, "FOLLOW"}});
constexpr auto kReplyFlags = SortedNames({{0x01, "NOECHO"}});
constexpr auto kContinueFlags = SortedNames({{0x01, "ABORT"}});
constexpr auto kAccountingFlags = SortedNames({{0x02, "START"}, {0x04, "STOP"}, {0x08, "WATCHDOG"}});

struct TacacsPlus {
  Field type, sequence, flags, session, length;
  Field authentication, userLength, portLength, addressLength, dataLength, messageLength, argumentCount;
};
constexpr auto kHeader = Rows<TacacsPlus>({
    Word(1), Bits(0, 4, "Major Version"), Bits(4, 4, "Minor Version"),
    Number(1, "Type", kTypeNames).Into(&TacacsPlus::type), Number(1, "Sequence Number").Into(&TacacsPlus::sequence),
    Flags(1, "Flags", kFlagNames).Into(&TacacsPlus::flags), Hex(4, "Session ID").Into(&TacacsPlus::session),
    Number(4, "Length").Into(&TacacsPlus::length)});
constexpr auto kStart = Rows<TacacsPlus>({Number(1, "Action", kActionNames)});
constexpr auto kMethod = Rows<TacacsPlus>({Number(1, "Authentication Method", kMethodNames)});
constexpr auto kRecordFlags = Rows<TacacsPlus>({Flags(1, "Flags", kAccountingFlags)});
constexpr auto kWho = Rows<TacacsPlus>({
    Number(1, "Privilege Level"),
    Number(1, "Authentication Type", kAuthenticationNames).Into(&TacacsPlus::authentication),
    Number(1, "Authentication Service", kServiceNames), Number(1, "User Length").Into(&TacacsPlus::userLength),
    Number(1, "Port Length").Into(&TacacsPlus::portLength),
    Number(1, "Remote Address Length").Into(&TacacsPlus::addressLength)});
constexpr auto kDataLength1 = Rows<TacacsPlus>({Number(1, "Data Length").Into(&TacacsPlus::dataLength)});
constexpr auto kArgumentCount = Rows<TacacsPlus>({Number(1, "Argument Count").Into(&TacacsPlus::argumentCount)});
constexpr auto kUser = Rows<TacacsPlus>({
    Utf8(0, "User").SizedBy(&TacacsPlus::userLength), Utf8(0, "Port").SizedBy(&TacacsPlus::portLength),
    Utf8(0, "Remote Address").SizedBy(&TacacsPlus::addressLength)});
constexpr auto kReply = Rows<TacacsPlus>({Number(1, "Status", kReplyNames), Flags(1, "Flags", kReplyFlags)});
constexpr auto kPermission = Rows<TacacsPlus>({
    Number(1, "Status", kPermissionNames), Number(1, "Argument Count").Into(&TacacsPlus::argumentCount)});
constexpr auto kRecordStatus = Rows<TacacsPlus>({Number(1, "Status", kRecordNames)});
constexpr auto kMessageLengths = Rows<TacacsPlus>({
    Number(2, "Server Message Length").Into(&TacacsPlus::messageLength),
    Number(2, "Data Length").Into(&TacacsPlus::dataLength)});
constexpr auto kMessage = Rows<TacacsPlus>({
    Utf8(0, "Server Message").SizedBy(&TacacsPlus::messageLength), Utf8(0, "Data").SizedBy(&TacacsPlus::dataLength)});
constexpr auto kContinueLengths = Rows<TacacsPlus>({
    Number(2, "User Message Length").Into(&TacacsPlus::messageLength),
    Number(2, "Data Length").Into(&TacacsPlus::dataLength), Flags(1, "Flags", kContinueFlags)});
constexpr auto kContinue = Rows<TacacsPlus>({
    Utf8(0, "User Message").SizedBy(&TacacsPlus::messageLength), Utf8(0, "Data").SizedBy(&TacacsPlus::dataLength)});
constexpr auto kPassword = Rows<NoValues>({Utf8(0, "Password")});
constexpr auto kChapIdentifier = Rows<NoValues>({Number(1, "Identifier")});
constexpr auto kChapChallenge = Rows<NoValues>({Bytes(0, "Challenge")});
constexpr auto kChapResponse = Rows<NoValues>({Bytes(0, "Response")});

// A row that is sized by a length of 0 would take all that is left.
template <size_t kRows>
void ShowSized(const Place& in, Cursor& c, const RowTable<TacacsPlus, kRows>& table, TacacsPlus& body) {
  for (const Row<TacacsPlus>& row : table.rows) {
    if (row.sizedBy && (body.*row.sizedBy).value == 0) continue;
    ShowRows<TacacsPlus>(in, c, RowTable<TacacsPlus, 1>{{row}}, body);
  }
}

// Argument lengths stand in front of the texts that the arguments are behind.
void ShowArgumentLengths(const Place& in, const Field& lengths) {
  for (int32_t i = 0; i < lengths.length; ++i) {
    AddLine(in, Slice(lengths, i, 1), "Argument %d Length: %u", i + 1, uint32_t{PeekU8(lengths, i)});
  }
}
void ShowArguments(const Place& in, Cursor& c, const Field& lengths) {
  for (int32_t i = 0; i < lengths.length; ++i) {
    const Field argument = TakeBytes(c, PeekU8(lengths, i));
    AddLine(in, argument, "Argument %d: %s", i + 1, Text(argument));
  }
}

// What a start brings to be checked: a password, or identifier, challenge and response of CHAP.
void ShowProof(const Place& in, Cursor& c, const TacacsPlus& body) {
  constexpr uint32_t kPap = 2, kChap = 3, kMschap2 = 6;
  constexpr int32_t kChapResponseSize = 16, kMschapResponseSize = 49;
  Cursor data = TakeCursor(c, body.dataLength.value);
  NoValues none;
  const uint32_t type = body.authentication.value;
  if (Left(data) < 1) return;
  if (type <= kPap) return ShowRows<NoValues>(in, data, kPassword, none);
  if (type > kMschap2) return AddBlock(in, Rest(data), "Data"), void();
  const int32_t response = type == kChap ? kChapResponseSize : kMschapResponseSize;
  ShowRows<NoValues>(in, data, kChapIdentifier, none);
  Cursor challenge = TakeCursor(data, Left(data) - response);
  if (Left(challenge) > 0) ShowRows<NoValues>(in, challenge, kChapChallenge, none);
  if (Left(data) > 0) ShowRows<NoValues>(in, data, kChapResponse, none);
}

void ShowAuthentication(const Place& in, Cursor& c, TacacsPlus& body) {
  if (body.sequence.value % 2 == 0) {
    ShowRows<TacacsPlus>(in, c, kReply, body);
    ShowRows<TacacsPlus>(in, c, kMessageLengths, body);
    ShowSized(in, c, kMessage, body);
  } else if (body.sequence.value == 1) {
    ShowRows<TacacsPlus>(in, c, kStart, body);
    ShowRows<TacacsPlus>(in, c, kWho, body);
    ShowRows<TacacsPlus>(in, c, kDataLength1, body);
    ShowSized(in, c, kUser, body);
    ShowProof(in, c, body);
  } else {
    ShowRows<TacacsPlus>(in, c, kContinueLengths, body);
    ShowSized(in, c, kContinue, body);
  }
}

void ShowRequest(const Place& in, Cursor& c, TacacsPlus& body) {
  ShowRows<TacacsPlus>(in, c, kMethod, body);
  ShowRows<TacacsPlus>(in, c, kWho, body);
  ShowRows<TacacsPlus>(in, c, kArgumentCount, body);
  const Field lengths = TakeBytes(c, body.argumentCount.value);
  ShowArgumentLengths(in, lengths);
  ShowSized(in, c, kUser, body);
  ShowArguments(in, c, lengths);
}

void ShowAuthorization(const Place& in, Cursor& c, TacacsPlus& body) {
  if (body.sequence.value % 2 == 1) return ShowRequest(in, c, body);
  ShowRows<TacacsPlus>(in, c, kPermission, body);
  ShowRows<TacacsPlus>(in, c, kMessageLengths, body);
  const Field lengths = TakeBytes(c, body.argumentCount.value);
  ShowArgumentLengths(in, lengths);
  ShowSized(in, c, kMessage, body);
  ShowArguments(in, c, lengths);
}

void ShowAccounting(const Place& in, Cursor& c, TacacsPlus& body) {
  if (body.sequence.value % 2 == 1) {
    ShowRows<TacacsPlus>(in, c, kRecordFlags, body);
    return ShowRequest(in, c, body);
  }
  ShowRows<TacacsPlus>(in, c, kMessageLengths, body);
  ShowRows<TacacsPlus>(in, c, kRecordStatus, body);
  ShowSized(in, c, kMessage, body);
}

void ShowBody(const Place& in, Cursor& c, TacacsPlus& body) {
  switch (body.type.value) {
    case kAuthentication: ShowAuthentication(in, c, body); break;
    case kAuthorization: ShowAuthorization(in, c, body); break;
    case kAccounting: ShowAccounting(in, c, body); break;
    default: break;
  }
  c.ranShort = false;   // what is left of a body that is cut
  AddBlock(in, Rest(c), "Data");
}

// Whether the lengths in a body that was opened add up to it: with the wrong secret they do not.
bool FitsBody(const Cursor& c, const TacacsPlus& body) {
  const bool isRequest = body.sequence.value % 2 == 1;
  const auto sum = [&](int32_t from, int32_t count) {
    int64_t total = 0;
    for (int32_t i = 0; i < count; ++i) total += PeekU8(c, from + i);
    return total;
  };
  int64_t wanted;
  if (body.type.value == kAuthentication && isRequest && body.sequence.value > 1) {
    wanted = 5 + PeekU16(c) + PeekU16(c, 2);
  } else if (body.type.value == kAuthentication) {
    wanted = isRequest ? 8 + sum(4, 4) : 6 + PeekU16(c, 2) + PeekU16(c, 4);
  } else if (isRequest) {
    const int32_t lengthsAt = body.type.value == kAccounting ? 9 : 8;
    const int32_t count = static_cast<int32_t>(PeekU8(c, lengthsAt - 1));
    wanted = lengthsAt + count + sum(lengthsAt - 4, 3) + sum(lengthsAt, count);
  } else if (body.type.value == kAuthorization) {
    const int32_t count = static_cast<int32_t>(PeekU8(c, 1));
    wanted = 6 + count + PeekU16(c, 2) + PeekU16(c, 4) + sum(6, count);
  } else {
    wanted = 5 + PeekU16(c) + PeekU16(c, 2);
  }
  return wanted == Left(c);
}

// The body is hidden by digests over the header's numbers and the secret, each over the one before it, too (RFC 8907,
// section 4.5).
void ShowHidden(const Place& in, const Field& hidden, const Field& version, TacacsPlus& body) {
  AddLine(in, hidden, "Encrypted Body: %s", HexText(hidden));
  const char* text = in.view->engine->settings.tacacsSecret;
  const ByteSpan secret = {reinterpret_cast<const uint8_t*>(text), static_cast<int32_t>(std::strlen(text))};
  if (secret.length == 0 || hidden.length < 1) return;
  const OpenedBytes opened(in.view, hidden.length);
  if (!opened.data) return;
  uint8_t pad[kMd5Size];
  for (int32_t at = 0; at < hidden.length; ++at) {
    if (at % kMd5Size == 0) {
      HashOf(in.view, HashKind::kMd5, {BytesOf(body.session), secret, BytesOf(version), BytesOf(body.sequence),
                                       ByteSpan{pad, at ? kMd5Size : 0}}, pad);
    }
    opened.data[at] = static_cast<uint8_t>(PeekU8(hidden, at) ^ pad[at % kMd5Size]);
  }
  Cursor c = MakeCursor(opened.data, hidden.offset, hidden.length);
  if (hidden.length == static_cast<int32_t>(body.length.value) && !FitsBody(c, body)) {
    return AddLine(in, hidden, "Body: Not Decrypted (Wrong Secret)"), void();
  }
  const DerivedLines derived(in.view);
  ShowBody(in, c, body);
}

void ShowPacket(const Place& at, Cursor& c) {
  const TacacsPlus ahead = PeekRows(c, kHeader);
  const char* kind = ahead.sequence.value % 2 == 1 ? "Request" : "Reply";
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "TACACS+: %s %s, Session 0x%.08X, Sequence %u",
                                     LookupName(kTypeNames, ahead.type.value), kind, ahead.session.value,
                                     ahead.sequence.value));
  const int32_t start = c.offset;
  const Field version = PeekBytes(c, 0, 1);
  TacacsPlus body = ShowRows(in, c, kHeader);
  Cursor carried = TakeCursor(c, body.length.value);
  if (!in.dead) SetRange(in, in.parent, start, c.offset - start);
  if (body.flags.value & kUnencrypted) {
    ShowBody(in, carried, body);
  } else {
    ShowHidden(in, Rest(carried), version, body);
  }
}

}  // namespace

int32_t DecodeTacacs(const Place& at, Cursor c) {
  constexpr int32_t kLeast = 6;
  constexpr uint32_t kResponse = 2, kExtended = 128;
  const Tacacs ahead = PeekRows(c, kTacacsHeader);
  if (Left(c) < kLeast || (ahead.version.value != 0 && ahead.version.value != kExtended)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "TACACS: %s", LookupName(kRequestNames, ahead.type.value)));
  Tacacs tacacs = ShowRows(in, c, kTacacsHeader);
  const bool isResponse = ahead.type.value == kResponse, isExtended = ahead.version.value == kExtended;
  // The extended form has fields for both; the simple one takes the same two octets for either.
  if (!isResponse || isExtended) ShowRows<Tacacs>(in, c, kRequestLengths, tacacs);
  if (isResponse || isExtended) ShowRows<Tacacs>(in, c, kAnswer, tacacs);
  if (isExtended) ShowRows<Tacacs>(in, c, kConnection, tacacs);
  if (tacacs.userLength.value > 0 && Left(c) > 0) ShowRows<Tacacs>(in, c, kNames, tacacs);
  c.ranShort = false;
  AddBlock(in, Rest(c), "Data");
  return 1;
}

int32_t DecodeTacacsPlus(const Place& at, Cursor c) {
  constexpr uint32_t kMajorVersion = 0xC;
  if (Left(c) < kHeaderSize || PeekU8(c) >> 4 != kMajorVersion) return 0;
  Loop loop;
  while (Left(c) >= kHeaderSize && PeekU8(c) >> 4 == kMajorVersion && MoreAt(at, c, loop)) ShowPacket(at, c);
  AddRawRest(at, c, "TACACS+ Data");
  return 1;
}

}  // namespace qxview
