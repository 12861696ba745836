// Secure Shell: what its files share.
#pragma once
#include "core/rows.h"
#include "decoders/net/connection_key.h"

namespace qxview {

// How the keys are exchanged: what the messages from 30 on mean.
enum class SshExchange : uint8_t { kUnknown, kDiffieHellman, kGroupExchange, kEllipticCurve, kRsa, kGss };

// What an end has sent so far.
struct SshEnd {
  uint8_t version;        // 1 or 2 by its version line; 0: not seen
  bool encrypted;         // NEWKEYS was sent
  bool encryptedBefore;   // the last segment
  bool clearLength;       // of its packets behind that
  uint8_t macLength;      // likewise; 0xFF: not known
  uint32_t before, behind;               // its last segment: where it began, where it ended
  uint32_t lackingBefore, lackingBehind; // bytes of a packet that were missing there
};
struct SshConnection {
  SshEnd ends[2];
  SshExchange exchange;
};

// The name lists that an end has offered, as its KEXINIT has them.
struct SshOffer {
  uint32_t unused;
};

// A host key or a signature: both begin with a name.
void ShowSshHostKey(const Place& in, Cursor& c);
void ShowSshSignature(const Place& in, Cursor& c);

// A string: bytes behind their number. `show` makes the line; without it the bytes are hexadecimal.
Field TakeSshString(const Place& in, Cursor& c, const char* label);
void ShowSshText(const Place& in, Cursor& c, const char* label);
void ShowSshNumber(const Place& in, Cursor& c, const char* label);   // of any length, the sign first

// The messages of the transport layer.
struct SshMessage {
  SshConnection* connection;
  int32_t end;
  bool fromClient;
};
void ShowSshMessage(const Place& in, Cursor& c, uint32_t code, SshMessage& message);
// How keys are exchanged where the lists of both ends were not seen: by what fills a message.
SshExchange GuessSshExchange(uint32_t code, Cursor body);
const char* SshMessageName(uint32_t code, SshExchange exchange);

// The messages of version 1 that are in clear.
void ShowSsh1Message(const Place& in, Cursor& c, uint32_t type);

// KEXINIT: its lists, and what both ends agree on once both have offered.
void ShowSshKeyExchangeInit(const Place& in, Cursor& c, SshMessage& message);

}  // namespace qxview
