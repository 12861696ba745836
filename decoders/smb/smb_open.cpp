// Opening and creating files in the ways from before NT (MS-CIFS 2.2.4.3, 2.2.4.4, 2.2.4.16 and 2.2.4.41).
#include "decoders/smb/smb_commands.h"

namespace qxview {
namespace {

constexpr auto kAccessModes = SortedNames({{0, "Read"}, {1, "Write"}, {2, "Read and Write"}, {3, "Execute"}});
constexpr auto kSharingModes = SortedNames({
    {0, "Compatibility"}, {1, "Deny Read, Write and Execute"}, {2, "Deny Write"}, {3, "Deny Read and Execute"},
    {4, "Deny None"}, {7, "FCB"}});
constexpr auto kLocalities = SortedNames({
    {0, "Unknown"}, {1, "Mainly Sequential"}, {2, "Mainly Random"}, {3, "Random with Some Locality"}});
constexpr auto kExistsActions = SortedNames({{0, "Fail"}, {1, "Open"}, {2, "Truncate"}});
constexpr auto kOpenActions = SortedNames({
    {1, "File Existed and was Opened"}, {2, "File Did Not Exist and was Created"},
    {3, "File Existed and was Truncated"}});
constexpr auto kFalseTrue = SortedNames({{0, "False"}, {1, "True"}});

// Some bits of a word with the names of their values.
struct BitRow {
  uint8_t firstBit, bitCount;
  const char* label;
  SmbNames names;
};

constexpr BitRow kAccessModeBits[] = {
    {13, 3, "Access", kAccessModes},        {9, 3, "Sharing", kSharingModes}, {5, 3, "Locality", kLocalities},
    {3, 1, "Do Not Cache", kFalseTrue},     {1, 1, "Write Through", kFalseTrue}};
constexpr BitRow kOpenFunctionBits[] = {
    {14, 2, "If the File Exists", kExistsActions}, {11, 1, "Create if It Does Not", kFalseTrue}};
constexpr BitRow kOpenResultBits[] = {
    {14, 2, "Action", kOpenActions}, {0, 1, "Opportunistic Lock Granted", kFalseTrue}};

void AddBits(SmbBlock& block, const char* label, std::span<const BitRow> rows) {
  const Field word = TakeLittleU16(block.words);
  const LineHandle line = AddLine(block.in, word, "%s: 0x%.04X", label, word.value);
  for (const BitRow& row : rows) {
    const BitPicture bits = BitsOf(word, row.firstBit, row.bitCount);
    AddBitLine(Under(block.in, line), word, "%s: %s = %s", bits.picture, row.label,
               LookupName(row.names.rows, bits.value, row.names.count, kUndefined));
  }
}

constexpr auto kOpenAndXFlagBits = SortedNames({
    {0x0001, "Additional Information Requested"}, {0x0002, "Exclusive Opportunistic Lock Requested"},
    {0x0004, "Batch Opportunistic Lock Requested"}, {0x0008, "Total Length of EAs Requested"},
    {0x0010, "Extended Response Requested"}});

constexpr SmbField kSearchAttributes[] = {{kSmbFlags16, "Search Attributes", kSmbSearchBits}};

constexpr SmbField kOpened[] = {
    {kSmbHex16, "FID"}, {kSmbFlags16, "File Attributes", kSmbAttributeBits}, {kSmbTime32, "Last Write Time"},
    {kSmbNumber32, "File Size"}};

constexpr SmbField kCreate[] = {
    {kSmbFlags16, "File Attributes", kSmbAttributeBits}, {kSmbTime32, "Creation Time"}};

constexpr SmbField kOpenAndXFlags[] = {{kSmbFlags16, "Flags", kOpenAndXFlagBits}};
constexpr SmbField kOpenAndXAttributes[] = {
    {kSmbFlags16, "Search Attributes", kSmbSearchBits}, {kSmbFlags16, "File Attributes", kSmbAttributeBits},
    {kSmbTime32, "Creation Time"}};
constexpr SmbField kOpenAndXRest[] = {
    {kSmbNumber32, "Allocation Size"}, {kSmbNumber32, "Timeout"}, {kSmbHex32, "Reserved"}};
constexpr SmbField kOpenAndXName[] = {{kSmbText, "File Name"}};

constexpr SmbField kOpenedType[] = {
    {kSmbName16, "File Type", kSmbFileTypeNames}, {kSmbFlags16, "Pipe State", kSmbPipeStateBits}};
constexpr SmbField kOpenedRest[] = {
    {kSmbHex32, "Server FID"}, {kSmbHex16, "Reserved"}, {kSmbFlags32, "Maximal Access Rights", kSmbAccessMaskBits},
    {kSmbFlags32, "Guest Maximal Access Rights", kSmbAccessMaskBits}};

}  // namespace

void OpenRequestWords(SmbBlock& block) {
  AddBits(block, "Access Mode", kAccessModeBits);
  AddSmbFields(block, block.words, kSearchAttributes);
}

void OpenResponseWords(SmbBlock& block) {
  AddSmbFields(block, block.words, kOpened);
  AddBits(block, "Access Mode", kAccessModeBits);
}

void CreateRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kCreate); }

void OpenAndXRequestWords(SmbBlock& block) {
  AddSmbFields(block, block.words, kOpenAndXFlags);
  AddBits(block, "Access Mode", kAccessModeBits);
  AddSmbFields(block, block.words, kOpenAndXAttributes);
  AddBits(block, "Open Function", kOpenFunctionBits);
  AddSmbFields(block, block.words, kOpenAndXRest);
}

void OpenAndXRequestData(SmbBlock& block) { AddSmbFields(block, block.data, kOpenAndXName); }

void OpenAndXResponseWords(SmbBlock& block) {
  AddSmbFields(block, block.words, kOpened);
  AddBits(block, "Access Mode", kAccessModeBits);
  AddSmbFields(block, block.words, kOpenedType);
  AddBits(block, "Open Results", kOpenResultBits);
  AddSmbFields(block, block.words, kOpenedRest);
}

}  // namespace qxview
