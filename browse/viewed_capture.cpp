#include "browse/viewed_capture.h"

#include <algorithm>

#include "core/line_facts.h"

namespace qxview {

std::unique_ptr<ViewedCapture> ViewedCapture::Open(const std::string& path, std::unique_ptr<CaptureInput> input,
                                                   CaptureParts parts, std::string* message) {
  std::unique_ptr<ViewedCapture> capture(new ViewedCapture);
  capture->parts_ = std::move(parts);
  if (!capture->OpenSessions(capture->parts_.host, message)) return nullptr;
  if (!capture->index_.Open(path, std::move(input), message)) return nullptr;
  return capture;
}

ViewedCapture::~ViewedCapture() = default;

bool ViewedCapture::OpenSessions(const HostOptions& options, std::string* message) {
  bool fileFault = false;
  std::shared_ptr<StandaloneHost> host = StandaloneHost::Create(options, message, &fileFault);
  if (!host) return false;
  const auto ask = [this](Session& session, const FrameRecord* record, uint64_t number) {
    parts_.tell(session, host_->Record(), record, number)->Summary();
  };
  std::unique_ptr<PacketHistory> history = PacketHistory::Create(options, parts_.loader, ask, message);
  std::unique_ptr<Session> tree = Session::Create(host->Record(), parts_.loader);
  std::unique_ptr<Session> rows = Session::Create(host->Record(), parts_.loader);
  if (!history) return false;
  if (!tree || !rows || !KeepFacts(&tree->Context(), true)) return *message = "no memory for a view", false;
  probe_ = nullptr;
  history_ = std::move(history);
  tree_ = std::move(tree);
  rows_ = std::move(rows);
  print_ = nullptr;
  host_ = std::move(host);
  host_->Attach(tree_.get());
  probe_ = std::make_unique<Probe>(*rows_);
  shown_ = 0;
  return true;
}

bool ViewedCapture::DecodeWith(const HostOptions& options, std::string* message) {
  const uint64_t shown = shown_;
  if (!OpenSessions(options, message)) return false;
  parts_.host = options;
  passed_.Clear();
  asked_ = 0;
  if (shown) Show(shown);
  return true;
}

bool ViewedCapture::Work() {
  constexpr int32_t kIndexed = 4096, kLearnt = 64;   // some milliseconds each
  bool did = index_.Advance(kIndexed);
  did |= history_->Advance(index_, kLearnt);
  for (int32_t i = 0; filter_ && i < kLearnt && asked_ < index_.Count(); ++i) {
    // What stands alone is asked, too, where no more will be known of it.
    if (asked_ >= history_->Known() && history_->IsWhole()) break;
    did = true;
    if (Asks(filter_->Keys(), ++asked_) && filter_->Holds()) passed_.Add(asked_);
  }
  return did;
}

const FrameRecord* ViewedCapture::RecordOf(const CaptureFrame& frame, RecordBuilder& builder) {
  return frame.record ? frame.record : builder.Build(frame);
}

// A packet that nothing is known of stands alone: its look-ups find nothing.
template <typename Use>
void ViewedCapture::WithAnswers(Session& session, uint64_t number, bool ofRow, const Use& use) {
  static const StateLog kNothing;
  const PacketHistory::Answers answers = history_->Find(number);
  StateReplay replay(answers.log ? *answers.log : kNothing, session.GetEngine());
  replay.Seek(answers.log ? (ofRow ? answers.row : answers.tree) : 0);
  use();
}

bool ViewedCapture::Show(uint64_t number) {
  CaptureFrame frame;
  if (!index_.Fetch(number, &frame)) return false;
  const FrameRecord* record = RecordOf(frame, shownBuilder_);
  if (parts_.addNotes) record = parts_.addNotes(record, frame);
  const auto* bytes = reinterpret_cast<const uint8_t*>(record);
  const size_t length = static_cast<size_t>(record->dataOffset) + record->capturedLength;
  if (record->recordLength < length) return false;
  shownBytes_.assign(bytes, bytes + record->recordLength);   // the lines' bytes stay while other packets are read
  shownRecord_ = reinterpret_cast<const FrameRecord*>(shownBytes_.data());
  shown_ = number;
  shownWhole_ = number <= history_->Known();
  WithAnswers(*tree_, number, false, [&] { tree_->Decode(shownRecord_); });
  return true;
}

bool ViewedCapture::PrintLines(uint64_t number, std::string* lines) {
  CaptureFrame frame;
  if (!index_.Fetch(number, &frame)) return false;
  if (!print_) {
    print_ = Session::Create(host_->Record(), parts_.loader);
    if (!print_) return false;
    printed_ = std::make_unique<TextOutput>();
    print_->SetOutput(kPrintMode, printed_->File());
  }
  const FrameRecord* record = RecordOf(frame, builder_);
  if (parts_.addNotes) record = parts_.addNotes(record, frame);
  WithAnswers(*print_, number, false, [&] { print_->Decode(record); });
  *lines = printed_->Take();
  return true;
}

bool ViewedCapture::ReadRow(uint64_t number, PacketRow* row) {
  CaptureFrame frame;
  if (!index_.Fetch(number, &frame)) return false;
  const FrameRecord* record = RecordOf(frame, builder_);
  row->isKnown = number <= history_->Known();
  WithAnswers(*rows_, number, true, [&] {
    const std::shared_ptr<PacketTold> told = parts_.tell(*rows_, host_->Record(), record, number);
    row->number = number;
    row->nanoseconds = told->Nanoseconds();
    row->length = told->Length();
    row->source = told->Source();
    row->destination = told->Destination();
    row->protocol = told->Protocol();
    row->summary = told->Summary();
  });
  return true;
}

bool ViewedCapture::ReadTime(uint64_t number, int64_t* nanoseconds) {
  CaptureFrame frame;
  if (!index_.Fetch(number, &frame)) return false;
  *nanoseconds = frame.nanoseconds;
  return true;
}

bool ViewedCapture::ReadBytes(uint64_t number, const uint8_t** bytes, int32_t* length) {
  CaptureFrame frame;
  if (!index_.Fetch(number, &frame)) return false;
  const FrameRecord* record = RecordOf(frame, builder_);
  *bytes = FrameData(record);
  *length = record->capturedLength;
  return true;
}

const PacketState* ViewedCapture::ReadHeaders(uint64_t number, const FrameRecord** record) {
  CaptureFrame frame;
  if (!index_.Fetch(number, &frame)) return nullptr;
  *record = RecordOf(frame, builder_);
  WithAnswers(*rows_, number, true, [&] { rows_->ReadHeaders(*record); });
  return &rows_->Context().packet;
}

bool ViewedCapture::ListProtocols(uint64_t number, std::vector<const char*>* protocols) {
  CaptureFrame frame;
  if (!index_.Fetch(number, &frame)) return false;
  const FrameRecord* record = RecordOf(frame, builder_);
  bool good = false;
  WithAnswers(*rows_, number, false, [&] { good = probe_->ListProtocols(record, protocols); });
  return good;
}

bool ViewedCapture::Asks(KeyQuery& query, uint64_t number) {
  CaptureFrame frame;
  if (!index_.Fetch(number, &frame)) return false;
  const FrameRecord* record = RecordOf(frame, builder_);
  bool good = false;
  WithAnswers(*rows_, number, !query.AsksForLines() && !query.AsksForProtocols(), [&] {
    askedTold_ = parts_.tell(*rows_, host_->Record(), record, number);
    good = probe_->Ask(query, record, *askedTold_);
  });
  return good;
}

bool ViewedCapture::SetFilter(const std::string& expression, FilterFault* fault) {
  std::unique_ptr<Filter> filter;
  if (!expression.empty() && !(filter = Filter::Parse(expression, fault))) return false;
  filter_ = std::move(filter);
  filterText_ = expression;
  passed_.Clear();
  asked_ = 0;
  return true;
}

uint64_t ViewedCapture::PlaceOf(uint64_t number) const {
  if (!filter_) return number ? number - 1 : 0;
  return passed_.PlaceOf(number);
}

}  // namespace qxview
