// NT Create AndX (MS-CIFS 2.2.4.64, MS-SMB 2.2.4.9).
//
// The response has grown: 34 words; 42 with a volume GUID; 50 with a file ID and access rights too.
#include "decoders/smb/smb_commands.h"
#include "decoders/smb/smb_open_names.h"

namespace qxview {
namespace {

constexpr SmbField kRequest[] = {
    {kSmbHex8, "Reserved"}, {kSmbNumber16, "Name Length"}, {kSmbFlags32, "Flags", kSmbNtOpenFlagBits},
    {kSmbHex32, "Root Directory FID"}, {kSmbFlags32, "Desired Access", kSmbAccessMaskBits},
    {kSmbNumber64, "Allocation Size"}, {kSmbFlags32, "File Attributes", kSmbAttributeBits},
    {kSmbFlags32, "Share Access", kSmbShareAccessBits}, {kSmbName32, "Create Disposition", kSmbDispositionNames},
    {kSmbFlags32, "Create Options", kSmbCreateOptionBits},
    {kSmbName32, "Impersonation Level", kSmbImpersonationNames},
    {kSmbFlags8, "Security Flags", kSmbSecurityFlagBits}};

constexpr SmbField kResponse[] = {
    {kSmbName8, "Opportunistic Lock Level", kSmbOplockLevelNames}, {kSmbHex16, "FID"},
    {kSmbName32, "Create Action", kSmbCreateActionNames}, {kSmbFileTime, "Creation Time"},
    {kSmbFileTime, "Last Access Time"},
    {kSmbFileTime, "Last Write Time"}, {kSmbFileTime, "Change Time"},
    {kSmbFlags32, "File Attributes", kSmbAttributeBits}, {kSmbNumber64, "Allocation Size"},
    {kSmbNumber64, "End of File"}, {kSmbName16, "File Type", kSmbFileTypeNames},
    {kSmbFlags16, "Pipe State", kSmbPipeStateBits}, {kSmbName8, "Directory", kFalseTrueNames},
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
