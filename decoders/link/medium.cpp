#include "decoders/link/medium.h"

namespace qxview {

Field CutCheckSequence(const Place& at, Cursor& c) {
  const int32_t length = HeldCheckSequence(PacketOf(at).frame);
  if (length < 1 || length > 4 || length > Left(c)) return {nullptr, c.offset, 0, 0, false};
  c.left -= length;
  return {c.at + c.left, c.offset + c.left, length, 0, true};
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
  if (address.here) AddLine(in, address, "%s: %s", label, CheckAlias(in.view, 0, address.bytes));
}

}  // namespace qxview
