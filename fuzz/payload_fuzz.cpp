// libFuzzer target: the first byte chooses a built-in decoder, the rest is its payload. No checksum stands in between, so
// a mutation gets where the decoder reads it.
#include <cstring>
#include <memory>

#include "core/decoder.h"
#include "host/session.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace qxview;
  static const std::unique_ptr<Session> session = Session::Create(nullptr, {});
  if (size < 2 || size > 9000) return 0;
  const DecoderRow* row = FindBuiltinDecoder(data[0]);
  if (!row) return 0;
  // A copy of the exact size: a read past the end is the sanitizer's.
  const std::unique_ptr<uint8_t[]> payload(new uint8_t[size - 1]);
  std::memcpy(payload.get(), data + 1, size - 1);
  FrameRecord record{};
  record.packetNumber = 1;
  ClearDecodeTree(session->GetView(), &session->Tree(), true);
  session->Context().packet = PacketState{};
  session->Context().packet.frame = &record;
  session->Context().packet.linesLeft = kMostLines;
  row->decode(TopLevel(session->GetView(), kFirstLevel), MakeCursor(payload.get(), 0, static_cast<int32_t>(size - 1)));
  session->Context().packet.frame = nullptr;
  return 0;
}
