#include "decoders/net/learn.h"

#include <cstddef>

#include "core/context.h"
#include "core/engine.h"
#include "core/states.h"

namespace qxview {

void Learn(const View* view, uint32_t transport, int32_t identifier, const AddressSlot& address, uint16_t port,
           int32_t port2, int32_t port3, const DynamicRecord* extra) {
  if (identifier < 1 || !(transport & (QX_OVER_TCP | QX_OVER_UDP)) || view->context->packet.quoted) return;
  if (Replays(view)) return;
  const QxHost* host = view->engine->host;
  const auto learn = QXVIEW_HOST_FUNCTION(host, learn);
  const auto definitionTable = QXVIEW_HOST_FUNCTION(host, definitionTable);
  const int32_t table = transport & QX_OVER_TCP ? QX_TCP_ADDRESSES : QX_UDP_ADDRESSES;
  if (!learn || !definitionTable || !definitionTable(host->user, table)) return;
  learn(host->user, transport, identifier, &address, port, port2, port3, extra);
}

}  // namespace qxview
