// Which packets something was counted of, as a filter can ask for them again: the numbers, as many as a command line bears.
#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace qxview {

class PacketSpans {
 public:
  // Numbers come in their order; one that comes again is the same packet.
  void Add(uint64_t number) {
    if (number == last_) return;
    ++count_;
    if (!spans_.empty() && spans_.back().second + 1 == number) {
      ++spans_.back().second;
      ++held_;
    } else if (spans_.size() < kMostSpans) {
      spans_.push_back({number, number});
      ++held_;
    }
    last_ = number;
  }
  uint64_t Count() const { return count_; }
  uint64_t Held() const { return held_; }   // the first ones, that the filter asks for
  uint64_t First() const { return spans_.empty() ? 0 : spans_[0].first; }

  std::string Filter() const {
    std::string filter;
    for (const auto& [first, last] : spans_) {
      filter += (filter.empty() ? "" : ", ") + std::to_string(first);
      if (last > first) filter += ".." + std::to_string(last);
    }
    return "frame.number in {" + filter + "}";
  }

 private:
  static constexpr size_t kMostSpans = 150;
  std::vector<std::pair<uint64_t, uint64_t>> spans_;
  uint64_t count_ = 0, held_ = 0, last_ = 0;
};

}  // namespace qxview
