#include "tests/support/decoding.h"

#include <cstring>
#include <cstdlib>

#include "core/output_file.h"
#include "platform/platform.h"

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// Every allocation of the program is counted: the test program's malloc family stands in front of the library's.
namespace {
thread_local uint64_t allocations = 0;
}
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* held, size_t size);
void* malloc(size_t size) {
  ++allocations;
  return __libc_malloc(size);
}
void* calloc(size_t count, size_t size) {
  ++allocations;
  return __libc_calloc(count, size);
}
void* realloc(void* held, size_t size) {
  ++allocations;
  return __libc_realloc(held, size);
}
}
#else
namespace {
constexpr uint64_t allocations = 0;   // the sanitizer's allocator, or another system's, is left alone
}
#endif

namespace qxview::testing {

uint64_t CountAllocations() { return allocations; }

Bytes Hex(const std::string& text) {
  Bytes bytes;
  int high = -1;
  bool comment = false;
  for (const char c : text) {
    if (c == '#') comment = true;
    if (c == '\n') comment = false;
    if (comment || !std::isxdigit(static_cast<unsigned char>(c))) continue;
    const int digit = std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : (c | 0x20) - 'a' + 10;
    if (high < 0) {
      high = digit;
    } else {
      bytes.push_back(static_cast<uint8_t>(high << 4 | digit));
      high = -1;
    }
  }
  EXPECT_LT(high, 0) << "an odd number of digits: " << text;
  return bytes;
}

Bytes operator+(const Bytes& a, const Bytes& b) {
  Bytes joined = a;
  joined.insert(joined.end(), b.begin(), b.end());
  return joined;
}

Bytes Repeat(const Bytes& bytes, size_t times) {
  Bytes repeated;
  for (size_t i = 0; i < times; ++i) repeated.insert(repeated.end(), bytes.begin(), bytes.end());
  return repeated;
}

Bytes Ethernet(uint16_t ethertype, const Bytes& payload) {
  Bytes header = Hex("02 00 00 00 00 01  02 00 00 00 00 02");
  header.push_back(static_cast<uint8_t>(ethertype >> 8));
  header.push_back(static_cast<uint8_t>(ethertype));
  return header + payload;
}

Bytes IPv4(uint8_t protocol, const Bytes& payload) {
  Bytes header = Hex("45 00 00 00 00 01 40 00 40 00 00 00 0A 00 00 01 0A 00 00 02");
  const size_t total = header.size() + payload.size();
  header[2] = static_cast<uint8_t>(total >> 8);
  header[3] = static_cast<uint8_t>(total);
  header[9] = protocol;
  uint32_t sum = 0;
  for (size_t i = 0; i < header.size(); i += 2) sum += ReadU16(header.data() + i);
  while (sum > 0xFFFF) sum = (sum & 0xFFFF) + (sum >> 16);
  header[10] = static_cast<uint8_t>(~sum >> 8);
  header[11] = static_cast<uint8_t>(~sum);
  return header + payload;
}

Bytes IPv6(uint8_t nextHeader, const Bytes& payload) {
  Bytes header = Hex("60 00 00 00 00 00 00 40  FE80 0000 0000 0000 0000 0000 0000 0001  FF02 0000 0000 0000 0000 "
                     "0000 0000 0002");
  header[4] = static_cast<uint8_t>(payload.size() >> 8);
  header[5] = static_cast<uint8_t>(payload.size());
  header[6] = nextHeader;
  return header + payload;
}

Bytes Udp(uint16_t sourcePort, uint16_t destinationPort, const Bytes& payload) {
  const size_t length = payload.size() + 8;
  const uint16_t words[] = {sourcePort, destinationPort, static_cast<uint16_t>(length), 0};
  Bytes header;
  for (const uint16_t word : words) {
    header.push_back(static_cast<uint8_t>(word >> 8));
    header.push_back(static_cast<uint8_t>(word));
  }
  return header + payload;
}

Record::Record(const Bytes& frame, uint8_t mediaType, uint16_t tag, const Bytes& extension)
    : bytes_(sizeof(FrameRecord) + (tag ? 4 + extension.size() : 0) + frame.size()) {
  FrameRecord* record = get();
  record->capturedLength = static_cast<uint16_t>(frame.size());
  record->dataOffset = static_cast<uint16_t>(bytes_.size() - frame.size());
  if (tag) {
    const uint16_t head[] = {tag, static_cast<uint16_t>(4 + extension.size())};
    std::memcpy(bytes_.data() + kRecordHeader, head, sizeof head);
    std::copy(extension.begin(), extension.end(), bytes_.begin() + kRecordHeader + 4);
  }
  record->recordLength = static_cast<uint16_t>(bytes_.size());
  record->mediaType = mediaType;
  record->layout = 1;
  record->packetNumber = 1;
  record->wireLength = static_cast<uint32_t>(frame.size());
  std::copy(frame.begin(), frame.end(), bytes_.begin() + record->dataOffset);
}

TestHost::TestHost() {
  host.size = sizeof host;
  host.user = this;
  host.readSetting = [](void* user, const char* name, char* out, int32_t outSize) -> int32_t {
    for (const auto& [key, value] : static_cast<TestHost*>(user)->settings) {
      if (key == name) return CopyBounded(out, outSize, value.c_str(), static_cast<int32_t>(value.size())) ? 1 : 0;
    }
    return 0;
  };
}

TestView::TestView(TestHost* host, TreeKind kind)
    : ownHost_(host ? nullptr : new TestHost), host_(host ? host : ownHost_.get()), tree_(kind) {}

View& TestView::view() {
  if (!view_.context) {
    view_.context = CreateDecodeContext();
    view_.tree = &tree();
    if (!loader.loadCrypto) loader.loadCrypto = PlatformLibraryLoader().loadCrypto;
    if (!loader.find) loader.find = PlatformLibraryLoader().find;
    view_.engine = CreateEngine(&host_->host, loader, 1);
    view_.expansionMask = 1;
    view_.selectionPath[0] = -1;
  }
  return view_;
}

TestView::~TestView() {
  DestroyDecodeContext(view_.context);
  DestroyEngine(view_.engine);
}

int32_t TestView::Decode(const Bytes& frame, uint8_t mediaType) {
  Record record(frame, mediaType);
  return Decode(record);
}

int32_t TestView::Decode(Record& record, int32_t skipBytes) {
  ClearDecodeTree(&view(), &tree(), true);
  return DecodeFrame(&view(), record.get(), 0, 0, skipBytes);
}

int32_t TestView::Run(DecoderFunction decode, const Bytes& bytes, int32_t level) {
  // A heap copy of the exact size: a read past the end is the sanitizer's.
  const std::unique_ptr<uint8_t[]> exact(new uint8_t[bytes.size() + 1 - (bytes.empty() ? 0 : 1)]);
  if (!bytes.empty()) std::memcpy(exact.get(), bytes.data(), bytes.size());
  Record record({}, 0);
  View& v = view();
  ClearDecodeTree(&v, &tree(), true);
  v.context->packet = PacketState{};
  v.context->packet.frame = record.get();
  BeginLines(v.context->packet, static_cast<int32_t>(bytes.size()));
  const int32_t result = decode(TopLevel(&v, level), MakeCursor(exact.get(), 0, static_cast<int32_t>(bytes.size())));
  v.context->packet.frame = nullptr;
  return result;
}

std::string TestView::Text(bool dumps) const {
  std::string out;
  const std::function<void(LineHandle, int)> add = [&](LineHandle parent, int depth) {
    for (LineHandle line = tree_->FirstChild(parent); line; line = tree_->NextSibling(line)) {
      const ByteRange range = RangeInFrame(view_.context, view_.context->rangeTable[tree_->RangeIndex(line)]);
      const bool dump = tree_->Image(line) == kBitFieldImage && RangeKind(range) == kRawDataKind;
      if (!dump || dumps) {
        out += std::string(static_cast<size_t>(2 * depth), ' ') + tree_.Text(line) + " {";
        if (RangeKind(range) != 0) out += std::to_string(RangeKind(range)) + ":";
        out += std::to_string(RangeOffset(range)) + "+" + std::to_string(RangeLength(range)) + "}\n";
      }
      add(line, depth + 1);
    }
  };
  add(0, 0);
  return out;
}

namespace {

int32_t AppendToString(void* handle, const char* bytes, int32_t length) {
  static_cast<std::string*>(handle)->append(bytes, static_cast<size_t>(length));
  return 1;
}
int32_t CutString(void* handle, int64_t bytes) {
  auto* text = static_cast<std::string*>(handle);
  text->resize(text->size() - static_cast<size_t>(bytes));
  return 1;
}

}  // namespace

std::string TestView::Printed(const Bytes& frame, char mode, uint8_t mediaType) {
  std::string out;
  auto file = std::make_unique<OutputFile>();
  OpenOutput(file.get(), {&out, AppendToString, CutString, -1});
  Record record(frame, mediaType);
  View& v = view();
  v.context->outputMode = mode;
  v.context->outputFile = file.get();
  DecodeFrame(&v, record.get(), 0, 0, 0);
  FlushOutput(file.get());
  v.context->outputFile = nullptr;
  v.context->outputMode = kDisplayMode;
  return out;
}

std::string TreeOf(const Bytes& frame, uint8_t mediaType) {
  TestView view;
  view.Decode(frame, mediaType);
  return view.Text();
}

std::string TreeOf(Record record) {
  TestView view;
  view.Decode(record);
  return view.Text();
}

void ExpectInOrder(const std::string& tree, const std::vector<std::string>& texts) {
  size_t from = 0;
  for (const std::string& text : texts) {
    const size_t found = tree.find(text, from);
    ASSERT_NE(found, std::string::npos) << "no \"" << text << "\" from its place on in\n" << tree;
    from = found + text.size();
  }
}

std::string TreeOfRun(DecoderFunction decode, const Bytes& bytes, int32_t level) {
  TestView view;
  view.Run(decode, bytes, level);
  return view.Text();
}

}  // namespace qxview::testing
