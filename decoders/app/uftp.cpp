// UFTP, encrypted UDP based FTP with multicast, versions 4 and 5 (the protocol description that its author ships with it):
// one server sends files to many clients, which tell what they lack.
//
//   version (1) function (1) sequence (2) source (4) group (4) instance (1) round trip time (1) group size (1) reserved (1)
//   function (1) length of this header (1, in words) what the function holds, extensions | body
//
// Messages that are encrypted tell nothing but that.
#include "core/elements.h"
#include "core/times.h"
#include "decoders/common/quantized.h"

namespace qxview {
namespace {

constexpr uint32_t kVersion4 = 0x40, kVersion5 = 0x50, kEncrypted = 18;
constexpr int32_t kHeaderSize = 16, kHeadSize = 4;

constexpr auto kFunctionNames = SortedNames({
    {1, "ANNOUNCE"}, {2, "REGISTER"}, {3, "CLIENT_KEY"}, {4, "REG_CONF"}, {5, "KEYINFO"}, {6, "KEYINFO_ACK"},
    {7, "FILEINFO"}, {8, "FILEINFO_ACK"}, {9, "FILESEG"}, {10, "DONE"}, {11, "STATUS"}, {12, "COMPLETE"},
    {13, "DONE_CONF"}, {14, "HB_REQ"}, {15, "HB_RESP"}, {16, "KEY_REQ"}, {17, "PROXY_KEY"}, {18, "ENCRYPTED"},
    {19, "ABORT"}, {20, "CONG_CTRL"}, {21, "CC_ACK"}});
constexpr auto kKeyNames = SortedNames({
    {0, "None"}, {1, "DES"}, {2, "Triple DES"}, {3, "AES-128-CBC"}, {4, "AES-256-CBC"}, {5, "AES-128-GCM"},
    {6, "AES-256-GCM"}, {7, "AES-128-CCM"}, {8, "AES-256-CCM"}});
constexpr auto kHashNames = SortedNames({
    {0, "None"}, {1, "MD5"}, {2, "SHA-1"}, {3, "SHA-256"}, {4, "SHA-384"}, {5, "SHA-512"}});
constexpr auto kSignatureNames = SortedNames({{0, "None"}, {1, "HMAC"}, {2, "KEYEX"}, {3, "AUTHENC"}});
constexpr auto kExchangeNames = SortedNames({{0, "None"}, {1, "RSA"}, {2, "ECDH_RSA"}, {3, "ECDH_ECDSA"}});
constexpr auto kBlobNames = SortedNames({{0, "None"}, {1, "RSA"}, {2, "EC"}});
constexpr auto kHeartbeatNames = SortedNames({{0, "HB_AUTH_FAILED"}, {1, "HB_AUTH_OK"}, {2, "HB_AUTH_CHALLENGE"}});
constexpr auto kFileNames = SortedNames({
    {0, "Regular File"}, {1, "Directory"}, {2, "Symbolic Link"}, {3, "Delete File"}, {4, "Get Free Space"}});
constexpr auto kStatusNames = SortedNames({{0, "NORMAL"}, {1, "SKIPPED"}, {2, "OVERWRITE"}, {3, "REJECTED"}});
constexpr auto kCongestionNames = SortedNames({{0, "CC_NONE"}, {1, "CC_UFTP3"}, {2, "CC_TFMCC"}, {3, "CC_PGMCC"}});
constexpr auto kCurveNames = SortedNames({
    {1, "sect163k1"}, {2, "sect163r1"}, {3, "sect163r2"}, {4, "sect193r1"}, {5, "sect193r2"}, {6, "sect233k1"},
    {7, "sect233r1"}, {8, "sect239k1"}, {9, "sect283k1"}, {10, "sect283r1"}, {11, "sect409k1"}, {12, "sect409r1"},
    {13, "sect571k1"}, {14, "sect571r1"}, {15, "secp160k1"}, {16, "secp160r1"}, {17, "secp160r2"}, {18, "secp192k1"},
    {19, "secp192r1"}, {20, "secp224k1"}, {21, "secp224r1"}, {22, "secp256k1"}, {23, "secp256r1"}, {24, "secp384r1"},
    {25, "secp521r1"}});

struct Uftp {
  Field version, function, length, flags;
  Field keyLength, exchangeLength, signatureLength;   // in the order of the fields behind them
};

// Five bits of mantissa below 10, three of the exponent.
void ShowGroupSize(const Place& in, const Field& field, const char* label) {
  const uint32_t quantized = PeekU8(field);
  uint32_t size = (quantized >> 3) * 10;
  for (uint32_t i = quantized & 7; i > 0; --i) size *= 10;
  AddLine(in, field, "%s: %u = %u clients", label, quantized, (size + 16) / 32);
}

constexpr auto kHeader = Rows<Uftp>({
    Hex(1, "Version").Into(&Uftp::version), Number(1, "Function", kFunctionNames).Into(&Uftp::function),
    Number(2, "Sequence Number"), Hex(4, "Source ID"), Hex(4, "Group ID"), Number(1, "Group Instance"),
    QuantizedTime("Quantized Round Trip Time"), Shown(1, "Quantized Group Size", ShowGroupSize), Hex(1, "Reserved")});
constexpr auto kHead = Rows<Uftp>({
    Number(1, "Message Function", kFunctionNames), Number(1, "Header Length", " words").Into(&Uftp::length)});

// Seconds and microseconds.
void ShowTime(const Place& in, const Field& field, const char* label) {
  const uint32_t micros = PeekU32(field, 4);
  AddLine(in, field, "%s: %s", label, UtcText(PeekU32(field), micros < 1000000 ? micros * 1000 : 0, 6));
}
consteval RowData Time(const char* label) { return Shown(8, label, ShowTime); }

constexpr auto kAnnounce = Rows<Uftp>({
    Hex(1, "Flags").Into(&Uftp::flags), Flag(5, "IPv6"), Flag(6, "Sync Preview"), Flag(7, "Sync Mode"),
    Number(1, "Robustness"), Number(1, "Congestion Control", kCongestionNames), Hex(1, "Reserved"),
    Number(2, "Block Size"), Time("Timestamp")});
constexpr auto kGroups4 = Rows<Uftp>({IPv4("Public Multicast Address"), IPv4("Private Multicast Address").Note(", Group %s")});
constexpr auto kGroups6 = Rows<Uftp>({IPv6("Public Multicast Address"), IPv6("Private Multicast Address").Note(", Group %s")});
constexpr auto kRegister = Rows<Uftp>({
    Number(2, "Key Information Length").Into(&Uftp::keyLength), Time("Timestamp"), Bytes(32, "Client Random Number"),
    Bytes(0, "Key Information").SizedBy(&Uftp::keyLength)});
constexpr auto kClientKey = Rows<Uftp>({
    Hex(2, "Reserved"), Number(2, "Public Key Length").Into(&Uftp::keyLength),
    Number(2, "Verify Data Length").Into(&Uftp::signatureLength)});
constexpr auto kVerify = Rows<Uftp>({Bytes(0, "Signed Verify Data").SizedBy(&Uftp::signatureLength)});
constexpr auto kReserved = Rows<Uftp>({Hex(2, "Reserved")});
constexpr auto kKeyInfo4 = Rows<Uftp>({Hex(2, "Reserved"), Hex(8, "IV Counter")});
constexpr auto kKeyInfo5 = Rows<Uftp>({
    Number(2, "Signature Length").Into(&Uftp::signatureLength), Hex(8, "IV Counter"),
    Bytes(0, "Signature").SizedBy(&Uftp::signatureLength)});
constexpr auto kKeyAck4 = Rows<Uftp>({Hex(2, "Reserved"), Bytes(12, "Verify Data")});
constexpr auto kKeyAck5 = Rows<Uftp>({
    Number(2, "Verify Data Length").Into(&Uftp::signatureLength), Bytes(0, "Verify Data").SizedBy(&Uftp::signatureLength)});
constexpr auto kFileInfo = Rows<Uftp>({
    Number(2, "File ID").Note(", File %u"), Number(1, "File Type", kFileNames), Hex(3, "Reserved"),
    Number(1, "Name Length", " words").Into(&Uftp::keyLength), Number(1, "Link Length", " words").Into(&Uftp::exchangeLength),
    Number(6, "File Size", " bytes"), UnixTime(4, "File Timestamp"), Time("Timestamp")});
// The two bytes in front of the lengths are the high ones of the file's time.
constexpr auto kFileInfo5 = Rows<Uftp>({
    Number(2, "File ID").Note(", File %u"), Number(1, "File Type", kFileNames), Hex(1, "Reserved"),
    Number(2, "File Timestamp (High)"), Number(1, "Name Length", " words").Into(&Uftp::keyLength),
    Number(1, "Link Length", " words").Into(&Uftp::exchangeLength), Number(6, "File Size", " bytes"),
    UnixTime(4, "File Timestamp"), Time("Timestamp")});
constexpr auto kFileAck = Rows<Uftp>({
    Number(2, "File ID").Note(", File %u"), Hex(1, "Flags"), Flag(7, "Partial"), Hex(3, "Reserved"), Time("Timestamp")});
constexpr auto kSegment = Rows<Uftp>({
    Number(2, "File ID").Note(", File %u"), Number(2, "Section").Note(", Section %u"),
    Number(2, "Block in Section").Note(", Block %u")});
constexpr auto kSection = Rows<Uftp>({
    Number(2, "File ID").Note(", File %u"), Number(2, "Section").Note(", Section %u"), Hex(2, "Reserved")});
constexpr auto kComplete = Rows<Uftp>({
    Number(2, "File ID").Note(", File %u"), Number(1, "Completion Status", kStatusNames).Note(", %s"), Hex(3, "Reserved")});
constexpr auto kAbort = Rows<Uftp>({
    Hex(1, "Flags"), Flag(7, "Current File"), Hex(1, "Reserved"), Hex(4, "Host"), Text(0, "Reason").Note(", %s")});
constexpr auto kHeartbeatRequest = Rows<Uftp>({
    Hex(2, "Reserved"), Number(2, "Public Key Length").Into(&Uftp::keyLength),
    Number(2, "Signed Nonce Length").Into(&Uftp::signatureLength), Hex(4, "Nonce")});
constexpr auto kNonce = Rows<Uftp>({Bytes(0, "Signed Nonce").SizedBy(&Uftp::signatureLength)});
constexpr auto kHeartbeatResponse = Rows<Uftp>({
    Number(1, "Authenticated", kHeartbeatNames).Note(", %s"), Hex(1, "Reserved"), Hex(4, "Nonce")});
constexpr auto kProxyKey4 = Rows<Uftp>({
    Number(2, "Public Key Length").Into(&Uftp::keyLength), Number(2, "Diffie-Hellman Key Length").Into(&Uftp::exchangeLength),
    Number(2, "Signed Nonce Length").Into(&Uftp::signatureLength), Hex(4, "Nonce")});
constexpr auto kProxyKey5 = Rows<Uftp>({
    Number(2, "Public Key Length").Into(&Uftp::keyLength), Number(2, "Diffie-Hellman Key Length").Into(&Uftp::exchangeLength),
    Number(2, "Signature Length").Into(&Uftp::signatureLength)});
constexpr auto kCongestion = Rows<Uftp>({
    Hex(2, "Reserved"), Number(2, "Congestion Sequence"), QuantizedRate("Congestion Rate"), Time("Timestamp")});
constexpr auto kEncryption4 = Rows<Uftp>({
    Hex(8, "IV Counter"), Number(2, "Signature Length").Into(&Uftp::signatureLength),
    Number(2, "Payload Length").Into(&Uftp::keyLength), Bytes(0, "Signature").SizedBy(&Uftp::signatureLength)});
constexpr auto kEncryption5 = Rows<Uftp>({
    Hex(8, "IV Counter"), Hex(2, "Reserved"), Number(2, "Payload Length").Into(&Uftp::keyLength)});

void ShowKey(const Place& at, Cursor& c, const Field& length, const char* title) {
  static constexpr auto kRsa = Rows<Uftp>({
      Number(1, "Blob Type", kBlobNames), Hex(1, "Reserved"), Number(2, "Modulus Length").Into(&Uftp::length),
      Number(4, "Public Exponent"), Bytes(0, "Modulus").SizedBy(&Uftp::length)});
  static constexpr auto kCurve = Rows<Uftp>({
      Number(1, "Blob Type", kBlobNames), Number(1, "Curve", kCurveNames), Number(2, "Key Length").Into(&Uftp::length),
      Bytes(0, "Public Key").SizedBy(&Uftp::length)});
  constexpr uint32_t kRsaBlob = 1, kCurveBlob = 2;
  if (!length.value || !Left(c)) return;
  Cursor key = TakeCursor(c, length.value);
  const Place in = Under(at, AddLine(at, Ahead(key, Left(key)), "%s: %s", title, LookupName(kBlobNames, PeekU8(key))));
  Uftp blob{};
  if (PeekU8(key) == kRsaBlob) ShowRows<Uftp>(in, key, kRsa, blob);
  if (PeekU8(key) == kCurveBlob) ShowRows<Uftp>(in, key, kCurve, blob);
  key.ranShort = false;
  AddBlock(in, Rest(key), "Key Data");
}

void ShowEncryption(const Place& in, Cursor& c, Uftp& uftp) {
  static constexpr auto kFirst4 = Rows<Uftp>({
      Hex(1, "Flags"), Flag(7, "Client Authentication"), Word(1), Bits(0, 4, "Key Exchange", kExchangeNames),
      Bits(4, 4, "Signature", kSignatureNames)});
  static constexpr auto kFirst5 = Rows<Uftp>({Hex(1, "Flags"), Flag(7, "Client Authentication"), Hex(1, "Reserved")});
  static constexpr auto kRest = Rows<Uftp>({
      Number(1, "Key Type", kKeyNames).Note(", %s"), Number(1, "Hash", kHashNames),
      Number(2, "Public Key Length").Into(&Uftp::keyLength),
      Number(2, "Diffie-Hellman Key Length").Into(&Uftp::exchangeLength),
      Number(2, "Signature Length").Into(&Uftp::signatureLength), Bytes(32, "Server Random Number")});
  static constexpr auto kSigned = Rows<Uftp>({Bytes(0, "Public Key Signature").SizedBy(&Uftp::signatureLength)});
  const bool isFourth = uftp.version.value == kVersion4;
  ShowRows<Uftp>(in, c, isFourth ? RowSpan<Uftp>(kFirst4) : RowSpan<Uftp>(kFirst5), uftp);
  ShowRows<Uftp>(in, c, kRest, uftp);
  ShowKey(in, c, uftp.keyLength, "Public Key Blob");
  ShowKey(in, c, uftp.exchangeLength, "Diffie-Hellman Key Blob");
  if (uftp.signatureLength.value) ShowRows<Uftp>(in, c, kSigned, uftp);
}

constexpr auto kRateExtension = Rows<Uftp>({
    QuantizedRate("Send Rate"), Number(2, "Congestion Sequence"), QuantizedRate("Congestion Rate")});
constexpr auto kFeedback = Rows<Uftp>({
    Hex(1, "Feedback Flags"), Flag(4, "Leave"), Flag(5, "Start"), Flag(6, "Round Trip Time Known"), Flag(7, "Slowest Receiver"),
    Hex(1, "Reserved"), Number(2, "Congestion Sequence"), QuantizedRate("Congestion Rate"), Hex(4, "Client ID"), Time("Timestamp")});
constexpr auto kFreeSpace = Rows<Uftp>({Hex(2, "Reserved"), Number(8, "Free Space", " bytes")});
constexpr auto kExtensions = Choices<Uftp>({
    {1, "EXT_ENC_INFO", {}, ShowEncryption}, {2, "EXT_TFMCC_DATA_INFO", kRateExtension}, {3, "EXT_TFMCC_ACK_INFO", kFeedback},
    {4, "EXT_PGMCC_DATA_INFO"}, {5, "EXT_PGMCC_NAK_INFO"}, {6, "EXT_PGMCC_ACK_INFO"}, {7, "EXT_FREESPACE_INFO", kFreeSpace}});

void ShowName(const Place& in, Cursor& c, const Field& words, const char* label) {
  if (!words.value) return;
  const Field name = TakeBytes(c, 4 * int64_t{words.value});
  AddLine(in, name, "%s: %s", label, Text(name));
  AppendToParent(in, name, ", %s", Text(name));
}

RowSpan<Uftp> RowsOf(uint32_t function, bool isFourth) {
  switch (function) {
    case 1: return kAnnounce;
    case 2: return kRegister;
    case 3: return kClientKey;
    case 5: return isFourth ? RowSpan<Uftp>(kKeyInfo4) : RowSpan<Uftp>(kKeyInfo5);
    case 6: return isFourth ? RowSpan<Uftp>(kKeyAck4) : RowSpan<Uftp>(kKeyAck5);
    case 7: return isFourth ? RowSpan<Uftp>(kFileInfo) : RowSpan<Uftp>(kFileInfo5);
    case 8: return kFileAck;
    case 9: return kSegment;
    case 10:
    case 11: return kSection;
    case 12: return kComplete;
    case 14: return kHeartbeatRequest;
    case 15: return kHeartbeatResponse;
    case 17: return isFourth ? RowSpan<Uftp>(kProxyKey4) : RowSpan<Uftp>(kProxyKey5);
    case 19: return kAbort;
    case 20: return kCongestion;
    default: return kReserved;
  }
}

// What stands behind a header's fixed fields, as their lengths have it.
void ShowVariable(const Place& in, Cursor& c, uint32_t function, Uftp& uftp) {
  constexpr uint32_t kWithIPv6 = 0x04;
  switch (function) {
    case 1:
      ShowRows<Uftp>(in, c, uftp.flags.value & kWithIPv6 ? RowSpan<Uftp>(kGroups6) : RowSpan<Uftp>(kGroups4), uftp);
      break;
    case 3:
      ShowKey(in, c, uftp.keyLength, "Public Key Blob");
      ShowRows<Uftp>(in, c, kVerify, uftp);
      break;
    case 7:
      ShowName(in, c, uftp.keyLength, "File Name");
      ShowName(in, c, uftp.exchangeLength, "Link Name");
      break;
    case 14:
      ShowKey(in, c, uftp.keyLength, "Public Key Blob");
      if (uftp.signatureLength.value) ShowRows<Uftp>(in, c, kNonce, uftp);
      break;
    case 17:
      ShowKey(in, c, uftp.keyLength, "Public Key Blob");
      ShowKey(in, c, uftp.exchangeLength, "Diffie-Hellman Key Blob");
      if (uftp.signatureLength.value) ShowRows<Uftp>(in, c, kNonce, uftp);
      break;
    default: break;
  }
}

void ShowBody(const Place& in, Cursor& c, uint32_t function, Uftp& uftp) {
  constexpr uint32_t kKeyInfo = 5, kFileSegment = 9, kStatus = 11, kCongestionControl = 20;
  static constexpr auto kClient = Rows<Uftp>({Hex(4, "Client ID")});
  static constexpr auto kGroupKey = Rows<Uftp>({Hex(4, "Client ID"), Bytes(48, "Encrypted Group Master")});
  static constexpr auto kItem = Rows<Uftp>({
      Hex(4, "Client ID"), Hex(1, "Feedback Flags"), Flag(4, "Leave"), Flag(5, "Start"), Flag(6, "Round Trip Time Known"),
      Flag(7, "Slowest Receiver"), QuantizedTime("Quantized Round Trip Time"), QuantizedRate("Congestion Rate")});
  if (function == kFileSegment) {
    AddBlock(in, Rest(c), "File Data");
    return;
  }
  if (function == kStatus) {
    const Field lacking = Rest(c);
    if (lacking.here) AddLine(in, lacking, "Missing Blocks: %s", HexText(lacking));
    return;
  }
  const bool isKeys = function == kKeyInfo, isItems = function == kCongestionControl;
  const int32_t size = isKeys ? 52 : isItems ? 8 : 4;
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) {
    ShowRows<Uftp>(in, c, isKeys ? RowSpan<Uftp>(kGroupKey) : isItems ? RowSpan<Uftp>(kItem) : RowSpan<Uftp>(kClient), uftp);
  }
}

void ShowMessage(const Place& in, Cursor& c, Uftp& uftp) {
  constexpr ElementForm kForm{.unit = 4, .lengthCountsHeader = true};
  const uint32_t function = PeekU8(c);
  const bool isFourth = uftp.version.value == kVersion4;
  Cursor header = TakeCursor(c, 4 * int64_t{PeekU8(c, 1)});
  ShowRows<Uftp>(in, header, kHead, uftp);
  ShowRows<Uftp>(in, header, RowsOf(function, isFourth), uftp);
  ShowVariable(in, header, function, uftp);
  ShowElements<Uftp>(in, header, kForm, "Extension", kExtensions, uftp);
  header.ranShort = false;
  AddBlock(in, Rest(header), "Header Data");
  ShowBody(in, c, function, uftp);
}

}  // namespace

int32_t DecodeUftp(const Place& at, Cursor c) {
  const Uftp ahead = PeekRows(c, kHeader);
  const uint32_t version = ahead.version.value, function = ahead.function.value;
  const bool isEncrypted = function == kEncrypted;
  if (Left(c) < kHeaderSize + kHeadSize || (version != kVersion4 && version != kVersion5)) return 0;
  if (!isEncrypted && PeekU8(c, kHeaderSize) != function) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "UFTP: Version %u, %s", version >> 4,
                                     LookupName(kFunctionNames, function)));
  Uftp uftp = ShowRows(in, c, kHeader);
  if (isEncrypted) {
    ShowRows<Uftp>(in, c, version == kVersion4 ? RowSpan<Uftp>(kEncryption4) : RowSpan<Uftp>(kEncryption5), uftp);
    const Field payload = TakeBytes(c, uftp.keyLength.value);
    if (payload.here) AddLine(in, payload, "Encrypted Payload: %d bytes", payload.length);
  } else {
    ShowMessage(in, c, uftp);
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "UFTP Data");
  return 1;
}

}  // namespace qxview
