#include "files/byte_source.h"

#include <cstring>
#include <new>

namespace qxview {

namespace {
constexpr size_t kFirstCapacity = 256u << 10;
}

bool ByteSource::Skip(uint64_t count) {
  while (count > Remaining()) {
    count -= Remaining();
    cursor_ = limit_;
    Refill(1);
    if (Remaining() == 0) return false;
  }
  cursor_ += count;
  return true;
}

bool BufferedSource::MoveWindow(uint64_t position) {
  ended_ = false;
  failure_.clear();
  const bool isHere = position >= windowOffset_ && position - windowOffset_ <= static_cast<uint64_t>(limit_ - window_);
  if (!isHere) {
    windowOffset_ = position;
    limit_ = window_;
  }
  cursor_ = isHere ? window_ + (position - windowOffset_) : window_;
  return isHere;
}

bool BufferedSource::Reserve(size_t wanted) {
  size_t kept = Remaining();
  if (wanted > capacity_) {
    size_t capacity = capacity_ ? capacity_ : kFirstCapacity;
    while (capacity < wanted) capacity *= 2;
    std::unique_ptr<uint8_t[]> larger(new (std::nothrow) uint8_t[capacity]);
    if (!larger) {
      failure_ = "out of memory";
      return false;
    }
    windowOffset_ = Position();
    if (kept) std::memcpy(larger.get(), cursor_, kept);
    buffer_ = std::move(larger);
    capacity_ = capacity;
  } else {
    windowOffset_ = Position();
    if (kept) std::memmove(buffer_.get(), cursor_, kept);
  }
  window_ = cursor_ = buffer_.get();
  limit_ = window_ + kept;
  return true;
}

void BufferedSource::Refill(size_t wanted) {
  if (ended_) return;
  if (wanted > kLargestPeek || !Reserve(wanted)) {
    ended_ = true;
    return;
  }
  while (Remaining() < wanted) {
    size_t have = Remaining();
    size_t got = ReadSome(buffer_.get() + have, capacity_ - have);
    if (got == 0) {
      // The end is kept: a terminal or a growing file must not go on after it was reported.
      ended_ = true;
      return;
    }
    limit_ += got;
  }
}

}  // namespace qxview
