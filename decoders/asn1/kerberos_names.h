// The names of Kerberos codes: RFC 4120 section 7.5 and the registries that continue it.
#pragma once
#include "core/name_table.h"

namespace qxview {

// Negative codes, of one vendor's use, as the table's unsigned ones.
constexpr uint32_t Negative(int32_t code) { return static_cast<uint32_t>(code); }

inline constexpr auto kKrbMessageNames = SortedNames({
    {10, "AS-REQ"}, {11, "AS-REP"}, {12, "TGS-REQ"}, {13, "TGS-REP"}, {14, "AP-REQ"}, {15, "AP-REP"},
    {16, "KRB-TGT-REQ"}, {17, "KRB-TGT-REP"}, {20, "KRB-SAFE"}, {21, "KRB-PRIV"}, {22, "KRB-CRED"},
    {30, "KRB-ERROR"}});

inline constexpr auto kKrbNameTypeNames = SortedNames({
    {0, "NT-UNKNOWN"}, {1, "NT-PRINCIPAL"}, {2, "NT-SRV-INST"}, {3, "NT-SRV-HST"}, {4, "NT-SRV-XHST"}, {5, "NT-UID"},
    {6, "NT-X500-PRINCIPAL"}, {7, "NT-SMTP-NAME"}, {10, "NT-ENTERPRISE"}, {11, "NT-WELLKNOWN"},
    {12, "NT-SRV-HST-DOMAIN"}, {Negative(-130), "NT-ENT-PRINCIPAL-AND-ID"},
    {Negative(-129), "NT-MS-PRINCIPAL-AND-ID"}, {Negative(-128), "NT-MS-PRINCIPAL"}});

inline constexpr auto kKrbEncryptionNames = SortedNames({
    {0, "NULL"}, {1, "des-cbc-crc"}, {2, "des-cbc-md4"}, {3, "des-cbc-md5"}, {5, "des3-cbc-md5"},
    {7, "des3-cbc-sha1"}, {9, "dsaWithSHA1-CmsOID"}, {10, "md5WithRSAEncryption-CmsOID"},
    {11, "sha1WithRSAEncryption-CmsOID"}, {12, "rc2CBC-EnvOID"}, {13, "rsaEncryption-EnvOID"},
    {14, "rsaES-OAEP-ENV-OID"}, {15, "des-ede3-cbc-Env-OID"}, {16, "des3-cbc-sha1-kd"},
    {17, "aes128-cts-hmac-sha1-96"}, {18, "aes256-cts-hmac-sha1-96"}, {19, "aes128-cts-hmac-sha256-128"},
    {20, "aes256-cts-hmac-sha384-192"}, {23, "rc4-hmac"}, {24, "rc4-hmac-exp"}, {25, "camellia128-cts-cmac"},
    {26, "camellia256-cts-cmac"}, {65, "subkey-keymaterial"}, {Negative(-141), "rc4-plain-exp"},
    {Negative(-140), "rc4-plain"}, {Negative(-136), "rc4-plain-old-exp"}, {Negative(-135), "rc4-hmac-old-exp"},
    {Negative(-134), "rc4-plain-old"}, {Negative(-133), "rc4-hmac-old"}, {Negative(-132), "des-plain"},
    {Negative(-131), "rc4-sha"}, {Negative(-130), "rc4-lm"}, {Negative(-129), "rc4-plain2"},
    {Negative(-128), "rc4-md4"}});

inline constexpr auto kKrbChecksumNames = SortedNames({
    {0, "none"}, {1, "CRC32"}, {2, "rsa-md4"}, {3, "rsa-md4-des"}, {4, "des-mac"}, {5, "des-mac-k"},
    {6, "rsa-md4-des-k"}, {7, "rsa-md5"}, {8, "rsa-md5-des"}, {9, "rsa-md5-des3"}, {10, "sha1"},
    {12, "hmac-sha1-des3-kd"}, {13, "hmac-sha1-des3"}, {14, "sha1"}, {15, "hmac-sha1-96-aes128"},
    {16, "hmac-sha1-96-aes256"}, {17, "cmac-camellia128"}, {18, "cmac-camellia256"}, {19, "hmac-sha256-128-aes128"},
    {20, "hmac-sha384-192-aes256"}, {0x8003, "GSS-API"}, {Negative(-138), "hmac-md5"}, {Negative(-137), "md5-hmac"}});

inline constexpr auto kKrbAddressNames = SortedNames({
    {2, "IPv4"}, {3, "Directional"}, {5, "ChaosNet"}, {6, "XNS"}, {7, "ISO"}, {12, "DECnet Phase IV"},
    {16, "AppleTalk DDP"}, {20, "NetBIOS"}, {24, "IPv6"}});

inline constexpr auto kKrbPaNames = SortedNames({
    {1, "PA-TGS-REQ"}, {2, "PA-ENC-TIMESTAMP"}, {3, "PA-PW-SALT"}, {5, "PA-ENC-UNIX-TIME"},
    {6, "PA-SANDIA-SECUREID"}, {7, "PA-SESAME"}, {8, "PA-OSF-DCE"}, {9, "PA-CYBERSAFE-SECUREID"}, {10, "PA-AFS3-SALT"},
    {11, "PA-ETYPE-INFO"}, {12, "PA-SAM-CHALLENGE"}, {13, "PA-SAM-RESPONSE"}, {14, "PA-PK-AS-REQ-OLD"},
    {15, "PA-PK-AS-REP-OLD"}, {16, "PA-PK-AS-REQ"}, {17, "PA-PK-AS-REP"}, {18, "PA-PK-OCSP-RESPONSE"},
    {19, "PA-ETYPE-INFO2"}, {20, "PA-SVR-REFERRAL-INFO"}, {21, "PA-SAM-REDIRECT"}, {22, "PA-GET-FROM-TYPED-DATA"},
    {23, "PA-SAM-ETYPE-INFO"}, {24, "PA-ALT-PRINC"}, {25, "PA-SERVER-REFERRAL"}, {30, "PA-SAM-CHALLENGE2"},
    {31, "PA-SAM-RESPONSE2"}, {41, "PA-EXTRA-TGT"}, {101, "TD-PKINIT-CMS-CERTIFICATES"}, {102, "TD-KRB-PRINCIPAL"},
    {103, "TD-KRB-REALM"}, {104, "TD-TRUSTED-CERTIFIERS"}, {105, "TD-CERTIFICATE-INDEX"},
    {106, "TD-APP-DEFINED-ERROR"}, {107, "TD-REQ-NONCE"}, {108, "TD-REQ-SEQ"}, {109, "TD-DH-PARAMETERS"},
    {111, "TD-CMS-DIGEST-ALGORITHMS"}, {112, "TD-CERT-DIGEST-ALGORITHMS"}, {128, "PA-PAC-REQUEST"},
    {129, "PA-FOR-USER"}, {130, "PA-FOR-X509-USER"}, {131, "PA-FOR-CHECK-DUPS"}, {132, "PA-AS-CHECKSUM"},
    {133, "PA-FX-COOKIE"}, {134, "PA-AUTHENTICATION-SET"}, {135, "PA-AUTH-SET-SELECTED"}, {136, "PA-FX-FAST"},
    {137, "PA-FX-ERROR"}, {138, "PA-ENCRYPTED-CHALLENGE"}, {141, "PA-OTP-CHALLENGE"}, {142, "PA-OTP-REQUEST"},
    {143, "PA-OTP-CONFIRM"}, {144, "PA-OTP-PIN-CHANGE"}, {145, "PA-EPAK-AS-REQ"}, {146, "PA-EPAK-AS-REP"},
    {147, "PA-PKINIT-KX"}, {148, "PA-PKU2U-NAME"}, {149, "PA-REQ-ENC-PA-REP"}, {150, "PA-AS-FRESHNESS"},
    {151, "PA-SPAKE"}, {152, "PA-REDHAT-IDP-OAUTH2"}, {153, "PA-REDHAT-PASSKEY"}, {161, "PA-KERB-KEY-LIST-REQ"},
    {162, "PA-KERB-KEY-LIST-REP"}, {165, "PA-SUPPORTED-ENCTYPES"}, {166, "PA-EXTENDED-ERROR"},
    {167, "PA-PAC-OPTIONS"}, {170, "PA-SUPERSEDED-BY-USER"}, {171, "PA-DMSA-KEY-PACKAGE"}});

inline constexpr auto kKrbAuthorizationNames = SortedNames({
    {1, "AD-IF-RELEVANT"}, {2, "AD-INTENDED-FOR-SERVER"}, {3, "AD-INTENDED-FOR-APPLICATION-CLASS"},
    {4, "AD-KDC-ISSUED"}, {5, "AD-AND-OR"}, {6, "AD-MANDATORY-TICKET-EXTENSIONS"}, {7, "AD-IN-TICKET-EXTENSIONS"},
    {8, "AD-MANDATORY-FOR-KDC"}, {9, "AD-INITIAL-VERIFIED-CAS"}, {64, "AD-OSF-DCE"}, {65, "AD-SESAME"},
    {66, "AD-OSF-DCE-PKI-CERTID"}, {70, "AD-AUTHENTICATION-STRENGTH"}, {71, "AD-FX-FAST-ARMOR"},
    {72, "AD-FX-FAST-USED"}, {96, "AD-CAMMAC"}, {97, "AD-AUTHENTICATION-INDICATOR"}, {128, "AD-WIN2K-PAC"},
    {129, "AD-ETYPE-NEGOTIATION"}, {141, "AD-TOKEN-RESTRICTIONS"}, {142, "AD-LOCAL"}, {143, "AD-AP-OPTIONS"},
    {144, "AD-TARGET-PRINCIPAL"}, {512, "AD-SIGNTICKET"}});

inline constexpr auto kKrbLastRequestNames = SortedNames({
    {0, "None"}, {1, "Last Initial TGT Request"}, {2, "Last Initial Request"}, {3, "Newest TGT Issued"},
    {4, "Last Renewal"}, {5, "Last Request"}, {6, "Password Expires"}, {7, "Account Expires"},
    // The same of this server alone.
    {Negative(-7), "Account Expires"}, {Negative(-6), "Password Expires"}, {Negative(-5), "Last Request"},
    {Negative(-4), "Last Renewal"}, {Negative(-3), "Newest TGT Issued"}, {Negative(-2), "Last Initial Request"},
    {Negative(-1), "Last Initial TGT Request"}});

inline constexpr auto kKrbTransitedNames = SortedNames({{0, "None"}, {1, "DOMAIN-X500-COMPRESS"}});
inline constexpr auto kKrbArmorNames = SortedNames({{1, "FX-FAST-ARMOR-AP-REQUEST"}});
inline constexpr auto kKrbSpakeGroupNames = SortedNames({
    {1, "edwards25519"}, {2, "P-256"}, {3, "P-384"}, {4, "P-521"}});
inline constexpr auto kKrbSpakeFactorNames = SortedNames({{1, "SF-NONE"}});
inline constexpr auto kKrbErrorDataNames = SortedNames({{1, "Clock Skew"}, {2, "Skew Recovery"}, {3, "Extended"}});
inline constexpr auto kKrbPasswordResultNames = SortedNames({
    {0, "Success"}, {1, "Malformed Request"}, {2, "Hard Error"}, {3, "Authentication Error"}, {4, "Soft Error"},
    {5, "Access Denied"}, {6, "Bad Version"}, {7, "Initial Flag Needed"}});

inline constexpr auto kKrbErrorNames = SortedNames({
    {0, "KDC_ERR_NONE"}, {1, "KDC_ERR_NAME_EXP"}, {2, "KDC_ERR_SERVICE_EXP"}, {3, "KDC_ERR_BAD_PVNO"},
    {4, "KDC_ERR_C_OLD_MAST_KVNO"}, {5, "KDC_ERR_S_OLD_MAST_KVNO"}, {6, "KDC_ERR_C_PRINCIPAL_UNKNOWN"},
    {7, "KDC_ERR_S_PRINCIPAL_UNKNOWN"}, {8, "KDC_ERR_PRINCIPAL_NOT_UNIQUE"}, {9, "KDC_ERR_NULL_KEY"},
    {10, "KDC_ERR_CANNOT_POSTDATE"}, {11, "KDC_ERR_NEVER_VALID"}, {12, "KDC_ERR_POLICY"}, {13, "KDC_ERR_BADOPTION"},
    {14, "KDC_ERR_ETYPE_NOSUPP"}, {15, "KDC_ERR_SUMTYPE_NOSUPP"}, {16, "KDC_ERR_PADATA_TYPE_NOSUPP"},
    {17, "KDC_ERR_TRTYPE_NOSUPP"}, {18, "KDC_ERR_CLIENT_REVOKED"}, {19, "KDC_ERR_SERVICE_REVOKED"},
    {20, "KDC_ERR_TGT_REVOKED"}, {21, "KDC_ERR_CLIENT_NOTYET"}, {22, "KDC_ERR_SERVICE_NOTYET"},
    {23, "KDC_ERR_KEY_EXPIRED"}, {24, "KDC_ERR_PREAUTH_FAILED"}, {25, "KDC_ERR_PREAUTH_REQUIRED"},
    {26, "KDC_ERR_SERVER_NOMATCH"}, {27, "KDC_ERR_MUST_USE_USER2USER"}, {28, "KDC_ERR_PATH_NOT_ACCEPTED"},
    {29, "KDC_ERR_SVC_UNAVAILABLE"}, {31, "KRB_AP_ERR_BAD_INTEGRITY"}, {32, "KRB_AP_ERR_TKT_EXPIRED"},
    {33, "KRB_AP_ERR_TKT_NYV"}, {34, "KRB_AP_ERR_REPEAT"}, {35, "KRB_AP_ERR_NOT_US"}, {36, "KRB_AP_ERR_BADMATCH"},
    {37, "KRB_AP_ERR_SKEW"}, {38, "KRB_AP_ERR_BADADDR"}, {39, "KRB_AP_ERR_BADVERSION"}, {40, "KRB_AP_ERR_MSG_TYPE"},
    {41, "KRB_AP_ERR_MODIFIED"}, {42, "KRB_AP_ERR_BADORDER"}, {44, "KRB_AP_ERR_BADKEYVER"}, {45, "KRB_AP_ERR_NOKEY"},
    {46, "KRB_AP_ERR_MUT_FAIL"}, {47, "KRB_AP_ERR_BADDIRECTION"}, {48, "KRB_AP_ERR_METHOD"},
    {49, "KRB_AP_ERR_BADSEQ"}, {50, "KRB_AP_ERR_INAPP_CKSUM"}, {51, "KRB_AP_PATH_NOT_ACCEPTED"},
    {52, "KRB_ERR_RESPONSE_TOO_BIG"}, {60, "KRB_ERR_GENERIC"}, {61, "KRB_ERR_FIELD_TOOLONG"},
    {62, "KDC_ERR_CLIENT_NOT_TRUSTED"}, {63, "KDC_ERR_KDC_NOT_TRUSTED"}, {64, "KDC_ERR_INVALID_SIG"},
    {65, "KDC_ERR_DH_KEY_PARAMETERS_NOT_ACCEPTED"}, {66, "KDC_ERR_CERTIFICATE_MISMATCH"}, {67, "KRB_AP_ERR_NO_TGT"},
    {68, "KDC_ERR_WRONG_REALM"}, {69, "KRB_AP_ERR_USER_TO_USER_REQUIRED"}, {70, "KDC_ERR_CANT_VERIFY_CERTIFICATE"},
    {71, "KDC_ERR_INVALID_CERTIFICATE"}, {72, "KDC_ERR_REVOKED_CERTIFICATE"},
    {73, "KDC_ERR_REVOCATION_STATUS_UNKNOWN"}, {74, "KDC_ERR_REVOCATION_STATUS_UNAVAILABLE"},
    {75, "KDC_ERR_CLIENT_NAME_MISMATCH"}, {76, "KDC_ERR_INCONSISTENT_KEY_PURPOSE"},
    {77, "KDC_ERR_DIGEST_IN_CERT_NOT_ACCEPTED"}, {78, "KDC_ERR_PA_CHECKSUM_MUST_BE_INCLUDED"},
    {79, "KDC_ERR_DIGEST_IN_SIGNED_DATA_NOT_ACCEPTED"}, {80, "KDC_ERR_PUBLIC_KEY_ENCRYPTION_NOT_SUPPORTED"},
    {85, "KRB_AP_ERR_IAKERB_KDC_NOT_FOUND"}, {86, "KRB_AP_ERR_IAKERB_KDC_NO_RESPONSE"},
    {90, "KDC_ERR_PREAUTH_EXPIRED"}, {91, "KDC_ERR_MORE_PREAUTH_DATA_REQUIRED"},
    {92, "KDC_ERR_PREAUTH_BAD_AUTHENTICATION_SET"}, {93, "KDC_ERR_UNKNOWN_CRITICAL_FAST_OPTIONS"},
    {100, "KDC_ERR_NO_ACCEPTABLE_KDF"}});

}  // namespace qxview
