// SMB messages for tests: headers, blocks, texts and transactions from their parts.
#pragma once
#include <algorithm>

#include "decoders/smb/smb.h"
#include "tests/support/decoding.h"
#include "tests/support/small_stack.h"

namespace qxview::testing {

inline int32_t DecodeOneSmb(const Place& at, Cursor c) { return DecodeSmb(at, c, false); }

enum Way { kRequest = 0x00, kResponse = 0x80 };
enum Flags2 { kOem = 0x4001, kUnicode = 0xC001, kDosError = 0x0001 };

inline Bytes Header(int command, Way way, Flags2 flags2, const char* status = "00000000") {
  Bytes bytes = Hex("FF534D42 00") + Hex(status) + Hex("00 0000 0100 1122334455667788 0000 0200 0300 0400 0500");
  bytes[4] = static_cast<uint8_t>(command);
  bytes[9] = static_cast<uint8_t>(way | 0x08);
  bytes[10] = static_cast<uint8_t>(flags2);
  bytes[11] = static_cast<uint8_t>(flags2 >> 8);
  return bytes;
}

inline Bytes Little(size_t value, int size) {
  Bytes bytes;
  for (int i = 0; i < size; ++i) bytes.push_back(static_cast<uint8_t>(value >> 8 * i));
  return bytes;
}
// A block with its two counts.
inline Bytes Block(const std::string& words, const Bytes& data = {}) {
  const Bytes taken = Hex(words);
  return Little(taken.size() / 2, 1) + taken + Little(data.size(), 2) + data;
}
inline Bytes Wide(const std::string& text) {
  Bytes bytes;
  for (const char c : text) bytes = bytes + Bytes{static_cast<uint8_t>(c), 0};
  return bytes + Bytes(2);
}
inline Bytes Oem(const std::string& text) { return Bytes(text.begin(), text.end()) + Bytes(1); }

// The best of three decodes of the last message behind the others, on a small stack, in milliseconds.
inline double TimeOnSmallStack(const std::vector<Bytes>& messages) {
  double best = 1e9;
  RunOnSmallStack([&] {
    TestView view;
    for (int i = 0; i < 3; ++i) {
      double last = 0;
      for (const Bytes& message : messages) {
        ClearDecodeTree(&view.view(), &view.tree(), true);
        last = BestMilliseconds([&] { view.Run(DecodeOneSmb, message); }, 1);
      }
      best = std::min(best, last);
    }
  });
  return best;
}

}  // namespace qxview::testing
