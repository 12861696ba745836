// Small text files of the user's: settings, names of addresses.
#pragma once
#include <sstream>
#include <string>

namespace qxview {

// The whole file; false with a reason when it cannot be opened, read, or is larger than a file for people is.
bool ReadTextFile(const std::string& path, std::istringstream* text, std::string* reason);

}  // namespace qxview
