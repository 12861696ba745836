// WireGuard ("WireGuard: Next Generation Kernel Network Tunnel", section 5.4): who starts a session, which numbers do
// its ends have, how many packets went through? What the messages protect stays closed.
#include "decoders/ipsec/wireguard.h"

#include "core/rows.h"

namespace qxview {
namespace {

constexpr int32_t kInitiationSize = 148, kResponseSize = 92, kCookieSize = 64, kLeastData = 32, kDataHeader = 16;
constexpr uint32_t kInitiation = 1, kResponse = 2, kCookieReply = 3, kData = 4;

constexpr auto kTypeNames = SortedNames({
    {1, "Handshake Initiation"}, {2, "Handshake Response"}, {3, "Cookie Reply"}, {4, "Transport Data"}});

struct WireGuard {
  Field sender, receiver, sealed;
};

constexpr auto kType = Rows<WireGuard>({Number(1, "Type", kTypeNames), Hex(3, "Reserved")});
constexpr auto kSender = Rows<WireGuard>({Hex(4, "Sender").Little().Note(", Sender = 0x%.08X")});
constexpr auto kReceiver = Rows<WireGuard>({Hex(4, "Receiver").Little().Note(", Receiver = 0x%.08X")});
constexpr auto kInitiationRows = Rows<WireGuard>({
    Bytes(32, "Ephemeral Public Key"), Bytes(48, "Encrypted Static Public Key"), Bytes(28, "Encrypted Timestamp"),
    Bytes(16, "MAC 1"), Bytes(16, "MAC 2")});
constexpr auto kResponseRows = Rows<WireGuard>({
    Bytes(32, "Ephemeral Public Key"), Bytes(16, "Encrypted Nothing"), Bytes(16, "MAC 1"), Bytes(16, "MAC 2")});
constexpr auto kCookieRows = Rows<WireGuard>({Bytes(24, "Nonce"), Bytes(32, "Encrypted Cookie")});
constexpr auto kCounter = Rows<WireGuard>({Number(8, "Counter").Little().Note(", Counter = %I64u")});

void ShowSealed(const Place& in, Cursor& c) {
  constexpr int32_t kTag = 16;
  if (Left(c) == kTag) {
    const Field tag = Rest(c);
    AddLine(in, tag, "Keepalive: %s", HexText(tag));
    AppendToParent(in, tag, ", Keepalive");
  } else {
    const Field sealed = Rest(c);
    AddLine(in, sealed, "Encrypted Packet: %d bytes", sealed.length);
  }
}

bool HasRightSize(uint32_t type, int32_t size) {
  switch (type) {
    case kInitiation: return size == kInitiationSize;
    case kResponse: return size == kResponseSize;
    case kCookieReply: return size == kCookieSize;
    case kData: return size >= kLeastData && size % 16 == 0;
    default: return false;
  }
}

}  // namespace

bool LooksLikeWireGuard(const Cursor& c) {
  const uint32_t type = PeekU8(c);
  if (PeekU24(c, 1) != 0 || !HasRightSize(type, Left(c))) return false;
  // A session's keys are used up long before its counter reaches the upper half; its receiver has a drawn number.
  return type != kData || (PeekLittleU32(c, 12) == 0 && PeekLittleU32(c, 4) > 0xFFFF);
}

int32_t DecodeWireGuard(const Place& at, Cursor c) {
  constexpr int32_t kLeastHeader = 8;
  const uint32_t type = PeekU8(c);
  if (Left(c) < kLeastHeader || PeekU24(c, 1) != 0 || type < kInitiation || type > kData) return 0;
  const int32_t header = type == kData ? kDataHeader : Left(c);
  const Place in = Under(at, AddLine(at, Ahead(c, header < Left(c) ? header : Left(c)), "WireGuard: %s",
                                     LookupName(kTypeNames, type)));
  WireGuard guard = ShowRows(in, c, kType);
  if (type == kInitiation || type == kResponse) ShowRows<WireGuard>(in, c, kSender, guard);
  if (type != kInitiation) ShowRows<WireGuard>(in, c, kReceiver, guard);
  switch (type) {
    case kInitiation: ShowRows<WireGuard>(in, c, kInitiationRows, guard); break;
    case kResponse: ShowRows<WireGuard>(in, c, kResponseRows, guard); break;
    case kCookieReply: ShowRows<WireGuard>(in, c, kCookieRows, guard); break;
    default:
      ShowRows<WireGuard>(in, c, kCounter, guard);
      ShowSealed(in, c);
  }
  c.ranShort = false;   // what is left of a message that is cut
  AddBlock(in, Rest(c), "WireGuard Data");
  return 1;
}

}  // namespace qxview
