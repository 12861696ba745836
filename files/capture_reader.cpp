#include "files/capture_reader.h"

#include <cstdarg>
#include <cstdio>

#include "files/capture_formats.h"
#include "files/compressed_formats.h"

namespace qxview {

namespace {

struct CaptureFormat {
  uint8_t magicLength;
  char magic[32];
  ReaderMaker make;
};

// A new kind of capture file is one row here and one reader.
constexpr CaptureFormat kFormats[] = {
    {4, "\xD4\xC3\xB2\xA1", MakePcapReader},  // microseconds, little-endian
    {4, "\xA1\xB2\xC3\xD4", MakePcapReader},  // microseconds, big-endian
    {4, "\x4D\x3C\xB2\xA1", MakePcapReader},  // nanoseconds
    {4, "\xA1\xB2\x3C\x4D", MakePcapReader},
    {4, "\x34\xCD\xB2\xA1", MakePcapReader},  // microseconds, longer packet headers
    {4, "\xA1\xB2\xCD\x34", MakePcapReader},
    {4, "\x0A\x0D\x0D\x0A", MakePcapngReader},
    {25, "VantrellPktBufferVersion=", MakeCaptureBufferReader},
};

struct CompressedFormat {
  uint8_t magicLength;
  char magic[8];
  SourceMaker open;      // null: named with the command that opens it
  const char* name;
  const char* command;
};

constexpr CompressedFormat kCompressed[] = {
    {2, "\x1F\x8B", MakeGzipSource, "gzip", "gzip -dc"},
    {4, "\x28\xB5\x2F\xFD", kZstdMaker, "zstd", "zstd -dc"},
    {4, "\x04\x22\x4D\x18", kLz4Maker, "lz4", "lz4 -dc"},
    {6, "\xFD" "7zXZ\0", nullptr, "xz", "xz -dc"},
    {3, "BZh", nullptr, "bzip2", "bzip2 -dc"},
};

bool StartsWith(ByteSource* source, const char* magic, size_t length) {
  const uint8_t* start = source->Peek(length);
  return start && std::memcmp(start, magic, length) == 0;
}

}  // namespace

CaptureReader::CaptureReader(std::unique_ptr<ByteSource> source, const char* fileName)
    : source_(std::move(source)), fileName_(fileName) {}

ReadResult CaptureReader::Next(CaptureFrame* frame) noexcept {
  if (last_ != ReadResult::kFrame) return last_;
  *frame = CaptureFrame{};
  frame->file = fileName_.c_str();
  last_ = ReadFrame(frame);
  if (last_ == ReadResult::kDamaged && IsInterrupted()) {
    message_.clear();
    last_ = ReadResult::kEnd;
  }
  if (last_ == ReadResult::kFrame) frame->number = ++frames_;
  return last_;
}

bool CaptureReader::Seek(uint64_t position, uint64_t number) {
  if (!source_->Seek(position) || !BeginAt(position)) return false;
  frames_ = number - 1;
  last_ = ReadResult::kFrame;
  message_.clear();
  return true;
}

int CaptureReader::Percent() const {
  uint64_t size = FileSize();
  if (size == 0) return -1;
  uint64_t position = FilePosition();
  return position >= size ? 100 : static_cast<int>(static_cast<double>(position) * 100.0 / static_cast<double>(size));
}

ReadResult CaptureReader::Damaged(uint64_t position, const char* format, ...) {
  char reason[400];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(reason, sizeof reason, format, arguments);
  va_end(arguments);
  message_ = fileName_ + ": packet " + std::to_string(frames_ + 1) + ", byte " + std::to_string(position) +
             (source_->IsCompressed() ? " of the uncompressed data: " : ": ") + reason;
  return ReadResult::kDamaged;
}

ReadResult CaptureReader::DamagedAs(std::string message) {
  message_ = std::move(message);
  return ReadResult::kDamaged;
}

ReadResult CaptureReader::CutShort(uint64_t position, const char* what) {
  if (!source_->Failure().empty()) return Damaged(position, "%s", source_->Failure().c_str());
  return Damaged(position, "the file ends inside %s", what);
}

std::unique_ptr<CaptureReader> OpenCapture(const char* path, std::string* message) noexcept {
  const char* name = std::strcmp(path, "-") == 0 ? "standard input" : path;
  std::string reason;
  std::unique_ptr<ByteSource> source = OpenFileSource(path, &reason);
  if (source) return OpenCapture(std::move(source), name, message);
  *message = std::string(name) + ": " + reason;
  return nullptr;
}

std::unique_ptr<ByteSource> OpenInflated(std::unique_ptr<ByteSource> source, std::string* reason) noexcept {
  for (const CompressedFormat& format : kCompressed) {
    if (!StartsWith(source.get(), format.magic, format.magicLength)) continue;
    if (format.open) return format.open(std::move(source), reason);
    *reason = std::string("is compressed with ") + format.name + ", which is not read here; it opens with: " +
              format.command + " FILE | qxview ... -";
    return nullptr;
  }
  return source;
}

std::unique_ptr<CaptureReader> OpenCapture(std::unique_ptr<ByteSource> source, const char* name,
                                           std::string* message) noexcept {
  std::string reason;
  source = OpenInflated(std::move(source), &reason);
  for (const CaptureFormat& format : kFormats) {
    if (source && StartsWith(source.get(), format.magic, format.magicLength)) {
      return format.make(std::move(source), name, message);
    }
  }
  if (source) {
    reason = source->Failure();
    if (reason.empty()) reason = source->Remaining() ? "not a capture file (pcap, pcapng or BFR)" : "the file is empty";
  }
  *message = std::string(name) + ": " + reason;
  return nullptr;
}

uint32_t LargestFrame(uint16_t linkType) {
  switch (linkType) {
    case 189:  // USB of Linux, with and without padded headers
    case 220:
    case 231:  // D-Bus
    case 249:  // USBPcap
    case 279:  // EBHSCR
      return kLargestMessageFrame;
    default:
      return kLargestFrame;
  }
}

uint16_t NormalizeLinkType(uint16_t linkType) {
  switch (linkType) {
    case 11:
      return 100;  // RFC 1483 ATM
    case 12:
    case 14:
      return 101;  // raw IP
    default:
      return linkType;
  }
}

}  // namespace qxview
