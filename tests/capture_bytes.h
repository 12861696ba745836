// Capture files made in memory for tests, and ways to read them.
#pragma once
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "files/capture_reader.h"

namespace qxview {

using Bytes = std::vector<uint8_t>;

inline Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

// `size` bytes counting up from `first`.
inline Bytes CountingBytes(size_t size, uint8_t first = 0) {
  Bytes bytes(size);
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(first + i);
  return bytes;
}

// Writes the integers and structures of capture files in one byte order.
struct CaptureWriter {
  bool bigEndian = false;

  Bytes Number(uint64_t value, int width) const {
    Bytes bytes(width);
    for (int i = 0; i < width; ++i) bytes[bigEndian ? width - 1 - i : i] = static_cast<uint8_t>(value >> 8 * i);
    return bytes;
  }
  Bytes U16(uint64_t value) const { return Number(value, 2); }
  Bytes U32(uint64_t value) const { return Number(value, 4); }
  static Bytes Padded(Bytes data) {
    data.resize((data.size() + 3) & ~size_t{3});
    return data;
  }

  Bytes PcapHeader(uint32_t magic, uint32_t link = 1, int minor = 4, int major = 2) const {
    return U32(magic) + U16(major) + U16(minor) + U32(0) + U32(0) + U32(65535) + U32(link);
  }
  Bytes PcapPacket(uint32_t seconds, uint32_t fraction, uint32_t wire, const Bytes& data,
                   const Bytes& more = {}) const {
    return U32(seconds) + U32(fraction) + U32(data.size()) + U32(wire) + more + data;
  }

  Bytes Block(uint32_t type, const Bytes& body) const {
    return U32(type) + U32(body.size() + 12) + body + U32(body.size() + 12);
  }
  Bytes Option(uint16_t code, const Bytes& value) const { return U16(code) + U16(value.size()) + Padded(value); }
  Bytes Section(int major = 1) const {
    return Block(0x0A0D0D0A, U32(0x1A2B3C4D) + U16(major) + U16(0) + U32(0xFFFFFFFF) + U32(0xFFFFFFFF));
  }
  Bytes Interface(uint16_t link, uint32_t snap = 0, const Bytes& options = {}) const {
    return Block(1, U16(link) + U16(0) + U32(snap) + options);
  }
  Bytes Packet(uint32_t interface, uint64_t ticks, uint32_t wire, const Bytes& data,
               const Bytes& options = {}) const {
    return Block(
        6, U32(interface) + U32(ticks >> 32) + U32(ticks) + U32(data.size()) + U32(wire) + Padded(data) + options);
  }
  Bytes ObsoletePacket(uint16_t interface, uint64_t ticks, const Bytes& data, const Bytes& options = {}) const {
    return Block(2, U16(interface) + U16(3) + U32(ticks >> 32) + U32(ticks) + U32(data.size()) + U32(data.size()) +
                        Padded(data) + options);
  }
  Bytes SimplePacket(uint32_t wire, const Bytes& data) const { return Block(3, U32(wire) + Padded(data)); }
};

inline Bytes Gzip(const Bytes& plain) {
  z_stream stream{};
  deflateInit2(&stream, 6, Z_DEFLATED, MAX_WBITS + 16, 8, Z_DEFAULT_STRATEGY);
  Bytes packed(deflateBound(&stream, plain.size()) + 32);
  stream.next_in = const_cast<uint8_t*>(plain.data());
  stream.avail_in = static_cast<uInt>(plain.size());
  stream.next_out = packed.data();
  stream.avail_out = static_cast<uInt>(packed.size());
  deflate(&stream, Z_FINISH);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

// Bytes handed out a few at a time, as a slow pipe does.
class TrickleSource : public BufferedSource {
 public:
  TrickleSource(Bytes bytes, size_t step) : bytes_(std::move(bytes)), step_(step) {}

 protected:
  size_t ReadSome(uint8_t* out, size_t size) override {
    size_t count = std::min({size, step_, bytes_.size() - at_});
    if (count) std::memcpy(out, bytes_.data() + at_, count);
    at_ += count;
    return count;
  }

 private:
  Bytes bytes_;
  size_t step_;
  size_t at_ = 0;
};

struct ReadFrameCopy : CaptureFrame {
  Bytes bytes;
};

struct ReadOutcome {
  std::vector<ReadFrameCopy> frames;
  ReadResult result = ReadResult::kDamaged;
  std::string message;
};

inline ReadOutcome ReadToEnd(std::unique_ptr<CaptureReader> reader, std::string message) {
  ReadOutcome outcome;
  outcome.message = std::move(message);
  if (!reader) return outcome;
  CaptureFrame frame;
  while ((outcome.result = reader->Next(&frame)) == ReadResult::kFrame) {
    outcome.frames.push_back({frame, Bytes(frame.data, frame.data + frame.dataLength)});
  }
  outcome.message = reader->Message();
  return outcome;
}

inline ReadOutcome ReadAll(const Bytes& file, size_t step = SIZE_MAX) {
  std::string message;
  auto reader = OpenCapture(std::make_unique<TrickleSource>(file, step), "t.cap", &message);
  return ReadToEnd(std::move(reader), message);
}

}  // namespace qxview
