// Records whose fragments are encrypted: a line with their length, and what is inside where the connection's secrets are
// known.
#include <cstring>

#include "core/line_facts.h"
#include "core/lines.h"
#include "core/opened_records.h"
#include "decoders/states.h"
#include "decoders/tls/tls_messages.h"
#include "decoders/tls/tls_opener.h"

namespace qxview {
namespace {

// What the last message of an opened record lacks, which goes on in the next.
void NoteLacking(Cursor c, TlsOpener& opener) {
  opener.messageLacking = 0;
  Loop loop;
  while (More(c, loop) && Left(c) >= 4) {
    const uint32_t type = TakeU8(c).value, length = TakeU24(c).value, left = static_cast<uint32_t>(Left(c));
    if (length > left) {
      opener.messageType = static_cast<uint8_t>(type);
      opener.messageLacking = length - left;
    }
    TakeCursor(c, length);
  }
}

void ShowMessages(const Place& in, TlsSession& session, const TlsRecord& record, TlsOpener& opener, Cursor& c) {
  if (opener.messageLacking > 0 && !record.isDatagram) {
    const uint32_t lacking = opener.messageLacking, left = static_cast<uint32_t>(Left(c));
    const Field rest = TakeBytes(c, lacking < left ? lacking : left);
    AddLine(in, rest, "Handshake Continuation: %s, %d of %u bytes", TlsMessageName(opener.messageType), rest.length, lacking);
    opener.messageLacking -= static_cast<uint32_t>(rest.length);
  }
  if (Left(c) < 1) return;
  if (!record.isDatagram) NoteLacking(c, opener);
  ShowTlsContent(in, session, record, kTlsHandshakeType, c);
}

void ShowOpened(const Place& in, TlsSession& session, const TlsRecord& record, TlsOpener& opener, TlsOpened& opened) {
  const DerivedLines derived(in.view);
  if (record.isShort) {
    AddLine(in, record.header, "Epoch: %u", opened.epoch);
    AddLine(in, record.header, "Sequence Number: %I64u", opened.sequence);
  }
  AddLine(in, opened.innerType, "Inner Content Type: %u = %s", opened.type, TlsContentName(opened.type));
  AddLine(in, opened.padding, "Padding: %d bytes", opened.padding.length);
  if (opened.type == kTlsHandshakeType) return ShowMessages(in, session, record, opener, opened.content);
  if (opened.type == kTlsApplicationData) return ShowTlsApplicationData(in, session, record, opened.content);
  ShowTlsContent(in, session, record, opened.type, opened.content);
}

const char* ReasonOf(TlsOpening opening) {
  switch (opening) {
    case TlsOpening::kUnsupported: return "not possible, cipher suite or version not supported";
    case TlsOpening::kCut: return "not possible, record is not complete";
    case TlsOpening::kFailed: return "failed, wrong secret or missing records";
    default: return nullptr;
  }
}

// Records within records are not told, nor datagrams.
bool IsTold(const Place& in, const TlsRecord& record) { return !record.isDatagram && in.view->context->derivedDepth == 0; }

void TellUnopened(const Place& in, const TlsRecord& record, OpenedRecord::How how) {
  if (IsTold(in, record)) {
    TellRecord(in.view, {how, record.type == kTlsApplicationData, 0, 0, nullptr, static_cast<int32_t>(record.length)});
  }
}

void TellOpened(const Place& in, const TlsRecord& record, const TlsOpener& opener, const TlsOpened& opened) {
  if (!IsTold(in, record)) return;
  uint64_t keys;
  std::memcpy(&keys, opener.keys.key, sizeof keys);
  TellRecord(in.view, {OpenedRecord::kOpened, opened.type == kTlsApplicationData, keys, opened.sequence, opened.content.at,
                       Left(opened.content)});
}

}  // namespace

void ShowTlsProtected(const Place& in, TlsSession& session, const TlsRecord& record, Cursor& body) {
  const KeyedAs keys(PacketOf(in), "tls");
  const uint32_t version = session.connection.version;
  // From version 1.3 on application data are what all records say that they hold (RFC 8446 5.2).
  const bool isHidden = (version == kTls13 || version == kDtls13) && record.type == kTlsApplicationData;
  const Cursor inside = body;
  const Field encrypted = Rest(body);
  AddLine(in, encrypted, "Encrypted %s: %u bytes%s", record.isShort ? "Record" : TlsContentName(record.type), record.length,
          isHidden ? ", content type hidden" : "");
  if (!session.keeps) return TellUnopened(in, record, OpenedRecord::kNoSecrets);
  const RequestKey key{session.key, {static_cast<uint32_t>(session.end)}};
  TlsOpener opener{};
  if (const TlsOpener* known = Recall(in.view, kTlsOpeners, key)) opener = *known;
  if (opener.stage == 0 && !HasTlsSecrets(in.view, session)) return TellUnopened(in, record, OpenedRecord::kNoSecrets);
  const OpenedBytes room(in.view, Left(inside));
  if (!room.data) return;
  TlsOpened opened;
  const TlsOpening opening = OpenTlsRecord(in.view, session, record, inside, opener, room.data, &opened);
  if (const char* reason = ReasonOf(opening)) {
    TellUnopened(in, record, OpenedRecord::kFailed);
    // keys: text Decryption
    AddLine(in, encrypted, "Decryption: %s", in.view->engine->cryptoMissing ? "needs OpenSSL's libcrypto" : reason);
  } else {
    TellOpened(in, record, opener, opened);
    ShowOpened(in, session, record, opener, opened);
  }
  if (opening != TlsOpening::kUnsupported) Remember(in.view, kTlsOpeners, key, opener);
}

}  // namespace qxview
