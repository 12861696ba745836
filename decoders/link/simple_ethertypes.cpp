// Ethertypes whose payload is shown as a titled block: DCA multicast, proprietary switch data, load-balancing
// heartbeats and 3Com NBP.
#include "core/decoder.h"

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

int32_t DecodeLoadBalancingHeartbeat(const Place& at, Cursor c) {
  return ShowTitledBlock(at, c, "MS Network Load Balancing Heartbeat", "Heartbeat Data");
}

int32_t DecodeNbp(const Place& at, Cursor c) { return ShowTitledBlock(at, c, "3Com NBP", "NBP Data"); }

}  // namespace qxview
