// From the octets of elements to texts for lines.
#include "decoders/asn1/ldap_text.h"

#include <cstring>

#include "core/characters.h"
#include "decoders/asn1/ldap.h"
#include "decoders/common/guid.h"
#include "decoders/common/sid.h"

namespace qxview {
namespace {

// The character's place in Windows-1252; 0 for none and for control characters.
uint8_t PlaceOf(uint32_t code) {
  return code < 0x20 || code == 0x7F ? 0 : Windows1252Of(code);
}

bool IsText(const Cursor& octets) {
  for (int32_t i = 0; i < Left(octets);) {
    const Utf8Character character = Utf8At(octets.at + i, Left(octets) - i);
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
    const Utf8Character character = Utf8At(at, Left(octets) - i);
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

static void DescribeAs(GuidOrder order, const LdapElement& element, char* out, int32_t size) {
  Cursor c = element.body;
  if (Left(c) != kGuidSize) return DescribeText(element, out, size);
  FormatInto(out, size, "%s", TextOfGuid(Rest(c), order, GuidLetters::kLower));
}
void DescribeUuid(const LdapElement& element, char* out, int32_t size) {
  DescribeAs(GuidOrder::kBig, element, out, size);
}
void DescribeGuid(const LdapElement& element, char* out, int32_t size) {
  DescribeAs(GuidOrder::kLittle, element, out, size);
}

void DescribeSid(const LdapElement& element, char* out, int32_t size) {
  Cursor c = element.body;
  if (PeekU8(c) != 1 || SidSize(c) != Left(c)) return DescribeText(element, out, size);
  FormatInto(out, size, "%s", TextOfSid(Rest(c)));
}

}  // namespace qxview
