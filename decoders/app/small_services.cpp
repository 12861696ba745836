// The small services that answer in plain text, or with what they were sent: Echo (RFC 862), Discard (RFC 863),
// Character Generator (RFC 864), Quote of the Day (RFC 865), Active Users (RFC 866), Daytime (RFC 867), Time (RFC 868);
// and those that are asked by a line of text: Finger (RFC 1288), Ident (RFC 1413), Whois (RFC 3912), RWhois (RFC 2167),
// Gopher (RFC 1436).
#include "core/times.h"
#include "decoders/common/header_lines.h"

namespace qxview {
namespace {

constexpr auto kItemNames = SortedNames({
    {'+', "Redundant Server"}, {'0', "Text File"}, {'1', "Menu"}, {'2', "Phone-Book Server"}, {'3', "Error"},
    {'4', "BinHexed File"}, {'5', "DOS Binary Archive"}, {'6', "UUEncoded File"}, {'7', "Index Search Server"},
    {'8', "Telnet Session"}, {'9', "Binary File"}, {'I', "Image"}, {'T', "TN3270 Session"}, {'g', "GIF Image"},
    {'h', "HTML File"}, {'i', "Information"}, {'s', "Sound"}});

// A message of lines: its first one stands in the top line.
Place ShowTop(const Place& at, const Cursor& c, const char* service) {
  constexpr int32_t kMost = 100;
  Cursor peek = c;
  TextLine first;
  const Field whole = Ahead(c, Left(c));
  if (!TakeLine(peek, first)) return Under(at, 0);
  const Field shown = Slice(first.text, 0, first.text.length < kMost ? first.text.length : kMost);
  return Under(at, AddLine(at, whole, "%s: %s", service, Text(shown)));
}

void ShowLines(const Place& in, Cursor& c, const char* label) {
  Loop loop;
  TextLine line;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) AddTextLine(in, line.whole, label, line.text);
}

int32_t DecodeText(const Place& at, Cursor& c, const char* service, const char* label) {
  if (Left(c) < 1) return 0;
  const Place in = ShowTop(at, c, service);
  ShowLines(in, c, label);
  return 1;
}

int32_t DecodeData(const Place& at, Cursor& c, const char* service) {
  if (Left(c) < 1) return 0;
  const int32_t size = Left(c);
  const Place in = Under(at, AddLine(at, Ahead(c, size), "%s: %d bytes", service, size));
  const Field data = Rest(c);
  AddBlock(in, data, "Data");
  return 1;
}

// Servers speak from their port; both ends may use it over UDP.
bool IsFromPort(const Place& at, uint16_t port) { return PacketOf(at).sourcePort == port; }

// "6193, 23" in front of what is said of the two.
void ShowPorts(const Place& in, Field& text) {
  const Field server = Trimmed(TakeWord(text, ",")), client = Trimmed(TakeWord(text, ":"));
  AddTextLine(in, server, "Port on Server");
  AddTextLine(in, client, "Port on Client");
}

// One character of type, what is shown, and how it is asked for: selector, host and port behind tabs.
void ShowMenuItem(const Place& at, const TextLine& line) {
  const uint32_t type = PeekU8(line.text);
  const Place in = Under(at, AddTextLine(at, line.whole, "Menu Item", line.text));
  AddLine(in, Slice(line.text, 0, 1), "Type: %s = %s", Text(Slice(line.text, 0, 1)), LookupName(kItemNames, type));
  Field rest = Slice(line.text, 1, line.text.length - 1);
  constexpr const char* kLabels[] = {"Display String", "Selector", "Host", "Port"};
  for (const char* label : kLabels) AddTextLine(in, TakeWord(rest, "\t"), label);
}

}  // namespace

int32_t DecodeEcho(const Place& at, Cursor c) { return DecodeData(at, c, "Echo"); }
int32_t DecodeDiscard(const Place& at, Cursor c) { return DecodeData(at, c, "Discard"); }
int32_t DecodeCharacterGenerator(const Place& at, Cursor c) {
  return DecodeText(at, c, "Character Generator", "Characters");
}
int32_t DecodeQuote(const Place& at, Cursor c) { return DecodeText(at, c, "Quote of the Day", "Quote"); }
int32_t DecodeActiveUsers(const Place& at, Cursor c) { return DecodeText(at, c, "Active Users", "User"); }
int32_t DecodeDaytime(const Place& at, Cursor c) { return DecodeText(at, c, "Daytime", "Daytime"); }

int32_t DecodeTimeService(const Place& at, Cursor c) {
  constexpr uint32_t kSecondsTo1970 = 2208988800;
  if (Left(c) != 4) return 0;
  const Field time = TakeU32(c);
  const TimeText text = UtcText(int64_t{time.value} - kSecondsTo1970);
  const Place in = Under(at, AddLine(at, time, "Time: %s", text));
  AddLine(in, time, "Time: %u seconds since 1900 = %s", time.value, text);
  return 1;
}

int32_t DecodeFinger(const Place& at, Cursor c) {
  constexpr uint16_t kPort = 79;
  if (IsFromPort(at, kPort)) return DecodeText(at, c, "Finger Response", "Line");
  if (Left(c) < 1) return 0;
  const Place in = ShowTop(at, c, "Finger Query");
  TextLine line;
  if (!TakeLine(c, line)) return 0;
  Field query = line.text, rest = query;
  const Field first = TakeWord(rest);
  if (IsWord(first, "/W")) {
    AddTextLine(in, first, "Verbose");
    query = rest;
  }
  AddTextLine(in, line.whole, "Query", query);
  ShowLines(in, c, "Line");
  return 1;
}

int32_t DecodeIdent(const Place& at, Cursor c) {
  constexpr uint16_t kPort = 113;
  if (Left(c) < 1) return 0;
  const bool isResponse = IsFromPort(at, kPort);
  const Place in = ShowTop(at, c, isResponse ? "Ident Response" : "Ident Request");
  TextLine line;
  if (!TakeLine(c, line)) return 0;
  Field text = line.text;
  ShowPorts(in, text);
  const Field kind = Trimmed(TakeWord(text, ":"));
  AddTextLine(in, kind, "Response Type");
  if (IsWord(kind, "USERID")) {
    AddTextLine(in, Trimmed(TakeWord(text, ":")), "Operating System");
    AddTextLine(in, Trimmed(text), "User ID");
  } else if (IsWord(kind, "ERROR")) {
    AddTextLine(in, Trimmed(text), "Error");
  }
  ShowLines(in, c, "Line");
  return 1;
}

int32_t DecodeWhois(const Place& at, Cursor c) {
  constexpr uint16_t kPort = 43;
  return IsFromPort(at, kPort) ? DecodeText(at, c, "Whois Answer", "Line") : DecodeText(at, c, "Whois Query", "Query");
}

// Directives start with "-", what a server says of itself and of the query with "%".
int32_t DecodeRWhois(const Place& at, Cursor c) {
  if (Left(c) < 1) return 0;
  const Place in = ShowTop(at, c, "RWhois");
  Loop loop;
  TextLine line;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) {
    const uint32_t first = line.text.length > 0 ? PeekU8(line.text) : 0;
    AddTextLine(in, line.whole, first == '-' ? "Directive" : first == '%' ? "Response" : "Line", line.text);
  }
  return 1;
}

int32_t DecodeGopher(const Place& at, Cursor c) {
  constexpr uint16_t kPort = 70;
  constexpr int32_t kTabsOfItem = 3;
  if (Left(c) < 1) return 0;
  if (!IsFromPort(at, kPort)) return DecodeText(at, c, "Gopher Request", "Selector");
  const Place in = ShowTop(at, c, "Gopher Response");
  Loop loop;
  TextLine line;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) {
    int32_t tabs = 0;
    for (int32_t i = 0; i < line.text.length; ++i) tabs += PeekU8(line.text, i) == '\t';
    if (tabs >= kTabsOfItem) {
      ShowMenuItem(in, line);
    } else {
      AddTextLine(in, line.whole, "Line", line.text);
    }
  }
  return 1;
}

}  // namespace qxview
