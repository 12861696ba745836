// Small text operations of the stand-alone host.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace qxview {

std::string Trim(std::string_view text);
bool EqualsIgnoringCase(std::string_view a, std::string_view b);

// Decimal, or hexadecimal after 0x; false for anything else. At most 18 digits.
bool ParseNumber(std::string_view text, int64_t* number);

}  // namespace qxview
