#include "files/capture_buffer.h"

#include <gtest/gtest.h>

#include "tests/capture_bytes.h"

namespace qxview {
namespace {

// A file in memory with room for `room` bytes, and a count of writes after which every one fails.
struct MemoryFile {
  Bytes bytes;
  size_t at = 0;
  int32_t writes = 0, goodWrites = INT32_MAX;

  BufferFile File() {
    return {this,
            [](void* handle, uint8_t* out, int32_t length) {
              auto* file = static_cast<MemoryFile*>(handle);
              // Never all at once, as pipes do.
              const size_t count = std::min({static_cast<size_t>(length), file->bytes.size() - file->at, size_t{70000}});
              if (count) std::memcpy(out, file->bytes.data() + file->at, count);
              file->at += count;
              return static_cast<int32_t>(count);
            },
            [](void* handle, const uint8_t* bytes, int32_t length) {
              auto* file = static_cast<MemoryFile*>(handle);
              if (file->writes++ >= file->goodWrites) return 0;
              file->bytes.insert(file->bytes.end(), bytes, bytes + length);
              return 1;
            }};
  }
};

Bytes Record(size_t dataLength, uint64_t number = 0) {
  Bytes bytes(kRecordHeader + dataLength);
  auto* record = reinterpret_cast<FrameRecord*>(bytes.data());
  record->nanoseconds = 0x1122334455667788;
  record->capturedLength = static_cast<uint16_t>(dataLength);
  record->flags = 0xABCD;
  record->dataOffset = kRecordHeader;
  record->recordLength = static_cast<uint16_t>(bytes.size());
  record->layout = 1;
  record->receiveErrors = 0x81;
  record->packetNumber = number;
  record->wireLength = 1514;
  for (size_t i = 0; i < dataLength; ++i) bytes[kRecordHeader + i] = static_cast<uint8_t>(i);
  return bytes;
}

SaveRequest Request(MemoryFile& file) {
  SaveRequest request{};
  request.file = file.File();
  request.name = "first floor";
  request.localTime = "Sun Nov 15 00:52:38 2026\n";
  request.firstNumber = 1;
  return request;
}

SaveResult Save(const SaveRequest& request, const std::vector<Bytes>& records) {
  auto writer = std::make_unique<CaptureBufferWriter>();
  SaveResult result = writer->Begin(request);
  for (size_t i = 0; i < records.size() && result == kSaved; ++i) {
    result = writer->Add(reinterpret_cast<const FrameRecord*>(records[i].data()));
  }
  return result == kSaved ? writer->Finish() : result;
}

Bytes Text(const std::string& text) { return Bytes(text.begin(), text.end()); }

Bytes Element(uint8_t type, const std::string& text) {
  return Bytes{type, 0, static_cast<uint8_t>(text.size() + 5), 0} + Text(text) + Bytes{0};
}

// A file of three packets with 10, 300 and 20 bytes.
Bytes SmallFile() {
  MemoryFile file;
  EXPECT_EQ(Save(Request(file), {Record(10), Record(300), Record(20)}), kSaved);
  return file.bytes;
}
size_t FirstRecord(const Bytes& file) { return file[32] | file[33] << 8; }

TEST(CaptureBufferTest, WritesHeaderElementsAndRecords) {
  MemoryFile file;
  SaveRequest request = Request(file);
  const Bytes optional = {9, 0, 7, 0, 1, 2, 3};
  request.optionalElement = optional.data();
  request.headerByte = 254;
  request.source = 2;
  request.firstNumber = 0x123456789A;
  EXPECT_EQ(Save(request, {Record(3), Record(0)}), kSaved);
  const Bytes elements =
      Element(2, "Packet Capture file created (from save on probe) on Sun Nov 15 00:52:38 2026\n.") + optional +
      Element(1, "first floor") + Bytes{4, 0, 8, 0, 1, 0, 0, 0};
  const Bytes head = Text("VantrellPktBufferVersion=09.00") +
                     Bytes{0, 0, static_cast<uint8_t>(36 + elements.size()), 0, 254, 4};
  EXPECT_EQ(file.bytes, head + elements + Record(3, 0x123456789A) + Record(0, 0x123456789B));
}

TEST(CaptureBufferTest, LeavesOutWhatTheCallerDoesNotGive) {
  MemoryFile file;
  SaveRequest request = Request(file);
  const Bytes headless = {9, 0, 3, 0};   // no element: shorter than its own head
  request.optionalElement = headless.data();
  request.headerByte = 255;
  const std::string longName(300, 'n'), longTime(60, 't');
  request.name = longName.c_str();
  request.localTime = longTime.c_str();
  EXPECT_EQ(Save(request, {Record(1)}), kSaved);
  EXPECT_EQ(file.bytes[34], 0);
  EXPECT_EQ(file.bytes[35], 3);
  Bytes name = Element(1, std::string(260, 'n'));
  name[2] = static_cast<uint8_t>(265 & 0xFF);
  name[3] = 265 >> 8;
  const Bytes elements = Element(2, "Packet Capture file created (from save option in the decode window) on " +
                                        std::string(48, 't') + ".") + name + Bytes{4, 0, 8, 0, 1, 0, 0, 0};
  EXPECT_EQ(Bytes(file.bytes.begin() + 36, file.bytes.begin() + FirstRecord(file.bytes)), elements);
}

TEST(CaptureBufferTest, CutsToTheLimitAndMarksWhatItCut) {
  MemoryFile file;
  SaveRequest request = Request(file);
  request.partial = true;
  request.partialBytes = 64;
  Bytes longer = Record(65);
  longer[38] = 4;   // ends with a check sequence; who reads the file knows what was cut
  EXPECT_EQ(Save(request, {Record(64), longer}), kSaved);
  Bytes cut = Record(64, 2);
  cut[38] = 4;
  cut[17] = 1;
  EXPECT_EQ(Bytes(file.bytes.begin() + FirstRecord(file.bytes), file.bytes.end()), Record(64, 1) + cut);
}

TEST(CaptureBufferTest, RefusesRecordsThatContradictThemselves) {
  for (int field : {8, 12, 14}) {   // captured length, data offset, record length
    Bytes record = Record(10);
    record[field] = field == 8 ? 11 : field == 12 ? 31 : 57;
    MemoryFile file;
    EXPECT_EQ(Save(Request(file), {record}), kCaptureBusy) << field;
  }
}

TEST(CaptureBufferTest, AppendingGoesOnFromTheLastNumber) {
  MemoryFile file;
  SaveRequest request = Request(file);
  request.firstNumber = 41;
  EXPECT_EQ(Save(request, std::vector<Bytes>(40, Record(60000))), kSaved);   // more than the buffer holds
  const Bytes before = file.bytes;
  file.at = 0;
  request.append = true;
  EXPECT_EQ(Save(request, {Record(5), Record(6)}), kSaved);
  EXPECT_EQ(file.bytes, before + Record(5, 81) + Record(6, 82));
}

TEST(CaptureBufferTest, AppendsToNothingButItsOwnFormat) {
  const Bytes good = SmallFile();
  const auto append = [](Bytes bytes) {
    MemoryFile file{std::move(bytes)};
    const Bytes before = file.bytes;
    SaveRequest request = Request(file);
    request.append = true;
    const SaveResult result = Save(request, {Record(1)});
    if (result != kSaved) {
      EXPECT_EQ(file.bytes, before);
    }
    return result;
  };
  EXPECT_EQ(append(good), kSaved);
  EXPECT_EQ(append({}), kTooShortToAppend);
  EXPECT_EQ(append(Bytes(good.begin(), good.begin() + 35)), kTooShortToAppend);
  EXPECT_EQ(append(Bytes(36, 'x')), kCannotAppend);
  for (const auto& [version, code] : {std::pair{"7.10", kOlderFormat}, {"4.00", kOlderFormat}, {"6.00", kOlderFormat},
                                      {"5.00", kCannotAppend}, {"8.00", kCannotAppend}, {"07.0", kCannotAppend},
                                      {"09.01", kCannotAppend}}) {
    Bytes other = good;
    std::memcpy(other.data() + 25, version, std::strlen(version));
    EXPECT_EQ(append(other), code) << version;
  }
  // Cut anywhere: whole records are a whole file, and nothing is added behind a part of one.
  const size_t first = FirstRecord(good);
  for (size_t length = 36; length < good.size(); ++length) {
    const bool whole = length == first || length == first + 58 || length == first + 58 + 348;
    EXPECT_EQ(append(Bytes(good.begin(), good.begin() + length)), whole ? kSaved : kCannotAppend) << length;
  }
  Bytes endless = good;
  endless[first + 14] = endless[first + 15] = 0;   // a record of no length
  EXPECT_EQ(append(endless), kCannotAppend);
}

TEST(CaptureBufferTest, EveryWriteThatFailsHasItsCode) {
  const std::vector<Bytes> records(40, Record(60000));   // 17 fill a buffer
  const std::pair<int32_t, SaveResult> cases[] = {
      {0, kHeaderWriteFailed}, {1, kBufferWriteFailed}, {2, kBufferWriteFailed}, {3, kLastWriteFailed}, {4, kSaved}};
  for (const auto& [goodWrites, code] : cases) {
    MemoryFile file;
    file.goodWrites = goodWrites;
    EXPECT_EQ(Save(Request(file), records), code) << goodWrites;
    EXPECT_EQ(file.writes, std::min(goodWrites + 1, 4)) << "nothing is written behind a write that failed";
  }
}

TEST(CaptureBufferTest, HasAMessageForEveryCode) {
  EXPECT_STREQ(SaveResultMessage(8).text, "Select an existing file for appending.");
  EXPECT_STREQ(SaveResultMessage(9).text,
               "The packet capture file is in older Vantrell file format. You have to update\nthe file to the current "
               "Vantrell format");
  EXPECT_STREQ(SaveResultMessage(13).title, "Save Packet Buffer");
  EXPECT_STREQ(SaveResultMessage(3).text, SaveResultMessage(5).text);
  for (int32_t code : {-1, 0, 2, 4, 14}) EXPECT_EQ(SaveResultMessage(code).text, nullptr) << code;
}

TEST(CaptureBufferTest, ReadsBackWhatItWrote) {
  const ReadOutcome all = ReadAll(SmallFile(), 7);
  ASSERT_EQ(all.frames.size(), 3u);
  EXPECT_EQ(all.result, ReadResult::kEnd);
  EXPECT_EQ(all.frames[1].bytes, CountingBytes(300));
  EXPECT_EQ(all.frames[1].nanoseconds, 0x1122334455667788);
  EXPECT_EQ(all.frames[1].wireLength, 1514u);
  EXPECT_EQ(all.frames[1].receiveErrors, 0x81u);
}

TEST(CaptureBufferTest, ReadsACutFileUpToTheCut) {
  const Bytes good = SmallFile();
  const size_t first = FirstRecord(good);
  const size_t ends[] = {first, first + 58, first + 58 + 348, good.size()};
  for (size_t length = 1; length < good.size(); ++length) {
    const ReadOutcome cut = ReadAll(Bytes(good.begin(), good.begin() + length));
    size_t whole = 0;
    while (whole < 3 && ends[whole + 1] <= length) ++whole;
    EXPECT_EQ(cut.frames.size(), whole) << length;
    const bool between = length >= first && length == ends[whole];
    EXPECT_EQ(cut.result, between ? ReadResult::kEnd : ReadResult::kDamaged) << length;
    EXPECT_EQ(cut.message.empty(), between) << length;
  }
}

TEST(CaptureBufferTest, ReadsPastDamageAsFarAsItMakesSense) {
  const Bytes good = SmallFile();
  const size_t first = FirstRecord(good);
  struct Case {
    const char* what;
    size_t at;
    uint16_t value;
    size_t frames;
  };
  const Case cases[] = {
      {"first record inside the header", 32, 35, 0},
      {"first record beyond the file", 32, 0xFFFF, 0},
      {"more elements than there are", 34, 4 << 8, 3},
      {"fewer elements than there are", 34, 1 << 8, 3},
      {"an element without a length", 38, 0, 3},
      {"an element longer than its room", 38, 0xFFFF, 3},
      {"captured bytes beyond the record", first + 58 + 8, 301, 1},
      {"data inside the header", first + 58 + 12, 31, 1},
      {"a record without a length", first + 58 + 14, 0, 1},
      {"a record beyond the file", first + 58 + 14, 0xFFFF, 1},
  };
  for (const Case& c : cases) {
    Bytes bad = good;
    bad[c.at] = static_cast<uint8_t>(c.value);
    bad[c.at + 1] = static_cast<uint8_t>(c.value >> 8);
    const ReadOutcome outcome = ReadAll(bad);
    EXPECT_EQ(outcome.frames.size(), c.frames) << c.what;
    EXPECT_EQ(outcome.result, ReadResult::kDamaged) << c.what;
    EXPECT_FALSE(outcome.message.empty()) << c.what;
  }
  Bytes older = good;
  std::memcpy(older.data() + 25, "7.00", 4);
  EXPECT_EQ(ReadAll(older).frames.size(), 0u);
}

}  // namespace
}  // namespace qxview
