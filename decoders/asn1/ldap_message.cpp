// Messages: the line that sums one up, its envelope.
#include "decoders/asn1/ldap_fields.h"
#include "decoders/asn1/ldap_names.h"
#include "decoders/asn1/ldap_text.h"

namespace qxview {
namespace {

constexpr int32_t kDeepestBase = 2;   // the deepest lines of a control's value still have an image

LdapElement TakeElement(Cursor& c) {
  const LdapElement element = PeekElement(c);
  TakeBytes(c, Left(element.whole));
  return element;
}

// ", " and the next element's text; nothing for an empty or missing one.
void AddNext(LdapText& text, Cursor& c) {
  const LdapElement element = TakeElement(c);
  if (Left(element.body) < 1) return;
  text.Put(", ");
  text.PutValue(element.body);
}

void SummarizeBind(LdapText& text, Cursor c) {
  text.PutFormat(", Version %u", NumberIn(TakeElement(c)));
  const bool isNamed = Left(PeekElement(c).body) > 0;
  AddNext(text, c);
  const LdapElement authentication = TakeElement(c);
  if (!authentication.here) return;
  switch (authentication.identifier) {
    case 0x80: return text.Put(isNamed || Left(authentication.body) > 0 ? ", Simple" : ", Anonymous");
    case 0xA3:
      text.Put(", SASL ");
      return text.PutValue(PeekElement(authentication.body).body);
    case 0x89: return text.Put(", Sicily Package Discovery");
    case 0x8A: return text.Put(", Sicily Negotiate");
    case 0x8B: return text.Put(", Sicily Response");
    default: return;
  }
}

void SummarizeSearch(LdapText& text, Cursor c) {
  const LdapElement base = TakeElement(c), scope = TakeElement(c);
  if (!base.here || !scope.here) return;
  text.Put(", ");
  if (Left(base.body) > 0) {
    text.PutValue(base.body);
  } else {
    text.Put(NumberIn(scope) == 0 ? "Root DSE" : "<NULL>");
  }
  text.PutFormat(", %s", LdapScopeName(NumberIn(scope)));
  for (int i = 0; i < 4; ++i) TakeElement(c);   // aliases, limits, types only
  const LdapElement filter = PeekElement(c);
  if (!filter.here) return;
  char shown[kLdapTextSize];
  DescribeFilter(filter, shown, sizeof shown);
  text.Put(", ");
  text.Put(shown);
}

void SummarizeResult(LdapText& text, Cursor c) {
  const LdapElement code = TakeElement(c);
  if (!code.here) return;
  text.PutFormat(", %s", LdapResultName(NumberIn(code)));
  AddNext(text, c);
  AddNext(text, c);
}

void SummarizeExtension(LdapText& text, Cursor c, uint32_t nameIdentifier) {
  while (Left(c) > 0) {
    const LdapElement element = TakeElement(c);
    if (!element.here) return;
    if (element.identifier != nameIdentifier) continue;
    text.Put(", ");
    if (const char* name = LdapExtensionName(element.body)) return text.Put(name);
    return text.PutValue(element.body);
  }
}

void SummarizeAssertion(LdapText& text, const LdapElement& assertion) {
  if (!assertion.here) return;
  char shown[kLdapTextSize];
  DescribeAssertion(assertion, shown, sizeof shown);
  text.Put(", ");
  text.Put(shown);
}

void SummarizeOperation(LdapText& text, const LdapElement& operation) {
  Cursor c = operation.body;
  switch (operation.identifier) {
    case kLdapUnbind: return;
    case kLdapBindRequest: return SummarizeBind(text, c);
    case kLdapSearchRequest: return SummarizeSearch(text, c);
    case kLdapExtendedRequest:
    case kLdapIntermediate: return SummarizeExtension(text, c, 0x80);
    case kLdapExtendedResponse:
      SummarizeResult(text, c);
      return SummarizeExtension(text, c, 0x8A);
    case kLdapAbandon: return text.PutFormat(", Message %u", NumberIn(operation));
    case kLdapDeleteRequest:
      text.Put(", ");
      return text.PutValue(operation.body);
    case kLdapSearchEntry:
      if (Left(PeekElement(c).body) < 1 && PeekElement(c).here) return text.Put(", Root DSE");
      return AddNext(text, c);
    case kLdapSearchReference:
    case kLdapModifyRequest:
    case kLdapAddRequest: return AddNext(text, c);
    case kLdapModifyDnRequest:
      AddNext(text, c);
      return AddNext(text, c);
    case kLdapCompareRequest:
      AddNext(text, c);
      return SummarizeAssertion(text, PeekElement(c));
    default: return SummarizeResult(text, c);
  }
}

}  // namespace

bool StartsMessage(const Cursor& c, LdapElement& message) {
  constexpr int64_t kLongestId = 6;   // four octets with their header
  message = PeekElement(c);
  if (!message.here || message.identifier != kAsnSequence) return false;
  const LdapElement id = PeekElement(message.body);
  if (!id.here || id.identifier != kAsnInteger || id.size < 3 || id.size > kLongestId || IsCut(id)) return false;
  Cursor rest = message.body;
  TakeBytes(rest, id.size);
  const Field operation = TakeU8(rest);
  return operation.here && LookupName(kLdapOperationNames, operation.value, nullptr);
}

void DescribeMessage(const LdapElement& message, char* out, int32_t size) {
  LdapText text(out, size);
  Cursor c = message.body;
  const LdapElement id = TakeElement(c);
  text.Put(LookupName(kLdapOperationNames, Left(c) > 0 ? c.at[0] : 0u));
  text.PutFormat(", ID=%u", NumberIn(id));
  if (const LdapElement operation = PeekElement(c); operation.here) SummarizeOperation(text, operation);
}

void ShowLdapMessage(const Place& at, const LdapElement& message, int32_t* elementsLeft) {
  char text[kShortLineSize];
  DescribeMessage(message, text, sizeof text);
  const char* shown = text;
  Place top = at;
  if (top.level > kDeepestBase) top.level = kDeepestBase;
  const Field range = Ahead(message.whole, Left(message.whole));
  LineHandle parents[kAsnDepths];
  parents[0] = IsCut(message) ? AddLine(top, range, "LDAP: %s, %u of %u Bytes", shown, range.length,
                                        static_cast<uint32_t>(message.size))
                              : AddLine(top, range, "LDAP: %s", shown);
  LdapWalk walk{{at.view, at.tree, parents, top.level, 0}, message.whole, elementsLeft};
  LdapWalk fields;
  if (!StepHeader(walk, "LDAP Message", fields)) return;
  StepField(fields, Number(kAsnInteger, "Message ID"));
  WalkOperation(fields);
  WalkControls(fields);
  ShowUnexplained(fields);
}

bool ShowLdapMessages(const Place& at, Cursor& c, int32_t* elementsLeft) {
  Loop loop;
  LdapElement message;
  while (MoreAt(at, c, loop) && StartsMessage(c, message)) {
    if (*elementsLeft < 1) {
      AddRawRest(at, c, "More LDAP Messages");
      return true;
    }
    ShowLdapMessage(at, message, elementsLeft);
    TakeBytes(c, Left(message.whole));
    if (IsCut(message)) return false;
  }
  return true;
}

}  // namespace qxview
