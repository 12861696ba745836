// What the secret that RADIUS clients and servers share opens and proves (RFC 2865, sections 3 and 5.2; salted values:
// RFC 2868, section 3.5; Message-Authenticator: RFC 3579, section 3.2; requests of servers: RFC 5176, section 2.3).
#pragma once
#include "core/digest.h"
#include "core/rows.h"

namespace qxview {

constexpr int32_t kRadiusAuthenticatorSize = 16;
constexpr int32_t kMostRadiusValue = 256;

// By what a request's replies are proved and their values opened.
struct RadiusRequest {
  uint8_t authenticator[kRadiusAuthenticatorSize];
};

// Which conversation of EAP a request goes on with.
struct EapConversation {
  uint32_t number[2];
};

struct RadiusSecret {
  ByteSpan text;            // without bytes when the user gave none
  Field packet;             // all of it, as its length says; not here when some is missing
  RadiusRequest request;
  bool isRequest, hasRequest;
};

// The secret and what it needs of the packet, or of the request that was seen before; requests are remembered.
RadiusSecret PrepareRadiusSecret(const Place& at, const Cursor& packet);

// A line that says whether the packet's authenticator is the one that the secret gives.
void ShowAuthenticatorStatus(const Place& in, const RadiusSecret& secret);
// The same of the value of the Message-Authenticator attribute.
void ShowMessageAuthenticatorStatus(const Place& in, const RadiusSecret& secret, const Field& value);

// The plain bytes of a hidden value, in `buffer`; a `salt` that is here stands in front of it, and a length before its
// first byte. Says what is missing when it cannot be opened, and gives a cursor without bytes.
Cursor OpenRadiusValue(const Place& in, const RadiusSecret& secret, const char* name, const Field& value,
                       const Field& salt, uint8_t (&buffer)[kMostRadiusValue]);

}  // namespace qxview
