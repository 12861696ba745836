// Reading and writing, of files and of pipes (MS-CIFS 2.2.4.11, 2.2.4.12, 2.2.4.20, 2.2.4.21, 2.2.4.40, 2.2.4.42 and
// 2.2.4.43, MS-SMB 2.2.4.2 and 2.2.4.3).
//
// The older commands have their data behind a format and a length. The AndX ones say in their words where it stands,
// counted from the header, and how long it is; it can be longer than the byte count has bits for.
#include "decoders/smb/smb_commands.h"
#include "decoders/smb/smb_pipe.h"

namespace qxview {
namespace {

constexpr auto kWriteModeBits = SortedNames({
    {0x0001, "Write Through"}, {0x0002, "Return Bytes Available"}, {0x0004, "Raw Named Pipe"},
    {0x0008, "Start of Message"}});

constexpr uint32_t kRawMessageStart = 0x000C;   // the message's length stands in front of its data

constexpr auto kRead = LittleRows<Smb>({
    Hex(2, "FID"), Number(2, "Count"), Number(4, "Offset"), Number(2, "Remaining")});
constexpr auto kReadResult = LittleRows<Smb>({Number(2, "Count"), Bytes(8, "Reserved")});
constexpr auto kWriteResult = LittleRows<Smb>({Number(2, "Count")});

constexpr auto kWriteClose = LittleRows<Smb>({
    Hex(2, "FID"), Number(2, "Count"), Number(4, "Offset"), UnixTime(4, "Last Write Time"), Bytes(12, "Reserved")});

constexpr auto kReadAndX = LittleRows<Smb>({
    Hex(2, "FID"), Number(4, "Offset"), Number(2, "Maximum Count"), Number(2, "Minimum Count"),
    Hex(4, "Timeout or Maximum Count High"), Number(2, "Remaining"), Number(4, "Offset High")});

constexpr auto kReadAndXResult = LittleRows<Smb>({
    Number(2, "Remaining"), Number(2, "Data Compaction Mode"), Hex(2, "Reserved"), Number(2, "Data Length"),
    Number(2, "Data Offset"), Number(2, "Data Length High"), Bytes(8, "Reserved")});

constexpr auto kWriteAndX = LittleRows<Smb>({
    Hex(2, "FID"), Number(4, "Offset"), Number(4, "Timeout"), Flags(2, "Write Mode", kWriteModeBits),
    Number(2, "Remaining"), Number(2, "Data Length High"), Number(2, "Data Length"), Number(2, "Data Offset"),
    Number(4, "Offset High")});

constexpr auto kDataBlock = LittleRows<Smb>({kSmbBufferFormat, Number(2, "Data Length").Into(&Smb::length)});
constexpr auto kMessageLength = LittleRows<Smb>({Number(2, "Message Length")});

constexpr auto kWriteAndXResult = LittleRows<Smb>({
    Number(2, "Count"), Number(2, "Remaining"), Number(2, "Count High"), Hex(2, "Reserved")});

// The bytes at an offset from the header; the padding in front of them is taken and shown.
Cursor TakeSmbDataAt(SmbBlock& block, uint32_t offset, uint32_t length) {
  AddSmbPadTo(*block.message, block.in, block.data, offset);
  if (length > static_cast<uint32_t>(Left(block.data)) && length > UINT16_MAX) {
    block.data = SmbCursor(*block.message, static_cast<uint32_t>(SmbOffset(*block.message, block.data)), length);
  }
  return TakeCursor(block.data, length);
}

}  // namespace

void AddSmbFileData(SmbBlock& block, Cursor data) { AddSmbPipeData(block.in, data, "Data Bytes"); }

void AddSmbFileDataAt(SmbBlock& block, uint32_t offset, uint32_t length) {
  AddSmbFileData(block, TakeSmbDataAt(block, offset, length));
}

void DataBlockData(SmbBlock& block) {
  const Field length = ShowSmbRows(block, block.data, kDataBlock).length;
  AddSmbFileData(block, TakeCursor(block.data, length.value));
}

void ReadRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kRead); }
void ReadResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kReadResult); }
void WriteRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kRead); }
void WriteCountWords(SmbBlock& block) { ShowSmbRows(block, block.words, kWriteResult); }
void WriteCloseRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kWriteClose); }

void WriteCloseRequestData(SmbBlock& block) {
  const uint32_t count = SmbWord(block, 1);
  const uint32_t start = static_cast<uint32_t>(SmbOffset(*block.message, block.data));
  if (static_cast<uint32_t>(Left(block.data)) > count) AddSmbPadTo(*block.message, block.in, block.data, start + 1);
  AddSmbFileData(block, TakeCursor(block.data, count));
}

void ReadAndXRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kReadAndX); }
void ReadAndXResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kReadAndXResult); }
void ReadAndXResponseData(SmbBlock& block) {
  AddSmbFileDataAt(block, SmbWord(block, 6), SmbWord(block, 5) | SmbWord(block, 7) << 16);
}

void WriteAndXRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kWriteAndX); }
void WriteAndXRequestData(SmbBlock& block) {
  Cursor data = TakeSmbDataAt(block, SmbWord(block, 11), SmbWord(block, 10) | SmbWord(block, 9) << 16);
  if ((SmbWord(block, 7) & kRawMessageStart) == kRawMessageStart) ShowSmbRows(block, data, kMessageLength);
  AddSmbFileData(block, data);
}
void WriteAndXResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kWriteAndXResult); }

}  // namespace qxview
