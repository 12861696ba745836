// The methods of EAP: what stands behind the type of a request or response. MD5, one-time passwords and tokens (RFC 3748),
// TLS (RFC 5216) and what tunnels in it (TTLS: RFC 5281, FAST: RFC 4851, TEAP: RFC 7170), MSCHAPv2
// (draft-kamath-pppext-eap-mschapv2), PAX (RFC 4746), SAKE (RFC 4763), PSK (RFC 4764), IKEv2 (RFC 5106), GPSK (RFC 5433),
// pwd (RFC 5931), EKE (RFC 6124), NOOB (RFC 9140), Wi-Fi Simple Configuration.
#include "decoders/common/eap.h"
#include "decoders/common/json_lines.h"

namespace qxview {
namespace {

constexpr auto kChapOperationNames = SortedNames({
    {1, "Challenge"}, {2, "Response"}, {3, "Success"}, {4, "Failure"}, {7, "Change Password"}});
constexpr auto kSimSubtypes = SortedNames({
    {1, "AKA-Challenge"}, {2, "AKA-Authentication-Reject"}, {4, "AKA-Synchronization-Failure"}, {5, "AKA-Identity"},
    {10, "SIM-Start"}, {11, "SIM-Challenge"}, {12, "Notification"}, {13, "Re-authentication"}, {14, "Client-Error"}});
constexpr auto kVendorNames = SortedNames({{0, "IETF"}, {0x000009, "Cisco"}, {0x000137, "Microsoft"}, {0x00372A,
    "Wi-Fi Alliance"}});
constexpr auto kGroups = SortedNames({
    {1, "MODP 768"}, {2, "MODP 1024"}, {5, "MODP 1536"}, {14, "MODP 2048"}, {19, "NIST P-256"}, {20, "NIST P-384"},
    {21, "NIST P-521"}, {25, "NIST P-192"}, {26, "NIST P-224"}, {27, "Brainpool P-224"}, {28, "Brainpool P-256"},
    {29, "Brainpool P-384"}, {30, "Brainpool P-512"}});
constexpr auto kPwdExchanges = SortedNames({{0, "Reserved"}, {1, "ID"}, {2, "Commit"}, {3, "Confirm"}});
constexpr auto kPrepNames = SortedNames({{0, "None"}, {1, "RFC 2759"}, {2, "SASLprep"}, {3,
    "SHA-1 of Salt and Password"},
                                         {4, "SHA-256 of Salt and Password"}, {5, "SHA-512 of Salt and Password"}, {6,
                                         "crypt()"}});
constexpr auto kRandomNames = SortedNames({{1, "HMAC-SHA256"}});
constexpr auto kPaxOperations = SortedNames({
    {1, "STD-1"}, {2, "STD-2"}, {3, "STD-3"}, {0x11, "SEC-1"}, {0x12, "SEC-2"}, {0x13, "SEC-3"}, {0x14, "SEC-4"},
    {0x15, "SEC-5"}, {0x21, "ACK"}});
constexpr auto kPaxMacs = SortedNames({{1, "HMAC-SHA1-128"}, {2, "HMAC-SHA256-128"}});
constexpr auto kPaxGroups = SortedNames({{0, "None"}, {1, "MODP 2048"}, {2, "MODP 3072"}, {3, "NIST P-256"}});
constexpr auto kPaxKeys = SortedNames({{0, "None"}, {1, "RSA-OAEP-2048"}, {2, "RSA-OAEP-2048 Self-Signed"}});
constexpr auto kSakeSubtypes = SortedNames({
    {1, "SAKE/Challenge"}, {2, "SAKE/Confirm"}, {3, "SAKE/Auth-Reject"}, {4, "SAKE/Identity"}});
constexpr auto kGpskOperations = SortedNames({
    {0, "Reserved"}, {1, "GPSK-1"}, {2, "GPSK-2"}, {3, "GPSK-3"}, {4, "GPSK-4"}, {5, "GPSK-Fail"}, {6,
    "GPSK-Protected-Fail"}});
constexpr auto kGpskFailures = SortedNames({
    {1, "PSK Not Found"}, {2, "Authentication Failure"}, {3, "Authorization Failure"}});
constexpr auto kEkeExchanges = SortedNames({
    {1, "EKE-ID"}, {2, "EKE-Commit"}, {3, "EKE-Confirm"}, {4, "EKE-Failure"}});
constexpr auto kEkeGroups = SortedNames({{1, "EKE 2"}, {2, "EKE 5"}, {3, "EKE 14"}, {4, "EKE 15"}, {5, "EKE 16"}});
constexpr auto kEkeCiphers = SortedNames({{1, "AES-128-CBC"}});
constexpr auto kEkeHashes = SortedNames({{1, "PRF HMAC-SHA1"}, {2, "PRF HMAC-SHA2-256"}});
constexpr auto kEkeMacs = SortedNames({{1, "HMAC-SHA1"}, {2, "HMAC-SHA2-256"}});
constexpr auto kEkeIdentities = SortedNames({
    {0, "Reserved"}, {1, "Opaque"}, {2, "NAI"}, {3, "IPv4"}, {4, "IPv6"}, {5, "FQDN"}, {6, "DN"}});
constexpr auto kEkeFailures = SortedNames({
    {0, "Reserved"}, {1, "No Error"}, {2, "Protocol Error"}, {3, "Password Not Found"}, {4, "Authentication Failure"},
    {5, "Authorization Failure"}, {6, "No Proposal Chosen"}});
constexpr auto kWscOperations = SortedNames({
    {1, "WSC_Start"}, {2, "WSC_ACK"}, {3, "WSC_NACK"}, {4, "WSC_MSG"}, {5, "WSC_Done"}, {6, "WSC_FRAG_ACK"}});

// --- what EAP itself has ---

constexpr auto kIdentity = Rows<Eap>({Text(0, "Identity")});
constexpr auto kNotification = Rows<Eap>({Text(0, "Notification")});
constexpr auto kDesired = Rows<Eap>({Number(1, "Desired Type", kEapTypeNames)});
constexpr auto kChallenge = Rows<Eap>({Counted(1, Bytes(0, "Value")), Text(0, "Name")});
constexpr auto kPassword = Rows<Eap>({Text(0, "Password")});
constexpr auto kToken = Rows<Eap>({Text(0, "Token")});

void ShowDesired(const Place& in, Cursor& c, Eap& eap) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Eap>(in, c, kDesired, eap);
}

// --- TLS and what tunnels in it ---

constexpr auto kTlsFlags = Rows<Eap>({
    Word(1).Into(&Eap::flags), Flag(0, "Length Included"), Flag(1, "More Fragments"), Flag(2, "Start"),
    Bits(3, 2, "Reserved"), Bits(5, 3, "Version")});
constexpr auto kTeapFlags = Rows<Eap>({
    Word(1).Into(&Eap::flags), Flag(0, "Length Included"), Flag(1, "More Fragments"), Flag(2, "Start"),
    Flag(3, "Outer TLV Length Included"), Bits(4, 1, "Reserved"), Bits(5, 3, "Version")});
constexpr auto kTlsLength = Rows<Eap>({Number(4, "TLS Message Length").Into(&Eap::total)});
constexpr auto kOuterLength = Rows<Eap>({Number(4, "Outer TLV Length").Into(&Eap::count)});
constexpr auto kAuthority = Rows<Eap>({Bytes(0, "Authority ID")});
constexpr uint32_t kLengthIncluded = 0x80, kMoreFragments = 0x40, kStart = 0x20, kOuterIncluded = 0x10;

// The records in a message, or in its first fragment; they are no stream of the connection that carries EAP. Later
// fragments start in the middle of a record.
void ShowMessage(const Place& in, Cursor& c) {
  constexpr uint32_t kTlsApplication = 0x1E, kFirstType = 20, kLastType = 23, kMajorVersion = 3;
  const DecoderRow* tls = FindBuiltinDecoder(kTlsApplication);
  const uint32_t type = PeekU8(c);
  const bool isRecord = type >= kFirstType && type <= kLastType && PeekU8(c, 1) == kMajorVersion && PeekU8(c, 2) <= 4;
  const bool starts = Left(c) >= 6 && isRecord;
  bool& quoted = PacketOf(in).quoted;
  const bool wasQuoted = quoted;
  quoted = true;
  const int32_t shown = tls && starts ? TryDecoder(in, c, tls->decode, "TLS Data") : 0;
  quoted = wasQuoted;
  if (shown) {
    TakeBytes(c, Left(c));
  } else {
    AddBlock(in, Rest(c), "TLS Message Continued");
  }
}
bool JoinFlagged(const Place& in, Cursor& c, const Eap& eap, Cursor* message) {
  const uint32_t flags = eap.flags.value;
  return JoinEapFragment(in, c, eap, flags & kLengthIncluded, flags & kMoreFragments, message);
}
void ShowRecords(const Place& in, Cursor& c, const Eap& eap) {
  Cursor message;
  const bool isFragment = JoinFlagged(in, c, eap, &message);
  ShowMessage(in, isFragment ? message : c);
}


void ShowTls(const Place& in, Cursor& c, Eap& eap) {
  if (eap.flags.value & kLengthIncluded) ShowRows<Eap>(in, c, kTlsLength, eap);
  ShowRecords(in, c, eap);
}
constexpr ElementForm kTlvForm{.typeSize = 2, .lengthSize = 2, .typeMask = 0x3FFF};
// Elements whose first bit says that whoever does not know the type must refuse.
void ShowTlvs(const Place& in, Cursor& c, const char* title, ChoiceSpan<Eap> choices, Eap& eap) {
  // keys: text TLV, Outer TLV, Attribute
  // keys: number Type, Length
  Loop loop;
  Element element;
  while (MoreAt(in, c, loop) && TakeElement(c, kTlvForm, element)) {
    const Choice<Eap>* choice = FindChoice<Eap>(choices, element.code);
    const Place under = detail::AddElementHead(in, element, kTlvForm, title, choice ? choice->name : kUnknown);
    const BitPicture mandatory = BitsOf(element.type, 0, 1), type = BitsOf(element.type, 2, 14);
    AddBitLine(under, element.type, "%s: Mandatory = %s", mandatory.picture, LookupName(kFalseTrueNames, mandatory.value));
    AddBitLine(under, element.type, "%s: TLV Type = %u", type.picture, type.value);
    ShowChoice(under, element.value, choice, eap);
  }
}
constexpr auto kFastTlvs = Choices<Eap>({{4, "Authority ID", kAuthority}});
void ShowFast(const Place& in, Cursor& c, Eap& eap) {
  if (eap.flags.value & kLengthIncluded) ShowRows<Eap>(in, c, kTlsLength, eap);
  if (eap.flags.value & kStart) ShowTlvs(in, c, "TLV", kFastTlvs, eap);
  ShowRecords(in, c, eap);
}

constexpr auto kTeapIdentityNames = SortedNames({{1, "User"}, {2, "Machine"}});
constexpr auto kTeapStatusNames = SortedNames({{1, "Success"}, {2, "Failure"}});
constexpr auto kTeapActionNames = SortedNames({{1, "Process-TLV"}, {2, "Negotiate-EAP"}});
constexpr auto kTeapFormatNames = SortedNames({{1, "PKCS#7 Server Certificate Root"}});
constexpr auto kTeapBindingNames = SortedNames({{0, "Binding Request"}, {1, "Binding Response"}});
constexpr auto kTeapMacNames = SortedNames({{1, "EMSK Compound MAC"}, {2, "MSK Compound MAC"}, {3, "Both"}});
constexpr auto kTeapErrorNames = SortedNames({
    {1, "User Account Expires Soon"}, {2, "User Account Credential Expires Soon"},
    {3, "User Account Authorizations Change Soon"}, {4, "Clock Skew Detected"}, {5, "Contact Administrator"},
    {6, "User Account Credentials Change Required"}, {1001, "Inner Method Error"},
    {1002, "Unspecified Authentication Infrastructure Problem"}, {1003, "Unspecified Authentication Failure"},
    {1004, "Unspecified Authorization Failure"}, {1005, "User Account Credentials Unavailable"},
    {1006, "User Account Expired"}, {1007, "User Account Locked: Try Again Later"},
    {1008, "User Account Locked: Admin Intervention Required"}, {1009, "Authentication Infrastructure Unavailable"},
    {1010, "Authentication Infrastructure Not Trusted"}, {1011, "Clock Skew Too Great"}, {1012, "Invalid Inner Realm"},
    {1013, "Token Out of Sync: Administrator Intervention Required"},
    {1014, "Token Out of Sync: PIN Change Required"}, {1015, "Token Revoked"}, {1016, "Tokens Exhausted"},
    {1017, "Challenge Expired"}, {1018, "Challenge Algorithm Mismatch"}, {1019, "Client Certificate Not Supplied"},
    {1020, "Client Certificate Rejected"}, {1021, "Realm Mismatch Between Inner and Outer Identity"},
    {1022, "Unsupported Algorithm in Certificate Signing Request"},
    {1023, "Unsupported Extension in Certificate Signing Request"},
    {1024, "Bad Identity in Certificate Signing Request"}, {1025, "Bad Certificate Signing Request"},
    {1026, "Internal CA Error"}, {1027, "General PKI Error"},
    {1028, "Channel-Binding Data Required but Not Supplied"},
    {1029, "Channel-Binding Data Without Required Information"}, {1030, "Channel Binding Failed"},
    {1031, "User Account Credentials Incorrect"}, {2001, "Tunnel Compromise Error"},
    {2002, "Unexpected TLVs Exchanged"}});
constexpr auto kTeapIdentity = Rows<Eap>({Number(2, "Identity Type", kTeapIdentityNames)});
constexpr auto kTeapStatus = Rows<Eap>({Number(2, "Status", kTeapStatusNames)});
constexpr auto kTeapNak = Rows<Eap>({Number(4, "Vendor ID", kVendorNames), Number(2, "NAK Type")});
constexpr auto kTeapError = Rows<Eap>({Number(4, "Error Code", kTeapErrorNames)});
constexpr auto kTeapVendor = Rows<Eap>({Number(4, "Vendor ID", kVendorNames), Bytes(0, "Vendor TLVs")});
constexpr auto kTeapAction = Rows<Eap>({
    Number(1, "Status", kTeapStatusNames), Number(1, "Action", kTeapActionNames), Bytes(0, "TLVs")});
constexpr auto kTeapBinding = Rows<Eap>({
    Number(1, "Reserved"), Number(1, "Version"), Number(1, "Received Version"), Word(1),
    Bits(0, 4, "Flags", kTeapMacNames), Bits(4, 4, "Subtype", kTeapBindingNames), Bytes(32, "Nonce"),
    Bytes(20, "EMSK Compound MAC"), Bytes(20, "MSK Compound MAC")});
constexpr auto kTeapPrompt = Rows<Eap>({Utf8(0, "Prompt")});
constexpr auto kTeapPassword = Rows<Eap>({Counted(1, Utf8(0, "User Name")), Counted(1, Utf8(0, "Password"))});
constexpr auto kTeapRoot = Rows<Eap>({Number(2, "Credential Format", kTeapFormatNames), Bytes(0, "TLVs")});
constexpr auto kTeapHint = Rows<Eap>({Utf8(0, "Identity Hint")});
constexpr auto kTeapCertificates = Rows<Eap>({Bytes(0, "Certificates")});
constexpr auto kTeapRequest = Rows<Eap>({Bytes(0, "Certification Request")});
constexpr auto kTeapOctets = Rows<Eap>({Bytes(0, nullptr)});
// A method within the outer one; nesting is counted.
int32_t DecodePayload(const Place& at, Cursor c) {
  if (Left(c) < kEapHeaderSize) return 0;
  AddEap(at, c);
  return 1;
}
void ShowPayload(const Place& in, Cursor& c, Eap&) {
  Cursor payload = TakeCursor(c, Left(c));
  CallDecoder(in, payload, DecodePayload, "EAP Payload");
}
constexpr auto kPacNames = SortedNames({{1, "Tunnel PAC"}});
constexpr auto kPacLifetime = Rows<Eap>({UnixTime(4, "PAC Lifetime")});
constexpr auto kPacIdentity = Rows<Eap>({Utf8(0, nullptr)});
constexpr auto kPacType = Rows<Eap>({Number(2, "PAC Type", kPacNames)});
constexpr auto kPacAnswer = Rows<Eap>({Number(2, "Result", kTeapStatusNames)});
constexpr auto kPacInside = Choices<Eap>({
    {3, "PAC-Lifetime", kPacLifetime}, {4, "A-ID", kAuthority}, {5, "I-ID", kPacIdentity}, {7, "A-ID-Info", kPacIdentity},
    {10, "PAC-Type", kPacType}});
void ShowPacInside(const Place& in, Cursor& c, Eap& eap) {
  ShowTlvs(in, c, "Attribute", kPacInside, eap);
}
constexpr auto kPacParts = Choices<Eap>({
    {1, "PAC-Key", kTeapOctets}, {2, "PAC-Opaque", kTeapOctets}, {8, "PAC-Acknowledgement", kPacAnswer},
    {9, "PAC-Info", {}, ShowPacInside}, {10, "PAC-Type", kPacType}});
void ShowPac(const Place& in, Cursor& c, Eap& eap) {
  ShowTlvs(in, c, "Attribute", kPacParts, eap);
}
constexpr auto kTeapTlvs = Choices<Eap>({
    {1, "Authority-ID", kAuthority}, {2, "Identity-Type", kTeapIdentity}, {3, "Result", kTeapStatus},
    {4, "NAK", kTeapNak}, {5, "Error", kTeapError}, {6, "Channel-Binding", kTeapOctets},
    {7, "Vendor-Specific", kTeapVendor}, {8, "Request-Action", kTeapAction}, {9, "EAP-Payload", {}, ShowPayload},
    {10, "Intermediate-Result", kTeapStatus}, {11, "PAC", {}, ShowPac}, {12, "Crypto-Binding", kTeapBinding},
    {13, "Basic-Password-Auth-Req", kTeapPrompt}, {14, "Basic-Password-Auth-Resp", kTeapPassword},
    {15, "PKCS#7", kTeapCertificates}, {16, "PKCS#10", kTeapRequest}, {17, "Trusted-Server-Root", kTeapRoot},
    {18, "CSR-Attributes", kTeapOctets}, {19, "Identity-Hint", kTeapHint}});
void ShowTeap(const Place& in, Cursor& c, Eap& eap) {
  if (eap.flags.value & kLengthIncluded) ShowRows<Eap>(in, c, kTlsLength, eap);
  if (eap.flags.value & kOuterIncluded) ShowRows<Eap>(in, c, kOuterLength, eap);
  const int32_t outer = eap.count.value < static_cast<uint32_t>(Left(c)) ? static_cast<int32_t>(eap.count.value) :
      Left(c);
  Cursor tls = TakeCursor(c, Left(c) - outer);
  ShowRecords(in, tls, eap);
  ShowTlvs(in, c, "Outer TLV", kTeapTlvs, eap);
}

// --- challenges ---

constexpr auto kLeap = Rows<Eap>({
    Number(1, "LEAP Version"), Number(1, "Reserved"), Counted(1, Bytes(0, "Peer Challenge")), Text(0, "User Name")});
constexpr auto kChap2 = Rows<Eap>({Number(1, "Operation", kChapOperationNames).Into(&Eap::operation)});
constexpr auto kChap2Head = Rows<Eap>({Number(1, "MS-CHAPv2 Identifier"), Number(2, "MS-CHAPv2 Length")});
constexpr auto kChap2Challenge = Rows<Eap>({Counted(1, Bytes(0, "Challenge")), Text(0, "Name")});
constexpr auto kChap2Response = Rows<Eap>({
    Number(1, "Response Length"), Bytes(16, "Peer Challenge"), Bytes(8, "Reserved"), Bytes(24, "NT Response"), Hex(1,
    "Flags"),
    Text(0, "Name")});
constexpr auto kChap2Message = Rows<Eap>({Text(0, "Message")});
constexpr auto kChap2Change = Rows<Eap>({
    Bytes(0, "Encrypted Password").SizedBy(&Eap::count)});
constexpr auto kChap2ChangeRest = Rows<Eap>({
    Bytes(16, "Encrypted Hash"), Bytes(16, "Peer Challenge"), Bytes(8, "Reserved"), Bytes(24, "NT Response"),
    Hex(2, "Flags")});
void ShowChap2(const Place& in, Cursor& c, Eap& eap) {
  if (Left(c) < 1) return;   // an answer to success or failure is its operation alone
  ShowRows<Eap>(in, c, kChap2Head, eap);
  switch (eap.operation.value) {
    case 1: return ShowRows<Eap>(in, c, kChap2Challenge, eap);
    case 2: return ShowRows<Eap>(in, c, kChap2Response, eap);
    case 3:
    case 4: return ShowRows<Eap>(in, c, kChap2Message, eap);
    case 7:
      eap.count.value = 516;
      ShowRows<Eap>(in, c, kChap2Change, eap);
      return ShowRows<Eap>(in, c, kChap2ChangeRest, eap);
    default: return;
  }
}
constexpr auto kSimilar = Rows<Eap>({Number(1, "Subtype", kSimSubtypes), Number(2, "Reserved")});

constexpr auto kPax = Rows<Eap>({
    Number(1, "Operation", kPaxOperations), Hex(1, "PAX Flags"), Flag(7, "More Fragments"), Flag(6,
    "Certificate Enabled"),
    Flag(5, "ADE Included"), Number(1, "MAC ID", kPaxMacs), Number(1, "DH Group ID", kPaxGroups),
    Number(1, "Public Key ID", kPaxKeys)});
void ShowPax(const Place& in, Cursor& c, Eap& eap) {
  constexpr auto kValue = Rows<Eap>({Counted(2, Bytes(0, "Value"))});
  constexpr int32_t kCheck = 16;
  Loop loop;
  while (Left(c) > kCheck && MoreAt(in, c, loop)) ShowRows<Eap>(in, c, kValue, eap);
  constexpr auto kIcv = Rows<Eap>({Bytes(0, "ICV")});
  if (Left(c) > 0) ShowRows<Eap>(in, c, kIcv, eap);
}
constexpr auto kPsk = Rows<Eap>({Word(1).Into(&Eap::operation), Bits(0, 2, "Message Number"), Bits(2, 6, "Reserved"),
    Bytes(16, "Server Random")});
void ShowPsk(const Place& in, Cursor& c, Eap& eap) {
  constexpr auto kServerId = Rows<Eap>({Utf8(0, "Server ID")});
  constexpr auto kPeer = Rows<Eap>({Bytes(16, "Peer Random"), Bytes(16, "Peer MAC"), Utf8(0, "Peer ID")});
  constexpr auto kServer = Rows<Eap>({Bytes(16, "Server MAC")});
  constexpr auto kChannel = Rows<Eap>({Number(4, "Nonce"), Bytes(16, "Tag"), Bytes(0, "Protected Channel")});
  const uint32_t number = eap.operation.value >> 6;
  if (number == 0) return ShowRows<Eap>(in, c, kServerId, eap);
  if (number == 1) return ShowRows<Eap>(in, c, kPeer, eap);
  if (number == 2) ShowRows<Eap>(in, c, kServer, eap);
  ShowRows<Eap>(in, c, kChannel, eap);
}
constexpr auto kSake = Rows<Eap>({
    Number(1, "SAKE Version"), Number(1, "SAKE Session ID"), Number(1, "Subtype", kSakeSubtypes)});
constexpr auto kOctets = Rows<Eap>({Bytes(0, nullptr)});
constexpr auto kNumber2 = Rows<Eap>({Number(2, nullptr)});
constexpr auto kName = Rows<Eap>({Utf8(0, nullptr)});
constexpr auto kSakeAttributes = Choices<Eap>({
    {1, "AT_RAND_S", kOctets}, {2, "AT_RAND_P", kOctets}, {3, "AT_MIC_S", kOctets}, {4, "AT_MIC_P", kOctets},
    {5, "AT_SERVERID", kName}, {6, "AT_PEERID", kName}, {7, "AT_SPI_S", kOctets}, {8, "AT_SPI_P", kOctets},
    {9, "AT_ANY_ID_REQ", kNumber2}, {10, "AT_PERM_ID_REQ", kNumber2}, {128, "AT_ENCR_DATA", kOctets}, {129, "AT_IV",
    kOctets},
    {130, "AT_PADDING", kOctets}, {131, "AT_NEXT_TMPID", kName}, {132, "AT_MSK_LIFE", kOctets}});
void ShowSake(const Place& in, Cursor& c, Eap& eap) {
  constexpr ElementForm kForm{.lengthCountsHeader = true};
  ShowElements<Eap>(in, c, kForm, "Attribute", kSakeAttributes, eap);
}
constexpr auto kIkev2 = Rows<Eap>({
    Word(1).Into(&Eap::flags), Flag(0, "Length Included"), Flag(1, "More Fragments"), Flag(2,
    "Integrity Checksum Data"),
    Bits(3, 5, "Reserved")});
void ShowIkev2(const Place& in, Cursor& c, Eap& eap) {
  constexpr auto kLength = Rows<Eap>({Number(4, "Message Length").Into(&Eap::total)});
  if (eap.flags.value & kLengthIncluded) ShowRows<Eap>(in, c, kLength, eap);
  constexpr uint32_t kKeyExchange = 0x270, kVersion2 = 2;
  constexpr int32_t kKeyHeader = 28;
  const DecoderRow* isakmp = FindBuiltinDecoder(kKeyExchange);
  Cursor joined;
  const bool isFragment = JoinFlagged(in, c, eap, &joined);
  Cursor& message = isFragment ? joined : c;
  const bool starts = Left(message) >= kKeyHeader && PeekU8(message, 17) >> 4 == kVersion2;
  if (isakmp && starts && TryDecoder(in, message, isakmp->decode, "IKEv2 Message")) {
    TakeBytes(message, Left(message));
  } else {
    AddBlock(in, Rest(message), "IKEv2 Message");
  }
}
constexpr auto kGpsk = Rows<Eap>({Number(1, "Operation", kGpskOperations).Into(&Eap::operation)});
constexpr auto kSuiteNames = SortedNames({{1, "AES-CMAC-128"}, {2, "HMAC-SHA256"}});
constexpr auto kCipherSuite = Rows<Eap>({Hex(4, "Cipher Suite Vendor"), Hex(2, "Cipher Suite", kSuiteNames)});
void ShowCipherSuites(const Place& in, Cursor& c, const char* label, Eap& eap) {
  const Field length = TakeU16(c);
  AddLine(in, length, "%s Length: %u", label, length.value);
  Cursor list = TakeCursor(c, length.value);
  Loop loop;
  while (Left(list) >= 6 && MoreAt(in, list, loop)) ShowRows<Eap>(in, list, kCipherSuite, eap);
}
constexpr auto kGpsk1 = Rows<Eap>({
    Counted(2, Utf8(0, "Server ID")), Bytes(32, "Server Random"), Shown("Cipher Suite List", ShowCipherSuites)});
constexpr auto kGpsk2 = Rows<Eap>({
    Counted(2, Utf8(0, "Peer ID")), Counted(2, Utf8(0, "Server ID")), Bytes(32, "Peer Random"), Bytes(32,
    "Server Random"),
    Shown("Cipher Suite List", ShowCipherSuites), Hex(4, "Selected Cipher Suite Vendor"),
    Hex(2, "Selected Cipher Suite", kSuiteNames), Counted(2, Bytes(0, "Protected Data Payload")),
    Bytes(0, "MAC")});
constexpr auto kGpsk3 = Rows<Eap>({
    Bytes(32, "Peer Random"), Bytes(32, "Server Random"), Counted(2, Utf8(0, "Server ID")),
    Hex(4, "Selected Cipher Suite Vendor"), Hex(2, "Selected Cipher Suite", kSuiteNames),
    Counted(2, Bytes(0, "Protected Data Payload")), Bytes(0, "MAC")});
constexpr auto kGpsk4 = Rows<Eap>({Counted(2, Bytes(0, "Protected Data Payload")), Bytes(0, "MAC")});
constexpr auto kGpskFail = Rows<Eap>({Number(4, "Failure Code", kGpskFailures), Bytes(0, "MAC")});
void ShowGpsk(const Place& in, Cursor& c, Eap& eap) {
  switch (eap.operation.value) {
    case 1: return ShowRows<Eap>(in, c, kGpsk1, eap);
    case 2: return ShowRows<Eap>(in, c, kGpsk2, eap);
    case 3: return ShowRows<Eap>(in, c, kGpsk3, eap);
    case 4: return ShowRows<Eap>(in, c, kGpsk4, eap);
    case 5:
    case 6: return ShowRows<Eap>(in, c, kGpskFail, eap);
    default: return;
  }
}
constexpr auto kPwd = Rows<Eap>({
    Word(1).Into(&Eap::flags), Flag(0, "Total Length Included"), Flag(1, "More Fragments"),
    Bits(2, 6, "Exchange", kPwdExchanges).Into(&Eap::operation)});
constexpr auto kPwdLength = Rows<Eap>({Number(2, "Total Length").Into(&Eap::total)});
constexpr auto kPwdId = Rows<Eap>({
    Number(2, "Group Description", kGroups), Number(1, "Random Function", kRandomNames), Number(1, "PRF", kRandomNames),
    Hex(4, "Token"), Number(1, "Password Preparation", kPrepNames), Utf8(0, "Identity")});
constexpr auto kPwdElement = Rows<Eap>({Bytes(0, "Element and Scalar")});
constexpr auto kPwdConfirm = Rows<Eap>({Bytes(0, "Confirm")});
void ShowPwd(const Place& in, Cursor& c, Eap& eap) {
  if (eap.flags.value & kLengthIncluded) ShowRows<Eap>(in, c, kPwdLength, eap);
  Cursor joined;
  const bool isFragment = JoinFlagged(in, c, eap, &joined);
  Cursor& message = isFragment ? joined : c;
  if (Left(message) < 1) return;
  switch (eap.operation.value) {
    case 1: return ShowRows<Eap>(in, message, kPwdId, eap);
    case 2: return ShowRows<Eap>(in, message, kPwdElement, eap);
    case 3: return ShowRows<Eap>(in, message, kPwdConfirm, eap);
    default: return;
  }
}
constexpr auto kEke = Rows<Eap>({Number(1, "Exchange", kEkeExchanges).Into(&Eap::operation)});
constexpr auto kEkeId = Rows<Eap>({Number(1, "Number of Proposals").Into(&Eap::count), Number(1, "Reserved")});
constexpr auto kEkeProposal = Rows<Eap>({
    Number(1, "Group", kEkeGroups), Number(1, "Encryption", kEkeCiphers), Number(1, "PRF", kEkeHashes), Number(1,
    "MAC", kEkeMacs)});
constexpr auto kEkeIdentity = Rows<Eap>({Number(1, "Identity Type", kEkeIdentities), Utf8(0, "Identity")});
constexpr auto kEkeFailure = Rows<Eap>({Number(4, "Failure Code", kEkeFailures)});
constexpr auto kEkeData = Rows<Eap>({Bytes(0, "Exchange Data")});
void ShowEke(const Place& in, Cursor& c, Eap& eap) {
  if (eap.operation.value == 4) return ShowRows<Eap>(in, c, kEkeFailure, eap);
  if (eap.operation.value != 1) return ShowRows<Eap>(in, c, kEkeData, eap);
  ShowRows<Eap>(in, c, kEkeId, eap);
  Loop loop;
  for (uint32_t i = 0; i < eap.count.value && MoreAt(in, c, loop); ++i) ShowRows<Eap>(in, c, kEkeProposal, eap);
  ShowRows<Eap>(in, c, kEkeIdentity, eap);
}
void ShowNoob(const Place& in, Cursor& c, Eap&) { ShowJson(in, c); }

// --- Wi-Fi Simple Configuration, as an expanded type ---

constexpr auto kExpanded = Rows<Eap>({
    Number(3, "Vendor ID", kVendorNames).Into(&Eap::vendor), Number(4, "Vendor Type").Into(&Eap::vendorType)});
constexpr auto kWsc = Rows<Eap>({
    Number(1, "Operation", kWscOperations), Hex(1, "WSC Flags").Into(&Eap::flags), Flag(7, "More Fragments"),
    Flag(6, "Length Field")});
constexpr auto kWscLength = Rows<Eap>({Number(2, "Message Length").Into(&Eap::total)});
constexpr uint32_t kWifiAlliance = 0x00372A, kSimpleConfiguration = 1, kWscHasLength = 2, kWscMore = 1;
void ShowExpanded(const Place& in, Cursor& c, Eap& eap) {
  if (eap.vendor.value != kWifiAlliance || eap.vendorType.value != kSimpleConfiguration) return;
  ShowRows<Eap>(in, c, kWsc, eap);
  if (eap.flags.value & kWscHasLength) ShowRows<Eap>(in, c, kWscLength, eap);
  Cursor joined;
  const bool isFragment = JoinEapFragment(in, c, eap, eap.flags.value & kWscHasLength, eap.flags.value & kWscMore, &joined);
  ShowSimpleConfiguration(in, isFragment ? joined : c);
}

constexpr auto kMethods = Choices<Eap>({
    {1, "Identity", kIdentity}, {2, "Notification", kNotification}, {3, "Nak", {}, ShowDesired},
    {4, "MD5-Challenge", kChallenge}, {5, "OTP", kPassword}, {6, "GTC", kToken}, {13, "EAP-TLS", kTlsFlags, ShowTls},
    {17, "LEAP", kLeap}, {18, "EAP-SIM", kSimilar, ShowSimAttributes}, {21, "EAP-TTLS", kTlsFlags, ShowTls},
    {23, "EAP-AKA", kSimilar, ShowSimAttributes}, {25, "PEAP", kTlsFlags, ShowTls}, {26, "EAP-MSCHAP-V2", kChap2,
    ShowChap2},
    {29, "EAP-MSCHAP-V2", kChap2, ShowChap2}, {43, "EAP-FAST", kTlsFlags, ShowFast}, {46, "EAP-PAX", kPax, ShowPax},
    {47, "EAP-PSK", kPsk, ShowPsk}, {48, "EAP-SAKE", kSake, ShowSake}, {49, "EAP-IKEv2", kIkev2, ShowIkev2},
    {50, "EAP-AKA'", kSimilar, ShowSimAttributes}, {51, "EAP-GPSK", kGpsk, ShowGpsk}, {52, "EAP-pwd", kPwd, ShowPwd},
    {53, "EAP-EKE", kEke, ShowEke}, {55, "TEAP", kTeapFlags, ShowTeap}, {56, "EAP-NOOB", {}, ShowNoob},
    {254, "Expanded Type", kExpanded, ShowExpanded}});

}  // namespace

const ChoiceSpan<Eap> kEapMethods = kMethods;
}  // namespace qxview
