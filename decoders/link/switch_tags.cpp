// Tags that the chips of switches put into the frames between them and a processor: Marvell's DSA and EtherType DSA,
// Broadcom's and Realtek's. They stand behind the addresses, or are link types of captures.
#include "core/rows.h"
#include "decoders/link/link_frame.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

constexpr auto kModeNames = SortedNames({{0, "To Processor"}, {1, "From Processor"}, {2, "To Sniffer"}, {3,
    "Forward"}});
struct Tag {
  Field mode, isTagged, operation;
};
constexpr auto kDsa = Rows<Tag>({
    Hex(4, "DSA Tag"), Bits(0, 2, "Mode", kModeNames).Note(", %s").Into(&Tag::mode), Flag(2,
    "VLAN Tagged").Into(&Tag::isTagged),
    Bits(3, 5, "Device"), Bits(8, 5, "Port or Trunk").Note(", Port %u"), Flag(13, "Trunk or Code Bit 2"), Bits(14, 1,
    "Code Bit 1"),
    Flag(15, "CFI"), Bits(16, 3, "Priority"), Bits(19, 1, "Code Bit 0"), Bits(20, 12, "VLAN ID")});
// Why a frame goes to the processor, or how a sniffer got it.
constexpr auto kCodeNames = SortedNames({
    {0, "BPDU or Management"}, {1, "Frame to Register Read or Write"}, {2, "IGMP or MLD Trap"}, {3, "Policy Trap"},
    {4, "ARP Mirror"}, {5, "Policy Mirror"}});
Tag ShowDsa(const Place& in, Cursor& c) {
  constexpr uint32_t kToProcessor = 0, kToSniffer = 2;
  const Field word = PeekBytes(c, 0, 4);
  const Tag tag = ShowRows(in, c, kDsa);
  const uint32_t bits = PeekU32(word), code = (bits >> 17 & 3) << 1 | (bits >> 12 & 1);
  if (tag.mode.here && tag.mode.value == kToProcessor) AddLine(in, word, "Code: %u = %s", code, LookupName(kCodeNames, code));
  if (tag.mode.here && tag.mode.value == kToSniffer) {
    AddLine(in, word, "Mirrored at: %s", bits >> 18 & 1 ? "Ingress" : "Egress");
  }
  return tag;
}
constexpr auto kExtendedHead = Rows<Tag>({Hex(2, "Reserved")});

constexpr auto kBroadcomOperations = SortedNames({{0, "Egress Without Reason"}, {1, "Egress"}});
constexpr auto kBroadcomToProcessor = Rows<Tag>({
    Hex(4, "Broadcom Tag"), Bits(0, 3, "Operation", kBroadcomOperations), Bits(3, 5, "Reserved"),
    Bits(8, 8, "Reason"), Bits(16, 8, "Traffic Class and Flags"), Bits(24, 3, "Class"), Bits(27, 5,
    "Source Port").Note(", Source Port %u")});
constexpr auto kBroadcomToSwitch = Rows<Tag>({
    Hex(4, "Broadcom Tag"), Bits(0, 3, "Operation", kBroadcomOperations), Bits(3, 3, "Class"), Bits(6, 2,
    "Tag Enforcement"),
    Bits(8, 1, "Time Stamp Request"), Bits(9, 23, "Destination Port Map")});

constexpr auto kRealtekProtocols = SortedNames({
    {0x01, "RRCP"}, {0x02, "Remote Echo"}, {0x03, "Loop Detection"}, {0x04, "8-byte Processor Tag"}, {0x23,
    "Loop Detection"}});
constexpr auto kRealtekReasons = SortedNames({{0, "Forward"}, {80, "Trap"}});
constexpr auto kRealtekOperations = SortedNames({
    {0, "Hello"}, {1, "Get"}, {2, "Set"}, {0x80, "Hello Reply"}, {0x81, "Get Reply"}, {0x82, "Set Reply"}});
constexpr auto kRealtekTag8 = Rows<Tag>({
    Number(1, "Protocol", kRealtekProtocols), Number(1, "Reason", kRealtekReasons), Word(2), Flag(0,
    "Filter ID Enabled"),
    Bits(1, 4, "Filter ID"), Flag(5, "Priority Enabled"), Bits(6, 3, "Priority"), Flag(9, "Keep Format"), Bits(10, 1,
    "Reserved"),
    Flag(11, "Learning Disabled"), Bits(12, 4, "Reserved"), Word(2), Flag(0, "Allow"), Bits(1, 15,
    "Port or Port Mask").Note(", Port %u")});
constexpr auto kRealtekTag4 = Rows<Tag>({
    Word(2), Bits(0, 4, "Processor Tag Protocol"), Bits(4, 8, "Port Flags"), Bits(12, 4, "Port").Note(", Port %u")});
constexpr auto kRrcp = Rows<Tag>({
    Number(1, "Protocol", kRealtekProtocols), Number(1, "Operation", kRealtekOperations).Into(&Tag::operation),
    Flag(0, "Reply"), Bits(1, 7, "Operation Code"), Hex(2, "Authentication Key")});
constexpr auto kRrcpRegister = LittleRows<Tag>({Hex(2, "Register Address"), Hex(4, "Register Data")});
constexpr auto kRrcpHello = Rows<Tag>({
    Number(1, "Downlink Port"), Number(1, "Uplink Port"), Mac("Uplink Address"), Hex(2, "Chip ID"), Hex(4,
    "Vendor ID")});
constexpr auto kLoopHead = Rows<Tag>({Number(1, "Protocol", kRealtekProtocols)});

// The type behind a tag stands under the tag's line, what it names behind it.
int32_t DecodeBehind(const Place& in, const Cursor& c) { return DecodeEthernetHeader(in, c); }

// Frames that a switch's own link type holds: addresses, the tag, the type.
Place AddAddresses(const Place& at, Cursor& c) {
  const Place in = Under(at, AddLine(at, Ahead(c, 12), "Ethernet Addresses: %s -> %s", MacText(PeekBytes(c, 6,
      6).bytes),
                                     MacText(PeekBytes(c, 0, 6).bytes)));
  AddAddress(in, TakeBytes(c, kMacAddressLength), "Destination");
  AddAddress(in, TakeBytes(c, kMacAddressLength), "Source");
  return in;
}

int32_t DecodeDsaTag(const Place& at, Cursor c) {
  const Place in = Under(at, AddLine(at, Ahead(c, 4), "DSA Tag"));
  if (!ShowDsa(in, c).mode.here) return 1;
  return DecodeBehind(in, c);
}

int32_t DecodeBroadcom(const Place& at, Cursor c, bool isInFront) {
  constexpr int32_t kTagSize = 4, kAddresses = 12;
  if (Left(c) < kTagSize + kAddresses) return 0;
  if (!isInFront) AddAddresses(at, c);
  const Place in = Under(at, AddLine(at, Ahead(c, kTagSize), "Broadcom Tag"));
  constexpr uint32_t kIngress = 1;
  // What goes to the switch has the operation 1 and a map of ports; from it the operation is 0.
  const bool toSwitch = PeekU8(c) >> 5 == kIngress;
  Tag tag{};
  ShowRows<Tag>(in, c, toSwitch ? RowSpan<Tag>(kBroadcomToSwitch) : RowSpan<Tag>(kBroadcomToProcessor), tag);
  return isInFront ? CallDecoder(at, c, DecodeMacHeader, "Ethernet Data") : DecodeBehind(in, c);
}

}  // namespace

int32_t DecodeEtherTypeDsa(const Place& at, Cursor c) {
  if (Left(c) < 6) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 6), "EtherType DSA Tag"));
  ShowRows(in, c, kExtendedHead);
  ShowDsa(in, c);
  return DecodeBehind(in, c);
}

int32_t DecodeDsaFrame(const Place& at, Cursor c) {
  if (Left(c) < 16) return 0;
  AddAddresses(at, c);
  return DecodeDsaTag(at, c);
}
int32_t DecodeBroadcomTag(const Place& at, Cursor c) { return DecodeBroadcom(at, c, false); }
int32_t DecodeBroadcomTagInFront(const Place& at, Cursor c) { return DecodeBroadcom(at, c, true); }

int32_t DecodeRealtek(const Place& at, Cursor c) {
  constexpr uint32_t kRemoteControl = 1, kTag8 = 4;
  if (Left(c) < 2) return 0;
  const uint32_t protocol = PeekU8(c);
  Tag tag{};
  const bool isTag = protocol == kTag8 || protocol >> 4 == 0x9 || protocol >> 4 == 0xA;
  const Place in = Under(at, isTag ? AddLine(at, Ahead(c, protocol == kTag8 && Left(c) >= 6 ? 6 : 2), "Realtek Tag")
                                   : AddLine(at, Ahead(c, Left(c)), "Realtek: %s", LookupName(kRealtekProtocols,
                                       protocol)));
  if (isTag) {
    ShowRows<Tag>(in, c, protocol == kTag8 ? RowSpan<Tag>(kRealtekTag8) : RowSpan<Tag>(kRealtekTag4), tag);
    return DecodeBehind(in, c);
  }
  if (protocol == kRemoteControl) {
    ShowRows<Tag>(in, c, kRrcp, tag);
    const uint32_t operation = tag.operation.value & 0x7F;
    if (operation == 1 || operation == 2) ShowRows<Tag>(in, c, kRrcpRegister, tag);
    if (tag.operation.value == 0x80) ShowRows<Tag>(in, c, kRrcpHello, tag);
  } else {
    ShowRows<Tag>(in, c, kLoopHead, tag);
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Realtek Data");
  return 1;
}

}  // namespace qxview
