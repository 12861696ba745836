// The decode tree as JSON, one object a line, one line a packet (docs/decode.schema.json).
#pragma once
#include "app/output.h"
#include "host/session.h"

namespace qxview {

void WriteJson(Output& out, Session& session, const FrameRecord* record, uint64_t packetNumber, int32_t handled);

}  // namespace qxview
