// A view's packets on pages.
#include <algorithm>
#include <cstring>

#include "core/engine.h"
#include "core/formatter.h"
#include "decoders/app/packet_summaries.h"
#include "exports/view_packets.h"
#include "host/key_log.h"
#include "host/text_output.h"
#include "host/time_text.h"
#include "platform/platform.h"

namespace qxview {
namespace {

constexpr int32_t kTimeSize = 48;

// "2026-11-21 07:53:33.009197 UTC"
void FormatHeadTime(int64_t nanoseconds, char (&out)[kTimeSize]) {
  FormatUtcTime(nanoseconds, out, kTimeSize);
  out[10] = ' ';   // in place of the T between date and time
  std::memcpy(out + (nanoseconds % 1000 == 0 ? 26 : 29), " UTC", 5);
}

void FormatElapsed(int64_t nanoseconds, int64_t first, char (&out)[kTimeSize]) {
  constexpr uint64_t kPerSecond = 1000000000;
  const auto elapsed = static_cast<int64_t>(static_cast<uint64_t>(nanoseconds) - static_cast<uint64_t>(first));
  const uint64_t size = elapsed < 0 ? 0 - static_cast<uint64_t>(elapsed) : static_cast<uint64_t>(elapsed);
  const auto fraction = static_cast<uint32_t>(size % kPerSecond);
  const char* const sign = elapsed < 0 ? "-" : "";
  if (nanoseconds % 1000 != 0) {
    FormatInto(out, kTimeSize, "%s%I64u.%09u", sign, size / kPerSecond, fraction);
  } else {
    FormatInto(out, kTimeSize, "%s%I64u.%06u", sign, size / kPerSecond, fraction / 1000);
  }
}

// Packets in front of the chosen ones, and between them, are passed: what they teach shows in those that are printed. A session of
// its own, so the packet that is shown stays as it is.
class ViewPagesRun final : public PagesRun {
 public:
  ViewPagesRun(ViewPackets* packets, const QxHost* host, std::unique_ptr<Session> session, const PrintChoice& choice,
               PageBreaker::PutPage put)
      : packets_(packets), host_(host), session_(std::move(session)), choice_(choice),
        breaker_(choice.grid, std::move(put)), pages_(&breaker_, choice.grid, choice.parts, false) {
    if (choice.parts.tree) {
      session_->SetOutput(kPrintMode, lines_.File());
    } else {
      session_->DecodeHeadersOnly();
    }
    breaker_.BeginCapture(choice.title);
    const FrameRecord* first = packets_->Lend(1);
    firstTime_ = first ? first->nanoseconds : 0;
    last_ = std::min(packets_->Count(), choice.packets.Last());
  }

  bool Advance(int32_t packets) override {
    for (; packets > 0 && looked_ < last_ && !breaker_.IsEnded(); --packets) {
      const FrameRecord* record = packets_->Lend(++looked_);
      if (!record) continue;   // the buffer has it no more
      std::memcpy(record_, record, record->recordLength);   // what is decoded may ask the host for others
      Take(reinterpret_cast<const FrameRecord*>(record_));
    }
    if (looked_ < last_ && !breaker_.IsEnded()) return true;
    breaker_.Finish();
    if (breaker_.Pages() == 0 && !breaker_.IsEnded()) breaker_.Put("No packets", RowKind::kTitle), breaker_.Finish();
    return false;
  }
  uint64_t Looked() const override { return looked_; }

 private:
  void Take(const FrameRecord* record) {
    if (!choice_.packets.Holds(looked_)) return session_->Pass(record);
    session_->Decode(record);
    const std::string lines = choice_.parts.tree ? lines_.Take() : "";
    if (choice_.parts.tree) session_->ReadHeaders(record);
    PacketAddresses addresses;
    FormatPacketAddresses(session_->Context().packet, host_, &addresses);
    char summary[kSummarySize], time[kTimeSize] = "", elapsed[kTimeSize];
    SummarizePacket(session_->GetView(), summary, sizeof summary);
    if (record->nanoseconds != 0) FormatHeadTime(record->nanoseconds, time);
    FormatElapsed(record->nanoseconds, firstTime_, elapsed);
    const uint32_t length = WireLength(record) + static_cast<uint32_t>(MovedHeaderLength(record));
    pages_.Put({looked_, time, elapsed, addresses.source, addresses.destination, "", summary, length, lines, FrameData(record),
                record->capturedLength});
  }

  ViewPackets* const packets_;
  const QxHost* const host_;
  const std::unique_ptr<Session> session_;
  const PrintChoice choice_;
  PageBreaker breaker_;
  PacketPages pages_;
  TextOutput lines_;
  int64_t firstTime_ = 0;
  uint64_t looked_ = 0, last_ = 0;
  alignas(8) uint8_t record_[kMaxRecord];
};

}  // namespace

std::unique_ptr<PagesRun> ViewPackets::StartPages(const PrintChoice& choice, PageBreaker::PutPage put) {
  auto session = Session::Create(host_, PlatformLibraryLoader());
  if (!session) return nullptr;
  std::string fault;   // which was told when the view was made
  if (const char* keyLog = session->GetEngine()->settings.tlsKeyLog; keyLog[0]) ReadKeyLog(session->GetView(), keyLog, &fault);
  return std::make_unique<ViewPagesRun>(this, host_, std::move(session), choice, std::move(put));
}

}  // namespace qxview
