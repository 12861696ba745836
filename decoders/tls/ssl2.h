// SSL 2.0: its hellos, which old clients sent for later versions, too.
#pragma once
#include "decoders/tls/tls.h"

namespace qxview {

// The hello of a client, or the one that a server answers with, at the start of a payload.
bool StartsSsl2Hello(const Cursor& c);
// The record at the cursor when it is a hello; false, and nothing is taken, for another one.
bool ShowSsl2Record(const Place& in, Cursor& c, TlsSession& session);

}  // namespace qxview
