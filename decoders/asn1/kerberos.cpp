#include "decoders/asn1/kerberos.h"

#include "core/line_facts.h"
#include "decoders/asn1/kerberos_names.h"
#include "decoders/asn1/kerberos_types.h"

namespace qxview {
namespace {

constexpr int32_t kDeepestBase = 2;   // all depths of a message still have an image of their own
constexpr uint32_t kTcp = 6;
constexpr int32_t kPasswordHeaderSize = 6;
constexpr const char* kContinuationTitle = "Kerberos Continuation Data";

enum Application : uint32_t {
  kTicket = 0x61, kAsRequest = 0x6A, kAsReply = 0x6B, kTgsRequest = 0x6C, kTgsReply = 0x6D, kApRequest = 0x6E,
  kApReply = 0x6F, kPriv = 0x75, kCred = 0x76, kError = 0x7E,
};

// The messages of a payload.
struct Payload {
  Place at;         // of top lines
  BerWalk walk;
  Cursor c;         // behind the last message
};

// Whether a message stands at the cursor: an identifier of one, a length, and a SEQUENCE as far as that is there.
bool StartsMessage(Cursor c) {
  const BerElement message = TakeBer(c);
  if (!message.here || !FindKrbMessage(message.identifier)) return false;
  return Left(message.contents) < 1 || PeekU8(message.contents) == kAsnSequence;
}

bool StartsPassword(Cursor c) {
  constexpr uint32_t kChange = 1, kSet = 0xFF80;
  const Field length = TakeU16(c), version = TakeU16(c), ticket = TakeU16(c);
  if (!ticket.here || (version.value != kChange && version.value != kSet)) return false;
  if (length.value < kPasswordHeaderSize + ticket.value || !StartsMessage(c)) return false;
  const uint32_t message = PeekU8(c);
  return message == (ticket.value == 0 ? kError : kApRequest) || (ticket.value > 0 && message == kApReply);
}

// What the top line tells of a message: error, client and server.
struct Parties {
  Cursor client, server;
  TextSlice clientRealm, serverRealm;
};

Cursor PrincipalAt(const Cursor& fields, uint32_t tag) {
  return TakeBerContents(KrbFieldOf(fields, tag), kAsnSequence);
}

void FindTicketServer(const Cursor& ticket, Parties& parties) {
  const Cursor fields = TakeBerContents(TakeBerContents(ticket, kTicket), kAsnSequence);
  parties.server = PrincipalAt(fields, 2);
  parties.serverRealm = KrbTextOf(fields, 1);
}

Parties FindParties(uint32_t message, const Cursor& fields) {
  Parties parties{};
  switch (message) {
    case kAsRequest:
    case kTgsRequest: {
      const Cursor body = PrincipalAt(fields, 4);
      parties.client = PrincipalAt(body, 1);
      parties.server = PrincipalAt(body, 3);
      parties.clientRealm = parties.serverRealm = KrbTextOf(body, 2);
      break;
    }
    case kAsReply:
    case kTgsReply:
      parties.client = PrincipalAt(fields, 4);
      parties.clientRealm = KrbTextOf(fields, 3);
      FindTicketServer(KrbFieldOf(fields, 5), parties);
      break;
    case kApRequest: FindTicketServer(KrbFieldOf(fields, 3), parties); break;
    case kCred: FindTicketServer(PrincipalAt(fields, 2), parties); break;
    case kError:
      parties.client = PrincipalAt(fields, 8);
      parties.clientRealm = KrbTextOf(fields, 7);
      parties.server = PrincipalAt(fields, 10);
      parties.serverRealm = KrbTextOf(fields, 9);
      break;
    default: break;
  }
  return parties;
}

void AppendPrincipal(char* out, int32_t outSize, const char* label, const Cursor& name, const TextSlice& realm) {
  char text[kShortLineSize];
  text[0] = 0;
  DescribePrincipal(name, text, sizeof text);
  if (!text[0]) return;
  AppendFormat(out, outSize, ", %s=%s", label, static_cast<const char*>(text));
  if (realm.length > 0) AppendFormat(out, outSize, "@%s", realm);
}

void DescribeMessage(const BerType& message, const Cursor& c, char* out, int32_t outSize) {
  const Cursor fields = TakeBerContents(TakeBerContents(c, message.identifier), kAsnSequence);
  FormatInto(out, outSize, "%s", message.label);
  if (message.identifier == kError && Left(KrbFieldOf(fields, 6)) > 0) {
    AppendFormat(out, outSize, ", %s", LookupName(kKrbErrorNames, KrbCodeOf(fields, 6), kUndefined));
  }
  const Parties parties = FindParties(message.identifier, fields);
  AppendPrincipal(out, outSize, "Client", parties.client, parties.clientRealm);
  AppendPrincipal(out, outSize, "Server", parties.server, parties.serverRealm);
}

Place TopOf(const Payload& payload) {
  Place top = payload.at;
  if (top.level > kDeepestBase) top.level = kDeepestBase;
  return top;
}

// The message at the cursor, which was seen to start one; the record mark in front of it may be none.
void ShowMessage(Payload& payload, const Field& mark) {
  const BerElement span = TakeBer(payload.c);
  const BerType& message = *FindKrbMessage(span.identifier);
  const Place top = TopOf(payload);
  const int32_t start = mark.here ? mark.offset : span.whole.offset;
  LineHandle line;
  {
    char text[kLineSize];
    DescribeMessage(message, span.whole, text, sizeof text);
    line = AddLine(top, Stated(start, payload.c.offset - start), "Kerberos: %s", static_cast<const char*>(text));
  }
  const Place in = Beneath(top, line);
  AddLine(in, mark, "Message Length: %u Bytes", mark.value);
  BerWalk& walk = payload.walk;
  --walk.elementsLeft;
  walk.context &= kKrbPassword;
  if (message.identifier == kAsReply || message.identifier == kTgsReply || message.identifier == kError) {
    walk.context |= kKrbReply;
  }
  ShowBerElement(walk, in, span.whole, message);
}

void DescribePassword(const Cursor& c, char* out, int32_t outSize) {
  constexpr uint32_t kSet = 0xFF80;
  const bool isRequest = PeekU8(c, kPasswordHeaderSize) == kApRequest;
  FormatInto(out, outSize, "%s Password %s", PeekU16(c, 2) == kSet ? "Set" : "Change",
             isRequest ? "Request" : "Reply");
}

// A change-password message: its header, and the messages that it holds under top lines of their own.
void ShowPassword(Payload& payload, const Field& mark) {
  Cursor& c = payload.c;
  const int32_t start = mark.here ? mark.offset : c.offset;
  const Place top = TopOf(payload);
  char title[kAsnShortTextSize];
  DescribePassword(c, title, sizeof title);
  const int32_t end = c.offset + kPasswordHeaderSize;
  const Field length = TakeU16(c), version = TakeU16(c), ticket = TakeU16(c);
  const Place in = Under(top, AddLine(top, Stated(start, end - start), "Kerberos: %s",
                                      static_cast<const char*>(title)));
  AddLine(in, mark, "Record Length: %u Bytes", mark.value);
  AddLine(in, length, "Message Length: %u Bytes", length.value);
  AddLine(in, version, "Protocol Version: 0x%.04X", version.value);
  AddLine(in, ticket, "%s Length: %u Bytes", StartsMessage(c) && PeekU8(c) == kApRequest ? "AP-REQ" : "AP-REP",
          ticket.value);
  const int32_t bodySize = static_cast<int32_t>(length.value) - kPasswordHeaderSize;
  if (Left(c) < bodySize) payload.walk.isCut = true;

  payload.walk.context |= kKrbPassword;
  const Field none{};
  const Cursor body = TakeCursor(c, bodySize);
  const Cursor behind = c;
  c = body;
  while (StartsMessage(c) && payload.walk.elementsLeft > 0) ShowMessage(payload, none);
  AddRawRest(payload.at, c, "Kerberos Data");
  c = behind;
  payload.walk.context &= ~uint32_t{kKrbPassword};
}

// What stands at the cursor; false when it is neither.
bool ShowNext(Payload& payload, const Field& mark) {
  const bool isPassword = StartsPassword(payload.c);
  if (!isPassword && !StartsMessage(payload.c)) return false;
  if (isPassword) {
    ShowPassword(payload, mark);
  } else {
    ShowMessage(payload, mark);
  }
  return true;
}

// A record mark whose message begins behind it: lengths of a stream that is met in its middle do not agree like this.
bool StartsRecord(Cursor c) {
  constexpr uint32_t kMostWithoutMessage = 1 << 16;   // a segment may end behind the mark
  const Field mark = TakeU32(c);
  if (!mark.here) return false;
  if (Left(c) < 1) return mark.value > 0 && mark.value < kMostWithoutMessage;
  if (StartsMessage(c)) return PeekBer(c).size == int64_t{mark.value};
  return StartsPassword(c) && PeekU16(c) == mark.value;
}

void ShowSegment(Payload& payload) {
  Cursor& c = payload.c;
  Loop loop;
  while (MoreAt(payload.at, c, loop) && payload.walk.elementsLeft > 0 && StartsRecord(c)) {
    const Field mark = TakeU32(c);
    if (Left(c) < 1) {
      const Place in = Under(payload.at, AddLine(payload.at, mark, "Kerberos: Record Mark"));
      AddLine(in, mark, "Message Length: %u Bytes", mark.value);
      payload.walk.isCut = true;
      return;
    }
    const int32_t end = c.offset + static_cast<int32_t>(mark.value);
    ShowNext(payload, mark);
    if (c.offset < end && Left(c) < 1) payload.walk.isCut = true;
  }
  // The mark came in a segment of its own.
  if (Taken(c) == 0 && StartsMessage(c) && PeekBer(c).size == Left(c)) ShowMessage(payload, Field{});
  AddRawRest(payload.at, c, kContinuationTitle);
}

}  // namespace

int32_t DecodeKerberosMessage(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "kerberos");
  if (!StartsMessage(c)) return 0;
  Payload payload{at, {&kKrbTitles, kMostKrbElements}, c};
  ShowMessage(payload, Field{});
  return payload.walk.isCut ? kAsnTruncated : kAsnDecoded;
}

int32_t DecodeKerberos(const Place& at, Cursor c) {
  Payload payload{at, {&kKrbTitles, kMostKrbElements}, c};
  if (PacketOf(at).ipProtocol == kTcp) {
    ShowSegment(payload);
  } else {
    if (!ShowNext(payload, Field{})) return 0;
    AddRawRest(at, payload.c, "Kerberos Data");
  }
  return payload.walk.isCut ? kAsnTruncated : kAsnDecoded;
}

void DescribeKerberosPayload(Cursor c, bool isTcp, char* out, int32_t outSize) {
  FormatInto(out, outSize, "Data");
  if (isTcp && StartsRecord(c)) TakeU32(c);
  if (StartsPassword(c)) {
    DescribePassword(c, out, outSize);
  } else if (StartsMessage(c)) {
    DescribeMessage(*FindKrbMessage(PeekU8(c)), c, out, outSize);
  }
}

}  // namespace qxview
