#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "platform/interruption.h"
#include "platform/new_file.h"
#include "platform/platform.h"

namespace qxview {
namespace {

constexpr int kMostLinks = 40;   // as the system follows
constexpr mode_t kPermissions = 0777;

// The file that a path leads to, which need not be there: a link keeps pointing to what is replaced.
std::string ResolveLinks(std::string path) {
  char target[PATH_MAX];
  if (realpath(path.c_str(), target)) return target;
  if (access(path.c_str(), F_OK) == 0) return path;   // an open file of a process without a name
  for (int step = 0; step < kMostLinks; ++step) {
    const ssize_t length = readlink(path.c_str(), target, sizeof target);
    if (length <= 0) break;
    const std::string to(target, static_cast<size_t>(length));
    path = to[0] == '/' ? to : path.substr(0, path.rfind('/') + 1) + to;
  }
  return path;
}

// PATH.XXXXXX, with as much of the name as leaves room for that.
std::string TemporaryName(const std::string& path) {
  constexpr size_t kMostBytes = NAME_MAX - 7;
  const size_t start = path.rfind('/') + 1;
  size_t end = std::min(path.size(), start + kMostBytes);
  while (end > start && end < path.size() && (path[end] & 0xC0) == 0x80) --end;   // not inside a character
  return path.substr(0, end) + ".XXXXXX";
}

// The owner and the group as far as they may be given away, and what they may do; not to run as them.
void TakeRights(int file, const struct stat& from) {
  if (fchown(file, from.st_uid, from.st_gid) != 0 && fchown(file, static_cast<uid_t>(-1), from.st_gid) != 0) {
    // Then the file is the user's, who may write to the one that it replaces.
  }
  fchmod(file, from.st_mode & kPermissions);
}

}  // namespace

NewFile::~NewFile() {
  if (file_ >= 0) close(static_cast<int>(file_));
  if (temporary_.empty()) return;
  unlink(temporary_.c_str());
  RemoveOnSignal("");
}

bool NewFile::Create(const std::string& path, std::string* message) {
  path_ = ResolveLinks(path);
  struct stat present {};
  const bool there = stat(path_.c_str(), &present) == 0;
  if (!there && errno != ENOENT) return *message = path + ": " + std::strerror(errno), false;
  if (there && S_ISDIR(present.st_mode)) return *message = path + ": is a directory", false;
  if (there && access(path_.c_str(), W_OK) != 0) return *message = path + ": " + std::strerror(errno), false;
  direct_ = there && !S_ISREG(present.st_mode);
  replaces_ = there && !direct_ && present.st_size > 0;
  if (direct_) {
    file_ = open(path_.c_str(), O_WRONLY | O_CLOEXEC);
  } else {
    temporary_ = TemporaryName(path_);
    file_ = mkostemp(temporary_.data(), O_CLOEXEC);
    const mode_t mask = umask(0);
    umask(mask);
    if (file_ >= 0 && there) TakeRights(static_cast<int>(file_), present);
    if (file_ >= 0 && !there) fchmod(static_cast<int>(file_), 0666 & ~mask);
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
