#include "query/probe.h"

#include <cstring>

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

LinesWanted ProtocolForQuery(const void* query, const char* protocol, bool* first) {
  return static_cast<const KeyQuery*>(query)->Wants(protocol, first);
}
bool LabelForQuery(const void* query, const char* protocol, const char* label, bool isStart) {
  return static_cast<const KeyQuery*>(query)->WantsLabel(protocol, label, isStart);
}

}  // namespace

// Into the tree of its own, with what the caller has put into the facts.
template <typename Use>
void Probe::Decode(const FrameRecord* record, const Use& use) {
  View& view = *session_.GetView();
  DecodeContext& context = *view.context;
  DecodeTree* const tree = view.tree;
  LineFacts* const facts = context.facts;
  OutputFile* const file = context.outputFile;
  const char mode = context.outputMode;
  const bool silent = context.silent, headersOnly = context.headersOnly;
  context.facts = facts_;
  view.tree = &tree_;
  session_.SetOutput(kDisplayMode, nullptr);
  session_.Decode(record);
  use();
  view.tree = tree;
  context.facts = facts;
  session_.SetOutput(mode, file);
  context.silent = silent;
  context.headersOnly = headersOnly;
}

// The answers of the queries that were asked last are kept: a filter and the columns take turns.
LineQuestion* Probe::QuestionOf(const KeyQuery& query) {
  for (Asked& asked : asked_) {
    if (asked.question && asked.version == query.Version()) return asked.question->with = &query, asked.question.get();
  }
  Asked& oldest = asked_[next_++ % asked_.size()];
  oldest.version = query.Version();
  oldest.question = std::make_unique<LineQuestion>();
  oldest.question->ofProtocol = ProtocolForQuery;
  oldest.question->ofLabel = LabelForQuery;
  oldest.question->with = &query;
  return oldest.question.get();
}

bool Probe::Ask(KeyQuery& query, const FrameRecord* record, PacketTold& told) {
  if (query.AsksForProtocols()) {
    std::vector<const char*> protocols;
    if (!ListProtocols(record, &protocols)) return false;
    query.TakeProtocols(protocols);
  }
  const auto collect = [&] { query.Collect(session_.Context(), tree_.Lines(), told); };
  if (!query.AsksForLines()) return collect(), true;
  if (!MakeFacts()) return false;
  AskFrame(facts_, query.AsksForEveryLine() ? nullptr : QuestionOf(query));
  Decode(record, collect);
  AskFrame(facts_, nullptr);
  return true;
}

bool Probe::ListProtocols(const FrameRecord* record, std::vector<const char*>* protocols) {
  protocols->clear();
  if (!MakeFacts()) return false;
  ProtocolPath path{session_.Context().packet, *protocols, {}};
  facts_->tell = NoteProtocol;
  facts_->tellWith = &path;
  facts_->lastProtocol = nullptr;
  Decode(record, [] {});
  facts_->tell = nullptr;
  return true;
}

}  // namespace qxview
