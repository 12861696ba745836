// One pass over a capture: reads, selects and decodes packets, and reports what went wrong.
#pragma once
#include <functional>
#include <memory>
#include <string>

#include "app/options.h"
#include "app/progress.h"
#include "files/capture_reader.h"
#include "files/record_builder.h"
#include "host/session.h"

namespace qxview {

class BpfFilter;

class PacketRun {
 public:
  // Opens the host and the capture; false when that failed (the message is on standard error, Status() says how).
  bool Open(const ReadingOptions& options);
  PacketRun();
  ~PacketRun();

  // Given a selected packet, decoded in the session's mode, and what its decode returned; false stops the pass.
  using Handler = std::function<bool(const FrameRecord* record, const CaptureFrame& frame, int32_t handled)>;

  // Calls the handler for every selected packet. Others are passed for what later ones need of them. The result is the
  // exit status.
  int ForEach(const Handler& handle);

  // The same without decoding: for commands that keep packets as they are.
  using RecordHandler = std::function<bool(const FrameRecord* record, const CaptureFrame& frame)>;
  int ForEachRecord(const RecordHandler& handle);

  Session& GetSession() { return *session_; }
  StandaloneHost& Host() { return *host_; }
  int Status() const { return status_; }

  // Times in nanoseconds, for the handler: of the capture's first packet, and of the one before the current packet (of
  // the first packet for itself), selected or not.
  int64_t FirstTime() const { return firstTime_; }
  int64_t TimeBefore() const { return timeBefore_; }

 private:
  int Pass(const std::function<bool(const FrameRecord*, const CaptureFrame&, bool selected)>& handle);
  bool Matches(const CaptureFrame& frame);
  void TellLinkType(uint16_t linkType);
  void NoteTime(int64_t nanoseconds, bool isFirst);
  void TellEnd(ReadResult result);

  const ReadingOptions* options_ = nullptr;
  std::unique_ptr<StandaloneHost> host_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<CaptureReader> reader_;
  std::unique_ptr<RecordBuilder> builder_;
  std::unique_ptr<BpfFilter> filter_;
  std::vector<uint8_t> capturedBytes_;   // of a record, as they were captured
  std::vector<uint16_t> toldLinkTypes_;
  int status_ = kDone;
  int64_t firstTime_ = 0, timeBefore_ = 0, timeNow_ = 0;
  Progress progress_;
};

}  // namespace qxview
