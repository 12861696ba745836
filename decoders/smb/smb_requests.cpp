#include "decoders/smb/smb_requests.h"

#include <cstdlib>
#include <cstring>

#include "decoders/net/connection_key.h"

namespace qxview {
namespace {

constexpr int32_t kSets = 512, kWays = 8;

struct RequestKey {
  ConnectionKey connection;
  uint32_t pid;
  uint16_t tid, uid, mid;
  uint8_t command, unused;
  uint32_t padding;
};
static_assert(sizeof(RequestKey) == 56, "compared and hashed as bytes");

struct Entry {
  RequestKey key;
  uint64_t packet;     // its number
  uint32_t learnt;     // by the table's clock; 0 for a place that was never used
  SmbRequest request;
};

struct SmbRequests {
  uint32_t clock;
  Entry entries[kSets][kWays];
};

// Secondary requests and their replies go with the transaction that they carry on.
uint8_t PrimaryCommand(uint32_t command) {
  const bool secondary = command == 38 || command == 51 || command == 161;
  return static_cast<uint8_t>(secondary ? command - 1 : command);
}

RequestKey KeyOf(const Place& at, const SmbMessage& message) {
  RequestKey key{};
  int32_t direction;
  key.connection = ConnectionOf(PacketOf(at), &direction);
  key.pid = message.pid;
  key.tid = static_cast<uint16_t>(message.tid);
  key.uid = static_cast<uint16_t>(message.uid);
  key.mid = static_cast<uint16_t>(message.mid);
  key.command = PrimaryCommand(message.command);
  return key;
}

uint64_t NumberOf(const Place& at) {
  const FrameRecord* frame = PacketOf(at).frame;
  return frame ? static_cast<uint64_t>(frame->packetNumber) : 0;
}

Entry* SetOf(SmbRequests* requests, const RequestKey& key) {
  return requests->entries[HashKey(&key, sizeof key) % kSets];
}

bool Holds(const Entry& entry, const RequestKey& key) {
  return entry.learnt && std::memcmp(&entry.key, &key, sizeof key) == 0;
}

// The clock has gone round: all ages start again.
void RestartAges(SmbRequests* requests) {
  for (auto& set : requests->entries) {
    for (Entry& entry : set) entry.learnt = entry.learnt ? 1 : 0;
  }
  requests->clock = 1;
}

}  // namespace

void* CreateSmbRequests() { return std::calloc(1, sizeof(SmbRequests)); }
void DestroySmbRequests(void* state) { std::free(state); }

void LearnSmbRequest(const Place& at, const SmbMessage& message, const SmbRequest& request) {
  auto* requests = StateOf<SmbRequests>(at.view->engine, DecoderState::kSmbRequests);
  if (!requests || PacketOf(at).quoted) return;
  const RequestKey key = KeyOf(at, message);
  Entry* set = SetOf(requests, key);
  Entry* place = &set[0];
  for (int32_t i = 0; i < kWays; ++i) {
    if (set[i].learnt < place->learnt) place = &set[i];
  }
  for (int32_t i = 0; i < kWays; ++i) {
    if (Holds(set[i], key) && set[i].packet == NumberOf(at)) place = &set[i];
  }
  if (++requests->clock == 0) RestartAges(requests);
  *place = {key, NumberOf(at), requests->clock, request};
}

const SmbRequest* FindSmbRequest(const Place& at, const SmbMessage& message) {
  auto* requests = StateOf<SmbRequests>(at.view->engine, DecoderState::kSmbRequests);
  if (!requests || PacketOf(at).quoted) return nullptr;
  const RequestKey key = KeyOf(at, message);
  const Entry* set = SetOf(requests, key);
  const Entry* found = nullptr;
  for (int32_t i = 0; i < kWays; ++i) {
    const bool fits = Holds(set[i], key) && set[i].packet <= NumberOf(at);
    if (fits && (!found || set[i].packet > found->packet)) found = &set[i];
  }
  return found ? &found->request : nullptr;
}

}  // namespace qxview
