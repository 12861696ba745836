// One pass over a capture: reads, selects and decodes packets, and reports what went wrong.
#pragma once
#include <functional>
#include <memory>
#include <string>

#include "app/options.h"
#include "app/output.h"
#include "app/packet_notes.h"
#include "app/progress.h"
#include "app/shown_packet.h"
#include "decoders/net/skimmed_frames.h"
#include "files/capture_reader.h"
#include "files/record_builder.h"
#include "host/key_log.h"
#include "host/session.h"
#include "query/filter.h"
#include "query/probe.h"

namespace qxview {

class BpfFilter;
class PacketWorkers;

// What the packet list says of a packet.
struct PacketListing {
  std::string source, destination, protocol, summary;
};

class PacketRun {
 public:
  // Opens the host and the capture, several ones as one run by time; false when that failed (the message is on standard
  // error, Status() says how, and OtherMayOpen() whether it was for the capture's sake).
  bool Open(const ReadingOptions& options, const std::vector<std::string>& files);
  bool OtherMayOpen() const { return optionsHold_; }
  PacketRun();
  ~PacketRun();

  // Given a selected packet, decoded in the session's mode, and what its decode returned; false stops the pass.
  using Handler = std::function<bool(const FrameRecord* record, const CaptureFrame& frame, int32_t handled)>;

  // Calls the handler for every selected packet. Others are passed for what later ones need of them. The result is the
  // exit status.
  int ForEach(const Handler& handle);

  using RecordHandler = std::function<bool(const FrameRecord* record, const CaptureFrame& frame)>;

  // The same for what writes to an Output, on several threads where that pays: the handler of a run is made for each of them, with
  // a run and an Output of its own, all of them by this thread. A handler does not end the pass but by an Output that failed.
  using Prepare = std::function<Handler(PacketRun& run, Output& out)>;
  int ForEachWritten(Output& out, const Prepare& prepare);
  // What a handler of ForEachWritten wants beside the packet's lines, or in place of them: told to its run while it is made.
  void ListPackets() { lists_ = true; }                      // what the packet list says
  void SummarizePackets();                                   // headers alone; the handler then calls SummarizePacket
  void AskPackets(KeyQuery* query) { query_ = query; }       // its values alone, which it holds when the handler is called
  void KeepPackets() { keeps_ = true; }                      // its record as it is, which nothing is decoded for
  const PacketListing& Listing() const { return listing_; }   // of the current packet

  // For PacketWorkers: a run that is handed its packets, for this thread (with this run's session) or a further one; null when
  // there is no memory.
  std::unique_ptr<PacketRun> MakeWorker(bool forThisThread);
  void TakePacket(const CaptureFrame& frame, const PacketTimes& times);
  const FrameRecord* BuildRecord(const CaptureFrame& frame) { return builder_->Build(frame); }
  const FrameRecord* RecordToShow(const CaptureFrame& frame);
  bool Make(const FrameRecord* record, const CaptureFrame& frame, int32_t* handled);
  bool MakesRows() const { return summarizes_ || query_; }   // of a packet, in place of its lines
  bool Summarizes() const { return summarizes_; }
  bool Keep(const CaptureFrame& frame, KeptBytes* kept) { return !notes_ && reader_->Keep(frame, kept); }

  // For a query's values, on this thread. `query` holds those of the packet when the handler is called.
  int ForEachAsked(KeyQuery& query, const RecordHandler& handle);

  // The same, with the short names of the packet's protocols, the outer ones first.
  using ProtocolsHandler =
      std::function<bool(const FrameRecord* record, const CaptureFrame& frame, const std::vector<const char*>& protocols)>;
  int ForEachProtocols(const ProtocolsHandler& handle);

  // The same without decoding: for commands that keep packets as they are.
  int ForEachRecord(const RecordHandler& handle);
  using FrameHandler = std::function<bool(const CaptureFrame& frame)>;
  int ForEachFrame(const FrameHandler& handle);

  // From now on what is written of a packet has its file in front of every line.
  void PrefixLines(Output* out) { prefixed_ = out; }

  Session& GetSession() { return *session_; }
  // Tells it when lines are missing in this session's tree because memory ran out, and makes it the run's status.
  void NoteShort(Session& session);
  StandaloneHost& Host() { return *host_; }
  // For what asks it for names when the run is over.
  std::shared_ptr<StandaloneHost> KeepHost() { return host_; }
  int Status() const { return status_; }
  const std::string& Name() const { return reader_->FileName(); }   // of the capture

  // For the handler: the times of the current packet and of those before it.
  const PacketTimes& Times() const { return times_; }

  // From now on the lines under a packet's first one tell what the capture does beside the packet's bytes, and its time in
  // this form.
  void ShowNotes(TimeForm form) { notes_ = std::make_unique<PacketNotes>(form); }

 private:
  bool OpenCaptures(const std::vector<std::string>& files);
  bool TakeSecrets();
  int Pass(const std::function<bool(const CaptureFrame&, bool selected)>& handle);
  const FrameRecord* RecordOf(const CaptureFrame& frame) {
    if (!record_) record_ = frame.record ? frame.record : builder_->Build(frame);
    return record_;
  }
  bool Matches(const CaptureFrame& frame);
  bool Answers(const CaptureFrame& frame);
  bool Ask(KeyQuery& query, const FrameRecord* record, uint64_t number);
  void PassBy(const CaptureFrame& frame);
  int32_t JobsThatPay() const;
  bool HandOn(PacketWorkers& workers, const CaptureFrame& frame);
  Skim SkimPacket(const CaptureFrame& frame);
  bool HandOnRow(PacketWorkers& workers, const CaptureFrame& frame);
  void PassAsked(const FrameRecord* record);
  void ReadListing(const FrameRecord* record);
  void TellLinkType(const CaptureFrame& frame);
  void NoteTime(int64_t nanoseconds, bool isFirst, bool selected);
  void TellEnd(ReadResult result);

  const ReadingOptions* options_ = nullptr;
  std::shared_ptr<StandaloneHost> host_;
  std::shared_ptr<Session> session_;
  std::unique_ptr<CaptureReader> reader_;
  std::unique_ptr<RecordBuilder> builder_;
  std::unique_ptr<KeyLog> keyLog_;   // of the captures themselves
  std::unique_ptr<BpfFilter> filter_;
  std::unique_ptr<Filter> where_;
  std::unique_ptr<ShownPacket> asked_;
  std::unique_ptr<Probe> probe_;
  const FrameRecord* record_ = nullptr;   // of the current packet, once it was built
  const FrameRecord* noted_ = nullptr;    // the same with what the capture tells of it
  bool wasDecoded_ = false;               // the current packet, to ask it
  Output* prefixed_ = nullptr;
  bool optionsHold_ = false;
  std::vector<uint16_t> toldLinkTypes_;
  int status_ = kDone;
  PacketTimes times_;
  int64_t lastShown_ = 0;
  bool hasShown_ = false;
  bool isShort_ = false;   // told
  std::unique_ptr<PacketNotes> notes_;
  bool lists_ = false, summarizes_ = false, keeps_ = false;
  KeyQuery* query_ = nullptr;
  PacketListing listing_;
  Progress progress_;
};

// A run for each capture that the options name, or with --merge one for all of them, opened; false ends the command. The
// result is the exit status.
int ForEachRun(const ReadingOptions& options, const std::function<bool(PacketRun& run)>& handle);

}  // namespace qxview
