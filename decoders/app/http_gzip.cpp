// gzip bodies (RFC 1952, RFC 1951): where the compressed data are, and what they inflate to.
#include <zlib.h>

#include <cstdlib>
#include <cstring>

#include "core/bounded_loop.h"
#include "core/byte_origins.h"
#include "decoders/app/direction_run.h"
#include "decoders/app/http_inflate.h"
#include "decoders/app/http_message.h"

namespace qxview {

namespace {

constexpr int32_t kMostHeaderCopied = 80000;   // of a member header that stands in more than one segment

// A body as far as it was inflated. Each segment shows it from its start: what was inflated is kept, and goes on with
// the bytes that came. The stream's memory is the arena, so that it can be left at any time.
struct InflatedBody {
  z_stream stream;
  uint32_t used;                      // of the arena
  alignas(8) uint8_t arena[65536];   // what zlib allocates: its state and window, about 40 KB
  uint8_t output[kInflatedSize];
  // Which bytes these are of: the body's first `taken`, from the packet that it starts in; with those the stream goes on
  // or ended.
  int64_t startPacket;
  int32_t position;                   // where the compressed data start
  int32_t taken;
  uLong check;                        // sum of the bytes taken
  bool here;                          // more bytes continue it; otherwise they may turn it into something else
  bool goesOn;                        // the stream has not ended
  uint32_t lastUse;
};

}  // namespace

// What inflation works with: made once an engine, so that few decodings allocate.
struct HttpInflater {
  InflatedBody* bodies[kMostInflatedBodies];
  InflatedBody* whole;                // what a frame has whole is inflated here
  uint32_t uses;
  uint8_t header[kMostHeaderCopied];
};

namespace {

constexpr uint8_t kMagic1 = 0x1F, kMagic2 = 0x8B;
constexpr int32_t kMostSizeLine = 64;          // characters of a chunk size in front of compressed data
constexpr int32_t kMostTries = 4;              // the first and three restarts

// The bytes of a body, in segments.
struct ByteRun {
  const uint8_t* bytes;
  int32_t length;
};
struct ByteChain {
  ByteRun runs[kMostEarlierSegments + 2];
  int32_t count;
};

void Append(ByteChain& chain, const uint8_t* bytes, int32_t length) {
  if (length > 0) chain.runs[chain.count++] = {bytes, length};
}

int32_t LengthOf(const ByteChain& chain) {
  int32_t length = 0;
  for (int32_t i = 0; i < chain.count; ++i) length += chain.runs[i].length;
  return length;
}

// Copies at most `size` bytes from `position` on; returns how many.
int32_t CopyOut(const ByteChain& chain, int32_t position, uint8_t* out, int32_t size) {
  int32_t copied = 0;
  for (int32_t i = 0; i < chain.count && copied < size; ++i) {
    const ByteRun& run = chain.runs[i];
    if (position < run.length) {
      const int32_t there = run.length - position;
      const int32_t count = there < size - copied ? there : size - copied;
      std::memcpy(out + copied, run.bytes + position, static_cast<size_t>(count));
      copied += count;
    }
    position = position > run.length ? position - run.length : 0;
  }
  return copied;
}

bool StartsMember(const ByteChain& chain, int32_t position) {
  uint8_t bytes[2];
  return CopyOut(chain, position, bytes, 2) == 2 && bytes[0] == kMagic1 && bytes[1] == kMagic2;
}

// The position of the gzip magic; -1 when it is not in the body.
int32_t FindMagic(const ByteChain& chain) {
  int32_t start = 0;
  for (int32_t i = 0; i < chain.count; ++i) {
    const ByteRun& run = chain.runs[i];
    for (int32_t at = 0; at < run.length; ++at) {
      const void* found = std::memchr(run.bytes + at, kMagic1, static_cast<size_t>(run.length - at));
      if (!found) break;
      at = static_cast<int32_t>(static_cast<const uint8_t*>(found) - run.bytes);
      const uint8_t* second = at + 1 < run.length        ? run.bytes + at + 1
                              : i + 1 < chain.count      ? chain.runs[i + 1].bytes
                                                         : nullptr;
      if (second && *second == kMagic2) return start + at;
    }
    start += run.length;
  }
  return -1;
}

// The length of a message's headers with their empty line; 0 when the segment does not hold all of them.
int32_t HeadersLength(const uint8_t* data, int32_t length) {
  Cursor c = MakeCursor(data, 0, length);
  for (Loop loop; More(c, loop);) {
    const int32_t end = FindLineEnd(c);
    if (end < 0) return 0;
    TakeBytes(c, end + 2);
    if (end == 0) return Taken(c);
  }
  return 0;
}

void JoinSegments(const HttpHistory& history, ByteChain& chain) {
  for (int32_t i = history.count - 1; i >= 0; --i) {
    const QxSegment& segment = history.segments[i];
    const int32_t skipped = i == history.count - 1 ? HeadersLength(segment.payload, segment.length) : 0;
    Append(chain, segment.payload + skipped, segment.length - skipped);
  }
}

// Where the data end. Chunk framing is not taken out of a body: what stands behind a chunk size goes as far as that
// chunk.
int32_t FindDataEnd(const ByteChain& chain, int32_t magic) {
  const int32_t length = LengthOf(chain);
  uint8_t line[kMostSizeLine];
  if (magic < 3 || magic > kMostSizeLine || CopyOut(chain, 0, line, magic) != magic) return length;
  if (FindLineEnd(MakeCursor(line, 0, magic)) != magic - 2) return length;
  const HttpChunkSize chunk = ReadChunkSize(line, magic - 2);
  return chunk.valid && chunk.size < length - magic ? magic + chunk.size : length;
}

// Gives the chain's runs from `from` to `end`, in order, until one is refused.
template <class Take>
void ForEachRun(const ByteChain& chain, int32_t from, int32_t end, Take take) {
  int32_t start = 0;
  for (int32_t i = 0; i < chain.count && start < end; ++i) {
    const ByteRun& run = chain.runs[i];
    const int32_t first = from > start ? from - start : 0;
    const int32_t last = end - start < run.length ? end - start : run.length;
    start += run.length;
    if (first < last && !take(run.bytes + first, static_cast<uInt>(last - first))) return;
  }
}

uLong SumOf(const ByteChain& chain, int32_t from, int32_t end, uLong sum) {
  ForEachRun(chain, from, end, [&sum](const uint8_t* bytes, uInt length) {
    sum = adler32(sum, bytes, length);
    return true;
  });
  return sum;
}

voidpf AllocateFromArena(voidpf opaque, uInt items, uInt size) {
  auto* body = static_cast<InflatedBody*>(opaque);
  const uint64_t wanted = (uint64_t{items} * size + 7) & ~uint64_t{7};
  if (wanted > sizeof body->arena - body->used) return nullptr;
  uint8_t* given = body->arena + body->used;
  body->used += static_cast<uint32_t>(wanted);
  return given;
}
void KeepInArena(voidpf, voidpf) {}

bool StartStream(InflatedBody& body, int32_t windowBits) {
  body.used = 0;
  std::memset(&body.stream, 0, sizeof body.stream);
  body.stream.zalloc = AllocateFromArena;
  body.stream.zfree = KeepInArena;
  body.stream.opaque = &body;
  body.stream.next_out = body.output;
  body.stream.avail_out = kInflatedSize;
  // The version whose interface this is written to; later libraries of the same major version take it.
  return inflateInit2_(&body.stream, windowBits, "1.2.3", static_cast<int>(sizeof(z_stream))) == Z_OK;
}

int32_t ProducedOf(const InflatedBody& body) { return kInflatedSize - static_cast<int32_t>(body.stream.avail_out); }

// Inflates the chain's bytes from `from` to `end` until the stream ends or breaks or the output is full.
void GoOn(InflatedBody& body, const ByteChain& chain, int32_t from, int32_t end) {
  z_stream& stream = body.stream;
  body.taken = from;
  ForEachRun(chain, from, end, [&](const uint8_t* bytes, uInt length) {
    body.taken += static_cast<int32_t>(length);
    stream.next_in = const_cast<Bytef*>(bytes);   // zlib does not write to it
    stream.avail_in = length;
    body.goesOn = inflate(&stream, Z_SYNC_FLUSH) == Z_OK && stream.avail_out > 0;
    return body.goesOn;
  });
}

// The data behind a member header are raw deflate data. Servers were seen to send a whole member there, or deflate data
// in zlib's wrapping.
void Begin(InflatedBody& body, const ByteChain& chain, int32_t position, int32_t end) {
  constexpr int32_t kMember = 15 + 16, kRaw = -15, kWrapped = 15;
  const int32_t forms[kMostTries] = {kMember, kRaw, kWrapped, 0};
  bool othersFailed = true;
  body.here = false;
  body.taken = 0;
  for (int32_t i = StartsMember(chain, position) ? 0 : 1; forms[i] != 0; ++i) {
    body.goesOn = StartStream(body, forms[i]);
    if (body.goesOn) GoOn(body, chain, position, end);
    body.here = othersFailed && ProducedOf(body) > 0;
    if (ProducedOf(body) > 0) return;
    othersFailed = othersFailed && !body.goesOn;
  }
}

// Of a large body that is not gone on with. The next one takes pages as its text grows.
void GiveBack(InflatedBody*& body) {
  if (!body || ProducedOf(*body) <= kKeptInflated) return;
  std::free(body);
  body = nullptr;
}

// The kept body that these bytes are of, or the one that was not used for longest; null when there is no memory.
InflatedBody* FindBody(HttpInflater& inflater, const ByteChain& chain, int64_t startPacket, int32_t position,
                       int32_t end) {
  for (InflatedBody* body : inflater.bodies) {
    if (!body || body->startPacket != startPacket) continue;
    body->here = body->here && body->position == position && body->taken <= end &&
                 SumOf(chain, 0, body->taken, 1) == body->check;
    return body;
  }
  InflatedBody** place = nullptr;
  for (InflatedBody*& body : inflater.bodies) {
    if (body && !body->goesOn) GiveBack(body);
    if (!place || (*place && (!body || body->lastUse < (*place)->lastUse))) place = &body;
  }
  GiveBack(*place);
  if (!*place) *place = static_cast<InflatedBody*>(std::malloc(sizeof(InflatedBody)));
  if (*place) (*place)->here = false;
  return *place;
}

// The body inflated from `position` to `end`; null when there is no memory.
const InflatedBody* Inflate(HttpInflater& inflater, const ByteChain& chain, int64_t startPacket, int32_t position,
                            int32_t end) {
  InflatedBody* body = FindBody(inflater, chain, startPacket, position, end);
  if (!body) return nullptr;
  if (!body->here) {
    Begin(*body, chain, position, end);
    body->check = SumOf(chain, 0, body->taken, 1);
  } else if (body->goesOn) {
    const int32_t before = body->taken;
    GoOn(*body, chain, before, end);
    body->check = SumOf(chain, before, body->taken, body->check);
  }
  body->startPacket = startPacket;
  body->position = position;
  body->lastUse = ++inflater.uses;
  return body;
}

// The inflated text in lines: they end at LF, with or without a CR before it.
void ShowInflated(const Place& in, const Field& cover, const uint8_t* text, int32_t length) {
  for (int32_t at = 0; at < length;) {
    if (!GoesOn(in)) return AddLine(in, cover, "Further Lines: %d bytes", length - at), void();
    const void* found = std::memchr(text + at, '\n', static_cast<size_t>(length - at));
    const int32_t end = found ? static_cast<int32_t>(static_cast<const uint8_t*>(found) - text) : length;
    int32_t shown = end - at;
    if (found && shown > 0 && text[end - 1] == '\r') --shown;
    if (shown > kMostInflatedLineShown) shown = kMostInflatedLineShown;
    if (shown > 0) {
      AddLine(in, cover, "Inflated gzip Data : %s", TextSlice{reinterpret_cast<const char*>(text) + at, shown});
    } else {
      AddLine(in, cover, "Blank Line : ");
    }
    at = end + 1;
  }
}

}  // namespace

void DestroyHttpInflater(HttpInflater* inflater) {
  if (!inflater) return;
  for (InflatedBody* body : inflater->bodies) std::free(body);
  std::free(inflater->whole);
  std::free(inflater);
}

Cursor InflateInFrame(const Place& at, const Field& data, Wrapping wrapping, StateBytes window, Inflation* how, bool* ended) {
  const Cursor none = MakeCursor(nullptr, data.offset, 0);
  HttpState& state = *StateOf<HttpState>(at.view->engine, DecoderState::kHttp);
  *how = Inflation::kDamaged;
  if (!data.here || data.length < 1) return none;
  if (!state.inflater) state.inflater = static_cast<HttpInflater*>(std::calloc(1, sizeof(HttpInflater)));
  if (!state.inflater) return none;
  InflatedBody*& kept = state.inflater->whole;
  if (!kept) kept = static_cast<InflatedBody*>(std::malloc(sizeof(InflatedBody)));
  if (!kept || !StartStream(*kept, wrapping == Wrapping::kNone ? -15 : wrapping == Wrapping::kZlib ? 15 : 31)) return none;
  z_stream& stream = kept->stream;
  if (window.length && inflateSetDictionary(&stream, window.data, window.length) != Z_OK) return none;
  stream.next_in = const_cast<Bytef*>(data.bytes);   // zlib does not write to it
  stream.avail_in = static_cast<uInt>(data.length);
  const int result = inflate(&stream, Z_SYNC_FLUSH);
  const int32_t produced = ProducedOf(*kept);
  if (produced == 0 && wrapping == Wrapping::kZlib) return InflateInFrame(at, data, Wrapping::kNone, {}, how);
  if (result == Z_OK || result == Z_STREAM_END) *how = Inflation::kAll;
  if (ended) *ended = result == Z_STREAM_END;
  if (stream.avail_out == 0 && result != Z_STREAM_END) *how = Inflation::kToBound;
  uint8_t* const copy = TakeFrameMemory(at.view, produced);
  if (!copy) return none;
  std::memcpy(copy, kept->output, static_cast<size_t>(produced));
  GiveBack(kept);
  const BytePiece piece{};   // none of them stands in the frame as it is
  return JoinedBytes(at.view, copy, produced, &piece, 1, StartInFrame(at, data.offset));
}

void DecodeHttpGzip(const Place& in, HttpState& state, bool continuation, const Cursor& c) {
  if (!state.inflater) state.inflater = static_cast<HttpInflater*>(std::calloc(1, sizeof(HttpInflater)));
  if (!state.inflater) return;
  HttpInflater& inflater = *state.inflater;
  ByteChain chain;
  chain.count = 0;
  if (continuation) JoinSegments(state.history, chain);
  Append(chain, c.at, Left(c));
  const bool joined = chain.count > 1;
  const int32_t magic = FindMagic(chain);
  int32_t position = 0, end = LengthOf(chain);
  if (magic >= 0) {
    end = FindDataEnd(chain, magic);
    int32_t there = end - magic;
    const uint8_t* header = c.at + magic;
    if (joined) {
      header = inflater.header;
      there = CopyOut(chain, magic, inflater.header, there < kMostHeaderCopied ? there : kMostHeaderCopied);
    }
    ShowGzipHeader(in, MakeCursor(header, joined ? c.offset : c.offset + magic, there), joined);
    const int32_t headerLength = GzipHeaderLength(header, there);
    if (headerLength < 0) return;
    position = magic + headerLength;
  }
  const HttpHistory& history = state.history;
  const int64_t startPacket = continuation && history.count > 0 ? history.segments[history.count - 1].packetNumber
                                                                : in.view->context->packetNumber;
  const InflatedBody* body = Inflate(inflater, chain, startPacket, position, end);
  if (!body) return;
  const Field cover = joined ? Ahead(c, Left(c)) : Stated(c.offset + position, end - position);
  ShowInflated(in, cover, body->output, ProducedOf(*body));
}

}  // namespace qxview
