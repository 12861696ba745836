// The rows of state between frames by their names, each with the types of its key and value: Recall(at.view,
// kWindowScales, key) and its like (core/states.h).
#pragma once
#include "core/states.h"
#include "decoders/net/connection_key.h"

namespace qxview {

enum class StateNumber : int32_t {
#define QX_STATE(id, ...) id,
#define QX_LENT_STATE(id, ...) id,
#include "decoders/state_rows.inc"
#undef QX_STATE
#undef QX_LENT_STATE
};

#define QX_STATE(id, name, Key, Value, ...) \
  constexpr StateId<struct Key, struct Value> id{static_cast<int32_t>(StateNumber::id)};
#define QX_LENT_STATE(id, name, Value) \
  constexpr StateId<void, struct Value> id{static_cast<int32_t>(StateNumber::id)};
#include "decoders/state_rows.inc"
#undef QX_STATE
#undef QX_LENT_STATE

// The values of what the host lends.
struct AddressDefinition {
  int32_t identifier;      // of the protocol
  int32_t matchedSource;   // it is the source's
};
struct EarlierSegment {   // with its payload
  int64_t packetNumber;
  uint32_t sequence, flags;
};

}  // namespace qxview
