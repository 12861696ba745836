// What detection learnt: which address and port carry which protocol. Bounded: a capture of any length keeps the most
// recently learnt ends, the oldest make room.
#pragma once
#include <cstddef>
#include <cstdint>
#include <list>
#include <unordered_map>

#include "host/hash_key.h"
#include "qxview/qxview_host.h"

namespace qxview {

struct LearntEnd {
  NetworkEnd end;
  int32_t identifier;
  DynamicRecord record;   // all zero when nothing was told beside the protocol
};

// The ends of one transport. Does not lock.
class ConversationTable {
 public:
  static constexpr size_t kCapacity = 65536;
  explicit ConversationTable(size_t capacity = kCapacity) : capacity_(capacity) {}

  // Stores the end as the newest, over what was known of it. Port 0 is refused, since in a definition it would claim
  // every port of the address. Without memory nothing is learnt.
  void Learn(const LearntEnd& learnt) noexcept;
  // Null when the end is not known.
  const LearntEnd* Find(const AddressSlot& address, uint16_t port) const noexcept;
  size_t Count() const noexcept { return ends_.size(); }
  void Clear() noexcept;

 private:
  using EndList = std::list<LearntEnd>;
  size_t capacity_;
  EndList ends_;   // the oldest first
  std::unordered_map<HashKey, EndList::iterator, HashKeyHash> index_;
};

}  // namespace qxview
