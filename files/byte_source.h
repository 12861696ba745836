// Bytes of a capture in order, from a file, a pipe or a compressed stream.
//
// A source shows a window of its bytes: Peek makes the next ones contiguous, Skip moves on. The window is bounded, so
// memory does not grow with what is read. A pointer from Peek stays valid until the next Peek or Skip beyond the
// window.
#pragma once
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qxview {

// A buffer that all copies of this share, on whichever threads; it goes with the last of them.
class SharedBuffer {
 public:
  SharedBuffer() = default;
  explicit SharedBuffer(size_t size) noexcept;   // none where there is no memory
  SharedBuffer(const SharedBuffer& other) noexcept : block_(other.block_) {
    if (block_) block_->users.fetch_add(1, std::memory_order_relaxed);
  }
  SharedBuffer(SharedBuffer&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
  SharedBuffer& operator=(SharedBuffer other) noexcept { return std::swap(block_, other.block_), *this; }
  ~SharedBuffer();

  explicit operator bool() const { return block_ != nullptr; }
  bool operator==(const SharedBuffer& other) const { return block_ == other.block_; }
  uint8_t* Bytes() const { return block_ ? reinterpret_cast<uint8_t*>(block_ + 1) : nullptr; }
  size_t Size() const { return block_ ? block_->size : 0; }
  // Nobody else has it, nor looks at it any more.
  bool IsMine() const { return block_ && block_->users.load(std::memory_order_acquire) == 1; }

 private:
  struct alignas(64) Block {
    std::atomic<uint32_t> users;
    size_t size;
  };
  Block* block_ = nullptr;
};

// Buffers whose bytes stay as they are while these live.
using KeptBytes = std::vector<SharedBuffer>;

class ByteSource {
 public:
  static constexpr size_t kLargestPeek = 1u << 20;

  ByteSource() = default;
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;
  virtual ~ByteSource() = default;

  // The next `wanted` bytes (at most kLargestPeek), or null when fewer are left; Remaining() then tells how many.
  const uint8_t* Peek(size_t wanted) {
    if (Remaining() < wanted) Refill(wanted);
    return Remaining() >= wanted ? cursor_ : nullptr;
  }

  // Bytes of the window that are not yet consumed.
  size_t Remaining() const { return static_cast<size_t>(limit_ - cursor_); }

  // Moves on by `count` bytes; false when the data end before, which leaves the source at its end.
  bool Skip(uint64_t count);

  // Goes to this byte of the data, back or forth, also when their end was seen: a file that has grown meanwhile goes on. False
  // where the source cannot.
  virtual bool Seek(uint64_t) { return false; }

  // Keeps the buffer that bytes of the window stand in, unless it is the last of `kept` already. False where they are gone with the
  // next Peek all the same, or there is no memory.
  bool Keep(const uint8_t* bytes, size_t length, KeptBytes* kept) noexcept {
    return bytes >= window_ && length <= static_cast<size_t>(limit_ - bytes) && KeepWindow(kept);
  }

  // Offset of the next byte in the data that the source shows.
  uint64_t Position() const { return windowOffset_ + static_cast<uint64_t>(cursor_ - window_); }

  // Why the data ended; empty when that was their regular end.
  const std::string& Failure() const { return failure_; }

  // True when the user ended the data before their end: what is cut by that is not damaged.
  virtual bool IsInterrupted() const { return false; }

  // How far the underlying file is read and its size in bytes; size 0 when unknown (pipes).
  virtual uint64_t FilePosition() const { return Position(); }
  virtual uint64_t FileSize() const { return 0; }

  // True when Position counts bytes that do not stand in the file as they are.
  virtual bool IsCompressed() const { return false; }

 protected:
  // Makes at least `wanted` bytes from the cursor on contiguous, or as many as there are.
  virtual void Refill(size_t wanted) = 0;
  virtual bool KeepWindow(KeptBytes*) noexcept { return false; }

  const uint8_t* window_ = nullptr;  // first byte of the window,
  const uint8_t* cursor_ = nullptr;  // the next one to consume,
  const uint8_t* limit_ = nullptr;   // and the end
  uint64_t windowOffset_ = 0;        // offset of the first byte
  std::string failure_;
};

// A source that fills a buffer of its own, piece by piece.
class BufferedSource : public ByteSource {
 protected:
  void Refill(size_t wanted) override;
  bool KeepWindow(KeptBytes* kept) noexcept override;

  // For Seek: whether the byte stood in the window, which is at it now; if not, the window is empty and begins there.
  bool MoveWindow(uint64_t position);

  // Reads up to `size` bytes (at least 1 is asked for), waiting only while there are none; 0 at the end. A failure
  // sets failure_ and returns 0.
  virtual size_t ReadSome(uint8_t* out, size_t size) = 0;

 private:
  bool Reserve(size_t wanted);
  SharedBuffer TakeBuffer(size_t size);
  size_t Behind() const { return buffer_.Size() - static_cast<size_t>(limit_ - buffer_.Bytes()); }   // room

  SharedBuffer buffer_;
  bool isKept_ = false;   // somebody may have kept it: bytes are added behind the window alone
  static constexpr size_t kMostFormer = 32;
  std::array<SharedBuffer, kMostFormer> former_;   // that were kept, for another turn
  size_t formerCount_ = 0;                         // so far
  bool ended_ = false;
};

// The bytes of a file, or of standard input for "-", as they stand. Null with a reason when it cannot be opened.
std::unique_ptr<ByteSource> OpenFileSource(const char* path, std::string* reason);

}  // namespace qxview
