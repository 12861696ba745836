// The decode tree as indented text.
#pragma once
#include "app/output.h"
#include "app/tree_shape.h"
#include "host/session.h"

namespace qxview {

struct TreeStyle {
  bool colors = false;
  bool ranges = false;      // each line's byte range behind it
  bool keys = false;        // each line's key and value behind it, of a view that keeps facts
  LineHandle marked = 0;    // a line shown with '>' in column 0
  bool markColumn = false;  // a column in front for the mark
  TreeShape shape;
  bool cells = false;       // for a terminal: one cell a byte in the character column of dumps
};

// Writes every line of the session's tree, two blanks a depth. Control characters are written as \xNN, the others as
// UTF-8: what a line holds never reaches the terminal as a command.
void WriteTree(Output& out, Session& session, const TreeStyle& style);

// The frame's bytes as a hex dump.
void WriteFrameBytes(Output& out, const FrameRecord* record);

// A line's text for a terminal, and how many of its cells that takes.
void PutSafeText(Output& out, std::string_view text);
int32_t CellsOf(std::string_view text);

}  // namespace qxview
