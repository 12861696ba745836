// State between frames: the table against a plain model of it, its hash, its bounds, and what is recorded and replayed.
#include "core/states.h"

#include <chrono>
#include <deque>
#include <list>
#include <set>

#include "decoders/app/packet_summaries.h"
#include "decoders/net/skimmed_frames.h"
#include "files/capture_reader.h"
#include "files/record_builder.h"
#include "host/segment_history.h"
#include "host/state_log.h"
#include "tests/support/samples.h"
#include "tests/support/transport.h"

namespace qxview::testing {
namespace {

uint32_t Random(uint32_t* state, uint32_t below) {
  *state = *state * 1664525 + 1013904223;
  return (*state >> 8) % below;
}

struct Key {
  uint64_t number, unused;
};

// Keys from the oldest on, each with its values from the last one on.
struct Model {
  struct Held {
    uint64_t number;
    std::deque<std::pair<uint32_t, std::string>> values;
  };
  std::list<Held> keys;
  std::list<Held>::iterator Find(uint64_t number) {
    return std::find_if(keys.begin(), keys.end(), [&](const Held& held) { return held.number == number; });
  }
};

void CheckAgainst(const Model& model, StateTable& table, const StateRow& row, uint64_t numbers) {
  ASSERT_EQ(table.Count(), model.keys.size());
  for (uint64_t number = 0; number < numbers; ++number) {
    const auto held = const_cast<Model&>(model).Find(number);
    const size_t known = held == model.keys.end() ? 0 : held->values.size();
    for (int32_t back = 0; back <= row.bounds.depth + 1; ++back) {
      StateBytes bytes{};
      const Key key{number, 7};
      const auto* value = static_cast<const uint32_t*>(table.Recall(&key, back, &bytes));
      ASSERT_EQ(value != nullptr, back >= 1 && static_cast<size_t>(back) <= known) << number << " " << back;
      if (!value) continue;
      const auto& [wanted, text] = held->values[static_cast<size_t>(back) - 1];
      ASSERT_EQ(*value, wanted);
      ASSERT_EQ(std::string(reinterpret_cast<const char*>(bytes.data), bytes.length), row.bounds.mostBytes ? text : "");
    }
  }
}

// Tells table and model the same at random. Where bytes or memory end the oldest keys go, however many they are.
void RunAgainstModel(const StateBounds& bounds, uint64_t numbers, size_t mostMemory) {
  StateMemory memory{0, mostMemory};
  const HashSecret secret = MakeHashSecret(1);
  const StateRow row{"test", sizeof(Key), sizeof(uint32_t), bounds};
  Model model;
  uint32_t random = 1;
  StateTable table(row, memory, secret);
  for (uint32_t step = 0; step < 3000; ++step) {
    const Key key{Random(&random, static_cast<uint32_t>(numbers)), 7};
    auto held = model.Find(key.number);
    const uint32_t kind = Random(&random, 16);
    if (kind == 0) {
      table.Forget(&key);
      if (held != model.keys.end()) model.keys.erase(held);
    } else if (kind < 3) {
      table.Revise(&key, 2, &step);
      if (held != model.keys.end() && held->values.size() > 1) held->values[1].first = step;
    } else if (kind < 8) {
      table.Recall(&key, 1, nullptr);
      if (bounds.aging == Aging::kByUse && held != model.keys.end()) {
        model.keys.splice(model.keys.end(), model.keys, held);
      }
    } else {
      const std::string text(Random(&random, 5) ? Random(&random, 40) : Random(&random, 900), 'a' + step % 26);
      table.Remember(&key, &step, {reinterpret_cast<const uint8_t*>(text.data()), static_cast<uint32_t>(text.size())});
      if (held == model.keys.end()) held = model.keys.insert(model.keys.end(), {key.number, {}});
      model.keys.splice(model.keys.end(), model.keys, held);
      held->values.emplace_front(step, text);
      if (held->values.size() > bounds.depth) held->values.pop_back();
      if (model.keys.size() > bounds.mostKeys) model.keys.pop_front();
      const bool bounded = bounds.mostBytes || mostMemory != SIZE_MAX;
      while (bounded && model.keys.size() > table.Count()) model.keys.pop_front();
      ASSERT_LE(table.BytesHeld(), bounds.mostBytes ? bounds.mostBytes : SIZE_MAX);
      ASSERT_LE(memory.used, mostMemory);
    }
    if (step % 50 == 0 && bounds.aging == Aging::kByTelling) CheckAgainst(model, table, row, numbers);
    if (::testing::Test::HasFatalFailure()) FAIL() << "step " << step;
  }
  CheckAgainst(model, table, row, numbers);
  table.Clear();
  EXPECT_EQ(memory.used, 0u);
  EXPECT_EQ(table.BytesHeld(), 0u);
}

// What is kept of values decides nothing about what is forgotten.
TEST(StateTable, BytesThatAreKeptInPartCountAsAll) {
  StateMemory memory{0, SIZE_MAX}, memoryInPart{0, SIZE_MAX};
  const HashSecret secret = MakeHashSecret(1);
  const StateRow row{"test", sizeof(Key), sizeof(uint32_t), {.mostKeys = 1000, .depth = 5, .mostBytes = 60000}};
  StateTable whole(row, memory, secret), inPart(row, memoryInPart, secret);
  uint32_t random = 1;
  size_t forgotten = 0;
  for (uint32_t step = 0; step < 4000; ++step) {
    const Key key{Random(&random, 60), 7};
    const std::string text(Random(&random, 4) ? Random(&random, 1500) : Random(&random, 70), static_cast<char>('a' + step % 26));
    const auto length = static_cast<uint32_t>(text.size()), kept = Random(&random, 3) ? std::min(length, 8u) : length;
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    const uint32_t before = whole.Count();
    whole.Remember(&key, &step, {bytes, length});
    inPart.Remember(&key, &step, {bytes, kept}, length);
    forgotten += whole.Count() < before;
    ASSERT_EQ(inPart.Count(), whole.Count());
    ASSERT_EQ(inPart.BytesHeld(), whole.BytesHeld());
    const Key other{Random(&random, 60), 7};
    const int32_t back = static_cast<int32_t>(Random(&random, 7));
    StateBytes all{}, some{};
    ASSERT_EQ(whole.Recall(&other, back, &all) != nullptr, inPart.Recall(&other, back, &some) != nullptr);
    ASSERT_TRUE(some.length == all.length || some.length == 8);
    if (some.length > 0) {
      ASSERT_EQ(std::memcmp(some.data, all.data, some.length), 0);
    }
  }
  EXPECT_GT(forgotten, 5u);
  EXPECT_LT(memoryInPart.used, memory.used * 2 / 3);
  const std::string more(700, 'y');
  for (uint64_t number = 0; number < 60; ++number) {   // what is added moves a value to a block of its own
    const Key key{number, 7};
    const StateBytes start{reinterpret_cast<const uint8_t*>("12345678"), 8}, rest{reinterpret_cast<const uint8_t*>(more.data()), 700};
    inPart.Remember(&key, &random, start, 1000);
    ASSERT_TRUE(inPart.Extend(&key, rest));
    StateBytes joined{};
    ASSERT_TRUE(inPart.Recall(&key, 1, &joined));
    ASSERT_EQ(std::string(reinterpret_cast<const char*>(joined.data), joined.length), "12345678" + more);
  }
  whole.Clear();
  inPart.Clear();
  EXPECT_EQ(memory.used + memoryInPart.used, 0u);
}

TEST(StateTable, BehavesAsItsModel) {
  RunAgainstModel({.mostKeys = 1}, 3, SIZE_MAX);
  RunAgainstModel({.mostKeys = 5}, 12, SIZE_MAX);
  RunAgainstModel({.mostKeys = 7, .aging = Aging::kByUse}, 12, SIZE_MAX);
  RunAgainstModel({.mostKeys = 1000, .depth = 3}, 1100, SIZE_MAX);
  RunAgainstModel({.mostKeys = 30, .depth = 5, .mostBytes = 1u << 20}, 40, SIZE_MAX);
  RunAgainstModel({.mostKeys = 30, .depth = 5, .mostBytes = 8000}, 40, SIZE_MAX);
  RunAgainstModel({.mostKeys = 30, .depth = 1, .mostBytes = 8000}, 40, 40000);
}

TEST(StateTable, WithoutMemoryNothingIsKept) {
  StateMemory memory{0, 100};
  const HashSecret secret = MakeHashSecret(1);
  const StateRow row{"test", sizeof(Key), sizeof(uint32_t), {.mostKeys = 10}};
  StateTable table(row, memory, secret);
  const Key key{1, 7};
  const uint32_t value = 5;
  table.Remember(&key, &value, {});
  EXPECT_EQ(table.Recall(&key, 1, nullptr), nullptr);
  EXPECT_EQ(table.Count(), 0u);
}

// The mixing that was hashed with before: h = (h ^ word) * odd, h ^= h >> 29.
uint64_t MixUnkeyed(uint64_t hash, uint64_t word) {
  hash = (hash ^ word) * 0x9E3779B97F4A7C15u;
  return hash ^ hash >> 29;
}

// How many keys the look-up of each of them passes in all, over what it is when every bucket holds one.
double CostOf(const std::vector<std::array<uint64_t, 5>>& keys, uint64_t seed) {
  const HashSecret secret = MakeHashSecret(seed);
  std::vector<uint32_t> loads(65536);
  for (const auto& key : keys) ++loads[HashUnder(secret, key.data(), sizeof key) >> 16];
  double passed = 0;
  for (const uint32_t load : loads) passed += static_cast<double>(load) * load;
  return passed / static_cast<double>(keys.size());
}

TEST(KeyedHash, CollisionsCannotBePlanned) {
  std::vector<std::array<uint64_t, 5>> colliding, high, counted;
  for (uint64_t i = 0; i < 65000; ++i) {
    colliding.push_back({i, MixUnkeyed(0, i) ^ 12345, 1, 2, 3});   // one hash for all of them, before
    high.push_back({i << 48, (i * 7919) << 48, i << 63, 2, 3});
    counted.push_back({1, 2, i, 3, 4});
  }
  ASSERT_EQ(MixUnkeyed(MixUnkeyed(0, colliding[1][0]), colliding[1][1]),
            MixUnkeyed(MixUnkeyed(0, colliding[2][0]), colliding[2][1]));
  for (const uint64_t seed : {1u, 2u, 3u}) {
    for (const auto* keys : {&colliding, &high, &counted}) EXPECT_LT(CostOf(*keys, seed), 6.0) << seed;
  }
}

TEST(SegmentHistory, CollidingConnectionsCostNothing) {
  SegmentHistory history;
  const auto slot = [](uint64_t high, uint64_t low) {
    AddressSlot made{{}, 2};
    std::memcpy(made.address, &high, 8);
    std::memcpy(made.address + 8, &low, 8);
    return made;
  };
  const uint8_t payload[] = {1};
  const auto start = std::chrono::steady_clock::now();
  for (uint64_t i = 0; i < 65000; ++i) {
    history.Record(slot(i, MixUnkeyed(0, i) ^ 12345), 1, slot(0, 1), 2, {payload, 1, 1, 0, true}, 1);
  }
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
  EXPECT_LT(taken.count(), 1.5) << "five seconds when all of them share a bucket";
}

// A host that keeps learnt ends and segments as the stand-alone one does.
struct KeepingHost : DefinitionsHost {
  KeepingHost() {
    host.earlierSegment = [](void* user, const AddressSlot* source, uint16_t sourcePort, const AddressSlot* destination,
                             uint16_t destinationPort, int32_t back, QxSegment* out) {
      auto* self = static_cast<KeepingHost*>(static_cast<TestHost*>(user));
      return int32_t{self->history.Find(*source, sourcePort, *destination, destinationPort, back, out)};
    };
  }
  SegmentHistory history;
};

TEST(States, AReplayedFrameNeedsNoneOfThoseBeforeIt) {
  size_t differences = 0;
  for (const char* sample : {"smb", "http", "http-gzip", "ftp"}) {
    std::string message;
    const auto reader = OpenCapture((std::string(QXVIEW_SAMPLES_DIR "/") + sample + ".pcap").c_str(), &message);
    ASSERT_TRUE(reader) << message;
    RecordBuilder builder;
    CaptureFrame frame;
    std::vector<std::vector<uint8_t>> records;
    while (reader->Next(&frame) == ReadResult::kFrame) {
      const FrameRecord* record = builder.Build(frame);
      const auto* bytes = reinterpret_cast<const uint8_t*>(record);
      records.emplace_back(bytes, bytes + record->recordLength);
    }
    const auto textOf = [&](TestView& view, size_t i) {
      ClearDecodeTree(&view.view(), &view.tree(), true);
      DecodeFrame(&view.view(), reinterpret_cast<const FrameRecord*>(records[i].data()), 0, 0, 0);
      return view.Text(true);
    };
    KeepingHost host, emptyHost, knowingNothing;
    TestView view(&host), replaying(&emptyHost), alone(&knowingNothing);
    StateLog log;
    log.Record(view.view().engine);
    std::vector<std::string> texts;
    std::vector<size_t> positions;
    for (size_t i = 0; i < records.size(); ++i) {
      positions.push_back(log.End());
      texts.push_back(textOf(view, i));
      const PacketState& packet = view.context().packet;
      host.history.Record(packet.source, packet.sourcePort, packet.destination, packet.destinationPort, packet.segment,
                          static_cast<int64_t>(i));
    }
    StateReplay replay(log, replaying.view().engine);
    for (size_t i = records.size(); i-- > 0;) {
      replay.Seek(positions[i]);
      EXPECT_EQ(textOf(replaying, i), texts[i]) << sample << " " << i;
      EXPECT_TRUE(replay.InStep());
      differences += textOf(alone, i) != texts[i];
    }
    EXPECT_EQ(emptyHost.definitions.CountLearnt(QX_OVER_TCP) + emptyHost.history.MemoryUsed(), 0u);
    replay.Seek(log.End());
    textOf(replaying, records.size() - 1);
    EXPECT_FALSE(replay.InStep()) << "nothing was recorded behind the last frame";
    log.Record(nullptr);
  }
  EXPECT_GT(differences, 20u) << "the samples' frames depend on those before them";
}

// A silent pass counts no more lines than are shown, since it leaves out what nobody asked for. What it may not leave out is what later
// frames are told by: whatever is passed in front of a frame, its lines are the same.
TEST(States, WhatIsPassedTeachesWhatIsShown) {
  size_t differences = 0, counted = 0;
  for (const std::string& sample : Samples()) {
    for (const char* reassembly : {"0", "1"}) {
      KeepingHost hosts[3];
      for (KeepingHost& host : hosts) host.settings = {{"Reassembly", reassembly}};
      TestView shown(&hosts[0]), passing(&hosts[1]), alone(&hosts[2]);
      TestView* const views[] = {&shown, &passing, &alone};
      ForEachRecord(sample, [&](const FrameRecord* record) {
        const bool isPassed = ++counted % 4 != 0;
        std::string texts[3];
        for (const int which : {0, 1, 2}) {
          TestView& view = *views[which];
          if (which == 2 && isPassed) continue;
          view.context().silent = isPassed && which == 1;
          view.context().outputMode = view.context().silent ? kFindMode : kDisplayMode;
          ClearDecodeTree(&view.view(), view.view().tree, true);
          DecodeFrame(&view.view(), record, 0, 0, 0);
          const PacketState& packet = view.context().packet;
          hosts[which].history.Record(packet.source, packet.sourcePort, packet.destination, packet.destinationPort, packet.segment,
                                      static_cast<int64_t>(record->packetNumber));
          if (!isPassed) texts[which] = view.Text(true);
        }
        EXPECT_EQ(texts[1], texts[0]) << sample << " " << record->packetNumber;
        differences += texts[2] != texts[0];
      });
    }
  }
  EXPECT_GT(differences, 100u) << "the samples' frames depend on those before them";
}

// What was asked, whether it was known, and the bytes that were given. Values are left out: between their fields stands anything.
Bytes AskedIn(const StateLog& log) {
  constexpr uint16_t kKnown = 0x8000, kWithBytes = 0x4000;   // as the log has them
  const Bytes& all = log.Bytes();
  int32_t count;
  const StateRow* const rows = StateRows(&count);
  Bytes asked;
  const auto copy = [&](size_t& at, size_t size) {
    asked.insert(asked.end(), all.begin() + static_cast<ptrdiff_t>(at), all.begin() + static_cast<ptrdiff_t>(at + size));
    at += size;
  };
  for (size_t at = 0; at < all.size();) {
    uint16_t head;
    std::memcpy(&head, all.data() + at, sizeof head);
    copy(at, sizeof head);
    if (head & kKnown) at += rows[head & ~(kKnown | kWithBytes)].valueSize;
    uint32_t length = 0;
    if (!(head & kWithBytes)) continue;
    std::memcpy(&length, all.data() + at, sizeof length);
    copy(at, sizeof length + length);
  }
  return asked;
}

// Where a frame is skimmed, headers and summary ask what they would ask if it were read, and leave nothing that it would have left:
// look-ups of one that skims and of one that reads everything stay the same. Of each frame a damaged copy comes first.
TEST(States, SkimmedFramesAskWhatReadOnesDo) {
  size_t skimmed = 0, summarized = 0;
  uint32_t random = 1;
  for (const std::string& sample : Samples()) {
    KeepingHost hosts[2];
    TestView reading(&hosts[0]), skimming(&hosts[1]);
    for (TestView* view : {&reading, &skimming}) {
      view->context().silent = view->context().headersOnly = true;
      view->context().outputMode = kFindMode;
    }
    StateLog read, told;
    read.Record(reading.view().engine);
    told.Record(skimming.view().engine);
    const auto take = [&](const FrameRecord* record) {
      read.Clear();
      told.Clear();
      DecodeFrame(&reading.view(), record, 0, 0, 0);
      PassSummary(&reading.view());
      const bool isEthernet = record->mediaType == static_cast<uint8_t>(Medium::kEthernet) && !IsRawFrame(record);
      const Skim skim = isEthernet ? SkimFrame(&skimming.view(), FrameData(record), record->capturedLength) : Skim::kNot;
      if (skim == Skim::kNot) {
        told.Clear();
        DecodeFrame(&skimming.view(), record, 0, 0, 0);
      }
      if (skim != Skim::kDone) PassSummary(&skimming.view());
      EXPECT_EQ(AskedIn(told), AskedIn(read)) << sample << " " << record->packetNumber;
      skimmed += skim != Skim::kNot;
      summarized += skim == Skim::kSummary;
    };
    ForEachRecord(sample, [&](const FrameRecord* record) {
      const auto* bytes = reinterpret_cast<const uint8_t*>(record);
      std::vector<uint8_t> damaged(bytes, bytes + record->recordLength);
      if (const uint32_t headers = std::min<uint32_t>(record->capturedLength, 64)) {
        const size_t at = static_cast<size_t>(FrameData(record) - bytes) + Random(&random, headers);
        damaged[at] = static_cast<uint8_t>(damaged[at] ^ (1u << Random(&random, 8)));
      }
      take(reinterpret_cast<const FrameRecord*>(damaged.data()));
      take(record);
    });
    read.Record(nullptr);
    told.Record(nullptr);
  }
  EXPECT_GT(skimmed, 1000u);
  EXPECT_GT(summarized, 20u);
}

}  // namespace
}  // namespace qxview::testing
