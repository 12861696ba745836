// A capture as a packet view goes through it: any packet's tree and its row of the list, in any order, the packets that a
// filter lets through, and the next ones that hold what is looked for. Everything is done in steps, so that whoever shows it
// stays at hand.
#pragma once
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "browse/packed_numbers.h"
#include "browse/packet_history.h"
#include "browse/packet_index.h"
#include "host/text_output.h"
#include "query/filter.h"
#include "query/probe.h"

namespace qxview {

// A packet in the list. The texts are in the characters of lines.
struct PacketRow {
  uint64_t number = 0;
  int64_t nanoseconds = 0;
  uint32_t length = 0;
  std::string source, destination, protocol, summary;
  bool isKnown = false;   // made with what the packets before it teach
};

// What the program around adds: how rows are made, and what trees show beside the packet's bytes.
struct CaptureParts {
  HostOptions host;
  LibraryLoader loader;
  // The packet of the record, which the session has decoded, or is asked to read the headers of.
  std::function<std::shared_ptr<PacketTold>(Session& session, const QxHost* host, const FrameRecord* record, uint64_t number)> tell;
  // Null: nothing is added.
  std::function<const FrameRecord*(const FrameRecord* record, const CaptureFrame& frame)> addNotes;
};

class ViewedCapture {
 public:
  static std::unique_ptr<ViewedCapture> Open(const std::string& path, std::unique_ptr<CaptureInput> input, CaptureParts parts,
                                             std::string* message);
  ~ViewedCapture();

  // The same packets decoded in another way; false, with everything as it was, for options that do not hold.
  bool DecodeWith(const HostOptions& options, std::string* message);
  const HostOptions& Options() const { return parts_.host; }

  // Does a piece of what is to be done beside: reading on, learning, filtering. False when all is done for now.
  bool Work();
  const PacketIndex& Index() const { return index_; }
  PacketIndex& Index() { return index_; }
  uint64_t Known() const { return history_->Known(); }

  // Decodes the packet into the session of the tree. False when it cannot be read.
  bool Show(uint64_t number);
  uint64_t ShownNumber() const { return shown_; }
  // Whether what the packets in front teach was known.
  bool IsShownWhole() const { return shownWhole_; }
  Session& Tree() { return *tree_; }
  const FrameRecord* ShownRecord() const { return shownRecord_; }
  const StandaloneHost& Host() const { return *host_; }

  // Whether all that will be known of what the packets in front teach is known.
  bool IsKnown(uint64_t number) const { return number <= history_->Known() || !history_->IsWhole(); }
  // The packet's lines as the print mode writes them.
  bool PrintLines(uint64_t number, std::string* lines);

  bool ReadRow(uint64_t number, PacketRow* row);
  // When the packet was captured.
  bool ReadTime(uint64_t number, int64_t* nanoseconds);
  // Its bytes, as the tree's ranges count them; good until the next call.
  bool ReadBytes(uint64_t number, const uint8_t** bytes, int32_t* length);

  // What the packet's headers tell, with its record; null when it cannot be read. Good until the next call of anything here.
  const PacketState* ReadHeaders(uint64_t number, const FrameRecord** record);
  // The short names of its protocols, the outer ones first.
  bool ListProtocols(uint64_t number, std::vector<const char*>* protocols);

  // The filter: what it lets through comes with the work. An empty one lets everything through.
  bool SetFilter(const std::string& expression, FilterFault* fault);
  const std::string& FilterText() const { return filterText_; }
  bool IsFiltered() const { return filter_ != nullptr; }
  bool IsFilterDone() const { return !filter_ || asked_ >= index_.Count(); }
  // Packets that are shown, in their order: how many, which, and the place of the first one not before a number.
  uint64_t ShownCount() const { return filter_ ? passed_.Count() : index_.Count(); }
  uint64_t NumberAt(uint64_t place) const { return filter_ ? passed_.At(place) : place + 1; }
  uint64_t PlaceOf(uint64_t number) const;

  // Whether the packet answers a question of its own; its values stand in the question afterwards.
  bool Asks(KeyQuery& query, uint64_t number);

 private:
  ViewedCapture() = default;
  bool OpenSessions(const HostOptions& options, std::string* message);
  const FrameRecord* RecordOf(const CaptureFrame& frame, RecordBuilder& builder);
  template <typename Use>
  void WithAnswers(Session& session, uint64_t number, bool ofRow, const Use& use);

  CaptureParts parts_;
  PacketIndex index_;
  std::unique_ptr<PacketHistory> history_;
  std::shared_ptr<StandaloneHost> host_;
  std::unique_ptr<Session> tree_, rows_, print_;   // the last when something is first printed
  std::unique_ptr<TextOutput> printed_;
  std::unique_ptr<Probe> probe_;
  RecordBuilder builder_, shownBuilder_;
  std::vector<uint8_t> shownBytes_;
  const FrameRecord* shownRecord_ = nullptr;
  uint64_t shown_ = 0;
  bool shownWhole_ = false;
  std::string filterText_;
  std::unique_ptr<Filter> filter_;
  PackedNumbers passed_;
  uint64_t asked_ = 0;
  std::shared_ptr<PacketTold> askedTold_;   // whose texts the values of the last question are
};

}  // namespace qxview
