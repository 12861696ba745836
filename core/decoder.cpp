#include "core/decoder.h"

#include <cstring>

#include "core/digits.h"
#include "core/line_facts.h"
#include "core/made_line.h"
#include "core/piece_writer.h"
#include "core/pieces_line.h"

namespace qxview {
namespace detail {
namespace {

// For lines that no tree keeps in place, and where something has to grow.
[[gnu::noinline]] LineHandle AddPiecesAside(const Place& at, LineHandle parent, const Field& field, int32_t image, const char* text,
                                            const FormatPiece* pieces, const FormatArgument* arguments) {
  const ByteRange range = MakeByteRange(kFieldKind, field.offset, field.length);
  if (char* const room = RoomForLine(at.view, parent, at.tree, at.lineSize)) {
    const int32_t length = FormatPieces(room, at.lineSize, text, pieces, arguments);
    return AddMadeInPlace(at.view->context, parent, room, length, image, at.tree, range);
  }
  char line[kLineSize];
  const int32_t length = FormatPieces(line, at.lineSize, text, pieces, arguments);
  return AddDecodeLineOf(at.view, parent, line, length, image, at.tree, range);
}

}  // namespace

bool IsLeftOut(const Place& at, const char* text, bool startsWithBits) {
  return at.parent != kLeftFrameLine && IsKnownToBeLeft(*at.view->context, text, startsWithBits);
}

namespace {

// Where facts of lines are kept, or a question leaves some out.
[[gnu::noinline]] LineHandle AddNoted(const Place& at, const Field& field, int32_t image, const char* text,
                                      const FormatPiece* pieces, const FormatArgument* arguments) {
  if (OnlyTells(at.view)) return CountSilentLine(at);
  const LineFate fate = FateOfFormatted(at.view, at.parent, text, pieces, arguments);
  if (fate != LineFate::kMade) return CountLeftLine(at.view, at.parent, fate);
  const LineHandle added = AddPiecesAside(at, at.parent, field, image, text, pieces, arguments);
  NoteFormatted(at.view, added, text, pieces, arguments);
  return added;
}

}  // namespace

LineHandle AddFormatted(const Place& at, const Field& field, int32_t image, const char* text,
                        const FormatPiece* pieces, const FormatArgument* arguments) {
  DecodeContext* const context = at.view->context;
  if (context->facts) [[unlikely]] return AddNoted(at, field, image, text, pieces, arguments);
  LineStore* const lines = OpenLines(context, at.tree);
  const LineHandle parent = at.parent;
  const int32_t size = at.lineSize;
  if (!lines || !HasRoomForLine(*context, *lines, parent, static_cast<uint32_t>(size))) [[unlikely]] {
    return AddPiecesAside(at, parent, field, image, text, pieces, arguments);
  }
  // All but the text's length, which is all that has to be known of the line behind the format.
  const uint32_t index = context->rangeCount;
  context->rangeTable[index] = MakeByteRange(kFieldKind, field.offset, field.length);
  context->rangeCount = index + 1;
  --context->packet.linesLeft;
  const LineStore::Begun line = lines->Begin(static_cast<uint32_t>(parent), image, index);
  return lines->End(line, WritePieces(line.room, line.room + size - 1, text, pieces, arguments));
}

LineHandle AddPiecesLine(const Place& at, LineHandle parent, const Field& field, int32_t image, const char* text,
                         const FormatPiece* pieces, const FormatArgument* arguments) {
  if (KeepsFacts(at.view)) [[unlikely]] return AddPiecesAside(at, parent, field, image, text, pieces, arguments);
  Place under = at;
  under.parent = parent;
  return AddFormatted(under, field, image, text, pieces, arguments);
}

namespace {

LineHandle AddText(const Place& at, const Field& field, int32_t image, const char* text, int32_t length) {
  const ByteRange range = MakeByteRange(kFieldKind, field.offset, field.length);
  LineHandle added;
  char cut[kLineSize];
  if (length >= at.lineSize) {
    text = CopyTextN(cut, at.lineSize, text, length);
    length = at.lineSize - 1;
  }
  char* const line = OnlyTells(at.view) ? nullptr : RoomForLine(at.view, at.parent, at.tree, length);
  if (line) [[likely]] {
    CopyShort(line, text, static_cast<size_t>(length));
    added = AddMadeInPlace(at.view->context, at.parent, line, length, image, at.tree, range);
  } else {
    added = AddDecodeLineOf(at.view, at.parent, text, length, image, at.tree, range);
  }
  if (KeepsFacts(at.view)) [[unlikely]] NoteMade(at.view, added, text, length);
  return added;
}

}  // namespace

LineHandle AddLiteral(const Place& at, const Field& field, int32_t image, const char* text, int32_t length) {
  if (LeavesMade(at.view, at.parent, text, length, true)) return CountLeftLine(at.view, at.parent);
  return AddText(at, field, image, text, length);
}

LineHandle AddMade(const Place& at, const Field& field, int32_t image, const char* text, int32_t length) {
  if (LeavesMade(at.view, at.parent, text, length)) return CountLeftLine(at.view, at.parent);
  return AddText(at, field, image, text, length);
}

namespace {

// How long a text becomes when so many characters are appended: what is longer than a line may be joined to is cut.
int32_t JoinedLength(int32_t used, int32_t added) {
  if (used + added <= kMostJoinedText) return used + added;
  return used >= kMostJoinedText - 1 ? used : kMostJoinedText - 1;
}

}  // namespace

void AppendFormatted(const Place& at, LineHandle line, const char* text, const FormatPiece* pieces,
                     const FormatArgument* arguments) {
  if (IsUnmade(at, line) || WasLeft(at.view, line)) return;
  LineStore* const lines = at.tree && !KeepsFacts(at.view) ? at.tree->Lines() : nullptr;
  char* const place = lines ? lines->AppendedAt(line, static_cast<uint32_t>(at.lineSize)) : nullptr;
  if (place) {
    FormatPieces(place, at.lineSize, text, pieces, arguments);
    const uint32_t used = lines->lines[line].length;
    lines->Lengthen(static_cast<uint32_t>(JoinedLength(static_cast<int32_t>(used), static_cast<int32_t>(std::strlen(place)))));
    return;
  }
  char added[kLineSize];
  FormatPieces(added, at.lineSize, text, pieces, arguments);
  AppendToDecodeLine(at.view, at.tree, line, added);
}

void SetFormatted(const Place& at, LineHandle line, const char* text, const FormatPiece* pieces,
                  const FormatArgument* arguments) {
  if (IsUnmade(at, line) || WasLeft(at.view, line)) return;
  char made[kLineSize];
  FormatPieces(made, at.lineSize, text, pieces, arguments);
  SetDecodeLineText(at.view, at.tree, line, made);
}

}  // namespace detail

namespace {

// Whether nobody wants the lines of this decoder, and it does nothing else.
bool PassesOver(const Place& at, DecoderFunction decode) {
  const DecodeContext& context = *at.view->context;
  if (!context.silent && !context.packet.asked) [[likely]] return false;
  const ProtocolRow* protocol = ProtocolOf(decode);
  return protocol && protocol->isPlain && (!context.packet.asked || detail::NobodyAsksFor(context, {protocol->key}));
}

int32_t Decode(const Place& at, Cursor& c, DecoderFunction decode) {
  DecodeContext* const context = at.view->context;
  PacketState& packet = context->packet;
  ++packet.nesting;
  c.begin = c.offset;   // a decoder covers what it takes itself
  const char* const outer = packet.protocol;
  const bool outerSilent = context->silent;
  if (KeepsFacts(at.view)) [[unlikely]] {
    const ProtocolRow* protocol = ProtocolOf(decode);
    if (protocol) packet.protocol = protocol->key;
  }
  if (packet.asked) [[unlikely]] ChooseLines(context);
  const int32_t result = decode(at, c);
  packet.protocol = outer;
  if (packet.asked) [[unlikely]] context->silent = outerSilent;
  --packet.nesting;
  return result;
}

// What is left of the payload as a block where decoders stand in one another too deep.
int32_t TryToDecode(const Place& at, Cursor& c, DecoderFunction decode, const char* title) {
  if (PacketOf(at).nesting >= kMostNesting) return title ? AddRawRest(at, c, title) : 0;
  return Decode(at, c, decode);
}

// Whether the payload is this protocol's, of one whose lines nobody wants.
int32_t TryPlain(const Place& at, Cursor& c, DecoderFunction decode, const char* title) {
  PacketState& packet = PacketOf(at);
  const bool reached = packet.limitReached;
  const int32_t left = packet.linesLeft;
  packet.limitReached = true;
  const int32_t result = TryToDecode(at, c, decode, title);
  packet.limitReached = reached;
  if (packet.linesLeft < left) packet.linesLeft = left - 1;   // that it shows something counts, not how much
  return result;
}

}  // namespace

bool detail::EndList(const Place& at, Cursor& c) {
  AddBlock(at, Rest(c), "Further Elements");
  return false;
}

int32_t TryDecoder(const Place& at, Cursor c, DecoderFunction decode, const char* title) {
  return PassesOver(at, decode) ? TryPlain(at, c, decode, title) : TryToDecode(at, c, decode, title);
}

int32_t CallDecoder(const Place& at, Cursor c, DecoderFunction decode, const char* title) {
  if (decode && PassesOver(at, decode)) return title ? 1 : TryPlain(at, c, decode, title);
  const int32_t result = decode ? TryToDecode(at, c, decode, title) : 0;
  if (result != 0 || !title) return result;
  return AddRawRest(at, c, title);
}

}  // namespace qxview
