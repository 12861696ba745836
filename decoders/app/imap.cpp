// Internet Message Access Protocol (RFC 3501, RFC 9051): commands and responses in lines, with tags that tell which belongs
// to which, and literals of counted octets inside.
#include "core/bounded_loop.h"
#include "decoders/app/compressed_lines.h"
#include "decoders/app/internet_message.h"
#include "decoders/app/tls_record.h"
#include "decoders/common/text_lines.h"

namespace qxview {
namespace {

bool IsStatus(const Field& word) {
  return IsWord(word, "OK") || IsWord(word, "NO") || IsWord(word, "BAD") || IsWord(word, "BYE") || IsWord(word, "PREAUTH");
}

// "a1 LOGIN ...", "* 1 EXISTS", "+ ready": a tag, and a word behind it.
bool IsImapLine(const Field& line) {
  Field rest = line;
  const Field tag = TakeWord(rest);
  if (!tag.here || tag.length > 32) return false;
  for (int32_t i = 0; i < tag.length; ++i) {
    if (PeekU8(tag, i) <= ' ' || PeekU8(tag, i) >= 0x7F) return false;
  }
  if (tag.length == 1 && (PeekU8(tag) == '*' || PeekU8(tag) == '+')) return true;
  const Field word = TakeWord(rest);
  for (int32_t i = 0; i < word.length; ++i) {
    const uint8_t letter = PeekU8(word, i) | 0x20;
    if (letter < 'a' || letter > 'z') return false;
  }
  return word.here;
}

// By which servers name the command that they answer: a word of capitals alone, or a command in whatever case.
bool IsCommandName(const Field& word) {
  constexpr const char* kCommands[] = {
      "Append", "Authenticate", "Capability", "Check", "Close", "Copy", "Create", "Delete", "Enable", "Examine", "Expunge",
      "Fetch", "Getacl", "Getmetadata", "Getquota", "Getquotaroot", "ID", "Idle", "List", "Listrights", "Login", "Logout",
      "Lsub", "Move", "Myrights", "Namespace", "NOOP", "Rename", "Search", "Select", "Setacl", "Setmetadata", "Setquota",
      "Sort", "STARTTLS", "Status", "Store", "Subscribe", "Thread", "UID", "Unselect", "Unsubscribe"};
  for (const char* each : kCommands) {
    if (IsWord(word, each)) return true;
  }
  for (int32_t i = 0; i < word.length; ++i) {
    if (PeekU8(word, i) < 'A' || PeekU8(word, i) > 'Z') return false;
  }
  return word.length > 2;
}

// Where the list that is opened at `from` ends, behind its bracket.
int32_t EndOfList(const Field& text, int32_t from) {
  int32_t depth = 0;
  bool isQuoted = false;
  for (int32_t i = from; i < text.length; ++i) {
    const uint32_t c = PeekU8(text, i);
    if (isQuoted && c == '\\') ++i;
    else if (c == '"') isQuoted = !isQuoted;
    else if (!isQuoted && c == '(') ++depth;
    else if (!isQuoted && c == ')' && --depth == 0) return i + 1;
  }
  return text.length;
}

// The end of a text in quotation marks, or of an atom with the brackets that it may hold, "BODY[HEADER (DATE)]".
int32_t EndOfWord(const Field& text, int32_t from) {
  const bool isQuoted = PeekU8(text, from) == '"';
  int32_t brackets = 0;
  for (int32_t i = from + isQuoted; i < text.length; ++i) {
    const uint32_t c = PeekU8(text, i);
    if (isQuoted && c == '\\') ++i;
    else if (isQuoted && c == '"') return i + 1;
    else if (c == '[') ++brackets;
    else if (c == ']' && brackets > 0) --brackets;
    else if (!isQuoted && brackets == 0 && (c == ' ' || c == ')')) return i;
  }
  return text.length;
}

// Numbers, names, texts and lists of them (RFC 9051 4).
void ShowValues(const Place& in, const Field& text, int32_t depth) {
  for (int32_t at = 0; at < text.length && GoesOn(in);) {
    const uint32_t c = PeekU8(text, at);
    if (c == ' ' || c == ')') {
      ++at;
      continue;
    }
    const int32_t end = c == '(' ? EndOfList(text, at) : EndOfWord(text, at);
    const Field value = Slice(text, at, end - at);
    if (c != '(') {
      AddTextLine(in, value, c == '"' ? "String" : c == '{' ? "Literal" : DecimalOf(value) >= 0 ? "Number" : "Name");
    } else {
      const Place list = Under(in, AddTextLine(in, value, "List"));
      const int32_t inner = value.length - 1 - (value.length > 1 && PeekU8(value, value.length - 1) == ')');
      if (depth < kDeepestImap) ShowValues(list, Slice(value, 1, inner), depth + 1);
      else AddLine(list, value, "Lists nest too deeply to be shown");
    }
    at = end > at ? end : at + 1;
  }
}

void ShowLine(const Place& at, const TextLine& line) {
  Field rest = line.text;
  const Field tag = TakeWord(rest);
  Field ahead = rest;
  const Field word = TakeWord(ahead);
  const bool isUntagged = tag.length == 1 && (PeekU8(tag) == '*' || PeekU8(tag) == '+');
  const bool isResponse = isUntagged || IsStatus(word);
  const Place in = Under(at, AddTextLine(at, line.whole, isResponse ? "Response" : "Command", line.text));
  AddTextLine(in, tag, "Tag");
  if (isResponse && IsStatus(word)) {
    AddTextLine(in, word, "Status");
    if (IsWord(word, "OK") && !isUntagged) NoteCompressionGranted(at, tag);
    const Place text = Under(in, AddTextLine(in, ahead, "Text"));
    const int32_t close = PeekU8(ahead) == '[' ? FindU8(CursorOver(ahead), ']') : -1;
    const Field whole = ahead;
    Field told = close > 0 ? Slice(whole, close + 1, whole.length - close - 1) : whole;
    if (close > 0) AddTextLine(text, Slice(whole, 0, close + 1), "Response Code");
    const Field answered = TakeWord(ahead);
    if (!isUntagged && IsCommandName(answered)) {
      AddTextLine(text, answered, "Answered Command");
      told = ahead;
    }
    if (told.length < whole.length && Trimmed(told).length > 0) AddTextLine(text, Trimmed(told), "Response Text");
  } else if (isResponse) {
    ShowValues(Under(in, AddTextLine(in, rest, "Data")), rest, 0);
  } else {
    AddTextLine(in, word, "Command");
    if (IsWord(word, "COMPRESS") && IsWord(Trimmed(ahead), "DEFLATE")) NoteCompressionAsked(at, tag);
    if (IsWord(word, "UID")) AddTextLine(in, TakeWord(ahead), "Command by UID");
    if (IsWord(word, "LOGIN")) {
      AddTextLine(in, TakeWord(ahead), "User Name");
      AddTextLine(in, TakeWord(ahead), "Password");
    } else if (ahead.length > 0) {
      ShowValues(Under(in, AddTextLine(in, ahead, "Arguments")), ahead, 0);
    }
  }
}

// The octets of a literal, a message's or others'.
void ShowLiteral(const Place& in, Cursor& c, int32_t length) {
  Cursor octets = TakeCursor(c, length);
  const MessageEnd end{false, true, static_cast<uint32_t>(length - Left(octets))};
  if (StartsInternetMessage(octets)) {
    ShowInternetMessage(in, octets, end);
  } else {
    ShowMessageText(in, octets, end);
  }
}

// A line, and the literal that it announces.
void ShowNext(const Place& in, Cursor& c) {
  TextLine line;
  TakeLine(c, line);
  if (IsImapLine(line.text)) {
    ShowLine(in, line);
  } else if (line.text.length > 0) {
    AddTextLine(in, line.whole, "Text", line.text);
  }
  const int32_t literal = LiteralOf(line.text);
  if (literal > 0) ShowLiteral(in, c, literal);
}

void ShowInflatedLines(const Place& in, Cursor& c) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowNext(in, c);
}

}  // namespace

int32_t DecodeImap(const Place& at, Cursor c) {
  TextLine line;
  if (ShowCompressedLines(at, c, "IMAP", ShowInflatedLines)) return 1;
  Cursor ahead = c;
  if (StartsTlsRecord(c) || !TakeLine(ahead, line)) return 0;
  const bool goesOn = RecallNote(at, c).phase != 0;
  const bool isLine = !goesOn && IsImapLine(line.text);
  if (line.text.length == 0 && Left(ahead) == 0 && !goesOn) {
    AddLine(at, line.whole, "IMAP: Empty Line");
    return 1;
  }
  if (!isLine && !goesOn && !StartsInternetMessage(c)) return 0;
  const Place in = isLine ? Under(at, AddLine(at, Ahead(c, Left(c)), "IMAP: %s", Text(line.text)))
                          : Under(at, AddLine(at, Ahead(c, Left(c)), "IMAP: Message"));
  if (goesOn) ShowMessageRest(in, c);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (!isLine && !goesOn && StartsInternetMessage(c)) {
      ShowInternetMessage(in, c, {});
      break;
    }
    ShowNext(in, c);
  }
  return 1;
}

}  // namespace qxview
