// The TLS data of OpenVPN's control packets in their order: packets are numbered for each session, key and direction, sent
// again when they were lost, and hold pieces of TLS records. What is known of a packet's data is where they stand in that
// stream; for the setting Reassembly the pieces of records that are not whole yet are kept as well. What a packet lets be
// shown is worked out once, and the same packet gets the same answer again.
#pragma once
#include "core/byte_origins.h"
#include "core/decoder.h"
#include "decoders/net/connection_key.h"

namespace qxview {

struct VpnPieceKey {
  ConnectionKey connection;   // the sender first
  uint32_t session[2];
  uint32_t keyId, number;
};

struct VpnPiece {
  BytePiece piece;
  uint32_t position;                 // in the stream
  uint32_t frontNumber, frontAt;     // where the record begins that its first byte is of: a packet and a place in its data
  uint32_t openNumber, openAt;       // where the one begins that goes on behind it, or behind those it was shown with
  uint32_t lastNumber;               // of the packets that had come early and were shown with it
  bool isPlaced;                     // the stream before it is known
  bool isAhead;                      // it was not when the packet came
  uint8_t unused[6];
};

// What becomes of a control packet's data.
struct VpnRun {
  uint32_t position;     // in the stream: of the first byte that is shown
  int32_t shown;         // bytes to show together: whole records; 0 for none
  int32_t pieceCount;    // of packets that brought those; 0 where all stand in this packet
  int32_t own;           // the packet's own bytes among them
  bool isPlaced;         // what is before them is known
  bool isAhead;          // they wait for packets before them
  bool isSeen;           // another packet brought them
  uint8_t unused;
};

// Takes in the data at the cursor. `joined` gets the bytes to show where other packets brought some of them.
VpnRun TakeVpnData(const Place& at, const Cursor& c, const VpnPieceKey& key, Cursor* joined);

}  // namespace qxview
