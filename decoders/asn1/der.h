// Elements in the distinguished encoding (ITU-T X.690) as fields of a form that is told elsewhere: a line each over what
// an element holds, without lines for its type and length. What no form explains is walked by its universal tags.
#pragma once
#include "core/decoder.h"
#include "decoders/asn1/object_names.h"
#include "decoders/common/ber_reader.h"

namespace qxview {

enum DerTag : uint32_t {
  kDerUtf8 = 12, kDerNumeric = 18, kDerPrintable = 19, kDerTeletex = 20, kDerIa5 = 22, kDerUtcTime = 23,
  kDerGeneralizedTime = 24, kDerVisible = 26, kDerUniversal = 28, kDerBmp = 30, kDerSet = 0x31,
};
constexpr uint32_t DerContext(uint32_t number) { return 0x80 | number; }              // primitive
constexpr uint32_t DerExplicit(uint32_t number) { return 0xA0 | number; }             // constructed

inline Field WholeOf(const BerElement& element) { return Ahead(element.whole, Left(element.whole)); }
inline Field ContentsOf(const BerElement& element) { return Ahead(element.contents, Left(element.contents)); }

// The next element when it has this identifier; false, and nothing is taken, for another one.
bool TakeDer(Cursor& c, uint32_t identifier, BerElement* element);

using DerText = ShortText<kLineSize>;
DerText DerStringText(const BerElement& element);   // by its type's characters
DerText DerTimeText(const BerElement& element);     // "2026-01-02 03:04:05 (UTC)"

// Lines of elements, over their contents.
void ShowDerNumber(const Place& in, const BerElement& element, const char* label);    // up to 8 octets as a number
void ShowDerObject(const Place& in, const BerElement& element, const char* label);
void ShowDerTime(const Place& in, const BerElement& element, const char* label);
void ShowDerString(const Place& in, const BerElement& element, const char* label);
void ShowDerOctets(const Place& in, const BerElement& element, const char* label);
void ShowDerBoolean(const Place& in, const BerElement& element, const char* label);
// The octet that counts a bit string's unused bits; its other octets.
Cursor ShowDerBits(const Place& in, const BerElement& element);
// A bit string of named bits, the first bit's name first.
void ShowDerFlags(const Place& in, const BerElement& element, const char* label, const char* const* names, int32_t count);

// Whatever elements stand at the cursor, by their universal tags, up to a depth.
void ShowDerValues(const Place& in, Cursor& c);

}  // namespace qxview
