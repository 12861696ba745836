// A table of state between frames that the host keeps itself, with all that it stands on.
#pragma once
#include <cstdint>

#include "core/state_table.h"
#include "host/hash_key.h"

namespace qxview {

struct HostState {
  explicit HostState(const StateRow& its) : row(its), table(row, memory, secret) {}
  HostState(const HostState&) = delete;
  HostState& operator=(const HostState&) = delete;

  const StateRow row;
  StateMemory memory{0, SIZE_MAX};
  const HashSecret secret = MakeHashSecret(DrawSeed());
  StateTable table;
};

}  // namespace qxview
