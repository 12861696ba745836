// Lightweight Directory Access Protocol, version 3 (RFC 4511), over TCP and, without a connection, over UDP.
//
//   message    SEQUENCE { message ID, operation, controls [0] }
//   operation  an application tag: SEQUENCE-like fields, or one value (unbind, delete, abandon)
//   result     { ENUMERATED code, matched DN, diagnostic message, referral [3] }, in every response but search entries
//   control    SEQUENCE { OID as text, criticality, OCTET STRING { a BER value of its own } }
//   filter     and [0], or [1], not [2] around filters; [3] to [9] around an attribute and what it is compared with
//
// Messages stand one behind the other. A connection with a SASL security layer (RFC 4422) carries buffers instead: four
// octets of length, then the octets of the mechanism, with messages inside when it signs and does not encrypt.
//
// Every message is laid out by tables of fields (LdapField); what is read ahead for a line's text is read from the same
// octets that the walker shows under the line. Lines keep to the bounds of their enclosing element.
#pragma once
#include "decoders/asn1/ber.h"

namespace qxview {

constexpr uint32_t kLdapSet = 0x31, kLdapControls = 0xA0;
constexpr int32_t kLdapTextSize = 240;      // texts of titled lines, terminator included
constexpr int32_t kMostLdapElements = 8192; // of one payload that get lines; what follows is dumped
constexpr int32_t kMostFilterDepth = 64;    // filters nested deeper are dumped

// An element read ahead of its lines.
struct LdapElement {
  uint32_t identifier;
  Cursor whole;     // from the identifier on, cut to what is there
  Cursor body;      // the contents, cut likewise
  int64_t size;     // declared, of identifier, length and contents
  bool here;        // with a definite length below 2^31; LDAP knows no other
};
LdapElement PeekElement(const Cursor& c);
inline bool IsCut(const LdapElement& element) { return element.size > Left(element.whole); }
uint32_t NumberIn(const LdapElement& element);   // the contents' last four octets

// The walk through a payload's elements: the next one is at the cursor, which ends where the enclosing element does.
struct LdapWalk {
  AsnPlace at;
  Cursor c;
  int32_t* elementsLeft;
};
inline Place LinesOf(const LdapWalk& walk) { return LinesOf(walk.at); }

// The text of an element for its line, in `out` of `size` bytes.
using LdapDescribe = void (*)(const LdapElement& element, char* out, int32_t size);
using LdapName = const char* (*)(uint32_t number);

struct LdapField;
struct LdapGrammar {
  const LdapField* fields;
  int32_t count;
  bool repeats;   // the fields again and again
};

// A field of a sequence. Fields whose identifier is not the next one are absent.
struct LdapField {
  enum Kind : uint8_t {
    kText,     // an octet string, plain or under a tag
    kNumber,   // INTEGER, ENUMERATED or tagged; with a name: "[2] = Subtree"
    kFlag,     // BOOLEAN, plain or tagged
    kGroup,    // constructed, laid out by `inner`
    kFilter,
    kShown,    // constructed, or a string with elements inside: by `show`, which gets the walk through the contents
  };
  uint32_t identifier;
  Kind kind;
  const char* title;
  LdapDescribe describe = nullptr;          // texts: what stands in place of the characters; groups: the line's text
  const LdapGrammar* inner = nullptr;
  LdapName name = nullptr;
  void (*show)(LdapWalk& walk) = nullptr;
};

// The steps of a walk: a titled line over the element at the cursor, its type, length and value under it. The cursor
// moves behind the element. False, and nothing is taken, without an element or past the bound of elements.
bool StepField(LdapWalk& walk, const LdapField& field);
bool StepFilter(LdapWalk& walk, const char* title);
// The line and header of a constructed element, and the walk through its contents.
bool StepInto(LdapWalk& walk, const char* title, const char* text, LdapWalk& inner);
// Type and length of the element at the cursor as lines of their own, and the walk through its contents beside them.
bool StepHeader(LdapWalk& walk, const char* label, LdapWalk& inner);

// The fields that are there, in their order; then what no field explains, as a dump.
void WalkGrammar(LdapWalk& walk, const LdapGrammar& grammar);
void ShowUnexplained(LdapWalk& walk);

// --- what lines say of elements ---

void DescribeText(const LdapElement& element, char* out, int32_t size);
void DescribeTexts(const LdapElement& element, char* out, int32_t size);       // the strings inside: "cn, sn"
void DescribeAttribute(const LdapElement& element, char* out, int32_t size);   // "cn = Ann, Bob"
void DescribeAttributes(const LdapElement& element, char* out, int32_t size);  // their names: "cn, sn"
void DescribeAssertion(const LdapElement& element, char* out, int32_t size);   // "cn=Ann"
void DescribeFilter(const LdapElement& element, char* out, int32_t size);      // RFC 4515: "(&(cn=A*)(!(sn=B)))"
void DescribeExtension(const LdapElement& element, char* out, int32_t size);   // "1.3.6.1.1.8 = Cancel"
void DescribeUuid(const LdapElement& element, char* out, int32_t size);        // 16 octets as they stand (RFC 4122)
void DescribeGuid(const LdapElement& element, char* out, int32_t size);        // first three numbers low octet first
void DescribeSid(const LdapElement& element, char* out, int32_t size);         // "S-1-5-21-..."

// --- messages ---

// The fields of the operation at the cursor; false for what is no operation.
bool WalkOperation(LdapWalk& walk);
extern const LdapGrammar kLdapEntryGrammar;   // name and attributes, of search entries and of controls that read one
extern const LdapGrammar kLdapTextsGrammar;   // selected attributes

// Whether a message starts at the cursor: a sequence, its ID, an operation. `message` is the sequence.
bool StartsMessage(const Cursor& c, LdapElement& message);
// What one line says of a message: operation, ID, names, result.
void DescribeMessage(const LdapElement& message, char* out, int32_t size);
// The message's top line and all lines under it.
void ShowLdapMessage(const Place& at, const LdapElement& message, int32_t* elementsLeft);
// The messages one behind the other from the cursor on, which then stands behind the last; false when that is cut.
bool ShowLdapMessages(const Place& at, Cursor& c, int32_t* elementsLeft);

// A buffer of a security layer at the cursor, with the messages in it that are not encrypted. False, and nothing is
// taken, for anything else.
bool ShowSaslBuffer(const Place& at, Cursor& c, int32_t* elementsLeft);

// What the value of an extended operation or a control holds: the fields of a SEQUENCE, or other elements. Both may be
// null, for a string.
struct LdapValue {
  const LdapGrammar* sequence = nullptr;
  const LdapGrammar* other = nullptr;
};
struct LdapOid {
  template <size_t kSize>
  constexpr LdapOid(const char (&dotted)[kSize])   // NOLINT: implicit by design
      : text(dotted), length(static_cast<int32_t>(kSize) - 1) {}
  const char* text;
  int32_t length;
};
struct LdapExtension {
  LdapOid oid;
  const char* name;
  LdapValue request;    // of controls both ways
  LdapValue response;
};
const LdapExtension* FindLdapExtension(const Cursor& oid);                    // of an extended operation; null for none
const LdapExtension* FindPasswordModify();
const char* LdapExtensionName(const Cursor& oid);                             // null for unknown ones
void StepExtensionName(LdapWalk& walk, uint32_t identifier, const char* title);
void StepExtensionValue(LdapWalk& walk, uint32_t identifier, const char* title, const LdapValue& value);
void WalkControls(LdapWalk& walk);

// The value of the attribute that a domain controller answers a UDP search with: which one it is and of what domain.
void ShowNetlogon(LdapWalk& walk);

// A whole payload: messages, SASL buffers, the middle of a message. Result: 1; 0 for bytes that are none of them; 2
// when the last message goes on behind the payload.
int32_t DecodeLdap(const Place& at, Cursor c);

}  // namespace qxview
