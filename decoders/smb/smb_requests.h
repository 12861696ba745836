// What the replies of transactions do not say: which function, information level or descriptors they answer with.
// Requests are kept for it by connection, TID, PID, UID and MID.
#pragma once
#include "decoders/smb/smb_block.h"

namespace qxview {

constexpr int32_t kRapDescriptorSize = 64;   // a longer one is not kept

struct SmbRequest {
  uint32_t function;    // of Trans2 and NT Transaction; of Trans on a pipe its setup word
  uint32_t level;       // information level, or the control code of an IOCTL
  uint32_t flags;       // of searches
  bool isRap;           // `function` is a remote administration call's
  char parameters[kRapDescriptorSize];   // descriptors of such a call; empty when there are none
  char data[kRapDescriptorSize];
  char auxiliary[kRapDescriptorSize];
};

struct KeptSmbRequest {
  uint64_t packet;   // its number
  SmbRequest request;
};

// Keeps a request of the current packet, that of the same packet before it is replaced. Nothing for packets that an
// error message quotes.
void LearnSmbRequest(const Place& at, const SmbMessage& message, const SmbRequest& request);

// The request that a reply of the current packet answers: of its command the last one before the packet. False when it
// was not seen.
bool FindSmbRequest(const Place& at, const SmbMessage& message, SmbRequest* out);

}  // namespace qxview
