#include "core/decoder.h"

#include "core/line_facts.h"

namespace qxview {
namespace detail {

LineHandle AddFormatted(const Place& at, const Field& field, int32_t image, const char* text,
                        const FormatPiece* pieces, const FormatArgument* arguments) {
  if (OnlyTells(at.view)) return CountSilentLine(at);
  if (LeavesFormatted(at.view, at.parent, text, pieces, arguments)) return CountLeftLine(at.view, at.parent);
  char line[kLineSize];
  const int32_t length = FormatPieces(line, at.lineSize, text, pieces, arguments);
  const LineHandle added = AddDecodeLineOf(at.view, at.parent, line, length, image, at.tree,
                                           MakeByteRange(kFieldKind, field.offset, field.length));
  if (KeepsFacts(at.view)) [[unlikely]] NoteFormatted(at.view, added, text, pieces, arguments);
  return added;
}

LineHandle AddPlain(const Place& at, const Field& field, int32_t image, const char* text, int32_t length) {
  if (LeavesMade(at.view, at.parent, text, length)) return CountLeftLine(at.view, at.parent);
  char line[kLineSize];
  if (length >= at.lineSize) {
    text = CopyTextN(line, at.lineSize, text, length);
    length = at.lineSize - 1;
  }
  const LineHandle added = AddDecodeLineOf(at.view, at.parent, text, length, image, at.tree,
                                           MakeByteRange(kFieldKind, field.offset, field.length));
  if (KeepsFacts(at.view)) [[unlikely]] NoteMade(at.view, added, text, length);
  return added;
}

void AppendFormatted(const Place& at, LineHandle line, const char* text, const FormatPiece* pieces,
                     const FormatArgument* arguments) {
  if (WasLeft(at.view, line)) return;
  char added[kLineSize];
  FormatPieces(added, at.lineSize, text, pieces, arguments);
  AppendToDecodeLine(at.view, at.tree, line, added);
}

void SetFormatted(const Place& at, LineHandle line, const char* text, const FormatPiece* pieces,
                  const FormatArgument* arguments) {
  if (WasLeft(at.view, line)) return;
  char made[kLineSize];
  FormatPieces(made, at.lineSize, text, pieces, arguments);
  SetDecodeLineText(at.view, at.tree, line, made);
}

}  // namespace detail

int32_t TryDecoder(const Place& at, Cursor c, DecoderFunction decode, const char* title) {
  PacketState& packet = PacketOf(at);
  if (packet.nesting >= kMostNesting) return title ? AddRawRest(at, c, title) : 0;
  ++packet.nesting;
  c.begin = c.offset;   // a decoder covers what it takes itself
  DecodeContext* const context = at.view->context;
  const char* const outer = packet.protocol;
  const bool outerSilent = context->silent;
  if (KeepsFacts(at.view)) [[unlikely]] packet.protocol = ProtocolKeyOf(decode, outer);
  if (packet.asked) [[unlikely]] ChooseLines(context);
  const int32_t result = decode(at, c);
  packet.protocol = outer;
  if (packet.asked) [[unlikely]] context->silent = outerSilent;
  --packet.nesting;
  return result;
}

int32_t CallDecoder(const Place& at, Cursor c, DecoderFunction decode, const char* title) {
  const int32_t result = decode ? TryDecoder(at, c, decode, title) : 0;
  if (result != 0 || !title) return result;
  return AddRawRest(at, c, title);
}

}  // namespace qxview
