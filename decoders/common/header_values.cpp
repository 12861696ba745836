#include "decoders/common/header_values.h"

#include <cstring>

#include "core/text_scan.h"
#include "decoders/common/header_lines.h"

namespace qxview {

int32_t LengthUpTo(const Field& text, const char* ends) {
  bool quoted = false, inBrackets = false;
  char wanted[16] = "\"\\<>";
  std::strncpy(wanted + 4, ends, sizeof wanted - 5);
  for (int32_t at = FindAny(text, 0, wanted); at < text.length; at = FindAny(text, at + 1, wanted)) {
    const uint8_t c = PeekU8(text, at);
    if (quoted && c == '\\') {
      ++at;
    } else if (c == '"') {
      quoted = !quoted;
    } else if (!quoted && (c == '<' || c == '>')) {
      inBrackets = c == '<';
    } else if (!quoted && !inBrackets && std::strchr(ends, c) && c) {
      return at;
    }
  }
  return text.length;
}

Field TakePiece(Field& rest, const char* ends) {
  const int32_t length = LengthUpTo(rest, ends);
  const Field piece = Trimmed(Slice(rest, 0, length));
  const int32_t behind = length < rest.length ? length + 1 : length;
  rest = Slice(rest, behind, rest.length - behind);
  return piece;
}

Field Unquoted(const Field& text) {
  const bool isQuoted = text.length >= 2 && PeekU8(text) == '"' && PeekU8(text, text.length - 1) == '"';
  return isQuoted ? Slice(text, 1, text.length - 2) : text;
}

void ShowParameters(const Place& in, Field rest, const char* separator) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    const Field parameter = TakePiece(rest, separator);
    if (parameter.length == 0) continue;
    const int32_t equals = FindU8(CursorOver(parameter), '=');
    if (equals < 0) {
      AddLine(in, parameter, "%s", Text(parameter));
    } else {
      const Field value = Trimmed(Slice(parameter, equals + 1, parameter.length - equals - 1));
      AddLine(in, value, "%s=%s", Text(Trimmed(Slice(parameter, 0, equals))), Text(value));
    }
  }
}

void ShowItems(const Place& in, const char* label, Field rest, bool isList) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    Field item = isList ? TakePiece(rest, ",") : rest;
    if (!isList) rest.length = 0;
    const Field word = TakePiece(item, ";");
    if (word.length == 0 && item.length == 0) continue;
    const LineHandle line = word.length > 0 ? AddTextLine(in, word, label) : 0;
    ShowParameters(line ? Under(in, line) : in, item, ";");
  }
}

Field ParameterOf(const Field& value, const char* name) {
  Field rest = value;
  TakePiece(rest, ";");
  for (int32_t i = 0; i < 64 && rest.length > 0; ++i) {
    const Field parameter = TakePiece(rest, ";");
    const int32_t equals = FindU8(CursorOver(parameter), '=');
    if (equals < 0 || !IsWord(Trimmed(Slice(parameter, 0, equals)), name)) continue;
    return Unquoted(Trimmed(Slice(parameter, equals + 1, parameter.length - equals - 1)));
  }
  return {};
}

}  // namespace qxview
