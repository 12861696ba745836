// Fragments of datagrams of either IP version (RFC 791 section 3.2, RFC 8200 section 4.5), for the setting Reassembly:
// they are kept until the last one has come, in whatever order, and the datagram is shown in that one's frame. Messages of
// EAP, and those of DTLS that come in several records, are joined in the same way.
#pragma once
#include "core/byte_origins.h"
#include "core/decoder.h"
#include "core/state_table.h"
#include "decoders/net/connection_key.h"

namespace qxview {

struct IpFragment {
  BytePiece piece;
  int32_t offset;      // in the datagram's payload
  bool isLast;
  bool isDone;         // with it all were there
  uint8_t number;      // of fragments that tell no offset
  uint32_t total;      // of these: how long all of them are, 0 when that is not known
};

// What becomes of a fragment.
struct FragmentRun {
  int32_t length;      // of the payload that all of them make; 0 while some are missing
  int32_t kept;        // bytes
  int32_t needed;      // bytes that are missing; 0 when that is not known
  int32_t overlapping; // bytes that came more than once; the first ones count
  int32_t differing;   // of those, how many were others
  int32_t pieceCount;
};

// Whether the current packet's fragments are joined.
bool JoinsFragments(const Place& at);

// Takes in a fragment: the datagram's identification and protocol, where its bytes stand in the payload, and whether
// more follow. `joined` gets the payload when it is whole, and is empty otherwise.
FragmentRun TakeIpFragment(const Place& at, const Cursor& c, uint32_t identification, uint8_t protocol, uint32_t offset,
                           bool moreFollow, Cursor* joined);

// The same for fragments of any message: the key tells it from others of its connection's direction.
FragmentRun TakeFragment(const Place& at, const Cursor& c, const RequestKey& key, uint32_t offset, bool moreFollow,
                         Cursor* joined);

// The same for a protocol whose fragments tell no offset but come strictly one behind the other. `number` tells one from
// the next, `total` is how long all of them are, 0 when this one does not say it. A fragment may lie in several pieces of
// the frame. Nothing is kept of what is no part of a message that was seen from its start on.
struct NextFragment {
  const BytePiece* pieces;
  int32_t pieceCount;
  uint8_t number;
  uint32_t total;
  bool moreFollow;
};
FragmentRun TakeNextFragment(const Place& at, const Cursor& c, const RequestKey& key, const NextFragment& fragment,
                             Cursor* joined);

// The bytes behind the table of their pieces, as an answer keeps them; empty where there are none.
Cursor JoinKept(const Place& at, const StateBytes& bytes, int32_t length, int32_t pieceCount, int32_t start);

// The line that says what the fragment waits for, or what the datagram was made of.
void TellFragments(const Place& at, const Cursor& c, const FragmentRun& run);

}  // namespace qxview
