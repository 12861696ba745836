// The search for the headers of a message that began in an earlier segment of the connection.
#include <cstddef>
#include <cstring>

#include "decoders/app/http_message.h"
#include "decoders/states.h"

namespace qxview {
namespace {

// What a message starts with. Other methods start messages, too; a segment that starts with one is not recognised here.
struct MessageStart {
  uint16_t capacity;   // of the text with its terminator
  const char* text;
};
constexpr MessageStart kMessageStarts[] = {{4, "GET"},   {5, "HEAD"},    {5, "POST"}, {4, "PUT"}, {7, "DELETE"},
                                           {6, "TRACE"}, {8, "CONNECT"}, {6, "HTTP/"}};

static_assert([] {
  for (const MessageStart& start : kMessageStarts) {
    if (start.capacity - 1 > kMessageStart) return false;
  }
  return true;
}());

bool StartsMessage(const uint8_t* data, int32_t length) {
  for (const MessageStart& start : kMessageStarts) {
    const int32_t wanted = start.capacity - 1;
    if (length >= wanted && std::memcmp(data, start.text, static_cast<size_t>(wanted)) == 0) return true;
  }
  return false;
}

// Whether the line starts with the header name, in capitals or not; its value then.
bool ReadNamed(const uint8_t* line, int32_t length, const char* name, TextSlice* value) {
  const int32_t nameLength = static_cast<int32_t>(std::strlen(name));
  if (length < nameLength) return false;
  for (int32_t i = 0; i < nameLength; ++i) {
    const uint8_t lower = line[i] >= 'A' && line[i] <= 'Z' ? static_cast<uint8_t>(line[i] | 0x20) : line[i];
    if (lower != static_cast<uint8_t>(name[i])) return false;
  }
  int32_t start = nameLength;
  while (start < length && (line[start] == ' ' || line[start] == '\t')) ++start;
  *value = {reinterpret_cast<const char*>(line) + start, length - start};
  return true;
}

bool ValueStarts(const TextSlice& value, const char* word) {
  const int32_t wanted = static_cast<int32_t>(std::strlen(word));
  return value.length >= wanted && std::memcmp(value.text, word, static_cast<size_t>(wanted)) == 0;
}

// What the headers of the message at `data` say of its body.
int32_t ReadContext(const uint8_t* data, int32_t length) {
  int32_t context = 0;
  while (length > 0) {
    const int32_t end = FindLineEnd(MakeCursor(data, 0, length));
    if (end == 0) break;
    const int32_t lineLength = end < 0 ? length : end;
    const int32_t looked = lineLength < kMostTextLineShown ? lineLength : kMostTextLineShown;
    TextSlice value;
    if (ReadNamed(data, looked, "content-type:", &value)) {
      if (ValueStarts(value, "text")) context = kTextContext;
      if (ValueStarts(value, "image")) return kImageContext;
    } else if (ReadNamed(data, looked, "content-encoding:", &value)) {
      if (ValueStarts(value, "gzip")) return kGzipContext;
    }
    if (end < 0) break;
    data += end + 2;
    length -= end + 2;
  }
  return context;
}

}  // namespace

int32_t FindHttpHeaderContext(View* view, const uint8_t* data, int32_t length, int32_t maxSegments,
                              HttpHistory* history) {
  history->count = 0;
  history->finished = false;
  PacketState& packet = view->context->packet;
  const QxHost* host = view->engine->host;
  const auto earlierSegment = QXVIEW_HOST_FUNCTION(host, earlierSegment);
  if (StartsMessage(data, length) || !packet.segment.here || !earlierSegment) return 0;
  if (maxSegments > kMostEarlierSegments) maxSegments = kMostEarlierSegments;
  // Later segments join the bytes of this one to theirs where it has a part of a compressed body. Those of others pass over it on
  // their way to the headers, which takes no more than to see that it starts no message.
  int32_t& wanted = packet.segment.wanted;
  const int32_t whole = wanted;
  if (data == packet.segment.payload && wanted > kMessageStart) wanted = kMessageStart;
  for (int32_t back = 1; back <= maxSegments + 1; ++back) {
    const auto ask = [&](EarlierSegment* out, StateBytes* payload) {
      QxSegment segment{};
      segment.size = sizeof segment;
      if (!earlierSegment(host->user, &packet.source, packet.sourcePort, &packet.destination, packet.destinationPort,
                          back, &segment) ||
          !segment.payload || segment.length < 1) {
        return false;
      }
      *out = {segment.packetNumber, segment.sequence, segment.flags};
      *payload = {segment.payload, static_cast<uint32_t>(segment.length)};
      return true;
    };
    EarlierSegment found{};
    StateBytes payload{};
    if (!RecallFromHost(view, kEarlierSegments, &found, &payload, ask)) return 0;
    QxSegment& segment = history->segments[history->count++];
    segment = {sizeof segment, static_cast<int32_t>(payload.length), payload.data,
               found.sequence, found.flags, found.packetNumber};
    constexpr uint32_t kFin = 1;
    if (segment.flags & kFin) history->finished = true;
    if (!StartsMessage(segment.payload, segment.length)) continue;
    const int32_t context = ReadContext(segment.payload, segment.length);
    if (context == kGzipContext) wanted = whole;
    return context;
  }
  return 0;
}

}  // namespace qxview
