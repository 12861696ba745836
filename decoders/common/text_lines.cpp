#include "decoders/common/text_lines.h"

namespace qxview {

void ShowLinesOfText(const Place& in, Cursor& c, const char* label) {
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) AddTextLine(in, line.whole, label, line.text);
}

Field TakeTerminated(Cursor& c) {
  const int32_t end = FindU8(c, 0);
  const Field text = TakeBytes(c, end < 0 ? Left(c) : end);
  if (end >= 0) TakeBytes(c, 1);
  return text;
}

int32_t LiteralOf(const Field& line) {
  if (line.length < 3 || PeekU8(line, line.length - 1) != '}') return -1;
  int32_t open = line.length - 1;
  while (open > 0 && PeekU8(line, open) != '{') --open;
  const int32_t end = line.length - 1 - (PeekU8(line, line.length - 2) == '+');
  return PeekU8(line, open) == '{' ? DecimalOf(Slice(line, open + 1, end - open - 1)) : -1;
}

bool IsReadable(const Cursor& c, bool withZeros) {
  for (int32_t i = 0; i < Left(c); ++i) {
    const uint32_t octet = PeekU8(c, i);
    if (octet == 0x7F || (octet < ' ' && !IsSpace(octet) && !(withZeros && octet == 0))) return false;
  }
  return Left(c) > 0;
}

}  // namespace qxview
