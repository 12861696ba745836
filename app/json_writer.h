// The decode tree as JSON, one object a line, one line a packet (docs/decode.schema.json).
#pragma once
#include "app/output.h"
#include "app/tree_shape.h"
#include "host/session.h"

namespace qxview {

struct PacketListing;

struct JsonPacket {
  const FrameRecord* record;
  uint64_t number;
  int32_t handled;
  bool withBytes;   // the frame's, in hexadecimal
  bool withKeys;    // of the lines
  const char* file;   // its capture's name; null: not said
  const TreeShape* shape;   // of the lines
  const PacketListing* listing;   // null: without
};

void WriteJson(Output& out, Session& session, const JsonPacket& packet);

// A text of Windows-1252 as a JSON text.
void PutJsonText(Output& out, std::string_view text);

}  // namespace qxview
