#include "app/json_writer.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "app/fast_text.h"
#include "app/packet_run.h"
#include "core/digits.h"
#include "core/line_facts.h"
#include "host/time_text.h"

namespace qxview {
namespace {

void PutUnsigned(Output& out, uint64_t number) {
  char digits[24];
  char* const end = digits + sizeof digits;
  const char* at = WriteDecimal(end, number);
  out.Put({at, static_cast<size_t>(end - at)});
}

void PutNumber(Output& out, int64_t number) {
  char digits[24];
  char* const end = digits + sizeof digits;
  char* at = WriteDecimal(end, number < 0 ? 0 - static_cast<uint64_t>(number) : static_cast<uint64_t>(number));
  if (number < 0) *--at = '-';
  out.Put({at, static_cast<size_t>(end - at)});
}

// The line's key and value; nothing while no facts are kept.
void PutFact(Output& out, const DecodeContext& context, uint32_t rangeIndex) {
  const LineFact* fact = FactOf(&context, rangeIndex);
  char key[kKeySize];
  if (!fact || FormatKey(&context, *fact, key, sizeof key) == 0) {
    out.Put(",\"key\":null,\"value\":null");
    return;
  }
  out.Put(",\"key\":\"");
  out.Put(key);
  out.Put("\",\"value\":");
  switch (fact->kind) {
    case ValueKind::kNone: out.Put("null"); break;
    case ValueKind::kSigned: PutNumber(out, static_cast<int64_t>(fact->number)); break;
    case ValueKind::kNumber: PutUnsigned(out, fact->number); break;
    case ValueKind::kText: PutJsonText(out, {ValueText(&context, *fact), static_cast<size_t>(fact->valueLength)}); break;
  }
}

// A text that is UTF-8 where it is valid.
void PutUtf8String(Output& out, std::string_view text) {
  std::string valid;
  for (size_t at = 0; at < text.size();) {
    char scratch[8];
    const Utf8Character next =
        Utf8At(reinterpret_cast<const uint8_t*>(text.data()) + at, static_cast<int32_t>(text.size() - at));
    if (next.octets == 0) {
      valid += Utf8Of(static_cast<uint8_t>(text[at++]), scratch);
    } else if (next.code < 0x20 || next.code == 0x7F) {
      valid.append("\\u00").append(kHexPairs + 2 * next.code, 2);
      ++at;
    } else {
      if (next.code == '"' || next.code == '\\') valid += '\\';
      valid += text.substr(at, static_cast<size_t>(next.octets));
      at += static_cast<size_t>(next.octets);
    }
  }
  out.Put('"');
  out.Put(valid);
  out.Put('"');
}

constexpr int32_t kMostEarlier = 64;   // pieces of a line: the others are those of the lines under it

constexpr size_t kMostOrigin = 100 * kMostEarlier;

// Where a line's bytes stand, and those that earlier packets brought.
struct LineOrigin {
  OwnRange own;
  BytePiece earlier[kMostEarlier];

  void Find(const DecodeContext& context, ByteRange stored) {
    own = IsInRegion(stored) ? FindOwnRange(&context, stored, earlier, kMostEarlier) : OwnRange{stored, 0};
  }
  int32_t Count() const { return own.earlierCount < kMostEarlier ? own.earlierCount : kMostEarlier; }
  char* Put(char* at) const {
    for (int32_t i = 0; i < Count(); ++i) {
      at = PutSigned(PutLiteral(at, i == 0 ? ",\"from\":[{\"packet\":" : ",{\"packet\":"), earlier[i].packet);
      at = PutSigned(PutLiteral(at, ",\"offset\":"), earlier[i].offset);
      at = PutSigned(PutLiteral(at, ",\"length\":"), earlier[i].length);
      *at++ = '}';
    }
    if (Count() > 0) *at++ = ']';
    return at;
  }
};

constexpr char kDerived[] = ",\"derived\":true";

bool IsDerivedLine(const DecodeContext& context, uint32_t rangeIndex) {
  return context.derivedCount > 0 && IsDerived(&context, rangeIndex);
}

// What a line's kind and image are written as; those of nearly all lines stand ready.
struct Looks {
  char text[31];
  uint8_t length;
};
constexpr uint32_t kReadyImages = 32;
using LooksTable = std::array<Looks, 2 * kReadyImages>;

char* PutLooks(char* at, int32_t kind, int32_t image) {
  at = PutSigned(PutLiteral(at, ",\"kind\":"), kind);
  return PutSigned(PutLiteral(at, ",\"image\":"), image);
}
constexpr int32_t ReadyKind(uint32_t index) { return index < kReadyImages ? kFieldKind : kRawDataKind; }

LooksTable MakeLooks() {
  LooksTable made{};
  for (uint32_t i = 0; i < made.size(); ++i) {
    const char* const end = PutLooks(made[i].text, ReadyKind(i), static_cast<int32_t>(i % kReadyImages));
    made[i].length = static_cast<uint8_t>(end - made[i].text);
  }
  return made;
}
const LooksTable kReadyLooks = MakeLooks();

ByteRange StoredRangeOf(const DecodeContext& context, uint32_t rangeIndex) {
  return rangeIndex < context.rangeCount && rangeIndex < context.rangeCapacity ? context.rangeTable[rangeIndex] : 0;
}

// Text, range and looks of a line, and what they take at most beside the text, with what closes the line.
constexpr size_t kBesideText = kWrittenAhead + 256;

[[gnu::always_inline]] inline char* PutRangeAndLooks(char* at, ByteRange range, int32_t image) {
  at = PutSigned(PutLiteral(at, "\",\"offset\":"), RangeOffset(range));
  at = PutDecimal(PutLiteral(at, ",\"length\":"), RangeLength(range));
  const int32_t kind = RangeKind(range);
  const uint32_t index = static_cast<uint32_t>(image) + (kind == kRawDataKind ? kReadyImages : 0);
  if (static_cast<uint32_t>(image) >= kReadyImages || kind != ReadyKind(index)) return PutLooks(at, kind, image);
  const Looks& looks = kReadyLooks[index];
  std::memcpy(at, looks.text, sizeof looks.text);
  return at + looks.length;
}

constexpr std::string_view kTextMember = "{\"text\":\"";

char* PutHead(char* at, std::string_view text, ByteRange range, int32_t image) {
  return PutRangeAndLooks(PutEscaped<true, true>(PutLiteral(at, kTextMember), text), range, image);
}

void PutJsonPieces(Output& out, std::string_view text) {
  constexpr size_t kPiece = 4096;
  for (; !text.empty(); text.remove_prefix(std::min(kPiece, text.size()))) {
    out.Took(PutEscaped<true>(out.Room(kLongestEscape * kPiece + kWrittenAhead), text.substr(0, kPiece)));
  }
}

// A line up to where its end or the lines under it come.
void PutLineHead(Output& out, Session& session, LineHandle line, bool withKeys) {
  const ArenaTree& tree = session.Tree();
  const DecodeContext& context = session.Context();
  const uint32_t rangeIndex = tree.RangeIndex(line);
  LineOrigin origin;
  origin.Find(context, StoredRangeOf(context, rangeIndex));
  const std::string_view text = tree.TextOf(line);
  if (const size_t room = kLongestEscape * text.size() + kBesideText; room <= Output::kMostRoom) {
    out.Took(PutHead(out.Room(room), text, origin.own.range, tree.Image(line)));
  } else {
    out.Put(kTextMember);
    PutJsonPieces(out, text);
    out.Took(PutRangeAndLooks(out.Room(kBesideText), origin.own.range, tree.Image(line)));
  }
  if (IsDerivedLine(context, rangeIndex)) out.Put(kDerived);
  out.Took(origin.Put(out.Room(kMostOrigin)));
  if (withKeys) PutFact(out, context, rangeIndex);
}

size_t RoomFor(std::string_view text, int32_t ends) {
  return kLongestEscape * text.size() + kBesideText + 2 * static_cast<size_t>(ends > 0 ? ends : 0);
}

// What stands between a line and the next one: `ends` lines above it end with it, or the next one is under it (-1).
char* PutBetween(char* at, int32_t ends, bool isLast) {
  if (ends < 0) return PutLiteral(at, ",\"lines\":[");
  *at++ = '}';
  for (; ends > 0; --ends) at = PutLiteral(at, "]}");
  if (!isLast) *at++ = ',';
  return at;
}

// A line that few are like: with its key, very long, or of bytes of a region.
[[gnu::noinline]] void PutOtherLine(Output& out, Session& session, LineHandle line, bool withKeys, int32_t ends, bool isLast) {
  const ArenaTree& tree = session.Tree();
  const DecodeContext& context = session.Context();
  const std::string_view text = tree.TextOf(line);
  const size_t room = RoomFor(text, ends) + kMostOrigin;
  if (withKeys || room > Output::kMostRoom) {
    PutLineHead(out, session, line, withKeys);
    for (int32_t left = ends; left >= 0; --left) out.Put(left > 0 ? "}]" : "}");
    if (!isLast) out.Put(ends < 0 ? ",\"lines\":[" : ",");
    return;
  }
  const uint32_t rangeIndex = tree.RangeIndex(line);
  LineOrigin origin;
  origin.Find(context, StoredRangeOf(context, rangeIndex));
  char* at = PutHead(out.Room(room), text, origin.own.range, tree.Image(line));
  if (IsDerivedLine(context, rangeIndex)) at = PutLiteral(at, kDerived);
  out.Took(PutBetween(origin.Put(at), ends, isLast));
}

// A tree whose lines come as they are shown: what is under a line is told by their depths.
void PutLinesInOrder(Output& out, Session& session, bool withKeys) {
  const ArenaTree& tree = session.Tree();
  const DecodeContext& context = session.Context();
  const LineHandle count = tree.LineCount();
  int32_t depth = 0;
  for (LineHandle line = 1; line <= count; ++line) {
    const bool isLast = line == count;
    const int32_t next = isLast ? 0 : tree.DepthOf(line + 1), ends = depth - next;
    depth = next;
    const std::string_view text = tree.TextOf(line);
    const uint32_t rangeIndex = tree.RangeIndex(line);
    const ByteRange stored = StoredRangeOf(context, rangeIndex);
    const size_t room = RoomFor(text, ends);
    if (withKeys || IsInRegion(stored) || room > Output::kMostRoom) {
      PutOtherLine(out, session, line, withKeys, ends, isLast);
      continue;
    }
    char* at = PutHead(out.Room(room), text, stored, tree.Image(line));
    if (IsDerivedLine(context, rangeIndex)) [[unlikely]] at = PutLiteral(at, kDerived);
    out.Took(PutBetween(at, ends, isLast));
  }
}

void PutLines(Output& out, Session& session, const JsonPacket& packet) {
  const ArenaTree& tree = session.Tree();
  if (!packet.shape->IsUsed() && tree.IsInOrder()) return PutLinesInOrder(out, session, packet.withKeys);
  const TreeWalk walk(session, *packet.shape);
  int32_t depth = 1;
  for (LineHandle line = walk.FirstUnder(0, 0); line;) {
    PutLineHead(out, session, line, packet.withKeys);
    if (const LineHandle child = walk.FirstUnder(line, depth)) {
      out.Put(",\"lines\":[");
      line = child;
      ++depth;
      continue;
    }
    out.Put('}');
    LineHandle next;
    while (!(next = walk.Next(line)) && (line = tree.Parent(line))) {
      out.Put("]}");
      --depth;
    }
    line = next;
    if (line) out.Put(',');
  }
}

void PutListing(Output& out, const PacketListing& listing) {
  const auto put = [&](const char* member, std::string_view text) {
    out.Put(",\"");
    out.Put(member);
    out.Put("\":");
    PutJsonText(out, text);
  };
  put("source", listing.source);
  put("destination", listing.destination);
  put("protocol", listing.protocol);
  put("summary", listing.summary);
}

void PutBytes(Output& out, const FrameRecord* record) {
  out.Put(",\"bytes\":\"");
  const uint8_t* const data = FrameData(record);
  constexpr int32_t kPiece = 8192;
  for (int32_t i = 0; i < record->capturedLength;) {
    char* at = out.Room(2 * kPiece);
    for (const int32_t end = std::min<int32_t>(record->capturedLength, i + kPiece); i < end; ++i, at += 2) {
      std::memcpy(at, kHexPairs + 2 * data[i], 2);
    }
    out.Took(at);
  }
  out.Put('"');
}

}  // namespace

void PutJsonText(Output& out, std::string_view text) {
  out.Put('"');
  PutJsonPieces(out, text);
  out.Put('"');
}

void WriteJson(Output& out, Session& session, const JsonPacket& packet) {
  const FrameRecord* const record = packet.record;
  char scratch[40];
  out.Put("{\"schema\":1,\"packet\":");
  PutNumber(out, static_cast<int64_t>(packet.number));
  if (packet.file) {
    out.Put(",\"file\":");
    PutUtf8String(out, packet.file);
  }
  out.Put(",\"time\":\"");
  FormatUtcTime(record->nanoseconds, scratch, sizeof scratch);
  out.Put(scratch);
  out.Put("\",\"length\":");
  PutNumber(out, WireLength(record) + MovedHeaderLength(record));
  out.Put(",\"captured\":");
  PutNumber(out, record->capturedLength + MovedHeaderLength(record));
  out.Put(",\"media\":\"");
  out.Put(MediumName(record, scratch));
  out.Put("\",\"handled\":");
  PutNumber(out, packet.handled);
  if (packet.listing) PutListing(out, *packet.listing);
  if (packet.withBytes) PutBytes(out, record);
  if (session.Tree().FirstChild(0)) {
    out.Put(",\"lines\":[");
    PutLines(out, session, packet);
    out.Put("]}\n");
  } else {
    out.Put("}\n");
  }
}

}  // namespace qxview
