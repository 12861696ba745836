// Bounded texts in the lines' character set, Windows-1252, of octets that should be UTF-8 and may be anything.
//
// Characters without a place in the line are escaped octet by octet, "\E2\82\B9", as distinguished names and filters of
// a directory are (RFC 4514, RFC 4515).
#pragma once
#include "core/decoder.h"

namespace qxview {

using ValueText = ShortText<kLineSize>;   // room for what one line can show

// Text that ends in "..." when it does not fit.
class LineText {
 public:
  LineText(char* out, int32_t size) : out_(out), room_(size - 1) {
    if (size > 0) out[0] = 0;
  }
  bool IsFull() const { return full_; }
  bool IsEmpty() const { return used_ == 0; }
  void Put(const char* text);
  // UTF-8 without control characters but tabs and line ends as a text; anything else as hexadecimal.
  void PutValue(const Cursor& octets);
  // Characters, with those of `escaped` and every octet that is no UTF-8 escaped.
  void PutCharacters(const Cursor& octets, const char* escaped);
  // Text that people wrote: what is no UTF-8 as it is, line ends left out, "?" for what has no place in the line.
  void PutReadable(const Cursor& octets);
  void PutCode(uint32_t code);   // one character, by its number in Unicode
  template <class... Args>
  void PutFormat(FormatText<std::type_identity_t<Args>...> text, const Args&... args) {
    char piece[64];
    FormatInto(piece, sizeof piece, text, args...);
    Put(piece);
  }

 private:
  void PutBytes(const char* bytes, int32_t count);             // all or none
  void PutRun(const char* characters, int32_t count);          // as if one by one

  char* out_;
  int32_t room_;
  int32_t used_ = 0;
  bool full_ = false;
};

}  // namespace qxview
