// Captured frames in order, from a capture file of any kind this module reads.
//
//    std::string message;
//    std::unique_ptr<CaptureReader> reader = OpenCapture(path, &message);
//    CaptureFrame frame;
//    while (reader && reader->Next(&frame) == ReadResult::kFrame) ...
//
// The kind of a file is told from its first bytes, never from its name; gzip compression is looked through. Memory is
// bounded, whatever the file's size and whatever its lengths claim. Nothing throws.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "core/frame_record.h"
#include "files/byte_source.h"

namespace qxview {

// One frame as the capture holds it.
struct CaptureFrame {
  uint64_t number;          // from 1, in the order of the file
  int64_t nanoseconds;      // since 1970-01-01T00:00:00Z; 0 where the file gives no time
  uint32_t capturedLength;  // bytes of the frame that the file holds
  uint32_t wireLength;      // bytes the frame had on the wire, as the file says: not bound to be the larger one
  const uint8_t* data;      // the captured bytes, valid until the next call of the reader
  uint32_t dataLength;      // how many of them stand at `data`: all, but for frames of about a megabyte and more
  uint16_t linkType;        // LINKTYPE number; those that differ between systems are brought to one
  uint32_t interfaceIndex;  // pcapng: the interface's place in its section; 0 elsewhere
  LinkDirection direction;
  uint32_t receiveErrors;       // ReceiveError bits
  const FrameRecord* record;   // capture buffer files: the frame's record as it stands; null elsewhere
  uint8_t checkSequenceLength;  // bytes of check sequence that wireLength counts at the frame's end: 0 to 4
};

enum class ReadResult {
  kFrame,    // the frame is filled in
  kEnd,      // the file ends as it should
  kDamaged,  // it cannot be read further; Message() says why and where
};

class CaptureReader {
 public:
  CaptureReader(std::unique_ptr<ByteSource> source, const char* fileName);
  CaptureReader(const CaptureReader&) = delete;
  CaptureReader& operator=(const CaptureReader&) = delete;
  virtual ~CaptureReader() = default;

  // Reads the next frame. After kEnd or kDamaged every further call gives the same answer.
  ReadResult Next(CaptureFrame* frame) noexcept;

  // One line without a line end that names the file, the packet and the byte; empty while nothing is wrong.
  const std::string& Message() const { return message_; }

  // How much of the file is read, 0 to 100; -1 when its size is not known.
  int Percent() const;

  // The same in bytes of the file, and its size; 0 where that is not known.
  uint64_t FilePosition() const { return source_->FilePosition(); }
  uint64_t FileSize() const { return source_->FileSize(); }

 protected:
  // Reads one frame; the base numbers it.
  virtual ReadResult ReadFrame(CaptureFrame* frame) = 0;

  // Composes the message for damage in the structure that starts at byte `position` and returns kDamaged.
  [[gnu::format(printf, 3, 4)]] ReadResult Damaged(uint64_t position, const char* format, ...);

  // Damaged for data that end inside `what`, or that could not be read on.
  ReadResult CutShort(uint64_t position, const char* what);

  std::unique_ptr<ByteSource> source_;

 private:
  std::string fileName_;
  std::string message_;
  uint64_t frames_ = 0;
  ReadResult last_ = ReadResult::kFrame;
};

// Opens a capture file, or standard input for "-". Null with a one-line message that names the file when it cannot be
// opened or is of no kind that is known here.
std::unique_ptr<CaptureReader> OpenCapture(const char* path, std::string* message) noexcept;

// The same for a source that is open already; `name` stands for it in messages.
std::unique_ptr<CaptureReader> OpenCapture(std::unique_ptr<ByteSource> source, const char* name,
                                           std::string* message) noexcept;

// The published name of a LINKTYPE number ("LINKTYPE_ETHERNET"); "unknown" for one without.
const char* LinkTypeName(uint16_t linkType);

}  // namespace qxview
