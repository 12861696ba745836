// One-line summaries for the packet list: each from a payload alone, without a view, state between calls or allocation.
#pragma once
#include <cstdint>

#include "core/tls_stream.h"
#include "qxview/qxview_types.h"

namespace qxview {

using ::TextBuffer;

// The summary of a DNS message. `transport` is 6 for TCP or 17 for UDP; `lengthHint` minus 4 is the greatest length
// prefix that is taken for one on TCP; `variant` is 0 DNS, 1 LLMNR, 2 multicast DNS. Result: 0 when the data or the
// summary is missing or the length is below 1, else 1. Writes within the summary's capacity, whose last byte is
// always 0; a capacity of 0 takes nothing.
int32_t DescribeDns(const uint8_t* data, int32_t length, TextBuffer* summary, int32_t transport, uint16_t lengthHint,
                    int32_t variant);

// ---- Members that write into a plain buffer: `out` of `outSize` bytes, emptied first, cut to fit, always terminated.
// Result: 0 when the data or the output is missing or a size is below 1, and where told; else 1. Data that fit no rule
// get the protocol's "Data" text, so that a summary of a payload is never empty.

// FTP (RFC 959). `messageLimit`: characters of a reply's text that are shown; 0 none, negative what fits. 0 for an empty
// first line, but not on a data connection.
int32_t DescribeFtp(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t messageLimit,
                    int32_t isDataConnection);

// SMTP (RFC 5321). `messageLimit`: characters of the text behind the code or command; 0 none, negative 300.
int32_t DescribeSmtp(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t messageLimit);

// POP3 (RFC 1939). 0 for an empty first line.
int32_t DescribePop3(const uint8_t* data, int32_t length, char* out, int32_t outSize);

// Telnet (RFC 854). `commandLimit`: commands shown, -1 for all. `dataLimit`: characters of text shown; 0 none, negative
// what fits. With `printableOnly` and `cleanText` unprintable characters are left out, else they are shown as '.'.
int32_t DescribeTelnet(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t commandLimit,
                       int32_t dataLimit, int32_t printableOnly, bool cleanText);

// TLS and SSL. `port`: names what its application data carry. `stream` may be null; it is brought up to date.
int32_t DescribeTls(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t port, TlsStream* stream);

// TDS (MS-TDS) and TNS. `flag`: not 0 adds the numbers of process and packet.
int32_t DescribeTds(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t flag);
int32_t DescribeTns(const uint8_t* data, int32_t length, char* out, int32_t outSize);

// SIP (RFC 3261). `flag`: not 0 adds the call's identifier. 0, with an empty text, for what is no SIP message.
int32_t DescribeSip(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t flag);

// RTSP (RFC 7826). 0 for an empty first line.
int32_t DescribeRtsp(const uint8_t* data, int32_t length, char* out, int32_t outSize);

// SCCP, and the text form of Megaco/H.248 (RFC 3525).
int32_t DescribeSccp(const uint8_t* data, int32_t length, char* out, int32_t outSize);
int32_t DescribeMegaco(const uint8_t* data, int32_t length, char* out, int32_t outSize);

// SNMP (RFC 1157, RFC 3416, RFC 3412) and LDAP (RFC 4511).
int32_t DescribeSnmp(const uint8_t* data, int32_t length, char* out, int32_t outSize);
int32_t DescribeLdap(const uint8_t* data, int32_t length, char* out, int32_t outSize);

// H.323 (ITU-T H.225.0, Q.931, H.245). `flag`: not 0 adds the request's number.
int32_t DescribeH323HostCall(const uint8_t* data, int32_t length, char* out, int32_t outSize);
int32_t DescribeH323Gatekeeper(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t flag);
int32_t DescribeH245(const uint8_t* data, int32_t length, char* out, int32_t outSize);

// SMB of both versions. `directTcp`: a session header stands in front. `continuationAllowed`: a payload without the
// marker is "SMB/CIFS Continuation"; without it the result is 0.
int32_t DescribeSmb(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t directTcp,
                    int32_t continuationAllowed);

// CGP, IAX2 (RFC 5456), BitTorrent peers (BEP 3), frames for a wireless intrusion detection server, the line printer
// daemon (RFC 1179), UNIStim phones.
int32_t DescribeCgp(const uint8_t* data, int32_t length, char* out, int32_t outSize);
int32_t DescribeIax2(const uint8_t* data, int32_t length, char* out, int32_t outSize);
int32_t DescribeBitTorrent(const uint8_t* data, int32_t length, char* out, int32_t outSize);
int32_t DescribeWirelessIds(const uint8_t* data, int32_t length, char* out, int32_t outSize);
int32_t DescribeLpd(const uint8_t* data, int32_t length, char* out, int32_t outSize);
int32_t DescribeUnistim(const uint8_t* data, int32_t length, char* out, int32_t outSize);

// Minet phones. `flag`: not 0 adds the payload's length.
int32_t DescribeMinet(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t flag);

// FIX (FIX 4.0 to 5.0): the message type's name, parties and order.
int32_t DescribeFix(const uint8_t* data, int32_t length, char* out, uint16_t outSize);

// ---- Members that write into a TextBuffer: within its capacity, whose last byte is always 0.

// MGCP (RFC 3435); 0 for an empty first line. GIOP (CORBA).
int32_t DescribeMgcp(const uint8_t* data, int32_t length, TextBuffer* summary);
int32_t DescribeGiop(const uint8_t* data, int32_t length, TextBuffer* summary);

}  // namespace qxview
