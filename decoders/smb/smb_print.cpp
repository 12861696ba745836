// Print spool files (MS-CIFS 2.2.4.67 to 2.2.4.70).
//
// An entry of the queue, 28 bytes:
//   0          2          4       5            7         11        12                28
//   file date  file time  status  spool file   size      reserved  name of 16 bytes
#include "decoders/smb/smb_commands.h"

namespace qxview {
namespace {

constexpr auto kModes = SortedNames({{0, "Text"}, {1, "Graphics"}});
constexpr auto kStatusNames = SortedNames({
    {1, "Held or Stopped"}, {2, "Printing"}, {3, "Awaiting Print"}, {4, "In Intercept"}, {5, "File Had Error"},
    {6, "Printer Error"}});

constexpr auto kOpen = LittleRows<Smb>({Number(2, "Setup Length"), Coded(2, "Mode", kModes)});
constexpr auto kOpenName = LittleRows<Smb>({kSmbBufferFormat, SmbText("Identifier")});
constexpr auto kQueue = LittleRows<Smb>({Signed(2, "Maximum Count"), Number(2, "Start Index")});
constexpr auto kQueueResult = LittleRows<Smb>({Number(2, "Count"), Number(2, "Restart Index")});
constexpr auto kEntry = LittleRows<Smb>({
    SmbDateTime("File Time"), Coded(1, "Status", kStatusNames), Number(2, "Spool File Number"),
    Number(4, "Spool File Size"), Hex(1, "Reserved"), SmbOemName<16>("Spool File Name")});
constexpr auto kEntries = LittleRows<Smb>({
    kSmbBufferFormat, Number(2, "Data Length"), SmbRecords<kEntry, 28>("Print Queue Entry")});

}  // namespace

void OpenPrintRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kOpen); }
void OpenPrintRequestData(SmbBlock& block) { ShowSmbRows(block, block.data, kOpenName); }
void PrintQueueRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kQueue); }
void PrintQueueResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kQueueResult); }
void PrintQueueResponseData(SmbBlock& block) { ShowSmbRows(block, block.data, kEntries); }

}  // namespace qxview
