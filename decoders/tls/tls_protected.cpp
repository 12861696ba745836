// Records whose fragments are encrypted.
#include "core/line_facts.h"
#include "decoders/tls/tls.h"
#include "decoders/tls/tls_names.h"

namespace qxview {

void ShowTlsProtected(const Place& in, TlsSession& session, const TlsRecord& record, Cursor& body) {
  const KeyedAs keys(PacketOf(in), "tls");
  const uint32_t version = session.connection.version;
  // From version 1.3 on application data are what all records say that they hold (RFC 8446 5.2).
  const bool isHidden = (version == kTls13 || version == kDtls13) && record.type == kTlsApplicationData;
  const Field encrypted = Rest(body);
  AddLine(in, encrypted, "Encrypted %s: %u bytes%s", record.isShort ? "Record" : TlsContentName(record.type), record.length,
          isHidden ? ", content type hidden" : "");
}

}  // namespace qxview
