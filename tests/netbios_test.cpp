// The NetBIOS services and NetBIOS Frames: names, pointers, messages over several segments, and hostile ones. The forms
// that real hosts send stand in the golden decode of netbios.pcap.
#include "decoders/netbios/netbios.h"

#include <chrono>
#include <cstdlib>

#include "tests/support/decoding.h"
#include "tests/support/http_cases.h"

namespace qxview::testing {
namespace {

TEST(NetBios, HostileMessagesAreBounded) {
  const Bytes counts = Hex("0001 8400 FFFF FFFF FFFF FFFF");
  Bytes chain = counts;   // names of which each points to the one before it
  for (int at = 12; at < 16000; at += 8) {
    chain = chain + Hex("01 78") + (at == 12 ? Hex("0000") : Bytes{static_cast<uint8_t>(0xC0 | (at - 8) >> 8),
                                                                  static_cast<uint8_t>(at - 8)}) + Hex("0020 0001");
  }
  const struct {
    const char* name;
    DecoderFunction decode;
    Bytes message;
  } kCases[] = {
      {"keep-alives", DecodeNetBiosSession, Repeat(Hex("85000000"), 16384)},
      {"empty messages", DecodeNetBiosSession, Repeat(Hex("00000001 41"), 13107)},
      {"questions that point to one name", DecodeNetBiosName,
       counts + Repeat(Hex("01 61"), 150) + Hex("00 0020 0001") + Repeat(Hex("C00C 0020 0001"), 10800)},
      {"names in a chain of pointers", DecodeNetBiosName, chain},
      {"a name of all labels", DecodeNetBiosName, counts + Repeat(Hex("01 61"), 32700)},
      {"addresses", DecodeNetBiosName, Hex("0001 8400 0000 0001 0000 0000 00 0020 0001 00000000 FFFF") + Bytes(65500)},
  };
  constexpr double kMost = 200;   // milliseconds: far above what any takes, far below what a quadratic walk would
  for (const auto& c : kCases) {
    double best = 1e9;
    RunOnSmallStack([&] {
      TestView view;
      best = BestMilliseconds([&] {
        ClearDecodeTree(&view.view(), &view.tree(), true);
        view.Run(c.decode, c.message);
      });
    });
    EXPECT_LT(best, kMost * kSlowness) << c.name;
    if (std::getenv("QXVIEW_TIMES")) printf("%8.3f ms  %s\n", best, c.name);
  }
}

}  // namespace
}  // namespace qxview::testing
