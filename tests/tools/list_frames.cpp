// Lists the frames of capture files for comparison with other readers: number, seconds.nanoseconds, captured length
// and wire length a line, or with --records the fields of the records made of them.
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <memory>

#include "files/record_builder.h"

namespace {

using namespace qxview;

void PrintFrame(const CaptureFrame& frame) {
  int64_t seconds = frame.nanoseconds / 1000000000;
  int64_t rest = frame.nanoseconds % 1000000000;
  if (rest < 0) {
    rest += 1000000000;
    --seconds;
  }
  std::printf("%" PRIu64 "\t%" PRId64 ".%09" PRId64 "\t%u\t%u\n", frame.number, seconds, rest, frame.capturedLength,
              frame.wireLength);
}

void PrintRecord(const FrameRecord* record) {
  char scratch[kMediumNameScratch];
  std::printf("%" PRIu64
              "\t%s\tlink %u\tcaptured %u\twire %u\tmoved %d\tskip %u\tethertype 0x%04X\tdirection %u\t"
              "errors 0x%X\tfcs %u\tflags %u\n",
              record->packetNumber, MediumName(record, scratch), record->linkType, record->capturedLength,
              record->wireLength, MovedHeaderLength(record), record->rawSkip, record->rawEthertype, record->direction,
              record->receiveErrors, record->checkSequenceLength, record->flags);
}

bool ListFile(const char* path, bool records) {
  static RecordBuilder builder;
  std::string message;
  std::unique_ptr<CaptureReader> reader = OpenCapture(path, &message);
  CaptureFrame frame;
  ReadResult result = ReadResult::kDamaged;
  while (reader && (result = reader->Next(&frame)) == ReadResult::kFrame) {
    if (records) {
      PrintRecord(builder.Build(frame));
    } else {
      PrintFrame(frame);
    }
  }
  if (result == ReadResult::kEnd) return true;
  std::fprintf(stderr, "%s\n", reader ? reader->Message().c_str() : message.c_str());
  return false;
}

}  // namespace

int main(int count, char** arguments) {
  bool records = count > 1 && std::strcmp(arguments[1], "--records") == 0;
  bool whole = true;
  for (int i = records ? 2 : 1; i < count; ++i) whole = ListFile(arguments[i], records) && whole;
  return whole ? 0 : 3;
}
