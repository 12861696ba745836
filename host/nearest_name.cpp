#include "host/nearest_name.h"

#include <algorithm>

namespace qxview {
namespace {

constexpr size_t kLongestWord = 64;   // longer ones are no slip of a name

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

// Slips between two texts (optimal string alignment).
size_t CountSlips(std::string_view a, std::string_view b) {
  std::vector<size_t> above2(b.size() + 1), above(b.size() + 1), row(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    above2.swap(above);
    above.swap(row);
    row[0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      const bool same = Lower(a[i - 1]) == Lower(b[j - 1]);
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (same ? 0 : 1)});
      const bool swapped = i > 1 && j > 1 && Lower(a[i - 1]) == Lower(b[j - 2]) && Lower(a[i - 2]) == Lower(b[j - 1]);
      if (swapped) row[j] = std::min(row[j], above2[j - 2] + 1);
    }
  }
  return row[b.size()];
}

bool BeginsWith(std::string_view name, std::string_view word) {
  return name.size() > word.size() &&
         std::equal(word.begin(), word.end(), name.begin(), [](char a, char b) { return Lower(a) == Lower(b); });
}

}  // namespace

std::string_view NearestName(std::string_view word, const std::vector<std::string_view>& names) {
  if (word.empty() || word.size() > kLongestWord) return {};
  std::string_view nearest;
  size_t fewest = std::max<size_t>(1, word.size() / 3) + 1;
  for (const std::string_view name : names) {
    const size_t slips = word.size() > 1 && BeginsWith(name, word) ? 1 : CountSlips(word, name);
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
