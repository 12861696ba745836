// HTTP's bodies where all is asked for (RFC 9112 6 and 7): how far they go, chunks joined, content codings opened, content by
// its type.
#include <cstring>

#include "core/byte_origins.h"
#include "core/context.h"
#include "core/line_facts.h"
#include "decoders/app/dns.h"
#include "decoders/app/http_message.h"
#include "decoders/asn1/cms.h"
#include "decoders/asn1/x509.h"
#include "decoders/common/header_values.h"
#include "decoders/common/text_lines.h"

namespace qxview {

int32_t DecodeIpp(const Place& at, Cursor c);

namespace {

// RFC 8484: a message as over UDP, without the length that TCP has in front.
int32_t DecodeCarriedDns(const Place& at, Cursor c) {
  constexpr int32_t kUdp = 17;
  const KeyedAs keys(PacketOf(at), "dns");
  return DecodeDnsPayload(at.view, c.at, c.offset, Left(c), at.level, kUdp, kDnsStandard);
}

int32_t DecodeCarriedIpp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "ipp");
  return DecodeIpp(at, c);
}

// What has a decoder of its own, with a top line of its own; what is shown under the message.
struct MediaDecoder {
  const char* type;
  DecoderFunction decode;
};
constexpr MediaDecoder kMediaDecoders[] = {{"application/ipp", DecodeCarriedIpp},
                                             {"application/dns-message", DecodeCarriedDns}};
void ShowCmsBody(const Place& in, Cursor& c) { ShowCms(in, c, {}); }

struct MediaPart {
  const char* type;
  void (*show)(const Place& in, Cursor& c);
};
constexpr MediaPart kMediaParts[] = {
    {"application/ocsp-request", ShowOcspRequest}, {"application/ocsp-response", ShowOcspResponse},
    {"application/pkix-cert", ShowX509Certificate}, {"application/x-x509-ca-cert", ShowX509Certificate},
    {"application/x-x509-user-cert", ShowX509Certificate}, {"application/cms", ShowCmsBody},
    {"application/pkcs7-mime", ShowCmsBody}, {"application/pkcs7-signature", ShowCmsBody},
    {"application/x-pkcs7-certificates", ShowCmsBody}, {"application/x-pkcs7-mime", ShowCmsBody}};

template <class Row, size_t kRows>
const Row* FindMedia(const Row (&rows)[kRows], Field type) {
  if (!type.here) return nullptr;
  const Field name = TakeWord(type, "; \t");
  for (const Row& row : rows) {
    if (IsWord(name, row.type)) return &row;
  }
  return nullptr;
}

// Servers name XML as any text, or do not name it.
WebContent ContentOf(const HttpFlags& said, Cursor c) {
  const bool isVague = said.content == WebContent::kText || said.content == WebContent::kOther ||
                       said.content == WebContent::kUnknown;
  if (!isVague || said.coding != ContentCoding::kNone) return said.content;
  SkipSpace(c);
  if (StartsWithText(c, "\xEF\xBB\xBF")) TakeBytes(c, 3);
  if (StartsWithText(c, "<?xml ")) return WebContent::kXml;
  return said.content == WebContent::kUnknown && IsReadable(c) ? WebContent::kText : said.content;
}

void ShowContent(const Place& at, const Place& in, const HttpFlags& said, Cursor c) {
  constexpr int32_t kMagic = 0x1F8B, kPemDash = '-';
  if (Left(c) < 1) return;
  if (said.coding == ContentCoding::kGzip && PeekU16(c) == kMagic) ShowGzipHeader(in, c, false);
  const bool isPlain = said.coding == ContentCoding::kNone;
  if (const auto* media = isPlain ? FindMedia(kMediaDecoders, said.mediaType) : nullptr) {
    CallDecoder(at, c, media->decode, "HTTP Data");
    return;
  }
  WebBody body{};
  body.content = ContentOf(said, c);
  body.isCompressed = !isPlain;
  body.isGzip = said.coding == ContentCoding::kGzip;
  body.isDeflate = said.coding == ContentCoding::kDeflate;
  const bool isKnown = body.content != WebContent::kUnknown && body.content != WebContent::kOther;
  if (body.content == WebContent::kParts && isPlain) {
    const KeyedAs keys(PacketOf(in), "web");
    ShowWebParts(in, c, ParameterOf(said.mediaType, "boundary"), 0);
    return (void)AddBlock(in, Rest(c), "Content");
  }
  if (isKnown || body.isCompressed) return ShowWebBody(in, c, body, true);
  Cursor message = c;
  AddBlock(in, Rest(c), "Encoded Http Data");
  const auto* part = FindMedia(kMediaParts, said.mediaType);
  if (part && PeekU8(message) != kPemDash) part->show(in, message);
}

// The data of chunks, and where they stood.
struct ChunkRun {
  uint8_t* octets;
  int32_t length, chunks, pieceCount;
  Field first;
  BytePiece pieces[kMostJoinedChunks];
  bool isFull;
};

// False where there is no room for more: the data stays with its chunk.
bool AppendChunk(const Place& in, ChunkRun& run, const Field& data) {
  if (run.isFull || !run.octets) return false;
  const DecodeContext* context = in.view->context;
  const int32_t room = kMostJoinedChunks - run.pieceCount;
  BytePiece* pieces = run.pieces + run.pieceCount;
  const OwnRange own = FindOwnRange(context, MakeByteRange(0, data.offset, data.length), pieces, room - 1);
  if (own.earlierCount >= room) {
    run.isFull = true;
    return false;
  }
  pieces[own.earlierCount] = {context->packetNumber, RangeOffset(own.range),
                              static_cast<int32_t>(RangeLength(own.range))};
  run.pieceCount += own.earlierCount + 1;
  std::memcpy(run.octets + run.length, data.bytes, static_cast<size_t>(data.length));
  run.length += data.length;
  if (run.chunks++ == 0) run.first = data;
  return true;
}

// Behind the last chunk: header lines, then the empty one.
void ShowTrailer(const Place& in, Cursor& c) {
  const Cursor start = c;
  HttpFlags none{};
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "Trailer"));
  WalkHttpHeaders(under, none, c);
  SetRange(under, under.parent, start.offset, c.offset - start.offset);
}

void ShowChunks(const Place& at, const Place& in, const HttpFlags& said, Cursor& c) {
  ChunkRun run{};
  run.octets = TakeFrameMemory(in.view, Left(c));
  HttpChunk chunk{};
  Loop loop;
  while (!chunk.isLast && MoreAt(in, c, loop)) {
    if (!DecodeHttpChunk(in, c, &chunk)) {
      AddBlock(in, Rest(c), "No Chunk Size");
      break;
    }
    if (!chunk.data.here || chunk.data.length < 1 || AppendChunk(in, run, chunk.data)) continue;
    AddBlock(in, chunk.data, "Http Chunk Data");
  }
  if (chunk.isLast && !chunk.hasBoundary && Left(c) > 0) ShowTrailer(in, c);
  if (run.chunks == 0) return;
  if (run.chunks == 1) return ShowContent(at, in, said, CursorOver(run.first));
  const Cursor joined = JoinedBytes(in.view, run.octets, run.length, run.pieces, run.pieceCount, run.pieces[0].offset);
  if (Left(joined) < 1) return;
  const Place under = Under(in, AddLine(in, Ahead(joined, Left(joined)), "Joined Chunks: %d bytes of %d chunks%s", run.length,
                                        run.chunks, run.isFull ? ", more are not joined" : ""));
  ShowContent(at, under, said, joined);
}

// An answer to HEAD has the lengths of a body that does not come; a request without lengths has none.
bool StartsNextMessage(const HttpFlags& said, const Cursor& c) {
  if (PeekIs(c, 0, "HTTP/1.")) return true;
  const uint32_t first = PeekU8(c);
  return !said.hasLength && !said.inChunks && first >= 'A' && first <= 'Z' &&
         ClassifyHttpFirstLine(c.at, Left(c)) == kHttpRequest;
}

}  // namespace

bool ShowHttpContent(const Place& at, const Place& in, HttpFlags& flags, bool hasBody, Cursor& c) {
  const HttpFlags said = flags;
  flags = {};
  if (!hasBody || StartsNextMessage(said, c)) return Left(c) > 0;
  if (said.inChunks) {
    ShowChunks(at, in, said, c);
  } else {
    const bool isCut = said.hasLength && said.length > Left(c);
    Cursor body = TakeCursor(c, said.hasLength && !isCut ? said.length : Left(c));
    if (isCut) AddLine(in, Ahead(body, Left(body)), "Body in Part: %d of %d bytes", Left(body), said.length);
    ShowContent(at, in, said, body);
  }
  return Left(c) > 0;
}

}  // namespace qxview
