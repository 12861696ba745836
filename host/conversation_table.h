// What detection learnt: which address and port carry which protocol. Bounded: a capture of any length keeps the most
// recently learnt ends, the oldest make room.
#pragma once
#include "core/budgets.h"
#include "host/hash_key.h"
#include "host/state.h"
#include "qxview/qxview_host.h"

namespace qxview {

struct LearntProtocol {
  int32_t identifier;
  DynamicRecord record;   // all zero when nothing was told beside the protocol
};

// The ends of one transport. Does not lock.
class ConversationTable {
 public:
  explicit ConversationTable(uint32_t capacity = kMostConversations)
      : state_({"learnt ends", sizeof(HashKey), sizeof(LearntProtocol), {.mostKeys = capacity}}) {}

  // Stores the end as the newest, over what was known of it. Port 0 is refused, since in a definition it would claim
  // every port of the address. Without memory nothing is learnt.
  void Learn(const NetworkEnd& end, const LearntProtocol& learnt) noexcept {
    if (end.port != 0) state_.table.Remember(AddressPortKey(end.address, end.port).words.data(), &learnt, {});
  }
  // Null when the end is not known; good until something is learnt.
  const LearntProtocol* Find(const AddressSlot& address, uint16_t port) noexcept {
    if (port == 0 || Count() == 0) return nullptr;
    return static_cast<const LearntProtocol*>(
        state_.table.Recall(AddressPortKey(address, port).words.data(), 1, nullptr));
  }
  size_t Count() const noexcept { return state_.table.Count(); }
  void Clear() noexcept { state_.table.Clear(); }

 private:
  HostState state_;
};

}  // namespace qxview
