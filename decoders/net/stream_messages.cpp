#include "decoders/net/stream_messages.h"

#include "core/line_facts.h"
#include "decoders/app/http.h"
#include "decoders/net/tcp_streams.h"

namespace qxview {
namespace {

// What a segment says of others.
void TellPlace(const Place& at, const Field& segment, const StreamRun& run) {
  if (run.lost > 0) {
    AddLine(at, Stated(segment.offset, 0), "Reassembly: %d bytes before this segment were not captured", run.lost);
  }
  if (run.seen > 0 && run.differing > 0) {
    AddLine(at, Slice(segment, 0, run.seen), "Reassembly: %d bytes came before, %d of them differ", run.seen,
            run.differing);
  } else if (run.seen > 0) {
    AddLine(at, Slice(segment, 0, run.seen), "Reassembly: %d bytes came before", run.seen);
  }
}

void TellWaiting(const Place& at, const Field& segment, const StreamRun& run) {
  if (run.answer == StreamAnswer::kAhead) {
    AddLine(at, segment, "Reassembly: %d bytes kept, %d before them are missing", run.waiting, run.needed);
    return;
  }
  const int32_t own = run.waiting < segment.length ? run.waiting : segment.length;
  const Field kept = Slice(segment, segment.length - own, own);
  if (run.waiting > 0 && run.needed > 0) {
    AddLine(at, kept, "Reassembly: %d bytes kept, %d more needed", run.waiting, run.needed);
  } else if (run.waiting > 0) {
    AddLine(at, kept, "Reassembly: %d bytes kept, more needed", run.waiting);
  }
}

// Message by message; the last one may be cut, or none.
void ShowMessages(const Place& at, Cursor c, const DecoderRow& row, const char* title) {
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const int32_t length = row.protocol->takesRuns ? Left(c) : RowBehindUpgrade(at, row, c).protocol->messageLength(c);
    CallDecoder(at, TakeCursor(c, length < 1 ? Left(c) : length), row.decode, title);
  }
}

}  // namespace

bool JoinsMessages(const Place& at, const DecoderRow* row) {
  const PacketState& packet = PacketOf(at);
  return at.view->engine->settings.reassembly && row && row->protocol->messageLength && packet.segment.here &&
         !packet.quoted && !at.view->context->headersOnly;
}

void ShowStreamMessages(const Place& at, Cursor c, const DecoderRow& row, const char* title) {
  const Field segment = Ahead(c, Left(c));
  Cursor joined;
  const StreamRun run = TakeTcpSegment(at, c, RowBehindUpgrade(at, row, c), &joined);
  {
    const KeyedAs keys(PacketOf(at), "tcp");
    TellPlace(at, segment, run);
  }
  TakeBytes(c, run.seen);
  if (run.plain > 0) CallDecoder(at, TakeCursor(c, run.plain), row.decode, title);   // as it stands
  if (run.shown > 0) ShowMessages(at, run.pieceCount > 0 ? joined : TakeCursor(c, run.shown), row, title);
  // What waits stands for itself once it waits in vain, and asks for what came before it then.
  if (run.waiting > 0) PacketOf(at).segment.wanted = PacketOf(at).segment.length;
  const KeyedAs keys(PacketOf(at), "tcp");
  TellWaiting(at, segment, run);
}

}  // namespace qxview
