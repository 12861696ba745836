// HTTP's text: its lines, the first line's three tokens, the header lines.
#include <cstring>

#include "decoders/app/http_message.h"

namespace qxview {
namespace {

bool StartsWith(const uint8_t* text, int32_t length, const char* prefix) {
  const size_t wanted = std::strlen(prefix);
  return static_cast<size_t>(length) >= wanted && std::memcmp(text, prefix, wanted) == 0;
}

bool Equals(const uint8_t* text, int32_t length, const char* word) {
  return static_cast<size_t>(length) == std::strlen(word) && StartsWith(text, length, word);
}

bool IsVersion(const uint8_t* data, const TextToken& token) {
  return token.length > 5 && StartsWith(data + token.offset, token.length, "HTTP/");
}

bool IsStatusCode(const uint8_t* data, const TextToken& token) {
  if (token.length != 3) return false;
  for (int32_t i = 0; i < 3; ++i) {
    if (data[token.offset + i] < '0' || data[token.offset + i] > '9') return false;
  }
  return true;
}

// A header's value, when its name is one that tells of the body. Any of the three names takes any of the values.
void NoteHeader(HttpFlags& flags, const Field& name, const Field& value) {
  if (!Equals(name.bytes, name.length, "Transfer-Encoding") && !Equals(name.bytes, name.length, "Content-Encoding") &&
      !Equals(name.bytes, name.length, "Content-Type")) {
    return;
  }
  if (Equals(value.bytes, value.length, "gzip")) flags.gzip = true;
  if (Equals(value.bytes, value.length, "chunked")) flags.chunked = true;
  if (StartsWith(value.bytes, value.length, "text")) flags.text = true;
  if (StartsWith(value.bytes, value.length, "image")) flags.image = true;
}

LineHandle AddWrapped(const Place& at, const Field& text, const char* label) {
  if (at.dead) return 0;
  const TextSlice slice = Text(text);
  return AddWrappedTextLines(at.view, at.parent, slice.text, slice.length, label, LevelImage(at.level), at.tree,
                             text.offset, false);
}

// "name: value". False for a line that is none.
bool ShowHeader(const Place& in, HttpFlags& flags, const Field& line) {
  const void* colon = std::memchr(line.bytes, ':', static_cast<size_t>(line.length));
  if (!colon || colon == line.bytes) return false;
  const int32_t nameLength = static_cast<int32_t>(static_cast<const uint8_t*>(colon) - line.bytes);
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
  return true;
}

}  // namespace

int32_t FindLineEnd(const uint8_t* data, int32_t length) {
  for (int32_t at = 0; at + 1 < length; ++at) {
    const void* found = std::memchr(data + at, '\r', static_cast<size_t>(length - 1 - at));
    if (!found) return -1;
    at = static_cast<int32_t>(static_cast<const uint8_t*>(found) - data);
    if (data[at + 1] == '\n') return at;
  }
  return -1;
}

Field TakeTextLine(Cursor& c) {
  const int32_t length = FindLineEnd(c.at, Left(c));
  if (length < 0) return {nullptr, c.offset, 0, 0, false};
  const Field line = TakeBytes(c, length);
  TakeBytes(c, 2);
  return line;
}

HttpFirstLine SplitHttpFirstLine(const uint8_t* data, int32_t length) {
  HttpFirstLine first{kHttpContinuation, 0, 0, {}};
  if (!data || length < 1) return first;
  const int32_t end = FindLineEnd(data, length);
  first.length = end < 0 ? length : end;
  first.taken = end < 0 ? length : end + 2;
  int32_t at = 0;
  for (int32_t i = 0; i < 3; ++i) {
    while (at < first.length && data[at] == ' ') ++at;
    const void* blank =
        i < 2 && at < first.length ? std::memchr(data + at, ' ', static_cast<size_t>(first.length - at)) : nullptr;
    const int32_t stop = blank ? static_cast<int32_t>(static_cast<const uint8_t*>(blank) - data) : first.length;
    first.tokens[i] = {at, stop - at};
    at = stop;
  }
  if (IsVersion(data, first.tokens[2])) {
    first.kind = kHttpRequest;
  } else if (IsVersion(data, first.tokens[0]) && IsStatusCode(data, first.tokens[1])) {
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
    if (!line.here) return;
    if (line.length == 0) {
      AddLine(in, Ahead(c, 2), "End Headers (blank line)");
      c = next;
      return;
    }
    if (!ShowHeader(in, flags, line)) return;
    c = next;
  }
}

}  // namespace qxview
