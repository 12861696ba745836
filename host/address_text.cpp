#include "host/address_text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace qxview {
namespace {

constexpr uint32_t kIPv4 = 1, kIPv6 = 2;
constexpr int kGroups = 8;

// All of `text` as a number of at most `digits` digits.
bool ParseNumber(std::string_view text, int base, size_t digits, uint32_t* out) {
  if (text.empty() || text.size() > digits) return false;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *out, base);
  return error == std::errc() && end == text.data() + text.size();
}

bool ParseQuad(std::string_view text, uint8_t* bytes) {
  for (int i = 0; i < 4; ++i) {
    const size_t dot = i < 3 ? text.find('.') : text.size();
    uint32_t number;
    if (dot == text.npos || !ParseNumber(text.substr(0, dot), 10, 3, &number) || number > 255) return false;
    bytes[i] = static_cast<uint8_t>(number);
    text.remove_prefix(i < 3 ? dot + 1 : dot);
  }
  return true;
}

struct Groups {
  uint8_t bytes[2 * kGroups] = {};
  int count = 0;
};

// Groups with single colons between them; none for an empty text. An IPv4 address may be the last where `mayEndInQuad`.
bool ParseGroups(std::string_view text, bool mayEndInQuad, Groups* out) {
  while (!text.empty()) {
    const size_t colon = text.find(':');
    const std::string_view group = text.substr(0, colon);
    const bool last = colon == text.npos;
    if (last && mayEndInQuad && group.find('.') != group.npos) {
      if (out->count > kGroups - 2 || !ParseQuad(group, out->bytes + 2 * out->count)) return false;
      out->count += 2;
      return true;
    }
    uint32_t number;
    if (out->count == kGroups || !ParseNumber(group, 16, 4, &number)) return false;
    out->bytes[2 * out->count] = static_cast<uint8_t>(number >> 8);
    out->bytes[2 * out->count + 1] = static_cast<uint8_t>(number);
    ++out->count;
    if (last) return true;
    text.remove_prefix(colon + 1);
    if (text.empty()) return false;   // ends in a colon
  }
  return true;
}

}  // namespace

bool ParseIPv4Address(std::string_view text, AddressSlot* out) {
  AddressSlot made{{}, kIPv4};
  if (!ParseQuad(text, made.address + 12)) return false;
  *out = made;
  return true;
}

bool ParseIPv6Address(std::string_view text, AddressSlot* out) {
  const size_t gap = text.find("::");
  Groups head, tail;
  if (gap == text.npos) {
    if (!ParseGroups(text, true, &head) || head.count != kGroups) return false;
  } else {
    if (!ParseGroups(text.substr(0, gap), false, &head) || !ParseGroups(text.substr(gap + 2), true, &tail)) return false;
    if (head.count + tail.count > kGroups - 1) return false;
  }
  AddressSlot made{{}, kIPv6};
  std::copy(head.bytes, head.bytes + 2 * head.count, made.address);
  std::copy(tail.bytes, tail.bytes + 2 * tail.count, made.address + 2 * (kGroups - tail.count));
  *out = made;
  return true;
}

}  // namespace qxview
