// Commands and events of Bluetooth's host controller interface as data.
#pragma once
#include "core/rows.h"

namespace qxview {

enum class HciKind : uint8_t {
  kNumber,   // of `size` bytes, the low one first
  kSigned, kHex, kAddress, kText, kBytes,
  kHandle,   // of 12 bits
};
struct HciParameter {
  HciKind kind;
  uint8_t size;         // bytes; 0: what is left
  const char* name;
  const NameTableEntry* names = nullptr;
  int32_t nameCount = 0;
};
struct HciParameters {
  const HciParameter* rows = nullptr;
  int32_t count = 0;
};
struct HciCommand {
  uint16_t code;
  const char* name;
  HciParameters sent = {}, returned = {};   // the second as a command's completion brings them, its status first
};
struct HciEvent {
  uint8_t code;
  const char* name;
  HciParameters parameters = {};
};

// Null for one that the standard does not have.
const HciCommand* FindHciCommand(uint32_t code);
const HciEvent* FindHciEvent(uint32_t code);
const HciEvent* FindHciLowEnergyEvent(uint32_t code);
void ShowHciParameters(const Place& in, Cursor& c, const HciParameters& parameters);
// The bits of a parameter whose name has them, under `in`.
void ShowHciBits(const Place& in, const Field& field, const char* parameter);
const char* NameHciStatus(uint32_t status);

template <size_t kCount>
constexpr HciParameters ParametersOf(const HciParameter (&rows)[kCount]) {
  return {rows, static_cast<int32_t>(kCount)};
}

}  // namespace qxview
