// Negotiate Protocol (MS-CIFS 2.2.4.52, MS-SMB 2.2.4.5): the client's dialects, each behind a format byte of 2, and the
// one that the server chose.
//
// Responses are told apart by their words: 1 of the core dialect, 13 of LAN Manager's, 17 of NT's, whose bytes are a
// challenge and names or, with extended security, a GUID and a security blob.
#include "decoders/smb/smb_commands.h"
#include "decoders/smb/spnego.h"

namespace qxview {
namespace {

constexpr uint32_t kLanManagerWords = 13, kNtWords = 17, kExtendedSecurity = 0x80000000, kUnicode = 0x4;
constexpr uint8_t kDialectFormat = 2;

constexpr auto kSecurityModeBits = SortedNames({
    {0x01, "User Level Security"}, {0x02, "Encrypted Passwords"}, {0x04, "Security Signatures Enabled"},
    {0x08, "Security Signatures Required"}});
constexpr auto kRawModeBits = SortedNames({{0x0001, "Read Raw"}, {0x0002, "Write Raw"}});

constexpr SmbField kFormat[] = {{kSmbName8, "Buffer Format", kSmbBufferFormatNames}};
constexpr SmbField kCore[] = {{kSmbNumber16, "Dialect Index"}};

constexpr SmbField kLanManager[] = {
    {kSmbNumber16, "Dialect Index"}, {kSmbFlags16, "Security Mode", kSecurityModeBits},
    {kSmbNumber16, "Maximum Buffer Size"}, {kSmbNumber16, "Maximum Multiplex Count"},
    {kSmbNumber16, "Maximum Virtual Circuits"}, {kSmbFlags16, "Raw Mode", kRawModeBits}, {kSmbHex32, "Session Key"},
    {kSmbDosTimeDate, "Server Time"}, {kSmbSigned16, "Server Time Zone"}, {kSmbNumber16, "Encryption Key Length"},
    {kSmbHex16, "Reserved"}};

constexpr SmbField kNt[] = {
    {kSmbNumber16, "Dialect Index"}, {kSmbFlags8, "Security Mode", kSecurityModeBits},
    {kSmbNumber16, "Maximum Multiplex Count"}, {kSmbNumber16, "Maximum Virtual Circuits"},
    {kSmbNumber32, "Maximum Buffer Size"}, {kSmbNumber32, "Maximum Raw Size"}, {kSmbHex32, "Session Key"},
    {kSmbFlags32, "Capabilities", kSmbCapabilityBits}, {kSmbFileTime, "System Time"},
    {kSmbSigned16, "Server Time Zone"}, {kSmbNumber8, "Encryption Key Length"}};

constexpr SmbField kGuid[] = {{kSmbBytes, "Server GUID", {}, 16}};

uint32_t CapabilitiesOf(const SmbBlock& block) {
  return SmbByte(block, 19) | SmbByte(block, 20) << 8 | SmbByte(block, 21) << 16 | SmbByte(block, 22) << 24;
}

// Servers that can do Unicode answer in it before flags 2 say so, and the names stand where they fall.
void AddServerNames(SmbBlock& block) {
  SmbMessage message = *block.message;
  if (CapabilitiesOf(block) & kUnicode) message.isUnicode = true;
  AddSmbString(message, block.in, block.data, "Primary Domain", SmbCharacters::kUnaligned);
  AddSmbString(message, block.in, block.data, "Server Name", SmbCharacters::kUnaligned);
}

}  // namespace

void NegotiateRequestData(SmbBlock& block) {
  Cursor& c = block.data;
  uint32_t index = 0;
  for (Loop loop; MoreAt(block.in, c, loop); ++index) {
    const Cursor start = c;
    if (*c.at != kDialectFormat) AddSmbFields(block, c, kFormat);
    else TakeU8(c);
    const SmbString dialect = TakeSmbString(*block.message, c, SmbCharacters::kOem);
    const Field whole{start.at, start.offset, c.offset - start.offset, 0, true};
    AddLine(block.in, whole, "Dialect: [%u] %s", index, dialect.text[0] ? dialect.text : "<null string>");
  }
}

void NegotiateResponseWords(SmbBlock& block) {
  if (block.wordCount == kNtWords) {
    AddSmbFields(block, block.words, kNt);
  } else if (block.wordCount == kLanManagerWords) {
    AddSmbFields(block, block.words, kLanManager);
  } else {
    AddSmbFields(block, block.words, kCore);
  }
}

void NegotiateResponseData(SmbBlock& block) {
  Cursor& c = block.data;
  if (block.wordCount == kNtWords && (CapabilitiesOf(block) & kExtendedSecurity)) {
    AddSmbFields(block, c, kGuid);
    AddSecurityBlob(block.in, Ahead(c, Left(c)));
    Rest(c);
  } else if (block.wordCount == kNtWords) {
    AddSmbBytes(block.in, c, SmbByte(block, 33), "Encryption Key");
    AddServerNames(block);
  } else if (block.wordCount == kLanManagerWords) {
    AddSmbBytes(block.in, c, SmbWord(block, 11), "Encryption Key");
    AddSmbString(*block.message, block.in, c, "Primary Domain", SmbCharacters::kOem);
  }
}

}  // namespace qxview
