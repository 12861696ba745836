// The Extensible Authentication Protocol (RFC 3748), which 802.1X, RADIUS, PPP and others carry.
//
//   code (1)   identifier (1)   length of all (2)   and in requests and responses: type (1), what the type says
#pragma once
#include "core/byte_origins.h"
#include "core/elements.h"

namespace qxview {

constexpr int32_t kEapHeaderSize = 4;

// What the protocol that carries a packet knows of it, for the setting Reassembly: which of its conversations this is, where
// addresses and ports do not tell, and the pieces of the frame that the packet's bytes come from, where there are several.
struct EapCarrier {
  uint32_t conversation[2];
  const BytePiece* pieces;
  int32_t pieceCount;
};

// The packet at the cursor, under the place's line, as far as it is there. Result: how many of its bytes are missing.
int32_t AddEap(const Place& in, Cursor& c, const EapCarrier* carrier = nullptr);

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
  Field code, identifier, length, flags, operation, vendor, vendorType, cipher, count, total;
  uint32_t type;
  int32_t begin;               // of the packet
  const EapCarrier* carrier;
};
extern const ChoiceSpan<Eap> kEapMethods;

// What a method's message may be a fragment of (RFC 5216 section 2.1.5; others do it in the same way). True: the bytes at the
// cursor are one, and `message` has the message when it is whole now; the cursor stands behind it.
bool JoinEapFragment(const Place& in, Cursor& c, const Eap& eap, bool hasTotal, bool moreFollow, Cursor* message);

// The attributes of Wi-Fi Simple Configuration, to the cursor's end.
void ShowSimpleConfiguration(const Place& in, Cursor& c);

// The attributes of EAP-SIM and EAP-AKA (RFC 4186, RFC 4187).
void ShowSimAttributes(const Place& in, Cursor& c, Eap& eap);

}  // namespace qxview
