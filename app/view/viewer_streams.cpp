// What lies over the panes of several packets: the bytes of a stream, tables, and the flow between hosts.
#include <algorithm>
#include <cstdio>
#include <optional>

#include "app/time_sums.h"
#include "app/packet_ends.h"
#include "app/record_writer.h"
#include "app/statistics.h"
#include "app/stream_order.h"
#include "app/view/viewer.h"
#include "core/digits.h"
#include "core/frame_entry.h"

namespace qxview {
namespace {

constexpr uint64_t kPiece = 256;         // packets between two looks at the keyboard
constexpr size_t kMostLines = 200000;    // of a text
constexpr size_t kLongestLine = 2000;

// The bytes of the packet's conversation in their order, as text or in hexadecimal.
class FollowOverlay final : public TextOverlay, private StreamTarget {
 public:
  explicit FollowOverlay(Viewer& viewer)
      : TextOverlay("Stream", "x text or hex  a b one side  0 both  w write to a file  / search  q close"), viewer_(viewer) {
    stream_.emplace(static_cast<StreamTarget&>(*this));
    const FrameRecord* record;
    const PacketState* packet = viewer.Capture().ReadHeaders(viewer.Number(), &record);
    if (!packet || packet->quoted || !(packet->segment.here || IsUdpPacket(*packet))) return;
    ends_ = EndPair(SourceEnd(*packet), DestinationEnd(*packet)).bytes;
    isTcp_ = packet->segment.here;
  }

  bool Work() override {
    const uint64_t count = viewer_.Capture().Index().Count();
    if (ends_.empty() || next_ > count) return false;
    for (uint64_t i = 0; i < kPiece && next_ <= count; ++i, ++next_) Take(next_);
    if (next_ > count) stream_->Finish();
    Write();
    return true;
  }

  bool TakeKey(const Key& key, Screen& screen) override {
    if (key.code == 'w') return Save(), true;
    const bool turns = key.code == 'x' || key.code == 'a' || key.code == 'b' || key.code == '0';
    if (key.code == 'x') isHex_ = !isHex_;
    if (key.code == 'a' || key.code == 'b' || key.code == '0') side_ = key.code == '0' ? -1 : key.code - 'a';
    if (!turns) return TextOverlay::TakeKey(key, screen);
    Clear();
    written_ = 0;
    place_[0] = place_[1] = 0;
    atLineStart_ = true;
    turn_ = -1;
    Write();
    return true;
  }

 private:
  struct Piece {
    bool isSecond, isGap;
    uint64_t packet;
    std::string bytes;
    uint64_t length;
  };

  // Packets up to the one that was looked at tell which of the connections between the ends is meant.
  void Take(uint64_t number) {
    const FrameRecord* record;
    const PacketState* packet = viewer_.Capture().ReadHeaders(number, &record);
    if (!packet || packet->quoted || EndPair(SourceEnd(*packet), DestinationEnd(*packet)).bytes != ends_) return;
    TcpHeader header;
    const bool isTcp = ReadTcpHeader(*packet, &header);
    if (isTcp != isTcp_ || (!isTcp && !IsUdpPacket(*packet))) return;
    const uint64_t stream = streams_.NumberOf(*packet, isTcp ? &header : nullptr);
    if (stream != streamNumber_) {
      if (number > viewer_.Number()) return;
      streamNumber_ = stream;   // another one began in front of the packet
      stream_.emplace(static_cast<StreamTarget&>(*this));
      pieces_.clear();
      Clear();
      written_ = held_ = 0;
      turn_ = -1;
    }
    stream_->Take(*packet, isTcp ? &header : nullptr, number, viewer_.Capture().Host().Record());
    SetTitle("Stream of " + names_[0] + " (a) and " + names_[1] + " (b)");
  }

  void Name(bool isSecond, std::string end) override { names_[isSecond] = std::move(end); }
  void Put(bool isSecond, uint64_t packet, const uint8_t* bytes, size_t length) override {
    constexpr size_t kMostHeld = 64u << 20;
    if ((held_ += length) > kMostHeld) return;
    pieces_.push_back({isSecond, false, packet, std::string(reinterpret_cast<const char*>(bytes), length), length});
  }
  void PutGap(bool isSecond, uint64_t packet, uint64_t length) override { pieces_.push_back({isSecond, true, packet, "", length}); }

  // What has come since the last time.
  void Write() {
    for (; written_ < pieces_.size() && Lines().size() < kMostLines; ++written_) {
      const Piece& piece = pieces_[written_];
      if (side_ >= 0 && piece.isSecond != (side_ == 1)) continue;
      if (turn_ != piece.isSecond) {
        const std::string packet = std::to_string(piece.packet);
        Add({"--- " + names_[piece.isSecond] + " to " + names_[!piece.isSecond] + ", packet " + packet, Style::kFaint});
        turn_ = piece.isSecond;
        atLineStart_ = true;
      }
      const Style style = piece.isSecond ? Style::kBlue : Style::kMagenta;
      if (piece.isGap) {
        Add({std::string("[") + std::to_string(piece.length) + " bytes are missing in the capture]", Style::kWrong});
        atLineStart_ = true;
      } else if (isHex_) {
        WriteDump(piece, style);
      } else {
        WriteText(piece.bytes, style);
      }
      place_[piece.isSecond] += piece.length;
    }
  }

  void WriteText(std::string_view text, Style style) {
    for (size_t at = 0; at < text.size();) {
      const size_t end = std::min({text.find('\n', at), text.size(), at + kLongestLine});
      std::string_view line = text.substr(at, end - at);
      const bool ends = end < text.size() && text[end] == '\n';
      if (ends && line.ends_with('\r')) line.remove_suffix(1);
      if (atLineStart_ || Lines().empty()) Add({std::string(line), style, false});
      else Lines().back().text += line;
      atLineStart_ = ends || Lines().back().text.size() > kLongestLine;
      at = ends ? end + 1 : end;
    }
  }

  void WriteDump(const Piece& piece, Style style) {
    constexpr size_t kRow = 16;
    for (size_t at = 0; at < piece.bytes.size(); at += kRow) {
      char head[32];
      std::snprintf(head, sizeof head, "%s%08llX ", piece.isSecond ? "    " : "",
                    static_cast<unsigned long long>(place_[piece.isSecond] + at));
      std::string row = head, characters;
      for (size_t i = 0; i < kRow; ++i) {
        const bool isThere = at + i < piece.bytes.size();
        const auto c = isThere ? static_cast<uint8_t>(piece.bytes[at + i]) : uint8_t{0};
        row += i == kRow / 2 ? "  " : " ";
        row += isThere ? std::string_view(kHexPairs + 2 * c, 2) : "  ";
        if (isThere) characters += c >= 0x20 && c < 0x7F ? static_cast<char>(c) : '.';
      }
      Add({row + "  " + characters, style});
    }
    atLineStart_ = true;
  }

  void Save();

  Viewer& viewer_;
  std::string ends_, names_[2];
  bool isTcp_ = false, isHex_ = false, atLineStart_ = true;
  int32_t side_ = -1, turn_ = -1;
  uint64_t next_ = 1, streamNumber_ = 0, place_[2] = {0, 0};
  size_t written_ = 0, held_ = 0;
  Streams streams_;
  std::optional<FollowedStream> stream_;
  std::vector<Piece> pieces_;
};

void FollowOverlay::Save() {
  std::string bytes;
  for (const Piece& piece : pieces_) {
    if (side_ < 0 || piece.isSecond == (side_ == 1)) bytes += piece.bytes;
  }
  viewer_.AskFile("write the bytes of the stream to", std::move(bytes));
}

// Conversations, endpoints and protocols over the packets that are shown.
class StatOverlay final : public TableOverlay {
 public:
  explicit StatOverlay(Viewer& viewer) : viewer_(viewer) { Begin(); }

  bool Work() override {
    ViewedCapture& capture = viewer_.Capture();
    const uint64_t count = capture.ShownCount();
    if (next_ >= count) return false;
    capture.ReadTime(1, &first_);
    for (uint64_t i = 0; i < kPiece && next_ < count; ++i, ++next_) {
      const uint64_t number = capture.NumberAt(next_);
      if (statistic_->WantsProtocols()) {
        if (!capture.ListProtocols(number, &protocols_)) continue;
        statistic_->TakeProtocols(protocols_);
      }
      const FrameRecord* record;
      const PacketState* packet = capture.ReadHeaders(number, &record);
      if (!packet) continue;
      const uint32_t length = WireLength(record) + static_cast<uint32_t>(MovedHeaderLength(record));
      statistic_->Take({*packet, record, number, record->nanoseconds, first_, length, nullptr});
    }
    // Making the table takes longer the more there is: not for every piece.
    if (next_ >= count || next_ >= 2 * filledAt_) Fill();
    return true;
  }

 private:
  enum Kind { kConversations, kEndpoints, kProtocols, kKinds };

  void Begin() {
    statistic_ = kind_ == kConversations ? MakeConversations() : kind_ == kEndpoints ? MakeEndpoints() : MakeProtocols();
    next_ = filledAt_ = 0;
    Fill();
  }

  void Fill() {
    filledAt_ = std::max<uint64_t>(next_, kPiece);
    const std::vector<StatTable> tables = statistic_->Tables();
    if (tables.empty()) return;
    std::vector<Column> columns;
    for (const StatTable::Column& column : tables[0].Columns()) columns.push_back({column.title, column.isNumber});
    std::vector<Row> rows;
    for (const auto& from : tables[0].AllRows()) {
      Row row;
      for (const auto& cell : from) row.push_back({cell.text, cell.number});
      rows.push_back(std::move(row));
    }
    const uint64_t count = viewer_.Capture().ShownCount();
    std::string title = tables[0].Title() + ": " + std::to_string(rows.size());
    if (next_ < count) title += std::string(", ") + std::to_string(next_ * 100 / count) + " %";
    SetTable(title, std::move(columns), std::move(rows));
  }

  std::string KeysText() const override { return "Tab the next table  Enter filter  s sort  q close"; }
  bool TakeOwnKey(int32_t code, bool*) override {
    if (code != kKeyTab) return false;
    kind_ = static_cast<Kind>((kind_ + 1) % kKinds);
    Begin();
    return true;
  }

  // "192.0.2.1:80", "[2001:db8::1]:80", "192.0.2.1", a hardware address.
  static std::string FilterOfEnd(const std::string& layer, const std::string& end) {
    if (layer == "Ethernet") return "eth.addr == " + end;
    const bool hasPort = layer != "IPv4" && layer != "IPv6";
    const size_t colon = hasPort ? end.rfind(':') : end.npos;
    std::string address = end.substr(0, colon);
    if (address.starts_with('[')) address = address.substr(1, address.size() - 2);
    const std::string filter = "frame.address == " + address;
    return colon == end.npos ? filter : filter + " and frame.port == " + end.substr(colon + 1);
  }

  bool Choose(const Row& row) override {
    std::string filter, wrong;
    if (kind_ == kProtocols) filter = "frame.protocols contains \"" + row[2].text + "\"";
    if (kind_ == kEndpoints) filter = FilterOfEnd(row[0].text, row[1].text);
    if (kind_ == kConversations) filter = FilterOfEnd(row[0].text, row[1].text) + " and " + FilterOfEnd(row[0].text, row[2].text);
    if (!viewer_.FilterBy(filter, &wrong)) viewer_.Note(wrong, true);
    return false;
  }

  Viewer& viewer_;
  Kind kind_ = kConversations;
  std::unique_ptr<Statistic> statistic_;
  std::vector<const char*> protocols_;
  uint64_t next_ = 0, filledAt_ = 0;
  int64_t first_ = 0;
};

// Packets as arrows between hosts: those of the selected packet's two, or of a call all that signal it.
class FlowOverlay final : public TextOverlay {
 public:
  explicit FlowOverlay(Viewer& viewer)
      : TextOverlay("Flow", "Enter go to the packet at the top  / search  q close"), viewer_(viewer) {
    PacketRow row;
    if (!viewer.Capture().ReadRow(viewer.Number(), &row)) return;
    isCall_ = row.protocol == "SIP";
    hosts_ = {row.source, row.destination};
    SetTitle(isCall_ ? "Flow of SIP" : std::string("Flow between ") + ToUtf8(row.source) + " and " + ToUtf8(row.destination));
  }

  bool Work() override {
    ViewedCapture& capture = viewer_.Capture();
    const uint64_t count = capture.ShownCount();
    if (hosts_.empty() || next_ >= count || Lines().size() >= kMostLines) return false;
    for (uint64_t i = 0; i < kPiece && next_ < count; ++i, ++next_) Take(capture.NumberAt(next_));
    return true;
  }

  bool TakeKey(const Key& key, Screen& screen) override {
    if (key.code != kKeyEnter) return TextOverlay::TakeKey(key, screen);
    if (Top() < numbers_.size() && numbers_[Top()]) viewer_.Jump(numbers_[Top()]);
    return false;
  }

 private:
  static constexpr size_t kWidth = 34, kMostHosts = 6;

  size_t PlaceOf(const std::string& host) {
    const auto found = std::find(hosts_.begin(), hosts_.end(), host);
    if (found == hosts_.end() && isCall_ && hosts_.size() < kMostHosts) {
      hosts_.push_back(host);
      PutHosts();
      return hosts_.size() - 1;
    }
    return static_cast<size_t>(found - hosts_.begin());
  }

  void AddLine(std::string text, Style style, uint64_t number) {
    text.erase(text.find_last_not_of(' ') + 1);   // blanks are nothing that could be left out
    Add({std::move(text), style});
    numbers_.push_back(number);
  }

  void PutHosts() {
    std::string text(22, ' ');
    for (const std::string& host : hosts_) {
      std::string name = ToUtf8(host).substr(0, kWidth - 2);
      name.resize(kWidth, ' ');
      text += name;
    }
    AddLine(text, Style::kTitle, 0);
  }

  void Take(uint64_t number) {
    PacketRow row;
    if (!viewer_.Capture().ReadRow(number, &row) || (isCall_ && row.protocol != "SIP")) return;
    const bool areThese = (row.source == hosts_[0] && row.destination == hosts_[1]) ||
                          (row.source == hosts_[1] && row.destination == hosts_[0]);
    if (!isCall_ && !areThese) return;
    if (Lines().empty()) PutHosts();
    const size_t from = PlaceOf(row.source), to = PlaceOf(row.destination);
    if (from >= hosts_.size() || to >= hosts_.size()) return;
    if (number == viewer_.Capture().NumberAt(0) || firstTime_ == 0) firstTime_ = row.nanoseconds;
    char head[40];
    std::snprintf(head, sizeof head, "%8llu %11.6f ", static_cast<unsigned long long>(number),
                  static_cast<double>(TimeBetween(firstTime_, row.nanoseconds)) / 1e9);
    const size_t left = std::min(from, to), right = std::max(from, to);
    std::string text = head;
    for (size_t i = 0; i < left; ++i) text += '|' + std::string(kWidth - 1, ' ');
    const size_t length = std::max(right - left, size_t{1}) * kWidth - 1;
    std::string label = (std::string(" ") + ToUtf8(row.summary)).substr(0, length - 4);
    while (!label.empty() && (static_cast<uint8_t>(label.back()) & 0x80)) label.pop_back();   // rather none than half a character
    label += ' ';
    const std::string line(length - std::min(label.size() + 2, length), '-');
    text += from == to ? "|(" + label + line + ")" : from < to ? "|-" + label + line + ">" : "|<" + label + line + "-";
    for (size_t i = std::max(right, left + 1); i < hosts_.size(); ++i) text += '|' + std::string(kWidth - 1, ' ');
    AddLine(text, number == viewer_.Number() ? Style::kMarked : from < to ? Style::kMagenta : Style::kBlue, number);
  }

  Viewer& viewer_;
  bool isCall_ = false;
  std::vector<std::string> hosts_;
  std::vector<uint64_t> numbers_;   // of the lines
  uint64_t next_ = 0;
  int64_t firstTime_ = 0;
};

}  // namespace

void Viewer::FollowStream() {
  const FrameRecord* record;
  const PacketState* packet = number_ ? capture_.ReadHeaders(number_, &record) : nullptr;
  const bool isOfOne = packet && !packet->quoted && (packet->segment.here || IsUdpPacket(*packet));
  if (!isOfOne) return Note("the packet is of no stream of TCP or UDP");
  Open(std::make_unique<FollowOverlay>(*this));
}

void Viewer::ShowTables() { Open(std::make_unique<StatOverlay>(*this)); }

void Viewer::ShowFlow() {
  if (number_) Open(std::make_unique<FlowOverlay>(*this));
}

}  // namespace qxview
