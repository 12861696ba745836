// Ethertypes whose payload is shown as a titled block: DCA multicast, proprietary switch data, load-balancing
// heartbeats and 3Com NBP.
#include "core/rows.h"

namespace qxview {
namespace {

int32_t ShowTitledBlock(const Place& at, Cursor c, const char* title, const char* blockTitle) {
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "%s", title));
  AddBlock(in, Rest(c), blockTitle);
  return 1;
}

}  // namespace

int32_t DecodeDcaMulticast(const Place& at, Cursor c) {
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "DCA Multicast"));
  const Field sequence = TakeU16(c);
  AddLine(in, sequence, "Sequence ID: 0x%.04X", sequence.value);
  AddBlock(in, Rest(c), "Multicast Data");
  return 1;
}

int32_t DecodeFoundry(const Place& at, Cursor c) { return AddRawRest(at, c, "Foundry Proprietary Data"); }

// No public text tells the body. Of its head the fields are those that analyzers agree on; the block below shows every byte.
int32_t DecodeLoadBalancingHeartbeat(const Place& at, Cursor c) {
  static constexpr auto kHead = LittleRows<NoValues>({
      Hex(4, "Signature"), Hex(4, "Version"), Number(4, "Unique Host ID"), IPv4("Cluster IP Address"),
      IPv4("Dedicated IP Address")});
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "MS Network Load Balancing Heartbeat"));
  AddBlock(in, Ahead(c, Left(c)), "Heartbeat Data");
  constexpr int32_t kHeadSize = 20;
  constexpr uint32_t kSignature = 0xBF01DEC0;
  if (Left(c) >= kHeadSize || PeekU32(c) == kSignature) ShowRows(in, c, kHead);
  return 1;
}

int32_t DecodeNbp(const Place& at, Cursor c) { return ShowTitledBlock(at, c, "3Com NBP", "NBP Data"); }

}  // namespace qxview
