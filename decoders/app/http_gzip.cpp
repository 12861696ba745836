// gzip bodies (RFC 1952, RFC 1951): where the compressed data are, and what they inflate to.
#include <zlib.h>

#include <cstdlib>
#include <cstring>

#include "decoders/app/http_message.h"

namespace qxview {

// What inflation works with: made once an engine, so that no decoding after the first one allocates.
struct HttpInflater {
  z_stream stream;
  uint32_t used;                      // of the arena
  alignas(8) uint8_t arena[65536];   // what zlib allocates: its state and window, about 40 KB
  uint8_t output[kInflatedSize];
};

namespace {

constexpr uint8_t kMagic1 = 0x1F, kMagic2 = 0x8B;
constexpr int32_t kMostHeaderCopied = 80000;   // of a member header that stands in more than one segment
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
  for (int32_t at = 0; at < length;) {
    const int32_t end = FindLineEnd(data + at, length - at);
    if (end < 0) return 0;
    at += end + 2;
    if (end == 0) return at;
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
  if (FindLineEnd(line, magic) != magic - 2) return length;
  const HttpChunkSize chunk = ReadChunkSize(line, magic - 2);
  return chunk.valid && chunk.size < length - magic ? magic + chunk.size : length;
}

voidpf AllocateFromArena(voidpf opaque, uInt items, uInt size) {
  auto* inflater = static_cast<HttpInflater*>(opaque);
  const uint64_t wanted = (uint64_t{items} * size + 7) & ~uint64_t{7};
  if (wanted > sizeof inflater->arena - inflater->used) return nullptr;
  uint8_t* given = inflater->arena + inflater->used;
  inflater->used += static_cast<uint32_t>(wanted);
  return given;
}
void KeepInArena(voidpf, voidpf) {}

bool StartStream(HttpInflater& inflater, int32_t windowBits) {
  inflater.used = 0;
  std::memset(&inflater.stream, 0, sizeof inflater.stream);
  inflater.stream.zalloc = AllocateFromArena;
  inflater.stream.zfree = KeepInArena;
  inflater.stream.opaque = &inflater;
  inflater.stream.next_out = inflater.output;
  inflater.stream.avail_out = kInflatedSize;
  // The version whose interface this is written to; later libraries of the same major version take it.
  return inflateInit2_(&inflater.stream, windowBits, "1.2.3", static_cast<int>(sizeof(z_stream))) == Z_OK;
}

// Inflates the chain's bytes from `position` to `end` until the stream ends or breaks or the output is full; returns
// the bytes of output.
int32_t InflateOnce(HttpInflater& inflater, const ByteChain& chain, int32_t position, int32_t end, int32_t windowBits) {
  if (!StartStream(inflater, windowBits)) return 0;
  z_stream& stream = inflater.stream;
  int result = Z_OK;
  int32_t start = 0;
  for (int32_t i = 0; i < chain.count && start < end && result == Z_OK && stream.avail_out > 0; ++i) {
    const ByteRun& run = chain.runs[i];
    const int32_t first = position > start ? position - start : 0;
    const int32_t last = end - start < run.length ? end - start : run.length;
    start += run.length;
    if (first >= last) continue;
    stream.next_in = const_cast<Bytef*>(run.bytes + first);   // zlib does not write to it
    stream.avail_in = static_cast<uInt>(last - first);
    result = inflate(&stream, Z_SYNC_FLUSH);
  }
  inflateEnd(&stream);
  return kInflatedSize - static_cast<int32_t>(stream.avail_out);
}

// The data behind a member header are raw deflate data. Servers were seen to send a whole member there, or deflate data
// in zlib's wrapping.
int32_t Inflate(HttpInflater& inflater, const ByteChain& chain, int32_t position, int32_t end) {
  constexpr int32_t kMember = 15 + 16, kRaw = -15, kWrapped = 15;
  const int32_t forms[kMostTries] = {kMember, kRaw, kWrapped, 0};
  for (int32_t i = StartsMember(chain, position) ? 0 : 1; forms[i] != 0; ++i) {
    const int32_t produced = InflateOnce(inflater, chain, position, end, forms[i]);
    if (produced > 0) return produced;
  }
  return 0;
}

// The inflated text in lines: they end at LF, with or without a CR before it.
void ShowInflated(const Place& in, const Field& cover, const uint8_t* text, int32_t length) {
  for (int32_t at = 0; at < length && !PacketOf(in).limitReached;) {
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

void DestroyHttpInflater(HttpInflater* inflater) { std::free(inflater); }

void DecodeHttpGzip(const Place& in, HttpState& state, bool continuation, const Cursor& c) {
  if (!state.inflater) state.inflater = static_cast<HttpInflater*>(std::malloc(sizeof(HttpInflater)));
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
      header = inflater.output;   // free until inflation starts
      there = CopyOut(chain, magic, inflater.output, there < kMostHeaderCopied ? there : kMostHeaderCopied);
    }
    ShowGzipHeader(in, MakeCursor(header, joined ? c.offset : c.offset + magic, there), joined);
    const int32_t headerLength = GzipHeaderLength(header, there);
    if (headerLength < 0) return;
    position = magic + headerLength;
  }
  const int32_t produced = Inflate(inflater, chain, position, end);
  const Field cover = joined ? Ahead(c, Left(c)) : Stated(c.offset + position, end - position);
  ShowInflated(in, cover, inflater.output, produced);
}

}  // namespace qxview
