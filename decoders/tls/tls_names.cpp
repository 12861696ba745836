#include "decoders/tls/tls_names.h"

#include "core/name_table.h"

namespace qxview {
namespace {

constexpr auto kVersions = SortedNames({
    {0x0002, "SSL 2.0"}, {0x0100, "DTLS 1.0 (OpenSSL pre 0.9.8f)"}, {0x0300, "SSL 3.0"}, {0x0301, "TLS 1.0"},
    {0x0302, "TLS 1.1"}, {0x0303, "TLS 1.2"}, {0x0304, "TLS 1.3"}, {0xFEFC, "DTLS 1.3"}, {0xFEFD, "DTLS 1.2"},
    {0xFEFF, "DTLS 1.0"}});
constexpr auto kDrafts = SortedNames({
    {0x7F0E, "TLS 1.3 (draft 14)"}, {0x7F0F, "TLS 1.3 (draft 15)"}, {0x7F10, "TLS 1.3 (draft 16)"},
    {0x7F11, "TLS 1.3 (draft 17)"}, {0x7F12, "TLS 1.3 (draft 18)"}, {0x7F13, "TLS 1.3 (draft 19)"},
    {0x7F14, "TLS 1.3 (draft 20)"}, {0x7F15, "TLS 1.3 (draft 21)"}, {0x7F16, "TLS 1.3 (draft 22)"},
    {0x7F17, "TLS 1.3 (draft 23)"}, {0x7F18, "TLS 1.3 (draft 24)"}, {0x7F19, "TLS 1.3 (draft 25)"},
    {0x7F1A, "TLS 1.3 (draft 26)"}, {0x7F1B, "TLS 1.3 (draft 27)"}, {0x7F1C, "TLS 1.3 (draft 28)"}, {0x7F2B, "DTLS 1.3 (draft 43)"},
    {0xFB17, "TLS 1.3 (Facebook draft 23)"}, {0xFB1A, "TLS 1.3 (Facebook draft 26)"}});
constexpr auto kContents = SortedNames({
    {20, "Change Cipher Spec"}, {21, "Alert"}, {22, "Handshake"}, {23, "Application Data"}, {24, "Heartbeat"},
    {25, "Connection ID"}, {26, "ACK"}, {27, "Return Routability Check"}});
constexpr auto kMessages = SortedNames({
    {0, "Hello Request"}, {1, "Client Hello"}, {2, "Server Hello"}, {3, "Hello Verify Request"},
    {4, "New Session Ticket"}, {5, "End of Early Data"}, {6, "Hello Retry Request"}, {8, "Encrypted Extensions"},
    {9, "Request Connection ID"}, {10, "New Connection ID"}, {11, "Certificate"}, {12, "Server Key Exchange"},
    {13, "Certificate Request"}, {14, "Server Hello Done"}, {15, "Certificate Verify"}, {16, "Client Key Exchange"},
    {17, "Client Certificate Request"}, {20, "Finished"}, {21, "Certificate URL"}, {22, "Certificate Status"},
    {23, "Supplemental Data"}, {24, "Key Update"}, {25, "Compressed Certificate"}, {26, "EKT Key"},
    {67, "Next Protocol"}, {203, "Encrypted Extensions (Channel ID)"}, {254, "Message Hash"}});
constexpr auto kAlerts = SortedNames({
    {0, "close_notify"}, {1, "end_of_early_data (drafts)"}, {10, "unexpected_message"}, {20, "bad_record_mac"},
    {21, "decryption_failed"},
    {22, "record_overflow"}, {30, "decompression_failure"}, {40, "handshake_failure"}, {41, "no_certificate"},
    {42, "bad_certificate"}, {43, "unsupported_certificate"}, {44, "certificate_revoked"}, {45, "certificate_expired"},
    {46, "certificate_unknown"}, {47, "illegal_parameter"}, {48, "unknown_ca"}, {49, "access_denied"},
    {50, "decode_error"}, {51, "decrypt_error"}, {52, "too_many_cids_requested"}, {60, "export_restriction"},
    {70, "protocol_version"}, {71, "insufficient_security"}, {80, "internal_error"}, {86, "inappropriate_fallback"},
    {90, "user_canceled"}, {100, "no_renegotiation"}, {109, "missing_extension"}, {110, "unsupported_extension"},
    {111, "certificate_unobtainable"}, {112, "unrecognized_name"}, {113, "bad_certificate_status_response"},
    {114, "bad_certificate_hash_value"}, {115, "unknown_psk_identity"}, {116, "certificate_required"},
    {117, "general_error"}, {120, "no_application_protocol"}, {121, "ech_required"}});
constexpr auto kLevels = SortedNames({{1, "Warning"}, {2, "Fatal"}});

constexpr NameTableEntry kSuites[] = {
#include "decoders/tls/tls_suites.inc"
};
constexpr auto kSsl2Suites = SortedNames({
    {0x010080, "SSL2_RC4_128_WITH_MD5"}, {0x020080, "SSL2_RC4_128_EXPORT40_WITH_MD5"},
    {0x030080, "SSL2_RC2_CBC_128_CBC_WITH_MD5"}, {0x040080, "SSL2_RC2_CBC_128_CBC_EXPORT40_WITH_MD5"},
    {0x050080, "SSL2_IDEA_128_CBC_WITH_MD5"}, {0x060040, "SSL2_DES_64_CBC_WITH_MD5"},
    {0x0700C0, "SSL2_DES_192_EDE3_CBC_WITH_MD5"}, {0x080080, "SSL2_RC4_64_WITH_MD5"}});

constexpr auto kGroups = SortedNames({
    {1, "sect163k1"}, {2, "sect163r1"}, {3, "sect163r2"}, {4, "sect193r1"}, {5, "sect193r2"}, {6, "sect233k1"},
    {7, "sect233r1"}, {8, "sect239k1"}, {9, "sect283k1"}, {10, "sect283r1"}, {11, "sect409k1"}, {12, "sect409r1"},
    {13, "sect571k1"}, {14, "sect571r1"}, {15, "secp160k1"}, {16, "secp160r1"}, {17, "secp160r2"}, {18, "secp192k1"},
    {19, "secp192r1"}, {20, "secp224k1"}, {21, "secp224r1"}, {22, "secp256k1"}, {23, "secp256r1"}, {24, "secp384r1"},
    {25, "secp521r1"}, {26, "brainpoolP256r1"}, {27, "brainpoolP384r1"}, {28, "brainpoolP512r1"}, {29, "x25519"},
    {30, "x448"}, {31, "brainpoolP256r1tls13"}, {32, "brainpoolP384r1tls13"}, {33, "brainpoolP512r1tls13"},
    {34, "GC256A"}, {35, "GC256B"}, {36, "GC256C"}, {37, "GC256D"}, {38, "GC512A"}, {39, "GC512B"}, {40, "GC512C"},
    {41, "curveSM2"}, {256, "ffdhe2048"}, {257, "ffdhe3072"}, {258, "ffdhe4096"}, {259, "ffdhe6144"},
    {260, "ffdhe8192"}, {512, "MLKEM512"}, {513, "MLKEM768"}, {514, "MLKEM1024"}, {0x11EB, "SecP256r1MLKEM768"},
    {0x11EC, "X25519MLKEM768"}, {0x11ED, "SecP384r1MLKEM1024"}, {0x11EE, "curveSM2MLKEM768"},
    {0x6399, "X25519Kyber768Draft00"}, {0x639A, "SecP256r1Kyber768Draft00"}, {0xFE31, "X25519Kyber512Draft00"},
    {0xFE32, "X25519Kyber768Draft00 (experimental)"}, {0xFF01, "arbitrary_explicit_prime_curves"},
    {0xFF02, "arbitrary_explicit_char2_curves"}});
constexpr auto kSchemes = SortedNames({
    {0x0101, "rsa_md5"}, {0x0201, "rsa_pkcs1_sha1"}, {0x0202, "dsa_sha1"}, {0x0203, "ecdsa_sha1"},
    {0x0301, "rsa_sha224"},
    {0x0302, "dsa_sha224"}, {0x0303, "ecdsa_sha224"}, {0x0401, "rsa_pkcs1_sha256"}, {0x0402, "dsa_sha256"},
    {0x0403, "ecdsa_secp256r1_sha256"}, {0x0420, "rsa_pkcs1_sha256_legacy"}, {0x0501, "rsa_pkcs1_sha384"},
    {0x0502, "dsa_sha384"}, {0x0503, "ecdsa_secp384r1_sha384"}, {0x0520, "rsa_pkcs1_sha384_legacy"},
    {0x0601, "rsa_pkcs1_sha512"}, {0x0602, "dsa_sha512"}, {0x0603, "ecdsa_secp521r1_sha512"},
    {0x0620, "rsa_pkcs1_sha512_legacy"}, {0x0704, "eccsi_sha256"}, {0x0705, "iso_ibs1"}, {0x0706, "iso_ibs2"},
    {0x0707, "iso_chinese_ibs"}, {0x0708, "sm2sig_sm3"}, {0x0709, "gostr34102012_256a"}, {0x070A, "gostr34102012_256b"},
    {0x070B, "gostr34102012_256c"}, {0x070C, "gostr34102012_256d"}, {0x070D, "gostr34102012_512a"},
    {0x070E, "gostr34102012_512b"}, {0x070F, "gostr34102012_512c"}, {0x0804, "rsa_pss_rsae_sha256"},
    {0x0805, "rsa_pss_rsae_sha384"}, {0x0806, "rsa_pss_rsae_sha512"}, {0x0807, "ed25519"}, {0x0808, "ed448"},
    {0x0809, "rsa_pss_pss_sha256"}, {0x080A, "rsa_pss_pss_sha384"}, {0x080B, "rsa_pss_pss_sha512"},
    {0x081A, "ecdsa_brainpoolP256r1tls13_sha256"}, {0x081B, "ecdsa_brainpoolP384r1tls13_sha384"},
    {0x081C, "ecdsa_brainpoolP512r1tls13_sha512"}, {0x0904, "mldsa44"}, {0x0905, "mldsa65"}, {0x0906, "mldsa87"},
    {0x0911, "slhdsa_sha2_128s"}, {0x0912, "slhdsa_sha2_128f"}, {0x0913, "slhdsa_sha2_192s"},
    {0x0914, "slhdsa_sha2_192f"}, {0x0915, "slhdsa_sha2_256s"}, {0x0916, "slhdsa_sha2_256f"},
    {0x0917, "slhdsa_shake_128s"}, {0x0918, "slhdsa_shake_128f"}, {0x0919, "slhdsa_shake_192s"},
    {0x091A, "slhdsa_shake_192f"}, {0x091B, "slhdsa_shake_256s"}, {0x091C, "slhdsa_shake_256f"},
    {0xEEEE, "gostr34102012_256_intrinsic"}, {0xEFEF, "gostr34102012_512_intrinsic"}});
constexpr auto kHashes = SortedNames({
    {0, "none"}, {1, "md5"}, {2, "sha1"}, {3, "sha224"}, {4, "sha256"}, {5, "sha384"}, {6, "sha512"},
    {8, "Intrinsic"}});
constexpr auto kSignatures = SortedNames({
    {0, "anonymous"}, {1, "rsa"}, {2, "dsa"}, {3, "ecdsa"}, {7, "ed25519"}, {8, "ed448"}, {64, "gostr34102012_256"},
    {65, "gostr34102012_512"}});
constexpr auto kCompressions = SortedNames({{0, "null"}, {1, "DEFLATE"}, {64, "LZS"}});
constexpr auto kCertificateCompressions = SortedNames({{1, "zlib"}, {2, "brotli"}, {3, "zstd"}});
constexpr auto kPointFormats = SortedNames({
    {0, "uncompressed"}, {1, "ansiX962_compressed_prime"}, {2, "ansiX962_compressed_char2"}});
constexpr auto kCurveTypes = SortedNames({{1, "explicit_prime"}, {2, "explicit_char2"}, {3, "named_curve"}});
constexpr auto kPskModes = SortedNames({{0, "psk_ke"}, {1, "psk_dhe_ke"}});
constexpr auto kCertificateTypes = SortedNames({{0, "X509"}, {1, "OpenPGP"}, {2, "Raw Public Key"}, {3, "1609Dot2"}});
constexpr auto kClientCertificateTypes = SortedNames({
    {1, "rsa_sign"}, {2, "dss_sign"}, {3, "rsa_fixed_dh"}, {4, "dss_fixed_dh"}, {5, "rsa_ephemeral_dh"},
    {6, "dss_ephemeral_dh"}, {20, "fortezza_dms"}, {21, "gost_sign94 (legacy)"}, {22, "gost_sign (legacy)"},
    {64, "ecdsa_sign"},
    {65, "rsa_fixed_ecdh"}, {66, "ecdsa_fixed_ecdh"}, {67, "gost_sign256"}, {68, "gost_sign512"},
    {80, "ibc_params"}});
constexpr auto kMappings = SortedNames({{64, "upn_domain_hint"}});
constexpr auto kAuthorizations = SortedNames({
    {0, "x509_attr_cert"}, {1, "saml_assertion"}, {2, "x509_attr_cert_url"}, {3, "saml_assertion_url"},
    {64, "keynote_assertion_list"}, {65, "keynote_assertion_list_url"}, {66, "dtcp_authorization"}});
constexpr auto kStatusTypes = SortedNames({{1, "ocsp"}, {2, "ocsp_multi"}});
constexpr auto kExtensions = SortedNames({
    {0, "server_name"}, {1, "max_fragment_length"}, {2, "client_certificate_url"}, {3, "trusted_ca_keys"},
    {4, "truncated_hmac"}, {5, "status_request"}, {6, "user_mapping"}, {7, "client_authz"}, {8, "server_authz"},
    {9, "cert_type"}, {10, "supported_groups"}, {11, "ec_point_formats"}, {12, "srp"}, {13, "signature_algorithms"},
    {14, "use_srtp"}, {15, "heartbeat"}, {16, "application_layer_protocol_negotiation"}, {17, "status_request_v2"},
    {18, "signed_certificate_timestamp"}, {19, "client_certificate_type"}, {20, "server_certificate_type"},
    {21, "padding"}, {22, "encrypt_then_mac"}, {23, "extended_master_secret"}, {24, "token_binding"},
    {25, "cached_info"}, {26, "tls_lts"}, {27, "compress_certificate"}, {28, "record_size_limit"}, {29, "pwd_protect"},
    {30, "pwd_clear"}, {31, "password_salt"}, {32, "ticket_pinning"}, {33, "tls_cert_with_extern_psk"},
    {34, "delegated_credential"}, {35, "session_ticket"}, {36, "TLMSP"}, {37, "TLMSP_proxying"},
    {38, "TLMSP_delegate"}, {39, "supported_ekt_ciphers"}, {40, "key_share (drafts)"}, {41, "pre_shared_key"},
    {42, "early_data"},
    {43, "supported_versions"}, {44, "cookie"}, {45, "psk_key_exchange_modes"}, {46, "ticket_early_data_info (drafts)"},
    {47, "certificate_authorities"},
    {48, "oid_filters"}, {49, "post_handshake_auth"}, {50, "signature_algorithms_cert"}, {51, "key_share"},
    {52, "transparency_info"}, {53, "connection_id (deprecated)"}, {54, "connection_id"}, {55, "external_id_hash"},
    {56, "external_session_id"}, {57, "quic_transport_parameters"}, {58, "ticket_request"}, {59, "dnssec_chain"},
    {60, "sequence_number_encryption_algorithms"}, {61, "rrc"}, {62, "tls_flags"}, {13172, "next_protocol_negotiation"},
    {17513, "application_settings"}, {17613, "application_settings (new)"}, {30031, "channel_id (old)"},
    {30032, "channel_id"}, {0xFD00, "ech_outer_extensions"}, {0xFE0D, "encrypted_client_hello"},
    {0xFF01, "renegotiation_info"}, {0xFFA5, "quic_transport_parameters (drafts)"}, {0xFFCE, "encrypted_server_name"}});
constexpr auto kKdfs = SortedNames({{1, "HKDF-SHA256"}, {2, "HKDF-SHA384"}, {3, "HKDF-SHA512"}, {0x0010, "SHAKE128"}, {0x0011, "SHAKE256"},
    {0x0012, "TurboSHAKE128"}, {0x0013, "TurboSHAKE256"}});
constexpr auto kAeads = SortedNames({
    {1, "AES-128-GCM"}, {2, "AES-256-GCM"}, {3, "ChaCha20Poly1305"}, {0xFFFF, "Export-only"}});
constexpr auto kKems = SortedNames({
    {0x0010, "DHKEM(P-256, HKDF-SHA256)"}, {0x0011, "DHKEM(P-384, HKDF-SHA384)"}, {0x0012, "DHKEM(P-521, HKDF-SHA512)"},
    {0x0013, "DHKEM(CP-256, HKDF-SHA256)"}, {0x0014, "DHKEM(CP-384, HKDF-SHA384)"},
    {0x0015, "DHKEM(CP-521, HKDF-SHA512)"}, {0x0016, "DHKEM(secp256k1, HKDF-SHA256)"},
    {0x0020, "DHKEM(X25519, HKDF-SHA256)"}, {0x0021, "DHKEM(X448, HKDF-SHA512)"},
    {0x0030, "X25519Kyber768Draft00"}, {0x0040, "ML-KEM-512"}, {0x0041, "ML-KEM-768"}, {0x0042, "ML-KEM-1024"},
    {0x0050, "MLKEM768-P256"}, {0x0051, "MLKEM1024-P384"}, {0x647A, "X-Wing"}});
constexpr auto kSrtpProfiles = SortedNames({
    {1, "SRTP_AES128_CM_HMAC_SHA1_80"}, {2, "SRTP_AES128_CM_HMAC_SHA1_32"}, {3, "SRTP_AES256_CM_SHA1_80"},
    {4, "SRTP_AES256_CM_SHA1_32"}, {5, "SRTP_NULL_HMAC_SHA1_80"}, {6, "SRTP_NULL_HMAC_SHA1_32"},
    {7, "SRTP_AEAD_AES_128_GCM"}, {8, "SRTP_AEAD_AES_256_GCM"}, {9, "DOUBLE_AEAD_AES_128_GCM_AEAD_AES_128_GCM"},
    {10, "DOUBLE_AEAD_AES_256_GCM_AEAD_AES_256_GCM"}, {11, "SRTP_ARIA_128_CTR_HMAC_SHA1_80"},
    {12, "SRTP_ARIA_128_CTR_HMAC_SHA1_32"}, {13, "SRTP_ARIA_256_CTR_HMAC_SHA1_80"},
    {14, "SRTP_ARIA_256_CTR_HMAC_SHA1_32"}, {15, "SRTP_AEAD_ARIA_128_GCM"}, {16, "SRTP_AEAD_ARIA_256_GCM"}});

constexpr char kGrease[] = "GREASE";

template <size_t kRows>
const char* OrGrease(const NameTable<kRows>& table, uint32_t value) {
  return LookupName(table, value, IsGrease(value) ? kGrease : kUnknown);
}

}  // namespace

const char* TlsVersionName(uint32_t version) {
  if (IsGrease(version)) return kGrease;
  return LookupName(kVersions, version, LookupName(kDrafts, version));
}
const char* TlsContentName(uint32_t type) { return LookupName(kContents, type); }
const char* TlsMessageName(uint32_t type) { return LookupName(kMessages, type); }
const char* LookupTlsMessage(uint32_t type) { return LookupName(kMessages, type, nullptr); }
const char* TlsAlertName(uint32_t description) { return LookupName(kAlerts, description); }
const char* TlsAlertLevelName(uint32_t level) { return LookupName(kLevels, level); }
const char* TlsSuiteName(uint32_t suite) {
  return LookupName(kSuites, suite, static_cast<int32_t>(sizeof kSuites / sizeof kSuites[0]), kUnknown);
}
const char* Ssl2SuiteName(uint32_t suite) {
  return suite <= 0xFFFF ? TlsSuiteName(suite) : LookupName(kSsl2Suites, suite);
}
const char* TlsGroupName(uint32_t group) { return OrGrease(kGroups, group); }
const char* TlsSchemeName(uint32_t scheme) { return OrGrease(kSchemes, scheme); }
const char* TlsHashName(uint32_t hash) { return LookupName(kHashes, hash); }
const char* TlsSignatureName(uint32_t signature) { return LookupName(kSignatures, signature); }
const char* TlsCompressionName(uint32_t method) { return LookupName(kCompressions, method); }
const char* TlsCertificateCompressionName(uint32_t algorithm) { return OrGrease(kCertificateCompressions, algorithm); }
const char* TlsPointFormatName(uint32_t format) { return LookupName(kPointFormats, format); }
const char* TlsCurveTypeName(uint32_t type) { return LookupName(kCurveTypes, type); }
// One octet: 0x0B, 0x2A and so on by 0x1F (RFC 8701 2).
const char* TlsPskModeName(uint32_t mode) {
  return LookupName(kPskModes, mode, mode >= 0x0B && (mode - 0x0B) % 0x1F == 0 && mode <= 0xE4 ? kGrease : kUnknown);
}
const char* TlsCertificateTypeName(uint32_t type) { return LookupName(kCertificateTypes, type); }
const char* TlsClientCertificateTypeName(uint32_t type) { return LookupName(kClientCertificateTypes, type); }
const char* TlsStatusTypeName(uint32_t type) { return LookupName(kStatusTypes, type); }
const char* TlsExtensionName(uint32_t type) { return OrGrease(kExtensions, type); }
const char* TlsMappingName(uint32_t type) { return LookupName(kMappings, type); }
const char* TlsAuthorizationName(uint32_t format) { return LookupName(kAuthorizations, format); }
const char* TlsKdfName(uint32_t kdf) { return LookupName(kKdfs, kdf); }
const char* TlsAeadName(uint32_t aead) { return LookupName(kAeads, aead); }
const char* TlsKemName(uint32_t kem) { return LookupName(kKems, kem); }
const char* SrtpProfileName(uint32_t profile) { return LookupName(kSrtpProfiles, profile); }

}  // namespace qxview
