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

constexpr SmbField kDirectory[] = {{kSmbFormattedText, "Directory Name"}};
constexpr SmbField kFid[] = {{kSmbHex16, "FID"}};
constexpr SmbField kClose[] = {{kSmbHex16, "FID"}, {kSmbTime32, "Last Write Time"}};
constexpr SmbField kSearchAttributes[] = {{kSmbFlags16, "Search Attributes", kSmbSearchBits}};
constexpr SmbField kFileName[] = {{kSmbFormattedText, "File Name"}};
constexpr SmbField kRename[] = {{kSmbFormattedText, "Old File Name"}, {kSmbFormattedText, "New File Name"}};

constexpr SmbField kGetAttributes[] = {
    {kSmbFlags16, "File Attributes", kSmbAttributeBits}, {kSmbTime32, "Last Write Time"}, {kSmbNumber32, "File Size"},
    {kSmbBytes, "Reserved", {}, 10}};

constexpr SmbField kSetAttributes[] = {
    {kSmbFlags16, "File Attributes", kSmbAttributeBits}, {kSmbTime32, "Last Write Time"},
    {kSmbBytes, "Reserved", {}, 10}};
constexpr SmbField kSetAttributesName[] = {{kSmbFormattedText, "File Name"}, {kSmbFormattedText, "Reserved Name"}};

constexpr SmbField kSeek[] = {{kSmbHex16, "FID"}, {kSmbName16, "Mode", kSeekModes}, {kSmbSigned32, "Offset"}};
constexpr SmbField kSeekResult[] = {{kSmbNumber32, "Offset"}};

constexpr SmbField kSetExpanded[] = {
    {kSmbHex16, "FID"}, {kSmbDosDateTime, "Creation Time"}, {kSmbDosDateTime, "Last Access Time"},
    {kSmbDosDateTime, "Last Write Time"}};

constexpr SmbField kGetExpanded[] = {
    {kSmbDosDateTime, "Creation Time"}, {kSmbDosDateTime, "Last Access Time"}, {kSmbDosDateTime, "Last Write Time"},
    {kSmbNumber32, "File Size"}, {kSmbNumber32, "Allocation Size"},
    {kSmbFlags16, "File Attributes", kSmbAttributeBits}};

constexpr SmbField kCopy[] = {
    {kSmbHex16, "Target TID"}, {kSmbFlags16, "Open Function", kOpenFunctionBits},
    {kSmbFlags16, "Flags", kCopyFlagBits}};
constexpr SmbField kCopyNames[] = {{kSmbFormattedText, "Source File Name"}, {kSmbFormattedText, "Target File Name"}};
constexpr SmbField kCopyResult[] = {{kSmbNumber16, "Count of Files Copied"}};
constexpr SmbField kCopyError[] = {{kSmbFormattedText, "Error File Name"}};

}  // namespace

void DirectoryRequestData(SmbBlock& block) { AddSmbFields(block, block.data, kDirectory); }
void FidWords(SmbBlock& block) { AddSmbFields(block, block.words, kFid); }
void CloseRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kClose); }
void SearchAttributesWords(SmbBlock& block) { AddSmbFields(block, block.words, kSearchAttributes); }
void FileNameData(SmbBlock& block) { AddSmbFields(block, block.data, kFileName); }
void RenameRequestData(SmbBlock& block) { AddSmbFields(block, block.data, kRename); }
void GetAttributesResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kGetAttributes); }
void SetAttributesRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kSetAttributes); }
void SetAttributesRequestData(SmbBlock& block) { AddSmbFields(block, block.data, kSetAttributesName); }
void SeekRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kSeek); }
void SeekResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kSeekResult); }
void SetExpandedRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kSetExpanded); }
void GetExpandedResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kGetExpanded); }
void CopyRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kCopy); }
void CopyRequestData(SmbBlock& block) { AddSmbFields(block, block.data, kCopyNames); }
void CopyResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kCopyResult); }
void CopyResponseData(SmbBlock& block) { AddSmbFields(block, block.data, kCopyError); }

// The name that the server made up is of one byte a character whatever flags 2 say, and servers differ on whether it has
// a format in front of it.
void TemporaryNameData(SmbBlock& block) {
  constexpr uint8_t kAsciiFormat = 4;
  constexpr SmbField kFormatted[] = {{kSmbFormattedOem, "File Name"}}, kBare[] = {{kSmbOemText, "File Name"}};
  const bool formatted = Left(block.data) > 0 && *block.data.at == kAsciiFormat;
  AddSmbFields(block, block.data, formatted ? std::span(kFormatted) : std::span(kBare));
}

}  // namespace qxview
