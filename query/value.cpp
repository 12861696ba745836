#include "query/value.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <optional>

#include "core/budgets.h"
#include "core/characters.h"
#include "host/alias_table.h"
#include "host/text.h"

namespace qxview {
namespace {

// Less than, equal to or greater than zero; nothing where the two have no order.
using Order = std::optional<int>;

template <typename T>
int OrderOf(const T& a, const T& b) { return a < b ? -1 : b < a ? 1 : 0; }

Order OrderOf(const Quantity& a, const Quantity& b) {
  if (!a.here || !b.here) return {};
  if (a.isReal || b.isReal) return OrderOf(a.real, b.real);
  if (a.negative != b.negative) return a.negative ? -1 : 1;
  return a.negative ? OrderOf(b.magnitude, a.magnitude) : OrderOf(a.magnitude, b.magnitude);
}

Quantity QuantityOf(uint64_t number, bool isSigned) {
  Quantity quantity;
  quantity.here = true;
  quantity.negative = isSigned && static_cast<int64_t>(number) < 0;
  quantity.magnitude = quantity.negative ? 0 - number : number;
  quantity.real = static_cast<double>(quantity.magnitude) * (quantity.negative ? -1 : 1);
  return quantity;
}

std::string_view FirstWord(std::string_view text) { return text.substr(0, text.find_first_of(" ,;(")); }

// What stands in the first brackets behind the first word: the address behind a name, the name behind a number.
std::string_view InBrackets(std::string_view text) {
  const size_t open = text.find_first_of("([");
  if (open == text.npos) return {};
  const size_t close = text.find_first_of(")]", open);
  return close == text.npos ? std::string_view{} : text.substr(open + 1, close - open - 1);
}

Quantity QuantityOf(const AskedValue& value) {
  switch (value.kind) {
    case AskedKind::kNumber: return QuantityOf(value.number, false);
    case AskedKind::kSigned:
    case AskedKind::kTime: return QuantityOf(value.number, true);
    case AskedKind::kText: return ParseQuantity(FirstWord(value.text));
    case AskedKind::kNone: break;
  }
  return {};
}

bool TakeDotted(std::string_view text, uint8_t* out);

NetworkAddress AddressOf(const AskedValue& value) {
  if (value.kind != AskedKind::kText) return {};
  NetworkAddress dotted;
  if (TakeDotted(value.text, dotted.bytes.data())) {   // which most are
    dotted.length = 4;
    dotted.prefix = 32;
    return dotted;
  }
  const NetworkAddress first = ParseNetworkAddress(FirstWord(value.text));
  return first.length ? first : ParseNetworkAddress(InBrackets(value.text));
}

bool PrefixHolds(const NetworkAddress& network, const NetworkAddress& address) {
  if (network.length != address.length) return false;
  const size_t whole = static_cast<size_t>(network.prefix / 8);
  if (std::memcmp(network.bytes.data(), address.bytes.data(), whole) != 0) return false;
  const int32_t rest = network.prefix % 8;
  return rest == 0 || ((network.bytes[whole] ^ address.bytes[whole]) >> (8 - rest)) == 0;
}

Order OrderOf(const NetworkAddress& a, const NetworkAddress& b) {
  if (a.length == 0 || a.length != b.length) return {};
  return std::memcmp(a.bytes.data(), b.bytes.data(), static_cast<size_t>(a.length));
}

bool Holds(Comparison comparison, Order order) {
  if (!order) return false;
  switch (comparison) {
    case Comparison::kEqual:
    case Comparison::kUnequal: return *order == 0;   // "unequal" is asked of all values together, by the filter
    case Comparison::kLess: return *order < 0;
    case Comparison::kLessOrEqual: return *order <= 0;
    case Comparison::kGreater: return *order > 0;
    case Comparison::kGreaterOrEqual: return *order >= 0;
    case Comparison::kContains:
    case Comparison::kMatches: break;
  }
  return false;
}

// What the line says behind its label and its number: "= Host Record (A)".
std::string_view BehindNumber(std::string_view line) {
  size_t at = line.find('=');
  if (at == line.npos) at = line.find_first_of(":");
  return at == line.npos ? std::string_view{} : line.substr(at + 1);
}

std::string_view Trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// Whether a word names a value that the line has as a number: "UDP" of "Protocol: 17 = UDP", "A" of "Host Record (A)".
bool Names(std::string_view line, std::string_view word) {
  const std::string_view name = Trimmed(BehindNumber(line));
  return EqualsIgnoringCase(name, word) || EqualsIgnoringCase(InBrackets(name), word) ||
         EqualsIgnoringCase(Trimmed(name.substr(0, name.find('('))), word);
}

bool DigitsAt(std::string_view text, size_t at, size_t count, int64_t* number) {
  if (at + count > text.size()) return false;
  const auto [end, error] = std::from_chars(text.data() + at, text.data() + at + count, *number);
  return error == std::errc() && end == text.data() + at + count && *number >= 0;
}

// "192.0.2.1", which most addresses of packets are.
bool TakeDotted(std::string_view text, uint8_t* out) {
  size_t at = 0;
  for (int32_t i = 0; i < 4; ++i) {
    if (i > 0 && (at >= text.size() || text[at++] != '.')) return false;
    uint32_t value = 0;
    const size_t start = at;
    for (; at < text.size() && at - start < 3 && text[at] >= '0' && text[at] <= '9'; ++at) {
      value = value * 10 + static_cast<uint32_t>(text[at] - '0');
    }
    if (at == start || value > 255) return false;
    out[i] = static_cast<uint8_t>(value);
  }
  return at == text.size();
}

// Days since 1970 of a date of the Gregorian calendar.
int64_t DaysOf(int64_t year, int64_t month, int64_t day) {
  year -= month <= 2;
  const int64_t era = year / 400, ofEra = year - era * 400;
  const int64_t ofYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  return era * 146097 + ofEra * 365 + ofEra / 4 - ofEra / 100 + ofYear - 719468;
}

}  // namespace

Quantity ParseQuantity(std::string_view text) {
  Quantity quantity;
  quantity.negative = text.starts_with("-");
  if (quantity.negative) text.remove_prefix(1);
  const bool isHex = text.starts_with("0x") || text.starts_with("0X");
  if (isHex) text.remove_prefix(2);
  const char* const last = text.data() + text.size();
  auto [end, error] = std::from_chars(text.data(), last, quantity.magnitude, isHex ? 16 : 10);
  if (text.empty() || error != std::errc() || end == text.data()) return {};
  quantity.real = static_cast<double>(quantity.magnitude);
  if (!isHex && end != last && *end == '.') {
    double scale = 0.1;
    const char* const point = end++;
    for (; end != last && *end >= '0' && *end <= '9'; ++end, scale /= 10) quantity.real += scale * (*end - '0');
    quantity.isReal = end > point + 1;
  }
  if (end != last) return {};
  if (quantity.negative) quantity.real = -quantity.real;
  quantity.here = true;
  return quantity;
}

NetworkAddress ParseNetworkAddress(std::string_view text) {
  NetworkAddress address;
  if (TakeDotted(text, address.bytes.data())) {
    address.length = 4;
    address.prefix = 32;
    return address;
  }
  address.bytes.fill(0);
  const size_t slash = text.rfind('/');
  AliasKind kind;
  const std::string alone(text.substr(0, slash));
  if (alone.size() > 64 || !ParseAddress(alone, &kind, &address.bytes)) return {};
  address.length = kind == AliasKind::kIPv4 ? 4 : kind == AliasKind::kIPv6 ? 16 : 6;
  address.prefix = address.length * 8;
  if (slash == text.npos) return address;
  const Quantity prefix = ParseQuantity(text.substr(slash + 1));
  if (!prefix.here || prefix.negative || prefix.isReal || prefix.magnitude > static_cast<uint64_t>(address.prefix)) return {};
  address.prefix = static_cast<int32_t>(prefix.magnitude);
  return address;
}

bool ParseTime(std::string_view text, int64_t* nanoseconds) {
  for (const std::string_view zone : {" UTC", "Z"}) {
    if (text.ends_with(zone)) text.remove_suffix(zone.size());
  }
  int64_t year, month, day, hour = 0, minute = 0, second = 0, fraction = 0;
  if (text.size() < 10 || text[4] != '-' || text[7] != '-' || !DigitsAt(text, 0, 4, &year) ||
      !DigitsAt(text, 5, 2, &month) || !DigitsAt(text, 8, 2, &day) || month < 1 || month > 12 || day < 1 || day > 31) {
    return false;
  }
  size_t at = 10;
  if (at < text.size()) {
    if ((text[at] != ' ' && text[at] != 'T') || !DigitsAt(text, at + 1, 2, &hour) || text.size() < at + 6 ||
        text[at + 3] != ':' || !DigitsAt(text, at + 4, 2, &minute)) {
      return false;
    }
    at += 6;
  }
  if (at < text.size()) {
    if (text[at] != ':' || !DigitsAt(text, at + 1, 2, &second)) return false;
    at += 3;
  }
  if (at < text.size()) {
    const size_t digits = text.size() - at - 1;
    if (text[at] != '.' || digits < 1 || digits > 9 || !DigitsAt(text, at + 1, digits, &fraction)) return false;
    for (size_t i = digits; i < 9; ++i) fraction *= 10;
  }
  constexpr int64_t kYears = 250;   // around 1970 that nanoseconds reach
  if (year < 1970 - kYears || year > 1970 + kYears) return false;
  *nanoseconds = (((DaysOf(year, month, day) * 24 + hour) * 60 + minute) * 60 + second) * 1000000000 + fraction;
  return true;
}

bool Literal::Take(std::string_view text, std::string* wrong) {
  text_.clear();
  for (size_t at = 0; at < text.size();) {
    const Utf8Character next = Utf8At(reinterpret_cast<const uint8_t*>(text.data()) + at, static_cast<int32_t>(text.size() - at));
    const size_t octets = next.octets ? static_cast<size_t>(next.octets) : 1;
    const uint8_t character = next.octets ? Windows1252Of(next.code) : static_cast<uint8_t>(text[at]);
    if (character == 0 && next.code != 0) {
      *wrong = "no line holds " + QuoteValue(text.substr(at, octets)) + ": lines are in the characters of Windows-1252";
      return false;
    }
    text_ += static_cast<char>(character);
    at += octets;
  }
  quantity_ = ParseQuantity(text_);
  address_ = ParseNetworkAddress(text_);
  isTime_ = ParseTime(text_, &time_);
  return true;
}

bool Literal::TakePattern(std::string_view text, std::string* wrong, bool ignoreCase) {
  if (!Take(text, wrong)) return false;
  if (text_.size() > kMostPattern) return *wrong = "a regular expression has up to 1024 characters", false;
  // Without backtracking, so that no text makes a pattern slow.
  auto form = std::regex::ECMAScript | std::regex::optimize | std::regex_constants::__polynomial;
  if (ignoreCase) form |= std::regex::icase;
  try {
    pattern_ = std::make_shared<std::regex>(text_, form);
    return true;
  } catch (const std::regex_error& error) {
    namespace code = std::regex_constants;
    const auto why = error.code();
    *wrong = why == code::error_brack   ? "a [ is not closed"
             : why == code::error_paren ? "a ( is not closed, or a ) stands alone"
             : why == code::error_brace || why == code::error_badbrace ? "what stands in braces is no count"
             : why == code::error_badrepeat ? "*, +, ? or { follows nothing that it could repeat"
             : why == code::error_range     ? "a range in brackets runs backwards"
             : why == code::error_escape    ? "there is no such escape behind \\"
             : why == code::error_backref || why == code::error_complexity ? "references to groups are not known"
             : why == code::error_space || why == code::error_stack
                 ? "it repeats too much"
                 : "this is no regular expression";
    return false;
  }
}

bool Literal::Holds(Comparison comparison, const AskedValue& value) const {
  if (value.kind == AskedKind::kNone) return false;
  if (value.kind == AskedKind::kTime) {
    if (isTime_) return qxview::Holds(comparison, OrderOf(static_cast<int64_t>(value.number), time_));
    if (!quantity_.here) return false;
    constexpr double kSecond = 1e9;   // seconds since 1970
    return qxview::Holds(comparison, OrderOf(static_cast<double>(static_cast<int64_t>(value.number)), quantity_.real * kSecond));
  }
  if (value.kind != AskedKind::kText) {
    if (quantity_.here) return qxview::Holds(comparison, OrderOf(QuantityOf(value), quantity_));
    return (comparison == Comparison::kEqual || comparison == Comparison::kUnequal) && Names(value.line, text_);
  }
  if (address_.length) {
    const NetworkAddress address = AddressOf(value);
    if (address.length == address_.length) {
      if (comparison == Comparison::kEqual || comparison == Comparison::kUnequal) return PrefixHolds(address_, address);
      return qxview::Holds(comparison, OrderOf(address, address_));
    }
  }
  int64_t time;
  if (isTime_ && ParseTime(value.text, &time)) return qxview::Holds(comparison, OrderOf(time, time_));
  if (quantity_.here) {
    if (const Order order = OrderOf(QuantityOf(value), quantity_)) return qxview::Holds(comparison, order);
  }
  if ((comparison == Comparison::kEqual || comparison == Comparison::kUnequal) && Names(value.text, text_)) return true;
  return qxview::Holds(comparison, OrderOf(value.text, std::string_view(text_)));
}

bool Literal::HoldsOfAddress(Comparison comparison, const uint8_t* address, int32_t length, bool* isTold) const {
  *isTold = address_.length == length;
  if (!*isTold) return false;
  if (address_.prefix == 32 && length == 4 && comparison <= Comparison::kUnequal) {   // which most are
    return std::memcmp(address_.bytes.data(), address, 4) == 0;
  }
  NetworkAddress given;
  given.length = length;
  given.prefix = length * 8;
  std::memcpy(given.bytes.data(), address, static_cast<size_t>(length));
  if (comparison == Comparison::kEqual || comparison == Comparison::kUnequal) return PrefixHolds(address_, given);
  return qxview::Holds(comparison, OrderOf(given, address_));
}

namespace {

// Where a text is looked for: a text itself, of a number all that its line says behind the label.
std::string_view Searched(const AskedValue& value) {
  if (value.kind == AskedKind::kText) return value.text;
  if (value.kind == AskedKind::kNone) return value.line;
  const size_t label = value.line.find_first_of(":=");
  return label == value.line.npos ? value.line : Trimmed(value.line.substr(label + 1));
}

}  // namespace

bool Literal::IsIn(const AskedValue& value) const { return Searched(value).find(text_) != std::string_view::npos; }

bool Literal::Matches(const AskedValue& value) const {
  const std::string_view searched = Searched(value);
  return pattern_ && std::regex_search(searched.begin(), searched.end(), *pattern_);
}

bool Compare(Comparison comparison, const AskedValue& a, const AskedValue& b) {
  if (a.kind == AskedKind::kNone || b.kind == AskedKind::kNone) return false;
  if (a.kind != AskedKind::kText || b.kind != AskedKind::kText) return Holds(comparison, OrderOf(QuantityOf(a), QuantityOf(b)));
  const NetworkAddress one = AddressOf(a), other = AddressOf(b);
  if (one.length && one.length == other.length) return Holds(comparison, OrderOf(one, other));
  return Holds(comparison, OrderOf(a.text, b.text));
}

std::string TextOfValue(const AskedValue& value) {
  switch (value.kind) {
    case AskedKind::kNumber: return std::to_string(value.number);
    case AskedKind::kSigned:
    case AskedKind::kTime: return std::to_string(static_cast<int64_t>(value.number));
    case AskedKind::kText: return std::string(value.text);
    case AskedKind::kNone: break;
  }
  return {};
}

}  // namespace qxview
