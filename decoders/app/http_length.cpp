// How long HTTP messages are (RFC 9112 section 6), for messages that span segments: the headers with their empty line,
// and a body by its length, in chunks with their trailer, or to the end of the connection. Messages of its relatives
// (SIP, RTSP) are read by the same rules.
#include "decoders/app/http.h"
#include "decoders/app/http2.h"
#include "decoders/app/http_message.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

// What headers say of the body's length.
struct Framing {
  int64_t length;   // -1 for none
  bool chunked;
};

uint8_t LowerOf(uint32_t c) { return static_cast<uint8_t>(c >= 'A' && c <= 'Z' ? c | 0x20 : c); }

// Whether the line starts with these lower-case characters, whatever its case; the cursor stands behind them then.
bool TakeWord(Cursor& line, const char* word) {
  int32_t length = 0;
  for (; word[length]; ++length) {
    if (length >= Left(line) || LowerOf(PeekU8(line, length)) != static_cast<uint8_t>(word[length])) return false;
  }
  TakeBytes(line, length);
  return true;
}

int64_t TakeDecimal(Cursor& line) {
  while (PeekU8(line) == ' ' || PeekU8(line) == '\t') TakeBytes(line, 1);
  int64_t number = -1;
  for (; PeekU8(line) >= '0' && PeekU8(line) <= '9' && number < int64_t{1} << 40; TakeBytes(line, 1)) {
    number = (number < 0 ? 0 : number * 10) + (PeekU8(line) - '0');
  }
  return number;
}

// The header lines from the cursor on, which stands behind the empty line then; false while that has not come.
bool TakeHeaders(Cursor& c, Framing* framing) {
  *framing = {-1, false};
  for (Loop loop; More(c, loop);) {
    const int32_t end = FindLineEnd(c);
    if (end < 0) return false;
    Cursor line = TakeCursor(c, end);
    TakeBytes(c, 2);
    if (end == 0) return true;
    if (TakeWord(line, "content-length:") || TakeWord(line, "l:")) {
      framing->length = TakeDecimal(line);
    } else if (TakeWord(line, "transfer-encoding:")) {
      for (; Left(line) > 0; TakeBytes(line, 1)) {
        Cursor word = line;
        if (TakeWord(word, "chunked")) framing->chunked = true;
      }
    }
  }
  return false;
}

bool StatusIs(const Cursor& c, const HttpFirstLine& first, const char (&code)[4]) {
  return first.tokens[1].length == 3 && PeekIs(c, first.tokens[1].offset, code);
}

// Responses that have no body whatever their headers say.
bool HasNoBody(const Cursor& c, const HttpFirstLine& first, const Cursor& body) {
  if (PeekU8(c, first.tokens[1].offset) == '1' || StatusIs(c, first, "204") || StatusIs(c, first, "304")) return true;
  Cursor phrase = c;
  TakeBytes(phrase, first.tokens[2].offset);
  if (StatusIs(c, first, "200") && TakeWord(phrase, "connection established")) return true;   // a tunnel begins
  return PeekIs(body, 0, "HTTP/1.");   // the next response stands there: this one answers HEAD
}

// The body behind headers that have been read, for a message without one where they say nothing.
int32_t LengthWithBody(const Cursor& body, int64_t headers, const Framing& framing, int32_t otherwise) {
  if (framing.chunked) return LengthOfHttpChunks(body, headers);
  if (framing.length < 0) return otherwise;
  const int64_t length = headers + framing.length;
  return length < kMessageToTheEnd ? static_cast<int32_t>(length) : kMessageToTheEnd;
}

// The first line, when it is whole. False with what is to be said of it when it is not.
bool HasFirstLine(const Cursor& c, int32_t* said) {
  if (FindLineEnd(c) >= 0) return true;
  const bool isLetter = LowerOf(PeekU8(c)) >= 'a' && LowerOf(PeekU8(c)) <= 'z';
  *said = !isLetter || Left(c) > kMostHttpFirstLine ? kNoMessage : 0;
  return false;
}

}  // namespace

// The chunks from the cursor on with their trailer, which are `before` bytes into the message.
int32_t LengthOfHttpChunks(Cursor c, int64_t before) {
  const int32_t start = c.offset;
  for (Loop loop; More(c, loop);) {
    const int32_t end = FindLineEnd(c);
    if (end < 0) return Left(c) > kMostHttpChunkLine ? kNoMessage : 0;
    const HttpChunkSize chunk = ReadChunkSize(c.at, end);
    if (!chunk.valid) return kNoMessage;
    TakeBytes(c, end + 2);
    if (chunk.size == 0) {
      Framing none;
      if (!TakeHeaders(c, &none)) return Left(c) > kMostHttpHeaders ? kNoMessage : 0;
      return static_cast<int32_t>(before + c.offset - start);
    }
    const int64_t lacks = int64_t{chunk.size} + 2 - Left(c);
    if (lacks > kMostHttpHeaders * int64_t{4096}) return kNoMessage;
    TakeBytes(c, int64_t{chunk.size} + 2);
    if (c.ranShort) return 0;
  }
  return 0;
}

int32_t LengthOfHttp(const Cursor& c) {
  if (LooksLikeHttp2(c)) return LengthOfHttp2(c);
  int32_t said;
  if (!HasFirstLine(c, &said)) return said;
  const HttpFirstLine first = SplitHttpFirstLine(c.at, Left(c));
  if (first.kind == kHttpContinuation) return kNoMessage;
  Cursor body = c;
  TakeBytes(body, first.taken);
  Framing framing;
  if (!TakeHeaders(body, &framing)) return Left(c) > kMostHttpHeaders ? kNoMessage : 0;
  const int32_t headers = body.offset - c.offset;
  if (first.kind == kHttpRequest) return LengthWithBody(body, headers, framing, headers);
  return HasNoBody(c, first, body) ? headers : LengthWithBody(body, headers, framing, kMessageToTheEnd);
}

int32_t LengthOfSip(const Cursor& c) {
  constexpr uint32_t kInterleaved = '$';   // media between RTSP's messages (RFC 7826 section 14)
  if (PeekU8(c) == kInterleaved) return Left(c) < 4 ? 0 : 4 + static_cast<int32_t>(PeekU16(c, 2));
  int32_t said;
  if (PeekIs(c, 0, "\r\n")) return PeekIs(c, 2, "\r\n") ? 4 : 2;   // keeps the connection alive
  if (!HasFirstLine(c, &said)) return said;
  Cursor body = c;
  const Field line = TakeTextLine(body);
  bool named = false;
  for (int32_t at = 0; at < line.length && !named; ++at) {
    named = PeekIs(CursorOver(line), at, "SIP/2.") || PeekIs(CursorOver(line), at, "RTSP/");
  }
  Framing framing;
  if (!named) return kNoMessage;
  if (!TakeHeaders(body, &framing)) return Left(c) > kMostHttpHeaders ? kNoMessage : 0;
  return LengthWithBody(body, body.offset - c.offset, framing, body.offset - c.offset);
}

}  // namespace qxview
