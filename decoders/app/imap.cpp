// Internet Message Access Protocol (RFC 3501, RFC 9051): commands and responses in lines, with tags that tell which belongs
// to which, and literals of counted octets inside.
#include "decoders/app/internet_message.h"
#include "decoders/app/tls_record.h"
#include "decoders/common/header_lines.h"

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

// The octets that a line's end announces, "{310}" or "{310+}"; -1 for none.
int32_t LiteralOf(const Field& line) {
  if (line.length < 3 || PeekU8(line, line.length - 1) != '}') return -1;
  int32_t open = line.length - 1;
  while (open > 0 && PeekU8(line, open) != '{') --open;
  const int32_t end = line.length - 1 - (PeekU8(line, line.length - 2) == '+');
  return PeekU8(line, open) == '{' ? DecimalOf(Slice(line, open + 1, end - open - 1)) : -1;
}

// A word of capitals alone: by which servers name the command that they answer.
bool IsCommandName(const Field& word) {
  for (int32_t i = 0; i < word.length; ++i) {
    if (PeekU8(word, i) < 'A' || PeekU8(word, i) > 'Z') return false;
  }
  return word.length > 2;
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
    const Place text = Under(in, AddTextLine(in, ahead, "Text"));
    const Field answered = TakeWord(ahead);
    if (!isUntagged && IsCommandName(answered)) AddTextLine(text, answered, "Answered Command");
  } else if (isResponse) {
    AddTextLine(in, rest, "Data");
  } else {
    AddTextLine(in, word, "Command");
    if (IsWord(word, "UID")) AddTextLine(in, TakeWord(ahead), "Command by UID");
    if (IsWord(word, "LOGIN")) {
      AddTextLine(in, TakeWord(ahead), "User Name");
      AddTextLine(in, TakeWord(ahead), "Password");
    } else if (ahead.length > 0) {
      AddTextLine(in, ahead, "Arguments");
    }
  }
}

}  // namespace

int32_t DecodeImap(const Place& at, Cursor c) {
  TextLine line;
  Cursor ahead = c;
  if (StartsTlsRecord(c.at, Left(c)) || !TakeLine(ahead, line)) return 0;
  const bool isLine = IsImapLine(line.text);
  if (!isLine && !StartsInternetMessage(c)) return 0;
  const Place in = isLine ? Under(at, AddLine(at, Ahead(c, Left(c)), "IMAP: %s", Text(line.text)))
                          : Under(at, AddLine(at, Ahead(c, Left(c)), "IMAP: Message"));
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (!isLine && StartsInternetMessage(c)) {
      ShowInternetMessage(in, c, false);
      break;
    }
    TakeLine(c, line);
    if (IsImapLine(line.text)) {
      ShowLine(in, line);
    } else if (line.text.length > 0) {
      AddTextLine(in, line.whole, "Text", line.text);
    }
    const int32_t literal = LiteralOf(line.text);
    if (literal <= 0) continue;
    Cursor octets = TakeCursor(c, literal);
    if (StartsInternetMessage(octets)) {
      ShowInternetMessage(in, octets, false);
    } else {
      ShowMessageText(in, octets, false);
    }
  }
  return 1;
}

}  // namespace qxview
