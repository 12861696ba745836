// The messages of Secure Shell's transport layer (RFC 4253, 8308) and of its key exchanges: Diffie-Hellman (RFC 4253 8), group
// exchange (RFC 4419), elliptic curves and hybrids (RFC 5656, 8731, drafts of hybrid key exchange), RSA (RFC 4432), GSS-API
// (RFC 4462). Host keys and signatures (RFC 4253 6.6, 5656, 8332, 8709).
#include "core/elements.h"
#include "decoders/app/ssh.h"
#include "decoders/app/ssh_names.h"

namespace qxview {
namespace {

enum ExchangeCode : uint32_t { kFirstExchange = 30, kLastExchange = 49 };

constexpr auto kDhNames = SortedNames({{30, "KEXDH_INIT"}, {31, "KEXDH_REPLY"}});
constexpr auto kGroupNames = SortedNames({
    {30, "KEX_DH_GEX_REQUEST_OLD"}, {31, "KEX_DH_GEX_GROUP"}, {32, "KEX_DH_GEX_INIT"}, {33, "KEX_DH_GEX_REPLY"},
    {34, "KEX_DH_GEX_REQUEST"}});
constexpr auto kCurveNames = SortedNames({{30, "KEX_ECDH_INIT"}, {31, "KEX_ECDH_REPLY"}});
constexpr auto kRsaNames = SortedNames({{30, "KEXRSA_PUBKEY"}, {31, "KEXRSA_SECRET"}, {32, "KEXRSA_DONE"}});
constexpr auto kGssNames = SortedNames({
    {30, "KEXGSS_INIT"}, {31, "KEXGSS_CONTINUE"}, {32, "KEXGSS_COMPLETE"}, {33, "KEXGSS_HOSTKEY"}, {34, "KEXGSS_ERROR"},
    {40, "KEXGSS_GROUPREQ"}, {41, "KEXGSS_GROUP"}});

// keys: text
void ShowText(const Place& in, Cursor& c, const char* label, SshMessage&) { ShowSshText(in, c, label); }
void ShowBytes(const Place& in, Cursor& c, const char* label, SshMessage&) { TakeSshString(in, c, label); }
void ShowWide(const Place& in, Cursor& c, const char* label, SshMessage&) { ShowSshNumber(in, c, label); }
void ShowKey(const Place& in, Cursor& c, const char*, SshMessage&) { ShowSshHostKey(in, c); }
void ShowSigned(const Place& in, Cursor& c, const char*, SshMessage&) { ShowSshSignature(in, c); }
constexpr Row<SshMessage> TextRow(const char* label) { return Shown<SshMessage>(label, ShowText); }
constexpr Row<SshMessage> BytesRow(const char* label) { return Shown<SshMessage>(label, ShowBytes); }
constexpr Row<SshMessage> WideRow(const char* label) { return Shown<SshMessage>(label, ShowWide); }
constexpr Row<SshMessage> HostKeyRow() { return Shown<SshMessage>("Host Key", ShowKey); }
constexpr Row<SshMessage> SignatureRow() { return Shown<SshMessage>("Signature", ShowSigned); }

void ShowLastToken(const Place& in, Cursor& c, const char* label, SshMessage&) {
  if (Left(c) > 0) TakeSshString(in, c, label);
}

void ShowExtensions(const Place& in, Cursor& c, const char*, SshMessage&) {
  const Field count = TakeU32(c);
  AddLine(in, count, "Number of Extensions: %u", count.value);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    ShowSshText(in, c, "Extension Name");
    ShowSshText(in, c, "Extension Value");
  }
}
void ShowInit(const Place& in, Cursor& c, const char*, SshMessage& message) { ShowSshKeyExchangeInit(in, c, message); }

constexpr auto kDisconnect = Rows<SshMessage>({
    Number(4, "Reason Code", kSshDisconnectNames), TextRow("Description"), TextRow("Language Tag")});
constexpr auto kIgnore = Rows<SshMessage>({BytesRow("Ignored Data")});
constexpr auto kUnimplemented = Rows<SshMessage>({Number(4, "Packet Sequence Number")});
constexpr auto kDebug = Rows<SshMessage>({
    Number(1, "Always Display", kFalseTrueNames), TextRow("Message"), TextRow("Language Tag")});
constexpr auto kService = Rows<SshMessage>({TextRow("Service Name")});
constexpr auto kExtensions = Rows<SshMessage>({Shown<SshMessage>("Extensions", ShowExtensions)});
constexpr auto kInit = Rows<SshMessage>({Shown<SshMessage>("Algorithms", ShowInit)});
constexpr auto kDhInit = Rows<SshMessage>({WideRow("Client Public Value e")});
constexpr auto kDhReply = Rows<SshMessage>({HostKeyRow(), WideRow("Server Public Value f"), SignatureRow()});
constexpr auto kGroupRequestOld = Rows<SshMessage>({Number(4, "Preferred Bits")});
constexpr auto kGroupRequest = Rows<SshMessage>({
    Number(4, "Minimum Bits"), Number(4, "Preferred Bits"), Number(4, "Maximum Bits")});
constexpr auto kGroup = Rows<SshMessage>({WideRow("Prime p"), WideRow("Generator g")});
constexpr auto kCurveInit = Rows<SshMessage>({BytesRow("Client Public Key")});
constexpr auto kCurveReply = Rows<SshMessage>({HostKeyRow(), BytesRow("Server Public Key"), SignatureRow()});
constexpr auto kRsaKey = Rows<SshMessage>({HostKeyRow(), BytesRow("Transient Public Key")});
constexpr auto kRsaSecret = Rows<SshMessage>({BytesRow("Encrypted Secret")});
constexpr auto kRsaDone = Rows<SshMessage>({SignatureRow()});
constexpr auto kGssInit = Rows<SshMessage>({BytesRow("Token"), WideRow("Client Public Value e")});
constexpr auto kGssContinue = Rows<SshMessage>({BytesRow("Token")});
constexpr auto kGssComplete = Rows<SshMessage>({
    WideRow("Server Public Value f"), BytesRow("Message Integrity Code"), Number(1, "Token Follows", kFalseTrueNames),
    Shown<SshMessage>("Token", ShowLastToken)});
constexpr auto kGssError = Rows<SshMessage>({
    Hex(4, "Major Status"), Number(4, "Minor Status"), TextRow("Message"), TextRow("Language Tag")});
constexpr auto kGssHostKey = Rows<SshMessage>({HostKeyRow()});

constexpr auto kTransport = Choices<SshMessage>({
    {1, "DISCONNECT", kDisconnect}, {2, "IGNORE", kIgnore}, {3, "UNIMPLEMENTED", kUnimplemented}, {4, "DEBUG", kDebug},
    {5, "SERVICE_REQUEST", kService}, {6, "SERVICE_ACCEPT", kService}, {7, "EXT_INFO", kExtensions}, {20, "KEXINIT", kInit}});
constexpr auto kDh = Choices<SshMessage>({{30, "KEXDH_INIT", kDhInit}, {31, "KEXDH_REPLY", kDhReply}});
constexpr auto kGroupExchange = Choices<SshMessage>({
    {30, "KEX_DH_GEX_REQUEST_OLD", kGroupRequestOld}, {31, "KEX_DH_GEX_GROUP", kGroup}, {32, "KEX_DH_GEX_INIT", kDhInit},
    {33, "KEX_DH_GEX_REPLY", kDhReply}, {34, "KEX_DH_GEX_REQUEST", kGroupRequest}});
constexpr auto kCurve = Choices<SshMessage>({{30, "KEX_ECDH_INIT", kCurveInit}, {31, "KEX_ECDH_REPLY", kCurveReply}});
constexpr auto kRsa = Choices<SshMessage>({
    {30, "KEXRSA_PUBKEY", kRsaKey}, {31, "KEXRSA_SECRET", kRsaSecret}, {32, "KEXRSA_DONE", kRsaDone}});
constexpr auto kGss = Choices<SshMessage>({
    {30, "KEXGSS_INIT", kGssInit}, {31, "KEXGSS_CONTINUE", kGssContinue}, {32, "KEXGSS_COMPLETE", kGssComplete},
    {33, "KEXGSS_HOSTKEY", kGssHostKey}, {34, "KEXGSS_ERROR", kGssError},
    {40, "KEXGSS_GROUPREQ", kGroupRequest}, {41, "KEXGSS_GROUP", kGroup}});

ChoiceSpan<SshMessage> MessagesOf(uint32_t code, SshExchange exchange) {
  if (code < kFirstExchange || code > kLastExchange) return kTransport;
  switch (exchange) {
    case SshExchange::kDiffieHellman: return kDh;
    case SshExchange::kGroupExchange: return kGroupExchange;
    case SshExchange::kEllipticCurve: return kCurve;
    case SshExchange::kRsa: return kRsa;
    case SshExchange::kGss: return kGss;
    default: return {};
  }
}

// What a host key holds behind its name.
struct HostKeyForm {
  const char* type;
  const char* parts[4];
  bool areNumbers;
};
constexpr HostKeyForm kHostKeys[] = {
    {"ssh-rsa", {"Public Exponent e", "Modulus n", nullptr, nullptr}, true},
    {"ssh-dss", {"Prime p", "Divisor q", "Base g", "Public Key y"}, true},
    {"ecdsa-sha2-", {"Curve", "Public Key Q", nullptr, nullptr}, false},
    {"ssh-ed25519", {"Public Key", nullptr, nullptr, nullptr}, false},
    {"ssh-ed448", {"Public Key", nullptr, nullptr, nullptr}, false},
};

const HostKeyForm* HostKeyFormOf(const Field& type) {
  for (const HostKeyForm& form : kHostKeys) {
    int32_t length = 0;
    while (form.type[length] && PeekU8(type, length) == static_cast<uint8_t>(form.type[length])) ++length;
    const bool isPrefix = length > 0 && form.type[length - 1] == '-';
    if (!form.type[length] && (isPrefix || length == type.length)) return &form;
  }
  return nullptr;
}

// The string's length and a cursor over its bytes.
Cursor TakeBlob(const Place& in, Cursor& c, const char* label) {
  const Field length = TakeU32(c);
  AddLine(in, length, "%s Length: %u", label, length.value);
  return TakeCursor(c, length.value);
}

}  // namespace

Field TakeSshString(const Place& in, Cursor& c, const char* label) {
  const Field length = TakeU32(c);
  AddLine(in, length, "%s Length: %u", label, length.value);
  const Field bytes = TakeBytes(c, length.value);
  if (bytes.length) AddLine(in, bytes, "%s: %s", label, HexDigits(bytes));
  return bytes;
}
void ShowSshText(const Place& in, Cursor& c, const char* label) {
  const Field length = TakeU32(c);
  AddLine(in, length, "%s Length: %u", label, length.value);
  const Field bytes = TakeBytes(c, length.value);
  if (bytes.length) AddLine(in, bytes, "%s: %s", label, Text(bytes));
}
void ShowSshNumber(const Place& in, Cursor& c, const char* label) { TakeSshString(in, c, label); }

void ShowSshHostKey(const Place& in, Cursor& c) {
  Cursor blob = TakeBlob(in, c, "Host Key");
  const Place under = Under(in, AddLine(in, Ahead(blob, Left(blob)), "Host Key: %d bytes", Left(blob)));
  const Field typeLength = TakeU32(blob);
  AddLine(under, typeLength, "Key Type Length: %u", typeLength.value);
  const Field type = TakeBytes(blob, typeLength.value);
  AddLine(under, type, "Key Type: %s", Text(type));
  AppendToParent(under, type, ", %s", Text(type));
  const HostKeyForm* form = HostKeyFormOf(type);
  for (int32_t i = 0; form && i < 4 && form->parts[i]; ++i) {
    if (!form->areNumbers && i == 0 && form->parts[1]) {
      ShowSshText(under, blob, form->parts[i]);
    } else {
      TakeSshString(under, blob, form->parts[i]);
    }
  }
  blob.ranShort = false;
  AddBlock(under, Rest(blob), "Key Data");
}

void ShowSshSignature(const Place& in, Cursor& c) {
  Cursor blob = TakeBlob(in, c, "Signature");
  const Place under = Under(in, AddLine(in, Ahead(blob, Left(blob)), "Signature: %d bytes", Left(blob)));
  ShowSshText(under, blob, "Signature Type");
  TakeSshString(under, blob, "Signature Data");
  blob.ranShort = false;
  AddBlock(under, Rest(blob), "Signature Data");
}

SshExchange GuessSshExchange(uint32_t code, Cursor body) {
  constexpr int32_t kMostStrings = 3, kGroupSizes[] = {128, 192, 256, 384, 512, 768, 1024};
  constexpr uint32_t kRequest = 34, kReply = 33, kInit = 32, kAnswer = 31, kFirst = 30;
  if (code < kFirstExchange || code > kLastExchange) return SshExchange::kUnknown;
  const int32_t size = Left(body);
  if (code == kRequest && size == 12) return SshExchange::kGroupExchange;
  if (code == kFirst && size == 4) return SshExchange::kGroupExchange;
  int32_t count = 0, lengths[kMostStrings] = {};
  while (count < kMostStrings && Left(body) > 0) {
    const uint32_t length = TakeU32(body).value;
    lengths[count++] = TakeBytes(body, length).length;
  }
  if (body.ranShort || Left(body) > 0) return SshExchange::kUnknown;
  if ((code == kInit && count == 1) || (code == kReply && count == 3)) return SshExchange::kGroupExchange;
  if (code == kAnswer && count == 2) return SshExchange::kGroupExchange;
  const bool isOne = code == kFirst && count == 1, isThree = code == kAnswer && count == 3;
  if (!isOne && !isThree) return SshExchange::kUnknown;
  const int32_t share = lengths[isOne ? 0 : 1];
  for (const int32_t group : kGroupSizes) {   // a number of a group, and a zero in front of one whose first bit is set
    if (share == group || share == group + 1) return SshExchange::kDiffieHellman;
  }
  return SshExchange::kEllipticCurve;
}

const char* SshMessageName(uint32_t code, SshExchange exchange) {
  if (code < kFirstExchange || code > kLastExchange) return LookupName(kSshMessageNames, code);
  switch (exchange) {
    case SshExchange::kDiffieHellman: return LookupName(kDhNames, code, "Key Exchange");
    case SshExchange::kGroupExchange: return LookupName(kGroupNames, code, "Key Exchange");
    case SshExchange::kEllipticCurve: return LookupName(kCurveNames, code, "Key Exchange");
    case SshExchange::kRsa: return LookupName(kRsaNames, code, "Key Exchange");
    case SshExchange::kGss: return LookupName(kGssNames, code, "Key Exchange");
    default: return "Key Exchange";
  }
}

void ShowSshMessage(const Place& in, Cursor& c, uint32_t code, SshMessage& message) {
  const Choice<SshMessage>* choice = FindChoice<SshMessage>(MessagesOf(code, message.connection->exchange), code);
  if (choice) ShowRows<SshMessage>(in, c, choice->rows, message, choice->name);
}

}  // namespace qxview
