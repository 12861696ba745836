#include "host/text.h"

#include <charconv>

namespace qxview {

std::string Trim(std::string_view text) {
  constexpr const char* kBlanks = " \t\r\n";
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(kBlanks) - first + 1));
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  for (size_t i = 0; i < a.size(); ++i) {
    if (lower(a[i]) != lower(b[i])) return false;
  }
  return true;
}

bool ParseNumber(std::string_view text, int64_t* number) {
  const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  if (hex) text.remove_prefix(2);
  if (text.empty() || text.size() > 18 || text[0] == '-') return false;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *number, hex ? 16 : 10);
  return error == std::errc() && end == text.data() + text.size();
}

}  // namespace qxview
