#include "host/state_log.h"

#include <new>

#include "core/engine.h"

namespace qxview {
namespace {

// What stands beside the row's number.
constexpr uint16_t kKnown = 0x8000, kWithBytes = 0x4000;

}  // namespace

StateLog::StateLog() : recorder_{this, nullptr, nullptr} {
  recorder_.note = [](void* user, int32_t id, const StateAnswer& given) {
    static_cast<StateLog*>(user)->Note(id, given);
  };
}

void StateLog::Record(Engine* engine) {
  if (recorded_) recorded_->states->recorder = nullptr;
  recorded_ = engine;
  if (engine) engine->states->recorder = &recorder_;
}

// What much was noted in once is not held for ever.
void StateLog::Clear() {
  constexpr size_t kMostKept = 256u << 10;
  bytes_.clear();
  if (bytes_.capacity() > kMostKept) bytes_.shrink_to_fit();
}

void StateLog::Append(const void* bytes, size_t size) {
  const auto* first = static_cast<const uint8_t*>(bytes);
  bytes_.insert(bytes_.end(), first, first + size);
}

void StateLog::Note(int32_t id, const StateAnswer& given) noexcept {
  if (!complete_) return;
  const size_t before = bytes_.size();
  const uint16_t head = static_cast<uint16_t>(id | (given.value ? kKnown : 0) | (given.bytes.data ? kWithBytes : 0));
  try {
    Append(&head, sizeof head);
    if (given.value) Append(given.value, given.size);
    if (given.bytes.data) {
      Append(&given.bytes.length, sizeof given.bytes.length);
      Append(given.bytes.data, given.bytes.length);
    }
  } catch (const std::bad_alloc&) {
    bytes_.resize(before);
    complete_ = false;
  }
}

StateReplay::StateReplay(const StateLog& log, Engine* engine) : log_(log), engine_(engine), recorder_{} {
  recorder_.user = this;
  recorder_.answer = [](void* user, int32_t id) { return static_cast<StateReplay*>(user)->Answer(id); };
  engine_->states->recorder = &recorder_;
}

StateReplay::~StateReplay() { engine_->states->recorder = nullptr; }

const uint8_t* StateReplay::Take(size_t size) {
  const uint8_t* taken = log_.bytes_.data() + at_;
  inStep_ = inStep_ && size <= log_.bytes_.size() - at_;
  at_ += inStep_ ? size : 0;
  return inStep_ ? taken : nullptr;
}

StateAnswer StateReplay::Answer(int32_t id) {
  int32_t count;
  const uint32_t size = StateRows(&count)[id].valueSize;
  uint16_t head = 0;
  if (const uint8_t* first = Take(sizeof head)) std::memcpy(&head, first, sizeof head);
  inStep_ = inStep_ && (head & ~(kKnown | kWithBytes)) == id;
  if (!inStep_ || !(head & kKnown)) return {};
  StateAnswer answer{Take(size), size, {}};
  if (!(head & kWithBytes)) return answer;
  if (const uint8_t* length = Take(sizeof answer.bytes.length)) {
    std::memcpy(&answer.bytes.length, length, sizeof answer.bytes.length);
  }
  answer.bytes.data = Take(answer.bytes.length);
  return answer;
}

}  // namespace qxview
