// The state that decoders keep between frames, one slot of the engine each: how it is made and let go.
#pragma once
#include "core/engine.h"

namespace qxview {

struct StateRow {
  DecoderState slot;
  void* (*create)();          // null when there is no memory
  void (*destroy)(void*);
};

}  // namespace qxview
