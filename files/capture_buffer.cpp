#include "files/capture_buffer.h"

#include <cstdio>
#include <cstring>
#include <new>

namespace qxview {
namespace {

constexpr int32_t kBufferSize = 1 << 20;
constexpr int32_t kElementHead = 4;  // type and length
constexpr int32_t kTimeText = 48;   // the most that is taken of the local time

void PutU16(uint8_t* at, size_t value) {
  at[0] = static_cast<uint8_t>(value);
  at[1] = static_cast<uint8_t>(value >> 8);
}

// An information element with a zero-terminated text; returns its length.
int32_t PutTextElement(uint8_t* at, uint16_t type, const char* text) {
  const size_t length = std::strlen(text);
  PutU16(at, type);
  PutU16(at + 2, 4 + length + 1);
  std::memcpy(at + 4, text, length + 1);
  return static_cast<int32_t>(4 + length + 1);
}

int32_t PutComment(uint8_t* at, int32_t source, const char* localTime) {
  const char* from = source == 1 ? "session decryption" : source == 2 ? "save on probe" : "save option in the decode window";
  char text[200];
  std::snprintf(text, sizeof text, "Packet Capture file created (from %s) on %.*s.", from, kTimeText,
                localTime ? localTime : "");
  return PutTextElement(at, 2, text);
}

// Of the host's element with its head, as it says itself; one without room for its own head is no element.
int32_t OptionalLength(const SaveRequest& request) {
  const uint8_t* element = request.optionalElement;
  return element ? element[2] | element[3] << 8 : 0;
}

// Reads exactly `length` bytes; how many came, -1 on failure.
int32_t ReadFully(const BufferFile& file, uint8_t* out, int32_t length) {
  int32_t have = 0;
  while (have < length) {
    const int32_t got = file.read(file.handle, out + have, length - have);
    if (got < 0) return -1;
    if (got == 0) break;
    have += got;
  }
  return have;
}

}  // namespace

SaveMessage SaveResultMessage(int32_t code) {
  switch (code) {
    case kSaved: return {"Successfully decompressed %lu packets", "Frame Relay FRF.9 Decompression", false};
    case kBufferWriteFailed:
    case kLastWriteFailed: return {"Error saving file.", nullptr, true};
    case kCannotOpenForWriting: return {"Cannot open file for writing.", nullptr, false};
    case kCannotOpenForAppending: return {"Cannot open file for appending.", nullptr, false};
    case kTooShortToAppend: return {"Select an existing file for appending.", nullptr, false};
    case kOlderFormat:
      return {"The packet capture file is in older Vantrell file format. You have to update\nthe file to the current "
              "Vantrell format",
              nullptr, false};
    case kCannotAppend: return {"The packet capture file cannot be appended to.", nullptr, false};
    case kNoPackets: return {"No packets to save.", nullptr, true};
    case kCaptureBusy:
      return {"Error saving packets to file.\nIf you are using a circular packet buffer,\nplease stop the capture and "
              "try again.",
              nullptr, true};
    case kHeaderWriteFailed: return {"Unable to save packet buffer: %s.", "Save Packet Buffer", true};
    default: return {nullptr, nullptr, false};
  }
}

CaptureBufferWriter::CaptureBufferWriter() : buffer_(new (std::nothrow) uint8_t[kBufferSize]) {}
CaptureBufferWriter::~CaptureBufferWriter() = default;

bool CaptureBufferWriter::WriteHeader() {
  uint8_t* at = buffer_.get();
  std::memset(at, 0, kBufferHeader);
  std::memcpy(at, kBufferVersion, sizeof kBufferVersion - 1);
  if (request_.headerByte <= 254) at[34] = static_cast<uint8_t>(request_.headerByte);
  const bool hasOptional = OptionalLength(request_) >= kElementHead;
  at[35] = hasOptional ? 4 : 3;
  int32_t length = kBufferHeader;
  length += PutComment(at + length, request_.source, request_.localTime);
  if (hasOptional) {
    const int32_t element = OptionalLength(request_);
    std::memcpy(at + length, request_.optionalElement, static_cast<size_t>(element));
    length += element;
  }
  char name[kLongestBufferName + 1];
  std::snprintf(name, sizeof name, "%s", request_.name ? request_.name : "");
  length += PutTextElement(at + length, 1, name);
  PutU16(at + length, 4);
  PutU16(at + length + 2, 8);
  std::memset(at + length + 4, 0, 4);
  at[length + 4] = 1;
  length += 8;
  if (length > 0xFFFF) return false;   // the first record's offset has 16 bits
  PutU16(at + kVersionField, static_cast<size_t>(length));
  return request_.file.write(request_.file.handle, at, length) == 1;
}

// Walks the records that are there: appended ones go on from the last number. Anything that is not whole and ours is
// left alone.
SaveResult CaptureBufferWriter::BeginAppending() {
  uint8_t* at = buffer_.get();
  const BufferFile& file = request_.file;
  if (ReadFully(file, at, kBufferHeader) < kBufferHeader) return kTooShortToAppend;
  const char* version = reinterpret_cast<const char*>(at);
  if (std::memcmp(version, kBufferVersion, kBufferMagic) != 0) return kCannotAppend;
  const char major = version[kBufferMagic];
  if (version[kBufferMagic + 1] == '.' && (major == '4' || major == '6' || major == '7')) return kOlderFormat;
  if (std::memcmp(version, kBufferVersion, sizeof kBufferVersion - 1) != 0) return kCannotAppend;
  const int32_t start = at[kVersionField] | at[kVersionField + 1] << 8;
  if (start < kBufferHeader || ReadFully(file, at, start - kBufferHeader) != start - kBufferHeader) return kCannotAppend;
  int32_t have = 0, used = 0;
  nextNumber_ = 1;
  for (;;) {
    if (have - used < kMaxRecord) {
      std::memmove(at, at + used, static_cast<size_t>(have - used));
      have -= used;
      used = 0;
      const int32_t got = ReadFully(file, at + have, kBufferSize - have);
      if (got < 0) return kCannotAppend;
      have += got;
    }
    if (have == used) return kSaved;
    FrameRecord record{};
    if (have - used < kBareRecordHeader) return kCannotAppend;
    std::memcpy(&record, at + used, kBareRecordHeader);
    if (record.recordLength < kBareRecordHeader || record.recordLength > have - used) return kCannotAppend;
    nextNumber_ = record.packetNumber + 1;
    used += record.recordLength;
  }
}

SaveResult CaptureBufferWriter::Begin(const SaveRequest& request) {
  request_ = request;
  used_ = 0;
  written_ = 0;
  nextNumber_ = request.firstNumber;
  if (!buffer_) return kHeaderWriteFailed;
  if (request.append) return BeginAppending();
  return WriteHeader() ? kSaved : kHeaderWriteFailed;
}

SaveResult CaptureBufferWriter::Add(const FrameRecord* record) {
  // What a host lends must hold together: nothing outside the record is copied, and the file can be read back.
  if (record->dataOffset < kBareRecordHeader || record->dataOffset + record->capturedLength > record->recordLength) {
    return kCaptureBusy;
  }
  const bool cut = request_.partial && record->capturedLength > request_.partialBytes;
  const int32_t dataLength = cut ? request_.partialBytes : record->capturedLength;
  const int32_t length = cut ? record->dataOffset + dataLength : record->recordLength;
  if (used_ + length > kBufferSize) {
    if (request_.file.write(request_.file.handle, buffer_.get(), used_) != 1) return kBufferWriteFailed;
    used_ = 0;
  }
  uint8_t* at = buffer_.get() + used_;
  std::memcpy(at, record, static_cast<size_t>(length));
  PutU16(at + 8, static_cast<size_t>(dataLength));
  PutU16(at + 14, static_cast<size_t>(length));
  if (cut) at[17] = 1;
  std::memcpy(at + 24, &nextNumber_, sizeof nextNumber_);
  ++nextNumber_;
  ++written_;
  used_ += length;
  return kSaved;
}

SaveResult CaptureBufferWriter::Finish() {
  if (used_ > 0 && request_.file.write(request_.file.handle, buffer_.get(), used_) != 1) return kLastWriteFailed;
  used_ = 0;
  return kSaved;
}

}  // namespace qxview
