// Protocols that are lines and fields of text: FIX (financial information exchange) and SIP (RFC 3261).
//
//   FIX:  8=FIX.4.2 <SOH> 9=... <SOH> ...
//   SIP:  METHOD blank URI blank SIP/2.0 CRLF    or    SIP/2.0 blank 3 digits blank reason CRLF
#include "decoders/net/recognisers.h"

namespace qxview {
namespace {

constexpr int32_t kSipVersionLength = 7, kLongestMethod = 32;

bool IsDigit(uint32_t c) { return c >= '0' && c <= '9'; }
bool IsUpper(uint32_t c) { return c >= 'A' && c <= 'Z'; }

// The first line without its end; short when the line does not end in the payload.
Cursor FirstLine(Cursor c) {
  const int32_t length = FindU8(c, '\n');
  return CursorOver(PeekBytes(c, 0, length > 0 && PeekU8(c, length - 1) == '\r' ? length - 1 : length));
}

bool IsSipStatus(const Cursor& line) {
  return PeekIs(line, 0, "SIP/2.0 ") && PeekU8(line, 8) >= '1' && PeekU8(line, 8) <= '6' && IsDigit(PeekU8(line, 9)) &&
         IsDigit(PeekU8(line, 10)) && (Left(line) == 11 || PeekU8(line, 11) == ' ');
}

// A method of capital letters, an address with a scheme, and the version, one blank between them.
bool IsSipRequest(const Cursor& line) {
  int32_t method = 0;
  while (method < kLongestMethod && IsUpper(PeekU8(line, method))) ++method;
  if (method < 3 || PeekU8(line, method) != ' ') return false;
  const int32_t end = Left(line) - kSipVersionLength - 1;   // of the address
  if (end <= method + 1 || !PeekIs(line, end, " SIP/2.0")) return false;
  bool scheme = false;
  for (int32_t i = method + 1; i < end; ++i) {
    const uint32_t character = PeekU8(line, i);
    if (character <= ' ' || character > '~') return false;
    scheme = scheme || (character == ':' && i > method + 1);
  }
  return scheme;
}

}  // namespace

bool LooksLikeFix(const Cursor& c) {
  for (int32_t at = FindU8(c, '8'); at >= 0; at = FindU8(c, '8', at + 1)) {
    if (PeekIs(c, at, "8=FIX")) return true;
  }
  return false;
}

bool LooksLikeSip(const Cursor& c) {
  if (Left(c) < kSipVersionLength + 4) return false;
  const Cursor line = FirstLine(c);
  return IsSipStatus(line) || IsSipRequest(line);
}

}  // namespace qxview
