// VLAN Trunking Protocol, as its maker's document "Understanding VLAN Trunk Protocol" describes it: which VLANs are there in
// this domain?
//
//   version   code   followers, sequence or nothing   length of the domain's name   name (32)   what the code says
#include "core/elements.h"

namespace qxview {
namespace {

enum : uint32_t { kSummary = 1, kSubset = 2, kRequest = 3, kJoin = 4 };

struct Vtp {
  Field version, code, name, revision, size;
};

constexpr auto kCodeNames = SortedNames({
    {1, "Summary Advertisement"}, {2, "Subset Advertisement"}, {3, "Advertisement Request"}, {4, "Join"}});
constexpr auto kStatusNames = SortedNames({{0, "Operational"}, {1, "Suspended"}});
constexpr auto kTypeNames = SortedNames({
    {1, "Ethernet"}, {2, "FDDI"}, {3, "TrCRF"}, {4, "FDDI-Net"}, {5, "TrBRF"}});
constexpr auto kBridgeTypeNames = SortedNames({{1, "SRT"}, {2, "SRB"}});
constexpr auto kBackupNames = SortedNames({{1, "Off"}, {2, "On"}});

constexpr auto kHead = Rows<Vtp>({Number(1, "Version").Into(&Vtp::version), Number(1, "Code", kCodeNames).Into(&Vtp::code)});
constexpr auto kFollowers = Rows<Vtp>({Number(1, "Followers")});
constexpr auto kSequence = Rows<Vtp>({Number(1, "Sequence Number")});
constexpr auto kReserved = Rows<Vtp>({Hex(1, "Reserved")});
constexpr auto kDomain = Rows<Vtp>({
    Number(1, "Management Domain Length"), Text(32, "Management Domain").Note(", Domain %s").Into(&Vtp::name)});
constexpr auto kRevision = Rows<Vtp>({Number(4, "Configuration Revision Number").Note(", Revision %u")});
constexpr auto kUpdate = Rows<Vtp>({
    IPv4("Updater Identity"), Text(12, "Update Timestamp"), Bytes(16, "MD5 Digest")});
constexpr auto kStart = Rows<Vtp>({Number(2, "Start Value")});
// Filled to a multiple of four octets.
void ShowName(const Place& in, Cursor& c, const char* label, Vtp& vtp) {
  Cursor part = TakeCursor(c, (static_cast<int32_t>(vtp.size.value) + 3) & ~3);
  const Field name = Rest(part);
  AddLine(in, name, "%s: %s", label, Text(name));
  AppendToParent(in, name, ", %s", Text(name));
}

constexpr auto kVlan = Rows<Vtp>({
    Number(1, "VLAN Information Length"), Number(1, "Status", kStatusNames), Number(1, "VLAN Type", kTypeNames),
    Number(1, "VLAN Name Length").Into(&Vtp::size), Number(2, "ISL VLAN ID").Note(" %u"), Number(2, "MTU Size"),
    Hex(4, "802.10 Index"), Shown("VLAN Name", ShowName)});
constexpr auto kWord = Rows<Vtp>({Number(2, nullptr)});
constexpr auto kTranslated = Rows<Vtp>({Number(2, "First Bridged VLAN"), Number(2, "Second Bridged VLAN")});
constexpr auto kHexWord = Rows<Vtp>({Hex(2, nullptr)});
constexpr auto kBridgeType = Rows<Vtp>({Number(2, nullptr, kBridgeTypeNames)});
constexpr auto kBackup = Rows<Vtp>({Number(2, nullptr, kBackupNames)});
constexpr auto kVlanElements = Choices<Vtp>({
    {1, "Source-Routing Ring Number", kHexWord}, {2, "Source-Routing Bridge Number", kHexWord},
    {3, "Spanning Tree Protocol Type", kWord}, {4, "Parent VLAN", kWord}, {5, "Translationally Bridged VLANs", kTranslated},
    {6, "Pruning", kWord}, {7, "Bridge Type", kBridgeType}, {8, "Maximum ARE Hop Count", kWord},
    {9, "Maximum STE Hop Count", kWord}, {10, "Backup CRF Mode", kBackup}});
constexpr ElementForm kVlanForm{.unit = 2};

void ShowVlans(const Place& in, Cursor& c, Vtp& vtp) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Cursor start = c;
    Cursor vlan = TakeCursor(c, PeekU8(c));
    if (Left(vlan) < 12) {
      c = start;
      return;
    }
    const Place under = Under(in, AddLine(in, Ahead(vlan, Left(vlan)), "VLAN"));
    ShowRows<Vtp>(under, vlan, kVlan, vtp);
    ShowElements(under, vlan, kVlanForm, "Element", kVlanElements, vtp);
    AddBlock(under, Rest(vlan), "Data");
  }
}

// A bit for each VLAN, a thousand and more of them.
void ShowJoin(const Place& in, Cursor& c) {
  const Field first = TakeU16(c), last = TakeU16(c);
  AddLine(in, first, "First VLAN: %u", first.value);
  AddLine(in, last, "Last VLAN: %u", last.value);
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "Advertised VLANs"));
  Loop loop;
  for (uint32_t vlan = first.value; MoreAt(in, c, loop); vlan += 8) {
    const Field active = TakeU8(c);
    AddLine(under, active, "VLANs %u to %u: 0x%.02X", vlan, vlan + 7, active.value);
  }
}

}  // namespace

int32_t DecodeVtp(const Place& at, Cursor c) {
  if (Left(c) < 4) return 0;
  const Vtp ahead = PeekRows(c, kHead);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "VTP: %s", LookupName(kCodeNames, ahead.code.value)));
  Vtp vtp = ShowRows(in, c, kHead);
  const uint32_t code = vtp.code.value;
  const RowSpan<Vtp> third = code == kSummary  ? RowSpan<Vtp>(kFollowers)
                             : code == kSubset ? RowSpan<Vtp>(kSequence)
                                               : RowSpan<Vtp>(kReserved);
  ShowRows<Vtp>(in, c, third, vtp);
  ShowRows<Vtp>(in, c, kDomain, vtp);
  if (code == kSummary || code == kSubset) ShowRows<Vtp>(in, c, kRevision, vtp);
  if (code == kSummary) ShowRows<Vtp>(in, c, kUpdate, vtp);
  if (code == kSubset) ShowVlans(in, c, vtp);
  if (code == kRequest) ShowRows<Vtp>(in, c, kStart, vtp);
  if (code == kJoin) ShowJoin(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "VTP Data");
  return 1;
}

}  // namespace qxview
