// What stands around the frame that a question is asked of.
#pragma once
#include <string_view>

#include "query/key_query.h"

namespace qxview::fuzz {

struct Told final : PacketTold {
  uint64_t Number() const override { return 1; }
  int64_t Nanoseconds() const override { return 0; }
  uint32_t Length() const override { return 60; }
  uint32_t Captured() const override { return 60; }
  std::string_view Source() override { return "192.0.2.1"; }
  std::string_view Destination() override { return "192.0.2.2"; }
  std::string_view Protocol() override { return "DNS"; }
  std::string_view Summary() override { return "DNS Query"; }
};

}  // namespace qxview::fuzz
