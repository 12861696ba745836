// Extended operations and controls: their object identifiers, names and values.
#include <cstring>

#include "decoders/asn1/ldap.h"
#include "decoders/asn1/ldap_names.h"
#include "decoders/common/line_text.h"

namespace qxview {
namespace {

constexpr uint32_t kString = kAsnOctetString;

// --- values ---

constexpr BerType kUuid = TextBy(DescribeUuid);
constexpr BerType kResultCode = NumberOf({kLdapResultNames, kUnknown});

constexpr BerRow kOneInteger[] = {{kAsnInteger, "Flags", &kLdapNumber}};
constexpr BerType kFlags = GroupOf(kOneInteger);
constexpr BerRow kOption[] = {{kAsnInteger, "Option", &kLdapNumber}};
constexpr BerType kExtendedDn = GroupOf(kOption);

// Paged results (RFC 2696).
constexpr BerRow kPagedFields[] = {{kAsnInteger, "Size", &kLdapNumber}, {kString, "Cookie", &kLdapText}};
constexpr BerType kPaged = GroupOf(kPagedFields);

// Server-side sorting (RFC 2891).
constexpr BerRow kSortKeyFields[] = {
    {kString, "Attribute", &kLdapText}, {0x80, "Ordering Rule", &kLdapText}, {0x81, "Reverse Order", &kLdapFlag}};
void DescribeSortKey(const Cursor& contents, char* out, int32_t size) {
  constexpr uint32_t kReverse = 0x81;
  LineText text(out, size);
  Cursor c = contents;
  for (BerElement part = TakeBer(c); part.here; part = TakeBer(c)) {
    if (!text.IsEmpty()) text.Put(", ");
    if (part.identifier == kReverse) {
      text.Put(BerNumber(part.contents) ? "Reverse" : "Forward");
    } else {
      text.PutValue(part.contents);
    }
  }
}
constexpr BerType kSortKey = GroupOf(kSortKeyFields, DescribeSortKey);
constexpr BerRow kSortFields[] = {{kAsnSequence, "Sort Key", &kSortKey}};
constexpr BerType kSort = Repeated(kSortFields);
constexpr BerRow kSortResultFields[] = {{kAsnEnumerated, "Sort Result", &kResultCode}, {0x80, "Attribute", &kLdapText}};
constexpr BerType kSortResult = GroupOf(kSortResultFields);

// Virtual list views (draft-ietf-ldapext-ldapv3-vlv-09).
constexpr BerRow kOffsetFields[] = {
    {kAsnInteger, "Offset", &kLdapNumber}, {kAsnInteger, "Content Count", &kLdapNumber}};
constexpr BerType kByOffset = GroupOf(kOffsetFields);
constexpr BerRow kViewFields[] = {
    {kAsnInteger, "Before Count", &kLdapNumber}, {kAsnInteger, "After Count", &kLdapNumber},
    {0xA0, "By Offset", &kByOffset}, {0x81, "Greater Than Or Equal", &kLdapText}, {kString, "Context ID", &kLdapText}};
constexpr BerType kView = GroupOf(kViewFields);
constexpr BerRow kViewResultFields[] = {
    {kAsnInteger, "Target Position", &kLdapNumber}, {kAsnInteger, "Content Count", &kLdapNumber},
    {kAsnEnumerated, "Virtual List View Result", &kResultCode}, {kString, "Context ID", &kLdapText}};
constexpr BerType kViewResult = GroupOf(kViewResultFields);

// Content synchronization (RFC 4533).
constexpr auto kSyncModeNames = SortedNames({{1, "Refresh Only"}, {3, "Refresh And Persist"}});
constexpr auto kSyncStateNames = SortedNames({{0, "Present"}, {1, "Add"}, {2, "Modify"}, {3, "Delete"}});
constexpr BerType kSyncMode = NumberOf({kSyncModeNames, kUnknown}),
                  kSyncStateCode = NumberOf({kSyncStateNames, kUnknown});
constexpr BerRow kSyncFields[] = {
    {kAsnEnumerated, "Mode", &kSyncMode}, {kString, "Cookie", &kLdapText}, {kAsnBoolean, "Reload Hint", &kLdapFlag}};
constexpr BerType kSync = GroupOf(kSyncFields);
constexpr BerRow kSyncStateFields[] = {
    {kAsnEnumerated, "State", &kSyncStateCode}, {kString, "Entry UUID", &kUuid}, {kString, "Cookie", &kLdapText}};
constexpr BerType kSyncState = GroupOf(kSyncStateFields);
constexpr BerRow kSyncDoneFields[] = {{kString, "Cookie", &kLdapText}, {kAsnBoolean, "Refresh Deletes", &kLdapFlag}};
constexpr BerType kSyncDone = GroupOf(kSyncDoneFields);
constexpr BerRow kRefreshFields[] = {{kString, "Cookie", &kLdapText}, {kAsnBoolean, "Refresh Done", &kLdapFlag}};
constexpr BerType kRefresh = GroupOf(kRefreshFields);
constexpr BerRow kUuidFields[] = {{kString, "Entry UUID", &kUuid}};
constexpr BerType kUuids = Repeated(kUuidFields);
constexpr BerRow kIdSetFields[] = {
    {kString, "Cookie", &kLdapText}, {kAsnBoolean, "Refresh Deletes", &kLdapFlag}, {kLdapSet, "Entries", &kUuids}};
constexpr BerType kIdSet = GroupOf(kIdSetFields);
constexpr BerRow kSyncInfoFields[] = {
    {0x80, "New Cookie", &kLdapText}, {0xA1, "Refresh Delete", &kRefresh}, {0xA2, "Refresh Present", &kRefresh},
    {0xA3, "Sync ID Set", &kIdSet}};
constexpr BerType kSyncInfo = GroupOf(kSyncInfoFields);

// Assertion (RFC 4528), matched values (RFC 3876), reads before and after (RFC 4527), subentries (RFC 3672).
constexpr BerRow kFilterField[] = {{0, "Filter", &kLdapFilter}};
constexpr BerType kFilter = GroupOf(kFilterField), kFilters = Repeated(kFilterField);
constexpr BerRow kEntryField[] = {{0x64, "Entry", &kLdapEntry}};
constexpr BerType kReadEntry = GroupOf(kEntryField);
constexpr BerRow kVisibility[] = {{kAsnBoolean, "Visibility", &kLdapFlag}};
constexpr BerType kSubentries = GroupOf(kVisibility);

// Password policy (draft-behera-ldap-password-policy-10).
constexpr auto kPolicyErrorNames = SortedNames({
    {0, "Password Expired"}, {1, "Account Locked"}, {2, "Change After Reset"},
    {3, "Password Modification Not Allowed"}, {4, "Must Supply Old Password"}, {5, "Insufficient Password Quality"},
    {6, "Password Too Short"}, {7, "Password Too Young"}, {8, "Password In History"}, {9, "Password Too Long"}});
constexpr BerType kPolicyError = NumberOf({kPolicyErrorNames, kUnknown});
constexpr BerRow kWarningFields[] = {
    {0x80, "Seconds Before Expiration", &kLdapNumber}, {0x81, "Grace Logins Left", &kLdapNumber}};
constexpr BerType kWarning = GroupOf(kWarningFields);
constexpr BerRow kPolicyFields[] = {{0xA0, "Warning", &kWarning}, {0x81, "Error", &kPolicyError}};
constexpr BerType kPolicy = GroupOf(kPolicyFields);

// Persistent search (draft-ietf-ldapext-psearch-03).
constexpr auto kChangeTypeNames = SortedNames({{1, "Add"}, {2, "Delete"}, {4, "Modify"}, {8, "Modify DN"}});
constexpr BerType kChangeType = NumberOf({kChangeTypeNames, kUnknown});
constexpr BerRow kPersistFields[] = {
    {kAsnInteger, "Change Types", &kLdapNumber}, {kAsnBoolean, "Changes Only", &kLdapFlag},
    {kAsnBoolean, "Return Entry Change Controls", &kLdapFlag}};
constexpr BerType kPersist = GroupOf(kPersistFields);
constexpr BerRow kEntryChangeFields[] = {
    {kAsnEnumerated, "Change Type", &kChangeType}, {kString, "Previous DN", &kLdapText},
    {kAsnInteger, "Change Number", &kLdapNumber}};
constexpr BerType kEntryChange = GroupOf(kEntryChangeFields);

// What domain controllers have of their own.
constexpr BerRow kDirSyncFields[] = {
    {kAsnInteger, "Flags", &kLdapNumber}, {kAsnInteger, "Most Octets", &kLdapNumber}, {kString, "Cookie", &kLdapText}};
constexpr BerType kDirSync = GroupOf(kDirSyncFields);
constexpr BerRow kVerifyFields[] = {{kAsnInteger, "Flags", &kLdapNumber}, {kString, "Server Name", &kLdapText}};
constexpr BerType kVerifyName = GroupOf(kVerifyFields);
constexpr BerRow kScopedFields[] = {{kString, "Source Attribute", &kLdapText}};
constexpr BerType kScoped = GroupOf(kScopedFields);

constexpr BerRow kSessionFields[] = {
    {kString, "Source Address", &kLdapText}, {kString, "Source Name", &kLdapText}, {kString, "Format", &kLdapText},
    {kString, "Identifier", &kLdapText}};
constexpr BerType kSession = GroupOf(kSessionFields);

// Password modify (RFC 3062), cancel (RFC 3909), turn (RFC 4531), dynamic entries (RFC 2589), transactions (RFC
// 5805).
constexpr BerRow kPasswordFields[] = {
    {0x80, "User Identity", &kLdapText}, {0x81, "Old Password", &kLdapText}, {0x82, "New Password", &kLdapText}};
constexpr BerType kPassword = GroupOf(kPasswordFields);
constexpr BerRow kGeneratedFields[] = {{0x80, "Generated Password", &kLdapText}};
constexpr BerType kGenerated = GroupOf(kGeneratedFields);
constexpr BerRow kCancelFields[] = {{kAsnInteger, "Cancel ID", &kLdapNumber}};
constexpr BerType kCancel = GroupOf(kCancelFields);
constexpr BerRow kTurnFields[] = {{kAsnBoolean, "Mutual", &kLdapFlag}, {kString, "Identifier", &kLdapText}};
constexpr BerType kTurn = GroupOf(kTurnFields);
constexpr BerRow kDynamicFields[] = {{0x80, "Entry Name", &kLdapText}, {0x81, "Seconds To Live", &kLdapNumber}};
constexpr BerType kDynamic = GroupOf(kDynamicFields);
constexpr BerRow kEndFields[] = {{kAsnBoolean, "Commit", &kLdapFlag}, {kString, "Transaction", &kLdapText}};
constexpr BerType kEnd = GroupOf(kEndFields);
constexpr BerRow kEndResultFields[] = {{kAsnInteger, "Message ID", &kLdapNumber}};
constexpr BerType kEndResult = GroupOf(kEndResultFields);

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
    {"1.3.6.1.1.13.1", "Pre-Read", {&kLdapNames, &kReadEntry}, {}},
    {"1.3.6.1.1.13.2", "Post-Read", {&kLdapNames, &kReadEntry}, {}},
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

void DescribeControl(const Cursor& contents, char* out, int32_t size) {
  Cursor c = contents;
  DescribeExtension(TakeBer(c).contents, out, size);
  if (BerNumber(TakeBerContents(c, kAsnBoolean))) AppendString(out, size, ", Critical");
}

void ShowControl(BerWalk& walk, const Place& in, Cursor& c, const char*) {
  const LdapExtension* control = Find(kControlsTable, PeekBer(c).contents);
  ShowBerRow(walk, in, c, {kString, "Object Identifier", &kLdapOidText});
  ShowBerRow(walk, in, c, {kAsnBoolean, "Criticality", &kLdapFlag});
  ShowExtensionValue(walk, in, c, kString, "Control Value", control ? control->request : LdapValue{});
}

constexpr BerType kControl{.form = BerForm::kInside, .describe = DescribeControl, .show = ShowControl};
constexpr BerRow kControlFields[] = {{kAsnSequence, "Control", &kControl}};
constexpr BerType kControls = Repeated(kControlFields);

}  // namespace

const LdapExtension* FindLdapExtension(const Cursor& oid) { return Find(kOperations, oid); }
const LdapExtension* FindPasswordModify() { return &kOperations[1]; }

const char* LdapExtensionName(const Cursor& oid) {
  const LdapExtension* found = FindLdapExtension(oid);
  if (!found) found = Find(kControlsTable, oid);
  return found ? found->name : nullptr;
}

void DescribeExtension(const Cursor& contents, char* out, int32_t size) {
  LineText text(out, size);
  text.PutValue(contents);
  if (const char* name = LdapExtensionName(contents)) {
    text.Put(" = ");
    text.Put(name);
  }
}

void ShowExtensionValue(BerWalk& walk, const Place& in, Cursor& c, uint32_t tag, const char* title,
                        const LdapValue& value) {
  const BerElement element = PeekBer(c);
  if (!element.here || element.identifier != tag) return;
  const BerElement inside = PeekBer(element.contents);
  const bool isSequence = inside.identifier == kAsnSequence && value.sequence;
  Place under;
  Cursor contents, fields;
  if (!inside.here || (!isSequence && !value.other)) {
    ShowBerRow(walk, in, c, {tag, title, &kLdapText});
    // keys: text Entry Type, Entry Length
  } else if (EnterBer(walk, in, c, title, "", &under, &contents)) {
    if (!isSequence) return ShowBerRows(walk, under, contents, *value.other);
    if (EnterBer(walk, under, contents, "Sequence", &fields)) ShowBerRows(walk, under, fields, *value.sequence);
    ShowBerRest(walk, under, contents);
  }
}

void ShowControls(BerWalk& walk, const Place& in, Cursor& c) {
  ShowBerRow(walk, in, c, {kLdapControls, "Controls", &kControls});
}

}  // namespace qxview
