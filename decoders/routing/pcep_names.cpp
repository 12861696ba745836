// The errors of the Path Computation Element communication Protocol and what its objects number (IANA's registry of the
// protocol).
#include "decoders/routing/pcep.h"

namespace qxview {
namespace {

constexpr auto kErrorNames = SortedNames({
    {0, "Reserved"}, {1, "PCEP Session Establishment Failure"}, {2, "Capability Not Supported"}, {3, "Unknown Object"},
    {4, "Not Supported Object"}, {5, "Policy Violation"}, {6, "Mandatory Object Missing"},
    {7, "Synchronized Path Computation Request Missing"}, {8, "Unknown Request Reference"},
    {9, "Attempt to Establish a Second PCEP Session"}, {10, "Reception of an Invalid Object"},
    {11, "Unrecognized EXRS Subobject"}, {12, "Diffserv-Aware TE Error"}, {13, "BRPC Procedure Completion Failure"},
    {15, "Global Concurrent Optimization Error"}, {16, "P2MP Capability Error"}, {17, "P2MP END-POINTS Error"},
    {18, "P2MP Fragmentation Error"}, {19, "Invalid Operation"}, {20, "LSP State Synchronization Error"},
    {21, "Invalid Traffic Engineering Path Setup Type"}, {23, "Bad Parameter Value"}, {24, "LSP Instantiation Error"},
    {25, "PCEP StartTLS Failure"}, {26, "Association Error"}, {27, "WSON RWA Error"}, {28, "H-PCE Error"},
    {29, "Path Computation Failure"}, {30, "FlowSpec Error"}, {31, "PCECC Failure"}, {32, "Binding Label/SID Failure"},
    {33, "Native IP TE Failure"}});

// Type and value.
constexpr auto kValueNames = SortedNames({
    {0x0101, "Invalid Open Message"}, {0x0102, "No Open Message before OpenWait Expired"},
    {0x0103, "Unacceptable Session Characteristics"}, {0x0104, "Unacceptable but Negotiable Session Characteristics"},
    {0x0105, "Second Open Message with Unacceptable Characteristics"},
    {0x0106, "PCErr with Unacceptable Characteristics"}, {0x0107, "No Keepalive or PCErr before KeepWait Expired"},
    {0x0108, "PCEP Version Not Supported"}, {0x0109, "Auto-Bandwidth Capability Exceeded"},
    {0x0301, "Unrecognized Object Class"}, {0x0302, "Unrecognized Object Type"},
    {0x0401, "Not Supported Object Class"}, {0x0402, "Not Supported Object Type"}, {0x0404, "Unsupported Parameter"},
    {0x0405, "Unsupported Network Performance Constraint"}, {0x0406, "BANDWIDTH Object Type 3 or 4 Not Supported"},
    {0x0407, "Unsupported Endpoint Type"}, {0x0408, "Unsupported TLV in END-POINTS"},
    {0x0409, "Unsupported TLV in the RP Object"}, {0x0501, "C Bit of METRIC Set"}, {0x0502, "O Bit of RP Cleared"},
    {0x0503, "Objective Function Not Allowed"}, {0x0504, "OF Bit of RP Set"},
    {0x0505, "Global Concurrent Optimization Not Allowed"},
    {0x0506, "Monitoring Request Not Allowed"}, {0x0507, "P2MP Path Computation Not Allowed"},
    {0x0508, "Network Performance Constraint Not Allowed"}, {0x0509, "Inter-Domain SID Not Allowed"},
    {0x0601, "RP Object Missing"}, {0x0602, "RRO Missing for Reoptimization"}, {0x0603, "END-POINTS Object Missing"},
    {0x0604, "MONITORING Object Missing"}, {0x0608, "LSP Object Missing"}, {0x0609, "ERO Object Missing"},
    {0x060A, "SRP Object Missing"}, {0x060B, "LSP-IDENTIFIERS TLV Missing"}, {0x060C, "LSP-DB-VERSION TLV Missing"},
    {0x060D, "LSP Cleanup TLV Missing"}, {0x060E, "SYMBOLIC-PATH-NAME TLV Missing"}, {0x060F, "ASSOCIATION Object Missing"},
    {0x0610, "PCE-FLOWSPEC Object Missing"}, {0x0611, "CCI Object Missing"}, {0x0A01, "P Flag Not Set"},
    {0x0A02, "Bad Label Value"}, {0x0A03, "Unsupported Number of SR-ERO Subobjects"}, {0x0A04, "Bad Label Format"},
    {0x0A05, "ERO Mixes SR-ERO Subobjects with Others"}, {0x0A06, "Both SID and NAI Are Absent"},
    {0x0A07, "Both SID and NAI Are Absent in the RRO"}, {0x0A08, "SYMBOLIC-PATH-NAME Already Used"},
    {0x0A09, "MSD Exceeds the Default"}, {0x0A0A, "RRO Mixes SR-RRO Subobjects with Others"},
    {0x0A0B, "Malformed Object"}, {0x0A0C, "Missing PCE-SR-CAPABILITY Sub-TLV"}, {0x0A0D, "Unsupported NAI Type"},
    {0x0A0E, "Unknown SID"}, {0x0A0F, "NAI Cannot Be Resolved to a SID"}, {0x0A10, "SRGB Not Found"}, {0x0A11, "SID Index Exceeds the SRGB"},
    {0x0A12, "SRLB Not Found"}, {0x0A13, "SID Index Exceeds the SRLB"}, {0x0A14, "Inconsistent SIDs in SR Subobjects"},
    {0x0A15, "MSD Is Zero"}, {0x0A22, "Missing SRv6-PCE-CAPABILITY Sub-TLV"},
    {0x0C01, "Unsupported Class-Type"}, {0x0C02, "Invalid Class-Type"},
    {0x0C03, "Class-Type and Setup Priority Do Not Form a TE-Class"},
    {0x0D01, "BRPC Procedure Not Supported by a PCE on the Path"}, {0x0F01, "Insufficient Memory"},
    {0x0F02, "Global Concurrent Optimization Not Supported"}, {0x1001, "Insufficient Memory"},
    {0x1002, "PCE Cannot Compute P2MP Paths"}, {0x1101, "No EP with Leaf Type 2"}, {0x1102, "No EP with Leaf Type 3"},
    {0x1103, "No EP with Leaf Type 4"}, {0x1104, "Inconsistent END-POINTS"}, {0x1201, "Fragmented Request Failure"},
    {0x1202, "Fragmented Report Failure"}, {0x1203, "Fragmented Update Failure"}, {0x1204, "Fragmented Instantiation Failure"},
    {0x1301, "LSP Update for a Non-Delegated LSP"}, {0x1302, "LSP Update without Stateful Capability"},
    {0x1303, "LSP Update for an Unknown PLSP-ID"}, {0x1304, "Error in Stateful Capability"},
    {0x1305, "LSP State Report without Stateful Capability"}, {0x1306, "PCE-Initiated LSP Limit Reached"},
    {0x1307, "Delegation of a PCE-Initiated LSP Cannot Be Revoked"}, {0x1308, "Non-Zero PLSP-ID in an Initiation Request"},
    {0x1309, "LSP Is Not PCE-Initiated"}, {0x130A, "PCE-Initiated Operation-Frequency Limit Reached"},
    {0x1401, "PCE Cannot Process the LSP State Report"}, {0x1402, "LSP Database Version Mismatch"},
    {0x1403, "State Synchronization Triggered before PCE"}, {0x1404, "State Synchronization Triggered by the PCC"},
    {0x1405, "PCC Cannot Complete State Synchronization"}, {0x1406, "No LSP-DB-VERSION"}, {0x1407, "Speaker Entity ID Mismatch"},
    {0x1501, "Unsupported Path Setup Type"}, {0x1502, "Mismatched Path Setup Type"}, {0x1701, "SYMBOLIC-PATH-NAME in Use"},
    {0x1702, "Speaker Identity Included for an LSP That Is Not PCE-Initiated"}, {0x1801, "Unacceptable Instantiation Parameters"},
    {0x1802, "Internal Error"}, {0x1803, "Signaling Error"}, {0x1901, "StartTLS Received after Other Messages"},
    {0x1902, "Other Message Received instead of StartTLS"}, {0x1903, "Failure, Connection without TLS Not Possible"},
    {0x1904, "Failure, Connection without TLS Possible"}, {0x1905, "No StartTLS before StartTLSWait Expired"},
    {0x1A01, "Association Type Not Supported"}, {0x1A02, "Too Many LSPs in the Association Group"},
    {0x1A03, "Too Many Association Groups"}, {0x1A04, "Association Unknown"}, {0x1A05, "Operator-Configured Association Mismatch"},
    {0x1A06, "Association Information Mismatch"}, {0x1A07, "Cannot Join the Association Group"},
    {0x1A08, "Association ID Not in Range"}, {0x1B01, "Insufficient Memory"}, {0x1B02, "RWA Computation Not Supported"},
    {0x1B03, "Syntactical Encoding Error"}, {0x1C01, "H-PCE Capability Not Advertised"},
    {0x1C02, "Parent PCE Capability Cannot Be Provided"}, {0x1D01, "Unacceptable Request Message"},
    {0x1D02, "Generalized Bandwidth Value Not Supported"}, {0x1D03, "Label Set Constraint Could Not Be Met"},
    {0x1D04, "Label Constraint Could Not Be Met"}});

constexpr auto kObjectiveNames = SortedNames({
    {1, "Minimum Cost Path"}, {2, "Minimum Load Path"}, {3, "Maximum Residual Bandwidth Path"},
    {4, "Minimize Aggregate Bandwidth Consumption"}, {5, "Minimize the Load of the Most Loaded Link"},
    {6, "Minimize the Cumulative Cost of a Set of Paths"}, {7, "Shortest Path Tree"}, {8, "Minimum Cost Tree"},
    {9, "Minimum Packet Loss Path"}, {10, "Maximum Under-Utilized Path"}, {11, "Maximum Reserved Under-Utilized Path"},
    {12, "Minimize the Number of Transit Domains"}, {13, "Minimize the Number of Border Nodes"},
    {14, "Minimize the Number of Common Transit Domains"}, {15, "Minimize the Number of Shared Links"},
    {16, "Minimize the Number of Shared SRLGs"}, {17, "Minimize the Number of Shared Nodes"}});
constexpr auto kAssociationNames = SortedNames({
    {0, "Reserved"}, {1, "Path Protection"}, {2, "Disjoint"}, {3, "Policy"}, {4, "Single-Sided Bidirectional LSP"},
    {5, "Double-Sided Bidirectional LSP"}, {6, "SR Policy"}, {7, "VN Association"}});

}  // namespace

const char* PcepErrorName(uint32_t type) { return LookupName(kErrorNames, type); }
const char* PcepErrorValueName(uint32_t type, uint32_t value) {
  return LookupName(kValueNames, type << 8 | value, value ? kUnknown : "Unassigned");
}
const char* PcepObjectiveName(uint32_t code) { return LookupName(kObjectiveNames, code); }
const char* PcepAssociationName(uint32_t type) { return LookupName(kAssociationNames, type); }

}  // namespace qxview
