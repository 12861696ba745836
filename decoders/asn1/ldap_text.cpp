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
uint8_t PlaceOf(uint32_t code) { return code < 0x20 || code == 0x7F ? 0 : Windows1252Of(code); }

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

void DescribeText(const Cursor& contents, char* out, int32_t size) {
  LdapText text(out, size);
  if (Left(contents) < 1) return text.Put("<NULL>");
  text.PutValue(contents);
}

// The elements inside, each by `put`, with ", " between them.
template <class Put>
void ListElements(LdapText& text, Cursor c, Put put) {
  for (bool first = true; !text.IsFull(); first = false) {
    const BerElement element = TakeBer(c);
    if (!element.here) return;
    if (!first) text.Put(", ");
    put(element);
  }
}

void DescribeTexts(const Cursor& contents, char* out, int32_t size) {
  LdapText text(out, size);
  ListElements(text, contents, [&](const BerElement& inside) { text.PutValue(inside.contents); });
  if (text.IsEmpty()) text.Put("<NULL>");
}

void DescribeAttributes(const Cursor& contents, char* out, int32_t size) {
  LdapText text(out, size);
  ListElements(text, contents, [&](const BerElement& one) { text.PutValue(PeekBer(one.contents).contents); });
  if (text.IsEmpty()) text.Put("<NULL>");
}

void DescribeAttribute(const Cursor& contents, char* out, int32_t size) {
  LdapText text(out, size);
  Cursor c = contents;
  text.PutValue(TakeBer(c).contents);
  const BerElement values = PeekBer(c);
  if (Left(values.contents) < 1) return;
  text.Put(" = ");
  ListElements(text, values.contents, [&](const BerElement& value) { text.PutValue(value.contents); });
}

void DescribeAssertion(const Cursor& contents, char* out, int32_t size) {
  LdapText text(out, size);
  Cursor c = contents;
  text.PutValue(TakeBer(c).contents);
  const BerElement value = PeekBer(c);
  if (!value.here) return;
  text.Put("=");
  text.PutValue(value.contents);
}

namespace {

void DescribeAs(GuidOrder order, const Cursor& contents, char* out, int32_t size) {
  if (Left(contents) != kGuidSize) return DescribeText(contents, out, size);
  FormatInto(out, size, "%s", TextOfGuid(Ahead(contents, kGuidSize), order, GuidLetters::kLower));
}

}  // namespace

void DescribeUuid(const Cursor& contents, char* out, int32_t size) { DescribeAs(GuidOrder::kBig, contents, out, size); }
void DescribeGuid(const Cursor& contents, char* out, int32_t size) {
  DescribeAs(GuidOrder::kLittle, contents, out, size);
}

void DescribeSid(const Cursor& contents, char* out, int32_t size) {
  const int32_t length = SidSize(contents);
  if (PeekU8(contents) != 1 || length != Left(contents)) return DescribeText(contents, out, size);
  FormatInto(out, size, "%s", TextOfSid(Ahead(contents, length)));
}

}  // namespace qxview
