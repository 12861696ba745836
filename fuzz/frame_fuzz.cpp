// libFuzzer target: the first byte is the medium, the rest a frame.
#include <cstring>
#include <memory>

#include "host/session.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace qxview;
  static const std::unique_ptr<Session> session = Session::Create(nullptr, {});
  alignas(8) static uint8_t bytes[kMaxRecord];
  if (size < 1 || size > 9000) return 0;
  auto* record = reinterpret_cast<FrameRecord*>(bytes);
  *record = FrameRecord{};
  record->capturedLength = static_cast<uint16_t>(size - 1);
  record->dataOffset = kRecordHeader;
  record->layout = 1;
  record->mediaType = data[0] % 10;
  std::memcpy(bytes + kRecordHeader, data + 1, size - 1);
  session->Decode(record);
  return 0;
}
