// What lines say under keys that were asked for: "ip.source", "dns" (a protocol), "dns.question_record/dns.domain_name" (under
// a line of another key), names of other tools, and what is told of the packet itself ("frame.number").
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/line_facts.h"
#include "query/value.h"
#include "view/arena_tree.h"

namespace qxview {

// What is known of a packet without its lines. The texts are in the characters of lines.
class PacketTold {
 public:
  virtual uint64_t Number() const = 0;
  virtual int64_t Nanoseconds() const = 0;
  virtual uint32_t Length() const = 0;
  virtual uint32_t Captured() const = 0;
  virtual std::string_view Source() = 0;
  virtual std::string_view Destination() = 0;
  virtual std::string_view Protocol() = 0;
  virtual std::string_view Summary() = 0;
  // The same ends by their addresses, whatever their names, and the ports of TCP, UDP and SCTP; -1 for none.
  virtual std::string_view SourceAddress() { return Source(); }
  virtual std::string_view DestinationAddress() { return Destination(); }
  virtual int32_t SourcePort() { return -1; }
  virtual int32_t DestinationPort() { return -1; }

 protected:
  ~PacketTold() = default;
};

// Who compares values as they come, so that most lines need not be made.
class ValueTaker {
 public:
  // The values that were taken are of another packet from now on.
  virtual void ForgetTaken() = 0;
  // Whether the values of a key that was asked for may be taken, and whether one of them was.
  virtual bool MayTake(int32_t asked) const = 0;
  virtual bool CanTake(int32_t asked, const GivenValue& value) const = 0;
  virtual void Take(int32_t asked, const GivenValue& value) = 0;

 protected:
  ~ValueTaker() = default;
};

class KeyQuery {
 public:
  // The number under which the values of this key are collected; -1 when there is no such key, then *wrong says why unless it is
  // null.
  int32_t Ask(std::string_view name, std::string* wrong);
  // The same for every line, whatever its key.
  int32_t AskEveryLine();
  // Whether Ask takes the name.
  static bool IsKey(std::string_view name);

  // Of what was asked for the names that no line is known to have, but packets may tell ("http.methd"), where one that is known is
  // near: a sentence, or nothing.
  std::string DoubtfulKeys() const;

  // Whether anything that was asked for is a line's, not the packet's own.
  bool AsksForLines() const { return !parts_.empty() || everyLine_ >= 0; }
  // Whether the packet's protocols are asked for: whoever collects hands them over first, the outer ones first.
  bool AsksForProtocols() const { return asksForProtocols_; }
  void TakeProtocols(const std::vector<const char*>& protocols);
  // Whether anything is asked for that the packet's headers tell, and its summary in the list.
  bool AsksForHeaders() const { return asksForHeaders_; }
  bool AsksForSummary() const { return asksForSummary_; }
  // Whether lines of this protocol may be of what was asked for, all of them or those whose labels are; `first`: whether its
  // first line is.
  LinesWanted Wants(const char* protocol, bool* first) const;
  // Whether the line of this label may be, or of one that starts so.
  bool WantsLabel(const char* protocol, const char* label, bool isStart) const;
  bool AsksForEveryLine() const { return everyLine_ >= 0; }
  // Whether all lines that are asked about are of headers, up to TCP and UDP.
  bool AsksForHeadersAlone() const;
  // Another one for every set of keys, of whatever query.
  uint64_t Version() const { return version_; }

  // Values are handed over instead of collected wherever that can be.
  void HandValuesTo(ValueTaker* taker);
  // A packet is asked from here on.
  void Begin() {
    if (taker_) taker_->ForgetTaken();
  }
  // The keys of a label whose lines' values may be taken, as a mask; 0 when one of them may not.
  uint64_t KeysToTake(const char* protocol, const char* label) const;
  // False when the line is wanted all the same.
  bool Take(uint64_t keys, const GivenValue& value);

  // Collects the values of a packet whose lines are in the tree, with their facts; they are good until the tree changes.
  void Collect(const DecodeContext& context, const ArenaTree& tree, PacketTold& told);
  const std::vector<AskedValue>& ValuesOf(int32_t asked) const { return asked_[static_cast<size_t>(asked)].values; }
  int32_t Count() const { return static_cast<int32_t>(asked_.size()); }

 private:
  enum class Own : uint8_t {
    kNo, kNumber, kTime, kLength, kCaptured, kSource, kDestination, kProtocol, kSummary, kSourceAddress, kDestinationAddress,
    kSourcePort, kDestinationPort, kProtocols
  };
  // A key by its halves; without a label the whole protocol.
  struct Part {
    std::string protocol, label;
    bool isOnPath = false;   // with lines above or below it that are asked about, too
  };
  using Path = std::vector<uint32_t>;   // parts, the outermost line's first
  struct Asked {
    std::string name;
    std::vector<Path> paths;   // any of them
    std::vector<Own> own;
    std::vector<AskedValue> values;
    uint64_t parts = 0;      // of its paths
  };
  struct ProtocolParts {
    const char* protocol;   // as the facts point to it
    std::vector<uint32_t> parts;
  };

  static Own OwnOf(std::string_view key);
  bool AddPath(std::string_view path, Asked* asked, std::string* wrong);
  uint32_t PartOf(std::string_view protocol, std::string_view label);
  const std::vector<uint32_t>& PartsOf(const char* protocol);
  uint64_t Match(const DecodeContext& context, const LineFact& fact);
  void Note(const DecodeContext& context, const LineFact* fact, std::string_view line, uint64_t matched);
  void CollectOwn(PacketTold& told);

  std::vector<Part> parts_;
  std::vector<std::string> toldByPackets_;   // keys that are good because packets tell names of their protocol
  std::vector<Asked> asked_;
  std::vector<ProtocolParts> byProtocol_;
  std::vector<uint64_t> matched_;   // parts of the line at each depth and those it is under
  uint64_t wholeProtocols_ = 0;     // parts without a label
  uint64_t wholeSeen_ = 0;
  int32_t everyLine_ = -1;
  bool asksForProtocols_ = false, asksForHeaders_ = false, asksForSummary_ = false;
  uint64_t version_ = 0;
  ValueTaker* taker_ = nullptr;
  std::string protocols_;   // "eth:ip:udp:dns"
};

}  // namespace qxview
