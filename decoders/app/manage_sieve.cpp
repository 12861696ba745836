// ManageSieve (RFC 5804): commands and responses in lines with texts in quotation marks or as counted octets, by which mail
// filters are kept on a server.
#include "decoders/app/command_arguments.h"
#include "decoders/app/stream_note.h"
#include "decoders/app/tls_record.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/common/text_lines.h"

namespace qxview {
namespace {

struct Argument {
  Field whole, value;
  bool isString, isLiteral;
  int64_t lacking;   // octets of a literal that are to come
};

bool EndsLine(const Cursor& c, int32_t at) {
  return PeekU8(c, at) == '\n' || (PeekU8(c, at) == '\r' && PeekU8(c, at + 1) == '\n');
}

// The octets of a literal, with which its line ends; -1 for anything else.
int32_t TakeLiteralHead(Cursor& c) {
  constexpr int32_t kLongestHead = 24;
  int32_t end = 0;
  while (end < Left(c) && end < kLongestHead && !EndsLine(c, end)) ++end;
  if (end == kLongestHead) return -1;
  Cursor next = c;
  TextLine line;
  TakeLine(next, line);
  const int32_t length = LiteralOf(line.text);
  if (length >= 0) c = next;
  return length;
}

// A text in quotation marks, counted octets, a list in brackets, or a word.
bool TakeArgument(Cursor& c, Argument& out) {
  while (PeekU8(c) == ' ') TakeBytes(c, 1);
  const uint32_t first = PeekU8(c);
  if (Left(c) == 0 || first == '\r' || first == '\n') return false;
  const Cursor start = c;
  out = {};
  const int32_t length = first == '{' ? TakeLiteralHead(c) : -1;
  if (length >= 0) {
    const int32_t there = length < Left(c) ? length : Left(c);
    out = {{}, TakeBytes(c, there), true, true, length - there};
  } else {
    const uint32_t close = first == '"' ? '"' : first == '(' ? ')' : ' ';
    int32_t end = close == ' ' ? 0 : 1;
    while (end < Left(c) && !EndsLine(c, end) && PeekU8(c, end) != close) {
      end += PeekU8(c, end) == '\\' && close == '"' && end + 1 < Left(c) && !EndsLine(c, end + 1) ? 2 : 1;
    }
    const bool isClosed = close != ' ' && end < Left(c) && !EndsLine(c, end);
    const Field all = TakeBytes(c, end + isClosed);
    out = {{}, close == ' ' ? all : Slice(all, 1, end - 1), first == '"', false, 0};
  }
  out.whole = Ahead(start, c.offset - start.offset);
  return true;
}

// A line with the literals in it.
int64_t LengthOfStatement(Cursor c) {
  const Cursor start = c;
  TextLine line;
  while (TakeLine(c, line)) {
    const int32_t literal = LiteralOf(line.text);
    if (literal < 0) break;
    TakeBytes(c, literal < Left(c) ? literal : Left(c));
  }
  return c.offset - start.offset;
}

void ShowScript(const Place& at, const Argument& argument, const char* label) {
  const Place in = Under(at, AddLine(at, argument.whole, "%s: %d bytes", label, argument.value.length));   // keys: number Script
  Cursor lines = CursorOver(argument.value);
  ShowLinesOfText(in, lines, "Script Line");
}

// What a command's argument says, by its place.
const char* LabelOf(const Field& verb, int32_t number) {
  if (IsWord(verb, "AUTHENTICATE")) return number == 0 ? "Mechanism" : "Initial Response";
  if (IsWord(verb, "HAVESPACE")) return number == 0 ? "Script Name" : "Script Size";
  if (IsWord(verb, "PUTSCRIPT")) return number == 0 ? "Script Name" : "Script";
  if (IsWord(verb, "CHECKSCRIPT")) return "Script";
  if (IsWord(verb, "RENAMESCRIPT")) return number == 0 ? "Old Script Name" : "New Script Name";
  if (IsWord(verb, "NOOP")) return "Tag";
  return number == 0 ? "Script Name" : "Argument";
}

bool IsStatus(const Field& word) { return IsWord(word, "OK") || IsWord(word, "NO") || IsWord(word, "BYE"); }

// keys: text Status, Response Code, Response Text, Verb, Mechanism, Initial Response, Script Name, Script Size, Old Script Name
// keys: text New Script Name, Tag, Argument, Capability, Value, Script State, Text
void ShowCommandArguments(const Place& in, Cursor& c, const Field& verb) {
  Argument argument;
  Loop loop;
  for (int32_t number = 0; MoreAt(in, c, loop) && TakeArgument(c, argument); ++number) {
    const char* label = LabelOf(verb, number);
    if (argument.isLiteral && (label[0] == 'S' && label[6] == 0)) {
      ShowScript(in, argument, label);
      continue;
    }
    const Place under = Under(in, AddTextLine(in, argument.whole, label, argument.value));
    if (IsWord(verb, "AUTHENTICATE") && number > 0) ShowSasl(under, argument.value);
  }
}

void ShowStatus(const Place& in, Cursor& c) {
  Argument argument;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeArgument(c, argument)) {
    const bool isCode = PeekU8(argument.whole) == '(';
    const Place under = Under(in, AddTextLine(in, argument.whole, isCode ? "Response Code" : "Response Text", argument.value));
    Field code = argument.value;
    const Field name = isCode ? TakeWord(code) : Field{};
    if (IsWord(name, "SASL")) ShowSasl(under, Slice(Trimmed(code), 1, Trimmed(code).length - 2));
  }
}

// A line of strings: an ability, a script's name, or what a mechanism of SASL says.
void ShowStrings(const Place& in, Cursor& c, const Argument& first, bool isCapability) {
  if (first.isLiteral) return ShowScript(in, first, "Script");
  const bool isSasl = !isCapability && IsSasl(first.value);
  const char* label = isCapability ? "Capability" : isSasl ? "Value" : "Script Name";
  const Place under = Under(in, AddTextLine(in, first.whole, label, first.value));
  if (isSasl) ShowSasl(under, first.value);
  Argument argument;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeArgument(c, argument)) {
    AddTextLine(in, argument.whole, argument.isString ? "Value" : "Script State", argument.value);
  }
}

// Result: the octets of a literal that the segment lacks.
int64_t ShowStatement(const Place& at, Cursor c, bool tellsAbilities) {
  const Field whole = Ahead(c, Left(c));
  TextLine line;
  Cursor ahead = c;
  TakeLine(ahead, line);
  Argument first;
  if (!TakeArgument(c, first)) {
    AddLine(at, whole, "Empty Line");
    return 0;
  }
  const bool isStatus = !first.isString && IsStatus(first.value);
  const char* title = isStatus ? "Response" : first.isString ? "Strings" : "Command";
  const Place in = Under(at, AddTextLine(at, whole, title, line.text));   // keys: text Response, Strings, Command
  Argument last = first;
  if (first.isString) {
    ShowStrings(in, c, first, tellsAbilities);
  } else {
    AddTextLine(in, first.whole, isStatus ? "Status" : "Verb", first.value);
    Cursor arguments = c;
    if (isStatus) ShowStatus(in, arguments);
    else ShowCommandArguments(in, arguments, first.value);
  }
  Loop loop;
  while (More(c, loop) && TakeArgument(c, last)) {}
  return last.lacking;
}

}  // namespace

int32_t DecodeManageSieve(const Place& at, Cursor c) {
  TextLine line;
  Cursor ahead = c;
  const StreamNote before = RecallNote(at, c);
  if (before.phase == 0 && (StartsTlsRecord(c) || !TakeLine(ahead, line) || !IsReadable(CursorOver(line.whole)))) return 0;
  const Place in = Under(at, before.phase ? AddLine(at, Ahead(c, Left(c)), "ManageSieve: Continued Script")
                                          : AddLine(at, Ahead(c, Left(c)), "ManageSieve: %s", Text(line.text)));
  int64_t lacking = 0;
  if (before.phase) {
    lacking = before.lacking > static_cast<uint32_t>(Left(c)) ? before.lacking - static_cast<uint32_t>(Left(c)) : 0;
    Cursor rest = TakeCursor(c, before.lacking);
    ShowLinesOfText(in, rest, "Script Line");
    if (Left(c) > 0 && TakeLine(ahead = c, line) && line.text.length == 0) AddLine(in, TakeBytes(c, line.whole.length), "End of Line");
  }
  const bool tellsAbilities = StartsWithText(c, "\"IMPLEMENTATION\"");   // they come first, and alone
  Loop loop;
  while (MoreAt(in, c, loop)) {
    Cursor statement = TakeCursor(c, LengthOfStatement(c));
    lacking = ShowStatement(in, statement, tellsAbilities);
  }
  StreamNote note{};
  note.phase = 1;
  note.lacking = static_cast<uint32_t>(lacking);
  if (lacking > 0) LeaveNote(at, c, note);
  return 1;
}

}  // namespace qxview
