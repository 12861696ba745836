// Commands and events of Bluetooth's host controller interface (Bluetooth Core 5.3, volume 4, part E, clause 7) with
// their
// parameters; the same list of parameters stands once. Numbers have their low byte first.
#include "decoders/link/bluetooth_hci.h"

namespace qxview {
namespace {

constexpr auto kStatusNames = SortedNames({{0x00, "Success"}, {0x01, "Unknown Command"},
    {0x02, "Unknown Connection Identifier"}, {0x03, "Hardware Failure"}, {0x04, "Page Timeout"},
    {0x05, "Authentication Failure"}, {0x06, "PIN or Key Missing"}, {0x07, "Memory Capacity Exceeded"},
    {0x08, "Connection Timeout"}, {0x09, "Connection Limit Exceeded"},
    {0x0A, "Synchronous Connection Limit Exceeded"}, {0x0B, "Connection Already Exists"},
    {0x0C, "Command Disallowed"}, {0x0D, "Rejected, Limited Resources"}, {0x0E, "Rejected, Security Reasons"},
    {0x0F, "Rejected, Unacceptable Address"}, {0x10, "Connection Accept Timeout Exceeded"},
    {0x11, "Unsupported Feature or Parameter"}, {0x12, "Invalid Parameters"},
    {0x13, "Remote User Terminated Connection"}, {0x14, "Remote Device Terminated, Low Resources"},
    {0x15, "Remote Device Terminated, Power Off"}, {0x16, "Connection Terminated by Local Host"},
    {0x17, "Repeated Attempts"}, {0x18, "Pairing Not Allowed"}, {0x19, "Unknown LMP PDU"},
    {0x1A, "Unsupported Remote Feature"}, {0x1B, "SCO Offset Rejected"}, {0x1C, "SCO Interval Rejected"},
    {0x1D, "SCO Air Mode Rejected"}, {0x1E, "Invalid LMP or LL Parameters"}, {0x1F, "Unspecified Error"},
    {0x20, "Unsupported LMP or LL Parameter"}, {0x21, "Role Change Not Allowed"},
    {0x22, "LMP or LL Response Timeout"}, {0x23, "LMP Error Transaction Collision"}, {0x24, "LMP PDU Not Allowed"},
    {0x25, "Encryption Mode Not Acceptable"}, {0x26, "Link Key Cannot Be Changed"},
    {0x27, "Requested QoS Not Supported"}, {0x28, "Instant Passed"}, {0x29, "Pairing with Unit Key Not Supported"},
    {0x2A, "Different Transaction Collision"}, {0x2C, "QoS Unacceptable Parameter"}, {0x2D, "QoS Rejected"},
    {0x2E, "Channel Classification Not Supported"}, {0x2F, "Insufficient Security"},
    {0x30, "Parameter Out of Mandatory Range"}, {0x32, "Role Switch Pending"}, {0x34, "Reserved Slot Violation"},
    {0x35, "Role Switch Failed"}, {0x36, "Extended Inquiry Response Too Large"},
    {0x37, "Simple Pairing Not Supported by Host"}, {0x38, "Host Busy, Pairing"},
    {0x39, "No Suitable Channel Found"}, {0x3A, "Controller Busy"}, {0x3B, "Unacceptable Connection Parameters"},
    {0x3C, "Advertising Timeout"}, {0x3D, "Terminated, MIC Failure"}, {0x3E, "Connection Failed to Be Established"},
    {0x3F, "MAC Connection Failed"}, {0x40, "Coarse Clock Adjustment Rejected"},
    {0x41, "Type 0 Submap Not Defined"}, {0x42, "Unknown Advertising Identifier"}, {0x43, "Limit Reached"},
    {0x44, "Operation Cancelled by Host"}, {0x45, "Packet Too Long"}});
constexpr int32_t kStatusCount = sizeof kStatusNames.rows / sizeof kStatusNames.rows[0];

const HciParameter kList1[] = {{HciKind::kHex, 3, "LAP"}, {HciKind::kNumber, 1, "Inquiry Length"},
    {HciKind::kNumber, 1, "Number of Responses"}};
const HciParameter kList2[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount}};
const HciParameter kList3[] = {{HciKind::kNumber, 2, "Maximum Period Length"},
    {HciKind::kNumber, 2, "Minimum Period Length"}, {HciKind::kHex, 3, "LAP"},
    {HciKind::kNumber, 1, "Inquiry Length"}, {HciKind::kNumber, 1, "Number of Responses"}};
const HciParameter kList4[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kHex, 2, "Packet Type"},
    {HciKind::kHex, 1, "Page Scan Repetition Mode"}, {HciKind::kHex, 1, "Reserved"},
    {HciKind::kHex, 2, "Clock Offset"}, {HciKind::kHex, 1, "Allow Role Switch"}};
const HciParameter kList5[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kNumber, 1, "Reason", kStatusNames.rows, kStatusCount}};
const HciParameter kList6[] = {{HciKind::kAddress, 6, "BD_ADDR"}};
const HciParameter kList7[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kAddress, 6, "BD_ADDR"}};
const HciParameter kList8[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kHex, 1, "Role"}};
const HciParameter kList9[] = {{HciKind::kAddress, 6, "BD_ADDR"},
    {HciKind::kNumber, 1, "Reason", kStatusNames.rows, kStatusCount}};
const HciParameter kList10[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kBytes, 16, "Link Key"}};
const HciParameter kList11[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kNumber, 1, "PIN Code Length"},
    {HciKind::kBytes, 16, "PIN Code"}};
const HciParameter kList12[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 2, "Packet Type"}};
const HciParameter kList13[] = {{HciKind::kHandle, 2, "Connection Handle"}};
const HciParameter kList14[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kHex, 1, "Encryption Enable"}};
const HciParameter kList15[] = {{HciKind::kHex, 1, "Key Flag"}};
const HciParameter kList16[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kHex, 1, "Page Scan Repetition Mode"},
    {HciKind::kHex, 1, "Reserved"}, {HciKind::kHex, 2, "Clock Offset"}};
const HciParameter kList17[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 1, "Page Number"}};
const HciParameter kList18[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 1, "LMP Handle"},
    {HciKind::kHex, 4, "Reserved"}};
const HciParameter kList19[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kNumber, 4, "Transmit Bandwidth"}, {HciKind::kNumber, 4, "Receive Bandwidth"},
    {HciKind::kNumber, 2, "Maximum Latency"}, {HciKind::kHex, 2, "Voice Setting"},
    {HciKind::kHex, 1, "Retransmission Effort"}, {HciKind::kHex, 2, "Synchronous Packet Type"}};
const HciParameter kList20[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kNumber, 4, "Transmit Bandwidth"},
    {HciKind::kNumber, 4, "Receive Bandwidth"}, {HciKind::kNumber, 2, "Maximum Latency"},
    {HciKind::kHex, 2, "Voice Setting"}, {HciKind::kHex, 1, "Retransmission Effort"},
    {HciKind::kHex, 2, "Synchronous Packet Type"}};
const HciParameter kList21[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kHex, 1, "IO Capability"},
    {HciKind::kHex, 1, "OOB Data Present"}, {HciKind::kHex, 1, "Authentication Requirements"}};
const HciParameter kList22[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kNumber, 4, "Numeric Value"}};
const HciParameter kList23[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kBytes, 16, "Hash C"},
    {HciKind::kBytes, 16, "Randomizer R"}};
const HciParameter kList24[] = {{HciKind::kNumber, 1, "Physical Link Handle"}, {HciKind::kNumber, 1, "Key Length"},
    {HciKind::kNumber, 1, "Key Type"}, {HciKind::kBytes, 0, "Key"}};
const HciParameter kList25[] = {{HciKind::kNumber, 1, "Physical Link Handle"},
    {HciKind::kNumber, 1, "Reason", kStatusNames.rows, kStatusCount}};
const HciParameter kList26[] = {{HciKind::kNumber, 1, "Physical Link Handle"},
    {HciKind::kBytes, 16, "Transmit Flow"}, {HciKind::kBytes, 16, "Receive Flow"}};
const HciParameter kList27[] = {{HciKind::kNumber, 2, "Logical Link Handle"}};
const HciParameter kList28[] = {{HciKind::kNumber, 1, "Physical Link Handle"},
    {HciKind::kNumber, 1, "Transmit Flow ID"}};
const HciParameter kList29[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "Physical Link Handle"}, {HciKind::kNumber, 1, "Transmit Flow ID"}};
const HciParameter kList30[] = {{HciKind::kNumber, 2, "Logical Link Handle"},
    {HciKind::kBytes, 16, "Transmit Flow"}, {HciKind::kBytes, 16, "Receive Flow"}};
const HciParameter kList31[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kNumber, 4, "Transmit Bandwidth"}, {HciKind::kNumber, 4, "Receive Bandwidth"},
    {HciKind::kBytes, 5, "Transmit Coding Format"}, {HciKind::kBytes, 5, "Receive Coding Format"},
    {HciKind::kBytes, 0, "Coding and Data Path"}};
const HciParameter kList32[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kNumber, 4, "Transmit Bandwidth"},
    {HciKind::kNumber, 4, "Receive Bandwidth"}, {HciKind::kBytes, 5, "Transmit Coding Format"},
    {HciKind::kBytes, 5, "Receive Coding Format"}, {HciKind::kBytes, 0, "Coding and Data Path"}};
const HciParameter kList33[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kHex, 1, "Page Scan Repetition Mode"},
    {HciKind::kHex, 2, "Clock Offset"}};
const HciParameter kList34[] = {{HciKind::kBytes, 0, "Parameters"}};
const HciParameter kList35[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kNumber, 2, "Timeout"},
    {HciKind::kNumber, 2, "Window"}, {HciKind::kNumber, 2, "Interval"}};
const HciParameter kList36[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kBytes, 16, "Hash C 192"},
    {HciKind::kBytes, 16, "Randomizer R 192"}, {HciKind::kBytes, 16, "Hash C 256"},
    {HciKind::kBytes, 16, "Randomizer R 256"}};
const HciParameter kList37[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kNumber, 2, "Maximum Interval"}, {HciKind::kNumber, 2, "Minimum Interval"}};
const HciParameter kList38[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kNumber, 2, "Maximum Interval"}, {HciKind::kNumber, 2, "Minimum Interval"},
    {HciKind::kNumber, 2, "Attempt"}, {HciKind::kNumber, 2, "Timeout"}};
const HciParameter kList39[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Flags"},
    {HciKind::kHex, 1, "Service Type"}, {HciKind::kNumber, 4, "Token Rate"},
    {HciKind::kNumber, 4, "Peak Bandwidth"}, {HciKind::kNumber, 4, "Latency"},
    {HciKind::kNumber, 4, "Delay Variation"}};
const HciParameter kList40[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Role"}};
const HciParameter kList41[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 2, "Link Policy Settings"}};
const HciParameter kList42[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kHex, 2, "Link Policy Settings"}};
const HciParameter kList43[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}};
const HciParameter kList44[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 2, "Link Policy Settings"}};
const HciParameter kList45[] = {{HciKind::kHex, 2, "Link Policy Settings"}};
const HciParameter kList46[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Flags"},
    {HciKind::kHex, 1, "Flow Direction"}, {HciKind::kHex, 1, "Service Type"}, {HciKind::kNumber, 4, "Token Rate"},
    {HciKind::kNumber, 4, "Token Bucket Size"}, {HciKind::kNumber, 4, "Peak Bandwidth"},
    {HciKind::kNumber, 4, "Access Latency"}};
const HciParameter kList47[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kNumber, 2, "Maximum Latency"}, {HciKind::kNumber, 2, "Minimum Remote Timeout"},
    {HciKind::kNumber, 2, "Minimum Local Timeout"}};
const HciParameter kList48[] = {{HciKind::kHex, 8, "Event Mask"}};
const HciParameter kList49[] = {{HciKind::kHex, 1, "Filter Type"}, {HciKind::kBytes, 0, "Filter"}};
const HciParameter kList50[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "PIN Type"}};
const HciParameter kList51[] = {{HciKind::kHex, 1, "PIN Type"}};
const HciParameter kList52[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kHex, 1, "Read All"}};
const HciParameter kList53[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Maximum Keys"}, {HciKind::kNumber, 2, "Keys Read"}};
const HciParameter kList54[] = {{HciKind::kNumber, 1, "Number of Keys"}, {HciKind::kBytes, 0, "Keys"}};
const HciParameter kList55[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "Keys Written"}};
const HciParameter kList56[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kHex, 1, "Delete All"}};
const HciParameter kList57[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Keys Deleted"}};
const HciParameter kList58[] = {{HciKind::kText, 248, "Local Name"}};
const HciParameter kList59[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kText, 248, "Local Name"}};
const HciParameter kList60[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Connection Accept Timeout"}};
const HciParameter kList61[] = {{HciKind::kNumber, 2, "Connection Accept Timeout"}};
const HciParameter kList62[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Page Timeout"}};
const HciParameter kList63[] = {{HciKind::kNumber, 2, "Page Timeout"}};
const HciParameter kList64[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "Scan Enable"}};
const HciParameter kList65[] = {{HciKind::kHex, 1, "Scan Enable"}};
const HciParameter kList66[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Interval"}, {HciKind::kNumber, 2, "Window"}};
const HciParameter kList67[] = {{HciKind::kNumber, 2, "Interval"}, {HciKind::kNumber, 2, "Window"}};
const HciParameter kList68[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "Authentication Enable"}};
const HciParameter kList69[] = {{HciKind::kHex, 1, "Authentication Enable"}};
const HciParameter kList70[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 3, "Class of Device"}};
const HciParameter kList71[] = {{HciKind::kHex, 3, "Class of Device"}};
const HciParameter kList72[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 2, "Voice Setting"}};
const HciParameter kList73[] = {{HciKind::kHex, 2, "Voice Setting"}};
const HciParameter kList74[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 2, "Flush Timeout"}};
const HciParameter kList75[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 2, "Flush Timeout"}};
const HciParameter kList76[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "Number"}};
const HciParameter kList77[] = {{HciKind::kNumber, 1, "Number"}};
const HciParameter kList78[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "Hold Mode Activity"}};
const HciParameter kList79[] = {{HciKind::kHex, 1, "Hold Mode Activity"}};
const HciParameter kList80[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Type"}};
const HciParameter kList81[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kSigned, 1, "Transmit Power Level"}};
const HciParameter kList82[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "Flow Control Enable"}};
const HciParameter kList83[] = {{HciKind::kHex, 1, "Flow Control Enable"}};
const HciParameter kList84[] = {{HciKind::kNumber, 2, "ACL Data Packet Length"},
    {HciKind::kNumber, 1, "Synchronous Data Packet Length"}, {HciKind::kNumber, 2, "Number of ACL Data Packets"},
    {HciKind::kNumber, 2, "Number of Synchronous Data Packets"}};
const HciParameter kList85[] = {{HciKind::kNumber, 1, "Number of Handles"},
    {HciKind::kBytes, 0, "Handles and Packets"}};
const HciParameter kList86[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 2, "Timeout"}};
const HciParameter kList87[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 2, "Timeout"}};
const HciParameter kList88[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "Number"}, {HciKind::kBytes, 0, "IAC LAP"}};
const HciParameter kList89[] = {{HciKind::kNumber, 1, "Number"}, {HciKind::kBytes, 0, "IAC LAP"}};
const HciParameter kList90[] = {{HciKind::kBytes, 10, "Channel Classification"}};
const HciParameter kList91[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "Scan Type"}};
const HciParameter kList92[] = {{HciKind::kHex, 1, "Scan Type"}};
const HciParameter kList93[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "Inquiry Mode"}};
const HciParameter kList94[] = {{HciKind::kHex, 1, "Inquiry Mode"}};
const HciParameter kList95[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "Assessment Mode"}};
const HciParameter kList96[] = {{HciKind::kHex, 1, "Assessment Mode"}};
const HciParameter kList97[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "FEC Required"}, {HciKind::kBytes, 0, "Extended Inquiry Response"}};
const HciParameter kList98[] = {{HciKind::kHex, 1, "FEC Required"},
    {HciKind::kBytes, 0, "Extended Inquiry Response"}};
const HciParameter kList99[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "Simple Pairing Mode"}};
const HciParameter kList100[] = {{HciKind::kHex, 1, "Simple Pairing Mode"}};
const HciParameter kList101[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kBytes, 16, "Hash C"}, {HciKind::kBytes, 16, "Randomizer R"}};
const HciParameter kList102[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kSigned, 1, "Transmit Power Level"}};
const HciParameter kList103[] = {{HciKind::kSigned, 1, "Transmit Power Level"}};
const HciParameter kList104[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "Erroneous Data Reporting"}};
const HciParameter kList105[] = {{HciKind::kHex, 1, "Erroneous Data Reporting"}};
const HciParameter kList106[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Packet Type"}};
const HciParameter kList107[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kHex, 1, "Notification Type"}};
const HciParameter kList108[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Timeout"}};
const HciParameter kList109[] = {{HciKind::kNumber, 2, "Timeout"}};
const HciParameter kList110[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kBytes, 0, "Location"}};
const HciParameter kList111[] = {{HciKind::kBytes, 0, "Location"}};
const HciParameter kList112[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "Flow Control Mode"}};
const HciParameter kList113[] = {{HciKind::kHex, 1, "Flow Control Mode"}};
const HciParameter kList114[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kSigned, 1, "Level GFSK"},
    {HciKind::kSigned, 1, "Level DQPSK"}, {HciKind::kSigned, 1, "Level 8DPSK"}};
const HciParameter kList115[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 4, "Flush Timeout"}};
const HciParameter kList116[] = {{HciKind::kNumber, 2, "Logical Link Handle"},
    {HciKind::kNumber, 4, "Flush Timeout"}};
const HciParameter kList117[] = {{HciKind::kNumber, 1, "Physical Link Handle"},
    {HciKind::kHex, 1, "Short Range Mode"}};
const HciParameter kList118[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "LE Supported Host"}, {HciKind::kHex, 1, "Simultaneous LE Host"}};
const HciParameter kList119[] = {{HciKind::kHex, 1, "LE Supported Host"},
    {HciKind::kHex, 1, "Simultaneous LE Host"}};
const HciParameter kList120[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "Secure Connections Host Support"}};
const HciParameter kList121[] = {{HciKind::kHex, 1, "Secure Connections Host Support"}};
const HciParameter kList122[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kBytes, 16, "Hash C 192"}, {HciKind::kBytes, 16, "Randomizer R 192"},
    {HciKind::kBytes, 16, "Hash C 256"}, {HciKind::kBytes, 16, "Randomizer R 256"}};
const HciParameter kList123[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Extended Inquiry Length"}};
const HciParameter kList124[] = {{HciKind::kNumber, 2, "Extended Inquiry Length"}};
const HciParameter kList125[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "HCI Version"}, {HciKind::kHex, 2, "HCI Revision"}, {HciKind::kNumber, 1, "LMP Version"},
    {HciKind::kNumber, 2, "Company"}, {HciKind::kHex, 2, "LMP Subversion"}};
const HciParameter kList126[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kBytes, 64, "Supported Commands"}};
const HciParameter kList127[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 8, "LMP Features"}};
const HciParameter kList128[] = {{HciKind::kNumber, 1, "Page Number"}};
const HciParameter kList129[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "Page Number"}, {HciKind::kNumber, 1, "Maximum Page Number"},
    {HciKind::kHex, 8, "LMP Features"}};
const HciParameter kList130[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "ACL Data Packet Length"}, {HciKind::kNumber, 1, "Synchronous Data Packet Length"},
    {HciKind::kNumber, 2, "Number of ACL Data Packets"},
    {HciKind::kNumber, 2, "Number of Synchronous Data Packets"}};
const HciParameter kList131[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Maximum ACL Data Packet Length"}, {HciKind::kNumber, 2, "Data Block Length"},
    {HciKind::kNumber, 2, "Number of Data Blocks"}};
const HciParameter kList132[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kBytes, 0, "Codecs"}};
const HciParameter kList133[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "Pairing Options"}, {HciKind::kNumber, 1, "Maximum Encryption Key Size"}};
const HciParameter kList134[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 2, "Failed Contact Counter"}};
const HciParameter kList135[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 1, "Link Quality"}};
const HciParameter kList136[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kSigned, 1, "RSSI"}};
const HciParameter kList137[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "AFH Mode"},
    {HciKind::kBytes, 10, "AFH Channel Map"}};
const HciParameter kList138[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Which Clock"}};
const HciParameter kList139[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 4, "Clock"}, {HciKind::kNumber, 2, "Accuracy"}};
const HciParameter kList140[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 1, "Key Size"}};
const HciParameter kList141[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kBytes, 0, "AMP Information"}};
const HciParameter kList142[] = {{HciKind::kNumber, 1, "Physical Link Handle"},
    {HciKind::kNumber, 2, "Length So Far"}, {HciKind::kNumber, 2, "Maximum Remote Length"}};
const HciParameter kList143[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "Physical Link Handle"}, {HciKind::kBytes, 0, "Fragment"}};
const HciParameter kList144[] = {{HciKind::kNumber, 1, "Physical Link Handle"},
    {HciKind::kNumber, 2, "Length So Far"}, {HciKind::kNumber, 2, "Remaining Length"},
    {HciKind::kBytes, 0, "Fragment"}};
const HciParameter kList145[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "Physical Link Handle"}};
const HciParameter kList146[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "Loopback Mode"}};
const HciParameter kList147[] = {{HciKind::kHex, 1, "Loopback Mode"}};
const HciParameter kList148[] = {{HciKind::kHex, 1, "Debug Mode"}};
const HciParameter kList149[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "DM1 Mode"},
    {HciKind::kHex, 1, "eSCO Mode"}};
const HciParameter kList150[] = {{HciKind::kHex, 8, "LE Event Mask"}};
const HciParameter kList151[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "LE ACL Data Packet Length"}, {HciKind::kNumber, 1, "Number of LE ACL Data Packets"}};
const HciParameter kList152[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 8, "LE Features"}};
const HciParameter kList153[] = {{HciKind::kAddress, 6, "Random Address"}};
const HciParameter kList154[] = {{HciKind::kNumber, 2, "Minimum Interval"},
    {HciKind::kNumber, 2, "Maximum Interval"}, {HciKind::kHex, 1, "Advertising Type"},
    {HciKind::kHex, 1, "Own Address Type"}, {HciKind::kHex, 1, "Peer Address Type"},
    {HciKind::kAddress, 6, "Peer Address"}, {HciKind::kHex, 1, "Channel Map"}, {HciKind::kHex, 1, "Filter Policy"}};
const HciParameter kList155[] = {{HciKind::kNumber, 1, "Data Length"}, {HciKind::kBytes, 31, "Advertising Data"}};
const HciParameter kList156[] = {{HciKind::kNumber, 1, "Data Length"}, {HciKind::kBytes, 31, "Scan Response Data"}};
const HciParameter kList157[] = {{HciKind::kHex, 1, "Advertising Enable"}};
const HciParameter kList158[] = {{HciKind::kHex, 1, "Scan Type"}, {HciKind::kNumber, 2, "Interval"},
    {HciKind::kNumber, 2, "Window"}, {HciKind::kHex, 1, "Own Address Type"}, {HciKind::kHex, 1, "Filter Policy"}};
const HciParameter kList159[] = {{HciKind::kHex, 1, "Scan Enable"}, {HciKind::kHex, 1, "Filter Duplicates"}};
const HciParameter kList160[] = {{HciKind::kNumber, 2, "Scan Interval"}, {HciKind::kNumber, 2, "Scan Window"},
    {HciKind::kHex, 1, "Filter Policy"}, {HciKind::kHex, 1, "Peer Address Type"},
    {HciKind::kAddress, 6, "Peer Address"}, {HciKind::kHex, 1, "Own Address Type"},
    {HciKind::kNumber, 2, "Minimum Connection Interval"}, {HciKind::kNumber, 2, "Maximum Connection Interval"},
    {HciKind::kNumber, 2, "Connection Latency"}, {HciKind::kNumber, 2, "Supervision Timeout"},
    {HciKind::kNumber, 2, "Minimum CE Length"}, {HciKind::kNumber, 2, "Maximum CE Length"}};
const HciParameter kList161[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "List Size"}};
const HciParameter kList162[] = {{HciKind::kHex, 1, "Address Type"}, {HciKind::kAddress, 6, "Address"}};
const HciParameter kList163[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kNumber, 2, "Minimum Connection Interval"}, {HciKind::kNumber, 2, "Maximum Connection Interval"},
    {HciKind::kNumber, 2, "Connection Latency"}, {HciKind::kNumber, 2, "Supervision Timeout"},
    {HciKind::kNumber, 2, "Minimum CE Length"}, {HciKind::kNumber, 2, "Maximum CE Length"}};
const HciParameter kList164[] = {{HciKind::kHex, 5, "Channel Map"}};
const HciParameter kList165[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 5, "Channel Map"}};
const HciParameter kList166[] = {{HciKind::kBytes, 16, "Key"}, {HciKind::kBytes, 16, "Plaintext Data"}};
const HciParameter kList167[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kBytes, 16, "Encrypted Data"}};
const HciParameter kList168[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 8, "Random Number"}};
const HciParameter kList169[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 8, "Random Number"},
    {HciKind::kHex, 2, "Encrypted Diversifier"}, {HciKind::kBytes, 16, "Long Term Key"}};
const HciParameter kList170[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kBytes, 16, "Long Term Key"}};
const HciParameter kList171[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 8, "LE States"}};
const HciParameter kList172[] = {{HciKind::kNumber, 1, "Channel"}};
const HciParameter kList173[] = {{HciKind::kNumber, 1, "Channel"}, {HciKind::kNumber, 1, "Test Data Length"},
    {HciKind::kHex, 1, "Packet Payload"}};
const HciParameter kList174[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Number of Packets"}};
const HciParameter kList175[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kNumber, 2, "Transmit Octets"}, {HciKind::kNumber, 2, "Transmit Time"}};
const HciParameter kList176[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Transmit Octets"}, {HciKind::kNumber, 2, "Transmit Time"}};
const HciParameter kList177[] = {{HciKind::kNumber, 2, "Transmit Octets"}, {HciKind::kNumber, 2, "Transmit Time"}};
const HciParameter kList178[] = {{HciKind::kBytes, 64, "Remote P-256 Public Key"}};
const HciParameter kList179[] = {{HciKind::kHex, 1, "Peer Identity Address Type"},
    {HciKind::kAddress, 6, "Peer Identity Address"}, {HciKind::kBytes, 16, "Peer IRK"},
    {HciKind::kBytes, 16, "Local IRK"}};
const HciParameter kList180[] = {{HciKind::kHex, 1, "Peer Identity Address Type"},
    {HciKind::kAddress, 6, "Peer Identity Address"}};
const HciParameter kList181[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kAddress, 6, "Peer Resolvable Address"}};
const HciParameter kList182[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kAddress, 6, "Local Resolvable Address"}};
const HciParameter kList183[] = {{HciKind::kHex, 1, "Address Resolution Enable"}};
const HciParameter kList184[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Maximum Transmit Octets"}, {HciKind::kNumber, 2, "Maximum Transmit Time"},
    {HciKind::kNumber, 2, "Maximum Receive Octets"}, {HciKind::kNumber, 2, "Maximum Receive Time"}};
const HciParameter kList185[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Transmit PHY"},
    {HciKind::kHex, 1, "Receive PHY"}};
const HciParameter kList186[] = {{HciKind::kHex, 1, "All PHYs"}, {HciKind::kHex, 1, "Transmit PHYs"},
    {HciKind::kHex, 1, "Receive PHYs"}};
const HciParameter kList187[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "All PHYs"},
    {HciKind::kHex, 1, "Transmit PHYs"}, {HciKind::kHex, 1, "Receive PHYs"}, {HciKind::kHex, 2, "PHY Options"}};
const HciParameter kList188[] = {{HciKind::kNumber, 1, "Advertising Handle"},
    {HciKind::kAddress, 6, "Random Address"}};
const HciParameter kList189[] = {{HciKind::kNumber, 1, "Advertising Handle"},
    {HciKind::kHex, 2, "Event Properties"}, {HciKind::kNumber, 3, "Primary Minimum Interval"},
    {HciKind::kNumber, 3, "Primary Maximum Interval"}, {HciKind::kHex, 1, "Channel Map"},
    {HciKind::kHex, 1, "Own Address Type"}, {HciKind::kHex, 1, "Peer Address Type"},
    {HciKind::kAddress, 6, "Peer Address"}, {HciKind::kHex, 1, "Filter Policy"},
    {HciKind::kSigned, 1, "Transmit Power"}, {HciKind::kHex, 1, "Primary PHY"},
    {HciKind::kNumber, 1, "Secondary Maximum Skip"}, {HciKind::kHex, 1, "Secondary PHY"},
    {HciKind::kNumber, 1, "Advertising SID"}, {HciKind::kHex, 1, "Scan Request Notification"}};
const HciParameter kList190[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kSigned, 1, "Selected Transmit Power"}};
const HciParameter kList191[] = {{HciKind::kNumber, 1, "Advertising Handle"}, {HciKind::kHex, 1, "Operation"},
    {HciKind::kHex, 1, "Fragment Preference"}, {HciKind::kNumber, 1, "Data Length"},
    {HciKind::kBytes, 0, "Advertising Data"}};
const HciParameter kList192[] = {{HciKind::kNumber, 1, "Advertising Handle"}, {HciKind::kHex, 1, "Operation"},
    {HciKind::kHex, 1, "Fragment Preference"}, {HciKind::kNumber, 1, "Data Length"},
    {HciKind::kBytes, 0, "Scan Response Data"}};
const HciParameter kList193[] = {{HciKind::kHex, 1, "Advertising Enable"}, {HciKind::kNumber, 1, "Number of Sets"},
    {HciKind::kBytes, 0, "Sets"}};
const HciParameter kList194[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Maximum Advertising Data Length"}};
const HciParameter kList195[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "Number of Sets"}};
const HciParameter kList196[] = {{HciKind::kNumber, 1, "Advertising Handle"}};
const HciParameter kList197[] = {{HciKind::kNumber, 1, "Advertising Handle"},
    {HciKind::kNumber, 2, "Minimum Interval"}, {HciKind::kNumber, 2, "Maximum Interval"},
    {HciKind::kHex, 2, "Periodic Properties"}};
const HciParameter kList198[] = {{HciKind::kNumber, 1, "Advertising Handle"}, {HciKind::kHex, 1, "Operation"},
    {HciKind::kNumber, 1, "Data Length"}, {HciKind::kBytes, 0, "Advertising Data"}};
const HciParameter kList199[] = {{HciKind::kHex, 1, "Enable"}, {HciKind::kNumber, 1, "Advertising Handle"}};
const HciParameter kList200[] = {{HciKind::kHex, 1, "Own Address Type"}, {HciKind::kHex, 1, "Filter Policy"},
    {HciKind::kHex, 1, "Scanning PHYs"}, {HciKind::kBytes, 0, "Parameters of PHYs"}};
const HciParameter kList201[] = {{HciKind::kHex, 1, "Scan Enable"}, {HciKind::kHex, 1, "Filter Duplicates"},
    {HciKind::kNumber, 2, "Duration"}, {HciKind::kNumber, 2, "Period"}};
const HciParameter kList202[] = {{HciKind::kHex, 1, "Filter Policy"}, {HciKind::kHex, 1, "Own Address Type"},
    {HciKind::kHex, 1, "Peer Address Type"}, {HciKind::kAddress, 6, "Peer Address"},
    {HciKind::kHex, 1, "Initiating PHYs"}, {HciKind::kBytes, 0, "Parameters of PHYs"}};
const HciParameter kList203[] = {{HciKind::kHex, 1, "Options"}, {HciKind::kNumber, 1, "Advertising SID"},
    {HciKind::kHex, 1, "Advertiser Address Type"}, {HciKind::kAddress, 6, "Advertiser Address"},
    {HciKind::kNumber, 2, "Skip"}, {HciKind::kNumber, 2, "Sync Timeout"}, {HciKind::kHex, 1, "Sync CTE Type"}};
const HciParameter kList204[] = {{HciKind::kNumber, 2, "Sync Handle"}};
const HciParameter kList205[] = {{HciKind::kHex, 1, "Advertiser Address Type"},
    {HciKind::kAddress, 6, "Advertiser Address"}, {HciKind::kNumber, 1, "Advertising SID"}};
const HciParameter kList206[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kSigned, 1, "Minimum Transmit Power"}, {HciKind::kSigned, 1, "Maximum Transmit Power"}};
const HciParameter kList207[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kSigned, 2, "Transmit Path Compensation"}, {HciKind::kSigned, 2, "Receive Path Compensation"}};
const HciParameter kList208[] = {{HciKind::kSigned, 2, "Transmit Path Compensation"},
    {HciKind::kSigned, 2, "Receive Path Compensation"}};
const HciParameter kList209[] = {{HciKind::kHex, 1, "Peer Identity Address Type"},
    {HciKind::kAddress, 6, "Peer Identity Address"}, {HciKind::kHex, 1, "Privacy Mode"}};
const HciParameter kList210[] = {{HciKind::kNumber, 1, "Advertising Handle"}, {HciKind::kHex, 1, "Enable"}};
const HciParameter kList211[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Sync Handle"}};
const HciParameter kList212[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kBytes, 0, "Parameters"}};
const HciParameter kList213[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Enable"}};
const HciParameter kList214[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kBytes, 0, "Antenna Information"}};
const HciParameter kList215[] = {{HciKind::kNumber, 2, "Sync Handle"}, {HciKind::kHex, 1, "Enable"}};
const HciParameter kList216[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 2, "Service Data"},
    {HciKind::kNumber, 2, "Sync Handle"}};
const HciParameter kList217[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 2, "Service Data"},
    {HciKind::kNumber, 1, "Advertising Handle"}};
const HciParameter kList218[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Mode"},
    {HciKind::kNumber, 2, "Skip"}, {HciKind::kNumber, 2, "Sync Timeout"}, {HciKind::kHex, 1, "CTE Type"}};
const HciParameter kList219[] = {{HciKind::kHex, 1, "Mode"}, {HciKind::kNumber, 2, "Skip"},
    {HciKind::kNumber, 2, "Sync Timeout"}, {HciKind::kHex, 1, "CTE Type"}};
const HciParameter kList220[] = {{HciKind::kBytes, 64, "Remote P-256 Public Key"}, {HciKind::kHex, 1, "Key Type"}};
const HciParameter kList221[] = {{HciKind::kHex, 1, "Action"}};
const HciParameter kList222[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "LE ACL Data Packet Length"}, {HciKind::kNumber, 1, "Number of LE ACL Data Packets"},
    {HciKind::kNumber, 2, "ISO Data Packet Length"}, {HciKind::kNumber, 1, "Number of ISO Data Packets"}};
const HciParameter kList223[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 2, "Packet Sequence Number"},
    {HciKind::kNumber, 4, "Transmit Time Stamp"}, {HciKind::kNumber, 3, "Time Offset"}};
const HciParameter kList224[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kBytes, 0, "CIG"}};
const HciParameter kList225[] = {{HciKind::kNumber, 1, "CIG ID"}};
const HciParameter kList226[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "CIG ID"}};
const HciParameter kList227[] = {{HciKind::kNumber, 1, "BIG Handle"},
    {HciKind::kNumber, 1, "Reason", kStatusNames.rows, kStatusCount}};
const HciParameter kList228[] = {{HciKind::kNumber, 1, "BIG Handle"}};
const HciParameter kList229[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "BIG Handle"}};
const HciParameter kList230[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kHex, 1, "Data Path Direction"}, {HciKind::kHex, 1, "Data Path ID"}, {HciKind::kBytes, 5, "Codec ID"},
    {HciKind::kNumber, 3, "Controller Delay"}, {HciKind::kBytes, 0, "Codec Configuration"}};
const HciParameter kList231[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kHex, 1, "Data Path Direction"}};
const HciParameter kList232[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Payload Type"}};
const HciParameter kList233[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 4, "Received Count"},
    {HciKind::kNumber, 4, "Missed Count"}, {HciKind::kNumber, 4, "Failed Count"}};
const HciParameter kList234[] = {{HciKind::kNumber, 1, "Bit Number"}, {HciKind::kHex, 1, "Bit Value"}};
const HciParameter kList235[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kBytes, 0, "Link Quality"}};
const HciParameter kList236[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "PHY"}};
const HciParameter kList237[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "PHY"}, {HciKind::kSigned, 1, "Current Level"},
    {HciKind::kSigned, 1, "Maximum Level"}};
const HciParameter kList238[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kBytes, 0, "Thresholds"}};
const HciParameter kList239[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Local Enable"},
    {HciKind::kHex, 1, "Remote Enable"}};
const HciParameter kList240[] = {{HciKind::kNumber, 1, "Advertising Handle"}, {HciKind::kHex, 1, "Change Reasons"}};
const HciParameter kList241[] = {{HciKind::kNumber, 2, "Minimum Subrate"}, {HciKind::kNumber, 2, "Maximum Subrate"},
    {HciKind::kNumber, 2, "Maximum Latency"}, {HciKind::kNumber, 2, "Continuation Number"},
    {HciKind::kNumber, 2, "Supervision Timeout"}};
const HciParameter kList242[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kNumber, 2, "Minimum Subrate"}, {HciKind::kNumber, 2, "Maximum Subrate"},
    {HciKind::kNumber, 2, "Maximum Latency"}, {HciKind::kNumber, 2, "Continuation Number"},
    {HciKind::kNumber, 2, "Supervision Timeout"}};
const HciParameter kList243[] = {{HciKind::kNumber, 1, "Number of Responses"}, {HciKind::kBytes, 0, "Responses"}};
const HciParameter kList244[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kHex, 1, "Link Type"},
    {HciKind::kHex, 1, "Encryption Enabled"}};
const HciParameter kList245[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kHex, 3, "Class of Device"},
    {HciKind::kHex, 1, "Link Type"}};
const HciParameter kList246[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 1, "Reason", kStatusNames.rows, kStatusCount}};
const HciParameter kList247[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kText, 248, "Remote Name"}};
const HciParameter kList248[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Encryption Enabled"}};
const HciParameter kList249[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Key Flag"}};
const HciParameter kList250[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 8, "LMP Features"}};
const HciParameter kList251[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 1, "Version"}, {HciKind::kNumber, 2, "Company"},
    {HciKind::kHex, 2, "Subversion"}};
const HciParameter kList252[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Flags"}, {HciKind::kHex, 1, "Service Type"},
    {HciKind::kNumber, 4, "Token Rate"}, {HciKind::kNumber, 4, "Peak Bandwidth"}, {HciKind::kNumber, 4, "Latency"},
    {HciKind::kNumber, 4, "Delay Variation"}};
const HciParameter kList253[] = {{HciKind::kHex, 1, "Hardware Code"}};
const HciParameter kList254[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kHex, 1, "New Role"}};
const HciParameter kList255[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Current Mode"},
    {HciKind::kNumber, 2, "Interval"}};
const HciParameter kList256[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kBytes, 16, "Link Key"},
    {HciKind::kHex, 1, "Key Type"}};
const HciParameter kList257[] = {{HciKind::kBytes, 0, "Command"}};
const HciParameter kList258[] = {{HciKind::kHex, 1, "Link Type"}};
const HciParameter kList259[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kNumber, 1, "Maximum Slots"}};
const HciParameter kList260[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 2, "Clock Offset"}};
const HciParameter kList261[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 2, "Packet Type"}};
const HciParameter kList262[] = {{HciKind::kAddress, 6, "BD_ADDR"},
    {HciKind::kHex, 1, "Page Scan Repetition Mode"}};
const HciParameter kList263[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Flags"}, {HciKind::kHex, 1, "Flow Direction"},
    {HciKind::kHex, 1, "Service Type"}, {HciKind::kNumber, 4, "Token Rate"},
    {HciKind::kNumber, 4, "Token Bucket Size"}, {HciKind::kNumber, 4, "Peak Bandwidth"},
    {HciKind::kNumber, 4, "Access Latency"}};
const HciParameter kList264[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 1, "Page Number"},
    {HciKind::kNumber, 1, "Maximum Page Number"}, {HciKind::kHex, 8, "LMP Features"}};
const HciParameter kList265[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kHex, 1, "Link Type"},
    {HciKind::kNumber, 1, "Transmission Interval"}, {HciKind::kNumber, 1, "Retransmission Window"},
    {HciKind::kNumber, 2, "Receive Packet Length"}, {HciKind::kNumber, 2, "Transmit Packet Length"},
    {HciKind::kHex, 1, "Air Mode"}};
const HciParameter kList266[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 1, "Transmission Interval"},
    {HciKind::kNumber, 1, "Retransmission Window"}, {HciKind::kNumber, 2, "Receive Packet Length"},
    {HciKind::kNumber, 2, "Transmit Packet Length"}};
const HciParameter kList267[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 2, "Maximum Transmit Latency"},
    {HciKind::kNumber, 2, "Maximum Receive Latency"}, {HciKind::kNumber, 2, "Minimum Remote Timeout"},
    {HciKind::kNumber, 2, "Minimum Local Timeout"}};
const HciParameter kList268[] = {{HciKind::kNumber, 1, "Number of Responses"}, {HciKind::kAddress, 6, "BD_ADDR"},
    {HciKind::kHex, 1, "Page Scan Repetition Mode"}, {HciKind::kHex, 1, "Reserved"},
    {HciKind::kHex, 3, "Class of Device"}, {HciKind::kHex, 2, "Clock Offset"}, {HciKind::kSigned, 1, "RSSI"},
    {HciKind::kBytes, 0, "Extended Inquiry Response"}};
const HciParameter kList269[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kNumber, 4, "Passkey"}};
const HciParameter kList270[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kHex, 8, "Host Features"}};
const HciParameter kList271[] = {{HciKind::kNumber, 1, "Physical Link Handle"}};
const HciParameter kList272[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "Physical Link Handle"},
    {HciKind::kNumber, 1, "Reason", kStatusNames.rows, kStatusCount}};
const HciParameter kList273[] = {{HciKind::kNumber, 1, "Physical Link Handle"},
    {HciKind::kHex, 1, "Link Loss Reason"}};
const HciParameter kList274[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Logical Link Handle"}, {HciKind::kNumber, 1, "Physical Link Handle"},
    {HciKind::kNumber, 1, "Transmit Flow ID"}};
const HciParameter kList275[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Logical Link Handle"}, {HciKind::kNumber, 1, "Reason", kStatusNames.rows, kStatusCount}};
const HciParameter kList276[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Logical Link Handle"}};
const HciParameter kList277[] = {{HciKind::kBytes, 0, "Blocks"}};
const HciParameter kList278[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "Physical Link Handle"}, {HciKind::kHex, 1, "Short Range Mode"}};
const HciParameter kList279[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "AMP Status"}};
const HciParameter kList280[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Which Clock"},
    {HciKind::kNumber, 4, "Clock"}, {HciKind::kNumber, 2, "Slot Offset"}};
const HciParameter kList281[] = {{HciKind::kAddress, 6, "BD_ADDR"}, {HciKind::kNumber, 1, "LT_ADDR"}};
const HciParameter kList282[] = {{HciKind::kBytes, 10, "Channel Map"}};
const HciParameter kList283[] = {{HciKind::kHex, 3, "LAP"}, {HciKind::kSigned, 1, "RSSI"}};
const HciParameter kList284[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kBytes, 0, "Status Fields"}};
const HciParameter kList285[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Encryption Enabled"},
    {HciKind::kNumber, 1, "Key Size"}};
const HciParameter kList286[] = {{HciKind::kBytes, 0, "Vendor Data"}};
const HciParameter kList287[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Role"}, {HciKind::kHex, 1, "Peer Address Type"},
    {HciKind::kAddress, 6, "Peer Address"}, {HciKind::kNumber, 2, "Connection Interval"},
    {HciKind::kNumber, 2, "Connection Latency"}, {HciKind::kNumber, 2, "Supervision Timeout"},
    {HciKind::kHex, 1, "Clock Accuracy"}};
const HciParameter kList288[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 2, "Connection Interval"},
    {HciKind::kNumber, 2, "Connection Latency"}, {HciKind::kNumber, 2, "Supervision Timeout"}};
const HciParameter kList289[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 8, "LE Features"}};
const HciParameter kList290[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 8, "Random Number"},
    {HciKind::kHex, 2, "Encrypted Diversifier"}};
const HciParameter kList291[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kNumber, 2, "Minimum Interval"}, {HciKind::kNumber, 2, "Maximum Interval"},
    {HciKind::kNumber, 2, "Connection Latency"}, {HciKind::kNumber, 2, "Supervision Timeout"}};
const HciParameter kList292[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kNumber, 2, "Maximum Transmit Octets"}, {HciKind::kNumber, 2, "Maximum Transmit Time"},
    {HciKind::kNumber, 2, "Maximum Receive Octets"}, {HciKind::kNumber, 2, "Maximum Receive Time"}};
const HciParameter kList293[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kBytes, 64, "Local P-256 Public Key"}};
const HciParameter kList294[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kBytes, 32, "DH Key"}};
const HciParameter kList295[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Role"}, {HciKind::kHex, 1, "Peer Address Type"},
    {HciKind::kAddress, 6, "Peer Address"}, {HciKind::kAddress, 6, "Local Resolvable Address"},
    {HciKind::kAddress, 6, "Peer Resolvable Address"}, {HciKind::kNumber, 2, "Connection Interval"},
    {HciKind::kNumber, 2, "Connection Latency"}, {HciKind::kNumber, 2, "Supervision Timeout"},
    {HciKind::kHex, 1, "Clock Accuracy"}};
const HciParameter kList296[] = {{HciKind::kNumber, 1, "Number of Reports"}, {HciKind::kBytes, 0, "Reports"}};
const HciParameter kList297[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 2, "Sync Handle"}, {HciKind::kNumber, 1, "Advertising SID"},
    {HciKind::kHex, 1, "Advertiser Address Type"}, {HciKind::kAddress, 6, "Advertiser Address"},
    {HciKind::kHex, 1, "Advertiser PHY"}, {HciKind::kNumber, 2, "Periodic Interval"},
    {HciKind::kHex, 1, "Clock Accuracy"}};
const HciParameter kList298[] = {{HciKind::kNumber, 2, "Sync Handle"}, {HciKind::kSigned, 1, "Transmit Power"},
    {HciKind::kSigned, 1, "RSSI"}, {HciKind::kHex, 1, "CTE Type"}, {HciKind::kHex, 1, "Data Status"},
    {HciKind::kNumber, 1, "Data Length"}, {HciKind::kBytes, 0, "Advertising Data"}};
const HciParameter kList299[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "Advertising Handle"}, {HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kNumber, 1, "Completed Events"}};
const HciParameter kList300[] = {{HciKind::kNumber, 1, "Advertising Handle"},
    {HciKind::kHex, 1, "Scanner Address Type"}, {HciKind::kAddress, 6, "Scanner Address"}};
const HciParameter kList301[] = {{HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Algorithm"}};
const HciParameter kList302[] = {{HciKind::kBytes, 0, "Report"}};
const HciParameter kList303[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 2, "Service Data"},
    {HciKind::kNumber, 2, "Sync Handle"}, {HciKind::kNumber, 1, "Advertising SID"},
    {HciKind::kHex, 1, "Advertiser Address Type"}, {HciKind::kAddress, 6, "Advertiser Address"},
    {HciKind::kHex, 1, "Advertiser PHY"}, {HciKind::kNumber, 2, "Periodic Interval"},
    {HciKind::kHex, 1, "Clock Accuracy"}};
const HciParameter kList304[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 3, "CIG Sync Delay"},
    {HciKind::kNumber, 3, "CIS Sync Delay"}, {HciKind::kBytes, 0, "CIS"}};
const HciParameter kList305[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kHandle, 2, "CIS Connection Handle"}, {HciKind::kNumber, 1, "CIG ID"},
    {HciKind::kNumber, 1, "CIS ID"}};
const HciParameter kList306[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kNumber, 1, "BIG Handle"}, {HciKind::kBytes, 0, "BIG"}};
const HciParameter kList307[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kHex, 1, "Peer Clock Accuracy"}};
const HciParameter kList308[] = {{HciKind::kHandle, 2, "Connection Handle"},
    {HciKind::kNumber, 1, "Current Path Loss"}, {HciKind::kHex, 1, "Zone Entered"}};
const HciParameter kList309[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 1, "Reason", kStatusNames.rows, kStatusCount},
    {HciKind::kHex, 1, "PHY"}, {HciKind::kSigned, 1, "Transmit Power Level"}, {HciKind::kHex, 1, "Level Flags"},
    {HciKind::kSigned, 1, "Delta"}};
const HciParameter kList310[] = {{HciKind::kNumber, 2, "Sync Handle"}, {HciKind::kBytes, 0, "BIG Information"}};
const HciParameter kList311[] = {{HciKind::kNumber, 1, "Status", kStatusNames.rows, kStatusCount},
    {HciKind::kHandle, 2, "Connection Handle"}, {HciKind::kNumber, 2, "Subrate Factor"},
    {HciKind::kNumber, 2, "Connection Latency"}, {HciKind::kNumber, 2, "Continuation Number"},
    {HciKind::kNumber, 2, "Supervision Timeout"}};

const HciCommand kCommands[] = {
    {0x0401, "Inquiry", ParametersOf(kList1), {}},
    {0x0402, "Inquiry Cancel", {}, ParametersOf(kList2)},
    {0x0403, "Periodic Inquiry Mode", ParametersOf(kList3), ParametersOf(kList2)},
    {0x0404, "Exit Periodic Inquiry Mode", {}, ParametersOf(kList2)},
    {0x0405, "Create Connection", ParametersOf(kList4), {}},
    {0x0406, "Disconnect", ParametersOf(kList5), {}},
    {0x0408, "Create Connection Cancel", ParametersOf(kList6), ParametersOf(kList7)},
    {0x0409, "Accept Connection Request", ParametersOf(kList8), {}},
    {0x040A, "Reject Connection Request", ParametersOf(kList9), {}},
    {0x040B, "Link Key Request Reply", ParametersOf(kList10), ParametersOf(kList7)},
    {0x040C, "Link Key Request Negative Reply", ParametersOf(kList6), ParametersOf(kList7)},
    {0x040D, "PIN Code Request Reply", ParametersOf(kList11), ParametersOf(kList7)},
    {0x040E, "PIN Code Request Negative Reply", ParametersOf(kList6), ParametersOf(kList7)},
    {0x040F, "Change Connection Packet Type", ParametersOf(kList12), {}},
    {0x0411, "Authentication Requested", ParametersOf(kList13), {}},
    {0x0413, "Set Connection Encryption", ParametersOf(kList14), {}},
    {0x0415, "Change Connection Link Key", ParametersOf(kList13), {}},
    {0x0417, "Link Key Selection", ParametersOf(kList15), {}},
    {0x0419, "Remote Name Request", ParametersOf(kList16), {}},
    {0x041A, "Remote Name Request Cancel", ParametersOf(kList6), ParametersOf(kList7)},
    {0x041B, "Read Remote Supported Features", ParametersOf(kList13), {}},
    {0x041C, "Read Remote Extended Features", ParametersOf(kList17), {}},
    {0x041D, "Read Remote Version Information", ParametersOf(kList13), {}},
    {0x041F, "Read Clock Offset", ParametersOf(kList13), {}},
    {0x0420, "Read LMP Handle", ParametersOf(kList13), ParametersOf(kList18)},
    {0x0428, "Setup Synchronous Connection", ParametersOf(kList19), {}},
    {0x0429, "Accept Synchronous Connection Request", ParametersOf(kList20), {}},
    {0x042A, "Reject Synchronous Connection Request", ParametersOf(kList9), {}},
    {0x042B, "IO Capability Request Reply", ParametersOf(kList21), ParametersOf(kList7)},
    {0x042C, "User Confirmation Request Reply", ParametersOf(kList6), ParametersOf(kList7)},
    {0x042D, "User Confirmation Request Negative Reply", ParametersOf(kList6), ParametersOf(kList7)},
    {0x042E, "User Passkey Request Reply", ParametersOf(kList22), ParametersOf(kList7)},
    {0x042F, "User Passkey Request Negative Reply", ParametersOf(kList6), ParametersOf(kList7)},
    {0x0430, "Remote OOB Data Request Reply", ParametersOf(kList23), ParametersOf(kList7)},
    {0x0433, "Remote OOB Data Request Negative Reply", ParametersOf(kList6), ParametersOf(kList7)},
    {0x0434, "IO Capability Request Negative Reply", ParametersOf(kList9), ParametersOf(kList7)},
    {0x0435, "Create Physical Link", ParametersOf(kList24), {}},
    {0x0436, "Accept Physical Link", ParametersOf(kList24), {}},
    {0x0437, "Disconnect Physical Link", ParametersOf(kList25), {}},
    {0x0438, "Create Logical Link", ParametersOf(kList26), {}},
    {0x0439, "Accept Logical Link", ParametersOf(kList26), {}},
    {0x043A, "Disconnect Logical Link", ParametersOf(kList27), {}},
    {0x043B, "Logical Link Cancel", ParametersOf(kList28), ParametersOf(kList29)},
    {0x043C, "Flow Specification Modify", ParametersOf(kList30), {}},
    {0x043D, "Enhanced Setup Synchronous Connection", ParametersOf(kList31), {}},
    {0x043E, "Enhanced Accept Synchronous Connection Request", ParametersOf(kList32), {}},
    {0x043F, "Truncated Page", ParametersOf(kList33), {}},
    {0x0440, "Truncated Page Cancel", ParametersOf(kList6), ParametersOf(kList7)},
    {0x0441, "Set Connectionless Peripheral Broadcast", ParametersOf(kList34), ParametersOf(kList2)},
    {0x0442, "Set Connectionless Peripheral Broadcast Receive", ParametersOf(kList34), ParametersOf(kList2)},
    {0x0443, "Start Synchronization Train", {}, {}},
    {0x0444, "Receive Synchronization Train", ParametersOf(kList35), {}},
    {0x0445, "Remote OOB Extended Data Request Reply", ParametersOf(kList36), ParametersOf(kList7)},
    {0x0801, "Hold Mode", ParametersOf(kList37), {}},
    {0x0803, "Sniff Mode", ParametersOf(kList38), {}},
    {0x0804, "Exit Sniff Mode", ParametersOf(kList13), {}},
    {0x0805, "Park State", ParametersOf(kList37), {}},
    {0x0806, "Exit Park State", ParametersOf(kList13), {}},
    {0x0807, "QoS Setup", ParametersOf(kList39), {}},
    {0x0809, "Role Discovery", ParametersOf(kList13), ParametersOf(kList40)},
    {0x080B, "Switch Role", ParametersOf(kList8), {}},
    {0x080C, "Read Link Policy Settings", ParametersOf(kList13), ParametersOf(kList41)},
    {0x080D, "Write Link Policy Settings", ParametersOf(kList42), ParametersOf(kList43)},
    {0x080E, "Read Default Link Policy Settings", {}, ParametersOf(kList44)},
    {0x080F, "Write Default Link Policy Settings", ParametersOf(kList45), ParametersOf(kList2)},
    {0x0810, "Flow Specification", ParametersOf(kList46), {}},
    {0x0811, "Sniff Subrating", ParametersOf(kList47), ParametersOf(kList43)},
    {0x0C01, "Set Event Mask", ParametersOf(kList48), ParametersOf(kList2)},
    {0x0C03, "Reset", {}, ParametersOf(kList2)},
    {0x0C05, "Set Event Filter", ParametersOf(kList49), ParametersOf(kList2)},
    {0x0C08, "Flush", ParametersOf(kList13), ParametersOf(kList43)},
    {0x0C09, "Read PIN Type", {}, ParametersOf(kList50)},
    {0x0C0A, "Write PIN Type", ParametersOf(kList51), ParametersOf(kList2)},
    {0x0C0D, "Read Stored Link Key", ParametersOf(kList52), ParametersOf(kList53)},
    {0x0C11, "Write Stored Link Key", ParametersOf(kList54), ParametersOf(kList55)},
    {0x0C12, "Delete Stored Link Key", ParametersOf(kList56), ParametersOf(kList57)},
    {0x0C13, "Write Local Name", ParametersOf(kList58), ParametersOf(kList2)},
    {0x0C14, "Read Local Name", {}, ParametersOf(kList59)},
    {0x0C15, "Read Connection Accept Timeout", {}, ParametersOf(kList60)},
    {0x0C16, "Write Connection Accept Timeout", ParametersOf(kList61), ParametersOf(kList2)},
    {0x0C17, "Read Page Timeout", {}, ParametersOf(kList62)},
    {0x0C18, "Write Page Timeout", ParametersOf(kList63), ParametersOf(kList2)},
    {0x0C19, "Read Scan Enable", {}, ParametersOf(kList64)},
    {0x0C1A, "Write Scan Enable", ParametersOf(kList65), ParametersOf(kList2)},
    {0x0C1B, "Read Page Scan Activity", {}, ParametersOf(kList66)},
    {0x0C1C, "Write Page Scan Activity", ParametersOf(kList67), ParametersOf(kList2)},
    {0x0C1D, "Read Inquiry Scan Activity", {}, ParametersOf(kList66)},
    {0x0C1E, "Write Inquiry Scan Activity", ParametersOf(kList67), ParametersOf(kList2)},
    {0x0C1F, "Read Authentication Enable", {}, ParametersOf(kList68)},
    {0x0C20, "Write Authentication Enable", ParametersOf(kList69), ParametersOf(kList2)},
    {0x0C23, "Read Class of Device", {}, ParametersOf(kList70)},
    {0x0C24, "Write Class of Device", ParametersOf(kList71), ParametersOf(kList2)},
    {0x0C25, "Read Voice Setting", {}, ParametersOf(kList72)},
    {0x0C26, "Write Voice Setting", ParametersOf(kList73), ParametersOf(kList2)},
    {0x0C27, "Read Automatic Flush Timeout", ParametersOf(kList13), ParametersOf(kList74)},
    {0x0C28, "Write Automatic Flush Timeout", ParametersOf(kList75), ParametersOf(kList43)},
    {0x0C29, "Read Number of Broadcast Retransmissions", {}, ParametersOf(kList76)},
    {0x0C2A, "Write Number of Broadcast Retransmissions", ParametersOf(kList77), ParametersOf(kList2)},
    {0x0C2B, "Read Hold Mode Activity", {}, ParametersOf(kList78)},
    {0x0C2C, "Write Hold Mode Activity", ParametersOf(kList79), ParametersOf(kList2)},
    {0x0C2D, "Read Transmit Power Level", ParametersOf(kList80), ParametersOf(kList81)},
    {0x0C2E, "Read Synchronous Flow Control Enable", {}, ParametersOf(kList82)},
    {0x0C2F, "Write Synchronous Flow Control Enable", ParametersOf(kList83), ParametersOf(kList2)},
    {0x0C31, "Set Controller to Host Flow Control", ParametersOf(kList83), ParametersOf(kList2)},
    {0x0C33, "Host Buffer Size", ParametersOf(kList84), ParametersOf(kList2)},
    {0x0C35, "Host Number of Completed Packets", ParametersOf(kList85), {}},
    {0x0C36, "Read Link Supervision Timeout", ParametersOf(kList13), ParametersOf(kList86)},
    {0x0C37, "Write Link Supervision Timeout", ParametersOf(kList87), ParametersOf(kList43)},
    {0x0C38, "Read Number of Supported IAC", {}, ParametersOf(kList76)},
    {0x0C39, "Read Current IAC LAP", {}, ParametersOf(kList88)},
    {0x0C3A, "Write Current IAC LAP", ParametersOf(kList89), ParametersOf(kList2)},
    {0x0C3F, "Set AFH Host Channel Classification", ParametersOf(kList90), ParametersOf(kList2)},
    {0x0C42, "Read Inquiry Scan Type", {}, ParametersOf(kList91)},
    {0x0C43, "Write Inquiry Scan Type", ParametersOf(kList92), ParametersOf(kList2)},
    {0x0C44, "Read Inquiry Mode", {}, ParametersOf(kList93)},
    {0x0C45, "Write Inquiry Mode", ParametersOf(kList94), ParametersOf(kList2)},
    {0x0C46, "Read Page Scan Type", {}, ParametersOf(kList91)},
    {0x0C47, "Write Page Scan Type", ParametersOf(kList92), ParametersOf(kList2)},
    {0x0C48, "Read AFH Channel Assessment Mode", {}, ParametersOf(kList95)},
    {0x0C49, "Write AFH Channel Assessment Mode", ParametersOf(kList96), ParametersOf(kList2)},
    {0x0C51, "Read Extended Inquiry Response", {}, ParametersOf(kList97)},
    {0x0C52, "Write Extended Inquiry Response", ParametersOf(kList98), ParametersOf(kList2)},
    {0x0C53, "Refresh Encryption Key", ParametersOf(kList13), {}},
    {0x0C55, "Read Simple Pairing Mode", {}, ParametersOf(kList99)},
    {0x0C56, "Write Simple Pairing Mode", ParametersOf(kList100), ParametersOf(kList2)},
    {0x0C57, "Read Local OOB Data", {}, ParametersOf(kList101)},
    {0x0C58, "Read Inquiry Response Transmit Power Level", {}, ParametersOf(kList102)},
    {0x0C59, "Write Inquiry Transmit Power Level", ParametersOf(kList103), ParametersOf(kList2)},
    {0x0C5A, "Read Default Erroneous Data Reporting", {}, ParametersOf(kList104)},
    {0x0C5B, "Write Default Erroneous Data Reporting", ParametersOf(kList105), ParametersOf(kList2)},
    {0x0C5F, "Enhanced Flush", ParametersOf(kList106), {}},
    {0x0C60, "Send Keypress Notification", ParametersOf(kList107), ParametersOf(kList7)},
    {0x0C61, "Read Logical Link Accept Timeout", {}, ParametersOf(kList108)},
    {0x0C62, "Write Logical Link Accept Timeout", ParametersOf(kList109), ParametersOf(kList2)},
    {0x0C63, "Set Event Mask Page 2", ParametersOf(kList48), ParametersOf(kList2)},
    {0x0C64, "Read Location Data", {}, ParametersOf(kList110)},
    {0x0C65, "Write Location Data", ParametersOf(kList111), ParametersOf(kList2)},
    {0x0C66, "Read Flow Control Mode", {}, ParametersOf(kList112)},
    {0x0C67, "Write Flow Control Mode", ParametersOf(kList113), ParametersOf(kList2)},
    {0x0C68, "Read Enhanced Transmit Power Level", ParametersOf(kList80), ParametersOf(kList114)},
    {0x0C69, "Read Best Effort Flush Timeout", ParametersOf(kList27), ParametersOf(kList115)},
    {0x0C6A, "Write Best Effort Flush Timeout", ParametersOf(kList116), ParametersOf(kList2)},
    {0x0C6B, "Short Range Mode", ParametersOf(kList117), {}},
    {0x0C6C, "Read LE Host Supported", {}, ParametersOf(kList118)},
    {0x0C6D, "Write LE Host Supported", ParametersOf(kList119), ParametersOf(kList2)},
    {0x0C79, "Read Secure Connections Host Support", {}, ParametersOf(kList120)},
    {0x0C7A, "Write Secure Connections Host Support", ParametersOf(kList121), ParametersOf(kList2)},
    {0x0C7B, "Read Authenticated Payload Timeout", ParametersOf(kList13), ParametersOf(kList86)},
    {0x0C7C, "Write Authenticated Payload Timeout", ParametersOf(kList87), ParametersOf(kList43)},
    {0x0C7D, "Read Local OOB Extended Data", {}, ParametersOf(kList122)},
    {0x0C7E, "Read Extended Page Timeout", {}, ParametersOf(kList62)},
    {0x0C7F, "Write Extended Page Timeout", ParametersOf(kList63), ParametersOf(kList2)},
    {0x0C80, "Read Extended Inquiry Length", {}, ParametersOf(kList123)},
    {0x0C81, "Write Extended Inquiry Length", ParametersOf(kList124), ParametersOf(kList2)},
    {0x0C83, "Configure Data Path", ParametersOf(kList34), ParametersOf(kList2)},
    {0x1001, "Read Local Version Information", {}, ParametersOf(kList125)},
    {0x1002, "Read Local Supported Commands", {}, ParametersOf(kList126)},
    {0x1003, "Read Local Supported Features", {}, ParametersOf(kList127)},
    {0x1004, "Read Local Extended Features", ParametersOf(kList128), ParametersOf(kList129)},
    {0x1005, "Read Buffer Size", {}, ParametersOf(kList130)},
    {0x1009, "Read BD_ADDR", {}, ParametersOf(kList7)},
    {0x100A, "Read Data Block Size", {}, ParametersOf(kList131)},
    {0x100B, "Read Local Supported Codecs", {}, ParametersOf(kList132)},
    {0x100C, "Read Local Simple Pairing Options", {}, ParametersOf(kList133)},
    {0x1401, "Read Failed Contact Counter", ParametersOf(kList13), ParametersOf(kList134)},
    {0x1402, "Reset Failed Contact Counter", ParametersOf(kList13), ParametersOf(kList43)},
    {0x1403, "Read Link Quality", ParametersOf(kList13), ParametersOf(kList135)},
    {0x1405, "Read RSSI", ParametersOf(kList13), ParametersOf(kList136)},
    {0x1406, "Read AFH Channel Map", ParametersOf(kList13), ParametersOf(kList137)},
    {0x1407, "Read Clock", ParametersOf(kList138), ParametersOf(kList139)},
    {0x1408, "Read Encryption Key Size", ParametersOf(kList13), ParametersOf(kList140)},
    {0x1409, "Read Local AMP Info", {}, ParametersOf(kList141)},
    {0x140A, "Read Local AMP ASSOC", ParametersOf(kList142), ParametersOf(kList143)},
    {0x140B, "Write Remote AMP ASSOC", ParametersOf(kList144), ParametersOf(kList145)},
    {0x1801, "Read Loopback Mode", {}, ParametersOf(kList146)},
    {0x1802, "Write Loopback Mode", ParametersOf(kList147), ParametersOf(kList2)},
    {0x1803, "Enable Device Under Test Mode", {}, ParametersOf(kList2)},
    {0x1804, "Write Simple Pairing Debug Mode", ParametersOf(kList148), ParametersOf(kList2)},
    {0x180A, "Write Secure Connections Test Mode", ParametersOf(kList149), ParametersOf(kList43)},
    {0x2001, "LE Set Event Mask", ParametersOf(kList150), ParametersOf(kList2)},
    {0x2002, "LE Read Buffer Size", {}, ParametersOf(kList151)},
    {0x2003, "LE Read Local Supported Features", {}, ParametersOf(kList152)},
    {0x2005, "LE Set Random Address", ParametersOf(kList153), ParametersOf(kList2)},
    {0x2006, "LE Set Advertising Parameters", ParametersOf(kList154), ParametersOf(kList2)},
    {0x2007, "LE Read Advertising Physical Channel Transmit Power", {}, ParametersOf(kList102)},
    {0x2008, "LE Set Advertising Data", ParametersOf(kList155), ParametersOf(kList2)},
    {0x2009, "LE Set Scan Response Data", ParametersOf(kList156), ParametersOf(kList2)},
    {0x200A, "LE Set Advertising Enable", ParametersOf(kList157), ParametersOf(kList2)},
    {0x200B, "LE Set Scan Parameters", ParametersOf(kList158), ParametersOf(kList2)},
    {0x200C, "LE Set Scan Enable", ParametersOf(kList159), ParametersOf(kList2)},
    {0x200D, "LE Create Connection", ParametersOf(kList160), {}},
    {0x200E, "LE Create Connection Cancel", {}, ParametersOf(kList2)},
    {0x200F, "LE Read Filter Accept List Size", {}, ParametersOf(kList161)},
    {0x2010, "LE Clear Filter Accept List", {}, ParametersOf(kList2)},
    {0x2011, "LE Add Device to Filter Accept List", ParametersOf(kList162), ParametersOf(kList2)},
    {0x2012, "LE Remove Device from Filter Accept List", ParametersOf(kList162), ParametersOf(kList2)},
    {0x2013, "LE Connection Update", ParametersOf(kList163), {}},
    {0x2014, "LE Set Host Channel Classification", ParametersOf(kList164), ParametersOf(kList2)},
    {0x2015, "LE Read Channel Map", ParametersOf(kList13), ParametersOf(kList165)},
    {0x2016, "LE Read Remote Features", ParametersOf(kList13), {}},
    {0x2017, "LE Encrypt", ParametersOf(kList166), ParametersOf(kList167)},
    {0x2018, "LE Rand", {}, ParametersOf(kList168)},
    {0x2019, "LE Enable Encryption", ParametersOf(kList169), {}},
    {0x201A, "LE Long Term Key Request Reply", ParametersOf(kList170), ParametersOf(kList43)},
    {0x201B, "LE Long Term Key Request Negative Reply", ParametersOf(kList13), ParametersOf(kList43)},
    {0x201C, "LE Read Supported States", {}, ParametersOf(kList171)},
    {0x201D, "LE Receiver Test", ParametersOf(kList172), ParametersOf(kList2)},
    {0x201E, "LE Transmitter Test", ParametersOf(kList173), ParametersOf(kList2)},
    {0x201F, "LE Test End", {}, ParametersOf(kList174)},
    {0x2020, "LE Remote Connection Parameter Request Reply", ParametersOf(kList163), ParametersOf(kList43)},
    {0x2021, "LE Remote Connection Parameter Request Negative Reply", ParametersOf(kList5), ParametersOf(kList43)},
    {0x2022, "LE Set Data Length", ParametersOf(kList175), ParametersOf(kList43)},
    {0x2023, "LE Read Suggested Default Data Length", {}, ParametersOf(kList176)},
    {0x2024, "LE Write Suggested Default Data Length", ParametersOf(kList177), ParametersOf(kList2)},
    {0x2025, "LE Read Local P-256 Public Key", {}, {}},
    {0x2026, "LE Generate DHKey", ParametersOf(kList178), {}},
    {0x2027, "LE Add Device to Resolving List", ParametersOf(kList179), ParametersOf(kList2)},
    {0x2028, "LE Remove Device from Resolving List", ParametersOf(kList180), ParametersOf(kList2)},
    {0x2029, "LE Clear Resolving List", {}, ParametersOf(kList2)},
    {0x202A, "LE Read Resolving List Size", {}, ParametersOf(kList161)},
    {0x202B, "LE Read Peer Resolvable Address", ParametersOf(kList180), ParametersOf(kList181)},
    {0x202C, "LE Read Local Resolvable Address", ParametersOf(kList180), ParametersOf(kList182)},
    {0x202D, "LE Set Address Resolution Enable", ParametersOf(kList183), ParametersOf(kList2)},
    {0x202E, "LE Set Resolvable Private Address Timeout", ParametersOf(kList109), ParametersOf(kList2)},
    {0x202F, "LE Read Maximum Data Length", {}, ParametersOf(kList184)},
    {0x2030, "LE Read PHY", ParametersOf(kList13), ParametersOf(kList185)},
    {0x2031, "LE Set Default PHY", ParametersOf(kList186), ParametersOf(kList2)},
    {0x2032, "LE Set PHY", ParametersOf(kList187), {}},
    {0x2035, "LE Set Advertising Set Random Address", ParametersOf(kList188), ParametersOf(kList2)},
    {0x2036, "LE Set Extended Advertising Parameters", ParametersOf(kList189), ParametersOf(kList190)},
    {0x2037, "LE Set Extended Advertising Data", ParametersOf(kList191), ParametersOf(kList2)},
    {0x2038, "LE Set Extended Scan Response Data", ParametersOf(kList192), ParametersOf(kList2)},
    {0x2039, "LE Set Extended Advertising Enable", ParametersOf(kList193), ParametersOf(kList2)},
    {0x203A, "LE Read Maximum Advertising Data Length", {}, ParametersOf(kList194)},
    {0x203B, "LE Read Number of Supported Advertising Sets", {}, ParametersOf(kList195)},
    {0x203C, "LE Remove Advertising Set", ParametersOf(kList196), ParametersOf(kList2)},
    {0x203D, "LE Clear Advertising Sets", {}, ParametersOf(kList2)},
    {0x203E, "LE Set Periodic Advertising Parameters", ParametersOf(kList197), ParametersOf(kList2)},
    {0x203F, "LE Set Periodic Advertising Data", ParametersOf(kList198), ParametersOf(kList2)},
    {0x2040, "LE Set Periodic Advertising Enable", ParametersOf(kList199), ParametersOf(kList2)},
    {0x2041, "LE Set Extended Scan Parameters", ParametersOf(kList200), ParametersOf(kList2)},
    {0x2042, "LE Set Extended Scan Enable", ParametersOf(kList201), ParametersOf(kList2)},
    {0x2043, "LE Extended Create Connection", ParametersOf(kList202), {}},
    {0x2044, "LE Periodic Advertising Create Sync", ParametersOf(kList203), {}},
    {0x2045, "LE Periodic Advertising Create Sync Cancel", {}, ParametersOf(kList2)},
    {0x2046, "LE Periodic Advertising Terminate Sync", ParametersOf(kList204), ParametersOf(kList2)},
    {0x2047, "LE Add Device to Periodic Advertiser List", ParametersOf(kList205), ParametersOf(kList2)},
    {0x2048, "LE Remove Device from Periodic Advertiser List", ParametersOf(kList205), ParametersOf(kList2)},
    {0x2049, "LE Clear Periodic Advertiser List", {}, ParametersOf(kList2)},
    {0x204A, "LE Read Periodic Advertiser List Size", {}, ParametersOf(kList161)},
    {0x204B, "LE Read Transmit Power", {}, ParametersOf(kList206)},
    {0x204C, "LE Read RF Path Compensation", {}, ParametersOf(kList207)},
    {0x204D, "LE Write RF Path Compensation", ParametersOf(kList208), ParametersOf(kList2)},
    {0x204E, "LE Set Privacy Mode", ParametersOf(kList209), ParametersOf(kList2)},
    {0x204F, "LE Receiver Test v3", ParametersOf(kList34), ParametersOf(kList2)},
    {0x2050, "LE Transmitter Test v3", ParametersOf(kList34), ParametersOf(kList2)},
    {0x2051, "LE Set Connectionless CTE Transmit Parameters", ParametersOf(kList34), ParametersOf(kList2)},
    {0x2052, "LE Set Connectionless CTE Transmit Enable", ParametersOf(kList210), ParametersOf(kList2)},
    {0x2053, "LE Set Connectionless IQ Sampling Enable", ParametersOf(kList34), ParametersOf(kList211)},
    {0x2054, "LE Set Connection CTE Receive Parameters", ParametersOf(kList212), ParametersOf(kList43)},
    {0x2055, "LE Set Connection CTE Transmit Parameters", ParametersOf(kList212), ParametersOf(kList43)},
    {0x2056, "LE Connection CTE Request Enable", ParametersOf(kList212), ParametersOf(kList43)},
    {0x2057, "LE Connection CTE Response Enable", ParametersOf(kList213), ParametersOf(kList43)},
    {0x2058, "LE Read Antenna Information", {}, ParametersOf(kList214)},
    {0x2059, "LE Set Periodic Advertising Receive Enable", ParametersOf(kList215), ParametersOf(kList2)},
    {0x205A, "LE Periodic Advertising Sync Transfer", ParametersOf(kList216), ParametersOf(kList43)},
    {0x205B, "LE Periodic Advertising Set Info Transfer", ParametersOf(kList217), ParametersOf(kList43)},
    {0x205C, "LE Set Periodic Advertising Sync Transfer Parameters", ParametersOf(kList218), ParametersOf(kList43)},
    {0x205D, "LE Set Default Periodic Advertising Sync Transfer Parameters", ParametersOf(kList219),
    ParametersOf(kList2)},
    {0x205E, "LE Generate DHKey v2", ParametersOf(kList220), {}},
    {0x205F, "LE Modify Sleep Clock Accuracy", ParametersOf(kList221), ParametersOf(kList2)},
    {0x2060, "LE Read Buffer Size v2", {}, ParametersOf(kList222)},
    {0x2061, "LE Read ISO Transmit Sync", ParametersOf(kList13), ParametersOf(kList223)},
    {0x2062, "LE Set CIG Parameters", ParametersOf(kList34), ParametersOf(kList224)},
    {0x2063, "LE Set CIG Parameters Test", ParametersOf(kList34), ParametersOf(kList224)},
    {0x2064, "LE Create CIS", ParametersOf(kList34), {}},
    {0x2065, "LE Remove CIG", ParametersOf(kList225), ParametersOf(kList226)},
    {0x2066, "LE Accept CIS Request", ParametersOf(kList13), {}},
    {0x2067, "LE Reject CIS Request", ParametersOf(kList5), ParametersOf(kList43)},
    {0x2068, "LE Create BIG", ParametersOf(kList34), {}},
    {0x2069, "LE Create BIG Test", ParametersOf(kList34), {}},
    {0x206A, "LE Terminate BIG", ParametersOf(kList227), {}},
    {0x206B, "LE BIG Create Sync", ParametersOf(kList34), {}},
    {0x206C, "LE BIG Terminate Sync", ParametersOf(kList228), ParametersOf(kList229)},
    {0x206D, "LE Request Peer SCA", ParametersOf(kList13), {}},
    {0x206E, "LE Setup ISO Data Path", ParametersOf(kList230), ParametersOf(kList43)},
    {0x206F, "LE Remove ISO Data Path", ParametersOf(kList231), ParametersOf(kList43)},
    {0x2070, "LE ISO Transmit Test", ParametersOf(kList232), ParametersOf(kList43)},
    {0x2071, "LE ISO Receive Test", ParametersOf(kList232), ParametersOf(kList43)},
    {0x2072, "LE ISO Read Test Counters", ParametersOf(kList13), ParametersOf(kList233)},
    {0x2073, "LE ISO Test End", ParametersOf(kList13), ParametersOf(kList233)},
    {0x2074, "LE Set Host Feature", ParametersOf(kList234), ParametersOf(kList2)},
    {0x2075, "LE Read ISO Link Quality", ParametersOf(kList13), ParametersOf(kList235)},
    {0x2076, "LE Enhanced Read Transmit Power Level", ParametersOf(kList236), ParametersOf(kList237)},
    {0x2077, "LE Read Remote Transmit Power Level", ParametersOf(kList236), {}},
    {0x2078, "LE Set Path Loss Reporting Parameters", ParametersOf(kList238), ParametersOf(kList43)},
    {0x2079, "LE Set Path Loss Reporting Enable", ParametersOf(kList213), ParametersOf(kList43)},
    {0x207A, "LE Set Transmit Power Reporting Enable", ParametersOf(kList239), ParametersOf(kList43)},
    {0x207B, "LE Transmitter Test v4", ParametersOf(kList34), ParametersOf(kList2)},
    {0x207C, "LE Set Data Related Address Changes", ParametersOf(kList240), ParametersOf(kList2)},
    {0x207D, "LE Set Default Subrate", ParametersOf(kList241), ParametersOf(kList2)},
    {0x207E, "LE Subrate Request", ParametersOf(kList242), {}},
};

const HciEvent kEvents[] = {
    {0x01, "Inquiry Complete", ParametersOf(kList2)},
    {0x02, "Inquiry Result", ParametersOf(kList243)},
    {0x03, "Connection Complete", ParametersOf(kList244)},
    {0x04, "Connection Request", ParametersOf(kList245)},
    {0x05, "Disconnection Complete", ParametersOf(kList246)},
    {0x06, "Authentication Complete", ParametersOf(kList43)},
    {0x07, "Remote Name Request Complete", ParametersOf(kList247)},
    {0x08, "Encryption Change", ParametersOf(kList248)},
    {0x09, "Change Connection Link Key Complete", ParametersOf(kList43)},
    {0x0A, "Link Key Type Changed", ParametersOf(kList249)},
    {0x0B, "Read Remote Supported Features Complete", ParametersOf(kList250)},
    {0x0C, "Read Remote Version Information Complete", ParametersOf(kList251)},
    {0x0D, "QoS Setup Complete", ParametersOf(kList252)},
    {0x0E, "Command Complete", {}},
    {0x0F, "Command Status", {}},
    {0x10, "Hardware Error", ParametersOf(kList253)},
    {0x11, "Flush Occurred", ParametersOf(kList13)},
    {0x12, "Role Change", ParametersOf(kList254)},
    {0x13, "Number of Completed Packets", ParametersOf(kList85)},
    {0x14, "Mode Change", ParametersOf(kList255)},
    {0x15, "Return Link Keys", ParametersOf(kList54)},
    {0x16, "PIN Code Request", ParametersOf(kList6)},
    {0x17, "Link Key Request", ParametersOf(kList6)},
    {0x18, "Link Key Notification", ParametersOf(kList256)},
    {0x19, "Loopback Command", ParametersOf(kList257)},
    {0x1A, "Data Buffer Overflow", ParametersOf(kList258)},
    {0x1B, "Max Slots Change", ParametersOf(kList259)},
    {0x1C, "Read Clock Offset Complete", ParametersOf(kList260)},
    {0x1D, "Connection Packet Type Changed", ParametersOf(kList261)},
    {0x1E, "QoS Violation", ParametersOf(kList13)},
    {0x20, "Page Scan Repetition Mode Change", ParametersOf(kList262)},
    {0x21, "Flow Specification Complete", ParametersOf(kList263)},
    {0x22, "Inquiry Result with RSSI", ParametersOf(kList243)},
    {0x23, "Read Remote Extended Features Complete", ParametersOf(kList264)},
    {0x2C, "Synchronous Connection Complete", ParametersOf(kList265)},
    {0x2D, "Synchronous Connection Changed", ParametersOf(kList266)},
    {0x2E, "Sniff Subrating", ParametersOf(kList267)},
    {0x2F, "Extended Inquiry Result", ParametersOf(kList268)},
    {0x30, "Encryption Key Refresh Complete", ParametersOf(kList43)},
    {0x31, "IO Capability Request", ParametersOf(kList6)},
    {0x32, "IO Capability Response", ParametersOf(kList21)},
    {0x33, "User Confirmation Request", ParametersOf(kList22)},
    {0x34, "User Passkey Request", ParametersOf(kList6)},
    {0x35, "Remote OOB Data Request", ParametersOf(kList6)},
    {0x36, "Simple Pairing Complete", ParametersOf(kList7)},
    {0x38, "Link Supervision Timeout Changed", ParametersOf(kList87)},
    {0x39, "Enhanced Flush Complete", ParametersOf(kList13)},
    {0x3B, "User Passkey Notification", ParametersOf(kList269)},
    {0x3C, "Keypress Notification", ParametersOf(kList107)},
    {0x3D, "Remote Host Supported Features Notification", ParametersOf(kList270)},
    {0x3E, "LE Meta", {}},
    {0x40, "Physical Link Complete", ParametersOf(kList145)},
    {0x41, "Channel Selected", ParametersOf(kList271)},
    {0x42, "Disconnection Physical Link Complete", ParametersOf(kList272)},
    {0x43, "Physical Link Loss Early Warning", ParametersOf(kList273)},
    {0x44, "Physical Link Recovery", ParametersOf(kList271)},
    {0x45, "Logical Link Complete", ParametersOf(kList274)},
    {0x46, "Disconnection Logical Link Complete", ParametersOf(kList275)},
    {0x47, "Flow Specification Modify Complete", ParametersOf(kList276)},
    {0x48, "Number of Completed Data Blocks", ParametersOf(kList277)},
    {0x4C, "Short Range Mode Change Complete", ParametersOf(kList278)},
    {0x4D, "AMP Status Change", ParametersOf(kList279)},
    {0x4E, "Triggered Clock Capture", ParametersOf(kList280)},
    {0x4F, "Synchronization Train Complete", ParametersOf(kList2)},
    {0x50, "Synchronization Train Received", ParametersOf(kList34)},
    {0x51, "Connectionless Peripheral Broadcast Receive", ParametersOf(kList34)},
    {0x52, "Connectionless Peripheral Broadcast Timeout", ParametersOf(kList281)},
    {0x53, "Truncated Page Complete", ParametersOf(kList7)},
    {0x54, "Peripheral Page Response Timeout", {}},
    {0x55, "Connectionless Peripheral Broadcast Channel Map Change", ParametersOf(kList282)},
    {0x56, "Inquiry Response Notification", ParametersOf(kList283)},
    {0x57, "Authenticated Payload Timeout Expired", ParametersOf(kList13)},
    {0x58, "SAM Status Change", ParametersOf(kList284)},
    {0x59, "Encryption Change v2", ParametersOf(kList285)},
    {0xFE, "Logo Testing", ParametersOf(kList34)},
    {0xFF, "Vendor Specific", ParametersOf(kList286)},
};

const HciEvent kLowEnergyEvents[] = {
    {0x01, "LE Connection Complete", ParametersOf(kList287)},
    {0x02, "LE Advertising Report", {}},
    {0x03, "LE Connection Update Complete", ParametersOf(kList288)},
    {0x04, "LE Read Remote Features Complete", ParametersOf(kList289)},
    {0x05, "LE Long Term Key Request", ParametersOf(kList290)},
    {0x06, "LE Remote Connection Parameter Request", ParametersOf(kList291)},
    {0x07, "LE Data Length Change", ParametersOf(kList292)},
    {0x08, "LE Read Local P-256 Public Key Complete", ParametersOf(kList293)},
    {0x09, "LE Generate DHKey Complete", ParametersOf(kList294)},
    {0x0A, "LE Enhanced Connection Complete", ParametersOf(kList295)},
    {0x0B, "LE Directed Advertising Report", ParametersOf(kList296)},
    {0x0C, "LE PHY Update Complete", ParametersOf(kList185)},
    {0x0D, "LE Extended Advertising Report", {}},
    {0x0E, "LE Periodic Advertising Sync Established", ParametersOf(kList297)},
    {0x0F, "LE Periodic Advertising Report", ParametersOf(kList298)},
    {0x10, "LE Periodic Advertising Sync Lost", ParametersOf(kList204)},
    {0x11, "LE Scan Timeout", {}},
    {0x12, "LE Advertising Set Terminated", ParametersOf(kList299)},
    {0x13, "LE Scan Request Received", ParametersOf(kList300)},
    {0x14, "LE Channel Selection Algorithm", ParametersOf(kList301)},
    {0x15, "LE Connectionless IQ Report", ParametersOf(kList302)},
    {0x16, "LE Connection IQ Report", ParametersOf(kList302)},
    {0x17, "LE CTE Request Failed", ParametersOf(kList43)},
    {0x18, "LE Periodic Advertising Sync Transfer Received", ParametersOf(kList303)},
    {0x19, "LE CIS Established", ParametersOf(kList304)},
    {0x1A, "LE CIS Request", ParametersOf(kList305)},
    {0x1B, "LE Create BIG Complete", ParametersOf(kList306)},
    {0x1C, "LE Terminate BIG Complete", ParametersOf(kList227)},
    {0x1D, "LE BIG Sync Established", ParametersOf(kList306)},
    {0x1E, "LE BIG Sync Lost", ParametersOf(kList227)},
    {0x1F, "LE Request Peer SCA Complete", ParametersOf(kList307)},
    {0x20, "LE Path Loss Threshold", ParametersOf(kList308)},
    {0x21, "LE Transmit Power Reporting", ParametersOf(kList309)},
    {0x22, "LE BIGInfo Advertising Report", ParametersOf(kList310)},
    {0x23, "LE Subrate Change", ParametersOf(kList311)},
};

// By their codes, which the tables are in the order of.
template <class T, size_t kCount>
const T* FindRow(const T (&rows)[kCount], uint32_t code) {
  size_t lower = 0, upper = kCount;
  while (lower < upper) {
    const size_t middle = (lower + upper) / 2;
    if (rows[middle].code == code) return &rows[middle];
    if (rows[middle].code < code) {
      lower = middle + 1;
    } else {
      upper = middle;
    }
  }
  return nullptr;
}

}  // namespace

const HciCommand* FindHciCommand(uint32_t code) { return FindRow(kCommands, code); }
const HciEvent* FindHciEvent(uint32_t code) { return FindRow(kEvents, code); }
const HciEvent* FindHciLowEnergyEvent(uint32_t code) { return FindRow(kLowEnergyEvents, code); }
const char* NameHciStatus(uint32_t status) { return LookupName(kStatusNames, status); }

}  // namespace qxview
