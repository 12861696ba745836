// Opening and creating files in the ways from before NT (MS-CIFS 2.2.4.3, 2.2.4.4, 2.2.4.16 and 2.2.4.41).
#include "decoders/smb/smb_commands.h"
#include "decoders/smb/smb_open_names.h"

namespace qxview {
namespace {

constexpr SmbField kSearchAttributes[] = {{kSmbFlags16, "Search Attributes", kSmbSearchBits}};

constexpr SmbField kOpened[] = {
    {kSmbHex16, "FID"}, {kSmbFlags16, "File Attributes", kSmbAttributeBits}, {kSmbTime32, "Last Write Time"},
    {kSmbNumber32, "File Size"}};

constexpr SmbField kCreate[] = {
    {kSmbFlags16, "File Attributes", kSmbAttributeBits}, {kSmbTime32, "Creation Time"}};

constexpr SmbField kOpenAndXFlags[] = {{kSmbFlags16, "Flags", kSmbOpenFlagBits}};
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

void AddSmbBits(const Place& in, Cursor& c, const char* label, std::span<const SmbBitRow> rows) {
  const Field word = TakeLittleU16(c);
  const LineHandle line = AddLine(in, word, "%s: 0x%.04X", label, word.value);
  for (const SmbBitRow& row : rows) {
    const BitPicture bits = BitsOf(word, row.firstBit, row.bitCount);
    AddBitLine(Under(in, line), word, "%s: %s = %s", bits.picture, row.label,
               LookupName(row.names.rows, bits.value, row.names.count, kUndefined));
  }
}

void OpenRequestWords(SmbBlock& block) {
  AddSmbBits(block.in, block.words, "Access Mode", kSmbAccessModeBits);
  AddSmbFields(block, block.words, kSearchAttributes);
}

void OpenResponseWords(SmbBlock& block) {
  AddSmbFields(block, block.words, kOpened);
  AddSmbBits(block.in, block.words, "Access Mode", kSmbAccessModeBits);
}

void CreateRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kCreate); }

void OpenAndXRequestWords(SmbBlock& block) {
  AddSmbFields(block, block.words, kOpenAndXFlags);
  AddSmbBits(block.in, block.words, "Access Mode", kSmbAccessModeBits);
  AddSmbFields(block, block.words, kOpenAndXAttributes);
  AddSmbBits(block.in, block.words, "Open Function", kSmbOpenFunctionBits);
  AddSmbFields(block, block.words, kOpenAndXRest);
}

void OpenAndXRequestData(SmbBlock& block) { AddSmbFields(block, block.data, kOpenAndXName); }

void OpenAndXResponseWords(SmbBlock& block) {
  AddSmbFields(block, block.words, kOpened);
  AddSmbBits(block.in, block.words, "Access Mode", kSmbAccessModeBits);
  AddSmbFields(block, block.words, kOpenedType);
  AddSmbBits(block.in, block.words, "Open Results", kSmbOpenResultBits);
  AddSmbFields(block, block.words, kOpenedRest);
}

}  // namespace qxview
