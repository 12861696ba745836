// The names of what the commands of IPMI 2.0 hold.
#pragma once
#include "core/name_table.h"

namespace qxview {

inline constexpr auto kChassisControlNames = SortedNames({
    {0, "Power Down"}, {1, "Power Up"}, {2, "Power Cycle"}, {3, "Hard Reset"}, {4, "Pulse Diagnostic Interrupt"},
    {5, "Soft Shutdown via ACPI"}});
inline constexpr auto kPowerPolicyNames = SortedNames({
    {0, "Stays Off"}, {1, "Restored to Previous State"}, {2, "Powers Up"}, {3, "Unknown"}});
inline constexpr auto kIdentifyNames = SortedNames({{0, "Off"}, {1, "Temporary On"}, {2, "Indefinite On"}, {3, "Reserved"}});
inline constexpr auto kSetPowerPolicyNames = SortedNames({
    {0, "Stays Off"}, {1, "Restored to Previous State"}, {2, "Powers Up"}, {3, "No Change"}});
inline constexpr auto kRestartCauseNames = SortedNames({
    {0, "Unknown"}, {1, "Chassis Control Command"}, {2, "Reset by Pushbutton"}, {3, "Power-up by Pushbutton"},
    {4, "Watchdog Expiration"}, {5, "OEM"}, {6, "Power-up by Always-Restore Policy"},
    {7, "Power-up by Previous-State Policy"}, {8, "Reset by PEF"}, {9, "Power-cycle by PEF"}, {10, "Soft Reset"},
    {11, "Power-up by Real Time Clock"}});
inline constexpr auto kBootOptionNames = SortedNames({
    {0, "Set in Progress"}, {1, "Service Partition Selector"}, {2, "Service Partition Scan"},
    {3, "Boot Flag Valid Bit Clearing"}, {4, "Boot Info Acknowledge"}, {5, "Boot Flags"},
    {6, "Boot Initiator Info"}, {7, "Boot Initiator Mailbox"}});
inline constexpr auto kSensorTypeNames = SortedNames({
    {0x00, "Reserved"}, {0x01, "Temperature"}, {0x02, "Voltage"}, {0x03, "Current"}, {0x04, "Fan"},
    {0x05, "Physical Security"}, {0x06, "Platform Security Violation Attempt"}, {0x07, "Processor"},
    {0x08, "Power Supply"}, {0x09, "Power Unit"}, {0x0A, "Cooling Device"}, {0x0B, "Other Units-based Sensor"},
    {0x0C, "Memory"}, {0x0D, "Drive Slot"}, {0x0E, "POST Memory Resize"}, {0x0F, "System Firmware Progress"},
    {0x10, "Event Logging Disabled"}, {0x11, "Watchdog 1"}, {0x12, "System Event"}, {0x13, "Critical Interrupt"},
    {0x14, "Button"}, {0x15, "Module or Board"}, {0x16, "Microcontroller"}, {0x17, "Add-in Card"},
    {0x18, "Chassis"}, {0x19, "Chip Set"}, {0x1A, "Other FRU"}, {0x1B, "Cable or Interconnect"},
    {0x1C, "Terminator"}, {0x1D, "System Boot Initiated"}, {0x1E, "Boot Error"}, {0x1F, "Base OS Boot"},
    {0x20, "OS Stop"}, {0x21, "Slot or Connector"}, {0x22, "System ACPI Power State"}, {0x23, "Watchdog 2"},
    {0x24, "Platform Alert"}, {0x25, "Entity Presence"}, {0x26, "Monitor ASIC"}, {0x27, "LAN"},
    {0x28, "Management Subsystem Health"}, {0x29, "Battery"}, {0x2A, "Session Audit"}, {0x2B, "Version Change"},
    {0x2C, "FRU State"}});
inline constexpr auto kDirectionNames = SortedNames({{0, "Assertion"}, {1, "Deassertion"}});
inline constexpr auto kPefParameterNames = SortedNames({
    {0, "Set in Progress"}, {1, "PEF Control"}, {2, "PEF Action Global Control"}, {3, "PEF Startup Delay"},
    {4, "PEF Alert Startup Delay"}, {5, "Number of Event Filters"}, {6, "Event Filter Table"},
    {7, "Event Filter Table Data 1"}, {8, "Number of Alert Policy Entries"}, {9, "Alert Policy Table"},
    {10, "System GUID"}, {11, "Number of Alert Strings"}, {12, "Alert String Keys"}, {13, "Alert Strings"},
    {14, "Number of Group Control Table Entries"}, {15, "Group Control Table"}});
inline constexpr auto kProcessorNames = SortedNames({{0, "Software"}, {1, "BMC"}});
inline constexpr auto kAlertNames = SortedNames({
    {0, "Initiate Alert"}, {1, "Get Alert Status"}, {2, "Clear Alert Status"}, {3, "Reserved"}});
inline constexpr auto kAlertStatusNames = SortedNames({
    {0, "No Status"}, {1, "Normal End"}, {2, "Call Retry Failed"}, {3, "Alert Acknowledge Timeout"},
    {0xFF, "In Progress"}});
inline constexpr auto kSdrOperationNames = SortedNames({{0, "Get Sensor Count"}, {1, "Get SDR Count"}});
inline constexpr auto kEnableNames = SortedNames({
    {0, "Do Not Change"}, {1, "Enable Selected"}, {2, "Disable Selected"}, {3, "Reserved"}});
inline constexpr auto kSelfTestNames = SortedNames({
    {0x55, "No Error"}, {0x56, "Not Implemented"}, {0x57, "Corrupted or Inaccessible Data or Devices"},
    {0x58, "Fatal Hardware Error"}, {0xFF, "Reserved"}});
inline constexpr auto kAcpiSystemNames = SortedNames({
    {0x00, "S0/G0"}, {0x01, "S1"}, {0x02, "S2"}, {0x03, "S3"}, {0x04, "S4"}, {0x05, "S5/G2"}, {0x06, "S4/S5"},
    {0x07, "G3"}, {0x08, "Sleeping"}, {0x09, "G1 Sleeping"}, {0x0A, "S5 Override"}, {0x20, "Legacy On"},
    {0x21, "Legacy Off"}, {0x2A, "Unknown"}, {0x7F, "No Change"}});
inline constexpr auto kAcpiDeviceNames = SortedNames({
    {0, "D0"}, {1, "D1"}, {2, "D2"}, {3, "D3"}, {0x2A, "Unknown"}, {0x7F, "No Change"}});
inline constexpr auto kTimerUseNames = SortedNames({
    {0, "Reserved"}, {1, "BIOS FRB2"}, {2, "BIOS/POST"}, {3, "OS Load"}, {4, "SMS/OS"}, {5, "OEM"}});
inline constexpr auto kPretimeoutNames = SortedNames({
    {0, "None"}, {1, "SMI"}, {2, "Diagnostic Interrupt"}, {3, "Messaging Interrupt"}});
inline constexpr auto kTimeoutNames = SortedNames({
    {0, "No Action"}, {1, "Hard Reset"}, {2, "Power Down"}, {3, "Power Cycle"}});
inline constexpr auto kReceiveNames = SortedNames({{0, "Disabled"}, {1, "Enabled"}, {2, "Get State"}});
inline constexpr auto kTrackingNames = SortedNames({{0, "None"}, {1, "Track Request"}, {2, "Send Raw"}, {3, "Reserved"}});
inline constexpr auto kSessionProtocolNames = SortedNames({{0, "IPMI 1.5"}, {1, "IPMI 2.0"}});
inline constexpr auto kKeptNames = SortedNames({{0, "Unchanged"}, {1, "Non-volatile"}, {2, "Present"}, {3, "Reserved"}});
inline constexpr auto kAccessNames = SortedNames({
    {0, "Disabled"}, {1, "Pre-boot Only"}, {2, "Always Available"}, {3, "Shared"}});
inline constexpr auto kMediumNames = SortedNames({
    {0x00, "Reserved"}, {0x01, "IPMB (I2C)"}, {0x02, "ICMB 1.0"}, {0x03, "ICMB 0.9"}, {0x04, "802.3 LAN"},
    {0x05, "Serial/Modem"}, {0x06, "Other LAN"}, {0x07, "PCI SMBus"}, {0x08, "SMBus 1.0/1.1"}, {0x09, "SMBus 2.0"},
    {0x0A, "USB 1.x"}, {0x0B, "USB 2.x"}, {0x0C, "System Interface"}});
inline constexpr auto kChannelProtocolNames = SortedNames({
    {0x01, "IPMB 1.0"}, {0x02, "ICMB 1.0"}, {0x04, "IPMI-SMBus"}, {0x05, "KCS"}, {0x06, "SMIC"}, {0x07, "BT 1.0"},
    {0x08, "BT 1.5"}, {0x09, "TMODE"}, {0x1C, "OEM Protocol 1"}, {0x1D, "OEM Protocol 2"}, {0x1E, "OEM Protocol 3"},
    {0x1F, "OEM Protocol 4"}});
inline constexpr auto kSessionSupportNames = SortedNames({
    {0, "Session-less"}, {1, "Single-Session"}, {2, "Multi-Session"}, {3, "Session-Based"}});
inline constexpr auto kUserStatusNames = SortedNames({{0, "Unspecified"}, {1, "Enabled"}, {2, "Disabled"}, {3, "Reserved"}});
inline constexpr auto kPasswordNames = SortedNames({
    {0, "Disable User"}, {1, "Enable User"}, {2, "Set Password"}, {3, "Test Password"}});
inline constexpr auto kEncryptionNames = SortedNames({{0, "Suspend"}, {1, "Resume"}, {2, "Regenerate Initialization Vector"}});
inline constexpr auto kKeyOperationNames = SortedNames({{0, "Read Key"}, {1, "Set Key"}, {2, "Lock Key"}, {3, "Reserved"}});
inline constexpr auto kInterfaceNames = SortedNames({{0, "SSIF"}, {1, "KCS"}, {2, "SMIC"}, {3, "BT"}});
inline constexpr auto kSystemInfoNames = SortedNames({
    {0, "Set in Progress"}, {1, "System Firmware Version"}, {2, "System Name"},
    {3, "Primary Operating System Name"}, {4, "Operating System Name"}, {5, "Present OS Version"}, {6, "BMC URL"},
    {7, "Base OS/Hypervisor URL"}});
inline constexpr auto kProgressNames = SortedNames({{0, "In Progress"}, {1, "Last Record Data"}});
inline constexpr auto kClearNames = SortedNames({{0x00, "Get Erasure Status"}, {0xAA, "Initiate Erase"}});
inline constexpr auto kErasureNames = SortedNames({{0, "In Progress"}, {1, "Completed"}});
inline constexpr auto kRecordTypeNames = SortedNames({{0x02, "System Event"}});
inline constexpr auto kLogNames = SortedNames({{0, "MCA"}, {1, "OEM 1"}, {2, "OEM 2"}});
inline constexpr auto kLanParameterNames = SortedNames({
    {0, "Set in Progress"}, {1, "Authentication Type Support"}, {2, "Authentication Type Enables"},
    {3, "IP Address"}, {4, "IP Address Source"}, {5, "MAC Address"}, {6, "Subnet Mask"},
    {7, "IPv4 Header Parameters"}, {8, "Primary RMCP Port"}, {9, "Secondary RMCP Port"},
    {10, "BMC-generated ARP Control"}, {11, "Gratuitous ARP Interval"}, {12, "Default Gateway Address"},
    {13, "Default Gateway MAC Address"}, {14, "Backup Gateway Address"}, {15, "Backup Gateway MAC Address"},
    {16, "Community String"}, {17, "Number of Destinations"}, {18, "Destination Type"},
    {19, "Destination Addresses"}, {20, "VLAN ID"}, {21, "VLAN Priority"}, {22, "Cipher Suite Entry Support"},
    {23, "Cipher Suite Entries"}, {24, "Cipher Suite Privilege Levels"}, {25, "Destination Address VLAN Tags"},
    {26, "Bad Password Threshold"}, {50, "IPv6/IPv4 Support"}, {51, "IPv6/IPv4 Addressing Enables"},
    {52, "IPv6 Header Static Traffic Class"}, {53, "IPv6 Header Static Hop Limit"}, {54, "IPv6 Header Flow Label"},
    {55, "IPv6 Status"}, {56, "IPv6 Static Addresses"}, {57, "IPv6 DHCPv6 Static DUID Storage Length"},
    {58, "IPv6 DHCPv6 Static DUIDs"}, {59, "IPv6 Dynamic Address"}, {60, "IPv6 DHCPv6 Dynamic DUID Storage Length"},
    {61, "IPv6 DHCPv6 Dynamic DUIDs"}, {62, "IPv6 DHCPv6 Timing Configuration Support"},
    {63, "IPv6 DHCPv6 Timing Configuration"}, {64, "IPv6 Router Address Configuration Control"},
    {65, "IPv6 Static Router 1 IP Address"}, {66, "IPv6 Static Router 1 MAC Address"},
    {67, "IPv6 Static Router 1 Prefix Length"}, {68, "IPv6 Static Router 1 Prefix Value"},
    {69, "IPv6 Static Router 2 IP Address"}, {70, "IPv6 Static Router 2 MAC Address"},
    {71, "IPv6 Static Router 2 Prefix Length"}, {72, "IPv6 Static Router 2 Prefix Value"},
    {73, "IPv6 Dynamic Router Sets"}, {74, "IPv6 Dynamic Router IP Address"},
    {75, "IPv6 Dynamic Router MAC Address"}, {76, "IPv6 Dynamic Router Prefix Length"},
    {77, "IPv6 Dynamic Router Prefix Value"}, {78, "IPv6 Dynamic Router Received Hop Limit"},
    {79, "IPv6 Neighbor Discovery/SLAAC Timing Configuration Support"},
    {80, "IPv6 Neighbor Discovery/SLAAC Timing Configuration"}});
inline constexpr auto kSolParameterNames = SortedNames({
    {0, "Set in Progress"}, {1, "SOL Enable"}, {2, "SOL Authentication"},
    {3, "Character Accumulate Interval and Send Threshold"}, {4, "SOL Retry"}, {5, "SOL Non-volatile Bit Rate"},
    {6, "SOL Volatile Bit Rate"}, {7, "SOL Payload Channel"}, {8, "SOL Payload Port"}});

}  // namespace qxview
