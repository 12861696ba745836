// Strings of SMB as texts.
#include "core/characters.h"
#include "decoders/smb/smb_block.h"

namespace qxview {
namespace {

char CharacterOf(uint32_t unit) {
  const uint8_t character = Windows1252Of(unit);
  return character ? static_cast<char>(character) : '?';
}

uint32_t UnitAt(const Cursor& c, int32_t at, int32_t width) {
  return width == 1 ? PeekU8(c, at) : PeekLittleU16(c, at);
}

// Bytes of the text at the cursor, terminator included.
int32_t LengthOfText(const Cursor& c, int32_t width) {
  for (int32_t at = 0; at + width <= Left(c); at += width) {
    if (UnitAt(c, at, width) == 0) return at + width;
  }
  return Left(c);   // an odd byte at the end goes with it
}

void PutText(SmbString& out, int32_t width) {
  const Cursor c = CursorOver(out.field);
  int32_t put = 0;
  for (int32_t at = 0; at + width <= Left(c) && put < kSmbTextSize - 1; at += width) {
    const uint32_t unit = UnitAt(c, at, width);
    if (unit == 0) break;
    if (unit >= 0xDC00 && unit <= 0xDFFF) continue;   // the second half of a pair whose first is one '?'
    out.text[put++] = width == 1 ? static_cast<char>(unit) : CharacterOf(unit);
  }
  out.text[put] = 0;
}

int32_t WidthOf(const SmbMessage& message, SmbCharacters characters) {
  if (characters == SmbCharacters::kOem) return 1;
  return characters == SmbCharacters::kUnicode || message.isUnicode ? 2 : 1;
}

void AddText(const Place& in, const char* label, const SmbString& string) {
  AddLine(in, string.field, "%s: %s", label, string.text[0] ? string.text : "<null string>");
}

}  // namespace

SmbString TakeSmbString(const SmbMessage& message, Cursor& c, SmbCharacters characters) {
  const int32_t width = WidthOf(message, characters);
  const bool aligned = width == 2 && characters != SmbCharacters::kUnaligned;
  if (aligned && SmbOffset(message, c) % 2 != 0 && Left(c) > 0) TakeU8(c);
  SmbString out;
  out.field = TakeBytes(c, LengthOfText(c, width));
  PutText(out, width);
  return out;
}

SmbString AddSmbString(const SmbMessage& message, const Place& in, Cursor& c, const char* label,
                       SmbCharacters characters) {
  if (Left(c) < 1) return {};
  if (WidthOf(message, characters) == 2 && characters != SmbCharacters::kUnaligned) AddSmbPad(message, in, c, 2);
  const SmbString string = TakeSmbString(message, c, characters);
  AddText(in, label, string);
  return string;
}

SmbString AddSmbCounted(const SmbMessage& message, const Place& in, Cursor& c, int64_t length, const char* label,
                        SmbCharacters characters) {
  SmbString out;
  out.field = TakeBytes(c, length < Left(c) ? length : Left(c));
  PutText(out, WidthOf(message, characters));
  AddText(in, label, out);
  return out;
}

void NameSmbEntry(const Place& in, const SmbString& name) {
  if (name.text[0]) AppendToParent(in, name.field, ": %s", name.text);
}

}  // namespace qxview
