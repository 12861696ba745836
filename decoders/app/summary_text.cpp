#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

char UpperOf(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

TextSlice TrimBlanks(TextSlice text) {
  while (text.length > 0 && (*text.text == ' ' || *text.text == '\t')) {
    ++text.text;
    --text.length;
  }
  while (text.length > 0 && (text.text[text.length - 1] == ' ' || text.text[text.length - 1] == '\t')) --text.length;
  return text;
}

// The value of one header line when it is the one looked for.
TextSlice ValueOfLine(const TextSlice& line, const char* name, char shortName) {
  const void* colon = std::memchr(line.text, ':', static_cast<size_t>(line.length));
  if (!colon) return {line.text, 0};
  const int32_t at = static_cast<int32_t>(static_cast<const char*>(colon) - line.text);
  const TextSlice label = TrimBlanks({line.text, at});
  const bool whole = label.length == static_cast<int32_t>(std::strlen(name)) && StartsWith(label, name);
  const bool letter = shortName && label.length == 1 && UpperOf(*label.text) == UpperOf(shortName);
  if (!whole && !letter) return {line.text, 0};
  return TrimBlanks({line.text + at + 1, line.length - at - 1});
}

}  // namespace

void AddValue(SummaryText& text, const char* label, const TextSlice& value) {
  if (value.length < 1) return;
  Add(text, ", %s: %s", label, value);
}

void AddPrintable(SummaryText& text, const uint8_t* data, int32_t length, int32_t most) {
  if (length > most) length = most;
  if (length > text.size - 1 - text.used) length = text.size - 1 - text.used;
  for (int32_t i = 0; i < length; ++i) {
    text.out[text.used++] = IsPrintable(data[i]) ? static_cast<char>(data[i]) : '.';
  }
  if (text.size > 0) text.out[text.used] = 0;
}

void AddWideText(SummaryText& text, const uint8_t* data, int32_t bytes, int32_t most) {
  for (int32_t i = 0; i < most && 2 * i + 1 < bytes && text.used < text.size - 1; ++i) {
    uint8_t c = data[2 * i];
    if (data[2 * i + 1] != 0) break;
    if (c == '\r' || c == '\n' || c == '\t') c = ' ';
    if (!IsPrintable(c)) break;
    text.out[text.used++] = static_cast<char>(c);
  }
  if (text.size > 0) text.out[text.used] = 0;
}

TextSlice FirstLine(const uint8_t* data, int32_t length) {
  const uint8_t* at = data;
  const uint8_t* const end = data + length;
  while (at + 1 < end) {
    const void* found = std::memchr(at, '\r', static_cast<size_t>(end - at - 1));
    if (!found) break;
    at = static_cast<const uint8_t*>(found);
    if (at[1] == '\n') return TextOf(data, static_cast<int32_t>(at - data));
    ++at;
  }
  return TextOf(data, length);
}

TextSlice FirstWord(TextSlice text, TextSlice* rest) {
  int32_t length = 0;
  while (length < text.length && text.text[length] != ' ') ++length;
  int32_t next = length;
  while (next < text.length && text.text[next] == ' ') ++next;
  if (rest) *rest = {text.text + next, text.length - next};
  return {text.text, length};
}

TextSlice HeaderValue(const uint8_t* data, int32_t length, const char* name, char shortName) {
  constexpr int32_t kMostLines = 40;   // the packet list does not search a body that has no empty line in front
  for (int32_t i = 0; i < kMostLines; ++i) {
    const TextSlice line = FirstLine(data, length);
    if (i > 0) {
      if (line.length == 0) break;
      const TextSlice value = ValueOfLine(line, name, shortName);
      if (value.length > 0) return value;
    }
    if (line.length + 2 >= length) break;
    data += line.length + 2;
    length -= line.length + 2;
  }
  return {nullptr, 0};
}

bool StartsWith(const TextSlice& text, const char* word) {
  for (int32_t i = 0; word[i]; ++i) {
    if (i >= text.length || UpperOf(text.text[i]) != UpperOf(word[i])) return false;
  }
  return true;
}

bool StartsWithReplyCode(const TextSlice& text) {
  if (text.length < 3 || text.text[0] < '1' || text.text[0] > '6') return false;
  if (!IsDigit(text.text[1]) || !IsDigit(text.text[2])) return false;
  if (text.length == 3) return true;
  const char next = text.text[3];
  return next == ' ' || next == '-' || next == '\r' || next == '\n';
}

}  // namespace qxview
