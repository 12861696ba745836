// Texts between this program, which holds names as UTF-8, and Windows, which takes UTF-16.
#pragma once
#include <cstdint>
#include <string>

namespace qxview {

// UTF-8; what is not valid UTF-8 is taken in the ANSI code page, which is what hosts of older days pass.
std::wstring WideOf(const std::string& text);
std::string NarrowOf(const wchar_t* text);   // to UTF-8

// A path as the wide file functions take it, also when it is longer than 260 characters.
std::wstring WidePathOf(const std::string& path);

// What the system says of an error of GetLastError, without line ends.
std::string ErrorText(uint32_t error);

}  // namespace qxview
