// State between frames: what a decoder learns from one frame for later ones. decoders/state_rows.inc has a row for each
// table. All are asked and told through Recall, Remember, Revise and Forget, so that what look-ups gave can be recorded
// and replayed: a frame that is decoded behind a replay gets the same lines without the frames before it.
#pragma once
#include <cstring>
#include <type_traits>

#include "core/state_table.h"

namespace qxview {

struct View;

struct StateAnswer {
  const void* value;   // null: nothing is known
  uint32_t size;
  StateBytes bytes;
};

// Attached to an engine. A recorder is told what each look-up gave, in their order; where `answer` is set it stands in
// for every table instead: it answers the look-ups, and what is told goes nowhere.
struct StateRecorder {
  void* user;
  void (*note)(void* user, int32_t id, const StateAnswer& given);
  StateAnswer (*answer)(void* user, int32_t id);   // good as long as the frame is decoded
};

struct States {
  StateTable* tables;   // by the rows' order
  int32_t count;
  StateMemory memory;
  HashSecret secret;
  const StateRecorder* recorder;
  alignas(8) uint8_t answer[kMostValueSize];   // a replayed value, aligned
};

// All rows (decoders/states.cpp).
const StateRow* StateRows(int32_t* count);

// Empty tables; null when there is no memory.
States* CreateStates(uint64_t seed);
void DestroyStates(States* states);

// A row with the types of its key and value.
template <class Key, class Value>
struct StateId {
  int32_t row;
};

namespace detail {
States& StatesOf(const View* view);
const void* RecallState(const View* view, int32_t row, const void* key, int32_t back, StateBytes* bytes);
void RememberState(const View* view, int32_t row, const void* key, const void* value, const StateBytes& bytes);
void ReviseState(const View* view, int32_t row, const void* key, int32_t back, const void* value);
void ForgetState(const View* view, int32_t row, const void* key);
const void* Replay(States& states, int32_t row, uint32_t size, StateBytes* bytes);
}  // namespace detail

// What the key was told last, or `back` - 1 times before; null when nothing is known. Good until the next call.
template <class Key, class Value>
const Value* Recall(const View* view, StateId<Key, Value> id, const std::type_identity_t<Key>& key, int32_t back = 1,
                    StateBytes* bytes = nullptr) {
  return static_cast<const Value*>(detail::RecallState(view, id.row, &key, back, bytes));
}

// The key's last value from now on; a row that keeps more than one keeps those before it.
template <class Key, class Value>
void Remember(const View* view, StateId<Key, Value> id, const std::type_identity_t<Key>& key, Value value,
              const StateBytes& bytes = {}) {
  detail::RememberState(view, id.row, &key, &value, bytes);
}

// Puts another value in the place of the one that Recall gives for `back`.
template <class Key, class Value>
void Revise(const View* view, StateId<Key, Value> id, const std::type_identity_t<Key>& key, int32_t back, Value value) {
  detail::ReviseState(view, id.row, &key, back, &value);
}

template <class Key, class Value>
void Forget(const View* view, StateId<Key, Value> id, const std::type_identity_t<Key>& key) {
  detail::ForgetState(view, id.row, &key);
}

// State that the host keeps: `ask` fills in value and bytes and says whether there was an answer. A replay does not ask.
template <class Value, class Ask>
bool RecallFromHost(const View* view, StateId<void, Value> id, Value* value, StateBytes* bytes, const Ask& ask) {
  States& states = detail::StatesOf(view);
  const StateRecorder* recorder = states.recorder;
  if (recorder && recorder->answer) {
    const void* known = detail::Replay(states, id.row, sizeof *value, bytes);
    if (known) std::memcpy(value, known, sizeof *value);
    return known != nullptr;
  }
  const bool known = ask(value, bytes);
  if (!recorder) return known;
  recorder->note(recorder->user, id.row, {known ? value : nullptr, sizeof *value, bytes ? *bytes : StateBytes{}});
  return known;
}

// The table itself, for who keeps state that no look-up shows as it is: what is made of it must be recorded, by
// RecallFromHost, and nothing may be told to it in a replay.
template <class Key, class Value>
StateTable& UnrecordedTable(const View* view, StateId<Key, Value> id) {
  return detail::StatesOf(view).tables[id.row];
}

// Whether look-ups are answered from a record: the host is told nothing then.
inline bool Replays(const View* view) {
  const StateRecorder* recorder = detail::StatesOf(view).recorder;
  return recorder && recorder->answer;
}

}  // namespace qxview
