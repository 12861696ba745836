// SMB, also called CIFS (MS-CIFS 2.2, MS-SMB 2.2), over any of its carriers.
//
//   0     4         5        9       10        12        14          22    24    26    28    30    32
//   FF SMB  command  status   flags   flags 2   PID high  signature   pad   TID   PID   UID   MID   block ...
//   block   word count (1)   words (2 each)   byte count (2)   bytes
//
// Numbers are little-endian. A block of an AndX command names the next command and where its block starts, counted from
// the header's first byte.
#pragma once
#include "core/decoder.h"

namespace qxview {

// The results of every decoder here.
enum SmbResult : int32_t { kSmbNotDecoded = 0, kSmbDecoded = 1, kSmbTruncated = 2 };

constexpr int32_t kSmbHeaderSize = 32;

// One message. Fewer than 33 bytes: 2, and nothing is added. Bytes without the marker: the continuation of a message
// that an earlier segment began, where the carrier allows for one, else 0.
int32_t DecodeSmb(const Place& at, Cursor c, bool continuationAllowed);

// The same for the rest of a cursor. A datagram is a whole message: 0 for what is not one. A piece of a session begins a
// message or goes on with one, and is always shown.
int32_t DecodeSmbDatagram(const Place& at, Cursor c);
int32_t DecodeSmbPiece(const Place& at, Cursor c);

// Shows bytes that go on with a message of an earlier segment. Result: 1.
int32_t DecodeSmbContinuation(const Place& at, const Cursor& c);

// A TCP payload of messages behind their four bytes of type and length. The result is the first message's that is one.
int32_t DecodeSmbOverTcp(const Place& at, Cursor c);

const char* SmbCommandName(uint32_t command);   // "Undefined" for one that has none

}  // namespace qxview
