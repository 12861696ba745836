// What both versions of the Dynamic Host Configuration Protocol share: unique identifiers of clients and servers, lists
// of addresses and names, locations, authentication, options of vendors.
#pragma once
#include "core/elements.h"

namespace qxview {

// A message while it is decoded; values of its fields by name. Rows and choices of both versions fill the same record.
struct DhcpMessage {
  Field hardwareType, hardwareLength, code, count, enterprise, protocol, algorithm;
  const char* vendorClass;   // version 4: how the vendor-specific information is written
  int32_t vendorClassLength;
  int32_t depth;             // version 6: options inside options
  uint32_t messageType;
};

using DhcpRow = Row<DhcpMessage>;
using DhcpChoices = ChoiceSpan<DhcpMessage>;

// Options within options: type and length of an octet each.
inline constexpr ElementForm kDhcpSuboptionForm{};
// Of two octets each, as version 6 writes all of its options.
inline constexpr ElementForm kDhcpWideForm{.typeSize = 2, .lengthSize = 2};

// Values that many options are; a label of null is the option's own name.
inline constexpr auto kDhcpU8 = Rows<DhcpMessage>({Number(1, nullptr).Note(", %u")});
inline constexpr auto kDhcpU16 = Rows<DhcpMessage>({Number(2, nullptr).Note(", %u")});
inline constexpr auto kDhcpU32 = Rows<DhcpMessage>({Number(4, nullptr).Note(", %u")});
inline constexpr auto kDhcpSeconds = Rows<DhcpMessage>({Number(4, nullptr, " seconds").Note(", %u seconds")});
inline constexpr auto kDhcpUnixTime = Rows<DhcpMessage>({UnixTime(4, nullptr).Note(", %s")});
inline constexpr auto kDhcpIPv4 = Rows<DhcpMessage>({IPv4(nullptr).Note(", %s")});
inline constexpr auto kDhcpIPv6 = Rows<DhcpMessage>({IPv6(nullptr).Note(", %s")});
inline constexpr auto kDhcpText = Rows<DhcpMessage>({Text(0, nullptr).Note(", %s")});
inline constexpr auto kDhcpUtf8 = Rows<DhcpMessage>({Utf8(0, nullptr).Note(", %s")});
inline constexpr auto kDhcpBytes = Rows<DhcpMessage>({Bytes(0, nullptr)});

// As the rest of a choice.
void ShowDhcpIPv4List(const Place& in, Cursor& c, DhcpMessage& message);
void ShowDhcpIPv6List(const Place& in, Cursor& c, DhcpMessage& message);
void ShowDhcpNames(const Place& in, Cursor& c, DhcpMessage& message);         // domain names, pointers among them
void ShowDhcpDuid(const Place& in, Cursor& c, DhcpMessage& message);          // RFC 8415 11
void ShowDhcpClientId(const Place& in, Cursor& c, DhcpMessage& message);      // RFC 2132 9.14, RFC 4361
void ShowDhcpAuthentication(const Place& in, Cursor& c, DhcpMessage& message);   // RFC 3118, RFC 8415 20
void ShowDhcpGeoLocation(const Place& in, Cursor& c, DhcpMessage& message);   // RFC 6225
void ShowDhcpGeoConfiguration(const Place& in, Cursor& c, DhcpMessage& message);   // RFC 3825
void ShowDhcpCivicLocation(const Place& in, Cursor& c, DhcpMessage& message);      // RFC 4776
void ShowDhcpSubnetSelection(const Place& in, Cursor& c, DhcpMessage& message);    // RFC 6607
void ShowDhcpRadius(const Place& in, Cursor& c, DhcpMessage& message);             // attributes for a server, RFC 4014
void ShowDhcpUris(const Place& in, Cursor& c, DhcpMessage& message);               // counted by two octets each
void ShowDhcpArchitectures(const Place& in, Cursor& c, DhcpMessage& message);      // RFC 4578, RFC 5970
void ShowDhcpPortParameters(const Place& in, Cursor& c, DhcpMessage& message);     // RFC 7618
const char* DhcpSelectionName(uint32_t preference);                                // RFC 6731
// Service parameters of an encrypted resolver (RFC 9463), written as those of SVCB records.
void ShowDhcpServiceParameters(const Place& in, Cursor& c, DhcpMessage& message);

// Options of version 4 (RFC 2132 and after) without the field that says where they start.
void ShowDhcpOptions(const Place& in, Cursor& c, DhcpMessage& message);
void ShowDhcpVendorOptions(const Place& in, Cursor& c, DhcpMessage& message);      // option 43
void ShowDhcpVendorClasses(const Place& in, Cursor& c, DhcpMessage& message);      // option 124
void ShowDhcpVendorInformation(const Place& in, Cursor& c, DhcpMessage& message);  // option 125
void ShowDhcpRelayInformation(const Place& in, Cursor& c, DhcpMessage& message);   // option 82
void ShowDhcpCableLabs(const Place& in, Cursor& c, DhcpMessage& message);          // option 122
void ShowDhcpv6CableLabs(const Place& in, Cursor& c, DhcpMessage& message);        // its suboptions in version 6

// A whole message of version 4, as relays of version 6 carry one.
int32_t DecodeDhcp(const Place& at, Cursor c);

// The names of enterprises that write options of their own (IANA's private enterprise numbers).
const char* DhcpEnterpriseName(uint32_t number);

// Codes of options, as lists of requested options name them.
const char* DhcpOptionName(uint32_t code);
const char* DhcpMessageTypeName(uint32_t type);
const ElementForm& DhcpOptionForm();
const char* Dhcpv6OptionName(uint32_t code);

}  // namespace qxview
