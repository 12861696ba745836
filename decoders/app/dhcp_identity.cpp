// Who asks and who answers: unique identifiers (RFC 8415 11, RFC 6355), identifiers of clients (RFC 2132 9.14, RFC 4361),
// authentication of messages (RFC 3118, RFC 6704, RFC 8415 20).
#include "core/times.h"
#include "decoders/app/dhcp.h"
#include "decoders/common/guid.h"
#include "decoders/common/hardware_types.h"

namespace qxview {
namespace {

constexpr int32_t kMacSize = 6;

constexpr auto kDuidNames = SortedNames({
    {1, "Link-Layer Address Plus Time"}, {2, "Vendor-Assigned Based on Enterprise Number"}, {3, "Link-Layer Address"},
    {4, "Universally Unique Identifier"}});
constexpr auto kProtocolNames = SortedNames({
    {0, "Configuration Token"}, {1, "Delayed Authentication"}, {2, "Delayed Authentication"}, {3, "Reconfigure Key"},
    {4, "Split DNS"}});
constexpr auto kAlgorithmNames = SortedNames({{0, "None"}, {1, "HMAC-MD5"}});
constexpr auto kReplayNames = SortedNames({{0, "Monotonically Increasing Counter"}});
constexpr auto kReconfigureNames = SortedNames({{1, "Reconfigure Key Value"}, {2, "HMAC-MD5 Digest"}});
constexpr uint32_t kLinkLayerTime = 1, kEnterprise = 2, kLinkLayer = 3, kUuid = 4;

void ShowDuidTime(const Place& in, const Field& field, const char* label) {
  constexpr int64_t kEpoch = 946684800;   // 2000-01-01, from which these times count
  AddLine(in, field, "%s: %s (%u)", label, UtcText(kEpoch + PeekU32(field)), PeekU32(field));
}

void ShowLinkLayerAddress(const Place& in, const Field& address, const char* label) {
  if (address.length == kMacSize) {
    AddLine(in, address, "%s: %s", label, MacText(address.bytes));
    AppendToParent(in, address, ", %s", MacText(address.bytes));
  } else {
    AddLine(in, address, "%s: %s", label, HexText(address));
    AppendToParent(in, address, ", %s", HexText(address));
  }
}

void ShowUuid(const Place& in, const Field& uuid, const char* label) {
  const GuidText text = TextOfGuid(uuid, GuidOrder::kBig);
  AddLine(in, uuid, "%s: %s", label, text);
  AppendToParent(in, uuid, ", %s", text);
}

constexpr auto kDuidType = Rows<DhcpMessage>({
    Number(2, "DUID Type", kDuidNames).Into(&DhcpMessage::code)});
constexpr auto kDuidLinkTime = Rows<DhcpMessage>({
    Number(2, "Hardware Type", kHardwareNames), Shown(4, "Time", ShowDuidTime),
    Shown(0, "Link-Layer Address", ShowLinkLayerAddress)});
constexpr auto kDuidEnterprise = Rows<DhcpMessage>({
    Number(4, "Enterprise Number", DhcpEnterpriseName).Note(", %s"), Bytes(0, "Identifier")});
constexpr auto kDuidLink = Rows<DhcpMessage>({
    Number(2, "Hardware Type", kHardwareNames), Shown(0, "Link-Layer Address", ShowLinkLayerAddress)});
constexpr auto kDuidUuid = Rows<DhcpMessage>({Shown(16, "UUID", ShowUuid)});

RowSpan<DhcpMessage> DuidRows(uint32_t type) {
  return type == kLinkLayerTime ? RowSpan<DhcpMessage>(kDuidLinkTime)
         : type == kEnterprise  ? RowSpan<DhcpMessage>(kDuidEnterprise)
         : type == kLinkLayer   ? RowSpan<DhcpMessage>(kDuidLink)
         : type == kUuid        ? RowSpan<DhcpMessage>(kDuidUuid)
                                : RowSpan<DhcpMessage>(kDhcpBytes);
}

}  // namespace

void ShowDhcpDuid(const Place& in, Cursor& c, DhcpMessage& message) {
  const Field whole = Ahead(c, Left(c));
  if (whole.length < 1) return;
  const Place under = Under(in, AddLine(in, whole, "DUID: %s", HexText(whole)));
  ShowRows<DhcpMessage>(under, c, kDuidType, message);
  if (Left(c)) ShowRows<DhcpMessage>(under, c, DuidRows(message.code.value), message, "Identifier");
}

void ShowDhcpClientId(const Place& in, Cursor& c, DhcpMessage& message) {
  constexpr uint32_t kText = 0, kAssociated = 255;
  static constexpr auto kAssociation = Rows<DhcpMessage>({Hex(4, "IAID")});
  const Field type = TakeU8(c);
  AddLine(in, type, "Hardware Type: %u = %s", type.value,
          type.value == kText         ? "Not a Hardware Address"
          : type.value == kAssociated ? "IAID and DUID"
                                      : LookupName(kHardwareNames, type.value));
  if (type.value == kAssociated) {
    ShowRows<DhcpMessage>(in, c, kAssociation, message);
    if (Left(c)) ShowDhcpDuid(in, c, message);
    return;
  }
  const Field identifier = Rest(c);
  if (!identifier.here) return;
  if (type.value == kText) {
    AddLine(in, identifier, "Client Identifier: %s", Text(identifier));
    AppendToParent(in, identifier, ", %s", Text(identifier));
  } else {
    ShowLinkLayerAddress(in, identifier, "Client Hardware Address");
  }
}

void ShowDhcpAuthentication(const Place& in, Cursor& c, DhcpMessage& message) {
  constexpr uint32_t kToken = 0, kDelayed = 1, kDelayedInRealm = 2, kReconfigureKey = 3;
  constexpr int32_t kKeyAndDigest = 20;
  static constexpr auto kHeader = Rows<DhcpMessage>({
      Number(1, "Protocol", kProtocolNames).Note(", %s").Into(&DhcpMessage::protocol),
      Number(1, "Algorithm", kAlgorithmNames).Into(&DhcpMessage::algorithm),
      Number(1, "Replay Detection Method", kReplayNames), Hex(8, "Replay Detection")});
  static constexpr auto kTokenRows = Rows<DhcpMessage>({Text(0, "Configuration Token")});
  static constexpr auto kDelayedRows = Rows<DhcpMessage>({Hex(4, "Secret ID"), Bytes(16, "HMAC-MD5 Digest")});
  static constexpr auto kReconfigureRows = Rows<DhcpMessage>({Number(1, "Type", kReconfigureNames), Bytes(16, "Value")});
  static constexpr auto kOtherRows = Rows<DhcpMessage>({Bytes(0, "Authentication Information")});
  ShowRows<DhcpMessage>(in, c, kHeader, message);
  if (!Left(c)) return;
  const uint32_t protocol = message.protocol.value;
  const bool isInRealm = protocol == kDelayedInRealm && Left(c) >= kKeyAndDigest;   // version 6: RFC 3315 21.4.1
  if (isInRealm) {
    const Field realm = TakeBytes(c, Left(c) - kKeyAndDigest);
    if (realm.length > 0) AddLine(in, realm, "DHCP Realm: %s", Text(realm));
  }
  const bool isDelayed = isInRealm || (protocol == kDelayed && Left(c) >= kKeyAndDigest);
  ShowRows<DhcpMessage>(in, c,
                        protocol == kToken                            ? RowSpan<DhcpMessage>(kTokenRows)
                        : isDelayed                                    ? RowSpan<DhcpMessage>(kDelayedRows)
                        : protocol == kReconfigureKey && Left(c) >= 17 ? RowSpan<DhcpMessage>(kReconfigureRows)
                                                                       : RowSpan<DhcpMessage>(kOtherRows),
                        message);
}

}  // namespace qxview
