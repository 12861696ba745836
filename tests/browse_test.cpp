// A packet view without a screen: packets in any order look as they do in theirs, files that grow, are compressed, damaged or
// come through a pipe, the selected line and its bytes, filter and search.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "browse/packed_numbers.h"
#include "browse/places.h"
#include "browse/search.h"
#include "browse/tree_pane.h"
#include "browse/viewed_capture.h"
#include "decoders/app/packet_summaries.h"
#include "tests/capture_bytes.h"
#include "tests/support/samples.h"

namespace qxview::testing {
namespace {

// A packet's own words, as the packet list makes them.
class ToldPacket final : public PacketTold {
 public:
  ToldPacket(Session& session, const FrameRecord* record, uint64_t number)
      : session_(session), record_(record), number_(number) {}
  uint64_t Number() const override { return number_; }
  int64_t Nanoseconds() const override { return record_->nanoseconds; }
  uint32_t Length() const override { return WireLength(record_); }
  uint32_t Captured() const override { return record_->capturedLength; }
  std::string_view Source() override { return {}; }
  std::string_view Destination() override { return {}; }
  std::string_view Protocol() override { return {}; }
  std::string_view Summary() override {
    session_.ReadHeaders(record_);
    SummarizePacket(session_.GetView(), summary_, sizeof summary_);
    return summary_;
  }

 private:
  Session& session_;
  const FrameRecord* record_;
  uint64_t number_;
  char summary_[kSummarySize];
};

CaptureParts Parts(std::vector<std::string> settings = {}) {
  CaptureParts parts;
  parts.host.settingsText = "";
  parts.host.settings = std::move(settings);
  parts.loader = {};
  parts.tell = [](Session& session, const QxHost*, const FrameRecord* record, uint64_t number) {
    return std::make_shared<ToldPacket>(session, record, number);
  };
  return parts;
}

std::string SamplePath(const std::string& name) { return QXVIEW_SAMPLES_DIR "/" + name + ".pcap"; }

std::unique_ptr<ViewedCapture> OpenView(const std::string& path, CaptureParts parts = Parts(),
                                        std::unique_ptr<CaptureInput> input = nullptr) {
  std::string message;
  auto capture = ViewedCapture::Open(path, std::move(input), std::move(parts), &message);
  EXPECT_TRUE(capture) << message;
  return capture;
}

std::string TreeText(Session& session) {
  std::string text;
  ArenaTree& tree = session.Tree();
  for (LineHandle line = tree.FirstChild(0); line;) {
    text += std::string(tree.TextOf(line)) + " " + std::to_string(RangeOfLine(&session.Context(), &tree, line)) + "\n";
    LineHandle next = tree.FirstChild(line);
    while (!next && line) {
      next = tree.NextSibling(line);
      if (!next) line = tree.Parent(line);
    }
    line = next;
  }
  return text;
}

// What every packet shows when all are decoded in their order, as the commands do.
std::vector<std::string> TreesInOrder(const std::string& path, const CaptureParts& parts) {
  std::string message;
  bool fileFault;
  const auto host = StandaloneHost::Create(parts.host, &message, &fileFault);
  const auto session = Session::Create(host->Record(), parts.loader);
  host->Attach(session.get());
  const auto reader = OpenCapture(path.c_str(), &message);
  const auto builder = std::make_unique<RecordBuilder>();
  std::vector<std::string> trees;
  CaptureFrame frame;
  while (reader->Next(&frame) == ReadResult::kFrame) {
    session->Decode(frame.record ? frame.record : builder->Build(frame));
    trees.push_back(TreeText(*session));
    host->FinishPacket();
  }
  return trees;
}

// A file of bytes that is gone with the test.
class File {
 public:
  explicit File(const Bytes& bytes, const char* name = "capture") {
    path_ = std::filesystem::temp_directory_path() /
            ("qxview_browse_" + std::to_string(reinterpret_cast<uintptr_t>(this)) + name);
    Write(bytes, "wb");
  }
  ~File() { std::filesystem::remove(path_); }
  void Add(const Bytes& bytes) { Write(bytes, "ab"); }
  std::string Path() const { return path_.string(); }

 private:
  void Write(const Bytes& bytes, const char* mode) {
    std::FILE* file = std::fopen(path_.string().c_str(), mode);
    ASSERT_TRUE(file);
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
  }
  std::filesystem::path path_;
};

// A pipe that gives so much, and then waits until it is told to go on.
struct PausingInput final : CaptureInput {
  Bytes bytes;
  size_t at = 0, until = 0;
  bool ended = false;
  Given Take(uint8_t* out, size_t size, size_t* length) override {
    *length = std::min(size, until - at);
    std::copy_n(bytes.begin() + static_cast<ptrdiff_t>(at), *length, out);
    at += *length;
    return *length ? Given::kSome : ended ? Given::kEnd : Given::kNothingNow;
  }
};

Bytes BytesOfFile(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  Bytes bytes(std::filesystem::file_size(path));
  EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), file), bytes.size());
  std::fclose(file);
  return bytes;
}

void WorkToEnd(ViewedCapture& capture) {
  while (capture.Work()) {}
}

TEST(Browse, NumbersArePackedWhateverTheyAre) {
  PackedNumbers packed;
  std::vector<uint64_t> numbers;
  uint64_t at = 24, seed = 7;
  for (int32_t i = 0; i < 5000; ++i) {
    seed = seed * 6364136223846793005u + 1442695040888963407u;
    at += i % 97 == 0 ? seed >> 20 : i % 31 == 0 ? 65534 + i % 3 : seed >> 52;
    numbers.push_back(at);
    packed.Add(at);
  }
  ASSERT_EQ(packed.Count(), numbers.size());
  EXPECT_EQ(packed.Last(), at);
  for (size_t i = 0; i < numbers.size(); ++i) {
    ASSERT_EQ(packed.At(i), numbers[i]) << i;
    for (const uint64_t wanted : {numbers[i], numbers[i] + 1}) {
      const auto place = std::lower_bound(numbers.begin(), numbers.end(), wanted) - numbers.begin();
      ASSERT_EQ(packed.PlaceOf(wanted), static_cast<uint64_t>(place)) << i;
    }
  }
  packed.Add(24);   // a file may go back
  EXPECT_EQ(packed.At(5000), 24u);
}

TEST(Browse, APacketLooksTheSameInAnyOrder) {
  for (const std::string& sample : Samples()) {
    const CaptureParts parts = Parts({"Reassembly=1"});
    const std::vector<std::string> trees = TreesInOrder(SamplePath(sample), parts);
    const auto capture = OpenView(SamplePath(sample), parts);
    ASSERT_TRUE(capture);
    WorkToEnd(*capture);
    ASSERT_EQ(capture->Known(), trees.size()) << sample;
    for (size_t i = trees.size(); i > 0; --i) {
      PacketRow row;
      ASSERT_TRUE(capture->ReadRow(i, &row));
      EXPECT_FALSE(row.summary.empty());
      ASSERT_TRUE(capture->Show(i));
      ASSERT_TRUE(capture->ReadRow(trees.size() + 1 - i, &row));   // rows are read while a packet is shown
      ASSERT_EQ(TreeText(capture->Tree()), trees[i - 1]) << sample << " " << i;
    }
  }
}

TEST(Browse, FilesGrowComeThroughPipesAndEndInDamage) {
  const Bytes whole = BytesOfFile(SamplePath("lan"));
  const std::vector<std::string> trees = TreesInOrder(SamplePath("lan"), Parts());
  const auto check = [&](ViewedCapture& capture, const char* what) {
    ASSERT_EQ(capture.Index().Count(), trees.size()) << what;
    ASSERT_EQ(capture.Known(), trees.size()) << what;
    for (const size_t i : {trees.size(), size_t{1}, trees.size() / 2}) {
      ASSERT_TRUE(capture.Show(i)) << what;
      EXPECT_EQ(TreeText(capture.Tree()), trees[i - 1]) << what << " " << i;
    }
  };
  File growing(Bytes(whole.begin(), whole.begin() + 1000));
  const auto grown = OpenView(growing.Path());
  WorkToEnd(*grown);
  EXPECT_LT(grown->Index().Count(), trees.size());
  ASSERT_TRUE(grown->Show(1));
  growing.Add(Bytes(whole.begin() + 1000, whole.end()));
  WorkToEnd(*grown);
  check(*grown, "growing");
  EXPECT_TRUE(grown->Index().Fault().empty()) << grown->Index().Fault();

  auto pipe = std::make_unique<PausingInput>();
  PausingInput& input = *pipe;
  input.bytes = whole;
  const auto piped = OpenView("-", Parts(), std::move(pipe));
  for (input.until = 10; input.until < whole.size(); input.until = std::min(whole.size(), input.until + 777)) WorkToEnd(*piped);
  WorkToEnd(*piped);
  EXPECT_FALSE(piped->Index().IsComplete());
  input.ended = true;
  WorkToEnd(*piped);
  check(*piped, "a pipe");
  EXPECT_TRUE(piped->Index().IsComplete());

  const File packed(Gzip(whole));
  const auto unpacked = OpenView(packed.Path());
  WorkToEnd(*unpacked);
  check(*unpacked, "compressed");

  Bytes broken = whole;
  broken.insert(broken.end(), 16, 0xFF);
  const File damaged(broken);
  const auto read = OpenView(damaged.Path());
  WorkToEnd(*read);
  check(*read, "damaged");
  EXPECT_NE(read->Index().Fault().find("packet " + std::to_string(trees.size() + 1)), std::string::npos) << read->Index().Fault();
  ASSERT_TRUE(read->Show(1));
  WorkToEnd(*read);
  check(*read, "damaged, again");
}

// A packet of a later section is read with that section's interfaces and order of bytes, and one of an earlier with its own.
TEST(Browse, SectionsKeepWhatTheyTell) {
  const CaptureWriter little, big{true};
  const Bytes ethernet = CountingBytes(60), raw = CountingBytes(40, 0x45);
  Bytes bytes;
  for (int section = 0; section < 3; ++section) {
    const CaptureWriter& writer = section == 1 ? big : little;
    bytes = bytes + writer.Section() + writer.Interface(section == 1 ? 101 : 1) +
            writer.Packet(0, 1, 99, section == 1 ? raw : ethernet) +
            writer.Interface(147) + writer.Packet(1, 2, 77, raw);
  }
  const File file(bytes);
  std::string message;
  const std::vector<ReadFrameCopy> frames = ReadToEnd(OpenCapture(file.Path().c_str(), &message), message).frames;
  ASSERT_EQ(frames.size(), 6u);
  PacketIndex index;
  ASSERT_TRUE(index.Open(file.Path(), nullptr, &message));
  while (index.Advance(1)) {
    CaptureFrame frame;
    if (index.Count()) {
      ASSERT_TRUE(index.Fetch(1, &frame));   // reading on goes on behind the last packet
    }
  }
  ASSERT_EQ(index.Count(), 6u);
  for (const uint64_t number : {6, 1, 3, 4, 2, 5, 6, 5}) {
    CaptureFrame frame;
    const ReadFrameCopy& wanted = frames[number - 1];
    ASSERT_TRUE(index.Fetch(number, &frame)) << number;
    EXPECT_EQ(frame.number, number);
    EXPECT_EQ(frame.linkType, wanted.linkType) << number;
    EXPECT_EQ(frame.wireLength, wanted.wireLength) << number;
    EXPECT_EQ(frame.interface->section, (number + 1) / 2);
    EXPECT_EQ(Bytes(frame.data, frame.data + frame.dataLength), wanted.bytes) << number;
  }
}

// What is opened, closed and selected stays so in the next packet; lines and bytes lead to each other.
TEST(Browse, TheTreePaneKeepsItsPlace) {
  const auto capture = OpenView(SamplePath("dns"), Parts({"Modern=1"}));
  WorkToEnd(*capture);
  TreePane pane;
  const auto show = [&](uint64_t number) {
    ASSERT_TRUE(capture->Show(number));
    pane.Take(capture->Tree().GetView(), &capture->Tree().Tree());
  };
  const auto find = [&](const char* text, LineHandle from = 0, bool backward = false) {
    SearchText search;
    std::string wrong;
    EXPECT_TRUE(TakeSearch(SearchIn::kTree, text, &search, &wrong));
    return pane.Find(search.literal, from, backward);
  };
  show(1);
  EXPECT_EQ(pane.SelectedIndex(), 0u);
  const LineHandle name = find("/^Domain Name/");
  ASSERT_TRUE(name);
  pane.SelectLine(name);
  EXPECT_EQ(pane.Selected(), name);
  const FrameBytes bytes = pane.BytesOf(name);
  ASSERT_GT(bytes.length, 1);
  EXPECT_EQ(pane.TextOf(pane.LineAt(bytes.offset + 1)), "Name Section: www");   // the innermost
  EXPECT_EQ(pane.KeyOf(name), "dns.domain_name");
  EXPECT_TRUE(pane.FilterOf(name).starts_with("dns.domain_name == \"")) << pane.FilterOf(name);
  const std::string filter = pane.FilterOf(name);
  show(2);
  EXPECT_EQ(pane.KeyOf(pane.Selected()), "dns.domain_name");
  EXPECT_EQ(find("no such line"), 0u);
  const LineHandle last = find("/./", 0, true), first = find("/./");
  EXPECT_EQ(find("/./", last), 0u);
  EXPECT_EQ(find("/./", first, true), 0u);

  pane.ShowLevels(1);
  for (const SeenLine& seen : pane.Lines()) EXPECT_EQ(seen.depth, 0);
  const size_t tops = pane.Lines().size();
  pane.Select(0);
  pane.Expand(0, true);
  EXPECT_GT(pane.Lines().size(), tops);
  show(1);
  EXPECT_TRUE(pane.Lines()[0].isExpanded);
  EXPECT_EQ(pane.ParentOf(1), 0u);
  pane.Select(1);
  pane.Expand(0, false);
  EXPECT_EQ(pane.SelectedIndex(), 0u);
  pane.ShowLevels(9);
  for (const SeenLine& seen : pane.Lines()) EXPECT_EQ(seen.hasChildren, seen.isExpanded);

  FilterFault fault;
  ASSERT_TRUE(capture->SetFilter(filter, &fault)) << fault.message;
  WorkToEnd(*capture);
  EXPECT_TRUE(capture->IsFilterDone());
  ASSERT_GE(capture->ShownCount(), 2u);
  EXPECT_LT(capture->ShownCount(), capture->Index().Count());
  EXPECT_EQ(capture->NumberAt(0), 1u);
  EXPECT_EQ(capture->PlaceOf(capture->NumberAt(1)), 1u);
  EXPECT_FALSE(capture->SetFilter("dns.no_such_key", &fault));
  EXPECT_EQ(capture->FilterText(), filter);
}

TEST(Browse, SearchesGoAround) {
  const auto capture = OpenView(SamplePath("dns"));
  WorkToEnd(*capture);
  const uint64_t count = capture->Index().Count();
  const auto run = [&](SearchIn in, const std::string& text, uint64_t from, bool backward, bool* wrapped) {
    SearchText search;
    std::string wrong;
    EXPECT_TRUE(TakeSearch(in, text, &search, &wrong)) << wrong;
    SearchRun search_run(*capture, search, from, backward);
    SearchRun::State state;
    while ((state = search_run.Advance(3)) == SearchRun::State::kGoesOn) {}
    *wrapped = search_run.Wrapped();
    return state == SearchRun::State::kFound ? search_run.Found() : 0;
  };
  bool wrapped = false;
  EXPECT_EQ(run(SearchIn::kList, "dns", 1, false, &wrapped), 2u);
  EXPECT_FALSE(wrapped);
  EXPECT_EQ(run(SearchIn::kTree, "packet 1:", count, false, &wrapped), 1u);
  EXPECT_TRUE(wrapped);
  EXPECT_EQ(run(SearchIn::kTree, "/^packet 1:/", count, true, &wrapped), 1u);
  EXPECT_FALSE(wrapped);
  EXPECT_EQ(run(SearchIn::kTree, "/no such (line|text)/", 1, false, &wrapped), 0u);
  EXPECT_EQ(run(SearchIn::kBytes, "0x00 35", 1, true, &wrapped), count);
  EXPECT_TRUE(wrapped);
  SearchText same;
  std::string wrong;
  const uint8_t* bytes;
  int32_t length;
  ASSERT_TRUE(capture->ReadBytes(1, &bytes, &length));
  ASSERT_TRUE(TakeSearch(SearchIn::kBytes, "x", &same, &wrong));
  same.bytes.assign(bytes, bytes + length);   // of one packet alone: its identification
  same.offset = 0;
  EXPECT_EQ(FindBytes(same, bytes, length), 0);
  EXPECT_EQ(FindBytes(same, bytes, length - 1), -1);
  EXPECT_FALSE(TakeSearch(SearchIn::kBytes, "0x123", &same, &wrong));
  EXPECT_FALSE(TakeSearch(SearchIn::kTree, "/(/", &same, &wrong));
  EXPECT_FALSE(TakeSearch(SearchIn::kList, "", &same, &wrong));
}

TEST(Browse, OtherDecodingsAndPlaces) {
  const auto capture = OpenView(SamplePath("ports"));
  WorkToEnd(*capture);
  HostOptions options = capture->Options();
  options.definitions.push_back("udp:1=NoSuchProtocol");
  std::string message;
  ASSERT_TRUE(capture->Show(1));
  const std::string before = TreeText(capture->Tree());
  EXPECT_FALSE(capture->DecodeWith(options, &message));
  EXPECT_NE(message.find("NoSuchProtocol"), std::string::npos) << message;
  EXPECT_EQ(TreeText(capture->Tree()), before);
  options.definitions.back() = "udp:1=DNS";
  EXPECT_TRUE(capture->DecodeWith(options, &message)) << message;
  WorkToEnd(*capture);
  EXPECT_EQ(capture->Known(), capture->Index().Count());

  VisitedPlaces places;
  for (const uint64_t number : {1, 5, 5, 9}) places.Visit(number);
  EXPECT_EQ(places.Back(), 5u);
  EXPECT_EQ(places.Back(), 1u);
  EXPECT_EQ(places.Back(), 0u);
  EXPECT_EQ(places.Forward(), 5u);
  places.Visit(7);
  EXPECT_EQ(places.Forward(), 0u);
  EXPECT_EQ(places.Back(), 5u);
  Marks marks;
  for (const uint64_t number : {3, 8, 4, 4}) marks.Toggle(number);
  EXPECT_EQ(marks.Next(8), 3u);
  EXPECT_EQ(marks.Before(3), 8u);
  EXPECT_EQ(marks.All().size(), 2u);
}

}  // namespace
}  // namespace qxview::testing
