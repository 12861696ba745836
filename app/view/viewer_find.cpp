// Search, filter, and the next packet that is like this one.
#include <algorithm>

#include "app/colors.h"
#include "app/packet_ends.h"
#include "app/packet_protocol.h"
#include "app/view/completion.h"
#include "app/view/viewer.h"

namespace qxview {
namespace {

constexpr int32_t kPiece = 64;   // packets that are looked at between two looks at the keyboard

SearchIn SearchOf(Pane pane) {
  return pane == kListPane ? SearchIn::kList : pane == kTreePane ? SearchIn::kTree : SearchIn::kBytes;
}

}  // namespace

void Viewer::AskSearch() {
  static constexpr const char* kTitles[] = {"search in the list", "search in trees", "search in bytes (0x... or text)"};
  const SearchIn in = SearchOf(focus_);
  Prompt prompt(kTitles[focus_], "", [this, in](const std::string& text, std::string* wrong) {
    SearchText search;
    if (!TakeSearch(in, text, &search, wrong)) return false;
    search_ = std::move(search);
    Search(false);
    return true;
  });
  prompt.CheckBy([in](const std::string& text, std::string* wrong) {
    SearchText search;
    return TakeSearch(in, text, &search, wrong);
  });
  prompt.RememberIn(&remembered_.searches);
  Ask(std::move(prompt));
}

// In what is shown of this packet, behind what is selected.
bool Viewer::SearchHere(bool backward) {
  if (number_ == 0 || search_->in == SearchIn::kList) return false;
  EnsureShown();
  if (search_->in == SearchIn::kTree) {
    const LineHandle line = tree_.Find(search_->literal, tree_.Selected(), backward);
    if (line) tree_.SelectLine(line), byte_ = -1;
    return line != 0;
  }
  const FrameRecord* record = capture_.ShownRecord();
  if (!record || backward) return false;
  const int32_t found = FindBytes(*search_, FrameData(record), static_cast<int32_t>(record->capturedLength), byte_ + 1);
  if (found >= 0) SelectByte(found);
  return found >= 0;
}

void Viewer::Search(bool backward) {
  if (!search_) return AskSearch();
  if (SearchHere(backward)) return;
  StartSearch(*search_, backward, true);
}

void Viewer::StartSearch(SearchText search, bool backward, bool selects) {
  if (capture_.ShownCount() == 0) return;
  auto run = std::make_shared<SearchRun>(capture_, std::move(search), number_, backward);
  StartTask("searching", [this, run, backward, selects] {
    const SearchRun::State state = run->Advance(kPiece);
    const uint64_t count = std::max<uint64_t>(capture_.ShownCount(), 1);
    taskName_ = std::string("searching ") + std::to_string(run->Looked() * 100 / count) + " %";
    if (state == SearchRun::State::kGoesOn) return true;
    taskName_.clear();
    task_ = nullptr;
    if (state == SearchRun::State::kNotFound) return Note("not found", true), false;
    if (run->Wrapped()) Note(backward ? "went on from the end" : "went on from the start");
    const std::optional<SearchText> same = same_;
    Jump(run->Found());
    EnsureShown();
    if (!selects) {
      same_ = same;
      return false;
    }
    if (run->Text().in == SearchIn::kTree) {
      const LineHandle line = tree_.Find(run->Text().literal, 0, backward);
      if (line) tree_.SelectLine(line);
    } else if (run->Text().in == SearchIn::kBytes && capture_.ShownRecord()) {
      const FrameRecord* record = capture_.ShownRecord();
      SelectByte(FindBytes(run->Text(), FrameData(record), static_cast<int32_t>(record->capturedLength)));
    }
    return false;
  });
}

// The bytes of the first packet's line are kept while it goes on from packet to packet.
void Viewer::SameBytes() {
  if (number_ == 0) return;
  EnsureShown();
  const FrameRecord* record = capture_.ShownRecord();
  const FrameBytes bytes = tree_.BytesOf(tree_.Selected());
  if (!same_) {
    if (!record || bytes.length == 0) return Note("the line has no bytes");
    same_.emplace();
    same_->in = SearchIn::kBytes;
    same_->offset = bytes.offset;
    same_->bytes.assign(FrameData(record) + bytes.offset, FrameData(record) + bytes.offset + bytes.length);
  }
  StartSearch(*same_, false, false);
}

bool Viewer::FilterBy(const std::string& expression, std::string* wrong) {
  FilterFault fault;
  if (!capture_.SetFilter(expression, &fault)) return *wrong = fault.message, false;
  filterRuns_ = capture_.IsFiltered();
  top_ = 0;
  return true;
}

void Viewer::AskFilter() {
  Prompt prompt("filter", capture_.FilterText(),
                [this](const std::string& text, std::string* wrong) { return FilterBy(text, wrong); });
  prompt.CheckBy([](const std::string& text, std::string* wrong) {
    FilterFault fault;
    if (Filter::Parse(text, &fault)) return true;
    *wrong = fault.message;
    return false;
  });
  prompt.CompleteBy(CompleteKey);
  prompt.RememberIn(&remembered_.filters);
  Ask(std::move(prompt));
}

void Viewer::ClearFilter() {
  std::string wrong;
  FilterBy("", &wrong);
}

void Viewer::FilterFromLine(const std::string& joint) {
  EnsureShown();
  const std::string line = number_ ? tree_.FilterOf(tree_.Selected()) : "";
  if (line.empty()) return Note("this line has no key to filter by");
  const std::string& before = capture_.FilterText();
  const bool isNot = joint.ends_with("not ");
  std::string expression = joint.empty() ? line : isNot ? "not " + line : line;
  if (!joint.empty() && !before.empty()) expression = "(" + before + ")" + joint + line;
  std::string wrong;
  if (!FilterBy(expression, &wrong)) return Note(wrong, true);
  auto& filters = remembered_.filters;
  filters.erase(std::remove(filters.begin(), filters.end(), expression), filters.end());
  filters.insert(filters.begin(), expression);
  Note("filter: " + expression);
}

// The next packet that is shown and of which something holds, around to this one.
void Viewer::FindPacket(const std::string& name, bool backward, std::function<bool(uint64_t)> holds) {
  if (capture_.ShownCount() == 0) return;
  struct Run {
    uint64_t place, looked = 0;
  };
  auto run = std::make_shared<Run>(Run{Place()});
  StartTask(name, [this, run, backward, holds = std::move(holds), name] {
    for (int32_t i = 0; i < kPiece; ++i) {
      const uint64_t count = capture_.ShownCount();
      if (++run->looked >= count) return Note("there is no other", true), false;
      const bool wraps = backward ? run->place == 0 : run->place + 1 >= count;
      run->place = wraps ? (backward ? count - 1 : 0) : backward ? run->place - 1 : run->place + 1;
      if (wraps) Note(backward ? "went on from the end" : "went on from the start");
      const uint64_t number = capture_.NumberAt(run->place);
      if (!holds(number)) continue;
      Jump(number);
      return false;
    }
    return true;
  });
}

namespace {

// What a packet's conversation is known by; empty where it has none.
std::string ConversationOf(ViewedCapture& capture, uint64_t number) {
  const FrameRecord* record;
  const PacketState* packet = capture.ReadHeaders(number, &record);
  if (!packet) return {};
  return EndPair(SourceEnd(*packet), DestinationEnd(*packet)).bytes + (packet->segment.here ? "t" : "");
}

}  // namespace

void Viewer::FindConversation(bool backward) {
  if (number_ == 0) return;
  const std::string wanted = ConversationOf(capture_, number_);
  FindPacket("looking for the conversation", backward,
             [this, wanted](uint64_t number) { return ConversationOf(capture_, number) == wanted; });
}

void Viewer::FilterConversation() {
  const FrameRecord* record;
  const PacketState* packet = number_ ? capture_.ReadHeaders(number_, &record) : nullptr;
  if (!packet) return;
  const PacketEnd ends[] = {SourceEnd(*packet), DestinationEnd(*packet)};
  if (ends[0].kind == 0) return Note("the packet has no addresses of a network");
  std::string expression;
  for (const PacketEnd& end : ends) {
    if (!expression.empty()) expression += " and ";
    expression += std::string("frame.address == ") + AddressTextOf(end, nullptr);
    if (end.port) expression += std::string(" and frame.port == ") + std::to_string(end.port);
  }
  std::string wrong;
  if (!FilterBy(expression, &wrong)) Note(wrong, true);
}

void Viewer::FindTrouble(bool backward) {
  FindPacket("looking for trouble", backward, [this](uint64_t number) {
    PacketRow row;
    constexpr std::string_view kTrouble = kBoldRed;
    return capture_.ReadRow(number, &row) && kTrouble.compare(ColorOfPacket(row.protocol, row.summary)) == 0;
  });
}

}  // namespace qxview
