// Search filters (RFC 4511 4.5.1.7): as text (RFC 4515) and as lines. Both walk the nesting with a stack of their own.
#include "decoders/asn1/ldap.h"
#include "decoders/asn1/ldap_text.h"

namespace qxview {
namespace {

enum Filter : uint32_t {
  kAnd = 0xA0, kOr = 0xA1, kNot = 0xA2, kEqual = 0xA3, kSubstrings = 0xA4, kGreaterOrEqual = 0xA5, kLessOrEqual = 0xA6,
  kPresent = 0x87, kApprox = 0xA8, kExtensible = 0xA9,
};
constexpr const char* kEscaped = "*()\\";

// --- as text ---

void PutAssertion(LdapText& text, Cursor c, const char* operation) {
  const LdapElement name = PeekElement(c);
  text.PutCharacters(name.body, kEscaped);
  TakeBytes(c, Left(name.whole));
  text.Put(operation);
  text.PutCharacters(PeekElement(c).body, kEscaped);
}

void PutSubstrings(LdapText& text, Cursor c) {
  constexpr uint32_t kInitial = 0x80, kFinal = 0x82;
  const LdapElement name = PeekElement(c);
  text.PutCharacters(name.body, kEscaped);
  text.Put("=");
  TakeBytes(c, Left(name.whole));
  Cursor parts = PeekElement(c).body;
  bool endsInStar = false;
  while (!text.IsFull()) {
    const LdapElement part = PeekElement(parts);
    if (!part.here) break;
    if (part.identifier != kInitial && !endsInStar) text.Put("*");
    text.PutCharacters(part.body, kEscaped);
    endsInStar = part.identifier != kFinal;
    if (endsInStar) text.Put("*");
    TakeBytes(parts, Left(part.whole));
  }
}

// "cn:dn:2.4.6.8.10:=value"
void PutExtensible(LdapText& text, Cursor c) {
  constexpr uint32_t kRule = 0x81, kType = 0x82, kValue = 0x83, kAttributes = 0x84;
  constexpr int32_t kMostParts = 4;   // the filters around it are written with it again
  LdapElement parts[kMostParts]{};
  for (int32_t i = 0; i < kMostParts; ++i) {
    const LdapElement part = PeekElement(c);
    if (part.identifier >= kRule && part.identifier <= kAttributes) parts[part.identifier - kRule] = part;
    TakeBytes(c, Left(part.whole));
  }
  text.PutCharacters(parts[kType - kRule].body, kEscaped);
  if (NumberIn(parts[kAttributes - kRule])) text.Put(":dn");
  if (parts[0].here) text.Put(":");
  text.PutCharacters(parts[0].body, kEscaped);
  text.Put(":=");
  text.PutCharacters(parts[kValue - kRule].body, kEscaped);
}

// A filter that holds no filters.
void PutItem(LdapText& text, const LdapElement& item) {
  switch (item.identifier) {
    case kEqual: return PutAssertion(text, item.body, "=");
    case kGreaterOrEqual: return PutAssertion(text, item.body, ">=");
    case kLessOrEqual: return PutAssertion(text, item.body, "<=");
    case kApprox: return PutAssertion(text, item.body, "~=");
    case kSubstrings: return PutSubstrings(text, item.body);
    case kExtensible: return PutExtensible(text, item.body);
    case kPresent:
      text.PutCharacters(item.body, kEscaped);
      return text.Put("=*");
    default: return text.Put("?");
  }
}

const char* SignOf(uint32_t identifier) {
  return identifier == kAnd ? "&" : identifier == kOr ? "|" : identifier == kNot ? "!" : nullptr;
}

// --- as lines ---

constexpr LdapField kTypeField{kAsnOctetString, LdapField::kText, "Attribute"};
constexpr LdapField kAssertionFields[] = {kTypeField, {kAsnOctetString, LdapField::kText, "Assertion Value"}};
constexpr LdapGrammar kAssertion{kAssertionFields, 2, false};

constexpr LdapField kPartFields[] = {
    {0x80, LdapField::kText, "Initial"}, {0x81, LdapField::kText, "Any"}, {0x82, LdapField::kText, "Final"}};
constexpr LdapGrammar kParts{kPartFields, 3, true};
constexpr LdapField kSubstringFields[] = {
    kTypeField, {kAsnSequence, LdapField::kGroup, "Substrings", DescribeTexts, &kParts}};
constexpr LdapGrammar kSubstring{kSubstringFields, 2, false};

constexpr LdapField kExtensibleFields[] = {
    {0x81, LdapField::kText, "Matching Rule"}, {0x82, LdapField::kText, "Attribute"},
    {0x83, LdapField::kText, "Match Value"}, {0x84, LdapField::kFlag, "DN Attributes"}};
constexpr LdapGrammar kExtensibleMatch{kExtensibleFields, 4, false};

struct FilterKind {
  uint32_t identifier;
  const char* label;
  const LdapGrammar* grammar;   // null: filters
};
constexpr FilterKind kKinds[] = {
    {kAnd, "And", nullptr}, {kOr, "Or", nullptr}, {kNot, "Not", nullptr}, {kEqual, "Equality Match", &kAssertion},
    {kSubstrings, "Substrings", &kSubstring}, {kGreaterOrEqual, "Greater Or Equal", &kAssertion},
    {kLessOrEqual, "Less Or Equal", &kAssertion}, {kApprox, "Approximate Match", &kAssertion},
    {kExtensible, "Extensible Match", &kExtensibleMatch}};

const FilterKind* KindOf(uint32_t identifier) {
  for (const FilterKind& kind : kKinds) {
    if (kind.identifier == identifier) return &kind;
  }
  return nullptr;
}

// Lines of deeper filters stay at this depth: beneath it a substring's parts and their bits must still have an image.
constexpr int32_t kDeepestFilterLine = 7;

// The lines of the filter at the cursor. Of one that holds filters `inner` is the walk through them, and the result is
// true.
bool ShowFilter(LdapWalk& walk, const LdapElement& filter, const char* title, LdapWalk& inner) {
  char text[kLdapTextSize];
  DescribeFilter(filter, text, sizeof text);
  const char* shown = text;
  const Field range = Ahead(filter.whole, Left(filter.whole));
  const LineHandle line = AddLine(LinesOf(walk), range, "%s: %s", title, shown);
  const LdapWalk under{Beneath(walk.at, line), walk.c, walk.elementsLeft};
  TakeBytes(walk.c, Left(filter.whole));
  LdapWalk parts = under;
  const FilterKind* kind = KindOf(filter.identifier);
  if (!kind) {
    const char* name = filter.identifier == kPresent ? "Present" : kUndefined;
    StepField(parts, {filter.identifier, LdapField::kText, name});
    return false;
  }
  if (!StepHeader(parts, kind->label, inner)) return false;
  if (kind->grammar) {
    WalkGrammar(inner, *kind->grammar);
    return false;
  }
  if (walk.at.depth >= kDeepestFilterLine) inner.at = walk.at;
  return true;
}

}  // namespace

void DescribeFilter(const LdapElement& element, char* out, int32_t size) {
  LdapText text(out, size);
  struct Open {
    Cursor c;
    bool isClosed;   // by a parenthesis, once its filters are written
  } open[kMostFilterDepth];
  open[0] = {element.whole, false};
  for (int32_t depth = 0; depth >= 0 && !text.IsFull();) {
    const LdapElement filter = PeekElement(open[depth].c);
    if (!filter.here) {
      if (open[depth].isClosed) text.Put(")");
      --depth;
      continue;
    }
    TakeBytes(open[depth].c, Left(filter.whole));
    text.Put("(");
    const char* sign = SignOf(filter.identifier);
    if (sign && depth + 1 < kMostFilterDepth) {
      text.Put(sign);
      open[++depth] = {filter.body, true};
    } else {
      if (sign) {
        text.Put("...");
      } else {
        PutItem(text, filter);
      }
      text.Put(")");
    }
  }
}

bool StepFilter(LdapWalk& walk, const char* title) {
  LdapWalk open[kMostFilterDepth];
  const LdapElement first = PeekElement(walk.c);
  if (!first.here || *walk.elementsLeft < 1) return false;
  int32_t count = ShowFilter(walk, first, title, open[0]) ? 1 : 0;
  while (count > 0) {
    LdapWalk& top = open[count - 1];
    const LdapElement filter = PeekElement(top.c);
    if (!filter.here || *top.elementsLeft < 1 || count == kMostFilterDepth) {
      ShowUnexplained(top);
      --count;
    } else if (ShowFilter(top, filter, "Filter", open[count])) {
      ++count;
    }
  }
  return true;
}

}  // namespace qxview
