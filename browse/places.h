// Where a view has been, and what its user marked.
#pragma once
#include <cstdint>
#include <set>
#include <vector>

namespace qxview {

// Packets that were visited, as a browser keeps its pages: going on from an earlier one forgets those behind it.
class VisitedPlaces {
 public:
  void Visit(uint64_t number) {
    if (!places_.empty() && places_[at_] == number) return;
    if (!places_.empty()) places_.resize(at_ + 1);
    if (places_.size() >= kMost) places_.erase(places_.begin());
    places_.push_back(number);
    at_ = places_.size() - 1;
  }
  // 0 where there is none.
  uint64_t Back() { return at_ > 0 ? places_[--at_] : 0; }
  uint64_t Forward() { return at_ + 1 < places_.size() ? places_[++at_] : 0; }

 private:
  static constexpr size_t kMost = 1000;
  std::vector<uint64_t> places_;
  size_t at_ = 0;
};

class Marks {
 public:
  void Toggle(uint64_t number) {
    if (!marked_.erase(number)) marked_.insert(number);
  }
  bool Has(uint64_t number) const { return marked_.count(number) > 0; }
  const std::set<uint64_t>& All() const { return marked_; }
  void Clear() { marked_.clear(); }
  // The next marked packet behind this one, around to the first; 0 for none.
  uint64_t Next(uint64_t number) const {
    if (marked_.empty()) return 0;
    const auto next = marked_.upper_bound(number);
    return next == marked_.end() ? *marked_.begin() : *next;
  }
  uint64_t Before(uint64_t number) const {
    if (marked_.empty()) return 0;
    const auto at = marked_.lower_bound(number);
    return at == marked_.begin() ? *marked_.rbegin() : *std::prev(at);
  }

 private:
  std::set<uint64_t> marked_;
};

}  // namespace qxview
