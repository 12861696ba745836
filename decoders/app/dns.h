// Domain Name System messages (RFC 1035, RFC 2136 for updates, RFC 3596 for AAAA) and the two multicast protocols that
// share their wire format: Link-Local Multicast Name Resolution (RFC 4795) and Multicast DNS (RFC 6762).
//
//    0           2          4          6          8            10
//    identifier  flags      questions  answers    authorities  additionals    12 bytes, then the four sections
//
//    question:  name, type (2), class (2)
//    record:    name, type (2), class (2), TTL (4), data length (2), data
//    name:      labels (length 1 to 63, characters) up to a zero byte or a pointer (two bytes, the top two bits set)
//               to an earlier name of the message
//
// The bytes come as a Cursor, the lines go under a Place; the cursor of the tree-building pieces stands behind what
// they took. Their result is 1, or 0 for a failure that ends the message.
#pragma once
#include "core/decoder.h"

namespace qxview {

enum DnsVariant : int32_t { kDnsStandard = 0, kDnsLinkLocal = 1, kDnsMulticast = 2 };

constexpr int32_t kDnsHeaderSize = 12;
constexpr int32_t kDnsNameSize = 300;   // an expanded name, terminator included

using DnsNameText = ShortText<kDnsNameSize>;

enum DnsType : uint32_t {
  kDnsTypeA = 1, kDnsTypeNs = 2, kDnsTypeCname = 5, kDnsTypeSoa = 6, kDnsTypePtr = 12, kDnsTypeTxt = 16, kDnsTypeAaaa = 28,
};

inline constexpr auto kDnsOperationNames = SortedNames({
    {0, "Standard Query"}, {1, "Inverse Query"}, {2, "Server Status Query"}, {4, "Notify"}, {5, "Update"}});
constexpr uint32_t kDnsUpdate = 5, kDnsStateful = 6;   // the second is told with all records alone

inline constexpr auto kDnsResultNames = SortedNames({
    {0, "Success"}, {1, "Format Error"}, {2, "Name Server Internal Error"}, {3, "Name Does Not Exist"},
    {4, "Bad Operation Code"}, {5, "Security Rejection"}, {6, "Errant Name Exists"}, {7, "Errant RR Exists"},
    {8, "RR Set Does Not Exist"}, {9, "Server Is Not Authoritative For Zone"}, {10, "Name Not In Zone Section"}});

// "DNS:", "Microsoft LLMNR:" or "Multicast DNS:".
const char* DnsTitle(int32_t variant);

// The value that messages are told apart by: bits 6 to 3 of the second flags byte. It is not the operation code, which
// the flags lines show; users know the traces as this value sorts them.
inline uint32_t DnsDispatchValue(const uint8_t* message) { return message[3] >> 3 & 15; }

// Decodes a payload: the framing of TCP (transport 6; anything else is a datagram), its messages, what is left over.
// Result 1: a decode is never reported as failed.
int32_t DecodeDnsPayload(View* view, const uint8_t* payload, int32_t frameOffset, int32_t length, int32_t level,
                         int32_t transport, int32_t variant);

// A message while it is decoded.
struct DnsMessage {
  const uint8_t* start;   // offset 0 of compression pointers
  int32_t length;         // to the payload's end: nothing in a message says where it ends
  LineHandle topLine;
  bool isResponse;
  int32_t* hopsLeft;
  bool hasAllRecords = false;   // the user wants every record taken apart, and its fields read by today's RFCs
  bool isMulticast = false;     // multicast DNS, whose classes have a flag in their top bit
};

// The header and the four sections under the message's top line. After a failure the cursor stands behind the last
// entry that was good.
int32_t DecodeDnsMessage(const Place& at, Cursor& c, DnsMessage& message, int32_t variant);
int32_t DecodeDnsUpdateMessage(const Place& at, Cursor& c, DnsMessage& message);

// One entry of the question (or zone) section; `number` counts from 1.
int32_t DecodeDnsQuestion(const Place& at, Cursor& c, DnsMessage& message, const char* section, uint32_t number);

// One resource record. `answersQuery`: an answer of a response, which the top line repeats.
int32_t DecodeDnsResourceRecord(const Place& at, Cursor& c, DnsMessage& message, const char* section, uint32_t number,
                                bool answersQuery);

// The lines of the encoded name at the cursor. Its text is also appended to the line that `at` is the place under.
int32_t DecodeDnsNameField(const Place& at, Cursor& c, DnsMessage& message, const char* title);

// The name at the cursor as text; 0 for a pointer that is rejected.
int32_t ExpandNameAt(const DnsMessage& message, const Cursor& c, DnsNameText& name);

// Writes the encoded name at `cursor` as dotted text. `message` is offset 0 of pointers, `nameOffset` the name's offset
// in it: a pointer must lead below. `available` bytes are readable at `cursor`. `following` is set for a name that a
// pointer led to: its text is appended to what `out` holds. `strict` rejects a label that would end beyond `cursor`.
// Type and class behind the name are stored when they are there; `consumedOut` is the bytes of the name in place with
// them. The three may be null. Result: 1, or 0 for a rejected pointer.
int32_t ExpandDnsName(const uint8_t* message, const uint8_t* cursor, int32_t available, int32_t nameOffset,
                      int32_t following, int32_t strict, char* out, int32_t outSize, uint16_t* typeOut,
                      uint16_t* classOut, int32_t* consumedOut);

// The same for names of a message whose end is known and whose expansions share their hops.
struct DnsNameSource {
  const uint8_t* message;
  int32_t messageLength;   // a pointed name is read up to there
  const uint8_t* cursor;
  int32_t available;
  int32_t nameOffset;
  bool following;
  bool strict;
  int32_t* hopsLeft;
};
struct DnsNameTail {
  uint16_t type = 0;
  uint16_t recordClass = 0;
  int32_t consumed = 0;
  bool typed = false;   // type and class are there
};
int32_t ExpandName(const DnsNameSource& source, char* out, int32_t outSize, DnsNameTail* tail);

// The dot-separated parts in reverse order; a name without a dot gets one behind it. Result 0 for an empty name.
int32_t ReverseDottedName(const char* name, char* out, int32_t outSize);

// The 16 bytes of an address as AAAA lines show them: two digits a byte, each run of zero bytes as "::".
constexpr int32_t kDnsIPv6TextSize = 34;
ShortText<kDnsIPv6TextSize> DnsIPv6Text(const uint8_t* address);
const char* DnsIPv6Class(const uint8_t* address);

}  // namespace qxview
