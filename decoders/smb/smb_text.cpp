// Strings of SMB as texts.
#include "core/characters.h"
#include "decoders/smb/smb_block.h"

namespace qxview {
namespace {

char CharacterOf(uint32_t unit) {
  const uint8_t character = Windows1252Of(unit);
  return character ? static_cast<char>(character) : '?';
}

// Bytes of the text from `bytes` on, terminator included, within `left` of them.
int32_t LengthOfText(const uint8_t* bytes, int32_t left, int32_t width) {
  int32_t at = 0;
  for (; at + width <= left; at += width) {
    if (bytes[at] == 0 && (width == 1 || bytes[at + 1] == 0)) return at + width;
  }
  return left;   // an odd byte at the end goes with it
}

void PutText(SmbString& out, int32_t width) {
  const Field& field = out.field;
  int32_t put = 0;
  for (int32_t at = 0; field.bytes && at + width <= field.length && put < kSmbTextSize - 1; at += width) {
    const uint32_t unit = width == 1 ? field.bytes[at] : ReadLittleU16(field.bytes + at);
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
  out.field = TakeBytes(c, LengthOfText(c.at, Left(c), width));
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
