// Where the packets of a capture stand in its file: some two bytes a packet, made piece by piece while the first packets are looked
// at already. What the file gets meanwhile is read on; what comes once (standard input, compressed captures) is kept in a
// temporary file and read from there.
#pragma once
#include <memory>
#include <string>

#include "browse/packed_numbers.h"
#include "files/capture_reader.h"
#include "files/temporary_file.h"

namespace qxview {

// What a capture comes from that cannot be read twice. Gives what is at hand, without waiting.
class CaptureInput {
 public:
  virtual ~CaptureInput() = default;
  enum class Given { kSome, kNothingNow, kEnd };
  // Writes up to `size` bytes; *length tells how many.
  virtual Given Take(uint8_t* out, size_t size, size_t* length) = 0;
  virtual std::string Failure() const { return {}; }
};

class PacketIndex {
 public:
  // The file at `path`, or with an input what that gives under this name. False with a message that names it.
  bool Open(const std::string& path, std::unique_ptr<CaptureInput> input, std::string* message);

  // Reads on, so many packets at most; true when there may be more at once.
  bool Advance(int32_t packets);
  // Nothing more will come: false for a file that others may still write to.
  bool IsComplete() const { return ended_; }
  // Everything that is there now is in the index.
  bool IsCaughtUp() const { return caughtUp_; }

  uint64_t Count() const { return positions_.Count(); }
  // 0 to 100; -1 where nobody knows.
  int Percent() const;
  // What is wrong behind the last packet; empty for nothing.
  const std::string& Fault() const { return fault_; }
  const std::string& Name() const { return name_; }

  // The packet of this number, from 1: good until the next call of anything here. False when it cannot be read any more.
  bool Fetch(uint64_t number, CaptureFrame* frame);

  // A reader of its own over the same bytes, from the first packet on.
  std::unique_ptr<CaptureReader> OpenReader(std::string* message) const;

 private:
  bool TakeInput();
  bool Begin();
  bool GoOn();

  std::string path_, name_, fault_;
  std::unique_ptr<CaptureInput> input_;
  std::shared_ptr<TemporaryFile> kept_;
  std::unique_ptr<CaptureReader> reader_;
  PackedNumbers positions_;
  uint64_t readUntil_ = 0, lastFetched_ = 0;
  bool moved_ = false, ended_ = false, caughtUp_ = false;
};

}  // namespace qxview
