// Memory whose last byte stands right before a page that cannot be touched: who reads one byte too far ends the program,
// sanitizer or not.
#pragma once
#include <cstddef>
#include <cstdint>

namespace qxview::testing {

class GuardedMemory {
 public:
  explicit GuardedMemory(size_t most);
  ~GuardedMemory();
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  // Room for so many bytes that end at the page. AddressSanitizer's builds, which want records where records may stand, get them up to
  // seven bytes before it: that sanitizer sees who touches those.
  uint8_t* Room(size_t size) const;

 private:
  uint8_t* begin_;
  uint8_t* end_;
};

}  // namespace qxview::testing
