// Extensions and messages that came later and are rarely met: transparency of certificates in its second form (RFC 9162),
// pinned tickets (RFC 8672), keys for secure RTP (RFC 8870), what supplemental data hold (RFC 4680, RFC 4681, RFC 5878, RFC
// 6042), channel identifiers (draft-balfanz-tls-channelid) and checks of return routability (draft-ietf-tls-dtls-rrc).
#include "decoders/tls/tls_messages.h"

namespace qxview {
namespace {

constexpr auto kItemNames = SortedNames({
    {1, "reserved"}, {2, "x509_entry_v2"}, {3, "precert_entry_v2"}, {4, "x509_sct_v2"}, {5, "precert_sct_v2"},
    {6, "signed_tree_head_v2"}, {7, "consistency_proof_v2"}, {8, "inclusion_proof_v2"}});
constexpr auto kEktNames = SortedNames({{0, "reserved"}, {1, "AESKW128"}, {2, "AESKW256"}});
constexpr auto kRoutabilityNames = SortedNames({{0, "path_challenge"}, {1, "path_response"}, {2, "path_drop"}});

constexpr auto kItemType = Rows<TlsMessage>({
    Number(2, "Item Type", kItemNames).Note(" %s").Into(&TlsMessage::choice)});
constexpr auto kLogId = Rows<TlsMessage>({Counted(1, Digits("Log ID"))});
constexpr auto kStamp = Rows<TlsMessage>({UnixMilliseconds("Timestamp")});
constexpr auto kIssuer = Rows<TlsMessage>({Counted(1, Digits("Issuer Key Hash")), Counted(3, Digits("TBS Certificate"))});
constexpr auto kItemExtensions = Rows<TlsMessage>({Counted(2, Digits("Item Extensions"))});
constexpr auto kItemSignature = Rows<TlsMessage>({Counted(2, Digits("Item Signature"))});
constexpr auto kTreeHead = Rows<TlsMessage>({Number(8, "Tree Size"), Counted(1, Digits("Root Hash"))});
constexpr auto kTreeSizes = Rows<TlsMessage>({Number(8, "First Tree Size"), Number(8, "Second Tree Size")});
constexpr auto kLeaf = Rows<TlsMessage>({Number(8, "Tree Size"), Number(8, "Leaf Index")});
constexpr auto kNode = Rows<TlsMessage>({Counted(1, Digits("Node Hash"))});

constexpr auto kProof = Rows<TlsMessage>({Counted(1, Digits("Pinning Proof"))});
constexpr auto kPinned = Rows<TlsMessage>({Counted(2, Digits("Pinning Ticket"))});
constexpr auto kPinLifetime = Rows<TlsMessage>({Number(4, "Lifetime", " seconds")});
constexpr auto kEktCipher = Rows<TlsMessage>({Number(1, "EKT Cipher", kEktNames)});
constexpr auto kEktKeyRows = Rows<TlsMessage>({
    Counted(2, Digits("EKT Key Value")), Counted(2, Digits("SRTP Master Salt")), Number(2, "EKT SPI"),
    Number(3, "EKT Lifetime", " seconds")});
constexpr auto kChannel = Rows<TlsMessage>({
    Number(2, "Extension Type", TlsExtensionName), Number(2, "Extension Length"), Bytes(32, "Public Key X"),
    Bytes(32, "Public Key Y"), Bytes(32, "Signature R"), Bytes(32, "Signature S")});
constexpr auto kMapping = Rows<TlsMessage>({
    Number(1, "User Mapping Type", TlsMappingName).Into(&TlsMessage::choice)});
constexpr auto kPrincipal = Rows<TlsMessage>({
    Counted(2, Utf8(0, "User Principal Name")), Counted(2, Utf8(0, "Domain Name"))});
constexpr auto kFormat = Rows<TlsMessage>({
    Number(1, "Authorization Format", TlsAuthorizationName).Into(&TlsMessage::choice)});
constexpr auto kAuthorization = Rows<TlsMessage>({Counted(2, Digits("Authorization"))});
constexpr auto kUrl = Rows<TlsMessage>({
    Counted(2, Text(0, "URL")), Number(1, "Hash Algorithm", TlsHashName).Into(&TlsMessage::choice)});
constexpr auto kRoutability = Rows<TlsMessage>({
    Number(1, "Return Routability Message", kRoutabilityNames), Bytes(8, "Cookie")});

void ShowItem(const Place& in, Cursor& c, TlsMessage& message) {
  enum : uint32_t { kCertificateEntry = 2, kPreEntry = 3, kCertificateSct = 4, kPreSct = 5, kHead = 6, kConsistency = 7,
                    kInclusion = 8 };
  ShowRows<TlsMessage>(in, c, kItemType, message);
  const uint32_t type = message.choice.value;
  const bool isEntry = type == kCertificateEntry || type == kPreEntry;
  if (type < kCertificateEntry || type > kInclusion) return;
  if (!isEntry) ShowRows<TlsMessage>(in, c, kLogId, message);
  if (type <= kHead) ShowRows<TlsMessage>(in, c, kStamp, message);
  if (isEntry) ShowRows<TlsMessage>(in, c, kIssuer, message);
  if (type == kHead) ShowRows<TlsMessage>(in, c, kTreeHead, message);
  if (type == kConsistency) ShowRows<TlsMessage>(in, c, kTreeSizes, message);
  if (type == kInclusion) ShowRows<TlsMessage>(in, c, kLeaf, message);
  if (type <= kHead) ShowRows<TlsMessage>(in, c, kItemExtensions, message);
  if (type == kCertificateSct || type == kPreSct || type == kHead) ShowRows<TlsMessage>(in, c, kItemSignature, message);
  if (type >= kConsistency) ShowTlsList<TlsMessage>(in, c, 2, "Path", kNode, message);
}

void ShowUserMappings(const Place& in, Cursor& c, TlsMessage& message) {
  constexpr uint32_t kPrincipalHint = 64;
  Place under;
  Cursor list = TakeTlsList(in, c, 2, "User Mappings", &under);
  Loop loop;
  while (MoreAt(under, list, loop)) {
    ShowRows<TlsMessage>(under, list, kMapping, message);
    if (message.choice.value == kPrincipalHint) ShowRows<TlsMessage>(under, list, kPrincipal, message);
    else AddBlock(under, Rest(list), "Data");   // nothing says how long others are
  }
}

int32_t HashSize(uint32_t algorithm) {
  constexpr int32_t kSizes[] = {0, 16, 20, 28, 32, 48, 64};   // none, MD5, SHA-1, SHA-2
  return algorithm < sizeof kSizes / sizeof kSizes[0] ? kSizes[algorithm] : 0;
}

void ShowAuthorizations(const Place& in, Cursor& c, TlsMessage& message) {
  constexpr uint32_t kCertificateUrl = 2, kAssertionUrl = 3, kKeyNoteUrl = 65;
  Place under;
  Cursor list = TakeTlsList(in, c, 2, "Authorization Data", &under);
  Loop loop;
  while (MoreAt(under, list, loop)) {
    ShowRows<TlsMessage>(under, list, kFormat, message);
    const uint32_t format = message.choice.value;
    if (format != kCertificateUrl && format != kAssertionUrl && format != kKeyNoteUrl) {
      ShowRows<TlsMessage>(under, list, kAuthorization, message);
      continue;
    }
    ShowRows<TlsMessage>(under, list, kUrl, message);
    const Field hash = TakeBytes(list, HashSize(message.choice.value));
    if (hash.length > 0) AddLine(under, hash, "Hash: %s", HexText(hash));
  }
}

constexpr ElementForm kSupplementalForm{.typeSize = 2, .lengthSize = 2};
constexpr auto kSupplementals = Choices<TlsMessage>({
    {0, "user_mapping_data", {}, ShowUserMappings}, {16386, "authz_data", {}, ShowAuthorizations}});

}  // namespace

void ShowTransparencyItems(const Place& in, Cursor& c, TlsMessage& message) {
  if (Left(c) < 1) return;   // a client's offer
  Place under;
  Cursor list = TakeTlsList(in, c, 2, "Transparency Items", &under);
  Loop loop;
  while (MoreAt(under, list, loop)) {
    const Field length = TakeU16(list);
    Cursor item = TakeCursor(list, length.value);
    const Place entry = Under(under, AddLine(under, Ahead(item, Left(item)), "Item:"));
    AddLine(entry, length, "Item Length: %u", length.value);
    ShowItem(entry, item, message);
    item.ranShort = false;
    AddBlock(entry, Rest(item), "Data");
  }
}

void ShowTicketPinning(const Place& in, Cursor& c, TlsMessage& message) {
  const bool isOffer = message.type == kClientHello;
  if (!isOffer) ShowRows<TlsMessage>(in, c, kProof, message);
  ShowRows<TlsMessage>(in, c, kPinned, message);
  if (!isOffer) ShowRows<TlsMessage>(in, c, kPinLifetime, message);
}

void ShowEktCiphers(const Place& in, Cursor& c, TlsMessage& message) {
  if (message.type == kClientHello) return ShowTlsList<TlsMessage>(in, c, 1, "EKT Ciphers", kEktCipher, message);
  ShowRows<TlsMessage>(in, c, kEktCipher, message);
}
void ShowEktKey(const Place& in, Cursor& c, TlsMessage& message) { ShowRows<TlsMessage>(in, c, kEktKeyRows, message); }
void ShowChannelId(const Place& in, Cursor& c, TlsMessage& message) { ShowRows<TlsMessage>(in, c, kChannel, message); }

void ShowSupplementalData(const Place& in, Cursor& c, TlsMessage& message) {
  Place under;
  Cursor list = TakeTlsList(in, c, 3, "Supplemental Data", &under);
  ShowElements<TlsMessage>(under, list, kSupplementalForm, "Entry", kSupplementals, message);
}

void ShowReturnRoutability(const Place& in, Cursor& c) {
  TlsMessage message{};
  ShowRows<TlsMessage>(in, c, kRoutability, message);
}

}  // namespace qxview
