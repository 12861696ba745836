// Secure Shell (RFC 4250 to 4254): version lines, then packets, which are in clear until each end has sent NEWKEYS.
//
//   version 2   packet length   padding length   message, its code first   padding   [MAC]
//   version 1   length   padding (1 to 8)   type   data   check bytes
//
// Where the cipher leaves the length in clear (encrypt-then-MAC, GCM) the packets behind are still told apart.
#include "decoders/app/ssh.h"

#include "decoders/app/ssh_names.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr uint32_t kNewKeys = 21;
constexpr uint32_t kMostPacket = 256 << 10;
constexpr uint8_t kMacUnknown = 0xFF;

struct Session {
  ConnectionKey key;
  int32_t end;
  bool fromClient;
  SshConnection connection;
};

Session FindSession(const Place& at) {
  constexpr uint16_t kPort = 22;
  const PacketState& packet = PacketOf(at);
  Session session{};
  session.key = ConnectionOf(packet, &session.end);
  if (const SshConnection* known = Recall(at.view, kSshConnections, session.key)) session.connection = *known;
  session.fromClient = packet.destinationPort == kPort ||
                       (packet.sourcePort != kPort && packet.destinationPort < packet.sourcePort);
  return session;
}

// Where the segment stands in its end's bytes: how many belong to a packet that began before. The last one may be looked at
// again. False when that is not known.
bool FindLacking(const Place& at, SshEnd& end, uint32_t& lacking) {
  const TcpSegment& segment = PacketOf(at).segment;
  lacking = 0;
  if (!segment.here) return false;
  const bool isNext = segment.sequence == end.behind;
  if (!isNext && segment.sequence != end.before) return false;
  lacking = isNext ? end.lackingBehind : end.lackingBefore;
  if (!isNext) end.encrypted = end.encryptedBefore;
  return true;
}

void NoteSegment(const Place& at, SshEnd& end, uint32_t before, uint32_t behind) {
  const TcpSegment& segment = PacketOf(at).segment;
  if (!segment.here) return;
  end.before = segment.sequence;
  end.lackingBefore = before;
  end.behind = segment.sequence + static_cast<uint32_t>(segment.length);
  end.lackingBehind = behind;
}

bool StartsVersion(const Cursor& c) { return PeekIs(c, 0, "SSH-"); }

// The line of an end's version, in front of which a server may send others.
void ShowVersion(const Place& at, Cursor& c, SshEnd& end) {
  const int32_t stop = FindU8(c, '\n');
  const Field whole = TakeBytes(c, stop < 0 ? Left(c) : stop + 1);
  int32_t length = whole.length;
  while (length > 0 && (PeekU8(whole, length - 1) == '\n' || PeekU8(whole, length - 1) == '\r')) --length;
  const Field text = Slice(whole, 0, length);
  const Place in = Under(at, AddLine(at, whole, "SSH: Version %s", Text(text)));
  AddLine(in, text, "Protocol: %s", Text(text));
  Cursor words = CursorOver(text);
  TakeBytes(words, 4);
  const int32_t dash = FindU8(words, '-');
  if (dash < 0) return;
  const Field version = TakeBytes(words, dash);
  AddLine(in, version, "Protocol Version: %s", Text(version));
  TakeU8(words);
  const int32_t blank = FindU8(words, ' ');
  const Field software = TakeBytes(words, blank < 0 ? Left(words) : blank);
  AddLine(in, software, "Software Version: %s", Text(software));
  TakeU8(words);
  const Field comments = Rest(words);
  AddLine(in, comments, "Comments: %s", Text(comments));
  // "1.99" is an end that speaks both.
  end.version = PeekU8(version) == '1' && !(PeekU8(version, 2) == '9' && PeekU8(version, 3) == '9') ? 1 : 2;
}

// A packet in clear; false for what cannot be one.
bool ShowPacket(const Place& at, Cursor& c, Session& session, uint32_t& lacking) {
  SshEnd& end = session.connection.ends[session.end];
  const uint32_t length = PeekU32(c), padding = PeekU8(c, 4);
  if (Left(c) < 6 || length < 2 || length > kMostPacket || padding >= length) return false;
  const uint32_t code = PeekU8(c, 5);
  if (session.connection.exchange == SshExchange::kUnknown) {
    Cursor body = c;
    TakeBytes(body, 6);
    session.connection.exchange = GuessSshExchange(code, TakeCursor(body, length - 2 - padding));
  }
  const char* name = SshMessageName(code, session.connection.exchange);
  const int32_t here = Left(c) < static_cast<int32_t>(length) + 4 ? Left(c) : static_cast<int32_t>(length) + 4;
  const Place in = Under(at, AddLine(at, Ahead(c, here), "SSH: %s", name));
  const Field lengthField = TakeU32(c);
  AddLine(in, lengthField, "Packet Length: %u", length);
  Cursor packet = TakeCursor(c, length);
  lacking = length + 4 - static_cast<uint32_t>(here);
  const Field paddingField = TakeU8(packet);
  AddLine(in, paddingField, "Padding Length: %u", padding);
  Cursor payload = TakeCursor(packet, length - 1 - padding);
  const Field codeField = TakeU8(payload);
  AddLine(in, codeField, "Message Code: %u = %s", code, name);
  SshMessage message{&session.connection, session.end, session.fromClient};
  ShowSshMessage(in, payload, code, message);
  payload.ranShort = false;
  AddBlock(in, Rest(payload), "Data");
  const Field filling = Rest(packet);
  AddLine(in, filling, "Padding: %s", HexDigits(filling));
  if (code == kNewKeys) end.encrypted = true;
  return true;
}

// A packet of version 1: in clear up to the session's key.
bool ShowPacket1(const Place& at, Cursor& c, Session& session, uint32_t& lacking) {
  SshEnd& end = session.connection.ends[session.end];
  constexpr uint32_t kCheckBytes = 4, kSessionKey = 3;
  const uint32_t length = PeekU32(c);
  if (Left(c) < 5 || length < 5 || length > kMostPacket) return false;
  const uint32_t padding = 8 - length % 8, whole = 4 + padding + length;
  const uint32_t type = PeekU8(c, static_cast<int32_t>(4 + padding));
  const bool isClear = !end.encrypted;
  const int32_t here = Left(c) < static_cast<int32_t>(whole) ? Left(c) : static_cast<int32_t>(whole);
  const char* name = isClear ? LookupName(kSsh1MessageNames, type) : "Encrypted Packet";
  const Place in = Under(at, AddLine(at, Ahead(c, here), "SSH: %s", name));
  const Field lengthField = TakeU32(c);
  AddLine(in, lengthField, "Packet Length: %u", length);
  Cursor packet = TakeCursor(c, padding + length);
  lacking = whole - static_cast<uint32_t>(here);
  if (!isClear) {
    const Field body = Rest(packet);
    AddLine(in, body, "Encrypted Packet: %d bytes", body.length);
    return true;
  }
  const Field filling = TakeBytes(packet, padding);
  AddLine(in, filling, "Padding: %s", HexDigits(filling));
  const Field typeField = TakeU8(packet);
  AddLine(in, typeField, "Message Type: %u = %s", type, name);
  Cursor data = TakeCursor(packet, length - 1 - kCheckBytes);
  ShowSsh1Message(in, data, type);
  data.ranShort = false;
  AddBlock(in, Rest(data), "Data");
  const Field check = TakeU32(packet);
  AddLine(in, check, "Check Bytes: 0x%.08X", check.value);
  if (type == kSessionKey) end.encrypted = true;
  return true;
}

// Ends send their packets one by one more often than not, the length first.
void ShowHidden(const Place& at, Cursor& c) {
  const Field rest = Rest(c);
  const Place in = Under(at, AddLine(at, rest, "SSH: Encrypted, %d bytes", rest.length));
  const Field hidden = Slice(rest, 0, 4), body = Slice(rest, 4, rest.length - 4);
  AddLine(in, hidden, "Encrypted Packet Length: %s", HexDigits(hidden));
  AddLine(in, body.here ? body : rest, "Encrypted Packet: %d bytes", body.here ? body.length : rest.length);
}

// What is encrypted: packet for packet where their lengths can be read.
void ShowEncrypted(const Place& at, Cursor& c, const SshEnd& end, uint32_t& lacking) {
  const uint32_t length = PeekU32(c), mac = end.macLength == kMacUnknown ? 0 : end.macLength;
  if (!end.clearLength || Left(c) < 4 || length > kMostPacket) {
    ShowHidden(at, c);
    return;
  }
  const uint32_t whole = 4 + length + mac;
  const int32_t here = Left(c) < static_cast<int32_t>(whole) ? Left(c) : static_cast<int32_t>(whole);
  lacking = whole - static_cast<uint32_t>(here);
  const Place in = Under(at, AddLine(at, Ahead(c, here), "SSH: Encrypted, %d bytes", here));
  const Field lengthField = TakeU32(c);
  AddLine(in, lengthField, "Packet Length: %u", length);
  Cursor packet = TakeCursor(c, length + mac);
  Cursor sealed = TakeCursor(packet, length);
  const Field body = Rest(sealed);
  AddLine(in, body, "Encrypted Packet: %d bytes", body.length);
  const Field tag = Rest(packet);
  AddLine(in, tag, "MAC: %s", HexDigits(tag));
}

// A segment of a connection whose start was not seen: a packet whose length is in clear fills it up with its tag.
bool StartsSealed(const Cursor& c, SshEnd& end) {
  constexpr uint8_t kMacLengths[] = {16, 8, 12, 20, 32, 64};
  const uint32_t length = PeekU32(c);
  if (Left(c) < 8 || length > kMostPacket) return false;
  for (const uint8_t mac : kMacLengths) {
    if (static_cast<uint32_t>(Left(c)) != 4 + length + mac) continue;
    end.encrypted = end.clearLength = true;
    end.macLength = mac;
    return true;
  }
  return false;
}

// The lines in front of the version, packets, what is encrypted.
bool ShowNext(const Place& at, Cursor& c, Session& session, uint32_t& lacking) {
  SshEnd& end = session.connection.ends[session.end];
  if (StartsVersion(c)) {
    ShowVersion(at, c, end);
    return true;
  }
  if (end.version == 1) return ShowPacket1(at, c, session, lacking);
  if (end.encrypted) {
    ShowEncrypted(at, c, end, lacking);
    return true;
  }
  return ShowPacket(at, c, session, lacking);
}

}  // namespace

int32_t DecodeSsh(const Place& at, Cursor c) {
  if (Left(c) < 1) return 0;
  Session session = FindSession(at);
  SshEnd& end = session.connection.ends[session.end];
  uint32_t lacking;
  const bool isPlaced = FindLacking(at, end, lacking);
  const uint32_t before = lacking;
  const bool isNew = !isPlaced && end.version == 0 && !end.encrypted && !StartsVersion(c);
  if (isNew) StartsSealed(c, end);
  end.encryptedBefore = end.encrypted;
  if (lacking > 0 && !StartsVersion(c)) {
    const int32_t rest = lacking < static_cast<uint32_t>(Left(c)) ? static_cast<int32_t>(lacking) : Left(c);
    const Field more = TakeBytes(c, rest);
    const Place in = Under(at, AddLine(at, more, "SSH: Continuation, %d bytes", rest));
    AddLine(in, more, "Packet Data: %d bytes", rest);
    lacking -= static_cast<uint32_t>(rest);
  }
  Loop loop;
  while (MoreAt(at, c, loop)) {
    if (ShowNext(at, c, session, lacking)) continue;
    if (c.offset == c.begin && !isPlaced && !end.encrypted && end.version == 0) return 0;   // none of its bytes are
    ShowHidden(at, c);
  }
  NoteSegment(at, end, before, lacking);
  if (!PacketOf(at).quoted) Remember(at.view, kSshConnections, session.key, session.connection);
  return 1;
}

}  // namespace qxview
