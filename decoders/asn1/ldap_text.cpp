// From the octets of elements to texts for lines. A string of the directory is UTF-8 (RFC 4511 4.1.2), the value of an
// attribute may be anything.
#include "decoders/asn1/ldap.h"
#include "decoders/common/guid.h"
#include "decoders/common/line_text.h"
#include "decoders/common/sid.h"

namespace qxview {
void DescribeText(const Cursor& contents, char* out, int32_t size) {
  LineText text(out, size);
  if (Left(contents) < 1) return text.Put("<NULL>");
  text.PutValue(contents);
}

// The elements inside, each by `put`, with ", " between them.
template <class Put>
void ListElements(LineText& text, Cursor c, Put put) {
  for (bool first = true; !text.IsFull(); first = false) {
    const BerElement element = TakeBer(c);
    if (!element.here) return;
    if (!first) text.Put(", ");
    put(element);
  }
}

void DescribeTexts(const Cursor& contents, char* out, int32_t size) {
  LineText text(out, size);
  ListElements(text, contents, [&](const BerElement& inside) { text.PutValue(inside.contents); });
  if (text.IsEmpty()) text.Put("<NULL>");
}

void DescribeAttributes(const Cursor& contents, char* out, int32_t size) {
  LineText text(out, size);
  ListElements(text, contents, [&](const BerElement& one) { text.PutValue(PeekBer(one.contents).contents); });
  if (text.IsEmpty()) text.Put("<NULL>");
}

void DescribeAttribute(const Cursor& contents, char* out, int32_t size) {
  LineText text(out, size);
  Cursor c = contents;
  text.PutValue(TakeBer(c).contents);
  const BerElement values = PeekBer(c);
  if (Left(values.contents) < 1) return;
  text.Put(" = ");
  ListElements(text, values.contents, [&](const BerElement& value) { text.PutValue(value.contents); });
}

void DescribeAssertion(const Cursor& contents, char* out, int32_t size) {
  LineText text(out, size);
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
