// NetWare's internetwork protocol: what IPX carries, which its sockets and packet types tell.
#pragma once
#include "core/rows.h"

namespace qxview {

// The name of a socket; null for one that has none. As a text "Dynamic" then, in the range that clients take theirs
// from, or "Unknown".
const char* IpxSocketName(uint32_t socket);
const char* IpxSocketText(uint32_t socket);

// The sockets of SMB without NetBIOS, and of its messages about names.
inline bool IsNwlinkSmbSocket(uint32_t socket) { return socket >= 0x0550 && socket <= 0x0555; }

// A row of a network number: eight hexadecimal digits, as networks are configured.
void AddIpxNetworkLine(const Place& in, const Field& network, const char* label);
consteval RowData IpxNetwork(const char* label) { return Shown(4, label, AddIpxNetworkLine); }

int32_t DecodeIpx(const Place& at, Cursor c);
int32_t DecodeSpx(const Place& at, Cursor c);
int32_t DecodeIpxRip(const Place& at, Cursor c);
int32_t DecodeIpxSap(const Place& at, Cursor c);
int32_t DecodeIpxDiagnosticRequest(const Place& at, Cursor c);
int32_t DecodeIpxDiagnosticResponse(const Place& at, Cursor c);
int32_t DecodeIpxNetBios(const Place& at, Cursor c);
int32_t DecodeIpxNetBiosBroadcast(const Place& at, Cursor c);   // behind the networks that the broadcast came through
int32_t DecodeNwlinkSmb(const Place& at, Cursor c);

}  // namespace qxview
