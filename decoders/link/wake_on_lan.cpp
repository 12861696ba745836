// Wake-on-LAN (AMD's white paper on Magic Packet technology, 20213): a sleeping network adapter looks for its own address,
// sixteen times behind six octets of ones, wherever it stands in a frame. Sent in UDP datagrams and as an Ethertype.
#include "decoders/link/wake_on_lan.h"

#include "core/decoder.h"

namespace qxview {
namespace {

constexpr int32_t kOnes = 6, kAddress = 6, kTimes = 16;
constexpr int32_t kPacket = kOnes + kTimes * kAddress;

}  // namespace

bool LooksLikeMagicPacket(const Cursor& c) {
  if (Left(c) < kPacket) return false;
  for (int32_t i = 0; i < kOnes; ++i) {
    if (PeekU8(c, i) != 0xFF) return false;
  }
  for (int32_t i = kOnes + kAddress; i < kPacket; ++i) {
    if (PeekU8(c, i) != PeekU8(c, i - kAddress)) return false;
  }
  return true;
}

int32_t DecodeWakeOnLan(const Place& at, Cursor c) {
  if (!LooksLikeMagicPacket(c)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Wake-on-LAN: %s", MacText(PeekBytes(c, kOnes, kAddress).bytes)));
  const Field ones = TakeBytes(c, kOnes);
  AddLine(in, ones, "Synchronization Stream: %s", HexText(ones));
  const Place addresses = Under(in, AddLine(in, Ahead(c, kTimes * kAddress), "Target: %s, 16 times", MacText(c.at)));
  for (int32_t i = 0; i < kTimes; ++i) {
    const Field address = TakeBytes(c, kAddress);
    AddLine(addresses, address, "MAC Address: %s", MacText(address.bytes));
  }
  if (Left(c) == 4) {
    const Field password = TakeBytes(c, 4);
    AddLine(in, password, "Password: %s", IPv4Text(password.bytes));
  } else if (Left(c) == 6) {
    const Field password = TakeBytes(c, 6);
    AddLine(in, password, "Password: %s", MacText(password.bytes));
  }
  AddBlock(in, Rest(c), "Data");
  return 1;
}

}  // namespace qxview
