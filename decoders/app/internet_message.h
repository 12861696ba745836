// Internet messages (RFC 5322) with their parts (MIME, RFC 2045-2047, 2183), wherever they are carried.
#pragma once
#include "decoders/app/stream_note.h"
#include "decoders/common/header_lines.h"

namespace qxview {

// What the headers of a message or of a part of one say of its body.
struct MimeEntity {
  Field type, boundary, encoding;
  bool isAtType;   // the last header was the one that says the boundary
};

// Whether the bytes begin with a header by which messages are known, or with two headers of any name.
bool StartsInternetMessage(const Cursor& c);

// One header with what its structure says.
void ShowMessageHeader(const Place& at, const HeaderLine& header, MimeEntity& entity);

// Where a message ends: at a line of a dot, or behind octets that were counted, of which `lacking` are in segments to come.
struct MessageEnd {
  bool takesDot;
  bool isCounted;
  uint32_t lacking;
};
constexpr MessageEnd kAtDot{true, false, 0};

// The headers and the lines of the body. What of them is to come is noted for the segment behind (`StreamNote`).
void ShowInternetMessage(const Place& in, Cursor& c, const MessageEnd& end);
// Lines of text, in the same way.
void ShowMessageText(const Place& in, Cursor& c, const MessageEnd& end);
// What an earlier segment noted goes on here; false when it noted no message.
bool ShowMessageRest(const Place& in, Cursor& c);

}  // namespace qxview
