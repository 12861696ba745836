// A file without a name that is gone with the program: what is too much for memory, or comes once.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "files/byte_source.h"

namespace qxview {

class TemporaryFile {
 public:
  // In the user's folder for such files (TMPDIR); null with a reason.
  static std::shared_ptr<TemporaryFile> Create(std::string* reason);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  // False when not all of it was written; the file is as before then.
  bool Append(const void* bytes, size_t length);
  // How many bytes were read, fewer than asked for at the end.
  size_t ReadAt(uint64_t position, void* out, size_t length) const;
  uint64_t Size() const { return size_; }

 private:
  explicit TemporaryFile(int64_t file) : file_(file) {}
  int64_t file_;
  uint64_t size_ = 0;
};

// The bytes of the file from its start, as far as it goes when they are asked for.
std::unique_ptr<ByteSource> OpenTemporary(std::shared_ptr<TemporaryFile> file);

}  // namespace qxview
