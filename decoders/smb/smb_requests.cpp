#include "decoders/smb/smb_requests.h"

#include "decoders/states.h"

namespace qxview {
namespace {

// Secondary requests and their replies go with the transaction that they carry on.
uint32_t PrimaryCommand(uint32_t command) {
  const bool secondary = command == 38 || command == 51 || command == 161;
  return secondary ? command - 1 : command;
}

RequestKey KeyOf(const Place& at, const SmbMessage& message) {
  const uint32_t command = PrimaryCommand(message.command);
  return RequestOf(PacketOf(at), message.pid, message.tid, message.uid, message.mid << 8 | command);
}

uint64_t NumberOf(const Place& at) {
  const FrameRecord* frame = PacketOf(at).frame;
  return frame ? static_cast<uint64_t>(frame->packetNumber) : 0;
}

}  // namespace

void LearnSmbRequest(const Place& at, const SmbMessage& message, const SmbRequest& request) {
  if (PacketOf(at).quoted) return;
  const RequestKey key = KeyOf(at, message);
  const KeptSmbRequest learnt{NumberOf(at), request};
  int32_t back = 1;
  const KeptSmbRequest* known;
  while ((known = Recall(at.view, kSmbRequests, key, back)) && known->packet != learnt.packet) ++back;
  if (known) {
    Revise(at.view, kSmbRequests, key, back, learnt);
  } else {
    Remember(at.view, kSmbRequests, key, learnt);
  }
}

bool FindSmbRequest(const Place& at, const SmbMessage& message, SmbRequest* out) {
  if (PacketOf(at).quoted) return false;
  const RequestKey key = KeyOf(at, message);
  uint64_t last = 0;
  bool found = false;
  // Packets are not always decoded in their order: the last one told need not be the last one before this one.
  for (int32_t back = 1; const KeptSmbRequest* known = Recall(at.view, kSmbRequests, key, back); ++back) {
    if (known->packet > NumberOf(at) || (found && known->packet <= last)) continue;
    found = true;
    last = known->packet;
    *out = known->request;
  }
  return found;
}

}  // namespace qxview
