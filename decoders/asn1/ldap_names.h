// Names of LDAP's numbers that its decoder and its one-line summary share.
#pragma once
#include "core/name_table.h"

namespace qxview {

enum LdapOperation : uint32_t {
  kLdapBindRequest = 0x60, kLdapBindResponse = 0x61, kLdapUnbind = 0x42, kLdapSearchRequest = 0x63,
  kLdapSearchEntry = 0x64, kLdapSearchDone = 0x65, kLdapModifyRequest = 0x66, kLdapModifyResponse = 0x67,
  kLdapAddRequest = 0x68, kLdapAddResponse = 0x69, kLdapDeleteRequest = 0x4A, kLdapDeleteResponse = 0x6B,
  kLdapModifyDnRequest = 0x6C, kLdapModifyDnResponse = 0x6D, kLdapCompareRequest = 0x6E, kLdapCompareResponse = 0x6F,
  kLdapAbandon = 0x50, kLdapSearchReference = 0x73, kLdapExtendedRequest = 0x77, kLdapExtendedResponse = 0x78,
  kLdapIntermediate = 0x79,
};

inline constexpr auto kLdapOperationNames = SortedNames({
    {kLdapUnbind, "Unbind Request"}, {kLdapDeleteRequest, "Delete Request"}, {kLdapAbandon, "Abandon Request"},
    {kLdapBindRequest, "Bind Request"}, {kLdapBindResponse, "Bind Response"}, {kLdapSearchRequest, "Search Request"},
    {kLdapSearchEntry, "Search Result Entry"}, {kLdapSearchDone, "Search Result Done"},
    {kLdapModifyRequest, "Modify Request"}, {kLdapModifyResponse, "Modify Response"},
    {kLdapAddRequest, "Add Request"}, {kLdapAddResponse, "Add Response"}, {kLdapDeleteResponse, "Delete Response"},
    {kLdapModifyDnRequest, "Modify DN Request"}, {kLdapModifyDnResponse, "Modify DN Response"},
    {kLdapCompareRequest, "Compare Request"}, {kLdapCompareResponse, "Compare Response"},
    {kLdapSearchReference, "Search Result Reference"}, {kLdapExtendedRequest, "Extended Request"},
    {kLdapExtendedResponse, "Extended Response"}, {kLdapIntermediate, "Intermediate Response"},
});

// RFC 4511 Appendix A, with those of version 2 (9), of the drafts in use (60, 61, 70, 76, 77), of clients' own
// libraries (81 to 97), of RFC 3909 (118 to 121), RFC 4528 (122), RFC 4370 (123) and RFC 4533 (4096).
inline constexpr auto kLdapResultNames = SortedNames({
    {0, "Success"}, {1, "Operations Error"}, {2, "Protocol Error"}, {3, "Time Limit Exceeded"},
    {4, "Size Limit Exceeded"}, {5, "Compare False"}, {6, "Compare True"}, {7, "Auth Method Not Supported"},
    {8, "Stronger Auth Required"}, {9, "Partial Results"}, {10, "Referral"}, {11, "Admin Limit Exceeded"},
    {12, "Unavailable Critical Extension"}, {13, "Confidentiality Required"}, {14, "SASL Bind In Progress"},
    {16, "No Such Attribute"}, {17, "Undefined Attribute Type"}, {18, "Inappropriate Matching"},
    {19, "Constraint Violation"}, {20, "Attribute Or Value Exists"}, {21, "Invalid Attribute Syntax"},
    {32, "No Such Object"}, {33, "Alias Problem"}, {34, "Invalid DN Syntax"}, {35, "Is Leaf"},
    {36, "Alias Dereferencing Problem"}, {48, "Inappropriate Authentication"}, {49, "Invalid Credentials"},
    {50, "Insufficient Access Rights"}, {51, "Busy"}, {52, "Unavailable"}, {53, "Unwilling To Perform"},
    {54, "Loop Detect"}, {60, "Sort Control Missing"}, {61, "Offset Range Error"}, {64, "Naming Violation"},
    {65, "Object Class Violation"}, {66, "Not Allowed On Non-Leaf"}, {67, "Not Allowed On RDN"},
    {68, "Entry Already Exists"}, {69, "Object Class Mods Prohibited"}, {70, "Results Too Large"},
    {71, "Affects Multiple DSAs"}, {76, "Virtual List View Error"}, {77, "Virtual List View Control Error"},
    {80, "Other"}, {81, "Server Down"}, {82, "Local Error"}, {83, "Encoding Error"}, {84, "Decoding Error"},
    {85, "Timeout"}, {86, "Auth Unknown"},
    {87, "Filter Error"}, {88, "User Canceled"}, {89, "Parameter Error"}, {90, "No Memory"}, {91, "Connect Error"},
    {92, "Not Supported"}, {93, "Control Not Found"}, {94, "No Results Returned"}, {95, "More Results To Return"},
    {96, "Client Loop"}, {97, "Referral Limit Exceeded"}, {118, "Canceled"}, {119, "No Such Operation"},
    {120, "Too Late"}, {121, "Cannot Cancel"}, {122, "Assertion Failed"}, {123, "Authorization Denied"},
    {4096, "Sync Refresh Required"},
});

inline constexpr auto kLdapScopeNames =
    SortedNames({{0, "Base"}, {1, "One Level"}, {2, "Subtree"}, {3, "Children"}});

inline const char* LdapResultName(uint32_t code) { return LookupName(kLdapResultNames, code); }
inline const char* LdapScopeName(uint32_t scope) { return LookupName(kLdapScopeNames, scope); }

}  // namespace qxview
