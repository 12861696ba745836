// What decoders are written with: a Cursor over the bytes and a Place for the lines.
//
//   int32_t DecodeThing(const Place& at, Cursor c) {
//     if (Left(c) < 4) return 0;
//     const Place in = Under(at, AddLine(at, Ahead(c, 4), "Thing:"));
//     const Field kind = TakeU8(c);
//     AddLine(in, kind, "Kind: %u = %s", kind.value, LookupName(kKindNames, kind.value));
//     ...
//
// A field that is not here, or a dead place, adds nothing.
#pragma once
#include <initializer_list>

#include "core/blocks.h"
#include "core/bounded_text.h"
#include "core/cursor.h"
#include "core/dispatch.h"
#include "core/engine.h"
#include "core/lines.h"
#include "core/name_table.h"

namespace qxview {

// Where lines go: under `parent`, with the image of `level`.
struct Place {
  View* view;
  DecodeTree* tree;
  LineHandle parent;
  int16_t level;
  int16_t lineSize;
  bool dead;   // the parent could not be added: its children must not surface at the top level
};

inline Place TopLevel(View* view, int32_t level) {
  return {view, view->tree, 0, static_cast<int16_t>(level), kLineSize, false};
}

// The place for a line's children, one level deeper.
inline Place Under(const Place& at, LineHandle line) {
  return {at.view, at.tree, line, static_cast<int16_t>(NextLevel(at.level)), at.lineSize, line == 0 || at.dead};
}

// The place for another protocol's top-level lines, one level deeper.
inline Place Deeper(const Place& at) {
  return {at.view, at.tree, 0, static_cast<int16_t>(NextLevel(at.level)), kLineSize, false};
}

inline PacketState& PacketOf(const Place& at) { return at.view->context->packet; }
inline bool Silent(const Place& at) { return at.view->context->silent; }

namespace detail {
bool NobodyAsksFor(const DecodeContext& context, std::initializer_list<const char*> protocols);
}

// Whether nobody wants the lines that would be added here, nor those of other protocols that are called by name on the way: what is
// made for lines alone (fingerprints, names, certificates) may be left, and is not counted then.
inline bool NobodyWants(const Place& at, std::initializer_list<const char*> others = {}) {
  const DecodeContext& context = *at.view->context;
  return context.silent && (!context.packet.asked || detail::NobodyAsksFor(context, others));
}

// Counts lines that nobody wants towards the frame's bound.
inline void CountLines(const Place& at, int32_t count) {
  if (at.dead) return;
  int32_t& left = PacketOf(at).linesLeft;
  if (count < left) [[likely]] {
    left -= count;
    return;
  }
  while (count-- > 0) CountLine(at.view);
}

// Leaves what the payload was looked up by.
inline void ReachLayer(const Place& at, DispatchTable table, uint32_t key, const Cursor& c) {
  PacketState& packet = PacketOf(at);
  packet.reached = {table, key, c.at, Left(c)};
  if (table == DispatchTable::kIpProtocol) packet.carrier = packet.reached;
}

inline bool Displaying(const Place& at) { return at.view->context->outputMode == kDisplayMode; }

namespace detail {
bool EndList(const Place& at, Cursor& c);
}

// Whether a decoder should go on: loops over many small elements ask it, so that bounds of lines end their work. Where a frame has
// more of them than anyone reads, what is left of the list is a block.
inline bool MoreAt(const Place& at, Cursor& c, Loop& loop) {
  const PacketState& packet = PacketOf(at);
  if (packet.limitReached || !More(c, loop)) return false;
  return packet.linesLeft > packet.listsEnd || detail::EndList(at, c);
}

namespace detail {
inline LineHandle CountSilentLine(const Place& at) { return CountLine(at.view); }

// Whether a question is known to leave every line of this text out: before anything is made for one.
bool IsLeftOut(const Place& at, const char* text, bool startsWithBits);
template <class... Args>
constexpr bool kStartsWithBits = false;
template <class... Args>
constexpr bool kStartsWithBits<BitSlice, Args...> = true;
template <class... Args>
inline bool LeavesText(const Place& at, const char* text) {
  return Silent(at) || (PacketOf(at).asked && IsLeftOut(at, text, kStartsWithBits<Args...>));
}
// Whether a line of this handle stands nowhere: a question left it out.
inline bool StandsNowhere(const Place& at, LineHandle line) {
  return !line || (PacketOf(at).asked && line >= kLineOutsideDisplay && line <= kTakenLine);
}
LineHandle AddFormatted(const Place& at, const Field& field, int32_t image, const char* text,
                        const FormatPiece* pieces, const FormatArgument* arguments);
LineHandle AddLiteral(const Place& at, const Field& field, int32_t image, const char* text, int32_t length);
LineHandle AddMade(const Place& at, const Field& field, int32_t image, const char* text, int32_t length);
void AppendFormatted(const Place& at, LineHandle line, const char* text, const FormatPiece* pieces,
                     const FormatArgument* arguments);
void SetFormatted(const Place& at, LineHandle line, const char* text, const FormatPiece* pieces,
                  const FormatArgument* arguments);
}  // namespace detail

// Adds a line over the field's bytes. Result: the parent for its children, 0 when nothing was added.
template <class... Args>
LineHandle AddLine(const Place& at, const Field& field, FormatText<std::type_identity_t<Args>...> text,
                   const Args&... args) {
  if (!field.here || at.dead) return 0;
  if (detail::LeavesText<Args...>(at, text.text)) return detail::CountSilentLine(at);
  if constexpr (sizeof...(Args) == 0) {
    return detail::AddLiteral(at, field, LevelImage(at.level), text.text, text.pieces[0].literalLength);
  } else {
    const FormatArguments<sizeof...(Args)> arguments = {{ArgumentOf(args)...}};
    return detail::AddFormatted(at, field, LevelImage(at.level), text.text, text.pieces, arguments.of);
  }
}

// The same with a terminated text that was made before.
inline LineHandle AddMadeLine(const Place& at, const Field& field, const char* text, int32_t length) {
  if (!field.here || at.dead) return 0;
  if (Silent(at)) return detail::CountSilentLine(at);
  return detail::AddMade(at, field, LevelImage(at.level), text, length);
}

// A bit-field detail line: the fixed image of bit fields, over the whole field that the bits are of.
template <class... Args>
LineHandle AddBitLine(const Place& at, const Field& field, FormatText<std::type_identity_t<Args>...> text,
                      const Args&... args) {
  if (!field.here || at.dead) return 0;
  if (detail::LeavesText<Args...>(at, text.text)) return detail::CountSilentLine(at);
  const FormatArguments<sizeof...(Args)> arguments = {{ArgumentOf(args)...}};
  return detail::AddFormatted(at, field, kBitFieldImage, text.text, text.pieces, arguments.of);
}

// Appends to the text of a line that this decoder added. Seen in the tree alone, as all edits are.
template <class... Args>
void AppendToLine(const Place& at, LineHandle line, FormatText<std::type_identity_t<Args>...> text,
                  const Args&... args) {
  if (!Displaying(at) || detail::StandsNowhere(at, line)) return;
  const FormatArguments<sizeof...(Args)> arguments = {{ArgumentOf(args)...}};
  detail::AppendFormatted(at, line, text.text, text.pieces, arguments.of);
}

// The same for the line that `at` is the place under, when the field is here.
template <class... Args>
void AppendToParent(const Place& at, const Field& field, FormatText<std::type_identity_t<Args>...> text,
                    const Args&... args) {
  if (!field.here || at.dead || !Displaying(at) || detail::StandsNowhere(at, at.parent)) return;
  const FormatArguments<sizeof...(Args)> arguments = {{ArgumentOf(args)...}};
  detail::AppendFormatted(at, at.parent, text.text, text.pieces, arguments.of);
}

// Replaces the text of a line.
template <class... Args>
void SetLine(const Place& at, LineHandle line, FormatText<std::type_identity_t<Args>...> text, const Args&... args) {
  if (!Displaying(at) || detail::StandsNowhere(at, line)) return;
  const FormatArguments<sizeof...(Args)> arguments = {{ArgumentOf(args)...}};
  detail::SetFormatted(at, line, text.text, text.pieces, arguments.of);
}

// The range of a line; of the line that `at` is the place under: all bytes that the cursor took.
inline void SetRange(const Place& at, LineHandle line, int32_t offset, int32_t length) {
  SetDecodeLineRange(at.view, at.tree, line, MakeByteRange(kFieldKind, offset, length));
}
inline void CoverBytes(const Place& at, const Cursor& c) {
  if (!at.dead) SetRange(at, at.parent, c.begin, Taken(c));
}

// A titled dump of the field under the place's line, in the image of the place's level. Nothing for an empty field.
inline LineHandle AddBlock(const Place& at, const Field& field, const char* title) {
  if (!field.here || at.dead) return 0;
  return AddDataBlock(at.view, at.parent, field.bytes, field.offset, field.bytes ? field.length : 0, title,
                      LevelImage(at.level));
}

// The rest of the cursor as a top-level raw data block. Result 1, or 0 when nothing is left.
inline int32_t AddRawRest(const Place& at, Cursor& c, const char* title) {
  const Field rest = Rest(c);
  return rest.here ? AddRawData(at.view, rest.bytes, rest.offset, rest.length, title) : 0;
}

}  // namespace qxview
