// Capsules (RFC 9297 3.2): what the stream of an extended CONNECT or an upgraded connection carries, datagrams and the control of
// what is tunnelled (RFC 9298, RFC 9484) or of a session of WebTransport.
//
//   type (a variable-length number of QUIC), length (the same), value
#include "core/line_facts.h"
#include "decoders/app/web_body.h"
#include "decoders/common/header_lines.h"
#include "decoders/quic/quic.h"

namespace qxview {
namespace {

enum CapsuleType : uint32_t {
  kDatagram = 0, kAddressAssign = 1, kAddressRequest = 2, kRouteAdvertisement = 3, kCloseSession = 0x2843, kDrainSession = 0x78AE
};
constexpr auto kTypeNames = SortedNames({
    {kDatagram, "DATAGRAM"}, {kAddressAssign, "ADDRESS_ASSIGN"}, {kAddressRequest, "ADDRESS_REQUEST"},
    {kRouteAdvertisement, "ROUTE_ADVERTISEMENT"}, {kCloseSession, "CLOSE_WEBTRANSPORT_SESSION"},
    {kDrainSession, "DRAIN_WEBTRANSPORT_SESSION"}});

const char* NameOf(const WideField& type) {
  constexpr uint64_t kGreaseStep = 0x29, kFirstGrease = 0x17;
  if (type.wide >= kFirstGrease && (type.wide - kFirstGrease) % kGreaseStep == 0) return "Reserved (GREASE)";
  return LookupName(kTypeNames, type.wide >> 32 ? UINT32_MAX : type.value);
}

// An address of the version in front; nothing, and all is taken, for a version that does not exist.
void ShowAddress(const Place& in, Cursor& c, uint32_t version, const char* label) {
  const Field address = TakeBytes(c, version == 4 ? 4 : version == 6 ? 16 : Left(c));
  if (!address.here) return;
  if (version == 4) AddLine(in, address, "%s: %s", label, IPv4Text(address.bytes));
  else if (version == 6) AddLine(in, address, "%s: %s", label, IPv6Text(address.bytes));
  else AddBlock(in, address, "Address Data");
}

// keys: address Address, Start Address, End Address
void ShowAddresses(const Place& at, Cursor& c) {
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const Cursor start = c;
    const LineHandle title = AddLine(at, Ahead(c, Left(c)), "Assignment");
    const Place in = Under(at, title);
    const WideField request = TakeQuicNumber(c);
    AddLine(in, request, "Request ID: %I64u", request.wide);
    const Field version = TakeU8(c);
    AddLine(in, version, "IP Version: %u", version.value);
    ShowAddress(in, c, version.value, "Address");
    const Field prefix = TakeU8(c);
    AddLine(in, prefix, "Prefix Length: %u bits", prefix.value);
    if (!in.dead) SetRange(in, title, start.offset, c.offset - start.offset);
  }
}

void ShowRoutes(const Place& at, Cursor& c) {
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const Cursor start = c;
    const LineHandle title = AddLine(at, Ahead(c, Left(c)), "Route");
    const Place in = Under(at, title);
    const Field version = TakeU8(c);
    AddLine(in, version, "IP Version: %u", version.value);
    ShowAddress(in, c, version.value, "Start Address");
    ShowAddress(in, c, version.value, "End Address");
    const Field protocol = TakeU8(c);
    AddLine(in, protocol, "IP Protocol: %u", protocol.value);
    if (!in.dead) SetRange(in, title, start.offset, c.offset - start.offset);
  }
}

void ShowValue(const Place& in, Cursor c, const WideField& type, WebContent content) {
  const uint32_t known = type.wide >> 32 ? UINT32_MAX : type.value;
  if (known == kDatagram && content == WebContent::kCapsules && Left(c) > 0) {
    const WideField context = TakeQuicNumber(c);
    AddLine(in, context, "Context ID: %I64u", context.wide);
    AddBlock(in, Rest(c), "Datagram Payload");
  } else if (known == kDatagram) {
    AddBlock(in, Rest(c), "Datagram Payload");
  } else if (known == kAddressAssign || known == kAddressRequest) {
    ShowAddresses(in, c);
  } else if (known == kRouteAdvertisement) {
    ShowRoutes(in, c);
  } else if (known == kCloseSession) {
    const Field code = TakeU32(c);
    AddLine(in, code, "Application Error Code: %u", code.value);
    if (Left(c) > 0) AddTextLine(in, Rest(c), "Application Error Message");
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Capsule Value");
}

}  // namespace

void ShowCapsules(const Place& at, Cursor& c, WebBody& body) {
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const int32_t left = Left(c);
    if (body.messageLeft > 0) {
      const int32_t here = body.messageLeft < static_cast<uint32_t>(left) ? static_cast<int32_t>(body.messageLeft) : left;
      AddBlock(at, TakeBytes(c, here), "Capsule Continued");
      body.messageLeft -= static_cast<uint32_t>(here);
      continue;
    }
    const Cursor start = c;
    const WideField type = TakeQuicNumber(c);
    const WideField length = TakeQuicNumber(c);
    if (c.ranShort) {   // where the next one starts is not known then
      c = start;
      c.ranShort = false;
      AddBlock(at, Rest(c), "Capsule in Part");
      body.content = WebContent::kOther;
      return;
    }
    const uint64_t there = static_cast<uint64_t>(Left(c)), wanted = length.wide < UINT32_MAX ? length.wide : UINT32_MAX;
    const int32_t here = static_cast<int32_t>(wanted < there ? wanted : there);
    const Field whole = Ahead(start, c.offset - start.offset + here);
    const Place in = Under(at, AddLine(at, whole, "Capsule: %s, %I64u bytes", NameOf(type), length.wide));
    AddLine(in, type, "Capsule Type: 0x%I64X = %s", type.wide, NameOf(type));
    AddLine(in, length, "Capsule Length: %I64u", length.wide);
    const Cursor value = TakeCursor(c, here);
    body.messageLeft = static_cast<uint32_t>(wanted - static_cast<uint64_t>(here));
    if (body.messageLeft > 0) AddBlock(in, Ahead(value, here), "Capsule in Part");
    else if (here > 0) ShowValue(in, value, type, body.content);
  }
}

}  // namespace qxview
