// Buffered output of the print and save modes. The bytes go to a sink of the platform; every write is checked.
#pragma once
#include <cstdint>

namespace qxview {

// Where the bytes go. Each function gives 1 for success.
struct OutputSink {
  void* handle;
  int32_t (*write)(void* handle, const char* bytes, int32_t length);
  int32_t (*moveBack)(void* handle, int64_t bytes);   // the write position back, and the file ends there
  int64_t descriptor;   // what user decoder libraries are given as the file
};

constexpr int32_t kOutputSize = 65536;

struct OutputFile {
  OutputSink sink;
  bool failed;        // a write did not succeed; nothing is written after it
  int32_t used;
  char* buffer;   // of kOutputSize: own, unless the sink keeps a full one and sets another
  char own[kOutputSize];
};

void OpenOutput(OutputFile* file, const OutputSink& sink);
void WriteOutput(OutputFile* file, const char* bytes, int32_t length);
void FlushOutput(OutputFile* file);

// Takes the last `bytes` bytes back.
void MoveOutputBack(OutputFile* file, int64_t bytes);

}  // namespace qxview
