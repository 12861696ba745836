// What a segment left unfinished, for the one that follows it in the stream: kept under the number of the stream's next byte,
// so that a segment which is shown again finds what it found before, and one behind a gap finds nothing.
#pragma once
#include "decoders/common/header_lines.h"
#include "decoders/net/connection_key.h"

namespace qxview {

struct StreamNote {
  uint32_t lacking;       // bytes of what was counted
  uint8_t phase;          // the protocol's own
  uint8_t detail;         // the same
  uint8_t isMidLine;      // the last line had no end yet
  uint8_t textLength;
  uint8_t text[72];       // of multipart messages the boundary
};

// Where the cursor stands in the stream, as a key; false for bytes that are not the segment's own.
bool FindStreamPlace(const Place& at, const Cursor& c, RequestKey* key);

// What the bytes before the cursor left; all zero for nothing.
StreamNote RecallNote(const Place& at, const Cursor& c);
// Keeps it for what comes behind the cursor.
void LeaveNote(const Place& at, const Cursor& c, const StreamNote& note);

// The text of a note, cut to its room.
void PutText(StreamNote& note, const Field& text);
void AppendText(StreamNote& note, const Field& text);
inline Field TextOf(const StreamNote& note) { return {note.text, 0, note.textLength, 0, note.textLength > 0}; }

}  // namespace qxview
