#include "decoders/common/eap.h"

#include "core/elements.h"
#include "core/line_facts.h"

namespace qxview {
namespace {

constexpr auto kCodeNames = SortedNames({
    {1, "Request"}, {2, "Response"}, {3, "Success"}, {4, "Failure"}, {5, "Initiate"}, {6, "Finish"}});
constexpr auto kMethodNames = SortedNames({
    {0, "Reserved"}, {1, "Identity"}, {2, "Notification"}, {3, "Legacy Nak"}, {4, "MD5-Challenge"},
    {5, "One-Time Password (OTP)"}, {6, "Generic Token Card (GTC)"}, {9, "RSA Public Key Authentication"},
    {10, "DSS Unilateral"}, {11, "KEA"}, {12, "KEA-VALIDATE"}, {13, "EAP-TLS"}, {14, "Defender Token (AXENT)"},
    {15, "RSA Security SecurID EAP"}, {16, "Arcot Systems EAP"}, {17, "EAP-Cisco Wireless"}, {18, "EAP-SIM"},
    {19, "SRP-SHA1"}, {21, "EAP-TTLS"}, {22, "Remote Access Service"}, {23, "EAP-AKA"},
    {24, "EAP-3Com Wireless"}, {25, "PEAP"}, {26, "MS-EAP-Authentication"},
    {27, "Mutual Authentication w/Key Exchange (MAKE)"}, {28, "CRYPTOCard"}, {29, "EAP-MSCHAP-V2"}, {30, "DynamID"},
    {31, "Rob EAP"}, {32, "Protected One-Time Password"}, {33, "MS-Authentication-TLV"}, {34, "SentriNET"},
    {35, "EAP-Actiontec Wireless"}, {36, "Cogent Systems Biometrics Authentication EAP"}, {37, "AirFortress EAP"},
    {38, "EAP-HTTP Digest"}, {39, "SecureSuite EAP"}, {40, "DeviceConnect EAP"}, {41, "EAP-SPEKE"}, {42, "EAP-MOBAC"},
    {43, "EAP-FAST"}, {44, "ZoneLabs EAP (ZLXEAP)"}, {45, "EAP-Link"}, {46, "EAP-PAX"}, {47, "EAP-PSK"},
    {48, "EAP-SAKE"}, {49, "EAP-IKEv2"}, {50, "EAP-AKA'"}, {51, "EAP-GPSK"}, {52, "EAP-pwd"}, {53, "EAP-EKE Version 1"},
    {54, "EAP Method Type for PT-EAP"}, {55, "TEAP"}, {56, "EAP-NOOB"}, {254, "Expanded Type"}, {255, "Experimental"}});
constexpr auto kChapOperationNames = SortedNames({
    {1, "Challenge"}, {2, "Response"}, {3, "Success"}, {4, "Failure"}, {7, "Change Password"}});

struct Eap {
  Field code, length, flags;
};

constexpr auto kHeader = Rows<Eap>({
    Number(1, "Code", kCodeNames).Into(&Eap::code), Number(1, "Identifier"), Number(2, "Length").Into(&Eap::length)});
constexpr auto kType = Rows<Eap>({Number(1, "Type", kMethodNames)});

constexpr auto kIdentity = Rows<Eap>({Text(0, "Identity")});
constexpr auto kNotification = Rows<Eap>({Text(0, "Notification")});
constexpr auto kDesired = Rows<Eap>({Number(1, "Desired Type", kMethodNames)});
constexpr auto kChallenge = Rows<Eap>({Counted(1, Bytes(0, "Value")), Text(0, "Name")});
constexpr auto kTlsFlags = Rows<Eap>({
    Word(1).Into(&Eap::flags), Flag(0, "Length Included"), Flag(1, "More Fragments"), Flag(2, "Start"),
    Bits(3, 2, "Reserved"), Bits(5, 3, "Version")});
constexpr auto kTlsLength = Rows<Eap>({Number(4, "TLS Message Length")});
constexpr auto kChap2 = Rows<Eap>({
    Number(1, "Operation", kChapOperationNames), Number(1, "MS-CHAPv2 Identifier"), Number(2, "MS-CHAPv2 Length")});
constexpr auto kExpanded = Rows<Eap>({Number(3, "Vendor ID"), Number(4, "Vendor Type")});
constexpr auto kSimilar = Rows<Eap>({Number(1, "Subtype"), Word(2)});
constexpr auto kPassword = Rows<Eap>({
    Word(1), Flag(0, "Total Length Included"), Flag(1, "More Fragments"), Bits(2, 6, "Exchange")});

void ShowDesired(const Place& in, Cursor& c, Eap& eap) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Eap>(in, c, kDesired, eap);
}
void ShowTls(const Place& in, Cursor& c, Eap& eap) {
  constexpr uint32_t kLengthIncluded = 0x80;
  if (eap.flags.value & kLengthIncluded) ShowRows<Eap>(in, c, kTlsLength, eap);
  AddBlock(in, Rest(c), "TLS Data");
}
// Attributes of EAP-SIM and EAP-AKA count their length in words.
void ShowAttributes(const Place& in, Cursor& c, Eap& eap) {
  constexpr ElementForm kForm{.unit = 4, .lengthCountsHeader = true};
  ShowElements<Eap>(in, c, kForm, "Attribute", {}, eap);
}

constexpr auto kMethods = Choices<Eap>({
    {1, "Identity", kIdentity}, {2, "Notification", kNotification}, {3, "Nak", {}, ShowDesired},
    {4, "MD5-Challenge", kChallenge}, {13, "EAP-TLS", kTlsFlags, ShowTls}, {18, "EAP-SIM", kSimilar, ShowAttributes},
    {21, "EAP-TTLS", kTlsFlags, ShowTls}, {23, "EAP-AKA", kSimilar, ShowAttributes}, {25, "PEAP", kTlsFlags, ShowTls},
    {26, "EAP-MSCHAP-V2", kChap2}, {43, "EAP-FAST", kTlsFlags, ShowTls}, {50, "EAP-AKA'", kSimilar, ShowAttributes},
    {52, "EAP-pwd", kPassword}, {55, "TEAP", kTlsFlags, ShowTls}, {254, "Expanded Type", kExpanded}});

}  // namespace

int32_t AddEap(const Place& at, Cursor& c) {
  const KeyedAs keys(PacketOf(at), "eap");
  const Eap ahead = PeekRows(c, kHeader);
  const int32_t stated = static_cast<int32_t>(ahead.length.value);
  const int32_t here = stated < Left(c) ? stated : Left(c);
  const Place in = Under(at, AddLine(at, Ahead(c, here), "EAP: %s", LookupName(kCodeNames, ahead.code.value)));
  Cursor packet = TakeCursor(c, stated);
  Eap eap = ShowRows(in, packet, kHeader);
  const bool hasType = eap.code.value == 1 || eap.code.value == 2;
  if (hasType && Left(packet) > 0) {
    const uint32_t type = PeekU8(packet);
    ShowRows<Eap>(in, packet, kType, eap);
    ShowChoice<Eap>(in, packet, FindChoice<Eap>(kMethods, type), eap);
  }
  AddBlock(in, Rest(packet), "EAP Data");
  return stated > here ? stated - here : 0;
}

}  // namespace qxview
