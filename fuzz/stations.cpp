#include "fuzz/stations.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "core/internet_checksum.h"
#include "core/line_facts.h"
#include "core/output_file.h"
#include "fuzz/targets.h"

namespace qxview::fuzz {
namespace {

constexpr char kSilent = 's';
constexpr char kModes[] = {kDisplayMode, kSilent, kPrintMode, kSaveMode, kFindMode};
constexpr size_t kFewModes = 2;
constexpr int32_t kLongestText = 1023;   // of a line, whatever was appended to it

constexpr uint32_t kHostWishes = kModern | kReassembly | kUnusual;   // that its settings depend on

std::string SettingsOf(uint32_t wishes) {
  std::string text = "[View]\nRadiusSecret = testing123\nTacacsSecret = testing123\n";
  if (wishes & kModern) text += "Modern = 1\n";
  if (wishes & kReassembly) text += "Reassembly = 1\n";
  if (wishes & kUnusual) {
    text += "TypeOfServiceMode = 3\nTypeOfServiceFieldMask = 0xE4\nTypeOfServiceFieldName0 = Colour\n"
            "CharacterSet = 1\nDynamicDetection = 0\nExpand3rdLevel = 1\nExpand4thLevel = 1\nCleanText = 0\n"
            "[Protocols]\ntcp:1=HTTP\nudp:10.0.0.1:5000=SNMP\ntcp:80=none\n";
  }
  return text;
}

// An arena that keeps the text of lines as they were added: later edits are seen in the tree alone.
class KeptText final : public DecodeTree {
 public:
  std::string text;

  LineHandle Append(const NewLine& line) override {
    Expect(line.text[line.length] == 0 && std::strlen(line.text) == static_cast<size_t>(line.length), "a line's length");
    Expect(line.length <= kLongestText, "a line longer than lines are");
    Keep(line.parent, line.text, line.length);
    return arena_.Append(line);
  }
  bool ExpandLevels(const bool (&levels)[3]) override { return arena_.ExpandLevels(levels); }
  void Clear() override {
    text.clear();
    arena_.Clear();
  }
  int32_t GetText(LineHandle line, char* out, int32_t size) const override { return arena_.GetText(line, out, size); }
  void SetText(LineHandle line, const char* set, int32_t length) override { arena_.SetText(line, set, length); }
  uint32_t RangeIndex(LineHandle line) const override { return arena_.RangeIndex(line); }
  void SetRangeIndex(LineHandle line, uint32_t index) override { arena_.SetRangeIndex(line, index); }
  int32_t Image(LineHandle line) const override { return arena_.Image(line); }
  LineHandle FirstChild(LineHandle line) const override { return arena_.FirstChild(line); }
  LineHandle LastChild(LineHandle line) const override { return arena_.LastChild(line); }
  LineHandle NextSibling(LineHandle line) const override { return arena_.NextSibling(line); }
  LineHandle Parent(LineHandle line) const override { return arena_.Parent(line); }
  bool Holds(LineHandle line) const override { return arena_.Holds(line); }
  bool IsExpanded(LineHandle line) const override { return arena_.IsExpanded(line); }
  LineHandle Selected() const override { return arena_.Selected(); }
  void Delete(LineHandle line) override { arena_.Delete(line); }
  void Expand(LineHandle line, bool expanded) override { arena_.Expand(line, expanded); }
  void Select(LineHandle line) override { arena_.Select(line); }
  void ScrollToTop() override { arena_.ScrollToTop(); }
  void HoldRedraw(bool held) override { arena_.HoldRedraw(held); }

 private:
  void Keep(LineHandle parent, const char* line, int32_t length) {
    if (length == 0) return;
    text += parent ? "    " : "";
    text.append(line, static_cast<size_t>(length)) += "\r\n";
  }

  ArenaTree arena_;
};

int32_t AppendText(void* text, const char* bytes, int32_t length) {
  static_cast<std::string*>(text)->append(bytes, static_cast<size_t>(length));
  return 1;
}

void SetChecksum(uint8_t* data, size_t size, size_t place, uint32_t sum) {
  if (place + 2 > size) return;
  data[place] = data[place + 1] = 0;
  const uint32_t right = RightChecksum(SumWords(sum, data, static_cast<int32_t>(size)), 0);
  data[place] = static_cast<uint8_t>(right >> 8);
  data[place + 1] = static_cast<uint8_t>(right);
}

void RepairTransport(uint8_t* data, size_t size, uint8_t protocol, const uint8_t* addresses, int32_t addressBytes) {
  const uint8_t tail[4] = {static_cast<uint8_t>(size >> 8), static_cast<uint8_t>(size), 0, protocol};
  const uint32_t sum = SumWords(SumWords(0, addresses, addressBytes), tail, 4);
  if (protocol == 6) SetChecksum(data, size, 16, sum);
  if (protocol == 17) SetChecksum(data, size, 6, sum);
  if (protocol == 1) SetChecksum(data, size, 2, 0);
  if (protocol == 58) SetChecksum(data, size, 2, sum);
}

void RepairDatagram(uint8_t* data, size_t size) {
  if (size >= 20 && data[0] >> 4 == 4) {
    const size_t header = size_t{4} * (data[0] & 15), total = static_cast<size_t>(data[2] << 8 | data[3]);
    if (header < 20 || header > size) return;
    SetChecksum(data, header, 10, 0);
    if (total > header && total <= size && !(data[6] & 0x3F) && !data[7]) {
      RepairTransport(data + header, total - header, data[9], data + 12, 8);
    }
  } else if (size >= 40 && data[0] >> 4 == 6) {
    const size_t length = static_cast<size_t>(data[4] << 8 | data[5]);
    if (length <= size - 40) RepairTransport(data + 40, length, data[6], data + 8, 32);
  }
}

std::map<uint32_t, std::vector<std::unique_ptr<StandaloneHost>>>& IdleHosts() {
  static std::map<uint32_t, std::vector<std::unique_ptr<StandaloneHost>>> hosts;
  return hosts;
}

std::unique_ptr<StandaloneHost> MakeHost(uint32_t wishes) {
  HostOptions options;
  options.settingsText = SettingsOf(wishes);
  std::string message;
  bool fileFault;
  auto host = StandaloneHost::Create(options, &message, &fileFault);
  if (!host) Fail("the settings of a fuzz target", message.c_str());
  return host;
}

}  // namespace

Station::~Station() {
  if (!host) return;
  session.reset();
  host->Attach(nullptr);
  host->Definitions().ForgetLearnt();
  host->History().Clear();
  IdleHosts()[wishes].push_back(std::move(host));
}

const Target* FindTarget(const char* name) {
  for (const Target& target : kTargets) {
    const size_t length = std::strlen(target.name);
    if (std::strncmp(name, target.name, length) == 0 && (!name[length] || std::strcmp(name + length, "_fuzz") == 0)) {
      return &target;
    }
  }
  return nullptr;
}

void Fail(const char* what, const char* more) {
  std::fprintf(stderr, "DOES NOT HOLD: %s%s%s\n", what, *more ? "\n" : "", more);
  std::abort();
}

Station::Station(uint32_t its, char mode) : wishes(its & kHostWishes) {
  auto& idle = IdleHosts()[wishes];
  if (idle.empty()) {
    host = MakeHost(wishes);
  } else {
    host = std::move(idle.back());
    idle.pop_back();
  }
  session = Session::Create(host->Record(), {});
  Expect(session != nullptr, "memory for a session");
  host->Attach(session.get());
  if (mode == kSilent || mode == kFindMode) session->SetOutput(kFindMode, nullptr);
  session->Context().silent = mode == kSilent;
}

Stations::Stations(uint32_t wishes)
    : wishes_(wishes), kept_(new KeptText, [](DecodeTree* tree) { delete static_cast<KeptText*>(tree); }), files_(2) {
  const size_t count = wishes & kEveryMode ? std::size(kModes) : kFewModes;
  outcomes_.resize(count);
  for (size_t i = 0; i < count; ++i) {
    stations_.emplace_back(wishes, kModes[i]);
    Session& session = *stations_[i].session;
    if (kModes[i] == kPrintMode || kModes[i] == kSaveMode) {
      auto& file = files_[kModes[i] == kSaveMode];
      file = std::make_unique<OutputFile>();
      OpenOutput(file.get(), {&outcomes_[i].text, AppendText, nullptr, -1});
      session.SetOutput(kModes[i], file.get());
    }
  }
  if (wishes & kEveryMode) Shown().ShowIn(kept_.get());
  if (wishes & kKeys) KeepFacts(&Shown().Context(), true);
}

Stations::~Stations() {
  if (wishes_ & kEveryMode) Shown().ShowIn(nullptr);
}

void Stations::Begin(size_t station) {
  DecodeContext& context = stations_[station].session->Context();
  outcomes_[station].text.clear();
  stations_[station].session->GetEngine()->textLinesWritten = 0;
  if (kModes[station] == kFindMode) {
    context.findLineCounter = context.findLineIndex = 0;
    context.findText[0] = 0;   // so that all lines are looked at
  }
}

void Stations::End(size_t station, int32_t capturedLength) {
  Session& session = *stations_[station].session;
  Outcome& outcome = outcomes_[station];
  const PacketState& packet = session.Context().packet;
  Expect(packet.nesting == 0, "the nesting is taken back");
  outcome.linesLeft = packet.linesLeft;
  outcome.limitReached = packet.limitReached;
  outcome.written = session.GetEngine()->textLinesWritten;
  if (kModes[station] == kPrintMode) FlushOutput(files_[0].get());
  if (kModes[station] == kSaveMode) FlushOutput(files_[1].get());
  if (station == 0) CheckRanges(capturedLength);
  // One more line says so where the bound is reached.
  const int32_t most = MostLinesOf(capturedLength);
  lines_ = outcome.limitReached ? most + 1 : most - outcome.linesLeft;
  if (kModes[station] == kFindMode) Expect(session.Context().findLineCounter == lines_, "find sees every line");
}

void Stations::CheckRanges(int32_t capturedLength) {
  const DecodeContext& context = Shown().Context();
  for (uint32_t i = 0; i < context.rangeCount; ++i) {
    const ByteRange range = RangeInFrame(&context, context.rangeTable[i]);
    if (RangeOffset(range) > capturedLength) {
      char text[200] = "", where[300];
      Shown().GetView()->tree->GetText(i + 1, text, sizeof text);
      std::snprintf(where, sizeof where, "%d in %d: %s", RangeOffset(range), capturedLength, text);
      Fail("a range begins in the frame", where);
    }
  }
}

void Stations::Compare() {
  for (size_t i = 1; i < outcomes_.size(); ++i) {
    // A silent pass leaves out what is made for lines alone, and counts none of that.
    const bool isSilent = kModes[i] == kSilent;
    Expect(outcomes_[i].linesLeft == outcomes_[0].linesLeft || (isSilent && outcomes_[i].linesLeft > outcomes_[0].linesLeft),
           "every mode counts the same lines, and the silent pass no more");
    Expect(outcomes_[i].limitReached == outcomes_[0].limitReached || (isSilent && !outcomes_[i].limitReached),
           "every mode ends at the same bound, if it comes there");
  }
  if (outcomes_.size() == kFewModes) return;
  const std::string& shown = static_cast<KeptText*>(kept_.get())->text;
  if (outcomes_[2].text != shown) Fail("print writes what is shown", (shown + "--- printed\n" + outcomes_[2].text).c_str());
  if (outcomes_[3].text != shown) Fail("save writes what is shown", (shown + "--- saved\n" + outcomes_[3].text).c_str());
  Expect(outcomes_[2].written == static_cast<uint32_t>(lines_), "print writes every line");
}

void Stations::Decode(const FrameRecord* record, int32_t skipBytes) {
  Each(record->capturedLength, [&](Station& station) {
    station.session->Decode(record, 0, 0, skipBytes);
    station.host->FinishPacket();
  });
  if (!(wishes_ & kHeaders)) return;
  for (Station& station : stations_) station.session->ReadHeaders(record);
}

ExactRecord::ExactRecord(const Piece& frame, uint16_t tag, const Piece& extension) {
  const size_t block = tag ? 4 + extension.size : 0;
  const size_t most = kMaxRecord - kRecordHeader - block, kept = frame.size < most ? frame.size : most;
  bytes_ = std::make_unique<ExactBytes>(kRecordHeader + block + kept);
  FrameRecord record{};
  record.capturedLength = static_cast<uint16_t>(kept);
  record.wireLength = static_cast<uint32_t>(frame.size);
  record.dataOffset = static_cast<uint16_t>(kRecordHeader + block);
  record.recordLength = static_cast<uint16_t>(record.dataOffset + kept);
  record.layout = 1;
  record.packetNumber = 1;
  uint8_t* at = bytes_->data();
  std::memcpy(at, &record, sizeof record);
  if (tag) {
    const uint16_t head[2] = {tag, static_cast<uint16_t>(block)};
    std::memcpy(at + kRecordHeader, head, sizeof head);
    if (extension.size) std::memcpy(at + kRecordHeader + 4, extension.data, extension.size);
  }
  if (kept) std::memcpy(at + record.dataOffset, frame.data, kept);
}

ExactRecord::ExactRecord(const FrameRecord* record) {
  bytes_ = std::make_unique<ExactBytes>(
      Piece{reinterpret_cast<const uint8_t*>(record), static_cast<size_t>(record->dataOffset) + record->capturedLength});
}

void RepairChecksums(uint8_t* frame, size_t size, bool etherHeader) {
  size_t at = 0;
  if (etherHeader) {
    at = 12;
    while (at + 4 <= size && ((frame[at] == 0x81 && frame[at + 1] == 0) || (frame[at] == 0x88 && frame[at + 1] == 0xA8))) {
      at += 4;
    }
    if (at + 2 > size) return;
    const int type = frame[at] << 8 | frame[at + 1];
    if (type != 0x0800 && type != 0x86DD) return;
    at += 2;
  }
  if (at < size) RepairDatagram(frame + at, size - at);
}

}  // namespace qxview::fuzz
