#include "host/session.h"

#include "core/byte_origins.h"
#include "host/character_sets.h"
#include "host/hash_key.h"

namespace qxview {

std::unique_ptr<Session> Session::Create(const QxHost* host, const LibraryLoader& loader) {
  std::unique_ptr<Session> session(new Session);
  View& view = session->view_;
  view.tree = &session->tree_;
  view.context = CreateDecodeContext();
  view.engine = CreateEngine(host, loader, DrawSeed());
  if (!view.context || !view.engine) return nullptr;
  const Settings& settings = view.engine->settings;
  view.context->rangeFilterOn = settings.rangeFilterOn;
  view.context->rangeFilterStart = settings.rangeFilterStart;
  view.context->rangeFilterLength = settings.rangeFilterLength;
  view.characterTable = kEbcdicCharacters;
  view.expansionMask = BitMask(kFieldKind);
  view.selectionPath[0] = view.selectionPath[1] = view.selectionPath[2] = -1;
  return session;
}

Session::~Session() {
  DestroyDecodeContext(view_.context);
  DestroyEngine(view_.engine);
}

void Session::ShowIn(DecodeTree* tree) {
  view_.tree->Clear();
  view_.tree = tree ? tree : &tree_;
  view_.tree->Clear();
  view_.context->rangeCount = view_.context->derivedCount = 0;
}

void Session::SetOutput(char mode, OutputFile* file) {
  view_.context->outputMode = mode;
  view_.context->outputFile = file;
  view_.context->silent = view_.context->headersOnly = false;
}

int32_t Session::Decode(const FrameRecord* record, uint32_t userParam1, uint32_t userParam2, int32_t skipBytes) {
  if (view_.context->outputMode == kDisplayMode) ClearDecodeTree(&view_, view_.tree, true);
  return DecodeFrame(&view_, record, userParam1, userParam2, skipBytes);
}

void Session::DecodeHeadersOnly() {
  SetOutput(kFindMode, nullptr);
  view_.context->silent = view_.context->headersOnly = true;
}

void Session::ReadHeaders(const FrameRecord* record) {
  DecodeContext& context = *view_.context;
  const bool headersOnly = context.headersOnly;
  // A frame that was decoded is read again for its summary: what its decoder wanted is wanted still.
  const bool again = context.packet.frame && context.packetNumber == static_cast<int64_t>(record->packetNumber);
  const int32_t wanted = again ? context.packet.segment.wanted : 0;
  context.headersOnly = true;
  Pass(record);
  context.headersOnly = headersOnly;
  if (wanted) context.packet.segment.wanted = wanted;
}

void Session::Pass(const FrameRecord* record) {
  DecodeContext& context = *view_.context;
  const char mode = context.outputMode;
  const bool silent = context.silent;
  context.outputMode = kFindMode;
  context.silent = true;
  DecodeFrame(&view_, record, 0, 0, 0);
  context.silent = silent;
  context.outputMode = mode;
}

}  // namespace qxview
