// The packet list's text for LDAP (RFC 4511): operation, message, names, result.
//
//   SEQUENCE { message, operation (an application tag) { ... }, controls }
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"
#include "decoders/asn1/ldap_names.h"
#include "decoders/common/ber_reader.h"

namespace qxview {
namespace {

void AddName(SummaryText& text, const char* label, Cursor& c) {
  const BerElement name = TakeBer(c);
  if (name.here) AddValue(text, label, BerText(name.contents));
}

void DescribeBind(SummaryText& text, Cursor c) {
  constexpr uint32_t kSimple = 0x80, kSasl = 0xA3;
  const BerElement version = TakeBer(c);
  if (version.here) Add(text, ", Version: %d", BerInteger(version.contents));
  AddName(text, "Name", c);
  BerElement authentication = TakeBer(c);
  if (!authentication.here) return;
  if (authentication.identifier == kSimple) Add(text, ", Simple");
  if (authentication.identifier == kSasl) AddName(text, "SASL", authentication.contents);
}

void DescribeSearch(SummaryText& text, Cursor c) {
  AddName(text, "Base", c);
  const BerElement scope = TakeBer(c);
  if (!scope.here) return;
  Add(text, ", Scope: %s", LdapScopeName(static_cast<uint32_t>(BerInteger(scope.contents))));
}

void DescribeResult(SummaryText& text, Cursor c) {
  const BerElement code = TakeBer(c);
  if (!code.here) return;
  Add(text, ", Result: %s", LdapResultName(static_cast<uint32_t>(BerInteger(code.contents))));
  TakeBer(c);   // matched name
  AddName(text, "Message", c);
}

void DescribeOperation(SummaryText& text, const BerElement& operation) {
  Cursor c = operation.contents;
  switch (operation.identifier) {
    case kLdapBindRequest: return DescribeBind(text, c);
    case kLdapSearchRequest: return DescribeSearch(text, c);
    case kLdapSearchEntry:
    case kLdapModifyRequest:
    case kLdapAddRequest:
    case kLdapModifyDnRequest:
    case kLdapCompareRequest:
    case kLdapExtendedRequest: return AddName(text, "Name", c);
    case kLdapDeleteRequest: return AddValue(text, "Name", BerText(operation.contents));
    case kLdapAbandon: return Add(text, ", Abandoned ID: %d", BerInteger(operation.contents));
    case kLdapBindResponse:
    case kLdapSearchDone:
    case kLdapModifyResponse:
    case kLdapAddResponse:
    case kLdapDeleteResponse:
    case kLdapModifyDnResponse:
    case kLdapCompareResponse:
    case kLdapExtendedResponse: return DescribeResult(text, c);
    default: return;
  }
}

// The first message of the payload; false when it does not start with one.
bool DescribeMessage(SummaryText& text, Cursor c) {
  BerElement message = TakeBer(c);
  const BerElement identifier = TakeBer(message.contents);
  const BerElement operation = TakeBer(message.contents);
  if (message.identifier != kAsnSequence || identifier.identifier != kAsnInteger) return false;
  const char* name = operation.here ? LookupName(kLdapOperationNames, operation.identifier, nullptr) : nullptr;
  if (!name) return false;
  Add(text, " %s, ID: %d", name, BerInteger(identifier.contents));
  DescribeOperation(text, operation);
  return true;
}

}  // namespace

int32_t DescribeLdap(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  constexpr int32_t kSaslHeader = 4;
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "LDAP");
  const Cursor c = MakeCursor(data, 0, length);
  if (DescribeMessage(text, c)) return 1;
  // A message of a connection with a SASL layer that leaves it readable stands behind a length and a signature.
  if (length > kSaslHeader && PeekU32(c) == static_cast<uint32_t>(length - kSaslHeader)) {
    return Add(text, " SASL Data"), 1;
  }
  return Add(text, " Continuation"), 1;
}

}  // namespace qxview
