// Protocols that are lines and fields of text: FIX (financial information exchange) and SIP (RFC 3261).
//
//   FIX:  8=FIX.4.2 <SOH> 9=... <SOH> ...
//   SIP:  METHOD blank URI blank SIP/2.0 CRLF    or    SIP/2.0 blank 3 digits blank reason CRLF
#include <cstring>

#include "decoders/net/recognisers.h"

namespace qxview {
namespace {

constexpr char kSipVersion[] = "SIP/2.0";
constexpr int32_t kSipVersionLength = 7, kLongestMethod = 32;

bool IsDigit(uint8_t c) { return c >= '0' && c <= '9'; }
bool IsUpper(uint8_t c) { return c >= 'A' && c <= 'Z'; }

// The length of the first line without its end; -1 when the line does not end in the payload.
int32_t FirstLineLength(const Cursor& c) {
  const void* found = std::memchr(c.at, '\n', static_cast<size_t>(Left(c)));
  if (!found) return -1;
  const int32_t length = static_cast<int32_t>(static_cast<const uint8_t*>(found) - c.at);
  return length > 0 && c.at[length - 1] == '\r' ? length - 1 : length;
}

bool IsSipStatus(const uint8_t* line, int32_t length) {
  return length >= kSipVersionLength + 4 && std::memcmp(line, kSipVersion, kSipVersionLength) == 0 &&
         line[7] == ' ' && line[8] >= '1' && line[8] <= '6' && IsDigit(line[9]) && IsDigit(line[10]) &&
         (length == 11 || line[11] == ' ');
}

// A method of capital letters, an address with a scheme, and the version, one blank between them.
bool IsSipRequest(const uint8_t* line, int32_t length) {
  int32_t method = 0;
  while (method < length && method < kLongestMethod && IsUpper(line[method])) ++method;
  if (method < 3 || method >= length || line[method] != ' ') return false;
  const int32_t end = length - kSipVersionLength - 1;   // of the address
  if (end <= method + 1 || line[end] != ' ' || std::memcmp(line + end + 1, kSipVersion, kSipVersionLength) != 0) {
    return false;
  }
  bool scheme = false;
  for (int32_t i = method + 1; i < end; ++i) {
    if (line[i] <= ' ' || line[i] > '~') return false;
    scheme = scheme || (line[i] == ':' && i > method + 1);
  }
  return scheme;
}

}  // namespace

bool LooksLikeFix(const Cursor& c) {
  constexpr char kStart[] = "8=FIX";
  constexpr int32_t kStartLength = 5;
  const uint8_t* at = c.at;
  for (int32_t left = Left(c); left >= kStartLength;) {
    const void* found = std::memchr(at, kStart[0], static_cast<size_t>(left - kStartLength + 1));
    if (!found) return false;
    const uint8_t* here = static_cast<const uint8_t*>(found);
    if (std::memcmp(here, kStart, kStartLength) == 0) return true;
    left -= static_cast<int32_t>(here + 1 - at);
    at = here + 1;
  }
  return false;
}

bool LooksLikeSip(const Cursor& c) {
  if (Left(c) < kSipVersionLength + 4) return false;
  const int32_t length = FirstLineLength(c);
  return length >= 0 && (IsSipStatus(c.at, length) || IsSipRequest(c.at, length));
}

}  // namespace qxview
