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

constexpr SmbField kRead[] = {
    {kSmbHex16, "FID"}, {kSmbNumber16, "Count"}, {kSmbNumber32, "Offset"}, {kSmbNumber16, "Remaining"}};
constexpr SmbField kReadResult[] = {{kSmbNumber16, "Count"}, {kSmbBytes, "Reserved", {}, 8}};
constexpr SmbField kWriteResult[] = {{kSmbNumber16, "Count"}};

constexpr SmbField kWriteClose[] = {
    {kSmbHex16, "FID"}, {kSmbNumber16, "Count"}, {kSmbNumber32, "Offset"}, {kSmbTime32, "Last Write Time"},
    {kSmbBytes, "Reserved", {}, 12}};

constexpr SmbField kReadAndX[] = {
    {kSmbHex16, "FID"}, {kSmbNumber32, "Offset"}, {kSmbNumber16, "Maximum Count"}, {kSmbNumber16, "Minimum Count"},
    {kSmbHex32, "Timeout or Maximum Count High"}, {kSmbNumber16, "Remaining"}, {kSmbNumber32, "Offset High"}};

constexpr SmbField kReadAndXResult[] = {
    {kSmbNumber16, "Remaining"}, {kSmbNumber16, "Data Compaction Mode"}, {kSmbHex16, "Reserved"},
    {kSmbNumber16, "Data Length"}, {kSmbNumber16, "Data Offset"}, {kSmbNumber16, "Data Length High"},
    {kSmbBytes, "Reserved", {}, 8}};

constexpr SmbField kWriteAndX[] = {
    {kSmbHex16, "FID"}, {kSmbNumber32, "Offset"}, {kSmbNumber32, "Timeout"},
    {kSmbFlags16, "Write Mode", kWriteModeBits}, {kSmbNumber16, "Remaining"}, {kSmbNumber16, "Data Length High"},
    {kSmbNumber16, "Data Length"}, {kSmbNumber16, "Data Offset"}, {kSmbNumber32, "Offset High"}};

constexpr SmbField kMessageLength[] = {{kSmbNumber16, "Message Length"}};

constexpr SmbField kWriteAndXResult[] = {
    {kSmbNumber16, "Count"}, {kSmbNumber16, "Remaining"}, {kSmbNumber16, "Count High"}, {kSmbHex16, "Reserved"}};

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
  const Field format = TakeU8(block.data);
  AddLine(block.in, format, "Buffer Format: [%u] = %s", format.value,
          LookupName(kSmbBufferFormatNames, format.value, kUndefined));
  const Field length = TakeLittleU16(block.data);
  AddLine(block.in, length, "Data Length: %u", length.value);
  AddSmbFileData(block, TakeCursor(block.data, length.value));
}

void ReadRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kRead); }
void ReadResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kReadResult); }
void WriteRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kRead); }
void WriteCountWords(SmbBlock& block) { AddSmbFields(block, block.words, kWriteResult); }
void WriteCloseRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kWriteClose); }

void WriteCloseRequestData(SmbBlock& block) {
  const uint32_t count = SmbWord(block, 1);
  const uint32_t start = static_cast<uint32_t>(SmbOffset(*block.message, block.data));
  if (static_cast<uint32_t>(Left(block.data)) > count) AddSmbPadTo(*block.message, block.in, block.data, start + 1);
  AddSmbFileData(block, TakeCursor(block.data, count));
}

void ReadAndXRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kReadAndX); }
void ReadAndXResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kReadAndXResult); }
void ReadAndXResponseData(SmbBlock& block) {
  AddSmbFileDataAt(block, SmbWord(block, 6), SmbWord(block, 5) | SmbWord(block, 7) << 16);
}

void WriteAndXRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kWriteAndX); }
void WriteAndXRequestData(SmbBlock& block) {
  Cursor data = TakeSmbDataAt(block, SmbWord(block, 11), SmbWord(block, 10) | SmbWord(block, 9) << 16);
  if ((SmbWord(block, 7) & kRawMessageStart) == kRawMessageStart) AddSmbFields(block, data, kMessageLength);
  AddSmbFileData(block, data);
}
void WriteAndXResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kWriteAndXResult); }

}  // namespace qxview
