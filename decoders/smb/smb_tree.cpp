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

constexpr auto kEcho = LittleRows<Smb>({Number(2, "Echo Count")});
constexpr auto kEchoResult = LittleRows<Smb>({Number(2, "Sequence Number")});

constexpr auto kConnect = LittleRows<Smb>({
    kSmbBufferFormat, SmbText("Path"), kSmbBufferFormat, SmbText("Password"), kSmbBufferFormat, SmbText("Service")});
constexpr auto kConnectOem = LittleRows<Smb>({
    kSmbBufferFormat, SmbOemText("Path"), kSmbBufferFormat, SmbOemText("Password"), kSmbBufferFormat,
    SmbOemText("Service")});
constexpr auto kConnectResult = LittleRows<Smb>({Number(2, "Maximum Buffer Size"), Hex(2, "TID")});

constexpr auto kConnectAndX = LittleRows<Smb>({Flags(2, "Flags", kFlagBits), Number(2, "Password Length")});
constexpr auto kConnectAndXNames = LittleRows<Smb>({SmbText("Path"), SmbOemText("Service")});
constexpr auto kConnectAndXResult = LittleRows<Smb>({
    Flags(2, "Optional Support", kSupportBits), Flags(4, "Maximal Share Access Rights", kSmbAccessMaskBits),
    Flags(4, "Guest Maximal Share Access Rights", kSmbAccessMaskBits)});
constexpr auto kConnectAndXService = LittleRows<Smb>({SmbOemText("Service"), SmbText("Native File System")});

}  // namespace

void EchoRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kEcho); }
void EchoResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kEchoResult); }
void EchoData(SmbBlock& block) { AddBlock(block.in, Rest(block.data), "Data Bytes"); }

// Clients write the texts of one byte a character even in messages that have Unicode: the path's backslashes tell.
void TreeConnectRequestData(SmbBlock& block) {
  const Cursor& c = block.data;
  const bool wide = Left(c) >= 4 && (PeekU8(c, 2) == 0 || PeekU8(c, 3) == 0);
  ShowSmbRows(block, block.data, wide ? SmbRowSpan(kConnect) : kConnectOem);
}

void TreeConnectResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kConnectResult); }
void TreeConnectAndXRequestWords(SmbBlock& block) { ShowSmbRows(block, block.words, kConnectAndX); }

void TreeConnectAndXRequestData(SmbBlock& block) {
  AddSmbBytes(block.in, block.data, SmbWord(block, 3), "Password");
  ShowSmbRows(block, block.data, kConnectAndXNames);
}

void TreeConnectAndXResponseWords(SmbBlock& block) { ShowSmbRows(block, block.words, kConnectAndXResult); }
void TreeConnectAndXResponseData(SmbBlock& block) { ShowSmbRows(block, block.data, kConnectAndXService); }

}  // namespace qxview
