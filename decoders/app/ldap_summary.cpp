// The packet list's text for LDAP (RFC 4511): operation, message, names, result.
//
//   SEQUENCE { message, operation (an application tag) { ... }, controls }
#include "decoders/app/ber_reader.h"
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"
#include "decoders/asn1/ldap_names.h"

namespace qxview {
namespace {

void AddName(SummaryText& text, const char* label, Cursor& c) {
  const BerElement name = TakeBer(c);
  if (name.here) AddValue(text, label, BerText(name));
}

void DescribeBind(SummaryText& text, Cursor c) {
  constexpr uint32_t kSimple = 0x80, kSasl = 0xA3;
  const BerElement version = TakeBer(c);
  if (version.here) Add(text, ", Version: %d", BerNumber(version));
  AddName(text, "Name", c);
  BerElement authentication = TakeBer(c);
  if (!authentication.here) return;
  if (authentication.tag == kSimple) Add(text, ", Simple");
  if (authentication.tag == kSasl) AddName(text, "SASL", authentication.body);
}

void DescribeSearch(SummaryText& text, Cursor c) {
  AddName(text, "Base", c);
  const BerElement scope = TakeBer(c);
  if (!scope.here) return;
  Add(text, ", Scope: %s", LdapScopeName(static_cast<uint32_t>(BerNumber(scope))));
}

void DescribeResult(SummaryText& text, Cursor c) {
  const BerElement code = TakeBer(c);
  if (!code.here) return;
  Add(text, ", Result: %s", LdapResultName(static_cast<uint32_t>(BerNumber(code))));
  TakeBer(c);   // matched name
  AddName(text, "Message", c);
}

void DescribeOperation(SummaryText& text, const BerElement& operation) {
  Cursor c = operation.body;
  switch (operation.tag) {
    case kLdapBindRequest: return DescribeBind(text, c);
    case kLdapSearchRequest: return DescribeSearch(text, c);
    case kLdapSearchEntry:
    case kLdapModifyRequest:
    case kLdapAddRequest:
    case kLdapModifyDnRequest:
    case kLdapCompareRequest:
    case kLdapExtendedRequest: return AddName(text, "Name", c);
    case kLdapDeleteRequest: return AddValue(text, "Name", BerText(operation));
    case kLdapAbandon: return Add(text, ", Abandoned ID: %d", BerNumber(operation));
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
  const BerElement identifier = TakeBer(message.body);
  const BerElement operation = TakeBer(message.body);
  if (!message.here || message.tag != kBerSequence || !identifier.here || identifier.tag != kBerInteger) return false;
  const char* name = operation.here ? LookupName(kLdapOperationNames, operation.tag, nullptr) : nullptr;
  if (!name) return false;
  Add(text, " %s, ID: %d", name, BerNumber(identifier));
  DescribeOperation(text, operation);
  return true;
}

}  // namespace

int32_t DescribeLdap(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  constexpr int32_t kSaslHeader = 4;
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "LDAP");
  if (DescribeMessage(text, MakeCursor(data, 0, length))) return 1;
  // A message of a connection with a SASL layer that leaves it readable stands behind a length and a signature.
  if (length > kSaslHeader && ReadU32(data) == static_cast<uint32_t>(length - kSaslHeader)) {
    return Add(text, " SASL Data"), 1;
  }
  return Add(text, " Continuation"), 1;
}

}  // namespace qxview
