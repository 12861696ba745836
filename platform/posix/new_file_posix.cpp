#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "platform/interruption.h"
#include "platform/new_file.h"
#include "platform/platform.h"

namespace qxview {

NewFile::~NewFile() {
  if (file_ >= 0) close(static_cast<int>(file_));
  if (temporary_.empty()) return;
  unlink(temporary_.c_str());
  RemoveOnSignal("");
}

bool NewFile::Create(const std::string& path, std::string* message) {
  path_ = path;
  char resolved[PATH_MAX];
  if (realpath(path.c_str(), resolved)) path_ = resolved;   // a link keeps pointing to the file that is replaced
  struct stat present {};
  const bool there = stat(path_.c_str(), &present) == 0;
  if (there && S_ISDIR(present.st_mode)) return *message = path + ": is a directory", false;
  if (there && access(path_.c_str(), W_OK) != 0) return *message = path + ": " + std::strerror(errno), false;
  direct_ = there && !S_ISREG(present.st_mode);
  replaces_ = there && !direct_ && present.st_size > 0;
  if (direct_) {
    file_ = open(path_.c_str(), O_WRONLY | O_CLOEXEC);
  } else {
    temporary_ = path_ + ".XXXXXX";
    file_ = mkostemp(temporary_.data(), O_CLOEXEC);
    const mode_t mask = umask(0);
    umask(mask);
    if (file_ >= 0) fchmod(static_cast<int>(file_), there ? present.st_mode & 07777 : 0666 & ~mask);
  }
  if (file_ >= 0) return RemoveOnSignal(temporary_), true;
  *message = path + ": " + std::strerror(errno);
  temporary_.clear();
  return false;
}

OutputSink NewFile::Sink() const { return FileSink(file_); }

bool NewFile::Keep(std::string* message) {
  const int file = static_cast<int>(file_);
  bool good = direct_ || fsync(file) == 0;
  good = close(file) == 0 && good;
  file_ = -1;
  good = good && (direct_ || rename(temporary_.c_str(), path_.c_str()) == 0);
  if (!good) *message = path_ + ": " + std::strerror(errno);
  if (!good) return false;
  temporary_.clear();
  RemoveOnSignal("");
  return true;
}

}  // namespace qxview
