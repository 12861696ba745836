// NT Create AndX (MS-CIFS 2.2.4.64, MS-SMB 2.2.4.9).
//
// The response has grown: 34 words; 42 with a volume GUID; 50 with a file ID and access rights too.
#include "decoders/smb/smb_commands.h"

namespace qxview {
namespace {

constexpr auto kFlagBits = SortedNames({
    {0x00000002, "Request Opportunistic Lock"}, {0x00000004, "Request Batch Opportunistic Lock"},
    {0x00000008, "Open Target Directory"}, {0x00000010, "Request Extended Response"}});

constexpr auto kShareBits = SortedNames({{0x00000001, "Read"}, {0x00000002, "Write"}, {0x00000004, "Delete"}});

constexpr auto kDispositions = SortedNames({
    {0, "Supersede"}, {1, "Open"}, {2, "Create"}, {3, "Open or Create"}, {4, "Overwrite"}, {5, "Overwrite or Create"}});

constexpr auto kOptionBits = SortedNames({
    {0x00000001, "Directory File"}, {0x00000002, "Write Through"}, {0x00000004, "Sequential Only"},
    {0x00000008, "No Intermediate Buffering"}, {0x00000010, "Synchronous I/O Alert"},
    {0x00000020, "Synchronous I/O Nonalert"}, {0x00000040, "Non-Directory File"},
    {0x00000080, "Create Tree Connection"}, {0x00000100, "Complete if Oplocked"}, {0x00000200, "No EA Knowledge"},
    {0x00000400, "Open for Recovery"}, {0x00000800, "Random Access"}, {0x00001000, "Delete on Close"},
    {0x00002000, "Open by File ID"}, {0x00004000, "Open for Backup Intent"}, {0x00008000, "No Compression"},
    {0x00100000, "Reserve Opfilter"}, {0x00200000, "Open Reparse Point"}, {0x00400000, "Open No Recall"},
    {0x00800000, "Open for Free Space Query"}});

constexpr auto kImpersonationLevels = SortedNames({
    {0, "Anonymous"}, {1, "Identification"}, {2, "Impersonation"}, {3, "Delegation"}});

constexpr auto kSecurityBits = SortedNames({{0x01, "Context Tracking"}, {0x02, "Effective Only"}});

constexpr auto kOplockLevels = SortedNames({{0, "None"}, {1, "Exclusive"}, {2, "Batch"}, {3, "Level II"}});

constexpr auto kCreateActions = SortedNames({
    {0, "File Superseded"}, {1, "File Opened"}, {2, "File Created"}, {3, "File Overwritten"}});

constexpr auto kFalseTrue = SortedNames({{0, "False"}, {1, "True"}});

constexpr SmbField kRequest[] = {
    {kSmbHex8, "Reserved"}, {kSmbNumber16, "Name Length"}, {kSmbFlags32, "Flags", kFlagBits},
    {kSmbHex32, "Root Directory FID"}, {kSmbFlags32, "Desired Access", kSmbAccessMaskBits},
    {kSmbNumber64, "Allocation Size"}, {kSmbFlags32, "File Attributes", kSmbAttributeBits},
    {kSmbFlags32, "Share Access", kShareBits}, {kSmbName32, "Create Disposition", kDispositions},
    {kSmbFlags32, "Create Options", kOptionBits}, {kSmbName32, "Impersonation Level", kImpersonationLevels},
    {kSmbFlags8, "Security Flags", kSecurityBits}};

constexpr SmbField kResponse[] = {
    {kSmbName8, "Opportunistic Lock Level", kOplockLevels}, {kSmbHex16, "FID"},
    {kSmbName32, "Create Action", kCreateActions}, {kSmbFileTime, "Creation Time"}, {kSmbFileTime, "Last Access Time"},
    {kSmbFileTime, "Last Write Time"}, {kSmbFileTime, "Change Time"},
    {kSmbFlags32, "File Attributes", kSmbAttributeBits}, {kSmbNumber64, "Allocation Size"},
    {kSmbNumber64, "End of File"}, {kSmbName16, "File Type", kSmbFileTypeNames},
    {kSmbFlags16, "Pipe State", kSmbPipeStateBits}, {kSmbName8, "Directory", kFalseTrue},
    {kSmbBytes, "Volume GUID", {}, 16}, {kSmbHex64, "File ID"},
    {kSmbFlags32, "Maximal Access Rights", kSmbAccessMaskBits},
    {kSmbFlags32, "Guest Maximal Access Rights", kSmbAccessMaskBits}};

constexpr SmbField kName[] = {{kSmbText, "File Name"}};

}  // namespace

void NtCreateRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kRequest); }
// Clients round the bytes behind the name up.
void NtCreateRequestData(SmbBlock& block) {
  AddSmbFields(block, block.data, kName);
  AddSmbBytes(block.in, block.data, Left(block.data), "Pad");
}
void NtCreateResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kResponse); }

}  // namespace qxview
