#include "browse/search.h"

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

bool IsIn(const Literal& literal, std::string_view text) {
  AskedValue value;
  value.line = text;
  return literal.Matches(value);
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

SearchRun::SearchRun(ViewedCapture& capture, SearchText search, uint64_t fromNumber, bool backward)
    : capture_(capture), search_(std::move(search)), place_(capture.PlaceOf(fromNumber)), backward_(backward) {
  lines_.AskEveryLine();
}

bool SearchRun::Holds(uint64_t number) {
  if (search_.in == SearchIn::kBytes) {
    const uint8_t* bytes;
    int32_t length;
    return capture_.ReadBytes(number, &bytes, &length) && FindBytes(search_, bytes, length) >= 0;
  }
  if (search_.in == SearchIn::kList) {
    PacketRow row;
    if (!capture_.ReadRow(number, &row)) return false;
    for (const std::string* cell : {&row.source, &row.destination, &row.protocol, &row.summary}) {
      if (IsIn(search_.literal, *cell)) return true;
    }
    return false;
  }
  if (!capture_.Asks(lines_, number)) return false;
  const std::vector<AskedValue>& values = lines_.ValuesOf(0);
  return std::any_of(values.begin(), values.end(), [&](const AskedValue& value) { return IsIn(search_.literal, value.line); });
}

SearchRun::State SearchRun::Advance(int32_t packets) {
  for (int32_t i = 0; i < packets; ++i) {
    const uint64_t count = capture_.ShownCount();
    if (looked_++ >= count) return State::kNotFound;
    if (backward_) {
      wrapped_ |= place_ == 0;
      place_ = place_ == 0 ? count - 1 : std::min(place_, count) - 1;
    } else {
      wrapped_ |= place_ + 1 >= count;
      place_ = place_ + 1 >= count ? 0 : place_ + 1;
    }
    number_ = capture_.NumberAt(place_);
    if (Holds(number_)) return State::kFound;
  }
  return State::kGoesOn;
}

}  // namespace qxview
