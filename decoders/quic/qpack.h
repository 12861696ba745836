// QPACK (RFC 9204): the field lines of HTTP/3, compressed against a static table and one that each connection fills.
#pragma once
#include "core/decoder.h"
#include "decoders/app/web_body.h"
#include "decoders/quic/quic.h"

namespace qxview {

// An entry of a connection's table, by its number among all that were inserted. Its bytes are name and value.
struct QpackKey {
  ConnectionKey connection;
  uint64_t number;
  uint32_t encoder;    // the end that inserts
  uint32_t attempt;
};
struct QpackEntry {
  uint32_t nameLength;
};
// How many an end has inserted; under the number 0.
struct QpackTable {
  QuicTurn turn;
  uint64_t before, now;
};

// The field lines of a whole HEADERS frame, behind which `c` stands, and what they say of the body.
void ShowFieldSection(const Place& in, Cursor& c, const QuicSession& session, WebBody& body);

// Instructions of the encoder's and the decoder's streams; the bytes of those that are whole are taken.
void ShowEncoderInstructions(const Place& in, Cursor& c, const QuicSession& session);
void ShowDecoderInstructions(const Place& in, Cursor& c);

}  // namespace qxview
