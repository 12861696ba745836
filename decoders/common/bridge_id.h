// Identifiers of bridges (IEEE 802.1Q 14.2.5): a priority in steps of 4096, the tree's number in the 12 bits below it, and
// the bridge's address.
#pragma once
#include "core/decoder.h"

namespace qxview {

inline void ShowBridgeId(const Place& in, const Field& field, const char* label) {
  Cursor c = CursorOver(field);
  const uint32_t priority = PeekU16(c) & 0xF000, extension = PeekU16(c) & 0x0FFF;
  const Field word = TakeU16(c), address = TakeBytes(c, 6);
  const Place under = Under(in, AddLine(in, field, "%s: %u/%u/%s", label, priority, extension, MacText(address.bytes)));
  AddLine(under, word, "Priority: %u", priority);
  AddLine(under, word, "System ID Extension: %u", extension);
  AddLine(under, address, "Bridge Address: %s", MacText(address.bytes));
}

}  // namespace qxview
