// Lines of text and headers as mail wrote them first and many protocols after it: a start line, "Name: value" lines that
// may be folded, an empty line (RFC 5322 2.2, RFC 9112 2 and 5, RFC 3261 7, RFC 2326 4).
//
//   StartLine start;
//   if (!TakeStartLine(c, "SIP/", start)) return 0;
//   ShowStartLine(in, start);
//   HeaderLine header;
//   Loop loop;
//   while (MoreAt(in, c, loop) && TakeHeader(c, header)) {
//     const Place under = Under(in, ShowHeader(in, header));
//     if (IsWord(header.name, "Content-Length")) ...
//   }
//   ShowEndOfHeaders(in, c);
#pragma once
#include "core/decoder.h"

namespace qxview {

// The next line; CR LF or LF alone ends it, the last one may have no end. False when nothing is left.
struct TextLine {
  Field text;    // without the line end
  Field whole;   // with it
};
bool TakeLine(Cursor& c, TextLine& out);

// Whether a list within a text goes on with what is left of it.
inline bool MoreAt(const Place& at, const Field& rest, Loop& loop) {
  Cursor c = CursorOver(rest);
  return MoreAt(at, c, loop);
}

// Whether a field holds a word, in whatever case; whether it starts with it; whether bytes start with a text as it is. Most words
// of a table are told apart by their first letters.
namespace detail {
bool HoldsWord(const Field& field, const char* word);
bool StartsAsWord(const Field& field, const char* word);
constexpr uint32_t kCaseBit = 0x20;
inline bool StartsAlike(const Field& field, const char* word) {
  return ((PeekU8(field) ^ static_cast<uint8_t>(word[0])) & ~kCaseBit) == 0;
}
}  // namespace detail
inline bool IsWord(const Field& field, const char* word) {
  return detail::StartsAlike(field, word) && detail::HoldsWord(field, word);
}
inline bool StartsWithWord(const Field& field, const char* word) {
  return (word[0] == 0 || detail::StartsAlike(field, word)) && detail::StartsAsWord(field, word);
}
bool StartsWithText(const Cursor& c, const char* text);

// Below 0, 0 or above: where a field stands to a word in the order of their letters, in whatever case.
int32_t CompareWord(const Field& field, const char* word);
// Whether rows stand in the order of their names; where they do, the row whose name the field holds, null when there is none.
template <class Row, size_t kCount>
constexpr bool AreInOrder(const Row (&rows)[kCount]) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? c | 0x20 : int{c}; };
  for (size_t i = 1; i < kCount; ++i) {
    const char *before = rows[i - 1].name, *name = rows[i].name;
    while (*before && lower(*before) == lower(*name)) ++before, ++name;
    if (lower(*before) >= lower(*name)) return false;
  }
  return true;
}
template <class Row, size_t kCount>
const Row* FindWord(const Row (&rows)[kCount], const Field& field) {
  size_t first = 0, end = kCount;
  while (first < end) {
    const size_t middle = (first + end) / 2;
    const int32_t order = CompareWord(field, rows[middle].name);
    if (order == 0) return &rows[middle];
    order < 0 ? end = middle : first = middle + 1;
  }
  return nullptr;
}

// Passes over blanks, tabs and line ends.
constexpr bool IsSpace(uint32_t c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
void SkipSpace(Cursor& c);

// The piece of a text up to the next blank, or up to one of `ends`; blanks in front are passed over. The rest of `text`
// starts behind the character that ended it. Not here when nothing is left.
Field TakeWord(Field& text, const char* ends = " \t");
// Without blanks at both ends.
Field Trimmed(const Field& text);
// A decimal number of at most nine digits that fills the field; -1 for anything else.
int32_t DecimalOf(const Field& field);

// A readable line: the label and the field's text, UTF-8 or not, without line ends.
LineHandle AddTextLine(const Place& in, const Field& field, const char* label);
LineHandle AddTextLine(const Place& in, const Field& whole, const char* label, const Field& text);

// The first line of a request, "GET /index.html HTTP/1.1", or of a response, "HTTP/1.1 200 OK". `version` is what the
// version starts with. False, with nothing taken, for a line that is neither.
struct StartLine {
  bool isRequest;
  Field line;                      // without the line end
  Field method, target, version;   // of a request; the target runs to the last blank
  Field code, phrase;              // of a response
};
bool TakeStartLine(Cursor& c, const char* version, StartLine& out);
Place ShowStartLine(const Place& in, const StartLine& start);

// A header with its folded lines.
struct HeaderLine {
  Field whole;    // with the last line end
  Field name, value;
};
// False, with nothing taken, at the empty line and at one that is no header.
bool TakeHeader(Cursor& c, HeaderLine& out);
// "Name: value". `name` stands in for the one that was sent, as compact forms have long ones.
LineHandle ShowHeader(const Place& in, const HeaderLine& header, const char* name = nullptr);
// The empty line, where one is next.
void ShowEndOfHeaders(const Place& in, Cursor& c);
// All of them, to behind the empty line.
void ShowHeaders(const Place& in, Cursor& c);

}  // namespace qxview
