// Internet Content Adaptation Protocol (RFC 3507): HTTP messages handed to a server that changes them.
//
//   Encapsulated: req-hdr=0, res-hdr=137, res-body=296     where each part begins behind ICAP's own headers; bodies are in chunks
#include "core/line_facts.h"
#include "decoders/app/http_message.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/header_values.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

constexpr int32_t kMostParts = 4;   // two heads and a body as a rule

struct Part {
  Field name;
  int32_t offset;
};

int32_t ReadParts(Field list, Part (&parts)[kMostParts]) {
  int32_t count = 0;
  while (list.length > 0 && count < kMostParts) {
    Field part = TakePiece(list, ",");
    parts[count].name = Trimmed(TakePiece(part, "="));
    parts[count].offset = DecimalOf(Trimmed(part));
    if (parts[count].offset >= 0) ++count;
  }
  return count;
}

bool EndsWith(const Field& name, const char* end, int32_t length) {
  return name.length >= length && IsWord(Slice(name, name.length - length, length), end);
}
bool IsHead(const Part& part) { return EndsWith(part.name, "-hdr", 4); }
bool IsBody(const Part& part) { return EndsWith(part.name, "-body", 5) && !IsWord(part.name, "null-body"); }

// The head of a message of HTTP, which says what the body is.
void ShowHead(const Place& in, Cursor head, HttpFlags& flags) {
  const KeyedAs keys(PacketOf(in), "http");
  StartLine start;
  const Place under = Under(in, AddLine(in, Ahead(head, Left(head)), "Encapsulated HTTP Header"));
  if (TakeStartLine(head, "HTTP/", start)) ShowStartLine(under, start);
  flags = {};
  WalkHttpHeaders(under, flags, head);
  AddBlock(under, Rest(head), "Header Data");
}

void ShowBody(const Place& at, const Place& in, Cursor& body, HttpFlags flags) {
  if (Left(body) == 0) return;
  const KeyedAs keys(PacketOf(in), "http");
  const Place under = Under(in, AddLine(in, Ahead(body, Left(body)), "Encapsulated Body"));
  flags.inChunks = true;
  ShowHttpContent(at, under, flags, true, body);
  AddBlock(under, Rest(body), "Data");
}

void ShowParts(const Place& at, const Place& in, Cursor& c, const Part (&parts)[kMostParts], int32_t count) {
  HttpFlags flags{};
  const int32_t start = c.offset;
  for (int32_t i = 0; i < count; ++i) {
    const int32_t end = i + 1 < count ? parts[i + 1].offset : start + Left(c);
    const int32_t skipped = parts[i].offset - (c.offset - start);
    if (skipped < 0 || skipped > Left(c)) break;   // offsets that go back or lead nowhere
    AddBlock(in, TakeBytes(c, skipped), "Data");
    if (IsBody(parts[i])) {
      ShowBody(at, in, c, flags);
    } else if (IsHead(parts[i])) {
      const int32_t length = end - parts[i].offset;
      Cursor head = TakeCursor(c, length < 0 || length > Left(c) ? Left(c) : length);
      if (Left(head) > 0) ShowHead(in, head, flags);
    }
  }
  AddBlock(in, Rest(c), "Data");
}

// What follows a preview that was not all, and pieces of bodies that come without their beginning.
bool StartsChunk(const Cursor& c) {
  const int32_t end = FindLineEnd(c);
  return end > 0 && ReadChunkSize(c.at, end).valid;
}

}  // namespace

// ICAP's headers, the heads, and the chunks up to the last.
int32_t LengthOfIcap(const Cursor& c) {
  constexpr int32_t kMostHead = 256 << 10, kMostLine = 16 << 10;
  StartLine start;
  Cursor next = c;
  if (FindU8(c, '\n') < 0) return Left(c) > kMostLine ? kNoMessage : 0;
  if (!TakeStartLine(next, "ICAP/", start)) return StartsChunk(c) ? LengthOfHttpChunks(c, 0) : kNoMessage;
  Part parts[kMostParts];
  int32_t count = 0;
  HeaderLine header;
  Loop loop;
  while (More(next, loop) && TakeHeader(next, header)) {
    if (IsWord(header.name, "Encapsulated")) count = ReadParts(header.value, parts);
  }
  TextLine line;
  if (!TakeLine(next, line)) return Left(c) > kMostHead ? kNoMessage : 0;
  if (line.text.length > 0) return FindU8(CursorOver(line.whole), '\n') < 0 ? 0 : kNoMessage;
  const int32_t headers = next.offset - c.offset;
  if (count == 0) return headers;
  const Part& last = parts[count - 1];
  const int64_t length = int64_t{headers} + last.offset;
  if (!IsBody(last)) return static_cast<int32_t>(length < kMostHead ? length : kMostHead);
  if (Left(next) <= last.offset) return last.offset > kMostHead ? kNoMessage : 0;
  TakeBytes(next, last.offset);
  return LengthOfHttpChunks(next, length);
}

int32_t DecodeIcap(const Place& at, Cursor c) {
  const Field message = Ahead(c, Left(c));
  StartLine start;
  if (!TakeStartLine(c, "ICAP/", start)) {
    if (!StartsChunk(c)) return 0;
    ShowBody(at, Under(at, AddLine(at, message, "ICAP: Continued Body")), c, {});
    return 1;
  }
  const Place in = Under(at, start.isRequest ? AddLine(at, message, "ICAP: %s %s", Text(start.method), Text(start.target))
                                             : AddLine(at, message, "ICAP: %s %s", Text(start.code), Text(start.phrase)));
  ShowStartLine(in, start);
  Part parts[kMostParts];
  int32_t count = 0;
  HeaderLine header;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeHeader(c, header)) {
    const Place under = Under(in, ShowHeader(in, header));
    if (!IsWord(header.name, "Encapsulated")) continue;
    AddTextLine(under, header.name, "Name");
    ShowItems(under, "Part", header.value, true);
    count = ReadParts(header.value, parts);
  }
  ShowEndOfHeaders(in, c);
  ShowParts(at, in, c, parts, count);
  return 1;
}

}  // namespace qxview
