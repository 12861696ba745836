// The operations' fields (RFC 4511 4.2 to 4.13).
#include "decoders/asn1/ldap_fields.h"
#include "decoders/asn1/ldap_names.h"

namespace qxview {
namespace {

// --- strings, attributes ---

constexpr LdapField kTextFields[] = {Text(kAsnOctetString, "Attribute")};
constexpr LdapField kUriFields[] = {Text(kAsnOctetString, "URI")};
constexpr LdapGrammar kUris = Repeated(kUriFields);

bool NameIs(const LdapElement& name, const char* wanted) {
  int32_t i = 0;
  for (; i < Left(name.body) && wanted[i]; ++i) {
    if ((name.body.at[i] | 0x20) != (wanted[i] | 0x20)) return false;
  }
  return !wanted[i] && i == Left(name.body);
}

// Attributes whose values say more than their characters.
LdapDescribe DescriptionOf(const LdapElement& name) {
  if (NameIs(name, "objectGUID") || NameIs(name, "schemaIDGUID")) return DescribeGuid;
  if (NameIs(name, "objectSid") || NameIs(name, "securityIdentifier")) return DescribeSid;
  if (NameIs(name, "supportedControl") || NameIs(name, "supportedExtension")) return DescribeExtension;
  return nullptr;
}

void ShowAttribute(LdapWalk& walk) {
  const LdapElement name = PeekElement(walk.c);
  StepField(walk, Text(kAsnOctetString, "Description"));
  const LdapElement values = PeekElement(walk.c);
  LdapWalk inner;
  if (!values.here || values.identifier != kLdapSet || !StepInto(walk, "Values", "", inner)) return;
  const bool isNetlogon = NameIs(name, "netlogon");
  const LdapField netlogon{kAsnOctetString, LdapField::kShown, "Value", nullptr, nullptr, nullptr, ShowNetlogon};
  const LdapField text{kAsnOctetString, LdapField::kText, "Value", DescriptionOf(name)};
  const LdapField fields[] = {isNetlogon ? netlogon : text};
  WalkGrammar(inner, Repeated(fields));
}

constexpr LdapField kAttributeFields[] = {{kAsnSequence, LdapField::kShown, "Attribute", DescribeAttribute, nullptr,
                                           nullptr, ShowAttribute}};
constexpr LdapGrammar kAttributes = Repeated(kAttributeFields);

// --- bind ---

constexpr LdapField kSaslFields[] = {Text(kAsnOctetString, "Mechanism"), Text(kAsnOctetString, "Credentials")};
constexpr LdapGrammar kSasl = Fields(kSaslFields);

constexpr LdapField kBindRequestFields[] = {
    Number(kAsnInteger, "Version"), Text(kAsnOctetString, "Name"), Text(0x80, "Simple Password"),
    Group(0xA3, "SASL Authentication", DescribeTexts, &kSasl),
    // What some servers offered before SASL ("Sicily").
    Text(0x89, "Sicily Package Discovery"), Text(0x8A, "Sicily Negotiate"), Text(0x8B, "Sicily Response")};

// --- results ---

#define QX_LDAP_RESULT                                                                                     \
  Number(kAsnEnumerated, "Result Code", LdapResultName), Text(kAsnOctetString, "Matched DN"),              \
      Text(kAsnOctetString, "Diagnostic Message"), Group(0xA3, "Referral", DescribeTexts, &kUris)

constexpr LdapField kResultFields[] = {QX_LDAP_RESULT};
constexpr LdapField kBindResponseFields[] = {QX_LDAP_RESULT, Text(0x87, "Server SASL Credentials")};

// --- search ---

const char* DereferenceName(uint32_t value) {
  constexpr const char* kNames[] = {"Never", "In Searching", "Finding Base Object", "Always"};
  return value < 4 ? kNames[value] : kUnknown;
}

constexpr LdapField kSearchFields[] = {
    Text(kAsnOctetString, "Base Object"), Number(kAsnEnumerated, "Scope", LdapScopeName),
    Number(kAsnEnumerated, "Dereference Aliases", DereferenceName), Number(kAsnInteger, "Size Limit"),
    Number(kAsnInteger, "Time Limit"), Flag(kAsnBoolean, "Types Only")};
constexpr LdapGrammar kSearchTexts = Repeated(kTextFields);
constexpr LdapField kSelection = Group(kAsnSequence, "Attributes", DescribeTexts, &kSearchTexts);

constexpr LdapField kEntryFields[] = {
    Text(kAsnOctetString, "Object Name"), Group(kAsnSequence, "Attributes", DescribeAttributes, &kAttributes)};

// --- changes ---

constexpr LdapField kAddFields[] = {Text(kAsnOctetString, "Entry"),
                                    Group(kAsnSequence, "Attributes", DescribeAttributes, &kAttributes)};

const char* ChangeName(uint32_t value) {
  constexpr const char* kNames[] = {"Add", "Delete", "Replace", "Increment"};
  return value < 4 ? kNames[value] : kUnknown;
}
void DescribeChange(const LdapElement& change, char* out, int32_t size) {
  Cursor c = change.body;
  const LdapElement operation = PeekElement(c);
  TakeBytes(c, Left(operation.whole));
  char attribute[kLdapTextSize];
  DescribeAttribute(PeekElement(c), attribute, sizeof attribute);
  const char* shown = attribute;
  FormatInto(out, size, "%s %s", ChangeName(NumberIn(operation)), shown);
}

constexpr LdapField kChangeFields[] = {Number(kAsnEnumerated, "Operation", ChangeName), kAttributeFields[0]};
constexpr LdapGrammar kChange = Fields(kChangeFields);
constexpr LdapField kChangesFields[] = {Group(kAsnSequence, "Change", DescribeChange, &kChange)};
constexpr LdapGrammar kChanges = Repeated(kChangesFields);
constexpr LdapField kModifyFields[] = {Text(kAsnOctetString, "Object Name"),
                                       Group(kAsnSequence, "Changes", nullptr, &kChanges)};

constexpr LdapField kModifyDnFields[] = {
    Text(kAsnOctetString, "Entry"), Text(kAsnOctetString, "New RDN"),
    Flag(kAsnBoolean, "Delete Old RDN"), Text(0x80, "New Superior")};

constexpr LdapField kAssertionFields[] = {Text(kAsnOctetString, "Attribute"),
                                          Text(kAsnOctetString, "Assertion Value")};
constexpr LdapGrammar kAssertion = Fields(kAssertionFields);
constexpr LdapField kCompareFields[] = {Text(kAsnOctetString, "Entry"),
                                        Group(kAsnSequence, "Assertion", DescribeAssertion, &kAssertion)};

constexpr LdapGrammar kBindRequest = Fields(kBindRequestFields), kBindResponse = Fields(kBindResponseFields),
                      kResult = Fields(kResultFields), kEntry = Fields(kEntryFields), kModify = Fields(kModifyFields),
                      kAdd = Fields(kAddFields), kModifyDn = Fields(kModifyDnFields),
                      kCompare = Fields(kCompareFields);

const LdapGrammar* GrammarOf(uint32_t operation) {
  switch (operation) {
    case kLdapBindRequest: return &kBindRequest;
    case kLdapBindResponse: return &kBindResponse;
    case kLdapSearchEntry: return &kEntry;
    case kLdapSearchReference: return &kUris;
    case kLdapModifyRequest: return &kModify;
    case kLdapAddRequest: return &kAdd;
    case kLdapModifyDnRequest: return &kModifyDn;
    case kLdapCompareRequest: return &kCompare;
    case kLdapSearchDone:
    case kLdapModifyResponse:
    case kLdapAddResponse:
    case kLdapDeleteResponse:
    case kLdapModifyDnResponse:
    case kLdapCompareResponse: return &kResult;
    default: return nullptr;
  }
}

// --- extended operations ---

// The contents of the element with this identifier among those from the cursor on; empty for none.
Cursor ContentsOf(Cursor c, uint32_t identifier) {
  for (LdapElement element = PeekElement(c); element.here; element = PeekElement(c)) {
    if (element.identifier == identifier) return element.body;
    TakeBytes(c, Left(element.whole));
  }
  return MakeCursor(nullptr, 0, 0);
}

// Servers leave the name out of what answers a request to modify a password; the one value of that answer, a password
// in a sequence, looks like no other.
bool IsGeneratedPassword(const Cursor& value) {
  const LdapElement sequence = PeekElement(value);
  const LdapElement password = PeekElement(sequence.body);
  return sequence.identifier == kAsnSequence && sequence.size == Left(value) && password.identifier == 0x80 &&
         password.size == Left(sequence.body);
}

void WalkExtendedRequest(LdapWalk& walk) {
  const LdapExtension* extension = FindLdapExtension(ContentsOf(walk.c, 0x80));
  StepExtensionName(walk, 0x80, "Request Name");
  StepExtensionValue(walk, 0x81, "Request Value", extension ? extension->request : LdapValue{});
}

void WalkExtendedResponse(LdapWalk& walk) {
  const Cursor name = ContentsOf(walk.c, 0x8A), value = ContentsOf(walk.c, 0x8B);
  const LdapExtension* extension = FindLdapExtension(name);
  if (!extension && IsGeneratedPassword(value)) extension = FindPasswordModify();
  for (const LdapField& field : kResultFields) StepField(walk, field);
  StepExtensionName(walk, 0x8A, "Response Name");
  StepExtensionValue(walk, 0x8B, "Response Value", extension ? extension->response : LdapValue{});
}

void WalkIntermediate(LdapWalk& walk) {
  const LdapExtension* extension = FindLdapExtension(ContentsOf(walk.c, 0x80));
  StepExtensionName(walk, 0x80, "Response Name");
  StepExtensionValue(walk, 0x81, "Response Value", extension ? extension->response : LdapValue{});
}

}  // namespace

const LdapGrammar kLdapEntryGrammar = kEntry;
const LdapGrammar kLdapTextsGrammar = kSearchTexts;

bool WalkOperation(LdapWalk& walk) {
  const LdapElement operation = PeekElement(walk.c);
  const char* name = operation.here ? LookupName(kLdapOperationNames, operation.identifier, nullptr) : nullptr;
  if (!name) return false;
  if (operation.identifier == kLdapDeleteRequest) return StepField(walk, Text(kLdapDeleteRequest, "Delete Request"));
  if (operation.identifier == kLdapAbandon) return StepField(walk, Number(kLdapAbandon, "Abandon Request"));
  LdapWalk fields;
  if (!StepHeader(walk, name, fields)) return false;
  switch (operation.identifier) {
    case kLdapSearchRequest:
      for (const LdapField& field : kSearchFields) StepField(fields, field);
      StepFilter(fields, "Filter");
      StepField(fields, kSelection);
      break;
    case kLdapExtendedRequest: WalkExtendedRequest(fields); break;
    case kLdapExtendedResponse: WalkExtendedResponse(fields); break;
    case kLdapIntermediate: WalkIntermediate(fields); break;
    default:
      if (const LdapGrammar* grammar = GrammarOf(operation.identifier)) WalkGrammar(fields, *grammar);
  }
  ShowUnexplained(fields);
  return true;
}

}  // namespace qxview
