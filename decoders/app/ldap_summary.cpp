// The packet list's text for LDAP (RFC 4511): operation, message, names, result.
//
//   SEQUENCE { message, operation (an application tag) { ... }, controls }
#include "decoders/app/ber_reader.h"
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

enum Operation : uint32_t {
  kBindRequest = 0x60, kBindResponse = 0x61, kUnbind = 0x42, kSearchRequest = 0x63, kSearchEntry = 0x64,
  kSearchDone = 0x65, kModifyRequest = 0x66, kModifyResponse = 0x67, kAddRequest = 0x68, kAddResponse = 0x69,
  kDeleteRequest = 0x4A, kDeleteResponse = 0x6B, kModifyDnRequest = 0x6C, kModifyDnResponse = 0x6D,
  kCompareRequest = 0x6E, kCompareResponse = 0x6F, kAbandon = 0x50, kSearchReference = 0x73,
  kExtendedRequest = 0x77, kExtendedResponse = 0x78, kIntermediate = 0x79,
};

constexpr auto kOperationNames = SortedNames({
    {kUnbind, "Unbind Request"}, {kDeleteRequest, "Delete Request"}, {kAbandon, "Abandon Request"},
    {kBindRequest, "Bind Request"}, {kBindResponse, "Bind Response"}, {kSearchRequest, "Search Request"},
    {kSearchEntry, "Search Result Entry"}, {kSearchDone, "Search Result Done"}, {kModifyRequest, "Modify Request"},
    {kModifyResponse, "Modify Response"}, {kAddRequest, "Add Request"}, {kAddResponse, "Add Response"},
    {kDeleteResponse, "Delete Response"}, {kModifyDnRequest, "Modify DN Request"},
    {kModifyDnResponse, "Modify DN Response"}, {kCompareRequest, "Compare Request"},
    {kCompareResponse, "Compare Response"}, {kSearchReference, "Search Result Reference"},
    {kExtendedRequest, "Extended Request"}, {kExtendedResponse, "Extended Response"},
    {kIntermediate, "Intermediate Response"},
});

constexpr auto kResultNames = SortedNames({
    {0, "Success"}, {1, "Operations Error"}, {2, "Protocol Error"}, {3, "Time Limit Exceeded"},
    {4, "Size Limit Exceeded"}, {5, "Compare False"}, {6, "Compare True"}, {7, "Auth Method Not Supported"},
    {8, "Stronger Auth Required"}, {10, "Referral"}, {11, "Admin Limit Exceeded"},
    {12, "Unavailable Critical Extension"}, {13, "Confidentiality Required"}, {14, "SASL Bind In Progress"},
    {16, "No Such Attribute"}, {17, "Undefined Attribute Type"}, {18, "Inappropriate Matching"},
    {19, "Constraint Violation"}, {20, "Attribute Or Value Exists"}, {21, "Invalid Attribute Syntax"},
    {32, "No Such Object"}, {33, "Alias Problem"}, {34, "Invalid DN Syntax"}, {36, "Alias Dereferencing Problem"},
    {48, "Inappropriate Authentication"}, {49, "Invalid Credentials"}, {50, "Insufficient Access Rights"},
    {51, "Busy"}, {52, "Unavailable"}, {53, "Unwilling To Perform"}, {54, "Loop Detect"}, {64, "Naming Violation"},
    {65, "Object Class Violation"}, {66, "Not Allowed On Non-Leaf"}, {67, "Not Allowed On RDN"},
    {68, "Entry Already Exists"}, {69, "Object Class Mods Prohibited"}, {71, "Affects Multiple DSAs"}, {80, "Other"},
});

constexpr const char* kScopeNames[] = {"Base", "One Level", "Subtree"};

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
  const int32_t number = BerNumber(scope);
  Add(text, ", Scope: %s", number >= 0 && number <= 2 ? kScopeNames[number] : kUnknown);
}

void DescribeResult(SummaryText& text, Cursor c) {
  const BerElement code = TakeBer(c);
  if (!code.here) return;
  Add(text, ", Result: %s", LookupName(kResultNames, static_cast<uint32_t>(BerNumber(code))));
  TakeBer(c);   // matched name
  AddName(text, "Message", c);
}

void DescribeOperation(SummaryText& text, const BerElement& operation) {
  Cursor c = operation.body;
  switch (operation.tag) {
    case kBindRequest: return DescribeBind(text, c);
    case kSearchRequest: return DescribeSearch(text, c);
    case kSearchEntry:
    case kModifyRequest:
    case kAddRequest:
    case kModifyDnRequest:
    case kCompareRequest:
    case kExtendedRequest: return AddName(text, "Name", c);
    case kDeleteRequest: return AddValue(text, "Name", BerText(operation));
    case kAbandon: return Add(text, ", Abandoned ID: %d", BerNumber(operation));
    case kBindResponse:
    case kSearchDone:
    case kModifyResponse:
    case kAddResponse:
    case kDeleteResponse:
    case kModifyDnResponse:
    case kCompareResponse:
    case kExtendedResponse: return DescribeResult(text, c);
    default: return;
  }
}

// The first message of the payload; false when it does not start with one.
bool DescribeMessage(SummaryText& text, Cursor c) {
  BerElement message = TakeBer(c);
  const BerElement identifier = TakeBer(message.body);
  const BerElement operation = TakeBer(message.body);
  if (!message.here || message.tag != kBerSequence || !identifier.here || identifier.tag != kBerInteger) return false;
  const char* name = operation.here ? LookupName(kOperationNames, operation.tag, nullptr) : nullptr;
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
