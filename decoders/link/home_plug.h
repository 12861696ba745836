// What the parts of the decoder of HomePlug AV share.
#pragma once
#include "core/elements.h"

namespace qxview {

struct HomePlug {
  Field version, type, count, more, length;
};

enum HomePlugKind : uint32_t { kRequest = 0, kConfirmation = 1, kIndication = 2, kResponse = 3 };

// What stands in a message: rows, rows that the first count, and a function for the rest.
struct HomePlugMessage {
  uint32_t type;   // with the kind
  RowSpan<HomePlug> rows, list;
  void (*show)(const Place& in, Cursor& c, HomePlug& out);
};

// As many as the last count says.
inline void ShowList(const Place& in, Cursor& c, RowSpan<HomePlug> rows, HomePlug& out) {
  const uint32_t count = out.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) ShowRows<HomePlug>(in, c, rows, out);
}

// A message of a station's maker; null for one that it did not publish.
const HomePlugMessage* FindMakerMessage(uint32_t type);

}  // namespace qxview
