// The names of TLS's registries (IANA, Transport Layer Security Parameters and Extensions), as functions: rows name their
// values by them. Values of the form 0x?A?A are GREASE (RFC 8701): clients mix them in, and servers ignore them.
#pragma once
#include <cstdint>

#include "core/formatter.h"

namespace qxview {

inline bool IsGrease(uint32_t value) { return (value & 0x0F0F) == 0x0A0A && value >> 8 == (value & 0xFF); }

const char* TlsVersionName(uint32_t version);
const char* TlsContentName(uint32_t type);
const char* TlsMessageName(uint32_t type);
const char* LookupTlsMessage(uint32_t type);          // null for none
const char* TlsAlertName(uint32_t description);
const char* TlsAlertLevelName(uint32_t level);
const char* TlsSuiteName(uint32_t suite);
const char* Ssl2SuiteName(uint32_t suite);
const char* TlsGroupName(uint32_t group);
const char* TlsSchemeName(uint32_t scheme);          // of signatures
const char* TlsHashName(uint32_t hash);
const char* TlsSignatureName(uint32_t signature);
const char* TlsCompressionName(uint32_t method);
const char* TlsCertificateCompressionName(uint32_t algorithm);
const char* TlsPointFormatName(uint32_t format);
const char* TlsCurveTypeName(uint32_t type);
const char* TlsPskModeName(uint32_t mode);
const char* TlsCertificateTypeName(uint32_t type);   // X.509, raw public key
const char* TlsClientCertificateTypeName(uint32_t type);   // of a request: rsa_sign, ecdsa_sign
const char* TlsStatusTypeName(uint32_t type);
const char* TlsExtensionName(uint32_t type);
const char* TlsMappingName(uint32_t type);           // of users
const char* TlsAuthorizationName(uint32_t format);
const char* TlsKdfName(uint32_t kdf);                // of hybrid public key encryption (RFC 9180)
const char* TlsAeadName(uint32_t aead);
const char* TlsKemName(uint32_t kem);
const char* SrtpProfileName(uint32_t profile);

}  // namespace qxview
