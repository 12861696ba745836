#include "core/elements.h"

namespace qxview {
namespace {

inline Field TakeNumber(Cursor& c, int32_t size, bool little) {
  if (size == 1) return TakeU8(c);
  if (size == 2) return little ? TakeLittleU16(c) : TakeU16(c);
  Field field = TakeBytes(c, size);
  if (field.here) field.value = static_cast<uint32_t>(detail::NumberOf(field, little));
  return field;
}

// Type and length in one word: the type is its first bits.
void SplitWord(const ElementForm& form, Element& out) {
  const int32_t lengthBits = 8 * form.typeSize - form.typeBits;
  out.length = out.type;
  out.length.value = out.type.value & ((1u << lengthBits) - 1);
  out.type.value >>= lengthBits;
}

}  // namespace

bool TakeElement(Cursor& c, const ElementForm& form, Element& out) {
  const Cursor start = c;
  out = Element{};
  if (form.lengthFirst) out.length = TakeNumber(c, form.lengthSize, form.little);
  out.type = TakeNumber(c, form.typeSize, form.little);
  if (form.typeBits) SplitWord(form, out);
  out.code = out.type.value & form.typeMask;
  const int32_t code = static_cast<int32_t>(out.code);
  out.single = out.type.here && code >= 0 && (code == form.padType || code == form.endType);
  if (out.single) {
    out.whole = out.type;
    out.value = MakeCursor(c.at, c.offset, 0);
    return true;
  }
  if (!form.lengthFirst && !form.typeBits && form.lengthSize) out.length = TakeNumber(c, form.lengthSize, form.little);
  const int32_t header = c.offset - start.offset;
  int64_t size = int64_t{out.length.value} * form.unit - (form.lengthCountsHeader ? header : 0);
  if (!form.lengthSize && !form.typeBits) size = c.left;
  if (c.ranShort || size < 0) {
    c = start;
    return false;
  }
  out.value = TakeCursor(c, size);
  out.value.begin = out.value.offset;
  if (form.padTo > 1) {
    const int32_t beyond = (c.offset - start.offset) % form.padTo;
    const int32_t wanted = beyond ? form.padTo - beyond : 0;
    if (wanted && Left(c)) out.padding = TakeBytes(c, wanted < Left(c) ? wanted : Left(c));
  }
  out.whole = Ahead(start, c.offset - start.offset);
  return true;
}

namespace detail {
namespace {

// The lines of an element's head.
int32_t CountHeadLines(const Element& element, const ElementForm& form) {
  const int32_t own = element.whole.here, type = element.type.here;
  if (form.typeBits) return own + 2 * type;
  const bool hasLength = form.lengthFirst || (!element.single && form.lengthSize);
  return own + type + (hasLength && element.length.here);
}

}  // namespace

Place AddElementHead(const Place& in, const Element& element, const ElementForm& form, const char* title,
                     const char* name) {
  if (Silent(in) && !in.dead) {
    const int32_t lines = CountHeadLines(element, form);
    if (lines < PacketOf(in).linesLeft) [[likely]] {
      CountLines(in, lines);
      return Under(in, kLineOutsideDisplay);
    }
  }
  const Place under = Under(in, AddLine(in, element.whole, "%s: %s", title, name));
  const Field& type = element.type;
  if (form.typeBits) {
    const Field word{type.bytes, type.offset, type.length, static_cast<uint32_t>(NumberOf(type, form.little)), true};
    const BitPicture typeBits = BitsOf(word, 0, form.typeBits);
    const BitPicture lengthBits = BitsOf(word, form.typeBits, 8 * form.typeSize - form.typeBits);
    AddBitLine(under, word, "%s: %s = %u (%s)", typeBits.picture, form.typeLabel, typeBits.value, name);
    AddBitLine(under, word, "%s: %s = %u", lengthBits.picture, form.lengthLabel, lengthBits.value);
    return under;
  }
  if (form.lengthFirst) AddLine(under, element.length, "%s: %u", form.lengthLabel, element.length.value);
  AddLine(under, type, "%s: %u = %s", form.typeLabel, type.value, name);
  if (!form.lengthFirst && !element.single && form.lengthSize) {
    AddLine(under, element.length, "%s: %u", form.lengthLabel, element.length.value);
  }
  return under;
}

void AddElementValue(const Place& in, Cursor& value) {
  constexpr int32_t kBytesOfLine = 160;   // a line holds so many
  Loop loop;
  while (Left(value) && MoreAt(in, value, loop)) {
    const Field part = TakeBytes(value, Left(value) < kBytesOfLine ? Left(value) : kBytesOfLine);
    AddLine(in, part, "Value: %s", HexText(part));
  }
}

void AddLostElement(const Place& in, Cursor& c, Element& element, const ElementForm& form, const char* title,
                    const char* name) {
  if (!element.type.here || (!element.length.here && form.lengthSize)) return;
  element.whole = Ahead(c, Left(c));
  TakeCursor(c, form.typeSize + (form.typeBits ? 0 : form.lengthSize));
  const Place under = AddElementHead(in, element, form, title, name);
  AddElementValue(under, c);
}

void AddElementTail(const Place& in, const Element& element, const ElementForm&) {
  if (element.padding.here && element.padding.length > 0) {
    AddLine(in, element.padding, "Padding: %s", HexText(element.padding));
  }
}

}  // namespace detail
}  // namespace qxview
