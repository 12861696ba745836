// What the packet list's summaries are written with: a bounded text and the first line of a payload.
//
// A summary function is given a payload and a caller's buffer, keeps nothing between calls, allocates nothing, and reads
// the first line or the first header only.
#pragma once
#include <cstring>

#include "core/bounded_text.h"
#include "core/cursor.h"
#include "core/name_table.h"

namespace qxview {

// A text in a caller's buffer: cut to fit, always terminated.
struct SummaryText {
  char* out;
  int32_t size;
  int32_t used;
};

// Empties the output. False when the payload or the output is missing, or a size is below 1.
inline bool BeginSummary(SummaryText& text, const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  if (out && outSize > 0) out[0] = 0;
  text = {out, outSize, 0};
  return data && length > 0 && out && outSize > 0;
}

// The same over a TextBuffer, whose last byte is forced to zero. A capacity of 0 takes nothing: the text goes nowhere.
inline bool BeginSummary(SummaryText& text, const uint8_t* data, int32_t length, TextBuffer* summary) {
  if (!summary || !summary->text) return false;
  if (summary->capacity > 0) summary->text[0] = summary->text[summary->capacity - 1] = 0;
  text = {summary->text, summary->capacity, 0};
  return data && length > 0;
}

// Appends text: a terminated one, a slice up to its first zero byte, a formatted one.
inline void Add(SummaryText& text, const TextSlice& slice) {
  if (!slice.text || slice.length < 1 || text.used + 1 >= text.size) return;
  int32_t length = static_cast<int32_t>(strnlen(slice.text, static_cast<size_t>(slice.length)));
  if (length > text.size - 1 - text.used) length = text.size - 1 - text.used;
  std::memcpy(text.out + text.used, slice.text, static_cast<size_t>(length));
  text.used += length;
  text.out[text.used] = 0;
}
inline void Add(SummaryText& text, const char* added) {
  if (text.used + 1 >= text.size) return;
  const int32_t room = text.size - 1 - text.used, whole = static_cast<int32_t>(std::strlen(added));
  const int32_t length = whole < room ? whole : room;
  std::memcpy(text.out + text.used, added, static_cast<size_t>(length));
  text.used += length;
  text.out[text.used] = 0;
}
template <class... Args>
  requires(sizeof...(Args) > 0)
void Add(SummaryText& text, FormatText<std::type_identity_t<Args>...> format, const Args&... args) {
  if (text.used + 1 >= text.size) return;
  const FormatArgument arguments[] = {ArgumentOf(args)..., FormatArgument{}};
  text.used += FormatPieces(text.out + text.used, text.size - text.used, format.text, format.pieces, arguments);
}

// ", label: value" when there is a value.
void AddValue(SummaryText& text, const char* label, const TextSlice& value);

// The bytes as text, at most `most`: unprintable ones are shown as '.'.
void AddPrintable(SummaryText& text, const uint8_t* data, int32_t length, int32_t most);

// Two-byte characters (little-endian), the low byte of each; stops at the first that is no printable one-byte character.
void AddWideText(SummaryText& text, const uint8_t* data, int32_t bytes, int32_t most);

inline TextSlice TextOf(const uint8_t* data, int32_t length) { return {reinterpret_cast<const char*>(data), length}; }

// The payload up to its first CR LF; all of it when there is none.
TextSlice FirstLine(const uint8_t* data, int32_t length);

// The first word of a text, up to a blank; *rest becomes what follows the blanks behind it.
TextSlice FirstWord(TextSlice text, TextSlice* rest);

// The value of a header line "Name: value" behind the first line, case ignored; `shortName` is its one-letter form, or 0.
// Empty when there is none. The search ends with the empty line behind the headers.
TextSlice HeaderValue(const uint8_t* data, int32_t length, const char* name, char shortName);

// Whether the text starts with the word, case ignored.
bool StartsWith(const TextSlice& text, const char* word);

// The text's first four bytes as a big-endian number, zero where it has fewer.
inline uint32_t FourCharacters(const TextSlice& text) {
  uint32_t value = 0;
  for (int32_t i = 0; i < 4; ++i) {
    value = value << 8 | (i < text.length ? static_cast<uint8_t>(text.text[i]) : 0u);
  }
  return value;
}
constexpr uint32_t FourCharacters(const char (&text)[5]) {
  return static_cast<uint32_t>(text[0]) << 24 | static_cast<uint32_t>(text[1]) << 16 |
         static_cast<uint32_t>(text[2]) << 8 | static_cast<uint32_t>(text[3]);
}

inline bool IsPrintable(uint8_t c) { return c >= 0x20 && c < 0x7F; }
inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Whether the text begins with a reply code of FTP or SMTP (RFC 959, RFC 5321): three digits, the first 1 to 6, then
// nothing, a blank, a hyphen or the line's end.
bool StartsWithReplyCode(const TextSlice& text);

}  // namespace qxview
