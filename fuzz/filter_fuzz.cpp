// libFuzzer target: a display filter up to the first zero byte, behind it an Ethernet frame that it is asked of.
#include <cstring>
#include <memory>
#include <string_view>

#include "core/frame_entry.h"
#include "query/filter.h"
#include "query/probe.h"

namespace {

struct Told final : qxview::PacketTold {
  uint64_t Number() const override { return 1; }
  int64_t Nanoseconds() const override { return 0; }
  uint32_t Length() const override { return 60; }
  uint32_t Captured() const override { return 60; }
  std::string_view Source() override { return "192.0.2.1"; }
  std::string_view Destination() override { return "192.0.2.2"; }
  std::string_view Protocol() override { return "DNS"; }
  std::string_view Summary() override { return "DNS Query"; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace qxview;
  static const std::unique_ptr<Session> session = Session::Create(nullptr, {});
  static Probe probe(*session);
  constexpr size_t kMost = 9000;
  const auto* end = static_cast<const uint8_t*>(size == 0 ? nullptr : std::memchr(data, 0, size));
  if (size > kMost) return 0;
  const size_t length = end ? static_cast<size_t>(end - data) : size;
  FilterFault fault;
  const auto filter = Filter::Parse({reinterpret_cast<const char*>(data), length}, &fault);
  if (!filter && (fault.message.empty() || fault.at > length)) __builtin_trap();
  if (!filter || !end) return 0;
  const size_t left = size - length - 1;
  const std::unique_ptr<uint8_t[]> bytes(new uint8_t[sizeof(FrameRecord) + left]);
  FrameRecord record{};
  record.packetNumber = 1;
  record.dataOffset = sizeof(FrameRecord);
  record.capturedLength = static_cast<uint16_t>(left);
  record.recordLength = static_cast<uint16_t>(sizeof(FrameRecord) + left);
  std::memcpy(bytes.get(), &record, sizeof record);
  std::memcpy(bytes.get() + sizeof record, end + 1, left);
  Told told;
  if (probe.Ask(filter->Keys(), reinterpret_cast<const FrameRecord*>(bytes.get()), told)) filter->Holds();
  return 0;
}
