#include "host/conversation_table.h"

#include <new>

namespace qxview {

void ConversationTable::Learn(const LearntEnd& learnt) noexcept {
  if (learnt.end.port == 0 || capacity_ == 0) return;
  const HashKey key = AddressPortKey(learnt.end.address, learnt.end.port);
  if (const auto known = index_.find(key); known != index_.end()) {
    *known->second = learnt;
    ends_.splice(ends_.end(), ends_, known->second);
    return;
  }
  if (ends_.size() >= capacity_) {
    const LearntEnd& oldest = ends_.front();
    index_.erase(AddressPortKey(oldest.end.address, oldest.end.port));
    ends_.pop_front();
  }
  EndList made;
  try {
    made.push_back(learnt);
    index_.emplace(key, made.begin());
    ends_.splice(ends_.end(), made);
  } catch (const std::bad_alloc&) {
  }
}

const LearntEnd* ConversationTable::Find(const AddressSlot& address, uint16_t port) const noexcept {
  if (port == 0 || ends_.empty()) return nullptr;
  const auto found = index_.find(AddressPortKey(address, port));
  return found == index_.end() ? nullptr : &*found->second;
}

void ConversationTable::Clear() noexcept {
  index_.clear();
  ends_.clear();
}

}  // namespace qxview
