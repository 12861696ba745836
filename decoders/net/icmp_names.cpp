#include "decoders/net/icmp_names.h"

#include "core/name_table.h"

namespace qxview {
namespace {

constexpr const char* kRobustness = "Reserved for Robustness Experiment";
constexpr const char* kExperiment = "RFC3692-style Experiment";

constexpr auto kTypeNames = SortedNames({
    {0, "Echo Reply"}, {3, "Destination Unreachable"}, {4, "Source Quench"}, {5, "Redirect"},
    {6, "Alternate Host Address"}, {8, "Echo Request"}, {9, "Router Advertisement"}, {10, "Router Solicitation"},
    {11, "Time Exceeded"}, {12, "Parameter Problem"}, {13, "Timestamp Request"}, {14, "Timestamp Reply"},
    {15, "Information Request"}, {16, "Information Reply"}, {17, "Address Mask Request"},
    {18, "Address Mask Reply"}, {19, "Reserved for Security"}, {20, kRobustness}, {21, kRobustness},
    {22, kRobustness}, {23, kRobustness}, {24, kRobustness}, {25, kRobustness}, {26, kRobustness},
    {27, kRobustness}, {28, kRobustness}, {29, kRobustness}, {30, "Traceroute"}, {31, "Datagram Conversion Error"},
    {32, "Mobile Host Redirect"}, {33, "IPv6 Where-Are-You"}, {34, "IPv6 I-Am-Here"},
    {35, "Mobile Registration Request"}, {36, "Mobile Registration Reply"}, {37, "Domain Name Request"},
    {38, "Domain Name Reply"}, {39, "SKIP"}, {40, "Photuris"}, {41, "Experimental Mobility"},
    {42, "Extended Echo Request"}, {43, "Extended Echo Reply"}, {253, kExperiment}, {254, kExperiment}});

constexpr uint32_t Code(uint32_t type, uint32_t code) { return type << 8 | code; }

constexpr auto kCodeNames = SortedNames({
    {Code(3, 0), "Network Unreachable"}, {Code(3, 1), "Host Unreachable"}, {Code(3, 2), "Protocol Unreachable"},
    {Code(3, 3), "Port Unreachable"}, {Code(3, 4), "Fragmentation Needed and Do Not Fragment Set"},
    {Code(3, 5), "Source Route Failed"}, {Code(3, 6), "Destination Network Unknown"},
    {Code(3, 7), "Destination Host Unknown"}, {Code(3, 8), "Source Host Isolated"},
    {Code(3, 9), "Network Administratively Prohibited"}, {Code(3, 10), "Host Administratively Prohibited"},
    {Code(3, 11), "Network Unreachable for Type of Service"}, {Code(3, 12), "Host Unreachable for Type of Service"},
    {Code(3, 13), "Communication Administratively Prohibited"}, {Code(3, 14), "Host Precedence Violation"},
    {Code(3, 15), "Precedence Cutoff in Effect"}, {Code(5, 0), "Redirect for the Network"},
    {Code(5, 1), "Redirect for the Host"}, {Code(5, 2), "Redirect for the Type of Service and Network"},
    {Code(5, 3), "Redirect for the Type of Service and Host"}, {Code(6, 0), "Alternate Address for Host"},
    {Code(9, 0), "Normal Router Advertisement"}, {Code(9, 16), "Does Not Route Common Traffic"},
    {Code(11, 0), "Time to Live Exceeded in Transit"}, {Code(11, 1), "Fragment Reassembly Time Exceeded"},
    {Code(12, 0), "Pointer Indicates the Error"}, {Code(12, 1), "Missing a Required Option"},
    {Code(12, 2), "Bad Length"}, {Code(30, 0), "Outbound Packet Forwarded"},
    {Code(30, 1), "No Route for Outbound Packet"}, {Code(31, 0), "Unknown or Unspecified Error"},
    {Code(31, 1), "Don't Convert Option Present"}, {Code(31, 2), "Unknown Mandatory Option Present"},
    {Code(31, 3), "Known Unsupported Option Present"}, {Code(31, 4), "Unsupported Transport Protocol"},
    {Code(31, 5), "Overall Length Exceeded"}, {Code(31, 6), "IP Header Length Exceeded"},
    {Code(31, 7), "Transport Protocol Above 255"}, {Code(31, 8), "Port Conversion out of Range"},
    {Code(31, 9), "Transport Header Length Exceeded"}, {Code(31, 10), "32 Bit Rollover Missing and ACK Set"},
    {Code(31, 11), "Unknown Mandatory Transport Option Present"}, {Code(40, 0), "Bad SPI"},
    {Code(40, 1), "Authentication Failed"}, {Code(40, 2), "Decompression Failed"}, {Code(40, 3), "Decryption Failed"},
    {Code(40, 4), "Need Authentication"}, {Code(40, 5), "Need Authorization"}, {Code(42, 0), "No Error"},
    {Code(43, 0), "No Error"}, {Code(43, 1), "Malformed Query"}, {Code(43, 2), "No Such Interface"},
    {Code(43, 3), "No Such Table Entry"}, {Code(43, 4), "Multiple Interfaces Satisfy Query"}});

}  // namespace

const char* IcmpTypeName(uint32_t type) { return LookupName(kTypeNames, type, "Unassigned"); }
const char* IcmpCodeName(uint32_t type, uint32_t code) { return LookupName(kCodeNames, Code(type, code), nullptr); }

}  // namespace qxview
