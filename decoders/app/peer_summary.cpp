// The packet list's text for BitTorrent's peer connections (BEP 3, BEP 6, BEP 10) and for CGP, the gateway protocol that
// keeps terminal sessions alive.
//
//   BitTorrent handshake:  19   "BitTorrent protocol"   reserved (8)   info hash (20)   peer identifier (20)
//   BitTorrent message:    length (4)   kind (1)   body
//   CGP hello:             length (1)   "CGP/01"   ...
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

constexpr char kBitTorrentName[] = "\x13" "BitTorrent protocol";
constexpr int32_t kBitTorrentNameLength = 20, kReserved = 8, kHash = 20, kPeer = 20;

constexpr auto kMessageNames = SortedNames({
    {0, "Choke"}, {1, "Unchoke"}, {2, "Interested"}, {3, "Not Interested"}, {4, "Have"}, {5, "Bitfield"},
    {6, "Request"}, {7, "Piece"}, {8, "Cancel"}, {9, "Port"}, {13, "Suggest Piece"}, {14, "Have All"},
    {15, "Have None"}, {16, "Reject Request"}, {17, "Allowed Fast"}, {20, "Extended"}, {21, "Hash Request"},
    {22, "Hashes"}, {23, "Hash Reject"},
});
enum Message : uint32_t {
  kHave = 4, kRequest = 6, kPiece = 7, kCancel = 8, kPort = 9, kSuggest = 13, kReject = 16, kAllowedFast = 17,
};

void DescribeMessage(SummaryText& text, uint32_t message, Cursor body) {
  const bool isRange = message == kRequest || message == kCancel || message == kReject;
  const bool isIndex = message == kHave || message == kSuggest || message == kAllowedFast;
  if (message == kPort) {
    const Field port = TakeU16(body);
    if (port.here) Add(text, " %u", port.value);
  } else if (isIndex || isRange || message == kPiece) {
    const Field piece = TakeU32(body);
    if (piece.here) Add(text, ", Piece: %u", piece.value);
    if (isIndex) return;
    const Field offset = TakeU32(body);
    if (offset.here) Add(text, ", Offset: %u", offset.value);
    if (!isRange) return;
    const Field length = TakeU32(body);
    if (length.here) Add(text, ", Length: %u", length.value);
  }
}

}  // namespace

int32_t DescribeBitTorrent(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  constexpr uint32_t kMostLength = 0x20000 + 9;   // of a message: what is longer is the middle of a piece
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Cursor c = MakeCursor(data, 0, length);
  if (PeekIs(c, 0, kBitTorrentName)) {
    Add(text, "BitTorrent Handshake");
    TakeBytes(c, kBitTorrentNameLength + kReserved);
    const Field hash = TakeBytes(c, kHash);
    if (hash.here) Add(text, ", Info Hash: %s", HexDigits(hash));
    const Field peer = TakeBytes(c, kPeer);
    if (!peer.here) return 1;
    Add(text, ", Peer: ");
    AddPrintable(text, peer.bytes, kPeer, 8);   // client and version stand in front, the rest is random
    return 1;
  }
  Add(text, "BitTorrent Data");
  const Field messageLength = TakeU32(c);
  if (messageLength.here && messageLength.value == 0 && length == 4) return Add(text, ": Keep Alive"), 1;
  const Field message = TakeU8(c);
  const char* name = message.here ? LookupName(kMessageNames, message.value, nullptr) : nullptr;
  if (!name || messageLength.value < 1 || messageLength.value > kMostLength) return 1;
  Add(text, ": %s", name);
  DescribeMessage(text, message.value, TakeCursor(c, messageLength.value - 1));
  return 1;
}

int32_t DescribeCgp(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  constexpr int32_t kVersionAt = 5, kVersion = 2;
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "Citrix CGP");
  const Cursor c = MakeCursor(data, 0, length);
  if (!PeekIs(c, 1, "CGP/")) {
    Add(text, " Data, %d bytes", length);
    return 1;
  }
  Add(text, " Hello, Version: ");
  AddPrintable(text, PeekBytes(c, kVersionAt, length - kVersionAt).bytes, length - kVersionAt, kVersion);
  const int32_t whole = static_cast<int32_t>(PeekU8(c)) + 1;
  if (whole > length) Add(text, " [Partial: %d bytes of %d pending]", length, whole);
  return 1;
}

}  // namespace qxview
