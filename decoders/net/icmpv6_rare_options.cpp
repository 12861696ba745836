// Options of neighbour discovery that are seldom seen: securing it (RFC 3971), fast handovers (RFC 5568, RFC 5269), mobility
// anchors (RFC 5380), low-power links (RFC 7400, RFC 8505, RFC 8928, RFC 9009), encrypted DNS (RFC 9463).
#include "core/elements.h"
#include "decoders/net/icmpv6.h"

namespace qxview {
namespace {

struct Option {
  Field padding, length;
};

constexpr auto kShortcut = Rows<Option>({Number(1, "Shortcut Limit"), Hex(1, "Reserved"), Hex(4, "Reserved")});
constexpr auto kGenerated = Rows<Option>({
    Number(1, "Pad Length"), Hex(1, "Reserved"), Bytes(16, "Modifier"), Hex(8, "Subnet Prefix"), Number(1, "Collision Count"),
    Bytes(0, "Public Key and Padding")});
constexpr auto kSignature = Rows<Option>({Hex(2, "Reserved"), Bytes(16, "Key Hash"), Bytes(0, "Signature and Padding")});
constexpr auto kAnchorNames = SortedNames({{1, "DER Encoded X.501 Name"}, {2, "FQDN"}, {3, "SHA-1 Subject Key Identifier"},
                                           {4, "SHA-224 Subject Key Identifier"}, {5, "SHA-256 Subject Key Identifier"},
                                           {6, "SHA-384 Subject Key Identifier"}, {7, "SHA-512 Subject Key Identifier"}});
constexpr auto kAnchor = Rows<Option>({
    Number(1, "Name Type", kAnchorNames), Number(1, "Pad Length"), Bytes(0, "Name and Padding")});
constexpr auto kCertificateNames = SortedNames({{1, "X.509v3 Certificate"}});
constexpr auto kCertificate = Rows<Option>({
    Number(1, "Certificate Type", kCertificateNames), Hex(1, "Reserved"), Bytes(0, "Certificate and Padding")});
constexpr auto kNewPrefix = Rows<Option>({
    Number(1, "Option Code"), Number(1, "Prefix Length"), Hex(4, "Reserved"), IPv6("Prefix")});
constexpr auto kAcknowledgmentNames = SortedNames({
    {1, "New care-of address invalid, perform address configuration"},
    {2, "New care-of address invalid, use the supplied one"}, {3, "New care-of address invalid, use the new router's address"},
    {4, "Previous care-of address supplied, do not send a binding update"}, {128, "Link-layer address unrecognized"}});
constexpr auto kAcknowledgment = Rows<Option>({
    Number(1, "Option Code"), Number(1, "Status", kAcknowledgmentNames), Hex(4, "Reserved")});
void ShowNewAddress(const Place& in, Cursor& c, Option&) {
  if (Left(c) >= 16) AddAddress(in, c, "New Care-of Address");
}
constexpr auto kMobilityAnchor = Rows<Option>({
    Word(1), Bits(0, 4, "Distance"), Bits(4, 4, "Preference"), Word(1), Flag(0, "Regional Care-of Address"),
    Bits(1, 7, "Reserved"), Number(4, "Valid Lifetime", " seconds"), IPv6("Global Address")});
constexpr auto kKeyRequest = Rows<Option>({
    Number(1, "Pad Length"), Word(1), Bits(0, 4, "Algorithm Type"), Bits(4, 4, "Reserved"), Bytes(0, "Public Key and Padding")});
constexpr auto kKeyReply = Rows<Option>({
    Number(1, "Pad Length"), Word(1), Bits(0, 4, "Algorithm Type"), Bits(4, 4, "Reserved"),
    Number(2, "Key Lifetime", " seconds"), Bytes(0, "Encrypted Handover Key and Padding")});
constexpr auto kAssist = Rows<Option>({
    Number(1, "Option Code"), Number(1, "Assist Length").Into(&Option::length),
    Bytes(0, "Handover Assist Information").SizedBy(&Option::length)});
constexpr auto kNodeCodes = SortedNames({{1, "Access Network Identifier"}, {2, "Network Access Identifier"}});
constexpr auto kNode = Rows<Option>({
    Number(1, "Option Code", kNodeCodes), Number(1, "Identifier Length").Into(&Option::length),
    Text(0, "Identifier").SizedBy(&Option::length)});
constexpr auto kCapability = Rows<Option>({
    Hex(2, "Capabilities"), Bits(0, 9, "Reserved"), Flag(9, "Reserved Address"), Flag(10, "Extended Duplicate Messages"),
    Flag(11, "6LR"), Flag(12, "6LBR"), Flag(13, "Registration Proxy"), Flag(14, "Extended Registration"),
    Flag(15, "Generic Header Compression"), Hex(4, "Reserved")});
constexpr auto kDirectory = Rows<Option>({
    Hex(2, "Reserved"), Number(4, "Valid Lifetime", " seconds"), IPv6("Resource Directory Address")});
constexpr auto kEncrypted = Rows<Option>({
    Number(2, "Service Priority"), Number(4, "Lifetime", " seconds"), Number(2, "Authentication Name Length").Into(&Option::length)});
constexpr auto kCount = Rows<Option>({Number(2, "Addresses Length").Into(&Option::length)});
constexpr auto kParametersCount = Rows<Option>({Number(2, "Service Parameters Length").Into(&Option::length)});
constexpr auto kParameters = Rows<Option>({Bytes(0, "Service Parameters").SizedBy(&Option::length)});

void ShowEncrypted(const Place& in, Cursor& c, Option& option) {
  Cursor name = TakeCursor(c, option.length.value);
  char text[256];
  const Field taken = TakeIPv6DomainName(name, text, sizeof text);
  const char* shown = text;
  AddLine(in, taken, "Authentication Domain Name: %s", shown);
  AddBlock(in, Rest(name), "Name Data");
  if (Left(c) < 2) return;
  ShowRows<Option>(in, c, kCount, option);
  Cursor addresses = TakeCursor(c, option.length.value);
  for (Loop loop; Left(addresses) >= 16 && MoreAt(in, addresses, loop);) AddAddress(in, addresses, "Address");
  if (Left(c) < 2) return;
  ShowRows<Option>(in, c, kParametersCount, option);
  if (option.length.value) ShowRows<Option>(in, c, kParameters, option);
}

constexpr auto kOptions = Choices<Option>({
    {6, "NBMA Shortcut Limit", kShortcut}, {11, "Cryptographically Generated Address", kGenerated},
    {12, "RSA Signature", kSignature}, {15, "Trust Anchor", kAnchor}, {16, "Certificate", kCertificate},
    {18, "New Router Prefix Information", kNewPrefix}, {20, "Neighbor Advertisement Acknowledgment", kAcknowledgment, ShowNewAddress},
    {23, "Mobility Anchor Point", kMobilityAnchor}, {27, "Handover Key Request", kKeyRequest},
    {28, "Handover Key Reply", kKeyReply}, {29, "Handover Assist Information", kAssist}, {30, "Mobile Node Identifier", kNode},
    {32, "Proxy Signature", kSignature}, {36, "6LoWPAN Capability Indication", kCapability},
    {41, "Resource Directory Address", kDirectory}, {144, "Encrypted DNS", kEncrypted, ShowEncrypted}});

}  // namespace

void ShowRareOption(const Place& in, uint32_t type, Cursor& c) {
  const Choice<Option>* known = FindChoice<Option>(kOptions, type);
  if (!known) return;
  Option option{};
  ShowRows<Option>(in, c, known->rows, option);
  if (known->show) known->show(in, c, option);
}

}  // namespace qxview
