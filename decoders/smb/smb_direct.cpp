// SMB directly over TCP (MS-SMB 2.1): one message after the other, each behind
//
//   0     1         2
//   type  reserved  length (16 bits, big-endian)   message
#include "core/rows.h"
#include "decoders/smb/smb.h"

namespace qxview {
namespace {

constexpr uint32_t kMarker = 0xFF534D42;
constexpr auto kTypeNames = SortedNames({{0x00, "Session Message"}, {0x85, "Session Keep Alive"}});

struct Header {
  Field length;
};
constexpr auto kHeader = Rows<Header>({
    Hex(1, "Message Type", NamesOr(kTypeNames, kUndefined)), Hex(1, "Reserved"),
    Number(2, "Message Length").Into(&Header::length)});

struct DirectMessage {
  LineHandle line;
  Cursor body;   // what of it is in the segment
};

bool StartsMessage(const Cursor& c) { return Left(c) >= 4 && (PeekU8(c) == 0 || PeekU8(c) == 0x85); }

// Whether the segment holds a message of ours at all.
bool HoldsSmb(Cursor c) {
  for (Loop loop; More(c, loop) && StartsMessage(c);) {
    TakeU16(c);
    const Field length = TakeU16(c);
    const Cursor body = TakeCursor(c, length.value);
    if (PeekU32(body) == kMarker) return true;
  }
  return false;
}

DirectMessage TakeMessage(const Place& at, Cursor& c) {
  const LineHandle line = AddLine(at, Ahead(c, 4), "SMB over TCP");
  const Field length = ShowRows(Under(at, line), c, kHeader).length;
  return {line, TakeCursor(c, length.value)};
}

}  // namespace

int32_t DecodeSmbOverTcp(const Place& at, Cursor c) {
  if (!StartsMessage(c)) return kSmbNotDecoded;
  const bool ours = HoldsSmb(c);
  int32_t result = kSmbNotDecoded;
  for (Loop loop; MoreAt(at, c, loop);) {
    if (!StartsMessage(c)) {
      if (result != kSmbNotDecoded) AddRawRest(at, c, "SMB Continuation Data");
      break;
    }
    const DirectMessage message = TakeMessage(at, c);
    const Cursor& body = message.body;
    const int32_t status = Left(body) > 0 ? DecodeSmb(at, body, false) : kSmbDecoded;
    if (status == kSmbNotDecoded && ours) AddBlock(Under(at, message.line), Ahead(body, body.left), "Message Data");
    if (result == kSmbNotDecoded) result = status;
  }
  return result;
}

}  // namespace qxview
