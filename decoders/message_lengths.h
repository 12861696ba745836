// How long messages over TCP are, for the rows of the registry: Messages(LengthOf...). Each function is given the bytes
// from a message's start on, as many as there are, and says its length with its header; 0 while they are too few to tell,
// kNoMessage when they start none. They are strict: where a stream is met in its middle, what they take for a header
// decides what is waited for.
#pragma once
#include "core/dispatch.h"

namespace qxview {

int32_t LengthOfDnsOverTcp(const Cursor& c);
int32_t LengthOfDceRpc(const Cursor& c);
int32_t LengthOfNetBiosSession(const Cursor& c);
int32_t LengthOfSmbOverTcp(const Cursor& c);
int32_t LengthOfLdap(const Cursor& c);
int32_t LengthOfKerberosOverTcp(const Cursor& c);
int32_t LengthOfSnmpOverTcp(const Cursor& c);
int32_t LengthOfSmux(const Cursor& c);
int32_t LengthOfDiameter(const Cursor& c);
int32_t LengthOfAgentX(const Cursor& c);
int32_t LengthOfIpfix(const Cursor& c);
int32_t LengthOfTacacsPlus(const Cursor& c);
int32_t LengthOfLdp(const Cursor& c);
int32_t LengthOfBgp(const Cursor& c);
int32_t LengthOfMsdp(const Cursor& c);
int32_t LengthOfDlep(const Cursor& c);
int32_t LengthOfRpkiRtr(const Cursor& c);
int32_t LengthOfBmp(const Cursor& c);
int32_t LengthOfPcep(const Cursor& c);
int32_t LengthOfOpenVpnOverTcp(const Cursor& c);
int32_t LengthOfIpsecOverTcp(const Cursor& c);
int32_t LengthOfTlsRecord(const Cursor& c);
int32_t LengthOfGit(const Cursor& c);
int32_t LengthOfFastCgi(const Cursor& c);
int32_t LengthOfSmpp(const Cursor& c);
int32_t LengthOfAjp(const Cursor& c);
int32_t LengthOfHttp(const Cursor& c);
int32_t LengthOfHttp2(const Cursor& c);
int32_t LengthOfHttpChunks(Cursor c, int64_t before);   // with their trailer, which are `before` bytes into the message
int32_t LengthOfIcap(const Cursor& c);
int32_t LengthOfWebSocket(const Cursor& c);
int32_t LengthOfSip(const Cursor& c);   // and RTSP
int32_t LengthOfSkinny(const Cursor& c);
int32_t LengthOfBfcp(const Cursor& c);
int32_t LengthOfMegaco(const Cursor& c);
int32_t LengthOfXmpp(const Cursor& c);
int32_t LengthOfYmsg(const Cursor& c);
int32_t LengthOfOscar(const Cursor& c);
int32_t LengthOfZ3950(const Cursor& c);
int32_t LengthOfBeep(const Cursor& c);
int32_t LengthOfUcp(const Cursor& c);
int32_t LengthOfHl7(const Cursor& c);
int32_t LengthOfSvn(const Cursor& c);
int32_t LengthOfRelayedMessage(const Cursor& c);

}  // namespace qxview
