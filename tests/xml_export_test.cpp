#include "files/xml_export.h"

#include <gtest/gtest.h>

#include "files/record_builder.h"
#include "tests/capture_bytes.h"

namespace qxview {
namespace {

// Times before 1971 are half an hour behind UTC here, later ones two hours ahead of it.
int64_t ZoneOffset(int64_t utcSeconds) { return utcSeconds < 31536000 ? -1800 : 7200; }

class XmlExportTest : public testing::Test {
 protected:
  static int32_t Take(void* test, const char* bytes, int32_t length) {
    auto* self = static_cast<XmlExportTest*>(test);
    if (self->text_.size() + static_cast<size_t>(length) > self->room_) return 0;
    self->text_.append(bytes, static_cast<size_t>(length));
    return 1;
  }
  void AddFrame(uint64_t number, int64_t nanoseconds, uint16_t linkType, const Bytes& data, uint32_t wire,
                uint32_t errors = 0) {
    CaptureFrame frame{};
    frame.linkType = linkType;
    frame.nanoseconds = nanoseconds;
    frame.data = data.data();
    frame.dataLength = frame.capturedLength = static_cast<uint32_t>(data.size());
    frame.wireLength = wire;
    frame.receiveErrors = errors;
    document_->AddFrame(number, builder_->Build(frame));
  }

  std::string text_;
  size_t room_ = SIZE_MAX;
  std::unique_ptr<RecordBuilder> builder_ = std::make_unique<RecordBuilder>();
  std::unique_ptr<XmlExport> document_ =
      std::make_unique<XmlExport>(OutputSink{this, Take, nullptr, 0}, ZoneOffset);
};

constexpr char kHead[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\"?>\r\n"
    "<VantrellPacketCapture version=\"9.0\">\r\n"
    " <PacketCapture>\r\n"
    "  <Packets>\r\n";

TEST_F(XmlExportTest, WritesTheWholeDocument) {
  constexpr int64_t kTime = 1763167958LL * 1000000000 + 7250000999;   // Sat Nov 15 2025 00:52:45.250000 UTC
  document_->Begin();
  AddFrame(3, kTime, 1, {0x00, 0xFF, 0x0A}, 60, kReceiveCrc | kReceiveAlignment);
  document_->AddAnalysis(4, -1, "a<b", "\"c\" & \xE4");
  AddFrame(9, kTime + 79200LL * 1000000000, 6, {}, 0, kReceiveOther);
  const uint8_t hardware[6] = {0, 0x1B, 0x21, 0xAA, 0xBB, 0xCC};
  const XmlAlias aliases[] = {{hardware, nullptr, nullptr, "printer", "2nd \xC3\xA9tage"},
                              {nullptr, "10.0.0.1", nullptr, "gate\twa\x01y", nullptr},
                              {nullptr, nullptr, "2001:db8::1", "archive", nullptr}};
  EXPECT_TRUE(document_->Finish(aliases, 3, 100000000));
  EXPECT_EQ(text_, std::string(kHead) +
      "   <Packet Number=\"3\" Type=\"Alignment+CRC\" Date=\"Sat Nov 15 2025\" Day=\"20407\" Time=\"2h:52m 45.250000s\" "
      "Mks=\"1763175165250000\" FrameSize=\"60\" CapturedSize=\"3\" NetworkType=\"Ethernet\" RawPacket=\"00FF0A\"/>\r\n"
      "   <Packet Number=\"4\" Type=\"ExpertPacket\" Date=\"Wed Dec 31 1969\" Day=\"18446744073709551615\" "
      "Time=\"23h:29m 59.999999s\" Mks=\"18446744071909551615\" Src=\"a&lt;b\" Dst=\"&quot;c&quot; &amp; &#228;\" >\r\n"
      "   </Packet>\r\n"
      "   <Packet Number=\"9\" Type=\"Data Error\" Date=\"Sun Nov 16 2025\" Day=\"20408\" Time=\"0h:52m 45.250000s\" "
      "Mks=\"1763254365250000\" FrameSize=\"0\" CapturedSize=\"0\" NetworkType=\"TokenRing\" RawPacket=\"\"/>\r\n"
      "  </Packets>\r\n"
      "  <Summary>\r\n"
      "   <SummaryData Packets=\"3\" FirstPacket=\"3\" LastPacket=\"9\" NetworkType=\"Ethernet\" "
      "NetworkSpeed=\"100000000\" />\r\n"
      "  </Summary>\r\n"
      "  <AliasList>\r\n"
      "   <Entry Number=\"1\" Addr=\"00:1B:21:AA:BB:CC\" Alias=\"printer\" Comment=\"2nd \xC3\xA9tage\" />\r\n"
      "   <Entry Number=\"2\" IP=\"10.0.0.1\" Alias=\"gate&#9;wa?y\" />\r\n"
      "   <Entry Number=\"3\" IPv6=\"2001:db8::1\" Alias=\"archive\" />\r\n"
      "  </AliasList>\r\n"
      " </PacketCapture>\r\n"
      "</VantrellPacketCapture>\r\n");
}

TEST_F(XmlExportTest, WritesADocumentWithoutPackets) {
  document_->Begin();
  EXPECT_TRUE(document_->Finish(nullptr, 0, 0));
  EXPECT_EQ(text_, std::string(kHead) +
      "  </Packets>\r\n"
      "  <Summary>\r\n"
      "   <SummaryData Packets=\"0\" FirstPacket=\"0\" LastPacket=\"0\" NetworkType=\"Ethernet\" NetworkSpeed=\"0\" />\r\n"
      "  </Summary>\r\n"
      "  <AliasList>\r\n"
      "  </AliasList>\r\n"
      " </PacketCapture>\r\n"
      "</VantrellPacketCapture>\r\n");
}

TEST_F(XmlExportTest, KeepsTheSizesOfCutFramesAndTheBytesOfRadioHeaders) {
  AddFrame(1, 0, 1, Bytes(64, 0xA5), 1514);
  // A radio header of 8 bytes in front of an acknowledgement: the document has both, as they were captured.
  const Bytes radio = {0, 0, 8, 0, 0, 0, 0, 0, 0xD4, 0, 0, 0, 1, 2, 3, 4, 5, 6};
  AddFrame(2, 0, 127, radio, 18);
  document_->Finish(nullptr, 0, 0);
  std::string digits;
  for (int i = 0; i < 64; ++i) digits += "A5";
  EXPECT_NE(text_.find("FrameSize=\"1514\" CapturedSize=\"64\" NetworkType=\"Ethernet\" RawPacket=\"" + digits + "\"/>"),
            std::string::npos);
  EXPECT_NE(text_.find("FrameSize=\"18\" CapturedSize=\"18\" NetworkType=\"Ethernet\" "
                       "RawPacket=\"0000080000000000D40000000102030405" "06\"/>"), std::string::npos) << text_;
}

TEST_F(XmlExportTest, NamesTheStatusByTheFirstErrorThatCounts) {
  const std::pair<uint32_t, const char*> cases[] = {
      {0, "Normal"}, {0x03, "Alignment+CRC"}, {0x01, "Alignment"}, {0x06, "CRC"}, {0x0C, "Frame Too Small"},
      {0x48, "Frame Too Big"}, {0xC0, "Abort Error"}, {0x90, "RBit Error"}, {0x100, "Data Error"}};
  std::string expected;
  for (const auto& [errors, name] : cases) AddFrame(1, 0, 1, {}, 0, errors);
  document_->Finish(nullptr, 0, 0);
  size_t at = 0;
  for (const auto& [errors, name] : cases) {
    at = text_.find("Type=\"", text_.find("<Packet ", at));
    EXPECT_EQ(text_.compare(at, std::strlen(name) + 8, "Type=\"" + std::string(name) + "\" "), 0) << errors;
  }
}

TEST_F(XmlExportTest, TellsAWriteThatFails) {
  room_ = 100000;
  document_->Begin();
  for (int i = 0; i < 100 && !document_->Failed(); ++i) AddFrame(1, 0, 1, Bytes(5000), 5000);
  EXPECT_TRUE(document_->Failed());
  EXPECT_FALSE(document_->Finish(nullptr, 0, 0));
}

}  // namespace
}  // namespace qxview
