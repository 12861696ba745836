// Counts by key in bounded memory: when there are too many keys, the half that counts least is merged.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace qxview {

// Keys are compared as bytes: records without padding, or texts.
template <typename Count>
class BoundedCounts {
 public:
  explicit BoundedCounts(size_t most) : most_(most) {}

  // The key's count, made when it is new. `weight` of a count says what is kept.
  template <typename Weight>
  Count& Of(const std::string& key, const Weight& weight, bool* isNew = nullptr) {
    auto found = counts_.find(key);
    if (isNew) *isNew = found == counts_.end();
    if (found != counts_.end()) return found->second;
    if (counts_.size() >= most_) Merge(weight);
    return counts_[key];
  }

  const std::unordered_map<std::string, Count>& All() const { return counts_; }
  uint64_t Merged() const { return merged_; }   // keys
  const Count& Others() const { return others_; }

 private:
  template <typename Weight>
  void Merge(const Weight& weight) {
    std::vector<uint64_t> weights;
    for (const auto& [key, count] : counts_) weights.push_back(weight(count));
    const auto middle = weights.begin() + static_cast<ptrdiff_t>(weights.size() / 2);
    std::nth_element(weights.begin(), middle, weights.end());
    const uint64_t limit = *middle;
    size_t left = counts_.size() / 2;   // of those that weigh as much as the middle one, some stay
    for (auto at = counts_.begin(); at != counts_.end();) {
      const uint64_t here = weight(at->second);
      if (here > limit || left == 0) {
        ++at;
        continue;
      }
      --left;
      others_ += at->second;
      ++merged_;
      at = counts_.erase(at);
    }
  }

  size_t most_;
  std::unordered_map<std::string, Count> counts_;
  Count others_{};
  uint64_t merged_ = 0;
};

}  // namespace qxview
