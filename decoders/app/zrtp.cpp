// ZRTP (RFC 6189): keys of SRTP agreed between the ends, on the ports of the media.
//
//   0x10 0   sequence (2)   "ZRTP"   SSRC (4)   0x505A   length in words (2)   message type (8 characters)   ...   CRC (4)
#include "core/rows.h"
#include "decoders/common/header_lines.h"

namespace qxview {
namespace {

struct Zrtp {
  Field length, counts;
};

constexpr auto kErrorNames = SortedNames({
    {0x10, "Malformed Packet"}, {0x20, "Critical Software Error"}, {0x30, "Unsupported Version"},
    {0x40, "Hello Components Mismatch"}, {0x51, "Hash Type Not Supported"}, {0x52, "Cipher Type Not Supported"},
    {0x53, "Public Key Exchange Not Supported"}, {0x54, "SRTP Authentication Tag Not Supported"},
    {0x55, "SAS Rendering Not Supported"}, {0x56, "No Shared Secret Available"}, {0x61, "Bad pvi or pvr"},
    {0x62, "hvi Does Not Match"}, {0x63, "Untrusted Man in the Middle"}, {0x70, "Bad Confirm MAC"}, {0x80, "Nonce Reuse"},
    {0x90, "Equal ZIDs"}, {0x91, "SSRC Collision"}, {0xA0, "Service Unavailable"}, {0xB0, "Protocol Timeout"},
    {0x100, "GoClear Not Allowed"}});

constexpr auto kHead = Rows<Zrtp>({
    Hex(2, "Magic"), Number(2, "Sequence"), Text(4, "Cookie"), Hex(4, "SSRC"), Hex(2, "Preamble"),
    Number(2, "Length", " words").Into(&Zrtp::length), Text(8, "Message Type")});
constexpr auto kHello = Rows<Zrtp>({
    Text(4, "Version"), Text(16, "Client Identifier"), Bytes(32, "Hash Image H3"), Bytes(12, "ZID"), Word(4), Flag(0, "Reserved"),
    Flag(1, "Signature Capable"), Flag(2, "Man in the Middle"), Flag(3, "Passive"), Bits(4, 8, "Unused"), Bits(12, 4, "Hash Count"),
    Bits(16, 4, "Cipher Count"), Bits(20, 4, "Authentication Tag Count"), Bits(24, 4, "Key Agreement Count"),
    Bits(28, 4, "SAS Count")});
constexpr auto kHash = Rows<Zrtp>({Text(4, "Hash")});
constexpr auto kCipher = Rows<Zrtp>({Text(4, "Cipher")});
constexpr auto kTag = Rows<Zrtp>({Text(4, "Authentication Tag")});
constexpr auto kAgreement = Rows<Zrtp>({Text(4, "Key Agreement")});
constexpr auto kRendering = Rows<Zrtp>({Text(4, "SAS Rendering")});
constexpr auto kCommit = Rows<Zrtp>({
    Bytes(32, "Hash Image H2"), Bytes(12, "ZID"), Text(4, "Hash"), Text(4, "Cipher"), Text(4, "Authentication Tag"),
    Text(4, "Key Agreement"), Text(4, "SAS Rendering")});
constexpr auto kCommitHash = Rows<Zrtp>({Bytes(32, "Hash Value of Initiator")});
constexpr auto kNonce = Rows<Zrtp>({Bytes(16, "Nonce")});
constexpr auto kKeyId = Rows<Zrtp>({Bytes(8, "Key ID")});
constexpr auto kPart = Rows<Zrtp>({
    Bytes(32, "Hash Image H1"), Hex(8, "Retained Secret ID 1"), Hex(8, "Retained Secret ID 2"), Hex(8, "Auxiliary Secret ID"),
    Hex(8, "PBX Secret ID")});
constexpr auto kConfirm = Rows<Zrtp>({Hex(8, "Confirm MAC"), Bytes(16, "CFB Initialization Vector")});
constexpr auto kError = Rows<Zrtp>({Hex(4, "Error Code", kErrorNames).Note(", %s")});
constexpr auto kPing = Rows<Zrtp>({Text(4, "Version"), Hex(8, "Endpoint Hash")});
constexpr auto kPingAck = Rows<Zrtp>({
    Text(4, "Version"), Hex(8, "Endpoint Hash"), Hex(8, "Received Endpoint Hash"), Hex(4, "Received SSRC")});
constexpr auto kMac = Rows<Zrtp>({Hex(8, "MAC")});
constexpr auto kCheck = Rows<Zrtp>({Hex(4, "CRC")});

void ShowSome(const Place& in, Cursor& c, RowSpan<Zrtp> rows, uint32_t count, Zrtp& zrtp) {
  for (uint32_t i = 0; i < count && Left(c) >= 4; ++i) ShowRows<Zrtp>(in, c, rows, zrtp);
}

void ShowHello(const Place& in, Cursor& c, Zrtp& zrtp) {
  const uint32_t counts = PeekU32(c, 64);
  ShowRows<Zrtp>(in, c, kHello, zrtp);
  ShowSome(in, c, kHash, counts >> 16 & 15, zrtp);
  ShowSome(in, c, kCipher, counts >> 12 & 15, zrtp);
  ShowSome(in, c, kTag, counts >> 8 & 15, zrtp);
  ShowSome(in, c, kAgreement, counts >> 4 & 15, zrtp);
  ShowSome(in, c, kRendering, counts & 15, zrtp);
  ShowRows<Zrtp>(in, c, kMac, zrtp);
}

void ShowCommit(const Place& in, Cursor& c, Zrtp& zrtp) {
  const bool isMultistream = PeekIs(c, 56, "Mult"), isPreshared = PeekIs(c, 56, "Prsh");
  ShowRows<Zrtp>(in, c, kCommit, zrtp);
  ShowRows<Zrtp>(in, c, isMultistream || isPreshared ? RowSpan<Zrtp>(kNonce) : RowSpan<Zrtp>(kCommitHash), zrtp);
  if (isPreshared) ShowRows<Zrtp>(in, c, kKeyId, zrtp);
  ShowRows<Zrtp>(in, c, kMac, zrtp);
}

void ShowMessage(const Place& in, Cursor& c, const Field& type, Zrtp& zrtp) {
  if (StartsWithWord(type, "HelloACK")) return;
  if (StartsWithWord(type, "Hello")) return ShowHello(in, c, zrtp);
  if (StartsWithWord(type, "Commit")) return ShowCommit(in, c, zrtp);
  if (StartsWithWord(type, "DHPart")) {
    ShowRows<Zrtp>(in, c, kPart, zrtp);
    const Field value = TakeBytes(c, Left(c) - 8);
    AddBlock(in, value, "Public Value");
    return ShowRows<Zrtp>(in, c, kMac, zrtp);
  }
  if (StartsWithWord(type, "Confirm") || StartsWithWord(type, "SASrelay")) {
    ShowRows<Zrtp>(in, c, kConfirm, zrtp);
    return (void)AddBlock(in, Rest(c), "Encrypted Data");
  }
  if (StartsWithWord(type, "ErrorACK")) return;
  if (StartsWithWord(type, "Error")) return ShowRows<Zrtp>(in, c, kError, zrtp);
  if (StartsWithWord(type, "GoClear")) return ShowRows<Zrtp>(in, c, kMac, zrtp);
  if (StartsWithWord(type, "PingACK")) return ShowRows<Zrtp>(in, c, kPingAck, zrtp);
  if (StartsWithWord(type, "Ping")) return ShowRows<Zrtp>(in, c, kPing, zrtp);
}

}  // namespace

int32_t DecodeZrtp(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 12, kMessageHead = 12, kCheckSize = 4;
  if (Left(c) < kHeader + kMessageHead || !PeekIs(c, 4, "ZRTP")) return 0;
  Zrtp zrtp{};
  const Field type = Trimmed(PeekBytes(c, 16, 8));
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "ZRTP: %s", Text(type)));
  ShowRows<Zrtp>(in, c, kHead, zrtp);
  const int64_t length = 4 * int64_t{zrtp.length.value} - kMessageHead;
  const bool isWhole = Left(c) == length + kCheckSize;   // of one that is cut the end is not there
  Cursor message = TakeCursor(c, isWhole ? length : Left(c));
  ShowMessage(in, message, type, zrtp);
  message.ranShort = false;
  AddBlock(in, Rest(message), "Message Data");
  ShowRows<Zrtp>(in, c, kCheck, zrtp);
  return 1;
}

}  // namespace qxview
