// SPNEGO (RFC 4178), the negotiation of an authentication mechanism, in the tokens of GSS-API (RFC 2743 3.1):
//
//   60 length  06 length mechanism  what the mechanism sends        the first token
//   A0 length  NegTokenInit: mechanisms [0], flags [1], token [2], hints or integrity code [3], integrity code [4]
//   A1 length  NegTokenResp: state [0], mechanism [1], token [2], integrity code [3]
#pragma once
#include "core/decoder.h"

namespace qxview {

// A security blob of any kind, under a line "Security Blob": SPNEGO, NTLM alone, tokens of other mechanisms as dumps.
// Nothing for an empty one.
void AddSecurityBlob(const Place& in, const Field& blob);

}  // namespace qxview
