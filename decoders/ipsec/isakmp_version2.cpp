// The payloads of version 2 of the Internet Key Exchange (RFC 7296) and its additions: mobility (RFC 4555), redirects
// (RFC 5685), resumption (RFC 5723), fragments (RFC 7383), signatures (RFC 7427), post-quantum keys (RFC 8784, RFC
// 9370) and others of the registry.
#include "core/line_facts.h"
#include "decoders/common/eap.h"
#include "decoders/ipsec/isakmp.h"
#include "decoders/ipsec/isakmp_names.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

constexpr auto kProtocolNames = SortedNames({
    {0, "None"}, {1, "IKE"}, {2, "AH"}, {3, "ESP"}, {4, "FC_ESP_HEADER"}, {5, "FC_CT_AUTHENTICATION"},
    {6, "GIKE_UPDATE"}});
constexpr auto kTypeNames = SortedNames({
    {1, "Encryption Algorithm (ENCR)"}, {2, "Pseudo-random Function (PRF)"}, {3, "Integrity Algorithm (INTEG)"},
    {4, "Key Exchange Method (KE)"}, {5, "Sequence Numbers (SN)"}, {6, "Additional Key Exchange 1 (ADDKE1)"},
    {7, "Additional Key Exchange 2 (ADDKE2)"}, {8, "Additional Key Exchange 3 (ADDKE3)"},
    {9, "Additional Key Exchange 4 (ADDKE4)"}, {10, "Additional Key Exchange 5 (ADDKE5)"},
    {11, "Additional Key Exchange 6 (ADDKE6)"}, {12, "Additional Key Exchange 7 (ADDKE7)"},
    {13, "Key Wrap Algorithm (KWA)"}, {14, "Group Controller Authentication Method (GCAUTH)"}});
constexpr auto kCipherNames = SortedNames({
    {1, "ENCR_DES_IV64"}, {2, "ENCR_DES"}, {3, "ENCR_3DES"}, {4, "ENCR_RC5"}, {5, "ENCR_IDEA"}, {6, "ENCR_CAST"},
    {7, "ENCR_BLOWFISH"}, {8, "ENCR_3IDEA"}, {9, "ENCR_DES_IV32"}, {11, "ENCR_NULL"}, {12, "ENCR_AES_CBC"},
    {13, "ENCR_AES_CTR"}, {14, "ENCR_AES_CCM_8"}, {15, "ENCR_AES_CCM_12"}, {16, "ENCR_AES_CCM_16"},
    {18, "ENCR_AES_GCM_8"}, {19, "ENCR_AES_GCM_12"}, {20, "ENCR_AES_GCM_16"}, {21, "ENCR_NULL_AUTH_AES_GMAC"},
    {22, "XTS-AES"}, {23, "ENCR_CAMELLIA_CBC"}, {24, "ENCR_CAMELLIA_CTR"}, {25, "ENCR_CAMELLIA_CCM_8"},
    {26, "ENCR_CAMELLIA_CCM_12"}, {27, "ENCR_CAMELLIA_CCM_16"}, {28, "ENCR_CHACHA20_POLY1305"},
    {29, "ENCR_AES_CCM_8_IIV"}, {30, "ENCR_AES_GCM_16_IIV"}, {31, "ENCR_CHACHA20_POLY1305_IIV"},
    {32, "ENCR_KUZNYECHIK_MGM_KTREE"}, {33, "ENCR_MAGMA_MGM_KTREE"}, {34, "ENCR_KUZNYECHIK_MGM_MAC_KTREE"},
    {35, "ENCR_MAGMA_MGM_MAC_KTREE"}});
constexpr auto kPrfNames = SortedNames({
    {1, "PRF_HMAC_MD5"}, {2, "PRF_HMAC_SHA1"}, {3, "PRF_HMAC_TIGER"}, {4, "PRF_AES128_XCBC"}, {5, "PRF_HMAC_SHA2_256"},
    {6, "PRF_HMAC_SHA2_384"}, {7, "PRF_HMAC_SHA2_512"}, {8, "PRF_AES128_CMAC"}, {9, "PRF_HMAC_STREEBOG_512"}});
constexpr auto kIntegrityNames = SortedNames({
    {0, "NONE"}, {1, "AUTH_HMAC_MD5_96"}, {2, "AUTH_HMAC_SHA1_96"}, {3, "AUTH_DES_MAC"}, {4, "AUTH_KPDK_MD5"},
    {5, "AUTH_AES_XCBC_96"}, {6, "AUTH_HMAC_MD5_128"}, {7, "AUTH_HMAC_SHA1_160"}, {8, "AUTH_AES_CMAC_96"},
    {9, "AUTH_AES_128_GMAC"}, {10, "AUTH_AES_192_GMAC"}, {11, "AUTH_AES_256_GMAC"}, {12, "AUTH_HMAC_SHA2_256_128"},
    {13, "AUTH_HMAC_SHA2_384_192"}, {14, "AUTH_HMAC_SHA2_512_256"}});
constexpr auto kSequenceNames = SortedNames({
    {0, "32-bit Sequential Numbers"}, {1, "Partially Transmitted 64-bit Sequential Numbers"},
    {2, "32-bit Unspecified Numbers"}});
constexpr auto kWrapNames = SortedNames({
    {1, "KW_5649_128"}, {2, "KW_5649_192"}, {3, "KW_5649_256"}, {4, "KW_ARX"}});
constexpr auto kGroupMethodNames = SortedNames({{1, "Implicit"}, {2, "Digital Signature"}});

const char* TransformName(uint32_t type, uint32_t transform) {
  switch (type) {
    case 1: return LookupName(kCipherNames, transform);
    case 2: return LookupName(kPrfNames, transform);
    case 3: return LookupName(kIntegrityNames, transform);
    case 5: return LookupName(kSequenceNames, transform);
    case 13: return LookupName(kWrapNames, transform);
    case 14: return LookupName(kGroupMethodNames, transform);
    default: return type >= 4 && type <= 12 ? LookupName(kIkeGroupNames, transform) : kUnknown;
  }
}

constexpr auto kPlain = Rows<Ike>({Shown<Ike>(nullptr, ShowIkeNumber)});
constexpr auto kTransformAttributes = Choices<Ike>({
    {14, "Key Length", kPlain}, {18, "Signature Algorithm Identifier"}});
constexpr auto kLastNames = SortedNames({{0, "Last"}, {2, "More Proposals"}, {3, "More Transforms"}});
constexpr auto kPartHead = Rows<Ike>({
    Number(1, "Last Substructure", kLastNames), Number(1, "Reserved"), Number(2, "Length")});
constexpr auto kProposal = Rows<Ike>({
    Number(1, "Proposal Number").Note(" %u"), Number(1, "Protocol ID", kProtocolNames).Note(", %s"),
    Number(1, "SPI Size").Into(&Ike::spiSize), Number(1, "Number of Transforms").Into(&Ike::count)});
constexpr auto kTransform = Rows<Ike>({
    Number(1, "Transform Type", kTypeNames).Note(": %s").Into(&Ike::type), Number(1, "Reserved")});

void ShowTransform(const Place& in, Cursor& c, Ike& ike) {
  ShowRows<Ike>(in, c, kTransform, ike);
  const Field kind = TakeU16(c);
  const char* name = TransformName(ike.type.value, kind.value);
  AddLine(in, kind, "Transform ID: %u = %s", kind.value, name);
  AppendToParent(in, kind, ", %s", name);
  ShowIkeAttributes(in, c, kTransformAttributes, ike);
}
void ShowProposals(const Place& in, Cursor& c, Ike& ike) {
  ShowIkeProposals(in, c, {kPartHead, kProposal, ShowTransform}, ike);
}

constexpr auto kKeyExchange = Rows<Ike>({
    Number(2, "Key Exchange Method", kIkeGroupNames).Note(", %s"), Hex(2, "Reserved"),
    Shown<Ike>("Key Exchange Data", ShowIkeOpaque)});

constexpr auto kIdNames = SortedNames({
    {0, "Reserved"}, {1, "ID_IPV4_ADDR"}, {2, "ID_FQDN"}, {3, "ID_RFC822_ADDR"}, {5, "ID_IPV6_ADDR"},
    {9, "ID_DER_ASN1_DN"}, {10, "ID_DER_ASN1_GN"}, {11, "ID_KEY_ID"}, {12, "ID_FC_NAME"}, {13, "ID_NULL"}});
constexpr auto kIdHead = Rows<Ike>({
    Number(1, "ID Type", kIdNames).Note(", %s").Into(&Ike::type), Hex(3, "Reserved")});
constexpr auto kIdAddress4 = Rows<Ike>({IPv4("IPv4 Address").Note(", %s")});
constexpr auto kIdAddress6 = Rows<Ike>({IPv6("IPv6 Address").Note(", %s")});
constexpr auto kIdName = Rows<Ike>({Utf8(0, "Name").Note(", %s")});
constexpr auto kIdBytes = Rows<Ike>({Shown<Ike>("Identification Data", ShowIkeOpaque)});
constexpr auto kIdentities = Choices<Ike>({
    {1, "IPv4", kIdAddress4}, {2, "Name", kIdName}, {3, "User", kIdName}, {5, "IPv6", kIdAddress6},
    {9, "Distinguished Name", {}, ShowIkeName},
    {10, "General Name", {}, ShowIkeName}, {11, "Key", kIdBytes}, {12, "Fibre Channel Name", kIdBytes}});
void ShowIdentity(const Place& in, Cursor& c, Ike& ike) {
  if (Left(c) > 0) ShowChoice<Ike>(in, c, FindChoice<Ike>(kIdentities, ike.type.value), ike);
}

constexpr auto kMethodNames = SortedNames({
    {1, "RSA Digital Signature"}, {2, "Shared Key Message Integrity Code"}, {3, "DSS Digital Signature"},
    {9, "ECDSA with SHA-256 on the P-256 Curve"}, {10, "ECDSA with SHA-384 on the P-384 Curve"},
    {11, "ECDSA with SHA-512 on the P-521 Curve"}, {12, "Generic Secure Password Authentication Method"},
    {13, "NULL Authentication"}, {14, "Digital Signature"}});
constexpr auto kAuthentication = Rows<Ike>({
    Number(1, "Authentication Method", kMethodNames).Note(", %s").Into(&Ike::type), Hex(3, "Reserved")});
constexpr auto kAlgorithm = Rows<Ike>({Counted(1, Bytes(0, "Algorithm Identifier"))});
constexpr auto kAuthenticationData = Rows<Ike>({Shown<Ike>("Authentication Data", ShowIkeOpaque)});
void ShowAuthentication(const Place& in, Cursor& c, Ike& ike) {
  constexpr uint32_t kDigitalSignature = 14;
  if (ike.type.value == kDigitalSignature) ShowRows<Ike>(in, c, kAlgorithm, ike);
  ShowRows<Ike>(in, c, kAuthenticationData, ike);
}

constexpr auto kNotify = Rows<Ike>({
    Number(1, "Protocol ID", kProtocolNames).Into(&Ike::protocol), Number(1, "SPI Size").Into(&Ike::spiSize)});
constexpr auto kNotifySpi = Rows<Ike>({Bytes(0, "SPI").SizedBy(&Ike::spiSize)});
constexpr auto kNotifyData = Rows<Ike>({Shown<Ike>("Notification Data", ShowIkeOpaque)});
constexpr auto kCritical = Rows<Ike>({Number(1, "Unsupported Payload Type")});
constexpr auto kMessage = Rows<Ike>({Hex(4, "Invalid Message ID")});
constexpr auto kInvalidSpi = Rows<Ike>({Hex(4, "Invalid SPI")});
constexpr auto kWantedGroup = Rows<Ike>({Number(2, "Accepted Key Exchange Method", kIkeGroupNames).Note(", %s")});
constexpr auto kWindow = Rows<Ike>({Number(4, "Window Size")});
constexpr auto kCompression = Rows<Ike>({
    Hex(2, "Compression Parameter Index"), Number(1, "Transform ID", kIkeCompressionNames).Note(", %s"),
    Bytes(0, "Transform Attributes")});
constexpr auto kAddressHash = Rows<Ike>({Bytes(0, "Hash of SPIs, Address and Port")});
constexpr auto kCookie = Rows<Ike>({Shown<Ike>("Cookie", ShowIkeOpaque)});
constexpr auto kAddress4 = Rows<Ike>({IPv4("Additional Address").Note(", %s")});
constexpr auto kAddress6 = Rows<Ike>({IPv6("Additional Address").Note(", %s")});
constexpr auto kLifetime = Rows<Ike>({Number(4, "Lifetime", " seconds")});
constexpr auto kTicket = Rows<Ike>({Number(4, "Lifetime", " seconds"), Shown<Ike>("Ticket", ShowIkeOpaque)});
constexpr auto kTicketAlone = Rows<Ike>({Shown<Ike>("Ticket", ShowIkeOpaque)});
constexpr auto kToken = Rows<Ike>({Shown<Ike>("Token", ShowIkeOpaque)});
constexpr auto kMessageSync = Rows<Ike>({
    Hex(4, "Nonce"), Hex(4, "Expected Send Message ID"), Hex(4, "Expected Receive Message ID")});
constexpr auto kHashNames = SortedNames({
    {0, "RESERVED"}, {1, "SHA1"}, {2, "SHA2-256"}, {3, "SHA2-384"}, {4, "SHA2-512"}, {5, "Identity"},
    {6, "STREEBOG_256"},
    {7, "STREEBOG_512"}});
constexpr auto kHash = Rows<Ike>({Number(2, "Hash Algorithm", kHashNames).Note(", %s")});
constexpr auto kPasswordNames = SortedNames({
    {0, "Reserved"}, {1, "PACE"}, {2, "AugPAKE"}, {3, "Secure PSK Authentication"}});
constexpr auto kPassword = Rows<Ike>({Number(2, "Secure Password Method", kPasswordNames).Note(", %s")});
constexpr auto kPuzzle = Rows<Ike>({
    Number(2, "PRF", kPrfNames), Number(1, "Difficulty"), Shown<Ike>("Cookie", ShowIkeOpaque)});
constexpr auto kPpkNames = SortedNames({{0, "Reserved"}, {1, "PPK_ID_OPAQUE"}, {2, "PPK_ID_FIXED"}});
constexpr auto kPpk = Rows<Ike>({Number(1, "PPK Identity Type", kPpkNames), Bytes(0, "PPK Identity")});
constexpr auto kGatewayNames = SortedNames({{1, "IPv4"}, {2, "IPv6"}, {3, "FQDN"}});
constexpr auto kGateway = Rows<Ike>({
    Number(1, "Gateway Identity Type", kGatewayNames).Into(&Ike::type),
    Number(1, "Gateway Identity Length").Into(&Ike::spiSize)});
constexpr auto kGateway4 = Rows<Ike>({IPv4("Gateway").Note(", %s")});
constexpr auto kGateway6 = Rows<Ike>({IPv6("Gateway").Note(", %s")});
constexpr auto kGatewayName = Rows<Ike>({Text(0, "Gateway").SizedBy(&Ike::spiSize)});
constexpr auto kNonce = Rows<Ike>({Bytes(0, "Nonce")});
constexpr auto kRohcNames = SortedNames({
    {1, "MAX_CID"}, {2, "ROHC_PROFILE"}, {3, "ROHC_INTEG"}, {4, "ROHC_ICV_LEN"}, {5, "MRRU"}});

void ShowHashes(const Place& in, Cursor& c, Ike& ike) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Ike>(in, c, kHash, ike);
}
void ShowPasswords(const Place& in, Cursor& c, Ike& ike) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Ike>(in, c, kPassword, ike);
}
void ShowGateway(const Place& in, Cursor& c, Ike& ike) {
  constexpr uint32_t kFour = 1, kSix = 2;
  ShowRows<Ike>(in, c, kGateway, ike);
  const uint32_t type = ike.type.value;
  ShowRows<Ike>(in, c, type == kFour ? RowSpan<Ike>(kGateway4) : type == kSix ? RowSpan<Ike>(kGateway6)
                                                                              : RowSpan<Ike>(kGatewayName), ike);
  if (Left(c) > 0) ShowRows<Ike>(in, c, kNonce, ike);
}
void ShowRohc(const Place& in, Cursor& c, Ike&) {   // attributes of the form that transforms have
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    const Field type = TakeU16(c), value = TakeU16(c);
    AddLine(in, Stated(type.offset, 4), "ROHC Attribute: %s = %u", LookupName(kRohcNames, type.value & 0x7FFF),
            value.value);
  }
}

constexpr auto kNotifications = Choices<Ike>({
    {1, "UNSUPPORTED_CRITICAL_PAYLOAD", kCritical}, {4, "INVALID_IKE_SPI"}, {5, "INVALID_MAJOR_VERSION"},
    {7, "INVALID_SYNTAX"}, {9, "INVALID_MESSAGE_ID", kMessage}, {11, "INVALID_SPI", kInvalidSpi},
    {14, "NO_PROPOSAL_CHOSEN"}, {17, "INVALID_KE_PAYLOAD", kWantedGroup}, {24, "AUTHENTICATION_FAILED"},
    {34, "SINGLE_PAIR_REQUIRED"}, {35, "NO_ADDITIONAL_SAS"}, {36, "INTERNAL_ADDRESS_FAILURE"},
    {37, "FAILED_CP_REQUIRED"}, {38, "TS_UNACCEPTABLE"}, {39, "INVALID_SELECTORS"}, {40, "UNACCEPTABLE_ADDRESSES"},
    {41, "UNEXPECTED_NAT_DETECTED"}, {42, "USE_ASSIGNED_HoA"}, {43, "TEMPORARY_FAILURE"}, {44, "CHILD_SA_NOT_FOUND"},
    {45, "INVALID_GROUP_ID"}, {46, "AUTHORIZATION_FAILED"}, {47, "STATE_NOT_FOUND"}, {48, "TS_MAX_QUEUE"},
    {49, "REGISTRATION_FAILED"}, {16384, "INITIAL_CONTACT"}, {16385, "SET_WINDOW_SIZE", kWindow},
    {16386, "ADDITIONAL_TS_POSSIBLE"}, {16387, "IPCOMP_SUPPORTED", kCompression},
    {16388, "NAT_DETECTION_SOURCE_IP", kAddressHash}, {16389, "NAT_DETECTION_DESTINATION_IP", kAddressHash},
    {16390, "COOKIE", kCookie}, {16391, "USE_TRANSPORT_MODE"}, {16392, "HTTP_CERT_LOOKUP_SUPPORTED"},
    {16393, "REKEY_SA"}, {16394, "ESP_TFC_PADDING_NOT_SUPPORTED"}, {16395, "NON_FIRST_FRAGMENTS_ALSO"},
    {16396, "MOBIKE_SUPPORTED"}, {16397, "ADDITIONAL_IP4_ADDRESS", kAddress4},
    {16398, "ADDITIONAL_IP6_ADDRESS", kAddress6}, {16399, "NO_ADDITIONAL_ADDRESSES"}, {16400, "UPDATE_SA_ADDRESSES"},
    {16401, "COOKIE2", kCookie}, {16402, "NO_NATS_ALLOWED"}, {16403, "AUTH_LIFETIME", kLifetime},
    {16404, "MULTIPLE_AUTH_SUPPORTED"}, {16405, "ANOTHER_AUTH_FOLLOWS"}, {16406, "REDIRECT_SUPPORTED"},
    {16407, "REDIRECT", {}, ShowGateway}, {16408, "REDIRECTED_FROM", {}, ShowGateway},
    {16409, "TICKET_LT_OPAQUE", kTicket}, {16410, "TICKET_REQUEST"}, {16411, "TICKET_ACK"}, {16412, "TICKET_NACK"},
    {16413, "TICKET_OPAQUE", kTicketAlone}, {16414, "LINK_ID"}, {16415, "USE_WESP_MODE"},
    {16416, "ROHC_SUPPORTED", {}, ShowRohc}, {16417, "EAP_ONLY_AUTHENTICATION"}, {16418, "CHILDLESS_IKEV2_SUPPORTED"},
    {16419, "QUICK_CRASH_DETECTION", kToken}, {16420, "IKEV2_MESSAGE_ID_SYNC_SUPPORTED"},
    {16421, "IPSEC_REPLAY_COUNTER_SYNC_SUPPORTED"}, {16422, "IKEV2_MESSAGE_ID_SYNC", kMessageSync},
    {16423, "IPSEC_REPLAY_COUNTER_SYNC"}, {16424, "SECURE_PASSWORD_METHODS", {}, ShowPasswords}, {16425, "PSK_PERSIST"},
    {16426, "PSK_CONFIRM"}, {16427, "ERX_SUPPORTED"}, {16428, "IFOM_CAPABILITY"}, {16429, "GROUP_SENDER"},
    {16430, "IKEV2_FRAGMENTATION_SUPPORTED"}, {16431, "SIGNATURE_HASH_ALGORITHMS", {}, ShowHashes},
    {16432, "CLONE_IKE_SA_SUPPORTED"}, {16433, "CLONE_IKE_SA"}, {16434, "PUZZLE", kPuzzle}, {16435, "USE_PPK"},
    {16436, "PPK_IDENTITY", kPpk}, {16437, "NO_PPK_AUTH"}, {16438, "INTERMEDIATE_EXCHANGE_SUPPORTED"},
    {16439, "IP4_ALLOWED"}, {16440, "IP6_ALLOWED"}, {16441, "ADDITIONAL_KEY_EXCHANGE"}, {16442, "USE_AGGFRAG"},
    {16443, "SUPPORTED_AUTH_METHODS"}, {16444, "SA_RESOURCE_INFO"}, {16445, "USE_PPK_INT"},
    {16446, "PPK_IDENTITY_KEY"}});

const char* NotificationName(uint32_t type) {
  const Choice<Ike>* choice = FindChoice<Ike>(kNotifications, type);
  return choice       ? choice->name
         : type < 8192  ? "Unassigned Error"
         : type < 16384 ? "Private Use Error"
         : type < 40960 ? "Unassigned Status"
                        : "Private Use Status";
}
constexpr auto kNotifyType = Rows<Ike>({
    Number(2, "Notify Message Type", NotificationName).Note(", %s").Into(&Ike::type)});

void ShowNotification(const Place& in, Cursor& c, Ike& ike) {
  ShowRows<Ike>(in, c, kNotifyType, ike);
  if (ike.spiSize.value > 0) ShowRows<Ike>(in, c, kNotifySpi, ike);
  const Choice<Ike>* choice = FindChoice<Ike>(kNotifications, ike.type.value);
  const bool isTaken = choice && (choice->rows.count || choice->show);
  if (Left(c) < 1) return;
  if (!isTaken) {
    ShowRows<Ike>(in, c, kNotifyData, ike);
    return;
  }
  ShowChoice<Ike>(in, c, choice, ike);
}

constexpr auto kDelete = Rows<Ike>({
    Number(1, "Protocol ID", kProtocolNames).Note(", %s"), Number(1, "SPI Size").Into(&Ike::spiSize),
    Number(2, "Number of SPIs").Note(", %u SPIs").Into(&Ike::count)});

constexpr auto kSelectorNames = SortedNames({
    {7, "TS_IPV4_ADDR_RANGE"}, {8, "TS_IPV6_ADDR_RANGE"}, {9, "TS_FC_ADDR_RANGE"}, {10, "TS_SECLABEL"}});
const char* CarriedName(uint32_t protocol) { return protocol == 0 ? "Any" : IpProtocolName(protocol); }
constexpr auto kSelectors = Rows<Ike>({Number(1, "Number of Traffic Selectors").Into(&Ike::count), Hex(3, "Reserved")});
constexpr auto kSelector = Rows<Ike>({
    Number(1, "Traffic Selector Type", kSelectorNames).Note(", %s").Into(&Ike::type),
    Number(1, "IP Protocol ID", CarriedName).Into(&Ike::protocol), Number(2, "Selector Length")});
constexpr auto kPorts = Rows<Ike>({Number(2, "Start Port"), Number(2, "End Port")});
constexpr auto kIcmpTypes = Rows<Ike>({
    Number(1, "Start ICMP Type"), Number(1, "Start ICMP Code"), Number(1, "End ICMP Type"),
    Number(1, "End ICMP Code")});
constexpr auto kRange4 = Rows<Ike>({
    IPv4("Starting Address").Note(", %s"), IPv4("Ending Address").Note("-%s")});
constexpr auto kRange6 = Rows<Ike>({
    IPv6("Starting Address").Note(", %s"), IPv6("Ending Address").Note("-%s")});
constexpr auto kFibre = Rows<Ike>({
    Number(1, "Reserved"), Hex(3, "Starting Address"), Number(1, "Reserved"), Hex(3, "Ending Address"),
    Number(1, "Starting R_CTL"), Number(1, "Ending R_CTL"), Number(1, "Starting Type"), Number(1, "Ending Type")});
constexpr auto kLabel = Rows<Ike>({Text(0, "Security Label").Note(", %s")});

void ShowSelector(const Place& in, Cursor& c, Ike& ike) {
  constexpr uint32_t kFour = 7, kSix = 8, kFibreChannel = 9, kSecurityLabel = 10, kIcmp = 1, kIcmp6 = 58;
  ShowRows<Ike>(in, c, kSelector, ike);
  const uint32_t type = ike.type.value, protocol = ike.protocol.value;
  if (type == kFour || type == kSix) {
    const bool isIcmp = protocol == kIcmp || protocol == kIcmp6;
    ShowRows<Ike>(in, c, isIcmp ? RowSpan<Ike>(kIcmpTypes) : RowSpan<Ike>(kPorts), ike);
    ShowRows<Ike>(in, c, type == kFour ? RowSpan<Ike>(kRange4) : RowSpan<Ike>(kRange6), ike);
  } else if (type == kFibreChannel) {
    ShowRows<Ike>(in, c, kFibre, ike);
  } else if (type == kSecurityLabel) {
    ShowRows<Ike>(in, c, kLabel, ike);
  }
  c.ranShort = false;   // what is left of a selector that is cut
  AddBlock(in, Rest(c), "Selector Data");
}

void ShowSelectors(const Place& in, Cursor& c, Ike& ike) {
  ShowRows<Ike>(in, c, kSelectors, ike);
  const uint32_t count = ike.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && Left(c) >= 4 && PeekU16(c, 2) >= 4 && MoreAt(in, c, loop); ++i) {
    Cursor selector = TakeCursor(c, PeekU16(c, 2));
    ShowSelector(Under(in, AddLine(in, Ahead(selector, Left(selector)), "Traffic Selector")), selector, ike);
  }
}

void ShowSealed(const Place& in, Cursor& c, Ike&) {
  const Field sealed = Rest(c);
  AddLine(in, sealed, "Encrypted Data: %d bytes (initialization vector, payloads and integrity check value)",
          sealed.length);
}
constexpr auto kFragment = Rows<Ike>({
    Number(2, "Fragment Number").Note(" %u"), Number(2, "Total Fragments").Note(" of %u")});

constexpr auto kConfiguration = Rows<Ike>({
    Number(1, "Configuration Type", kIkeConfigurationNames).Note(", %s"), Hex(3, "Reserved")});
void ShowConfiguration(const Place& in, Cursor& c, Ike& ike) {
  ShowIkeAttributes(in, c, IkeConfigurationAttributes(), ike);
}
void ShowEap(const Place& in, Cursor& c, Ike&) {
  const KeyedAs keys(PacketOf(in), "eap");
  AddEap(in, c);
}

constexpr auto kNonceData = Rows<Ike>({Shown<Ike>("Nonce Data", ShowIkeOpaque)});
constexpr auto kSolution = Rows<Ike>({Shown<Ike>("Puzzle Solution", ShowIkeOpaque)});
constexpr auto kPasswordData = Rows<Ike>({Shown<Ike>("Secure Password Data", ShowIkeOpaque)});

constexpr auto kPayloads = Choices<Ike>({
    {33, "Security Association", {}, ShowProposals}, {34, "Key Exchange", kKeyExchange},
    {35, "Identification - Initiator", kIdHead, ShowIdentity},
    {36, "Identification - Responder", kIdHead, ShowIdentity},
    {37, "Certificate", {}, ShowIkeCertificate}, {38, "Certificate Request", {}, ShowIkeCertificateRequest},
    {39, "Authentication", kAuthentication, ShowAuthentication}, {40, "Nonce", kNonceData},
    {41, "Notify", kNotify, ShowNotification}, {42, "Delete", kDelete, ShowIkeSpis},
    {43, "Vendor ID", {}, ShowIkeVendor},
    {44, "Traffic Selector - Initiator", {}, ShowSelectors}, {45, "Traffic Selector - Responder", {}, ShowSelectors},
    {46, "Encrypted and Authenticated", {}, ShowSealed}, {47, "Configuration", kConfiguration, ShowConfiguration},
    {48, "Extensible Authentication", {}, ShowEap}, {49, "Generic Secure Password Method", kPasswordData},
    {50, "Group Identification", kIdHead, ShowIdentity}, {51, "Group Security Association"}, {52, "Key Download"},
    {53, "Encrypted and Authenticated Fragment", kFragment, ShowSealed}, {54, "Puzzle Solution", kSolution}});

}  // namespace

ChoiceSpan<Ike> IkePayloads2() { return kPayloads; }

}  // namespace qxview
