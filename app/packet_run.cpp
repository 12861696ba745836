#include "app/packet_run.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>

#include "app/packet_protocol.h"
#include "app/packet_workers.h"
#include "core/frame_entry.h"
#include "decoders/app/packet_summaries.h"
#include "host/packet_addresses.h"
#include "host/text.h"
#include "platform/bpf_filter.h"
#include "platform/interruption.h"
#include "platform/platform.h"
#include "platform/threads.h"

namespace qxview {

void Tell(const std::string& text) {
  EraseProgress();
  std::fprintf(stderr, "qxview: %s\n", (StandardErrorIsTerminal() ? EscapeControls(text) : text).c_str());
}

namespace {

bool HasEntryPoint(const LibraryLoader& loader, void* library) {
  for (const char* name : {"CustomDecodeFrame", "CustomDecodeFrameWireless", "CustomDecodeFrameWan", "CustomDecodeIP",
                           "CustomDecodeTCP", "CustomDecodeUDP", "ExternalDecode"}) {
    if (loader.find(library, name)) return true;
  }
  return false;
}

// The platform's loader; a user's library that it cannot load, or that does nothing, is told.
LibraryLoader TellingLibraryLoader() {
  LibraryLoader loader = PlatformLibraryLoader();
  loader.load = [](const char* path) {
    const LibraryLoader platform = PlatformLibraryLoader();
    void* library = platform.load(path);
    if (!library) {
      std::string reason = LibraryFailure();
      if (reason.starts_with(std::string(path) + ": ")) reason.erase(0, std::strlen(path) + 2);
      Tell(std::string(path) + ": this user library is not loaded: " + reason);
    } else if (!HasEntryPoint(platform, library)) {
      Tell(std::string(path) + ": this user library has none of the entry points that are called");
    }
    return library;
  };
  loader.loadCrypto = [] {
    void* library = PlatformLibraryLoader().loadCrypto();
    static std::atomic<bool> isTold{false};   // each thread asks
    if (!library && !isTold.exchange(true)) Tell("what is encrypted stays closed: OpenSSL 3's libcrypto cannot be loaded: " + LibraryFailure());
    return library;
  };
  return loader;
}

std::unique_ptr<Session> MakeSession(const StandaloneHost& host) {
  std::unique_ptr<Session> session = Session::Create(host.Record(), TellingLibraryLoader());
  if (session) session->GetView()->isWritten = true;
  return session;
}

}  // namespace

PacketRun::PacketRun() = default;
PacketRun::~PacketRun() = default;

bool PacketRun::Open(const ReadingOptions& options, const std::vector<std::string>& files) {
  options_ = &options;
  std::string message;
  bool fileFault = false;
  host_ = StandaloneHost::Create(options.host, &message, &fileFault);
  if (!host_) {
    status_ = fileFault ? kFileFault : kUsage;
    return Tell(message), false;
  }
  if (!options.filter.empty()) {
    filter_ = BpfFilter::Create(options.filter, &message);
    if (!filter_) return status_ = kUsage, Tell(message), false;
  }
  EndInputOnSignals();
  optionsHold_ = true;
  if (!OpenCaptures(files)) return false;
  session_ = MakeSession(*host_);
  if (!session_) return status_ = kFileFault, Tell("no memory for a view"), false;
  host_->Attach(session_.get());
  if (!TakeSecrets()) return false;
  asked_ = std::make_unique<ShownPacket>(*session_, host_->Record());
  probe_ = std::make_unique<Probe>(*session_);
  if (!options.where.empty()) {
    FilterFault fault;
    where_ = Filter::Parse(options.where, &fault);
    if (!where_) return status_ = kUsage, Tell("--where: " + fault.message), false;
  }
  builder_ = std::make_unique_for_overwrite<RecordBuilder>();
  return true;
}

// The secrets of what is encrypted: from the user's file, and from captures as they are read.
bool PacketRun::TakeSecrets() {
  const char* path = session_->GetEngine()->settings.tlsKeyLog;
  std::string message;
  const bool good = !path[0] || ReadKeyLog(session_->GetView(), path, &message);
  if (!message.empty()) Tell(message);
  if (!good) return status_ = kFileFault, false;
  keyLog_ = std::make_unique<KeyLog>(session_->GetView());
  reader_->HandSecretsTo([this](uint32_t kind, const uint8_t* piece, size_t length, bool isLast) {
    if (kind != kKeyLogSecrets) return;
    keyLog_->Take({reinterpret_cast<const char*>(piece), length});
    const std::string fault = isLast ? keyLog_->Finish() : "";
    if (isLast) *keyLog_ = KeyLog(session_->GetView());
    if (!fault.empty()) Tell(reader_->FileName() + ": in the secrets of the capture " + fault);
  });
  return true;
}

bool PacketRun::OpenCaptures(const std::vector<std::string>& files) {
  std::vector<std::unique_ptr<CaptureReader>> readers;
  for (const std::string& file : files) {
    std::string message;
    auto reader = options_->live ? options_->live->open(&message) : OpenCapture(file.c_str(), &message);
    if (reader) {
      readers.push_back(std::move(reader));
      continue;
    }
    status_ = kFileFault;
    if (!IsInputEnded()) Tell(message);
    if (!options_->keepGoing || IsInputEnded()) return false;
  }
  if (readers.empty()) return false;
  reader_ = readers.size() == 1 ? std::move(readers[0]) : MergeCaptures(std::move(readers));
  return true;
}

bool PacketRun::Matches(const CaptureFrame& frame) {
  if (!options_->selection.Holds(frame.number)) return false;
  if (!filter_) return true;
  std::string why;
  const bool matches = filter_->Matches(frame.linkType, frame.data, frame.dataLength, frame.wireLength, &why);
  if (!why.empty()) {
    status_ = kFileFault;
    Tell(std::string(frame.file) + ": --filter leaves out the packets of link type " + std::to_string(frame.linkType) +
         " (" + LinkTypeName(frame.linkType) + "): " + why);
  }
  return matches;
}

// Whether the packet is one that --where asks for.
bool PacketRun::Answers(const CaptureFrame& frame) {
  if (!where_) return true;
  return Ask(where_->Keys(), RecordOf(frame), frame.number) && where_->Holds();
}

bool PacketRun::Ask(KeyQuery& query, const FrameRecord* record, uint64_t number) {
  asked_->Take(record, number);
  wasDecoded_ |= query.AsksForLines() || query.AsksForProtocols();
  if (probe_->Ask(query, record, *asked_)) return true;
  status_ = kFileFault;
  return Tell("no memory for keys"), false;
}

// A packet that is not shown teaches what later ones need.
void PacketRun::PassBy(const CaptureFrame& frame) {
  if (!wasDecoded_) session_->Pass(RecordOf(frame));
}

// A link type without a decoder is told once: its packets are an empty decode.
void PacketRun::TellLinkType(const CaptureFrame& frame) {
  const uint16_t linkType = frame.linkType;
  if (std::find(toldLinkTypes_.begin(), toldLinkTypes_.end(), linkType) != toldLinkTypes_.end()) return;
  toldLinkTypes_.push_back(linkType);
  Tell(std::string(frame.file) + ": link type " + std::to_string(linkType) + " (" + LinkTypeName(linkType) +
       ") has no decoder; its packets are not decoded");
}

// The packet's record with what the capture tells of it, once it is selected.
const FrameRecord* PacketRun::RecordToShow(const CaptureFrame& frame) {
  if (noted_) return noted_;
  const FrameRecord* const record = RecordOf(frame);
  if (!query_ && !keeps_ && !FindFrameDecoder(record)) TellLinkType(frame);
  return noted_ = notes_ ? notes_->Add(record, frame, times_) : record;
}

void PacketRun::TellEnd(ReadResult result) {
  EraseProgress();
  if (result == ReadResult::kDamaged) {
    status_ = kFileFault;
    Tell(reader_->Message());
  }
  NoteShort(*session_);
  if (builder_->CutFrames() > 0) {
    const uint64_t cut = builder_->CutFrames();
    Tell(reader_->FileName() + ": " + (cut == 1 ? "1 packet is" : std::to_string(cut) + " packets are") +
         " longer than a record holds and " + (cut == 1 ? "was cut" : "were cut"));
  }
}

void PacketRun::NoteShort(Session& session) {
  if (!session.Tree().WasShort() || isShort_) return;
  isShort_ = true;
  status_ = kFileFault;
  Tell(reader_->FileName() + ": no memory for some lines of its packets; they are not there");
}

void PacketRun::NoteTime(int64_t nanoseconds, bool isFirst, bool selected) {
  if (isFirst) times_.first = times_.now = nanoseconds;
  times_.before = times_.now;
  times_.now = nanoseconds;
  if (!selected) return;
  times_.shownBefore = hasShown_ ? lastShown_ : nanoseconds;
  lastShown_ = nanoseconds;
  hasShown_ = true;
}

namespace {

// So many packets in, and whenever their number has doubled, as libraries are loaded when packets ask for them.
bool IsBehindStart(uint64_t packets) {
  constexpr uint64_t kFirst = 1024;
  return packets >= kFirst && (packets & (packets - 1)) == 0;
}

}  // namespace

int PacketRun::Pass(const std::function<bool(const CaptureFrame&, bool selected)>& handle) {
  CaptureFrame frame;
  ReadResult result = ReadResult::kEnd;
  uint64_t selectedPackets = 0, seen = 0;
  const uint64_t last = options_->selection.Last();
  while (selectedPackets < options_->count && (result = reader_->Next(&frame)) == ReadResult::kFrame) {
    if ((seen & 0xF) == 0xF) progress_.Show(reader_->FilePosition(), reader_->FileSize());
    if (frame.number > last) break;
    record_ = noted_ = nullptr;
    wasDecoded_ = false;
    const bool selected = Matches(frame) && Answers(frame);
    NoteTime(frame.nanoseconds, ++seen == 1, selected);
    if (IsBehindStart(seen)) GiveBackLibraryPages();
    selectedPackets += selected;
    if (selected && prefixed_) prefixed_->SetLinePrefix(frame.file);
    if (!handle(frame, selected)) break;
  }
  TellEnd(result);
  return status_;
}

int PacketRun::ForEach(const Handler& handle) {
  return Pass([&](const CaptureFrame& frame, bool selected) {
    bool goOn = true;
    const FrameRecord* record = RecordOf(frame);
    if (!selected) {
      PassBy(frame);
    } else {
      if (!FindFrameDecoder(record)) TellLinkType(frame);
      if (notes_) record = notes_->Add(record, frame, times_);
      goOn = handle(record, frame, session_->Decode(record));
    }
    host_->FinishPacket();
    return goOn;
  });
}

// What is handed on to other threads costs its pass on this one first; the first packets of a capture are not worth that, and
// user libraries may be made for one thread.
int32_t PacketRun::JobsThatPay() const {
  const bool hasLibraries = session_->GetEngine()->libraries.handles[0] != nullptr;
  if (options_->flushEachPacket || options_->live || hasLibraries) return 1;
  constexpr int32_t kMostUnasked = 8;
  return options_->jobs > 0 ? options_->jobs : std::min(CountProcessors(), kMostUnasked);
}

void PacketRun::SummarizePackets() {
  session_->DecodeHeadersOnly();
  summarizes_ = true;
}

void PacketRun::ReadListing(const FrameRecord* record) {
  PacketAddresses addresses;
  char summary[kSummarySize], scratch[kMediumNameScratch];
  session_->ReadHeaders(record);
  FormatPacketAddresses(session_->Context().packet, host_->Record(), &addresses);
  SummarizePacket(session_->GetView(), summary, sizeof summary);
  listing_ = {addresses.source, addresses.destination, ProtocolNameOf(session_->Context().packet, scratch), summary};
}

// Makes of a packet what its handler wants; false when there is no memory.
bool PacketRun::Make(const FrameRecord* record, const CaptureFrame& frame, int32_t* handled) {
  *handled = 0;
  if (keeps_) return true;
  if (query_) return Ask(*query_, record, frame.number);
  *handled = session_->Decode(record);
  if (lists_) ReadListing(record);
  return true;
}

// As a question does, without lines.
void PacketRun::PassAsked(const FrameRecord* record) {
  if (query_->AsksForProtocols()) session_->Pass(record);
  if (query_->AsksForLines()) session_->Pass(record);
  wasDecoded_ |= query_->AsksForLines() || query_->AsksForProtocols();
  if (query_->AsksForHeaders()) session_->ReadHeaders(record);
  if (query_->AsksForSummary()) PassSummary(session_->GetView());
}

// Makes the look-ups that reading the packet's headers would make and no more; Skim::kNot where they have to be read.
Skim PacketRun::SkimPacket(const CaptureFrame& frame) {
  constexpr uint16_t kEthernet = 1;
  constexpr uint32_t kMost = 60000;   // a record holds it
  const bool isWhole = !frame.record && frame.dataLength == frame.capturedLength && frame.dataLength <= kMost;
  if (notes_ || frame.linkType != kEthernet || !isWhole) return Skim::kNot;
  return SkimFrame(session_->GetView(), frame.data, static_cast<int32_t>(frame.dataLength));
}

// Hands on a packet of which its row of the list is wanted. Where the row takes a decoder that has to have its turn it is made
// here: its line costs hardly more.
bool PacketRun::HandOnRow(PacketWorkers& workers, const CaptureFrame& frame) {
  View* const view = session_->GetView();
  const Skim skimmed = SkimPacket(frame);
  if (skimmed == Skim::kNot) {
    workers.ForgetAnswers();
    const FrameRecord* const record = RecordToShow(frame);
    session_->Pass(record);
    if (SummaryIsDecoded(view)) {
      workers.TakeBack();
      return workers.HandleOwn(record, frame, 0);
    }
  }
  if (skimmed != Skim::kDone) PassSummary(view);
  return workers.EndPacket();
}

// Hands the packet on with what the look-ups gave that Make will ask for; they are those of Make in the same order.
bool PacketRun::HandOn(PacketWorkers& workers, const CaptureFrame& frame) {
  if (!workers.BeginPacket(frame)) return false;
  if (summarizes_) return HandOnRow(workers, frame);
  const FrameRecord* const record = RecordToShow(frame);
  if (query_) {
    PassAsked(record);
  } else if (!keeps_) {
    session_->Pass(record);
    if (lists_) session_->ReadHeaders(record);
    if (lists_) PassSummary(session_->GetView());
  }
  return workers.EndPacket();
}

int PacketRun::ForEachWritten(Output& out, const Prepare& prepare) {
  Handler own = prepare(*this, out);
  const int32_t jobs = JobsThatPay();
  // Bytes of packets before others are started; the first packet is this thread's in any case.
  const size_t pays = summarizes_ ? 4u << 20 : query_ ? 1u << 20 : 64u << 10, alone = options_->jobs > 0 ? 0 : pays;
  size_t shown = 0;
  std::unique_ptr<PacketWorkers> workers;
  bool tries = jobs > 1;
  const int status = Pass([&](const CaptureFrame& frame, bool selected) {
    bool goOn = true;
    const bool decodes = !keeps_ || where_;
    if (!selected) {
      if (decodes) PassBy(frame);
      return host_->FinishPacket(), true;
    }
    if (tries && shown > alone) {
      tries = false;
      workers = std::make_unique<PacketWorkers>(*this, out);
      if (!workers->Start(jobs, prepare)) {
        workers.reset();
        own = prepare(*this, out);   // one of them had this run's session
      }
      if (prefixed_) prefixed_->SetLinePrefix(frame.file);   // it may be another one now
      // Input that is waited for may be long in coming.
      if (workers) SetIdleAction([](void* with) { static_cast<PacketWorkers*>(with)->Drain(); }, workers.get());
    }
    if (workers && workers->HandsOn()) {
      goOn = HandOn(*workers, frame);
    } else {
      const FrameRecord* const record = RecordToShow(frame);
      int32_t handled;
      shown += record->recordLength;
      goOn = Make(record, frame, &handled) && (workers ? workers->HandleOwn(record, frame, handled) : own(record, frame, handled));
    }
    if (query_ || (keeps_ && where_)) PassBy(frame);
    host_->FinishPacket();
    return goOn;
  });
  if (workers) {
    workers->Finish();
    SetIdleAction([](void* output) { static_cast<Output*>(output)->Flush(); }, &out);
  }
  return status;
}

std::unique_ptr<PacketRun> PacketRun::MakeWorker(bool forThisThread) {
  auto worker = std::make_unique<PacketRun>();
  worker->options_ = options_;
  worker->host_ = host_;
  worker->session_ = forThisThread ? session_ : MakeSession(*host_);
  if (!worker->session_) return nullptr;
  worker->asked_ = std::make_unique<ShownPacket>(*worker->session_, host_->Record());
  worker->probe_ = std::make_unique<Probe>(*worker->session_);
  worker->builder_ = std::make_unique_for_overwrite<RecordBuilder>();
  return worker;
}

void PacketRun::TakePacket(const CaptureFrame& frame, const PacketTimes& times) {
  times_ = times;
  if (prefixed_) prefixed_->SetLinePrefix(frame.file);
}

int PacketRun::ForEachAsked(KeyQuery& query, const RecordHandler& handle) {
  return Pass([&](const CaptureFrame& frame, bool selected) {
    const FrameRecord* record = RecordOf(frame);
    const bool goOn = !selected || (Ask(query, record, frame.number) && handle(record, frame));
    PassBy(frame);
    host_->FinishPacket();
    return goOn;
  });
}

int PacketRun::ForEachProtocols(const ProtocolsHandler& handle) {
  std::vector<const char*> protocols;
  return Pass([&](const CaptureFrame& frame, bool selected) {
    bool goOn = true;
    if (selected) {
      wasDecoded_ = probe_->ListProtocols(RecordOf(frame), &protocols);
      goOn = handle(RecordOf(frame), frame, protocols);
    }
    PassBy(frame);
    host_->FinishPacket();
    return goOn;
  });
}

int PacketRun::ForEachRecord(const RecordHandler& handle) {
  return ForEachFrame([&](const CaptureFrame& frame) { return handle(RecordOf(frame), frame); });
}

int PacketRun::ForEachFrame(const FrameHandler& handle) {
  return Pass([&](const CaptureFrame& frame, bool selected) {
    if (where_) {
      PassBy(frame);
      host_->FinishPacket();
    }
    return !selected || handle(frame);
  });
}

namespace {

// With --keep-going, behind all captures: those that are not whole in what was written.
void TellUnread(const std::vector<std::string>& unread, size_t captures) {
  constexpr size_t kMostNamed = 20;
  if (unread.empty() || captures < 2) return;
  std::string told = std::to_string(unread.size()) + " of " + std::to_string(captures) + " captures could not be read to their end: ";
  for (size_t i = 0; i < std::min(unread.size(), kMostNamed); ++i) told.append(i > 0 ? ", " : "").append(unread[i]);
  if (unread.size() > kMostNamed) told += " and " + std::to_string(unread.size() - kMostNamed) + " more, told above";
  Tell(told);
}

}  // namespace

int ForEachRun(const ReadingOptions& options, const std::function<bool(PacketRun& run)>& handle) {
  int status = kDone;
  std::vector<std::string> unread;
  const size_t step = options.merge ? options.files.size() : 1;
  for (size_t i = 0; i < options.files.size(); i += step) {
    PacketRun run;
    const auto first = options.files.begin() + static_cast<ptrdiff_t>(i);
    const bool opened = run.Open(options, {first, first + static_cast<ptrdiff_t>(step)});
    const bool goOn = opened ? handle(run) : run.OtherMayOpen();
    status = std::max(status, run.Status());
    if (run.Status() == kFileFault && options.keepGoing && !options.merge) unread.push_back(*first);
    if (!goOn || IsInputEnded() || (run.Status() == kFileFault && !options.keepGoing)) break;
  }
  TellUnread(unread, options.files.size());
  return status;
}

}  // namespace qxview
