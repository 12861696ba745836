// Git's transport (gitprotocol-common, -pack, -v2 of its documentation): lines with their length in four hexadecimal digits in
// front, which hold text, or packs and messages that share a band.
//
//   003e git-upload-pack /project NUL host=example NUL     0032 want 7fd1... LF     0000 flush     0031 \2 text
#include "decoders/app/stream_note.h"
#include "decoders/common/text_lines.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 4, kMostLength = 65520;

constexpr auto kSpecialNames = SortedNames({{0, "Flush"}, {1, "Delimiter"}, {2, "Response End"}});
constexpr auto kBandNames = SortedNames({{1, "Pack Data"}, {2, "Progress"}, {3, "Error"}});

int32_t DigitOf(uint32_t c) {
  return c >= '0' && c <= '9' ? static_cast<int32_t>(c - '0') : c >= 'a' && c <= 'f' ? static_cast<int32_t>(c - 'a' + 10)
         : c >= 'A' && c <= 'F' ? static_cast<int32_t>(c - 'A' + 10) : -1;
}

// The length of the line that starts here, its own digits counted in; -1 for what is none.
int32_t LengthOfLine(const Cursor& c) {
  int32_t length = 0;
  for (int32_t i = 0; i < kHeaderSize; ++i) {
    const int32_t digit = DigitOf(PeekU8(c, i));
    if (digit < 0) return -1;
    length = length * 16 + digit;
  }
  return length == 3 || length > kMostLength ? -1 : length;
}

// The digits of an object's name: 40 of SHA-1, 64 of SHA-256; 0 for another word.
int32_t LengthOfName(const Cursor& c) {
  int32_t digits = 0;
  while (digits < 65 && DigitOf(PeekU8(c, digits)) >= 0) ++digits;
  return digits == 40 || digits == 64 ? digits : 0;
}

// What a title says of a line: its text up to the first zero.
Field TitleOf(const Field& text) {
  Cursor c = CursorOver(text);
  return Trimmed(TakeTerminated(c));
}

Field TakeToken(Cursor& c) {
  int32_t end = 0;
  while (end < Left(c) && PeekU8(c, end) > ' ') ++end;
  const Field word = TakeBytes(c, end);
  if (PeekU8(c) == ' ') TakeBytes(c, 1);
  return word;
}

void ShowCapabilities(const Place& in, Cursor& c) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Field word = TakeToken(c);
    if (word.length > 0) AddTextLine(in, word, "Capability");
    else TakeBytes(c, 1);
  }
}

// "PACK", its version and how many objects it has; they are compressed.
void ShowPack(const Place& in, Cursor& c) {
  if (PeekIs(c, 0, "PACK")) {
    AddTextLine(in, TakeBytes(c, 4), "Signature");
    const Field version = TakeU32(c);
    AddLine(in, version, "Version: %u", version.value);
    const Field objects = TakeU32(c);
    AddLine(in, objects, "Object Count: %u", objects.value);
    c.ranShort = false;
  }
  AddBlock(in, Rest(c), "Pack Data");
}

void ShowRequest(const Place& in, Cursor& c) {
  AddTextLine(in, TakeToken(c), "Service");
  AddTextLine(in, TakeTerminated(c), "Path");
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Field parameter = TakeTerminated(c);
    if (parameter.length > 0) AddTextLine(in, parameter, StartsWithWord(parameter, "host=") ? "Host" : "Extra Parameter");
  }
}

// Names of objects, of what they are or shall be, and capabilities.
void ShowText(const Place& in, Cursor& c) {
  static constexpr const char* kVerbs[] = {"want", "have", "shallow", "unshallow", "deepen", "deepen-since", "deepen-not",
                                           "filter", "ACK", "NAK", "ERR", "done", "version", "peel", "ref-prefix"};
  if (StartsWithText(c, "git-")) return ShowRequest(in, c);
  if (LengthOfName(c) == 0) {
    Cursor ahead = c;
    const Field word = TakeToken(ahead);
    bool isVerb = false;
    for (const char* verb : kVerbs) isVerb = isVerb || IsWord(word, verb);
    if (!isVerb) return ShowCapabilities(in, c);
    AddTextLine(in, word, "Verb");
    c = ahead;
  }
  for (int32_t digits; (digits = LengthOfName(c)) > 0;) {
    AddTextLine(in, TakeBytes(c, digits), "Object");
    if (PeekU8(c) == ' ') TakeBytes(c, 1);
  }
  const Field rest = TakeTerminated(c);
  int32_t length = rest.length;
  while (length > 0 && PeekU8(rest, length - 1) == '\n') --length;
  if (length > 0) AddTextLine(in, Slice(rest, 0, length), "Name");
  ShowCapabilities(in, c);
}

// The rest of a line that an earlier segment began.
void ShowLineRest(const Place& in, Cursor& c, StreamNote& note) {
  Cursor rest = TakeCursor(c, note.lacking);
  note.lacking -= static_cast<uint32_t>(Left(rest));
  if (note.detail > 1) {
    ShowLinesOfText(in, rest, "Text");
  } else {
    AddBlock(in, Rest(rest), "Rest of Packet");
  }
}

void ShowLine(const Place& at, Cursor& c, StreamNote& note) {
  const int32_t length = LengthOfLine(c);
  const int32_t size = length < kHeaderSize ? kHeaderSize : length < Left(c) ? length : Left(c);
  note.lacking = length > size ? static_cast<uint32_t>(length - size) : 0;
  Cursor line = TakeCursor(c, size);
  const uint32_t band = length > kHeaderSize ? PeekU8(line, kHeaderSize) : 0;
  const bool isBand = band >= 1 && band <= 3;
  note.detail = isBand ? static_cast<uint8_t>(band) : 0;
  const LineHandle title =
      length < kHeaderSize ? AddLine(at, Ahead(line, size), "Packet: %s", LookupName(kSpecialNames, static_cast<uint32_t>(length)))
      : isBand             ? AddLine(at, Ahead(line, size), "Packet: %s", LookupName(kBandNames, band))
                           : AddTextLine(at, Ahead(line, size), "Packet", TitleOf(PeekBytes(line, kHeaderSize, size - kHeaderSize)));
  const Place in = Under(at, title);
  AddLine(in, TakeBytes(line, kHeaderSize), "Length: %u (0x%04x)", length, length);
  if (isBand) {
    const Field code = TakeU8(line);
    AddLine(in, code, "Band: %u = %s", code.value, LookupName(kBandNames, code.value));
    if (band > 1) return ShowLinesOfText(in, line, "Text");
  }
  if (isBand || PeekIs(line, 0, "PACK")) return ShowPack(in, line);
  if (IsReadable(line, true)) ShowText(in, line);
  AddBlock(in, Rest(line), "Data");
}

}  // namespace

int32_t LengthOfGit(const Cursor& c) {
  if (Left(c) < kHeaderSize) return 0;
  const int32_t length = LengthOfLine(c);
  return length < 0 ? kNoMessage : length < kHeaderSize ? kHeaderSize : length;
}

int32_t DecodeGit(const Place& at, Cursor c) {
  StreamNote note = RecallNote(at, c);
  const int32_t length = note.lacking > 0 ? -1 : LengthOfLine(c);
  const Field whole = Ahead(c, Left(c));
  const Field text = PeekBytes(c, kHeaderSize, (length < Left(c) ? length : Left(c)) - kHeaderSize);
  const bool isText = length > kHeaderSize && IsReadable(CursorOver(text), true);
  const Place in = Under(at, length < 0 ? AddLine(at, whole, "Git: Continuation")
                             : isText   ? AddTextLine(at, whole, "Git", TitleOf(text))
                                        : AddLine(at, whole, "Git: %s", length > kHeaderSize ? "Data" : "Flush"));
  if (note.lacking > 0) ShowLineRest(in, c, note);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (PeekIs(c, 0, "PACK")) ShowPack(in, c);
    else if (LengthOfLine(c) < 0) AddBlock(in, Rest(c), "Continuation Data");
    else ShowLine(in, c, note);
  }
  if (note.lacking > 0) LeaveNote(at, c, note);
  return 1;
}

}  // namespace qxview
