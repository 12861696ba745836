// A file that is added to at its end. Unless it is kept, it is cut back to the length it had. It is locked against other
// programs that add to it.
#pragma once
#include <string>

#include "files/capture_buffer.h"
#include "platform/platform.h"

namespace qxview {

class ExistingFile {
 public:
  ExistingFile() = default;
  ~ExistingFile();   // cuts back what was not kept
  ExistingFile(const ExistingFile&) = delete;
  ExistingFile& operator=(const ExistingFile&) = delete;

  // False with a reason. The file stands at its start.
  bool Open(const std::string& path, std::string* why);
  BufferFile File();
  // Writes through to the disk.
  bool Keep(std::string* why);

 private:
  int64_t file_ = -1;
  int64_t lengthBefore_ = 0;
};

inline BufferFile ExistingFile::File() {
  return {this,
          [](void* handle, uint8_t* out, int32_t length) {
            return ReadFileBytes(static_cast<ExistingFile*>(handle)->file_, out, length);
          },
          [](void* handle, const uint8_t* bytes, int32_t length) {
            const OutputSink sink = FileSink(static_cast<ExistingFile*>(handle)->file_);
            return sink.write(sink.handle, reinterpret_cast<const char*>(bytes), length);
          }};
}

}  // namespace qxview
