// Lines of text that go over to compression: IMAP (RFC 4978) and NNTP (RFC 8054). Each direction is one raw deflate stream
// (RFC 1951) from there on.
#pragma once
#include "decoders/app/direction_run.h"
#include "decoders/common/header_lines.h"
#include "decoders/net/connection_key.h"

namespace qxview {

// What a connection was asked to go over to, and by which packet it did.
struct CompressedConnection {
  int64_t packet;
  bool isOn;
  uint8_t tagLength, tag[22];   // of the command that asked
};
// What a direction leaves. Its bytes are the window, and what came behind the last place that can be opened alone.
struct CompressedSide {
  SegmentTrail trail;
  uint32_t kept, window;
  bool isLost;
};
struct CompressedDirection : DirectionState<CompressedSide> {};

// A command that asks for it, by its tag, and the answer that grants it.
void NoteCompressionAsked(const Place& at, const Field& tag);
void NoteCompressionGranted(const Place& at, const Field& tag);

// Whether the packet's bytes are compressed; they are shown then, and what they open to by `decode`.
bool ShowCompressedLines(const Place& at, Cursor& c, const char* protocol, void (*decode)(const Place& in, Cursor& c));

}  // namespace qxview
