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
// Every decoder takes the place for its lines and a cursor at the identifier that ends where the enclosing span does,
// and leaves the cursor alone: `consumed` says how far to go on.
#pragma once
#include "core/decoder.h"

namespace qxview {

// The results of every element decoder.
enum AsnStatus : int32_t {
  kAsnNotThisType = 0,   // another identifier, or a length of 2^31 and more
  kAsnDecoded = 1,
  kAsnTruncated = 2,     // the length or the contents run past the span
  kAsnUnnamed = 5,       // object identifiers: decoded; the MIB has no entry and the span goes on
};

enum AsnIdentifier : uint32_t {
  kAsnBoolean = 1, kAsnInteger = 2, kAsnBitString = 3, kAsnOctetString = 4, kAsnNull = 5, kAsnObjectId = 6,
  kAsnEnumerated = 10, kAsnGeneralizedTime = 24, kAsnGeneralString = 27, kAsnSequence = 0x30,
  kAsnNetworkAddress = 64, kAsnCounter = 65, kAsnGauge = 66, kAsnTimeTicks = 67, kAsnOpaque = 68,
  kAsnCounter64 = 70, kAsnUnsigned32 = 71,
  kAsnNoSuchObject = 128, kAsnNoSuchInstance = 129, kAsnEndOfMibView = 130,
};

constexpr uint32_t kAsnNoValue = 0xFFFFFFFF;      // the number of an element without contents
constexpr int32_t kAsnTextSize = 1024;            // value texts
constexpr int32_t kAsnShortTextSize = 64;         // texts for parent lines
constexpr int32_t kAsnClassTextSize = 23;         // "[Context-Specific 31]", and one to spare
constexpr int32_t kAsnDepths = 13;                // depths that have an image

// Where an element's lines go: under parents[depth], as lines of depth + 1 with the image of level base + depth + 1.
// Decoders enter the lines of deeper depths themselves. Without parents nothing is added and the outputs are all; the
// view is needed all the same.
struct AsnPlace {
  View* view;
  DecodeTree* tree;
  LineHandle* parents;   // kAsnDepths of them, or null
  int32_t base;
  int32_t depth;
};

// The outputs of every element decoder. The text is cut to its buffer, which may be absent.
struct AsnResult {
  uint32_t number;       // kAsnNoValue without contents; 0 for contents that are no number
  char* text;
  int32_t textSize;
  int32_t consumed;      // octets of identifier, length and contents; of what was there when the status is not 1
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

// The place for the lines under parents[depth], and the place under such a line.
Place LinesOf(const AsnPlace& at);
AsnPlace Beneath(const AsnPlace& at, LineHandle line);

// The three fields of the identifier. The text is "[Universal 2]"; 0 for a buffer below kAsnClassTextSize.
int32_t DecodeAsnIdentifier(const AsnPlace& at, const Cursor& c, AsnResult& out);
// The length octets: `number` is the length. The indefinite form takes the octet behind it as the length and leaves it
// to the contents.
int32_t DecodeAsnLength(const AsnPlace& at, const Cursor& c, AsnResult& out);

// An element taken without lines, to look ahead and to walk the contents of.
struct AsnSpan {
  uint32_t identifier;
  Cursor whole, contents;   // from the identifier and from behind the length on, to the end of what is there of it
  bool here;                // identifier and length are there, and the length is below 2^31
  bool cut;                 // the contents run past the span
};
// The cursor goes on behind the element; to its end for an element that is not here.
AsnSpan TakeAsnElement(Cursor& c);

// A titled line over the length octets with their fields under it, " %u Bytes" appended; 0 for a length from 2^31 on.
int32_t DecodeAsnLengthLine(const AsnPlace& at, const Cursor& c, const char* title, AsnResult& out);

// Identifier and length of a constructed element whose contents the caller walks; `number` is the length. The label
// may be null.
int32_t DecodeAsnHeader(const AsnPlace& at, const Cursor& c, const char* label, AsnResult& out);
// A heading and, under it, the element by its identifier's type. Object identifiers and enumerations are "Undefined"
// here: a message says where it has them.
int32_t DecodeAsnValue(const AsnPlace& at, const Cursor& c, const char* label, AsnResult& out);
// A header and the value inside.
int32_t DecodeAsnElement(const AsnPlace& at, const Cursor& c, const char* label, AsnResult& out);

int32_t DecodeAsnBoolean(const AsnPlace& at, const Cursor& c, AsnResult& out);
int32_t DecodeAsnInteger(const AsnPlace& at, const Cursor& c, AsnResult& out);
int32_t DecodeAsnBitString(const AsnPlace& at, const Cursor& c, AsnResult& out);
int32_t DecodeAsnNull(const AsnPlace& at, const Cursor& c, AsnResult& out);
int32_t DecodeAsnEnumerated(const AsnPlace& at, const Cursor& c, AsnResult& out);
int32_t DecodeAsnNetworkAddress(const AsnPlace& at, const Cursor& c, AsnResult& out);
int32_t DecodeAsnCounter(const AsnPlace& at, const Cursor& c, AsnResult& out);
int32_t DecodeAsnGauge(const AsnPlace& at, const Cursor& c, AsnResult& out);
int32_t DecodeAsnCounter64(const AsnPlace& at, const Cursor& c, AsnResult& out);
int32_t DecodeAsnUnsigned32(const AsnPlace& at, const Cursor& c, AsnResult& out);
int32_t DecodeAsnException(const AsnPlace& at, const Cursor& c, AsnResult& out);   // the three of RFC 3416
int32_t DecodeAsnUndefined(const AsnPlace& at, const Cursor& c, AsnResult& out);   // any identifier

// `out.text` is "days:hours:minutes:seconds"; the words go to `longText`, which may be null.
int32_t DecodeAsnTimeTicks(const AsnPlace& at, const Cursor& c, char* longText, int32_t longSize, AsnResult& out);

int32_t DecodeAsnOctetString(const AsnPlace& at, const Cursor& c, const AsnStringForm& form, AsnResult& out);
int32_t DecodeAsnGeneralizedTime(const AsnPlace& at, const Cursor& c, const AsnStringForm& form, AsnResult& out);
int32_t DecodeAsnGeneralString(const AsnPlace& at, const Cursor& c, const AsnStringForm& form, AsnResult& out);
int32_t DecodeAsnOpaque(const AsnPlace& at, const Cursor& c, const AsnStringForm& form, AsnResult& out);

// Under an implicit tag the identifier is the message's own and tells nothing of the type, so any is taken. The type
// line names the type that the message's definition gives.
int32_t DecodeAsnImplicitInteger(const AsnPlace& at, const Cursor& c, AsnResult& out);
int32_t DecodeAsnImplicitBoolean(const AsnPlace& at, const Cursor& c, AsnResult& out);
int32_t DecodeAsnImplicitString(const AsnPlace& at, const Cursor& c, const AsnStringForm& form, AsnResult& out);

// `out.text` is the name with its instance, or the dotted number without an entry in the MIB.
int32_t DecodeAsnObjectId(const AsnPlace& at, const Cursor& c, AsnObjectNames& names, AsnResult& out);

}  // namespace qxview
