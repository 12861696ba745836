#include "decoders/link/medium.h"

namespace qxview {

Field CutTail(Cursor& c, int32_t length) {
  const Field tail = PeekBytes(c, Left(c) - length, length);
  if (tail.here) c.left -= length;
  return tail;
}

Field CutCheckSequence(const Place& at, Cursor& c) {
  const int32_t length = HeldCheckSequence(PacketOf(at).frame);
  return length < 1 || length > 4 ? Field{} : CutTail(c, length);
}

void AddClosingSummaryLines(const Place& in, const Cursor& frame, OriginalNumber number, const Field& checkSequence) {
  AddPartialSize(in, frame);
  uint64_t original;
  if (number != OriginalNumber::kHidden && OriginalPacketNumber(PacketOf(in).frame, &original)) {
    const Field whole = Ahead(frame, Left(frame));
    if (number == OriginalNumber::kShownWide) {
      AddLine(in, whole, "Packet number in the original buffer: %I64u", original);
    } else {
      AddLine(in, whole, "Packet number in the original buffer: %u", static_cast<uint32_t>(original));
    }
  }
  AddLine(in, checkSequence, "Frame Check Sequence: %s", HexText(checkSequence));
}

void AddAddress(const Place& in, const Field& address, const char* label) {
  if (address.here) AddLine(in, address, "%s: %s", label, NamedMac(in.view, address.bytes));
}

}  // namespace qxview
