// Generic network virtualization encapsulation (RFC 8926): any Ethertype inside UDP, behind options of many makers.
//
//   version, options' length   flags   protocol type   network identifier (24)   reserved   options
//   option: class   type   reserved, length in words   data
#include "core/elements.h"
#include "decoders/link/carried.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 8;
constexpr uint32_t kLinux = 0x0100, kOvn = 0x0102, kTelemetry = 0x0103, kGoogle = 0x0132;

// Runs of the registry's classes.
struct ClassRun {
  uint16_t last;
  const char* name;
};
constexpr ClassRun kClasses[] = {
    {0x00FF, "Standard"}, {0x0100, "Linux"}, {0x0101, "Open vSwitch"}, {0x0102, "Open Virtual Networking (OVN)"},
    {0x0103, "In-band Network Telemetry (INT)"}, {0x0104, "VMware"}, {0x0105, "Amazon.com"}, {0x0106, "Cisco Systems"},
    {0x0107, "Oracle"}, {0x0110, "Amazon.com"}, {0x0118, "IBM"}, {0x0128, "Ericsson"}, {0x0129, "Oxide Computer"},
    {0x0131, "Cisco Systems"}, {0x0135, "Google"}, {0x0136, "InfoQuick Global Connection Tech"},
    {0xFFEF, "Unassigned"}, {0xFFFF, "Experimental"}};

const char* NameClass(uint32_t number) {
  for (const ClassRun& run : kClasses) {
    if (number <= run.last) return run.name;
  }
  return kUnknown;
}

const char* NameProtocol(uint32_t protocol) {
  const char* name = EthertypeName(static_cast<uint16_t>(protocol));
  return name ? name : kUnknown;
}

struct Geneve {
  Field protocol, length;
};
constexpr auto kHeader = Rows<Geneve>({
    Word(1), Bits(0, 2, "Version"), Bits(2, 6, "Option Length", " words").Into(&Geneve::length), Hex(1, "Flags"),
    Flag(0, "Control Packet"), Flag(1, "Critical Options Present"), Bits(2, 6, "Reserved"),
    Hex(2, "Protocol Type", NameProtocol).Into(&Geneve::protocol), Number(3, "Virtual Network Identifier (VNI)"),
    Hex(1, "Reserved")});
constexpr auto kOption = Rows<Geneve>({
    Hex(2, "Option Class", NameClass), Hex(1, "Type"), Flag(0, "Critical Option"), Word(1), Bits(0, 3, "Reserved"),
    Bits(3, 5, "Length", " words").Into(&Geneve::length)});
constexpr auto kDirectionNames = SortedNames({{0, "Egress"}, {1, "Ingress"}});
constexpr auto kGooglePolicy = Rows<Geneve>({
    Word(4), Bits(0, 28, "Virtual Network ID"), Bits(28, 3, "Reserved"),
    Bits(31, 1, "Direction", kDirectionNames)});
constexpr auto kGoogleEndpoint = Rows<Geneve>({Bytes(0, "Endpoint ID")});
constexpr auto kGoogleProfile = Rows<Geneve>({Number(8, "Profile ID")});
constexpr auto kOvnPorts = Rows<Geneve>({
    Word(4), Bits(1, 15, "Ingress Logical Port"), Bits(16, 16, "Egress Logical Port")});
constexpr auto kGroupPolicy = Rows<Geneve>({Number(4, "Group Policy ID")});

void ShowOptions(const Place& at, Cursor c, Geneve& geneve) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(at, c, loop)) {
    const uint32_t number = PeekU16(c), type = PeekU8(c, 2) & 0x7F;
    const int32_t size = 4 + static_cast<int32_t>(PeekU8(c, 3) & 31) * 4;
    Cursor option = TakeCursor(c, size);
    const Place in = Under(at, AddLine(at, Ahead(option, Left(option)), "Option: %s, Type 0x%.02X", NameClass(number),
                                       PeekU8(option, 2)));
    ShowRows<Geneve>(in, option, kOption, geneve);
    const auto show = [&](RowSpan<Geneve> rows) { ShowRows<Geneve>(in, option, rows, geneve); };
    if (number == kGoogle && type == 1) show(kGooglePolicy);
    if (number == kGoogle && type == 2) show(kGoogleEndpoint);
    if (number == kGoogle && type == 3) show(kGoogleProfile);
    if (number == kOvn && type == 0) show(kOvnPorts);
    if (number == kLinux && type == 0) show(kGroupPolicy);
    if (number == kTelemetry) AddBlock(in, Rest(option), "Telemetry");
    option.ranShort = false;
    const Field rest = Rest(option);
    if (rest.here) AddLine(in, rest, "Option Data: %s", HexText(rest));
  }
}

}  // namespace

int32_t DecodeGeneve(const Place& at, Cursor c) {
  const int32_t options = static_cast<int32_t>(PeekU8(c) & 0x3F) * 4;
  if (Left(c) < kHeaderSize || PeekU8(c) >> 6 != 0) return 0;
  const uint32_t protocol = PeekU16(c, 2);
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "Geneve: Network %u, %s", PeekU24(c, 4),
                                     NameProtocol(protocol)));
  Geneve geneve = ShowRows(in, c, kHeader);
  ShowOptions(in, TakeCursor(c, options), geneve);
  CoverBytes(in, c);
  return DecodeCarriedPacket(Deeper(at), c, static_cast<uint16_t>(protocol), "Geneve Data");
}

}  // namespace qxview
