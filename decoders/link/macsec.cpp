// MAC Security (IEEE 802.1AE): which secure channel does this frame belong to, and is what it carries encrypted?
//
//   tag control and association (1)   short length (1)   packet number (4)   [secure channel identifier (8)]
//   data   integrity check value (16)
#include "core/rows.h"

namespace qxview {
namespace {

constexpr int32_t kCheckSize = 16, kIdentifierSize = 8;

struct MacSec {
  Field hasIdentifier, isEncrypted, isChanged, association, shortLength, number;
};

constexpr auto kTag = Rows<MacSec>({
    Hex(1, "Tag Control Information and Association Number"), Bits(0, 1, "Version"), Flag(1, "End Station"),
    Flag(2, "Secure Channel Identifier Present").Into(&MacSec::hasIdentifier), Flag(3, "Single Copy Broadcast"),
    Flag(4, "Encryption").Into(&MacSec::isEncrypted), Flag(5, "Changed Text").Into(&MacSec::isChanged),
    Bits(6, 2, "Association Number").Into(&MacSec::association),
    Word(1), Bits(0, 2, "Reserved"), Bits(2, 6, "Short Length").Into(&MacSec::shortLength),
    Number(4, "Packet Number").Note(", Packet Number %u").Into(&MacSec::number)});
constexpr auto kIdentifier = Rows<MacSec>({Mac("System Identifier").Note(", %s"), Number(2, "Port Identifier")});
constexpr auto kCheck = Rows<MacSec>({Bytes(16, "Integrity Check Value (ICV)")});
constexpr auto kCutCheck = Rows<MacSec>({Bytes(0, "Integrity Check Value (ICV)")});

}  // namespace

int32_t DecodeMacSec(const Place& at, Cursor c) {
  constexpr int32_t kTagSize = 6;
  if (Left(c) < kTagSize) return 0;
  const MacSec ahead = PeekRows(c, kTag);
  const bool hasIdentifier = ahead.hasIdentifier.value, isPlain = !ahead.isEncrypted.value && !ahead.isChanged.value;
  const int32_t tag = kTagSize + (hasIdentifier ? kIdentifierSize : 0);
  const Place in = Under(at, AddLine(at, Ahead(c, tag < Left(c) ? tag : Left(c)), "MACsec: %s, Association %u",
                                     isPlain ? "Integrity Only" : "Encrypted", ahead.association.value));
  MacSec security = ShowRows(in, c, kTag);
  if (hasIdentifier) ShowRows<MacSec>(in, c, kIdentifier, security);
  const int32_t behind = Left(c) - kCheckSize;
  // A short length counts the data where it has less than 48 octets; padding follows the check value then.
  const int32_t counted = static_cast<int32_t>(security.shortLength.value);
  const int32_t size = counted > 0 && counted <= Left(c) ? counted : behind > 0 ? behind : 0;
  Cursor data = TakeCursor(c, size);
  if (!isPlain) {
    const Field sealed = Rest(data);
    AddLine(in, sealed, "Encrypted Data: %d bytes", sealed.length);
  }
  if (Left(c) > 0) {   // a frame that is cut ends within it
    ShowRows<MacSec>(in, c, Left(c) >= kCheckSize ? RowSpan<MacSec>(kCheck) : RowSpan<MacSec>(kCutCheck), security);
  }
  const Field padding = Rest(c);
  if (padding.length > 0) AddLine(in, padding, "Padding: %s", HexText(padding));
  if (!isPlain || Left(data) < 2) return 1;
  return DecodeEthernetHeader(in, data);
}

}  // namespace qxview
