// The Basic Encoding Rules of ASN.1 (ITU-T X.690): one decoder for each type, each showing an element as its type, its
// length and its value.
//
//   identifier           length                              contents
//   class (bits 8-7)     0xxxxxxx: 0 to 127                  as many octets as the length says
//   constructed (6)      1nnnnnnn: n octets of length follow
//   tag number (5-1)
//
// Identifiers are one octet: tag number 31 is shown as it is and what follows it is read as a length. Numbers are
// unsigned, high octet first, and keep their last four octets. Nothing here recurses: whoever knows the shape of a
// message walks its nesting.
//
// Every decoder takes the place for its lines and a cursor at the identifier that ends where the enclosing span does.
// The cursor goes on behind what was taken, which for a result other than 1 is what was there of it.
#pragma once
#include "core/decoder.h"
#include "decoders/common/ber_reader.h"

namespace qxview {

// The results of every element decoder.
enum AsnStatus : int32_t {
  kAsnNotThisType = 0,   // another identifier, or a length of 2^31 and more
  kAsnDecoded = 1,
  kAsnTruncated = 2,     // the length or the contents run past the span
  kAsnUnnamed = 5,       // object identifiers: decoded; the MIB has no entry and the span goes on
};

constexpr uint32_t kAsnNoValue = 0xFFFFFFFF;      // the number of an element without contents
constexpr int32_t kAsnTextSize = 1024;            // value texts
constexpr int32_t kAsnShortTextSize = 64;         // texts for parent lines

constexpr int32_t kDeepestAsnLevel = kImageCount - 2 - LevelImage(0);   // the last one with an image of its own

// The place for lines under a line. Images tell more depths apart here than elsewhere; the deepest share the last.
Place Beneath(const Place& at, LineHandle line);

// The outputs of every element decoder. The text is cut to its buffer, which may be absent.
struct AsnResult {
  uint32_t number;       // kAsnNoValue without contents; 0 for contents that are no number
  char* text;
  int32_t textSize;
};

// What string-like decoders take in addition. A null label leaves the parent line as it is.
struct AsnStringForm {
  const char* label;
  char* shortText;
  int32_t shortSize;
  bool forceHex;
};

// What an object identifier is called.
struct AsnObjectNames {
  char dotted[kAsnTextSize];
  char name[kAsnTextSize];   // with the instance; empty without an entry in the MIB
};

// The fields of the length octets. The indefinite form takes the octet behind it as the length and leaves it to the
// contents.
int32_t DecodeAsnLength(const Place& at, Cursor& c, uint32_t* length);
// A titled line over the length octets with their fields under it, " %u Bytes" appended; 0 for a length from 2^31 on.
int32_t DecodeAsnLengthLine(const Place& at, Cursor& c, const char* title);

// Identifier and length of a constructed element whose contents the caller walks. The label may be null.
int32_t DecodeAsnHeader(const Place& at, Cursor& c, const char* label);
// A heading and, under it, the element by its identifier's type. Object identifiers and enumerations are "Undefined"
// here: a message says where it has them.
int32_t DecodeAsnValue(const Place& at, Cursor& c, const char* label, AsnResult& out);

int32_t DecodeAsnBoolean(const Place& at, Cursor& c, AsnResult& out);
int32_t DecodeAsnInteger(const Place& at, Cursor& c, AsnResult& out);
int32_t DecodeAsnBitString(const Place& at, Cursor& c, AsnResult& out);
int32_t DecodeAsnNull(const Place& at, Cursor& c, AsnResult& out);
int32_t DecodeAsnEnumerated(const Place& at, Cursor& c, AsnResult& out);
int32_t DecodeAsnNetworkAddress(const Place& at, Cursor& c, AsnResult& out);
int32_t DecodeAsnCounter(const Place& at, Cursor& c, AsnResult& out);
int32_t DecodeAsnGauge(const Place& at, Cursor& c, AsnResult& out);
int32_t DecodeAsnCounter64(const Place& at, Cursor& c, AsnResult& out);
int32_t DecodeAsnUnsigned32(const Place& at, Cursor& c, AsnResult& out);
int32_t DecodeAsnException(const Place& at, Cursor& c, AsnResult& out);   // the three of RFC 3416
int32_t DecodeAsnUndefined(const Place& at, Cursor& c, AsnResult& out);   // any identifier

// `out.text` is "days:hours:minutes:seconds"; the words go to `longText`, which may be null.
int32_t DecodeAsnTimeTicks(const Place& at, Cursor& c, char* longText, int32_t longSize, AsnResult& out);

int32_t DecodeAsnOctetString(const Place& at, Cursor& c, const AsnStringForm& form, AsnResult& out);
int32_t DecodeAsnGeneralizedTime(const Place& at, Cursor& c, const AsnStringForm& form, AsnResult& out);
int32_t DecodeAsnGeneralString(const Place& at, Cursor& c, const AsnStringForm& form, AsnResult& out);
int32_t DecodeAsnOpaque(const Place& at, Cursor& c, const AsnStringForm& form, AsnResult& out);

// Under an implicit tag the identifier is the message's own and tells nothing of the type, so any is taken. The type
// line names the type that the message's definition gives.
int32_t DecodeAsnImplicitInteger(const Place& at, Cursor& c, AsnResult& out);
int32_t DecodeAsnImplicitBoolean(const Place& at, Cursor& c, AsnResult& out);
int32_t DecodeAsnImplicitString(const Place& at, Cursor& c, const AsnStringForm& form, AsnResult& out);

// `out.text` is the name with its instance, or the dotted number without an entry in the MIB.
int32_t DecodeAsnObjectId(const Place& at, Cursor& c, AsnObjectNames& names, AsnResult& out);

}  // namespace qxview
