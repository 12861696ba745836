// What a domain controller says of itself when a client looks for one (MS-ADTS 6.3.1.9): the value of an attribute in
// LDAP's answer over UDP, and a message to a mailslot.
//
//   command (2), reserved (2), flags (4), domain GUID (16), forest, domain, host, NetBIOS domain, NetBIOS host, user,
//   site of the server, site of the client, [size (1), socket address: family (2), port (2), address (4), zeros (8)],
//   [next closest site], versions (4), tokens (2, 2)
//
// Numbers are low byte first. Names are DNS labels, whose pointers count from the value's first byte.
#pragma once
#include "core/decoder.h"

namespace qxview {

enum LogonCommand : uint32_t {
  kLogonRequest = 0x00, kLogonResponse1 = 0x04, kLogonResponse2 = 0x06, kPrimaryQuery = 0x07, kAnnounceChange = 0x0A,
  kPrimaryResponse = 0x0C, kSamLogon = 0x12, kSamResponse = 0x13, kSamPaused = 0x14, kSamUnknownUser = 0x15,
  kExtendedResponse = 0x17, kExtendedPaused = 0x18, kExtendedUnknownUser = 0x19,
};
const char* LogonCommandName(uint32_t command);

// What stands behind the command, up to the versions. The cursor began at the value's first byte. A name that is cut
// ends it: false, and the rest is left.
bool AddLogonResponse(const Place& in, Cursor& c);

// Its parts, of which other commands have some.
bool AddLogonName(const Place& in, Cursor& c, const char* label);
void AddLogonFlags(const Place& in, Cursor& c);
void AddLogonVersions(const Place& in, Cursor& c);
constexpr int32_t kLogonVersionsSize = 8;

}  // namespace qxview
