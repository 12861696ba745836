// Attributes of EAP-SIM (RFC 4186), EAP-AKA (RFC 4187) and EAP-AKA' (RFC 9048); further ones of 3GPP TS 24.302 and RFC
// 9678.
// An attribute's length counts words of four bytes; what is shorter than its words says its length in front.
#include "decoders/common/eap.h"

namespace qxview {
namespace {

constexpr auto kNotificationNames = SortedNames({
    {0, "General Failure After Authentication"}, {1026, "User Temporarily Denied Access"}, {1031,
    "User Not Subscribed"},
    {16384, "General Failure"}, {32768, "Success"}});
constexpr auto kErrorNames = SortedNames({
    {0, "Unable to Process Packet"}, {1, "Unsupported Version"}, {2, "Insufficient Number of Challenges"},
    {3, "RANDs Are Not Fresh"}});
constexpr auto kKdfNames = SortedNames({{1, "EAP-AKA' with CK'/IK'"}, {2, "EAP-AKA' with ECDHE by X25519"}, {3,
    "EAP-AKA' with ECDHE by P-256"}});

constexpr auto kReserved = Rows<Eap>({Hex(2, "Reserved")});
constexpr auto kReservedValue = Rows<Eap>({Hex(2, "Reserved"), Bytes(0, nullptr)});
constexpr auto kWhole = Rows<Eap>({Bytes(0, nullptr)});
constexpr auto kRand = Rows<Eap>({Bytes(16, "RAND")});
constexpr auto kResult = Rows<Eap>({Number(2, "RES Length", " bits"), Bytes(0, "RES")});
constexpr auto kNotification = Rows<Eap>({Number(2, "Notification Code", kNotificationNames).Note(", %s")});
constexpr auto kError = Rows<Eap>({Number(2, "Client Error Code", kErrorNames).Note(", %s")});
constexpr auto kCounter = Rows<Eap>({Number(2, "Counter")});
constexpr auto kVersion = Rows<Eap>({Number(2, "Version")});
constexpr auto kKdf = Rows<Eap>({Number(2, "Key Derivation Function", kKdfNames)});
constexpr auto kBidding = Rows<Eap>({Word(2), Flag(0, "Supports EAP-AKA'"), Bits(1, 15, "Reserved")});
constexpr auto kText = Rows<Eap>({Number(2, "Value Length").Into(&Eap::count), Utf8(0,
    nullptr).Note(" %s").SizedBy(&Eap::count)});
constexpr auto kNumbered = Rows<Eap>({Number(1, "Value"), Bytes(0, "Parameters")});

void ShowRands(const Place& in, Cursor& c, Eap& eap) {
  ShowRows<Eap>(in, c, kReserved, eap);
  Loop loop;
  while (Left(c) >= 16 && MoreAt(in, c, loop)) ShowRows<Eap>(in, c, kRand, eap);
}
void ShowVersions(const Place& in, Cursor& c, Eap& eap) {
  constexpr auto kLength = Rows<Eap>({Number(2, "Version List Length").Into(&Eap::count)});
  ShowRows<Eap>(in, c, kLength, eap);
  Cursor list = TakeCursor(c, eap.count.value);
  Loop loop;
  while (MoreAt(in, list, loop)) ShowRows<Eap>(in, list, kVersion, eap);
}

constexpr auto kAttributes = Choices<Eap>({
    {1, "AT_RAND", {}, ShowRands}, {2, "AT_AUTN", kReservedValue}, {3, "AT_RES", kResult}, {4, "AT_AUTS", kWhole},
    {6, "AT_PADDING", kWhole}, {7, "AT_NONCE_MT", kReservedValue}, {10, "AT_PERMANENT_ID_REQ", kReserved},
    {11, "AT_MAC", kReservedValue}, {12, "AT_NOTIFICATION", kNotification}, {13, "AT_ANY_ID_REQ", kReserved},
    {14, "AT_IDENTITY", kText}, {15, "AT_VERSION_LIST", {}, ShowVersions}, {16, "AT_SELECTED_VERSION", kVersion},
    {17, "AT_FULLAUTH_ID_REQ", kReserved}, {19, "AT_COUNTER", kCounter}, {20, "AT_COUNTER_TOO_SMALL", kReserved},
    {21, "AT_NONCE_S", kReservedValue}, {22, "AT_CLIENT_ERROR_CODE", kError}, {23, "AT_KDF_INPUT", kText}, {24,
    "AT_KDF", kKdf},
    {129, "AT_IV", kReservedValue}, {130, "AT_ENCR_DATA", kReservedValue}, {132, "AT_NEXT_PSEUDONYM", kText},
    {133, "AT_NEXT_REAUTH_ID", kText}, {134, "AT_CHECKCODE", kReservedValue}, {135, "AT_RESULT_IND", kReserved},
    {136, "AT_BIDDING", kBidding}, {137, "AT_IPMS_IND", kReserved}, {138, "AT_IPMS_RES", kReserved}, {139,
    "AT_TRUST_IND", kNumbered},
    {140, "AT_SHORT_NAME_FOR_NETWORK", kText}, {141, "AT_FULL_NAME_FOR_NETWORK", kText}, {142, "AT_RQSI_IND",
    kNumbered},
    {143, "AT_RQSI_RES", kNumbered}, {144, "AT_TWAN_CONN_MODE", kNumbered}, {145, "AT_VIRTUAL_NETWORK_ID", kNumbered},
    {146, "AT_VIRTUAL_NETWORK_REQ", kNumbered}, {147, "AT_CONNECTIVITY_TYPE", kNumbered}, {148,
    "AT_HANDOVER_INDICATION", kNumbered},
    {149, "AT_HANDOVER_SESSION_ID", kNumbered}, {150, "AT_MN_SERIAL_ID", kNumbered}, {151, "AT_DEVICE_IDENTITY",
    kNumbered},
    {152, "AT_PUB_ECDHE", kWhole}});

}  // namespace

void ShowSimAttributes(const Place& in, Cursor& c, Eap& eap) {
  constexpr ElementForm kForm{.unit = 4, .lengthCountsHeader = true};
  ShowElements<Eap>(in, c, kForm, "Attribute", kAttributes, eap);
}

}  // namespace qxview
