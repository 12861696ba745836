// The streams of a QUIC connection: bytes in their order, whatever packets brought them, and what they carry.
#pragma once
#include "core/decoder.h"
#include "decoders/app/web_body.h"
#include "decoders/quic/quic.h"

namespace qxview {

// The data of a CRYPTO frame: handshake messages of TLS, as soon as they are whole.
void ShowQuicCryptoData(const Place& in, const Field& data, uint64_t offset, QuicKind kind, QuicSession& session);

// The data of a STREAM frame.
void ShowQuicStreamData(const Place& in, const Field& data, uint64_t stream, uint64_t offset, bool isLast,
                        QuicSession& session);

// What is kept of a direction of a stream: bytes that came before those in front of them, and those that what they carry
// needs more of. A packet may be decoded again when it is looked at again, so what was before it is known as well.
struct QuicStreamKey {
  ConnectionKey connection;
  uint64_t stream;
  uint32_t space;     // 0 and 1: the handshake's, 2: the application's handshake data, 3: streams; the sender above bit 8
  uint32_t attempt;
};
struct QuicStreamPart {
  uint64_t done;         // all before this was shown
  uint64_t bodyLeft;     // of a frame of HTTP/3 whose bytes are not kept
  uint32_t type;         // of a unidirectional stream of HTTP/3, one more than it says; 0: not known yet
  bool isBody;           // those are of a DATA frame
  WebBody body;          // of a request or a response of HTTP/3
  uint32_t pieceCount;
  struct Piece {
    uint32_t from, length;
  } pieces[kMostQuicPieces];   // of the bytes that are kept: in order and apart
};
struct QuicStream {
  QuicTurn turn;
  QuicStreamPart before, now;   // the bytes that are kept start at `before.done`
};

}  // namespace qxview
