// Protocols that are lines and fields of text: FIX (financial information exchange), SIP (RFC 3261) and HTTP (RFC 9112).
//
//   FIX:   8=FIX.4.2 <SOH> 9=... <SOH> ...
//   SIP:   METHOD blank URI blank SIP/2.0 CRLF       or    SIP/2.0 blank 3 digits blank reason CRLF
//   HTTP:  METHOD blank target blank HTTP/1.1 CRLF   or    HTTP/1.1 blank 3 digits blank reason CRLF
#include "decoders/net/recognisers.h"

namespace qxview {
namespace {

constexpr int32_t kLongestMethod = 32;

// A protocol of requests and responses: how its versions are written, a digit behind the text, and which addresses it has.
struct TextProtocol {
  const char* version;
  int32_t length;          // of the version with its digit
  char mostMinor;          // the greatest digit
  bool wantsScheme;        // in the address of a request
};
constexpr TextProtocol kSip{"SIP/2.", 7, '0', true}, kHttp{"HTTP/1.", 8, '1', false};

bool IsDigit(uint32_t c) { return c >= '0' && c <= '9'; }
bool IsUpper(uint32_t c) { return c >= 'A' && c <= 'Z'; }

// The first line without its end; short when the line does not end in the payload.
Cursor FirstLine(Cursor c) {
  const int32_t length = FindU8(c, '\n');
  return CursorOver(PeekBytes(c, 0, length > 0 && PeekU8(c, length - 1) == '\r' ? length - 1 : length));
}

bool IsVersion(const Cursor& line, int32_t at, const TextProtocol& protocol) {
  const int32_t digit = protocol.length - 1;
  for (int32_t i = 0; i < digit; ++i) {
    if (PeekU8(line, at + i) != static_cast<uint8_t>(protocol.version[i])) return false;
  }
  const uint32_t minor = PeekU8(line, at + digit);
  return minor >= '0' && minor <= static_cast<uint8_t>(protocol.mostMinor);
}

bool IsStatus(const Cursor& line, const TextProtocol& protocol) {
  const int32_t at = protocol.length;
  const uint32_t kind = PeekU8(line, at + 1);
  return IsVersion(line, 0, protocol) && PeekU8(line, at) == ' ' && kind >= '1' && kind <= '6' &&
         IsDigit(PeekU8(line, at + 2)) && IsDigit(PeekU8(line, at + 3)) && (Left(line) == at + 4 || PeekU8(line, at + 4) == ' ');
}

// A method of capital letters, an address, and the version, one blank between them.
bool IsRequest(const Cursor& line, const TextProtocol& protocol) {
  int32_t method = 0;
  while (method < kLongestMethod && IsUpper(PeekU8(line, method))) ++method;
  if (method < 3 || PeekU8(line, method) != ' ') return false;
  const int32_t end = Left(line) - protocol.length - 1;   // of the address
  if (end <= method + 1 || PeekU8(line, end) != ' ' || !IsVersion(line, end + 1, protocol)) return false;
  bool scheme = !protocol.wantsScheme;
  for (int32_t i = method + 1; i < end; ++i) {
    const uint32_t character = PeekU8(line, i);
    if (character <= ' ' || character > '~') return false;
    scheme = scheme || (character == ':' && i > method + 1);
  }
  return scheme;
}

bool LooksLike(const Cursor& c, const TextProtocol& protocol) {
  if (Left(c) < protocol.length + 4) return false;
  const Cursor line = FirstLine(c);
  return IsStatus(line, protocol) || IsRequest(line, protocol);
}

}  // namespace

bool LooksLikeFix(const Cursor& c) {
  for (int32_t at = FindU8(c, '8'); at >= 0; at = FindU8(c, '8', at + 1)) {
    if (PeekIs(c, at, "8=FIX")) return true;
  }
  return false;
}

bool LooksLikeSip(const Cursor& c) { return LooksLike(c, kSip); }
bool LooksLikeHttp(const Cursor& c) { return LooksLike(c, kHttp); }

bool AsksForWebSocket(const Cursor& c) {
  if (!LooksLikeHttp(c)) return false;
  int32_t at = FindU8(c, 'S');
  while (at >= 0 && !PeekIs(c, at, "Sec-WebSocket-")) at = FindU8(c, 'S', at + 1);
  return at >= 0;
}

}  // namespace qxview
