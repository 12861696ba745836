#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "files/temporary_file.h"

namespace qxview {

std::shared_ptr<TemporaryFile> TemporaryFile::Create(std::string* reason) {
  const char* wanted = std::getenv("TMPDIR");
  const std::string folder = wanted && wanted[0] ? wanted : "/tmp";
  std::string path = folder + "/qxview.XXXXXX";
  const int file = mkostemp(path.data(), O_CLOEXEC);
  if (file < 0) {
    *reason = folder + ": no temporary file: " + std::strerror(errno);
    return nullptr;
  }
  unlink(path.c_str());
  return std::shared_ptr<TemporaryFile>(new TemporaryFile(file));
}

TemporaryFile::~TemporaryFile() { close(static_cast<int>(file_)); }

bool TemporaryFile::Append(const void* bytes, size_t length) {
  const auto* from = static_cast<const char*>(bytes);
  size_t done = 0;
  while (done < length) {
    const ssize_t put = pwrite(static_cast<int>(file_), from + done, length - done, static_cast<off_t>(size_ + done));
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return false;
    done += static_cast<size_t>(put);
  }
  size_ += length;
  return true;
}

size_t TemporaryFile::ReadAt(uint64_t position, void* out, size_t length) const {
  if (position >= size_) return 0;
  const size_t most = size_ - position < length ? static_cast<size_t>(size_ - position) : length;
  size_t done = 0;
  while (done < most) {
    const ssize_t got = pread(static_cast<int>(file_), static_cast<char*>(out) + done, most - done,
                              static_cast<off_t>(position + done));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    done += static_cast<size_t>(got);
  }
  return done;
}

}  // namespace qxview
