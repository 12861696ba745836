// HTTP's text: its lines, the first line's three tokens, the header lines.
#include "core/line_facts.h"
#include "decoders/app/http2.h"
#include "decoders/app/http_fields.h"
#include "decoders/app/http_message.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/header_values.h"
#include "decoders/common/transfer_text.h"

namespace qxview {
namespace {

template <size_t kSize>
bool Starts(const Field& text, const char (&prefix)[kSize]) {
  return PeekIs(CursorOver(text), 0, prefix);
}

template <size_t kSize>
bool Equals(const Field& text, const char (&word)[kSize]) {
  return text.length == static_cast<int32_t>(kSize) - 1 && Starts(text, word);
}

bool Holds(const Field& text, const char* word) {
  const Cursor c = CursorOver(text);
  for (int32_t at = FindU8(c, static_cast<uint8_t>(word[0])); at >= 0; at = FindU8(c, static_cast<uint8_t>(word[0]), at + 1)) {
    if (StartsWithText(CursorOver(Slice(text, at, text.length - at)), word)) return true;
  }
  return false;
}

bool IsVersion(const Field& token) { return token.length > 5 && Starts(token, "HTTP/"); }

bool IsStatusCode(const Field& token) {
  for (int32_t i = 0; i < 3; ++i) {
    if (PeekU8(token, i) < '0' || PeekU8(token, i) > '9') return false;
  }
  return token.length == 3;
}

// "gzip, chunked": what a body was put through. One coding is opened, not two.
void NoteCodings(HttpFlags& flags, Field rest) {
  Loop loop;
  for (Cursor c = CursorOver(rest); rest.length > 0 && More(c, loop); c = CursorOver(rest)) {
    const Field coding = TakePiece(rest, ",");
    if (IsWord(coding, "chunked")) {
      flags.inChunks = true;
    } else if (coding.length > 0 && !IsWord(coding, "identity")) {
      const bool isGzip = IsWord(coding, "gzip") || IsWord(coding, "x-gzip");
      const ContentCoding known = isGzip ? ContentCoding::kGzip : IsWord(coding, "deflate") ? ContentCoding::kDeflate
                                                                                              : ContentCoding::kOther;
      flags.coding = flags.coding == ContentCoding::kNone ? known : ContentCoding::kOther;
    }
  }
}

// A header's value, when its name is one that tells of the body. Any of the three names takes any of the values.
void NoteHeader(HttpFlags& flags, const Field& name, const Field& value) {
  if (IsWord(name, "Content-Type")) {
    flags.content = WebContentOf(Text(value));
    flags.mediaType = value;
  } else if (IsWord(name, "Content-Length")) {
    flags.length = DecimalOf(value);
    flags.hasLength = flags.length >= 0;
  } else if (IsWord(name, "Content-Encoding") || IsWord(name, "Transfer-Encoding")) {
    NoteCodings(flags, value);
  }
  if (IsWord(name, "Upgrade")) {
    flags.toWebSocket = IsWord(value, "websocket");
    flags.toHttp2 = IsWord(value, "h2c");
  } else if (IsWord(name, "Sec-WebSocket-Extensions")) {
    flags.deflates = Holds(value, "permessage-deflate");
    flags.clientForgets = Holds(value, "client_no_context_takeover");
    flags.serverForgets = Holds(value, "server_no_context_takeover");
  }
  if (!Equals(name, "Transfer-Encoding") && !Equals(name, "Content-Encoding") && !Equals(name, "Content-Type")) return;
  if (Equals(value, "gzip")) flags.gzip = true;
  if (Equals(value, "chunked")) flags.chunked = true;
  if (Starts(value, "text")) flags.text = true;
  if (Starts(value, "image")) flags.image = true;
  if (Equals(value, "application/ocsp-request")) flags.ocspRequest = true;
  if (Equals(value, "application/ocsp-response")) flags.ocspResponse = true;
}

LineHandle AddWrapped(const Place& at, const Field& text, const char* label) {
  if (at.dead) return 0;
  const TextSlice slice = Text(text);
  return AddWrappedTextLines(at.view, at.parent, slice.text, slice.length, label, LevelImage(at.level), at.tree,
                             text.offset, false);
}

// The settings of HTTP/2 that a client offers to go over with.
void ShowUpgradeSettings(const Place& in, const Field& value) {
  const KeyedAs keys(PacketOf(in), "http2");
  const DerivedLines derived(in.view);
  Cursor c = DecodeBase64(in, value);
  for (Loop loop; Left(c) >= 6 && MoreAt(in, c, loop);) ShowHttp2Setting(in, c);
}

// "name: value". False for a line that is none. `whole` is the line with its end.
bool ShowHeader(const Place& in, HttpFlags& flags, const Field& line, const Field& whole) {
  const int32_t nameLength = FindU8(CursorOver(line), ':');
  if (nameLength < 1) return false;
  int32_t start = nameLength + 1;
  while (start < line.length && (PeekU8(line, start) == ' ' || PeekU8(line, start) == '\t')) ++start;
  const Field name = Slice(line, 0, nameLength);
  const Field separator = Slice(line, nameLength, 1);
  const Field value = Slice(line, start, line.length - start);
  NoteHeader(flags, name, value);
  const Place parts = Under(in, AddWrapped(in, line, "Header"));
  AddLine(parts, name, "Name: %s", Text(name));
  AddLine(parts, separator, "Sep: %s", Text(separator));
  AddWrapped(parts, value, "Value");
  if (TellsAll(in)) ShowHttpField(parts, whole, name, value);
  if (TellsAll(in) && IsWord(name, "HTTP2-Settings")) ShowUpgradeSettings(parts, value);
  return true;
}

// A line among the headers that is none: it goes on with the one before, or is faulty. The last one may be cut.
bool ShowOddHeader(const Place& in, const Field& line, const Field& whole) {
  if (!TellsAll(in)) return false;
  const bool isFolded = PeekU8(line) == ' ' || PeekU8(line) == '\t';
  AddTextLine(in, whole, isFolded ? "Folded Header" : "Unknown Header", line);
  return true;
}

// The last line of a segment, which the next one goes on with.
void ShowHeaderInPart(const Place& in, Cursor& c) {
  if (TellsAll(in) && Left(c) > 0) AddTextLine(in, Rest(c), "Header in Part");
}

}  // namespace

int32_t FindLineEnd(const Cursor& c) {
  int32_t at = FindU8(c, '\r');
  while (at >= 0 && PeekU8(c, at + 1) != '\n') at = FindU8(c, '\r', at + 1);
  return at;
}

Field TakeTextLine(Cursor& c) {
  const int32_t length = FindLineEnd(c);
  if (length < 0) return {nullptr, c.offset, 0, 0, false};
  const Field line = TakeBytes(c, length);
  TakeBytes(c, 2);
  return line;
}

HttpFirstLine SplitHttpFirstLine(const uint8_t* data, int32_t length) {
  HttpFirstLine first{kHttpContinuation, 0, 0, {}};
  if (!data || length < 1) return first;
  const Cursor c = MakeCursor(data, 0, length);
  const int32_t end = FindLineEnd(c);
  first.length = end < 0 ? length : end;
  first.taken = end < 0 ? length : end + 2;
  const Cursor line = CursorOver(PeekBytes(c, 0, first.length));
  Field tokens[3];
  int32_t at = 0;
  for (int32_t i = 0; i < 3; ++i) {
    while (PeekU8(line, at) == ' ') ++at;
    const int32_t blank = i < 2 ? FindU8(line, ' ', at) : -1, stop = blank < 0 ? first.length : blank;
    first.tokens[i] = {at, stop - at};
    tokens[i] = PeekBytes(line, at, stop - at);
    at = stop;
  }
  if (IsVersion(tokens[2])) {
    first.kind = kHttpRequest;
  } else if (IsVersion(tokens[0]) && IsStatusCode(tokens[1])) {
    first.kind = kHttpResponse;
  }
  return first;
}

int32_t ClassifyHttpFirstLine(const uint8_t* data, int32_t length) { return SplitHttpFirstLine(data, length).kind; }

void WalkHttpHeaders(const Place& in, HttpFlags& flags, Cursor& c) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) {
    Cursor next = c;
    const Field line = TakeTextLine(next);
    if (!line.here) return ShowHeaderInPart(in, c);
    const Field whole = Ahead(c, next.offset - c.offset);
    if (line.length == 0) {
      AddLine(in, Ahead(c, 2), "End Headers (blank line)");
      c = next;
      return;
    }
    if (!ShowHeader(in, flags, line, whole) && !ShowOddHeader(in, line, whole)) return;
    c = next;
  }
}

}  // namespace qxview
