// The data of DNS records by type, for users who want all records taken apart (the setting DnsRecords).
#pragma once
#include "core/elements.h"
#include "decoders/app/dns.h"

namespace qxview {

// A record's data while they are decoded.
struct DnsData {
  DnsMessage* message = nullptr;   // for the pointers of names
  bool failed = false;             // a name was rejected: the message ends
  Field code, length, flags;
};

constexpr uint32_t kDnsTypeOpt = 41;

// "Mail Exchanger (MX)": every type of the registry.
const char* DnsTypeName(uint32_t type);
// "Internet"; classes of records and questions.
const char* DnsClassName(uint32_t recordClass);

// What a record of the type holds. 0 for a name that ends the message.
int32_t DecodeDnsData(const Place& in, Cursor& data, DnsMessage& message, uint32_t type);

// Pieces of data: as rows that take their bytes themselves, or as the rest of a choice.
void ShowDnsName(const Place& in, Cursor& c, const char* label, DnsData& data);
void ShowDnsStrings(const Place& in, Cursor& c, DnsData& data);
void ShowDnsTypeMap(const Place& in, Cursor& c, DnsData& data);

// DNSSEC, keys and certificates (decoders/app/dns_security.cpp); options of EDNS and stateful operations
// (decoders/app/dns_edns.cpp).
void ShowDnsSignature(const Place& in, Cursor& c, DnsData& data);
void ShowDnsKey(const Place& in, Cursor& c, DnsData& data);
void ShowDnsDigest(const Place& in, Cursor& c, DnsData& data);
void ShowDnsNsec(const Place& in, Cursor& c, DnsData& data);
void ShowDnsNsec3(const Place& in, Cursor& c, DnsData& data);
void ShowDnsNsec3Parameters(const Place& in, Cursor& c, DnsData& data);
void ShowDnsCertificate(const Place& in, Cursor& c, DnsData& data);
void ShowDnsAssociation(const Place& in, Cursor& c, DnsData& data);
void ShowDnsFingerprint(const Place& in, Cursor& c, DnsData& data);
void ShowDnsIpsecKey(const Place& in, Cursor& c, DnsData& data);
void ShowDnsHostIdentity(const Place& in, Cursor& c, DnsData& data);
void ShowDnsTransactionKey(const Place& in, Cursor& c, DnsData& data);
void ShowDnsTransactionSignature(const Place& in, Cursor& c, DnsData& data);
void ShowDnsOptions(const Place& in, Cursor& c, DnsData& data);

// The class and time to live of an OPT record, which have other meanings there.
void DecodeDnsOptHead(const Place& in, Cursor& c);
// What stands behind the header of a stateful operation (RFC 8490).
void DecodeDnsStateful(const Place& in, Cursor& c, DnsMessage& message);

}  // namespace qxview
