// What holds for every decoder of the registry and any input: no read outside the bytes (each input has an allocation of
// its exact size, so a sanitizer sees one), every range inside them but for stated ones, the same lines in print as in
// display mode and as many in a silent pass, no allocation, and bounds of lines, nesting and time. The inputs are payloads
// of the samples and of tests/seeds.txt: cut at every length and with damaged bytes; and random bytes.
#include <algorithm>
#include <chrono>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "core/output_file.h"
#include "tests/support/samples.h"
#include "tests/support/small_stack.h"

namespace qxview::testing {
namespace {

constexpr uint8_t kDamage[] = {0x00, 0x01, 0x7F, 0x80, 0xFF};
constexpr size_t kMostPlaces = 160;        // of a payload that are cut at and damaged; of a longer one some, evenly spread
constexpr size_t kMostSeeds = 24;          // of a decoder, out of the samples
constexpr int32_t kMostLinesAByte = 40;    // above the 100 that the shortest input may have
constexpr double kMostMilliseconds = 50;

// The lines that state a length which the frame need not have.
constexpr const char* kStating[] = {"IP: ", "IPv6 Section: ", "DNS:", "Microsoft LLMNR:", "Multicast DNS:",
                                    "Answer Record #", "Authority Record #", "Additional Record #", "TTL: "};

struct Seed {
  Bytes bytes;
  uint16_t linkType = 0;
  Bytes extension{};
};
using Seeds = std::map<DecoderFunction, std::vector<Seed>>;

// Keeps lines as they are added, in the form of the print file: later edits are seen in the tree alone.
class AddedLines final : public DecodeTree {
 public:
  std::string text;
  std::vector<std::string> lines;

  LineHandle Append(const NewLine& line) override {
    lines.emplace_back(line.text, static_cast<size_t>(line.length));
    if (line.length) {
      text += line.parent ? "    " : "";
      text.append(line.text, static_cast<size_t>(line.length)) += "\r\n";
    }
    return lines.size();
  }
  uint32_t RangeIndex(LineHandle line) const override { return static_cast<uint32_t>(line - 1); }
  bool Holds(LineHandle line) const override { return line >= 1 && line <= lines.size(); }
  void Clear() override {
    text.clear();
    lines.clear();
  }
  int32_t GetText(LineHandle, char* out, int32_t) const override { return *out = 0; }
  void SetText(LineHandle, const char*, int32_t) override {}
  void SetRangeIndex(LineHandle, uint32_t) override {}
  int32_t Image(LineHandle) const override { return 0; }
  LineHandle FirstChild(LineHandle) const override { return 0; }
  LineHandle LastChild(LineHandle) const override { return 0; }
  LineHandle NextSibling(LineHandle) const override { return 0; }
  LineHandle Parent(LineHandle) const override { return 0; }
  bool IsExpanded(LineHandle) const override { return false; }
  LineHandle Selected() const override { return 0; }
  void Delete(LineHandle) override {}
  void Expand(LineHandle, bool) override {}
  void Select(LineHandle) override {}
  void ScrollToTop() override {}
  void HoldRedraw(bool) override {}
};

// A view of its own for each mode, so that all have seen the same inputs before.
class ThreeModes {
 public:
  ThreeModes() {
    for (TestView* view : {&shown_, &printed_, &silent_}) view->view().tree = &added_;
    OpenOutput(file_.get(), {&text_, Append, nullptr, -1});
    text_.reserve(1 << 24);
    printed_.context().outputMode = kPrintMode;
    printed_.context().outputFile = file_.get();
    silent_.context().outputMode = kFindMode;
    silent_.context().silent = true;
  }

  // What is wrong with the decode of the seed's bytes; empty when nothing is.
  std::string Fault(const DecoderRow& row, uint8_t mediaType, const Seed& seed, bool overTcp) {
    const uint16_t tag = seed.extension.empty() ? 0 : mediaType == 6 ? kExtensionAtm : kExtensionMedium;
    Record record(seed.bytes, mediaType, tag, seed.extension);
    record->linkType = seed.linkType;
    const auto run = [&](TestView& view) {
      View& v = view.view();
      ClearDecodeTree(&v, v.tree, true);
      PacketState& packet = v.context->packet = PacketState{};
      const Cursor c = MakeCursor(FrameData(record.get()), 0, static_cast<int32_t>(seed.bytes.size()));
      packet.frame = record.get();
      packet.linesLeft = kMostLines;
      packet.ipProtocol = overTcp ? 6 : 17;
      packet.network.totalLength = c.left;
      packet.segment = {c.at, overTcp ? c.left : 0, 0, 0, overTcp};
      row.decode(TopLevel(&v, kFirstLevel), c);
      return kMostLines - packet.linesLeft;
    };
    const auto start = std::chrono::steady_clock::now();
    const int32_t lines = run(shown_);
    const double took = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    if (took > kMostMilliseconds && BestMilliseconds([&] { run(shown_); }, 3) > kMostMilliseconds) return "takes too long";
    if (lines > 100 + kMostLinesAByte * static_cast<int32_t>(seed.bytes.size())) return std::to_string(lines) + " lines";
    if (shown_.context().packet.nesting != 0) return "the nesting is not taken back";
    const std::string outside = RangeOutside(seed.bytes.size());
    if (!outside.empty()) return outside;
    const auto allocations = [&] {
      text_.clear();
      const uint64_t before = CountAllocations();
      run(printed_);
      const uint64_t made = CountAllocations() - before;
      FlushOutput(file_.get());
      return made;
    };
    const uint64_t made = allocations();
    if (text_ != added_.text) return "prints\n" + text_ + "and shows\n" + added_.text;
    if (made && allocations()) return "allocates";   // what is made at its first use, or learnt, is there now
    if (run(silent_) != lines) return "shows\n" + added_.text + "and counts other lines in silence";
    return "";
  }
  const std::vector<std::string>& Shown() const { return added_.lines; }

 private:
  static int32_t Append(void* text, const char* bytes, int32_t length) {
    static_cast<std::string*>(text)->append(bytes, static_cast<size_t>(length));
    return 1;
  }

  std::string RangeOutside(size_t size) {
    const DecodeContext& context = shown_.context();
    for (uint32_t i = 0; i < context.rangeCount; ++i) {
      const int64_t offset = RangeOffset(context.rangeTable[i]), length = RangeLength(context.rangeTable[i]);
      if (offset + length <= static_cast<int64_t>(size)) continue;
      const std::string& line = added_.lines[i];
      const auto states = [&](const char* start) { return line.starts_with(start); };
      if (offset > static_cast<int64_t>(size) || std::ranges::none_of(kStating, states)) {
        return "range " + std::to_string(offset) + "+" + std::to_string(length) + " of \"" + line + '"';
      }
    }
    return "";
  }

  AddedLines added_;
  NamingHost hosts_[3];
  TestView shown_{&hosts_[0]}, printed_{&hosts_[1]}, silent_{&hosts_[2]};
  std::unique_ptr<OutputFile> file_ = std::make_unique<OutputFile>();
  std::string text_;
};

constexpr int32_t kPortTables = static_cast<int32_t>(DoorKind::kTcpPort);   // these lead to applications again

// Every decoder of the registry once, by the first row that has it; and the table that this row is in.
struct Subject {
  std::string table;
  const DecoderRow* row;
};
void PrintTo(const Subject& subject, std::ostream* out) { *out << subject.table << " " << subject.row->name; }
const std::vector<Subject>& Subjects() {
  static const std::vector<Subject> kSubjects = [] {
    std::vector<Subject> subjects;
    std::set<DecoderFunction> met;
    const char* name;
    for (int32_t table = 0; table < kPortTables; ++table) {
      const DecoderRowSpan span = RegistryTable(static_cast<DoorKind>(table), &name);
      for (int32_t i = 0; i < span.count; ++i) {
        if (met.insert(span.rows[i].decode).second) subjects.push_back({name, &span.rows[i]});
      }
    }
    return subjects;
  }();
  return kSubjects;
}
const DecoderRow* RowNamed(const std::string& name) {
  const char* table;
  for (int32_t i = 0; i < kPortTables; ++i) {
    const DecoderRowSpan span = RegistryTable(static_cast<DoorKind>(i), &table);
    for (int32_t at = 0; at < span.count; ++at) {
      if (name == std::string(table) + " " + span.rows[at].name) return &span.rows[at];
    }
  }
  return nullptr;
}

void ReadSeeds(Seeds& seeds) {
  std::ifstream file(QXVIEW_SEEDS);
  ASSERT_TRUE(file) << QXVIEW_SEEDS;
  std::vector<Seed>* row = nullptr;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    size_t start = 0;
    if (line[0] != ' ') {
      start = line.find(": ");
      const DecoderRow* named = RowNamed(line.substr(0, start));
      ASSERT_TRUE(named) << "no such row of the registry: " << line;
      row = &seeds[named->decode];
      row->emplace_back();
      start += 2;
    }
    std::istringstream words(line.substr(start));
    for (std::string word; words >> word;) {
      if (word.starts_with("link=")) {
        row->back().linkType = static_cast<uint16_t>(std::stoi(word.substr(5)));
      } else if (word.starts_with("extension=")) {
        row->back().extension = Hex(word.substr(10));
      } else {
        row->back().bytes = row->back().bytes + Hex(word);
      }
    }
  }
}

// What the samples' frames carry, layer by layer.
void HarvestSamples(Seeds& seeds) {
  NamingHost host;
  TestView view(&host);
  const auto add = [&](const DecoderRow* row, const uint8_t* bytes, int32_t length) {
    if (row && length > 0) seeds[row->decode].push_back({Bytes(bytes, bytes + length)});
  };
  for (const std::string& sample : Samples()) {
    ForEachRecord(sample, [&](const FrameRecord* record) {
      ClearDecodeTree(&view.view(), &view.tree(), true);
      DecodeFrame(&view.view(), record, 0, 0, 0);
      const PacketState& packet = view.context().packet;
      const ReachedLayer &reached = packet.reached, &carrier = packet.carrier;
      if (!record->rawEthertype) {
        add(FindMedium(record->mediaType), FrameData(record), record->capturedLength);
        add(FindEthertype(static_cast<uint16_t>(ReadU16(FrameData(record) + 12))), FrameData(record) + 14,
            record->capturedLength - 14);
      }
      if (carrier.table == DispatchTable::kIpProtocol) {
        add(FindIpProtocol(static_cast<uint8_t>(carrier.key)), carrier.bytes, carrier.length);
        add(FindIPv6NextHeader(static_cast<uint8_t>(carrier.key)), carrier.bytes, carrier.length);
      }
      if (reached.table == DispatchTable::kApplication) add(FindBuiltinDecoder(reached.key), reached.bytes, reached.length);
    });
  }
}

// The texts of lines up to their values.
std::set<std::string> LabelsOf(const std::vector<std::string>& lines) {
  std::set<std::string> labels;
  for (const std::string& line : lines) labels.insert(line.substr(0, line.find_first_of(":=0123456789")));
  return labels;
}

class Properties : public ::testing::TestWithParam<Subject> {
 protected:
  static const Seeds& AllSeeds() {
    static const Seeds kSeeds = [] {
      Seeds seeds;
      ReadSeeds(seeds);
      HarvestSamples(seeds);
      return seeds;
    }();
    return kSeeds;
  }
  bool Holds(const Seed& seed) {
    const std::string fault = modes_.Fault(*GetParam().row, MediaType(), seed, ++inputs_ % 2 == 0);
    if (fault.empty()) return true;
    std::string digits;
    for (const uint8_t byte : seed.bytes) digits += "0123456789ABCDEF"[byte >> 4], digits += "0123456789ABCDEF"[byte & 15];
    ADD_FAILURE() << digits << " over " << (inputs_ % 2 ? "UDP: " : "TCP: ") << fault;
    return false;
  }
  // Every prefix of the seed, and every byte of it damaged.
  bool HoldsWhenDamaged(Seed seed) {
    const Bytes whole = seed.bytes;
    const size_t step = whole.size() / kMostPlaces + 1;
    for (size_t length = 0; length <= whole.size(); length += step) {
      seed.bytes.assign(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length));
      if (!Holds(seed)) return false;
    }
    seed.bytes = whole;
    for (size_t at = 0; at < whole.size(); at += at < 64 ? 1 : step) {
      for (const uint8_t value : kDamage) {
        seed.bytes[at] = value;
        if (!Holds(seed)) return false;
      }
      seed.bytes[at] = whole[at];
    }
    return true;
  }
  uint8_t MediaType() const {
    return GetParam().table == "medium" ? static_cast<uint8_t>(GetParam().row->key) : uint8_t{0};
  }
  ThreeModes modes_;
  uint32_t inputs_ = 0;
};

TEST_P(Properties, HoldForAnyInput) {
  uint32_t random = 12345;
  const auto next = [&] { return (random = random * 1664525 + 1013904223) >> 16; };
  bool shows = false;
  for (size_t round = 0; round < 300; ++round) {
    Seed seed{Bytes(next() % (round + 4))};
    for (uint8_t& byte : seed.bytes) byte = static_cast<uint8_t>(next());
    if (!Holds(seed)) return;
    shows |= !modes_.Shown().empty();
  }
  const auto found = AllSeeds().find(GetParam().row->decode);
  EXPECT_TRUE(!shows || found != AllSeeds().end()) << "neither samples nor tests/seeds.txt have a payload for it";
  if (found == AllSeeds().end()) return;
  std::set<std::string> labels;
  size_t taken = 0;
  for (const Seed& seed : found->second) {
    if (!Holds(seed)) return;
    const size_t before = labels.size();
    labels.merge(LabelsOf(modes_.Shown()));
    if (labels.size() == before || taken == kMostSeeds) continue;   // it shows nothing that none before did
    ++taken;
    if (!HoldsWhenDamaged(seed)) return;
  }
  RecordProperty("seeds", static_cast<int>(taken));
  RecordProperty("inputs", static_cast<int>(inputs_));
}

INSTANTIATE_TEST_SUITE_P(Registry, Properties, ::testing::ValuesIn(Subjects()), [](const auto& info) {
  std::string name = info.param.table + "_" + info.param.row->name;
  for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
  return name;
});

}  // namespace
}  // namespace qxview::testing
