// Wake-on-LAN (AMD's white paper on Magic Packet technology, 20213): a sleeping network adapter looks for its own address,
// sixteen times behind six octets of ones, wherever it stands in a frame. Sent in UDP datagrams and as an Ethertype.
#include "decoders/link/wake_on_lan.h"

#include <cstring>

#include "core/decoder.h"

namespace qxview {
namespace {

constexpr int32_t kOnes = 6, kAddress = 6, kTimes = 16;
constexpr int32_t kPacket = kOnes + kTimes * kAddress;

}  // namespace

bool LooksLikeMagicPacket(const Cursor& c) {
  if (Left(c) < kPacket) return false;
  for (int32_t i = 0; i < kOnes; ++i) {
    if (c.at[i] != 0xFF) return false;
  }
  const uint8_t* first = c.at + kOnes;
  for (int32_t i = 1; i < kTimes; ++i) {
    if (std::memcmp(first, first + i * kAddress, kAddress) != 0) return false;
  }
  return true;
}

int32_t DecodeWakeOnLan(const Place& at, Cursor c) {
  if (!LooksLikeMagicPacket(c)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Wake-on-LAN: %s", MacText(c.at + kOnes)));
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
