// Talk in lines: IRC (RFC 1459, 2810-2813, and the tags of IRCv3), MSNP as far as its makers' draft published it, and YMSG,
// whose frame is known alone.
#include "core/rows.h"
#include "decoders/app/irc_names.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/common/text_lines.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

// "@key=value;key" in front of a message.
void ShowTags(const Place& at, const Field& word) {
  const Place in = Under(at, AddTextLine(at, word, "Tags"));
  Field rest = Slice(word, 1, word.length - 1);
  for (Field tag = TakeWord(rest, ";"); tag.here; tag = TakeWord(rest, ";")) AddTextLine(in, tag, "Tag");
}

// "nick!user@host" or a server.
void ShowPrefix(const Place& at, const Field& word) {
  const Place in = Under(at, AddTextLine(at, word, "Prefix"));
  Field rest = Slice(word, 1, word.length - 1);
  const bool isUser = FindU8(CursorOver(rest), '!') >= 0 || FindU8(CursorOver(rest), '@') >= 0;
  AddTextLine(in, TakeWord(rest, "!@"), isUser ? "Nickname" : "Server");
  if (FindU8(CursorOver(rest), '@') >= 0) AddTextLine(in, TakeWord(rest, "@"), "User");
  if (rest.length > 0) AddTextLine(in, rest, "Host");
}

void ShowIrcMessage(const Place& at, const TextLine& line) {
  Field rest = Trimmed(line.text);
  const Place in = Under(at, AddTextLine(at, line.whole, "Message", line.text));
  if (PeekU8(rest) == '@') ShowTags(in, TakeWord(rest));
  rest = Trimmed(rest);
  if (PeekU8(rest) == ':') ShowPrefix(in, TakeWord(rest));
  const Field command = TakeWord(rest);
  const int32_t number = command.length == 3 ? DecimalOf(command) : -1;
  if (number >= 0) {
    AddLine(in, command, "Numeric: %03u = %s", static_cast<uint32_t>(number), LookupName(kIrcNumericNames, static_cast<uint32_t>(number)));
  } else {
    AddTextLine(in, command, "Command");
  }
  while (rest.length > 0) {
    while (PeekU8(rest) == ' ') rest = Slice(rest, 1, rest.length - 1);
    if (PeekU8(rest) == ':') {
      AddTextLine(in, Slice(rest, 1, rest.length - 1), "Trailing");
      return;
    }
    AddTextLine(in, TakeWord(rest), "Parameter");
  }
}

// Commands of MSNP whose last parameter counts a payload.
bool HasPayload(const Field& verb) {
  constexpr const char* kVerbs[] = {"MSG", "NOT", "UBX", "UUX", "ADL", "RML", "GCF", "UBN", "UUN", "IPG", "QRY", "SDG", "NFY"};
  for (const char* each : kVerbs) {
    if (IsWord(verb, each)) return true;
  }
  return false;
}

void ShowMsnCommand(const Place& at, Cursor& c) {
  TextLine line;
  TakeLine(c, line);
  Field rest = line.text;
  const Place in = Under(at, AddTextLine(at, line.whole, "Command", line.text));
  const Field verb = TakeWord(rest);
  AddTextLine(in, verb, "Verb");
  Field word = TakeWord(rest), last = word;
  if (DecimalOf(word) >= 0) AddTextLine(in, word, "Transaction ID");
  else if (word.here) AddTextLine(in, word, "Parameter");
  while ((word = TakeWord(rest)).here) AddTextLine(in, last = word, "Parameter");
  const int32_t length = HasPayload(verb) ? DecimalOf(last) : -1;
  if (length <= 0) return;
  Cursor payload = TakeCursor(c, length);
  const Place under = Under(at, AddLine(at, Ahead(payload, Left(payload)), "Payload"));
  ShowHeaders(under, payload);
  ShowLinesOfText(under, payload, "Text");
}

struct Ymsg { Field length; };
constexpr auto kYmsgServiceNames = SortedNames({
    {0x01, "Logon"}, {0x02, "Logoff"}, {0x03, "Is Away"}, {0x04, "Is Back"}, {0x06, "Message"}, {0x0B, "New Mail"},
    {0x12, "Ping"}, {0x1D, "Conference Message"}, {0x46, "Peer to Peer File Transfer"}, {0x4B, "Notify"}, {0x4C, "Verify"},
    {0x54, "Authentication Response"}, {0x55, "List"}, {0x57, "Authentication"}, {0x83, "Add Buddy"},
    {0x84, "Remove Buddy"}, {0x8A, "Keep-Alive"}});
constexpr auto kYmsgHeader = Rows<Ymsg>({
    Text(4, "Signature"), Number(2, "Version"), Number(2, "Vendor"), Number(2, "Length").Into(&Ymsg::length),
    Hex(2, "Service", kYmsgServiceNames), Hex(4, "Status"), Hex(4, "Session ID")});
constexpr int32_t kYmsgHeaderSize = 20;

Field TakeYmsgText(Cursor& c) {
  int32_t end = 0;
  while (end < Left(c) && PeekU16(c, end) != 0xC080) ++end;
  const Field text = TakeBytes(c, end);
  TakeBytes(c, Left(c) < 2 ? Left(c) : 2);
  return text;
}

}  // namespace

int32_t DecodeIrc(const Place& at, Cursor c) {
  TextLine line;
  Cursor ahead = c;
  if (!IsReadable(MakeCursor(c.at, c.offset, Left(c) < 3 ? Left(c) : 3)) || !TakeLine(ahead, line)) return 0;
  const Place in = Under(at, AddTextLine(at, Ahead(c, Left(c)), "IRC", line.text));
  Loop loop;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) {
    if (Trimmed(line.text).length > 0) ShowIrcMessage(in, line);
    else AddLine(in, line.whole, "Empty Line");
  }
  return 1;
}

int32_t DecodeMsn(const Place& at, Cursor c) {
  TextLine line;
  Cursor ahead = c;
  if (!TakeLine(ahead, line) || !IsReadable(CursorOver(line.text))) return 0;
  const Place in = Under(at, AddTextLine(at, Ahead(c, Left(c)), "MSN", line.text));
  Loop loop;
  while (MoreAt(in, c, loop)) ShowMsnCommand(in, c);
  return 1;
}

int32_t LengthOfYmsg(const Cursor& c) {
  if (Left(c) < kYmsgHeaderSize) return 0;
  return PeekIs(c, 0, "YMSG") ? kYmsgHeaderSize + static_cast<int32_t>(PeekU16(c, 8)) : kNoMessage;
}

int32_t DecodeYmsg(const Place& at, Cursor c) {
  if (Left(c) < kYmsgHeaderSize || !PeekIs(c, 0, "YMSG")) return 0;
  Loop loop;
  while (MoreAt(at, c, loop) && PeekIs(c, 0, "YMSG")) {
    const Place in = Under(at, AddLine(at, AheadCut(c, kYmsgHeaderSize + static_cast<int32_t>(PeekU16(c, 8))), "YMSG: %s",
                                       LookupName(kYmsgServiceNames, PeekU16(c, 10))));
    const Ymsg ymsg = ShowRows(in, c, kYmsgHeader);
    Cursor body = TakeCursor(c, ymsg.length.value);
    Loop pairs;
    while (MoreAt(in, body, pairs)) {
      const Field key = TakeYmsgText(body), value = TakeYmsgText(body);
      const Place under = Under(in, AddLine(in, Stated(key.offset, body.offset - key.offset), "Field %s: %s", Text(key), Text(value)));
      AddTextLine(under, key, "Key");
      if (value.length > 0) AddTextLine(under, value, "Value");
    }
  }
  if (Left(c) > 0) AddRawRest(at, c, "YMSG Data");
  return 1;
}

}  // namespace qxview
