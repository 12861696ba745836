// What the look-ups of state gave while frames were decoded in their order, so that the frames can be decoded again in
// any order and by other engines, with the same lines.
#pragma once
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/states.h"

namespace qxview {

struct Engine;

class StateLog {
 public:
  StateLog();
  StateLog(const StateLog&) = delete;
  StateLog& operator=(const StateLog&) = delete;

  // Notes the look-ups of this engine, which keeps and uses its state as ever; none any more with null.
  void Record(Engine* engine);
  // False when memory ended: what is there is good, and nothing was noted behind it.
  bool Complete() const { return complete_; }
  // How much there is: taken in front of a frame, where the frame's look-ups start.
  size_t End() const { return bytes_.size(); }
  // What was noted behind that is forgotten.
  void Cut(size_t end) { bytes_.resize(end); }

  // For keeping a log elsewhere: what is there, nothing at all again, and what was kept.
  const std::vector<uint8_t>& Bytes() const { return bytes_; }
  void Clear();
  void Take(std::vector<uint8_t> bytes) { bytes_ = std::move(bytes); }

 private:
  friend class StateReplay;
  void Note(int32_t id, const StateAnswer& given) noexcept;
  void Append(const void* bytes, size_t size);

  StateRecorder recorder_;
  Engine* recorded_ = nullptr;
  std::vector<uint8_t> bytes_;   // of each look-up the row with what is there, the value, length and bytes
  bool complete_ = true;
};

// Answers the look-ups of an engine out of a log that is not recorded to meanwhile, in place of the engine's tables and
// of what its host keeps, until it is destroyed.
class StateReplay {
 public:
  StateReplay(const StateLog& log, Engine* engine);
  ~StateReplay();
  StateReplay(const StateReplay&) = delete;
  StateReplay& operator=(const StateReplay&) = delete;

  // The next frame's look-ups start here.
  void Seek(size_t position) { at_ = position; }
  // False when something else was looked up than what was recorded; it got no answer.
  bool InStep() const { return inStep_; }

 private:
  StateAnswer Answer(int32_t id);
  const uint8_t* Take(size_t size);

  const StateLog& log_;
  Engine* engine_;
  StateRecorder recorder_;
  size_t at_ = 0;
  bool inStep_ = true;
};

}  // namespace qxview
