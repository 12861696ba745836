// HTTP's bodies: which form a body is shown in, and text in lines.
#include "decoders/app/http_message.h"

#include "decoders/asn1/x509.h"

namespace qxview {
namespace {

void ShowTextBody(const Place& in, Cursor& c) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    Field line = TakeTextLine(c);
    if (!line.here) line = Rest(c);
    const Field shown = Slice(line, 0, line.length < kMostTextLineShown ? line.length : kMostTextLineShown);
    AddLine(in, shown, "Http Data: %s", Text(shown));
  }
}

}  // namespace

bool DecodeHttpBody(const Place& in, HttpState& state, int32_t kind, Cursor& c) {
  HttpFlags& flags = state.flags;
  if (flags.gzip && !state.history.finished) {
    DecodeHttpGzip(in, state, kind == kHttpContinuation, c);
    flags = {};
    return false;
  }
  if (flags.chunked && DecodeHttpChunk(in, c)) return Left(c) > 0;
  if (flags.text) {
    ShowTextBody(in, c);
    flags.text = false;
  } else if (flags.image) {
    AddBlock(in, Rest(c), "Http Image Data");
    flags.image = false;
  } else {
    Cursor message = c;
    AddBlock(in, Rest(c), "Encoded Http Data");
    if (flags.ocspRequest) ShowOcspRequest(in, message);
    if (flags.ocspResponse) ShowOcspResponse(in, message);
    flags.ocspRequest = flags.ocspResponse = false;
  }
  return false;
}

}  // namespace qxview
