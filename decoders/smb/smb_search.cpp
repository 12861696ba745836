// Searching directories in the ways from before Trans2, and the size of a disk (MS-CIFS 2.2.4.48, 2.2.4.49, 2.2.4.57 to
// 2.2.4.59).
//
// A search goes on from a resume key: 21 bytes that the server gave with each of its entries.
//   0           1             17            21          22          24          26         30        43
//   reserved    server state  client state  attributes  write time  write date  file size  name of 13 bytes
#include "decoders/smb/smb_commands.h"

namespace qxview {
namespace {

constexpr int32_t kResumeKeySize = 21, kEntrySize = 43, kNameSize = 13;

constexpr SmbField kSearch[] = {{kSmbNumber16, "Maximum Count"}, {kSmbFlags16, "Search Attributes", kSmbSearchBits}};
constexpr SmbField kSearchName[] = {{kSmbFormattedText, "File Name"}};
constexpr SmbField kSearchResult[] = {{kSmbNumber16, "Count"}};
constexpr SmbField kBlockHeader[] = {{kSmbName8, "Buffer Format", kSmbBufferFormatNames}};

constexpr SmbField kResumeKey[] = {
    {kSmbHex8, "Reserved"}, {kSmbBytes, "Server State", {}, 16}, {kSmbBytes, "Client State", {}, 4}};
constexpr SmbField kEntry[] = {
    {kSmbFlags8, "File Attributes", kSmbAttributeBits}, {kSmbDosTimeDate, "Last Write Time"},
    {kSmbNumber32, "File Size"}};

constexpr SmbField kFindClose[] = {{kSmbHex16, "Search Handle"}};

constexpr SmbField kDisk[] = {
    {kSmbNumber16, "Total Units"}, {kSmbNumber16, "Blocks per Unit"}, {kSmbNumber16, "Block Size"},
    {kSmbNumber16, "Free Units"}, {kSmbHex16, "Reserved"}};

void AddResumeKey(SmbBlock& block, const Place& in, Cursor& c) {
  const Place under = Under(in, AddLine(in, Ahead(c, kResumeKeySize), "Resume Key"));
  Cursor key = TakeCursor(c, kResumeKeySize);
  AddSmbFields(*block.message, under, key, kResumeKey);
}

// Names in entries are filled to their size with blanks and a zero.
void AddEntry(SmbBlock& block, Cursor& c) {
  Cursor entry = TakeCursor(c, kEntrySize);
  const LineHandle line = AddLine(block.in, Ahead(entry, kEntrySize), "Directory Entry");
  const Place in = Under(block.in, line);
  AddResumeKey(block, in, entry);
  AddSmbFields(*block.message, in, entry, kEntry);
  NameSmbEntry(in, AddSmbCounted(*block.message, in, entry, kNameSize, "File Name", SmbCharacters::kOem));
}

}  // namespace

void SearchRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kSearch); }

void SearchRequestData(SmbBlock& block) {
  Cursor& c = block.data;
  AddSmbFields(block, c, kSearchName);
  AddSmbFields(block, c, kBlockHeader);
  const Field length = TakeLittleU16(c);
  AddLine(block.in, length, "Resume Key Length: %u", length.value);
  if (length.value == kResumeKeySize && Left(c) >= kResumeKeySize) AddResumeKey(block, block.in, c);
}

void SearchResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kSearchResult); }

void SearchResponseData(SmbBlock& block) {
  Cursor& c = block.data;
  AddSmbFields(block, c, kBlockHeader);
  const Field length = TakeLittleU16(c);
  AddLine(block.in, length, "Data Length: %u", length.value);
  while (Left(c) >= kEntrySize && !PacketOf(block.in).limitReached) AddEntry(block, c);
}

void FindCloseRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kFindClose); }
void DiskResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kDisk); }

}  // namespace qxview
