#include "host/text.h"

#include <charconv>
#include <cstdio>

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
  const auto byteAt = [&](size_t i) { return i < text.size() ? static_cast<uint8_t>(text[i]) : uint8_t{0}; };
  const uint8_t lead = byteAt((*at)++);
  *point = lead;
  if (lead < 0x80) return true;
  const int32_t more = lead < 0xC2 || lead > 0xF4 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
  if (more == 0) return false;
  uint32_t joined = lead & (0x3Fu >> more);
  for (int32_t i = 0; i < more; ++i) {
    const uint8_t next = byteAt(*at + static_cast<size_t>(i));
    if ((next & 0xC0) != 0x80) return false;
    joined = joined << 6 | (next & 0x3F);
  }
  constexpr uint32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
  if (joined < kLeast[more] || joined > 0x10FFFF || (joined >= 0xD800 && joined < 0xE000)) return false;
  *at += static_cast<size_t>(more);
  *point = joined;
  return true;
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
