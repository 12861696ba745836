// Print spool files (MS-CIFS 2.2.4.67 to 2.2.4.70).
//
// An entry of the queue, 28 bytes:
//   0          2          4       5            7         11        12                28
//   file date  file time  status  spool file   size      reserved  name of 16 bytes
#include "decoders/smb/smb_commands.h"

namespace qxview {
namespace {

constexpr int32_t kEntrySize = 28, kNameSize = 16;

constexpr auto kModes = SortedNames({{0, "Text"}, {1, "Graphics"}});
constexpr auto kStatusNames = SortedNames({
    {1, "Held or Stopped"}, {2, "Printing"}, {3, "Awaiting Print"}, {4, "In Intercept"}, {5, "File Had Error"},
    {6, "Printer Error"}});

constexpr SmbField kOpen[] = {{kSmbNumber16, "Setup Length"}, {kSmbName16, "Mode", kModes}};
constexpr SmbField kOpenName[] = {{kSmbFormattedText, "Identifier"}};
constexpr SmbField kQueue[] = {{kSmbSigned16, "Maximum Count"}, {kSmbNumber16, "Start Index"}};
constexpr SmbField kQueueResult[] = {{kSmbNumber16, "Count"}, {kSmbNumber16, "Restart Index"}};
constexpr SmbField kQueueHeader[] = {
    {kSmbName8, "Buffer Format", kSmbBufferFormatNames}, {kSmbNumber16, "Data Length"}};
constexpr SmbField kEntry[] = {
    {kSmbDosDateTime, "File Time"}, {kSmbName8, "Status", kStatusNames}, {kSmbNumber16, "Spool File Number"},
    {kSmbNumber32, "Spool File Size"}, {kSmbHex8, "Reserved"}};

}  // namespace

void OpenPrintRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kOpen); }
void OpenPrintRequestData(SmbBlock& block) { AddSmbFields(block, block.data, kOpenName); }
void PrintQueueRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kQueue); }
void PrintQueueResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kQueueResult); }

void PrintQueueResponseData(SmbBlock& block) {
  Cursor& c = block.data;
  AddSmbFields(block, c, kQueueHeader);
  while (Left(c) >= kEntrySize && !PacketOf(block.in).limitReached) {
    Cursor entry = TakeCursor(c, kEntrySize);
    const Place in = Under(block.in, AddLine(block.in, Ahead(entry, kEntrySize), "Print Queue Entry"));
    AddSmbFields(*block.message, in, entry, kEntry);
    AddSmbCounted(*block.message, in, entry, kNameSize, "Spool File Name", SmbCharacters::kOem);
  }
}

}  // namespace qxview
