// QUIC: what its files share. Packets are told apart by their headers (RFC 8999), whose short form says nothing of itself:
// what a connection's long headers said is remembered for it.
#pragma once
#include "core/rows.h"
#include "decoders/net/connection_key.h"

namespace qxview {

constexpr int32_t kQuicProtocol = 0x10268;   // as definitions name it
constexpr int32_t kMostQuicId = 20;          // bytes of a connection ID in the versions that have names
constexpr uint8_t kQuicIdUnknown = 0xFF;
constexpr int32_t kQuicTagLength = 16;

struct QuicId {
  uint8_t length;
  uint8_t octets[kMostQuicId];
};

// The secrets of 1-RTT packets of an end: those in use and those before the last update. Most connections have none, as nobody
// knows their keys.
struct QuicTrafficKey {
  ConnectionKey connection;
  uint8_t clientRandom[32];
  uint64_t sender;            // the end, and above bit 8 the attempt
};
constexpr int32_t kMostQuicSecret = 48;
struct QuicTraffic {
  uint8_t length;   // 0: none is in use
  uint8_t phase;    // the bit that packets with the current one carry
  uint8_t current[kMostQuicSecret], previous[kMostQuicSecret];
};

enum class QuicContent : uint8_t { kUnknown, kHttp3, kDns };

// What a connection's packets leave for those behind them.
struct QuicConnection {
  uint32_t version;
  uint8_t client;              // the end that sent the first packet
  uint8_t idLength[2];         // of the IDs by which packets reach an end
  QuicId original;             // the destination of the client's first Initial packet: Initial keys are made from it
  uint8_t attempt;             // counts the first IDs: Retry and new connections on the same ports begin anew
  QuicContent content;         // what the streams carry, once that is known
  uint16_t cipherSuite;        // that the server chose
  uint8_t clientRandom[32];    // by which a key log is searched
  uint64_t largest[3][2];      // packet numbers, by space and sending end
};

enum class QuicKind : uint8_t { kInitial, kZeroRtt, kHandshake, kRetry, kOneRtt, kNegotiation };

// Whose turn it is to change what is remembered: a packet, and the last of its frames that did.
struct QuicTurn {
  uint64_t packet;   // its number, one more
  uint32_t frame;
};

// The connection of the current packet.
struct QuicSession {
  ConnectionKey key;
  int32_t sender;       // end that the packet came from
  bool known, changed;
  QuicConnection state;
  QuicTurn turn;        // the packet and the frame that are shown
  LineHandle packetLine;
};

// A connection ID by which packets find their connection when ports have changed: the end that it leads to.
struct QuicIdKey {
  uint8_t octets[kMostQuicId];
  uint32_t length;
};
struct QuicIdOwner {
  ConnectionKey connection;
  uint8_t end;
};
void RememberQuicId(const Place& at, const Field& id, const QuicSession& session);   // one that the sender is reached by


// What a frame finds: a packet's first finds what the packets before left, a further one what those in front of it did.
template <class T>
void TakeTurn(const QuicTurn& mine, QuicTurn& last, T& before, T& now) {
  if (last.packet != mine.packet) {
    before = now;
  } else if (mine.frame <= last.frame) {
    now = before;
  }
  last = mine;
}

// A packet whose header was read.
struct QuicPacket {
  QuicKind kind;
  uint32_t version;
  Cursor whole;          // from its first byte to its last, as far as they are there
  int32_t numberAt;      // bytes in front of the packet number
  bool cut;              // it goes on behind what was captured
};

// A number of variable length (RFC 9000 16): the first two bits say how many bytes.
WideField TakeQuicNumber(Cursor& c);

// The same with a line, "Label: 5". Result: its value, 0 when it is not here.
uint64_t ShowQuicNumber(const Place& in, Cursor& c, const char* label);

QuicId QuicIdOf(const Field& field);   // none for one that is too long

// "Version 1", "Draft 29", "Q046".
ShortText<24> QuicVersionText(uint32_t version);
void ShowQuicVersion(const Place& in, const Field& version);
void ShowSupportedVersions(const Place& in, Cursor& c);   // of a negotiation, up to the end
bool IsGoogleQuicVersion(uint32_t version);     // those with headers of their own
uint32_t QuicDraftOf(uint32_t version);         // the draft that a version follows, 0 for those that follow an RFC
constexpr uint32_t kQuicVersion1 = 1, kQuicVersion2 = 0x6B3343CF;

// Whether the bytes start a long header of a version that has a name.
bool LooksLikeQuic(const Cursor& c);

// Whether the packet's ports belong to a connection whose long headers were seen.
bool IsQuicConnection(const Place& at);
int32_t DecodeQuic(const Place& at, Cursor c);

// A packet of the versions before IETF's, with a header of its own; takes the whole datagram. Result: 0 for none.
int32_t DecodeGoogleQuic(const Place& at, Cursor& c, QuicSession& session);
bool StartsGoogleQuic(const Cursor& c, const QuicSession& session);

}  // namespace qxview
