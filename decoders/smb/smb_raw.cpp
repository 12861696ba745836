// Reading and writing in raw and multiplexed pieces, and IOCTL (MS-CIFS 2.2.4.22 to 2.2.4.28, 2.2.4.35 and 2.2.4.36).
//
// The data of a raw read and of a raw write's second message comes without any header.
#include "decoders/smb/smb_commands.h"

namespace qxview {
namespace {

constexpr auto kWriteModeBits = SortedNames({
    {0x0001, "Write Through"}, {0x0002, "Return Bytes Available"}, {0x0004, "Raw Named Pipe"},
    {0x0008, "Start of Message"}, {0x0080, "Connectionless"}});

constexpr auto kReadPieces = LittleRows<Smb>({
    Hex(2, "FID"), Number(4, "Offset"), Number(2, "Maximum Count"), Number(2, "Minimum Count"), Number(4, "Timeout"),
    Hex(2, "Reserved"), Number(4, "Offset High")});

constexpr auto kReadMpxResult = LittleRows<Smb>({
    Number(4, "Offset"), Number(2, "Count"), Number(2, "Remaining"), Number(2, "Data Compaction Mode"),
    Hex(2, "Reserved"), Number(2, "Data Length"), Number(2, "Data Offset")});

constexpr auto kWriteRaw = LittleRows<Smb>({
    Hex(2, "FID"), Number(2, "Count"), Hex(2, "Reserved"), Number(4, "Offset"), Number(4, "Timeout"),
    Flags(2, "Write Mode", kWriteModeBits), Hex(4, "Reserved"), Number(2, "Data Length"), Number(2, "Data Offset"),
    Number(4, "Offset High")});
constexpr auto kWriteRawResult = LittleRows<Smb>({Number(2, "Remaining")});

constexpr auto kWriteMpx = LittleRows<Smb>({
    Hex(2, "FID"), Number(2, "Count"), Hex(2, "Reserved"), Number(4, "Offset"), Number(4, "Timeout"),
    Flags(2, "Write Mode", kWriteModeBits), Hex(4, "Request Mask"), Number(2, "Data Length"),
    Number(2, "Data Offset")});
constexpr auto kWriteMpxResult = LittleRows<Smb>({Hex(4, "Response Mask")});

constexpr auto kIoctl = LittleRows<Smb>({
    Hex(2, "FID"), Hex(2, "Category"), Hex(2, "Function"), Number(2, "Total Parameter Count"),
    Number(2, "Total Data Count"), Number(2, "Maximum Parameter Count"), Number(2, "Maximum Data Count"),
    Number(4, "Timeout"), Hex(2, "Reserved"), Number(2, "Parameter Count"), Number(2, "Parameter Offset"),
    Number(2, "Data Count"), Number(2, "Data Offset")});

// Of responses and of secondary requests.
constexpr auto kIoctlCounts = LittleRows<Smb>({
    Number(2, "Total Parameter Count"), Number(2, "Total Data Count"), Number(2, "Parameter Count"),
    Number(2, "Parameter Offset"), Number(2, "Parameter Displacement"), Number(2, "Data Count"),
    Number(2, "Data Offset"), Number(2, "Data Displacement")});

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

void ReadRawRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kReadPieces); }
void ReadMpxRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kReadPieces); }
void ReadMpxResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kReadMpxResult); }
void ReadMpxResponseData(SmbBlock& block) { AddSmbFileDataAt(block, SmbWord(block, 7), SmbWord(block, 6)); }
// A server that asks for the rest does so in a message that is no response by its flags.
void WriteRawRequestWords(SmbBlock& block) {
  if (block.wordCount == 1) {
    ShowSmbRows(block, block.words, kWriteRawResult);
  } else {
    ShowSmbRows(block, block.words, kWriteRaw);
  }
}
void WriteRawRequestData(SmbBlock& block) { AddSmbFileDataAt(block, SmbWord(block, 11), SmbWord(block, 10)); }
void WriteRawResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kWriteRawResult); }
void WriteMpxRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kWriteMpx); }
void WriteMpxResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kWriteMpxResult); }

void IoctlRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kIoctl); }
void IoctlRequestData(SmbBlock& block) {
  AddIoctlBytes(block, SmbWord(block, 10), SmbWord(block, 11), SmbWord(block, 12), SmbWord(block, 13));
}
void IoctlCountsWords(SmbBlock& block) { ShowSmbRows(block, block.words, kIoctlCounts); }
void IoctlCountsData(SmbBlock& block) {
  AddIoctlBytes(block, SmbWord(block, 2), SmbWord(block, 3), SmbWord(block, 5), SmbWord(block, 6));
}

}  // namespace qxview
