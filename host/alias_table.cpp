#include "host/alias_table.h"

#include <algorithm>

#include "host/text.h"
#include "host/text_file.h"

namespace qxview {
namespace {

int32_t HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

bool ParseMac(const std::string& text, uint8_t* out) {
  if (text.size() != 17) return false;
  for (size_t i = 0; i < 6; ++i) {
    const int32_t high = HexValue(text[3 * i]), low = HexValue(text[3 * i + 1]);
    if (high < 0 || low < 0 || (i < 5 && text[3 * i + 2] != ':' && text[3 * i + 2] != '-')) return false;
    out[i] = static_cast<uint8_t>(high << 4 | low);
  }
  return true;
}

bool ParseIPv4(const std::string& text, uint8_t* out) {
  size_t at = 0;
  for (int32_t i = 0; i < 4; ++i) {
    if (i > 0 && (at >= text.size() || text[at++] != '.')) return false;
    int32_t value = 0;
    const size_t start = at;
    for (; at < text.size() && at - start < 3 && text[at] >= '0' && text[at] <= '9'; ++at) {
      value = value * 10 + text[at] - '0';
    }
    if (at == start || value > 255) return false;
    out[i] = static_cast<uint8_t>(value);
  }
  return at == text.size();
}

// Colon groups of RFC 4291, with "::" once and a dotted tail.
bool ParseIPv6(const std::string& text, uint8_t* out) {
  std::vector<uint8_t> head, tail;
  bool gap = false;
  size_t at = 0;
  if (text.rfind("::", 0) == 0) {
    gap = true;
    at = 2;
  }
  while (at < text.size()) {
    std::vector<uint8_t>& side = gap ? tail : head;
    const size_t end = std::min(text.find(':', at), text.size());
    const std::string group = text.substr(at, end - at);
    uint8_t dotted[4];
    if (end == text.size() && ParseIPv4(group, dotted)) {
      side.insert(side.end(), dotted, dotted + 4);
      break;
    }
    if (group.empty() || group.size() > 4) return false;
    int32_t value = 0;
    for (const char c : group) {
      if (HexValue(c) < 0) return false;
      value = value << 4 | HexValue(c);
    }
    side.push_back(static_cast<uint8_t>(value >> 8));
    side.push_back(static_cast<uint8_t>(value));
    at = end;
    if (at == text.size()) break;
    if (text.compare(at, 2, "::") == 0) {
      if (gap) return false;
      gap = true;
      at += 2;
    } else if (++at == text.size()) {
      return false;   // a colon at the end
    }
  }
  const size_t given = head.size() + tail.size();
  if (gap ? given > 14 : given != 16) return false;
  std::fill(out, out + 16, 0);
  std::copy(head.begin(), head.end(), out);
  std::copy(tail.begin(), tail.end(), out + 16 - tail.size());
  return true;
}

size_t AddressLength(AliasKind kind) { return kind == AliasKind::kHardware ? 6 : kind == AliasKind::kIPv4 ? 4 : 16; }

}  // namespace

bool ParseAddress(const std::string& text, AliasKind* kind, std::array<uint8_t, 16>* address) {
  address->fill(0);
  if (ParseMac(text, address->data())) return *kind = AliasKind::kHardware, true;
  if (ParseIPv4(text, address->data())) return *kind = AliasKind::kIPv4, true;
  if (text.find(':') != std::string::npos && ParseIPv6(text, address->data())) return *kind = AliasKind::kIPv6, true;
  return false;
}

AliasTable::Key AliasTable::MakeKey(AliasKind kind, const uint8_t* address) {
  Key key{};
  key[0] = static_cast<uint8_t>(kind);
  std::copy_n(address, AddressLength(kind), key.begin() + 1);
  return key;
}

bool AliasTable::ReadFile(const std::string& path, std::string* message) {
  std::istringstream file;
  std::string reason;
  if (!ReadTextFile(path, &file, &reason)) return *message = path + ": the alias file: " + reason, false;
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    const size_t hash = line.find('#');
    const std::string text = Trim(line.substr(0, hash));
    if (text.empty()) continue;
    const size_t blank = text.find_first_of(" \t");
    const std::string place = path + ", line " + std::to_string(number);
    Alias alias{};
    if (!ParseAddress(text.substr(0, blank), &alias.kind, &alias.address)) {
      return *message = place + ": \"" + text.substr(0, blank) + "\" is no hardware, IPv4 or IPv6 address", false;
    }
    if (blank == std::string::npos) return *message = place + ": the address has no name behind it", false;
    alias.name = Trim(text.substr(blank));
    if (hash != std::string::npos) alias.comment = Trim(line.substr(hash + 1));
    index_[MakeKey(alias.kind, alias.address.data())] = entries_.size();
    entries_.push_back(alias);
  }
  return true;
}

const std::string* AliasTable::Find(AliasKind kind, const uint8_t* address) const {
  const auto found = index_.find(MakeKey(kind, address));
  return found == index_.end() ? nullptr : &entries_[found->second].name;
}

}  // namespace qxview
