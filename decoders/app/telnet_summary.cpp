// The packet list's text for Telnet (RFC 854): the commands that a payload starts with, or its text.
//
//   255 (IAC)  command  [option, for commands 250 to 254]
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

constexpr uint8_t kIac = 255;
constexpr uint8_t kFirstWithOption = 250, kLastWithOption = 254;

constexpr auto kCommandNames = SortedNames({
    {236, "End of File"},       {237, "Suspend Process"},      {238, "Abort Process"},  {239, "End of Record"},
    {240, "Subnegotiation End"}, {241, "No Operation"},        {242, "Data Mark"},      {243, "Break"},
    {244, "Interrupt Process"}, {245, "Abort Output"},         {246, "Are You There"},  {247, "Erase Character"},
    {248, "Erase Line"},        {249, "Go Ahead"},             {250, "Subnegotiation"}, {251, "Will"},
    {252, "Won't"},             {253, "Do"},                   {254, "Don't"},
});

constexpr auto kOptionNames = SortedNames({
    {0, "Binary Transmission"}, {1, "Echo"}, {2, "Reconnection"}, {3, "Suppress Go Ahead"},
    {4, "Approximate Message Size Negotiation"}, {5, "Status"}, {6, "Timing Mark"},
    {7, "Remote Controlled Trans and Echo"}, {8, "Output Line Width"}, {9, "Output Page Size"},
    {10, "Output Carriage-Return Disposition"}, {11, "Output Horizontal Tab Stops"},
    {12, "Output Horizontal Tab Disposition"}, {13, "Output Formfeed Disposition"}, {14, "Output Vertical Tabstops"},
    {15, "Output Vertical Tab Disposition"}, {16, "Output Linefeed Disposition"}, {17, "Extended ASCII"}, {18, "Logout"},
    {19, "Byte Macro"}, {20, "Data Entry Terminal"}, {21, "SUPDUP"}, {22, "SUPDUP Output"}, {23, "Send Location"},
    {24, "Terminal Type"}, {25, "End of Record"}, {26, "TACACS User Identification"}, {27, "Output Marking"},
    {28, "Terminal Location Number"}, {29, "Telnet 3270 Regime"}, {30, "X.3 PAD"},
    {31, "Negotiate About Window Size"}, {32, "Terminal Speed"}, {33, "Remote Flow Control"}, {34, "Linemode"},
    {35, "X Display Location"}, {36, "Environment"}, {37, "Authentication"}, {38, "Encryption"},
    {39, "New Environment"}, {40, "TN3270E"}, {41, "XAUTH"}, {42, "Charset"}, {43, "Remote Serial Port"},
    {44, "Com Port Control"}, {45, "Suppress Local Echo"}, {46, "Start TLS"}, {47, "Kermit"}, {48, "Send-URL"},
    {49, "Forward X"}, {138, "Pragma Logon"}, {139, "SSPI Logon"}, {140, "Pragma Heartbeat"},
    {255, "Extended Options List"},
});

void DescribeCommands(SummaryText& text, Cursor c, int32_t commandLimit) {
  for (int32_t count = 0; Left(c) >= 2 && (commandLimit < 0 || count < commandLimit); ++count) {
    if (TakeU8(c).value != kIac) return;
    const uint32_t command = TakeU8(c).value;
    const char* name = LookupName(kCommandNames, command, nullptr);
    if (!name) return;
    Add(text, count == 0 ? "TELNET Command: " : ", Command: ");
    Add(text, name);
    if (command < kFirstWithOption || command > kLastWithOption || Left(c) < 1) continue;
    Add(text, ", Option: ");
    Add(text, LookupName(kOptionNames, TakeU8(c).value));
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
  if (PeekU8(c) == kIac) {
    DescribeCommands(text, c, commandLimit);
  } else if (dataLimit != 0) {
    DescribeData(text, data, length, dataLimit, printableOnly && cleanText);
  }
  if (text.used == 0) Add(text, "TELNET Data");
  return 1;
}

}  // namespace qxview
