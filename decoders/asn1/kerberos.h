// Kerberos version 5 (RFC 4120): messages between clients, key distribution centres and services, with the armor of
// RFC 6113, and the change-password protocol (RFC 3244) on port 464.
//
//   UDP   a message a datagram
//   TCP   length (4 octets), message, length, message ...
//
//   message          [APPLICATION n] SEQUENCE { [0] 5, [1] n, ... }; the first two tags of requests are [1] and [2]
//   change password  length (2, its own octets too), version (2), length of the AP-REQ or AP-REP (2),
//                    AP-REQ or AP-REP, KRB-PRIV; a KRB-ERROR in place of both when that length is 0
#pragma once
#include "core/decoder.h"

namespace qxview {

// A payload of the ports. Result: 1; 0 for bytes that are no message; 2 when the last message is cut. A TCP segment
// that does not begin as a message goes on with one and is shown as data.
int32_t DecodeKerberos(const Place& at, Cursor c);

// One message without a length in front of it, for protocols that carry it: an AP-REQ in a security token. Bytes behind
// it are not looked at.
int32_t DecodeKerberosMessage(const Place& at, Cursor c);

constexpr int32_t kKerberosTextSize = 300;
// What the packet list says of a payload: "AS-REQ, Client=user@EXAMPLE.TEST, Server=krbtgt/EXAMPLE.TEST@EXAMPLE.TEST".
void DescribeKerberosPayload(Cursor c, bool isTcp, char* out, int32_t outSize);

}  // namespace qxview
