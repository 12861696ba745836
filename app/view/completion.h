// Keys that a filter or a column may name.
#pragma once
#include <string>
#include <vector>

namespace qxview {

std::vector<std::string> CompleteKey(const std::string& word);

}  // namespace qxview
