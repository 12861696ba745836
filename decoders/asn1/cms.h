// The Cryptographic Message Syntax (RFC 5652, and PKCS #7 before it): what is signed, enveloped, digested, encrypted,
// authenticated (RFC 5083) and compressed (RFC 3274), for whatever carries it.
#pragma once
#include "decoders/asn1/der.h"

namespace qxview {

// Shows octets that a message holds as they are; null: they are a block. The depth is the caller's own.
struct CmsData {
  void (*show)(const Place& in, Cursor& c, int32_t depth);
  int32_t depth;
  const char* keys;   // what the lines of these octets are keyed as; filled in by ShowCms
};

// The ContentInfo at the cursor, up to the cursor's end.
void ShowCms(const Place& in, Cursor& c, const CmsData& data);

}  // namespace qxview
