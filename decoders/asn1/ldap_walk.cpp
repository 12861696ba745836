// The steps that every message is walked with: an element read ahead, its titled line, the walker's lines under it.
#include "decoders/asn1/ldap.h"

namespace qxview {
namespace {

// What a line is over: the element as far as it is there.
Field RangeOf(const LdapElement& element) { return Ahead(element.whole, Left(element.whole)); }

// The element under `line`; the contents of one that is cut follow its type and length as a dump.
template <class Decode>
void ShowUnder(const LdapWalk& walk, LineHandle line, const LdapElement& element, Decode decode) {
  const AsnPlace under = Beneath(walk.at, line);
  char text[128];
  AsnResult out{0, text, sizeof text, 0};
  if (decode(under, element.whole, out) != kAsnTruncated) return;
  Cursor body = element.body;
  AddBlock(LinesOf(under), Rest(body), "Partial Data");
}

void ShowText(const LdapWalk& walk, const LdapField& field, const LdapElement& element) {
  char text[kLdapTextSize];
  (field.describe ? field.describe : DescribeText)(element, text, sizeof text);
  const char* shown = text;
  const LineHandle line = AddLine(LinesOf(walk), RangeOf(element), "%s: %s", field.title, shown);
  ShowUnder(walk, line, element, [](const AsnPlace& under, const Cursor& c, AsnResult& out) {
    char shortText[kAsnShortTextSize];
    return DecodeAsnImplicitString(under, c, {nullptr, shortText, sizeof shortText, false}, out);
  });
}

void ShowNumber(const LdapWalk& walk, const LdapField& field, const LdapElement& element) {
  const uint32_t number = NumberIn(element);
  const Place lines = LinesOf(walk);
  const LineHandle line =
      field.name ? AddLine(lines, RangeOf(element), "%s: [%u] = %s", field.title, number, field.name(number))
                 : AddLine(lines, RangeOf(element), "%s: %u", field.title, number);
  ShowUnder(walk, line, element,
            element.identifier == kAsnEnumerated ? DecodeAsnEnumerated : DecodeAsnImplicitInteger);
}

void ShowFlag(const LdapWalk& walk, const LdapField& field, const LdapElement& element) {
  const LineHandle line =
      AddLine(LinesOf(walk), RangeOf(element), "%s: %s", field.title, TrueOrFalse(NumberIn(element)));
  ShowUnder(walk, line, element, DecodeAsnImplicitBoolean);
}

void ShowInside(LdapWalk& walk, const LdapField& field, const LdapElement& element) {
  char text[kLdapTextSize] = "";
  if (field.describe) field.describe(element, text, sizeof text);
  LdapWalk inner;
  if (!StepInto(walk, field.title, text, inner)) return;
  if (field.kind == LdapField::kGroup) return WalkGrammar(inner, *field.inner);
  field.show(inner);
  ShowUnexplained(inner);
}

}  // namespace

LdapElement PeekElement(const Cursor& c) {
  LdapElement element{};
  element.whole = element.body = MakeCursor(c.at, c.offset, 0);
  Cursor rest = c;
  AsnSpan span;
  if (Left(c) < 2 || c.at[1] == 0x80 || !(span = TakeAsnElement(rest)).here) return element;
  element = {span.identifier, span.whole, span.contents, Left(span.whole), true};
  if (span.cut) {
    Cursor length = c;
    TakeBytes(length, 1);
    AsnResult declared{};
    DecodeAsnLength(AsnPlace{}, length, declared);
    element.size = 1 + int64_t{declared.consumed} + declared.number;
  }
  return element;
}

uint32_t NumberIn(const LdapElement& element) {
  uint32_t number = 0;
  const int32_t count = Left(element.body);
  for (int32_t i = count > 4 ? count - 4 : 0; i < count; ++i) number = number << 8 | element.body.at[i];
  return number;
}

bool StepHeader(LdapWalk& walk, const char* label, LdapWalk& inner) {
  const LdapElement element = PeekElement(walk.c);
  if (!element.here || *walk.elementsLeft < 1) return false;
  --*walk.elementsLeft;
  AsnResult out{};
  DecodeAsnHeader(walk.at, walk.c, label, out);
  inner = {walk.at, element.body, walk.elementsLeft};
  TakeBytes(walk.c, Left(element.whole));
  return true;
}

bool StepInto(LdapWalk& walk, const char* title, const char* text, LdapWalk& inner) {
  const LdapElement element = PeekElement(walk.c);
  if (!element.here || *walk.elementsLeft < 1) return false;
  const LineHandle line = text[0] ? AddLine(LinesOf(walk), RangeOf(element), "%s: %s", title, text)
                                  : AddLine(LinesOf(walk), RangeOf(element), "%s:", title);
  LdapWalk under{Beneath(walk.at, line), walk.c, walk.elementsLeft};
  TakeBytes(walk.c, Left(element.whole));
  return StepHeader(under, title, inner);
}

bool StepField(LdapWalk& walk, const LdapField& field) {
  const LdapElement element = PeekElement(walk.c);
  if (!element.here || *walk.elementsLeft < 1) return false;
  if (element.identifier != field.identifier && field.kind != LdapField::kFilter) return false;
  switch (field.kind) {
    case LdapField::kFilter:
      return StepFilter(walk, field.title);
    case LdapField::kGroup:
    case LdapField::kShown:
      ShowInside(walk, field, element);
      return true;
    case LdapField::kText:
      ShowText(walk, field, element);
      break;
    case LdapField::kNumber:
      ShowNumber(walk, field, element);
      break;
    case LdapField::kFlag:
      ShowFlag(walk, field, element);
      break;
  }
  --*walk.elementsLeft;
  TakeBytes(walk.c, Left(element.whole));
  return true;
}

void ShowUnexplained(LdapWalk& walk) {
  AddBlock(LinesOf(walk), Rest(walk.c), *walk.elementsLeft > 0 ? "Undefined Data" : "More Elements");
}

void WalkGrammar(LdapWalk& walk, const LdapGrammar& grammar) {
  Loop loop;
  do {
    for (int32_t i = 0; i < grammar.count; ++i) StepField(walk, grammar.fields[i]);
  } while (grammar.repeats && MoreAt(LinesOf(walk), walk.c, loop));
  ShowUnexplained(walk);
}

}  // namespace qxview
