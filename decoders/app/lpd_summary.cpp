// The packet list's text for the line printer daemon protocol (RFC 1179).
//
//   command (1)   queue [blank, operands]   LF                 to the daemon
//   subcommand (1)   count   blank   file name   LF            while a job is received
//   0 for done, anything else for a fault                      from the daemon
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

constexpr auto kCommandNames = SortedNames({
    {1, "Print Waiting Jobs"}, {2, "Receive Job"}, {3, "Queue State (Short)"}, {4, "Queue State (Long)"},
    {5, "Remove Jobs"},
});

constexpr auto kSubcommandNames = SortedNames({
    {1, "Abort Job"}, {2, "Control File"}, {3, "Data File"},
});

// Whether an operand is that of a subcommand: "123 cfA001host" or "123 dfA001host".
bool NamesJobFile(const TextSlice& operand) {
  TextSlice rest;
  const TextSlice count = FirstWord(operand, &rest);
  for (int32_t i = 0; i < count.length; ++i) {
    if (!IsDigit(count.text[i])) return false;
  }
  return count.length > 0 && (StartsWith(rest, "cf") || StartsWith(rest, "df"));
}

}  // namespace

int32_t DescribeLpd(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  constexpr int32_t kMostOperand = 160;
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "LPD ");
  const Cursor c = MakeCursor(data, 0, length);
  const uint32_t command = PeekU8(c);
  if (length == 1) {
    if (command == 0) return Add(text, "Acknowledgement"), 1;
    Add(text, "Negative Acknowledgement (%u)", command);
    return 1;
  }
  const int32_t lineFeed = FindU8(c, '\n', 1);
  const TextSlice operand = Text(PeekBytes(c, 1, (lineFeed > 0 ? lineFeed : length) - 1));
  const bool inJob = NamesJobFile(operand) || (operand.length == 0 && command == 1);
  const char* name = inJob ? LookupName(kSubcommandNames, command, nullptr)
                           : LookupName(kCommandNames, command, nullptr);
  if (!name || lineFeed < 0) return Add(text, "Data"), 1;
  Add(text, name);
  if (operand.length == 0) return 1;
  Add(text, ": ");
  AddPrintable(text, PeekBytes(c, 1, operand.length).bytes, operand.length, kMostOperand);
  return 1;
}

}  // namespace qxview
