// Names that several of SMB's commands share.
#pragma once
#include "core/name_table.h"

namespace qxview {

// 8, 16 and 32 bits of file attributes.
inline constexpr auto kSmbAttributeBits = SortedNames({
    {0x0001, "Read Only"}, {0x0002, "Hidden"}, {0x0004, "System"}, {0x0008, "Volume"}, {0x0010, "Directory"},
    {0x0020, "Archive"}, {0x0040, "Device"}, {0x0080, "Normal"}, {0x0100, "Temporary"}, {0x0200, "Sparse"},
    {0x0400, "Reparse Point"}, {0x0800, "Compressed"}, {0x1000, "Offline"}, {0x2000, "Not Content Indexed"},
    {0x4000, "Encrypted"}, {0x01000000, "POSIX Semantics"}, {0x02000000, "Backup Semantics"},
    {0x04000000, "Delete on Close"}, {0x08000000, "Sequential Scan"}, {0x10000000, "Random Access"},
    {0x20000000, "No Buffering"}, {0x80000000, "Write Through"}});

// What a search finds beside normal files, and what a file must be to be found.
inline constexpr auto kSmbSearchBits = SortedNames({
    {0x0001, "Read Only"}, {0x0002, "Hidden"}, {0x0004, "System"}, {0x0008, "Volume"}, {0x0010, "Directory"},
    {0x0020, "Archive"}, {0x0100, "Must be Read Only"}, {0x0200, "Must be Hidden"}, {0x0400, "Must be System"},
    {0x1000, "Must be a Directory"}, {0x2000, "Must be Archive"}});

// Rights to files, of NT opens and of shares.
inline constexpr auto kSmbAccessMaskBits = SortedNames({
    {0x00000001, "Read Data"}, {0x00000002, "Write Data"}, {0x00000004, "Append Data"},
    {0x00000008, "Read Extended Attributes"}, {0x00000010, "Write Extended Attributes"}, {0x00000020, "Execute"},
    {0x00000040, "Delete Child"}, {0x00000080, "Read Attributes"}, {0x00000100, "Write Attributes"},
    {0x00010000, "Delete"}, {0x00020000, "Read Control"}, {0x00040000, "Write DAC"}, {0x00080000, "Write Owner"},
    {0x00100000, "Synchronize"}, {0x01000000, "System Security"}, {0x02000000, "Maximum Allowed"},
    {0x10000000, "Generic All"}, {0x20000000, "Generic Execute"}, {0x40000000, "Generic Write"},
    {0x80000000, "Generic Read"}});

// What stands in front of core texts and blocks in the data bytes.
inline constexpr auto kSmbBufferFormatNames = SortedNames({
    {1, "Data Block"}, {2, "Dialect"}, {3, "Pathname"}, {4, "ASCII"}, {5, "Variable Block"}});

inline constexpr auto kSmbFileTypeNames = SortedNames({
    {0, "Disk File or Directory"}, {1, "Byte Mode Named Pipe"}, {2, "Message Mode Named Pipe"}, {3, "Printer"},
    {4, "Communications Device"}, {0xFFFF, "Unknown"}});

// Of an opened pipe or device.
inline constexpr auto kSmbPipeStateBits = SortedNames({
    {0x00FF, "Instances"}, {0x0300, "Read Mode (0 Bytes, 1 Messages)"}, {0x0C00, "Type (0 Bytes, 1 Messages)"},
    {0x4000, "Server Endpoint"}, {0x8000, "Nonblocking"}});

// Of sessions, in negotiations and setups.
inline constexpr auto kSmbCapabilityBits = SortedNames({
    {0x00000001, "Raw Mode"}, {0x00000002, "MPX Mode"}, {0x00000004, "Unicode"}, {0x00000008, "Large Files"},
    {0x00000010, "NT SMBs"}, {0x00000020, "RPC Remote APIs"}, {0x00000040, "NT Status Codes"},
    {0x00000080, "Level II Opportunistic Locks"}, {0x00000100, "Lock and Read"}, {0x00000200, "NT Find"},
    {0x00000400, "Bulk Transfer"}, {0x00000800, "Compressed Bulk Transfer"}, {0x00001000, "DFS"},
    {0x00002000, "Information Level Passthrough"}, {0x00004000, "Large Read AndX"}, {0x00008000, "Large Write AndX"},
    {0x00010000, "Lightweight I/O"}, {0x00800000, "UNIX Extensions"}, {0x02000000, "Compressed Data"},
    {0x20000000, "Dynamic Reauthentication"}, {0x40000000, "Persistent Handles"},
    {0x80000000, "Extended Security"}});

// What a server is, in its announcements and in lists of servers.
inline constexpr auto kSmbServerTypeBits = SortedNames({
    {0x00000001, "Workstation"}, {0x00000002, "Server"}, {0x00000004, "SQL Server"},
    {0x00000008, "Domain Controller"}, {0x00000010, "Backup Domain Controller"}, {0x00000020, "Time Source"},
    {0x00000040, "Apple File Protocol"}, {0x00000080, "Novell"}, {0x00000100, "Domain Member"},
    {0x00000200, "Print Queue Server"}, {0x00000400, "Dial-In Server"}, {0x00000800, "UNIX Server"},
    {0x00001000, "NT Workstation"}, {0x00002000, "Windows For Workgroups"}, {0x00004000, "NetWare File and Print"},
    {0x00008000, "NT Server"}, {0x00010000, "Potential Browser"}, {0x00020000, "Backup Browser"},
    {0x00040000, "Master Browser"}, {0x00080000, "Domain Master Browser"}, {0x00100000, "OSF"}, {0x00200000, "VMS"},
    {0x00400000, "Windows 95 Or Later"}, {0x00800000, "DFS Root"}, {0x01000000, "Cluster"},
    {0x02000000, "Terminal Server"}, {0x10000000, "DCE Cell Directory Server"}, {0x20000000, "Alternate Transport"},
    {0x40000000, "Local List Only"}, {0x80000000, "Domain Enumeration"}});

}  // namespace qxview
