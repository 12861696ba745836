// The stand-alone host as decoders and programs ask it: what is missing in a question is answered with nothing.
#include <fstream>

#include "host/key_log.h"
#include "host/session.h"
#include "host/standalone_host.h"
#include "host/text_file.h"
#include "tests/support/decoding.h"
#include "tests/support/samples.h"

namespace qxview::testing {
namespace {

std::unique_ptr<StandaloneHost> HostWith(const std::string& settings, std::string* message) {
  HostOptions options;
  options.settingsText = settings;
  bool fileFault;
  return StandaloneHost::Create(options, message, &fileFault);
}

TEST(HostRecord, AnswersWhateverItIsAsked) {
  std::string message;
  const auto standalone = HostWith("[View]\nTypeOfServiceMode = 2\n[Protocols]\ntcp:10.0.0.1:80=DNS\n", &message);
  ASSERT_TRUE(standalone) << message;
  const QxHost& host = *standalone->Record();
  void* const user = host.user;
  char out[4] = "xxx";
  EXPECT_EQ(host.readSetting(user, "TypeOfServiceMode", nullptr, 4) + host.readSetting(user, "TypeOfServiceMode", out, 0) +
                host.readSetting(user, "none", out, 4),
            0);
  EXPECT_EQ(host.readSetting(user, "TypeOfServiceMode", out, 1), 1);
  EXPECT_STREQ(out, "");
  EXPECT_EQ(host.findMibEntry(user, nullptr, nullptr) + host.findMibEntry(user, "1.3", nullptr), 0);
  for (const int32_t identifier : {0, -1, 1, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(host.protocolDisplayName(user, identifier, nullptr, 9) + host.protocolDisplayName(user, identifier, out, 0), 0);
    host.protocolDisplayName(user, identifier, out, sizeof out);
    EXPECT_EQ(out[3], 0);
  }
  const AddressSlot end{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10, 0, 0, 1}, kIPv4Kind};
  int32_t identifier = 0;
  for (const int32_t which : {-1, 0, 1, 2, 3, 4, 99, INT32_MAX}) {
    void* const table = host.definitionTable(user, which);
    host.lockTable(user, table);
    host.hashFind(user, table, 80, nullptr);
    host.hashFind(user, table, 80, &identifier);
    EXPECT_EQ(host.hashFindGenericIPPort(user, table, nullptr, 80, &identifier), 0);
    const int32_t found = host.hashFindGenericIPPort(user, table, &end, 80, nullptr);
    EXPECT_EQ(host.hashFindGenericIPPort(user, table, &end, 80, &identifier), found);
    EXPECT_EQ(found != 0, which == QX_TCP_ADDRESSES) << which;
    host.unlockTable(user, table);
  }
  for (const uint32_t transport : {0u, 4u, 0xFFFFFFFFu}) {
    host.learn(user, transport, identifier, nullptr, 80, -1, -1, nullptr);
    host.learn(user, transport, -5, &end, 80, -1, -1, nullptr);
  }
  EXPECT_EQ(standalone->Definitions().CountLearnt(QX_OVER_TCP), 0u);
  standalone->FinishPacket();   // of no session
}

TEST(HostRecord, KeepsSegmentsWhereADecoderMayAskForThem) {
  for (const auto& [sample, kept] : {std::pair{"smb", false}, {"http-gzip", true}}) {
    std::string message;
    const auto standalone = HostWith("", &message);
    const auto session = Session::Create(standalone->Record(), {});
    ASSERT_TRUE(session);
    standalone->Attach(session.get());
    ForEachRecord(sample, [&](const FrameRecord* record) {
      session->Pass(record);
      session->ReadHeaders(record);   // as for a summary
      standalone->FinishPacket();
    });
    EXPECT_EQ(standalone->History().MemoryUsed() > 0, kept) << sample;
    standalone->Attach(nullptr);
  }
}

TEST(HostRecord, NamesWhatIsWrongAndWhere) {
  const struct {
    const char *settings, *said;
  } kFaults[] = {
      {"Reassembly = 1\n", "the settings, line 1: \"Reassembly = 1\" stands in front of the first section"},
      {"[View\n", "line 1: the section \"[View\" has no closing bracket"},
      {"[Else]\n", "line 1: there is no section \"Else\", only View and Protocols"},
      {"[View]\n\n; a remark\nReassembly\n", "line 4: \"Reassembly\" is not Name = Value"},
      {"[View]\nReassembly = many\n", "line 2: Reassembly wants a number"},
      {"[View]\nExternalDecoderPort = 70000\n", "line 2: ExternalDecoderPort is at most"},
      {"[View]\nReasembly = 1\n", "line 2: there is no setting \"Reasembly\""},
      {"[Protocols]\ntcp:=DNS\n", "the settings, line 2: "},
  };
  for (const auto& fault : kFaults) {
    std::string message;
    EXPECT_EQ(HostWith(fault.settings, &message), nullptr) << fault.settings;
    EXPECT_NE(message.find(fault.said), std::string::npos) << message;
  }
  std::string message;
  const std::string longValue = "[View]\nTlsKeyLog = " + std::string(5000, 'x') + "\n";
  EXPECT_EQ(HostWith(longValue, &message), nullptr);
  EXPECT_NE(message.find("TlsKeyLog has at most"), std::string::npos) << message;
  TestView view;
  EXPECT_FALSE(ReadKeyLog(&view.view(), "/nowhere/at/all", &message));
  EXPECT_NE(message.find("/nowhere/at/all: this key log cannot be read: "), std::string::npos) << message;
  std::istringstream text;
  EXPECT_FALSE(ReadTextFile("/nowhere/at/all", &text, &message));
  // A line that comes in pieces is as long as they are, and one without an end is one.
  KeyLog log(&view.view());
  for (int i = 0; i < 10; ++i) log.Take(std::string(1000, 'x'));
  log.Take("\n# a remark\n");
  log.Take("CLIENT_RANDOM 00");
  const std::string wrong = log.Finish();
  EXPECT_NE(wrong.find("line 1 is longer than 4096 bytes"), std::string::npos) << wrong;
}

}  // namespace
}  // namespace qxview::testing
