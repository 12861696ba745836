#include "browse/search_text.h"

#include <algorithm>
#include <string_view>

namespace qxview {
namespace {

int32_t HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

bool TakeHexadecimal(std::string_view typed, std::vector<uint8_t>* bytes) {
  int32_t high = -1;
  for (const char c : typed) {
    if (c == ' ' || c == ':' || c == '-') continue;
    const int32_t digit = HexDigit(c);
    if (digit < 0) return false;
    if (high >= 0) bytes->push_back(static_cast<uint8_t>(high << 4 | digit));
    high = high >= 0 ? -1 : digit;
  }
  return high < 0 && !bytes->empty();
}

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (std::string_view("^$\\.*+?()[]{}|").find(c) != std::string_view::npos) escaped += '\\';
    escaped += c;
  }
  return escaped;
}

}  // namespace

bool TakeSearch(SearchIn in, const std::string& typed, SearchText* search, std::string* wrong) {
  *search = SearchText{};
  search->in = in;
  if (typed.empty()) return *wrong = "nothing to look for", false;
  if (in == SearchIn::kBytes) {
    const bool isHexadecimal = typed.starts_with("0x") || typed.starts_with("0X");
    if (!isHexadecimal) return search->bytes.assign(typed.begin(), typed.end()), true;
    if (TakeHexadecimal(std::string_view(typed).substr(2), &search->bytes)) return true;
    return *wrong = "0x is followed by pairs of hexadecimal digits", false;
  }
  const bool isPattern = typed.size() > 2 && typed.front() == '/' && typed.back() == '/';
  return search->literal.TakePattern(isPattern ? typed.substr(1, typed.size() - 2) : Escaped(typed), wrong);
}

bool IsIn(const SearchText& search, std::string_view text) {
  AskedValue value;
  value.line = text;
  return search.literal.Matches(value);
}

int32_t FindBytes(const SearchText& search, const uint8_t* bytes, int32_t length, int32_t from) {
  const auto wanted = static_cast<int32_t>(search.bytes.size());
  if (search.offset >= 0) {
    const bool fits = search.offset <= length - wanted;
    return fits && std::equal(search.bytes.begin(), search.bytes.end(), bytes + search.offset) ? search.offset : -1;
  }
  if (from > length) return -1;
  const auto at = std::search(bytes + from, bytes + length, search.bytes.begin(), search.bytes.end());
  return at == bytes + length ? -1 : static_cast<int32_t>(at - bytes);
}

}  // namespace qxview
