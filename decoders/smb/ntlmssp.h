// NTLM authentication (MS-NLMP): the three messages of a login, carried by SPNEGO or alone in the security fields of
// SMB, LDAP, RPC and others.
//
//   0          8     12
//   "NTLMSSP"  type  fields by type, among them buffers of length (2), room (2) and offset (4)      what they point at
//
// Numbers are little-endian; offsets count from the signature's first byte.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Whether the bytes begin with the signature.
bool StartsNtlmssp(const Cursor& c);

// One message, as lines at the place. Result: 1, or 0 and nothing added for bytes without the signature.
int32_t DecodeNtlmssp(const Place& in, Cursor c);

// A response to the challenge of version 2: a proof, and what it was made from. A dump when it is too short for one.
void AddNtlmV2Response(const Place& in, const Field& response, const char* title);

}  // namespace qxview
