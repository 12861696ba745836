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

constexpr SmbField kCommon[] = {
    {kSmbNumber16, "Maximum Buffer Size"}, {kSmbNumber16, "Maximum Multiplex Count"},
    {kSmbNumber16, "Virtual Circuit Number"}, {kSmbHex32, "Session Key"}};
constexpr SmbField kOld[] = {{kSmbNumber16, "Password Length"}, {kSmbHex32, "Reserved"}};
constexpr SmbField kNt[] = {
    {kSmbNumber16, "OEM Password Length"}, {kSmbNumber16, "Unicode Password Length"}, {kSmbHex32, "Reserved"},
    {kSmbFlags32, "Capabilities", kSmbCapabilityBits}};
constexpr SmbField kBlob[] = {
    {kSmbNumber16, "Security Blob Length"}, {kSmbHex32, "Reserved"},
    {kSmbFlags32, "Capabilities", kSmbCapabilityBits}};
constexpr SmbField kAction[] = {{kSmbFlags16, "Action", kActionBits}, {kSmbNumber16, "Security Blob Length"}};

constexpr SmbField kAccount[] = {{kSmbText, "Account"}, {kSmbText, "Primary Domain"}};
constexpr SmbField kSystem[] = {
    {kSmbText, "Native OS"}, {kSmbText, "Native LAN Manager"}, {kSmbText, "Primary Domain"}};
constexpr int32_t kSystemOfRequest = 2;   // the domain stands with the account there

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
  AddSmbFields(block, block.words, kCommon);
  if (block.wordCount == kNtRequestWords) {
    AddSmbFields(block, block.words, kNt);
  } else if (block.wordCount == kBlobRequestWords) {
    AddSmbFields(block, block.words, kBlob);
  } else {
    AddSmbFields(block, block.words, kOld);
  }
}

void SessionSetupRequestData(SmbBlock& block) {
  const uint32_t firstLength = SmbWord(block, 7);
  if (block.wordCount == kBlobRequestWords) {
    AddBlob(block, firstLength);
    AddSmbFields(block, block.data, kSystem);
    return;
  }
  if (block.wordCount == kNtRequestWords) {
    AddSmbBytes(block.in, block.data, firstLength, "OEM Password");
    AddUnicodePassword(block, SmbWord(block, 8));
  } else {
    AddSmbBytes(block.in, block.data, firstLength, "Password");
  }
  AddSmbFields(block, block.data, kAccount);
  AddSmbFields(block, block.data, std::span(kSystem).first(kSystemOfRequest));
}

void SessionSetupResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kAction); }

void SessionSetupResponseData(SmbBlock& block) {
  if (block.wordCount == kBlobResponseWords) AddBlob(block, SmbWord(block, 3));
  AddSmbFields(block, block.data, kSystem);
}

}  // namespace qxview
