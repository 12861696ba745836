// Protocols of a few lines or fields of text: TiVo Connect Automatic Machine Discovery (its maker's text, revision 1.5.1),
// Kismet's client and server protocol (its README), and Zephyr notices (Athena Technical Plan E.4.1).
#include <iterator>

#include "decoders/common/header_lines.h"
#include "decoders/common/line_text.h"

namespace qxview {
namespace {

// "*KISMET: 0.0.0 1262304000 \x01name\x01 ..." from the server, "!1 ENABLE STATUS *" from the client. Words of several
// words stand between octets of 1.
Field TakeKismetWord(Field& rest) {
  while (rest.length > 0 && PeekU8(rest) == ' ') rest = Slice(rest, 1, rest.length - 1);
  if (rest.length == 0 || PeekU8(rest) != 1) return TakeWord(rest, " ");
  rest = Slice(rest, 1, rest.length - 1);
  return TakeWord(rest, "\x01");
}

void ShowKismetLine(const Place& at, const Field& line) {
  const bool isServer = PeekU8(line) == '*';
  const Place in = Under(at, AddTextLine(at, line, isServer ? "Sentence" : "Request"));
  Field rest = Slice(line, 1, line.length - 1);
  if (isServer) {
    AddTextLine(in, TakeWord(rest, ":"), "Type");
  } else {
    AddTextLine(in, TakeKismetWord(rest), "Request ID");
    AddTextLine(in, TakeKismetWord(rest), "Command");
  }
  Loop loop;
  for (uint32_t number = 1; rest.length > 0 && MoreAt(in, rest, loop); ++number) {
    const Field word = TakeKismetWord(rest);
    if (word.here) AddLine(in, word, "Field #%u: %s", number, Text(word));
  }
}

bool IsKismetLine(const Field& line) { return line.length > 2 && (PeekU8(line) == '*' || PeekU8(line) == '!'); }

constexpr const char* kZephyrFields[] = {
    "Version", "Number of Fields", "Kind", "UID", "Port", "Authentication", "Authenticator Length", "Authenticator",
    "Class", "Instance", "Opcode", "Sender", "Recipient", "Default Format", "Checksum", "Multinotice", "Multinotice UID"};

const char* ZephyrKind(uint32_t kind) {
  constexpr const char* kKinds[] = {"UNSAFE", "UNACKED", "ACKED", "HMACK", "HMCTL", "SERVACK", "SERVNAK", "CLIENTACK", "STAT"};
  return kind < std::size(kKinds) ? kKinds[kind] : kUnknown;
}

// "0x00000002": the number; more than that for anything else.
uint32_t ZephyrNumber(const Field& field) {
  uint32_t number = 0;
  if (field.length != 10) return UINT32_MAX;
  for (int32_t i = 2; i < 10; ++i) {
    const uint8_t c = PeekU8(field, i);
    const uint32_t digit = c >= '0' && c <= '9' ? c - '0' : (c | 0x20) >= 'a' && (c | 0x20) <= 'f' ? (c | 0x20) - 87u : 16;
    if (digit > 15) return UINT32_MAX;
    number = number << 4 | digit;
  }
  return number;
}

// A text up to its zero octet, which is taken, too.
Field TakeZephyrField(Cursor& c) {
  int32_t end = 0;
  while (end < Left(c) && PeekU8(c, end) != 0) ++end;
  const Field field = TakeBytes(c, end);
  TakeBytes(c, Left(c) > 0 ? 1 : 0);
  return field;
}

}  // namespace

int32_t DecodeTivoConnect(const Place& at, Cursor c) {
  if (!StartsWithText(c, "tivoconnect=") && !StartsWithText(c, "TiVoConnect=")) return 0;
  const LineHandle title = AddLine(at, Ahead(c, Left(c)), "TiVoConnect Discovery");
  const Place in = Under(at, title);
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) {
    Field value = line.text;
    const Field name = TakeWord(value, "=");
    if (!name.here) continue;
    ValueText label;
    FormatInto(label.text, sizeof label.text, "%s", Text(name));
    AddTextLine(in, line.text, label.text, value);
    if (IsWord(name, "machine") || IsWord(name, "platform")) AppendToLine(in, title, ", %s", Text(value));
  }
  return 1;
}

int32_t DecodeKismet(const Place& at, Cursor c) {
  TextLine line;
  Cursor ahead = c;
  if (!TakeLine(ahead, line) || !IsKismetLine(line.text)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Kismet: %s", PeekU8(line.text) == '*' ? "Server" : "Client"));
  Loop loop;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) {
    if (IsKismetLine(line.text)) {
      ShowKismetLine(in, line.text);
    } else if (line.text.length > 0) {
      AddTextLine(in, line.text, "Text");
    }
  }
  return 1;
}

int32_t DecodeZephyr(const Place& at, Cursor c) {
  constexpr int32_t kKind = 2;
  if (!StartsWithText(c, "ZEPH")) return 0;
  const LineHandle title = AddLine(at, Ahead(c, Left(c)), "Zephyr Notice");
  const Place in = Under(at, title);
  uint32_t count = UINT32_MAX;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) {
    const Field field = TakeZephyrField(c);
    if (i >= std::size(kZephyrFields)) {
      AddLine(in, field, "Field #%u: %s", i, Text(field));
      continue;
    }
    if (i == 1) count = ZephyrNumber(field);
    if (i == kKind) {
      AddLine(in, field, "Kind: %s = %s", Text(field), ZephyrKind(ZephyrNumber(field)));
      AppendToLine(in, title, ", %s", ZephyrKind(ZephyrNumber(field)));
    } else {
      AddTextLine(in, field, kZephyrFields[i]);
    }
  }
  AddBlock(in, Rest(c), "Message");
  return 1;
}

}  // namespace qxview
