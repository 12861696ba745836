// Protocols of text in frames of their own: DICT (RFC 2229), Subversion's server (its public text), BEEP (RFC 3080, 3081), UCP
// (EMI, its public text) and HL7 version 2 in MLLP blocks.
#include "decoders/common/text_lines.h"
#include "decoders/common/xml_lines.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

constexpr auto kDictCodes = SortedNames({
    {110, "Databases Present"}, {111, "Strategies Available"}, {112, "Database Information Follows"},
    {113, "Help Text Follows"}, {114, "Server Information Follows"}, {130, "Challenge Follows"},
    {150, "Definitions Retrieved"}, {151, "Definition Follows"}, {152, "Matches Found"}, {210, "Timing"},
    {220, "Ready"}, {221, "Closing Connection"}, {230, "Authentication Successful"}, {250, "Okay"},
    {330, "Send Response"}, {420, "Temporarily Unavailable"}, {421, "Shutting Down"}, {500, "Syntax Error"},
    {501, "Illegal Parameters"}, {502, "Command Not Implemented"}, {503, "Parameter Not Implemented"}, {530, "Access Denied"},
    {531, "Access Denied, Use SHOW INFO"}, {532, "Unknown Mechanism"}, {550, "Invalid Database"}, {551, "Invalid Strategy"},
    {552, "No Match"}, {554, "No Databases Present"}, {555, "No Strategies Available"}});

void ShowDictLine(const Place& at, const TextLine& line, bool isServer) {
  Field rest = line.text;
  const Field word = TakeWord(rest);
  const int32_t code = word.length == 3 ? DecimalOf(word) : -1;
  if (isServer && code < 0) return (void)AddTextLine(at, line.whole, "Text", line.text);
  const Place in = Under(at, AddTextLine(at, line.whole, isServer ? "Reply" : "Command", line.text));
  if (isServer) {
    AddLine(in, word, "Reply Code: %u = %s", static_cast<uint32_t>(code), LookupName(kDictCodes, static_cast<uint32_t>(code)));
    if (Trimmed(rest).length > 0) AddTextLine(in, Trimmed(rest), "Reply Text");
    return;
  }
  AddTextLine(in, word, "Verb");
  for (Field next = TakeWord(rest); next.here; next = TakeWord(rest)) AddTextLine(in, next, "Parameter");
}

// "( word 12 3:abc ( ) )": lists, numbers, words, and texts behind their lengths.
void ShowSvnItems(const Place& in, Cursor& c, int32_t depth) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    SkipSpace(c);
    if (Left(c) == 0 || PeekU8(c) == ')') return;
    const Cursor before = c;
    if (PeekU8(c) == '(') {
      TakeBytes(c, 1);
      const LineHandle title = AddLine(in, Ahead(before, Left(before)), "List");
      const Place under = Under(in, title);
      if (depth < kDeepestSubversion) ShowSvnItems(under, c, depth + 1);
      else AddBlock(under, Rest(c), "Lists nest too deeply to be shown");
      SkipSpace(c);
      if (PeekU8(c) == ')') TakeBytes(c, 1);
      if (!under.dead) SetRange(in, title, before.offset, c.offset - before.offset);
      continue;
    }
    int32_t end = 0;
    while (end < Left(c) && PeekU8(c, end) > ' ' && PeekU8(c, end) != ':' && PeekU8(c, end) != ')') ++end;
    const Field word = TakeBytes(c, end);
    const int32_t length = PeekU8(c) == ':' ? DecimalOf(word) : -1;
    if (length < 0) {
      if (word.length == 0) TakeBytes(c, 1);
      else AddTextLine(in, word, DecimalOf(word) >= 0 ? "Number" : "Word");
      continue;
    }
    TakeBytes(c, 1);
    Cursor text = TakeCursor(c, length);
    AddTextLine(in, Stated(word.offset, c.offset - word.offset), "String", Ahead(text, Left(text)));
  }
}

bool IsBeepType(const Field& type) {
  return IsWord(type, "SEQ") || IsWord(type, "MSG") || IsWord(type, "RPY") || IsWord(type, "ANS") || IsWord(type, "ERR") ||
         IsWord(type, "NUL");
}

// "MSG 0 1 . 52 120": the header of a frame, its payload and "END".
void ShowBeepFrame(const Place& at, Cursor& c) {
  constexpr const char* kLabels[] = {"Channel", "Message Number", "More", "Sequence Number", "Size", "Answer Number"};
  constexpr const char* kSeqLabels[] = {"Channel", "Acknowledgement Number", "Window"};
  TextLine line;
  TakeLine(c, line);
  Field rest = line.text;
  const Field type = TakeWord(rest);
  if (IsWord(type, "END")) return (void)AddLine(at, line.whole, "End of Frame");
  const bool isSeq = IsWord(type, "SEQ");
  if (!IsBeepType(type)) return (void)AddTextLine(at, line.whole, "Text", line.text);
  const Place in = Under(at, AddTextLine(at, line.whole, "Frame", line.text));
  AddTextLine(in, type, "Type");
  Field size{};
  for (int32_t i = 0; i < (isSeq ? 3 : 6); ++i) {
    const Field word = TakeWord(rest);
    AddTextLine(in, word, isSeq ? kSeqLabels[i] : kLabels[i]);
    if (i == 4) size = word;
  }
  const int32_t length = isSeq ? -1 : DecimalOf(size);
  if (length <= 0) return;
  Cursor payload = TakeCursor(c, length);
  const Place under = Under(at, AddLine(at, Ahead(payload, Left(payload)), "Payload"));
  ShowHeaders(under, payload);
  if (StartsXml(payload)) ShowXml(under, payload);
  ShowLinesOfText(under, payload, "Text");
}

constexpr auto kUcpOperations = SortedNames({
    {1, "Call Input"}, {2, "Multiple Address Call Input"}, {3, "Call Input with Supplementary Services"},
    {30, "SMS Message Transfer"}, {31, "SMT Alert"}, {51, "Submit Short Message"}, {52, "Deliver Short Message"},
    {53, "Deliver Notification"}, {54, "Modify Message"}, {55, "Inquiry Message"}, {56, "Delete Message"},
    {57, "Inquiry Response"}, {58, "Delete Response"}, {60, "Session Management"}, {61, "List Management"}});

// Between STX and ETX fields that slashes divide; the last is a checksum.
void ShowUcp(const Place& in, const Field& text) {
  constexpr const char* kLabels[] = {"Transaction Reference", "Length", "Operation or Result", "Operation Type"};
  Field rest = text;
  for (int32_t i = 0; rest.length > 0; ++i) {
    const int32_t end = FindU8(CursorOver(rest), '/');
    const Field field = Slice(rest, 0, end < 0 ? rest.length : end);
    rest = Slice(rest, end < 0 ? rest.length : end + 1, rest.length - (end < 0 ? rest.length : end + 1));
    if (i == 3) {
      const uint32_t code = static_cast<uint32_t>(DecimalOf(field) < 0 ? 0 : DecimalOf(field));
      AddLine(in, field, "Operation Type: %u = %s", code, LookupName(kUcpOperations, code));
    } else if (i < 3) {
      AddTextLine(in, field, kLabels[i]);   // keys: text Transaction Reference, Length, Operation or Result
    } else if (rest.length == 0) {
      AddTextLine(in, field, "Checksum");
    } else if (field.length > 0) {
      AddTextLine(in, field, "Parameter");
    }
  }
}

// A segment: its name, fields between bars, in them components.
void ShowHl7Segment(const Place& at, const Field& segment) {
  const Place in = Under(at, AddTextLine(at, segment, "Segment"));
  Field rest = segment;
  AddTextLine(in, Slice(rest, 0, rest.length < 3 ? rest.length : 3), "Name");
  const bool isHeader = StartsWithText(CursorOver(segment), "MSH");
  if (rest.length < 4) return;
  const uint8_t bar = static_cast<uint8_t>(PeekU8(rest, 3));
  rest = Slice(rest, 4, rest.length - 4);
  for (uint32_t number = isHeader ? 2 : 1; rest.length > 0; ++number) {
    const int32_t end = FindU8(CursorOver(rest), bar);
    const Field field = Slice(rest, 0, end < 0 ? rest.length : end);
    rest = Slice(rest, end < 0 ? rest.length : end + 1, rest.length - (end < 0 ? rest.length : end + 1));
    if (field.length == 0) continue;
    const Place under = Under(in, AddLine(in, field, "Field %u: %s", number, Text(field)));
    if ((isHeader && number == 2) || FindU8(CursorOver(field), '^') < 0) continue;
    Field components = field;
    for (Field part = TakeWord(components, "^"); part.here || components.length > 0; part = TakeWord(components, "^")) {
      if (part.here) AddTextLine(under, part, "Component");
    }
  }
}

}  // namespace

int32_t DecodeDict(const Place& at, Cursor c) {
  TextLine line;
  Cursor ahead = c;
  if (!TakeLine(ahead, line) || !IsReadable(CursorOver(line.text))) return 0;
  const Place in = Under(at, AddTextLine(at, Ahead(c, Left(c)), "DICT", line.text));
  const bool isServer = PacketOf(at).matchedSource || DecimalOf(Slice(line.text, 0, 3)) >= 0;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) ShowDictLine(in, line, isServer);
  return 1;
}

// A list with its texts and the blank behind it, which is never left out.
int32_t LengthOfSvn(const Cursor& c) {
  constexpr int64_t kMostNumber = 1 << 30;
  if (PeekU8(c) != '(') return kNoMessage;
  int64_t number = 0;
  int32_t depth = 0;
  for (int64_t at = 0; at < Left(c); ++at) {
    const uint32_t octet = PeekU8(c, static_cast<int32_t>(at));
    if (octet >= '0' && octet <= '9') {
      number = number < kMostNumber ? number * 10 + (octet - '0') : kMostNumber;
      continue;
    }
    if (octet == ':') at += number;
    if (octet == '(') ++depth;
    if (octet == ')' && --depth == 0) return at + 1 < Left(c) ? static_cast<int32_t>(at) + 2 : 0;
    number = 0;
  }
  return 0;
}

// The line that says a size, the payload and "END"; of a window the line alone.
int32_t LengthOfBeep(const Cursor& c) {
  constexpr int32_t kMostLine = 80, kTrailer = 5;
  TextLine line;
  Cursor next = c;
  if (FindU8(c, '\n') < 0) return Left(c) > kMostLine ? kNoMessage : 0;
  TakeLine(next, line);
  Field rest = line.text;
  const Field type = TakeWord(rest);
  if (!IsBeepType(type)) return kNoMessage;
  if (IsWord(type, "SEQ")) return line.whole.length;
  for (int32_t i = 0; i < 4; ++i) TakeWord(rest);
  const int32_t size = DecimalOf(TakeWord(rest));
  return size < 0 ? kNoMessage : line.whole.length + size + kTrailer;
}

int32_t LengthOfUcp(const Cursor& c) {
  constexpr int32_t kStart = 2, kEnd = 3, kFrame = 2;
  constexpr int32_t kHead = 10;   // STX, two digits, "/", five digits, "/"
  if (PeekU8(c) != kStart) return kNoMessage;
  if (Left(c) < kHead) return 0;
  const int32_t length = DecimalOf(PeekBytes(c, 4, 5));
  if (length < 0 || PeekU8(c, 3) != '/' || PeekU8(c, 9) != '/') return kNoMessage;
  return Left(c) < length + kFrame || PeekU8(c, length + 1) == kEnd ? length + kFrame : kNoMessage;
}

int32_t LengthOfHl7(const Cursor& c) {
  constexpr uint32_t kStart = 0x0B;
  constexpr uint8_t kEnd = 0x1C;
  if (PeekU8(c) != kStart) return kNoMessage;
  const int32_t end = FindU8(c, kEnd);
  return end < 0 || Left(c) < end + 2 ? 0 : end + 2;
}

int32_t DecodeSvn(const Place& at, Cursor c) {
  if (PeekU8(c) != '(') return 0;
  TextLine line;
  Cursor ahead = c;
  TakeLine(ahead, line);
  const Place in = Under(at, AddTextLine(at, Ahead(c, Left(c)), "Subversion", line.text));
  Loop loop;
  while (MoreAt(in, c, loop)) {
    ShowSvnItems(in, c, 0);
    if (PeekU8(c) == ')') TakeBytes(c, 1);
  }
  return 1;
}

int32_t DecodeBeep(const Place& at, Cursor c) {
  TextLine line;
  Cursor ahead = c;
  if (!TakeLine(ahead, line) || !IsReadable(CursorOver(line.text))) return 0;
  const Place in = Under(at, AddTextLine(at, Ahead(c, Left(c)), "BEEP", line.text));
  Loop loop;
  while (MoreAt(in, c, loop)) ShowBeepFrame(in, c);
  return 1;
}

int32_t DecodeUcp(const Place& at, Cursor c) {
  constexpr uint32_t kStart = 2;
  constexpr uint8_t kEnd = 3;
  if (PeekU8(c) != kStart) return 0;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    if (PeekU8(c) != kStart) return AddRawRest(at, c, "UCP Data");
    const int32_t end = FindU8(c, kEnd);
    const int32_t size = end < 0 ? Left(c) : end + 1;
    const Field text = PeekBytes(c, 1, size - 1 - (end >= 0));
    ShowUcp(Under(at, AddTextLine(at, Ahead(c, size), "UCP", text)), text);
    TakeBytes(c, size);
  }
  return 1;
}

int32_t DecodeHl7(const Place& at, Cursor c) {
  constexpr uint32_t kStart = 0x0B, kEnd = 0x1C;
  const bool isFramed = PeekU8(c) == kStart;
  if (!isFramed && !PeekIs(c, 0, "MSH")) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "HL7"));
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const uint32_t octet = PeekU8(c);
    if (octet == kStart) {
      AddLine(in, TakeU8(c), "Start of Block");
    } else if (octet == kEnd) {
      AddLine(in, TakeBytes(c, Left(c) < 2 ? 1 : 2), "End of Block");
    } else {
      int32_t end = 0;
      while (end < Left(c) && PeekU8(c, end) != '\r' && PeekU8(c, end) != '\n' && PeekU8(c, end) != kEnd) ++end;
      if (end > 0) ShowHl7Segment(in, TakeBytes(c, end));
      while (PeekU8(c) == '\r' || PeekU8(c) == '\n') TakeBytes(c, 1);
    }
  }
  return 1;
}

}  // namespace qxview
