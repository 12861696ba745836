// NetBIOS over TCP and UDP (RFC 1001, RFC 1002) and over LLC: what its services have in common, its names.
//
// A name has 16 bytes; the last, its suffix, tells the service that goes by the name. Over TCP and UDP it is sent in
// first-level encoding, each half byte as a letter from 'A' on, as the first label of a name in the form of DNS:
//
//   0          1                       31              33
//   20 (32)    30 letters: the name    2: the suffix   further labels: the scope   00
//
// A pointer of two bytes, the upper two bits set, may stand for the rest of a name that was in the message before.
#pragma once
#include "core/decoder.h"

namespace qxview {

constexpr int32_t kNetBiosNameLength = 16;
constexpr int32_t kNetBiosTextSize = 300;   // the longest escapes of a name, and the longest scope

// A name as it is shown: without the blanks at its end, its suffix in angle brackets, then the scope:
// "SERVER<20>.EXAMPLE.TEST". Bytes that cannot be printed stand as hexadecimal in angle brackets, too.
struct NetBiosName {
  ShortText<kNetBiosTextSize> text;
  Field field;        // its bytes where it stands, a pointer's included; not here when the bytes end within it
  uint8_t suffix;
  enum Form : uint8_t { kLabels, kEncoded, kPlain } form;   // kLabels: not in first-level encoding, without a suffix
};

// The next name of a message. Pointers count from the message's first byte and are followed backwards only.
NetBiosName TakeNetBiosName(Cursor& c, const Field& message);

// The next name of 16 plain bytes.
NetBiosName TakePlainNetBiosName(Cursor& c);

// "LABEL: SERVER<20> = File Server Service" with the parts of the name under it. Result: the line.
LineHandle AddNetBiosNameLine(const Place& in, const char* label, const NetBiosName& name, bool isGroup = false);

const char* NetBiosSuffixName(uint32_t suffix, bool isGroup);

int32_t DecodeNetBiosName(const Place& at, Cursor c);       // name service, UDP port 137
int32_t DecodeNetBiosDatagram(const Place& at, Cursor c);   // datagram service, UDP port 138
int32_t DecodeNetBiosSession(const Place& at, Cursor c);    // session service, TCP port 139
int32_t DecodeNetBiosFrame(const Place& at, Cursor c);      // NetBIOS Frames, over LLC

// For the summaries: the kinds of messages. "Unknown" for one that has no name.
const char* NetBiosOperationName(uint32_t operation);
const char* NetBiosResultName(uint32_t result);
const char* NetBiosDatagramTypeName(uint32_t type);
const char* NetBiosSessionTypeName(uint32_t type);

// Whether a segment begins with a session message or goes on with one of an earlier segment.
bool StartsNetBiosSessionMessage(const Cursor& c);

}  // namespace qxview
