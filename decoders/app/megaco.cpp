// Megaco in its text form (RFC 3525 annex B, ITU-T H.248.1): a controller commands a gateway's terminations. Words have short
// forms; what stands in braces belongs to the word in front.
//
//   MEGACO/1 [192.0.2.1]:2944 Transaction = 1 { Context = $ { Add = A4444 { Media { Local { v=0 ... } } } } }
#include "decoders/app/megaco.h"

#include "core/rows.h"
#include "decoders/app/megaco_names.h"
#include "decoders/common/header_lines.h"
#include "decoders/message_lengths.h"

namespace qxview {

int32_t DecodeSdp(const Place& at, Cursor c);

namespace {

struct Word {
  const char* brief;
  const char* name;
  const char* wire = nullptr;    // the long form, of what has a value of its own
  const char* value = nullptr;   // what the value is
  bool isCommand = false;        // of a termination
};
constexpr Word kWords[] = {
    {"T", "Transaction", "Transaction", "Transaction Request ID"}, {"P", "Reply", "Reply", "Transaction Reply ID"},
    {"PN", "Pending", "Pending", "Transaction Pending ID"}, {"K", "Transaction Response Acknowledgement"},
    {"C", "Context", "Context", "Context"}, {"A", "Add", "Add", "Termination ID", true}, {"MV", "Move", "Move", "Termination ID", true},
    {"MF", "Modify", "Modify", "Termination ID", true}, {"S", "Subtract", "Subtract", "Termination ID", true},
    {"AV", "Audit Value", "AuditValue", "Termination ID", true}, {"AC", "Audit Capability", "AuditCapability", "Termination ID", true},
    {"N", "Notify", "Notify", "Termination ID", true}, {"SC", "Service Change", "ServiceChange", "Termination ID", true},
    {"ER", "Error", "Error", "Error Value"}, {"M", "Media"}, {"ST", "Stream", "Stream", "Stream"}, {"L", "Local"},
    {"R", "Remote"}, {"O", "Local Control"}, {"TS", "Termination State"}, {"E", "Events", "Events", "Request"},
    {"OE", "Observed Events", "ObservedEvents", "Request"}, {"SG", "Signals"},
    {"SL", "Signal List", "SignalList", "Signal List"}, {"DM", "Digit Map", "DigitMap", "Digit Map Name"},
    {"SV", "Services"}, {"AT", "Audit"}, {"MO", "Mode"}, {"SO", "Send Only"}, {"RC", "Receive Only"}, {"SR", "Send Receive"},
    {"IN", "Inactive"}, {"LB", "Loopback"}, {"MD", "Modem"}, {"MX", "Mux"}, {"SA", "Statistics"}, {"PG", "Packages"},
    {"EB", "Event Buffer"}, {"EM", "Embed"}, {"TP", "Topology"}, {"PR", "Priority"}, {"EG", "Emergency"}, {"MT", "Method"},
    {"RE", "Reason"}, {"AD", "Address"}, {"DL", "Delay"}, {"PF", "Profile"}, {"V", "Version"}, {"MG", "MGC to Try"},
    {"RP", "Reserved Group or Error Ratio"}, {"TL", "Termination"}, {"AU", "Authentication"}};

// The bytes of a token that ends at one of the marks.
Field TakeToken(Cursor& c) {
  int32_t length = 0;
  for (bool quoted = false; length < Left(c); ++length) {
    const uint32_t each = PeekU8(c, length);
    if (each == '"') quoted = !quoted;
    if (!quoted && (each == '{' || each == '}' || each == ',' || each == ';')) break;
  }
  return TakeBytes(c, length);
}

Field WithoutSpace(Field text) {
  while (text.length > 0 && IsSpace(PeekU8(text))) text = Slice(text, 1, text.length - 1);
  while (text.length > 0 && IsSpace(PeekU8(text, text.length - 1))) text = Slice(text, 0, text.length - 1);
  return text;
}

const Word* WordOf(const Field& token) {
  Field rest = token;
  const Field word = WithoutSpace(TakeWord(rest, "= \t\r\n"));
  for (const Word& row : kWords) {
    if (IsWord(word, row.brief) || (row.wire && IsWord(word, row.wire))) return &row;
  }
  return nullptr;
}

const char* ContextNote(const Field& value) {
  if (value.length != 1) return "";
  switch (PeekU8(value)) {
    case '-': return " = Null (0)";
    case '$': return " = Choose";
    case '*': return " = All";
    default: return "";
  }
}

// What a name, "package/item" or one of the words, is given. What opens braces has them at its end: `head` goes up to there.
void ShowParts(const Place& in, const Field& head, const Field& token, const Word* word, bool opens) {
  if (PeekU8(token) == '(') return;   // a digit map
  if (PeekU8(token) == '"') {
    AddTextLine(in, Slice(token, 1, token.length - (token.length > 1 ? 2 : 1)), "Quoted Text");
    return;
  }
  Field rest = token;
  Field name = WithoutSpace(TakeWord(rest, "=(<>#"));
  const bool hasParameters = PeekU8(token, rest.offset - token.offset - 1) == '(';
  const Field value = WithoutSpace(hasParameters ? Slice(rest, 0, rest.length - (rest.length > 0 ? 1 : 0)) : rest);
  Field left = name;
  const Field time = TakeWord(left, ":");
  if (left.here && left.length > 0) {
    AddTextLine(in, time, "Time");
    name = left;
  }
  left = name;
  const Field package = TakeWord(left, "/");
  if (left.here && left.length > 0) {
    AddTextLine(in, package, "Package");
    AddTextLine(in, left, "Item Name");
  }
  if (value.length == 0) return;
  // keys: text Transaction Request ID, Transaction Reply ID, Transaction Pending ID, Termination ID, Stream, Request
  // keys: text Signal List, Digit Map Name
  if (!word || !word->value) return (void)AddTextLine(in, value, hasParameters ? "Parameters" : "Value");
  if (word->isCommand) AddTextLine(in, name, "Command");
  if (IsWord(name, "ER") || IsWord(name, "Error")) {
    AddLine(in, value, "Error Value: %s = %s", Text(value), LookupName(kMegacoErrorNames, static_cast<uint32_t>(DecimalOf(value))));
  } else if (IsWord(name, "C") || IsWord(name, "Context")) {
    AddLine(in, head, "Context: %s%s", Text(value), ContextNote(value));
  } else {
    const bool isWhole = opens && !word->isCommand && !IsWord(name, "Events") && !IsWord(name, "ObservedEvents");
    AddTextLine(in, isWhole ? head : value, word->value, value);
  }
}

bool IsDescription(const Field& token) {
  return IsWord(token, "Local") || IsWord(token, "L") || IsWord(token, "Remote") || IsWord(token, "R");
}

bool IsBrief(const Field& token, const Word& word) {
  Field rest = token;
  return IsWord(WithoutSpace(TakeWord(rest, "= \t\r\n")), word.brief);
}

// Behind a semicolon, to the end of the line.
void ShowComment(const Place& in, Cursor& c) {
  TextLine line;
  if (TakeLine(c, line)) AddTextLine(in, line.whole, "Comment", Trimmed(line.text));
}

void ShowItems(const Place& at, const Place& in, Cursor& c, int32_t depth) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    SkipSpace(c);
    const Cursor first = c;
    const Field head = TakeToken(c), token = WithoutSpace(head);
    const uint32_t mark = PeekU8(c);
    const Word* word = token.length > 0 ? WordOf(token) : nullptr;
    Place under = in;
    if (token.length > 0) {
      const bool isBrief = word && IsBrief(token, *word);
      const LineHandle line = isBrief ? AddLine(in, token, "Item: %s (%s)", Text(token), word->name)
                                      : AddTextLine(in, token, "Item");
      under = Under(in, line);
      ShowParts(under, head, token, word, mark == '{');
    }
    if (mark == '}') return;
    if (Left(c) > 0) TakeU8(c);
    if (mark == ';') ShowComment(in, c);
    if (mark != '{') continue;
    if (IsDescription(token)) {
      const int32_t end = FindU8(c, '}');
      Cursor body = TakeCursor(c, end < 0 ? Left(c) : end);
      SkipSpace(body);
      if (Left(body) > 0) CallDecoder(Deeper(at), body, DecodeSdp, "Megaco Data");
    } else if (depth >= kDeepestMegaco) {
      return (void)AddBlock(under, Rest(c), "Nested Items");
    } else {
      ShowItems(at, under, c, depth + 1);
    }
    if (PeekU8(c) == '}') TakeU8(c);
    if (!under.dead && token.length > 0) SetRange(under, under.parent, first.offset, c.offset - first.offset);
  }
}

// Messages over TCP and SCTP's like stand in packets of their own (RFC 1006 6, ITU-T H.248.1 Annex D).
struct Framing { Field length; };
constexpr auto kFraming = Rows<Framing>({
    Number(1, "Version"), Number(1, "Reserved"), Number(2, "Length").Into(&Framing::length)});
constexpr int32_t kFramingSize = 4;

bool IsFramed(const Cursor& c) { return PeekU16(c) == 0x0300 && PeekU16(c, 2) > kFramingSize; }

}  // namespace

int32_t LengthOfMegaco(const Cursor& c) {
  if (Left(c) < kFramingSize) return PeekU8(c) == 3 && PeekU8(c, 1) == 0 ? 0 : kNoMessage;
  return IsFramed(c) ? static_cast<int32_t>(PeekU16(c, 2)) : kNoMessage;
}

int32_t DecodeMegaco(const Place& at, Cursor c) {
  if (IsFramed(c)) {
    const Place in = Under(at, AddLine(at, Ahead(c, kFramingSize), "TPKT"));
    ShowRows(in, c, kFraming);
    return CallDecoder(at, c, DecodeMegaco, "Megaco Data"), 1;
  }
  if (IsBinaryMegaco(c)) return DecodeBinaryMegaco(at, c);
  if (!StartsWithText(c, "MEGACO/") && !StartsWithText(c, "!/") && !StartsWithText(c, "Authentication") && !StartsWithText(c, "AU=")) {
    return 0;
  }
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Megaco"));
  int32_t length = 0;
  while (length < Left(c) && !IsSpace(PeekU8(c, length))) ++length;
  const Field version = TakeBytes(c, length);
  const Place protocol = Under(in, AddTextLine(in, version, "Protocol"));
  Field number = version;
  TakeWord(number, "/");
  AddTextLine(protocol, number, "Version");
  SkipSpace(c);
  length = 0;
  while (length < Left(c) && !IsSpace(PeekU8(c, length))) ++length;
  const Field sender = TakeBytes(c, length);
  AddTextLine(in, sender, "Message ID");
  ShowItems(at, in, c, 0);
  AddBlock(in, Rest(c), "Megaco Data");
  return 1;
}

}  // namespace qxview
