#include "core/output_file.h"

#include <cstring>

namespace qxview {

void OpenOutput(OutputFile* file, const OutputSink& sink) {
  file->sink = sink;
  file->failed = false;
  file->used = 0;
  file->buffer = file->own;
}

void FlushOutput(OutputFile* file) {
  if (file->used > 0 && !file->failed && file->sink.write(file->sink.handle, file->buffer, file->used) != 1) {
    file->failed = true;
  }
  file->used = 0;
}

void WriteOutput(OutputFile* file, const char* bytes, int32_t length) {
  while (length > 0) {
    if (file->used == kOutputSize) FlushOutput(file);
    const int32_t piece = length < kOutputSize - file->used ? length : kOutputSize - file->used;
    std::memcpy(file->buffer + file->used, bytes, static_cast<size_t>(piece));
    file->used += piece;
    bytes += piece;
    length -= piece;
  }
}

void MoveOutputBack(OutputFile* file, int64_t bytes) {
  const int64_t held = bytes < file->used ? bytes : file->used;
  file->used -= static_cast<int32_t>(held);
  if (bytes > held && !file->failed && file->sink.moveBack(file->sink.handle, bytes - held) != 1) file->failed = true;
}

}  // namespace qxview
