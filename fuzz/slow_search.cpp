// Looks for the frames that take longest and have most lines: frames of captures are changed at random, and what costs more than
// what it was made of is gone on with.
//
//   fuzz_slow SECONDS OUT CAPTURE|FOLDER...     a folder holds inputs of the payload target
//
// Prints the worst frames with their time on this machine's processor (the best of several runs), lines, texts and stack, and
// writes them to OUT.1, OUT.2 ... as inputs of the frame and payload targets. The exit status is 1 when one of them is above a
// bound.
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "files/capture_reader.h"
#include "files/record_builder.h"
#include "fuzz/payload.h"

namespace {

using namespace qxview;

constexpr double kMostMilliseconds = 10;
constexpr size_t kMostStack = 128 << 10;
constexpr size_t kLongest = 65000, kKept = 40;
constexpr int kRepeats = 6;
constexpr size_t kStackSize = 1 << 20;
constexpr uint8_t kUntouched = 0xA5;

struct Subject {
  std::vector<uint8_t> head;    // of the target's input, in front of the bytes
  bool isPayload;
  std::vector<uint8_t> bytes;
  double milliseconds = 0;
  int32_t lines = 0;
  int64_t text = 0;
  size_t stack = 0;
};

double ThreadMilliseconds() {
  timespec now;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

// What decoding the frame or payload costs a fresh session; the shortest of `runs`.
void Measure(Subject& subject, int runs) {
  static const auto builder = std::make_unique<RecordBuilder>();
  const fuzz::Piece bytes{subject.bytes.data(), subject.bytes.size()};
  fuzz::Input input(subject.head.data() + 1, subject.head.size() - 1);
  const fuzz::PayloadHead head = subject.isPayload ? fuzz::ReadPayloadHead(input) : fuzz::PayloadHead{};
  CaptureFrame frame{};
  frame.number = 1;
  frame.capturedLength = frame.dataLength = frame.wireLength = static_cast<uint32_t>(bytes.size);
  frame.data = bytes.data;
  frame.linkType = static_cast<uint16_t>(subject.head[2] | subject.head[3] << 8);
  const fuzz::ExactRecord record = subject.isPayload ? fuzz::RecordOf(head, bytes) : fuzz::ExactRecord(builder->Build(frame));
  subject.milliseconds = 1e9;
  for (int i = 0; i < runs; ++i) {
    fuzz::Station station(fuzz::kModern | fuzz::kReassembly, kDisplayMode);
    const double start = ThreadMilliseconds();
    if (subject.isPayload) {
      fuzz::DecodePayload(*station.session, head, record);
    } else {
      station.session->Decode(record.get());
    }
    subject.milliseconds = std::min(subject.milliseconds, ThreadMilliseconds() - start);
    const ArenaTree& tree = station.session->Tree();
    subject.lines = static_cast<int32_t>(tree.LineCount());
    subject.text = 0;
    for (LineHandle line = 1; line <= tree.LineCount(); ++line) subject.text += static_cast<int64_t>(tree.TextOf(line).size());
  }
}

// The same on a stack that was filled before, for what of it was touched.
void* MeasureOnThread(void* subject) {
  Measure(*static_cast<Subject*>(subject), 1);
  return nullptr;
}
size_t StackOf(Subject subject) {
  std::vector<uint8_t> memory(kStackSize + 4096, kUntouched);
  uint8_t* stack = memory.data() + (4096 - reinterpret_cast<uintptr_t>(memory.data()) % 4096);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, stack, kStackSize);
  pthread_t thread;
  if (pthread_create(&thread, &attributes, MeasureOnThread, &subject) != 0) return 0;
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  size_t untouched = 0;
  while (untouched < kStackSize && stack[untouched] == kUntouched) ++untouched;
  return kStackSize - untouched;
}

class Search {
 public:
  void Read(const char* path) {
    std::string message;
    if (std::filesystem::is_directory(path)) return ReadPayloads(path);
    const auto reader = OpenCapture(path, &message);
    if (!reader) std::fprintf(stderr, "%s\n", message.c_str());
    CaptureFrame frame;
    while (reader && reader->Next(&frame) == ReadResult::kFrame) {
      if (frame.dataLength == 0 || frame.dataLength != frame.capturedLength || frame.record) continue;
      const uint8_t wishes = fuzz::kModern | fuzz::kReassembly;
      const auto low = static_cast<uint8_t>(frame.linkType), high = static_cast<uint8_t>(frame.linkType >> 8);
      const std::vector<uint8_t> head{wishes, 0x80, low, high, 0};
      Take({head, false, {frame.data, frame.data + frame.dataLength}});
    }
  }

  // Each as it is, and a few of its slices again and again up to the longest.
  void ReadPayloads(const char* folder) {
    constexpr size_t kHead = 12;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::vector<uint8_t> input((std::istreambuf_iterator<char>(file)), {});
      const size_t size = input.size() > kHead ? kHead + input[kHead - 1] : 0;
      if (size == 0 || size >= input.size()) continue;
      const auto split = input.begin() + static_cast<ptrdiff_t>(size);
      const Subject whole{{input.begin(), split}, true, {split, input.end()}};
      Take(whole);
      for (int i = 0; i < kRepeats; ++i) {
        Subject repeated = whole;
        Repeat(repeated.bytes, kLongest);
        Take(std::move(repeated));
      }
    }
  }

  void Run(double seconds) {
    const auto start = std::chrono::steady_clock::now();
    while (!all_.empty() && std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() < seconds) {
      const bool byLines = random_() % 2;
      const auto& from = random_() % 5 == 0 ? all_ : byLines ? longest_ : slowest_;
      Subject changed = from[random_() % from.size()];
      for (uint32_t changes = 1 + random_() % 4; changes > 0; --changes) Change(changed.bytes);
      if (!changed.isPayload) FitLengths(changed.bytes);
      Take(std::move(changed));
    }
  }

  bool Tell(const std::string& out) {
    bool good = true;
    int number = 0;
    for (auto* list : {&slowest_, &longest_}) {
      for (size_t i = 0; i < std::min<size_t>(list->size(), 8); ++i) {
        Subject& subject = (*list)[i];
        Measure(subject, 7);
        subject.stack = StackOf(subject);
        const bool isBelow = subject.milliseconds <= kMostMilliseconds && subject.stack <= kMostStack &&
                             subject.lines <= MostLinesOf(static_cast<int32_t>(subject.bytes.size())) + 1;
        good &= isBelow;
        const std::string name = out + "." + std::to_string(++number);
        fuzz::Input input(subject.head.data() + 1, subject.head.size() - 1);
        std::printf("%s %s: %s, %zu bytes: %.2f ms, %d lines, %lld characters, %zu bytes of stack\n", isBelow ? "good" : "OVER",
                    name.c_str(), subject.isPayload ? fuzz::ReadPayloadHead(input).row->name : "a frame", subject.bytes.size(),
                    subject.milliseconds, subject.lines, static_cast<long long>(subject.text), subject.stack);
        std::ofstream file(name, std::ios::binary);
        file.write(reinterpret_cast<const char*>(subject.head.data()), static_cast<std::streamsize>(subject.head.size()));
        file.write(reinterpret_cast<const char*>(subject.bytes.data()), static_cast<std::streamsize>(subject.bytes.size()));
      }
    }
    std::printf("%llu frames were tried\n", static_cast<unsigned long long>(tried_));
    return good;
  }

 private:
  void Take(Subject subject) {
    ++tried_;
    Measure(subject, 1);
    const auto isSlower = [](const Subject& a, const Subject& b) { return a.milliseconds > b.milliseconds; };
    const auto isLonger = [](const Subject& a, const Subject& b) { return a.lines > b.lines; };
    if (slowest_.size() < kKept || isSlower(subject, slowest_.back())) {
      Measure(subject, 3);   // what was disturbed is not slow
      Insert(slowest_, subject, isSlower);
    }
    Insert(longest_, subject, isLonger);
    if (tried_ % 7 == 0 && all_.size() < 4000) all_.push_back(std::move(subject));
  }
  template <class Before>
  static void Insert(std::vector<Subject>& list, const Subject& subject, const Before& before) {
    const auto at = std::upper_bound(list.begin(), list.end(), subject, before);
    if (at == list.end() && list.size() >= kKept) return;
    list.insert(at, subject);
    if (list.size() > kKept) list.pop_back();
  }

  // A slice again and again until there are so many bytes.
  void Repeat(std::vector<uint8_t>& bytes, size_t most) {
    if (bytes.empty()) return;
    const size_t at = random_() % bytes.size(), length = std::min<size_t>(1 + random_() % 64, bytes.size() - at);
    const auto from = bytes.begin() + static_cast<ptrdiff_t>(at);
    const std::vector<uint8_t> slice(from, from + static_cast<ptrdiff_t>(length));
    std::vector<uint8_t> run;
    while (bytes.size() + run.size() + length <= std::min(most, kLongest)) run.insert(run.end(), slice.begin(), slice.end());
    bytes.insert(bytes.begin() + static_cast<ptrdiff_t>(at + length), run.begin(), run.end());
  }

  // Bytes, numbers, slices again and again, another frame's end.
  void Change(std::vector<uint8_t>& bytes) {
    if (bytes.empty()) bytes.push_back(0);
    const size_t at = random_() % bytes.size(), length = std::min<size_t>(1 + random_() % 64, bytes.size() - at);
    constexpr uint8_t kBytes[] = {0, 1, 0x7F, 0x80, 0xFF, 0x0C, 0xC0, 0x40};
    switch (random_() % 7) {
      case 0: bytes[at] = static_cast<uint8_t>(random_()); break;
      case 1: bytes[at] = kBytes[random_() % sizeof kBytes]; break;
      case 2: {   // a length that says what there is
        const size_t left = bytes.size() - at;
        bytes[at] = static_cast<uint8_t>(left >> 8);
        if (at + 1 < bytes.size()) bytes[at + 1] = static_cast<uint8_t>(left);
        break;
      }
      case 3:
      case 4: {   // a slice until the frame is long
        Repeat(bytes, random_() % 3 ? bytes.size() + 2000 : kLongest);
        break;
      }
      case 5: bytes.resize(at + length); break;
      default: {
        const auto& other = all_.empty() ? bytes : all_[random_() % all_.size()].bytes;
        const std::vector<uint8_t> tail(other.begin() + static_cast<ptrdiff_t>(std::min(at, other.size())), other.end());
        bytes.resize(at);
        bytes.insert(bytes.end(), tail.begin(), tail.end());
      }
    }
    if (bytes.size() > kLongest) bytes.resize(kLongest);
  }
  // Of IPv4 and UDP: what stands behind the headers is theirs.
  static void FitLengths(std::vector<uint8_t>& bytes) {
    const auto put = [&](size_t at, size_t value) {
      bytes[at] = static_cast<uint8_t>(value >> 8);
      bytes[at + 1] = static_cast<uint8_t>(value);
    };
    if (bytes.size() < 42 || bytes[12] != 8 || bytes[13] != 0 || bytes[14] != 0x45) return;
    put(16, bytes.size() - 14);
    if (bytes[23] == 17) put(38, bytes.size() - 34);
    fuzz::RepairChecksums(bytes.data(), bytes.size(), true);
  }

  std::vector<Subject> slowest_, longest_, all_;
  uint64_t tried_ = 0;
  std::mt19937 random_{1};
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) return std::fprintf(stderr, "fuzz_slow SECONDS OUT CAPTURE...\n"), 2;
  Search search;
  for (int i = 3; i < argc; ++i) search.Read(argv[i]);
  search.Run(std::atof(argv[1]));
  return search.Tell(argv[2]) ? 0 : 1;
}
