// The names of IPMI 2.0: network functions, commands by network function, completion codes, and what sessions
// negotiate.
#pragma once
#include "core/name_table.h"

namespace qxview {

inline constexpr auto kIpmiFunctionNames = SortedNames({
    {0x00, "Chassis Request"}, {0x01, "Chassis Response"}, {0x02, "Bridge Request"}, {0x03, "Bridge Response"},
    {0x04, "Sensor/Event Request"}, {0x05, "Sensor/Event Response"}, {0x06, "Application Request"},
    {0x07, "Application Response"}, {0x08, "Firmware Request"}, {0x09, "Firmware Response"}, {0x0A, "Storage Request"},
    {0x0B, "Storage Response"}, {0x0C, "Transport Request"}, {0x0D, "Transport Response"},
    {0x2C, "Group Extension Request"}, {0x2D, "Group Extension Response"}, {0x2E, "OEM/Group Request"},
    {0x2F, "OEM/Group Response"}, {0x30, "OEM Request"}, {0x31, "OEM Response"}, {0x32, "OEM Request"},
    {0x33, "OEM Response"}, {0x34, "OEM Request"}, {0x35, "OEM Response"}, {0x36, "OEM Request"},
    {0x37, "OEM Response"}, {0x38, "OEM Request"}, {0x39, "OEM Response"}, {0x3A, "OEM Request"},
    {0x3B, "OEM Response"}, {0x3C, "OEM Request"}, {0x3D, "OEM Response"}, {0x3E, "OEM Request"},
    {0x3F, "OEM Response"}});

// By network function of the request above bit 8.
inline constexpr auto kIpmiCommandNames = SortedNames({
    {0x0000, "Get Chassis Capabilities"}, {0x0001, "Get Chassis Status"}, {0x0002, "Chassis Control"},
    {0x0003, "Chassis Reset"}, {0x0004, "Chassis Identify"}, {0x0005, "Set Chassis Capabilities"},
    {0x0006, "Set Power Restore Policy"}, {0x0007, "Get System Restart Cause"}, {0x0008, "Set System Boot Options"},
    {0x0009, "Get System Boot Options"}, {0x000A, "Set Front Panel Button Enables"},
    {0x000B, "Set Power Cycle Interval"},
    {0x000F, "Get POH Counter"},
    {0x0200, "Get Bridge State"}, {0x0201, "Set Bridge State"}, {0x0202, "Get ICMB Address"},
    {0x0203, "Set ICMB Address"},
    {0x0204, "Set Bridge Proxy Address"}, {0x0205, "Get Bridge Statistics"}, {0x0206, "Get ICMB Capabilities"},
    {0x0208, "Clear Bridge Statistics"}, {0x0209, "Get Bridge Proxy Address"}, {0x020A, "Get ICMB Connector Info"},
    {0x020B, "Get ICMB Connection ID"}, {0x020C, "Send ICMB Connection ID"}, {0x0210, "Prepare for Discovery"},
    {0x0211, "Get Addresses"}, {0x0212, "Set Discovered"}, {0x0213, "Get Chassis Device ID"},
    {0x0214, "Set Chassis Device ID"}, {0x0220, "Bridge Request"}, {0x0221, "Bridge Message"},
    {0x0230, "Get Event Count"}, {0x0231, "Set Event Destination"}, {0x0232, "Set Event Reception State"},
    {0x0233, "Send ICMB Event Message"}, {0x0234, "Get Event Destination"}, {0x0235, "Get Event Reception State"},
    {0x02FF, "Error Report"},
    {0x0400, "Set Event Receiver"}, {0x0401, "Get Event Receiver"}, {0x0402, "Platform Event"},
    {0x0410, "Get PEF Capabilities"}, {0x0411, "Arm PEF Postpone Timer"}, {0x0412, "Set PEF Configuration Parameters"},
    {0x0413, "Get PEF Configuration Parameters"}, {0x0414, "Set Last Processed Event ID"},
    {0x0415, "Get Last Processed Event ID"}, {0x0416, "Alert Immediate"}, {0x0417, "PET Acknowledge"},
    {0x0420, "Get Device SDR Info"}, {0x0421, "Get Device SDR"}, {0x0422, "Reserve Device SDR Repository"},
    {0x0423, "Get Sensor Reading Factors"}, {0x0424, "Set Sensor Hysteresis"}, {0x0425, "Get Sensor Hysteresis"},
    {0x0426, "Set Sensor Threshold"}, {0x0427, "Get Sensor Threshold"}, {0x0428, "Set Sensor Event Enable"},
    {0x0429, "Get Sensor Event Enable"}, {0x042A, "Re-arm Sensor Events"}, {0x042B, "Get Sensor Event Status"},
    {0x042D, "Get Sensor Reading"}, {0x042E, "Set Sensor Type"}, {0x042F, "Get Sensor Type"},
    {0x0430, "Set Sensor Reading and Event Status"},
    {0x0601, "Get Device ID"}, {0x0602, "Cold Reset"}, {0x0603, "Warm Reset"}, {0x0604, "Get Self Test Results"},
    {0x0605, "Manufacturing Test On"}, {0x0606, "Set ACPI Power State"}, {0x0607, "Get ACPI Power State"},
    {0x0608, "Get Device GUID"}, {0x0609, "Get NetFn Support"}, {0x060A, "Get Command Support"},
    {0x060B, "Get Command Sub-function Support"}, {0x060C, "Get Configurable Commands"},
    {0x060D, "Get Configurable Command Sub-functions"}, {0x0622, "Reset Watchdog Timer"},
    {0x0624, "Set Watchdog Timer"},
    {0x0625, "Get Watchdog Timer"}, {0x062E, "Set BMC Global Enables"}, {0x062F, "Get BMC Global Enables"},
    {0x0630, "Clear Message Flags"}, {0x0631, "Get Message Flags"}, {0x0632, "Enable Message Channel Receive"},
    {0x0633, "Get Message"}, {0x0634, "Send Message"}, {0x0635, "Read Event Message Buffer"},
    {0x0636, "Get BT Interface Capabilities"}, {0x0637, "Get System GUID"},
    {0x0638, "Get Channel Authentication Capabilities"}, {0x0639, "Get Session Challenge"},
    {0x063A, "Activate Session"},
    {0x063B, "Set Session Privilege Level"}, {0x063C, "Close Session"}, {0x063D, "Get Session Info"},
    {0x063F, "Get AuthCode"}, {0x0640, "Set Channel Access"}, {0x0641, "Get Channel Access"},
    {0x0642, "Get Channel Info"},
    {0x0643, "Set User Access"}, {0x0644, "Get User Access"}, {0x0645, "Set User Name"}, {0x0646, "Get User Name"},
    {0x0647, "Set User Password"}, {0x0648, "Activate Payload"}, {0x0649, "Deactivate Payload"},
    {0x064A, "Get Payload Activation Status"}, {0x064B, "Get Payload Instance Info"},
    {0x064C, "Set User Payload Access"}, {0x064D, "Get User Payload Access"}, {0x064E, "Get Channel Payload Support"},
    {0x064F, "Get Channel Payload Version"}, {0x0650, "Get Channel OEM Payload Info"}, {0x0652, "Master Write-Read"},
    {0x0654, "Get Channel Cipher Suites"}, {0x0655, "Suspend/Resume Payload Encryption"},
    {0x0656, "Set Channel Security Keys"}, {0x0657, "Get System Interface Capabilities"},
    {0x0658, "Set System Info Parameters"}, {0x0659, "Get System Info Parameters"}, {0x0660, "Set Command Enables"},
    {0x0661, "Get Command Enables"}, {0x0662, "Set Command Sub-function Enables"},
    {0x0663, "Get Command Sub-function Enables"}, {0x0664, "Get OEM NetFn IANA Support"},
    {0x0A10, "Get FRU Inventory Area Info"}, {0x0A11, "Read FRU Data"}, {0x0A12, "Write FRU Data"},
    {0x0A20, "Get SDR Repository Info"}, {0x0A21, "Get SDR Repository Allocation Info"},
    {0x0A22, "Reserve SDR Repository"}, {0x0A23, "Get SDR"}, {0x0A24, "Add SDR"}, {0x0A25, "Partial Add SDR"},
    {0x0A26, "Delete SDR"}, {0x0A27, "Clear SDR Repository"}, {0x0A28, "Get SDR Repository Time"},
    {0x0A29, "Set SDR Repository Time"}, {0x0A2A, "Enter SDR Repository Update Mode"},
    {0x0A2B, "Exit SDR Repository Update Mode"}, {0x0A2C, "Run Initialization Agent"}, {0x0A40, "Get SEL Info"},
    {0x0A41, "Get SEL Allocation Info"}, {0x0A42, "Reserve SEL"}, {0x0A43, "Get SEL Entry"}, {0x0A44, "Add SEL Entry"},
    {0x0A45, "Partial Add SEL Entry"}, {0x0A46, "Delete SEL Entry"}, {0x0A47, "Clear SEL"}, {0x0A48, "Get SEL Time"},
    {0x0A49, "Set SEL Time"}, {0x0A5A, "Get Auxiliary Log Status"}, {0x0A5B, "Set Auxiliary Log Status"},
    {0x0A5C, "Get SEL Time UTC Offset"}, {0x0A5D, "Set SEL Time UTC Offset"},
    {0x0C01, "Set LAN Configuration Parameters"}, {0x0C02, "Get LAN Configuration Parameters"},
    {0x0C03, "Suspend BMC ARPs"}, {0x0C04, "Get IP/UDP/RMCP Statistics"}, {0x0C10, "Set Serial/Modem Configuration"},
    {0x0C11, "Get Serial/Modem Configuration"}, {0x0C12, "Set Serial/Modem Mux"}, {0x0C13, "Get TAP Response Codes"},
    {0x0C14, "Set PPP UDP Proxy Transmit Data"}, {0x0C15, "Get PPP UDP Proxy Transmit Data"},
    {0x0C16, "Send PPP UDP Proxy Packet"}, {0x0C17, "Get PPP UDP Proxy Receive Data"},
    {0x0C18, "Serial/Modem Connection Active"}, {0x0C19, "Callback"}, {0x0C1A, "Set User Callback Options"},
    {0x0C1B, "Get User Callback Options"}, {0x0C1C, "Set Serial Routing Mux"}, {0x0C20, "SOL Activating"},
    {0x0C21, "Set SOL Configuration Parameters"}, {0x0C22, "Get SOL Configuration Parameters"},
    {0x0C30, "Forwarded Command"}, {0x0C31, "Set Forwarded Commands"}, {0x0C32, "Get Forwarded Commands"},
    {0x0C33, "Enable Forwarded Commands"}});

inline constexpr auto kIpmiCompletionNames = SortedNames({
    {0x00, "Command Completed Normally"}, {0xC0, "Node Busy"}, {0xC1, "Invalid Command"},
    {0xC2, "Command Invalid for Given LUN"}, {0xC3, "Timeout while Processing Command"}, {0xC4, "Out of Space"},
    {0xC5, "Reservation Canceled or Invalid Reservation ID"}, {0xC6, "Request Data Truncated"},
    {0xC7, "Request Data Length Invalid"}, {0xC8, "Request Data Field Length Limit Exceeded"},
    {0xC9, "Parameter out of Range"}, {0xCA, "Cannot Return Number of Requested Data Bytes"},
    {0xCB, "Requested Sensor, Data or Record Not Present"}, {0xCC, "Invalid Data Field in Request"},
    {0xCD, "Command Illegal for Specified Sensor or Record Type"}, {0xCE, "Command Response Could Not Be Provided"},
    {0xCF, "Cannot Execute Duplicated Request"}, {0xD0, "SDR Repository in Update Mode"},
    {0xD1, "Device in Firmware Update Mode"}, {0xD2, "BMC Initialization in Progress"},
    {0xD3, "Destination Unavailable"},
    {0xD4, "Insufficient Privilege Level"}, {0xD5, "Command Not Supported in Present State"},
    {0xD6, "Sub-function Disabled or Unavailable"}, {0xFF, "Unspecified Error"}});

inline constexpr auto kIpmiAuthenticationNames = SortedNames({
    {0, "None"}, {1, "MD2"}, {2, "MD5"}, {4, "Straight Password"}, {5, "OEM"}, {6, "RMCP+"}});
inline constexpr auto kIpmiPayloadNames = SortedNames({
    {0x00, "IPMI Message"}, {0x01, "SOL"}, {0x02, "OEM Explicit"}, {0x10, "RMCP+ Open Session Request"},
    {0x11, "RMCP+ Open Session Response"}, {0x12, "RAKP Message 1"}, {0x13, "RAKP Message 2"}, {0x14, "RAKP Message 3"},
    {0x15, "RAKP Message 4"}, {0x20, "OEM0"}, {0x21, "OEM1"}, {0x22, "OEM2"}, {0x23, "OEM3"}, {0x24, "OEM4"},
    {0x25, "OEM5"}, {0x26, "OEM6"}, {0x27, "OEM7"}});
inline constexpr auto kIpmiPrivilegeNames = SortedNames({
    {0, "Highest Matching"}, {1, "CALLBACK"}, {2, "USER"}, {3, "OPERATOR"}, {4, "ADMINISTRATOR"},
    {5, "OEM Proprietary"},
    {15, "No Access"}});
inline constexpr auto kIpmiStatusNames = SortedNames({
    {0x00, "No Errors"}, {0x01, "Insufficient Resources to Create a Session"}, {0x02, "Invalid Session ID"},
    {0x03, "Invalid Payload Type"}, {0x04, "Invalid Authentication Algorithm"}, {0x05, "Invalid Integrity Algorithm"},
    {0x06, "No Matching Authentication Payload"}, {0x07, "No Matching Integrity Payload"},
    {0x08, "Inactive Session ID"}, {0x09, "Invalid Role"}, {0x0A, "Unauthorized Role or Privilege Level"},
    {0x0B, "Insufficient Resources to Create a Session at the Requested Role"}, {0x0C, "Invalid Name Length"},
    {0x0D, "Unauthorized Name"}, {0x0E, "Unauthorized GUID"}, {0x0F, "Invalid Integrity Check Value"},
    {0x10, "Invalid Confidentiality Algorithm"}, {0x11, "No Cipher Suite Match"}, {0x12, "Illegal Parameter"}});
inline constexpr auto kIpmiAlgorithmNames = SortedNames({   // by type of payload above bit 8
    {0x000, "RAKP-none"}, {0x001, "RAKP-HMAC-SHA1"}, {0x002, "RAKP-HMAC-MD5"}, {0x003, "RAKP-HMAC-SHA256"},
    {0x100, "None"}, {0x101, "HMAC-SHA1-96"}, {0x102, "HMAC-MD5-128"}, {0x103, "MD5-128"}, {0x104, "HMAC-SHA256-128"},
    {0x200, "None"}, {0x201, "AES-CBC-128"}, {0x202, "xRC4-128"}, {0x203, "xRC4-40"}});

}  // namespace qxview
