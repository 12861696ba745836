// Records of keys and signatures: DNSSEC (RFC 4034, RFC 5155), certificates and associations (RFC 4398, RFC 6698), SSH
// (RFC 4255), IPsec (RFC 4025), host identities (RFC 8005), transactions (RFC 2930, RFC 8945).
#include "core/times.h"
#include "decoders/app/dns_data.h"
#include "decoders/common/digits.h"

namespace qxview {
namespace {

constexpr auto kAlgorithmNames = SortedNames({
    {0, "Delete DS"}, {1, "RSA/MD5"}, {2, "Diffie-Hellman"}, {3, "DSA/SHA-1"}, {5, "RSA/SHA-1"},
    {6, "DSA-NSEC3-SHA1"}, {7, "RSASHA1-NSEC3-SHA1"}, {8, "RSA/SHA-256"}, {10, "RSA/SHA-512"},
    {12, "GOST R 34.10-2001"}, {13, "ECDSA Curve P-256 with SHA-256"}, {14, "ECDSA Curve P-384 with SHA-384"},
    {15, "Ed25519"}, {16, "Ed448"}, {17, "SM2 with SM3"}, {23, "GOST R 34.10-2012"}, {252, "Indirect Keys"},
    {253, "Private Algorithm (Domain Name)"}, {254, "Private Algorithm (OID)"}});
constexpr auto kDigestNames = SortedNames({
    {0, "Reserved"}, {1, "SHA-1"}, {2, "SHA-256"}, {3, "GOST R 34.11-94"}, {4, "SHA-384"}, {5, "GOST R 34.11-2012"},
    {6, "SM3"}});
constexpr auto kProtocolNames = SortedNames({{1, "TLS"}, {2, "Email"}, {3, "DNSSEC"}, {4, "IPsec"}, {255, "All"}});
constexpr auto kHashNames = SortedNames({{0, "Reserved"}, {1, "SHA-1"}});
constexpr auto kCertificateNames = SortedNames({
    {1, "PKIX"}, {2, "SPKI"}, {3, "PGP"}, {4, "IPKIX"}, {5, "ISPKI"}, {6, "IPGP"}, {7, "ACPKIX"}, {8, "IACPKIX"},
    {253, "URI"}, {254, "OID"}});
constexpr auto kUsageNames = SortedNames({
    {0, "CA Constraint (PKIX-TA)"}, {1, "Service Certificate Constraint (PKIX-EE)"},
    {2, "Trust Anchor Assertion (DANE-TA)"}, {3, "Domain-Issued Certificate (DANE-EE)"}, {255, "Private Use"}});
constexpr auto kSelectorNames = SortedNames({
    {0, "Full Certificate"}, {1, "SubjectPublicKeyInfo"}, {255, "Private Use"}});
constexpr auto kMatchingNames = SortedNames({{0, "No Hash"}, {1, "SHA-256"}, {2, "SHA-512"}, {255, "Private Use"}});
constexpr auto kKeyNames = SortedNames({
    {0, "Reserved"}, {1, "RSA"}, {2, "DSA"}, {3, "ECDSA"}, {4, "Ed25519"}, {6, "Ed448"}});
constexpr auto kFingerprintNames = SortedNames({{0, "Reserved"}, {1, "SHA-1"}, {2, "SHA-256"}});
constexpr auto kGatewayNames = SortedNames({{0, "None"}, {1, "IPv4"}, {2, "IPv6"}, {3, "Domain Name"}});
constexpr auto kIpsecNames = SortedNames({
    {0, "None"}, {1, "DSA"}, {2, "RSA"}, {3, "ECDSA"}, {4, "EdDSA"}});
constexpr auto kModeNames = SortedNames({
    {1, "Server Assignment"}, {2, "Diffie-Hellman Exchange"}, {3, "GSS-API Negotiation"}, {4, "Resolver Assignment"},
    {5, "Key Deletion"}});
constexpr auto kErrorNames = SortedNames({
    {0, "No Error"}, {16, "BADSIG"}, {17, "BADKEY"}, {18, "BADTIME"}, {19, "BADMODE"}, {20, "BADNAME"}, {21, "BADALG"},
    {22, "BADTRUNC"}});

// RSA keys (RFC 3110): the exponent behind its length, of one byte or, behind a zero, two; the modulus is the rest.
void ShowPublicKey(const Place& in, Cursor& c, const char* label, DnsData& data) {
  static constexpr auto kShort = Rows<DnsData>({Number(1, "Exponent Length").Into(&DnsData::length)});
  static constexpr auto kLong = Rows<DnsData>({Hex(1, "Long Form"), Number(2, "Exponent Length").Into(&DnsData::length)});
  static constexpr auto kRsa = Rows<DnsData>({Bytes(0, "Exponent").SizedBy(&DnsData::length), Digits("Modulus")});
  static constexpr auto kWhole = Rows<DnsData>({Digits(nullptr)});
  const uint32_t algorithm = data.code.value;
  const bool isRsa = algorithm == 1 || algorithm == 5 || algorithm == 7 || algorithm == 8 || algorithm == 10;
  if (!isRsa || Left(c) < 3) return ShowRows<DnsData>(in, c, kWhole, data, label);
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "%s: RSA", label));
  ShowRows<DnsData>(under, c, PeekU8(c) == 0 ? RowSpan<DnsData>(kLong) : RowSpan<DnsData>(kShort), data);
  ShowRows<DnsData>(under, c, kRsa, data);
}

void ShowSignedTime(const Place& in, const Field& field, const char* label) {
  AddLine(in, field, "%s: %s", label, UtcText(static_cast<int64_t>(detail::NumberOf(field, false))));
}

}  // namespace

void ShowDnsSignature(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kRows = Rows<DnsData>({
      Number(2, "Type Covered", DnsTypeName).Note(", %s"), Number(1, "Algorithm", kAlgorithmNames), Number(1, "Labels"),
      Number(4, "Original TTL", " seconds"), UnixTime(4, "Signature Expiration"), UnixTime(4, "Signature Inception"),
      Number(2, "Key Tag").Note(", Key %u"), Shown("Signer's Name", ShowDnsName), Digits("Signature")});
  ShowRows<DnsData>(in, c, kRows, data);
}

void ShowDnsKey(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kRows = Rows<DnsData>({
      Hex(2, "Flags"), Bits(0, 7, "Reserved"), Flag(7, "Zone Key"), Flag(8, "Revoked"), Bits(9, 6, "Reserved"),
      Flag(15, "Secure Entry Point"), Number(1, "Protocol", kProtocolNames),
      Number(1, "Algorithm", kAlgorithmNames).Note(", %s").Into(&DnsData::code),
      Shown("Public Key", ShowPublicKey)});
  ShowRows<DnsData>(in, c, kRows, data);
}

void ShowDnsDigest(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kRows = Rows<DnsData>({
      Number(2, "Key Tag").Note(", Key %u"), Number(1, "Algorithm", kAlgorithmNames),
      Number(1, "Digest Type", kDigestNames).Note(", %s"), Bytes(0, "Digest")});
  ShowRows<DnsData>(in, c, kRows, data);
}

void ShowDnsNsec(const Place& in, Cursor& c, DnsData& data) {
  ShowDnsName(in, c, "Next Domain Name", data);
  ShowDnsTypeMap(in, c, data);
}

void ShowDnsNsec3Parameters(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kRows = Rows<DnsData>({
      Number(1, "Hash Algorithm", kHashNames), Hex(1, "Flags"), Bits(0, 7, "Reserved"), Flag(7, "Opt-Out"),
      Number(2, "Iterations"), Counted(1, Bytes(0, "Salt"))});
  ShowRows<DnsData>(in, c, kRows, data);
}

void ShowDnsNsec3(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kRows = Rows<DnsData>({Counted(1, Bytes(0, "Next Hashed Owner Name"))});
  ShowDnsNsec3Parameters(in, c, data);
  ShowRows<DnsData>(in, c, kRows, data);
  ShowDnsTypeMap(in, c, data);
}

void ShowDnsCertificate(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kRows = Rows<DnsData>({
      Number(2, "Certificate Type", kCertificateNames).Note(", %s"), Number(2, "Key Tag"),
      Number(1, "Algorithm", kAlgorithmNames), Digits("Certificate")});
  ShowRows<DnsData>(in, c, kRows, data);
}

void ShowDnsAssociation(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kRows = Rows<DnsData>({
      Number(1, "Certificate Usage", kUsageNames), Number(1, "Selector", kSelectorNames),
      Number(1, "Matching Type", kMatchingNames), Bytes(0, "Certificate Association Data")});
  ShowRows<DnsData>(in, c, kRows, data);
}

void ShowDnsFingerprint(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kRows = Rows<DnsData>({
      Number(1, "Algorithm", kKeyNames).Note(", %s"), Number(1, "Fingerprint Type", kFingerprintNames).Note(", %s"),
      Bytes(0, "Fingerprint")});
  ShowRows<DnsData>(in, c, kRows, data);
}

void ShowDnsIpsecKey(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kHead = Rows<DnsData>({
      Number(1, "Precedence"), Number(1, "Gateway Type", kGatewayNames).Into(&DnsData::code),
      Number(1, "Algorithm", kIpsecNames)});
  static constexpr auto kFour = Rows<DnsData>({IPv4("Gateway").Note(", %s")});
  static constexpr auto kSix = Rows<DnsData>({IPv6("Gateway").Note(", %s")});
  static constexpr auto kKey = Rows<DnsData>({Digits("Public Key")});
  ShowRows<DnsData>(in, c, kHead, data);
  if (data.code.value == 1) ShowRows<DnsData>(in, c, kFour, data);
  if (data.code.value == 2) ShowRows<DnsData>(in, c, kSix, data);
  if (data.code.value == 3) ShowDnsName(in, c, "Gateway", data);
  if (Left(c)) ShowRows<DnsData>(in, c, kKey, data);
}

void ShowDnsHostIdentity(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kRows = Rows<DnsData>({
      Number(1, "HIT Length").Into(&DnsData::code), Number(1, "Public Key Algorithm", kIpsecNames),
      Number(2, "Public Key Length").Into(&DnsData::length), Bytes(0, "HIT").SizedBy(&DnsData::code),
      Digits("Public Key").SizedBy(&DnsData::length)});
  ShowRows<DnsData>(in, c, kRows, data);
  Loop loop;
  while (MoreAt(in, c, loop)) ShowDnsName(in, c, "Rendezvous Server", data);
}

void ShowDnsTransactionKey(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kRows = Rows<DnsData>({
      Shown("Algorithm Name", ShowDnsName), UnixTime(4, "Inception"), UnixTime(4, "Expiration"),
      Number(2, "Mode", kModeNames).Note(", %s"), Number(2, "Error", kErrorNames), Counted(2, Digits("Key")),
      Counted(2, Bytes(0, "Other Data"))});
  ShowRows<DnsData>(in, c, kRows, data);
}

void ShowDnsTransactionSignature(const Place& in, Cursor& c, DnsData& data) {
  static constexpr auto kRows = Rows<DnsData>({
      Shown("Algorithm Name", ShowDnsName), Shown(6, "Time Signed", ShowSignedTime), Number(2, "Fudge", " seconds"),
      Counted(2, Digits("MAC")), Hex(2, "Original ID"), Number(2, "Error", kErrorNames).Note(", %s"),
      Counted(2, Bytes(0, "Other Data"))});
  ShowRows<DnsData>(in, c, kRows, data);
}

}  // namespace qxview
