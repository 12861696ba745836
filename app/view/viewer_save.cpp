// What is kept of what is seen: packets, bytes and trees in files, texts in the clipboard.
#include <algorithm>
#include <cstdio>

#include "app/json_writer.h"
#include "app/record_writer.h"
#include "app/tree_writer.h"
#include "app/view/viewer.h"
#include "files/capture_buffer.h"
#include "files/packet_writer.h"
#include "host/text.h"
#include "host/time_text.h"
#include "platform/new_file.h"
#include "platform/platform.h"

namespace qxview {
namespace {

bool EndsWith(const std::string& text, std::string_view ending) {
  return text.size() >= ending.size() && EqualsIgnoringCase(std::string_view(text).substr(text.size() - ending.size()), ending);
}

// Packets on their way into a file, a piece at a time.
class PacketSave {
 public:
  bool Open(const std::string& path, std::string* wrong) {
    path_ = path;
    const bool isBuffer = EndsWith(path, ".bfr"), isPcap = EndsWith(path, ".pcap");
    if (!isBuffer && !isPcap && !EndsWith(path, ".pcapng")) return *wrong = "the name ends in .pcapng, .pcap or .bfr", false;
    if (!file_.Create(path, wrong)) return false;
    sink_ = file_.Sink();
    if (!isBuffer) {
      writer_ = isPcap ? MakePcapWriter(sink_) : MakePcapngWriter(sink_, false);
      writer_->BeginCapture();
      return true;
    }
    const int64_t now = CurrentTime();
    FormatAscTime(now + LocalOffset(now), localTime_);
    SaveRequest request{};
    request.file = {this, nullptr, [](void* save, const uint8_t* bytes, int32_t length) {
                      const OutputSink& sink = static_cast<PacketSave*>(save)->sink_;
                      return sink.write(sink.handle, reinterpret_cast<const char*>(bytes), length);
                    }};
    request.name = "";
    request.localTime = localTime_;
    request.firstNumber = 1;
    return buffer_.Begin(request) == kSaved || (*wrong = path + " cannot be written", false);
  }

  bool Add(const CaptureFrame& frame) {
    ++count_;
    if (writer_) return writer_->Add(frame, UINT32_MAX);
    return buffer_.Add(frame.record ? frame.record : builder_.Build(frame)) == kSaved;
  }

  // What became of it.
  std::string Finish(bool isWhole, bool* good) {
    *good = isWhole && (writer_ ? writer_->Finish() : buffer_.Finish() == kSaved);
    std::string why;
    if (*good) *good = file_.Keep(&why);
    if (*good) return std::to_string(count_) + (count_ == 1 ? " packet" : " packets") + " saved in " + path_;
    if (writer_ && !writer_->Message().empty()) return writer_->Message();
    return path_ + ": not saved" + (why.empty() ? "" : ": " + why);
  }

 private:
  std::string path_;
  NewFile file_;
  OutputSink sink_{};
  CaptureBufferWriter buffer_;
  std::unique_ptr<PacketWriter> writer_;   // null: a capture buffer file
  RecordBuilder builder_;
  char localTime_[kAscTimeSize];
  uint64_t count_ = 0;
};

int32_t AppendTo(void* text, const char* bytes, int32_t length) {
  static_cast<std::string*>(text)->append(bytes, static_cast<size_t>(length));
  return 1;
}

// What a writer writes, as a text.
template <typename Write>
std::string TextOf(const Write& write) {
  std::string text;
  auto out = std::make_unique<Output>(OutputSink{&text, AppendTo, nullptr, -1});
  write(*out);
  out->Flush();
  return text;
}

bool WriteWhole(const std::string& path, std::string_view text, std::string* wrong) {
  NewFile file;
  if (!file.Create(path, wrong)) return false;
  const OutputSink sink = file.Sink();
  if (sink.write(sink.handle, text.data(), static_cast<int32_t>(text.size())) == 1 && file.Keep(wrong)) return true;
  if (wrong->empty()) *wrong = path + " cannot be written";
  return false;
}

// "0000  41 42 ...", as the pane has them.
std::string HexOf(const uint8_t* bytes, int32_t length) {
  std::string text;
  char pair[4];
  for (int32_t i = 0; i < length; ++i) {
    std::snprintf(pair, sizeof pair, "%s%02X", i ? " " : "", bytes[i]);
    text += pair;
  }
  return text;
}

// A line and those under it, two blanks a depth.
void AddSubtree(const ArenaTree& tree, LineHandle line, int32_t depth, std::string* text) {
  constexpr int32_t kMostDepth = 200;
  text->append(static_cast<size_t>(2 * depth), ' ');
  text->append(ToUtf8(tree.TextOf(line))).push_back('\n');
  for (LineHandle child = tree.FirstChild(line); child && depth < kMostDepth; child = tree.NextSibling(child)) {
    AddSubtree(tree, child, depth + 1, text);
  }
}

}  // namespace

void Viewer::CopyText(const std::string& text, const char* what) {
  constexpr size_t kMost = 70000;   // terminals take no more at once
  if (text.empty()) return Note(std::string("no ") + what + " to copy");
  screen_.Copy(text.size() > kMost ? std::string_view(text).substr(0, kMost) : text);
  Note(std::string(what) + (text.size() > kMost ? ": the first 70,000 bytes copied" : " copied"));
}

void Viewer::ShowCopyMenu() {
  if (number_ == 0) return;
  EnsureShown();
  const LineHandle line = tree_.Selected();
  const auto bytes = [this, line] {
    const FrameBytes range = tree_.BytesOf(line);
    return HexOf(FrameData(capture_.ShownRecord()) + range.offset, range.length);
  };
  const auto subtree = [this, line] {
    std::string text;
    AddSubtree(capture_.Tree().Tree(), line, 0, &text);
    return text;
  };
  Open(std::make_unique<MenuOverlay>(
      "Copy",
      std::vector<MenuOverlay::Choice>{
          {'l', "the line", [=, this] { CopyText(ToUtf8(tree_.TextOf(line)), "line"); }},
          {'v', "its value", [=, this] { CopyText(ToUtf8(tree_.ValueOf(line)), "value"); }},
          {'s', "the line with all below it", [=, this] { CopyText(subtree(), "subtree"); }},
          {'b', "its bytes in hexadecimal", [=, this] { CopyText(bytes(), "bytes"); }},
          {'k', "its key", [=, this] { CopyText(tree_.KeyOf(line), "key"); }},
          {'f', "a filter for it", [=, this] { CopyText(tree_.FilterOf(line), "filter"); }},
          {'t', "the whole tree",
           [this] { CopyText(TextOf([this](Output& out) { WriteTree(out, capture_.Tree(), TreeStyle{}); }), "tree"); }},
      }));
}

void Viewer::ShowSaveMenu() {
  Open(std::make_unique<MenuOverlay>(
      "Save", std::vector<MenuOverlay::Choice>{
                  {'p', capture_.IsFiltered() ? "the packets that the filter lets through" : "all packets",
                   [this] { AskPackets(false); }},
                  {'m', "the marked packets", [this] { AskPackets(true); }},
                  {'b', "the bytes of the line", [this] { AskBytesFile(); }},
                  {'t', "the packet's tree, as text or .json", [this] { AskTreeFile(); }},
              }));
}

void Viewer::AskPackets(bool marked) {
  if (marked && marks_.All().empty()) return Note("no packet is marked");
  Ask(Prompt("save packets in (.pcapng, .pcap, .bfr)", "", [this, marked](const std::string& path, std::string* wrong) {
    auto save = std::make_shared<PacketSave>();
    if (capture_.Index().Name() == path) return *wrong = "it is the file that is looked at", false;
    if (!save->Open(path, wrong)) return false;
    auto numbers = std::make_shared<std::vector<uint64_t>>(marks_.All().begin(), marks_.All().end());
    auto at = std::make_shared<uint64_t>(0);
    StartTask("saving", [this, marked, save, numbers, at] {
      constexpr int32_t kPiece = 256;
      bool good = true;
      for (int32_t i = 0; i < kPiece && good; ++i, ++*at) {
        const uint64_t count = marked ? numbers->size() : capture_.ShownCount();
        if (*at >= count) {
          const std::string told = save->Finish(true, &good);
          return Note(told, !good), false;
        }
        CaptureFrame frame;
        const uint64_t number = marked ? (*numbers)[static_cast<size_t>(*at)] : capture_.NumberAt(*at);
        good = capture_.Index().Fetch(number, &frame) && save->Add(frame);
      }
      if (good) return true;
      const std::string told = save->Finish(false, &good);
      return Note(told, true), false;
    });
    return true;
  }));
}

void Viewer::AskBytesFile() {
  if (number_ == 0) return;
  EnsureShown();
  const FrameBytes range = tree_.BytesOf(tree_.Selected());
  if (range.length == 0) return Note("the line has no bytes");
  const uint8_t* first = FrameData(capture_.ShownRecord()) + range.offset;
  const std::string bytes(reinterpret_cast<const char*>(first), static_cast<size_t>(range.length));
  AskFile(std::string("save ") + std::to_string(range.length) + " bytes in", bytes);
}

void Viewer::AskFile(const std::string& title, std::string bytes) {
  Ask(Prompt(title, "", [this, bytes = std::move(bytes)](const std::string& path, std::string* wrong) {
    if (!WriteWhole(path, bytes, wrong)) return false;
    Note(std::to_string(bytes.size()) + " bytes saved in " + path);
    return true;
  }));
}

void Viewer::AskTreeFile() {
  if (number_ == 0) return;
  Ask(Prompt("save the tree in (.json: as JSON)", "", [this](const std::string& path, std::string* wrong) {
    EnsureShown();
    const std::string text = TextOf([&](Output& out) {
      if (!EndsWith(path, ".json")) return WriteTree(out, capture_.Tree(), TreeStyle{});
      const TreeShape shape;
      WriteJson(out, capture_.Tree(), {capture_.ShownRecord(), number_, 0, false, true, nullptr, &shape, nullptr});
    });
    if (!WriteWhole(path, text, wrong)) return false;
    Note("the tree saved in " + path);
    return true;
  }));
}

}  // namespace qxview
