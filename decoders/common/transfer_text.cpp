#include "decoders/common/transfer_text.h"

#include "decoders/common/header_lines.h"

namespace qxview {
namespace {

constexpr int32_t kMostWordText = 400;

int32_t SixBitsOf(uint32_t c) {
  if (c >= 'A' && c <= 'Z') return static_cast<int32_t>(c - 'A');
  if (c >= 'a' && c <= 'z') return static_cast<int32_t>(c - 'a' + 26);
  if (c >= '0' && c <= '9') return static_cast<int32_t>(c - '0' + 52);
  return c == '+' || c == '-' ? 62 : c == '/' || c == '_' ? 63 : -1;
}

int32_t HexOf(uint32_t c) {
  return c >= '0' && c <= '9' ? static_cast<int32_t>(c - '0') : (c | 0x20) >= 'a' && (c | 0x20) <= 'f'
             ? static_cast<int32_t>((c | 0x20) - 'a' + 10) : -1;
}

// The pieces of "=?charset?Q?text?=" at `from`; false for none.
struct EncodedWord { uint32_t encoding; Field text; int32_t length; };
bool FindWord(const Field& field, int32_t from, EncodedWord& out) {
  const Cursor c = CursorOver(field);
  if (!PeekIs(c, from, "=?")) return false;
  const int32_t charset = FindU8(c, '?', from + 2);
  if (charset < 0 || PeekU8(c, charset + 2) != '?') return false;
  const int32_t start = charset + 3, end = FindU8(c, '?', start);
  if (end < 0 || PeekU8(c, end + 1) != '=') return false;
  out = {PeekU8(c, charset + 1) | 0x20, Slice(field, start, end - start), end + 2 - from};
  return out.encoding == 'q' || out.encoding == 'b';
}

}  // namespace

int32_t ReadBase64(Cursor c, uint8_t* out, int32_t size) {
  uint32_t bits = 0;
  int32_t count = 0, used = 0;
  for (; Left(c) > 0 && used < size; TakeBytes(c, 1)) {
    const uint32_t character = PeekU8(c);
    if (IsSpace(character)) continue;
    const int32_t value = SixBitsOf(character);
    if (value < 0) break;
    bits = bits << 6 | static_cast<uint32_t>(value);
    if (++count % 4 != 1) out[used++] = static_cast<uint8_t>(bits >> (2 * (3 - (count + 3) % 4)));
  }
  return used;
}

Cursor DecodeBase64(const Place& in, const Field& text) {
  const Cursor c = CursorOver(text);
  uint8_t* const octets = TakeFrameMemory(in.view, Left(c));
  return MakeCursor(octets, text.offset, octets ? ReadBase64(c, octets, Left(c)) : 0);
}

int32_t ReadQuotedPrintable(const Field& line, bool isWord, uint8_t* out, int32_t size) {
  int32_t used = 0;
  for (int32_t i = 0; i < line.length && used < size; ++i) {
    const uint32_t character = PeekU8(line, i);
    const int32_t high = HexOf(PeekU8(line, i + 1)), low = HexOf(PeekU8(line, i + 2));
    if (character == '=' && high >= 0 && low >= 0) {
      out[used++] = static_cast<uint8_t>(high * 16 + low);
      i += 2;
    } else if (character != '=' || i + 1 < line.length) {
      out[used++] = static_cast<uint8_t>(isWord && character == '_' ? ' ' : character);
    }
  }
  return used;
}

Cursor DecodeQuotedPrintable(const Place& in, const Field& text) {
  Cursor c = CursorOver(text);
  const int32_t room = Left(c);
  uint8_t* const octets = TakeFrameMemory(in.view, room);
  int32_t used = 0;
  TextLine line;
  while (octets && TakeLine(c, line)) {
    used += ReadQuotedPrintable(line.text, false, octets + used, room - used);
    if (line.text.length > 0 && PeekU8(line.text, line.text.length - 1) == '=') continue;   // goes on in the next line
    for (int32_t i = line.text.length; i < line.whole.length && used < room; ++i) {
      octets[used++] = static_cast<uint8_t>(PeekU8(line.whole, i));
    }
  }
  return MakeCursor(octets, text.offset, used);
}

int32_t ReadPercentText(const Field& text, uint8_t* out, int32_t size) {
  int32_t used = 0;
  for (int32_t i = 0; i < text.length && used < size; ++i) {
    const int32_t high = HexOf(PeekU8(text, i + 1)), low = HexOf(PeekU8(text, i + 2));
    const bool isCode = PeekU8(text, i) == '%' && high >= 0 && low >= 0;
    out[used++] = static_cast<uint8_t>(isCode ? static_cast<uint32_t>(high * 16 + low) : PeekU8(text, i));
    if (isCode) i += 2;
  }
  return used;
}

int32_t ReadUuLine(const Field& line, uint8_t* out, int32_t size) {
  const int32_t count = line.length > 0 ? static_cast<int32_t>((PeekU8(line) - ' ') & 0x3F) : 0;
  uint32_t bits = 0;
  int32_t used = 0;
  for (int32_t i = 1; i < line.length && used < count && used < size; ++i) {
    bits = bits << 6 | ((PeekU8(line, i) - ' ') & 0x3F);
    if (i % 4 != 1) out[used++] = static_cast<uint8_t>(bits >> (2 * (3 - (i + 3) % 4)));
  }
  return used;
}

bool ReadEncodedWords(const Field& text, uint8_t* out, int32_t size, int32_t* used) {
  int32_t count = 0;
  bool any = false, isBehindWord = false;
  for (int32_t at = 0; at < text.length && count < size;) {
    EncodedWord word;
    int32_t blanks = at;
    while (isBehindWord && blanks < text.length && IsSpace(PeekU8(text, blanks))) ++blanks;   // between two words: none
    if (FindWord(text, blanks, word)) {
      count += word.encoding == 'q' ? ReadQuotedPrintable(word.text, true, out + count, size - count)
                                    : ReadBase64(CursorOver(word.text), out + count, size - count);
      any = isBehindWord = true;
      at = blanks + word.length;
      continue;
    }
    isBehindWord = false;
    out[count++] = static_cast<uint8_t>(PeekU8(text, at++));
  }
  *used = count;
  return any;
}

void ShowEncodedWords(const Place& in, const Field& text, const char* label) {
  uint8_t octets[kMostWordText];
  int32_t used = 0;
  if (!text.here || !text.bytes || !ReadEncodedWords(text, octets, kMostWordText, &used)) return;
  AddTextLine(in, text, label, Field{octets, text.offset, used, 0, true});
}

}  // namespace qxview
