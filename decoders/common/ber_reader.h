// Elements of the basic encoding rules (ITU-T X.690) read without lines: to look ahead, to walk the contents of, and
// for the packet list.
//
//   identifier   class (2 bits), constructed (1), tag number (5)
//   length       0xxxxxxx, or 1nnnnnnn and n octets
//   contents     as many octets as the length says
//
// Identifiers are one octet, as they are shown: tag number 31 is one like any other.
#pragma once
#include "core/cursor.h"

namespace qxview {

enum AsnIdentifier : uint32_t {
  kAsnBoolean = 1, kAsnInteger = 2, kAsnBitString = 3, kAsnOctetString = 4, kAsnNull = 5, kAsnObjectId = 6,
  kAsnEnumerated = 10, kAsnGeneralizedTime = 24, kAsnGeneralString = 27, kAsnSequence = 0x30,
  kAsnNetworkAddress = 64, kAsnCounter = 65, kAsnGauge = 66, kAsnTimeTicks = 67, kAsnOpaque = 68,
  kAsnCounter64 = 70, kAsnUnsigned32 = 71,
  kAsnNoSuchObject = 128, kAsnNoSuchInstance = 129, kAsnEndOfMibView = 130,
};

// The octets of a length; of more than four the last four count.
struct BerLength {
  Field first, octets;   // the octets behind the first, of the long form
  uint32_t value;
  bool isLong;
  bool here;
};
BerLength TakeBerLength(Cursor& c);

struct BerElement {
  uint32_t identifier;     // 0 for one that is not here
  Cursor whole, contents;  // cut to what is there; without contents to all that is left for one that is not here
  int64_t size;            // stated: of identifier, length and contents
  bool here;               // identifier and length are there, and the length is definite and below 2^31
};
inline bool IsCut(const BerElement& element) { return element.size > Left(element.whole); }

// The element at the cursor, which goes on behind it; to its end for one that is not here.
BerElement TakeBer(Cursor& c);
inline BerElement PeekBer(Cursor c) { return TakeBer(c); }

// The contents of the next element when it has this identifier; empty otherwise.
Cursor TakeBerContents(Cursor c, uint32_t identifier);
// The contents of the first element with this identifier among those from the cursor on; empty for none, and behind
// many others.
Cursor FindBerContents(Cursor c, uint32_t identifier);

// Contents as characters, and as a number: their last four octets, as they stand and with the sign of the first.
inline TextSlice BerText(const Cursor& contents) { return Text(Ahead(contents, Left(contents))); }
uint32_t BerNumber(const Cursor& contents);
int32_t BerInteger(const Cursor& contents);

}  // namespace qxview
