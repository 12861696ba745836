#include "query/probe.h"

#include <cstring>

namespace qxview {
namespace {

// The lines of the frame are made in any case: what stands under them has keys of the frame.
bool WantsForQuery(const void* query, const char* protocol) {
  return static_cast<const KeyQuery*>(query)->Wants(protocol) || std::strcmp(protocol, kFrameProtocol) == 0;
}

// The way into the frame: each protocol stands deeper than the one before it.
struct ProtocolPath {
  const PacketState& packet;
  std::vector<const char*>& protocols;
  std::vector<int32_t> depths;
};

bool NoteProtocol(const void* with, const char* protocol) {
  auto& path = *static_cast<ProtocolPath*>(const_cast<void*>(with));
  const int32_t depth = path.packet.nesting;
  const bool isDeeper = path.depths.empty() || depth > path.depths.back();
  bool isKnown = std::strcmp(protocol, kFrameProtocol) == 0 || depth < 0;
  for (const char* known : path.protocols) isKnown |= !isDeeper && std::strcmp(known, protocol) == 0;
  const bool isSame = !path.protocols.empty() && path.protocols.back() == protocol;
  constexpr size_t kMostProtocols = 64;
  if (isKnown || isSame || path.protocols.size() >= kMostProtocols) return false;
  path.protocols.push_back(protocol);
  path.depths.push_back(depth);
  return false;
}

}  // namespace

template <typename Use>
bool Probe::Decode(const FrameRecord* record, WantsProtocol wants, const void* with, const Use& use) {
  if (!facts_) facts_ = CreateFacts();
  if (!facts_) return false;
  View& view = *session_.GetView();
  DecodeContext& context = *view.context;
  DecodeTree* const tree = view.tree;
  LineFacts* const facts = context.facts;
  OutputFile* const file = context.outputFile;
  const char mode = context.outputMode;
  const bool silent = context.silent, headersOnly = context.headersOnly;
  facts_->wants = wants;
  facts_->wantsWith = with;
  facts_->lastProtocol = nullptr;
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
  return true;
}

bool Probe::Ask(KeyQuery& query, const FrameRecord* record, PacketTold& told) {
  if (query.AsksForProtocols()) {
    std::vector<const char*> protocols;
    if (!ListProtocols(record, &protocols)) return false;
    query.TakeProtocols(protocols);
  }
  const auto collect = [&] { query.Collect(session_.Context(), tree_.Lines(), told); };
  if (query.AsksForLines()) return Decode(record, WantsForQuery, &query, collect);
  collect();
  return true;
}

bool Probe::ListProtocols(const FrameRecord* record, std::vector<const char*>* protocols) {
  protocols->clear();
  ProtocolPath path{session_.Context().packet, *protocols, {}};
  return Decode(record, NoteProtocol, &path, [] {});
}

}  // namespace qxview
