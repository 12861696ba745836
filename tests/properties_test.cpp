// What holds for every decoder of the registry and any input: no read outside the bytes (each input has an allocation
// of its exact size, so a sanitizer sees one), every range inside them but for stated ones, the same lines in print as
// in display mode and no more in a silent pass, no allocation, and bounds of lines, nesting and time. The inputs are
// payloads of the samples and of tests/cases: cut at every length and with damaged bytes; and random bytes.
#include <algorithm>
#include <chrono>
#include <map>
#include <set>

#include "core/output_file.h"
#include "core/states.h"
#include "decoders/tls/tls.h"
#include "tests/support/cases.h"
#include "tests/support/samples.h"
#include "tests/support/small_stack.h"

namespace qxview::testing {
namespace {

constexpr uint8_t kDamage[] = {0x00, 0x01, 0x7F, 0x80, 0xFF};
#ifdef _WIN32   // a sample: the decoders are the same, and slower there
constexpr bool kIsSample = true;
#else
constexpr bool kIsSample = false;
#endif
#ifdef __SANITIZE_ADDRESS__   // ten times as slow: half the places of two thirds of the payloads
constexpr size_t kMostPlaces = 80, kMostSeeds = 16;
#else
constexpr size_t kMostPlaces = kIsSample ? 40 : 160;   // of a payload that are cut at and damaged: of a longer one some
constexpr size_t kMostSeeds = kIsSample ? 6 : 24;      // of a decoder, out of the samples
#endif
constexpr int32_t kMostLinesAByte = 40;    // above the 100 that the shortest input may have
constexpr double kMostMilliseconds = 50;

// The lines that state a length which the frame need not have.
constexpr const char* kStating[] = {"IP: ", "IPv6 Section: ", "DNS:", "Microsoft LLMNR:", "Multicast DNS:",
                                    "Answer Record #", "Authority Record #", "Additional Record #", "TTL: "};

using Seeds = std::map<DecoderFunction, std::vector<Payload>>;

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

  // What is wrong with the decode of the payload; empty when nothing is.
  std::string Fault(const Payload& payload) {
    const size_t size = payload.bytes.size();
    const auto run = [&](TestView& view) { return RunPayload(view.view(), payload); };
    const auto start = std::chrono::steady_clock::now();
    const int32_t lines = run(shown_).lines;
    const double took = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    const bool isSlow = took > kMostMilliseconds && BestMilliseconds([&] { run(shown_); }, 3) > kMostMilliseconds;
    if (isSlow) return "takes too long";
    if (lines > 100 + kMostLinesAByte * static_cast<int32_t>(size)) return std::to_string(lines) + " lines";
    if (shown_.context().packet.nesting != 0) return "the nesting is not taken back";
    const std::string outside = RangeOutside(size);
    if (!outside.empty()) return outside;
    FlushOutput(file_.get());   // of a second run before
    text_.clear();
    const uint64_t made = run(printed_).allocations;
    FlushOutput(file_.get());
    if (text_ != added_.text) return "prints\n" + text_ + "and shows\n" + added_.text;
    if (made && run(printed_).allocations) return "allocates";   // what is learnt, or made at its first use, is there
    // What is made for lines alone may be left out, and its lines are not counted then.
    const int32_t counted = run(silent_).lines;
    if (counted > lines) return "shows\n" + added_.text + "and counts " + std::to_string(counted) + " lines in silence";
    return payload.row->protocol->isPlain ? PlainFault(payload) : "";
  }
  const std::vector<std::string>& Shown() const { return added_.lines; }

 private:
  static int32_t Append(void* text, const char* bytes, int32_t length) {
    static_cast<std::string*>(text)->append(bytes, static_cast<size_t>(length));
    return 1;
  }

  // Decoders that a pass without lines does not call keep and ask for nothing and leave the packet's state as it was; those that
  // may decline do so as well when their loops end at once.
  std::string PlainFault(const Payload& payload) {
    View& view = silent_.view();
    States& states = *view.engine->states;
    const auto held = [&] {
      size_t sum = 0;
      for (int32_t i = 0; i < states.count; ++i) sum += states.tables[i].Count() + states.tables[i].BytesHeld();
      return sum;
    };
    bool asks = false;
    const StateRecorder recorder{&asks, [](void* user, int32_t, const StateAnswer&) { *static_cast<bool*>(user) = true; }, nullptr};
    const size_t before = held();
    states.recorder = &recorder;
    const bool takes = RunPayload(view, payload).takes;
    states.recorder = nullptr;
    const PacketState& packet = view.context->packet;
    if (asks || held() != before) return "is plain and has state";
    const bool isSame = packet.reached.table == DispatchTable::kNone && packet.carrier.table == DispatchTable::kNone &&
                        packet.source.kind == kNoAddress && packet.destination.kind == kNoAddress && packet.sourcePort == 0 &&
                        packet.destinationPort == payload.toPort && packet.ipHeaderSeen == 0 && !packet.payload;
    if (!isSame) return "is plain and changes the packet's state";
    if (RunPayload(view, payload, true).takes != takes) return "is plain and declines other bytes when its loops end at once";
    return "";
  }

  std::string RangeOutside(size_t size) {
    const DecodeContext& context = shown_.context();
    for (uint32_t i = 0; i < context.rangeCount; ++i) {
      const ByteRange range = RangeInFrame(&context, context.rangeTable[i]);   // of joined bytes: where they end
      const int64_t offset = RangeOffset(range), length = RangeLength(range);
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
    // Ports lead to applications again.
    for (int32_t table = 0; table <= static_cast<int32_t>(DoorKind::kApplication); ++table) {
      const char* name;
      const DecoderRowSpan span = RegistryTable(static_cast<DoorKind>(table), &name);
      for (int32_t i = 0; i < span.count; ++i) {
        if (met.insert(span.rows[i].decode).second) subjects.push_back({name, &span.rows[i]});
      }
    }
    return subjects;
  }();
  return kSubjects;
}

// What the samples' frames carry, layer by layer.
void HarvestSamples(Seeds& seeds) {
  NamingHost host;
  TestView view(&host);
  const auto add = [&](const DecoderRow* row, const uint8_t* bytes, int32_t length) {
    if (row && length > 0) seeds[row->decode].push_back({.row = row, .bytes = Bytes(bytes, bytes + length)});
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
      if (reached.table == DispatchTable::kApplication) {
        add(FindBuiltinDecoder(reached.key), reached.bytes, reached.length);
      }
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
      for (const std::string& file : CaseFiles()) {
        for (const DecodeCase& each : CasesOf(file)) {
          if (each.payload.row) seeds[each.payload.row->decode].push_back(each.payload);
        }
      }
      HarvestSamples(seeds);
      return seeds;
    }();
    return kSeeds;
  }
  bool Holds(Payload payload) {
    payload.row = GetParam().row;
    payload.mediaType = GetParam().table == "medium" ? static_cast<uint8_t>(payload.row->key) : uint8_t{0};
    payload.overTcp ^= ++inputs_ % 2 == 0;
    const std::string fault = modes_.Fault(payload);
    if (fault.empty()) return true;
    std::string digits(2 * payload.bytes.size(), ' ');
    for (size_t i = 0; i < digits.size(); ++i) {
      digits[i] = "0123456789ABCDEF"[payload.bytes[i / 2] >> (i % 2 ? 0 : 4) & 15];
    }
    ADD_FAILURE() << digits << " over " << (payload.overTcp ? "TCP: " : "UDP: ") << fault;
    return false;
  }
  // Every prefix of the seed, and every byte of it damaged.
  bool HoldsWhenDamaged(Payload seed) {
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
  ThreeModes modes_;
  uint32_t inputs_ = 0;
};

TEST_P(Properties, HoldForAnyInput) {
  uint32_t random = 12345;
  const auto next = [&] { return (random = random * 1664525 + 1013904223) >> 16; };
  bool shows = false;
  for (size_t round = 0; round < 300; ++round) {
    Payload seed{.bytes = Bytes(next() % (round + 4))};
    for (uint8_t& byte : seed.bytes) byte = static_cast<uint8_t>(next());
    if (!Holds(seed)) return;
    shows |= !modes_.Shown().empty();
  }
  const auto found = AllSeeds().find(GetParam().row->decode);
  EXPECT_TRUE(!shows || found != AllSeeds().end()) << "neither samples nor tests/cases have a payload for it";
  if (found == AllSeeds().end()) return;
  std::set<std::string> labels;
  size_t taken = 0;
  for (const Payload& seed : found->second) {
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

// A record of one handshake message.
Bytes HandshakeRecord(uint8_t type, const Bytes& body) {
  const size_t size = body.size(), record = size + 4;
  return Bytes{22, 3, 3, static_cast<uint8_t>(record >> 8), static_cast<uint8_t>(record), type,
               static_cast<uint8_t>(size >> 16), static_cast<uint8_t>(size >> 8), static_cast<uint8_t>(size)} + body;
}
Bytes BehindLength(const Bytes& bytes) {
  return Bytes{static_cast<uint8_t>(bytes.size() >> 16), static_cast<uint8_t>(bytes.size() >> 8),
               static_cast<uint8_t>(bytes.size())} + bytes;
}
// An element around others, its length in two octets.
Bytes Element(uint8_t tag, const Bytes& contents) {
  return Bytes{tag, 0x82, static_cast<uint8_t>(contents.size() >> 8), static_cast<uint8_t>(contents.size())} + contents;
}

// Where elements start in the bytes: of what is constructed, and of what may hold elements.
void FindElements(const Bytes& bytes, size_t at, size_t end, std::vector<size_t>& starts) {
  while (at + 2 <= end) {
    const size_t tag = bytes[at], form = bytes[at + 1], octets = form < 0x80 ? 0 : form - 0x80;
    if (octets > 2 || at + 2 + octets > end) return;
    size_t length = form & 0x7F;
    for (size_t i = length = octets ? 0 : length; i < octets; ++i) length = length << 8 | bytes[at + 2 + i];
    const size_t first = at + 2 + octets;
    if (first + length > end) return;
    starts.push_back(at);
    if (tag & 0x20) FindElements(bytes, first, first + length, starts);
    if (tag == 3 || tag == 4) FindElements(bytes, first + (tag == 3), first + length, starts);
    at = first + length;
  }
}

// Bodies of whole certificate and status messages of a recorded segment, by their types.
void FindCertificates(const Bytes& segment, std::vector<std::pair<uint8_t, Bytes>>& found) {
  for (size_t at = 0; at + 9 < segment.size() && segment[at] == 22; at += 5 + (segment[at + 3] << 8 | segment[at + 4])) {
    for (size_t each = at + 5; each + 4 < segment.size();) {
      const uint8_t type = segment[each];
      const size_t size = segment[each + 1] << 16 | segment[each + 2] << 8 | segment[each + 3], end = each + 4 + size;
      if (end > segment.size()) break;
      const auto byte = [&](size_t i) { return segment.begin() + static_cast<ptrdiff_t>(i); };
      if (type == 11 || type == 22) found.emplace_back(type, Bytes(byte(each + 4), byte(end)));
      each = end;
    }
  }
}

TEST(Certificates, HoldWhateverTheirTagsAndLengthsSay) {
  std::vector<std::pair<uint8_t, Bytes>> messages;
  NamingHost host;
  TestView view(&host);
  ForEachRecord("tls", [&](const FrameRecord* record) {
    ClearDecodeTree(&view.view(), &view.tree(), true);
    DecodeFrame(&view.view(), record, 0, 0, 0);
    const ReachedLayer& reached = view.context().packet.reached;
    if (reached.length > 0) FindCertificates(Bytes(reached.bytes, reached.bytes + reached.length), messages);
  });
  ASSERT_GT(messages.size(), 3u);

  ThreeModes modes;
  Payload payload{.row = FindBuiltinDecoder(kTlsProtocol & 0xFFFF), .overTcp = true};
  size_t inputs = 0;
  const auto holds = [&](uint8_t type, const Bytes& body) {
    payload.bytes = HandshakeRecord(type, body);
    const std::string fault = modes.Fault(payload);
    EXPECT_EQ(fault, "") << "input " << inputs;
    return ++inputs, fault.empty();
  };
  for (auto& [type, body] : messages) {
    std::vector<size_t> starts;
    const size_t front = type == 11 ? 6 : 4;   // the lengths of list and certificate, the type of status and its length
    FindElements(body, front, body.size(), starts);
    EXPECT_TRUE(inputs > 0 || starts.size() > 60) << "the elements of a certificate";
    for (const size_t at : starts) {
      const uint8_t tag = body[at], length = body[at + 1];
      for (const int value : {0, 1, 0x7F, 0x80, 0x81, 0x84, 0xFF}) {
        body[at + 1] = static_cast<uint8_t>(value);
        if (!holds(type, body)) return;
      }
      body[at + 1] = length;
      for (const int value : {0, 2, 3, 6, 0x17, 0x1F, 0x30, 0xA0, 0xFF}) {
        body[at] = static_cast<uint8_t>(value);
        if (!holds(type, body)) return;
      }
      body[at] = tag;
      if (!holds(type, Bytes(body.begin(), body.begin() + static_cast<ptrdiff_t>(at + 1)))) return;
    }
  }

  // What no sender makes: nested without end, numbers and identifiers without end, elements of nothing.
  Bytes nested, endless = Element(0x30, Element(0x30, Element(6, Bytes(50000, 0x81)))), empty;
  for (int depth = 0; depth < 5000; ++depth) nested = Element(depth % 3 ? 0x30 : 0xA3, nested);
  for (int i = 0; i < 12000; ++i) empty = empty + Bytes{0x30, 0x03, 0x31, 0x01, 0x30};
  const Bytes values[] = {nested, endless, Element(0x30, Element(0x30, empty)), Element(0x30, Element(2, Bytes(60000, 0xFF))),
                          Element(0x30, Element(0x30, Element(3, Bytes(60000, 9)))), Bytes(60000, 0x30)};
  for (const Bytes& value : values) {
    EXPECT_TRUE(holds(11, BehindLength(BehindLength(value))));
    EXPECT_TRUE(holds(22, Bytes{1} + BehindLength(value)));
  }
}

}  // namespace
}  // namespace qxview::testing
