// The types of RFC 4120 (messages), RFC 6113 (fast armor), RFC 4556 (names only: its data are shown as they are),
// RFC 9588 (SPAKE), RFC 6806 (referrals), and of the extensions of one vendor that clients send everywhere (PAC, S4U).
#include "decoders/asn1/kerberos_names.h"
#include "decoders/asn1/kerberos_walk.h"

namespace qxview {
namespace {

constexpr KrbType Plain(KrbForm form, uint32_t identifier) { return {.form = form, .identifier = identifier}; }

template <size_t kFields>
constexpr KrbType Record(const KrbField (&fields)[kFields], KrbDescribe describe = nullptr) {
  return {.form = KrbForm::kRecord, .identifier = kAsnSequence, .fields = fields,
          .fieldCount = static_cast<int32_t>(kFields), .describe = describe};
}
template <size_t kFields>
constexpr KrbType Choice(const KrbField (&fields)[kFields]) {
  return {.form = KrbForm::kChoice, .identifier = 0, .fields = fields, .fieldCount = static_cast<int32_t>(kFields)};
}
template <size_t kRows>
constexpr KrbType Code(const NameTable<kRows>& names) {
  return {.form = KrbForm::kCode, .identifier = kAsnInteger, .names = names.rows,
          .nameCount = static_cast<int32_t>(kRows)};
}
constexpr KrbType ListOf(const KrbType& element, const char* label) {
  return {.form = KrbForm::kList, .identifier = kAsnSequence, .label = label, .inner = &element};
}
constexpr KrbType Tagged(uint32_t application, const char* label, const KrbType& record) {
  return {.form = KrbForm::kTagged, .identifier = 0x60 | application, .label = label, .inner = &record};
}
constexpr KrbType Flags(const char* const (&bits)[32]) {
  return {.form = KrbForm::kFlags, .identifier = kAsnBitString, .bits = bits};
}
constexpr KrbType Titled(const char* title, KrbChoose choose = nullptr) {
  return {.form = KrbForm::kOctets, .identifier = kAsnOctetString, .label = title, .choose = choose};
}
constexpr KrbType Holding(KrbChoose choose) {
  return {.form = KrbForm::kOctets, .identifier = kAsnOctetString, .choose = choose};
}
constexpr KrbType Raw(KrbShow show) { return {.form = KrbForm::kRaw, .identifier = 0, .show = show}; }

constexpr KrbType kNumber = Plain(KrbForm::kNumber, kAsnInteger);
constexpr KrbType kBoolean = Plain(KrbForm::kBoolean, kAsnBoolean);
constexpr KrbType kText = Plain(KrbForm::kText, kAsnGeneralString);
constexpr KrbType kTime = Plain(KrbForm::kTime, kAsnGeneralizedTime);
constexpr KrbType kOctets = Plain(KrbForm::kOctets, kAsnOctetString);

constexpr KrbType kMessageCode = Code(kKrbMessageNames);
constexpr KrbType kEncryptionCode = Code(kKrbEncryptionNames);
constexpr KrbType kPaCode = Code(kKrbPaNames);

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
constexpr KrbType kTicketFlags = Flags(kTicketBits), kKdcOptions = Flags(kKdcBits), kApOptions = Flags(kApBits);
constexpr KrbType kPacFlags = Flags(kPacBits), kUserFlags = Flags(kUserBits);

// What everything is made of.
constexpr KrbType kNameType = Code(kKrbNameTypeNames);
constexpr KrbType kNameParts = ListOf(kText, "Name");
constexpr KrbField kPrincipalFields[] = {{0, "Name Type", &kNameType}, {1, "Name String", &kNameParts}};
constexpr KrbType kPrincipal = Record(kPrincipalFields, DescribePrincipal);

constexpr KrbType kAddressType = Code(kKrbAddressNames);
constexpr KrbField kAddressFields[] = {{0, "Address Type", &kAddressType}, {1, "Address", &kOctets}};
constexpr KrbType kAddress = Record(kAddressFields, DescribeAddress);
constexpr KrbType kAddresses = ListOf(kAddress, "Address");

extern const KrbType kCredPart;
const KrbType* ChooseCipher(const KrbWalk&, uint32_t code, const Cursor&) {
  return code == 0 ? &kCredPart : nullptr;   // credentials are forwarded in clear where the channel is protected
}
constexpr KrbType kCipher = Titled("Encrypted Data", ChooseCipher);
constexpr KrbField kEncryptedFields[] = {
    {0, "Encryption Type", &kEncryptionCode}, {1, "Key Version Number", &kNumber}, {2, "Cipher", &kCipher}};
constexpr KrbType kEncrypted = Record(kEncryptedFields, DescribeEncryption);

constexpr KrbField kKeyFields[] = {{0, "Key Type", &kEncryptionCode}, {1, "Key Value", &kOctets}};
constexpr KrbType kKey = Record(kKeyFields, DescribeEncryption);
constexpr KrbType kKeys = ListOf(kKey, "Key");

constexpr KrbType kChecksumType = Code(kKrbChecksumNames);
constexpr KrbField kChecksumFields[] = {{0, "Checksum Type", &kChecksumType}, {1, "Checksum Value", &kOctets}};
constexpr KrbType kChecksum = Record(kChecksumFields, DescribeChecksum);

constexpr KrbType kAuthorizationCode = Code(kKrbAuthorizationNames);
constexpr KrbType kAuthorizationValue = Holding(ChooseAuthorization);
constexpr KrbField kAuthorizationFields[] = {{0, "Data Type", &kAuthorizationCode}, {1, "Data", &kAuthorizationValue}};
constexpr KrbType kAuthorization = Record(kAuthorizationFields, DescribeAuthorization);

constexpr KrbType kPaValue = Holding(ChoosePaValue);
constexpr KrbField kPaFields[] = {{1, "Data Type", &kPaCode}, {2, "Data Value", &kPaValue}};
constexpr KrbType kPaData = Record(kPaFields, DescribePaData);
constexpr KrbType kPaList = ListOf(kPaData, "PA-DATA");

constexpr KrbField kTicketFields[] = {{0, "Ticket Version", &kNumber}, {1, "Realm", &kText},
                                      {2, "Server Name", &kPrincipal}, {3, "Encrypted Part", &kEncrypted}};
constexpr KrbType kTicketRecord = Record(kTicketFields, DescribeTicket);

}  // namespace

constexpr KrbType kKrbTicket = Tagged(1, "Ticket", kTicketRecord);
constexpr KrbType kKrbAuthorizationData = ListOf(kAuthorization, "Authorization Data");

namespace {

constexpr KrbType kTickets = ListOf(kKrbTicket, "Ticket");

// Requests to the KDC and its replies.
constexpr KrbType kEncryptionCodes = ListOf(kEncryptionCode, "Encryption Type");
constexpr KrbField kRequestBodyFields[] = {
    {0, "KDC Options", &kKdcOptions}, {1, "Client Name", &kPrincipal}, {2, "Realm", &kText},
    {3, "Server Name", &kPrincipal}, {4, "From", &kTime}, {5, "Till", &kTime}, {6, "Renew Time", &kTime},
    {7, "Nonce", &kNumber}, {8, "Encryption Types", &kEncryptionCodes}, {9, "Addresses", &kAddresses},
    {10, "Encrypted Authorization Data", &kEncrypted}, {11, "Additional Tickets", &kTickets}};
constexpr KrbType kRequestBody = Record(kRequestBodyFields);
constexpr KrbField kRequestFields[] = {{1, "Protocol Version", &kNumber}, {2, "Message Type", &kMessageCode},
                                       {3, "Pre-Authentication Data", &kPaList}, {4, "Request Body", &kRequestBody}};
constexpr KrbType kRequest = Record(kRequestFields);
constexpr KrbField kReplyFields[] = {
    {0, "Protocol Version", &kNumber}, {1, "Message Type", &kMessageCode}, {2, "Pre-Authentication Data", &kPaList},
    {3, "Client Realm", &kText}, {4, "Client Name", &kPrincipal}, {5, "Ticket", &kKrbTicket},
    {6, "Encrypted Part", &kEncrypted}};
constexpr KrbType kReply = Record(kReplyFields);

constexpr KrbType kLastRequestType = Code(kKrbLastRequestNames);
constexpr KrbField kLastRequestFields[] = {{0, "Type", &kLastRequestType}, {1, "Time", &kTime}};
constexpr KrbType kLastRequest = Record(kLastRequestFields);
constexpr KrbType kLastRequests = ListOf(kLastRequest, "Last Request");
constexpr KrbField kReplyPartFields[] = {
    {0, "Key", &kKey}, {1, "Last Requests", &kLastRequests}, {2, "Nonce", &kNumber}, {3, "Key Expiration", &kTime},
    {4, "Ticket Flags", &kTicketFlags}, {5, "Authentication Time", &kTime}, {6, "Start Time", &kTime},
    {7, "End Time", &kTime}, {8, "Renew Till", &kTime}, {9, "Server Realm", &kText}, {10, "Server Name", &kPrincipal},
    {11, "Client Addresses", &kAddresses}, {12, "Encrypted PA Data", &kPaList}};
constexpr KrbType kReplyPart = Record(kReplyPartFields);

constexpr KrbType kTransitedType = Code(kKrbTransitedNames);
constexpr KrbField kTransitedFields[] = {{0, "Type", &kTransitedType}, {1, "Contents", &kOctets}};
constexpr KrbType kTransited = Record(kTransitedFields);
constexpr KrbField kTicketPartFields[] = {
    {0, "Ticket Flags", &kTicketFlags}, {1, "Key", &kKey}, {2, "Client Realm", &kText},
    {3, "Client Name", &kPrincipal}, {4, "Transited", &kTransited}, {5, "Authentication Time", &kTime},
    {6, "Start Time", &kTime}, {7, "End Time", &kTime}, {8, "Renew Till", &kTime},
    {9, "Client Addresses", &kAddresses}, {10, "Authorization Data", &kKrbAuthorizationData}};
constexpr KrbType kTicketPart = Record(kTicketPartFields);

// Between a client and its server.
constexpr KrbField kApRequestFields[] = {
    {0, "Protocol Version", &kNumber}, {1, "Message Type", &kMessageCode}, {2, "AP Options", &kApOptions},
    {3, "Ticket", &kKrbTicket}, {4, "Authenticator", &kEncrypted}};
constexpr KrbType kApRequest = Record(kApRequestFields);
constexpr KrbField kAuthenticatorFields[] = {
    {0, "Authenticator Version", &kNumber}, {1, "Client Realm", &kText}, {2, "Client Name", &kPrincipal},
    {3, "Checksum", &kChecksum}, {4, "Client Microseconds", &kNumber}, {5, "Client Time", &kTime},
    {6, "Subkey", &kKey}, {7, "Sequence Number", &kNumber}, {8, "Authorization Data", &kKrbAuthorizationData}};
constexpr KrbType kAuthenticator = Record(kAuthenticatorFields);
constexpr KrbField kApReplyFields[] = {
    {0, "Protocol Version", &kNumber}, {1, "Message Type", &kMessageCode}, {2, "Encrypted Part", &kEncrypted}};
constexpr KrbType kApReply = Record(kApReplyFields);
constexpr KrbField kApReplyPartFields[] = {
    {0, "Client Time", &kTime}, {1, "Client Microseconds", &kNumber}, {2, "Subkey", &kKey},
    {3, "Sequence Number", &kNumber}};
constexpr KrbType kApReplyPart = Record(kApReplyPartFields);

constexpr KrbType kUserData = Titled("User Data");
constexpr KrbField kSafeBodyFields[] = {
    {0, "User Data", &kUserData}, {1, "Timestamp", &kTime}, {2, "Microseconds", &kNumber},
    {3, "Sequence Number", &kNumber}, {4, "Sender Address", &kAddress}, {5, "Recipient Address", &kAddress}};
constexpr KrbType kSafeBody = Record(kSafeBodyFields);
constexpr KrbField kSafeFields[] = {
    {0, "Protocol Version", &kNumber}, {1, "Message Type", &kMessageCode}, {2, "Safe Body", &kSafeBody},
    {3, "Checksum", &kChecksum}};
constexpr KrbType kSafe = Record(kSafeFields);
constexpr KrbField kPrivFields[] = {
    {0, "Protocol Version", &kNumber}, {1, "Message Type", &kMessageCode}, {3, "Encrypted Part", &kEncrypted}};
constexpr KrbType kPriv = Record(kPrivFields);

constexpr KrbField kCredFields[] = {
    {0, "Protocol Version", &kNumber}, {1, "Message Type", &kMessageCode}, {2, "Tickets", &kTickets},
    {3, "Encrypted Part", &kEncrypted}};
constexpr KrbType kCred = Record(kCredFields);
constexpr KrbField kCredInfoFields[] = {
    {0, "Key", &kKey}, {1, "Client Realm", &kText}, {2, "Client Name", &kPrincipal},
    {3, "Ticket Flags", &kTicketFlags}, {4, "Authentication Time", &kTime}, {5, "Start Time", &kTime},
    {6, "End Time", &kTime}, {7, "Renew Till", &kTime}, {8, "Server Realm", &kText}, {9, "Server Name", &kPrincipal},
    {10, "Client Addresses", &kAddresses}};
constexpr KrbType kCredInfo = Record(kCredInfoFields);
constexpr KrbType kCredInfos = ListOf(kCredInfo, "Ticket Information");
constexpr KrbField kCredPartFields[] = {
    {0, "Ticket Information", &kCredInfos}, {1, "Nonce", &kNumber}, {2, "Timestamp", &kTime},
    {3, "Microseconds", &kNumber}, {4, "Sender Address", &kAddress}, {5, "Recipient Address", &kAddress}};
constexpr KrbType kCredPartRecord = Record(kCredPartFields);
constexpr KrbType kCredPart = Tagged(29, "EncKrbCredPart", kCredPartRecord);

constexpr KrbType kErrorCode = Code(kKrbErrorNames);
constexpr KrbType kErrorData = Holding(ChooseErrorData);
constexpr KrbField kErrorFields[] = {
    {0, "Protocol Version", &kNumber}, {1, "Message Type", &kMessageCode}, {2, "Client Time", &kTime},
    {3, "Client Microseconds", &kNumber}, {4, "Server Time", &kTime}, {5, "Server Microseconds", &kNumber},
    {6, "Error Code", &kErrorCode}, {7, "Client Realm", &kText}, {8, "Client Name", &kPrincipal},
    {9, "Server Realm", &kText}, {10, "Server Name", &kPrincipal}, {11, "Error Text", &kText},
    {12, "Error Data", &kErrorData}};
constexpr KrbType kError = Record(kErrorFields);

constexpr KrbType kMessages[] = {
    kKrbTicket, Tagged(2, "Authenticator", kAuthenticator), Tagged(3, "EncTicketPart", kTicketPart),
    Tagged(10, "AS-REQ", kRequest), Tagged(11, "AS-REP", kReply), Tagged(12, "TGS-REQ", kRequest),
    Tagged(13, "TGS-REP", kReply), Tagged(14, "AP-REQ", kApRequest), Tagged(15, "AP-REP", kApReply),
    Tagged(20, "KRB-SAFE", kSafe), Tagged(21, "KRB-PRIV", kPriv), Tagged(22, "KRB-CRED", kCred),
    Tagged(25, "EncASRepPart", kReplyPart), Tagged(26, "EncTGSRepPart", kReplyPart),
    Tagged(27, "EncAPRepPart", kApReplyPart), Tagged(28, "EncKrbPrivPart", kSafeBody), kCredPart,
    Tagged(30, "KRB-ERROR", kError)};

// What errors carry.
constexpr KrbField kTypedFields[] = {{0, "Data Type", &kPaCode}, {1, "Data Value", &kPaValue}};
constexpr KrbType kTyped = Record(kTypedFields, DescribePaData);
constexpr KrbType kExtendedErrorCode = Code(kKrbErrorDataNames), kExtendedErrorRaw = Raw(ShowExtendedError);
constexpr KrbType kExtendedErrorValue =
    Holding([](const KrbWalk&, uint32_t code, const Cursor&) { return code == 3 ? &kExtendedErrorRaw : nullptr; });
constexpr KrbField kExtendedErrorFields[] = {{1, "Data Type", &kExtendedErrorCode},
                                             {2, "Data Value", &kExtendedErrorValue}};

}  // namespace

constexpr KrbType kKrbMethodData = kPaList;
constexpr KrbType kKrbTypedData = ListOf(kTyped, "TYPED-DATA");
constexpr KrbType kKrbExtendedErrorData = Record(kExtendedErrorFields);
constexpr KrbType kKrbPasswordResult = Raw(ShowPasswordResult);

namespace {

// Pre-authentication data.
constexpr KrbField kInfoFields[] = {{0, "Encryption Type", &kEncryptionCode}, {1, "Salt", &kOctets}};
constexpr KrbType kInfo = Record(kInfoFields, DescribeEncryption);
constexpr KrbType kInfos = ListOf(kInfo, "ETYPE-INFO");
constexpr KrbField kInfo2Fields[] = {{0, "Encryption Type", &kEncryptionCode}, {1, "Salt", &kText},
                                     {2, "String-to-Key Parameters", &kOctets}};
constexpr KrbType kInfo2 = Record(kInfo2Fields, DescribeEncryption);
constexpr KrbType kInfos2 = ListOf(kInfo2, "ETYPE-INFO2");
constexpr KrbField kPacRequestFields[] = {{0, "Include PAC", &kBoolean}};
constexpr KrbType kPacRequest = Record(kPacRequestFields);
constexpr KrbField kPacOptionsFields[] = {{0, "PAC Options", &kPacFlags}};
constexpr KrbType kPacOptions = Record(kPacOptionsFields);
constexpr KrbField kReferralFields[] = {{0, "Referred Realm", &kText}, {1, "Referred Name", &kPrincipal}};
constexpr KrbType kReferral = Record(kReferralFields);
constexpr KrbField kForUserFields[] = {{0, "User Name", &kPrincipal}, {1, "User Realm", &kText},
                                       {2, "Checksum", &kChecksum}, {3, "Authentication Package", &kText}};
constexpr KrbType kForUser = Record(kForUserFields);
constexpr KrbType kCertificate = Titled("Certificate Data");
constexpr KrbField kUserIdFields[] = {{0, "Nonce", &kNumber}, {1, "User Name", &kPrincipal},
                                      {2, "User Realm", &kText}, {3, "Subject Certificate", &kCertificate},
                                      {4, "Options", &kUserFlags}};
constexpr KrbType kUserId = Record(kUserIdFields);
constexpr KrbField kS4uFields[] = {{0, "User ID", &kUserId}, {1, "Checksum", &kChecksum}};
constexpr KrbType kS4u = Record(kS4uFields);
constexpr KrbField kSetFields[] = {{0, "Data Type", &kPaCode}, {1, "Hint", &kOctets}, {2, "Value", &kOctets}};
constexpr KrbType kSetElement = Record(kSetFields);
constexpr KrbType kSet = ListOf(kSetElement, "Authentication Set");
constexpr KrbType kEncryptionSetRaw = Raw(ShowEncryptionSet);

// Fast armor: a request is protected under the ticket of an AP-REQ.
const KrbType* ChooseArmor(const KrbWalk&, uint32_t code, const Cursor& contents) {
  return code == 1 ? FindKrbMessage(contents.at[0]) : nullptr;
}
constexpr KrbType kArmorType = Code(kKrbArmorNames), kArmorValue = Holding(ChooseArmor);
constexpr KrbField kArmorFields[] = {{0, "Armor Type", &kArmorType}, {1, "Armor Value", &kArmorValue}};
constexpr KrbType kArmor = Record(kArmorFields);
constexpr KrbField kFastRequestFields[] = {
    {0, "Armor", &kArmor}, {1, "Request Checksum", &kChecksum}, {2, "Encrypted Request", &kEncrypted}};
constexpr KrbType kFastRequest = Record(kFastRequestFields);
constexpr KrbField kFastReplyFields[] = {{0, "Encrypted Reply", &kEncrypted}};
constexpr KrbType kFastReply = Record(kFastReplyFields);
constexpr KrbField kFastRequestChoices[] = {{0, "Armored Data", &kFastRequest}};
constexpr KrbField kFastReplyChoices[] = {{0, "Armored Data", &kFastReply}};
constexpr KrbType kFastRequestChoice = Choice(kFastRequestChoices), kFastReplyChoice = Choice(kFastReplyChoices);

// SPAKE: groups offered, a challenge with the KDC's public key, a response with the client's.
constexpr KrbType kGroup = Code(kKrbSpakeGroupNames), kFactorType = Code(kKrbSpakeFactorNames);
constexpr KrbType kGroups = ListOf(kGroup, "Group");
constexpr KrbField kSupportFields[] = {{0, "Groups", &kGroups}};
constexpr KrbType kSupport = Record(kSupportFields);
constexpr KrbField kFactorFields[] = {{0, "Factor Type", &kFactorType}, {1, "Factor Data", &kOctets}};
constexpr KrbType kFactor = Record(kFactorFields);
constexpr KrbType kFactors = ListOf(kFactor, "Factor");
constexpr KrbField kChallengeFields[] = {{0, "Group", &kGroup}, {1, "Public Key", &kOctets}, {2, "Factors", &kFactors}};
constexpr KrbType kChallenge = Record(kChallengeFields);
constexpr KrbField kResponseFields[] = {{0, "Public Key", &kOctets}, {1, "Factor", &kEncrypted}};
constexpr KrbType kResponse = Record(kResponseFields);
constexpr KrbField kSpakeChoices[] = {
    {0, "Support", &kSupport}, {1, "Challenge", &kChallenge}, {2, "Response", &kResponse}, {3, "Data", &kEncrypted}};
constexpr KrbType kSpake = Choice(kSpakeChoices);

// Authorization data that hold more of them.
constexpr KrbField kIssuedFields[] = {{0, "Checksum", &kChecksum}, {1, "Issuer Realm", &kText},
                                      {2, "Issuer Name", &kPrincipal}, {3, "Elements", &kKrbAuthorizationData}};
constexpr KrbType kIssued = Record(kIssuedFields);
constexpr KrbField kAndOrFields[] = {{0, "Condition Count", &kNumber}, {1, "Elements", &kKrbAuthorizationData}};
constexpr KrbType kAndOr = Record(kAndOrFields);

// Some KDCs put a status of their own where errors have the salt: its second word is 0, which no salt holds.
bool IsExtendedError(const Cursor& contents) { return Left(contents) == 12 && ReadU32(contents.at + 4) == 0; }

}  // namespace

const KrbType* FindKrbMessage(uint32_t identifier) {
  for (const KrbType& message : kMessages) {
    if (message.identifier == identifier) return &message;
  }
  return nullptr;
}

const KrbType* ChoosePaValue(const KrbWalk& walk, uint32_t code, const Cursor& contents) {
  switch (code) {
    case 1: return FindKrbMessage(contents.at[0]);
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
    case 136: return walk.isReply ? &kFastReplyChoice : &kFastRequestChoice;
    case 137: return FindKrbMessage(contents.at[0]);
    case 151: return &kSpake;
    case 161: return &kEncryptionCodes;
    case 162: return &kKeys;
    case 165: return &kEncryptionSetRaw;
    case 166: return &kExtendedErrorRaw;
    case 167: return &kPacOptions;
    default: return nullptr;
  }
}

const KrbType* ChooseAuthorization(const KrbWalk&, uint32_t code, const Cursor&) {
  switch (code) {
    case 1:
    case 8: return &kKrbAuthorizationData;
    case 4: return &kIssued;
    case 5: return &kAndOr;
    case 129: return &kEncryptionCodes;
    default: return nullptr;
  }
}

const KrbType* ChooseErrorData(const KrbWalk& walk, uint32_t, const Cursor& contents) {
  constexpr uint32_t kFirstTag = 0xA0, kSecondTag = 0xA1;
  if (walk.isPassword) return &kKrbPasswordResult;
  Cursor inside = ContentsOf(contents, kAsnSequence);
  const AsnSpan first = TakeAsnElement(inside);
  if (!first.here) return nullptr;
  if (first.identifier == kSecondTag) return &kKrbExtendedErrorData;
  Cursor fields = first.contents;
  return TakeAsnElement(fields).identifier == kFirstTag ? &kKrbTypedData : &kKrbMethodData;
}

}  // namespace qxview
