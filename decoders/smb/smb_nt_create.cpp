// NT Create AndX (MS-CIFS 2.2.4.64, MS-SMB 2.2.4.9).
//
// The response has grown: 34 words; 42 with a volume GUID; 50 with a file ID and access rights too.
#include "decoders/smb/smb_commands.h"
#include "decoders/smb/smb_open_names.h"

namespace qxview {
namespace {

constexpr auto kRequest = LittleRows<Smb>({
    Hex(1, "Reserved"), Number(2, "Name Length"), SmbTable<kSmbNtOpen>(), SmbTable<kSmbNtSecurity>()});
constexpr auto kResponse = LittleRows<Smb>({
    Coded(1, "Opportunistic Lock Level", kSmbOplockLevelNames), Hex(2, "FID"),
    Coded(4, "Create Action", kSmbCreateActionNames), SmbTable<kSmbNtOpened>()});
constexpr auto kName = LittleRows<Smb>({SmbText("File Name")});

}  // namespace

void NtCreateRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kRequest); }
// Clients round the bytes behind the name up.
void NtCreateRequestData(SmbBlock& block) {
  ShowSmbRows(block, block.data, kName);
  AddSmbBytes(block.in, block.data, Left(block.data), "Pad");
}
void NtCreateResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kResponse); }

}  // namespace qxview
