// The exported functions as a host calls them that is careless or hostile: null, tiny and contradicting arguments, buffers that
// lie, files that cannot be written; and the packets behind a view's window, which any host may lend.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "exports/view_packets.h"
#include "files/capture_buffer.h"
#include "tests/support/samples.h"
#include "tests/support/transport.h"

namespace qxview::testing {
namespace {

std::string LastError() { return QxView_LastError(); }

// A capture buffer that is lent, and what a view of it was told.
struct Lender {
  QxHost host{};
  std::vector<std::vector<uint8_t>> records;
  std::vector<std::string> messages;
  std::string settings;   // "Name=value", lines of them
  int32_t requests = 0;
  bool isGone = false, knowsState = true;
  std::vector<uint8_t> element;

  explicit Lender(uint32_t size = sizeof(QxHost)) {
    host.size = size;
    host.user = this;
    host.captureBufferState = [](void* user, QxCaptureBufferState* out) -> int32_t {
      out->packetCount = Of(user).records.size();
      return Of(user).knowsState;
    };
    host.lendPacket = [](void* user, uint64_t number) -> const void* {
      Lender& self = Of(user);
      return self.isGone || number < 1 || number > self.records.size() ? nullptr : self.records[number - 1].data();
    };
    host.viewRequest = [](void* user, const QxViewRequest* request) -> int32_t { return request ? ++Of(user).requests, 1 : 1; };
    host.optionalElement = [](void* user) -> const uint8_t* {
      return Of(user).element.empty() ? nullptr : Of(user).element.data();
    };
    host.decompressedPackets = [](void*) -> uint32_t { return 3; };
  }
  static Lender& Of(void* user) { return *static_cast<Lender*>(user); }

  void Add(const FrameRecord* record) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(record);
    records.emplace_back(bytes, bytes + record->recordLength);
  }
  void AddSample(const char* name) {
    for (const std::string& sample : Samples()) {
      if (sample == name) ForEachRecord(sample, [this](const FrameRecord* record) { Add(record); });
    }
    ASSERT_FALSE(records.empty()) << name;
  }
  // A view of it, which tells this.
  void* View(const char* own = nullptr) {
    QxViewOptions options{};
    options.size = sizeof options;
    options.host = &host;
    options.settings = own;
    options.messageUser = this;
    options.message = [](void* user, int32_t, const char* text) { Of(user).messages.emplace_back(text); };
    return QxView_CreateViewWith(&options);
  }
};

struct Closed {
  void operator()(void* view) const { QxView_DestroyView(view); }
};
using OwnedView = std::unique_ptr<void, Closed>;

PrintChoice EveryPart(const std::string& numbers) {
  PrintChoice choice{{}, {true, true, true}, "a title", {80, 40}};
  std::string wrong;
  EXPECT_TRUE(numbers.empty() || choice.packets.Parse(numbers, &wrong)) << wrong;
  return choice;
}

TEST(ExportedView, ListsShowsAndPrintsWhatIsLent) {
  Lender lender;
  lender.AddSample("dns");
  const OwnedView view(lender.View("[View]\nIgnoreChecksums=1\n"));
  ASSERT_TRUE(view) << LastError();
  ViewPackets packets(ViewOf(view.get()));
  const uint64_t count = packets.Count();
  ASSERT_EQ(count, lender.records.size());
  EXPECT_EQ(packets.Lend(0), nullptr);
  EXPECT_EQ(packets.Lend(count + 1), nullptr);
  std::string wrong;
  EXPECT_FALSE(packets.SaveText("/dev/null", &wrong));
  EXPECT_EQ(wrong, "there is no packet");
  ListedPacket listed;
  EXPECT_FALSE(packets.Describe(count + 1, &listed));
  ASSERT_TRUE(packets.Describe(1, &listed));
  EXPECT_NE(listed.summary.find("DNS"), std::string::npos) << listed.summary;
  EXPECT_FALSE(packets.Show(0));
  ASSERT_TRUE(packets.Show(2));
  EXPECT_TRUE(packets.Ask(nullptr));
  const QxViewRequest request{};
  EXPECT_TRUE(packets.Ask(&request));
  EXPECT_EQ(lender.requests, 1);

  // The shown packet's lines in a file, and in no file.
  EXPECT_FALSE(packets.SaveText("/nowhere/at/all", &wrong));
  EXPECT_NE(wrong.find("/nowhere/at/all"), std::string::npos) << wrong;
  const std::string path = ::testing::TempDir() + "/qxview_exported_view.txt";
  ASSERT_TRUE(packets.SaveText(path, &wrong)) << wrong;
  std::ifstream file(path);
  const std::string saved((std::istreambuf_iterator<char>(file)), {});
  EXPECT_NE(saved.find("Packet 2:"), std::string::npos);
  std::remove(path.c_str());
  EXPECT_NE(QxView_FirstLine(view.get()), 0u) << "the lines are shown again";

  // Pages of some, of all in parts, of none, and of those that somebody has enough of.
  size_t rows = 0;
  const auto pages = [&](const PrintChoice& choice, int32_t step, int64_t most) {
    int64_t put = 0;
    rows = 0;
    const auto run = packets.StartPages(choice, [&](const Page& page) {
      rows += page.rows.size();
      return ++put < most;
    });
    while (run->Advance(step)) EXPECT_LE(run->Looked(), count);
    EXPECT_FALSE(run->Advance(step)) << "it has ended";
    return put;
  };
  EXPECT_GT(pages(EveryPart(""), 1000, INT64_MAX), 3);
  const size_t all = rows;
  EXPECT_GT(pages(EveryPart("2,4-5"), 1, INT64_MAX), 1);
  EXPECT_LT(rows, all);
  EXPECT_EQ(pages(EveryPart(""), 1, 1), 1) << "it was ended";
  PrintChoice list = EveryPart("");
  list.parts = {false, true, false};
  EXPECT_GE(pages(list, 7, INT64_MAX), 1);
  EXPECT_GE(rows, count);
  EXPECT_EQ(pages(EveryPart("99999"), 1000, INT64_MAX), 1) << "that there are none is said on a page";
  lender.isGone = true;
  EXPECT_EQ(pages(EveryPart(""), 1000, INT64_MAX), 1);
}

TEST(ExportedView, TimesOfPagesAreThoseOfThePackets) {
  Lender lender;
  for (const int64_t time : {int64_t{5'000'000'000}, int64_t{0}, int64_t{4'000'000'001}, INT64_MIN, INT64_MAX}) {
    Record record(Ethernet(0x0800, IPv4(17, Udp(9, 9, {}))));
    record->nanoseconds = time;
    lender.Add(record.get());
  }
  const OwnedView view(lender.View());
  ASSERT_TRUE(view);
  ViewPackets packets(ViewOf(view.get()));
  std::vector<std::string> heads;
  std::string text;
  for (const char* number : {"1", "2", "3", "4", "5"}) {
    PrintChoice choice = EveryPart(number);
    choice.parts = {false, true, false};
    const auto run = packets.StartPages(choice, [&](const Page& page) {
      heads.push_back(page.time);
      for (const PageRow& row : page.rows) text += row.text + "\n";
      return true;
    });
    while (run->Advance(100)) {}
  }
  EXPECT_EQ(heads, (std::vector<std::string>{"1970-01-01 00:00:05.000000 UTC", "", "1970-01-01 00:00:04.000000001 UTC",
                                             "1677-09-21 00:12:43.145224192 UTC", "2262-04-11 23:47:16.854775807 UTC"}));
  EXPECT_NE(text.find("-5.000000"), std::string::npos) << text;
  EXPECT_NE(text.find("-0.999999999"), std::string::npos) << text;
}

TEST(ExportedView, HoldsWhateverTheHostSays) {
  // Hosts without those functions, of an older record, that answer with nothing.
  Lender old(offsetof(QxHost, captureBufferState)), lying;
  lying.AddSample("dns");
  FrameRecord* const record = reinterpret_cast<FrameRecord*>(lying.records[0].data());
  record->capturedLength = 0xFFFF;   // more than the record has
  const OwnedView ofOld(old.View()), ofLying(lying.View());
  ASSERT_TRUE(ofOld && ofLying);
  ViewPackets none(ViewOf(ofOld.get())), lies(ViewOf(ofLying.get()));
  EXPECT_EQ(none.Count(), 0u);
  EXPECT_EQ(none.Lend(1), nullptr);
  EXPECT_FALSE(none.Ask(nullptr));
  EXPECT_EQ(lies.Lend(1), nullptr) << "its lengths contradict each other";
  EXPECT_FALSE(lies.Show(1));
  EXPECT_TRUE(lies.Show(2));
  lying.knowsState = false;
  EXPECT_EQ(lies.Count(), 0u);
}

TEST(ExportedView, SaysWhatIsWrong) {
  Lender lender;
  lender.AddSample("dns");
  const OwnedView owned(lender.View());
  void* const view = owned.get();
  ASSERT_TRUE(view);
  const uint8_t byte = 0;
  const struct {
    int64_t got;
    const char* said;
    std::string error = LastError();
  } kFaults[] = {
      {QxView_DecodeFrame(nullptr, &byte, 0, 0, 0), "there is no view"},
      {QxView_DecodeFrame(view, nullptr, 0, 0, 0), "there is no record"},
      {QxView_DecodeFrame(view, std::vector<uint8_t>(64).data(), 0, 0, 0), "the record's lengths contradict each other"},
      {QxView_DecodeBytes(nullptr, 0, &byte, 1, 1, 0), "there is no view"},
      {QxView_DecodeBytes(view, 0, &byte, -1, 1, 0), "the length is negative"},
      {QxView_DecodeBytes(view, 0, nullptr, 1, 1, 0), "there are no bytes"},
      {QxView_DecodeLinkType(nullptr, 1, &byte, 1, 1, 0), "there is no view"},
      {QxView_SetOutput(nullptr, QXVIEW_PRINT, 1), "there is no view"},
      {QxView_SetOutput(view, 'x', 1), "there is no such output mode"},
      {QxView_KeepKeys(nullptr, 1), "there is no view"},
      {QxView_VisitLines(nullptr, nullptr, nullptr) + 1, "there is no view"},
      {QxView_VisitLines(view, nullptr, nullptr) + 1, "there is no visitor"},
      {QxView_LineTextUtf8(view, 99999, nullptr, 0) + 1, "there is no such line"},
      {QxView_PacketLine(nullptr, nullptr), "there is no view"},
      {QxView_PacketLine(view, nullptr), "no packet has been decoded"},
      {QxView_NextPacket(nullptr, nullptr) + 1, "there is no capture"},
      {QxView_OpenCapture(nullptr) != nullptr, "there is no path"},
  };
  for (const auto& fault : kFaults) {
    EXPECT_EQ(fault.got, 0) << fault.said;
    EXPECT_EQ(fault.error, fault.said);
  }
  // Nothing is asked of no view and of no line.
  EXPECT_EQ(QxView_FirstLine(nullptr) + QxView_NextLine(nullptr, 1) + QxView_NextLine(view, 0) + QxView_FirstChild(view, 0), 0u);
  EXPECT_EQ(QxView_LineImage(nullptr, 1) + QxView_CapturePercent(nullptr), -2);
  EXPECT_EQ(GetCurrentPacketNumber(nullptr), -1);
  EXPECT_EQ(CorrectView(nullptr) + SetFocusOnDecodeList(nullptr) + CorrectView(view) + SetFocusOnDecodeList(view), 0);
  EXPECT_EQ(CreateViewWindow(nullptr, nullptr, 0, 0, 0, 0), nullptr);
  ClearDecodeLists(nullptr);
  QxView_DestroyView(nullptr);
  QxView_CloseCapture(nullptr);
}

TEST(ExportedView, GivesTextsWithinTheirRoom) {
  Lender lender;
  const OwnedView owned(lender.View());
  void* const view = owned.get();
  ASSERT_TRUE(QxView_KeepKeys(view, 1));
  const Bytes frame = Ethernet(0x0800, IPv4(17, Udp(9, 53, Hex("1234 0100 0001 0000 0000 0000 01 E9 00 0001 0001"))));
  ASSERT_EQ(QxView_DecodeBytes(view, 0, frame.data(), static_cast<int32_t>(frame.size()), 0, 0), 1);
  char text[600], key[200];
  int32_t lines = 0, withKeys = 0;
  std::vector<uintptr_t> open{QxView_FirstLine(view)};
  while (!open.empty()) {
    const uintptr_t line = open.back();
    open.pop_back();
    if (!line) continue;
    open.push_back(QxView_NextLine(view, line));
    open.push_back(QxView_FirstChild(view, line));
    ++lines;
    const int32_t whole = QxView_LineTextUtf8(view, line, text, sizeof text), keyLength = QxView_LineKey(view, line, key, sizeof key);
    EXPECT_EQ(QxView_LineTextUtf8(view, line, nullptr, 0), whole);
    EXPECT_EQ(QxView_LineKey(view, line, nullptr, 0), keyLength);
    for (const int32_t room : {-1, 0, 1, 2, 7}) {
      char small[8], smallKey[8];
      std::memset(small, 'x', sizeof small);
      std::memset(smallKey, 'x', sizeof smallKey);
      QxView_LineTextUtf8(view, line, small, room);
      QxView_LineKey(view, line, smallKey, room);
      for (const auto& out : {small, smallKey}) {
        EXPECT_TRUE(room <= 0 || std::memchr(out, 0, static_cast<size_t>(room)));
        EXPECT_EQ(out[room > 0 ? room : 0], 'x') << "behind the room";
      }
      QxView_LineText(view, line, small, room);
    }
    QxValue value{};
    value.size = sizeof value;
    const int32_t hasValue = QxView_LineValue(view, line, &value);
    EXPECT_EQ(hasValue != 0, keyLength > 0) << text;
    if (keyLength > 0) ++withKeys;
    EXPECT_EQ(QxView_LineValue(view, line, nullptr), 0);
    EXPECT_EQ(QxView_LineRange(view, line, nullptr, nullptr, nullptr), 1);
  }
  EXPECT_GT(withKeys, 20);
  EXPECT_LT(withKeys, lines) << "lines of bytes have none";
  const auto third = [](void* seen, const QxLineInfo*) -> int32_t { return ++*static_cast<int32_t*>(seen) == 3; };
  int32_t seen = 0;
  EXPECT_EQ(QxView_VisitLines(view, third, &seen), 3);
  seen = -1000000;
  EXPECT_EQ(QxView_VisitLines(view, third, &seen), lines);
  for (const uint32_t size : {0u, 8u, 16u, static_cast<uint32_t>(sizeof(QxPacketLine))}) {
    QxPacketLine line{};
    line.size = size;
    EXPECT_EQ(QxView_PacketLine(view, &line), size >= 16) << size;
  }
}

TEST(ExportedView, TellsWhatIsNotAsItWasAsked) {
  Lender lender;
  lender.host.readSetting = [](void*, const char* name, char* out, int32_t size) -> int32_t {
    const char* value = !std::strcmp(name, "CustomLibrary0")   ? "/nowhere/library.so"
                        : !std::strcmp(name, "CustomLibrary1") ? "/nowhere/other.so"
                        : !std::strcmp(name, "TlsKeyLog")      ? "/nowhere/keys.log"
                        : !std::strcmp(name, "TypeOfServiceMode")  ? "many"
                                                               : nullptr;
    if (value) std::snprintf(out, static_cast<size_t>(size), "%s", value);
    return value != nullptr;
  };
  const OwnedView view(lender.View());
  ASSERT_TRUE(view) << LastError();
  const auto told = [&](const char* words) {
    size_t count = 0;
    for (const std::string& message : lender.messages) count += message.find(words) != std::string::npos;
    return count;
  };
  EXPECT_EQ(told("2 of 2 user libraries are not loaded"), 1u);
  EXPECT_EQ(told("/nowhere/keys.log"), 1u);
  EXPECT_EQ(told("no numbers and keep their defaults"), 1u);
  // A link type is told of once, a frame that is cut each time.
  const Bytes frame(70000, 'x');
  for (int i = 0; i < 2; ++i) {
    for (const uint16_t linkType : {uint16_t{9999}, uint16_t{9998}}) QxView_DecodeLinkType(view.get(), linkType, frame.data(), 60, 0, 0);
    QxView_DecodeBytes(view.get(), 300, frame.data(), static_cast<int32_t>(frame.size()), 0, 0);
    QxView_DecodeBytes(view.get(), -7, frame.data(), 60, 0, 0);
  }
  EXPECT_EQ(told("link type 9999"), 1u);
  EXPECT_EQ(told("link type 9998"), 1u);
  EXPECT_EQ(told("was cut"), 2u);
  // Output that cannot be written.
  const int full = open("/dev/full", O_WRONLY);
  ASSERT_GE(full, 0);
  EXPECT_EQ(QxView_SetOutput(view.get(), QXVIEW_PRINT, full), 1);
  for (int i = 0; i < 100; ++i) QxView_DecodeBytes(view.get(), 0, frame.data(), 1500, 0, 0);
  EXPECT_EQ(QxView_SetOutput(view.get(), QXVIEW_DISPLAY, -1), 0);
  EXPECT_EQ(LastError(), "an earlier write to the file did not succeed");
  close(full);
  EXPECT_EQ(QxView_SetOutput(view.get(), QXVIEW_LIST, -1), 1);
  // Settings of one's own that are wrong, with somebody to tell and without.
  Lender other;
  EXPECT_EQ(other.View("[View]\nNoSuchSetting\n"), nullptr);
  EXPECT_EQ(other.messages, std::vector<std::string>{LastError()});
  QxViewOptions options{};
  options.size = sizeof options;
  options.settings = "Reassembly";
  EXPECT_EQ(QxView_CreateViewWith(&options), nullptr);
  EXPECT_FALSE(LastError().empty());
}

TEST(ExportedCapture, ReadsWhatItIsGiven) {
  EXPECT_EQ(QxView_OpenCapture("/nowhere/at/all"), nullptr);
  EXPECT_NE(LastError().find("/nowhere/at/all"), std::string::npos) << LastError();
  const std::string path = ::testing::TempDir() + "/qxview_exported_capture.pcap";
  {
    std::ofstream file(path, std::ios::binary);
    const Bytes head = Hex("D4C3B2A1 0200 0400 00000000 00000000 FFFF0000 01000000");
    const Bytes packet = Hex("01000000 00000000 04000000 04000000 01020304"), cut = Hex("01000000 00000000 FFFFFFFF 04000000 01");
    for (const Bytes& part : {head, packet, packet, cut}) {
      file.write(reinterpret_cast<const char*>(part.data()), static_cast<std::streamsize>(part.size()));
    }
  }
  void* const capture = QxView_OpenCapture(path.c_str());
  ASSERT_TRUE(capture) << LastError();
  QxPacket packet{};
  EXPECT_EQ(QxView_NextPacket(capture, &packet), -1) << "its size is not set";
  EXPECT_EQ(QxView_NextPacket(capture, nullptr), -1);
  for (const uint32_t size : {16u, static_cast<uint32_t>(sizeof packet)}) {
    packet.size = size;
    EXPECT_EQ(QxView_NextPacket(capture, &packet), 1);
  }
  EXPECT_EQ(packet.capturedLength, 4u);
  EXPECT_EQ(QxView_NextPacket(capture, &packet), -1) << "damaged";
  EXPECT_FALSE(LastError().empty());
  EXPECT_GE(QxView_CapturePercent(capture), 0);
  QxView_CloseCapture(capture);
  std::remove(path.c_str());
}

TEST(ExportedSave, WritesWhatIsLentAndSaysWhatIsNot) {
  Lender lender;
  lender.AddSample("dns");
  lender.element = Hex("0900 0800 61626364");
  const std::string path = ::testing::TempDir() + "/qxview_exported_save.bfr";
  uint32_t decompressed = 9;
  const auto save = [&](const std::function<void(QxSaveRecord&)>& change, const QxHost* host,
                        const std::vector<uint64_t>& numbers = {}) {
    const int file = open(path.c_str(), O_RDWR | O_CREAT, 0600);
    QxSaveRecord record{};
    record.size = sizeof record;
    record.file = file;
    record.firstPacket = 1;
    record.lastPacket = lender.records.size();
    record.name = "a name";
    change(record);
    const auto count = static_cast<int32_t>(numbers.size());
    const int32_t result = count == 0 ? SaveCaptureBuffer(host, &record, &decompressed)
                                      : QxView_SavePackets(host, &record, numbers.data(), count, nullptr);
    close(file);
    return result;
  };
  const auto asItIs = [](QxSaveRecord&) {};
  EXPECT_EQ(save(asItIs, &lender.host), kSaved);
  EXPECT_EQ(decompressed, 3u);
  EXPECT_EQ(save([](QxSaveRecord& record) { record.useOptionalElement = 1; }, &lender.host), kSaved);
  EXPECT_EQ(save([](QxSaveRecord& record) { record.append = 1; record.useOptionalElement = 1; }, &lender.host, {2, 1}), kSaved);
  EXPECT_EQ(save([](QxSaveRecord& record) { record.firstPacket = 5, record.lastPacket = 1; }, &lender.host), kNoPackets);
  EXPECT_EQ(save([](QxSaveRecord& record) { record.firstPacket = 0, record.lastPacket = UINT64_MAX; }, &lender.host), kCaptureBusy);
  EXPECT_EQ(save([](QxSaveRecord& record) { record.size = 8; }, &lender.host), kCaptureBusy);
  EXPECT_EQ(save(asItIs, &lender.host, {1, 99999}), kCaptureBusy);
  EXPECT_EQ(SaveCaptureBuffer(&lender.host, nullptr, nullptr), kCaptureBusy);
  EXPECT_EQ(SaveCaptureBuffer(nullptr, nullptr, nullptr), kCaptureBusy);
  const Lender old(offsetof(QxHost, lendPacket)), without(offsetof(QxHost, captureBufferState));
  EXPECT_EQ(save(asItIs, &old.host), kCaptureBusy);
  EXPECT_EQ(save(asItIs, &without.host), kCaptureBusy);
  lender.knowsState = false;
  EXPECT_EQ(save(asItIs, &lender.host), kCaptureBusy);
  lender.knowsState = true;
  lender.records.clear();
  EXPECT_EQ(save([](QxSaveRecord& record) { record.lastPacket = 1; }, &lender.host), kNoPackets);
  std::remove(path.c_str());
  // Nobody is asked and told where there is no desktop, and a good save is told only on wish.
  char name[20] = "";
  EXPECT_EQ(DisplaySaveBufferDialog(nullptr, 1, nullptr, 0) + DisplaySaveBufferDialog(nullptr, 0, name, 0) +
                QxView_OpenCaptureFileDlg(nullptr, 0, name, sizeof name),
            0);
  QxSaveRecord record{};
  record.size = sizeof record;
  EXPECT_EQ(DisplaySaveBufferResultMsg(nullptr, &record, 12345, 0), 0) << "no such result";
  EXPECT_EQ(DisplaySaveBufferResultMsg(nullptr, &record, kSaved, 5), 0);
  EXPECT_EQ(DisplaySaveBufferResultMsg(nullptr, nullptr, kSaved, 5), 0);
  ::testing::internal::CaptureStderr();
  for (const char* fileName : {static_cast<const char*>(nullptr), "a file"}) {
    record.fileName = fileName;
    EXPECT_EQ(DisplaySaveBufferResultMsg(nullptr, &record, kCaptureBusy, 0), 1);
  }
  EXPECT_NE(::testing::internal::GetCapturedStderr().find("a file: "), std::string::npos);
}

}  // namespace
}  // namespace qxview::testing
