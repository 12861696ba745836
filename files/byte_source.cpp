#include "files/byte_source.h"

#include <cstring>
#include <new>

namespace qxview {

namespace {
constexpr size_t kFirstCapacity = 256u << 10;
}

SharedBuffer::SharedBuffer(size_t size) noexcept {
  void* const memory = ::operator new(sizeof(Block) + size, std::align_val_t{alignof(Block)}, std::nothrow);
  if (memory) block_ = new (memory) Block{1, size};
}

SharedBuffer::~SharedBuffer() {
  if (!block_ || block_->users.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
  block_->~Block();
  ::operator delete(block_, std::align_val_t{alignof(Block)});
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

bool BufferedSource::KeepWindow(KeptBytes* kept) noexcept {
  if (!kept->empty() && kept->back() == buffer_) return true;
  try {
    kept->push_back(buffer_);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return isKept_ = true;
}

bool BufferedSource::MoveWindow(uint64_t position) {
  ended_ = false;
  failure_.clear();
  const bool isHere = position >= windowOffset_ && position - windowOffset_ <= static_cast<uint64_t>(limit_ - window_);
  if (!isHere) {
    windowOffset_ = position;
    window_ = limit_ = isKept_ ? limit_ : window_;
  }
  cursor_ = isHere ? window_ + (position - windowOffset_) : window_;
  return isHere;
}

// One that was kept and is not any more costs no new pages.
SharedBuffer BufferedSource::TakeBuffer(size_t size) {
  for (size_t i = 0; i < kMostFormer; ++i) {
    SharedBuffer& former = former_[(formerCount_ + i) % kMostFormer];   // the oldest first
    if (former.IsMine() && former.Size() >= size) return std::move(former);
  }
  return SharedBuffer(size);
}

// Room for `wanted` bytes from the cursor on.
bool BufferedSource::Reserve(size_t wanted) {
  constexpr size_t kLeastRead = 16u << 10;   // less is not worth a call of the system
  const size_t left = Remaining();
  if (isKept_ && Behind() >= kLeastRead && Behind() >= wanted - left) return true;
  SharedBuffer other;
  if (wanted > buffer_.Size() || isKept_) {
    size_t size = buffer_ ? buffer_.Size() : kFirstCapacity;
    while (size < wanted) size *= 2;
    other = TakeBuffer(size);
    if (!other) return failure_ = "out of memory", false;
  }
  windowOffset_ = Position();
  if (left) std::memmove(other ? other.Bytes() : buffer_.Bytes(), cursor_, left);
  if (other) {
    if (isKept_) former_[formerCount_++ % kMostFormer] = std::move(buffer_);
    buffer_ = std::move(other);
    isKept_ = false;
  }
  window_ = cursor_ = buffer_.Bytes();
  limit_ = window_ + left;
  return true;
}

void BufferedSource::Refill(size_t wanted) {
  if (ended_) return;
  if (wanted > kLargestPeek || !Reserve(wanted)) {
    ended_ = true;
    return;
  }
  while (Remaining() < wanted) {
    const size_t got = ReadSome(buffer_.Bytes() + (buffer_.Size() - Behind()), Behind());
    if (got == 0) {
      // The end is kept: a terminal or a growing file must not go on after it was reported.
      ended_ = true;
      return;
    }
    limit_ += got;
  }
}

}  // namespace qxview
