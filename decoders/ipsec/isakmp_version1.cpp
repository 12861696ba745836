// The payloads of version 1 of the Internet Key Exchange (RFC 2407 to 2409, RFC 3947), extended authentication and the
// configuration that both versions have alike (draft-dukes-ike-mode-cfg, draft-beaulieu-ike-xauth), keepalives
// (RFC 3706) and the group domain (RFC 6407).
#include "decoders/ipsec/isakmp.h"
#include "decoders/ipsec/isakmp_names.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

constexpr uint32_t kIsakmpProtocol = 1, kAhProtocol = 2, kEspProtocol = 3, kIpcompProtocol = 4;

constexpr auto kDoiNames = SortedNames({{0, "ISAKMP"}, {1, "IPSEC"}, {2, "GDOI"}});
constexpr auto kProtocolNames = SortedNames({
    {0, "Reserved"}, {1, "PROTO_ISAKMP"}, {2, "PROTO_IPSEC_AH"}, {3, "PROTO_IPSEC_ESP"}, {4, "PROTO_IPCOMP"},
    {5, "PROTO_GIGABEAM_RADIO"}});
constexpr auto kKeyTransforms = SortedNames({{1, "KEY_IKE"}});
constexpr auto kAhTransforms = SortedNames({
    {2, "AH_MD5"}, {3, "AH_SHA"}, {4, "AH_DES"}, {5, "AH_SHA2-256"}, {6, "AH_SHA2-384"}, {7, "AH_SHA2-512"},
    {8, "AH_RIPEMD"}, {9, "AH_AES-XCBC-MAC"}, {10, "AH_RSA"}, {11, "AH_AES-128-GMAC"}, {12, "AH_AES-192-GMAC"},
    {13, "AH_AES-256-GMAC"}});
constexpr auto kEspTransforms = SortedNames({
    {1, "ESP_DES_IV64"}, {2, "ESP_DES"}, {3, "ESP_3DES"}, {4, "ESP_RC5"}, {5, "ESP_IDEA"}, {6, "ESP_CAST"},
    {7, "ESP_BLOWFISH"}, {8, "ESP_3IDEA"}, {9, "ESP_DES_IV32"}, {10, "ESP_RC4"}, {11, "ESP_NULL"}, {12, "ESP_AES-CBC"},
    {13, "ESP_AES-CTR"}, {14, "ESP_AES-CCM_8"}, {15, "ESP_AES-CCM_12"}, {16, "ESP_AES-CCM_16"}, {18, "ESP_AES-GCM_8"},
    {19, "ESP_AES-GCM_12"}, {20, "ESP_AES-GCM_16"}, {21, "ESP_SEED_CBC"}, {22, "ESP_CAMELLIA"},
    {23, "ESP_NULL_AUTH_AES-GMAC"}});

constexpr auto kCipherNames = SortedNames({
    {1, "DES-CBC"}, {2, "IDEA-CBC"}, {3, "Blowfish-CBC"}, {4, "RC5-R16-B64-CBC"}, {5, "3DES-CBC"}, {6, "CAST-CBC"},
    {7, "AES-CBC"}, {8, "CAMELLIA-CBC"}});
constexpr auto kHashNames = SortedNames({
    {1, "MD5"}, {2, "SHA"}, {3, "Tiger"}, {4, "SHA2-256"}, {5, "SHA2-384"}, {6, "SHA2-512"}});
constexpr auto kMethodNames = SortedNames({
    {1, "Pre-Shared Key"}, {2, "DSS Signatures"}, {3, "RSA Signatures"}, {4, "Encryption with RSA"},
    {5, "Revised Encryption with RSA"}, {6, "Encryption with El-Gamal"}, {7, "Revised Encryption with El-Gamal"},
    {8, "ECDSA Signatures"}, {9, "ECDSA with SHA-256 on the P-256 Curve"},
    {10, "ECDSA with SHA-384 on the P-384 Curve"},
    {11, "ECDSA with SHA-512 on the P-521 Curve"}, {64221, "HybridInitRSA"}, {64222, "HybridRespRSA"},
    {64223, "HybridInitDSS"}, {64224, "HybridRespDSS"}, {65001, "XAUTHInitPreShared"}, {65002, "XAUTHRespPreShared"},
    {65003, "XAUTHInitDSS"}, {65004, "XAUTHRespDSS"}, {65005, "XAUTHInitRSA"}, {65006, "XAUTHRespRSA"},
    {65007, "XAUTHInitRSAEncryption"}, {65008, "XAUTHRespRSAEncryption"}, {65009, "XAUTHInitRSARevisedEncryption"},
    {65010, "XAUTHRespRSARevisedEncryption"}});
constexpr auto kGroupTypeNames = SortedNames({{1, "MODP"}, {2, "ECP"}, {3, "EC2N"}});
constexpr auto kLifeNames = SortedNames({{1, "Seconds"}, {2, "Kilobytes"}});
constexpr auto kModeNames = SortedNames({
    {1, "Tunnel"}, {2, "Transport"}, {3, "UDP-Encapsulated-Tunnel"}, {4, "UDP-Encapsulated-Transport"},
    {61443, "UDP-Encapsulated-Tunnel (Draft)"}, {61444, "UDP-Encapsulated-Transport (Draft)"}});
constexpr auto kIntegrityNames = SortedNames({
    {1, "HMAC-MD5"}, {2, "HMAC-SHA"}, {3, "DES-MAC"}, {4, "KPDK"}, {5, "HMAC-SHA2-256"}, {6, "HMAC-SHA2-384"},
    {7, "HMAC-SHA2-512"}, {8, "HMAC-RIPEMD"}, {9, "AES-XCBC-MAC"}, {10, "SIG-RSA"}, {11, "AES-128-GMAC"},
    {12, "AES-192-GMAC"}, {13, "AES-256-GMAC"}});
constexpr auto kEcnNames = SortedNames({{1, "Allowed"}, {2, "Forbidden"}});
constexpr auto kSequenceNames = SortedNames({{0, "Reserved"}, {1, "64-bit Sequence Number"}});
constexpr auto kPaddingNames = SortedNames({{1, "RSASSA-PKCS1-v1_5"}, {2, "RSASSA-PSS"}});
constexpr auto kPreservationNames = SortedNames({
    {1, "None"}, {2, "Source Only"}, {3, "Destination Only"}, {4, "Source and Destination"}});
constexpr auto kDirectionNames = SortedNames({{1, "Sender Only"}, {2, "Receiver Only"}, {3, "Symmetric"}});

constexpr auto kPlain = Rows<Ike>({Shown<Ike>(nullptr, ShowIkeNumber)});
constexpr auto kPlainBytes = Rows<Ike>({Bytes(0, nullptr)});
constexpr auto kPlainText = Rows<Ike>({Utf8(0, nullptr)});
constexpr auto kCipher = Rows<Ike>({Number(2, nullptr, kCipherNames).Note(", %s")});
constexpr auto kHash = Rows<Ike>({Number(2, nullptr, kHashNames).Note(", %s")});
constexpr auto kMethod = Rows<Ike>({Number(2, nullptr, kMethodNames).Note(", %s")});
constexpr auto kGroup = Rows<Ike>({Number(2, nullptr, kIkeGroupNames).Note(", %s")});
constexpr auto kGroupType = Rows<Ike>({Number(2, nullptr, kGroupTypeNames).Note(", %s")});
constexpr auto kLife = Rows<Ike>({Number(2, nullptr, kLifeNames).Note(", %s")});
constexpr auto kMode = Rows<Ike>({Number(2, nullptr, kModeNames).Note(", %s")});
constexpr auto kIntegrity = Rows<Ike>({Number(2, nullptr, kIntegrityNames).Note(", %s")});
constexpr auto kEcn = Rows<Ike>({Number(2, nullptr, kEcnNames).Note(", %s")});
constexpr auto kLongSequence = Rows<Ike>({Number(2, nullptr, kSequenceNames).Note(", %s")});
constexpr auto kPadding = Rows<Ike>({Number(2, nullptr, kPaddingNames).Note(", %s")});
constexpr auto kPreservation = Rows<Ike>({Number(2, nullptr, kPreservationNames).Note(", %s")});
constexpr auto kDirection = Rows<Ike>({Number(2, nullptr, kDirectionNames).Note(", %s")});

constexpr auto kKeyAttributes = Choices<Ike>({
    {1, "Encryption Algorithm", kCipher}, {2, "Hash Algorithm", kHash}, {3, "Authentication Method", kMethod},
    {4, "Group Description", kGroup}, {5, "Group Type", kGroupType}, {6, "Group Prime", kPlainBytes},
    {7, "Group Generator One", kPlainBytes}, {8, "Group Generator Two", kPlainBytes},
    {9, "Group Curve A", kPlainBytes}, {10, "Group Curve B", kPlainBytes}, {11, "Life Type", kLife},
    {12, "Life Duration", kPlain}, {13, "PRF", kPlain}, {14, "Key Length", kPlain}, {15, "Field Size", kPlain},
    {16, "Group Order", kPlainBytes}, {16384, "GSS Identity Name", kPlainBytes}});
constexpr auto kIpsecAttributes = Choices<Ike>({
    {1, "SA Life Type", kLife}, {2, "SA Life Duration", kPlain}, {3, "Group Description", kGroup},
    {4, "Encapsulation Mode", kMode}, {5, "Authentication Algorithm", kIntegrity}, {6, "Key Length", kPlain},
    {7, "Key Rounds", kPlain}, {8, "Compress Dictionary Size", kPlain}, {9, "Compress Private Algorithm", kPlainBytes},
    {10, "ECN Tunnel", kEcn}, {11, "Extended Sequence Number", kLongSequence},
    {12, "Authentication Key Length", kPlain},
    {13, "Signature Encoding Algorithm", kPadding}, {14, "Address Preservation", kPreservation},
    {15, "SA Direction", kDirection}});

const char* TransformName(uint32_t protocol, uint32_t transform) {
  switch (protocol) {
    case kIsakmpProtocol: return LookupName(kKeyTransforms, transform);
    case kAhProtocol: return LookupName(kAhTransforms, transform);
    case kEspProtocol: return LookupName(kEspTransforms, transform);
    case kIpcompProtocol: return LookupName(kIkeCompressionNames, transform);
    default: return kUnknown;
  }
}

constexpr auto kPartNames = SortedNames({{0, "None"}, {2, "Proposal"}, {3, "Transform"}});
constexpr auto kPartHead = Rows<Ike>({
    Number(1, "Next Payload", kPartNames), Number(1, "Reserved"), Number(2, "Payload Length")});
constexpr auto kProposal = Rows<Ike>({
    Number(1, "Proposal Number").Note(" %u"),
    Number(1, "Protocol ID", kProtocolNames).Note(", %s").Into(&Ike::protocol),
    Number(1, "SPI Size").Into(&Ike::spiSize), Number(1, "Number of Transforms").Into(&Ike::count)});
constexpr auto kTransform = Rows<Ike>({Number(1, "Transform Number").Note(" %u")});
constexpr auto kReserved2 = Rows<Ike>({Number(2, "Reserved")});

void ShowTransform(const Place& in, Cursor& c, Ike& ike) {
  ShowRows<Ike>(in, c, kTransform, ike);
  const Field kind = TakeU8(c);
  const char* name = TransformName(ike.protocol.value, kind.value);
  AddLine(in, kind, "Transform ID: %u = %s", kind.value, name);
  AppendToParent(in, kind, ", %s", name);
  ShowRows<Ike>(in, c, kReserved2, ike);
  const bool isKey = ike.protocol.value == kIsakmpProtocol;
  ShowIkeAttributes(in, c, isKey ? ChoiceSpan<Ike>(kKeyAttributes) : ChoiceSpan<Ike>(kIpsecAttributes), ike);
}

constexpr auto kSituationMasks = SortedNames({{1, "Identity Only"}, {2, "Secrecy"}, {4, "Integrity"}});
constexpr auto kDoi = Rows<Ike>({Number(4, "Domain of Interpretation", kDoiNames).Into(&Ike::doi)});
constexpr auto kSituation = Rows<Ike>({Flags(4, "Situation", kSituationMasks).Into(&Ike::situation)});
constexpr auto kDomain = Rows<Ike>({Number(4, "Labeled Domain Identifier")});
constexpr auto kGroupSituation = Rows<Ike>({
    Number(4, "Situation"), Number(2, "SA Attribute Next Payload"), Number(2, "Reserved")});

// A level and a bitmap of categories, each behind its length and filled up to words.
void ShowLevel(const Place& in, Cursor& c, const char* level, const char* category) {
  const Field length = TakeU16(c);
  AddLine(in, length, "%s Length: %u", level, length.value);
  AddLine(in, TakeU16(c), "Reserved");
  const Field value = TakeBytes(c, (length.value + 3) & ~3u);
  if (value.length > 0) AddLine(in, value, "%s Level: %s", level, HexText(value));
  const Field bits = TakeU16(c);
  AddLine(in, bits, "%s Length: %u bits", category, bits.value);
  AddLine(in, TakeU16(c), "Reserved");
  const Field bitmap = TakeBytes(c, (bits.value + 31) / 32 * 4);
  if (bitmap.length > 0) AddLine(in, bitmap, "%s Bitmap: %s", category, HexText(bitmap));
}

void ShowSecurityAssociation(const Place& in, Cursor& c, Ike& ike) {
  constexpr uint32_t kGroupDomain = 2, kSecrecy = 2, kIntegrityToo = 4;
  ShowRows<Ike>(in, c, kDoi, ike);
  if (ike.doi.value == kGroupDomain) {
    ShowRows<Ike>(in, c, kGroupSituation, ike);
    return;
  }
  ShowRows<Ike>(in, c, kSituation, ike);
  if (ike.situation.value & (kSecrecy | kIntegrityToo)) ShowRows<Ike>(in, c, kDomain, ike);
  if (ike.situation.value & kSecrecy) ShowLevel(in, c, "Secrecy", "Secrecy Category");
  if (ike.situation.value & kIntegrityToo) ShowLevel(in, c, "Integrity", "Integrity Category");
  ShowIkeProposals(in, c, {kPartHead, kProposal, ShowTransform}, ike);
}

constexpr auto kIdNames = SortedNames({
    {0, "Reserved"}, {1, "ID_IPV4_ADDR"}, {2, "ID_FQDN"}, {3, "ID_USER_FQDN"}, {4, "ID_IPV4_ADDR_SUBNET"},
    {5, "ID_IPV6_ADDR"}, {6, "ID_IPV6_ADDR_SUBNET"}, {7, "ID_IPV4_ADDR_RANGE"}, {8, "ID_IPV6_ADDR_RANGE"},
    {9, "ID_DER_ASN1_DN"}, {10, "ID_DER_ASN1_GN"}, {11, "ID_KEY_ID"}, {12, "ID_LIST"}});
const char* CarriedName(uint32_t protocol) { return protocol == 0 ? "Any" : IpProtocolName(protocol); }
constexpr auto kIdHead = Rows<Ike>({
    Number(1, "ID Type", kIdNames).Note(", %s").Into(&Ike::type), Number(1, "Protocol ID", CarriedName),
    Number(2, "Port")});
constexpr auto kIdAddress4 = Rows<Ike>({IPv4("IPv4 Address").Note(", %s")});
constexpr auto kIdName = Rows<Ike>({Utf8(0, "Name").Note(", %s")});
constexpr auto kIdSubnet4 = Rows<Ike>({IPv4("IPv4 Address").Note(", %s"), IPv4("IPv4 Netmask").Note("/%s")});
constexpr auto kIdRange4 = Rows<Ike>({IPv4("Starting Address").Note(", %s"), IPv4("Ending Address").Note("-%s")});
constexpr auto kIdAddress6 = Rows<Ike>({IPv6("IPv6 Address").Note(", %s")});
constexpr auto kIdSubnet6 = Rows<Ike>({IPv6("IPv6 Address").Note(", %s"), IPv6("IPv6 Netmask").Note("/%s")});
constexpr auto kIdRange6 = Rows<Ike>({IPv6("Starting Address").Note(", %s"), IPv6("Ending Address").Note("-%s")});
constexpr auto kIdBytes = Rows<Ike>({Shown<Ike>("Identification Data", ShowIkeOpaque)});
constexpr auto kIdentities = Choices<Ike>({
    {1, "IPv4", kIdAddress4}, {2, "Name", kIdName}, {3, "User", kIdName}, {4, "IPv4 Subnet", kIdSubnet4},
    {5, "IPv6", kIdAddress6}, {6, "IPv6 Subnet", kIdSubnet6}, {7, "IPv4 Range", kIdRange4},
    {8, "IPv6 Range", kIdRange6}, {9, "Distinguished Name", {}, ShowIkeName}, {10, "General Name", {}, ShowIkeName},
    {11, "Key", kIdBytes}, {12, "List", kIdBytes}});
void ShowIdentity(const Place& in, Cursor& c, Ike& ike) {
  ShowChoice<Ike>(in, c, FindChoice<Ike>(kIdentities, ike.type.value), ike);
}

constexpr auto kNotifyNames = SortedNames({
    {1, "INVALID-PAYLOAD-TYPE"}, {2, "DOI-NOT-SUPPORTED"}, {3, "SITUATION-NOT-SUPPORTED"}, {4, "INVALID-COOKIE"},
    {5, "INVALID-MAJOR-VERSION"}, {6, "INVALID-MINOR-VERSION"}, {7, "INVALID-EXCHANGE-TYPE"}, {8, "INVALID-FLAGS"},
    {9, "INVALID-MESSAGE-ID"}, {10, "INVALID-PROTOCOL-ID"}, {11, "INVALID-SPI"}, {12, "INVALID-TRANSFORM-ID"},
    {13, "ATTRIBUTES-NOT-SUPPORTED"}, {14, "NO-PROPOSAL-CHOSEN"}, {15, "BAD-PROPOSAL-SYNTAX"},
    {16, "PAYLOAD-MALFORMED"},
    {17, "INVALID-KEY-INFORMATION"}, {18, "INVALID-ID-INFORMATION"}, {19, "INVALID-CERT-ENCODING"},
    {20, "INVALID-CERTIFICATE"}, {21, "CERT-TYPE-UNSUPPORTED"}, {22, "INVALID-CERT-AUTHORITY"},
    {23, "INVALID-HASH-INFORMATION"}, {24, "AUTHENTICATION-FAILED"}, {25, "INVALID-SIGNATURE"},
    {26, "ADDRESS-NOTIFICATION"}, {27, "NOTIFY-SA-LIFETIME"}, {28, "CERTIFICATE-UNAVAILABLE"},
    {29, "UNSUPPORTED-EXCHANGE-TYPE"}, {30, "UNEQUAL-PAYLOAD-LENGTHS"}, {8192, "IPSEC-RESPONDER-LIFETIME"},
    {16384, "CONNECTED"}, {24576, "RESPONDER-LIFETIME"}, {24577, "REPLAY-STATUS"}, {24578, "INITIAL-CONTACT"},
    {36136, "R-U-THERE"}, {36137, "R-U-THERE-ACK"}, {40501, "UNITY-LOAD-BALANCE"}, {40502, "UNITY-UNKNOWN"},
    {40503, "UNITY-GROUP-HASH"}});
constexpr auto kNotify = Rows<Ike>({
    Number(4, "Domain of Interpretation", kDoiNames), Number(1, "Protocol ID", kProtocolNames).Into(&Ike::protocol),
    Number(1, "SPI Size").Into(&Ike::spiSize),
    Number(2, "Notify Message Type", kNotifyNames).Note(", %s").Into(&Ike::type),
    Bytes(0, "SPI").SizedBy(&Ike::spiSize)});
constexpr auto kReplayNames = SortedNames({{0, "Disabled"}, {1, "Enabled"}});
constexpr auto kReplay = Rows<Ike>({Number(4, "Replay Detection", kReplayNames)});
constexpr auto kThere = Rows<Ike>({Number(4, "Sequence Number")});
constexpr auto kNotifyData = Rows<Ike>({Shown<Ike>("Notification Data", ShowIkeOpaque)});
constexpr auto kBalanced = Rows<Ike>({IPv4("Redirected to")});

void ShowNotification(const Place& in, Cursor& c, Ike& ike) {
  constexpr uint32_t kLifetime = 24576, kReplayStatus = 24577, kThereAsked = 36136, kThereAnswered = 36137;
  constexpr uint32_t kLoadBalance = 40501;
  const uint32_t type = ike.type.value;
  if (type == kLifetime) {
    const bool isKey = ike.protocol.value == kIsakmpProtocol;
    ShowIkeAttributes(in, c, isKey ? ChoiceSpan<Ike>(kKeyAttributes) : ChoiceSpan<Ike>(kIpsecAttributes), ike);
  } else if (type == kReplayStatus && Left(c) == 4) {
    ShowRows<Ike>(in, c, kReplay, ike);
  } else if ((type == kThereAsked || type == kThereAnswered) && Left(c) == 4) {
    ShowRows<Ike>(in, c, kThere, ike);
  } else if (type == kLoadBalance && Left(c) == 4) {
    ShowRows<Ike>(in, c, kBalanced, ike);
  } else if (Left(c) > 0) {
    ShowRows<Ike>(in, c, kNotifyData, ike);
  }
}

constexpr auto kDelete = Rows<Ike>({
    Number(4, "Domain of Interpretation", kDoiNames), Number(1, "Protocol ID", kProtocolNames).Note(", %s"),
    Number(1, "SPI Size").Into(&Ike::spiSize), Number(2, "Number of SPIs").Note(", %u SPIs").Into(&Ike::count)});
constexpr auto kConfiguration = Rows<Ike>({
    Number(1, "Configuration Type", kIkeConfigurationNames).Note(", %s"), Number(1, "Reserved"),
    Number(2, "Identifier")});
constexpr auto kOriginal = Rows<Ike>({Number(1, "ID Type", kIdNames).Into(&Ike::type), Bytes(3, "Reserved")});
constexpr auto kLastNames = SortedNames({{0, "More Follow"}, {1, "Last"}});
constexpr auto kFragment = Rows<Ike>({
    Number(2, "Fragment ID"), Number(1, "Fragment Number").Note(" %u"), Number(1, "Last Fragment", kLastNames)});

void ShowConfiguration(const Place& in, Cursor& c, Ike& ike) {
  ShowIkeAttributes(in, c, IkeConfigurationAttributes(), ike);
}
void ShowFragment(const Place& in, Cursor& c, Ike&) {
  const Field rest = Rest(c);
  AddLine(in, rest, "Fragment Data: %d bytes", rest.length);
}

constexpr auto kExchangeData = Rows<Ike>({Shown<Ike>("Key Exchange Data", ShowIkeOpaque)});
constexpr auto kHashData = Rows<Ike>({Shown<Ike>("Hash Data", ShowIkeOpaque)});
constexpr auto kSignatureData = Rows<Ike>({Shown<Ike>("Signature Data", ShowIkeOpaque)});
constexpr auto kNonceData = Rows<Ike>({Shown<Ike>("Nonce Data", ShowIkeOpaque)});
constexpr auto kTranslationHash = Rows<Ike>({Bytes(0, "Hash of Address and Port")});
constexpr auto kGroupKey = Rows<Ike>({
    Number(1, "Protocol", CarriedName), Number(1, "Source ID Type", kIdNames), Number(2, "Source ID Port"),
    Counted(1, Bytes(0, "Source ID"))});
constexpr auto kDownload = Rows<Ike>({Number(2, "Number of Key Packets"), Number(2, "Reserved")});
constexpr auto kSequence = Rows<Ike>({Number(4, "Sequence Number")});

constexpr auto kPayloads = Choices<Ike>({
    {1, "Security Association", {}, ShowSecurityAssociation}, {2, "Proposal"}, {3, "Transform"},
    {4, "Key Exchange", kExchangeData}, {5, "Identification", kIdHead, ShowIdentity},
    {6, "Certificate", {}, ShowIkeCertificate}, {7, "Certificate Request", {}, ShowIkeCertificateRequest},
    {8, "Hash", kHashData}, {9, "Signature", kSignatureData}, {10, "Nonce", kNonceData},
    {11, "Notification", kNotify, ShowNotification}, {12, "Delete", kDelete, ShowIkeSpis},
    {13, "Vendor ID", {}, ShowIkeVendor}, {14, "Configuration Attributes", kConfiguration, ShowConfiguration},
    {15, "SA KEK", kGroupKey}, {16, "SA TEK"}, {17, "Key Download", kDownload}, {18, "Sequence Number", kSequence},
    {19, "Proof of Possession", kSignatureData}, {20, "NAT Discovery", kTranslationHash},
    {21, "NAT Original Address", kOriginal, ShowIdentity}, {22, "Group Associated Policy", {}, ShowConfiguration},
    {130, "NAT Discovery (Draft)", kTranslationHash}, {131, "NAT Original Address (Draft)", kOriginal, ShowIdentity},
    {132, "IKE Fragment", kFragment, ShowFragment}});

constexpr auto kAddress4 = Rows<Ike>({IPv4(nullptr).Note(", %s")});
constexpr auto kAddress6 = Rows<Ike>({IPv6(nullptr).Note(", %s")});
constexpr auto kPrefix6 = Rows<Ike>({IPv6("Prefix").Note(", %s"), Number(1, "Prefix Length").Note("/%u")});
constexpr auto kSubnet4 = Rows<Ike>({IPv4("Address").Note(", %s"), IPv4("Netmask").Note("/%s")});
constexpr auto kSupported = Rows<Ike>({Number(2, "Supported Attribute")});
constexpr auto kNat4 = Rows<Ike>({IPv4("External Address"), Number(2, "External Port")});
constexpr auto kTrustAnchor = Rows<Ike>({
    Number(2, "Key Tag"), Number(1, "DNSKEY Algorithm"), Number(1, "Digest Type"), Bytes(0, "Digest Data")});
constexpr auto kXauthNames = SortedNames({
    {0, "Generic"}, {1, "RADIUS-CHAP"}, {2, "OTP"}, {3, "S/KEY"}});
constexpr auto kXauthType = Rows<Ike>({Number(2, nullptr, kXauthNames)});
constexpr auto kStatusNames = SortedNames({{0, "FAIL"}, {1, "OK"}});
constexpr auto kXauthStatus = Rows<Ike>({Number(2, nullptr, kStatusNames)});
constexpr auto kSplit = Rows<Ike>({IPv4("Address"), IPv4("Netmask"), Bytes(6, "Protocol and Ports")});

void ShowSupported(const Place& in, Cursor& c, Ike& ike) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Ike>(in, c, kSupported, ike);
}
void ShowSplits(const Place& in, Cursor& c, Ike& ike) {
  Loop loop;
  while (Left(c) >= 14 && MoreAt(in, c, loop)) ShowRows<Ike>(in, c, kSplit, ike);
}
void ShowPrefix(const Place& in, Cursor& c, Ike& ike) {   // version 1 sends the address alone
  ShowRows<Ike>(in, c, Left(c) == 16 ? RowSpan<Ike>(kAddress6) : RowSpan<Ike>(kPrefix6), ike);
}
constexpr auto kEncryptedDns = Rows<Ike>({
    Number(2, "Service Priority"), Number(1, "Number of Addresses").Into(&Ike::count),
    Number(1, "Authentication Domain Name Length").Into(&Ike::spiSize)});
constexpr auto kResolver4 = Rows<Ike>({IPv4("Resolver Address")});
constexpr auto kResolver6 = Rows<Ike>({IPv6("Resolver Address")});
constexpr auto kResolverName = Rows<Ike>({
    Bytes(0, "Authentication Domain Name").SizedBy(&Ike::spiSize), Bytes(0, "Service Parameters")});
void ShowResolver(const Place& in, Cursor& c, Ike& ike, RowSpan<Ike> address) {
  ShowRows<Ike>(in, c, kEncryptedDns, ike);
  Loop loop;
  for (uint32_t i = 0; i < ike.count.value && MoreAt(in, c, loop); ++i) ShowRows<Ike>(in, c, address, ike);
  ShowRows<Ike>(in, c, kResolverName, ike);
}
void ShowResolver4(const Place& in, Cursor& c, Ike& ike) { ShowResolver(in, c, ike, kResolver4); }
void ShowResolver6(const Place& in, Cursor& c, Ike& ike) { ShowResolver(in, c, ike, kResolver6); }

constexpr auto kConfigurations = Choices<Ike>({
    {1, "INTERNAL_IP4_ADDRESS", kAddress4}, {2, "INTERNAL_IP4_NETMASK", kAddress4}, {3, "INTERNAL_IP4_DNS", kAddress4},
    {4, "INTERNAL_IP4_NBNS", kAddress4}, {5, "INTERNAL_ADDRESS_EXPIRY", kPlain}, {6, "INTERNAL_IP4_DHCP", kAddress4},
    {7, "APPLICATION_VERSION", kPlainText}, {8, "INTERNAL_IP6_ADDRESS", {}, ShowPrefix},
    {9, "INTERNAL_IP6_NETMASK", kAddress6}, {10, "INTERNAL_IP6_DNS", kAddress6}, {11, "INTERNAL_IP6_NBNS", kAddress6},
    {12, "INTERNAL_IP6_DHCP", kAddress6}, {13, "INTERNAL_IP4_SUBNET", kSubnet4},
    {14, "SUPPORTED_ATTRIBUTES", {}, ShowSupported}, {15, "INTERNAL_IP6_SUBNET", kPrefix6},
    {16, "MIP6_HOME_PREFIX", kPlainBytes}, {17, "INTERNAL_IP6_LINK", kPlainBytes},
    {18, "INTERNAL_IP6_PREFIX", kPrefix6},
    {19, "HOME_AGENT_ADDRESS", kPlainBytes}, {20, "P_CSCF_IP4_ADDRESS", kAddress4},
    {21, "P_CSCF_IP6_ADDRESS", kAddress6},
    {22, "FTT_KAT", kPlain}, {23, "EXTERNAL_SOURCE_IP4_NAT_INFO", kNat4},
    {24, "TIMEOUT_PERIOD_FOR_LIVENESS_CHECK", kPlain}, {25, "INTERNAL_DNS_DOMAIN", kPlainText},
    {26, "INTERNAL_DNSSEC_TA", kTrustAnchor}, {27, "ENCDNS_IP4", {}, ShowResolver4},
    {28, "ENCDNS_IP6", {}, ShowResolver6}, {29, "ENCDNS_DIGEST_INFO", kPlainBytes}, {16520, "XAUTH_TYPE", kXauthType},
    {16521, "XAUTH_USER_NAME", kPlainText}, {16522, "XAUTH_USER_PASSWORD", kPlainText},
    {16523, "XAUTH_PASSCODE", kPlainText}, {16524, "XAUTH_MESSAGE", kPlainText},
    {16525, "XAUTH_CHALLENGE", kPlainBytes},
    {16526, "XAUTH_DOMAIN", kPlainText}, {16527, "XAUTH_STATUS", kXauthStatus}, {16528, "XAUTH_NEXT_PIN", kPlainText},
    {16529, "XAUTH_ANSWER", kPlainText}, {23456, "INTERNAL_IP4_SERVER", kAddress4},
    {23457, "INTERNAL_IP6_SERVER", kAddress6}, {28672, "UNITY_BANNER", kPlainText},
    {28673, "UNITY_SAVE_PASSWD", kPlain},
    {28674, "UNITY_DEF_DOMAIN", kPlainText}, {28675, "UNITY_SPLITDNS_NAME", kPlainText},
    {28676, "UNITY_SPLIT_INCLUDE", {}, ShowSplits}, {28677, "UNITY_NATT_PORT", kPlain},
    {28678, "UNITY_LOCAL_LAN", {}, ShowSplits}, {28679, "UNITY_PFS", kPlain}, {28680, "UNITY_FW_TYPE", kPlainBytes},
    {28681, "UNITY_BACKUP_SERVERS", kPlainText}, {28682, "UNITY_DDNS_HOSTNAME", kPlainText}});

}  // namespace

ChoiceSpan<Ike> IkePayloads1() { return kPayloads; }
ChoiceSpan<Ike> IkeConfigurationAttributes() { return kConfigurations; }

}  // namespace qxview
