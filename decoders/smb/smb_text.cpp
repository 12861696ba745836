// Strings and times of SMB as texts.
#include "core/civil_date.h"
#include "decoders/smb/smb_block.h"

namespace qxview {
namespace {

// What Windows-1252 has at 0x80 to 0x9F; 0 where it has nothing.
constexpr uint16_t kHighCharacters[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,
    0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A,
    0x0153, 0,      0x017E, 0x0178,
};

char CharacterOf(uint32_t unit) {
  if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) return static_cast<char>(unit);
  for (uint32_t i = 0; i < 32; ++i) {
    if (kHighCharacters[i] == unit && unit != 0) return static_cast<char>(0x80 + i);
  }
  return '?';
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

constexpr int64_t kSecondsTo1970 = 11644473600;   // from 1601

SmbTime TextOfSeconds(int64_t seconds) {
  const int64_t days = (seconds >= 0 ? seconds : seconds - 86399) / 86400;
  const uint32_t ofDay = static_cast<uint32_t>(seconds - days * 86400);
  const CivilDate date = DateOfDay(days);
  SmbTime out;
  FormatInto(out.text, sizeof out.text, "%.04u-%.02u-%.02u %.02u:%.02u:%.02u", static_cast<uint32_t>(date.year),
             date.month, date.day, ofDay / 3600, ofDay / 60 % 60, ofDay % 60);
  return out;
}

constexpr SmbTime kNotSet{"Not set"};

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

SmbTime SmbUnixTime(uint32_t seconds) {
  return seconds == 0 || seconds == UINT32_MAX ? kNotSet : TextOfSeconds(seconds);
}

SmbTime SmbFileTimeText(uint64_t ticks) {
  constexpr uint64_t kTicksASecond = 10000000;
  if (ticks == 0 || ticks >= uint64_t{1} << 63) return kNotSet;
  SmbTime out = TextOfSeconds(static_cast<int64_t>(ticks / kTicksASecond) - kSecondsTo1970);
  const uint32_t fraction = static_cast<uint32_t>(ticks % kTicksASecond);
  if (fraction) AppendFormat(out.text, sizeof out.text, ".%.07u", fraction);
  return out;
}

SmbTime SmbDosTimeText(uint32_t date, uint32_t time) {
  if (date == 0 && time == 0) return kNotSet;
  SmbTime out;
  FormatInto(out.text, sizeof out.text, "%.04u-%.02u-%.02u %.02u:%.02u:%.02u", 1980 + (date >> 9), date >> 5 & 15,
             date & 31, time >> 11, time >> 5 & 63, 2 * (time & 31));
  return out;
}

}  // namespace qxview
