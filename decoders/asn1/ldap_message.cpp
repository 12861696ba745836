// Messages: the line that sums one up, its envelope.
#include "decoders/asn1/ldap.h"
#include "decoders/asn1/ldap_names.h"
#include "decoders/common/line_text.h"

namespace qxview {
namespace {

constexpr int32_t kDeepestBase = 2;   // the deepest lines of a control's value still have an image

// ", " and the next element's text; nothing for an empty or missing one.
void AddNext(LineText& text, Cursor& c) {
  const BerElement element = TakeBer(c);
  if (Left(element.contents) < 1) return;
  text.Put(", ");
  text.PutValue(element.contents);
}

void SummarizeBind(LineText& text, Cursor c) {
  text.PutFormat(", Version %u", BerNumber(TakeBer(c).contents));
  const bool isNamed = Left(PeekBer(c).contents) > 0;
  AddNext(text, c);
  const BerElement authentication = TakeBer(c);
  if (!authentication.here) return;
  switch (authentication.identifier) {
    case 0x80: return text.Put(isNamed || Left(authentication.contents) > 0 ? ", Simple" : ", Anonymous");
    case 0xA3:
      text.Put(", SASL ");
      return text.PutValue(PeekBer(authentication.contents).contents);
    case 0x89: return text.Put(", Sicily Package Discovery");
    case 0x8A: return text.Put(", Sicily Negotiate");
    case 0x8B: return text.Put(", Sicily Response");
    default: return;
  }
}

void SummarizeSearch(LineText& text, Cursor c) {
  const BerElement base = TakeBer(c), scope = TakeBer(c);
  if (!base.here || !scope.here) return;
  text.Put(", ");
  if (Left(base.contents) > 0) {
    text.PutValue(base.contents);
  } else {
    text.Put(BerNumber(scope.contents) == 0 ? "Root DSE" : "<NULL>");
  }
  text.PutFormat(", %s", LdapScopeName(BerNumber(scope.contents)));
  for (int i = 0; i < 4; ++i) TakeBer(c);   // aliases, limits, types only
  const BerElement filter = PeekBer(c);
  if (!filter.here) return;
  char shown[kLdapTextSize];
  DescribeFilter(filter.whole, shown, sizeof shown);
  text.Put(", ");
  text.Put(shown);
}

void SummarizeResult(LineText& text, Cursor c) {
  const BerElement code = TakeBer(c);
  if (!code.here) return;
  text.PutFormat(", %s", LdapResultName(BerNumber(code.contents)));
  AddNext(text, c);
  AddNext(text, c);
}

void SummarizeExtension(LineText& text, Cursor c, uint32_t nameIdentifier) {
  while (Left(c) > 0) {
    const BerElement element = TakeBer(c);
    if (!element.here) return;
    if (element.identifier != nameIdentifier) continue;
    text.Put(", ");
    if (const char* name = LdapExtensionName(element.contents)) return text.Put(name);
    return text.PutValue(element.contents);
  }
}

void SummarizeAssertion(LineText& text, const BerElement& assertion) {
  if (!assertion.here) return;
  char shown[kLdapTextSize];
  DescribeAssertion(assertion.contents, shown, sizeof shown);
  text.Put(", ");
  text.Put(shown);
}

void SummarizeOperation(LineText& text, const BerElement& operation) {
  Cursor c = operation.contents;
  switch (operation.identifier) {
    case kLdapUnbind: return;
    case kLdapBindRequest: return SummarizeBind(text, c);
    case kLdapSearchRequest: return SummarizeSearch(text, c);
    case kLdapExtendedRequest:
    case kLdapIntermediate: return SummarizeExtension(text, c, 0x80);
    case kLdapExtendedResponse:
      SummarizeResult(text, c);
      return SummarizeExtension(text, c, 0x8A);
    case kLdapAbandon: return text.PutFormat(", Message %u", BerNumber(operation.contents));
    case kLdapDeleteRequest:
      text.Put(", ");
      return text.PutValue(operation.contents);
    case kLdapSearchEntry:
      if (Left(PeekBer(c).contents) < 1 && PeekBer(c).here) return text.Put(", Root DSE");
      return AddNext(text, c);
    case kLdapSearchReference:
    case kLdapModifyRequest:
    case kLdapAddRequest: return AddNext(text, c);
    case kLdapModifyDnRequest:
      AddNext(text, c);
      return AddNext(text, c);
    case kLdapCompareRequest:
      AddNext(text, c);
      return SummarizeAssertion(text, PeekBer(c));
    default: return SummarizeResult(text, c);
  }
}

}  // namespace

bool StartsMessage(const Cursor& c, BerElement& message) {
  constexpr int64_t kLongestId = 6;   // four octets with their header
  message = PeekBer(c);
  if (!message.here || message.identifier != kAsnSequence) return false;
  const BerElement id = PeekBer(message.contents);
  if (!id.here || id.identifier != kAsnInteger || id.size < 3 || id.size > kLongestId || IsCut(id)) return false;
  Cursor rest = message.contents;
  TakeBytes(rest, id.size);
  const Field operation = TakeU8(rest);
  return operation.here && LookupName(kLdapOperationNames, operation.value, nullptr);
}

void DescribeMessage(const BerElement& message, char* out, int32_t size) {
  LineText text(out, size);
  Cursor c = message.contents;
  const BerElement id = TakeBer(c);
  text.Put(LookupName(kLdapOperationNames, PeekU8(c)));
  text.PutFormat(", ID=%u", BerNumber(id.contents));
  if (const BerElement operation = PeekBer(c); operation.here) SummarizeOperation(text, operation);
}

void ShowLdapMessage(const Place& at, const BerElement& message, BerWalk& walk) {
  char text[kShortLineSize];
  DescribeMessage(message, text, sizeof text);
  const char* shown = text;
  Place top = at;
  if (top.level > kDeepestBase) top.level = kDeepestBase;
  const Field range = Ahead(message.whole, Left(message.whole));
  const Place in = Beneath(top, IsCut(message) ? AddLine(top, range, "LDAP: %s, %u of %u Bytes", shown, range.length,
                                                         static_cast<uint32_t>(message.size))
                                               : AddLine(top, range, "LDAP: %s", shown));
  Cursor c = message.whole, fields;
  if (!EnterBer(walk, in, c, "LDAP Message", &fields)) return;
  ShowBerRow(walk, in, fields, {kAsnInteger, "Message ID", &kLdapNumber});
  ShowOperation(walk, in, fields);
  ShowControls(walk, in, fields);
  ShowBerRest(walk, in, fields);
}

bool ShowLdapMessages(const Place& at, Cursor& c, BerWalk& walk) {
  Loop loop;
  BerElement message;
  while (MoreAt(at, c, loop) && StartsMessage(c, message)) {
    if (walk.elementsLeft < 1) {
      AddRawRest(at, c, "More LDAP Messages");
      return true;
    }
    ShowLdapMessage(at, message, walk);
    TakeBer(c);
    if (IsCut(message)) return false;
  }
  return true;
}

}  // namespace qxview
