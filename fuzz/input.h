// The bytes of a fuzz input, taken piece by piece; behind their end everything is 0 and empty.
#pragma once
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

namespace qxview::fuzz {

// What did not hold, in words, before the program ends: the fuzzer keeps the input.
[[noreturn]] void Fail(const char* what, const char* more = "");
inline void Expect(bool holds, const char* what) {
  if (!holds) Fail(what);
}

struct Piece {
  const uint8_t* data;
  size_t size;
};

class Input {
 public:
  Input(const uint8_t* data, size_t size) : at_(data), left_(size) {}

  size_t Left() const { return left_; }
  uint32_t U8() { return Number(1); }
  uint32_t U16() { return Number(2); }
  uint32_t U32() { return Number(4); }
  Piece Take(size_t size) {
    const Piece piece{at_, size < left_ ? size : left_};
    at_ += piece.size;
    left_ -= piece.size;
    return piece;
  }
  Piece Rest() { return Take(left_); }
  // Up to the first zero byte, which is passed over.
  std::string_view Text() {
    const auto* end = static_cast<const uint8_t*>(left_ ? std::memchr(at_, 0, left_) : nullptr);
    const Piece text = Take(end ? static_cast<size_t>(end - at_) : left_);
    if (end) Take(1);
    return {reinterpret_cast<const char*>(text.data), text.size};
  }

 private:
  uint32_t Number(size_t size) {   // low byte first
    uint32_t number = 0;
    const Piece piece = Take(size);
    for (size_t i = piece.size; i > 0; --i) number = number << 8 | piece.data[i - 1];
    return number;
  }

  const uint8_t* at_;
  size_t left_;
};

// A copy in an allocation of its exact size: what is read beyond it is the sanitizer's.
class ExactBytes {
 public:
  explicit ExactBytes(size_t size) : bytes_(new uint8_t[size]()), size_(size) {}
  explicit ExactBytes(const Piece& piece) : bytes_(new uint8_t[piece.size]), size_(piece.size) {
    if (piece.size) std::memcpy(bytes_.get(), piece.data, piece.size);
  }
  uint8_t* data() const { return bytes_.get(); }
  size_t size() const { return size_; }

 private:
  std::unique_ptr<uint8_t[]> bytes_;
  size_t size_;
};

}  // namespace qxview::fuzz
