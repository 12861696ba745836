// Session Setup AndX (MS-CIFS 2.2.4.53, MS-SMB 2.2.4.6): who logs in, and what both ends run.
//
// Requests are told apart by their words: 10 have one password; 13 have two, of an OEM and a Unicode response to the
// server's challenge; 12 have a security blob instead of passwords and account. Responses of 4 words have a blob.
#include "decoders/smb/ntlmssp.h"
#include "decoders/smb/smb_commands.h"
#include "decoders/smb/spnego.h"

namespace qxview {
namespace {

constexpr uint32_t kBlobRequestWords = 12, kNtRequestWords = 13, kBlobResponseWords = 4;
constexpr uint32_t kChallengeResponseSize = 24;

constexpr auto kActionBits = SortedNames({{0x0001, "Logged In as Guest"}, {0x0002, "LAN Manager Key Used"}});

constexpr auto kCommon = LittleRows<Smb>({
    Number(2, "Maximum Buffer Size"), Number(2, "Maximum Multiplex Count"), Number(2, "Virtual Circuit Number"),
    Hex(4, "Session Key")});
constexpr auto kOld = LittleRows<Smb>({SmbTable<kCommon>(), Number(2, "Password Length"), Hex(4, "Reserved")});
constexpr auto kNt = LittleRows<Smb>({
    SmbTable<kCommon>(), Number(2, "OEM Password Length"), Number(2, "Unicode Password Length"), Hex(4, "Reserved"),
    Flags(4, "Capabilities", kSmbCapabilityBits)});
constexpr auto kBlob = LittleRows<Smb>({
    SmbTable<kCommon>(), Number(2, "Security Blob Length"), Hex(4, "Reserved"),
    Flags(4, "Capabilities", kSmbCapabilityBits)});
constexpr auto kAction = LittleRows<Smb>({Flags(2, "Action", kActionBits), Number(2, "Security Blob Length")});

constexpr auto kAccount = LittleRows<Smb>({
    SmbText("Account"), SmbText("Primary Domain"), SmbText("Native OS"), SmbText("Native LAN Manager")});
constexpr auto kSystem = LittleRows<Smb>({
    SmbText("Native OS"), SmbText("Native LAN Manager"), SmbText("Primary Domain")});

void AddBlob(SmbBlock& block, uint32_t length) {
  Cursor blob = TakeCursor(block.data, length);
  AddSecurityBlob(block.in, Rest(blob));
}

void AddUnicodePassword(SmbBlock& block, uint32_t length) {
  if (length <= kChallengeResponseSize) {
    AddSmbBytes(block.in, block.data, length, "Unicode Password");
    return;
  }
  Cursor password = TakeCursor(block.data, length);
  AddNtlmV2Response(block.in, Rest(password), "Unicode Password");
}

}  // namespace

void SessionSetupRequestWords(SmbBlock& block) {
  const uint32_t count = block.wordCount;
  ShowSmbRows(block, block.words,
              count == kNtRequestWords ? SmbRowSpan(kNt) : count == kBlobRequestWords ? SmbRowSpan(kBlob) : kOld);
}

void SessionSetupRequestData(SmbBlock& block) {
  const uint32_t firstLength = SmbWord(block, 7);
  if (block.wordCount == kBlobRequestWords) {
    AddBlob(block, firstLength);
    ShowSmbRows(block, block.data, kSystem);
    return;
  }
  if (block.wordCount == kNtRequestWords) {
    AddSmbBytes(block.in, block.data, firstLength, "OEM Password");
    AddUnicodePassword(block, SmbWord(block, 8));
  } else {
    AddSmbBytes(block.in, block.data, firstLength, "Password");
  }
  ShowSmbRows(block, block.data, kAccount);
}

void SessionSetupResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kAction); }

void SessionSetupResponseData(SmbBlock& block) {
  if (block.wordCount == kBlobResponseWords) AddBlob(block, SmbWord(block, 3));
  ShowSmbRows(block, block.data, kSystem);
}

}  // namespace qxview
