// Messages of every protocol that has a summary, and the text that each gives.
#pragma once
#include <functional>
#include <string>
#include <vector>

#include "tests/support/decoding.h"

namespace qxview::testing {

// A summary function with its member-specific arguments filled in.
using SummaryMember = std::function<int32_t(const uint8_t* data, int32_t length, char* out, int32_t outSize)>;

struct SummaryCase {
  std::string protocol;
  SummaryMember describe;
  Bytes message;
  std::string text;
  int32_t result = 1;
};

std::vector<SummaryCase> TextProtocolCases();
std::vector<SummaryCase> BinaryProtocolCases();

// Bytes that end right before a page that cannot be touched.
class GuardedBytes {
 public:
  explicit GuardedBytes(size_t size);
  ~GuardedBytes();
  GuardedBytes(const GuardedBytes&) = delete;
  uint8_t* At(size_t count) { return end_ - count; }   // the last `count` bytes

 private:
  uint8_t* base_;
  uint8_t* end_;
  size_t mapped_;
};

inline Bytes Ascii(const std::string& text) { return Bytes(text.begin(), text.end()); }

}  // namespace qxview::testing
