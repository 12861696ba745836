// What a row of the registry decodes, as the payload target's inputs say it.
#pragma once
#include "fuzz/stations.h"

namespace qxview::fuzz {

struct PayloadHead {
  const DecoderRow* row;
  uint8_t medium;
  uint32_t flags;
  uint16_t port, linkType;
  Piece extension;
};

// Behind the wishes: table (1), key (4), flags (1), port (2), link type (2), length of an extension block (1), the block. A key
// that no row has stands for the row in front of it.
PayloadHead ReadPayloadHead(Input& input);
ExactRecord RecordOf(const PayloadHead& head, const Piece& payload);
// As if the packet of the record carried it.
void DecodePayload(Session& session, const PayloadHead& head, const ExactRecord& record);

}  // namespace qxview::fuzz
