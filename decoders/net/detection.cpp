#include "decoders/net/detection.h"

namespace qxview {

int32_t DetectDynamicProtocol(const Place&, Cursor, uint16_t, uint16_t, uint8_t) { return 0; }

}  // namespace qxview
