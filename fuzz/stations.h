// The stand-alone host with a session, as every reading command has them; and five of them that see the same frames, one a
// mode, whose lines must agree.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "fuzz/input.h"
#include "host/session.h"
#include "host/standalone_host.h"

namespace qxview::fuzz {

// How an input wants its frames decoded: a bit each of its first byte.
enum Wish : uint32_t {
  kModern = 1,          // with the settings of --modern
  kReassembly = 2,
  kKeys = 4,            // lines have keys and values
  kEveryMode = 8,       // print, save and find, too
  kRepaired = 0x10,     // checksums are made right
  kPrefixes = 0x20,     // payloads: every length
  kUnusual = 0x40,      // settings that few have: another type of service, EBCDIC, no detection, definitions
  kHeaders = 0x80,      // the list's headers are read behind each frame, too
};

// A host has forgotten what it learnt, and stands for the next station when this one is gone: making one takes longer than
// decoding a frame does.
struct Station {
  std::unique_ptr<StandaloneHost> host;
  std::unique_ptr<Session> session;
  uint32_t wishes;

  Station(uint32_t wishes, char mode);
  Station(Station&&) = default;
  ~Station();
};

class Stations {
 public:
  explicit Stations(uint32_t wishes);
  ~Stations();
  Stations(const Stations&) = delete;
  Stations& operator=(const Stations&) = delete;

  // What a frame must hold in every mode. `decode` decodes it: the record as Session::Decode does, or a payload alone.
  template <class Decode>
  void Each(int32_t capturedLength, const Decode& decode) {
    for (size_t i = 0; i < stations_.size(); ++i) {
      Begin(i);
      decode(stations_[i]);
      End(i, capturedLength);
    }
    Compare();
  }
  // The frame with the host's part behind it.
  void Decode(const FrameRecord* record, int32_t skipBytes = 0);

  Session& Shown() { return *stations_[0].session; }
  uint32_t Wishes() const { return wishes_; }
  int32_t Lines() const { return lines_; }   // of the last frame

 private:
  struct Outcome {
    int32_t linesLeft = 0;
    bool limitReached = false;
    uint32_t written = 0;   // lines, in print and save
    std::string text;
  };
  void Begin(size_t station);
  void End(size_t station, int32_t capturedLength);
  void Compare();
  void CheckRanges(int32_t capturedLength);

  uint32_t wishes_;
  int32_t lines_ = 0;
  std::vector<Station> stations_;
  std::unique_ptr<DecodeTree, void (*)(DecodeTree*)> kept_;   // what is shown where every mode is
  std::vector<Outcome> outcomes_;
  std::vector<std::unique_ptr<OutputFile>> files_;
};

// A record in an allocation of its exact size. The header's other members are the caller's to fill.
class ExactRecord {
 public:
  explicit ExactRecord(const Piece& frame, uint16_t tag = 0, const Piece& extension = {nullptr, 0});
  explicit ExactRecord(const FrameRecord* record);
  FrameRecord* get() const { return reinterpret_cast<FrameRecord*>(bytes_->data()); }
  FrameRecord* operator->() const { return get(); }
  uint8_t* Frame() const { return bytes_->data() + get()->dataOffset; }

 private:
  std::unique_ptr<ExactBytes> bytes_;
};

// Makes the checksums right of IPv4, TCP, UDP, ICMP and ICMPv6 in an Ethernet frame, or in a datagram (`etherHeader`
// false), as far as they are there.
void RepairChecksums(uint8_t* frame, size_t size, bool etherHeader);

}  // namespace qxview::fuzz
