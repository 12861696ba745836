// Where live packets are saved: one file, standard output, or a ring of files of which the oldest go. What stands in a file
// at any moment is whole packets.
#pragma once
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "app/save_format.h"
#include "files/packet_writer.h"

namespace qxview {

struct RingOptions {
  uint64_t bytes = 0;     // of a file; each is 0 where it bounds nothing
  uint64_t seconds = 0;   // of a file
  uint64_t files = 0;     // that are kept
  bool IsUsed() const { return bytes > 0 || seconds > 0; }
};

class CaptureFiles {
 public:
  // `path` is - for standard output; `kinds` are frames like those that will come.
  CaptureFiles(std::string path, SaveFormat format, const RingOptions& ring, const std::vector<CaptureFrame>& kinds)
      : path_(std::move(path)), format_(format), ring_(ring), kinds_(kinds) {}
  ~CaptureFiles();
  CaptureFiles(const CaptureFiles&) = delete;
  CaptureFiles& operator=(const CaptureFiles&) = delete;

  // Each false with Message() when something could not be written; what was written before stays, whole.
  bool Begin();
  bool Add(const CaptureFrame& frame);
  bool Flush();
  bool Finish();

  const std::string& Message() const { return message_; }
  uint64_t Written() const { return written_; }
  uint64_t FilesBegun() const { return begun_; }

 private:
  bool Open(int64_t seconds);
  bool Close();
  bool WriteOut();
  bool Fail(const std::string& message);
  bool IsFull(const CaptureFrame& frame) const;
  std::string NameOf(uint64_t number, int64_t seconds) const;
  bool ToStandardOutput() const { return path_ == "-"; }

  const std::string path_;
  const SaveFormat format_;
  const RingOptions ring_;
  const std::vector<CaptureFrame>& kinds_;
  std::unique_ptr<PacketWriter> writer_;
  std::string name_;            // of the file that is being written
  int64_t file_ = -1;
  uint64_t fileBytes_ = 0;      // written to it
  std::string pending_;         // whole packets, and of the last one what the writer has let go
  int64_t fileStart_ = 0;       // of its first packet, nanoseconds
  bool fileIsEmpty_ = true;
  uint64_t written_ = 0, begun_ = 0;
  std::deque<std::string> names_;   // of the ring, the oldest first
  std::string message_;
};

}  // namespace qxview
