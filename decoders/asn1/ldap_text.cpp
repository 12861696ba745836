// From the octets of elements to texts for lines.
#include "decoders/asn1/ldap_text.h"

#include <cstring>

#include "decoders/asn1/ldap.h"

namespace qxview {
namespace {

struct Character {
  uint32_t code;
  int32_t octets;  // 0 for what is no UTF-8
};

// The character at the octets, of which there is at least one (RFC 3629: shortest form, no surrogates).
Character CharacterAt(const uint8_t* at, int32_t left) {
  const uint32_t first = at[0];
  if (first < 0x80) return {first, 1};
  const int32_t octets = first >= 0xF5 ? 0 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 0;
  if (octets == 0 || octets > left) return {0, 0};
  uint32_t code = first & (0x7Fu >> octets);
  for (int32_t i = 1; i < octets; ++i) {
    if ((at[i] & 0xC0) != 0x80) return {0, 0};
    code = code << 6 | (at[i] & 0x3Fu);
  }
  constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  return code < kLeast[octets] || code > 0x10FFFF || isSurrogate ? Character{0, 0} : Character{code, octets};
}

// The character's place in Windows-1252; 0 for none and for control characters.
uint8_t PlaceOf(uint32_t code) {
  if ((code >= 0x20 && code < 0x7F) || (code >= 0xA0 && code <= 0xFF)) return static_cast<uint8_t>(code);
  constexpr uint16_t kFrom80[] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                  0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};
  for (uint32_t i = 0; code > 0xFF && i < 32; ++i) {
    if (kFrom80[i] == code) return static_cast<uint8_t>(0x80 + i);
  }
  return 0;
}

bool IsText(const Cursor& octets) {
  for (int32_t i = 0; i < Left(octets);) {
    const Character character = CharacterAt(octets.at + i, Left(octets) - i);
    const uint32_t code = character.code;
    if (character.octets == 0 || code == 0x7F) return false;
    if (code < 0x20 && code != '\t' && code != '\r' && code != '\n') return false;
    i += character.octets;
  }
  return true;
}

}  // namespace

void LdapText::PutBytes(const char* bytes, int32_t count) {
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

void LdapText::Put(const char* text) { PutBytes(text, static_cast<int32_t>(std::strlen(text))); }

void LdapText::PutEscaped(const uint8_t* octets, int32_t count) {
  for (int32_t i = 0; i < count; ++i) PutFormat("\\%.02X", octets[i]);
}

void LdapText::PutCharacters(const Cursor& octets, const char* escaped) {
  for (int32_t i = 0; i < Left(octets) && !full_;) {
    const uint8_t* at = octets.at + i;
    const Character character = CharacterAt(at, Left(octets) - i);
    const char place = static_cast<char>(PlaceOf(character.code));
    const int32_t count = character.octets > 0 ? character.octets : 1;
    if (character.octets == 0 || place == 0 || std::strchr(escaped, place)) {
      PutEscaped(at, count);
    } else {
      PutBytes(&place, 1);
    }
    i += count;
  }
}

void LdapText::PutValue(const Cursor& octets) {
  if (IsText(octets)) return PutCharacters(octets, "");
  for (int32_t i = 0; i < Left(octets) && !full_; ++i) {
    if (i > 0) Put(" ");
    PutFormat("%.02X", octets.at[i]);
  }
}

void WriteLdapText(const Cursor& octets, char* out, int32_t size) { LdapText(out, size).PutValue(octets); }

void DescribeText(const LdapElement& element, char* out, int32_t size) {
  LdapText text(out, size);
  if (Left(element.body) < 1) return text.Put("<NULL>");
  text.PutValue(element.body);
}

// The elements inside, each by `put`, with ", " between them.
template <class Put>
void ListElements(LdapText& text, Cursor c, Put put) {
  for (bool first = true; !text.IsFull(); first = false) {
    const LdapElement element = PeekElement(c);
    if (!element.here) return;
    if (!first) text.Put(", ");
    put(element);
    TakeBytes(c, Left(element.whole));
  }
}

void DescribeTexts(const LdapElement& element, char* out, int32_t size) {
  LdapText text(out, size);
  ListElements(text, element.body, [&](const LdapElement& inside) { text.PutValue(inside.body); });
  if (text.IsEmpty()) text.Put("<NULL>");
}

void DescribeAttributes(const LdapElement& element, char* out, int32_t size) {
  LdapText text(out, size);
  ListElements(text, element.body, [&](const LdapElement& inside) { text.PutValue(PeekElement(inside.body).body); });
  if (text.IsEmpty()) text.Put("<NULL>");
}

void DescribeAttribute(const LdapElement& element, char* out, int32_t size) {
  LdapText text(out, size);
  Cursor c = element.body;
  const LdapElement name = PeekElement(c);
  text.PutValue(name.body);
  TakeBytes(c, Left(name.whole));
  const LdapElement values = PeekElement(c);
  if (Left(values.body) < 1) return;
  text.Put(" = ");
  ListElements(text, values.body, [&](const LdapElement& value) { text.PutValue(value.body); });
}

void DescribeAssertion(const LdapElement& element, char* out, int32_t size) {
  LdapText text(out, size);
  Cursor c = element.body;
  const LdapElement name = PeekElement(c);
  text.PutValue(name.body);
  TakeBytes(c, Left(name.whole));
  const LdapElement value = PeekElement(c);
  if (!value.here) return;
  text.Put("=");
  text.PutValue(value.body);
}

void DescribeUuid(const LdapElement& element, char* out, int32_t size) {
  const uint8_t* p = element.body.at;
  if (Left(element.body) != 16) return DescribeText(element, out, size);
  FormatInto(out, size, "%.08x-%.04x-%.04x-%.04x-%.04x%.08x", ReadU32(p), ReadU16(p + 4), ReadU16(p + 6),
             ReadU16(p + 8), ReadU16(p + 10), ReadU32(p + 12));
}

void DescribeGuid(const LdapElement& element, char* out, int32_t size) {
  const uint8_t* p = element.body.at;
  if (Left(element.body) != 16) return DescribeText(element, out, size);
  FormatInto(out, size, "%.08x-%.04x-%.04x-%.04x-%.04x%.08x", ReadLittleU32(p), ReadLittleU16(p + 4),
             ReadLittleU16(p + 6), ReadU16(p + 8), ReadU16(p + 10), ReadU32(p + 12));
}

void DescribeSid(const LdapElement& element, char* out, int32_t size) {
  // Revision, count of sub-authorities, 6 octets of authority, then 4 octets each, low octet first.
  const Cursor& c = element.body;
  if (Left(c) < 8 || c.at[0] != 1 || Left(c) != 8 + 4 * c.at[1]) return DescribeText(element, out, size);
  LdapText text(out, size);
  text.PutFormat("S-1-%I64u", uint64_t{ReadU16(c.at + 2)} << 32 | ReadU32(c.at + 4));
  for (int32_t i = 0; i < c.at[1]; ++i) text.PutFormat("-%u", ReadLittleU32(c.at + 8 + 4 * i));
}

}  // namespace qxview
