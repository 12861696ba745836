#include "host/text.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "core/characters.h"

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

bool TakeCharacter(std::string_view text, size_t* at, uint32_t* point) {
  const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data()) + *at;
  const Utf8Character taken = Utf8At(bytes, static_cast<int32_t>(std::min<size_t>(text.size() - *at, 4)));
  *point = taken.octets ? taken.code : bytes[0];
  *at += taken.octets ? static_cast<size_t>(taken.octets) : 1;
  return taken.octets != 0;
}

namespace {

// The character at *at, and what no terminal is to see as \xNN.
void AppendSafely(std::string_view text, size_t* at, std::string* out) {
  const size_t start = *at;
  uint32_t point;
  const bool valid = TakeCharacter(text, at, &point);
  if (valid && point >= 0x20 && (point < 0x7F || point >= 0xA0)) {
    *out += text.substr(start, *at - start);
    return;
  }
  for (size_t i = start; i < *at; ++i) {
    char hex[8];
    std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<uint8_t>(text[i]));
    *out += hex;
  }
}

}  // namespace

std::string QuoteValue(std::string_view value) {
  constexpr int32_t kMostShown = 60;
  std::string quoted = "\"";
  int32_t shown = 0;
  for (size_t at = 0; at < value.size(); ++shown) {
    if (shown == kMostShown) return quoted + "...\"";
    AppendSafely(value, &at, &quoted);
  }
  return quoted + "\"";
}

std::string EscapeControls(std::string_view text) {
  std::string safe;
  for (size_t at = 0; at < text.size();) AppendSafely(text, &at, &safe);
  return safe;
}

bool ParseNumber(std::string_view text, int64_t* number) {
  const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  if (hex) text.remove_prefix(2);
  if (text.empty() || text.size() > 18 || text[0] == '-') return false;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *number, hex ? 16 : 10);
  return error == std::errc() && end == text.data() + text.size();
}

}  // namespace qxview
