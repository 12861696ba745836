// A line made of a text taken apart, under any parent: what AddLine and rows come down to.
#pragma once
#include "core/decoder.h"

namespace qxview::detail {

// Whether a line is one that silence kept from being made: nothing can be told of it.
inline bool IsUnmade(const Place& at, LineHandle line) { return line == kLineOutsideDisplay && Silent(at); }


LineHandle AddPiecesLine(const Place& at, LineHandle parent, const Field& field, int32_t image, const char* text,
                         const FormatPiece* pieces, const FormatArgument* arguments);

}  // namespace qxview::detail
