#include <new>

#include "files/temporary_file.h"

namespace qxview {
namespace {

class TemporarySource final : public BufferedSource {
 public:
  explicit TemporarySource(std::shared_ptr<TemporaryFile> file) : file_(std::move(file)) {}
  uint64_t FileSize() const override { return file_->Size(); }
  bool Seek(uint64_t position) override {
    if (!MoveWindow(position)) at_ = position;
    return true;
  }

 protected:
  size_t ReadSome(uint8_t* out, size_t size) override {
    const size_t got = file_->ReadAt(at_, out, size);
    at_ += got;
    return got;
  }

 private:
  std::shared_ptr<TemporaryFile> file_;
  uint64_t at_ = 0;   // behind the window
};

}  // namespace

std::unique_ptr<ByteSource> OpenTemporary(std::shared_ptr<TemporaryFile> file) {
  return std::unique_ptr<ByteSource>(new (std::nothrow) TemporarySource(std::move(file)));
}

}  // namespace qxview
