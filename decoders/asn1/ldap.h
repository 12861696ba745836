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
// Every message is laid out by tables of fields (ber_rows.h); what is read ahead for a line's text is read from the
// same octets that are shown under the line. Lines keep to the bounds of their enclosing element.
#pragma once
#include "decoders/asn1/ber_rows.h"

namespace qxview {

constexpr uint32_t kLdapSet = 0x31, kLdapControls = 0xA0;
constexpr int32_t kLdapTextSize = 240;      // texts of titled lines, terminator included

constexpr BerTitles kLdapTitles{"Partial Data", "More Elements", kLdapTextSize};

// --- what lines say of elements ---

void DescribeText(const Cursor& contents, char* out, int32_t size);
void DescribeTexts(const Cursor& contents, char* out, int32_t size);       // the strings inside: "cn, sn"
void DescribeAttribute(const Cursor& contents, char* out, int32_t size);   // "cn = Ann, Bob"
void DescribeAttributes(const Cursor& contents, char* out, int32_t size);  // their names: "cn, sn"
void DescribeAssertion(const Cursor& contents, char* out, int32_t size);   // "cn=Ann"
void DescribeExtension(const Cursor& contents, char* out, int32_t size);   // "1.3.6.1.1.8 = Cancel"
void DescribeUuid(const Cursor& contents, char* out, int32_t size);        // 16 octets as they stand (RFC 4122)
void DescribeGuid(const Cursor& contents, char* out, int32_t size);        // first three numbers low octet first
void DescribeSid(const Cursor& contents, char* out, int32_t size);         // "S-1-5-21-..."
// RFC 4515: "(&(cn=A*)(!(sn=B)))", of the element at the cursor.
void DescribeFilter(const Cursor& filter, char* out, int32_t size);

// --- types of fields ---

inline constexpr BerType kLdapNumber = NumberOf(), kLdapText = TextBy(DescribeText), kLdapFlag{BerForm::kBoolean};
inline constexpr BerType kLdapOidText = TextBy(DescribeExtension);

// --- messages ---

// The operation at the cursor; false for what is none.
bool ShowOperation(BerWalk& walk, const Place& in, Cursor& c);
extern const BerType kLdapEntry;   // name and attributes, of search entries and of controls that read one
extern const BerType kLdapNames;   // selected attributes

void ShowFilter(BerWalk& walk, const Place& in, Cursor& c, const char* title);
inline constexpr BerType kLdapFilter{.form = BerForm::kShown, .show = ShowFilter};

// Whether a message starts at the cursor: a sequence, its ID, an operation. `message` is the sequence.
bool StartsMessage(const Cursor& c, BerElement& message);
// What one line says of a message: operation, ID, names, result.
void DescribeMessage(const BerElement& message, char* out, int32_t size);
// The message's top line and all lines under it.
void ShowLdapMessage(const Place& at, const BerElement& message, BerWalk& walk);
// The messages one behind the other from the cursor on, which then stands behind the last; false when that is cut.
bool ShowLdapMessages(const Place& at, Cursor& c, BerWalk& walk);

// A buffer of a security layer at the cursor, with the messages in it that are not encrypted. False, and nothing is
// taken, for anything else.
bool ShowSaslBuffer(const Place& at, Cursor& c, BerWalk& walk);

// What the value of an extended operation or a control holds: the fields of a SEQUENCE, or other elements. Both may be
// null, for a string.
struct LdapValue {
  const BerType* sequence = nullptr;
  const BerType* other = nullptr;
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
void ShowExtensionValue(BerWalk& walk, const Place& in, Cursor& c, uint32_t tag, const char* title,
                        const LdapValue& value);
void ShowControls(BerWalk& walk, const Place& in, Cursor& c);

// A whole payload: messages, SASL buffers, the middle of a message. Result: 1; 0 for bytes that are none of them; 2
// when the last message goes on behind the payload.
int32_t DecodeLdap(const Place& at, Cursor c);

}  // namespace qxview
