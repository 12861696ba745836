// Calls of the exported functions in any order. Each: the function (1), its arguments as far as it has some. Pointers are
// null, or lead to so many bytes as are told and no more; sizes may say less than that, never more, for so it is promised.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <vector>

#include "files/capture_buffer.h"
#include "fuzz/input.h"
#include "fuzz/stations.h"
#include "fuzz/targets.h"
#include "qxview/qxview.h"

namespace qxview::fuzz {
namespace {

constexpr size_t kLongest = 16000, kMostViews = 3, kMostMade = 8, kMostCalls = 60;

// A program around the library: what it holds, and what the input makes it do.
class Program {
 public:
  explicit Program(Input& input) : input_(input) {}
  ~Program() {
    for (void* view : views_) QxView_DestroyView(view);
    QxView_CloseCapture(capture_);
    if (file_ >= 0) close(file_);
  }

  void Call();

 private:
  using Summary = int32_t (*)(const uint8_t*, int32_t, char*, int32_t);

  // Bytes of the input in an allocation of their size; at times null.
  struct Argument {
    std::unique_ptr<ExactBytes> bytes;
    uint8_t* data() const { return bytes ? bytes->data() : nullptr; }
    int32_t size() const { return bytes ? static_cast<int32_t>(bytes->size()) : 0; }
  };
  Argument Bytes() {
    const uint32_t size = input_.U8();
    if (size == 255) return {};
    return {std::make_unique<ExactBytes>(input_.Take(size == 254 ? input_.U16() : size))};
  }
  // Room for an output, of a size that is often too small.
  Argument Room() {
    const uint32_t size = input_.U8();
    if (size == 255) return {};
    return {std::make_unique<ExactBytes>(size == 254 ? 1024 : size)};
  }
  // A length up to what is there, at times negative.
  int32_t Length(const Argument& argument) {
    const uint32_t choice = input_.U8();
    if (choice == 255) return -1;
    if (choice == 254) return INT32_MIN;
    return choice < 200 ? argument.size() : argument.size() / 2;
  }
  // The text of an argument, terminated.
  std::string Text() { return std::string(input_.Text()); }
  void*& AView() { return views_[input_.U8() % kMostViews]; }
  uintptr_t Line(void* view) {
    const uint32_t which = input_.U8();
    if (which < 128) return which;   // none, one of the first, or one that is not there
    uintptr_t line = QxView_FirstLine(view);
    for (uint32_t i = which & 15; i > 0 && line; --i) line = QxView_NextLine(view, line);
    return which & 64 ? QxView_FirstChild(view, line) : line;
  }
  void CheckText(const Argument& room, int32_t given) {
    if (!room.data() || given < 1) return;
    Expect(std::memchr(room.data(), 0, static_cast<size_t>(given)) != nullptr, "a text that is given is terminated");
  }

  void MakeView();
  void Decode(uint32_t way);
  void AskLine(uint32_t way);
  void Summarize(uint32_t way);
  void Describe(uint32_t way);
  void OpenFile();
  void Save();
  void Names(uint32_t way);

  Input& input_;
  void* views_[kMostViews] = {};
  void* capture_ = nullptr;
  int file_ = -1;
  size_t made_ = 0;
};

void Program::MakeView() {
  if (++made_ > kMostMade) return;   // each reads all definitions
  void*& view = AView();
  QxView_DestroyView(view);
  const uint32_t way = input_.U8();
  QxHost host{};
  host.size = way & 4 ? static_cast<uint32_t>(sizeof host) : input_.U8();
  static QxHost lent;   // outlives the view
  lent = host;
  const std::string settings = way & 2 ? "" : Text();
  QxViewOptions options{};
  options.size = way & 8 ? input_.U8() % (sizeof options + 1) : sizeof options;
  options.host = way & 1 ? &lent : nullptr;
  options.settings = settings.c_str();
  if (!(way & 16)) options.message = [](void*, int32_t, const char* text) { Expect(text && *text, "a message says something"); };
  // Settings name files: none of this machine's.
  view = settings.find("ibrary") == std::string::npos && settings.find("xternal") == std::string::npos &&
                 settings.find("ile") == std::string::npos && settings.find("ib") == std::string::npos &&
                 settings.find("og") == std::string::npos && options.size >= offsetof(QxViewOptions, message)
             ? QxView_CreateViewWith(&options)
             : nullptr;
  if (view) QxView_KeepKeys(view, way & 32);
}

void Program::Decode(uint32_t way) {
  void* view = AView();
  if (way == 0) {
    const int32_t medium = static_cast<int8_t>(input_.U8());
    const Argument frame = Bytes();
    QxView_DecodeBytes(view, medium, frame.data(), Length(frame), input_.U16(), input_.U32());
  } else if (way == 1) {
    const auto linkType = static_cast<uint16_t>(input_.U16());
    const Argument frame = Bytes();
    QxView_DecodeLinkType(view, linkType, frame.data(), Length(frame), input_.U16(), -1);
  } else {
    // A record whose header may say anything, in as many bytes as it says it has.
    const Argument header = Bytes();
    FrameRecord record{};
    if (header.data()) std::memcpy(&record, header.data(), std::min<size_t>(sizeof record, static_cast<size_t>(header.size())));
    const size_t size = std::max<size_t>(record.recordLength, kBareRecordHeader);
    const ExactBytes exact(size);
    std::memcpy(exact.data(), &record, std::min(size, sizeof record));
    const Piece rest = input_.Take(size > sizeof record ? size - sizeof record : 0);
    if (rest.size) std::memcpy(exact.data() + sizeof record, rest.data, rest.size);
    QxView_DecodeFrame(view, header.data() ? exact.data() : nullptr, input_.U8(), input_.U8(), static_cast<int8_t>(input_.U8()));
  }
}

void Program::AskLine(uint32_t way) {
  void* view = AView();
  if (way == 0) {
    QxPacketLine line{};
    line.size = input_.U8() & 1 ? sizeof line : input_.U8() % (sizeof line + 1);
    QxView_PacketLine(view, input_.U8() == 255 ? nullptr : &line);
    return;
  }
  if (way == 1) {
    struct Visited {
      uint32_t most;
      int32_t seen;
    } visited{input_.U8(), 0};
    const auto visit = [](void* user, const QxLineInfo* line) -> int32_t {
      auto& told = *static_cast<Visited*>(user);
      Expect(line->text[line->textLength] == 0, "a visited line's text is terminated");
      Expect(!line->key == !line->value, "a key comes with a value");
      return ++told.seen > static_cast<int32_t>(told.most) ? 1 : 0;
    };
    const int32_t shown = QxView_VisitLines(view, visited.most == 0 ? QxLineVisitor{} : QxLineVisitor{visit}, &visited);
    if (shown >= 0) Expect(shown == visited.seen, "every visited line is counted");
    return;
  }
  const uintptr_t line = view ? Line(view) : input_.U8();
  const Argument room = Room();
  const int32_t size = Length(room);
  if (way == 2) QxView_LineText(view, line, reinterpret_cast<char*>(room.data()), size), CheckText(room, size);
  if (way == 3) QxView_LineTextUtf8(view, line, reinterpret_cast<char*>(room.data()), size), CheckText(room, size);
  if (way == 4) QxView_LineKey(view, line, reinterpret_cast<char*>(room.data()), size), CheckText(room, size);
  int32_t offset, kind;
  uint32_t length;
  if (way == 5) QxView_LineRange(view, line, size < 0 ? nullptr : &offset, &length, room.data() ? &kind : nullptr);
  if (way == 6) QxView_LineImage(view, line);
  QxValue value{};
  value.size = size < 0 ? 0 : sizeof value;
  if (way == 7) QxView_LineValue(view, line, room.data() ? &value : nullptr);
}

// Those of one shape.
void Program::Summarize(uint32_t way) {
  static constexpr Summary kSummaries[] = {
      GetPOP3Description,  GetTNSDescription,          GetRTCPDescription,       GetRTSPDescription,      GetSCCPDescription,
      GetMegacoH248Description, GetLDAPDescription,    GetH323HostCallDescription, GetH245Description,    GetCGPDescription,
      GetIAX2Description,  GetBitTorrentDescription,   GetCiscoWIDSDescription,  GetLpdLprDescription,
      GetUNIStimDescriptionPublicDecode};
  const Argument data = Bytes(), room = Room();
  const int32_t size = Length(room);
  kSummaries[way % std::size(kSummaries)](data.data(), Length(data), reinterpret_cast<char*>(room.data()), size);
  CheckText(room, size);
}

// The others.
void Program::Describe(uint32_t way) {
  const Argument data = Bytes(), room = Room();
  const uint8_t* bytes = data.data();
  char* out = reinterpret_cast<char*>(room.data());
  const int32_t length = Length(data), size = Length(room);
  const auto number = static_cast<int32_t>(static_cast<int8_t>(input_.U8()));
  TextBuffer buffer{static_cast<uint16_t>(room.size()), out};
  TextBuffer* summary = number == -1 ? nullptr : &buffer;
  int32_t pending = static_cast<int32_t>(input_.U16());
  const RtpMedia media[2] = {{96, "opus", 48000}, {97, nullptr, 0}};
  const RtpStream stream{2, media};
  bool gives = way % 18 != 0 && way % 18 != 9 && way % 18 != 14;   // into `out`; those give a summary
  switch (way % 18) {
    case 0: GetDNSDescription(bytes, length, summary, number & 1 ? 6 : 17, static_cast<uint16_t>(pending), number); break;
    case 1: GetHTTPDescription(bytes, length, out, size, number); break;
    case 2: GetSSLTLSDescription(bytes, length, out, size, number, number == -1 ? nullptr : &pending); break;
    case 3: GetFTPDescription(bytes, length, out, size, number, pending & 1); break;
    case 4: GetSMTPDescription(bytes, length, out, size, number); break;
    case 5: GetTelnetDescription(bytes, length, out, size, number, pending - 5, pending & 1); break;
    case 6: GetTDSDescription(bytes, length, out, size, number); break;
    case 7: GetRTPDescription(bytes, length, number & 1 ? &stream : nullptr, pending, out, size); break;
    case 8: GetSIPDescription(bytes, length, out, size, number); break;
    case 9: GetMGCPDescription(bytes, length, summary); break;
    case 10: GetSNMPDescription(nullptr, bytes, length, out, size); break;
    case 11: GetH323GatekeeperDescription(bytes, length, out, size, number); break;
    case 12: GetSMBDescription(bytes, length, out, size, number & 1, number & 2); break;
    case 13: GetFixDescription(bytes, length, out, static_cast<uint16_t>(size < 0 ? 0 : size)); break;
    case 14: GetGIOPDescription(bytes, length, summary); break;
    case 15: GetMinetDescription(bytes, length, out, size, number); break;
    case 16: Expect(GetRtpCodecDescription(number) != nullptr, "a codec has a name, if an empty one"); gives = false; break;
    default: {
      uint32_t identifier;
      uint16_t subType, zero;
      DynamicRecord record;
      const DetectionSettings settings{static_cast<uint32_t>(number), 0x400, 0};
      DetermineDynamicUDPPrototol(pending & 1 ? &settings : nullptr, static_cast<uint16_t>(pending), 5000, bytes, length,
                                  pending & 2 ? &identifier : nullptr, pending & 4 ? &subType : nullptr, &zero,
                                  pending & 8 ? &record : nullptr);
      gives = false;
    }
  }
  if (gives) CheckText(room, size);
  Expect(!out || room.size() == 0 || gives || out[room.size() - 1] == 0, "a summary is terminated");
}

// A capture in memory, opened by its name.
void Program::OpenFile() {
  QxView_CloseCapture(capture_);
  capture_ = nullptr;
  const Argument bytes = Bytes();
  if (!bytes.data()) {
    capture_ = QxView_OpenCapture(nullptr);
    return;
  }
  if (file_ >= 0) close(file_);
  file_ = memfd_create("capture", 0);
  const auto size = static_cast<size_t>(bytes.size());
  Expect(file_ >= 0 && write(file_, bytes.data(), size) == static_cast<ssize_t>(size), "a file in memory");
  capture_ = QxView_OpenCapture(("/proc/self/fd/" + std::to_string(file_)).c_str());
  Expect(capture_ || *QxView_LastError(), "a capture that is refused is told why");
}

void Program::Save() {
  struct Buffer {
    uint64_t count;
    ExactBytes record{200};
    uint32_t lies;
  } buffer{input_.U8(), ExactBytes(200), input_.U8()};
  const Argument head = Bytes();
  if (head.data()) std::memcpy(buffer.record.data(), head.data(), std::min<size_t>(200, static_cast<size_t>(head.size())));
  auto* record = reinterpret_cast<FrameRecord*>(buffer.record.data());
  if (record->recordLength > 200) record->recordLength = 200;   // so much of it is readable, the host promises
  QxHost host{};
  host.size = sizeof host;
  host.user = &buffer;
  host.captureBufferState = [](void* user, QxCaptureBufferState* out) -> int32_t {
    out->packetCount = static_cast<Buffer*>(user)->count;
    return static_cast<Buffer*>(user)->lies == 1 ? 0 : 1;
  };
  host.lendPacket = [](void* user, uint64_t) -> const void* {
    return static_cast<Buffer*>(user)->lies == 2 ? nullptr : static_cast<Buffer*>(user)->record.data();
  };
  const int file = memfd_create("saved", 0);
  const Argument earlier = Bytes();
  if (earlier.size() && write(file, earlier.data(), static_cast<size_t>(earlier.size())) >= 0) lseek(file, 0, SEEK_SET);
  const std::string name = Text();
  QxSaveRecord save{};
  save.size = input_.U8() == 255 ? 8 : sizeof save;
  save.append = input_.U8() & 1;
  save.file = file;
  save.firstPacket = input_.U8();
  save.lastPacket = input_.U8();
  save.firstNumber = input_.U32();
  save.savePartial = input_.U8() & 1;
  save.partialBytes = static_cast<uint16_t>(input_.U16());
  save.source = input_.U8() % 4;
  save.headerByte = input_.U16();
  save.name = input_.U8() & 1 ? nullptr : name.c_str();
  uint32_t decompressed;
  const uint64_t packets[3] = {1, 7, UINT64_MAX};
  const int32_t result = input_.U8() & 1 ? SaveCaptureBuffer(&host, &save, &decompressed)
                                         : QxView_SavePackets(&host, &save, packets, 3, nullptr);
  Expect(SaveResultMessage(result).text || result == 2 || result == 4 || result >= 1, "a save's result is one that is told");
  close(file);
}

void Program::Names(uint32_t way) {
  const Argument bytes = Bytes();
  if (way == 0) {
    GetQxViewVersion();
    NameTableEntry rows[3] = {{1, "one"}, {2, "two"}, {7, "seven"}};
    GetNameDescriptorPlus(rows, input_.U8(), static_cast<int32_t>(input_.U8() % 4), "none");
    GetNameDescriptorPlus(nullptr, 1, 0, nullptr);
  } else if (way == 1) {
    PseudoHead(bytes.size() >= 20 ? bytes.data() : nullptr);
    CalculateIPv6PseudoChecksum(bytes.size() >= 40 ? bytes.data() : nullptr);
  } else {
    AddressSlot slot;
    uint16_t port;
    AddDynamicFtpDataPort(reinterpret_cast<const char*>(bytes.data()), Length(bytes), way & 1 ? nullptr : &slot, &port);
  }
}

void Program::Call() {
  const uint32_t call = input_.U8();
  QxPacket packet{};
  packet.size = call & 1 ? sizeof packet : call;
  static constexpr char kModes[] = {QXVIEW_DISPLAY, QXVIEW_PRINT, QXVIEW_SAVE, QXVIEW_LIST, 'x', 0};
  switch (call % 24) {
    case 0: case 1: return MakeView();
    case 2: case 3: case 4: return Decode(0);
    case 5: return Decode(1);
    case 6: return Decode(2);
    case 7: return Summarize(input_.U8());
    case 8: return Describe(input_.U8());
    case 9: return OpenFile();
    case 10: {
      QxView_NextPacket(capture_, &packet);
      if (packet.record && packet.size == sizeof packet) QxView_DecodeFrame(AView(), packet.record, 0, 0, 0);
      QxView_CapturePercent(capture_);
      return;
    }
    case 11: return Save();
    case 12: return Names(input_.U8() % 4);
    case 13: {
      static const int sink = open("/dev/null", O_WRONLY);
      QxView_SetOutput(AView(), kModes[input_.U8() % std::size(kModes)], input_.U8() & 1 ? sink : -1);
      return;
    }
    case 14: QxView_KeepKeys(AView(), static_cast<int32_t>(input_.U8() & 1)); return;
    case 15: ClearDecodeLists(AView()); return;
    case 16: GetCurrentPacketNumber(AView()); return;
    case 17: {
      void*& view = AView();
      QxView_DestroyView(view);
      view = nullptr;
      return;
    }
    case 18: {
      void* view = AView();
      CreateViewWindow(view, nullptr, 0, 0, 0, 0);
      CorrectView(view);
      SetFocusOnDecodeList(view);
      Expect(QxView_LastError() != nullptr, "the last error is a text");
      return;
    }
    case 19: {
      const Argument room = Room();
      char* out = reinterpret_cast<char*>(room.data());
      DisplaySaveBufferDialog(nullptr, 0, out, room.size());
      GetLoadBufferFileName(nullptr, 1, out, room.size());
      QxView_OpenCaptureFileDlg(nullptr, 0, out, room.size());
      return;
    }
    default: return AskLine(input_.U8() % 8);
  }
}

}  // namespace

void RunExports(const uint8_t* data, size_t size) {
  if (size > kLongest) return;
  Input input(data, size);
  Program program(input);
  for (size_t calls = 0; calls < kMostCalls && input.Left(); ++calls) program.Call();
}

}  // namespace qxview::fuzz
