// Ethernet's configuration testing protocol (Ethernet version 2, chapter 8): frames that stations send back, or on.
// Numbers
// have their low byte first; the skip count says where the function stands that is due.
#include "core/rows.h"

namespace qxview {
namespace {

constexpr uint32_t kReply = 1, kForward = 2;
constexpr auto kFunctionNames = SortedNames({{kReply, "Reply"}, {kForward, "Forward Data"}});

struct Loopback {
  Field function;
};
constexpr auto kSkip = LittleRows<Loopback>({Number(2, "Skip Count")});
constexpr auto kFunction = LittleRows<Loopback>({Number(2, "Function", kFunctionNames).Into(&Loopback::function)});
constexpr auto kReceipt = LittleRows<Loopback>({Number(2, "Receipt Number")});
constexpr auto kAddress = LittleRows<Loopback>({Mac("Forward Address")});

}  // namespace

int32_t DecodeConfigurationTest(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 2;
  if (Left(c) < 4) return 0;
  const int32_t due = kHeader + static_cast<int32_t>(PeekLittleU16(c));
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Loopback: %s",
                                     LookupName(kFunctionNames, PeekLittleU16(c, due))));
  Loopback out = ShowRows(in, c, kSkip);
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) {
    const uint32_t function = PeekLittleU16(c);
    if (function != kReply && function != kForward) break;
    ShowRows<Loopback>(in, c, kFunction, out);
    ShowRows<Loopback>(in, c, function == kReply ? RowSpan<Loopback>(kReceipt) : RowSpan<Loopback>(kAddress), out);
    if (function == kReply) break;
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Loopback Data");
  return 1;
}

}  // namespace qxview
