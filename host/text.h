// Small text operations of the stand-alone host.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace qxview {

std::string Trim(std::string_view text);
bool EqualsIgnoringCase(std::string_view a, std::string_view b);

// Takes the UTF-8 character at *at, inside the text, and moves behind it; false with its byte, one byte on, where there is none.
bool TakeCharacter(std::string_view text, size_t* at, uint32_t* point);

// A value for a message: in quotation marks, controls and bytes that are no UTF-8 as \xNN, cut when it is long.
std::string QuoteValue(std::string_view value);

// The text with what is no character, or a control, as \xNN: for a terminal, which would obey it.
std::string EscapeControls(std::string_view text);

// Decimal, or hexadecimal after 0x; false for anything else. At most 18 digits.
bool ParseNumber(std::string_view text, int64_t* number);

}  // namespace qxview
