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

constexpr auto kFormat = LittleRows<Smb>({kSmbBufferFormat});
constexpr auto kCore = LittleRows<Smb>({Number(2, "Dialect Index")});

constexpr auto kLanManager = LittleRows<Smb>({
    Number(2, "Dialect Index"), Flags(2, "Security Mode", kSecurityModeBits), Number(2, "Maximum Buffer Size"),
    Number(2, "Maximum Multiplex Count"), Number(2, "Maximum Virtual Circuits"), Flags(2, "Raw Mode", kRawModeBits),
    Hex(4, "Session Key"), SmbTimeDate("Server Time"), Signed(2, "Server Time Zone"),
    Number(2, "Encryption Key Length"), Hex(2, "Reserved")});

constexpr auto kNt = LittleRows<Smb>({
    Number(2, "Dialect Index"), Flags(1, "Security Mode", kSecurityModeBits), Number(2, "Maximum Multiplex Count"),
    Number(2, "Maximum Virtual Circuits"), Number(4, "Maximum Buffer Size"), Number(4, "Maximum Raw Size"),
    Hex(4, "Session Key"), Flags(4, "Capabilities", kSmbCapabilityBits), FileTime("System Time"),
    Signed(2, "Server Time Zone"), Number(1, "Encryption Key Length")});

constexpr auto kGuid = LittleRows<Smb>({Bytes(16, "Server GUID")});

uint32_t CapabilitiesOf(const SmbBlock& block) { return PeekLittleU32(block.allWords, 19); }

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
    if (PeekU8(c) != kDialectFormat) ShowSmbRows(block, c, kFormat);
    else TakeU8(c);
    const SmbString dialect = TakeSmbString(*block.message, c, SmbCharacters::kOem);
    AddLine(block.in, Ahead(start, c.offset - start.offset), "Dialect: [%u] %s", index,
            dialect.text[0] ? dialect.text : "<null string>");
  }
}

void NegotiateResponseWords(SmbBlock& block) {
  const uint32_t count = block.wordCount;
  ShowSmbRows(block, block.words,
              count == kNtWords ? SmbRowSpan(kNt) : count == kLanManagerWords ? SmbRowSpan(kLanManager) : kCore);
}

void NegotiateResponseData(SmbBlock& block) {
  Cursor& c = block.data;
  if (block.wordCount == kNtWords && (CapabilitiesOf(block) & kExtendedSecurity)) {
    ShowSmbRows(block, c, kGuid);
    AddSecurityBlob(block.in, Ahead(c, Left(c)));
    Rest(c);
  } else if (block.wordCount == kNtWords) {
    AddSmbBytes(block.in, c, PeekU8(block.allWords, 33), "Encryption Key");
    AddServerNames(block);
  } else if (block.wordCount == kLanManagerWords) {
    AddSmbBytes(block.in, c, SmbWord(block, 11), "Encryption Key");
    AddSmbString(*block.message, block.in, c, "Primary Domain", SmbCharacters::kOem);
  }
}

}  // namespace qxview
