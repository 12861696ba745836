// The name that a misspelt word was likely meant to be.
#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace qxview {

// The name that is fewest typing slips (a letter wrong, missing, too many, or two swapped; case ignored) away from the
// word, or that the word begins; empty when none is near.
std::string_view NearestName(std::string_view word, const std::vector<std::string_view>& names);

// "; the nearest is NAME", or nothing when none is near.
std::string NearestHint(std::string_view word, const std::vector<std::string_view>& names);

}  // namespace qxview
