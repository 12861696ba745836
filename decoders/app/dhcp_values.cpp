// Values that options of both versions of DHCP hold: lists of addresses, of domain names (RFC 1035 3.1, RFC 3397) and of
// URIs (RFC 8572), client architectures (RFC 4578), virtual subnets (RFC 6607), ports (RFC 7618), RADIUS attributes
// (RFC 4014), parameters of encrypted resolvers (RFC 9463).
#include "decoders/app/dhcp.h"
#include "decoders/app/dns_service.h"
#include "decoders/common/name_labels.h"

namespace qxview {
namespace {

constexpr auto kEnterpriseNames = SortedNames({
    {0, "Reserved"}, {9, "Cisco"}, {11, "Hewlett-Packard"}, {42, "Sun Microsystems"}, {43, "3Com"}, {63, "Apple"},
    {171, "D-Link"}, {207, "Allied Telesis"}, {272, "BSDI"}, {311, "Microsoft"}, {343, "Intel"}, {529, "Ascend"},
    {562, "Nortel"}, {637, "Alcatel-Lucent"}, {664, "ADTRAN"}, {674, "Dell"}, {890, "ZyXEL"}, {1166, "Motorola"},
    {1588, "Brocade"}, {1916, "Extreme Networks"}, {1991, "Foundry Networks"}, {2011, "Huawei"}, {2272, "Nortel"},
    {2495, "Internet Systems Consortium"}, {2636, "Juniper Networks"}, {3320, "Deutsche Telekom"},
    {3561, "Broadband Forum"}, {3902, "ZTE"}, {4413, "Broadcom"}, {4491, "CableLabs"}, {4874, "Unisphere Networks"},
    {6527, "Nokia"}, {6876, "VMware"}, {6889, "Avaya"}, {9694, "Linksys"}, {10055, "Technicolor"},
    {11863, "TP-Link"}, {12356, "Fortinet"}, {14823, "Aruba Networks"}, {14988, "MikroTik"}, {16491, "Roku"},
    {25053, "Ruckus Wireless"}, {25506, "H3C"}, {25623, "Internet Systems Consortium"}, {30065, "Arista Networks"},
    {33849, "Fon"}, {40712, "QEMU"}, {41112, "Ubiquiti"}, {43793, "systemd"}, {45346, "Android"}});

constexpr auto kArchitectureNames = SortedNames({
    {0, "x86 BIOS"}, {1, "NEC/PC98"}, {2, "Itanium"}, {3, "DEC Alpha"}, {4, "Arc x86"}, {5, "Intel Lean Client"},
    {6, "x86 UEFI"}, {7, "x64 UEFI"}, {8, "EFI Xscale"}, {9, "EBC"}, {10, "ARM 32-bit UEFI"},
    {11, "ARM 64-bit UEFI"}, {12, "PowerPC Open Firmware"}, {13, "PowerPC ePAPR"}, {14, "POWER OPAL v3"},
    {15, "x86 UEFI Boot from HTTP"}, {16, "x64 UEFI Boot from HTTP"}, {17, "EBC Boot from HTTP"},
    {18, "ARM UEFI 32 Boot from HTTP"}, {19, "ARM UEFI 64 Boot from HTTP"}, {20, "PC/AT BIOS Boot from HTTP"},
    {21, "ARM 32 U-Boot"}, {22, "ARM 64 U-Boot"}, {23, "ARM U-Boot 32 Boot from HTTP"},
    {24, "ARM U-Boot 64 Boot from HTTP"}, {25, "RISC-V 32-bit UEFI"}, {26, "RISC-V 32-bit UEFI Boot from HTTP"},
    {27, "RISC-V 64-bit UEFI"}, {28, "RISC-V 64-bit UEFI Boot from HTTP"}, {29, "RISC-V 128-bit UEFI"},
    {30, "RISC-V 128-bit UEFI Boot from HTTP"}, {31, "s390 Basic"}, {32, "s390 Extended"}, {33, "MIPS 32-bit UEFI"},
    {34, "MIPS 64-bit UEFI"}, {35, "Sunway 32-bit UEFI"}, {36, "Sunway 64-bit UEFI"}, {37, "LoongArch 32-bit UEFI"},
    {38, "LoongArch 32-bit UEFI Boot from HTTP"}, {39, "LoongArch 64-bit UEFI"},
    {40, "LoongArch 64-bit UEFI Boot from HTTP"}, {41, "ARM RPIBOOT"}});

constexpr auto kSelectionNames = SortedNames({{0, "Medium"}, {1, "High"}, {2, "Reserved"}, {3, "Low"}});

}  // namespace

const char* DhcpEnterpriseName(uint32_t number) { return LookupName(kEnterpriseNames, number); }

void ShowDhcpIPv4List(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kAddress = Rows<DhcpMessage>({IPv4("IP Address").Note(", %s")});
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<DhcpMessage>(in, c, kAddress, message);
}

void ShowDhcpIPv6List(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kAddress = Rows<DhcpMessage>({IPv6("IPv6 Address").Note(", %s")});
  Loop loop;
  while (Left(c) >= 16 && MoreAt(in, c, loop)) ShowRows<DhcpMessage>(in, c, kAddress, message);
}

void ShowDhcpNames(const Place& in, Cursor& c, DhcpMessage&) {
  const Field whole = WholeOf(c);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    ShortText<256> name{};
    const Cursor start = c;
    TakeNameLabels(c, whole, [&](const Field& label) {
      AppendFormat(name.text, sizeof name.text, "%s%s", name.text[0] ? "." : "", Text(label));
      return true;
    });
    const Field taken = Ahead(start, c.offset - start.offset);
    if (taken.length < 1) break;
    AddLine(in, taken, "Domain Name: %s", name);
    AppendToParent(in, taken, ", %s", name);
  }
}

void ShowDhcpSubnetSelection(const Place& in, Cursor& c, DhcpMessage& message) {
  constexpr uint32_t kText = 0, kIdentifier = 1;
  static constexpr auto kTypeNames = SortedNames({
      {0, "NVT ASCII VPN Identifier"}, {1, "VPN-ID"}, {255, "Global, Default VPN"}});
  static constexpr auto kType = Rows<DhcpMessage>({Number(1, "Type", kTypeNames).Into(&DhcpMessage::code)});
  static constexpr auto kName = Rows<DhcpMessage>({Text(0, "VPN Identifier").Note(", %s")});
  static constexpr auto kNumber = Rows<DhcpMessage>({Hex(3, "VPN Authority OUI"), Hex(4, "VPN Index").Note(", 0x%08X")});
  ShowRows<DhcpMessage>(in, c, kType, message);
  if (!Left(c)) return;
  if (message.code.value == kText) ShowRows<DhcpMessage>(in, c, kName, message);
  if (message.code.value == kIdentifier && Left(c) >= 7) ShowRows<DhcpMessage>(in, c, kNumber, message);
}

void ShowDhcpRadius(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr ElementForm kForm{.lengthCountsHeader = true};
  static constexpr auto kAttributes = Choices<DhcpMessage>({
      {1, "User-Name", kDhcpText}, {6, "Service-Type", kDhcpU32}, {18, "Reply-Message", kDhcpText},
      {22, "Framed-Route", kDhcpText}, {26, "Vendor-Specific"}, {27, "Session-Timeout", kDhcpSeconds},
      {31, "Calling-Station-Id", kDhcpText}, {32, "NAS-Identifier", kDhcpText},
      {44, "Acct-Session-Id", kDhcpText}, {88, "Framed-Pool", kDhcpText}, {100, "Framed-IPv6-Pool", kDhcpText},
      {123, "Delegated-IPv6-Prefix"}, {168, "Framed-IPv6-Address", kDhcpIPv6},
      {169, "DNS-Server-IPv6-Address", kDhcpIPv6}, {171, "Delegated-IPv6-Prefix-Pool", kDhcpText},
      {172, "Stateful-IPv6-Address-Pool", kDhcpText}});
  ShowElements(in, c, kForm, "Attribute", kAttributes, message);
}

void ShowDhcpUris(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kUri = Rows<DhcpMessage>({Counted(2, Text(0, "URI")).Note(", %s")});
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<DhcpMessage>(in, c, kUri, message);
}

void ShowDhcpArchitectures(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kType = Rows<DhcpMessage>({Number(2, "Architecture Type", kArchitectureNames).Note(", %s")});
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<DhcpMessage>(in, c, kType, message);
}

void ShowDhcpPortParameters(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kRows = Rows<DhcpMessage>({
      Number(1, "PSID Offset"), Number(1, "PSID Length").Note(", PSID Length %u"), Hex(2, "PSID").Note(", PSID 0x%04X")});
  ShowRows<DhcpMessage>(in, c, kRows, message);
}

// The preference stands in the flags in front (RFC 6731).
const char* DhcpSelectionName(uint32_t preference) { return LookupName(kSelectionNames, preference); }

void ShowDhcpServiceParameters(const Place& in, Cursor& c, DhcpMessage&) { ShowServiceParameters(in, c); }

}  // namespace qxview
