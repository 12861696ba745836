#include "host/nearest_name.h"

#include <algorithm>
#include <numeric>

namespace qxview {
namespace {

constexpr size_t kLongestWord = 64;   // longer ones are no slip of a name

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

// Counts the slips between a word and names (optimal string alignment). It is asked about thousands of names for one word, so it
// stops where a name cannot be near any more.
class SlipCounter {
 public:
  explicit SlipCounter(std::string_view word) : word_(word) {}

  // Slips to the name; `most` where there are as many or more.
  size_t Count(std::string_view name, size_t most) {
    const size_t longer = std::max(word_.size(), name.size()), shorter = std::min(word_.size(), name.size());
    if (longer - shorter >= most) return most;
    for (std::vector<size_t>* row : {&above2_, &above_, &row_}) row->resize(std::max(row->size(), name.size() + 1));
    std::iota(row_.begin(), row_.end(), size_t{0});
    size_t leastAbove = 0, least = 0;
    for (size_t i = 1; i <= word_.size(); ++i) {
      above2_.swap(above_);
      above_.swap(row_);
      leastAbove = least;
      least = row_[0] = i;
      for (size_t j = 1; j <= name.size(); ++j) {
        const bool same = Lower(word_[i - 1]) == Lower(name[j - 1]);
        row_[j] = std::min({above_[j] + 1, row_[j - 1] + 1, above_[j - 1] + (same ? 0 : 1)});
        const bool swapped = i > 1 && j > 1 && Lower(word_[i - 1]) == Lower(name[j - 2]) &&
                             Lower(word_[i - 2]) == Lower(name[j - 1]);
        if (swapped) row_[j] = std::min(row_[j], above2_[j - 2] + 1);
        least = std::min(least, row_[j]);
      }
      if (least >= most && leastAbove + 1 >= most) return most;
    }
    return std::min(row_[name.size()], most);
  }

 private:
  std::string_view word_;
  std::vector<size_t> above2_, above_, row_;
};

bool BeginsWith(std::string_view name, std::string_view word) {
  return name.size() > word.size() &&
         std::equal(word.begin(), word.end(), name.begin(), [](char a, char b) { return Lower(a) == Lower(b); });
}

}  // namespace

std::string_view NearestName(std::string_view word, const std::vector<std::string_view>& names) {
  if (word.empty() || word.size() > kLongestWord) return {};
  std::string_view nearest;
  size_t fewest = std::max<size_t>(1, word.size() / 3) + 1;
  SlipCounter slipsOf(word);
  for (const std::string_view name : names) {
    const size_t slips = word.size() > 1 && BeginsWith(name, word) ? 1 : slipsOf.Count(name, fewest);
    // A word of which no letter is right is no slip.
    if (slips >= fewest || slips >= std::max(word.size(), name.size())) continue;
    fewest = slips;
    nearest = name;
  }
  return nearest;
}

std::string NearestHint(std::string_view word, const std::vector<std::string_view>& names) {
  const std::string_view nearest = NearestName(word, names);
  return nearest.empty() ? std::string() : "; the nearest is " + std::string(nearest);
}

}  // namespace qxview
