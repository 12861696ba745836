#include "core/states.h"

#include <cstdlib>
#include <new>

#include "core/context.h"
#include "core/engine.h"

namespace qxview {

States* CreateStates(uint64_t seed) {
  int32_t count;
  const StateRow* rows = StateRows(&count);
  auto* states = static_cast<States*>(std::calloc(1, sizeof(States)));
  if (!states) return nullptr;
  states->memory.most = SIZE_MAX;
  states->secret = MakeHashSecret(seed);
  states->tables = static_cast<StateTable*>(std::malloc(static_cast<size_t>(count) * sizeof(StateTable)));
  for (int32_t i = 0; states->tables && i < count; ++i) {
    new (&states->tables[i]) StateTable(rows[i], states->memory, states->secret);
    ++states->count;
  }
  if (states->tables) return states;
  std::free(states);
  return nullptr;
}

void DestroyStates(States* states) {
  if (!states) return;
  for (int32_t i = 0; i < states->count; ++i) states->tables[i].~StateTable();
  std::free(states->tables);
  std::free(states);
}

namespace detail {

States& StatesOf(const View* view) { return *view->engine->states; }

const void* Replay(States& states, int32_t row, uint32_t size, StateBytes* bytes) {
  const StateAnswer answer = states.recorder->answer(states.recorder->user, row);
  if (!answer.value || answer.size != size || size > sizeof states.answer) return nullptr;
  std::memcpy(states.answer, answer.value, size);
  if (bytes) *bytes = answer.bytes;
  return states.answer;
}

const void* RecallState(const View* view, int32_t row, const void* key, int32_t back, StateBytes* bytes) {
  States& states = StatesOf(view);
  StateTable& table = states.tables[row];
  const StateRecorder* recorder = states.recorder;
  if (!recorder && !bytes) return table.Recall(key, back, nullptr);
  if (recorder && recorder->answer) return Replay(states, row, table.ValueSize(), bytes);
  StateBytes held{};
  const void* value = table.Recall(key, back, &held);
  if (bytes) *bytes = held;
  if (recorder) recorder->note(recorder->user, row, {value, table.ValueSize(), held});
  return value;
}

void RememberState(const View* view, int32_t row, const void* key, const void* value, const StateBytes& bytes) {
  if (!Replays(view)) StatesOf(view).tables[row].Remember(key, value, bytes);
}

void ReviseState(const View* view, int32_t row, const void* key, int32_t back, const void* value) {
  if (!Replays(view)) StatesOf(view).tables[row].Revise(key, back, value);
}

void ForgetState(const View* view, int32_t row, const void* key) {
  if (!Replays(view)) StatesOf(view).tables[row].Forget(key);
}

}  // namespace detail
}  // namespace qxview
