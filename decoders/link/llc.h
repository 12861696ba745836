// What an 802.2 header can carry beside SNAP: the keys of the registry's table of LLC services.
#pragma once
#include "core/dispatch.h"

namespace qxview {

enum class LlcService : uint32_t {
  kNone, kXidTest, kOsiNull, kClnp, kEsIs, kIsIs, kOsiOther, kIpx, kNetBios, kVinesBa, kVines, kSpanningTree, kSna,
};

const DecoderRow* FindLlcService(LlcService service);   // null for kNone

}  // namespace qxview
