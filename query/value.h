// Values as questions compare them: what a line says, what a user typed, and how the two compare.
#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <regex>
#include <string>
#include <string_view>

namespace qxview {

// A number as it is written: decimal or 0x-hexadecimal, with a sign or a fraction.
struct Quantity {
  bool here = false, negative = false, isReal = false;
  uint64_t magnitude = 0;
  double real = 0;
};
Quantity ParseQuantity(std::string_view text);

struct NetworkAddress {
  int32_t length = 0;         // of its bytes: 4, 6, 8, 16; 0 for none
  int32_t prefix = 0;         // bits that count
  std::array<uint8_t, 16> bytes{};
};
// "192.0.2.1", "2001:db8::/32", "02:00:00:00:00:01", "02-00-00-00-00-01".
NetworkAddress ParseNetworkAddress(std::string_view text);

// "2026-11-21", with a blank or T "11:15", ":31", ".7165", with "UTC" or "Z" behind; nanoseconds since 1970.
bool ParseTime(std::string_view text, int64_t* nanoseconds);

enum class AskedKind : uint8_t { kNone, kNumber, kSigned, kText, kTime };

// What one line says under a key that was asked for.
struct AskedValue {
  AskedKind kind = AskedKind::kNone;
  uint64_t number = 0;           // kNumber, kSigned, kTime (nanoseconds)
  std::string_view text;         // kText; in the characters of lines, as `line`
  std::string_view line;         // the whole line
};

enum class Comparison : uint8_t { kEqual, kUnequal, kLess, kLessOrEqual, kGreater, kGreaterOrEqual, kContains, kMatches };

// What a user typed to compare with, read in every way that it can be meant.
class Literal {
 public:
  Literal() = default;
  // `text` in UTF-8; false for characters that no line has, then *wrong says so.
  bool Take(std::string_view text, std::string* wrong);
  // The same as a regular expression.
  bool TakePattern(std::string_view text, std::string* wrong, bool ignoreCase = true);
  bool IsPattern() const { return pattern_ != nullptr; }

  // For order and equality, not kContains and kMatches.
  bool Holds(Comparison comparison, const AskedValue& value) const;
  // The same of an address by its bytes; *isTold: whether they say it.
  bool HoldsOfAddress(Comparison comparison, const uint8_t* address, int32_t length, bool* isTold) const;
  bool IsIn(const AskedValue& value) const;   // contains
  bool Matches(const AskedValue& value) const;
  const std::string& Text() const { return text_; }
  bool IsQuantity() const { return quantity_.here; }

 private:
  std::string text_;   // in the characters of lines
  Quantity quantity_;
  NetworkAddress address_;
  bool isTime_ = false;
  int64_t time_ = 0;
  std::shared_ptr<std::regex> pattern_;
};

// How two values of the packet compare.
bool Compare(Comparison comparison, const AskedValue& a, const AskedValue& b);

// The value's text: of a number its digits.
std::string TextOfValue(const AskedValue& value);

}  // namespace qxview
