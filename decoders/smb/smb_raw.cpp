// Reading and writing in raw and multiplexed pieces, and IOCTL (MS-CIFS 2.2.4.22 to 2.2.4.28, 2.2.4.35 and 2.2.4.36).
//
// The data of a raw read and of a raw write's second message comes without any header.
#include "decoders/smb/smb_commands.h"

namespace qxview {
namespace {

constexpr auto kWriteModeBits = SortedNames({
    {0x0001, "Write Through"}, {0x0002, "Return Bytes Available"}, {0x0004, "Raw Named Pipe"},
    {0x0008, "Start of Message"}, {0x0080, "Connectionless"}});

constexpr SmbField kReadPieces[] = {
    {kSmbHex16, "FID"}, {kSmbNumber32, "Offset"}, {kSmbNumber16, "Maximum Count"}, {kSmbNumber16, "Minimum Count"},
    {kSmbNumber32, "Timeout"}, {kSmbHex16, "Reserved"}, {kSmbNumber32, "Offset High"}};

constexpr SmbField kReadMpxResult[] = {
    {kSmbNumber32, "Offset"}, {kSmbNumber16, "Count"}, {kSmbNumber16, "Remaining"},
    {kSmbNumber16, "Data Compaction Mode"}, {kSmbHex16, "Reserved"}, {kSmbNumber16, "Data Length"},
    {kSmbNumber16, "Data Offset"}};

constexpr SmbField kWriteRaw[] = {
    {kSmbHex16, "FID"}, {kSmbNumber16, "Count"}, {kSmbHex16, "Reserved"}, {kSmbNumber32, "Offset"},
    {kSmbNumber32, "Timeout"}, {kSmbFlags16, "Write Mode", kWriteModeBits}, {kSmbHex32, "Reserved"},
    {kSmbNumber16, "Data Length"}, {kSmbNumber16, "Data Offset"}, {kSmbNumber32, "Offset High"}};
constexpr SmbField kWriteRawResult[] = {{kSmbNumber16, "Remaining"}};

constexpr SmbField kWriteMpx[] = {
    {kSmbHex16, "FID"}, {kSmbNumber16, "Count"}, {kSmbHex16, "Reserved"}, {kSmbNumber32, "Offset"},
    {kSmbNumber32, "Timeout"}, {kSmbFlags16, "Write Mode", kWriteModeBits}, {kSmbHex32, "Request Mask"},
    {kSmbNumber16, "Data Length"}, {kSmbNumber16, "Data Offset"}};
constexpr SmbField kWriteMpxResult[] = {{kSmbHex32, "Response Mask"}};

constexpr SmbField kIoctl[] = {
    {kSmbHex16, "FID"}, {kSmbHex16, "Category"}, {kSmbHex16, "Function"}, {kSmbNumber16, "Total Parameter Count"},
    {kSmbNumber16, "Total Data Count"}, {kSmbNumber16, "Maximum Parameter Count"},
    {kSmbNumber16, "Maximum Data Count"}, {kSmbNumber32, "Timeout"}, {kSmbHex16, "Reserved"},
    {kSmbNumber16, "Parameter Count"}, {kSmbNumber16, "Parameter Offset"}, {kSmbNumber16, "Data Count"},
    {kSmbNumber16, "Data Offset"}};

// Of responses and of secondary requests.
constexpr SmbField kIoctlCounts[] = {
    {kSmbNumber16, "Total Parameter Count"}, {kSmbNumber16, "Total Data Count"}, {kSmbNumber16, "Parameter Count"},
    {kSmbNumber16, "Parameter Offset"}, {kSmbNumber16, "Parameter Displacement"}, {kSmbNumber16, "Data Count"},
    {kSmbNumber16, "Data Offset"}, {kSmbNumber16, "Data Displacement"}};

void AddIoctlBytes(SmbBlock& block, uint32_t parameterCount, uint32_t parameterOffset, uint32_t dataCount,
                   uint32_t dataOffset) {
  if (parameterCount > 0) {
    AddSmbPadTo(*block.message, block.in, block.data, parameterOffset);
    Cursor parameters = TakeCursor(block.data, parameterCount);
    AddBlock(block.in, Rest(parameters), "Parameter Bytes");
  }
  if (dataCount == 0) return;
  AddSmbPadTo(*block.message, block.in, block.data, dataOffset, parameterCount > 0 ? "Pad1" : "Pad");
  Cursor data = TakeCursor(block.data, dataCount);
  AddBlock(block.in, Rest(data), "Data Bytes");
}

}  // namespace

void ReadRawRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kReadPieces); }
void ReadMpxRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kReadPieces); }
void ReadMpxResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kReadMpxResult); }
void ReadMpxResponseData(SmbBlock& block) { AddSmbFileDataAt(block, SmbWord(block, 7), SmbWord(block, 6)); }
// A server that asks for the rest does so in a message that is no response by its flags.
void WriteRawRequestWords(SmbBlock& block) {
  if (block.wordCount == 1) {
    AddSmbFields(block, block.words, kWriteRawResult);
  } else {
    AddSmbFields(block, block.words, kWriteRaw);
  }
}
void WriteRawRequestData(SmbBlock& block) { AddSmbFileDataAt(block, SmbWord(block, 11), SmbWord(block, 10)); }
void WriteRawResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kWriteRawResult); }
void WriteMpxRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kWriteMpx); }
void WriteMpxResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kWriteMpxResult); }

void IoctlRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kIoctl); }
void IoctlRequestData(SmbBlock& block) {
  AddIoctlBytes(block, SmbWord(block, 10), SmbWord(block, 11), SmbWord(block, 12), SmbWord(block, 13));
}
void IoctlCountsWords(SmbBlock& block) { AddSmbFields(block, block.words, kIoctlCounts); }
void IoctlCountsData(SmbBlock& block) {
  AddIoctlBytes(block, SmbWord(block, 2), SmbWord(block, 3), SmbWord(block, 5), SmbWord(block, 6));
}

}  // namespace qxview
