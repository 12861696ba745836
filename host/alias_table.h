// The user's names for hardware and network addresses, from a file with a line each:
//
//    00:1B:21:AA:BB:CC   printer        # second floor
//    10.0.0.1            gateway
//    2001:db8::1         archive
#pragma once
#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace qxview {

enum class AliasKind : uint8_t { kHardware = 0, kIPv4 = 1, kIPv6 = 2 };

struct Alias {
  AliasKind kind;
  std::array<uint8_t, 16> address;   // the first 6, 4 or 16 bytes
  std::string name, comment;
};

class AliasTable {
 public:
  // Reads an alias file; false with a message that names the file and the line.
  bool ReadFile(const std::string& path, std::string* message);

  // The name of an address; null when it has none.
  const std::string* Find(AliasKind kind, const uint8_t* address) const;

  const std::vector<Alias>& Entries() const { return entries_; }   // in the order of the file

 private:
  using Key = std::array<uint8_t, 17>;   // kind, address
  static Key MakeKey(AliasKind kind, const uint8_t* address);

  std::vector<Alias> entries_;
  std::map<Key, size_t> index_;
};

// Reads a hardware address of six bytes (separated by ':' or '-'), or a dotted IPv4 or an IPv6 address.
bool ParseAddress(const std::string& text, AliasKind* kind, std::array<uint8_t, 16>* address);

}  // namespace qxview
