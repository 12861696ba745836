#include "tests/support/samples.h"

#include <algorithm>
#include <filesystem>

#include "files/capture_reader.h"
#include "files/record_builder.h"
#include "host/mib_database.h"

namespace qxview::testing {

std::vector<std::string> Samples() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(QXVIEW_SAMPLES_DIR)) {
    if (entry.path().extension() == ".pcap") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

void ForEachRecord(const std::string& sample, const std::function<void(const FrameRecord*)>& check) {
  std::string message;
  const auto reader = OpenCapture((QXVIEW_SAMPLES_DIR "/" + sample + ".pcap").c_str(), &message);
  ASSERT_TRUE(reader) << message;
  const auto builder = std::make_unique<RecordBuilder>();
  CaptureFrame frame;
  while (reader->Next(&frame) == ReadResult::kFrame && !::testing::Test::HasFailure()) check(builder->Build(frame));
}

NamingHost::NamingHost() {
  host.findMibEntry = [](void*, const char* dotted, QxMibEntry* out) -> int32_t {
    static const MibDatabase mib;
    return mib.Find(dotted, out);
  };
}

}  // namespace qxview::testing
