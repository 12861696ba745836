// Numbers of which each is little more than the one before: where packets stand in a file, which of them a filter lets through.
// Two bytes and a quarter each, for there are millions of them; others are taken, too.
#pragma once
#include <cstdint>
#include <deque>
#include <unordered_map>

namespace qxview {

class PackedNumbers {
 public:
  void Add(uint64_t number) {
    const size_t within = static_cast<size_t>(count_ % kBlock);
    if (within == 0) {
      blocks_.push_back({number, {}});
    } else if (number >= last_ && number - last_ < kFar) {
      blocks_.back().steps[within - 1] = static_cast<uint16_t>(number - last_);
    } else {
      blocks_.back().steps[within - 1] = kFar;
      far_[count_] = number;
    }
    last_ = number;
    ++count_;
  }
  uint64_t Count() const { return count_; }
  uint64_t Last() const { return last_; }
  // From 0, below the count.
  uint64_t At(uint64_t place) const {
    const Block& block = blocks_[static_cast<size_t>(place / kBlock)];
    uint64_t number = block.first;
    for (uint64_t i = place - place % kBlock; i < place; ++i) {
      const uint16_t step = block.steps[i % kBlock];
      number = step < kFar ? number + step : far_.at(i + 1);
    }
    return number;
  }
  // The place of the first one that is not below the number, of numbers that rise; the count where there is none.
  uint64_t PlaceOf(uint64_t number) const {
    uint64_t least = 0, most = count_;
    while (least < most) {
      const uint64_t middle = least + (most - least) / 2;
      if (At(middle) < number) least = middle + 1;
      else most = middle;
    }
    return least;
  }
  void Clear() { *this = {}; }

 private:
  static constexpr uint64_t kBlock = 32;
  static constexpr uint16_t kFar = 0xFFFF;   // a step that does not fit
  struct Block {
    uint64_t first;
    uint16_t steps[kBlock - 1];   // from each to the next
  };
  std::deque<Block> blocks_;                     // grows without being moved
  std::unordered_map<uint64_t, uint64_t> far_;   // what stands behind such steps
  uint64_t count_ = 0, last_ = 0;
};

}  // namespace qxview
