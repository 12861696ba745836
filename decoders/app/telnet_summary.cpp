// The packet list's text for Telnet (RFC 854): the commands that a payload starts with, or its text.
//
//   255 (IAC)  command  [option, for commands 250 to 254]
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"
#include "decoders/app/telnet.h"

namespace qxview {
namespace {

void DescribeCommands(SummaryText& text, Cursor c, int32_t commandLimit) {
  for (int32_t count = 0; Left(c) >= 2 && (commandLimit < 0 || count < commandLimit); ++count) {
    if (TakeU8(c).value != kTelnetIac) return;
    const uint32_t command = TakeU8(c).value;
    const char* name = LookupName(kTelnetCommandNames, command, nullptr);
    if (!name) return;
    Add(text, count == 0 ? "TELNET Command: " : ", Command: ");
    Add(text, name);
    if (command < kFirstTelnetCommandWithOption || command > kLastTelnetCommandWithOption || Left(c) < 1) continue;
    Add(text, ", Option: ");
    Add(text, LookupName(kTelnetOptionNames, TakeU8(c).value));
  }
}

void DescribeData(SummaryText& text, const uint8_t* data, int32_t length, int32_t dataLimit, bool clean) {
  constexpr const char* kLabel = "TELNET Data: ";
  const int32_t most = dataLimit < 0 || dataLimit > length ? length : dataLimit;
  Add(text, kLabel);
  if (!clean) return AddPrintable(text, data, most, most);
  bool any = false;
  const Cursor c = MakeCursor(data, 0, length);
  for (int32_t i = 0; i < most && !(any && text.used == text.size - 1); ++i) {
    const uint8_t character = static_cast<uint8_t>(PeekU8(c, i));
    if (!IsPrintable(character)) continue;
    any = true;
    if (text.used < text.size - 1) text.out[text.used++] = static_cast<char>(character);
  }
  if (!any) text.used = 0;
  text.out[text.used] = 0;
}

}  // namespace

int32_t DescribeTelnet(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t commandLimit,
                       int32_t dataLimit, int32_t printableOnly, bool cleanText) {
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  const Cursor c = MakeCursor(data, 0, length);
  if (PeekU8(c) == kTelnetIac) {
    DescribeCommands(text, c, commandLimit);
  } else if (dataLimit != 0) {
    DescribeData(text, data, length, dataLimit, printableOnly && cleanText);
  }
  if (text.used == 0) Add(text, "TELNET Data");
  return 1;
}

}  // namespace qxview
