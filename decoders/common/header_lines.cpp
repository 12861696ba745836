#include "decoders/common/header_lines.h"

#include <cstring>

#include "core/text_scan.h"
#include "decoders/common/line_text.h"

namespace qxview {
namespace {

constexpr uint8_t Lower(uint8_t c) { return c >= 'A' && c <= 'Z' ? static_cast<uint8_t>(c + 32) : c; }
bool IsBlank(uint8_t c) { return c == ' ' || c == '\t'; }

// The characters of a header's name (RFC 5322 2.2): printable, and no blank.
bool IsNameCharacter(uint8_t c) { return c > ' ' && c != 0x7F && c != ':'; }

// The piece of `line` from `first` to `end`.
Field Piece(const Field& line, int32_t first, int32_t end) { return Slice(line, first, end - first); }

bool StartsVersion(const Field& field, const char* version) {
  return field.here && StartsWithText(CursorOver(field), version);
}

}  // namespace

bool TakeLine(Cursor& c, TextLine& out) {
  const int32_t left = Left(c);
  if (left < 1) return false;
  const void* found = std::memchr(c.at, '\n', static_cast<size_t>(left));
  const int32_t end = found ? static_cast<int32_t>(static_cast<const uint8_t*>(found) - c.at) : left;
  out.whole = TakeBytes(c, found ? end + 1 : end);
  const bool hasReturn = found && end > 0 && PeekU8(out.whole, end - 1) == '\r';
  out.text = Slice(out.whole, 0, hasReturn ? end - 1 : end);
  return true;
}

bool detail::StartsAsWord(const Field& field, const char* word) {
  if (!field.here || !field.bytes) return false;
  for (int32_t i = 0; word[i]; ++i) {
    if (i >= field.length || Lower(PeekU8(field, i)) != Lower(static_cast<uint8_t>(word[i]))) return false;
  }
  return true;
}

bool detail::HoldsWord(const Field& field, const char* word) {
  return StartsAsWord(field, word) && static_cast<size_t>(field.length) == std::strlen(word);
}

int32_t CompareWord(const Field& field, const char* word) {
  for (int32_t i = 0;; ++i) {
    const uint8_t own = i < field.length ? Lower(PeekU8(field, i)) : 0, other = Lower(static_cast<uint8_t>(word[i]));
    if (own != other) return own < other ? -1 : 1;
    if (i >= field.length) return 0;
    if (other == 0) return 1;   // a zero in the field is none at its end
  }
}

bool StartsWithText(const Cursor& c, const char* text) {
  const size_t length = std::strlen(text);
  return static_cast<size_t>(Left(c)) >= length && std::memcmp(c.at, text, length) == 0;
}

void SkipSpace(Cursor& c) {
  while (Left(c) > 0 && IsSpace(PeekU8(c))) TakeBytes(c, 1);
}

Field TakeWord(Field& text, const char* ends) {
  int32_t start = 0;
  while (start < text.length && IsBlank(PeekU8(text, start))) ++start;
  int32_t end = start;
  while (end < text.length && (PeekU8(text, end) == 0 || !std::strchr(ends, PeekU8(text, end)))) ++end;
  const Field word = Piece(text, start, end);
  text = Piece(text, end < text.length ? end + 1 : end, text.length);
  return word.length > 0 ? word : Field{nullptr, word.offset, 0, 0, false};
}

Field Trimmed(const Field& text) {
  if (!text.here || !text.bytes) return text;
  int32_t start = 0, end = text.length;
  while (start < end && IsBlank(PeekU8(text, start))) ++start;
  while (end > start && IsBlank(PeekU8(text, end - 1))) --end;
  return Piece(text, start, end);
}

int32_t DecimalOf(const Field& field) {
  constexpr int32_t kMostDigits = 9;
  if (!field.here || field.length < 1 || field.length > kMostDigits) return -1;
  int32_t number = 0;
  for (int32_t i = 0; i < field.length; ++i) {
    const uint8_t digit = PeekU8(field, i);
    if (digit < '0' || digit > '9') return -1;
    number = number * 10 + (digit - '0');
  }
  return number;
}

LineHandle AddTextLine(const Place& in, const Field& whole, const char* label, const Field& text) {
  if (!whole.here || !text.here) return 0;
  if (Silent(in)) return AddLine(in, whole, "%s", label);
  if (text.length < kLineSize && CountPlain(CursorOver(text)) == text.length) return AddLine(in, whole, "%s: %s", label, Text(text));
  char value[kLineSize];
  LineText(value, sizeof value).PutReadable(CursorOver(text));
  return AddLine(in, whole, "%s: %s", label, static_cast<const char*>(value));
}

LineHandle AddTextLine(const Place& in, const Field& field, const char* label) {
  return AddTextLine(in, field, label, field);
}

bool TakeStartLine(Cursor& c, const char* version, StartLine& out) {
  Cursor next = c;
  TextLine line;
  if (!TakeLine(next, line)) return false;
  out = StartLine{};
  out.line = line.text;
  Field rest = line.text;
  const Field first = TakeWord(rest);
  if (StartsVersion(first, version)) {
    out.version = first;
    out.code = TakeWord(rest);
    out.phrase = Trimmed(rest);
    if (DecimalOf(out.code) < 0) return false;
  } else {
    // The last word is the version; what stands between the two is the target, blanks or not.
    rest = Trimmed(rest);
    int32_t last = rest.length;
    while (last > 0 && !IsBlank(PeekU8(rest, last - 1))) --last;
    out.isRequest = true;
    out.method = first;
    out.version = Piece(rest, last, rest.length);
    out.target = Trimmed(Piece(rest, 0, last));
    if (!first.here || !StartsVersion(out.version, version)) return false;
  }
  c = next;
  return true;
}

Place ShowStartLine(const Place& in, const StartLine& start) {
  const Place under = Under(in, AddTextLine(in, start.line, start.isRequest ? "Request Line" : "Status Line"));
  if (start.isRequest) {
    AddTextLine(under, start.method, "Method");
    AddTextLine(under, start.target, "Request URI");
    AddTextLine(under, start.version, "Version");
  } else {
    AddTextLine(under, start.version, "Version");
    AddLine(under, start.code, "Status Code: %u", static_cast<uint32_t>(DecimalOf(start.code)));
    if (start.phrase.length > 0) AddTextLine(under, start.phrase, "Reason Phrase");
  }
  return under;
}

bool TakeHeader(Cursor& c, HeaderLine& out) {
  Cursor next = c;
  TextLine line;
  if (!TakeLine(next, line)) return false;
  int32_t colon = 0;
  while (colon < line.text.length && IsNameCharacter(PeekU8(line.text, colon))) ++colon;
  const int32_t nameLength = colon;
  while (colon < line.text.length && IsBlank(PeekU8(line.text, colon))) ++colon;   // in front of the colon: RFC 822, SIP
  if (nameLength == 0 || colon == line.text.length || PeekU8(line.text, colon) != ':') return false;
  int32_t length = line.text.length;
  while (Left(next) > 0 && IsBlank(PeekU8(next))) {
    TextLine folded;
    TakeLine(next, folded);
    length = folded.text.offset + folded.text.length - line.text.offset;
  }
  out.whole = Ahead(c, next.offset - c.offset);
  out.name = Slice(out.whole, 0, nameLength);
  out.value = Trimmed(Piece(out.whole, colon + 1, length));
  c = next;
  return true;
}

LineHandle ShowHeader(const Place& in, const HeaderLine& header, const char* name) {
  if (name) return AddTextLine(in, header.whole, name, header.value);
  char own[64];
  LineText(own, sizeof own).PutReadable(CursorOver(header.name));
  return AddTextLine(in, header.whole, own, header.value);
}

void ShowEndOfHeaders(const Place& in, Cursor& c) {
  Cursor next = c;
  TextLine line;
  if (!TakeLine(next, line) || line.text.length > 0) return;
  AddLine(in, line.whole, "End of Headers");
  c = next;
}

void ShowHeaders(const Place& in, Cursor& c) {
  HeaderLine header;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeHeader(c, header)) ShowHeader(in, header);
  ShowEndOfHeaders(in, c);
}

}  // namespace qxview
