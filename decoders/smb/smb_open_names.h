// Names of what opens ask for and answer, by commands and by transactions alike.
#pragma once
#include "decoders/smb/smb_block.h"

namespace qxview {

// --- opens of NT (MS-CIFS 2.2.4.64, 2.2.7.1) ---

inline constexpr auto kSmbNtOpenFlagBits = SortedNames({
    {0x00000002, "Request Opportunistic Lock"}, {0x00000004, "Request Batch Opportunistic Lock"},
    {0x00000008, "Open Target Directory"}, {0x00000010, "Request Extended Response"}});

inline constexpr auto kSmbShareAccessBits = SortedNames({{0x00000001, "Read"}, {0x00000002, "Write"}, {0x00000004, "Delete"}});

inline constexpr auto kSmbDispositionNames = SortedNames({
    {0, "Supersede"}, {1, "Open"}, {2, "Create"}, {3, "Open or Create"}, {4, "Overwrite"}, {5, "Overwrite or Create"}});

inline constexpr auto kSmbCreateOptionBits = SortedNames({
    {0x00000001, "Directory File"}, {0x00000002, "Write Through"}, {0x00000004, "Sequential Only"},
    {0x00000008, "No Intermediate Buffering"}, {0x00000010, "Synchronous I/O Alert"},
    {0x00000020, "Synchronous I/O Nonalert"}, {0x00000040, "Non-Directory File"},
    {0x00000080, "Create Tree Connection"}, {0x00000100, "Complete if Oplocked"}, {0x00000200, "No EA Knowledge"},
    {0x00000400, "Open for Recovery"}, {0x00000800, "Random Access"}, {0x00001000, "Delete on Close"},
    {0x00002000, "Open by File ID"}, {0x00004000, "Open for Backup Intent"}, {0x00008000, "No Compression"},
    {0x00100000, "Reserve Opfilter"}, {0x00200000, "Open Reparse Point"}, {0x00400000, "Open No Recall"},
    {0x00800000, "Open for Free Space Query"}});

inline constexpr auto kSmbImpersonationNames = SortedNames({
    {0, "Anonymous"}, {1, "Identification"}, {2, "Impersonation"}, {3, "Delegation"}});

inline constexpr auto kSmbSecurityFlagBits = SortedNames({{0x01, "Context Tracking"}, {0x02, "Effective Only"}});

inline constexpr auto kSmbOplockLevelNames = SortedNames({{0, "None"}, {1, "Exclusive"}, {2, "Batch"}, {3, "Level II"}});

inline constexpr auto kSmbCreateActionNames = SortedNames({
    {0, "File Superseded"}, {1, "File Opened"}, {2, "File Created"}, {3, "File Overwritten"}});

// What both ways of opening ask, and what they answer.
inline constexpr auto kSmbNtOpen = LittleRows<Smb>({
    Flags(4, "Flags", kSmbNtOpenFlagBits), Hex(4, "Root Directory FID"), Flags(4, "Desired Access", kSmbAccessMaskBits),
    Number(8, "Allocation Size"), Flags(4, "File Attributes", kSmbAttributeBits),
    Flags(4, "Share Access", kSmbShareAccessBits), Coded(4, "Create Disposition", kSmbDispositionNames),
    Flags(4, "Create Options", kSmbCreateOptionBits)});
inline constexpr auto kSmbNtSecurity = LittleRows<Smb>({
    Coded(4, "Impersonation Level", kSmbImpersonationNames), Flags(1, "Security Flags", kSmbSecurityFlagBits)});
inline constexpr auto kSmbNtOpened = LittleRows<Smb>({
    FileTime("Creation Time"), FileTime("Last Access Time"), FileTime("Last Write Time"), FileTime("Change Time"),
    Flags(4, "File Attributes", kSmbAttributeBits), Number(8, "Allocation Size"), Number(8, "End of File"),
    Coded(2, "File Type", kSmbFileTypeNames), Flags(2, "Pipe State", kSmbPipeStateBits),
    Coded(1, "Directory", kFalseTrueNames), Bytes(16, "Volume GUID"), Hex(8, "File ID"),
    Flags(4, "Maximal Access Rights", kSmbAccessMaskBits),
    Flags(4, "Guest Maximal Access Rights", kSmbAccessMaskBits)});

// --- opens from before NT (MS-CIFS 2.2.4.3, 2.2.4.41, 2.2.6.1) ---

inline constexpr auto kSmbAccessModeNames = SortedNames({{0, "Read"}, {1, "Write"}, {2, "Read and Write"}, {3, "Execute"}});
inline constexpr auto kSmbSharingModeNames = SortedNames({
    {0, "Compatibility"}, {1, "Deny Read, Write and Execute"}, {2, "Deny Write"}, {3, "Deny Read and Execute"},
    {4, "Deny None"}, {7, "FCB"}});
inline constexpr auto kSmbLocalityNames = SortedNames({
    {0, "Unknown"}, {1, "Mainly Sequential"}, {2, "Mainly Random"}, {3, "Random with Some Locality"}});
inline constexpr auto kSmbExistsActionNames = SortedNames({{0, "Fail"}, {1, "Open"}, {2, "Truncate"}});
inline constexpr auto kSmbOpenActionNames = SortedNames({
    {1, "File Existed and was Opened"}, {2, "File Did Not Exist and was Created"},
    {3, "File Existed and was Truncated"}});

inline constexpr auto kSmbOpenFlagBits = SortedNames({
    {0x0001, "Additional Information Requested"}, {0x0002, "Exclusive Opportunistic Lock Requested"},
    {0x0004, "Batch Opportunistic Lock Requested"}, {0x0008, "Total Length of EAs Requested"},
    {0x0010, "Extended Response Requested"}});

// Some bits of a word with the names of their values.
consteval RowData SmbBits(uint8_t first, uint8_t count, const char* label, Names names) {
  names.unnamed = kUndefined;
  RowData row = Flag(first, label, names);
  row.bitCount = count;
  return row;
}

inline constexpr auto kSmbAccessMode = LittleRows<Smb>({
    Hex(2, "Access Mode"), SmbBits(13, 3, "Access", kSmbAccessModeNames),
    SmbBits(9, 3, "Sharing", kSmbSharingModeNames), SmbBits(5, 3, "Locality", kSmbLocalityNames),
    Flag(3, "Do Not Cache"), Flag(1, "Write Through")});
inline constexpr auto kSmbOpenFunction = LittleRows<Smb>({
    Hex(2, "Open Function"), SmbBits(14, 2, "If the File Exists", kSmbExistsActionNames),
    Flag(11, "Create if It Does Not")});
inline constexpr auto kSmbOpenResults = LittleRows<Smb>({
    Hex(2, "Open Results"), SmbBits(14, 2, "Action", kSmbOpenActionNames), Flag(0, "Opportunistic Lock Granted")});

}  // namespace qxview
