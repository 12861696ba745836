// What the packets in front of one teach about it. They are decoded once in their order, and the answers that each one's
// look-ups of state got are kept: with them a packet is shown the same whenever it is visited, without those before it.
//
// The answers are kept by the chunk of packets: the first of them in memory, the others in a temporary file.
#pragma once
#include <functional>
#include <memory>
#include <vector>

#include "browse/packet_index.h"
#include "files/record_builder.h"
#include "host/key_log.h"
#include "host/session.h"
#include "host/standalone_host.h"
#include "host/state_log.h"

namespace qxview {

// What is asked of a packet behind its decoding, so that the answers for that are kept, too: a row of the list.
using AskPacket = std::function<void(Session& session, const FrameRecord* record, uint64_t number)>;

class PacketHistory {
 public:
  // Null with what is wrong. The host lends names and settings.
  static std::unique_ptr<PacketHistory> Create(const HostOptions& options, const LibraryLoader& loader, AskPacket ask,
                                               std::string* message);

  // Decodes the next packets of the index, so many at most; false when there is none that it has and this has not.
  bool Advance(const PacketIndex& index, int32_t packets);
  // Packets up to this number are known.
  uint64_t Known() const { return known_; }
  // False when there was no room for more answers: packets behind stand alone.
  bool IsWhole() const { return whole_; }

  // The answers of a packet: where those of its tree begin in the log, and those of its row. Null when it is not known.
  struct Answers {
    const StateLog* log = nullptr;
    size_t tree = 0, row = 0;
  };
  Answers Find(uint64_t number);

 private:
  static constexpr size_t kChunk = 64;           // packets
  static constexpr size_t kMostInMemory = 24u << 20;
  struct Starts {
    uint32_t tree, row;
  };
  struct Loaded {
    uint64_t chunk = UINT64_MAX, used = 0;
    StateLog log;
    std::vector<Starts> starts;
  };
  PacketHistory() = default;
  bool Open(const PacketIndex& index);
  bool Learn(const CaptureFrame& frame);
  bool Keep();
  bool Read(uint64_t at, uint8_t* out, size_t length) const;

  std::shared_ptr<StandaloneHost> host_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<CaptureReader> reader_;
  std::unique_ptr<KeyLog> keyLog_;
  RecordBuilder builder_;
  AskPacket ask_;
  StateLog current_;                 // of the chunk that is being learnt
  std::vector<Starts> starts_;
  std::vector<uint64_t> chunks_;     // where each begins; one more: where the next one will
  std::vector<uint8_t> memory_;
  std::shared_ptr<TemporaryFile> file_;
  Loaded loaded_[4];
  uint64_t known_ = 0, uses_ = 0;
  bool whole_ = true;
};

}  // namespace qxview
