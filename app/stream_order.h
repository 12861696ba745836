// Conversations out of packets: told apart, and the bytes of both directions put in order.
#pragma once
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "app/packet_ends.h"
#include "app/tcp_header.h"
#include "core/opened_records.h"

namespace qxview {

// Who is given what the two sides of a conversation sent. The first side is the one that was seen first.
class StreamTarget {
 public:
  virtual void Name(bool isSecond, std::string end) = 0;
  virtual void Put(bool isSecond, uint64_t packet, const uint8_t* bytes, size_t length) = 0;
  // Bytes that the capture does not have.
  virtual void PutGap(bool isSecond, uint64_t packet, uint64_t length) = 0;

 protected:
  ~StreamTarget() = default;
};

// One direction of a TCP connection: puts segments in order. What stands behind a gap waits until the gap is closed, the other
// end has acknowledged it, or too much waits.
class SegmentOrder {
 public:
  SegmentOrder(StreamTarget& target, bool isSecond) : target_(target), isSecond_(isSecond) {}

  // What a SYN says, unless the other end went on with an earlier one.
  void Start(uint32_t sequence) {
    if (isTakenUp_) return;
    next_ = sequence;
    started_ = true;
  }
  void Take(uint32_t sequence, const uint8_t* bytes, size_t length, size_t cut, uint64_t packet);
  // The other end has all in front of this.
  void Acknowledge(uint32_t sequence);
  void Finish();

 private:
  struct Segment {
    uint32_t sequence;
    std::string bytes;
    size_t cut;   // bytes behind them that were not captured
    uint64_t packet;
  };
  void Release();
  void SkipGap();

  StreamTarget& target_;
  const bool isSecond_;
  bool started_ = false;
  bool isTakenUp_ = false;   // it had data, or the other end acknowledged its start
  uint32_t next_ = 0;
  size_t held_ = 0;
  std::deque<Segment> waiting_;
};

// Tells the streams of a capture apart: they are counted from 0 in the order of their first packets. A connection that starts
// anew between the same ends is another one.
class Streams {
 public:
  // The stream's number; UINT64_MAX when there are too many to tell.
  uint64_t NumberOf(const PacketState& packet, const TcpHeader* tcp);

 private:
  struct Stream {
    uint64_t number = 0;
    uint32_t start = 0;
    bool hasStart = false;
  };
  std::map<std::string, Stream> streams_;
  uint64_t count_ = 0;
};

// Whether the packet is one of UDP; for one of TCP see ReadTcpHeader.
bool IsUdpPacket(const PacketState& packet);

// Which side of a conversation a packet is of. Of several conversations each end that is not the first one's is the other side.
class StreamSides {
 public:
  explicit StreamSides(StreamTarget& target) : target_(target) {}
  bool Of(const PacketState& packet, const QxHost* host);   // true: the second one's
  bool IsEmpty() const { return first_.empty(); }

 private:
  StreamTarget& target_;
  std::string first_;
};

// What records were opened to, a direction at a time by their numbers: segments that came in another order, or again, have told
// theirs so.
class FollowedRecords {
 public:
  explicit FollowedRecords(StreamTarget& target) : target_(target), sides_(target) {}

  // Of the packet that is decoded: its bytes are copied.
  void Note(const OpenedRecord& record);
  // The packet was of the conversation, or was not.
  void Take(const PacketState& packet, uint64_t number, const QxHost* host);
  void Drop() { noted_.clear(); }
  void Finish();
  bool IsEmpty() const { return sides_.IsEmpty(); }
  uint64_t Opened() const { return opened_; }
  uint64_t Failed() const { return failed_; }
  uint64_t WithoutSecrets() const { return withoutSecrets_; }

 private:
  struct Record {
    OpenedRecord::How how;
    bool isData;
    uint64_t keys, sequence;
    std::string bytes;
    uint64_t length, packet;
  };
  struct Way {
    bool started = false;
    uint64_t keys = 0, next = 0;
    std::map<uint64_t, Record> waiting;   // by their numbers under these keys
    size_t held = 0;
  };
  void TakeOne(bool isSecond, Record record);
  void Release(bool isSecond, bool all);

  StreamTarget& target_;
  StreamSides sides_;
  Way ways_[2];
  std::vector<Record> noted_;
  uint64_t opened_ = 0, failed_ = 0, withoutSecrets_ = 0;
};

// A conversation, packet by packet.
class FollowedStream {
 public:
  explicit FollowedStream(StreamTarget& target) : target_(target), sides_(target) {}

  // With a TCP header the bytes are put in order, without one they follow as they come.
  void Take(const PacketState& packet, const TcpHeader* tcp, uint64_t number, const QxHost* host);
  // The payload of a segment as it comes, where several conversations follow one another.
  void TakeAsItComes(const PacketState& packet, bool isTcp, uint64_t number, const QxHost* host);
  void Finish();
  bool IsEmpty() const { return sides_.IsEmpty(); }

 private:
  StreamTarget& target_;
  StreamSides sides_;
  SegmentOrder ways_[2] = {{target_, false}, {target_, true}};
};

}  // namespace qxview
