// The errors of RSVP and what they say nearer (IANA's registry of its parameters).
#include "decoders/routing/rsvp.h"

namespace qxview {
namespace {

constexpr auto kErrorNames = SortedNames({
    {0, "Confirmation"}, {1, "Admission Control Failure"}, {2, "Policy Control Failure"},
    {3, "No Path Information for This Resv"}, {4, "No Sender Information for This Resv"},
    {5, "Conflicting Reservation Style"}, {6, "Unknown Reservation Style"}, {7, "Conflicting Destination Ports"},
    {8, "Conflicting Sender Ports"}, {12, "Service Preempted"}, {13, "Unknown Object Class"},
    {14, "Unknown Object C-Type"}, {20, "Reserved for API"}, {21, "Traffic Control Error"},
    {22, "Traffic Control System Error"}, {23, "RSVP System Error"}, {24, "Routing Problem"}, {25, "Notify"},
    {26, "New Aggregate Needed"}, {27, "Diffserv Error"}, {28, "Diffserv-Aware TE Error"},
    {29, "Unknown Attributes TLV"}, {30, "Unknown Attributes Bit"}, {31, "Alarms"}, {32, "Call Management"},
    {33, "User Error Spec"}, {34, "Reroute"}, {35, "Handover Procedure Failure"},
    {36, "Unrecoverable Receiver Proxy Error"}, {37, "RSVP over MPLS Problem"}, {38, "LSP Hierarchy Issue"},
    {39, "VCAT Call Management"}});
constexpr auto kAdmissionNames = SortedNames({
    {1, "Delay Bound Cannot Be Met"}, {2, "Requested Bandwidth Unavailable"},
    {3, "MTU in Flowspec Larger than Interface MTU"}, {4, "LSP Admission Failure"}, {5, "Bad Association Type"}});
constexpr auto kTrafficNames = SortedNames({
    {1, "Service Conflict"}, {2, "Service Unsupported"}, {3, "Bad Flowspec Value"}, {4, "Bad Tspec Value"},
    {5, "Bad Adspec Value"}});
constexpr auto kDiffservNames = SortedNames({
    {1, "Unexpected DIFFSERV Object"}, {2, "Unsupported PHB"}, {3, "Invalid EXP<->PHB Mapping"},
    {4, "Unsupported PSC"}, {5, "Per-LSP Context Allocation Failure"}});
constexpr auto kClassTypeNames = SortedNames({
    {1, "Unexpected CLASSTYPE Object"}, {2, "Unsupported Class-Type"}, {3, "Invalid Class-Type Value"},
    {4, "Class-Type and Setup Priority Do Not Form a Configured TE-Class"},
    {5, "Class-Type and Holding Priority Do Not Form a Configured TE-Class"},
    {6, "Class-Type and Both Priorities Do Not Form Configured TE-Classes"},
    {7, "Inconsistency between PSC and Class-Type"}, {8, "Inconsistency between PSC and Class-Types of a Group"}});
constexpr auto kRoutingNames = SortedNames({
    {1, "Bad EXPLICIT_ROUTE Object"}, {2, "Bad Strict Node"}, {3, "Bad Loose Node"}, {4, "Bad Initial Subobject"},
    {5, "No Route Available toward Destination"}, {6, "Unacceptable Label Value"}, {7, "RRO Indicated Routing Loops"},
    {8, "Non-RSVP-Capable Router in the Path"}, {9, "MPLS Label Allocation Failure"}, {10, "Unsupported L3PID"},
    {11, "Label Set"}, {12, "Switching Type"}, {14, "Unsupported Encoding"}, {15, "Unsupported Link Protection"},
    {16, "Unknown Interface Index"}, {17, "Unsupported LSP Protection"}, {18, "PROTECTION Object Not Applicable"},
    {19, "Bad PRIMARY_PATH_ROUTE Object"}, {20, "PRIMARY_PATH_ROUTE Object Not Applicable"},
    {21, "LSP Admission Failure"}, {22, "Bad Association Type"}, {23, "Unable to Branch"},
    {24, "Unsupported LSP Integrity"}, {25, "P2MP Re-Merge Detected"}, {26, "P2MP Re-Merge Parameter Mismatch"},
    {27, "ERO Resulted in Re-Merge"}, {64, "Unsupported EXCLUDE_ROUTE Subobject Type"},
    {65, "Inconsistent Subobject"}, {66, "Local Node in EXCLUDE_ROUTE"}, {67, "Route Blocked by EXCLUDE_ROUTE"},
    {68, "EXCLUDE_ROUTE Object Too Complex"}, {69, "Explicit Exclusion Route Subobject Too Complex"}});
constexpr auto kNotifyNames = SortedNames({
    {1, "RRO Too Large for MTU"}, {2, "RRO Notification"}, {3, "Tunnel Locally Repaired"},
    {4, "Control Channel Active"},
    {5, "Control Channel Degraded"}, {6, "Preferable Path Exists"}, {7, "Local Link Maintenance Required"},
    {8, "Local Node Maintenance Required"}, {9, "LSP Failure"}, {10, "LSP Recovered"}, {11, "LSP Locally Failed"}});

constexpr auto kPolicyNames = SortedNames({   // RFC 2750, RFC 5151
    {0, "Information Reporting"}, {1, "Warning"}, {2, "Reason Unknown"}, {3, "Generic Policy Rejection"},
    {4, "Quota or Accounting Violation"}, {5, "Flow Was Preempted"}, {6, "Installed Policy Expired"},
    {7, "Installed Policy Was Replaced"}, {8, "Policies Could Not Be Merged"}, {9, "Policy Decision Point Is Down"},
    {10, "Third Party Server Unavailable"}, {11, "Policy Data Object Has Bad Syntax"},
    {12, "Policy Data Object Failed Integrity Check"}, {13, "Policy Element Has Bad Syntax"},
    {14, "Mandatory Policy Element Is Missing"}, {15, "Out of Resources"}, {16, "RSVP Encountered Bad Syntax"},
    {17, "Service Type Was Rejected"}, {18, "Reservation Style Was Rejected"}, {19, "FLOWSPEC Was Rejected"},
    {103, "Inter-Domain Policy Failure"}, {104, "Inter-Domain Explicit Route Rejected"}});
constexpr auto kCallNames = SortedNames({   // RFC 4974
    {1, "Call ID Contention"}, {2, "Connections Still Exist"}, {3, "Unknown Call ID"}, {4, "Duplicate Call"}});
constexpr auto kHierarchyNames = SortedNames({   // RFC 6107
    {1, "Link Advertisement Not Supported"}, {2, "Link Advertisement Not Allowed by Policy"},
    {3, "TE Link Creation Not Supported"}, {4, "TE Link Creation Not Allowed by Policy"},
    {5, "Routing Adjacency Creation Not Supported"}, {6, "Routing Adjacency Creation Not Allowed by Policy"},
    {7, "Bundle Creation Not Supported"}, {8, "Bundle Creation Not Allowed by Policy"},
    {9, "Hierarchical LSP Not Supported"}, {10, "LSP Stitching Not Supported"},
    {11, "Link Address Type or Family Not Supported"}, {12, "IGP Instance Unknown"},
    {13, "IGP Instance Advertisement Not Allowed by Policy"}, {14, "Component Link Identifier Not Valid"},
    {15, "Unsupported Component Link Identifier Address Family"}, {16, "Component Link Identifier Missing"}});
constexpr auto kConcatenationNames = SortedNames({   // RFC 6344
    {1, "VCG Signal Type Not Supported"}, {2, "LCAS Option Not Supported"}, {3, "Maximum Number of VCGs Exceeded"},
    {4, "Maximum Number of VCG Members Exceeded"}, {5, "LSP Type Incompatible with VCG Call"}});

}  // namespace

const char* RsvpErrorName(uint32_t code) { return LookupName(kErrorNames, code); }

const char* RsvpErrorValueName(uint32_t code, uint32_t value) {
  switch (code) {
    case 1: return LookupName(kAdmissionNames, value);
    case 2: return LookupName(kPolicyNames, value);
    case 21: return LookupName(kTrafficNames, value);
    case 24: return LookupName(kRoutingNames, value);
    case 25: return LookupName(kNotifyNames, value);
    case 27: return LookupName(kDiffservNames, value);
    case 28: return LookupName(kClassTypeNames, value);
    case 32: return LookupName(kCallNames, value);
    case 38: return LookupName(kHierarchyNames, value);
    case 39: return LookupName(kConcatenationNames, value);
    default: return nullptr;
  }
}

}  // namespace qxview
