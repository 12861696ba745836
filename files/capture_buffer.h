// Capture buffer files (extension BFR): the packets of a capture buffer on disk. The format: docs/capture-file.md.
#pragma once
#include <cstdint>
#include <memory>

#include "core/frame_record.h"

namespace qxview {

// What a save came to. Only code 1 is success; 2 and 4 are not given.
enum SaveResult : int32_t {
  kSaved = 1,
  kBufferWriteFailed = 3,      // a full buffer of records could not be written
  kLastWriteFailed = 5,        // the last buffer, or the closing
  kCannotOpenForWriting = 6,
  kCannotOpenForAppending = 7,
  kTooShortToAppend = 8,
  kOlderFormat = 9,
  kCannotAppend = 10,
  kNoPackets = 11,
  kCaptureBusy = 12,           // the capture window did not answer, or a packet was not there any more
  kHeaderWriteFailed = 13,
};

struct SaveMessage {
  const char* text;    // null for codes that show nothing; may hold one "%s", or for code 1 one "%lu"
  const char* title;   // null: the file's name
  bool isError;        // an error box, not a plain one
};
SaveMessage SaveResultMessage(int32_t code);

constexpr int32_t kBufferHeader = 36;
constexpr int32_t kVersionField = 32;
constexpr int32_t kLongestBufferName = 260;
inline constexpr char kBufferVersion[] = "VantrellPktBufferVersion=09.00";
constexpr int32_t kBufferMagic = 25;   // characters up to the version number

// An open file. Positions move as in any file; it stands at its start.
struct BufferFile {
  void* handle;
  int32_t (*read)(void* handle, uint8_t* out, int32_t length);          // bytes read; 0 at the end, -1 on failure
  int32_t (*write)(void* handle, const uint8_t* bytes, int32_t length);  // 1 when all were written
};

struct SaveRequest {
  BufferFile file;
  bool append;
  bool partial;                 // packets longer than partialBytes are cut to it
  uint16_t partialBytes;
  int32_t source;               // 0 decode window, 1 session decryption, 2 probe
  uint32_t headerByte;          // stored in the header when it is 254 or less
  const char* name;             // at most 260 characters are taken
  const uint8_t* optionalElement;   // ready-made, its length in its bytes 2 and 3; null for none
  const char* localTime;        // of the save in asctime's layout, its line feed included
  uint64_t firstNumber;         // of a new file's first packet; appended ones go on from the last number there
};

// Writes one save: Begin, Add for each packet, Finish. The first result that is not kSaved ends it; what was written
// stays as it is. Add gives kCaptureBusy for a record whose lengths contradict each other.
class CaptureBufferWriter {
 public:
  CaptureBufferWriter();
  ~CaptureBufferWriter();
  SaveResult Begin(const SaveRequest& request);
  SaveResult Add(const FrameRecord* record);
  SaveResult Finish();
  uint64_t Written() const { return written_; }

 private:
  SaveResult BeginAppending();
  bool WriteHeader();

  SaveRequest request_{};
  std::unique_ptr<uint8_t[]> buffer_;
  int32_t used_ = 0;
  uint64_t nextNumber_ = 1, written_ = 0;
};

}  // namespace qxview
