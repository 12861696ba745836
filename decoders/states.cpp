#include "decoders/states.h"

#include <type_traits>

#include "core/dispatch.h"
#include "core/engine.h"
#include "core/tls_secrets.h"
#include "core/tls_stream.h"
#include "decoders/app/dnscrypt.h"
#include "decoders/app/flow_templates.h"
#include "decoders/app/ftp_data.h"
#include "decoders/app/http2.h"
#include "decoders/app/http_message.h"
#include "decoders/app/iax2.h"
#include "decoders/app/compressed_lines.h"
#include "decoders/app/media_sessions.h"
#include "decoders/app/rtmp.h"
#include "decoders/app/radius_secret.h"
#include "decoders/app/socks.h"
#include "decoders/app/ssh.h"
#include "decoders/app/stream_note.h"
#include "decoders/app/telnet.h"
#include "decoders/ipsec/openvpn_streams.h"
#include "decoders/link/ppp_compression.h"
#include "decoders/app/web_pieces.h"
#include "decoders/app/websocket.h"
#include "decoders/net/ip_fragments.h"
#include "decoders/net/tcp_streams.h"
#include "decoders/net/window_scales.h"
#include "decoders/quic/qpack.h"
#include "decoders/quic/quic_protection.h"
#include "decoders/quic/quic_streams.h"
#include "decoders/routing/bgp.h"
#include "decoders/smb/smb_requests.h"
#include "decoders/tls/tls_opener.h"

namespace qxview {
namespace {

template <class Key, class Value>
constexpr StateRow MakeStateRow(const char* name, const StateBounds& bounds) {
  static_assert(std::has_unique_object_representations_v<Key>, "keys are compared and hashed as bytes");
  static_assert(sizeof(Key) % 8 == 0 && sizeof(Key) <= kMostKeySize);
  static_assert(std::is_trivially_copyable_v<Value> && sizeof(Value) <= kMostValueSize);
  return {name, sizeof(Key), sizeof(Value), bounds};
}

constexpr StateRow kRows[] = {
#define QX_STATE(id, name, Key, Value, ...) MakeStateRow<Key, Value>(name, {__VA_ARGS__}),
#define QX_LENT_STATE(id, name, Value) StateRow{name, 0, sizeof(Value), {}},
#include "decoders/state_rows.inc"
#undef QX_STATE
#undef QX_LENT_STATE
};

// Buffers that a decoder needs for one payload and that outlive it: {slot, create, destroy}.
struct WorkspaceRow {
  DecoderState slot;
  void* (*create)();   // null when there is no memory
  void (*destroy)(void*);
};
constexpr WorkspaceRow kWorkspaces[] = {
    {DecoderState::kHttp, CreateHttpState, DestroyHttpState},
};

}  // namespace

const StateRow* StateRows(int32_t* count) {
  *count = static_cast<int32_t>(std::size(kRows));
  return kRows;
}

bool CreateDecoderStates(Engine* engine) {
  for (const WorkspaceRow& row : kWorkspaces) {
    void* made = row.create();
    if (!made) return false;
    engine->decoderState[static_cast<int32_t>(row.slot)] = made;
  }
  return true;
}

void DestroyDecoderStates(Engine* engine) {
  for (const WorkspaceRow& row : kWorkspaces) {
    void*& held = engine->decoderState[static_cast<int32_t>(row.slot)];
    if (held) row.destroy(held);
    held = nullptr;
  }
}

}  // namespace qxview
