// Opening and creating files in the ways from before NT (MS-CIFS 2.2.4.3, 2.2.4.4, 2.2.4.16 and 2.2.4.41).
#include "decoders/smb/smb_commands.h"
#include "decoders/smb/smb_open_names.h"

namespace qxview {
namespace {

constexpr auto kOpen = LittleRows<Smb>({SmbTable<kSmbAccessMode>(), Flags(2, "Search Attributes", kSmbSearchBits)});
constexpr auto kOpened = LittleRows<Smb>({
    Hex(2, "FID"), Flags(2, "File Attributes", kSmbAttributeBits), UnixTime(4, "Last Write Time"),
    Number(4, "File Size"), SmbTable<kSmbAccessMode>()});

constexpr auto kCreate = LittleRows<Smb>({
    Flags(2, "File Attributes", kSmbAttributeBits), UnixTime(4, "Creation Time")});

constexpr auto kOpenAndX = LittleRows<Smb>({
    Flags(2, "Flags", kSmbOpenFlagBits), SmbTable<kSmbAccessMode>(), Flags(2, "Search Attributes", kSmbSearchBits),
    Flags(2, "File Attributes", kSmbAttributeBits), UnixTime(4, "Creation Time"), SmbTable<kSmbOpenFunction>(),
    Number(4, "Allocation Size"), Number(4, "Timeout"), Hex(4, "Reserved")});
constexpr auto kOpenAndXName = LittleRows<Smb>({SmbText("File Name")});
constexpr auto kOpenedAndX = LittleRows<Smb>({
    SmbTable<kOpened>(), Coded(2, "File Type", kSmbFileTypeNames), Flags(2, "Pipe State", kSmbPipeStateBits),
    SmbTable<kSmbOpenResults>(), Hex(4, "Server FID"), Hex(2, "Reserved"),
    Flags(4, "Maximal Access Rights", kSmbAccessMaskBits),
    Flags(4, "Guest Maximal Access Rights", kSmbAccessMaskBits)});

}  // namespace

void OpenRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kOpen); }
void OpenResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kOpened); }
void CreateRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kCreate); }
void OpenAndXRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kOpenAndX); }
void OpenAndXRequestData(SmbBlock& block) { ShowSmbRows(block, block.data, kOpenAndXName); }
void OpenAndXResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kOpenedAndX); }

}  // namespace qxview
