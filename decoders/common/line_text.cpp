#include "decoders/common/line_text.h"

#include <cstring>

#include "core/characters.h"
#include "core/text_scan.h"

namespace qxview {
namespace {

// The character's place in Windows-1252; 0 for none and for control characters.
uint8_t PlaceOf(uint32_t code) { return code < 0x20 || code == 0x7F ? 0 : Windows1252Of(code); }

// The octets of the next character, or of one that is none.
Field TakeCharacter(Cursor& c, Utf8Character* character) {
  *character = Utf8At(c.at, Left(c));
  return TakeBytes(c, character->octets > 0 ? character->octets : 1);
}

bool IsText(Cursor c) {
  for (TakeBytes(c, CountPlain(c)); Left(c) > 0; TakeBytes(c, CountPlain(c))) {
    Utf8Character character;
    TakeCharacter(c, &character);
    const uint32_t code = character.code;
    if (character.octets == 0 || code == 0x7F) return false;
    if (code < 0x20 && code != '\t' && code != '\r' && code != '\n') return false;
  }
  return true;
}

}  // namespace

void LineText::PutBytes(const char* bytes, int32_t count) {
  if (full_ || room_ < 1) return;
  if (count > room_ - used_) {
    // The last characters make room for what says that it is cut.
    full_ = true;
    const int32_t end = used_ > room_ - 3 ? room_ - 3 : used_;
    if (end >= 0) std::memcpy(out_ + end, "...", 4);
    return;
  }
  std::memcpy(out_ + used_, bytes, static_cast<size_t>(count));
  used_ += count;
  out_[used_] = 0;
}

void LineText::PutRun(const char* characters, int32_t count) {
  const int32_t fitting = full_ || count <= room_ - used_ ? count : room_ - used_;
  PutBytes(characters, fitting);
  if (fitting < count) PutBytes(characters + fitting, 1);
}

void LineText::Put(const char* text) { PutBytes(text, static_cast<int32_t>(std::strlen(text))); }

void LineText::PutCharacters(const Cursor& octets, const char* escaped) {
  for (Cursor c = octets; Left(c) > 0 && !full_;) {
    int32_t count = CountPlain(c);
    if (escaped[0]) {
      for (int32_t i = 0; i < count; ++i) {
        if (std::strchr(escaped, static_cast<char>(PeekU8(c, i)))) count = i;
      }
    }
    if (count > 0) {
      PutRun(reinterpret_cast<const char*>(TakeBytes(c, count).bytes), count);
      continue;
    }
    Utf8Character character;
    Cursor own = CursorOver(TakeCharacter(c, &character));
    const char place = static_cast<char>(PlaceOf(character.code));
    if (character.octets == 0 || place == 0 || std::strchr(escaped, place)) {
      while (Left(own) > 0) PutFormat("\\%.02X", TakeU8(own).value);
    } else {
      PutBytes(&place, 1);
    }
  }
}

void LineText::PutReadable(const Cursor& octets) {
  for (Cursor c = octets; Left(c) > 0 && !full_;) {
    if (const Field plain = TakeBytes(c, CountPlain(c)); plain.length > 0) {
      PutRun(reinterpret_cast<const char*>(plain.bytes), plain.length);
      continue;
    }
    Utf8Character character;
    const Field own = TakeCharacter(c, &character);
    if (character.octets) {
      PutCode(character.code);
    } else {
      PutBytes(reinterpret_cast<const char*>(own.bytes), 1);
    }
  }
}

void LineText::PutCode(uint32_t code) {
  if (code == '\r' || code == '\n') return;
  const char place = code == '\t' ? ' ' : static_cast<char>(PlaceOf(code));
  PutBytes(place ? &place : "?", 1);
}

void LineText::PutValue(const Cursor& octets) {
  if (IsText(octets)) return PutCharacters(octets, "");
  for (Cursor c = octets; Left(c) > 0 && !full_;) {
    if (Taken(c) > Taken(octets)) Put(" ");
    PutFormat("%.02X", TakeU8(c).value);
  }
}

}  // namespace qxview
