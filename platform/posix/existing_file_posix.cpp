#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/existing_file.h"
#include "platform/platform.h"

namespace qxview {

ExistingFile::~ExistingFile() {
  if (file_ < 0) return;
  const int file = static_cast<int>(file_);
  struct stat now {};
  if (fstat(file, &now) == 0 && now.st_size > lengthBefore_ && ftruncate(file, lengthBefore_) != 0) {
    // Nothing more can be done here: the records in front of the end are whole.
  }
  close(file);
}

bool ExistingFile::Open(const std::string& path, std::string* why) {
  const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
  struct stat present {};
  if (file < 0 || fstat(file, &present) != 0) {
    *why = std::strerror(errno);
    if (file >= 0) close(file);
    return false;
  }
  if (!S_ISREG(present.st_mode)) {
    close(file);
    return *why = "not a regular file", false;
  }
  if (flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    close(file);
    return *why = "File is currently being used by Vantrell or another program.", false;
  }
  file_ = file;
  lengthBefore_ = present.st_size;
  return true;
}

bool ExistingFile::Keep(std::string* why) {
  const int file = static_cast<int>(file_);
  const bool good = fsync(file) == 0;
  if (!good) return *why = std::strerror(errno), false;
  close(file);
  file_ = -1;
  return true;
}

}  // namespace qxview
