// Extended operations and controls: their object identifiers, names and values.
#include <cstring>

#include "decoders/asn1/ldap_fields.h"
#include "decoders/asn1/ldap_names.h"
#include "decoders/asn1/ldap_text.h"

namespace qxview {
namespace {

constexpr uint32_t kString = kAsnOctetString;

// --- values ---

constexpr LdapField kOneInteger[] = {Number(kAsnInteger, "Flags")};
constexpr LdapGrammar kFlags = Fields(kOneInteger);
constexpr LdapField kOption[] = {Number(kAsnInteger, "Option")};
constexpr LdapGrammar kExtendedDn = Fields(kOption);

// Paged results (RFC 2696).
constexpr LdapField kPagedFields[] = {Number(kAsnInteger, "Size"), Text(kString, "Cookie")};
constexpr LdapGrammar kPaged = Fields(kPagedFields);

// Server-side sorting (RFC 2891).
constexpr LdapField kSortKeyFields[] = {Text(kString, "Attribute"), Text(0x80, "Ordering Rule"),
                                        Flag(0x81, "Reverse Order")};
constexpr LdapGrammar kSortKey = Fields(kSortKeyFields);
void DescribeSortKey(const LdapElement& key, char* out, int32_t size) {
  constexpr uint32_t kReverse = 0x81;
  LdapText text(out, size);
  Cursor c = key.body;
  for (LdapElement part = PeekElement(c); part.here; part = PeekElement(c)) {
    if (!text.IsEmpty()) text.Put(", ");
    if (part.identifier == kReverse) {
      text.Put(NumberIn(part) ? "Reverse" : "Forward");
    } else {
      text.PutValue(part.body);
    }
    TakeBytes(c, Left(part.whole));
  }
}
constexpr LdapField kSortFields[] = {Group(kAsnSequence, "Sort Key", DescribeSortKey, &kSortKey)};
constexpr LdapGrammar kSort = Repeated(kSortFields);
constexpr LdapField kSortResultFields[] = {Number(kAsnEnumerated, "Sort Result", LdapResultName),
                                           Text(0x80, "Attribute")};
constexpr LdapGrammar kSortResult = Fields(kSortResultFields);

// Virtual list views (draft-ietf-ldapext-ldapv3-vlv-09).
const char* ViewResultName(uint32_t result) {
  return result == 77 ? "Virtual List View Control Error" : LdapResultName(result);
}
constexpr LdapField kOffsetFields[] = {Number(kAsnInteger, "Offset"), Number(kAsnInteger, "Content Count")};
constexpr LdapGrammar kByOffset = Fields(kOffsetFields);
constexpr LdapField kViewFields[] = {Number(kAsnInteger, "Before Count"), Number(kAsnInteger, "After Count"),
                                     Group(0xA0, "By Offset", nullptr, &kByOffset),
                                     Text(0x81, "Greater Than Or Equal"), Text(kString, "Context ID")};
constexpr LdapGrammar kView = Fields(kViewFields);
constexpr LdapField kViewResultFields[] = {
    Number(kAsnInteger, "Target Position"), Number(kAsnInteger, "Content Count"),
    Number(kAsnEnumerated, "Virtual List View Result", ViewResultName), Text(kString, "Context ID")};
constexpr LdapGrammar kViewResult = Fields(kViewResultFields);

// Content synchronization (RFC 4533).
const char* SyncModeName(uint32_t mode) {
  return mode == 1 ? "Refresh Only" : mode == 3 ? "Refresh And Persist" : kUnknown;
}
const char* SyncStateName(uint32_t state) {
  constexpr const char* kNames[] = {"Present", "Add", "Modify", "Delete"};
  return state < 4 ? kNames[state] : kUnknown;
}
constexpr LdapField kSyncFields[] = {Number(kAsnEnumerated, "Mode", SyncModeName), Text(kString, "Cookie"),
                                     Flag(kAsnBoolean, "Reload Hint")};
constexpr LdapGrammar kSync = Fields(kSyncFields);
constexpr LdapField kSyncStateFields[] = {Number(kAsnEnumerated, "State", SyncStateName),
                                          Text(kString, "Entry UUID", DescribeUuid), Text(kString, "Cookie")};
constexpr LdapGrammar kSyncState = Fields(kSyncStateFields);
constexpr LdapField kSyncDoneFields[] = {Text(kString, "Cookie"), Flag(kAsnBoolean, "Refresh Deletes")};
constexpr LdapGrammar kSyncDone = Fields(kSyncDoneFields);
constexpr LdapField kRefreshFields[] = {Text(kString, "Cookie"), Flag(kAsnBoolean, "Refresh Done")};
constexpr LdapGrammar kRefresh = Fields(kRefreshFields);
constexpr LdapField kUuidFields[] = {Text(kString, "Entry UUID", DescribeUuid)};
constexpr LdapGrammar kUuids = Repeated(kUuidFields);
constexpr LdapField kIdSetFields[] = {Text(kString, "Cookie"), Flag(kAsnBoolean, "Refresh Deletes"),
                                      Group(kLdapSet, "Entries", nullptr, &kUuids)};
constexpr LdapGrammar kIdSet = Fields(kIdSetFields);
constexpr LdapField kSyncInfoFields[] = {Text(0x80, "New Cookie"), Group(0xA1, "Refresh Delete", nullptr, &kRefresh),
                                         Group(0xA2, "Refresh Present", nullptr, &kRefresh),
                                         Group(0xA3, "Sync ID Set", nullptr, &kIdSet)};
constexpr LdapGrammar kSyncInfo = Fields(kSyncInfoFields);

// Assertion (RFC 4528), matched values (RFC 3876), reads before and after (RFC 4527), subentries (RFC 3672).
constexpr LdapField kFilterField[] = {{0, LdapField::kFilter, "Filter"}};
constexpr LdapGrammar kFilter = Fields(kFilterField), kFilters = Repeated(kFilterField);
constexpr LdapField kEntryField[] = {Group(0x64, "Entry", nullptr, &kLdapEntryGrammar)};
constexpr LdapGrammar kReadEntry = Fields(kEntryField);
constexpr LdapField kVisibility[] = {Flag(kAsnBoolean, "Visibility")};
constexpr LdapGrammar kSubentries = Fields(kVisibility);

// Password policy (draft-behera-ldap-password-policy-10).
const char* PolicyErrorName(uint32_t error) {
  constexpr const char* kNames[] = {"Password Expired",         "Account Locked",
                                    "Change After Reset",       "Password Modification Not Allowed",
                                    "Must Supply Old Password", "Insufficient Password Quality",
                                    "Password Too Short",       "Password Too Young",
                                    "Password In History",      "Password Too Long"};
  return error < 10 ? kNames[error] : kUnknown;
}
constexpr LdapField kWarningFields[] = {Number(0x80, "Seconds Before Expiration"), Number(0x81, "Grace Logins Left")};
constexpr LdapGrammar kWarning = Fields(kWarningFields);
constexpr LdapField kPolicyFields[] = {Group(0xA0, "Warning", nullptr, &kWarning),
                                       Number(0x81, "Error", PolicyErrorName)};
constexpr LdapGrammar kPolicy = Fields(kPolicyFields);

// Persistent search (draft-ietf-ldapext-psearch-03).
const char* ChangeTypeName(uint32_t type) {
  return type == 1 ? "Add" : type == 2 ? "Delete" : type == 4 ? "Modify" : type == 8 ? "Modify DN" : kUnknown;
}
constexpr LdapField kPersistFields[] = {Number(kAsnInteger, "Change Types"), Flag(kAsnBoolean, "Changes Only"),
                                        Flag(kAsnBoolean, "Return Entry Change Controls")};
constexpr LdapGrammar kPersist = Fields(kPersistFields);
constexpr LdapField kEntryChangeFields[] = {Number(kAsnEnumerated, "Change Type", ChangeTypeName),
                                            Text(kString, "Previous DN"), Number(kAsnInteger, "Change Number")};
constexpr LdapGrammar kEntryChange = Fields(kEntryChangeFields);

// What domain controllers have of their own.
constexpr LdapField kDirSyncFields[] = {Number(kAsnInteger, "Flags"), Number(kAsnInteger, "Most Octets"),
                                        Text(kString, "Cookie")};
constexpr LdapGrammar kDirSync = Fields(kDirSyncFields);
constexpr LdapField kVerifyFields[] = {Number(kAsnInteger, "Flags"), Text(kString, "Server Name")};
constexpr LdapGrammar kVerifyName = Fields(kVerifyFields);
constexpr LdapField kScopedFields[] = {Text(kString, "Source Attribute")};
constexpr LdapGrammar kScoped = Fields(kScopedFields);

constexpr LdapField kSessionFields[] = {Text(kString, "Source Address"), Text(kString, "Source Name"),
                                        Text(kString, "Format"), Text(kString, "Identifier")};
constexpr LdapGrammar kSession = Fields(kSessionFields);

// Password modify (RFC 3062), cancel (RFC 3909), turn (RFC 4531), dynamic entries (RFC 2589), transactions (RFC
// 5805).
constexpr LdapField kPasswordFields[] = {Text(0x80, "User Identity"), Text(0x81, "Old Password"),
                                         Text(0x82, "New Password")};
constexpr LdapGrammar kPassword = Fields(kPasswordFields);
constexpr LdapField kGeneratedFields[] = {Text(0x80, "Generated Password")};
constexpr LdapGrammar kGenerated = Fields(kGeneratedFields);
constexpr LdapField kCancelFields[] = {Number(kAsnInteger, "Cancel ID")};
constexpr LdapGrammar kCancel = Fields(kCancelFields);
constexpr LdapField kTurnFields[] = {Flag(kAsnBoolean, "Mutual"), Text(kString, "Identifier")};
constexpr LdapGrammar kTurn = Fields(kTurnFields);
constexpr LdapField kDynamicFields[] = {Text(0x80, "Entry Name"), Number(0x81, "Seconds To Live")};
constexpr LdapGrammar kDynamic = Fields(kDynamicFields);
constexpr LdapField kEndFields[] = {Flag(kAsnBoolean, "Commit"), Text(kString, "Transaction")};
constexpr LdapGrammar kEnd = Fields(kEndFields);
constexpr LdapField kEndResultFields[] = {Number(kAsnInteger, "Message ID")};
constexpr LdapGrammar kEndResult = Fields(kEndResultFields);

// --- the tables ---

constexpr LdapExtension kOperations[] = {
    {"1.3.6.1.4.1.1466.20037", "Start TLS", {}, {}},
    {"1.3.6.1.4.1.4203.1.11.1", "Password Modify", {&kPassword}, {&kGenerated}},
    {"1.3.6.1.4.1.4203.1.11.3", "Who Am I", {}, {}},
    {"1.3.6.1.1.8", "Cancel", {&kCancel}, {}},
    {"1.3.6.1.1.19", "Turn", {&kTurn}, {}},
    {"1.3.6.1.1.21.1", "Start Transaction", {}, {}},
    {"1.3.6.1.1.21.3", "End Transaction", {&kEnd}, {&kEndResult}},
    {"1.3.6.1.1.21.4", "Transaction Aborted", {}, {}},
    {"1.3.6.1.4.1.1466.20036", "Notice Of Disconnection", {}, {}},
    {"1.3.6.1.4.1.1466.101.119.1", "Dynamic Refresh", {&kDynamic}, {&kDynamic}},
    {"1.3.6.1.4.1.4203.1.9.1.4", "Sync Info", {}, {nullptr, &kSyncInfo}},
    {"1.3.6.1.4.1.4203.666.6.5", "Verify Credentials", {}, {}},
    {"1.3.6.1.4.1.4203.666.11.6.1", "Chaining Behavior", {}, {}},
    {"1.2.840.113556.1.4.1781", "Fast Concurrent Bind", {}, {}},
    {"1.2.840.113556.1.4.2212", "Batch Request", {}, {}},
    {"2.16.840.1.113730.3.5.3", "Start Replication", {}, {}},
    {"2.16.840.1.113730.3.5.5", "End Replication", {}, {}},
    {"2.16.840.1.113730.3.5.6", "Replication Entry", {}, {}},
    {"2.16.840.1.113730.3.5.7", "Start Bulk Import", {}, {}},
    {"2.16.840.1.113730.3.5.8", "Finish Bulk Import", {}, {}},
    {"2.16.840.1.113730.3.5.12", "Start Replication (Version 2)", {}, {}},
    {"2.16.840.1.113730.3.8.10.1", "Keytab Set", {}, {}},
    {"2.16.840.1.113730.3.8.10.5", "Keytab Get", {}, {}},
};

constexpr LdapExtension kControlsTable[] = {
    {"1.2.840.113556.1.4.319", "Paged Results", {&kPaged}, {}},
    {"1.2.840.113556.1.4.473", "Server Side Sort Request", {&kSort}, {}},
    {"1.2.840.113556.1.4.474", "Server Side Sort Response", {&kSortResult}, {}},
    {"2.16.840.1.113730.3.4.9", "Virtual List View Request", {&kView}, {}},
    {"2.16.840.1.113730.3.4.10", "Virtual List View Response", {&kViewResult}, {}},
    {"2.16.840.1.113730.3.4.2", "Manage DSA IT", {}, {}},
    {"1.3.6.1.4.1.4203.1.9.1.1", "Sync Request", {&kSync}, {}},
    {"1.3.6.1.4.1.4203.1.9.1.2", "Sync State", {&kSyncState}, {}},
    {"1.3.6.1.4.1.4203.1.9.1.3", "Sync Done", {&kSyncDone}, {}},
    {"1.3.6.1.1.12", "Assertion", {nullptr, &kFilter}, {}},
    {"1.3.6.1.1.13.1", "Pre-Read", {&kLdapTextsGrammar, &kReadEntry}, {}},
    {"1.3.6.1.1.13.2", "Post-Read", {&kLdapTextsGrammar, &kReadEntry}, {}},
    {"1.3.6.1.1.21.2", "Transaction Control", {}, {}},
    {"1.3.6.1.1.22", "Don't Use Copy", {}, {}},
    {"1.2.826.0.1.3344810.2.3", "Matched Values", {&kFilters}, {}},
    {"1.3.6.1.4.1.4203.1.10.1", "Subentries", {nullptr, &kSubentries}, {}},
    {"1.3.6.1.4.1.4203.1.10.2", "No Operation", {}, {}},
    {"1.3.6.1.4.1.4203.666.5.12", "Relax Rules", {}, {}},
    {"1.3.6.1.4.1.4203.666.5.18", "What Failed", {}, {}},
    {"1.3.6.1.4.1.42.2.27.8.5.1", "Password Policy", {&kPolicy}, {}},
    {"1.3.6.1.4.1.42.2.27.9.5.2", "Get Effective Rights", {}, {}},
    {"1.3.6.1.4.1.42.2.27.9.5.8", "Account Usability", {}, {}},
    {"1.3.6.1.4.1.21008.108.63.1", "Session Tracking", {&kSession}, {}},
    {"1.3.6.1.4.1.7628.5.101.1", "Subentries (Draft)", {}, {}},
    {"2.16.840.1.113730.3.4.3", "Persistent Search", {&kPersist}, {}},
    {"2.16.840.1.113730.3.4.7", "Entry Change Notification", {&kEntryChange}, {}},
    {"2.16.840.1.113730.3.4.4", "Password Expired", {}, {}},
    {"2.16.840.1.113730.3.4.5", "Password Expiring", {}, {}},
    {"2.16.840.1.113730.3.4.12", "Proxied Authorization (Version 1)", {}, {}},
    {"2.16.840.1.113730.3.4.13", "Replication Update Information", {}, {}},
    {"2.16.840.1.113730.3.4.15", "Authorization Identity Response", {}, {}},
    {"2.16.840.1.113730.3.4.16", "Authorization Identity Request", {}, {}},
    {"2.16.840.1.113730.3.4.17", "Real Attributes Only", {}, {}},
    {"2.16.840.1.113730.3.4.18", "Proxied Authorization", {}, {}},
    {"2.16.840.1.113730.3.4.19", "Virtual Attributes Only", {}, {}},
    {"1.2.840.113556.1.4.417", "Show Deleted", {}, {}},
    {"1.2.840.113556.1.4.521", "Cross-Domain Move Target", {}, {}},
    {"1.2.840.113556.1.4.528", "Notification", {}, {}},
    {"1.2.840.113556.1.4.529", "Extended DN", {&kExtendedDn}, {}},
    {"1.2.840.113556.1.4.619", "Lazy Commit", {}, {}},
    {"1.2.840.113556.1.4.801", "Security Descriptor Flags", {&kFlags}, {}},
    {"1.2.840.113556.1.4.802", "Range Option", {}, {}},
    {"1.2.840.113556.1.4.805", "Tree Delete", {}, {}},
    {"1.2.840.113556.1.4.841", "Directory Synchronization", {&kDirSync}, {}},
    {"1.2.840.113556.1.4.970", "Get Statistics", {}, {}},
    {"1.2.840.113556.1.4.1338", "Verify Name", {&kVerifyName}, {}},
    {"1.2.840.113556.1.4.1339", "Domain Scope", {}, {}},
    {"1.2.840.113556.1.4.1340", "Search Options", {&kFlags}, {}},
    {"1.2.840.113556.1.4.1413", "Permissive Modify", {}, {}},
    {"1.2.840.113556.1.4.1504", "Attribute Scoped Query", {&kScoped}, {}},
    {"1.2.840.113556.1.4.1852", "Quota", {}, {}},
    {"1.2.840.113556.1.4.1907", "Shutdown Notify", {}, {}},
    {"1.2.840.113556.1.4.1948", "Range Retrieval No Error", {}, {}},
    {"1.2.840.113556.1.4.1974", "Force Update", {}, {}},
    {"1.2.840.113556.1.4.2026", "DN Input", {}, {}},
    {"1.2.840.113556.1.4.2064", "Show Recycled", {}, {}},
    {"1.2.840.113556.1.4.2065", "Show Deactivated Link", {}, {}},
    {"1.2.840.113556.1.4.2066", "Policy Hints (Deprecated)", {&kFlags}, {}},
    {"1.2.840.113556.1.4.2239", "Policy Hints", {&kFlags}, {}},
    {"1.2.840.113556.1.4.2256", "Set Owner", {}, {}},
};

template <size_t kRows>
const LdapExtension* Find(const LdapExtension (&rows)[kRows], const Cursor& oid) {
  for (const LdapExtension& row : rows) {
    if (row.oid.length == Left(oid) && std::memcmp(row.oid.text, oid.at, static_cast<size_t>(Left(oid))) == 0)
      return &row;
  }
  return nullptr;
}

void DescribeControl(const LdapElement& control, char* out, int32_t size) {
  Cursor c = control.body;
  const LdapElement oid = PeekElement(c);
  DescribeExtension(oid, out, size);
  TakeBytes(c, Left(oid.whole));
  const LdapElement criticality = PeekElement(c);
  if (criticality.identifier == kAsnBoolean && NumberIn(criticality)) AppendString(out, size, ", Critical");
}

void ShowControl(LdapWalk& walk) {
  const LdapExtension* control = Find(kControlsTable, PeekElement(walk.c).body);
  StepExtensionName(walk, kString, "Object Identifier");
  StepField(walk, Flag(kAsnBoolean, "Criticality"));
  StepExtensionValue(walk, kString, "Control Value", control ? control->request : LdapValue{});
}

constexpr LdapField kControlFields[] = {
    {kAsnSequence, LdapField::kShown, "Control", DescribeControl, nullptr, nullptr, ShowControl}};
constexpr LdapGrammar kControls = Repeated(kControlFields);
constexpr LdapField kControlList = Group(kLdapControls, "Controls", nullptr, &kControls);

}  // namespace

const LdapExtension* FindLdapExtension(const Cursor& oid) { return Find(kOperations, oid); }
const LdapExtension* FindPasswordModify() { return &kOperations[1]; }

const char* LdapExtensionName(const Cursor& oid) {
  const LdapExtension* found = FindLdapExtension(oid);
  if (!found) found = Find(kControlsTable, oid);
  return found ? found->name : nullptr;
}

void DescribeExtension(const LdapElement& element, char* out, int32_t size) {
  LdapText text(out, size);
  text.PutValue(element.body);
  if (const char* name = LdapExtensionName(element.body)) {
    text.Put(" = ");
    text.Put(name);
  }
}

void StepExtensionName(LdapWalk& walk, uint32_t identifier, const char* title) {
  StepField(walk, Text(identifier, title, DescribeExtension));
}

void StepExtensionValue(LdapWalk& walk, uint32_t identifier, const char* title, const LdapValue& value) {
  const LdapElement element = PeekElement(walk.c);
  if (!element.here || element.identifier != identifier) return;
  const LdapElement inside = PeekElement(element.body);
  const bool isSequence = inside.identifier == kAsnSequence && value.sequence;
  LdapWalk contents;
  if (!inside.here || (!isSequence && !value.other)) {
    StepField(walk, Text(identifier, title));
  } else if (StepInto(walk, title, "", contents)) {
    LdapWalk fields = contents;
    if (!isSequence) return WalkGrammar(contents, *value.other);
    if (StepHeader(contents, "Sequence", fields)) WalkGrammar(fields, *value.sequence);
    ShowUnexplained(contents);
  }
}

void WalkControls(LdapWalk& walk) { StepField(walk, kControlList); }

}  // namespace qxview
