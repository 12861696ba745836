// The names that SMB's summary takes: commands of both versions (MS-CIFS 2.2.2.1, MS-SMB2 2.2.1) and the statuses that
// clients meet (MS-ERREF 2.3).
#pragma once
#include "core/name_table.h"

namespace qxview {

inline constexpr auto kSmbCommandNames = SortedNames({
    {0x00, "Create Directory"}, {0x01, "Delete Directory"}, {0x02, "Open"}, {0x03, "Create"}, {0x04, "Close"},
    {0x05, "Flush"}, {0x06, "Delete"}, {0x07, "Rename"}, {0x08, "Query Information"}, {0x09, "Set Information"},
    {0x0A, "Read"}, {0x0B, "Write"}, {0x0C, "Lock Byte Range"}, {0x0D, "Unlock Byte Range"},
    {0x0E, "Create Temporary"}, {0x0F, "Create New"}, {0x10, "Check Directory"}, {0x11, "Process Exit"},
    {0x12, "Seek"}, {0x13, "Lock And Read"}, {0x14, "Write And Unlock"}, {0x1A, "Read Raw"}, {0x1B, "Read MPX"},
    {0x1C, "Read MPX Secondary"}, {0x1D, "Write Raw"}, {0x1E, "Write MPX"}, {0x1F, "Write MPX Secondary"},
    {0x20, "Write Complete"}, {0x22, "Set Information 2"}, {0x23, "Query Information 2"}, {0x24, "Locking AndX"},
    {0x25, "Transaction"}, {0x26, "Transaction Secondary"}, {0x27, "IOCTL"}, {0x28, "IOCTL Secondary"},
    {0x29, "Copy"}, {0x2A, "Move"}, {0x2B, "Echo"}, {0x2C, "Write And Close"}, {0x2D, "Open AndX"},
    {0x2E, "Read AndX"}, {0x2F, "Write AndX"}, {0x31, "Close And Tree Disconnect"}, {0x32, "Transaction 2"},
    {0x33, "Transaction 2 Secondary"}, {0x34, "Find Close 2"}, {0x35, "Find Notify Close"}, {0x70, "Tree Connect"},
    {0x71, "Tree Disconnect"}, {0x72, "Negotiate"}, {0x73, "Session Setup AndX"}, {0x74, "Logoff AndX"},
    {0x75, "Tree Connect AndX"}, {0x80, "Query Information Disk"}, {0x81, "Search"}, {0x82, "Find"},
    {0x83, "Find Unique"}, {0x84, "Find Close"}, {0xA0, "NT Transact"}, {0xA1, "NT Transact Secondary"},
    {0xA2, "NT Create AndX"}, {0xA4, "NT Cancel"}, {0xA5, "NT Rename"}, {0xC0, "Open Print File"},
    {0xC1, "Write Print File"}, {0xC2, "Close Print File"}, {0xC3, "Get Print Queue"},
});

inline constexpr auto kSmb2CommandNames = SortedNames({
    {0x00, "Negotiate"}, {0x01, "Session Setup"}, {0x02, "Logoff"}, {0x03, "Tree Connect"}, {0x04, "Tree Disconnect"},
    {0x05, "Create"}, {0x06, "Close"}, {0x07, "Flush"}, {0x08, "Read"}, {0x09, "Write"}, {0x0A, "Lock"},
    {0x0B, "IOCTL"}, {0x0C, "Cancel"}, {0x0D, "Echo"}, {0x0E, "Query Directory"}, {0x0F, "Change Notify"},
    {0x10, "Query Info"}, {0x11, "Set Info"}, {0x12, "Oplock Break"},
});

inline constexpr auto kNtStatusNames = SortedNames({
    {0x00000103, "Pending"}, {0x0000010B, "Notify Cleanup"}, {0x0000010C, "Notify Enum Dir"},
    {0x80000005, "Buffer Overflow"}, {0x80000006, "No More Files"}, {0xC0000001, "Unsuccessful"},
    {0xC0000002, "Not Implemented"}, {0xC0000003, "Invalid Info Class"}, {0xC0000004, "Info Length Mismatch"},
    {0xC0000008, "Invalid Handle"}, {0xC000000D, "Invalid Parameter"}, {0xC000000F, "No Such File"},
    {0xC0000010, "Invalid Device Request"}, {0xC0000011, "End Of File"},
    {0xC0000016, "More Processing Required"}, {0xC0000022, "Access Denied"}, {0xC0000023, "Buffer Too Small"},
    {0xC0000033, "Object Name Invalid"}, {0xC0000034, "Object Name Not Found"},
    {0xC0000035, "Object Name Collision"}, {0xC0000039, "Object Path Invalid"},
    {0xC000003A, "Object Path Not Found"}, {0xC0000043, "Sharing Violation"}, {0xC0000054, "File Lock Conflict"},
    {0xC0000055, "Lock Not Granted"}, {0xC0000056, "Delete Pending"}, {0xC0000061, "Privilege Not Held"},
    {0xC000006A, "Wrong Password"}, {0xC000006D, "Logon Failure"}, {0xC000006E, "Account Restriction"},
    {0xC000006F, "Invalid Logon Hours"}, {0xC0000070, "Invalid Workstation"}, {0xC0000071, "Password Expired"},
    {0xC0000072, "Account Disabled"}, {0xC000007F, "Disk Full"}, {0xC000009A, "Insufficient Resources"},
    {0xC00000AC, "Pipe Not Available"}, {0xC00000B0, "Pipe Disconnected"}, {0xC00000B5, "IO Timeout"},
    {0xC00000BA, "File Is A Directory"}, {0xC00000BB, "Not Supported"}, {0xC00000C9, "Network Name Deleted"},
    {0xC00000CC, "Bad Network Name"}, {0xC0000101, "Directory Not Empty"}, {0xC0000103, "Not A Directory"},
    {0xC0000120, "Cancelled"}, {0xC0000128, "File Closed"}, {0xC000014B, "Pipe Broken"},
    {0xC000015B, "Logon Type Not Granted"}, {0xC0000203, "User Session Deleted"},
    {0xC0000224, "Password Must Change"}, {0xC0000225, "Not Found"}, {0xC0000234, "Account Locked Out"},
    {0xC0000257, "Path Not Covered"}, {0xC000035C, "Network Session Expired"},
});

}  // namespace qxview
