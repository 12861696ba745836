// The keys, what each does, and the smaller of these things.
#include <algorithm>
#include <fstream>

#include "app/stream_order.h"
#include "app/view/completion.h"
#include "app/view/viewer.h"
#include "core/dispatch.h"
#include "host/text.h"
#include "keys/field_keys.h"
#include "platform/new_file.h"

namespace qxview {

// Keys of movement, which mean the same in every pane, are Viewer::Move's.
const std::vector<Viewer::Action>& Viewer::Actions() {
  static const std::vector<Action> kActions = {
      {{}, "Looking for something", nullptr},
      {{'/'}, "search in the pane: the list, trees, or bytes (0x...); /expression/ is a regular one", &Viewer::AskSearch},
      {{'n'}, "what was looked for, next", &Viewer::SearchNext},
      {{'N'}, "what was looked for, before", &Viewer::SearchBefore},
      {{'s'}, "the same bytes at the same place in the next packet that has them", &Viewer::SameBytes},
      {{'f', ':'}, "filter the packets; Tab completes keys", &Viewer::AskFilter},
      {{'F'}, "take the filter away", &Viewer::ClearFilter},
      {{'='}, "filter by the selected line's key and value", &Viewer::FilterLine},
      {{'&'}, "and by this line", &Viewer::FilterAnd},
      {{'|'}, "or by this line", &Viewer::FilterOr},
      {{'!'}, "but not by this line", &Viewer::FilterNot},
      {{'g'}, "go to a packet: 12, +100, -5, 50%", &Viewer::AskNumber},
      {{'v'}, "next packet of the conversation", &Viewer::NextInConversation},
      {{'V'}, "packet of the conversation before", &Viewer::BeforeInConversation},
      {{'c'}, "filter by the conversation", &Viewer::FilterConversation},
      {{'e'}, "next trouble: resets, refusals, bad checksums", &Viewer::NextTrouble},
      {{'E'}, "trouble before", &Viewer::TroubleBefore},
      {{'['}, "back to where you were", &Viewer::Back},
      {{']'}, "forward again", &Viewer::Forward},
      {{}, "What is together", nullptr},
      {{'o'}, "follow the stream: what both sides sent", &Viewer::FollowStream},
      {{'T'}, "conversations, endpoints and protocols as tables", &Viewer::ShowTables},
      {{'L'}, "flow: who sent what to whom", &Viewer::ShowFlow},
      {{}, "Keeping it", nullptr},
      {{'S'}, "save packets, bytes or the tree", &Viewer::ShowSaveMenu},
      {{'P'}, "print packets: pages of a PDF file, or text", &Viewer::ShowPrintMenu},
      {{'y', ControlKey('Y')}, "copy a line, value, bytes, filter, subtree", &Viewer::ShowCopyMenu},
      {{'m'}, "mark the packet, or not", &Viewer::ToggleMark},
      {{'.'}, "next marked packet", &Viewer::NextMark},
      {{','}, "marked packet before", &Viewer::MarkBefore},
      {{'M'}, "no packet is marked", &Viewer::ClearMarks},
      {{}, "The tree", nullptr},
      {{kKeyEnter, ' '}, "open or close the line", &Viewer::ToggleLine},
      {{'*'}, "open all below the line", &Viewer::ExpandAll},
      {{'_'}, "close all below the line", &Viewer::CollapseAll},
      {{'1'}, "show the first level", &Viewer::Levels1},
      {{'2'}, "down to the 2nd level", &Viewer::Levels2},
      {{'3'}, "down to the 3rd level", &Viewer::Levels3},
      {{'4'}, "down to the 4th level", &Viewer::Levels4},
      {{'5'}, "all levels", &Viewer::LevelsAll},
      {{'J', kKeyF1 + 7}, "next packet, from any pane", &Viewer::NextPacket},
      {{'K', kKeyF1 + 6}, "packet before, from any pane", &Viewer::PacketBefore},
      {{}, "How it is shown", nullptr},
      {{'t'}, "the next form of times", &Viewer::NextTime},
      {{'C'}, "columns: their keys, order and widths", &Viewer::AskColumns},
      {{'d'}, "decode as: name the protocol of a port", &Viewer::AskDecodeAs},
      {{'u'}, "undo the last decode-as", &Viewer::UndoDecodeAs},
      {{'D'}, "keep the decode-as in the settings", &Viewer::KeepDecodeAs},
      {{'a'}, "names of addresses on or off", &Viewer::ToggleNames},
      {{'G'}, "to the end, and stay there as packets come", &Viewer::Stick},
      {{}, "Panes", nullptr},
      {{kKeyTab, kKeyF1 + 5}, "next pane", &Viewer::NextPane},
      {{kKeyBackTab}, "pane before", &Viewer::PaneBefore},
      {{'z'}, "this pane alone, or all", &Viewer::ZoomPane},
      {{'x'}, "close the pane", &Viewer::ClosePane},
      {{'X'}, "open all panes", &Viewer::OpenPanes},
      {{'+'}, "make the pane larger", &Viewer::Grow},
      {{'-'}, "make the pane smaller", &Viewer::Shrink},
      {{'b'}, "the bytes beside the tree, or below it", &Viewer::ToggleBeside},
      {{ControlKey('L')}, "draw the screen anew", &Viewer::Redraw},
      {{}, "Anything else", nullptr},
      {{kKeyEscape}, "end what goes on", &Viewer::Escape},
      {{'?', kKeyF1}, "this text", &Viewer::ShowHelp},
      {{'q', ControlKey('Q')}, "leave", &Viewer::Quit},
  };
  return kActions;
}

void Viewer::ShowHelp() {
  auto help = std::make_unique<TextOverlay>("Keys", "Up Down PgUp PgDn scroll  / search  q close");
  help->Add({"Up, Down, PgUp, PgDn, Home, End (h j k l) move in the pane that has the > in its head;", Style::kFaint});
  help->Add({"Left and Right close and open lines of the tree. The mouse selects, scrolls and drags the panes' heads.",
             Style::kFaint});
  for (const Action& action : Actions()) {
    if (action.keys.empty()) {
      help->Add({"", Style::kPlain});
      help->Add({action.about, Style::kMarked});
      continue;
    }
    std::string keys;
    for (const int32_t key : action.keys) keys.append(keys.empty() ? "" : " ").append(NameOfKey(key));
    keys.resize(std::max<size_t>(keys.size() + 2, 14), ' ');
    help->Add({"  " + keys + action.about, Style::kPlain});
  }
  Open(std::move(help));
}

void Viewer::NextPane() {
  for (int32_t i = 1; i <= kPanes; ++i) {
    const auto next = static_cast<Pane>((focus_ + i) % kPanes);
    if (!open_[next]) continue;
    focus_ = next;
    return;
  }
}

void Viewer::PaneBefore() {
  for (int32_t i = 1; i <= kPanes; ++i) {
    const auto next = static_cast<Pane>((focus_ + kPanes - i) % kPanes);
    if (!open_[next]) continue;
    focus_ = next;
    return;
  }
}

void Viewer::ClosePane() {
  if (open_[0] + open_[1] + open_[2] < 2) return Note("the last pane stays open");
  open_[focus_] = false;
  NextPane();
}

void Viewer::OpenPanes() {
  for (bool& open : open_) open = true;
  zoomed_ = false;
}

void Viewer::Resize(int32_t by) {
  const int32_t rows = rects_[focus_].rows;
  // The shares become the heights there are, so that a step is a row.
  for (int32_t i = 0; i < kPanes; ++i) {
    if (rects_[i].rows) remembered_.shares[i] = rects_[i].rows;
  }
  if (rows + by < 2) return;
  const Pane other = focus_ == kTreePane ? (open_[kBytesPane] && !remembered_.beside ? kBytesPane : kListPane) : kTreePane;
  if (rects_[other].rows - by < 2) return;
  remembered_.shares[focus_] += by;
  remembered_.shares[other] -= by;
}

void Viewer::AskNumber() {
  Prompt prompt("go to packet", "", [this](const std::string& text, std::string* wrong) {
    uint64_t number = 0, count = capture_.Index().Count();
    std::string digits = text;
    const char sign = text.empty() ? ' ' : text.front();
    const bool isPart = text.ends_with('%');
    if (sign == '+' || sign == '-') digits.erase(0, 1);
    if (isPart) digits.pop_back();
    int64_t given = -1;
    if (!ParseNumber(digits, &given) || given < 0) return *wrong = "a packet number, +N, -N or N% is wanted", false;
    number = static_cast<uint64_t>(given);
    if (isPart) number = count * std::min<uint64_t>(number, 100) / 100;
    if (sign == '+') number = number_ + number;
    if (sign == '-') number = number_ > number ? number_ - number : 1;
    number = std::max<uint64_t>(number, 1);
    if (number > count) return *wrong = std::string("there are ") + std::to_string(count) + " packets so far", false;
    const uint64_t place = capture_.PlaceOf(number);
    if (place >= capture_.ShownCount()) return *wrong = "the filter leaves out all from there on", false;
    Jump(capture_.NumberAt(place));
    if (number_ != number) Note("the next one that the filter lets through");
    return true;
  });
  Ask(std::move(prompt));
}

void Viewer::Back() {
  if (const uint64_t number = places_.Back()) Select(number), sticks_ = false;
  else Note("there is no place before");
}
void Viewer::Forward() {
  if (const uint64_t number = places_.Forward()) Select(number), sticks_ = false;
  else Note("there is no place behind");
}

void Viewer::ToggleLine() {
  if (focus_ == kListPane) {
    focus_ = open_[kTreePane] ? kTreePane : focus_;
    return;
  }
  const size_t at = tree_.SelectedIndex();
  if (at < tree_.Lines().size()) tree_.Expand(at, !tree_.Lines()[at].isExpanded);
}
void Viewer::ExpandAll() { tree_.ExpandUnder(tree_.SelectedIndex(), true); }
void Viewer::CollapseAll() { tree_.ExpandUnder(tree_.SelectedIndex(), false); }
void Viewer::ShowLevels(int32_t levels) { tree_.ShowLevels(levels); }

void Viewer::NextTime() {
  static constexpr const char* kForms[] = {"since the first packet", "since the packet before", "since the packet shown before",
                                           "local time", "UTC", "seconds since 1970", "ISO 8601"};
  const int32_t next = (static_cast<int32_t>(remembered_.time) + 1) % 7;
  remembered_.time = static_cast<TimeForm>(next);
  time_ = ListTime(remembered_.time);
  Note(std::string("times: ") + kForms[next]);
}

namespace {

std::vector<std::string> KeysFrom(const std::string& word, const std::vector<std::string>& first) {
  std::vector<std::string> found;
  constexpr size_t kMost = 2000;
  const auto take = [&](const std::string& name) {
    if (name.starts_with(word) && name.find('*') == name.npos && found.size() < kMost) found.push_back(name);
  };
  for (const std::string& name : first) take(name);
  const FieldKeySpan keys = FieldKeys();
  for (int32_t i = 0; i < keys.count; ++i) take(keys.keys[i].key);
  const KeyAliasSpan aliases = KeyAliases();
  for (int32_t i = 0; i < aliases.count; ++i) take(aliases.aliases[i].name);
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

}  // namespace

std::vector<std::string> CompleteKey(const std::string& word) {
  static const std::vector<std::string> kOwn = {
      "frame.number", "frame.time", "frame.length", "frame.captured", "frame.source", "frame.destination", "frame.protocol",
      "frame.summary", "frame.address", "frame.port", "frame.source_address", "frame.destination_address", "frame.source_port",
      "frame.destination_port", "frame.protocols", "contains", "matches"};
  return KeysFrom(word, kOwn);
}

void Viewer::AskColumns() {
  Prompt prompt("columns (KEY or KEY:WIDTH)", remembered_.columns, [this](const std::string& text, std::string* wrong) {
    if (!TakeColumns(text.empty() ? Remembered().columns : text, wrong)) return false;
    remembered_.columns = text.empty() ? Remembered().columns : text;
    return true;
  });
  prompt.CompleteBy([](const std::string& word) {
    return KeysFrom(word, {"number", "time", "source", "destination", "protocol", "length", "summary"});
  });
  Ask(std::move(prompt));
}

void Viewer::ToggleMark() {
  if (number_) marks_.Toggle(number_);
}
void Viewer::NextMark() {
  if (const uint64_t number = marks_.Next(number_)) Jump(number);
  else Note("no packet is marked");
}
void Viewer::MarkBefore() {
  if (const uint64_t number = marks_.Before(number_)) Jump(number);
  else Note("no packet is marked");
}
void Viewer::ClearMarks() { marks_.Clear(); }

void Viewer::Stick() {
  SelectPlace(UINT64_MAX);
  focus_ = open_[kListPane] ? kListPane : focus_;
}

void Viewer::Escape() {
  if (task_) Note("ended: " + taskName_);
  task_ = nullptr;
  taskName_.clear();
}

bool Viewer::DecodeWith(HostOptions options, std::string* wrong) {
  const uint64_t number = number_;
  if (!capture_.DecodeWith(options, wrong)) return false;
  cells_.clear();
  filterRuns_ = capture_.IsFiltered();
  Select(number);
  if (number_ && capture_.Show(number_)) tree_.Take(capture_.Tree().GetView(), &capture_.Tree().Tree());
  return true;
}

void Viewer::AskDecodeAs() {
  const FrameRecord* record;
  const PacketState* packet = number_ ? capture_.ReadHeaders(number_, &record) : nullptr;
  std::string start;
  if (packet && (packet->segment.here || IsUdpPacket(*packet))) {
    const uint16_t port = std::min(packet->sourcePort, packet->destinationPort);
    start = (packet->segment.here ? "tcp:" : "udp:") + std::to_string(port) + "=";
  }
  Prompt prompt("decode as (tcp:PORT=PROTOCOL)", start, [this](const std::string& text, std::string* wrong) {
    HostOptions options = capture_.Options();
    options.definitions.push_back(text);
    if (!DecodeWith(std::move(options), wrong)) return false;
    ++decodings_;
    Note("decoded as " + text + "; u undoes it, D keeps it in the settings");
    return true;
  });
  prompt.CompleteBy([](const std::string& word) {
    std::vector<std::string> found;
    for (int32_t i = 0; const ProtocolRow* row = RegistryProtocol(i); ++i) {
      const std::string_view name = row->name;
      if (name.size() >= word.size() && EqualsIgnoringCase(name.substr(0, word.size()), word)) found.emplace_back(name);
    }
    std::sort(found.begin(), found.end());
    return found;
  });
  Ask(std::move(prompt));
}

void Viewer::UndoDecodeAs() {
  if (decodings_ == 0) return Note("nothing was decoded otherwise");
  HostOptions options = capture_.Options();
  const std::string undone = options.definitions.back();
  options.definitions.pop_back();
  std::string wrong;
  if (!DecodeWith(std::move(options), &wrong)) return Note(wrong, true);
  --decodings_;
  Note("no longer decoded as " + undone);
}

// A line under [Protocols] of the settings file, whatever else it holds.
void Viewer::KeepDecodeAs() {
  if (decodings_ == 0) return Note("nothing was decoded otherwise");
  const HostOptions& options = capture_.Options();
  const std::string path = options.settingsFile.empty() ? UserSettingsPath(options.userSettings.file) : options.settingsFile;
  if (path.empty()) return Note("there is no settings file to keep it in: --settings FILE", true);
  std::string text, line, added;
  for (size_t i = options.definitions.size() - decodings_; i < options.definitions.size(); ++i) {
    added += options.definitions[i] + "\n";
  }
  bool isIn = false;
  std::ifstream file(path);
  while (std::getline(file, line)) {
    text += line + "\n";
    if (isIn || line.find("[Protocols]") != 0) continue;
    text += added;
    isIn = true;
  }
  file.close();
  if (!isIn) text += "[Protocols]\n" + added;
  NewFile changed;
  std::string message;
  const bool isOpen = changed.Create(path, &message);
  const OutputSink sink = isOpen ? changed.Sink() : OutputSink{};
  const auto length = static_cast<int32_t>(text.size());
  const bool written = isOpen && sink.write(sink.handle, text.data(), length) == 1 && changed.Keep(&message);
  if (!written) return Note(message.empty() ? path + " cannot be written" : message, true);
  Note("kept in " + path);
}

void Viewer::ToggleNames() {
  static constexpr std::string_view kNone = "AliasFile=";
  HostOptions options = capture_.Options();
  std::string wrong;
  if (!options.settings.empty() && options.settings.back() == kNone) {
    options.settings.pop_back();
    if (!DecodeWith(std::move(options), &wrong)) return Note(wrong, true);
    return Note("addresses have their names");
  }
  const std::string* file = capture_.Host().Settings().Find("AliasFile");
  if (file && !file->empty()) {
    options.settings.emplace_back(kNone);
    if (!DecodeWith(std::move(options), &wrong)) return Note(wrong, true);
    return Note("addresses stand as they are");
  }
  Ask(Prompt("file of names (address, blanks, name)", "", [this](const std::string& text, std::string* fault) {
    HostOptions named = capture_.Options();
    named.settings.push_back("AliasFile=" + text);
    return DecodeWith(std::move(named), fault);
  }));
}

}  // namespace qxview
