// The shapes of Kerberos messages: tables of rows (ber_rows.h). Nearly all types are SEQUENCEs of fields with explicit
// tags, so that a field is told by its tag alone:
//
//   A1 05                     [1], 5 octets: the field's tag
//      02 03 01 00 01         the element, of the field's type
#pragma once
#include "decoders/asn1/ber_rows.h"

namespace qxview {

constexpr BerTitles kKrbTitles{"Truncated Data", "Further Data", kShortLineSize};

// What choices hang on: the message answers, which tells what fast armor holds; it is of the change-password protocol,
// which tells what the data of KRB-ERROR holds.
enum KrbContext : uint32_t { kKrbReply = 1, kKrbPassword = 2 };

// The type of a message or another [APPLICATION n] type, by its identifier octet; null for none of Kerberos.
const BerType* FindKrbMessage(uint32_t identifier);

// What pre-authentication data, typed data and authorization data hold, by their code; null for plain octets.
const BerType* ChoosePaValue(const BerWalk& walk, const Cursor& contents);
const BerType* ChooseAuthorization(const BerWalk& walk, const Cursor& contents);
// What the data of KRB-ERROR holds: the shape tells, as codes do not for every implementation.
const BerType* ChooseErrorData(const BerWalk& walk, const Cursor& contents);

extern const BerType kKrbAuthorizationData;
extern const BerType kKrbMethodData, kKrbTypedData, kKrbExtendedErrorData, kKrbPasswordResult;
extern const BerType kKrbTicket;

// The texts that records are known by.
void DescribePrincipal(const Cursor& fields, char* out, int32_t outSize);      // "krbtgt/EXAMPLE.TEST"
void DescribeTicket(const Cursor& fields, char* out, int32_t outSize);         // "krbtgt/EXAMPLE.TEST@EXAMPLE.TEST"
void DescribeAddress(const Cursor& fields, char* out, int32_t outSize);
void DescribeEncryption(const Cursor& fields, char* out, int32_t outSize);     // the etype of EncryptedData and keys
void DescribeChecksum(const Cursor& fields, char* out, int32_t outSize);
void DescribePaData(const Cursor& fields, char* out, int32_t outSize);
void DescribeAuthorization(const Cursor& fields, char* out, int32_t outSize);

// Of a record's field with this tag: the element inside, its number and its text; empty and 0 for none.
inline Cursor KrbFieldOf(const Cursor& fields, uint32_t tag) { return FindBerContents(fields, 0xA0 | tag); }
uint32_t KrbCodeOf(const Cursor& fields, uint32_t tag);
TextSlice KrbTextOf(const Cursor& fields, uint32_t tag);

// Octets that are no encoding.
void ShowPasswordResult(BerWalk& walk, const Place& at, Cursor& c, const char* title);
void ShowEncryptionSet(BerWalk& walk, const Place& at, Cursor& c, const char* title);
void ShowExtendedError(BerWalk& walk, const Place& at, Cursor& c, const char* title);

}  // namespace qxview
