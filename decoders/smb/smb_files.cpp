// Files and directories by name or FID: their names, attributes, times and sizes (MS-CIFS 2.2.4.1 to 2.2.4.19).
//
// Names in data bytes stand behind a byte for their format, which is 4.
#include "decoders/smb/smb_commands.h"

namespace qxview {
namespace {

constexpr auto kSeekModes = SortedNames({{0, "From the Start"}, {1, "From the Current Position"}, {2, "From the End"}});

constexpr auto kOpenFunctionBits = SortedNames({
    {0x0003, "File Exists (0 Fail, 1 Append or Open, 2 Truncate)"}, {0x0010, "Create if the File Does Not Exist"}});

constexpr auto kCopyFlagBits = SortedNames({
    {0x0001, "Target is a File"}, {0x0002, "Target is a Directory"}, {0x0004, "Target is ASCII"},
    {0x0008, "Source is ASCII"}, {0x0010, "Verify Writes"}, {0x0020, "Copy the Tree"}});

constexpr auto kDirectory = LittleRows<Smb>({kSmbBufferFormat, SmbText("Directory Name")});
constexpr auto kFid = LittleRows<Smb>({Hex(2, "FID")});
constexpr auto kClose = LittleRows<Smb>({Hex(2, "FID"), UnixTime(4, "Last Write Time")});
constexpr auto kSearchAttributes = LittleRows<Smb>({Flags(2, "Search Attributes", kSmbSearchBits)});
constexpr auto kFileName = LittleRows<Smb>({kSmbBufferFormat, SmbText("File Name")});
constexpr auto kRename = LittleRows<Smb>({
    kSmbBufferFormat, SmbText("Old File Name"), kSmbBufferFormat, SmbText("New File Name")});

constexpr auto kGetAttributes = LittleRows<Smb>({
    Flags(2, "File Attributes", kSmbAttributeBits), UnixTime(4, "Last Write Time"), Number(4, "File Size"),
    Bytes(10, "Reserved")});

constexpr auto kSetAttributes = LittleRows<Smb>({
    Flags(2, "File Attributes", kSmbAttributeBits), UnixTime(4, "Last Write Time"), Bytes(10, "Reserved")});
constexpr auto kSetAttributesName = LittleRows<Smb>({
    kSmbBufferFormat, SmbText("File Name"), kSmbBufferFormat, SmbText("Reserved Name")});

constexpr auto kSeek = LittleRows<Smb>({Hex(2, "FID"), Coded(2, "Mode", kSeekModes), Signed(4, "Offset")});
constexpr auto kSeekResult = LittleRows<Smb>({Number(4, "Offset")});

constexpr auto kSetExpanded = LittleRows<Smb>({
    Hex(2, "FID"), SmbDateTime("Creation Time"), SmbDateTime("Last Access Time"), SmbDateTime("Last Write Time")});

constexpr auto kGetExpanded = LittleRows<Smb>({
    SmbDateTime("Creation Time"), SmbDateTime("Last Access Time"), SmbDateTime("Last Write Time"),
    Number(4, "File Size"), Number(4, "Allocation Size"), Flags(2, "File Attributes", kSmbAttributeBits)});

constexpr auto kCopy = LittleRows<Smb>({
    Hex(2, "Target TID"), Flags(2, "Open Function", kOpenFunctionBits), Flags(2, "Flags", kCopyFlagBits)});
constexpr auto kCopyNames = LittleRows<Smb>({
    kSmbBufferFormat, SmbText("Source File Name"), kSmbBufferFormat, SmbText("Target File Name")});
constexpr auto kCopyResult = LittleRows<Smb>({Number(2, "Count of Files Copied")});
constexpr auto kFormattedName = LittleRows<Smb>({kSmbBufferFormat, SmbOemText("File Name")});
constexpr auto kBareName = LittleRows<Smb>({SmbOemText("File Name")});
constexpr auto kCopyError = LittleRows<Smb>({kSmbBufferFormat, SmbText("Error File Name")});

}  // namespace

void DirectoryRequestData(SmbBlock& block) { ShowSmbRows(block, block.data, kDirectory); }
void FidWords(SmbBlock& block) { ShowSmbRows(block, block.words, kFid); }
void CloseRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kClose); }
void SearchAttributesWords(SmbBlock& block) { ShowSmbRows(block, block.words, kSearchAttributes); }
void FileNameData(SmbBlock& block) { ShowSmbRows(block, block.data, kFileName); }
void RenameRequestData(SmbBlock& block) { ShowSmbRows(block, block.data, kRename); }
void GetAttributesResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kGetAttributes); }
void SetAttributesRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kSetAttributes); }
void SetAttributesRequestData(SmbBlock& block) { ShowSmbRows(block, block.data, kSetAttributesName); }
void SeekRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kSeek); }
void SeekResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kSeekResult); }
void SetExpandedRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kSetExpanded); }
void GetExpandedResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kGetExpanded); }
void CopyRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kCopy); }
void CopyRequestData(SmbBlock& block) { ShowSmbRows(block, block.data, kCopyNames); }
void CopyResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kCopyResult); }
void CopyResponseData(SmbBlock& block) { ShowSmbRows(block, block.data, kCopyError); }

// The name that the server made up is of one byte a character whatever flags 2 say, and servers differ on whether it has
// a format in front of it.
void TemporaryNameData(SmbBlock& block) {
  constexpr uint8_t kAsciiFormat = 4;
  const bool formatted = PeekU8(block.data) == kAsciiFormat;
  ShowSmbRows(block, block.data, formatted ? SmbRowSpan(kFormattedName) : kBareName);
}

}  // namespace qxview
