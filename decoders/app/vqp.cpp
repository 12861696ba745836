// The VLAN Query Protocol (VQP) of VLAN membership policy servers: which VLAN does a station belong to? There is no
// standard; the layout is the one that free servers published.
//
//   version (1)   type (1)   error (1)   items (1)   sequence (4)   items: type (4), length (2), value
#include "core/elements.h"

namespace qxview {
namespace {

constexpr auto kTypeNames = SortedNames({
    {1, "Join Request"}, {2, "Join Response"}, {3, "Reconfirm Request"}, {4, "Reconfirm Response"}});
constexpr auto kErrorNames = SortedNames({
    {0, "No Error"}, {1, "Wrong Version"}, {2, "Insufficient Resources"}, {3, "Access Denied"}, {4, "Shut Down Port"},
    {5, "Wrong Management Domain"}});

struct Vqp {
  Field type;
};
constexpr auto kHeader = Rows<Vqp>({
    Number(1, "Version"), Number(1, "Type", kTypeNames), Number(1, "Error", kErrorNames), Number(1, "Number of Items"),
    Hex(4, "Sequence")});
constexpr auto kAddress = Rows<Vqp>({IPv4("Client IP Address").Note(", %s")});
constexpr auto kText = Rows<Vqp>({Text(0, nullptr).Note(", %s")});
constexpr auto kMac = Rows<Vqp>({Mac(nullptr).Note(", %s")});
constexpr auto kOctets = Rows<Vqp>({Bytes(0, nullptr)});

constexpr auto kItems = Choices<Vqp>({
    {0x0C01, "Client IP Address", kAddress}, {0x0C02, "Port Name", kText}, {0x0C03, "VLAN Name", kText},
    {0x0C04, "Domain Name", kText}, {0x0C05, "Ethernet Frame", kOctets}, {0x0C06, "MAC Address", kMac},
    {0x0C07, "Unknown Item", kOctets}, {0x0C08, "Cookie", kMac}});

}  // namespace

int32_t DecodeVqp(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 8;
  constexpr ElementForm kForm{.typeSize = 4, .lengthSize = 2};
  const uint32_t type = PeekU8(c, 1);
  if (Left(c) < kHeaderSize || PeekU8(c) != 1) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "VQP: %s", LookupName(kTypeNames, type)));
  Vqp vqp = ShowRows(in, c, kHeader);
  ShowElements(in, c, kForm, "Item", kItems, vqp);
  AddBlock(in, Rest(c), "Data");
  return 1;
}

}  // namespace qxview
