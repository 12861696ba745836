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
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/frame_record.h"
#include "files/byte_source.h"

namespace qxview {

// What stands in a pcapng block behind its fixed part: options in the byte order of their section.
struct FileOptions {
  const uint8_t* at = nullptr;
  uint32_t length = 0;
  bool swapped = false;   // the order is not this machine's
};

// What a capture tells of an interface. Good until the reader is asked for its next frame.
struct CaptureInterface {
  uint32_t section;      // counts the sections of a pcapng file; 0 elsewhere
  uint32_t snapLength;   // 0: no limit, or none told
  uint8_t checkSequenceLength;
  uint8_t timeDigits;    // 6: its times are whole microseconds; 9
  FileOptions options;
  FileOptions sectionOptions;
};

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
  const CaptureInterface* interface;   // null for capture buffer files
  FileOptions options;          // pcapng: of the packet
  uint32_t capture;             // captures that are merged: which of them it comes from, from 0
  const char* file;             // the capture's name
};

// Secrets that a capture holds for what is encrypted in it, in pieces: their kind (kKeyLogSecrets), and whether the block
// ends with the piece.
using SecretsHandler = std::function<void(uint32_t kind, const uint8_t* piece, size_t length, bool isLast)>;
constexpr uint32_t kKeyLogSecrets = 0x544C534B;   // a key log of TLS

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

  // Keeps the bytes of the frame that was read last as they are while `kept` lives; false where that cannot be.
  virtual bool Keep(const CaptureFrame& frame, KeptBytes* kept) noexcept {
    return !frame.record && source_ && source_->Keep(frame.data, frame.dataLength, kept);
  }

  // Where the frame begins that was read last, or that could not be read.
  uint64_t FramePosition() const { return framePosition_; }

  // The next frame is the one that begins at this byte, which was FramePosition() before, and has this number; also behind the
  // end and damage, which are tried again. False where the source cannot go there.
  bool Seek(uint64_t position, uint64_t number);

  // From now on what later frames need of the structures between the frames is kept, for Seek.
  virtual void KeepForSeek() {}

  const std::string& FileName() const { return fileName_; }

  // Who is given the secrets that stand between the frames.
  virtual void HandSecretsTo(const SecretsHandler& handler) { secrets_ = handler; }

  // One line without a line end that names the file, the packet and the byte; empty while nothing is wrong.
  const std::string& Message() const { return message_; }

  // How much of the file is read, 0 to 100; -1 when its size is not known.
  int Percent() const;

  // The same in bytes of the file, and its size; 0 where that is not known.
  virtual uint64_t FilePosition() const { return source_->FilePosition(); }
  virtual uint64_t FileSize() const { return source_->FileSize(); }

 protected:
  // Whether the user ended the input: what is cut by that is not damaged.
  virtual bool IsInterrupted() const { return source_->IsInterrupted(); }

  // Reads one frame; the base numbers it.
  virtual ReadResult ReadFrame(CaptureFrame* frame) = 0;

  // The source was moved to where a frame begins; false when that frame's section is not known.
  virtual bool BeginAt(uint64_t) { return true; }

  // Composes the message for damage in the structure that starts at byte `position` and returns kDamaged.
  [[gnu::format(printf, 3, 4)]] ReadResult Damaged(uint64_t position, const char* format, ...);

  // The same with a message that is composed already.
  ReadResult DamagedAs(std::string message);

  // Damaged for data that end inside `what`, or that could not be read on.
  ReadResult CutShort(uint64_t position, const char* what);

  std::unique_ptr<ByteSource> source_;
  SecretsHandler secrets_;
  uint64_t framePosition_ = 0;

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

// The bytes of a capture file as they are, or what they hold compressed; null with a reason.
std::unique_ptr<ByteSource> OpenInflated(std::unique_ptr<ByteSource> source, std::string* reason) noexcept;

// The frames of several captures as one, by time: of frames with one time that of the earlier capture comes first. What
// is wrong with one of them is told when the others have been read.
std::unique_ptr<CaptureReader> MergeCaptures(std::vector<std::unique_ptr<CaptureReader>> readers);

// The published name of a LINKTYPE number ("LINKTYPE_ETHERNET"); "unknown" for one without.
const char* LinkTypeName(uint16_t linkType);

}  // namespace qxview
