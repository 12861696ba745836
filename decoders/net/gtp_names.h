// Names of GTP's registries (3GPP TS 29.060, TS 32.295, TS 24.008).
#pragma once
#include "core/name_table.h"

namespace qxview {

inline constexpr auto kGtpMessageNames = SortedNames({
    {1, "Echo Request"}, {2, "Echo Response"}, {3, "Version Not Supported"}, {4, "Node Alive Request"},
    {5, "Node Alive Response"}, {6, "Redirection Request"}, {7, "Redirection Response"},
    {16, "Create PDP Context Request"}, {17, "Create PDP Context Response"}, {18, "Update PDP Context Request"},
    {19, "Update PDP Context Response"}, {20, "Delete PDP Context Request"}, {21, "Delete PDP Context Response"},
    {22, "Initiate PDP Context Activation Request"}, {23, "Initiate PDP Context Activation Response"},
    {24, "Delete AA PDP Context Request"}, {25, "Delete AA PDP Context Response"}, {26, "Error Indication"},
    {27, "PDU Notification Request"}, {28, "PDU Notification Response"}, {29, "PDU Notification Reject Request"},
    {30, "PDU Notification Reject Response"}, {31, "Supported Extension Headers Notification"},
    {32, "Send Routeing Information for GPRS Request"}, {33, "Send Routeing Information for GPRS Response"},
    {34, "Failure Report Request"}, {35, "Failure Report Response"}, {36, "Note MS GPRS Present Request"},
    {37, "Note MS GPRS Present Response"}, {48, "Identification Request"}, {49, "Identification Response"},
    {50, "SGSN Context Request"}, {51, "SGSN Context Response"}, {52, "SGSN Context Acknowledge"},
    {53, "Forward Relocation Request"}, {54, "Forward Relocation Response"}, {55, "Forward Relocation Complete"},
    {56, "Relocation Cancel Request"}, {57, "Relocation Cancel Response"}, {58, "Forward SRNS Context"},
    {59, "Forward Relocation Complete Acknowledge"}, {60, "Forward SRNS Context Acknowledge"},
    {61, "UE Registration Query Request"}, {62, "UE Registration Query Response"}, {70, "RAN Information Relay"},
    {96, "MBMS Notification Request"}, {97, "MBMS Notification Response"}, {98, "MBMS Notification Reject Request"},
    {99, "MBMS Notification Reject Response"}, {100, "Create MBMS Context Request"},
    {101, "Create MBMS Context Response"}, {102, "Update MBMS Context Request"}, {103, "Update MBMS Context Response"},
    {104, "Delete MBMS Context Request"}, {105, "Delete MBMS Context Response"}, {112, "MBMS Registration Request"},
    {113, "MBMS Registration Response"}, {114, "MBMS De-Registration Request"},
    {115, "MBMS De-Registration Response"}, {116, "MBMS Session Start Request"}, {117, "MBMS Session Start Response"},
    {118, "MBMS Session Stop Request"}, {119, "MBMS Session Stop Response"}, {120, "MBMS Session Update Request"},
    {121, "MBMS Session Update Response"}, {128, "MS Info Change Notification Request"},
    {129, "MS Info Change Notification Response"}, {240, "Data Record Transfer Request"},
    {241, "Data Record Transfer Response"}, {253, "Tunnel Status"}, {254, "End Marker"}, {255, "G-PDU"}});

inline constexpr auto kGtpCauseNames = SortedNames({
    {0, "Request IMSI"}, {1, "Request IMEI"}, {2, "Request IMSI and IMEI"}, {3, "No Identity Needed"}, {4, "MS Refuses"},
    {5, "MS Is Not GPRS Responding"}, {6, "Reactivation Requested"}, {7, "PDP Address Inactivity Timer Expires"},
    {8, "Network Failure"}, {9, "QoS Parameter Mismatch"}, {59, "System Failure"},
    {60, "Transmit Buffers Becoming Full"}, {61, "Receive Buffers Becoming Full"},
    {62, "Another Node Is About to Go Down"}, {63, "This Node Is About to Go Down"}, {128, "Request Accepted"},
    {129, "New PDP Type Due to Network Preference"}, {130, "New PDP Type Due to Single Address Bearer Only"},
    {177, "CDR Decoding Error"}, {192, "Non-Existent"}, {193, "Invalid Message Format"}, {194, "IMSI/IMEI Not Known"},
    {195, "MS Is GPRS Detached"}, {196, "MS Is Not GPRS Responding"}, {197, "MS Refuses"},
    {198, "Version Not Supported"}, {199, "No Resources Available"}, {200, "Service Not Supported"},
    {201, "Mandatory IE Incorrect"}, {202, "Mandatory IE Missing"}, {203, "Optional IE Incorrect"},
    {204, "System Failure"}, {205, "Roaming Restriction"}, {206, "P-TMSI Signature Mismatch"},
    {207, "GPRS Connection Suspended"}, {208, "Authentication Failure"}, {209, "User Authentication Failed"},
    {210, "Context Not Found"}, {211, "All Dynamic PDP Addresses Are Occupied"}, {212, "No Memory Is Available"},
    {213, "Relocation Failure"}, {214, "Unknown Mandatory Extension Header"},
    {215, "Semantic Error in the TFT Operation"}, {216, "Syntactic Error in the TFT Operation"},
    {217, "Semantic Errors in Packet Filters"}, {218, "Syntactic Errors in Packet Filters"},
    {219, "Missing or Unknown APN"}, {220, "Unknown PDP Address or PDP Type"},
    {221, "PDP Context without TFT Already Activated"}, {222, "APN Access Denied, No Subscription"},
    {223, "APN Restriction Incompatible with Active PDP Contexts"}, {224, "MS MBMS Capabilities Insufficient"},
    {225, "Invalid Correlation-ID"}, {226, "MBMS Bearer Context Superseded"}, {227, "Bearer Control Mode Violation"},
    {228, "Collision with Network Initiated Request"}, {229, "APN Congestion"}, {230, "Bearer Handling Not Supported"},
    {231, "Target Access Restricted for the Subscriber"},
    {232, "UE Is Temporarily Not Reachable Due to Power Saving"},
    {233, "Relocation Failure Due to NAS Message Redirection"},
    {252, "Request Related to Possibly Duplicated Packets Already Fulfilled"}, {253, "Request Already Fulfilled"},
    {254, "Sequence Numbers of Released or Cancelled Packets Incorrect"}, {255, "Request Not Fulfilled"}});

inline constexpr auto kGtpSelectionNames = SortedNames({
    {0, "Provided by MS or Network, Subscription Verified"}, {1, "Provided by MS, Subscription Not Verified"},
    {2, "Provided by Network, Subscription Not Verified"}, {3, "For Future Use"}});
inline constexpr auto kGtpCommandNames = SortedNames({
    {1, "Send Data Record Packet"}, {2, "Send Possibly Duplicated Data Record Packet"}, {3, "Cancel Data Record Packet"},
    {4, "Release Data Record Packet"}});
inline constexpr auto kGtpOrganizationNames = SortedNames({{0, "ETSI"}, {1, "IETF"}, {15, "Empty PDP Type"}});
inline constexpr auto kGtpPdpNames = SortedNames({
    {0x00, "X.25"}, {0x01, "PPP"}, {0x02, "OSP:IHOSS"}, {0x21, "IPv4"}, {0x57, "IPv6"}, {0x8D, "IPv4v6"}});
inline constexpr auto kGtpContainerNames = SortedNames({
    {0x0001, "P-CSCF IPv6 Address"}, {0x0002, "IM CN Subsystem Signaling Flag"}, {0x0003, "DNS Server IPv6 Address"},
    {0x0004, "Policy Control Rejection Code"}, {0x0005, "Selected Bearer Control Mode"}, {0x0007, "DSMIPv6 Home Agent Address"},
    {0x0008, "DSMIPv6 Home Network Prefix"}, {0x0009, "DSMIPv6 IPv4 Home Agent Address"},
    {0x000A, "IP Address Allocation via NAS Signalling"}, {0x000B, "IPv4 Address Allocation via DHCPv4"},
    {0x000C, "P-CSCF IPv4 Address"}, {0x000D, "DNS Server IPv4 Address"}, {0x000E, "MSISDN"}, {0x000F, "IFOM Support"},
    {0x0010, "IPv4 Link MTU"}, {0x0011, "Network Support of Local Address in TFT"}, {0x0012, "P-CSCF Re-Selection Support"},
    {0x0013, "NBIFOM Request"}, {0x0014, "NBIFOM Mode"}, {0x0015, "Non-IP Link MTU"}, {0x0016, "APN Rate Control Support"},
    {0x0017, "3GPP PS Data Off"}, {0x0018, "Reliable Data Service"}, {0x0019, "Additional APN Rate Control Support"},
    {0x001A, "PDU Session ID"}, {0x001B, "S-NSSAI"}, {0x001C, "QoS Rules"}, {0x001D, "Session-AMBR"},
    {0x001E, "PDU Session Address Lifetime"}, {0x001F, "QoS Flow Descriptions"}, {0x0020, "Ethernet Frame Payload MTU"},
    {0x0021, "Unstructured Link MTU"}, {0x8021, "IPCP"}, {0xC021, "LCP"},
    {0xC023, "PAP"}, {0xC223, "CHAP"}});
inline constexpr auto kGtpTrafficNames = SortedNames({
    {0, "Subscribed"}, {1, "Conversational"}, {2, "Streaming"}, {3, "Interactive"}, {4, "Background"}, {7, "Reserved"}});
inline constexpr auto kGtpRadioNames = SortedNames({
    {1, "UTRAN"}, {2, "GERAN"}, {3, "WLAN"}, {4, "GAN"}, {5, "HSPA Evolution"}, {6, "E-UTRAN"}, {7, "Virtual"},
    {8, "E-UTRAN NB-IoT"}, {9, "LTE-M"}, {10, "NR"}});
inline constexpr auto kGtpDaylightNames = SortedNames({{0, "None"}, {1, "+1 Hour"}, {2, "+2 Hours"}, {3, "Reserved"}});
inline constexpr auto kGtpLocationNames = SortedNames({
    {0, "Cell Global Identification (CGI)"}, {1, "Service Area Identity (SAI)"}, {2, "Routing Area Identification (RAI)"}});
inline constexpr auto kGtpRecordNames = SortedNames({
    {1, "ASN.1 Basic Encoding Rules"}, {2, "ASN.1 Unaligned Packed Encoding Rules"},
    {3, "ASN.1 Aligned Packed Encoding Rules"}});
inline constexpr auto kGtpTemplateNames = SortedNames({
    {0, "Ignore This Element"}, {1, "Create New TFT"}, {2, "Delete Existing TFT"}, {3, "Add Packet Filters"},
    {4, "Replace Packet Filters"}, {5, "Delete Packet Filters"}, {6, "No TFT Operation"}, {7, "Reserved"}});
inline constexpr auto kGtpDirectionNames = SortedNames({
    {0, "Before Release 7"}, {1, "Downlink Only"}, {2, "Uplink Only"}, {3, "Bidirectional"}});
inline constexpr auto kGtpParameterNames = SortedNames({
    {1, "Authorization Token"}, {2, "Flow Identifier"}, {3, "Packet Filter Identifier"}});
inline constexpr auto kGtpBearerModeNames = SortedNames({{1, "MS Only"}, {2, "MS and Network"}});
inline constexpr auto kGtpReportNames = SortedNames({
    {0, "Stop Reporting"}, {1, "Start Reporting CGI/SAI"}, {2, "Start Reporting RAI"}});

}  // namespace qxview
