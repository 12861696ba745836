// KEXINIT (RFC 4253 7.1): the algorithms that an end can do, and which ones both ends agree on: of each list the first of the
// client's that the server has as well. Fingerprints over the lists (HASSH) tell implementations apart.
#include <cstring>

#include "core/digest.h"
#include "decoders/app/ssh.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr int32_t kLists = 10;
constexpr int32_t kMostOffer = 4096;
enum List : int32_t {
  kKeyExchange, kHostKey, kCipherToServer, kCipherToClient, kMacToServer, kMacToClient, kPackToServer, kPackToClient,
};

constexpr const char* kLabels[kLists] = {
    "Key Exchange Algorithms", "Server Host Key Algorithms", "Encryption Algorithms Client to Server",
    "Encryption Algorithms Server to Client", "MAC Algorithms Client to Server", "MAC Algorithms Server to Client",
    "Compression Algorithms Client to Server", "Compression Algorithms Server to Client", "Languages Client to Server",
    "Languages Server to Client"};

struct Offer {
  Field lists[kLists];
};

// The names of a list in turn; a field that is not here ends it.
Field TakeName(Cursor& c) {
  if (Left(c) < 1) return Field{};
  const int32_t comma = FindU8(c, ',');
  const Field name = TakeBytes(c, comma < 0 ? Left(c) : comma);
  if (comma >= 0) TakeU8(c);
  return name;
}

bool IsName(const Field& a, const Field& b) {
  return a.length == b.length && std::memcmp(a.bytes, b.bytes, static_cast<size_t>(a.length)) == 0;
}
template <size_t kSize>
bool Begins(const Field& name, const char (&text)[kSize]) {
  return PeekIs(CursorOver(name), 0, text);
}
template <size_t kSize>
bool Ends(const Field& name, const char (&text)[kSize]) {
  return PeekIs(CursorOver(name), name.length - static_cast<int32_t>(kSize) + 1, text);
}

// The first of the client's names that the server has as well.
Field Choose(const Field& client, const Field& server) {
  constexpr int32_t kMostNames = 128;
  Cursor wanted = CursorOver(client);
  for (int32_t i = 0; i < kMostNames; ++i) {
    const Field name = TakeName(wanted);
    if (!name.here) break;
    Cursor offered = CursorOver(server);
    for (int32_t j = 0; j < kMostNames; ++j) {
      const Field other = TakeName(offered);
      if (!other.here) break;
      if (IsName(name, other)) return name;
    }
  }
  return Field{};
}

SshExchange ExchangeOf(const Field& name) {
  if (Begins(name, "diffie-hellman-group-exchange-")) return SshExchange::kGroupExchange;
  if (Begins(name, "diffie-hellman-")) return SshExchange::kDiffieHellman;
  if (Begins(name, "rsa")) return SshExchange::kRsa;
  if (Begins(name, "gss-")) return SshExchange::kGss;
  return name.length ? SshExchange::kEllipticCurve : SshExchange::kUnknown;
}

uint8_t MacLengthOf(const Field& cipher, const Field& mac) {
  if (Ends(cipher, "-gcm@openssh.com") || Begins(cipher, "AEAD_") || Begins(cipher, "chacha20-poly1305")) return 16;
  if (Begins(mac, "hmac-sha2-512")) return 64;
  if (Begins(mac, "hmac-sha2-256")) return 32;
  if (Begins(mac, "hmac-sha1-96") || Begins(mac, "hmac-md5-96")) return 12;
  if (Begins(mac, "hmac-sha1") || Begins(mac, "hmac-ripemd160")) return 20;
  if (Begins(mac, "hmac-md5") || Begins(mac, "umac-128")) return 16;
  if (Begins(mac, "umac-64")) return 8;
  return 0xFF;
}

bool HasClearLength(const Field& cipher, const Field& mac) {
  if (Begins(cipher, "chacha20-poly1305")) return false;
  return Ends(cipher, "-gcm@openssh.com") || Begins(cipher, "AEAD_") || Ends(mac, "-etm@openssh.com");
}

bool ReadOffer(Cursor c, Offer& out) {
  for (Field& list : out.lists) {
    const uint32_t length = TakeU32(c).value;
    list = TakeBytes(c, length);
  }
  return !c.ranShort;
}

// What both ends agree on: lines, and what the packets behind will be like.
void ShowAgreed(const Place& in, const Field& here, const Offer& client, const Offer& server, SshMessage& message) {
  Field chosen[kPackToClient + 1];
  for (int32_t i = 0; i <= kPackToClient; ++i) chosen[i] = Choose(client.lists[i], server.lists[i]);
  const Place under = Under(in, AddLine(in, here, "Agreed: %s, %s", Text(chosen[kKeyExchange]), Text(chosen[kHostKey])));
  AddLine(under, here, "Key Exchange Algorithm: %s", Text(chosen[kKeyExchange]));
  AddLine(under, here, "Server Host Key Algorithm: %s", Text(chosen[kHostKey]));
  AddLine(under, here, "Encryption Algorithm Client to Server: %s", Text(chosen[kCipherToServer]));
  AddLine(under, here, "Encryption Algorithm Server to Client: %s", Text(chosen[kCipherToClient]));
  AddLine(under, here, "MAC Algorithm Client to Server: %s", Text(chosen[kMacToServer]));
  AddLine(under, here, "MAC Algorithm Server to Client: %s", Text(chosen[kMacToClient]));
  AddLine(under, here, "Compression Algorithm Client to Server: %s", Text(chosen[kPackToServer]));
  AddLine(under, here, "Compression Algorithm Server to Client: %s", Text(chosen[kPackToClient]));
  SshConnection& connection = *message.connection;
  connection.exchange = ExchangeOf(chosen[kKeyExchange]);
  const int32_t clientEnd = message.fromClient ? message.end : 1 - message.end;
  for (int32_t direction = 0; direction < 2; ++direction) {
    SshEnd& end = connection.ends[direction == 0 ? clientEnd : 1 - clientEnd];
    const Field &cipher = chosen[kCipherToServer + direction], &mac = chosen[kMacToServer + direction];
    end.macLength = MacLengthOf(cipher, mac);
    end.clearLength = HasClearLength(cipher, mac) && end.macLength != 0xFF;
  }
}

void ShowFingerprint(const Place& in, const Field& here, const Offer& offer, bool fromClient) {
  constexpr uint8_t kSeparator = ';';
  const int32_t direction = fromClient ? 0 : 1;
  const List lists[] = {kKeyExchange, static_cast<List>(kCipherToServer + direction), static_cast<List>(kMacToServer + direction),
                        static_cast<List>(kPackToServer + direction)};
  Md5 md5;
  for (int32_t i = 0; i < 4; ++i) {
    if (i > 0) md5.Add({&kSeparator, 1});
    md5.Add({offer.lists[lists[i]].bytes, offer.lists[lists[i]].length});
  }
  uint8_t digest[kMd5Size];
  md5.Finish(digest);
  const HexSlice text{digest, kMd5Size, '\0'};
  if (fromClient) {
    AddLine(in, here, "HASSH: %s", text);
  } else {
    AddLine(in, here, "HASSH of the Server: %s", text);
  }
}

}  // namespace

void ShowSshKeyExchangeInit(const Place& in, Cursor& c, SshMessage& message) {
  const Field cookie = TakeBytes(c, 16);
  AddLine(in, cookie, "Cookie: %s", HexDigits(cookie));
  const Cursor start = c;
  for (const char* label : kLabels) {
    const Field length = TakeU32(c);
    AddLine(in, length, "%s Length: %u", label, length.value);
    const Field list = TakeBytes(c, length.value);
    if (list.length < 1) continue;
    const Place under = Under(in, AddLine(in, list, "%s: %s", label, Text(list)));
    Cursor names = CursorOver(list);
    Loop loop;
    while (MoreAt(in, names, loop)) {
      const Field name = TakeName(names);
      AddLine(under, name, "Name: %s", Text(name));
    }
  }
  const Field lists = PeekBytes(start, 0, c.offset - start.offset);
  const Field follows = TakeU8(c);
  AddLine(in, follows, "First KEX Packet Follows: %u", follows.value);
  const Field reserved = TakeU32(c);
  AddLine(in, reserved, "Reserved: 0x%.08X", reserved.value);

  Offer own;
  const Field here = Stated(c.offset, 0);
  if (!ReadOffer(start, own) || lists.length > kMostOffer) return;
  ShowFingerprint(in, here, own, message.fromClient);
  const PacketState& packet = PacketOf(in);
  ConnectionKey sent = DirectionOf(packet), received = sent;
  std::memcpy(received.addresses[0], sent.addresses[1], 16);
  std::memcpy(received.addresses[1], sent.addresses[0], 16);
  received.ports[0] = sent.ports[1];
  received.ports[1] = sent.ports[0];
  received.kinds[0] = sent.kinds[1];
  received.kinds[1] = sent.kinds[0];
  StateBytes bytes{};
  Offer other;
  if (Recall(in.view, kSshOffers, received, 1, &bytes) &&
      ReadOffer(MakeCursor(bytes.data, c.offset, static_cast<int32_t>(bytes.length)), other)) {
    ShowAgreed(in, here, message.fromClient ? own : other, message.fromClient ? other : own, message);
  }
  if (!packet.quoted) Remember(in.view, kSshOffers, sent, {0}, {lists.bytes, static_cast<uint32_t>(lists.length)});
}

}  // namespace qxview
