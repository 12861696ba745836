// What GTP's elements hold of the session management between a mobile and its network (3GPP TS 24.008 10.5.6): options of
// the protocol configuration, and templates of traffic flows.
#include "decoders/link/ppp.h"
#include "decoders/net/gtp_names.h"
#include "decoders/net/gtp_parts.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

// Protocol configuration (TS 24.008 10.5.6.3): packets of PPP's control protocols and containers by number.
constexpr auto kOptionsHead = Rows<GtpElement>({
    Word(1), Flag(0, "Extension"), Bits(1, 4, "Spare"), Bits(5, 3, "Configuration Protocol")});
constexpr auto kContainer = Rows<GtpElement>({
    Hex(2, "Container ID", kGtpContainerNames).Note(": %s").Into(&GtpElement::kind),
    Number(1, "Container Length").Into(&GtpElement::length)});
constexpr auto kContents = Rows<GtpElement>({Bytes(0, "Contents").SizedBy(&GtpElement::length)});
constexpr auto kServer4 = Rows<GtpElement>({IPv4("Address")});
constexpr auto kServer6 = Rows<GtpElement>({IPv6("Address")});
constexpr auto kUnit = Rows<GtpElement>({Number(2, "Maximum Transmission Unit", " bytes")});
constexpr auto kSelectedMode = Rows<GtpElement>({Number(1, "Mode", kGtpBearerModeNames)});
// Control protocols of PPP come as their packets; what the network answers has the size of an address.
void ShowContents(const Place& in, Cursor& c, GtpElement& element) {
  const uint32_t id = element.kind.value;
  const auto show = [&](RowSpan<GtpElement> rows) { ShowRows<GtpElement>(in, c, rows, element); };
  const bool isServer = (id >= 0x0001 && id <= 0x0003) || (id >= 0x0007 && id <= 0x0009) || id == 0x000C || id == 0x000D;
  DecoderFunction control = FindPppControl(id);
  if (!control) control = FindPppLink(id);
  if (id >= 0x8000 && control) {
    CallDecoder(in, c, control, "Contents");
  } else if (isServer && (Left(c) == 4 || Left(c) == 16)) {
    show(Left(c) == 4 ? RowSpan<GtpElement>(kServer4) : RowSpan<GtpElement>(kServer6));
  } else if (id == 0x0010 && Left(c) == 2) {
    show(kUnit);
  } else if (id == 0x0005 && Left(c) == 1) {
    show(kSelectedMode);
  } else {
    show(kContents);
  }
}
}  // namespace

void ShowGtpOptions(const Place& in, Cursor& c, GtpElement& element) {
  ShowRows<GtpElement>(in, c, kOptionsHead, element);
  Loop loop;
  while (Left(c) >= 3 && MoreAt(in, c, loop)) {
    const int32_t size = 3 + static_cast<int32_t>(PeekU8(c, 2));
    Cursor container = TakeCursor(c, size);
    const Place under = Under(in, AddLine(in, Ahead(container, Left(container)), "Container"));
    ShowRows<GtpElement>(under, container, kContainer, element);
    if (Left(container) > 0) ShowContents(under, container, element);
  }
}

namespace {

// A traffic flow template (TS 24.008 10.5.6.12): packet filters of components by number.
constexpr auto kTemplate = Rows<GtpElement>({
    Word(1), Bits(0, 3, "TFT Operation", kGtpTemplateNames), Flag(3, "Parameter List Present"),
    Bits(4, 4, "Packet Filters").Into(&GtpElement::count)});
constexpr auto kFilter = Rows<GtpElement>({
    Word(1), Bits(0, 2, "Spare"), Bits(2, 2, "Filter Direction", kGtpDirectionNames), Bits(4, 4, "Filter Identifier"),
    Number(1, "Evaluation Precedence"), Number(1, "Filter Length").Into(&GtpElement::length)});
const char* NameIpProtocol(uint32_t protocol) { return IpProtocolName(protocol); }
constexpr auto kMasked4 = Rows<GtpElement>({IPv4("Address"), IPv4("Mask")});
constexpr auto kMasked6 = Rows<GtpElement>({IPv6("Address"), IPv6("Mask")});
constexpr auto kPrefix6 = Rows<GtpElement>({IPv6("Address"), Number(1, "Prefix Length")});
constexpr auto kIpProtocol = Rows<GtpElement>({Number(1, nullptr, NameIpProtocol).Note(": %s")});
constexpr auto kPort = Rows<GtpElement>({Number(2, nullptr).Note(": %u")});
constexpr auto kPortRange = Rows<GtpElement>({Number(2, "First Port").Note(": %u"), Number(2, "Last Port").Note(" to %u")});
constexpr auto kClass = Rows<GtpElement>({Hex(1, "Traffic Class"), Hex(1, "Mask")});
constexpr auto kSecurity = Rows<GtpElement>({Hex(4, nullptr).Note(": 0x%.08X")});
constexpr auto kLabel = Rows<GtpElement>({Hex(3, nullptr).Note(": 0x%.06X")});
constexpr auto kStation = Rows<GtpElement>({Mac(nullptr).Note(": %s")});
constexpr auto kVlan = Rows<GtpElement>({Word(2), Bits(0, 4, "Spare"), Bits(4, 12, "VLAN ID").Note(": %u")});
constexpr auto kVlanPriority = Rows<GtpElement>({Word(1), Bits(0, 4, "Spare"), Bits(4, 3, "Priority"), Flag(7, "Drop Eligible")});
constexpr auto kEthertype = Rows<GtpElement>({Hex(2, nullptr).Note(": 0x%.04X")});
constexpr auto kComponents = Choices<GtpElement>({
    {0x10, "IPv4 Remote Address", kMasked4}, {0x11, "IPv4 Local Address", kMasked4},
    {0x20, "IPv6 Remote Address", kMasked6}, {0x21, "IPv6 Remote Prefix", kPrefix6},
    {0x23, "IPv6 Local Prefix", kPrefix6}, {0x30, "Protocol", kIpProtocol}, {0x40, "Local Port", kPort},
    {0x41, "Local Port Range", kPortRange}, {0x50, "Remote Port", kPort}, {0x51, "Remote Port Range", kPortRange},
    {0x60, "Security Parameter Index", kSecurity}, {0x70, "Type of Service", kClass}, {0x80, "Flow Label", kLabel},
    {0x81, "Destination MAC Address", kStation}, {0x82, "Source MAC Address", kStation}, {0x83, "C-Tag VLAN", kVlan},
    {0x84, "S-Tag VLAN", kVlan}, {0x85, "C-Tag Priority", kVlanPriority}, {0x86, "S-Tag Priority", kVlanPriority},
    {0x87, "Ethertype", kEthertype}});
int32_t SizeOfComponent(uint32_t type) {
  switch (type) {
    case 0x20: return 32;
    case 0x21:
    case 0x23: return 17;
    case 0x10:
    case 0x11: return 8;
    case 0x81:
    case 0x82: return 6;
    case 0x41:
    case 0x51:
    case 0x60: return 4;
    case 0x80: return 3;
    case 0x30:
    case 0x85:
    case 0x86: return 1;
    default: return 2;
  }
}
// Components have no lengths: one that is not known ends what can be told apart.
void ShowComponents(const Place& at, Cursor& c, GtpElement& element) {
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const Choice<GtpElement>* known = FindChoice<GtpElement>(kComponents, PeekU8(c));
    if (!known) break;
    Cursor part = TakeCursor(c, 1 + SizeOfComponent(known->code));
    const Place in = Under(at, AddLine(at, Ahead(part, Left(part)), "Component: %s", known->name));
    const Field type = TakeU8(part);
    AddLine(in, type, "Type: 0x%.02X = %s", type.value, known->name);
    ShowChoice<GtpElement>(in, part, known, element);
  }
  AddBlock(at, Rest(c), "Filter Contents");
}
constexpr auto kParameter = Rows<GtpElement>({
    Number(1, "Parameter", kGtpParameterNames), Counted(1, Bytes(0, "Parameter Contents"))});
constexpr uint32_t kDeleteFilters = 5;
constexpr auto kFilterId = Rows<GtpElement>({Number(1, "Filter Identifier")});
}  // namespace

void ShowGtpTemplate(const Place& at, Cursor& c, GtpElement& element) {
  const uint32_t operation = PeekU8(c) >> 5;
  const bool hasParameters = PeekU8(c) & 0x10;
  ShowRows<GtpElement>(at, c, kTemplate, element);
  const uint32_t filters = element.count.value;
  Loop loop;
  for (uint32_t i = 0; i < filters && MoreAt(at, c, loop); ++i) {
    if (operation == kDeleteFilters) {
      ShowRows<GtpElement>(at, c, kFilterId, element);
      continue;
    }
    const int32_t size = 3 + static_cast<int32_t>(PeekU8(c, 2));
    Cursor filter = TakeCursor(c, size);
    const Place in = Under(at, AddLine(at, Ahead(filter, Left(filter)), "Packet Filter %u", i + 1));
    ShowRows<GtpElement>(in, filter, kFilter, element);
    ShowComponents(in, filter, element);
  }
  while (hasParameters && MoreAt(at, c, loop)) ShowRows<GtpElement>(at, c, kParameter, element);
}

}  // namespace qxview
