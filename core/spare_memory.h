// When memory that one frame needed much of is given back: when so many frames in a row did without.
#pragma once
#include <cstdint>

#include "core/budgets.h"

namespace qxview {

struct SpareMemory {
  uint32_t framesWithout = 0;

  // Asked behind each frame that finds more than is kept.
  bool IsDue(bool wasNeeded) {
    framesWithout = wasNeeded ? 0 : framesWithout + 1;
    if (framesWithout < kFramesWithout) return false;
    framesWithout = 0;
    return true;
  }
};

}  // namespace qxview
