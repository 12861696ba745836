// The Extensible Authentication Protocol (RFC 3748), which 802.1X, RADIUS, PPP and others carry.
//
//   code (1)   identifier (1)   length of all (2)   and in requests and responses: type (1), what the type says
#pragma once
#include "core/elements.h"

namespace qxview {

constexpr int32_t kEapHeaderSize = 4;

// The packet at the cursor, under the place's line, as far as it is there. Result: how many of its bytes are missing.
int32_t AddEap(const Place& in, Cursor& c);

inline constexpr auto kEapTypeNames = SortedNames({
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

// What the methods keep of a packet; the tables of decoders/common/eap_methods.cpp.
struct Eap {
  Field code, length, flags, operation, vendor, vendorType, cipher, count;
};
extern const ChoiceSpan<Eap> kEapMethods;

// The attributes of Wi-Fi Simple Configuration, to the cursor's end.
void ShowSimpleConfiguration(const Place& in, Cursor& c);

// The attributes of EAP-SIM and EAP-AKA (RFC 4186, RFC 4187).
void ShowSimAttributes(const Place& in, Cursor& c, Eap& eap);

}  // namespace qxview
