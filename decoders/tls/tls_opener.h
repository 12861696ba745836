// Opens the records of connections whose secrets are known. How far a direction has come is kept between frames: the keys
// in use and the number of its next record, which no record over TCP says. What is wrong with a guess shows in the
// record's tag or code, so that segments that come again, are lost or stand in another order are found out by trying.
#pragma once
#include "decoders/tls/tls_ciphers.h"

namespace qxview {

// A direction of a connection.
struct TlsOpener {
  uint64_t sequence;          // of the next record
  uint32_t messageLacking;    // bytes of a handshake's message that began in the record before
  uint16_t suite, version;
  uint8_t messageType;        // of that message
  uint8_t stage;              // whose keys they are: 0 before the first
  uint8_t failures;           // records behind one another that could not be opened
  uint8_t hello[16];          // of both randoms: whose keys these are
  uint8_t epoch;              // DTLS 1.3
  uint8_t unused[6];
  uint8_t vectors[4][16];     // TLS 1.0: the blocks before the last records, by the records' numbers
  TlsKeys keys;
  Rc4 stream;
};

// A record that was opened: what it holds, and where.
struct TlsOpened {
  Cursor content;             // its offset is that of the encrypted bytes
  Field innerType;            // from 1.3 on, and in records with connection identifiers
  Field padding;
  uint32_t type;
  uint32_t epoch;             // of records with the short header, whose number is hidden
  uint64_t sequence;
};

enum class TlsOpening : uint8_t {
  kOpened,
  kUnsupported,    // a suite or version that is not opened
  kCut,            // not all of the record is here
  kFailed,         // none of the keys opens it
};

// Whether there is a secret of the connection in this direction at all.
bool HasTlsSecrets(const View* view, const TlsSession& session);

// Opens the record's `body` into `out`, which has room for as many bytes. `opener` is the direction's; it is to be remembered
// afterwards, whatever came of it.
TlsOpening OpenTlsRecord(const View* view, const TlsSession& session, const TlsRecord& record, const Cursor& body,
                         TlsOpener& opener, uint8_t* out, TlsOpened* opened);

// The same for records with the short header of DTLS 1.3.
TlsOpening OpenDtls13Record(const View* view, const TlsSession& session, const TlsRecord& record, const Cursor& body,
                            TlsOpener& opener, uint8_t* out, TlsOpened* opened);

// What both need: opened bytes up to their type and the zeros that pad them; whose hellos an opener is of.
void TakeTlsInner(const uint8_t* content, int32_t offset, int32_t length, TlsOpened* opened);
void MarkTlsHello(const TlsConnection& connection, TlsOpener* opener);
bool IsOfTlsHello(const TlsConnection& connection, const TlsOpener& opener);

// What application data are handed to: the protocol that was agreed on, or the one that the port is of.
void ShowTlsApplicationData(const Place& in, const TlsSession& session, const TlsRecord& record, Cursor& c);

}  // namespace qxview
