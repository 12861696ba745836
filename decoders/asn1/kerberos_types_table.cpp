// The types of RFC 4120 (messages), RFC 6113 (fast armor), RFC 4556 (names only: its data are shown as they are),
// RFC 9588 (SPAKE), RFC 6806 (referrals), and of the extensions of one vendor that clients send everywhere (PAC, S4U).
#include "decoders/asn1/kerberos_names.h"
#include "decoders/asn1/kerberos_types.h"

namespace qxview {
namespace {

template <size_t kRows>
constexpr BerType Code(const NameTable<kRows>& names) {
  return {.form = BerForm::kInteger, .identifier = kAsnInteger, .names = names};
}
constexpr BerType Choice(std::span<const BerRow> rows) { return {.form = BerForm::kChoice, .rows = rows}; }
constexpr BerType Tagged(uint32_t application, const char* label, const BerType& record) {
  return {.form = BerForm::kTagged, .identifier = 0x60 | application, .label = label, .inner = &record};
}
constexpr BerType Flags(const char* const (&bits)[32]) {
  return {.form = BerForm::kBits, .identifier = kAsnBitString, .bits = bits};
}
constexpr BerType Titled(const char* title, BerChoose choose = nullptr) {
  return {.form = BerForm::kOctets, .identifier = kAsnOctetString, .label = title, .choose = choose};
}
constexpr BerType Holding(BerChoose choose) {
  return {.form = BerForm::kOctets, .identifier = kAsnOctetString, .choose = choose};
}
constexpr BerType Raw(BerShow show) { return {.form = BerForm::kRaw, .show = show}; }

constexpr BerType kNumber{BerForm::kInteger, kAsnInteger}, kBoolean{BerForm::kBoolean, kAsnBoolean};
constexpr BerType kText{BerForm::kText, kAsnGeneralString}, kTime{BerForm::kTime, kAsnGeneralizedTime};
constexpr BerType kOctets{BerForm::kOctets, kAsnOctetString};

constexpr BerType kMessageCode = Code(kKrbMessageNames);
constexpr BerType kEncryptionCode = Code(kKrbEncryptionNames);
constexpr BerType kPaCode = Code(kKrbPaNames);

// Flags. The first bits are the high ones.
constexpr const char* kTicketBits[32] = {
    nullptr, "Forwardable", "Forwarded", "Proxiable", "Proxy", "May Postdate", "Postdated", "Invalid", "Renewable",
    "Initial", "Preauthenticated", "Hardware Authenticated", "Transited Policy Checked", "OK as Delegate", nullptr,
    "Encrypted PA Reply", "Anonymous"};
constexpr const char* kKdcBits[32] = {
    nullptr, "Forwardable", "Forwarded", "Proxiable", "Proxy", "Allow Postdate", "Postdated", nullptr, "Renewable",
    nullptr, nullptr, "Optional Hardware Authentication", nullptr, nullptr, "Constrained Delegation", "Canonicalize",
    "Request Anonymous", nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    "Disable Transited Check", "Renewable OK", "Encrypt Ticket in Session Key", nullptr, "Renew", "Validate"};
constexpr const char* kApBits[32] = {nullptr, "Use Session Key", "Mutual Required"};
constexpr const char* kPacBits[32] = {"Claims", "Branch Aware", "Forward to Full DC",
                                      "Resource-Based Constrained Delegation"};
constexpr const char* kUserBits[32] = {nullptr, "Check Logon Hours", "Signed with Key Usage 27"};
constexpr BerType kTicketFlags = Flags(kTicketBits), kKdcOptions = Flags(kKdcBits), kApOptions = Flags(kApBits);
constexpr BerType kPacFlags = Flags(kPacBits), kUserFlags = Flags(kUserBits);

// What everything is made of.
constexpr BerType kNameType = Code(kKrbNameTypeNames);
constexpr BerType kNameParts = ListOf(kText, "Name");
constexpr BerRow kPrincipalFields[] = {{0xA0, "Name Type", &kNameType}, {0xA1, "Name String", &kNameParts}};
constexpr BerType kPrincipal = RecordOf(kPrincipalFields, DescribePrincipal);

constexpr BerType kAddressType = Code(kKrbAddressNames);
constexpr BerRow kAddressFields[] = {{0xA0, "Address Type", &kAddressType}, {0xA1, "Address", &kOctets}};
constexpr BerType kAddress = RecordOf(kAddressFields, DescribeAddress);
constexpr BerType kAddresses = ListOf(kAddress, "Address");

extern const BerType kCredPart;
const BerType* ChooseCipher(const BerWalk& walk, const Cursor&) {
  return walk.code == 0 ? &kCredPart : nullptr;   // credentials are forwarded in clear where the channel is protected
}
constexpr BerType kCipher = Titled("Encrypted Data", ChooseCipher);
constexpr BerRow kEncryptedFields[] = {
    {0xA0, "Encryption Type", &kEncryptionCode}, {0xA1, "Key Version Number", &kNumber}, {0xA2, "Cipher", &kCipher}};
constexpr BerType kEncrypted = RecordOf(kEncryptedFields, DescribeEncryption);

constexpr BerRow kKeyFields[] = {{0xA0, "Key Type", &kEncryptionCode}, {0xA1, "Key Value", &kOctets}};
constexpr BerType kKey = RecordOf(kKeyFields, DescribeEncryption);
constexpr BerType kKeys = ListOf(kKey, "Key");

constexpr BerType kChecksumType = Code(kKrbChecksumNames);
constexpr BerRow kChecksumFields[] = {{0xA0, "Checksum Type", &kChecksumType}, {0xA1, "Checksum Value", &kOctets}};
constexpr BerType kChecksum = RecordOf(kChecksumFields, DescribeChecksum);

constexpr BerType kAuthorizationCode = Code(kKrbAuthorizationNames);
constexpr BerType kAuthorizationValue = Holding(ChooseAuthorization);
constexpr BerRow kAuthorizationFields[] = {
    {0xA0, "Data Type", &kAuthorizationCode}, {0xA1, "Data", &kAuthorizationValue}};
constexpr BerType kAuthorization = RecordOf(kAuthorizationFields, DescribeAuthorization);

constexpr BerType kPaValue = Holding(ChoosePaValue);
constexpr BerRow kPaFields[] = {{0xA1, "Data Type", &kPaCode}, {0xA2, "Data Value", &kPaValue}};
constexpr BerType kPaData = RecordOf(kPaFields, DescribePaData);
constexpr BerType kPaList = ListOf(kPaData, "PA-DATA");

constexpr BerRow kTicketFields[] = {
    {0xA0, "Ticket Version", &kNumber}, {0xA1, "Realm", &kText}, {0xA2, "Server Name", &kPrincipal},
    {0xA3, "Encrypted Part", &kEncrypted}};
constexpr BerType kTicketRecord = RecordOf(kTicketFields, DescribeTicket);

}  // namespace

constexpr BerType kKrbTicket = Tagged(1, "Ticket", kTicketRecord);
constexpr BerType kKrbAuthorizationData = ListOf(kAuthorization, "Authorization Data");

namespace {

constexpr BerType kTickets = ListOf(kKrbTicket, "Ticket");

// Requests to the KDC and its replies.
constexpr BerType kEncryptionCodes = ListOf(kEncryptionCode, "Encryption Type");
constexpr BerRow kRequestBodyFields[] = {
    {0xA0, "KDC Options", &kKdcOptions}, {0xA1, "Client Name", &kPrincipal}, {0xA2, "Realm", &kText},
    {0xA3, "Server Name", &kPrincipal}, {0xA4, "From", &kTime}, {0xA5, "Till", &kTime}, {0xA6, "Renew Time", &kTime},
    {0xA7, "Nonce", &kNumber}, {0xA8, "Encryption Types", &kEncryptionCodes}, {0xA9, "Addresses", &kAddresses},
    {0xAA, "Encrypted Authorization Data", &kEncrypted}, {0xAB, "Additional Tickets", &kTickets}};
constexpr BerType kRequestBody = RecordOf(kRequestBodyFields);
constexpr BerRow kRequestFields[] = {
    {0xA1, "Protocol Version", &kNumber}, {0xA2, "Message Type", &kMessageCode},
    {0xA3, "Pre-Authentication Data", &kPaList}, {0xA4, "Request Body", &kRequestBody}};
constexpr BerType kRequest = RecordOf(kRequestFields);
constexpr BerRow kReplyFields[] = {
    {0xA0, "Protocol Version", &kNumber}, {0xA1, "Message Type", &kMessageCode},
    {0xA2, "Pre-Authentication Data", &kPaList}, {0xA3, "Client Realm", &kText}, {0xA4, "Client Name", &kPrincipal},
    {0xA5, "Ticket", &kKrbTicket}, {0xA6, "Encrypted Part", &kEncrypted}};
constexpr BerType kReply = RecordOf(kReplyFields);

constexpr BerType kLastRequestType = Code(kKrbLastRequestNames);
constexpr BerRow kLastRequestFields[] = {{0xA0, "Type", &kLastRequestType}, {0xA1, "Time", &kTime}};
constexpr BerType kLastRequest = RecordOf(kLastRequestFields);
constexpr BerType kLastRequests = ListOf(kLastRequest, "Last Request");
constexpr BerRow kReplyPartFields[] = {
    {0xA0, "Key", &kKey}, {0xA1, "Last Requests", &kLastRequests}, {0xA2, "Nonce", &kNumber},
    {0xA3, "Key Expiration", &kTime}, {0xA4, "Ticket Flags", &kTicketFlags}, {0xA5, "Authentication Time", &kTime},
    {0xA6, "Start Time", &kTime}, {0xA7, "End Time", &kTime}, {0xA8, "Renew Till", &kTime},
    {0xA9, "Server Realm", &kText}, {0xAA, "Server Name", &kPrincipal}, {0xAB, "Client Addresses", &kAddresses},
    {0xAC, "Encrypted PA Data", &kPaList}};
constexpr BerType kReplyPart = RecordOf(kReplyPartFields);

constexpr BerType kTransitedType = Code(kKrbTransitedNames);
constexpr BerRow kTransitedFields[] = {{0xA0, "Type", &kTransitedType}, {0xA1, "Contents", &kOctets}};
constexpr BerType kTransited = RecordOf(kTransitedFields);
constexpr BerRow kTicketPartFields[] = {
    {0xA0, "Ticket Flags", &kTicketFlags}, {0xA1, "Key", &kKey}, {0xA2, "Client Realm", &kText},
    {0xA3, "Client Name", &kPrincipal}, {0xA4, "Transited", &kTransited}, {0xA5, "Authentication Time", &kTime},
    {0xA6, "Start Time", &kTime}, {0xA7, "End Time", &kTime}, {0xA8, "Renew Till", &kTime},
    {0xA9, "Client Addresses", &kAddresses}, {0xAA, "Authorization Data", &kKrbAuthorizationData}};
constexpr BerType kTicketPart = RecordOf(kTicketPartFields);

// Between a client and its server.
constexpr BerRow kApRequestFields[] = {
    {0xA0, "Protocol Version", &kNumber}, {0xA1, "Message Type", &kMessageCode}, {0xA2, "AP Options", &kApOptions},
    {0xA3, "Ticket", &kKrbTicket}, {0xA4, "Authenticator", &kEncrypted}};
constexpr BerType kApRequest = RecordOf(kApRequestFields);
constexpr BerRow kAuthenticatorFields[] = {
    {0xA0, "Authenticator Version", &kNumber}, {0xA1, "Client Realm", &kText}, {0xA2, "Client Name", &kPrincipal},
    {0xA3, "Checksum", &kChecksum}, {0xA4, "Client Microseconds", &kNumber}, {0xA5, "Client Time", &kTime},
    {0xA6, "Subkey", &kKey}, {0xA7, "Sequence Number", &kNumber}, {0xA8, "Authorization Data", &kKrbAuthorizationData}};
constexpr BerType kAuthenticator = RecordOf(kAuthenticatorFields);
constexpr BerRow kApReplyFields[] = {
    {0xA0, "Protocol Version", &kNumber}, {0xA1, "Message Type", &kMessageCode}, {0xA2, "Encrypted Part", &kEncrypted}};
constexpr BerType kApReply = RecordOf(kApReplyFields);
constexpr BerRow kApReplyPartFields[] = {
    {0xA0, "Client Time", &kTime}, {0xA1, "Client Microseconds", &kNumber}, {0xA2, "Subkey", &kKey},
    {0xA3, "Sequence Number", &kNumber}};
constexpr BerType kApReplyPart = RecordOf(kApReplyPartFields);

constexpr BerType kUserData = Titled("User Data");
constexpr BerRow kSafeBodyFields[] = {
    {0xA0, "User Data", &kUserData}, {0xA1, "Timestamp", &kTime}, {0xA2, "Microseconds", &kNumber},
    {0xA3, "Sequence Number", &kNumber}, {0xA4, "Sender Address", &kAddress}, {0xA5, "Recipient Address", &kAddress}};
constexpr BerType kSafeBody = RecordOf(kSafeBodyFields);
constexpr BerRow kSafeFields[] = {
    {0xA0, "Protocol Version", &kNumber}, {0xA1, "Message Type", &kMessageCode}, {0xA2, "Safe Body", &kSafeBody},
    {0xA3, "Checksum", &kChecksum}};
constexpr BerType kSafe = RecordOf(kSafeFields);
constexpr BerRow kPrivFields[] = {
    {0xA0, "Protocol Version", &kNumber}, {0xA1, "Message Type", &kMessageCode}, {0xA3, "Encrypted Part", &kEncrypted}};
constexpr BerType kPriv = RecordOf(kPrivFields);

constexpr BerRow kCredFields[] = {
    {0xA0, "Protocol Version", &kNumber}, {0xA1, "Message Type", &kMessageCode}, {0xA2, "Tickets", &kTickets},
    {0xA3, "Encrypted Part", &kEncrypted}};
constexpr BerType kCred = RecordOf(kCredFields);
constexpr BerRow kCredInfoFields[] = {
    {0xA0, "Key", &kKey}, {0xA1, "Client Realm", &kText}, {0xA2, "Client Name", &kPrincipal},
    {0xA3, "Ticket Flags", &kTicketFlags}, {0xA4, "Authentication Time", &kTime}, {0xA5, "Start Time", &kTime},
    {0xA6, "End Time", &kTime}, {0xA7, "Renew Till", &kTime}, {0xA8, "Server Realm", &kText},
    {0xA9, "Server Name", &kPrincipal}, {0xAA, "Client Addresses", &kAddresses}};
constexpr BerType kCredInfo = RecordOf(kCredInfoFields);
constexpr BerType kCredInfos = ListOf(kCredInfo, "Ticket Information");
constexpr BerRow kCredPartFields[] = {
    {0xA0, "Ticket Information", &kCredInfos}, {0xA1, "Nonce", &kNumber}, {0xA2, "Timestamp", &kTime},
    {0xA3, "Microseconds", &kNumber}, {0xA4, "Sender Address", &kAddress}, {0xA5, "Recipient Address", &kAddress}};
constexpr BerType kCredPartRecord = RecordOf(kCredPartFields);
constexpr BerType kCredPart = Tagged(29, "EncKrbCredPart", kCredPartRecord);

constexpr BerType kErrorCode = Code(kKrbErrorNames);
constexpr BerType kErrorData = Holding(ChooseErrorData);
constexpr BerRow kErrorFields[] = {
    {0xA0, "Protocol Version", &kNumber}, {0xA1, "Message Type", &kMessageCode}, {0xA2, "Client Time", &kTime},
    {0xA3, "Client Microseconds", &kNumber}, {0xA4, "Server Time", &kTime}, {0xA5, "Server Microseconds", &kNumber},
    {0xA6, "Error Code", &kErrorCode}, {0xA7, "Client Realm", &kText}, {0xA8, "Client Name", &kPrincipal},
    {0xA9, "Server Realm", &kText}, {0xAA, "Server Name", &kPrincipal}, {0xAB, "Error Text", &kText},
    {0xAC, "Error Data", &kErrorData}};
constexpr BerType kError = RecordOf(kErrorFields);

constexpr BerType kMessages[] = {
    kKrbTicket, Tagged(2, "Authenticator", kAuthenticator), Tagged(3, "EncTicketPart", kTicketPart),
    Tagged(10, "AS-REQ", kRequest), Tagged(11, "AS-REP", kReply), Tagged(12, "TGS-REQ", kRequest),
    Tagged(13, "TGS-REP", kReply), Tagged(14, "AP-REQ", kApRequest), Tagged(15, "AP-REP", kApReply),
    Tagged(20, "KRB-SAFE", kSafe), Tagged(21, "KRB-PRIV", kPriv), Tagged(22, "KRB-CRED", kCred),
    Tagged(25, "EncASRepPart", kReplyPart), Tagged(26, "EncTGSRepPart", kReplyPart),
    Tagged(27, "EncAPRepPart", kApReplyPart), Tagged(28, "EncKrbPrivPart", kSafeBody), kCredPart,
    Tagged(30, "KRB-ERROR", kError)};

// What errors carry.
constexpr BerRow kTypedFields[] = {{0xA0, "Data Type", &kPaCode}, {0xA1, "Data Value", &kPaValue}};
constexpr BerType kTyped = RecordOf(kTypedFields, DescribePaData);
constexpr BerType kExtendedErrorCode = Code(kKrbErrorDataNames), kExtendedErrorRaw = Raw(ShowExtendedError);
constexpr BerType kExtendedErrorValue =
    Holding([](const BerWalk& walk, const Cursor&) { return walk.code == 3 ? &kExtendedErrorRaw : nullptr; });
constexpr BerRow kExtendedErrorFields[] = {
    {0xA1, "Data Type", &kExtendedErrorCode}, {0xA2, "Data Value", &kExtendedErrorValue}};

}  // namespace

constexpr BerType kKrbMethodData = kPaList;
constexpr BerType kKrbTypedData = ListOf(kTyped, "TYPED-DATA");
constexpr BerType kKrbExtendedErrorData = RecordOf(kExtendedErrorFields);
constexpr BerType kKrbPasswordResult = Raw(ShowPasswordResult);

namespace {

// Pre-authentication data.
constexpr BerRow kInfoFields[] = {{0xA0, "Encryption Type", &kEncryptionCode}, {0xA1, "Salt", &kOctets}};
constexpr BerType kInfo = RecordOf(kInfoFields, DescribeEncryption);
constexpr BerType kInfos = ListOf(kInfo, "ETYPE-INFO");
constexpr BerRow kInfo2Fields[] = {
    {0xA0, "Encryption Type", &kEncryptionCode}, {0xA1, "Salt", &kText}, {0xA2, "String-to-Key Parameters", &kOctets}};
constexpr BerType kInfo2 = RecordOf(kInfo2Fields, DescribeEncryption);
constexpr BerType kInfos2 = ListOf(kInfo2, "ETYPE-INFO2");
constexpr BerRow kPacRequestFields[] = {{0xA0, "Include PAC", &kBoolean}};
constexpr BerType kPacRequest = RecordOf(kPacRequestFields);
constexpr BerRow kPacOptionsFields[] = {{0xA0, "PAC Options", &kPacFlags}};
constexpr BerType kPacOptions = RecordOf(kPacOptionsFields);
constexpr BerRow kReferralFields[] = {{0xA0, "Referred Realm", &kText}, {0xA1, "Referred Name", &kPrincipal}};
constexpr BerType kReferral = RecordOf(kReferralFields);
constexpr BerRow kForUserFields[] = {
    {0xA0, "User Name", &kPrincipal}, {0xA1, "User Realm", &kText}, {0xA2, "Checksum", &kChecksum},
    {0xA3, "Authentication Package", &kText}};
constexpr BerType kForUser = RecordOf(kForUserFields);
constexpr BerType kCertificate = Titled("Certificate Data");
constexpr BerRow kUserIdFields[] = {
    {0xA0, "Nonce", &kNumber}, {0xA1, "User Name", &kPrincipal}, {0xA2, "User Realm", &kText},
    {0xA3, "Subject Certificate", &kCertificate}, {0xA4, "Options", &kUserFlags}};
constexpr BerType kUserId = RecordOf(kUserIdFields);
constexpr BerRow kS4uFields[] = {{0xA0, "User ID", &kUserId}, {0xA1, "Checksum", &kChecksum}};
constexpr BerType kS4u = RecordOf(kS4uFields);
constexpr BerRow kSetFields[] = {{0xA0, "Data Type", &kPaCode}, {0xA1, "Hint", &kOctets}, {0xA2, "Value", &kOctets}};
constexpr BerType kSetElement = RecordOf(kSetFields);
constexpr BerType kSet = ListOf(kSetElement, "Authentication Set");
constexpr BerType kEncryptionSetRaw = Raw(ShowEncryptionSet);

// Fast armor: a request is protected under the ticket of an AP-REQ.
const BerType* ChooseArmor(const BerWalk& walk, const Cursor& contents) {
  return walk.code == 1 ? FindKrbMessage(PeekU8(contents)) : nullptr;
}
constexpr BerType kArmorType = Code(kKrbArmorNames), kArmorValue = Holding(ChooseArmor);
constexpr BerRow kArmorFields[] = {{0xA0, "Armor Type", &kArmorType}, {0xA1, "Armor Value", &kArmorValue}};
constexpr BerType kArmor = RecordOf(kArmorFields);
constexpr BerRow kFastRequestFields[] = {
    {0xA0, "Armor", &kArmor}, {0xA1, "Request Checksum", &kChecksum}, {0xA2, "Encrypted Request", &kEncrypted}};
constexpr BerType kFastRequest = RecordOf(kFastRequestFields);
constexpr BerRow kFastReplyFields[] = {{0xA0, "Encrypted Reply", &kEncrypted}};
constexpr BerType kFastReply = RecordOf(kFastReplyFields);
constexpr BerRow kFastRequestChoices[] = {{0xA0, "Armored Data", &kFastRequest}};
constexpr BerRow kFastReplyChoices[] = {{0xA0, "Armored Data", &kFastReply}};
constexpr BerType kFastRequestChoice = Choice(kFastRequestChoices), kFastReplyChoice = Choice(kFastReplyChoices);

// SPAKE: groups offered, a challenge with the KDC's public key, a response with the client's.
constexpr BerType kGroup = Code(kKrbSpakeGroupNames), kFactorType = Code(kKrbSpakeFactorNames);
constexpr BerType kGroups = ListOf(kGroup, "Group");
constexpr BerRow kSupportFields[] = {{0xA0, "Groups", &kGroups}};
constexpr BerType kSupport = RecordOf(kSupportFields);
constexpr BerRow kFactorFields[] = {{0xA0, "Factor Type", &kFactorType}, {0xA1, "Factor Data", &kOctets}};
constexpr BerType kFactor = RecordOf(kFactorFields);
constexpr BerType kFactors = ListOf(kFactor, "Factor");
constexpr BerRow kChallengeFields[] = {
    {0xA0, "Group", &kGroup}, {0xA1, "Public Key", &kOctets}, {0xA2, "Factors", &kFactors}};
constexpr BerType kChallenge = RecordOf(kChallengeFields);
constexpr BerRow kResponseFields[] = {{0xA0, "Public Key", &kOctets}, {0xA1, "Factor", &kEncrypted}};
constexpr BerType kResponse = RecordOf(kResponseFields);
constexpr BerRow kSpakeChoices[] = {
    {0xA0, "Support", &kSupport}, {0xA1, "Challenge", &kChallenge}, {0xA2, "Response", &kResponse},
    {0xA3, "Data", &kEncrypted}};
constexpr BerType kSpake = Choice(kSpakeChoices);

// Authorization data that hold more of them.
constexpr BerRow kIssuedFields[] = {
    {0xA0, "Checksum", &kChecksum}, {0xA1, "Issuer Realm", &kText}, {0xA2, "Issuer Name", &kPrincipal},
    {0xA3, "Elements", &kKrbAuthorizationData}};
constexpr BerType kIssued = RecordOf(kIssuedFields);
constexpr BerRow kAndOrFields[] = {{0xA0, "Condition Count", &kNumber}, {0xA1, "Elements", &kKrbAuthorizationData}};
constexpr BerType kAndOr = RecordOf(kAndOrFields);

// Some KDCs put a status of their own where errors have the salt: its second word is 0, which no salt holds.
bool IsExtendedError(const Cursor& contents) { return Left(contents) == 12 && PeekU32(contents, 4) == 0; }

}  // namespace

const BerType* FindKrbMessage(uint32_t identifier) {
  for (const BerType& message : kMessages) {
    if (message.identifier == identifier) return &message;
  }
  return nullptr;
}

const BerType* ChoosePaValue(const BerWalk& walk, const Cursor& contents) {
  switch (walk.code) {
    case 1: return FindKrbMessage(PeekU8(contents));
    case 2:
    case 138:
    case 147: return &kEncrypted;
    case 3: return IsExtendedError(contents) ? &kExtendedErrorRaw : nullptr;
    case 11: return &kInfos;
    case 19: return &kInfos2;
    case 20: return &kReferral;
    case 102: return &kPrincipal;
    case 103: return &kText;
    case 128: return &kPacRequest;
    case 129: return &kForUser;
    case 130: return &kS4u;
    case 132:
    case 149: return &kChecksum;
    case 134:
    case 135: return &kSet;
    case 136: return walk.context & kKrbReply ? &kFastReplyChoice : &kFastRequestChoice;
    case 137: return FindKrbMessage(PeekU8(contents));
    case 151: return &kSpake;
    case 161: return &kEncryptionCodes;
    case 162: return &kKeys;
    case 165: return &kEncryptionSetRaw;
    case 166: return &kExtendedErrorRaw;
    case 167: return &kPacOptions;
    default: return nullptr;
  }
}

const BerType* ChooseAuthorization(const BerWalk& walk, const Cursor&) {
  switch (walk.code) {
    case 1:
    case 8: return &kKrbAuthorizationData;
    case 4: return &kIssued;
    case 5: return &kAndOr;
    case 129: return &kEncryptionCodes;
    default: return nullptr;
  }
}

const BerType* ChooseErrorData(const BerWalk& walk, const Cursor& contents) {
  constexpr uint32_t kFirstTag = 0xA0, kSecondTag = 0xA1;
  if (walk.context & kKrbPassword) return &kKrbPasswordResult;
  const BerElement first = PeekBer(TakeBerContents(contents, kAsnSequence));
  if (!first.here) return nullptr;
  if (first.identifier == kSecondTag) return &kKrbExtendedErrorData;
  return PeekBer(first.contents).identifier == kFirstTag ? &kKrbTypedData : &kKrbMethodData;
}

}  // namespace qxview
