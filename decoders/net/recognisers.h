// Recognisers: whether a transport's payload, taken alone, is of a protocol. They look at ports no more than at names:
// a payload is accepted for what its header says about itself, and refused when any of it contradicts the rest, so
// that random, compressed and encrypted bytes are not taken for a protocol. None reads outside the cursor or allocates.
#pragma once
#include "core/cursor.h"

namespace qxview {

using Recogniser = bool (*)(const Cursor& c);

// Over TCP: the payload starts with a message of the protocol. The message may end in a later segment.
bool LooksLikeMsrpc(const Cursor& c);         // DCE RPC, connection-oriented, version 5
bool LooksLikeSmb(const Cursor& c);           // SMB/CIFS behind a session or direct-TCP header; SMB 2 is not of it
bool LooksLikeTds(const Cursor& c);           // the first packet of a message
bool LooksLikeTns(const Cursor& c);
bool LooksLikeOncRpcRecord(const Cursor& c);  // ONC RPC behind a record marker
bool LooksLikeFix(const Cursor& c);           // "8=FIX" anywhere: a segment may start inside a message
bool LooksLikeSip(const Cursor& c);
bool LooksLikeHttp(const Cursor& c);          // of version 1
bool AsksForWebSocket(const Cursor& c);       // the message of HTTP that a connection of WebSocket begins with
bool LooksLikeGiop(const Cursor& c);
bool LooksLikeFcip(const Cursor& c);
bool LooksLikeBitTorrent(const Cursor& c);    // the handshake

// Over UDP: the payload is one whole message.
bool LooksLikeOncRpc(const Cursor& c);
bool LooksLikeMpegTs(const Cursor& c);        // packets of a transport stream, more than one

}  // namespace qxview
