#include "query/probe.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <new>
#include <string_view>

#include "core/dispatch.h"
#include "core/engine.h"

namespace qxview {
namespace {

// The way into the frame: each protocol stands deeper than the one before it.
struct ProtocolPath {
  const PacketState& packet;
  std::vector<const char*>& protocols;
  std::vector<int32_t> depths;
};

void NoteProtocol(void* with, const char* protocol) {
  auto& path = *static_cast<ProtocolPath*>(with);
  const int32_t depth = path.packet.nesting;
  const bool isDeeper = path.depths.empty() || depth > path.depths.back();
  bool isKnown = std::strcmp(protocol, kFrameProtocol) == 0 || depth < 0;
  for (const char* known : path.protocols) isKnown |= !isDeeper && std::strcmp(known, protocol) == 0;
  const bool isSame = !path.protocols.empty() && path.protocols.back() == protocol;
  constexpr size_t kMostProtocols = 64;
  if (isKnown || isSame || path.protocols.size() >= kMostProtocols) return;
  path.protocols.push_back(protocol);
  path.depths.push_back(depth);
}

// Whether nothing of this application has headers of packets in it: the common ones are named. What carries packets as a tunnel is
// decoded with the headers; samples of packets and the like are not.
bool IsPlain(const ReachedLayer& reached) {
  static constexpr std::string_view kPlain[] = {"dhcp", "dhcpv6", "dns",  "ftp",  "http", "https", "imap", "kerberos", "ldap",
                                                "llmnr", "mdns",  "nbns", "nbss", "ntp",  "pop",   "quic", "rtcp",     "rtp",
                                                "sip",   "smb",   "smb2", "smtp", "snmp", "ssdp",  "ssh",  "syslog",   "telnet",
                                                "tftp",  "tls",   "whois"};
  switch (reached.table) {
    case DispatchTable::kEthertype:
    case DispatchTable::kIpProtocol:
    case DispatchTable::kIpFragment: return true;
    case DispatchTable::kApplication: break;
    default: return false;
  }
  if (reached.key == kNoApplication) return true;
  const DecoderRow* row = FindBuiltinDecoder(reached.key);
  return row && std::find(std::begin(kPlain), std::end(kPlain), row->protocol->key) != std::end(kPlain);
}

LinesWanted ProtocolForQuery(const void* query, const char* protocol, bool* first) {
  return static_cast<const KeyQuery*>(query)->Wants(protocol, first);
}
uint64_t KeysForQuery(const void* query, const char* protocol, const char* label) {
  return static_cast<const KeyQuery*>(query)->KeysToTake(protocol, label);
}
bool TakeForQuery(void* query, uint64_t keys, const GivenValue& value) {
  return static_cast<KeyQuery*>(query)->Take(keys, value);
}
bool LabelForQuery(const void* query, const char* protocol, const char* label, bool isStart) {
  return static_cast<const KeyQuery*>(query)->WantsLabel(protocol, label, isStart);
}

// The lines are made from now on, of frames that are asked.
void TakeNoValues(LineQuestion* question) {
  question->keysOf = nullptr;
  question->isUndone = false;
  for (KnownLabel& label : question->labels) label.value = ValuePlace::kNowhere;
}

}  // namespace

// Whether a view that reads headers alone, the list's, finds the same lines so. What is decrypted or joined from fragments may
// hold headers, too, and what user libraries do with a payload is theirs to know.
bool Probe::MayReadHeadersAlone(const KeyQuery& query) const {
  const View* view = const_cast<Session&>(session_).GetView();
  return view->context->headersOnly && query.AsksForHeadersAlone() && !view->engine->settings.reassembly &&
         !view->engine->libraries.handles[0] && !view->engine->crypto;
}

void Probe::MakeFacts() {
  if (!facts_) facts_ = CreateFacts();
  if (!facts_) throw std::bad_alloc();   // no answer would be a wrong one
}

namespace {

// What a probe changes in a view for one packet is put back, also where memory ends in what is done with the lines.
class Borrowed {
 public:
  explicit Borrowed(Session& session)
      : session_(session), view_(*session.GetView()), tree_(view_.tree), facts_(view_.context->facts),
        file_(view_.context->outputFile), mode_(view_.context->outputMode), silent_(view_.context->silent),
        headersOnly_(view_.context->headersOnly) {}
  ~Borrowed() {
    view_.tree = tree_;
    view_.context->facts = facts_;
    session_.SetOutput(mode_, file_);
    view_.context->silent = silent_;
    view_.context->headersOnly = headersOnly_;
  }
  Borrowed(const Borrowed&) = delete;
  Borrowed& operator=(const Borrowed&) = delete;

 private:
  Session& session_;
  View& view_;
  DecodeTree* const tree_;
  LineFacts* const facts_;
  OutputFile* const file_;
  const char mode_;
  const bool silent_, headersOnly_;
};

}  // namespace

// Into the tree of its own, with what the caller has put into the facts.
template <typename Use>
void Probe::Decode(const FrameRecord* record, const Use& use, bool headersAlone) {
  const Borrowed borrowed(session_);
  View& view = *session_.GetView();
  view.context->facts = facts_;
  view.tree = &tree_;
  session_.SetOutput(kDisplayMode, nullptr);
  view.context->headersOnly = headersAlone;
  session_.Decode(record);
  if (tree_.Lines().WasShort()) throw std::bad_alloc();   // an answer without some lines would be a wrong one
  use();
}

// The answers of the queries that were asked last are kept: a filter and the columns take turns.
LineQuestion* Probe::QuestionOf(KeyQuery& query) {
  for (Asked& asked : asked_) {
    if (!asked.question || asked.version != query.Version()) continue;
    asked.question->with = asked.question->taker = &query;
    return asked.question.get();
  }
  Asked& oldest = asked_[next_++ % asked_.size()];
  oldest.version = query.Version();
  oldest.question = std::make_unique<LineQuestion>();
  oldest.question->ofProtocol = ProtocolForQuery;
  oldest.question->ofLabel = LabelForQuery;
  oldest.question->with = oldest.question->taker = &query;
  // Lines that a user's library adds it may take back.
  const CustomLibraries& libraries = session_.GetView()->engine->libraries;
  if (libraries.count == 0 && !libraries.external) {
    oldest.question->keysOf = KeysForQuery;
    oldest.question->take = TakeForQuery;
  }
  return oldest.question.get();
}

bool Probe::Ask(KeyQuery& query, const FrameRecord* record, PacketTold& told) {
  if (query.AsksForProtocols()) {
    std::vector<const char*> protocols;
    if (!ListProtocols(record, &protocols)) return false;
    query.TakeProtocols(protocols);
  }
  query.Begin();
  const auto collect = [&] { query.Collect(session_.Context(), tree_.Lines(), told); };
  if (!query.AsksForLines()) return collect(), true;
  MakeFacts();
  LineQuestion* const question = query.AsksForEveryLine() ? nullptr : QuestionOf(query);
  AskFrame(facts_, question);
  bool isWhole = false;
  if (MayReadHeadersAlone(query)) {
    const auto collectWhole = [&] {
      isWhole = IsPlain(session_.Context().packet.reached);
      if (isWhole) collect();
    };
    Decode(record, collectWhole, true);
  }
  if (!isWhole) {
    query.Begin();
    Decode(record, collect);
  }
  if (question && question->isUndone) {
    TakeNoValues(question);
    query.Begin();
    AskFrame(facts_, question);
    Decode(record, collect);
  }
  AskFrame(facts_, nullptr);
  return true;
}

bool Probe::ListProtocols(const FrameRecord* record, std::vector<const char*>* protocols) {
  protocols->clear();
  MakeFacts();
  ProtocolPath path{session_.Context().packet, *protocols, {}};
  facts_->tell = NoteProtocol;
  facts_->tellWith = &path;
  facts_->lastProtocol = nullptr;
  Decode(record, [] {});
  facts_->tell = nullptr;
  return true;
}

}  // namespace qxview
