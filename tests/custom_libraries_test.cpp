#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include "files/record_builder.h"
#include "platform/platform.h"
#include "tests/support/decoding.h"

namespace qxview::testing {
namespace {

// Libraries are built beside the tests: QXVIEW_PLUGIN_DIR holds recorder_a (takes 0xAA), recorder_b (takes 0xBB) and
// lamp_decoder (the sample).
const std::string kDirectory = QXVIEW_PLUGIN_DIR;

void SetVariable(const char* name, const char* value) {
#ifdef _WIN32
  _putenv_s(name, value);
#else
  setenv(name, value, 1);
#endif
}

class CustomLibraryHooks : public ::testing::Test {
 protected:
  void SetUp() override {
    host_.host.applicationDirectory = [](void*, char* out, int32_t outSize) -> int32_t {
      return CopyString(out, outSize, kDirectory.c_str()) ? 1 : 0;
    };
    offers_ = ::testing::TempDir() + "qxview_offers";
    std::remove(offers_.c_str());
    SetVariable("QXVIEW_TEST_OFFERS", offers_.c_str());
  }
  void Load(std::vector<std::pair<std::string, std::string>> settings) {
    host_.settings = std::move(settings);
    view_ = std::make_unique<TestView>(&host_);
    view_->loader = PlatformLibraryLoader();
    view_->view();
  }
  std::string Offers() {
    std::ifstream file(offers_);
    std::stringstream all;
    all << file.rdbuf();
    file.close();
    std::remove(offers_.c_str());
    return all.str();
  }
  TestHost host_;
  std::string offers_;
  std::unique_ptr<TestView> view_;
};

TEST_F(CustomLibraryHooks, FirstInLoadOrderThatAcceptsTakesTheFrame) {
  Load({{"CustomLibrary0", "recorder_a" QXVIEW_PLUGIN_SUFFIX}, {"CustomLibrary1", "missing.so"}, {"CustomLibrary2", "recorder_b" QXVIEW_PLUGIN_SUFFIX}});
  EXPECT_EQ(view_->view().engine->libraries.count, 2) << "a failed load leaves no gap and does not end the loading";
  const Bytes rest(59);
  EXPECT_EQ(view_->Decode(Hex("AA") + rest), 1);
  EXPECT_EQ(view_->Text(), "taken by a {5+3}\n");
  EXPECT_EQ(Offers(), "a CustomDecodeFrame 60 0\n");
  view_->Decode(Hex("BB") + rest);
  EXPECT_EQ(view_->Text(), "taken by b {5+3}\n");
  EXPECT_EQ(Offers(), "a CustomDecodeFrame 60 100\nb CustomDecodeFrame 60 100\n") << "word 3 is kept on acceptance alone";
  view_->Decode(Hex("CC") + rest);
  EXPECT_EQ(view_->Text().find("Packet 1:"), 0u);
  EXPECT_EQ(Offers(), "a CustomDecodeFrame 60 200\nb CustomDecodeFrame 60 200\n");
}

TEST_F(CustomLibraryHooks, DamagedAndShortFramesAreNotOffered) {
  Load({{"CustomLibrary0", "recorder_a" QXVIEW_PLUGIN_SUFFIX}});
  for (const uint32_t errors : {kReceiveAlignment, kReceiveCrc}) {
    Record record(Hex("AA") + Bytes(59));
    record->receiveErrors = errors;
    view_->Decode(record);
  }
  view_->Decode(Hex("AA 00 00"));
  EXPECT_EQ(Offers(), "");
  Record record(Hex("AA") + Bytes(59));
  record->receiveErrors = kReceiveTooBig;
  view_->Decode(record);
  EXPECT_EQ(Offers(), "a CustomDecodeFrame 60 0\n");
}

TEST_F(CustomLibraryHooks, EveryMediumHasItsEntryPoint) {
  Load({{"CustomLibrary0", "recorder_a" QXVIEW_PLUGIN_SUFFIX}});
  const char* offers[] = {"a CustomDecodeFrame 9 0\n",  // Ethernet
                          "a CustomDecodeFrame 9 0\n",  // Token Ring
                          "a CustomDecodeFrame 9 0\n",  // FDDI
                          "a CustomDecodeFrameWan 9 0\n",
                          "",  // WAN frames that are not offered
                          "", "", "", "", "a CustomDecodeFrameWireless 9 0\n"};
  for (uint8_t medium = 0; medium < 10; ++medium) {
    view_->Decode(Hex("01") + Bytes(8), medium);
    EXPECT_EQ(Offers(), offers[medium]) << int{medium};
  }
  view_->Decode(Hex("AA") + Bytes(8), 9);
  EXPECT_EQ(view_->Text(), "") << "a frame that was taken gets no lines";
}

TEST_F(CustomLibraryHooks, WanFramesAreOfferedWithTheirDirection) {
  Load({{"CustomLibrary0", "recorder_a" QXVIEW_PLUGIN_SUFFIX}});
  const auto offer = [&](uint16_t linkType, const Bytes& bytes, LinkDirection told) {
    CaptureFrame frame{};
    frame.linkType = linkType;
    frame.data = bytes.data();
    frame.capturedLength = frame.dataLength = frame.wireLength = static_cast<uint32_t>(bytes.size());
    frame.direction = told;
    static RecordBuilder builder;
    view_->view().tree->Clear();
    DecodeFrame(&view_->view(), builder.Build(frame), 0, 0, 0);
    return Offers().substr(22);
  };
  const Bytes lcp = Hex("FF03 C021 01 01 0004"), received = Hex("00") + lcp, sent = Hex("01") + lcp;
  EXPECT_EQ(offer(50, lcp, LinkDirection::kUnknown), " 8 0\n");
  EXPECT_EQ(offer(50, lcp, LinkDirection::kReceived), "[1,0] 8 0\n");
  for (const uint16_t linkType : {204, 205, 206}) {
    EXPECT_EQ(offer(linkType, received, LinkDirection::kUnknown), "[1,0] 8 0\n") << linkType;
    EXPECT_EQ(offer(linkType, sent, LinkDirection::kUnknown), "[2,0] 8 0\n") << linkType;
    EXPECT_EQ(offer(linkType, {}, LinkDirection::kUnknown), " 0 0\n") << linkType;
  }
  offer(204, sent, LinkDirection::kUnknown);
  ExpectInOrder(view_->Text(), {"Frame type:  PPP {0+8}", "Frame network size: 8", "DTE -> DCE Link 0", "Protocol = LCP"});
  Record record(lcp, 3);   // told in the record's header alone
  record->direction = 2;
  record->linkNumber = 7;
  view_->Decode(record);
  EXPECT_EQ(Offers(), "a CustomDecodeFrameWan[2,7] 8 0\n");
}

TEST_F(CustomLibraryHooks, ScanStopsAtTheFirstMissingValue) {
  Load({{"CustomLibrary0", "recorder_a" QXVIEW_PLUGIN_SUFFIX}, {"CustomLibrary2", "recorder_b" QXVIEW_PLUGIN_SUFFIX}});
  EXPECT_EQ(view_->view().engine->libraries.count, 1);
}

TEST_F(CustomLibraryHooks, NamesAreTakenWholeAndInsideTheirFolder) {
  static std::vector<std::string> asked;
  asked.clear();
  const std::string longest(127, 'a');
  LibraryLoader loader = PlatformLibraryLoader();
  loader.load = [](const char* path) -> void* { return asked.push_back(path), nullptr; };
  const std::string alone = loader.isPath("x:lamp.so") ? "lamp.so" : "x:lamp.so";
  host_.settings = {{"CustomLibrary0", alone}, {"CustomLibrary1", longest + "a"}, {"CustomLibrary2", longest},
                    {"CustomLibrary3", "/lamp.so"}, {"ExternalDecoder", longest + "a"}};
  for (const char* folder : {kDirectory.c_str(), "."}) {
    TestView view(&host_);
    view.loader = loader;
    view.view();
    EXPECT_EQ(asked, (std::vector<std::string>{std::string(folder) + "/" + alone, std::string(folder) + "/" + longest,
                                               "/lamp.so"}));
    asked.clear();
    host_.host.applicationDirectory = nullptr;
  }
}

// Fills what the next call will have as its stack.
[[gnu::noinline]] void DirtyStack() {
  volatile char bytes[16384];
  for (volatile char& each : bytes) each = 'x';
}

TEST(ExternalDecoderSetting, IsReadWhateverTheStackHeld) {
  const SettingsSource source{nullptr, [](void*, const char* name, char* out, int32_t outSize) {
    if (std::strcmp(name, "ExternalDecoder") != 0) return 0;
    std::snprintf(out, static_cast<size_t>(outSize), "short.so");
    return 1;
  }};
  Settings settings;
  DirtyStack();
  ReadSettings(&settings, source);
  EXPECT_STREQ(settings.externalDecoder, "short.so");
}

TEST_F(CustomLibraryHooks, RangeTableGrownByALibraryIsTheModules) {
  Load({{"CustomLibrary0", "recorder_a" QXVIEW_PLUGIN_SUFFIX}});
  const Bytes frame = Hex("AA") + Bytes(59);
  Record record(frame);
  for (int i = 0; i < 600; ++i) DecodeFrame(&view_->view(), record.get(), 0, 0, 0);   // no clear between them
  EXPECT_EQ(view_->context().rangeCount, 600u);
  EXPECT_EQ(view_->context().rangeCapacity, 1024u);
}

TEST_F(CustomLibraryHooks, SampleShowsItsLinesInEveryMode) {
  Load({{"CustomLibrary0", "lamp_decoder" QXVIEW_PLUGIN_SUFFIX}});
  const Bytes frame = Ethernet(0x88B5, Hex("4C414D50 01 07 0032") + Bytes(38));
  view_->Decode(frame);
  EXPECT_EQ(view_->Text(),
            "LAMP: Lamp Control Message {14+8}\n"
            "  Version: 1 {18+1}\n"
            "  Lamp: 7 {19+1}\n"
            "  Brightness: 50 % {20+2}\n");
  const std::string text = "LAMP: Lamp Control Message\r\n    Version: 1\r\n    Lamp: 7\r\n    Brightness: 50 %\r\n";
  EXPECT_EQ(view_->Printed(frame, kPrintMode), text);
  EXPECT_EQ(view_->Printed(frame, kSaveMode), text);
  CopyString(view_->context().findText, sizeof view_->context().findText, "Bright");
  view_->context().findLineIndex = -1;
  view_->Printed(frame, kFindMode);
  EXPECT_STREQ(view_->context().findLine, "Brightness: 50 %");
  EXPECT_EQ(view_->context().findLineIndex, 3);
}

}  // namespace
}  // namespace qxview::testing
