// Connecting to shares, and Echo (MS-CIFS 2.2.4.50, 2.2.4.55 and 2.2.4.39, MS-SMB 2.2.4.7).
//
// The AndX response has grown: 2 words; 3 with what the share supports; 7 with the rights to it.
#include "decoders/smb/smb_commands.h"

namespace qxview {
namespace {

constexpr auto kFlagBits = SortedNames({
    {0x0001, "Disconnect TID"}, {0x0004, "Extended Signatures"}, {0x0008, "Extended Response"}});
constexpr auto kSupportBits = SortedNames({
    {0x0001, "Exclusive Search Bits"}, {0x0002, "Share is in DFS"},
    {0x000C, "Client Side Caching (0 Manual, 1 Documents, 2 Programs, 3 None)"}, {0x0010, "Unique File Names"},
    {0x0020, "Extended Signatures"}});

constexpr SmbField kEcho[] = {{kSmbNumber16, "Echo Count"}};
constexpr SmbField kEchoResult[] = {{kSmbNumber16, "Sequence Number"}};

constexpr SmbField kConnect[] = {
    {kSmbFormattedText, "Path"}, {kSmbFormattedText, "Password"}, {kSmbFormattedText, "Service"}};
constexpr SmbField kConnectOem[] = {
    {kSmbFormattedOem, "Path"}, {kSmbFormattedOem, "Password"}, {kSmbFormattedOem, "Service"}};
constexpr SmbField kConnectResult[] = {{kSmbNumber16, "Maximum Buffer Size"}, {kSmbHex16, "TID"}};

constexpr SmbField kConnectAndX[] = {{kSmbFlags16, "Flags", kFlagBits}, {kSmbNumber16, "Password Length"}};
constexpr SmbField kConnectAndXNames[] = {{kSmbText, "Path"}, {kSmbOemText, "Service"}};
constexpr SmbField kConnectAndXResult[] = {
    {kSmbFlags16, "Optional Support", kSupportBits}, {kSmbFlags32, "Maximal Share Access Rights", kSmbAccessMaskBits},
    {kSmbFlags32, "Guest Maximal Share Access Rights", kSmbAccessMaskBits}};
constexpr SmbField kConnectAndXService[] = {{kSmbOemText, "Service"}, {kSmbText, "Native File System"}};

}  // namespace

void EchoRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kEcho); }
void EchoResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kEchoResult); }
void EchoData(SmbBlock& block) { AddBlock(block.in, Rest(block.data), "Data Bytes"); }

// Clients write the texts of one byte a character even in messages that have Unicode: the path's backslashes tell.
void TreeConnectRequestData(SmbBlock& block) {
  const Cursor& c = block.data;
  const bool wide = Left(c) >= 4 && (c.at[2] == 0 || c.at[3] == 0);
  AddSmbFields(block, block.data, wide ? std::span(kConnect) : std::span(kConnectOem));
}

void TreeConnectResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kConnectResult); }
void TreeConnectAndXRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kConnectAndX); }

void TreeConnectAndXRequestData(SmbBlock& block) {
  AddSmbBytes(block.in, block.data, SmbWord(block, 3), "Password");
  AddSmbFields(block, block.data, kConnectAndXNames);
}

void TreeConnectAndXResponseWords(SmbBlock& block) { AddSmbFields(block, block.words, kConnectAndXResult); }
void TreeConnectAndXResponseData(SmbBlock& block) { AddSmbFields(block, block.data, kConnectAndXService); }

}  // namespace qxview
