// Searching directories in the ways from before Trans2, and the size of a disk (MS-CIFS 2.2.4.48, 2.2.4.49, 2.2.4.57 to
// 2.2.4.59).
//
// A search goes on from a resume key: 21 bytes that the server gave with each of its entries.
//   0           1             17            21          22          24          26         30        43
//   reserved    server state  client state  attributes  write time  write date  file size  name of 13 bytes
#include "decoders/smb/smb_commands.h"

namespace qxview {
namespace {

constexpr int32_t kResumeKeySize = 21, kNameSize = 13;

constexpr auto kSearch = LittleRows<Smb>({Number(2, "Maximum Count"), Flags(2, "Search Attributes", kSmbSearchBits)});
constexpr auto kSearchResult = LittleRows<Smb>({Number(2, "Count")});

constexpr auto kKey = LittleRows<Smb>({Hex(1, "Reserved"), Bytes(16, "Server State"), Bytes(4, "Client State")});
void ShowKey(const Place& in, Cursor& c, const char* title, Smb& values) {
  Cursor key = TakeCursor(c, kResumeKeySize);
  ShowSmbRows(*values.message, Under(in, AddSmbTitle(in, Ahead(key, kResumeKeySize), title)), key, kKey);
}
void ShowCountedKey(const Place& in, Cursor& c, const char* title, Smb& values) {
  if (values.length.value == kResumeKeySize && Left(c) >= kResumeKeySize) ShowKey(in, c, title, values);
}
constexpr auto kSearchName = LittleRows<Smb>({
    kSmbBufferFormat, SmbText("File Name"), kSmbBufferFormat, Number(2, "Resume Key Length").Into(&Smb::length),
    Shown("Resume Key", ShowCountedKey)});

// Names in entries are filled to their size with blanks and a zero.
void ShowName(const Place& in, Cursor& c, const char* label, Smb& values) {
  NameSmbEntry(in, AddSmbCounted(*values.message, in, c, kNameSize, label, SmbCharacters::kOem));
}
constexpr auto kEntry = LittleRows<Smb>({
    Shown("Resume Key", ShowKey), Flags(1, "File Attributes", kSmbAttributeBits), SmbTimeDate("Last Write Time"),
    Number(4, "File Size"), Shown("File Name", ShowName)});
constexpr auto kEntries = LittleRows<Smb>({
    kSmbBufferFormat, Number(2, "Data Length"), SmbRecords<kEntry, 43>("Directory Entry")});

constexpr auto kFindClose = LittleRows<Smb>({Hex(2, "Search Handle")});
constexpr auto kDisk = LittleRows<Smb>({
    Number(2, "Total Units"), Number(2, "Blocks per Unit"), Number(2, "Block Size"), Number(2, "Free Units"),
    Hex(2, "Reserved")});

}  // namespace

void SearchRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kSearch); }
void SearchRequestData(SmbBlock& block) { ShowSmbRows(block, block.data, kSearchName); }
void SearchResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kSearchResult); }
void SearchResponseData(SmbBlock& block) { ShowSmbRows(block, block.data, kEntries); }
void FindCloseRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kFindClose); }
void DiskResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kDisk); }

}  // namespace qxview
