#include "app/capture_files.h"

#include <cstdio>
#include <filesystem>

#include "app/command_line.h"
#include "app/time_sums.h"
#include "host/time_text.h"
#include "platform/platform.h"

namespace qxview {
namespace {

constexpr size_t kMostPending = 256 << 10;
constexpr uint32_t kMostAround = 160;   // bytes that a file of any kind puts around a packet's
constexpr int64_t kPerSecond = 1000000000;

// "20261122183000" of the local clock.
std::string DateOf(int64_t seconds) {
  char text[40];
  FormatUtcTime((seconds + LocalOffset(seconds)) * kPerSecond, text, sizeof text);
  std::string digits;
  for (const char* at = text; *at && digits.size() < 14; ++at) {
    if (*at >= '0' && *at <= '9') digits += *at;
  }
  return digits;
}

}  // namespace

CaptureFiles::~CaptureFiles() {
  if (file_ >= 0 && !ToStandardOutput()) CloseOutputFile(file_);
}

// capture.pcapng: capture_00001_20261122183000.pcapng.
std::string CaptureFiles::NameOf(uint64_t number, int64_t seconds) const {
  const size_t folder = path_.find_last_of("/\\") + 1;
  size_t dot = path_.rfind('.');
  if (dot == path_.npos || dot <= folder) dot = path_.size();
  char middle[24];
  std::snprintf(middle, sizeof middle, "_%05llu_", static_cast<unsigned long long>(number));
  return path_.substr(0, dot) + middle + DateOf(seconds) + path_.substr(dot);
}

bool CaptureFiles::Fail(const std::string& message) {
  message_ = message;
  return false;
}

bool CaptureFiles::Open(int64_t seconds) {
  name_ = ring_.IsUsed() ? NameOf(++begun_, seconds) : path_;
  if (ToStandardOutput()) {
    file_ = StandardOutputFile();
  } else {
    file_ = CreateOutputFile(name_, &message_);
    if (file_ < 0) return false;
  }
  fileBytes_ = 0;
  fileIsEmpty_ = true;
  const OutputSink sink{this,
                        [](void* files, const char* bytes, int32_t length) {
                          static_cast<CaptureFiles*>(files)->pending_.append(bytes, static_cast<size_t>(length));
                          return int32_t{1};
                        },
                        [](void*, int64_t) { return int32_t{0}; }, -1};
  if (format_ == SaveFormat::kPcap) {
    writer_ = MakePcapWriter(sink);
  } else if (format_ == SaveFormat::kPcapng) {
    writer_ = MakePcapngWriter(sink, true);
  } else {
    char localTime[kAscTimeSize];
    FormatAscTime(seconds + LocalOffset(seconds), localTime);
    writer_ = MakeCaptureBufferFileWriter(sink, localTime);
  }
  writer_->BeginCapture();
  for (const CaptureFrame& kind : kinds_) writer_->Announce(kind);
  if (!Flush()) return false;
  if (!ring_.IsUsed()) return true;
  names_.push_back(name_);
  while (ring_.files > 0 && names_.size() > ring_.files) {
    RemoveFile(names_.front());   // one that somebody took away is gone as well
    names_.pop_front();
  }
  return true;
}

// What could not be written as a whole is taken back to the last packet before it.
bool CaptureFiles::WriteOut() {
  if (pending_.empty()) return true;
  const OutputSink sink = FileSink(file_);
  const bool good = sink.write(sink.handle, pending_.data(), static_cast<int32_t>(pending_.size())) == 1;
  if (good) fileBytes_ += pending_.size();
  pending_.clear();
  if (good) return true;
  const std::string why = WriteFailure();
  if (ToStandardOutput()) return Fail("standard output: " + why);
  std::error_code ignored;
  std::filesystem::resize_file(std::filesystem::path(std::u8string(name_.begin(), name_.end())), fileBytes_, ignored);
  return Fail(name_ + ": " + why);
}

bool CaptureFiles::Begin() { return Open(CurrentTime()); }

bool CaptureFiles::IsFull(const CaptureFrame& frame) const {
  if (!ring_.IsUsed() || fileIsEmpty_) return false;
  if (ring_.bytes > 0 && fileBytes_ + pending_.size() + frame.dataLength + kMostAround > ring_.bytes) return true;
  const int64_t since = TimeBetween(fileStart_, frame.nanoseconds);
  return ring_.seconds > 0 && since / kPerSecond >= static_cast<int64_t>(ring_.seconds);
}

bool CaptureFiles::Add(const CaptureFrame& frame) {
  // The size that a full file is told by is that of what the writer has let go.
  if (ring_.bytes > 0) writer_->Flush();
  if (IsFull(frame) && (!Close() || !Open(frame.nanoseconds / kPerSecond))) return false;
  if (fileIsEmpty_) fileStart_ = frame.nanoseconds;
  fileIsEmpty_ = false;
  if (!writer_->Add(frame, UINT32_MAX)) return Fail(writer_->Message());
  ++written_;
  if (pending_.size() < kMostPending) return true;
  return Flush();
}

bool CaptureFiles::Flush() {
  writer_->Flush();
  return WriteOut();
}

bool CaptureFiles::Close() {
  if (!Flush()) return false;
  const int64_t file = file_;
  file_ = -1;
  if (ToStandardOutput() || CloseOutputFile(file)) return true;
  return Fail(name_ + ": " + WriteFailure());
}

bool CaptureFiles::Finish() { return message_.empty() && (file_ < 0 || Close()); }

}  // namespace qxview
