// Bootstrap Protocol (RFC 951) and Dynamic Host Configuration Protocol (RFC 2131): which address may this station use, and
// where does it find its servers?
//
//   0  operation (1)  hardware type (1)  hardware address length (1)  hops (1)   4  transaction (4)
//   8  seconds (2)    flags (2)          12  client, 16 your, 20 server, 24 relay agent: IP addresses
//   28 client hardware address (16)      44  server name (64)   108  boot file (128)
//   236  magic cookie (4)                240 options; in server name and boot file as well, where option 52 says so
#include "decoders/app/dhcp.h"
#include "decoders/common/hardware_types.h"

namespace qxview {
namespace {

constexpr int32_t kShortest = 28, kAddressSize = 16, kMacSize = 6;
constexpr int32_t kServerNameSize = 64, kFileSize = 128, kCookieOffset = 236;
constexpr uint32_t kRequest = 1, kReply = 2, kCookie = 0x63825363;
constexpr uint32_t kRequestedAddress = 50, kOverload = 52, kMessageType = 53, kVendorClass = 60;
constexpr uint32_t kOverloadsFile = 1, kOverloadsName = 2;

constexpr auto kOperationNames = SortedNames({{1, "BOOTREQUEST"}, {2, "BOOTREPLY"}});

constexpr auto kFirst = Rows<DhcpMessage>({
    Number(1, "Operation", kOperationNames), Number(1, "Hardware Type", kHardwareNames).Into(&DhcpMessage::hardwareType),
    Number(1, "Hardware Address Length").Into(&DhcpMessage::hardwareLength), Number(1, "Hops"),
    Hex(4, "Transaction ID"), Number(2, "Seconds Elapsed"), Hex(2, "Flags"), Flag(0, "Broadcast"), Bits(1, 15, "Reserved"),
    IPv4("Client IP Address"), IPv4("Your IP Address"), IPv4("Next Server IP Address"), IPv4("Relay Agent IP Address")});
constexpr auto kServerName = Rows<DhcpMessage>({Text(kServerNameSize, "Server Host Name")});
constexpr auto kFile = Rows<DhcpMessage>({Text(kFileSize, "Boot File Name")});
constexpr auto kCookieRow = Rows<DhcpMessage>({Hex(4, "Magic Cookie")});

// The value of an option of the message, wherever it stands.
Field FindOption(Cursor options, uint32_t code) {
  Loop loop;
  Element element;
  while (More(options, loop) && TakeElement(options, DhcpOptionForm(), element)) {
    if (element.code == code && !element.single) return Rest(element.value);
    if (element.single && element.code != 0) break;
  }
  return {nullptr, 0, 0, 0, false};
}

Cursor OptionsOf(Cursor c) {
  if (PeekU32(c, kCookieOffset) != kCookie) return MakeCursor(c.at, c.offset, 0);
  TakeBytes(c, kCookieOffset + 4);
  return c;
}

// The address that the message is about: the one it gives, asks for or comes from.
Field AddressOf(const Cursor& c, const Cursor& options) {
  constexpr int32_t kYours = 16, kClients = 12;
  if (PeekU32(c, kYours)) return PeekBytes(c, kYours, 4);
  const Field requested = FindOption(options, kRequestedAddress);
  if (requested.here && requested.length == 4) return requested;
  return PeekU32(c, kClients) ? PeekBytes(c, kClients, 4) : Field{};
}

LineHandle AddTopLine(const Place& at, const Cursor& c, const Cursor& options) {
  constexpr int32_t kPrefix = 4;   // of "DHCPOFFER"
  char text[160];
  const Field type = FindOption(options, kMessageType);
  if (type.here) {
    FormatInto(text, sizeof text, "DHCP: %s", DhcpMessageTypeName(PeekU8(type)) + (PeekU8(type) - 1u < 18 ? kPrefix : 0));
  } else {
    FormatInto(text, sizeof text, "BOOTP: %s", PeekU8(c) == kReply ? "Reply" : "Request");
  }
  const Field address = AddressOf(c, options);
  if (address.here) AppendFormat(text, sizeof text, ", %s", IPv4Text(address.bytes));
  const int32_t length = static_cast<int32_t>(PeekU8(c, 2));
  const Field hardware = PeekBytes(c, kShortest, length);
  if (hardware.here && length > 0 && length <= kAddressSize) {
    if (length == kMacSize) {
      AppendFormat(text, sizeof text, ", Client %s", MacText(hardware.bytes));
    } else {
      AppendFormat(text, sizeof text, ", Client %s", HexText(hardware));
    }
  }
  return AddLine(at, Ahead(c, Left(c)), "%s", static_cast<const char*>(text));
}

void ShowHardwareAddress(const Place& in, Cursor& c, const DhcpMessage& message) {
  const int32_t length = message.hardwareLength.value < kAddressSize ? static_cast<int32_t>(message.hardwareLength.value)
                                                                      : kAddressSize;
  const Field address = TakeBytes(c, length < Left(c) ? length : Left(c));
  if (length == kMacSize && address.length == kMacSize) {
    AddLine(in, address, "Client Hardware Address: %s", MacText(address.bytes));
  } else if (length) {
    AddLine(in, address, "Client Hardware Address: %s", HexText(address));
  }
  const Field padding = TakeBytes(c, kAddressSize - length < Left(c) ? kAddressSize - length : Left(c));
  if (padding.length) AddLine(in, padding, "Client Hardware Address Padding: %s", HexText(padding));
}

void ShowBehindOptions(const Place& in, Cursor& c) {
  const Field padding = Rest(c);
  if (!padding.here) return;
  bool isZero = true;
  for (int32_t i = 0; i < padding.length; ++i) isZero = isZero && PeekU8(padding, i) == 0;
  if (isZero) {
    AddLine(in, padding, "Padding: %u bytes", padding.length);
  } else {
    AddBlock(in, padding, "Data Behind the Options");
  }
}

// Server name and boot file, or the options that stand there.
void ShowNameOrOptions(const Place& in, Cursor& c, DhcpMessage& message, bool holdsOptions,
                       RowSpan<DhcpMessage> rows, int32_t size, const char* title) {
  if (!holdsOptions) {
    if (Left(c) >= size) ShowRows<DhcpMessage>(in, c, rows, message);
    return;
  }
  Cursor field = TakeCursor(c, size);
  const Place under = Under(in, AddLine(in, Ahead(field, Left(field)), "%s", title));
  ShowDhcpOptions(under, field, message);
  ShowBehindOptions(under, field);
}

void ShowOptionsArea(const Place& in, Cursor& c, DhcpMessage& message) {
  if (PeekU32(c) != kCookie) {
    AddBlock(in, Rest(c), "Vendor Information");
    return;
  }
  ShowRows<DhcpMessage>(in, c, kCookieRow, message);
  ShowDhcpOptions(in, c, message);
  ShowBehindOptions(in, c);
}

}  // namespace

int32_t DecodeDhcp(const Place& at, Cursor c) {
  const uint32_t operation = PeekU8(c);
  if (Left(c) < kShortest || (operation != kRequest && operation != kReply)) return 0;
  const Cursor options = OptionsOf(c);
  const Place in = Under(at, AddTopLine(at, c, options));
  const Field overload = FindOption(options, kOverload), vendor = FindOption(options, kVendorClass);
  const uint32_t holders = overload.here && overload.length ? PeekU8(overload) : 0;
  DhcpMessage message{};
  message.vendorClass = reinterpret_cast<const char*>(vendor.bytes);
  message.vendorClassLength = vendor.length;
  ShowRows<DhcpMessage>(in, c, kFirst, message);
  ShowHardwareAddress(in, c, message);
  ShowNameOrOptions(in, c, message, holders & kOverloadsName, kServerName, kServerNameSize, "Options in the Server Name");
  ShowNameOrOptions(in, c, message, holders & kOverloadsFile, kFile, kFileSize, "Options in the Boot File Name");
  ShowOptionsArea(in, c, message);
  return 1;
}

}  // namespace qxview
