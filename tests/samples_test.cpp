// Properties of every frame of the samples: truncated and corrupted frames decode within the frame's bytes, print mode
// writes as many lines as display mode adds, and decoding allocates nothing.
#include <cstdlib>
#include <string>

#include "files/capture_reader.h"
#include "files/record_builder.h"
#include "host/mib_database.h"
#include "tests/support/transport.h"

namespace qxview::testing {
namespace {

constexpr const char* kSamples[] = {"bridge", "dns-loopback", "dns", "ftp", "http", "kerberos", "lan", "ldap", "mail",
                                    "netbios", "smb", "snmp", "telnet", "vlan"};

class Samples : public ::testing::TestWithParam<const char*> {
 protected:
  // Calls `check` with every record of the sample.
  template <class Check>
  void ForEachRecord(Check check) {
    std::string message;
    const auto reader = OpenCapture((std::string(QXVIEW_SAMPLES_DIR "/") + GetParam() + ".pcap").c_str(), &message);
    ASSERT_TRUE(reader) << message;
    const auto builder = std::make_unique<RecordBuilder>();
    CaptureFrame frame;
    while (reader->Next(&frame) == ReadResult::kFrame && !HasFailure()) check(builder->Build(frame));
  }
};

// Lends the definitions, so that payloads reach the decoders of their ports, and the names of objects.
struct NamingHost : DefinitionsHost {
  NamingHost() {
    host.findMibEntry = [](void*, const char* dotted, QxMibEntry* out) -> int32_t {
      static const MibDatabase mib;
      return mib.Find(dotted, out);
    };
  }
};

Bytes FrameOf(const FrameRecord* record) { return Bytes(FrameData(record), FrameData(record) + record->capturedLength); }

TEST_P(Samples, DecodeAtEveryLength) {
  NamingHost host;
  TestView view(&host);
  ForEachRecord([&](const FrameRecord* record) {
    const Bytes frame = FrameOf(record);
    for (size_t length = 0; length <= frame.size(); ++length) {
      Record cut(Bytes(frame.begin(), frame.begin() + static_cast<ptrdiff_t>(length)));
      cut->rawSkip = record->rawSkip;
      cut->rawEthertype = record->rawEthertype;
      view.Decode(cut);
    }
  });
}

TEST_P(Samples, DecodeWithDamagedBytes) {
  NamingHost host;
  TestView view(&host);
  uint32_t random = 12345;
  ForEachRecord([&](const FrameRecord* record) {
    const Bytes frame = FrameOf(record);
    for (int round = 0; round < 60; ++round) {
      Bytes damaged = frame;
      for (int change = 0; change <= round % 4; ++change) {
        random = random * 1664525 + 1013904223;
        constexpr uint8_t kValues[] = {0x00, 0x01, 0x7F, 0x80, 0xFF, 0xC0, 0x3F, 0x45};
        damaged[(random >> 8) % damaged.size()] = kValues[random >> 29];
      }
      view.Decode(damaged);
    }
  });
}

TEST_P(Samples, PrintAsManyLinesAsTheyShowAndAllocateNothing) {
  NamingHost host;
  TestView view(&host);
  Engine* engine = view.view().engine;
  ForEachRecord([&](const FrameRecord* record) {
    ClearDecodeTree(&view.view(), &view.tree(), true);
    DecodeFrame(&view.view(), record, 0, 0, 0);
    const uint32_t shown = view.context().rangeCount;
    view.context().outputMode = kPrintMode;
    engine->textLinesWritten = 0;
    const uint64_t before = CountAllocations();
    DecodeFrame(&view.view(), record, 0, 0, 0);
    EXPECT_EQ(CountAllocations(), before);
    view.context().outputMode = kDisplayMode;
    EXPECT_EQ(engine->textLinesWritten, shown) << view.Text();
  });
}

#ifdef _WIN32
TEST_P(Samples, ShowTheSameInATreeControl) {
  TestView arena, control(nullptr, TreeKind::kControl);
  ForEachRecord([&](const FrameRecord* record) {
    for (TestView* view : {&arena, &control}) {
      ClearDecodeTree(&view->view(), &view->tree(), true);
      DecodeFrame(&view->view(), record, 0, 0, 0);
    }
    EXPECT_EQ(control.Text(true), arena.Text(true));
  });
}
#endif

INSTANTIATE_TEST_SUITE_P(All, Samples, ::testing::ValuesIn(kSamples), [](const auto& info) {
  std::string name = info.param;
  std::erase(name, '-');
  return name;
});

}  // namespace
}  // namespace qxview::testing
