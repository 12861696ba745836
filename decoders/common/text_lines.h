// Runs of text in protocols that are not text alone: lines of a payload, texts that end in a zero octet.
#pragma once
#include "decoders/common/header_lines.h"

namespace qxview {

// All that is left, a line each.
void ShowLinesOfText(const Place& in, Cursor& c, const char* label);

// Up to the next zero octet, which is taken and left out; all that is left where there is none.
Field TakeTerminated(Cursor& c);

// Whether all that is left is text: printable, and no control character but tabs, line ends and, if so asked, zeros.
bool IsReadable(const Cursor& c, bool withZeros = false);

// The octets that a line's end announces, "{310}" or "{310+}"; -1 for none.
int32_t LiteralOf(const Field& line);

}  // namespace qxview
