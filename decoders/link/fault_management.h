// Elements of connectivity fault management.
#pragma once
#include "core/elements.h"

namespace qxview {

struct FaultManagement {
  Field level, opcode, flags, offset, size, kind, id;
};

// To the element that ends them, or to the cursor's end.
void ShowFaultElements(const Place& in, Cursor& c, FaultManagement& out);

}  // namespace qxview
