// Commands for another machine in a few texts that zeros end: rexec, rsh (4.3BSD manual pages rexecd(8), rshd(8)), rlogin (RFC
// 1282); and printing by LPD (RFC 1179).
#include "core/rows.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/common/text_lines.h"

namespace qxview {
namespace {

constexpr auto kWindow = Rows<NoValues>({
    Hex(2, "Magic Cookie"), Text(2, "Window Size Message"), Number(2, "Rows"), Number(2, "Columns"),
    Number(2, "Width", " pixels"), Number(2, "Height", " pixels")});

// How many texts that zeros end fill the bytes; -1 when the last has no end.
int32_t CountTerminated(const Cursor& c) {
  int32_t count = 0;
  for (int32_t at = 0; (at = FindU8(c, 0, at)) >= 0; ++at) ++count;
  return Left(c) > 0 && PeekU8(c, Left(c) - 1) == 0 ? count : -1;
}

void ShowTerminated(const Place& in, Cursor& c, const char* label) {
  const int32_t end = FindU8(c, 0);
  const Field whole = PeekBytes(c, 0, end < 0 ? Left(c) : end + 1);
  if (whole.length > 0) AddTextLine(in, whole, label, TakeTerminated(c));
}

bool StartsPort(const Cursor& c) {
  const int32_t end = FindU8(c, 0);
  return end == 0 || (end > 0 && end < 6 && DecimalOf(PeekBytes(c, 0, end)) >= 0);
}

// The client's port for errors, then who and what; the server answers with an octet of zero or an error in one line.
void ShowCommandConnection(const Place& in, Cursor& c, const char* const (&labels)[3], bool isServer) {
  if (isServer) {
    const uint32_t status = PeekU8(c);
    if (status <= 1) {
      const Field code = TakeU8(c);
      AddLine(in, code, "Status: %u = %s", status, status == 0 ? "Success" : "Error");
    }
    return ShowLinesOfText(in, c, "Data");
  }
  if (StartsPort(c)) ShowTerminated(in, c, "Error Port");
  if (CountTerminated(c) == 3) {
    for (const char* label : labels) ShowTerminated(in, c, label);
  }
  ShowLinesOfText(in, c, "Data");
}

bool IsFromServer(const Place& at) { return PacketOf(at).matchedSource; }

Place TopLine(const Place& at, const Cursor& c, const char* name) {
  return Under(at, AddLine(at, Ahead(c, Left(c)), "%s: %s", name, IsFromServer(at) ? "From Server" : "From Client"));
}

constexpr auto kPrinterCommandNames = SortedNames({
    {1, "Print Waiting Jobs"}, {2, "Receive Job"}, {3, "Queue State (Short)"}, {4, "Queue State (Long)"}, {5, "Remove Jobs"}});
constexpr auto kJobCommandNames = SortedNames({{1, "Abort Job"}, {2, "Receive Control File"}, {3, "Receive Data File"}});
constexpr auto kControlNames = SortedNames({
    {'1', "Troff R Font"}, {'2', "Troff I Font"}, {'3', "Troff B Font"}, {'4', "Troff S Font"}, {'C', "Class"}, {'H', "Host"},
    {'I', "Indent"}, {'J', "Job Name"}, {'L', "Banner User"}, {'M', "Mail to"}, {'N', "Source File"}, {'P', "User"},
    {'S', "Symbolic Link"}, {'T', "Title"}, {'U', "Unlink"}, {'W', "Width"}, {'c', "Print CIF File"}, {'d', "Print DVI File"},
    {'f', "Print Formatted File"}, {'g', "Print Plot File"}, {'l', "Print with Control Characters"},
    {'n', "Print Ditroff File"}, {'o', "Print PostScript File"}, {'p', "Print by pr"}, {'r', "Print Fortran File"},
    {'t', "Print Troff File"}, {'v', "Print Raster File"}});

// A count and a name, as they stand in front of files, in place of a queue.
bool IsJobCommand(const Field& operands) {
  Field rest = operands;
  const Field count = TakeWord(rest), name = TakeWord(rest);
  return DecimalOf(count) >= 0 && (StartsWithText(CursorOver(name), "cf") || StartsWithText(CursorOver(name), "df"));
}

void ShowPrinterCommand(const Place& at, const TextLine& line) {
  const uint32_t code = PeekU8(line.text);
  Field operands = Slice(line.text, 1, line.text.length - 1);
  const bool isJob = IsJobCommand(operands) || (code == 1 && operands.length == 0);
  const char* name = isJob ? LookupName(kJobCommandNames, code) : LookupName(kPrinterCommandNames, code);
  const Place in = Under(at, AddLine(at, line.whole, "Command: %u = %s", code, name));
  AddLine(in, Slice(line.text, 0, 1), "Code: %u = %s", code, name);
  AddTextLine(in, TakeWord(operands), isJob ? "Count" : "Queue");
  if (isJob) return (void)AddTextLine(in, TakeWord(operands), "File Name");
  if (code == 5) AddTextLine(in, TakeWord(operands), "Agent");
  for (Field word = TakeWord(operands); word.here; word = TakeWord(operands)) AddTextLine(in, word, "User or Job");
}

// A control file's lines; other text is data.
void ShowPrinterText(const Place& in, Cursor& c) {
  const bool isControl = PeekU8(c) == 'H';
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop) && PeekU8(c) != 0 && TakeLine(c, line)) {
    const char* name = isControl ? LookupName(kControlNames, PeekU8(line.text), nullptr) : nullptr;
    // keys: text Class, Host, Indent, Job Name, Banner User, Mail to, Source File, User, Symbolic Link, Title, Unlink
    if (name) AddTextLine(in, line.whole, name, Slice(line.text, 1, line.text.length - 1));
    else AddTextLine(in, line.whole, "Data", line.text);
  }
}

// What an end sends is multiplexed behind the greeting: the length of a message (24 bits), its kind behind 7 (8), both of them in
// a word whose low octet is first.
constexpr uint32_t kFirstKind = 7;
constexpr auto kRsyncKinds = SortedNames({
    {0, "Data"}, {1, "Transfer Error"}, {2, "Information"}, {3, "Error"}, {4, "Warning"}, {5, "Socket Error"}, {6, "Log"},
    {7, "Client"}, {8, "Character Set Error"}, {9, "Redo"}, {10, "Statistics"}, {22, "I/O Error"}, {33, "I/O Timeout"},
    {42, "No Operation"}, {86, "Exit on Error"}, {100, "Success"}, {101, "Deleted"}, {102, "Not Sent"}});

bool StartsRsyncMessage(const Cursor& c) {
  const uint32_t kind = PeekU8(c, 3);
  return Left(c) >= 4 && kind >= kFirstKind && LookupName(kRsyncKinds, kind - kFirstKind, nullptr);
}

// Whether messages fill the bytes; the last one may go on behind them.
bool HoldsRsyncMessages(Cursor c) {
  Loop loop;
  while (More(c, loop) && StartsRsyncMessage(c)) TakeCursor(c, 4 + static_cast<int32_t>(PeekLittleU32(c) & 0xFFFFFF));
  return Left(c) == 0;
}

void ShowRsyncMessages(const Place& at, Cursor& c) {
  constexpr int32_t kShort = 8;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const uint32_t length = PeekLittleU32(c) & 0xFFFFFF, kind = PeekU8(c, 3) - kFirstKind;
    const Field whole = AheadCut(c, 4 + static_cast<int32_t>(length));
    const Place in = Under(at, AddLine(at, whole, "Message: %s, %u bytes", LookupName(kRsyncKinds, kind), length));
    AddLine(in, TakeBytes(c, 3), "Length: %u", length);
    AddLine(in, TakeU8(c), "Kind: %u = %s", kind + kFirstKind, LookupName(kRsyncKinds, kind));
    Cursor data = TakeCursor(c, static_cast<int32_t>(length));
    if (kind > 0 && IsReadable(data)) ShowLinesOfText(in, data, "Text");
    const Field rest = Rest(data);
    if (rest.length > 0 && rest.length <= kShort) AddLine(in, rest, "Data: %s", HexText(rest));
    else AddBlock(in, rest, "Data");
  }
}

}  // namespace

int32_t DecodeRsh(const Place& at, Cursor c) {
  constexpr const char* kLabels[] = {"Client User", "Server User", "Command"};
  ShowCommandConnection(TopLine(at, c, "rsh"), c, kLabels, IsFromServer(at));
  return 1;
}

int32_t DecodeRexec(const Place& at, Cursor c) {
  constexpr const char* kLabels[] = {"User", "Password", "Command"};
  ShowCommandConnection(TopLine(at, c, "rexec"), c, kLabels, IsFromServer(at));
  return 1;
}

int32_t DecodeRlogin(const Place& at, Cursor c) {
  const Place in = TopLine(at, c, "rlogin");
  const bool isServer = IsFromServer(at);
  if (PeekU8(c) == 0 && Left(c) > 0) {
    AddLine(in, TakeU8(c), "%s", isServer ? "Startup Confirmed" : "Startup");   // keys: none Startup, Startup Confirmed
    if (!isServer) {
      ShowTerminated(in, c, "Client User");
      ShowTerminated(in, c, "Server User");
      ShowTerminated(in, c, "Terminal and Speed");
    }
  }
  if (!isServer && PeekIs(c, 0, "\xFF\xFFss") && Left(c) >= 12) {
    ShowRows(Under(in, AddLine(in, Ahead(c, 12), "Window Change")), c, kWindow);
  }
  ShowLinesOfText(in, c, "Data");
  return 1;
}

int32_t DecodeLpd(const Place& at, Cursor c) {
  const Place in = TopLine(at, c, "LPD");
  TextLine line;
  bool isText = false;   // all that is left
  Loop loop;
  while (MoreAt(in, c, loop)) {
    Cursor next = c;
    const uint32_t code = PeekU8(c);
    if (IsFromServer(at) && Left(c) == 1) {
      const Field status = TakeU8(c);
      AddLine(in, status, "Acknowledgement: %u = %s", code, code == 0 ? "Positive" : "Negative");
    } else if (code >= 1 && code <= 5 && TakeLine(next, line)) {
      ShowPrinterCommand(in, line);
      c = next;
    } else if (code == 0) {
      AddLine(in, TakeU8(c), "End of File");
    } else if (isText || (isText = IsReadable(c, true))) {
      ShowPrinterText(in, c);
    } else {
      AddBlock(in, Rest(c), "Data");
    }
  }
  return 1;
}

// Whether a zero ends the next text, not the end of a line.
bool EndsInZero(const Cursor& c) {
  for (int32_t at = 0; at < Left(c) && PeekU8(c, at) != '\n'; ++at) {
    if (PeekU8(c, at) == 0) return true;
  }
  return false;
}

// The daemon of rsync says its version in a line and talks of modules in others; what is behind has no public text.
int32_t DecodeRsync(const Place& at, Cursor c) {
  const bool isText = IsReadable(c, true);
  TextLine line;
  Cursor ahead = c;
  if (!TakeLine(ahead, line)) return 0;
  const Field all = Ahead(c, Left(c));
  const Place in = Under(at, isText || StartsWithText(c, "@") ? AddTextLine(at, all, "rsync", line.text)
                                                              : AddLine(at, all, "rsync: Data"));
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (!isText && HoldsRsyncMessages(c)) {
      ShowRsyncMessages(in, c);
    } else if (!isText && !StartsWithText(c, "@RSYNCD:") && !StartsWithText(c, "@ERROR")) {
      AddBlock(in, Rest(c), "Data");
    } else if (EndsInZero(c)) {
      ShowTerminated(in, c, "Argument");
    } else if (!StartsWithText(c, "@RSYNCD:")) {
      TakeLine(c, line);
      AddTextLine(in, line.whole, PeekU8(line.text) == '@' ? "Error" : PeekU8(line.text) == '-' ? "Argument" : "Text", line.text);
    } else {
      TakeLine(c, line);
      const Place under = Under(in, AddTextLine(in, line.whole, "Greeting", line.text));
      Field rest = line.text;
      AddTextLine(under, TakeWord(rest), "Magic");
      const Field word = TakeWord(rest);
      const bool isVersion = PeekU8(word) >= '0' && PeekU8(word) <= '9';
      rest = Trimmed(rest);
      const int32_t end = line.whole.offset + line.whole.length - word.offset;   // with the line's end where nothing follows
      const Field whole = rest.length > 0 ? word : Slice(line.whole, line.whole.length - end, end);
      AddTextLine(under, whole, isVersion ? "Version" : "Status", word);
      if (rest.length > 0) AddTextLine(under, rest, isVersion ? "Digests" : "Parameter");
    }
  }
  return 1;
}

}  // namespace qxview
