// The operations on decode lines. All decoders produce their output through AddDecodeLine; the context's output mode
// routes each line into the tree, the print file, the text file or the find. Outside display mode every tree-editing
// operation does nothing and every query gives 0 or empty text, so decoders never test the mode.
#pragma once
#include "core/byte_origins.h"
#include "core/context.h"
#include "core/levels.h"

namespace qxview {

// Appends a line as the last child of `parentLine` (0: top level). Gives the parent for the next nesting level:
// the new line in display mode, 1000 in the others, 0 (nothing added) when the view, its context or the tree is
// missing or the frame's bound of lines is reached.
LineHandle AddDecodeLine(View* view, LineHandle parentLine, const char* text, int32_t image, DecodeTree* tree,
                         ByteRange range);

// A line that is counted towards the frame's bound and not made.
LineHandle ReachLineLimit(View* view);
inline LineHandle CountLine(View* view) {
  if (view->context->packet.linesLeft <= 0) [[unlikely]] return ReachLineLimit(view);
  --view->context->packet.linesLeft;
  return kLineOutsideDisplay;
}

// The same for a text whose length is known.
LineHandle AddDecodeLineOf(View* view, LineHandle parentLine, const char* text, int32_t length, int32_t image,
                           DecodeTree* tree, ByteRange range);

// The quick way of most lines, without a copy: room for a text of the next line where the tree keeps it. Null where lines go
// another way: outside display mode, while the context is silent or has found something, at the frame's bound, in trees that
// have no such room.
char* RoomForLine(const View* view, LineHandle parentLine, DecodeTree* tree, int32_t size);
// The line whose text of so many characters was written there.
LineHandle AddMadeInPlace(DecodeContext* context, LineHandle parentLine, char* room, int32_t length, int32_t image,
                          DecodeTree* tree, ByteRange range);

// Appends a line that has its range elsewhere or none, in display mode: what user decoder libraries add on their own.
LineHandle AddTaggedLine(View* view, LineHandle parentLine, const char* text, int32_t image, uint32_t tag);

// Appends to the line's text: a joined text of up to 300 characters is kept whole, a longer one is cut to 299.
void AppendToDecodeLine(View* view, DecodeTree* tree, LineHandle line, const char* text);
void SetDecodeLineText(View* view, DecodeTree* tree, LineHandle line, const char* text);
int32_t GetDecodeLineText(View* view, DecodeTree* tree, LineHandle line, char* buffer, int32_t bufferLength);

void SetDecodeLineRange(View* view, DecodeTree* tree, LineHandle line, ByteRange range);
// Makes the line's range longer and returns it; 0 extra bytes do nothing.
ByteRange ExtendDecodeLineRange(View* view, DecodeTree* tree, LineHandle line, int32_t extraLength);
// 1 and the stored range; 0 and none for the first line after a clear, which the view highlights nothing for.
int32_t GetDecodeLineRange(View* view, DecodeTree* tree, LineHandle line, ByteRange* out);

// The stored range of any line, the first one included; none for a line whose tag is no index of the table.
ByteRange RangeOfLine(const DecodeContext* context, const DecodeTree* tree, LineHandle line);

// Lines that are added while this is here are made of bytes that do not stand in the frame as they are (decrypted,
// inflated): their ranges tell the bytes that those came from.
class DerivedLines {
 public:
  explicit DerivedLines(const View* view);
  ~DerivedLines();
  DerivedLines(const DerivedLines&) = delete;
  DerivedLines& operator=(const DerivedLines&) = delete;

 private:
  DecodeContext* context_;
  uint32_t first_;
};
bool IsDerived(const DecodeContext* context, uint32_t rangeIndex);

// The same with the pieces of it that earlier packets brought, of which as many are given as fit.
OwnRange OwnRangeOfLine(const DecodeContext* context, const DecodeTree* tree, LineHandle line, BytePiece* earlier,
                        int32_t mostEarlier);

LineHandle GetLastDecodeLine(View* view, DecodeTree* tree);   // in display order
int32_t GetLastDecodeLineRange(View* view, DecodeTree* tree, ByteRange* out);
int32_t CountTopLevelLines(View* view, DecodeTree* tree);     // plus one, at most 14

// In save mode takes the bytes written since the mark back first.
void DeleteDecodeLine(View* view, DecodeTree* tree, LineHandle line);
void DeleteDecodeChildren(View* view, DecodeTree* tree, LineHandle line);   // and the line; 0: every line
void ClearDecodeTree(View* view, DecodeTree* tree, bool fast);

}  // namespace qxview
