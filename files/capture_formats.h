// What the readers of the single capture formats share, and their makers: inside files/ only.
#pragma once
#include <cstring>

#include "files/capture_reader.h"

namespace qxview {

// Frames larger than this are taken for damage, but for those link types that transport whole messages or transfers.
constexpr uint32_t kLargestFrame = 262144;
constexpr uint32_t kLargestMessageFrame = 128u << 20;

uint32_t LargestFrame(uint16_t linkType);

// Raw IP carries three numbers in files, after the systems that wrote them: all become LINKTYPE_RAW. ATM likewise.
uint16_t NormalizeLinkType(uint16_t linkType);

// Reads the integers of a file in its byte order.
struct FileOrder {
  bool swapped = false;  // the file's order is not this machine's

  uint16_t Load16(const uint8_t* at) const {
    uint16_t value;
    std::memcpy(&value, at, 2);
    return swapped ? __builtin_bswap16(value) : value;
  }
  uint32_t Load32(const uint8_t* at) const {
    uint32_t value;
    std::memcpy(&value, at, 4);
    return swapped ? __builtin_bswap32(value) : value;
  }
  uint64_t Load64(const uint8_t* at) const {
    uint64_t value;
    std::memcpy(&value, at, 8);
    return swapped ? __builtin_bswap64(value) : value;
  }
};

// How the ticks of an interface count time (pcapng options if_tsresol and if_tsoffset).
struct TickScale {
  uint8_t resolution = 6;  // negative exponent of ten, or of two with the top bit set
  int64_t offsetSeconds = 0;
};

// Nanoseconds since the epoch, held at the ends of the 64-bit range where they would leave it.
int64_t TicksToNanoseconds(uint64_t ticks, const TickScale& scale);

// A maker reads the file header and gives null with a message of its own when that is unusable.
using ReaderMaker = std::unique_ptr<CaptureReader> (*)(std::unique_ptr<ByteSource> source, const char* fileName,
                                                       std::string* message);
std::unique_ptr<CaptureReader> MakePcapReader(std::unique_ptr<ByteSource> source, const char* fileName,
                                              std::string* message);
std::unique_ptr<CaptureReader> MakePcapngReader(std::unique_ptr<ByteSource> source, const char* fileName,
                                                std::string* message);
std::unique_ptr<CaptureReader> MakeCaptureBufferReader(std::unique_ptr<ByteSource> source, const char* fileName,
                                                       std::string* message);

}  // namespace qxview
