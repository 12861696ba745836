// Search filters (RFC 4511 4.5.1.7): as text (RFC 4515) and as lines. Both walk the nesting with a stack of their own.
#include "decoders/asn1/ldap.h"
#include "decoders/common/line_text.h"

namespace qxview {
namespace {

enum Filter : uint32_t {
  kAnd = 0xA0, kOr = 0xA1, kNot = 0xA2, kEqual = 0xA3, kSubstrings = 0xA4, kGreaterOrEqual = 0xA5, kLessOrEqual = 0xA6,
  kPresent = 0x87, kApprox = 0xA8, kExtensible = 0xA9,
};
constexpr const char* kEscaped = "*()\\";

// --- as text ---

void PutAssertion(LineText& text, Cursor c, const char* operation) {
  text.PutCharacters(TakeBer(c).contents, kEscaped);
  text.Put(operation);
  text.PutCharacters(PeekBer(c).contents, kEscaped);
}

void PutSubstrings(LineText& text, Cursor c) {
  constexpr uint32_t kInitial = 0x80, kFinal = 0x82;
  text.PutCharacters(TakeBer(c).contents, kEscaped);
  text.Put("=");
  Cursor parts = PeekBer(c).contents;
  bool endsInStar = false;
  while (!text.IsFull()) {
    const BerElement part = TakeBer(parts);
    if (!part.here) break;
    if (part.identifier != kInitial && !endsInStar) text.Put("*");
    text.PutCharacters(part.contents, kEscaped);
    endsInStar = part.identifier != kFinal;
    if (endsInStar) text.Put("*");
  }
}

// "cn:dn:2.4.6.8.10:=value"
void PutExtensible(LineText& text, Cursor c) {
  constexpr uint32_t kRule = 0x81, kType = 0x82, kValue = 0x83, kAttributes = 0x84;
  constexpr int32_t kMostParts = 4;   // the filters around it are written with it again
  BerElement parts[kMostParts]{};
  for (int32_t i = 0; i < kMostParts; ++i) {
    const BerElement part = TakeBer(c);
    if (part.identifier >= kRule && part.identifier <= kAttributes) parts[part.identifier - kRule] = part;
  }
  text.PutCharacters(parts[kType - kRule].contents, kEscaped);
  if (BerNumber(parts[kAttributes - kRule].contents)) text.Put(":dn");
  if (parts[0].here) text.Put(":");
  text.PutCharacters(parts[0].contents, kEscaped);
  text.Put(":=");
  text.PutCharacters(parts[kValue - kRule].contents, kEscaped);
}

// A filter that holds no filters.
void PutItem(LineText& text, const BerElement& item) {
  switch (item.identifier) {
    case kEqual: return PutAssertion(text, item.contents, "=");
    case kGreaterOrEqual: return PutAssertion(text, item.contents, ">=");
    case kLessOrEqual: return PutAssertion(text, item.contents, "<=");
    case kApprox: return PutAssertion(text, item.contents, "~=");
    case kSubstrings: return PutSubstrings(text, item.contents);
    case kExtensible: return PutExtensible(text, item.contents);
    case kPresent:
      text.PutCharacters(item.contents, kEscaped);
      return text.Put("=*");
    default: return text.Put("?");
  }
}

const char* SignOf(uint32_t identifier) {
  return identifier == kAnd ? "&" : identifier == kOr ? "|" : identifier == kNot ? "!" : nullptr;
}

// --- as lines ---

constexpr BerRow kAssertionFields[] = {
    {kAsnOctetString, "Attribute", &kLdapText}, {kAsnOctetString, "Assertion Value", &kLdapText}};
constexpr BerType kAssertion = GroupOf(kAssertionFields);

constexpr BerRow kPartFields[] = {
    {0x80, "Initial", &kLdapText}, {0x81, "Any", &kLdapText}, {0x82, "Final", &kLdapText}};
constexpr BerType kParts = Repeated(kPartFields, DescribeTexts);
constexpr BerRow kSubstringFields[] = {
    {kAsnOctetString, "Attribute", &kLdapText}, {kAsnSequence, "Substrings", &kParts}};
constexpr BerType kSubstring = GroupOf(kSubstringFields);

constexpr BerRow kExtensibleFields[] = {
    {0x81, "Matching Rule", &kLdapText}, {0x82, "Attribute", &kLdapText}, {0x83, "Match Value", &kLdapText},
    {0x84, "DN Attributes", &kLdapFlag}};
constexpr BerType kExtensibleMatch = GroupOf(kExtensibleFields);

// What stands under the line of a filter; null for more filters.
constexpr BerRow kKinds[] = {
    {kAnd, "And", nullptr}, {kOr, "Or", nullptr}, {kNot, "Not", nullptr}, {kEqual, "Equality Match", &kAssertion},
    {kSubstrings, "Substrings", &kSubstring}, {kGreaterOrEqual, "Greater Or Equal", &kAssertion},
    {kLessOrEqual, "Less Or Equal", &kAssertion}, {kApprox, "Approximate Match", &kAssertion},
    {kExtensible, "Extensible Match", &kExtensibleMatch}};

const BerRow* KindOf(uint32_t identifier) {
  for (const BerRow& kind : kKinds) {
    if (kind.tag == identifier) return &kind;
  }
  return nullptr;
}

// Lines of deeper filters stay at this level: beneath it a substring's parts and their bits must still have an image.
constexpr int32_t kDeepestFilterLevel = 10;

// Filters that are walked, and where their lines go.
struct OpenFilter {
  Place in;
  Cursor c;
};

// The lines of the filter at the cursor. Of one that holds filters `inner` is what is inside, and the result is true.
bool ShowOne(BerWalk& walk, const Place& in, Cursor& c, const char* title, OpenFilter& inner) {
  const BerElement filter = PeekBer(c);
  char text[kLdapTextSize];
  DescribeFilter(c, text, sizeof text);
  const char* shown = text;
  const Field range = Ahead(filter.whole, Left(filter.whole));
  const Place under = Beneath(in, AddLine(in, range, "%s: %s", title, shown));
  const BerRow* kind = KindOf(filter.identifier);
  if (!kind) {
    const char* name = filter.identifier == kPresent ? "Present" : kUndefined;
    ShowBerRow(walk, under, c, {filter.identifier, name, &kLdapText});
    return false;
  }
  if (!EnterBer(walk, under, c, kind->title, &inner.c)) return false;
  inner.in = in.level >= kDeepestFilterLevel ? in : under;
  if (!kind->type) return true;
  ShowBerRows(walk, under, inner.c, *kind->type);
  return false;
}

}  // namespace

void DescribeFilter(const Cursor& filter, char* out, int32_t size) {
  LineText text(out, size);
  struct Open {
    Cursor c;
    bool isClosed;   // by a parenthesis, once its filters are written
  } open[kDeepestFilter];
  open[0] = {PeekBer(filter).whole, false};
  for (int32_t depth = 0; depth >= 0 && !text.IsFull();) {
    const BerElement next = TakeBer(open[depth].c);
    if (!next.here) {
      if (open[depth].isClosed) text.Put(")");
      --depth;
      continue;
    }
    text.Put("(");
    const char* sign = SignOf(next.identifier);
    if (sign && depth + 1 < kDeepestFilter) {
      text.Put(sign);
      open[++depth] = {next.contents, true};
    } else {
      if (sign) {
        text.Put("...");
      } else {
        PutItem(text, next);
      }
      text.Put(")");
    }
  }
}

void ShowFilter(BerWalk& walk, const Place& in, Cursor& c, const char* title) {
  OpenFilter open[kDeepestFilter];
  if (!PeekBer(c).here || walk.elementsLeft < 1) return;
  int32_t count = ShowOne(walk, in, c, title, open[0]) ? 1 : 0;
  while (count > 0) {
    OpenFilter& top = open[count - 1];
    if (!PeekBer(top.c).here || walk.elementsLeft < 1 || count == kDeepestFilter) {
      ShowBerRest(walk, top.in, top.c);
      --count;
    } else if (ShowOne(walk, top.in, top.c, "Filter", open[count])) {
      ++count;
    }
  }
}

}  // namespace qxview
