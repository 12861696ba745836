#include "decoders/net/window_scales.h"

#include <cstdlib>
#include <cstring>

#include "core/decoder.h"
#include "decoders/net/connection_key.h"

namespace qxview {
namespace {

constexpr int32_t kSets = 4096, kWays = 4;
constexpr int32_t kHighestExponent = 14;   // RFC 7323 section 2.3: more is taken as this

struct Direction {
  uint32_t synSequence;
  int8_t exponent;
  bool synSeen;
  bool answers;   // the SYN was an answer
};

struct Connection {
  ConnectionKey key;
  Direction directions[2];   // from the first end, from the second
  uint32_t lastUsed;         // by the table's clock; 0 for a place that was never used
};

struct WindowScales {
  uint32_t clock;
  Connection connections[kSets][kWays];
};

Connection* SetOf(WindowScales* scales, const ConnectionKey& key) {
  return scales->connections[HashKey(&key, sizeof key) % kSets];
}

Connection* FindConnection(WindowScales* scales, const ConnectionKey& key) {
  Connection* set = SetOf(scales, key);
  for (int32_t i = 0; i < kWays; ++i) {
    if (set[i].lastUsed && std::memcmp(&set[i].key, &key, sizeof key) == 0) return &set[i];
  }
  return nullptr;
}

Connection* AddConnection(WindowScales* scales, const ConnectionKey& key) {
  Connection* set = SetOf(scales, key);
  Connection* oldest = &set[0];
  for (int32_t i = 1; i < kWays; ++i) {
    if (set[i].lastUsed < oldest->lastUsed) oldest = &set[i];
  }
  *oldest = Connection{};
  oldest->key = key;
  return oldest;
}

// The clock has gone round: all ages start again.
void RestartAges(WindowScales* scales) {
  for (auto& set : scales->connections) {
    for (Connection& connection : set) connection.lastUsed = connection.lastUsed ? 1 : 0;
  }
  scales->clock = 1;
}

void MarkUsed(WindowScales* scales, Connection* connection) {
  if (++scales->clock == 0) RestartAges(scales);
  connection->lastUsed = scales->clock;
}

}  // namespace

void* CreateWindowScales() { return std::calloc(1, sizeof(WindowScales)); }
void DestroyWindowScales(void* state) { std::free(state); }

void RecordSynSegment(const Place& at, uint32_t sequence, bool acknowledges, int32_t exponent) {
  auto* scales = StateOf<WindowScales>(at.view->engine, DecoderState::kWindowScales);
  if (!scales) return;
  int32_t from;
  const ConnectionKey key = ConnectionOf(PacketOf(at), &from);
  Connection* connection = FindConnection(scales, key);
  if (!connection) connection = AddConnection(scales, key);
  MarkUsed(scales, connection);
  Direction& own = connection->directions[from];
  const bool repeated = own.synSeen && own.synSequence == sequence;
  if (!acknowledges && !repeated) connection->directions[1 - from] = Direction{};
  own.synSeen = true;
  own.answers = acknowledges;
  own.synSequence = sequence;
  own.exponent = static_cast<int8_t>(exponent > kHighestExponent ? kHighestExponent : exponent);
}

int32_t FindWindowScale(const Place& at) {
  auto* scales = StateOf<WindowScales>(at.view->engine, DecoderState::kWindowScales);
  if (!scales) return kNoWindowScale;
  int32_t from;
  const ConnectionKey key = ConnectionOf(PacketOf(at), &from);
  Connection* connection = FindConnection(scales, key);
  if (!connection) return kNoWindowScale;
  MarkUsed(scales, connection);
  const Direction& own = connection->directions[from];
  const Direction& other = connection->directions[1 - from];
  if (!own.synSeen || own.exponent < 0) return kNoWindowScale;
  // An answer holds the option only where the SYN did, so that a SYN from before the capture is known of too.
  const bool otherSent = other.synSeen ? other.exponent >= 0 : own.answers;
  return otherSent ? own.exponent : kNoWindowScale;
}

}  // namespace qxview
