// Looks for the frames that take longest and have most lines: frames of captures are changed at random, and what costs more than
// what it was made of is gone on with.
//
//   fuzz_slow [--each] SECONDS OUT CAPTURE|FOLDER...     a folder holds inputs of the payload target
//   fuzz_slow --again FILE...                            what was written before
//
// With --each nothing is drawn: every payload and a few frames of each protocol have an equal part of the time, in which their
// slices are repeated, as they are and with the lengths and counts in front of them raised; the worst of each protocol are printed,
// by time and by lines. Else prints the worst frames with their time on this machine's processor (the best of several runs), lines,
// texts and stack, and writes them to OUT.1.frame, OUT.2.payload ... as inputs of these targets. The exit status is 1 when one of
// them is above a bound.
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
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
constexpr size_t kProbed = 2000, kFull = 3, kFramesOfEach = 12;
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
  std::string protocol = {}, name = {};   // the file's, once it has one

  double LinesAByte() const { return lines / static_cast<double>(bytes.size() + 1); }
};

double ThreadMilliseconds() {
  timespec now;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

// The innermost protocol's, by the last line at the top.
std::string NameOf(const ArenaTree& tree) {
  const std::string_view text = tree.LineCount() ? tree.TextOf(tree.LastChild(0)) : "";
  return "a frame of " + std::string(text.substr(0, text.find_first_of(":,[(0123456789")));
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
    subject.protocol = subject.isPayload ? head.row->name : NameOf(tree);
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
  explicit Search(bool isEach) : isEach_(isEach) {}

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
      Begin({head, false, {frame.data, frame.data + frame.dataLength}});
    }
  }

  // Each as it is, and a few of its slices again and again up to the longest.
  void ReadPayloads(const char* folder) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::vector<uint8_t> input((std::istreambuf_iterator<char>(file)), {});
      const size_t size = HeadSize(input, true);
      if (size == 0) continue;
      const auto split = input.begin() + static_cast<ptrdiff_t>(size);
      const Subject whole{{input.begin(), split}, true, {split, input.end()}};
      Begin(whole);
      for (int i = 0; i < kRepeats && !isEach_; ++i) {
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

  // Every subject that was read, in turn.
  void RunEach(double seconds) {
    std::vector<Subject> subjects = std::move(all_);
    std::map<std::string, std::vector<Subject>> slowest, longest;
    const auto keep = [](std::vector<Subject>& worst, const Subject& subject, auto cost) {
      if (worst.empty() || cost(subject) > cost(worst[0])) worst.assign(1, subject);
    };
    const auto time = [](const Subject& subject) { return subject.milliseconds; };
    const auto lines = [](const Subject& subject) { return subject.LinesAByte(); };
    size_t done = 0;
    for (Subject& subject : subjects) {
      for (const Slice& slice : WorstSlices(subject, seconds / static_cast<double>(subjects.size()))) {
        Subject full = subject;
        Fill(full, slice, kLongest);
        Measure(full, 1);
        const auto slow = slowest.find(full.protocol);
        if (slow == slowest.end() || full.milliseconds > slow->second[0].milliseconds) Measure(full, 3);
        keep(slowest[full.protocol], full, time);
        keep(longest[full.protocol], full, lines);
      }
      if (++done % 500 != 0) continue;
      std::fprintf(stderr, "%zu of %zu, %llu tried\n", done, subjects.size(), static_cast<unsigned long long>(tried_));
    }
    slowest_.clear();
    longest_.clear();
    for (auto& [name, worst] : slowest) slowest_.push_back(std::move(worst[0]));
    for (auto& [name, worst] : longest) longest_.push_back(std::move(worst[0]));
    std::sort(slowest_.begin(), slowest_.end(), [&](const Subject& a, const Subject& b) { return time(a) > time(b); });
    std::sort(longest_.begin(), longest_.end(), [&](const Subject& a, const Subject& b) { return lines(a) > lines(b); });
  }

  void ReadAgain(const char* path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<uint8_t> input((std::istreambuf_iterator<char>(file)), {});
    const bool isPayload = std::filesystem::path(path).extension() == ".payload";
    const size_t head = HeadSize(input, isPayload);
    if (head == 0) return (void)std::fprintf(stderr, "%s is no input\n", path);
    const auto split = input.begin() + static_cast<ptrdiff_t>(head);
    slowest_.push_back({{input.begin(), split}, isPayload, {split, input.end()}});
    slowest_.back().name = path;
  }

  bool Tell(const std::string& out, size_t most) {
    bool good = true;
    int number = 0;
    for (auto* list : {&slowest_, &longest_}) {
      for (size_t i = 0; i < std::min(list->size(), most); ++i) {
        Subject& subject = (*list)[i];
        Measure(subject, 7);
        subject.stack = StackOf(subject);
        const bool isBelow = subject.milliseconds <= kMostMilliseconds && subject.stack <= kMostStack &&
                             subject.lines <= MostLinesOf(static_cast<int32_t>(subject.bytes.size())) + 1;
        good &= isBelow;
        if (!out.empty()) subject.name = out + "." + std::to_string(++number) + (subject.isPayload ? ".payload" : ".frame");
        std::printf("%s %s: %s, %zu bytes: %.2f ms, %d lines, %lld characters, %zu bytes of stack\n", isBelow ? "good" : "OVER",
                    subject.name.c_str(), subject.protocol.c_str(), subject.bytes.size(),
                    subject.milliseconds, subject.lines, static_cast<long long>(subject.text), subject.stack);
        if (out.empty()) continue;
        std::ofstream file(subject.name, std::ios::binary);
        file.write(reinterpret_cast<const char*>(subject.head.data()), static_cast<std::streamsize>(subject.head.size()));
        file.write(reinterpret_cast<const char*>(subject.bytes.data()), static_cast<std::streamsize>(subject.bytes.size()));
      }
    }
    std::printf("%llu frames were tried\n", static_cast<unsigned long long>(tried_));
    return good;
  }

 private:
  // Bytes in front of those that are decoded; 0 where there are none of those.
  static size_t HeadSize(const std::vector<uint8_t>& input, bool isPayload) {
    constexpr size_t kPayloadHead = 12, kFrameHead = 5;
    const size_t size = !isPayload ? kFrameHead : input.size() > kPayloadHead ? kPayloadHead + input[kPayloadHead - 1] : 0;
    return size < input.size() ? size : 0;
  }

  struct Slice {
    size_t at, length;
    int how;      // see Fill
    double cost;
  };
  enum { kAsItIs, kMeasured, kCounted, kWays };

  // What is worked on later, or is taken at once.
  void Begin(Subject subject) {
    if (!isEach_) return Take(std::move(subject));
    if (!subject.isPayload) {
      Measure(subject, 1);
      if (++frames_[subject.protocol + std::to_string(subject.bytes.size() / 128)] > kFramesOfEach) return;
    }
    all_.push_back(std::move(subject));
  }

  // The slices that cost most where they are repeated up to a few bytes.
  std::vector<Slice> WorstSlices(const Subject& subject, double seconds) {
    const double end = ThreadMilliseconds() + seconds * 1e3;
    const std::vector<uint8_t>& bytes = subject.bytes;
    const size_t size = bytes.size();
    const auto byteAt = [&](size_t at) { return at < size ? size_t{bytes[at]} : 0; };
    const auto wordAt = [&](size_t at) { return byteAt(at) << 8 | byteAt(at + 1); };
    std::vector<Slice> tries;
    for (size_t at = 0; at < size; ++at) {
      const size_t lengths[] = {byteAt(at + 1) + 2, byteAt(at + 1), wordAt(at + 2) + 4, wordAt(at + 2),
                                wordAt(at + 1) + 3, byteAt(at) + 1, wordAt(at) + 2, 4 * byteAt(at + 1),
                                1, 2, 3, 4, 5, 6, 8, 12, 16};
      for (const size_t length : lengths) {
        if (length == 0 || length > 64 || at + length > size) continue;
        for (int how = 0; how < kWays; ++how) tries.push_back({at, length, how, 0});
      }
    }
    std::shuffle(tries.begin(), tries.end(), random_);
    std::vector<Slice> slow, dense;
    const auto keep = [](std::vector<Slice>& worst, const Slice& slice) {
      const auto at = std::upper_bound(worst.begin(), worst.end(), slice,
                                       [](const Slice& a, const Slice& b) { return a.cost > b.cost; });
      if (at == worst.end() && worst.size() >= kFull) return;
      worst.insert(at, slice);
      if (worst.size() > kFull) worst.pop_back();
    };
    for (Slice& slice : tries) {
      if (ThreadMilliseconds() > end) break;
      ++tried_;
      Subject probe = subject;
      Fill(probe, slice, kProbed);
      Measure(probe, 1);
      slice.cost = probe.milliseconds;
      keep(slow, slice);
      slice.cost = probe.LinesAByte();
      keep(dense, slice);
    }
    slow.insert(slow.end(), dense.begin(), dense.end());
    return slow;
  }

  // Repeats the slice; lengths in front that reach over it grow with it where that is wished, and a count just before it, or near
  // the start, says many.
  void Fill(Subject& subject, const Slice& slice, size_t most) {
    std::vector<uint8_t>& bytes = subject.bytes;
    const size_t size = bytes.size();
    if (size + slice.length > most) return;
    const size_t times = (most - size) / slice.length, more = times * slice.length;
    const std::vector<uint8_t> piece(bytes.begin() + static_cast<ptrdiff_t>(slice.at),
                                     bytes.begin() + static_cast<ptrdiff_t>(slice.at + slice.length));
    std::vector<uint8_t> run;
    for (size_t i = 0; i < times; ++i) run.insert(run.end(), piece.begin(), piece.end());
    if (slice.how != kAsItIs) Raise(bytes, slice, more);
    bytes.insert(bytes.begin() + static_cast<ptrdiff_t>(slice.at + slice.length), run.begin(), run.end());
    if (!subject.isPayload) FitLengths(bytes);
  }
  static void Raise(std::vector<uint8_t>& bytes, const Slice& slice, size_t more) {
    const size_t size = bytes.size(), end = slice.at + slice.length;
    const auto put = [&](size_t at, size_t width, size_t value) {
      for (size_t i = 0; i < width; ++i) bytes[at + i] = static_cast<uint8_t>(value >> 8 * (width - 1 - i));
    };
    for (size_t at = 0; at + 1 <= slice.at; ++at) {
      for (const size_t width : {4, 3, 2, 1}) {
        if (at + width > slice.at) continue;
        size_t value = 0;
        for (size_t i = 0; i < width; ++i) value = value << 8 | bytes[at + i];
        const bool fromHere = at + width + value >= end && at + width + value <= size;
        const bool isWhole = value <= size && value + 4 >= size && value >= 4;
        if (value == 0 || (!fromHere && !isWhole)) continue;
        const size_t highest = width >= 4 ? 0xFFFFFFFF : (size_t{1} << 8 * width) - 1;
        put(at, width, std::min(value + more, highest));
        at += width - 1;
        break;
      }
    }
    if (slice.how != kCounted) return;
    if (slice.at >= 2 && bytes[slice.at - 2] == 0 && bytes[slice.at - 1] <= 32) put(slice.at - 2, 2, 0xFFFF);
    else if (slice.at >= 1 && bytes[slice.at - 1] <= 32) put(slice.at - 1, 1, 0xFF);
    for (size_t at = 4; at + 2 <= std::min<size_t>(slice.at, 14); at += 2) {
      if (bytes[at] == 0 && bytes[at + 1] > 0 && bytes[at + 1] <= 32) put(at, 2, 0x7FFF);
    }
  }

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
  std::map<std::string, size_t> frames_;
  uint64_t tried_ = 0;
  bool isEach_;
  std::mt19937 random_{1};
};

}  // namespace

int main(int argc, char** argv) {
  const std::string_view first = argc > 1 ? argv[1] : "";
  const bool isEach = first == "--each", isAgain = first == "--again";
  char** const words = argv + isEach;
  const int count = argc - isEach;
  if (count < (isAgain ? 3 : 4)) return std::fprintf(stderr, "fuzz_slow [--each] SECONDS OUT CAPTURE...\n"), 2;
  Search search(isEach);
  for (int i = 2; i < count && isAgain; ++i) search.ReadAgain(argv[i]);
  if (isAgain) return search.Tell("", SIZE_MAX) ? 0 : 1;
  for (int i = 3; i < count; ++i) search.Read(words[i]);
  const double seconds = std::atof(words[1]);
  isEach ? search.RunEach(seconds) : search.Run(seconds);
  return search.Tell(words[2], isEach ? kKept : 8) ? 0 : 1;
}
