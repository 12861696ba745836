#include "decoders/states.h"

#include "core/dispatch.h"
#include "decoders/app/http_message.h"
#include "decoders/net/window_scales.h"
#include "decoders/smb/smb_requests.h"

namespace qxview {
namespace {

// A row a decoder with state: {slot, create, destroy}.
constexpr StateRow kStates[] = {
    {DecoderState::kWindowScales, CreateWindowScales, DestroyWindowScales},
    {DecoderState::kHttp, CreateHttpState, DestroyHttpState},
    {DecoderState::kSmbRequests, CreateSmbRequests, DestroySmbRequests},
};

}  // namespace

bool CreateDecoderStates(Engine* engine) {
  for (const StateRow& row : kStates) {
    if (!row.create) continue;
    void* made = row.create();
    if (!made) return false;
    engine->decoderState[static_cast<int32_t>(row.slot)] = made;
  }
  return true;
}

void DestroyDecoderStates(Engine* engine) {
  for (const StateRow& row : kStates) {
    if (!row.destroy) continue;
    void*& held = engine->decoderState[static_cast<int32_t>(row.slot)];
    if (held) row.destroy(held);
    held = nullptr;
  }
}

}  // namespace qxview
