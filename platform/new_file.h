// A file that is written beside its place and renamed into it when it is whole: whatever happens before that, what was
// there stays as it was.
#pragma once
#include <string>

#include "core/output_file.h"

namespace qxview {

class NewFile {
 public:
  NewFile() = default;
  ~NewFile();   // what was not kept is removed
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  // False with a message that names the path and what is wrong.
  bool Create(const std::string& path, std::string* message);
  // Whether a file with something in it is lost when this one is kept.
  bool Replaces() const { return replaces_; }
  OutputSink Sink() const;
  int64_t File() const { return file_; }
  // Writes through to the disk and moves the file into its place.
  bool Keep(std::string* message);

 private:
  std::string path_, temporary_;
  int64_t file_ = -1;
  bool direct_ = false;   // a device or a pipe, which cannot be replaced
  bool replaces_ = false;
};

}  // namespace qxview
