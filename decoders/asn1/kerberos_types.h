// The shapes of Kerberos messages: a table a type, walked by kerberos_walk.cpp.
//
// Nearly all types are SEQUENCEs of fields with explicit tags, so that a field is told by its tag alone:
//
//   A1 05                     [1], 5 octets: the field's tag
//      02 03 01 00 01         the element, of the field's type
#pragma once
#include "decoders/asn1/ber.h"

namespace qxview {

struct KrbType;
struct KrbWalk;

enum class KrbForm : uint8_t {
  kNumber,    // INTEGER, unsigned
  kCode,      // INTEGER with a sign and names
  kBoolean,
  kText,      // GeneralString
  kTime,      // GeneralizedTime
  kOctets,    // OCTET STRING; what it holds may hang on the code of the record it stands in
  kFlags,     // BIT STRING with a name a bit
  kRaw,       // no element at all: octets that `show` takes apart
  kRecord,    // SEQUENCE of tagged fields
  kList,      // SEQUENCE OF
  kTagged,    // [APPLICATION n] around a record
  kChoice,    // one tagged field without a SEQUENCE around it
};

struct KrbField {
  uint32_t tag;
  const char* label;
  const KrbType* type;
};

// The text that a record is known by, from its fields.
using KrbDescribe = void (*)(const Cursor& fields, char* out, int32_t outSize);
// What an octet string holds; null for octets that are shown as they are. `code` is the record's last code.
using KrbChoose = const KrbType* (*)(const KrbWalk& walk, uint32_t code, const Cursor& contents);
using KrbShow = void (*)(const Place& at, Cursor c);

struct KrbType {
  KrbForm form;
  uint32_t identifier;                     // what its elements start with; 0: any
  const char* label = nullptr;             // of an octet string's block, of a list's elements, of a tagged type
  const KrbField* fields = nullptr;
  int32_t fieldCount = 0;
  const KrbType* inner = nullptr;          // of a list's elements, of a tagged type
  const NameTableEntry* names = nullptr;
  int32_t nameCount = 0;
  const char* const* bits = nullptr;       // 32 names, the first bit's first; null where nothing is assigned
  KrbDescribe describe = nullptr;
  KrbChoose choose = nullptr;
  KrbShow show = nullptr;
};

// The type of a message or another [APPLICATION n] type, by its identifier octet; null for none of Kerberos.
const KrbType* FindKrbMessage(uint32_t identifier);

// What pre-authentication data, typed data and authorization data hold, by their type; null for plain octets.
const KrbType* ChoosePaValue(const KrbWalk& walk, uint32_t code, const Cursor& contents);
const KrbType* ChooseAuthorization(const KrbWalk& walk, uint32_t code, const Cursor& contents);
// What the data of KRB-ERROR holds: the shape tells, as codes do not for every implementation.
const KrbType* ChooseErrorData(const KrbWalk& walk, uint32_t code, const Cursor& contents);

extern const KrbType kKrbAuthorizationData;
extern const KrbType kKrbMethodData, kKrbTypedData, kKrbExtendedErrorData, kKrbPasswordResult;
extern const KrbType kKrbTicket;

// The texts that records are known by.
void DescribePrincipal(const Cursor& fields, char* out, int32_t outSize);      // "krbtgt/EXAMPLE.TEST"
void DescribeTicket(const Cursor& fields, char* out, int32_t outSize);         // "krbtgt/EXAMPLE.TEST@EXAMPLE.TEST"
void DescribeAddress(const Cursor& fields, char* out, int32_t outSize);
void DescribeEncryption(const Cursor& fields, char* out, int32_t outSize);     // the etype of EncryptedData and keys
void DescribeChecksum(const Cursor& fields, char* out, int32_t outSize);
void DescribePaData(const Cursor& fields, char* out, int32_t outSize);
void DescribeAuthorization(const Cursor& fields, char* out, int32_t outSize);

// Octets that are no encoding.
void ShowPasswordResult(const Place& at, Cursor c);
void ShowEncryptionSet(const Place& at, Cursor c);
void ShowExtendedError(const Place& at, Cursor c);

}  // namespace qxview
