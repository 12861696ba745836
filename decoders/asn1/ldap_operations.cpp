// The operations' fields (RFC 4511 4.2 to 4.13).
#include "decoders/asn1/ldap.h"
#include "decoders/asn1/ldap_names.h"
#include "decoders/common/logon_response.h"

namespace qxview {
namespace {

// --- strings, attributes ---

constexpr BerRow kTextFields[] = {{kAsnOctetString, "Attribute", &kLdapText}};
constexpr BerRow kUriFields[] = {{kAsnOctetString, "URI", &kLdapText}};
constexpr BerType kUris = Repeated(kUriFields, DescribeTexts);

bool NameIs(const Cursor& name, const char* wanted) {
  int32_t i = 0;
  for (; i < Left(name) && wanted[i]; ++i) {
    if ((PeekU8(name, i) | 0x20) != static_cast<uint32_t>(wanted[i] | 0x20)) return false;
  }
  return !wanted[i] && i == Left(name);
}

// The value of the attribute that a domain controller answers a UDP search with: which one it is and of what domain.
void ShowNetlogon(BerWalk&, const Place& in, Cursor& c, const char*) {
  const uint32_t command = PeekLittleU16(c);
  if (command != kExtendedResponse && command != kExtendedUnknownUser) return;
  const Field field = TakeU16(c);
  AddLine(in, field, "Command: [%u] = %s", command, LogonCommandName(command));
  if (AddLogonResponse(in, c)) AddLogonVersions(in, c);
}

constexpr BerType kGuid = TextBy(DescribeGuid), kSid = TextBy(DescribeSid),
                  kNetlogon{.form = BerForm::kInside, .show = ShowNetlogon};

// Attributes whose values say more than their characters.
const BerType* ValueOf(const Cursor& name) {
  if (NameIs(name, "objectGUID") || NameIs(name, "schemaIDGUID")) return &kGuid;
  if (NameIs(name, "objectSid") || NameIs(name, "securityIdentifier")) return &kSid;
  if (NameIs(name, "supportedControl") || NameIs(name, "supportedExtension")) return &kLdapOidText;
  return NameIs(name, "netlogon") ? &kNetlogon : &kLdapText;
}

void ShowAttribute(BerWalk& walk, const Place& in, Cursor& c, const char*) {
  const BerRow value{kAsnOctetString, "Value", ValueOf(PeekBer(c).contents)};
  const BerType values = Repeated({&value, 1});
  ShowBerRow(walk, in, c, {kAsnOctetString, "Description", &kLdapText});
  ShowBerRow(walk, in, c, {kLdapSet, "Values", &values});
}

constexpr BerType kAttribute{.form = BerForm::kInside, .describe = DescribeAttribute, .show = ShowAttribute};
constexpr BerRow kAttributeFields[] = {{kAsnSequence, "Attribute", &kAttribute}};
constexpr BerType kAttributes = Repeated(kAttributeFields, DescribeAttributes);

// --- bind ---

constexpr BerRow kSaslFields[] = {
    {kAsnOctetString, "Mechanism", &kLdapText}, {kAsnOctetString, "Credentials", &kLdapText}};
constexpr BerType kSasl = GroupOf(kSaslFields, DescribeTexts);

constexpr BerRow kBindRequestFields[] = {
    {kAsnInteger, "Version", &kLdapNumber}, {kAsnOctetString, "Name", &kLdapText},
    {0x80, "Simple Password", &kLdapText}, {0xA3, "SASL Authentication", &kSasl},
    // What some servers offered before SASL ("Sicily").
    {0x89, "Sicily Package Discovery", &kLdapText}, {0x8A, "Sicily Negotiate", &kLdapText},
    {0x8B, "Sicily Response", &kLdapText}};

// --- results ---

constexpr BerType kResultCode = NumberOf({kLdapResultNames, kUnknown});

#define QX_LDAP_RESULT                                                                                     \
  {kAsnEnumerated, "Result Code", &kResultCode}, {kAsnOctetString, "Matched DN", &kLdapText},              \
      {kAsnOctetString, "Diagnostic Message", &kLdapText}, {0xA3, "Referral", &kUris}

constexpr BerRow kResultFields[] = {QX_LDAP_RESULT};
constexpr BerRow kBindResponseFields[] = {QX_LDAP_RESULT, {0x87, "Server SASL Credentials", &kLdapText}};

// --- search ---

constexpr auto kDereferenceNames = SortedNames({
    {0, "Never"}, {1, "In Searching"}, {2, "Finding Base Object"}, {3, "Always"}});
constexpr BerType kScope = NumberOf({kLdapScopeNames, kUnknown}),
                  kDereference = NumberOf({kDereferenceNames, kUnknown});
constexpr BerType kSelection = Repeated(kTextFields, DescribeTexts);

constexpr BerRow kSearchFields[] = {
    {kAsnOctetString, "Base Object", &kLdapText}, {kAsnEnumerated, "Scope", &kScope},
    {kAsnEnumerated, "Dereference Aliases", &kDereference}, {kAsnInteger, "Size Limit", &kLdapNumber},
    {kAsnInteger, "Time Limit", &kLdapNumber}, {kAsnBoolean, "Types Only", &kLdapFlag}, {0, "Filter", &kLdapFilter},
    {kAsnSequence, "Attributes", &kSelection}};
constexpr BerRow kEntryFields[] = {
    {kAsnOctetString, "Object Name", &kLdapText}, {kAsnSequence, "Attributes", &kAttributes}};

// --- changes ---

constexpr BerRow kAddFields[] = {{kAsnOctetString, "Entry", &kLdapText}, {kAsnSequence, "Attributes", &kAttributes}};

constexpr auto kChangeNames = SortedNames({{0, "Add"}, {1, "Delete"}, {2, "Replace"}, {3, "Increment"}});
constexpr BerType kChangeKind = NumberOf({kChangeNames, kUnknown});
void DescribeChange(const Cursor& contents, char* out, int32_t size) {
  Cursor c = contents;
  const uint32_t kind = BerNumber(TakeBer(c).contents);
  char attribute[kLdapTextSize];
  DescribeAttribute(TakeBer(c).contents, attribute, sizeof attribute);
  const char* shown = attribute;
  FormatInto(out, size, "%s %s", LookupName(kChangeNames, kind), shown);
}

constexpr BerRow kChangeFields[] = {{kAsnEnumerated, "Operation", &kChangeKind}, kAttributeFields[0]};
constexpr BerType kChange = GroupOf(kChangeFields, DescribeChange);
constexpr BerRow kChangesFields[] = {{kAsnSequence, "Change", &kChange}};
constexpr BerType kChanges = Repeated(kChangesFields);
constexpr BerRow kModifyFields[] = {{kAsnOctetString, "Object Name", &kLdapText}, {kAsnSequence, "Changes", &kChanges}};

constexpr BerRow kModifyDnFields[] = {
    {kAsnOctetString, "Entry", &kLdapText}, {kAsnOctetString, "New RDN", &kLdapText},
    {kAsnBoolean, "Delete Old RDN", &kLdapFlag}, {0x80, "New Superior", &kLdapText}};

constexpr BerRow kAssertionFields[] = {
    {kAsnOctetString, "Attribute", &kLdapText}, {kAsnOctetString, "Assertion Value", &kLdapText}};
constexpr BerType kAssertion = GroupOf(kAssertionFields, DescribeAssertion);
constexpr BerRow kCompareFields[] = {{kAsnOctetString, "Entry", &kLdapText}, {kAsnSequence, "Assertion", &kAssertion}};

constexpr BerType kBindRequest = GroupOf(kBindRequestFields), kBindResponse = GroupOf(kBindResponseFields),
                  kResult = GroupOf(kResultFields), kSearch = GroupOf(kSearchFields), kEntry = GroupOf(kEntryFields),
                  kModify = GroupOf(kModifyFields), kAdd = GroupOf(kAddFields), kModifyDn = GroupOf(kModifyDnFields),
                  kCompare = GroupOf(kCompareFields);

const BerType* TypeOf(uint32_t operation) {
  switch (operation) {
    case kLdapBindRequest: return &kBindRequest;
    case kLdapBindResponse: return &kBindResponse;
    case kLdapSearchRequest: return &kSearch;
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

// Servers leave the name out of what answers a request to modify a password; the one value of that answer, a password
// in a sequence, looks like no other.
bool IsGeneratedPassword(const Cursor& value) {
  const BerElement sequence = PeekBer(value);
  const BerElement password = PeekBer(sequence.contents);
  return sequence.identifier == kAsnSequence && sequence.size == Left(value) && password.identifier == 0x80 &&
         password.size == Left(sequence.contents);
}

void ShowExtendedRequest(BerWalk& walk, const Place& in, Cursor& c) {
  const LdapExtension* extension = FindLdapExtension(FindBerContents(c, 0x80));
  ShowBerRow(walk, in, c, {0x80, "Request Name", &kLdapOidText});
  ShowExtensionValue(walk, in, c, 0x81, "Request Value", extension ? extension->request : LdapValue{});
}

void ShowExtendedResponse(BerWalk& walk, const Place& in, Cursor& c) {
  const LdapExtension* extension = FindLdapExtension(FindBerContents(c, 0x8A));
  if (!extension && IsGeneratedPassword(FindBerContents(c, 0x8B))) extension = FindPasswordModify();
  for (const BerRow& row : kResultFields) ShowBerRow(walk, in, c, row);
  ShowBerRow(walk, in, c, {0x8A, "Response Name", &kLdapOidText});
  ShowExtensionValue(walk, in, c, 0x8B, "Response Value", extension ? extension->response : LdapValue{});
}

void ShowIntermediate(BerWalk& walk, const Place& in, Cursor& c) {
  const LdapExtension* extension = FindLdapExtension(FindBerContents(c, 0x80));
  ShowBerRow(walk, in, c, {0x80, "Response Name", &kLdapOidText});
  ShowExtensionValue(walk, in, c, 0x81, "Response Value", extension ? extension->response : LdapValue{});
}

}  // namespace

const BerType kLdapEntry = kEntry, kLdapNames = kSelection;

bool ShowOperation(BerWalk& walk, const Place& in, Cursor& c) {
  const uint32_t operation = PeekBer(c).identifier;
  const char* name = LookupName(kLdapOperationNames, operation, nullptr);
  if (!name) return false;
  if (operation == kLdapDeleteRequest) return ShowBerRow(walk, in, c, {kLdapDeleteRequest, name, &kLdapText});
  if (operation == kLdapAbandon) return ShowBerRow(walk, in, c, {kLdapAbandon, name, &kLdapNumber});
  Cursor fields;
  if (!EnterBer(walk, in, c, name, &fields)) return false;
  switch (operation) {
    case kLdapExtendedRequest: ShowExtendedRequest(walk, in, fields); break;
    case kLdapExtendedResponse: ShowExtendedResponse(walk, in, fields); break;
    case kLdapIntermediate: ShowIntermediate(walk, in, fields); break;
    default:
      if (const BerType* type = TypeOf(operation)) ShowBerRows(walk, in, fields, *type);
  }
  ShowBerRest(walk, in, fields);
  return true;
}

}  // namespace qxview
