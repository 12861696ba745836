// Writes captured frames to capture files: pcap and pcapng, which other programs read, and capture buffer files.
//
// pcapng keeps what a capture tells: interfaces with their options, comments and every other option of packets, times to
// the nanosecond. pcap keeps times, lengths and bytes of frames of one link type; what it cannot hold ends the writing
// with a message that says so, but for comments, which are counted.
#pragma once
#include <memory>
#include <string>

#include "core/output_file.h"
#include "files/capture_reader.h"

namespace qxview {

class PacketWriter {
 public:
  explicit PacketWriter(const OutputSink& sink);
  virtual ~PacketWriter() = default;

  // The frames that follow are those of another capture.
  void BeginCapture() { ++captures_; }
  // Writes what stands in front of frames like this one, whose bytes do not count: a file without frames is then one, too.
  virtual void Announce(const CaptureFrame& like) = 0;
  // Frames longer than `mostBytes` are cut to it. False when the frame cannot be written; Message() is empty when that
  // is the output's failure.
  bool Add(const CaptureFrame& frame, uint32_t mostBytes);
  // False when the output failed.
  virtual bool Finish();
  // What was added is written: the file ends behind a frame.
  virtual void Flush() { FlushOutput(out_.get()); }

  const std::string& Message() const { return message_; }
  uint64_t Written() const { return written_; }
  uint64_t LostComments() const { return lostComments_; }

 protected:
  virtual bool Put(const CaptureFrame& frame, uint32_t captured) = 0;
  uint32_t Captures() const { return captures_; }
  bool Refuse(const CaptureFrame& frame, const std::string& why);
  void PutBytes(const void* bytes, size_t length) {
    WriteOutput(out_.get(), static_cast<const char*>(bytes), static_cast<int32_t>(length));
  }

  uint64_t lostComments_ = 0;

 private:
  std::unique_ptr<OutputFile> out_;
  std::string message_;
  uint64_t written_ = 0;
  uint32_t captures_ = 0;
};

std::unique_ptr<PacketWriter> MakePcapWriter(const OutputSink& sink);

// A section of a capture becomes a section of the file; with `oneSection` all captures share one, as packets of several
// that are merged by time do.
std::unique_ptr<PacketWriter> MakePcapngWriter(const OutputSink& sink, bool oneSection);

// A new capture buffer file. `localTime`: of the save, in asctime's layout.
std::unique_ptr<PacketWriter> MakeCaptureBufferFileWriter(const OutputSink& sink, const char* localTime);

}  // namespace qxview
